// PlainDic.cpp - every query in its own steps. What is slow here is meant to be: it can be read beside the
// description.
#include "tests/library/PlainDic.h"

#include "platform/Win32Compat.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr uint32_t NO_INDEX = 0xFFFFFFFF;
constexpr size_t MOST_LEVELS = 256; // of a way up, and of one down

// Words of the header.
enum {
    NODE_COUNT = 8,
    INFO_COUNT = 9,
    AREA_SIZE = 10,
    NODE_TABLE = 11,
    INFO_TABLE = 12,
    AREA = 13,
    CITY_INDEX = 14,
    OFFICE_INDEX = 17,
    PREF_COUNT = 18,
    FIRST_PREF = 19,
    CITY_COUNT = 20,
    FIRST_CITY = 21,
    TOWN_COUNT = 22,
    FIRST_TOWN = 23,
    OFFICE_COUNT = 26
};

char const* const LEGAL_FORMS[] = {"株式会社",     "（株）",       "有限会社", "（有）",       "財団法人",
                                   "（財）",       "社団法人",     "（社）",   "学校法人",     "特定医療法人財団",
                                   "医療法人財団", "医療法人社団", "医療法人", "社会福祉法人", "独立行政法人"};

// In the order of their numbers.
char const* const PREFS[] = {
    "北海道", "青森県", "岩手県", "宮城県",   "秋田県", "山形県",   "福島県", "茨城県", "栃木県", "群馬県",
    "埼玉県", "千葉県", "東京都", "神奈川県", "新潟県", "富山県",   "石川県", "福井県", "山梨県", "長野県",
    "岐阜県", "静岡県", "愛知県", "三重県",   "滋賀県", "京都府",   "大阪府", "兵庫県", "奈良県", "和歌山県",
    "鳥取県", "島根県", "岡山県", "広島県",   "山口県", "徳島県",   "香川県", "愛媛県", "高知県", "福岡県",
    "佐賀県", "長崎県", "熊本県", "大分県",   "宮崎県", "鹿児島県", "沖縄県",
};

bool BeginsWith(char const* pszText, char const* pszHead) {
    return std::strncmp(pszText, pszHead, std::strlen(pszHead)) == 0;
}

bool IsSuffix(char const* p, char const* pszSuffix) {
    return p[0] == pszSuffix[0] && p[1] == pszSuffix[1];
}

// Which of the markers stands at the last possible place, and where; 0 when there is none.
size_t LastMarker(char const* pszName, std::vector<char const*> const& vMarker, char const** ppszFound) {
    for (long p = static_cast<long>(std::strlen(pszName)) - 6; p >= 2; p -= 2)
        for (char const* pszMarker : vMarker)
            if (IsSuffix(pszName + p, pszMarker)) {
                *ppszFound = pszMarker;
                return static_cast<size_t>(p);
            }
    return 0;
}

void EraseBlank(char* pszText) {
    std::string strKept;
    for (size_t n = 0; pszText[n] != '\0';) {
        if (IsSuffix(pszText + n, "　")) {
            n += 2;
            continue;
        }
        if (pszText[n] != ' ' && pszText[n] != ',') strKept += pszText[n];
        ++n;
    }
    std::strcpy(pszText, strKept.c_str());
}

void RemoveLegalForm(char* pszName) {
    size_t const nLength = std::strlen(pszName);
    for (char const* pszWord : LEGAL_FORMS) {
        size_t const nWord = std::strlen(pszWord);
        if (BeginsWith(pszName, pszWord)) {
            std::string const strRest = pszName + nWord;
            std::strcpy(pszName, strRest.c_str());
            return;
        }
        if (nLength > nWord && std::strcmp(pszName + nLength - nWord, pszWord) == 0) {
            pszName[nLength - nWord] = '\0';
            return;
        }
    }
}

char ClassLetter(char const* pszCity) {
    if (pszCity == nullptr) return 'a';
    size_t const nLength = std::strlen(pszCity);
    if (nLength < 2) return 'h';
    char const* const pszEnd = pszCity + nLength - 2;
    char const* pszFound = nullptr;
    if (IsSuffix(pszEnd, "市")) return 'a';
    if (IsSuffix(pszEnd, "区")) return LastMarker(pszCity, {"市"}, &pszFound) != 0 ? 'c' : 'b';
    if (IsSuffix(pszEnd, "町")) {
        if (LastMarker(pszCity, {"郡", "島"}, &pszFound) == 0) return 'h';
        return std::strcmp(pszFound, "郡") == 0 ? 'd' : 'f';
    }
    if (IsSuffix(pszEnd, "村")) {
        if (LastMarker(pszCity, {"郡", "島", "庁"}, &pszFound) == 0) return 'h';
        return std::strcmp(pszFound, "郡") == 0 ? 'e' : std::strcmp(pszFound, "島") == 0 ? 'f' : 'g';
    }
    return 'h';
}

} // namespace

unsigned short PlainShikugunType(char const* pszName, unsigned short* pnType) {
    if (pszName == nullptr || pnType == nullptr) return 0;
    size_t const nLength = std::strlen(pszName);
    if (nLength < 3) return 0;
    char const* const pszEnd = pszName + nLength - 2;
    char const* pszFound = nullptr;
    size_t p = 0;
    if (IsSuffix(pszEnd, "市")) {
        *pnType = 0;
        return 0;
    }
    if (IsSuffix(pszEnd, "区")) {
        p = LastMarker(pszName, {"市"}, &pszFound);
        *pnType = p == 0 ? 1 : 2;
    } else if (IsSuffix(pszEnd, "町")) {
        p = LastMarker(pszName, {"郡", "島"}, &pszFound);
        *pnType = p == 0 ? 7 : std::strcmp(pszFound, "郡") == 0 ? 3 : 5;
    } else if (IsSuffix(pszEnd, "村")) {
        p = LastMarker(pszName, {"郡", "島", "庁"}, &pszFound);
        *pnType = p == 0 ? 7 : std::strcmp(pszFound, "郡") == 0 ? 4 : std::strcmp(pszFound, "島") == 0 ? 5 : 6;
    } else {
        *pnType = 7;
    }
    return p == 0 ? 0 : static_cast<unsigned short>(p + 2);
}

std::string PlainKey(tagADDR const& addr) {
    std::string strKey;
    for (size_t n = 0; addr.pszPref != nullptr && n < std::size(PREFS); ++n)
        if (std::strcmp(PREFS[n], addr.pszPref) == 0) strKey = std::to_string(n / 10) + std::to_string(n % 10);
    if (addr.pszPref != nullptr) strKey += addr.pszPref;
    if (addr.nCityOrder != 0) strKey += ClassLetter(addr.pszCity);
    for (char const* psz : {addr.pszCity, addr.pszTown, addr.pszArea, addr.pszOffice})
        if (psz != nullptr) strKey += psz;
    return strKey;
}

bool CPlainDic::IsBefore(tagADDR const& left, tagADDR const& right) const {
    return std::strcmp(PlainKey(left).c_str(), PlainKey(right).c_str()) < 0;
}

// --- the image -----------------------------------------------------------------------------------------------------

int CPlainDic::SetDictionary(unsigned char const* pDictionary) {
    *this = CPlainDic();
    pImage = pDictionary;
    return 1;
}

uint32_t CPlainDic::Word(unsigned nWord) const {
    if (pImage == nullptr) return 0;
    uint32_t n;
    std::memcpy(&n, pImage + 4 * nWord, sizeof n);
    return n;
}

char const* CPlainDic::Area() const {
    return reinterpret_cast<char const*>(pImage) + Word(AREA);
}

char const* CPlainDic::String(uint64_t nOffset) const {
    if (nOffset >= Word(AREA_SIZE)) return nullptr;
    bool const bEnds = std::memchr(Area() + nOffset, '\0', static_cast<size_t>(Word(AREA_SIZE) - nOffset)) != nullptr;
    return bEnds ? Area() + nOffset : nullptr;
}

// The text nSkip bytes behind the end of the one at nOffset.
char const* CPlainDic::Behind(uint64_t nOffset, unsigned nSkip) const {
    char const* const psz = String(nOffset);
    return psz == nullptr ? nullptr : String(nOffset + std::strlen(psz) + nSkip);
}

int CPlainDic::Order(uint64_t nOffset, char const* pszText) const {
    if (nOffset >= Word(AREA_SIZE)) return -1;
    if (char const* const psz = String(nOffset)) return std::strncmp(psz, pszText, std::strlen(pszText));
    std::string const strRest(Area() + nOffset, static_cast<size_t>(Word(AREA_SIZE) - nOffset));
    return std::strncmp(strRest.c_str(), pszText, std::strlen(pszText));
}

tagADDRNODE const* CPlainDic::GetAddrNode(unsigned long nIndex) const {
    if (nIndex >= Word(NODE_COUNT)) return nullptr;
    return static_cast<tagADDRNODE const*>(static_cast<void const*>(pImage + Word(NODE_TABLE))) + nIndex;
}

tagADDRINFO const* CPlainDic::GetAddrInfo(unsigned long nIndex) const {
    if (nIndex >= Word(INFO_COUNT)) return nullptr;
    return static_cast<tagADDRINFO const*>(static_cast<void const*>(pImage + Word(INFO_TABLE))) + nIndex;
}

uint32_t CPlainDic::Index(unsigned nTable, uint32_t nPos) const {
    uint32_t n;
    std::memcpy(&n, pImage + Word(nTable) + size_t{4} * nPos, sizeof n);
    return n;
}

// The node and those above it.
std::vector<tagADDRNODE const*> CPlainDic::Way(tagADDRNODE const& node) const {
    std::vector<tagADDRNODE const*> vWay;
    size_t const nMost = std::min<size_t>(MOST_LEVELS, Word(NODE_COUNT));
    for (tagADDRNODE const* p = &node; p != nullptr && vWay.size() < nMost; p = GetAddrNode(p->nParent))
        vWay.push_back(p);
    return vWay;
}

std::vector<tagADDRNODE const*> CPlainDic::Way(uint32_t nNode) const {
    tagADDRNODE const* const pNode = GetAddrNode(nNode);
    return pNode == nullptr ? std::vector<tagADDRNODE const*>() : Way(*pNode);
}

void CPlainDic::StoreLevel(unsigned nLevel, tagADDRNODE const& node, tagADDR& addr) const {
    char const* const pszName = String(node.nName);
    char const* const pszKana = Behind(node.nName, 1);
    if (nLevel == 0) addr.pszPref = pszName;
    if (nLevel == 0) addr.pszPrefKana = pszKana;
    if (nLevel == 1) addr.pszCity = pszName;
    if (nLevel == 1) addr.pszCityKana = pszKana;
    if (nLevel == 2) addr.pszTown = pszName;
    if (nLevel == 2) addr.pszTownKana = pszKana;
    if (nLevel == 3) addr.pszArea = pszName;
    if (nLevel == 3) addr.pszAreaKana = pszKana;
    if (nLevel == 4) addr.pszBlock = pszName;
    if (nLevel == 4) addr.pszBlockKana = pszKana;
    if (nLevel == 6) addr.pszNote = pszName;
    if (nLevel == 7) addr.pszOffice = pszName;
    if (nLevel == 7) addr.pszOfficeKana = pszKana;
}

void CPlainDic::StoreCodes(tagADDRNODE const& node, tagADDR& addr) const {
    tagADDRINFO const* const pInfo = GetAddrInfo(node.nInfo);
    if (pInfo == nullptr) return;
    addr.pszPostCode = String(pInfo->nCode);
    addr.pszCodeExt = Behind(pInfo->nCode, 1);
}

// --- entries -------------------------------------------------------------------------------------------------------

int CPlainDic::GetAddrPtr(tagADDRINFO const* pInfo, tagADDRNODE const** ppPref, tagADDRNODE const** ppCity,
                          tagADDRNODE const** ppTown) const {
    if (pInfo == nullptr || ppPref == nullptr || ppCity == nullptr || ppTown == nullptr) return 0;
    *ppPref = *ppCity = *ppTown = nullptr;
    if (pInfo->nNode >= 0x80000000) return 0;
    std::vector<tagADDRNODE const*> const vWay = Way(pInfo->nNode);
    if (vWay.empty()) return 0;
    *ppTown = vWay[0];
    for (size_t n = 1; n < vWay.size(); ++n) {
        if (vWay[n]->nLevel == 1) *ppCity = vWay[n];
        if (vWay[n]->nLevel == 0) *ppPref = vWay[n];
    }
    return 1;
}

tagADDRNODE const* CPlainDic::GetCityNode(tagADDRINFO const* pInfo) const {
    if (pInfo == nullptr) return nullptr;
    for (tagADDRNODE const* pNode : Way(pInfo->nNode & 0x7FFFFFFF))
        if (pNode->nLevel == 1) return pNode;
    return nullptr;
}

int CPlainDic::GetAddr(tagADDRINFO const* pInfo, tagADDR* pAddr) const {
    if (pInfo == nullptr || pAddr == nullptr) return 0;
    pAddr->pszPostCode = String(pInfo->nCode);
    pAddr->pszCodeExt = Behind(pInfo->nCode, 0);
    for (tagADDRNODE const* pNode : Way(pInfo->nNode & 0x7FFFFFFF)) StoreLevel(pNode->nLevel, *pNode, *pAddr);
    return 1;
}

// --- postal codes --------------------------------------------------------------------------------------------------

void CPlainDic::MakePostCode(char* pszText) const {
    std::string const strText = pszText;
    std::string strKept;
    for (size_t n = 0; n < strText.size();) {
        unsigned c = static_cast<unsigned char>(strText[n]);
        bool const bSingle = _mbbtype(static_cast<unsigned char>(c), 0) == 0;
        if (!bSingle) {
            unsigned const nPair = c * 256 + static_cast<unsigned char>(strText.c_str()[n + 1]);
            c = _mbctombb(nPair);
            if (c == nPair) c = 0;
        }
        if ((c >= '0' && c <= '9') || c == '?' || c == '*') strKept += static_cast<char>(c);
        n += bSingle ? 1 : 2;
    }
    std::strcpy(pszText, strKept.c_str());
}

long CPlainDic::SearchPostCode7(char const* pszCode) const {
    if (pszCode == nullptr || *pszCode == '\0') return 0;
    uint32_t nLow = 0;
    uint32_t nHigh = Word(INFO_COUNT) - 1;
    uint32_t nMiddle = nHigh / 2;
    for (;;) {
        tagADDRINFO const* const pInfo = GetAddrInfo(nMiddle);
        if (pInfo == nullptr) return -1;
        int const nOrder = Order(pInfo->nCode, pszCode);
        if (nOrder == 0) break;
        if (nOrder > 0) nHigh = nMiddle - 1;
        if (nOrder < 0) nLow = nMiddle + 1;
        if (nLow > nHigh) return -1;
        nMiddle = static_cast<uint32_t>((uint64_t{nLow} + nHigh) / 2);
    }
    while (nMiddle > 0 && Order(GetAddrInfo(nMiddle - 1)->nCode, pszCode) == 0) --nMiddle;
    return static_cast<long>(nMiddle);
}

int CPlainDic::GetAddrFromPostCode7(char const* pszCode, std::vector<tagADDR>& vAddr) {
    if (pszCode == nullptr || *pszCode == '\0') return 0;
    std::vector<char> vCode(pszCode, pszCode + std::strlen(pszCode) + 1);
    MakePostCode(vCode.data());
    if (vCode[0] == '\0') return 0;
    long const nStart = SearchPostCode7(vCode.data());
    if (nStart == -1) return 0;
    vCityList.clear();
    pszLastOffice = nullptr;
    for (auto n = static_cast<unsigned long>(nStart);; ++n) {
        tagADDRINFO const* const pInfo = GetAddrInfo(n);
        if (pInfo == nullptr || Order(pInfo->nCode, vCode.data()) != 0) break;
        tagADDR addr(0);
        GetAddr(pInfo, &addr);
        if (addr.pszTown == nullptr) continue;
        addr.pListCity = GetCityNode(pInfo);
        if (addr.pListCity == nullptr) continue;
        if (addr.pszOffice != nullptr) pszLastOffice = addr.pszOffice;
        vAddr.push_back(addr);
    }
    // Records of equal keys keep their order.
    if (nSortType == 9)
        std::stable_sort(vAddr.begin(), vAddr.end(),
                         [this](tagADDR const& left, tagADDR const& right) { return IsBefore(left, right); });
    for (tagADDR const& addr : vAddr)
        if (addr.pListCity != nullptr) vCityList.push_back(addr.pListCity);
    strOffice = pszLastOffice == nullptr ? "会社名なし" : pszLastOffice;
    if (strOffice.size() > 999) strOffice.resize(999);
    return 1;
}

int CPlainDic::GetAddrFromPostCode5(char const* pszCode, std::vector<tagADDR>& vAddr) {
    if (pszCode == nullptr) return 0;
    long const nStart = SearchPostCode7(pszCode);
    if (nStart == -1) return 0;
    vCityList.clear();
    for (long n = nStart; n < static_cast<long>(Word(INFO_COUNT)) && n < nStart + 10000; ++n) {
        tagADDRINFO const* const pInfo = GetAddrInfo(static_cast<unsigned long>(n));
        if (pInfo == nullptr) return 0;
        char const* const pszOld = Behind(pInfo->nCode, 1);
        if (pszOld != nullptr && std::strcmp(pszOld, pszCode) != 0) continue;
        tagADDR addr(0);
        GetAddr(pInfo, &addr);
        tagADDRNODE const* const pCity = GetCityNode(pInfo);
        if (vCityList.empty() || vCityList.back() != pCity) vCityList.push_back(pCity);
        vAddr.push_back(addr);
    }
    return 1;
}

// --- separation ----------------------------------------------------------------------------------------------------

int CPlainDic::SeparatePref(char const** ppszText, tagADDR& addr) const {
    if (ppszText == nullptr || *ppszText == nullptr) return -1;
    for (uint64_t n = 0; n < Word(PREF_COUNT); ++n) {
        tagADDRNODE const* const pNode = GetAddrNode(static_cast<unsigned long>(Word(FIRST_PREF) + n));
        char const* const pszName = pNode == nullptr ? nullptr : String(pNode->nName);
        if (pszName == nullptr) return -1;
        if (!BeginsWith(*ppszText, pszName)) continue;
        StoreLevel(0, *pNode, addr);
        addr.pPrefNode = pNode;
        *ppszText += std::strlen(pszName);
        return static_cast<int>(Word(FIRST_PREF) + n);
    }
    return -1;
}

int CPlainDic::SeparateCity(char const** ppszText, unsigned long nPref, tagADDR& addr) const {
    if (ppszText == nullptr || *ppszText == nullptr) return -1;
    tagADDRNODE const* const pPref = GetAddrNode(nPref);
    uint64_t const nFirst = pPref == nullptr ? Word(FIRST_CITY) : pPref->nFirstChild;
    uint64_t const nCount = pPref == nullptr ? Word(CITY_COUNT) : pPref->nChildCount;
    tagADDRNODE const* pBest = nullptr;
    size_t nBestLength = 0;
    uint64_t nBest = 0;
    for (uint64_t n = nFirst; n < nFirst + nCount; ++n) {
        tagADDRNODE const* const pNode = GetAddrNode(static_cast<unsigned long>(n));
        if (pNode == nullptr) break;
        char const* const pszName = String(pNode->nName);
        if (pszName == nullptr || *pszName == '\0') continue;
        size_t nLength = 0;
        if (BeginsWith(*ppszText, pszName)) {
            nLength = std::strlen(pszName);
        } else {
            unsigned short nType = 7;
            size_t const nFront = PlainShikugunType(pszName, &nType);
            bool const bFront = nFront != 0 && std::strncmp(*ppszText, pszName, nFront) == 0;
            bool const bRest = nFront != 0 && BeginsWith(*ppszText, pszName + nFront);
            if (bFront || bRest) nLength = nFront;
        }
        if (nLength <= nBestLength) continue;
        pBest = pNode;
        nBest = n;
        nBestLength = nLength;
    }
    if (pBest == nullptr) return -1;
    StoreLevel(1, *pBest, addr);
    addr.pCityNode = pBest;
    StoreCodes(*pBest, addr);
    // A front part may be longer than a text that holds only what follows it.
    *ppszText += std::min(nBestLength, std::strlen(*ppszText));
    return static_cast<int>(nBest);
}

int CPlainDic::SeparateTown(char const** ppszText, unsigned long nCity, tagADDR& addr) const {
    if (ppszText == nullptr || *ppszText == nullptr) return -1;
    tagADDRNODE const* const pCity = GetAddrNode(nCity);
    uint64_t const nFirst = pCity == nullptr ? Word(FIRST_TOWN) : pCity->nFirstChild;
    uint64_t const nCount = pCity == nullptr ? Word(TOWN_COUNT) : pCity->nChildCount;
    for (uint64_t n = nFirst; n < nFirst + nCount; ++n) {
        tagADDRNODE const* const pNode = GetAddrNode(static_cast<unsigned long>(n));
        if (pNode == nullptr) break; // and so are all behind it
        char const* const pszName = String(pNode->nName);
        if (pszName == nullptr || *pszName == '\0') continue;
        if (!BeginsWith(*ppszText, pszName)) continue;
        StoreLevel(2, *pNode, addr);
        addr.pTownNode = pNode;
        StoreCodes(*pNode, addr);
        *ppszText += std::strlen(pszName);
        addr.pszArea = *ppszText;
        return static_cast<int>(n);
    }
    return -1;
}

bool CPlainDic::DivideAddr(char const* pszText, tagADDR* pAddr) const {
    if (pszText == nullptr || pAddr == nullptr) return false;
    int const nPref = SeparatePref(&pszText, *pAddr);
    int const nCity = SeparateCity(&pszText, static_cast<unsigned long>(nPref), *pAddr);
    int const nTown = SeparateTown(&pszText, static_cast<unsigned long>(nCity), *pAddr);
    if (nTown == -1) pAddr->pszArea = pszText;
    return true;
}

uint32_t CPlainDic::GetLatestAddr(char const* pszText, tagADDR& addr) const {
    int const nPref = SeparatePref(&pszText, addr);
    int const nCity = SeparateCity(&pszText, static_cast<unsigned long>(nPref), addr);
    int const nTown = SeparateTown(&pszText, static_cast<unsigned long>(nCity), addr);
    tagADDRNODE const* const pTown = GetAddrNode(static_cast<unsigned long>(nTown));
    tagADDRINFO const* const pInfo = pTown == nullptr ? nullptr : GetAddrInfo(pTown->nInfo);
    if (pInfo == nullptr) return 0;
    if (pInfo->nNode < 0x80000000) return 1;
    char const* const pszOld = Behind(pInfo->nCode, 1);
    if (pszOld == nullptr) return 0;
    char const* const pSuccessor = pszOld + std::strlen(pszOld) + 1;
    if (Area() + Word(AREA_SIZE) - pSuccessor < 4) return 0;
    uint32_t nSuccessor;
    std::memcpy(&nSuccessor, pSuccessor, sizeof nSuccessor);
    if (GetAddrInfo(nSuccessor) == nullptr) return 0;
    tagADDR latest(0);
    GetAddr(GetAddrInfo(nSuccessor), &latest);
    addr.pszPref = latest.pszPref;
    addr.pszCity = latest.pszCity;
    addr.pszTown = latest.pszTown;
    return 1;
}

// --- indexes of names ----------------------------------------------------------------------------------------------

bool CPlainDic::Begins(unsigned nTable, unsigned nCount, uint64_t nPos, char const* pszText) const {
    if (nPos >= Word(nCount)) return false;
    tagADDRNODE const* const pNode = GetAddrNode(Index(nTable, static_cast<uint32_t>(nPos)));
    return pNode != nullptr && Order(pNode->nName, pszText) == 0;
}

int CPlainDic::SearchIndex(unsigned nTable, unsigned nCount, char const* pszText, bool bUnreadableHits) const {
    uint32_t nLow = 0;
    uint32_t nHigh = Word(nCount) - 1;
    uint32_t nProbe = nHigh / 2;
    for (;;) {
        if (nProbe >= Word(nCount)) return -1;
        tagADDRNODE const* const pNode = GetAddrNode(Index(nTable, nProbe));
        if (pNode == nullptr && bUnreadableHits) break;
        if (pNode == nullptr) return -1;
        if (pNode->nName >= Word(AREA_SIZE) && !bUnreadableHits) return -1;
        int const nOrder = Order(pNode->nName, pszText);
        if (nOrder == 0) break;
        if (nOrder > 0) nHigh = nProbe - 1;
        if (nOrder < 0) nLow = nProbe + 1;
        if (nLow > nHigh) return -1;
        nProbe = static_cast<uint32_t>((uint64_t{nLow} + nHigh) / 2);
    }
    while (nProbe > 0 && Begins(nTable, nCount, nProbe - 1, pszText)) --nProbe;
    return static_cast<int>(nProbe);
}

int CPlainDic::SearchInc(char const* pszName) const {
    if (pszName == nullptr || *pszName == '\0') return -1;
    EraseBlank(const_cast<char*>(pszName));
    RemoveLegalForm(const_cast<char*>(pszName));
    return SearchIndex(OFFICE_INDEX, OFFICE_COUNT, pszName, false);
}

int CPlainDic::GetPostCodeFromAddr(char const* pszAddress, char const* pszOrgName, tagADDR& addr) const {
    addr = tagADDR(0);
    int const nPref = SeparatePref(&pszAddress, addr);
    int const nCity = SeparateCity(&pszAddress, static_cast<unsigned long>(nPref), addr);
    SeparateTown(&pszAddress, static_cast<unsigned long>(nCity), addr);
    int const nStart = SearchInc(pszOrgName);
    if (nStart == -1) return 1;
    std::vector<tagADDR> vEntry;
    for (auto n = static_cast<uint32_t>(nStart); Begins(OFFICE_INDEX, OFFICE_COUNT, n, pszOrgName); ++n) {
        tagADDRNODE const* const pOffice = GetAddrNode(Index(OFFICE_INDEX, n));
        if (GetAddrInfo(pOffice->nInfo) == nullptr) return 0;
        tagADDR entry(0);
        StoreCodes(*pOffice, entry);
        for (tagADDRNODE const* pNode : Way(*pOffice))
            if (pNode->nLevel <= 3) StoreLevel(pNode->nLevel, *pNode, entry);
        vEntry.push_back(entry);
    }
    for (tagADDR const& entry : vEntry) {
        if (addr.pszPref == nullptr || entry.pszPref != addr.pszPref) continue;
        if (addr.pszCity == nullptr || entry.pszCity != addr.pszCity) continue;
        if (addr.pszTown == nullptr || entry.pszTown != addr.pszTown) continue;
        addr.pszPostCode = entry.pszPostCode;
        addr.pszCodeExt = entry.pszCodeExt;
        break;
    }
    return 1;
}

int CPlainDic::SearchCity(char const* pszText) const {
    if (pszText == nullptr) return -1;
    return SearchIndex(CITY_INDEX, CITY_COUNT, pszText, true);
}

// --- ways down -----------------------------------------------------------------------------------------------------

struct CPlainDic::CWalk {
    explicit CWalk(size_t nNodes) : nLeft(nNodes) {}
    size_t nLeft;
    std::vector<tagADDRNODE const*> vPath;
};

bool CPlainDic::IsCurrent(tagADDRNODE const& node) const {
    tagADDRINFO const* const pInfo = GetAddrInfo(node.nInfo);
    return pInfo != nullptr && pInfo->nNode < 0x80000000;
}

// Records of the current entries, or the nodes that have one.
void CPlainDic::Trace(tagADDRNODE const& node, tagADDR addr, CWalk& walk, std::vector<tagADDR>* pAddr,
                      std::vector<tagADDRNODE const*>* pNode) const {
    if (node.nFirstChild == NO_INDEX || node.nChildCount == 0 || walk.vPath.size() == MOST_LEVELS) return;
    walk.vPath.push_back(&node);
    for (uint64_t n = 0; n < node.nChildCount && walk.nLeft > 0; ++n) {
        tagADDRNODE const* const pChild = GetAddrNode(static_cast<unsigned long>(node.nFirstChild + n));
        if (pChild == nullptr) break; // and so are all behind it
        --walk.nLeft;
        if (std::find(walk.vPath.begin(), walk.vPath.end(), pChild) != walk.vPath.end()) continue;
        StoreLevel(pChild->nLevel, *pChild, addr);
        if (IsCurrent(*pChild)) {
            if (pAddr != nullptr) StoreCodes(*pChild, addr);
            if (pAddr != nullptr) pAddr->push_back(addr);
            if (pNode != nullptr) pNode->push_back(pChild);
        }
        Trace(*pChild, addr, walk, pAddr, pNode);
    }
    walk.vPath.pop_back();
}

void CPlainDic::Collect(tagADDRNODE const& node, CWalk& walk, std::vector<tagADDRNODE const*>& vNode) const {
    if (IsCurrent(node)) vNode.push_back(&node);
    Trace(node, tagADDR(0), walk, nullptr, &vNode);
}

void CPlainDic::recTraceNode(tagADDRNODE const* pNode, tagADDR const& addr, std::vector<tagADDR>& vAddr) const {
    CWalk walk(Word(NODE_COUNT));
    if (pNode != nullptr) Trace(*pNode, addr, walk, &vAddr, nullptr);
}

void CPlainDic::GetCityFromPart(char const* pszText, std::vector<tagADDR>& vAddr) const {
    int const nStart = SearchCity(pszText);
    if (nStart == -1) return;
    CWalk walk(Word(NODE_COUNT));
    for (auto n = static_cast<uint32_t>(nStart); Begins(CITY_INDEX, CITY_COUNT, n, pszText); ++n) {
        tagADDRNODE const* const pCity = GetAddrNode(Index(CITY_INDEX, n));
        tagADDR addr(0);
        StoreLevel(1, *pCity, addr);
        if (tagADDRNODE const* const pPref = GetAddrNode(pCity->nParent)) StoreLevel(0, *pPref, addr);
        Trace(*pCity, addr, walk, &vAddr, nullptr);
    }
}

void CPlainDic::GetPrefFromPart(char const* pszText, std::vector<tagADDR>& vAddr) const {
    if (pszText == nullptr) return;
    CWalk walk(Word(NODE_COUNT));
    for (uint64_t n = 0; n < Word(PREF_COUNT); ++n) {
        tagADDRNODE const* const pPref = GetAddrNode(static_cast<unsigned long>(Word(FIRST_PREF) + n));
        if (pPref == nullptr) break; // and so are all behind it
        if (Order(pPref->nName, pszText) != 0) continue;
        tagADDR addr(0);
        StoreLevel(0, *pPref, addr);
        Trace(*pPref, addr, walk, &vAddr, nullptr);
    }
}

int CPlainDic::GetAddrFromAddrPart(char const* pszText, std::vector<tagADDR>& vAddr) const {
    tagADDR addr(0);
    char const* psz = pszText;
    int const nPref = SeparatePref(&psz, addr);
    int const nCity = SeparateCity(&psz, static_cast<unsigned long>(nPref), addr);
    int const nTown = SeparateTown(&psz, static_cast<unsigned long>(nCity), addr);
    if (nPref == -1) {
        GetPrefFromPart(pszText, vAddr);
        GetCityFromPart(pszText, vAddr);
    } else if (nCity == -1) {
        recTraceNode(GetAddrNode(static_cast<unsigned long>(nPref)), addr, vAddr);
    } else if (nTown == -1) {
        recTraceNode(GetAddrNode(static_cast<unsigned long>(nCity)), addr, vAddr);
    } else {
        vAddr.push_back(addr);
        recTraceNode(GetAddrNode(static_cast<unsigned long>(nTown)), addr, vAddr);
    }
    return 1;
}

// --- cities of a text ----------------------------------------------------------------------------------------------

int CPlainDic::SearchCity2(char const* pszAddr, std::vector<tagADDRNODE const*>& vNode) const {
    vNode.clear();
    if (pszAddr == nullptr) return 0;
    CWalk walk(Word(NODE_COUNT));
    std::vector<tagADDRNODE const*> vPartly;
    for (uint64_t n = 0; n < Word(CITY_COUNT); ++n) {
        tagADDRNODE const* const pCity = GetAddrNode(static_cast<unsigned long>(Word(FIRST_CITY) + n));
        if (pCity == nullptr) break; // and so are all behind it
        char const* const pszName = String(pCity->nName);
        if (pszName == nullptr || *pszName == '\0') continue;
        unsigned short nType = 7;
        size_t const nFront = PlainShikugunType(pszName, &nType);
        size_t nCovered = 0;
        if (nFront == 0 && BeginsWith(pszAddr, pszName)) nCovered = std::strlen(pszName);
        if (nFront != 0 && std::strncmp(pszAddr, pszName, nFront) == 0)
            nCovered = nFront;
        else if (nFront != 0 && BeginsWith(pszAddr, pszName + nFront))
            nCovered = std::strlen(pszName) - nFront;
        if (nCovered == 0) continue;
        char const* const pszRest = pszAddr + nCovered;
        if (*pszRest == '\0') {
            Collect(*pCity, walk, vNode);
            continue;
        }
        tagADDRNODE const* pFound = nullptr;
        for (uint64_t nChild = 0; pFound == nullptr && nChild < pCity->nChildCount; ++nChild) {
            tagADDRNODE const* const pChild = GetAddrNode(static_cast<unsigned long>(pCity->nFirstChild + nChild));
            if (pChild == nullptr) break; // and so are all behind it
            char const* const pszChild = String(pChild->nName);
            if (pszChild != nullptr && BeginsWith(pszRest, pszChild)) pFound = pChild;
        }
        if (pFound != nullptr)
            Collect(*pFound, walk, vNode);
        else
            vPartly.push_back(pCity);
    }
    if (vNode.empty())
        for (tagADDRNODE const* pCity : vPartly) Collect(*pCity, walk, vNode);
    return 0;
}
