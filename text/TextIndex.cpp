// TextIndex.cpp - binding an index: nothing outside of it will be read.
#include "text/TextIndex.h"

#include "text/FoldTable.h"

namespace qeadrs {

namespace {

// Whether nCount records of nRecord bytes lie in nSize bytes from nOffset on, behind the header and aligned.
bool Lies(uint32_t nOffset, uint64_t nCount, size_t nRecord, size_t nSize) {
    if (nOffset % 4 != 0 || nOffset < TXT_BYTES || nOffset > nSize) return false;
    return nCount <= (nSize - nOffset) / nRecord;
}

// REQUIRES: p is aligned for a word, as all of these records are.
template <typename T>
T const* RecordsAt(unsigned char const* p) {
    return static_cast<T const*>(static_cast<void const*>(p));
}

} // namespace

bool CTextIndex::Bind(unsigned char const* p, size_t nSize) {
    m_pHeader = nullptr;
    if (p == nullptr || nSize < TXT_BYTES || reinterpret_cast<uintptr_t>(p) % alignof(uint32_t) != 0) return false;
    auto const* const pHeader = RecordsAt<uint32_t>(p);
    if (pHeader[TXT_MAGIC] != TEXT_MAGIC || pHeader[TXT_FOLDINGS] != FOLD_VERSION) return false;
    if (pHeader[TXT_LAYOUT] != TEXT_LAYOUT || pHeader[TXT_SIZE] < TXT_BYTES || pHeader[TXT_SIZE] > nSize)
        return false;
    uint32_t const nBits = pHeader[TXT_CITY_BITS];
    size_t const nIndex = pHeader[TXT_SIZE];
    if (nBits == 0 || nBits > 28 || pHeader[TXT_LAST_COUNT] > TEXT_LAST_TOKENS) return false;
    if (!Lies(pHeader[TXT_CITY_SLOTS], uint64_t{1} << nBits, sizeof(tagTEXTSLOT), nIndex)) return false;
    if (!Lies(pHeader[TXT_CITIES], pHeader[TXT_CITY_COUNT], sizeof(tagTEXTCITY), nIndex)) return false;
    if (!Lies(pHeader[TXT_TOWN_SLOTS], pHeader[TXT_TOWN_COUNT], sizeof(tagTEXTSLOT), nIndex)) return false;
    if (!Lies(pHeader[TXT_RULES], pHeader[TXT_RULE_COUNT], sizeof(tagAREARULE), nIndex)) return false;
    uint32_t const nPairBits = pHeader[TXT_PAIR_BITS];
    if (nPairBits < PAIR_BITS_FEWEST || nPairBits > PAIR_BITS_MOST) return false;
    if (!Lies(pHeader[TXT_PAIRS], uint64_t{1} << (nPairBits - PAIR_BITS_FEWEST), sizeof(uint32_t), nIndex))
        return false;
    m_pHeader = pHeader;
    m_cities.pSlot = RecordsAt<tagTEXTSLOT>(p + pHeader[TXT_CITY_SLOTS]);
    m_cities.nBits = nBits;
    m_pCity = RecordsAt<tagTEXTCITY>(p + pHeader[TXT_CITIES]);
    m_pTown = RecordsAt<tagTEXTSLOT>(p + pHeader[TXT_TOWN_SLOTS]);
    m_pRule = RecordsAt<tagAREARULE>(p + pHeader[TXT_RULES]);
    m_pPair = RecordsAt<uint32_t>(p + pHeader[TXT_PAIRS]);
    m_nPairBits = nPairBits;
    m_nLast = pHeader[TXT_LAST_COUNT];
    for (uint32_t i = 0; i < TEXT_LAST_TOKENS; ++i)
        m_anLast[i] = static_cast<uint16_t>(pHeader[TXT_LAST + i / 2] >> 16 * (i % 2));
    m_nLastBits = 0;
    for (uint32_t i = 0; i < m_nLast; ++i) m_nLastBits |= uint64_t{1} << (m_anLast[i] & 63);
    return true;
}

CTextIndex::CTable CTextIndex::TownTable(tagTEXTCITY const& city) const {
    CTable table;
    uint32_t const nTotal = m_pHeader[TXT_TOWN_COUNT];
    if (city.nBits == 0 || city.nBits > 28 || city.nFirstSlot > nTotal) return table;
    if ((uint32_t{1} << city.nBits) > nTotal - city.nFirstSlot) return table;
    table.pSlot = m_pTown + city.nFirstSlot;
    table.nBits = city.nBits;
    return table;
}

CTextIndex::CRules CTextIndex::Rules(uint32_t nValue, uint32_t nTown) const {
    uint32_t const nHead = nValue & TOWN_NODE;
    uint32_t const nTotal = m_pHeader[TXT_RULE_COUNT];
    if ((nValue & TOWN_RULES) == 0 || nHead >= nTotal) return {};
    tagAREARULE const& head = m_pRule[nHead];
    if (head.nUnit != RULES_HEAD || head.nNode != nTown || head.nTo > nTotal - nHead - 1) return {};
    return {&head + 1, head.nTo};
}

} // namespace qeadrs
