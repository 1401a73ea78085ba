// AddressText.cpp - from an address to its town and code: each query beside a sorted list of whole town paths that is
// searched for the longest one that begins the text, once in memory and once in SQLite.
#include "bench/Addresses.h"
#include "bench/Benchmarks.h"
#include "bench/PathTable.h"

#include <algorithm>
#include <ostream>
#include <stdexcept>

#include <benchmark/benchmark.h>

namespace {

using benchmark::DoNotOptimize;

// --- the loops -----------------------------------------------------------------------------------------------------

// Asks for the texts one after the other, round and round.
template <typename T, typename F>
void AddLoop(std::string const& strName, std::vector<T> const& vText, F Ask) {
    benchmark::RegisterBenchmark(strName.c_str(), [&vText, Ask = std::move(Ask)](benchmark::State& state) {
        size_t n = 0;
        for (auto _ : state) {
            Ask(vText[n]);
            if (++n == vText.size()) n = 0;
        }
        state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
    });
}

void AddDivide(CAddrDic& dic, std::string const& strGroup, std::vector<std::string> const& vText) {
    AddLoop(strGroup + "/DivideAddr", vText, [&dic](std::string const& strText) {
        tagADDR addr(0);
        DoNotOptimize(dic.DivideAddr(strText.c_str(), &addr));
        DoNotOptimize(addr.pTownNode);
    });
}

void AddCode(CAddrDic& dic, std::string const& strGroup, std::vector<std::string> const& vText) {
    AddLoop(strGroup + "/GetPostCodeFromAddr", vText, [&dic](std::string const& strText) {
        tagADDR addr(0);
        DoNotOptimize(dic.GetPostCodeFromAddr(strText.c_str(), nullptr, addr));
        DoNotOptimize(addr.pszPostCode);
    });
}

void AddLatest(CAddrDic& dic, std::string const& strGroup, std::vector<std::string> const& vText) {
    AddLoop(strGroup + "/GetLatestAddr", vText, [&dic](std::string const& strText) {
        tagADDR addr(0);
        DoNotOptimize(dic.GetLatestAddr(strText.c_str(), addr));
        DoNotOptimize(addr.pszTown);
    });
}

void AddYardsticks(std::string const& strGroup, std::vector<std::string> const& vText,
                   std::vector<std::string> const& vPath, CSqlite& db) {
    AddLoop(strGroup + "/lower_bound", vText,
            [&vPath](std::string const& strText) { DoNotOptimize(LongestPathInMemory(vPath, strText)); });
    benchmark::RegisterBenchmark((strGroup + "/sqlite_memory").c_str(), [&vText, &db](benchmark::State& state) {
        CStatement select(db, SQL_LONGEST_PATH);
        std::vector<char> vRow;
        size_t n = 0;
        for (auto _ : state) {
            DoNotOptimize(LongestPathInSqlite(select, vRow, vText[n]));
            if (++n == vText.size()) n = 0;
        }
    });
}

// The name is normalised in place, so each call gets a copy, as a caller's record would hold it.
void AddOffices(CAddrDic& dic, std::vector<COfficeText> const& vOffice) {
    AddLoop("office/GetPostCodeFromAddr", vOffice, [&dic](COfficeText const& office) {
        char szName[256];
        size_t const nLength = std::min(office.strName.size(), sizeof szName - 1);
        std::memcpy(szName, office.strName.data(), nLength);
        szName[nLength] = '\0';
        tagADDR addr(0);
        DoNotOptimize(dic.GetPostCodeFromAddr(office.strAddress.c_str(), szName, addr));
        DoNotOptimize(addr.pszPostCode);
    });
}

// How often the town that the library finds is the longest path in the list.
void CompareTowns(CAddrDic& dic, std::vector<std::string> const& vText, std::vector<std::string> const& vPath,
                  CSqlite& db, bool bPref, char const* pszWhat, std::ostream& out) {
    CStatement select(db, SQL_LONGEST_PATH);
    std::vector<char> vRow;
    size_t nSame = 0;
    for (std::string const& strText : vText) {
        tagADDR addr(0);
        dic.DivideAddr(strText.c_str(), &addr);
        std::string strFound = addr.pszPref != nullptr && bPref ? addr.pszPref : "";
        for (char const* psz : {addr.pszCity, addr.pszTown}) strFound += psz == nullptr ? "" : psz;
        if (LongestPathInMemory(vPath, strText) != LongestPathInSqlite(select, vRow, strText))
            throw std::runtime_error("the two lists of towns answer differently for " + strText);
        if (strFound == LongestPathInMemory(vPath, strText)) ++nSame;
    }
    out << "same answers, " << pszWhat << ": " << nSame << " of " << vText.size() << '\n';
}

std::vector<std::string> TextsOf(std::vector<CQuestion> const& vQuestion) {
    std::vector<std::string> vText;
    for (CQuestion const& question : vQuestion) vText.push_back(question.strText);
    return vText;
}

} // namespace

void RegisterAddressText(CBench& bench, std::ostream& out) {
    CAddrDic& dic = bench.dictionary.Dic();
    static CAddressTexts const texts = MakeAddressTexts(dic);
    static std::vector<std::string> const vNothing = TextsOf(bench.questions.vNothing);
    static CSqlite paths(":memory:");
    static CSqlite barePaths(":memory:");
    FillPaths(paths, texts.vPath);
    FillPaths(barePaths, texts.vBarePath);
    CompareTowns(dic, texts.vWhole, texts.vPath, paths, true, "towns of whole addresses", out);
    CompareTowns(dic, texts.vBare, texts.vBarePath, barePaths, false, "towns of addresses without prefecture", out);

    AddDivide(dic, "address", texts.vWhole);
    AddCode(dic, "address", texts.vWhole);
    AddLatest(dic, "address", texts.vWhole);
    AddYardsticks("address", texts.vWhole, texts.vPath, paths);
    AddDivide(dic, "address_bare", texts.vBare);
    AddCode(dic, "address_bare", texts.vBare);
    AddLatest(dic, "address_bare", texts.vBare);
    AddYardsticks("address_bare", texts.vBare, texts.vBarePath, barePaths);
    if (!texts.vGone.empty()) {
        AddLatest(dic, "address_gone", texts.vGone);
        AddYardsticks("address_gone", texts.vGone, texts.vPath, paths);
    }
    AddDivide(dic, "nothing", vNothing);
    AddYardsticks("nothing", vNothing, texts.vPath, paths);
    AddOffices(dic, texts.vOffice);
}
