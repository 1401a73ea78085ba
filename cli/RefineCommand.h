// RefineCommand.h - `qeadrs refine`: the tree of all that a part of a code or of an address can mean.
#ifndef QEADRS_CLI_REFINECOMMAND_H
#define QEADRS_CLI_REFINECOMMAND_H

#include "cli/Failure.h"
#include "cli/Output.h"

#include <optional>
#include <string>

namespace qe {

struct CRefineOptions {
    std::optional<std::string> strCode; // --code
    std::optional<std::string> strAddr; // --addr; not looked at beside a code
    int nLevels = 3;                    // 1 prefectures only, 2 and their cities, 3 all
};

// Prints the tree, and remarks with its size on standard error. Throws CFailure when it cannot go on.
EExit RunRefine(CRefineOptions const& options, CCommonOptions const& common);

} // namespace qe

#endif
