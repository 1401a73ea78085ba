// Browsing the whole country: prefectures, cities, towns and addresses against the official tables.
#include "Browsing.h"
#include "Previous.h"

#include <map>
#include <set>

using namespace national;

namespace {

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

} // namespace
