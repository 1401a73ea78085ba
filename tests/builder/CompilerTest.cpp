// From rows to the tree: small tables, written here as rows, and what the image made of them holds.
#include "tests/builder/World.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <set>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

std::string const HEAD = "0 東京都|ケン\n"
                         "  1 千代田区|シ\n";
std::string const HEAD_1000 = "0 東京都|ケン\n"
                              "  1 千代田区|シ|1000000|100\n";

} // namespace

// --- levels ---

TEST(Compiler, APlainTownIsANodeBelowItsCity) {
    EXPECT_EQ(CWorld({Town("千代田", "チヨダ", "1000001")}).Tree(), HEAD + "    2 千代田|チヨダ|1000001|100\n");
}

TEST(Compiler, WhatIsNotListedBelowIsANamelessTown) {
    EXPECT_EQ(CWorld({Town("以下に掲載がない場合", "イカニケイサイガナイバアイ", "1000000")}).Tree(),
              HEAD_1000 + "    2 -||1000000|100\n");
}

TEST(Compiler, ANumberListIsALevelThreeNodeWithTheCode) {
    EXPECT_EQ(CWorld({Town("大通西（１〜１９丁目）", "オオドオリニシ（１−１９チョウメ）", "0600042")}).Tree(),
              HEAD + "    2 大通西|オオドオリニシ|0600042|100\n"
                     "      3 １〜１９丁目|１−１９チョウメ|0600042|100\n");
}

TEST(Compiler, EveryPlaceOfAListIsALevelThreeNodeWithTheCode) {
    EXPECT_EQ(CWorld({Town("抜海村（上勇知、夕来）", "バッカイムラ（カミユウチ、ユウクル）", "0984581")}).Tree(),
              HEAD + "    2 抜海村|バッカイムラ|0984581|100\n"
                     "      3 上勇知|カミユウチ|0984581|100\n"
                     "      3 夕来|ユウクル|0984581|100\n");
}

TEST(Compiler, TheOthersGiveTheTownItsOwnCode) {
    EXPECT_EQ(CWorld({Town("抜海村（夕来）", "バッカイムラ（ユウクル）", "0984581"),
                      Town("抜海村（その他）", "バッカイムラ（ソノタ）", "0970037")})
                  .Tree(),
              HEAD + "    2 抜海村|バッカイムラ|0970037|100\n"
                     "      3 夕来|ユウクル|0984581|100\n");
}

TEST(Compiler, TheOthersWithinAListGiveTheTownAndThePlacesTheCode) {
    EXPECT_EQ(CWorld({Town("中町（１丁目、その他）", "ナカ（１チョウメ、ソノタ）", "1000009")}).Tree(),
              HEAD + "    2 中町|ナカ|1000009|100\n"
                     "      3 １丁目|１チョウメ|1000009|100\n");
}

TEST(Compiler, AFloorIsALevelSixNodeBelowItsBuilding) {
    EXPECT_EQ(CWorld({Town("中央（次のビルを除く）", "チュウオウ（ツギノビルヲノゾク）", "9800021"),
                      Town("中央アエル（地階・階層不明）", "チュウオウアエル（チカイ・カイソウフメイ）", "9806190"),
                      Town("中央アエル（１階）", "チュウオウアエル（１カイ）", "9806101"),
                      Town("中央アエル（２階）", "チュウオウアエル（２カイ）", "9806102")})
                  .Tree(),
              HEAD + "    2 中央|チュウオウ|9800021|100\n"
                     "      4 アエル|アエル|9806190|100\n"
                     "        6 １階||9806101|100\n"
                     "        6 ２階||9806102|100\n");
}

TEST(Compiler, LotsAreALevelThreeNode) {
    EXPECT_EQ(CWorld({Town("種市第２２地割〜種市第２３地割（一区）",
                           "タネイチダイ２２チワリ−タネイチダイ２３チワリ（イック）", "0287915")})
                  .Tree(),
              HEAD + "    2 種市|タネイチ|0287915|100\n"
                     "      3 第２２地割〜第２３地割（一区）|ダイ２２チワリ−ダイ２３チワリ（イック）|0287915|100\n");
}

TEST(Compiler, TheTreeEndsAtTheLevelAskedFor) {
    CWorld const world({Town("中央（１丁目）", "チュウオウ（１チョウメ）", "9800021"),
                        Town("中央アエル（１階）", "チュウオウアエル（１カイ）", "9806101")},
                       {Office("役場", "中央", "１")});
    EXPECT_EQ(world.Tree(LEVEL_PREF), "0 東京都|ケン\n");
    EXPECT_EQ(world.Tree(LEVEL_CITY), HEAD);
    EXPECT_EQ(world.Tree(LEVEL_TOWN), HEAD + "    2 中央|チュウオウ\n");
    EXPECT_EQ(world.Tree(LEVEL_AREA), HEAD + "    2 中央|チュウオウ\n"
                                             "      3 １丁目|１チョウメ|9800021|100\n"
                                             "      3 １\n");
}

// --- what the city refers to ---

TEST(Compiler, TheCityRefersToTheEntryOfItsNamelessTown) {
    CWorld const world({Town("千代田", "チヨダ", "1000001"), Town("以下に掲載がない場合", "イカニ", "1000000")});
    EXPECT_EQ(world.CityRefersTo(), "1000000 ");
}

TEST(Compiler, TheCityRefersToItsWhole) {
    CWorld const world({CTown{"東京都", "利島村", "利島村一円", "トシマムライチエン", "1000301"}});
    EXPECT_EQ(world.CityRefersTo(), "1000301 ");
}

TEST(Compiler, TheCityRefersToItsNumbersWhenNothingElseIsThere) {
    CWorld const world({CTown{"岡山県", "真庭郡新庄村", "新庄村の次に番地がくる場合",
                              "シンジョウソンノツギニバンチガクルバアイ", "7170201"}});
    EXPECT_EQ(world.CityRefersTo(), "7170201 ");
}

TEST(Compiler, TheCityRefersToTheFirstOfItsOwnNumberRanges) {
    CTown town{"山梨県", "北都留郡小菅村", "小菅村の次に１〜６６３番地がくる場合", "", "4090142"};
    CTown next{"山梨県", "北都留郡小菅村", "小菅村の次に６６４番地以降がくる場合", "", "4090211"};
    EXPECT_EQ(CWorld({town, next}).CityRefersTo(), "4090142 １〜６６３番地");
    EXPECT_EQ(CWorld({next, town}).CityRefersTo(), "4090211 ６６４番地以降");
}

TEST(Compiler, WhatIsNotListedWinsOverNumbersWhicheverComesFirst) {
    CTown numbers{"茨城県", "猿島郡境町", "境町の次に番地がくる場合", "", "3060433"};
    CTown whole{"茨城県", "猿島郡境町", "以下に掲載がない場合", "", "3060400"};
    EXPECT_EQ(CWorld({whole, numbers}).CityRefersTo(), "3060400 ");
    EXPECT_EQ(CWorld({numbers, whole}).CityRefersTo(), "3060400 ");
}

TEST(Compiler, BothNamelessTownsOfACityStandInTheTree) {
    CTown numbers{"茨城県", "猿島郡境町", "境町の次に番地がくる場合", "", "3060433"};
    CTown whole{"茨城県", "猿島郡境町", "以下に掲載がない場合", "", "3060400"};
    CWorld const world({whole, numbers});
    EXPECT_THAT(world.Names('2'), ElementsAre("-||3060400|100", "-||3060433|100"));
    EXPECT_EQ(world.Count("nameless_towns_repeated"), 1u);
}

TEST(Compiler, TheFirstOfSeveralWholesIsTheCitys) {
    CWorld const world({Town("以下に掲載がない場合", "", "1000009"), Town("以下に掲載がない場合", "", "1000000")});
    EXPECT_EQ(world.CityRefersTo(), "1000009 ");
}

TEST(Compiler, ACityWithoutAnyOfTheseRefersToNothing) {
    CWorld const world({Town("千代田", "チヨダ", "1000001")});
    EXPECT_EQ(world.CityRefersTo(), "none");
    EXPECT_EQ(world.Count("cities_without_code"), 1u);
}

TEST(Compiler, ARangeBehindATownsNameIsNotTheCitys) {
    CWorld const world({CTown{"長崎県", "西海市", "大島町の次に番地がくる場合", "", "8572427"}});
    EXPECT_EQ(world.CityRefersTo(), "none");
    EXPECT_THAT(world.Names('2'), ElementsAre("大島町||8572427|100"));
}

// --- a town whose places all have one code ---

namespace {

// Code of the entry that the first town refers to and the name of that entry's node; "none" when it refers to none.
std::string TownRefersTo(CWorld const& world) {
    tagADDRNODE const* const pTown = world.Dic().GetAddrNode(world.Word(HDR_FIRST_TOWN));
    tagADDRINFO const* const pInfo = world.Dic().GetAddrInfo(pTown->nInfo);
    return pInfo == nullptr ? "none" : world.Dic().GetString(pInfo->nCode) + (" " + world.Name(pInfo->nNode));
}

} // namespace

TEST(SingleCode, ATownRefersToTheFirstOfItsPlacesOfOneCode) {
    CWorld const world(
        {Town("北四条東（３丁目）", "", "0600034"), Town("北四条東（１丁目、２丁目）", "", "0600034")});
    EXPECT_EQ(TownRefersTo(world), "0600034 ３丁目");
    EXPECT_EQ(world.Count("towns_with_the_one_code_of_their_areas"), 1u);
    EXPECT_EQ(world.Count("towns_with_several_codes_and_no_default"), 0u);
}

TEST(SingleCode, TheEntryKeepsItsPlace) {
    CWorld world({Town("北四条東（３丁目）", "", "0600034")});
    EXPECT_EQ(world.Count("entries"), 1u);
    std::vector<tagADDR> vAddr;
    ASSERT_EQ(world.Dic().GetAddrFromPostCode7("0600034", vAddr), 1);
    ASSERT_EQ(vAddr.size(), 1u);
    EXPECT_STREQ(vAddr[0].pszArea, "３丁目");
}

TEST(SingleCode, AnAddressInItFindsTheCodeWhateverItsNumber) {
    CWorld world({Town("北四条東（３丁目）", "", "0600034")});
    tagADDR addr(0);
    world.Dic().DivideAddr("東京都千代田区北四条東８丁目", &addr);
    EXPECT_STREQ(addr.pszPostCode, "0600034");
    EXPECT_STREQ(addr.pszArea, "８丁目");
}

TEST(SingleCode, PlacesOfTwoCodesLeaveTheTownWithoutOne) {
    CWorld const world({Town("北四条東（１丁目）", "", "0600034"), Town("北四条東（２丁目）", "", "0600035"),
                        Town("北四条東（３丁目）", "", "0600034")});
    EXPECT_EQ(TownRefersTo(world), "none");
    EXPECT_EQ(world.Count("towns_with_the_one_code_of_their_areas"), 0u);
    EXPECT_EQ(world.Count("towns_with_several_codes_and_no_default"), 1u);
}

TEST(SingleCode, BuildingsAndFloorsArePlacesOfTheirTown) {
    CWorld const one({Town("中央（１丁目）", "", "9800021"), Town("中央アエル（１階）", "", "9800021")});
    EXPECT_EQ(TownRefersTo(one), "9800021 １丁目");
    CWorld const two({Town("中央（１丁目）", "", "9800021"), Town("中央アエル（１階）", "", "9806101")});
    EXPECT_EQ(TownRefersTo(two), "none");
    EXPECT_EQ(two.Count("towns_with_several_codes_and_no_default"), 1u);
}

TEST(SingleCode, OrganisationsHaveNoSay) {
    CWorld const world({Town("中央（１丁目）", "", "9800021")},
                       {Office("役場", "中央", "１"), Office("駅", "北", "")});
    EXPECT_EQ(TownRefersTo(world), "9800021 １丁目");
    EXPECT_THAT(world.Names('2'),
                ElementsAre("中央||9800021|100", "北")); // a town of organisations alone has no code
    EXPECT_EQ(world.Count("towns_with_the_one_code_of_their_areas"), 1u);
    EXPECT_EQ(world.Count("towns_with_several_codes_and_no_default"), 0u);
}

TEST(SingleCode, ATownWithACodeOfItsOwnKeepsIt) {
    CWorld const world({Town("中央（１丁目）", "", "9800021"), Town("中央（その他）", "", "9800022")});
    EXPECT_EQ(TownRefersTo(world), "9800022 中央");
    EXPECT_EQ(world.Count("towns_with_the_one_code_of_their_areas"), 0u);
    EXPECT_EQ(world.Count("towns_with_several_codes_and_no_default"), 0u);
}

TEST(SingleCode, TheNamelessTownIsNoSuchTown) {
    CWorld const world({CTown{"山梨県", "北都留郡小菅村", "小菅村の次に１〜６６３番地がくる場合", "", "4090142"}});
    EXPECT_THAT(world.Names('2'), ElementsAre("-"));
    EXPECT_EQ(world.Count("towns_with_the_one_code_of_their_areas"), 0u);
}

// --- entries and nodes ---

namespace {

std::vector<CTown> const MIXED = {Town("以下に掲載がない場合", "イカニ", "1000000"),
                                  Town("千代田", "チヨダ", "1000001"),
                                  Town("大手町（次のビルを除く）", "オオテ", "1000004"),
                                  Town("大手町ＪＡビル（１階）", "オオテビル", "1006801"),
                                  Town("一ツ橋（１、２丁目、その他）", "ヒトツ", "1000003"),
                                  Town("一ツ橋（３丁目）", "ヒトツ", "1010003"),
                                  Town("千代田", "チヨダ", "1000011")};
std::vector<COffice> const MIXED_OFFICES = {Office("宮内庁", "千代田", "１−１"), Office("衆議院", "永田町", ""),
                                            Office("役場", "", "１", "1008112")};

} // namespace

TEST(Compiler, EveryEntrysNodePointsBackAtIt) {
    CWorld const world(MIXED, MIXED_OFFICES);
    uint32_t n = 0;
    for (tagADDRINFO const* pInfo; (pInfo = world.Dic().GetAddrInfo(n)) != nullptr; ++n) {
        tagADDRNODE const* const pNode = world.Dic().GetAddrNode(pInfo->nNode);
        ASSERT_NE(pNode, nullptr) << n;
        EXPECT_EQ(pNode->nInfo, n);
    }
    EXPECT_EQ(n, world.Count("entries"));
    EXPECT_EQ(n, 11u); // seven rows, 一ツ橋 twice for その他, and three organisations
}

TEST(Compiler, EveryNodeButACityAndAnAliasIsItsEntrysNode) {
    CWorld const world(MIXED, MIXED_OFFICES);
    uint64_t const nAliases = world.Count("office_aliases");
    EXPECT_EQ(nAliases, 3u);
    uint32_t n = 0;
    for (tagADDRNODE const* pNode; (pNode = world.Dic().GetAddrNode(n)) != nullptr; ++n) {
        if (pNode->nInfo == ADDR_NONE || pNode->nLevel == LEVEL_CITY || n + nAliases >= world.Count("nodes"))
            continue;
        EXPECT_EQ(world.Dic().GetAddrInfo(pNode->nInfo)->nNode, n);
    }
    EXPECT_EQ(n, world.Count("nodes"));
}

TEST(Compiler, EntriesStandInTheOrderOfTheirCodes) {
    CWorld const world(MIXED, MIXED_OFFICES);
    std::string strLast;
    for (uint32_t n = 0; n < world.Count("entries"); ++n) {
        std::string const strCode = world.Dic().GetString(world.Dic().GetAddrInfo(n)->nCode);
        EXPECT_LE(strLast, strCode);
        strLast = strCode;
    }
}

TEST(Compiler, ChildrenStandTogetherAndNameTheirParent) {
    CWorld const world(MIXED, MIXED_OFFICES);
    uint32_t nChildren = 0;
    for (uint32_t n = 0; n < world.Count("nodes"); ++n) {
        tagADDRNODE const* const pNode = world.Dic().GetAddrNode(n);
        for (uint32_t nChild = 0; nChild < pNode->nChildCount; ++nChild, ++nChildren)
            EXPECT_EQ(world.Dic().GetAddrNode(pNode->nFirstChild + nChild)->nParent, n);
    }
    EXPECT_EQ(nChildren + 1 + world.Count("office_aliases"), world.Count("nodes")); // all but the prefecture
}

TEST(Compiler, TownNamesAreNeverSharedBetweenNodes) {
    CWorld const world({Town("石田", "イシダ", "9392707"), Town("石田", "イシダ", "9300974"),
                        CTown{"東京都", "港区", "石田", "イシダ", "1050001"}});
    std::set<uint32_t> vName;
    for (uint32_t n = 0; n < world.Count("nodes"); ++n) vName.insert(world.Dic().GetAddrNode(n)->nName);
    EXPECT_EQ(vName.size(), world.Count("nodes"));
}

// --- order ---

TEST(Compiler, PrefecturesStandInTheConventionalOrderWhateverTheInputsOrder) {
    std::vector<CTown> vTown;
    for (char const* pszRow : pref_order)
        vTown.push_back({pszRow + PREF_ORDER_NAME, "見本市", "東町", "ヒガシ", "1000001"});
    CWorld const sorted(vTown);
    EXPECT_EQ(sorted.Names('0').front(), "北海道|ケン");
    EXPECT_EQ(sorted.Names('0').size(), 47u);
    EXPECT_EQ(sorted.Count("prefectures_missing"), 0u);
    std::shuffle(vTown.begin(), vTown.end(), std::mt19937(20260529));
    EXPECT_EQ(CWorld(vTown).Names('0'), sorted.Names('0'));
}

TEST(Compiler, MissingPrefecturesAreCounted) {
    CWorld const world(
        {CTown{"沖縄県", "那覇市", "泉崎", "", "9000021"}, CTown{"東京都", "港区", "芝", "", "1050014"}});
    EXPECT_THAT(world.Names('0'), ElementsAre("東京都|ケン", "沖縄県|ケン"));
    EXPECT_EQ(world.Count("prefectures_missing"), 45u);
}

TEST(Compiler, CitiesStandInTheOrderOfTheTable) {
    CWorld const world(
        {CTown{"東京都", "港区", "芝", "", "1050014"}, CTown{"東京都", "千代田区", "千代田", "", "1000001"},
         CTown{"東京都", "港区", "芝浦", "", "1050023"}, CTown{"東京都", "中央区", "銀座", "", "1040061"}});
    EXPECT_THAT(world.Names('1'), ElementsAre("港区|シ", "千代田区|シ", "中央区|シ"));
}

TEST(Compiler, CitiesOfOneNameInTwoPrefecturesStayApart) {
    CWorld const world(
        {CTown{"北海道", "伊達市", "網代町", "", "0520025"}, CTown{"福島県", "伊達市", "箱崎", "", "9600501"}});
    EXPECT_EQ(world.Tree(), "0 北海道|ケン\n  1 伊達市|シ\n    2 網代町||0520025|100\n"
                            "0 福島県|ケン\n  1 伊達市|シ\n    2 箱崎||9600501|100\n");
}

namespace {

// The names of the towns in the order of the dictionary. The codes say where each stood in the table.
std::vector<std::string> Ordered(std::vector<std::string> const& vName) {
    std::vector<CTown> vTown;
    for (std::string const& strName : vName)
        vTown.push_back(Town(strName, "", std::to_string(1000001 + vTown.size())));
    std::vector<std::string> vOrdered;
    for (std::string const& strLine : CWorld(vTown).Names('2'))
        vOrdered.push_back(strLine.substr(0, strLine.find('|')) + strLine.substr(strLine.find("||") + 8, 1));
    return vOrdered;
}

} // namespace

TEST(TownOrder, TownsStandInTheOrderOfTheTable) {
    EXPECT_THAT(Ordered({"南", "北", "東"}), ElementsAre("南1", "北2", "東3"));
}

TEST(TownOrder, ANameThatBeginsAnotherComesAfterIt) {
    EXPECT_THAT(Ordered({"南", "名駅", "名駅南", "北"}), ElementsAre("南1", "名駅南3", "名駅2", "北4"));
}

TEST(TownOrder, ANameThatComesAfterItAlreadyStays) {
    EXPECT_THAT(Ordered({"八幡山", "南町", "八幡"}), ElementsAre("八幡山1", "南町2", "八幡3"));
}

TEST(TownOrder, AChainOfThreeEndsWithTheShortest) {
    EXPECT_THAT(Ordered({"東", "東新", "東新井"}), ElementsAre("東新井3", "東新2", "東1"));
    EXPECT_THAT(Ordered({"東新", "東", "東新井"}), ElementsAre("東新井3", "東新1", "東2"));
    EXPECT_THAT(Ordered({"東新井", "東新", "東"}), ElementsAre("東新井1", "東新2", "東3"));
}

TEST(TownOrder, SeveralLongerNamesKeepTheOrderOfTheTableAmongThemselves) {
    EXPECT_THAT(Ordered({"東", "東原", "東一", "東台"}), ElementsAre("東原2", "東一3", "東台4", "東1"));
}

TEST(TownOrder, TheNamelessTownComesLast) {
    EXPECT_THAT(Ordered({"以下に掲載がない場合", "東", "南"}), ElementsAre("東2", "南3", "-1"));
}

TEST(TownOrder, EqualNamesKeepTheOrderOfTheTable) {
    EXPECT_THAT(Ordered({"石田", "北", "石田"}), ElementsAre("石田1", "石田3", "北2"));
}

TEST(TownOrder, ALongerNameThatStandsTwiceKeepsItsFirstPlace) {
    EXPECT_THAT(Ordered({"東", "東原", "東台", "東原"}), ElementsAre("東原2", "東原4", "東台3", "東1"));
}

// A whole city of towns: no name may stand before a longer one that it begins.
TEST(TownOrder, NoNameEverStandsBeforeOneThatItBegins) {
    std::mt19937 random(4711);
    for (int nRound = 0; nRound < 20; ++nRound) {
        std::vector<std::string> vName;
        for (int n = 0; n < 60; ++n) {
            std::string strName;
            for (unsigned nLength = 1 + static_cast<unsigned>(random() % 5); nLength > 0; --nLength)
                strName += random() % 2 == 0 ? "東" : "西";
            if (std::find(vName.begin(), vName.end(), strName) == vName.end()) vName.push_back(strName);
        }
        std::vector<CTown> vTown;
        for (std::string const& strName : vName) vTown.push_back(Town(strName, "", "1000001"));
        std::vector<std::string> vOrdered = CWorld(vTown).Names('2');
        ASSERT_EQ(vOrdered.size(), vName.size());
        for (std::string& strLine : vOrdered) strLine.erase(strLine.find('|'));
        for (size_t nFirst = 0; nFirst < vOrdered.size(); ++nFirst)
            for (size_t nLater = nFirst + 1; nLater < vOrdered.size(); ++nLater)
                ASSERT_NE(vOrdered[nLater].substr(0, vOrdered[nFirst].size()), vOrdered[nFirst]);
    }
}

// --- towns of one name ---

TEST(Compiler, TownsOfOneNameAndTwoReadingsAreTwoTowns) {
    CWorld const world({Town("石田", "イシダ", "9392707"), Town("石田", "イシデン", "9300974")});
    EXPECT_EQ(world.Tree(), HEAD + "    2 石田|イシダ|9392707|100\n    2 石田|イシデン|9300974|100\n");
    EXPECT_EQ(world.Count("towns_repeated"), 0u);
}

TEST(Compiler, OfTownsOfOneNameTheOneWithACodeComesFirst) {
    CWorld const world(
        {Town("石田（１丁目）", "イシダ（１チョウメ）", "9392707"), Town("石田", "イシデン", "9300974")});
    EXPECT_THAT(world.Names('2'), ElementsAre("石田|イシデン|9300974|100", "石田|イシダ|9392707|100"));
}

TEST(Compiler, ATownOfTwoCodesIsTwoNodes) {
    CWorld const world({Town("千代田", "チヨダ", "1000001"), Town("千代田", "チヨダ", "1000011")});
    EXPECT_EQ(world.Tree(), HEAD + "    2 千代田|チヨダ|1000001|100\n    2 千代田|チヨダ|1000011|100\n");
    EXPECT_EQ(world.Count("towns_repeated"), 1u);
}

TEST(Compiler, OneCodeOfTwoTownsIsTwoEntries) {
    CWorld const world({Town("一之船入町", "イチノ", "6040924"), Town("上樵木町", "カミコリキ", "6040924")});
    EXPECT_EQ(world.Tree(), HEAD + "    2 一之船入町|イチノ|6040924|100\n    2 上樵木町|カミコリキ|6040924|100\n");
}

// --- buildings ---

TEST(Building, TheLongestTownThatBeginsItIsItsTown) {
    CWorld const world({Town("名駅", "メイエキ", "4500002"), Town("名駅南", "メイエキミナミ", "4500003"),
                        Town("名駅南タワー（１階）", "メイエキミナミタワー（１カイ）", "4506001")});
    EXPECT_EQ(world.Tree(), HEAD + "    2 名駅南|メイエキミナミ|4500003|100\n"
                                   "      4 タワー|タワー\n"
                                   "        6 １階||4506001|100\n"
                                   "    2 名駅|メイエキ|4500002|100\n");
}

TEST(Building, ItsTownMayStandBehindItInTheTable) {
    CWorld const world(
        {Town("中央アエル（１階）", "チュウオウアエル（１カイ）", "9806101"), Town("中央", "チュウオウ", "9800021")});
    EXPECT_EQ(world.Tree(), HEAD + "    2 中央|チュウオウ|9800021|100\n"
                                   "      4 アエル|アエル\n"
                                   "        6 １階||9806101|100\n");
}

TEST(Building, OfTwoTownsOfOneNameTheOneWhoseReadingFitsIsItsTown) {
    CWorld const world({Town("石田", "イシダ", "9392707"), Town("石田", "イシデン", "9300974"),
                        Town("石田ビル（１階）", "イシデンビル（１カイ）", "9306001")});
    EXPECT_EQ(world.Tree(), HEAD + "    2 石田|イシダ|9392707|100\n"
                                   "    2 石田|イシデン|9300974|100\n"
                                   "      4 ビル|ビル\n"
                                   "        6 １階||9306001|100\n");
}

TEST(Building, AReadingThatFitsNoTownStaysWhole) {
    CWorld const world(
        {Town("中央", "チュウオウ", "9800021"), Town("中央アエル（１階）", "アエル（１カイ）", "9806101")});
    EXPECT_THAT(world.Names('4'), ElementsAre("アエル|アエル"));
}

TEST(Building, ATownOfAnotherCityIsNotItsTown) {
    CWorld const world({Town("中央", "チュウオウ", "9800021"),
                        CTown{"東京都", "港区", "中央アエル（１階）", "チュウオウアエル（１カイ）", "9806101"}});
    EXPECT_EQ(world.Count("buildings_without_town"), 1u);
}

TEST(Building, WithoutATownItStandsBelowTheNamelessOneAndIsRemarked) {
    CWorld const world({Town("以下に掲載がない場合", "イカニ", "1000000"), Town("千代田", "チヨダ", "1000001"),
                        Town("見本ビル（１階）", "ミホンビル（１カイ）", "1006001")});
    EXPECT_EQ(world.Tree(), HEAD_1000 + "    2 千代田|チヨダ|1000001|100\n"
                                        "    2 -||1000000|100\n"
                                        "      4 見本ビル|ミホンビル\n"
                                        "        6 １階||1006001|100\n");
    EXPECT_EQ(world.Count("buildings_without_town"), 1u);
    EXPECT_THAT(world.Remarks(), ElementsAre("TOWNS:3: no town of the city begins this building: 見本ビル（１階）"));
}

TEST(Building, TwoCodesOfItsUnknownFloorAreTwoNodes) {
    CWorld const world({Town("中央", "チュウオウ", "9800021"),
                        Town("中央アエル（地階・階層不明）", "チュウオウアエル（チカイ）", "9806190"),
                        Town("中央アエル（地階・階層不明）", "チュウオウアエル（チカイ）", "9806191")});
    EXPECT_THAT(world.Names('4'), ElementsAre("アエル|アエル|9806190|100", "アエル|アエル|9806191|100"));
}

TEST(Building, BuildingsAreCountedOnce) {
    CWorld const world({Town("中央", "チュウオウ", "9800021"),
                        Town("中央アエル（１階）", "チュウオウアエル（１カイ）", "9806101"),
                        Town("中央アエル（２階）", "チュウオウアエル（２カイ）", "9806102"),
                        Town("中央タワー（１階）", "チュウオウタワー（１カイ）", "9806201")});
    EXPECT_EQ(world.Count("buildings"), 2u);
    EXPECT_EQ(world.Count("rows_of_floors"), 3u);
}

// --- organisations ---

TEST(Office, AnOfficeStandsBelowTheRestOfItsAddress) {
    CWorld const world({Town("千代田", "チヨダ", "1000001")}, {Office("宮内庁", "千代田", "１−１")});
    EXPECT_EQ(world.Tree(), HEAD + "    2 千代田|チヨダ|1000001|100\n"
                                   "      3 １−１\n"
                                   "        7 宮内庁|ナマエ|1008111|100\n");
    EXPECT_EQ(world.Count("offices_in_towns_spelled_alike"), 1u);
}

TEST(Office, WithoutARestItStandsBelowItsTown) {
    CWorld const world({Town("千代田", "チヨダ", "1000001")}, {Office("宮内庁", "千代田", "")});
    EXPECT_EQ(world.Tree(), HEAD + "    2 千代田|チヨダ|1000001|100\n"
                                   "      7 宮内庁|ナマエ|1008111|100\n");
}

TEST(Office, OfficesOfOneAddressShareItsNode) {
    CWorld const world({Town("千代田", "チヨダ", "1000001"), Town("大手町", "オオテ", "1000004")},
                       {Office("宮内庁", "千代田", "１−１"), Office("大手会", "大手町", "１−１"),
                        Office("千代田会", "千代田", "１−１", "1008112")});
    EXPECT_EQ(world.Tree(), HEAD + "    2 千代田|チヨダ|1000001|100\n"
                                   "      3 １−１\n"
                                   "        7 宮内庁|ナマエ|1008111|100\n"
                                   "        7 千代田会|ナマエ|1008112|100\n"
                                   "    2 大手町|オオテ|1000004|100\n"
                                   "      3 １−１\n"
                                   "        7 大手会|ナマエ|1008111|100\n");
}

TEST(Office, AnotherSpellingOfTheTownFindsIt) {
    CWorld const world({Town("北一条西（１丁目）", "キタ", "0600001"), Town("霞が関", "カスミ", "1000013")},
                       {Office("市役所", "北１条西", "２丁目"), Office("外務省", "大字霞ケ関", "１")});
    EXPECT_THAT(world.Names('2'), ElementsAre("北一条西|キタ|0600001|100", "霞が関|カスミ|1000013|100"));
    EXPECT_THAT(world.Names('7'), ElementsAre("市役所|ナマエ|1008111|100", "外務省|ナマエ|1008111|100"));
    EXPECT_EQ(world.Count("offices_in_towns_folded"), 2u);
}

TEST(Office, OfTownsOfOneNameItStandsInTheFirstWithACode) {
    CWorld world({Town("石田（１丁目）", "イシダ（１チョウメ）", "9392707"),
                  Town("石田（２丁目）", "イシダ（２チョウメ）", "9392708"), Town("石田", "イシデン", "9300974"),
                  Town("石田", "イシタ", "9300975")},
                 {Office("駅", "石田", "")});
    EXPECT_THAT(world.Tree(), HasSubstr("    2 石田|イシデン|9300974|100\n      7 駅|"));
    tagADDR addr(0);
    std::string strName = "駅";
    world.Dic().GetPostCodeFromAddr("東京都千代田区石田", strName.data(), addr);
    EXPECT_STREQ(addr.pszPostCode, "1008111");
}

TEST(Office, OfTownsOfOneNameWithoutCodesItStandsInTheFirst) {
    CWorld const world({Town("石田（１丁目）", "イシダ（１チョウメ）", "9392707"),
                        Town("石田（１丁目）", "イシデン（１チョウメ）", "9300974")},
                       {Office("駅", "石田", "")});
    EXPECT_EQ(world.Tree(), HEAD + "    2 石田|イシダ|9392707|100\n"
                                   "      3 １丁目|１チョウメ|9392707|100\n"
                                   "      7 駅|ナマエ|1008111|100\n"
                                   "    2 石田|イシデン|9300974|100\n"
                                   "      3 １丁目|１チョウメ|9300974|100\n");
}

TEST(Office, AnUnknownTownIsAddedWithoutACode) {
    CWorld const world({Town("千代田", "チヨダ", "1000001")},
                       {Office("衆議院", "永田町", "１"), Office("参議院", "永田町", "１")});
    EXPECT_EQ(world.Tree(), HEAD + "    2 千代田|チヨダ|1000001|100\n"
                                   "    2 永田町\n"
                                   "      3 １\n"
                                   "        7 衆議院|ナマエ|1008111|100\n"
                                   "        7 参議院|ナマエ|1008111|100\n");
    EXPECT_EQ(world.Count("offices_in_towns_added"), 2u);
}

TEST(Office, AnAddedTownIsOrderedLikeAnyOther) {
    CWorld const world({Town("名駅", "メイエキ", "4500002")}, {Office("役場", "名駅南", "")});
    EXPECT_THAT(world.Names('2'), ElementsAre("名駅南", "名駅|メイエキ|4500002|100"));
}

TEST(Office, WithoutATownItStandsBelowTheNamelessOne) {
    CWorld const world({Town("以下に掲載がない場合", "イカニ", "1000000")}, {Office("境町役場", "", "３９１−１")});
    EXPECT_EQ(world.Tree(), HEAD_1000 + "    2 -||1000000|100\n"
                                        "      3 ３９１−１\n"
                                        "        7 境町役場|ナマエ|1008111|100\n");
    EXPECT_EQ(world.Count("offices_without_town"), 1u);
}

TEST(Office, WithoutATownInACityWithoutANamelessOneItGetsOne) {
    CWorld const world({Town("千代田", "チヨダ", "1000001")}, {Office("役場", "", "")});
    EXPECT_EQ(world.Tree(), HEAD + "    2 千代田|チヨダ|1000001|100\n"
                                   "    2 -\n"
                                   "      7 役場|ナマエ|1008111|100\n");
}

TEST(Office, AnUnknownCityLeavesItOutWithARemark) {
    CWorld const world({Town("千代田", "チヨダ", "1000001")},
                       {COffice{"役場", "東京都", "港区", "芝", "", "1058111"},
                        COffice{"府庁", "大阪府", "千代田区", "", "", "5408111"}, Office("宮内庁", "千代田", "")});
    EXPECT_THAT(world.Names('7'), ElementsAre("宮内庁|ナマエ|1008111|100"));
    EXPECT_EQ(world.Count("offices_left_out"), 2u);
    EXPECT_THAT(world.Remarks(), ElementsAre("OFFICES:1: left out, the town table has no such city: 東京都港区",
                                             "OFFICES:2: left out, the town table has no such city: 大阪府千代田区"));
}

TEST(Office, ALongNameIsCutAtItsLastBlank) {
    std::string const strHead = Repeat("株", 20) + "　" + Repeat("式", 20); // 123 bytes
    CWorld const world({Town("千代田", "チヨダ", "1000001")}, {Office(strHead + "　会社", "千代田", "")});
    EXPECT_THAT(world.Names('7'), ElementsAre(strHead + "|ナマエ|1008111|100"));
    EXPECT_EQ(world.Count("names_cut"), 1u);
    EXPECT_THAT(world.Remarks(), ElementsAre(HasSubstr("cut to 127 bytes: " + strHead + "　会社")));
}

TEST(Office, ALongNameWithoutABlankIsCutAtACharacter) {
    CWorld const world({Town("千代田", "チヨダ", "1000001")}, {Office(Repeat("株", 43), "千代田", "")});
    EXPECT_THAT(world.Names('7'), ElementsAre(Repeat("株", 42) + "|ナマエ|1008111|100"));
}

TEST(Office, ANameOfExactlyTheLimitIsKept) {
    std::string const strName = Repeat("株", 42) + "X"; // 127 bytes
    CWorld const world({Town("千代田", "チヨダ", "1000001")}, {Office(strName, "千代田", "")});
    EXPECT_THAT(world.Names('7'), ElementsAre(strName + "|ナマエ|1008111|100"));
    EXPECT_EQ(world.Count("names_cut"), 0u);
}

TEST(Office, EveryOfficeStandsInTheIndexByTheBytesOfItsName) {
    CWorld const world({Town("千代田", "チヨダ", "1000001")},
                       {Office("み", "千代田", ""), Office("あ", "千代田", "１"), Office("ん", "千代田", ""),
                        Office("Ａ", "永田町", "")});
    std::vector<std::string> vName;
    for (uint32_t nNode : world.OfficeIndex()) vName.push_back(world.Name(nNode));
    EXPECT_THAT(vName, ElementsAre("あ", "あ", "み", "み", "ん", "ん", "Ａ", "Ａ")); // each with its alias
}

// --- statistics ---

TEST(Statistics, EveryTownRowIsCountedUnderOneKind) {
    CWorld const world(MIXED, MIXED_OFFICES);
    EXPECT_EQ(world.Count("town_rows"), MIXED.size());
    EXPECT_EQ(world.Count("rows_of_whole_cities"), 1u);
    EXPECT_EQ(world.Count("rows_of_towns"), 3u);
    EXPECT_EQ(world.Count("rows_of_areas"), 2u);
    EXPECT_EQ(world.Count("rows_of_floors"), 1u);
}

TEST(Statistics, EveryOfficeRowIsCountedUnderOneKind) {
    CWorld const world({Town("北一条西", "キタ", "0600001")},
                       {Office("甲", "北一条西", ""), Office("乙", "北１条西", ""), Office("丙", "南町", ""),
                        Office("丁", "", ""), COffice{"戊", "東京都", "港区", "芝", "", "1058111"}});
    EXPECT_EQ(world.Count("office_rows"), 5u);
    for (char const* pszKind : {"offices_in_towns_spelled_alike", "offices_in_towns_folded", "offices_in_towns_added",
                                "offices_without_town", "offices_left_out"})
        EXPECT_EQ(world.Count(pszKind), 1u) << pszKind;
}

TEST(Statistics, RowsWhoseReadingDoesNotCutUpAreCounted) {
    CWorld const world({Town("亀屋町（御幸町通）", "カメヤチョウ", "6040941"),
                        Town("東（西、南）", "ヒガシ（ニシ、ミナミ）", "1000001")});
    EXPECT_EQ(world.Count("rows_without_area_readings"), 1u);
}

TEST(Statistics, AreasThatHadToBeShortenedAreRemarkedWithTheirLine) {
    std::string const strTown = "中町（" + Repeat("東", 50) + "）";
    CWorld const world({Town("千代田", "チヨダ", "1000001"), Town(strTown, "", "1000002")});
    EXPECT_EQ(world.Count("area_names_shortened"), 1u);
    EXPECT_THAT(world.Remarks(), ElementsAre("TOWNS:2: shortened to 127 bytes: " + strTown));
}

TEST(Statistics, CountsKeepTheOrderInWhichTheyWereFirstNamed) {
    qe::CStatistics statistics;
    ++statistics["b"];
    ++statistics["a"];
    statistics["b"] += 2;
    EXPECT_THAT(statistics.Counts(), ElementsAre(testing::Pair("b", 3u), testing::Pair("a", 1u)));
    EXPECT_EQ(statistics.Get("never"), 0u);
    EXPECT_EQ(statistics.Counts().size(), 2u);
}

TEST(Statistics, ATableWithoutOddRowsHasNoRemarks) {
    EXPECT_THAT(CWorld(MIXED, MIXED_OFFICES).Remarks(), IsEmpty());
}

// --- reach of the old codes ---

namespace {

// Entries that the lookup by their old code gives back, asking for each old code once.
uint64_t WithinReach(CWorld const& world) {
    CAddrDic dic;
    dic.SetDictionary(world.Bytes().data());
    std::set<std::string> vOld;
    for (uint32_t n = 0; n < world.Count("entries"); ++n)
        vOld.insert(dic.GetString(dic.GetAddrInfo(n)->nCode + 8)); // behind seven digits and their NUL
    uint64_t nFound = 0;
    for (std::string const& strOld : vOld) {
        std::vector<tagADDR> vAddr;
        dic.GetAddrFromPostCode5(strOld.c_str(), vAddr);
        nFound += vAddr.size();
    }
    return nFound;
}

} // namespace

TEST(OldCodes, ACodeThatBeginsWithItsOldCodeIsWithinReach) {
    CWorld const world({Town("千代田", "チヨダ", "1000001")});
    EXPECT_EQ(world.Count("old_codes_no_prefix_of_their_code"), 0u);
    EXPECT_EQ(world.Count("entries_out_of_reach_of_their_old_code"), 0u);
}

TEST(OldCodes, AnOldCodeThatNoCodeBeginsWithIsOutOfReach) {
    CTown town = Town("高砂", "タカサゴ", "3300063");
    town.strOldCode = "336";
    CWorld const world({town});
    EXPECT_EQ(world.Count("old_codes_no_prefix_of_their_code"), 1u);
    EXPECT_EQ(world.Count("entries_out_of_reach_of_their_old_code"), 1u);
}

TEST(OldCodes, AnEntryBehindTheFirstOfItsOldCodeIsWithinReach) {
    CTown town = Town("高砂", "タカサゴ", "3360063");
    town.strOldCode = "330";
    CWorld const world(
        {Town("千代田", "チヨダ", "1000001"), CTown{"東京都", "千代田区", "岸町", "", "3300064", "330"}, town});
    EXPECT_EQ(world.Count("old_codes_no_prefix_of_their_code"), 1u);
    EXPECT_EQ(world.Count("entries_out_of_reach_of_their_old_code"), 0u);
}

TEST(OldCodes, AnEntryBeforeTheFirstOfItsOldCodeIsOutOfReach) {
    CTown town = Town("高砂", "タカサゴ", "3300063");
    town.strOldCode = "336";
    CWorld const world({town, CTown{"東京都", "千代田区", "別所", "", "3360021", "336"}});
    EXPECT_EQ(world.Count("old_codes_no_prefix_of_their_code"), 1u);
    EXPECT_EQ(world.Count("entries_out_of_reach_of_their_old_code"), 1u);
}

// 10,000 entries from 1000000 to 1009999, five more of the last code and three of the next: the lookup of 100 ends
// before these eight.
TEST(OldCodes, AnEntryMoreThanTenThousandBehindTheFirstIsOutOfReach) {
    std::string strTowns;
    for (int n = 0; n < 10000; ++n) strTowns += Line(Town("町" + std::to_string(n), "", std::to_string(1000000 + n)));
    for (int n = 0; n < 5; ++n) strTowns += Line(Town("末" + std::to_string(n), "", "1009999"));
    for (int n = 0; n < 3; ++n) strTowns += Line(Town("次" + std::to_string(n), "", "1010000"));
    CWorld const world(strTowns);
    EXPECT_EQ(world.Count("entries"), 10008u);
    EXPECT_EQ(world.Count("old_codes_no_prefix_of_their_code"), 3u);
    EXPECT_EQ(world.Count("entries_out_of_reach_of_their_old_code"), 8u);
    EXPECT_EQ(WithinReach(world), 10000u);
}

TEST(OldCodes, WhatIsCountedAsOutOfReachIsWhatTheLookupMisses) {
    std::mt19937 random(20260529);
    for (int nRound = 0; nRound < 20; ++nRound) {
        std::vector<CTown> vTown;
        for (int n = 0; n < 40; ++n) {
            CTown town =
                Town("町" + std::to_string(n), "", std::to_string(1000000 + random() % 500 * 1000 + random() % 3));
            town.strOldCode = std::to_string(random() % 2 == 0 ? 100 + random() % 50 : 10000 + random() % 5000);
            vTown.push_back(town);
        }
        CWorld const world(vTown);
        EXPECT_EQ(WithinReach(world), 40 - world.Count("entries_out_of_reach_of_their_old_code")) << nRound;
    }
}

TEST(OldCodes, EntriesWithoutAnOldCodeAreNotCounted) {
    qe::CTownRow row;
    row.strPref = "東京都";
    row.strCity = "千代田区";
    row.strTown = "千代田";
    row.strCode = "1000001";
    qe::CStatistics statistics;
    qe::CCompiler compiler(statistics);
    compiler.AddTowns({row}, "TOWNS");
    compiler.Compile(0, qe::ESource::Skk);
    EXPECT_EQ(statistics.Get("old_codes_no_prefix_of_their_code"), 0u);
    EXPECT_EQ(statistics.Get("entries_out_of_reach_of_their_old_code"), 0u);
}

// --- the image as a whole ---

TEST(Compiler, TheSameInputGivesTheSameBytes) {
    EXPECT_EQ(CWorld(MIXED, MIXED_OFFICES).Bytes(), CWorld(MIXED, MIXED_OFFICES).Bytes());
}

TEST(Compiler, BothEncodingsOfTheTablesGiveTheSameBytes) {
    std::string const strTowns = Table(
        {Town("大通西（１〜１９「２−３を除く」、東）", "オオドオリ（１−１９＜２−３ヲノゾク＞、ヒガシ）", "0600042"),
         Town("千代田", "チヨダ", "1000001")});
    std::string const strOffices = Table({Office("宮内庁", "大通西", "１−１〜３")});
    CWorld const utf8(strTowns, strOffices);
    EXPECT_EQ(CWorld(EncodeCp932(strTowns), EncodeCp932(strOffices)).Bytes(), utf8.Bytes());
    EXPECT_EQ(CWorld(strTowns, EncodeCp932(strOffices)).Bytes(), utf8.Bytes());
}

TEST(Compiler, TheHeaderHoldsEditionSourceSizeAndChecksum) {
    CWorld const world({Town("千代田", "チヨダ", "1000001")});
    unsigned char const* const p = world.Bytes().data();
    EXPECT_EQ(HeaderWord(p, HDR_EDITION), 20260500u);
    EXPECT_EQ(HeaderWord(p, HDR_SOURCE), static_cast<uint32_t>(qe::ESource::Official));
    EXPECT_EQ(HeaderWord(p, HDR_FILE_SIZE), world.Bytes().size());
    EXPECT_EQ(HeaderWord(p, HDR_CHECKSUM), qe::ImageChecksum(p, world.Bytes().size()));
    EXPECT_EQ(world.Count("bytes"), world.Bytes().size());
}

TEST(Compiler, NothingToCompileIsRefused) {
    qe::CStatistics statistics;
    qe::CCompiler compiler(statistics);
    EXPECT_EQ(ErrorOf([&] { compiler.Compile(0, qe::ESource::Official); }),
              "The town table has no rows: there is nothing to compile.");
}
