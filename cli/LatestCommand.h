// LatestCommand.h - `qeadrs latest`: addresses in their latest form.
#ifndef QEADRS_CLI_LATESTCOMMAND_H
#define QEADRS_CLI_LATESTCOMMAND_H

#include "cli/Failure.h"
#include "cli/Output.h"

#include <string>
#include <vector>

namespace qe {

struct CLatestOptions {
    std::vector<std::string> vText; // none: one per line from standard input
    bool bExact = false;            // by the interfaces of the library alone
};

// Prints the answers, and remarks on standard error. Throws CFailure when it cannot go on; with bExact an address that
// the API's record cannot hold ends the command before anything is looked up, unless it came from standard input.
EExit RunLatest(CLatestOptions const& options, CCommonOptions const& common);

} // namespace qe

#endif
