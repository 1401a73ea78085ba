// `qeadrs batch` beside other programs: those that wait for its answers, that stop reading them, or stop it, and
// disks that are full.
#include "tests/cli/BatchTest.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <thread>

using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

namespace {

std::vector<std::string> const ADDR = {"--from", "tsv", "--column", "1", "--op", "addr"};
std::string const LINE = "東京都千代田区丸の内２";
std::string const ANSWER = LINE + "\t1000005\t100\t東京都\t千代田区\t丸の内\t２\tfound\n";

std::vector<std::string> With(std::vector<std::string> vArgument, std::vector<std::string> const& vMore) {
    vArgument.insert(vArgument.end(), vMore.begin(), vMore.end());
    return vArgument;
}

// More than fits into pipes and the command's own memory.
constexpr size_t MANY = 60'000;
std::string ManyLines() {
    std::string str;
    for (size_t i = 0; i < MANY; ++i) str += LINE + std::to_string(i) + '\n';
    return str;
}

CHandle Open(std::string const& strFile, int nFlags) {
    return open(strFile.c_str(), nFlags | O_CLOEXEC, 0600);
}

void Sleep(int nMilliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(nMilliseconds));
}

class BatchBesideOthers : public BatchTest {
  protected:
    // The command with both of its ends in the test's hands.
    struct CStarted {
        CHandle hIn, hOut;
        pid_t nProcess;
    };
    CStarted StartPiped(std::vector<std::string> const& vArgument, std::string const& strFile = "") {
        CPipe in, out;
        CHandle const hFile = strFile.empty() ? CHandle() : Open(strFile, O_RDONLY);
        CHandle const hErr = Open(Path("stderr"), O_WRONLY | O_CREAT | O_TRUNC);
        pid_t const nProcess = StartBatch(vArgument, strFile.empty() ? int{in.hRead} : int{hFile}, out.hWrite, hErr);
        return {std::move(in.hWrite), std::move(out.hRead), nProcess};
    }

    // Waits until the command waits for the output to be read.
    static void WaitUntilFull(int hOut) {
        pollfd file = {hOut, POLLIN, 0};
        ASSERT_EQ(poll(&file, 1, 20'000), 1);
        Sleep(200);
    }
};

// --- a program that waits for each answer --------------------------------------------------------------------------

TEST_F(BatchBesideOthers, AnswersEachLineBeforeTheNextOneComes) {
    for (char const* pszJobs : {"1", "3"}) {
        SCOPED_TRACE(pszJobs);
        CStarted started = StartPiped(With(ADDR, {"--jobs", pszJobs}));
        for (int i = 0; i < 200; ++i) {
            WriteAll(started.hIn, LINE + '\n');
            ASSERT_EQ(ReadUntil(started.hOut, "\n"), ANSWER);
        }
        WriteAll(started.hIn, LINE); // a line in two pieces
        std::string strEarly;
        EXPECT_FALSE(ReadSome(started.hOut, 50, strEarly));
        WriteAll(started.hIn, "\n" + LINE);
        EXPECT_EQ(ReadUntil(started.hOut, "\n"), ANSWER);
        started.hIn = CHandle();
        EXPECT_EQ(ReadAll(started.hOut), ANSWER);
        EXPECT_EQ(Wait(started.nProcess), 0);
    }
}

TEST_F(BatchBesideOthers, AnswersTheFirstLineBelowAHeaderAndAMarkThatComeAlone) {
    CStarted started = StartPiped({"--from", "csv", "--header", "--column", "a", "--op", "addr"});
    WriteAll(started.hIn, "\xEF\xBB\xBF");
    Sleep(50);
    WriteAll(started.hIn, "a\n");
    EXPECT_THAT(ReadUntil(started.hOut, "\n"), StartsWith("\xEF\xBB\xBF"
                                                          "a,postal_code,"));
    WriteAll(started.hIn, LINE + '\n');
    EXPECT_THAT(ReadUntil(started.hOut, "\n"), EndsWith(",found\n"));
    started.hIn = CHandle();
    EXPECT_EQ(Wait(started.nProcess), 0);
}

// Somebody else's doing: a pipe's end is shared by all that have it open.
TEST_F(BatchBesideOthers, WaitsForPipesThatDoNotWait) {
    CPipe in, out;
    fcntl(in.hRead, F_SETFL, O_NONBLOCK);
    fcntl(out.hWrite, F_SETFL, O_NONBLOCK);
    pid_t const nProcess = StartBatch(ADDR, in.hRead, out.hWrite, STDERR_FILENO);
    out.hWrite = CHandle();
    std::thread writer([&] {
        Sleep(50);
        std::string const strInput = ManyLines();
        for (size_t n = 0; n < strInput.size(); n += 4096) WriteAll(in.hWrite, strInput.substr(n, 4096));
        in.hWrite = CHandle();
    });
    Sleep(200);
    std::string const strOut = ReadAll(out.hRead);
    writer.join();
    EXPECT_EQ(Wait(nProcess), 0);
    EXPECT_EQ(Lines(strOut).size(), MANY);
}

// --- ends ----------------------------------------------------------------------------------------------------------

// As `head` does it, and with the signal of a closed pipe ignored by the caller.
TEST_F(BatchBesideOthers, EndsQuietlyWhenNobodyReadsAnyMore) {
    std::string const strFile = WriteFile("table", ManyLines());
    for (auto const Handler : {SIG_DFL, SIG_IGN}) {
        auto const Before = std::signal(SIGPIPE, Handler);
        CStarted started = StartPiped(ADDR, strFile);
        std::signal(SIGPIPE, Before);
        ReadUntil(started.hOut, "\n");
        started.hOut = CHandle();
        EXPECT_EQ(Wait(started.nProcess), 1000 + SIGPIPE);
        EXPECT_EQ(ReadFile(Path("stderr")), "");
    }
}

TEST_F(BatchBesideOthers, EndsByTheSignalThatStopsItWithAllThatItHasRead) {
    for (int const nSignal : {SIGINT, SIGTERM, SIGHUP}) {
        SCOPED_TRACE(nSignal);
        CStarted started = StartPiped(ADDR);
        WriteAll(started.hIn, LINE + "\n" + LINE + "\n" + LINE);
        EXPECT_EQ(ReadUntil(started.hOut, "\n") + ReadUntil(started.hOut, "\n"), ANSWER + ANSWER);
        kill(started.nProcess, nSignal);
        EXPECT_EQ(Wait(started.nProcess), 1000 + nSignal);
        EXPECT_EQ(ReadAll(started.hOut), "");
        EXPECT_EQ(ReadFile(Path("stderr")), "");
    }
}

TEST_F(BatchBesideOthers, LeavesWholeLinesWhenItIsStoppedInTheMiddle) {
    std::string const strWhole = Batch(ADDR, ManyLines()).strOut;
    CStarted started = StartPiped(ADDR, WriteFile("table", ManyLines()));
    WaitUntilFull(started.hOut);
    kill(started.nProcess, SIGINT);
    std::string const strOut = ReadAll(started.hOut);
    EXPECT_EQ(Wait(started.nProcess), 1000 + SIGINT);
    EXPECT_GT(strOut.size(), 0u);
    EXPECT_LT(strOut.size(), strWhole.size());
    EXPECT_TRUE(strOut == strWhole.substr(0, strOut.size()));
    EXPECT_EQ(strOut.back(), '\n');
}

// What Wait returns; a process that does not end is ended.
int WaitBriefly(pid_t nProcess) {
    siginfo_t info = {};
    for (int i = 0; i < 100 && info.si_pid == 0; ++i) {
        waitid(P_PID, static_cast<id_t>(nProcess), &info, WEXITED | WNOHANG | WNOWAIT);
        if (info.si_pid == 0) Sleep(20);
    }
    if (info.si_pid == 0) kill(nProcess, SIGKILL);
    return Wait(nProcess);
}

TEST_F(BatchBesideOthers, EndsAtOnceWhenItIsStoppedTwiceByWhicheverSignals) {
    std::string const strFile = WriteFile("table", ManyLines());
    for (auto const& [nFirst, nSecond] : {std::pair(SIGINT, SIGINT), std::pair(SIGINT, SIGTERM),
                                          std::pair(SIGTERM, SIGINT), std::pair(SIGHUP, SIGTERM)}) {
        SCOPED_TRACE(testing::Message() << nFirst << ", " << nSecond);
        CStarted started = StartPiped(ADDR, strFile);
        WaitUntilFull(started.hOut);
        kill(started.nProcess, nFirst);
        Sleep(100);
        EXPECT_EQ(waitpid(started.nProcess, nullptr, WNOHANG), 0) << "it waits for its output to be read";
        kill(started.nProcess, nSecond);
        EXPECT_EQ(WaitBriefly(started.nProcess), 1000 + nSecond);
    }
}

TEST_F(BatchBesideOthers, GoesOnWhenItsCallerHasTheSignalIgnored) {
    auto const Before = std::signal(SIGINT, SIG_IGN);
    CStarted started = StartPiped(ADDR);
    std::signal(SIGINT, Before);
    WriteAll(started.hIn, LINE + '\n');
    EXPECT_EQ(ReadUntil(started.hOut, "\n"), ANSWER);
    kill(started.nProcess, SIGINT);
    WriteAll(started.hIn, LINE + '\n');
    EXPECT_EQ(ReadUntil(started.hOut, "\n"), ANSWER);
    started.hIn = CHandle();
    EXPECT_EQ(Wait(started.nProcess), 0);
}

// --- files ---------------------------------------------------------------------------------------------------------

TEST_F(BatchBesideOthers, ReportsAFullDisk) {
    CHandle const hIn = Open(WriteFile("table", ManyLines()), O_RDONLY);
    CHandle const hFull = Open("/dev/full", O_WRONLY);
    CHandle const hErr = Open(Path("stderr"), O_WRONLY | O_CREAT | O_TRUNC);
    EXPECT_EQ(Wait(StartBatch(ADDR, hIn, hFull, hErr)), 4);
    EXPECT_EQ(ReadFile(Path("stderr")), "qeadrs: the output cannot be written: No space left on device.\n");
    CResult const result = Batch(With(ADDR, {"--rejects", "/dev/full"}), LINE + "\n\xFF\n");
    EXPECT_EQ(result.nStatus, 4);
    EXPECT_EQ(result.strErr, "qeadrs: /dev/full cannot be written: No space left on device.\n");
}

// The failure is noticed although the command waits for a line that does not come.
TEST_F(BatchBesideOthers, ReportsAFullDiskWhileItWaitsForInput) {
    CPipe in;
    CHandle const hFull = Open("/dev/full", O_WRONLY);
    CHandle const hErr = Open(Path("stderr"), O_WRONLY | O_CREAT | O_TRUNC);
    pid_t const nProcess = StartBatch(ADDR, in.hRead, hFull, hErr);
    WriteAll(in.hWrite, LINE + '\n');
    EXPECT_EQ(Wait(nProcess), 4);
}

TEST_F(BatchBesideOthers, ReportsFilesThatCannotBeOpened) {
    EXPECT_EQ(Remark(Batch(With(ADDR, {Path("missing")})), 4),
              "qeadrs: " + Path("missing") + ": No such file or directory.\n");
    EXPECT_EQ(Remark(Batch(With(ADDR, {Path("home")})), 4), "qeadrs: the input cannot be read: Is a directory.\n");
    EXPECT_EQ(Remark(Batch(With(ADDR, {"--rejects", Path("home/a/b")})), 4),
              "qeadrs: " + Path("home/a/b") + ": No such file or directory.\n");
    EXPECT_EQ(Remark(Run({"batch", "--from", "tsv", "--column", "1", "--op", "zip"}), 3).substr(0, 22),
              "qeadrs: no dictionary:");
}

TEST_F(BatchBesideOthers, ReportsStreamsThatAreClosed) {
    CHandle const hErr = Open(Path("stderr"), O_WRONLY | O_CREAT | O_TRUNC);
    CHandle const hNull = Open("/dev/null", O_RDWR);
    EXPECT_EQ(Wait(StartBatch(ADDR, -1, hNull, hErr)), 4);
    EXPECT_EQ(ReadFile(Path("stderr")), "qeadrs: the input cannot be read: Bad file descriptor.\n");
    CHandle const hIn = Open(WriteFile("table", LINE), O_RDONLY);
    EXPECT_EQ(Wait(StartBatch(ADDR, hIn, -1, hNull)), 4);
}

TEST_F(BatchBesideOthers, DoesNotEmptyItsOwnInput) {
    std::string const strFile = WriteFile("table", LINE + '\n');
    EXPECT_EQ(Remark(Batch(With(ADDR, {"--rejects", strFile, strFile})), 2),
              "qeadrs: --rejects names the input or the output itself.\n");
    CHandle const hNull = Open("/dev/null", O_RDWR);
    CHandle const hAppend = Open(strFile, O_WRONLY | O_APPEND);
    EXPECT_EQ(Wait(StartBatch(With(ADDR, {strFile}), hNull, hAppend, hNull)), 2);
    EXPECT_EQ(Wait(StartBatch(With(ADDR, {"--rejects", strFile}), hNull, hAppend, hNull)), 2);
    EXPECT_EQ(ReadFile(strFile), LINE + '\n');
}

TEST_F(BatchBesideOthers, DoesNotEmptyItsDictionary) {
    std::string const strBytes = ReadFile(Sample());
    std::string const strDic = WriteFile("copy.dic", strBytes);
    CResult const result = Run(WithDic("batch", strDic, With(ADDR, {"--rejects", strDic})), LINE);
    EXPECT_EQ(Remark(result, 2), "qeadrs: --rejects names the dictionary.\n");
    EXPECT_TRUE(ReadFile(strDic) == strBytes);
}

// Unlike the output's, whose reader may have enough: what is lost here is nowhere else.
TEST_F(BatchBesideOthers, ReportsThatNobodyTakesItsRejects) {
    std::string const strPipe = Path("rejects");
    ASSERT_EQ(mkfifo(strPipe.c_str(), 0600), 0);
    CHandle hReader = Open(strPipe, O_RDONLY | O_NONBLOCK);
    CStarted started = StartPiped(With(ADDR, {"--rejects", strPipe}));
    WriteAll(started.hIn, LINE + '\n');
    EXPECT_EQ(ReadUntil(started.hOut, "\n"), ANSWER);
    hReader = CHandle();
    WriteAll(started.hIn, "\xFF\n");
    EXPECT_EQ(Wait(started.nProcess), 4);
    EXPECT_EQ(ReadFile(Path("stderr")), "qeadrs: " + strPipe + " cannot be written: Broken pipe.\n");
}

TEST_F(BatchBesideOthers, KeepsTheRejectsOfTheLastRunWhenTheCallIsWrong) {
    std::string const strFile = WriteFile("rejects", "old\n");
    for (std::string const strColumn : {"b", "0", "2", "99999999999999999999"}) {
        SCOPED_TRACE(strColumn);
        Remark(Batch({"--from", "tsv", "--header", "--column", strColumn, "--op", "addr", "--rejects", strFile},
                     "a\n" + LINE + "\n"),
               2);
        EXPECT_EQ(ReadFile(strFile), "old\n");
    }
}

TEST_F(BatchBesideOthers, EmptiesTheRejectsOfTheLastRun) {
    std::string const strFile = WriteFile("rejects", "old\n");
    EXPECT_EQ(Batch(With(ADDR, {"--rejects", strFile}), LINE + "\n").nStatus, 0);
    EXPECT_EQ(ReadFile(strFile), "");
}

// --- progress ------------------------------------------------------------------------------------------------------

TEST_F(BatchBesideOthers, ShowsItsProgressOnATerminal) {
    CTerminal terminal;
    CPipe in, out;
    pid_t const nProcess = StartBatch(ADDR, in.hRead, out.hWrite, terminal.hSlave);
    terminal.hSlave = CHandle();
    for (int i = 0; i < 2; ++i) {
        Sleep(300);
        WriteAll(in.hWrite, LINE + '\n');
        EXPECT_EQ(ReadUntil(out.hRead, "\n"), ANSWER);
    }
    in.hWrite = CHandle();
    EXPECT_THAT(ReadAll(terminal.hMaster),
                MatchesRegex("\r1 records, [0-9]+ a second\x1B\\[K\r2 records, [0-9]+ a second\x1B\\[K"
                             "\r\x1B\\[Kqeadrs: 2 records, 2 found, 0 not found\n"));
    EXPECT_EQ(Wait(nProcess), 0);
}

TEST_F(BatchBesideOthers, ShowsTheTimeLeftOfAFile) {
    std::string const strFile = WriteFile("table", ManyLines());
    CStarted started = StartPiped(With(ADDR, {"--progress"}), strFile);
    WaitUntilFull(started.hOut);
    Sleep(100);
    ReadAll(started.hOut);
    EXPECT_EQ(Wait(started.nProcess), 0);
    EXPECT_THAT(ReadFile(Path("stderr")), testing::ContainsRegex("\r[0-9,]+ records, [0-9]+%, [0-9,]+ a second, "
                                                                 "[0-9]+:[0-9][0-9] left\x1B\\[K"));
    EXPECT_THAT(ReadFile(Path("stderr")), EndsWith("\r\x1B[Kqeadrs: 60,000 records, 60,000 found, 0 not found\n"));
}

TEST_F(BatchBesideOthers, ShowsNoProgressWhereItIsNotWanted) {
    CTerminal terminal;
    CPipe in;
    pid_t nProcess = StartBatch(ADDR, in.hRead, terminal.hSlave, terminal.hSlave); // it would be among the answers
    Sleep(300);
    WriteAll(in.hWrite, LINE + '\n');
    in.hWrite = CHandle();
    EXPECT_EQ(Wait(nProcess), 0);
    terminal.hSlave = CHandle();
    EXPECT_EQ(ReadAll(terminal.hMaster), ANSWER);
}

} // namespace
