// Text.cpp - text helpers of the compiler.
#include "builder/Text.h"

#include <iconv.h>
#include <utf8proc.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace qe {

namespace {

constexpr std::string_view IDEOGRAPHIC_SPACE = "　";

// The character at the head of the text, -1 where none is well-formed.
int32_t DecodeCharacter(std::string_view str, size_t& nSize) {
    utf8proc_int32_t nCode = -1;
    utf8proc_ssize_t const nRead =
        utf8proc_iterate(reinterpret_cast<utf8proc_uint8_t const*>(str.data()),
                         static_cast<utf8proc_ssize_t>(std::min<size_t>(str.size(), 4)), &nCode);
    nSize = nRead > 0 ? static_cast<size_t>(nRead) : std::min<size_t>(str.size(), 1);
    return nRead > 0 ? nCode : -1;
}

void AppendCharacter(std::string& str, int32_t nCode) {
    utf8proc_uint8_t abCharacter[4];
    utf8proc_ssize_t const nSize = utf8proc_encode_char(nCode, abCharacter);
    str.append(reinterpret_cast<char const*>(abCharacter), static_cast<size_t>(nSize));
}

std::string ComposeCompatible(std::string const& str) {
    std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> const pMapped(
        utf8proc_NFKC(reinterpret_cast<utf8proc_uint8_t const*>(str.c_str())), &std::free);
    return pMapped == nullptr ? str : reinterpret_cast<char const*>(pMapped.get());
}

// The value of a digit, in any of the widths and scripts that addresses use; -1 for all else.
int DigitValue(int32_t nCode) {
    if (nCode >= '0' && nCode <= '9') return nCode - '0';
    if (nCode >= 0xFF10 && nCode <= 0xFF19) return nCode - 0xFF10;
    constexpr int32_t KANJI[10] = {0x3007, 0x4E00, 0x4E8C, 0x4E09, 0x56DB, 0x4E94, 0x516D, 0x4E03, 0x516B, 0x4E5D};
    auto const* const p = std::find(std::begin(KANJI), std::end(KANJI), nCode);
    return p == std::end(KANJI) ? -1 : static_cast<int>(p - KANJI);
}

// 十, 百 and 千, 0 for all else.
unsigned long UnitValue(int32_t nCode) {
    return nCode == 0x5341 ? 10 : nCode == 0x767E ? 100 : nCode == 0x5343 ? 1000 : 0;
}

// Reads a run of digits and units ("２１", "二十一", "二一") from the front of the text; 0 bytes when there is none.
size_t ReadNumber(std::string_view str, unsigned long& nNumber) {
    unsigned long nSum = 0;
    unsigned long nDigits = 0;
    bool bDigits = false;
    size_t nRead = 0;
    while (nRead < str.size()) {
        size_t nSize;
        int32_t const nCode = DecodeCharacter(str.substr(nRead), nSize);
        int const nDigit = DigitValue(nCode);
        unsigned long const nUnit = UnitValue(nCode);
        if (nDigit >= 0) {
            nDigits = nDigits * 10 % 1000000007 + static_cast<unsigned long>(nDigit);
            bDigits = true;
        } else if (nUnit != 0) {
            nSum += (bDigits ? nDigits : 1) * nUnit;
            nDigits = 0;
            bDigits = false;
        } else {
            break;
        }
        nRead += nSize;
    }
    nNumber = nSum + nDigits;
    return nRead;
}

} // namespace

size_t CharacterSize(std::string_view str) {
    size_t nSize = 0;
    if (!str.empty()) DecodeCharacter(str, nSize);
    return nSize;
}

size_t FindInvalidUtf8(std::string_view str) {
    for (size_t nPos = 0; nPos < str.size();) {
        if (static_cast<unsigned char>(str[nPos]) < 0x80) {
            ++nPos;
            continue;
        }
        size_t nSize;
        if (DecodeCharacter(str.substr(nPos), nSize) < 0) return nPos;
        nPos += nSize;
    }
    return std::string_view::npos;
}

bool ConvertToUtf8(std::string_view str, char const* pszEncoding, std::string& strUtf8, size_t* pnBad) {
    struct CConverter {
        iconv_t handle;
        ~CConverter() {
            if (handle != reinterpret_cast<iconv_t>(-1)) iconv_close(handle);
        }
    } const converter{iconv_open("UTF-8", pszEncoding)};
    *pnBad = 0;
    if (converter.handle == reinterpret_cast<iconv_t>(-1)) return false;
    strUtf8.resize(str.size() * 3 + 16); // no character of these encodings grows to more than three bytes a byte
    char* pIn = const_cast<char*>(str.data());
    size_t nIn = str.size();
    char* pOut = strUtf8.data();
    size_t nOut = strUtf8.size();
    size_t const nFailed = iconv(converter.handle, &pIn, &nIn, &pOut, &nOut);
    *pnBad = str.size() - nIn;
    strUtf8.resize(strUtf8.size() - nOut);
    return nFailed != static_cast<size_t>(-1) && nIn == 0;
}

std::string ToFullWidth(std::string_view str) {
    std::string strWide;
    std::string const strComposed = ComposeCompatible(std::string(str));
    for (size_t nPos = 0; nPos < strComposed.size();) {
        size_t nSize;
        int32_t const nCode = DecodeCharacter(std::string_view(strComposed).substr(nPos), nSize);
        if (nCode == ' ')
            strWide += IDEOGRAPHIC_SPACE;
        else if (nCode == '-')
            strWide += "−"; // U+2212, the official table's dash, not the full-width form of the hyphen
        else if (nCode > ' ' && nCode <= '~')
            AppendCharacter(strWide, nCode + 0xFEE0);
        else
            strWide.append(strComposed, nPos, nSize);
        nPos += nSize;
    }
    return strWide;
}

std::vector<std::string> SplitList(std::string_view str) {
    std::vector<std::string> vItem(1);
    int nDepth = 0;
    for (size_t nPos = 0; nPos < str.size();) {
        std::string_view const strCharacter = str.substr(nPos, CharacterSize(str.substr(nPos)));
        nPos += strCharacter.size();
        if (strCharacter == "「" || strCharacter == "＜" || strCharacter == "〔") ++nDepth;
        if (strCharacter == "」" || strCharacter == "＞" || strCharacter == "〕") --nDepth;
        if (strCharacter == "、" && nDepth <= 0)
            vItem.emplace_back();
        else
            vItem.back() += strCharacter;
    }
    return vItem;
}

std::string WithoutQuotes(std::string_view str) {
    std::string strOuter;
    int nDepth = 0;
    for (size_t nPos = 0; nPos < str.size();) {
        std::string_view const strCharacter = str.substr(nPos, CharacterSize(str.substr(nPos)));
        nPos += strCharacter.size();
        if (strCharacter == "「" || strCharacter == "＜") ++nDepth;
        if (nDepth <= 0) strOuter += strCharacter;
        if (strCharacter == "」" || strCharacter == "＞") --nDepth;
    }
    return strOuter;
}

bool BeginsWithDigit(std::string_view str) {
    return str >= "０" && str.substr(0, 3) <= "９" && str.size() >= 3;
}

std::string FoldTownName(std::string_view str) {
    std::string strFolded;
    for (size_t nPos = 0; nPos < str.size();) {
        std::string_view const strRest = str.substr(nPos);
        unsigned long nNumber = 0;
        if (size_t const nDigits = ReadNumber(strRest, nNumber)) {
            strFolded += std::to_string(nNumber);
            nPos += nDigits;
            continue;
        }
        std::string_view const strCharacter = strRest.substr(0, CharacterSize(strRest));
        nPos += strCharacter.size();
        if (BeginsWith(strRest, "大字"))
            nPos += std::string_view("字").size();
        else if (strCharacter == "字")
            continue;
        else if (strCharacter == "ヶ" || strCharacter == "ケ" || strCharacter == "ガ" || strCharacter == "が")
            strFolded += "ケ";
        else if (strCharacter == "ノ" || strCharacter == "の" || strCharacter == "之")
            strFolded += "の";
        else
            strFolded += strCharacter;
    }
    return strFolded;
}

std::string WithoutBlanks(std::string_view str) {
    std::string strKept;
    while (!str.empty()) {
        size_t const nSize = CharacterSize(str);
        if (str[0] != ' ' && !BeginsWith(str, IDEOGRAPHIC_SPACE)) strKept += str.substr(0, nSize);
        str.remove_prefix(nSize);
    }
    return strKept;
}

std::string CutName(std::string_view str, size_t nLimit) {
    if (str.size() <= nLimit) return std::string(str);
    size_t nCut = 0;   // end of the last whole character within the limit
    size_t nBlank = 0; // begin of the last blank within the limit
    while (nCut < str.size()) {
        std::string_view const strRest = str.substr(nCut);
        // A blank at the limit itself ends a name that fits.
        if (nCut > 0 && nCut <= nLimit && (strRest[0] == ' ' || BeginsWith(strRest, IDEOGRAPHIC_SPACE)))
            nBlank = nCut;
        size_t const nNext = nCut + CharacterSize(strRest);
        if (nNext > nLimit) break;
        nCut = nNext;
    }
    return std::string(str.substr(0, nBlank != 0 ? nBlank : nCut));
}

} // namespace qe
