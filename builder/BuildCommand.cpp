// BuildCommand.cpp - reads the tables, compiles, and replaces the file as the last step.
#include "builder/BuildCommand.h"

#include "builder/Compiler.h"
#include "builder/Edition.h"
#include "builder/EditionDate.h"
#include "builder/FileMonth.h"
#include "builder/ReplaceFile.h"
#include "builder/Skk.h"
#include "builder/Source.h"
#include "builder/Statistics.h"
#include "builder/TextTable.h"

#include <algorithm>
#include <iomanip>
#include <iostream>

#include <nlohmann/json.hpp>

namespace qe {

namespace {

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

} // namespace

void RunBuild(CBuildOptions const& options) {
    CProgress const progress(options.bProgress && !options.bQuiet);
    CStatistics statistics;
    CCompiler compiler(statistics);
    nlohmann::ordered_json summary;
    bool const bSkk = !options.strSkk.empty();
    uint32_t nEdition = (bSkk ? AddSkkTables : AddOfficialTables)(options, progress, compiler, statistics, summary);
    AddPreviousTables(options, progress, compiler, summary);
    if (!options.strEdition.empty()) nEdition = ReadEdition(options.strEdition);
    progress.Say("compiling");
    CImage image = compiler.Compile(nEdition, bSkk              ? ESource::Skk
                                              : options.bSample ? ESource::Sample
                                                                : ESource::Official);
    AppendTextIndex(image, statistics);
    // The dictionary last: a build that fails leaves the old one untouched.
    if (!options.strReport.empty())
        ReplaceFile(options.strReport, {compiler.Successions().begin(), compiler.Successions().end()});
    progress.Say("writing " + options.strOutput);
    ReplaceFile(options.strOutput, image.vByte);
    summary["edition"] = EditionText(nEdition);
    summary["dictionary"] = options.strOutput;
    PrintStatistics(statistics, options, summary);
}

} // namespace qe
