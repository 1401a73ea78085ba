// TextAnswer.cpp - from what was found to the record of the answer.
#include "text/CityForms.h"
#include "text/DictionaryWalk.h"
#include "text/FoldTable.h"
#include "text/ReadingParts.h"
#include "text/TextReader.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace qeadrs {

namespace {

constexpr int LEVELS = 16;        // more than a place has
constexpr uint32_t CODE_SIZE = 8; // seven digits and the NUL; the old code stands behind it

constexpr QETEXTREADING EMPTY = EmptyReading();

void SetLevel(QETEXTPLACE& place, uint8_t nLevel, uint32_t nNode, char const* pszName) {
    auto const Set = [=](char const*& pszField, uint32_t& nField) {
        pszField = pszName;
        nField = nNode;
    };
    switch (nLevel) {
    case LEVEL_PREF:
        return Set(place.pszPref, place.nPref);
    case LEVEL_CITY:
        return Set(place.pszCity, place.nCity);
    case LEVEL_TOWN:
        return Set(place.pszTown, place.nTown);
    case LEVEL_AREA:
        return Set(place.pszArea, place.nArea);
    case LEVEL_BLOCK:
        return Set(place.pszBuilding, place.nBuilding);
    case LEVEL_NOTE:
        return Set(place.pszFloor, place.nFloor);
    default:
        return; // an organisation is none of an address's places
    }
}

// The kinds of folding of the characters in some bytes.
uint32_t KindsOf(std::string_view str) {
    uint32_t nKinds = 0;
    for (size_t nPos = 0; nPos < str.size();) {
        auto const nHead = static_cast<unsigned char>(str[nPos]);
        size_t const nSize = nHead < 0xC0 ? 1 : nHead < 0xE0 ? 2 : nHead < 0xF0 ? 3 : 4;
        nKinds |= FoldingKind(str.substr(nPos, nSize));
        nPos += nSize;
    }
    return nKinds;
}

// Bytes of the blank at the head of a text, 0 when there is none.
size_t BlankSize(std::string_view str) {
    auto const nHead = static_cast<unsigned char>(str.empty() ? 'x' : str[0]);
    size_t const nSize = nHead < 0xC0 ? 1 : nHead < 0xE0 ? 2 : nHead < 0xF0 ? 3 : 4;
    return FoldingKind(str.substr(0, nSize)) == QETEXT_FOLD_BLANK ? nSize : 0;
}

// What makes two texts different that are the same in folded form; nothing when they are the same bytes.
uint32_t KindsOfBoth(std::string_view str, std::string_view strOther) {
    if (str == strOther) return 0;
    uint32_t const nKinds = KindsOf(str) | KindsOf(strOther);
    return (nKinds & QETEXT_FOLD_NUMBER) != 0 ? nKinds & ~uint32_t{QETEXT_FOLD_WIDTH} : nKinds; // 一 for １
}

std::string_view Between(std::string_view str, size_t nFirst, size_t nEnd) {
    return nFirst < nEnd ? str.substr(nFirst, nEnd - nFirst) : std::string_view();
}

} // namespace

// --- places ----------------------------------------------------------------------------------------------------

QETEXTPLACE CTextReader::PlaceOf(uint32_t nNode) const {
    QETEXTPLACE place = EmptyPlace();
    tagADDRNODE const* pNode = m_dic.GetAddrNode(nNode);
    if (pNode == nullptr) return place;
    if (tagADDRINFO const* const pInfo = NodeEntry(m_dic, *pNode)) {
        place.nEntry = pNode->nInfo;
        place.pszPostCode = m_dic.GetString(pInfo->nCode);
        if (place.pszPostCode != nullptr) place.pszOldCode = m_dic.GetString(pInfo->nCode + CODE_SIZE);
    }
    for (int i = 0; i < LEVELS && pNode != nullptr; ++i) {
        SetLevel(place, pNode->nLevel, nNode, m_dic.GetString(pNode->nName));
        nNode = pNode->nParent;
        pNode = NodeAbove(m_dic, *pNode);
    }
    return place;
}

// The place that an entry stands for: its own node's, with this entry's code.
QETEXTPLACE CTextReader::PlaceOfEntry(uint32_t nEntry) const {
    tagADDRINFO const* const pInfo = m_dic.GetAddrInfo(nEntry);
    return pInfo == nullptr ? EmptyPlace() : PlaceOf(pInfo->nNode & ~ADDRINFO_SUPERSEDED);
}

// --- the parts of the text -------------------------------------------------------------------------------------

void CTextReader::SetRest(size_t nToken, QETEXTREADING& reading) {
    size_t nBegin = m_nBase + (nToken == 0 ? 0 : m_folded.anEnd[nToken - 1]);
    bool const bAtOnce = nToken != 0 && nToken < m_folded.nCount && m_nBase + m_folded.anBegin[nToken] == nBegin;
    if (!bAtOnce)
        while (size_t const nBlank = BlankSize(m_strText.substr(nBegin))) nBegin += nBlank;
    reading.rest = {nBegin, m_strText.size() - nBegin};
}

// In which ways the tokens [nFirst, nEnd) of the text, with what stands in front of them from nFirstByte on, differ from
// the name that they are.
uint32_t CTextReader::Foldings(size_t nFirstByte, size_t nFirst, size_t nEnd, std::string_view strName) {
    std::string_view const strText = m_folded.Text();
    if (m_folded.Bytes(nFirst, nEnd) == strName)
        return KindsOf(Between(strText, nFirstByte, m_folded.anBegin[nFirst]));
    FoldName(strName, m_nFoldOptions);
    uint32_t nKinds = 0;
    size_t nText = nFirstByte; // bytes looked at, of both
    size_t nName = 0;
    for (size_t i = 0; i < std::min(nEnd - nFirst, m_name.nCount); ++i) {
        size_t const nBegin = m_folded.anBegin[nFirst + i];
        nKinds |= KindsOfBoth(Between(strText, nText, nBegin), Between(strName, nName, m_name.anBegin[i]));
        nText = m_folded.anEnd[nFirst + i];
        nName = m_name.anEnd[i];
        nKinds |= KindsOfBoth(Between(strText, nBegin, nText), Between(strName, m_name.anBegin[i], nName));
    }
    return nKinds | KindsOfBoth({}, Between(strName, nName, strName.size()));
}

// Each name with what stands between it and the one before.
void CTextReader::WriteFoldings(CCity const& city, CTown const* pTown, QETEXTREADING& reading) {
    uint32_t nFoldings = (city.nForm & CITY_SHORT_PREF) != 0 ? QETEXT_FOLD_PREF : 0;
    tagADDRNODE const& cityNode = *m_dic.GetAddrNode(city.nNode);
    size_t const nCityEnd = m_folded.anEnd[city.nTokens - 1];
    size_t const nFront = m_nBase == 0 ? 0 : m_folded.anBegin[0]; // a blank behind a code is none of the address
    size_t const nCityBegin = city.nPrefTokens == 0 ? nFront : m_folded.anEnd[city.nPrefTokens - 1];
    if (!city.bExact || m_folded.anBegin[0] != nFront) {
        if (city.nPrefTokens != 0) {
            tagADDRNODE const* const pPref = NodeAbove(m_dic, cityNode);
            if (pPref != nullptr)
                nFoldings |= Foldings(nFront, 0, city.nPrefTokens, PrefForm(NodeName(m_dic, *pPref), city.nForm));
        }
        nFoldings |=
            Foldings(nCityBegin, city.nPrefTokens, city.nTokens, CityForm(NodeName(m_dic, cityNode), city.nForm));
    }
    if (pTown != nullptr) {
        if (pTown->bStreet) nFoldings |= QETEXT_FOLD_STREET;
        size_t const nBegin = pTown->bStreet ? m_folded.anBegin[pTown->nBegin] : nCityEnd;
        if (!pTown->bExact || m_folded.anBegin[pTown->nBegin] != nBegin)
            nFoldings |=
                Foldings(nBegin, pTown->nBegin, pTown->nEnd, NodeName(m_dic, *m_dic.GetAddrNode(pTown->nNode)));
    }
    reading.nFoldings = nFoldings;
}

// What of the city the text leaves out, and where it stands.
void CTextReader::WriteFront(CCity const& city, QETEXTREADING& reading) {
    reading.pref = Span(0, city.nPrefTokens);
    reading.city = Span(city.nPrefTokens, city.nTokens);
    reading.nSupplied = 0;
    if (city.nPrefTokens == 0) reading.nSupplied |= QETEXT_PREF_SUPPLIED;
    if ((city.nForm & CITY_NO_COUNTY) != 0) reading.nSupplied |= QETEXT_COUNTY_SUPPLIED;
    if ((city.nForm & CITY_WARD_ONLY) != 0) reading.nSupplied |= QETEXT_CITY_SUPPLIED;
    if ((city.nForm & CITY_NO_WARD) != 0) reading.nSupplied |= QETEXT_WARD_SUPPLIED;
}

// --- the answers -----------------------------------------------------------------------------------------------

// How sure the only candidate is.
uint32_t CTextReader::SurenessOfOne(QETEXTREADING const& reading) {
    if (reading.nSupplied != 0) return QETEXT_SUPPLIED;
    return reading.nFoldings != 0 ? QETEXT_FOLDED : QETEXT_EXACT;
}

// A city may have two towns of one name, each with subdivisions of its own (酒田市本町): when the text names a part of one
// of them, that one is meant.
void CTextReader::DropUnnamedTwins() {
    if (m_vTown.size() < 2) return;
    std::vector<CTown> vNamed;
    for (CTown const& town : m_vTown) {
        Divide(town, m_division);
        if (m_division.bNamed) vNamed.push_back(town);
    }
    auto const IsTwin = [this](CTown const& town) {
        return town.city.nNode == m_vTown[0].city.nNode && town.nEnd == m_vTown[0].nEnd;
    };
    if (vNamed.size() == 1 && std::all_of(m_vTown.begin(), m_vTown.end(), IsTwin)) m_vTown = std::move(vNamed);
}

void CTextReader::AnswerTowns(QETEXTREADING& reading) {
    DropUnnamedTwins();
    bool bSeveral = m_vTown.size() > 1;
    for (size_t i = 0; i < m_vTown.size(); ++i) {
        CDivision& division = m_division;
        Divide(m_vTown[i], division);
        bSeveral = bSeveral || division.bSeveral;
        for (uint32_t nNode : division.vNode) m_vCandidate.push_back(PlaceOf(nNode));
        if (i == 0) WriteTown(m_vTown[i], division, reading);
    }
    reading.nSureness = bSeveral ? uint32_t{QETEXT_SEVERAL} : SurenessOfOne(reading);
}

void CTextReader::WriteTown(CTown const& town, CDivision const& division, QETEXTREADING& reading) {
    WriteFront(town.city, reading);
    WriteFoldings(town.city, &town, reading);
    if (town.bStreet) reading.street = Span(town.city.nTokens, town.nBegin);
    reading.town = Span(town.nBegin, town.nEnd);
    reading.area = Span(town.nEnd, division.nAreaEnd);
    reading.building = Span(division.nBuilding, division.nBuildingEnd);
    reading.floor = Span(division.nFloor, division.nFloorEnd);
    for (auto const& [nFirst, nEnd] :
         {std::pair<size_t, size_t>(town.nEnd, division.nAreaEnd), {division.nBuilding, division.nBuildingEnd}})
        if (nFirst < nEnd) reading.nFoldings |= Foldings(m_folded.anBegin[nFirst], nFirst, nEnd, division.strPart);
    SetRest(std::max(town.nEnd, division.nAreaEnd), reading);
    if (!division.bNamed) RemarkWordsBehind(town.nEnd, reading);
}

// Kanji or kana right behind a town, with no blank and no 字 between them, may belong to a longer name.
void CTextReader::RemarkWordsBehind(size_t nToken, QETEXTREADING& reading) {
    if (!m_folded.Has(nToken + 1) || m_folded.anBegin[nToken] != m_folded.anEnd[nToken - 1]) return;
    uint16_t const n = m_folded.anToken[nToken];
    bool const bKana = (n >= 0x3041 && n <= 0x3096) || (n >= 0x30A1 && n <= 0x30FA);
    if (bKana || (n >= 0x3400 && n <= 0x9FFF)) reading.nRemarks |= QETEXT_WORDS_BEHIND;
}

// The current nameless towns in front of a city's first named one, or behind its last one, in the order of the dictionary.
// bNamed: there is one.
std::vector<uint32_t> CTextReader::NamelessTowns(tagADDRNODE const& city, bool bFront, bool& bNamed) const {
    bNamed = false;
    std::vector<uint32_t> vNameless;
    for (uint32_t i = 0; i < city.nChildCount; ++i) {
        uint32_t const nTown = city.nFirstChild + (bFront ? i : city.nChildCount - 1 - i);
        tagADDRNODE const* const pTown = m_dic.GetAddrNode(nTown);
        if (pTown == nullptr || pTown->nLevel != LEVEL_TOWN) break;
        if (IsSuperseded(m_dic, *pTown)) continue;
        bNamed = !NodeName(m_dic, *pTown).empty();
        if (bNamed) break;
        vNameless.push_back(nTown);
    }
    if (!bFront) std::reverse(vNameless.begin(), vNameless.end());
    return vNameless;
}

// The place of a city as a whole: its nameless town, a numbered part of it, or the city when it has no code.
QETEXTPLACE CTextReader::WholeCity(CCity const& city, bool& bOnlyOne) {
    tagADDRNODE const& node = *m_dic.GetAddrNode(city.nNode);
    QETEXTPLACE place = PlaceOf(city.nNode);
    bool bNamed = false;
    std::vector<uint32_t> vNameless = NamelessTowns(node, false, bNamed); // the compiler puts them behind the others
    bOnlyOne = !bNamed && vNameless.size() == 1;
    if (vNameless.empty()) vNameless = NamelessTowns(node, true, bNamed);
    tagADDRINFO const* const pInfo = NodeEntry(m_dic, node);
    if (pInfo == nullptr && !vNameless.empty()) place = PlaceOf(vNameless[0]);
    if (pInfo != nullptr) {
        tagADDRNODE const* const pOwn = m_dic.GetAddrNode(pInfo->nNode & ~ADDRINFO_SUPERSEDED);
        if (pOwn != nullptr && pOwn->nParent == city.nNode) place = PlaceOfEntry(node.nInfo);
    }
    for (uint32_t nTown : vNameless) {
        CTown town;
        town.city = city;
        town.nNode = nTown;
        town.nBegin = town.nEnd = city.nTokens;
        town.bDivided = true;
        Divide(town, m_division);
        bool const bFound = !m_division.vNode.empty() && !m_division.bSeveral && m_division.vNode[0] != nTown;
        bOnlyOne = bOnlyOne || bFound;
        if (bFound) return PlaceOf(m_division.vNode[0]);
    }
    return place;
}

void CTextReader::AnswerCities(QETEXTREADING& reading) {
    WriteFront(m_vCity[0], reading);
    WriteFoldings(m_vCity[0], nullptr, reading);
    bool bOnlyOne = false;
    for (CCity const& city : m_vCity) m_vCandidate.push_back(WholeCity(city, bOnlyOne));
    SetRest(m_vCity[0].nTokens, reading);
    if (m_vCity.size() > 1)
        reading.nSureness = QETEXT_SEVERAL;
    else
        reading.nSureness = bOnlyOne ? SurenessOfOne(reading) : uint32_t{QETEXT_TOWN_NOT_FOUND};
}

// No city: at most a prefecture.
void CTextReader::AnswerNothing(QETEXTREADING& reading) {
    unsigned char const* const pImage = m_dic.GetDicPointer();
    reading.nSureness = QETEXT_NOTHING;
    SetRest(0, reading);
    if (pImage == nullptr) return;
    uint32_t const nFirst = HeaderWord(pImage, HDR_FIRST_PREF);
    for (uint32_t i = 0; i < std::min<uint32_t>(HeaderWord(pImage, HDR_PREF_COUNT), 1000); ++i) {
        tagADDRNODE const* const pPref = m_dic.GetAddrNode(nFirst + i);
        if (pPref == nullptr || pPref->nLevel != LEVEL_PREF) break;
        size_t const nTokens = MatchedTokens(NodeName(m_dic, *pPref), 0);
        if (nTokens == 0 || !m_folded.MayEnd(nTokens)) continue;
        reading.nSureness = QETEXT_CITY_NOT_FOUND;
        reading.place = PlaceOf(nFirst + i);
        reading.pref = Span(0, nTokens);
        reading.nFoldings = Foldings(0, 0, nTokens, NodeName(m_dic, *pPref));
        SetRest(nTokens, reading);
        return;
    }
}

// --- the code in front -----------------------------------------------------------------------------------------

bool CTextReader::HasCode(QETEXTPLACE const& place) const {
    return place.pszPostCode != nullptr && std::strncmp(place.pszPostCode, m_szCode, std::strlen(m_szCode)) == 0;
}

// Whether the code in front belongs to something that the address leaves open: an organisation in the town; where no
// town was read, anything in the city.
bool CTextReader::IsCodeBelow(QETEXTPLACE const& place, bool bTownFound) const {
    auto const Compare = [this](uint32_t nEntry) {
        tagADDRINFO const* const pInfo = m_dic.GetAddrInfo(nEntry);
        char const* const psz = pInfo == nullptr ? nullptr : m_dic.GetString(pInfo->nCode);
        return psz == nullptr ? 1 : std::strncmp(psz, m_szCode, std::strlen(m_szCode));
    };
    uint32_t nFirst = 0;
    for (uint32_t nEnd = m_dic.Word(HDR_INFO_COUNT); nFirst < nEnd;) {
        uint32_t const nMiddle = nFirst + (nEnd - nFirst) / 2;
        if (Compare(nMiddle) < 0)
            nFirst = nMiddle + 1;
        else
            nEnd = nMiddle;
    }
    uint32_t const nAbove = bTownFound ? place.nTown : place.nCity;
    constexpr uint32_t ENTRIES = 4096; // more than any code has
    for (uint32_t n = nFirst; n - nFirst < ENTRIES && Compare(n) == 0; ++n) {
        uint32_t nNode = m_dic.GetAddrInfo(n)->nNode & ~ADDRINFO_SUPERSEDED;
        tagADDRNODE const* pNode = m_dic.GetAddrNode(nNode);
        if (bTownFound && pNode != nullptr && pNode->nLevel != LEVEL_OFFICE) continue;
        for (int i = 0; i < LEVELS && pNode != nullptr; ++i) {
            if (nNode == nAbove) return true;
            nNode = pNode->nParent;
            pNode = NodeAbove(m_dic, *pNode);
        }
    }
    return false;
}

// The code in front breaks ties: candidates that have it come first, and one alone is the answer.
void CTextReader::UseCode(QETEXTREADING& reading) {
    if (m_szCode[0] == '\0' || m_vCandidate.empty()) return;
    bool const bTownFound = reading.town.nLength != 0;
    auto const pEnd = std::stable_partition(m_vCandidate.begin(), m_vCandidate.end(), [=](QETEXTPLACE const& place) {
        return HasCode(place) || (!bTownFound && IsCodeBelow(place, false));
    });
    if (pEnd == m_vCandidate.begin()) {
        auto const LeavesOpen = [=](QETEXTPLACE const& place) { return IsCodeBelow(place, bTownFound); };
        if (std::none_of(m_vCandidate.begin(), m_vCandidate.end(), LeavesOpen))
            reading.nRemarks |= QETEXT_CODE_CONTRADICTS;
        return;
    }
    if (reading.nSureness != QETEXT_SEVERAL) return;
    reading.nRemarks |= QETEXT_CODE_DECIDED;
    for (CTown const& town : m_vTown) {
        if (town.nNode != m_vCandidate[0].nTown) continue;
        Divide(town, m_division);
        WriteTown(town, m_division, reading);
    }
    if (!bTownFound)
        for (CCity const& city : m_vCity)
            if (city.nNode == m_vCandidate[0].nCity) WriteFront(city, reading);
    bool const bOne = pEnd - m_vCandidate.begin() == 1 && std::strlen(m_szCode) == CODE_SIZE - 1;
    if (bOne) reading.nSureness = bTownFound ? SurenessOfOne(reading) : uint32_t{QETEXT_TOWN_NOT_FOUND};
}

// --- old names -------------------------------------------------------------------------------------------------

// The number of the entry that replaced it stands right behind the old entry's codes.
void CTextReader::Renew(QETEXTREADING& reading, uint32_t nOptions) {
    tagADDRINFO const* const pInfo =
        reading.place.nEntry == QETEXT_NONE ? nullptr : m_dic.GetAddrInfo(reading.place.nEntry);
    if (pInfo == nullptr || (pInfo->nNode & ADDRINFO_SUPERSEDED) == 0) return;
    reading.nRemarks |= QETEXT_OLD_NAME;
    if ((nOptions & QETEXT_RENEW) == 0 || reading.place.pszOldCode == nullptr) return;
    size_t const nAt = static_cast<size_t>(reading.place.pszOldCode - m_dic.GetStrings()) +
                       std::strlen(reading.place.pszOldCode) + 1;
    size_t const nStrings = m_dic.Word(HDR_STRING_SIZE);
    if (nAt > nStrings || nStrings - nAt < sizeof(uint32_t)) return;
    uint32_t nSuccessor;
    std::memcpy(&nSuccessor, m_dic.GetStrings() + nAt, sizeof nSuccessor);
    reading.latest = PlaceOfEntry(nSuccessor);
    if (reading.latest.nEntry != QETEXT_NONE) reading.nRemarks |= QETEXT_RENEWED;
}

// --- all of it -------------------------------------------------------------------------------------------------

void CTextReader::Answer(QETEXTREADING& reading) {
    Resolve();
    m_vCandidate.clear();
    reading = EMPTY;
    reading.code = m_code;
    if (!m_vTown.empty())
        AnswerTowns(reading);
    else if (!m_vCity.empty())
        AnswerCities(reading);
    else
        AnswerNothing(reading);
    if (!IsTelling()) return;
    TellCities();
    TellTowns();
}

// The place of a town that has an entry, in a city in a prefecture.
QETEXTPLACE CTextReader::PlainPlace(uint32_t nTown, tagADDRNODE const& town) const {
    tagADDRNODE const* const pCity = m_dic.GetAddrNode(town.nParent);
    tagADDRNODE const* const pPref = pCity == nullptr ? nullptr : m_dic.GetAddrNode(pCity->nParent);
    tagADDRINFO const* const pInfo = m_dic.GetAddrInfo(town.nInfo);
    if (pPref == nullptr || pInfo == nullptr || pPref->nLevel != LEVEL_PREF) return PlaceOf(nTown);
    QETEXTPLACE place = EMPTY.place;
    place.pszPref = m_dic.GetString(pPref->nName);
    place.pszCity = m_dic.GetString(pCity->nName);
    place.pszTown = m_dic.GetString(town.nName);
    place.pszPostCode = m_dic.GetString(pInfo->nCode);
    if (place.pszPostCode != nullptr) place.pszOldCode = m_dic.GetString(pInfo->nCode + CODE_SIZE);
    place.nPref = pCity->nParent;
    place.nCity = town.nParent;
    place.nTown = nTown;
    place.nEntry = town.nInfo;
    return place;
}

// Whether the text begins with a shorter town, too, that has subdivisions.
bool CTextReader::HasShorterDivided(size_t nTokens) const {
    bool bDivided = false;
    for (size_t i = 0; i < m_nProbes && m_aProbe[i].nTokens < nTokens && !bDivided; ++i) {
        CTextIndex::ForEach(m_towns, m_aProbe[i].hash, [&](uint32_t nValue) {
            bDivided = bDivided || (nValue & TOWN_DIVIDED) != 0;
            return bDivided;
        });
    }
    return bDivided;
}

// The plain case, most of all addresses: one city of the name, one town of it, no parts. Answers as the long way does, or
// not at all.
bool CTextReader::AnswerPlainly(QETEXTREADING& reading) {
    if (m_nFound != 1 || IsTelling()) return false;
    CCityLength const& length = m_aLength[m_nLengths - 1];
    if (!length.bOnly) return false;
    uint32_t const nTown = m_nFoundValue;
    CTown town;
    town.nEnd = length.nTokens + m_nFoundTokens;
    if ((nTown & TOWN_DIVIDED) != 0) return false;
    if (GoesOnInWords(town.nEnd) && HasShorterDivided(town.nEnd - length.nTokens)) return false;
    tagADDRNODE const* const pTown = m_dic.GetAddrNode(nTown & TOWN_NODE);
    if (pTown == nullptr || pTown->nInfo == ADDR_NONE) return false;
    tagADDRINFO const* const pInfo = m_dic.GetAddrInfo(pTown->nInfo);
    if (m_szCode[0] != '\0' && pInfo != nullptr) Prefetch(m_dic.GetString(pInfo->nCode)); // UseCode will read it
    if (!ReadCity(length.nValue, length.nTokens, town.city) || town.city.bKyoto) return false;
    town.nBegin = length.nTokens;
    if (!IsTown(town, nTown) || HasGap(town) || IsPartOfName(town)) return false;
    if (m_folded.bSizeDropped && HasAzaBehind(town.nEnd)) return false;
    reading = EMPTY;
    reading.code = m_code;
    reading.place = PlainPlace(town.nNode, *pTown);
    WriteFront(town.city, reading);
    bool const bExact = town.city.bExact && town.bExact && m_folded.anBegin[0] == 0 &&
                        m_folded.anBegin[town.nBegin] == m_folded.anEnd[town.nBegin - 1];
    if (!bExact || (town.city.nForm & CITY_SHORT_PREF) != 0) WriteFoldings(town.city, &town, reading);
    reading.town = Span(town.nBegin, town.nEnd);
    SetRest(town.nEnd, reading);
    RemarkWordsBehind(town.nEnd, reading);
    reading.nSureness = SurenessOfOne(reading);
    reading.nCandidate = 1;
    m_vCandidate.assign(1, reading.place);
    return true;
}

// Whether 大字 or 小字 was dropped right behind a token: two characters, and blanks at most.
bool CTextReader::HasAzaBehind(size_t nToken) {
    constexpr uint32_t AZA_BYTES = 6;
    return m_folded.Has(nToken + 1) && m_folded.anBegin[nToken] - m_folded.anEnd[nToken - 1] >= AZA_BYTES;
}

// 大字 is one word, but a town may end in 大 and have a 字 behind it (加茂町西小 and 字東, not 加茂町西 and 小字東): the longer
// town counts.
void CTextReader::ReadAgain(QETEXTREADING& reading) {
    if (!m_folded.bSizeDropped || m_vCity.empty()) return;
    if (!m_vTown.empty() && !HasAzaBehind(m_vTown[0].nEnd)) return;
    size_t const nTown = reading.town.nLength == 0 ? 0 : reading.town.nOffset + reading.town.nLength;
    for (uint32_t nOptions : {uint32_t{FOLD_KEEP_SIZE}, uint32_t{0}}) {
        if (IsTelling() && nOptions != 0)
            Step("again", {0, 0}, "大 or 小 in front of 字 may belong to the name before it");
        m_nFoldOptions = nOptions;
        m_folded.Begin(m_strText.substr(m_nBase), nOptions);
        BeginCities();
        FindCities();
        Answer(reading);
        if (reading.town.nLength != 0 && reading.town.nOffset + reading.town.nLength > nTown) return;
    }
}

void CTextReader::Finish(uint32_t nOptions, QETEXTREADING& reading) {
    if (AnswerPlainly(reading)) {
        UseCode(reading);
        return Renew(reading, nOptions);
    }
    Answer(reading);
    ReadAgain(reading);
    UseCode(reading);
    reading.nCandidate = m_vCandidate.size();
    if (!m_vCandidate.empty()) reading.place = m_vCandidate[0];
    Renew(reading, nOptions);
    if (IsTelling()) TellAnswer(reading);
}

} // namespace qeadrs
