// BrowseCommand.h - `qeadrs browse`: the prefectures, the cities of one, the towns of a city, one town's addresses.
#ifndef QEADRS_CLI_BROWSECOMMAND_H
#define QEADRS_CLI_BROWSECOMMAND_H

#include "cli/Failure.h"
#include "cli/Output.h"

#include <string>
#include <vector>

namespace qe {

struct CBrowseOptions {
    std::vector<std::string> vPath; // prefecture, city, town: each a number, a name or its beginning
    bool bLines = false;            // the lines for a screen instead of the next level
    bool bSort = false;
    bool bKana = false;
};

// Prints the level below the path. Without a path on a terminal: lets the user pick, and prints the addresses of the
// town that was picked. Throws CFailure when it cannot go on.
EExit RunBrowse(CBrowseOptions const& options, CCommonOptions const& common);

} // namespace qe

#endif
