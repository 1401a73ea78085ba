// ManPage.h - the sections of a man page that tell of commands and options, in scdoc's form.
#ifndef QEADRS_OPTIONS_MANPAGE_H
#define QEADRS_OPTIONS_MANPAGE_H

#include "options/OptionTable.h"

#include <iosfwd>

namespace qe {

// What all commands take alike is told once, in a section of its own. REQUIRES: there is a command.
void PrintManSections(CProgram const& program, std::ostream& out);

} // namespace qe

#endif
