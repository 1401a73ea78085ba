// SlowBrowse.h - browsing answered a second time, from the slow reader's records and without any code of the library.
#ifndef QEADRS_TESTS_NATIONAL_SLOWBROWSE_H
#define QEADRS_TESTS_NATIONAL_SLOWBROWSE_H

#include "SlowAddress.h"
#include "Tables.h"

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace national {

using CNodes = std::vector<uint32_t>;

inline std::string NameOf(uint32_t nNode) {
    return std::string(Official().Nodes()[nNode].strName);
}

// The nodes below one, in their order.
inline CNodes ChildrenOf(uint32_t nNode) {
    CSlowReader::CNode const& node = Official().Nodes()[nNode];
    CNodes vNode;
    for (uint32_t n = 0; n < node.nChildren; ++n) vNode.push_back(node.nFirstChild + n);
    return vNode;
}

// Whether the node names a current entry.
inline bool HasCurrentEntry(uint32_t nNode) {
    uint32_t const nEntry = Official().Nodes()[nNode].nEntry;
    return nEntry != NONE && !Official().Entries()[nEntry].bSuperseded;
}

// A node and all below it that name a current entry, parents first.
inline void recCollectBelow(uint32_t nNode, CNodes& vNode) {
    if (HasCurrentEntry(nNode)) vNode.push_back(nNode);
    for (uint32_t n : ChildrenOf(nNode)) recCollectBelow(n, vNode);
}

inline CNodes AllPrefectures() {
    CNodes vNode;
    for (uint32_t n = 0; n < Official().Word(18); ++n) vNode.push_back(Official().Word(19) + n);
    return vNode;
}

// What stands in the list of towns.
inline CNodes NamedChildrenOf(uint32_t nCity) {
    CNodes vTown = ChildrenOf(nCity);
    vTown.erase(std::remove_if(vTown.begin(), vTown.end(), [](uint32_t n) { return NameOf(n).empty(); }),
                vTown.end());
    return vTown;
}

// Whether a name is looked for at the ends of city names: it ends in the first two bytes of 区, 町 or 村, and in
// front, two bytes by two, there are not those of 市, 郡, 島 or 庁.
inline bool IsLookedForAtEnds(std::string_view strName) {
    auto const Holds = [strName](long nAt, std::string_view strSuffix) {
        return strName.substr(static_cast<size_t>(nAt), 2) == strSuffix.substr(0, 2);
    };
    auto const nSize = static_cast<long>(strName.size());
    if (nSize < 2) return false;
    struct CSuffix {
        std::string_view strSuffix;
        std::initializer_list<std::string_view> vFront;
    };
    std::initializer_list<std::string_view> const vWard = {"市"}, vTown = {"郡"}, vVillage = {"郡", "島", "庁"};
    for (CSuffix const& suffix : {CSuffix{"区", vWard}, CSuffix{"町", vTown}, CSuffix{"村", vVillage}}) {
        if (!Holds(nSize - 2, suffix.strSuffix)) continue;
        for (long n = nSize - 6; n > 1; n -= 2)
            for (std::string_view strFront : suffix.vFront)
                if (Holds(n, strFront)) return false;
        return true;
    }
    return false;
}

// The cities whose names end in the name, and those in whose names it ends.
inline CNodes CitiesWithEnd(std::string_view strName) {
    CNodes vCity;
    for (uint32_t n = 0; n < Official().Word(20); ++n) {
        std::string_view const strCity = Official().Nodes()[Official().Word(21) + n].strName;
        if (EndsWith(strCity, strName) || EndsWith(strName, strCity)) vCity.push_back(Official().Word(21) + n);
    }
    return vCity;
}

// Where a binary search of the city index meets the first name that begins so.
inline std::optional<size_t> HitInCityIndex(std::string_view strName) {
    CNodes const& vIndex = Official().CityIndex();
    for (long nLow = 0, nHigh = static_cast<long>(vIndex.size()) - 1; nLow <= nHigh;) {
        long const nMiddle = (nLow + nHigh) / 2;
        std::string_view const strCity = Official().Nodes()[vIndex[static_cast<size_t>(nMiddle)]].strName;
        int const nOrder = strCity.substr(0, strName.size()).compare(strName);
        if (nOrder == 0) return static_cast<size_t>(nMiddle);
        (nOrder > 0 ? nHigh : nLow) = nOrder > 0 ? nMiddle - 1 : nMiddle + 1;
    }
    return {};
}

// The cities whose names begin so: each name of the index is compared, and the hit, those before it backwards, those
// behind it forwards make the answer. The first of the index is left out. None when nothing is hit.
inline std::optional<CNodes> CitiesWithBeginning(std::string_view strName) {
    std::optional<size_t> const nHit = HitInCityIndex(strName);
    if (!nHit) return {};
    CNodes const& vIndex = Official().CityIndex();
    CNodes vBefore, vBehind;
    for (size_t n = 1; n < vIndex.size(); ++n)
        if (BeginsWith(Official().Nodes()[vIndex[n]].strName, strName))
            (n <= *nHit ? vBefore : vBehind).push_back(vIndex[n]);
    std::reverse(vBefore.begin(), vBefore.end());
    vBefore.insert(vBefore.end(), vBehind.begin(), vBehind.end());
    return vBefore;
}

inline std::optional<CNodes> CitiesFound(std::string_view strName) {
    if (IsLookedForAtEnds(strName)) return CitiesWithEnd(strName);
    return CitiesWithBeginning(strName);
}

// The prefectures that a text can lie in, each once and in the order in which they are met.
inline CNodes PrefecturesFound(std::string_view strText) {
    CSeparated const found = Separate(strText);
    if (found.nPref != NONE) return {found.nPref};
    if (found.nCity == NONE) return {};
    CNodes vPref;
    for (uint32_t nCity : CitiesFound(Official().Nodes()[found.nCity].strName).value_or(CNodes()))
        if (uint32_t const nPref = Official().Nodes()[nCity].nParent;
            std::find(vPref.begin(), vPref.end(), nPref) == vPref.end())
            vPref.push_back(nPref);
    return vPref;
}

// The names of all cities, each once.
inline std::vector<std::string> CityNames() {
    std::vector<std::string> vName;
    for (uint32_t n : Official().CityIndex()) // sorted
        if (vName.empty() || vName.back() != NameOf(n)) vName.push_back(NameOf(n));
    return vName;
}

} // namespace national

#endif
