// The image of the whole country: what its readers rely on, node by node and entry by entry.
#include "ExpectedRow.h"
#include "Failures.h"
#include "Prepared.h"
#include "Previous.h"
#include "SlowReader.h"

#include <algorithm>
#include <map>
#include <set>

using namespace national;

namespace {

using CNode = CSlowReader::CNode;
using CEntry = CSlowReader::CEntry;

enum ELevel { PREF = 0, CITY = 1, TOWN = 2, OFFICE = 7 };

std::vector<CNode> const& Nodes() {
    return Official().Nodes();
}
std::vector<CEntry> const& Entries() {
    return Official().Entries();
}

// "node 17 千代田 (level 2, チヨダ)"
std::string Describe(uint32_t nNode) {
    CNode const& node = Nodes()[nNode];
    return "node " + std::to_string(nNode) + " " + std::string(node.strName) + " (level " +
           std::to_string(node.nLevel) + ", " + std::string(node.strKana) + ")";
}

// CHECK is called with the index of every node until it has failed often enough.
template <typename CHECK>
void ForEachNode(CHECK Check) {
    CFailures failures;
    for (uint32_t n = 0; n < Nodes().size() && !failures.Enough(); ++n)
        if (!Check(n)) failures.Add(Describe(n));
}

std::string CityOf(uint32_t nNode) {
    uint32_t const nCity = Official().Ancestor(nNode, CITY);
    uint32_t const nPref = Official().Ancestor(nNode, PREF);
    return CityKey(Nodes()[nPref].strName, Nodes()[nCity].strName);
}

// The nodes of a level in their order.
std::vector<uint32_t> NodesOfLevel(unsigned nLevel) {
    std::vector<uint32_t> vNode;
    for (uint32_t n = 0; n < Nodes().size(); ++n)
        if (Nodes()[n].nLevel == nLevel) vNode.push_back(n);
    return vNode;
}

void ExpectRun(unsigned nLevel, unsigned nCountWord, unsigned nFirstWord) {
    std::vector<uint32_t> const vNode = NodesOfLevel(nLevel);
    ASSERT_FALSE(vNode.empty());
    EXPECT_EQ(vNode.size(), Official().Word(nCountWord));
    EXPECT_EQ(vNode.front(), Official().Word(nFirstWord));
    EXPECT_EQ(vNode.back() - vNode.front() + 1, vNode.size()) << "they do not stand together";
}

TEST(WholeDictionary, HasItsPrefecturesTogetherWhereTheHeaderSays) {
    ExpectRun(PREF, 18, 19);
}
TEST(WholeDictionary, HasItsCitiesTogetherWhereTheHeaderSays) {
    ExpectRun(CITY, 20, 21);
}
TEST(WholeDictionary, HasItsTownsTogetherWhereTheHeaderSays) {
    ExpectRun(TOWN, 22, 23);
}

TEST(WholeDictionary, HasEveryNodeButTheAliasesOfOrganisationsAmongTheChildrenOfItsParent) {
    ForEachNode([](uint32_t n) {
        uint32_t const nParent = Nodes()[n].nParent;
        if (nParent == NONE) return Nodes()[n].nLevel == PREF;
        if (Nodes()[n].bAlias) return Nodes()[n].nLevel == OFFICE;
        return n >= Nodes()[nParent].nFirstChild && n - Nodes()[nParent].nFirstChild < Nodes()[nParent].nChildren;
    });
}

TEST(WholeDictionary, HasAllChildrenOfANodeTogetherAndNamingIt) {
    ForEachNode([](uint32_t n) {
        CNode const& node = Nodes()[n];
        if (node.nChildren == 0) return true;
        if (node.nFirstChild >= Nodes().size() || node.nChildren > Nodes().size() - node.nFirstChild) return false;
        for (uint32_t i = 0; i < node.nChildren; ++i)
            if (Nodes()[node.nFirstChild + i].nParent != n) return false;
        return true;
    });
}

TEST(WholeDictionary, HasDeeperLevelsBelowHigherOnesOnly) {
    ForEachNode([](uint32_t n) {
        uint32_t const nParent = Nodes()[n].nParent;
        return nParent == NONE || Nodes()[nParent].nLevel < Nodes()[n].nLevel;
    });
}

TEST(WholeDictionary, HasEveryEntryReferredToByItsNode) {
    CFailures failures;
    for (uint32_t n = 0; n < Entries().size() && !failures.Enough(); ++n)
        if (Nodes()[Entries()[n].nNode].nEntry != n)
            failures.Add("entry " + std::to_string(n) + ", code " + std::string(Entries()[n].strCode) + ": " +
                         Describe(Entries()[n].nNode));
    PrintFigure("entries", Entries().size());
    PrintFigure("nodes", Nodes().size());
}

TEST(WholeDictionary, HasNoNodeReferringToAnothersEntryButCitiesTownsWithOneCodeAndAliases) {
    ForEachNode([](uint32_t n) {
        CNode const& node = Nodes()[n];
        return node.nEntry == NONE || node.nLevel == CITY || node.nLevel == TOWN || node.bAlias ||
               (node.nEntry < Entries().size() && Entries()[node.nEntry].nNode == n);
    });
}

// The entries of a town and its parts; organisations have their own.
struct CPartsOfTown {
    std::vector<uint32_t> vEntry; // in the order of the nodes
    std::set<std::string_view> vCode;
};
std::map<uint32_t, CPartsOfTown> PartsOfTowns() {
    std::map<uint32_t, CPartsOfTown> mapTown;
    for (uint32_t n = 0; n < Nodes().size(); ++n) {
        CNode const& node = Nodes()[n];
        bool const bOwn = node.nEntry != NONE && Entries()[node.nEntry].nNode == n;
        if (!bOwn || node.nLevel < TOWN || node.nLevel == OFFICE) continue;
        CPartsOfTown& town = mapTown[Official().Ancestor(n, TOWN)];
        town.vEntry.push_back(node.nEntry);
        town.vCode.insert(Entries()[node.nEntry].strCode);
    }
    return mapTown;
}

// 札幌市中央区北四条東 has 060-0034 in all its parts, so the town has it, too.
TEST(WholeDictionary, HasTheTownsWhosePartsHaveOneCodeReferringToTheFirstOfThemAndNoOthers) {
    auto const mapTown = PartsOfTowns();
    size_t nOne = 0, nSeveral = 0;
    ForEachNode([&](uint32_t n) {
        CNode const& node = Nodes()[n];
        if (node.nLevel != TOWN) return true;
        auto const pParts = mapTown.find(n);
        if (pParts == mapTown.end()) return node.nEntry == NONE;
        CPartsOfTown const& parts = pParts->second;
        if (Entries()[parts.vEntry.front()].nNode == n) return node.nEntry == parts.vEntry.front();
        if (node.strName.empty()) return node.nEntry == NONE;
        bool const bOne = parts.vCode.size() == 1;
        ++(bOne ? nOne : nSeveral);
        return node.nEntry == (bOne ? parts.vEntry.front() : NONE);
    });
    PrintFigure("towns with the one code of all their parts", nOne);
    PrintFigure("towns with several codes and none of their own", nSeveral);
    EXPECT_EQ(nOne, CompilersCount("towns_with_the_one_code_of_their_areas"));
    EXPECT_EQ(nSeveral, CompilersCount("towns_with_several_codes_and_no_default"));
}

// Prefecture, city and town of an entry, for comparison with the tables.
CTownKey KeyOf(uint32_t nEntry) {
    CAddress const a = Official().Address(nEntry);
    return {std::string(a.strPref.value_or("")), std::string(a.strCity.value_or("")),
            std::string(a.strTown.value_or(""))};
}

TEST(WholeDictionary, HasExactlyTheTownsThatAreGoneAsSupersededEntries) {
    std::multiset<std::vector<std::string>> vMissing;
    for (CGoneTown const& town : GoneTowns()) vMissing.insert({ExpectedText(town), town.strCode, town.strOldCode});
    PrintFigure("towns that are gone", vMissing.size());
    EXPECT_EQ(vMissing.size(), CompilersCount("superseded_towns"));
    EXPECT_EQ(CompilersCount("superseded_towns_left_out"), 0u);
    CFailures failures;
    for (uint32_t n = 0; n < Entries().size() && !failures.Enough(); ++n) {
        CEntry const& entry = Entries()[n];
        if (!entry.bSuperseded) continue;
        auto const pFound = vMissing.find(
            {AddressText(Official().Address(n)), std::string(entry.strCode), std::string(entry.strOldCode)});
        if (pFound == vMissing.end())
            failures.Add("no earlier edition explains " + PathOf(KeyOf(n)) + " " + std::string(entry.strCode));
        else
            vMissing.erase(pFound);
    }
    for (std::vector<std::string> const& town : vMissing) {
        if (failures.Enough()) return;
        failures.Add("missing: " + town[0] + " " + town[1] + " " + town[2]);
    }
}

TEST(WholeDictionary, HasASuccessorOfTodayForEverySupersededEntry) {
    CFailures failures;
    for (uint32_t n = 0; n < Entries().size() && !failures.Enough(); ++n) {
        if (!Entries()[n].bSuperseded) continue;
        CEntry const& heir = Entries()[Entries()[n].nSuccessor];
        if (heir.bSuperseded || Nodes()[heir.nNode].nLevel == OFFICE || !Today().Has(KeyOf(Entries()[n].nSuccessor)))
            failures.Add(PathOf(KeyOf(n)) + " is succeeded by " + PathOf(KeyOf(Entries()[n].nSuccessor)));
    }
}

TEST(WholeDictionary, HasItsEntriesInTheOrderOfTheirCodesThenOfTheirNodes) {
    CFailures failures;
    for (size_t n = 1; n < Entries().size() && !failures.Enough(); ++n) {
        CEntry const& before = Entries()[n - 1];
        CEntry const& entry = Entries()[n];
        if (std::tie(before.strCode, before.nNode) >= std::tie(entry.strCode, entry.nNode))
            failures.Add("entry " + std::to_string(n) + ", code " + std::string(entry.strCode));
    }
}

TEST(WholeDictionary, HasCodesOfSevenDigitsOnly) {
    CFailures failures;
    for (CEntry const& entry : Entries()) {
        if (entry.strCode.size() != 7 || entry.strCode.find_first_not_of("0123456789") != std::string_view::npos)
            failures.Add(std::string(entry.strCode));
        if (failures.Enough()) return;
    }
}

TEST(WholeDictionary, HasItsCodesTogetherInFrontOfAllNamesInTheOrderOfTheEntries) {
    CFailures failures;
    uint32_t nLast = 0;
    for (CEntry const& entry : Entries()) {
        if (entry.nCodeOffset < nLast) failures.Add(std::string(entry.strCode));
        if (failures.Enough()) return;
        nLast = entry.nCodeOffset;
    }
    ForEachNode([nLast](uint32_t n) { return Nodes()[n].nNameOffset > nLast; });
}

TEST(WholeDictionary, HasNoNameAboveTheLimit) {
    ForEachNode([](uint32_t n) { return Nodes()[n].strName.size() <= NAME_LIMIT; });
}

TEST(WholeDictionary, HasPrefectureAndCityShorterThanAByteCounts) {
    ForEachNode([](uint32_t n) { return Nodes()[n].nLevel != CITY || CityOf(n).size() < 256; });
}

TEST(WholeDictionary, SharesNoNameOfAPrefectureCityOrTown) {
    std::map<uint32_t, uint32_t> mapUsers;
    for (CNode const& node : Nodes()) ++mapUsers[node.nNameOffset];
    ForEachNode([&](uint32_t n) { return Nodes()[n].nLevel > TOWN || mapUsers[Nodes()[n].nNameOffset] == 1; });
}

TEST(WholeDictionary, HasItsPrefecturesInTheOrderOfTheTable) {
    std::vector<std::string_view> vExpected, vFound;
    for (CTownRow const& row : TownRows())
        if (vExpected.empty() || vExpected.back() != row.strPref) vExpected.push_back(row.strPref);
    for (uint32_t n : NodesOfLevel(PREF)) vFound.push_back(Nodes()[n].strName);
    EXPECT_EQ(vFound, vExpected); // its rows are in the order of the JIS code, which is the conventional one
    EXPECT_EQ(vFound.size(), 47u);
    EXPECT_EQ(vFound.front(), "北海道");
    EXPECT_EQ(vFound.back(), "沖縄県");
}

std::set<std::string> const& GoneCities() {
    static std::set<std::string> const vCity = [] {
        std::set<std::string> v;
        for (CGoneTown const& town : GoneTowns())
            if (town.bCityGone) v.insert(CityKey(std::get<0>(town.key), std::get<1>(town.key)));
        return v;
    }();
    return vCity;
}

TEST(WholeDictionary, HasItsCitiesInTheOrderOfTheTable) {
    std::vector<std::string> vExpected;
    std::set<std::string> vSeen;
    for (CTownRow const& row : TownRows())
        if (std::string const strCity = CityKey(row.strPref, row.strCity); vSeen.insert(strCity).second)
            vExpected.push_back(strCity);
    CFailures failures;
    std::vector<uint32_t> vCity = NodesOfLevel(CITY);
    vCity.erase(
        std::remove_if(vCity.begin(), vCity.end(), [](uint32_t n) { return GoneCities().count(CityOf(n)) != 0; }),
        vCity.end());
    ASSERT_EQ(vCity.size(), vExpected.size());
    for (size_t n = 0; n < vCity.size() && !failures.Enough(); ++n)
        if (CityOf(vCity[n]) != vExpected[n])
            failures.Add(CityOf(vCity[n]) + " stands where " + vExpected[n] + " should");
    PrintFigure("cities", vCity.size());
}

TEST(WholeDictionary, HasEveryCityThatIsGoneOnceBehindThoseOfTodayInItsPrefecture) {
    std::set<std::string> vFound;
    ForEachNode([&vFound](uint32_t n) {
        if (Nodes()[n].nLevel != PREF) return true;
        bool bGone = false;
        for (uint32_t i = 0; i < Nodes()[n].nChildren; ++i) {
            std::string const strCity = CityOf(Nodes()[n].nFirstChild + i);
            bool const bGoneBefore = bGone;
            bGone = GoneCities().count(strCity) != 0;
            if (bGone && !vFound.insert(strCity).second) return false;
            if (bGoneBefore && !bGone) return false;
        }
        return true;
    });
    EXPECT_EQ(vFound, GoneCities());
    PrintFigure("cities that are gone", vFound.size());
}

// The towns of every city, in their order.
template <typename CHECK>
void ForEachCity(CHECK Check) {
    CFailures failures;
    for (uint32_t nCity : NodesOfLevel(CITY)) {
        std::vector<uint32_t> vTown;
        for (uint32_t i = 0; i < Nodes()[nCity].nChildren; ++i) vTown.push_back(Nodes()[nCity].nFirstChild + i);
        Check(failures, nCity, vTown);
        if (failures.Enough()) return;
    }
}

// All texts that a name begins with, itself left out.
std::vector<std::string_view> Heads(std::string_view strName) {
    std::vector<std::string_view> vHead;
    for (size_t n = 0; n < strName.size(); n += FirstCharacter(strName.substr(n)).size())
        vHead.push_back(strName.substr(0, n));
    return vHead;
}

TEST(WholeDictionary, HasNoTownBehindAnotherOneWhoseNameBeginsItsOwn) {
    ForEachCity([](CFailures& failures, uint32_t nCity, std::vector<uint32_t> const& vTown) {
        std::set<std::string_view> vBefore;
        for (uint32_t nTown : vTown) {
            for (std::string_view strHead : Heads(Nodes()[nTown].strName))
                if (vBefore.count(strHead) != 0)
                    failures.Add(CityOf(nCity) + ": \"" + std::string(strHead) + "\" stands before " +
                                 Describe(nTown));
            vBefore.insert(Nodes()[nTown].strName);
        }
    });
}

bool IsOfTable(std::string const& strCity, std::string_view strTown) {
    return !ExpectedTowns().ReadingsOf(strCity, std::string(strTown)).empty();
}

// Of the names those that begin no other one of all and are begun by none; two towns of one name stand together, so they
// are left out.
std::vector<std::string_view> Unrelated(std::vector<std::string_view> const& vName,
                                        std::set<std::string_view> const& vAll) {
    std::set<std::string_view> vSeen, vRelated;
    for (std::string_view strName : vName) {
        if (!vSeen.insert(strName).second) vRelated.insert(strName);
        for (std::string_view strHead : Heads(strName))
            if (vAll.count(strHead) != 0) vRelated.insert({strHead, strName});
    }
    std::vector<std::string_view> vUnrelated;
    for (std::string_view strName : vName)
        if (vRelated.count(strName) == 0) vUnrelated.push_back(strName);
    return vUnrelated;
}

TEST(WholeDictionary, HasAllOtherTownsInTheOrderOfTheTable) {
    ForEachCity([](CFailures& failures, uint32_t nCity, std::vector<uint32_t> const& vTown) {
        std::vector<std::string_view> vFound, vExpected;
        if (GoneCities().count(CityOf(nCity)) != 0) return;
        std::set<std::string_view> vAll; // old ones move towns of today behind them, too
        for (uint32_t nTown : vTown) vAll.insert(Nodes()[nTown].strName);
        for (uint32_t nTown : vTown)
            if (IsOfTable(CityOf(nCity), Nodes()[nTown].strName) && !Nodes()[nTown].strName.empty())
                vFound.push_back(Nodes()[nTown].strName);
        for (CExpectedTowns::CTown const& town : ExpectedTowns().TownsOf(CityOf(nCity)))
            if (!town.name.strName.empty())
                vExpected.insert(vExpected.end(), std::max(town.nDefaults, 1u), town.name.strName);
        if (Unrelated(vFound, vAll) != Unrelated(vExpected, vAll)) failures.Add(CityOf(nCity));
    });
}

// City, name and reading of every town that there should be; one more for each further row that is the town itself.
std::multiset<std::vector<std::string>> ExpectedTownNodes() {
    std::multiset<std::vector<std::string>> vNode;
    for (uint32_t nCity : NodesOfLevel(CITY)) {
        if (GoneCities().count(CityOf(nCity)) != 0) continue;
        for (CExpectedTowns::CTown const& town : ExpectedTowns().TownsOf(CityOf(nCity)))
            for (unsigned n = 0; n < std::max(town.nDefaults, 1u); ++n)
                vNode.insert({CityOf(nCity), town.name.strName, town.name.strKana});
    }
    PrintFigure("towns of the town table", vNode.size());
    PrintFigure("towns that only organisations name", OfficeTowns().size());
    for (auto const& [strCity, strTown] : OfficeTowns()) vNode.insert({strCity, strTown, ""});
    size_t nOffices = 0;
    for (CGoneTown const& town : GoneTowns()) {
        auto const& [strPref, strCity, strTown] = town.key;
        std::string const strKey = CityKey(strPref, strCity);
        if (OfficeTowns().count({strKey, strTown}) != 0)
            ++nOffices; // one node for both
        else
            vNode.insert({strKey, strTown, town.strTownKana});
    }
    PrintFigure("towns that are gone", GoneTowns().size());
    PrintFigure("of them towns that organisations name", nOffices);
    return vNode;
}

TEST(WholeDictionary, HasExactlyTheTownsThatTheTablesName) {
    std::multiset<std::vector<std::string>> vMissing = ExpectedTownNodes();
    CFailures failures;
    for (uint32_t nTown : NodesOfLevel(TOWN)) {
        auto const pFound =
            vMissing.find({CityOf(nTown), std::string(Nodes()[nTown].strName), std::string(Nodes()[nTown].strKana)});
        if (pFound == vMissing.end())
            failures.Add(CityOf(nTown) + ", no row explains " + Describe(nTown));
        else
            vMissing.erase(pFound);
        if (failures.Enough()) return;
    }
    for (std::vector<std::string> const& town : vMissing) {
        failures.Add("missing: " + town[0] + " " + town[1] + " " + town[2]);
        if (failures.Enough()) return;
    }
}

TEST(WholeDictionary, HasEveryCityReferringToTheEntryThatStandsForTheWholeOfIt) {
    std::map<std::string, std::string_view> const& mapCode = CityCodes();
    ForEachNode([&](uint32_t n) {
        CNode const& node = Nodes()[n];
        if (node.nLevel != CITY) return true;
        if (GoneCities().count(CityOf(n)) != 0) { // its nameless town, which is superseded
            if (node.nEntry >= Entries().size()) return false;
            CEntry const& entry = Entries()[node.nEntry];
            CNode const& town = Nodes()[entry.nNode];
            return entry.bSuperseded && town.nLevel == TOWN && town.strName.empty() && town.nParent == n;
        }
        auto const pCode = mapCode.find(CityOf(n));
        return pCode != mapCode.end() && node.nEntry < Entries().size() &&
               Entries()[node.nEntry].strCode == pCode->second &&
               Official().Ancestor(Entries()[node.nEntry].nNode, CITY) == n;
    });
}

// Every node of a level exactly once, by the bytes of the names.
void ExpectIndex(std::vector<uint32_t> vIndex, unsigned nLevel) {
    CFailures failures;
    for (size_t n = 1; n < vIndex.size() && !failures.Enough(); ++n)
        if (Nodes()[vIndex[n]].strName < Nodes()[vIndex[n - 1]].strName)
            failures.Add(Describe(vIndex[n]) + " stands behind " + Describe(vIndex[n - 1]));
    std::sort(vIndex.begin(), vIndex.end());
    EXPECT_TRUE(vIndex == NodesOfLevel(nLevel)) << "it does not list every node of level " << nLevel << " once";
}

TEST(WholeDictionary, HasAllCitiesInTheCityIndexByName) {
    ExpectIndex(Official().CityIndex(), CITY);
}
TEST(WholeDictionary, HasAllOrganisationsInTheirIndexByName) {
    ExpectIndex(Official().OfficeIndex(), OFFICE);
}

// The index finds an organisation by its name as it is shown and by its name as it is searched for.
TEST(WholeDictionary, HasAnAliasBehindAllOtherNodesForEveryOrganisation) {
    std::map<uint32_t, size_t> mapAliases; // by entry
    uint32_t nLast = 0, nFirst = NONE;
    ForEachNode([&](uint32_t n) {
        CNode const& alias = Nodes()[n];
        if (!alias.bAlias) {
            nLast = n;
            return true;
        }
        nFirst = std::min(nFirst, n);
        ++mapAliases[alias.nEntry];
        if (alias.nEntry >= Entries().size() || alias.nLevel != OFFICE) return false;
        CNode const& office = Nodes()[Entries()[alias.nEntry].nNode];
        return office.nLevel == OFFICE && !office.bAlias && office.nParent == alias.nParent && alias.nChildren == 0 &&
               alias.strKana.empty() && alias.strName.size() <= NAME_LIMIT;
    });
    EXPECT_EQ(mapAliases.size(), OfficeRows().size());
    for (auto const& [nEntry, nCount] : mapAliases) EXPECT_EQ(nCount, 1u) << Describe(Entries()[nEntry].nNode);
    EXPECT_LT(nLast, nFirst);
    EXPECT_EQ(Official().OfficeIndex().size(), 2 * OfficeRows().size());
    PrintFigure("aliases", mapAliases.size());
}

TEST(WholeDictionary, HasTheNamesThatAreSearchedForAsAliases) {
    std::multiset<std::vector<std::string>> vMissing;
    for (COfficeRow const& row : OfficeRows())
        vMissing.insert({row.strCode, CutName(row.strName), row.strKana, AliasOf(row.strName)});
    CFailures failures;
    ForEachNode([&](uint32_t n) {
        if (!Nodes()[n].bAlias) return true;
        CEntry const& entry = Entries()[Nodes()[n].nEntry];
        CNode const& office = Nodes()[entry.nNode];
        auto const pFound = vMissing.find({std::string(entry.strCode), std::string(office.strName),
                                           std::string(office.strKana), std::string(Nodes()[n].strName)});
        if (pFound == vMissing.end()) return false;
        vMissing.erase(pFound);
        return true;
    });
    for (std::vector<std::string> const& alias : vMissing) {
        if (failures.Enough()) return;
        failures.Add("missing: " + alias[0] + " " + alias[1] + " as " + alias[3]);
    }
}

TEST(WholeDictionary, HasNoDigitWithMoreAddressesThanABlockCounts) {
    size_t nMost = 0;
    for (char c = '0'; c <= '9'; ++c) nMost = std::max(nMost, Official().EntriesOf(std::string(1, c)).size());
    PrintFigure("addresses whose codes begin with one digit, at most", nMost);
    EXPECT_LE(nMost, 0xFFFFu);
}

} // namespace
