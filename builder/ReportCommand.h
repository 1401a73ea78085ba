// ReportCommand.h - `qeadrs-dic report`: how much of its sources a dictionary gives back.
#ifndef QEADRS_BUILDER_REPORTCOMMAND_H
#define QEADRS_BUILDER_REPORTCOMMAND_H

#include <string>
#include <vector>

namespace qe {

struct CReportOptions {
    std::string strFile, strTowns, strOffices, strMisses;
    std::vector<std::string> vPrevious;
    bool bJson = false;
    bool bText = false;
};

// Prints the figures, and writes the misses into their file. With bText the figures are those of addresses as people
// write them, and false is returned when one of them is below what it must reach; true in all other cases. Throws when
// a file cannot be read or written.
bool RunReport(CReportOptions const& options);

} // namespace qe

#endif
