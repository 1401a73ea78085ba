// Refining.cpp - the candidate tree of a prefecture, of a city and of all codes that begin with one digit; beside the
// same tree put together entry by entry, and a SELECT that sorts the same rows. Then trees of many cities and of many
// codes in turn.
//
// The same query again would find the tree as it is, so the tree is emptied in between: that is part of the measured
// time.
#include "bench/Benchmarks.h"
#include "bench/SqliteTable.h"

#include "tree/DispTree.h"

#include <algorithm>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

namespace {

constexpr int NAME_SIZE = sizeof(tagADDRPNT::szName);

// One query: a part of a code, or an address.
struct CQuery {
    char const* pszGroup;
    char const* pszCode;
    char const* pszAddr;
    char const* pszSql; // the same rows, sorted as the tree is
    char const* pszFirst;
    char const* pszSecond; // its parameters, "" for none
};

// One of many, without the yardstick's statement.
struct CRefinement {
    std::string strCode, strAddr;
    std::string strFirst, strSecond;
};

using CNodes = std::vector<tagADDRNODE const*>;

// What the library exports for a program that builds its own tree.
class CEntryByEntry {
  public:
    explicit CEntryByEntry(CAddrDic& dic)
        : m_dic(dic),
          m_pNodes(dic.GetAddrNode(0)),
          m_pStrings(reinterpret_cast<unsigned char const*>(dic.GetStrings())) {}

    void Add(tagADDRINFO const* pInfo) {
        tagADDRNODE const* vNode[3];
        if (m_dic.GetAddrPtr(pInfo, &vNode[0], &vNode[1], &vNode[2]) == 0) return;
        if (vNode[0] != nullptr && vNode[1] != nullptr) MakeTreeData(m_tree, vNode, m_pNodes, m_pStrings, NAME_SIZE);
    }
    std::vector<tagADDRPNT> TakeSorted() {
        recSortTree(m_tree);
        return std::move(m_tree);
    }

  private:
    CAddrDic& m_dic;
    tagADDRNODE const* m_pNodes;
    unsigned char const* m_pStrings;
    std::vector<tagADDRPNT> m_tree;
};

std::vector<tagADDRPNT> MakeTree(CAddrDic& dic, CQuery const& query) {
    CEntryByEntry tree(dic);
    std::string const strCode = query.pszCode;
    if (!strCode.empty()) {
        long const nFound = dic.SearchPostCode7(strCode.c_str());
        for (auto n = static_cast<unsigned long>(std::max(nFound, 0L));; ++n) {
            tagADDRINFO const* const pInfo = dic.GetAddrInfo(n);
            if (pInfo == nullptr ||
                strCode.compare(0, strCode.size(), dic.GetString(pInfo->nCode), strCode.size()) != 0)
                break;
            tree.Add(pInfo);
        }
        return tree.TakeSorted();
    }
    tagADDR addr(0);
    CNodes vNode;
    dic.DivideAddr(query.pszAddr, &addr);
    dic.recCollectNode(addr.pCityNode == nullptr ? addr.pPrefNode : addr.pCityNode, vNode);
    for (tagADDRNODE const* const pNode : vNode) tree.Add(dic.GetAddrInfo(pNode->nInfo));
    return tree.TakeSorted();
}

size_t CountLeaves(std::vector<tagADDRPNT> const& tree) {
    size_t nLeaves = 0;
    for (tagADDRPNT const& pref : tree)
        for (tagADDRPNT const& city : pref.vChild) nLeaves += city.vChild.size();
    return nLeaves;
}

// The same as the library has it, by its counts.
size_t CountLeaves(CAddrDic& dic) {
    size_t nLeaves = 0;
    short nPrefs = 0, nCities = 0, nTowns = 0, nWidth;
    dic.GetAdrNum(0, 0, 0, &nPrefs, &nCities, &nTowns, &nWidth, &nWidth, &nWidth);
    for (int nPref = 0; nPref < nPrefs; ++nPref) {
        dic.GetAdrNum(nPref, 0, 0, &nPrefs, &nCities, &nTowns, &nWidth, &nWidth, &nWidth);
        for (int nCity = 0; nCity < nCities; ++nCity) {
            dic.GetAdrNum(nPref, nCity, 0, &nPrefs, &nCities, &nTowns, &nWidth, &nWidth, &nWidth);
            nLeaves += static_cast<size_t>(nTowns);
        }
    }
    return nLeaves;
}

void Refine(CAddrDic& dic, CQuery const& query) {
    std::string strCode = query.pszCode, strNone;
    dic.MakeRefineTree(strNone.data(), "");
    dic.MakeRefineTree(strCode.data(), query.pszAddr);
}

void AddQuery(CQuery const& query, CAddrDic& dic, CSqlite& db) {
    std::string const strGroup = query.pszGroup;
    benchmark::RegisterBenchmark((strGroup + "/MakeRefineTree").c_str(), [=, &dic](benchmark::State& state) {
        for (auto _ : state) Refine(dic, query);
    });
    benchmark::RegisterBenchmark((strGroup + "/entry_by_entry").c_str(), [=, &dic](benchmark::State& state) {
        for (auto _ : state) benchmark::DoNotOptimize(MakeTree(dic, query));
    });
    benchmark::RegisterBenchmark((strGroup + "/sqlite_memory").c_str(), [=, &db](benchmark::State& state) {
        CStatement select(db, query.pszSql);
        std::vector<char> vText;
        for (auto _ : state) {
            select.Bind(1, query.pszFirst);
            if (*query.pszSecond != '\0') select.Bind(2, query.pszSecond);
            benchmark::DoNotOptimize(select.CopyRows(vText));
            benchmark::ClobberMemory();
        }
    });
}

// Another query each time, so nothing has to be emptied in between.
void AddTurns(std::string const& strGroup, std::vector<CRefinement> const& vQuery, char const* pszSql, CAddrDic& dic,
              CSqlite& db) {
    benchmark::RegisterBenchmark((strGroup + "/MakeRefineTree").c_str(), [&](benchmark::State& state) {
        size_t n = 0;
        for (auto _ : state) {
            char szCode[8] = {};
            vQuery[n].strCode.copy(szCode, sizeof szCode - 1);
            dic.MakeRefineTree(szCode, vQuery[n].strAddr.c_str());
            if (++n == vQuery.size()) n = 0;
        }
    });
    benchmark::RegisterBenchmark((strGroup + "/sqlite_memory").c_str(), [&, pszSql](benchmark::State& state) {
        CStatement select(db, pszSql);
        std::vector<char> vText;
        size_t n = 0;
        for (auto _ : state) {
            select.Bind(1, vQuery[n].strFirst);
            select.Bind(2, vQuery[n].strSecond);
            benchmark::DoNotOptimize(select.CopyRows(vText));
            benchmark::ClobberMemory();
            if (++n == vQuery.size()) n = 0;
        }
    });
}

} // namespace

void RegisterRefining(CBench& bench, std::ostream& out) {
    static CQuery const vQuery[] = {
        {"refine_prefecture", "", "東京都",
         "SELECT city, town || area || office, code FROM addr WHERE pref = ?1 ORDER BY 1, 2", "東京都", ""},
        {"refine_city", "", "東京都港区",
         "SELECT town || area || office, code FROM addr WHERE pref = ?1 AND city = ?2 ORDER BY 1", "東京都", "港区"},
        {"refine_code", "1", "",
         "SELECT pref, city, town || area || office, code FROM addr WHERE code >= ?1 AND code < ?2 ORDER BY 1, 2, 3",
         "1", "2"},
    };
    CAddrDic& dic = bench.dictionary.Dic();
    for (CQuery const& query : vQuery) {
        Refine(dic, query);
        size_t const nLeaves = CountLeaves(dic);
        out << query.pszGroup << " \"" << query.pszCode << query.pszAddr << "\": " << nLeaves << " leaves\n";
        if (nLeaves != CountLeaves(MakeTree(dic, query)))
            throw std::runtime_error(std::string(query.pszGroup) + ": the two trees have different sizes");
        AddQuery(query, dic, bench.memory);
    }
    static std::vector<CRefinement> vCode, vCity;
    for (tagCODE const& code : bench.codes5) vCode.push_back({code.szCode, "", code.szCode, code.szEnd});
    for (CQuestion const& city : bench.questions.vCity)
        vCity.push_back({"", city.strText, city.vName[0], city.vName[1]});
    AddTurns("refine_codes5", vCode, vQuery[2].pszSql, dic, bench.memory);
    AddTurns("refine_cities", vCity, vQuery[1].pszSql, dic, bench.memory);
}
