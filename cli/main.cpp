// qeadrs - looks up Japanese postal addresses: options in, exit status out.
#include "cli/Failure.h"
#include "cli/Output.h"
#include "cli/ZipCommand.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <exception>
#include <iostream>
#include <memory>
#include <new>
#include <string>

#include <CLI/CLI.hpp>

using namespace qe;

namespace {

constexpr char ZIP_HELP[] =
    "Codes may be written with 〒, hyphens, blanks and full-width digits; 1 to 7 digits are a leading part.\n"
    "On a terminal the answer is a table; elsewhere tab-separated lines that always hold: postal code, old code,\n"
    "prefecture, city, town, area, building, floor, organisation (with --kana also the readings of all but codes\n"
    "and floor; with --cities the code asked for, prefecture, city). In JSON a level that is absent is null.\n";

// The help in our own words: a command is introduced by its name, and options are not followed by their relations.
class CHelp : public CLI::Formatter {
  public:
    std::string make_description(CLI::App const* pApp) const override {
        bool const bCommand = pApp->get_parent() != nullptr;
        return (bCommand ? "qeadrs " + pApp->get_name() + " - " : "qeadrs - ") + pApp->get_description() + '\n';
    }
    std::string make_usage(CLI::App const* pApp, std::string) const override {
        if (pApp->get_parent() == nullptr)
            return "Usage: qeadrs COMMAND [OPTION...] [TEXT...]     (no TEXT: one per line from standard input)\n";
        return "Usage: qeadrs " + pApp->get_name() + " [OPTION...] [CODE...]\n";
    }
    std::string make_option_opts(CLI::Option const* pOption) const override {
        return pOption->get_type_name().empty() ? "" : " " + pOption->get_type_name();
    }
};

// What every command takes.
void AddCommon(CLI::App& command, CCommonOptions& common) {
    command
        .add_option("-d,--dic", common.strDic, "dictionary, or the folder of a qeadrs.dic (default: the profile's)")
        ->type_name("FILE");
    auto* const pJson = command.add_flag("--json", common.bJson, "one JSON object per line");
    command.add_flag("--header", common.bHeader, "a first line that names the tab-separated columns")
        ->excludes(pJson);
    command.add_flag("-q,--quiet", common.bQuiet, "no remarks, errors only");
}

void AddZip(CLI::App& app, CZipOptions& options, CCommonOptions& common, EExit& nStatus) {
    CLI::App* const pZip = app.add_subcommand("zip", "addresses of postal codes")->group("Commands");
    pZip->add_option("CODE", options.vCode,
                     "postal codes or leading parts of them (none: one per line from standard input)")
        ->type_name("");
    auto* const pOld = pZip->add_flag("--old", options.bOld, "the codes are old ones, of 3 or 5 digits");
    auto* const pCities = pZip->add_flag("--cities", options.bCities, "only the prefecture and city, each once");
    pZip->add_flag("--kana", options.bKana, "readings, too")->excludes(pCities);
    // A lookup by old code is in dictionary order, whatever the sort type.
    pZip->add_flag("--sort", options.bSort, "from 北海道 to 沖縄県, then by name (default: dictionary order)")
        ->excludes(pOld);
    AddCommon(*pZip, common);
    pZip->footer(std::string(ZIP_HELP) + EXIT_HELP);
    pZip->callback([&options, &common, &nStatus] { nStatus = RunZip(options, common); });
}

int Run(int nArguments, char** ppszArgument) {
    CLI::App app("look up Japanese postal addresses", "qeadrs");
    app.formatter(std::make_shared<CHelp>());
    app.get_formatter()->label("Positionals", "Texts");
    app.set_help_flag("-h,--help", "this help");
    app.require_subcommand(1);
    app.set_version_flag("--version", QEADRS_VERSION, "version of the program");
    app.footer(std::string("`qeadrs COMMAND --help` explains a command.\n") + EXIT_HELP);
    app.failure_message([](CLI::App const*, CLI::Error const& error) {
        return std::string("qeadrs: ") + error.what() + "\nRun `qeadrs --help` or `qeadrs COMMAND --help`.\n";
    });
    CCommonOptions common;
    CZipOptions zipOptions;
    EExit nStatus = EXIT_FOUND;
    AddZip(app, zipOptions, common, nStatus);
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
