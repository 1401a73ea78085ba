// Trees of candidates for parts of postal codes of the whole country.
#include "Refining.h"

using namespace national;

namespace {

constexpr size_t CODES = 1000;
constexpr size_t CODE_DIGITS = 7;

// The lowest code that begins with the digits, or the lowest one behind all of them.
uint32_t LowestCode(std::string strDigits, bool bBehind) {
    auto n = static_cast<uint32_t>(std::stoul(strDigits)) + bBehind;
    for (size_t nDigits = strDigits.size(); nDigits < CODE_DIGITS; ++nDigits) n *= 10;
    return n;
}

// The nodes of the current entries whose code begins so: each entry of the table is looked at. Sorted.
CNodes NodesOfCode(std::string const& strDigits) {
    static std::vector<uint32_t> const vCode = [] {
        std::vector<uint32_t> v;
        for (CSlowReader::CEntry const& entry : Official().Entries())
            v.push_back(LowestCode(std::string(entry.strCode), false));
        return v;
    }();
    uint32_t const nLow = LowestCode(strDigits, false), nHigh = LowestCode(strDigits, true);
    CNodes vNode;
    for (size_t n = 0; n < vCode.size(); ++n)
        if (vCode[n] >= nLow && vCode[n] < nHigh && !Official().Entries()[n].bSuperseded)
            vNode.push_back(Official().Entries()[n].nNode);
    return Sorted(vNode);
}

TEST(RefineCode, FindsExactlyTheCurrentEntriesThatBeginWithEachOfAThousandPartsOfCodes) {
    std::printf("seed %u\n", SEED);
    CRefiner refiner;
    CFailures failures;
    size_t nLeaves = 0, nNothing = 0, nMisplaced = 0;
    for (std::string const& strCode : PartsOfCodes(CODES)) {
        std::string const strDigits = NormalCode(strCode);
        CExpectedTree const expected = TreeOfCode(strDigits);
        if (int const nResult = refiner.Make(strCode, ""); nResult != expected.nResult)
            failures.Add(strCode + " gives " + std::to_string(nResult));
        CompareNodes(failures, strCode, Sorted(LeavesOf(refiner.Tree())), NodesOfCode(strDigits));
        refiner.Check(failures, strCode, expected);
        for (CBranch const& pref : expected.vPref)
            for (CBranch const& city : pref.vChild)
                for (CBranch const& leaf : city.vChild) {
                    ++nLeaves;
                    nMisplaced += Official().Ancestor(leaf.nNode, 1) != city.nNode;
                }
        nNothing += expected.vPref.empty();
        if (failures.Enough()) return;
    }
    PrintFigure("parts of codes", CODES);
    PrintFigure("of them that find nothing", nNothing);
    PrintFigure("leaves of the trees of the others", nLeaves);
    PrintFigure("of them below another city than their own", nMisplaced);
    EXPECT_GT(nNothing, 0u);
    EXPECT_LT(nNothing, CODES / 2);
    EXPECT_GT(nMisplaced, 0u); // else no code tries the rule for a new city of an earlier prefecture
}

TEST(RefineCode, FindsAllPrefecturesInTheirOrderWithTheTenDigits) {
    CRefiner refiner;
    std::set<std::string> vFound;
    for (char c = '0'; c < '9'; ++c) {
        refiner.Make(std::string(1, c), "");
        std::string strBefore;
        for (tagADDRPNT const& entry : refiner.State().vRefineTree) {
            EXPECT_LT(strBefore, entry.szName);
            strBefore = entry.szName;
            vFound.insert(strBefore);
        }
    }
    refiner.Make("9", ""); // at the end of the table: in the order of the codes
    for (tagADDRPNT const& entry : refiner.State().vRefineTree) vFound.insert(entry.szName);
    std::set<std::string> vExpected;
    for (std::string const& strPref : PrefecturesOfTable()) vExpected.insert(PrefCode(strPref) + strPref);
    EXPECT_EQ(vExpected.size(), 47u);
    EXPECT_EQ(vFound, vExpected);
}

TEST(RefineCode, LeavesTheTreeOfTheLastCodesAsItHasGrownAndGives0OnceAnd1FromThenOn) {
    std::string const strLast(Official().Entries().back().strCode);
    CRefiner refiner;
    CFailures failures;
    size_t nUnsorted = 0;
    for (size_t nDigits = 1; nDigits <= strLast.size(); ++nDigits) {
        std::string const strCode = strLast.substr(0, nDigits);
        CExpectedTree const expected = TreeOfCode(strCode);
        EXPECT_EQ(expected.nResult, 0);
        EXPECT_EQ(refiner.Make(strCode, ""), 0) << strCode;
        refiner.Check(failures, strCode, expected);
        nUnsorted += !recIsSorted(refiner.Tree());
        EXPECT_EQ(refiner.Make(strCode, ""), 1) << strCode;
        refiner.Check(failures, strCode + " again", expected);
    }
    PrintFigure("codes whose tree is not sorted", nUnsorted);
    EXPECT_GT(nUnsorted, 0u);
}

TEST(RefineCode, BeginsAtTheFirstEntryForWhatNoCodeBeginsWithAndFindsNothingThere) {
    CRefiner refiner;
    for (std::string const strCode : {"?", "*", "??????", "00000", "9999999", "1?", "100000*"}) {
        if (Official().FirstEntry(strCode) != NONE) continue;
        refiner.Make("100", "");
        EXPECT_FALSE(refiner.Tree().empty());
        EXPECT_EQ(refiner.Make(strCode, ""), 1) << strCode;
        EXPECT_TRUE(refiner.Tree().empty()) << strCode;
        EXPECT_EQ(refiner.State().szRefinePostCode, strCode);
    }
    EXPECT_EQ(Official().FirstEntry("9999999"), NONE);
}

// A tree that somebody has changed shows whether it is made anew.
TEST(RefineCode, KeepsTheTreeUntilTheDigitsOrTheAddressChange) {
    CRefiner refiner;
    CFailures failures;
    CExpectedTree const expected = TreeOfCode("1000");
    ASSERT_EQ(refiner.Make("100-0", ""), 1);
    refiner.Check(failures, "100-0", expected);
    std::strcpy(refiner.State().vRefineTree[0].szName, "changed");
    for (std::string const strSame : {"1000", "1-0-0-0", "100-0", " 1000 "}) {
        EXPECT_EQ(refiner.Make(strSame, ""), 1);
        EXPECT_STREQ(refiner.State().vRefineTree[0].szName, "changed") << strSame;
    }
    EXPECT_EQ(refiner.Make("1000", "東京都"), 1);
    refiner.Check(failures, "1000 with an address", expected);
    std::strcpy(refiner.State().vRefineTree[0].szName, "changed");
    EXPECT_EQ(refiner.Make("1001", "東京都"), 1);
    refiner.Check(failures, "1001", TreeOfCode("1001"));
    EXPECT_EQ(refiner.Make("", "東京都"), 1);
    refiner.Check(failures, "no code", TreeOfAddress("東京都"));
    EXPECT_EQ(refiner.Make("", ""), 1);
    EXPECT_TRUE(refiner.Tree().empty());
}

} // namespace
