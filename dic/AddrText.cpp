// AddrText.cpp - address text analysis: a text cut into its levels, its latest form, its code, and what it can stand
// for when it is only a part.
#include "dic/AddrDic.h"
#include "dic/ImageHeader.h"
#include "dic/ImageText.h"
#include "dic/LevelText.h"
#include "dic/NameIndex.h"
#include "dic/NodeEntry.h"
#include "dic/NodeRange.h"
#include "dic/SubtreeWalk.h"
#include "dic/Suffix.h"
#include "dic/UpwardWalk.h"

namespace {

// Legal forms of organisations in the order in which they are tried: a longer one stands before those it contains.
// The table ends with an empty slot.
constexpr size_t EXCEPT_WORD_SIZE = 31;
char const except_word[][EXCEPT_WORD_SIZE] = {
    "株式会社",     "（株）",   "有限会社",         "（有）",       "財団法人",     "（財）",   "社団法人",
    "（社）",       "学校法人", "特定医療法人財団", "医療法人財団", "医療法人社団", "医療法人", "社会福祉法人",
    "独立行政法人", "",
};

// The children of the node with this index, or all nodes of a level when there is no such node.
CNodeRange ChildrenOrLevel(CAddrDic const& dic, unsigned long nParent, tagHEADERWORD nFirst, tagHEADERWORD nCount) {
    if (tagADDRNODE const* const pParent = dic.GetAddrNode(nParent)) return ChildrenOf(dic, *pParent);
    return dic.GetDicPointer() == nullptr ? CNodeRange{0, 0} : LevelNodes(dic, nFirst, nCount);
}

// Bytes that the text gives to a city name: the whole name, or the part up to its marker when the text begins with
// that part or with what follows it. 0 when it begins with none of them.
size_t MatchCity(char const* pszText, char const* pszName) {
    long const nWhole = MatchName(pszText, pszName);
    if (nWhole >= 0) return static_cast<size_t>(nWhole);
    unsigned short nType = SHIKUGUN_OTHER;
    size_t const nPart = GetShikugunType(pszName, &nType);
    if (nPart == 0) return 0;
    bool const bFits = std::strncmp(pszText, pszName, nPart) == 0 || MatchName(pszText, pszName + nPart) >= 0;
    return bFits ? nPart : 0; // that of the front part, whichever of the two the text holds
}

// The entry that takes the place of a superseded one; null when the dictionary is damaged.
tagADDRINFO const* FindSuccessor(CAddrDic const& dic, CImageText const& text, tagADDRINFO const& info) {
    char const* const pszOld = text.Behind(info.nCode, 1);
    if (pszOld == nullptr) return nullptr;
    unsigned long const nOffset = static_cast<unsigned long>(pszOld - dic.GetStrings()) + text.Length(pszOld) + 1;
    char const* const pBegin = dic.GetString(nOffset);
    char const* const pLast = dic.GetString(nOffset + sizeof(uint32_t) - 1);
    if (pBegin == nullptr || pLast == nullptr) return nullptr;
    return dic.GetAddrInfo(ReadWord(reinterpret_cast<unsigned char const*>(pBegin)));
}

// Removes one legal form from the front or, when something is left before it, from the end.
void RemoveLegalForm(char* pszName) {
    size_t const nLength = std::strlen(pszName);
    for (size_t n = 0; *except_word[n] != '\0'; ++n) {
        char const* const pszWord = except_word[n];
        size_t const nWord = std::strlen(pszWord);
        if (std::strncmp(pszName, pszWord, nWord) == 0) {
            std::memmove(pszName, pszName + nWord, nLength - nWord + 1);
            return;
        }
        if (nLength > nWord && std::memcmp(pszName + nLength - nWord, pszWord, nWord) == 0) {
            pszName[nLength - nWord] = '\0';
            return;
        }
    }
}

// Whether two texts are the same text of the image, not merely equal; no text is the same as none.
bool AreSame(char const* psz, char const* pszOther) {
    return psz != nullptr && psz == pszOther;
}

// Whether an organisation stands below the prefecture, city and town that the address names.
bool StandsInTown(CAddrDic const& dic, CImageText const& text, tagADDRNODE const* pOffice, tagADDR const& addr) {
    tagADDR place(0);
    for (CUpwardWalk walk(dic, pOffice); walk.Node() != nullptr; walk.Next())
        if (walk.Node()->nLevel <= LEVEL_TOWN) StoreLevel(text, *walk.Node(), place);
    return AreSame(place.pszPref, addr.pszPref) && AreSame(place.pszCity, addr.pszCity) &&
           AreSame(place.pszTown, addr.pszTown);
}

// The current entries below a node, each a copy of the record with the texts of its levels. The record is not reset
// between siblings: what one of them writes stays in those that follow.
void CollectEntries(CAddrDic const& dic, CImageText const& text, CSubtreeWalk& walk, tagADDRNODE const& node,
                    tagADDR const& addr, std::vector<tagADDR>& vAddr) {
    walk.Below(node, addr, [&](tagADDRNODE const& child, tagADDR& current) {
        StoreLevel(text, child, current);
        if (!HasCurrentEntry(dic, child)) return;
        StoreCodes(dic, text, child, current);
        vAddr.push_back(current);
    });
}

} // namespace

// --- classification ------------------------------------------------------------------------------------------------

unsigned short GetShikugunType(char const* pszName, unsigned short* pnType) {
    return static_cast<unsigned short>(FrontPartLength(pszName, pnType));
}

size_t FrontPartLength(char const* pszName, unsigned short* pnType) {
    if (pszName == nullptr || pnType == nullptr) return 0;
    size_t const nLength = std::strlen(pszName);
    if (nLength < 3) return 0;
    char const* const pszEnd = pszName + nLength - 2;
    *pnType = SHIKUGUN_OTHER;
    if (HoldsSuffix(pszEnd, SUFFIX_SHI)) {
        *pnType = SHIKUGUN_SHI;
        return 0;
    }
    size_t nMarkerPos = 0;
    tagSUFFIX nMarker = SUFFIX_COUNT;
    if (HoldsSuffix(pszEnd, SUFFIX_KU)) {
        nMarkerPos = FindMarkerBackwards(pszName, nLength, {SUFFIX_SHI}, &nMarker);
        *pnType = nMarkerPos != 0 ? SHIKUGUN_SHI_KU : SHIKUGUN_KU;
    } else if (HoldsSuffix(pszEnd, SUFFIX_CHO)) {
        nMarkerPos = FindMarkerBackwards(pszName, nLength, {SUFFIX_GUN, SUFFIX_SHIMA}, &nMarker);
        if (nMarkerPos != 0) *pnType = nMarker == SUFFIX_GUN ? SHIKUGUN_GUN_CHO : SHIKUGUN_SHIMA;
    } else if (HoldsSuffix(pszEnd, SUFFIX_MURA)) {
        nMarkerPos = FindMarkerBackwards(pszName, nLength, {SUFFIX_GUN, SUFFIX_SHIMA, SUFFIX_AGATA}, &nMarker);
        if (nMarkerPos != 0)
            *pnType = nMarker == SUFFIX_GUN     ? SHIKUGUN_GUN_MURA
                      : nMarker == SUFFIX_SHIMA ? SHIKUGUN_SHIMA
                                                : SHIKUGUN_CHO_MURA;
    }
    return nMarkerPos == 0 ? 0 : nMarkerPos + 2;
}

// --- separation ----------------------------------------------------------------------------------------------------

int CAddrDic::SeparatePref(char const** ppszText, tagADDR& addr) {
    if (ppszText == nullptr || *ppszText == nullptr || pImage == nullptr) return -1;
    CImageText const text(*this);
    CNodeRange const range = PrefNodes(*this);
    for (uint32_t n = range.nFirst; n < range.nEnd; ++n) {
        tagADDRNODE const* const pNode = GetAddrNode(n);
        char const* const pszName = text.At(pNode->nName);
        if (pszName == nullptr) return -1;
        long const nLength = MatchName(*ppszText, pszName);
        if (nLength < 0) continue;
        StoreLevel(text, LEVEL_PREF, *pNode, addr);
        addr.pPrefNode = pNode;
        *ppszText += nLength;
        return static_cast<int>(n);
    }
    return -1;
}

int CAddrDic::SeparateCity(char const** ppszText, unsigned long nPref, tagADDR& addr) {
    if (ppszText == nullptr || *ppszText == nullptr) return -1;
    CImageText const text(*this);
    CNodeRange const range = ChildrenOrLevel(*this, nPref, HDR_FIRST_CITY, HDR_CITY_COUNT);
    uint32_t nBest = ADDR_NONE;
    size_t nBestLength = 0;
    for (uint32_t n = range.nFirst; n < range.nEnd; ++n) {
        char const* const pszName = text.At(GetAddrNode(n)->nName);
        if (pszName == nullptr) continue;
        size_t const nLength = MatchCity(*ppszText, pszName);
        if (nLength <= nBestLength) continue;
        nBest = n;
        nBestLength = nLength;
    }
    tagADDRNODE const* const pBest = GetAddrNode(nBest);
    if (pBest == nullptr) return -1;
    StoreLevel(text, LEVEL_CITY, *pBest, addr);
    addr.pCityNode = pBest;
    StoreCodes(*this, text, *pBest, addr);
    // The front part's length may go beyond a text that holds only what follows it; the text's end is the limit.
    *ppszText += strnlen(*ppszText, nBestLength);
    return static_cast<int>(nBest);
}

int CAddrDic::SeparateTown(char const** ppszText, unsigned long nCity, tagADDR& addr) {
    if (ppszText == nullptr || *ppszText == nullptr) return -1;
    CImageText const text(*this);
    CNodeRange const range = ChildrenOrLevel(*this, nCity, HDR_FIRST_TOWN, HDR_TOWN_COUNT);
    for (uint32_t n = range.nFirst; n < range.nEnd; ++n) {
        tagADDRNODE const* const pNode = GetAddrNode(n);
        char const* const pszName = text.At(pNode->nName);
        if (pszName == nullptr) continue;
        long const nLength = MatchName(*ppszText, pszName);
        if (nLength <= 0) continue;
        StoreLevel(text, LEVEL_TOWN, *pNode, addr);
        addr.pTownNode = pNode;
        StoreCodes(*this, text, *pNode, addr);
        *ppszText += nLength;
        addr.pszArea = *ppszText;
        return static_cast<int>(n);
    }
    return -1;
}

namespace {

// The nodes of the three levels, -1 for a level that was not found.
struct CLevels {
    int nPref, nCity, nTown;
};

CLevels Separate(CAddrDic& dic, char const** ppszText, tagADDR& addr) {
    int const nPref = dic.SeparatePref(ppszText, addr);
    int const nCity = dic.SeparateCity(ppszText, static_cast<unsigned long>(nPref), addr);
    int const nTown = dic.SeparateTown(ppszText, static_cast<unsigned long>(nCity), addr);
    return {nPref, nCity, nTown};
}

} // namespace

bool CAddrDic::DivideAddr(char const* pszText, tagADDR* pAddr) {
    if (pszText == nullptr || pAddr == nullptr) return false;
    if (Separate(*this, &pszText, *pAddr).nTown < 0) pAddr->pszArea = pszText;
    return true;
}

// --- latest address ------------------------------------------------------------------------------------------------

uint32_t CAddrDic::GetLatestAddr(char const* pszText, tagADDR& addr) {
    tagADDRNODE const* const pTown = GetAddrNode(static_cast<unsigned long>(Separate(*this, &pszText, addr).nTown));
    tagADDRINFO const* const pInfo = pTown == nullptr ? nullptr : GetAddrInfo(pTown->nInfo);
    if (pInfo == nullptr) return 0;
    if (!IsSuperseded(*pInfo)) return 1;
    tagADDRINFO const* const pSuccessor = FindSuccessor(*this, CImageText(*this), *pInfo);
    if (pSuccessor == nullptr) return 0;
    tagADDR latest(0);
    GetAddr(pSuccessor, &latest);
    addr.pszPref = latest.pszPref;
    addr.pszCity = latest.pszCity;
    addr.pszTown = latest.pszTown;
    return 1;
}

// --- postal code from address --------------------------------------------------------------------------------------

// The text only becomes shorter: nothing is ever written beyond what has been read.
void CAddrDic::EraseBlank(char* pszText) {
    if (pszText == nullptr) return;
    constexpr char IDEOGRAPHIC[] = "　";
    char* pszOut = pszText;
    for (char const* p = pszText; *p != '\0';) {
        if (p[0] == IDEOGRAPHIC[0] && p[1] == IDEOGRAPHIC[1])
            p += 2;
        else if (*p == ' ' || *p == ',')
            ++p;
        else
            *pszOut++ = *p++;
    }
    *pszOut = '\0';
}

int CAddrDic::SearchInc(char const* pszName) {
    if (pszName == nullptr || *pszName == '\0') return -1;
    char* const pszBuffer = const_cast<char*>(pszName); // the caller's own, by agreement
    EraseBlank(pszBuffer);
    RemoveLegalForm(pszBuffer);
    CImageText const text(*this);
    return CNameIndex(*this, text, pOfficeIndex, HDR_OFFICE_COUNT).FindFirst(pszName, CNameIndex::NotFound);
}

int CAddrDic::GetPostCodeFromAddr(char const* pszAddress, char const* pszOrgName, tagADDR& addr) {
    addr = tagADDR(0);
    Separate(*this, &pszAddress, addr);
    int const nStart = SearchInc(pszOrgName);
    if (nStart < 0) return 1;
    CImageText const text(*this);
    CNameIndex const index(*this, text, pOfficeIndex, HDR_OFFICE_COUNT);
    size_t const nLength = std::strlen(pszOrgName); // of what SearchInc has left
    tagADDRNODE const* pFound = nullptr;
    for (uint32_t nPos = static_cast<uint32_t>(nStart); index.Begins(nPos, pszOrgName, nLength); ++nPos) {
        tagADDRNODE const* const pOffice = index.Node(nPos);
        if (GetAddrInfo(pOffice->nInfo) == nullptr) return 0;
        if (pFound == nullptr && StandsInTown(*this, text, pOffice, addr)) pFound = pOffice;
    }
    if (pFound != nullptr) StoreCodes(*this, text, *pFound, addr);
    return 1;
}

int CAddrDic::GetAfterCityName(tagADDRNODE const* pNode, char* pszBuffer) {
    if (pNode == nullptr || pszBuffer == nullptr || pImage == nullptr) return 1;
    auto const IsBelowCity = [](CUpwardWalk const& walk) {
        return walk.Node() != nullptr && walk.Node()->nLevel != LEVEL_CITY;
    };
    // A circle of parents, which only a damaged dictionary has, would fill any buffer.
    CUpwardWalk trial(*this, pNode);
    while (IsBelowCity(trial)) trial.Next();
    if (trial.IsCircle()) return 1;
    CImageText const text(*this);
    for (CUpwardWalk walk(*this, pNode); IsBelowCity(walk); walk.Next()) {
        char const* const pszName = text.At(walk.Node()->nName);
        if (pszName == nullptr) continue;
        size_t const nLength = text.Length(pszName);
        uint8_t const nLevel = walk.Node()->nLevel;
        if (nLevel == LEVEL_TOWN || nLevel == LEVEL_BLOCK) {
            std::memmove(pszBuffer + nLength, pszBuffer, std::strlen(pszBuffer) + 1);
            std::memcpy(pszBuffer, pszName, nLength);
        } else if (nLevel == LEVEL_NOTE || nLevel == LEVEL_OFFICE) {
            std::memcpy(pszBuffer, pszName, nLength + 1);
        }
    }
    return 1;
}

// --- partial addresses ---------------------------------------------------------------------------------------------

// By value, as its callers know it. NOLINTNEXTLINE(performance-unnecessary-value-param)
void CAddrDic::recTraceNode(tagADDRNODE const* pNode, tagADDR addr, std::vector<tagADDR>& vAddr) {
    if (pNode == nullptr || pImage == nullptr) return;
    CImageText const text(*this);
    CSubtreeWalk walk(*this);
    CollectEntries(*this, text, walk, *pNode, addr, vAddr);
}

int CAddrDic::SearchCity(char const* pszText) {
    if (pszText == nullptr) return -1;
    CImageText const text(*this);
    return CNameIndex(*this, text, pCityIndex, HDR_CITY_COUNT).FindFirst(pszText, CNameIndex::Hit);
}

void CAddrDic::GetCityFromPart(char const* pszText, std::vector<tagADDR>& vAddr) {
    int const nStart = SearchCity(pszText);
    if (nStart < 0) return;
    CImageText const text(*this);
    CNameIndex const index(*this, text, pCityIndex, HDR_CITY_COUNT);
    CSubtreeWalk walk(*this);
    size_t const nLength = std::strlen(pszText);
    for (uint32_t nPos = static_cast<uint32_t>(nStart); index.Begins(nPos, pszText, nLength); ++nPos) {
        tagADDRNODE const* const pCity = index.Node(nPos);
        tagADDR addr(0);
        StoreLevel(text, LEVEL_CITY, *pCity, addr);
        tagADDRNODE const* const pPref = GetAddrNode(pCity->nParent);
        if (pPref != nullptr) StoreLevel(text, LEVEL_PREF, *pPref, addr);
        CollectEntries(*this, text, walk, *pCity, addr, vAddr);
    }
}

void CAddrDic::GetPrefFromPart(char const* pszText, std::vector<tagADDR>& vAddr) {
    if (pszText == nullptr || pImage == nullptr) return;
    CImageText const text(*this);
    CSubtreeWalk walk(*this);
    size_t const nLength = std::strlen(pszText);
    CNodeRange const range = PrefNodes(*this);
    for (uint32_t n = range.nFirst; n < range.nEnd; ++n) {
        tagADDRNODE const* const pPref = GetAddrNode(n);
        if (text.ComparePrefix(GetString(pPref->nName), pszText, nLength) != 0) continue;
        tagADDR addr(0);
        StoreLevel(text, LEVEL_PREF, *pPref, addr);
        CollectEntries(*this, text, walk, *pPref, addr, vAddr);
    }
}

int CAddrDic::GetAddrFromAddrPart(char const* pszText, std::vector<tagADDR>& vAddr) {
    tagADDR addr(0);
    char const* pszRest = pszText;
    CLevels const found = Separate(*this, &pszRest, addr);
    if (found.nPref < 0) {
        GetPrefFromPart(pszText, vAddr);
        GetCityFromPart(pszText, vAddr);
        return 1;
    }
    if (found.nCity >= 0 && found.nTown >= 0) vAddr.push_back(addr);
    // A town found without a city may lie anywhere: it does not narrow the answer.
    int const nDeepest = found.nCity < 0 ? found.nPref : found.nTown < 0 ? found.nCity : found.nTown;
    recTraceNode(GetAddrNode(static_cast<unsigned long>(nDeepest)), addr, vAddr);
    return 1;
}
