// tagADDRPNT, MakeTreeData, recSortTree: entries of a display tree, putting addresses into it, and its order.
#include "tests/library/TreeWorld.h"

#include <gmock/gmock.h>

#include <new>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

// --- entries -------------------------------------------------------------------------------------------------------

TEST(TreeEntry, BeginsEmpty) {
    tagADDRPNT const entry;
    EXPECT_EQ(entry.pNode, nullptr);
    EXPECT_THAT(entry.vChild, IsEmpty());
    EXPECT_EQ(std::string(entry.szName, sizeof entry.szName), std::string(NAME_SIZE, '\0'));
}

TEST(TreeEntry, IsCopiedWithAllThatLiesBelowIt) {
    tagADDRNODE const node = {};
    tagADDRPNT original = Entry("pref", {Entry("city", {Entry("town", {}, &node)}, &node)}, &node);
    tagADDRPNT const copy = original;
    tagADDRPNT assigned = Entry("other", {Entry("x"), Entry("y", {Entry("z")})});
    assigned = original;
    CTree const vExpected = {original};
    original.szName[0] = 'x';
    original.pNode = nullptr;
    original.vChild[0].szName[0] = 'x';
    original.vChild[0].vChild.clear();
    EXPECT_TRUE(IsSame({copy}, vExpected));
    EXPECT_TRUE(IsSame({assigned}, vExpected));
    EXPECT_NE(copy.vChild.data(), assigned.vChild.data());
}

TEST(TreeEntry, IsCopiedWithAllBytesOfItsName) {
    std::string const strName(NAME_SIZE, 'n');
    tagADDRPNT const original = Entry(strName);
    tagADDRPNT const copy = original;
    tagADDRPNT assigned = Entry("other");
    assigned = original;
    EXPECT_EQ(NameOf(copy), strName);
    EXPECT_EQ(NameOf(assigned), strName);
}

TEST(TreeEntry, StaysTheSameWhenAssignedToItself) {
    CTree tree = {Entry("pref", {Entry("city", {Entry("town")})})};
    CTree const vExpected = tree;
    tagADDRPNT const& self = tree[0];
    tree[0] = self;
    EXPECT_TRUE(IsSame(tree, vExpected));
}

TEST(TreeEntry, MayTakeThePlaceOfTheEntryThatHoldsIt) {
    CTree const vTown(5, Entry("town"));
    CTree tree = {Entry("pref", {Entry("city", vTown), Entry("city", vTown)})};
    tree[0] = tree[0].vChild[0];
    EXPECT_TRUE(IsSame(tree, {Entry("city", vTown)}));
    tree = {Entry("pref", {Entry("city", vTown), Entry("city", vTown)})};
    tree[0] = std::move(tree[0].vChild[1]);
    EXPECT_TRUE(IsSame(tree, {Entry("city", vTown)}));
}

TEST(TreeEntry, ComesBeforeAnotherByTheBytesOfItsName) {
    std::vector<std::string> const vName = {"",   "\x01", "0", "00",   "1",    "A",  "a",
                                            "a0", "aa",   "b", "\x7F", "\x80", "市", "\xFF"};
    for (size_t n = 0; n < vName.size(); ++n)
        for (size_t nOther = 0; nOther < vName.size(); ++nOther)
            EXPECT_EQ(Entry(vName[n]) < Entry(vName[nOther]), n < nOther) << vName[n] << " and " << vName[nOther];
}

TEST(TreeEntry, ComesBeforeAnotherByNothingButItsName) {
    tagADDRNODE const vNode[2] = {};
    tagADDRPNT const entry = Entry("same", {}, &vNode[0]), other = Entry("same", {Entry("child")}, &vNode[1]);
    EXPECT_FALSE(entry < other);
    EXPECT_FALSE(other < entry);
    EXPECT_TRUE(Entry("a", {Entry("z")}, &vNode[1]) < Entry("b", {Entry("a")}, &vNode[0]));
    tagADDRPNT behind = Entry("same");
    behind.szName[5] = 'x'; // behind the NUL
    EXPECT_FALSE(behind < entry);
    EXPECT_FALSE(entry < behind);
}

// An entry whose name ends with its page.
class CGuardedEntry {
  public:
    explicit CGuardedEntry(std::string const& strName)
        : m_bytes(std::string(sizeof(tagADDRPNT), 'x').data(), sizeof(tagADDRPNT), CGuardedBytes::Writable),
          m_pEntry(new (m_bytes.Data()) tagADDRPNT(Entry(strName))) {}
    ~CGuardedEntry() { m_pEntry->~tagADDRPNT(); }
    CGuardedEntry(CGuardedEntry const&) = delete;
    CGuardedEntry& operator=(CGuardedEntry const&) = delete;
    tagADDRPNT const& operator*() const { return *m_pEntry; }

  private:
    CGuardedBytes m_bytes;
    tagADDRPNT* m_pEntry;
};

TEST(TreeEntry, IsComparedToTheEndOfItsNameAndNoFurther) {
    static_assert(offsetof(tagADDRPNT, szName) + NAME_SIZE == sizeof(tagADDRPNT), "nothing behind the name");
    std::string const strShared(NAME_SIZE - 1, 'n');
    CGuardedEntry const low(strShared + "a"), high(strShared + "b"), same(strShared + "a"), shorter(strShared);
    EXPECT_TRUE(*low < *high);
    EXPECT_FALSE(*high < *low);
    EXPECT_FALSE(*low < *same);
    EXPECT_FALSE(*same < *low);
    EXPECT_TRUE(*shorter < *low);
    EXPECT_FALSE(*low < *shorter);
}

// --- putting addresses into a tree ---------------------------------------------------------------------------------

// CTextWorld and a tree that grows.
struct TreeGrowth : testing::Test {
    TreeGrowth() : dic(world) {}

    void Insert(uint32_t nPref, uint32_t nCity, uint32_t nTown) {
        ASSERT_EQ(dic.Insert(tree, {nPref, nCity, nTown}), 1);
    }
    tagADDRPNT Made(uint32_t nNode, std::string const& strName, CTree vChild = {}) const {
        return Entry(strName, std::move(vChild), dic.Node(nNode));
    }

    CTextWorld const world;
    CTreeDic const dic;
    CTree tree;
};

TEST_F(TreeGrowth, BeginsWithOneOfEachLevel) {
    Insert(world.nTokyo, world.nMinato, world.nShiba);
    EXPECT_TRUE(
        IsSame(tree, {Made(world.nTokyo, "12東京都", {Made(world.nMinato, "h港区", {Made(world.nShiba, "芝")})})}));
}

TEST_F(TreeGrowth, HoldsACityOnceAndItsTownsInTheirOrder) {
    Insert(world.nTokyo, world.nChiyodaKu, world.nChiyoda);
    Insert(world.nTokyo, world.nChiyodaKu, world.nMarunouchi);
    EXPECT_THAT(Lines(tree), ElementsAre("12東京都", " h千代田区", "  千代田", "  丸の内"));
}

TEST_F(TreeGrowth, HoldsATownAsOftenAsItIsPutIn) {
    for (int n = 0; n < 3; ++n) Insert(world.nTokyo, world.nMinato, world.nShiba);
    EXPECT_THAT(Lines(tree), ElementsAre("12東京都", " h港区", "  芝", "  芝", "  芝"));
}

TEST_F(TreeGrowth, HoldsWhateverIsDeepestAsATown) {
    for (uint32_t nNode : {world.nBuilding, world.nMinatoShokai, world.nArea, world.nMinato, world.nTokyo})
        Insert(world.nTokyo, world.nMinato, nNode);
    EXPECT_THAT(Lines(tree),
                ElementsAre("12東京都", " h港区", "  芝海ビル", "  芝港商会", "  芝１丁目", "  h港区", "  12東京都"));
}

TEST_F(TreeGrowth, TellsNodesOfOneNameApart) {
    Insert(world.nTokyo, world.nFuchu, world.nMiyanishi);
    Insert(world.nTokyo, world.nFuchuHiroshima, world.nMotomachi);
    Insert(world.nTokyo, world.nFuchu, world.nShiba);
    EXPECT_THAT(Lines(tree), ElementsAre("12東京都", " h府中市", "  宮西町", "  芝", " h府中市", "  元町"));
}

TEST_F(TreeGrowth, PutsANewCityOfTheLastPrefectureAndItsTownTogether) {
    Insert(world.nHiroshima, world.nFuchuHiroshima, world.nMotomachi);
    Insert(world.nTokyo, world.nChiyodaKu, world.nChiyoda);
    Insert(world.nTokyo, world.nMinato, world.nShiba);
    EXPECT_THAT(Lines(tree), ElementsAre("33広島県", " h府中市", "  元町", "12東京都", " h千代田区", "  千代田",
                                         " h港区", "  芝"));
}

TEST_F(TreeGrowth, PutsTheTownOfANewCityBelowTheLastCityOfTheLastPrefecture) {
    Insert(world.nTokyo, world.nChiyodaKu, world.nChiyoda);
    Insert(world.nHiroshima, world.nFuchuHiroshima, world.nMotomachi);
    Insert(world.nTokyo, world.nMinato, world.nShiba);
    EXPECT_THAT(Lines(tree), ElementsAre("12東京都", " h千代田区", "  千代田", " h港区", "33広島県", " h府中市",
                                         "  元町", "  芝"));
    Insert(world.nTokyo, world.nMinato, world.nArea); // known by now
    Insert(world.nHiroshima, world.nMinato, world.nBuilding);
    Insert(world.nTokyo, world.nFuchu, world.nMiyanishi);
    EXPECT_THAT(Lines(tree),
                ElementsAre("12東京都", " h千代田区", "  千代田", " h港区", "  芝１丁目", " h府中市", "33広島県",
                            " h府中市", "  元町", "  芝", " h港区", "  芝海ビル", "  宮西町"));
}

TEST_F(TreeGrowth, IsNotSortedMeanwhile) {
    Insert(world.nHiroshima, world.nMinato, world.nShiba);
    Insert(world.nHiroshima, world.nChiyodaKu, world.nMarunouchi);
    Insert(world.nTokyo, world.nFuchu, world.nMiyanishi);
    Insert(world.nTokyo, world.nFuchu, world.nChiyoda);
    EXPECT_THAT(Lines(tree), ElementsAre("33広島県", " h港区", "  芝", " h千代田区", "  丸の内", "12東京都",
                                         " h府中市", "  宮西町", "  千代田"));
}

TEST_F(TreeGrowth, GoesOnAtTheFirstOfTwoEqualEntriesOfATreeMadeElsewhere) {
    CTree const vCity = {Made(world.nMinato, "first"), Made(world.nMinato, "second")};
    tree = {Made(world.nTokyo, "first", vCity), Made(world.nTokyo, "second", vCity)};
    Insert(world.nTokyo, world.nMinato, world.nShiba);
    EXPECT_THAT(Lines(tree), ElementsAre("first", " first", "  芝", " second", "second", " first", " second"));
    Insert(world.nTokyo, world.nFuchu, world.nMiyanishi);
    EXPECT_THAT(Lines(tree), ElementsAre("first", " first", "  芝", " second", " h府中市", "second", " first",
                                         " second", "  宮西町"));
}

TEST_F(TreeGrowth, DropsTheTownWhenTheLastPrefectureHasNoCity) {
    tree = {Made(world.nTokyo, "pref"), Made(world.nHiroshima, "last")};
    Insert(world.nTokyo, world.nMinato, world.nShiba);
    EXPECT_THAT(Lines(tree), ElementsAre("pref", " h港区", "last"));
    Insert(world.nHiroshima, world.nFuchuHiroshima, world.nMotomachi);
    EXPECT_THAT(Lines(tree), ElementsAre("pref", " h港区", "last", " h府中市", "  元町"));
}

TEST_F(TreeGrowth, GoesByNodesAndNotByNames) {
    tree = {Made(world.nTokyo, "renamed", {Made(world.nMinato, "too")}), Entry("33広島県")};
    Insert(world.nTokyo, world.nMinato, world.nShiba);
    Insert(world.nHiroshima, world.nFuchuHiroshima, world.nMotomachi);
    EXPECT_THAT(Lines(tree), ElementsAre("renamed", " too", "  芝", "33広島県", "33広島県", " h府中市", "  元町"));
}

TEST_F(TreeGrowth, CutsNamesAtTheSize) {
    for (int nSize : {0, -1, INT32_MIN}) {
        CTree nameless;
        EXPECT_EQ(dic.Insert(nameless, {world.nTokyo, world.nMinato, world.nShiba}, nSize), 1);
        EXPECT_THAT(Lines(nameless), ElementsAre("", " ", "  ")) << nSize;
    }
    EXPECT_EQ(dic.Insert(tree, {world.nTokyo, world.nMinato, world.nShiba}, 2), 1);
    EXPECT_THAT(Lines(tree), ElementsAre("12", " h\xE6", "  \xE8\x8A"));
}

TEST_F(TreeGrowth, CutsNamesAtTheirFieldWhateverTheSize) {
    CTestImage image;
    for (uint8_t nLevel : {LEVEL_PREF, LEVEL_CITY, LEVEL_TOWN})
        image.AddNode(nLevel, nLevel == LEVEL_PREF ? ADDR_NONE : nLevel - 1u, std::string(300, 'n'));
    CTreeDic const longNames(image);
    for (int nSize : {127, 128, 129, 300, INT32_MAX}) {
        CTree made;
        EXPECT_EQ(longNames.Insert(made, {0, 1, 2}, nSize), 1);
        size_t const nShown = nSize == 127 ? 127 : 128;
        EXPECT_THAT(Lines(made), ElementsAre(std::string(nShown, 'n'), " h" + std::string(nShown - 1, 'n'),
                                             "  " + std::string(nShown, 'n')))
            << nSize;
        EXPECT_EQ(made[0].pNode, longNames.Node(0));
    }
}

TEST_F(TreeGrowth, TakesANodeThatIsNotThereForOneWithoutAName) {
    Insert(world.nTokyo, world.nMinato, ADDR_NONE);
    Insert(world.nTokyo, ADDR_NONE, world.nShiba);
    Insert(world.nTokyo, ADDR_NONE, world.nArea);
    Insert(ADDR_NONE, world.nMinato, world.nBuilding);
    Insert(ADDR_NONE, world.nMinato, ADDR_NONE);
    EXPECT_THAT(Lines(tree),
                ElementsAre("12東京都", " h港区", "  ", " ", "  芝", "  芝１丁目", "", " h港区", "  芝海ビル", "  "));
    EXPECT_EQ(tree[1].pNode, nullptr);
}

TEST_F(TreeGrowth, HasNoNamesWithoutTables) {
    tagADDRNODE const* vNode[] = {dic.Node(world.nTokyo), dic.Node(world.nMinato), dic.Node(world.nShiba)};
    for (bool bTable : {false, true}) {
        CTree nameless;
        EXPECT_EQ(MakeTreeData(nameless, vNode, bTable ? dic.Node(0) : nullptr, bTable ? nullptr : dic.Strings(),
                               NAME_SIZE),
                  1);
        EXPECT_THAT(Lines(nameless), ElementsAre("", " ", "  "));
        EXPECT_EQ(nameless[0].vChild[0].vChild[0].pNode, vNode[2]);
    }
}

TEST_F(TreeGrowth, DoesNothingWithoutNodes) {
    EXPECT_EQ(MakeTreeData(tree, nullptr, dic.Node(0), dic.Strings(), NAME_SIZE), 1);
    EXPECT_THAT(tree, IsEmpty());
    Insert(world.nTokyo, world.nMinato, world.nShiba);
    CTree const vExpected = tree;
    EXPECT_EQ(MakeTreeData(tree, nullptr, dic.Node(0), dic.Strings(), NAME_SIZE), 1);
    EXPECT_TRUE(IsSame(tree, vExpected));
}

// --- order ---------------------------------------------------------------------------------------------------------

TEST(TreeOrder, OfNothingIsNothing) {
    CTree tree;
    recSortTree(tree);
    EXPECT_THAT(tree, IsEmpty());
}

TEST(TreeOrder, IsThatOfTheNamesOnEveryLevel) {
    CTree tree = {
        Entry("b", {Entry("z", {Entry("3"), Entry("1", {Entry("y"), Entry("x")}), Entry("2")}), Entry("y")}),
        Entry("c"), Entry("a", {Entry("w", {Entry("2"), Entry("1")}), Entry("v")})};
    recSortTree(tree);
    EXPECT_THAT(Lines(tree), ElementsAre("a", " v", " w", "  1", "  2", "b", " y", " z", "  1", "   x", "   y", "  2",
                                         "  3", "c"));
}

TEST(TreeOrder, TakesNodesAlong) {
    tagADDRNODE const vNode[3] = {};
    CTree tree = {Entry("c", {Entry("1")}, &vNode[2]), Entry("a", {}, &vNode[0]),
                  Entry("b", {Entry("2")}, &vNode[1])};
    recSortTree(tree);
    EXPECT_TRUE(IsSame(
        tree, {Entry("a", {}, &vNode[0]), Entry("b", {Entry("2")}, &vNode[1]), Entry("c", {Entry("1")}, &vNode[2])}));
}

TEST(TreeOrder, IsThatOfBytesAndNotOfCharacters) {
    CTree tree;
    for (char const* psz :
         {"h港区", "h千代田区", "a\xFF", "h", "a", "b\x80", "00北海道", "12東京都", "b\x7F", "46沖縄県"})
        tree.push_back(Entry(psz));
    recSortTree(tree);
    EXPECT_THAT(Lines(tree), ElementsAre("00北海道", "12東京都", "46沖縄県", "a", "a\xFF", "b\x7F", "b\x80", "h",
                                         "h千代田区", "h港区"));
}

TEST(TreeOrder, IsThatOfNamesThatFillTheirFieldsToo) {
    std::string const strShared(NAME_SIZE - 1, 'n');
    CTree tree;
    for (int n = 0; n < 200; ++n) tree.push_back(Entry(strShared + static_cast<char>('a' + n * 7 % 26)));
    tree.push_back(Entry(strShared));
    CLines vExpected = Lines(tree);
    std::sort(vExpected.begin(), vExpected.end());
    recSortTree(tree);
    EXPECT_EQ(Lines(tree), vExpected);
}

TEST(TreeOrder, OfManyEqualNamesKeepsEveryEntry) {
    std::vector<tagADDRNODE> const vNode(100);
    CTree tree;
    for (tagADDRNODE const& node : vNode) tree.push_back(Entry(ManyOfTwoNames()[tree.size()], {}, &node));
    recSortTree(tree);
    CNodeList vFound;
    for (size_t n = 0; n < tree.size(); ++n) {
        EXPECT_EQ(NameOf(tree[n]), n < 50 ? "a" : "b");
        EXPECT_EQ(NameOf(tree[n]), ManyOfTwoNames()[static_cast<size_t>(tree[n].pNode - vNode.data())]);
        vFound.push_back(tree[n].pNode);
    }
    std::sort(vFound.begin(), vFound.end());
    for (size_t n = 0; n < vNode.size(); ++n) EXPECT_EQ(vFound[n], &vNode[n]);
}

// Names that begin alike up to somewhere around a multiple of eight bytes, and up to the very end of their fields.
std::string NameThatBeginsLikeOthers(std::mt19937& random) {
    constexpr size_t LENGTHS[] = {0, 1, 7, 8, 9, 15, 16, 17, 23, 64, 119, 120, 121, 126, 127, 128};
    std::string strName(LENGTHS[random() % std::size(LENGTHS)], random() % 4 == 0 ? 'a' : '\xE6');
    for (auto nChanges = random() % 3; nChanges > 0 && !strName.empty(); --nChanges)
        strName[strName.size() - 1 - random() % std::min<size_t>(strName.size(), 9)] =
            "\x01\x7F\x80\xFF"[random() % 4];
    return strName;
}

// What stands behind a NUL is not part of a name.
tagADDRPNT EntryWithRubbish(std::mt19937& random, std::string const& strName) {
    tagADDRPNT entry = Entry(strName);
    for (size_t n = strName.size() + 1; n < sizeof entry.szName; ++n) entry.szName[n] = static_cast<char>(random());
    return entry;
}

CTree TreeOfAlikeNames(std::mt19937& random, size_t nEntries, std::vector<tagADDRNODE> const& vNode) {
    CTree tree;
    for (size_t n = 0; n < nEntries; ++n) {
        tree.push_back(EntryWithRubbish(random, NameThatBeginsLikeOthers(random)));
        tree.back().pNode = &vNode[n];
        tree.back().vChild.resize(n % 3);
    }
    return tree;
}

TEST(TreeOrder, IsThatOfAStableSortWhateverTheNamesHaveInCommon) {
    std::mt19937 random(54);
    std::vector<tagADDRNODE> const vNode(400);
    for (size_t const nEntries : {2u, 3u, 16u, 17u, 31u, 32u, 33u, 34u, 100u, 400u})
        for (int nRound = 0; nRound < 20; ++nRound) {
            CTree tree = TreeOfAlikeNames(random, nEntries, vNode);
            CTree vExpected = tree;
            std::stable_sort(vExpected.begin(), vExpected.end());
            recSortTree(tree);
            ASSERT_TRUE(IsSame(tree, vExpected)) << nEntries << ", round " << nRound;
        }
}

// Each name is the beginning of the next: at every eighth byte one run of equal beginnings ends, and the other goes on.
TEST(TreeOrder, OfNamesThatAreTheBeginningsOfOthersIsThatOfTheirLengths) {
    CTree tree;
    for (size_t n = 0; n < 3 * (NAME_SIZE + 1); ++n)
        tree.push_back(Entry(std::string(n * 50 % (NAME_SIZE + 1), 'n')));
    recSortTree(tree);
    for (size_t n = 0; n < tree.size(); ++n) EXPECT_EQ(NameOf(tree[n]), std::string(n / 3, 'n'));
}

TEST(TreeOrder, OfASortedTreeStays) {
    CTree tree = {Entry("a", {Entry("b"), Entry("c")}), Entry("d", {Entry("e")})};
    CTree const vExpected = tree;
    recSortTree(tree);
    EXPECT_TRUE(IsSame(tree, vExpected));
}

} // namespace
