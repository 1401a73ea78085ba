// BatchStop.h - the ways in which a batch ends before its input does. Asked to end, it leaves whole lines behind, but
// for one of more than 1,000,000 bytes: its pieces are written as they come.
//
//   CBatchStop stop;                             // from now on Ctrl-C is a request
//   if (!stop.WaitFor(STDIN_FILENO)) ...         // somebody wants it to end: read no more, finish what was read
//   stop.EndBySignal();                          // and then end as if the signal had not been caught
//
// Signals  SIGINT, SIGTERM and SIGHUP ask once; a second one, the same or another, ends the process at once. One that
//          the caller has had ignored (nohup, a job in the background) stays ignored. SIGPIPE is ignored: a closed
//          pipe is seen by the one who writes.
// Threads  Request may be called by any thread.
// One only A process has one set of signal handlers: do not make a second object while one lives.
#ifndef QEADRS_CLI_BATCHSTOP_H
#define QEADRS_CLI_BATCHSTOP_H

namespace qe {

class CBatchStop {
  public:
    // Throws CFailure when there is no descriptor left.
    CBatchStop();
    ~CBatchStop();
    CBatchStop(CBatchStop const&) = delete;
    CBatchStop& operator=(CBatchStop const&) = delete;

    void Request();

    // Waits until the file can be read without waiting; false when the batch is to end instead.
    bool WaitFor(int hFile) const;
    // Whether it can be read at once.
    static bool IsReady(int hFile);

    // The signal that asked, 0 when none did.
    static int Signal();
    // Ends the process by that signal, so that a shell sees it; does nothing when there was none.
    static void EndBySignal();
    // Ends it as writing to the closed pipe would have.
    static void EndByClosedPipe();

  private:
    int m_anPipe[2]; // what a signal writes wakes whoever waits
};

} // namespace qe

#endif
