// FoldedText.h - a text in folded form: one token for each character that counts, and where it stands in the text.
#ifndef QEADRS_TEXT_FOLDEDTEXT_H
#define QEADRS_TEXT_FOLDEDTEXT_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace qeadrs {

// How a text is folded; 0 is as names are.
enum EFoldOption : uint32_t {
    FOLD_KEEP_SIZE =
        1, // 大字, 小字: 字 alone is dropped, "大" and "小" stay (a town that ends in 大, and 字 behind it)
};

// A byte that begins no well-formed UTF-8 character is a token of its own that no name has.
constexpr uint16_t TOKEN_MALFORMED = 0xE100; // plus the byte
// A character beyond the basic plane that does not fold into it is two tokens, as in UTF-16.
// Where a number in digits begins in kanji it is given as digits: "二十一", "二一", "２１" and "21" are '2', '1'.
inline bool IsDigitToken(uint16_t nToken) {
    return nToken >= '0' && nToken <= '9';
}

// The kind of folding of one character, a QETEXT_FOLD_xxx bit; 0 for one that folds to itself.
uint32_t FoldingKind(std::string_view strCharacter);

// The first LIMIT tokens of a text, folded as far as they are asked for.
class CFoldedText {
  public:
    static constexpr size_t LIMIT = 255;

    uint16_t anToken[LIMIT + 8]; // 0 behind the last one
    uint32_t anBegin[LIMIT + 8]; // byte offset of the token's character, counted from where folding began ...
    uint32_t anEnd[LIMIT + 8];   // ... and behind it (behind the whole number, for a number's tokens)
    bool abInNumber[LIMIT + 8];  // the token goes on a number: no name may end in front of it
    size_t nCount = 0;           // tokens so far
    size_t nRead = 0;            // bytes that they stand for
    bool bSizeDropped = false;   // 大 or 小 was dropped with a 字

    // Folds the whole text, at most LIMIT tokens.
    void Fold(std::string_view strText, uint32_t nOptions = 0) {
        Begin(strText, nOptions);
        Has(LIMIT);
    }

    // Folds nothing yet.
    void Begin(std::string_view strText, uint32_t nOptions = 0);

    // Whether there are nTokens tokens; folds them, and one more, when they are not folded yet.
    bool Has(size_t nTokens) {
        if (nTokens >= nCount && !m_bEnd) Extend(nTokens);
        return nTokens <= nCount;
    }

    // Whether a name that ends behind nTokens tokens may end there. REQUIRES: Has(nTokens).
    bool MayEnd(size_t nTokens) const { return !abInNumber[nTokens]; }

    // The text that was given, and its bytes from one token to the one before another.
    std::string_view Text() const { return m_strText; }
    std::string_view Bytes(size_t nFirst, size_t nEnd) const {
        return nFirst >= nEnd ? std::string_view()
                              : m_strText.substr(anBegin[nFirst], anEnd[nEnd - 1] - anBegin[nFirst]);
    }

  private:
    void Extend(size_t nTokens);
    void ExtendByKanji(size_t nWanted);
    void ExtendByAscii(size_t nWanted);
    void ExtendByOne();
    uint32_t Last() const;
    bool BeginsTown(size_t nToken) const;
    void DropSize(uint32_t nLast);
    void AppendBeyondBasic(uint32_t nCharacter, uint32_t nBegin, uint32_t nEnd, uint8_t nDigits);
    void Special(uint16_t nFolded, uint32_t nCharacter, size_t nSize);
    void Append(uint16_t nToken, uint32_t nBegin, uint32_t nEnd, bool bInNumber) {
        anToken[nCount] = nToken;
        anBegin[nCount] = nBegin;
        anEnd[nCount] = nEnd;
        abInNumber[nCount++] = bInNumber;
    }
    size_t AppendNumber();

    std::string_view m_strText;
    uint32_t m_nOptions = 0;
    uint32_t m_nLast = 0;  // the character right in front, 0 when it was dropped or there is none, or LAST_IN_TEXT
    uint8_t m_nDigits = 0; // script of the digit right in front: 0 no digit, 1 Arabic, 2 kanji
    bool m_bEnd = true;
};

} // namespace qeadrs

#endif
