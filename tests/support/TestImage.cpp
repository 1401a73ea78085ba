#include "tests/support/TestImage.h"

#include "dic/ImageHeader.h"

#include <array>

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

std::vector<unsigned char> CTestImage::Bytes() const {
    CTables tables;
    tables.Put(HDR_NODE_TABLE, HDR_NODE_COUNT, vNode);
    tables.Put(HDR_INFO_TABLE, HDR_INFO_COUNT, vInfo);
    tables.Put(HDR_CITY_INDEX, HDR_CITY_COUNT, std::vector<uint32_t>());
    tables.Put(HDR_OFFICE_INDEX, HDR_OFFICE_COUNT, std::vector<uint32_t>());
    tables.PutStrings(strArea);
    return tables.Finish();
}

CTinyWorld::CTinyWorld()
    : nPref(AddNode(LEVEL_PREF, ADDR_NONE, "東京都", "トウキョウト")),
      nCity(AddNode(LEVEL_CITY, nPref, "千代田区", "チヨダク")),
      nTown(AddNode(LEVEL_TOWN, nCity, "千代田", "チヨダ")),
      nInfo(AddInfo(nTown, "1000001", "100")) {}
