// NameTable.h - from a text to the nodes of a whole level whose names it begins with (internal).
//
// A search over the whole country would compare its text with the names of 1,900 cities or 120,000 towns. Here each name
// leads to its first node, and a text is looked up by as many of its beginnings as there are lengths of names.
//
// Bounds: a level of a million nodes at most, names of 127 bytes at most, and few names to one place of the table. A
// level that goes beyond them, as in a country of nine times the towns or a damaged dictionary, has no table and is
// searched name by name.
#ifndef QEADRS_DIC_NAMETABLE_H
#define QEADRS_DIC_NAMETABLE_H

#include "dic/ImageView.h"
#include "dic/NodeRange.h"
#include "dic/ZeroedArray.h"

// A node whose name a text begins with, and the length of that name; ADDR_NONE when there is none.
struct CNameMatch {
    uint32_t nNode = ADDR_NONE;
    size_t nLength = 0;
};

class CNameTable {
  public:
    // Longer names are not read on; no sound dictionary has one.
    static constexpr size_t LONGEST_NAME = 127;

    // Of all names that begin a text the one of the first node, and the longest one.
    struct CFound {
        CNameMatch first;
        CNameMatch longest;
    };

    // Names in two parts may begin a text by one of them: who asks for names in one part gets no table with others.
    enum EParts { InOnePart, InAnyParts };

    // Reads all names of the level. Returns false, and there is no table, beyond the bounds and without memory.
    bool Make(CImageView const& image, CNodeRange const& level, EParts nParts);

    bool IsMade() const { return m_vSlot.Size() != 0; }

    // What a comparison of the text with every name of the level would find. Empty names begin no text. REQUIRES: made.
    CFound Find(CImageView const& image, char const* pszText) const;

  private:
    static constexpr unsigned MOST_PROBES = 64;

    // A slot: 0 when it is free; else the place of a node in its level, from 1 on, and above it bits of its name's hash.
    static constexpr unsigned PLACE_BITS = 20;
    static constexpr uint32_t PLACES = 1U << PLACE_BITS;

    bool Fill(CImageView const& image, CNodeRange const& level, EParts nParts);
    uint32_t const* FindSlot(CImageView const& image, uint64_t nHash, char const* psz, size_t nLength) const;
    bool IsName(CImageView const& image, uint32_t nSlot, char const* psz, size_t nLength) const;

    CZeroedArray<uint32_t> m_vSlot; // a power of two of them
    uint64_t m_vLength[2] = {};     // bit for each length that a name has
    size_t m_nLongestName = 0;
    uint32_t m_nFirst = 0; // first node of the level
};

#endif
