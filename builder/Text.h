// Text.h - text helpers of the compiler: encodings, widths, and cutting lists (UTF-8 throughout).
#ifndef QEADRS_BUILDER_TEXT_H
#define QEADRS_BUILDER_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qe {

inline bool BeginsWith(std::string_view str, std::string_view strHead) {
    return str.substr(0, strHead.size()) == strHead;
}
inline bool EndsWith(std::string_view str, std::string_view strTail) {
    return str.size() >= strTail.size() && str.substr(str.size() - strTail.size()) == strTail;
}
inline bool Contains(std::string_view str, std::string_view strPart) {
    return str.find(strPart) != std::string_view::npos;
}

// Bytes of the character that begins at str[0], 1 to 4; 1 also where no well-formed character begins. 0 at the end.
size_t CharacterSize(std::string_view str);

// Offset of the first byte that is not well-formed UTF-8 (surrogates and overlong forms included), npos when all is.
size_t FindInvalidUtf8(std::string_view str);

// Converts from an encoding that the system's converter knows ("CP932", "EUC-JISX0213"). On success returns true; on
// failure false, and *pnBad is the offset of the first byte that could not be converted.
bool ConvertToUtf8(std::string_view str, char const* pszEncoding, std::string& strUtf8, size_t* pnBad);

// Half-width katakana with their voicing marks, ASCII and the blank to their full-width forms; "-" to "−", "<" and
// ">" to "＜" and "＞": a reading as the UTF-8 edition of the official table writes it.
std::string ToFullWidth(std::string_view str);

// Splits at every "、" that does not stand inside 「」, ＜＞ or 〔〕.
std::vector<std::string> SplitList(std::string_view str);

// The text without its parts in 「」 (in a reading: ＜＞), brackets included.
std::string WithoutQuotes(std::string_view str);

// Whether a full-width digit stands at str[0].
bool BeginsWithDigit(std::string_view str);

// A name for comparison: digits and kanji numerals as one number, ヶケガが as ケ, ノの之 as の, without 大字 and 字.
std::string FoldTownName(std::string_view str);

// The text without its blanks, ASCII and ideographic.
std::string WithoutBlanks(std::string_view str);

// At most nLimit bytes of the text: cut at its last blank (ASCII or ideographic) within the limit, else at a
// character.
std::string CutName(std::string_view str, size_t nLimit);

} // namespace qe

#endif
