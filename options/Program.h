// Program.h - what the programs do alike with their options.
//
//   CLI::App app("look up Japanese postal addresses", "qeadrs");
//   SetUpProgram(app, {"1.0.0", "[TEXT...]", "", "Exit: 0 found, ..."});
//   ... app.add_subcommand ... app.parse ...
//
// Every program has -h, --help, for itself and for each command, and --version; what is wrong with its arguments it
// tells behind its name, with a second line that leads to the help. The hidden option --generate WORD prints what is
// made of its options when it is built: "bash", "zsh" or "fish" a completion script, "man" the sections of its man
// page that tell of commands and options, in scdoc's form.
#ifndef QEADRS_OPTIONS_PROGRAM_H
#define QEADRS_OPTIONS_PROGRAM_H

#include "options/OptionTable.h"

namespace qe {

// REQUIRES: no command added yet, since commands take over what is set here.
void SetUpProgram(CLI::App& app, CProgramStyle const& style);

} // namespace qe

#endif
