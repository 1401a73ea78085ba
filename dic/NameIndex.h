// NameIndex.h - a table of node indices sorted by the nodes' names, and the search for names that begin with a text
// (internal).
#ifndef QEADRS_DIC_NAMEINDEX_H
#define QEADRS_DIC_NAMEINDEX_H

#include "dic/AddrDic.h"
#include "dic/ImageHeader.h"
#include "dic/ImageText.h"

class CNameIndex {
  public:
    // nCount is the header word that counts the entries of pIndex.
    CNameIndex(CAddrDic const& owner, CImageText const& text, uint32_t const* pIndex, tagHEADERWORD nCount)
        : m_owner(owner),
          m_text(text),
          m_pIndex(pIndex),
          m_nCount(owner.GetDicPointer() == nullptr ? 0 : HeaderWord(owner.GetDicPointer(), nCount)) {}

    // Null behind the end of the index and for a node that is not there.
    tagADDRNODE const* Node(uint32_t nPos) const {
        return nPos < m_nCount ? m_owner.GetAddrNode(m_pIndex[nPos]) : nullptr;
    }

    // Order of the name at nPos against the text, as far as the text goes. REQUIRES: there is a node.
    int Compare(uint32_t nPos, char const* pszText, size_t nLength) const {
        return m_text.ComparePrefix(m_owner.GetString(Node(nPos)->nName), pszText, nLength);
    }

    bool Begins(uint32_t nPos, char const* pszText, size_t nLength) const {
        return Node(nPos) != nullptr && Compare(nPos, pszText, nLength) == 0;
    }

    // What a probe without a readable name means to a search.
    enum EUnreadable { NotFound, Hit };

    // The position that a binary search hits first, ADDR_NONE when there is none. The probes are part of what callers
    // can observe; the upper end wraps below position 0, and the probe that follows is behind the end.
    uint32_t FindAny(char const* pszText, EUnreadable nUnreadable) const {
        size_t const nLength = std::strlen(pszText);
        uint32_t nLow = 0;
        uint32_t nHigh = m_nCount - 1;
        uint32_t nProbe = nHigh / 2;
        for (;; nProbe = static_cast<uint32_t>((uint64_t{nLow} + nHigh) / 2)) {
            if (nProbe >= m_nCount) return ADDR_NONE;
            tagADDRNODE const* const pNode = Node(nProbe);
            bool const bReadable = pNode != nullptr && (nUnreadable == Hit || m_owner.GetString(pNode->nName));
            if (!bReadable && nUnreadable == NotFound) return ADDR_NONE;
            int const nOrder = bReadable ? Compare(nProbe, pszText, nLength) : 0;
            if (nOrder == 0) return nProbe;
            if (nOrder > 0)
                nHigh = nProbe - 1;
            else
                nLow = nProbe + 1;
            if (nLow > nHigh) return ADDR_NONE;
        }
    }

    // The lowest position around it; -1 when there is none.
    int FindFirst(char const* pszText, EUnreadable nUnreadable) const {
        uint32_t nPos = FindAny(pszText, nUnreadable);
        if (nPos == ADDR_NONE) return -1;
        size_t const nLength = std::strlen(pszText);
        while (nPos > 0 && Begins(nPos - 1, pszText, nLength)) --nPos;
        return static_cast<int>(nPos);
    }

  private:
    CAddrDic const& m_owner;
    CImageText const& m_text;
    uint32_t const* m_pIndex;
    uint32_t m_nCount;
};

#endif
