// Grow.cpp - puts the copies of a dictionary together, node by node and entry by entry, and leaves the layout to the
// image writer of the compiler.
#include "bench/growth/Grow.h"

#include "bench/growth/SpreadCodes.h"
#include "builder/Check.h"
#include "builder/Error.h"
#include "builder/SearchedName.h"
#include "builder/Text.h"
#include "builder/TownText.h"
#include "dic/ImageHeader.h"

#include <cstring>
#include <string>
#include <vector>

namespace {

// U+3400 and what follows: the first ideographs of extension A, three bytes each.
std::string Mark(uint32_t nCopy) {
    if (nCopy == 0) return "";
    uint32_t const nCharacter = 0x3400 + nCopy - 1;
    return {static_cast<char>(0xE0 | nCharacter >> 12), static_cast<char>(0x80 | (nCharacter >> 6 & 0x3F)),
            static_cast<char>(0x80 | (nCharacter & 0x3F))};
}

class CGrower {
  public:
    CGrower(unsigned char const* pImage, EGrowth nKind, uint32_t nTimes)
        : m_nKind(nKind),
          m_nTimes(nTimes),
          m_nNodes(HeaderWord(pImage, HDR_NODE_COUNT)),
          m_nEntries(HeaderWord(pImage, HDR_INFO_COUNT)),
          m_vNewNode(nTimes, std::vector<uint32_t>(m_nNodes, ADDR_NONE)) {
        m_dic.SetDictionary(pImage);
        // Grown, it is no official table any more.
        auto const nSource = static_cast<qe::ESource>(HeaderWord(pImage, HDR_SOURCE));
        m_writer.SetIdentification(HeaderWord(pImage, HDR_EDITION), nTimes == 1 ? nSource : qe::ESource::Unknown);
    }

    qe::CImage Grow() {
        AddPrefs();
        AddCities();
        AddTowns();
        for (uint32_t nCopy = 0; nCopy < m_nTimes; ++nCopy) AddLevelsBelow(nCopy);
        AddEntries();
        for (uint32_t nCopy = 0; nCopy < m_nTimes; ++nCopy) AddReferences(nCopy);
        for (uint32_t nCopy = 0; nCopy < m_nTimes; ++nCopy) AddOffices(nCopy);
        m_vNewNode.clear();
        return m_writer.Write();
    }

  private:
    tagADDRNODE const& Node(uint32_t n) const { return *m_dic.GetAddrNode(n); }
    tagADDRINFO const& Entry(uint32_t n) const { return *m_dic.GetAddrInfo(n); }
    bool IsSuperseded(uint32_t nEntry) const { return (Entry(nEntry).nNode & ADDRINFO_SUPERSEDED) != 0; }
    uint32_t Owner(uint32_t nEntry) const { return Entry(nEntry).nNode & ~ADDRINFO_SUPERSEDED; }
    std::string Name(uint32_t n) const { return m_dic.GetString(Node(n).nName); }
    std::string Behind(uint32_t nText) const {
        return m_dic.GetString(nText + std::strlen(m_dic.GetString(nText)) + 1);
    }

    bool IsAlias(uint32_t n) const {
        if (Node(n).nLevel != LEVEL_OFFICE) return false;
        tagADDRNODE const& parent = Node(Node(n).nParent);
        return n - parent.nFirstChild >= parent.nChildCount;
    }
    bool IsGoneCity(uint32_t n) const { return Node(n).nInfo != ADDR_NONE && IsSuperseded(Node(n).nInfo); }
    // Whether the node is there once for each copy, and not once for all.
    bool IsCopied(uint32_t n) const {
        return Node(n).nLevel >= (m_nKind == EGrowth::Cities ? LEVEL_CITY : LEVEL_TOWN);
    }

    std::string NewName(uint32_t nCopy, uint32_t n) const {
        std::string const strName = Name(n);
        uint8_t const nLevel = Node(n).nLevel;
        bool const bMarked =
            nLevel <= LEVEL_TOWN ? !strName.empty() || m_nKind == EGrowth::Towns : nLevel == LEVEL_OFFICE;
        return bMarked ? qe::CutName(Mark(nCopy) + strName, qe::NAME_LIMIT) : strName;
    }

    void Add(uint32_t nCopy, uint32_t n) {
        uint32_t const nParent = Node(n).nParent;
        m_vNewNode[nCopy][n] = m_writer.AddNode(nParent == ADDR_NONE ? ADDR_NONE : m_vNewNode[nCopy][nParent],
                                                Node(n).nLevel, NewName(nCopy, n), Behind(Node(n).nName));
    }
    void AddOnce(uint32_t n) {
        Add(0, n);
        for (std::vector<uint32_t>& vNew : m_vNewNode) vNew[n] = m_vNewNode[0][n];
    }

    template <typename F>
    void ForLevel(uint8_t nLevel, F const& Do) {
        for (uint32_t n = 0; n < m_nNodes; ++n)
            if (Node(n).nLevel == nLevel) Do(n);
    }

    void AddPrefs() {
        ForLevel(LEVEL_PREF, [this](uint32_t n) { AddOnce(n); });
    }

    // The cities that are gone stand behind all that there are.
    void AddCities() {
        if (m_nKind == EGrowth::Towns) return ForLevel(LEVEL_CITY, [this](uint32_t n) { AddOnce(n); });
        for (bool const bGone : {false, true})
            for (uint32_t nCopy = 0; nCopy < m_nTimes; ++nCopy)
                ForLevel(LEVEL_CITY, [&](uint32_t n) {
                    if (IsGoneCity(n) == bGone) Add(nCopy, n);
                });
    }

    // The towns without a name stand behind all others of their city.
    void AddTowns() {
        for (bool const bNameless : {false, true})
            for (uint32_t nCopy = 0; nCopy < m_nTimes; ++nCopy)
                ForLevel(LEVEL_TOWN, [&](uint32_t n) {
                    if (NewName(nCopy, n).empty() == bNameless) Add(nCopy, n);
                });
    }

    void AddLevelsBelow(uint32_t nCopy) {
        for (uint32_t n = 0; n < m_nNodes; ++n)
            if (Node(n).nLevel > LEVEL_TOWN && !IsAlias(n)) Add(nCopy, n);
    }

    void AddEntries() {
        CSpreadCodes const codes(m_dic, m_nTimes);
        for (uint32_t nCopy = 0; nCopy < m_nTimes; ++nCopy)
            for (uint32_t n = 0; n < m_nEntries; ++n) {
                std::string const strCode = codes.NewCode(nCopy, n), strOld = Behind(Entry(n).nCode);
                m_writer.AddEntry(m_vNewNode[nCopy][Owner(n)], strCode,
                                  nCopy == 0 ? strOld : strCode.substr(0, strOld.size()));
            }
    }
    uint32_t NewEntry(uint32_t nCopy, uint32_t n) const { return nCopy * m_nEntries + n; }

    // What refers to an entry that is another node's or another entry's.
    void AddReferences(uint32_t nCopy) {
        for (uint32_t n = 0; n < m_nNodes; ++n) {
            uint32_t const nEntry = Node(n).nInfo;
            if (nEntry == ADDR_NONE || Owner(nEntry) == n || IsAlias(n) || (nCopy > 0 && !IsCopied(n))) continue;
            m_writer.Refer(m_vNewNode[nCopy][n], NewEntry(nCopy, nEntry));
        }
        for (uint32_t n = 0; n < m_nEntries; ++n)
            if (IsSuperseded(n)) m_writer.Supersede(NewEntry(nCopy, n), NewEntry(nCopy, Successor(n)));
    }
    uint32_t Successor(uint32_t nEntry) const {
        uint32_t const nOld =
            Entry(nEntry).nCode + static_cast<uint32_t>(std::strlen(m_dic.GetString(Entry(nEntry).nCode))) + 1;
        char const* const pszOld = m_dic.GetString(nOld);
        return ReadWord(reinterpret_cast<unsigned char const*>(pszOld + std::strlen(pszOld) + 1));
    }

    // The organisations under their own names and under those that are searched for.
    void AddOffices(uint32_t nCopy) {
        for (uint32_t n = 0; n < m_nNodes; ++n) {
            if (Node(n).nLevel != LEVEL_OFFICE) continue;
            uint32_t const nOffice = m_vNewNode[nCopy][Owner(Node(n).nInfo)];
            if (!IsAlias(n)) {
                m_writer.AddOffice(nOffice);
                continue;
            }
            // Of the country's the alias may go on where the name that is shown was cut.
            std::string const strAlias =
                nCopy == 0 ? Name(n) : qe::SearchedName(NewName(nCopy, Owner(Node(n).nInfo)));
            m_writer.AddOffice(m_writer.AddAlias(nOffice, strAlias));
        }
    }

    EGrowth m_nKind;
    uint32_t m_nTimes;
    uint32_t m_nNodes, m_nEntries;
    CAddrDic m_dic;
    qe::CImageWriter m_writer;
    std::vector<std::vector<uint32_t>> m_vNewNode; // ids of the writer by copy and node
};

} // namespace

qe::CImage GrowDictionary(std::vector<unsigned char> const& vByte, EGrowth nKind, uint32_t nTimes) {
    if (nTimes == 0 || nTimes > MOST_TIMES)
        throw qe::CBuildError("A dictionary grows 1 to " + std::to_string(MOST_TIMES) + " times.");
    // What is sound has all that is read here.
    if (!qe::CheckDictionary(vByte).IsSound()) throw qe::CBuildError("The dictionary is damaged.");
    return CGrower(vByte.data(), nKind, nTimes).Grow();
}
