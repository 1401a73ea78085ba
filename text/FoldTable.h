// FoldTable.h - the foldings as data: which character stands for which others. The tables are generated.
#ifndef QEADRS_TEXT_FOLDTABLE_H
#define QEADRS_TEXT_FOLDTABLE_H

#include <cstddef>
#include <cstdint>

namespace qeadrs {

// What a character folds to: a character of the basic plane, or one of these, which need their neighbours.
constexpr uint16_t FOLD_BLANK = 0xE000;       // dropped: blanks, ideographic ones, tabs, ends of lines
constexpr uint16_t FOLD_SELECTOR = 0xE001;    // dropped: variation selectors, zero-width characters
constexpr uint16_t FOLD_AZA = 0xE002;         // 字: dropped, with 大 or 小 right before it
constexpr uint16_t FOLD_REPEAT = 0xE003;      // 々: the character before it once more
constexpr uint16_t FOLD_VOICED = 0xE004;      // the voicing mark, combining or not, full or half width
constexpr uint16_t FOLD_SEMI_VOICED = 0xE005; //
constexpr uint16_t FOLD_KANJI_DIGIT = 0xE010; // 〇 零 一 ... 九: E010 to E019
constexpr uint16_t FOLD_KANJI_UNIT = 0xE01A;  // 十 百 千: E01A to E01C
constexpr uint16_t FOLD_SPECIAL_FIRST = 0xE000;
constexpr uint16_t FOLD_SPECIAL_LAST = 0xE01F;

// The basic plane in blocks of 64 characters: blocks of equal content are stored once. What is stored is the
// difference (exclusive or) between a character and what it folds to, so that the blocks without foldings are one.
extern uint16_t const FOLD_BLOCK_OF[1024];
extern uint16_t const FOLD_DIFFERENCE[][64];
extern uint16_t const FOLD_KIND_OF[1024]; // the same for the kinds: block number by c >> 6 ...
extern uint16_t const FOLD_KIND[][64];    // ... and one QETEXT_FOLD_xxx bit, or 0, for each character

// The characters beyond the basic plane that fold to one of it, ascending.
struct CFoldedSupplementary {
    uint32_t nCharacter;
    uint16_t nFolded; // FOLD_xxx included
    uint16_t nKind;
};
extern CFoldedSupplementary const FOLD_SUPPLEMENTARY[];
extern size_t const FOLD_SUPPLEMENTARY_COUNT;

// What a kana (full or half width) and a voicing mark behind it fold to, ascending by kana; 0 where there is no such
// pair: then the mark is dropped.
struct CFoldedVoiced {
    uint16_t nKana;
    uint16_t nVoiced;
    uint16_t nSemiVoiced;
};
extern CFoldedVoiced const FOLD_VOICED_KANA[];
extern size_t const FOLD_VOICED_KANA_COUNT;

// A checksum (CRC-32) of all the tables above: an index belongs to the foldings that it was made with.
extern uint32_t const FOLD_VERSION;

} // namespace qeadrs

#endif
