// FindCommand.h - `qeadrs find`: the addresses that partial texts can stand for.
#ifndef QEADRS_CLI_FINDCOMMAND_H
#define QEADRS_CLI_FINDCOMMAND_H

#include "cli/Failure.h"
#include "cli/Output.h"

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

namespace qe {

struct CFindOptions {
    std::vector<std::string> vText; // none: one per line from standard input
    size_t nLimit = std::numeric_limits<size_t>::max();
    bool bKana = false;
};

// Prints the answers, and remarks with their number on standard error. Throws CFailure when it cannot go on.
EExit RunFind(CFindOptions const& options, CCommonOptions const& common);

} // namespace qe

#endif
