// CheckNodes.cpp - the rules of nodes: levels, parents, children, aliases, entries.
#include "builder/CheckRules.h"

#include <vector>

namespace qe {

namespace {

class CNodeCheck : CRecordCheck {
  public:
    CNodeCheck(CCheckImage const& image, CCheckReport& report)
        : CRecordCheck(image, report), m_vSuperseded(image.NodeCount()), m_vCurrent(image.NodeCount()) {}

    void Check() {
        CheckRun(LEVEL_PREF, HDR_FIRST_PREF, HDR_PREF_COUNT);
        CheckRun(LEVEL_CITY, HDR_FIRST_CITY, HDR_CITY_COUNT);
        CheckRun(LEVEL_TOWN, HDR_FIRST_TOWN, HDR_TOWN_COUNT);
        for (uint32_t n = 0; n < m_image.NodeCount(); ++n) CheckNode(n, m_image.Node(n));
        CheckCityOrder();
        for (uint32_t n = 0; n < m_image.EntryCount(); ++n) CheckNodesAbove(n, m_image.Entry(n));
        for (uint32_t n = 0; n < m_image.NodeCount(); ++n)
            if (m_vSuperseded[n] && !m_vCurrent[n] && IsLeftAlone(m_image.Node(n)))
                TellNode(ECheckRule::GoneCity, n, "has superseded entries alone, but refers to none of them");
    }

  private:
    void CheckRun(uint8_t nLevel, tagHEADERWORD nFirstWord, tagHEADERWORD nCountWord) {
        uint32_t const nFirst = m_image.Word(nFirstWord), nCount = m_image.Word(nCountWord);
        if (nFirst > m_image.NodeCount() || nCount > m_image.NodeCount() - nFirst)
            return m_report.Add({ECheckRule::Runs, "header word " + Number(nFirstWord), "",
                                 "the run of level " + Number(nLevel) + " leaves the node table"});
        for (uint32_t n = 0; n < m_image.NodeCount(); ++n) {
            bool const bInside = n >= nFirst && n - nFirst < nCount;
            if ((m_image.Node(n).nLevel == nLevel) != bInside)
                TellNode(ECheckRule::Runs, n,
                         bInside ? "stands in the run of level " + Number(nLevel)
                                 : "stands outside the run of its level");
        }
    }

    void CheckNode(uint32_t n, tagADDRNODE const& node) {
        if (node.abUnused[0] != 0 || node.abUnused[1] != 0 || node.abUnused[2] != 0)
            TellNode(ECheckRule::Unused, n, "has bytes that are not 0 behind its level");
        if (node.nLevel > LEVEL_OFFICE) TellNode(ECheckRule::Level, n, "has level " + Number(node.nLevel));
        CheckParent(n, node);
        CheckChildren(n, node);
        CheckEntry(n, node);
    }

    void CheckParent(uint32_t n, tagADDRNODE const& node) {
        if (node.nLevel == LEVEL_PREF) {
            if (node.nParent != ADDR_NONE) TellNode(ECheckRule::Parent, n, "is a prefecture with a parent");
            return;
        }
        if (node.nParent == ADDR_NONE) return TellNode(ECheckRule::Parent, n, "has no parent");
        if (node.nParent >= n)
            return TellNode(ECheckRule::Parent, n,
                            "has the parent " + Number(node.nParent) + ", which does not stand before it");
        uint8_t const nAbove = m_image.Node(node.nParent).nLevel;
        bool const bRight =
            node.nLevel <= LEVEL_TOWN ? nAbove + 1 == node.nLevel : nAbove >= LEVEL_TOWN && nAbove < node.nLevel;
        if (!bRight)
            TellNode(ECheckRule::Level, n, "has level " + Number(node.nLevel) + " below level " + Number(nAbove));
        if (!IsAlias(n) && !IsChild(n))
            TellNode(ECheckRule::Children, n, "is not among the children of its parent " + Number(node.nParent));
    }

    // Ranges are disjoint when each child names its parent; that each of them is looked at is bounded by the sum of
    // all ranges, which is that of the nodes in a sound file.
    void CheckChildren(uint32_t n, tagADDRNODE const& node) {
        if (node.nChildCount == 0) {
            if (node.nFirstChild != ADDR_NONE) TellNode(ECheckRule::Children, n, "has a first child but no children");
            return;
        }
        uint32_t const nNodes = m_image.NodeCount();
        if (node.nFirstChild >= nNodes || node.nChildCount > nNodes - node.nFirstChild)
            return TellNode(ECheckRule::Children, n, "has children outside the node table");
        if (node.nFirstChild <= n) return TellNode(ECheckRule::Children, n, "has children before itself");
        if (node.nChildCount > nNodes - m_nChildren)
            return TellNode(ECheckRule::Children, n,
                            "has children that are others' already: there are more than nodes");
        m_nChildren += node.nChildCount;
        for (uint32_t nChild = node.nFirstChild; nChild - node.nFirstChild < node.nChildCount; ++nChild)
            if (m_image.Node(nChild).nParent != n)
                TellNode(ECheckRule::Children, nChild,
                         "is a child of node " + Number(n) + " but names " +
                             Named("node", m_image.Node(nChild).nParent) + " as its parent");
    }

    void CheckEntry(uint32_t n, tagADDRNODE const& node) {
        if (node.nInfo == ADDR_NONE) {
            if (node.nLevel == LEVEL_OFFICE)
                TellNode(ECheckRule::EntryOfNode, n, "is an organisation without an entry");
            if (node.nLevel == LEVEL_CITY && HasNamelessEntry(node))
                TellNode(ECheckRule::EntryOfNode, n, "does not refer to the entry of its nameless town");
            return;
        }
        if (node.nInfo >= m_image.EntryCount())
            return TellNode(ECheckRule::EntryOfNode, n, "has the entry " + Number(node.nInfo) + " outside the table");
        uint32_t const nOwner = m_image.Entry(node.nInfo).nNode & ~ADDRINFO_SUPERSEDED;
        if (nOwner == n || (IsNode(nOwner) && MayRefer(n, node, nOwner))) return;
        TellNode(ECheckRule::EntryOfNode, n, "refers to the entry of node " + Number(nOwner));
    }

    // Whether the city has a nameless town with an entry. That stands behind the others: one look is enough.
    bool HasNamelessEntry(tagADDRNODE const& city) const {
        uint64_t const nLast = uint64_t{city.nFirstChild} + city.nChildCount - 1;
        if (city.nChildCount == 0 || nLast >= m_image.NodeCount()) return false;
        tagADDRNODE const town = m_image.Node(static_cast<uint32_t>(nLast));
        auto const strName = m_image.Text(town.nName);
        return strName && strName->empty() && town.nInfo != ADDR_NONE;
    }

    // Whether the node may refer to the entry of another one.
    bool MayRefer(uint32_t n, tagADDRNODE const& node, uint32_t nOwner) const {
        tagADDRNODE const owner = m_image.Node(nOwner);
        if (node.nLevel == LEVEL_CITY) {
            bool const bPart = owner.nLevel > LEVEL_TOWN && IsNode(owner.nParent);
            tagADDRNODE const town = bPart ? m_image.Node(owner.nParent) : owner;
            auto const strName = m_image.Text(town.nName);
            // A city that is gone refers to its first town when it had no nameless one.
            return town.nParent == n && owner.nLevel < LEVEL_OFFICE && strName &&
                   (strName->empty() || (!bPart && IsGone(node)));
        }
        if (node.nLevel == LEVEL_TOWN) return owner.nParent == n && owner.nLevel < LEVEL_OFFICE;
        return IsAlias(n); // told as an alias when it is another organisation's
    }

    // Whether the node refers to a superseded entry.
    bool IsGone(tagADDRNODE const& node) const {
        return node.nInfo < m_image.EntryCount() && (m_image.Entry(node.nInfo).nNode & ADDRINFO_SUPERSEDED) != 0;
    }

    void CheckCityOrder() {
        for (uint32_t n = 1; n < m_image.NodeCount(); ++n) {
            tagADDRNODE const before = m_image.Node(n - 1), node = m_image.Node(n);
            bool const bNextCity = before.nLevel == LEVEL_CITY && node.nLevel == LEVEL_CITY;
            if (bNextCity && before.nParent == node.nParent && IsGone(before) && !IsGone(node))
                TellNode(ECheckRule::GoneCity, n, "stands behind a city that is gone");
        }
    }

    // The town and the city above the node of an entry.
    void CheckNodesAbove(uint32_t n, tagADDRINFO const& entry) {
        uint32_t const nOwner = entry.nNode & ~ADDRINFO_SUPERSEDED;
        if (!IsNode(nOwner)) return; // told as out of the table
        bool const bSuperseded = (entry.nNode & ADDRINFO_SUPERSEDED) != 0;
        uint32_t const nTown = Above(nOwner, LEVEL_TOWN), nCity = Above(nOwner, LEVEL_CITY);
        (bSuperseded ? m_vSuperseded : m_vCurrent)[nCity] = true;
        if (!bSuperseded && IsGone(m_image.Node(nCity)))
            TellEntry(ECheckRule::GoneCity, n, "is current, below a city that is gone");
        tagADDRNODE const town = m_image.Node(nTown);
        bool const bPart = town.nLevel == LEVEL_TOWN && m_image.Node(nOwner).nLevel != LEVEL_OFFICE;
        if (bSuperseded || !bPart || town.nInfo >= m_image.EntryCount()) return;
        tagADDRINFO const other = m_image.Entry(town.nInfo);
        if (other.nNode != nTown && !IsSameCode(entry, other))
            TellNode(ECheckRule::EntryOfNode, nTown, "refers to one of several codes of its parts");
    }
    static bool IsLeftAlone(tagADDRNODE const& node) { return node.nLevel == LEVEL_CITY && node.nInfo == ADDR_NONE; }
    bool IsSameCode(tagADDRINFO const& a, tagADDRINFO const& b) const {
        auto const strA = m_image.Text(a.nCode), strB = m_image.Text(b.nCode);
        return strA && strB && strA->substr(0, CODE_DIGITS + 1) == strB->substr(0, CODE_DIGITS + 1);
    }
    // The node of this level above, or the last one on the way. Levels grow downwards: a damaged chain of parents ends
    // with the steps that there can be.
    uint32_t Above(uint32_t n, uint8_t nLevel) const {
        for (int nStep = 0; nStep < LEVEL_OFFICE && m_image.Node(n).nLevel > nLevel; ++nStep) {
            if (!IsNode(m_image.Node(n).nParent)) return n;
            n = m_image.Node(n).nParent;
        }
        return n;
    }

    uint32_t m_nChildren = 0;
    std::vector<bool> m_vSuperseded, m_vCurrent; // by node: a city below which there are such entries
};

} // namespace

void CheckNodes(CCheckImage const& image, CCheckReport& report) {
    CNodeCheck(image, report).Check();
}

} // namespace qe
