// Text.h - texts as people type them and as a terminal shows them. All texts are UTF-8.
#ifndef QEADRS_CLI_TEXT_H
#define QEADRS_CLI_TEXT_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace qe {

// The digits of a postal code in any dress: "１００－０００１", "〒100 0001" and "100ー0001" are "1000001".
// Full-width forms count as their ASCII forms; postal marks, hyphens, dashes, long vowel marks and blanks are
// dropped. Nothing when any other character is there (a "〜" or a comma may well mean two codes), when no digit is,
// and when it is not UTF-8.
std::optional<std::string> FoldCode(std::string_view strText);

// Nothing but blanks, of any width; also the empty text.
bool IsBlank(std::string_view strText);

bool IsUtf8(std::string_view strText);

// A byte that begins no character of UTF-8, but stands within one.
inline bool IsWithinCharacter(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

// The text without the blanks before and behind it.
std::string_view Trim(std::string_view strText);

// The text without its ideographic spaces (U+3000).
std::string DropWideBlanks(std::string_view strText);

// The same text fit for one cell of a line: a control character or line separator becomes a blank, a byte that is not
// UTF-8 becomes U+FFFD.
std::string Clean(std::string_view strText);

// A text for a message: clean, cut after 40 characters; and the same in quotation marks.
std::string Shorten(std::string_view strText);
std::string Quote(std::string_view strText);

// A number as people read it: "1,234".
std::string Grouped(size_t n);

// The text as a running filter compares it: full-width and half-width forms as the usual ones, hiragana and small kana
// as large katakana, letters small. "" when it is not UTF-8.
std::string FoldForFilter(std::string_view strText);

// As many characters of the text as fit into nWidth columns of a terminal. REQUIRES: valid UTF-8.
std::string_view CutToWidth(std::string_view strText, size_t nWidth);

// The text without its last character.
std::string_view DropLast(std::string_view strText);

// Columns that a text takes on a terminal: east-asian wide characters two, combining marks none, all others one.
// REQUIRES: valid UTF-8, as Clean returns it.
size_t DisplayWidth(std::string_view strText);

} // namespace qe

#endif
