// Tests of folding a text: tokens, where they stand, and where a name may end.
#include "text/FoldedText.h"

#include "text/AddressText.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

struct CFolded {
    explicit CFolded(std::string_view str, uint32_t nOptions = 0) : p(std::make_unique<qeadrs::CFoldedText>()) {
        p->Fold(str, nOptions);
    }
    qeadrs::CFoldedText* operator->() const { return p.get(); }
    std::unique_ptr<qeadrs::CFoldedText> p;
};

std::string Fold(std::string_view str) {
    return qeadrs::FoldName(str);
}

struct CPair {
    char const* pszWritten;
    char const* pszFolded;
};

} // namespace

TEST(FoldedText, NumbersAreTheirDigitsHoweverTheyAreWritten) {
    for (CPair const& pair : {CPair{"北8条西", "北8条西"}, CPair{"北八条西", "北8条西"}, CPair{"北８条西", "北8条西"},
                              CPair{"二十一丁目", "21丁目"}, CPair{"二一丁目", "21丁目"}, CPair{"二〇", "20"},
                              CPair{"十", "10"}, CPair{"百", "100"}, CPair{"千二百三十四", "1234"},
                              CPair{"百五", "105"}, CPair{"三千", "3000"}, CPair{"千葉", "1000葉"}})
        EXPECT_EQ(Fold(pair.pszWritten), pair.pszFolded) << pair.pszWritten;
}

TEST(FoldedText, NumeralsThatAreNoOneNumberAreReadPieceByPiece) {
    for (CPair const& pair :
         {CPair{"二一十", "210"}, CPair{"十十", "1010"}, CPair{"十百", "10100"}, CPair{"一二三千", "123000"}})
        EXPECT_EQ(Fold(pair.pszWritten), pair.pszFolded) << pair.pszWritten;
}

TEST(FoldedText, ANameDoesNotEndWithinANumber) {
    CFolded const folded("西12三45");
    ASSERT_EQ(folded->nCount, 6u);
    EXPECT_TRUE(folded->MayEnd(1));
    EXPECT_FALSE(folded->MayEnd(2));
    EXPECT_TRUE(folded->MayEnd(3)) << "kanji numerals and digits are two numbers";
    EXPECT_TRUE(folded->MayEnd(4));
    EXPECT_FALSE(folded->MayEnd(5));
    EXPECT_TRUE(folded->MayEnd(6));
}

TEST(FoldedText, ABlankEndsANumber) {
    CFolded const folded("1 2");
    ASSERT_EQ(folded->nCount, 2u);
    EXPECT_TRUE(folded->MayEnd(1));
}

TEST(FoldedText, ANumberWithUnitsIsOneInAllItsTokens) {
    CFolded const folded("西二十一丁");
    ASSERT_EQ(folded->nCount, 4u);
    EXPECT_FALSE(folded->MayEnd(2));
    EXPECT_EQ(folded->Bytes(1, 3), "二十一");
}

TEST(FoldedText, DroppedCharactersLeaveNoTokenAndNoGapInNames) {
    EXPECT_EQ(Fold(" 札 幌　市\t"), "札幌市");
    EXPECT_EQ(Fold("札幌市大字大通字西小字東"), "札幌市大通西東");
    EXPECT_EQ(Fold("葛\U000E0100城"), Fold("葛城"));
}

TEST(FoldedText, SelectorsDoNotPartANumberInKanji) {
    for (std::string const strSelector : {"\uFE00", "\u200B", "\U000E0100", "\U000E0101\u200D"}) {
        std::string const strText = "十" + strSelector + "三" + strSelector + "条";
        CFolded const folded(strText);
        EXPECT_EQ(Fold(strText), "13条") << "岩見沢市十三条";
        ASSERT_EQ(folded->nCount, 3u);
        EXPECT_FALSE(folded->MayEnd(1));
        EXPECT_EQ(folded->Bytes(0, 2), "十" + strSelector + "三" + strSelector);
        EXPECT_EQ(folded->Bytes(0, 1), folded->Bytes(0, 2)) << "each token is the whole number";
        EXPECT_EQ(Fold("千" + strSelector + "二" + strSelector + "百" + strSelector + "三十四"), "1234");
        EXPECT_EQ(Fold("二" + strSelector + "一" + strSelector), "21");
        EXPECT_EQ(Fold("十" + strSelector), "10");
        std::string const strDigits = "二" + strSelector + "一";
        EXPECT_FALSE(CFolded(strDigits)->MayEnd(1));
    }
    EXPECT_EQ(Fold("十\uFE00\xE4三"), Fold("十\xE4三")) << "a byte that is no character does";
    EXPECT_EQ(Fold("十\U000E00FF三"), Fold("十\U000E00FF") + "3") << "what is near to them does";
    EXPECT_EQ(Fold("十 三"), "103") << "and so does a blank";
}

TEST(FoldedText, LargeAndSmallInFrontOfAzaStayWhenTheyAreKept) {
    CFolded const dropped("新大字東");
    EXPECT_EQ(dropped->nCount, 2u);
    EXPECT_TRUE(dropped->bSizeDropped);
    CFolded const kept("新大字東", qeadrs::FOLD_KEEP_SIZE);
    EXPECT_EQ(kept->nCount, 3u);
    EXPECT_FALSE(kept->bSizeDropped);
    CFolded const apart("新大 字東");
    EXPECT_EQ(apart->nCount, 3u) << "a blank keeps them apart";
}

TEST(FoldedText, ARepetitionIsTheCharacterBeforeIt) {
    EXPECT_EQ(Fold("佐々木"), Fold("佐佐木"));
    EXPECT_EQ(Fold("代々々木"), Fold("代代代木"));
    EXPECT_EQ(Fold("々"), "々");
    EXPECT_EQ(Fold("百々"), "100々") << "of a number nothing is repeated";
}

TEST(FoldedText, AVoicingMarkGoesToTheKanaBeforeIt) {
    EXPECT_EQ(Fold("霞か\u3099関"), Fold("霞が関"));
    EXPECT_EQ(Fold("ﾊﾟﾋﾞﾌ"), Fold("パビフ"));
    EXPECT_EQ(Fold("\u3099関"), "関");
    EXPECT_EQ(Fold("か \u3099"), "か") << "none across a blank";
}

TEST(FoldedText, BytesThatAreNoCharacterAreTokensThatNoNameHas) {
    CFolded const folded("市\xE5\x8C");
    ASSERT_EQ(folded->nCount, 3u);
    EXPECT_EQ(folded->anToken[1], qeadrs::TOKEN_MALFORMED + 0xE5);
    EXPECT_EQ(folded->anToken[2], qeadrs::TOKEN_MALFORMED + 0x8C);
    for (std::string_view const str : {"\xC0\x80", "\xED\xA0\x80", "\xF5\x80\x80\x80", "\xF0\x80\x80\x80", "\x80"})
        EXPECT_EQ(CFolded(str)->nCount, str.size());
    // "~" in three bytes, among characters that have as many.
    CFolded const overlong("通\xE0\x81\xBE西");
    ASSERT_EQ(overlong->nCount, 5u);
    EXPECT_EQ(overlong->anToken[1], qeadrs::TOKEN_MALFORMED + 0xE0);
}

TEST(FoldedText, CharactersBeyondTheBasicPlaneAreFoldedOrTwoTokens) {
    EXPECT_EQ(Fold("𠮷野"), Fold("吉野"));
    CFolded const folded("𠀋");
    ASSERT_EQ(folded->nCount, 2u);
    EXPECT_EQ(folded->anToken[0], 0xD840);
    EXPECT_FALSE(folded->MayEnd(1));
    EXPECT_EQ(Fold("𠀋"), "𠀋");
}

TEST(FoldedText, TokensTellWhereTheyStand) {
    CFolded const folded(" 大通 西２");
    ASSERT_EQ(folded->nCount, 4u);
    EXPECT_EQ(folded->anBegin[0], 1u);
    EXPECT_EQ(folded->Bytes(0, 2), "大通");
    EXPECT_EQ(folded->Bytes(0, 3), "大通 西");
    EXPECT_EQ(folded->Bytes(3, 4), "２");
    EXPECT_EQ(folded->Bytes(2, 2), "");
}

TEST(FoldedText, StepsGiveTheSameTokensAsTheWhole) {
    std::string const strText =
        "〒060-0042 北海道札幌市中央区大字大通か\u3099西二十一丁目佐々木𠮷一二三ｶﾞ葛\U000E0100";
    CFolded const whole(strText);
    auto const pSteps = std::make_unique<qeadrs::CFoldedText>();
    pSteps->Begin(strText);
    for (size_t n = 1; n <= whole->nCount; ++n) {
        ASSERT_TRUE(pSteps->Has(n)) << n;
        EXPECT_EQ(pSteps->anToken[n - 1], whole->anToken[n - 1]) << n;
        EXPECT_EQ(pSteps->anEnd[n - 1], whole->anEnd[n - 1]) << n;
        EXPECT_EQ(pSteps->MayEnd(n), whole->MayEnd(n)) << n;
    }
    EXPECT_FALSE(pSteps->Has(whole->nCount + 1));
}

TEST(FoldedText, OnlyTheFrontOfALongTextIsFolded) {
    std::string str;
    for (int i = 0; i < 1000; ++i) str += "町";
    CFolded const folded(str);
    EXPECT_EQ(folded->nCount, qeadrs::CFoldedText::LIMIT);
    EXPECT_EQ(folded->nRead, 3 * qeadrs::CFoldedText::LIMIT);
}
