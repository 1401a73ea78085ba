// SlowReader.h - the dictionary image read a second time, without any code of the library.
//
//   CSlowReader reader(ReadFile(DataPath("qeadrs.dic")));
//   for (uint32_t nEntry : reader.EntriesOf("10000")) puts(AddressText(reader.Address(nEntry)).c_str());
//
// Everything is decoded once, record by record and with every offset checked; questions are answered from ordered
// maps that one pass over the entries fills. Throws std::runtime_error for an image that is not laid out as it should
// be.
#ifndef QEADRS_TESTS_NATIONAL_SLOWREADER_H
#define QEADRS_TESTS_NATIONAL_SLOWREADER_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace national {

constexpr uint32_t NONE = 0xFFFFFFFF;

using COptionalText = std::optional<std::string_view>;

// The texts of one address, top down; a level that the address lacks has none. A note has no reading.
struct CAddress {
    COptionalText strPref, strPrefKana, strCity, strCityKana, strTown, strTownKana, strArea, strAreaKana, strBlock,
        strBlockKana, strNote, strOffice, strOfficeKana;
};

// "北海道|ホッカイドウ|札幌市中央区|...": two addresses are equal when these are. "~" stands for a level that is
// absent.
std::string AddressText(CAddress const& address);

class CSlowReader {
  public:
    struct CNode {
        unsigned nLevel;
        uint32_t nNameOffset;
        std::string_view strName, strKana;
        uint32_t nEntry, nParent, nChildren, nFirstChild;
        bool bAlias; // nobody's child: it has a parent whose children it is not among
    };
    struct CEntry {
        uint32_t nCodeOffset;
        std::string_view strCode, strOldCode;
        uint32_t nNode;
        bool bSuperseded;
        uint32_t nSuccessor; // of a superseded entry, else NONE
    };

    explicit CSlowReader(std::string strBytes);
    CSlowReader(CSlowReader const&) = delete;
    CSlowReader& operator=(CSlowReader const&) = delete;

    // A word of the header, by its number.
    uint32_t Word(unsigned nWord) const { return Integer(4 * size_t{nWord}); }

    std::vector<CNode> const& Nodes() const { return m_vNode; }
    std::vector<CEntry> const& Entries() const { return m_vEntry; }
    std::vector<uint32_t> const& CityIndex() const { return m_vCityIndex; }
    std::vector<uint32_t> const& OfficeIndex() const { return m_vOfficeIndex; }
    unsigned char const* Bytes() const { return reinterpret_cast<unsigned char const*>(m_strBytes.data()); }

    // Lowest entry of every text that begins a code, by that text.
    std::map<std::string_view, uint32_t> const& Prefixes() const { return m_mapPrefix; }

    // Lowest entry whose code begins so, NONE when there is none.
    uint32_t FirstEntry(std::string_view strCode) const;

    // All entries whose code begins so and that have a town and a city, in table order: what a lookup answers.
    std::vector<uint32_t> EntriesOf(std::string_view strCode) const;

    // The entries whose old code this is, in table order.
    std::vector<uint32_t> const& EntriesOfOldCode(std::string_view strOldCode) const;

    // Those of them that stand within 10000 entries from the first code that begins with it.
    std::vector<uint32_t> EntriesInReachOfOldCode(std::string_view strOldCode) const;

    CAddress Address(uint32_t nEntry) const { return AddressOfNode(m_vEntry[nEntry].nNode); }

    // Writes a node's own texts into an address.
    void TakeTexts(uint32_t nNode, CAddress& address) const;

    // The node of this level on the way up from a node, itself included; NONE when there is none.
    uint32_t Ancestor(uint32_t nNode, unsigned nLevel) const;

  private:
    CAddress AddressOfNode(uint32_t nNode) const;
    uint32_t Integer(size_t nOffset) const;
    std::string_view Text(uint64_t nOffset) const;
    std::vector<uint32_t> Index(unsigned nOffsetWord, unsigned nCountWord) const;
    void ReadNodes();
    void ReadEntries();

    std::string m_strBytes;
    std::vector<CNode> m_vNode;
    std::vector<CEntry> m_vEntry;
    std::vector<uint32_t> m_vCityIndex, m_vOfficeIndex;
    std::map<std::string_view, uint32_t> m_mapPrefix;
    std::map<std::string_view, std::vector<uint32_t>> m_mapOldCode;
};

// The reader of the official dictionary, made once for the process.
CSlowReader const& Official();

} // namespace national

#endif
