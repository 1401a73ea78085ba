// qeadrs-dic build with earlier editions and its table of successors, and qeadrs-dic report.
#include "builder/DictionaryFile.h"
#include "tests/builder/Tool.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Key;
using testing::Not;
using testing::StartsWith;

namespace {

CTown Town(std::string const& strTown, std::string const& strCode, std::string const& strCity = "千代田区") {
    return {"東京都", strCity, strTown, "", strCode};
}

std::vector<CTown> const TODAY = {Town("以下に掲載がない場合", "1000000"), Town("丸の内", "1000005"),
                                  Town("大手町", "1000004")};
std::vector<CTown> const OLD_2015 = {Town("丸の内", "1000005"), Town("永楽町", "1000005"), Town("道三町", "1000009"),
                                     Town("芝", "1000009", "旧芝区")};
std::vector<CTown> const OLD_2021 = {Town("丸の内", "1000005"), Town("大手町", "1000004"), Town("大手区", "1000009")};

std::string const HEADER = "old_path\told_code\tsuccessor\trule\n";

class ToolPrevious : public Tool {
  protected:
    // Writes a file beside the dictionary's folder.
    std::string Put(std::string const& strName, std::string const& strBytes) const {
        return m_folderOutputs.Write(strName, strBytes);
    }
    std::string Put(std::string const& strName, std::vector<CTown> const& vTown) const {
        return Put(strName, Table(vTown));
    }
    std::string Report() const { return Path("report.tsv"); }

    // What the town of two editions becomes: 一 when the edition with its first code counts as the newer one, else 二.
    std::string SuccessorOfTwice(std::string const& strFirstName, std::string const& strSecondName) const {
        std::string const strFirst = Put(strFirstName, {Town("旧町", "1000001")});
        std::string const strSecond = Put(strSecondName, {Town("旧町", "1000002")});
        CToolRun const run = Build(Table({Town("一", "1000001"), Town("二", "1000002")}),
                                   {"--previous", strFirst, "--previous", strSecond, "--report", Report()});
        EXPECT_EQ(run.nStatus, 0) << run.strErr;
        std::string const strReport = ReadFile(Report());
        EXPECT_THAT(strReport, StartsWith(HEADER + "東京都/千代田区/旧町\t"));
        return strReport.find("/一\t") != std::string::npos ? "一" : "二";
    }

    void ExpectUntouched(CToolRun const& run, int nStatus, std::string const& strOld) const {
        EXPECT_EQ(run.nStatus, nStatus);
        EXPECT_EQ(run.strOut, "");
        EXPECT_EQ(ReadFile(Dictionary()), strOld);
        EXPECT_THAT(m_folder.Content(), ElementsAre(Key("t.dic")));
    }
};

} // namespace

// --- build ---

TEST_F(ToolPrevious, EditionsOfBothEncodingsGiveTheSuccessors) {
    std::string const strOld =
        Put("ken_all-2015-10.zip", Zip({{"KEN_ALL.CSV", EncodeCp932(Table(OLD_2015))}}, 201510));
    std::string const strNew = Put("ken_all-2021-11.csv", OLD_2021);
    CToolRun const run = Build(Table(TODAY), {"--previous", strOld, "--previous", strNew, "--report", Report()});
    ASSERT_EQ(run.nStatus, 0) << run.strErr;
    EXPECT_EQ(run.strErr, "");
    EXPECT_EQ(ReadFile(Report()),
              HEADER + "東京都/千代田区/大手区\t1000009\t東京都/千代田区/大手町\tsame name in the heir of the city\n"
                       "東京都/千代田区/永楽町\t1000005\t東京都/千代田区/丸の内\tsame code\n"
                       "東京都/千代田区/道三町\t1000009\t東京都/千代田区/大手町\t"
                       "same code, then same name in the heir of the city\n"
                       "東京都/旧芝区/芝\t1000009\t東京都/千代田区/大手町\t"
                       "same code, then same name in the heir of the city\n");
    EXPECT_THAT(run.strOut, testing::ContainsRegex("previous_1 +" + strOld + "\\(KEN_ALL.CSV\\), CP932, 2015-10\n"));
    EXPECT_THAT(run.strOut, testing::ContainsRegex("previous_2 +" + strNew + ", UTF-8\n"));
    EXPECT_THAT(run.strOut, testing::ContainsRegex("\nprevious rows +7\n"));
    EXPECT_THAT(run.strOut, testing::ContainsRegex("\nsuperseded towns +4\n"));
    EXPECT_THAT(run.strOut, testing::ContainsRegex("\nsuperseded cities +1\n"));
    EXPECT_THAT(run.strOut, testing::ContainsRegex("\ncities +1\n"));
    EXPECT_THAT(m_folder.Content(), ElementsAre(Key("report.tsv"), Key("t.dic")));
    EXPECT_TRUE(qe::CDictionaryFile(Dictionary()).IsIntact());
}

TEST_F(ToolPrevious, BothEncodingsOfAnEditionGiveTheSameBytes) {
    std::vector<CTown> vTown = OLD_2015;
    vTown.push_back(Town("永楽（１〜３丁目）", "1000005"));
    vTown.push_back(Town("永代（１−２）", "1000004"));
    ASSERT_EQ(Build(Table(TODAY), {"--previous", Put("utf8.csv", vTown)}).nStatus, 0);
    std::string const strBytes = ReadFile(Dictionary());
    ASSERT_EQ(Build(Table(TODAY), {"--previous", Put("cp932.csv", EncodeCp932(Table(vTown)))}).nStatus, 0);
    EXPECT_EQ(ReadFile(Dictionary()), strBytes);
}

TEST_F(ToolPrevious, OldTownsStandInTheDump) {
    ASSERT_EQ(Build(Table(TODAY), {"--previous", Put("old.csv", OLD_2015)}).nStatus, 0);
    EXPECT_EQ(Output({"dump", Dictionary()}), "0 東京都\tケン\n"
                                              "  1 千代田区\tシ\t1000000\t100\n"
                                              "    2 丸の内\t\t1000005\t100\n"
                                              "    2 大手町\t\t1000004\t100\n"
                                              "    2 永楽町\t\t1000005\t100\n"
                                              "    2 道三町\t\t1000009\t100\n"
                                              "    2 -\t\t1000000\t100\n");
    EXPECT_THAT(m_folder.Content(), ElementsAre(Key("t.dic"))); // no report unless it is asked for
}

TEST_F(ToolPrevious, EditionsAreSortedByTheMonthsInTheirNames) {
    EXPECT_EQ(SuccessorOfTwice("ken_all-2015-10.csv", "ken_all-2021-11.csv"), "二");
    EXPECT_EQ(SuccessorOfTwice("ken_all-2021-11.csv", "ken_all-2015-10.csv"), "一");
    EXPECT_EQ(SuccessorOfTwice("ken_all_202111.csv", "ken_all-2021-02.csv"), "一");
    EXPECT_EQ(SuccessorOfTwice("1999-12.csv", "2000-01.csv"), "二");
    EXPECT_EQ(SuccessorOfTwice("2000-01.csv", "1999-12.csv"), "一");
    EXPECT_EQ(SuccessorOfTwice("202111", "201510"), "一");
    EXPECT_EQ(SuccessorOfTwice("2015_202111.csv", "1-201510-31.csv"), "一");
    EXPECT_EQ(SuccessorOfTwice("x2021-1", "2015-10"), "二"); // one digit is no month
}

TEST_F(ToolPrevious, WithoutAMonthInEveryNameEditionsStayInTheirOrder) {
    EXPECT_EQ(SuccessorOfTwice("b.csv", "a.csv"), "二");
    EXPECT_EQ(SuccessorOfTwice("ken_all-2021-11.csv", "old.csv"), "二");
    EXPECT_EQ(SuccessorOfTwice("new.csv", "ken_all-2015-10.csv"), "二");
    EXPECT_EQ(SuccessorOfTwice("ken_all-2021-13.csv", "ken_all-2015-10.csv"), "二"); // no month 13
    EXPECT_EQ(SuccessorOfTwice("ken_all-2021.csv", "ken_all-2015.csv"), "二");
}

TEST_F(ToolPrevious, TheMonthIsThatOfTheFileNotOfItsFolder) {
    EXPECT_EQ(SuccessorOfTwice("2021-11/new.csv", "2015-10/old.csv"), "二");
}

TEST_F(ToolPrevious, TheSameRunsGiveTheSameBytes) {
    std::string const strOld = Put("ken_all-2015-10.csv", OLD_2015);
    std::string const strNew = Put("ken_all-2021-11.csv", OLD_2021);
    ASSERT_EQ(Build(Table(TODAY), {"--previous", strOld, "--previous", strNew}).nStatus, 0);
    std::string const strBytes = ReadFile(Dictionary());
    ASSERT_EQ(Build(Table(TODAY), {"--previous", strNew, "--previous", strOld}).nStatus, 0);
    EXPECT_EQ(ReadFile(Dictionary()), strBytes);
}

TEST_F(ToolPrevious, ATownThatIsLeftOutIsReportedWithoutASuccessorAndRemarked) {
    std::string const strOld = Put("old.csv", {Town("丸の内", "1000005"), Town("永楽町", "1000009")});
    CToolRun const run =
        Build(Table({Town("丸の内", "1000005")}), {"--previous", strOld, "--report", Report(), "--verbose"});
    ASSERT_EQ(run.nStatus, 0) << run.strErr;
    EXPECT_EQ(ReadFile(Report()), HEADER + "東京都/千代田区/永楽町\t1000009\t\tnone\n");
    EXPECT_EQ(run.strErr, strOld + ":2: left out, no address of today takes the place of 東京都/千代田区/永楽町\n");
}

TEST_F(ToolPrevious, TheReportOfNoEarlierEditionIsItsHeader) {
    ASSERT_EQ(Build(Table(TODAY), {"--report", Report()}).nStatus, 0);
    EXPECT_EQ(ReadFile(Report()), HEADER);
}

TEST_F(ToolPrevious, AnOldReportIsReplaced) {
    m_folder.Write("report.tsv", Repeat("old\n", 1000));
    ASSERT_EQ(Build(Table(TODAY), {"--report", Report()}).nStatus, 0);
    EXPECT_EQ(ReadFile(Report()), HEADER);
    EXPECT_THAT(m_folder.Content(), ElementsAre(Key("report.tsv"), Key("t.dic")));
}

TEST_F(ToolPrevious, JsonHoldsTheCountsOfTheSuccessors) {
    std::string const strOld = Put("old.csv", OLD_2015);
    CToolRun const run = Build(Table(TODAY), {"--previous", strOld, "--json"});
    ASSERT_EQ(run.nStatus, 0) << run.strErr;
    nlohmann::json const json = nlohmann::json::parse(run.strOut);
    EXPECT_EQ(json["previous_1"], strOld + ", UTF-8");
    EXPECT_EQ(json["counts"]["superseded_towns"], 2);
    EXPECT_EQ(json["counts"]["superseded_by_same_code"], 1);
    EXPECT_EQ(json["counts"]["superseded_by_default_of_the_heir_of_the_city"], 1);
    EXPECT_EQ(json["counts"]["superseded_towns_left_out"], 1); // 芝 of 旧芝区
    EXPECT_EQ(json["remarks"].size(), 1u);
}

TEST_F(ToolPrevious, ProgressNamesEachEditionInTheOrderOfReading) {
    std::string const strOld = Put("ken_all-2015-10.csv", OLD_2015);
    std::string const strNew = Put("ken_all-2021-11.csv", OLD_2021);
    CToolRun const run = Build(Table(TODAY), {"--previous", strNew, "--previous", strOld, "--progress", "--json"});
    EXPECT_THAT(run.strErr, EndsWith("reading " + strOld + "\nreading " + strNew + "\ncompiling\nwriting " +
                                     Dictionary() + "\n"));
}

// --- build: errors ---

TEST_F(ToolPrevious, AMissingEditionIsNamedAndLeavesTheDictionary) {
    std::string const strOld = PutOldDictionary();
    CToolRun const run = Build(Table(TODAY), {"--previous", Path("none.zip"), "--report", Report()});
    ExpectUntouched(run, 1, strOld);
    EXPECT_EQ(run.strErr, "qeadrs-dic: " + Path("none.zip") + ": No such file or directory\n");
}

TEST_F(ToolPrevious, AnEditionThatIsNoTableIsNamedWithTheLine) {
    std::string const strOld = PutOldDictionary();
    std::string const strEdition = Put("ken_all-2015-10.csv", Line(OLD_2015[0]) + "1,2,3\r\n");
    CToolRun const run = Build(Table(TODAY), {"--previous", strEdition, "--report", Report()});
    ExpectUntouched(run, 1, strOld);
    EXPECT_THAT(run.strErr, StartsWith("qeadrs-dic: " + strEdition + ":2: "));
}

TEST_F(ToolPrevious, AnOrganisationTableIsNoEdition) {
    std::string const strOld = PutOldDictionary();
    std::string const strEdition =
        Put("old.csv", Line(COffice{"役場", "東京都", "千代田区", "丸の内", "", "1008701"}));
    CToolRun const run = Build(Table(TODAY), {"--previous", strEdition});
    ExpectUntouched(run, 1, strOld);
    EXPECT_THAT(run.strErr, StartsWith("qeadrs-dic: " + strEdition + ":1: "));
}

TEST_F(ToolPrevious, AnEmptyEditionIsRefused) {
    std::string const strOld = PutOldDictionary();
    CToolRun const run = Build(Table(TODAY), {"--previous", Put("old.csv", std::string())});
    ExpectUntouched(run, 1, strOld);
    EXPECT_THAT(run.strErr, HasSubstr("old.csv"));
}

TEST_F(ToolPrevious, APrefectureThatIsNoneIsNamedWithTheLine) {
    std::string const strOld = PutOldDictionary();
    CTown town = Town("永楽町", "1000005");
    town.strPref = "江戸府";
    std::string const strEdition = Put("old.csv", {OLD_2015[0], town});
    CToolRun const run = Build(Table(TODAY), {"--previous", strEdition});
    ExpectUntouched(run, 1, strOld);
    EXPECT_EQ(run.strErr, "qeadrs-dic: " + strEdition + ":2: \"江戸府\" is no prefecture.\n");
}

TEST_F(ToolPrevious, AReportThatCannotBeWrittenLeavesTheDictionary) {
    std::string const strOld = PutOldDictionary();
    CToolRun const run = Build(Table(TODAY), {"--report", Path("none/report.tsv")});
    ExpectUntouched(run, 1, strOld);
    EXPECT_THAT(run.strErr, HasSubstr("none/report.tsv"));
}

TEST_F(ToolPrevious, EditionsNeedATownTable) {
    std::string const strOld = Put("old.csv", OLD_2015);
    for (CArguments const& vArgument :
         {CArguments{"build", "--previous", strOld, "-o", Dictionary()},
          CArguments{"build", "--skk", m_folderOutputs.Path(""), "--previous", strOld, "-o", Dictionary()}}) {
        CToolRun const run = Run(vArgument);
        EXPECT_EQ(run.nStatus, 2);
        EXPECT_EQ(run.strOut, "");
        EXPECT_THAT(run.strErr, HasSubstr("--towns"));
    }
    EXPECT_THAT(m_folder.Content(), testing::IsEmpty());
}

TEST_F(ToolPrevious, EachOptionTakesOneFile) {
    std::string const strOld = Put("a.csv", OLD_2015);
    CToolRun const run = Build(Table(TODAY), {"--previous", strOld, strOld});
    EXPECT_EQ(run.nStatus, 2);
    EXPECT_EQ(Build(Table(TODAY), {"--previous"}).nStatus, 2);
}

// --- report ---

namespace {

class ToolReport : public ToolPrevious {
  protected:
    void SetUp() override {
        m_strTowns = Put("towns.csv", TODAY);
        m_strOld = Put("ken_all-2015-10.csv", OLD_2015);
        CToolRun const run =
            Run({"build", "--towns", m_strTowns, "--offices",
                 Put("offices.csv", Line(COffice{"株式会社　甲", "東京都", "千代田区", "丸の内", "１", "1008701"})),
                 "--previous", m_strOld, "-o", Dictionary()});
        ASSERT_EQ(run.nStatus, 0) << run.strErr;
    }

    // "report DICTIONARY --towns TABLE" with tables that differ from those of the build.
    CArguments Different(CArguments const& vMore = {}) const {
        CArguments v{
            "report",
            Dictionary(),
            "--towns",
            Put("other.csv", {TODAY[0], TODAY[1], Town("神田", "1010001")}),
            "--offices",
            Put("others.csv", Table({COffice{"株式会社　甲", "東京都", "千代田区", "丸の内", "１", "1008701"},
                                     COffice{"乙", "東京都", "千代田区", "丸の内", "２", "1008702"}}))};
        v.insert(v.end(), vMore.begin(), vMore.end());
        return v;
    }

    std::string m_strTowns, m_strOld;
};

} // namespace

TEST_F(ToolReport, IsATableOfFigures) {
    EXPECT_EQ(
        Output({"report", Dictionary(), "--towns", m_strTowns}),
        "|   asked |   right |  percent | question |\n"
        "|--:|--:|--:|---|\n"
        "|       2 |       2 |  100.000 | prefecture, city and town of every row, found exactly |\n"
        "|       2 |       2 |  100.000 | the code is one that the table lists for the town; where the town has "
        "several and none of its own, the city's |\n"
        "|       2 |       2 |  100.000 | the same without the prefecture, where the city's name is the only one "
        "|\n"
        "|       2 |       2 |  100.000 | the same followed by a house number, left over |\n"
        "|       0 |       0 |  100.000 | address as the dictionary has it + name without blanks, own code |\n"
        "|       0 |       0 |  100.000 | address as the organisation table spells it, own code |\n"
        "|       1 |       1 |  100.000 | every city as a partial address: exactly the entries below it |\n");
}

TEST_F(ToolReport, TellsTheCausesOfMisses) {
    EXPECT_EQ(
        Output(Different({"--previous", m_strOld})),
        "|   asked |   right |  percent | question |\n"
        "|--:|--:|--:|---|\n"
        "|       2 |       1 |   50.000 | prefecture, city and town of every row, found exactly; 1: other levels "
        "|\n"
        "|       2 |       1 |   50.000 | the code is one that the table lists for the town; where the town has "
        "several and none of its own, the city's; 1: another code |\n"
        "|       2 |       1 |   50.000 | the same without the prefecture, where the city's name is the only one; "
        "1: other levels |\n"
        "|       2 |       1 |   50.000 | the same followed by a house number, left over; 1: other levels |\n"
        "|       2 |       1 |   50.000 | address as the dictionary has it + name without blanks, own code; 1: "
        "not in the dictionary |\n"
        "|       1 |       1 |  100.000 | address as the organisation table spells it, own code |\n"
        "|       3 |       2 |   66.667 | towns of 2015-10 that are gone: renewed to one of today; 1: not renewed "
        "|\n"
        "|       1 |       0 |    0.000 | of these, the towns of cities that are gone; 1: not renewed |\n"
        "|       1 |       1 |  100.000 | every city as a partial address: exactly the entries below it |\n");
}

TEST_F(ToolReport, AsJsonIsOneObjectOnOneLine) {
    EXPECT_EQ(Output(Different({"--previous", m_strOld, "--json"})),
              R"({"town_levels":{"asked":2,"right":1,"misses":{"other levels":1}},)"
              R"("town_code":{"asked":2,"right":1,"misses":{"another code":1}},)"
              R"("town_without_prefecture":{"asked":2,"right":1,"misses":{"other levels":1}},)"
              R"("town_with_house_number":{"asked":2,"right":1,"misses":{"other levels":1}},)"
              R"("office_at_its_address":{"asked":2,"right":1,"misses":{"not in the dictionary":1}},)"
              R"("office_at_spelled_address":{"asked":1,"right":1},)"
              R"("gone_towns_2015-10":{"asked":3,"right":2,"misses":{"not renewed":1}},)"
              R"("gone_cities_towns_2015-10":{"asked":1,"right":0,"misses":{"not renewed":1}},)"
              R"("city_parts":{"asked":1,"right":1}})"
              "\n");
}

TEST_F(ToolReport, ListsTheMissesInAFile) {
    Output(Different({"--previous", m_strOld, "--misses", Path("misses.tsv")}));
    EXPECT_EQ(ReadFile(Path("misses.tsv")),
              "figure\tasked\tcause\tfound\n"
              "town_levels\t東京都千代田区神田\tother levels\t東京都|千代田区||神田 1000000\n"
              "town_code\t東京都千代田区神田\tanother code\t東京都|千代田区||神田 1000000\n"
              "town_without_prefecture\t千代田区神田\tother levels\t|千代田区||神田 1000000\n"
              "town_with_house_number\t東京都千代田区神田１－２－３\tother levels\t"
              "東京都|千代田区||神田１－２－３ 1000000\n"
              "office_at_its_address\t1008702 乙\tnot in the dictionary\t\n"
              "gone_towns_2015-10\t1000009 東京都旧芝区芝\tnot renewed\t東京都||| \n"
              "gone_cities_towns_2015-10\t1000009 東京都旧芝区芝\tnot renewed\t東京都||| \n");
    EXPECT_THAT(m_folder.Content(), ElementsAre(Key("misses.tsv"), Key("t.dic")));
}

TEST_F(ToolReport, TheFileOfNoMissesIsItsHeader) {
    Output({"report", Dictionary(), "--towns", m_strTowns, "--misses", Path("misses.tsv")});
    EXPECT_EQ(ReadFile(Path("misses.tsv")), "figure\tasked\tcause\tfound\n");
}

TEST_F(ToolReport, NamesEditionsByTheirMonthElseByTheirFile) {
    nlohmann::json const json =
        nlohmann::json::parse(Output({"report", Dictionary(), "--towns", m_strTowns, "--previous", m_strOld,
                                      "--previous", Put("old.csv", OLD_2021), "--json"}));
    for (char const* pszKey :
         {"gone_towns_2015-10", "gone_cities_towns_2015-10", "gone_towns_old.csv", "gone_cities_towns_old.csv"})
        EXPECT_TRUE(json.contains(pszKey)) << pszKey;
}

TEST_F(ToolReport, KeepsTwoEditionsOfOneNameApart) {
    nlohmann::json const json = nlohmann::json::parse(Output(
        {"report", Dictionary(), "--towns", m_strTowns, "--previous", m_strOld, "--previous", m_strOld, "--json"}));
    EXPECT_EQ(json["gone_towns_2015-10"], json["gone_towns_2015-10 (2)"]);
    EXPECT_EQ(json["gone_towns_2015-10"]["asked"], 3);
}

TEST_F(ToolReport, LeavesTheDictionaryAlone) {
    std::string const strBytes = ReadFile(Dictionary());
    Output(Different());
    EXPECT_EQ(ReadFile(Dictionary()), strBytes);
    EXPECT_THAT(m_folder.Content(), ElementsAre(Key("t.dic")));
}

TEST_F(ToolReport, TheSampleIsRightInAllFiguresOfItsTowns) {
    std::string const strTowns = QEADRS_SAMPLE "/utf_ken_all.csv";
    std::string const strOffices = QEADRS_SAMPLE "/JIGYOSYO.CSV";
    Output({"build", "--towns", strTowns, "--offices", strOffices, "-o", Dictionary()});
    std::string const strMisses = Path("misses.tsv");
    nlohmann::json const json = nlohmann::json::parse(Output(
        {"report", Dictionary(), "--towns", strTowns, "--offices", strOffices, "--json", "--misses", strMisses}));
    size_t const nAsked = 394 - 101 - 3 - 7; // rows but those not listed, of wholes, and of cities' own numbers
    for (char const* pszKey : {"town_levels", "town_code", "town_with_house_number"}) {
        EXPECT_EQ(json[pszKey]["asked"], nAsked) << pszKey;
        EXPECT_EQ(json[pszKey]["right"], nAsked) << pszKey;
    }
    EXPECT_GT(json["town_without_prefecture"]["asked"], nAsked * 9 / 10);
    EXPECT_EQ(json["town_without_prefecture"]["right"], json["town_without_prefecture"]["asked"]);
    EXPECT_EQ(json["city_parts"], nlohmann::json({{"asked", 106}, {"right", 106}})) << ReadFile(strMisses);
    nlohmann::json const causes = {{"the name is cut in the dictionary", 2}, {"the organisation has no town", 1}};
    EXPECT_EQ(json["office_at_its_address"], nlohmann::json({{"asked", 50}, {"right", 47}, {"misses", causes}}));
}

TEST_F(ToolReport, TheSamplesGoneTownsAreAllRenewed) {
    std::string const strTowns = QEADRS_SAMPLE "/utf_ken_all.csv";
    std::string const strPrevious = QEADRS_SAMPLE "/previous-2018-01.csv";
    Output({"build", "--towns", strTowns, "--previous", strPrevious, "--report", Report(), "-o", Dictionary()});
    EXPECT_EQ(ReadFile(Report()), HEADER +
                                      "静岡県/浜松市中区/\t4300000\t静岡県/浜松市中央区/\tsame code\n"
                                      "静岡県/浜松市中区/板屋町\t4300928\t静岡県/浜松市中央区/板屋町\tsame code\n"
                                      "静岡県/浜松市中区/砂山町\t4300926\t静岡県/浜松市中央区/砂山町\tsame code\n"
                                      "兵庫県/篠山市/\t6692300\t兵庫県/丹波篠山市/\tsame code\n"
                                      "兵庫県/篠山市/北新町\t6692332\t兵庫県/丹波篠山市/北新町\tsame code\n");
    nlohmann::json const json = nlohmann::json::parse(
        Output({"report", Dictionary(), "--towns", strTowns, "--previous", strPrevious, "--json"}));
    for (char const* pszKey : {"gone_towns_2018-01", "gone_cities_towns_2018-01"})
        EXPECT_EQ(json[pszKey], nlohmann::json({{"asked", 3}, {"right", 3}})) << pszKey;
    EXPECT_EQ(json["city_parts"], nlohmann::json({{"asked", 106}, {"right", 106}}));
}

// --- report: errors ---

TEST_F(ToolReport, ADictionaryThatIsNoneIsRefused) {
    CToolRun run = Run({"report", Path("none.dic"), "--towns", m_strTowns});
    EXPECT_EQ(run.nStatus, 1);
    EXPECT_EQ(run.strOut, "");
    EXPECT_EQ(run.strErr, "qeadrs-dic: " + Path("none.dic") + ": No such file or directory\n");
    run = Run({"report", m_strTowns, "--towns", m_strTowns});
    EXPECT_EQ(run.nStatus, 1);
    EXPECT_EQ(run.strErr, "qeadrs-dic: " + m_strTowns + ": is not a dictionary of ours.\n");
}

TEST_F(ToolReport, AMissingTableIsNamed) {
    CArguments const vGood{"report", Dictionary(), "--towns", m_strTowns};
    for (char const* pszOption : {"--towns", "--offices", "--previous"}) {
        CArguments vArgument = vGood;
        if (std::string(pszOption) == "--towns") vArgument.resize(2);
        vArgument.insert(vArgument.end(), {pszOption, Path("none.csv")});
        CToolRun const run = Run(vArgument);
        EXPECT_EQ(run.nStatus, 1) << pszOption;
        EXPECT_EQ(run.strOut, "") << pszOption;
        EXPECT_EQ(run.strErr, "qeadrs-dic: " + Path("none.csv") + ": No such file or directory\n") << pszOption;
    }
}

TEST_F(ToolReport, AnEditionThatIsNoTableIsNamedWithTheLine) {
    std::string const strEdition = Put("old.csv", Line(OLD_2015[0]) + "1,2,3\r\n");
    CToolRun const run = Run({"report", Dictionary(), "--towns", m_strTowns, "--previous", strEdition});
    EXPECT_EQ(run.nStatus, 1);
    EXPECT_EQ(run.strOut, "");
    EXPECT_THAT(run.strErr, StartsWith("qeadrs-dic: " + strEdition + ":2: "));
}

TEST_F(ToolReport, WithoutATownTableOrADictionaryItIsAWrongCall) {
    for (CArguments const& vArgument :
         {CArguments{"report"}, CArguments{"report", Dictionary()}, CArguments{"report", "--towns", m_strTowns}}) {
        CToolRun const run = Run(vArgument);
        EXPECT_EQ(run.nStatus, 2);
        EXPECT_EQ(run.strOut, "");
        EXPECT_THAT(run.strErr, Not(testing::IsEmpty()));
    }
}

TEST_F(ToolReport, MissesThatCannotBeWrittenAreAFailure) {
    CToolRun const run = Run({"report", Dictionary(), "--towns", m_strTowns, "--misses", Path("none/misses.tsv")});
    EXPECT_EQ(run.nStatus, 1);
    EXPECT_THAT(run.strErr, HasSubstr("none/misses.tsv"));
}

TEST_F(ToolReport, FiguresThatCannotBeWrittenAreAFailure) {
    CToolRun const run = Run({"report", Dictionary(), "--towns", m_strTowns}, FillStandardOutput);
    EXPECT_EQ(run.nStatus, 1);
    EXPECT_EQ(run.strErr, "qeadrs-dic: the output cannot be written.\n");
}
