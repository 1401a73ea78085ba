// qeadrs-dic build with a fault at each of its calls of the system in turn: killed, interrupted, refused by the disk.
// The dictionary is the old one or the whole new one, and only a kill leaves anything beside it.
#include "tests/builder/TracedTool.h"

#include <gmock/gmock.h>
#include <sys/resource.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>

using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;

namespace {

class ToolFaults : public Tool {
  protected:
    void SetUp() override {
        ASSERT_EQ(Run(m_vBuild).nStatus, 0);
        m_strNew = ReadFile(Dictionary());
        m_strReport = ReadFile(Report());
        Reset();
        ASSERT_NE(m_strOld, m_strNew);
        m_vCall = Traced(CFault::None()).vCall;
        ASSERT_GT(m_vCall.size(), 10u) << "two files, each made, written, synced and renamed";
        Reset();
    }

    // The old dictionary and an old report, and nothing else.
    void Reset() {
        for (auto const& [strName, strBytes] : m_folder.Content()) std::filesystem::remove(Path(strName));
        if (m_strOld.empty()) m_strOld = PutOldDictionary();
        WriteFile(Dictionary(), m_strOld);
        WriteFile(Report(), "old");
    }

    std::string Report() const { return Path("report.tsv"); }
    CTracedRun Traced(CFault const& fault) const { return RunTraced(m_vBuild, m_folder.Path(""), fault); }

    // Whether the call number nCall of an undisturbed run comes behind the renaming of this file.
    bool IsBehindRename(int nCall, std::string const& strName) const {
        auto const it = std::find(m_vCall.begin(), m_vCall.end(), "rename " + strName);
        return nCall > it - m_vCall.begin();
    }

    // Each file whole, the old one before it is renamed and the new one behind.
    void ExpectWholeFiles(int nCall) const {
        EXPECT_EQ(ReadFile(Dictionary()), IsBehindRename(nCall, "t.dic") ? m_strNew : m_strOld);
        EXPECT_EQ(ReadFile(Report()), IsBehindRename(nCall, "report.tsv") ? m_strReport : "old");
    }

    std::vector<std::string> Others() const {
        std::vector<std::string> vName;
        for (auto const& [strName, strBytes] : m_folder.Content())
            if (strName != "t.dic" && strName != "report.tsv") vName.push_back(strName);
        return vName;
    }

    CArguments const m_vBuild{"build",
                              "--towns",
                              QEADRS_SAMPLE "/utf_ken_all.csv",
                              "--offices",
                              QEADRS_SAMPLE "/JIGYOSYO.CSV",
                              "-o",
                              Dictionary(),
                              "--report",
                              Report(),
                              "-q"};
    std::string m_strOld, m_strNew, m_strReport;
    std::vector<std::string> m_vCall; // of an undisturbed run; the ends of temporary names differ each time
};

} // namespace

TEST_F(ToolFaults, ReplacingAFileIsTheseCalls) {
    std::vector<testing::Matcher<std::string>> vExpected;
    for (std::string const strName : {"report.tsv", "t.dic"}) {
        std::string const strNew = strName + "\\.new-[A-Za-z0-9]+";
        for (char const* psz : {"open ", "write ", "chmod ", "fsync ", "pread ", "pread "})
            vExpected.emplace_back(MatchesRegex(psz + strNew));
        vExpected.emplace_back("rename " + strName);
        vExpected.insert(vExpected.end(), {"open .", "fsync ."});
    }
    EXPECT_THAT(m_vCall, ElementsAreArray(vExpected));
}

TEST_F(ToolFaults, AKillLeavesWholeFilesAndAtMostItsTemporaryAndTheNextRunSucceeds) {
    int nCall = 0;
    std::vector<std::string> vLeft;
    for (; nCall < 100; ++nCall) {
        SCOPED_TRACE(nCall);
        CTracedRun const run = Traced(CFault::Signal(nCall, SIGKILL));
        if (!run.bReached) break;
        EXPECT_EQ(run.nStatus, -SIGKILL) << run.Last();
        ExpectWholeFiles(nCall);
        std::vector<std::string> const vMore = Others();
        EXPECT_LE(vMore.size(), vLeft.size() + 1);
        vLeft = vMore;
        WriteFile(Dictionary(), m_strOld);
        WriteFile(Report(), "old");
    }
    EXPECT_EQ(nCall, static_cast<int>(m_vCall.size()));
    EXPECT_THAT(vLeft, Each(MatchesRegex("(t\\.dic|report\\.tsv)\\.new-[A-Za-z0-9]+")));
    EXPECT_THAT(vLeft, SizeIs(12)) << "from behind the creation up to the renaming of each file";
    EXPECT_EQ(Run(m_vBuild).nStatus, 0);
    ExpectWholeFiles(static_cast<int>(m_vCall.size()));
    EXPECT_EQ(Others(), vLeft) << "nobody's business";
}

// It arrives when the file is in place.
TEST_F(ToolFaults, ASignalLeavesWholeFilesAndNothingElse) {
    for (int const nSignal : {SIGINT, SIGTERM, SIGHUP})
        for (int nCall = 0; nCall < static_cast<int>(m_vCall.size()); ++nCall) {
            std::string const& strCall = m_vCall[static_cast<size_t>(nCall)];
            if (nSignal != SIGTERM && strCall.substr(0, 6) != "write ") continue; // all are the same to it
            SCOPED_TRACE(std::to_string(nSignal) + " at " + strCall);
            CTracedRun const run = Traced(CFault::Signal(nCall, nSignal));
            EXPECT_TRUE(run.bReached);
            EXPECT_EQ(run.nStatus, -nSignal);
            EXPECT_EQ(ReadFile(Report()), m_strReport);
            bool const bDictionary = nCall >= static_cast<int>(m_vCall.size()) / 2; // the second of two files alike
            EXPECT_EQ(ReadFile(Dictionary()), bDictionary ? m_strNew : m_strOld);
            EXPECT_THAT(Others(), IsEmpty());
            Reset();
        }
}

// Of each call: what the message says of it, null where it does not matter any more.
TEST_F(ToolFaults, AnErrorIsToldWithTheFileAndTheReasonAndLeavesNothingBehind) {
    std::map<std::string, char const*> const told = {{"open", "created"},    {"write", "written"},
                                                     {"chmod", "written"},   {"fsync", "written"},
                                                     {"pread", "read back"}, {"rename", "replaced"}};
    for (int const nError : {ENOSPC, EIO})
        for (int nCall = 0; nCall < static_cast<int>(m_vCall.size()); ++nCall) {
            std::string const& strCall = m_vCall[static_cast<size_t>(nCall)];
            if (nError == EIO && IsBehindRename(nCall, "report.tsv")) break; // the second of two files alike
            SCOPED_TRACE(strCall + ": " + std::strerror(nError));
            CTracedRun const run = Traced(CFault::Error(nCall, nError));
            EXPECT_TRUE(run.bReached);
            EXPECT_THAT(Others(), IsEmpty());
            EXPECT_EQ(run.strOut, "");
            size_t const nBlank = strCall.find(' ');
            if (strCall.substr(nBlank) ==
                " .") { // the name is in place, only its survival of a power cut is not assured
                EXPECT_EQ(run.nStatus, 0);
                EXPECT_EQ(run.strErr, "");
                ExpectWholeFiles(static_cast<int>(m_vCall.size()));
            } else {
                EXPECT_EQ(run.nStatus, 1);
                std::string const strFile = IsBehindRename(nCall, "report.tsv") ? Dictionary() : Report();
                EXPECT_EQ(run.strErr, "qeadrs-dic: " + strFile + ": cannot be " + told.at(strCall.substr(0, nBlank)) +
                                          ": " + std::strerror(nError) +
                                          "; an earlier file of that name is untouched.\n");
                ExpectWholeFiles(nCall);
            }
            Reset();
        }
}

TEST_F(ToolFaults, AWriteThatIsInterruptedOrTakesAPartGoesOn) {
    int nWrites = 0;
    for (int nCall = 0; nCall < static_cast<int>(m_vCall.size()); ++nCall) {
        if (m_vCall[static_cast<size_t>(nCall)].substr(0, 6) != "write ") continue;
        ++nWrites;
        for (CFault const& fault : {CFault::Error(nCall, EINTR), CFault::Half(nCall)}) {
            CTracedRun const run = Traced(fault);
            EXPECT_EQ(run.nStatus, 0) << run.strErr;
            EXPECT_EQ(run.vCall.size(), m_vCall.size() + 1) << "one more write";
            ExpectWholeFiles(static_cast<int>(m_vCall.size()));
            EXPECT_THAT(Others(), IsEmpty());
            Reset();
        }
    }
    EXPECT_EQ(nWrites, 2);
}

// The system's own limit, which fails a write in its middle as a disk does that runs full.
TEST_F(ToolFaults, AFileThatDoesNotFitIsRefusedUpToTheLastByte) {
    CArguments vBuild = m_vBuild;
    vBuild.erase(vBuild.end() - 3, vBuild.end()); // no report
    for (size_t const nLimit : {size_t{1000}, m_strNew.size() / 2, m_strNew.size() - 1, m_strNew.size()}) {
        bool const bFits = nLimit == m_strNew.size();
        CToolRun const run = Run(vBuild, [nLimit] {
            rlimit const limit{nLimit, nLimit};
            setrlimit(RLIMIT_FSIZE, &limit);
        });
        EXPECT_EQ(run.nStatus, bFits ? 0 : 1);
        EXPECT_EQ(run.strErr.find(": cannot be written: File too large;") == std::string::npos, bFits) << run.strErr;
        EXPECT_EQ(ReadFile(Dictionary()), bFits ? m_strNew : m_strOld) << nLimit;
        EXPECT_THAT(Others(), IsEmpty());
    }
}
