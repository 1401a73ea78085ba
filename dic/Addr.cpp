// Addr.cpp - the order of address records.
#include "dic/Addr.h"

#include "dic/AddrDic.h"
#include "dic/AddrKey.h"
#include "dic/PrefRows.h"
#include "dic/Suffix.h"
#include "dic/TextSort.h"

#include <algorithm>
#include <memory>

char const suffix_table[SUFFIX_COUNT][4] = {"市", "区", "町", "郡", "島", "村", "庁"};

namespace {

constexpr CPrefRows prefRows;
static_assert(prefRows.nRows == PREF_ORDER_ROWS, "two names have the same number: take another factor");

} // namespace

int FindPrefNumber(char const* pszPref) {
    for (size_t n = 0; n < PREF_HASH_BYTES; ++n)
        if (pszPref[n] == '\0') return -1;
    int const nRow = prefRows.vRow[PrefHash(pszPref)] - 1;
    return nRow >= 0 && std::strcmp(pref_order[nRow] + PREF_ORDER_NAME, pszPref) == 0 ? nRow : -1;
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

namespace {

// The texts that make up the record's key, one after another. No separators between them: a record of city XY and town
// Z has the key of one of city X and town YZ.
template <typename FTake>
void ForEachKeyText(tagADDR const& addr, FTake const& Take) {
    if (addr.pszPref != nullptr) {
        int const nPref = FindPrefNumber(addr.pszPref);
        if (nPref >= 0) Take(pref_order[nPref]);
        Take(addr.pszPref);
    }
    if (addr.nCityOrder != 0) {
        char const szClass[] = {CityClassLetter(addr.pszCity), '\0'};
        Take(szClass);
    }
    for (char const* psz : {addr.pszCity, addr.pszTown, addr.pszArea, addr.pszOffice})
        if (psz != nullptr) Take(psz);
}

// Room for a key in words, its NUL included. Several texts may be more than 32 bits count.
uint64_t KeyWords(tagADDR const& addr) {
    uint64_t nLength = 0;
    ForEachKeyText(addr, [&nLength](char const* psz) { nLength += std::strlen(psz); });
    return nLength / WORD_BYTES + 1;
}

} // namespace

std::string MakeSortKey(tagADDR const& addr) {
    std::string strKey;
    ForEachKeyText(addr, [&strKey](char const* psz) { strKey += psz; });
    return strKey;
}

// std::string compares as unsigned bytes and, without NUL inside, exactly like strcmp.
bool tagADDR::operator<(tagADDR const& other) const {
    return MakeSortKey(*this) < MakeSortKey(other);
}

void SortAddrs(std::vector<tagADDR>& vAddr) {
    if (vAddr.size() < 2) return;
    // All keys in one block, each of whole words. The names of a damaged dictionary may all be the same long text.
    uint64_t nWords = 0;
    for (tagADDR const& addr : vAddr) nWords += KeyWords(addr);
    size_t const nBytes = static_cast<size_t>(std::min<uint64_t>(nWords * WORD_BYTES, SIZE_MAX)); // which nobody has
    std::unique_ptr<char[]> const pKeys(new char[nBytes]);
    std::vector<CTextItem> vItem;
    vItem.reserve(vAddr.size());
    char* psz = pKeys.get();
    for (tagADDR const& addr : vAddr) {
        char const* const pszKey = psz;
        ForEachKeyText(addr, [&psz](char const* pszText) { psz = stpcpy(psz, pszText); });
        vItem.push_back({0, pszKey, vItem.size()});
        *psz++ = '\0'; // also when there is no text at all
        while (static_cast<size_t>(psz - pszKey) % WORD_BYTES != 0) *psz++ = '\0';
    }
    SortTexts(vItem.data(), vItem.data() + vItem.size());
    PutInOrder(vItem.data(), vItem.size(), vAddr.data());
}
