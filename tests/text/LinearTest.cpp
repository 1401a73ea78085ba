// Texts of up to a megabyte, of all that takes a reader its time, are read in time linear in their length, and read as
// their beginning says. The time is counted, not measured: the library is compiled here so that it calls a function of
// this file at each step that it takes (a basic block of its code). What single library calls (memcpy) do is not seen.
#include "tests/text/TextWorld.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

namespace {

constexpr size_t MEGABYTE = size_t{1} << 20;
constexpr size_t LONG = MEGABYTE / 16;      // where a square would show as well
constexpr uint64_t MOST_STEPS = 3000000000; // a square of the longest text would take a hundred times as many

constexpr uint64_t STEPS_OF_A_BYTE = 256; // of code that is not optimised: some 80
uint64_t nSteps;

} // namespace

extern "C" __attribute__((visibility("default"))) void __sanitizer_cov_trace_pc() {
    if (++nSteps != MOST_STEPS) return;
    char const szText[] = "a reading takes more steps than any length allows\n";
    [[maybe_unused]] auto const nWritten = write(STDERR_FILENO, szText, sizeof szText - 1);
    std::abort();
}

namespace {

struct CRepeated {
    char const* pszWhat;
    std::string strUnit;
};

std::vector<CRepeated> const& Repeated() {
    static std::vector<CRepeated> const vRepeated = {
        {"blanks", " "},
        {"ideographic spaces", "　"},
        {"ends of lines", "\r\n"},
        {"zeros", std::string(1, '\0')},
        {"digits", "1"},
        {"full-width digits", "１"},
        {"kanji digits", "一"},
        {"noughts", "〇"},
        {"tens", "十"},
        {"numbers with units", "九千九百九十九"},
        {"rising units", "一十百千"},
        {"numbers and dashes", "1-"},
        {"dashes", "－"},
        {"long vowels", "ー"},
        {"waves", "〜"},
        {"town blocks", "１丁目"},
        {"house numbers", "５番地の"},
        {"lots", "第４０地割"},
        {"ordinals", "第"},
        {"字", "字"},
        {"大字", "大字"},
        {"大", "大"},
        {"repetitions", "々"},
        {"a kanji and its repetitions", "佐々"},
        {"opening brackets", "（"},
        {"closing brackets", "）"},
        {"quotes", "「"},
        {"both brackets", "「（"},
        {"commas", "、"},
        {"voicing marks", "\u3099"},
        {"half-width voicing marks", "ﾞ"},
        {"voiced kana", "か\u3099"},
        {"half-width voiced kana", "ｶﾞ"},
        {"variation selectors", "\uFE00"},
        {"selectors beyond the basic plane", "\U000E0100"},
        {"a kanji and its selectors", "辻\U000E0101"},
        {"characters beyond the basic plane", "\U00020BB7"},
        {"〒", "〒"},
        {"codes", "100-0005"},
        {"prefectures", "東京都"},
        {"prefectures without 都", "東京"},
        {"cities", "府中市"},
        {"cities with a county", "余市郡余市町"},
        {"wards", "青葉区"},
        {"a prefecture and a city", "東京都千代田区"},
        {"a whole address", "東京都千代田区丸の内１－２－３"},
        {"towns", "大通西"},
        {"beginnings of towns", "旭ケ"},
        {"streets of Kyoto", "烏丸通四条上る"},
        {"turns of Kyoto", "通上る下る東入西入る"},
        {"通", "通"},
        {"floors", "２０階"},
        {"buildings", "アエル"},
        {"buildings and floors", "アエル２０階"},
        {"other kanji", "龠"},
        {"ASCII", "abcdefgh"},
        {"bytes that are no character", "\xFF"},
        {"tails of characters", "\x80"},
        {"characters cut short", "\xE6\x9D"},
        {"characters that are too long", "\xC0\xAF"},
        {"surrogates", "\xED\xA0\x80"},
    };
    return vRepeated;
}

std::string Repeat(std::string const& strUnit, size_t nBytes) {
    std::string str = strUnit;
    while (str.size() < nBytes) str += str;
    str.resize((nBytes + strUnit.size() - 1) / strUnit.size() * strUnit.size());
    return str;
}

class Linear : public testing::Test {
  protected:
    Linear() : m_vByte(TextImage()) {
        m_dic.SetDictionary(m_vByte.data());
        m_pText = std::make_unique<qeadrs::CAddressText>(m_dic);
        EXPECT_TRUE(m_pText->HasIndex());
    }

    QETEXTREADING Read(std::string const& str) { return m_pText->Read(str); }

    uint64_t StepsOf(std::string const& str) {
        nSteps = 0;
        m_pText->Read(str);
        return nSteps;
    }

    // Twice the length, at most twice the steps; and never more than a few for each byte.
    void ExpectLinear(std::string const& strFront, CRepeated const& repeated, std::string const& strBehind) {
        constexpr uint64_t STEPS_OF_A_HEAD = 300000; // all that a text without length can take
        uint64_t nBefore = 0;
        for (size_t const nBytes : {LONG / 8, LONG / 4, LONG / 2}) {
            std::string const str = strFront + Repeat(repeated.strUnit, nBytes) + strBehind;
            uint64_t const n = StepsOf(str);
            EXPECT_GT(n, 0u) << "nothing is counted";
            EXPECT_LE(n, STEPS_OF_A_HEAD + STEPS_OF_A_BYTE * str.size()) << repeated.pszWhat << ", " << nBytes;
            if (nBefore != 0) {
                EXPECT_LE(n, 2 * nBefore + 1000) << repeated.pszWhat << ", " << nBytes << " bytes";
            }
            nBefore = n;
        }
    }

    CImageBytes m_vByte;
    CAddrDic m_dic;
    std::unique_ptr<qeadrs::CAddressText> m_pText;
};

// That of a place that is the same, and the same numbers.
void ExpectSameAnswer(QETEXTREADING const& one, QETEXTREADING const& other, char const* pszWhat) {
    EXPECT_EQ(one.nSureness, other.nSureness) << pszWhat;
    EXPECT_EQ(one.nSupplied, other.nSupplied) << pszWhat;
    EXPECT_EQ(one.place.nPref, other.place.nPref) << pszWhat;
    EXPECT_EQ(one.place.nCity, other.place.nCity) << pszWhat;
    EXPECT_EQ(one.place.nTown, other.place.nTown) << pszWhat;
    EXPECT_EQ(one.place.nEntry, other.place.nEntry) << pszWhat;
    EXPECT_EQ(one.nCandidate, other.nCandidate) << pszWhat;
}

constexpr char ADDRESS[] = "北海道札幌市中央区旭ケ丘";

} // namespace

TEST_F(Linear, TextsOfOneThingTakeTwiceTheStepsForTwiceTheLength) {
    for (CRepeated const& repeated : Repeated()) ExpectLinear("", repeated, "");
}

TEST_F(Linear, AddressesInFrontOfSuchTextsTakeTwiceTheStepsForTwiceTheLength) {
    for (CRepeated const& repeated : Repeated()) {
        ExpectLinear("京都府京都市中京区", repeated, "");
        ExpectLinear("札幌市中央区大通西", repeated, "２５丁目");
    }
}

TEST_F(Linear, AddressesBehindSuchTextsTakeTwiceTheStepsForTwiceTheLength) {
    for (CRepeated const& repeated : Repeated()) ExpectLinear("〒100-0005", repeated, ADDRESS);
}

TEST_F(Linear, ALongTextIsReadAsItsBeginningIs) {
    // More than the head of a text holds: what is behind that changes nothing.
    constexpr size_t HEAD = 8192;
    for (CRepeated const& repeated : Repeated())
        for (std::string const& strFront : {std::string(), std::string(ADDRESS), std::string("京都市中京区")})
            ExpectSameAnswer(Read(strFront + Repeat(repeated.strUnit, HEAD)),
                             Read(strFront + Repeat(repeated.strUnit, LONG)), repeated.pszWhat);
}

TEST_F(Linear, AMegabyteIsReadAsItsBeginningIs) {
    for (char const* const pszUnit : {" ", "字", "一", "（", "ﾞ", "東京都", "\xFF"})
        ExpectSameAnswer(Read(ADDRESS + Repeat(pszUnit, 8192)), Read(ADDRESS + Repeat(pszUnit, MEGABYTE)), pszUnit);
}

TEST_F(Linear, WhatStandsBehindAnAddressTakesNothingFromIt) {
    QETEXTREADING const alone = Read(ADDRESS);
    ASSERT_STREQ(alone.place.pszTown, "旭ケ丘");
    ASSERT_STREQ(alone.place.pszPostCode, "0640941");
    for (CRepeated const& repeated : Repeated()) {
        std::string const str = std::string(ADDRESS) + "、" + Repeat(repeated.strUnit, LONG);
        QETEXTREADING const reading = Read(str);
        EXPECT_EQ(reading.place.nTown, alone.place.nTown) << repeated.pszWhat;
        EXPECT_EQ(reading.place.nEntry, alone.place.nEntry) << repeated.pszWhat;
        EXPECT_GE(reading.nSureness, uint32_t{QETEXT_FOLDED}) << repeated.pszWhat;
        EXPECT_EQ(reading.rest.nOffset + reading.rest.nLength, str.size()) << repeated.pszWhat;
    }
}

TEST_F(Linear, AnAddressBehindAMegabyteOfBlanksIsFound) {
    for (char const* const pszBlank : {"　", " ", "\r\n", "\t", "\u00A0"}) {
        std::string const strBlanks = Repeat(pszBlank, std::strcmp(pszBlank, "　") == 0 ? MEGABYTE : LONG / 4);
        std::string const str = strBlanks + ADDRESS + strBlanks + "１－２";
        QETEXTREADING const reading = Read(str);
        ExpectSameAnswer(Read(std::string(pszBlank) + ADDRESS + pszBlank + "１－２"), reading, pszBlank);
        EXPECT_STREQ(reading.place.pszTown, "旭ケ丘");
        EXPECT_EQ(str.substr(reading.town.nOffset, reading.town.nLength), "旭ケ丘");
        EXPECT_EQ(str.substr(reading.rest.nOffset, reading.rest.nLength), "１－２");
        EXPECT_NE(reading.nFoldings & QETEXT_FOLD_BLANK, 0u);
        EXPECT_EQ(qeadrs::CAddressText::Canonical(reading, str), std::string(ADDRESS) + "１－２");
    }
}

TEST_F(Linear, ALongTextIsExplainedInAFewSteps) {
    for (CRepeated const& repeated : Repeated()) {
        std::string const str = ADDRESS + Repeat(repeated.strUnit, LONG);
        std::vector<qeadrs::CTextStep> vStep;
        nSteps = 0;
        QETEXTREADING const reading = m_pText->Explain(str, vStep);
        EXPECT_LE(nSteps, 1000000 + STEPS_OF_A_BYTE * str.size()) << repeated.pszWhat;
        ExpectSameAnswer(reading, Read(str), repeated.pszWhat);
        size_t nBytes = 0;
        for (qeadrs::CTextStep const& step : vStep) nBytes += step.strWhat.size();
        EXPECT_LE(vStep.size(), 100u) << repeated.pszWhat;
        EXPECT_LE(nBytes, 65536u) << repeated.pszWhat;
    }
}

TEST_F(Linear, ABatchOfLongTextsTakesTheStepsOfAllOfThem) {
    std::vector<std::string> vText;
    for (CRepeated const& repeated : Repeated()) vText.push_back(ADDRESS + Repeat(repeated.strUnit, LONG / 4));
    std::vector<std::string_view> const vView(vText.begin(), vText.end());
    std::vector<QETEXTREADING> vReading(vView.size());
    uint64_t nOneByOne = 0;
    for (std::string const& str : vText) nOneByOne += StepsOf(str);
    nSteps = 0;
    m_pText->ReadBatch(vView.data(), vView.size(), vReading.data());
    EXPECT_LE(nSteps, 2 * nOneByOne);
    for (size_t n = 0; n < vText.size(); ++n) ExpectSameAnswer(vReading[n], Read(vText[n]), Repeated()[n].pszWhat);
}

TEST_F(Linear, ALongNameIsFoldedInStepsOfItsLength) {
    for (CRepeated const& repeated : Repeated()) {
        std::string const strShort = Repeat(repeated.strUnit, LONG / 2), strLong = strShort + strShort;
        nSteps = 0;
        qeadrs::FoldName(strShort);
        uint64_t const nShort = nSteps;
        nSteps = 0;
        qeadrs::FoldName(strLong);
        EXPECT_LE(nSteps, 2 * nShort + 1000) << repeated.pszWhat;
    }
}
