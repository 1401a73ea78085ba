// BatchFiles.h - the files of a batch, by their descriptors: no byte of them is translated, and none waits in a
// buffer.
#ifndef QEADRS_CLI_BATCHFILES_H
#define QEADRS_CLI_BATCHFILES_H

#include <cstdint>
#include <optional>
#include <string>

namespace qe {

// An open file; closed with the object unless it is a standard stream.
class CBatchFile {
  public:
    CBatchFile(int hFile, std::string strName) : m_hFile(hFile), m_strName(std::move(strName)) {}
    ~CBatchFile();
    CBatchFile(CBatchFile&& other) noexcept;
    CBatchFile& operator=(CBatchFile&&) = delete;

    int Handle() const { return m_hFile; }

    // All of the text. Throws CClosedPipe when it is the standard output and nobody reads that any more, and CFailure
    // when it cannot be written: rejects that nobody takes are lost lines.
    void Write(std::string const& strText) const;

    // Bytes from here to its end; nothing when that is not known.
    std::optional<uint64_t> Remaining() const;

    // Whether both are one file that keeps what is written.
    bool IsSame(CBatchFile const& other) const;

    // Empties a file that keeps what is written; a device or pipe is left alone.
    void Truncate() const;

  private:
    int m_hFile;
    std::string m_strName; // for messages: "the output"
};

// The reader of the output has gone, as `head` does: nothing to complain about.
class CClosedPipe {};

// The file, or standard input without one and for "-". Throws CFailure when it cannot be opened.
CBatchFile OpenBatchInput(std::optional<std::string> const& strFile);

// The file for rejects, new or not yet emptied. Throws CFailure when it cannot be opened.
CBatchFile OpenBatchRejects(std::string const& strFile);

} // namespace qe

#endif
