// BatchCommand.h - `qeadrs batch`: a filter that looks up one column of many records.
#ifndef QEADRS_CLI_BATCHCOMMAND_H
#define QEADRS_CLI_BATCHCOMMAND_H

#include "cli/BatchAnswer.h"
#include "cli/BatchForm.h"
#include "cli/Failure.h"

#include <cstddef>
#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace qe {

struct CBatchOptions {
    EBatchForm nForm = EBatchForm::Tsv;
    CBatchQuestion question;
    std::string strColumn; // number, or name
    std::string strPrefix; // of the results' names
    bool bHeader = false;
    size_t nJobs = 0; // 0: one for each processor
    std::optional<std::string> strRejects;
    std::optional<std::string> strFile; // none: standard input
    std::optional<std::string> strDic;
    bool bQuiet = false;
    bool bProgress = IsProgressSeen();

    // On a terminal, and not between the lines of the output.
    static bool IsProgressSeen();
};

// Adds the command and its options to the program's parser.
void AddBatch(CLI::App& app, CBatchOptions& options, EExit& nStatus);

// EXIT_FOUND when every record was looked up, whatever came of it; EXIT_NOT_FOUND when some were malformed. Throws
// CFailure when it cannot go on. Ends the process by its signal when one asked for it, or when nobody reads the
// output.
EExit RunBatch(CBatchOptions const& options);

} // namespace qe

#endif
