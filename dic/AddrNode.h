// AddrNode.h - the two records of the dictionary image, read in place.
//
// The image is one read-only file. All its integers are 32-bit unsigned little-endian; a text is named by its byte
// offset in the string area and ends in NUL. The compiler (builder/) writes these very records.
#ifndef QEADRS_DIC_ADDRNODE_H
#define QEADRS_DIC_ADDRNODE_H

#include <cstddef>
#include <cstdint>
#include <type_traits>

// "No record" wherever a record index stands: no parent (a prefecture), no postal-code entry.
constexpr uint32_t ADDR_NONE = 0xFFFFFFFF;

// Bit 31 of tagADDRINFO::nNode: the entry is an old address; another one has replaced it.
constexpr uint32_t ADDRINFO_SUPERSEDED = 0x80000000;

// Kinds of node (tagADDRNODE::nLevel).
enum tagADDRLEVEL : uint8_t {
    LEVEL_PREF = 0,   // prefecture (都道府県)
    LEVEL_CITY = 1,   // city, ward, county or village (市区町村, 郡)
    LEVEL_TOWN = 2,   // town area (町域)
    LEVEL_AREA = 3,   // subdivision below the town area
    LEVEL_BLOCK = 4,  // further subdivision: a building
    LEVEL_GROUP = 5,  // grouping level without a text of its own
    LEVEL_NOTE = 6,   // note: a floor; a name only, its reading is not read
    LEVEL_OFFICE = 7, // organisation with a postal code of its own (事業所)
};

// One node of the address tree.
//
//   off size  field        meaning
//     0    1  nLevel       kind of node, LEVEL_xxx
//     1    3  abUnused     not read
//     4    4  nName        name in the string area; its reading (kana) follows directly behind the name's NUL
//     8    4  nInfo        the node's postal-code entry, ADDR_NONE when it has none
//    12    4  nParent      the node above, ADDR_NONE at a prefecture
//    16    4  nChildCount  number of children; 0 is legal
//    20    4  nFirstChild  first child; the children are [nFirstChild, nFirstChild + nChildCount)
struct tagADDRNODE {
    uint8_t nLevel;
    uint8_t abUnused[3];
    uint32_t nName;
    uint32_t nInfo;
    uint32_t nParent;
    uint32_t nChildCount;
    uint32_t nFirstChild;
};
static_assert(sizeof(tagADDRNODE) == 24 && alignof(tagADDRNODE) == 4, "on disk: 32 and 64 bit agree");
static_assert(offsetof(tagADDRNODE, nLevel) == 0 && offsetof(tagADDRNODE, nName) == 4, "a field moved");
static_assert(offsetof(tagADDRNODE, nInfo) == 8 && offsetof(tagADDRNODE, nParent) == 12, "a field moved");
static_assert(offsetof(tagADDRNODE, nChildCount) == 16 && offsetof(tagADDRNODE, nFirstChild) == 20, "a field moved");
static_assert(std::is_trivially_copyable_v<tagADDRNODE> && std::is_standard_layout_v<tagADDRNODE>);

// One postal-code entry. The table is sorted by the bytes of the code, so that all entries of a code, and all codes
// of one leading part, stand together.
//
//   off size  field  meaning
//     0    4  nCode  seven digits in the string area; the old 5-digit code follows directly behind their NUL, and
//                    behind its NUL, for a superseded entry, the unaligned index of the entry that replaces it
//     4    4  nNode  bits 0-30: the entry's deepest node; bit 31: ADDRINFO_SUPERSEDED
struct tagADDRINFO {
    uint32_t nCode;
    uint32_t nNode;
};
static_assert(sizeof(tagADDRINFO) == 8 && alignof(tagADDRINFO) == 4, "on disk: 32 and 64 bit agree");
static_assert(offsetof(tagADDRINFO, nCode) == 0 && offsetof(tagADDRINFO, nNode) == 4, "a field moved");
static_assert(std::is_trivially_copyable_v<tagADDRINFO> && std::is_standard_layout_v<tagADDRINFO>);

#endif
