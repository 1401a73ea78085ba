// Text.cpp - folding, cleaning and measuring of UTF-8 texts, over utf8proc.
#include "cli/Text.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>

#include <utf8proc.h>

namespace qe {

namespace {

constexpr utf8proc_int32_t POSTAL_MARK = 0x3012;      // 〒
constexpr utf8proc_int32_t POSTAL_MARK_FACE = 0x3020; // 〠
constexpr utf8proc_int32_t LONG_VOWEL = 0x30FC;       // ー, what the hyphen key types in a Japanese input method
constexpr utf8proc_int32_t MINUS = 0x2212;            // −
constexpr utf8proc_int32_t BOX_LINE = 0x2500;         // ─, and its heavy form behind it
constexpr utf8proc_int32_t REPLACEMENT = 0xFFFD;
constexpr int LONGEST_QUOTE = 40;

// Takes the first character off a text; -1 for a byte that begins none, and takes that byte alone.
utf8proc_int32_t TakeCharacter(std::string_view& strText) {
    utf8proc_int32_t nChar = -1;
    utf8proc_ssize_t const nBytes = utf8proc_iterate(reinterpret_cast<utf8proc_uint8_t const*>(strText.data()),
                                                     static_cast<utf8proc_ssize_t>(strText.size()), &nChar);
    strText.remove_prefix(nBytes > 0 ? static_cast<size_t>(nBytes) : 1);
    return nBytes > 0 ? nChar : -1;
}

void Append(std::string& str, utf8proc_int32_t nChar) {
    utf8proc_uint8_t abChar[4];
    utf8proc_ssize_t const nBytes = utf8proc_encode_char(nChar, abChar);
    str.append(reinterpret_cast<char const*>(abChar), static_cast<size_t>(nBytes));
}

// The compatibility form of a text: full-width and half-width forms become the usual ones. Nothing when not UTF-8.
std::optional<std::string> Normalise(std::string_view strText) {
    utf8proc_uint8_t* pResult = nullptr;
    utf8proc_ssize_t const nBytes = utf8proc_map(
        reinterpret_cast<utf8proc_uint8_t const*>(strText.data()), static_cast<utf8proc_ssize_t>(strText.size()),
        &pResult, static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPAT | UTF8PROC_COMPOSE));
    std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> const pOwner(pResult, &std::free);
    if (nBytes == UTF8PROC_ERROR_NOMEM) throw std::bad_alloc();
    if (nBytes < 0) return std::nullopt;
    return std::string(reinterpret_cast<char const*>(pResult), static_cast<size_t>(nBytes));
}

// Cf has no width: byte order marks, joiners and direction marks come along when a code is copied from a web page.
bool IsSpace(utf8proc_int32_t nChar) {
    utf8proc_category_t const nCategory = utf8proc_category(nChar);
    return nCategory == UTF8PROC_CATEGORY_ZS || nCategory == UTF8PROC_CATEGORY_CF || nChar == '\t' || nChar == '\r';
}

// REQUIRES: nChar is in its compatibility form.
bool IsDress(utf8proc_int32_t nChar) {
    return IsSpace(nChar) || nChar == '-' || (nChar >= 0x2010 && nChar <= 0x2015) || nChar == MINUS ||
           nChar == LONG_VOWEL || nChar == BOX_LINE || nChar == BOX_LINE + 1 || nChar == POSTAL_MARK ||
           nChar == POSTAL_MARK_FACE;
}

// The leading bytes of a text that are printable ASCII and characters from U+3000 to U+9FFF, among which there are no
// control characters and no line separators: nearly always all of it, and to see that takes a fraction of the time.
size_t PlainBytes(std::string_view strText) {
    auto const Byte = [strText](size_t n) { return static_cast<unsigned char>(strText[n]); };
    size_t n = 0;
    while (n < strText.size()) {
        if (Byte(n) >= 0x20 && Byte(n) <= 0x7E)
            ++n;
        else if (Byte(n) >= 0xE3 && Byte(n) <= 0xE9 && strText.size() - n >= 3 && IsWithinCharacter(strText[n + 1]) &&
                 IsWithinCharacter(strText[n + 2]))
            n += 3;
        else
            break;
    }
    return n;
}

// Hiragana as katakana, small kana as large ones: ょ and ョ are ヨ.
utf8proc_int32_t FoldKana(utf8proc_int32_t nChar) {
    constexpr utf8proc_int32_t TO_KATAKANA = 0x60;
    if (nChar >= 0x3041 && nChar <= 0x3096) nChar += TO_KATAKANA;
    switch (nChar) {
    case 0x30A1: // ァ ィ ゥ ェ ォ ッ ャ ュ ョ ヮ, each in front of its large form
    case 0x30A3:
    case 0x30A5:
    case 0x30A7:
    case 0x30A9:
    case 0x30C3:
    case 0x30E3:
    case 0x30E5:
    case 0x30E7:
    case 0x30EE:
        return nChar + 1;
    case 0x30F5: // ヵ
        return 0x30AB;
    case 0x30F6: // ヶ
        return 0x30B1;
    default:
        return nChar;
    }
}

} // namespace

std::optional<std::string> FoldCode(std::string_view strText) {
    std::optional<std::string> const strPlain = Normalise(strText);
    if (!strPlain) return std::nullopt;
    std::string strCode;
    for (std::string_view strRest = *strPlain; !strRest.empty();) {
        utf8proc_int32_t const nChar = TakeCharacter(strRest);
        if (nChar >= '0' && nChar <= '9')
            strCode += static_cast<char>(nChar);
        else if (!IsDress(nChar))
            return std::nullopt;
    }
    return strCode.empty() ? std::nullopt : std::optional(strCode);
}

bool IsUtf8(std::string_view strText) {
    strText.remove_prefix(PlainBytes(strText));
    while (!strText.empty())
        if (TakeCharacter(strText) < 0) return false;
    return true;
}

bool IsBlank(std::string_view strText) {
    while (!strText.empty()) {
        utf8proc_int32_t const nChar = TakeCharacter(strText);
        if (nChar < 0 || !IsSpace(nChar)) return false;
    }
    return true;
}

std::string_view Trim(std::string_view strText) {
    while (!strText.empty()) {
        std::string_view strRest = strText;
        utf8proc_int32_t const nChar = TakeCharacter(strRest);
        if (nChar < 0 || !IsSpace(nChar)) break;
        strText = strRest;
    }
    while (!strText.empty()) {
        // A character begins where no byte within one stands: whatever is wrong with the text in front of it.
        size_t nLast = strText.size() - 1;
        while (nLast > 0 && strText.size() - nLast < 4 && IsWithinCharacter(strText[nLast])) --nLast;
        std::string_view strRest = strText.substr(nLast);
        utf8proc_int32_t const nChar = TakeCharacter(strRest);
        if (nChar < 0 || !strRest.empty() || !IsSpace(nChar)) break;
        strText.remove_suffix(strText.size() - nLast);
    }
    return strText;
}

std::string DropWideBlanks(std::string_view strText) {
    constexpr std::string_view WIDE_BLANK = "\u3000"; // its bytes never begin within another character
    std::string str(strText);
    for (size_t n = str.find(WIDE_BLANK); n != std::string::npos; n = str.find(WIDE_BLANK, n))
        str.erase(n, WIDE_BLANK.size());
    return str;
}

std::string Clean(std::string_view strText) {
    std::string strClean(strText.substr(0, PlainBytes(strText)));
    strText.remove_prefix(strClean.size());
    while (!strText.empty()) {
        utf8proc_int32_t const nChar = TakeCharacter(strText);
        utf8proc_category_t const nCategory = utf8proc_category(nChar);
        bool const bBlank = nCategory == UTF8PROC_CATEGORY_CC || nCategory == UTF8PROC_CATEGORY_ZL ||
                            nCategory == UTF8PROC_CATEGORY_ZP;
        Append(strClean, nChar < 0 ? REPLACEMENT : bBlank ? ' ' : nChar);
    }
    return strClean;
}

std::string Shorten(std::string_view strText) {
    std::string const strClean = Clean(strText);
    std::string_view strRest = strClean;
    for (int i = 0; i < LONGEST_QUOTE && !strRest.empty(); ++i) TakeCharacter(strRest);
    return strClean.substr(0, strClean.size() - strRest.size()) + (strRest.empty() ? "" : "...");
}

std::string Quote(std::string_view strText) {
    return '"' + Shorten(strText) + '"';
}

std::string Grouped(size_t n) {
    std::string str = std::to_string(n);
    for (size_t i = str.size(); i > 3;) str.insert(i -= 3, 1, ',');
    return str;
}

std::string FoldForFilter(std::string_view strText) {
    std::string strFolded;
    std::string const strPlain = Normalise(strText).value_or("");
    for (std::string_view strRest = strPlain; !strRest.empty();)
        Append(strFolded, FoldKana(utf8proc_tolower(TakeCharacter(strRest))));
    return strFolded;
}

size_t DisplayWidth(std::string_view strText) {
    size_t nWidth = 0;
    while (!strText.empty()) nWidth += static_cast<size_t>(utf8proc_charwidth(TakeCharacter(strText)));
    return nWidth;
}

std::string_view CutToWidth(std::string_view strText, size_t nWidth) {
    std::string_view strRest = strText;
    for (size_t nUsed = 0; !strRest.empty();) {
        std::string_view strBehind = strRest;
        nUsed += static_cast<size_t>(utf8proc_charwidth(TakeCharacter(strBehind)));
        if (nUsed > nWidth) break;
        strRest = strBehind;
    }
    return strText.substr(0, strText.size() - strRest.size());
}

std::string_view DropLast(std::string_view strText) {
    size_t nLast = strText.size();
    for (std::string_view strRest = strText; !strRest.empty(); TakeCharacter(strRest))
        nLast = strText.size() - strRest.size();
    return strText.substr(0, nLast);
}

} // namespace qe
