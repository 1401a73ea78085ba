// CPlainDic - the queries of CAddrDic a second time, each in the steps in which it is described: one record after the
// other, whole texts compared by strcmp and strncmp, nothing kept between two calls but what callers can see.
//
//   CPlainDic plain;
//   plain.SetDictionary(pImage);                   // the image that the library's object has
//   long nEntry = plain.SearchPostCode7("100");    // what the library has to answer
//
// Members are named as those of CAddrDic, so that one template asks both. Answers lead into the same image and the
// same caller's text: they are equal when their pointers are. Of the library only the code page is called.
//
// Damage    A text that begins outside the string area or does not end inside is none. Where texts are only compared,
//           the end of the area counts as a NUL, and a text outside is below all others and equal to none. What lies
//           behind the node table is not there. A way up ends with 256 nodes or as many as there are; ways down as
//           CAddrDic::recTraceNode tells.
#ifndef QEADRS_TESTS_LIBRARY_PLAINDIC_H
#define QEADRS_TESTS_LIBRARY_PLAINDIC_H

#include "dic/Addr.h"
#include "dic/AddrNode.h"

#include <string>
#include <vector>

class CPlainDic {
  public:
    int SetDictionary(unsigned char const* pDictionary);

    tagADDRNODE const* GetAddrNode(unsigned long nIndex) const;
    tagADDRINFO const* GetAddrInfo(unsigned long nIndex) const;
    int GetAddrPtr(tagADDRINFO const* pInfo, tagADDRNODE const** ppPref, tagADDRNODE const** ppCity,
                   tagADDRNODE const** ppTown) const;
    tagADDRNODE const* GetCityNode(tagADDRINFO const* pInfo) const;
    int GetAddr(tagADDRINFO const* pInfo, tagADDR* pAddr) const;
    void SetSortType(unsigned short nType) { nSortType = nType; }
    char const* GetLastInc() const { return pszLastOffice; }

    void MakePostCode(char* pszText) const;
    long SearchPostCode7(char const* pszCode) const;
    int GetAddrFromPostCode7(char const* pszCode, std::vector<tagADDR>& vAddr);
    int GetAddrFromPostCode5(char const* pszCode, std::vector<tagADDR>& vAddr);

    int SeparatePref(char const** ppszText, tagADDR& addr) const;
    int SeparateCity(char const** ppszText, unsigned long nPref, tagADDR& addr) const;
    int SeparateTown(char const** ppszText, unsigned long nCity, tagADDR& addr) const;
    bool DivideAddr(char const* pszText, tagADDR* pAddr) const;
    uint32_t GetLatestAddr(char const* pszText, tagADDR& addr) const;
    int GetPostCodeFromAddr(char const* pszAddress, char const* pszOrgName, tagADDR& addr) const;
    int SearchInc(char const* pszName) const;
    int GetAddrFromAddrPart(char const* pszText, std::vector<tagADDR>& vAddr) const;
    void GetPrefFromPart(char const* pszText, std::vector<tagADDR>& vAddr) const;
    void GetCityFromPart(char const* pszText, std::vector<tagADDR>& vAddr) const;
    int SearchCity(char const* pszText) const;
    void recTraceNode(tagADDRNODE const* pNode, tagADDR const& addr, std::vector<tagADDR>& vAddr) const;
    int SearchCity2(char const* pszAddr, std::vector<tagADDRNODE const*>& vNode) const;

    // Whether the first record stands before the second.
    bool IsBefore(tagADDR const& left, tagADDR const& right) const;

    std::vector<tagADDRNODE const*> vCityList;
    char const* pszLastOffice = nullptr;
    std::string strOffice;
    unsigned short nSortType = 2;

  private:
    struct CWalk; // what one walk down has met

    uint32_t Word(unsigned nWord) const;
    char const* Area() const;
    char const* String(uint64_t nOffset) const;
    char const* Behind(uint64_t nOffset, unsigned nSkip) const;
    int Order(uint64_t nOffset, char const* pszText) const;
    uint32_t Index(unsigned nTable, uint32_t nPos) const;
    int SearchIndex(unsigned nTable, unsigned nCount, char const* pszText, bool bUnreadableHits) const;
    bool Begins(unsigned nTable, unsigned nCount, uint64_t nPos, char const* pszText) const;
    std::vector<tagADDRNODE const*> Way(uint32_t nNode) const;
    std::vector<tagADDRNODE const*> Way(tagADDRNODE const& node) const;
    void StoreLevel(unsigned nLevel, tagADDRNODE const& node, tagADDR& addr) const;
    void StoreCodes(tagADDRNODE const& node, tagADDR& addr) const;
    bool IsCurrent(tagADDRNODE const& node) const;
    void Trace(tagADDRNODE const& node, tagADDR addr, CWalk& walk, std::vector<tagADDR>* pAddr,
               std::vector<tagADDRNODE const*>* pNode) const;
    void Collect(tagADDRNODE const& node, CWalk& walk, std::vector<tagADDRNODE const*>& vNode) const;

    unsigned char const* pImage = nullptr;
};

// The kind of a city-level name and the length of its front part.
unsigned short PlainShikugunType(char const* pszName, unsigned short* pnType);

// What records are sorted by.
std::string PlainKey(tagADDR const& addr);

#endif
