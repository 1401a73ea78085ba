// Peek.h - the private state of CAddrDic, for tests of what no operation reads, and its layout in 32 bits.
#ifndef QEADRS_TESTS_SUPPORT_PEEK_H
#define QEADRS_TESTS_SUPPORT_PEEK_H

#include "dic/AddrDic.h"

struct CAddrDicPeek {
    using CNodeList = std::vector<tagADDRNODE const*>;

    explicit CAddrDicPeek(CAddrDic& owner)
        : pImage(owner.pImage),
          pNodeTable(owner.pNodeTable),
          pInfoTable(owner.pInfoTable),
          pszStrings(owner.pszStrings),
          pCityIndex(owner.pCityIndex),
          pFifthTable(owner.pFifthTable),
          pSixthTable(owner.pSixthTable),
          pOfficeIndex(owner.pOfficeIndex),
          szRefinePostCode(owner.szRefinePostCode),
          szRefineAddr(owner.szRefineAddr),
          nSelPref(owner.nSelPref),
          nSelCity(owner.nSelCity),
          nSelTown(owner.nSelTown),
          nSelUnused(owner.nSelUnused),
          vPrefList(owner.vPrefList),
          vCityList(owner.vCityList),
          vTownList(owner.vTownList),
          pszLastOffice(owner.pszLastOffice),
          szOffice(owner.szOffice),
          nSortType(owner.nSortType),
          vRefineTree(owner.vRefineTree),
          vPrefPnt(owner.vPrefPnt),
          vCityPnt(owner.vCityPnt),
          vTownPnt(owner.vTownPnt) {}

    unsigned char const*& pImage;
    tagADDRNODE const*& pNodeTable;
    tagADDRINFO const*& pInfoTable;
    char const*& pszStrings;
    uint32_t const*& pCityIndex;
    void const*& pFifthTable;
    void const*& pSixthTable;
    uint32_t const*& pOfficeIndex;
    char (&szRefinePostCode)[8];
    char (&szRefineAddr)[128];
    int& nSelPref;
    int& nSelCity;
    int& nSelTown;
    int& nSelUnused;
    CNodeList& vPrefList;
    CNodeList& vCityList;
    CNodeList& vTownList;
    char const*& pszLastOffice;
    char (&szOffice)[1000];
    unsigned short& nSortType;
    std::vector<tagADDRPNT>& vRefineTree;
    std::vector<tagADDRPNT>& vPrefPnt;
    std::vector<tagADDRPNT>& vCityPnt;
    std::vector<tagADDRPNT>& vTownPnt;

#if defined(__i386__)
    static_assert(offsetof(CAddrDic, pImage) == 0 && offsetof(CAddrDic, pNodeTable) == 4);
    static_assert(offsetof(CAddrDic, pInfoTable) == 8 && offsetof(CAddrDic, pszStrings) == 12);
    static_assert(offsetof(CAddrDic, pCityIndex) == 16 && offsetof(CAddrDic, pFifthTable) == 20);
    static_assert(offsetof(CAddrDic, pSixthTable) == 24 && offsetof(CAddrDic, pOfficeIndex) == 28);
    static_assert(offsetof(CAddrDic, szRefinePostCode) == 32 && offsetof(CAddrDic, szRefineAddr) == 40);
    static_assert(offsetof(CAddrDic, nSelPref) == 168 && offsetof(CAddrDic, nSelCity) == 172);
    static_assert(offsetof(CAddrDic, nSelTown) == 176 && offsetof(CAddrDic, nSelUnused) == 180);
    static_assert(offsetof(CAddrDic, vPrefList) == 184 && offsetof(CAddrDic, vCityList) == 196);
    static_assert(offsetof(CAddrDic, vTownList) == 208 && offsetof(CAddrDic, pszLastOffice) == 220);
    static_assert(offsetof(CAddrDic, szOffice) == 224 && offsetof(CAddrDic, nSortType) == 1224);
    static_assert(offsetof(CAddrDic, vRefineTree) == 1228 && offsetof(CAddrDic, vPrefPnt) == 1240);
    static_assert(offsetof(CAddrDic, vCityPnt) == 1252 && offsetof(CAddrDic, vTownPnt) == 1264);
#endif
};

#endif
