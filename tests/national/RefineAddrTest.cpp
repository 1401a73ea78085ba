// Trees of candidates for prefectures and cities of the whole country, and the display names of all nodes.
#include "Refining.h"

#include "tree/DispTree.h"

#include <map>

using namespace national;

namespace {

// --- display names -------------------------------------------------------------------------------------------------

TEST(GetNameForUI, AgreesWithTheSlowReaderOnEveryNodeOfTheDictionary) {
    auto const* const pStrings = reinterpret_cast<unsigned char const*>(Dictionary().GetStrings());
    tagADDRNODE const* const pTable = Dictionary().GetAddrNode(0);
    CFailures failures;
    size_t nEmpty = 0, nFull = 0;
    for (uint32_t n = 0; n < Official().Nodes().size() && !failures.Enough(); ++n) {
        char szName[DISPLAY_LIMIT] = {};
        int const nResult = GetNameForUI(Dictionary().GetAddrNode(n), pTable, pStrings, szName, sizeof szName);
        std::string_view const strName(szName, strnlen(szName, sizeof szName));
        if (nResult != 1 || strName != DisplayName(n))
            failures.Add("node " + std::to_string(n) + ": " + std::string(strName) + " instead of " + DisplayName(n));
        nEmpty += strName.empty();
        nFull += strName.size() == sizeof szName;
    }
    PrintFigure("display names", Official().Nodes().size());
    PrintFigure("of them empty", nEmpty);
    PrintFigure("that fill their 128 bytes", nFull);
    if (Official().Word(3) != 20260500) return;
    EXPECT_GT(nFull, 0u);
}

TEST(GetNameForUI, PutsThePrefecturesOfTheTableInTheirOrderBehindTheirNumbers) {
    CTexts vExpected, vFound;
    for (size_t n = 0; n < PrefecturesOfTable().size(); ++n)
        vExpected.push_back((n < 10 ? "0" : "") + std::to_string(n) + PrefecturesOfTable()[n]);
    CRefiner refiner;
    short n1, n2, n3, n4, n5, n6;
    ASSERT_EQ(refiner.Dic().GetAdrNum(0, 0, 0, &n1, &n2, &n3, &n4, &n5, &n6), 1);
    for (tagADDRPNT const& entry : refiner.State().vPrefPnt) vFound.emplace_back(entry.szName);
    ASSERT_EQ(vExpected.size(), 47u);
    EXPECT_EQ(vFound, vExpected);
    EXPECT_EQ(vFound.front(), "00北海道");
    EXPECT_EQ(vFound[12], "12東京都");
    EXPECT_EQ(vFound.back(), "46沖縄県");
}

// --- prefectures ---------------------------------------------------------------------------------------------------

using CWay = std::vector<uint32_t>; // prefecture, city, leaf

std::vector<CWay> WaysOf(CBranches const& tree) {
    std::vector<CWay> vWay;
    for (CBranch const& pref : tree)
        for (CBranch const& city : pref.vChild)
            for (CBranch const& leaf : city.vChild) vWay.push_back({pref.nNode, city.nNode, leaf.nNode});
    std::sort(vWay.begin(), vWay.end());
    return vWay;
}

// By prefecture, the node of the entry of each node that names a current one; each node of the dictionary is looked at
// and asked what it stands below. Sorted.
std::map<uint32_t, std::vector<CWay>> WaysToCurrentEntries() {
    std::map<uint32_t, std::vector<CWay>> mapPref;
    for (uint32_t n = 0; n < Official().Nodes().size(); ++n) {
        if (Official().Nodes()[n].bAlias || !HasCurrentEntry(n)) continue;
        uint32_t const nPref = Official().Ancestor(n, 0), nLeaf = NodeOfItsEntry(n);
        mapPref[nPref].push_back({Official().Ancestor(nLeaf, 0), Official().Ancestor(nLeaf, 1), nLeaf});
    }
    for (auto& [nPref, vWay] : mapPref) std::sort(vWay.begin(), vWay.end());
    return mapPref;
}

TEST(RefineWholeCountry, FindsForEveryPrefectureTheEntryOfEachOfItsNodesOnce) {
    auto mapExpected = WaysToCurrentEntries();
    CRefiner refiner;
    CFailures failures;
    size_t nLeaves = 0;
    for (uint32_t nPref : AllPrefectures()) {
        EXPECT_EQ(refiner.Make("", NameOf(nPref)), 1);
        CBranches const tree = refiner.Tree();
        std::vector<CWay> const vWay = WaysOf(tree);
        nLeaves += vWay.size();
        if (tree.size() != 1 || tree[0].nNode != nPref) failures.Add(NameOf(nPref) + " is not alone");
        CompareLists(failures, NameOf(nPref), vWay, mapExpected[nPref],
                     [](CWay const& way) { return NameOf(way[1]) + NameOf(way[2]); });
        if (failures.Enough()) return;
    }
    size_t nCurrent = 0, nCities = 0, nTowns = 0;
    for (CSlowReader::CEntry const& entry : Official().Entries()) nCurrent += !entry.bSuperseded;
    for (uint32_t n = 0; n < Official().Nodes().size(); ++n) { // those that name the entry of another node
        CSlowReader::CNode const& node = Official().Nodes()[n];
        if (node.bAlias || !HasCurrentEntry(n) || NodeOfItsEntry(n) == n) continue;
        ++(node.nLevel == 1 ? nCities : nTowns);
    }
    PrintFigure("leaves of 47 prefectures", nLeaves);
    PrintFigure("current entries", nCurrent);
    PrintFigure("again for cities", nCities);
    PrintFigure("again for towns with the one code of their parts", nTowns);
    EXPECT_EQ(nLeaves, nCurrent + nCities + nTowns);
    EXPECT_EQ(nCurrent, CompilersCount("entries") - CompilersCount("superseded_towns"));
    EXPECT_EQ(nCities, CompilersCount("cities"));
    EXPECT_EQ(nTowns, CompilersCount("towns_with_the_one_code_of_their_areas"));
    if (Official().Word(3) != 20260500) return;
    EXPECT_EQ(nCities, 1892u);
    EXPECT_EQ(nTowns, 172u);
}

TEST(RefineWholeCountry, SortsThePrefecturesCitiesAndTownsByTheirDisplayNames) {
    CRefiner refiner;
    CFailures failures;
    for (uint32_t nPref : AllPrefectures()) {
        refiner.Make("", NameOf(nPref));
        refiner.Check(failures, NameOf(nPref), TreeOfAddress(NameOf(nPref)));
        if (failures.Enough()) return;
    }
}

// Those that are gone have no current entry.
TEST(RefineWholeCountry, FindsExactlyTheCitiesOfTheTableInEveryPrefectureEachOnce) {
    std::map<std::string_view, std::set<std::string_view>> mapCity;
    for (CTownRow const& row : TownRows()) mapCity[row.strPref].insert(row.strCity);
    CRefiner refiner;
    size_t nCities = 0;
    for (std::string const& strPref : PrefecturesOfTable()) {
        refiner.Make("", strPref);
        ASSERT_EQ(refiner.State().vRefineTree.size(), 1u) << strPref;
        CTexts vExpected, vFound;
        for (std::string_view strCity : mapCity[strPref]) vExpected.push_back("h" + std::string(strCity));
        for (tagADDRPNT const& city : refiner.State().vRefineTree[0].vChild) vFound.emplace_back(city.szName);
        EXPECT_EQ(vFound, vExpected) << strPref; // both by bytes
        nCities += vFound.size();
    }
    EXPECT_EQ(nCities, CompilersCount("cities"));
}

TEST(SeparateAddr, LeavesTheTreeOfAPrefectureInTheOrderOfTheDictionary) {
    CRefiner refiner;
    CFailures failures;
    size_t nUnsorted = 0;
    for (uint32_t nPref : AllPrefectures()) {
        EXPECT_EQ(refiner.Dic().SeparateAddr(NameOf(nPref).c_str()), 1);
        CompareTrees(failures, NameOf(nPref), refiner.Tree(), UnsortedTreeOfAddress(NameOf(nPref)).vPref);
        nUnsorted += !recIsSorted(refiner.Tree());
        if (failures.Enough()) return;
    }
    EXPECT_GT(nUnsorted, 0u); // else the sort of MakeRefineTree has nothing to do
}

// --- cities --------------------------------------------------------------------------------------------------------

// Makes the trees of the texts and compares them; returns how many leaves they have.
size_t CheckTexts(CTexts const& vText) {
    CRefiner refiner;
    CFailures failures;
    size_t nLeaves = 0;
    for (std::string const& strText : vText) {
        if (int const nResult = refiner.Make("", strText); nResult != 1)
            failures.Add(strText + " gives " + std::to_string(nResult));
        CExpectedTree const expected = TreeOfAddress(strText);
        refiner.Check(failures, strText, expected);
        nLeaves += LeavesOf(expected.vPref).size();
        if (failures.Enough()) break;
    }
    PrintFigure("texts", vText.size());
    PrintFigure("leaves of their trees", nLeaves);
    return nLeaves;
}

size_t CurrentNodesBelow(uint32_t nNode) {
    CNodes vNode;
    recCollectBelow(nNode, vNode);
    return vNode.size();
}

TEST(RefineWholeCountry, FindsACityBehindItsPrefectureWhole) {
    CTexts vText;
    size_t nExpected = 0;
    for (CCity const& city : CitiesOfRegions()) {
        vText.push_back(city.strKey);
        nExpected += CurrentNodesBelow(city.nNode);
    }
    EXPECT_EQ(CheckTexts(vText), nExpected);
}

TEST(RefineWholeCountry, FindsACityByItsNameAlone) {
    CTexts vText;
    for (CCity const& city : CitiesOfRegions()) vText.push_back(NameOf(city.nNode));
    EXPECT_GT(CheckTexts(vText), 0u);
}

TEST(RefineWholeCountry, FindsTheCitiesOfAllPrefecturesThatHaveTheName) {
    CRefiner refiner;
    refiner.Make("", "府中市");
    CBranches const tree = refiner.Tree();
    ASSERT_EQ(tree.size(), 2u);
    EXPECT_EQ(tree[0].strName, "12東京都");
    EXPECT_EQ(tree[1].strName, "33広島県");
    for (CBranch const& pref : tree) {
        ASSERT_EQ(pref.vChild.size(), 1u);
        EXPECT_EQ(pref.vChild[0].strName, "h府中市");
        EXPECT_EQ(pref.vChild[0].vChild.size(), CurrentNodesBelow(pref.vChild[0].nNode));
    }
    CFailures failures;
    refiner.Check(failures, "府中市", TreeOfAddress("府中市"));
}

// The beginning of a town's name is no town, unless there is one of that name.
TEST(RefineWholeCountry, FindsForTheBeginningOfATownBehindAPrefectureAndACityTheWholeCityOrTheTownOfThatName) {
    CTexts vText;
    size_t nExpected = 0;
    for (CCity const& city : CitiesOfRegions()) {
        std::string const strBeginning = BeginningOfATown(city.nNode);
        if (strBeginning.empty()) continue;
        vText.push_back(city.strKey + strBeginning);
        uint32_t nFound = city.nNode;
        for (uint32_t n : NamedChildrenOf(city.nNode))
            if (NameOf(n) == strBeginning) nFound = n;
        nExpected += CurrentNodesBelow(nFound);
    }
    ASSERT_FALSE(vText.empty());
    EXPECT_EQ(CheckTexts(vText), nExpected);
}

TEST(RefineWholeCountry, FindsForATownThatDoesNotExistTheWholeCityBehindItsPrefecture) {
    CTexts vText;
    size_t nExpected = 0;
    for (CCity const& city : CitiesOfRegions()) {
        vText.push_back(city.strKey + NO_TOWN);
        nExpected += CurrentNodesBelow(city.nNode);
    }
    EXPECT_EQ(CheckTexts(vText), nExpected);
}

// Every city has a nameless town behind all others, and what has no name begins every text: it is found instead of the
// whole city.
TEST(RefineWholeCountry, FindsForATownThatDoesNotExistTheNamelessTownBehindTheCitysNameAlone) {
    CTexts vText;
    for (CCity const& city : CitiesOfRegions()) {
        CNodes const vTown = ChildrenOf(city.nNode);
        ASSERT_TRUE(!vTown.empty() && NameOf(vTown.back()).empty()) << city.strKey;
        vText.push_back(NameOf(city.nNode) + NO_TOWN);
    }
    CheckTexts(vText);
    CRefiner refiner;
    refiner.Make("", std::string("千代田区") + NO_TOWN);
    CNodes const vLeaf = LeavesOf(refiner.Tree());
    ASSERT_EQ(vLeaf.size(), 1u);
    EXPECT_EQ(NameOf(vLeaf[0]), "");
    EXPECT_EQ(CodesOf(vLeaf[0]).strCode, "1000000");
}

TEST(RefineWholeCountry, FindsTheBeginningOfATownBehindTheCitysNameAloneAsTheFirstTownThatBeginsTheText) {
    CTexts vText;
    for (CCity const& city : CitiesOfRegions())
        if (std::string const str = BeginningOfATown(city.nNode); !str.empty())
            vText.push_back(NameOf(city.nNode) + str);
    EXPECT_GT(CheckTexts(vText), 0u);
}

// Every twentieth town, with and without the prefecture, a number behind it or nothing.
TEST(RefineWholeCountry, FindsATownWithWhatStandsBelowIt) {
    CTexts vText;
    size_t nTown = 0;
    for (CCity const& city : CitiesOfRegions())
        for (uint32_t n : NamedChildrenOf(city.nNode)) {
            if (++nTown % 20 != 0) continue;
            bool const bNumber = nTown % 40 == 0;
            vText.push_back(city.strKey + NameOf(n) + (bNumber ? "１−２" : ""));
            vText.push_back(NameOf(city.nNode) + NameOf(n) + (bNumber ? "" : "１−２"));
        }
    EXPECT_GT(CheckTexts(vText), 0u);
}

TEST(SearchCity2, ListsTheNodesThatATextWithoutAPrefectureNamesInTheOrderOfTheDictionary) {
    CTexts vText = {"", "x", "東京都", "府中市", "府中市宮町", "府中市栗柄町", "泊村", "伊達市", "市"};
    for (CCity const& city : CitiesOfRegions()) {
        CTexts const v = TextsOfCity(city);
        vText.insert(vText.end(), v.begin(), v.end());
    }
    CFailures failures;
    size_t nNodes = 0;
    for (std::string const& strText : vText) {
        std::vector<tagADDRNODE const*> vNode(1);
        EXPECT_EQ(Dictionary().SearchCity2(strText.c_str(), vNode), 0);
        CompareNodes(failures, strText, IndicesOf(vNode), NodesOfBareCity(strText));
        nNodes += vNode.size();
        if (failures.Enough()) return;
    }
    PrintFigure("texts", vText.size());
    PrintFigure("nodes listed", nNodes);
}

} // namespace
