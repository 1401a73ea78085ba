// `qeadrs zip`: which addresses a code gives, and how codes may be written.
#include "tests/cli/CliTest.h"

#include <fcntl.h>

#include <algorithm>

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

namespace {

class QeadrsZip : public CliTest {};

char const CHIYODA[] = "1000001\t100\t東京都\t千代田区\t千代田\t\t\t\t\n";

// --- answers -------------------------------------------------------------------------------------------------------

TEST_F(QeadrsZip, PrintsTheAddressOfACode) {
    EXPECT_EQ(Zip({"1000001"}).strOut, CHIYODA);
}

TEST_F(QeadrsZip, ReportsSuccessForACodeThatIsThere) {
    EXPECT_EQ(Zip({"1000001"}).nStatus, 0);
}

TEST_F(QeadrsZip, HasNothingToRemarkOnACodeThatIsThere) {
    EXPECT_EQ(Zip({"1000001"}).strErr, "");
}

TEST_F(QeadrsZip, PrintsEveryAddressOfASharedCode) {
    EXPECT_EQ(Zip({"871-0000"}).strOut, "8710000\t871\t福岡県\t築上郡吉富町\t\t\t\t\t\n"
                                        "8710000\t871\t大分県\t中津市\t\t\t\t\t\n");
}

TEST_F(QeadrsZip, TakesALeadingPartForAllItsCodes) {
    EXPECT_EQ(Zip({"980-61"}).strOut, "9806101\t980\t宮城県\t仙台市青葉区\t中央\t\tアエル\t１階\t\n"
                                      "9806102\t980\t宮城県\t仙台市青葉区\t中央\t\tアエル\t２階\t\n"
                                      "9806103\t980\t宮城県\t仙台市青葉区\t中央\t\tアエル\t３階\t\n"
                                      "9806190\t980\t宮城県\t仙台市青葉区\t中央\t\tアエル\t\t\n");
}

TEST_F(QeadrsZip, AnswersSeveralCodesInTheOrderAsked) {
    EXPECT_EQ(Zip({"9806101", "1000001"}).strOut,
              std::string("9806101\t980\t宮城県\t仙台市青葉区\t中央\t\tアエル\t１階\t\n") + CHIYODA);
}

TEST_F(QeadrsZip, PrintsOrganisationsWithTheRestOfTheirAddress) {
    EXPECT_EQ(Zip({"1018701"}).strOut,
              "1018701\t101\t東京都\t千代田区\t神田神保町\t１丁目１０１\t\t\t株式会社　見本出版\n"
              "1018701\t101\t東京都\t千代田区\t神田神保町\t１丁目１０１\t\t\t見本出版販売（株）\n");
}

TEST_F(QeadrsZip, AddsTheReadingsOfEveryLevelOnDemand) {
    EXPECT_EQ(Zip({"--kana", "9806101"}).strOut, "9806101\t980\t宮城県\t仙台市青葉区\t中央\t\tアエル\t１階\t\t"
                                                 "ミヤギケン\tセンダイシアオバク\tチュウオウ\t\tアエル\t\n");
}

TEST_F(QeadrsZip, PrintsTheOldCodeThatIsNoBeginningOfTheNewOne) {
    EXPECT_EQ(Zip({"3300063"}).strOut, "3300063\t336\t埼玉県\tさいたま市浦和区\t高砂\t\t\t\t\n");
}

TEST_F(QeadrsZip, PrintsMoreAddressesThanTheBlocksOwnCounterHolds) {
    std::vector<CEntryText> vEntry;
    for (int i = 0; i < 65537; ++i)
        vEntry.push_back({std::to_string(1000000 + i), {{0, "東京都"}, {1, "千代田区"}, {2, std::to_string(i)}}});
    EXPECT_THAT(Lines(Run(WithDic(WriteDictionary(vEntry), {"1"})).strOut), SizeIs(65537));
}

// --- order ---------------------------------------------------------------------------------------------------------

// Three towns of one code, in the order of the dictionary.
std::vector<CEntryText> const SOUTH_FIRST = {
    {"1000000", {{0, "沖縄県"}, {1, "那覇市"}, {2, "い"}}},
    {"1000000", {{0, "沖縄県"}, {1, "那覇市"}, {2, "あ"}}},
    {"1000000", {{0, "北海道"}, {1, "札幌市"}, {2, "う"}}},
};

TEST_F(QeadrsZip, KeepsTheOrderOfTheDictionary) {
    EXPECT_EQ(Run(WithDic(WriteDictionary(SOUTH_FIRST), {"1000000"})).strOut,
              "1000000\t100\t沖縄県\t那覇市\tい\t\t\t\t\n1000000\t100\t沖縄県\t那覇市\tあ\t\t\t\t\n"
              "1000000\t100\t北海道\t札幌市\tう\t\t\t\t\n");
}

TEST_F(QeadrsZip, SortsFromNorthToSouthAndByNameOnDemand) {
    EXPECT_EQ(Run(WithDic(WriteDictionary(SOUTH_FIRST), {"--sort", "1000000"})).strOut,
              "1000000\t100\t北海道\t札幌市\tう\t\t\t\t\n1000000\t100\t沖縄県\t那覇市\tあ\t\t\t\t\n"
              "1000000\t100\t沖縄県\t那覇市\tい\t\t\t\t\n");
}

TEST_F(QeadrsZip, KeepsBuildingsAndReadingsWithTheirAddressWhenSorted) {
    std::vector<std::string> vPlain = Lines(Zip({"--kana", "4", "9"}).strOut);
    std::vector<std::string> vSorted = Lines(Zip({"--kana", "--sort", "4", "9"}).strOut);
    std::sort(vPlain.begin(), vPlain.end());
    std::sort(vSorted.begin(), vSorted.end());
    EXPECT_EQ(vPlain, vSorted);
}

// --- old codes -----------------------------------------------------------------------------------------------------

TEST_F(QeadrsZip, FindsTheAddressesOfAnOldCodeOfThreeDigits) {
    EXPECT_EQ(Zip({"--old", "064"}).strOut, "0640801\t064\t北海道\t札幌市中央区\t南一条西\t２０〜２８丁目\t\t\t\n"
                                            "0640820\t064\t北海道\t札幌市中央区\t大通西\t２０〜２８丁目\t\t\t\n"
                                            "0640821\t064\t北海道\t札幌市中央区\t北一条西\t２０〜２８丁目\t\t\t\n"
                                            "0640941\t064\t北海道\t札幌市中央区\t旭ケ丘\t\t\t\t\n"
                                            "0640951\t064\t北海道\t札幌市中央区\t宮の森一条\t\t\t\t\n"
                                            "0640958\t064\t北海道\t札幌市中央区\t宮ケ丘\t\t\t\t\n"
                                            "0640959\t064\t北海道\t札幌市中央区\t宮の森\t\t\t\t\n");
}

TEST_F(QeadrsZip, FindsTheAddressesOfAnOldCodeOfFiveDigits) {
    EXPECT_EQ(Zip({"--old", "100-03"}).strOut, "1000301\t10003\t東京都\t利島村\t\t\t\t\t\n");
}

TEST_F(QeadrsZip, ReportsAnOldCodeThatIsNotThere) {
    EXPECT_EQ(Zip({"--old", "999"}).nStatus, 1);
}

TEST_F(QeadrsZip, AddsReadingsToTheAddressesOfAnOldCode) {
    EXPECT_EQ(Zip({"--old", "--kana", "10003"}).strOut,
              "1000301\t10003\t東京都\t利島村\t\t\t\t\t\tトウキョウト\tトシマムラ\t\t\t\t\n");
}

// --- cities --------------------------------------------------------------------------------------------------------

TEST_F(QeadrsZip, ListsTheCitiesOfACode) {
    EXPECT_EQ(Zip({"--cities", "8710000"}).strOut, "8710000\t福岡県\t築上郡吉富町\n8710000\t大分県\t中津市\n");
}

TEST_F(QeadrsZip, ListsTheCitiesOfAnOldCode) {
    EXPECT_EQ(Zip({"--cities", "--old", "064"}).strOut, "064\t北海道\t札幌市中央区\n");
}

TEST_F(QeadrsZip, ListsACityOnceThoughAnotherStandsBetweenItsTowns) {
    std::string const strDic = WriteDictionary({{"1000000", {{0, "東京都"}, {1, "港区"}, {2, "あ"}}},
                                                {"1000001", {{0, "大阪府"}, {1, "堺市"}, {2, "い"}}},
                                                {"1000002", {{0, "東京都"}, {1, "港区"}, {2, "う"}}}});
    EXPECT_EQ(Run(WithDic(strDic, {"--cities", "100"})).strOut, "100\t東京都\t港区\n100\t大阪府\t堺市\n");
}

TEST_F(QeadrsZip, SortsTheCitiesOnDemand) {
    EXPECT_EQ(Run(WithDic(WriteDictionary(SOUTH_FIRST), {"--cities", "--sort", "1"})).strOut,
              "1\t北海道\t札幌市\n1\t沖縄県\t那覇市\n");
}

TEST_F(QeadrsZip, LeavesTheTextOfAnUnknownPrefectureWithItsCity) {
    std::string const strDic = WriteDictionary({{"1000000", {{0, "架空県"}, {1, "見本市"}, {2, "あ"}}}});
    EXPECT_EQ(Run(WithDic(strDic, {"--cities", "1"})).strOut, "1\t\t架空県見本市\n");
}

TEST_F(QeadrsZip, ReportsThatNoCityHasTheCode) {
    CResult const result = Zip({"--cities", "9999999"});
    EXPECT_EQ(result.nStatus, 1);
    EXPECT_EQ(result.strErr, "qeadrs: 9999999: not found\n");
}

// --- how a code may be written -------------------------------------------------------------------------------------

TEST_F(QeadrsZip, AcceptsFullWidthDigitsAndHyphens) {
    EXPECT_EQ(Zip({"１００−０００１"}).strOut, CHIYODA);
}

TEST_F(QeadrsZip, AcceptsACodeInEveryUsualDress) {
    std::vector<std::string> const vDress = {
        "1000001",        "100-0001",         "〒100-0001",       "〒 100-0001",   "〒１００－０００１",
        "100 0001",       "１００　０００１", "１００ー０００１", "100ｰ0001",      "100\u20100001",
        "100\u20110001",  "100\u20120001",    "100–0001",         "100—0001",      "100―0001",
        "100−0001",       "100─0001",         "100━0001",         "100\u00A00001", "\uFEFF1000001",
        "\u200E100-0001", "  100-0001\t",     "100-0001\r",       "１00-０００1",  "〠1000001",
        "〶1000001",      "100\u00AD0001",    "\u30001000001",    "100﹣0001",     "100--0001",
    };
    std::string strInput;
    std::string strExpected;
    for (std::string const& strDress : vDress) {
        strInput += strDress + '\n';
        strExpected += CHIYODA;
    }
    CResult const result = Zip({}, strInput);
    EXPECT_EQ(result.strErr, "");
    EXPECT_EQ(result.strOut, strExpected);
}

TEST_F(QeadrsZip, RefusesWhatCannotBeACode) {
    std::vector<std::string> const vText = {"abc",
                                            "100-000x",
                                            "10000011",
                                            "100,101",
                                            "100〜102",
                                            "一〇〇",
                                            "〒",
                                            "-",
                                            "½",
                                            "\xFF"
                                            "1",
                                            "1000001\xE5",
                                            "1?",
                                            "100*",
                                            "100/101",
                                            "100.0001",
                                            "+1",
                                            "100、101",
                                            "1000001 1000002"};
    for (std::string const& strText : vText) {
        SCOPED_TRACE(strText);
        CResult const result = Zip({"--", strText});
        EXPECT_EQ(result.nStatus, 2);
        EXPECT_EQ(result.strOut, "");
        EXPECT_THAT(result.strErr, EndsWith(" is no postal code: it has 1 to 7 digits.\n"));
    }
}

TEST_F(QeadrsZip, RefusesAnEmptyArgument) {
    CResult const result = Zip({""});
    EXPECT_EQ(result.nStatus, 2);
    EXPECT_EQ(result.strErr, "qeadrs: \"\" is no postal code: it has 1 to 7 digits.\n");
}

TEST_F(QeadrsZip, RefusesAnOldCodeOfAnotherLength) {
    for (char const* pszCode : {"1", "10", "1000", "100000", "1000001"}) {
        SCOPED_TRACE(pszCode);
        CResult const result = Zip({"--old", pszCode});
        EXPECT_EQ(result.nStatus, 2);
        EXPECT_THAT(result.strErr, EndsWith(" is no old postal code: it has 3 or 5 digits.\n"));
    }
}

TEST_F(QeadrsZip, NamesARefusedTextWithoutItsControlCharacters) {
    EXPECT_EQ(Zip({"\x1B[31mred\n"}).strErr, "qeadrs: \" [31mred \" is no postal code: it has 1 to 7 digits.\n");
}

TEST_F(QeadrsZip, NamesOnlyTheBeginningOfALongText) {
    std::string strLong;
    std::string strShort;
    for (int i = 0; i < 1000; ++i) strLong += "あ";
    for (int i = 0; i < 40; ++i) strShort += "あ";
    EXPECT_EQ(Zip({strLong}).strErr, "qeadrs: \"" + strShort + "...\" is no postal code: it has 1 to 7 digits.\n");
}

TEST_F(QeadrsZip, LooksNothingUpWhenOneOfTheArgumentsIsNoCode) {
    EXPECT_EQ(Zip({"1000001", "abc"}).strOut, "");
}

// --- not found -----------------------------------------------------------------------------------------------------

TEST_F(QeadrsZip, ReportsACodeThatIsNotThere) {
    CResult const result = Zip({"999-9999"});
    EXPECT_EQ(result.nStatus, 1);
    EXPECT_EQ(result.strErr, "qeadrs: 9999999: not found\n");
}

TEST_F(QeadrsZip, AnswersTheOtherCodesWhenOneIsNotThere) {
    CResult const result = Zip({"9999999", "1000001"});
    EXPECT_EQ(result.nStatus, 1);
    EXPECT_EQ(result.strOut, CHIYODA);
}

TEST_F(QeadrsZip, KeepsQuietAboutAMissingCodeOnDemand) {
    CResult const result = Zip({"-q", "9999999"});
    EXPECT_EQ(result.nStatus, 1);
    EXPECT_EQ(result.strErr, "");
}

// --- standard input ------------------------------------------------------------------------------------------------

TEST_F(QeadrsZip, TakesCodesFromStandardInput) {
    EXPECT_EQ(Zip({}, "1000001\n3300063\n").strOut,
              std::string(CHIYODA) + "3300063\t336\t埼玉県\tさいたま市浦和区\t高砂\t\t\t\t\n");
}

TEST_F(QeadrsZip, IgnoresBlankLines) {
    CResult const result = Zip({}, "\n \t\n　\n\r\n1000001\n\n");
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strOut, CHIYODA);
}

TEST_F(QeadrsZip, TakesALastLineWithoutItsEnd) {
    EXPECT_EQ(Zip({}, "1000001").strOut, CHIYODA);
}

TEST_F(QeadrsZip, GoesOnBehindALineThatIsNoCode) {
    CResult const result = Zip({}, "9999999\n\nabc\n1000001\n");
    EXPECT_EQ(result.nStatus, 2);
    EXPECT_EQ(result.strOut, CHIYODA);
    EXPECT_EQ(result.strErr, "qeadrs: 9999999: not found\n"
                             "qeadrs: line 3: \"abc\" is no postal code: it has 1 to 7 digits.\n");
}

TEST_F(QeadrsZip, RefusesALineWithANulInIt) {
    EXPECT_EQ(Zip({}, std::string("100") + '\0' + "0001\n").nStatus, 2);
}

TEST_F(QeadrsZip, HasNothingToSayToEmptyInput) {
    CResult const result = Zip({}, "");
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strOut + result.strErr, "");
}

TEST_F(QeadrsZip, AnswersALineBeforeTheNextOneIsWritten) {
    CPipe input;
    CPipe output;
    CHandle const hNull = open("/dev/null", O_RDWR);
    pid_t const nProcess = StartCommand(WithDic(Sample(), {}), input.hRead, output.hWrite, hNull);
    output.hWrite = CHandle();
    WriteAll(input.hWrite, "1000001\n");
    ASSERT_EQ(ReadUntil(output.hRead, "\n"), CHIYODA);
    WriteAll(input.hWrite, "9806190\n");
    ASSERT_EQ(ReadUntil(output.hRead, "\n"), "9806190\t980\t宮城県\t仙台市青葉区\t中央\t\tアエル\t\t\n");
    input.hWrite = CHandle();
    EXPECT_EQ(Wait(nProcess), 0);
}

TEST_F(QeadrsZip, ReportsInputThatCannotBeRead) {
    CHandle const hFolder = open("/", O_RDONLY);
    CHandle const hError = open(Path("stderr").c_str(), O_WRONLY | O_CREAT, 0600);
    EXPECT_EQ(Wait(StartCommand(WithDic(Sample(), {}), hFolder, hError, hError)), 4);
    EXPECT_EQ(ReadFile(Path("stderr")), "qeadrs: standard input cannot be read.\n");
}

TEST_F(QeadrsZip, ReportsInputThatIsClosed) {
    CHandle const hError = open(Path("stderr").c_str(), O_WRONLY | O_CREAT, 0600);
    EXPECT_EQ(Wait(StartCommand(WithDic(Sample(), {}), -1, hError, hError)), 4);
    EXPECT_EQ(ReadFile(Path("stderr")), "qeadrs: standard input cannot be read.\n");
}

// --- wrong calls ---------------------------------------------------------------------------------------------------

TEST_F(QeadrsZip, RefusesAWrongCall) {
    std::vector<std::vector<std::string>> const vCall = {
        {},
        {"zap", "1"},
        {"zip", "--unknown", "1"},
        {"zip", "--sort", "--old", "100"},
        {"zip", "--kana", "--cities", "1"},
        {"zip", "--json", "--header", "1"},
        {"zip", "--dic"},
        {"zip", "--dic", "a", "--dic", "b", "1"},
    };
    for (auto const& vArgument : vCall) {
        SCOPED_TRACE(testing::PrintToString(vArgument));
        CResult const result = Run(vArgument);
        EXPECT_EQ(result.nStatus, 2);
        EXPECT_EQ(result.strOut, "");
        EXPECT_THAT(result.strErr, StartsWith("qeadrs: "));
        EXPECT_THAT(result.strErr, EndsWith("\nRun `qeadrs --help` or `qeadrs COMMAND --help`.\n"));
    }
}

TEST_F(QeadrsZip, SeesAWrongCodeBeforeItMissesTheDictionary) {
    EXPECT_EQ(Run({"zip", "abc"}).nStatus, 2);
}

TEST_F(QeadrsZip, ExplainsItselfOnOneScreen) {
    CResult const result = Run({"zip", "--help"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_THAT(result.strOut, StartsWith("qeadrs zip - addresses of postal codes\n"
                                          "Usage: qeadrs zip [OPTION...] [CODE...]\n"));
    EXPECT_THAT(result.strOut, EndsWith("\nExit: 0 found, 1 not found, 2 usage, 3 no dictionary, 4 system error.\n"));
    EXPECT_LE(Lines(result.strOut).size(), 24u);
}

TEST_F(QeadrsZip, IsListedAmongTheCommands) {
    CResult const result = Run({"--help"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_THAT(result.strOut, StartsWith("qeadrs - look up Japanese postal addresses\nUsage: qeadrs COMMAND "));
    EXPECT_THAT(result.strOut, HasSubstr("\n  zip "));
}

TEST_F(QeadrsZip, TellsTheVersion) {
    EXPECT_EQ(Run({"--version"}).strOut, QEADRS_VERSION "\n");
}

} // namespace
