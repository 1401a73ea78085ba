// FoldedText.cpp - from characters to tokens.
#include "text/FoldedText.h"

#include "text/FoldTable.h"
#include "text/Tokens.h"
#include "text/qetext.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace qeadrs {

namespace {

enum EDigits : uint8_t { DIGITS_NONE = 0, DIGITS_ARABIC = 1, DIGITS_KANJI = 2 };

constexpr uint32_t MALFORMED = 0xFFFFFFFF;
constexpr uint32_t LAST_IN_TEXT = 0xFFFFFFFE; // m_nLast: that of the last token, in the text

// Tokens beyond those asked for: a name will be read to its end, a number is mostly one that nobody asks for.
constexpr size_t KANJI_AHEAD = 16;
constexpr size_t ASCII_AHEAD = 2;

// Kana, kanji and their like, up to the surrogates. What folds to one of them is neither a digit nor anything special.
constexpr uint32_t KANJI_FIRST = 0x3000;
constexpr uint32_t KANJI_COUNT = 0xD800 - KANJI_FIRST;
constexpr uint32_t FULL_WIDTH_HEAD = 0xEF; // first byte of full-width ASCII

bool IsTail(std::string_view str, size_t nPos) {
    return (static_cast<unsigned char>(str[nPos]) & 0xC0) == 0x80;
}

uint32_t Tail(std::string_view str, size_t nPos) {
    return static_cast<unsigned char>(str[nPos]) & 0x3F;
}

// The character at a position, MALFORMED (and one byte) where none is well-formed. REQUIRES: nPos < str.size().
uint32_t Decode(std::string_view str, size_t nPos, size_t& nSize) {
    uint32_t const nHead = static_cast<unsigned char>(str[nPos]);
    size_t const nLeft = str.size() - nPos;
    if ((nHead & 0xF0) == 0xE0 && nLeft >= 3 && IsTail(str, nPos + 1) && IsTail(str, nPos + 2)) {
        uint32_t const n = (nHead & 0x0F) << 12 | Tail(str, nPos + 1) << 6 | Tail(str, nPos + 2);
        nSize = 3;
        if (n >= 0x800 && (n < 0xD800 || n > 0xDFFF)) return n;
    }
    nSize = 1;
    if (nHead < 0x80) return nHead;
    if (nHead >= 0xC2 && nHead <= 0xDF && nLeft >= 2 && IsTail(str, nPos + 1)) {
        nSize = 2;
        return (nHead & 0x1F) << 6 | Tail(str, nPos + 1);
    }
    if ((nHead & 0xF8) != 0xF0 || nLeft < 4) return MALFORMED;
    if (!IsTail(str, nPos + 1) || !IsTail(str, nPos + 2) || !IsTail(str, nPos + 3)) return MALFORMED;
    uint32_t const n =
        (nHead & 0x07) << 18 | Tail(str, nPos + 1) << 12 | Tail(str, nPos + 2) << 6 | Tail(str, nPos + 3);
    if (n < 0x10000 || n > 0x10FFFF) return MALFORMED;
    nSize = 4;
    return n;
}

uint16_t FoldBasic(uint32_t nCharacter) {
    return static_cast<uint16_t>(nCharacter ^ FOLD_DIFFERENCE[FOLD_BLOCK_OF[nCharacter >> 6]][nCharacter & 63]);
}

CFoldedSupplementary const* FindSupplementary(uint32_t nCharacter) {
    CFoldedSupplementary const* const pEnd = FOLD_SUPPLEMENTARY + FOLD_SUPPLEMENTARY_COUNT;
    CFoldedSupplementary const* const p =
        std::lower_bound(FOLD_SUPPLEMENTARY, pEnd, nCharacter,
                         [](CFoldedSupplementary const& row, uint32_t n) { return row.nCharacter < n; });
    return p != pEnd && p->nCharacter == nCharacter ? p : nullptr;
}

bool IsSelectorBeyondBasic(uint32_t nCharacter) {
    return nCharacter >= 0xE0100 && nCharacter <= 0xE01EF;
}

bool IsSpecial(uint16_t nFolded) {
    return nFolded >= FOLD_SPECIAL_FIRST && nFolded <= FOLD_SPECIAL_LAST;
}

// What the kana in front and a voicing mark are together, 0 when they are nothing.
uint16_t Voiced(uint32_t nKana, bool bSemi) {
    CFoldedVoiced const* const pEnd = FOLD_VOICED_KANA + FOLD_VOICED_KANA_COUNT;
    CFoldedVoiced const* const p = std::lower_bound(
        FOLD_VOICED_KANA, pEnd, nKana, [](CFoldedVoiced const& row, uint32_t n) { return row.nKana < n; });
    if (p == pEnd || p->nKana != nKana) return 0;
    return bSemi ? p->nSemiVoiced : p->nVoiced;
}

// Whether the byte begins one of them.
bool MayBeginKanji(char ch) {
    return static_cast<unsigned char>(ch) - 0xE3u <= 0xEDu - 0xE3u;
}

// The last one to three bytes of a text, 0 where there is none.
uint32_t LastBytes(unsigned char const* pText, size_t nAt, size_t nText) {
    uint32_t nBytes = 0;
    for (unsigned nShift = 0; nAt < nText; nShift += 8) nBytes |= uint32_t{pText[nAt++]} << nShift;
    return nBytes;
}

bool IsSelector(uint32_t nCharacter) {
    return nCharacter > 0xFFFF ? IsSelectorBeyondBasic(nCharacter) : FoldBasic(nCharacter) == FOLD_SELECTOR;
}

// The kanji numeral at a position: 0 to 9 for a digit, 10 to 12 for 十, 百 and 千; -1 for all else. nSize: with the
// selectors behind it: those do not part a number.
int KanjiNumeral(std::string_view str, size_t nPos, size_t& nSize) {
    if (nPos >= str.size()) return -1;
    uint32_t const nCharacter = Decode(str, nPos, nSize);
    if (nCharacter > 0xFFFF) return -1;
    uint16_t const nFolded = FoldBasic(nCharacter);
    if (nFolded < FOLD_KANJI_DIGIT || nFolded > FOLD_KANJI_UNIT + 2) return -1;
    size_t nNext = 0;
    while (nPos + nSize < str.size() && IsSelector(Decode(str, nPos + nSize, nNext))) nSize += nNext;
    return nFolded - FOLD_KANJI_DIGIT;
}

// A number with units from a position on: "二十一", "百", "千二百". Its value, and its length in bytes; 0 bytes when no
// number with units begins there.
struct CUnitNumber {
    uint32_t nValue = 0;
    size_t nBytes = 0;
};
CUnitNumber ReadUnitNumber(std::string_view str, size_t nPos) {
    CUnitNumber number;
    int nLowest = 13; // units descend
    size_t nAt = nPos;
    for (;;) {
        size_t nSize = 0;
        size_t nUnitSize = 0;
        int nDigit = KanjiNumeral(str, nAt, nSize);
        if (nDigit < 0) break;
        int nUnit = nDigit;
        if (nDigit < 10) {
            nUnit = KanjiNumeral(str, nAt + nSize, nUnitSize);
            if (nUnit < 10) { // the last digit; without a unit in front of it this is no number with units
                if (number.nBytes == 0 || nDigit == 0) break;
                number.nValue += static_cast<uint32_t>(nDigit);
                number.nBytes = nAt + nSize - nPos;
                break;
            }
        } else {
            nDigit = 1;
        }
        if (nUnit >= nLowest || nDigit == 0) break;
        constexpr uint32_t UNITS[] = {10, 100, 1000};
        number.nValue += static_cast<uint32_t>(nDigit) * UNITS[nUnit - 10];
        nLowest = nUnit;
        nAt += nSize + nUnitSize;
        number.nBytes = nAt - nPos;
    }
    return number;
}

} // namespace

uint32_t FoldingKind(std::string_view strCharacter) {
    size_t nSize;
    uint32_t const nCharacter = strCharacter.empty() ? MALFORMED : Decode(strCharacter, 0, nSize);
    if (nCharacter <= 0xFFFF) return FOLD_KIND[FOLD_KIND_OF[nCharacter >> 6]][nCharacter & 63];
    if (IsSelectorBeyondBasic(nCharacter)) return QETEXT_FOLD_KANJI;
    CFoldedSupplementary const* const p = FindSupplementary(nCharacter);
    return p == nullptr ? 0 : p->nKind;
}

void CFoldedText::Begin(std::string_view strText, uint32_t nOptions) {
    m_strText = strText.substr(0, 0x7FFFFFFF);
    m_nOptions = nOptions;
    nCount = 0;
    nRead = 0;
    bSizeDropped = false;
    m_nLast = 0;
    m_nDigits = DIGITS_NONE;
    m_bEnd = false;
    anToken[0] = 0;
    abInNumber[0] = false;
}

// Kana and kanji, each of three bytes and for itself or one other: most of an address, so that this keeps to registers.
// Stops in front of all else.
void CFoldedText::ExtendByKanji(size_t nWanted) {
    auto const* const pText = reinterpret_cast<unsigned char const*>(m_strText.data());
    size_t const nText = m_strText.size();
    size_t const nFours = nText - std::min(nText, sizeof(uint32_t) - 1); // in front of it four bytes can be read
    uint16_t const* const pBlockOf = FOLD_BLOCK_OF;
    uint16_t const* const pDifference = FOLD_DIFFERENCE[0];
    size_t n = nCount;
    size_t nAt = nRead;
    for (; n < nWanted; ++n) {
        uint32_t nBytes;
        if (nAt < nFours)
            std::memcpy(&nBytes, pText + nAt, sizeof nBytes);
        else
            nBytes = LastBytes(pText, nAt, nText);
        uint32_t const nBlock = (nBytes & 0x0F) << 6 | (nBytes >> 8 & 0x3F);
        uint32_t const nPlace = nBytes >> 16 & 0x3F;
        uint32_t const nCharacter = nBlock << 6 | nPlace;
        uint32_t const nFolded = nCharacter ^ pDifference[uint32_t{pBlockOf[nBlock]} << 6 | nPlace];
        if ((nBytes & 0xC0C0F0) != 0x8080E0) break;
        if (nCharacter - KANJI_FIRST >= KANJI_COUNT || nFolded - KANJI_FIRST >= KANJI_COUNT) break;
        anToken[n] = static_cast<uint16_t>(nFolded);
        anBegin[n] = static_cast<uint32_t>(nAt);
        nAt += KANJI_BYTES;
        anEnd[n] = static_cast<uint32_t>(nAt);
        abInNumber[n] = false;
    }
    if (n == nCount) return;
    m_nDigits = DIGITS_NONE;
    m_nLast = LAST_IN_TEXT;
    nCount = n;
    nRead = nAt;
}

// What folds to ASCII, of half or full width, and blanks: digits, dashes, letters. Stops in front of all else.
void CFoldedText::ExtendByAscii(size_t nWanted) {
    auto const* const pText = reinterpret_cast<unsigned char const*>(m_strText.data());
    size_t const nText = m_strText.size();
    size_t n = nCount;
    size_t nAt = nRead;
    bool bBehindDigit = m_nDigits == DIGITS_ARABIC;
    while (n < nWanted && nAt < nText) {
        uint32_t nCharacter = pText[nAt];
        size_t nEnd = nAt + 1;
        if (nCharacter == FULL_WIDTH_HEAD && nAt + 3 <= nText && IsTail(m_strText, nAt + 1) &&
            IsTail(m_strText, nAt + 2)) {
            nCharacter = 0xF000 | Tail(m_strText, nAt + 1) << 6 | Tail(m_strText, nAt + 2);
            nEnd = nAt + 3;
        } else if (nCharacter >= 0x80) {
            break;
        }
        uint16_t const nFolded = FoldBasic(nCharacter);
        if (nFolded >= 0x80 && nFolded != FOLD_BLANK) break;
        bool const bDigit = IsDigitToken(nFolded);
        anToken[n] = nFolded;
        anBegin[n] = static_cast<uint32_t>(nAt);
        anEnd[n] = static_cast<uint32_t>(nEnd);
        abInNumber[n] = bDigit && bBehindDigit;
        n += nFolded != FOLD_BLANK;
        m_nLast = nFolded == FOLD_BLANK ? 0 : LAST_IN_TEXT;
        bBehindDigit = bDigit;
        nAt = nEnd;
    }
    if (nAt == nRead) return;
    m_nDigits = bBehindDigit ? DIGITS_ARABIC : DIGITS_NONE;
    nCount = n;
    nRead = nAt;
}

// Any character.
void CFoldedText::ExtendByOne() {
    size_t nSize;
    uint32_t const nCharacter = Decode(m_strText, nRead, nSize);
    uint16_t const nFolded = nCharacter > 0xFFFF ? uint16_t{0} : FoldBasic(nCharacter);
    if (nCharacter > 0xFFFF || IsSpecial(nFolded)) return Special(nFolded, nCharacter, nSize);
    bool const bDigit = IsDigitToken(nFolded);
    Append(nFolded, static_cast<uint32_t>(nRead), static_cast<uint32_t>(nRead + nSize),
           bDigit && m_nDigits == DIGITS_ARABIC);
    nRead += nSize;
    m_nDigits = bDigit ? DIGITS_ARABIC : DIGITS_NONE;
    m_nLast = nCharacter;
}

void CFoldedText::Extend(size_t nTokens) {
    size_t const nWanted = std::min(nTokens + 1, LIMIT);
    while (nCount < nWanted && nRead < m_strText.size()) {
        size_t const nBefore = nRead;
        if (MayBeginKanji(m_strText[nRead]))
            ExtendByKanji(std::min(nWanted + KANJI_AHEAD, LIMIT));
        else
            ExtendByAscii(std::min(nWanted + ASCII_AHEAD, LIMIT));
        if (nRead == nBefore) ExtendByOne();
    }
    m_bEnd = nRead >= m_strText.size() || nCount >= LIMIT;
    anToken[nCount] = 0;
    abInNumber[nCount] = false;
}

// Whether a town begins at a token: nothing stands in front of it, or what ends a city's name.
bool CFoldedText::BeginsTown(size_t nToken) const {
    if (nToken == 0) return true;
    uint16_t const n = anToken[nToken - 1];
    return n == TOKEN_CITY || n == TOKEN_WARD || n == TOKEN_TOWN || n == TOKEN_VILLAGE;
}

// The character right in front, 0 where something was dropped in between.
uint32_t CFoldedText::Last() const {
    size_t nSize;
    return m_nLast == LAST_IN_TEXT ? Decode(m_strText, anBegin[nCount - 1], nSize) : m_nLast;
}

// Characters that are dropped, depend on their neighbours, or lie beyond the basic plane.
void CFoldedText::Special(uint16_t nFolded, uint32_t nCharacter, size_t nSize) {
    auto const nBegin = static_cast<uint32_t>(nRead);
    auto const nEnd = static_cast<uint32_t>(nRead + nSize);
    bool const bSelector = nFolded == FOLD_SELECTOR || IsSelectorBeyondBasic(nCharacter);
    if (nFolded >= FOLD_KANJI_DIGIT && nFolded <= FOLD_KANJI_UNIT + 2) {
        nRead += AppendNumber();
        m_nDigits = DIGITS_KANJI;
        m_nLast = nCharacter;
        return;
    }
    nRead = nEnd;
    if (bSelector) { // what stood in front still does
        if (nCount > 0 && anEnd[nCount - 1] == nBegin) anEnd[nCount - 1] = nEnd;
        return;
    }
    uint8_t const nDigits = m_nDigits;
    uint32_t const nLast = Last();
    m_nDigits = DIGITS_NONE;
    m_nLast = 0;
    switch (nFolded) {
    case FOLD_BLANK:
        return;
    case FOLD_AZA:
        return DropSize(nLast);
    case FOLD_VOICED:
    case FOLD_SEMI_VOICED: {
        uint16_t const nVoiced = Voiced(nLast, nFolded == FOLD_SEMI_VOICED);
        if (nVoiced == 0 || nCount == 0) return;
        anToken[nCount - 1] = nVoiced;
        anEnd[nCount - 1] = nEnd;
        return;
    }
    case FOLD_REPEAT: {
        bool const bCharacter = nLast != 0 && nCount > 0 && !IsDigitToken(anToken[nCount - 1]);
        Append(bCharacter ? anToken[nCount - 1] : static_cast<uint16_t>(nCharacter), nBegin, nEnd, false);
        break;
    }
    default:
        AppendBeyondBasic(nCharacter, nBegin, nEnd, nDigits);
    }
    m_nLast = nCharacter;
}

// 大字 and 小字 are one word: 大 and 小 go with the 字 behind them. A blank keeps them apart.
void CFoldedText::DropSize(uint32_t nLast) {
    if (nCount == 0 || (nLast != 0x5927 && nLast != 0x5C0F)) return;
    if ((m_nOptions & FOLD_KEEP_SIZE) != 0 && !BeginsTown(nCount - 1)) return;
    --nCount;
    bSizeDropped = true;
}

void CFoldedText::AppendBeyondBasic(uint32_t nCharacter, uint32_t nBegin, uint32_t nEnd, uint8_t nDigits) {
    if (nCharacter == MALFORMED) {
        auto const nByte = static_cast<unsigned char>(m_strText[nBegin]);
        return Append(static_cast<uint16_t>(TOKEN_MALFORMED + nByte), nBegin, nEnd, false);
    }
    if (CFoldedSupplementary const* const pFolded = FindSupplementary(nCharacter)) {
        bool const bDigit = IsDigitToken(pFolded->nFolded);
        Append(pFolded->nFolded, nBegin, nEnd, bDigit && nDigits == DIGITS_ARABIC);
        m_nDigits = bDigit ? DIGITS_ARABIC : DIGITS_NONE;
        return;
    }
    Append(static_cast<uint16_t>(0xD800 + ((nCharacter - 0x10000) >> 10)), nBegin, nEnd, false);
    Append(static_cast<uint16_t>(0xDC00 + (nCharacter & 0x3FF)), nBegin, nEnd, true);
}

// The kanji number, or the single kanji digit, at the place: its bytes.
size_t CFoldedText::AppendNumber() {
    auto const nBegin = static_cast<uint32_t>(nRead);
    CUnitNumber const number = ReadUnitNumber(m_strText, nRead);
    if (number.nBytes == 0) {
        size_t nSize = 0;
        int const nDigit = KanjiNumeral(m_strText, nRead, nSize);
        Append(static_cast<uint16_t>('0' + nDigit), nBegin, static_cast<uint32_t>(nRead + nSize),
               m_nDigits == DIGITS_KANJI);
        return nSize;
    }
    char szDigits[8];
    size_t nDigits = 0;
    for (uint32_t n = number.nValue; n != 0; n /= 10) szDigits[nDigits++] = static_cast<char>('0' + n % 10);
    for (size_t i = nDigits; i-- > 0;)
        Append(static_cast<uint16_t>(szDigits[i]), nBegin, static_cast<uint32_t>(nRead + number.nBytes),
               i + 1 != nDigits);
    return number.nBytes;
}

} // namespace qeadrs
