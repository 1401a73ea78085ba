// ZipCommand.h - `qeadrs zip`: the addresses of postal codes.
#ifndef QEADRS_CLI_ZIPCOMMAND_H
#define QEADRS_CLI_ZIPCOMMAND_H

#include "cli/Failure.h"
#include "cli/Output.h"

#include <string>
#include <vector>

namespace qe {

struct CZipOptions {
    std::vector<std::string> vCode; // none: one per line from standard input
    bool bOld = false;
    bool bCities = false;
    bool bKana = false;
    bool bSort = false;
};

// Prints the answers, and remarks on standard error. Throws CFailure when it cannot go on; a code that cannot be one
// ends the command before anything is looked up, unless it came from standard input.
EExit RunZip(CZipOptions const& options, CCommonOptions const& common);

} // namespace qe

#endif
