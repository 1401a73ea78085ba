// Browsing the whole country with the class: every prefecture, city and town against the official tables, every
// address below a city and every search for a city against the slow reader.
#include "ExpectedRow.h"
#include "Failures.h"
#include "Lookup.h"
#include "Prepared.h"
#include "Previous.h"
#include "SlowBrowse.h"
#include "dic/AddrKey.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <map>
#include <random>
#include <set>

using namespace national;

namespace {

using CRecords = std::vector<tagADDR>;
using CTexts = std::vector<std::string>;

constexpr unsigned SEED = 20260529;

// The lists of the class, each begun at the prefectures: a level is asked for once.
CRecords ListPrefectures() {
    CRecords vAddr;
    EXPECT_TRUE(Dictionary().GetPref(vAddr));
    return vAddr;
}
CRecords ListCities(unsigned long nPref) {
    ListPrefectures();
    CRecords vAddr;
    EXPECT_TRUE(Dictionary().GetCityFromNo(nPref, vAddr));
    return vAddr;
}
CRecords ListTowns(unsigned long nPref, unsigned long nCity) {
    ListCities(nPref);
    CRecords vAddr;
    EXPECT_TRUE(Dictionary().GetTownFromNo(nCity, vAddr));
    return vAddr;
}
CRecords ListAddresses(unsigned long nPref, unsigned long nCity) {
    ListCities(nPref);
    CRecords vAddr;
    EXPECT_TRUE(Dictionary().GetTownExFromNo(nCity, vAddr));
    return vAddr;
}

// All that a record tells: its texts, then both codes; "~" for what it lacks.
std::string RecordText(tagADDR const& addr) {
    auto const OrNone = [](char const* psz) { return std::string(psz == nullptr ? "~" : psz); };
    return AddressText(addr) + "|" + OrNone(addr.pszPostCode) + "|" + OrNone(addr.pszCodeExt);
}
CTexts RecordTexts(CRecords const& vAddr) {
    CTexts vText;
    for (tagADDR const& addr : vAddr) vText.push_back(RecordText(addr));
    return vText;
}

// The same for an expected one.
struct CCodes {
    COptionalText strCode, strOldCode;
};
std::string ExpectedText(CAddress const& address, CCodes const& codes) {
    return AddressText(address)
        .append("|")
        .append(codes.strCode.value_or("~"))
        .append("|")
        .append(codes.strOldCode.value_or("~"));
}
std::string PrefText(std::string_view strName, std::string_view strKana) {
    CAddress a;
    a.strPref = strName, a.strPrefKana = strKana;
    return ExpectedText(a, {});
}
std::string CityText(std::string_view strName, std::string_view strKana) {
    CAddress a;
    a.strCity = strName, a.strCityKana = strKana;
    return ExpectedText(a, {});
}
std::string TownText(std::string_view strName, std::string_view strKana, CCodes const& codes) {
    CAddress a;
    a.strTown = strName, a.strTownKana = strKana;
    return ExpectedText(a, codes);
}

// The codes of a node's entry, superseded or not.
CCodes CodesOf(uint32_t nNode) {
    uint32_t const nEntry = Official().Nodes()[nNode].nEntry;
    if (nEntry == NONE) return {};
    return {Official().Entries()[nEntry].strCode, Official().Entries()[nEntry].strOldCode};
}

uint32_t IndexOf(tagADDRNODE const* pNode) {
    return pNode == nullptr ? NONE : static_cast<uint32_t>(pNode - Dictionary().GetAddrNode(0));
}
CNodes IndicesOf(std::vector<tagADDRNODE const*> const& vNode) {
    CNodes v;
    for (tagADDRNODE const* pNode : vNode) v.push_back(IndexOf(pNode));
    return v;
}
CNodes ListNodes(CRecords const& vAddr) {
    CNodes v;
    for (tagADDR const& addr : vAddr) v.push_back(IndexOf(addr.pListCity));
    return v;
}

// A city by its two numbers, and the node that the slow reader has there.
struct CCity {
    unsigned long nPref, nCity;
    uint32_t nNode;
    std::string strKey;
};
template <typename CHECK>
void ForEachCity(CHECK Check) {
    CFailures failures;
    for (unsigned long nPref = 0; nPref < AllPrefectures().size(); ++nPref) {
        uint32_t const nPrefNode = AllPrefectures()[nPref];
        unsigned long nCity = 0;
        for (uint32_t nNode : ChildrenOf(nPrefNode)) {
            Check(failures, CCity{nPref, nCity++, nNode, CityKey(NameOf(nPrefNode), NameOf(nNode))});
            if (failures.Enough()) return;
        }
    }
}

// The first difference of two lists is a failure.
template <typename LIST, typename DESCRIBE>
void CompareLists(CFailures& failures, std::string const& strQuestion, LIST const& vFound, LIST const& vExpected,
                  DESCRIBE Describe) {
    if (vFound == vExpected) return;
    size_t n = 0;
    while (n < vFound.size() && n < vExpected.size() && vFound[n] == vExpected[n]) ++n;
    auto const At = [&](LIST const& v) { return n < v.size() ? Describe(v[n]) : std::string("nothing"); };
    failures.Add(strQuestion + ": " + std::to_string(vFound.size()) + " instead of " +
                 std::to_string(vExpected.size()) + "; number " + std::to_string(n) + " is\n  " + At(vFound) +
                 "\ninstead of\n  " + At(vExpected));
}
void CompareTexts(CFailures& failures, std::string const& strQuestion, CTexts const& vFound,
                  CTexts const& vExpected) {
    CompareLists(failures, strQuestion, vFound, vExpected, [](std::string const& str) { return str; });
}
void CompareNodes(CFailures& failures, std::string const& strQuestion, CNodes const& vFound,
                  CNodes const& vExpected) {
    CompareLists(failures, strQuestion, vFound, vExpected, [](uint32_t n) {
        return "node " + std::to_string(n) + (n < Official().Nodes().size() ? " " + NameOf(n) : "");
    });
}

// --- prefectures and cities ----------------------------------------------------------------------------------------

// The table's rows are in the order of the JIS code, which is the conventional one.
TEST(BrowseWholeCountry, ListsAllPrefecturesWithTheirReadingsAtTheirNumbers) {
    CTexts vExpected;
    for (CTownRow const& row : TownRows())
        if (std::string const str = PrefText(row.strPref, row.strPrefKana);
            vExpected.empty() || vExpected.back() != str)
            vExpected.push_back(str);
    CRecords const vAddr = ListPrefectures();
    ASSERT_EQ(vAddr.size(), 47u);
    EXPECT_EQ(RecordTexts(vAddr), vExpected);
    EXPECT_EQ(ListNodes(vAddr), CNodes(47, NONE));
    EXPECT_STREQ(vAddr[0].pszPref, "北海道");
    EXPECT_STREQ(vAddr[12].pszPref, "東京都");
    EXPECT_STREQ(vAddr[13].pszPref, "神奈川県");
    EXPECT_STREQ(vAddr[46].pszPref, "沖縄県");
}

// The cities of the table in its order, by prefecture.
std::map<std::string, CTexts> CitiesOfTable() {
    std::map<std::string, CTexts> mapCity;
    std::set<std::string> vSeen;
    for (CTownRow const& row : TownRows())
        if (vSeen.insert(CityKey(row.strPref, row.strCity)).second)
            mapCity[std::string(row.strPref)].push_back(CityText(row.strCity, row.strCityKana));
    return mapCity;
}

// Those of earlier editions that are gone, in any order.
std::map<std::string, std::set<std::string>> CitiesThatAreGone() {
    std::map<std::string, std::set<std::string>> mapCity;
    for (CGoneTown const& town : GoneTowns())
        if (town.bCityGone) mapCity[std::get<0>(town.key)].insert(CityText(std::get<1>(town.key), town.strCityKana));
    return mapCity;
}

TEST(BrowseWholeCountry, ListsExactlyTheCitiesOfTheTableInItsOrderAndThoseThatAreGoneBehindThem) {
    auto mapCity = CitiesOfTable();
    auto mapGone = CitiesThatAreGone();
    CFailures failures;
    size_t nCities = 0, nGone = 0;
    for (unsigned long nPref = 0; nPref < 47 && !failures.Enough(); ++nPref) {
        std::string const strPref = NameOf(AllPrefectures()[nPref]);
        CTexts const& vExpected = mapCity[strPref];
        CTexts vFound = RecordTexts(ListCities(nPref));
        auto const pGone = vFound.begin() + static_cast<long>(std::min(vFound.size(), vExpected.size()));
        if (std::set<std::string>(pGone, vFound.end()) != mapGone[strPref])
            failures.Add(strPref + " has others behind its cities than those that are gone");
        nGone += static_cast<size_t>(vFound.end() - pGone);
        vFound.erase(pGone, vFound.end());
        nCities += vFound.size();
        CompareTexts(failures, strPref, vFound, vExpected);
    }
    PrintFigure("cities of today", nCities);
    PrintFigure("cities that are gone", nGone);
    EXPECT_EQ(nCities, CompilersCount("cities"));
    EXPECT_EQ(nGone, CompilersCount("superseded_cities"));
    if (Official().Word(3) != 20260500) return;
    EXPECT_EQ(nCities, 1892u);
    if (Editions().size() != 3 || Editions().front().strName != "2015-10") return;
    EXPECT_EQ(nGone, 9u);
}

TEST(BrowseWholeCountry, ListsEveryCityWithItsNode) {
    CFailures failures;
    for (unsigned long nPref = 0; nPref < 47 && !failures.Enough(); ++nPref)
        CompareNodes(failures, NameOf(AllPrefectures()[nPref]), ListNodes(ListCities(nPref)),
                     ChildrenOf(AllPrefectures()[nPref]));
}

// --- towns ---------------------------------------------------------------------------------------------------------

// The codes that the rows of one town of the table give it: one pair for each row that is the town itself, else that of
// its parts when it is the same in all of them.
struct CCodesOfTown {
    std::vector<CCodes> vOwn;
    CCodes firstPart;
    std::set<std::string_view> vCodeOfPart;
};
using CTownOfCity = std::tuple<std::string, std::string, std::string>; // city, name, reading

std::map<CTownOfCity, CCodesOfTown> CodesOfTable() {
    std::map<CTownOfCity, CCodesOfTown> mapTown;
    for (size_t n = 0; n < TownRows().size(); ++n) {
        CTownRow const& row = TownRows()[n];
        for (CPlace const& place : ExpectedTowns().PlacesOf(n)) {
            if (place.town.strName.empty()) continue;
            CCodesOfTown& town = mapTown[{CityKey(row.strPref, row.strCity), place.town.strName, place.town.strKana}];
            CCodes const codes = {row.strCode, row.strOldCode};
            if (place.bDefault) town.vOwn.push_back(codes);
            if (place.bDefault) continue;
            if (town.vCodeOfPart.empty()) town.firstPart = codes;
            town.vCodeOfPart.insert(row.strCode);
        }
    }
    return mapTown;
}

// What the lists of towns hold, by city and sorted, and how many of each kind.
struct CExpectedLists {
    std::map<std::string, CTexts> mapCity;
    size_t nOwnCode = 0, nCodeOfParts = 0, nNoCode = 0, nOfOffices = 0, nGone = 0;
};

void AddTownsOfTable(CExpectedLists& lists) {
    for (auto const& [key, town] : CodesOfTable()) {
        auto const& [strCity, strName, strKana] = key;
        CTexts& vText = lists.mapCity[strCity];
        for (CCodes const& codes : town.vOwn) vText.push_back(TownText(strName, strKana, codes));
        lists.nOwnCode += town.vOwn.size();
        if (!town.vOwn.empty()) continue;
        bool const bOne = town.vCodeOfPart.size() == 1;
        vText.push_back(TownText(strName, strKana, bOne ? town.firstPart : CCodes()));
        ++(bOne ? lists.nCodeOfParts : lists.nNoCode);
    }
}

void AddTownsOfOfficesAndThoseGone(CExpectedLists& lists) {
    std::set<std::pair<std::string, std::string>> vOfOffices = OfficeTowns();
    for (CGoneTown const& town : GoneTowns()) {
        auto const& [strPref, strCity, strName] = town.key;
        std::string const strKey = CityKey(strPref, strCity);
        vOfOffices.erase({strKey, strName}); // one town for both: it has the code of the old one
        if (strName.empty()) continue;
        lists.mapCity[strKey].push_back(TownText(strName, town.strTownKana, {town.strCode, town.strOldCode}));
        ++lists.nGone;
    }
    for (auto const& [strKey, strName] : vOfOffices) {
        if (strName.empty()) continue;
        lists.mapCity[strKey].push_back(TownText(strName, "", {}));
        ++lists.nOfOffices;
    }
}

CExpectedLists MakeExpectedLists() {
    CExpectedLists lists;
    AddTownsOfTable(lists);
    AddTownsOfOfficesAndThoseGone(lists);
    for (auto& [strCity, vText] : lists.mapCity) std::sort(vText.begin(), vText.end());
    return lists;
}

TEST(BrowseWholeCountry, ListsExactlyTheTownsThatTheTablesNameWithTheirReadingsAndBothCodes) {
    CExpectedLists lists = MakeExpectedLists();
    size_t nListed = 0;
    ForEachCity([&](CFailures& failures, CCity const& city) {
        CTexts vFound = RecordTexts(ListTowns(city.nPref, city.nCity));
        nListed += vFound.size();
        std::sort(vFound.begin(), vFound.end());
        CompareTexts(failures, city.strKey, vFound, lists.mapCity[city.strKey]);
    });
    PrintFigure("towns listed", nListed);
    PrintFigure("of them with a code of their own", lists.nOwnCode);
    PrintFigure("with the one code of their parts", lists.nCodeOfParts);
    PrintFigure("with several codes in their parts and none of their own", lists.nNoCode);
    PrintFigure("that only organisations name", lists.nOfOffices);
    PrintFigure("that are gone", lists.nGone);
    EXPECT_EQ(nListed, lists.nOwnCode + lists.nCodeOfParts + lists.nNoCode + lists.nOfOffices + lists.nGone);
    EXPECT_EQ(lists.nCodeOfParts, CompilersCount("towns_with_the_one_code_of_their_areas"));
    EXPECT_EQ(lists.nNoCode, CompilersCount("towns_with_several_codes_and_no_default"));
}

TEST(BrowseWholeCountry, ListsEveryTownThatHasANameWithItsNode) {
    ForEachCity([](CFailures& failures, CCity const& city) {
        CompareNodes(failures, city.strKey, ListNodes(ListTowns(city.nPref, city.nCity)),
                     NamedChildrenOf(city.nNode));
    });
}

// Where a town stands in the table; the first place there of the names that its own begins with, and the last place of
// those that it begins, itself included.
struct CTownPlace {
    size_t nTable = NOWHERE, nFirst = NOWHERE, nLast = 0;
    static constexpr size_t NOWHERE = SIZE_MAX; // the table lacks it: organisations name it, or it is gone
};
using CTownPlaces = std::map<std::string_view, CTownPlace>;

CTownPlaces PlacesInTable(CTexts const& vName, std::string const& strCity) {
    CTownPlaces mapPlace; // sorted by bytes: the names that one begins stand right behind it
    for (std::string const& str : vName) mapPlace[str];
    size_t nTable = 0;
    for (CExpectedTowns::CTown const& town : ExpectedTowns().TownsOf(strCity))
        if (auto const p = mapPlace.find(town.name.strName); p != mapPlace.end())
            p->second.nTable = std::min(p->second.nTable, nTable++);
    for (auto p = mapPlace.begin(); p != mapPlace.end(); ++p)
        for (auto pLonger = p; pLonger != mapPlace.end() && BeginsWith(pLonger->first, p->first); ++pLonger) {
            p->second.nLast = std::max(p->second.nLast, pLonger->second.nTable);
            pLonger->second.nFirst = std::min(pLonger->second.nFirst, p->second.nTable);
        }
    return mapPlace;
}

// Whether b may be listed before a, which comes first in the table: b stands before a name that begins it, which comes
// before a; or a stands behind a name that it begins, which comes behind b.
bool MayChangePlaces(CTownPlace const& a, CTownPlace const& b) {
    return b.nFirst <= a.nTable || a.nLast >= b.nTable;
}

TEST(BrowseWholeCountry, ListsTownsInTheOrderOfTheTableButThoseThatBeginOthersBehindThem) {
    size_t nChanged = 0;
    ForEachCity([&](CFailures& failures, CCity const& city) {
        if (CityCodes().count(city.strKey) == 0) return; // the table lacks the city
        CTexts vName;
        for (tagADDR const& addr : ListTowns(city.nPref, city.nCity)) vName.push_back(addr.pszTown);
        CTownPlaces const mapPlace = PlacesInTable(vName, city.strKey);
        std::vector<CTownPlace> vPlace;
        for (std::string const& str : vName)
            if (mapPlace.at(str).nTable != CTownPlace::NOWHERE) vPlace.push_back(mapPlace.at(str));
        size_t nWrong = 0;
        for (size_t nBehind = 1; nBehind < vPlace.size(); ++nBehind)
            for (size_t n = 0; n < nBehind; ++n) {
                if (vPlace[n].nTable <= vPlace[nBehind].nTable) continue;
                ++nChanged;
                nWrong += !MayChangePlaces(vPlace[nBehind], vPlace[n]);
            }
        if (nWrong > 0) failures.Add(city.strKey + ": " + std::to_string(nWrong) + " pairs are out of order");
    });
    PrintFigure("pairs of towns that have changed places", nChanged);
}

TEST(BrowseWholeCountry, ListsNoTownBehindOneWhoseNameBeginsItsOwn) {
    ForEachCity([](CFailures& failures, CCity const& city) {
        std::set<std::string_view> vBefore;
        for (tagADDR const& addr : ListTowns(city.nPref, city.nCity)) {
            std::string_view const strTown = addr.pszTown;
            for (size_t n = 1; n < strTown.size(); ++n)
                if (vBefore.count(strTown.substr(0, n)) != 0)
                    failures.Add(city.strKey + ": " + std::string(strTown) + " stands behind its beginning");
            vBefore.insert(strTown);
        }
    });
}

// --- all addresses below a city ------------------------------------------------------------------------------------

bool HasCurrentEntry(uint32_t nNode) {
    uint32_t const nEntry = Official().Nodes()[nNode].nEntry;
    return nEntry != NONE && !Official().Entries()[nEntry].bSuperseded;
}

// The nodes with a current entry below one, depth first, and what their records tell. A text stays for later siblings
// of other levels.
struct CBelow {
    CNodes vNode;
    CTexts vText;
};
void recListBelow(uint32_t nNode, CAddress address, CBelow& below) {
    for (uint32_t n : ChildrenOf(nNode)) {
        Official().TakeTexts(n, address);
        if (HasCurrentEntry(n)) {
            below.vNode.push_back(n);
            below.vText.push_back(ExpectedText(address, CodesOf(n)));
        }
        recListBelow(n, address, below);
    }
}

TEST(BrowseWholeCountry, ListsTheAddressesBelowEveryCityDepthFirst) {
    size_t nAddresses = 0;
    ForEachCity([&](CFailures& failures, CCity const& city) {
        CBelow below;
        recListBelow(city.nNode, {}, below);
        CRecords const vAddr = ListAddresses(city.nPref, city.nCity);
        nAddresses += vAddr.size();
        CompareTexts(failures, city.strKey, RecordTexts(vAddr), below.vText);
        if (ListNodes(vAddr) != CNodes(vAddr.size(), NONE)) failures.Add(city.strKey + ": a record has a node");
    });
    PrintFigure("addresses below cities", nAddresses);
}

// A record without the texts that earlier siblings have left in it: those of the node's own way up.
std::string OwnText(CAddress const& own, tagADDR addr) {
    auto const KeepOwn = [](COptionalText const& strOwn, char const*& psz) {
        if (!strOwn) psz = nullptr;
    };
    KeepOwn(own.strArea, addr.pszArea), KeepOwn(own.strAreaKana, addr.pszAreaKana);
    KeepOwn(own.strBlock, addr.pszBlock), KeepOwn(own.strBlockKana, addr.pszBlockKana);
    KeepOwn(own.strNote, addr.pszNote);
    KeepOwn(own.strOffice, addr.pszOffice), KeepOwn(own.strOfficeKana, addr.pszOfficeKana);
    return RecordText(addr);
}

// The texts of a node from the town downwards.
CAddress BelowCity(uint32_t nNode) {
    CAddress a;
    for (uint32_t n = nNode; Official().Nodes()[n].nLevel > 1; n = Official().Nodes()[n].nParent)
        Official().TakeTexts(n, a);
    return a;
}

// Entries by the city that they stand below.
std::map<uint32_t, CNodes> NodesOfCurrentEntriesByCity() {
    std::map<uint32_t, CNodes> mapCity;
    for (CSlowReader::CEntry const& entry : Official().Entries())
        if (!entry.bSuperseded) mapCity[Official().Ancestor(entry.nNode, 1)].push_back(entry.nNode);
    return mapCity;
}

TEST(BrowseWholeCountry, ListsEveryCurrentEntryOnceBelowItsCityAndAgainForATownWithTheCodeOfItsParts) {
    auto mapCity = NodesOfCurrentEntriesByCity();
    size_t nEntries = 0, nTowns = 0;
    ForEachCity([&](CFailures& failures, CCity const& city) {
        CNodes vNode = mapCity[city.nNode];
        nEntries += vNode.size();
        for (uint32_t nTown : ChildrenOf(city.nNode)) // those that refer to the entry of another node
            if (HasCurrentEntry(nTown) && Official().Entries()[Official().Nodes()[nTown].nEntry].nNode != nTown) {
                vNode.push_back(nTown);
                ++nTowns;
            }
        CBelow below; // tells whose record each one is
        recListBelow(city.nNode, {}, below);
        CRecords const vAddr = ListAddresses(city.nPref, city.nCity);
        CTexts vFound, vExpected;
        for (size_t n = 0; n < vAddr.size() && n < below.vNode.size(); ++n)
            vFound.push_back(OwnText(BelowCity(below.vNode[n]), vAddr[n]));
        for (uint32_t n : vNode) vExpected.push_back(ExpectedText(BelowCity(n), CodesOf(n)));
        std::sort(vFound.begin(), vFound.end());
        std::sort(vExpected.begin(), vExpected.end());
        CompareTexts(failures, city.strKey, vFound, vExpected);
        if (vAddr.size() != vNode.size()) failures.Add(city.strKey + ": " + std::to_string(vAddr.size()));
    });
    PrintFigure("current entries", nEntries);
    PrintFigure("towns with the one code of their parts", nTowns);
    size_t nCurrent = 0;
    for (CSlowReader::CEntry const& entry : Official().Entries()) nCurrent += !entry.bSuperseded;
    EXPECT_EQ(nEntries, nCurrent);
}

void recCollectBelow(uint32_t nNode, CNodes& vNode) {
    if (HasCurrentEntry(nNode)) vNode.push_back(nNode);
    for (uint32_t n : ChildrenOf(nNode)) recCollectBelow(n, vNode);
}

TEST(BrowseWholeCountry, CollectsTheNodesWithACurrentEntryBelowEveryPrefectureParentsFirst) {
    CFailures failures;
    size_t nNodes = 0;
    for (uint32_t nPref : AllPrefectures()) {
        CNodes vExpected;
        recCollectBelow(nPref, vExpected);
        std::vector<tagADDRNODE const*> vNode;
        Dictionary().recCollectNode(Dictionary().GetAddrNode(nPref), vNode);
        nNodes += vNode.size();
        CompareNodes(failures, NameOf(nPref), IndicesOf(vNode), vExpected);
        if (failures.Enough()) return;
    }
    PrintFigure("nodes collected", nNodes);
}

// --- sorting -------------------------------------------------------------------------------------------------------

// Sort type 9 for as long as it lives.
class CSorted {
  public:
    CSorted() { Dictionary().SetSortType(SORT_ADDR); }
    ~CSorted() { Dictionary().SetSortType(SORT_DICTIONARY); }
    CSorted(CSorted const&) = delete;
    CSorted& operator=(CSorted const&) = delete;
};

bool AreSame(CRecords const& vAddr, CRecords const& vOther) {
    return std::equal(vAddr.begin(), vAddr.end(), vOther.begin(), vOther.end(), [](auto const& a, auto const& b) {
        return std::memcmp(&a, &b, offsetof(tagADDR, nCityOrder)) == 0 && a.nCityOrder == b.nCityOrder;
    });
}

void Shuffle(CRecords& vAddr, std::mt19937& random) {
    for (size_t n = vAddr.size(); n > 1; --n) std::swap(vAddr[n - 1], vAddr[random() % n]);
}

TEST(BrowseSorted, PutsTheShuffledAddressesOfEveryCityInTheOrderOfTheirComparison) {
    std::printf("seed %u\n", SEED);
    std::mt19937 random(SEED);
    size_t nMoved = 0;
    ForEachCity([&](CFailures& failures, CCity const& city) {
        CRecords vShuffled = ListAddresses(city.nPref, city.nCity);
        Shuffle(vShuffled, random);
        CRecords vSorted = vShuffled, vExpected = vShuffled;
        SortAddrs(vSorted);
        std::stable_sort(vExpected.begin(), vExpected.end());
        nMoved += !AreSame(vShuffled, vExpected);
        if (!AreSame(vSorted, vExpected)) failures.Add(city.strKey);
    });
    PrintFigure("cities whose addresses were not in order", nMoved);
    EXPECT_GT(nMoved, 1000u);
}

// With prefecture and city in the records, and the class of the city in the keys of half of them.
TEST(BrowseSorted, PutsAShuffledSampleOfTheWholeCountryInTheOrderOfItsComparison) {
    std::printf("seed %u\n", SEED);
    std::mt19937 random(SEED);
    CRecords vAll, vShuffled;
    Dictionary().GetPrefFromPart("", vAll);
    for (size_t n = 0; n < vAll.size(); n += 15) {
        vShuffled.push_back(vAll[n]);
        vShuffled.back().nCityOrder = static_cast<int>(random() % 2);
        if (random() % 8 == 0) vShuffled.back().pszPref = nullptr;
    }
    Shuffle(vShuffled, random);
    CRecords vSorted = vShuffled, vExpected = vShuffled;
    SortAddrs(vSorted);
    std::stable_sort(vExpected.begin(), vExpected.end());
    EXPECT_TRUE(AreSame(vSorted, vExpected));
    EXPECT_FALSE(AreSame(vSorted, vShuffled));
    PrintFigure("addresses sorted", vSorted.size());
}

CRecords InOrder(CRecords vAddr) {
    std::stable_sort(vAddr.begin(), vAddr.end());
    return vAddr;
}

TEST(BrowseSorted, ListsTheAddressesBelowEveryCityInTheOrderOfTheirComparison) {
    ForEachCity([](CFailures& failures, CCity const& city) {
        CRecords const vExpected = InOrder(ListAddresses(city.nPref, city.nCity));
        ListCities(city.nPref); // at its place in the table
        CSorted const sorted;
        CRecords vAddr;
        EXPECT_TRUE(Dictionary().GetTownExFromNo(city.nCity, vAddr));
        if (!AreSame(vAddr, vExpected)) failures.Add(city.strKey);
    });
}

TEST(BrowseSorted, ListsCitiesAndTownsInTheOrderOfTheirComparison) {
    std::map<unsigned long, CRecords> mapCities;
    std::map<uint32_t, CRecords> mapTowns; // by the city's node
    ForEachCity([&](CFailures&, CCity const& city) {
        mapCities.emplace(city.nPref, ListCities(city.nPref));
        mapTowns.emplace(city.nNode, ListTowns(city.nPref, city.nCity));
    });
    CSorted const sorted;
    size_t nMoved = 0;
    ForEachCity([&](CFailures& failures, CCity const& city) {
        CRecords const vCity = ListCities(city.nPref);
        if (!AreSame(vCity, InOrder(mapCities[city.nPref]))) failures.Add(city.strKey + ": its prefecture's cities");
        if (city.nCity >= vCity.size()) return;
        // A number is a position in the sorted answer.
        uint32_t const nNode = IndexOf(vCity[city.nCity].pListCity);
        nMoved += nNode != city.nNode;
        if (!AreSame(ListTowns(city.nPref, city.nCity), InOrder(mapTowns[nNode]))) failures.Add(NameOf(nNode));
    });
    PrintFigure("cities that stand elsewhere than in the table", nMoved);
    EXPECT_GT(nMoved, 1000u);
}

// --- searching for cities ------------------------------------------------------------------------------------------

// All texts, byte by byte, that names of cities begin with; "" and whole names too.
std::set<std::string> BeginningsOfCityNames() {
    std::set<std::string> vText;
    for (std::string const& strName : CityNames())
        for (size_t n = 0; n <= strName.size(); ++n) vText.insert(strName.substr(0, n));
    return vText;
}

// Compares the search for each text; returns how many find something.
size_t CompareSearches(std::set<std::string> const& vText) {
    CFailures failures;
    size_t nFinding = 0;
    for (std::string const& strText : vText) {
        std::optional<CNodes> const vExpected = CitiesFound(strText);
        std::vector<tagADDRNODE const*> vNode(1, Dictionary().GetAddrNode(0)); // is replaced
        bool const bFound = Dictionary().SearchCity(strText.c_str(), vNode);
        nFinding += !vNode.empty();
        if (bFound != vExpected.has_value())
            failures.Add("\"" + strText + "\" gives " + (bFound ? "true" : "false"));
        else
            CompareNodes(failures, strText, IndicesOf(vNode), vExpected.value_or(CNodes()));
        if (failures.Enough()) break;
    }
    PrintFigure("texts searched for", vText.size());
    PrintFigure("of them found", nFinding);
    return nFinding;
}

TEST(BrowseSearch, FindsTheCitiesOfEveryBeginningOfEveryNameInItsOwnOrder) {
    std::set<std::string> const vText = BeginningsOfCityNames();
    EXPECT_GT(vText.size(), CityNames().size());
    EXPECT_GT(CompareSearches(vText), CityNames().size());
}

TEST(BrowseSearch, FindsNoCityForOtherTexts) {
    constexpr char const* CUT_SUFFIXES[] = {"\xE5\x8C", "\xE7\x94", "\xE6\x9D"}; // 区, 町, 村 but their last byte
    std::set<std::string> vText = {"\x01", "\x7F", "\xFF", "x"};
    size_t nName = 0;
    for (std::string const& strName : CityNames()) {
        vText.insert(strName + "x");
        vText.insert("x" + strName);
        vText.insert(strName.substr(1));
        vText.insert(strName + CUT_SUFFIXES[nName++ % std::size(CUT_SUFFIXES)]);
    }
    EXPECT_EQ(CompareSearches(vText), 0u);
}

// --- texts ---------------------------------------------------------------------------------------------------------

TEST(BrowseText, OfEveryCityAloneGivesThePrefecturesInWhichTheSearchMeetsIt) {
    CFailures failures;
    std::set<std::string> vShared;
    size_t nMissed = 0;
    for (std::string const& strName : CityNames()) {
        CNodes const vPref = PrefecturesFound(strName);
        CTexts vExpected; // names without readings
        for (uint32_t nPref : vPref) {
            CAddress a;
            a.strPref = Official().Nodes()[nPref].strName;
            vExpected.push_back(ExpectedText(a, {}));
        }
        CRecords vAddr;
        bool const bFound = Dictionary().GetPrefFromCity(strName.c_str(), vAddr);
        if (vPref.size() > 1) vShared.insert(strName);
        nMissed += vPref.empty();
        if (bFound == vPref.empty()) failures.Add(strName + (bFound ? " is found" : " is not found"));
        CompareTexts(failures, strName, RecordTexts(vAddr), vExpected);
        CompareNodes(failures, strName, ListNodes(vAddr), vPref);
        if (failures.Enough()) return;
    }
    PrintFigure("names of cities", CityNames().size());
    PrintFigure("of them in several prefectures", vShared.size());
    PrintFigure("not found", nMissed);
    EXPECT_EQ(vShared.count("府中市") + vShared.count("伊達市"), 2u);
}

TEST(BrowseText, OfACityAloneFixesTheFirstCityOfThatNameForEveryPrefectureThatItGives) {
    CFailures failures;
    for (std::string const& strName : CityNames()) {
        CNodes const vCity(1, Separate(strName).nCity);
        for (unsigned long nPref = 0; nPref < PrefecturesFound(strName).size(); ++nPref) {
            CRecords vPref, vFound;
            Dictionary().GetPrefFromCity(strName.c_str(), vPref);
            bool const bFound = Dictionary().GetCityFromNo(nPref, vFound);
            if (!bFound) failures.Add(strName + " fixes no city");
            CompareNodes(failures, strName, ListNodes(vFound), vCity);
        }
        if (failures.Enough()) return;
    }
}

// Every city's first towns and a few others.
std::vector<uint32_t> SampleOfTowns() {
    CNodes vSample;
    ForEachCity([&](CFailures&, CCity const& city) {
        CNodes const vTown = NamedChildrenOf(city.nNode);
        for (size_t n = 0; n < vTown.size(); n += 29) vSample.push_back(vTown[n]);
    });
    return vSample;
}

TEST(BrowseText, OfPrefectureCityAndTownFixesAllThree) {
    CFailures failures;
    CNodes const vSample = SampleOfTowns();
    for (uint32_t nTown : vSample) {
        uint32_t const nCity = Official().Ancestor(nTown, 1), nPref = Official().Ancestor(nTown, 0);
        std::string const strText = NameOf(nPref) + NameOf(nCity) + NameOf(nTown);
        CSeparated const found = Separate(strText); // of two towns of one name the first
        CRecords vPref, vCity, vTown;
        Dictionary().GetPrefFromCity(strText.c_str(), vPref);
        Dictionary().GetCityFromNo(0, vCity);
        Dictionary().GetTownFromNo(0, vTown);
        CSlowReader::CNode const& town = Official().Nodes()[found.nTown];
        CTexts const vExpected = {TownText(town.strName, town.strKana, CodesOf(found.nTown))};
        if (vPref.size() != 1 || vPref[0].pszPref != NameOf(nPref) || found.nTown == NONE)
            failures.Add(strText + " gives another prefecture");
        CompareNodes(failures, strText, ListNodes(vCity), {nCity});
        CompareNodes(failures, strText, ListNodes(vTown), {found.nTown});
        CompareTexts(failures, strText, RecordTexts(vTown), vExpected);
        if (failures.Enough()) return;
    }
    PrintFigure("texts asked", vSample.size());
}

} // namespace
