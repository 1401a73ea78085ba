// Driver.cpp - runs a fuzz target over files, with any compiler.
//
//   fuzz_codes corpus/Codes                                 every file of the folder once
//   fuzz_codes --mutate 60 7 --tokens tokens.dict corpus/Codes   and mutants of them for 60 seconds, from seed 7
//   fuzz_codes finding-fuzz_codes-7                         one file, a find for instance
//
// An input that crashes, breaks a promise or takes longer than 20 seconds is written to finding-PROGRAM-SEED in the
// current folder. The same seed makes the same mutants, in the same order.
#include "fuzz/Fuzz.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

extern "C" void __sanitizer_set_death_callback(void (*)()) __attribute__((weak));

namespace {

namespace fs = std::filesystem;
using CRandom = std::mt19937;

constexpr unsigned SECONDS_FOR_ONE = 20;
constexpr size_t LONGEST = 4096;

// The input at hand, for the time after a crash.
char szFinding[512];
uint8_t const* pInput;
size_t nInput;

// Only what a signal handler may do.
void KeepInput() {
    int const hFile = open(szFinding, O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (hFile < 0 || pInput == nullptr) return;
    ssize_t const nWritten = write(hFile, pInput, nInput);
    (void)nWritten;
    close(hFile);
}

void OnSignal(int nSignal) {
    KeepInput();
    signal(nSignal, SIG_DFL);
    raise(nSignal);
}

void WatchOver(std::string const& strProgram, unsigned nSeed) {
    std::snprintf(szFinding, sizeof szFinding, "finding-%s-%u", strProgram.c_str(), nSeed);
    signal(SIGABRT, OnSignal);
    signal(SIGALRM, OnSignal);
    if (&__sanitizer_set_death_callback != nullptr)
        __sanitizer_set_death_callback(KeepInput); // it has handlers of its own for the others
    else
        for (int const nSignal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL}) signal(nSignal, OnSignal);
}

// The bytes where they just fit, so that a sanitizer sees what reads on.
void RunOne(std::string const& strBytes) {
    std::vector<uint8_t> const vByte(strBytes.begin(), strBytes.end());
    pInput = vByte.data();
    nInput = vByte.size();
    alarm(SECONDS_FOR_ONE);
    LLVMFuzzerTestOneInput(pInput, nInput);
    alarm(0);
    pInput = nullptr;
}

// --- mutants -------------------------------------------------------------------------------------------------------

size_t Below(CRandom& random, size_t n) {
    return n == 0 ? 0 : random() % n;
}

std::string const& OneOf(CRandom& random, std::vector<std::string> const& v) {
    return v[Below(random, v.size())];
}

// A token of the fuzzers' dictionary: between quotes, with \xAB for a byte.
std::vector<std::string> ReadTokens(std::string const& strPath) {
    std::vector<std::string> vToken;
    std::ifstream file(strPath);
    for (std::string strLine; std::getline(file, strLine);) {
        size_t const nBegin = strLine.find('"'), nEnd = strLine.rfind('"');
        if (strLine.empty() || strLine.front() == '#' || nBegin == nEnd) continue;
        std::string strToken;
        for (size_t n = nBegin + 1; n < nEnd; ++n) {
            if (strLine[n] != '\\' || strLine[++n] != 'x') {
                strToken += strLine[n];
            } else {
                strToken += static_cast<char>(std::strtoul(strLine.substr(n + 1, 2).c_str(), nullptr, 16));
                n += 2;
            }
        }
        vToken.push_back(strToken);
    }
    return vToken;
}

// A number of the text changed: near what it was, or to one at a boundary.
void ChangeNumber(CRandom& random, std::string& str) {
    static char const* const apszNumber[] = {
        "0", "1", "2", "7", "255", "256", "-1", "32767", "65535", "2147483647", "2147483648", "4294967295", "-32768"};
    constexpr char const* DIGITS = "0123456789";
    size_t const nBegin = str.find_first_of(DIGITS, Below(random, str.size()));
    if (nBegin == std::string::npos) return;
    size_t const nEnd = std::min(str.find_first_not_of(DIGITS, nBegin), str.size());
    std::string strNumber = apszNumber[Below(random, std::size(apszNumber))];
    if (random() % 2 == 0) {
        unsigned long const n = std::strtoul(str.substr(nBegin, nEnd - nBegin).c_str(), nullptr, 10);
        strNumber = std::to_string((n + Below(random, 65) - 32) & 0xFFFFFFFF);
    }
    str.replace(nBegin, nEnd - nBegin, strNumber);
}

void Mutate(CRandom& random, std::string& str, std::vector<std::string> const& vSeed,
            std::vector<std::string> const& vToken) {
    size_t const nPos = Below(random, str.size() + 1), nSize = 1 + Below(random, random() % 4 == 0 ? 64 : 4);
    auto const AnyByte = [&] { return static_cast<char>(random()); };
    switch (random() % 10) {
    case 0: // flip
        if (nPos < str.size()) str[nPos] = static_cast<char>(str[nPos] ^ 1 << random() % 8);
        return;
    case 1:
        if (nPos < str.size()) str[nPos] = AnyByte();
        return;
    case 2: // insert
        str.insert(nPos, nSize, AnyByte());
        return;
    case 3:
        str.erase(nPos, nSize);
        return;
    case 4: // a part of the text a second time
        str.insert(Below(random, str.size() + 1), str.substr(nPos, nSize * 8));
        return;
    case 5: { // splice
        std::string const& strOther = OneOf(random, vSeed);
        str.replace(nPos, std::string::npos, strOther, Below(random, strOther.size() + 1));
        return;
    }
    case 6: { // a line of another one
        std::string const& strOther = OneOf(random, vSeed);
        size_t const nLine = strOther.rfind('\n', Below(random, strOther.size() + 1));
        size_t const nBegin = nLine == std::string::npos ? 0 : nLine + 1;
        size_t const nAt = str.rfind('\n', nPos);
        str.insert(nAt == std::string::npos ? 0 : nAt + 1,
                   strOther.substr(nBegin, strOther.find('\n', nBegin) - nBegin) + "\n");
        return;
    }
    case 7:
        return ChangeNumber(random, str);
    default:
        if (vToken.empty()) return;
        if (random() % 2 == 0)
            str.insert(nPos, OneOf(random, vToken));
        else
            str.replace(nPos, std::min(nSize, str.size() - nPos), OneOf(random, vToken));
        return;
    }
}

// What LLVMFuzzerMutate mutates with, when a target's own mutator calls it.
struct CMutations {
    CRandom random;
    std::vector<std::string> vSeed, vToken;
};
CMutations* pMutations;

size_t PutBack(std::string const& str, uint8_t* p, size_t nMost) {
    size_t const nSize = std::min(str.size(), nMost);
    std::copy_n(str.begin(), nSize, p);
    return nSize;
}

std::string MutateOnce(std::string str) {
    CMutations& mutations = *pMutations;
    if (&LLVMFuzzerCustomMutator == nullptr) {
        Mutate(mutations.random, str, mutations.vSeed, mutations.vToken);
        return str;
    }
    size_t const nSize = std::min(str.size(), LONGEST);
    str.resize(LONGEST);
    str.resize(LLVMFuzzerCustomMutator(reinterpret_cast<uint8_t*>(str.data()), nSize, LONGEST,
                                       static_cast<unsigned>(mutations.random())));
    return str;
}

size_t RunMutants(unsigned nSeconds, unsigned nSeed, std::vector<std::string> const& vSeed,
                  std::vector<std::string> const& vToken) {
    CMutations mutations{CRandom(nSeed), vSeed, vToken};
    CRandom& random = mutations.random;
    pMutations = &mutations;
    auto const tEnd = std::chrono::steady_clock::now() + std::chrono::seconds(nSeconds);
    size_t nRun = 0;
    for (; std::chrono::steady_clock::now() < tEnd; ++nRun) {
        std::string str = OneOf(random, vSeed);
        for (size_t n = 1 + Below(random, 6); n > 0; --n) str = MutateOnce(std::move(str));
        str.resize(std::min(str.size(), LONGEST));
        RunOne(str);
    }
    pMutations = nullptr;
    return nRun;
}

// --- the command ---------------------------------------------------------------------------------------------------

std::vector<std::string> Files(std::vector<std::string> const& vPath) {
    std::vector<std::string> vFile;
    for (std::string const& strPath : vPath)
        if (fs::is_directory(strPath))
            for (auto const& entry : fs::directory_iterator(strPath)) vFile.push_back(entry.path().string());
        else
            vFile.push_back(strPath);
    std::sort(vFile.begin(), vFile.end());
    return vFile;
}

std::string ReadFile(std::string const& strPath) {
    std::ifstream file(strPath, std::ios::binary);
    std::string str{std::istreambuf_iterator<char>(file), {}};
    if (!file) {
        std::fprintf(stderr, "cannot read %s\n", strPath.c_str());
        std::exit(2);
    }
    return str;
}

} // namespace

extern "C" size_t LLVMFuzzerMutate(uint8_t* p, size_t nSize, size_t nMost) {
    std::string str(p, p + nSize);
    Mutate(pMutations->random, str, pMutations->vSeed, pMutations->vToken);
    return PutBack(str, p, nMost);
}

int main(int nArgs, char** ppszArg) {
    unsigned nSeconds = 0, nSeed = 0;
    std::vector<std::string> vPath, vToken, vSeed;
    for (int n = 1; n < nArgs; ++n) {
        std::string const strArg = ppszArg[n];
        if (strArg == "--mutate" && n + 2 < nArgs) {
            nSeconds = static_cast<unsigned>(std::strtoul(ppszArg[++n], nullptr, 10));
            nSeed = static_cast<unsigned>(std::strtoul(ppszArg[++n], nullptr, 10));
        } else if (strArg == "--tokens" && n + 1 < nArgs) {
            vToken = ReadTokens(ppszArg[++n]);
        } else {
            vPath.push_back(strArg);
        }
    }
    std::string const strProgram = fs::path(ppszArg[0]).filename().string();
    WatchOver(strProgram, nSeed);
    for (std::string const& strFile : Files(vPath)) {
        vSeed.push_back(ReadFile(strFile));
        RunOne(vSeed.back());
    }
    if (vSeed.empty()) { // a corpus that is not found would pass for ever
        std::fprintf(stderr, "usage: %s [--mutate SECONDS SEED] [--tokens FILE] FILE|FOLDER...\n", ppszArg[0]);
        return 2;
    }
    RunOne("");
    size_t const nMutants = nSeconds == 0 ? 0 : RunMutants(nSeconds, nSeed, vSeed, vToken);
    std::printf("%s: %zu files", strProgram.c_str(), vSeed.size());
    if (nSeconds != 0) std::printf(", %zu mutants in %u s from seed %u", nMutants, nSeconds, nSeed);
    std::printf(", no finding\n");
    return 0;
}
