// Browser.h - the lists of browsing: prefectures, the cities of one, the towns of a city, the addresses below.
//
//   CBrowser browser(dictionary, SORT_DICTIONARY);
//   browser.Cities(12);                 // of 東京都
//   browser.Towns(12, 0);               // of 千代田区
//
// The API answers with names, codes and lines; the class adds readings and what has been superseded. A number is the
// position in the API's answer. The API asks each level once, so every call here begins again at the prefectures.
#ifndef QEADRS_CLI_BROWSER_H
#define QEADRS_CLI_BROWSER_H

#include "api/qeadrs.hpp"
#include "cli/Dictionary.h"
#include "cli/Output.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace qe {

// An entry of a list.
struct CPlace {
    size_t nNumber;
    std::string strName, strKana;
    std::string strCode, strOldCode; // of towns that have their own
    bool bSuperseded;
    tagADDRNODE const* pNode; // null for a prefecture
};

class CBrowser {
  public:
    CBrowser(CDictionary& dictionary, unsigned short nSortType) : m_dictionary(dictionary) {
        m_dictionary.SetSortType(nSortType);
    }

    // A prefecture that the dictionary lacks is left out, its number with it. A number beyond a list, or beyond the 16
    // bits that the API takes, has no list below it.
    std::vector<CPlace> Prefectures();
    std::vector<CPlace> Cities(size_t nPref);
    std::vector<CPlace> Towns(size_t nPref, size_t nCity);

    // The current addresses of a city or town, each entry once, as rows of all columns.
    std::vector<CRow> Addresses(CPlace const& place) const;

    // The current addresses of a city as lines for a screen: postal code, old code, line, organisation. REQUIRES: the
    // numbers are in their lists.
    std::vector<CRow> Lines(size_t nPref, size_t nCity);
    std::vector<CRow> Lines(size_t nPref, size_t nCity, size_t nTown); // those in one of its towns

    // The prefectures that a text, which need not begin with one, can lie in: "府中市" is in two.
    std::vector<std::string> PrefecturesOf(std::string const& strText);

  private:
    // Both answers to one level: the API's block, if it had one, and the class's records.
    struct CAnswer {
        std::optional<qeadrs::CBlock> block;
        std::vector<tagADDR> vAddr;
    };
    using PFNAPI = qeadrs::CApi::PFNBROWSE;
    using CTextMembers = std::vector<char const * tagADDR::*>; // name, code and old code, as far as a level has them
    using PFNCLASS = bool (CAddrDic::*)(unsigned long, std::vector<tagADDR>&);
    CAnswer AskPrefectures(std::string const& strText);
    CAnswer Ask(size_t nNumber, PFNAPI pfnApi, PFNCLASS pfnClass);
    CAnswer AskCities(size_t nPref);
    CAnswer AskTowns(size_t nPref, size_t nCity);
    std::vector<CPlace> Places(CAnswer const& answer, CTextMembers const& vText) const;
    CPlace MakePlace(size_t nNumber, tagADDR const& addr) const;
    tagADDRINFO const* EntryOf(tagADDRNODE const* pNode) const; // null when it has none
    std::vector<CRow> LinesOf(size_t nPref, size_t nCity, std::function<bool(tagADDR const&)> const& Fits);

    CDictionary& m_dictionary;
};

} // namespace qe

#endif
