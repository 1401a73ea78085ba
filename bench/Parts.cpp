// Parts.cpp - from a partial address to all that it can stand for: a city, the beginning of a city's name, a prefecture,
// the whole country; beside all seven texts of the same rows, copied.
#include "bench/Benchmarks.h"

#include "api/Pstexec.h"
#include "bench/OpenApi.h"

#include <ostream>
#include <stdexcept>

#include <benchmark/benchmark.h>

namespace {

using benchmark::DoNotOptimize;

#define SEVEN_TEXTS "SELECT ext, code, pref, city, town, area, office FROM addr"
constexpr char SQL_CITY[] = SEVEN_TEXTS " WHERE pref = ?1 AND city = ?2";
constexpr char SQL_FRONT[] = SEVEN_TEXTS " WHERE city >= ?1 AND city < ?2";
constexpr char SQL_PREF[] = SEVEN_TEXTS " WHERE pref = ?1";
constexpr char SQL_ALL[] = SEVEN_TEXTS;
#undef SEVEN_TEXTS

// One group: its texts, and the SELECT with its parameters from vName.
struct CPart {
    char const* pszGroup;
    std::vector<CQuestion> const& vQuestion;
    char const* pszSql;
    size_t nFirst, nNames;
};

void BindNames(CStatement& select, CPart const& part, CQuestion const& question) {
    for (size_t n = 0; n < part.nNames; ++n) select.Bind(static_cast<int>(n) + 1, question.vName[part.nFirst + n]);
}

// Calls Ask with every question in turn, round and round; it returns how many addresses it found.
template <typename F>
void Add(CPart const& part, char const* pszSubject, F Loop) {
    benchmark::RegisterBenchmark((part.pszGroup + std::string("/") + pszSubject).c_str(),
                                 [=](benchmark::State& state) {
                                     size_t n = 0, nFound = 0;
                                     Loop(state, [&](auto const& Ask) {
                                         nFound += Ask(part.vQuestion[n]);
                                         if (++n == part.vQuestion.size()) n = 0;
                                     });
                                     state.SetItemsProcessed(static_cast<int64_t>(nFound));
                                 });
}

// The block's pool begins behind its entries; the count in front has 16 bits only.
size_t CountOf(CView const& block) {
    return (block.Size() - block.PoolSize() - 12) / 28;
}

void AddPart(CBench& bench, CPart const& part) {
    CAddrDic& dic = bench.dictionary.Dic();
    Add(part, "GetAddrFromAddrPart", [&dic](benchmark::State& state, auto const& Each) {
        for (auto _ : state)
            Each([&](CQuestion const& question) {
                std::vector<tagADDR> vAddr;
                dic.GetAddrFromAddrPart(question.strText.c_str(), vAddr);
                DoNotOptimize(vAddr.data());
                return vAddr.size();
            });
    });
    Add(part, "GetAdrFromAdd", [](benchmark::State& state, auto const& Each) {
        COpenApi const api;
        for (auto _ : state)
            Each([](CQuestion const& question) {
                HGLOBAL h = nullptr;
                return GetAdrFromAdd(question.strText.c_str(), &h) == 0 ? CountOf(CView(h)) : 0;
            });
    });
    Add(part, "sqlite_memory", [&bench, part](benchmark::State& state, auto const& Each) {
        CStatement select(bench.memory, part.pszSql);
        std::vector<char> vText;
        for (auto _ : state)
            Each([&](CQuestion const& question) {
                BindNames(select, part, question);
                return select.CopyRows(vText);
            });
    });
}

// Sums over all texts. Superseded entries are in the table and not in the library's answers; those of the whole country
// are answered twice.
void CompareSums(CBench& bench, CPart const& part, std::ostream& out) {
    CStatement select(bench.memory, part.pszSql);
    std::vector<char> vText;
    size_t nOurs = 0, nRows = 0;
    for (CQuestion const& question : part.vQuestion) {
        std::vector<tagADDR> vAddr;
        bench.dictionary.Dic().GetAddrFromAddrPart(question.strText.c_str(), vAddr);
        nOurs += vAddr.size();
        BindNames(select, part, question);
        nRows += select.CopyRows(vText);
    }
    out << part.pszGroup << ": " << part.vQuestion.size() << " texts, " << nOurs << " addresses, SQLite " << nRows
        << '\n';
    if (nOurs == 0) throw std::runtime_error(std::string(part.pszGroup) + ": no answers");
}

} // namespace

void RegisterParts(CBench& bench, std::ostream& out) {
    static std::vector<CQuestion> const vPref = {{"東京都", "", {"東京都", "", "", ""}, {}, {}, {}}};
    static std::vector<CQuestion> const vAll = {{"", "", {"", "", "", ""}, {}, {}, {}}};
    for (CPart const& part :
         {CPart{"part_city", bench.questions.vCity, SQL_CITY, 0, 2},
          CPart{"part_front", bench.questions.vFront, SQL_FRONT, 1, 2},
          CPart{"part_prefecture", vPref, SQL_PREF, 0, 1}, CPart{"part_all", vAll, SQL_ALL, 0, 0}}) {
        CompareSums(bench, part, out);
        AddPart(bench, part);
    }
}
