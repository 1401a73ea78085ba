// qeadrs - looks up Japanese postal addresses: options in, exit status out.
#include "cli/Failure.h"
#include "cli/Options.h"
#include "cli/Output.h"
#include "options/Program.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <exception>
#include <iostream>
#include <new>
#include <string>

#include <CLI/CLI.hpp>

using namespace qe;

namespace {

int Run(int nArguments, char** ppszArgument) {
    CLI::App app("look up Japanese postal addresses", "qeadrs");
    SetUpProgram(app, {QEADRS_VERSION, "[TEXT...]", "(no TEXT: one per line from standard input)", EXIT_HELP});
    COptions options;
    EExit nStatus = EXIT_FOUND;
    AddCommands(app, options, nStatus);
    try {
        app.parse(nArguments, ppszArgument);
    } catch (CLI::ParseError const& error) {
        if (app.exit(error) != 0) nStatus = EXIT_USAGE;
    }
    CheckWritten(std::cout);
    return nStatus;
}

// A program started without one of its three standard streams must not get the dictionary in that place. What is put
// there cannot be used in the stream's direction, so that the lack shows.
void OccupyStandardStreams() {
    while (true) {
        int const hFile = open("/dev/null", O_RDWR);
        if (hFile > STDERR_FILENO) close(hFile);
        if (hFile > STDERR_FILENO || hFile < 0) return;
        int const hUseless = open("/dev/null", hFile == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        dup2(hUseless, hFile);
        close(hUseless);
    }
}

} // namespace

int main(int nArguments, char** ppszArgument) {
    std::signal(SIGXFSZ, SIG_IGN); // a file-size limit is reported like a full disk
    OccupyStandardStreams();
    try {
        return Run(nArguments, ppszArgument);
    } catch (CFailure const& failure) {
        std::cerr << "qeadrs: " << failure.what() << '\n';
        return failure.Status();
    } catch (std::bad_alloc const&) {
        std::cerr << "qeadrs: not enough memory.\n";
    } catch (std::exception const& error) {
        std::cerr << "qeadrs: " << error.what() << '\n';
    }
    return EXIT_SYSTEM;
}
