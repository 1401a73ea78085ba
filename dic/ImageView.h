// ImageView.h - the tables of the bound image for inner loops: records by index, texts by offset (internal).
//
//   CImageView const image(dic);              // reads the header once for an operation
//   tagADDRNODE const* pNode = image.Node(n); // null outside the table, as with the dictionary's own doors
//   char const* psz = image.At(pNode->nName);
//
// Every text of a sound dictionary ends in NUL inside the string area. The bounds here cost a comparison and keep a
// reader inside the area even when a damaged file's last text has lost its NUL.
#ifndef QEADRS_DIC_IMAGEVIEW_H
#define QEADRS_DIC_IMAGEVIEW_H

#include "dic/AddrDic.h"
#include "dic/FirstWord.h"
#include "dic/ImageHeader.h"

#include <cstring>

// Has the cache lines of so many bytes fetched; a hint, which may name any place.
inline void FetchLines(void const* p, size_t nBytes) {
    constexpr size_t LINE = 64;
    for (size_t n = 0; n < nBytes; n += LINE) __builtin_prefetch(static_cast<char const*>(p) + n);
}

class CImageView {
  public:
    // Without an image bound there are no records and no texts.
    explicit CImageView(CAddrDic const& owner) : CImageView(owner.GetDicPointer()) {}

    unsigned char const* Image() const { return m_pImage; }
    uint32_t NodeCount() const { return m_nNodes; }
    uint32_t InfoCount() const { return m_nInfos; }

    // A word of the header, 0 without an image.
    uint32_t Word(tagHEADERWORD nWord) const { return m_pImage == nullptr ? 0 : HeaderWord(m_pImage, nWord); }

    // Null outside the table.
    tagADDRNODE const* Node(uint32_t nIndex) const { return nIndex < m_nNodes ? m_pNodes + nIndex : nullptr; }
    tagADDRINFO const* Info(uint32_t nIndex) const { return nIndex < m_nInfos ? m_pInfos + nIndex : nullptr; }

    // Whether a text begins in the area at nOffset, whether or not it ends there.
    bool HasTextAt(size_t nOffset) const { return nOffset < m_nSize; }

    // The text at nOffset; null when it begins outside the area or does not end inside.
    char const* At(size_t nOffset) const {
        if (nOffset >= m_nSize) return nullptr;
        char const* const psz = m_pszArea + nOffset;
        return m_bWhole || LengthAt(nOffset) < m_nSize - nOffset ? psz : nullptr;
    }

    // Bytes from psz to its NUL or to the end of the area; 0 for null. REQUIRES: a text that this image has given.
    size_t Length(char const* psz) const {
        return psz == nullptr ? 0 : LengthAt(static_cast<size_t>(psz - m_pszArea));
    }

    // The text nSkip bytes behind the end of the text at nOffset: 0 its NUL, 1 the text stored behind it. Null under
    // the same conditions, for either text.
    char const* Behind(uint32_t nOffset, unsigned nSkip) const {
        return nOffset < m_nSize ? At(nOffset + LengthAt(nOffset) + nSkip) : nullptr;
    }

    // Both: the text at nOffset and the one stored behind it.
    void TakePair(uint32_t nOffset, char const*& pszText, char const*& pszBehind) const {
        if (!HasWordAt(nOffset)) {
            pszText = At(nOffset);
            pszBehind = Behind(nOffset, 1);
            return;
        }
        pszText = m_pszArea + nOffset;
        size_t const nBehind = nOffset + LengthAt(nOffset) + 1;
        pszBehind = nBehind < m_nSize ? m_pszArea + nBehind : nullptr;
    }

    // Has bytes of the string area fetched into the cache; reads nothing.
    void FetchText(size_t nOffset, size_t nBytes) const {
        if (nOffset < m_nSize) FetchLines(m_pszArea + nOffset, nBytes);
    }

    // Whether eight bytes can be read at nOffset, all texts end, and so no comparison needs a bound.
    bool HasWordAt(size_t nOffset) const { return m_bWhole && nOffset < m_nWords; }
    // REQUIRES: HasWordAt.
    uint64_t WordAt(size_t nOffset) const { return FirstWord(m_pszArea + nOffset); }

    // strncmp(psz, pszPrefix, nLength) of the text at nOffset that takes the end of the area for a NUL; -1 for no
    // text at all. REQUIRES: pszPrefix has nLength bytes before its NUL.
    int ComparePrefix(size_t nOffset, char const* pszPrefix, size_t nLength) const {
        if (nOffset >= m_nSize) return -1;
        char const* const psz = m_pszArea + nOffset;
        size_t const nRoom = m_nSize - nOffset;
        if (nLength <= nRoom) return std::strncmp(psz, pszPrefix, nLength);
        int const nOrder = std::strncmp(psz, pszPrefix, nRoom);
        return nOrder != 0 ? nOrder : -1;
    }

  private:
    explicit CImageView(unsigned char const* pImage)
        : m_pImage(pImage),
          m_pNodes(Table<tagADDRNODE>(HDR_NODE_TABLE)),
          m_pInfos(Table<tagADDRINFO>(HDR_INFO_TABLE)),
          m_pszArea(Table<char>(HDR_STRING_AREA)),
          m_nNodes(Word(HDR_NODE_COUNT)),
          m_nInfos(Word(HDR_INFO_COUNT)),
          m_nSize(Word(HDR_STRING_SIZE)),
          m_nWords(m_nSize < sizeof(uint64_t) ? 0 : m_nSize - sizeof(uint64_t) + 1),
          m_bWhole(m_nSize > 0 && m_pszArea[m_nSize - 1] == '\0') {}

    template <typename T>
    T const* Table(tagHEADERWORD nWord) const {
        void const* const pTable = m_pImage == nullptr ? nullptr : m_pImage + Word(nWord);
        return static_cast<T const*>(pTable);
    }

    // REQUIRES: nOffset lies in the area.
    size_t LengthAt(size_t nOffset) const {
        char const* const psz = m_pszArea + nOffset;
        if (HasWordAt(nOffset)) {
            // Codes end in their first word.
            if (uint64_t const nZero = ZeroBytes(FirstWord(psz))) return FirstByteSet(nZero);
            return WORD_BYTES + std::strlen(psz + WORD_BYTES);
        }
        return strnlen(psz, m_nSize - nOffset);
    }

    unsigned char const* m_pImage;
    tagADDRNODE const* m_pNodes;
    tagADDRINFO const* m_pInfos;
    char const* m_pszArea;
    uint32_t m_nNodes;
    uint32_t m_nInfos;
    size_t m_nSize;
    size_t m_nWords; // offsets below it have eight bytes
    bool m_bWhole;   // the area ends in NUL, and with it every text
};

#endif
