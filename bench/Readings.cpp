// Readings.cpp - addresses as people write them, read by CAddressText: beside the engine's own search for the same
// addresses as the table spells them, and beside the list of whole town paths in SQLite.
#include "bench/Addresses.h"
#include "bench/Benchmarks.h"
#include "bench/PathTable.h"
#include "bench/RatioReporter.h"
#include "bench/Spellings.h"
#include "text/AddressText.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <map>
#include <ostream>
#include <stdexcept>

#include <benchmark/benchmark.h>

namespace {

using benchmark::DoNotOptimize;
using qeadrs::CAddressText;

constexpr size_t BATCH = 64;
constexpr size_t ROUNDS = 5; // of the single readings: each text counts with its median

// What all benchmarks of this file ask; made once.
struct CReadings {
    std::vector<CSpelling> vSpelling;
    std::vector<std::string_view> vText, vTable; // of the same addresses
    CSqlite paths{":memory:"};                   // all paths of towns
};

// --- whether the answers are right ---------------------------------------------------------------------------------

bool IsRight(QETEXTREADING const& reading, CQuestion const& question) {
    for (size_t n = 0; n < reading.nCandidate; ++n) {
        QETEXTPLACE const& place = reading.pCandidate[n];
        if (place.pszPostCode != nullptr && place.pszPostCode == question.strCode) return true;
    }
    return false;
}

bool IsSame(QETEXTREADING const& one, QETEXTREADING const& other) {
    return one.place.nTown == other.place.nTown && one.place.nEntry == other.place.nEntry &&
           one.nSureness == other.nSureness && one.nFoldings == other.nFoldings &&
           one.nCandidate == other.nCandidate && one.rest.nOffset == other.rest.nOffset;
}

// One by one and in batches, the same answers, nearly all of them with the code of the address.
void CompareReadings(CAddressText& text, CReadings const& readings, std::ostream& out) {
    std::vector<QETEXTREADING> vReading(readings.vText.size());
    text.ReadBatch(readings.vText.data(), readings.vText.size(), vReading.data());
    size_t nRight = 0;
    for (size_t n = 0; n < vReading.size(); ++n) nRight += IsRight(vReading[n], *readings.vSpelling[n].pQuestion);
    for (size_t n = 0; n < vReading.size(); ++n)
        if (!IsSame(text.Read(readings.vText[n]), vReading[n]))
            throw std::runtime_error("a batch reads otherwise: " + std::string(readings.vText[n]));
    out << "right code among the candidates, texts as people write them: " << nRight << " of " << vReading.size()
        << '\n';
    if (nRight * 20 < vReading.size() * 19) throw std::runtime_error("too many of them are read wrongly");
}

// --- the distribution of single readings ---------------------------------------------------------------------------

double Since(std::chrono::steady_clock::time_point tBegin) {
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - tBegin).count();
}

double MedianOf(std::vector<double> v) {
    std::nth_element(v.begin(), v.begin() + static_cast<std::ptrdiff_t>(v.size() / 2), v.end());
    return v[v.size() / 2];
}

// What looking at the clock takes by itself.
double ClockTime() {
    std::vector<double> v(10001);
    for (double& d : v) d = Since(std::chrono::steady_clock::now());
    return MedianOf(v);
}

// Nanoseconds of each call by itself, the median of the rounds.
template <typename F>
std::vector<double> SingleTimes(size_t nTexts, F const& Ask) {
    std::vector<std::vector<double>> vRound(nTexts);
    for (size_t nRound = 0; nRound < ROUNDS; ++nRound)
        for (size_t n = 0; n < nTexts; ++n) {
            auto const tBegin = std::chrono::steady_clock::now();
            Ask(n);
            vRound[n].push_back(Since(tBegin));
        }
    double const dClock = ClockTime();
    std::vector<double> vTime;
    vTime.reserve(nTexts);
    for (std::vector<double> const& v : vRound) vTime.push_back(std::max(0.0, MedianOf(v) - dClock));
    return vTime;
}

void PrintDistribution(char const* pszWhat, std::vector<double> vTime, std::ostream& out) {
    std::sort(vTime.begin(), vTime.end());
    out << "| " << pszWhat << " | " << vTime.size() << " | " << Duration(vTime[vTime.size() / 2]) << " | "
        << Duration(vTime[vTime.size() * 99 / 100]) << " | " << Duration(vTime.back()) << " |\n";
}

void PrintDistributions(CAddrDic& dic, CAddressText& text, CReadings const& readings, std::ostream& out) {
    out << "\nSingle calls, each by itself:\n\n| call | texts | median | 99 % | slowest |\n|---|--:|--:|--:|--:|\n";
    std::vector<double> const vTime =
        SingleTimes(readings.vText.size(), [&](size_t n) { DoNotOptimize(&text.Read(readings.vText[n])); });
    PrintDistribution("Read, as people write", vTime, out);
    std::map<std::string, std::vector<double>> mapWay;
    for (size_t n = 0; n < vTime.size(); ++n) mapWay[readings.vSpelling[n].pszWay].push_back(vTime[n]);
    for (auto const& [strWay, vOfWay] : mapWay) PrintDistribution((". " + strWay).c_str(), vOfWay, out);
    PrintDistribution(
        "Read, as the table",
        SingleTimes(readings.vTable.size(), [&](size_t n) { DoNotOptimize(&text.Read(readings.vTable[n])); }), out);
    PrintDistribution("GetPostCodeFromAddr, as the table",
                      SingleTimes(readings.vTable.size(),
                                  [&](size_t n) {
                                      tagADDR addr(0);
                                      DoNotOptimize(
                                          dic.GetPostCodeFromAddr(readings.vTable[n].data(), nullptr, addr));
                                  }),
                      out);
    out << '\n';
}

// --- the loops -----------------------------------------------------------------------------------------------------

using CTexts = std::vector<std::string_view>;

// Asks for the texts one after the other, round and round.
template <typename F>
void AddLoop(std::string const& strName, CTexts const& vText, F Ask) {
    benchmark::RegisterBenchmark(strName.c_str(), [&vText, Ask = std::move(Ask)](benchmark::State& state) {
        size_t n = 0;
        for (auto _ : state) {
            Ask(vText[n]);
            if (++n == vText.size()) n = 0;
        }
    });
}

void AddRead(CAddressText& text, std::string const& strGroup, CTexts const& vText) {
    AddLoop(strGroup + "/Read", vText, [&text](std::string_view strText) { DoNotOptimize(&text.Read(strText)); });
}

// An iteration is an address: whole batches are asked for whenever the last one is used up.
void AddReadBatch(CAddressText& text, std::string const& strGroup, CTexts const& vText) {
    benchmark::RegisterBenchmark((strGroup + "/ReadBatch").c_str(), [&text, &vText](benchmark::State& state) {
        size_t const nBatch = std::min(BATCH, vText.size());
        std::vector<QETEXTREADING> vReading(nBatch);
        size_t nFirst = 0;
        while (state.KeepRunningBatch(static_cast<benchmark::IterationCount>(nBatch))) {
            text.ReadBatch(vText.data() + nFirst, nBatch, vReading.data());
            DoNotOptimize(vReading.data());
            nFirst = nFirst + 2 * nBatch > vText.size() ? 0 : nFirst + nBatch;
        }
    });
}

// The same addresses as the table spells them: the whole answer of the engine, and the longest path that begins them.
// REQUIRES: NUL behind each text.
void AddYardsticks(CAddrDic& dic, std::string const& strGroup, CReadings const& readings) {
    AddLoop(strGroup + "/exact_search", readings.vTable, [&dic](std::string_view strText) {
        tagADDR addr(0);
        DoNotOptimize(dic.GetPostCodeFromAddr(strText.data(), nullptr, addr));
        DoNotOptimize(addr.pszPostCode);
    });
    benchmark::RegisterBenchmark((strGroup + "/sqlite_memory").c_str(), [&readings](benchmark::State& state) {
        CStatement select(readings.paths, SQL_LONGEST_PATH);
        std::vector<char> vRow;
        size_t n = 0;
        for (auto _ : state) {
            DoNotOptimize(LongestPathInSqlite(select, vRow, readings.vTable[n]));
            if (++n == readings.vTable.size()) n = 0;
        }
    });
}

// --- opening, and the index ----------------------------------------------------------------------------------------

void AddOpen(CBench& bench, CReadings const& readings) {
    benchmark::RegisterBenchmark("open_to_first_reading/QeTextOpen", [&bench, &readings](benchmark::State& state) {
        size_t n = 0;
        for (auto _ : state) {
            QETEXT* const pText = QeTextOpen(bench.dictionary.Path().c_str(), nullptr);
            QETEXTREADING reading;
            std::string_view const strText = readings.vText[n];
            if (pText == nullptr || QeTextRead(pText, strText.data(), strText.size(), 0, &reading) != QETEXT_OK) {
                state.SkipWithError("no answer");
                break;
            }
            QeTextClose(pText);
            if (++n == readings.vText.size()) n = 0;
        }
    })->Unit(benchmark::kMicrosecond);
}

// In a process of its own: KB.
long PeakOfIndex(CBench& bench) {
    std::string const strFigures = BENCH_WORK "/index-memory";
    bench.runner.Run({BENCH_INDEX_PROGRAM, bench.dictionary.Path(), strFigures});
    std::ifstream in(strFigures);
    long nPeakKb = 0;
    if (!(in >> nPeakKb)) throw std::runtime_error(strFigures + " cannot be read");
    return nPeakKb;
}

void AddIndex(CBench& bench) {
    long const nPeakKb = PeakOfIndex(bench);
    benchmark::RegisterBenchmark("text_index/BuildTextIndex", [&bench, nPeakKb](benchmark::State& state) {
        size_t nSize = 0;
        for (auto _ : state) nSize = qeadrs::BuildTextIndex(bench.dictionary.Dic()).size();
        state.counters["size_MB"] = static_cast<double>(nSize) / 1e6;
        state.counters["peak_MB"] = static_cast<double>(nPeakKb) / 1e3;
    })->Unit(benchmark::kMillisecond);
}

} // namespace

void RegisterReadings(CBench& bench, std::ostream& out) {
    CAddrDic& dic = bench.dictionary.Dic();
    static CReadings readings;
    readings.vSpelling = MakeSpellings(bench.questions);
    for (CSpelling const& spelling : readings.vSpelling) {
        readings.vText.push_back(spelling.strText);
        readings.vTable.push_back(spelling.strTable);
    }
    FillPaths(readings.paths, MakeAddressTexts(dic).vPath);
    static CAddressText text(dic);
    out << "index of names: " << (text.HasIndex() ? "the dictionary's own" : "made at the first reading") << '\n';
    CompareReadings(text, readings, out);
    PrintDistributions(dic, text, readings, out);
    AddRead(text, "reading", readings.vText);
    AddReadBatch(text, "reading", readings.vText);
    AddYardsticks(dic, "reading", readings);
    AddRead(text, "reading_exact", readings.vTable);
    AddReadBatch(text, "reading_exact", readings.vTable);
    AddYardsticks(dic, "reading_exact", readings);
    AddOpen(bench, readings);
    AddIndex(bench);
}
