#include "tests/support/TestImage.h"

#include "dic/ImageHeader.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace {

constexpr size_t ALIGNMENT = 16;

// Tables go in front to back; each one's place is noted in the header.
class CTables {
  public:
    CTables() : m_vByte(HDR_BYTES) {}

    template <typename T>
    void Put(tagHEADERWORD nTable, tagHEADERWORD nCount, std::vector<T> const& vRecord) {
        m_vByte.resize((m_vByte.size() + ALIGNMENT - 1) / ALIGNMENT * ALIGNMENT);
        Set(nTable, m_vByte.size());
        Set(nCount, vRecord.size());
        auto const* const p = reinterpret_cast<unsigned char const*>(vRecord.data());
        if (!vRecord.empty()) m_vByte.insert(m_vByte.end(), p, p + vRecord.size() * sizeof(T));
    }

    // The string area ends the image, so the gap that rounds its size up stands in front.
    void PutStrings(std::string const& strArea) {
        size_t const nSize = (m_vByte.size() + strArea.size() + ALIGNMENT - 1) / ALIGNMENT * ALIGNMENT;
        m_vByte.resize(nSize - strArea.size());
        Set(HDR_STRING_AREA, m_vByte.size());
        Set(HDR_STRING_SIZE, strArea.size());
        m_vByte.insert(m_vByte.end(), strArea.begin(), strArea.end());
    }

    void Set(tagHEADERWORD nWord, size_t n) { m_anHeader[nWord] = static_cast<uint32_t>(n); }

    std::vector<unsigned char> Finish() {
        std::memcpy(m_vByte.data(), m_anHeader.data(), HDR_BYTES);
        return m_vByte;
    }

  private:
    std::vector<unsigned char> m_vByte;
    std::array<uint32_t, HDR_WORDS> m_anHeader{};
};

} // namespace

uint32_t CTestImage::AddText(std::string_view strFirst, std::string_view strSecond) {
    auto const nOffset = static_cast<uint32_t>(strArea.size());
    strArea.append(strFirst).push_back('\0');
    strArea.append(strSecond).push_back('\0');
    return nOffset;
}

uint32_t CTestImage::AddNode(uint8_t nLevel, uint32_t nParent, std::string_view strName, std::string_view strKana) {
    vNode.push_back({nLevel, {}, AddText(strName, strKana), ADDR_NONE, nParent, 0, ADDR_NONE});
    return static_cast<uint32_t>(vNode.size() - 1);
}

uint32_t CTestImage::AddInfo(uint32_t nNode, std::string_view strCode, std::string_view strOldCode) {
    return AddInfoAt(nNode, AddText(strCode, strOldCode));
}

uint32_t CTestImage::AddInfoAt(uint32_t nNode, uint32_t nCode) {
    vInfo.push_back({nCode, nNode});
    return static_cast<uint32_t>(vInfo.size() - 1);
}

uint32_t CTestImage::AddSuperseded(uint32_t nNode, std::string_view strCode, std::string_view strOldCode,
                                   uint32_t nSuccessor) {
    uint32_t const nInfo = AddInfo(nNode | ADDRINFO_SUPERSEDED, strCode, strOldCode);
    for (int nShift = 0; nShift < 32; nShift += 8) strArea.push_back(static_cast<char>(nSuccessor >> nShift & 0xFF));
    return nInfo;
}

void CTestImage::Complete() {
    auto const Extend = [](uint32_t nNode, uint32_t& nFirst, uint32_t& nCount) {
        if (nCount == 0) nFirst = nNode;
        if (nNode != nFirst + nCount++) throw std::logic_error("a run of nodes is interrupted");
    };
    vCityIndex.clear();
    vOfficeIndex.clear();
    nPrefCount = nTownCount = 0;
    uint32_t nCityCount = 0;
    for (tagADDRNODE& node : vNode) node.nChildCount = 0;
    for (uint32_t n = 0; n < vNode.size(); ++n) {
        tagADDRNODE const& node = vNode[n];
        if (node.nParent != ADDR_NONE) Extend(n, vNode.at(node.nParent).nFirstChild, vNode[node.nParent].nChildCount);
        if (node.nLevel == LEVEL_PREF) Extend(n, nFirstPref, nPrefCount);
        if (node.nLevel == LEVEL_CITY) Extend(n, nFirstCity, nCityCount);
        if (node.nLevel == LEVEL_TOWN) Extend(n, nFirstTown, nTownCount);
        if (node.nLevel == LEVEL_CITY) vCityIndex.push_back(n);
        if (node.nLevel == LEVEL_OFFICE) vOfficeIndex.push_back(n);
    }
    for (uint32_t n = 0; n < vInfo.size(); ++n) {
        tagADDRNODE& node = vNode.at(vInfo[n].nNode & ~ADDRINFO_SUPERSEDED);
        if (node.nInfo == ADDR_NONE) node.nInfo = n;
    }
    auto const IsBefore = [this](uint32_t nLeft, uint32_t nRight) {
        return std::strcmp(strArea.c_str() + vNode[nLeft].nName, strArea.c_str() + vNode[nRight].nName) < 0;
    };
    std::stable_sort(vCityIndex.begin(), vCityIndex.end(), IsBefore);
    std::stable_sort(vOfficeIndex.begin(), vOfficeIndex.end(), IsBefore);
}

std::vector<unsigned char> CTestImage::Bytes() const {
    CTables tables;
    tables.Put(HDR_NODE_TABLE, HDR_NODE_COUNT, vNode);
    tables.Put(HDR_INFO_TABLE, HDR_INFO_COUNT, vInfo);
    tables.Put(HDR_CITY_INDEX, HDR_CITY_COUNT, vCityIndex);
    tables.Put(HDR_OFFICE_INDEX, HDR_OFFICE_COUNT, vOfficeIndex);
    tables.PutStrings(strArea);
    tables.Set(HDR_FIRST_PREF, nFirstPref);
    tables.Set(HDR_PREF_COUNT, nPrefCount);
    tables.Set(HDR_FIRST_CITY, nFirstCity);
    tables.Set(HDR_FIRST_TOWN, nFirstTown);
    tables.Set(HDR_TOWN_COUNT, nTownCount);
    return tables.Finish();
}

CTinyWorld::CTinyWorld()
    : nPref(AddNode(LEVEL_PREF, ADDR_NONE, "東京都", "トウキョウト")),
      nCity(AddNode(LEVEL_CITY, nPref, "千代田区", "チヨダク")),
      nTown(AddNode(LEVEL_TOWN, nCity, "千代田", "チヨダ")),
      nInfo(AddInfo(nTown, "1000001", "100")) {}
