// `qeadrs latest`: addresses of places that have got another name, and of those that have not.
#include "tests/cli/CliTest.h"

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

// 清水市 has become a part of 静岡市, and 旧町 was renamed within its city, with a long name.
std::string const LONG_TOWN(90, 'n');
std::vector<CEntryText> const RENAMED = {
    {"4240001", {{0, "静岡県"}, {1, "清水市"}, {2, "港町"}}, 1},
    {"4240943", {{0, "静岡県"}, {1, "静岡市"}, {2, "清水区港町"}}},
    {"4200001", {{0, "静岡県"}, {1, "静岡市"}, {2, "旧町"}}, 3, "42001"},
    {"4200002", {{0, "静岡県"}, {1, "静岡市"}, {2, LONG_TOWN}}},
    {"4200000", {{0, "静岡県"}, {1, "静岡市"}}},
};

class QeadrsLatest : public CliTest {
  protected:
    CResult Latest(std::vector<std::string> vArgument, std::string const& strInput = "") {
        return Run(WithDic("latest", WriteDictionary(RENAMED), std::move(vArgument)), strInput);
    }
};

// --- answers -------------------------------------------------------------------------------------------------------

TEST_F(QeadrsLatest, RewritesAnAddressOfASupersededTown) {
    std::vector<std::string> vArgument = {"静岡県清水市港町１−１"};
    for (int i = 0; i < 2; ++i) {
        CResult const result = Latest(vArgument);
        EXPECT_EQ(result.nStatus, 0);
        EXPECT_EQ(result.strOut, "静岡県静岡市清水区港町１−１\t4240001\t424\tyes\t4240943\n");
        EXPECT_EQ(result.strErr, "");
        vArgument.insert(vArgument.begin(), "--exact");
    }
}

TEST_F(QeadrsLatest, LeavesACurrentAddressAsItIs) {
    EXPECT_EQ(Latest({"静岡県静岡市清水区港町１−１"}).strOut,
              "静岡県静岡市清水区港町１−１\t4240943\t424\tno\t4240943\n");
}

TEST_F(QeadrsLatest, CompletesTheNamesOfASupersededAddress) {
    EXPECT_EQ(Latest({"清水市港町１"}).strOut, "静岡県静岡市清水区港町１\t4240001\t424\tyes\t4240943\n");
}

TEST_F(QeadrsLatest, CompletesTheNamesOfACurrentAddressUnlessTheyHaveToBeExact) {
    EXPECT_EQ(Latest({"静岡市清水区港町１"}).strOut, "静岡県静岡市清水区港町１\t4240943\t424\tno\t4240943\n");
    EXPECT_EQ(Latest({"--exact", "静岡市清水区港町１"}).strOut, "静岡市清水区港町１\t4240943\t424\tno\t4240943\n");
}

TEST_F(QeadrsLatest, SeesAReplacementOfTheTownAlone) {
    EXPECT_EQ(Latest({"静岡県静岡市旧町"}).strOut, "静岡県静岡市" + LONG_TOWN + "\t4200001\t42001\tyes\t4200002\n");
}

TEST_F(QeadrsLatest, LeavesEveryTownOfTheSampleAsItIs) {
    CResult const result = Ask("latest", {"東京都千代田区千代田１−１", "東京都千代田区丸の内"});
    EXPECT_EQ(result.strOut, "東京都千代田区千代田１−１\t1000001\t100\tno\t1000001\n"
                             "東京都千代田区丸の内\t1000005\t100\tno\t1000005\n");
}

// The class finds no town behind a street.
TEST_F(QeadrsLatest, KeepsTheStreetsOfKyotoAsTheyAreWritten) {
    CResult const result =
        Ask("latest", {"京都市中京区河原町通二条下る一之船入町３８４",
                       "京都府 京都市中京区 木屋町通 御池下ル 上樵木町", "京都市中京区一之船入町３８４"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strOut, "京都府京都市中京区河原町通二条下る一之船入町３８４\t6040924\t604\tno\t6040924\n"
                             "京都府京都市中京区木屋町通 御池下ル上樵木町\t6040924\t604\tno\t6040924\n"
                             "京都府京都市中京区一之船入町３８４\t6040924\t604\tno\t6040924\n");
    EXPECT_EQ(Ask("addr", {"京都市中京区河原町通二条下る一之船入町３８４"}).strOut,
              "6040924\t604\t京都府\t京都市中京区\t一之船入町\t３８４\n");
}

TEST_F(QeadrsLatest, PutsTheStreetBetweenTheNamesThatReplacedThoseOfTheText) {
    CResult const result = AskIn({{"6008000", {{0, "京都府"}, {1, "京都市葛野区"}, {2, "旧町"}}, 1},
                                  {"6158000", {{0, "京都府"}, {1, "京都市西京区"}, {2, "新町"}}}},
                                 "latest", {"京都市葛野区河原町通二条下る旧町１"});
    EXPECT_EQ(result.strOut, "京都府京都市西京区河原町通二条下る新町１\t6008000\t600\tyes\t6158000\n");
}

TEST_F(QeadrsLatest, IgnoresBlanksAroundTheAddress) {
    EXPECT_EQ(Latest({" 静岡県清水市港町　"}).strOut, "静岡県静岡市清水区港町\t4240001\t424\tyes\t4240943\n");
}

// --- what the library cuts -----------------------------------------------------------------------------------------

// The names of the latest form have 33 bytes: the library cuts the rest after 27.
TEST_F(QeadrsLatest, ShowsTheWholeAddressAlsoWhereTheLibraryCutsIt) {
    for (size_t nRest : {26u, 27u, 28u, 29u, 60u, 97u}) {
        SCOPED_TRACE(nRest);
        std::string const strRest(nRest, 'x');
        EXPECT_EQ(Latest({"--exact", "静岡県清水市港町" + strRest}).strOut,
                  "静岡県静岡市清水区港町" + strRest + "\t4240001\t424\tyes\t4240943\n");
    }
}

TEST_F(QeadrsLatest, ShowsTheWholeAddressAlsoWhereTheLibraryCutsWithinACharacter) {
    std::string const strRest = "xああああああああああああああ";
    EXPECT_EQ(Latest({"--exact", "静岡県静岡市清水区港町" + strRest}).strOut,
              "静岡県静岡市清水区港町" + strRest + "\t4240943\t424\tno\t4240943\n");
}

// 18 and 90 bytes of names, and 97 of the rest.
TEST_F(QeadrsLatest, FindsTheCodeOfALatestFormThatIsLongerThanTheField) {
    std::string const strRest(97, 'x');
    EXPECT_EQ(Latest({"--exact", "静岡県静岡市旧町" + strRest}).strOut,
              "静岡県静岡市" + LONG_TOWN + strRest + "\t4200001\t42001\tyes\t4200002\n");
}

TEST_F(QeadrsLatest, TakesAnExactAddressThatFillsTheFieldAndNoLongerOne) {
    EXPECT_EQ(Latest({"--exact", "静岡県清水市港町" + std::string(97, 'x')}).nStatus, 0);
    CResult const result = Latest({"--exact", "静岡県清水市港町" + std::string(98, 'x')});
    EXPECT_EQ(result.nStatus, 2);
    EXPECT_EQ(result.strOut, "");
    EXPECT_EQ(result.strErr, "qeadrs: \"静岡県清水市港町" + std::string(32, 'x') +
                                 "...\" has 122 bytes; an address field holds 121.\n");
}

// --- not found -----------------------------------------------------------------------------------------------------

TEST_F(QeadrsLatest, ReportsAnAddressWithoutATown) {
    CResult const result = Latest({"静岡県静岡市", "静岡県", "架空"});
    EXPECT_EQ(result.nStatus, 1);
    EXPECT_EQ(result.strOut, "");
    EXPECT_EQ(result.strErr, "qeadrs: 静岡県静岡市: not found; recognised: prefecture 静岡県, city 静岡市\n"
                             "qeadrs: 静岡県: not found; recognised: prefecture 静岡県\n"
                             "qeadrs: 架空: not found\n");
}

TEST_F(QeadrsLatest, NamesNoCityOfSeveralThatFit) {
    CResult const result = Ask("latest", {"中央区"});
    EXPECT_EQ(result.nStatus, 1);
    EXPECT_EQ(result.strOut, "");
    EXPECT_THAT(result.strErr, HasSubstr("中央区: not found; "));
    EXPECT_THAT(result.strErr, HasSubstr(" cities fit: "));
}

TEST_F(QeadrsLatest, AnswersTheOtherAddressesWhenOneIsNotThere) {
    CResult const result = Latest({"架空", "清水市港町"});
    EXPECT_EQ(result.nStatus, 1);
    EXPECT_EQ(result.strOut, "静岡県静岡市清水区港町\t4240001\t424\tyes\t4240943\n");
}

TEST_F(QeadrsLatest, KeepsQuietOnDemand) {
    CResult const result = Latest({"-q", "架空"});
    EXPECT_EQ(result.nStatus, 1);
    EXPECT_EQ(result.strErr, "");
}

TEST_F(QeadrsLatest, RefusesAnEmptyAddress) {
    CResult const result = Latest({""});
    EXPECT_EQ(result.nStatus, 2);
    EXPECT_EQ(result.strErr, "qeadrs: \"\" is no address: it has no characters.\n");
}

TEST_F(QeadrsLatest, ReportsThatThereIsNoDictionary) {
    EXPECT_EQ(Run({"latest", "東京都"}).nStatus, 3);
}

// --- forms ---------------------------------------------------------------------------------------------------------

TEST_F(QeadrsLatest, IsOneJsonObjectPerAddressOnDemand) {
    EXPECT_EQ(Latest({"--exact", "--json", "清水市港町１", "静岡市清水区港町"}).strOut,
              R"({"address":"静岡県静岡市清水区港町１","postal_code":"4240001","old_code":"424","changed":"yes",)"
              R"("latest_code":"4240943"})"
              "\n"
              R"({"address":"静岡市清水区港町","postal_code":"4240943","old_code":"424","changed":"no",)"
              R"("latest_code":"4240943"})"
              "\n");
}

TEST_F(QeadrsLatest, NamesItsColumnsOnDemand) {
    EXPECT_EQ(Latest({"--header", "清水市港町"}).strOut, "address\tpostal_code\told_code\tchanged\tlatest_code\n"
                                                         "静岡県静岡市清水区港町\t4240001\t424\tyes\t4240943\n");
}

TEST_F(QeadrsLatest, IsATableOnATerminal) {
    EXPECT_EQ(
        RunOnTerminal(WithDic("latest", WriteDictionary(RENAMED), {"--exact", "清水市港町", "静岡市清水区港町"}))
            .strOut,
        "address                 postal code  old code  changed  latest code\n"
        "静岡県静岡市清水区港町  4240001      424       yes      4240943\n"
        "静岡市清水区港町        4240943      424       no       4240943\n");
}

TEST_F(QeadrsLatest, GoesOnBehindALineThatIsNoAddress) {
    CResult const result = Latest({"--exact"}, "架空\n \n" + std::string(122, 'x') + "\n清水市港町\n");
    EXPECT_EQ(result.nStatus, 2);
    EXPECT_EQ(result.strOut, "静岡県静岡市清水区港町\t4240001\t424\tyes\t4240943\n");
    EXPECT_EQ(result.strErr, "qeadrs: 架空: not found\nqeadrs: line 3: \"" + std::string(40, 'x') +
                                 "...\" has 122 bytes; an address field holds 121.\n");
}

TEST_F(QeadrsLatest, ExplainsItselfOnOneScreen) {
    CResult const result = Run({"latest", "--help"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_THAT(result.strOut, StartsWith("qeadrs latest - old addresses in their latest form\n"
                                          "Usage: qeadrs latest [OPTION...] [TEXT...]\n"));
    EXPECT_THAT(result.strOut, HasSubstr("still those of the address as it was"));
    EXPECT_THAT(result.strOut, HasSubstr("cuts it after 60 bytes"));
    EXPECT_THAT(result.strOut, EndsWith("\nExit: 0 found, 1 not found, 2 usage, 3 no dictionary, 4 system error.\n"));
    EXPECT_LE(Lines(result.strOut).size(), 24u);
}

TEST_F(QeadrsLatest, RefusesAWrongCall) {
    for (auto const& vArgument :
         std::vector<std::vector<std::string>>{{"latest", "--kana", "x"}, {"latest", "--org", "x", "x"}}) {
        SCOPED_TRACE(testing::PrintToString(vArgument));
        EXPECT_EQ(Run(vArgument).nStatus, 2);
    }
}

} // namespace
