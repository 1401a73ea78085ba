// Targets.h - how fast and how small the library is meant to be, and what a run says to that.
#ifndef QEADRS_BENCH_TARGETS_H
#define QEADRS_BENCH_TARGETS_H

#include "bench/Memory.h"
#include "bench/RatioReporter.h"

#include <iosfwd>
#include <vector>

// One row per target: both figures, the ratio, its limit, and whether it was met. Only what this run measured counts.
void PrintTargets(CRatioReporter const& reporter, std::vector<CMemoryRun> const& vMemory, std::ostream& out);

#endif
