// ImageText.h - texts of the string area, measured and compared without leaving it (internal).
//
// Every text of a sound dictionary ends in NUL inside the area. The bound here costs one comparison and keeps a
// reader inside the area even when a damaged file's last text has lost its NUL.
#ifndef QEADRS_DIC_IMAGETEXT_H
#define QEADRS_DIC_IMAGETEXT_H

#include "dic/AddrDic.h"
#include "dic/ImageHeader.h"

#include <cstring>

// Length of the name when the text begins with the whole of it, else -1.
inline long MatchName(char const* pszText, char const* pszName) {
    char const* p = pszName;
    for (; *p != '\0'; ++p, ++pszText)
        if (*p != *pszText) return -1;
    return static_cast<long>(p - pszName);
}

class CImageText {
  public:
    explicit CImageText(CAddrDic const& owner)
        : m_owner(owner),
          m_nSize(owner.GetDicPointer() == nullptr ? 0 : HeaderWord(owner.GetDicPointer(), HDR_STRING_SIZE)),
          m_bWhole(m_nSize > 0 && owner.GetStrings()[m_nSize - 1] == '\0') {}

    // The text at nOffset; null when it begins outside the area or does not end inside.
    char const* At(unsigned long nOffset) const {
        char const* const psz = m_owner.GetString(nOffset);
        return psz == nullptr || m_bWhole || Length(psz) < m_nSize - nOffset ? psz : nullptr;
    }

    // Bytes from psz to its NUL or to the end of the area; 0 for a text that does not lie in the area.
    size_t Length(char const* psz) const {
        size_t const nRoom = Room(psz);
        return nRoom == 0 ? 0 : strnlen(psz, nRoom);
    }

    // The text nSkip bytes behind the end of the text at nOffset: 0 its NUL, 1 the text stored behind it. Null under
    // the same conditions, for either text.
    char const* Behind(uint32_t nOffset, unsigned nSkip) const {
        char const* const psz = m_owner.GetString(nOffset);
        return psz == nullptr ? nullptr : At(static_cast<unsigned long>(nOffset) + Length(psz) + nSkip);
    }

    // strncmp(psz, pszPrefix, nLength) that takes the end of the area for a NUL. REQUIRES: pszPrefix has nLength
    // bytes before its NUL.
    int ComparePrefix(char const* psz, char const* pszPrefix, size_t nLength) const {
        size_t const nRoom = Room(psz);
        if (nRoom == 0) return -1; // no text at all
        if (nLength <= nRoom) return std::strncmp(psz, pszPrefix, nLength);
        int const nOrder = std::strncmp(psz, pszPrefix, nRoom);
        return nOrder != 0 ? nOrder : -1;
    }

  private:
    size_t Room(char const* psz) const {
        char const* const pszArea = m_owner.GetStrings();
        if (psz == nullptr || pszArea == nullptr || psz < pszArea) return 0;
        size_t const nOffset = static_cast<size_t>(psz - pszArea);
        return nOffset < m_nSize ? m_nSize - nOffset : 0;
    }

    CAddrDic const& m_owner;
    size_t m_nSize;
    bool m_bWhole; // the area ends in NUL, and with it every text
};

#endif
