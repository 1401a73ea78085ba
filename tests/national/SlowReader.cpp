// SlowReader.cpp - header, nodes, entries, texts: every number is taken from the bytes and checked against the file.
#include "SlowReader.h"

#include "Tables.h"

#include <stdexcept>

namespace national {

namespace {

constexpr size_t HEADER_BYTES = 108;
constexpr size_t NODE_BYTES = 24;
constexpr size_t ENTRY_BYTES = 8;
constexpr uint32_t OLD_CODE_REACH = 10000;

[[noreturn]] void Fail(std::string const& strWhat) {
    throw std::runtime_error("the image is not sound: " + strWhat);
}

} // namespace

std::string AddressText(CAddress const& a) {
    std::string str;
    for (COptionalText const* p :
         {&a.strPref, &a.strPrefKana, &a.strCity, &a.strCityKana, &a.strTown, &a.strTownKana, &a.strArea,
          &a.strAreaKana, &a.strBlock, &a.strBlockKana, &a.strNote, &a.strOffice, &a.strOfficeKana})
        str.append(p->value_or("~")).append("|");
    str.pop_back();
    return str;
}

CSlowReader::CSlowReader(std::string strBytes) : m_strBytes(std::move(strBytes)) {
    if (m_strBytes.size() < HEADER_BYTES) Fail("it is shorter than its header");
    ReadNodes();
    ReadEntries();
    m_vCityIndex = Index(14, 20);
    m_vOfficeIndex = Index(17, 26);
}

uint32_t CSlowReader::Integer(size_t nOffset) const {
    if (nOffset > m_strBytes.size() || m_strBytes.size() - nOffset < 4) Fail("a number lies outside the file");
    uint32_t n = 0;
    for (size_t i = 4; i-- > 0;) n = n << 8 | static_cast<unsigned char>(m_strBytes[nOffset + i]);
    return n;
}

std::string_view CSlowReader::Text(uint64_t nOffset) const {
    uint64_t const nSize = Word(10);
    uint64_t const nArea = Word(13);
    if (nArea + nSize > m_strBytes.size()) Fail("the string area lies outside the file");
    if (nOffset >= nSize) Fail("a text lies outside the string area");
    std::string_view const strRest(m_strBytes.data() + nArea + nOffset, static_cast<size_t>(nSize - nOffset));
    size_t const nLength = strRest.find('\0');
    if (nLength == std::string_view::npos) Fail("a text has no end");
    return strRest.substr(0, nLength);
}

std::vector<uint32_t> CSlowReader::Index(unsigned nOffsetWord, unsigned nCountWord) const {
    std::vector<uint32_t> vIndex(Word(nCountWord));
    for (size_t n = 0; n < vIndex.size(); ++n) {
        vIndex[n] = Integer(Word(nOffsetWord) + 4 * n);
        if (vIndex[n] >= m_vNode.size()) Fail("an index names a node that is not there");
    }
    return vIndex;
}

void CSlowReader::ReadNodes() {
    uint32_t const nCount = Word(8);
    for (uint32_t n = 0; n < nCount; ++n) {
        size_t const nAt = Word(11) + NODE_BYTES * n;
        CNode node;
        node.nLevel = Integer(nAt) & 0xFF;
        node.nNameOffset = Integer(nAt + 4);
        node.strName = Text(node.nNameOffset);
        node.strKana = Text(uint64_t{node.nNameOffset} + node.strName.size() + 1);
        node.nEntry = Integer(nAt + 8);
        node.nParent = Integer(nAt + 12);
        node.nChildren = Integer(nAt + 16);
        node.nFirstChild = Integer(nAt + 20);
        // A parent stands before its children, so that no walk upwards goes in a circle.
        if (node.nParent != NONE && node.nParent >= n) Fail("a node stands before its parent");
        node.bAlias =
            node.nParent != NONE && (n < m_vNode[node.nParent].nFirstChild ||
                                     n - m_vNode[node.nParent].nFirstChild >= m_vNode[node.nParent].nChildren);
        m_vNode.push_back(node);
    }
}

void CSlowReader::ReadEntries() {
    uint32_t const nCount = Word(9);
    for (uint32_t n = 0; n < nCount; ++n) {
        size_t const nAt = Word(12) + ENTRY_BYTES * n;
        CEntry entry;
        entry.nCodeOffset = Integer(nAt);
        entry.strCode = Text(entry.nCodeOffset);
        entry.strOldCode = Text(uint64_t{entry.nCodeOffset} + entry.strCode.size() + 1);
        entry.nNode = Integer(nAt + 4) & 0x7FFFFFFF;
        entry.bSuperseded = Integer(nAt + 4) >= 0x80000000;
        // Four bytes at any address, directly behind the NUL of the old code.
        size_t const nBehind =
            Word(13) + size_t{entry.nCodeOffset} + entry.strCode.size() + 1 + entry.strOldCode.size() + 1;
        entry.nSuccessor = entry.bSuperseded ? Integer(nBehind) : NONE;
        if (entry.bSuperseded && (nBehind + 4 > Word(13) + size_t{Word(10)} || entry.nSuccessor >= nCount))
            Fail("a superseded entry names no other");
        if (entry.nNode >= m_vNode.size()) Fail("an entry names a node that is not there");
        m_vEntry.push_back(entry);
        for (size_t nLength = 1; nLength <= entry.strCode.size(); ++nLength)
            m_mapPrefix.emplace(entry.strCode.substr(0, nLength), n);
        if (!entry.strOldCode.empty()) m_mapOldCode[entry.strOldCode].push_back(n);
    }
}

uint32_t CSlowReader::FirstEntry(std::string_view strCode) const {
    auto const pFound = m_mapPrefix.find(strCode);
    return pFound == m_mapPrefix.end() ? NONE : pFound->second;
}

std::vector<uint32_t> CSlowReader::EntriesOf(std::string_view strCode) const {
    std::vector<uint32_t> vEntry;
    for (size_t n = FirstEntry(strCode); n < m_vEntry.size() && BeginsWith(m_vEntry[n].strCode, strCode); ++n)
        if (Ancestor(m_vEntry[n].nNode, 2) != NONE && Ancestor(m_vEntry[n].nNode, 1) != NONE)
            vEntry.push_back(static_cast<uint32_t>(n));
    return vEntry;
}

std::vector<uint32_t> const& CSlowReader::EntriesOfOldCode(std::string_view strOldCode) const {
    static std::vector<uint32_t> const vNone;
    auto const pFound = m_mapOldCode.find(strOldCode);
    return pFound == m_mapOldCode.end() ? vNone : pFound->second;
}

std::vector<uint32_t> CSlowReader::EntriesInReachOfOldCode(std::string_view strOldCode) const {
    std::vector<uint32_t> vReached;
    uint32_t const nStart = FirstEntry(strOldCode);
    if (nStart == NONE) return vReached;
    for (uint32_t n : EntriesOfOldCode(strOldCode))
        if (n >= nStart && n - nStart < OLD_CODE_REACH) vReached.push_back(n);
    return vReached;
}

uint32_t CSlowReader::Ancestor(uint32_t nNode, unsigned nLevel) const {
    while (nNode != NONE && m_vNode[nNode].nLevel != nLevel) nNode = m_vNode[nNode].nParent;
    return nNode;
}

CAddress CSlowReader::AddressOfNode(uint32_t nNode) const {
    CAddress a;
    for (uint32_t n = nNode; n != NONE; n = m_vNode[n].nParent) TakeTexts(n, a);
    return a;
}

void CSlowReader::TakeTexts(uint32_t nNode, CAddress& a) const {
    CNode const& node = m_vNode[nNode];
    auto const Take = [&node](COptionalText& strName, COptionalText& strKana) {
        strName = node.strName;
        strKana = node.strKana;
    };
    switch (node.nLevel) {
    case 0:
        return Take(a.strPref, a.strPrefKana);
    case 1:
        return Take(a.strCity, a.strCityKana);
    case 2:
        return Take(a.strTown, a.strTownKana);
    case 3:
        return Take(a.strArea, a.strAreaKana);
    case 4:
        return Take(a.strBlock, a.strBlockKana);
    case 6:
        a.strNote = node.strName;
        return;
    case 7:
        return Take(a.strOffice, a.strOfficeKana);
    default:
        Fail("a node has a level of its own");
    }
}

CSlowReader const& Official() {
    static CSlowReader const reader(ReadFile(DataPath("qeadrs.dic")));
    return reader;
}

} // namespace national
