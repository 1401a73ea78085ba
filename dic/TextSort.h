// TextSort.h - sorting records by a text of each: the texts are compared eight bytes at a time, and the records are
// moved once, at the end (internal).
//
//   for (n ...) pItem[n] = {0, pszText, n};
//   SortTexts(pItem, pItem + nCount);
//   PutInOrder(pItem, nCount, pRecord);
//
// Most comparisons are those of two numbers that stand side by side: the records are large, their texts elsewhere,
// and texts of one list often begin alike (六本木六本木ヒルズ森タワー（１階）, （２階）, ...). Texts that are equal so far are
// looked at again from there on, never from their beginning. Nothing here throws.
#ifndef QEADRS_DIC_TEXTSORT_H
#define QEADRS_DIC_TEXTSORT_H

#include "dic/FirstWord.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

// A record to be sorted: eight bytes of its text as a number, where they stand, and its place before the sorting.
struct CTextItem {
    uint64_t nWord;
    char const* pszText;
    size_t nPlace;

    // Equal texts keep their order.
    bool operator<(CTextItem const& other) const {
        return nWord != other.nWord ? nWord < other.nWord : nPlace < other.nPlace;
    }
};

// Eight bytes as a number that compares as they do, unsigned and from the first to the last; what stands behind a NUL
// counts as zero. REQUIRES: eight readable bytes.
inline uint64_t OrderedWord(char const* psz) {
    uint64_t const nWord = FirstWord(psz), nZero = ZeroBytes(nWord);
    return InByteOrder(nWord & ((nZero & -nZero) - 1));
}

// So many records are sorted without asking for memory.
constexpr size_t FEW_TEXTS = 32;

// Sorts by the words in the items. A dictionary's texts come in runs that are in order or nearly, of which merging makes
// more than quicksort does; it takes the memory that it finds, or none.
inline void SortWords(CTextItem* pBegin, CTextItem* pEnd) {
    if (static_cast<size_t>(pEnd - pBegin) > FEW_TEXTS)
        std::stable_sort(pBegin, pEnd);
    else
        std::sort(pBegin, pEnd);
}

// Sorts by the texts. nLimit is the number of words after which a text ends, with or without a NUL. A run of items
// that are equal so far is sorted by itself; the longest one in this very loop, so that calls lie inside each other no
// deeper than the number's logarithm, whatever the texts of a damaged dictionary are. REQUIRES: texts are readable to
// the end of the eight bytes that hold their NUL, or of their last word.
inline void SortTexts(CTextItem* pBegin, CTextItem* pEnd, size_t nLimit = SIZE_MAX) {
    while (pEnd - pBegin > 1) {
        bool bSorted = true;
        for (CTextItem* p = pBegin; p != pEnd; ++p) {
            p->nWord = OrderedWord(p->pszText);
            p->pszText += WORD_BYTES;
            bSorted = bSorted && (p == pBegin || p[-1].nWord <= p->nWord);
        }
        if (!bSorted) SortWords(pBegin, pEnd);
        if (--nLimit == 0) return;
        CTextItem *pLongest = pEnd, *pLongestEnd = pEnd;
        for (CTextItem *pRun = pBegin, *pRunEnd; pRun != pEnd; pRun = pRunEnd) {
            pRunEnd = pRun + 1;
            while (pRunEnd != pEnd && pRunEnd->nWord == pRun->nWord) ++pRunEnd;
            if (pRunEnd - pRun == 1 || (pRun->nWord & 0xFF) == 0) continue; // nothing to sort, or at their NUL
            CTextItem *pShorter = pRun, *pShorterEnd = pRunEnd;
            if (pRunEnd - pRun > pLongestEnd - pLongest) {
                std::swap(pShorter, pLongest);
                std::swap(pShorterEnd, pLongestEnd);
            }
            SortTexts(pShorter, pShorterEnd, nLimit);
        }
        pBegin = pLongest;
        pEnd = pLongestEnd;
    }
}

// Moves the records into the order of the items, each once. REQUIRES: moving does not throw.
template <typename TRecord>
void PutInOrder(CTextItem* pItem, size_t nCount, TRecord* pRecord) {
    for (size_t n = 0; n < nCount; ++n) {
        if (pItem[n].nPlace == n) continue;
        TRecord first = std::move(pRecord[n]); // of a circle of records, each of which takes the place of the next
        size_t nTo = n;
        for (size_t nFrom = pItem[nTo].nPlace; nFrom != n; nFrom = pItem[nTo].nPlace) {
            pRecord[nTo] = std::move(pRecord[nFrom]);
            pItem[nTo].nPlace = nTo;
            nTo = nFrom;
        }
        pRecord[nTo] = std::move(first);
        pItem[nTo].nPlace = nTo;
    }
}

#endif
