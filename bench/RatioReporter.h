// RatioReporter.h - Google Benchmark's console output, and behind it one table of ratios.
//
// Benchmarks are named GROUP/SUBJECT. In a group the subjects "lower_bound", "unordered_map", "entry_by_entry",
// "exact_search", "sqlite_memory" and "sqlite_file" are yardsticks; every other subject becomes a row of the table, with its time
// divided by that of each yardstick.
#ifndef QEADRS_BENCH_RATIOREPORTER_H
#define QEADRS_BENCH_RATIOREPORTER_H

#include <cstdint>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

// As it stands in the tables: "387 ns", "1.06 us".
std::string Duration(double dNanoseconds);

class CRatioReporter : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(std::vector<Run> const& vRun) override;

    // A Markdown table. Times are medians when the run had repetitions: CPU time, or wall time where a benchmark
    // asked for that. A ratio below 1 means that ours took less.
    void PrintRatios(std::ostream& out) const;

    // A median in nanoseconds by GROUP/SUBJECT; negative when that was not measured.
    double Nanoseconds(std::string const& strName) const;

    // Whether a benchmark ended early for want of an answer.
    bool Failed() const { return m_bFailed; }

  private:
    struct CResult {
        double dNanoseconds = 0;
        double dSpread = -1; // coefficient of variation; negative: there was one run only
        bool bWallTime = false;
        std::map<std::string, double> mapCounter;
    };

    void PrintRow(std::ostream& out, std::string const& strGroup, std::string const& strSubject) const;

    std::map<std::string, CResult> m_mapResult; // by GROUP/SUBJECT
    bool m_bFailed = false;
    std::map<int64_t, std::string> m_mapName; // in order of registration: results arrive in random order
};

#endif
