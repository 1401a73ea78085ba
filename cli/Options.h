// Options.h - the commands of `qeadrs` and their options, each told once: the parser, the help, the man page and the
// completions all come from here.
#ifndef QEADRS_CLI_OPTIONS_H
#define QEADRS_CLI_OPTIONS_H

#include "cli/AddrCommand.h"
#include "cli/BatchCommand.h"
#include "cli/BrowseCommand.h"
#include "cli/ExplainCommand.h"
#include "cli/Failure.h"
#include "cli/FindCommand.h"
#include "cli/LatestCommand.h"
#include "cli/Output.h"
#include "cli/RefineCommand.h"
#include "cli/ZipCommand.h"

namespace CLI {
class App;
}

namespace qe {

struct COptions {
    CCommonOptions common;
    CZipOptions zip;
    CAddrOptions addr;
    CLatestOptions latest;
    CExplainOptions explain;
    CFindOptions find;
    CBrowseOptions browse;
    CRefineOptions refine;
    CBatchOptions batch;
};

// When the program's arguments are parsed, the command among them is run and its status stored.
// REQUIRES: options and nStatus live as long as the program's parser.
void AddCommands(CLI::App& app, COptions& options, EExit& nStatus);

} // namespace qe

#endif
