// NameMarks.h - two bytes for each node, which tell of almost all names that they begin no given text (internal).
//
//   CNameMarks::CText const text(CBeginning::Of(pszText));
//   marks.ForEachCandidate(range, text, [&](uint32_t nNode) { ... return bFound; });   // in order, few of them
//
// A search among the children of a node compares its text with all their names, which lie apart: the names of 120
// towns fill some hundred cache lines, their marks four. A mark is made of the beginning of a name, up to twelve bytes or
// four kanji, and kept when a search has read the name; 0 means that it has to be read. The pages of the table come to be
// as they are used.
#ifndef QEADRS_DIC_NAMEMARKS_H
#define QEADRS_DIC_NAMEMARKS_H

#include "dic/FirstWord.h"
#include "dic/NodeRange.h"
#include "dic/ZeroedArray.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

#if defined(__SSE2__)
#    include <emmintrin.h>
#endif

// Marks that are looked at together.
constexpr uint32_t MARK_GROUP = 8;

// A bit for each mark of the group that is 0 or equal to its neighbour in one of the rows.
template <size_t ROWS>
unsigned MarksToRead(uint16_t const* pGroup, uint16_t const (&vRow)[ROWS][MARK_GROUP]) {
#if defined(__SSE2__)
    auto const Load = [](void const* p) { return _mm_loadu_si128(static_cast<__m128i const*>(p)); };
    __m128i const marks = Load(pGroup);
    __m128i hits = _mm_cmpeq_epi16(marks, _mm_setzero_si128());
    for (auto const& row : vRow) hits = _mm_or_si128(hits, _mm_cmpeq_epi16(marks, Load(row)));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(hits, _mm_setzero_si128())));
#else
    unsigned nBits = 0;
    for (uint32_t n = 0; n < MARK_GROUP; ++n) {
        bool bHit = pGroup[n] == 0;
        for (size_t nRow = 0; nRow < ROWS; ++nRow) bHit = bHit || pGroup[n] == vRow[nRow][n];
        nBits |= (bHit ? 1U : 0U) << n;
    }
    return nBits;
#endif
}

class CNameMarks {
    // A mark is made of so many bytes, the most that the name has.
    static constexpr size_t MARKED[] = {3, 6, 9, 12};
    static_assert(MARKED[std::size(MARKED) - 1] <= 2 * WORD_BYTES);

  public:
    // Nodes behind these have no mark: an object takes two megabytes at most.
    static constexpr uint32_t MOST_NODES = 1U << 20;

    // The marks of the names that may begin a text.
    class CText {
      public:
        explicit CText(CBeginning const& text) {
            for (size_t n = 0; n < std::size(MARKED); ++n)
                std::fill(std::begin(m_vMark[n]), std::end(m_vMark[n]), Mark(text, MARKED[n]));
        }

        // A bit for each mark of the group that says so or says nothing.
        unsigned Candidates(uint16_t const* pGroup) const { return MarksToRead(pGroup, m_vMark); }

      private:
        uint16_t m_vMark[std::size(MARKED)][MARK_GROUP]; // each as often as a group has marks
    };

    // Makes room for the marks of all nodes; without memory for them every name is read.
    void MakeRoom(uint32_t nNodes) {
        if (m_vMark.Size() == 0) m_vMark.Make(size_t{std::min(nNodes, MOST_NODES)} + MARK_GROUP);
    }

    bool HasRoom(uint32_t nNode) const { return nNode < Count(); }
    // REQUIRES: HasRoom.
    bool Has(uint32_t nNode) const { return m_vMark[nNode] != 0; }

    // Keeps the mark of a name; a very short one has none.
    void Keep(uint32_t nNode, CBeginning const& name) {
        if (!HasRoom(nNode)) return;
        for (size_t const nBytes : MARKED)
            if (uint16_t const nMark = Mark(name, nBytes)) m_vMark[nNode] = nMark;
    }

    // Calls IsLast for the nodes of the range whose names may begin the text, in order, until it returns true.
    template <typename FIsLast>
    void ForEachCandidate(CNodeRange const& range, CText const& text, FIsLast const& IsLast) const {
        uint32_t const nMarked = std::max(range.nFirst, std::min(range.nEnd, Count()));
        for (uint32_t n = range.nFirst; n < nMarked; n += MARK_GROUP) {
            for (unsigned nBits = text.Candidates(m_vMark.Data() + n); nBits != 0; nBits &= nBits - 1) {
                uint32_t const nNode = n + static_cast<uint32_t>(__builtin_ctz(nBits));
                if (nNode >= nMarked) break;
                if (IsLast(nNode)) return;
            }
        }
        for (uint32_t n = nMarked; n < range.nEnd; ++n)
            if (IsLast(n)) return;
    }

  private:
    // From 1 on; 0 for a text that has fewer bytes.
    static uint16_t Mark(CBeginning const& text, size_t nBytes) {
        bool const bOneWord = nBytes <= WORD_BYTES;
        uint64_t const nFirst = bOneWord ? text.nFirst << 8 * (WORD_BYTES - nBytes) : text.nFirst;
        uint64_t const nSecond = bOneWord ? 0 : text.nSecond << 8 * (2 * WORD_BYTES - nBytes);
        if ((bOneWord ? nFirst : nSecond) >> 56 == 0) return 0;
        auto const nMark =
            static_cast<uint16_t>((nFirst * 0x9E3779B97F4A7C15U + nSecond * 0xC2B2AE3D27D4EB4FU) >> 48);
        return nMark == 0 ? 1 : nMark;
    }

    uint32_t Count() const { return m_vMark.Size() == 0 ? 0 : static_cast<uint32_t>(m_vMark.Size() - MARK_GROUP); }

    CZeroedArray<uint16_t> m_vMark; // and a group more, so that one can be read at each
};

#endif
