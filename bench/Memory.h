// Memory.h - what a process that uses the library holds in memory: a fresh one, measured from inside.
//
//   std::vector<CMemoryRun> const vRun = MeasureMemory(bench);
//   PrintMemory(vRun, std::cout);
//
// The figures are rises against the same process just before PstAdrOpen, so that they are the library's own: the
// program, its questions and the loaded libraries are in it already, and all free heap has been given back. Counted is
// what /proc/self/smaps tells, in whole pages. Private is Private_Dirty: heap, stack and written data, what no other
// process shares and the system cannot drop. Pages of the dictionary are clean and shared, and counted by themselves.
#ifndef QEADRS_BENCH_MEMORY_H
#define QEADRS_BENCH_MEMORY_H

#include <iosfwd>
#include <string>
#include <vector>

struct CBench;

struct CMemoryRun {
    std::string strWhat;
    long nPrivateKb = 0;  // after the questions, ...
    long nHeldKb = 0;     // ... and after free heap was given back (malloc_trim): what the library holds on to
    long nMappedKb = 0;   // pages of the dictionary in this process
    long nOtherKb = 0;    // clean pages of all else, the libraries' code above all
    long nResidentKb = 0; // of the whole process, not a rise
};

// The name of the run whose nPrivateKb is that of a dictionary that was opened and not asked.
inline constexpr char MEMORY_OPEN[] = "PstAdrOpen alone";

// Throws when a question has no answer. REQUIRES: a CProfile in force.
std::vector<CMemoryRun> MeasureMemory(CBench& bench);

void PrintMemory(std::vector<CMemoryRun> const& vRun, std::ostream& out);

#endif
