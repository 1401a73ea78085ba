// NameTable.cpp - a hash table over the names of a level; the first of equal names is kept.
#include "dic/NameTable.h"

#include "dic/Suffix.h"

#include <algorithm>

namespace {

// FNV-1a, whose hash of a beginning leads to that of the next longer one.
constexpr uint64_t HASH_START = 0xCBF29CE484222325U;

uint64_t HashOn(uint64_t nHash, char c) {
    return (nHash ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
}

// Its upper bits are the better ones.
size_t Mixed(uint64_t nHash) {
    return static_cast<size_t>(nHash ^ nHash >> 32);
}

// What tells most names apart that come to the same slot.
uint32_t Tag(uint64_t nHash) {
    return static_cast<uint32_t>(nHash >> 52);
}

uint64_t HashName(char const* pszName, size_t nLength) {
    uint64_t nHash = HASH_START;
    for (size_t n = 0; n < nLength; ++n) nHash = HashOn(nHash, pszName[n]);
    return nHash;
}

} // namespace

bool CNameTable::Make(CImageView const& image, CNodeRange const& level, EParts nParts) {
    m_vSlot.Clear();
    m_nFirst = level.nFirst;
    if (level.Count() >= PLACES) return false;
    size_t nSlots = 16;
    while (nSlots < level.Count()) nSlots *= 2;
    // Names that many nodes share leave room; where they do not, a table of twice the size does.
    for (int nTry = 0; nTry < 2; ++nTry, nSlots *= 2) {
        m_vLength[0] = m_vLength[1] = m_nLongestName = 0;
        if (m_vSlot.Make(nSlots) && Fill(image, level, nParts)) return true;
    }
    m_vSlot.Clear();
    return false;
}

bool CNameTable::Fill(CImageView const& image, CNodeRange const& level, EParts nParts) {
    for (uint32_t n = 0; n < level.Count(); ++n) {
        char const* const pszName = image.At(image.Node(level.nFirst + n)->nName);
        if (pszName == nullptr || *pszName == '\0') continue;
        size_t const nLength = strnlen(pszName, LONGEST_NAME + 1);
        unsigned short nType = 0;
        if (nLength > LONGEST_NAME || (nParts == InOnePart && FrontPartLength(pszName, &nType) != 0)) return false;
        uint64_t const nHash = HashName(pszName, nLength);
        uint32_t const* const pSlot = FindSlot(image, nHash, pszName, nLength);
        if (pSlot == nullptr) return false;
        if (*pSlot == 0) m_vSlot[static_cast<size_t>(pSlot - m_vSlot.Data())] = Tag(nHash) * PLACES + n + 1;
        m_nLongestName = std::max(m_nLongestName, nLength);
        m_vLength[nLength / 64] |= uint64_t{1} << nLength % 64;
    }
    return true;
}

bool CNameTable::IsName(CImageView const& image, uint32_t nSlot, char const* psz, size_t nLength) const {
    char const* const pszName = image.At(image.Node(m_nFirst + nSlot % PLACES - 1)->nName);
    return std::strncmp(pszName, psz, nLength) == 0 && pszName[nLength] == '\0';
}

// The slot of the name, or the free one where it would be; null when there is neither near its place.
uint32_t const* CNameTable::FindSlot(CImageView const& image, uint64_t nHash, char const* psz, size_t nLength) const {
    size_t const nMask = m_vSlot.Size() - 1;
    for (unsigned nProbe = 0; nProbe < MOST_PROBES; ++nProbe) {
        uint32_t const* const pSlot = m_vSlot.Data() + ((Mixed(nHash) + nProbe) & nMask);
        if (*pSlot == 0 || (*pSlot / PLACES == Tag(nHash) && IsName(image, *pSlot, psz, nLength))) return pSlot;
    }
    return nullptr;
}

CNameTable::CFound CNameTable::Find(CImageView const& image, char const* pszText) const {
    CFound found;
    uint64_t nHash = HASH_START;
    for (size_t nLength = 1; nLength <= m_nLongestName && pszText[nLength - 1] != '\0'; ++nLength) {
        nHash = HashOn(nHash, pszText[nLength - 1]);
        if ((m_vLength[nLength / 64] >> nLength % 64 & 1) == 0) continue;
        uint32_t const* const pSlot = FindSlot(image, nHash, pszText, nLength);
        if (pSlot == nullptr || *pSlot == 0) continue;
        found.longest = {m_nFirst + *pSlot % PLACES - 1, nLength};
        if (found.longest.nNode < found.first.nNode) found.first = found.longest;
    }
    return found;
}
