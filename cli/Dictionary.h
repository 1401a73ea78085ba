// Dictionary.h - the dictionary of one run, opened twice: through the API, and for the class behind it.
//
//   CDictionary dictionary(strDic);         // --dic FILE, or nothing: the one of the profile
//   dictionary.Api().FromCode("1000001");   // the API answers now ...
//   dictionary.Dic().FromCode("1000001");   // ... and so does the class, in the same order
//
// Why twice  The API keeps its own CAddrDic to itself, and its blocks lack buildings, floors and readings.
// Checks     The library looks at nothing in a file. Here the header is checked: ours, of a format we know, as long
//            as it says, its tables inside the file. The records are not: `qeadrs-dic info` compares the checksum.
// One only   The API has one dictionary for the process: do not make a second object while one lives.
#ifndef QEADRS_CLI_DICTIONARY_H
#define QEADRS_CLI_DICTIONARY_H

#include "api/qeadrs.hpp"
#include "cli/Failure.h"

#include <optional>
#include <string>

namespace qe {

// The file that a command is to open, mapped and looked at.
class CDictionaryFile {
  public:
    // Throws CFailure with what is wrong and the way out.
    explicit CDictionaryFile(std::optional<std::string> const& strDic);

    std::string const& Name() const { return m_strFile; }
    qeadrs::CDictionaryFile const& Mapped() const { return m_mapped; }

    // An update renames a new file over the old one; between our opening and another one's that would give two
    // editions. Throws CFailure when it has happened.
    void CheckUnchanged() const;

  private:
    std::string m_strFile;
    qeadrs::CDictionaryFile m_mapped;
};

// The answer. Throws CFailure when there is none; not to be asked where "not found" is an answer.
template <typename T>
T Demand(qeadrs::CResult<T> answer) {
    if (answer) return *std::move(answer);
    throw CFailure(EXIT_SYSTEM, answer.Error().nKind == qeadrs::EError::DamagedBlock
                                    ? "an answer of the library ends too early."
                                    : "not enough memory.");
}

class CDictionary {
  public:
    // Throws CFailure with what is wrong and the way out.
    explicit CDictionary(std::optional<std::string> const& strDic);
    CDictionary(CDictionary const&) = delete;
    CDictionary& operator=(CDictionary const&) = delete;

    qeadrs::CApi& Api() { return m_api; }
    qeadrs::CDictionary& Dic() { return m_dic; }
    CAddrDic& Class() { return m_dic.Class(); }

    // Sort type of both, from now on: SORT_DICTIONARY or SORT_ADDR.
    void SetSortType(unsigned short nType);

    // A copy of a text of the class's answers, "" for null and outside of the dictionary.
    std::string Text(char const* psz) const { return std::string(m_file.Mapped().Text(psz)); }

  private:
    CDictionaryFile m_file;
    qeadrs::CApi m_api;
    qeadrs::CDictionary m_dic;
};

} // namespace qe

#endif
