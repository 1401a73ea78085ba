// Lookups.cpp - from a code to its addresses: each query beside the SQL statement that answers the same.
#include "bench/Benchmarks.h"
#include "bench/OpenApi.h"

#include <algorithm>
#include <cstring>
#include <ostream>
#include <stdexcept>
#include <unordered_map>

#include <benchmark/benchmark.h>

namespace {

using benchmark::DoNotOptimize;

// The record of PstAdrCity: sort type 2 and one of the two codes.
struct tagCITYQUERY {
    uint16_t nSortType;
    char szOldCode[6];
    char szCode[8];
};
static_assert(sizeof(tagCITYQUERY) == 16);

tagCITYQUERY CityQuery(tagCODE const& code, bool bOldCode) {
    tagCITYQUERY query = {SORT_DICTIONARY, {}, {}};
    if (bOldCode)
        std::memcpy(query.szOldCode, code.szCode, sizeof query.szOldCode);
    else
        std::memcpy(query.szCode, code.szCode, sizeof query.szCode);
    return query;
}

void BindCode(CStatement& statement, tagCODE const& code, bool bLead) {
    statement.Bind(1, code.szCode);
    if (bLead) statement.Bind(2, code.szEnd);
}

long LowerBound(std::vector<std::string> const& vCode, std::string_view strCode) {
    auto const it = std::lower_bound(vCode.begin(), vCode.end(), strCode);
    return it != vCode.end() && it->compare(0, strCode.size(), strCode) == 0 ? it - vCode.begin() : -1;
}

// --- the loops -----------------------------------------------------------------------------------------------------

template <typename F>
void OverCodes(benchmark::State& state, CCodes const& codes, F const& Ask) {
    size_t n = 0;
    for (auto _ : state) {
        Ask(codes[n]);
        if (++n == codes.size()) n = 0;
    }
}

template <typename F>
void Add(std::string const& strName, CCodes const& codes, F Ask) {
    benchmark::RegisterBenchmark(strName.c_str(),
                                 [&codes, Ask = std::move(Ask)](benchmark::State& state) { Ask(state, codes); });
}

// Every text of every row copied, from both databases.
void AddCopies(CBench& bench, std::string const& strGroup, CCodes const& codes, char const* pszSql, bool bLead) {
    auto const AddFrom = [&](char const* pszSubject, CSqlite& db) {
        Add(strGroup + pszSubject, codes, [&db, pszSql, bLead](benchmark::State& state, CCodes const& vCode) {
            CStatement select(db, pszSql);
            std::vector<char> vText;
            OverCodes(state, vCode, [&](tagCODE const& code) {
                BindCode(select, code, bLead);
                DoNotOptimize(select.CopyRows(vText));
                benchmark::ClobberMemory();
            });
        });
    };
    AddFrom("/sqlite_memory", bench.memory);
    AddFrom("/sqlite_file", bench.file);
}

// Only the position of the first entry: no texts on either side.
void AddSearch(CBench& bench, std::string const& strGroup, CCodes const& codes, char const* pszSql, bool bLead) {
    Add(strGroup + "/SearchPostCode7", codes, [&bench](benchmark::State& state, CCodes const& vCode) {
        CAddrDic& dic = bench.dictionary.Dic();
        OverCodes(state, vCode, [&](tagCODE const& code) { DoNotOptimize(dic.SearchPostCode7(code.szCode)); });
    });
    Add(strGroup + "/lower_bound", codes, [&bench](benchmark::State& state, CCodes const& vCode) {
        std::vector<std::string> const& vEntry = bench.dictionary.EntryCodes();
        OverCodes(state, vCode, [&](tagCODE const& code) { DoNotOptimize(LowerBound(vEntry, code.szCode)); });
    });
    auto const AddFrom = [&](char const* pszSubject, CSqlite& db) {
        Add(strGroup + pszSubject, codes, [&db, pszSql, bLead](benchmark::State& state, CCodes const& vCode) {
            CStatement select(db, pszSql);
            OverCodes(state, vCode, [&](tagCODE const& code) {
                BindCode(select, code, bLead);
                DoNotOptimize(select.FirstNumber());
            });
        });
    };
    AddFrom("/sqlite_memory", bench.memory);
    AddFrom("/sqlite_file", bench.file);
}

// Every code's rows ready made, as the library would return them: what a lookup can come down to where memory does not
// count. A row has the texts only; the library's has its city node besides.
using CReadyRows = std::unordered_map<std::string, std::vector<tagADDR>>;

CReadyRows MakeReadyRows(std::vector<tagROW> const& vRow) {
    CReadyRows ready;
    for (tagROW const& row : vRow) ready[row.addr.pszPostCode].push_back(row.addr);
    return ready;
}

CReadyRows const& ReadyRows(CBench& bench) {
    static CReadyRows const ready = MakeReadyRows(bench.dictionary.Rows());
    return ready;
}

// Appended to a vector that is kept, as the library does it.
void AppendReadyRows(CReadyRows const& ready, char const* pszCode, std::vector<tagADDR>& vAddr) {
    auto const it = ready.find(pszCode);
    if (it != ready.end()) vAddr.insert(vAddr.end(), it->second.begin(), it->second.end());
}

void AddReadyRows(CReadyRows const& ready, std::string const& strGroup, CCodes const& codes) {
    Add(strGroup + "/unordered_map", codes, [&ready](benchmark::State& state, CCodes const& vCode) {
        std::vector<tagADDR> vAddr;
        OverCodes(state, vCode, [&](tagCODE const& code) {
            vAddr.clear();
            AppendReadyRows(ready, code.szCode, vAddr);
            DoNotOptimize(vAddr.data());
            benchmark::ClobberMemory();
        });
    });
}

using PFNLOOKUP = int (CAddrDic::*)(char const*, std::vector<tagADDR>&);

void AddVectors(CBench& bench, std::string const& strName, CCodes const& codes, PFNLOOKUP pfnLookup) {
    Add(strName + "_fresh", codes, [&bench, pfnLookup](benchmark::State& state, CCodes const& vCode) {
        CAddrDic& dic = bench.dictionary.Dic();
        OverCodes(state, vCode, [&](tagCODE const& code) {
            std::vector<tagADDR> vAddr;
            (dic.*pfnLookup)(code.szCode, vAddr);
            DoNotOptimize(vAddr.data());
            benchmark::ClobberMemory();
        });
    });
    Add(strName + "_reused", codes, [&bench, pfnLookup](benchmark::State& state, CCodes const& vCode) {
        CAddrDic& dic = bench.dictionary.Dic();
        std::vector<tagADDR> vAddr;
        OverCodes(state, vCode, [&](tagCODE const& code) {
            vAddr.clear();
            (dic.*pfnLookup)(code.szCode, vAddr);
            DoNotOptimize(vAddr.data());
            benchmark::ClobberMemory();
        });
    });
}

void AddZip(std::string const& strGroup, CCodes const& codes) {
    Add(strGroup + "/GetAdrFromZip", codes, [](benchmark::State& state, CCodes const& vCode) {
        COpenApi const api;
        OverCodes(state, vCode, [](tagCODE const& code) {
            HGLOBAL h = nullptr;
            GetAdrFromZip(code.szCode, &h);
            DoNotOptimize(h);
            GlobalFree(h);
        });
    });
}

void AddCities(CBench& bench, std::string const& strGroup, CCodes const& codes, bool bOldCode) {
    Add(strGroup + "/PstAdrCity", codes, [bOldCode](benchmark::State& state, CCodes const& vCode) {
        COpenApi const api;
        OverCodes(state, vCode, [bOldCode](tagCODE const& code) {
            tagCITYQUERY query = CityQuery(code, bOldCode);
            HGLOBAL h = nullptr;
            PstAdrCity(&query, &h);
            DoNotOptimize(h);
            GlobalFree(h);
        });
    });
    AddCopies(bench, strGroup, codes, bOldCode ? SQL_CITIES_BY_OLD : SQL_CITIES_BY_CODE, false);
}

// --- the comparison before the loops -------------------------------------------------------------------------------

void Report(std::ostream& out, char const* pszWhat, size_t nSame, size_t nAll) {
    out << "same answers, " << pszWhat << ": " << nSame << " of " << nAll << '\n';
}

bool SamePool(tagCODE const& code, CStatement& select, bool bLead, std::vector<char>& vText) {
    HGLOBAL h = nullptr;
    if (GetAdrFromZip(code.szCode, &h) != 0) return false;
    CView const block(h);
    BindCode(select, code, bLead);
    return select.CopyRows(vText) == block.Count() && vText.size() == block.PoolSize() &&
           std::memcmp(vText.data(), block.Pool(), vText.size()) == 0;
}

void CheckPools(CBench& bench, CSqlite const& db, CCodes const& codes, bool bLead, char const* pszWhat,
                std::ostream& out) {
    CStatement select(db, bLead ? SQL_BY_LEAD : SQL_BY_CODE);
    std::vector<char> vText;
    size_t nSame = 0;
    for (tagCODE const& code : codes) {
        if (bench.dictionary.Dic().SearchPostCode7(code.szCode) !=
            LowerBound(bench.dictionary.EntryCodes(), code.szCode))
            throw std::runtime_error(std::string("SearchPostCode7 and lower_bound differ for ") + code.szCode);
        if (SamePool(code, select, bLead, vText)) ++nSame;
    }
    Report(out, pszWhat, nSame, codes.size());
    if (nSame != codes.size()) throw std::runtime_error("GetAdrFromZip and SQLite answer differently");
}

// The very same texts: both lead into the dictionary.
bool SameTexts(tagADDR const& left, tagADDR const& right) {
    return left.pszPostCode == right.pszPostCode && left.pszPref == right.pszPref && left.pszCity == right.pszCity &&
           left.pszTown == right.pszTown && left.pszArea == right.pszArea && left.pszOffice == right.pszOffice &&
           left.pszBlock == right.pszBlock && left.pszNote == right.pszNote;
}

void CheckReadyRows(CBench& bench, CReadyRows const& ready, std::ostream& out) {
    std::vector<tagADDR> vOurs, vReady;
    for (tagCODE const& code : bench.codes7) {
        vOurs.clear();
        vReady.clear();
        bench.dictionary.Dic().GetAddrFromPostCode7(code.szCode, vOurs);
        AppendReadyRows(ready, code.szCode, vReady);
        if (!std::equal(vOurs.begin(), vOurs.end(), vReady.begin(), vReady.end(), SameTexts))
            throw std::runtime_error(std::string("the hash table and the library differ for ") + code.szCode);
    }
    Report(out, "rows of a code (hash table)", bench.codes7.size(), bench.codes7.size());
}

// Counts only: the order may differ, and a scan that ends after 10000 entries does not reach every old code.
void CheckCounts(CBench& bench, std::ostream& out) {
    CStatement selectOld(bench.memory, SQL_BY_OLD);
    CStatement selectCities(bench.memory, SQL_CITIES_BY_CODE);
    std::vector<char> vText;
    std::vector<tagADDR> vAddr;
    size_t nSame = 0;
    for (tagCODE const& code : bench.oldCodes) {
        vAddr.clear();
        bench.dictionary.Dic().GetAddrFromPostCode5(code.szCode, vAddr);
        BindCode(selectOld, code, false);
        if (selectOld.CopyRows(vText) == vAddr.size()) ++nSame;
    }
    Report(out, "number of addresses of an old code", nSame, bench.oldCodes.size());
    nSame = 0;
    for (tagCODE const& code : bench.codes7) {
        tagCITYQUERY query = CityQuery(code, false);
        HGLOBAL h = nullptr;
        if (PstAdrCity(&query, &h) != 0) continue;
        BindCode(selectCities, code, false);
        if (CView(h).Count() == selectCities.CopyRows(vText)) ++nSame;
    }
    Report(out, "number of cities of a code", nSame, bench.codes7.size());
}

} // namespace

void CheckAnswers(CBench& bench, std::ostream& out) {
    COpenApi const api;
    CheckPools(bench, bench.memory, bench.codes7, false, "texts of a code (memory)", out);
    CheckPools(bench, bench.file, bench.codes7, false, "texts of a code (file)", out);
    CheckPools(bench, bench.memory, bench.codes5, true, "texts of 5 leading digits", out);
    CheckPools(bench, bench.memory, bench.codes3, true, "texts of 3 leading digits", out);
    CheckReadyRows(bench, ReadyRows(bench), out);
    CheckCounts(bench, out);
}

void RegisterLookups(CBench& bench) {
    AddSearch(bench, "search_code7", bench.codes7, SQL_FIRST_BY_CODE, false);
    AddSearch(bench, "search_lead3", bench.codes3, SQL_FIRST_BY_LEAD, true);

    AddVectors(bench, "lookup_code7/GetAddrFromPostCode7", bench.codes7, &CAddrDic::GetAddrFromPostCode7);
    AddZip("lookup_code7", bench.codes7);
    AddReadyRows(ReadyRows(bench), "lookup_code7", bench.codes7);
    AddCopies(bench, "lookup_code7", bench.codes7, SQL_BY_CODE, false);

    AddVectors(bench, "lookup_lead5/GetAddrFromPostCode7", bench.codes5, &CAddrDic::GetAddrFromPostCode7);
    AddZip("lookup_lead5", bench.codes5);
    AddCopies(bench, "lookup_lead5", bench.codes5, SQL_BY_LEAD, true);

    AddVectors(bench, "lookup_lead3/GetAddrFromPostCode7", bench.codes3, &CAddrDic::GetAddrFromPostCode7);
    AddZip("lookup_lead3", bench.codes3);
    AddCopies(bench, "lookup_lead3", bench.codes3, SQL_BY_LEAD, true);

    AddVectors(bench, "lookup_old/GetAddrFromPostCode5", bench.oldCodes, &CAddrDic::GetAddrFromPostCode5);
    AddCopies(bench, "lookup_old", bench.oldCodes, SQL_BY_OLD, false);

    AddCities(bench, "cities_code7", bench.codes7, false);
    AddCities(bench, "cities_old", bench.oldCodes, true);
}
