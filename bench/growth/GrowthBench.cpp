// GrowthBench.cpp - qeadrs_growth DICTIONARY [BENCHMARK OPTION...]: the cost of every query on a dictionary of any
// size. qeadrs_growth --memory DICTIONARY: what a process keeps for itself (Memory.h).
#include "bench/growth/Memory.h"
#include "bench/growth/Questions.h"

#include "bench/AddressRecord.h"
#include "bench/OpenApi.h"
#include "bench/World.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>

#include <benchmark/benchmark.h>

namespace {

constexpr size_t MOST_QUESTIONS = 20000; // of each kind
constexpr size_t FIRST_SEARCHES = 16;    // enough for an object to make what it keeps
constexpr double WARM_UP = 0.5;          // seconds

// Of this thread's processor time: others may be busy on the machine.
double SecondsWorked() {
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

// The process-wide dictionary of the C interface; closed while opening is measured.
std::optional<COpenApi>& Api() {
    static std::optional<COpenApi> api;
    return api;
}

// Asks the questions one after the other, round and round. Ask returns how many answers there were. Before the first
// measurement they are asked for a while: then pages are mapped, and what the object keeps is made.
template <typename T, typename F>
void AddLoop(std::string const& strName, std::vector<T> const& vQuestion, F Ask) {
    if (vQuestion.empty()) return;
    auto const pWarm = std::make_shared<bool>(false);
    benchmark::RegisterBenchmark(strName.c_str(), [&vQuestion, Ask = std::move(Ask), pWarm](benchmark::State& state) {
        if (!Api()) Api().emplace();
        double const dStart = SecondsWorked();
        for (size_t n = 0; !*pWarm && n < vQuestion.size(); ++n) {
            Ask(vQuestion[n]);
            if (n >= FIRST_SEARCHES && SecondsWorked() - dStart > WARM_UP) break;
        }
        *pWarm = true;
        size_t n = 0, nAnswers = 0;
        for (auto _ : state) {
            nAnswers += Ask(vQuestion[n]);
            if (++n == vQuestion.size()) n = 0;
        }
        state.counters["answers"] =
            benchmark::Counter(static_cast<double>(nAnswers), benchmark::Counter::kAvgIterations);
    });
}

void AddCodes(CAddrDic& dic, CGrowthQuestions const& questions) {
    AddLoop("search_code", questions.vCode, [&dic](std::string const& strCode) -> size_t {
        return dic.SearchPostCode7(strCode.c_str()) < 0 ? 0 : 1;
    });
    static std::vector<tagADDR> vAddr;
    AddLoop("code_reused", questions.vCode, [&dic](std::string const& strCode) {
        vAddr.clear();
        dic.GetAddrFromPostCode7(strCode.c_str(), vAddr);
        return vAddr.size();
    });
    AddLoop("code_block", questions.vCode, [](std::string const& strCode) -> size_t {
        HGLOBAL h = nullptr;
        if (GetAdrFromZip(strCode.c_str(), &h) != 0) return 0;
        return CView(h).Count();
    });
    AddLoop("old_code", questions.vOld, [&dic](std::string const& strOld) {
        vAddr.clear();
        dic.GetAddrFromPostCode5(strOld.c_str(), vAddr);
        return vAddr.size();
    });
}

// The caller's record is filled before each call, as a caller does.
size_t AskZip(CPlaceQuestion const& question) {
    static tagADDRESSRECORD record;
    record.Fill(question.strAddress, question.strOffice);
    return PstAdrGetZip(&record) == 0 ? 1 : 0;
}

void AddAddresses(CAddrDic& dic, CGrowthQuestions const& questions) {
    AddLoop("address_whole", questions.vWhole, AskZip);
    AddLoop("address_bare", questions.vBare, AskZip);
    AddLoop("address_nothing", questions.vNothing, AskZip);
    AddLoop("address_office", questions.vOffice, AskZip);
    AddLoop("address_latest", questions.vGone, [&dic](std::string const& strText) -> size_t {
        tagADDR addr(0);
        return dic.GetLatestAddr(strText.c_str(), addr);
    });
    AddLoop("part_city", questions.vPartCity, [&dic](std::string const& strText) {
        std::vector<tagADDR> vAddr;
        dic.GetAddrFromAddrPart(strText.c_str(), vAddr);
        return vAddr.size();
    });
}

void AddLists(CAddrDic& dic, CGrowthQuestions const& questions) {
    static std::vector<int> vPref(PREF_ORDER_ROWS);
    for (int n = 0; n < PREF_ORDER_ROWS; ++n) vPref[static_cast<size_t>(n)] = n;
    AddLoop("list_prefectures", vPref, [&dic](int) {
        std::vector<tagADDR> vAddr;
        dic.GetPref(vAddr);
        return vAddr.size();
    });
    AddLoop("list_cities", vPref, [&dic](int nPref) {
        std::vector<tagADDR> vPrefs, vAddr;
        dic.GetPref(vPrefs);
        dic.GetCityFromNo(static_cast<unsigned long>(nPref), vAddr);
        return vAddr.size();
    });
    AddLoop("list_towns", questions.vCity, [&dic](std::string const& strCity) {
        std::vector<tagADDR> vPrefs, vAddr;
        dic.GetPrefFromCity(strCity.c_str(), vPrefs);
        dic.GetTownFromNo(0, vAddr);
        return vAddr.size();
    });
}

// A code, and how many entries begin with it.
struct CRefineQuestion {
    std::string strCode;
    size_t nEntries;
};

std::vector<CRefineQuestion> CountEntries(CAddrDic& dic, std::vector<std::string> const& vCode) {
    std::vector<CRefineQuestion> vQuestion;
    for (std::string const& strCode : vCode) {
        long const nFirst = dic.SearchPostCode7(strCode.c_str());
        auto nEnd = static_cast<unsigned long>(nFirst);
        for (; tagADDRINFO const* pInfo = dic.GetAddrInfo(nEnd); ++nEnd)
            if (strCode.compare(0, strCode.size(), dic.GetString(pInfo->nCode), strCode.size()) != 0) break;
        vQuestion.push_back({strCode, nEnd - static_cast<unsigned long>(nFirst)});
    }
    return vQuestion;
}

// The same query again would find its tree: the tree is emptied in between.
void AddRefining(CAddrDic& dic, CGrowthQuestions const& questions) {
    static std::vector<CRefineQuestion> const vCode = CountEntries(dic, questions.vCode);
    static std::vector<CRefineQuestion> const vLead = CountEntries(dic, questions.vLead);
    auto const Refine = [&dic](CRefineQuestion const& question) {
        std::string strNone, strCode = question.strCode;
        dic.MakeRefineTree(strNone.data(), "");
        dic.MakeRefineTree(strCode.data(), "");
        return question.nEntries;
    };
    AddLoop("refine_code", vCode, Refine);
    AddLoop("refine_lead3", vLead, Refine);
}

// The first searches of a fresh object over the whole country: the time is that of the dearest one, which makes
// tables where some are made. The pages of the dictionary have been mapped before.
void AddFirstSearches(CMappedDictionary const& dictionary, CGrowthQuestions const& questions) {
    auto* const pBenchmark = benchmark::RegisterBenchmark("dearest_nothing", [&](benchmark::State& state) {
        double dFirst = 0;
        for (auto _ : state) {
            CAddrDic dic;
            dic.SetDictionary(dictionary.Image());
            double dSlowest = 0;
            for (size_t n = 0; n < FIRST_SEARCHES; ++n) {
                double const dStart = SecondsWorked();
                tagADDR addr(0);
                dic.DivideAddr(questions.vNothing[n % questions.vNothing.size()].strAddress.c_str(), &addr);
                double const d = SecondsWorked() - dStart;
                if (n == 0) dFirst += d;
                dSlowest = std::max(dSlowest, d);
            }
            state.SetIterationTime(dSlowest);
        }
        state.counters["first_ns"] = 1e9 * dFirst / static_cast<double>(state.iterations());
    });
    pBenchmark->UseManualTime()->Iterations(3);
}

void AddOpening(CGrowthQuestions const& questions) {
    AddLoop("open_first_answer", questions.vCode, [](std::string const& strCode) -> size_t {
        Api().reset();
        if (PstAdrOpen() != 0) std::abort();
        HGLOBAL h = nullptr;
        size_t const nAnswers = GetAdrFromZip(strCode.c_str(), &h) == 0 ? CView(h).Count() : 0;
        PstAdrClose();
        return nAnswers;
    });
}

void AddContext(char const* pszName, size_t n) {
    benchmark::AddCustomContext(pszName, std::to_string(n));
}

int Measure(std::string const& strDictionary) {
    CMappedDictionary const dictionary(strDictionary);
    CProfile const profile(strDictionary);
    CGrowthQuestions const questions = DrawQuestions(dictionary, MOST_QUESTIONS);
    AddContext("bytes", dictionary.Size());
    AddContext("entries", dictionary.Word(HDR_INFO_COUNT));
    AddContext("cities", dictionary.Word(HDR_CITY_COUNT));
    AddContext("towns", dictionary.Word(HDR_TOWN_COUNT));
    AddContext("seed", BENCH_SEED);
    CAddrDic dic;
    dic.SetDictionary(dictionary.Image());
    AddCodes(dic, questions);
    AddAddresses(dic, questions);
    AddLists(dic, questions);
    AddRefining(dic, questions);
    AddFirstSearches(dictionary, questions);
    AddOpening(questions); // last: the API is closed from then on
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}

} // namespace

int main(int nArguments, char** ppszArgument) try {
    if (nArguments == 3 && std::string(ppszArgument[1]) == "--memory") {
        MeasureMemory(ppszArgument[2], std::cout);
        return EXIT_SUCCESS;
    }
    benchmark::Initialize(&nArguments, ppszArgument);
    if (nArguments != 2) {
        std::cerr << "usage: qeadrs_growth DICTIONARY [BENCHMARK OPTION...] | --memory DICTIONARY\n";
        return 2;
    }
    return Measure(ppszArgument[1]);
} catch (std::exception const& error) {
    std::cerr << "qeadrs_growth: " << error.what() << '\n';
    return EXIT_FAILURE;
}
