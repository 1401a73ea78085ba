// ImageHeader.h - the header of the dictionary image, for those who read or write it.
//
//   uint32_t const nNodes = HeaderWord(pImage, HDR_NODE_COUNT);
//
// Nothing is checked: who does not know a file looks at its size and its magic before.
#ifndef QEADRS_DIC_IMAGEHEADER_H
#define QEADRS_DIC_IMAGEHEADER_H

#include "dic/AddrNode.h"

#include <cstring>

// What a file begins with: 7 characters and the NUL.
inline constexpr char IMAGE_MAGIC[] = "QEADRS\x1A";
static_assert(sizeof IMAGE_MAGIC == 8);

// The format version of this library and of the files that the compiler writes.
constexpr uint32_t IMAGE_VERSION = 1;

// The header is 27 words of 32 bits, little-endian. Offsets count bytes from the start of the file.
enum tagHEADERWORD : unsigned {
    HDR_MAGIC = 0,         // words 0 to 7 are for tools and hosts: no query reads them
    HDR_VERSION = 2,       // format version
    HDR_EDITION = 3,       // edition, decimal yyyymmdd (dd 00: the month only; 0: unknown)
    HDR_CHECKSUM = 4,      // CRC-32 of the whole file with this word taken as 0
    HDR_FILE_SIZE = 5,     // size of the file in bytes
    HDR_SOURCE = 6,        // what it was compiled from
    HDR_NODE_COUNT = 8,    // tagADDRNODE records
    HDR_INFO_COUNT = 9,    // tagADDRINFO records
    HDR_STRING_SIZE = 10,  // bytes in the string area
    HDR_NODE_TABLE = 11,   // offsets of the tables
    HDR_INFO_TABLE = 12,   //
    HDR_STRING_AREA = 13,  //
    HDR_CITY_INDEX = 14,   // city nodes by name bytes
    HDR_FIFTH_TABLE = 15,  // bound, never read
    HDR_SIXTH_TABLE = 16,  // bound, never read
    HDR_OFFICE_INDEX = 17, // organisation nodes by name bytes
    HDR_PREF_COUNT = 18,   // prefecture nodes stand together ...
    HDR_FIRST_PREF = 19,   // ... from this one on
    HDR_CITY_COUNT = 20,   // entries of the city-name index, and city nodes ...
    HDR_FIRST_CITY = 21,   // ... from this one on
    HDR_TOWN_COUNT = 22,   // town nodes ...
    HDR_FIRST_TOWN = 23,   // ... from this one on
    HDR_OFFICE_COUNT = 26, // entries of the organisation index
    HDR_WORDS = 27,
};

// The size of the header in bytes.
constexpr unsigned HDR_BYTES = 4 * HDR_WORDS;
static_assert(HDR_BYTES == 108);

// A word of the image at any byte position, aligned or not. REQUIRES: its four bytes can be read.
inline uint32_t ReadWord(unsigned char const* p) {
    uint32_t n;
    std::memcpy(&n, p, sizeof n);
    return n;
}

// A word of the header. REQUIRES: HDR_BYTES bytes can be read there.
inline uint32_t HeaderWord(unsigned char const* pImage, tagHEADERWORD nWord) {
    return ReadWord(pImage + size_t{4} * nWord);
}

#endif
