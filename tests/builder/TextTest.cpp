// Folding, cutting, widths and encodings of names.
#include "builder/Text.h"

#include "tests/builder/Support.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using testing::ElementsAre;

namespace {

std::string Invalid(std::string const& strBytes) {
    size_t const n = qe::FindInvalidUtf8(strBytes);
    return n == std::string::npos ? "fine" : std::to_string(n);
}

bool FoldAlike(std::string const& strA, std::string const& strB) {
    return qe::FoldTownName(strA) == qe::FoldTownName(strB);
}

} // namespace

// --- FoldTownName ---

TEST(FoldTownName, ANumberIsTheSameInEveryScript) {
    EXPECT_TRUE(FoldAlike("北１条西", "北一条西"));
    EXPECT_TRUE(FoldAlike("北1条西", "北一条西"));
    EXPECT_TRUE(FoldAlike("北２４条西", "北二十四条西"));
    EXPECT_TRUE(FoldAlike("北１０条西", "北十条西"));
    EXPECT_TRUE(FoldAlike("北２４条西", "北二四条西"));
    EXPECT_TRUE(FoldAlike("１０５番", "百五番"));
    EXPECT_TRUE(FoldAlike("２０３０番", "二千三十番"));
    EXPECT_TRUE(FoldAlike("２０番", "二〇番"));
}

TEST(FoldTownName, DifferentNumbersStayDifferent) {
    EXPECT_FALSE(FoldAlike("北１条西", "北二条西"));
    EXPECT_FALSE(FoldAlike("北１２条西", "北一条西"));
    EXPECT_FALSE(FoldAlike("北十条西", "北一条西"));
    EXPECT_FALSE(FoldAlike("北一条西", "北条西"));
}

TEST(FoldTownName, AllSpellingsOfKeAreOne) {
    EXPECT_TRUE(FoldAlike("茅ヶ崎", "茅ケ崎"));
    EXPECT_TRUE(FoldAlike("茅ヶ崎", "茅ガ崎"));
    EXPECT_TRUE(FoldAlike("霞が関", "霞ケ関"));
}

TEST(FoldTownName, AllSpellingsOfNoAreOne) {
    EXPECT_TRUE(FoldAlike("三の丸", "三ノ丸"));
    EXPECT_TRUE(FoldAlike("三の丸", "三之丸"));
    EXPECT_FALSE(FoldAlike("三の丸", "三丸"));
}

TEST(FoldTownName, OazaAndAzaAreLeftOut) {
    EXPECT_TRUE(FoldAlike("大字南長野", "南長野"));
    EXPECT_TRUE(FoldAlike("字丸ノ内", "丸の内"));
    EXPECT_TRUE(FoldAlike("大字南長野字幅下", "南長野幅下"));
}

TEST(FoldTownName, TheFirstCharacterOfOazaStaysWhereItStandsAlone) {
    EXPECT_FALSE(FoldAlike("大手町", "手町"));
}

TEST(FoldTownName, OtherNamesStayAsTheyAre) {
    EXPECT_EQ(qe::FoldTownName("旭町"), "旭町");
}

TEST(FoldTownName, AnEmptyNameStaysEmpty) {
    EXPECT_EQ(qe::FoldTownName(""), "");
}

TEST(FoldTownName, AVeryLongNumberDoesNotOverflow) {
    EXPECT_FALSE(qe::FoldTownName(Repeat("９", 500)).empty());
    EXPECT_FALSE(qe::FoldTownName(Repeat("九千", 500)).empty());
}

TEST(FoldTownName, IllFormedTextIsPassedThrough) {
    EXPECT_EQ(qe::FoldTownName("\xE5\x8C"
                               "A"),
              "\xE5\x8C"
              "A");
}

// --- CutName ---

TEST(WithoutBlanks, BlanksOfBothWidthsAreDroppedAndNothingElse) {
    EXPECT_EQ(qe::WithoutBlanks(""), "");
    EXPECT_EQ(qe::WithoutBlanks("　 　"), "");
    EXPECT_EQ(qe::WithoutBlanks(" 株式会社　見本 商事　"), "株式会社見本商事");
    EXPECT_EQ(qe::WithoutBlanks("佐々木、「甲」\t"), "佐々木、「甲」\t")
        << "neighbours of the ideographic space stay";
    EXPECT_EQ(qe::WithoutBlanks("\xE3\x80"), "\xE3\x80") << "a space cut off is none";
}

TEST(CutName, ANameWithinTheLimitStaysWhole) {
    EXPECT_EQ(qe::CutName("abc", 3), "abc");
    EXPECT_EQ(qe::CutName("", 3), "");
}

TEST(CutName, ALongNameEndsBeforeItsLastAsciiBlankWithinTheLimit) {
    EXPECT_EQ(qe::CutName("ab cd efgh", 8), "ab cd");
}

TEST(CutName, ALongNameEndsBeforeItsLastIdeographicBlankWithinTheLimit) {
    EXPECT_EQ(qe::CutName("東　京　大阪", 14), "東　京");
}

TEST(CutName, ABlankExactlyBehindTheLimitEndsTheName) {
    EXPECT_EQ(qe::CutName("abcd efgh", 4), "abcd");
    EXPECT_EQ(qe::CutName("ab cd　efgh", 5), "ab cd");
}

// The blank's three bytes begin within the limit and end beyond it.
TEST(CutName, ABlankAcrossTheLimitEndsTheName) {
    EXPECT_EQ(qe::CutName("東京　大阪", 8), "東京");
}

TEST(CutName, ABlankBeyondTheLimitDoesNotCount) {
    EXPECT_EQ(qe::CutName("abcdef gh", 5), "abcde");
}

TEST(CutName, ANameWithoutABlankIsCutBetweenCharacters) {
    EXPECT_EQ(qe::CutName("東京大阪", 6), "東京");
    EXPECT_EQ(qe::CutName("東京大阪", 7), "東京");
    EXPECT_EQ(qe::CutName("東京大阪", 8), "東京");
    EXPECT_EQ(qe::CutName("東京大阪", 9), "東京大");
}

TEST(CutName, ABlankAtTheVeryFrontIsNoPlaceToCut) {
    EXPECT_EQ(qe::CutName("　東京大阪", 9), "　東京");
}

TEST(CutName, ALimitSmallerThanTheFirstCharacterLeavesNothing) {
    EXPECT_EQ(qe::CutName("東京", 2), "");
}

TEST(CutName, EveryLimitGivesWholeCharacters) {
    std::string const strName = "a東𠮷b　é大 阪";
    for (size_t nLimit = 0; nLimit <= strName.size(); ++nLimit) {
        std::string const strCut = qe::CutName(strName, nLimit);
        EXPECT_LE(strCut.size(), nLimit);
        EXPECT_TRUE(qe::BeginsWith(strName, strCut)) << nLimit;
        EXPECT_EQ(qe::FindInvalidUtf8(strCut), std::string::npos) << nLimit;
    }
}

// --- ToFullWidth ---

TEST(ToFullWidth, AKatakanaWithItsVoicingMarkBecomesOneCharacter) {
    EXPECT_EQ(qe::ToFullWidth("ｶﾞｷﾞﾊﾟﾋﾟｳﾞ"), "ガギパピヴ");
}

TEST(ToFullWidth, ALongVowelAndPunctuationBecomeWide) {
    EXPECT_EQ(qe::ToFullWidth("ｱｰ･､｡｢｣"), "アー・、。「」");
}

TEST(ToFullWidth, SmallKanaStaySmall) {
    EXPECT_EQ(qe::ToFullWidth("ｷｬｯｼｭｧｨｩｪｫ"), "キャッシュァィゥェォ");
}

TEST(ToFullWidth, DigitsAndLettersBecomeWide) {
    EXPECT_EQ(qe::ToFullWidth("19ﾁｮｳﾒA"), "１９チョウメＡ");
}

TEST(ToFullWidth, AHyphenBecomesTheTablesDash) {
    EXPECT_EQ(qe::ToFullWidth("1-19"), "１−１９");
}

TEST(ToFullWidth, AngleBracketsAndParenthesesBecomeWide) {
    EXPECT_EQ(qe::ToFullWidth("(1<2>)"), "（１＜２＞）");
}

TEST(ToFullWidth, ABlankBecomesIdeographic) {
    EXPECT_EQ(qe::ToFullWidth("ｱ ｲ"), "ア　イ");
}

TEST(ToFullWidth, WhatIsWideAlreadyStays) {
    EXPECT_EQ(qe::ToFullWidth("オオドオリ（１−９）"), "オオドオリ（１−９）");
}

TEST(ToFullWidth, AnEmptyTextStaysEmpty) {
    EXPECT_EQ(qe::ToFullWidth(""), "");
}

// --- lists and quotes ---

TEST(SplitList, ATextWithoutCommaIsOneItem) {
    EXPECT_THAT(qe::SplitList("東"), ElementsAre("東"));
}

TEST(SplitList, AnEmptyTextIsOneEmptyItem) {
    EXPECT_THAT(qe::SplitList(""), ElementsAre(""));
}

TEST(SplitList, CommasSplitAndEmptyItemsStay) {
    EXPECT_THAT(qe::SplitList("東、、西、"), ElementsAre("東", "", "西", ""));
}

TEST(SplitList, CommasInsideEveryKindOfQuotesDoNotSplit) {
    EXPECT_THAT(qe::SplitList("東「１、２」、西＜３、４＞、南〔５、６〕"),
                ElementsAre("東「１、２」", "西＜３、４＞", "南〔５、６〕"));
}

TEST(SplitList, ACommaBehindAStrayClosingQuoteStillSplits) {
    EXPECT_THAT(qe::SplitList("東」、西"), ElementsAre("東」", "西"));
}

TEST(WithoutQuotes, EveryQuotedPartIsLeftOutWithItsMarks) {
    EXPECT_EQ(qe::WithoutQuotes("今熊「２４０を除く」、大原「１」"), "今熊、大原");
}

TEST(WithoutQuotes, ATextWithoutQuotesStays) {
    EXPECT_EQ(qe::WithoutQuotes("今熊"), "今熊");
}

TEST(BeginsWithDigit, OnlyFullWidthDigitsCount) {
    EXPECT_TRUE(qe::BeginsWithDigit("０番"));
    EXPECT_TRUE(qe::BeginsWithDigit("９"));
    EXPECT_FALSE(qe::BeginsWithDigit("Ａ"));
    EXPECT_FALSE(qe::BeginsWithDigit("1"));
    EXPECT_FALSE(qe::BeginsWithDigit("一"));
    EXPECT_FALSE(qe::BeginsWithDigit("東"));
    EXPECT_FALSE(qe::BeginsWithDigit(""));
}

// --- encodings ---

TEST(FindInvalidUtf8, WellFormedTextHasNone) {
    EXPECT_EQ(Invalid(""), "fine");
    EXPECT_EQ(Invalid("abc"), "fine");
    EXPECT_EQ(Invalid("é東𠮷"), "fine");
    EXPECT_EQ(Invalid("\xF4\x8F\xBF\xBF"), "fine"); // U+10FFFF, the last one
}

TEST(FindInvalidUtf8, OverlongFormsAreFound) {
    EXPECT_EQ(Invalid("ab\xC0\xAF"), "2");
    EXPECT_EQ(Invalid("ab\xC1\xBF"), "2");
    EXPECT_EQ(Invalid("\xE0\x80\xAF"), "0");
    EXPECT_EQ(Invalid("\xF0\x80\x80\xAF"), "0");
}

TEST(FindInvalidUtf8, SurrogatesAreFound) {
    EXPECT_EQ(Invalid("東\xED\xA0\x80"), "3");
    EXPECT_EQ(Invalid("東\xED\xBF\xBF"), "3");
    EXPECT_EQ(Invalid("東\xED\x9F\xBF"), "fine"); // U+D7FF, the last before them
}

TEST(FindInvalidUtf8, CodesBeyondTheLastAreFound) {
    EXPECT_EQ(Invalid("\xF4\x90\x80\x80"), "0");
    EXPECT_EQ(Invalid("\xF5\x80\x80\x80"), "0");
    EXPECT_EQ(Invalid("a\xFF"), "1");
}

TEST(FindInvalidUtf8, ACharacterCutOffAtTheEndIsFound) {
    EXPECT_EQ(Invalid("a\xE6"), "1");
    EXPECT_EQ(Invalid("a\xE6\x9D"), "1");
    EXPECT_EQ(Invalid("a\xF0\xA0\xAE"), "1");
}

TEST(FindInvalidUtf8, ACharacterCutOffInTheMiddleIsFound) {
    EXPECT_EQ(Invalid("a\xE6\x9D"
                      "b"),
              "1");
}

TEST(FindInvalidUtf8, AStrayContinuationIsFound) {
    EXPECT_EQ(Invalid("東\x80"), "3");
}

TEST(CharacterSize, CountsTheBytesOfTheFirstCharacter) {
    EXPECT_EQ(qe::CharacterSize(""), 0u);
    EXPECT_EQ(qe::CharacterSize("ab"), 1u);
    EXPECT_EQ(qe::CharacterSize("éa"), 2u);
    EXPECT_EQ(qe::CharacterSize("東a"), 3u);
    EXPECT_EQ(qe::CharacterSize("𠮷a"), 4u);
    EXPECT_EQ(qe::CharacterSize("\xE6\x9D"), 1u);
}

TEST(ConvertToUtf8, CodePage932IsConverted) {
    std::string strUtf8;
    size_t nBad = 99;
    EXPECT_TRUE(qe::ConvertToUtf8("\x93\x8C\x8B\x9E,\xB1\r\n", "CP932", strUtf8, &nBad)); // 東京,ｱ
    EXPECT_EQ(strUtf8, "東京,ｱ\r\n");
}

TEST(ConvertToUtf8, EucJis2004IsConvertedWithItsCombinedCharacters) {
    std::string strUtf8;
    size_t nBad = 99;
    EXPECT_TRUE(qe::ConvertToUtf8("\xC5\xEC\xB5\xFE\xA4\xF7\n", "EUC-JISX0213", strUtf8, &nBad)); // 東京か゚
    EXPECT_EQ(strUtf8, "東京か\u309A\n");
}

TEST(ConvertToUtf8, NothingIsConvertedToNothing) {
    std::string strUtf8 = "x";
    size_t nBad = 99;
    EXPECT_TRUE(qe::ConvertToUtf8("", "CP932", strUtf8, &nBad));
    EXPECT_EQ(strUtf8, "");
}

TEST(ConvertToUtf8, TheOffsetOfTheFirstBadByteIsTold) {
    std::string strUtf8;
    size_t nBad = 99;
    EXPECT_FALSE(qe::ConvertToUtf8("ab\x93\x8C\xFF"
                                   "c",
                                   "CP932", strUtf8, &nBad));
    EXPECT_EQ(nBad, 4u);
}

TEST(ConvertToUtf8, ACharacterCutOffAtTheEndIsBad) {
    std::string strUtf8;
    size_t nBad = 99;
    EXPECT_FALSE(qe::ConvertToUtf8("ab\x93", "CP932", strUtf8, &nBad));
    EXPECT_EQ(nBad, 2u);
}

TEST(ConvertToUtf8, AnUnknownEncodingFails) {
    std::string strUtf8;
    size_t nBad = 99;
    EXPECT_FALSE(qe::ConvertToUtf8("ab", "NO-SUCH-CODE", strUtf8, &nBad));
}

TEST(ConvertToUtf8, TextsThatGrowMostStillFit) {
    std::string strUtf8;
    size_t nBad = 99;
    EXPECT_TRUE(qe::ConvertToUtf8(std::string(10000, '\xB1'), "CP932", strUtf8, &nBad));
    EXPECT_EQ(strUtf8, Repeat("ｱ", 10000));
    EXPECT_TRUE(qe::ConvertToUtf8(Repeat("\xA4\xF7", 10000) + "\n", "EUC-JISX0213", strUtf8, &nBad));
    EXPECT_EQ(strUtf8, Repeat("か\u309A", 10000) + "\n");
}
