// Tool.cpp - the program as a child process.
#include "tests/builder/Tool.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

pid_t StartTool(CArguments const& vArgument, std::function<void()> const& prepare, std::string const& strOutFile,
                std::string const& strErrFile) {
    std::vector<char*> ppszArgument{const_cast<char*>("qeadrs-dic")};
    for (std::string const& strArgument : vArgument) ppszArgument.push_back(const_cast<char*>(strArgument.c_str()));
    ppszArgument.push_back(nullptr);
    pid_t const nProcess = fork();
    if (nProcess != 0) return nProcess;
    auto const Redirect = [](std::string const& strFile, int nTo) {
        char const* const psz = strFile.empty() ? "/dev/null" : strFile.c_str();
        dup2(open(psz, O_WRONLY | O_CREAT | O_TRUNC, 0600), nTo);
    };
    Redirect(strOutFile, STDOUT_FILENO);
    Redirect(strErrFile, STDERR_FILENO);
    if (prepare) prepare();
    execv(QEADRS_DIC_PROGRAM, ppszArgument.data());
    _exit(127);
}

int WaitForTool(pid_t nProcess) {
    int nStatus = 0;
    while (waitpid(nProcess, &nStatus, 0) < 0 && errno == EINTR) {
    }
    return WIFSIGNALED(nStatus) ? -WTERMSIG(nStatus) : WEXITSTATUS(nStatus);
}

void FillStandardOutput() {
    dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO);
}

CToolRun Tool::Run(CArguments const& vArgument, std::function<void()> const& prepare) const {
    std::string const strOut = m_folderOutputs.Path("out");
    std::string const strErr = m_folderOutputs.Path("err");
    CToolRun run;
    run.nStatus = WaitForTool(StartTool(vArgument, prepare, strOut, strErr));
    run.strOut = ReadFile(strOut);
    run.strErr = ReadFile(strErr);
    return run;
}

CToolRun Tool::Build(std::string const& strTowns, CArguments const& vMore) const {
    CArguments vArgument{"build", "--towns", m_folderOutputs.Write("towns.csv", strTowns), "-o", Dictionary()};
    vArgument.insert(vArgument.end(), vMore.begin(), vMore.end());
    return Run(vArgument);
}

std::string Tool::Output(CArguments const& vArgument) const {
    CToolRun const run = Run(vArgument);
    EXPECT_EQ(run.nStatus, 0) << run.strErr;
    return run.strOut;
}

std::string Tool::PutOldDictionary() const {
    CToolRun const run = Build(Line(CTown{"沖縄県", "那覇市", "泉崎", "イズミザキ", "9000021"}));
    EXPECT_EQ(run.nStatus, 0) << run.strErr;
    return ReadFile(Dictionary());
}
