/* qetext.h - addresses as people write them, read with a dictionary: the numbers that C and C++ share. */
#ifndef QEADRS_TEXT_QETEXT_H
#define QEADRS_TEXT_QETEXT_H

#if defined(__GNUC__)
#    define QETEXT_API __attribute__((visibility("default")))
#else
#    define QETEXT_API
#endif

/* In which ways names differ from the dictionary's (nFoldings). */
enum {
    QETEXT_FOLD_WIDTH = 1 << 0,     /* full, half width; capitals */
    QETEXT_FOLD_BLANK = 1 << 1,     /* blanks within the address or in front of it */
    QETEXT_FOLD_DASH = 1 << 2,      /* one dash for another */
    QETEXT_FOLD_NUMBER = 1 << 3,    /* kanji numerals for digits and the other way round */
    QETEXT_FOLD_KE = 1 << 4,        /* ヶ ケ ヵ カ が ガ */
    QETEXT_FOLD_NO = 1 << 5,        /* ノ の 之 乃 */
    QETEXT_FOLD_TSU = 1 << 6,       /* ツ ッ つ っ */
    QETEXT_FOLD_KANJI = 1 << 7,     /* old, new and variant forms; variation selectors */
    QETEXT_FOLD_COMBINING = 1 << 8, /* a kana and its voicing mark as two characters */
    QETEXT_FOLD_REPEAT = 1 << 9,    /* 々 for the character before it */
    QETEXT_FOLD_AZA = 1 << 10,      /* 大字, 字, 小字 put in or left out */
    QETEXT_FOLD_PREF = 1 << 11,     /* a prefecture without its 都, 府, 県 */
    QETEXT_FOLD_STREET = 1 << 12    /* a street of Kyoto before the town */
};

#endif
