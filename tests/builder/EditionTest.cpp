// The towns of one edition, and which town of a later edition takes a town's place.
#include "builder/Edition.h"

#include <gmock/gmock.h>

#include <random>
#include <set>
#include <string>
#include <vector>

using qe::CEdition;
using qe::CEditionTown;
using qe::CTownKey;
using qe::EditDistance;
using qe::ERule;
using qe::FoldOldName;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

CEditionTown Town(std::string const& strCity, std::string const& strTown, std::string const& strCode,
                  bool bOwnCode = true) {
    CEditionTown town;
    town.key = {"静岡県", strCity, strTown};
    town.strCode = strCode;
    town.bOwnCode = bOwnCode;
    return town;
}

CEdition Edition(std::vector<CEditionTown> const& vTown) {
    CEdition edition;
    for (CEditionTown const& town : vTown) edition.Add(town);
    return edition;
}

// The town of a city and its code, for one line of a table.
qe::CTownRow Row(std::string const& strCity, std::string const& strTown, std::string const& strCode,
                 std::string const& strKana = "") {
    qe::CTownRow row;
    row.strPref = "静岡県";
    row.strCity = strCity;
    row.strTown = strTown;
    row.strTownKana = strKana;
    row.strCode = strCode;
    row.strOldCode = strCode.substr(0, 5);
    return row;
}

CEdition FromRows(std::vector<qe::CTownRow> const& vRow, size_t* pnBuildings = nullptr) {
    CEdition edition;
    size_t nBuildings = 0;
    edition.AddRows(vRow, nBuildings);
    if (pnBuildings != nullptr) *pnBuildings = nBuildings;
    return edition;
}

std::vector<std::string> Paths(std::vector<CEditionTown const*> const& vTown) {
    std::vector<std::string> vPath;
    for (CEditionTown const* pTown : vTown) vPath.push_back(pTown->key.strCity + "/" + pTown->key.strTown);
    return vPath;
}

// "city/town: rule" of the first old town's successor.
std::string Next(std::vector<CEditionTown> const& vThen, std::vector<CEditionTown> const& vNow) {
    CEdition const then = Edition(vThen);
    CEdition const now = Edition(vNow);
    qe::CSuccession const next = FindSuccessor(then.Towns().front(), then, now);
    std::string const strRule = RuleName(next.nRule);
    return next.pTown == nullptr ? strRule : next.pTown->key.strCity + "/" + next.pTown->key.strTown + ": " + strRule;
}

} // namespace

// --- an edition ---

TEST(Edition, ATownIsFoundByItsNames) {
    CEdition const edition = Edition({Town("湖西市", "新居", "4310301"), Town("湖西市", "", "4310400")});
    ASSERT_NE(edition.Find({"静岡県", "湖西市", "新居"}), nullptr);
    EXPECT_EQ(edition.Find({"静岡県", "湖西市", "新居"})->strCode, "4310301");
    EXPECT_EQ(edition.Find({"静岡県", "湖西市", ""})->strCode, "4310400");
    EXPECT_EQ(edition.Find({"静岡県", "湖西市", "新"}), nullptr);
    EXPECT_EQ(edition.Find({"静岡県", "磐田市", "新居"}), nullptr);
    EXPECT_EQ(edition.Find({"愛知県", "湖西市", "新居"}), nullptr);
}

TEST(Edition, TownsStandInTheOrderOfTheTableEachOnce) {
    CEdition const edition = Edition({Town("乙市", "南", "1"), Town("甲市", "東", "2"), Town("乙市", "南", "3")});
    std::vector<std::string> vName;
    for (CEditionTown const& town : edition.Towns()) vName.push_back(town.key.strTown);
    EXPECT_THAT(vName, ElementsAre("南", "東"));
}

TEST(Edition, ACityIsKnownByAnyOfItsTowns) {
    CEdition const edition = Edition({Town("湖西市", "新居", "4310301")});
    EXPECT_TRUE(edition.HasCity({"静岡県", "湖西市", ""}));
    EXPECT_FALSE(edition.HasCity({"静岡県", "磐田市", ""}));
    EXPECT_THAT(Paths(edition.TownsOf({"静岡県", "湖西市", ""})), ElementsAre("湖西市/新居"));
    EXPECT_THAT(edition.TownsOf({"静岡県", "磐田市", ""}), IsEmpty());
    EXPECT_THAT(edition.CodesOf({"静岡県", "湖西市", ""}), ElementsAre("4310301"));
    EXPECT_THAT(edition.CodesOf({"静岡県", "磐田市", ""}), IsEmpty());
}

TEST(Edition, ATownsCodesAllFindItOnce) {
    CEdition const edition =
        Edition({Town("甲市", "東", "1"), Town("甲市", "東", "2"), Town("甲市", "東", "1"), Town("乙市", "西", "1")});
    EXPECT_THAT(Paths(edition.WithCode("1")), ElementsAre("甲市/東", "乙市/西"));
    EXPECT_THAT(Paths(edition.WithCode("2")), ElementsAre("甲市/東"));
    EXPECT_THAT(edition.WithCode("3"), IsEmpty());
    EXPECT_THAT(edition.WithCode(""), IsEmpty());
}

TEST(Edition, TheFirstCodeOfATownIsItsOwn) {
    CEdition const edition = Edition({Town("甲市", "東", "1"), Town("甲市", "東", "2")});
    EXPECT_EQ(edition.Towns().front().strCode, "1");
}

TEST(Edition, ACodeOfItsOwnTakesThePlaceOfASubdivisionsOnce) {
    CEditionTown own = Town("甲市", "東", "3");
    own.strOldCode = "33";
    CEdition const edition = Edition({Town("甲市", "東", "1", false), Town("甲市", "東", "2", false), own,
                                      Town("甲市", "東", "4"), Town("甲市", "東", "5", false)});
    EXPECT_EQ(edition.Towns().front().strCode, "3");
    EXPECT_EQ(edition.Towns().front().strOldCode, "33");
    EXPECT_TRUE(edition.Towns().front().bOwnCode);
    for (char const* pszCode : {"1", "2", "3", "4", "5"})
        EXPECT_THAT(Paths(edition.WithCode(pszCode)), ElementsAre("甲市/東")) << pszCode;
}

TEST(Edition, WithoutACodeOfItsOwnATownHasItsFirstSubdivisions) {
    CEdition const edition = Edition({Town("甲市", "東", "2", false), Town("甲市", "東", "1", false)});
    EXPECT_EQ(edition.Towns().front().strCode, "2");
    EXPECT_FALSE(edition.Towns().front().bOwnCode);
}

// --- rows of a table ---

TEST(EditionRows, ARowIsReadAsTheCompilerReadsIt) {
    CEdition const edition = FromRows({Row("甲市", "東", "4310001", "ヒガシ"),
                                       Row("甲市", "西（１〜３丁目）", "4310002", "ニシ（１−３チョウメ）"),
                                       Row("甲市", "北（その他）", "4310003", "キタ（ソノタ）"),
                                       Row("甲市", "以下に掲載がない場合", "4310000", "イカニ")});
    std::vector<std::string> vTown;
    for (CEditionTown const& town : edition.Towns())
        vTown.push_back(town.key.strTown + "|" + town.strTownKana + "|" + town.strCode + "|" + town.strOldCode + "|" +
                        (town.bOwnCode ? "own" : "part"));
    EXPECT_THAT(vTown, ElementsAre("東|ヒガシ|4310001|43100|own", "西|ニシ|4310002|43100|part",
                                   "北|キタ|4310003|43100|own", "||4310000|43100|own"));
}

TEST(EditionRows, TheRestOfAListGivesTheTownItsOwnCode) {
    CEdition const edition =
        FromRows({Row("甲市", "東（１丁目）", "4310001"), Row("甲市", "東（２丁目、その他）", "4310002")});
    ASSERT_EQ(edition.Towns().size(), 1u);
    EXPECT_EQ(edition.Towns().front().strCode, "4310002");
}

TEST(EditionRows, TheCitysOwnNumbersAreTheNamelessTown) {
    CEdition const edition =
        FromRows({Row("甲町", "甲町の次に１〜６番地がくる場合", "4310001"), Row("乙村", "乙村一円", "4310002"),
                  Row("丙市", "大島町の次に番地がくる場合", "4310003")});
    EXPECT_NE(edition.Find({"静岡県", "甲町", ""}), nullptr);
    EXPECT_NE(edition.Find({"静岡県", "乙村", ""}), nullptr);
    EXPECT_EQ(edition.Find({"静岡県", "丙市", ""}), nullptr);
    EXPECT_NE(edition.Find({"静岡県", "丙市", "大島町"}), nullptr);
}

TEST(EditionRows, FloorsArePassedOverAndCounted) {
    size_t nBuildings = 0;
    CEdition const edition =
        FromRows({Row("甲市", "中央（次のビルを除く）", "9800021"), Row("甲市", "中央アエル（１階）", "9806101"),
                  Row("甲市", "中央アエル（地階・階層不明）", "9806190")},
                 &nBuildings);
    EXPECT_EQ(nBuildings, 2u);
    EXPECT_THAT(Paths(edition.TownsOf({"静岡県", "甲市", ""})), ElementsAre("甲市/中央"));
    EXPECT_THAT(edition.WithCode("9806101"), IsEmpty());
}

TEST(EditionRows, ATownKnowsTheLineThatNamesItFirst) {
    std::vector<qe::CTownRow> vRow = {Row("甲市", "東（１丁目）", "4310001"), Row("甲市", "東", "4310002")};
    vRow[0].nLine = 7;
    vRow[1].nLine = 9;
    vRow[0].strPrefKana = "シズオカケン";
    vRow[0].strCityKana = "コウシ";
    CEdition const edition = FromRows(vRow);
    EXPECT_EQ(edition.Towns().front().nLine, 7u);
    EXPECT_EQ(edition.Towns().front().strPrefKana, "シズオカケン");
    EXPECT_EQ(edition.Towns().front().strCityKana, "コウシ");
}

TEST(EditionRows, ALongNameIsCutAsInTheDictionary) {
    std::string strLong;
    for (int n = 0; n < 50; ++n) strLong += "東";
    CEdition const edition = FromRows({Row("甲市", strLong, "4310001")});
    EXPECT_EQ(edition.Towns().front().key.strTown, strLong.substr(0, 126));
}

// --- the rules ---

TEST(Successor, TheOnlyTownOfTheCodeIsItWhateverItsName) {
    EXPECT_EQ(Next({Town("浜松市中区", "助信町", "4300903")}, {Town("浜松市中央区", "まるで別", "4300903")}),
              "浜松市中央区/まるで別: same code");
}

TEST(Successor, ACodeWinsOverTheNameInTheSameCity) {
    EXPECT_EQ(Next({Town("甲市", "東町", "1")}, {Town("甲市", "東", "2"), Town("乙市", "西", "1")}),
              "乙市/西: same code");
}

TEST(Successor, OfSeveralOfTheCodeTheEqualNameIsIt) {
    EXPECT_EQ(Next({Town("旧市", "東町", "1")},
                   {Town("甲市", "東", "1"), Town("甲市", "東町", "1"), Town("甲市", "東町区", "1")}),
              "甲市/東町: same code and name");
}

TEST(Successor, ElseTheNameThatIsEqualAfterFolding) {
    EXPECT_EQ(Next({Town("甲市", "桜ヶ丘", "1")}, {Town("甲市", "桜丘", "1"), Town("甲市", "櫻が丘町", "1")}),
              "甲市/櫻が丘町: same code and folded name");
}

TEST(Successor, ElseTheNameWithTheFewestCharactersToChange) {
    EXPECT_EQ(Next({Town("甲市", "上新田東", "1")},
                   {Town("甲市", "下新井", "1"), Town("甲市", "新田東", "1"), Town("甲市", "上原", "1")}),
              "甲市/新田東: same code and closest name");
}

TEST(Successor, DistanceIsMeasuredOnTheFoldedNames) {
    // Unfolded the first one would be closer.
    EXPECT_EQ(Next({Town("甲市", "三十四ヶ丘町", "1")},
                   {Town("甲市", "三十四ヶ森山", "1"), Town("甲市", "３４が丘北", "1")}),
              "甲市/３４が丘北: same code and closest name");
}

TEST(Successor, ATieGoesToTheSameCity) {
    EXPECT_EQ(
        Next({Town("乙市", "東", "1")}, {Town("甲市", "東", "1"), Town("乙市", "東", "1"), Town("丙市", "東", "1")}),
        "乙市/東: same code and name");
    EXPECT_EQ(Next({Town("乙市", "東町", "1")},
                   {Town("甲市", "東", "1"), Town("乙市", "東", "1"), Town("乙市", "東区", "1")}),
              "乙市/東: same code and folded name");
    EXPECT_EQ(Next({Town("乙市", "東山", "1")}, {Town("甲市", "東川", "1"), Town("乙市", "西山", "1")}),
              "乙市/西山: same code and closest name");
}

TEST(Successor, ATieWithinACityGoesToTheFirstOfTheTable) {
    EXPECT_EQ(Next({Town("乙市", "東山", "1")}, {Town("乙市", "西山", "1"), Town("乙市", "東川", "1")}),
              "乙市/西山: same code and closest name");
    EXPECT_EQ(Next({Town("乙市", "東山", "1")}, {Town("丙市", "東川", "1"), Town("甲市", "西山", "1")}),
              "丙市/東川: same code and closest name");
}

TEST(Successor, ACloserNameWinsOverTheSameCity) {
    EXPECT_EQ(Next({Town("乙市", "東山町", "1")}, {Town("乙市", "東川", "1"), Town("甲市", "東山", "1")}),
              "甲市/東山: same code and folded name");
}

TEST(Successor, ATownIsFoundByASubdivisionsCodeToo) {
    EXPECT_EQ(Next({Town("甲市", "東町", "2")}, {Town("甲市", "東", "1"), Town("甲市", "東", "2", false)}),
              "甲市/東: same code");
}

TEST(Successor, TheNamelessTownOfAnOldCityPrefersANamelessOne) {
    EXPECT_EQ(Next({Town("旧市", "", "1")}, {Town("甲市", "東", "1"), Town("甲市", "", "1")}),
              "甲市/: same code and name");
}

TEST(Successor, WithoutTheCodeItIsTheSameNameInTheHeirOfTheCity) {
    EXPECT_EQ(
        Next({Town("旧市", "東町", "9"), Town("旧市", "西", "1"), Town("旧市", "南", "2"), Town("旧市", "北", "3")},
             {Town("甲市", "東町", "4"), Town("甲市", "甲", "1"), Town("乙市", "東町", "5"), Town("乙市", "乙", "2"),
              Town("乙市", "丙", "3")}),
        "乙市/東町: same name in the heir of the city");
}

TEST(Successor, AnEqualNameWinsOverAFoldedOneInTheHeir) {
    EXPECT_EQ(Next({Town("甲市", "東町", "9"), Town("甲市", "西", "1")},
                   {Town("甲市", "東", "4"), Town("甲市", "東町", "5"), Town("甲市", "西", "1")}),
              "甲市/東町: same name in the heir of the city");
}

TEST(Successor, OfFoldedNamesInTheHeirTheFirstIsIt) {
    EXPECT_EQ(Next({Town("甲市", "東町", "9"), Town("甲市", "西", "1")},
                   {Town("甲市", "西", "1"), Town("甲市", "東区", "4"), Town("甲市", "東", "5")}),
              "甲市/東区: same name in the heir of the city");
}

TEST(Successor, ElseItIsTheDefaultOfTheHeir) {
    EXPECT_EQ(Next({Town("旧市", "東町", "9"), Town("旧市", "西", "1")},
                   {Town("甲市", "", "4"), Town("乙市", "西", "1"), Town("乙市", "", "5")}),
              "乙市/: default of the heir of the city");
}

TEST(Successor, ElseThereIsNone) {
    EXPECT_EQ(
        Next({Town("旧市", "東町", "9"), Town("旧市", "西", "1")}, {Town("甲市", "", "4"), Town("乙市", "西", "1")}),
        "none");
    EXPECT_EQ(Next({Town("旧市", "東町", "9")}, {Town("甲市", "東町", "1"), Town("甲市", "", "4")}), "none");
    EXPECT_EQ(Next({Town("旧市", "東町", "9")}, {}), "none");
}

TEST(Successor, ACityWithoutAnyOfItsCodesLeftIsItsOwnHeir) {
    EXPECT_EQ(Next({Town("甲市", "東町", "9")}, {Town("甲市", "東", "1"), Town("甲市", "", "4")}),
              "甲市/東: same name in the heir of the city");
}

TEST(Successor, OfHeirsWithAsManyCodesTheOldCityItselfIsIt) {
    EXPECT_EQ(Next({Town("甲市", "東", "9"), Town("甲市", "西", "1"), Town("甲市", "南", "2")},
                   {Town("乙市", "西", "1"), Town("乙市", "", "3"), Town("甲市", "南", "2"), Town("甲市", "", "4")}),
              "甲市/: default of the heir of the city");
}

TEST(Successor, OfOtherHeirsWithAsManyCodesTheOneOfTheFirstCodeIsIt) {
    EXPECT_EQ(Next({Town("旧市", "東", "9"), Town("旧市", "西", "1"), Town("旧市", "南", "2")},
                   {Town("甲市", "南", "2"), Town("甲市", "", "4"), Town("乙市", "西", "1"), Town("乙市", "", "3")}),
              "乙市/: default of the heir of the city");
}

TEST(Successor, AnotherCityWithMoreOfTheCodesIsTheHeirThoughTheCityIsStillThere) {
    EXPECT_EQ(
        Next({Town("甲市", "東", "9"), Town("甲市", "西", "1"), Town("甲市", "南", "2"), Town("甲市", "北", "3")},
             {Town("甲市", "西", "1"), Town("甲市", "", "4"), Town("乙市", "南", "2"), Town("乙市", "北", "3"),
              Town("乙市", "", "5")}),
        "乙市/: default of the heir of the city");
}

// What counts is the codes that a city took over, not in how many of its towns they are in use.
TEST(Successor, ACodeOfSeveralTownsCountsOnceForTheirCity) {
    EXPECT_EQ(
        Next({Town("旧市", "東", "9"), Town("旧市", "西", "1"), Town("旧市", "南", "2"), Town("旧市", "北", "3")},
             {Town("甲市", "一", "1"), Town("甲市", "二", "1"), Town("甲市", "三", "1"), Town("甲市", "", "4"),
              Town("乙市", "南", "2"), Town("乙市", "北", "3"), Town("乙市", "", "5")}),
        "乙市/: default of the heir of the city");
}

TEST(Successor, ACodeOfSeveralOldTownsCountsOnceToo) {
    EXPECT_EQ(Next({Town("旧市", "東", "9"), Town("旧市", "一", "1"), Town("旧市", "二", "1"),
                    Town("旧市", "三", "1"), Town("旧市", "南", "2"), Town("旧市", "北", "3")},
                   {Town("甲市", "山", "1"), Town("甲市", "", "4"), Town("乙市", "南", "2"), Town("乙市", "北", "3"),
                    Town("乙市", "", "5")}),
              "乙市/: default of the heir of the city");
}

TEST(Successor, ATownWhoseNameIsOnlyTheEndOfOneIsNotTheNamelessTown) {
    EXPECT_EQ(Next({Town("七戸町", "町", "9"), Town("七戸町", "西", "1")},
                   {Town("七戸町", "", "4"), Town("七戸町", "西", "1")}),
              "七戸町/: default of the heir of the city");
    EXPECT_EQ(Next({Town("七戸町", "町", "1")},
                   {Town("七戸町", "", "1"), Town("七戸町", "町一", "1"), Town("七戸町", "町", "1")}),
              "七戸町/町: same code and name");
    EXPECT_EQ(Next({Town("七戸町", "町", "1")}, {Town("七戸町", "東", "1"), Town("七戸町", "", "1")}),
              "七戸町/東: same code and closest name");
}

TEST(Successor, CitiesOfOneNameInTwoPrefecturesAreTwo) {
    CEditionTown other = Town("甲市", "東町", "4");
    other.key.strPref = "愛知県";
    EXPECT_EQ(Next({Town("甲市", "東町", "9")}, {other}), "none");
}

TEST(Successor, EveryRuleHasANameOfItsOwn) {
    std::set<std::string> names;
    for (ERule nRule : {ERule::None, ERule::Code, ERule::CodeName, ERule::CodeFolded, ERule::CodeClosest, ERule::Name,
                        ERule::CityDefault})
        names.insert(RuleName(nRule));
    EXPECT_EQ(names.size(), 7u);
    EXPECT_EQ(names.count(""), 0u);
}

TEST(TownKey, IsOrderedByPrefectureCityAndTownAndWritesItself) {
    CTownKey const key = {"静岡県", "浜松市中区", "助信町"};
    EXPECT_EQ(key.Path(), "静岡県/浜松市中区/助信町");
    EXPECT_EQ((CTownKey{"静岡県", "浜松市中区", ""}.Path()), "静岡県/浜松市中区/");
    EXPECT_TRUE((CTownKey{"静岡県", "浜松市中区", ""}) < key);
    EXPECT_FALSE(key < key);
    EXPECT_TRUE(key < (CTownKey{"静岡県", "浜松市南区", "あ"}));
}

// --- folding ---

TEST(FoldOldName, VariantsOfACharacterAreOne) {
    for (auto const& [pszOld, pszNew] : std::vector<std::pair<char const*, char const*>>{{"函舘", "函館"},
                                                                                         {"檜山", "桧山"},
                                                                                         {"澤", "沢"},
                                                                                         {"濱松", "浜松"},
                                                                                         {"渡邊", "渡辺"},
                                                                                         {"渡邉", "渡邊"},
                                                                                         {"冨士", "富士"},
                                                                                         {"嶋", "島"},
                                                                                         {"廣田", "広田"},
                                                                                         {"龍", "竜"},
                                                                                         {"曾根", "曽根"},
                                                                                         {"籠", "篭"}})
        EXPECT_EQ(FoldOldName(pszOld), FoldOldName(pszNew)) << pszOld;
}

TEST(FoldOldName, WardsAndQuartersAreDropped) {
    EXPECT_EQ(FoldOldName("助信町"), "助信");
    EXPECT_EQ(FoldOldName("町田区"), "田");
    EXPECT_EQ(FoldOldName("町"), "町"); // not the nameless town
    EXPECT_EQ(FoldOldName("区町"), "区町");
    EXPECT_EQ(FoldOldName("市村"), "市村");
}

TEST(FoldOldName, HiraganaAndSmallKanaAreLargeKatakana) {
    EXPECT_EQ(FoldOldName("さくら"), "サクラ");
    EXPECT_EQ(FoldOldName("ひゃっこ"), "ヒヤツコ");
    EXPECT_EQ(FoldOldName("ァィゥェォッャュョヮ"), "アイウエオツヤユヨワ");
    EXPECT_EQ(FoldOldName("ぁぃぅぇぉっゃゅょゎ"), "アイウエオツヤユヨワ");
    EXPECT_EQ(FoldOldName("一ヵ谷"), FoldOldName("一カ谷"));
    EXPECT_EQ(FoldOldName("一ゕ谷"), FoldOldName("一カ谷"));
    EXPECT_EQ(FoldOldName("ぁ"), "ア"); // first and last of the row of hiragana
    EXPECT_EQ(FoldOldName("ゖ"), "ケ");
    EXPECT_EQ(FoldOldName("ん"), "ン");
    EXPECT_EQ(FoldOldName("む"), "ム"); // U+3080 begins with another second byte than め
    EXPECT_EQ(FoldOldName("み"), "ミ");
}

TEST(FoldOldName, EveryHiraganaBecomesItsKatakana) {
    for (int n = 0; n < 0x56; ++n) {
        int const nHiragana = 0x3041 + n;
        std::string const strHiragana = {static_cast<char>(0xE3), static_cast<char>(0x80 | (nHiragana >> 6 & 0x3F)),
                                         static_cast<char>(0x80 | (nHiragana & 0x3F))};
        int const nKatakana = nHiragana + 0x60;
        std::string const strKatakana = {static_cast<char>(0xE3), static_cast<char>(0x80 | (nKatakana >> 6 & 0x3F)),
                                         static_cast<char>(0x80 | (nKatakana & 0x3F))};
        EXPECT_EQ(FoldOldName(strHiragana), FoldOldName(strKatakana)) << strHiragana;
    }
}

TEST(FoldOldName, WhatOrganisationsTownsFoldIsFolded) {
    EXPECT_EQ(FoldOldName("大字霞が関"), FoldOldName("霞ヶ関"));
    EXPECT_EQ(FoldOldName("北１条西"), FoldOldName("北一条西"));
    EXPECT_EQ(FoldOldName("丸の内"), FoldOldName("丸ノ内"));
    EXPECT_EQ(FoldOldName("丸之内"), FoldOldName("丸ノ内"));
}

TEST(FoldOldName, OtherCharactersStay) {
    EXPECT_EQ(FoldOldName(""), "");
    EXPECT_EQ(FoldOldName("東山Ａb𠮷、゛"), "東山Ａb𠮷、゛");
    EXPECT_NE(FoldOldName("東"), FoldOldName("西"));
}

TEST(FoldOldName, BytesThatAreNoCharactersDoNoHarm) {
    EXPECT_EQ(FoldOldName("\xE3\x81"), "\xE3\x81");
    EXPECT_EQ(FoldOldName("\x80\xFF町"), "\x80\xFF");
}

// --- distance ---

TEST(EditDistance, OfEqualTextsIsNothing) {
    EXPECT_EQ(EditDistance("", ""), 0u);
    EXPECT_EQ(EditDistance("東山", "東山"), 0u);
}

TEST(EditDistance, FromNothingIsEveryCharacter) {
    EXPECT_EQ(EditDistance("", "東山町"), 3u);
    EXPECT_EQ(EditDistance("東山町", ""), 3u);
}

TEST(EditDistance, CountsCharactersNotBytes) {
    EXPECT_EQ(EditDistance("東", "西"), 1u);
    EXPECT_EQ(EditDistance("a", "東"), 1u);
    EXPECT_EQ(EditDistance("𠮷", "吉"), 1u);
}

TEST(EditDistance, CountsInsertedRemovedAndReplacedOnes) {
    EXPECT_EQ(EditDistance("東山", "東山町"), 1u);
    EXPECT_EQ(EditDistance("東山町", "山町"), 1u);
    EXPECT_EQ(EditDistance("東山町", "東川町"), 1u);
    EXPECT_EQ(EditDistance("東山", "山東"), 2u);
    EXPECT_EQ(EditDistance("kitten", "sitting"), 3u);
    EXPECT_EQ(EditDistance("abcdef", "azced"), 3u);
}

TEST(EditDistance, IsTheSameBothWaysAndNeverLongerThanAWayAround) {
    std::mt19937 random(20260529);
    auto const Any = [&] {
        std::string str;
        for (unsigned n = static_cast<unsigned>(random() % 7); n > 0; --n)
            str += std::vector<std::string>{"東", "山", "a"}[random() % 3];
        return str;
    };
    for (int nRound = 0; nRound < 500; ++nRound) {
        std::string const a = Any(), b = Any(), c = Any();
        EXPECT_EQ(EditDistance(a, b), EditDistance(b, a)) << a << " " << b;
        EXPECT_EQ(EditDistance(a, b) == 0, a == b) << a << " " << b;
        EXPECT_LE(EditDistance(a, c), EditDistance(a, b) + EditDistance(b, c)) << a << " " << b << " " << c;
    }
}
