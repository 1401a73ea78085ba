// Completion.h - completion scripts for three shells: commands, their options, files, and the words of an option.
//
// The scripts stand on their own: bash's needs no package of helper functions.
#ifndef QEADRS_OPTIONS_COMPLETION_H
#define QEADRS_OPTIONS_COMPLETION_H

#include "options/OptionTable.h"

#include <iosfwd>

namespace qe {

void PrintBash(CProgram const& program, std::ostream& out);
void PrintZsh(CProgram const& program, std::ostream& out);
void PrintFish(CProgram const& program, std::ostream& out);

} // namespace qe

#endif
