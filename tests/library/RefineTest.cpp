// Refinement by a postal code: the entries whose codes begin with it, as a tree.
#include "tests/library/TreeWorld.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// One entry for each code, with a town of its own: 東京都, 港区, "town 0", "town 1", ...
struct CCodes : CTestImage {
    explicit CCodes(std::vector<std::string> const& vCode) {
        AddNode(LEVEL_PREF, ADDR_NONE, "東京都");
        AddNode(LEVEL_CITY, 0, "港区");
        for (size_t n = 0; n < vCode.size(); ++n) AddNode(LEVEL_TOWN, 1, "town " + std::to_string(n));
        for (uint32_t n = 0; n < vCode.size(); ++n) AddInfo(n + 2, vCode[n], "105");
    }
};

// The towns of such a tree.
CLines Towns(CTree const& tree) {
    CLines vTown;
    for (std::string const& str : Lines(tree))
        if (str.compare(0, 2, "  ") == 0) vTown.push_back(str.substr(2));
    return vTown;
}
CLines TownsOf(CTestImage const& image, std::string const& strCode, int nExpected = 1) {
    CTreeDic dic(image);
    EXPECT_EQ(dic.Refine(strCode), nExpected) << strCode;
    return Towns(dic.Tree());
}

// --- the tree of a code --------------------------------------------------------------------------------------------

TEST(CodeRefinement, GivesAllThatBeginsSoSortedByName) {
    CTreeDic dic((CTextWorld()));
    EXPECT_EQ(dic.Refine("1"), 1);
    EXPECT_THAT(dic.TreeLines(), ElementsAre("12東京都", " h千代田区", "  丸の内", "  丸の内テスト",
                                             "  丸の内テスト商事", "  千代田", "  千代田テスト", " h府中市",
                                             "  宮西町", " h港区", "  芝", "  芝海ビル", "  芝港商会", "  芝１丁目"));
    EXPECT_EQ(dic.Refine("105001"), 1);
    EXPECT_THAT(dic.TreeLines(), ElementsAre("12東京都", " h港区", "  芝", "  芝海ビル", "  芝１丁目"));
    EXPECT_EQ(dic.Refine("1000005"), 1);
    EXPECT_THAT(dic.TreeLines(), ElementsAre("12東京都", " h千代田区", "  丸の内"));
}

TEST(CodeRefinement, HoldsTheDictionarysOwnNodes) {
    CTextWorld const world;
    CTreeDic dic(world);
    dic.Refine("1050014");
    EXPECT_TRUE(IsSame(
        dic.Tree(),
        {Entry("12東京都", {Entry("h港区", {Entry("芝", {}, dic.Node(world.nShiba))}, dic.Node(world.nMinato))},
               dic.Node(world.nTokyo))}));
}

TEST(CodeRefinement, TakesACodeInEverySpelling) {
    CTreeDic dic((CTextWorld()));
    for (char const* psz : {"100-0005", " 1 0 0 0 0 0 5 ", "1000005", "\x82\x50\x82\x4F\x82\x4F-0005"}) {
        dic.Refine("");
        EXPECT_EQ(dic.Refine(psz), 1);
        EXPECT_THAT(Towns(dic.Tree()), ElementsAre("丸の内")) << psz;
    }
    EXPECT_EQ(dic.Refine("105-001"), 1);
    EXPECT_THAT(Towns(dic.Tree()), ElementsAre("芝", "芝海ビル", "芝１丁目"));
}

TEST(CodeRefinement, GivesEveryEntryOfACodeThatManyShare) {
    CCodes const image({"1000000", "1000000", "1000001", "1000001", "1000001", "1000002"});
    EXPECT_THAT(TownsOf(image, "1000001"), ElementsAre("town 2", "town 3", "town 4"));
    EXPECT_THAT(TownsOf(image, "1000000"), ElementsAre("town 0", "town 1"));
}

TEST(CodeRefinement, HoldsATownOncePerEntry) {
    CTextWorld world;
    world.vInfo[2].nNode = world.vInfo[1].nNode; // 1000001 and 1000005
    CTreeDic dic(world);
    EXPECT_EQ(dic.Refine("10000"), 1);
    EXPECT_THAT(Towns(dic.Tree()), ElementsAre("千代田", "千代田"));
}

TEST(CodeRefinement, LeavesOutSupersededEntries) {
    EXPECT_THAT(TownsOf(CTextWorld(), "1000099"), IsEmpty());
    CTextWorld world;
    for (tagADDRINFO& info : world.vInfo) info.nNode |= ADDRINFO_SUPERSEDED;
    EXPECT_THAT(TownsOf(world, "1"), IsEmpty());
    world.vInfo[8].nNode &= ~ADDRINFO_SUPERSEDED; // in the middle of 10500
    EXPECT_THAT(TownsOf(world, "105"), ElementsAre("芝１丁目"));
}

TEST(CodeRefinement, LeavesOutEntriesWithoutAPrefectureOrACity) {
    CCodes image({"1000000", "1000001", "1000002", "1000003", "1000004", "1000005", "1000006", "2000000"});
    image.vNode[2].nParent = ADDR_NONE;  // town 0: alone
    image.vNode[3].nParent = 0;          // town 1: no city
    image.vNode[4].nParent = 0x7FFFFFFF; // town 2: no such parent
    image.vInfo[3].nNode = 1;            // the city itself
    image.vInfo[4].nNode = 0;            // the prefecture itself
    image.vInfo[5].nNode = 0x7FFFFFFF;   // no such node
    EXPECT_THAT(TownsOf(image, "1"), ElementsAre("town 6"));
    image.vNode[1].nParent = ADDR_NONE; // a city without a prefecture
    EXPECT_THAT(TownsOf(image, "1"), IsEmpty());
}

TEST(CodeRefinement, ComesBeforeTheAddress) {
    CTreeDic dic((CTextWorld()));
    EXPECT_EQ(dic.Refine("1000005", "広島県府中市元町"), 1);
    EXPECT_THAT(dic.TreeLines(), ElementsAre("12東京都", " h千代田区", "  丸の内"));
    EXPECT_EQ(dic.Refine("999", "広島県府中市元町"), 1);
    EXPECT_THAT(dic.TreeLines(), IsEmpty());
    EXPECT_EQ(dic.Refine("no code", "広島県府中市元町"), 1);
    EXPECT_THAT(dic.TreeLines(), ElementsAre("33広島県", " h府中市", "  元町"));
}

// --- codes that nothing matches, and the end of the table ----------------------------------------------------------

TEST(CodeRefinement, OfACodeThatNothingMatchesIsAnEmptyTree) {
    CTreeDic dic((CTextWorld()));
    for (char const* psz : {"0", "999", "1000002", "1000005?", "?", "???", "*", "100?", "*1"}) {
        dic.Refine("1000005");
        EXPECT_EQ(dic.Refine(psz), 1);
        EXPECT_THAT(dic.TreeLines(), IsEmpty()) << psz;
    }
}

TEST(CodeRefinement, FindsWildcardsThatStandInTheTable) {
    CCodes const image({"1000000", "10?0000", "2000000", "?000000", "A"});
    EXPECT_THAT(TownsOf(image, "?"), ElementsAre("town 3"));
    EXPECT_THAT(TownsOf(image, "10?"), ElementsAre("town 1"));
}

TEST(CodeRefinement, ThatReachesTheEndOfTheTableIsZeroAndNotSorted) {
    CTextWorld world;
    world.vInfo.pop_back(); // all that is left begins with 1
    CTreeDic dic(world);
    EXPECT_EQ(dic.Refine("1"), 0);
    EXPECT_THAT(dic.TreeLines(), ElementsAre("12東京都", " h千代田区", "  千代田", "  丸の内", "  丸の内テスト",
                                             "  丸の内テスト商事", "  千代田テスト", " h港区", "  芝", "  芝１丁目",
                                             "  芝海ビル", "  芝港商会", " h府中市", "  宮西町"))
        << "in the order of the table";
    EXPECT_EQ(dic.Refine("1830022"), 0);
    EXPECT_THAT(dic.TreeLines(), ElementsAre("12東京都", " h府中市", "  宮西町"));
}

TEST(CodeRefinement, ThatReachesTheEndOfTheTableIsZeroForSupersededEntriesToo) {
    CCodes image({"1000000", "2000000"});
    image.vInfo[1].nNode |= ADDRINFO_SUPERSEDED;
    EXPECT_THAT(TownsOf(image, "2", 0), IsEmpty());
}

TEST(CodeRefinement, InATableWithoutEntriesIsZero) {
    EXPECT_THAT(TownsOf(CCodes({}), "1", 0), IsEmpty());
}

TEST(CodeRefinement, EndsWithTheTableAndNotWithTheEntriesBehindIt) {
    CTreeDic dic(WithoutLastEntry(CCodes({"1000000", "1000001", "1000002"}), HDR_INFO_COUNT));
    EXPECT_EQ(dic.Refine("1"), 0);
    EXPECT_THAT(Towns(dic.Tree()), ElementsAre("town 0", "town 1"));
}

TEST(CodeRefinement, ThatTheSearchMissesBeginsAtTheFirstEntry) {
    CCodes const image({"5000000", "5000001", "3000000", "2000000", "1000000"}); // not sorted
    EXPECT_THAT(TownsOf(image, "5"), ElementsAre("town 0", "town 1"));
    EXPECT_THAT(TownsOf(image, "1"), IsEmpty()) << "the first entry does not begin so";
}

// --- damaged tables ------------------------------------------------------------------------------------------------

TEST(CodeRefinement, EndsAtACodeThatIsNotThere) {
    for (uint32_t nBehind : {0u, 1u, 0x7FFFFFFFu}) {
        CCodes image({"1000000", "1000001", "1000002", "1000003", "1000004", "2000000"});
        image.vInfo[3].nCode = static_cast<uint32_t>(image.strArea.size()) + nBehind;
        EXPECT_THAT(TownsOf(image, "1"), ElementsAre("town 0", "town 1", "town 2")) << nBehind;
    }
}

TEST(CodeRefinement, EndsAtACodeThatTheStringAreaCutsOff) {
    CCodes image({"1000000", "1000001"});
    image.strArea += "1000"; // without a NUL, right before a page that cannot be touched
    image.vInfo.push_back({static_cast<uint32_t>(image.strArea.size() - 4), 2});
    EXPECT_THAT(TownsOf(image, "10000"), ElementsAre("town 0", "town 1"));
    EXPECT_THAT(TownsOf(image, "1000", 0), ElementsAre("town 0", "town 1", "town 0")) << "all that is there";
}

using DamagedRefinement = TimedTest;

TEST_F(DamagedRefinement, WhereParentsGoInACircleComesToAnEnd) {
    for (uint32_t nParent : {1u, 2u}) {
        CCodes image({"1000000", "1000001", "2000000"});
        image.vNode[1].nParent = nParent;
        EXPECT_THAT(TownsOf(image, "1"), IsEmpty()) << "no prefecture on the way up";
    }
    CCodes image({"1000000", "1000001", "2000000"});
    image.vNode[0].nParent = 2; // town 0 > 港区 > 東京都 > town 0
    CTreeDic dic(image);
    EXPECT_EQ(dic.Refine("1"), 1);
    for (tagADDRPNT const& entry : dic.Tree()) EXPECT_EQ(NameOf(entry), "12東京都");
}

// --- texts and state -----------------------------------------------------------------------------------------------

TEST(CodeRefinement, BringsTheCallersCodeIntoFormAndLeavesWhatLiesBehindIt) {
    CTreeDic dic((CTextWorld()));
    for (bool bKnown : {false, true}) {
        char szCode[] = "100-0005\0behind";
        EXPECT_EQ(dic.MakeRefineTree(szCode, ""), 1);
        EXPECT_EQ(std::string(szCode, sizeof szCode), std::string("1000005\0\0behind\0", sizeof szCode)) << bKnown;
    }
    char szNoCode[] = "x-y\0z";
    EXPECT_EQ(dic.MakeRefineTree(szNoCode, ""), 1);
    EXPECT_EQ(std::string(szNoCode, sizeof szNoCode), std::string("\0-y\0z\0", sizeof szNoCode));
}

TEST(CodeRefinement, TakesNullForAnEmptyText) {
    CTreeDic dic((CTextWorld()));
    char szCode[] = "1000005";
    EXPECT_EQ(dic.MakeRefineTree(szCode, nullptr), 1);
    EXPECT_THAT(Towns(dic.Tree()), ElementsAre("丸の内"));
    EXPECT_EQ(dic.MakeRefineTree(nullptr, "広島県"), 1);
    EXPECT_THAT(Towns(dic.Tree()), ElementsAre("元町"));
    EXPECT_EQ(dic.MakeRefineTree(nullptr, nullptr), 1);
    EXPECT_THAT(dic.TreeLines(), IsEmpty());
}

TEST(CodeRefinement, WithoutAnImageFindsNothing) {
    CAddrDic unbound;
    char szCode[] = "1";
    EXPECT_EQ(unbound.MakeRefineTree(szCode, ""), 0);
    EXPECT_EQ(unbound.MakeRefineTree(nullptr, "東京都"), 1);
    EXPECT_EQ(unbound.MakeRefineTree(nullptr, ""), 1);
    EXPECT_THAT(CAddrDicPeek(unbound).vRefineTree, IsEmpty());
}

TEST(CodeRefinement, ChangesNothingButTheTreeAndItsTexts) {
    CTreeDic dic((CTextWorld()));
    CAddrDicPeek peek(dic);
    CAddrList vAddr;
    dic.GetAddrFromPostCode7("1058444", vAddr);
    dic.PrefList() = dic.CityList() = dic.TownList() = {dic.Node(3)};
    peek.vPrefPnt = peek.vCityPnt = peek.vTownPnt = {Entry("kept")};
    peek.nSelPref = 1, peek.nSelCity = 2, peek.nSelTown = 3, peek.nSelUnused = 4;
    dic.SetSortType(SORT_ADDR);
    for (char const* psz : {"", "1", "9", "7"})
        for (char const* pszAddr : {"", "東京都", "府中市"}) dic.Refine(psz, pszAddr);
    for (CNodeList const* p : {&dic.PrefList(), &dic.CityList(), &dic.TownList()})
        EXPECT_EQ(*p, CNodeList{dic.Node(3)});
    for (CTree const* p : {&peek.vPrefPnt, &peek.vCityPnt, &peek.vTownPnt})
        EXPECT_THAT(Lines(*p), ElementsAre("kept"));
    EXPECT_THAT((std::vector<int>{peek.nSelPref, peek.nSelCity, peek.nSelTown, peek.nSelUnused}),
                ElementsAre(1, 2, 3, 4));
    EXPECT_EQ(peek.nSortType, SORT_ADDR);
    EXPECT_STREQ(dic.GetLastInc(), "港商会");
    EXPECT_STREQ(peek.szOffice, "港商会");
}

} // namespace
