// CLoopbackServer - an HTTP server on 127.0.0.1 that misbehaves on request.
//
//   CLoopbackServer server;
//   server.On("/utf/zip/utf_ken_all.zip", [](CRequest const& request) {
//       CReply reply = WholeFile(strZip);
//       if (request.nAsked == 1) reply.nCutAfter = 1000;         // only the first time
//       return reply;
//   });
//   server.Base();                                               // "http://127.0.0.1:41234/"
//
// It answers one connection after the other and closes each; a path without a handler is a 404. Handlers run on the
// server's thread, one at a time.
#ifndef QEADRS_TESTS_FETCH_LOOPBACKSERVER_H
#define QEADRS_TESTS_FETCH_LOOPBACKSERVER_H

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

struct CRequest {
    std::string strPath;
    std::map<std::string, std::string> headers; // names in small letters
    int nAsked = 0;                             // 1 the first time this path is asked for

    std::string Header(std::string const& strName) const;
};

struct CReply {
    std::string strStatus = "200 OK";
    std::vector<std::string> vHeaders; // without Content-Length
    std::string strBody;
    bool bLength = true;                        // send a Content-Length; without one the end is the end
    size_t nCutAfter = static_cast<size_t>(-1); // bytes of the body that are sent before the connection closes
    bool bStall = false;                        // having sent that much, keep the connection open and silent
    bool bEndless = false;                      // the body again and again, no Content-Length
    bool bSilent = false;                       // no answer at all
    std::string strRaw;                         // when not empty: these bytes instead of an answer
};

class CLoopbackServer {
  public:
    using Handler = std::function<CReply(CRequest const&)>;

    CLoopbackServer();
    ~CLoopbackServer();
    CLoopbackServer(CLoopbackServer const&) = delete;
    CLoopbackServer& operator=(CLoopbackServer const&) = delete;

    void On(std::string const& strPath, Handler handler);
    std::string Base() const { return "http://127.0.0.1:" + std::to_string(m_nPort) + "/"; }
    std::vector<CRequest> Requests(std::string const& strPath) const; // so far, in order

  private:
    void Serve();
    void Answer(int hPeer);
    bool ReadRequest(int hPeer, CRequest& request) const;
    CReply Decide(CRequest& request);
    void Send(int hPeer, CReply const& reply) const;
    void SendAnswer(int hPeer, CReply const& reply) const;
    bool SendAll(int hPeer, std::string const& strBytes) const;
    void WaitForHangUp(int hPeer) const;

    int m_hListen = -1;
    int m_nPort = 0;
    mutable std::mutex m_mutex;
    std::map<std::string, Handler> m_handlers;
    std::vector<CRequest> m_vRequests;
    std::atomic<bool> m_bStop{false};
    std::thread m_thread;
};

#endif
