// CheckImage.cpp - measuring all texts of an untrusted image in one pass, and reading its records.
#include "builder/CheckImage.h"

#include "builder/Text.h"

namespace qe {

namespace {

constexpr int MOST_LEVELS = 16; // of a path that is told

constexpr size_t MOST_SHOWN = 130; // bytes of a name

constexpr size_t WORD_BITS = 64;

unsigned LowestBit(uint64_t n) { // REQUIRES: not 0
    return static_cast<unsigned>(__builtin_ctzll(n));
}

// "?" for control characters, which would reach the terminal, and for what is not UTF-8.
std::string Shown(std::string_view str) {
    std::string strShown;
    for (size_t nSize; !str.empty(); str.remove_prefix(nSize)) {
        nSize = CharacterSize(str);
        unsigned char const c = static_cast<unsigned char>(str[0]);
        bool const bControl = c < 0x20 || c == 0x7F || (c == 0xC2 && nSize == 2 && str[1] < '\xA0');
        strShown += bControl || (nSize == 1 && c >= 0x80) ? "?" : str.substr(0, nSize);
    }
    return strShown;
}

bool IsContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

} // namespace

CTextEnds::CTextEnds(std::string_view strArea)
    : m_nSize(strArea.size()), m_vNul(m_nSize / WORD_BITS + 1), m_vNext(m_vNul.size()) {
    for (size_t n = 0; n < m_nSize; ++n)
        if (strArea[n] == '\0') m_vNul[n / WORD_BITS] |= uint64_t{1} << n % WORD_BITS;
    uint32_t nNext = static_cast<uint32_t>(m_vNul.size());
    for (size_t n = m_vNul.size(); n-- > 0; m_vNext[n] = nNext)
        if (m_vNul[n] != 0) nNext = static_cast<uint32_t>(n);
}

size_t CTextEnds::Find(size_t nOffset) const {
    size_t nWord = nOffset / WORD_BITS;
    uint64_t nBits = m_vNul[nWord] >> nOffset % WORD_BITS;
    if (nBits != 0) return nOffset + LowestBit(nBits);
    nWord = nWord + 1 < m_vNext.size() ? m_vNext[nWord + 1] : m_vNul.size();
    return nWord < m_vNul.size() ? nWord * WORD_BITS + LowestBit(m_vNul[nWord]) : m_nSize;
}

CCheckImage::CCheckImage(std::vector<unsigned char> const& vByte)
    : m_vByte(vByte),
      m_strArea(reinterpret_cast<char const*>(vByte.data()) + Word(HDR_STRING_AREA), Word(HDR_STRING_SIZE)),
      m_ends(m_strArea),
      m_vBad(m_strArea.size()) {
    for (size_t nStart = 0, nEnd; nStart < m_strArea.size(); nStart = nEnd + 1) {
        nEnd = m_ends.Find(nStart);
        if (nEnd < m_strArea.size())
            m_vBad[nEnd] = FindInvalidUtf8(m_strArea.substr(nStart, nEnd - nStart)) != std::string_view::npos;
    }
}

std::optional<std::string_view> CCheckImage::Text(uint64_t nOffset) const {
    if (nOffset >= m_strArea.size()) return std::nullopt;
    size_t const nStart = static_cast<size_t>(nOffset), nEnd = m_ends.Find(nStart);
    return nEnd < m_strArea.size() ? std::optional(m_strArea.substr(nStart, nEnd - nStart)) : std::nullopt;
}

bool CCheckImage::IsUtf8(uint64_t nOffset) const {
    size_t const nStart = static_cast<size_t>(nOffset);
    return !m_vBad[m_ends.Find(nStart)] && !IsContinuation(m_strArea[nStart]);
}

std::optional<uint32_t> CCheckImage::LongAt(uint64_t nOffset) const {
    if (nOffset > m_strArea.size() || m_strArea.size() - nOffset < sizeof(uint32_t)) return std::nullopt;
    return ReadWord(reinterpret_cast<unsigned char const*>(m_strArea.data()) + nOffset);
}

std::string CCheckImage::Path(uint32_t nNode) const {
    std::string strPath;
    for (int n = 0; n < MOST_LEVELS && nNode < NodeCount(); ++n) {
        auto const strName = Text(Node(nNode).nName);
        std::string const strShown = !strName ? "?" : strName->empty() ? "-" : Shown(strName->substr(0, MOST_SHOWN));
        strPath = strPath.empty() ? strShown : strShown + ' ' + strPath;
        if (Node(nNode).nParent >= nNode) break; // none, or parents that may go in a circle
        nNode = Node(nNode).nParent;
    }
    return strPath;
}

} // namespace qe
