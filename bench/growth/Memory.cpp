// Memory.cpp - private memory by the kernel's own count: pages that no file backs, whoever asked for them.
#include "bench/growth/Memory.h"

#include "bench/AddressRecord.h"
#include "bench/OpenApi.h"
#include "bench/World.h"
#include "bench/growth/Questions.h"

#include <malloc.h>

#include <algorithm>
#include <fstream>
#include <ostream>
#include <stdexcept>
#include <vector>

namespace {

constexpr size_t QUESTIONS = 10000;
constexpr size_t NOTHING_EVERY = 50; // questions: one may take the time of a walk over all towns

// A figure of a line like "Anonymous:          132 kB".
long ReadKb(char const* pszFile, std::string const& strName) {
    std::ifstream in(pszFile);
    for (std::string strLine; std::getline(in, strLine);)
        if (strLine.compare(0, strName.size(), strName) == 0) return std::stol(strLine.substr(strName.size()));
    throw std::runtime_error(std::string(pszFile) + " has no " + strName);
}

long PrivateKb() {
    return ReadKb("/proc/self/smaps_rollup", "Anonymous:");
}

// Of the mapped files, the program's own among them.
long FileKb() {
    return ReadKb("/proc/self/status", "RssFile:");
}

template <typename T>
T const& Pick(std::vector<T> const& vQuestion, size_t n) {
    return vQuestion[n % vQuestion.size()];
}

void AskZip(CPlaceQuestion const& question) {
    tagADDRESSRECORD record;
    record.Fill(question.strAddress, question.strOffice);
    PstAdrGetZip(&record);
}

void AskLatest(std::string const& strText) {
    tagADDRESSRECORD record;
    record.Fill(strText, "");
    PstAdrGetLatestAdr(&record);
}

void AskTowns(std::string const& strCity) {
    tagADDRESSRECORD record;
    record.Fill(strCity, "");
    HGLOBAL h = nullptr;
    if (PstAdrRPrf(&record, &h) == 0) GlobalFree(h);
    if (PstAdrRTown(0, &h) == 0) GlobalFree(h);
}

void AskOldCode(std::string const& strOld) {
    tagADDRESSRECORD record;
    record.Fill("", "");
    strOld.copy(record.szOldCode, sizeof record.szOldCode - 1);
    HGLOBAL h = nullptr;
    if (PstAdrCity(&record, &h) == 0) GlobalFree(h);
}

void Ask(CGrowthQuestions const& questions, size_t n) {
    if (n % NOTHING_EVERY == 0) return AskZip(Pick(questions.vNothing, n / NOTHING_EVERY));
    HGLOBAL h = nullptr;
    switch (n % 7) {
    case 0:
        return AskZip(Pick(questions.vWhole, n));
    case 1:
        return AskZip(Pick(questions.vBare, n));
    case 2:
        return AskZip(Pick(questions.vOffice, n));
    case 3:
        return AskLatest(Pick(questions.vGone.empty() ? questions.vPartCity : questions.vGone, n));
    case 4:
        return AskTowns(Pick(questions.vCity, n));
    case 5:
        return AskOldCode(Pick(questions.vOld, n));
    default:
        if (GetAdrFromZip(Pick(questions.vCode, n).c_str(), &h) == 0) GlobalFree(h);
    }
}

} // namespace

void MeasureMemory(std::string const& strDictionary, std::ostream& out) {
    CProfile const profile(strDictionary);
    CGrowthQuestions const questions = DrawQuestions(CMappedDictionary(strDictionary), QUESTIONS);
    { COpenApi const loadsWhatOpeningLoads; }
    malloc_trim(0);
    long const nPrivate = PrivateKb(), nFile = FileKb();
    COpenApi const api;
    long const nOpen = PrivateKb() - nPrivate;
    for (size_t n = 0; n < QUESTIONS; ++n) Ask(questions, n);
    out << "{\"private_open\": " << nOpen << ", \"private_asked\": " << PrivateKb() - nPrivate
        << ", \"file_asked\": " << FileKb() - nFile << "}\n";
}
