// Tokens.h - the tokens that have a meaning of their own in addresses, and the size of most characters.
#ifndef QEADRS_TEXT_TOKENS_H
#define QEADRS_TEXT_TOKENS_H

#include <cstddef>
#include <cstdint>

namespace qeadrs {

constexpr size_t KANJI_BYTES = 3; // of a kana or a kanji in UTF-8

constexpr uint16_t TOKEN_POSTAL_MARK = 0x3012;      // 〒
constexpr uint16_t TOKEN_POSTAL_MARK_FACE = 0x3036; // 〶
constexpr uint16_t TOKEN_COMMA = 0x3001;            // 、
constexpr uint16_t TOKEN_UP = 0x4E0A;               // 上
constexpr uint16_t TOKEN_DOWN = 0x4E0B;             // 下
constexpr uint16_t TOKEN_EAST = 0x6771;             // 東
constexpr uint16_t TOKEN_WEST = 0x897F;             // 西
constexpr uint16_t TOKEN_ENTER = 0x5165;            // 入
constexpr uint16_t TOKEN_RU = 0x308B;               // る
constexpr uint16_t TOKEN_RU_KATAKANA = 0x30EB;      // ル
constexpr uint16_t TOKEN_KE = 0x30B1;               // ケ, which が folds to: 上がる
constexpr uint16_t TOKEN_STREET = 0x901A;           // 通
constexpr uint16_t TOKEN_CITY = 0x5E02;             // 市
constexpr uint16_t TOKEN_TOWN = 0x753A;             // 町
constexpr uint16_t TOKEN_VILLAGE = 0x6751;          // 村
constexpr uint16_t TOKEN_WARD = 0x533A;             // 区
constexpr uint16_t TOKEN_BUILT = 0x5EFA;            // 建, of 階建
constexpr uint16_t TOKEN_BLOCK = 0x4E01;            // 丁
constexpr uint16_t TOKEN_LINE = 0x7B4B;             // 筋
constexpr uint16_t TOKEN_COUNTED = 0x76EE;          // 目
constexpr uint16_t TOKEN_FLOOR = 0x968E;            // 階
constexpr uint16_t TOKEN_GROUND = 0x5730;           // 地, of 地下 and 地階

} // namespace qeadrs

#endif
