// Prefix.h - a text that sorted texts are searched for: those that begin with it (internal).
#ifndef QEADRS_DIC_PREFIX_H
#define QEADRS_DIC_PREFIX_H

#include "dic/FirstWord.h"
#include "dic/ImageView.h"

class CPrefix {
  public:
    // Borrows the text.
    explicit CPrefix(char const* psz) : m_psz(psz) {
        uint64_t const nWord = FirstWordOfText(psz);
        m_nMask = InByteOrder(BytesBeforeNul(nWord));
        m_nWord = InByteOrder(nWord);
        m_bLonger = m_nMask == ~uint64_t{0} && psz[WORD_BYTES] != '\0';
    }

    // Order of the image's text at nOffset against this one, as far as this one goes: below 0, 0 or above. The end of
    // the string area counts as a NUL, a text outside it as the lowest of all.
    int Order(CImageView const& image, size_t nOffset) const {
        if (!image.HasWordAt(nOffset)) return OrderOfRest(image, nOffset, m_psz);
        uint64_t const nWord = InByteOrder(image.WordAt(nOffset));
        if (!Begins(nWord)) return IsAbove(nWord) ? -1 : 1;
        if (!m_bLonger) return 0;
        return OrderOfRest(image, nOffset + WORD_BYTES, m_psz + WORD_BYTES);
    }

    // By a text's first word in byte order: whether the text may begin with this one, as far as a word goes, and if not,
    // whether this one comes behind it.
    bool Begins(uint64_t nWord) const { return (nWord & m_nMask) == m_nWord; }
    bool IsAbove(uint64_t nWord) const { return m_nWord > (nWord & m_nMask); }

  private:
    static int OrderOfRest(CImageView const& image, size_t nOffset, char const* pszRest) {
        return image.ComparePrefix(nOffset, pszRest, std::strlen(pszRest));
    }

    char const* m_psz;
    uint64_t m_nWord; // its first word in byte order
    uint64_t m_nMask; // the bytes of a word that the text covers
    bool m_bLonger;   // it goes on behind its first word
};

#endif
