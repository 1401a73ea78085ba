// BuildCommand.h - `qeadrs-dic build`: from source tables to a dictionary file.
#ifndef QEADRS_BUILDER_BUILDCOMMAND_H
#define QEADRS_BUILDER_BUILDCOMMAND_H

#include <string>
#include <vector>

namespace qe {

struct CBuildOptions {
    std::string strTowns, strOffices, strSkk, strOutput, strEdition, strReport;
    std::vector<std::string> vPrevious;
    bool bSample = false;
    bool bJson = false;
    bool bQuiet = false;
    bool bVerbose = false;
    bool bProgress = false;
};

// Prints the statistics. Throws when it fails, and the old dictionary is untouched then.
// REQUIRES: strTowns or strSkk, and strOutput.
void RunBuild(CBuildOptions const& options);

} // namespace qe

#endif
