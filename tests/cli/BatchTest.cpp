// `qeadrs batch`: records in each form, their results, and what is wrong with those that have none.
#include "tests/cli/BatchTest.h"

#include <fcntl.h>

#include <fstream>
#include <tuple>

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

std::vector<CTownRow> TownRows(std::string const& strFile) {
    std::ifstream file(strFile);
    std::vector<CTownRow> vRow;
    for (std::string strLine; std::getline(file, strLine);) {
        std::vector<std::string> vField(1);
        bool bQuoted = false;
        for (char const c : strLine)
            if (c == '"')
                bQuoted = !bQuoted;
            else if (c == ',' && !bQuoted)
                vField.emplace_back();
            else
                vField.back() += c;
        vRow.push_back({vField.at(2), vField.at(6), vField.at(7), vField.at(8)});
    }
    return vRow;
}

namespace {

std::vector<std::string> const ZIP = {"--from", "tsv", "--column", "2", "--op", "zip"};
std::vector<std::string> const ADDR = {"--from", "tsv", "--column", "1", "--op", "addr"};
std::vector<std::string> const EXACT = {"--from", "tsv", "--column", "1", "--op", "addr", "--exact"};
std::vector<std::string> const CSV = {"--from", "csv", "--column", "2", "--op", "addr"};
std::vector<std::string> const JSONL = {"--from", "jsonl", "--column", "zip", "--op", "zip"};
std::string const CHIYODA = "\t1000001\t100\t東京都\t千代田区\t千代田\t\t\t\t\t1\tfound";
std::string const MARUNOUCHI = ",1000005,100,東京都,千代田区,丸の内,２,found";
std::string const MARK = "\xEF\xBB\xBF";

std::vector<std::string> With(std::vector<std::string> vArgument, std::vector<std::string> const& vMore) {
    vArgument.insert(vArgument.end(), vMore.begin(), vMore.end());
    return vArgument;
}

// --- columns between tabs ------------------------------------------------------------------------------------------

TEST_F(BatchTest, AddsResultsBehindEveryLineInItsOrder) {
    EXPECT_EQ(Answers(ZIP, "a\t1000001\tx\nb\t0000000\ty\nc\t100-0001\t\n"),
              "a\t1000001\tx" + CHIYODA + "\nb\t0000000\ty\t\t\t\t\t\t\t\t\t\t0\tnot found\nc\t100-0001\t" + CHIYODA +
                  "\n");
}

TEST_F(BatchTest, KeepsBytesThatAreNoTextInOtherColumns) {
    EXPECT_EQ(Answers(ZIP, "\xFF\x01\"\t1000001\n"), "\xFF\x01\"\t1000001" + CHIYODA + "\n");
}

TEST_F(BatchTest, KeepsLineEndsAndGivesTheLastLineOne) {
    EXPECT_EQ(Answers(ZIP, "a\t1000001\r\nb\t1000001\nc\t1000001"),
              "a\t1000001" + CHIYODA + "\r\nb\t1000001" + CHIYODA + "\nc\t1000001" + CHIYODA + "\n");
}

TEST_F(BatchTest, KeepsAByteOrderMarkInFrontOfTheFirstLine) {
    EXPECT_EQ(Answers({"--from", "tsv", "--column", "1", "--op", "zip"}, MARK + "1000001\n"),
              MARK + "1000001" + CHIYODA + "\n");
    EXPECT_EQ(Answers(ZIP, MARK), MARK);
    EXPECT_EQ(Answers(ZIP, ""), "");
    CResult const result = Batch(ZIP, "\xEF\xBB");
    EXPECT_EQ(result.strOut, "\xEF\xBB");
    EXPECT_EQ(result.nStatus, 1);
}

TEST_F(BatchTest, GivesTheFirstAddressOfACodeAndTheirCount) {
    CResult const zip = Zip({"100"});
    std::string const strFirst = Lines(zip.strOut)[0];
    std::string const strCount = std::to_string(Lines(zip.strOut).size());
    ASSERT_NE(strCount, "1");
    EXPECT_EQ(Answers(ZIP, "a\t１００\n"), "a\t１００\t" + strFirst + "\t" + strCount + "\tfound\n");
}

TEST_F(BatchTest, TellsWhyAColumnCannotBeLookedUp) {
    EXPECT_EQ(Answers({"--from", "tsv", "--column", "1", "--op", "zip"}, "\n 　\nabc\n12345678\n"),
              "\t\t\t\t\t\t\t\t\t\t\tempty\n 　\t\t\t\t\t\t\t\t\t\t\tempty\n"
              "abc\t\t\t\t\t\t\t\t\t\t\tno postal code: it has 1 to 7 digits\n"
              "12345678\t\t\t\t\t\t\t\t\t\t\tno postal code: it has 1 to 7 digits\n");
    std::string const strLong(122, 'x');
    EXPECT_EQ(Answers(EXACT, strLong + "\n" + strLong.substr(1) + "\n東京都架空\n"),
              strLong + "\t\t\t\t\t\t\tno address: more than 121 bytes\n" + strLong.substr(1) +
                  "\t\t\t\t\t\t\tnot found\n東京都架空\t\t\t\t\t\t\tnot found; recognised: prefecture 東京都\n");
}

TEST_F(BatchTest, FillsTheLevelsThatATownTells) {
    EXPECT_EQ(
        Answers(EXACT, "丸の内２\n"),
        "丸の内２\t1000005\t100\t東京都\t千代田区\t丸の内\t２\tfound; no city recognised; this is the first town "
        "of the dictionary that the text names\n");
}

TEST_F(BatchTest, GivesTheLatestFormOfAnAddress) {
    std::string const strDic = WriteDictionary({
        {"4240001", {{0, "静岡県"}, {1, "清水市"}, {2, "港町"}}, 1},
        {"4240943", {{0, "静岡県"}, {1, "静岡市"}, {2, "清水区港町"}}},
    });
    std::vector<std::string> vArgument = {"--from", "tsv", "--column", "1", "--op", "latest"};
    std::string const strInput = "清水市港町１\n静岡市清水区港町\n静岡市\n";
    EXPECT_EQ(Run(WithDic("batch", strDic, vArgument), strInput).strOut,
              "清水市港町１\t静岡県静岡市清水区港町１\t4240001\t424\tyes\t4240943\tfound\n"
              "静岡市清水区港町\t静岡県静岡市清水区港町\t4240943\t424\tno\t4240943\tfound\n"
              "静岡市\t\t\t\t\t\tnot found; recognised: prefecture 静岡県, city 静岡市\n");
    CResult const result = Run(WithDic("batch", strDic, With(vArgument, {"--exact"})), strInput);
    EXPECT_EQ(result.strOut, "清水市港町１\t静岡県静岡市清水区港町１\t4240001\t424\tyes\t4240943\tfound\n"
                             "静岡市清水区港町\t静岡市清水区港町\t4240943\t424\tno\t4240943\tfound\n"
                             "静岡市\t\t\t\t\t\tnot found; recognised: city 静岡市\n");
}

// --- headers -------------------------------------------------------------------------------------------------------

TEST_F(BatchTest, FindsAColumnByItsNameAndNamesItsResults) {
    EXPECT_EQ(Answers({"--from", "tsv", "--header", "--column", "code", "--op", "zip"}, "id\tcode\r\na\t1000001\r\n"),
              "id\tcode\tpostal_code\told_code\tprefecture\tcity\ttown\tarea\tbuilding\tfloor\torganisation\tcount\t"
              "status\r\na\t1000001" +
                  CHIYODA + "\r\n");
    EXPECT_EQ(Answers({"--from", "csv", "--header", "--column", "the \"text\"", "--op", "latest", "--prefix", "new,"},
                      MARK + "id,\"the \"\"text\"\"\""),
              MARK + "id,\"the \"\"text\"\"\",\"new,address\",\"new,postal_code\",\"new,old_code\",\"new,changed\","
                     "\"new,latest_code\",\"new,status\"\n");
}

TEST_F(BatchTest, TakesANumberForANumberAlsoBelowAHeader) {
    EXPECT_EQ(Lines(Answers({"--from", "tsv", "--header", "--column", "1", "--op", "zip"}, "x\t1\n1000001\ty\n"))[1],
              "1000001\ty" + CHIYODA);
}

TEST_F(BatchTest, HasNoHeaderInAnEmptyTable) {
    EXPECT_EQ(Answers({"--from", "tsv", "--header", "--column", "x", "--op", "zip"}, ""), "");
}

TEST_F(BatchTest, RefusesAHeaderThatDoesNotFit) {
    auto const Refusal = [&](std::string const& strForm, std::string const& strColumn, std::string const& strInput) {
        return Remark(
            Batch({"--from", strForm, "--header", "--column", strColumn, "--op", "addr"}, strInput + "\nx\ty\n"), 2);
    };
    EXPECT_EQ(Refusal("tsv", "c", "a\tb"), "qeadrs: the header has no column \"c\".\n");
    EXPECT_EQ(Refusal("tsv", "3", "a\tb"), "qeadrs: the header has 2 columns, and no column 3.\n");
    EXPECT_EQ(Refusal("tsv", "a", "a\ta"), "qeadrs: the header has two columns \"a\".\n");
    EXPECT_EQ(Refusal("csv", "a", "a,\"city\""),
              "qeadrs: the header has a column \"city\" already: name the results by --prefix TEXT.\n");
    EXPECT_EQ(Refusal("csv", "a", "a\"b"), "qeadrs: the header is malformed.\n");
    EXPECT_EQ(Refusal("tsv", "a", std::string("a\0b", 3)), "qeadrs: the header is malformed.\n");
    EXPECT_EQ(Refusal("jsonl", "a", "{}"), "qeadrs: --header: JSON objects have their keys.\n");
}

// --- CSV -----------------------------------------------------------------------------------------------------------

TEST_F(BatchTest, ReadsQuotedFieldsAndKeepsThemAsTheyAre) {
    std::string strInput, strExpected;
    for (auto const& [strRecord, strEnd] :
         {std::pair("\"a,\"\"b\"\"\r\nc\",\"東京都千代田区丸の内２\",\"\"", "\r\n"),
          std::pair(",東京都千代田区丸の内２,'", "\n"), std::pair("\"\",東京都千代田区丸の内２", "\r\n")}) {
        strInput += strRecord + std::string(strEnd);
        strExpected += strRecord + MARUNOUCHI + strEnd;
    }
    EXPECT_EQ(Answers(CSV, strInput), strExpected);
}

TEST_F(BatchTest, QuotesResultsThatNeedIt) {
    EXPECT_EQ(Answers(CSV, "1,\"東京都千代田区丸の内２,\"\"３\"\"\n４\"\n"),
              "1,\"東京都千代田区丸の内２,\"\"３\"\"\n４\",1000005,100,東京都,千代田区,丸の内,\"２,\"\"３\"\" "
              "４\",found\n");
}

TEST_F(BatchTest, ReadsARecordWithoutALineEndAtTheEnd) {
    for (std::string const strEnd : {"", "\r", "\n", "\r\n"}) {
        SCOPED_TRACE(testing::PrintToString(strEnd));
        std::string const strOutEnd = strEnd.empty() || strEnd == "\r" ? strEnd + "\n" : strEnd;
        EXPECT_EQ(Answers(CSV, "\"x\ny\",\"東京都千代田区丸の内２\"" + strEnd),
                  "\"x\ny\",\"東京都千代田区丸の内２\"" + MARUNOUCHI + strOutEnd);
    }
}

// A mark that opens and never closes would take all lines behind it along.
TEST_F(BatchTest, LosesOneLineToABrokenQuotationMarkAndReadsTheNextOneAfresh) {
    std::string const strGood = "1,東京都千代田区丸の内２\n";
    std::string const strAnswer = "1,東京都千代田区丸の内２" + MARUNOUCHI + "\n";
    for (std::string const strBroken :
         {"a\"b,c\n", "\"a\"b,c\n", "\"a\n", "a,\"b\n", "\"a\"\rb\n", "\"\n", "\"a\"\"\n", "a,\"b\",\"c\n"}) {
        SCOPED_TRACE(strBroken);
        CResult const result =
            Batch(With(CSV, {"--rejects", Path("rejects")}), strGood + strBroken + strGood + strGood);
        EXPECT_EQ(result.nStatus, 1);
        EXPECT_EQ(result.strOut, strAnswer + strAnswer + strAnswer);
        EXPECT_EQ(ReadFile(Path("rejects")), strBroken);
        EXPECT_EQ(result.strErr, "qeadrs: line 2: a quotation mark in the wrong place, or without its counterpart\n"
                                 "qeadrs: 1 of 4 records are malformed; they are in " +
                                     Path("rejects") + "\n");
    }
}

TEST_F(BatchTest, CountsTheLinesWithinRecords) {
    CResult const result = Batch(With(CSV, {"--rejects", Path("rejects")}), "\"1\n2\r\n3\",x\nbad\n\"5\n\",y\nbad");
    EXPECT_EQ(result.strErr, "qeadrs: line 4: 1 column, and no column 2\nqeadrs: line 7: 1 column, and no column 2\n"
                             "qeadrs: 2 of 4 records are malformed; they are in " +
                                 Path("rejects") + "\n");
    EXPECT_EQ(ReadFile(Path("rejects")), "bad\nbad");
}

// --- JSON ----------------------------------------------------------------------------------------------------------

std::string const CHIYODA_KEYS = R"(,"postal_code":"1000001","old_code":"100","prefecture":"東京都",)"
                                 R"("city":"千代田区","town":"千代田","area":null,"building":null,"floor":null,)"
                                 R"("organisation":null,"count":1,"status":"found")";

TEST_F(BatchTest, AddsKeysInFrontOfTheClosingBraceAndKeepsTheRest) {
    std::string const strStart = R"( { "b":1.50, "zip" : "\u0031000001" , "a":{"zip":[1,{"town":2}]}, "é":"\/")";
    EXPECT_EQ(Answers(JSONL, strStart + " } \r\n" + strStart + "}"),
              strStart + " " + CHIYODA_KEYS + "} \r\n" + strStart + CHIYODA_KEYS + "}\n");
}

TEST_F(BatchTest, TakesNullForAnEmptyText) {
    EXPECT_THAT(Answers(JSONL, "{\"zip\":null}\n"), EndsWith(",\"count\":null,\"status\":\"empty\"}\n"));
}

TEST_F(BatchTest, PutsAPrefixInFrontOfItsKeys) {
    EXPECT_THAT(Answers(With(JSONL, {"--prefix", "\"x."}), R"({"zip":"1000001","town":1})"),
                StartsWith(R"({"zip":"1000001","town":1,"\"x.postal_code":"1000001",)"));
}

TEST_F(BatchTest, RefusesAKeyThatAResultHasToo) {
    EXPECT_EQ(Remark(Batch({"--from", "jsonl", "--column", "address", "--op", "latest"}, "{}\n"), 2),
              "qeadrs: the key and a result are both \"address\": name the results by --prefix TEXT.\n");
}

TEST_F(BatchTest, ReportsLinesThatAreNoObjectsWithTheText) {
    std::vector<std::pair<std::string, std::string>> const vLine = {
        {"", "no JSON object"},
        {"[\"zip\",\"1000001\"]", "no JSON object"},
        {"\"zip\"", "no JSON object"},
        {"{\"zip\":\"1000001\"", "no JSON object"},
        {"{\"zip\":\"1000001\"} {}", "no JSON object"},
        {"{\"zip\":\"1000001\",}", "no JSON object"},
        {"{\"zip\":\"1\xFF\"}", "no JSON object"},
        {"{\"zip\":\"1000001\",\"a\":1e999}", "no JSON object"},
        {"{}", "no key \"zip\""},
        {"{\"a\":{\"zip\":\"1\"}}", "no key \"zip\""},
        {"{\"zip\":1000001}", "the value of key \"zip\" is no text"},
        {"{\"zip\":[\"1\"]}", "the value of key \"zip\" is no text"},
        {"{\"zip\":{\"zip\":\"1\"}}", "the value of key \"zip\" is no text"},
        {"{\"zip\":true}", "the value of key \"zip\" is no text"},
        {"{\"zip\":\"1\",\"zip\":\"1\"}", "two keys \"zip\""},
        {"{\"zip\":\"1\",\"to\\u0077n\":1}", "a key \"town\" already: name the results by --prefix TEXT"},
        {"{\"zip\":\"1\\u0000\"}", "a NUL in it"},
        {std::string("{\"zip\":\"1000001\"}\0", 18), "a NUL in it"},
    };
    for (auto const& [strLine, strFault] : vLine) {
        SCOPED_TRACE(strLine);
        CResult const result = Batch(JSONL, strLine + "\n{\"zip\":\"1000001\"}\n");
        EXPECT_EQ(result.nStatus, 1);
        EXPECT_EQ(result.strOut, strLine + "\n{\"zip\":\"1000001\"" + CHIYODA_KEYS + "}\n");
        EXPECT_EQ(result.strErr, "qeadrs: line 1: " + strFault +
                                     "\nqeadrs: 1 of 2 records are malformed; they are in "
                                     "the output as they were\n");
    }
}

TEST_F(BatchTest, ReadsAnObjectOfManyLevels) {
    std::string const strDeep = std::string(200'000, '[') + std::string(200'000, ']');
    EXPECT_EQ(Answers(JSONL, "{\"a\":" + strDeep + ",\"zip\":\"1000001\"}\n"),
              "{\"a\":" + strDeep + ",\"zip\":\"1000001\"" + CHIYODA_KEYS + "}\n");
}

// --- malformed lines -----------------------------------------------------------------------------------------------

TEST_F(BatchTest, ReportsWhatIsWrongWithALine) {
    CResult const result = Batch(ZIP, std::string("x\na\t\xFF\n1\0\t1000001\n\t\n", 19));
    EXPECT_EQ(result.nStatus, 1);
    EXPECT_EQ(result.strErr, "qeadrs: line 1: 1 column, and no column 2\n"
                             "qeadrs: line 2: column 2 is not UTF-8\n"
                             "qeadrs: line 3: a NUL in it\n"
                             "qeadrs: 3 of 4 records are malformed; they are in the output as they were\n");
    EXPECT_EQ(result.strOut, std::string("x\na\t\xFF\n1\0\t1000001\n\t\t\t\t\t\t\t\t\t\t\t\tempty\n", 35));
}

TEST_F(BatchTest, ReportsTheFirstMalformedLinesAndCountsAll) {
    std::string strInput;
    for (int i = 0; i < 30'000; ++i) strInput += i % 3 == 0 ? "bad\n" : "a\tb\n";
    CResult const result = Batch(With(ZIP, {"--rejects", Path("rejects")}), strInput);
    std::vector<std::string> const vRemark = Lines(result.strErr);
    ASSERT_EQ(vRemark.size(), 11u);
    for (size_t i = 0; i < 10; ++i)
        EXPECT_EQ(vRemark[i], "qeadrs: line " + std::to_string(3 * i + 1) + ": 1 column, and no column 2");
    EXPECT_EQ(vRemark[10], "qeadrs: 10,000 of 30,000 records are malformed; they are in " + Path("rejects"));
    EXPECT_EQ(Lines(ReadFile(Path("rejects"))).size(), 10'000u);
    EXPECT_EQ(Lines(result.strOut).size(), 20'000u);
    EXPECT_EQ(Lines(Batch(With(ZIP, {"-q"}), strInput).strErr).size(), 10u);
}

// Just as long, a byte longer, and so long that it comes in pieces.
TEST_F(BatchTest, RefusesALineThatIsTooLong) {
    std::string const strGood = "東京都千代田区丸の内２,東京都千代田区丸の内２\n";
    std::string const strAnswer = "東京都千代田区丸の内２,東京都千代田区丸の内２" + MARUNOUCHI + "\n";
    for (auto const& [strForm, strStart, nSize] :
         {std::tuple("tsv", "", 1'000'001), std::tuple("csv", "", 1'065'537), std::tuple("csv", "\"", 1'000'001),
          std::tuple("csv", "\"", 2'000'001), std::tuple("jsonl", "\"", 1'065'537)}) {
        SCOPED_TRACE(strForm + std::string(strStart) + std::to_string(nSize));
        bool const bCsv = std::string(strForm) == "csv";
        std::string strLong = strStart;
        strLong.resize(static_cast<size_t>(nSize), 'x');
        strLong += '\n';
        CResult const result =
            Batch({"--from", strForm, "--column", "2", "--op", "addr", "--rejects", Path("rejects")},
                  strLong + strGood + strLong);
        EXPECT_EQ(result.nStatus, 1);
        EXPECT_EQ(result.strOut, bCsv ? strAnswer : "");
        EXPECT_TRUE(ReadFile(Path("rejects")) == strLong + (bCsv ? "" : strGood) + strLong);
        EXPECT_THAT(result.strErr, StartsWith("qeadrs: line 1: more than 1,000,000 bytes\n"));
        EXPECT_THAT(result.strErr, HasSubstr("qeadrs: line 3: more than 1,000,000 bytes\n"));
    }
    std::string const strFull = std::string(999'992, 'x') + "\t1000001";
    EXPECT_TRUE(Answers(ZIP, strFull + "\n") == strFull + CHIYODA + "\n");
    CResult const result = Batch(ZIP, strFull.substr(1) + "\nx" + strFull + "\n"); // and into the output
    EXPECT_TRUE(result.strOut == strFull.substr(1) + CHIYODA + "\nx" + strFull + "\n");
}

TEST_F(BatchTest, RefusesARecordOfManyLinesThatIsTooLong) {
    std::string strLong = "\"";
    while (strLong.size() < 1'000'100) strLong += "東京都千代田区丸の内,東京都千代田区丸の内２\n";
    strLong += "\"\n";
    CResult const result = Batch(With(CSV, {"--rejects", Path("rejects")}), strLong);
    std::vector<std::string> const vLine = Lines(strLong);
    EXPECT_EQ(Lines(ReadFile(Path("rejects"))), (std::vector<std::string>{vLine.front(), vLine.back()}));
    EXPECT_EQ(Lines(result.strOut).size(), vLine.size() - 2);
    EXPECT_THAT(result.strErr, StartsWith("qeadrs: line 1: a quotation mark "));
}

// --- options -------------------------------------------------------------------------------------------------------

TEST_F(BatchTest, ReadsAFile) {
    EXPECT_EQ(Answers(With(ZIP, {WriteFile("table", "a\t1000001\n")}), "other\t1000002\n"),
              "a\t1000001" + CHIYODA + "\n");
}

TEST_F(BatchTest, TakesADashForStandardInput) {
    EXPECT_EQ(Answers(With(ZIP, {"-"}), "a\t1000001\n"), "a\t1000001" + CHIYODA + "\n");
    EXPECT_THAT(Run({"batch", "--help"}).strOut, HasSubstr("none, or -: standard input"));
}

TEST_F(BatchTest, GivesTheSameWithAnyNumberOfJobs) {
    std::string strInput, strExpected;
    for (int i = 0; i < 20'000; ++i) {
        std::string const strLine = std::to_string(i) + (i % 7 == 0 ? "" : "\t1000001");
        strInput += strLine + '\n';
        strExpected += strLine + (i % 7 == 0 ? "" : CHIYODA) + '\n';
    }
    for (char const* pszJobs : {"1", "2", "7"}) {
        SCOPED_TRACE(pszJobs);
        EXPECT_TRUE(Batch(With(ZIP, {"--jobs", pszJobs}), strInput).strOut == strExpected);
    }
}

TEST_F(BatchTest, RefusesAWrongCall) {
    std::vector<std::vector<std::string>> const vvWrong = {
        {},
        {"--from", "tsv", "--column", "1"},
        {"--from", "tsv", "--op", "zip"},
        {"--column", "1", "--op", "zip"},
        {"--from", "xml", "--column", "1", "--op", "zip"},
        {"--from", "tsv", "--column", "1", "--op", "find"},
        {"--from", "1", "--column", "1", "--op", "zip"},
        {"--from", "tsv", "--column", "1", "--op", "0"},
        {"--from", "tsv", "--column", "0", "--op", "zip"},
        {"--from", "tsv", "--column", "", "--op", "zip"},
        {"--from", "tsv", "--column", "name", "--op", "zip"},
        {"--from", "tsv", "--column", "1", "--op", "zip", "--jobs", "0"},
        {"--from", "tsv", "--column", "1", "--op", "zip", "--jobs", "257"},
        {"--from", "tsv", "--column", "1", "--op", "zip", "--json"},
    };
    for (auto const& vWrong : vvWrong) {
        SCOPED_TRACE(testing::PrintToString(vWrong));
        EXPECT_THAT(Remark(Batch(vWrong, "1000001\n"), 2), StartsWith("qeadrs: "));
    }
}

TEST_F(BatchTest, TellsTheWordsThatItTakes) {
    EXPECT_THAT(Remark(Batch({"--from", "xml", "--column", "1", "--op", "zip"}), 2),
                StartsWith("qeadrs: --from: \"xml\" is none of tsv, csv, jsonl.\n"));
    EXPECT_THAT(Remark(Batch({"--from", "tsv", "--column", "1", "--op", "2"}), 2),
                StartsWith("qeadrs: --op: \"2\" is none of zip, addr, latest.\n"));
}

// The number that is complained about is the one that was typed, also where a word has 32 bits.
TEST_F(BatchTest, RefusesAColumnBeyondAllNumbers) {
    for (std::string const strColumn : {"4294967296", "4294967297", "18446744073709551617", "99999999999999999999"})
        EXPECT_EQ(Remark(Batch({"--from", "tsv", "--column", strColumn, "--op", "zip"}, "1000001\n"), 2),
                  "qeadrs: \"" + strColumn + "\" is no column: no line has so many.\n");
    EXPECT_THAT(Batch({"--from", "tsv", "--column", "4294967295", "--op", "zip"}, "1000001\n").strErr,
                StartsWith("qeadrs: line 1: 1 column, and no column 4294967295\n"));
    EXPECT_EQ(Answers({"--from", "tsv", "--column", "000000000000000000001", "--op", "zip"}, "1000001\n"),
              "1000001" + CHIYODA + "\n");
}

TEST_F(BatchTest, TellsWhatIsWrongWithACallAsTheCompilerDoes) {
    EXPECT_EQ(Batch(With(ZIP, {"--jobs="})).strErr,
              "qeadrs: --jobs: N is missing\nRun `qeadrs --help` or `qeadrs COMMAND --help`.\n");
    CHandle const hNull = open("/dev/null", O_RDWR | O_CLOEXEC);
    CPipe err;
    pid_t const nProcess =
        Start({QEADRS_DIC_FILE, "fetch", "-d", "x", "--tries="}, {}, "/", hNull, hNull, err.hWrite);
    err.hWrite = CHandle();
    EXPECT_EQ(ReadAll(err.hRead), "qeadrs-dic: --tries: N is missing\n"
                                  "Run `qeadrs-dic --help` or `qeadrs-dic COMMAND --help`.\n");
    EXPECT_EQ(Wait(nProcess), 2);
}

TEST_F(BatchTest, ExplainsItselfOnOneScreen) {
    CResult const result = Run({"batch", "--help"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_THAT(result.strOut, StartsWith("qeadrs batch - "));
    EXPECT_LE(Lines(result.strOut).size(), 24u);
}

// --- the same answers as the commands ------------------------------------------------------------------------------

// Addresses of a table as they are, and cut, mixed and misspelled.
std::vector<std::string> AddressTexts(std::vector<CTownRow> const& vRow, size_t nCount) {
    std::vector<std::string> vText = {"", " ", "架空", "東京都", "東京都架空", std::string(122, 'x'), "北海道\x01"};
    for (size_t i = 0; vText.size() < nCount; ++i) {
        CTownRow const& row = vRow[i * 7919 % vRow.size()];
        CTownRow const& other = vRow[(i * 104'729 + 1) % vRow.size()];
        std::string const vVariant[] = {
            row.strPref + row.strCity + row.strTown + "１−" + std::to_string(i),
            row.strCity + row.strTown,
            row.strTown,
            row.strPref + row.strCity,
            row.strPref + other.strCity + row.strTown,
            " " + row.strPref + "　" + row.strCity + row.strTown,
            row.strPref + row.strTown,
            row.strPref + row.strCity + other.strTown,
        };
        vText.push_back(vVariant[i % std::size(vVariant)]);
    }
    return vText;
}

std::vector<std::string> CodeTexts(std::vector<CTownRow> const& vRow, size_t nCount) {
    std::vector<std::string> vText = {"", "　", "abc", "12345678", "0", "100", "１００－０００１", "9999999"};
    for (size_t i = 0; vText.size() < nCount; ++i) {
        std::string const& strCode = vRow[i * 7919 % vRow.size()].strCode;
        vText.push_back(i % 4 == 0 ? strCode.substr(0, 3) + '-' + strCode.substr(3) : strCode.substr(0, 8 - i % 4));
    }
    return vText;
}

class BatchBesideCommands : public BatchTest {
  protected:
    // What the batch says of each text is what the command prints and remarks of it, and nothing else does that.
    void ExpectSame(std::string const& strDic, std::string const& strOp, std::vector<std::string> const& vText,
                    std::vector<std::string> const& vOption = {}) {
        std::string strInput;
        for (std::string const& strText : vText) strInput += strText + '\n';
        CResult const command = Run(WithDic(strOp, strDic, vOption), strInput);
        std::vector<std::string> const vBatch = {"--from", "tsv", "--column", "1", "--op", strOp, "--jobs", "3"};
        CResult const batch = Run(WithDic("batch", strDic, With(vBatch, vOption)), strInput);
        EXPECT_EQ(batch.nStatus, 0);
        std::vector<std::string> const vAnswer = Lines(batch.strOut);
        ASSERT_EQ(vAnswer.size(), vText.size());
        m_vRow = Lines(command.strOut);
        m_vRemark = Lines(command.strErr);
        m_nRow = m_nRemark = 0;
        for (size_t i = 0; i < vText.size(); ++i) {
            SCOPED_TRACE("line " + std::to_string(i + 1) + ": " + vText[i]);
            ASSERT_THAT(vAnswer[i], StartsWith(vText[i] + '\t'));
            Consume(i + 1, strOp == "zip", vAnswer[i].substr(vText[i].size() + 1));
            if (HasFailure()) return;
        }
        EXPECT_EQ(m_nRow, m_vRow.size());
        EXPECT_EQ(m_nRemark, m_vRemark.size());
    }

  private:
    std::string Take(std::vector<std::string> const& v, size_t& n) {
        return n < v.size() ? v[n++] : "nothing is left of what the command says";
    }

    void Consume(size_t nLine, bool bCount, std::string strAnswer) {
        auto const TakeLast = [&strAnswer] {
            size_t const nTab = strAnswer.rfind('\t');
            std::string strLast = strAnswer.substr(nTab + 1);
            strAnswer.resize(nTab);
            return strLast;
        };
        std::string const strStatus = TakeLast();
        std::string const strCount = bCount ? TakeLast() : "1";
        if (strStatus.substr(0, 5) == "found") {
            EXPECT_EQ(Take(m_vRow, m_nRow), strAnswer);
            m_nRow += std::stoul(strCount) - 1;
            if (strStatus == "found") return;
            EXPECT_THAT(Take(m_vRemark, m_nRemark), EndsWith(": " + strStatus.substr(7)));
            return;
        }
        EXPECT_EQ(strAnswer.find_first_not_of('\t'), std::string::npos);
        if (strStatus == "empty") return; // the commands pass over such a line
        std::string const strRemark = Take(m_vRemark, m_nRemark);
        if (strStatus.substr(0, 9) == "not found") {
            EXPECT_THAT(strRemark, EndsWith(": " + strStatus));
        } else {
            EXPECT_THAT(strRemark, StartsWith("qeadrs: line " + std::to_string(nLine) + ": "));
        }
    }

    std::vector<std::string> m_vRow, m_vRemark;
    size_t m_nRow = 0, m_nRemark = 0;
};

TEST_F(BatchBesideCommands, AnswersAsTheyDoOnTheSample) {
    std::vector<CTownRow> const vRow = TownRows(SAMPLE_DIR "/utf_ken_all.csv");
    ExpectSame(Sample(), "zip", CodeTexts(vRow, 1000));
    ExpectSame(Sample(), "addr", AddressTexts(vRow, 1000));
    ExpectSame(Sample(), "addr", AddressTexts(vRow, 1000), {"--exact"});
    ExpectSame(Sample(), "latest", AddressTexts(vRow, 1000));
    ExpectSame(Sample(), "latest", AddressTexts(vRow, 1000), {"--exact"});
}

#ifdef QEADRS_TEST_DATA
TEST_F(BatchBesideCommands, AnswersAsTheyDoOnTheWholeData) {
    std::vector<CTownRow> const vRow = TownRows(QEADRS_TEST_DATA "/utf_ken_all.csv");
    std::string const strDic = QEADRS_TEST_DATA "/qeadrs.dic";
    ExpectSame(strDic, "zip", CodeTexts(vRow, 1000));
    ExpectSame(strDic, "addr", AddressTexts(vRow, 1000));
    ExpectSame(strDic, "addr", AddressTexts(vRow, 1000), {"--exact"});
    ExpectSame(strDic, "latest", AddressTexts(vRow, 1000));
    ExpectSame(strDic, "latest", AddressTexts(vRow, 1000), {"--exact"});
}
#endif

} // namespace
