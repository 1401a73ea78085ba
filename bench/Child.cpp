// Child.cpp - the small process that starts commands, and the talk with it: one packet with the arguments, one packet
// with what the command took.
#include "bench/Child.h"

#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <system_error>

namespace {

constexpr size_t MAX_COMMAND = 16384;

CChildUsage RunMeasured(char* pArguments, size_t nBytes) {
    std::vector<char*> vArgument;
    for (char* p = pArguments; p < pArguments + nBytes; p += std::strlen(p) + 1) vArgument.push_back(p);
    vArgument.push_back(nullptr);
    CChildUsage usage = {-1, 0};
    pid_t const nProcess = fork();
    if (nProcess < 0) return usage;
    if (nProcess == 0) {
        execv(vArgument[0], vArgument.data());
        _exit(127);
    }
    struct rusage resources = {};
    while (wait4(nProcess, &usage.nStatus, 0, &resources) < 0 && errno == EINTR) {
    }
    usage.nPeakKb = resources.ru_maxrss;
    return usage;
}

[[noreturn]] void Serve(int nSocket) {
    std::array<char, MAX_COMMAND> szCommand;
    for (;;) {
        ssize_t const nBytes = recv(nSocket, szCommand.data(), szCommand.size(), 0);
        if (nBytes <= 0) _exit(0); // the benchmark has ended
        CChildUsage const usage = RunMeasured(szCommand.data(), static_cast<size_t>(nBytes));
        if (send(nSocket, &usage, sizeof usage, MSG_NOSIGNAL) != ssize_t{sizeof usage}) _exit(1);
    }
}

} // namespace

CChildRunner::CChildRunner() {
    int nEnd[2];
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, nEnd) != 0)
        throw std::system_error(errno, std::generic_category(), "socketpair");
    m_nProcess = fork();
    if (m_nProcess < 0) throw std::system_error(errno, std::generic_category(), "fork");
    if (m_nProcess == 0) {
        close(nEnd[0]);
        Serve(nEnd[1]);
    }
    close(nEnd[1]);
    m_nSocket = nEnd[0];
}

CChildRunner::~CChildRunner() {
    close(m_nSocket);
    waitpid(m_nProcess, nullptr, 0);
}

CChildUsage CChildRunner::Run(std::vector<std::string> const& vArgument) const {
    std::string strPacket;
    for (std::string const& str : vArgument) strPacket.append(str.c_str(), str.size() + 1);
    if (strPacket.size() > MAX_COMMAND) throw std::length_error("command too long: " + vArgument.front());
    CChildUsage usage = {-1, 0};
    if (send(m_nSocket, strPacket.data(), strPacket.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(strPacket.size()) ||
        recv(m_nSocket, &usage, sizeof usage, 0) != ssize_t{sizeof usage})
        throw std::runtime_error("the process that starts commands has gone");
    if (usage.nStatus != 0) throw std::runtime_error(vArgument.front() + " failed");
    return usage;
}
