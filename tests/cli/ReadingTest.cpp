// Addresses as people write them: `qeadrs addr`, `latest` and `batch` over what text/ makes of them, and `qeadrs explain`.
#include "tests/cli/CliTest.h"

#include <algorithm>

#include <nlohmann/json.hpp>

using nlohmann::json;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

// 清水市 has become a part of 静岡市.
std::vector<CEntryText> const RENAMED = {
    {"4240001", {{0, "静岡県"}, {1, "清水市"}, {2, "港町"}}, 1},
    {"4240943", {{0, "静岡県"}, {1, "静岡市"}, {2, "清水区港町"}}},
};

// Two towns of one name, with an organisation in each and one in both, and a city that has neither.
std::vector<CEntryText> const TWINS = {
    {"9518121", {{0, "新潟県"}, {1, "新潟市中央区"}, {2, "水道町"}}},
    {"9518500", {{0, "新潟県"}, {1, "新潟市中央区"}, {2, "水道町"}, {7, "架空銀行"}}},
    {"2600000", {{0, "千葉県"}, {1, "千葉市中央区"}, {2, ""}}},
    {"5400000", {{0, "大阪府"}, {1, "大阪市中央区"}, {2, ""}}},
    {"8600844", {{0, "熊本県"}, {1, "熊本市中央区"}, {2, "水道町"}}},
    {"8608500", {{0, "熊本県"}, {1, "熊本市中央区"}, {2, "水道町"}, {7, "架空銀行"}}},
    {"8608517", {{0, "熊本県"}, {1, "熊本市中央区"}, {2, "水道町"}, {7, "見本ホテル"}}},
};
char const TWINS_FIT[] =
    "4 cities fit: 新潟県新潟市中央区, 2600000 千葉県千葉市中央区, 5400000 大阪府大阪市中央区, ...";

class QeadrsReading : public CliTest {
  protected:
    CResult Addr(std::vector<std::string> vArgument, std::string const& strInput = "") {
        return Ask("addr", std::move(vArgument), strInput);
    }
    CResult Explain(std::vector<std::string> vArgument) { return Ask("explain", std::move(vArgument)); }
    std::string Batch(std::vector<std::string> const& vArgument, std::string const& strInput) {
        CResult const result = Ask("batch", vArgument, strInput);
        EXPECT_EQ(result.nStatus, 0);
        EXPECT_EQ(result.strErr, "");
        return result.strOut;
    }
};

// --- addr ----------------------------------------------------------------------------------------------------------

TEST_F(QeadrsReading, FindsAddressesThatAreNotSpelledAsInTheDictionary) {
    CResult const result = Addr({"余市町黒川町1-2", "札幌市北区北10条西5丁目", "札幌市中央区旭が丘３－４",
                                 "〒060-0042 札幌市 中央区　大通西 1-2-3", "東京都千代田区大字千代田一番地"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strOut, "0460003\t046\t北海道\t余市郡余市町\t黒川町\t1-2\n"
                             "0010010\t001\t北海道\t札幌市北区\t北十条西\t5丁目\n"
                             "0640941\t064\t北海道\t札幌市中央区\t旭ケ丘\t３－４\n"
                             "0600042\t060\t北海道\t札幌市中央区\t大通西\t1-2-3\n"
                             "1000001\t100\t東京都\t千代田区\t千代田\t一番地\n");
    EXPECT_EQ(result.strErr, "");
}

TEST_F(QeadrsReading, IsNotTheInterfacesOwnOne) {
    EXPECT_THAT(Remark(Addr({"--exact", "余市町黒川町1-2"})), EndsWith(": not found\n"));
}

TEST_F(QeadrsReading, NamesTheOtherPlacesThatATextCanMean) {
    CResult const result = Addr({"札幌市中央区大通西"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strOut, "0600042\t060\t北海道\t札幌市中央区\t大通西\t\n");
    EXPECT_EQ(result.strErr, "qeadrs: 札幌市中央区大通西: 1 other place fits: 0640820 北海道札幌市中央区大通西 "
                             "２０〜２８丁目\n");
    EXPECT_EQ(Addr({"-q", "札幌市中央区大通西"}).strErr, "");
}

TEST_F(QeadrsReading, NamesThreeOfManyOtherPlaces) {
    std::vector<CEntryText> vEntry;
    for (std::string const strNumber : {"１", "２", "３", "４", "５"})
        vEntry.push_back({"100000" + std::to_string(vEntry.size() + 1),
                          {{0, "東京都"}, {1, "港区"}, {2, "芝"}, {3, strNumber + "丁目"}}});
    EXPECT_EQ(AskIn(vEntry, "addr", {"港区芝"}).strErr,
              "qeadrs: 港区芝: 4 other places fit: 1000002 東京都港区芝 ２丁目, 1000003 東京都港区芝 ３丁目, 1000004 "
              "東京都港区芝 ４丁目, ...\n");
}

TEST_F(QeadrsReading, RemarksThatTheTownIsUnknown) {
    CResult const result = Addr({"千代田区架空町１"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strOut, "1000000\t100\t東京都\t千代田区\t\t架空町１\n");
    EXPECT_EQ(result.strErr, "qeadrs: 千代田区架空町１: no town recognised; the code is the city's\n");
}

TEST_F(QeadrsReading, RemarksThatTheCodeInFrontIsAnotherPlaces) {
    CResult const result = Addr({"〒100-0001 札幌市中央区旭ケ丘"});
    EXPECT_EQ(result.strOut, "0640941\t064\t北海道\t札幌市中央区\t旭ケ丘\t\n");
    EXPECT_THAT(result.strErr, EndsWith(": the code 100-0001 in front is another place's\n"));
}

TEST_F(QeadrsReading, RemarksThatAPlaceIsOneOfAnEarlierEdition) {
    CResult const result = AskIn(RENAMED, "addr", {"清水市港町1"});
    EXPECT_EQ(result.strOut, "4240001\t424\t静岡県\t清水市\t港町\t1\n");
    EXPECT_THAT(result.strErr, EndsWith(": a place of an earlier edition; `qeadrs latest` has its latest form\n"));
}

TEST_F(QeadrsReading, FindsAnOrganisationThoughTheTextNamesNoPrefecture) {
    CResult const result = Addr({"--org", "宮内庁", "--kana", "千代田区 大字千代田"});
    EXPECT_EQ(result.strOut, "1008111\t100\t東京都\t千代田区\t千代田\t\t宮内庁\tトウキョウト\tチヨダク\tチヨダ\n");
    EXPECT_EQ(result.strErr, "");
    EXPECT_EQ(Addr({"--org", "架空", "千代田区"}).strErr,
              "qeadrs: 千代田区: organisation 架空 not found: the text names no town\n");
}

TEST_F(QeadrsReading, LooksForAnOrganisationInEveryTownThatTheTextCanMean) {
    CResult const result = AskIn(TWINS, "addr", {"--kana", "--org", "見本ホテル", "中央区水道町１"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strOut, "8608517\t860\t熊本県\t熊本市中央区\t水道町\t１\t見本ホテル\t\t\t\n");
    EXPECT_EQ(result.strErr, "");
    json const object = json::parse(AskIn(TWINS, "addr", {"--json", "--org", "見本", "中央区水道町１"}).strOut);
    EXPECT_EQ(object["city"], "熊本市中央区");
    EXPECT_EQ(object["canonical"], "熊本県熊本市中央区水道町１");
    EXPECT_EQ(object["nodes"], object["candidates"][1]["nodes"]);
    EXPECT_EQ(object["sureness"], "several");
}

TEST_F(QeadrsReading, RemarksThatAnOrganisationIsInSeveralTownsThatTheTextCanMean) {
    CResult const result = AskIn(TWINS, "addr", {"--org", "架空銀行", "中央区水道町"});
    EXPECT_EQ(result.strOut, "9518500\t951\t新潟県\t新潟市中央区\t水道町\t\t架空銀行\n");
    EXPECT_EQ(result.strErr,
              "qeadrs: 中央区水道町: organisation 架空銀行 has a code of its own in 1 other town, too: "
              "熊本県熊本市中央区水道町\n");
}

TEST_F(QeadrsReading, DoubtsThePlaceWhereNoTownHasTheOrganisation) {
    CResult const result = AskIn(TWINS, "addr", {"--org", "架空商会", "中央区水道町"});
    EXPECT_EQ(result.strOut, "9518121\t951\t新潟県\t新潟市中央区\t水道町\t\t\n");
    EXPECT_EQ(result.strErr, "qeadrs: 中央区水道町: 1 other place fits: 8600844 熊本県熊本市中央区水道町\n"
                             "qeadrs: 中央区水道町: organisation 架空商会 has no code of its own in this town\n");
}

TEST_F(QeadrsReading, FindsAnOrganisationInATownThatOnlyOrganisationsHave) {
    std::vector<CEntryText> vEntry = TWINS;
    vEntry.push_back({"8608600", {{0, "熊本県"}, {1, "熊本市中央区"}, {2, "見本台"}, {7, "見本大学"}}});
    EXPECT_THAT(AskIn(vEntry, "addr", {"--org", "架空", "熊本市中央区見本台１"}).strErr, HasSubstr(": not found"));
    for (std::string const strText : {"熊本市中央区見本台１－２", "中央区 見本台１－２"}) {
        CResult const result = AskIn(vEntry, "addr", {"--org", "見本大学", "--kana", strText});
        EXPECT_EQ(result.strOut, "8608600\t860\t熊本県\t熊本市中央区\t見本台\t１－２\t見本大学\t\t\t\n");
        EXPECT_EQ(result.strErr, "");
    }
}

// The table of organisations spells some towns in its own way, or files them under their street.
TEST_F(QeadrsReading, FindsAnOrganisationInItsOwnSpellingOfATownThatWasRead) {
    std::vector<CEntryText> const vEntry = {
        {"6020912", {{0, "京都府"}, {1, "京都市上京区"}, {2, "龍前町"}}},
        {"6028588", {{0, "京都府"}, {1, "京都市上京区"}, {2, "烏丸通一条下る"}, {7, "見本放送"}}}};
    EXPECT_EQ(AskIn(vEntry, "addr", {"--org", "見本放送", "京都市上京区烏丸通一条下る龍前町６００"}).strOut,
              "6028588\t602\t京都府\t京都市上京区\t烏丸通一条下る\t龍前町６００\t見本放送\n");
    m_environment["TERM"] = "xterm";
    EXPECT_THAT(RunOnTerminal(WithDic("addr", WriteDictionary(vEntry),
                                      {"--org", "見本放送", "京都市上京区烏丸通一条下る竜前町６００"}))
                    .strOut,
                HasSubstr("  烏丸通一条下る  竜前町６００"));
    EXPECT_EQ(AskIn(vEntry, "addr", {"京都市上京区烏丸通一条下る龍前町６００"}).strOut,
              "6020912\t602\t京都府\t京都市上京区\t龍前町\t６００\n");
}

TEST_F(QeadrsReading, RemarksThatTheCodeInFrontOfAnOrganisationsAddressIsAnotherPlaces) {
    CResult const result = AskIn(TWINS, "addr", {"--org", "見本", "260-0000 中央区水道町"});
    EXPECT_THAT(result.strOut, StartsWith("8608517\t"));
    EXPECT_THAT(result.strErr, EndsWith("水道町: the code 260-0000 in front is another place's\n"));
    EXPECT_EQ(AskIn(TWINS, "addr", {"--org", "見本", "860-8517 中央区水道町"}).strErr, "");
}

// --- several cities ------------------------------------------------------------------------------------------------

TEST_F(QeadrsReading, FindsNoneOfSeveralCitiesWhereTheTextNamesNoTown) {
    for (std::string const strText : {"中央区", "中央区架空町１"}) {
        for (std::string const strForm : {"--kana", "--json"}) {
            CResult const result = AskIn(TWINS, "addr", {strForm, strText});
            EXPECT_EQ(result.nStatus, 1);
            EXPECT_EQ(result.strOut, "");
            EXPECT_EQ(result.strErr, "qeadrs: " + strText + ": not found; " + TWINS_FIT + '\n');
        }
    }
    EXPECT_EQ(AskIn(TWINS, "addr", {"260-0000 中央区"}).strOut, "2600000\t260\t千葉県\t千葉市中央区\t\t\n");
    EXPECT_EQ(AskIn(TWINS, "addr", {"999-0000 中央区"}).strErr,
              std::string("qeadrs: 999-0000 中央区: not found; ") + TWINS_FIT +
                  "; the code 999-0000 in front is another place's\n");
}

TEST_F(QeadrsReading, OfABatchFindsNoneOfSeveralCitiesEither) {
    std::vector<std::string> const vArgument = {"--from", "tsv", "--column", "1", "--op", "addr", "-q"};
    EXPECT_EQ(Run(WithDic("batch", WriteDictionary(TWINS), vArgument), "中央区\n").strOut,
              std::string("中央区\t\t\t\t\t\t\tnot found; ") + TWINS_FIT + '\n');
}

TEST_F(QeadrsReading, ExplainsAllCitiesThatFitAndAnswersNone) {
    CResult const result = AskIn(TWINS, "explain", {"中央区"});
    EXPECT_EQ(result.nStatus, 1);
    std::vector<std::string> const vLine = Lines(result.strOut);
    for (std::string const strCity : {"新潟市中央区", "千葉市中央区", "大阪市中央区", "熊本市中央区"})
        EXPECT_THAT(vLine, Contains(testing::AllOf(StartsWith("candidate\t"), HasSubstr(strCity))));
    EXPECT_EQ(vLine.back(), "place\t\tnone with a code");
    json const object = json::parse(AskIn(TWINS, "explain", {"--json", "中央区"}).strOut);
    for (char const* pszKey : {"postal_code", "prefecture", "city", "town", "canonical", "area", "entry"})
        EXPECT_TRUE(object[pszKey].is_null()) << pszKey;
    EXPECT_TRUE(object["nodes"]["city"].is_null());
    EXPECT_EQ(object["sureness"], "several");
    EXPECT_EQ(object["candidates"].size(), 4u);
}

TEST_F(QeadrsReading, NamesThePrefectureThatAllCitiesHaveInCommon) {
    json const object = json::parse(AskIn({{"2300000", {{0, "神奈川県"}, {1, "横浜市鶴見区"}, {2, ""}}},
                                           {"2310000", {{0, "神奈川県"}, {1, "横浜市中区"}, {2, ""}}}},
                                          "explain", {"--json", "横浜市"})
                                        .strOut);
    EXPECT_EQ(object["prefecture"], "神奈川県");
    EXPECT_TRUE(object["city"].is_null());
    EXPECT_TRUE(object["nodes"]["prefecture"].is_number());
}

TEST_F(QeadrsReading, TakesATextOfAMillionBytes) {
    std::string const strRest(1'000'000, 'x');
    CResult const result = Addr({}, "千代田区千代田" + strRest + "\n");
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_TRUE(result.strOut == "1000001\t100\t東京都\t千代田区\t千代田\t" + strRest + '\n');
}

// --- colours -------------------------------------------------------------------------------------------------------

TEST_F(QeadrsReading, IsColouredWhereTheTextLeavesOutOrWritesInAnotherWay) {
    m_environment["TERM"] = "xterm";
    EXPECT_EQ(AskOnTerminal("addr", {"余市町黒川町1-2", "北海道札幌市北区北10条西5丁目"}).strOut,
              "postal code  old code  prefecture  city          town      rest\n"
              "0460003      046       \x1B[36m北海道\x1B[m      \x1B[36m余市郡\x1B[m余市町  黒川町    1-2\n"
              "0010010      001       北海道      札幌市北区    北\x1B[33m十\x1B[m条西  5丁目\n");
    EXPECT_EQ(RunOnTerminal(WithDic("latest", WriteDictionary(RENAMED), {"静岡県清水市港町1"})).strOut,
              "address                  postal code  old code  changed  latest code\n"
              "静岡県\x1B[33m静岡\x1B[m市\x1B[36m清水区\x1B[m港町1  4240001      424       yes      4240943\n");
}

TEST_F(QeadrsReading, IsPlainWhereColoursAreNotWantedOrNotThere) {
    for (std::string const strVariable : {"NO_COLOR=1", "TERM=dumb", "TERM="}) {
        SCOPED_TRACE(strVariable);
        m_environment["TERM"] = "xterm";
        size_t const nEqual = strVariable.find('=');
        m_environment[strVariable.substr(0, nEqual)] = strVariable.substr(nEqual + 1);
        EXPECT_THAT(AskOnTerminal("addr", {"余市町黒川町1-2"}).strOut, Not(HasSubstr("\x1B")));
        m_environment.erase("NO_COLOR");
    }
    m_environment["TERM"] = "xterm";
    EXPECT_THAT(Addr({"余市町黒川町1-2"}).strOut, Not(HasSubstr("\x1B")));
    EXPECT_THAT(AskOnTerminal("addr", {"北海道余市郡余市町黒川町1-2"}).strOut, Not(HasSubstr("\x1B")));
    EXPECT_THAT(AskOnTerminal("addr", {"--json", "余市町黒川町1-2"}).strOut, Not(HasSubstr("\x1B")));
}

// --- JSON ----------------------------------------------------------------------------------------------------------

TEST_F(QeadrsReading, HasEveryFieldInJson) {
    json const object = json::parse(Addr({"--json", " 〒060-0042 札幌市中央区 大通西"}).strOut);
    std::vector<std::string> vKey;
    for (auto const& [strKey, value] : object.items()) vKey.push_back(strKey);
    EXPECT_THAT(vKey, testing::UnorderedElementsAre("postal_code", "old_code", "prefecture", "city", "town", "rest",
                                                    "sureness", "supplied", "foldings", "remarks", "typed_code",
                                                    "canonical", "area", "building", "floor", "entry", "nodes",
                                                    "spans", "latest", "candidates"));
    EXPECT_EQ(object["sureness"], "supplied");
    EXPECT_EQ(object["supplied"], json({"prefecture"}));
    EXPECT_EQ(object["foldings"], json({"blank"}));
    EXPECT_EQ(object["remarks"], json({"code_decided"}));
    EXPECT_EQ(object["typed_code"], "060-0042");
    EXPECT_EQ(object["canonical"], "北海道札幌市中央区大通西");
    EXPECT_EQ(object["area"], "１〜１９丁目");
    EXPECT_EQ(object["spans"]["code"], json({{"offset", 4}, {"length", 8}})) << "of the text as it was given";
    EXPECT_EQ(object["spans"]["town"], json({{"offset", 32}, {"length", 9}}));
    EXPECT_TRUE(object["spans"]["prefecture"].is_null());
    ASSERT_EQ(object["candidates"].size(), 2u);
    EXPECT_EQ(object["candidates"][0]["postal_code"], "0600042");
    EXPECT_EQ(object["candidates"][1]["area"], "２０〜２８丁目");
    EXPECT_EQ(object["candidates"][1]["nodes"]["town"], object["nodes"]["town"]);
    EXPECT_TRUE(object["candidates"][1]["entry"].is_number());
}

TEST_F(QeadrsReading, HasARemarkInJsonWhereWordsStandBehindTheTown) {
    std::vector<std::string> const vText = {"--json", "東京都千代田区千代田架空", "東京都千代田区千代田１"};
    CResult const result = Addr(vText);
    EXPECT_EQ(json::parse(Lines(result.strOut)[0])["remarks"], json({"words_behind"}));
    EXPECT_EQ(json::parse(Lines(result.strOut)[1])["remarks"], json::array());
    EXPECT_EQ(result.strErr, "") << "no remark of the command";
}

TEST_F(QeadrsReading, CountsTheNameOfASubdivisionToTheRestButNotToItsSpan) {
    std::vector<CEntryText> const vEntry = {
        {"0984581", {{0, "北海道"}, {1, "稚内市"}, {2, "抜海村"}, {3, "上勇知"}}},
        {"0970036", {{0, "北海道"}, {1, "稚内市"}, {2, "抜海村"}, {3, "その他"}}}};
    json const object = json::parse(AskIn(vEntry, "addr", {"--json", "稚内市抜海村上勇知12"}).strOut);
    EXPECT_EQ(object["area"], "上勇知");
    EXPECT_EQ(object["rest"], "上勇知12");
    EXPECT_EQ(object["spans"]["rest"], json({{"offset", 27}, {"length", 2}}));
}

TEST_F(QeadrsReading, HasBothFormsOfARenewedAddressInJson) {
    json const object = json::parse(AskIn(RENAMED, "latest", {"--json", "清水市 港町1"}).strOut);
    EXPECT_EQ(object["address"], "静岡県静岡市清水区港町1");
    EXPECT_EQ(object["canonical"], "静岡県清水市港町1");
    EXPECT_EQ(object["remarks"], json({"old_name", "renewed"}));
    EXPECT_EQ(object["latest"]["town"], "清水区港町");
    EXPECT_EQ(object["candidates"][0]["city"], "清水市");
}

// --- batch ---------------------------------------------------------------------------------------------------------

TEST_F(QeadrsReading, OfABatchAddsAllThatIsKnownOnDemand) {
    std::string const strObject = Lines(Addr({"--json", "千代田区千代田1"}).strOut)[0];
    std::string const strReading = '{' + strObject.substr(strObject.find("\"sureness\""));
    std::string const strExplained = Lines(Explain({"--json", "架空"}).strOut)[0];
    size_t const nFirst = strExplained.find("\"sureness\"");
    std::string const strNothing = '{' + strExplained.substr(nFirst, strExplained.find(",\"steps\"") - nFirst) + '}';
    EXPECT_EQ(json::parse(strNothing)["sureness"], "nothing");
    EXPECT_EQ(Batch({"--from", "tsv", "--column", "1", "--op", "addr", "--header", "--reading"},
                    "a\n千代田区千代田1\n架空\n"),
              "a\tpostal_code\told_code\tprefecture\tcity\ttown\trest\treading\tstatus\n"
              "千代田区千代田1\t1000001\t100\t東京都\t千代田区\t千代田\t1\t" +
                  strReading + "\tfound\n架空\t\t\t\t\t\t\t" + strNothing + "\tnot found\n");
    json const object = json::parse(
        Batch({"--from", "jsonl", "--column", "a", "--op", "addr", "--reading"}, "{\"a\":\"千代田区千代田1\"}\n"));
    EXPECT_EQ(object["reading"], json::parse(strReading));
    EXPECT_EQ(object["status"], "found");
}

TEST_F(QeadrsReading, OfABatchRefusesWhatHasNoReading) {
    std::vector<std::string> vArgument = {"--from", "tsv", "--column", "1", "--reading", "--op", "zip"};
    EXPECT_EQ(Remark(Ask("batch", vArgument), 2),
              "qeadrs: --reading tells of addresses, and a postal code is none.\n");
    vArgument.back() = "addr";
    vArgument.emplace_back("--exact");
    EXPECT_EQ(Ask("batch", vArgument).nStatus, 2);
}

// --- explain -------------------------------------------------------------------------------------------------------

// What the steps say is text/'s own: here is that they are there, with the parts of the text, and the place.
TEST_F(QeadrsReading, IsExplainedStepByStep) {
    CResult const result = Explain({"--header", "〒060-0042 札幌市 中央区大通西 1-2-3"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strErr, "");
    std::vector<std::string> const vLine = Lines(result.strOut);
    ASSERT_GT(vLine.size(), 7u);
    EXPECT_EQ(vLine[0], "step\ttext\twhat");
    EXPECT_EQ(vLine[1], "text\t\"〒060-0042 札幌市 中央区大通西 1-2-3\"\t");
    EXPECT_THAT(vLine[2], StartsWith("code\t\"060-0042\"\t"));
    EXPECT_EQ(vLine.back(), "place\t\t0600042 北海道札幌市中央区大通西 １〜１９丁目");
    EXPECT_THAT(vLine[vLine.size() - 2], StartsWith("answer\t\tsupplied: "));
    EXPECT_THAT(vLine, Contains(StartsWith("town\t\"大通西\"\t")));
    for (std::string const& strLine : vLine)
        EXPECT_EQ(std::count(strLine.begin(), strLine.end(), '\t'), 2) << strLine;
}

TEST_F(QeadrsReading, IsExplainedWhateverCameOfIt) {
    CResult const result =
        Explain({"札幌市中央区大通西", "東京都千代田区架空", "東京都千代田区千代田", "東京都架空", "架空"});
    EXPECT_EQ(result.nStatus, 1);
    std::vector<std::string> vSureness;
    for (std::string const& strLine : Lines(result.strOut))
        if (strLine.substr(0, 8) == "answer\t\t") vSureness.push_back(strLine.substr(8, strLine.find(':') - 8));
    EXPECT_THAT(vSureness, ElementsAre("several", "town_not_found", "exact", "city_not_found", "nothing"));
    EXPECT_THAT(result.strOut, EndsWith("place\t\tnone with a code\n"));
    EXPECT_EQ(Explain({"東京都千代田区"}).nStatus, 0);
}

TEST_F(QeadrsReading, IsExplainedInJsonWithItsSteps) {
    json const object = json::parse(Explain({"--json", " 余市町黒川町"}).strOut);
    EXPECT_EQ(object["text"], " 余市町黒川町");
    EXPECT_EQ(object["postal_code"], "0460003");
    EXPECT_EQ(object["supplied"], json({"prefecture", "county"}));
    json town;
    for (json const& step : object["steps"])
        if (step["step"] == "town") town = step;
    EXPECT_EQ(town["text"], "黒川町");
    EXPECT_EQ(town["offset"], 10);
    EXPECT_EQ(town["length"], 9);
    EXPECT_EQ(json::parse(Explain({"--json", "架空"}).strOut)["sureness"], "nothing");
}

TEST_F(QeadrsReading, OfAnAddressOfAnEarlierEditionIsExplainedWithItsLatestForm) {
    std::string const strOut = AskIn(RENAMED, "explain", {"静岡県清水市港町"}).strOut;
    EXPECT_THAT(Lines(strOut), Contains(StartsWith("latest\t\t")));
    EXPECT_THAT(strOut, EndsWith("place\t\t4240001 静岡県清水市港町\n"));
}

TEST_F(QeadrsReading, ExplainsItselfOnOneScreen) {
    CResult const result = Run({"explain", "--help"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_THAT(result.strOut, StartsWith("qeadrs explain - how addresses are read, step by step\n"
                                          "Usage: qeadrs explain [OPTION...] [TEXT...]\n"));
    EXPECT_LE(Lines(result.strOut).size(), 24u);
    for (char const* pszSureness : {"exact", "folded", "supplied", "several", "town_not_found", "city_not_found"})
        EXPECT_THAT(result.strOut, HasSubstr(pszSureness));
}

} // namespace
