// The prefectures of a city, and what its text fixes: the other beginning of browsing.
#include "tests/library/BrowseWorld.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

// 広島県 (node 0), 東京都 (node 1), and cities in index order: {number of the prefecture, name}; city n is node n + 2.
CTestImage CitiesOf(std::vector<std::pair<uint32_t, std::string>> const& vCity) {
    CTestImage image;
    image.AddNode(LEVEL_PREF, ADDR_NONE, "広島県", "ヒロシマケン");
    image.AddNode(LEVEL_PREF, ADDR_NONE, "東京都", "トウキョウト");
    image.nPrefCount = 2;
    image.nFirstCity = 2;
    for (auto const& [nPref, strName] : vCity) image.vCityIndex.push_back(image.AddNode(LEVEL_CITY, nPref, strName));
    return image;
}

std::vector<std::string> PrefsOf(CAddrDic& dic, char const* pszText) {
    CGuardedBytes const text(pszText, CGuardedBytes::ReadOnly);
    CAddrList vAddr;
    EXPECT_TRUE(dic.GetPrefFromCity(text.Text(), vAddr));
    return Texts(vAddr, &tagADDR::pszPref);
}

bool FindsNone(CAddrDic& dic, char const* pszText) {
    CAddrList vAddr;
    return !dic.GetPrefFromCity(pszText, vAddr) && vAddr.empty();
}

TEST(PrefsOfACity, OfATextThatBeginsWithAPrefectureAreWhatTheTextIsDividedInto) {
    CBrowsedDic dic((CTextWorld()));
    for (char const* psz : {"東京都", "東京都港区", "東京都千代田区丸の内２丁目", "広島県芝", "東京都　港区"}) {
        tagADDR expected(0);
        dic.DivideAddr(psz, &expected);
        CAddrList vAddr;
        EXPECT_TRUE(dic.GetPrefFromCity(psz, vAddr));
        ASSERT_EQ(vAddr.size(), 1u) << psz;
        EXPECT_EQ(Fields(vAddr[0]), Fields(expected)) << psz;
    }
}

TEST(PrefsOfACity, KeepTheNodeOfEachLevelThatTheTextNames) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    PrefsOf(dic, "東京都千代田区旧町");
    EXPECT_THAT(dic.Numbers(dic.PrefList()), ElementsAre(world.nTokyo));
    EXPECT_THAT(dic.Numbers(dic.CityList()), ElementsAre(world.nChiyodaKu));
    EXPECT_THAT(dic.Numbers(dic.TownList()), ElementsAre(world.nOldTown));
}

TEST(PrefsOfACity, KeepNoNodeOfALevelThatTheTextLacks) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    dic.PrefList() = dic.CityList() = dic.TownList() = {dic.Node(0), dic.Node(0)};
    PrefsOf(dic, "広島県");
    EXPECT_THAT(dic.Numbers(dic.PrefList()), ElementsAre(world.nHiroshima));
    EXPECT_THAT(dic.CityList(), IsEmpty());
    EXPECT_THAT(dic.TownList(), IsEmpty());
}

TEST(PrefsOfACity, LeadToExactlyTheCityThatTheTextNames) {
    CBrowsedDic dic((CTextWorld()));
    PrefsOf(dic, "東京都港区");
    CAddrList vAddr;
    EXPECT_TRUE(dic.GetCityFromNo(0, vAddr));
    EXPECT_THAT(CityNames(vAddr), ElementsAre("港区"));
}

TEST(PrefsOfACity, LeadToAllCitiesWhenTheTextNamesNone) {
    CBrowsedDic dic((CTextWorld()));
    PrefsOf(dic, "東京都");
    CAddrList vAddr;
    EXPECT_TRUE(dic.GetCityFromNo(0, vAddr)) << "by the position in the answer, not by 東京都's number";
    EXPECT_THAT(CityNames(vAddr), ElementsAre("千代田区", "港区", "府中市"));
}

TEST(PrefsOfACity, AreAllThatHaveACityOfTheName) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    EXPECT_THAT(PrefsOf(dic, "府中市"), ElementsAre("東京都", "広島県"));
    EXPECT_THAT(dic.Numbers(dic.PrefList()), ElementsAre(world.nTokyo, world.nHiroshima));
}

TEST(PrefsOfACity, HaveNamesAndListNodesButNoReadings) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    CAddrList vAddr;
    EXPECT_TRUE(dic.GetPrefFromCity("府中市", vAddr));
    tagADDR expected(0);
    expected.pszPref = dic.Name(world.nTokyo);
    expected.pListCity = dic.Node(world.nTokyo);
    EXPECT_EQ(Fields(vAddr.at(0)), Fields(expected));
}

TEST(PrefsOfACity, FixTheFirstCityOfTheNameWhateverPrefectureIsChosen) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    PrefsOf(dic, "府中市宮西町");
    EXPECT_THAT(dic.Numbers(dic.CityList()), ElementsAre(world.nFuchu));
    EXPECT_THAT(dic.Numbers(dic.TownList()), ElementsAre(world.nMiyanishi));
    CAddrList vAddr;
    EXPECT_TRUE(dic.GetCityFromNo(1, vAddr)) << "広島県";
    EXPECT_THAT(dic.Numbers(ListNodes(vAddr)), ElementsAre(world.nFuchu));
}

TEST(PrefsOfACity, StandInTheOrderInWhichTheSearchMeetsThem) {
    CBrowsedDic dic(CitiesOf({{1, "!"}, {1, "a"}, {0, "a"}, {1, "a"}, {1, "b"}})); // position 2 is probed first
    EXPECT_THAT(PrefsOf(dic, "a"), ElementsAre("広島県", "東京都"));
    EXPECT_THAT(dic.Numbers(dic.PrefList()), ElementsAre(0, 1)) << "each once, by the first city that led to it";
}

TEST(PrefsOfACity, HaveNoUseForASortType) {
    CBrowsedDic dic(CitiesOf({{1, "!"}, {0, "a"}, {1, "a"}, {1, "b"}}));
    dic.SetSortType(SORT_ADDR);
    EXPECT_THAT(PrefsOf(dic, "a"), ElementsAre("広島県", "東京都")) << "sorted, 東京都 would be the first";
}

TEST(PrefsOfACity, AreAppendedWithoutThoseThatTheAnswerHolds) {
    std::string const strTokyo = "東京都"; // not the image's own text
    CTextWorld const world;
    CBrowsedDic dic(world);
    CAddrList vAddr = {tagADDR(0), EarlierAddr(&tagADDR::pszPref, strTokyo.c_str())};
    EXPECT_TRUE(dic.GetPrefFromCity("府中市", vAddr));
    EXPECT_THAT(Texts(vAddr, &tagADDR::pszPref), ElementsAre("(null)", "東京都", "広島県"));
    EXPECT_THAT(dic.Numbers(dic.PrefList()), ElementsAre(world.nHiroshima));
}

TEST(PrefsOfACity, AreTheSameWhenTheirWholeNamesAre) {
    for (auto const& [strName, vExpected] : std::vector<std::pair<std::string, std::vector<std::string>>>{
             {"広島県", {"広島県"}}, {"広島", {"広島県", "広島"}}, {"広島県庁", {"広島県", "広島県庁"}}}) {
        CTestImage image = CitiesOf({{1, "!"}, {0, "a"}, {1, "a"}, {1, "b"}});
        image.vNode[1].nName = image.AddText(strName);
        CBrowsedDic dic(image);
        EXPECT_EQ(PrefsOf(dic, "a"), vExpected);
    }
}

TEST(PrefsOfACity, LackThoseWithoutAReadableName) {
    CTestImage image = CitiesOf({{1, "!"}, {0, "a"}, {1, "a"}, {1, "b"}});
    image.vNode[0].nName = static_cast<uint32_t>(image.strArea.size());
    image.nFirstPref = 1; // the analysis of the text ends at such a prefecture
    image.nPrefCount = 1;
    CBrowsedDic dic(image);
    EXPECT_THAT(PrefsOf(dic, "a"), ElementsAre("東京都"));
    EXPECT_THAT(dic.Numbers(dic.PrefList()), ElementsAre(1));
}

TEST(PrefsOfACity, EndAtACityWithoutAPrefecture) {
    for (uint32_t nParent : {5u + 2, 0x80000000u, ADDR_NONE}) {
        CBrowsedDic dic(CitiesOf({{1, "!"}, {0, "a"}, {0, "a"}, {nParent, "a"}, {1, "a"}})); // position 2 is first
        EXPECT_THAT(PrefsOf(dic, "a"), ElementsAre("広島県")) << nParent;
    }
}

TEST(PrefsOfACity, WhoseFirstCityHasNoPrefectureAreNoneAndNoFailure) {
    CBrowsedDic dic(CitiesOf({{1, "!"}, {ADDR_NONE, "a"}, {1, "a"}}));
    EXPECT_THAT(PrefsOf(dic, "a"), IsEmpty());
}

TEST(PrefsOfACity, AreNotFoundForTheFirstCityOfTheIndex) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    EXPECT_TRUE(FindsNone(dic, "千代田区"));
    EXPECT_THAT(dic.PrefList(), IsEmpty());
    EXPECT_THAT(dic.Numbers(dic.CityList()), ElementsAre(world.nChiyodaKu)) << "the text names it all the same";
}

TEST(PrefsOfACity, AreFoundForTheFirstCityOfTheIndexByTheEndOfItsName) {
    CBrowsedDic dic(CitiesOf({{1, "a" KU}, {0, "b" KU}}));
    EXPECT_THAT(PrefsOf(dic, "a" KU), ElementsAre("東京都"));
}

TEST(PrefsOfACity, AreNotFoundForATownAlone) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    EXPECT_TRUE(FindsNone(dic, "元町"));
    EXPECT_THAT(dic.Numbers(dic.TownList()), ElementsAre(world.nMotomachi)) << "the text names it all the same";
}

TEST(PrefsOfACity, OfAnUnknownTextAreNoneAndEmptyTheLists) {
    CBrowsedDic dic((CTextWorld()));
    for (char const* psz : {"", "x", "府中", " 府中市", "東京", "\xE5"}) {
        dic.PrefList() = dic.CityList() = dic.TownList() = {dic.Node(0)};
        EXPECT_TRUE(FindsNone(dic, psz)) << psz;
        EXPECT_TRUE(dic.PrefList().empty() && dic.CityList().empty() && dic.TownList().empty()) << psz;
    }
}

TEST(PrefsOfACity, OfNullAreNoneAndKeepTheLists) {
    CBrowsedDic dic((CTextWorld()));
    dic.PrefList() = dic.CityList() = dic.TownList() = {dic.Node(0)};
    EXPECT_TRUE(FindsNone(dic, nullptr));
    for (CNodeList const& vNode : {dic.PrefList(), dic.CityList(), dic.TownList()})
        EXPECT_THAT(dic.Numbers(vNode), ElementsAre(0));
}

TEST(PrefsOfACity, WithoutADictionaryAreNone) {
    CAddrDic dic;
    for (char const* psz : {"", "東京都", "府中市", "a" KU}) EXPECT_TRUE(FindsNone(dic, psz)) << psz;
}

} // namespace
