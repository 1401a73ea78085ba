// The search by code: every leading part that exists finds its lowest entry, and nothing else finds anything.
#include "Failures.h"
#include "Lookup.h"

#include <algorithm>
#include <random>

using namespace national;

namespace {

constexpr size_t CODE_DIGITS = 7;
constexpr unsigned SAMPLE_SEED = 20260529;
constexpr unsigned SAMPLE_SIZE = 20000;

std::string Digits(uint32_t nNumber, size_t nDigits) {
    std::string str(nDigits, '0');
    for (size_t n = nDigits; n-- > 0; nNumber /= 10) str[n] = static_cast<char>('0' + nNumber % 10);
    return str;
}

uint32_t Number(std::string_view strDigits) {
    uint32_t n = 0;
    for (char c : strDigits) n = 10 * n + static_cast<uint32_t>(c - '0');
    return n;
}

// By number, whether a text of so many digits begins a code of the official tables or of a town that is gone.
std::vector<bool> BeginsACode(size_t nDigits) {
    std::vector<bool> vBegins(Number("1" + std::string(nDigits, '0')));
    for (std::string_view strCode : AllCodes()) vBegins[Number(strCode.substr(0, nDigits))] = true;
    return vBegins;
}

TEST(SearchPostCode7, AgreesWithTheSlowReaderOnEveryPrefixOfEveryCode) {
    CFailures failures;
    for (auto const& [strPrefix, nEntry] : Official().Prefixes()) {
        long const nFound = Dictionary().SearchPostCode7(std::string(strPrefix).c_str());
        if (nFound != static_cast<long>(nEntry))
            failures.Add(std::string(strPrefix) + ": " + std::to_string(nFound) + " instead of " +
                         std::to_string(nEntry));
        if (failures.Enough()) return;
    }
    PrintFigure("prefixes of codes", Official().Prefixes().size());
}

TEST(SearchPostCode7, FindsEveryCodeOfTheTables) {
    CFailures failures;
    for (std::string_view strCode : AllCodes()) {
        if (Dictionary().SearchPostCode7(std::string(strCode).c_str()) < 0) failures.Add(std::string(strCode));
        if (failures.Enough()) return;
    }
}

TEST(SearchPostCode7, FindsNothingForAllOtherTextsOfOneToSevenDigits) {
    CFailures failures;
    size_t nAsked = 0;
    for (size_t nDigits = 1; nDigits <= CODE_DIGITS; ++nDigits) {
        std::vector<bool> const vBegins = BeginsACode(nDigits);
        for (uint32_t n = 0; n < vBegins.size() && !failures.Enough(); ++n) {
            if (vBegins[n]) continue;
            ++nAsked;
            std::string const strCode = Digits(n, nDigits);
            if (long const nFound = Dictionary().SearchPostCode7(strCode.c_str()); nFound != -1)
                failures.Add(strCode + " finds entry " + std::to_string(nFound));
        }
    }
    PrintFigure("texts that begin no code", nAsked);
}

// A sample of the codes that no table has.
std::vector<std::string> UnknownCodes() {
    std::printf("seed %u\n", SAMPLE_SEED);
    std::vector<bool> const vKnown = BeginsACode(CODE_DIGITS);
    std::mt19937 random(SAMPLE_SEED);
    std::vector<std::string> vCode;
    while (vCode.size() < SAMPLE_SIZE) {
        auto const n = static_cast<uint32_t>(random() % vKnown.size());
        if (!vKnown[n]) vCode.push_back(Digits(n, CODE_DIGITS));
    }
    return vCode;
}

TEST(GetAddrFromPostCode7, LeavesTheListAloneForCodesThatNoTableHas) {
    CFailures failures;
    for (std::string const& strCode : UnknownCodes()) {
        std::vector<tagADDR> vAddr(1, tagADDR(0));
        int const nResult = Dictionary().GetAddrFromPostCode7(strCode.c_str(), vAddr);
        if (nResult != 0 || vAddr.size() != 1) failures.Add(strCode);
        if (failures.Enough()) return;
    }
}

TEST(GetAdrFromZip, MakesNoBlockForCodesThatNoTableHas) {
    CHost const host;
    ASSERT_TRUE(host.IsOpen());
    CFailures failures;
    for (std::string const& strCode : UnknownCodes()) {
        int nOurs = 0;
        HGLOBAL hBlock = &nOurs;
        if (GetAdrFromZip(strCode.c_str(), &hBlock) != 1 || hBlock != &nOurs) failures.Add(strCode);
        if (failures.Enough()) return;
    }
}

} // namespace
