// Process.h - runs a program as a user's shell would and keeps what it says.
#ifndef QEADRS_TESTS_CLI_PROCESS_H
#define QEADRS_TESTS_CLI_PROCESS_H

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

// An open descriptor, closed with the object; -1 is none.
class CHandle {
  public:
    CHandle(int h = -1) : m_h(h) {}
    CHandle(CHandle&& other) noexcept : m_h(other.m_h) { other.m_h = -1; }
    CHandle& operator=(CHandle&& other) noexcept;
    ~CHandle();
    operator int() const { return m_h; }

  private:
    int m_h;
};

// A pseudo-terminal that changes nothing: no echo, no CR before LF.
struct CTerminal {
    CTerminal();
    CHandle hMaster; // the test's side
    CHandle hSlave;  // the program's side
};

// A pipe.
struct CPipe {
    CPipe();
    CHandle hRead;
    CHandle hWrite;
};

using CEnvironment = std::map<std::string, std::string>;

// Starts a program with these standard streams (-1: closed) and nothing but this environment, in this folder. With
// bOwnTerminal the terminal that is its standard input becomes its own: it gets the signals of typed keys, of a change
// of size and of a hang-up.
pid_t Start(std::vector<std::string> const& vArgument, CEnvironment const& environment, std::string const& strFolder,
            int hIn, int hOut, int hErr, bool bOwnTerminal = false);

// Waits for the program to end: its exit status, or 1000 and the number of the signal that ended it.
int Wait(pid_t nProcess);

// Everything that comes out of a pipe or a terminal until its other side is closed.
std::string ReadAll(int hFile);

// What comes until strEnd has come; all there was when the other side is closed before.
std::string ReadUntil(int hFile, std::string const& strEnd);

// Appends what has come or comes within so many milliseconds; false when nothing did, and when the other side is closed.
bool ReadSome(int hFile, int nMilliseconds, std::string& strAll);

void WriteAll(int hFile, std::string const& strText);

#endif
