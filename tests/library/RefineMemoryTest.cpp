// Refinement and its lists when memory runs out: the exception passes, no query is taken for answered, and the lists
// belong together.
#include "tests/library/FaultMemory.h"
#include "tests/library/TreeWorld.h"

#include <new>

namespace {

// Whether so many allocations are enough.
template <typename FCall>
bool IsEnough(long nAllocations, FCall const& Call) {
    CShortage const shortage(nAllocations);
    try {
        Call();
        return true;
    } catch (std::bad_alloc const&) {
        return false;
    }
}

bool IsAnswered(CTreeDic& dic, std::string strCode, std::string const& strAddr, long nAllocations) {
    return IsEnough(nAllocations, [&] { dic.MakeRefineTree(strCode.data(), strAddr.c_str()); });
}

// Gives the query one allocation more each time until it is answered. Returns how often it was not.
int RunOutOfMemory(std::string const& strCode, std::string const& strAddr) {
    CTextWorld const world;
    CTreeDic dic(world), reference(world);
    CAddrDicPeek const peek(dic);
    reference.Refine("183");
    CLines const vEarlier = reference.TreeLines();
    reference.Refine(strCode, strAddr);
    CLines const vExpected = reference.TreeLines();
    for (int n = 0;; ++n) {
        dic.Refine("183");
        if (IsAnswered(dic, strCode, strAddr, n)) {
            EXPECT_EQ(dic.TreeLines(), vExpected);
            return n;
        }
        EXPECT_STREQ(peek.szRefinePostCode, "-") << n;
        EXPECT_STREQ(peek.szRefineAddr, "") << n;
        dic.Refine("183");
        EXPECT_EQ(dic.TreeLines(), vEarlier) << "the earlier query, after " << n;
        IsAnswered(dic, strCode, strAddr, n);
        dic.Refine(strCode, strAddr);
        EXPECT_EQ(dic.TreeLines(), vExpected) << "the same query, after " << n;
    }
}

TEST(RefinementOutOfMemory, OfACodeIsMadeAnewTheNextTime) {
    EXPECT_GT(RunOutOfMemory("1", ""), 10);
}

TEST(RefinementOutOfMemory, OfAnAddressIsMadeAnewTheNextTime) {
    EXPECT_GT(RunOutOfMemory("", "東京都"), 10);
    EXPECT_GT(RunOutOfMemory("", "府中市x"), 3);
}

TEST(ListsOutOfMemory, StayThoseOfTheSelection) {
    CTextWorld const world;
    CTreeDic dic(world);
    CAddrDicPeek const peek(dic);
    short n = 0;
    auto const Select = [&](int nPref) { dic.GetAdrNum(nPref, 0, 0, &n, &n, &n, &n, &n, &n); };
    Select(0);
    CLines const vCity = Lines(peek.vCityPnt), vTown = Lines(peek.vTownPnt);
    int nTries = 0;
    for (; !IsEnough(nTries, [&] { Select(1); }); ++nTries) {
        EXPECT_EQ(peek.nSelPref, 0) << nTries;
        EXPECT_EQ(Lines(peek.vCityPnt), vCity) << nTries;
        EXPECT_EQ(Lines(peek.vTownPnt), vTown) << nTries;
    }
    EXPECT_GT(nTries, 4);
    EXPECT_EQ(peek.nSelPref, 1);
    EXPECT_NE(Lines(peek.vCityPnt), vCity);
}

// 3 levels; names of one level are equal in their first eight bytes, some as a whole.
CTree UnsortedTree(size_t nEntries, int nLevels = 3) {
    static std::vector<tagADDRNODE> const vNode(1000);
    CTree tree;
    for (size_t n = 0; n < nEntries; ++n)
        tree.push_back(Entry("the same " + std::to_string(n * 37 % 100),
                             nLevels == 1 ? CTree() : UnsortedTree(n % 2 == 0 ? 2 : 70, nLevels - 1), &vNode[n]));
    return tree;
}

// Where nothing can be thrown: a program of its own sorts its tree, and its order does not depend on the memory.
TEST(TreeOrderOutOfMemory, IsTheSameFromTheFirstAllocationOn) {
    for (size_t const nEntries : {3u, 32u, 33u, 200u}) {
        CTree const unsorted = UnsortedTree(nEntries, nEntries > 33 ? 1 : 3);
        CTree expected = unsorted;
        recSortTree(expected);
        EXPECT_FALSE(IsSame(expected, unsorted));
        bool bEnough = false;
        for (long n = 0; !bEnough; n = 2 * n + 1) {
            CTree tree = unsorted;
            CShortage shortage(n);
            recSortTree(tree);
            bEnough = !shortage.End();
            EXPECT_TRUE(IsSame(tree, expected)) << nEntries << " entries, allocations: " << n;
        }
    }
}

TEST(TreeOrderOutOfMemory, OfFewEntriesAndOfSortedOnesAsksForNone) {
    CTree few = UnsortedTree(32, 1), sorted = UnsortedTree(300, 1);
    std::stable_sort(sorted.begin(), sorted.end());
    CShortage shortage(0);
    recSortTree(few);
    recSortTree(sorted);
    EXPECT_FALSE(shortage.End());
    EXPECT_TRUE(std::is_sorted(few.begin(), few.end()));
}

} // namespace
