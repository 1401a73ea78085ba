// qeadrs-dic build --skk: the second source, from small hand-made folders in its own encoding.
#include "tests/builder/Tool.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>

using testing::EndsWith;
using testing::HasSubstr;

namespace {

std::string const HEAD = ";; -*- coding: euc-jis-2004; -*-\n"
                         ";; Time-stamp: <04 May 2022>\n"
                         ";; okuri-nasi entries.\n";

class ToolSkk : public Tool {
  protected:
    // Builds from these lines and returns the dictionary's text, "|" for each tab, and the counts in m_counts.
    std::string Tree(std::string const& strTowns, std::string const& strOffices = "") {
        CToolRun const run = Compile(strTowns, strOffices);
        EXPECT_EQ(run.nStatus, 0) << run.strErr;
        m_counts = nlohmann::json::parse(run.strOut)["counts"];
        std::string str = Output({"dump", Dictionary()});
        std::replace(str.begin(), str.end(), '\t', '|');
        return str;
    }
    CToolRun Compile(std::string const& strTowns, std::string const& strOffices = "") const {
        m_folderOutputs.Write("skk/SKK-JISYO.zipcode", Encode(HEAD + strTowns, "EUC-JISX0213"));
        if (!strOffices.empty())
            m_folderOutputs.Write("skk/SKK-JISYO.office.zipcode", Encode(HEAD + strOffices, "EUC-JISX0213"));
        return Run({"build", "--skk", Folder(), "-o", Dictionary(), "--json"});
    }
    // The message that the build must fail with; the old dictionary must stay.
    void ExpectRefused(std::string const& strMessage) const {
        std::string const strOld = PutOldDictionary();
        CToolRun const run = Run({"build", "--skk", Folder(), "-o", Dictionary()});
        EXPECT_EQ(run.nStatus, 1);
        EXPECT_EQ(run.strErr, "qeadrs-dic: " + strMessage + "\n");
        EXPECT_EQ(run.strOut, "");
        EXPECT_THAT(m_folder.Content(), testing::ElementsAre(testing::Pair("t.dic", strOld)));
    }
    std::string Folder() const { return m_folderOutputs.Path("skk"); }
    std::string TownFile() const { return Folder() + "/SKK-JISYO.zipcode"; }
    std::string OfficeFile() const { return Folder() + "/SKK-JISYO.office.zipcode"; }

    nlohmann::json m_counts;
};

std::string const CHIYODA = "1000000 /東京都千代田区/\n"
                            "1000001 /東京都千代田区千代田/\n";
std::string const CHIYODA_TREE = "0 東京都\n"
                                 "  1 千代田区||1000000|\n"
                                 "    2 千代田||1000001|\n";
std::string const NAMELESS = "    2 -||1000000|\n";

} // namespace

TEST_F(ToolSkk, ACodeThatEndsIn00NamesACity) {
    EXPECT_EQ(Tree(CHIYODA), CHIYODA_TREE + NAMELESS);
}

TEST_F(ToolSkk, TheCityMayFollowItsTowns) {
    EXPECT_EQ(Tree("1000001 /東京都千代田区千代田/\n1000000 /東京都千代田区/\n"), CHIYODA_TREE + NAMELESS);
}

TEST_F(ToolSkk, TheLongestCityThatBeginsTheAddressIsItsCity) {
    EXPECT_EQ(Tree("0600000 /北海道札幌市/\n0600100 /北海道札幌市北区/\n0600001 /北海道札幌市北区麻生/\n0600002 "
                   "/北海道札幌市南/\n"),
              "0 北海道\n"
              "  1 札幌市||0600000|\n"
              "    2 南||0600002|\n"
              "    2 -||0600000|\n"
              "  1 札幌市北区||0600100|\n"
              "    2 麻生||0600001|\n"
              "    2 -||0600100|\n");
}

TEST_F(ToolSkk, ACityIsKnownOnlyInItsPrefecture) {
    EXPECT_EQ(Tree("0520000 /北海道伊達市/\n9600600 /福島県伊達市/\n9600601 /福島県伊達市保原/\n"),
              "0 北海道\n"
              "  1 伊達市||0520000|\n"
              "    2 -||0520000|\n"
              "0 福島県\n"
              "  1 伊達市||9600600|\n"
              "    2 保原||9600601|\n"
              "    2 -||9600600|\n");
}

// 利島村 has one code, which does not end in 00.
TEST_F(ToolSkk, AVillageWithOneCodeOnlyIsACity) {
    EXPECT_EQ(Tree(CHIYODA + "1000301 /東京都利島村/\n"), CHIYODA_TREE + NAMELESS +
                                                              "  1 利島村||1000301|\n"
                                                              "    2 -||1000301|\n");
}

TEST_F(ToolSkk, AnAddressWithoutAKnownCityIsLeftOutAndCounted) {
    EXPECT_EQ(Tree(CHIYODA + "0100001 /秋田県見本郡東/\n0100002 /大和国/\n"), CHIYODA_TREE + NAMELESS);
    EXPECT_EQ(m_counts["entries_left_out"], 2);
}

TEST_F(ToolSkk, SeveralAddressesOfACodeAreSeveralEntries) {
    EXPECT_EQ(Tree(CHIYODA + "1000002 /東京都千代田区丸の内/東京都千代田区大手町/\n"),
              CHIYODA_TREE +
                  "    2 丸の内||1000002|\n"
                  "    2 大手町||1000002|\n" +
                  NAMELESS);
}

TEST_F(ToolSkk, AFloorIsCutOffItsBuilding) {
    EXPECT_EQ(Tree(CHIYODA + "1006001 /東京都千代田区千代田ビル１階/\n1006012 /東京都千代田区千代田ビル１２階/\n"),
              CHIYODA_TREE +
                  "      4 ビル\n"
                  "        6 １階||1006001|\n"
                  "        6 １２階||1006012|\n" +
                  NAMELESS);
}

TEST_F(ToolSkk, ABasementIsAFloor) {
    EXPECT_EQ(Tree(CHIYODA + "1006000 /東京都千代田区千代田ビル地階/\n"), CHIYODA_TREE +
                                                                              "      4 ビル\n"
                                                                              "        6 地階||1006000|\n" +
                                                                              NAMELESS);
}

TEST_F(ToolSkk, ABuildingsOwnEntryBelongsToTheBuilding) {
    std::string const strTree = CHIYODA_TREE +
                                "      4 ビル||1006090|\n"
                                "        6 １階||1006001|\n" +
                                NAMELESS;
    EXPECT_EQ(Tree(CHIYODA + "1006001 /東京都千代田区千代田ビル１階/\n1006090 /東京都千代田区千代田ビル/\n"),
              strTree);
    EXPECT_EQ(Tree(CHIYODA + "1006090 /東京都千代田区千代田ビル/\n1006001 /東京都千代田区千代田ビル１階/\n"),
              strTree);
}

TEST_F(ToolSkk, ABuildingOfThatNameInAnotherCityIsATown) {
    EXPECT_EQ(Tree(CHIYODA +
                   "1006001 /東京都千代田区千代田ビル１階/\n1050000 /東京都港区/\n1050001 /東京都港区千代田ビル/\n"),
              CHIYODA_TREE +
                  "      4 ビル\n"
                  "        6 １階||1006001|\n" +
                  NAMELESS +
                  "  1 港区||1050000|\n"
                  "    2 千代田ビル||1050001|\n"
                  "    2 -||1050000|\n");
}

// What is left of "千代田タワー（高層棟）（１階）".
TEST_F(ToolSkk, StrayParenthesesBeforeAFloorAreDropped) {
    EXPECT_EQ(Tree(CHIYODA + "1006201 /東京都千代田区千代田タワー高層棟）（１階/\n"
                             "1006202 /東京都千代田区千代田タワー高層棟）（２階/\n"
                             "1006290 /東京都千代田区千代田タワー高層棟/\n"),
              CHIYODA_TREE +
                  "      4 タワー高層棟||1006290|\n"
                  "        6 １階||1006201|\n"
                  "        6 ２階||1006202|\n" +
                  NAMELESS);
}

TEST_F(ToolSkk, NumbersBehindTheCitysNameAreTheCitysOwn) {
    EXPECT_EQ(Tree("3060400 /茨城県猿島郡境町/\n3060433 /茨城県猿島郡境町境町の次に番地がくる場合/\n"),
              "0 茨城県\n"
              "  1 猿島郡境町||3060400|\n"
              "    2 -||3060400|\n"
              "    2 -||3060433|\n");
}

TEST_F(ToolSkk, ATextBehindTheNumbersIsANoteToThem) {
    EXPECT_EQ(Tree("7660000 /香川県仲多度郡琴平町/\n"
                   "7660002 /香川県仲多度郡琴平町琴平町の次に１〜４２６番地がくる場合/"
                   "香川県仲多度郡琴平町琴平町の次に１〜４２６番地がくる場合川東/\n"),
              "0 香川県\n"
              "  1 仲多度郡琴平町||7660000|\n"
              "    2 -||7660000|\n"
              "      3 １〜４２６番地||7660002|\n"
              "      3 １〜４２６番地（川東）||7660002|\n");
}

TEST_F(ToolSkk, ThereAreNoReadingsAndNoOldCodes) {
    Tree(CHIYODA);
    EXPECT_EQ(m_counts["old_codes_no_prefix_of_their_code"], 0);
    EXPECT_EQ(m_counts["entries_out_of_reach_of_their_old_code"], 0);
}

TEST_F(ToolSkk, TheEditionIsTheFilesTimeStamp) {
    Tree(CHIYODA);
    nlohmann::json const json = nlohmann::json::parse(Output({"info", "--json", Dictionary()}));
    EXPECT_EQ(json["edition"], "2022-05-04");
    EXPECT_THAT(json["source"].get<std::string>(), HasSubstr("SKK"));
}

TEST_F(ToolSkk, CharactersBeyondJis1990AreRead) {
    EXPECT_THAT(Tree(CHIYODA + "1000099 /東京都千代田区𠮟か゚町/\n"), HasSubstr("    2 𠮟か゚町||1000099|\n"));
}

TEST_F(ToolSkk, CommentsAndEmptyLinesAreSkipped) {
    EXPECT_EQ(Tree("; a comment\n\n" + CHIYODA + ";;\n"), CHIYODA_TREE + NAMELESS);
}

TEST_F(ToolSkk, TheSameFolderGivesTheSameBytes) {
    Tree(CHIYODA, "1008111 /宮内庁 @ 東京都千代田区千代田１−１/\n");
    std::string const strFirst = ReadFile(Dictionary());
    Output({"build", "--skk", Folder() + "/", "-o", Dictionary()});
    EXPECT_EQ(ReadFile(Dictionary()), strFirst);
}

// --- organisations ---

TEST_F(ToolSkk, AnOfficeStandsBelowItsTownAndTheRestOfItsAddress) {
    EXPECT_EQ(Tree(CHIYODA, "1008111 /宮内庁 @ 東京都千代田区千代田１−１/\n"), CHIYODA_TREE +
                                                                                   "      3 １−１\n"
                                                                                   "        7 宮内庁||1008111|\n" +
                                                                                   NAMELESS);
}

TEST_F(ToolSkk, AnOfficesTownIsTheLongestThatBeginsItsAddress) {
    EXPECT_THAT(Tree(CHIYODA + "1000002 /東京都千代田区千代田東/\n", "1008111 /宮内庁 @ 東京都千代田区千代田東１/\n"),
                HasSubstr("    2 千代田東||1000002|\n"
                          "      3 １\n"
                          "        7 宮内庁||1008111|\n"));
}

TEST_F(ToolSkk, AnOfficesTownMayBeSpelledInAnotherWay) {
    EXPECT_THAT(Tree(CHIYODA + "1000013 /東京都千代田区霞が関/\n", "1008919 /外務省 @ 東京都千代田区霞ケ関２丁目/\n"),
                HasSubstr("    2 霞が関||1000013|\n"
                          "      3 ２丁目\n"
                          "        7 外務省||1008919|\n"));
}

TEST_F(ToolSkk, AnOfficeWithoutATownStandsBelowTheNamelessOne) {
    EXPECT_EQ(Tree(CHIYODA, "1008111 /役場 @ 東京都千代田区３９１−１/\n"), CHIYODA_TREE + NAMELESS +
                                                                               "      3 ３９１−１\n"
                                                                               "        7 役場||1008111|\n");
}

TEST_F(ToolSkk, SeveralOfficesOfACodeAreSeveralEntries) {
    EXPECT_EQ(Tree(CHIYODA, "1008111 /甲 @ 東京都千代田区千代田/乙 @ 東京都千代田区千代田/\n"),
              CHIYODA_TREE +
                  "      7 甲||1008111|\n"
                  "      7 乙||1008111|\n" +
                  NAMELESS);
}

TEST_F(ToolSkk, AnOfficeOfAnUnknownCityIsLeftOutAndCounted) {
    EXPECT_EQ(Tree(CHIYODA, "0908111 /役場 @ 北海道見本郡見本町１/\n1008112 /宮内庁/\n"), CHIYODA_TREE + NAMELESS);
    EXPECT_EQ(m_counts["entries_left_out"], 2);
}

TEST_F(ToolSkk, TheOfficesFileMayBeMissing) {
    EXPECT_EQ(Compile(CHIYODA).nStatus, 0);
    EXPECT_FALSE(std::filesystem::exists(OfficeFile()));
}

// --- broken folders ---

TEST_F(ToolSkk, AMissingFolderIsNamed) {
    ExpectRefused(TownFile() + ": No such file or directory");
}

TEST_F(ToolSkk, ALineThatIsNoEntryIsNamed) {
    for (char const* pszLine :
         {"千代田 /東京都千代田区/", "10000a0 /東京都千代田区/", "100000 /東京都千代田区/", "1000000/東京都千代田区/",
          "1000000 /東京都千代田区", "1000000 東京都千代田区", "x"}) {
        m_folderOutputs.Write("skk/SKK-JISYO.zipcode", Encode(HEAD + CHIYODA + pszLine + "\n", "EUC-JISX0213"));
        ExpectRefused(TownFile() + ":6: expected \"1234567 /address/\"; is this a postal dictionary?");
    }
}

TEST_F(ToolSkk, ALineOfTheOfficesFileThatIsNoEntryIsNamed) {
    m_folderOutputs.Write("skk/SKK-JISYO.zipcode", Encode(HEAD + CHIYODA, "EUC-JISX0213"));
    m_folderOutputs.Write("skk/SKK-JISYO.office.zipcode", "x\n");
    ExpectRefused(OfficeFile() + ":1: expected \"1234567 /address/\"; is this a postal dictionary?");
}

TEST_F(ToolSkk, AFileCutOffInALineIsNamedWithIt) {
    m_folderOutputs.Write("skk/SKK-JISYO.zipcode", Encode(HEAD + "1000000 /東京都千代田区/", "EUC-JISX0213"));
    ExpectRefused(TownFile() + ":4: the file is cut off within this line; get it again.");
}

TEST_F(ToolSkk, AFileInAnotherEncodingIsNamedWithItsLine) {
    m_folderOutputs.Write("skk/SKK-JISYO.zipcode", "; a\n\xFF\xFF\n");
    ExpectRefused(TownFile() + ":2: this line is not EUC-JIS-2004.");
}

TEST_F(ToolSkk, AnEmptyFileIsNamed) {
    m_folderOutputs.Write("skk/SKK-JISYO.zipcode", "");
    ExpectRefused(TownFile() + ": is empty.");
}

TEST_F(ToolSkk, AFileWithoutEntriesIsRefused) {
    m_folderOutputs.Write("skk/SKK-JISYO.zipcode", HEAD);
    ExpectRefused("The town table has no rows: there is nothing to compile.");
}
