// NameSearch.h - the names, among those of a run of nodes, that a text begins with (internal).
#ifndef QEADRS_DIC_NAMESEARCH_H
#define QEADRS_DIC_NAMESEARCH_H

#include "dic/ImageView.h"
#include "dic/SearchMemory.h"
#include "dic/Suffix.h"

class CNameSearch {
  public:
    // What a name is to the text.
    struct CName {
        char const* psz; // null: the node has none
        long nLength;    // bytes of the name when the text begins with the whole of it, else -1
        bool bOnePart;   // it is known that the name has no front part
    };

    // Borrows the text.
    CNameSearch(CImageView const& image, CNameMarks& marks, char const* pszText)
        : m_image(image),
          m_marks(marks),
          m_pszText(pszText),
          m_beginning(CBeginning::Of(pszText)),
          m_text(m_beginning) {
        m_marks.MakeRoom(image.NodeCount());
    }

    // Calls IsLast(node, name) for nodes of the range in order until it returns true: for all whose names begin the
    // text, that have none, or that have a front part, and a few others.
    template <typename FIsLast>
    void ForEach(CNodeRange const& range, FIsLast const& IsLast) {
        m_marks.ForEachCandidate(range, m_text, [&](uint32_t n) { return IsLast(n, Read(n)); });
    }

  private:
    CName Read(uint32_t nNode) {
        uint32_t const nOffset = m_image.Node(nNode)->nName;
        char const* const psz = m_image.At(nOffset);
        if (psz == nullptr || !m_image.HasWordAt(nOffset))
            return {psz, psz == nullptr ? -1 : MatchName(m_pszText, psz), false};
        // Without room for a mark nobody needs to know.
        bool const bOnePart = m_marks.HasRoom(nNode) && (m_marks.Has(nNode) || Mark(nNode, nOffset, psz));
        return {psz, MatchName(m_pszText, m_beginning.nFirst, psz, m_image.WordAt(nOffset)), bOnePart};
    }

    // Keeps the mark of a name in one part; returns whether it is one.
    bool Mark(uint32_t nNode, uint32_t nOffset, char const* pszName) {
        unsigned short nType = 0;
        if (strnlen(pszName, CNameTable::LONGEST_NAME + 1) > CNameTable::LONGEST_NAME) return false;
        if (FrontPartLength(pszName, &nType) != 0) return false;
        if (m_image.HasWordAt(size_t{nOffset} + WORD_BYTES))
            m_marks.Keep(nNode,
                         CBeginning::Of(m_image.WordAt(nOffset), m_image.WordAt(size_t{nOffset} + WORD_BYTES)));
        return true;
    }

    CImageView const& m_image;
    CNameMarks& m_marks;
    char const* m_pszText;
    CBeginning m_beginning;
    CNameMarks::CText m_text;
};

#endif
