// Addr.h - tagADDR, the address result record of every lookup.
//
//   std::vector<tagADDR> vAddr;
//   dic.GetAddrFromPostCode7("1000001", vAddr);
//   if (!vAddr.empty()) puts(vAddr[0].pszTown);        // 千代田
//
// Texts are UTF-8, borrowed from the mapped dictionary: never owned, never freed, valid while it is mapped. Null
// means that the address has no such level. Records are copied by value.
#ifndef QEADRS_DIC_ADDR_H
#define QEADRS_DIC_ADDR_H

#include "dic/AddrNode.h"

#include <cstring>

struct tagADDR {
    char const* pszCodeExt;       // after GetAddr always ""; the old 5-digit code where address text was analysed
    char const* pszPostCode;      // 7-digit postal code
    char const* pszPref;          // prefecture
    char const* pszPrefKana;      //   and its reading
    char const* pszCity;          // city, ward, county or village
    char const* pszCityKana;      //
    char const* pszTown;          // town area; "" stands for the city as a whole
    char const* pszTownKana;      //
    char const* pszArea;          // level 3; after text analysis the unread rest of the caller's text
    char const* pszAreaKana;      //
    char const* pszOffice;        // organisation
    char const* pszOfficeKana;    //
    char const* pszBlock;         // level 4: building
    char const* pszBlockKana;     //
    char const* pszNote;          // level 6: floor; has no reading
    tagADDRNODE const* pListCity; // the node that the record stands for in a list
    tagADDRNODE const* pPrefNode; // nodes found by text analysis
    tagADDRNODE const* pCityNode; //
    tagADDRNODE const* pTownNode; //
    int nCityOrder;               // non-zero: the sort key holds the city's class letter

    // All fields zero, nCityOrder included: nKind is stored first and zeroed with the rest, and has no effect.
    tagADDR(int nKind) {
        nCityOrder = nKind;
        Clear();
    }
    tagADDR(tagADDR const&) = default;
    tagADDR& operator=(tagADDR const&) = default;

    // All fields zero. The barrier keeps the compiler from dropping stores into a record that is about to go.
    ~tagADDR() {
        Clear();
        asm volatile("" : : "r"(this) : "memory");
    }

    // strcpy that skips a null pszSrc and returns null then, else pszDst. REQUIRES: pszDst holds pszSrc and its NUL.
    char* StrCpy(char* pszDst, char const* pszSrc) const {
        return pszSrc != nullptr ? std::strcpy(pszDst, pszSrc) : nullptr;
    }

    // Conventional order: prefecture code, prefecture, class letter (when nCityOrder asks for it), city, town, area,
    // organisation, compared as one text by its bytes. Prefectures that pref_order lacks come last. The library does not
    // export it: hosts that want sorted answers set SORT_ADDR.
    bool operator<(tagADDR const& other) const;

  private:
    void Clear() {
        pszCodeExt = pszPostCode = pszPref = pszPrefKana = pszCity = pszCityKana = pszTown = pszTownKana = nullptr;
        pszArea = pszAreaKana = pszOffice = pszOfficeKana = pszBlock = pszBlockKana = pszNote = nullptr;
        pListCity = pPrefNode = pCityNode = pTownNode = nullptr;
        nCityOrder = 0;
    }
};
static_assert(std::is_standard_layout_v<tagADDR>);
static_assert(sizeof(tagADDR) == 20 * sizeof(void*), "twenty pointer-sized fields");
static_assert(offsetof(tagADDR, pszArea) == 8 * sizeof(void*) && offsetof(tagADDR, pszOffice) == 10 * sizeof(void*));
static_assert(offsetof(tagADDR, pListCity) == 15 * sizeof(void*) &&
              offsetof(tagADDR, nCityOrder) == 19 * sizeof(void*));
#if defined(__i386__)
static_assert(sizeof(tagADDR) == 80, "the record of the 32-bit library");
#endif

#endif
