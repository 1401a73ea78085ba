// Every current address that a partial text can stand for, and the walks that collect them.
#include "tests/library/AddrTextWorld.h"

#include <gmock/gmock.h>

#include <unistd.h>

#include <cstdlib>
#include <cstring>

namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;
using testing::IsNull;
using testing::Le;
using testing::SizeIs;

using CAddrList = std::vector<tagADDR>;

// "code old: prefecture/city/town/area/block/note/office", absent texts as nothing.
std::string Line(tagADDR const& addr) {
    auto const Text = [](char const* psz) { return std::string(psz != nullptr ? psz : ""); };
    return Text(addr.pszPostCode) + " " + Text(addr.pszCodeExt) + ": " + Text(addr.pszPref) + "/" +
           Text(addr.pszCity) + "/" + Text(addr.pszTown) + "/" + Text(addr.pszArea) + "/" + Text(addr.pszBlock) +
           "/" + Text(addr.pszNote) + "/" + Text(addr.pszOffice);
}

std::vector<std::string> Lines(CAddrList const& vAddr) {
    std::vector<std::string> vLine;
    for (tagADDR const& addr : vAddr) vLine.push_back(Line(addr));
    return vLine;
}

std::vector<std::string> Traced(CAddrDic& dic, uint32_t nNode, tagADDR const& addr = tagADDR(0)) {
    CAddrList vAddr;
    dic.recTraceNode(dic.GetAddrNode(nNode), addr, vAddr);
    return Lines(vAddr);
}

std::vector<std::string> ByPref(CAddrDic& dic, char const* pszText) {
    CAddrList vAddr;
    dic.GetPrefFromPart(pszText, vAddr);
    return Lines(vAddr);
}

std::vector<std::string> ByCity(CAddrDic& dic, char const* pszText) {
    CAddrList vAddr;
    dic.GetCityFromPart(pszText, vAddr);
    return Lines(vAddr);
}

std::vector<std::string> ByPart(CAddrDic& dic, char const* pszText) {
    CAddrList vAddr;
    EXPECT_EQ(dic.GetAddrFromAddrPart(pszText, vAddr), 1);
    return Lines(vAddr);
}

template <typename T>
std::vector<T> operator+(std::vector<T> vLeft, std::vector<T> const& vRight) {
    vLeft.insert(vLeft.end(), vRight.begin(), vRight.end());
    return vLeft;
}

// --- subtrees ------------------------------------------------------------------------------------------------------

TEST(Subtree, IsListedDepthFirstInNodeOrder) {
    CTextWorld const world;
    CGuardedDic dic(world);
    tagADDR addr(0);
    addr.pszCity = "given";
    EXPECT_THAT(Traced(dic, world.nChiyodaKu, addr),
                ElementsAre("1000005 100: /given/丸の内////", "1008111 100: /given/丸の内////テスト",
                            "1008222 100: /given/丸の内////テスト商事", "1000001 100: /given/千代田////",
                            "1008333 100: /given/千代田////テスト"))
        << "without the old town, and with what was in the record";
}

TEST(Subtree, LeavesOutTheNodeItself) {
    CTextWorld const world;
    CGuardedDic dic(world);
    EXPECT_THAT(Traced(dic, world.nMarunouchi),
                ElementsAre("1008111 100: //////テスト", "1008222 100: //////テスト商事"));
    EXPECT_THAT(Traced(dic, world.nTest), IsEmpty());
}

TEST(Subtree, IsAppendedAndTheCallersRecordStaysItsOwn) {
    CTextWorld const world;
    CGuardedDic dic(world);
    CAddrList vAddr(1, tagADDR(0));
    vAddr[0].pszNote = "before";
    tagADDR const addr(0);
    dic.recTraceNode(dic.Node(world.nFuchu), addr, vAddr);
    EXPECT_THAT(Lines(vAddr), ElementsAre(" : /////before/", "1830022 183: //宮西町////"));
    EXPECT_EQ(Fields(addr), Fields(tagADDR(0)));
}

TEST(Subtree, HasTextsAndReadingsOfEveryLevelFromTheImage) {
    CTestImage image;
    uint32_t nNode = image.AddNode(LEVEL_GROUP, ADDR_NONE, "root");
    struct {
        uint8_t nLevel;
        char const *pszName, *pszKana;
        char const *tagADDR::*psz, *tagADDR::*pszReading;
    } const aLevel[] = {{LEVEL_PREF, "0", "p", &tagADDR::pszPref, &tagADDR::pszPrefKana},
                        {LEVEL_CITY, "1", "c", &tagADDR::pszCity, &tagADDR::pszCityKana},
                        {LEVEL_TOWN, "2", "t", &tagADDR::pszTown, &tagADDR::pszTownKana},
                        {LEVEL_AREA, "3", "a", &tagADDR::pszArea, &tagADDR::pszAreaKana},
                        {LEVEL_BLOCK, "4", "b", &tagADDR::pszBlock, &tagADDR::pszBlockKana},
                        {LEVEL_GROUP, "5", "g", nullptr, nullptr},
                        {LEVEL_NOTE, "6", "n", &tagADDR::pszNote, nullptr},
                        {8, "8", "x", nullptr, nullptr},
                        {255, "255", "y", nullptr, nullptr},
                        {LEVEL_OFFICE, "7", "o", &tagADDR::pszOffice, &tagADDR::pszOfficeKana}};
    for (auto const& level : aLevel) nNode = image.AddNode(level.nLevel, nNode, level.pszName, level.pszKana);
    image.AddInfo(nNode, "1234567", "123");
    image.Complete();
    CGuardedDic dic(image);
    CAddrList vAddr;
    dic.recTraceNode(dic.Node(0), tagADDR(0), vAddr);
    ASSERT_THAT(vAddr, SizeIs(1));
    tagADDR expected(0);
    for (uint32_t n = 0; n < sizeof aLevel / sizeof *aLevel; ++n) {
        if (aLevel[n].psz != nullptr) expected.*aLevel[n].psz = dic.Name(n + 1);
        if (aLevel[n].pszReading != nullptr)
            expected.*aLevel[n].pszReading = dic.Name(n + 1) + std::strlen(aLevel[n].pszName) + 1;
    }
    expected.pszPostCode = dic.GetString(image.vInfo[0].nCode);
    expected.pszCodeExt = expected.pszPostCode + 8;
    EXPECT_EQ(Fields(vAddr[0]), Fields(expected)) << "the image's own texts, and no node pointers";
}

// One town with the children in the order given, "4x": level 4, name x; each with an entry whose code is its number.
CTestImage Children(std::vector<std::string> const& vChild) {
    CTestImage image;
    image.AddNode(LEVEL_TOWN, ADDR_NONE, "town");
    for (std::string const& str : vChild)
        image.AddInfo(image.AddNode(static_cast<uint8_t>(str[0] - '0'), 0, str.substr(1)),
                      std::to_string(image.vInfo.size()));
    image.Complete();
    return image;
}

TEST(Subtree, CarriesATextOverToLaterSiblingsOfOtherLevels) {
    CGuardedDic dic(Children({"3a", "4b", "3c", "7o", "6n", "4d", "5g", "9z"}));
    EXPECT_THAT(Traced(dic, 0), ElementsAre("0 : ///a///", "1 : ///a/b//", "2 : ///c/b//", "3 : ///c/b//o",
                                            "4 : ///c/b/n/o", "5 : ///c/d/n/o", "6 : ///c/d/n/o", "7 : ///c/d/n/o"));
}

TEST(Subtree, CarriesCodesNowhere) {
    CTestImage image = Children({"3a", "3b", "3c"});
    image.vNode[2].nInfo = ADDR_NONE;
    CGuardedDic dic(image);
    EXPECT_THAT(Traced(dic, 0), ElementsAre("0 : ///a///", "2 : ///c///"))
        << "a child without an entry is not listed";
}

TEST(Subtree, CarriesTheTextOfAnUnlistedSiblingOverToo) {
    CTestImage image = Children({"3a", "4b", "7c"});
    image.vNode[1].nInfo = ADDR_NONE;
    image.vInfo[1].nNode |= ADDRINFO_SUPERSEDED;
    CGuardedDic dic(image);
    EXPECT_THAT(Traced(dic, 0), ElementsAre("2 : ///a/b//c"));
}

TEST(Subtree, TakesATextDownButNotUpAgain) {
    CTextWorld world;
    CGuardedDic dic(world);
    EXPECT_THAT(Traced(dic, world.nTokyo),
                ElementsAre("1000000 100: /千代田区/////", "1000005 100: /千代田区/丸の内////",
                            "1008111 100: /千代田区/丸の内////テスト", "1008222 100: /千代田区/丸の内////テスト商事",
                            "1000001 100: /千代田区/千代田////", "1008333 100: /千代田区/千代田////テスト",
                            "1050014 105: /港区/芝////", "1050015 105: /港区/芝/１丁目///",
                            "1058444 105: /港区/芝/１丁目///港商会", "1050016 105: /港区/芝/１丁目/海ビル//港商会",
                            "1830022 183: /府中市/宮西町////"))
        << "海ビル keeps the organisation of the sibling before it, 府中市 nothing of 港区";
}

TEST(Subtree, OfASupersededChildIsListedWithoutTheChild) {
    CTextWorld world;
    world.vInfo[world.vNode[world.nShiba].nInfo].nNode |= ADDRINFO_SUPERSEDED;
    CGuardedDic dic(world);
    EXPECT_THAT(Traced(dic, world.nMinato),
                ElementsAre("1050015 105: //芝/１丁目///", "1058444 105: //芝/１丁目///港商会",
                            "1050016 105: //芝/１丁目/海ビル//港商会"));
}

TEST(Subtree, OfNoChildrenIsEmpty) {
    CTextWorld world;
    world.vNode[world.nChiyodaKu].nChildCount = 0;
    world.vNode[world.nMinato].nFirstChild = ADDR_NONE;
    CGuardedDic dic(world);
    EXPECT_THAT(Traced(dic, world.nChiyodaKu), IsEmpty());
    EXPECT_THAT(Traced(dic, world.nMinato), IsEmpty());
}

TEST(Subtree, SkipsChildrenThatAreNotThere) {
    for (uint32_t nCount : {3u, 1000000u, 0x80000000u, 0xFFFFFFFFu}) {
        CTestImage image = Children({"3a", "3b"});
        image.vNode[0].nChildCount = nCount;
        CGuardedDic dic(image);
        EXPECT_THAT(Traced(dic, 0), ElementsAre("0 : ///a///", "1 : ///b///"));
    }
    for (uint32_t nFirst : {3u, 1000000u, 0x80000000u, 0xFFFFFFFEu}) {
        CTestImage image = Children({"3a", "3b"});
        image.vNode[0].nFirstChild = nFirst;
        CGuardedDic dic(image);
        EXPECT_THAT(Traced(dic, 0), IsEmpty());
    }
}

TEST(Subtree, OfNothingIsEmpty) {
    CTextWorld const world;
    CGuardedDic dic(world);
    CAddrList vAddr;
    dic.recTraceNode(nullptr, tagADDR(0), vAddr);
    EXPECT_THAT(vAddr, IsEmpty());
}

// In a child: a fault there must not take the other tests along.
TEST(Subtree, OfANodeWithoutItsImageIsEmpty) {
    auto const Trace = [] {
        CTextWorld const world;
        CAddrDic unbound;
        CAddrList vAddr;
        unbound.recTraceNode(&world.vNode[world.nTokyo], tagADDR(0), vAddr);
        std::_Exit(vAddr.empty() ? 0 : 1);
    };
    EXPECT_EXIT(Trace(), testing::ExitedWithCode(0), "");
}

// --- damaged trees -------------------------------------------------------------------------------------------------

// A walk that does not come to an end takes all memory: better the test program ends.
class DamagedTree : public testing::Test {
  protected:
    void SetUp() override { alarm(10); } // seconds; they take some milliseconds
    void TearDown() override { alarm(0); }
};

// The number of records of every walk over an image; none may exceed its number of nodes.
void ExpectSmallWalks(CTestImage const& image) {
    CGuardedDic dic(image);
    size_t const nNodes = image.vNode.size();
    for (uint32_t n = 0; n < nNodes; ++n) {
        CAddrList vAddr;
        dic.recTraceNode(dic.Node(n), tagADDR(0), vAddr);
        ASSERT_LE(vAddr.size(), nNodes) << "from node " << n;
    }
    for (char const* psz : {"", "東京", "府中", "東京都", "東京都千代田区", "東京都千代田区丸の内", "東京都港区芝"}) {
        CAddrList vAddr;
        EXPECT_EQ(dic.GetAddrFromAddrPart(psz, vAddr), 1);
        EXPECT_LE(vAddr.size(), 2 * nNodes + 1) << psz;
    }
}

TEST_F(DamagedTree, WhereANodeIsItsOwnChildComesToAnEnd) {
    for (uint32_t n = 0; n < CTextWorld().vNode.size(); ++n) {
        CTextWorld world;
        world.vNode[n].nFirstChild = n;
        world.vNode[n].nChildCount = 1;
        ExpectSmallWalks(world);
        world.vNode[n].nChildCount = 0xFFFFFFFF;
        ExpectSmallWalks(world);
    }
}

TEST_F(DamagedTree, WhereANodeIsAChildOfOneBelowItComesToAnEnd) {
    for (uint32_t CTextWorld::*pnChild : {&CTextWorld::nTokyo, &CTextWorld::nMinato, &CTextWorld::nShiba,
                                          &CTextWorld::nArea, &CTextWorld::nBuilding}) {
        CTextWorld world;
        world.vNode[world.nBuilding].nFirstChild = world.*pnChild;
        world.vNode[world.nBuilding].nChildCount = 1;
        ExpectSmallWalks(world);
        world.vNode[world.nBuilding].nChildCount = 100;
        ExpectSmallWalks(world);
    }
}

TEST_F(DamagedTree, PassesOverAnAncestorAndListsTheOthers) {
    CTestImage image = Children({"3a", "3b", "3c"});
    image.vNode[2].nFirstChild = 0; // b is the parent of its parent, of itself and of a and c
    image.vNode[2].nChildCount = 4;
    CGuardedDic dic(image);
    EXPECT_THAT(Traced(dic, 0), AllOf(SizeIs(AllOf(Ge(2u), Le(4u))), testing::Contains("0 : ///a///")));
}

TEST_F(DamagedTree, PassesOverTheParentOfAParent) {
    CTextWorld world;
    world.vNode[world.nArea].nFirstChild = world.nMinato; // 港区 > 芝 > １丁目 > 港区
    world.vNode[world.nArea].nChildCount = 1;
    CGuardedDic dic(world);
    EXPECT_THAT(Traced(dic, world.nMinato), ElementsAre("1050014 105: //芝////", "1050015 105: //芝/１丁目///"));
}

TEST_F(DamagedTree, WhereEveryNodeHasAllNodesForChildrenComesToAnEnd) {
    CTextWorld world;
    for (uint32_t nCount : {static_cast<uint32_t>(world.vNode.size()), 0xFFFFFFFFu}) {
        for (tagADDRNODE& node : world.vNode) {
            node.nFirstChild = 0;
            node.nChildCount = nCount;
        }
        ExpectSmallWalks(world);
    }
}

// Without a bound the walk would visit the last node as often as there are ways to it.
TEST_F(DamagedTree, OfOverlappingRunsComesToAnEnd) {
    CTestImage image;
    constexpr uint32_t NODES = 3000;
    for (uint32_t n = 0; n < NODES; ++n) {
        image.AddNode(LEVEL_AREA, ADDR_NONE, "a");
        image.vNode[n].nFirstChild = n + 1;
        image.vNode[n].nChildCount = NODES - n - 1;
        image.AddInfoAt(n, 0);
        image.vNode[n].nInfo = n;
    }
    CGuardedDic dic(image);
    for (uint32_t nNode : {0u, 1u, NODES / 2, NODES - 2}) {
        CAddrList vAddr;
        dic.recTraceNode(dic.Node(nNode), tagADDR(0), vAddr);
        EXPECT_THAT(vAddr, SizeIs(AllOf(Ge(1u), Le(size_t{NODES})))) << nNode;
    }
}

TEST_F(DamagedTree, OfAChainOfThousandsOfNodesComesToAnEnd) {
    CTestImage image;
    constexpr uint32_t NODES = 100000;
    uint32_t const nText = image.AddText("1234567", "123");
    for (uint32_t n = 0; n < NODES; ++n) {
        image.vNode.push_back({LEVEL_AREA, {}, nText, n, n == 0 ? ADDR_NONE : n - 1, 1, n + 1});
        image.AddInfoAt(n, nText);
    }
    CGuardedDic dic(image);
    CAddrList vAddr;
    dic.recTraceNode(dic.Node(0), tagADDR(0), vAddr);
    EXPECT_THAT(vAddr, SizeIs(AllOf(Ge(8u), Le(size_t{NODES})))) << "as deep as there are levels at least";
    char szBuffer[16] = "";
    EXPECT_EQ(dic.GetAfterCityName(dic.Node(NODES - 1), szBuffer), 1);
    EXPECT_STREQ(szBuffer, "");
}

TEST_F(DamagedTree, IsListedToTheDepthOfEveryLevelThereIs) {
    CTestImage image;
    uint32_t nNode = image.AddNode(LEVEL_PREF, ADDR_NONE, "p");
    for (uint8_t nLevel = LEVEL_CITY; nLevel < 100; ++nLevel) nNode = image.AddNode(nLevel, nNode, "n");
    image.AddInfo(nNode, "1234567", "123");
    image.Complete();
    CGuardedDic dic(image);
    EXPECT_THAT(Traced(dic, 0), ElementsAre("1234567 123: /n/n/n/n/n/n"));
}

// --- the city index ------------------------------------------------------------------------------------------------

// Cities in index order as given: city n of the index is node n + 1; node 0 is their prefecture.
CTestImage Cities(std::vector<std::string> const& vName) {
    CTestImage image;
    image.AddNode(LEVEL_PREF, ADDR_NONE, "県");
    for (std::string const& str : vName) image.vCityIndex.push_back(image.AddNode(LEVEL_CITY, 0, str));
    return image;
}

TEST(SearchCity, FindsTheFirstOfThoseThatBeginWithTheText) {
    CGuardedDic dic(Cities({"a", "ab", "aba", "abb", "abb", "abc", "府中市", "港区"}));
    EXPECT_EQ(dic.SearchCity(""), 0);
    EXPECT_EQ(dic.SearchCity("a"), 0);
    EXPECT_EQ(dic.SearchCity("ab"), 1);
    EXPECT_EQ(dic.SearchCity("abb"), 3);
    EXPECT_EQ(dic.SearchCity("府"), 6);
    EXPECT_EQ(dic.SearchCity("\xE5"), 6) << "a part of a character, too";
    EXPECT_EQ(dic.SearchCity("港区"), 7);
    for (char const* psz : {"A", "aa", "abba", "b", "府中市宮西町", "港区 ", "\xFF"})
        EXPECT_EQ(dic.SearchCity(psz), -1) << psz;
}

TEST(SearchCity, DoesNotNormaliseItsText) {
    CGuardedDic dic(Cities({"ab"}));
    EXPECT_EQ(dic.SearchCity("a b"), -1);
    EXPECT_EQ(dic.SearchCity(" ab"), -1);
}

TEST(SearchCity, FindsEveryNameInIndexesOfEverySmallSize) {
    for (size_t nCount = 1; nCount <= 40; ++nCount) {
        std::vector<std::string> vName;
        for (size_t n = 0; n < nCount; ++n) vName.push_back(std::to_string(1000 + n / 3));
        CGuardedDic dic(Cities(vName));
        for (size_t n = 0; n < nCount; ++n)
            ASSERT_EQ(dic.SearchCity(vName[n].c_str()), static_cast<int>(n - n % 3)) << nCount;
        EXPECT_EQ(dic.SearchCity("1"), 0);
        EXPECT_EQ(dic.SearchCity("0999"), -1);
        EXPECT_EQ(dic.SearchCity("2"), -1);
    }
}

TEST(SearchCity, OfNullOrInAnEmptyIndexFindsNone) {
    CGuardedDic dic(Cities({"a"}));
    EXPECT_EQ(dic.SearchCity(nullptr), -1);
    CGuardedDic none(Cities({}));
    EXPECT_EQ(none.SearchCity("a"), -1);
    EXPECT_EQ(none.SearchCity(""), -1);
    CAddrDic unbound;
    EXPECT_EQ(unbound.SearchCity(""), -1);
}

TEST(SearchCity, TakesAProbeThatNamesNoNodeForAHit) {
    for (uint32_t nNode : {4u, 1000000u, 0x80000000u, 0xFFFFFFFFu}) {
        CTestImage image = Cities({"a", "b", "c"}); // position 1 is probed first
        image.vCityIndex[1] = nNode;
        CGuardedDic dic(image);
        EXPECT_EQ(dic.SearchCity("c"), 1);
        EXPECT_EQ(dic.SearchCity("x"), 1);
        EXPECT_EQ(dic.SearchCity("a"), 0) << "one step back from it";
        EXPECT_EQ(dic.SearchCity(""), 0);
        EXPECT_THAT(ByCity(dic, "c"), IsEmpty()) << "the walk ends where it begins";
    }
}

// --- by city -------------------------------------------------------------------------------------------------------

TEST(CityFromPart, ListsWhatLiesBelowTheCitiesOfThatName) {
    CTextWorld const world;
    CGuardedDic dic(world);
    EXPECT_THAT(ByCity(dic, "府"),
                ElementsAre("1830022 183: 東京都/府中市/宮西町////", "7260003 726: 広島県/府中市/元町////"));
    EXPECT_EQ(ByCity(dic, "府中市"), ByCity(dic, "府"));
    EXPECT_THAT(ByCity(dic, "千代田区"), SizeIs(5)) << "not the city's own entry";
    for (char const* psz : {"府中市宮西町", "東京都", "中市", "x"}) EXPECT_THAT(ByCity(dic, psz), IsEmpty()) << psz;
}

TEST(CityFromPart, HasTheReadingsOfCityAndPrefectureAndNoNodes) {
    CTextWorld const world;
    CGuardedDic dic(world);
    CAddrList vAddr;
    dic.GetCityFromPart("府中市", vAddr);
    ASSERT_THAT(vAddr, SizeIs(2));
    EXPECT_EQ(vAddr[1].pszPref, dic.Name(world.nHiroshima));
    EXPECT_STREQ(vAddr[1].pszPrefKana, "ヒロシマケン");
    EXPECT_EQ(vAddr[1].pszCity, dic.Name(world.nFuchuHiroshima));
    EXPECT_STREQ(vAddr[1].pszCityKana, "フチュウシ");
    EXPECT_THAT(vAddr[1].pPrefNode, IsNull());
    EXPECT_THAT(vAddr[1].pCityNode, IsNull());
}

TEST(CityFromPart, WithoutAParentHasNoPrefecture) {
    for (uint32_t nParent : {ADDR_NONE, 1000000u, 0x80000000u}) {
        CTextWorld world;
        world.vNode[world.nFuchu].nParent = nParent;
        CGuardedDic dic(world);
        EXPECT_THAT(ByCity(dic, "府中市"),
                    ElementsAre("1830022 183: /府中市/宮西町////", "7260003 726: 広島県/府中市/元町////"));
    }
}

TEST(CityFromPart, ListsNothingOfACityWithOnlySupersededEntries) {
    CTextWorld world;
    world.vInfo[world.vNode[world.nMiyanishi].nInfo].nNode |= ADDRINFO_SUPERSEDED;
    CGuardedDic dic(world);
    EXPECT_THAT(ByCity(dic, "府中市"), ElementsAre("7260003 726: 広島県/府中市/元町////"));
}

TEST(CityFromPart, StopsAtAnIndexEntryThatNamesNoNode) {
    CTextWorld world; // 千代田区, 府中市, 府中市, 港区; position 1 is probed first
    for (uint32_t nNode : {static_cast<uint32_t>(world.vNode.size()), 0x80000000u, 0xFFFFFFFFu}) {
        world.vCityIndex[2] = nNode;
        CGuardedDic dic(world);
        EXPECT_THAT(ByCity(dic, "府中市"), ElementsAre("1830022 183: 東京都/府中市/宮西町////"));
        EXPECT_THAT(ByCity(dic, ""), SizeIs(6)) << "港区 is behind it";
    }
}

TEST(CityFromPart, EndsWithTheIndexWhenAllEntriesFit) {
    for (size_t nCount : {1u, 2u, 3u, 4u, 8u}) {
        CTestImage image;
        uint32_t const nPref = image.AddNode(LEVEL_PREF, ADDR_NONE, "県");
        for (size_t n = 0; n <= nCount; ++n) image.AddNode(LEVEL_CITY, nPref, "市");
        for (size_t n = 0; n <= nCount; ++n)
            image.AddInfo(image.AddNode(LEVEL_TOWN, static_cast<uint32_t>(n + 1), "町"), "1234567", "123");
        image.Complete();
        CGuardedDic all(image);
        EXPECT_THAT(ByCity(all, "市"), SizeIs(nCount + 1));
        CGuardedDic dic(WithoutLastEntry(image, HDR_CITY_COUNT));
        EXPECT_THAT(ByCity(dic, "市"), SizeIs(nCount));
        EXPECT_THAT(ByCity(dic, ""), SizeIs(nCount));
    }
}

TEST(CityFromPart, OfNothingListsNothing) {
    CTextWorld const world;
    CGuardedDic dic(world);
    CAddrList vAddr;
    dic.GetCityFromPart(nullptr, vAddr);
    dic.GetPrefFromPart(nullptr, vAddr);
    CAddrDic unbound;
    unbound.GetCityFromPart("", vAddr);
    unbound.GetPrefFromPart("", vAddr);
    EXPECT_THAT(vAddr, IsEmpty());
}

// --- by prefecture -------------------------------------------------------------------------------------------------

TEST(PrefFromPart, ListsWhatLiesBelowThePrefecturesThatBeginSo) {
    CTextWorld const world;
    CGuardedDic dic(world);
    std::vector<std::string> const vHiroshima = {"7260003 726: 広島県/府中市/元町////"};
    EXPECT_EQ(ByPref(dic, "広島"), vHiroshima);
    EXPECT_EQ(ByPref(dic, "広島県"), vHiroshima);
    EXPECT_THAT(ByPref(dic, "東京"), AllOf(SizeIs(11), Each(testing::HasSubstr(": 東京都/"))));
    EXPECT_EQ(ByPref(dic, ""), ByPref(dic, "東京") + vHiroshima);
    for (char const* psz : {"広島県府中市", "府中市", "島", "x"}) EXPECT_THAT(ByPref(dic, psz), IsEmpty()) << psz;
}

TEST(PrefFromPart, HasTheReadingsOfThePrefectureAndNoNode) {
    CTextWorld const world;
    CGuardedDic dic(world);
    CAddrList vAddr;
    dic.GetPrefFromPart("広", vAddr);
    ASSERT_THAT(vAddr, SizeIs(1));
    EXPECT_EQ(vAddr[0].pszPref, dic.Name(world.nHiroshima));
    EXPECT_STREQ(vAddr[0].pszPrefKana, "ヒロシマケン");
    EXPECT_THAT(vAddr[0].pPrefNode, IsNull());
}

TEST(PrefFromPart, ListsAllThatFitAlsoWhenOthersStandBetween) {
    CTestImage image;
    for (char const* psz : {"福島県", "東京都", "福井県", "福岡県"}) image.AddNode(LEVEL_PREF, ADDR_NONE, psz);
    for (uint32_t n = 0; n < 4; ++n) image.AddInfo(image.AddNode(LEVEL_CITY, n, "市"), std::to_string(n));
    image.Complete();
    CGuardedDic dic(image);
    EXPECT_THAT(ByPref(dic, "福"), ElementsAre("0 : 福島県/市/////", "2 : 福井県/市/////", "3 : 福岡県/市/////"));
}

TEST(PrefFromPart, SkipsPrefecturesThatCannotBeRead) {
    CTextWorld world;
    world.vNode[world.nTokyo].nName = 0xFFFFFFFF;
    CGuardedDic dic(world);
    EXPECT_THAT(ByPref(dic, "広"), SizeIs(1));
    for (uint32_t nCount : {3u, 1000000u, 0xFFFFFFFFu}) {
        CTextWorld more;
        more.nFirstPref = static_cast<uint32_t>(more.vNode.size()) - 2; // two nodes, then none
        more.nPrefCount = nCount;
        CGuardedDic last(more);
        EXPECT_THAT(ByPref(last, "x"), IsEmpty());
        EXPECT_THAT(ByPref(last, ""), IsEmpty()) << "they have no children";
    }
}

// --- partial addresses ---------------------------------------------------------------------------------------------

TEST(AddrPart, OfTheBeginningOfAPrefectureIsAllBelowIt) {
    CTextWorld const world;
    CGuardedDic dic(world);
    EXPECT_EQ(ByPart(dic, "東京"), ByPref(dic, "東京"));
    EXPECT_THAT(ByPart(dic, "東京"), SizeIs(11));
}

TEST(AddrPart, OfTheBeginningOfPrefectureAndCityNamesIsBothPrefecturesFirst) {
    CTestImage image;
    for (char const* psz : {"府県", "x県"}) image.AddNode(LEVEL_PREF, ADDR_NONE, psz);
    for (uint32_t n = 0; n < 2; ++n) image.AddNode(LEVEL_CITY, n, n == 0 ? "市" : "府中市");
    for (uint32_t n = 0; n < 2; ++n) image.AddInfo(image.AddNode(LEVEL_TOWN, n + 2, "町"), std::to_string(n));
    image.Complete();
    CGuardedDic dic(image);
    EXPECT_THAT(ByPart(dic, "府"), ElementsAre("0 : 府県/市/町////", "1 : x県/府中市/町////"));
}

TEST(AddrPart, OfACityOfSeveralPrefecturesIsInAllOfThem) {
    CTextWorld const world;
    CGuardedDic dic(world);
    EXPECT_THAT(ByPart(dic, "府中市"),
                ElementsAre("1830022 183: 東京都/府中市/宮西町////", "7260003 726: 広島県/府中市/元町////"));
}

TEST(AddrPart, WithoutAPrefectureInFrontIsReadWholeAndNotByItsLevels) {
    CTextWorld const world;
    CGuardedDic dic(world);
    EXPECT_THAT(ByPart(dic, "府中市宮西町"), IsEmpty()) << "no name begins with that";
    EXPECT_THAT(ByPart(dic, "丸の内"), IsEmpty()) << "a town is not looked for";
    EXPECT_THAT(ByPart(dic, "無"), IsEmpty());
}

TEST(AddrPart, OfAnEmptyTextIsTheWholeDictionaryTwice) {
    CTextWorld const world;
    CGuardedDic dic(world);
    EXPECT_EQ(ByPart(dic, ""), ByPref(dic, "") + ByCity(dic, ""));
    EXPECT_THAT(ByPref(dic, ""), SizeIs(12));
    EXPECT_THAT(ByCity(dic, ""), SizeIs(11)) << "all but the entry of a city itself";
}

TEST(AddrPart, OfAPrefectureIsAllBelowIt) {
    CTextWorld const world;
    CGuardedDic dic(world);
    EXPECT_EQ(ByPart(dic, "東京都"), ByPref(dic, "東京都"));
    EXPECT_EQ(ByPart(dic, "東京都無市"), ByPref(dic, "東京都")) << "what is not recognised does not narrow it";
    CAddrList vAddr;
    dic.GetAddrFromAddrPart("広島県", vAddr);
    ASSERT_THAT(vAddr, SizeIs(1));
    EXPECT_EQ(vAddr[0].pPrefNode, dic.Node(world.nHiroshima)) << "a copy of the separated record";
    EXPECT_THAT(vAddr[0].pszArea, IsNull());
}

TEST(AddrPart, OfAPrefectureAndATownWithoutItsCityKeepsTheRestOfTheText) {
    CTextWorld const world;
    CGuardedDic dic(world);
    CAddrList vAddr;
    char const szText[] = "広島県芝９";
    dic.GetAddrFromAddrPart(szText, vAddr);
    ASSERT_THAT(vAddr, SizeIs(1)) << "all below the prefecture, not the town";
    EXPECT_EQ(Line(vAddr[0]), "7260003 726: 広島県/府中市/元町/９///");
    EXPECT_EQ(vAddr[0].pszArea, szText + std::strlen("広島県芝"));
    EXPECT_EQ(vAddr[0].pTownNode, dic.Node(world.nShiba));
}

TEST(AddrPart, OfPrefectureAndCityIsAllBelowTheCity) {
    CTextWorld const world;
    CGuardedDic dic(world);
    std::vector<std::string> const vFive = {
        "1000005 100: 東京都/千代田区/丸の内////", "1008111 100: 東京都/千代田区/丸の内////テスト",
        "1008222 100: 東京都/千代田区/丸の内////テスト商事", "1000001 100: 東京都/千代田区/千代田////",
        "1008333 100: 東京都/千代田区/千代田////テスト"};
    EXPECT_EQ(ByPart(dic, "東京都千代田区"), vFive);
    EXPECT_EQ(ByPart(dic, "東京都千代田区無町"), vFive);
    CAddrList vAddr;
    dic.GetAddrFromAddrPart("東京都千代田区", vAddr);
    EXPECT_EQ(vAddr.at(0).pCityNode, dic.Node(world.nChiyodaKu));
}

TEST(AddrPart, OfAWholeAddressIsItselfAndAllBelowItsTown) {
    CTextWorld const world;
    CGuardedDic dic(world);
    EXPECT_THAT(ByPart(dic, "東京都千代田区丸の内"),
                ElementsAre("1000005 100: 東京都/千代田区/丸の内////",
                            "1008111 100: 東京都/千代田区/丸の内////テスト",
                            "1008222 100: 東京都/千代田区/丸の内////テスト商事"));
}

TEST(AddrPart, CarriesTheRestOfTheTextUntilASubdivisionReplacesIt) {
    CTextWorld const world;
    CGuardedDic dic(world);
    EXPECT_THAT(ByPart(dic, "東京都千代田区丸の内２丁目"),
                ElementsAre("1000005 100: 東京都/千代田区/丸の内/２丁目///",
                            "1008111 100: 東京都/千代田区/丸の内/２丁目///テスト",
                            "1008222 100: 東京都/千代田区/丸の内/２丁目///テスト商事"));
    CAddrList vAddr;
    char const szText[] = "東京都港区芝９丁目";
    dic.GetAddrFromAddrPart(szText, vAddr);
    EXPECT_THAT(Lines(vAddr),
                ElementsAre("1050014 105: 東京都/港区/芝/９丁目///", "1050015 105: 東京都/港区/芝/１丁目///",
                            "1058444 105: 東京都/港区/芝/１丁目///港商会",
                            "1050016 105: 東京都/港区/芝/１丁目/海ビル//港商会"));
    EXPECT_EQ(vAddr.at(0).pszArea, szText + std::strlen("東京都港区芝"));
}

TEST(AddrPart, ListsAWholeAddressEvenWhenItsTownIsSupersededOrHasNoCode) {
    CTextWorld world;
    world.vNode[world.nShiba].nInfo = ADDR_NONE;
    CGuardedDic dic(world);
    EXPECT_THAT(ByPart(dic, "東京都千代田区旧町"), ElementsAre("1000099 10099: 東京都/千代田区/旧町////"));
    EXPECT_THAT(ByPart(dic, "東京都港区芝"), SizeIs(4));
    EXPECT_EQ(ByPart(dic, "東京都港区芝")[0], " : 東京都/港区/芝////");
}

TEST(AddrPart, OfATownWithoutAnEntryHasTheCodesOfItsCity) {
    CTextWorld world;
    world.vNode[world.nOldTown].nInfo = ADDR_NONE;
    CGuardedDic dic(world);
    EXPECT_THAT(ByPart(dic, "東京都千代田区旧町"), ElementsAre("1000000 100: 東京都/千代田区/旧町////"));
}

TEST(AddrPart, AppendsToTheListAndNeverSorts) {
    CTextWorld const world;
    CGuardedDic dic(world);
    dic.SetSortType(SORT_ADDR);
    CAddrList vAddr;
    EXPECT_EQ(dic.GetAddrFromAddrPart("広島県", vAddr), 1);
    EXPECT_EQ(dic.GetAddrFromAddrPart("東京都府中市", vAddr), 1);
    EXPECT_THAT(Lines(vAddr),
                ElementsAre("7260003 726: 広島県/府中市/元町////", "1830022 183: 東京都/府中市/宮西町////"));
    EXPECT_EQ(ByPart(dic, "東京都千代田区").at(0), "1000005 100: 東京都/千代田区/丸の内////");
}

TEST(AddrPart, OfNothingIsNothing) {
    CTextWorld const world;
    CGuardedDic dic(world);
    CAddrList vAddr;
    EXPECT_EQ(dic.GetAddrFromAddrPart(nullptr, vAddr), 1);
    EXPECT_THAT(vAddr, IsEmpty());
    CAddrDic unbound;
    EXPECT_THAT(ByPart(unbound, ""), IsEmpty());
    EXPECT_THAT(ByPart(unbound, "東京都"), IsEmpty());
}

} // namespace
