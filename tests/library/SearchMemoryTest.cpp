// SearchMemoryTest.cpp - the parts of what searches keep, each by itself: words, prefixes, steps, marks, tables of names.
#include "dic/SearchMemory.h"
#include "dic/PrefRows.h"
#include "tests/support/GuardedBytes.h"
#include "tests/support/TestImage.h"

#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

// An image bound to an object, and the view of it.
struct CBound {
    explicit CBound(CTestImage const& image) : vByte(image.Bytes()), view((dic.SetDictionary(vByte.data()), dic)) {}

    std::vector<unsigned char> vByte;
    CAddrDic dic;
    CImageView view;
};

// Towns of these names in a city of their own, as a level from node 2 on, and a text behind them, so that eight bytes
// can be read at each name.
CTestImage TownsNamed(std::vector<std::string> const& vName) {
    CTestImage image;
    uint32_t const nPref = image.AddNode(LEVEL_PREF, ADDR_NONE, "東京都");
    uint32_t const nCity = image.AddNode(LEVEL_CITY, nPref, "千代田区");
    for (std::string const& strName : vName) image.AddNode(LEVEL_TOWN, nCity, strName);
    image.AddText("behind all names", "");
    return image;
}
constexpr uint32_t FIRST_TOWN = 2;

CNodeRange Towns(size_t nCount) {
    return {FIRST_TOWN, FIRST_TOWN + static_cast<uint32_t>(nCount)};
}

// The nodes that a search of the range for a text looks at.
std::vector<uint32_t> Candidates(CNameMarks const& marks, CNodeRange const& range, char const* pszText) {
    std::vector<uint32_t> vNode;
    marks.ForEachCandidate(range, CNameMarks::CText(CBeginning::Of(pszText)), [&](uint32_t n) {
        vNode.push_back(n);
        return false;
    });
    return vNode;
}

std::vector<uint32_t> All(CNodeRange const& range) {
    std::vector<uint32_t> vNode(range.Count());
    std::iota(vNode.begin(), vNode.end(), range.nFirst);
    return vNode;
}

} // namespace

// --- words ---------------------------------------------------------------------------------------------------------

TEST(FirstWord, ReadsNoByteBehindTheNulOfAText) {
    for (size_t nLength = 0; nLength <= 9; ++nLength) {
        std::string const strText(nLength, 'x');
        CGuardedBytes const guarded(strText, CGuardedBytes::ReadOnly);
        uint64_t nExpected = 0;
        std::memcpy(&nExpected, strText.data(), std::min(nLength, WORD_BYTES));
        EXPECT_EQ(FirstWordOfText(guarded.Text()), nExpected) << nLength;
    }
}

TEST(FirstWord, MatchesANameAsByteByByteComparisonDoesWhateverStandsBehindItsNul) {
    std::mt19937 random(20261121);
    auto const Text = [&](size_t nMost) {
        std::string strText(random() % (nMost + 1), '\0');
        for (char& c : strText) c = static_cast<char>('a' + random() % 2);
        return strText;
    };
    size_t nMatches = 0;
    for (int nRound = 0; nRound < 200000; ++nRound) {
        std::string const strText = Text(12);
        // As long as the text in half of the rounds, and often its beginning.
        std::string const strName = random() % 2 == 0 ? strText.substr(0, random() % 13) : Text(12);
        std::string strArea = strName + '\0';
        while (strArea.size() < 24) strArea += static_cast<char>(random() % 3);
        long const nExpected = MatchName(strText.c_str(), strName.c_str());
        nMatches += nExpected >= 0 ? 1 : 0;
        ASSERT_EQ(
            MatchName(strText.c_str(), FirstWordOfText(strText.c_str()), strArea.c_str(), FirstWord(strArea.data())),
            nExpected)
            << '"' << strText << "\" \"" << strName << '"';
    }
    EXPECT_GT(nMatches, 50000u);
}

TEST(Prefix, OrdersATextAsStrncmpDoes) {
    std::vector<std::string> const vText = {
        "",     "1",        "100",    "1000001",        "10000010", "100000100", "10000011",  "\x7F",
        "\x80", "\xFF\xFF", "東京都", "東京都千代田区", "東京都港", "12345678",  "123456789", "1234567890"};
    CTestImage image;
    std::vector<uint32_t> vOffset;
    for (std::string const& strText : vText) vOffset.push_back(image.AddText(strText, "reading"));
    CBound const bound(image);
    auto const Sign = [](int n) { return n < 0 ? -1 : n > 0 ? 1 : 0; };
    for (std::string const& strPrefix : vText)
        for (size_t n = 0; n < vText.size(); ++n)
            EXPECT_EQ(Sign(CPrefix(strPrefix.c_str()).Order(bound.view, vOffset[n])),
                      Sign(std::strncmp(vText[n].c_str(), strPrefix.c_str(), strPrefix.size())))
                << '"' << vText[n] << "\" against \"" << strPrefix << '"';
}

// --- the code search -----------------------------------------------------------------------------------------------

TEST(Bisection, WrapsBelowEntryZeroAndMeetsNoEntryThen) {
    CBisection at(0);
    EXPECT_EQ(at.nMiddle, 0u);
    EXPECT_TRUE(at.Narrow(false));
    EXPECT_EQ(at.nHigh, UINT32_MAX);
    EXPECT_EQ(at.nMiddle, UINT32_MAX / 2);
}

TEST(Bisection, HasNothingLeftAboveTheLastEntry) {
    CBisection at(0);
    EXPECT_FALSE(at.Narrow(true));
}

TEST(CodeProbes, GoNoStepBeforeOneIsKept) {
    CCodeProbes const probes;
    CBisection at(100);
    EXPECT_TRUE(probes.GoKnownSteps(CPrefix("1000001"), at));
    EXPECT_EQ(at.nPlace, 1u);
}

TEST(CodeProbes, GoTheStepsThatMeetOtherCodesAndStopWhereTheCodeMayBe) {
    CTestImage image;
    uint32_t const nCode = image.AddText("1000001", "100");
    image.AddText("behind all codes", "");
    CBound const bound(image);
    CCodeProbes probes;
    probes.Keep(bound.view, nCode, 1);
    CBisection higher(100), same(100);
    EXPECT_TRUE(probes.GoKnownSteps(CPrefix("2000000"), higher));
    EXPECT_EQ(higher.nPlace, 3u);
    EXPECT_EQ(higher.nLow, 51u);
    EXPECT_TRUE(probes.GoKnownSteps(CPrefix("100"), same));
    EXPECT_EQ(same.nPlace, 1u) << "the code of the first step begins with 100";
}

// --- prefectures ---------------------------------------------------------------------------------------------------

TEST(PrefRows, AreFoundByADifferentNumberForEachOfThe47Names) {
    auto const pRows = std::make_unique<CPrefRows>(); // made here, as the compiler has made the library's
    EXPECT_EQ(pRows->nRows, PREF_ORDER_ROWS);
    for (int nRow = 0; nRow < PREF_ORDER_ROWS; ++nRow)
        EXPECT_EQ(pRows->vRow[PrefHash(pref_order[nRow] + PREF_ORDER_NAME)], nRow + 1);
}

// --- marks ---------------------------------------------------------------------------------------------------------

TEST(NameMarks, TellNothingOfNodesWhoseNamesWereNotRead) {
    CNameMarks marks;
    EXPECT_EQ(Candidates(marks, {3, 30}, "千代田"), All({3, 30})) << "without room";
    marks.MakeRoom(100);
    EXPECT_EQ(Candidates(marks, {3, 30}, "千代田"), All({3, 30})) << "with room";
}

TEST(NameMarks, PassOverNamesThatDifferInTheirFirstTwelveBytes) {
    CNameMarks marks;
    marks.MakeRoom(40);
    for (uint32_t n = 0; n < 40; ++n) marks.Keep(n, CBeginning::Of("丸の内一"));
    for (uint32_t const nAt : {0U, 7U, 8U, 20U, 39U}) {
        marks.Keep(nAt, CBeginning::Of("千代田"));
        EXPECT_EQ(Candidates(marks, {0, 40}, "千代田１－１"), std::vector<uint32_t>{nAt});
        marks.Keep(nAt, CBeginning::Of("丸の内一"));
    }
}

TEST(NameMarks, FindNamesOfEveryLengthThatBeginTheText) {
    std::string const strText = "abcdefghijklmnopqrst";
    for (size_t nLength = 0; nLength <= strText.size(); ++nLength) {
        CNameMarks marks;
        marks.MakeRoom(1);
        marks.Keep(0, CBeginning::Of(strText.substr(0, nLength).c_str()));
        EXPECT_EQ(Candidates(marks, {0, 1}, strText.c_str()).size(), 1u) << nLength;
    }
}

TEST(NameMarks, LookBeyondNeitherEndOfARange) {
    CNameMarks marks;
    marks.MakeRoom(64);
    for (uint32_t nFirst = 0; nFirst < 20; ++nFirst)
        for (uint32_t nEnd = nFirst; nEnd < 40; ++nEnd)
            ASSERT_EQ(Candidates(marks, {nFirst, nEnd}, "千代田"), All({nFirst, nEnd}));
}

TEST(NameMarks, LeaveNodesBehindTheTableToBeRead) {
    CNameMarks marks;
    marks.MakeRoom(10);
    for (uint32_t n = 0; n < 20; ++n) marks.Keep(n, CBeginning::Of("丸の内一"));
    EXPECT_EQ(Candidates(marks, {5, 15}, "千代田"), All({10, 15}));
    EXPECT_EQ(Candidates(marks, {12, 15}, "千代田"), All({12, 15}));
}

TEST(NameMarks, EndASearchAtTheNodeThatEndsIt) {
    CNameMarks marks;
    marks.MakeRoom(20);
    uint32_t nLooks = 0;
    marks.ForEachCandidate({0, 20}, CNameMarks::CText(CBeginning::Of("千代田")), [&](uint32_t n) {
        ++nLooks;
        return n == 9;
    });
    EXPECT_EQ(nLooks, 10u);
}

// --- tables of names -----------------------------------------------------------------------------------------------

TEST(NameTable, FindsTheFirstNodeOfTheNamesThatBeginATextAndTheLongestName) {
    CBound const bound(TownsNamed({"丸の内", "千代田一番町", "千代田", "", "千", "千代田"}));
    CNameTable table;
    ASSERT_TRUE(table.Make(bound.view, Towns(6), CNameTable::InOnePart));
    CNameTable::CFound const found = table.Find(bound.view, "千代田一番町２");
    EXPECT_EQ(found.first.nNode, FIRST_TOWN + 1);
    EXPECT_EQ(found.longest.nNode, FIRST_TOWN + 1);
    EXPECT_EQ(found.longest.nLength, std::strlen("千代田一番町"));
    CNameTable::CFound const shorter = table.Find(bound.view, "千代田二番町");
    EXPECT_EQ(shorter.first.nNode, FIRST_TOWN + 2) << "of two equal names the first";
    EXPECT_EQ(shorter.longest.nNode, FIRST_TOWN + 2);
    EXPECT_EQ(table.Find(bound.view, "千").longest.nNode, FIRST_TOWN + 4);
    EXPECT_EQ(table.Find(bound.view, "大手町").longest.nNode, ADDR_NONE);
    EXPECT_EQ(table.Find(bound.view, "").first.nNode, ADDR_NONE) << "an empty name begins no text here";
}

TEST(NameTable, HoldsNamesOf127BytesAndRefusesALevelWithALongerOne) {
    std::string const strLongest(127, 'a');
    CBound const bound(TownsNamed({strLongest, strLongest + 'a'}));
    CNameTable table;
    ASSERT_TRUE(table.Make(bound.view, Towns(1), CNameTable::InOnePart));
    EXPECT_EQ(table.Find(bound.view, (strLongest + "b").c_str()).longest.nLength, 127u);
    EXPECT_FALSE(table.Make(bound.view, Towns(2), CNameTable::InOnePart));
    EXPECT_FALSE(table.IsMade());
}

TEST(NameTable, RefusesNamesInTwoPartsWhereTheyWouldBeginATextByOne) {
    // 郡 and 町 by their first two bytes, as names of a double-byte encoding would have them.
    CBound const bound(TownsNamed({"ab\xE9\x83xxyy\xE7\x94"}));
    CNameTable table;
    EXPECT_FALSE(table.Make(bound.view, Towns(1), CNameTable::InOnePart));
    EXPECT_TRUE(table.Make(bound.view, Towns(1), CNameTable::InAnyParts));
}

TEST(NameTable, FindsNothingInATableThatItsNamesFillToTheLastSlot) {
    std::vector<std::string> vName;
    for (char c = '0'; c < '0' + 64; ++c) vName.push_back(std::string("town ") + c);
    CBound const bound(TownsNamed(vName));
    CNameTable table;
    ASSERT_TRUE(table.Make(bound.view, Towns(vName.size()), CNameTable::InAnyParts));
    for (size_t n = 0; n < vName.size(); ++n)
        EXPECT_EQ(table.Find(bound.view, vName[n].c_str()).first.nNode, FIRST_TOWN + n);
    EXPECT_EQ(table.Find(bound.view, "town x").first.nNode, ADDR_NONE);
}

TEST(NameTable, RefusesALevelOfAMillionNodesWithoutReadingIt) {
    CBound const bound(TownsNamed({}));
    CNameTable table;
    EXPECT_FALSE(table.Make(bound.view, {0, 1U << 20}, CNameTable::InAnyParts));
}

TEST(NameTable, RefusesNamesThatAllComeToTheSameSlot) {
    // FNV-1a of the name, upper half onto the lower one: the same eight bits for 65 names.
    std::vector<std::string> vName;
    for (unsigned n = 0; vName.size() < 65; ++n) {
        std::string const strName = std::to_string(n);
        uint64_t nHash = 0xCBF29CE484222325U;
        for (char const c : strName) nHash = (nHash ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
        if (((nHash ^ nHash >> 32) & 0xFF) == 0x5A) vName.push_back(strName);
    }
    CBound const bound(TownsNamed(vName));
    CNameTable table;
    EXPECT_FALSE(table.Make(bound.view, Towns(65), CNameTable::InAnyParts));
    EXPECT_TRUE(table.Make(bound.view, Towns(64), CNameTable::InAnyParts)) << "one name fewer";
}

TEST(NameTable, OfNoNodesFindsNothing) {
    CBound const bound(TownsNamed({}));
    CNameTable table;
    ASSERT_TRUE(table.Make(bound.view, Towns(0), CNameTable::InAnyParts));
    EXPECT_EQ(table.Find(bound.view, "千代田").first.nNode, ADDR_NONE);
}

TEST(LevelNames, AreMadeForTheFourthSearchOfALevel) {
    CBound const bound(TownsNamed({"丸の内"}));
    CLevelNames names;
    for (int nSearch = 1; nSearch <= 5; ++nSearch)
        EXPECT_EQ(names.Table(bound.view, Towns(1), CNameTable::InAnyParts) != nullptr, nSearch >= 4) << nSearch;
}
