// BatchStop.cpp - signals as requests, by a pipe that is polled beside the input.
#include "cli/BatchStop.h"

#include "cli/Failure.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>

namespace qe {

namespace {

constexpr int SIGNALS[] = {SIGINT, SIGTERM, SIGHUP};

std::atomic<int> g_nSignal{0};
std::atomic<int> g_hWake{-1};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler stores them");

void Wake(int hFile) {
    int const nError = errno;
    // A pipe that is full wakes as well.
    if (write(hFile, "", 1) < 0) errno = nError;
}

void End(int nSignal) {
    std::signal(nSignal, SIG_DFL);
    std::raise(nSignal);
}

// The second one need not be the signal that came first: Ctrl-C, and then kill.
void TakeSignal(int nSignal) {
    if (g_nSignal.exchange(nSignal) != 0)
        End(nSignal);
    else
        Wake(g_hWake);
}

} // namespace

CBatchStop::CBatchStop() {
    if (pipe2(m_anPipe, O_CLOEXEC | O_NONBLOCK) != 0) throw CFailure(EXIT_SYSTEM, "no pipe can be made.");
    g_hWake = m_anPipe[1];
    std::signal(SIGPIPE, SIG_IGN);
    for (int const nSignal : SIGNALS) {
        struct sigaction before = {};
        sigaction(nSignal, nullptr, &before);
        if (before.sa_handler == SIG_IGN) continue;
        struct sigaction action = {};
        action.sa_handler = TakeSignal;
        action.sa_flags = 0; // a read or write that waits is not to go on as if nothing had happened
        sigaction(nSignal, &action, nullptr);
    }
}

CBatchStop::~CBatchStop() {
    g_hWake = -1;
    for (int const hFile : m_anPipe) close(hFile);
}

void CBatchStop::Request() {
    Wake(m_anPipe[1]);
}

bool CBatchStop::WaitFor(int hFile) const {
    pollfd aFile[] = {{m_anPipe[0], POLLIN, 0}, {hFile, POLLIN, 0}};
    while (poll(aFile, 2, -1) < 0 && (errno == EINTR || errno == EAGAIN)) {
    }
    return aFile[0].revents == 0;
}

bool CBatchStop::IsReady(int hFile) {
    pollfd file = {hFile, POLLIN, 0};
    return poll(&file, 1, 0) == 1;
}

int CBatchStop::Signal() {
    return g_nSignal;
}

void CBatchStop::EndBySignal() {
    if (g_nSignal != 0) End(g_nSignal);
}

void CBatchStop::EndByClosedPipe() {
    End(SIGPIPE);
}

} // namespace qe
