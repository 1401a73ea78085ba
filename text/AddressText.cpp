// AddressText.cpp - names in folded form, for people.
#include "text/AddressText.h"

#include "text/FoldedText.h"

namespace qeadrs {

namespace {

void AppendUtf8(std::string& str, uint32_t n) {
    if (n < 0x80) {
        str += static_cast<char>(n);
    } else if (n < 0x800) {
        str += static_cast<char>(0xC0 | n >> 6);
        str += static_cast<char>(0x80 | (n & 0x3F));
    } else if (n > 0xFFFF) {
        str += static_cast<char>(0xF0 | n >> 18);
        str += static_cast<char>(0x80 | (n >> 12 & 0x3F));
        str += static_cast<char>(0x80 | (n >> 6 & 0x3F));
        str += static_cast<char>(0x80 | (n & 0x3F));
    } else {
        str += static_cast<char>(0xE0 | n >> 12);
        str += static_cast<char>(0x80 | (n >> 6 & 0x3F));
        str += static_cast<char>(0x80 | (n & 0x3F));
    }
}

} // namespace

std::string FoldName(std::string_view strName) {
    CFoldedText folded;
    folded.Fold(strName);
    std::string str;
    for (size_t i = 0; i < folded.nCount; ++i) {
        uint32_t const n = folded.anToken[i];
        bool const bPair = n >= 0xD800 && n < 0xDC00 && i + 1 < folded.nCount;
        AppendUtf8(str, bPair ? 0x10000 + ((n & 0x3FF) << 10) + (folded.anToken[++i] & 0x3FFu) : n);
    }
    return str;
}

} // namespace qeadrs
