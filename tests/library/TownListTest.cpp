// The towns of a city: the third level of browsing.
#include "tests/library/BrowseWorld.h"

#include <gmock/gmock.h>

#include <unistd.h>

#include <climits>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

// The towns of a city, as the first town answer after a list of one city.
CAddrList Listed(CBrowsedDic& dic, uint32_t nCity = 1) {
    dic.CityList() = {dic.Node(nCity)};
    dic.TownList() = {};
    CAddrList vAddr;
    EXPECT_TRUE(dic.GetTownFromNo(0, vAddr));
    return vAddr;
}

// "code old"
std::vector<std::string> Codes(CAddrList const& vAddr) {
    std::vector<std::string> vCodes;
    for (tagADDR const& addr : vAddr) vCodes.push_back(Shown(addr.pszPostCode) + " " + Shown(addr.pszCodeExt));
    return vCodes;
}

bool Fails(CAddrDic& dic, unsigned long nCity) {
    CAddrList vAddr;
    return !dic.GetTownFromNo(nCity, vAddr) && vAddr.empty();
}

// --- the towns of a city -------------------------------------------------------------------------------------------

TEST(TownList, HasTheTownsOfTheCityInTheirOrderSupersededOnesIncluded) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    EXPECT_THAT(TownNames(Listed(dic, world.nChiyodaKu)), ElementsAre("丸の内", "千代田", "旧町"));
}

TEST(TownList, HasNothingFromBelowTheTowns) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    EXPECT_THAT(TownNames(Listed(dic, world.nMinato)), ElementsAre("芝"));
}

TEST(TownList, HasTheImagesOwnTextsAndTheNode) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    tagADDR expected(0);
    expected.pszTown = dic.Name(world.nOldTown);
    expected.pszTownKana = dic.Reading(world.nOldTown);
    expected.pszPostCode = dic.GetString(world.vInfo[world.nOldInfo].nCode);
    expected.pszCodeExt = expected.pszPostCode + 8;
    expected.pListCity = dic.Node(world.nOldTown);
    EXPECT_EQ(Fields(Listed(dic, world.nChiyodaKu).at(2)), Fields(expected)) << "no other fields, too";
}

TEST(TownList, HasTheOldCodesBesideTheCodes) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    EXPECT_THAT(Codes(Listed(dic, world.nChiyodaKu)), ElementsAre("1000005 100", "1000001 100", "1000099 10099"));
}

TEST(TownList, HasNoCodesWhereTheTownHasNoEntry) {
    for (uint32_t nInfo : {ADDR_NONE, 3u, 0x80000000u}) {
        CTestImage image = ChiyodaWith({"a", "b", "c"});
        image.vNode[3].nInfo = nInfo;
        CBrowsedDic dic(image);
        EXPECT_THAT(Codes(Listed(dic)), ElementsAre("1000000 10000", "(null) (null)", "1000002 10002"))
            << "nor those of the town before";
    }
}

TEST(TownList, LeavesNamelessTownsOut) {
    CBrowsedDic dic(ChiyodaWith({"", "a", "", "", "b", ""}));
    EXPECT_THAT(TownNames(Listed(dic)), ElementsAre("a", "b"));
    EXPECT_THAT(dic.Numbers(dic.TownList()), ElementsAre(3, 6));
}

TEST(TownList, OfACityWithANamelessTownOnlyIsEmpty) {
    CBrowsedDic dic(ChiyodaWith({""}));
    EXPECT_THAT(Listed(dic), IsEmpty());
}

TEST(TownList, LeavesTownsWithoutAReadableNameOut) {
    CTestImage image = ChiyodaWith({"a", "b", "c"});
    image.vNode[2].nName = static_cast<uint32_t>(image.strArea.size());
    image.vNode[3].nName = ADDR_NONE;
    CBrowsedDic dic(image);
    EXPECT_THAT(TownNames(Listed(dic)), ElementsAre("c"));
}

TEST(TownList, HasNoReadingBehindTheStringArea) {
    CTestImage image = ChiyodaWith({"a"});
    image.vNode[2].nName = image.AddText("b");
    image.strArea.pop_back();
    CBrowsedDic dic(image);
    EXPECT_THAT(Texts(Listed(dic), &tagADDR::pszTownKana), ElementsAre("(null)"));
}

TEST(TownList, HasNoCodeOrOldCodeBehindTheStringArea) {
    CTestImage image = ChiyodaWith({"a", "b"});
    image.vInfo[0].nCode = ADDR_NONE;
    image.strArea.resize(image.vInfo[1].nCode + 8);
    CBrowsedDic dic(image);
    EXPECT_THAT(Codes(Listed(dic)), ElementsAre("(null) (null)", "1000001 (null)"));
}

TEST(TownList, HasChildrenOfEveryLevel) {
    for (int nLevel = 0; nLevel <= 255; ++nLevel) {
        CTestImage image = ChiyodaWith({"a"});
        image.vNode[2].nLevel = static_cast<uint8_t>(nLevel);
        CBrowsedDic dic(image);
        EXPECT_THAT(Filled(Listed(dic).at(0)),
                    ElementsAre("pszCodeExt", "pszPostCode", "pszTown", "pszTownKana", "pListCity"))
            << nLevel;
    }
}

TEST(TownList, OfACityWithoutTownsIsEmpty) {
    CBrowsedDic dic(ChiyodaWith({}));
    EXPECT_THAT(Listed(dic), IsEmpty());
}

TEST(TownList, KeepsItsNodesAndLeavesThoseAboveAlone) {
    CBrowsedDic dic(ChiyodaWith({"a", "b"}));
    dic.PrefList() = {dic.Node(3)};
    Listed(dic);
    EXPECT_THAT(dic.Numbers(dic.PrefList()), ElementsAre(3));
    EXPECT_THAT(dic.Numbers(dic.CityList()), ElementsAre(1));
    EXPECT_THAT(dic.Numbers(dic.TownList()), ElementsAre(2, 3));
}

TEST(TownList, IsAppendedToTheAnswerAndKeepsTheNodesOfEarlierRecordsToo) {
    CBrowsedDic dic(ChiyodaWith({"a"}));
    dic.CityList() = {dic.Node(1)};
    CAddrList vAddr = {EarlierAddr(&tagADDR::pszTown, "z", dic.Node(0)), tagADDR(0)};
    EXPECT_TRUE(dic.GetTownFromNo(0, vAddr));
    EXPECT_THAT(TownNames(vAddr), ElementsAre("z", "(null)", "a"));
    EXPECT_THAT(dic.Numbers(dic.TownList()), ElementsAre(0, ADDR_NONE, 2));
}

TEST(TownList, WritesNothingIntoEarlierRecords) {
    CBrowsedDic dic(ChiyodaWith({"a"}));
    dic.CityList() = {dic.Node(1)};
    CAddrList vAddr = {MarkedAddr()};
    for (int nAnswer = 0; nAnswer < 2; ++nAnswer) { // of the city, of the fixed town
        EXPECT_TRUE(dic.GetTownFromNo(0, vAddr));
        EXPECT_THAT(Changed(vAddr[0]), IsEmpty());
        dic.TownList() = {dic.Node(2)};
    }
}

// --- towns that are not there --------------------------------------------------------------------------------------

TEST(TownList, FailsAtATownThatIsNotThereAndKeepsTheRecordsBefore) {
    for (uint32_t nCount : {4u, 1000000u, 0x80000000u, 0xFFFFFFFFu}) {
        CTestImage image = ChiyodaWith({"b", "", "a"});
        image.vNode[1].nChildCount = nCount;
        CBrowsedDic dic(image);
        dic.SetSortType(SORT_ADDR);
        dic.CityList() = {dic.Node(1)};
        CAddrList vAddr;
        EXPECT_FALSE(dic.GetTownFromNo(0, vAddr)) << nCount;
        EXPECT_THAT(TownNames(vAddr), ElementsAre("b", "a")) << "unsorted";
    }
}

TEST(TownList, IsEmptyBehindATownThatIsNotThere) {
    CTestImage image = ChiyodaWith({"a", "b"});
    image.vNode[1].nChildCount = 3;
    CBrowsedDic dic(image);
    dic.CityList() = {dic.Node(1)};
    CAddrList vAddr;
    EXPECT_FALSE(dic.GetTownFromNo(0, vAddr));
    EXPECT_THAT(dic.TownList(), IsEmpty());
}

TEST(TownList, DoesNotBeginAgainAtTheFirstNodeBehindTheLastNumber) {
    for (uint32_t nFirst : {4u, 0x80000000u, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
        CTestImage image = ChiyodaWith({"a", "b"});
        image.vNode[1].nFirstChild = nFirst;
        image.vNode[1].nChildCount = 5;
        CBrowsedDic dic(image);
        dic.CityList() = {dic.Node(1)};
        EXPECT_TRUE(Fails(dic, 0)) << nFirst;
    }
}

// --- numbers -------------------------------------------------------------------------------------------------------

TEST(TownList, OfEveryNumberFailsBeforeTheFirstList) {
    CBrowsedDic dic((CTextWorld()));
    CAddrDic unbound;
    for (unsigned long nCity : {0ul, 12ul, ULONG_MAX})
        EXPECT_TRUE(Fails(dic, nCity) && Fails(unbound, nCity)) << nCity;
}

TEST(TownList, OfTheLastNumberHasTheTownsOfTheLastCity) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    dic.CityList() = {dic.Node(world.nMinato), dic.Node(world.nFuchu)};
    CAddrList vAddr;
    EXPECT_TRUE(dic.GetTownFromNo(1, vAddr));
    EXPECT_THAT(TownNames(vAddr), ElementsAre("宮西町"));
}

TEST(TownList, OfANumberBehindTheLastFails) {
    CBrowsedDic dic(ChiyodaWith({"a"}));
    dic.CityList() = {dic.Node(1), dic.Node(1)};
    for (unsigned long nCity : {2ul, 1ul << 31, ULONG_MAX}) EXPECT_TRUE(Fails(dic, nCity)) << nCity;
}

TEST(TownList, OfANullCityFails) {
    CBrowsedDic dic(ChiyodaWith({"a"}));
    dic.CityList() = {nullptr};
    EXPECT_TRUE(Fails(dic, 0));
}

// --- one town only -------------------------------------------------------------------------------------------------

TEST(TownList, AskedForAgainHasItsFirstTownOnlyWhateverTheCity) {
    CBrowsedDic dic(ChiyodaWith({"a", "b"}));
    Listed(dic);
    dic.CityList().push_back(nullptr);
    for (unsigned long nCity : {0ul, 1ul, 0ul}) {
        CAddrList vAddr;
        EXPECT_TRUE(dic.GetTownFromNo(nCity, vAddr));
        EXPECT_THAT(TownNames(vAddr), ElementsAre("a")) << nCity;
    }
}

TEST(TownList, AskedForAgainKeepsAllItsNodes) {
    CBrowsedDic dic(ChiyodaWith({"a", "b"}));
    Listed(dic);
    CAddrList vAddr;
    EXPECT_TRUE(dic.GetTownFromNo(0, vAddr));
    EXPECT_THAT(dic.Numbers(dic.TownList()), ElementsAre(2, 3));
}

TEST(TownList, AfterATextThatNamesATownHasExactlyThatTown) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    CAddrList vPref, vTown;
    EXPECT_TRUE(dic.GetPrefFromCity("東京都千代田区旧町", vPref));
    EXPECT_TRUE(dic.GetTownFromNo(0, vTown));
    tagADDR expected(0);
    expected.pszTown = dic.Name(world.nOldTown);
    expected.pszTownKana = dic.Reading(world.nOldTown);
    expected.pszPostCode = dic.GetString(world.vInfo[world.nOldInfo].nCode);
    expected.pszCodeExt = expected.pszPostCode + 8;
    expected.pListCity = dic.Node(world.nOldTown);
    ASSERT_EQ(vTown.size(), 1u);
    EXPECT_EQ(Fields(vTown[0]), Fields(expected));
}

TEST(TownList, OfAFixedTownWithoutAnEntryHasNoCodes) {
    CTestImage image = ChiyodaWith({"a"});
    image.vNode[2].nInfo = ADDR_NONE;
    CBrowsedDic dic(image);
    Listed(dic);
    CAddrList vAddr;
    EXPECT_TRUE(dic.GetTownFromNo(0, vAddr));
    EXPECT_THAT(Codes(vAddr), ElementsAre("(null) (null)"));
}

TEST(TownList, OfAFixedTownHasItThoughItIsNameless) {
    CBrowsedDic dic(ChiyodaWith({""}));
    dic.CityList() = {dic.Node(1)};
    dic.TownList() = {dic.Node(2)};
    CAddrList vAddr;
    EXPECT_TRUE(dic.GetTownFromNo(0, vAddr));
    EXPECT_THAT(TownNames(vAddr), ElementsAre(""));
}

TEST(TownList, OfAFixedTownIsAppendedUnsorted) {
    CBrowsedDic dic(ChiyodaWith({"a"}));
    dic.SetSortType(SORT_ADDR);
    Listed(dic);
    CAddrList vAddr = {EarlierAddr(&tagADDR::pszTown, "z")};
    EXPECT_TRUE(dic.GetTownFromNo(0, vAddr));
    EXPECT_THAT(TownNames(vAddr), ElementsAre("z", "a"));
}

TEST(TownList, OfAFixedTownFailsForANumberBehindTheLast) {
    CBrowsedDic dic(ChiyodaWith({"a"}));
    Listed(dic);
    EXPECT_TRUE(Fails(dic, 1));
}

TEST(TownList, WhoseFirstEntryIsNullFailsAndKeepsItsEntries) {
    CBrowsedDic dic(ChiyodaWith({"a"}));
    dic.CityList() = {dic.Node(1)};
    dic.TownList() = {nullptr, dic.Node(2)};
    EXPECT_TRUE(Fails(dic, 0));
    EXPECT_THAT(dic.Numbers(dic.TownList()), ElementsAre(ADDR_NONE, 2));
}

// --- order ---------------------------------------------------------------------------------------------------------

TEST(TownList, IsSortedByNamesForTheSortTypeThatAsksForIt) {
    CBrowsedDic dic(ChiyodaWith({"c", "", "a", "b", "B"}));
    dic.SetSortType(9);
    EXPECT_THAT(TownNames(Listed(dic)), ElementsAre("B", "a", "b", "c"));
    EXPECT_THAT(dic.Numbers(dic.TownList()), ElementsAre(6, 4, 5, 2)) << "the nodes, too";
}

TEST(TownList, StaysInItsOwnOrderForEveryOtherSortType) {
    CBrowsedDic dic(ChiyodaWith({"c", "a", "b"}));
    EXPECT_THAT(TownNames(Listed(dic)), ElementsAre("c", "a", "b")) << "before one is set";
    for (unsigned short nType : OTHER_SORT_TYPES) {
        dic.SetSortType(nType);
        EXPECT_THAT(TownNames(Listed(dic)), ElementsAre("c", "a", "b")) << nType;
    }
}

TEST(TownList, KeepsTownsOfOneNameInTheirOrderWhenItIsSorted) {
    CBrowsedDic dic(ChiyodaWith(ManyOfTwoNames()));
    dic.SetSortType(SORT_ADDR);
    EXPECT_THAT(dic.Numbers(ListNodes(Listed(dic))), ElementsAreArray(ManyInOrder(2)));
}

TEST(TownList, IsSortedTogetherWithEarlierRecords) {
    CBrowsedDic dic(ChiyodaWith({"c", "a"}));
    dic.SetSortType(SORT_ADDR);
    dic.CityList() = {dic.Node(1)};
    CAddrList vAddr = {EarlierAddr(&tagADDR::pszTown, "b", dic.Node(0))};
    EXPECT_TRUE(dic.GetTownFromNo(0, vAddr));
    EXPECT_THAT(TownNames(vAddr), ElementsAre("a", "b", "c"));
    EXPECT_THAT(dic.Numbers(dic.TownList()), ElementsAre(3, 0, 2));
}

} // namespace
