// Fuzz.h - what the fuzz targets share: their entry, promises, input read as lines, and memory before a guard page.
//
//   extern "C" int LLVMFuzzerTestOneInput(uint8_t const* p, size_t nSize) {
//       for (CLineInput input(p, nSize); input.Next();)
//           if (input.Command() == 'z') Require(Ask(input.Field()) == 0, "the answer is one");
//       return 0;
//   }
//
// Inputs    Texts of commands, one to a line: a mutation of any byte still means something, and a find can be read. What
//           is no command is passed over.
// Findings  A target crashes, is stopped by a sanitizer, or breaks a promise; Driver.cpp keeps the input. An exception
//           that leaves a target is one too.
#ifndef QEADRS_FUZZ_FUZZ_H
#define QEADRS_FUZZ_FUZZ_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

extern "C" {
int LLVMFuzzerTestOneInput(uint8_t const* p, size_t nSize);

// A target's own mutations, where it knows better ones than of bytes: changes the input in place, within nMost bytes,
// and returns its new size. The other is for it to call: that of any target.
__attribute__((weak)) size_t LLVMFuzzerCustomMutator(uint8_t* p, size_t nSize, size_t nMost, unsigned nSeed);
size_t LLVMFuzzerMutate(uint8_t* p, size_t nSize, size_t nMost);
}

// Aborts, with the promise on stderr.
[[noreturn]] void BreakPromise(char const* pszPromise);
// The same when it is not kept.
inline void Require(bool bKept, char const* pszPromise) {
    if (!bKept) BreakPromise(pszPromise);
}

class CLineInput {
  public:
    CLineInput(uint8_t const* p, size_t nSize) : m_strRest(reinterpret_cast<char const*>(p), nSize) {}

    bool Next();                                // to the next line; false behind the last one
    char Command() const { return m_cCommand; } // its first byte, '\0' in an empty line

    // What follows, up to the next "|". A NUL in it ends it for those who take it as a C text.
    std::string Field();
    // The same as a number, decimal, whatever stands around its digits; 0 without one, and modulo 2^32.
    uint32_t Number();
    // The rest of the line.
    std::string Rest();

  private:
    std::string_view m_strRest; // behind the line
    std::string_view m_strLine; // what is left of it
    char m_cCommand = '\0';
};

// The input as lines, without their ends, for those who mutate it by lines; and back again, as many as find room.
std::vector<std::string> LinesOf(uint8_t const* p, size_t nSize);
size_t PutLines(std::vector<std::string> const& vLine, uint8_t* p, size_t nMost);

// Memory of a caller that ends with its page; the page behind cannot be touched. One object is used again and again.
class CGuardedRecord {
  public:
    explicit CGuardedRecord(size_t nLargest = 1u << 16);
    ~CGuardedRecord();
    CGuardedRecord(CGuardedRecord const&) = delete;
    CGuardedRecord& operator=(CGuardedRecord const&) = delete;

    // The bytes, cut to the largest size, right before the guard. What was there before is gone.
    unsigned char* Put(void const* p, size_t nSize);
    unsigned char* Fill(unsigned char c, size_t nSize);
    // A text with its NUL.
    char* PutText(std::string const& str);

  private:
    void* m_pMapping;
    size_t m_nMapping;
    unsigned char* m_pEnd;
    size_t m_nLargest;
};

// A file that has no name but a path: its content changes with each input.
class CMemoryFile {
  public:
    CMemoryFile();
    ~CMemoryFile();
    CMemoryFile(CMemoryFile const&) = delete;
    CMemoryFile& operator=(CMemoryFile const&) = delete;

    void Write(std::string_view strBytes) const;
    std::string const& Path() const { return m_strPath; }

  private:
    int m_hFile;
    std::string m_strPath;
};

// A folder with a profile in it that names the folder, and a dictionary: in force until the program ends.
class CDictionaryFolder {
  public:
    explicit CDictionaryFolder(std::vector<unsigned char> const& vByte);
    ~CDictionaryFolder();
    CDictionaryFolder(CDictionaryFolder const&) = delete;
    CDictionaryFolder& operator=(CDictionaryFolder const&) = delete;

    void Write(std::vector<unsigned char> const& vByte) const; // REQUIRES: the dictionary is not mapped
    std::string Path() const { return m_strFolder + "/qeadrs.dic"; }

  private:
    std::string m_strFolder;
};

#endif
