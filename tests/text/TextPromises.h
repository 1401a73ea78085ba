// TextPromises.h - what every answer keeps to, whatever was read and whatever the index says.
//
//   std::string const strBroken = BrokenPromise(reading, strText, dic);     // "" when all is well
#ifndef QEADRS_TESTS_TEXT_TEXTPROMISES_H
#define QEADRS_TESTS_TEXT_TEXTPROMISES_H

#include "text/AddressText.h"
#include "text/FoldedText.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// A text in folded form, with 大 and 小 before 字 and without them.
class CFoldedBoth {
  public:
    explicit CFoldedBoth(std::string_view strText) {
        for (size_t n = 0; n < std::size(m_vToken); ++n)
            m_vToken[n] = Fold(strText, n == 0 ? 0u : uint32_t{qeadrs::FOLD_KEEP_SIZE});
    }
    bool Holds(std::string_view strName) const {
        std::vector<uint16_t> const vName = Fold(strName, 0);
        return std::any_of(std::begin(m_vToken), std::end(m_vToken), [&](std::vector<uint16_t> const& v) {
            return std::search(v.begin(), v.end(), vName.begin(), vName.end()) != v.end();
        });
    }

  private:
    static std::vector<uint16_t> Fold(std::string_view str, uint32_t nOptions) {
        auto const pFolded = std::make_unique<qeadrs::CFoldedText>();
        pFolded->Fold(str, nOptions);
        return {pFolded->anToken, pFolded->anToken + pFolded->nCount};
    }

    std::vector<uint16_t> m_vToken[2];
};

inline std::string_view Behind(std::string_view str, std::string_view strMark) {
    size_t const n = str.find(strMark);
    return n == std::string_view::npos ? str : str.substr(n + strMark.size());
}

// Why the names of a place do not follow from the text; "" when they do. Of a subdivision that a number chose the text
// holds the number only.
inline std::string Unsupported(QETEXTPLACE const& place, QETEXTREADING const& reading, CFoldedBoth const& text) {
    if (place.pszPref != nullptr && (reading.nSupplied & QETEXT_PREF_SUPPLIED) == 0) {
        std::string_view strPref = place.pszPref;
        if ((reading.nFoldings & QETEXT_FOLD_PREF) != 0) strPref.remove_suffix(std::min<size_t>(3, strPref.size()));
        if (!text.Holds(strPref)) return std::string("the text lacks the prefecture ") + place.pszPref;
    }
    if (place.pszCity != nullptr) {
        std::string_view strCity = place.pszCity;
        if ((reading.nSupplied & QETEXT_COUNTY_SUPPLIED) != 0) strCity = Behind(Behind(strCity, "郡"), "島");
        if ((reading.nSupplied & QETEXT_CITY_SUPPLIED) != 0) strCity = Behind(strCity, "市");
        if ((reading.nSupplied & QETEXT_WARD_SUPPLIED) != 0) strCity = strCity.substr(0, strCity.find("市") + 3);
        if (!text.Holds(strCity)) return std::string("the text lacks the city ") + place.pszCity;
    }
    if (place.pszTown != nullptr && !text.Holds(place.pszTown))
        return std::string("the text lacks the town ") + place.pszTown;
    return "";
}

// Why a place is none of the dictionary's; "" when it is. All its texts are read to their ends.
inline std::string Damaged(QETEXTPLACE const& place, CAddrDic const& dic) {
    std::pair<char const*, uint32_t> const aLevel[] = {
        {place.pszPref, place.nPref}, {place.pszCity, place.nCity},         {place.pszTown, place.nTown},
        {place.pszArea, place.nArea}, {place.pszBuilding, place.nBuilding}, {place.pszFloor, place.nFloor}};
    for (auto const& [psz, nNode] : aLevel) {
        if ((psz == nullptr) != (nNode == QETEXT_NONE)) return "a name without its node, or a node without its name";
        tagADDRNODE const* const pNode = psz == nullptr ? nullptr : dic.GetAddrNode(nNode);
        if (psz != nullptr && (pNode == nullptr || dic.GetString(pNode->nName) != psz)) return "another node's name";
        if (psz != nullptr && std::strlen(psz) > 65535) return "a name without an end";
    }
    if ((place.pszPostCode == nullptr) != (place.pszOldCode == nullptr)) return "one code without the other";
    if (place.pszPostCode != nullptr && std::strlen(place.pszPostCode) + std::strlen(place.pszOldCode) > 65535)
        return "codes without an end";
    if (place.nEntry != QETEXT_NONE && dic.GetAddrInfo(place.nEntry) == nullptr) return "no such entry";
    return "";
}

inline bool LiesIn(std::string_view strText, QETEXTSPAN const& span) {
    return span.nOffset <= strText.size() && span.nLength <= strText.size() - span.nOffset;
}

inline std::string BrokenPromise(QETEXTREADING const& reading, std::string_view strText, CAddrDic const& dic) {
    CFoldedBoth const folded(strText);
    std::vector<QETEXTPLACE const*> vPlace = {&reading.place};
    for (size_t n = 0; n < reading.nCandidate; ++n) vPlace.push_back(reading.pCandidate + n);
    for (QETEXTPLACE const* const pPlace : vPlace) {
        if (std::string strWhy = Damaged(*pPlace, dic); !strWhy.empty()) return strWhy;
        if (std::string strWhy = Unsupported(*pPlace, reading, folded); !strWhy.empty()) return strWhy;
    }
    if (std::string strWhy = Damaged(reading.latest, dic); !strWhy.empty()) return "latest: " + strWhy;
    for (QETEXTSPAN const& span : {reading.code, reading.pref, reading.city, reading.street, reading.town,
                                   reading.area, reading.building, reading.floor, reading.rest})
        if (!LiesIn(strText, span)) return "a span leaves the text";
    if (reading.nSureness > QETEXT_EXACT) return "another sureness";
    if ((reading.nCandidate != 0) != (reading.place.pszCity != nullptr)) return "a city without candidates";
    if (reading.nCandidate != 0 && reading.pCandidate->nTown != reading.place.nTown)
        return "the best is not the first";
    std::string const strCanonical = qeadrs::CAddressText::Canonical(reading, strText);
    if (strCanonical.empty() != (reading.place.pszCity == nullptr)) return "a canonical text without a city";
    return "";
}

#endif
