// The foldings, one by one: which characters are the same in an address, and which are not.
#include "text/FoldTable.h"

#include "text/qetext.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <set>
#include <string>

using namespace qeadrs;

namespace {

struct CFold {
    uint32_t nFolded;
    uint32_t nKind;
};

CFold FoldOf(uint32_t nCharacter) {
    if (nCharacter <= 0xFFFF) {
        size_t const nBlock = nCharacter >> 6;
        return {nCharacter ^ FOLD_DIFFERENCE[FOLD_BLOCK_OF[nBlock]][nCharacter & 63],
                FOLD_KIND[FOLD_KIND_OF[nBlock]][nCharacter & 63]};
    }
    auto const pEnd = FOLD_SUPPLEMENTARY + FOLD_SUPPLEMENTARY_COUNT;
    auto const p =
        std::find_if(FOLD_SUPPLEMENTARY, pEnd, [=](auto const& row) { return row.nCharacter == nCharacter; });
    if (p == pEnd) return {nCharacter, 0};
    return {p->nFolded, p->nKind};
}

bool IsSpecial(uint32_t nFolded) {
    return nFolded >= FOLD_SPECIAL_FIRST && nFolded <= FOLD_SPECIAL_LAST;
}

// U'〇' as "U+3007", so that a failure names it.
std::string Name(uint32_t nCharacter) {
    char sz[16];
    snprintf(sz, sizeof sz, "U+%04X", static_cast<unsigned>(nCharacter));
    return sz;
}

void ExpectAll(std::u32string const& strCharacters, uint32_t nFolded) {
    for (char32_t const c : strCharacters) EXPECT_EQ(Name(FoldOf(c).nFolded), Name(nFolded)) << Name(c);
}

CFoldedVoiced const* FindVoiced(uint32_t nKana) {
    auto const pEnd = FOLD_VOICED_KANA + FOLD_VOICED_KANA_COUNT;
    auto const p = std::find_if(FOLD_VOICED_KANA, pEnd, [=](auto const& row) { return row.nKana == nKana; });
    return p == pEnd ? nullptr : p;
}

class CChecksum {
  public:
    void Add(uint32_t n, int nBytes) {
        for (; nBytes > 0; --nBytes, n >>= 8) {
            m_n ^= n & 0xFF;
            for (int i = 0; i < 8; ++i) m_n = (m_n & 1) != 0 ? m_n >> 1 ^ 0xEDB88320 : m_n >> 1;
        }
    }
    uint32_t Value() const { return ~m_n; }

  private:
    uint32_t m_n = 0xFFFFFFFF;
};

void AddBlocks(CChecksum& checksum, uint16_t const (&anBlockOf)[1024], uint16_t const (*pBlock)[64]) {
    size_t nBlocks = 0;
    for (uint16_t const n : anBlockOf) {
        checksum.Add(n, 2);
        nBlocks = std::max<size_t>(nBlocks, n + 1U);
    }
    for (size_t i = 0; i < nBlocks; ++i)
        for (uint16_t const n : pBlock[i]) checksum.Add(n, 2);
}

} // namespace

// --- What holds for all of them ---

TEST(FoldTable, WhatACharacterFoldsToFoldsToItself) {
    for (uint32_t c = 0; c <= 0xFFFF; ++c) {
        uint32_t const nFolded = FoldOf(c).nFolded;
        if (!IsSpecial(nFolded)) {
            EXPECT_EQ(Name(FoldOf(nFolded).nFolded), Name(nFolded)) << Name(c);
        }
    }
    for (size_t i = 0; i < FOLD_SUPPLEMENTARY_COUNT; ++i) {
        uint32_t const nFolded = FOLD_SUPPLEMENTARY[i].nFolded;
        if (!IsSpecial(nFolded)) {
            EXPECT_EQ(Name(FoldOf(nFolded).nFolded), Name(nFolded)) << Name(FOLD_SUPPLEMENTARY[i].nCharacter);
        }
    }
}

// A text could otherwise write our own codes: U+E002 would be dropped like 字, U+0000 end it.
TEST(FoldTable, NoCharacterIsTakenForACodeOfOurOwn) {
    for (uint32_t c = 0xE000; c <= 0xE1FF; ++c) EXPECT_EQ(Name(FoldOf(c).nFolded), Name(0xFFFD)) << Name(c);
    EXPECT_EQ(Name(FoldOf(0).nFolded), Name(0xFFFD));
    for (uint32_t c = 1; c <= 0xFFFF; ++c) {
        uint32_t const nFolded = FoldOf(c).nFolded;
        EXPECT_FALSE(nFolded == 0 || (nFolded > FOLD_KANJI_UNIT + 2 && nFolded < 0xE200)) << Name(c);
        EXPECT_FALSE(nFolded >= 0xD800 && nFolded <= 0xDFFF && c != nFolded) << Name(c);
    }
}

TEST(FoldTable, AKindIsOneBitAndOnlyWhatFoldsHasOne) {
    uint32_t const nAll = 2 * QETEXT_FOLD_AZA - 1;
    for (uint32_t c = 0; c <= 0xFFFF; ++c) {
        CFold const fold = FoldOf(c);
        EXPECT_EQ(fold.nKind & (fold.nKind - 1), 0U) << Name(c);
        EXPECT_EQ(fold.nKind & ~nAll, 0U) << Name(c);
        EXPECT_EQ(fold.nKind != 0, fold.nFolded != c && fold.nFolded != 0xFFFD) << Name(c);
    }
}

TEST(FoldTable, CharactersBeyondTheBasicPlaneAscendAndOnlySelectorsAreDropped) {
    ASSERT_GT(FOLD_SUPPLEMENTARY_COUNT, 0U);
    uint32_t nLast = 0xFFFF;
    for (size_t i = 0; i < FOLD_SUPPLEMENTARY_COUNT; ++i) {
        CFoldedSupplementary const& row = FOLD_SUPPLEMENTARY[i];
        EXPECT_LT(nLast, row.nCharacter);
        nLast = row.nCharacter;
        bool const bSelector = row.nCharacter >= 0xE0100 && row.nCharacter <= 0xE01EF;
        EXPECT_EQ(IsSpecial(row.nFolded), bSelector) << Name(row.nCharacter);
        EXPECT_NE(row.nKind, 0) << Name(row.nCharacter);
    }
}

TEST(FoldTable, VersionIsTheChecksumOfEveryTable) {
    CChecksum checksum;
    AddBlocks(checksum, FOLD_BLOCK_OF, FOLD_DIFFERENCE);
    AddBlocks(checksum, FOLD_KIND_OF, FOLD_KIND);
    for (size_t i = 0; i < FOLD_SUPPLEMENTARY_COUNT; ++i) {
        checksum.Add(FOLD_SUPPLEMENTARY[i].nCharacter, 4);
        checksum.Add(FOLD_SUPPLEMENTARY[i].nFolded, 2);
        checksum.Add(FOLD_SUPPLEMENTARY[i].nKind, 2);
    }
    for (size_t i = 0; i < FOLD_VOICED_KANA_COUNT; ++i) {
        checksum.Add(FOLD_VOICED_KANA[i].nKana, 2);
        checksum.Add(FOLD_VOICED_KANA[i].nVoiced, 2);
        checksum.Add(FOLD_VOICED_KANA[i].nSemiVoiced, 2);
    }
    EXPECT_EQ(checksum.Value(), FOLD_VERSION);
}

// --- Marks ---

TEST(FoldTable, EveryDashThatPeopleTypeIsOne) {
    ExpectAll(U"-‐‑‒–—―⁃⁻−－﹣﹘➖─━ーｰ\u00AD", '-');
    EXPECT_EQ(FoldOf(U'−').nKind, unsigned{QETEXT_FOLD_DASH});
    EXPECT_EQ(FoldOf(U'－').nKind, unsigned{QETEXT_FOLD_DASH}); // a wide form, too
}

TEST(FoldTable, ATildeIsAWaveDashAndNoDash) {
    ExpectAll(U"〜～~∼", U'〜');
}

TEST(FoldTable, EveryBlankAndEndOfLineIsDropped) {
    ExpectAll(U" \t\r\n\u00A0\u2002\u2003\u2009\u202F　", FOLD_BLANK);
    ExpectAll(U"\uFE00\uFE0F\U000E0100\U000E01EF\u200B\u200D\u2060\uFEFF", FOLD_SELECTOR);
    EXPECT_EQ(FoldOf(0xE0100).nKind, unsigned{QETEXT_FOLD_KANJI});
}

TEST(FoldTable, FullWidthHalfWidthAndCapitalLettersAreOne) {
    ExpectAll(U"aＡＡａⒶ", 'a');
    ExpectAll(U"(（〔", '(');
    ExpectAll(U",，", ',');
    ExpectAll(U"、､", U'、');
    ExpectAll(U"アｱ", U'ア');
    ExpectAll(U"ンﾝ", U'ン');
    ExpectAll(U"ョｮ", U'ョ');
    EXPECT_EQ(FoldOf('A').nKind, unsigned{QETEXT_FOLD_WIDTH});
    EXPECT_EQ(FoldOf(U'ｱ').nKind, unsigned{QETEXT_FOLD_WIDTH});
    EXPECT_EQ(FoldOf(U'ｶ').nKind, unsigned{QETEXT_FOLD_KE}); // a narrow form, too
}

// --- Kana ---

TEST(FoldTable, KeNoAndTsuAreOneEach) {
    ExpectAll(U"ケヶヵカがガｹｶ", U'ケ');
    ExpectAll(U"ノの之乃ﾉ", U'ノ');
    ExpectAll(U"ツッつっﾂｯ", U'ツ');
    EXPECT_EQ(FoldOf(U'ヶ').nKind, unsigned{QETEXT_FOLD_KE});
    EXPECT_EQ(FoldOf(U'之').nKind, unsigned{QETEXT_FOLD_NO});
    EXPECT_EQ(FoldOf(U'つ').nKind, unsigned{QETEXT_FOLD_TSU});
}

TEST(FoldTable, OtherKanaStayApart) {
    std::set<uint32_t> snFolded;
    std::u32string const strApart = U"けゲかキきノニ二ハ八エ工タ夕ロ口トへベりリつズづヨョ";
    for (char32_t const c : strApart) snFolded.insert(FoldOf(c).nFolded);
    EXPECT_EQ(snFolded.size(), strApart.size());
}

TEST(FoldTable, AKanaAndItsVoicingMarkAreWhatTheVoicedKanaIs) {
    ASSERT_NE(FindVoiced(U'か'), nullptr);
    EXPECT_EQ(FindVoiced(U'か')->nVoiced, U'ケ'); // か゛ is が, and that one of ケ
    EXPECT_EQ(FindVoiced(U'か')->nSemiVoiced, 0);
    ASSERT_NE(FindVoiced(U'カ'), nullptr);
    EXPECT_EQ(FindVoiced(U'カ')->nVoiced, U'ケ');
    ASSERT_NE(FindVoiced(U'ﾊ'), nullptr);
    EXPECT_EQ(FindVoiced(U'ﾊ')->nVoiced, U'バ');
    EXPECT_EQ(FindVoiced(U'ﾊ')->nSemiVoiced, U'パ');
    ASSERT_NE(FindVoiced(U'つ'), nullptr);
    EXPECT_EQ(FindVoiced(U'つ')->nVoiced, U'づ');
    EXPECT_EQ(FindVoiced(U'な'), nullptr);
    ExpectAll(U"\u3099゛ﾞ", FOLD_VOICED);
    ExpectAll(U"\u309A゜ﾟ", FOLD_SEMI_VOICED);
}

TEST(FoldTable, VoicedKanaAscendAndAreFolded) {
    uint32_t nLast = 0;
    for (size_t i = 0; i < FOLD_VOICED_KANA_COUNT; ++i) {
        CFoldedVoiced const& row = FOLD_VOICED_KANA[i];
        EXPECT_LT(nLast, row.nKana);
        nLast = row.nKana;
        EXPECT_EQ(FoldOf(row.nVoiced).nFolded, row.nVoiced == 0 ? 0xFFFDU : row.nVoiced) << Name(row.nKana);
        EXPECT_EQ(FoldOf(row.nSemiVoiced).nFolded, row.nSemiVoiced == 0 ? 0xFFFDU : row.nSemiVoiced)
            << Name(row.nKana);
    }
}

// --- Numbers and words ---

TEST(FoldTable, DigitsOfEveryWidthAreDigits) {
    ExpectAll(U"1１①¹₁𝟏", '1');
    ExpectAll(U"0０⓪", '0');
    ExpectAll(U"9９⑨", '9');
}

TEST(FoldTable, KanjiNumeralsHaveCodesByTheirValue) {
    std::u32string const strDigits = U"〇一二三四五六七八九";
    for (uint32_t i = 0; i < 10; ++i) ExpectAll(strDigits.substr(i, 1), FOLD_KANJI_DIGIT + i);
    ExpectAll(U"零", FOLD_KANJI_DIGIT);
    ExpectAll(U"壱壹", FOLD_KANJI_DIGIT + 1U); // 一番町 is written 壱番町 on contracts
    ExpectAll(U"弐貳", FOLD_KANJI_DIGIT + 2U);
    ExpectAll(U"十拾", FOLD_KANJI_UNIT);
    ExpectAll(U"百", FOLD_KANJI_UNIT + 1U);
    ExpectAll(U"千", FOLD_KANJI_UNIT + 2U);
    EXPECT_EQ(FoldOf(U'十').nKind, unsigned{QETEXT_FOLD_NUMBER});
    ExpectAll(U"参參", U'参'); // a word as well: 参宮町 is not 三宮町
    ExpectAll(U"万萬", U'万');
}

TEST(FoldTable, AzaAndRepetitionHaveCodes) {
    ExpectAll(U"字", FOLD_AZA);
    ExpectAll(U"々仝〻", FOLD_REPEAT);
    EXPECT_EQ(FoldOf(U'字').nKind, unsigned{QETEXT_FOLD_AZA});
    EXPECT_EQ(FoldOf(U'々').nKind, unsigned{QETEXT_FOLD_REPEAT});
}

// --- Kanji ---

TEST(FoldTable, FormsOfAKanjiAreOne) {
    char32_t const* const apszForms[] = {
        U"館舘",     U"檜桧",     U"浜濱濵",   U"沢澤",   U"広廣",   U"島嶋嶌", U"峰峯",   U"崎﨑嵜碕", U"高髙",
        U"鰺鯵",     U"秋穐",     U"竜龍",     U"国國",   U"県縣",   U"区區",   U"会會",   U"条條",     U"静靜",
        U"斎齋",     U"籠篭",     U"鴎鷗",     U"鴬鶯",   U"曽曾",   U"芦蘆",   U"弥彌",   U"渕淵",     U"柳栁",
        U"吉𠮷",     U"野埜",     U"富冨",     U"岳嶽",   U"滝瀧",   U"寿壽",   U"万萬",   U"蔵藏",     U"桜櫻",
        U"恵惠",     U"栄榮",     U"円圓",     U"応應",   U"庁廳",   U"湾灣",   U"辺邊邉", U"薮藪籔",   U"檮梼",
        U"蕊蘂蕋",   U"祇祗",     U"諫諌",     U"竈竃",   U"兎莵菟", U"鍛鍜",   U"幡旛",   U"塚\uFA10", U"土圡𡈽",
        U"鶴靏靍",   U"与與",     U"塩鹽",     U"郷鄕鄉", U"来來",   U"豊豐",   U"亀龜",   U"剣劍劔",   U"弁辨辯",
        U"縄繩",     U"関關",     U"駅驛",     U"鉄鐵",   U"気氣",   U"楽樂",   U"当當",   U"真眞",     U"湧涌",
        U"福\uFA1B", U"都\uFA26", U"海\uFA45", U"叱𠮟",   U"槇槙",   U"瀬瀨",   U"沖冲",   U"岡崗",     U"山⼭",
    };
    for (char32_t const* const psz : apszForms) {
        ExpectAll(psz, FoldOf(psz[0]).nFolded);
        for (char32_t const c : std::u32string(psz)) {
            uint32_t const nWanted = FoldOf(c).nFolded == c ? 0 : QETEXT_FOLD_KANJI;
            EXPECT_EQ(FoldOf(c).nKind, nWanted) << Name(c);
        }
    }
}

// What a table for Chinese would merge, or a careless eye.
TEST(FoldTable, DifferentKanjiStayApart) {
    char32_t const* const apszApart[] = {
        U"里裏", U"谷穀", U"丑醜", U"云雲", U"淀澱", U"范範", U"杉椙", U"鮎鯰", U"斎斉", U"畑畠", U"坂阪", U"桝升",
        U"崎埼", U"岩巌", U"原源", U"町丁", U"丘岡", U"新荒", U"回廻", U"后後", U"余予", U"斗闘", U"台代", U"大太",
        U"舟船", U"川河", U"沈瀋", U"糸系", U"市巾", U"缶臼", U"藤籘", U"園圏", U"乾干", U"陰蔭", U"総惣", U"麹糀",
    };
    for (char32_t const* const psz : apszApart)
        EXPECT_NE(Name(FoldOf(psz[0]).nFolded), Name(FoldOf(psz[1]).nFolded)) << Name(psz[0]) << " " << Name(psz[1]);
}

// 〒 and the words of addresses are read, so they stay what they are.
TEST(FoldTable, WordsOfAddressesStayAsTheyAre) {
    for (char32_t const c : std::u32string(U"〒都道府県郡市区町村大小丁目番地号通上下東西南北入ル線条割他除以階F"))
        EXPECT_EQ(Name(FoldOf(c).nFolded), Name(c == U'F' ? U'f' : c));
}
