// qeadrs-dic - the dictionary compiler: compiles, fetches and shows dictionaries.
#include "builder/Error.h"
#include "builder/Options.h"
#include "options/Program.h"

#include <csignal>
#include <exception>
#include <iostream>
#include <new>

#include <CLI/CLI.hpp>

using namespace qe;

namespace {

enum EExit { EXIT_DONE = 0, EXIT_FAILED = 1, EXIT_USAGE = 2 };

constexpr char EXIT_HELP[] =
    "Exit: 0 done, 1 failed, 2 usage. A build that fails leaves the old dictionary untouched.";

void CheckWritten() {
    std::cout.flush();
    if (!std::cout) throw CBuildError("the output cannot be written.");
}

int Run(int nArguments, char** ppszArgument) {
    CLI::App app("compile and inspect postal address dictionaries", "qeadrs-dic");
    SetUpProgram(app, {QEADRS_VERSION, "[FILE]", "", EXIT_HELP});
    COptions options;
    bool bSound = true;
    AddCommands(app, options, bSound);
    try {
        app.parse(nArguments, ppszArgument);
    } catch (CLI::ParseError const& error) {
        if (app.exit(error) != 0) return EXIT_USAGE;
    }
    CheckWritten();
    return bSound ? EXIT_DONE : EXIT_FAILED;
}

} // namespace

int main(int nArguments, char** ppszArgument) {
    std::signal(SIGXFSZ, SIG_IGN); // a file-size limit is reported like a full disk
    try {
        return Run(nArguments, ppszArgument);
    } catch (std::bad_alloc const&) {
        std::cerr << "qeadrs-dic: not enough memory.\n";
    } catch (std::exception const& error) {
        std::cerr << "qeadrs-dic: " << error.what() << '\n';
    }
    return EXIT_FAILED;
}
