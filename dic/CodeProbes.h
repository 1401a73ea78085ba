// CodeProbes.h - the codes that the first steps of a code search meet, kept once they have been read (internal).
//
// The first steps of every binary search over the entries meet the same few: one entry in the first step, two in the
// second, 2,048 in the twelfth. To read one costs two places of the image far from each other, its record and its code.
// Side by side in the order of the search, those of twelve steps take 48 KB. What a search meets does not change, and
// with it no answer, also in a table that is not sorted.
#ifndef QEADRS_DIC_CODEPROBES_H
#define QEADRS_DIC_CODEPROBES_H

#include "dic/ImageView.h"
#include "dic/Prefix.h"
#include "dic/ZeroedArray.h"

// Where a binary search stands.
struct CBisection {
    uint32_t nLow = 0;
    uint32_t nHigh;
    uint32_t nMiddle;    // the entry that the next step meets
    uint32_t nPlace = 1; // the step's own number: that of the one before it twice, and one more on the way up
    uint32_t nBelow = 0; // the steps that have left entries below and above: none yet
    uint32_t nAbove = 0;

    explicit CBisection(uint32_t nLast) : nHigh(nLast), nMiddle(nLast / 2) {}

    // Goes on below or above the middle. False when nothing is left there. The ends are unsigned: below entry 0 the
    // upper one wraps, and the step that follows meets no entry.
    bool Narrow(bool bHigher) {
        nLow = bHigher ? nMiddle + 1 : nLow;
        nHigh = bHigher ? nHigh : nMiddle - 1;
        nMiddle = static_cast<uint32_t>((uint64_t{nLow} + nHigh) / 2);
        nBelow = bHigher ? nPlace : nBelow;
        nAbove = bHigher ? nAbove : nPlace;
        nPlace = 2 * nPlace + (bHigher ? 1 : 0);
        return nLow <= nHigh;
    }
};

class CCodeProbes {
  public:
    static constexpr unsigned STEPS = 12;

    // Goes the steps that are known and meet other codes. False when nothing is left to search.
    bool GoKnownSteps(CPrefix const& prefix, CBisection& at) const {
        uint64_t const* const pWord = m_vWord.Data();
        size_t const nPlaces = m_vWord.Size();
        CBisection step = at;
        bool bLeft = true;
        while (bLeft && step.nPlace < nPlaces) {
            uint64_t const nWord = pWord[step.nPlace];
            if (nWord == NOT_READ || prefix.Begins(nWord)) break;
            bLeft = step.Narrow(prefix.IsAbove(nWord));
        }
        at = step;
        return bLeft;
    }

    // Keeps the code at nOffset, met by the step at nPlace, if it is one of the first.
    void Keep(CImageView const& image, uint32_t nOffset, uint32_t nPlace) {
        if (nPlace >= PLACES || !image.HasWordAt(nOffset)) return;
        if (m_vWord.Size() == 0 && !(m_vOffset.Make(PLACES) && m_vWord.Make(PLACES))) return;
        m_vWord[nPlace] = InByteOrder(image.WordAt(nOffset));
        m_vOffset[nPlace] = nOffset;
    }

    // Has the codes fetched that stand between the kept ones around what is left to search. Where they stand in the
    // order of their entries, as our compiler writes them, the last steps of the search find them in the cache.
    void FetchCodes(CImageView const& image, CBisection const& at) const {
        if (at.nBelow >= m_vWord.Size() || at.nAbove >= m_vWord.Size()) return;
        uint32_t const nFirst = m_vOffset[at.nBelow], nLast = m_vOffset[at.nAbove];
        if (nFirst < nLast && nLast - nFirst <= MOST_FETCHED) image.FetchText(nFirst, nLast - nFirst);
    }

  private:
    static constexpr uint32_t PLACES = 1U << STEPS;
    static constexpr uint64_t NOT_READ = 0; // a text of eight NULs is read each time

    static constexpr uint32_t MOST_FETCHED = 1024;

    CZeroedArray<uint64_t> m_vWord;
    CZeroedArray<uint32_t> m_vOffset; // where each stands
};

#endif
