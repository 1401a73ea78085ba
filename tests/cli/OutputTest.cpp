// The forms of the output: byte for byte, and what happens when it cannot be written.
#include "tests/cli/CliTest.h"

#include <fcntl.h>

#include <nlohmann/json.hpp>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

class QeadrsOutput : public CliTest {};

// --- table ---------------------------------------------------------------------------------------------------------

TEST_F(QeadrsOutput, IsATableOnATerminal) {
    EXPECT_EQ(ZipOnTerminal({"1000001"}).strOut, "postal code  old code  prefecture  city      town\n"
                                                 "1000001      100       東京都      千代田区  千代田\n");
}

TEST_F(QeadrsOutput, LinesColumnsUpByTheirWidthOnTheTerminal) {
    EXPECT_EQ(
        ZipOnTerminal({"0600042", "9806101", "1018701"}).strOut,
        "postal code  old code  prefecture  city          town        area          building  floor  organisation\n"
        "0600042      060       北海道      札幌市中央区  大通西      １〜１９丁目\n"
        "9806101      980       宮城県      仙台市青葉区  中央                      アエル    １階\n"
        "1018701      101       東京都      千代田区      神田神保町  １丁目１０１                   "
        "株式会社　見本出版\n"
        "1018701      101       東京都      千代田区      神田神保町  １丁目１０１                   "
        "見本出版販売（株）\n");
}

TEST_F(QeadrsOutput, KnowsNarrowWideAndCombiningCharacters) {
    std::string const strDic = WriteDictionary({{"1000000", {{0, "東京都"}, {1, "ｱｲｳ"}, {2, "x"}}},
                                                {"1000000", {{0, "東京都"}, {1, "か\u3099き"}, {2, "x"}}},
                                                {"1000000", {{0, "東京都"}, {1, "𠮷田"}, {2, "x"}}},
                                                {"1000000", {{0, "東京都"}, {1, "１−２"}, {2, "x"}}}});
    EXPECT_EQ(RunOnTerminal(WithDic(strDic, {"1000000"})).strOut,
              "postal code  old code  prefecture  city   town\n"
              "1000000      100       東京都      ｱｲｳ    x\n"
              "1000000      100       東京都      か\u3099き   x\n"
              "1000000      100       東京都      𠮷田   x\n"
              "1000000      100       東京都      １−２  x\n");
}

TEST_F(QeadrsOutput, OfATableAddsReadingsAsColumns) {
    EXPECT_EQ(ZipOnTerminal({"--kana", "1000301"}).strOut,
              "postal code  old code  prefecture  city    prefecture kana  city kana\n"
              "1000301      10003     東京都      利島村  トウキョウト     トシマムラ\n");
}

TEST_F(QeadrsOutput, OfATableListsCities) {
    EXPECT_EQ(ZipOnTerminal({"--cities", "--old", "064"}).strOut, "old code  prefecture  city\n"
                                                                  "064       北海道      札幌市中央区\n");
}

TEST_F(QeadrsOutput, IsNoTableWhenNothingWasFound) {
    EXPECT_EQ(ZipOnTerminal({"9999999"}).strOut, "");
}

TEST_F(QeadrsOutput, IsOneTableForAFileOfCodes) {
    EXPECT_EQ(ZipOnTerminal({}, "1000001\n1000301\n").strOut, "postal code  old code  prefecture  city      town\n"
                                                              "1000001      100       東京都      千代田区  千代田\n"
                                                              "1000301      10003     東京都      利島村\n");
}

TEST_F(QeadrsOutput, AnswersWhoeverTypesLineByLine) {
    CTerminal terminal;
    CHandle const hError = open(Path("stderr").c_str(), O_WRONLY | O_CREAT, 0600);
    pid_t const nProcess = StartCommand(WithDic(Sample(), {}), terminal.hSlave, terminal.hSlave, hError);
    terminal.hSlave = CHandle();
    WriteAll(terminal.hMaster, "1000001\n");
    ASSERT_EQ(ReadUntil(terminal.hMaster, "千代田\n"), "postal code  old code  prefecture  city      town\n"
                                                       "1000001      100       東京都      千代田区  千代田\n");
    WriteAll(terminal.hMaster, "\x04");
    EXPECT_EQ(Wait(nProcess), 0);
    EXPECT_EQ(ReadFile(Path("stderr")), "qeadrs: one postal code per line, Ctrl-D ends\n");
}

// --- the organisation met ------------------------------------------------------------------------------------------

TEST_F(QeadrsOutput, RemarksTheLastOrganisationBesideATable) {
    EXPECT_EQ(ZipOnTerminal({"1018701"}).strErr, "qeadrs: organisation: 見本出版販売（株）\n");
}

TEST_F(QeadrsOutput, RemarksNoOrganisationWhereThereIsNone) {
    EXPECT_EQ(ZipOnTerminal({"1000001"}).strErr, "");
}

TEST_F(QeadrsOutput, RemarksNoOrganisationForSeveralCodes) {
    EXPECT_EQ(ZipOnTerminal({"1000001", "1018701"}).strErr, "");
}

TEST_F(QeadrsOutput, RemarksNoOrganisationWhenQuiet) {
    EXPECT_EQ(ZipOnTerminal({"-q", "1018701"}).strErr, "");
}

TEST_F(QeadrsOutput, RemarksNoOrganisationToPrograms) {
    EXPECT_EQ(Zip({"1018701"}).strErr, "");
}

TEST_F(QeadrsOutput, RemarksNoOrganisationBesideJson) {
    EXPECT_EQ(ZipOnTerminal({"--json", "1018701"}).strErr, "");
}

TEST_F(QeadrsOutput, SurvivesAnOrganisationWithATooLongName) {
    std::string const strName(200, 'x');
    std::string const strDic = WriteDictionary({{"1000000", {{0, "東京都"}, {1, "港区"}, {2, "あ"}, {7, strName}}}});
    CResult const result = RunOnTerminal(WithDic(strDic, {"1000000"}));
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strErr, "");
    EXPECT_THAT(result.strOut, HasSubstr(strName));
}

TEST_F(QeadrsOutput, RemarksAnOrganisationOfTheLongestName) {
    std::string const strName(127, 'x');
    std::string const strDic = WriteDictionary({{"1000000", {{0, "東京都"}, {1, "港区"}, {2, "あ"}, {7, strName}}}});
    EXPECT_EQ(RunOnTerminal(WithDic(strDic, {"1000000"})).strErr, "qeadrs: organisation: " + strName + "\n");
}

// --- tab-separated -------------------------------------------------------------------------------------------------

TEST_F(QeadrsOutput, NamesItsTabSeparatedColumnsOnDemand) {
    EXPECT_EQ(Zip({"--header", "1000301"}).strOut,
              "postal_code\told_code\tprefecture\tcity\ttown\tarea\tbuilding\tfloor\torganisation\n"
              "1000301\t10003\t東京都\t利島村\t\t\t\t\t\n");
}

TEST_F(QeadrsOutput, NamesTheColumnsOfReadingsOnDemand) {
    EXPECT_EQ(Lines(Zip({"--header", "--kana", "1000301"}).strOut)[0],
              "postal_code\told_code\tprefecture\tcity\ttown\tarea\tbuilding\tfloor\torganisation\t"
              "prefecture_kana\tcity_kana\ttown_kana\tarea_kana\tbuilding_kana\torganisation_kana");
}

TEST_F(QeadrsOutput, NamesItsColumnsOnceForManyCodes) {
    EXPECT_THAT(Lines(Zip({"--header", "--cities"}, "1000001\n1000301\n").strOut),
                ElementsAre("postal_code\tprefecture\tcity", "1000001\t東京都\t千代田区", "1000301\t東京都\t利島村"));
}

TEST_F(QeadrsOutput, NamesItsColumnsAlsoWhenNothingWasFound) {
    EXPECT_EQ(Zip({"--header", "--cities", "--old", "999"}).strOut, "old_code\tprefecture\tcity\n");
}

TEST_F(QeadrsOutput, KeepsALineALineWhateverTheTextsHold) {
    std::string const strDic =
        WriteDictionary({{"1000000", {{0, "東京都"}, {1, "a\tb\nc\rd\x1B[m\u2028e"}, {2, "x"}}}});
    EXPECT_EQ(Run(WithDic(strDic, {"1000000"})).strOut, "1000000\t100\t東京都\ta b c d [m e\tx\t\t\t\t\n");
}

// --- JSON ----------------------------------------------------------------------------------------------------------

TEST_F(QeadrsOutput, IsOneJsonObjectPerLineOnDemand) {
    EXPECT_EQ(Zip({"--json", "8710000"}).strOut,
              R"({"postal_code":"8710000","old_code":"871","prefecture":"福岡県","city":"築上郡吉富町","town":null,)"
              R"("area":null,"building":null,"floor":null,"organisation":null})"
              "\n"
              R"({"postal_code":"8710000","old_code":"871","prefecture":"大分県","city":"中津市","town":null,)"
              R"("area":null,"building":null,"floor":null,"organisation":null})"
              "\n");
}

TEST_F(QeadrsOutput, OfJsonAddsReadingsAsKeys) {
    EXPECT_EQ(Zip({"--json", "--kana", "9806101"}).strOut,
              R"({"postal_code":"9806101","old_code":"980","prefecture":"宮城県","city":"仙台市青葉区",)"
              R"("town":"中央","area":null,"building":"アエル","floor":"１階","organisation":null,)"
              R"("prefecture_kana":"ミヤギケン","city_kana":"センダイシアオバク","town_kana":"チュウオウ",)"
              R"("area_kana":null,"building_kana":"アエル","organisation_kana":null})"
              "\n");
}

TEST_F(QeadrsOutput, OfJsonListsCities) {
    EXPECT_EQ(Zip({"--json", "--cities", "--old", "064"}).strOut,
              R"({"old_code":"064","prefecture":"北海道","city":"札幌市中央区"})"
              "\n");
}

TEST_F(QeadrsOutput, OfJsonIsTheSameOnATerminal) {
    EXPECT_EQ(ZipOnTerminal({"--json", "1018701"}).strOut, Zip({"--json", "1018701"}).strOut);
}

TEST_F(QeadrsOutput, OfJsonIsReadableForEveryAddressOfTheSample) {
    std::vector<std::string> const vLine =
        Lines(Zip({"--json", "--kana", "0", "1", "2", "3", "4", "5", "6", "7", "8", "9"}).strOut);
    EXPECT_GT(vLine.size(), 400u);
    for (std::string const& strLine : vLine)
        EXPECT_EQ(nlohmann::json::parse(strLine, nullptr, false).size(), 15u) << strLine;
}

TEST_F(QeadrsOutput, IsUtf8EvenWhereTheDictionaryIsNot) {
    std::string const strDic = WriteDictionary({{"1000000", {{0, "東京都"}, {1, "x\xE5\x8D"}, {2, "y"}}}});
    EXPECT_THAT(Run(WithDic(strDic, {"--json", "1000000"})).strOut, HasSubstr("\"city\":\"x\uFFFD\""));
    EXPECT_THAT(Run(WithDic(strDic, {"1000000"})).strOut, HasSubstr("\tx\uFFFD"));
}

// --- output that fails ---------------------------------------------------------------------------------------------

TEST_F(QeadrsOutput, ReportsAFullDisk) {
    CHandle const hFull = open("/dev/full", O_WRONLY);
    CHandle const hError = open(Path("stderr").c_str(), O_WRONLY | O_CREAT, 0600);
    EXPECT_EQ(Wait(StartCommand(WithDic(Sample(), {"1000001"}), hFull, hFull, hError)), 4);
    EXPECT_EQ(ReadFile(Path("stderr")), "qeadrs: the output cannot be written.\n");
}

TEST_F(QeadrsOutput, ReportsAFullDiskForItsHelp) {
    CHandle const hFull = open("/dev/full", O_WRONLY);
    CHandle const hNull = open("/dev/null", O_RDWR);
    EXPECT_EQ(Wait(StartCommand({"--help"}, hNull, hFull, hNull)), 4);
}

TEST_F(QeadrsOutput, ReportsThatItIsClosed) {
    CHandle const hNull = open("/dev/null", O_RDWR);
    CHandle const hError = open(Path("stderr").c_str(), O_WRONLY | O_CREAT, 0600);
    EXPECT_EQ(Wait(StartCommand(WithDic(Sample(), {"1000001"}), hNull, -1, hError)), 4);
    EXPECT_EQ(ReadFile(Path("stderr")), "qeadrs: the output cannot be written.\n");
}

TEST_F(QeadrsOutput, NeverGoesIntoTheDictionaryThoughAllStreamsAreClosed) {
    std::string const strBefore = ReadFile(Sample());
    EXPECT_EQ(Wait(StartCommand(WithDic(Sample(), {"1000001", "9999999"}), -1, -1, -1)), 4);
    EXPECT_EQ(ReadFile(Sample()), strBefore);
}

} // namespace
