// qeadrs-dic report --text: the table, its object, its misses, and the exit status.
#include "tests/builder/Tool.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

class ToolReportText : public Tool {
  protected:
    // The report for a table that may be another one than that of the dictionary.
    CToolRun Report(std::vector<CTown> const& vBuilt, std::vector<CTown> const& vAsked,
                    CArguments const& vMore = {}) const {
        EXPECT_EQ(Build(Table(vBuilt)).nStatus, 0);
        CArguments vArgument = {"report", "--text", Dictionary(), "--towns",
                                m_folderOutputs.Write("asked.csv", Table(vAsked))};
        vArgument.insert(vArgument.end(), vMore.begin(), vMore.end());
        return Run(vArgument);
    }
};

std::vector<CTown> const TOWNS = {{"東京都", "千代田区", "丸の内", "", "1000005"},
                                  {"東京都", "千代田区", "大手町", "", "1000004"}};

} // namespace

TEST_F(ToolReportText, IsATableWithWhatMustBeReached) {
    CToolRun const run = Report(TOWNS, TOWNS);
    EXPECT_EQ(run.nStatus, 0) << run.strOut;
    EXPECT_EQ(run.strErr, "");
    EXPECT_THAT(
        run.strOut,
        StartsWith("|   asked |   right |  percent | must reach | sure and wrong | question |\n"
                   "|--:|--:|--:|--:|--:|---|\n"
                   "|       2 |       2 |  100.000 |      99.95 |              0 | official rows with a house "
                   "number |\n"));
    EXPECT_THAT(run.strOut, HasSubstr("\n|       1 |       1 |  100.000 |      99.00 |              0 | ノ and の "
                                      "swapped |\n"));
    EXPECT_THAT(run.strOut, EndsWith("\nmissed: none\nseed: 20260529\n"));
    EXPECT_THAT(run.strOut, Not(HasSubstr("organisations"))); // no table of them
}

TEST_F(ToolReportText, HasALineOfOrganisationsWhereThereIsATableOfThem) {
    std::vector<COffice> const vOffice = {{"甲", "東京都", "千代田区", "丸の内", "１", "1008111"}};
    std::string const strOffices = m_folderOutputs.Write("offices.csv", Table(vOffice));
    CToolRun const run = Report(TOWNS, TOWNS, {"--offices", strOffices});
    EXPECT_EQ(run.nStatus, 0) << run.strOut;
    EXPECT_THAT(run.strOut,
                HasSubstr("\n|       1 |       1 |  100.000 |      98.00 |              0 | organisations' own "
                          "addresses: the town, and its code among the candidates |\n"));
}

TEST_F(ToolReportText, FailsAndNamesWhatIsNotReached) {
    CToolRun const run = Report({TOWNS[0]}, TOWNS);
    EXPECT_EQ(run.nStatus, 1);
    EXPECT_EQ(run.strErr, "");
    EXPECT_THAT(run.strOut,
                HasSubstr("\n|       2 |       1 |   50.000 |      99.95 |              0 | official rows "
                          "with a house number; 1: no town found |\n"));
    EXPECT_THAT(run.strOut, HasSubstr("\nmissed: text_rows text_no_prefecture "));
}

TEST_F(ToolReportText, JsonHoldsTheSameFigures) {
    CToolRun const run = Report({TOWNS[0]}, TOWNS, {"--json"});
    EXPECT_EQ(run.nStatus, 1);
    nlohmann::json const json = nlohmann::json::parse(run.strOut);
    EXPECT_EQ(json["seed"], 20260529);
    EXPECT_EQ(json["reached"], false);
    EXPECT_EQ(json["text_rows"], nlohmann::json({{"asked", 2},
                                                 {"right", 1},
                                                 {"must_reach", 99.95},
                                                 {"sure_and_wrong", 0},
                                                 {"several", 0},
                                                 {"misses", {{"no town found", 1}}}}));
    EXPECT_EQ(json["text_sure"]["right"], json["text_sure"]["asked"]);
    EXPECT_EQ(nlohmann::json::parse(Report(TOWNS, TOWNS, {"--json"}).strOut)["reached"], true);
}

TEST_F(ToolReportText, ListsTheMissesInAFile) {
    std::string const strMisses = m_folderOutputs.Path("misses.tsv");
    Report({TOWNS[0]}, TOWNS, {"--misses", strMisses});
    EXPECT_THAT(ReadFile(strMisses),
                StartsWith("figure\tasked\tcause\tfound\ntext_rows\t東京都千代田区大手町１－２－３"
                           "\tno town found\t東京都|千代田区||"));
    Report(TOWNS, TOWNS, {"--misses", strMisses});
    EXPECT_EQ(ReadFile(strMisses), "figure\tasked\tcause\tfound\n");
}

TEST_F(ToolReportText, TheSampleReachesAllFiguresOfItsTowns) {
    std::string const strTowns = QEADRS_SAMPLE "/utf_ken_all.csv";
    Output({"build", "--towns", strTowns, "-o", Dictionary()});
    CToolRun const run = Run({"report", "--text", Dictionary(), "--towns", strTowns});
    EXPECT_EQ(run.nStatus, 0) << run.strOut;
    EXPECT_THAT(run.strOut, HasSubstr("|     394 |     394 |  100.000 |"));
}

TEST_F(ToolReportText, KnowsNoEarlierEditions) {
    CToolRun const run = Report(TOWNS, TOWNS, {"--previous", Path("none.csv")});
    EXPECT_EQ(run.nStatus, 2);
    EXPECT_THAT(run.strErr, HasSubstr("--previous"));
    EXPECT_THAT(run.strOut, IsEmpty());
}
