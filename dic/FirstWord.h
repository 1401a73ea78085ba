// FirstWord.h - the first eight bytes of texts, compared at once (internal).
//
// Most names that a text is compared with differ from it in their first bytes: one comparison of a word tells, without
// a call. Words are little-endian, as the image's integers are: the first byte is the lowest one.
#ifndef QEADRS_DIC_FIRSTWORD_H
#define QEADRS_DIC_FIRSTWORD_H

#include <cstddef>
#include <cstdint>
#include <cstring>

constexpr size_t WORD_BYTES = sizeof(uint64_t);

// REQUIRES: eight readable bytes.
inline uint64_t FirstWord(char const* p) {
    uint64_t nWord;
    std::memcpy(&nWord, p, sizeof nWord);
    return nWord;
}

// The first eight bytes of a text, zeros behind its NUL.
inline uint64_t FirstWordOfText(char const* psz) {
    size_t const nLength = strnlen(psz, WORD_BYTES);
    auto const Byte = [psz](size_t n) { return uint64_t{static_cast<unsigned char>(psz[n])} << 8 * n; };
    if (nLength >= 4) { // two halves, which may overlap
        uint32_t vHalf[2];
        std::memcpy(&vHalf[0], psz, 4);
        std::memcpy(&vHalf[1], psz + nLength - 4, 4);
        return vHalf[0] | uint64_t{vHalf[1]} << 8 * (nLength - 4);
    }
    return nLength == 0 ? 0 : Byte(0) | Byte(nLength / 2) | Byte(nLength - 1);
}

// Position of the lowest byte that is not zero. REQUIRES: there is one.
inline unsigned FirstByteSet(uint64_t nWord) {
    return static_cast<unsigned>(__builtin_ctzll(nWord)) / 8;
}

// Bit 7 of the first zero byte and nothing below it, 0 when no byte is zero; what is set above means nothing.
inline uint64_t ZeroBytes(uint64_t nWord) {
    return (nWord - 0x0101010101010101U) & ~nWord & 0x8080808080808080U;
}

// All bits of the bytes before the first zero byte: of all eight when there is none.
inline uint64_t BytesBeforeNul(uint64_t nWord) {
    uint64_t const nZero = ZeroBytes(nWord);
    return ((nZero & -nZero) >> 7) - 1;
}

// The word as a number whose order is that of its bytes.
inline uint64_t InByteOrder(uint64_t nWord) {
    return __builtin_bswap64(nWord);
}

// The first sixteen bytes of a text, zeros behind its NUL.
struct CBeginning {
    uint64_t nFirst;
    uint64_t nSecond;

    static CBeginning Of(char const* psz) {
        uint64_t const nFirst = FirstWordOfText(psz);
        return {nFirst, BytesBeforeNul(nFirst) == ~uint64_t{0} ? FirstWordOfText(psz + WORD_BYTES) : 0};
    }
    // Of a text whose first two words are these, whatever stands behind its NUL.
    static CBeginning Of(uint64_t nFirst, uint64_t nSecond) {
        uint64_t const nText = BytesBeforeNul(nFirst);
        return {nFirst & nText, nText == ~uint64_t{0} ? nSecond & BytesBeforeNul(nSecond) : 0};
    }
};

// Length of the name when the text begins with the whole of it, else -1.
inline long MatchName(char const* pszText, char const* pszName) {
    char const* p = pszName;
    for (; *p != '\0'; ++p, ++pszText)
        if (*p != *pszText) return -1;
    return static_cast<long>(p - pszName);
}

// The same by their first words; nNameWord may hold what stands behind the name's NUL. REQUIRES: nTextWord is
// FirstWordOfText(pszText).
inline long MatchName(char const* pszText, uint64_t nTextWord, char const* pszName, uint64_t nNameWord) {
    if (((nTextWord ^ nNameWord) & BytesBeforeNul(nNameWord)) != 0) return -1;
    uint64_t const nZero = ZeroBytes(nNameWord);
    if (nZero != 0) return static_cast<long>(FirstByteSet(nZero));
    long const nRest = MatchName(pszText + WORD_BYTES, pszName + WORD_BYTES);
    return nRest < 0 ? -1 : static_cast<long>(WORD_BYTES) + nRest;
}

#endif
