// What the names of subdivisions say, and which numbers fit: every form that the official table has, and some that it
// had or may have.
#include "text/AreaRules.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

using qeadrs::CAreaMeaning;
using qeadrs::CFoldedText;
using qeadrs::CHouseNumber;
using qeadrs::EFit;
using qeadrs::tagAREARULE;

namespace {

constexpr char const* UNITS[] = {"?", "丁目", "番地", "地割", "線", "条", "区", "号"};

std::string Show(uint32_t nValue, uint32_t nWhole) {
    uint32_t const nBelow = nValue & 0xFFFF;
    return std::to_string(nValue >> 16) + (nBelow == nWhole ? "" : "-" + std::to_string(nBelow));
}

// "番地 1..20", "番地 5-1..5-3 of block 2", "? 7 behind 北山", and what its flags say.
std::string Show(tagAREARULE const& rule, CFoldedText const& name) {
    std::string str = std::string(UNITS[rule.nUnit]) + " " + Show(rule.nFrom, 0);
    if (rule.nTo == 0xFFFFFFFF)
        str += "..";
    else if (Show(rule.nFrom, 0) != Show(rule.nTo, 0xFFFF))
        str += ".." + Show(rule.nTo, 0xFFFF);
    if (rule.nBlock != 0) str += " of block " + std::to_string(rule.nBlock);
    if (rule.nPlace != 0) str += " behind " + std::string(name.Bytes(0, rule.nPlace));
    if ((rule.nFlags & qeadrs::AREA_EXCEPT) != 0) str += " except";
    if ((rule.nFlags & qeadrs::AREA_ODD) != 0) str += " odd";
    if ((rule.nFlags & qeadrs::AREA_EVEN) != 0) str += " even";
    if ((rule.nFlags & qeadrs::AREA_VAGUE) != 0) str += " vague";
    return str;
}

// Rules and places, each behind a comma.
std::string Show(std::string_view strName, std::vector<std::string_view> const& vNext = {}, uint32_t nBlock = 0) {
    CAreaMeaning const meaning = qeadrs::ReadArea(strName, vNext, nBlock);
    CFoldedText name;
    name.Fold(strName);
    std::string str;
    for (tagAREARULE const& rule : meaning.vRule) str += (str.empty() ? "" : ", ") + Show(rule, name);
    for (qeadrs::CAreaPlace const& place : meaning.vPlace)
        str += (str.empty() ? "{" : ", {") +
               std::string(name.Bytes(place.nFirst, size_t{place.nFirst} + place.nCount)) + "}";
    return str;
}

struct CRead {
    char const* pszName;
    char const* pszMeaning;
};

void ExpectAll(std::vector<CRead> const& vRead) {
    for (CRead const& read : vRead) EXPECT_EQ(Show(read.pszName), read.pszMeaning) << read.pszName;
}

// "2丁目 3番 4": the parts that were read, and "|" with the number of characters left behind them.
std::string ShowNumber(std::string_view strText, size_t nFirst = 0) {
    CFoldedText text;
    text.Begin(strText);
    CHouseNumber const number = qeadrs::ReadHouseNumber(text, nFirst);
    std::string str;
    for (size_t i = 0; i < number.nParts; ++i) {
        CHouseNumber::CPart const& part = number.aPart[i];
        str += std::to_string(part.nNumber) + (part.nUnit == 0 ? "" : UNITS[part.nUnit]) + " ";
    }
    text.Has(CFoldedText::LIMIT);
    return str + "|" + std::to_string(text.nCount - nFirst - number.nTokens);
}

EFit FitsText(tagAREARULE const& rule, std::string_view strText) {
    CFoldedText text;
    text.Fold(strText);
    return qeadrs::Fits(rule, qeadrs::ReadHouseNumber(text, 0));
}

// The best that the rules of a name make of a number, exceptions taken off: "yes", "maybe", "no".
std::string Fit(std::string_view strName, std::string_view strNumber) {
    CAreaMeaning const meaning = qeadrs::ReadArea(strName, {});
    EFit nBest = EFit::No;
    for (tagAREARULE const& rule : meaning.vRule) {
        EFit const nFit = FitsText(rule, strNumber);
        if ((rule.nFlags & qeadrs::AREA_EXCEPT) == 0)
            nBest = std::max(nBest, nFit);
        else if (nFit == EFit::Yes)
            return "no";
    }
    constexpr char const* NAMES[] = {"no", "maybe", "yes"};
    return NAMES[static_cast<int>(nBest)];
}

struct CFit {
    char const* pszName;
    char const* pszYes; // numbers with blanks between them
    char const* pszMaybe;
    char const* pszNo;
};

void ExpectFits(std::string const& strName, std::string_view strNumbers, char const* pszFit) {
    while (!strNumbers.empty()) {
        std::string_view const strNumber = strNumbers.substr(0, strNumbers.find(' '));
        EXPECT_EQ(Fit(strName, strNumber), pszFit) << strName << " / " << strNumber;
        strNumbers.remove_prefix(std::min(strNumber.size() + 1, strNumbers.size()));
    }
}

void ExpectAll(std::vector<CFit> const& vFit) {
    for (CFit const& fit : vFit) {
        ExpectFits(fit.pszName, fit.pszYes, "yes");
        ExpectFits(fit.pszName, fit.pszMaybe, "maybe");
        ExpectFits(fit.pszName, fit.pszNo, "no");
    }
}

} // namespace

TEST(AreaRules, BlocksAreNumbersAndRangesWithTheUnitBehindTheLast) {
    ExpectAll(std::vector<CRead>{
        {"３丁目", "丁目 3"},
        {"１丁", "丁目 1"},
        {"１〜１９丁目", "丁目 1..19"},
        {"１、２丁目", "丁目 1, 丁目 2"},
        {"１〜３、５、７丁目", "丁目 1..3, 丁目 5, 丁目 7"},
        {"３５〜３８、４１、４２丁目", "丁目 35..38, 丁目 41, 丁目 42"},
        {"丁目", "丁目 0.."},
    });
}

TEST(AreaRules, HouseNumbersHaveNumbersBelowThem) {
    ExpectAll(std::vector<CRead>{
        {"１７番地", "番地 17"},
        {"１〜７番", "番地 1..7"},
        {"１、１７番地", "番地 1, 番地 17"},
        {"４００、４００−２番地", "番地 400, 番地 400-2"},
        {"１０−１番地", "番地 10-1"},
        {"１０番地の２", "番地 10-2"},
        {"１８２４−２、１８２４−９", "? 1824-2, ? 1824-9"},
        {"４０−１〜４０−３番地", "番地 40-1..40-3"},
        {"６７−４〜１１３−７番地", "番地 67-4..113-7"},
        {"４７１０〜４７４１、４７４７〜４７６１−３番地", "番地 4710..4741, 番地 4747..4761-3"},
        {"５１３３番地２〜５１８７番地、５３１６番地１〜５３１６番地１６７",
         "番地 5133-2..5187, 番地 5316-1..5316-167"},
        {"１番地〜２０６１番地、２７５７番地〜２７６８番地", "番地 1..2061, 番地 2757..2768"},
        {"５３の１〜６０の９番地", "番地 53-1..60-9"},
        {"７９９の１〜８６７番地", "番地 799-1..867"},
        {"３１５３−１〜３１５３−１１００「峰の原高原」", "? 3153-1..3153-1100, {峰の原高原}"},
        {"番地", "番地 0.."},
        {"番地のみ", "番地 0.."},
        {"大字", "番地 0.. vague"},
    });
}

TEST(AreaRules, ANumberThatIsSmallerThanTheOneInFrontIsBelowIt) {
    ExpectAll(std::vector<CRead>{
        {"１の２、３の２〜６、４の２・４・６、１１の１番地",
         "番地 1-2, 番地 3-2..3-6, 番地 4-2, 番地 4-4, 番地 4-6, 番地 11-1"},
        {"８３２の２・４、８５２の３", "? 832-2, ? 832-4, ? 852-3"},
        {"２７９の１、３〜５、２８１の２〜９、１１〜１８",
         "? 279-1, ? 279-3..279-5, ? 281-2..281-9, ? 281-11..281-18"},
        {"１３、１４番地、１０番地の２、５", "番地 13, 番地 14, 番地 10-2, ? 10-5"},
        {"１−９７〜１１６", "? 1-97..1-116"},
        {"７８２−１３、５３６３−７〜８、５３８２−３", "? 782-13, ? 5363-7..5363-8, ? 5382-3"},
        {"５、９、１１−１２、３６", "? 5, ? 9, ? 11-12, ? 36"},
    });
}

TEST(AreaRules, NumbersThatJumpBackMayBeBelowOthersAndTheNameIsVague) {
    ExpectAll(std::vector<CRead>{
        {"１−５７、５８、７６、８０〜８６、４４番地",
         "番地 1-57 vague, 番地 58 vague, 番地 76 vague, 番地 80..86 vague, 番地 44 vague"},
        {"６１１、６９５、７３２、６７５", "? 611, ? 695, ? 732, ? 675"}, // just not sorted
        {"第１、２", "? 1 vague, ? 2 vague"},
        {"５１３の１以内", "? 513-1 vague"},
    });
}

TEST(AreaRules, RangesMayBeOpen) {
    ExpectAll(std::vector<CRead>{
        {"１７００番地〜", "番地 1700.."},
        {"１０００〜", "? 1000.."},
        {"２００番以上", "番地 200.."},
        {"３５番以降", "番地 35.."},
        {"４５０番地以下", "番地 0..450"},
        {"４５０番地以内", "番地 0..450"},
        {"細原２２５９〜", "? 2259.. behind 細原"},
        {"３丁目２８３番以上", "番地 283.. of block 3"},
    });
}

TEST(AreaRules, HouseNumbersLieInTheBlockInFrontOfThem) {
    ExpectAll(std::vector<CRead>{
        {"５丁目１番地", "番地 1 of block 5"},
        {"４丁目５５〜１１４番地", "番地 55..114 of block 4"},
        {"１丁目１番、５丁目１番", "番地 1 of block 1, 番地 1 of block 5"},
        {"３丁目１８・２１番", "番地 18 of block 3, 番地 21 of block 3"},
        {"４丁目１〜２番・１０〜２７番、５丁目", "番地 1..2 of block 4, 番地 10..27 of block 4, 丁目 5"},
        {"１〜３丁目、４丁目１〜１４番", "丁目 1..3, 番地 1..14 of block 4"},
        {"１、２丁目、３丁目１番〜２８２番", "丁目 1, 丁目 2, 番地 1..282 of block 3"},
        {"２丁目１番１〜２３号、２番", "番地 1-1..1-23 of block 2, 番地 2 of block 2"},
        {"３丁目１１番５〜８号「多の津団地」", "番地 11-5..11-8 of block 3, {多の津団地}"},
        {"１−７−１", "? 7-1 of block 1"},
        {"１−１−８、１−３−４", "? 1-8 of block 1, ? 3-4 of block 1"},
        {"１〜２丁目５番", "番地 5 of block 1, 番地 5 of block 2"},
    });
}

TEST(AreaRules, ExceptionsAreRulesOfTheirOwn) {
    ExpectAll(std::vector<CRead>{
        {"１丁目「１１を除く」", "丁目 1, ? 11 of block 1 except"},
        {"２丁目「６５１、６６２番地」以外、３丁目５",
         "丁目 2, 番地 651 of block 2 except, 番地 662 of block 2 except, ? 5 of block 3"},
        {"４３０番地以上「１７７０−１〜２、１８６２−４２を除く」",
         "番地 430.., ? 1770-1..1770-2 except, ? 1862-42 except"},
        {"１〜５００「２１１番地を除く」「古町」、２５２７〜２５２９「土遠」",
         "? 1..500, 番地 211 except, ? 2527..2529, {古町}, {土遠}"},
        {"下久保「１７４を除く」", "? 174 behind 下久保 except, {下久保}"},
        {"上折茂「１−１３、７１−１９２を除く」",
         "? 1-13 behind 上折茂 except, ? 71-192 behind 上折茂 except, {上折茂}"},
        {"１〜９番地「古町を除く」", "番地 1..9 vague"},
    });
}

TEST(AreaRules, LotsLinesRowsAndWardsHaveTheirOwnNumbers) {
    ExpectAll(std::vector<CRead>{
        {"第４０地割〜第４５地割", "地割 40..45"},
        {"１地割〜６地割", "地割 1..6"},
        {"２２地割、２３地割", "地割 22, 地割 23"},
        {"６４地割〜越中畑６６地割", "地割 64..66"},
        {"第９地割１２番地", "地割 9-12"},
        {"第２地割「７０〜１３６」〜第４地割「３〜１１」", "地割 2-70..2-136, 地割 3, 地割 4-3..4-11"},
        {"第４０地割「５７番地１２５、１７６を除く」〜第４５地割",
         "地割 40..40-56, 地割 40-57 vague, 地割 40-58..40, 地割 41..44, 地割 45"},
        {"第２２地割〜第２３地割（一区、二区）", "地割 22..23, {一区}, {二区}"},
        {"１線〜１９線", "線 1..19"},
        {"１〜１２線", "線 1..12"},
        {"１条〜３条", "条 1..3"},
        {"１区", "区 1"},
        {"第１号", "号 1"},
    });
}

TEST(AreaRules, APlaceMayStandInFrontOfNumbers) {
    ExpectAll(std::vector<CRead>{
        {"東火行１番地", "番地 1 behind 東火行, {東火行１番地}"},
        {"下川原１９０−１", "? 190-1 behind 下川原, {下川原１９０−１}"},
        {"北１区", "区 1 behind 北, {北１区}"},
        {"猪位金１〜３区", "区 1..3 behind 猪位金"},
        {"猫屋敷３２９〜３５６", "? 329..356 behind 猫屋敷"},
        {"稲崎平３０２番地・３１５番地", "番地 302 behind 稲崎平, 番地 315 behind 稲崎平"},
        {"中一里山「９番地の４、１２番地」", "番地 9-4 behind 中一里山, 番地 12 behind 中一里山"},
        {"西５〜７線７９〜１１０番地",
         "線 5-79..5-110 behind 西, 線 6-79..6-110 behind 西, 線 7-79..7-110 behind 西"},
        {"８９７番地及び中島５０５〜５１８番地", "番地 897, {中島}"},
        {"１０４７〜１２６８及び下平", "? 1047..1268, {下平}"},
    });
}

TEST(AreaRules, PlacesAreTheNamesOfListsBracketsAndBothSidesOfADot) {
    ExpectAll(std::vector<CRead>{
        {"上勇知", "{上勇知}"},
        {"土手畑・藤場", "{土手畑}, {藤場}"},
        {"甲・乙", "{甲}, {乙}"},
        {"白滝Ｂ・Ｃ", "{白滝Ｂ}"},
        {"渡戸沢「筍沢温泉」", "{筍沢温泉}, {渡戸沢}"},
        {"長尾山「その他」", "{長尾山}"},
        {"１〜４２６番地（川東）", "番地 1..426, {川東}"},
        {"１７３〜２５７番地「鉢伏峠」", "番地 173..257, {鉢伏峠}"},
        {"３１１番地〔東京電力福島第二原子力発電所構内〕", "番地 311, {東京電力福島第二原子力発電所構内}"},
        {"第１地割〜第３地割（八木南町、八木北町）", "地割 1..3, {八木南町}, {八木北町}"},
        {"南原無番地", "{南原無番地}"},
        {"無番地", "{無番地}"},
        {"二の井", "{二の井}"},
        {"第一大原野", "{第一大原野}"},
        {"下谷一区", "{下谷一区}"},
        {"第十", "{第十}"},
        {"", ""},
        {"　", ""},
    });
}

TEST(AreaRules, WhatIsNoNumberOfAnAddressIsAName) {
    ExpectAll(std::vector<CRead>{
        {"１５号の沢", "{１５号の沢}"},
        {"北１３号沢", "{北１３号沢}"},
        {"烏帽子国有林７７林班", "{烏帽子国有林７７林班}"},
        {"妙高山国有林第２８班", "{妙高山国有林第２８班}"},
        {"松屋町通椹木町下る", "{松屋町通椹木町下る}"},
        {"三条通白川橋東入４丁目", "{三条通白川橋東入４丁目}"},
        {"１丁目東", "丁目 1 vague, {１丁目東}"},
        {"３丁目本通り", "丁目 3 vague, {３丁目本通り}"},
    });
}

TEST(AreaRules, OddAndEvenNumbersAreTold) {
    ExpectAll(std::vector<CRead>{
        {"１〜９９番地の奇数", "番地 1..99 odd"},
        {"１〜９９の偶数番地", "? 1..99 even"},
        {"１〜９９番地（偶数）", "番地 1..99 even"},
        {"奇数番地", "番地 0.. odd"},
        {"２丁目１番１〜２３号「奇数」", "番地 1-1..1-23 of block 2 odd"},
    });
}

TEST(AreaRules, AUnitMayStandInTheNameThatTheListGoesOnIn) {
    std::string const strFirst = "３６４９、３６６１、３６６７、３６６７−３、３６６９−４、３６７１、３６７２";
    std::string const strLong = "３６７３−１、３６７４、３６７４−２、３６７４−８、３６８０−１、３７０１、３７０４";
    ASSERT_GT(strLong.size() + 3 + std::string("４２４４−４番地").size(), size_t{127});
    EXPECT_EQ(Show(strFirst, {strLong, "４２４４−４番地"}).substr(0, 11), "番地 3649");
    EXPECT_EQ(Show(strFirst, {strLong}).substr(0, 6), "? 3649");
    EXPECT_EQ(Show("３６４９", {"４２４４番地"}), "? 3649"); // these would have been one name
}

TEST(AreaRules, ABlockHoldsForTheNameThatTheListGoesOnIn) {
    std::string const strFirst = "２丁目６５１、６６２、６６８番地、３丁目１０３、１１８、２１０、２５４、２６７";
    std::string const strNext = "３７２、４４４、４６９番地";
    CAreaMeaning const first = qeadrs::ReadArea(strFirst, {strNext});
    EXPECT_EQ(first.nOpenBlock, 3u);
    EXPECT_EQ(Show(strNext, {}, first.nOpenBlock), "番地 372 of block 3, 番地 444 of block 3, 番地 469 of block 3");
    EXPECT_EQ(qeadrs::ReadArea("３丁目５", {strNext}).nOpenBlock, 0u);
}

TEST(AreaRules, HouseNumbersAreReadInEveryForm) {
    struct CCase {
        char const* pszText;
        char const* pszRead;
    };
    for (CCase const& number : std::vector<CCase>{
             {"２丁目３番４号", "2丁目 3番地 4号 |0"},
             {"2-3-4", "2 3 4 |0"},
             {"２－３−４ー５", "2 3 4 5 |0"},
             {"２の３ノ４", "2 3 4 |0"},
             {"２丁目　３番 ４－５", "2丁目 3番地 4 5 |0"},
             {"2丁目-3の4", "2丁目 3 4 |0"},
             {"二丁目三番地四", "2丁目 3番地 4 |0"},
             {"二十一丁目1", "21丁目 1 |0"},
             {"第４０地割１２番地５", "40地割 12番地 5 |0"},
             {"5番地の2", "5番地 2 |0"},
             {"5番地2号室", "5番地 2号 |1"},
             {"3丁", "3丁目 |0"},
             {"5線79番地", "5線 79番地 |0"},
             {"1条2丁目", "1条 2丁目 |0"},
             {"1区", "1区 |0"},
             {"1-2-3-4-5", "1 2 3 4 |2"},
             {"1-2ビル3", "1 2 |3"},
             {"1-", "1 |1"},
             {"1--2", "1 |3"},
             {"1のa", "1 |2"},
             {"1 2", "1 |1"},
             {"99999999999", "65535 |0"},
             {"65536番地", "65535番地 |0"},
             {"３番町", "|3"},
             {"1条通5丁目", "|6"},
             {"2番丁3", "|4"},
             {"第", "|1"},
             {"丁目", "|2"},
             {"大通西", "|3"},
             {"", "|0"},
         })
        EXPECT_EQ(ShowNumber(number.pszText), number.pszRead) << number.pszText;
    EXPECT_EQ(ShowNumber("北1区2", 1), "1区 2 |0");
    for (size_t const nFirst : {size_t{4}, CFoldedText::LIMIT, CFoldedText::LIMIT + 1, SIZE_MAX - 1}) {
        CFoldedText text;
        text.Fold("2丁目");
        EXPECT_EQ(qeadrs::ReadHouseNumber(text, nFirst).nParts, 0u) << nFirst;
    }
}

TEST(AreaRules, ANumberOfSomethingElseIsNoHouseNumber) {
    struct CCase {
        char const* pszText;
        char const* pszRead;
    };
    for (CCase const& number : std::vector<CCase>{
             {"5F", "|2"}, // a word touches it
             {"5Ｆ", "|2"},
             {"3階", "|2"},
             {"20ビル", "|4"},
             {"２０ビル", "|4"},
             {"20ﾋﾞﾙ", "|4"},
             {"二十ビル", "|4"},
             {"25周年記念館", "|7"},
             {"4LDK", "|4"},
             {"5番目", "5番地 |1"}, // a unit stands behind it
             {"25", "25 |0"},
             {"25 サンハイツ", "25 |5"},
             {"25　ビル", "25 |2"},
             {"25字東", "25 |1"},
             {"25、ビル", "25 |3"},
             {"25(ビル)", "25 |4"},
             {"25・ビル", "25 |3"},
             {"25-ビル", "25 |3"},
             {"1-2-3サンハイツ", "1 2 3 |5"},
             {"5丁目3サンハイツ", "5丁目 3 |5"},
             {"011-251-1111", "|12"}, // a telephone's
             {"０１１", "|3"},
             {"〇丁目", "|3"},
             {"1-02", "1 2 |0"},
             {"第20ビル", "|5"}, // counted, and not said what
             {"第20", "|3"},
             {"第20 ビル", "|5"},
             {"第1-2", "|4"},
             {"5番地第20ビル", "5番地 |5"},
             {"第2丁目", "2丁目 |0"},
             {"第40地割5", "40地割 5 |0"},
             {"第3号", "3号 |0"},
         })
        EXPECT_EQ(ShowNumber(number.pszText), number.pszRead) << number.pszText;
    std::string const strDigits(CFoldedText::LIMIT, '1'); // the word behind them is not looked at any more
    EXPECT_EQ(ShowNumber(strDigits + "F"), "65535 |0");
    EXPECT_EQ(ShowNumber(strDigits.substr(1) + "F"), "|255");
}

TEST(AreaRules, BlocksFitWrittenOnesAndBareFirstNumbers) {
    ExpectAll(std::vector<CFit>{
        {"１〜１９丁目", "1丁目 19丁目5番 十九丁目 5-2-1 19", "あ 0丁目", "20丁目 20-1 5番地 5番2号 99999"},
        {"１、２丁目", "1丁目 2-8", "", "3-1"},
        {"１丁目「１１を除く」", "1丁目12番 1-12 1丁目", "", "1丁目11番地3 1-11 2-5"},
    });
}

TEST(AreaRules, HouseNumbersFitTheirMainNumberWithAllBelowIt) {
    ExpectAll(std::vector<CFit>{
        {"１７番地", "17番地 17 17-3 17番地の3 1丁目17番", "1丁目", "16 18番地 1丁目18 171"},
        {"４００、４００−２番地", "400 400-2 400-5", "", "401"},
        {"８８−２", "88-2 88の2 88番地2 88番2号 88-2-1", "88 88番地", "88-1 88-3 2-88"},
        {"５１３３番地２〜５１８７番地", "5133-2 5133-900 5150 5187-3", "5133", "5133-1 5188"},
        {"４７４７〜４７６１−３番地", "4747 4747-1 4761-3", "4761", "4761-4 4746-9"},
        {"４３０番地以上「１７７０−１〜２を除く」", "430 1770-3 65535 99999999", "", "429-9 1770-1 1770番地2"},
        {"４５０番地以下", "1 450-9", "", "451"},
        {"１７００番地〜", "1700 60000-1", "", "1699"},
        {"１", "1 1-5 1番地", "1丁目 1丁目5番 2丁目", "2 2丁目5番"},
    });
}

// 鴨部（丁目） beside the rest of 鴨部: 鴨部1-2 may be block 1 or house 1, 鴨部1234-5 is no block's.
TEST(AreaRules, AUnitAloneIsDecidedByAWrittenUnitAndASmallBareNumberMayBeEither) {
    ExpectAll(std::vector<CFit>{
        {"丁目", "3丁目 3丁目5番地 123丁目 2条3丁目", "7-1 1-2-3 99 99-100 2-3番4号",
         "7番地 7番地3 100 1234-5 1条 40地割12"},
        {"番地", "5番地 5番2号 100 1234-5 567-8 99番地 40地割12", "5-2 1-2-3 99 99-100 2-3番4号",
         "3丁目 3丁目5番地 1条2丁目 2-3丁目"},
        {"番地のみ", "5番地 100-1", "5-2", "3丁目"},
        {"大字", "5番地 100-1", "5-2", "3丁目"},
    });
}

TEST(AreaRules, HouseNumbersOfABlockNeedTheBlock) {
    ExpectAll(std::vector<CFit>{
        {"４丁目５５〜１１４番地", "4丁目55番地 4-114-2 四丁目六十番", "4丁目 4 60番地 60",
         "4-54 5-60 3丁目60番 60-1"},
        {"２丁目１番１〜２３号、２番", "2-1-23 2丁目1番5号 2丁目2番9号", "2-1 2丁目1番", "2-1-24 1-1-5 2-3"},
        {"３丁目１８・２１番", "3-18 3-21-4", "3", "3-19 18-3"},
        {"１−７−１", "1-7-1 1丁目7番1号", "1-7", "7-1-1 1-7-2"},
        {"２丁目「６５１、６６２番地」以外", "2-650 2丁目663", "", "2丁目651 2-662-1"},
    });
}

TEST(AreaRules, OtherUnitsHaveToBeWrittenButThatOfLots) {
    ExpectAll(std::vector<CFit>{
        {"第４０地割〜第４５地割", "第40地割 45地割3 41-7 40", "", "39地割 46 41番地 41丁目"},
        {"第２地割「７０〜１３６」〜第４地割「３〜１１」", "2地割70 2-136 3-1 4-3", "第2地割", "2-69 4-12 4地割2"},
        {"１〜１２線", "1線 12線5番地", "", "1 13線 5番地"},
        {"１条〜３条", "3条 2条5丁目", "", "4条 2丁目 2-1"},
        {"１区", "1区 1区3", "", "1 2区"},
        {"第１号", "第1号 1号5番地", "", "1 2号 5番1号"},
        {"５〜８線７９〜１１０番地", "5線79番地 8線110", "5線", "5線78 9線79 79番地"},
    });
}

TEST(AreaRules, OddAndEvenNumbersFit) {
    ExpectAll(std::vector<CFit>{
        {"１〜９９番地の奇数", "1 99 7-2", "", "2 8-1 101"},
        {"１〜９９番地（偶数）", "2 98番地", "", "1 99"},
        {"２丁目１番１〜２３号「奇数」", "2-1-1 2-1-23", "2-1", "2-1-2 2-1-24"},
        {"奇数番地", "3 5番地", "", "4"},
    });
}

// A dictionary may be damaged, and no name is trusted.
TEST(AreaRules, AnyNameIsReadInBoundsAndToFewRules) {
    std::string const strParts[] = {"１",   "９９９９９９", "〜",   "、",   "・",   "「", "」",   "（",     "）",
                                    "丁目", "番地",         "線",   "地割", "第",   "−",  "の",   "を除く", "以外",
                                    "以上", "奇数",         "及び", "山",   "\xE3", "号", "\xFF", "一",     "その他"};
    constexpr unsigned SEED = 20240907;
    std::mt19937 engine(SEED);
    auto const Random = [&](size_t nLimit) { return size_t{engine()} % nLimit; };
    for (int i = 0; i < 3000; ++i) {
        std::string strName;
        for (size_t n = Random(40); n > 0; --n) strName += strParts[Random(std::size(strParts))];
        CFoldedText name;
        name.Fold(strName);
        CAreaMeaning const meaning = qeadrs::ReadArea(strName, {strName, strName});
        EXPECT_LE(meaning.vRule.size(), 64 * name.nCount) << strName << ", seed " << SEED;
        for (tagAREARULE const& rule : meaning.vRule) {
            EXPECT_LE(rule.nPlace, name.nCount) << strName;
            EXPECT_LE(rule.nFrom, rule.nTo) << strName;
        }
        for (qeadrs::CAreaPlace const& place : meaning.vPlace) {
            EXPECT_NE(place.nCount, 0) << strName;
            EXPECT_LE(size_t{place.nFirst} + place.nCount, name.nCount) << strName;
        }
        CHouseNumber const number = qeadrs::ReadHouseNumber(name, Random(40));
        EXPECT_LE(number.nParts, CHouseNumber::PARTS);
        for (tagAREARULE const& rule : meaning.vRule) qeadrs::Fits(rule, number);
    }
    std::string strNested;
    for (int i = 0; i < 40; ++i) strNested += "１〜６４線";
    EXPECT_LE(qeadrs::ReadArea(strNested + "５", {}).vRule.size(), size_t{64});
    std::string strBrackets;
    for (int i = 0; i < 40000; ++i) strBrackets += "「";
    EXPECT_TRUE(qeadrs::ReadArea(strBrackets, {}).vRule.empty());
}
