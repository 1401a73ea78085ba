#include "tests/builder/CheckRecipe.h"

#include "builder/ImageWriter.h"
#include "builder/TextTable.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <stdexcept>

CImageBytes CRecipe::Apply(CImageBytes const& vSound) {
    m_vSound = vSound;
    m_vByte = vSound;
    bool bRepair = true;
    std::istringstream in(m_strSteps);
    for (std::string strStep; std::getline(in, strStep, ';');) {
        m_p = strStep.c_str();
        if (Take("keep the checksum"))
            bRepair = false;
        else
            DoStep();
        if (Skip(), *m_p != '\0') Fail();
    }
    if (bRepair && m_vByte.size() >= HDR_BYTES) qe::RepairChecksum(m_vByte);
    return m_vByte;
}

// --- reading -------------------------------------------------------------------------------------------------------

void CRecipe::Fail() const {
    throw std::logic_error("recipe: " + m_strSteps + ": not understood at: " + m_p);
}

void CRecipe::Skip() {
    while (*m_p == ' ') ++m_p;
}

bool CRecipe::Take(char const* psz) {
    Skip();
    size_t const nLength = std::strlen(psz);
    if (std::strncmp(m_p, psz, nLength) != 0) return false;
    m_p += nLength;
    return true;
}

void CRecipe::Need(char const* psz) {
    if (!Take(psz)) Fail();
}

// --- steps ---------------------------------------------------------------------------------------------------------

void CRecipe::DoStep() {
    if (Take("set text[")) return SetText();
    if (Take("set ")) {
        CPlace const place = Place();
        Need("=");
        uint32_t const nValue = Sum();
        if (place.nBytes == 4) return SetWordAt(m_vByte, place.nOffset, nValue);
        m_vByte.at(place.nOffset) = static_cast<unsigned char>(nValue);
    } else if (Take("flip bit")) {
        uint32_t const nBit = Sum();
        Need("of byte");
        unsigned char& c = m_vByte.at(Sum());
        c = static_cast<unsigned char>(c ^ (1u << nBit));
    } else if (Take("cut to")) {
        m_vByte.resize(Sum());
        Need("bytes");
    } else if (Take("shorten to")) {
        m_vByte.resize(Sum());
        Need("bytes");
        SetWordAt(m_vByte, 4 * HDR_FILE_SIZE, static_cast<uint32_t>(m_vByte.size()));
    } else if (Take("add")) {
        m_vByte.resize(m_vByte.size() + Sum());
        Need("bytes");
    } else if (Take("append the index")) {
        qe::AppendTextIndex(m_vByte);
    } else if (bool const bCopy = Take("copy"); bCopy || Take("exchange")) {
        uint32_t const nBytes = Sum();
        Need(bCopy ? "bytes from" : "bytes at");
        unsigned char* const pFrom = Bytes(Sum(), nBytes);
        Need(bCopy ? "to" : "and at");
        unsigned char* const pTo = Bytes(Sum(), nBytes);
        if (bCopy)
            std::memmove(pTo, pFrom, nBytes);
        else
            for (uint32_t n = 0; n < nBytes; ++n) std::swap(pFrom[n], pTo[n]);
    } else {
        Fail();
    }
}

void CRecipe::SetText() {
    size_t nOffset = WordAt(m_vSound, 4 * HDR_STRING_AREA) + Sum();
    for (Need("] = \""); *m_p != '"'; ++m_p) {
        if (*m_p == '\0' || nOffset >= m_vByte.size()) Fail();
        bool const bNul = m_p[0] == '\\' && m_p[1] == '0';
        m_vByte[nOffset++] = bNul ? 0 : static_cast<unsigned char>(*m_p);
        if (bNul) ++m_p;
    }
    ++m_p;
}

unsigned char* CRecipe::Bytes(uint32_t nOffset, uint32_t nBytes) {
    if (nOffset > m_vByte.size() || m_vByte.size() - nOffset < nBytes) Fail();
    return m_vByte.data() + nOffset;
}

// --- values and places ---------------------------------------------------------------------------------------------

uint32_t CRecipe::Sum() {
    uint32_t nSum = Value();
    for (;;) {
        if (Take("+"))
            nSum += Value();
        else if (Take("-"))
            nSum -= Value();
        else
            return nSum;
    }
}

uint32_t CRecipe::Value() {
    Skip();
    if (Take("none")) return ADDR_NONE;
    if (Take("superseded")) return ADDRINFO_SUPERSEDED;
    if (Take("size")) return static_cast<uint32_t>(m_vSound.size());
    if (Take("nodes")) return WordAt(m_vSound, 4 * HDR_NODE_COUNT);
    if (Take("entries")) return WordAt(m_vSound, 4 * HDR_INFO_COUNT);
    if (Take("area")) return WordAt(m_vSound, 4 * HDR_STRING_SIZE);
    if (*m_p >= '0' && *m_p <= '9') {
        char* pszEnd = nullptr;
        unsigned long long const n = std::strtoull(m_p, &pszEnd, 0);
        m_p = pszEnd;
        return static_cast<uint32_t>(n);
    }
    char const* const pszPlace = m_p;
    for (bool const bNode : {true, false})
        if (Take(bNode ? "node[" : "entry[")) {
            uint32_t const n = bNode ? Node() : Entry();
            Need("]");
            if (*m_p != '.') return n;
        }
    m_p = pszPlace;
    CPlace const place = Place();
    return place.nBytes == 4 ? WordAt(m_vSound, place.nOffset) : m_vSound.at(place.nOffset);
}

CRecipe::CPlace CRecipe::Place() {
    auto const Table = [this](tagHEADERWORD nWord) { return WordAt(m_vSound, 4 * nWord); };
    auto const Index = [this](uint32_t n) {
        Need("]");
        return size_t{n};
    };
    if (Take("node[")) {
        size_t const nRecord = Table(HDR_NODE_TABLE) + Index(Node()) * sizeof(tagADDRNODE);
        if (Take(".nLevel")) return {nRecord, 1};
        if (Take(".abUnused")) return {nRecord + 1, 1};
        char const* const NAMES[] = {".nName", ".nInfo", ".nParent", ".nChildCount", ".nFirstChild"};
        for (size_t n = 0; n < 5; ++n)
            if (Take(NAMES[n])) return {nRecord + 4 + 4 * n, 4};
    }
    if (Take("entry[")) {
        size_t const nRecord = Table(HDR_INFO_TABLE) + Index(Entry()) * sizeof(tagADDRINFO);
        if (Take(".nCode")) return {nRecord, 4};
        if (Take(".nNode")) return {nRecord + 4, 4};
    }
    if (Take("city[")) return {Table(HDR_CITY_INDEX) + 4 * Index(Sum()), 4};
    if (Take("office[")) return {Table(HDR_OFFICE_INDEX) + 4 * Index(Sum()), 4};
    if (Take("header[")) return {4 * Index(Sum()), 4};
    if (Take("word[")) return {Index(Sum()), 4};
    if (Take("byte[")) return {Index(Sum()), 1};
    Fail();
}

// --- nodes and entries by name -------------------------------------------------------------------------------------

std::string CRecipe::Name(uint32_t nNode) const {
    size_t const nRecord = WordAt(m_vSound, 4 * HDR_NODE_TABLE) + nNode * sizeof(tagADDRNODE);
    return TextAt(WordAt(m_vSound, nRecord + 4));
}

std::string CRecipe::TextAt(uint32_t nOffset) const {
    return reinterpret_cast<char const*>(m_vSound.data()) + WordAt(m_vSound, 4 * HDR_STRING_AREA) + nOffset;
}

bool CRecipe::IsIndex() const {
    return (*m_p >= '0' && *m_p <= '9') || std::strncmp(m_p, "nodes", 5) == 0 || std::strncmp(m_p, "entries", 7) == 0;
}

uint32_t CRecipe::Node() {
    Skip();
    if (IsIndex()) return Sum();
    std::string const strNames(m_p, std::strcspn(m_p, "]"));
    m_p += strNames.size();
    std::istringstream in(strNames);
    uint32_t nParent = ADDR_NONE;
    for (std::string strName; in >> strName;) {
        uint32_t n = 0;
        uint32_t const nNodes = WordAt(m_vSound, 4 * HDR_NODE_COUNT);
        auto const IsIt = [&] {
            size_t const nRecord = WordAt(m_vSound, 4 * HDR_NODE_TABLE) + n * sizeof(tagADDRNODE);
            return WordAt(m_vSound, nRecord + 12) == nParent && Name(n) == (strName == "-" ? "" : strName);
        };
        while (n < nNodes && !IsIt()) ++n;
        if (n == nNodes) throw std::logic_error("recipe: " + m_strSteps + ": there is no " + strNames);
        nParent = n;
    }
    return nParent;
}

uint32_t CRecipe::Entry() {
    Skip();
    std::string const strCode(m_p, std::strspn(m_p, "0123456789"));
    if (strCode.size() != 7) return Sum();
    m_p += strCode.size();
    for (uint32_t n = 0; n < WordAt(m_vSound, 4 * HDR_INFO_COUNT); ++n)
        if (TextAt(WordAt(m_vSound, WordAt(m_vSound, 4 * HDR_INFO_TABLE) + 8 * n)) == strCode) return n;
    throw std::logic_error("recipe: " + m_strSteps + ": there is no entry " + strCode);
}
