// The cities of a prefecture: the second level of browsing.
#include "tests/library/BrowseWorld.h"

#include <gmock/gmock.h>

#include <climits>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

// The cities of a prefecture as the first city answer after the list of prefectures.
CAddrList Listed(CAddrDic& dic, unsigned long nPref = NO_TOKYO) {
    CAddrList vPref, vCity;
    EXPECT_TRUE(dic.GetPref(vPref));
    EXPECT_TRUE(dic.GetCityFromNo(nPref, vCity));
    return vCity;
}

bool Fails(CAddrDic& dic, unsigned long nPref) {
    CAddrList vAddr;
    return !dic.GetCityFromNo(nPref, vAddr) && vAddr.empty();
}

// --- the cities of a prefecture ------------------------------------------------------------------------------------

TEST(CityList, HasTheCitiesOfThePrefectureInTheirOrder) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    EXPECT_THAT(CityNames(Listed(dic)), ElementsAre("千代田区", "港区", "府中市"));
}

TEST(CityList, HasTheImagesOwnNamesAndReadings) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    CAddrList const vAddr = Listed(dic);
    EXPECT_EQ(vAddr.at(1).pszCity, dic.Name(world.nMinato));
    EXPECT_EQ(vAddr.at(1).pszCityKana, dic.Reading(world.nMinato));
}

TEST(CityList, WritesNamesReadingsAndListNodesOnly) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    EXPECT_THAT(Filled(Listed(dic).at(0)), ElementsAre("pszCity", "pszCityKana", "pListCity"))
        << "no codes, though 千代田区 has some";
}

TEST(CityList, HasTheNodeOfEachCity) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    EXPECT_THAT(dic.Numbers(ListNodes(Listed(dic))), ElementsAre(world.nChiyodaKu, world.nMinato, world.nFuchu));
}

TEST(CityList, KeepsTheNodesInTheSameOrder) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    Listed(dic);
    EXPECT_THAT(dic.Numbers(dic.CityList()), ElementsAre(world.nChiyodaKu, world.nMinato, world.nFuchu));
}

TEST(CityList, LeavesTheListsOfPrefecturesAndTownsAlone) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    dic.PrefList() = {dic.Node(world.nHiroshima), dic.Node(world.nTokyo)};
    dic.TownList() = {dic.Node(world.nMotomachi)};
    CAddrList vAddr;
    EXPECT_TRUE(dic.GetCityFromNo(1, vAddr));
    EXPECT_THAT(dic.Numbers(dic.PrefList()), ElementsAre(world.nHiroshima, world.nTokyo));
    EXPECT_THAT(dic.Numbers(dic.TownList()), ElementsAre(world.nMotomachi));
}

TEST(CityList, IsAppendedToTheAnswer) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    dic.PrefList() = {dic.Node(world.nHiroshima)};
    CAddrList vAddr = {EarlierAddr(&tagADDR::pszCity, "z")};
    EXPECT_TRUE(dic.GetCityFromNo(0, vAddr));
    EXPECT_THAT(CityNames(vAddr), ElementsAre("z", "府中市"));
}

TEST(CityList, WritesNothingIntoEarlierRecords) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    dic.PrefList() = {dic.Node(world.nHiroshima)};
    CAddrList vAddr = {MarkedAddr()};
    for (int nAnswer = 0; nAnswer < 2; ++nAnswer) { // of the prefecture, of the fixed city
        EXPECT_TRUE(dic.GetCityFromNo(0, vAddr));
        EXPECT_THAT(Changed(vAddr[0]), IsEmpty());
        dic.CityList() = {dic.Node(world.nFuchu)};
    }
}

TEST(CityList, KeepsTheNodesOfEarlierRecordsToo) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    dic.PrefList() = {dic.Node(world.nHiroshima)};
    CAddrList vAddr = {EarlierAddr(&tagADDR::pszCity, "z", dic.Node(world.nMinato)), tagADDR(0)};
    EXPECT_TRUE(dic.GetCityFromNo(0, vAddr));
    EXPECT_THAT(dic.Numbers(dic.CityList()), ElementsAre(world.nMinato, ADDR_NONE, world.nFuchuHiroshima));
}

TEST(CityList, HasSupersededCities) {
    CTextWorld world;
    world.vInfo[world.vNode[world.nChiyodaKu].nInfo].nNode |= ADDRINFO_SUPERSEDED;
    CBrowsedDic dic(world);
    EXPECT_THAT(CityNames(Listed(dic)), ElementsAre("千代田区", "港区", "府中市"));
}

TEST(CityList, HasNamelessCities) {
    CBrowsedDic dic(TokyoWith({"", "a"}));
    EXPECT_THAT(CityNames(Listed(dic)), ElementsAre("", "a"));
}

TEST(CityList, HasChildrenOfEveryLevel) {
    for (int nLevel = 0; nLevel <= 255; ++nLevel) {
        CTestImage image = TokyoWith({"a"});
        image.vNode[1].nLevel = static_cast<uint8_t>(nLevel);
        CBrowsedDic dic(image);
        EXPECT_THAT(Filled(Listed(dic).at(0)), ElementsAre("pszCity", "pszCityKana", "pListCity")) << nLevel;
    }
}

TEST(CityList, HasCitiesWithoutAReadableName) {
    CTestImage image = TokyoWith({"a", "b", "c"});
    image.vNode[1].nName = static_cast<uint32_t>(image.strArea.size());
    image.vNode[2].nName = 0xFFFFFFFF;
    CBrowsedDic dic(image);
    EXPECT_THAT(CityNames(Listed(dic)), ElementsAre("(null)", "(null)", "c"));
}

TEST(CityList, HasNoReadingBehindTheStringArea) {
    CTestImage image = TokyoWith({"a"});
    image.strArea.resize(image.vNode[1].nName + 2);
    CBrowsedDic dic(image);
    EXPECT_THAT(Texts(Listed(dic), &tagADDR::pszCityKana), ElementsAre("(null)"));
}

TEST(CityList, OfAPrefectureWithoutCitiesIsEmpty) {
    CBrowsedDic dic(TokyoWith({}));
    EXPECT_THAT(Listed(dic), IsEmpty());
}

TEST(CityList, SkipsCitiesThatAreNotThere) {
    for (uint32_t nCount : {3u, 1000000u, 0x80000000u, 0xFFFFFFFFu}) {
        CTestImage image = TokyoWith({"a", "b"});
        image.vNode[0].nChildCount = nCount;
        CBrowsedDic dic(image);
        EXPECT_THAT(CityNames(Listed(dic)), ElementsAre("a", "b")) << nCount;
    }
}

TEST(CityList, DoesNotBeginAgainAtTheFirstNodeBehindTheLastNumber) {
    for (uint32_t nFirst : {3u, 0x80000000u, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
        CTestImage image = TokyoWith({"a", "b"});
        image.vNode[0].nFirstChild = nFirst;
        image.vNode[0].nChildCount = 0xFFFFFFFF;
        CBrowsedDic dic(image);
        EXPECT_THAT(Listed(dic), IsEmpty()) << nFirst;
    }
}

// --- numbers -------------------------------------------------------------------------------------------------------

TEST(CityList, OfEveryNumberFailsBeforeTheFirstList) {
    CBrowsedDic dic((CTextWorld()));
    for (unsigned long nPref : {0ul, 12ul, 46ul, ULONG_MAX}) EXPECT_TRUE(Fails(dic, nPref)) << nPref;
}

TEST(CityList, OfEveryNumberFailsWithoutADictionary) {
    CAddrDic dic;
    CAddrList vAddr;
    dic.GetPref(vAddr);
    for (unsigned long nPref : {0ul, 12ul, 46ul, ULONG_MAX}) EXPECT_TRUE(Fails(dic, nPref)) << nPref;
}

TEST(CityList, OfTheLastNumberHasTheCitiesOfTheLastPrefecture) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    Listed(dic, NO_HIROSHIMA);
    EXPECT_THAT(dic.Numbers(dic.CityList()), ElementsAre(world.nFuchuHiroshima));
}

TEST(CityList, OfANumberBehindTheLastFails) {
    CBrowsedDic dic((CTextWorld()));
    CAddrList vAddr;
    dic.GetPref(vAddr);
    for (unsigned long nPref : {NO_HIROSHIMA + 1, 47ul, 1ul << 31, ULONG_MAX})
        EXPECT_TRUE(Fails(dic, nPref)) << nPref;
}

TEST(CityList, OfAPrefectureThatIsNotThereFails) {
    CBrowsedDic dic((CTextWorld()));
    CAddrList vAddr;
    dic.GetPref(vAddr);
    EXPECT_TRUE(Fails(dic, NO_HOKKAIDO));
    EXPECT_THAT(dic.CityList(), IsEmpty());
}

// --- one city only -------------------------------------------------------------------------------------------------

TEST(CityList, AskedForAgainHasItsFirstCityOnly) {
    CBrowsedDic dic((CTextWorld()));
    Listed(dic);
    for (unsigned long nPref : {NO_TOKYO, NO_HIROSHIMA, NO_TOKYO}) {
        CAddrList vAddr;
        EXPECT_TRUE(dic.GetCityFromNo(nPref, vAddr));
        EXPECT_THAT(CityNames(vAddr), ElementsAre("千代田区")) << nPref;
    }
}

TEST(CityList, AskedForAgainKeepsAllItsNodes) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    Listed(dic);
    CAddrList vAddr;
    EXPECT_TRUE(dic.GetCityFromNo(NO_TOKYO, vAddr));
    EXPECT_THAT(dic.Numbers(dic.CityList()), ElementsAre(world.nChiyodaKu, world.nMinato, world.nFuchu));
}

TEST(CityList, OfAFixedCityHasItsOwnNameReadingAndNode) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    dic.PrefList() = {dic.Node(world.nTokyo)};
    dic.CityList() = {dic.Node(world.nMinato)};
    CAddrList vAddr;
    EXPECT_TRUE(dic.GetCityFromNo(0, vAddr));
    tagADDR expected(0);
    expected.pszCity = dic.Name(world.nMinato);
    expected.pszCityKana = dic.Reading(world.nMinato);
    expected.pListCity = dic.Node(world.nMinato);
    ASSERT_EQ(vAddr.size(), 1u);
    EXPECT_EQ(Fields(vAddr[0]), Fields(expected));
}

TEST(CityList, OfAFixedCityIsAppendedUnsorted) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    dic.SetSortType(SORT_ADDR);
    dic.PrefList() = {dic.Node(world.nTokyo)};
    dic.CityList() = {dic.Node(world.nMinato)};
    CAddrList vAddr = {EarlierAddr(&tagADDR::pszCity, "\xFF")};
    EXPECT_TRUE(dic.GetCityFromNo(0, vAddr));
    EXPECT_THAT(CityNames(vAddr), ElementsAre("\xFF", "港区"));
}

TEST(CityList, AfterAPostalCodeHasTheCityOfThatCodeInEveryPrefecture) {
    CBrowsedDic dic((CTextWorld()));
    CAddrList vPref, vCode;
    dic.GetPref(vPref);
    dic.GetAddrFromPostCode7("1050014", vCode);
    for (unsigned long nPref : {NO_HOKKAIDO, NO_TOKYO, NO_HIROSHIMA}) {
        CAddrList vAddr;
        EXPECT_TRUE(dic.GetCityFromNo(nPref, vAddr)) << nPref << ": the prefecture may be absent";
        EXPECT_THAT(CityNames(vAddr), ElementsAre("港区"));
    }
}

TEST(CityList, OfAFixedCityFailsForANumberBehindTheLast) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    dic.CityList() = {dic.Node(world.nMinato)};
    EXPECT_TRUE(Fails(dic, 0)) << "there is no prefecture";
    dic.PrefList() = {dic.Node(world.nTokyo)};
    EXPECT_TRUE(Fails(dic, 1));
    EXPECT_THAT(dic.Numbers(dic.CityList()), ElementsAre(world.nMinato));
}

TEST(CityList, WhoseFirstEntryIsNullFailsAndKeepsItsEntries) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    dic.PrefList() = {dic.Node(world.nTokyo)};
    dic.CityList() = {nullptr, dic.Node(world.nMinato)};
    EXPECT_TRUE(Fails(dic, 0));
    EXPECT_THAT(dic.Numbers(dic.CityList()), ElementsAre(ADDR_NONE, world.nMinato));
}

// --- order ---------------------------------------------------------------------------------------------------------

TEST(CityList, IsSortedByNamesForTheSortTypeThatAsksForIt) {
    CBrowsedDic dic(TokyoWith({"c", "a", "b", "B"}));
    dic.SetSortType(9);
    EXPECT_THAT(CityNames(Listed(dic)), ElementsAre("B", "a", "b", "c"));
}

TEST(CityList, KeepsItsNodesSortedToo) {
    CBrowsedDic dic(TokyoWith({"c", "a", "b", "B"}));
    dic.SetSortType(9);
    Listed(dic);
    EXPECT_THAT(dic.Numbers(dic.CityList()), ElementsAre(4, 2, 3, 1));
}

TEST(CityList, StaysInItsOwnOrderForEveryOtherSortType) {
    for (unsigned short nType : OTHER_SORT_TYPES) {
        CBrowsedDic dic(TokyoWith({"c", "a", "b"}));
        dic.SetSortType(nType);
        EXPECT_THAT(CityNames(Listed(dic)), ElementsAre("c", "a", "b")) << nType;
    }
}

TEST(CityList, StaysInItsOwnOrderWhenNoSortTypeWasSet) {
    CBrowsedDic dic(TokyoWith({"c", "a", "b"}));
    EXPECT_THAT(CityNames(Listed(dic)), ElementsAre("c", "a", "b"));
}

TEST(CityList, KeepsCitiesOfOneNameInTheirOrderWhenItIsSorted) {
    CBrowsedDic dic(TokyoWith(ManyOfTwoNames()));
    dic.SetSortType(SORT_ADDR);
    EXPECT_THAT(dic.Numbers(ListNodes(Listed(dic))), ElementsAreArray(ManyInOrder(1)));
}

TEST(CityList, IsSortedTogetherWithEarlierRecords) {
    CBrowsedDic dic(TokyoWith({"c", "a"}));
    dic.SetSortType(SORT_ADDR);
    dic.PrefList() = {dic.Node(0)};
    CAddrList vAddr = {EarlierAddr(&tagADDR::pszCity, "b", dic.Node(0))};
    EXPECT_TRUE(dic.GetCityFromNo(0, vAddr));
    EXPECT_THAT(CityNames(vAddr), ElementsAre("a", "b", "c"));
    EXPECT_THAT(dic.Numbers(dic.CityList()), ElementsAre(2, 0, 1));
}

} // namespace
