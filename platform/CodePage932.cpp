// CodePage932.cpp - bytes and two-byte characters of code page 932, from constant tables.
//
// Neither the process locale nor iconv is asked: the answers are the same in every host.
#include "platform/Win32Compat.h"

#include <cstdint>

#define QE_EXPORT __attribute__((visibility("default")))

namespace {

constexpr bool InRange(unsigned int n, unsigned int nFirst, unsigned int nLast) {
    return n >= nFirst && n <= nLast;
}

// Single-byte forms of 0x8140-0x8197, 0 where there is none. Full-width ASCII aside, these have one: the ideographic
// space (8140), the Japanese punctuation of half-width kana (8141 8142 8145 814A 814B 815B 8175 8176), and the signs
// that Japanese fonts and keyboards use for an ASCII one: overline for ~ (8150), right quotes for ' and " (8166
// 8168), yen for the backslash (818F).
constexpr unsigned int nFirstSign = 0x8140;
constexpr uint8_t sign_form[] = {
    0x20, 0xA4, 0xA1, 0x2C, 0x2E, 0xA5, 0x3A, 0x3B, 0x3F, 0x21, 0xDE, 0xDF, 0,    0x60, 0,    0x5E, // 8140
    0x7E, 0x5F, 0,    0,    0,    0,    0,    0,    0,    0,    0,    0xB0, 0,    0,    0x2F, 0x5C, // 8150
    0x7E, 0,    0x7C, 0,    0,    0,    0x27, 0,    0x22, 0x28, 0x29, 0,    0,    0x5B, 0x5D, 0x7B, // 8160
    0x7D, 0,    0,    0,    0,    0xA2, 0xA3, 0,    0,    0,    0,    0x2B, 0x2D, 0,    0,    0,    // 8170
    0,    0x3D, 0,    0x3C, 0x3E, 0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0x5C, // 8180
    0x24, 0,    0,    0x25, 0x23, 0x26, 0x2A, 0x40,                                                 // 8190
};
static_assert(sizeof sign_form == 0x8197 - nFirstSign + 1, "one entry per code");

// The same for katakana, 0x8340-0x8396. A voiced kana such as 8342 would need two half-width characters, and 838E,
// 8390, 8391, 8395 and 8396 are not on the half-width keyboard at all. 837F is no character.
constexpr unsigned int nFirstKana = 0x8340;
constexpr uint8_t kana_form[] = {
    0xA7, 0xB1, 0xA8, 0xB2, 0xA9, 0xB3, 0xAA, 0xB4, 0xAB, 0xB5, 0xB6, 0,    0xB7, 0,    0xB8, 0,    // 8340
    0xB9, 0,    0xBA, 0,    0xBB, 0,    0xBC, 0,    0xBD, 0,    0xBE, 0,    0xBF, 0,    0xC0, 0,    // 8350
    0xC1, 0,    0xAF, 0xC2, 0,    0xC3, 0,    0xC4, 0,    0xC5, 0xC6, 0xC7, 0xC8, 0xC9, 0xCA, 0,    // 8360
    0,    0xCB, 0,    0,    0xCC, 0,    0,    0xCD, 0,    0,    0xCE, 0,    0,    0xCF, 0xD0, 0,    // 8370
    0xD1, 0xD2, 0xD3, 0xAC, 0xD4, 0xAD, 0xD5, 0xAE, 0xD6, 0xD7, 0xD8, 0xD9, 0xDA, 0xDB, 0,    0xDC, // 8380
    0,    0,    0xA6, 0xDD, 0,    0,    0,                                                          // 8390
};
static_assert(sizeof kana_form == 0x8396 - nFirstKana + 1, "one entry per code");

// The single-byte form of a character, 0 when it has none.
constexpr unsigned int SingleForm(unsigned int c) {
    // Digits and letters keep their order, in three runs that no trail byte interrupts.
    if (InRange(c, 0x824F, 0x8258)) return c - 0x824F + '0';
    if (InRange(c, 0x8260, 0x8279)) return c - 0x8260 + 'A';
    if (InRange(c, 0x8281, 0x829A)) return c - 0x8281 + 'a';
    if (InRange(c, nFirstSign, 0x8197)) return sign_form[c - nFirstSign];
    if (InRange(c, nFirstKana, 0x8396)) return kana_form[c - nFirstKana];
    // Full-width ' and " are missing in JIS: the code page has each of them twice among the vendors' extensions.
    if (c == 0xEEFB || c == 0xFA56) return '\'';
    if (c == 0xEEFC || c == 0xFA57) return '"';
    return 0;
}
static_assert(SingleForm(0x8258) == '9' && SingleForm(0x8148) == '?' && SingleForm(0x8393) == 0xDD, "ends of tables");

} // namespace

QE_EXPORT int _mbbtype(unsigned char c, int nType) {
    if (nType == _MBC_LEAD) return InRange(c, 0x40, 0x7E) || InRange(c, 0x80, 0xFC) ? _MBC_TRAIL : _MBC_ILLEGAL;
    if (InRange(c, 0x20, 0x7E) || InRange(c, 0xA1, 0xDF)) return _MBC_SINGLE;
    if (InRange(c, 0x81, 0x9F) || InRange(c, 0xE0, 0xFC)) return _MBC_LEAD;
    return _MBC_ILLEGAL;
}

QE_EXPORT unsigned int _mbctombb(unsigned int c) {
    unsigned int nSingle = SingleForm(c); // 0x8281 with a bit above 15 set is in no range, so it comes back as it is
    return nSingle ? nSingle : c;
}
