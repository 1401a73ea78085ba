// Source.h - reading the official tables: zip or CSV, either encoding, line by line.
#ifndef QEADRS_BUILDER_SOURCE_H
#define QEADRS_BUILDER_SOURCE_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qe {

enum class EEncoding { Utf8, Cp932, EucJis2004 };
char const* EncodingName(EEncoding nEncoding);

// One source, read whole and converted to UTF-8.
struct CSource {
    std::string strPath;   // as the user named it
    std::string strMember; // the member of the zip, empty for a plain file
    EEncoding nEncoding = EEncoding::Utf8;
    uint32_t nEdition = 0; // yyyymm00 of the zip member's date, 0 for a plain file
    std::string strText;   // UTF-8
    // "utf_ken_all.zip(utf_ken_all.csv)" for messages.
    std::string Name() const;
};

// Reads a zip's only CSV member or a plain file. The encoding is detected: a text that is well-formed UTF-8 is UTF-8,
// else it must be CP932. Throws CBuildError, naming file and line, for a file that cannot be read, is empty, ends
// within a line, or is in neither encoding.
CSource ReadSource(std::string const& strPath);

// The same for a text known to be EUC-JIS-2004.
CSource ReadEucSource(std::string const& strPath);

// The same two for bytes at hand: strText holds them as they were read, strPath and strMember what to name them.
CSource DecodeSource(CSource source);
CSource DecodeEucSource(CSource source);

// Reads a source line by line.
class CLineReader {
  public:
    explicit CLineReader(CSource const& source) : m_source(source) {}
    bool Next();                                        // false at the end
    std::string_view Line() const { return m_strLine; } // without its line end
    size_t Number() const { return m_nLine; }           // from 1

    // Cuts the line into its fields, quotes removed. Throws when the count differs or a quote is not closed.
    std::vector<std::string> Fields(size_t nExpected) const;

    // Throws CBuildError "FILE:LINE: what".
    [[noreturn]] void Fail(std::string const& strWhat) const;

  private:
    CSource const& m_source;
    size_t m_nPos = 0;
    size_t m_nLine = 0;
    std::string_view m_strLine;
};

// A row of the town table.
struct CTownRow {
    size_t nLine = 0; // where it began
    std::string strJis, strOldCode, strCode;
    std::string strPrefKana, strCityKana, strTownKana;
    std::string strPref, strCity, strTown;
};

// A row of the organisation table.
struct COfficeRow {
    size_t nLine = 0;
    std::string strKana, strName;
    std::string strPref, strCity, strTown, strRest;
    std::string strCode, strOldCode;
};

struct CTownTable {
    std::vector<CTownRow> vRow;
    size_t nLines = 0;  // lines of the file
    size_t nJoined = 0; // of these, lines that continue the one before
};

// The rows of a table, with the old codes' padding removed, lines joined where a town text goes on in the next ones,
// readings in full width, and the dashes of code page 932 written as in the UTF-8 edition: both editions give the
// same rows. Throws CBuildError for the first row that is not one.
CTownTable ReadTownTable(CSource const& source);
std::vector<COfficeRow> ReadOfficeTable(CSource const& source);

} // namespace qe

#endif
