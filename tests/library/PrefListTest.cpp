// All prefectures: the first answer of browsing, by their numbers.
#include "tests/library/BrowseWorld.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsNull;
using testing::SizeIs;

// Prefectures in node order as given.
CTestImage Prefs(std::vector<std::string> const& vName) {
    CTestImage image;
    for (std::string const& str : vName)
        image.AddNode(LEVEL_PREF, ADDR_NONE, str, "reading of " + std::to_string(image.vNode.size()));
    image.Complete();
    return image;
}

// The name of row n of the order of prefectures, in UTF-8.
char const* NameOf(int nRow) {
    return pref_order[nRow] + PREF_ORDER_NAME;
}

CTestImage AllBackwards() {
    std::vector<std::string> vName;
    for (int nRow = PREF_ORDER_ROWS - 1; nRow >= 0; --nRow) vName.emplace_back(NameOf(nRow));
    return Prefs(vName);
}

CAddrList Listed(CAddrDic& dic) {
    CAddrList vAddr;
    EXPECT_TRUE(dic.GetPref(vAddr));
    return vAddr;
}

// Names and readings of those that are not blank, by their numbers.
std::vector<std::string> Lines(CAddrList const& vAddr) {
    std::vector<std::string> vLine;
    for (size_t n = 0; n < vAddr.size(); ++n)
        if (!Filled(vAddr[n]).empty())
            vLine.push_back(std::to_string(n) + " " + Shown(vAddr[n].pszPref) + " " + Shown(vAddr[n].pszPrefKana));
    return vLine;
}

// --- numbers -------------------------------------------------------------------------------------------------------

TEST(PrefList, HasAllPrefecturesInTheOrderOfTheirNumbers) {
    CBrowsedDic dic(AllBackwards());
    CAddrList const vAddr = Listed(dic);
    ASSERT_THAT(vAddr, SizeIs(47));
    for (size_t n = 0; n < vAddr.size(); ++n) EXPECT_STREQ(vAddr[n].pszPref, NameOf(static_cast<int>(n)));
}

TEST(PrefList, HasHokkaidoFirstTokyoAtTwelveAndOkinawaLast) {
    CBrowsedDic dic(AllBackwards());
    CAddrList const vAddr = Listed(dic);
    ASSERT_THAT(vAddr, SizeIs(47));
    EXPECT_STREQ(vAddr[0].pszPref, "北海道");
    EXPECT_STREQ(vAddr[12].pszPref, "東京都");
    EXPECT_STREQ(vAddr[46].pszPref, "沖縄県");
}

TEST(PrefList, KeepsItsNodesByTheSameNumbers) {
    CBrowsedDic dic(AllBackwards());
    Listed(dic);
    std::vector<uint32_t> vExpected;
    for (uint32_t n = 47; n > 0; --n) vExpected.push_back(n - 1);
    EXPECT_EQ(dic.Numbers(dic.PrefList()), vExpected);
}

TEST(PrefList, HasTheImagesOwnNamesAndReadings) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    CAddrList const vAddr = Listed(dic);
    ASSERT_THAT(vAddr, SizeIs(34));
    EXPECT_EQ(vAddr[NO_TOKYO].pszPref, dic.Name(world.nTokyo));
    EXPECT_EQ(vAddr[NO_TOKYO].pszPrefKana, dic.Reading(world.nTokyo));
    EXPECT_EQ(vAddr[NO_HIROSHIMA].pszPref, dic.Name(world.nHiroshima));
    EXPECT_EQ(vAddr[NO_HIROSHIMA].pszPrefKana, dic.Reading(world.nHiroshima));
}

TEST(PrefList, WritesNamesAndReadingsOnly) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    EXPECT_THAT(Filled(Listed(dic).at(NO_TOKYO)), ElementsAre("pszPref", "pszPrefKana")) << "no list node, too";
}

TEST(PrefList, HasABlankRecordForAPrefectureThatIsNotThere) {
    CBrowsedDic dic(Prefs({"青森県", "宮城県", "北海道", "秋田県"}));
    CAddrList const vAddr = Listed(dic);
    ASSERT_THAT(vAddr, SizeIs(5));
    EXPECT_THAT(Filled(vAddr[2]), IsEmpty()) << "岩手県";
}

TEST(PrefList, KeepsANullNodeForAPrefectureThatIsNotThere) {
    CBrowsedDic dic(Prefs({"青森県", "宮城県", "北海道", "秋田県"}));
    Listed(dic);
    EXPECT_THAT(dic.Numbers(dic.PrefList()), ElementsAre(2, 0, ADDR_NONE, 1, 3));
}

TEST(PrefList, HasTheLaterOfTwoPrefecturesWithOneName) {
    CBrowsedDic dic(Prefs({"北海道", "青森県", "北海道"}));
    EXPECT_THAT(Lines(Listed(dic)), ElementsAre("0 北海道 reading of 2", "1 青森県 reading of 1"));
    EXPECT_THAT(dic.Numbers(dic.PrefList()), ElementsAre(2, 1, ADDR_NONE));
}

// --- names that the order does not know ----------------------------------------------------------------------------

TEST(PrefList, PutsAnUnknownPrefectureInThePlaceOfTheOneBeforeIt) {
    CBrowsedDic dic(Prefs({"北海道", "樺太庁", "青森県"}));
    EXPECT_THAT(Lines(Listed(dic)), ElementsAre("0 樺太庁 reading of 1", "1 青森県 reading of 2"));
    EXPECT_THAT(dic.Numbers(dic.PrefList()), ElementsAre(1, 2, ADDR_NONE));
}

TEST(PrefList, LeavesOutAnUnknownPrefectureBeforeTheFirstKnownOne) {
    CBrowsedDic dic(Prefs({"樺太庁", "青森県"}));
    EXPECT_THAT(Lines(Listed(dic)), ElementsAre("1 青森県 reading of 1"));
    EXPECT_THAT(dic.Numbers(dic.PrefList()), ElementsAre(ADDR_NONE, 1));
}

TEST(PrefList, KnowsWholeNamesOnly) {
    CBrowsedDic dic(Prefs({"東京", "東京都庁", "", "12", "都"}));
    EXPECT_THAT(Lines(Listed(dic)), IsEmpty());
}

TEST(PrefList, LeavesOutAnUnreadableNameBeforeTheFirstKnownOne) {
    CTestImage image = Prefs({"樺太庁", "青森県"});
    image.vNode[0].nName = static_cast<uint32_t>(image.strArea.size());
    CBrowsedDic dic(image);
    EXPECT_THAT(Lines(Listed(dic)), ElementsAre("1 青森県 reading of 1"));
}

TEST(PrefList, EndsAtAnUnreadableNameBehindAKnownOne) {
    for (uint32_t nBehind : {0u, 1u, 1000u, 0x7FFFFFFFu}) {
        CTestImage image = Prefs({"北海道", "樺太庁", "青森県"});
        image.vNode[1].nName = static_cast<uint32_t>(image.strArea.size()) + nBehind;
        CBrowsedDic dic(image);
        CAddrList vAddr;
        EXPECT_FALSE(dic.GetPref(vAddr)) << "there is no reading, either";
        EXPECT_THAT(Lines(vAddr), ElementsAre("0 (null) reading of 0"));
        EXPECT_THAT(dic.Numbers(dic.PrefList()), ElementsAre(0, ADDR_NONE, ADDR_NONE));
    }
}

// --- readings at the end of the string area ------------------------------------------------------------------------

// Two prefectures, and a third whose reading begins where the string area ends.
CTestImage WithoutTheLastReading() {
    CTestImage image = Prefs({"北海道", "青森県", "岩手県"});
    image.strArea.resize(image.vNode[2].nName + std::strlen("岩手県") + 1);
    return image;
}

TEST(PrefList, FailsAtAReadingBehindTheStringArea) {
    CBrowsedDic dic(WithoutTheLastReading());
    CAddrList vAddr;
    EXPECT_FALSE(dic.GetPref(vAddr));
}

TEST(PrefList, KeepsTheRecordsBeforeAReadingThatIsNotThere) {
    CBrowsedDic dic(WithoutTheLastReading());
    CAddrList vAddr;
    dic.GetPref(vAddr);
    EXPECT_THAT(Lines(vAddr), ElementsAre("0 北海道 reading of 0", "1 青森県 reading of 1", "2 岩手県 (null)"));
    EXPECT_THAT(dic.Numbers(dic.PrefList()), ElementsAre(0, 1, ADDR_NONE));
}

TEST(PrefList, LooksAtNoPrefectureBehindAReadingThatIsNotThere) {
    CTestImage image = WithoutTheLastReading();
    std::swap(image.vNode[0], image.vNode[2]);
    CBrowsedDic dic(image);
    CAddrList vAddr;
    EXPECT_FALSE(dic.GetPref(vAddr));
    EXPECT_THAT(Lines(vAddr), ElementsAre("2 岩手県 (null)"));
}

TEST(PrefList, TakesAnEmptyReadingThatIsTheLastByteOfTheStringArea) {
    CTestImage image = WithoutTheLastReading();
    image.strArea.push_back('\0');
    CBrowsedDic dic(image);
    EXPECT_THAT(Lines(Listed(dic)), ElementsAre("0 北海道 reading of 0", "1 青森県 reading of 1", "2 岩手県 "));
}

TEST(PrefList, FailsAtANameThatTheStringAreaCutsOff) {
    CTestImage image = WithoutTheLastReading();
    image.strArea.pop_back();
    CBrowsedDic dic(image);
    CAddrList vAddr;
    EXPECT_FALSE(dic.GetPref(vAddr));
}

TEST(PrefList, FailsAtAReadingThatTheStringAreaCutsOff) {
    CTestImage image = WithoutTheLastReading();
    image.strArea += "イワテ";
    CBrowsedDic dic(image);
    CAddrList vAddr;
    EXPECT_FALSE(dic.GetPref(vAddr)) << "a text without an end is no text";
    EXPECT_THAT(vAddr.at(2).pszPrefKana, IsNull());
}

// --- numbers of records --------------------------------------------------------------------------------------------

TEST(PrefList, HasARecordForEachPrefectureThatTheHeaderCounts) {
    CTestImage image = Prefs({"北海道", "青森県"});
    image.nPrefCount = 5; // more than there are nodes
    CBrowsedDic dic(image);
    EXPECT_THAT(Listed(dic), SizeIs(5));
    EXPECT_THAT(dic.Numbers(dic.PrefList()), ElementsAre(0, 1, ADDR_NONE, ADDR_NONE, ADDR_NONE));
}

TEST(PrefList, HasNoMoreBlankRecordsThanThereAreNumbers) {
    for (uint32_t nCount : {47u, 48u, 0x80000000u, 0xFFFFFFFFu}) {
        CTestImage image = Prefs({"北海道", "青森県"});
        image.nPrefCount = nCount;
        CBrowsedDic dic(image);
        EXPECT_THAT(Listed(dic), SizeIs(47)) << nCount;
        EXPECT_THAT(dic.PrefList(), SizeIs(47)) << nCount;
    }
}

TEST(PrefList, HasMoreThanThatWhenThereAreMoreNodes) {
    CTestImage image = Prefs(std::vector<std::string>(60, "北海道"));
    CBrowsedDic dic(image);
    EXPECT_THAT(Listed(dic), SizeIs(60));
    image.nPrefCount = 1000;
    CBrowsedDic larger(image);
    EXPECT_THAT(Listed(larger), SizeIs(60));
}

TEST(PrefList, GrowsForANumberBehindTheCount) {
    CBrowsedDic dic(Prefs({"沖縄県"}));
    CAddrList const vAddr = Listed(dic);
    EXPECT_THAT(vAddr, SizeIs(47));
    EXPECT_THAT(Lines(vAddr), ElementsAre("46 沖縄県 reading of 0"));
}

TEST(PrefList, GrowsItsNodesForANumberBehindTheCount) {
    CBrowsedDic dic(Prefs({"沖縄県"}));
    Listed(dic);
    std::vector<uint32_t> vExpected(47, ADDR_NONE);
    vExpected[46] = 0;
    EXPECT_EQ(dic.Numbers(dic.PrefList()), vExpected);
}

TEST(PrefList, BeginsAtTheFirstPrefectureAndEndsWithTheLast) {
    CTestImage image = Prefs({"北海道", "青森県", "岩手県", "宮城県"});
    image.nFirstPref = 1;
    image.nPrefCount = 2;
    CBrowsedDic dic(image);
    EXPECT_THAT(Lines(Listed(dic)), ElementsAre("1 青森県 reading of 1", "2 岩手県 reading of 2"));
}

TEST(PrefList, EndsWithTheNodeTable) {
    for (uint32_t nFirst : {2u, 3u, 0x80000000u, 0xFFFFFFFFu}) {
        CTestImage image = Prefs({"北海道", "青森県"});
        image.nFirstPref = nFirst;
        CBrowsedDic dic(image);
        EXPECT_THAT(Lines(Listed(dic)), IsEmpty()) << nFirst;
        EXPECT_THAT(dic.PrefList(), ElementsAre(IsNull(), IsNull())) << nFirst;
    }
}

TEST(PrefList, OfADictionaryWithoutPrefecturesIsEmpty) {
    CBrowsedDic dic((CTestImage()));
    EXPECT_THAT(Listed(dic), IsEmpty());
    EXPECT_THAT(dic.PrefList(), IsEmpty());
}

TEST(PrefList, OfNoDictionaryIsEmpty) {
    CAddrDic dic;
    EXPECT_THAT(Listed(dic), IsEmpty());
}

// --- the lists and the answer --------------------------------------------------------------------------------------

TEST(PrefList, EmptiesTheListsOfCitiesAndTowns) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    dic.CityList() = {dic.Node(world.nMinato)};
    dic.TownList() = {dic.Node(world.nShiba)};
    Listed(dic);
    EXPECT_THAT(dic.CityList(), IsEmpty());
    EXPECT_THAT(dic.TownList(), IsEmpty());
}

TEST(PrefList, EmptiesTheListsOfCitiesAndTownsAlsoWhenItFails) {
    CBrowsedDic dic(WithoutTheLastReading());
    dic.CityList() = dic.TownList() = {dic.Node(0)};
    CAddrList vAddr;
    dic.GetPref(vAddr);
    EXPECT_THAT(dic.CityList(), IsEmpty());
    EXPECT_THAT(dic.TownList(), IsEmpty());
}

TEST(PrefList, ReplacesItsNodes) {
    CBrowsedDic dic(Prefs({"北海道", "青森県"}));
    dic.PrefList().assign(99, dic.Node(0));
    Listed(dic);
    EXPECT_THAT(dic.Numbers(dic.PrefList()), ElementsAre(0, 1));
}

TEST(PrefList, AppendsItsBlankRecordsToTheAnswerAndNumbersTheWholeOfIt) {
    CBrowsedDic dic(Prefs({"北海道", "青森県"}));
    CAddrList vAddr = {EarlierAddr(&tagADDR::pszNote, "a"), EarlierAddr(&tagADDR::pszNote, "b"),
                       EarlierAddr(&tagADDR::pszNote, "c")};
    EXPECT_TRUE(dic.GetPref(vAddr));
    EXPECT_THAT(Texts(vAddr, &tagADDR::pszNote), ElementsAre("a", "b", "c", "(null)", "(null)"));
    EXPECT_THAT(Texts(vAddr, &tagADDR::pszPref), ElementsAre("北海道", "青森県", "(null)", "(null)", "(null)"));
}

TEST(PrefList, WritesNothingElseIntoARecordThatWasThereBefore) {
    CBrowsedDic dic(Prefs({"北海道"}));
    CAddrList vAddr = {MarkedAddr()};
    EXPECT_TRUE(dic.GetPref(vAddr));
    EXPECT_THAT(Changed(vAddr[0]), ElementsAre("pszPref", "pszPrefKana"));
}

TEST(PrefList, HasNoUseForASortType) {
    CBrowsedDic dic(Prefs({"青森県", "宮城県", "北海道", "秋田県"}));
    dic.SetSortType(SORT_ADDR);
    EXPECT_THAT(Texts(Listed(dic), &tagADDR::pszPref), ElementsAre("北海道", "青森県", "(null)", "宮城県", "秋田県"))
        << "a blank record would be the first";
}

} // namespace
