// Help.h - the help of a program and of its commands, each on a screen.
#ifndef QEADRS_OPTIONS_HELP_H
#define QEADRS_OPTIONS_HELP_H

#include "options/OptionTable.h"

#include <iosfwd>
#include <string>

namespace qe {

// Lines of at most 80 columns.
void PrintHelp(CProgram const& program, std::ostream& out);

// Lines of at most 100 columns.
void PrintHelp(CProgram const& program, CCommandEntry const& command, std::ostream& out);

} // namespace qe

#endif
