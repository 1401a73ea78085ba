// A dictionary measured against tables: what counts as right, and which misses are told with which cause.
#include "builder/Measure.h"
#include "builder/ReplaceFile.h"
#include "tests/builder/World.h"

#include <gmock/gmock.h>

#include <cstring>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<qe::CTownRow> Rows(std::vector<CTown> const& vTown) {
    CTestFolder const folder;
    return vTown.empty() ? std::vector<qe::CTownRow>()
                         : qe::ReadTownTable(qe::ReadSource(folder.Write("towns.csv", Table(vTown)))).vRow;
}

std::vector<qe::COfficeRow> Rows(std::vector<COffice> const& vOffice) {
    CTestFolder const folder;
    return vOffice.empty() ? std::vector<qe::COfficeRow>()
                           : qe::ReadOfficeTable(qe::ReadSource(folder.Write("offices.csv", Table(vOffice))));
}

// The figures of a dictionary for tables that may be others than those of its build.
class CMeasured {
  public:
    CMeasured(CWorld const& world, std::vector<CTown> const& vTown, std::vector<COffice> const& vOffice = {},
              CWorld::Editions const& vPrevious = {}) {
        CTestFolder const folder;
        qe::ReplaceFile(folder.Path("t.dic"), world.Bytes());
        qe::CMeasuredTables tables;
        tables.vTown = Rows(vTown);
        tables.vOffice = Rows(vOffice);
        for (size_t n = 0; n < vPrevious.size(); ++n)
            tables.vPrevious.push_back({"old" + std::to_string(n + 1), Rows(vPrevious[n])});
        m_vFigure = Measure(qe::CDictionaryFile(folder.Path("t.dic")), tables);
    }

    std::vector<std::string> Keys() const {
        std::vector<std::string> vKey;
        for (qe::CFigure const& figure : m_vFigure) vKey.push_back(figure.strKey);
        return vKey;
    }

    qe::CFigure const& Figure(std::string const& strKey) const {
        for (qe::CFigure const& figure : m_vFigure)
            if (figure.strKey == strKey) return figure;
        static qe::CFigure const none;
        ADD_FAILURE() << "no figure " << strKey;
        return none;
    }

    // "right/asked".
    std::string operator()(std::string const& strKey) const {
        return std::to_string(Figure(strKey).Right()) + "/" + std::to_string(Figure(strKey).nAsked);
    }

    // "asked: cause: found" of each miss.
    std::vector<std::string> Misses(std::string const& strKey) const {
        std::vector<std::string> vMiss;
        for (qe::CMiss const& miss : Figure(strKey).vMiss)
            vMiss.push_back(miss.strText + ": " + miss.strCause + ": " + miss.strFound);
        return vMiss;
    }

  private:
    std::vector<qe::CFigure> m_vFigure;
};

std::vector<CTown> const TOWNS = {
    Town("以下に掲載がない場合", "イカニ", "1000000"),     Town("千代田", "チヨダ", "1000001"),
    Town("大手町（次のビルを除く）", "オオテ", "1000004"), Town("大手町ＪＡビル（１階）", "オオテビル", "1006801"),
    Town("一ツ橋（１、２丁目）", "ヒトツ", "1000003"),     Town("一ツ橋（３丁目）", "ヒトツ", "1010003"),
    Town("霞が関（１丁目）", "カスミ", "1000013")};
std::vector<COffice> const OFFICES = {Office("株式会社　甲　本社", "千代田", "１−１"),
                                      Office("乙", "大手町", "", "1008112")};

} // namespace

// --- the dictionary of the tables themselves ---

TEST(Measure, ADictionaryOfTheTablesIsRightThroughout) {
    CWorld const world(TOWNS, OFFICES, CWorld::Editions{{Town("永楽町", "", "1000001")}});
    CMeasured const measured(world, TOWNS, OFFICES, CWorld::Editions{{Town("永楽町", "", "1000001")}});
    EXPECT_THAT(measured.Keys(),
                ElementsAre("town_levels", "town_code", "town_without_prefecture", "town_with_house_number",
                            "office_at_its_address", "office_at_spelled_address", "gone_towns_old1",
                            "gone_cities_towns_old1", "city_parts"));
    for (char const* pszKey : {"town_levels", "town_code", "town_without_prefecture", "town_with_house_number"})
        EXPECT_EQ(measured(pszKey), "6/6") << pszKey; // all rows but the nameless one
    EXPECT_EQ(measured("office_at_its_address"), "2/2");
    EXPECT_EQ(measured("office_at_spelled_address"), "2/2");
    EXPECT_EQ(measured("gone_towns_old1"), "1/1");
    EXPECT_EQ(measured("gone_cities_towns_old1"), "0/0");
    EXPECT_EQ(measured("city_parts"), "1/1");
}

TEST(Measure, EveryEditionHasFiguresOfItsOwn) {
    CWorld::Editions const vPrevious = {{Town("永楽町", "", "1000001")}, {Town("道三町", "", "1000001")}};
    CMeasured const measured(CWorld(TOWNS, {}, vPrevious), TOWNS, {}, vPrevious);
    EXPECT_THAT(measured.Keys(),
                ElementsAre("town_levels", "town_code", "town_without_prefecture", "town_with_house_number",
                            "office_at_its_address", "office_at_spelled_address", "gone_towns_old1",
                            "gone_cities_towns_old1", "gone_towns_old2", "gone_cities_towns_old2", "city_parts"));
    EXPECT_EQ(measured("gone_towns_old2"), "1/1");
}

TEST(Measure, FigureCountsItsCausesAndItsShare) {
    qe::CFigure figure;
    EXPECT_DOUBLE_EQ(figure.Percent(), 100);
    figure.nAsked = 8;
    figure.vMiss = {{"a", "x", ""}, {"b", "y", ""}, {"c", "x", ""}};
    EXPECT_EQ(figure.Right(), 5u);
    EXPECT_DOUBLE_EQ(figure.Percent(), 62.5);
    EXPECT_THAT(figure.Causes(), ElementsAre(testing::Pair("x", 2u), testing::Pair("y", 1u)));
}

// --- towns ---

TEST(MeasureTowns, ATownThatTheDictionaryLacksIsMissedByItsLevels) {
    CMeasured const measured(CWorld({Town("千代田", "チヨダ", "1000001")}),
                             {Town("千代田", "チヨダ", "1000001"), Town("大手町", "オオテ", "1000004")});
    EXPECT_EQ(measured("town_levels"), "1/2");
    EXPECT_THAT(measured.Misses("town_levels"),
                ElementsAre("東京都千代田区大手町: other levels: 東京都|千代田区||大手町 "));
    EXPECT_THAT(measured.Misses("town_with_house_number"),
                ElementsAre("東京都千代田区大手町１－２－３: other levels: 東京都|千代田区||大手町１－２－３ "));
    EXPECT_THAT(measured.Misses("town_without_prefecture"),
                ElementsAre("千代田区大手町: other levels: |千代田区||大手町 "));
    EXPECT_THAT(measured.Misses("town_code"),
                ElementsAre("東京都千代田区大手町: another code: 東京都|千代田区||大手町 "));
}

TEST(MeasureTowns, ATownThatBeginsWithAnotherAndIsLackingIsMissed) {
    CMeasured const measured(CWorld({Town("名駅", "", "4500002")}),
                             {Town("名駅", "", "4500002"), Town("名駅南", "", "4500003")});
    EXPECT_THAT(measured.Misses("town_levels"),
                ElementsAre("東京都千代田区名駅南: other levels: 東京都|千代田区|名駅|南 4500002"));
}

TEST(MeasureTowns, AnotherCodeIsMissedByTheCodeAlone) {
    CMeasured const measured(CWorld({Town("千代田", "チヨダ", "1000009")}), {Town("千代田", "チヨダ", "1000001")});
    EXPECT_EQ(measured("town_levels"), "1/1");
    EXPECT_THAT(measured.Misses("town_code"),
                ElementsAre("東京都千代田区千代田: another code: 東京都|千代田区|千代田| 1000009"));
}

TEST(MeasureTowns, ACodeOfAPlaceOfTheTownIsRight) {
    CMeasured const measured(CWorld({Town("霞が関（１丁目）", "", "1000013")}),
                             {Town("霞が関（１丁目）", "", "1000013")});
    EXPECT_EQ(measured("town_code"), "1/1");
}

TEST(MeasureTowns, WithSeveralCodesAndNoDefaultTheCitysCodeIsRight) {
    std::vector<CTown> const vTown = {Town("一ツ橋（１丁目）", "", "1000003"),
                                      Town("一ツ橋（３丁目）", "", "1010003"),
                                      Town("以下に掲載がない場合", "", "1000000")};
    EXPECT_EQ(CMeasured(CWorld(vTown), vTown)("town_code"), "2/2");
}

TEST(MeasureTowns, WithSeveralCodesAndADefaultTheCitysCodeIsWrong) {
    std::vector<CTown> vTown = {Town("一ツ橋（１丁目）", "", "1000003"), Town("一ツ橋（３丁目）", "", "1010003"),
                                Town("以下に掲載がない場合", "", "1000000")};
    CWorld const world(vTown);
    vTown.push_back(Town("一ツ橋（その他）", "", "1000009"));
    EXPECT_EQ(CMeasured(world, vTown)("town_code"), "0/3");
}

TEST(MeasureTowns, WithOneCodeTheCitysCodeIsWrong) {
    // The dictionary has two codes for the town, so its address gives the city's.
    CWorld const world({Town("一ツ橋（１丁目）", "", "1000003"), Town("一ツ橋（３丁目）", "", "1010003"),
                        Town("以下に掲載がない場合", "", "1000000")});
    CMeasured const measured(world,
                             {Town("一ツ橋（１丁目）", "", "1000003"), Town("以下に掲載がない場合", "", "1000000")});
    EXPECT_THAT(measured.Misses("town_code"),
                ElementsAre("東京都千代田区一ツ橋: another code: 東京都|千代田区|一ツ橋| 1000000"));
}

TEST(MeasureTowns, ABuildingIsFoundAsItsTownWithItsNameLeftOver) {
    std::vector<CTown> const vTown = {Town("名駅", "", "4500002"), Town("名駅南", "", "4500003"),
                                      Town("名駅南タワー（１階）", "", "4506001")};
    EXPECT_EQ(CMeasured(CWorld(vTown), vTown)("town_levels"), "3/3");
    CMeasured const measured(CWorld({Town("名駅", "", "4500002")}), vTown);
    EXPECT_THAT(measured.Misses("town_levels"),
                ElementsAre("東京都千代田区名駅南: other levels: 東京都|千代田区|名駅|南 4500002",
                            "東京都千代田区名駅南タワー: other levels: 東京都|千代田区|名駅|南タワー 4500002"));
}

TEST(MeasureTowns, ACityOfTwoPrefecturesIsNotAskedForWithoutOne) {
    std::vector<CTown> const vTown = {CTown{"北海道", "伊達市", "網代町", "", "0520025"},
                                      CTown{"福島県", "伊達市", "箱崎", "", "9600501"},
                                      CTown{"福島県", "福島市", "荒町", "", "9608014"}};
    CMeasured const measured(CWorld(vTown), vTown);
    EXPECT_EQ(measured("town_levels"), "3/3");
    EXPECT_EQ(measured("town_without_prefecture"), "1/1");
}

TEST(MeasureTowns, WithoutItsPrefectureTheSameTownMustBeFound) {
    // The dictionary's other city of the name comes first.
    CWorld const world(
        {CTown{"北海道", "伊達市", "箱崎", "", "0520025"}, CTown{"福島県", "伊達市", "箱崎", "", "9600501"}});
    CMeasured const measured(world, {CTown{"福島県", "伊達市", "箱崎", "", "9600501"}});
    EXPECT_EQ(measured("town_levels"), "1/1");
    EXPECT_THAT(measured.Misses("town_without_prefecture"),
                ElementsAre("伊達市箱崎: other levels: |伊達市|箱崎| 0520025"));
}

TEST(MeasureTowns, TextBehindTheNameMustBeLeftOverWhole) {
    std::vector<CTown> const vTown = {CTown{"長崎県", "西海市", "大島町の次に番地がくる場合", "", "8572427"}};
    EXPECT_EQ(CMeasured(CWorld(vTown), vTown)("town_levels"), "1/1");
    std::vector<CTown> const vLots = {Town("種市第２２地割〜種市第２３地割（一区）",
                                           "タネイチダイ２２チワリ−タネイチダイ２３チワリ（イック）", "0287915")};
    EXPECT_EQ(CMeasured(CWorld(vLots), vLots)("town_levels"), "1/1");
}

TEST(MeasureTowns, RowsOfWholeCitiesAreNotAskedFor) {
    std::vector<CTown> const vTown = {Town("以下に掲載がない場合", "イカニ", "1000000"),
                                      CTown{"東京都", "利島村", "利島村一円", "", "1000301"},
                                      CTown{"茨城県", "猿島郡境町", "境町の次に番地がくる場合", "", "3060433"}};
    EXPECT_EQ(CMeasured(CWorld(vTown), vTown)("town_levels"), "0/0");
}

// --- organisations ---

TEST(MeasureOffices, OneThatTheDictionaryLacksIsMissedOnceWithThatCause) {
    CMeasured const measured(CWorld(TOWNS, {OFFICES[0]}), TOWNS, OFFICES);
    EXPECT_EQ(measured("office_at_its_address"), "1/2");
    EXPECT_THAT(measured.Misses("office_at_its_address"), ElementsAre("1008112 乙: not in the dictionary: "));
    EXPECT_EQ(measured("office_at_spelled_address"), "1/1");
}

TEST(MeasureOffices, OneWithoutATownIsMissedWithThatCause) {
    std::vector<COffice> const vOffice = {Office("境町役場", "", "３９１−１")};
    CMeasured const measured(CWorld(TOWNS, vOffice), TOWNS, vOffice);
    EXPECT_THAT(measured.Figure("office_at_its_address").Causes(),
                ElementsAre(testing::Pair("the organisation has no town", 1u)));
}

TEST(MeasureOffices, AnotherSpellingOfTheTownIsMissedAtTheSpelledAddressAlone) {
    std::vector<CTown> const vTown = {Town("北一条西", "", "0600001")};
    std::vector<COffice> const vOffice = {Office("市役所", "北１条西", "２")};
    CMeasured const measured(CWorld(vTown, vOffice), vTown, vOffice);
    EXPECT_EQ(measured("office_at_its_address"), "1/1");
    EXPECT_THAT(measured.Misses("office_at_spelled_address"),
                ElementsAre("1008111 東京都千代田区北１条西２ 市役所: the address names no town as the dictionary "
                            "spells it: 東京都|千代田区|| "));
}

TEST(MeasureOffices, ANameThatIsCutIsMissedWithThatCause) {
    std::vector<COffice> const vOffice = {Office(Repeat("株", 43), "千代田", "１")};
    CMeasured const measured(CWorld(TOWNS, vOffice), TOWNS, vOffice);
    EXPECT_THAT(measured.Figure("office_at_its_address").Causes(),
                ElementsAre(testing::Pair("the name is cut in the dictionary", 1u)));
}

TEST(MeasureOffices, AnAddressThatIsReadAsAnotherTownIsMissedWithThatCause) {
    // Folded, the table's 大字千代田 is the town 千代田; as it is spelled another town comes first.
    std::vector<CTown> const vTown = {Town("千代田", "", "1000001"), Town("大", "", "1000002")};
    std::vector<COffice> const vOffice = {Office("市役所", "大字千代田", "２")};
    CMeasured const measured(CWorld(vTown, vOffice), vTown, vOffice);
    EXPECT_EQ(measured("office_at_its_address"), "1/1");
    EXPECT_THAT(measured.Misses("office_at_spelled_address"),
                ElementsAre("1008111 東京都千代田区大字千代田２ 市役所: the address names another town: "
                            "東京都|千代田区|大|字千代田２ 1000002"));
}

TEST(MeasureOffices, AnotherOneOfTheNameInTheTownIsMissedWithThatCause) {
    std::vector<COffice> const vOffice = {Office("郵便局", "千代田", "１", "1008001"),
                                          Office("郵便局", "千代田", "２", "1008002"),
                                          Office("郵便局", "大手町", "１", "1008003")};
    CMeasured const measured(CWorld(TOWNS, vOffice), TOWNS, vOffice);
    EXPECT_EQ(measured("office_at_its_address"), "2/3");
    EXPECT_THAT(measured.Misses("office_at_its_address"),
                ElementsAre("1008002 東京都千代田区千代田２ 郵便局: another one of that name stands in the town: "
                            "東京都|千代田区|千代田|２ 1008001"));
}

TEST(MeasureOffices, OfSeveralOfACodeTheOneOfTheNameIsAskedFor) {
    std::vector<COffice> const vOffice = {Office("甲", "千代田", "１"), Office("乙", "大手町", "２")};
    CMeasured const measured(CWorld(TOWNS, vOffice), TOWNS, vOffice);
    EXPECT_EQ(measured("office_at_its_address"), "2/2");
}

TEST(MeasureOffices, TheirNamesAreAskedForWithoutBlanksOfEitherKind) {
    std::vector<COffice> const vOffice = {Office("甲　乙 丙　", "千代田", "１")};
    CMeasured const measured(CWorld(TOWNS, vOffice), TOWNS, vOffice);
    EXPECT_EQ(measured("office_at_its_address"), "1/1");
    CMeasured const missed(CWorld(TOWNS, vOffice), TOWNS, {Office("甲　乙 丙　丁", "千代田", "１")});
    EXPECT_THAT(missed.Misses("office_at_its_address"),
                ElementsAre("1008111 東京都千代田区千代田１ 甲乙丙丁: the name is cut in the dictionary: "
                            "東京都|千代田区|千代田|１ 1000001"));
}

// --- earlier editions ---

TEST(MeasureGoneTowns, OneThatIsNotSupersededIsMissed) {
    CWorld const world({Town("丸の内", "", "1000005")});
    CMeasured const measured(world, {Town("丸の内", "", "1000005")}, {},
                             CWorld::Editions{{Town("永楽町", "", "1000005")}});
    EXPECT_EQ(measured("gone_towns_old1"), "0/1");
    EXPECT_THAT(measured.Misses("gone_towns_old1"),
                ElementsAre("1000005 東京都千代田区永楽町: not renewed: 東京都|千代田区|| "));
}

TEST(MeasureGoneTowns, OneThatIsRenewedToATownThatTheTableLacksIsMissed) {
    CWorld const world({Town("丸の内", "", "1000005")}, {}, CWorld::Editions{{Town("永楽町", "", "1000005")}});
    CMeasured const measured(world, {Town("大手町", "", "1000004")}, {},
                             CWorld::Editions{{Town("永楽町", "", "1000005")}});
    EXPECT_THAT(measured.Misses("gone_towns_old1"),
                ElementsAre("1000005 東京都千代田区永楽町: not renewed: 東京都|千代田区|丸の内| 1000005"));
}

TEST(MeasureGoneTowns, TownsOfTodayAreNotAskedFor) {
    CWorld::Editions const vPrevious = {{Town("丸の内", "", "1000005"), Town("大手町（１丁目）", "", "1000004"),
                                         Town("以下に掲載がない場合", "", "1000000")}};
    std::vector<CTown> const vTown = {Town("丸の内", "", "1000009"), Town("大手町", "", "1000004")};
    EXPECT_EQ(CMeasured(CWorld(vTown), vTown, {}, vPrevious)("gone_towns_old1"), "0/0");
}

TEST(MeasureGoneTowns, EachIsAskedForOnce) {
    CWorld::Editions const vPrevious = {
        {Town("永楽町（１丁目）", "", "1000005"), Town("永楽町（２丁目）", "", "1000006")}};
    std::vector<CTown> const vTown = {Town("丸の内", "", "1000005")};
    EXPECT_EQ(CMeasured(CWorld(vTown, {}, vPrevious), vTown, {}, vPrevious)("gone_towns_old1"), "1/1");
}

TEST(MeasureGoneTowns, ThoseOfCitiesThatAreGoneAreCountedApartToo) {
    CWorld::Editions const vPrevious = {{CTown{"静岡県", "浜松市中区", "助信町", "", "4300903"},
                                         CTown{"静岡県", "浜松市中央区", "元町", "", "4300903"}}};
    std::vector<CTown> const vTown = {CTown{"静岡県", "浜松市中央区", "助信町", "", "4300903"},
                                      CTown{"静岡県", "浜松市中央区", "以下に掲載がない場合", "", "4300000"}};
    CMeasured const measured(CWorld(vTown, {}, vPrevious), vTown, {}, vPrevious);
    EXPECT_EQ(measured("gone_towns_old1"), "2/2");
    EXPECT_EQ(measured("gone_cities_towns_old1"), "1/1");
    CMeasured const missed(CWorld{vTown}, vTown, {}, vPrevious);
    EXPECT_EQ(missed("gone_towns_old1"), "0/2");
    EXPECT_EQ(missed("gone_cities_towns_old1"), "0/1");
}

TEST(MeasureGoneTowns, ACityOfTodayWithoutANamelessTownIsNotGone) {
    CWorld::Editions const vPrevious = {{Town("永楽町", "", "1000005")}};
    std::vector<CTown> const vTown = {Town("丸の内", "", "1000005")};
    CMeasured const measured(CWorld(vTown, {}, vPrevious), vTown, {}, vPrevious);
    EXPECT_EQ(measured("gone_towns_old1"), "1/1");
    EXPECT_EQ(measured("gone_cities_towns_old1"), "0/0");
}

TEST(MeasureGoneTowns, BuildingsAreNoTowns) {
    CWorld::Editions const vPrevious = {{Town("中央", "", "9800021"), Town("中央旧ビル（１階）", "", "9806101")}};
    std::vector<CTown> const vTown = {Town("中央", "", "9800021")};
    EXPECT_EQ(CMeasured(CWorld(vTown, {}, vPrevious), vTown, {}, vPrevious)("gone_towns_old1"), "0/0");
}

// --- cities ---

TEST(MeasureCities, ACityIsAskedForOnceWhateverItHolds) {
    std::vector<CTown> const vTown = {Town("千代田", "", "1000001"), Town("以下に掲載がない場合", "", "1000000"),
                                      CTown{"東京都", "港区", "芝", "", "1050014"}};
    EXPECT_EQ(CMeasured(CWorld(vTown), vTown)("city_parts"), "2/2");
}

TEST(MeasureCities, OldTownsAndOldCitiesAreNotAskedFor) {
    CWorld::Editions const vPrevious = {
        {Town("永楽町", "", "1000001"), CTown{"東京都", "旧区", "東", "", "1000001"}}};
    std::vector<CTown> const vTown = {Town("千代田", "", "1000001")};
    EXPECT_EQ(CMeasured(CWorld(vTown, {}, vPrevious), vTown)("city_parts"), "1/1");
}

TEST(MeasureCities, ACityWhosePartsAreOtherEntriesIsMissed) {
    CWorld world(
        {CTown{"東京都", "千代田区", "千代田", "", "1000001"}, CTown{"東京都", "港区", "芝", "", "1050014"}});
    std::vector<unsigned char> vByte = world.Bytes();
    uint32_t const nCity = world.Word(HDR_FIRST_CITY);
    // The first city takes the name of the second, which then is never reached.
    auto* const pNodes = vByte.data() + world.Word(HDR_NODE_TABLE);
    std::copy_n(pNodes + (nCity + 1) * sizeof(tagADDRNODE) + 4, 4, pNodes + nCity * sizeof(tagADDRNODE) + 4);
    qe::RepairChecksum(vByte);
    CTestFolder const folder;
    qe::ReplaceFile(folder.Path("t.dic"), vByte);
    auto const vFigure = Measure(qe::CDictionaryFile(folder.Path("t.dic")), {});
    ASSERT_EQ(vFigure.back().strKey, "city_parts");
    EXPECT_EQ(vFigure.back().nAsked, 2u);
    ASSERT_EQ(vFigure.back().vMiss.size(), 1u);
    EXPECT_EQ(vFigure.back().vMiss[0].strText, "東京都港区");
    EXPECT_EQ(vFigure.back().vMiss[0].strCause, "other addresses");
    EXPECT_EQ(vFigure.back().vMiss[0].strFound, "1 instead of 1");
}

TEST(MeasureCities, ACityThatLosesItsLastTownIsMissed) {
    CWorld world(
        {CTown{"東京都", "千代田区", "千代田", "", "1000001"}, CTown{"東京都", "千代田区", "大手町", "", "1000004"}});
    std::vector<unsigned char> vByte = world.Bytes();
    // One child less: the entry of the second town is there, but no walk meets it.
    --vByte[world.Word(HDR_NODE_TABLE) + world.Word(HDR_FIRST_CITY) * sizeof(tagADDRNODE) +
            offsetof(tagADDRNODE, nChildCount)];
    qe::RepairChecksum(vByte);
    CTestFolder const folder;
    qe::ReplaceFile(folder.Path("t.dic"), vByte);
    auto const vFigure = Measure(qe::CDictionaryFile(folder.Path("t.dic")), {});
    ASSERT_EQ(vFigure.back().vMiss.size(), 1u);
    EXPECT_EQ(vFigure.back().vMiss[0].strFound, "1 instead of 2");
}

// The figure city_parts of a dictionary after a change of its first city's or first town's node.
qe::CFigure CityPartsOfDamaged(CWorld const& world, tagHEADERWORD nFirst, uint32_t nParent) {
    std::vector<unsigned char> vByte = world.Bytes();
    std::memcpy(&vByte[world.Word(HDR_NODE_TABLE) + world.Word(nFirst) * sizeof(tagADDRNODE) +
                       offsetof(tagADDRNODE, nParent)],
                &nParent, sizeof nParent);
    qe::RepairChecksum(vByte);
    CTestFolder const folder;
    qe::ReplaceFile(folder.Path("t.dic"), vByte);
    return Measure(qe::CDictionaryFile(folder.Path("t.dic")), {}).back();
}

TEST(MeasureDamaged, ATownThatIsItsOwnParentComesToAnEnd) {
    CWorld const world({Town("千代田", "", "1000001")});
    EXPECT_EQ(CityPartsOfDamaged(world, HDR_FIRST_TOWN, world.Word(HDR_FIRST_TOWN)).nAsked, 0u)
        << "no city is above the entry";
}

TEST(MeasureDamaged, ACityWithoutAPrefectureIsAskedForByItsOwnName) {
    CWorld const world({Town("千代田", "", "1000001")});
    qe::CFigure const figure = CityPartsOfDamaged(world, HDR_FIRST_CITY, ADDR_NONE);
    EXPECT_EQ(figure.nAsked, 1u);
    EXPECT_EQ(figure.Right(), 1u);
}

TEST(MeasureGoneTowns, ACityDefaultThatTodaysTableLacksIsNoAddressOfToday) {
    std::vector<CTown> const vParts = {Town("大手町（１丁目）", "", "1000004"),
                                       Town("大手町（２丁目）", "", "1000005")};
    std::vector<CTown> vTown = vParts;
    vTown.push_back(Town("以下に掲載がない場合", "", "1000000"));
    CWorld::Editions const vPrevious = {{Town("永楽町", "", "1000000")}};
    EXPECT_EQ(CMeasured(CWorld(vTown, {}, vPrevious), vTown, {}, vPrevious)("gone_towns_old1"), "1/1");
    EXPECT_EQ(CMeasured(CWorld(vTown, {}, vPrevious), vParts, {}, vPrevious)("gone_towns_old1"), "0/1");
}

TEST(Measure, EmptyTablesAskForNothingButTheCities) {
    CMeasured const measured(CWorld(TOWNS), {});
    EXPECT_EQ(measured("town_levels"), "0/0");
    EXPECT_EQ(measured("office_at_its_address"), "0/0");
    EXPECT_EQ(measured("city_parts"), "1/1");
}
