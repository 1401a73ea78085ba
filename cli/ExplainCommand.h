// ExplainCommand.h - `qeadrs explain`: how addresses are read, step by step.
#ifndef QEADRS_CLI_EXPLAINCOMMAND_H
#define QEADRS_CLI_EXPLAINCOMMAND_H

#include "cli/Failure.h"
#include "cli/Output.h"

#include <string>
#include <vector>

namespace qe {

struct CExplainOptions {
    std::vector<std::string> vText; // none: one per line from standard input
};

// Prints the steps, the answer and why it is as sure as it is. EXIT_NOT_FOUND when `qeadrs addr` would find nothing.
// Throws CFailure when it cannot go on.
EExit RunExplain(CExplainOptions const& options, CCommonOptions const& common);

} // namespace qe

#endif
