// TextIndex.h - the index of folded names: where it lies, what it holds, how a name is looked for in it.
//
// It stands in the dictionary's fifth table, or is built in memory. Nothing is read outside of it, and a node that it
// names counts only when its name, folded, is what the text says. That the rules of a town's numbers lead to the right
// ones of its subdivisions, and whether it has any, is believed.
#ifndef QEADRS_TEXT_TEXTINDEX_H
#define QEADRS_TEXT_TEXTINDEX_H

#include "dic/AddrDic.h"
#include "text/AreaRules.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace qeadrs {

// The header: 32-bit words, little-endian. Offsets count bytes from the start of the index, which is 16-byte aligned in
// the file.
enum tagTEXTHEADER : unsigned {
    TXT_MAGIC = 0,        // "QETX"
    TXT_FOLDINGS = 1,     // FOLD_VERSION of the foldings that it was made with
    TXT_SIZE = 2,         // bytes of the index
    TXT_LAYOUT = 3,       // TEXT_LAYOUT
    TXT_CITY_SLOTS = 4,   // table of city names: offset ...
    TXT_CITY_BITS = 5,    // ... and its length, as a power of two
    TXT_CITIES = 6,       // tagTEXTCITY records, one for each city node in order: offset ...
    TXT_CITY_COUNT = 7,   // ... and number
    TXT_TOWN_SLOTS = 8,   // slots of all cities' towns: offset ...
    TXT_TOWN_COUNT = 9,   // ... and number
    TXT_RULES = 10,       // tagAREARULE records: offset ...
    TXT_RULE_COUNT = 11,  // ... and number
    TXT_CITY_TOKENS = 12, // tokens of the longest city name, prefecture included
    TXT_LAST_COUNT = 13,  // number of tokens that city names end with; 0: too many to be listed
    TXT_LAST = 14,        // these tokens, two in a word: 市 区 町 村 (up to TEXT_LAST_TOKENS)
    TXT_PAIRS = 18,       // set of the pairs of tokens in towns' names: offset ...
    TXT_PAIR_BITS = 19,   // ... and its size in bits, as a power of two
    TXT_WORDS = 20,
};
constexpr unsigned TXT_BYTES = 4 * TXT_WORDS;
constexpr unsigned TEXT_LAST_TOKENS = 8;
constexpr uint32_t TEXT_MAGIC = 0x58544551; // "QETX"
// Raised when the layout changes, or what is put into it: which forms cities have (CityForms), what the names of
// subdivisions mean (ReadArea). The checker makes the index anew and takes another one for damage.
constexpr uint32_t TEXT_LAYOUT = 1;

// Names of more tokens are not in the index.
constexpr size_t TEXT_NAME_TOKENS = 63;

// A slot of a hash table (open addressing, the next slot after a taken one).
//
//   off size  field   meaning
//     0    4  nCheck  further bits of the hash
//     4    4  nValue  what is there; TEXT_FREE: nothing, and no name looked for lies behind it
struct tagTEXTSLOT {
    uint32_t nCheck;
    uint32_t nValue;
};
static_assert(sizeof(tagTEXTSLOT) == 8 && alignof(tagTEXTSLOT) == 4, "on disk: 32 and 64 bit agree");
constexpr uint32_t TEXT_FREE = 0xFFFFFFFF;

// Slots that are looked at for one name. A name that finds none of them free is not in the index: names that are chosen
// for it would make building and reading as slow as the square of their number.
constexpr uint32_t TEXT_PROBES = 256;

// A city's slot: bits 0 to 15 the city, counted from the first one; the form of its name; whether longer ones begin so.
constexpr uint32_t CITY_NUMBER = 0x0000FFFF;
constexpr uint32_t CITY_PREF = 1u << 16;       // the prefecture stands in front
constexpr uint32_t CITY_SHORT_PREF = 1u << 17; // ... without its 都, 府 or 県
constexpr uint32_t CITY_NO_COUNTY = 1u << 18;  // 余市町
constexpr uint32_t CITY_WARD_ONLY = 1u << 19;  // 青葉区
constexpr uint32_t CITY_NO_WARD = 1u << 20;    // 札幌市
constexpr uint32_t CITY_GOES_ON = 1u << 21;    // a longer name begins with this one

// A town's slot: its node. Below a town: the node of a subdivision or building, or the rules of its numbers.
constexpr uint32_t TOWN_NODE = 0x1FFFFFFF;
constexpr uint32_t TOWN_DIVIDED = 1u << 29; // it has subdivisions or buildings with codes
constexpr uint32_t TOWN_RULES = 1u << 30;   // the number of a record in the table of rules that heads those of a town

// A city's share of the slots, and which lengths of names there are: bit n for n tokens.
struct tagTEXTCITY {
    uint32_t nFirstSlot;
    uint32_t nBits;            // it has 2 to the power of nBits slots
    uint32_t anTownLengths[2]; // low word first
    uint32_t anAreaLengths[2]; // of names below towns
};
static_assert(sizeof(tagTEXTCITY) == 24 && alignof(tagTEXTCITY) == 4, "on disk: 32 and 64 bit agree");
static_assert(std::is_trivially_copyable_v<tagTEXTCITY> && std::is_standard_layout_v<tagTEXTCITY>);

// The head of a town's rules in the table of rules: nUnit is this, nNode the town, nTo the number of rules behind it.
constexpr uint8_t RULES_HEAD = 0xFF;

// The hash of a sequence of tokens below a node: the upper bits find the slot, bits 8 to 39 are the check.
class CTextHash {
  public:
    CTextHash() = default;
    explicit CTextHash(uint32_t nParent) : m_n((uint64_t{nParent} + 1) * MULTIPLIER) {}
    void Add(uint16_t nToken) { m_n = (m_n ^ nToken) * MULTIPLIER; }
    uint32_t Slot(uint32_t nBits) const { return static_cast<uint32_t>(m_n >> (64 - nBits)); }
    uint32_t Check() const { return static_cast<uint32_t>(m_n >> 8); }

  private:
    static constexpr uint64_t MULTIPLIER = 0x9E3779B97F4A7C15;
    uint64_t m_n;
};
constexpr uint32_t TEXT_CITY_PARENT = ADDR_NONE; // what city names are below
constexpr uint16_t TOKEN_RULES = 0xFFFF;         // below a town: the only token of its rules' key

// Tokens that stand side by side in some town's name: a bit for each pair, which pairs of other tokens may share.
class CTokenPair {
  public:
    CTokenPair(uint16_t nFirst, uint16_t nSecond) : m_n((uint32_t{nFirst} << 16 | nSecond) * MULTIPLIER) {}
    uint32_t Bit(uint32_t nBits) const { return m_n >> (32 - nBits); }

  private:
    static constexpr uint32_t MULTIPLIER = 0x9E3779B1;
    uint32_t m_n;
};
constexpr uint32_t PAIR_BITS_FEWEST = 5; // a word
constexpr uint32_t PAIR_BITS_MOST = 28;  // 32 MB: towns beyond that share bits

// An index that can be read: every access within it.
class CTextIndex {
  public:
    // Binds an index of nSize bytes at most; false, and nothing is bound, when it is none of this layout and of these
    // foldings, or its sections do not lie in it.
    bool Bind(unsigned char const* p, size_t nSize);
    bool IsBound() const { return m_pHeader != nullptr; }
    size_t Size() const { return m_pHeader[TXT_SIZE]; }

    // Slots of one hash table, walked from the hash's own on while they are taken.
    struct CTable {
        tagTEXTSLOT const* pSlot = nullptr; // null: an empty table
        uint32_t nBits = 1;
        uint32_t Mask() const { return (uint32_t{1} << nBits) - 1; }
    };
    CTable const& CityTable() const { return m_cities; }
    CTable TownTable(tagTEXTCITY const& city) const;

    // Calls visit(value) for each slot of the hash, until it returns true.
    template <typename F>
    static void ForEach(CTable const& table, CTextHash const& hash, F const& visit) {
        if (table.pSlot == nullptr) return;
        uint32_t const nCheck = hash.Check();
        uint32_t nSlot = hash.Slot(table.nBits);
        for (uint32_t nLeft = std::min(table.Mask() + 1, TEXT_PROBES); nLeft != 0; --nLeft) {
            tagTEXTSLOT const& slot = table.pSlot[nSlot];
            // Whether a slot is free is anybody's guess, but few have the check: that comes first.
            if (slot.nCheck == nCheck && slot.nValue != TEXT_FREE && visit(slot.nValue)) return;
            if (slot.nValue == TEXT_FREE) return;
            nSlot = (nSlot + 1) & table.Mask();
        }
    }

    // A city's record by its number; null for one that is not there.
    tagTEXTCITY const* City(uint32_t nCity) const {
        return nCity < m_pHeader[TXT_CITY_COUNT] ? m_pCity + nCity : nullptr;
    }

    // The rules of a town by the value of its slot; none when they are not this town's.
    struct CRules {
        tagAREARULE const* pFirst = nullptr;
        size_t nCount = 0;
    };
    CRules Rules(uint32_t nValue, uint32_t nTown) const;

    bool MayEndCity(uint16_t nToken) const {
        if (m_nLast == 0) return true;
        if ((m_nLastBits >> (nToken & 63) & 1) == 0) return false; // most tokens
        for (uint32_t i = 0; i < m_nLast; ++i)
            if (m_anLast[i] == nToken) return true;
        return false;
    }
    // Whether the second token may stand behind the first in a town's name; false: it does in none.
    bool MayGoOn(uint16_t nFirst, uint16_t nSecond) const {
        uint32_t const nBit = CTokenPair(nFirst, nSecond).Bit(m_nPairBits);
        return (m_pPair[nBit / 32] >> nBit % 32 & 1) != 0;
    }
    size_t CityTokens() const { return m_pHeader[TXT_CITY_TOKENS]; }

  private:
    uint32_t const* m_pHeader = nullptr;
    CTable m_cities;
    tagTEXTCITY const* m_pCity = nullptr;
    tagTEXTSLOT const* m_pTown = nullptr;
    tagAREARULE const* m_pRule = nullptr;
    uint32_t const* m_pPair = nullptr;
    uint32_t m_nPairBits = PAIR_BITS_FEWEST;
    uint32_t m_nLast = 0;
    uint16_t m_anLast[TEXT_LAST_TOKENS] = {};
    uint64_t m_nLastBits = 0; // of the low six bits of these
};

// The bits of the lengths as one number.
inline uint64_t Lengths(uint32_t const (&anLengths)[2]) {
    return anLengths[0] | uint64_t{anLengths[1]} << 32;
}

} // namespace qeadrs

#endif
