// Options.cpp - one function per command; what a command has to say beyond its options is its footer.
#include "builder/Options.h"

#include "builder/EditionDate.h"

#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <iostream>
#include <string>

#include <CLI/CLI.hpp>

namespace qe {

namespace {

constexpr char BUILD_HELP[] =
    "Give --towns, or --skk for a dictionary of the whole country without readings and without towns that have "
    "changed. The file is written beside the old one, synced, read back and then renamed over it: who has the old "
    "one "
    "open keeps it. What was read, kept, joined and left out is counted on standard output.";

constexpr char FETCH_HELP[] =
    "Gets utf_ken_all.zip and jigyosyo.zip. Both are complete and checked before either replaces an older one; a "
    "transfer that was cut goes on where it ended when the server still has the same file. Prints the path and the "
    "size of each, separated by a tab.";

constexpr char INFO_HELP[] = "Format, edition, source, whether the checksum is right, and how large each table is.";

constexpr char DUMP_HELP[] =
    "One place on a line, indented by its level: level, name, and separated by tabs its reading, postal code and old "
    "code as far as there are any.";

constexpr char CHECK_HELP[] =
    "Tells each violation of a rule: the rule, the table and index, the place concerned, and what is wrong. A file "
    "that "
    "is found sound is safe to query with whatever arguments. Exit status 1: a rule is broken, or the file cannot be "
    "read.";

constexpr char REPORT_HELP[] =
    "Asks the dictionary for every row of the tables and prints how many were answered as the table has them, with "
    "the "
    "reasons of the others. With --text it asks for seeded rows as people write them, and prints beside each figure "
    "what it must reach. Exit status 1: one of these is not reached.";

volatile std::sig_atomic_t bStopped = 0;

extern "C" void OnStopSignal(int) {
    bStopped = 1;
}

CLI::Option* AddPreviousOption(CLI::App& command, std::vector<std::string>& vPrevious) {
    return command
        .add_option("--previous", vPrevious,
                    "an earlier edition of the town table, for addresses that have changed; may be given again, "
                    "oldest first or with the month in each file's name")
        ->type_name("FILE")
        ->expected(1)
        ->take_all()
        ->allow_extra_args(false);
}

void AddBuild(CLI::App& app, CBuildOptions& options) {
    CLI::App* const pBuild = app.add_subcommand("build", "compile a dictionary");
    options.bProgress = isatty(STDERR_FILENO) != 0;
    auto* const pTowns =
        pBuild->add_option("--towns", options.strTowns, "town table: utf_ken_all or ken_all, zip or CSV")
            ->type_name("FILE");
    auto* const pOffices =
        pBuild->add_option("--offices", options.strOffices, "organisation table beside it: jigyosyo, zip or CSV")
            ->type_name("FILE");
    auto* const pSkk =
        pBuild->add_option("--skk", options.strSkk, "folder of SKK-JISYO.zipcode, instead of the tables")
            ->type_name("FOLDER");
    pTowns->excludes(pSkk);
    pOffices->excludes(pSkk)->needs(pTowns);
    AddPreviousOption(*pBuild, options.vPrevious)->needs(pTowns);
    pBuild->add_option("--report", options.strReport, "file for the successors of all towns that are gone")
        ->type_name("FILE");
    pBuild->add_option("-o,--output", options.strOutput, "the dictionary file, replaced as a whole")
        ->type_name("FILE")
        ->required();
    pBuild->add_option("--edition", options.strEdition, "edition date, 2026-05 or 2026-05-29 (default: of the zip)")
        ->type_name("DATE")
        ->check([](std::string const& str) {
            return IsEdition(str) ? "" : "\"" + str + "\" is no edition; write it as 2026-05 or 2026-05-29.";
        });
    pBuild->add_flag("--sample", options.bSample, "mark the dictionary as compiled from sample data");
    pBuild->add_flag("--json", options.bJson, "statistics as one JSON object");
    pBuild->add_flag("-q,--quiet", options.bQuiet, "no statistics");
    pBuild->add_flag("-v,--verbose", options.bVerbose, "name every row that was cut or left out");
    pBuild->add_flag("--progress,!--no-progress", options.bProgress,
                     "say what is being done (default: on a terminal)");
    pBuild->footer(BUILD_HELP);
    pBuild->callback([&options] {
        if (options.strTowns.empty() && options.strSkk.empty()) throw CLI::RequiredError("--towns or --skk");
        RunBuild(options);
    });
}

void AddFetch(CLI::App& app, CFetchOptions& options) {
    CLI::App* const pFetch = app.add_subcommand("fetch", "download the two official files");
    options.bProgress = isatty(STDERR_FILENO) != 0;
    pFetch->add_option("-d,--dir", options.strDir, "folder for the files")->type_name("FOLDER")->required();
    pFetch->add_option("--base", options.strBase, "address to download from instead of the official one")
        ->type_name("URL");
    pFetch
        ->add_option("--tries", options.nTries,
                     "attempts for each file, 1 to 20 (default: " + std::to_string(options.nTries) + ")")
        ->type_name("N")
        ->check(CLI::Range(1, 20));
    pFetch
        ->add_option(
            "--connect-timeout", options.nConnectSeconds,
            "seconds to wait for a connection, 1 to 600 (default: " + std::to_string(options.nConnectSeconds) + ")")
        ->type_name("N")
        ->check(CLI::Range(1, 600));
    pFetch->add_flag("--progress,!--no-progress", options.bProgress, "show progress (default: on a terminal)");
    pFetch->footer(FETCH_HELP);
    pFetch->callback([&options] {
        // An interrupted download cleans up after itself before the program ends.
        options.pStop = &bStopped;
        for (int const nSignal : {SIGHUP, SIGINT, SIGTERM})
            if (std::signal(nSignal, OnStopSignal) == SIG_IGN) std::signal(nSignal, SIG_IGN); // nohup, for one
        for (CFetchedFile const& file : FetchOfficialFiles(options, std::cerr))
            std::cout << file.strPath << '\t' << file.nBytes << '\n';
    });
}

void AddShow(CLI::App& app, CShowOptions& options) {
    CLI::App* const pInfo = app.add_subcommand("info", "header, counts, edition and sizes of a dictionary");
    pInfo->add_option("FILE", options.strFile, "the dictionary")->required();
    pInfo->add_flag("--json", options.bJson, "as one JSON object");
    pInfo->footer(INFO_HELP);
    pInfo->callback([&options] { PrintInfo(CDictionaryFile(options.strFile), options.bJson, std::cout); });
    CLI::App* const pDump = app.add_subcommand("dump", "the tree of a dictionary as text");
    pDump->add_option("FILE", options.strFile, "the dictionary")->required();
    pDump->add_option("--level", options.nLevel, "down to this level: 0 prefecture ... 7 organisation (default)")
        ->type_name("N")
        ->check(CLI::Range(0, 7));
    pDump->footer(DUMP_HELP);
    pDump->callback([&options] { PrintTree(CDictionaryFile(options.strFile), options.nLevel, std::cout); });
}

// Exit status 0: sound; 1: not sound, or it cannot be read.
void AddCheck(CLI::App& app, CShowOptions& options, bool& bSound) {
    CLI::App* const pCheck = app.add_subcommand("check", "whether a dictionary can be trusted");
    pCheck->add_option("FILE", options.strFile, "the dictionary")->required();
    pCheck->add_flag("--json", options.bJson, "the violations and their counts as one JSON object");
    pCheck
        ->add_option("--limit", options.nLimit,
                     "violations told of each rule, 0 for all; all are counted (default: " +
                         std::to_string(options.nLimit) + ")")
        ->type_name("N")
        ->check(CLI::Range(0.0, 1e9, "N"));
    pCheck->footer(CHECK_HELP);
    pCheck->callback([&options, &bSound] {
        CCheckReport const report =
            CheckDictionaryFile(options.strFile, options.nLimit == 0 ? SIZE_MAX : options.nLimit);
        PrintReport(report, options.bJson, std::cout);
        bSound = report.IsSound();
    });
}

// Exit status 1: a figure of --text is not reached.
void AddReport(CLI::App& app, CReportOptions& options, bool& bReached) {
    CLI::App* const pReport = app.add_subcommand("report", "measure a dictionary against the tables of its build");
    pReport->add_option("FILE", options.strFile, "the dictionary")->required();
    pReport->add_option("--towns", options.strTowns, "town table, as for build")->type_name("FILE")->required();
    pReport->add_option("--offices", options.strOffices, "organisation table, as for build")->type_name("FILE");
    auto* const pPrevious = AddPreviousOption(*pReport, options.vPrevious);
    pReport->add_flag("--text", options.bText, "measure addresses as people write them")->excludes(pPrevious);
    pReport->add_option("--misses", options.strMisses, "file for all that was not found as wanted, tab-separated")
        ->type_name("FILE");
    pReport->add_flag("--json", options.bJson, "the figures as one JSON object");
    pReport->footer(REPORT_HELP);
    pReport->callback([&options, &bReached] { bReached = RunReport(options); });
}

} // namespace

void AddCommands(CLI::App& app, COptions& options, bool& bSound) {
    AddBuild(app, options.build);
    AddFetch(app, options.fetch);
    AddShow(app, options.show);
    AddCheck(app, options.show, bSound);
    AddReport(app, options.report, bSound);
}

} // namespace qe
