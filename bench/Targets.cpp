// Targets.cpp - the targets as one table of verdicts. A target that is missed ends no run: machines are noisy.
#include "bench/Targets.h"

#include <cstdio>
#include <ostream>

namespace {

constexpr double MICROSECOND = 1e3;
constexpr long MOST_PRIVATE_KB = 64;

// A time over another one, or over a limit when there is no yardstick.
struct CTarget {
    char const* pszOurs;
    char const* pszYardstick;
    double dLimit; // of the ratio; of the time in nanoseconds without a yardstick
    char const* pszTarget;
};

// A database in memory is the harder one to beat; one in a file is what takes the place of a dictionary file.
constexpr CTarget TARGET[] = {
    {"lookup_code7/GetAdrFromZip", "lookup_code7/sqlite_memory", 1.0 / 10, "at least 10 times as fast"},
    {"lookup_code7/GetAdrFromZip", "lookup_code7/sqlite_file", 1.0 / 10, "at least 10 times as fast"},
    {"search_code7/SearchPostCode7", "search_code7/lower_bound", 1.5, "at most 1.5 times the time"},
    {"zip_full/PstAdrGetZip", "zip_full/sqlite_memory", 1.0 / 3, "at least 3 times as fast"},
    {"zip_full/PstAdrGetZip", "zip_full/sqlite_file", 1.0 / 3, "at least 3 times as fast"},
    {"lookup_code7/GetAddrFromPostCode7_reused", "lookup_code7/unordered_map", 3.0, "at most 3 times the time"},
    {"open_to_first_answer/PstAdrOpen", nullptr, 100 * MICROSECOND, "under 100 us"},
    {"open_to_first_address/PstAdrOpen", nullptr, 100 * MICROSECOND, "under 100 us"},
    {"reading/Read", nullptr, 0.6 * MICROSECOND, "under 0.6 us"},
    {"reading/ReadBatch", nullptr, 0.3 * MICROSECOND, "under 0.3 us"},
};

std::string Rounded(double dRatio) {
    char szText[32];
    std::snprintf(szText, sizeof szText, "%.3f", dRatio);
    return szText;
}

void PrintTime(CTarget const& target, CRatioReporter const& reporter, std::ostream& out) {
    double const dOurs = reporter.Nanoseconds(target.pszOurs);
    double const dYardstick = target.pszYardstick == nullptr ? 1 : reporter.Nanoseconds(target.pszYardstick);
    out << "| " << target.pszOurs << " | " << (target.pszYardstick == nullptr ? "-" : target.pszYardstick) << " | ";
    if (dOurs < 0 || dYardstick < 0) {
        out << "- | - | - | " << target.pszTarget << " | not measured |\n";
        return;
    }
    double const dRatio = dOurs / dYardstick;
    bool const bMet = target.pszYardstick == nullptr ? dRatio < target.dLimit : dRatio <= target.dLimit;
    out << Duration(dOurs) << " | " << (target.pszYardstick == nullptr ? "-" : Duration(dYardstick)) << " | "
        << (target.pszYardstick == nullptr ? "-" : Rounded(dRatio)) << " | " << target.pszTarget << " | "
        << (bMet ? "met" : "NOT MET") << " |\n";
}

} // namespace

void PrintTargets(CRatioReporter const& reporter, std::vector<CMemoryRun> const& vMemory, std::ostream& out) {
    out << "\nTargets, beside a database in memory and one in a file.\n\n"
           "| ours | yardstick | ours | yardstick | ratio | target | verdict |\n"
           "|---|---|--:|--:|--:|---|---|\n";
    for (CTarget const& target : TARGET) PrintTime(target, reporter, out);
    for (CMemoryRun const& run : vMemory)
        if (run.strWhat == MEMORY_OPEN)
            out << "| private memory after " << run.strWhat << " | - | " << run.nPrivateKb << " KB | - | - | at most "
                << MOST_PRIVATE_KB << " KB | " << (run.nPrivateKb <= MOST_PRIVATE_KB ? "met" : "NOT MET") << " |\n";
}
