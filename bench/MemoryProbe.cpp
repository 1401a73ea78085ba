// MemoryProbe.cpp - qeadrs_memory PROFILE DICTIONARY QUESTIONS FIGURES: opens the dictionary that the profile names,
// asks, and writes how much memory that took (Memory.h says what is counted).
//
// Nothing else runs in this process, and it measures without allocating: what has risen is the library's.
#include "bench/AddressRecord.h"

#include "api/Pstexec.h"

#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

struct CQuestionLine {
    char cKind;
    std::string strText, strMore;
};

// Sums over the mappings of the process, in KB.
struct CMemory {
    long nPrivateDirty = 0, nResident = 0, nMapped = 0;
};

// --- measuring -----------------------------------------------------------------------------------------------------

char szMaps[1 << 20];

void ReadMaps() {
    int const nFile = open("/proc/self/smaps", O_RDONLY | O_CLOEXEC);
    size_t nBytes = 0;
    for (ssize_t n; (n = read(nFile, szMaps + nBytes, sizeof szMaps - 1 - nBytes)) > 0;)
        nBytes += static_cast<size_t>(n);
    close(nFile);
    szMaps[nBytes] = '\0';
    if (nBytes == 0 || nBytes == sizeof szMaps - 1) throw std::runtime_error("/proc/self/smaps cannot be read");
}

// The number behind the key when the line begins with that, else 0.
long Field(char const* pszLine, char const* pszKey) {
    size_t const nLength = std::strlen(pszKey);
    return std::strncmp(pszLine, pszKey, nLength) == 0 ? std::strtol(pszLine + nLength, nullptr, 10) : 0;
}

// A mapping's first line begins with its address in hexadecimal and ends with its file; keys begin with a capital.
CMemory Measure(char const* pszDictionary) {
    ReadMaps();
    CMemory memory;
    bool bDictionary = false;
    for (char* pszLine = std::strtok(szMaps, "\n"); pszLine != nullptr; pszLine = std::strtok(nullptr, "\n")) {
        if (*pszLine < 'A' || *pszLine > 'Z') bDictionary = std::strstr(pszLine, pszDictionary) != nullptr;
        memory.nPrivateDirty += Field(pszLine, "Private_Dirty:");
        memory.nResident += Field(pszLine, "Rss:");
        if (bDictionary) memory.nMapped += Field(pszLine, "Rss:");
    }
    return memory;
}

// --- asking --------------------------------------------------------------------------------------------------------

std::vector<CQuestionLine> ReadQuestions(char const* pszPath) {
    std::ifstream in(pszPath, std::ios::binary);
    if (!in) throw std::runtime_error(std::string(pszPath) + " cannot be read");
    std::vector<CQuestionLine> vQuestion;
    for (std::string strLine; std::getline(in, strLine);) {
        size_t const nTab = strLine.find('\t');
        if (nTab == std::string::npos || nTab == 0) throw std::runtime_error("bad line: " + strLine);
        vQuestion.push_back({strLine[0], strLine.substr(1, nTab - 1), strLine.substr(nTab + 1)});
    }
    return vQuestion;
}

// A prefecture's cities and the towns of one of them; the positions come from the lists before.
bool Browse(unsigned short nPref, unsigned short nCity) {
    tagADDRESSRECORD record;
    record.Fill("", "");
    HGLOBAL hPrefs = nullptr, hCities = nullptr, hTowns = nullptr;
    bool const bFound =
        PstAdrRPrf(&record, &hPrefs) == 0 && PstAdrRCity(nPref, &hCities) == 0 && PstAdrRTown(nCity, &hTowns) == 0;
    for (HGLOBAL const h : {hPrefs, hCities, hTowns}) GlobalFree(h);
    return bFound;
}

bool AskOldCode(std::string const& strCode) {
    tagADDRESSRECORD record;
    record.Fill("", "");
    strCode.copy(record.szOldCode, sizeof record.szOldCode - 1);
    HGLOBAL h = nullptr;
    bool const bFound = PstAdrCity(&record, &h) == 0;
    GlobalFree(h);
    return bFound;
}

bool AskBlock(int (*pfnAsk)(char const*, HGLOBAL*), std::string const& strText) {
    HGLOBAL h = nullptr;
    bool const bFound = pfnAsk(strText.c_str(), &h) == 0;
    GlobalFree(h);
    return bFound;
}

// Whether the answer is what it should be: something, or, for texts that name nothing, nothing.
bool Ask(CQuestionLine const& line) {
    tagADDRESSRECORD record;
    record.Fill(line.strText, line.strMore);
    switch (line.cKind) {
    case 'z':
        return AskBlock(GetAdrFromZip, line.strText);
    case 'p':
        return AskBlock(GetAdrFromAdd, line.strText);
    case 'o':
        return AskOldCode(line.strText);
    case 'a':
        return PstAdrGetZip(&record) == 0;
    case 'n':
        return PstAdrGetZip(&record) == 1;
    case 'l':
        return PstAdrGetLatestAdr(&record) == 0 && record.szAddress[0] != '\0';
    case 'b':
        return Browse(static_cast<unsigned short>(std::stoul(line.strText)),
                      static_cast<unsigned short>(std::stoul(line.strMore)));
    default:
        return false;
    }
}

// Opens, asks and measures: figures in the order of the file.
std::vector<long> Run(char const* pszDictionary, std::vector<CQuestionLine> const& vQuestion) {
    std::vector<long> vFigure(5);
    Measure(pszDictionary); // touches what measuring needs
    malloc_trim(0);
    CMemory const before = Measure(pszDictionary);
    if (PstAdrOpen() != 0) throw std::runtime_error("PstAdrOpen failed");
    for (CQuestionLine const& line : vQuestion)
        if (!Ask(line)) throw std::runtime_error("no answer for " + line.strText);
    CMemory const after = Measure(pszDictionary);
    malloc_trim(0);
    CMemory const trimmed = Measure(pszDictionary);
    if (after.nMapped == 0 && !vQuestion.empty()) throw std::runtime_error("the dictionary is another one");
    vFigure[0] = after.nPrivateDirty - before.nPrivateDirty;
    vFigure[1] = trimmed.nPrivateDirty - before.nPrivateDirty;
    vFigure[2] = after.nMapped;
    vFigure[3] = after.nResident - before.nResident - after.nMapped - vFigure[0];
    vFigure[4] = after.nResident;
    return vFigure;
}

} // namespace

int main(int nArguments, char** ppszArgument) try {
    if (nArguments != 5) throw std::runtime_error("usage: qeadrs_memory PROFILE DICTIONARY QUESTIONS FIGURES");
    setenv("QE_PROFILE", ppszArgument[1], 1);
    std::vector<CQuestionLine> const vQuestion = ReadQuestions(ppszArgument[3]);
    std::vector<long> const vFigure = Run(ppszArgument[2], vQuestion);
    std::ofstream out(ppszArgument[4]);
    for (long const nFigure : vFigure) out << nFigure << '\n';
    return out.flush() ? EXIT_SUCCESS : EXIT_FAILURE;
} catch (std::exception const& error) {
    std::cerr << "qeadrs_memory: " << error.what() << '\n';
    return EXIT_FAILURE;
}
