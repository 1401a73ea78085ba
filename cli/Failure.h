// Failure.h - why a command ends, and with which exit status.
//
// Commands throw a CFailure; main() prints its text and exits with its status. Nothing else ends the process.
#ifndef QEADRS_CLI_FAILURE_H
#define QEADRS_CLI_FAILURE_H

#include <stdexcept>
#include <string>

namespace qe {

enum EExit : int {
    EXIT_FOUND = 0,
    EXIT_NOT_FOUND = 1,
    EXIT_USAGE = 2,
    EXIT_NO_DICTIONARY = 3,
    EXIT_SYSTEM = 4,
};

// The line of the help that explains them.
constexpr char EXIT_HELP[] = "Exit: 0 found, 1 not found, 2 usage, 3 no dictionary, 4 system error.";

class CFailure : public std::runtime_error {
  public:
    CFailure(EExit nStatus, std::string const& strText) : std::runtime_error(strText), m_nStatus(nStatus) {}
    EExit Status() const { return m_nStatus; }

  private:
    EExit m_nStatus;
};

} // namespace qe

#endif
