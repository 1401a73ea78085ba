// All addresses below a city.
#include "tests/library/BrowseWorld.h"

#include <gmock/gmock.h>

#include <climits>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

// "code old: town/area/block/office", absent texts as nothing.
std::vector<std::string> Below(CAddrList const& vAddr) {
    auto const Text = [](char const* psz) { return std::string(psz != nullptr ? psz : ""); };
    std::vector<std::string> vLine;
    for (tagADDR const& addr : vAddr)
        vLine.push_back(Text(addr.pszPostCode) + " " + Text(addr.pszCodeExt) + ": " + Text(addr.pszTown) + "/" +
                        Text(addr.pszArea) + "/" + Text(addr.pszBlock) + "/" + Text(addr.pszOffice));
    return vLine;
}

CAddrList AllBelow(CBrowsedDic& dic, uint32_t nCity = 1) {
    dic.CityList() = {dic.Node(nCity)};
    CAddrList vAddr;
    EXPECT_TRUE(dic.GetTownExFromNo(0, vAddr));
    return vAddr;
}

TEST(TownTree, HasAllCurrentAddressesDepthFirst) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    EXPECT_THAT(Below(AllBelow(dic, world.nChiyodaKu)),
                ElementsAre("1000005 100: 丸の内///", "1008111 100: 丸の内///テスト",
                            "1008222 100: 丸の内///テスト商事", "1000001 100: 千代田///",
                            "1008333 100: 千代田///テスト"))
        << "without the city itself and without the old town";
}

TEST(TownTree, HasTheNamesReadingsAndCodesBelowTheCityOnly) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    tagADDR expected(0);
    expected.pszTown = dic.Name(world.nChiyoda);
    expected.pszTownKana = dic.Reading(world.nChiyoda);
    expected.pszOffice = dic.Name(world.nTestChiyoda);
    expected.pszOfficeKana = dic.Reading(world.nTestChiyoda);
    expected.pszPostCode = dic.GetString(world.vInfo[world.vNode[world.nTestChiyoda].nInfo].nCode);
    expected.pszCodeExt = expected.pszPostCode + 8;
    EXPECT_EQ(Fields(AllBelow(dic, world.nChiyodaKu).at(4)), Fields(expected)) << "no list node, too";
}

TEST(TownTree, CarriesATextOverToLaterSiblingsOfOtherLevels) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    EXPECT_THAT(Below(AllBelow(dic, world.nMinato)),
                ElementsAre("1050014 105: 芝///", "1050015 105: 芝/１丁目//", "1058444 105: 芝/１丁目//港商会",
                            "1050016 105: 芝/１丁目/海ビル/港商会"));
}

TEST(TownTree, OfASupersededTownIsListedWithoutTheTown) {
    CTextWorld world;
    world.vInfo[world.vNode[world.nMarunouchi].nInfo].nNode |= ADDRINFO_SUPERSEDED;
    CBrowsedDic dic(world);
    EXPECT_THAT(Below(AllBelow(dic, world.nChiyodaKu)),
                ElementsAre("1008111 100: 丸の内///テスト", "1008222 100: 丸の内///テスト商事",
                            "1000001 100: 千代田///", "1008333 100: 千代田///テスト"));
}

TEST(TownTree, HasNamelessTownsButNoneWithoutAnEntry) {
    CTestImage image = ChiyodaWith({"", "a", "b"});
    image.vNode[3].nInfo = ADDR_NONE;
    CBrowsedDic dic(image);
    EXPECT_THAT(TownNames(AllBelow(dic)), ElementsAre("", "b"));
}

TEST(TownTree, KeepsANullNodeForEachRecord) {
    CBrowsedDic dic(ChiyodaWith({"a", "b", "c"}));
    AllBelow(dic);
    EXPECT_THAT(dic.Numbers(dic.TownList()), ElementsAre(ADDR_NONE, ADDR_NONE, ADDR_NONE));
}

TEST(TownTree, LeavesTheListsAboveAlone) {
    CBrowsedDic dic(ChiyodaWith({"a"}));
    dic.PrefList() = {dic.Node(2)};
    AllBelow(dic);
    EXPECT_THAT(dic.Numbers(dic.PrefList()), ElementsAre(2));
    EXPECT_THAT(dic.Numbers(dic.CityList()), ElementsAre(1));
}

TEST(TownTree, MakesTheTownsOfTheCityFail) {
    CBrowsedDic dic(ChiyodaWith({"a"}));
    AllBelow(dic);
    CAddrList vTown;
    EXPECT_FALSE(dic.GetTownFromNo(0, vTown));
    EXPECT_THAT(vTown, IsEmpty());
}

TEST(TownTree, ThatIsEmptyLeavesTheTownsOfTheCityAsTheyAre) {
    CTestImage image = ChiyodaWith({"a"});
    image.vInfo[0].nNode |= ADDRINFO_SUPERSEDED;
    CBrowsedDic dic(image);
    EXPECT_THAT(AllBelow(dic), IsEmpty());
    CAddrList vAddr;
    EXPECT_TRUE(dic.GetTownFromNo(0, vAddr));
    EXPECT_THAT(TownNames(vAddr), ElementsAre("a"));
}

TEST(TownTree, HasAllAddressesAlsoWhenATownIsFixed) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    CAddrList vPref, vAddr;
    EXPECT_TRUE(dic.GetPrefFromCity("東京都港区芝", vPref));
    EXPECT_TRUE(dic.GetTownExFromNo(0, vAddr));
    EXPECT_EQ(vAddr.size(), 4u);
    EXPECT_EQ(dic.TownList(), CNodeList(4, nullptr)) << "the town is forgotten";
}

TEST(TownTree, IsAppendedAndKeepsTheNodesOfEarlierRecordsToo) {
    CBrowsedDic dic(ChiyodaWith({"a"}));
    dic.CityList() = {dic.Node(1)};
    CAddrList vAddr = {EarlierAddr(&tagADDR::pszTown, "z", dic.Node(0))};
    EXPECT_TRUE(dic.GetTownExFromNo(0, vAddr));
    EXPECT_THAT(TownNames(vAddr), ElementsAre("z", "a"));
    EXPECT_THAT(dic.Numbers(dic.TownList()), ElementsAre(0, ADDR_NONE));
}

TEST(TownTree, IsSortedForTheSortTypeThatAsksForIt) {
    CBrowsedDic dic(ChiyodaWith({"c", "a", "b"}));
    dic.SetSortType(9);
    EXPECT_THAT(TownNames(AllBelow(dic)), ElementsAre("a", "b", "c"));
}

TEST(TownTree, StaysInItsOwnOrderForEveryOtherSortType) {
    CBrowsedDic dic(ChiyodaWith({"c", "a", "b"}));
    EXPECT_THAT(TownNames(AllBelow(dic)), ElementsAre("c", "a", "b")) << "before one is set";
    for (unsigned short nType : OTHER_SORT_TYPES) {
        dic.SetSortType(nType);
        EXPECT_THAT(TownNames(AllBelow(dic)), ElementsAre("c", "a", "b")) << nType;
    }
}

TEST(TownTree, KeepsAddressesOfOneNameInTheirOrderWhenItIsSorted) {
    CTestImage image = ChiyodaWith(ManyOfTwoNames());
    CBrowsedDic dic(image);
    dic.SetSortType(SORT_ADDR);
    std::vector<std::string> vCode;
    for (uint32_t n : ManyInOrder(1000000)) vCode.push_back(std::to_string(n));
    EXPECT_EQ(Texts(AllBelow(dic), &tagADDR::pszPostCode), vCode);
}

TEST(TownTree, OfANumberBehindTheLastIsTrueAndEmptyAndForgetsTheTowns) {
    CBrowsedDic dic(ChiyodaWith({"a"}));
    dic.CityList() = {dic.Node(1)};
    for (unsigned long nCity : {1ul, 1ul << 31, ULONG_MAX}) {
        dic.TownList() = {dic.Node(2)};
        CAddrList vAddr;
        EXPECT_TRUE(dic.GetTownExFromNo(nCity, vAddr));
        EXPECT_TRUE(vAddr.empty() && dic.TownList().empty()) << nCity;
    }
}

TEST(TownTree, OfEveryNumberIsTrueAndEmptyBeforeTheFirstList) {
    CBrowsedDic dic((CTextWorld()));
    CAddrDic unbound;
    for (unsigned long nCity : {0ul, ULONG_MAX}) {
        CAddrList vAddr;
        EXPECT_TRUE(dic.GetTownExFromNo(nCity, vAddr) && unbound.GetTownExFromNo(nCity, vAddr));
        EXPECT_THAT(vAddr, IsEmpty());
    }
}

TEST(TownTree, OfANullCityIsTrueAndEmpty) {
    CBrowsedDic dic(ChiyodaWith({"a"}));
    dic.CityList() = {nullptr};
    CAddrList vAddr;
    EXPECT_TRUE(dic.GetTownExFromNo(0, vAddr));
    EXPECT_THAT(vAddr, IsEmpty());
}

TEST(TownTree, SkipsTownsThatAreNotThere) {
    for (uint32_t nCount : {3u, 0x80000000u, 0xFFFFFFFFu}) {
        CTestImage image = ChiyodaWith({"a", "b"});
        image.vNode[1].nChildCount = nCount;
        CBrowsedDic dic(image);
        EXPECT_THAT(TownNames(AllBelow(dic)), ElementsAre("a", "b")) << nCount;
    }
}

// A walk that does not come to an end takes all memory: better the test program ends.
TEST(TownTree, OfACityBelowItselfComesToAnEnd) {
    alarm(10); // seconds; it takes some milliseconds
    CTestImage image = ChiyodaWith({"a"});
    image.vNode[2].nFirstChild = 1;
    image.vNode[2].nChildCount = 1;
    CBrowsedDic dic(image);
    EXPECT_THAT(TownNames(AllBelow(dic)), ElementsAre("a"));
    alarm(0);
}

} // namespace
