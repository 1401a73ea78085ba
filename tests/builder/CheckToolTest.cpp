// qeadrs-dic check: what it prints, and its exit status.
#include "tests/builder/CheckRecipe.h"
#include "tests/builder/Tool.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <sstream>

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class ToolCheck : public Tool {
  protected:
    CToolRun Check(CImageBytes const& vByte, CArguments const& vMore = {}) const {
        CArguments vArgument{"check", m_folder.Write("t.dic", std::string(vByte.begin(), vByte.end()))};
        vArgument.insert(vArgument.end(), vMore.begin(), vMore.end());
        return Run(vArgument);
    }
    static CImageBytes Orphan() {
        return CRecipe("set node[東京都 千代田区 丸の内].nParent = none").Apply(SmallWorld());
    }
};

} // namespace

TEST_F(ToolCheck, SaysThatADictionaryIsSound) {
    CToolRun const run = Check(SmallWorld());
    EXPECT_EQ(run.nStatus, 0);
    EXPECT_EQ(run.strOut, "sound: all 25 rules hold\n");
    EXPECT_EQ(run.strErr, "");
}

TEST_F(ToolCheck, TellsEachViolationAndACountForEachRule) {
    CToolRun const run = Check(Orphan());
    EXPECT_EQ(run.nStatus, 1);
    EXPECT_EQ(run.strErr, "");
    EXPECT_EQ(run.strOut,
              "children: node 7 (丸の内) is a child of node 3 but names no node as its parent\n"
              "parent: node 7 (丸の内) has no parent\n"
              "1 against parent: each node but a prefecture stands behind its parent\n"
              "1 against children: each node but a prefecture and an alias is the child of one node, its parent\n");
}

TEST_F(ToolCheck, TellsTheSameAsOneJsonObject) {
    CToolRun const run = Check(Orphan(), {"--json"});
    EXPECT_EQ(run.nStatus, 1);
    EXPECT_EQ(run.strErr, "");
    EXPECT_EQ(
        run.strOut,
        R"({"sound":false,"violations":[{"rule":"children","where":"node 7","path":"丸の内","what":)"
        R"("is a child of node 3 but names no node as its parent"},{"rule":"parent","where":"node 7","path":)"
        R"("丸の内","what":"has no parent"}],"counts":{"file":0,"format":0,"tables":0,"checksum":0,)"
        R"("identification":0,"unused":0,"level":0,"runs":0,"parent":1,"children":1,"alias":0,)"
        R"("entry-of-node":0,"gone-city":0,"name":0,"reading":0,"shared":0,"pref-name":0,"town-order":0,"code":0,)"
        R"("code-order":0,"node-of-entry":0,"successor":0,"city-index":0,"organisation-index":0,"text-index":0},)"
        R"("remarks":[]})"
        "\n");
}

// A name may hold what a terminal takes for a command.
TEST_F(ToolCheck, ShowsNoControlCharactersOfNames) {
    CToolRun const run = Check(CRecipe("set text[node[東京都 千代田区 丸の内].nName] = \"\x1B\n\xC2\x9B丸x\"; set "
                                       "node[東京都 千代田区 丸の内].nInfo = 0")
                                   .Apply(SmallWorld()));
    EXPECT_THAT(run.strOut, testing::StartsWith("entry-of-node: node 7 (東京都 千代田区 ???丸x"));
}

// Readers do without it: nothing is damaged.
TEST_F(ToolCheck, RemarksThatTheTextIndexIsForOtherReaders) {
    std::string const strRemark =
        "The text index was made for other readers: those of this version build their own at the first reading.";
    CImageBytes const vByte = CRecipe("append the index; set word[size + 4] = 1").Apply(SmallWorld());
    CToolRun const run = Check(vByte);
    EXPECT_EQ(run.nStatus, 0);
    EXPECT_EQ(run.strOut, strRemark + "\nsound: all 25 rules hold\n");
    EXPECT_EQ(run.strErr, "");
    auto const json = nlohmann::ordered_json::parse(Check(vByte, {"--json"}).strOut);
    EXPECT_EQ(json["sound"], true);
    EXPECT_EQ(json["remarks"], nlohmann::ordered_json::array({strRemark}));
}

TEST_F(ToolCheck, GivesTheCountsOfASoundDictionaryAsJson) {
    CToolRun const run = Check(SmallWorld(), {"--json"});
    EXPECT_EQ(run.nStatus, 0);
    auto const json = nlohmann::ordered_json::parse(run.strOut);
    EXPECT_EQ(json["sound"], true);
    EXPECT_THAT(json["violations"], IsEmpty());
    ASSERT_THAT(json["counts"], SizeIs(qe::CHECK_RULE_COUNT));
    size_t n = 0;
    for (auto const& [strRule, count] : json["counts"].items()) {
        EXPECT_EQ(strRule, qe::CHECK_RULES[n++].pszName);
        EXPECT_EQ(count, 0);
    }
}

TEST_F(ToolCheck, ShowsNamesThatAreNotUtf8WithoutBreakingItsJson) {
    CImageBytes const vByte =
        CRecipe("set byte[header[13] + node[東京都 千代田区 丸の内].nName] = 0xFF").Apply(SmallWorld());
    CToolRun const run = Check(vByte, {"--json"});
    EXPECT_EQ(run.nStatus, 1);
    auto const json = nlohmann::ordered_json::parse(run.strOut);
    EXPECT_EQ(json["counts"]["name"], 1);
}

TEST_F(ToolCheck, TellsSoManyViolationsOfARuleAndCountsTheRest) {
    CImageBytes const vByte = Hostile(std::vector<tagADDRNODE>(150, {8, {}, 0, ADDR_NONE, ADDR_NONE, 0, ADDR_NONE}),
                                      std::string("x\0\0", 3));
    auto const Told = [&](CArguments const& vMore) {
        CToolRun const run = Check(vByte, vMore);
        EXPECT_EQ(run.nStatus, 1);
        EXPECT_EQ(run.strErr, "");
        EXPECT_THAT(run.strOut, HasSubstr("\n150 against level: "));
        size_t nTold = 0;
        std::istringstream in(run.strOut);
        for (std::string strLine; std::getline(in, strLine);) nTold += strLine.find("level: ") == 0;
        return nTold;
    };
    EXPECT_EQ(Told({}), 100u);
    EXPECT_EQ(Told({"--limit", "3"}), 3u);
    EXPECT_EQ(Told({"--limit", "0"}), 150u);
    EXPECT_EQ(Check(vByte, {"--limit", "-1"}).nStatus, 2);
    auto const json = nlohmann::ordered_json::parse(Check(vByte, {"--json", "--limit", "1"}).strOut);
    EXPECT_EQ(json["counts"]["level"], 150);
    EXPECT_EQ(json["counts"]["parent"], 150);
    EXPECT_THAT(
        json["violations"],
        testing::Contains(testing::ResultOf([](auto const& v) { return v["rule"] == "level"; }, true)).Times(1));
}

TEST_F(ToolCheck, RefusesWhatIsNoDictionary) {
    for (std::string const& strBytes : {std::string(), std::string("x"), std::string(5000, 'x'),
                                        Line(CTown{"東京都", "千代田区", "丸の内", "マルノウチ", "1000005"})}) {
        CToolRun const run = Check(CImageBytes(strBytes.begin(), strBytes.end()));
        EXPECT_EQ(run.nStatus, 1);
        EXPECT_EQ(run.strOut,
                  "file: file is no dictionary of ours\n1 against file: the file begins with the mark of a "
                  "dictionary, and is as long as its header says\n");
        EXPECT_EQ(run.strErr, "");
    }
}

TEST_F(ToolCheck, SaysWhichFileItCannotRead) {
    CToolRun const missing = Run({"check", Path("none")});
    EXPECT_EQ(missing.nStatus, 1);
    EXPECT_EQ(missing.strOut, "");
    EXPECT_EQ(missing.strErr, "qeadrs-dic: " + Path("none") + ": No such file or directory\n");
    CToolRun const folder = Run({"check", m_folderOutputs.Path("")});
    EXPECT_EQ(folder.nStatus, 1);
    EXPECT_EQ(folder.strOut, "");
    EXPECT_EQ(folder.strErr, "qeadrs-dic: " + m_folderOutputs.Path("") + ": is not a file.\n");
}

TEST_F(ToolCheck, SaysThatItsOutputCannotBeWritten) {
    m_folder.Write("t.dic", std::string(SmallWorld().begin(), SmallWorld().end()));
    CToolRun const run = Run({"check", Dictionary()}, FillStandardOutput);
    EXPECT_EQ(run.nStatus, 1);
    EXPECT_EQ(run.strErr, "qeadrs-dic: the output cannot be written.\n");
}

TEST_F(ToolCheck, WantsAFile) {
    EXPECT_EQ(Run({"check"}).nStatus, 2);
}
