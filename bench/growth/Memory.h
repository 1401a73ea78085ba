// Memory.h - what a process keeps for itself when it opens a dictionary and asks 10,000 questions of every kind.
#ifndef QEADRS_BENCH_GROWTH_MEMORY_H
#define QEADRS_BENCH_GROWTH_MEMORY_H

#include <iosfwd>
#include <string>

// Prints one JSON object, all in KB more than just before PstAdrOpen: private memory after it, after 10,000
// questions, and the resident part of the dictionary then. Throws std::runtime_error when the system does not tell.
// To be called by a process that has done nothing else yet.
void MeasureMemory(std::string const& strDictionary, std::ostream& out);

#endif
