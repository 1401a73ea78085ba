// Addr.cpp - the order of address records.
#include "dic/Addr.h"

#include "dic/AddrDic.h"
#include "dic/AddrKey.h"
#include "dic/Suffix.h"

#include <algorithm>

char const suffix_table[SUFFIX_COUNT][4] = {"市", "区", "町", "郡", "島", "村", "庁"};

int FindPrefNumber(char const* pszPref) {
    for (int nRow = 0; nRow < PREF_ORDER_ROWS; ++nRow)
        if (std::strcmp(pref_order[nRow] + PREF_ORDER_NAME, pszPref) == 0) return nRow;
    return -1;
}

// The unit right before the suffix is never a marker, and neither is one at the very start of the name.
size_t FindMarkerBackwards(char const* pszName, size_t nLength, std::initializer_list<tagSUFFIX> vMarker,
                           tagSUFFIX* pFound) {
    for (size_t nEnd = nLength; nEnd >= 8; nEnd -= 2) {
        size_t const nPos = nEnd - 6;
        for (tagSUFFIX nMarker : vMarker)
            if (HoldsSuffix(pszName + nPos, nMarker)) {
                *pFound = nMarker;
                return nPos;
            }
    }
    return 0;
}

char CityClassLetter(char const* pszCity) {
    if (pszCity == nullptr) return 'a';
    size_t const nLength = std::strlen(pszCity);
    if (nLength < 2) return 'h';
    char const* const pszEnd = pszCity + nLength - 2;
    tagSUFFIX nMarker = SUFFIX_COUNT;
    if (HoldsSuffix(pszEnd, SUFFIX_SHI)) return 'a';
    if (HoldsSuffix(pszEnd, SUFFIX_KU))
        return FindMarkerBackwards(pszCity, nLength, {SUFFIX_SHI}, &nMarker) != 0 ? 'c' : 'b';
    if (HoldsSuffix(pszEnd, SUFFIX_CHO)) {
        if (FindMarkerBackwards(pszCity, nLength, {SUFFIX_GUN, SUFFIX_SHIMA}, &nMarker) == 0) return 'h';
        return nMarker == SUFFIX_GUN ? 'd' : 'f';
    }
    if (HoldsSuffix(pszEnd, SUFFIX_MURA)) {
        if (FindMarkerBackwards(pszCity, nLength, {SUFFIX_GUN, SUFFIX_SHIMA, SUFFIX_AGATA}, &nMarker) == 0)
            return 'h';
        return nMarker == SUFFIX_GUN ? 'e' : nMarker == SUFFIX_SHIMA ? 'f' : 'g';
    }
    return 'h';
}

// No separators between the texts: a record of city XY and town Z has the key of one of city X and town YZ.
std::string MakeSortKey(tagADDR const& addr) {
    std::string strKey;
    auto const Append = [&strKey](char const* psz) {
        if (psz != nullptr) strKey += psz;
    };
    int const nPref = addr.pszPref == nullptr ? -1 : FindPrefNumber(addr.pszPref);
    if (nPref >= 0) Append(pref_order[nPref]);
    Append(addr.pszPref);
    if (addr.nCityOrder != 0) strKey += CityClassLetter(addr.pszCity);
    Append(addr.pszCity);
    Append(addr.pszTown);
    Append(addr.pszArea);
    Append(addr.pszOffice);
    return strKey;
}

// std::string compares as unsigned bytes and, without NUL inside, exactly like strcmp.
bool tagADDR::operator<(tagADDR const& other) const {
    return MakeSortKey(*this) < MakeSortKey(other);
}

void SortAddrs(std::vector<tagADDR>& vAddr) {
    struct CKeyed {
        std::string strKey;
        size_t nPlace;
        bool operator<(CKeyed const& other) const {
            int const nOrder = strKey.compare(other.strKey);
            return nOrder != 0 ? nOrder < 0 : nPlace < other.nPlace;
        }
    };
    std::vector<CKeyed> vKeyed;
    vKeyed.reserve(vAddr.size());
    for (tagADDR const& addr : vAddr) vKeyed.push_back({MakeSortKey(addr), vKeyed.size()});
    std::sort(vKeyed.begin(), vKeyed.end());
    std::vector<tagADDR> vSorted;
    vSorted.reserve(vAddr.size());
    for (CKeyed const& keyed : vKeyed) vSorted.push_back(vAddr[keyed.nPlace]);
    vAddr.swap(vSorted);
}
