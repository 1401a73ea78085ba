// qeadrs-dic - the dictionary compiler: compiles, fetches and shows dictionaries.
#include "builder/Check.h"
#include "builder/Compiler.h"
#include "builder/DictionaryFile.h"
#include "builder/Error.h"
#include "builder/Fetch.h"
#include "builder/Measure.h"
#include "builder/ReplaceFile.h"
#include "builder/Skk.h"
#include "builder/Source.h"

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <exception>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

using namespace qe;

namespace {

enum EExit { EXIT_DONE = 0, EXIT_FAILED = 1, EXIT_USAGE = 2 };

struct CBuildOptions {
    std::string strTowns, strOffices, strSkk, strOutput, strEdition, strReport;
    std::vector<std::string> vPrevious;
    bool bSample = false;
    bool bJson = false;
    bool bQuiet = false;
    bool bVerbose = false;
    bool bProgress = isatty(STDERR_FILENO) != 0;
};

volatile std::sig_atomic_t bStopped = 0;

extern "C" void OnStopSignal(int) {
    bStopped = 1;
}

// Says on stderr what is being done; on a terminal only, unless asked for.
class CProgress {
  public:
    explicit CProgress(bool bShown) : m_bShown(bShown) {}
    void Say(std::string const& str) const {
        if (m_bShown) std::cerr << str << std::endl;
    }

  private:
    bool m_bShown;
};

void PrintStatistics(CStatistics const& statistics, CBuildOptions const& options, nlohmann::ordered_json summary) {
    if (options.bVerbose)
        for (std::string const& strRemark : statistics.Remarks()) std::cerr << strRemark << '\n';
    if (options.bJson) {
        for (auto const& [strName, nCount] : statistics.Counts()) summary["counts"][strName] = nCount;
        summary["remarks"] = statistics.Remarks();
        std::cout << summary.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
        return;
    }
    if (options.bQuiet) return;
    for (auto const& [strName, value] : summary.items())
        std::cout << std::left << std::setw(40) << strName << value.get<std::string>() << '\n';
    for (auto const& [strName, nCount] : statistics.Counts()) {
        std::string strLabel = strName;
        std::replace(strLabel.begin(), strLabel.end(), '_', ' ');
        std::cout << std::left << std::setw(40) << strLabel << std::right << std::setw(10) << nCount << '\n';
    }
    if (!statistics.Remarks().empty() && !options.bVerbose)
        std::cout << statistics.Remarks().size() << " remarks on single rows; --verbose lists them.\n";
}

std::string Describe(CSource const& source) {
    return source.Name() + ", " + EncodingName(source.nEncoding) +
           (source.nEdition != 0 ? ", " + EditionText(source.nEdition) : "");
}

// The rows of the official tables into the compiler. Returns the newest edition among the files.
uint32_t AddOfficialTables(CBuildOptions const& options, CProgress const& progress, CCompiler& compiler,
                           CStatistics& statistics, nlohmann::ordered_json& summary) {
    progress.Say("reading " + options.strTowns);
    CSource const towns = ReadSource(options.strTowns);
    summary["towns"] = Describe(towns);
    CTownTable const table = ReadTownTable(towns);
    statistics["town_lines"] = table.nLines;
    statistics["lines_joined"] = table.nJoined;
    compiler.AddTowns(table.vRow, towns.Name());
    if (options.strOffices.empty()) return towns.nEdition;
    progress.Say("reading " + options.strOffices);
    CSource const offices = ReadSource(options.strOffices);
    summary["offices"] = Describe(offices);
    compiler.AddOffices(ReadOfficeTable(offices), offices.Name());
    return std::max(towns.nEdition, offices.nEdition);
}

// The month in a file's name ("ken_all-2015-10.zip" is 201510), 0 when there is none.
unsigned MonthOfName(std::string const& strPath) {
    std::string const strName = std::filesystem::path(strPath).filename().string();
    for (size_t nPos = 0; nPos < strName.size(); ++nPos) {
        std::string strMonth = strName.substr(nPos, 7);
        if (strMonth.size() == 7) strMonth.erase(strMonth[4] == '-' ? 4 : 6, 1);
        if (strMonth.size() != 6 || strMonth.find_first_not_of("0123456789") != std::string::npos) continue;
        auto const nMonth = static_cast<unsigned>(std::stoul(strMonth));
        if (nMonth / 100 >= 1900 && nMonth / 100 < 2100 && nMonth % 100 >= 1 && nMonth % 100 <= 12) return nMonth;
    }
    return 0;
}

// Earlier editions, oldest first: by the months in their names when all have one, else as they were given.
void AddPreviousTables(CBuildOptions const& options, CProgress const& progress, CCompiler& compiler,
                       nlohmann::ordered_json& summary) {
    std::vector<std::string> vPath = options.vPrevious;
    if (std::all_of(vPath.begin(), vPath.end(), MonthOfName))
        std::stable_sort(vPath.begin(), vPath.end(),
                         [](std::string const& a, std::string const& b) { return MonthOfName(a) < MonthOfName(b); });
    for (size_t n = 0; n < vPath.size(); ++n) {
        progress.Say("reading " + vPath[n]);
        CSource const source = ReadSource(vPath[n]);
        summary["previous_" + std::to_string(n + 1)] = Describe(source);
        compiler.AddPrevious(ReadTownTable(source).vRow, source.Name());
    }
}

uint32_t AddSkkTables(CBuildOptions const& options, CProgress const& progress, CCompiler& compiler,
                      CStatistics& statistics, nlohmann::ordered_json& summary) {
    progress.Say("reading " + options.strSkk);
    CSkkTables const tables = ReadSkkTables(options.strSkk);
    summary["towns"] = tables.strTownSource + ", " + EncodingName(EEncoding::EucJis2004);
    if (!tables.strOfficeSource.empty()) summary["offices"] = tables.strOfficeSource;
    statistics["entries_left_out"] = tables.vLeftOut.size();
    for (std::string const& strRemark : tables.vLeftOut) statistics.Remark(strRemark);
    compiler.AddTowns(tables.vTown, tables.strTownSource);
    compiler.AddOffices(tables.vOffice, tables.strOfficeSource);
    return tables.nEdition;
}

void Build(CBuildOptions const& options) {
    CProgress const progress(options.bProgress && !options.bQuiet);
    CStatistics statistics;
    CCompiler compiler(statistics);
    nlohmann::ordered_json summary;
    bool const bSkk = !options.strSkk.empty();
    uint32_t nEdition = (bSkk ? AddSkkTables : AddOfficialTables)(options, progress, compiler, statistics, summary);
    AddPreviousTables(options, progress, compiler, summary);
    if (!options.strEdition.empty()) nEdition = ReadEdition(options.strEdition);
    progress.Say("compiling");
    CImage const image = compiler.Compile(nEdition, bSkk              ? ESource::Skk
                                                    : options.bSample ? ESource::Sample
                                                                      : ESource::Official);
    // The dictionary last: a build that fails leaves the old one untouched.
    if (!options.strReport.empty())
        ReplaceFile(options.strReport, {compiler.Successions().begin(), compiler.Successions().end()});
    progress.Say("writing " + options.strOutput);
    ReplaceFile(options.strOutput, image.vByte);
    summary["edition"] = EditionText(nEdition);
    summary["dictionary"] = options.strOutput;
    PrintStatistics(statistics, options, summary);
}

CLI::Option* AddPreviousOption(CLI::App& command, std::vector<std::string>& vPrevious) {
    return command
        .add_option("--previous", vPrevious,
                    "an earlier edition of the town table, for addresses that have changed; may be given again, "
                    "oldest first or with the month in each file's name")
        ->expected(1)
        ->take_all()
        ->allow_extra_args(false);
}

void AddBuild(CLI::App& app, CBuildOptions& options) {
    CLI::App* const pBuild = app.add_subcommand("build", "compile a dictionary");
    auto* const pTowns =
        pBuild->add_option("--towns", options.strTowns, "town table: utf_ken_all or ken_all, zip or CSV");
    auto* const pOffices =
        pBuild->add_option("--offices", options.strOffices, "organisation table: jigyosyo, zip or CSV");
    auto* const pSkk =
        pBuild->add_option("--skk", options.strSkk, "folder of SKK-JISYO.zipcode, instead of the tables");
    pTowns->excludes(pSkk);
    pOffices->excludes(pSkk)->needs(pTowns);
    AddPreviousOption(*pBuild, options.vPrevious)->needs(pTowns);
    pBuild->add_option("--report", options.strReport, "file for the successors of all towns that are gone");
    pBuild->add_option("-o,--output", options.strOutput, "the dictionary file, replaced as a whole")->required();
    pBuild->add_option("--edition", options.strEdition, "edition date, 2026-05 or 2026-05-29 (default: of the zip)")
        ->check([](std::string const& str) {
            return IsEdition(str) ? "" : "\"" + str + "\" is no edition; write it as 2026-05 or 2026-05-29.";
        });
    pBuild->add_flag("--sample", options.bSample, "mark the dictionary as compiled from sample data");
    pBuild->add_flag("--json", options.bJson, "statistics as one JSON object");
    pBuild->add_flag("-q,--quiet", options.bQuiet, "no statistics");
    pBuild->add_flag("-v,--verbose", options.bVerbose, "name every row that was cut or left out");
    pBuild->add_flag("--progress,!--no-progress", options.bProgress,
                     "say what is being done (default: on a terminal)");
    pBuild->callback([&options] {
        if (options.strTowns.empty() && options.strSkk.empty()) throw CLI::RequiredError("--towns or --skk");
        Build(options);
    });
}

void AddFetch(CLI::App& app, CFetchOptions& options) {
    CLI::App* const pFetch = app.add_subcommand("fetch", "download the two official files");
    options.bProgress = isatty(STDERR_FILENO) != 0;
    pFetch->add_option("-d,--dir", options.strDir, "folder for the files")->required();
    pFetch->add_option("--base", options.strBase, "address to download from instead of the official one");
    pFetch->add_option("--tries", options.nTries, "attempts for each file")->check(CLI::Range(1, 20));
    pFetch->add_option("--connect-timeout", options.nConnectSeconds, "seconds to wait for a connection")
        ->check(CLI::Range(1, 600));
    pFetch->add_flag("--progress,!--no-progress", options.bProgress, "show progress (default: on a terminal)");
    pFetch->callback([&options] {
        // An interrupted download cleans up after itself before the program ends.
        options.pStop = &bStopped;
        for (int const nSignal : {SIGHUP, SIGINT, SIGTERM})
            if (std::signal(nSignal, OnStopSignal) == SIG_IGN) std::signal(nSignal, SIG_IGN); // nohup, for one
        for (CFetchedFile const& file : FetchOfficialFiles(options, std::cerr))
            std::cout << file.strPath << '\t' << file.nBytes << '\n';
    });
}

struct CShowOptions {
    std::string strFile;
    unsigned nLevel = LEVEL_OFFICE;
    size_t nLimit = CCheckReport::MOST_TOLD;
    bool bJson = false;
};

void AddShow(CLI::App& app, CShowOptions& options) {
    CLI::App* const pInfo = app.add_subcommand("info", "header, counts, edition and sizes of a dictionary");
    pInfo->add_option("FILE", options.strFile, "the dictionary")->required();
    pInfo->add_flag("--json", options.bJson, "as one JSON object");
    pInfo->callback([&options] { PrintInfo(CDictionaryFile(options.strFile), options.bJson, std::cout); });
    CLI::App* const pDump = app.add_subcommand("dump", "the tree of a dictionary as text");
    pDump->add_option("FILE", options.strFile, "the dictionary")->required();
    pDump->add_option("--level", options.nLevel, "down to this level: 0 prefecture ... 7 organisation")
        ->check(CLI::Range(0, 7));
    pDump->callback([&options] { PrintTree(CDictionaryFile(options.strFile), options.nLevel, std::cout); });
}

// Exit status 0: sound; 1: not sound, or it cannot be read.
void AddCheck(CLI::App& app, CShowOptions& options, bool& bSound) {
    CLI::App* const pCheck = app.add_subcommand("check", "whether a dictionary can be trusted");
    pCheck->add_option("FILE", options.strFile, "the dictionary")->required();
    pCheck->add_flag("--json", options.bJson, "the violations and their counts as one JSON object");
    pCheck->add_option("--limit", options.nLimit, "violations told of each rule, 0 for all (all are counted)")
        ->check(CLI::Range(0.0, 1e9, "N"))
        ->capture_default_str();
    pCheck->callback([&options, &bSound] {
        CCheckReport const report =
            CheckDictionaryFile(options.strFile, options.nLimit == 0 ? SIZE_MAX : options.nLimit);
        PrintReport(report, options.bJson, std::cout);
        bSound = report.IsSound();
    });
}

struct CReportOptions {
    std::string strFile, strTowns, strOffices, strMisses;
    std::vector<std::string> vPrevious;
    bool bJson = false;
};

void PrintFigures(std::vector<CFigure> const& vFigure, bool bJson) {
    nlohmann::ordered_json all = nlohmann::ordered_json::object();
    std::cout << std::fixed << std::setprecision(3);
    if (!bJson) std::cout << "|   asked |   right |  percent | question |\n|--:|--:|--:|---|\n";
    for (CFigure const& figure : vFigure) {
        all[figure.strKey] = {{"asked", figure.nAsked}, {"right", figure.Right()}};
        for (auto const& [strCause, nCount] : figure.Causes()) all[figure.strKey]["misses"][strCause] = nCount;
        if (bJson) continue;
        std::cout << "| " << std::setw(7) << figure.nAsked << " | " << std::setw(7) << figure.Right() << " | "
                  << std::setw(8) << figure.Percent() << " | " << figure.strQuestion;
        for (auto const& [strCause, nCount] : figure.Causes()) std::cout << "; " << nCount << ": " << strCause;
        std::cout << " |\n";
    }
    if (bJson) std::cout << all.dump() << '\n';
}

// "2015-10", else the file's name; numbered when another one has that name already.
std::string NameOfPrevious(std::string const& strPath, std::vector<CMeasuredTables::CPrevious> const& vPrevious) {
    unsigned const nMonth = MonthOfName(strPath);
    std::string const strBase =
        nMonth == 0 ? std::filesystem::path(strPath).filename().string() : EditionText(nMonth * 100);
    std::string strName = strBase;
    auto const IsTaken = [&](CMeasuredTables::CPrevious const& other) { return other.strName == strName; };
    for (int n = 2; std::any_of(vPrevious.begin(), vPrevious.end(), IsTaken); ++n)
        strName = strBase + " (" + std::to_string(n) + ")";
    return strName;
}

void Report(CReportOptions const& options) {
    CDictionaryFile const file(options.strFile);
    CMeasuredTables tables;
    tables.vTown = ReadTownTable(ReadSource(options.strTowns)).vRow;
    if (!options.strOffices.empty()) tables.vOffice = ReadOfficeTable(ReadSource(options.strOffices));
    for (std::string const& strPath : options.vPrevious) {
        CSource const source = ReadSource(strPath);
        tables.vPrevious.push_back({NameOfPrevious(strPath, tables.vPrevious), ReadTownTable(source).vRow});
    }
    std::vector<CFigure> const vFigure = Measure(file, tables);
    PrintFigures(vFigure, options.bJson);
    if (options.strMisses.empty()) return;
    std::string strMisses = "figure\tasked\tcause\tfound\n";
    for (CFigure const& figure : vFigure)
        for (CMiss const& miss : figure.vMiss)
            strMisses += figure.strKey + '\t' + miss.strText + '\t' + miss.strCause + '\t' + miss.strFound + '\n';
    ReplaceFile(options.strMisses, {strMisses.begin(), strMisses.end()});
}

void AddReport(CLI::App& app, CReportOptions& options) {
    CLI::App* const pReport = app.add_subcommand("report", "measure a dictionary against the tables of its build");
    pReport->add_option("FILE", options.strFile, "the dictionary")->required();
    pReport->add_option("--towns", options.strTowns, "town table, as for build")->required();
    pReport->add_option("--offices", options.strOffices, "organisation table, as for build");
    AddPreviousOption(*pReport, options.vPrevious);
    pReport->add_option("--misses", options.strMisses, "file for all that was not found as wanted, tab-separated");
    pReport->add_flag("--json", options.bJson, "the figures as one JSON object");
    pReport->callback([&options] { Report(options); });
}

int Run(int nArguments, char** ppszArgument) {
    CLI::App app("qeadrs-dic - compile and inspect postal address dictionaries\n"
                 "Exit: 0 done, 1 failed, 2 usage. A build that fails leaves the old dictionary untouched.");
    app.require_subcommand(1);
    app.set_version_flag("--version", QEADRS_VERSION);
    CBuildOptions buildOptions;
    CFetchOptions fetchOptions;
    CShowOptions showOptions;
    CReportOptions reportOptions;
    AddBuild(app, buildOptions);
    AddFetch(app, fetchOptions);
    AddShow(app, showOptions);
    bool bSound = true;
    AddCheck(app, showOptions, bSound);
    AddReport(app, reportOptions);
    try {
        app.parse(nArguments, ppszArgument);
        std::cout.flush();
        if (!std::cout) throw CBuildError("the output cannot be written.");
    } catch (CLI::ParseError const& error) {
        return app.exit(error) == 0 ? EXIT_DONE : EXIT_USAGE;
    }
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
