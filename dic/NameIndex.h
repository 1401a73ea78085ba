// NameIndex.h - a table of node indices sorted by the nodes' names, and the search for names that begin with a text
// (internal).
#ifndef QEADRS_DIC_NAMEINDEX_H
#define QEADRS_DIC_NAMEINDEX_H

#include "dic/ImageView.h"
#include "dic/Prefix.h"

class CNameIndex {
  public:
    // nCount is the header word that counts the entries of pIndex.
    CNameIndex(CImageView const& image, uint32_t const* pIndex, tagHEADERWORD nCount)
        : m_image(image), m_pIndex(pIndex), m_nCount(image.Word(nCount)) {}

    // Null behind the end of the index and for a node that is not there.
    tagADDRNODE const* Node(uint32_t nPos) const { return nPos < m_nCount ? m_image.Node(m_pIndex[nPos]) : nullptr; }

    // Whether there is a node at nPos whose name begins with the text.
    bool Begins(uint32_t nPos, CPrefix const& prefix) const {
        tagADDRNODE const* const pNode = Node(nPos);
        return pNode != nullptr && prefix.Order(m_image, pNode->nName) == 0;
    }

    // What a probe without a readable name means to a search.
    enum EUnreadable { NotFound, Hit };

    // The position that a binary search hits first, ADDR_NONE when there is none. The probes are part of what callers
    // can observe; the upper end wraps below position 0, and the probe that follows is behind the end.
    uint32_t FindAny(CPrefix const& prefix, EUnreadable nUnreadable) const {
        uint32_t nLow = 0;
        uint32_t nHigh = m_nCount - 1;
        uint32_t nProbe = nHigh / 2;
        for (;; nProbe = static_cast<uint32_t>((uint64_t{nLow} + nHigh) / 2)) {
            if (nProbe >= m_nCount) return ADDR_NONE;
            tagADDRNODE const* const pNode = Node(nProbe);
            bool const bReadable = pNode != nullptr && (nUnreadable == Hit || m_image.HasTextAt(pNode->nName));
            if (!bReadable && nUnreadable == NotFound) return ADDR_NONE;
            int const nOrder = bReadable ? prefix.Order(m_image, pNode->nName) : 0;
            if (nOrder == 0) return nProbe;
            if (nOrder > 0)
                nHigh = nProbe - 1;
            else
                nLow = nProbe + 1;
            if (nLow > nHigh) return ADDR_NONE;
        }
    }

    // The lowest position around it; -1 when there is none.
    int FindFirst(CPrefix const& prefix, EUnreadable nUnreadable) const {
        uint32_t nPos = FindAny(prefix, nUnreadable);
        if (nPos == ADDR_NONE) return -1;
        while (nPos > 0 && Begins(nPos - 1, prefix)) --nPos;
        return static_cast<int>(nPos);
    }

  private:
    CImageView const& m_image;
    uint32_t const* m_pIndex;
    uint32_t m_nCount;
};

#endif
