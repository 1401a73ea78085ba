// GetAdrNum: its arguments, and the counts of a refinement tree.
#include "tests/library/ListsWorld.h"

#include <gmock/gmock.h>

#include <climits>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// 北海道 with 小樽市 (花園) and 東京都 with 千代田区 (丸の内, 千代田) and 港区 (１丁目, 海ビル, ３階).
CEntryList TreeOf(CListsDic const& dic, CListsWorld const& world) {
    auto const E = [&](uint32_t nNode, CEntryList vChild = {}) { return dic.Entry(nNode, std::move(vChild)); };
    return {E(world.nHokkaido, {E(world.nOtaru, {E(world.nHanazono)})}),
            E(world.nTokyo, {E(world.nChiyodaKu, {E(world.nMarunouchi), E(world.nChiyoda)}),
                             E(world.nMinato, {E(world.nArea), E(world.nBuilding), E(world.nFloor)})})};
}

struct CTreeDic : CListsDic {
    explicit CTreeDic(CListsWorld const& world = CListsWorld()) : CListsDic(world) { Tree() = TreeOf(*this, world); }
};

// A tree of one prefecture with nCities cities, the first of which has nTowns towns.
CEntryList BigTree(CListsDic const& dic, size_t nCities, size_t nTowns) {
    CEntryList tree = {dic.Entry(0)};
    tree[0].vChild.resize(nCities);
    tree[0].vChild[0].vChild.resize(nTowns);
    return tree;
}

// --- arguments -----------------------------------------------------------------------------------------------------

constexpr int NEGATIVE[][3] = {{-1, 0, 0},      {0, -1, 0},   {0, 0, -1},       {INT_MIN, 0, 0}, {0, -32768, 0},
                               {0, 0, INT_MIN}, {-1, -1, -1}, {-65536, 99, 99}, {99, 99, -65536}};

TEST(AdrNum, OfANegativePositionLeavesAllOutputsAlone) {
    CTreeDic tree;
    CListsDic lists((CListsWorld()));
    for (auto const& an : NEGATIVE) {
        EXPECT_EQ(Count(tree, an[0], an[1], an[2]), NothingWritten()) << an[0] << ' ' << an[1] << ' ' << an[2];
        EXPECT_EQ(Count(lists, an[0], an[1], an[2]), NothingWritten()) << an[0] << ' ' << an[1] << ' ' << an[2];
    }
}

TEST(AdrNum, OfANegativePositionLeavesTheSelectionAndTheListsAlone) {
    CTreeDic tree;
    CListsDic lists((CListsWorld()));
    ASSERT_EQ(Count(tree, TOKYO, 1, 2), Found(2, 2, 3));
    ASSERT_EQ(Count(lists, TOKYO, 1, 2), Found(3, 3, 2));
    lists.Prefs().clear();
    for (auto const& an : NEGATIVE) {
        Count(tree, an[0], an[1], an[2]);
        Count(lists, an[0], an[1], an[2]);
        EXPECT_THAT(tree.Selection(), ElementsAre(TOKYO, 1, 2));
        EXPECT_THAT(lists.Selection(), ElementsAre(TOKYO, 1, 2));
    }
    EXPECT_THAT(lists.Prefs(), IsEmpty()) << "not even these are made again";
    EXPECT_THAT(lists.Towns(), SizeIs(2));
}

TEST(AdrNum, WithoutOneOfItsOutputsWritesNoneOfTheOthers) {
    CTreeDic tree;
    CListsDic lists((CListsWorld()));
    for (int nNull = 0; nNull < 6; ++nNull) {
        EXPECT_EQ(Count(tree, TOKYO, 1, 2, nNull), NothingWritten()) << nNull;
        EXPECT_EQ(Count(lists, TOKYO, 1, 2, nNull), NothingWritten()) << nNull;
        EXPECT_THAT(tree.Selection(), ElementsAre(0, 0, 0));
        EXPECT_THAT(lists.Selection(), ElementsAre(0, 0, 0));
    }
    EXPECT_THAT(lists.Prefs(), IsEmpty());
}

// --- a tree --------------------------------------------------------------------------------------------------------

TEST(TreeCounts, AreThoseOfTheLevelsBelowTheSelection) {
    CTreeDic dic;
    EXPECT_EQ(Count(dic, 0, 0, 0), Found(2, 1, 1));
    EXPECT_EQ(Count(dic, 1, 0, 0), Found(2, 2, 2));
    EXPECT_EQ(Count(dic, 1, 1, 0), Found(2, 2, 3)) << "the city counts, also after another prefecture";
    EXPECT_EQ(Count(dic, 0, 0, 0), Found(2, 1, 1));
    EXPECT_EQ(Count(dic, 1, 1, 0), Found(2, 2, 3));
}

TEST(TreeCounts, AreThoseOfARefinement) {
    CListsDic dic((CListsWorld()));
    char szCode[] = "105-00";
    ASSERT_EQ(dic.MakeRefineTree(szCode, ""), 1);
    EXPECT_EQ(Count(dic, 0, 0, 0), Found(1, 1, 3))
        << "１丁目, 海ビル, ３階; an entry of the city itself has no place";
    ASSERT_EQ(dic.MakeRefineTree(szCode + 6, "東京都"), 1);
    EXPECT_EQ(Count(dic, 0, MINATO, 0), Found(1, 3, 5)) << "those and two organisations";
}

TEST(TreeCounts, EndAtAPrefectureThatIsNotThere) {
    CTreeDic dic;
    for (int nPref : {2, 3, 32768, 65536, 65537, INT_MAX})
        EXPECT_EQ(Count(dic, nPref, 0, 0), Missed(2, 0, 0)) << nPref;
    dic.Tree().resize(1);
    EXPECT_EQ(Count(dic, 1, 0, 0), Missed(1, 0, 0));
}

TEST(TreeCounts, EndAtACityThatIsNotThere) {
    CTreeDic dic;
    for (int nCity : {2, 3, 32768, 65536, 65537, INT_MAX})
        EXPECT_EQ(Count(dic, 1, nCity, 0), Missed(2, 2, 0)) << nCity;
    EXPECT_EQ(Count(dic, 0, 1, 0), Missed(2, 1, 0)) << "it is one of the other prefecture";
    dic.Tree()[0].vChild.clear();
    EXPECT_EQ(Count(dic, 0, 0, 0), Missed(2, 0, 0));
}

TEST(TreeCounts, DoNotLookAtTheTown) {
    CTreeDic dic;
    for (int nTown : {2, 3, 65536, INT_MAX}) {
        EXPECT_EQ(Count(dic, 1, 0, nTown), Found(2, 2, 2)) << nTown;
        EXPECT_THAT(dic.Selection(), ElementsAre(1, 0, nTown)) << "and take it";
    }
    dic.Tree()[1].vChild[0].vChild.clear();
    EXPECT_EQ(Count(dic, 1, 0, 0), Found(2, 2, 0)) << "not even whether there is one";
}

TEST(TreeCounts, SelectWhatIsNotThereToo) {
    CTreeDic dic;
    Count(dic, 1, 0, 5);
    EXPECT_THAT(dic.Selection(), ElementsAre(1, 0, 5));
    Count(dic, 7, 8, 9);
    EXPECT_THAT(dic.Selection(), ElementsAre(7, 8, 9)) << "no such prefecture";
    Count(dic, 1, 2, 3);
    EXPECT_THAT(dic.Selection(), ElementsAre(1, 2, 3)) << "no such city";
    Count(dic, INT_MAX, INT_MAX, INT_MAX);
    EXPECT_THAT(dic.Selection(), ElementsAre(INT_MAX, INT_MAX, INT_MAX));
}

TEST(TreeCounts, LeaveTheListsOfTheDictionaryAlone) {
    CTreeDic dic;
    dic.Prefs() = dic.Cities() = dic.Towns() = {dic.Entry(0), dic.Entry(0)};
    for (int nPref : {0, 1, 2})
        for (int nCity : {0, 1, 2}) Count(dic, nPref, nCity, 0);
    for (CEntryList const& vEntry : {dic.Prefs(), dic.Cities(), dic.Towns()}) {
        EXPECT_THAT(Names(vEntry), ElementsAre("not to be shown", "not to be shown"));
        EXPECT_THAT(Numbers(dic, vEntry), ElementsAre(0, 0));
    }
}

TEST(TreeCounts, LeaveTheTreeAlone) {
    CTreeDic dic;
    CEntryList const before = dic.Tree();
    Count(dic, 0, 0, 0);
    Count(dic, 1, 7, 0);
    ASSERT_THAT(dic.Tree(), SizeIs(2));
    EXPECT_EQ(Numbers(dic, dic.Tree()), Numbers(dic, before));
    EXPECT_EQ(Numbers(dic, dic.Tree()[1].vChild), Numbers(dic, before[1].vChild));
    EXPECT_EQ(Numbers(dic, dic.Tree()[1].vChild[1].vChild), Numbers(dic, before[1].vChild[1].vChild));
}

// --- more than 16 bits hold ----------------------------------------------------------------------------------------

// The city is compared with its count as the host sees it: negative, or less than there is.
TEST(TreeCounts, OfManyCitiesAreTruncatedAndTheCityIsComparedWithThat) {
    CListsDic dic((CListsWorld()));
    struct {
        size_t nCities;
        short nCount;
        int nEnd; // the first city that is not there
    } const aCase[] = {{32766, 32766, 32766}, {32767, 32767, 32767}, {32768, -32768, 0}, {32769, -32767, 0},
                       {40000, -25536, 0},    {65535, -1, 0},        {65536, 0, 0},      {65537, 1, 1},
                       {65538, 2, 2},         {98303, 32767, 32767}, {98304, -32768, 0}};
    for (auto const& c : aCase) {
        dic.Tree() = BigTree(dic, c.nCities, 3);
        if (c.nEnd > 0) {
            EXPECT_EQ(Count(dic, 0, 0, 0), Found(1, c.nCount, 3)) << c.nCities;
        }
        if (c.nEnd > 1) {
            EXPECT_EQ(Count(dic, 0, c.nEnd - 1, 0), Found(1, c.nCount, 0)) << c.nCities;
        }
        for (int nCity : {c.nEnd, 32767, 32768, static_cast<int>(c.nCities) - 1, static_cast<int>(c.nCities)}) {
            if (nCity < c.nEnd) continue; // it is there
            EXPECT_EQ(Count(dic, 0, nCity, 0), Missed(1, c.nCount, 0)) << nCity << " of " << c.nCities;
        }
    }
}

TEST(TreeCounts, OfManyPrefecturesAreTruncatedButAllOfThemAreThere) {
    CListsDic dic((CListsWorld()));
    struct {
        size_t nPrefs;
        short nCount;
    } const aCase[] = {{32767, 32767}, {32768, -32768}, {40000, -25536}, {65536, 0}, {65537, 1}};
    for (auto const& c : aCase) {
        dic.Tree() = CEntryList(c.nPrefs);
        int const nLast = static_cast<int>(c.nPrefs) - 1;
        dic.Tree().back().vChild = {dic.Entry(0, {dic.Entry(0), dic.Entry(0)})};
        EXPECT_EQ(Count(dic, nLast, 0, 0), Found(c.nCount, 1, 2)) << c.nPrefs;
        EXPECT_EQ(Count(dic, 0, 0, 0), Missed(c.nCount, 0, 0)) << "it has no cities";
        EXPECT_EQ(Count(dic, nLast + 1, 0, 0), Missed(c.nCount, 0, 0)) << c.nPrefs;
    }
}

TEST(TreeCounts, OfManyTownsAreTruncated) {
    CListsDic dic((CListsWorld()));
    struct {
        size_t nTowns;
        short nCount;
    } const aCase[] = {{32767, 32767}, {32768, -32768}, {40000, -25536}, {65535, -1}, {65536, 0}, {65537, 1}};
    for (auto const& c : aCase) {
        dic.Tree() = BigTree(dic, 1, c.nTowns);
        EXPECT_EQ(Count(dic, 0, 0, 0), Found(1, 1, c.nCount)) << c.nTowns;
    }
}

} // namespace
