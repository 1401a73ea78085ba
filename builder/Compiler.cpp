// Compiler.cpp - from the rows of the postal tables to a dictionary image.
#include "builder/Compiler.h"

#include "builder/CompilerCity.h"
#include "builder/Error.h"
#include "builder/SearchedName.h"
#include "builder/Text.h"
#include "builder/TownText.h"
#include "dic/AddrDic.h"
#include "dic/ImageHeader.h"

#include <algorithm>
#include <cstring>
#include <map>

namespace qe {

namespace {

// The old-code lookup of the engine examines this many entries from the first code that begins with the old one.
constexpr size_t OLD_CODE_SCAN = 10000;

int FindPrefRow(std::string const& strPref) {
    for (int n = 0; n < PREF_ORDER_ROWS; ++n)
        if (strPref == pref_order[n] + PREF_ORDER_NAME) return n;
    return -1;
}

std::string Key(std::string const& strFirst, std::string const& strSecond) {
    return strFirst + '\n' + strSecond;
}

} // namespace

CCompiler::CCompiler(CStatistics& statistics) : m_statistics(statistics), m_vPref(PREF_ORDER_ROWS, nullptr) {}
CCompiler::~CCompiler() = default;

void CCompiler::Remark(std::string const& strText) {
    m_statistics.Remark(*m_pSource + ":" + std::to_string(m_nLine) + ": " + strText);
}

void CCompiler::BeginRow(std::string const& strSource, size_t nLine) {
    m_pSource = &strSource;
    m_nLine = nLine;
}

CCompiler::CPlace* CCompiler::NewPlace(CPlace* pParent, uint8_t nLevel, std::string const& strName,
                                       std::string const& strKana) {
    std::string strFitting = CutName(strName, NAME_LIMIT);
    if (strFitting.size() < strName.size()) {
        ++m_statistics["names_cut"];
        Remark("cut to " + std::to_string(NAME_LIMIT) + " bytes: " + strName);
    }
    CPlace& place = m_vPlace.emplace_back();
    place.nLevel = nLevel;
    place.strName = std::move(strFitting);
    place.strKana = strKana;
    if (pParent != nullptr) pParent->vChild.push_back(&place);
    return &place;
}

CCompiler::CCity& CCompiler::FindOrAddCity(CTownRow const& row) {
    CCity*& pCity = m_mapCity[Key(row.strPref, row.strCity)];
    if (pCity != nullptr) return *pCity;
    int const nPref = FindPrefRow(row.strPref);
    if (nPref < 0) throw CBuildError("\"" + row.strPref + "\" is no prefecture.");
    CPlace*& pPref = m_vPref[static_cast<size_t>(nPref)];
    if (pPref == nullptr) pPref = NewPlace(nullptr, LEVEL_PREF, row.strPref, row.strPrefKana);
    m_vCity.emplace_back();
    pCity = &m_vCity.back();
    pCity->pPlace = NewPlace(pPref, LEVEL_CITY, row.strCity, row.strCityKana);
    return *pCity;
}

CCompiler::CCity* CCompiler::FindCity(std::string const& strPref, std::string const& strCity) {
    auto const pFound = m_mapCity.find(Key(strPref, strCity));
    return pFound == m_mapCity.end() ? nullptr : pFound->second;
}

// A town is its name and its reading: a few cities have two towns that are written alike.
CCompiler::CPlace* CCompiler::FindOrAddTown(CCity& city, std::string const& strName, std::string const& strKana) {
    CPlace*& pTown = city.mapTown[Key(strName, strKana)];
    if (pTown == nullptr) {
        pTown = NewPlace(city.pPlace, LEVEL_TOWN, strName, strKana);
        city.mapName[strName].push_back(pTown);
    }
    return pTown;
}

// The town, or when it has a code already another node of the same name: an entry and its node belong to each other.
CCompiler::CPlace* CCompiler::FreeTown(CCity& city, std::string const& strName, std::string const& strKana) {
    CPlace* const pTown = FindOrAddTown(city, strName, strKana);
    if (pTown->strCode.empty()) return pTown;
    ++m_statistics[strName.empty() ? "nameless_towns_repeated" : "towns_repeated"];
    CPlace* const pTwin = NewPlace(city.pPlace, LEVEL_TOWN, strName, strKana);
    city.mapName[strName].push_back(pTwin);
    return pTwin;
}

void CCompiler::SetCode(CPlace* pPlace, std::string const& strCode, std::string const& strOldCode) {
    pPlace->strCode = strCode;
    pPlace->strOldCode = strOldCode;
}

// The first entry of the whole city, else the first one of the city's own numbers.
void CCompiler::OfferDefault(CCity& city, CPlace* pPlace, bool bWhole) {
    if (city.pDefault != nullptr && (city.bDefaultIsWhole || !bWhole)) return;
    city.pDefault = pPlace;
    city.bDefaultIsWhole = bWhole;
}

void CCompiler::AddTowns(std::vector<CTownRow> const& vRow, std::string const& strSource) {
    for (CTownRow const& row : vRow) {
        ++m_statistics["town_rows"];
        if (!BeginsWith(row.strCode, row.strOldCode)) ++m_statistics["town_rows_not_below_their_old_code"];
        BeginRow(strSource, row.nLine);
        AddTownRow(FindOrAddCity(row), row);
    }
    for (CCity& city : m_vCity) {
        for (CTownRow const* pRow : city.vFloor) {
            BeginRow(strSource, pRow->nLine);
            AddFloorRow(city, *pRow);
        }
        city.vFloor.clear();
    }
}

void CCompiler::AddTownRow(CCity& city, CTownRow const& row) {
    CTownText const text = ReadTownText(row.strCity, row.strTown, row.strTownKana);
    if (text.bReadingLost) ++m_statistics["rows_without_area_readings"];
    if (text.bShortened) {
        ++m_statistics["area_names_shortened"];
        Remark("shortened to " + std::to_string(NAME_LIMIT) + " bytes: " + row.strTown);
    }
    switch (text.nKind) {
    case ETownKind::Nameless: {
        ++m_statistics["rows_of_whole_cities"];
        CPlace* const pWhole = FreeTown(city, "", "");
        SetCode(pWhole, row.strCode, row.strOldCode);
        OfferDefault(city, pWhole, !Contains(row.strTown, "の次に"));
        break;
    }
    case ETownKind::Town:
        ++m_statistics["rows_of_towns"];
        SetCode(FreeTown(city, text.town.strName, text.town.strKana), row.strCode, row.strOldCode);
        break;
    case ETownKind::Areas: {
        ++m_statistics["rows_of_areas"];
        CPlace* const pTown = FindOrAddTown(city, text.town.strName, text.town.strKana);
        for (CNamed const& area : text.vArea)
            SetCode(NewPlace(pTown, LEVEL_AREA, area.strName, area.strKana), row.strCode, row.strOldCode);
        if (text.town.strName.empty()) OfferDefault(city, pTown->vChild.back(), false);
        if (text.bDefault) SetCode(FreeTown(city, text.town.strName, text.town.strKana), row.strCode, row.strOldCode);
        break;
    }
    case ETownKind::Floor:
        ++m_statistics["rows_of_floors"];
        city.vFloor.push_back(&row);
        break;
    }
}

// The longest town of the city whose name begins the text, null when there is none. Of several of that name it is the
// one whose reading begins the reading too.
CCompiler::CPlace* CCompiler::BuildingTown(CCity const& city, std::string const& strName,
                                           std::string const& strKana) {
    CPlace* pTown = nullptr;
    size_t nLength = CharacterSize(strName);
    for (; nLength < strName.size(); nLength += CharacterSize(std::string_view(strName).substr(nLength))) {
        auto const pFound = city.mapName.find(strName.substr(0, nLength));
        if (pFound == city.mapName.end()) continue;
        auto const pRead = std::find_if(pFound->second.begin(), pFound->second.end(),
                                        [&](CPlace const* pPlace) { return BeginsWith(strKana, pPlace->strKana); });
        pTown = pRead != pFound->second.end() ? *pRead : pFound->second.front();
    }
    return pTown;
}

void CCompiler::AddFloorRow(CCity& city, CTownRow const& row) {
    CTownText const text = ReadTownText(row.strCity, row.strTown, row.strTownKana);
    CNamed building = text.town;
    CPlace* pTown = BuildingTown(city, building.strName, building.strKana);
    if (pTown == nullptr) {
        ++m_statistics["buildings_without_town"];
        Remark("no town of the city begins this building: " + row.strTown);
        pTown = FindOrAddTown(city, "", "");
    }
    building.strName.erase(0, pTown->strName.size());
    building.strKana.erase(0, BeginsWith(building.strKana, pTown->strKana) ? pTown->strKana.size() : 0);
    CPlace*& pBuilding = city.mapBuilding[Key(Key(pTown->strName, pTown->strKana), building.strName)];
    if (pBuilding == nullptr) {
        pBuilding = NewPlace(pTown, LEVEL_BLOCK, building.strName, building.strKana);
        ++m_statistics["buildings"];
    }
    CPlace* pPlace = pBuilding;
    if (!text.floor.strName.empty())
        pPlace = NewPlace(pBuilding, LEVEL_NOTE, text.floor.strName, "");
    else if (!pBuilding->strCode.empty())
        pPlace = NewPlace(pTown, LEVEL_BLOCK, building.strName, building.strKana);
    SetCode(pPlace, row.strCode, row.strOldCode);
}

// The town as the town table spells it, else the one that is equal after folding, else a new one without a code.
CCompiler::CPlace* CCompiler::OfficeTown(CCity& city, COfficeRow const& row) {
    if (row.strTown.empty()) {
        ++m_statistics["offices_without_town"];
        return FindOrAddTown(city, "", "");
    }
    if (auto const pFound = city.mapName.find(row.strTown); pFound != city.mapName.end()) {
        // Of towns that are written alike the first with a code stands first in the end: an address finds that one.
        auto const& vAlike = pFound->second;
        auto const pCoded = std::find_if(vAlike.begin(), vAlike.end(), [](auto p) { return !p->strCode.empty(); });
        CPlace* const pTown = pCoded != vAlike.end() ? *pCoded : vAlike.front();
        ++m_statistics[pTown->bAdded ? "offices_in_towns_added" : "offices_in_towns_spelled_alike"];
        return pTown;
    }
    if (!city.bFolded) {
        city.bFolded = true;
        for (CPlace* pTown : city.pPlace->vChild)
            if (!pTown->strName.empty()) city.mapFolded.emplace(FoldTownName(pTown->strName), pTown);
    }
    if (auto const pFound = city.mapFolded.find(FoldTownName(row.strTown)); pFound != city.mapFolded.end()) {
        ++m_statistics["offices_in_towns_folded"];
        return pFound->second;
    }
    ++m_statistics["offices_in_towns_added"];
    ++m_statistics["towns_added"];
    CPlace* const pAdded = FindOrAddTown(city, row.strTown, "");
    pAdded->bAdded = true;
    return pAdded;
}

void CCompiler::AddOffices(std::vector<COfficeRow> const& vRow, std::string const& strSource) {
    for (COfficeRow const& row : vRow) {
        ++m_statistics["office_rows"];
        BeginRow(strSource, row.nLine);
        CCity* const pCity = FindCity(row.strPref, row.strCity);
        if (pCity == nullptr) {
            ++m_statistics["offices_left_out"];
            Remark("left out, the town table has no such city: " + row.strPref + row.strCity);
            continue;
        }
        CPlace* pPlace = OfficeTown(*pCity, row);
        if (!row.strRest.empty()) {
            CPlace*& pRest = pCity->mapRest[Key(Key(pPlace->strName, pPlace->strKana), row.strRest)];
            if (pRest == nullptr) pRest = NewPlace(pPlace, LEVEL_AREA, row.strRest, "");
            pPlace = pRest;
        }
        CPlace* const pOffice = NewPlace(pPlace, LEVEL_OFFICE, row.strName, row.strKana);
        SetCode(pOffice, row.strCode, row.strOldCode);
        pOffice->strAlias = SearchedName(row.strName); // of the whole name: without its blanks many a long one fits
    }
}

// Table order, but a name that begins another one comes after it: matching takes the first town that fits, and this
// makes the first the longest. The nameless town, whose name begins every other, comes last for the same reason. Of
// equal names the one with a code comes first.
class CCompiler::CTownOrder {
  public:
    explicit CTownOrder(std::vector<CPlace*> const& vTown) {
        for (CPlace* pTown : vTown) m_mapName[pTown->strName].vPlace.push_back(pTown);
        // Backwards: of equal names the first place counts.
        for (size_t n = vTown.size(); n-- > 0;) m_mapName[vTown[n]->strName].nPosition = n;
        for (auto& [strName, name] : m_mapName)
            std::stable_partition(name.vPlace.begin(), name.vPlace.end(),
                                  [](CPlace const* p) { return !p->strCode.empty(); });
        for (CPlace const* pTown : vTown)
            if (!pTown->strName.empty()) Emit(m_mapName.find(pTown->strName));
        if (auto const pNameless = m_mapName.find(""); pNameless != m_mapName.end()) Emit(pNameless);
    }

    std::vector<CPlace*> Take() { return std::move(m_vOrdered); }

  private:
    struct CName {
        std::vector<CPlace*> vPlace;
        size_t nPosition = 0;
        bool bDone = false;
    };
    using CNames = std::map<std::string_view, CName>; // by bytes: the names that begin with X follow X directly

    // The names that this one begins first, in table order, then the name itself.
    void Emit(CNames::iterator pName) {
        if (pName->second.bDone) return;
        pName->second.bDone = true;
        std::vector<CNames::iterator> vLonger;
        for (auto p = std::next(pName); p != m_mapName.end() && BeginsWith(p->first, pName->first); ++p)
            if (!p->second.bDone) vLonger.push_back(p);
        std::sort(vLonger.begin(), vLonger.end(),
                  [](auto pA, auto pB) { return pA->second.nPosition < pB->second.nPosition; });
        for (CNames::iterator pLonger : vLonger) Emit(pLonger);
        m_vOrdered.insert(m_vOrdered.end(), pName->second.vPlace.begin(), pName->second.vPlace.end());
    }

    CNames m_mapName;
    std::vector<CPlace*> m_vOrdered;
};

void CCompiler::WritePlace(CImageWriter& writer, CPlace& place, uint32_t nParent) {
    uint32_t const nNode = writer.AddNode(nParent, place.nLevel, place.strName, place.strKana);
    if (!place.strCode.empty()) place.nEntry = writer.AddEntry(nNode, place.strCode, place.strOldCode);
    if (place.nLevel == LEVEL_OFFICE) {
        writer.AddOffice(nNode);
        if (!place.strAlias.empty()) writer.AddOffice(writer.AddAlias(nNode, place.strAlias));
        ++m_statistics[place.strAlias.empty() ? "offices_without_alias" : "office_aliases"];
    }
    place.nNode = nNode;
    for (CPlace* pChild : place.vChild) WritePlace(writer, *pChild, nNode);
}

CImage CCompiler::Compile(uint32_t nEdition, ESource nSource) {
    if (m_vCity.empty()) throw CBuildError("The town table has no rows: there is nothing to compile.");
    CImageWriter writer;
    writer.SetIdentification(nEdition, nSource);
    for (CCity const& city : m_vCity) // today's alone
        if (city.pDefault == nullptr) ++m_statistics["cities_without_code"];
    PlaceSuperseded();
    for (CCity const& city : m_vCity) city.pPlace->vChild = CTownOrder(city.pPlace->vChild).Take();
    for (CPlace* pPref : m_vPref) {
        if (pPref == nullptr) ++m_statistics["prefectures_missing"];
        if (pPref != nullptr) WritePlace(writer, *pPref, ADDR_NONE);
    }
    // An address that stops at the city finds the entry that stands for the whole of it.
    for (CCity const& city : m_vCity)
        if (city.pDefault != nullptr) writer.Refer(city.pPlace->nNode, city.pDefault->nEntry);
    ReferSingleCodes(writer);
    for (CPlace const& place : m_vPlace)
        if (place.pSuccessor != nullptr) writer.Supersede(place.nEntry, place.pSuccessor->nEntry);
    m_statistics["cities"] = m_vCity.size() - m_statistics.Get("superseded_cities");
    m_statistics["nodes"] = writer.NodeCount();
    m_statistics["entries"] = writer.EntryCount();
    CImage image = writer.Write();
    CountUnreachableOldCodes(image);
    m_statistics["bytes"] = image.vByte.size();
    return image;
}

// A town without a code of its own whose subdivisions all have the same one refers to the first of them: whoever
// writes 札幌市中央区北四条東 means 060-0034, whatever the number.
void CCompiler::ReferSingleCodes(CImageWriter& writer) {
    for (CPlace const& town : m_vPlace) {
        if (town.nLevel != LEVEL_TOWN || town.strName.empty() || !town.strCode.empty()) continue;
        CPlace const* pFirst = nullptr;
        bool bOne = true;
        ForEachWithCode(town, [&](CPlace const& place) {
            if (pFirst == nullptr) pFirst = &place;
            bOne = bOne && place.strCode == pFirst->strCode;
        });
        if (pFirst == nullptr) continue;
        ++m_statistics[bOne ? "towns_with_the_one_code_of_their_areas" : "towns_with_several_codes_and_no_default"];
        if (bOne) writer.Refer(town.nNode, pFirst->nEntry);
    }
}

void CCompiler::CountUnreachableOldCodes(CImage const& image) {
    unsigned char const* const pImage = image.vByte.data();
    auto const* const pszArea = reinterpret_cast<char const*>(pImage + HeaderWord(pImage, HDR_STRING_AREA));
    std::vector<char const*> vCode(HeaderWord(pImage, HDR_INFO_COUNT));
    for (size_t n = 0; n < vCode.size(); ++n)
        vCode[n] = pszArea + ReadWord(pImage + HeaderWord(pImage, HDR_INFO_TABLE) + n * sizeof(tagADDRINFO));
    uint64_t nNoPrefix = 0;
    uint64_t nUnreachable = 0;
    for (size_t n = 0; n < vCode.size(); ++n) {
        char const* const pszOld = vCode[n] + std::strlen(vCode[n]) + 1;
        if (*pszOld == '\0') continue; // a source without old codes
        size_t const nLength = std::strlen(pszOld);
        if (std::strncmp(vCode[n], pszOld, nLength) != 0) ++nNoPrefix;
        size_t const nStart = static_cast<size_t>(std::lower_bound(vCode.begin(), vCode.end(), pszOld,
                                                                   [&](char const* psz, char const* pszKey) {
                                                                       return std::strncmp(psz, pszKey, nLength) < 0;
                                                                   }) -
                                                  vCode.begin());
        bool const bStart = nStart < vCode.size() && std::strncmp(vCode[nStart], pszOld, nLength) == 0;
        if (!bStart || n < nStart || n - nStart >= OLD_CODE_SCAN) ++nUnreachable;
    }
    m_statistics["old_codes_no_prefix_of_their_code"] = nNoPrefix;
    m_statistics["entries_out_of_reach_of_their_old_code"] = nUnreachable;
}

} // namespace qe
