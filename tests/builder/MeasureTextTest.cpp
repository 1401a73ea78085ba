// Addresses as people write them, made of tables: how each question is written, what it asks for, and how an answer is
// judged.
#include "builder/MeasureText.h"
#include "builder/MeasureTextQuestions.h"
#include "builder/MeasureTextWriting.h"
#include "builder/ReplaceFile.h"
#include "tests/builder/World.h"

#include <gmock/gmock.h>

#include <set>
#include <string>
#include <vector>

using testing::AnyOf;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::StartsWith;

namespace {

qe::CMeasuredTables Tables(std::vector<CTown> const& vTown, std::vector<COffice> const& vOffice = {}) {
    CTestFolder const folder;
    qe::CMeasuredTables tables;
    tables.vTown = qe::ReadTownTable(qe::ReadSource(folder.Write("towns.csv", Table(vTown)))).vRow;
    if (!vOffice.empty())
        tables.vOffice = qe::ReadOfficeTable(qe::ReadSource(folder.Write("offices.csv", Table(vOffice))));
    return tables;
}

// The questions of tables, by class.
class CAsked {
  public:
    explicit CAsked(std::vector<CTown> const& vTown, std::vector<COffice> const& vOffice = {})
        : m_questions(qe::TextQuestions(Tables(vTown, vOffice))) {}

    qe::CTextClass const& Class(std::string const& strKey) const {
        for (qe::CTextClass const& asked : m_questions.vClass)
            if (asked.strKey == "text_" + strKey) return asked;
        static qe::CTextClass const none;
        ADD_FAILURE() << "no class " << strKey;
        return none;
    }

    std::vector<std::string> operator()(std::string const& strKey) const {
        std::vector<std::string> vText;
        for (qe::CTextQuestion const& question : Class(strKey).vQuestion) vText.push_back(question.strText);
        return vText;
    }

    // The only question of a class.
    qe::CTextQuestion const& Only(std::string const& strKey) const {
        static qe::CTextQuestion const none;
        EXPECT_EQ(Class(strKey).vQuestion.size(), 1u) << strKey;
        return Class(strKey).vQuestion.empty() ? none : Class(strKey).vQuestion.front();
    }

    // "text: town town: code code" of it.
    std::string Asks(std::string const& strKey) const {
        qe::CTextQuestion const& question = Only(strKey);
        std::string str = question.strText + ":";
        for (qe::CTownKey const& town : question.vTown) str += " " + town.strTown;
        str += ":";
        for (std::string const& strCode : question.codes) str += " " + strCode;
        return str;
    }

    std::vector<std::string> Keys() const {
        std::vector<std::string> vKey;
        for (qe::CTextClass const& asked : m_questions.vClass) vKey.push_back(asked.strKey);
        return vKey;
    }

  private:
    qe::CTextQuestions m_questions;
};

// One row of 京都市中京区.
CTown Kyoto(std::string const& strTown, std::string const& strCode = "6040000") {
    return {"京都府", "京都市中京区", strTown, "", strCode};
}

// What a change makes of a text, over many seeds.
template <typename F>
std::set<std::string> Results(std::string const& strText, F const& change) {
    std::set<std::string> results;
    for (uint64_t nSeed = 0; nSeed < 200; ++nSeed) {
        std::string str = strText;
        qe::CRandom random(nSeed);
        if (change(str, random)) results.insert(str);
    }
    return results;
}

} // namespace

// --- ways of writing ---

TEST(TextWriting, NumbersDependOnTheSeedAlone) {
    qe::CRandom random(1);
    std::vector<uint32_t> vNumber;
    for (int n = 0; n < 6; ++n) vNumber.push_back(random.Below(1000));
    EXPECT_THAT(vNumber, ElementsAre(566, 745, 971, 444, 444, 762));
    std::set<uint32_t> seen;
    for (int n = 0; n < 200; ++n) seen.insert(random.Below(3));
    EXPECT_THAT(seen, ElementsAre(0, 1, 2));
}

TEST(TextWriting, PartsStandInTheOrderOfAnAddress) {
    qe::CWritten written;
    EXPECT_EQ(written.Text(), "");
    written.strBehind = " ビル";
    written.strNumber = "１－２";
    written.strPlace = "西";
    written.strTown = "塗師屋町";
    written.strStreet = "車屋町通御池上る";
    written.strCity = "町";
    written.strCounty = "郡";
    written.strPref = "県";
    written.strCode = "〒123-4567 ";
    EXPECT_EQ(written.Text(), "〒123-4567 県郡町車屋町通御池上る塗師屋町西１－２ ビル");
    written.bHalfWidth = true;
    EXPECT_EQ(written.Text(), "〒123-4567 県 郡町 車屋町通御池上る 塗師屋町 西 1-2 ﾋﾞﾙ");
}

TEST(TextWriting, TwoNumbersDoNotRunIntoEachOther) {
    qe::CWritten written;
    written.strNumber = "１－２";
    for (std::string const strTown : {"二十", "第七", "百", "栄１", "千"}) {
        written.strTown = strTown;
        EXPECT_EQ(written.Text(), strTown + " １－２");
    }
    written.strTown = "三条";
    EXPECT_EQ(written.Text(), "三条１－２");
    written.strTown = "三次";
    written.strCode = "〒7280000";
    EXPECT_EQ(written.Text(), "〒7280000 三次１－２");
}

TEST(TextWriting, HalfWidthIsAsciiAndKatakana) {
    EXPECT_EQ(qe::ToHalfWidth("ガパセンター・ツッヴ　１－２Ａ（〜）"), "ｶﾞﾊﾟｾﾝﾀｰ･ﾂｯヴ 1-2A(〜)");
    EXPECT_EQ(qe::ToHalfWidth("ポデボ一ヶ丘の〒"), "ﾎﾟﾃﾞﾎﾞ一ヶ丘の〒");
}

TEST(TextWriting, KeAndNoAreChangedBehindAKanjiOnly) {
    std::string str = "旭ケ丘七ヶ浜ケープ々ケ";
    EXPECT_TRUE(qe::SwapKe(str));
    EXPECT_EQ(str, "旭ヶ丘七ケ浜ヶープ々ヶ"); // ケ behind 浜 is taken for one, too
    str = "旭ケ丘七ヶ浜";
    EXPECT_TRUE(qe::WriteGa(str));
    EXPECT_EQ(str, "旭が丘七が浜");
    str = "丸の内一ノ関ノのいの";
    EXPECT_TRUE(qe::SwapNo(str));
    EXPECT_EQ(str, "丸ノ内一の関ののいの");
    for (std::string strKept : {"オケト", "いの町", ""}) {
        EXPECT_FALSE(qe::SwapKe(strKept) || qe::WriteGa(strKept) || qe::SwapNo(strKept)) << strKept;
    }
}

TEST(TextWriting, OneKanjiGetsItsOldForm) {
    EXPECT_THAT(Results("広沢", qe::WriteOldKanji), ElementsAre("広澤", "廣沢"));
    EXPECT_THAT(Results("沢沢", qe::WriteOldKanji), ElementsAre("澤澤"));
    EXPECT_THAT(Results("大手", qe::WriteOldKanji), IsEmpty());
    EXPECT_EQ(qe::WithNewKanji("廣澤町濱"), "広沢町浜");
}

TEST(TextWriting, ANumberThatCountsIsWrittenInEveryOtherWay) {
    EXPECT_THAT(Results("北八条西", qe::RewriteNumber), ElementsAre("北8条西", "北８条西"));
    EXPECT_THAT(Results("二十一丁目", qe::RewriteNumber), ElementsAre("21丁目", "二一丁目", "２１丁目"));
    EXPECT_THAT(Results("神楽岡１０条", qe::RewriteNumber), ElementsAre("神楽岡10条", "神楽岡一〇条", "神楽岡十条"));
    EXPECT_THAT(Results("第百五", qe::RewriteNumber), ElementsAre("第105", "第一〇五", "第１０５"));
    EXPECT_THAT(Results("八幡三番町", qe::RewriteNumber), ElementsAre("八幡3番町", "八幡３番町"));
    EXPECT_THAT(Results("八幡", qe::RewriteNumber), IsEmpty());
    EXPECT_THAT(Results("千条", qe::RewriteNumber), IsEmpty());
}

TEST(TextWriting, CodesStandInFrontInEveryWay) {
    std::set<std::string> const texts = Results("", [](std::string& str, qe::CRandom& random) {
        str = qe::CodeInFront("0600042", random);
        return true;
    });
    EXPECT_THAT(texts, ElementsAre("060-0042 ", "〒 ０６０００４２　", "〒060-0042 ", "〒0600042", "〒0600042 ",
                                   "〒０６０－００４２　"));
}

TEST(TextWriting, StreetsOfKyotoTurnToASide) {
    std::set<std::string> const texts = Results("", [](std::string& str, qe::CRandom& random) {
        str = qe::StreetOfKyoto(random);
        return true;
    });
    EXPECT_GT(texts.size(), 100u);
    EXPECT_THAT(texts, Each(AnyOf(EndsWith("上る"), EndsWith("下る"), EndsWith("上ル"), EndsWith("下ル"),
                                  EndsWith("東入"), EndsWith("西入"), EndsWith("入る"), EndsWith("入ル"))));
    EXPECT_THAT(texts, Each(HasSubstr("通")));
}

// --- rows ---

TEST(TextQuestions, HaveAClassForEachWayOfWriting) {
    std::vector<std::string> vKey = {
        "text_rows",   "text_no_prefecture", "text_no_county",   "text_ke",         "text_ga",     "text_no",
        "text_aza",    "text_old_kanji",     "text_town_number", "text_half_width", "text_units",  "text_building",
        "text_street", "text_code",          "text_two_changes", "text_places",     "text_numbers"};
    EXPECT_THAT(CAsked({Town("丸の内", "", "1000005")}).Keys(), ElementsAreArray(vKey));
    vKey.emplace_back("text_offices"); // of a table of organisations
    EXPECT_THAT(CAsked({Town("丸の内", "", "1000005")}, {Office("甲", "丸の内", "１")}).Keys(),
                ElementsAreArray(vKey));
}

// A hundred rows that have what a class asks for: it is expected to ask, and does. One row less: whatever it does is right.
TEST(TextQuestions, AreExpectedOfAClassWhoseRowsAreThere) {
    struct CNeed {
        std::string strKey;
        CTown town; // numbered
    };
    CTown const plain = Town("大手", "", "1000000");
    auto const Rows = [](CTown town, int nRows) {
        std::vector<CTown> vTown;
        std::string const strTown = town.strTown;
        std::string const strName = strTown.substr(0, strTown.find("（"));
        for (int n = 0; n < nRows; ++n) {
            town.strTown = strName + "町甲" + std::to_string(n) + strTown.substr(strName.size());
            town.strCode = std::to_string(1000000 + n);
            vTown.push_back(town);
        }
        return vTown;
    };
    std::vector<CNeed> const vNeed = {{"no_prefecture", plain},
                                      {"no_county", {"広島県", "安芸郡府中町", "大手", "", ""}},
                                      {"ke", Town("旭ケ丘", "", "")},
                                      {"ga", Town("旭ケ丘", "", "")},
                                      {"no", Town("山ノ上", "", "")},
                                      {"aza", plain},
                                      {"old_kanji", Town("大沢", "", "")},
                                      {"town_number", Town("三条", "", "")},
                                      {"half_width", plain},
                                      {"units", plain},
                                      {"building", plain},
                                      {"street", Kyoto("大手")},
                                      {"code", plain},
                                      {"two_changes", plain},
                                      {"places", Town("大手ビル（３階）", "", "")},
                                      {"numbers", Town("大手（１〜３丁目）", "", "")}};
    for (CNeed const& need : vNeed) {
        CAsked const asked(Rows(need.town, 100));
        EXPECT_TRUE(asked.Class(need.strKey).bExpected) << need.strKey;
        EXPECT_FALSE(asked.Class(need.strKey).vQuestion.empty()) << need.strKey;
        EXPECT_FALSE(CAsked(Rows(need.town, 99)).Class(need.strKey).bExpected) << need.strKey;
    }
    CAsked const other(Rows(plain, 100));
    for (char const* pszKey :
         {"no_county", "ke", "ga", "no", "old_kanji", "town_number", "street", "places", "numbers"})
        EXPECT_FALSE(other.Class(pszKey).bExpected) << pszKey;
    EXPECT_TRUE(CAsked({plain}).Class("rows").bExpected);
}

TEST(TextQuestions, AreTheSameEveryTime) {
    std::vector<CTown> vTown;
    for (int n = 0; n < 50; ++n) vTown.push_back(Town("町" + std::to_string(n), "", std::to_string(1000000 + n)));
    CAsked const first(vTown);
    CAsked const second(vTown);
    for (char const* pszKey : {"rows", "building", "two_changes"}) EXPECT_EQ(first(pszKey), second(pszKey));
    EXPECT_NE(first("rows"), first("units")); // another order, too
}

TEST(TextQuestions, ATownIsAskedForWithAllItsCodes) {
    EXPECT_EQ(CAsked({Town("丸の内", "", "1000005")}).Asks("rows"),
              "東京都千代田区丸の内１－２－３: 丸の内: 1000005");
    CAsked const asked({Town("一ツ橋（１、２丁目）", "", "1000003"), Town("一ツ橋（その他）", "", "1010003")});
    EXPECT_THAT(asked("rows"), Each("東京都千代田区一ツ橋１－２－３"));
    for (qe::CTextQuestion const& question : asked.Class("rows").vQuestion)
        EXPECT_THAT(question.codes, ElementsAre("1000003", "1010003"));
}

TEST(TextQuestions, ARowOfTheWholeCityAsksForTheCity) {
    for (char const* pszTown : {"以下に掲載がない場合", "千代田区一円", "千代田区の次に番地がくる場合"})
        EXPECT_EQ(CAsked({Town(pszTown, "", "1000000")}).Asks("rows"), "東京都千代田区１－２－３: : 1000000");
}

TEST(TextQuestions, OfAListOfPlacesTheFirstIsAskedForWithItsOwnCode) {
    std::vector<CTown> const vOther = {Town("抜海村（その他）", "", "1000009")};
    auto const AsksFor = [&](std::string const& strList) {
        std::vector<CTown> vTown = vOther;
        vTown.push_back(Town("抜海村（" + strList + "）", "", "1000001"));
        std::string strAsked;
        CAsked const asked(vTown);
        for (qe::CTextQuestion const& question : asked.Class("rows").vQuestion)
            if (question.codes.count("1000009") == 0 && question.codes.count("1000001") == 1)
                strAsked = question.strText;
        return strAsked;
    };
    EXPECT_EQ(AsksFor("上勇知、下勇知"), "東京都千代田区抜海村上勇知１－２－３");
    EXPECT_EQ(AsksFor("渡戸沢「筍沢温泉」"), "東京都千代田区抜海村渡戸沢筍沢温泉１－２－３");
    EXPECT_EQ(AsksFor("長尾山「その他」"), "東京都千代田区抜海村長尾山１－２－３");
    EXPECT_EQ(AsksFor("土手畑・藤場"), "東京都千代田区抜海村土手畑１－２－３");
    EXPECT_EQ(AsksFor("１７００番地〜、内川内"), "東京都千代田区抜海村内川内１－２－３");
    EXPECT_EQ(AsksFor("猪位金１〜３区、清美町"), "東京都千代田区抜海村清美町１－２－３");
    for (char const* pszNumbers :
         {"１〜１９丁目", "丁目", "番地のみ", "大字", "小伝谷６７", "下久保「１７４を除く」"})
        EXPECT_EQ(AsksFor(pszNumbers), "") << pszNumbers; // the town with both codes
}

TEST(TextQuestions, APlaceOfTwoRowsHasTheCodesOfBoth) {
    CAsked const asked({Town("山田（中一里山「９番地の４を除く」、菊水山）", "", "1000001"),
                        Town("山田（中一里山）", "", "1000002"), Town("山田（その他）", "", "1000003")});
    std::vector<std::string> vFound;
    for (qe::CTextQuestion const& question : asked.Class("rows").vQuestion)
        if (question.strText == "東京都千代田区山田中一里山１－２－３")
            vFound.assign(question.codes.begin(), question.codes.end());
    EXPECT_THAT(vFound, ElementsAre("1000001", "1000002"));
}

TEST(TextQuestions, AFloorAsksForItsOwnCodeInTheTownOfItsBuilding) {
    CAsked const asked({Town("丸の内", "", "1000005"), Town("丸の内丸ビル（２階）", "", "1006302"),
                        Town("丸の内丸ビル（地階・階層不明）", "", "1006390")});
    std::vector<std::string> vFound;
    for (qe::CTextQuestion const& question : asked.Class("rows").vQuestion) {
        vFound.push_back(question.strText + " " + *question.codes.begin());
        EXPECT_EQ(question.codes.size(), 1u);
        EXPECT_EQ(question.vTown.front().strTown, "丸の内");
    }
    EXPECT_THAT(vFound, testing::UnorderedElementsAre("東京都千代田区丸の内１－２－３ 1000005",
                                                      "東京都千代田区丸の内丸ビル２階１－２－３ 1006302",
                                                      "東京都千代田区丸の内丸ビル１－２－３ 1006390"));
    EXPECT_EQ(asked("building").size(), 1u); // not the floors: they have a building
    EXPECT_EQ(asked("aza").size(), 1u);
}

TEST(TextQuestions, AFloorInACityWithoutTownsIsAskedForAsItStands) {
    EXPECT_EQ(CAsked({Town("ＪＡビル（１階）", "", "1006801")}).Asks("rows"),
              "東京都千代田区ＪＡビル１階１－２－３: : 1006801");
}

TEST(TextQuestions, AStreetOfAListInKyotoStandsInFrontOfTheTown) {
    CAsked const asked({Kyoto("槌屋町（小川通夷川下る、小川通二条上る）", "6040061")});
    EXPECT_EQ(asked.Asks("rows"), "京都府京都市中京区小川通夷川下る槌屋町１－２－３: 槌屋町: 6040061");
    EXPECT_THAT(asked("street"), IsEmpty()); // it has one
}

TEST(TextQuestions, ATextThatIsSpelledLikeAnotherTownMayMeanThat) {
    CAsked const asked({Town("旭ケ丘", "", "1000001"), Town("旭ヶ丘", "", "1000002")});
    for (qe::CTextQuestion const& question : asked.Class("ke").vQuestion) {
        EXPECT_TRUE(question.bSeveral);
        EXPECT_THAT(question.codes, ElementsAre("1000001", "1000002"));
        EXPECT_EQ(question.vTown.size(), 2u);
    }
    for (qe::CTextQuestion const& question : asked.Class("rows").vQuestion) EXPECT_FALSE(question.bSeveral);
    for (qe::CTextQuestion const& question : asked.Class("ga").vQuestion) EXPECT_EQ(question.codes.size(), 1u);
}

TEST(TextQuestions, APlaceBehindItsTownMayBeSpelledLikeALongerTown) {
    CAsked const asked({Town("庶路（宮下）", "", "1000001"), Town("庶路宮下", "", "1000002")});
    size_t nSeveral = 0;
    for (qe::CTextQuestion const& question : asked.Class("rows").vQuestion) nSeveral += question.bSeveral;
    EXPECT_EQ(nSeveral, 1u);
}

// --- changes ---

TEST(TextQuestions, EachChangeIsMadeToTheRowsThatHaveSomethingToChange) {
    CTown const town = {"広島県", "安芸郡府中町", "桜ケ丘一の八条", "", "7350000"};
    CAsked const asked({town});
    EXPECT_THAT(asked("no_prefecture"), ElementsAre("安芸郡府中町桜ケ丘一の八条１－２－３"));
    EXPECT_THAT(asked("no_county"), ElementsAre("広島県府中町桜ケ丘一の八条１－２－３"));
    EXPECT_THAT(asked("ke"), ElementsAre("広島県安芸郡府中町桜ヶ丘一の八条１－２－３"));
    EXPECT_THAT(asked("ga"), ElementsAre("広島県安芸郡府中町桜が丘一の八条１－２－３"));
    EXPECT_THAT(asked("no"), ElementsAre("広島県安芸郡府中町桜ケ丘一ノ八条１－２－３"));
    EXPECT_THAT(asked("aza"), ElementsAre("広島県安芸郡府中町大字桜ケ丘一の八条１－２－３"));
    EXPECT_THAT(asked("old_kanji"), ElementsAre(AnyOf("広島県安芸郡府中町櫻ケ丘一の八条１－２－３",
                                                      "広島県安芸郡府中町桜ケ丘一の八條１－２－３")));
    EXPECT_THAT(asked("town_number"), ElementsAre(AnyOf("広島県安芸郡府中町桜ケ丘一の8条１－２－３",
                                                        "広島県安芸郡府中町桜ケ丘一の８条１－２－３")));
    EXPECT_THAT(asked("half_width"), ElementsAre("広島県 安芸郡府中町 桜ｹ丘一の八条 1-2-3"));
    EXPECT_THAT(asked("units"), ElementsAre("広島県安芸郡府中町桜ケ丘一の八条2丁目3番4号"));
    EXPECT_THAT(asked("building"), ElementsAre(MatchesRegex("広島県安芸郡府中町桜ケ丘一の八条１－２－３( |　).+")));
    EXPECT_THAT(asked("street"), IsEmpty());
    EXPECT_THAT(asked("code"), ElementsAre(EndsWith("広島県安芸郡府中町桜ケ丘一の八条１－２－３")));
    EXPECT_THAT(CAsked({Kyoto("槌屋町")})("street"),
                ElementsAre(MatchesRegex("京都府京都市中京区.+通.+槌屋町１－２－３")));
}

TEST(TextQuestions, ARowWithNothingToChangeIsNotAskedFor) {
    CAsked const asked({Town("大手", "", "1000001"), Town("以下に掲載がない場合", "", "1000000")});
    for (char const* pszKey : {"no_county", "ke", "ga", "no", "old_kanji", "town_number", "street"})
        EXPECT_THAT(asked(pszKey), IsEmpty()) << pszKey;
    EXPECT_EQ(asked("aza").size(), 1u); // not the nameless one
    EXPECT_EQ(asked("units").size(), 2u);
}

TEST(TextQuestions, AzaIsLeftOutWhereTheTableHasItAndStandsBeforeThePlaceToo) {
    EXPECT_EQ(CAsked({Town("入会大字地", "", "1000001")}).Asks("aza"),
              "東京都千代田区入会地１－２－３: 入会大字地: 1000001");
    EXPECT_THAT(CAsked({Town("抜海村（上勇知）", "", "1000001")})("aza"),
                ElementsAre("東京都千代田区大字抜海村字上勇知１－２－３"));
}

TEST(TextQuestions, WithoutItsPrefectureATownOfASharedNameMustDecide) {
    CAsked const asked({{"北海道", "伊達市", "旭ケ丘", "", "0520001"},
                        {"北海道", "伊達市", "網代町", "", "0520025"},
                        {"北海道", "伊達市", "以下に掲載がない場合", "", "0520000"},
                        {"福島県", "伊達市", "箱崎", "", "9600501"},
                        {"福島県", "伊達市", "旭ヶ丘", "", "9600502"}});
    EXPECT_THAT(asked("no_prefecture"),
                testing::UnorderedElementsAre("伊達市網代町１－２－３", "伊達市箱崎１－２－３"));
}

TEST(TextQuestions, WithoutItsCountyAVillageMustStayTheOnlyOne) {
    CAsked const asked({{"北海道", "古宇郡泊村", "茅沼村", "", "0450001"},
                        {"北海道", "古宇郡泊村", "本町", "", "0450002"},
                        {"北海道", "国後郡泊村", "本町", "", "0870001"},
                        {"奈良県", "大和郡山市", "北郡山町", "", "6390001"}});
    EXPECT_THAT(asked("no_county"), ElementsAre("北海道泊村茅沼村１－２－３"));
}

TEST(TextQuestions, TwoChangesAreNeverOfTheSameCharacter) {
    std::vector<CTown> vTown;
    for (int n = 0; n < 40; ++n)
        vTown.push_back(Town("旭ケ丘" + Repeat("東", static_cast<size_t>(n)), "", "1000001"));
    std::vector<std::string> const vText = CAsked(vTown)("two_changes");
    EXPECT_GE(vText.size(), 500u);
    EXPECT_LE(vText.size(), 1000u);
    std::set<std::string> const wholes = {"東京都千代田区旭ヶ丘１－２－３", "東京都千代田区旭が丘１－２－３",
                                          "東京都千代田区旭ケ丘１－２－３", "千代田区旭ケ丘１－２－３"};
    for (std::string const& strText : vText) EXPECT_EQ(wholes.count(strText), 0u) << strText; // one change, or none
}

// --- places and numbers of lists ---

TEST(TextQuestions, APlaceIsAskedForByItself) {
    CAsked const asked({Town("以下に掲載がない場合", "", "1000000"), Town("大手町", "", "1000004"),
                        Town("一ツ橋（１、２丁目）", "", "1000003"), Town("抜海村（上勇知）", "", "1000001"),
                        Town("大手町ＪＡビル（１階）", "", "1006801")});
    EXPECT_THAT(asked("places"), testing::UnorderedElementsAre("東京都千代田区抜海村上勇知１－２－３",
                                                               "東京都千代田区大手町ＪＡビル１階１－２－３"));
}

TEST(TextQuestions, ANumberOfAListIsAskedForWithTheCodesOfTheRowsThatHaveIt) {
    auto const Asks = [](std::string const& strList) {
        CAsked const asked(
            {Town("一ツ橋（" + strList + "）", "", "1000003"), Town("一ツ橋（その他）", "", "1010003")});
        return asked("numbers").empty() ? "" : asked.Asks("numbers");
    };
    std::string const strTown = "東京都千代田区一ツ橋";
    std::string const strCode = "５－６: 一ツ橋: 1000003";
    EXPECT_THAT(Asks("１、３丁目"), AnyOf(strTown + "1丁目" + strCode, strTown + "3丁目" + strCode));
    EXPECT_THAT(Asks("８〜９丁目"), AnyOf(strTown + "8丁目" + strCode, strTown + "9丁目" + strCode));
    EXPECT_EQ(Asks("１２番地"), strTown + "12番地" + strCode);
    EXPECT_THAT(Asks("４３０番地以上"), AnyOf(strTown + "430番地" + strCode, strTown + "431番地" + strCode));
    EXPECT_EQ(Asks("第７地割"), strTown + "第7地割５番地: 一ツ橋: 1000003");
    for (char const* pszOther : {"丁目", "４００−２番地", "１区", "３丁目５番地", "上勇知", "４３０番地「１を除く」"})
        EXPECT_EQ(Asks(pszOther), "") << pszOther;
    CAsked const both({Town("一ツ橋（１丁目）", "", "1000003"), Town("一ツ橋（１、２丁目）", "", "1010003"),
                       Town("一ツ橋（１番地）", "", "1000009")});
    for (qe::CTextQuestion const& question : both.Class("numbers").vQuestion)
        if (question.strText.find("1丁目") != std::string::npos) {
            EXPECT_THAT(question.codes, ElementsAre("1000003", "1010003"));
        }
}

// --- organisations ---

TEST(TextQuestions, OrganisationsNameATownInAnySpelling) {
    std::vector<CTown> const vTown = {Town("北一条西", "", "1000001"), Town("正木", "", "1000002"),
                                      Town("正木中", "", "1000003"), Town("以下に掲載がない場合", "", "1000000")};
    auto const Asks = [&](char const* pszTown, char const* pszRest) {
        return CAsked(vTown, {Office("甲", pszTown, pszRest)}).Asks("offices");
    };
    EXPECT_EQ(Asks("北１条西", "２"), "東京都千代田区北１条西２: 北一条西: 1000001");
    EXPECT_EQ(Asks("大字正木", "２"), "東京都千代田区大字正木２: 正木: 1000002");
    EXPECT_EQ(Asks("正木", "中１−１"), "東京都千代田区正木中１−１: 正木 正木中: 1000002 1000003");
    EXPECT_EQ(Asks("正木南", "１"), "東京都千代田区正木南１: 正木: 1000002");
    EXPECT_EQ(Asks("", "正木１"), "東京都千代田区正木１: 正木: 1000002");
    EXPECT_EQ(Asks("", "３９１"), "東京都千代田区３９１: : 1000000");
    EXPECT_EQ(Asks("神田", "１"), "東京都千代田区神田１::"); // the table has no such town
    EXPECT_TRUE(CAsked(vTown, {Office("甲", "正木", "")}).Class("offices").bCandidates);
}

TEST(TextQuestions, OrganisationsOfKyotoNameTheTownBehindTheStreet) {
    COffice const office = {"甲", "京都府", "京都市中京区", "烏丸通御池上る", "４丁目天神北町１", "6048101"};
    EXPECT_EQ(CAsked({Kyoto("烏丸"), Kyoto("天神北町", "6040001")}, {office}).Asks("offices"),
              "京都府京都市中京区烏丸通御池上る４丁目天神北町１: 天神北町: 6040001");
}

// --- answers ---

namespace {

std::vector<qe::CTextFigure> Measured(CWorld const& world, std::vector<CTown> const& vTown,
                                      std::vector<COffice> const& vOffice = {}) {
    CTestFolder const folder;
    qe::ReplaceFile(folder.Path("t.dic"), world.Bytes());
    return qe::MeasureText(qe::CDictionaryFile(folder.Path("t.dic")), Tables(vTown, vOffice));
}

qe::CTextFigure const& Figure(std::vector<qe::CTextFigure> const& vFigure, std::string const& strKey) {
    for (qe::CTextFigure const& figure : vFigure)
        if (figure.strKey == strKey) return figure;
    static qe::CTextFigure const none;
    ADD_FAILURE() << "no figure " << strKey;
    return none;
}

} // namespace

TEST(MeasureText, ADictionaryOfTheTablesReachesEverything) {
    std::vector<CTown> const vTown = {Town("以下に掲載がない場合", "", "1000000"), Town("丸の内", "", "1000005"),
                                      Town("一ツ橋（１、２丁目）", "", "1000003"), Town("旭ケ丘", "", "1000004")};
    std::vector<COffice> const vOffice = {Office("甲", "丸ノ内", "１"), Office("乙", "", "２")};
    std::vector<qe::CTextFigure> const vFigure = Measured(CWorld(vTown, vOffice), vTown, vOffice);
    ASSERT_EQ(vFigure.size(), 19u);
    size_t nAsked = 0;
    for (qe::CTextFigure const& figure : vFigure) {
        EXPECT_TRUE(figure.IsReached()) << figure.strKey;
        EXPECT_EQ(figure.Right(), figure.nAsked) << figure.strKey;
        if (figure.strKey != "text_sure") nAsked += figure.nAsked;
    }
    EXPECT_EQ(Figure(vFigure, "text_rows").nAsked, 4u);
    EXPECT_EQ(Figure(vFigure, "text_offices").nAsked, 2u);
    EXPECT_EQ(Figure(vFigure, "text_sure").nAsked, nAsked);
    EXPECT_EQ(vFigure.back().strKey, "text_sure");
}

TEST(MeasureText, ATownThatTheDictionaryLacksIsMissedAndNotSure) {
    std::vector<CTown> const vTown = {Town("丸の内", "", "1000005"), Town("大手町", "", "1000004")};
    std::vector<qe::CTextFigure> const vFigure = Measured(CWorld({vTown[0]}), vTown);
    qe::CTextFigure const& rows = Figure(vFigure, "text_rows");
    ASSERT_EQ(rows.vMiss.size(), 1u);
    EXPECT_EQ(rows.vMiss[0].strText, "東京都千代田区大手町１－２－３");
    EXPECT_EQ(rows.vMiss[0].strCause, "no town found");
    EXPECT_THAT(rows.vMiss[0].strFound, StartsWith("東京都|千代田区||"));
    EXPECT_FALSE(rows.IsReached());
    EXPECT_EQ(Figure(vFigure, "text_sure").Right(), Figure(vFigure, "text_sure").nAsked);
}

TEST(MeasureText, AnotherCodeOfTheRightTownIsMissed) {
    std::vector<qe::CTextFigure> const vFigure =
        Measured(CWorld({Town("丸の内", "", "1000009")}), {Town("丸の内", "", "1000005")});
    EXPECT_THAT(Figure(vFigure, "text_rows").Causes(), ElementsAre(testing::Pair("the town, another code", 1u)));
    EXPECT_EQ(Figure(vFigure, "text_sure").vMiss.size(), 0u);
}

TEST(MeasureText, AnotherTownThatIsTakenForSureIsToldAsSuch) {
    // To the dictionary the text is a town and a place behind it; the table has a longer town.
    std::vector<CTown> const vTown = {Town("名駅", "", "4500002"), Town("名駅南", "", "4500002")};
    std::vector<qe::CTextFigure> const vFigure =
        Measured(CWorld({vTown[0], Town("名駅（南）", "", "4500002")}), vTown);
    qe::CTextFigure const& rows = Figure(vFigure, "text_rows");
    EXPECT_EQ(rows.Right(), rows.nAsked); // the code is right
    EXPECT_EQ(rows.nSureWrong, 1u);
    qe::CTextFigure const& sure = Figure(vFigure, "text_sure");
    EXPECT_FALSE(sure.IsReached());
    EXPECT_GE(sure.nSureWrong, 1u);
    EXPECT_EQ(sure.vMiss.size(), sure.nSureWrong);
}

TEST(MeasureText, AnOrganisationsTownNeedsItsCodeAmongTheCandidates) {
    std::vector<COffice> const vOffice = {Office("甲", "丸の内", "１"), Office("乙", "神田", "１")};
    std::vector<qe::CTextFigure> const vFigure =
        Measured(CWorld({Town("丸の内", "", "1000009")}, vOffice), {Town("丸の内", "", "1000005")}, vOffice);
    qe::CTextFigure const& offices = Figure(vFigure, "text_offices");
    EXPECT_EQ(offices.Right(), 0u);
    EXPECT_EQ(offices.nUnknown, 1u);
    EXPECT_THAT(offices.Causes(), ElementsAre(testing::Pair("the table has no such town", 1u),
                                              testing::Pair("the town, another code", 1u)));
}

// Two cities of one name, and the same towns in both: no row can do without its prefecture.
TEST(MeasureText, AClassThatAsksNothingAlthoughItsRowsAreThereIsNotReached) {
    std::vector<CTown> vTown;
    for (char const* pszPref : {"東京都", "広島県"})
        for (int n = 0; n < 50; ++n)
            vTown.push_back({pszPref, "府中市", "町" + std::to_string(n), "", std::to_string(1000000 + n)});
    std::vector<qe::CTextFigure> const vFigure = Measured(CWorld(vTown), vTown);
    qe::CTextFigure const& figure = Figure(vFigure, "text_no_prefecture");
    EXPECT_EQ(figure.nAsked, 0u);
    EXPECT_FALSE(figure.IsReached());
    EXPECT_TRUE(Figure(vFigure, "text_rows").IsReached());
    EXPECT_TRUE(Figure(vFigure, "text_street").IsReached()) << "none is expected outside of Kyoto";
}

TEST(MeasureText, ALimitIsReachedExactly) {
    qe::CTextFigure figure;
    EXPECT_TRUE(figure.IsReached()); // nothing was asked
    figure.bExpected = true;
    EXPECT_FALSE(figure.IsReached()); // and it should have been
    figure.nWanted = 9995;
    figure.nAsked = 10000;
    figure.vMiss.resize(5);
    EXPECT_TRUE(figure.IsReached());
    figure.vMiss.resize(6);
    EXPECT_FALSE(figure.IsReached());
    figure.nAsked = 2000;
    figure.vMiss.resize(1);
    EXPECT_TRUE(figure.IsReached());
    figure.nAsked = 1999;
    EXPECT_FALSE(figure.IsReached());
}
