// Benchmarks.h - the families of benchmarks, registered with Google Benchmark by main.
#ifndef QEADRS_BENCH_BENCHMARKS_H
#define QEADRS_BENCH_BENCHMARKS_H

#include "bench/Child.h"
#include "bench/Questions.h"
#include "bench/SqliteTable.h"
#include "bench/World.h"

#include <iosfwd>
#include <string>

// The tables that the dictionary compiler compiles.
struct CSources {
    std::string strTowns;
    std::string strOffices;
    bool bSample; // the repository's sample, not an edition
};

// Everything is made before the first measurement and lives until after the last.
struct CBench {
    CBenchDictionary& dictionary;
    CSqlite& memory;         // the rows in a database in memory ...
    CSqlite& file;           // ... and in a file
    std::string strTable;    // path of that file
    CSources sources;        // what the compiler compiles ...
    std::string strCompiled; // ... and where it writes the dictionary
    CCodes codes7;           // every code
    CCodes codes5;           // samples of leading parts and of old codes, small enough to go round several times in
    CCodes codes3;           //   each measurement, so that both sides are asked the same
    CCodes oldCodes;         //
    CQuestions questions;    // addresses
    CChildRunner& runner;
};

// Compares what both sides answer, tells how often they agree, and throws when a lookup by 7-digit code or by a
// leading part differs: then the ratios would compare different work. REQUIRES: a CProfile in force.
void CheckAnswers(CBench& bench, std::ostream& out);

void RegisterLookups(CBench& bench);

// Compares first, too; throws when a town's code or latest form is not the one that is due, and takes what both sides
// answer differently out of bench.questions.
void RegisterAddressRecords(CBench& bench, std::ostream& out);

// Tells first how often library and yardstick find the same town.
void RegisterAddressText(CBench& bench, std::ostream& out);

// Tells first how many addresses as people write them are read with their code, and how long single readings take;
// throws when batches read otherwise, and when more than one in twenty is read wrongly.
void RegisterReadings(CBench& bench, std::ostream& out);

// Tells first how many addresses both sides find.
void RegisterParts(CBench& bench, std::ostream& out);

// Tells first how long the lists are, and throws when SQLite's are longer or shorter.
void RegisterBrowsing(CBench& bench, std::ostream& out);

// Tells first how large the trees are, and throws when the one put together entry by entry has another size.
void RegisterRefining(CBench& bench, std::ostream& out);

void RegisterOpenAndCompile(CBench& bench);

// Starts the dictionary compiler; returns its peak memory and throws when it fails.
CChildUsage CompileDictionary(CChildRunner& runner, CSources const& sources, std::string const& strOutput);

#endif
