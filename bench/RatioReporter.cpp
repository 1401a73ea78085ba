// RatioReporter.cpp - remembering the medians and dividing them.
#include "bench/RatioReporter.h"

#include <algorithm>
#include <cstdio>
#include <ostream>

namespace {

constexpr char const* YARDSTICK[] = {"lower_bound",  "unordered_map", "entry_by_entry",
                                     "exact_search", "sqlite_memory", "sqlite_file"};

std::string GroupOf(std::string const& strName) {
    return strName.substr(0, strName.find('/'));
}
std::string SubjectOf(std::string const& strName) {
    return strName.substr(strName.find('/') + 1);
}

bool IsYardstick(std::string const& strSubject) {
    return std::find(std::begin(YARDSTICK), std::end(YARDSTICK), strSubject) != std::end(YARDSTICK);
}

std::string ThreeDigits(double dValue) {
    char szText[32];
    std::snprintf(szText, sizeof szText, dValue < 10 ? "%.2f" : dValue < 100 ? "%.1f" : "%.0f", dValue);
    return szText;
}

std::string Ratio(double dValue) {
    char szText[32];
    std::snprintf(szText, sizeof szText, "%.*f", dValue < 0.1 ? 4 : dValue < 1 ? 3 : 2, dValue);
    return szText;
}

} // namespace

std::string Duration(double dNanoseconds) {
    if (dNanoseconds < 1e3) return ThreeDigits(dNanoseconds) + " ns";
    if (dNanoseconds < 1e6) return ThreeDigits(dNanoseconds / 1e3) + " us";
    if (dNanoseconds < 1e9) return ThreeDigits(dNanoseconds / 1e6) + " ms";
    return ThreeDigits(dNanoseconds / 1e9) + " s";
}

void CRatioReporter::ReportRuns(std::vector<Run> const& vRun) {
    ConsoleReporter::ReportRuns(vRun);
    for (Run const& run : vRun) {
        if (run.error_occurred) {
            m_bFailed = true;
            continue;
        }
        std::string const& strName = run.run_name.function_name;
        if (run.aggregate_name == "cv") {
            m_mapResult[strName].dSpread =
                run.run_name.time_type.empty() ? run.cpu_accumulated_time : run.real_accumulated_time;
            continue;
        }
        if (run.run_type == Run::RT_Aggregate && run.aggregate_name != "median") continue;
        m_mapName[run.family_index] = strName;
        CResult& result = m_mapResult[strName];
        result.bWallTime = !run.run_name.time_type.empty();
        double const dTime = result.bWallTime ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime();
        result.dNanoseconds = dTime / benchmark::GetTimeUnitMultiplier(run.time_unit) * 1e9;
        for (auto const& [strCounter, counter] : run.counters) result.mapCounter[strCounter] = counter.value;
    }
}

void CRatioReporter::PrintRatios(std::ostream& out) const {
    out << "\nMedians of CPU time (w: wall time); spread: standard deviation / mean; then ours / yardstick, below 1 "
           "is"
           " faster.\n\n| group | subject | median | spread |";
    for (char const* const pszYardstick : YARDSTICK) out << " / " << pszYardstick << " |";
    out << "\n|---|---|--:|--:|";
    for (size_t n = 0; n < std::size(YARDSTICK); ++n) out << "--:|";
    out << '\n';
    for (auto const& [nFamily, strName] : m_mapName)
        if (!IsYardstick(SubjectOf(strName))) PrintRow(out, GroupOf(strName), SubjectOf(strName));
}

double CRatioReporter::Nanoseconds(std::string const& strName) const {
    auto const it = m_mapResult.find(strName);
    return it == m_mapResult.end() ? -1 : it->second.dNanoseconds;
}

void CRatioReporter::PrintRow(std::ostream& out, std::string const& strGroup, std::string const& strSubject) const {
    CResult const& result = m_mapResult.at(strGroup + '/' + strSubject);
    out << "| " << strGroup << " | " << strSubject;
    for (auto const& [strCounter, dValue] : result.mapCounter) out << ' ' << strCounter << '=' << ThreeDigits(dValue);
    out << " | " << Duration(result.dNanoseconds) << (result.bWallTime ? " w" : "") << " | "
        << (result.dSpread < 0 ? "-" : ThreeDigits(100 * result.dSpread) + " %");
    for (char const* const pszYardstick : YARDSTICK) {
        auto const it = m_mapResult.find(strGroup + '/' + pszYardstick);
        out << " | " << (it == m_mapResult.end() ? "-" : Ratio(result.dNanoseconds / it->second.dNanoseconds));
    }
    out << " |\n";
}
