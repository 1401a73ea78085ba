// qeadrs-update, the script of the monthly update, against a server on 127.0.0.1: what is in its folder after each run.
// The programs that it starts stand in a folder of their own, where each can be made to fail or to wait.
#include "dic/ImageHeader.h"
#include "tests/builder/Support.h"
#include "tests/cli/Process.h"
#include "tests/fetch/LoopbackServer.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <csignal>

namespace fs = std::filesystem;
using testing::AllOf;
using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Key;
using testing::Not;
using testing::StartsWith;

namespace {

using CNames = std::vector<std::string>;

// What the script starts besides itself and the tests that the shell has in it.
CNames const PROGRAMS = {"qeadrs-dic", "cat", "cmp", "cp",  "flock",     "id",   "ln",  "mkdir",
                         "mktemp",     "mv",  "rm",  "sed", "sha256sum", "stat", "sync"};

// One of them: notes that it was called, fails when it is the call that is to fail, waits when it is to wait. Before
// the call QE_AT something else is done, which may end it or the script ($PPID).
char const szStandIn[] = R"sh(#!/bin/sh
name=${0##*/}
echo "$name $*" >>"$QE_LOG"
if [ -n "${QE_FAIL_AT:-}" ] && [ "$(/usr/bin/wc -l <"$QE_LOG")" = "$QE_FAIL_AT" ] ||
    [ "$name $1" = "${QE_FAIL:-}" ]; then
    echo "$name was made to fail" >&2
    exit 1
fi
if [ -n "${QE_AT:-}" ] && [ "$(/usr/bin/wc -l <"$QE_LOG")" = "$QE_AT" ]; then eval "$QE_DO"; fi
if [ "$name $1" = "${QE_WAIT:-}" ]; then
    : >"$QE_LOG.waits"
    while [ -e "$QE_LOG.waits" ]; do /usr/bin/sleep 0.02; done
fi
)sh";

// Edition n of the table: towns of 千代田区 with codes of their own, 町0 and so on.
std::string Towns(unsigned nMonth, size_t nFirst, size_t nCount) {
    std::vector<CTown> vTown;
    for (size_t n = nFirst; n < nFirst + nCount; ++n)
        vTown.push_back({"東京都", "千代田区", "町" + std::to_string(n), "マチ", std::to_string(1000001 + n)});
    return Zip({{"utf_ken_all.csv", Table(vTown)}}, nMonth);
}

struct CUpdateRun {
    int nStatus;
    std::string strOut, strErr;
    CNames vCall; // programs that it started, with their arguments

    // Numbers of the calls that begin so, from 1.
    std::vector<size_t> CallsOf(std::string const& strBegin) const {
        std::vector<size_t> vCallNo;
        for (size_t n = 0; n < vCall.size(); ++n)
            if (vCall[n].compare(0, strBegin.size(), strBegin) == 0) vCallNo.push_back(n + 1);
        return vCallNo;
    }
};

CEnvironment At(size_t nCall, std::string const& strDo) {
    return {{"QE_AT", std::to_string(nCall)}, {"QE_DO", strDo}};
}

class Update : public testing::Test {
  protected:
    void SetUp() override {
        fs::permissions(m_folder.Path(""), fs::perms(0755));
        for (std::string const& strName : PROGRAMS) {
            std::string const strReal = strName == "qeadrs-dic"             ? QEADRS_DIC_PROGRAM
                                        : fs::exists("/usr/bin/" + strName) ? "/usr/bin/" + strName
                                                                            : "/bin/" + strName;
            m_folder.Write("bin/" + strName, szStandIn + ("exec '" + strReal + "' \"$@\"\n"));
            fs::permissions(m_folder.Path("bin/" + strName), fs::perms(0755));
        }
        // A copy, which any user can read.
        fs::copy_file(QEADRS_UPDATE_SCRIPT, m_folder.Path("qeadrs-update"));
        m_server.On("/utf/zip/utf_ken_all.zip", [this](CRequest const&) { return Reply(m_strTowns); });
        m_server.On("/office/zip/jigyosyo.zip", [this](CRequest const&) { return Reply(m_strOffices); });
        m_strTowns = Towns(202605, 0, 20);
        m_strOffices =
            Zip({{"JIGYOSYO.CSV", EncodeCp932(Line(COffice{"会社", "東京都", "千代田区", "町1", "１", "1008111"}))}},
                202605);
    }

    static CReply Reply(std::string const& strBody) {
        CReply reply;
        reply.strBody = strBody;
        return reply;
    }

    std::string Path(std::string const& strName) const { return m_folder.Path("d \"ü'/" + strName); }
    std::string Dictionary() const { return ReadFile(Path("qeadrs.dic")); }
    // Every name of the folder and below it, with its bytes.
    std::map<std::string, std::string> Content() const {
        std::map<std::string, std::string> content;
        for (auto const& entry : fs::recursive_directory_iterator(Path("")))
            content[fs::relative(entry.path(), Path(""))] = entry.is_regular_file() ? ReadFile(entry.path()) : "/";
        return content;
    }

    CEnvironment Environment(CEnvironment more = {}) const {
        more.insert({{"PATH", m_folder.Path("bin") + ":/usr/bin:/bin"},
                     {"QE_LOG", m_folder.Path("log")},
                     {"QEADRS_BASE", m_server.Base()},
                     {"no_proxy", "*"}});
        return more;
    }

    pid_t StartRun(CNames vArgument, CEnvironment const& more = {}, std::string const& strAs = "") const {
        for (char const* psz : {"log", "out", "err"}) fs::remove(m_folder.Path(strAs + psz));
        CHandle const hOut(open(m_folder.Path(strAs + "out").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644));
        CHandle const hErr(open(m_folder.Path(strAs + "err").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644));
        return Start(vArgument, Environment(more), m_folder.Path(""), -1, hOut, hErr);
    }
    CUpdateRun End(pid_t nProcess, std::string const& strAs = "") const {
        CUpdateRun run{
            Wait(nProcess), ReadFile(m_folder.Path(strAs + "out")), ReadFile(m_folder.Path(strAs + "err")), {}};
        std::string const strLog = fs::exists(m_folder.Path("log")) ? ReadFile(m_folder.Path("log")) : "";
        for (size_t nPos = 0; nPos < strLog.size(); nPos = strLog.find('\n', nPos) + 1)
            run.vCall.push_back(strLog.substr(nPos, strLog.find('\n', nPos) - nPos));
        return run;
    }
    CNames Command(CNames const& vMore) const {
        CNames vArgument{"/bin/sh", m_folder.Path("qeadrs-update"), "-d", Path("")};
        vArgument[3].pop_back(); // the slash
        vArgument.insert(vArgument.end(), vMore.begin(), vMore.end());
        return vArgument;
    }
    CUpdateRun Run(CNames const& vMore = {}, CEnvironment const& more = {}) const {
        return End(StartRun(Command(vMore), more));
    }

    void ExpectRun(CNames const& vMore = {}) const {
        CUpdateRun const run = Run(vMore);
        EXPECT_EQ(run.nStatus, 0) << run.strErr;
        EXPECT_EQ(run.strErr, "");
    }
    // It fails with one line of its own at the end, and everything but the downloads is as it was.
    void ExpectFailure(std::string const& strWhy, CNames const& vMore = {}, CEnvironment const& more = {}) const {
        std::map<std::string, std::string> before = Content();
        CUpdateRun const run = Run(vMore, more);
        EXPECT_EQ(run.nStatus, 1);
        EXPECT_EQ(run.strOut, "");
        std::string const strLast = run.strErr.substr(run.strErr.rfind('\n', run.strErr.size() - 2) + 1);
        EXPECT_THAT(strLast, AllOf(StartsWith("qeadrs-update: "), HasSubstr(strWhy), EndsWith("\n"))) << run.strErr;
        std::map<std::string, std::string> after = Content();
        for (auto* const p : {&before, &after})
            for (char const* psz : {"fetched/utf_ken_all.zip", "fetched/jigyosyo.zip"}) p->erase(psz);
        EXPECT_TRUE(before == after);
    }

    // Puts everything back as it was.
    void Restore(std::map<std::string, std::string> const& content) const {
        fs::remove_all(Path(""));
        for (auto const& [strName, strBytes] : content)
            if (strBytes != "/") m_folder.Write("d \"ü'/" + strName, strBytes);
    }

    // What `qeadrs latest` makes of an address.
    std::string Latest(std::string const& strAddress) const {
        CPipe pipe;
        CHandle const hNull(open("/dev/null", O_RDWR));
        pid_t const nProcess = Start({QEADRS_PROGRAM, "latest", "--dic", Path("qeadrs.dic"), strAddress}, {},
                                     m_folder.Path(""), hNull, pipe.hWrite, hNull);
        pipe.hWrite = CHandle();
        std::string const strOut = ReadAll(pipe.hRead);
        EXPECT_EQ(Wait(nProcess), 0);
        return strOut;
    }

    void WaitUntilItWaits() const {
        while (!fs::exists(m_folder.Path("log.waits"))) usleep(10000);
    }

    CTestFolder m_folder;
    CLoopbackServer m_server;
    std::string m_strTowns, m_strOffices;
};

TEST_F(Update, FirstRunMakesTheFolderTheDictionaryAndTheFirstTableOfTheHistory) {
    CUpdateRun const run = Run();
    EXPECT_EQ(run.nStatus, 0);
    EXPECT_EQ(run.strErr, "");
    EXPECT_EQ(run.strOut, "qeadrs-update: " + Path("qeadrs.dic") + ": edition 2026-05, 21 entries\n");
    CNames vName;
    for (auto const& [strName, strBytes] : Content()) vName.push_back(strName);
    EXPECT_EQ(vName, (CNames{"fetched", "fetched/jigyosyo.zip", "fetched/utf_ken_all.zip", "history",
                             "history/ken_all-2026-05.zip", "qeadrs.dic", "qeadrs.dic.sources"}));
    EXPECT_TRUE(ReadFile(Path("history/ken_all-2026-05.zip")) == m_strTowns);
    EXPECT_EQ(fs::status(Path("qeadrs.dic")).permissions(), fs::perms(0644)) << "for every program";
}

TEST_F(Update, TheSameTablesAgainAreNoBuildAndNoChange) {
    ExpectRun();
    auto const before = Content();
    CUpdateRun const run = Run();
    EXPECT_EQ(run.nStatus, 0);
    EXPECT_THAT(run.strOut, EndsWith(": edition 2026-05; nothing has changed\n"));
    EXPECT_THAT(run.vCall, Not(Contains(StartsWith("qeadrs-dic build"))));
    EXPECT_TRUE(Content() == before);
    EXPECT_EQ(Run({"-q"}).strOut, "");
}

TEST_F(Update, TheNextEditionRenewsAddressesOfTheOneBeforeWhichIsKept) {
    ExpectRun();
    std::string const strBefore = Dictionary(), strTowns = m_strTowns;
    // 町0 is gone: its code is 新町's now.
    std::vector<CTown> vTown{{"東京都", "千代田区", "新町", "シンマチ", "1000001"}};
    for (size_t n = 1; n < 20; ++n)
        vTown.push_back({"東京都", "千代田区", "町" + std::to_string(n), "マチ", std::to_string(1000001 + n)});
    m_strTowns = Zip({{"utf_ken_all.csv", Table(vTown)}}, 202606);
    CUpdateRun const run = Run();
    EXPECT_EQ(run.nStatus, 0) << run.strErr;
    EXPECT_THAT(run.strOut, EndsWith(": edition 2026-06, 22 entries; before: 2026-05, 21 entries\n"));
    EXPECT_TRUE(ReadFile(Path("qeadrs.dic.previous")) == strBefore);
    EXPECT_TRUE(ReadFile(Path("history/ken_all-2026-05.zip")) == strTowns);
    EXPECT_TRUE(ReadFile(Path("history/ken_all-2026-06.zip")) == m_strTowns);
    EXPECT_THAT(Latest("東京都千代田区町0 １−２"), StartsWith("東京都千代田区新町１−２\t"));
    EXPECT_THAT(Latest("東京都千代田区町1"), StartsWith("東京都千代田区町1\t"));
    // Two months on it still does, although the table of last month has no such town any more.
    vTown.push_back({"東京都", "千代田区", "町20", "マチ", "1000021"});
    m_strTowns = Zip({{"utf_ken_all.csv", Table(vTown)}}, 202607);
    ExpectRun();
    EXPECT_THAT(Latest("東京都千代田区町0 １−２"), StartsWith("東京都千代田区新町１−２\t"));
}

TEST_F(Update, OfTwoTablesOfOneMonthTheHistoryKeepsTheLast) {
    ExpectRun();
    m_strTowns = Towns(202605, 1, 20);
    ExpectRun();
    EXPECT_TRUE(ReadFile(Path("history/ken_all-2026-05.zip")) == m_strTowns);
    EXPECT_THAT(Run().strOut, EndsWith("nothing has changed\n"));
}

TEST_F(Update, AnEarlierTablePutIntoTheHistoryByHandIsCompiledIn) {
    ExpectRun();
    m_folder.Write(
        "d \"ü'/history/ken_all-2015-10.zip",
        Zip({{"KEN_ALL.CSV", EncodeCp932(Line(CTown{"東京都", "千代田区", "昔町", "ﾏﾁ", "1000003"}))}}, 201510));
    ExpectRun();
    EXPECT_THAT(Latest("東京都千代田区昔町"), StartsWith("東京都千代田区町2\t"));
}

TEST_F(Update, OfManyEditionsTheFirstOfEachYearAndTheLastAreCompiled) {
    for (unsigned nMonth : {201510u, 202503u, 202504u, 202512u, 202601u, 202602u, 202603u}) {
        std::string const strMonth = std::to_string(nMonth);
        m_folder.Write("d \"ü'/history/ken_all-" + strMonth.substr(0, 4) + "-" + strMonth.substr(4) + ".zip",
                       Towns(nMonth, 0, 19));
    }
    CUpdateRun const run = Run();
    EXPECT_EQ(run.nStatus, 0) << run.strErr;
    CNames vPrevious;
    for (std::string const& strCall : run.vCall) {
        if (strCall.compare(0, 16, "qeadrs-dic build") != 0) continue;
        for (size_t nPos = 0; (nPos = strCall.find("/ken_all-", nPos)) != std::string::npos; ++nPos)
            vPrevious.push_back(strCall.substr(nPos + 9, 7));
    }
    EXPECT_EQ(vPrevious, (CNames{"2015-10", "2025-03", "2026-01", "2026-03"}));
    EXPECT_THAT(Run().strOut, EndsWith("nothing has changed\n"));
}

TEST_F(Update, ADamagedDownloadLeavesEverythingAsItIs) {
    ExpectRun();
    m_strTowns = Towns(202606, 0, 21);
    m_strTowns[m_strTowns.size() / 2] ^= 1;
    ExpectFailure("/fetched: nothing fetched, see above; run again later");
    EXPECT_TRUE(ReadFile(Path("fetched/utf_ken_all.zip")) == Towns(202605, 0, 20));
}

TEST_F(Update, TablesThatCannotBeCompiledLeaveTheDictionaryAndAreTriedAgain) {
    ExpectRun();
    m_strTowns = Zip({{"utf_ken_all.csv", "13101,\"no row\"\r\n"}}, 202606);
    ExpectFailure("the tables in fetched or history cannot be compiled, see above");
    ExpectFailure("the tables in fetched or history cannot be compiled, see above", {"--no-fetch"});
    m_strTowns = Towns(202606, 0, 21);
    ExpectRun();
    EXPECT_TRUE(fs::exists(Path("history/ken_all-2026-06.zip")));
}

TEST_F(Update, AnEditionWithLessThan95PercentOfTheEntriesIsRefusedUnlessAccepted) {
    m_strTowns = Towns(202605, 0, 39); // 40 entries with the organisation
    ExpectRun();
    // Without the history, whose towns would be in the dictionary as superseded ones.
    fs::remove(Path("history/ken_all-2026-05.zip"));
    m_strTowns = Towns(202606, 0, 36);
    ExpectFailure("has 40 entries, 2026-06 only 37; if that is right, run with --accept");
    m_strTowns = Towns(202606, 0, 37);
    ExpectRun();
    fs::remove(Path("history/ken_all-2026-06.zip"));
    m_strTowns = Towns(202607, 0, 10);
    ExpectFailure("has 38 entries, 2026-07 only 11");
    ExpectRun({"--accept"});
}

TEST_F(Update, AnOlderEditionIsRefusedUnlessAccepted) {
    ExpectRun();
    m_strOffices = Zip(
        {{"JIGYOSYO.CSV", EncodeCp932(Line(COffice{"会社", "東京都", "千代田区", "町1", "１", "1008111"}))}}, 202604);
    m_strTowns = Towns(202604, 0, 20);
    ExpectFailure("is newer (2026-05) than the tables (2026-04); if these are wanted, run with --accept");
    ExpectRun({"--accept"});
}

TEST_F(Update, BackExchangesBothEditionsAndOnlyOtherTablesTakeTheirPlace) {
    ExpectRun();
    ExpectFailure("is not there; there is no edition before", {"--back"});
    std::string const strOlder = Dictionary();
    m_strTowns = Towns(202606, 0, 21);
    ExpectRun();
    std::string const strNewer = Dictionary();
    CUpdateRun const run = Run({"--back"});
    EXPECT_EQ(run.nStatus, 0) << run.strErr;
    EXPECT_THAT(run.strOut, HasSubstr(": edition 2026-05 again;"));
    EXPECT_TRUE(Dictionary() == strOlder);
    EXPECT_TRUE(ReadFile(Path("qeadrs.dic.previous")) == strNewer);
    EXPECT_THAT(Run().strOut, EndsWith(": edition 2026-05; nothing has changed\n"));
    ExpectRun({"--back"});
    EXPECT_TRUE(Dictionary() == strNewer);
    ExpectRun({"--back"});
    m_strTowns = Towns(202607, 0, 22);
    ExpectRun();
    EXPECT_TRUE(ReadFile(Path("qeadrs.dic.previous")) == strOlder);
    WriteFile(Path("qeadrs.dic.previous"), strOlder.substr(0, strOlder.size() - 1));
    ExpectFailure("qeadrs.dic.previous: is not sound, see above", {"--back"});
}

TEST_F(Update, ADamagedDictionaryInPlaceIsCompiledAnewAndIsNoEditionToGoBackTo) {
    ExpectRun();
    std::string const strOlder = Dictionary();
    m_strTowns = Towns(202606, 0, 21);
    ExpectRun();
    std::string const strNewer = Dictionary();
    WriteFile(Path("qeadrs.dic"), strNewer.substr(0, 500));
    CUpdateRun const run = Run();
    EXPECT_EQ(run.nStatus, 0) << run.strErr;
    EXPECT_THAT(run.strOut, EndsWith("; before: a damaged file\n"));
    EXPECT_TRUE(Dictionary() == strNewer);
    EXPECT_TRUE(ReadFile(Path("qeadrs.dic.previous")) == strOlder);
}

// Whatever fails: the whole old dictionary and status 1, or the whole new one and status 0.
TEST_F(Update, EachProgramThatFailsInItsTurnLeavesTheOldDictionaryOrTheNewOne) {
    ExpectRun();
    m_strTowns = Towns(202606, 0, 21);
    ExpectRun();
    auto const before = Content();
    std::string const strNext = Towns(202607, 0, 22);
    WriteFile(Path("fetched/utf_ken_all.zip"), strNext);
    CUpdateRun const whole = Run({"--no-fetch"});
    ASSERT_EQ(whole.nStatus, 0) << whole.strErr;
    std::string const strNew = Dictionary();
    size_t nOld = 0;
    for (size_t n = 1; n <= whole.vCall.size(); ++n) {
        Restore(before);
        WriteFile(Path("fetched/utf_ken_all.zip"), strNext);
        std::string const strCall = whole.vCall[n - 1];
        CUpdateRun const run = Run({"--no-fetch"}, {{"QE_FAIL_AT", std::to_string(n)}});
        SCOPED_TRACE(strCall + "\n" + run.strErr);
        ASSERT_GE(run.vCall.size(), n);
        // Where there are no links, it copies.
        EXPECT_THAT(run.strErr, HasSubstr(strCall.compare(0, 3, "ln ") == 0 ? "" : " was made to fail\n"));
        if (run.nStatus == 0) {
            EXPECT_TRUE(Dictionary() == strNew);
        } else {
            ++nOld;
            EXPECT_EQ(run.nStatus, 1);
            EXPECT_TRUE(Dictionary() == before.at("qeadrs.dic"));
            EXPECT_THAT(run.strErr.substr(run.strErr.rfind('\n', run.strErr.size() - 2) + 1),
                        StartsWith("qeadrs-update: "));
        }
        // A folder that could not be removed goes with the next run.
        if (strCall.compare(0, 7, "rm -rf ") == 0) {
            EXPECT_EQ(Run({"--no-fetch"}).nStatus, 0);
        }
        for (auto const& [strName, strBytes] : Content()) EXPECT_THAT(strName, Not(StartsWith(".")));
    }
    EXPECT_GE(nOld, 12u) << "of " << whole.vCall.size();
}

TEST_F(Update, BackFailsWithTheEditionInPlaceWhereItWas) {
    ExpectRun();
    m_strTowns = Towns(202606, 0, 21);
    ExpectRun();
    ExpectFailure("previous: cannot be checked", {"--back"}, {{"QE_FAIL", "qeadrs-dic check"}});
    ExpectFailure("previous: cannot be written", {"--back"}, {{"QE_FAIL", "mv -f"}});
    ExpectFailure("no folder can be made in it", {"--back"}, {{"QE_FAIL", "mktemp -d"}});
}

// The folder's two editions are worth more than the exchange: none of them has another copy.
TEST_F(Update, BackThatEndsBetweenTheTwoRenamingsLosesNeitherEdition) {
    ExpectRun();
    m_strTowns = Towns(202606, 0, 21);
    ExpectRun();
    auto const before = Content();
    std::string const strOlder = before.at("qeadrs.dic.previous"), strNewer = before.at("qeadrs.dic");
    CUpdateRun const whole = Run({"--back"});
    ASSERT_EQ(whole.nStatus, 0) << whole.strErr;
    std::vector<size_t> const vCallNo = whole.CallsOf("mv ");
    ASSERT_EQ(vCallNo.size(), 2u);
    for (size_t const nCall : vCallNo) {
        SCOPED_TRACE(whole.vCall[nCall - 1]);
        Restore(before);
        ExpectFailure(nCall == vCallNo[0] ? "cannot be written" : "cannot be replaced", {"--back"},
                      {{"QE_FAIL_AT", std::to_string(nCall)}});
        // It waits for the end of both.
        CUpdateRun const stopped = Run({"--back"}, At(nCall, "kill -TERM $PPID"));
        EXPECT_EQ(stopped.nStatus, 0) << stopped.strErr;
        EXPECT_TRUE(Dictionary() == strOlder);
        EXPECT_TRUE(ReadFile(Path("qeadrs.dic.previous")) == strNewer);
        // Nothing can wait when it is killed: the next run finds what was kept. (Not before the lock is free.)
        Restore(before);
        EXPECT_EQ(Run({"--back"}, At(nCall, "exec 9<&-; kill -KILL $PPID; exit 1")).nStatus, 1000 + SIGKILL);
        EXPECT_TRUE(Dictionary() == strNewer);
        ExpectRun({"--no-fetch"});
        EXPECT_TRUE(Content() == before);
    }
    // Where there are no links, each copy is on the disk before it takes a name.
    CUpdateRun const copied = Run({"--back"}, {{"QE_FAIL", "ln " + Path("qeadrs.dic.previous")}});
    EXPECT_EQ(copied.nStatus, 0) << copied.strErr;
    EXPECT_EQ(copied.CallsOf("cp ").size(), 1u);
    EXPECT_EQ(copied.CallsOf("sync ").size(), 1u);
    EXPECT_TRUE(Dictionary() == strOlder);
}

TEST_F(Update, BackWithoutADictionaryInPlaceTakesTheEditionBefore) {
    ExpectRun();
    std::string const strOlder = Dictionary();
    m_strTowns = Towns(202606, 0, 21);
    ExpectRun();
    fs::remove(Path("qeadrs.dic"));
    EXPECT_THAT(Run({"--back"}).strOut, EndsWith(": edition 2026-05 again\n"));
    EXPECT_TRUE(Dictionary() == strOlder);
    EXPECT_FALSE(fs::exists(Path("qeadrs.dic.previous")));
}

// Else an older edition would take its place without a question.
TEST_F(Update, ADictionaryInPlaceThatCannotBeCheckedIsNotTakenForADamagedOne) {
    m_strTowns = Towns(202606, 0, 21);
    ExpectRun();
    WriteFile(Path("fetched/utf_ken_all.zip"), Towns(202605, 0, 20));
    CUpdateRun const run = Run({"--no-fetch"});
    EXPECT_THAT(run.strErr, HasSubstr("is newer (2026-06)"));
    size_t const nCheck = run.CallsOf("qeadrs-dic check").at(0);
    ExpectFailure("qeadrs.dic: cannot be checked, see above", {"--no-fetch"}, At(nCheck, "kill -KILL $$"));
    // The verdict is only one when the checker has come to its end.
    ExpectFailure("qeadrs.dic: cannot be checked, see above", {"--no-fetch"},
                  At(nCheck, "echo '1 against'; kill -KILL $$"));
    // Another user's, which root can read unless he gives up that he may.
    auto const before = Content();
    fs::permissions(Path("qeadrs.dic"), fs::perms::none);
    CNames vArgument = Command({"--no-fetch"});
    if (geteuid() == 0)
        vArgument.insert(vArgument.begin(), {"/usr/bin/setpriv", "--bounding-set=-dac_override,-dac_read_search"});
    CUpdateRun const unread = End(StartRun(vArgument));
    EXPECT_EQ(unread.nStatus, 1);
    EXPECT_THAT(unread.strErr, HasSubstr("qeadrs.dic: cannot be checked, see above"));
    fs::permissions(Path("qeadrs.dic"), fs::perms(0644));
    EXPECT_TRUE(Content() == before);
}

TEST_F(Update, RefusesToReplaceADictionaryOfANewerFormat) {
    ExpectRun();
    std::string const strOlder = Dictionary();
    m_strTowns = Towns(202606, 0, 21);
    ExpectRun();
    std::string strNewer = Dictionary();
    ++strNewer[4 * size_t{HDR_VERSION}];
    WriteFile(Path("qeadrs.dic"), strNewer);
    m_strTowns = Towns(202607, 0, 22);
    ExpectFailure("qeadrs.dic: is of a newer format; update qeadrs-dic", {"--accept"});
    WriteFile(Path("qeadrs.dic"), strOlder);
    WriteFile(Path("qeadrs.dic.previous"), strNewer);
    ExpectFailure("qeadrs.dic.previous: is of a newer format; update qeadrs-dic", {"--back"});
}

TEST_F(Update, IsDoneAlthoughNobodyCanReadWhatItSays) {
    CNames vArgument = Command({});
    vArgument.insert(vArgument.begin(), {"/bin/sh", "-c", "exec \"$@\" >/dev/full", "sh"});
    EXPECT_EQ(End(StartRun(vArgument)).nStatus, 0);
    EXPECT_THAT(Run().strOut, EndsWith("nothing has changed\n"));
    // A reader that has gone.
    m_strTowns = Towns(202606, 0, 21);
    CPipe pipe;
    pipe.hRead = CHandle();
    CHandle const hNull(open("/dev/null", O_RDWR));
    EXPECT_EQ(Wait(Start(Command({}), Environment(), m_folder.Path(""), -1, pipe.hWrite, hNull)), 0);
    EXPECT_THAT(Run().strOut, EndsWith(": edition 2026-06; nothing has changed\n"));
}

// A name without bytes behind it, as after a power cut, would stop every update to come.
TEST_F(Update, ATableOfTheHistoryIsOnTheDiskBeforeItHasItsName) {
    CUpdateRun const run = Run();
    EXPECT_EQ(run.nStatus, 0) << run.strErr;
    size_t const nSync = run.CallsOf("sync ").at(0), nCopy = run.CallsOf("cp ").at(0),
                 nMove = run.CallsOf("mv ").at(0);
    EXPECT_THAT(run.vCall[nSync - 1], EndsWith("/towns.zip"));
    EXPECT_THAT(run.vCall[nMove - 1], EndsWith("/history/ken_all-2026-05.zip"));
    EXPECT_TRUE(nCopy < nSync && nSync < nMove) << nCopy << ' ' << nSync << ' ' << nMove;
    m_strTowns = Towns(202606, 0, 21);
    WriteFile(Path("history/ken_all-2026-05.zip"), "");
    ExpectFailure(": the tables in fetched or history cannot be compiled, see above");
    EXPECT_THAT(Run().strErr, HasSubstr("/history/ken_all-2026-05.zip: is "));
}

TEST_F(Update, AFullDiskLeavesTheDictionary) {
    ExpectRun();
    WriteFile(Path("fetched/utf_ken_all.zip"), Towns(202606, 0, 400));
    auto const before = Content();
    CNames vArgument = Command({"--no-fetch"});
    vArgument.insert(vArgument.begin(), {"/bin/sh", "-c", "ulimit -f 4; exec \"$@\"", "sh"});
    CUpdateRun const run = End(StartRun(vArgument));
    EXPECT_EQ(run.nStatus, 1);
    EXPECT_THAT(run.strErr,
                AllOf(HasSubstr("cannot be written"), HasSubstr("history cannot be compiled, see above")));
    EXPECT_TRUE(Content() == before);
}

TEST_F(Update, ASecondRunInTheSameFolderIsRefusedAndTheFirstGoesOn) {
    pid_t const nFirst = StartRun(Command({}), {{"QE_WAIT", "qeadrs-dic build"}});
    WaitUntilItWaits();
    CUpdateRun const second = End(StartRun(Command({}), {{"QE_LOG", m_folder.Path("log-2")}}, "second-"), "second-");
    EXPECT_EQ(second.nStatus, 1);
    EXPECT_THAT(second.strErr, EndsWith(": another qeadrs-update is at work here; wait for its end\n"));
    fs::remove(m_folder.Path("log.waits"));
    CUpdateRun const first = End(nFirst);
    EXPECT_EQ(first.nStatus, 0) << first.strErr;
    EXPECT_THAT(Content(), Contains(Key("qeadrs.dic")));
}

TEST_F(Update, AFolderThatCannotBeLockedIsNotTakenForABusyOne) {
    ExpectRun();
    ExpectFailure(": cannot be locked, see above", {}, {{"QE_FAIL", "flock -n"}});
}

TEST_F(Update, WhatAKilledRunLeavesGoesWithTheNext) {
    ExpectRun();
    std::string const strBefore = Dictionary();
    m_strTowns = Towns(202606, 0, 21);
    pid_t const nProcess = StartRun(Command({}), {{"QE_WAIT", "qeadrs-dic build"}});
    WaitUntilItWaits();
    kill(nProcess, SIGKILL);
    EXPECT_EQ(Wait(nProcess), 1000 + SIGKILL);
    EXPECT_TRUE(Dictionary() == strBefore);
    EXPECT_THAT(Content(), Contains(Key(StartsWith(".qeadrs-update-"))));
    // The program that it had started holds the lock until its own end.
    EXPECT_THAT(Run({}, {{"QE_LOG", m_folder.Path("log-2")}}).strErr, HasSubstr("another qeadrs-update is at work"));
    fs::remove(m_folder.Path("log.waits"));
    CUpdateRun run = Run();
    for (int n = 0; n < 500 && run.nStatus != 0; ++n, usleep(20000)) run = Run();
    EXPECT_EQ(run.nStatus, 0) << run.strErr;
    EXPECT_FALSE(Dictionary() == strBefore);
    EXPECT_THAT(Content(), Not(Contains(Key(StartsWith(".")))));
}

TEST_F(Update, AnInterruptedRunCleansUpAndSaysSo) {
    ExpectRun();
    auto const before = Content();
    pid_t const nProcess = StartRun(Command({"--no-fetch"}), {{"QE_WAIT", "qeadrs-dic check"}});
    WaitUntilItWaits();
    kill(nProcess, SIGTERM);
    fs::remove(m_folder.Path("log.waits"));
    CUpdateRun const run = End(nProcess);
    EXPECT_EQ(run.nStatus, 143);
    EXPECT_THAT(run.strErr, EndsWith(": the update was cut short (143); run it again\n"));
    EXPECT_TRUE(Content() == before);
}

TEST_F(Update, AFolderThatCannotBeWrittenIsNamedWithTheUser) {
    fs::create_directory(Path(""));
    fs::permissions(Path(""), fs::perms(0555));
    CNames vArgument = Command({});
    if (geteuid() == 0) vArgument.insert(vArgument.begin(), {"/usr/bin/setpriv", "--reuid=65534", "--clear-groups"});
    m_folder.Write("log", "");
    CUpdateRun const run = End(StartRun(vArgument, {{"QE_LOG", "/dev/null"}}));
    EXPECT_EQ(run.nStatus, 1);
    EXPECT_THAT(run.strErr, AllOf(HasSubstr(": cannot be written by the user "), HasSubstr("run this as its owner")));
    EXPECT_THAT(Content(), IsEmpty());
    fs::permissions(Path(""), fs::perms(0755));
}

TEST_F(Update, RootIsSentAwayFromTheFolderOfAnotherUser) {
    // Only root could give a folder away: who is asking, and whose the folder is, is what these say.
    for (auto const& [strName, strSays] : {std::pair{"bin/id", "0"}, std::pair{"bin/stat", "nobody"}}) {
        m_folder.Write(strName, std::string("#!/bin/sh\necho ") + strSays + '\n');
        fs::permissions(m_folder.Path(strName), fs::perms(0755));
    }
    fs::create_directory(Path(""));
    ExpectFailure(": belongs to the user nobody; run this as that user: runuser -u nobody qeadrs-update");
    EXPECT_THAT(Content(), IsEmpty());
}

TEST_F(Update, RefusesADictionaryThatIsALinkOrAFolder) {
    ExpectRun();
    fs::rename(Path("qeadrs.dic"), Path("other.dic"));
    fs::create_symlink("other.dic", Path("qeadrs.dic"));
    ExpectFailure("is a symbolic link; name the folder of the file itself with -d");
    fs::remove(Path("qeadrs.dic"));
    fs::create_directory(Path("qeadrs.dic"));
    ExpectFailure("is not a file; move it out of the way");
}

TEST_F(Update, NamesATableThatIsMissingWhenNothingIsFetched) {
    fs::create_directory(Path(""));
    ExpectFailure("utf_ken_all.zip: is not there; put it there, or run without --no-fetch", {"--no-fetch"});
}

TEST_F(Update, ExplainsItselfAndRefusesWhatItDoesNotKnow) {
    CUpdateRun const help = End(StartRun({"/bin/sh", m_folder.Path("qeadrs-update"), "--help"}));
    EXPECT_EQ(help.nStatus, 0);
    EXPECT_THAT(help.strOut, AllOf(StartsWith("qeadrs-update - "), HasSubstr("Exit: 0 done")));
    for (char const* psz : {"--bak", "x", "-d"}) {
        CUpdateRun const run = End(StartRun({"/bin/sh", m_folder.Path("qeadrs-update"), psz}));
        EXPECT_EQ(run.nStatus, 2) << psz;
        EXPECT_THAT(run.strErr, AllOf(StartsWith("qeadrs-update: " + std::string(psz)), HasSubstr("Usage: "))) << psz;
    }
    EXPECT_EQ(Run({"-d", ""}).nStatus, 2);
}

} // namespace
