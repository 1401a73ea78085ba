// qeadrs - looks up Japanese postal addresses: options in, exit status out.
#include "cli/AddrCommand.h"
#include "cli/BrowseCommand.h"
#include "cli/Failure.h"
#include "cli/FindCommand.h"
#include "cli/LatestCommand.h"
#include "cli/Output.h"
#include "cli/RefineCommand.h"
#include "cli/Text.h"
#include "cli/ZipCommand.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include <CLI/CLI.hpp>

using namespace qe;

namespace {

constexpr char ZIP_HELP[] =
    "Codes may be written with 〒, hyphens, blanks and full-width digits; 1 to 7 digits are a leading part.\n"
    "On a terminal the answer is a table; elsewhere tab-separated lines that always hold: postal code, old code,\n"
    "prefecture, city, town, area, building, floor, organisation (with --kana also the readings of all but codes\n"
    "and floor; with --cities the code asked for, prefecture, city). In JSON a level that is absent is null.\n";

constexpr char ADDR_HELP[] =
    "Names are read from the front as the dictionary spells them: prefecture, city, town; the first or the first\n"
    "two may be left out. Columns: postal code, old code, prefecture, city, town, rest (what was not read); with\n"
    "--org the organisation when the code is its own, which needs all three names in the text; with --kana the\n"
    "readings of the three names. An address may have 121 bytes.\n";

constexpr char LATEST_HELP[] =
    "Columns: address (its latest form, whole where the library cuts it after 60 bytes), postal code and old code\n"
    "(still those of the address as it was), changed (\"yes\": prefecture, city or town were replaced; \"no\"),\n"
    "latest code (what `qeadrs addr` answers for the latest form). An address names its town, and may have 121\n"
    "bytes.\n";

constexpr char FIND_HELP[] =
    "A text that begins with a whole prefecture stands for all below the levels that it names, any other one for\n"
    "all below the prefectures and cities whose names it begins. Columns are those of `qeadrs zip`; behind a whole\n"
    "town the area holds the rest of the text. How many there are is remarked on standard error.\n";

constexpr char BROWSE_HELP[] =
    "Without a place on a terminal: pick the prefecture, city and town from lists, typing a part of the name or of "
    "its\n"
    "reading to narrow them. A place is its number, its name or reading, or the one beginning or end of a name that\n"
    "fits a single one. Lists have the columns number (counted from 0, as the library does), name, postal code, old\n"
    "code, superseded (\"yes\": a place of an earlier edition), with --kana the reading; a town's addresses have "
    "those\n"
    "of `qeadrs zip`; --ui has postal code, old code, line, organisation.\n";

constexpr char REFINE_HELP[] =
    "Each prefecture, city and address on a line of its own, indented below what it lies in and sorted by name. An\n"
    "address is its postal code, town and what stands below the town; one that two places of the dictionary refer "
    "to\n"
    "stands there twice. A code may be written as for `qeadrs zip`, an address as for `qeadrs find`, in 127 bytes;\n"
    "names end after 60 bytes. A new city of a prefecture that is not the last one so far is listed there, but its\n"
    "addresses below the last city of the last prefecture: so it is in the interface's tree. In JSON an object per\n"
    "prefecture. How large the tree is is remarked on standard error.\n";

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
        // Each text needs the one before it: "[PREFECTURE [CITY]]".
        std::string strTexts, strEnd;
        for (CLI::Option const* pText : pApp->get_options([](CLI::Option const* p) { return p->get_positional(); })) {
            strTexts += " [" + pText->get_single_name() + (pText->get_items_expected_max() > 1 ? "..." : "");
            strEnd += ']';
        }
        return "Usage: qeadrs " + pApp->get_name() + " [OPTION...]" + strTexts + strEnd + '\n';
    }
    std::string make_option_opts(CLI::Option const* pOption) const override {
        return pOption->get_type_name().empty() ? "" : " " + pOption->get_type_name();
    }
};

// What every command takes.
void AddBasic(CLI::App& command, CCommonOptions& common) {
    command
        .add_option("-d,--dic", common.strDic, "dictionary, or the folder of a qeadrs.dic (default: the profile's)")
        ->type_name("FILE");
    command.add_flag("--json", common.bJson, "one JSON object per line");
    command.add_flag("-q,--quiet", common.bQuiet, "no remarks, errors only");
}

// What every command takes that answers in columns.
void AddCommon(CLI::App& command, CCommonOptions& common) {
    AddBasic(command, common);
    command.add_flag("--header", common.bHeader, "a first line that names the tab-separated columns")
        ->excludes(command.get_option("--json"));
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

void AddAddr(CLI::App& app, CAddrOptions& options, CCommonOptions& common, EExit& nStatus) {
    CLI::App* const pAddr = app.add_subcommand("addr", "postal codes of addresses")->group("Commands");
    pAddr->add_option("TEXT", options.vText, "addresses (none: one per line from standard input)")->type_name("");
    pAddr->add_option("--org", options.strOffice, "organisation there, as its name begins")->type_name("NAME");
    pAddr->add_flag("--kana", options.bKana, "readings, too");
    AddCommon(*pAddr, common);
    pAddr->footer(std::string(ADDR_HELP) + EXIT_HELP);
    pAddr->callback([&options, &common, &nStatus] { nStatus = RunAddr(options, common); });
}

void AddLatest(CLI::App& app, CLatestOptions& options, CCommonOptions& common, EExit& nStatus) {
    CLI::App* const pLatest = app.add_subcommand("latest", "old addresses in their latest form")->group("Commands");
    pLatest->add_option("TEXT", options.vText, "addresses (none: one per line from standard input)")->type_name("");
    AddCommon(*pLatest, common);
    pLatest->footer(std::string(LATEST_HELP) + EXIT_HELP);
    pLatest->callback([&options, &common, &nStatus] { nStatus = RunLatest(options, common); });
}

// Why the text is no number, "" when it is one.
std::string CheckCount(std::string const& strText) {
    bool const bNumber = !strText.empty() && strText.find_first_not_of("0123456789") == std::string::npos;
    return bNumber ? "" : Quote(strText) + " is no number of addresses.";
}

// A number beyond all numbers of addresses is the largest one. REQUIRES: digits only.
size_t ReadCount(std::string const& strText) {
    return static_cast<size_t>(std::min<unsigned long long>(std::strtoull(strText.c_str(), nullptr, 10), SIZE_MAX));
}

void AddFind(CLI::App& app, CFindOptions& options, CCommonOptions& common, EExit& nStatus) {
    CLI::App* const pFind =
        app.add_subcommand("find", "addresses that partial texts can stand for")->group("Commands");
    pFind->add_option("TEXT", options.vText, "beginnings of addresses (none: one per line from standard input)")
        ->type_name("");
    pFind
        ->add_option_function<std::string>(
            "--limit", [&options](std::string const& strText) { options.nLimit = ReadCount(strText); },
            "print the first N of each text only; 0 just counts")
        ->check(CheckCount)
        ->type_name("N");
    pFind->add_flag("--kana", options.bKana, "readings, too");
    AddCommon(*pFind, common);
    pFind->footer(std::string(FIND_HELP) + EXIT_HELP);
    pFind->callback([&options, &common, &nStatus] { nStatus = RunFind(options, common); });
}

void AddBrowse(CLI::App& app, CBrowseOptions& options, CCommonOptions& common, EExit& nStatus) {
    CLI::App* const pBrowse =
        app.add_subcommand("browse", "prefectures, cities and towns, level by level")->group("Commands");
    for (auto const& [strName, strHelp] :
         {std::pair("PREFECTURE", "list its cities (none: all prefectures)"), std::pair("CITY", "list its towns"),
          std::pair("TOWN", "print the addresses of the town")})
        pBrowse
            ->add_option_function<std::string>(
                strName, [&options](std::string const& strText) { options.vPath.push_back(strText); }, strHelp)
            ->type_name("");
    pBrowse->add_flag("--ui", options.bLines, "a city's or town's addresses as lines for a screen");
    pBrowse->add_flag("--sort", options.bSort, "cities and towns by name (default: dictionary order)");
    pBrowse->add_flag("--kana", options.bKana, "readings, too");
    AddCommon(*pBrowse, common);
    pBrowse->footer(std::string(BROWSE_HELP) + EXIT_HELP);
    pBrowse->callback([&options, &common, &nStatus] { nStatus = RunBrowse(options, common); });
}

void AddRefine(CLI::App& app, CRefineOptions& options, CCommonOptions& common, EExit& nStatus) {
    CLI::App* const pRefine =
        app.add_subcommand("refine", "tree of what a partial code or address can mean")->group("Commands");
    pRefine->add_option("--code", options.strCode, "beginning of a postal code")->type_name("TEXT");
    pRefine
        ->add_option("--addr", options.strAddr,
                     "beginning of an address, when there is no code (neither: the whole dictionary)")
        ->type_name("TEXT");
    pRefine->add_option("--levels", options.nLevels, "1 prefectures, 2 and cities, 3 and addresses (default)")
        ->check([](std::string const& strText) {
            bool const bRight = strText == "1" || strText == "2" || strText == "3";
            return bRight ? "" : Quote(strText) + " is no number of levels: it is 1, 2 or 3.";
        })
        ->type_name("N");
    AddBasic(*pRefine, common);
    pRefine->footer(std::string(REFINE_HELP) + EXIT_HELP);
    pRefine->callback([&options, &common, &nStatus] { nStatus = RunRefine(options, common); });
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
    CAddrOptions addrOptions;
    CLatestOptions latestOptions;
    CFindOptions findOptions;
    CBrowseOptions browseOptions;
    CRefineOptions refineOptions;
    EExit nStatus = EXIT_FOUND;
    AddZip(app, zipOptions, common, nStatus);
    AddAddr(app, addrOptions, common, nStatus);
    AddLatest(app, latestOptions, common, nStatus);
    AddFind(app, findOptions, common, nStatus);
    AddBrowse(app, browseOptions, common, nStatus);
    AddRefine(app, refineOptions, common, nStatus);
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
