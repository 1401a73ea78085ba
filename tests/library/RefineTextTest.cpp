// Refinement by an address text: the levels that it names and all below them, as a tree; and trees of lists of nodes.
#include "tests/library/TreeWorld.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

CLines const TOKYO = {"12東京都", " h千代田区",     "  丸の内",   "  丸の内テスト", "  丸の内テスト商事",
                      "  千代田", "  千代田テスト", " h府中市",   "  宮西町",       " h港区",
                      "  芝",     "  芝海ビル",     "  芝港商会", "  芝１丁目"};

CLines LinesOf(CTestImage const& image, std::string const& strAddr) {
    CTreeDic dic(image);
    EXPECT_EQ(dic.Refine("", strAddr), 1) << strAddr;
    return dic.TreeLines();
}
CLines LinesOf(std::string const& strAddr) {
    return LinesOf(CTextWorld(), strAddr);
}

CLines Separated(CTestImage const& image, std::string const& strAddr) {
    CTreeDic dic(image);
    EXPECT_EQ(dic.SeparateAddr(CGuardedBytes(strAddr, CGuardedBytes::ReadOnly).Text()), 1) << strAddr;
    return dic.TreeLines();
}

// --- what a text names ---------------------------------------------------------------------------------------------

TEST(TextRefinement, OfAPrefectureIsAllThatLiesInItGroupedUnderItsCities) {
    EXPECT_EQ(LinesOf("東京都"), TOKYO);
    EXPECT_THAT(LinesOf("広島県"), ElementsAre("33広島県", " h府中市", "  元町"));
}

TEST(TextRefinement, OfAPrefectureWithoutACityIsTheWholePrefectureWhateverFollows) {
    EXPECT_EQ(LinesOf("東京都x"), TOKYO);
    EXPECT_EQ(LinesOf("東京都丸の内"), TOKYO) << "a town without its city";
    EXPECT_EQ(LinesOf("東京都元町"), TOKYO) << "a town of another prefecture";
    EXPECT_THAT(LinesOf("広島県千代田区"), ElementsAre("33広島県", " h府中市", "  元町"));
}

TEST(TextRefinement, OfACityOfAPrefectureIsAllThatLiesInIt) {
    CLines const vMinato = {"12東京都", " h港区", "  芝", "  芝海ビル", "  芝港商会", "  芝１丁目"};
    EXPECT_EQ(LinesOf("東京都港区"), vMinato);
    EXPECT_EQ(LinesOf("東京都港区x"), vMinato);
    EXPECT_EQ(LinesOf("東京都港区丸の内"), vMinato) << "a town of another city";
    EXPECT_THAT(LinesOf("広島県府中市"), ElementsAre("33広島県", " h府中市", "  元町"));
    EXPECT_THAT(LinesOf("東京都府中市"), ElementsAre("12東京都", " h府中市", "  宮西町"));
}

TEST(TextRefinement, OfATownIsTheTownAndAllThatLiesInIt) {
    CLines const vMarunouchi = {"12東京都", " h千代田区", "  丸の内", "  丸の内テスト", "  丸の内テスト商事"};
    EXPECT_EQ(LinesOf("東京都千代田区丸の内"), vMarunouchi);
    EXPECT_EQ(LinesOf("東京都千代田区丸の内２丁目"), vMarunouchi);
    EXPECT_THAT(LinesOf("東京都千代田区旧町"), IsEmpty()) << "superseded";
}

TEST(TextRefinement, WithoutAPrefectureIsThatOfTheCitiesItBeginsWith) {
    EXPECT_THAT(LinesOf("府中市"), ElementsAre("12東京都", " h府中市", "  宮西町", "33広島県", " h府中市", "  元町"));
    EXPECT_THAT(LinesOf("府中市元町"), ElementsAre("33広島県", " h府中市", "  元町"));
    EXPECT_THAT(LinesOf("千代田区丸の内１"),
                ElementsAre("12東京都", " h千代田区", "  丸の内", "  丸の内テスト", "  丸の内テスト商事"));
}

TEST(TextRefinement, OfATextThatNamesNothingIsEmpty) {
    for (char const* psz : {"x", "東京", "府中", "丸の内", "市", "\xE6", " 東京都"})
        EXPECT_THAT(LinesOf(psz), IsEmpty()) << psz;
}

TEST(TextRefinement, LeavesOutSupersededNodesAndThoseWithoutAnEntry) {
    CTextWorld world;
    for (uint32_t nNode : {world.nShiba, world.nBuilding})
        world.vInfo[world.vNode[nNode].nInfo].nNode |= ADDRINFO_SUPERSEDED;
    world.vNode[world.nArea].nInfo = ADDR_NONE;
    EXPECT_THAT(LinesOf(world, "東京都港区"), ElementsAre("12東京都", " h港区", "  芝港商会"));
}

TEST(TextRefinement, LeavesOutACityThatHasAnEntryOfItsOwn) {
    CTextWorld world; // 千代田区 has one: an address without a city above it
    for (uint32_t n = world.nMarunouchi; n < world.vNode.size(); ++n) world.vNode[n].nInfo = ADDR_NONE;
    EXPECT_THAT(LinesOf(world, "東京都千代田区"), IsEmpty());
}

// --- its two halves ------------------------------------------------------------------------------------------------

TEST(SeparatedAddress, IsNotSorted) {
    EXPECT_THAT(Separated(CTextWorld(), "東京都港区"),
                ElementsAre("12東京都", " h港区", "  芝", "  芝１丁目", "  芝港商会", "  芝海ビル"));
    EXPECT_THAT(Separated(CTextWorld(), "府中市"),
                ElementsAre("12東京都", " h府中市", "  宮西町", "33広島県", " h府中市", "  元町"));
}

TEST(SeparatedAddress, ReplacesTheTree) {
    CTreeDic dic((CTextWorld()));
    dic.Refine("105");
    EXPECT_EQ(dic.SeparateAddr("広島県"), 1);
    EXPECT_THAT(dic.TreeLines(), ElementsAre("33広島県", " h府中市", "  元町"));
    for (char const* psz : {"x", "", static_cast<char const*>(nullptr)}) {
        dic.SeparateAddr("広島県");
        EXPECT_EQ(dic.SeparateAddr(psz), 1);
        EXPECT_THAT(dic.TreeLines(), IsEmpty()) << Shown(psz);
    }
}

TEST(SeparatedAddress, WithoutAnImageIsEmpty) {
    CAddrDic unbound;
    CNodeList vNode;
    for (char const* psz : {"東京都", "", static_cast<char const*>(nullptr)}) EXPECT_EQ(unbound.SeparateAddr(psz), 1);
    EXPECT_EQ(unbound.MakeTreeFromNode(vNode), 1);
    EXPECT_THAT(CAddrDicPeek(unbound).vRefineTree, IsEmpty());
}

TEST(TreeOfNodes, HasTheAddressesOfTheirEntriesInTheOrderOfTheList) {
    CTextWorld const world;
    CTreeDic dic(world);
    dic.Refine("183");
    CNodeList vNode = {dic.Node(world.nShiba), dic.Node(world.nChiyoda), dic.Node(world.nBuilding),
                       dic.Node(world.nMarunouchi), dic.Node(world.nShiba)};
    CNodeList const vBefore = vNode;
    EXPECT_EQ(dic.MakeTreeFromNode(vNode), 1);
    EXPECT_THAT(dic.TreeLines(), ElementsAre("12東京都", " h港区", "  芝", "  芝海ビル", "  芝", " h千代田区",
                                             "  千代田", "  丸の内"));
    EXPECT_EQ(vNode, vBefore);
    vNode.clear();
    EXPECT_EQ(dic.MakeTreeFromNode(vNode), 1);
    EXPECT_THAT(dic.TreeLines(), IsEmpty());
}

TEST(TreeOfNodes, PutsTheTownOfANewCityBelowTheLastPrefecture) {
    CTextWorld const world;
    CTreeDic dic(world);
    CNodeList vNode = {dic.Node(world.nShiba), dic.Node(world.nMotomachi), dic.Node(world.nMiyanishi)};
    EXPECT_EQ(dic.MakeTreeFromNode(vNode), 1);
    EXPECT_THAT(dic.TreeLines(),
                ElementsAre("12東京都", " h港区", "  芝", " h府中市", "33広島県", " h府中市", "  元町", "  宮西町"));
}

TEST(TreeOfNodes, LeavesOutThoseWithoutAnAddressOfToday) {
    CTextWorld world;
    world.vNode[world.nMarunouchi].nInfo = static_cast<uint32_t>(world.vInfo.size());
    world.vNode[world.nTest].nInfo = 0x80000000;
    CTreeDic dic(world);
    CNodeList vNode = {nullptr,
                       dic.Node(world.nOldTown),
                       dic.Node(world.nTokyo),
                       dic.Node(world.nMinato),
                       dic.Node(world.nChiyodaKu),
                       dic.Node(world.nMarunouchi),
                       dic.Node(world.nTest),
                       dic.Node(world.nMotomachi),
                       nullptr};
    EXPECT_EQ(dic.MakeTreeFromNode(vNode), 1);
    EXPECT_THAT(dic.TreeLines(), ElementsAre("33広島県", " h府中市", "  元町"));
}

TEST(TreeOfNodes, GoesByTheNodeOfTheEntry) {
    CTextWorld world;
    world.vNode[world.nMotomachi].nInfo = world.vNode[world.nBuilding].nInfo;
    CTreeDic dic(world);
    CNodeList vNode = {dic.Node(world.nMotomachi)};
    EXPECT_EQ(dic.MakeTreeFromNode(vNode), 1);
    EXPECT_THAT(dic.TreeLines(), ElementsAre("12東京都", " h港区", "  芝海ビル"));
    EXPECT_EQ(dic.Tree()[0].vChild[0].vChild[0].pNode, dic.Node(world.nBuilding));
}

// --- the class and MakeTreeData ------------------------------------------------------------------------------------

// Some prefectures with cities and towns of all levels, each with an entry or two in any order; some entries are
// superseded, damaged or belong to a prefecture or a city. Names are unique.
CTestImage ShuffledEntries(std::mt19937& random, bool bWhole) {
    CTestImage image;
    for (char const* psz : {"沖縄県", "東京都", "新しい県", "北海道"}) image.AddNode(LEVEL_PREF, ADDR_NONE, psz);
    auto const Add = [&](uint8_t nLevel, uint32_t nFirst, uint32_t nCount) {
        uint32_t const nParent = nFirst + static_cast<uint32_t>(random() % nCount);
        std::string const strFront(random() % 8 == 0 ? 130 : random() % 12, static_cast<char>('a' + random() % 3));
        image.AddNode(nLevel, nParent, strFront + std::to_string(image.vNode.size()));
    };
    for (int n = 0; n < 9; ++n) Add(LEVEL_CITY, 0, 4);
    for (int n = 0; n < 12; ++n) Add(LEVEL_TOWN, 4, 9);
    for (int n = 0; n < 12; ++n) Add(static_cast<uint8_t>(2 + random() % 7), 4, 21);
    uint32_t const nCode = image.AddText("1000000", "100");
    size_t const nNodes = image.vNode.size();
    for (int n = 0; n < 30; ++n) image.AddInfoAt(static_cast<uint32_t>(13 + random() % (nNodes - 13)), nCode);
    for (int n = 0; n < 5; ++n) image.AddInfoAt(static_cast<uint32_t>(random() % (nNodes + 2)), nCode);
    for (int n = 0; n < 3; ++n) image.vInfo[random() % 30].nNode |= ADDRINFO_SUPERSEDED;
    std::shuffle(image.vInfo.begin(), image.vInfo.end(), random);
    for (uint32_t n = 0; n < image.vInfo.size(); ++n)
        if (uint32_t const nNode = image.vInfo[n].nNode & ~ADDRINFO_SUPERSEDED; nNode < nNodes)
            image.vNode[nNode].nInfo = n;
    if (bWhole) image.AddInfo(4, "2000000");
    return image;
}

TEST(TreeOfTheClass, OfACodeIsThatOfItsAddressesPutInOneByOne) {
    std::mt19937 random(52);
    size_t nAsymmetric = 0;
    for (int nRound = 0; nRound < 200; ++nRound) {
        bool const bWhole = nRound % 2 == 0;
        CTreeDic dic(ShuffledEntries(random, bWhole));
        CTree tree;
        for (unsigned long n = 0; n < 35; ++n) dic.InsertEntry(tree, dic.GetAddrInfo(n));
        for (tagADDRPNT const& pref : tree)
            for (tagADDRPNT const& city : pref.vChild) nAsymmetric += city.vChild.empty();
        if (bWhole) recSortTree(tree);
        ASSERT_EQ(dic.Refine("1"), bWhole ? 1 : 0) << nRound;
        ASSERT_TRUE(IsSame(dic.Tree(), tree))
            << nRound << testing::PrintToString(dic.TreeLines()) << testing::PrintToString(Lines(tree));
    }
    EXPECT_GT(nAsymmetric, 50u) << "cities whose first town went elsewhere: the orders do interleave";
}

TEST(TreeOfTheClass, OfNodesIsThatOfTheirEntriesPutInOneByOne) {
    std::mt19937 random(53);
    for (int nRound = 0; nRound < 200; ++nRound) {
        CTestImage const image = ShuffledEntries(random, true);
        CTreeDic dic(image);
        CNodeList vNode;
        for (size_t n = random() % 80; vNode.size() < n;)
            vNode.push_back(dic.Node(static_cast<uint32_t>(random() % image.vNode.size())));
        CTree tree;
        for (tagADDRNODE const* const pNode : vNode)
            if (tagADDRINFO const* const pInfo = dic.GetAddrInfo(pNode->nInfo)) dic.InsertEntry(tree, pInfo);
        ASSERT_EQ(dic.MakeTreeFromNode(vNode), 1);
        ASSERT_TRUE(IsSame(dic.Tree(), tree))
            << nRound << testing::PrintToString(dic.TreeLines()) << testing::PrintToString(Lines(tree));
    }
}

// Parents anywhere: of the node's own level, in circles, above and below cities; neighbours often share theirs.
CTestImage EntriesWithAnyParents(std::mt19937& random) {
    CTestImage image = ShuffledEntries(random, true);
    auto const nNodes = static_cast<uint32_t>(image.vNode.size());
    for (uint32_t n = 4; n < nNodes; ++n) {
        tagADDRNODE& node = image.vNode[n];
        if (random() % 4 == 0) node.nLevel = static_cast<uint8_t>(random() % 9);
        if (random() % 2 == 0)
            node.nParent = image.vNode[n - 1].nParent;
        else if (random() % 2 == 0)
            node.nParent = random() % 16 == 0 ? ADDR_NONE : static_cast<uint32_t>(random() % nNodes);
    }
    return image;
}

TEST(TreeOfTheClass, OfDamagedNodesIsThatOfTheirEntriesPutInOneByOne) {
    std::mt19937 random(55);
    size_t nEntries = 0;
    for (int nRound = 0; nRound < 400; ++nRound) {
        CTestImage const image = EntriesWithAnyParents(random);
        CTreeDic dic(image);
        CNodeList vNode;
        for (uint32_t n = 0; n < 60; ++n)
            vNode.push_back(dic.Node((n % 3 == 0 ? static_cast<uint32_t>(random()) : n) %
                                     static_cast<uint32_t>(image.vNode.size())));
        CTree tree;
        for (tagADDRNODE const* const pNode : vNode)
            if (tagADDRINFO const* const pInfo = dic.GetAddrInfo(pNode->nInfo)) dic.InsertEntry(tree, pInfo);
        nEntries += Lines(tree).size();
        ASSERT_EQ(dic.MakeTreeFromNode(vNode), 1);
        ASSERT_TRUE(IsSame(dic.Tree(), tree))
            << nRound << testing::PrintToString(dic.TreeLines()) << testing::PrintToString(Lines(tree));
    }
    EXPECT_GT(nEntries, 4000u);
}

// --- damaged dictionaries ------------------------------------------------------------------------------------------

using DamagedText = TimedTest;

TEST_F(DamagedText, WithChildrenThatAreNotThereGivesTheRest) {
    for (uint32_t nCount : {0x80000000u, 0xFFFFFFFFu}) {
        CTextWorld world;
        world.vNode[world.nBuilding].nFirstChild = static_cast<uint32_t>(world.vNode.size());
        world.vNode[world.nBuilding].nChildCount = nCount;
        world.vNode[world.nMinato].nFirstChild = 0xFFFFFFFE;
        world.vNode[world.nMinato].nChildCount = nCount;
        EXPECT_THAT(LinesOf(world, "東京都港区"), IsEmpty());
        EXPECT_THAT(LinesOf(world, "東京都府中市"), ElementsAre("12東京都", " h府中市", "  宮西町"));
    }
}

TEST_F(DamagedText, WhereChildrenGoInACircleComesToAnEnd) {
    for (uint32_t nBack : {0u, 3u, 9u, 12u}) {
        CTextWorld world;
        world.vNode[world.nArea].nFirstChild = nBack;
        world.vNode[world.nArea].nChildCount = 5;
        for (char const* psz : {"東京都", "東京都港区", "東京都港区芝", "港区", "港区芝", "港区x"})
            EXPECT_LE(LinesOf(world, psz).size(), 3 * (world.vNode.size() + 1)) << psz;
    }
}

// Looking at all children of each city would take minutes.
TEST_F(DamagedText, WhereManyCitiesShareAllNodesForChildrenComesToAnEnd) {
    constexpr uint32_t CITIES = 150000;
    CTestImage image;
    image.AddNode(LEVEL_PREF, ADDR_NONE, "東京都");
    uint32_t const nName = image.AddText("a");
    image.vNode.insert(image.vNode.end(), CITIES, {LEVEL_CITY, {}, nName, ADDR_NONE, 0, CITIES, 1});
    image.nFirstCity = 1;
    image.vCityIndex.resize(CITIES); // which counts them
    image.vNode[CITIES].nInfo = image.AddInfo(CITIES, "1000000");
    CTreeDic dic(image);
    CNodeList vNode;
    EXPECT_EQ(dic.SearchCity2("axx", vNode), 0);
    EXPECT_THAT(vNode, testing::AllOf(testing::Not(IsEmpty()), testing::Each(dic.Node(CITIES))));
}

TEST_F(DamagedText, WhereEveryNodeHasAllNodesForChildrenComesToAnEnd) {
    CTextWorld world;
    for (tagADDRNODE& node : world.vNode) node.nFirstChild = 0, node.nChildCount = 0xFFFFFFFF;
    for (char const* psz : {"東京都", "東京都港区", "東京都港区芝", "港区", "港区芝", "府中市x"})
        EXPECT_LE(LinesOf(world, psz).size(), 3 * (world.vNode.size() + 1)) << psz;
}

} // namespace
