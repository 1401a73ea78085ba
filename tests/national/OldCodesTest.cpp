// The lookup by old code: it finds what stands within its reach, and the compiler counts what does not.
#include "Failures.h"
#include "Lookup.h"
#include "Prepared.h"
#include "Previous.h"
#include "Tables.h"

#include <random>

using namespace national;

namespace {

std::vector<std::string> OldCodeAnswers(std::string_view strOldCode) {
    std::vector<tagADDR> vAddr;
    Dictionary().GetAddrFromPostCode5(std::string(strOldCode).c_str(), vAddr);
    std::vector<std::string> vText;
    for (tagADDR const& addr : vAddr) vText.push_back(std::string(addr.pszPostCode) + " " + AddressText(addr));
    return vText;
}

TEST(GetAddrFromPostCode5, FindsExactlyTheEntriesWithinItsReachForEveryOldCode) {
    CFailures failures;
    size_t nFound = 0;
    for (std::string_view strOldCode : OldCodes()) {
        std::vector<std::string> vExpected;
        for (uint32_t nEntry : Official().EntriesInReachOfOldCode(strOldCode))
            vExpected.push_back(std::string(Official().Entries()[nEntry].strCode) + " " +
                                AddressText(Official().Address(nEntry)));
        std::vector<std::string> const vAnswer = OldCodeAnswers(strOldCode);
        nFound += vAnswer.size();
        if (vAnswer != vExpected)
            failures.Add(std::string(strOldCode) + ": " + std::to_string(vAnswer.size()) + " addresses, expected " +
                         std::to_string(vExpected.size()));
        if (failures.Enough()) return;
    }
    PrintFigure("old codes asked", OldCodes().size());
    PrintFigure("entries that they reach", nFound);
}

TEST(GetAddrFromPostCode5, FindsNothingForOldCodesThatNoTableHas) {
    constexpr unsigned SEED = 20260529;
    std::printf("seed %u\n", SEED);
    std::mt19937 random(SEED);
    CFailures failures;
    for (unsigned n = 0; n < 3000 && !failures.Enough(); ++n) {
        std::string const strOldCode =
            n < 1000 ? std::to_string(1000 + n).substr(1) : std::to_string(100000 + random() % 100000).substr(1);
        if (OldCodes().count(strOldCode) == 0 && !OldCodeAnswers(strOldCode).empty()) failures.Add(strOldCode);
    }
}

// The rows' own old codes are what the entries carry.
TEST(OldCodes, OfEveryEntryAreThoseOfItsRow) {
    std::set<std::pair<std::string_view, std::string_view>> vPair;
    for (CTownRow const& row : TownRows()) vPair.emplace(row.strCode, row.strOldCode);
    for (COfficeRow const& row : OfficeRows()) vPair.emplace(row.strCode, row.strOldCode);
    for (CGoneTown const& town : GoneTowns()) vPair.emplace(town.strCode, town.strOldCode);
    CFailures failures;
    for (CSlowReader::CEntry const& entry : Official().Entries()) {
        if (vPair.count({entry.strCode, entry.strOldCode}) == 0)
            failures.Add(std::string(entry.strCode) + " has the old code " + std::string(entry.strOldCode));
        if (failures.Enough()) return;
    }
}

TEST(OldCodes, ThatAreNoPrefixOfTheirCodeAreCountedByTheCompiler) {
    size_t nNoPrefix = 0;
    for (CSlowReader::CEntry const& entry : Official().Entries())
        nNoPrefix += !BeginsWith(entry.strCode, entry.strOldCode);
    PrintFigure("entries whose old code is no prefix of their code", nNoPrefix);
    EXPECT_EQ(CompilersCount("old_codes_no_prefix_of_their_code"), nNoPrefix);
}

TEST(OldCodes, ThatTheirLookupCannotReachAreCountedByTheCompiler) {
    size_t nReached = 0, nEntries = 0;
    for (std::string_view strOldCode : OldCodes()) {
        nReached += Official().EntriesInReachOfOldCode(strOldCode).size();
        nEntries += Official().EntriesOfOldCode(strOldCode).size();
    }
    EXPECT_EQ(nEntries, Official().Entries().size());
    PrintFigure("entries in reach of their old code", nReached);
    PrintFigure("entries out of reach of their old code", nEntries - nReached);
    EXPECT_EQ(CompilersCount("entries_out_of_reach_of_their_old_code"), nEntries - nReached);
}

} // namespace
