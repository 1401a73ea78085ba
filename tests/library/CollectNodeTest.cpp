// A node and all below it that have an address of today.
#include "tests/library/BrowseWorld.h"

#include <gmock/gmock.h>

#include <unistd.h>

#include <cstdlib>

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;
using testing::SizeIs;

using CNumbers = std::vector<uint32_t>;

CNumbers Collected(CBrowsedDic& dic, uint32_t nNode) {
    CNodeList vNode;
    dic.recCollectNode(dic.Node(nNode), vNode);
    return dic.Numbers(vNode);
}

CNumbers CollectedIn(CTestImage const& image, uint32_t nNode) {
    CBrowsedDic dic(image);
    return Collected(dic, nNode);
}

// --- whole trees ---------------------------------------------------------------------------------------------------

TEST(CollectedNodes, AreTheNodeAndAllBelowItParentsFirst) {
    CTextWorld const world;
    EXPECT_THAT(CollectedIn(world, world.nChiyodaKu),
                ElementsAre(world.nChiyodaKu, world.nMarunouchi, world.nTest, world.nTestShoji, world.nChiyoda,
                            world.nTestChiyoda));
}

TEST(CollectedNodes, LackThoseWithoutAnEntryButNotWhatLiesBelowThem) {
    CTextWorld const world;
    EXPECT_THAT(CollectedIn(world, world.nTokyo),
                ElementsAre(world.nChiyodaKu, world.nMarunouchi, world.nTest, world.nTestShoji, world.nChiyoda,
                            world.nTestChiyoda, world.nShiba, world.nArea, world.nMinatoShokai, world.nBuilding,
                            world.nMiyanishi))
        << "without 東京都 itself, 港区 and 府中市";
}

TEST(CollectedNodes, LackSupersededOnesButNotWhatLiesBelowThem) {
    CTextWorld world;
    for (uint32_t nNode : {world.nShiba, world.nBuilding})
        world.vInfo[world.vNode[nNode].nInfo].nNode |= ADDRINFO_SUPERSEDED;
    EXPECT_THAT(CollectedIn(world, world.nShiba), ElementsAre(world.nArea, world.nMinatoShokai));
    EXPECT_THAT(CollectedIn(world, world.nOldTown), IsEmpty());
}

TEST(CollectedNodes, LackThoseWhoseEntryIsNotThere) {
    CTextWorld world;
    auto const nInfos = static_cast<uint32_t>(world.vInfo.size());
    for (uint32_t nInfo : {nInfos, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFEu}) {
        world.vNode[world.nShiba].nInfo = nInfo;
        EXPECT_THAT(CollectedIn(world, world.nMinato), ElementsAre(world.nArea, world.nMinatoShokai, world.nBuilding))
            << nInfo;
    }
}

TEST(CollectedNodes, OfANodeWithoutChildrenAreTheNodeAlone) {
    CTextWorld const world;
    EXPECT_THAT(CollectedIn(world, world.nMotomachi), ElementsAre(world.nMotomachi));
}

TEST(CollectedNodes, AreOfEveryLevelAndNamelessToo) {
    CTestImage image;
    image.AddNode(LEVEL_CITY, ADDR_NONE, "");
    CNumbers vExpected;
    for (uint32_t n = 1; n <= 256; ++n) {
        image.AddNode(static_cast<uint8_t>(n - 1), 0, "");
        image.vNode[n].nInfo = image.AddInfo(n, "1000000");
        vExpected.push_back(n);
    }
    image.vNode[0].nFirstChild = 1;
    image.vNode[0].nChildCount = 256;
    EXPECT_EQ(CollectedIn(image, 0), vExpected) << "a city is below a city as any other is";
}

TEST(CollectedNodes, AreAppended) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    CNodeList vNode = {nullptr, dic.Node(world.nMotomachi)};
    dic.recCollectNode(dic.Node(world.nMotomachi), vNode);
    EXPECT_THAT(dic.Numbers(vNode), ElementsAre(ADDR_NONE, world.nMotomachi, world.nMotomachi));
}

TEST(CollectedNodes, LeaveTheListsAlone) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    dic.PrefList() = dic.CityList() = dic.TownList() = {dic.Node(0)};
    Collected(dic, world.nTokyo);
    for (CNodeList const& vNode : {dic.PrefList(), dic.CityList(), dic.TownList()})
        EXPECT_THAT(dic.Numbers(vNode), ElementsAre(0));
}

TEST(CollectedNodes, OfNothingAreNone) {
    CBrowsedDic dic((CTextWorld()));
    CNodeList vNode;
    dic.recCollectNode(nullptr, vNode);
    CAddrDic unbound;
    unbound.recCollectNode(nullptr, vNode);
    EXPECT_THAT(vNode, IsEmpty());
}

// In a child: a fault there must not take the other tests along.
TEST(CollectedNodes, OfANodeWithoutItsImageAreNone) {
    auto const Collect = [] {
        CTextWorld const world;
        CAddrDic unbound;
        CNodeList vNode;
        unbound.recCollectNode(&world.vNode[world.nTokyo], vNode);
        std::_Exit(vNode.empty() ? 0 : 1);
    };
    EXPECT_EXIT(Collect(), testing::ExitedWithCode(0), "");
}

// --- damaged trees -------------------------------------------------------------------------------------------------

TEST(CollectedNodes, SkipChildrenThatAreNotThere) {
    for (uint32_t nCount : {3u, 0x80000000u, 0xFFFFFFFFu}) {
        CTestImage image = ChiyodaWith({"a", "b"});
        image.vNode[1].nChildCount = nCount;
        EXPECT_THAT(CollectedIn(image, 1), ElementsAre(2, 3)) << nCount;
    }
}

TEST(CollectedNodes, DoNotBeginAgainAtTheFirstNodeBehindTheLastNumber) {
    for (uint32_t nFirst : {4u, 0x80000000u, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
        CTestImage image = ChiyodaWith({"a", "b"});
        image.vNode[1].nFirstChild = nFirst;
        image.vNode[1].nChildCount = 10;
        EXPECT_THAT(CollectedIn(image, 1), IsEmpty()) << nFirst;
    }
}

// A walk that does not come to an end takes all memory: better the test program ends.
class DamagedCollection : public testing::Test {
  protected:
    void SetUp() override { alarm(10); } // seconds; they take some milliseconds
    void TearDown() override { alarm(0); }
};

TEST_F(DamagedCollection, PassesOverAChildThatIsItsOwnAncestor) {
    CTextWorld world;
    world.vNode[world.nBuilding].nFirstChild = world.nMinato; // 港区 > 芝 > １丁目 > 海ビル > 港区
    world.vNode[world.nBuilding].nChildCount = 1;
    EXPECT_THAT(CollectedIn(world, world.nMinato),
                ElementsAre(world.nShiba, world.nArea, world.nMinatoShokai, world.nBuilding));
}

// From every node: no more than the node itself and one child for each node of the dictionary.
void ExpectSmallCollections(CTestImage const& image) {
    CBrowsedDic dic(image);
    for (uint32_t n = 0; n < image.vNode.size(); ++n)
        ASSERT_THAT(Collected(dic, n), SizeIs(Le(image.vNode.size() + 1))) << "from node " << n;
}

TEST_F(DamagedCollection, WhereANodeIsItsOwnChildComesToAnEnd) {
    for (uint32_t nCount : {1u, 5u, 0xFFFFFFFFu})
        for (uint32_t n = 0; n < CTextWorld().vNode.size(); ++n) {
            CTextWorld world;
            world.vNode[n].nFirstChild = n;
            world.vNode[n].nChildCount = nCount;
            ExpectSmallCollections(world);
        }
}

TEST_F(DamagedCollection, WhereEveryNodeHasAllNodesForChildrenComesToAnEnd) {
    CTextWorld world;
    for (uint32_t nCount : {static_cast<uint32_t>(world.vNode.size()), 0xFFFFFFFFu}) {
        for (tagADDRNODE& node : world.vNode) {
            node.nFirstChild = 0;
            node.nChildCount = nCount;
        }
        ExpectSmallCollections(world);
    }
}

// A chain: each node is the parent of the next.
CTestImage Chain(uint32_t nNodes) {
    CTestImage image;
    uint32_t const nText = image.AddText("1234567", "123");
    for (uint32_t n = 0; n < nNodes; ++n) {
        image.vNode.push_back({LEVEL_AREA, {}, nText, n, n == 0 ? ADDR_NONE : n - 1, n + 1 < nNodes, n + 1});
        image.AddInfoAt(n, nText);
    }
    return image;
}

// Without a bound the walk would visit the last node as often as there are ways to it.
TEST_F(DamagedCollection, OfOverlappingRunsComesToAnEnd) {
    constexpr uint32_t NODES = 3000;
    CTestImage image = Chain(NODES);
    for (uint32_t n = 0; n < NODES; ++n) image.vNode[n].nChildCount = NODES - n - 1;
    for (uint32_t nNode : {0u, 1u, NODES / 2, NODES - 2})
        EXPECT_THAT(CollectedIn(image, nNode), SizeIs(AllOf(Ge(2u), Le(NODES + 1)))) << nNode;
}

TEST_F(DamagedCollection, GoesDownOneHundredLevels) {
    EXPECT_THAT(CollectedIn(Chain(100), 0), SizeIs(100)) << "there are eight in a sound dictionary";
}

TEST_F(DamagedCollection, OfAChainOfThousandsOfNodesEndsAtItsDeepest) {
    EXPECT_THAT(CollectedIn(Chain(100000), 0), SizeIs(257)) << "the node itself and 256 below it";
}

} // namespace
