// Instructions.cpp - qeadrs_instructions DICTIONARY: asks a fixed number of questions of each kind, for a tool that
// counts instructions from outside (instructions.sh). Prints a line per kind, in the order of its counts: the number of
// calls and what was called.
#include "bench/AddressRecord.h"
#include "bench/OpenApi.h"
#include "bench/Questions.h"
#include "bench/Spellings.h"
#include "text/AddressText.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <functional>
#include <iostream>

using PFNASK = std::function<void(size_t)>;

// Everything that is counted happens in here, and each call of it is one count: so its name is kept.
extern "C" __attribute__((noinline, visibility("default"))) void CountedCalls(PFNASK const& Ask, size_t nCalls) {
    for (size_t n = 0; n < nCalls; ++n) Ask(n);
}

namespace {

constexpr size_t CALLS = 5000;    // each kind; counting takes a hundred times as long as running
constexpr size_t FEW_CALLS = 100; // where one takes a thousand times as long
constexpr size_t BATCH = 64;

// The last question is asked once before: what the first call of all needs (resolving its symbol) is not counted.
void Count(char const* pszWhat, size_t nQuestions, PFNASK const& Ask, size_t nLimit = CALLS) {
    size_t const nCalls = std::min(nQuestions, nLimit);
    Ask(nQuestions - 1);
    CountedCalls(Ask, nCalls);
    std::cout << nCalls << ' ' << pszWhat << std::endl;
}

void CountCodes(CAddrDic& dic, CCodes const& vCode, CCodes const& vOld, CCodes const& vLead) {
    std::vector<tagADDR> vAddr;
    Count("SearchPostCode7", vCode.size(), [&](size_t n) { dic.SearchPostCode7(vCode[n].szCode); });
    Count("GetAddrFromPostCode7, vector reused", vCode.size(), [&](size_t n) {
        vAddr.clear();
        dic.GetAddrFromPostCode7(vCode[n].szCode, vAddr);
    });
    Count("GetAdrFromZip, GlobalFree", vCode.size(), [&](size_t n) {
        HGLOBAL h = nullptr;
        GetAdrFromZip(vCode[n].szCode, &h);
        GlobalFree(h);
    });
    Count(
        "GetAddrFromPostCode5", vOld.size(),
        [&](size_t n) {
            vAddr.clear();
            dic.GetAddrFromPostCode5(vOld[n].szCode, vAddr);
        },
        FEW_CALLS);
    Count("MakeRefineTree, five digits", vLead.size(), [&](size_t n) {
        tagCODE code = vLead[n];
        dic.MakeRefineTree(code.szCode, "");
    });
}

void CountZip(char const* pszWhat, std::vector<CQuestion> const& vQuestion, size_t nLimit = CALLS) {
    Count(
        pszWhat, vQuestion.size(),
        [&](size_t n) {
            tagADDRESSRECORD record;
            record.Fill(vQuestion[n].strText, vQuestion[n].strOffice);
            PstAdrGetZip(&record);
        },
        nLimit);
}

void CountAddresses(CAddrDic& dic, CQuestions const& questions) {
    CountZip("PstAdrGetZip, full address", questions.vFull);
    CountZip("PstAdrGetZip, without prefecture", questions.vBare);
    CountZip("PstAdrGetZip, nothing matches", questions.vNothing, FEW_CALLS);
    CountZip("PstAdrGetZip, organisation", questions.vOffice);
    Count("DivideAddr, full address", questions.vFull.size(), [&](size_t n) {
        tagADDR addr(0);
        dic.DivideAddr(questions.vFull[n].strText.c_str(), &addr);
    });
    Count("GetLatestAddr, full address", questions.vFull.size(), [&](size_t n) {
        tagADDR addr(0);
        dic.GetLatestAddr(questions.vFull[n].strText.c_str(), addr);
    });
}

// The index of names is there, and made where the dictionary has none, before any is counted: Count() asks once first.
void CountReadings(CAddrDic& dic, CQuestions const& questions) {
    std::vector<CSpelling> const vSpelling = MakeSpellings(questions);
    std::vector<std::string_view> vText;
    for (CSpelling const& spelling : vSpelling) vText.push_back(spelling.strText);
    qeadrs::CAddressText text(dic);
    Count("CAddressText::Read, as people write", vText.size(), [&](size_t n) { text.Read(vText[n]); });
    Count("CAddressText::Read, as the table", vText.size(), [&](size_t n) { text.Read(vSpelling[n].strTable); });
    std::vector<QETEXTREADING> vReading(BATCH);
    Count("CAddressText::ReadBatch, 64 addresses", vText.size() / BATCH,
          [&](size_t n) { text.ReadBatch(&vText[n * BATCH], BATCH, vReading.data()); });
}

} // namespace

int main(int nArguments, char** ppszArgument) try {
    if (nArguments != 2) throw std::runtime_error("usage: qeadrs_instructions DICTIONARY");
    CBenchDictionary dictionary(ppszArgument[1]);
    CProfile const profile(ppszArgument[1]);
    COpenApi const api;
    CAddrDic& dic = dictionary.Dic();
    CountCodes(dic, MakeCodes(dictionary.Rows(), 7, NO_LIMIT), MakeOldCodes(dictionary.Rows(), NO_LIMIT),
               MakeCodes(dictionary.Rows(), 5, NO_LIMIT));
    CQuestions const questions = MakeQuestions(dic, CPlainTree(dic), CALLS);
    CountAddresses(dic, questions);
    CountReadings(dic, questions);
    return EXIT_SUCCESS;
} catch (std::exception const& error) {
    std::cerr << "qeadrs_instructions: " << error.what() << '\n';
    return EXIT_FAILURE;
}
