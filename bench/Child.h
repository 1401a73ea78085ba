// Child.h - runs commands and tells what they took.
//
//   CChildRunner runner;                                     // first thing in main
//   CChildUsage usage = runner.Run({"/usr/bin/true"});       // usage.nPeakKb: its peak memory
//
// A process begins with the peak memory of the one that it was forked from, and a benchmark holds far more than a
// compiler needs. So the commands are started by a small process, forked before any data was read.
#ifndef QEADRS_BENCH_CHILD_H
#define QEADRS_BENCH_CHILD_H

#include <string>
#include <vector>

struct CChildUsage {
    int nStatus;  // as wait4 gives it: 0 is success
    long nPeakKb; // ru_maxrss
};

class CChildRunner {
  public:
    CChildRunner(); // throws std::system_error
    ~CChildRunner();
    CChildRunner(CChildRunner const&) = delete;
    CChildRunner& operator=(CChildRunner const&) = delete;

    // Runs a program to its end; throws std::runtime_error when that end is not exit status 0.
    // REQUIRES: no argument is empty.
    CChildUsage Run(std::vector<std::string> const& vArgument) const;

  private:
    int m_nSocket;
    int m_nProcess;
};

#endif
