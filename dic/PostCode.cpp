// PostCode.cpp - postal-code lookup: from a code in any spelling to the addresses filed under it.
#include "dic/AddrDic.h"
#include "dic/AddrKey.h"
#include "dic/ImageHeader.h"
#include "dic/ImageText.h"
#include "platform/Win32Compat.h"

#include <string>

namespace {

// Entries that one old-code lookup examines. The dictionary keeps the entries of an old code near the 7-digit codes
// that begin with it, so that this bound is generous; it is what a caller waits for at most.
constexpr unsigned long OLD_CODE_SCAN = 10000;

char const NO_OFFICE[] = "会社名なし";

// "?" and "*" pass the normalisation but match only themselves.
bool IsCodeCharacter(unsigned c) {
    return (c >= '0' && c <= '9') || c == '?' || c == '*';
}

} // namespace

// The text is shortened in place: nothing is ever written beyond what has been read.
void CAddrDic::MakePostCode(char* pszText) {
    if (pszText == nullptr) return;
    char* pszOut = pszText;
    for (char const* p = pszText; *p != '\0';) {
        unsigned const c = static_cast<unsigned char>(*p++);
        if (_mbbtype(static_cast<unsigned char>(c), 0) == _MBC_SINGLE) {
            if (IsCodeCharacter(c)) *pszOut++ = static_cast<char>(c);
            continue;
        }
        if (*p == '\0') break; // a first byte without its second
        unsigned const nPair = c << 8 | static_cast<unsigned char>(*p++);
        unsigned const nSingle = _mbctombb(nPair);
        if (nSingle != nPair && IsCodeCharacter(nSingle)) *pszOut++ = static_cast<char>(nSingle);
    }
    *pszOut = '\0';
}

// The probes are part of what callers can observe on an unsorted table: the first at (count - 1) / 2, then always the
// middle of what is left, rounded down. The ends are unsigned: below entry 0 the upper one wraps, and the probe that
// follows meets no entry.
long CAddrDic::SearchPostCode7(char const* pszCode) {
    if (pszCode == nullptr || *pszCode == '\0') return 0;
    CImageText const text(*this);
    size_t const nLength = std::strlen(pszCode);
    // Order of an entry's code against pszCode, as far as pszCode goes. A code outside the string area, which only a
    // damaged dictionary has, counts as empty.
    auto const Compare = [&](tagADDRINFO const* pInfo) {
        return text.ComparePrefix(GetString(pInfo->nCode), pszCode, nLength);
    };
    uint32_t nLow = 0;
    uint32_t nHigh = pImage == nullptr ? 0 : HeaderWord(pImage, HDR_INFO_COUNT) - 1;
    uint32_t nMiddle = nHigh / 2;
    for (;;) {
        tagADDRINFO const* const pInfo = GetAddrInfo(nMiddle);
        if (pInfo == nullptr) return -1;
        int const nOrder = Compare(pInfo);
        if (nOrder == 0) break;
        if (nOrder > 0)
            nHigh = nMiddle - 1;
        else
            nLow = nMiddle + 1;
        if (nLow > nHigh) return -1;
        nMiddle = static_cast<uint32_t>((static_cast<uint64_t>(nLow) + nHigh) / 2);
    }
    while (nMiddle > 0 && Compare(GetAddrInfo(nMiddle - 1)) == 0) --nMiddle;
    return static_cast<long>(nMiddle);
}

int CAddrDic::GetAddrFromPostCode7(char const* pszCode, std::vector<tagADDR>& vAddr) {
    if (pszCode == nullptr || *pszCode == '\0') return 0;
    std::string strCode = pszCode;
    MakePostCode(strCode.data());
    strCode.resize(std::strlen(strCode.c_str()));
    if (strCode.empty()) return 0;
    long const nStart = SearchPostCode7(strCode.c_str());
    if (nStart < 0) return 0;

    vCityList.clear();
    pszLastOffice = nullptr;
    CImageText const text(*this);
    for (unsigned long nIndex = static_cast<unsigned long>(nStart);; ++nIndex) {
        tagADDRINFO const* const pInfo = GetAddrInfo(nIndex);
        if (pInfo == nullptr || text.ComparePrefix(GetString(pInfo->nCode), strCode.c_str(), strCode.size()) != 0)
            break;
        tagADDR addr(0);
        GetAddr(pInfo, &addr);
        if (addr.pszTown == nullptr) continue;
        addr.pListCity = GetCityNode(pInfo);
        if (addr.pListCity == nullptr) continue;
        if (addr.pszOffice != nullptr) pszLastOffice = addr.pszOffice;
        vAddr.push_back(addr);
    }
    if (nSortType == SORT_ADDR) SortAddrs(vAddr);
    for (tagADDR const& addr : vAddr)
        if (addr.pListCity != nullptr) vCityList.push_back(addr.pListCity);
    KeepOfficeText();
    return 1;
}

// The copy that stays readable after the image is gone; a longer name is cut to the buffer.
void CAddrDic::KeepOfficeText() {
    char const* const psz = pszLastOffice != nullptr ? pszLastOffice : NO_OFFICE;
    size_t const nLength = strnlen(psz, sizeof szOffice - 1);
    std::memcpy(szOffice, psz, nLength);
    szOffice[nLength] = '\0';
}

int CAddrDic::GetAddrFromPostCode5(char const* pszCode, std::vector<tagADDR>& vAddr) {
    if (pszCode == nullptr) return 0;
    long const nStart = SearchPostCode7(pszCode);
    if (nStart < 0) return 0;
    vCityList.clear();
    CImageText const text(*this);
    unsigned long const nInfo = pImage == nullptr ? 0 : HeaderWord(pImage, HDR_INFO_COUNT);
    unsigned long const nFirst = static_cast<unsigned long>(nStart);
    // The matches need not stand side by side, so the scan does not stop at the first entry that differs.
    for (unsigned long nIndex = nFirst; nIndex < nInfo && nIndex - nFirst < OLD_CODE_SCAN; ++nIndex) {
        tagADDRINFO const* const pInfo = GetAddrInfo(nIndex);
        if (pInfo == nullptr) return 0;
        char const* const pszOld = text.Behind(pInfo->nCode, 1);
        if (pszOld != nullptr && std::strcmp(pszOld, pszCode) != 0) continue;
        tagADDR addr(0);
        GetAddr(pInfo, &addr);
        tagADDRNODE const* const pCity = GetCityNode(pInfo);
        if (vCityList.empty() || vCityList.back() != pCity) vCityList.push_back(pCity);
        vAddr.push_back(addr);
    }
    return 1;
}

int CAddrDic::GetCityFromPostCode5(char const*, std::vector<tagADDR>&) {
    return 1;
}
