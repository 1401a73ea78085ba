// `qeadrs addr`: which code an address has, alone and for an organisation at it, and what was read of it. Texts that the
// two ways of reading take differently are asked for with --exact here, and as people write them in ReadingTest.cpp.
#include "tests/cli/CliTest.h"

#include <fcntl.h>

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using namespace std::string_literals;

namespace {

class QeadrsAddr : public CliTest {
  protected:
    CResult Addr(std::vector<std::string> vArgument, std::string const& strInput = "") {
        return Ask("addr", std::move(vArgument), strInput);
    }
    // The same with names as the dictionary spells them.
    CResult Exact(std::vector<std::string> vArgument, std::string const& strInput = "") {
        vArgument.insert(vArgument.begin(), "--exact");
        return Addr(std::move(vArgument), strInput);
    }
    // The same over a dictionary of the test's own.
    CResult AddrIn(std::vector<CEntryText> const& vEntry, std::vector<std::string> vArgument) {
        return AskIn(vEntry, "addr", std::move(vArgument));
    }
};

char const CHIYODA[] = "1000001\t100\t東京都\t千代田区\t千代田\t１−１\n";

// An address of this many bytes, 30 of them names.
std::string AddressOf(size_t nBytes) {
    return "東京都千代田区千代田" + std::string(nBytes - 30, 'x');
}

// --- answers -------------------------------------------------------------------------------------------------------

TEST_F(QeadrsAddr, PrintsTheCodeAndTheLevelsOfAnAddress) {
    CResult const result = Addr({"東京都千代田区千代田１−１"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strOut, CHIYODA);
    EXPECT_EQ(result.strErr, "");
}

TEST_F(QeadrsAddr, PrintsTheCodeOfACityWhereNoTownIsNamed) {
    EXPECT_EQ(Addr({"東京都千代田区"}).strOut, "1000000\t100\t東京都\t千代田区\t\t\n");
}

TEST_F(QeadrsAddr, PrintsTheCodeOfACityWhereTheTownIsUnknown) {
    EXPECT_EQ(Addr({"東京都千代田区架空町１"}).strOut, "1000000\t100\t東京都\t千代田区\t\t架空町１\n");
}

TEST_F(QeadrsAddr, PrintsOldCodesOfFiveDigits) {
    EXPECT_EQ(Addr({"東京都利島村"}).strOut, "1000301\t10003\t東京都\t利島村\t\t\n");
}

TEST_F(QeadrsAddr, ShowsThePrefectureOfACityNamedWithoutIt) {
    CResult const result = Addr({"千代田区千代田１−１"});
    EXPECT_EQ(result.strOut, CHIYODA);
    EXPECT_EQ(result.strErr, "");
}

TEST_F(QeadrsAddr, ShowsTheCityOfATownNamedWithoutItAndRemarksTheGuess) {
    CResult const result = Exact({"皇居外苑１−１"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strOut, "1000002\t100\t東京都\t千代田区\t皇居外苑\t１−１\n");
    EXPECT_EQ(result.strErr,
              "qeadrs: 皇居外苑１−１: no city recognised; this is the first town of the dictionary that "
              "the text names\n");
}

TEST_F(QeadrsAddr, ShowsThePlaceOfTheCodeAlsoWhenTheTextNamesAnotherPrefecture) {
    CResult const result = Exact({"大阪府皇居外苑"});
    EXPECT_EQ(result.strOut, "1000002\t100\t東京都\t千代田区\t皇居外苑\t\n");
    EXPECT_THAT(result.strErr, HasSubstr("no city recognised"));
}

TEST_F(QeadrsAddr, RemarksThatATownHasCodesForItsPartsOnly) {
    CResult const result = AddrIn({{"1000000", {{0, "東京都"}, {1, "港区"}}},
                                   {"1000003", {{0, "東京都"}, {1, "港区"}, {2, "芝"}, {3, "１丁目"}}}},
                                  {"--exact", "東京都港区芝１丁目"});
    EXPECT_EQ(result.strOut, "1000000\t100\t東京都\t港区\t芝\t１丁目\n");
    EXPECT_EQ(result.strErr, "qeadrs: 東京都港区芝１丁目: 芝 has codes for its parts only; this one is the city's\n");
}

TEST_F(QeadrsAddr, AddsTheReadingsOfTheNamesOnDemand) {
    EXPECT_EQ(Addr({"--kana", "千代田区千代田１−１"}).strOut,
              "1000001\t100\t東京都\t千代田区\t千代田\t１−１\tトウキョウト\tチヨダク\tチヨダ\n");
}

TEST_F(QeadrsAddr, LeavesTheReadingOfALevelThatIsNotThereEmpty) {
    EXPECT_EQ(Addr({"--kana", "東京都千代田区"}).strOut,
              "1000000\t100\t東京都\t千代田区\t\t\tトウキョウト\tチヨダク\t\n");
}

TEST_F(QeadrsAddr, AnswersSeveralAddressesInTheOrderAsked) {
    EXPECT_EQ(Addr({"東京都利島村", "東京都千代田区千代田１−１"}).strOut,
              std::string("1000301\t10003\t東京都\t利島村\t\t\n") + CHIYODA);
}

TEST_F(QeadrsAddr, IgnoresBlanksAroundTheAddress) {
    EXPECT_EQ(Addr({" 　\t\uFEFF東京都千代田区千代田１−１\r　 "}).strOut, CHIYODA);
}

TEST_F(QeadrsAddr, KeepsBlanksWithinTheAddress) {
    CResult const result = Exact({"東京都　千代田区"});
    EXPECT_EQ(result.nStatus, 1);
    EXPECT_EQ(result.strErr, "qeadrs: 東京都　千代田区: not found; recognised: prefecture 東京都\n");
}

TEST_F(QeadrsAddr, KeepsALineALineWhateverTheRestHolds) {
    EXPECT_EQ(Addr({"東京都千代田区千代田a\tb\nc\xFF"
                    "d"})
                  .strOut,
              "1000001\t100\t東京都\t千代田区\t千代田\ta b c\uFFFDd\n");
}

// --- not found -----------------------------------------------------------------------------------------------------

TEST_F(QeadrsAddr, ReportsAnAddressThatIsNotThere) {
    CResult const result = Addr({"架空"});
    EXPECT_EQ(result.nStatus, 1);
    EXPECT_EQ(result.strOut, "");
    EXPECT_EQ(result.strErr, "qeadrs: 架空: not found\n");
}

TEST_F(QeadrsAddr, TellsWhichLevelsItRecognisedWithoutFindingACode) {
    CResult const result = AddrIn({{"1000003", {{0, "東京都"}, {1, "港区"}, {2, "芝"}, {3, "１丁目"}}}},
                                  {"--exact", "東京都１", "東京都港区", "港区芝２丁目"});
    EXPECT_EQ(result.nStatus, 1);
    EXPECT_EQ(result.strOut, "");
    EXPECT_EQ(result.strErr, "qeadrs: 東京都１: not found; recognised: prefecture 東京都\n"
                             "qeadrs: 東京都港区: not found; recognised: prefecture 東京都, city 港区\n"
                             "qeadrs: 港区芝２丁目: not found; recognised: city 港区, town 芝\n");
}

TEST_F(QeadrsAddr, DoesNotFindWhatIsNoUtf8) {
    CResult const result = Addr({"\xFF\xE6\x9D"});
    EXPECT_EQ(result.nStatus, 1);
    EXPECT_EQ(result.strErr, "qeadrs: \uFFFD\uFFFD\uFFFD: not found\n");
}

TEST_F(QeadrsAddr, KeepsQuietOnDemand) {
    CResult const result = Exact({"-q", "--org", "架空", "架空", "皇居外苑"});
    EXPECT_EQ(result.nStatus, 1);
    EXPECT_EQ(result.strErr, "");
}

// --- what cannot be asked ------------------------------------------------------------------------------------------

TEST_F(QeadrsAddr, TakesAnAddressThatFillsTheField) {
    CResult const result = Exact({AddressOf(121)});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strOut, "1000001\t100\t東京都\t千代田区\t千代田\t" + std::string(91, 'x') + "\n");
}

TEST_F(QeadrsAddr, RefusesAnAddressLongerThanTheFieldWithItsLength) {
    CResult const result = Exact({AddressOf(122)});
    EXPECT_EQ(result.nStatus, 2);
    EXPECT_EQ(result.strOut, "");
    EXPECT_EQ(result.strErr, "qeadrs: \"東京都千代田区千代田" + std::string(30, 'x') +
                                 "...\" has 122 bytes; an address field holds 121.\n");
}

TEST_F(QeadrsAddr, DoesNotCountTheBlanksAroundAnAddress) {
    EXPECT_EQ(Exact({"   " + AddressOf(121) + "　"}).nStatus, 0);
}

TEST_F(QeadrsAddr, LooksNothingUpWhenOneOfTheAddressesIsTooLong) {
    EXPECT_EQ(Exact({"東京都千代田区千代田", AddressOf(122)}).strOut, "");
}

TEST_F(QeadrsAddr, RefusesAnEmptyAddress) {
    for (char const* pszText : {"", " ", "　\t"}) {
        SCOPED_TRACE(pszText);
        CResult const result = Addr({pszText});
        EXPECT_EQ(result.nStatus, 2);
        EXPECT_EQ(result.strOut, "");
        EXPECT_THAT(result.strErr, EndsWith("\" is no address: it has no characters.\n"));
    }
}

TEST_F(QeadrsAddr, SeesATooLongAddressBeforeItMissesTheDictionary) {
    EXPECT_EQ(Run({"addr", "--exact", AddressOf(122)}).nStatus, 2);
}

TEST_F(QeadrsAddr, ReportsThatThereIsNoDictionary) {
    CResult const result = Run({"addr", "東京都"});
    EXPECT_EQ(result.nStatus, 3);
    EXPECT_THAT(result.strErr, StartsWith("qeadrs: no dictionary: "));
}

TEST_F(QeadrsAddr, ReportsOutputThatCannotBeWritten) {
    CHandle const hFull = open("/dev/full", O_WRONLY);
    CHandle const hNull = open("/dev/null", O_RDWR);
    EXPECT_EQ(Wait(StartCommand(WithDic("addr", Sample(), {"東京都千代田区"}), hNull, hFull, hNull)), 4);
}

// --- organisations -------------------------------------------------------------------------------------------------

CNodeText const PREF = {0, "東京都"};
CNodeText const CITY = {1, "千代田区"};
CNodeText const TOWN = {2, "千代田"};

// A town with four organisations, two of which share a code; one with the town's code; one in another town.
std::vector<CEntryText> const OFFICES = {
    {"1000000", {PREF, CITY}},
    {"1000001", {PREF, CITY, TOWN}},
    {"1008111", {PREF, CITY, TOWN, {3, "１−１"}, {7, "宮内庁"}}},
    {"1008222", {PREF, CITY, TOWN, {3, "１−２"}, {7, "見本販売"}}},
    {"1008222", {PREF, CITY, TOWN, {3, "１−２"}, {7, "見本"}}},
    {"1000001", {PREF, CITY, TOWN, {3, "１−３"}, {7, "町内会"}}},
    {"1000005", {PREF, CITY, {2, "丸の内"}}},
    {"1008333", {PREF, CITY, {2, "丸の内"}, {7, "宮内庁"}}},
};

TEST_F(QeadrsAddr, PrefersTheCodeOfTheOrganisation) {
    CResult const result = AddrIn(OFFICES, {"--org", "宮内庁", "東京都千代田区千代田１−１"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strOut, "1008111\t100\t東京都\t千代田区\t千代田\t１−１\t宮内庁\n");
    EXPECT_EQ(result.strErr, "");
}

TEST_F(QeadrsAddr, FindsTheOrganisationOfTheSample) {
    EXPECT_EQ(Addr({"--org", "宮内庁", "--kana", "東京都千代田区千代田"}).strOut,
              "1008111\t100\t東京都\t千代田区\t千代田\t\t宮内庁\tトウキョウト\tチヨダク\tチヨダ\n");
}

TEST_F(QeadrsAddr, FindsAnOrganisationByTheBeginningOfItsName) {
    EXPECT_EQ(AddrIn(OFFICES, {"--org", "宮", "東京都千代田区丸の内"}).strOut,
              "1008333\t100\t東京都\t千代田区\t丸の内\t\t宮内庁\n");
}

TEST_F(QeadrsAddr, FindsAnOrganisationWhateverItsLegalFormAndBlanks) {
    for (char const* pszName : {"株式会社　宮内庁", "宮 内,庁（株）", "　宮　内　庁　"})
        EXPECT_THAT(AddrIn(OFFICES, {"--org", pszName, "東京都千代田区千代田"}).strOut, StartsWith("1008111\t"))
            << pszName;
}

TEST_F(QeadrsAddr, NamesTheRightOneOfOrganisationsThatShareACode) {
    EXPECT_THAT(AddrIn(OFFICES, {"--org", "見本", "東京都千代田区千代田"}).strOut, EndsWith("\t見本\n"));
    EXPECT_THAT(AddrIn(OFFICES, {"--org", "見本販", "東京都千代田区千代田"}).strOut, EndsWith("\t見本販売\n"));
}

// The index knows organisations by further names; here by those without legal form and blanks.
TEST_F(QeadrsAddr, NamesAnOrganisationAsItIsThoughTheIndexKnowsItByAnotherName) {
    qe::CImageWriter writer;
    uint32_t const nPref = writer.AddNode(ADDR_NONE, LEVEL_PREF, "東京都");
    uint32_t const nCity = writer.AddNode(nPref, LEVEL_CITY, "千代田区");
    uint32_t const nTown = writer.AddNode(nCity, LEVEL_TOWN, "千代田");
    writer.AddEntry(nTown, "1000001", "100");
    for (std::string const& strName : {"見本"s, "架空"s}) {
        uint32_t const nOffice = writer.AddNode(nTown, LEVEL_OFFICE, "株式会社　" + strName + "　商会");
        uint32_t const nEntry = writer.AddEntry(nOffice, "1008222", "100");
        uint32_t const nOtherName = writer.AddNode(nTown, LEVEL_OFFICE, strName + "商会");
        writer.Refer(nOtherName, nEntry);
        writer.AddOffice(nOffice);
        writer.AddOffice(nOtherName);
    }
    std::vector<unsigned char> const vByte = writer.Write().vByte;
    std::string const strDic = WriteFile("own.dic", std::string(vByte.begin(), vByte.end()));
    EXPECT_EQ(Run(WithDic("addr", strDic, {"--org", "見本商会", "東京都千代田区千代田"})).strOut,
              "1008222\t100\t東京都\t千代田区\t千代田\t\t株式会社　見本　商会\n");
    EXPECT_EQ(Run(WithDic("addr", strDic, {"--org", "架空", "東京都千代田区千代田"})).strOut,
              "1008222\t100\t東京都\t千代田区\t千代田\t\t株式会社　架空　商会\n");
}

TEST_F(QeadrsAddr, FindsAnOrganisationInATownWithoutACode) {
    CResult const result = AddrIn({{"1000000", {PREF, CITY}}, {"1008111", {PREF, CITY, TOWN, {7, "宮内庁"}}}},
                                  {"--org", "宮内庁", "東京都千代田区千代田"});
    EXPECT_EQ(result.strOut, "1008111\t100\t東京都\t千代田区\t千代田\t\t宮内庁\n");
    EXPECT_EQ(result.strErr, "");
}

TEST_F(QeadrsAddr, AnswersTheAddressWhenTheOrganisationIsNotInTheTown) {
    CResult const result = AddrIn(OFFICES, {"--org", "見本", "東京都千代田区丸の内"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strOut, "1000005\t100\t東京都\t千代田区\t丸の内\t\t\n");
    EXPECT_EQ(result.strErr, "qeadrs: 東京都千代田区丸の内: organisation 見本 has no code of its own in this town\n");
}

TEST_F(QeadrsAddr, NamesNoOrganisationThatHasTheCodeOfItsTown) {
    CResult const result = AddrIn(OFFICES, {"--org", "町内会", "東京都千代田区千代田"});
    EXPECT_EQ(result.strOut, "1000001\t100\t東京都\t千代田区\t千代田\t\t\n");
    EXPECT_THAT(result.strErr, HasSubstr("has no code of its own"));
}

TEST_F(QeadrsAddr, RemarksThatAnOrganisationNeedsItsPrefecture) {
    CResult const result = AddrIn(OFFICES, {"--exact", "--org", "宮内庁", "千代田区千代田"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strOut, "1000001\t100\t東京都\t千代田区\t千代田\t\t\n");
    EXPECT_EQ(result.strErr, "qeadrs: 千代田区千代田: organisation 宮内庁 not found: the text names no prefecture\n");
}

TEST_F(QeadrsAddr, RemarksEveryNameThatAnOrganisationNeeds) {
    EXPECT_THAT(AddrIn(OFFICES, {"--exact", "--org", "宮内庁", "東京都千代田区"}).strErr,
                EndsWith("names no town\n"));
    EXPECT_THAT(AddrIn(OFFICES, {"--exact", "--org", "宮内庁", "千代田区"}).strErr,
                EndsWith("names no prefecture and no town\n"));
    EXPECT_THAT(AddrIn(OFFICES, {"--exact", "--org", "宮内庁", "丸の内"}).strErr,
                EndsWith("names no prefecture and no city\n"));
}

TEST_F(QeadrsAddr, TakesAnEmptyNameForNoOrganisation) {
    CResult const result = AddrIn(OFFICES, {"--org", "　", "東京都千代田区千代田"});
    EXPECT_EQ(result.strOut, "1000001\t100\t東京都\t千代田区\t千代田\t\t\n");
    EXPECT_EQ(result.strErr, "");
}

TEST_F(QeadrsAddr, AsksForTheSameOrganisationInEveryLine) {
    EXPECT_EQ(Run(WithDic("addr", WriteDictionary(OFFICES), {"--org", "株式会社宮内庁"}),
                  "東京都千代田区千代田\n東京都千代田区丸の内\n")
                  .strOut,
              "1008111\t100\t東京都\t千代田区\t千代田\t\t宮内庁\n1008333\t100\t東京都\t千代田区\t丸の内\t\t宮内庁\n");
}

TEST_F(QeadrsAddr, TakesANameOfSixtyFiveThousandBytesAndNoLongerOne) {
    EXPECT_EQ(Addr({"--org", std::string(65000, 'x'), "東京都千代田区"}).nStatus, 0);
    CResult const result = Addr({"--org", std::string(65001, 'x'), "東京都千代田区"});
    EXPECT_EQ(result.nStatus, 2);
    EXPECT_EQ(result.strOut, "");
    EXPECT_EQ(result.strErr, "qeadrs: \"" + std::string(40, 'x') +
                                 "...\" has 65,001 bytes; the name of an organisation may have 65,000.\n");
}

// --- forms ---------------------------------------------------------------------------------------------------------

TEST_F(QeadrsAddr, IsOneJsonObjectPerAddressOnDemand) {
    EXPECT_EQ(Exact({"--json", "千代田区千代田１−１", "東京都利島村"}).strOut,
              R"({"postal_code":"1000001","old_code":"100","prefecture":"東京都","city":"千代田区","town":"千代田",)"
              R"("rest":"１−１"})"
              "\n"
              R"({"postal_code":"1000301","old_code":"10003","prefecture":"東京都","city":"利島村","town":null,)"
              R"("rest":null})"
              "\n");
}

TEST_F(QeadrsAddr, HasAKeyForTheOrganisationAndTheReadingsInJson) {
    EXPECT_EQ(Exact({"--json", "--kana", "--org", "架空", "東京都利島村"}).strOut,
              R"({"postal_code":"1000301","old_code":"10003","prefecture":"東京都","city":"利島村","town":null,)"
              R"("rest":null,"organisation":null,"prefecture_kana":"トウキョウト","city_kana":"トシマムラ",)"
              R"("town_kana":null})"
              "\n");
}

TEST_F(QeadrsAddr, NamesItsColumnsOnDemand) {
    EXPECT_EQ(Addr({"--header", "--kana", "--org", "宮内庁", "東京都千代田区千代田１−１"}).strOut,
              "postal_code\told_code\tprefecture\tcity\ttown\trest\torganisation\tprefecture_kana\tcity_kana\t"
              "town_kana\n"
              "1008111\t100\t東京都\t千代田区\t千代田\t１−１\t宮内庁\tトウキョウト\tチヨダク\tチヨダ\n");
}

TEST_F(QeadrsAddr, IsATableOnATerminal) {
    EXPECT_EQ(AskOnTerminal("addr", {"東京都千代田区千代田１−１", "東京都利島村"}).strOut,
              "postal code  old code  prefecture  city      town    rest\n"
              "1000001      100       東京都      千代田区  千代田  １−１\n"
              "1000301      10003     東京都      利島村\n");
}

// --- standard input ------------------------------------------------------------------------------------------------

TEST_F(QeadrsAddr, GoesOnBehindALineThatIsNoAddress) {
    CResult const result = Exact({}, "東京都\n\n" + AddressOf(122) + "\n東京都\0利島村\n"s + "東京都利島村\r\n");
    EXPECT_EQ(result.nStatus, 2);
    EXPECT_EQ(result.strOut, "1000301\t10003\t東京都\t利島村\t\t\n");
    EXPECT_EQ(result.strErr, "qeadrs: 東京都: not found; recognised: prefecture 東京都\n"
                             "qeadrs: line 3: \"東京都千代田区千代田" +
                                 std::string(30, 'x') +
                                 "...\" has 122 bytes; an address field holds 121.\n"
                                 "qeadrs: line 4: \"東京都 利島村\" is no address: it has a NUL in it.\n");
}

TEST_F(QeadrsAddr, ReportsALineThatIsNotFound) {
    EXPECT_EQ(Addr({}, "東京都利島村\n架空\n").nStatus, 1);
}

TEST_F(QeadrsAddr, AnswersALineBeforeTheNextOneIsWritten) {
    CPipe input;
    CPipe output;
    CHandle const hNull = open("/dev/null", O_RDWR);
    pid_t const nProcess = StartCommand(WithDic("addr", Sample(), {}), input.hRead, output.hWrite, hNull);
    output.hWrite = CHandle();
    WriteAll(input.hWrite, "東京都千代田区千代田１−１\n");
    ASSERT_EQ(ReadUntil(output.hRead, "\n"), CHIYODA);
    input.hWrite = CHandle();
    EXPECT_EQ(Wait(nProcess), 0);
}

TEST_F(QeadrsAddr, TellsWhoeverTypesWhatToType) {
    CTerminal terminal;
    CHandle const hError = open(Path("stderr").c_str(), O_WRONLY | O_CREAT, 0600);
    pid_t const nProcess = StartCommand(WithDic("addr", Sample(), {}), terminal.hSlave, terminal.hSlave, hError);
    terminal.hSlave = CHandle();
    WriteAll(terminal.hMaster, "\x04");
    EXPECT_EQ(Wait(nProcess), 0);
    EXPECT_EQ(ReadFile(Path("stderr")), "qeadrs: one address per line, Ctrl-D ends\n");
}

// --- help ----------------------------------------------------------------------------------------------------------

TEST_F(QeadrsAddr, ExplainsItselfOnOneScreen) {
    CResult const result = Run({"addr", "--help"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_THAT(result.strOut, StartsWith("qeadrs addr - postal codes of addresses\n"
                                          "Usage: qeadrs addr [OPTION...] [TEXT...]\n"));
    EXPECT_THAT(result.strOut, EndsWith("\nExit: 0 found, 1 not found, 2 usage, 3 no dictionary, 4 system error.\n"));
    EXPECT_LE(Lines(result.strOut).size(), 24u);
}

TEST_F(QeadrsAddr, RefusesAWrongCall) {
    for (auto const& vArgument : std::vector<std::vector<std::string>>{
             {"addr", "--limit", "1", "x"}, {"addr", "--org"}, {"addr", "--json", "--header", "x"}}) {
        SCOPED_TRACE(testing::PrintToString(vArgument));
        EXPECT_EQ(Run(vArgument).nStatus, 2);
    }
}

} // namespace
