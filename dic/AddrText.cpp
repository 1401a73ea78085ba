// AddrText.cpp - address text analysis: a text cut into its levels, its latest form, its code, and what it can stand
// for when it is only a part.
#include "dic/AddrDic.h"
#include "dic/LevelText.h"
#include "dic/NameIndex.h"
#include "dic/NameSearch.h"
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

// Null for an index without a node: the level below is then searched in the whole dictionary.
tagADDRNODE const* NodeAt(CImageView const& image, unsigned long nIndex) {
    return nIndex < image.NodeCount() ? image.Node(static_cast<uint32_t>(nIndex)) : nullptr;
}

// Bytes that the text gives to a city name that it does not begin with as a whole: those up to the name's marker when
// it begins with that part or with what follows it. 0 when it begins with neither.
size_t MatchFrontPart(char const* pszText, char const* pszName) {
    unsigned short nType = SHIKUGUN_OTHER;
    size_t const nPart = GetShikugunType(pszName, &nType);
    if (nPart == 0) return 0;
    bool const bFits = std::strncmp(pszText, pszName, nPart) == 0 || MatchName(pszText, pszName + nPart) >= 0;
    return bFits ? nPart : 0; // that of the front part, whichever of the two the text holds
}

// The longest name that the text begins with, and of that length the first one.
CNameMatch LongestMatch(CImageView const& image, CNameMarks& marks, CNodeRange const& range, char const* pszText) {
    CNameMatch best;
    CNameSearch(image, marks, pszText).ForEach(range, [&](uint32_t n, CNameSearch::CName const& name) {
        size_t nLength = 0;
        if (name.nLength >= 0)
            nLength = static_cast<size_t>(name.nLength);
        else if (name.psz != nullptr && !name.bOnePart)
            nLength = MatchFrontPart(pszText, name.psz);
        if (nLength > best.nLength) best = {n, nLength};
        return false;
    });
    return best;
}

// The first name that the text begins with and that is not empty.
CNameMatch FirstMatch(CImageView const& image, CNameMarks& marks, CNodeRange const& range, char const* pszText) {
    CNameMatch first;
    CNameSearch(image, marks, pszText).ForEach(range, [&](uint32_t n, CNameSearch::CName const& name) {
        if (name.nLength > 0) first = {n, static_cast<size_t>(name.nLength)};
        return name.nLength > 0;
    });
    return first;
}

// The entry that takes the place of a superseded one; null when the dictionary is damaged.
tagADDRINFO const* FindSuccessor(CAddrDic const& dic, CImageView const& image, tagADDRINFO const& info) {
    char const* const pszOld = image.Behind(info.nCode, 1);
    if (pszOld == nullptr) return nullptr;
    size_t const nOffset = static_cast<size_t>(pszOld - dic.GetStrings()) + image.Length(pszOld) + 1;
    if (!image.HasTextAt(nOffset + sizeof(uint32_t) - 1)) return nullptr;
    return image.Info(ReadWord(reinterpret_cast<unsigned char const*>(dic.GetStrings() + nOffset)));
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
bool StandsInTown(CImageView const& image, tagADDRNODE const* pOffice, tagADDR const& addr) {
    tagADDR place(0);
    for (CUpwardWalk walk(image, pOffice); walk.Node() != nullptr; walk.Next())
        if (walk.Node()->nLevel <= LEVEL_TOWN) StoreLevel(image, *walk.Node(), place);
    return AreSame(place.pszPref, addr.pszPref) && AreSame(place.pszCity, addr.pszCity) &&
           AreSame(place.pszTown, addr.pszTown);
}

// The current entries below a node, each a copy of the record with the texts of its levels. The record is not reset
// between siblings: what one of them writes stays in those that follow.
void CollectEntries(CImageView const& image, CSubtreeWalk& walk, tagADDRNODE const& node, tagADDR const& addr,
                    std::vector<tagADDR>& vAddr) {
    walk.Below(node, addr, [&](tagADDRNODE const& child, tagADDR& current) {
        StoreLevel(image, child, current);
        if (!HasCurrentEntry(image, child)) return;
        StoreCodes(image, child, current);
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
    CImageView const image(*this);
    CSearchMemoryRef const memory(pSearchMemory);
    CNameMatch match;
    // The first one; a prefecture whose name cannot be read ends the search.
    CNameSearch search(image, memory->marks, *ppszText);
    search.ForEach(PrefNodes(image), [&](uint32_t n, CNameSearch::CName const& name) {
        if (name.nLength >= 0) match = {n, static_cast<size_t>(name.nLength)};
        return name.nLength >= 0 || name.psz == nullptr;
    });
    tagADDRNODE const* const pPref = image.Node(match.nNode);
    if (pPref == nullptr) return -1;
    StoreLevel(image, LEVEL_PREF, *pPref, addr);
    addr.pPrefNode = pPref;
    *ppszText += match.nLength;
    return static_cast<int>(match.nNode);
}

int CAddrDic::SeparateCity(char const** ppszText, unsigned long nPref, tagADDR& addr) {
    if (ppszText == nullptr || *ppszText == nullptr) return -1;
    CImageView const image(*this);
    CSearchMemoryRef const memory(pSearchMemory);
    CNameMatch match;
    if (tagADDRNODE const* const pPref = NodeAt(image, nPref)) {
        match = LongestMatch(image, memory->marks, ChildrenOf(image, *pPref), *ppszText);
    } else {
        CNodeRange const cities = LevelNodes(image, HDR_FIRST_CITY, HDR_CITY_COUNT);
        CNameTable const* const pTable = memory->cities.Table(image, cities, CNameTable::InOnePart);
        match = pTable != nullptr ? pTable->Find(image, *ppszText).longest
                                  : LongestMatch(image, memory->marks, cities, *ppszText);
    }
    tagADDRNODE const* const pCity = image.Node(match.nNode);
    if (pCity == nullptr) return -1;
    StoreCodes(image, *pCity, addr);
    StoreLevel(image, LEVEL_CITY, *pCity, addr);
    addr.pCityNode = pCity;
    // The front part's length may go beyond a text that holds only what follows it; the text's end is the limit.
    *ppszText += strnlen(*ppszText, match.nLength);
    return static_cast<int>(match.nNode);
}

int CAddrDic::SeparateTown(char const** ppszText, unsigned long nCity, tagADDR& addr) {
    if (ppszText == nullptr || *ppszText == nullptr || **ppszText == '\0') return -1;
    CImageView const image(*this);
    CSearchMemoryRef const memory(pSearchMemory);
    CNameMatch match;
    if (tagADDRNODE const* const pCity = NodeAt(image, nCity)) {
        match = FirstMatch(image, memory->marks, ChildrenOf(image, *pCity), *ppszText);
    } else {
        CNodeRange const towns = LevelNodes(image, HDR_FIRST_TOWN, HDR_TOWN_COUNT);
        CNameTable const* const pTable = memory->towns.Table(image, towns, CNameTable::InAnyParts);
        match = pTable != nullptr ? pTable->Find(image, *ppszText).first
                                  : FirstMatch(image, memory->marks, towns, *ppszText);
    }
    tagADDRNODE const* const pTown = image.Node(match.nNode);
    if (pTown == nullptr) return -1;
    StoreCodes(image, *pTown, addr);
    StoreLevel(image, LEVEL_TOWN, *pTown, addr);
    addr.pTownNode = pTown;
    *ppszText += match.nLength;
    addr.pszArea = *ppszText;
    return static_cast<int>(match.nNode);
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
    tagADDRINFO const* const pSuccessor = FindSuccessor(*this, CImageView(*this), *pInfo);
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
    CImageView const image(*this);
    return CNameIndex(image, pOfficeIndex, HDR_OFFICE_COUNT).FindFirst(CPrefix(pszName), CNameIndex::NotFound);
}

int CAddrDic::GetPostCodeFromAddr(char const* pszAddress, char const* pszOrgName, tagADDR& addr) {
    addr = tagADDR(0);
    Separate(*this, &pszAddress, addr);
    int const nStart = SearchInc(pszOrgName);
    if (nStart < 0) return 1;
    CImageView const image(*this);
    CNameIndex const index(image, pOfficeIndex, HDR_OFFICE_COUNT);
    CPrefix const name(pszOrgName); // what SearchInc has left
    tagADDRNODE const* pFound = nullptr;
    for (auto nPos = static_cast<uint32_t>(nStart); index.Begins(nPos, name); ++nPos) {
        tagADDRNODE const* const pOffice = index.Node(nPos);
        if (image.Info(pOffice->nInfo) == nullptr) return 0;
        if (pFound == nullptr && StandsInTown(image, pOffice, addr)) pFound = pOffice;
    }
    if (pFound != nullptr) StoreCodes(image, *pFound, addr);
    return 1;
}

int CAddrDic::GetAfterCityName(tagADDRNODE const* pNode, char* pszBuffer) {
    if (pNode == nullptr || pszBuffer == nullptr || pImage == nullptr) return 1;
    auto const IsBelowCity = [](CUpwardWalk const& walk) {
        return walk.Node() != nullptr && walk.Node()->nLevel != LEVEL_CITY;
    };
    // A circle of parents, which only a damaged dictionary has, would fill any buffer.
    CImageView const image(*this);
    CUpwardWalk trial(image, pNode);
    while (IsBelowCity(trial)) trial.Next();
    if (trial.IsCircle()) return 1;
    for (CUpwardWalk walk(image, pNode); IsBelowCity(walk); walk.Next()) {
        char const* const pszName = image.At(walk.Node()->nName);
        if (pszName == nullptr) continue;
        size_t const nLength = image.Length(pszName);
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
    CImageView const image(*this);
    CSubtreeWalk walk(image);
    CollectEntries(image, walk, *pNode, addr, vAddr);
}

int CAddrDic::SearchCity(char const* pszText) {
    if (pszText == nullptr) return -1;
    CImageView const image(*this);
    return CNameIndex(image, pCityIndex, HDR_CITY_COUNT).FindFirst(CPrefix(pszText), CNameIndex::Hit);
}

void CAddrDic::GetCityFromPart(char const* pszText, std::vector<tagADDR>& vAddr) {
    int const nStart = SearchCity(pszText);
    if (nStart < 0) return;
    CImageView const image(*this);
    CNameIndex const index(image, pCityIndex, HDR_CITY_COUNT);
    CSubtreeWalk walk(image);
    CPrefix const name(pszText);
    for (auto nPos = static_cast<uint32_t>(nStart); index.Begins(nPos, name); ++nPos) {
        tagADDRNODE const* const pCity = index.Node(nPos);
        tagADDR addr(0);
        StoreLevel(image, LEVEL_CITY, *pCity, addr);
        tagADDRNODE const* const pPref = image.Node(pCity->nParent);
        if (pPref != nullptr) StoreLevel(image, LEVEL_PREF, *pPref, addr);
        CollectEntries(image, walk, *pCity, addr, vAddr);
    }
}

void CAddrDic::GetPrefFromPart(char const* pszText, std::vector<tagADDR>& vAddr) {
    if (pszText == nullptr || pImage == nullptr) return;
    CImageView const image(*this);
    CSubtreeWalk walk(image);
    CPrefix const name(pszText);
    CNodeRange const range = PrefNodes(image);
    for (uint32_t n = range.nFirst; n < range.nEnd; ++n) {
        tagADDRNODE const* const pPref = image.Node(n);
        if (name.Order(image, pPref->nName) != 0) continue;
        tagADDR addr(0);
        StoreLevel(image, LEVEL_PREF, *pPref, addr);
        CollectEntries(image, walk, *pPref, addr, vAddr);
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
