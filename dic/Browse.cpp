// Browse.cpp - browsing: the prefectures, the cities of one, the towns of a city.
//
// Each answer is kept as a list of nodes, and the next level's call names its parent by a position in that list. A
// city or town that stands there already when its level is asked for is fixed: it is the only answer.
#include "dic/AddrDic.h"
#include "dic/AddrKey.h"
#include "dic/ImageView.h"
#include "dic/LevelText.h"
#include "dic/NameIndex.h"
#include "dic/NodeEntry.h"
#include "dic/NodeRange.h"
#include "dic/Suffix.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>

namespace {

// A list record, made where it stays: the node's texts in the fields of a level, and the node.
tagADDR& AppendRecord(CImageView const& image, uint8_t nLevel, tagADDRNODE const& node, std::vector<tagADDR>& vAddr) {
    tagADDR& addr = vAddr.emplace_back(0);
    StoreLevel(image, nLevel, node, addr);
    addr.pListCity = &node;
    return addr;
}

void AppendTown(CImageView const& image, tagADDRNODE const& town, std::vector<tagADDR>& vAddr) {
    StoreCodes(image, town, AppendRecord(image, LEVEL_TOWN, town, vAddr));
}

// All of them or, when memory runs out, none: the list is what the next level's call reads.
void AppendNodes(std::vector<tagADDR> const& vAddr, std::vector<tagADDRNODE const*>& vList) {
    vList.reserve(vList.size() + vAddr.size());
    for (tagADDR const& addr : vAddr) vList.push_back(addr.pListCity);
}

// Whether a name ends like a ward, town or village without what it stands in front of: it is looked for at the ends
// of city names then. Characters are compared by two bytes, which a UTF-8 name never ends in.
bool LacksItsFront(char const* pszName, size_t nLength) {
    if (nLength < 2) return false;
    char const* const pszEnd = pszName + nLength - 2;
    tagSUFFIX nMarker = SUFFIX_COUNT;
    auto const HasNone = [&](std::initializer_list<tagSUFFIX> vMarker) {
        return FindMarkerBackwards(pszName, nLength, vMarker, &nMarker) == 0;
    };
    if (HoldsSuffix(pszEnd, SUFFIX_KU)) return HasNone({SUFFIX_SHI});
    if (HoldsSuffix(pszEnd, SUFFIX_CHO)) return HasNone({SUFFIX_GUN});
    if (HoldsSuffix(pszEnd, SUFFIX_MURA)) return HasNone({SUFFIX_GUN, SUFFIX_SHIMA, SUFFIX_AGATA});
    return false;
}

// Whether the shorter of two texts is the end of the longer one. The difference in length is counted in 16 bits.
bool EndsAlike(char const* psz, char const* pszOther) {
    size_t const nLength = std::strlen(psz);
    size_t const nOther = std::strlen(pszOther);
    if (nLength > nOther)
        psz += static_cast<uint16_t>(nLength - nOther);
    else
        pszOther += static_cast<uint16_t>(nOther - nLength);
    return std::strcmp(psz, pszOther) == 0;
}

// The cities, in their own order, that end like the name. False when a city has no node.
bool SearchCityEnds(CImageView const& image, char const* pszName, std::vector<tagADDRNODE const*>& vNode) {
    uint32_t const nCount = image.Word(HDR_CITY_COUNT);
    CNodeRange const cities = LevelNodes(image, HDR_FIRST_CITY, HDR_CITY_COUNT);
    for (uint32_t n = cities.nFirst; n < cities.nEnd; ++n) {
        char const* const pszCity = image.At(image.Node(n)->nName);
        if (pszCity != nullptr && EndsAlike(pszName, pszCity)) vNode.push_back(image.Node(n));
    }
    return cities.Count() == nCount;
}

// The cities whose names begin with the name: the one that a binary search hits, those before it backwards, those
// behind it forwards. The walk backwards ends above position 0: the first city of the index is never found, not even
// when the search hits it. Its order and that gap are known to callers.
bool SearchCityIndex(CNameIndex const& index, char const* pszName, std::vector<tagADDRNODE const*>& vNode) {
    CPrefix const prefix(pszName);
    uint32_t const nHit = index.FindAny(prefix, CNameIndex::NotFound);
    if (nHit == ADDR_NONE) return false;
    for (uint32_t nPos = nHit; nPos > 0 && index.Begins(nPos, prefix); --nPos) vNode.push_back(index.Node(nPos));
    for (uint32_t nPos = nHit + 1; index.Begins(nPos, prefix); ++nPos) vNode.push_back(index.Node(nPos));
    return true;
}

} // namespace

// --- prefectures ---------------------------------------------------------------------------------------------------

void CAddrDic::EmptyLists() {
    vPrefList.clear();
    vCityList.clear();
    vTownList.clear();
}

bool CAddrDic::GetPref(std::vector<tagADDR>& vAddr) {
    EmptyLists();
    if (pImage == nullptr) return true;
    CImageView const image(*this);
    // The larger of a damaged dictionary's counts would only fill the memory with blank records.
    size_t const nMost = std::max<size_t>(image.NodeCount(), PREF_ORDER_ROWS);
    size_t const nCount = std::min<size_t>(image.Word(HDR_PREF_COUNT), nMost);
    vAddr.insert(vAddr.end(), nCount, tagADDR(0));
    vPrefList.resize(nCount);
    int nNumber = -1;
    CNodeRange const prefs = PrefNodes(image);
    for (uint32_t n = prefs.nFirst; n < prefs.nEnd; ++n) {
        tagADDRNODE const* const pPref = image.Node(n);
        char const* const pszName = image.At(pPref->nName);
        int const nKnown = pszName == nullptr ? -1 : FindPrefNumber(pszName);
        if (nKnown >= 0) nNumber = nKnown; // an unknown one takes the place of the one before it
        if (nNumber < 0) continue;
        size_t const nSlot = static_cast<size_t>(nNumber);
        if (nSlot >= vAddr.size()) vAddr.resize(nSlot + 1, tagADDR(0));
        if (nSlot >= vPrefList.size()) vPrefList.resize(nSlot + 1);
        vAddr[nSlot].pszPref = pszName;
        char const* const pszKana = image.Behind(pPref->nName, 1);
        if (pszKana == nullptr) return false;
        vAddr[nSlot].pszPrefKana = pszKana;
        vPrefList[nSlot] = pPref;
    }
    return true;
}

bool CAddrDic::GetPrefFromCity(char const* pszText, std::vector<tagADDR>& vAddr) {
    if (pszText == nullptr) return false;
    EmptyLists();
    tagADDR addr(0);
    DivideAddr(pszText, &addr);
    if (addr.pTownNode != nullptr) vTownList.push_back(addr.pTownNode);
    if (addr.pCityNode != nullptr) vCityList.push_back(addr.pCityNode);
    if (addr.pPrefNode != nullptr) {
        vPrefList.push_back(addr.pPrefNode);
        vAddr.push_back(addr);
        return true;
    }
    std::vector<tagADDRNODE const*> vCity;
    if (!SearchCity(addr.pszCity, vCity) || vCity.empty()) return false;
    CImageView const image(*this);
    std::unordered_set<std::string_view> vListed;
    for (tagADDR const& listed : vAddr)
        if (listed.pszPref != nullptr) vListed.insert(listed.pszPref);
    for (tagADDRNODE const* const pCity : vCity) {
        tagADDRNODE const* const pPref = GetAddrNode(pCity->nParent);
        if (pPref == nullptr) return true;
        tagADDR pref = tagADDR(0);
        pref.pszPref = image.At(pPref->nName); // without its reading, unlike GetPref
        pref.pListCity = pPref;
        if (pref.pszPref == nullptr || !vListed.insert(pref.pszPref).second) continue;
        vAddr.push_back(pref);
        vPrefList.push_back(pPref);
    }
    return true;
}

// --- cities --------------------------------------------------------------------------------------------------------

bool CAddrDic::GetCityFromNo(unsigned long nPref, std::vector<tagADDR>& vAddr) {
    if (nPref >= vPrefList.size()) return false;
    CImageView const image(*this);
    if (!vCityList.empty()) {
        if (vCityList[0] == nullptr) return false;
        AppendRecord(image, LEVEL_CITY, *vCityList[0], vAddr);
        return true;
    }
    tagADDRNODE const* const pPref = vPrefList[nPref];
    if (pPref == nullptr) return false;
    CNodeRange const cities = ChildrenOf(image, *pPref);
    vAddr.reserve(vAddr.size() + cities.Count());
    for (uint32_t n = cities.nFirst; n < cities.nEnd; ++n) AppendRecord(image, LEVEL_CITY, *image.Node(n), vAddr);
    if (nSortType == SORT_ADDR) SortAddrs(vAddr);
    AppendNodes(vAddr, vCityList);
    return true;
}

bool CAddrDic::SearchCity(char const* pszName, std::vector<tagADDRNODE const*>& vNode) {
    if (pszName == nullptr) return false;
    vNode.clear();
    CImageView const image(*this);
    if (LacksItsFront(pszName, std::strlen(pszName))) return SearchCityEnds(image, pszName, vNode);
    return SearchCityIndex(CNameIndex(image, pCityIndex, HDR_CITY_COUNT), pszName, vNode);
}

// --- towns ---------------------------------------------------------------------------------------------------------

bool CAddrDic::GetTownFromNo(unsigned long nCity, std::vector<tagADDR>& vAddr) {
    if (nCity >= vCityList.size()) return false;
    CImageView const image(*this);
    if (!vTownList.empty()) {
        if (vTownList[0] == nullptr) return false;
        AppendTown(image, *vTownList[0], vAddr);
        return true;
    }
    tagADDRNODE const* const pCity = vCityList[nCity];
    if (pCity == nullptr) return false;
    CNodeRange const towns = ChildrenOf(image, *pCity);
    vAddr.reserve(vAddr.size() + towns.Count());
    for (uint32_t n = towns.nFirst; n < towns.nEnd; ++n) {
        char const* const pszTown = image.At(image.Node(n)->nName);
        // One without a name stands for the city as a whole.
        if (pszTown != nullptr && *pszTown != '\0') AppendTown(image, *image.Node(n), vAddr);
    }
    if (towns.Count() < pCity->nChildCount) return false; // a child has no node
    if (nSortType == SORT_ADDR) SortAddrs(vAddr);
    AppendNodes(vAddr, vTownList);
    return true;
}

bool CAddrDic::GetTownExFromNo(unsigned long nCity, std::vector<tagADDR>& vAddr) {
    vTownList.clear();
    if (nCity >= vCityList.size()) return true;
    recTraceNode(vCityList[nCity], tagADDR(0), vAddr);
    if (nSortType == SORT_ADDR) SortAddrs(vAddr);
    AppendNodes(vAddr, vTownList); // null for each: the walk names no list node
    return true;
}

void CAddrDic::recCollectNode(tagADDRNODE const* pNode, std::vector<tagADDRNODE const*>& vNode) {
    if (pNode == nullptr || pImage == nullptr) return;
    CImageView const image(*this);
    CSubtreeWalk walk(image);
    CollectCurrent(image, walk, *pNode, vNode);
}
