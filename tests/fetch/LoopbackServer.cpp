#include "tests/fetch/LoopbackServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <sstream>
#include <stdexcept>

namespace {

// Every wait is this short, so that the destructor's wish to stop is soon seen.
constexpr int poll_milliseconds = 20;

std::string Small(std::string str) {
    std::transform(str.begin(), str.end(), str.begin(),
                   [](unsigned char c) { return static_cast<char>(tolower(c)); });
    return str;
}

} // namespace

std::string CRequest::Header(std::string const& strName) const {
    auto const it = headers.find(strName);
    return it == headers.end() ? "" : it->second;
}

CLoopbackServer::CLoopbackServer() : m_hListen(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t nSize = sizeof(address);
    auto* const pAddress = reinterpret_cast<sockaddr*>(&address);
    if (m_hListen < 0 || bind(m_hListen, pAddress, nSize) != 0 || listen(m_hListen, 16) != 0 ||
        getsockname(m_hListen, pAddress, &nSize) != 0)
        throw std::runtime_error("no socket on 127.0.0.1");
    m_nPort = ntohs(address.sin_port);
    m_thread = std::thread([this] { Serve(); });
}

CLoopbackServer::~CLoopbackServer() {
    m_bStop = true;
    m_thread.join();
    close(m_hListen);
}

void CLoopbackServer::On(std::string const& strPath, Handler handler) {
    std::lock_guard<std::mutex> const lock(m_mutex);
    m_handlers[strPath] = std::move(handler);
}

std::vector<CRequest> CLoopbackServer::Requests(std::string const& strPath) const {
    std::lock_guard<std::mutex> const lock(m_mutex);
    std::vector<CRequest> v;
    std::copy_if(m_vRequests.begin(), m_vRequests.end(), std::back_inserter(v),
                 [&](CRequest const& request) { return request.strPath == strPath; });
    return v;
}

void CLoopbackServer::Serve() {
    while (!m_bStop) {
        pollfd wait{m_hListen, POLLIN, 0};
        if (poll(&wait, 1, poll_milliseconds) <= 0) continue;
        int const hPeer = accept4(m_hListen, nullptr, nullptr, SOCK_CLOEXEC);
        if (hPeer < 0) continue;
        Answer(hPeer);
        close(hPeer);
    }
}

void CLoopbackServer::Answer(int hPeer) {
    CRequest request;
    if (ReadRequest(hPeer, request)) Send(hPeer, Decide(request));
}

bool CLoopbackServer::ReadRequest(int hPeer, CRequest& request) const {
    std::string str;
    while (str.find("\r\n\r\n") == std::string::npos) {
        pollfd wait{hPeer, POLLIN, 0};
        if (m_bStop) return false;
        if (poll(&wait, 1, poll_milliseconds) <= 0) continue;
        char sz[4096];
        ssize_t const n = recv(hPeer, sz, sizeof(sz), 0);
        if (n <= 0) return false;
        str.append(sz, static_cast<size_t>(n));
    }
    std::istringstream in(str);
    std::string strMethod, strLine;
    in >> strMethod >> request.strPath;
    std::getline(in, strLine);
    while (std::getline(in, strLine) && strLine.size() > 1) {
        size_t const nColon = std::min(strLine.find(": "), strLine.size() - 1);
        request.headers[Small(strLine.substr(0, nColon))] = strLine.substr(nColon + 2, strLine.size() - nColon - 3);
    }
    return strMethod == "GET";
}

CReply CLoopbackServer::Decide(CRequest& request) {
    std::lock_guard<std::mutex> const lock(m_mutex);
    request.nAsked = 1 + static_cast<int>(std::count_if(m_vRequests.begin(), m_vRequests.end(),
                                                        [&](auto const& r) { return r.strPath == request.strPath; }));
    m_vRequests.push_back(request);
    auto const it = m_handlers.find(request.strPath);
    if (it != m_handlers.end()) return it->second(request);
    CReply reply;
    reply.strStatus = "404 Not Found";
    reply.strBody = "<html>There is no such page.</html>";
    return reply;
}

void CLoopbackServer::Send(int hPeer, CReply const& reply) const {
    if (reply.bSilent) return WaitForHangUp(hPeer);
    if (reply.strRaw.empty())
        SendAnswer(hPeer, reply);
    else
        SendAll(hPeer, reply.strRaw);
    // Closing with unread bytes would reset the connection and could destroy what is still on its way.
    if (!reply.bStall) shutdown(hPeer, SHUT_WR);
    WaitForHangUp(hPeer);
}

void CLoopbackServer::SendAnswer(int hPeer, CReply const& reply) const {
    std::string strHead = "HTTP/1.1 " + reply.strStatus + "\r\nConnection: close\r\n";
    for (std::string const& strHeader : reply.vHeaders) strHead += strHeader + "\r\n";
    if (reply.bLength && !reply.bEndless)
        strHead += "Content-Length: " + std::to_string(reply.strBody.size()) + "\r\n";
    if (!SendAll(hPeer, strHead + "\r\n")) return;
    while (SendAll(hPeer, reply.strBody.substr(0, reply.nCutAfter)) && reply.bEndless) {
    }
}

bool CLoopbackServer::SendAll(int hPeer, std::string const& strBytes) const {
    size_t nSent = 0;
    while (nSent < strBytes.size()) {
        pollfd wait{hPeer, POLLOUT, 0};
        if (m_bStop) return false;
        if (poll(&wait, 1, poll_milliseconds) <= 0) continue;
        ssize_t const n = send(hPeer, strBytes.data() + nSent, strBytes.size() - nSent, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (n < 0) return false;
        nSent += static_cast<size_t>(n);
    }
    return !m_bStop;
}

void CLoopbackServer::WaitForHangUp(int hPeer) const {
    while (!m_bStop) {
        pollfd wait{hPeer, POLLIN, 0};
        if (poll(&wait, 1, poll_milliseconds) <= 0) continue;
        char sz[4096];
        if (recv(hPeer, sz, sizeof(sz), 0) <= 0) return;
    }
}
