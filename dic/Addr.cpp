// Addr.cpp - the order of address records.
#include "dic/Addr.h"

#include "dic/AddrDic.h"
#include "dic/AddrKey.h"
#include "dic/Suffix.h"

#include <cstdint>

char const suffix_table[SUFFIX_COUNT][4] = {"市", "区", "町", "郡", "島", "村", "庁"};

namespace {

// The prefecture's two-digit code, null when the table does not know the name.
char const* FindPrefCode(char const* pszPref) {
    for (auto const& row : pref_order)
        if (std::strcmp(row + PREF_ORDER_NAME, pszPref) == 0) return row;
    return nullptr;
}

} // namespace

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
    if (addr.pszPref != nullptr) Append(FindPrefCode(addr.pszPref));
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
