// Dictionary.h - the dictionary of one run, opened twice: through the API, and for the class behind it.
//
//   CDictionary dictionary(strDic);         // --dic FILE, or nothing: the one of the profile
//   GetAdrFromZip("1000001", &hResult);     // the API answers now ...
//   dictionary.Class().GetAddrFromPostCode7("1000001", vAddr);   // ... and so does the class, in the same order
//
// Why twice  The API keeps its own CAddrDic to itself, and its blocks lack buildings, floors and readings.
// Checks     The library looks at nothing in a file. Here the header is checked: ours, of a format we know, as long
//            as it says, its tables inside the file. The records are not: `qeadrs-dic info` compares the checksum.
// One only   The API has one dictionary for the process: do not make a second object while one lives.
#ifndef QEADRS_CLI_DICTIONARY_H
#define QEADRS_CLI_DICTIONARY_H

#include "dic/AddrDic.h"

#include <sys/stat.h>

#include <cstddef>
#include <optional>
#include <string>

namespace qe {

// A file, mapped read-only as long as the object lives.
class CMapping {
  public:
    // Throws CFailure: no dictionary when there is no such file (strHint is the end of the message), system when it
    // cannot be mapped.
    CMapping(std::string const& strFile, std::string const& strHint);
    ~CMapping();
    CMapping(CMapping const&) = delete;
    CMapping& operator=(CMapping const&) = delete;

    unsigned char const* Bytes() const { return m_pStart; }
    size_t Size() const { return static_cast<size_t>(m_status.st_size); }
    bool IsFile(std::string const& strFile) const; // strFile still names the very file that is mapped

  private:
    struct stat m_status;
    unsigned char const* m_pStart = nullptr;
};

// The file that a command is to open, mapped and looked at.
class CDictionaryFile {
  public:
    // Throws CFailure with what is wrong and the way out.
    explicit CDictionaryFile(std::optional<std::string> const& strDic);

    std::string const& Name() const { return m_strFile; }
    unsigned char const* Bytes() const { return m_mapping.Bytes(); }
    size_t Size() const { return m_mapping.Size(); }

    // An update renames a new file over the old one; between our opening and another one's that would give two
    // editions. Throws CFailure when it has happened.
    void CheckUnchanged() const;

  private:
    std::string m_strFile;
    CMapping m_mapping;
};

// The API's dictionary, open as long as the object lives: strFile, through a profile of our own for --dic.
class CApiOpening {
  public:
    // Throws CFailure when it cannot be opened.
    CApiOpening(std::optional<std::string> const& strDic, std::string const& strFile);
    ~CApiOpening();
    CApiOpening(CApiOpening const&) = delete;
    CApiOpening& operator=(CApiOpening const&) = delete;
};

class CDictionary {
  public:
    // Throws CFailure with what is wrong and the way out.
    explicit CDictionary(std::optional<std::string> const& strDic);
    CDictionary(CDictionary const&) = delete;
    CDictionary& operator=(CDictionary const&) = delete;

    CAddrDic& Class() { return m_dic; }

    // Sort type of both, from now on: SORT_DICTIONARY or SORT_ADDR.
    void SetSortType(unsigned short nType);

    // A copy of a text of the class's answers, "" for null; never reads beyond the mapping.
    std::string Text(char const* psz) const;

    // Whether a text of the class's answers is the dictionary's; false for null and for a part of the text asked for.
    bool Holds(char const* psz) const;

  private:
    CDictionaryFile m_file;
    CApiOpening m_api;
    CAddrDic m_dic;
};

} // namespace qe

#endif
