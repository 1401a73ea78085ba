#include "tests/cli/Process.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>

CHandle& CHandle::operator=(CHandle&& other) noexcept {
    std::swap(m_h, other.m_h);
    return *this;
}

CHandle::~CHandle() {
    if (m_h >= 0) close(m_h);
}

CTerminal::CTerminal() {
    int anHandle[2];
    termios settings = {};
    settings.c_lflag = ICANON; // lines, and Ctrl-D for the end
    settings.c_cflag = CS8 | CREAD;
    settings.c_cc[VEOF] = 4;
    if (openpty(&anHandle[0], &anHandle[1], nullptr, &settings, nullptr) != 0)
        throw std::runtime_error("no pseudo-terminal");
    hMaster = CHandle(anHandle[0]);
    hSlave = CHandle(anHandle[1]);
    fcntl(hMaster, F_SETFD, FD_CLOEXEC);
    fcntl(hSlave, F_SETFD, FD_CLOEXEC);
}

CPipe::CPipe() {
    int anHandle[2];
    if (pipe2(anHandle, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    hRead = CHandle(anHandle[0]);
    hWrite = CHandle(anHandle[1]);
}

pid_t Start(std::vector<std::string> const& vArgument, CEnvironment const& environment, std::string const& strFolder,
            int hIn, int hOut, int hErr, bool bOwnTerminal) {
    std::vector<std::string> vVariable;
    for (auto const& [strName, strValue] : environment) vVariable.push_back(strName + '=' + strValue);
    auto const Pointers = [](std::vector<std::string> const& vText) {
        std::vector<char*> vpsz;
        for (std::string const& str : vText) vpsz.push_back(const_cast<char*>(str.c_str()));
        vpsz.push_back(nullptr);
        return vpsz;
    };
    std::vector<char*> const vpszArgument = Pointers(vArgument);
    std::vector<char*> const vpszVariable = Pointers(vVariable);
    constexpr unsigned LONGEST_RUN = 60; // seconds; a program that hangs is ended, and its test fails
    pid_t const nProcess = fork();
    if (nProcess < 0) throw std::runtime_error("no process");
    if (nProcess > 0) return nProcess;
    int const anHandle[] = {hIn, hOut, hErr};
    for (int n = 0; n < 3; ++n) // the test's own descriptors are all above 2
        anHandle[n] < 0 ? close(n) : dup2(anHandle[n], n);
    if (bOwnTerminal && (setsid() < 0 || ioctl(STDIN_FILENO, TIOCSCTTY, 0) != 0)) _exit(127);
    alarm(LONGEST_RUN);
    if (chdir(strFolder.c_str()) == 0) execve(vpszArgument[0], vpszArgument.data(), vpszVariable.data());
    _exit(127);
}

int Wait(pid_t nProcess) {
    int nStatus = 0;
    if (waitpid(nProcess, &nStatus, 0) != nProcess) throw std::runtime_error("the process is gone");
    return WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : 1000 + WTERMSIG(nStatus);
}

// A terminal whose program has ended answers with an error instead of an end.
std::string ReadAll(int hFile) {
    std::string strAll;
    char ab[4096];
    for (ssize_t n; (n = read(hFile, ab, sizeof ab)) > 0;) strAll.append(ab, static_cast<size_t>(n));
    return strAll;
}

std::string ReadUntil(int hFile, std::string const& strEnd) {
    std::string strAll;
    for (char c; strAll.find(strEnd) == std::string::npos && read(hFile, &c, 1) == 1;) strAll += c;
    return strAll;
}

bool ReadSome(int hFile, int nMilliseconds, std::string& strAll) {
    pollfd file = {hFile, POLLIN, 0};
    char ab[4096];
    ssize_t const n = poll(&file, 1, nMilliseconds) == 1 ? read(hFile, ab, sizeof ab) : 0;
    if (n > 0) strAll.append(ab, static_cast<size_t>(n));
    return n > 0;
}

void WriteAll(int hFile, std::string const& strText) {
    if (write(hFile, strText.data(), strText.size()) != static_cast<ssize_t>(strText.size()))
        throw std::runtime_error("the program does not take its input");
}
