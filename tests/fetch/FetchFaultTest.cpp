// qeadrs-dic fetch with a fault at each of its calls of the system on the folder in turn: killed, interrupted,
// refused by the disk. Each file is the old one or the whole new one.
#include "tests/builder/TracedTool.h"
#include "tests/fetch/LoopbackServer.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <set>

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

class FetchFaults : public Tool {
  protected:
    static void SetUpTestSuite() {
        setenv("no_proxy", "*", 1); // a proxy of the machine must never see these requests
        setenv("NO_PROXY", "*", 1);
    }

    void SetUp() override {
        m_server.On("/utf/zip/utf_ken_all.zip", [this](CRequest const&) { return Reply(m_strTowns); });
        m_server.On("/office/zip/jigyosyo.zip", [this](CRequest const&) { return Reply(m_strOffices); });
        m_vFetch = {"fetch", "-d", m_folder.Path("d"), "--base", m_server.Base()};
        Reset();
        CTracedRun const run = Traced(CFault::None());
        ASSERT_EQ(run.nStatus, 0) << run.strErr;
        m_vCall = run.vCall;
        ASSERT_EQ(Content(), New());
        Reset();
    }

    using CContent = std::map<std::string, std::string>;

    static CReply Reply(std::string const& strBody) {
        CReply reply;
        reply.strBody = strBody;
        return reply;
    }
    static std::string OneRow(std::string const& strTown) {
        return Zip({{"utf_ken_all.csv", Line(CTown{"東京都", "千代田区", strTown, "マチ", "1000001"})}});
    }
    CContent New() const { return {{"jigyosyo.zip", m_strOffices}, {"utf_ken_all.zip", m_strTowns}}; }
    static CContent Old() { return {{"jigyosyo.zip", "old offices"}, {"utf_ken_all.zip", "old towns"}}; }

    void Reset() const {
        std::filesystem::remove_all(m_folder.Path("d"));
        for (auto const& [strName, strBytes] : Old()) m_folder.Write("d/" + strName, strBytes);
    }
    CContent Content() const {
        CContent content;
        for (auto const& entry : std::filesystem::directory_iterator(m_folder.Path("d")))
            content[entry.path().filename().string()] = ReadFile(entry.path().string());
        return content;
    }
    // Takes a file out that must be there; true when it is the new one, false when it is the old one.
    bool TakeNew(CContent& content, std::string const& strName) const {
        std::string const strBytes = content[strName];
        content.erase(strName);
        EXPECT_TRUE(strBytes == New()[strName] || strBytes == Old()[strName]) << strName;
        return strBytes == New()[strName];
    }

    // Whether the fetch goes on without this call: its lock where there are none, the comparison with the old file,
    // the way back (a copy will do, too), and the last sync.
    bool IsNotNeeded(int nCall) const {
        auto const it = m_vCall.begin() + nCall;
        if (*it == "flock ." || *it == "fsync ." || it->find(".part.old") != std::string::npos) return true;
        if (it->substr(0, 5) != "open " || *it == "open .") return false;
        bool const bPart = it->find(".part") != std::string::npos;
        return !bPart || std::count(m_vCall.begin(), it, *it) == 2; // made, checked, compared
    }

    int Calls() const { return static_cast<int>(m_vCall.size()); }
    CTracedRun Traced(CFault const& fault) const { return RunTraced(m_vFetch, m_folder.Path("d"), fault); }

    std::string const m_strTowns = OneRow("千代田");
    std::string const m_strOffices =
        Zip({{"JIGYOSYO.CSV", Line(COffice{"宮内庁", "東京都", "千代田区", "千代田", "１−１", "1008111"})}});
    CLoopbackServer m_server;
    CArguments m_vFetch;
    std::vector<std::string> m_vCall; // of an undisturbed run
};

} // namespace

// The rest of these tests visits whatever calls there are; here is what they must meet.
TEST_F(FetchFaults, GoingThroughItsCallsMeetsEachStepOfBothFiles) {
    for (std::string const strFile : {"utf_ken_all.zip", "jigyosyo.zip"}) {
        CArguments const vStep = {"open " + strFile + ".part",  "write " + strFile + ".part",
                                  "fsync " + strFile + ".part", "link " + strFile + ".part.old",
                                  "rename " + strFile,          "unlink " + strFile + ".part.old"};
        auto it = m_vCall.begin();
        for (std::string const& strStep : vStep) {
            it = std::find(it, m_vCall.end(), strStep);
            EXPECT_NE(it, m_vCall.end()) << strStep << ", in this order";
        }
    }
    EXPECT_THAT(m_vCall, Contains("fsync ."));
}

TEST_F(FetchFaults, AKillLeavesEachFileWholeAndTheNextFetchSucceeds) {
    std::set<std::string> setLeft;
    int nMixed = 0;
    for (int nCall = 0; nCall < Calls(); ++nCall) {
        SCOPED_TRACE(m_vCall[static_cast<size_t>(nCall)]);
        EXPECT_EQ(Traced(CFault::Signal(nCall, SIGKILL)).nStatus, -SIGKILL);
        CContent content = Content();
        bool const bTowns = TakeNew(content, "utf_ken_all.zip"), bOffices = TakeNew(content, "jigyosyo.zip");
        EXPECT_TRUE(bTowns || !bOffices) << "the towns come first";
        nMixed += bTowns == bOffices ? 0 : 1;
        // The next fetch from here, where a file is left that was not met before, and between the two renames.
        bool bSeen = true;
        for (auto const& [strName, strBytes] : content) bSeen = !setLeft.insert(strName).second && bSeen;
        if (!bSeen || bTowns != bOffices) {
            EXPECT_EQ(Run(m_vFetch).nStatus, 0);
            EXPECT_EQ(Content(), New());
        }
        Reset();
    }
    EXPECT_THAT(setLeft, ElementsAre("jigyosyo.zip.part", "jigyosyo.zip.part.old", "utf_ken_all.zip.part",
                                     "utf_ken_all.zip.part.old"));
    EXPECT_LE(nMixed, 5) << "between the two renames, when both files are complete";
}

TEST_F(FetchFaults, ASignalLeavesBothFilesOfOneEditionAndNothingElse) {
    std::set<int> setStatus;
    for (int const nSignal : {SIGINT, SIGTERM, SIGHUP})
        for (int nCall = 0; nCall < Calls(); ++nCall) {
            std::string const& strCall = m_vCall[static_cast<size_t>(nCall)];
            if (nSignal != SIGINT && strCall != "write utf_ken_all.zip.part") continue; // all are the same to it
            SCOPED_TRACE(std::to_string(nSignal) + " at " + strCall);
            CTracedRun const run = Traced(CFault::Signal(nCall, nSignal));
            EXPECT_TRUE(run.bReached);
            setStatus.insert(run.nStatus);
            EXPECT_EQ(Content(), run.nStatus == 0 ? New() : Old());
            EXPECT_EQ(run.strErr.find(": stopped. Nothing was replaced.") != std::string::npos, run.nStatus == 1);
            Reset();
        }
    EXPECT_THAT(setStatus, ElementsAre(0, 1)) << "one that comes behind the downloads comes too late";
}

// As nohup and a shell's background do it.
TEST_F(FetchFaults, ASignalThatWasIgnoredBeforeItsBeginIsIgnored) {
    auto const it = std::find(m_vCall.begin(), m_vCall.end(), "write utf_ken_all.zip.part");
    CFault const fault = CFault::Signal(static_cast<int>(it - m_vCall.begin()), SIGHUP);
    CTracedRun const run = RunTraced(m_vFetch, m_folder.Path("d"), fault, [] { std::signal(SIGHUP, SIG_IGN); });
    EXPECT_TRUE(run.bReached);
    EXPECT_EQ(run.nStatus, 0) << run.strErr;
    EXPECT_EQ(Content(), New());
}

TEST_F(FetchFaults, AnErrorIsToldWithTheFileAndTheReasonAndLeavesTheFolderAsItWas) {
    for (int nCall = 0; nCall < Calls(); ++nCall) {
        std::string const& strCall = m_vCall[static_cast<size_t>(nCall)];
        SCOPED_TRACE(strCall);
        CTracedRun const run = Traced(CFault::Error(nCall, ENOSPC));
        EXPECT_TRUE(run.bReached);
        CContent content = Content();
        if (IsNotNeeded(nCall)) {
            EXPECT_EQ(run.nStatus, 0);
            EXPECT_EQ(run.strErr, "");
            EXPECT_TRUE(TakeNew(content, "utf_ken_all.zip") && TakeNew(content, "jigyosyo.zip"));
            // What could not be removed stays.
            for (auto const& [strName, strBytes] : content) EXPECT_EQ("unlink " + strName, strCall);
        } else {
            EXPECT_EQ(run.nStatus, 1);
            EXPECT_EQ(content, Old());
            std::string const strFile = strCall.substr(strCall.find(' ') + 1);
            std::string const strPath = m_folder.Path(strFile == "." ? "d" : "d/" + strFile);
            EXPECT_THAT(run.strErr, AllOf(StartsWith("qeadrs-dic: "), HasSubstr(std::strerror(ENOSPC)),
                                          HasSubstr(strPath.substr(0, strPath.find(".part")))));
        }
        Reset();
    }
}

TEST_F(FetchFaults, AnErrorInANewFolderLeavesItEmpty) {
    std::filesystem::remove_all(m_folder.Path("d"));
    CTracedRun const whole = Traced(CFault::None());
    ASSERT_EQ(whole.nStatus, 0);
    EXPECT_EQ(whole.vCall.at(0), "mkdir .");
    int nFailed = 0;
    for (int nCall = 0; nCall < static_cast<int>(whole.vCall.size()); ++nCall) {
        SCOPED_TRACE(whole.vCall[static_cast<size_t>(nCall)]);
        std::filesystem::remove_all(m_folder.Path("d"));
        CTracedRun const run = Traced(CFault::Error(nCall, EIO));
        EXPECT_TRUE(run.nStatus == 0 || run.nStatus == 1);
        nFailed += run.nStatus;
        EXPECT_EQ(run.strErr.empty(), run.nStatus == 0);
        if (std::filesystem::exists(m_folder.Path("d"))) {
            EXPECT_EQ(Content(), run.nStatus == 0 ? New() : CContent());
        } else {
            EXPECT_EQ(nCall, 0);
        }
    }
    EXPECT_GE(nFailed, 12);
}
