// OpenAndCompile.cpp - what happens once per process or once per edition: from closed to the first answer, from the
// source tables to the dictionary, and whether that is sound.
#include "bench/Benchmarks.h"

#include "api/Pstexec.h"
#include "bench/AddressRecord.h"
#include "builder/Check.h"

#include <algorithm>

#include <benchmark/benchmark.h>

CChildUsage CompileDictionary(CChildRunner& runner, CSources const& sources, std::string const& strOutput) {
    std::vector<std::string> vArgument = {
        BENCH_COMPILER_PROGRAM, "build",    "--towns", sources.strTowns, "--offices",
        sources.strOffices,     "--output", strOutput, "--quiet",        "--no-progress"};
    if (sources.bSample) vArgument.emplace_back("--sample");
    return runner.Run(vArgument);
}

namespace {

// Profile, mapping, search, block, free, unmapping; the file is in the page cache.
void OpenOurs(benchmark::State& state, CBench& bench) {
    size_t n = 0;
    for (auto _ : state) {
        HGLOBAL h = nullptr;
        if (PstAdrOpen() != 0 || GetAdrFromZip(bench.codes7[n].szCode, &h) != 0) {
            state.SkipWithError("no answer");
            break;
        }
        GlobalFree(h);
        PstAdrClose();
        if (++n == bench.codes7.size()) n = 0;
    }
}

void OpenSqlite(benchmark::State& state, CBench& bench) {
    size_t n = 0;
    std::vector<char> vText;
    for (auto _ : state) {
        CSqlite const db(bench.strTable, true);
        CStatement select(db, SQL_BY_CODE);
        select.Bind(1, bench.codes7[n].szCode);
        if (select.CopyRows(vText) == 0) {
            state.SkipWithError("no answer");
            break;
        }
        if (++n == bench.codes7.size()) n = 0;
    }
}

// The same with an address as the first question.
void OpenOursForAddress(benchmark::State& state, CBench& bench) {
    std::vector<CQuestion> const& vQuestion = bench.questions.vFull;
    size_t n = 0;
    for (auto _ : state) {
        tagADDRESSRECORD record;
        record.Fill(vQuestion[n].strText, "");
        if (PstAdrOpen() != 0 || PstAdrGetZip(&record) != 0) {
            state.SkipWithError("no answer");
            break;
        }
        PstAdrClose();
        if (++n == vQuestion.size()) n = 0;
    }
}

void OpenSqliteForAddress(benchmark::State& state, CBench& bench) {
    std::vector<CQuestion> const& vQuestion = bench.questions.vFull;
    size_t n = 0;
    std::vector<char> vText;
    for (auto _ : state) {
        CSqlite const db(bench.strTable, true);
        CStatement select(db, SQL_BY_NAMES);
        for (int nName = 0; nName < 3; ++nName)
            select.Bind(nName + 1, vQuestion[n].vName[static_cast<size_t>(nName)]);
        if (select.CopyRows(vText) == 0) {
            state.SkipWithError("no answer");
            break;
        }
        if (++n == vQuestion.size()) n = 0;
    }
}

// The whole command, from the archives to the checked and renamed file.
void CompileOurs(benchmark::State& state, CBench& bench) {
    long nPeakKb = 0;
    for (auto _ : state) {
        CChildUsage const usage = CompileDictionary(bench.runner, bench.sources, bench.strCompiled);
        nPeakKb = std::max(nPeakKb, usage.nPeakKb);
    }
    state.counters["peak_MB"] = static_cast<double>(nPeakKb) / 1000;
}

// Only the last step of the same work: rows that are already there, as texts in memory, into an indexed file.
void ImportSqlite(benchmark::State& state, CBench& bench) {
    for (auto _ : state) MakeTableFile(bench.strTable + "-import", bench.dictionary.Rows());
}

// From the file to the verdict.
void CheckOurs(benchmark::State& state, CBench& bench) {
    for (auto _ : state)
        if (!qe::CheckDictionaryFile(bench.dictionary.Path()).IsSound()) {
            state.SkipWithError("not sound");
            break;
        }
}

void CheckSqlite(benchmark::State& state, CBench& bench) {
    for (auto _ : state) {
        CSqlite const db(bench.strTable, true);
        CStatement check(db, "PRAGMA integrity_check");
        std::vector<char> vText;
        if (check.CopyRows(vText) != 1 || std::string(vText.data()) != "ok") {
            state.SkipWithError("not sound");
            break;
        }
    }
}

} // namespace

void RegisterOpenAndCompile(CBench& bench) {
    using benchmark::RegisterBenchmark;
    RegisterBenchmark("open_to_first_answer/PstAdrOpen", [&](benchmark::State& state) { OpenOurs(state, bench); });
    RegisterBenchmark("open_to_first_answer/sqlite_file", [&](benchmark::State& state) { OpenSqlite(state, bench); });
    RegisterBenchmark("open_to_first_address/PstAdrOpen",
                      [&](benchmark::State& state) { OpenOursForAddress(state, bench); });
    RegisterBenchmark("open_to_first_address/sqlite_file",
                      [&](benchmark::State& state) { OpenSqliteForAddress(state, bench); });
    RegisterBenchmark("compile/qeadrs_dic", [&](benchmark::State& state) { CompileOurs(state, bench); })
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
    RegisterBenchmark("compile/sqlite_file", [&](benchmark::State& state) { ImportSqlite(state, bench); })
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
    RegisterBenchmark("check/CheckDictionaryFile", [&](benchmark::State& state) {
        CheckOurs(state, bench);
    })->Unit(benchmark::kMillisecond);
    RegisterBenchmark("check/sqlite_file", [&](benchmark::State& state) {
        CheckSqlite(state, bench);
    })->Unit(benchmark::kMillisecond);
}
