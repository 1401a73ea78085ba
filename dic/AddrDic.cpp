// AddrDic.cpp - the dictionary object: binding an image, the doors into its tables, entries as address records.
#include "dic/AddrDic.h"

#include "dic/LevelText.h"
#include "dic/SearchMemory.h"
#include "dic/UpwardWalk.h"

CAddrDic::CAddrDic() : szOffice{} {
#if defined(__i386__)
    // The object of the 32-bit library, its members as its callers know them.
    static_assert(sizeof(CAddrDic) == 1280);
    static_assert(offsetof(CAddrDic, pNodeTable) == 4 && offsetof(CAddrDic, pOfficeIndex) == 28);
    static_assert(offsetof(CAddrDic, szRefinePostCode) == 32 && offsetof(CAddrDic, szRefineAddr) == 40);
    static_assert(offsetof(CAddrDic, nSelPref) == 168 && offsetof(CAddrDic, vPrefList) == 184);
    static_assert(offsetof(CAddrDic, pszLastOffice) == 220 && offsetof(CAddrDic, szOffice) == 224);
    static_assert(offsetof(CAddrDic, nSortType) == 1224 && offsetof(CAddrDic, vRefineTree) == 1228);
#endif
    SetDictionary(nullptr);
}

CAddrDic::~CAddrDic() = default;

int CAddrDic::SetDictionary(unsigned char const* pDictionary) {
    std::memset(szRefinePostCode, 0, sizeof szRefinePostCode);
    std::memset(szRefineAddr, 0, sizeof szRefineAddr);
    nSelPref = nSelCity = nSelTown = nSelUnused = 0;
    pszLastOffice = nullptr;
    EmptyLists();
    nSortType = SORT_DICTIONARY;
    vRefineTree.clear();
    vPrefPnt.clear();
    vCityPnt.clear();
    vTownPnt.clear();
    pSearchMemory.reset();

    pImage = pDictionary;
    auto const Table = [pDictionary](tagHEADERWORD nWord) -> void const* {
        return pDictionary == nullptr ? nullptr : pDictionary + HeaderWord(pDictionary, nWord);
    };
    pNodeTable = static_cast<tagADDRNODE const*>(Table(HDR_NODE_TABLE));
    pInfoTable = static_cast<tagADDRINFO const*>(Table(HDR_INFO_TABLE));
    pszStrings = static_cast<char const*>(Table(HDR_STRING_AREA));
    pCityIndex = static_cast<uint32_t const*>(Table(HDR_CITY_INDEX));
    pFifthTable = Table(HDR_FIFTH_TABLE);
    pSixthTable = Table(HDR_SIXTH_TABLE);
    pOfficeIndex = static_cast<uint32_t const*>(Table(HDR_OFFICE_INDEX));
    return 1;
}

unsigned char const* CAddrDic::GetDicPointer() const {
    return pImage;
}

char const* CAddrDic::GetStrings() const {
    return pszStrings;
}

// The counts are read from the image each time, so that they are always those of the bound image.
char const* CAddrDic::GetString(unsigned long nOffset) const {
    return pImage != nullptr && nOffset < HeaderWord(pImage, HDR_STRING_SIZE) ? pszStrings + nOffset : nullptr;
}

tagADDRNODE const* CAddrDic::GetAddrNode(unsigned long nIndex) const {
    return pImage != nullptr && nIndex < HeaderWord(pImage, HDR_NODE_COUNT) ? pNodeTable + nIndex : nullptr;
}

tagADDRINFO const* CAddrDic::GetAddrInfo(unsigned long nIndex) const {
    return pImage != nullptr && nIndex < HeaderWord(pImage, HDR_INFO_COUNT) ? pInfoTable + nIndex : nullptr;
}

int CAddrDic::GetAddrPtr(tagADDRINFO const* pInfo, tagADDRNODE const** ppPref, tagADDRNODE const** ppCity,
                         tagADDRNODE const** ppTown) {
    if (pInfo == nullptr || ppPref == nullptr || ppCity == nullptr || ppTown == nullptr) return 0;
    *ppPref = *ppCity = *ppTown = nullptr;
    if ((pInfo->nNode & ADDRINFO_SUPERSEDED) != 0) return 0;
    CUpwardWalk walk(CImageView(*this), pInfo->nNode);
    if (walk.Node() == nullptr) return 0;
    *ppTown = walk.Node();
    // From the parent on: the deepest node is the town, whatever its level, and is nothing else besides.
    for (walk.Next(); walk.Node() != nullptr; walk.Next()) {
        if (walk.Node()->nLevel == LEVEL_CITY) *ppCity = walk.Node();
        if (walk.Node()->nLevel == LEVEL_PREF) *ppPref = walk.Node();
    }
    return 1;
}

tagADDRNODE const* CAddrDic::GetCityNode(tagADDRINFO const* pInfo) {
    if (pInfo == nullptr) return nullptr;
    CUpwardWalk walk(CImageView(*this), pInfo->nNode & ~ADDRINFO_SUPERSEDED);
    while (walk.Node() != nullptr && walk.Node()->nLevel != LEVEL_CITY) walk.Next();
    return walk.Node();
}

int CAddrDic::GetAddr(tagADDRINFO const* pInfo, tagADDR* pAddr) {
    if (pInfo == nullptr || pAddr == nullptr) return 0;
    StoreEntry(CImageView(*this), *pInfo, *pAddr);
    return 1;
}

void CAddrDic::SetSortType(unsigned short nType) {
    nSortType = nType;
}

char const* CAddrDic::GetLastInc() {
    if (pszLastOffice == nullptr || pImage == nullptr) return nullptr;
    if (pszLastOffice < pszStrings || pszLastOffice >= pszStrings + HeaderWord(pImage, HDR_STRING_SIZE))
        return nullptr;
    return pszLastOffice;
}
