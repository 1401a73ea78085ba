// Suffix.h - the suffix characters of city-level names and their two-byte test (internal).
//
// The test compares exactly two bytes of a character, as for a double-byte encoding. On UTF-8, where these characters
// have three bytes, it never matches at the end of a name; every user of it states what follows.
#ifndef QEADRS_DIC_SUFFIX_H
#define QEADRS_DIC_SUFFIX_H

#include <cstddef>
#include <initializer_list>

enum tagSUFFIX : int {
    SUFFIX_SHI,   // 市
    SUFFIX_KU,    // 区
    SUFFIX_CHO,   // 町
    SUFFIX_GUN,   // 郡
    SUFFIX_SHIMA, // 島
    SUFFIX_MURA,  // 村
    SUFFIX_AGATA, // 庁
    SUFFIX_COUNT
};

// The seven characters in UTF-8, each with its NUL in a slot of four bytes, in the order of tagSUFFIX.
extern char const suffix_table[SUFFIX_COUNT][4];

// Whether the two bytes at p are the first two bytes of the suffix character. REQUIRES: two readable bytes at p.
inline bool HoldsSuffix(char const* p, tagSUFFIX nSuffix) {
    return p[0] == suffix_table[nSuffix][0] && p[1] == suffix_table[nSuffix][1];
}

// Scans the name from byte nLength - 6 backwards in steps of two while the position is at least 2. At each position
// the markers are tried in the order given; the first hit is stored in *pFound and its position returned, else 0.
size_t FindMarkerBackwards(char const* pszName, size_t nLength, std::initializer_list<tagSUFFIX> vMarker,
                           tagSUFFIX* pFound);

// What GetShikugunType returns, whole: the length of the name's part up to and including its marker.
size_t FrontPartLength(char const* pszName, unsigned short* pnType);

#endif
