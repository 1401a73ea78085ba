// main.cpp - qeadrs_bench: chooses the data, checks that both sides give the same answers, measures, prints ratios.
#include "bench/Benchmarks.h"
#include "bench/Memory.h"
#include "bench/RatioReporter.h"
#include "bench/Targets.h"

#include <sqlite3.h>

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include <benchmark/benchmark.h>

namespace {

std::string const WORK = BENCH_WORK;

// Samples of leading parts and old codes: enough to be fair, few enough to be asked several times over.
constexpr size_t SAMPLE = 1000;
// Whole addresses: more than the caches hold.
constexpr size_t ADDRESSES = 100000;

std::string Environment(char const* pszName) {
    char const* const psz = std::getenv(pszName);
    return psz == nullptr ? "" : psz;
}

struct CData {
    std::string strDictionary;
    CSources sources;
    std::string strRemark; // what stands in for data that was not named
};

// The dictionary and the sources that the environment names; the repository's sample for what it does not name.
CData ChooseData(CChildRunner& runner) {
    std::string const strSample = BENCH_SAMPLE;
    CSources const sample = {strSample + "/utf_ken_all.csv", strSample + "/JIGYOSYO.CSV", true};
    CData data = {Environment("QEADRS_BENCH_DIC"), sample, ""};
    if (data.strDictionary.empty() && *BENCH_TEST_DATA != '\0') data.strDictionary = BENCH_TEST_DATA "/qeadrs.dic";
    if (data.strDictionary.empty()) {
        data.strDictionary = WORK + "/sample.dic";
        CompileDictionary(runner, sample, data.strDictionary);
        data.strRemark = "lookups ran on THE SMALL SAMPLE: neither QEADRS_BENCH_DIC nor QEADRS_TEST_DATA is set\n";
    }
    std::string const strSource = Environment("QEADRS_SOURCE");
    if (strSource.empty())
        data.strRemark += "the compiler compiled THE SMALL SAMPLE: QEADRS_SOURCE is not set\n";
    else
        data.sources = {strSource + "/utf_ken_all.zip", strSource + "/jigyosyo.zip", false};
    return data;
}

std::string ProcessorName() {
    std::ifstream in("/proc/cpuinfo");
    for (std::string strLine; std::getline(in, strLine);)
        if (strLine.compare(0, 10, "model name") == 0) return strLine.substr(strLine.find(':') + 2);
    return "unknown processor";
}

std::string LoadAverage() {
    double dLoad[3] = {};
    if (getloadavg(dLoad, 3) != 3) return "unknown";
    std::string strText;
    for (double const d : dLoad) strText += std::to_string(d).substr(0, 4) + ' ';
    return strText;
}

void PrintWhere(CBench const& bench, CData const& data, std::ostream& out) {
    benchmark::CPUInfo const& cpu = benchmark::CPUInfo::Get();
    auto const Megabytes = [](std::string const& strPath) {
        return std::to_string(static_cast<double>(std::filesystem::file_size(strPath)) / 1e6).substr(0, 5) + " MB";
    };
    out << "machine:    " << ProcessorName() << ", " << cpu.num_cpus << " processors, load " << LoadAverage() << '\n'
        << "compiler:   " << __VERSION__ << ", " << BENCH_BUILD_TYPE << ", " << 8 * sizeof(void*) << " bit\n"
        << "yardstick:  SQLite " << sqlite3_libversion() << ", table and indexes " << Megabytes(bench.strTable)
        << '\n'
        << "dictionary: " << bench.dictionary.Description() << '\n'
        << "rows:       " << bench.dictionary.Rows().size() << " (" << bench.dictionary.EntriesLeftOut()
        << " entries without town or city are in no answer)\n"
        << "inputs:     " << bench.codes7.size() << " codes, " << bench.codes5.size() << " leading parts of 5 and "
        << bench.codes3.size() << " of 3 digits, " << bench.oldCodes.size() << " old codes, seed " << BENCH_SEED
        << '\n'
        << "sources:    towns " << Megabytes(data.sources.strTowns) << ", organisations "
        << Megabytes(data.sources.strOffices) << '\n'
        << data.strRemark;
}

// Both databases get the same tables. The one in a file is opened afterwards, as its readers do.
void FillTables(CSqlite& memory, std::string const& strTable, CBenchDictionary& dictionary, CPlainTree const& tree) {
    FillTable(memory, dictionary.Rows());
    FillNames(memory, tree, dictionary.Dic());
    MakeTableFile(strTable, dictionary.Rows());
    CSqlite file(strTable);
    FillNames(file, tree, dictionary.Dic());
}

void CheckAndRegister(CBench& bench, std::ostream& out) {
    CheckAnswers(bench, out);
    RegisterLookups(bench);
    RegisterAddressRecords(bench, out);
    RegisterAddressText(bench, out);
    RegisterReadings(bench, out);
    RegisterParts(bench, out);
    RegisterBrowsing(bench, out);
    RegisterRefining(bench, out);
    RegisterOpenAndCompile(bench);
}

int Measure(CChildRunner& runner) {
    CData const data = ChooseData(runner);
    CBenchDictionary dictionary(data.strDictionary);
    CProfile const profile(data.strDictionary);
    CPlainTree const tree(dictionary.Dic());
    std::string const strTable = WORK + "/addresses.sqlite";
    CSqlite memory(":memory:");
    FillTables(memory, strTable, dictionary, tree);
    CSqlite file(strTable, true);
    CBench bench = {dictionary,
                    memory,
                    file,
                    strTable,
                    data.sources,
                    WORK + "/compiled.dic",
                    MakeCodes(dictionary.Rows(), 7, NO_LIMIT),
                    MakeCodes(dictionary.Rows(), 5, SAMPLE),
                    MakeCodes(dictionary.Rows(), 3, SAMPLE),
                    MakeOldCodes(dictionary.Rows(), SAMPLE),
                    MakeQuestions(dictionary.Dic(), tree, ADDRESSES),
                    runner};
    CheckAndRegister(bench, std::cout);
    std::vector<CMemoryRun> const vMemory = MeasureMemory(bench);
    CRatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::cout << '\n';
    PrintWhere(bench, data, std::cout);
    reporter.PrintRatios(std::cout);
    PrintMemory(vMemory, std::cout);
    PrintTargets(reporter, vMemory, std::cout);
    if (!reporter.Failed()) return EXIT_SUCCESS;
    std::cerr << "qeadrs_bench: a benchmark had no answer\n";
    return EXIT_FAILURE;
}

} // namespace

int main(int nArguments, char** ppszArgument) {
    try {
        CChildRunner runner;
        benchmark::Initialize(&nArguments, ppszArgument);
        if (benchmark::ReportUnrecognizedArguments(nArguments, ppszArgument)) return 2;
        return Measure(runner);
    } catch (std::exception const& error) {
        std::cerr << "qeadrs_bench: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
