// Options.h - the commands of `qeadrs-dic` and their options, each told once: the parser, the help, the man page and
// the completions all come from here.
#ifndef QEADRS_BUILDER_OPTIONS_H
#define QEADRS_BUILDER_OPTIONS_H

#include "builder/BuildCommand.h"
#include "builder/Check.h"
#include "builder/DictionaryFile.h"
#include "builder/Fetch.h"
#include "builder/ReportCommand.h"

#include <cstddef>
#include <string>

namespace CLI {
class App;
}

namespace qe {

struct CShowOptions {
    std::string strFile;
    unsigned nLevel = LEVEL_OFFICE;
    size_t nLimit = CCheckReport::MOST_TOLD;
    bool bJson = false;
};

struct COptions {
    CBuildOptions build;
    CFetchOptions fetch;
    CShowOptions show;
    CReportOptions report;
};

// When the program's arguments are parsed, the command among them is run; a check that fails clears bSound.
// REQUIRES: options and bSound live as long as the program's parser.
void AddCommands(CLI::App& app, COptions& options, bool& bSound);

} // namespace qe

#endif
