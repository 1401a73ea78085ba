// Memory.cpp - writing the questions, starting the process, reading what it measured.
#include "bench/Memory.h"

#include "bench/Benchmarks.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <ostream>
#include <random>
#include <stdexcept>

namespace {

constexpr size_t QUESTIONS = 10000;
constexpr size_t CITIES_BROWSED = 20; // of a prefecture: at most, so that the positions exist everywhere

// Question n of a kind, as a line for the process.
using PFNLINE = std::function<std::string(size_t)>;

std::string AddressLine(char cKind, std::vector<CQuestion> const& vQuestion, size_t n) {
    CQuestion const& question = vQuestion[n % vQuestion.size()];
    return cKind + question.strText + '\t' + question.strOffice;
}

PFNLINE Codes(char cKind, CCodes const& codes) {
    return [=, &codes](size_t n) { return cKind + std::string(codes[n % codes.size()].szCode) + '\t'; };
}

PFNLINE Addresses(char cKind, std::vector<CQuestion> const& vQuestion) {
    return [=, &vQuestion](size_t n) { return AddressLine(cKind, vQuestion, n); };
}

// Seven questions of ten by a whole code, two by a part of it, one by an old code.
std::vector<PFNLINE> ByCode(CBench const& bench) {
    std::vector<PFNLINE> vKind(7, Codes('z', bench.codes7));
    vKind.push_back(Codes('z', bench.codes5));
    vKind.push_back(Codes('z', bench.codes3));
    vKind.push_back(Codes('o', bench.oldCodes));
    return vKind;
}

// Ten kinds, a tenth of the questions each.
std::vector<PFNLINE> OfAllKinds(CBench const& bench) {
    CQuestions const& questions = bench.questions;
    return {Codes('z', bench.codes7),
            Codes('z', bench.codes3),
            Codes('o', bench.oldCodes),
            Addresses('a', questions.vFull),
            Addresses('a', questions.vBare),
            Addresses('n', questions.vNothing),
            Addresses('a', questions.vOffice),
            Addresses('l', questions.vFull),
            Addresses('p', questions.vCity),
            [](size_t n) { return 'b' + std::to_string(n % 47) + '\t' + std::to_string(n % CITIES_BROWSED); }};
}

void WriteQuestions(std::string const& strPath, std::vector<PFNLINE> const& vKind) {
    std::vector<std::string> vLine;
    for (size_t n = 0; n < QUESTIONS && !vKind.empty(); ++n)
        vLine.push_back(vKind[n % vKind.size()](n / vKind.size()) + '\n');
    std::shuffle(vLine.begin(), vLine.end(), std::mt19937(BENCH_SEED));
    std::ofstream out(strPath, std::ios::binary);
    for (std::string const& strLine : vLine) out << strLine;
    if (!out.flush()) throw std::runtime_error(strPath + " cannot be written");
}

CMemoryRun RunOnce(CBench& bench, std::string strWhat, std::vector<PFNLINE> const& vKind) {
    std::string const strQuestions = std::string(BENCH_WORK) + "/questions.txt";
    std::string const strFigures = std::string(BENCH_WORK) + "/memory.txt";
    std::string const strDictionary = std::filesystem::canonical(bench.dictionary.Path());
    WriteQuestions(strQuestions, vKind);
    bench.runner.Run({BENCH_MEMORY_PROGRAM, std::getenv("QE_PROFILE"), strDictionary, strQuestions, strFigures});
    CMemoryRun run;
    run.strWhat = std::move(strWhat);
    std::ifstream in(strFigures);
    if (!(in >> run.nPrivateKb >> run.nHeldKb >> run.nMappedKb >> run.nOtherKb >> run.nResidentKb))
        throw std::runtime_error(strFigures + " has no figures");
    return run;
}

} // namespace

std::vector<CMemoryRun> MeasureMemory(CBench& bench) {
    return {RunOnce(bench, MEMORY_OPEN, {}), RunOnce(bench, "10,000 questions by code", ByCode(bench)),
            RunOnce(bench, "10,000 questions of all kinds", OfAllKinds(bench))};
}

void PrintMemory(std::vector<CMemoryRun> const& vRun, std::ostream& out) {
    out << "\nMemory of a fresh process, risen since just before PstAdrOpen; resident: the whole process.\n\n"
           "| after | private | of it held | pages of the dictionary | other clean pages | resident |\n"
           "|---|--:|--:|--:|--:|--:|\n";
    for (CMemoryRun const& run : vRun)
        out << "| " << run.strWhat << " | " << run.nPrivateKb << " KB | " << run.nHeldKb << " KB | " << run.nMappedKb
            << " KB | " << run.nOtherKb << " KB | " << run.nResidentKb << " KB |\n";
}
