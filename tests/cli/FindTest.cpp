// `qeadrs find`: which addresses a partial text stands for, and how many of them.
#include "tests/cli/CliTest.h"

using testing::EndsWith;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;
using namespace std::string_literals;

namespace {

class QeadrsFind : public CliTest {
  protected:
    CResult Find(std::vector<std::string> vArgument, std::string const& strInput = "") {
        return Ask("find", std::move(vArgument), strInput);
    }

    // A dictionary of this many towns in one city.
    std::string WriteTowns(int nCount) const {
        std::vector<CEntryText> vEntry;
        for (int i = 0; i < nCount; ++i)
            vEntry.push_back({std::to_string(1000000 + i), {{0, "東京都"}, {1, "港区"}, {2, std::to_string(i)}}});
        return WriteDictionary(vEntry);
    }
};

char const TOSHIMA[] = "1000301\t10003\t東京都\t利島村\t\t\t\t\t\n";
char const CHIYODA[] = "1000001\t100\t東京都\t千代田区\t千代田\t\t\t\t\n"
                       "1008111\t100\t東京都\t千代田区\t千代田\t１−１\t\t\t宮内庁\n";

// --- answers -------------------------------------------------------------------------------------------------------

TEST_F(QeadrsFind, PrintsATownAndAllBelowIt) {
    CResult const result = Find({"東京都千代田区千代田"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strOut, CHIYODA);
    EXPECT_EQ(result.strErr, "qeadrs: 東京都千代田区千代田: 2 addresses\n");
}

TEST_F(QeadrsFind, PrintsTheRestOfTheTextInTheAreaOfItsTown) {
    EXPECT_EQ(Find({"東京都千代田区千代田９番"}).strOut,
              "1000001\t100\t東京都\t千代田区\t千代田\t９番\t\t\t\n"
              "1008111\t100\t東京都\t千代田区\t千代田\t１−１\t\t\t宮内庁\n");
}

TEST_F(QeadrsFind, CountsASingleAddress) {
    CResult const result = Find({"利島村"});
    EXPECT_EQ(result.strOut, TOSHIMA);
    EXPECT_EQ(result.strErr, "qeadrs: 利島村: 1 address\n");
}

TEST_F(QeadrsFind, PrintsTheCitiesOfOneNameInAllPrefectures) {
    std::vector<CEntryText> const vEntry = {
        {"1830000", {{0, "東京都"}, {1, "府中市"}, {2, "宮町"}}},
        {"7260000", {{0, "広島県"}, {1, "府中市"}, {2, "元町"}}},
        {"7360000", {{0, "広島県"}, {1, "呉市"}, {2, "中央"}}},
    };
    EXPECT_EQ(Run(WithDic("find", WriteDictionary(vEntry), {"府中"})).strOut,
              "1830000\t183\t東京都\t府中市\t宮町\t\t\t\t\n7260000\t726\t広島県\t府中市\t元町\t\t\t\t\n");
}

TEST_F(QeadrsFind, PrintsAllBelowThePrefecturesThatTheTextBegins) {
    std::vector<CEntryText> const vEntry = {
        {"7300000", {{0, "広島県"}, {1, "広島市"}, {2, "中央"}}},
        {"7360000", {{0, "広島県"}, {1, "呉市"}, {2, "中央"}}},
    };
    CResult const result = Run(WithDic("find", WriteDictionary(vEntry), {"広島"}));
    EXPECT_EQ(result.strOut, "7300000\t730\t広島県\t広島市\t中央\t\t\t\t\n7360000\t736\t広島県\t呉市\t中央\t\t\t\t\n"
                             "7300000\t730\t広島県\t広島市\t中央\t\t\t\t\n");
    EXPECT_EQ(result.strErr, "qeadrs: 広島: 3 addresses\n");
}

TEST_F(QeadrsFind, PrintsBuildingsAndFloors) {
    EXPECT_THAT(Find({"宮城県仙台市青葉区中央"}).strOut,
                StartsWith("9800021\t980\t宮城県\t仙台市青葉区\t中央\t\t\t\t\n"
                           "9806190\t980\t宮城県\t仙台市青葉区\t中央\t\tアエル\t\t\n"
                           "9806101\t980\t宮城県\t仙台市青葉区\t中央\t\tアエル\t１階\t\n"));
}

TEST_F(QeadrsFind, AddsTheReadingsOfEveryLevelOnDemand) {
    EXPECT_EQ(
        Find({"--kana", "--limit", "2", "宮城県仙台市青葉区中央１"}).strOut,
        "9800021\t980\t宮城県\t仙台市青葉区\t中央\t１\t\t\t\tミヤギケン\tセンダイシアオバク\tチュウオウ\t\t\t\n"
        "9806190\t980\t宮城県\t仙台市青葉区\t中央\t１\tアエル\t\t\tミヤギケン\tセンダイシアオバク\tチュウオウ\t\t"
        "アエル\t\n");
}

TEST_F(QeadrsFind, LeavesSupersededAddressesOutExceptTheOneThatIsNamed) {
    std::string const strDic = WriteDictionary({{"1000000", {{0, "東京都"}, {1, "港区"}, {2, "旧町"}}, 1},
                                                {"1000001", {{0, "東京都"}, {1, "港区"}, {2, "新町"}}}});
    EXPECT_EQ(Run(WithDic("find", strDic, {"港区"})).strOut, "1000001\t100\t東京都\t港区\t新町\t\t\t\t\n");
    EXPECT_EQ(Run(WithDic("find", strDic, {"東京都港区旧町"})).strOut, "1000000\t100\t東京都\t港区\t旧町\t\t\t\t\n");
}

TEST_F(QeadrsFind, PrintsATownWithoutACode) {
    std::string const strDic = WriteDictionary({{"1000000", {{0, "東京都"}, {1, "港区"}, {2, "芝"}, {3, "１丁目"}}}});
    EXPECT_EQ(Run(WithDic("find", strDic, {"東京都港区芝"})).strOut,
              "\t\t東京都\t港区\t芝\t\t\t\t\n1000000\t100\t東京都\t港区\t芝\t１丁目\t\t\t\n");
}

TEST_F(QeadrsFind, LeavesAnEmptyOldCodeEmpty) {
    std::string const strDic = WriteDictionary({{"1000000", {{0, "東京都"}, {1, "港区"}, {2, "芝"}}, -1, ""},
                                                {"1000001", {{0, "東京都"}, {1, "港区"}, {2, "東"}}}});
    EXPECT_EQ(Run(WithDic("find", strDic, {"港区"})).strOut,
              "1000000\t\t東京都\t港区\t芝\t\t\t\t\n1000001\t100\t東京都\t港区\t東\t\t\t\t\n");
}

// The library's record of a walk is not reset between neighbours: it holds アエル here.
TEST_F(QeadrsFind, PrintsNoBuildingOfANeighbour) {
    std::string const strOffice =
        "9808790\t980\t宮城県\t仙台市青葉区\t中央\t１丁目３−１　アエル３Ｆ\t\t\t株式会社　見本書房　仙台支店\n";
    EXPECT_THAT(Find({"宮城県仙台市青葉区中央"}).strOut, EndsWith("\n" + strOffice));
    EXPECT_EQ(Zip({"9808790"}).strOut, strOffice);
}

TEST_F(QeadrsFind, PrintsNoReadingOfANeighboursBuilding) {
    EXPECT_THAT(Find({"--kana", "宮城県仙台市青葉区中央"}).strOut,
                EndsWith("\n" + Zip({"--kana", "9808790"}).strOut));
}

TEST_F(QeadrsFind, TakesATextOfAnyLength) {
    std::string const strRest(100000, 'x');
    EXPECT_THAT(Find({"東京都千代田区千代田" + strRest}).strOut,
                StartsWith("1000001\t100\t東京都\t千代田区\t千代田\t" + strRest + "\t\t\t\n"));
}

TEST_F(QeadrsFind, IgnoresBlanksAroundTheText) {
    EXPECT_EQ(Find({"　利島村 "}).strOut, TOSHIMA);
}

// --- how many ------------------------------------------------------------------------------------------------------

TEST_F(QeadrsFind, PrintsTheFirstOnesOnlyOnDemandButTellsHowManyThereAre) {
    CResult const result = Run(WithDic("find", WriteTowns(1234), {"--limit", "2", "港区"}));
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strOut, "1000000\t100\t東京都\t港区\t0\t\t\t\t\n1000001\t100\t東京都\t港区\t1\t\t\t\t\n");
    EXPECT_EQ(result.strErr, "qeadrs: 港区: 1,234 addresses, the first 2 shown\n");
}

TEST_F(QeadrsFind, GroupsTheNumberOfThoseShown) {
    EXPECT_EQ(Run(WithDic("find", WriteTowns(1234), {"--limit", "1000", "港区"})).strErr,
              "qeadrs: 港区: 1,234 addresses, the first 1,000 shown\n");
}

TEST_F(QeadrsFind, PrintsAllWhenTheLimitIsNotReached) {
    for (char const* pszLimit : {"2", "010", "4294967296", "99999999999999999999"}) {
        CResult const result = Find({"--limit", pszLimit, "東京都千代田区千代田"});
        EXPECT_EQ(result.strOut, CHIYODA) << pszLimit;
        EXPECT_EQ(result.strErr, "qeadrs: 東京都千代田区千代田: 2 addresses\n") << pszLimit;
    }
}

TEST_F(QeadrsFind, LimitsEveryTextByItself) {
    EXPECT_EQ(Find({"--limit", "1", "東京都千代田区千代田", "利島村"}).strOut,
              std::string("1000001\t100\t東京都\t千代田区\t千代田\t\t\t\t\n") + TOSHIMA);
}

TEST_F(QeadrsFind, JustCountsWithALimitOfNone) {
    CResult const result = Find({"--limit", "0", "東京都千代田区千代田"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strOut, "");
    EXPECT_EQ(result.strErr, "qeadrs: 東京都千代田区千代田: 2 addresses, none shown\n");
}

TEST_F(QeadrsFind, PrintsMoreAddressesThanTheBlocksOwnCounterHolds) {
    CResult const result = Run(WithDic("find", WriteTowns(65537), {"港区"}));
    EXPECT_THAT(Lines(result.strOut), SizeIs(65537));
    EXPECT_EQ(result.strErr, "qeadrs: 港区: 65,537 addresses\n");
}

TEST_F(QeadrsFind, RefusesALimitThatIsNoNumber) {
    for (char const* pszLimit : {"-1", "+1", "x", "", "1x", "0x1", "1.5", " 1"}) {
        CResult const result = Find({"--limit", pszLimit, "利島村"});
        EXPECT_EQ(result.nStatus, 2) << pszLimit;
        EXPECT_EQ(result.strOut, "") << pszLimit;
        EXPECT_THAT(result.strErr, HasSubstr("\" is no number of addresses.\n")) << pszLimit;
    }
}

TEST_F(QeadrsFind, KeepsQuietOnDemand) {
    CResult const result = Find({"-q", "利島村", "架空"});
    EXPECT_EQ(result.nStatus, 1);
    EXPECT_EQ(result.strOut, TOSHIMA);
    EXPECT_EQ(result.strErr, "");
}

// --- not found -----------------------------------------------------------------------------------------------------

TEST_F(QeadrsFind, ReportsATextThatFitsNothing) {
    CResult const result = Find({"架空"});
    EXPECT_EQ(result.nStatus, 1);
    EXPECT_EQ(result.strOut, "");
    EXPECT_EQ(result.strErr, "qeadrs: 架空: not found\n");
}

TEST_F(QeadrsFind, NamesOnlyTheBeginningOfALongTextThatFitsNothing) {
    EXPECT_EQ(Find({std::string(1000, 'x')}).strErr, "qeadrs: " + std::string(40, 'x') + "...: not found\n");
}

TEST_F(QeadrsFind, RefusesAnEmptyText) {
    for (char const* pszText : {"", "　"}) {
        CResult const result = Find({pszText});
        EXPECT_EQ(result.nStatus, 2);
        EXPECT_EQ(result.strOut, "");
        EXPECT_THAT(result.strErr, EndsWith("\" is no address: it has no characters.\n"));
    }
}

TEST_F(QeadrsFind, ReportsThatThereIsNoDictionary) {
    EXPECT_EQ(Run({"find", "東京都"}).nStatus, 3);
}

// --- forms ---------------------------------------------------------------------------------------------------------

TEST_F(QeadrsFind, IsOneJsonObjectPerAddressOnDemand) {
    CResult const result = Find({"--json", "--limit", "1", "東京都千代田区千代田９"});
    EXPECT_EQ(result.strOut,
              R"({"postal_code":"1000001","old_code":"100","prefecture":"東京都","city":"千代田区","town":"千代田",)"
              R"("area":"９","building":null,"floor":null,"organisation":null})"
              "\n");
    EXPECT_EQ(result.strErr, "qeadrs: 東京都千代田区千代田９: 2 addresses, the first 1 shown\n");
}

TEST_F(QeadrsFind, NamesTheColumnsOfZipOnDemand) {
    EXPECT_EQ(Find({"--header", "--kana", "-q", "架空"}).strOut, Zip({"--header", "--kana", "-q", "9999999"}).strOut);
    EXPECT_EQ(Find({"--header", "利島村"}).strOut, Zip({"--header", "1000301"}).strOut);
}

TEST_F(QeadrsFind, IsATableOnATerminal) {
    EXPECT_EQ(AskOnTerminal("find", {"東京都千代田区千代田"}).strOut,
              "postal code  old code  prefecture  city      town    area   organisation\n"
              "1000001      100       東京都      千代田区  千代田\n"
              "1008111      100       東京都      千代田区  千代田  １−１  宮内庁\n");
}

TEST_F(QeadrsFind, GoesOnBehindALineThatIsNoText) {
    CResult const result = Find({}, "架空\n\n東京都\0x\n"s + "利島村\n");
    EXPECT_EQ(result.nStatus, 2);
    EXPECT_EQ(result.strOut, TOSHIMA);
    EXPECT_EQ(result.strErr, "qeadrs: 架空: not found\n"
                             "qeadrs: line 3: \"東京都 x\" is no address: it has a NUL in it.\n"
                             "qeadrs: 利島村: 1 address\n");
}

TEST_F(QeadrsFind, ExplainsItselfOnOneScreen) {
    CResult const result = Run({"find", "--help"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_THAT(result.strOut, StartsWith("qeadrs find - addresses that partial texts can stand for\n"
                                          "Usage: qeadrs find [OPTION...] [TEXT...]\n"));
    EXPECT_THAT(result.strOut, EndsWith("\nExit: 0 found, 1 not found, 2 usage, 3 no dictionary, 4 system error.\n"));
    EXPECT_LE(Lines(result.strOut).size(), 24u);
}

TEST_F(QeadrsFind, IsListedWithTheOtherCommandsOnOneScreen) {
    std::string const strOut = Run({"--help"}).strOut;
    for (char const* pszCommand : {"\n  zip ", "\n  addr ", "\n  latest ", "\n  find "})
        EXPECT_THAT(strOut, HasSubstr(pszCommand));
    EXPECT_LE(Lines(strOut).size(), 24u);
}

} // namespace
