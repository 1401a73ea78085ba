// CheckRules.h - the checks of one subject each, in the order in which they are made (internal).
#ifndef QEADRS_BUILDER_CHECKRULES_H
#define QEADRS_BUILDER_CHECKRULES_H

#include "builder/CheckImage.h"
#include "builder/TownText.h"

#include <string>

namespace qe {

constexpr size_t CODE_DIGITS = 7;

inline std::string Number(uint64_t n) {
    return std::to_string(n);
}

// "node 17"; "no node" for none.
inline std::string Named(std::string const& strKind, uint32_t n) {
    return n == ADDR_NONE ? "no " + strKind : strKind + ' ' + Number(n);
}

// Whether the rest of the file can be looked at.
bool CheckHeader(std::vector<unsigned char> const& vByte, CCheckReport& report);

void CheckNodes(CCheckImage const& image, CCheckReport& report);
void CheckTexts(CCheckImage const& image, CCheckReport& report);
void CheckOffices(CCheckImage const& image, CCheckReport& report);
void CheckEntries(CCheckImage const& image, CCheckReport& report);
void CheckIndexes(CCheckImage const& image, CCheckReport& report);
// REQUIRES: nothing else is broken.
void CheckTextIndex(std::vector<unsigned char> const& vByte, CCheckReport& report);

// What all checks of records share.
class CRecordCheck {
  protected:
    CRecordCheck(CCheckImage const& image, CCheckReport& report) : m_image(image), m_report(report) {}

    void TellNode(ECheckRule nRule, uint32_t n, std::string const& strWhat) {
        if (!m_report.IsTold(nRule)) return m_report.Add({nRule, "", "", ""});
        m_report.Add({nRule, "node " + Number(n), m_image.Path(n), strWhat});
    }
    void TellEntry(ECheckRule nRule, uint32_t n, std::string const& strWhat) {
        if (!m_report.IsTold(nRule)) return m_report.Add({nRule, "", "", ""});
        uint32_t const nNode = m_image.Entry(n).nNode & ~ADDRINFO_SUPERSEDED;
        m_report.Add({nRule, "entry " + Number(n), m_image.Path(nNode), strWhat});
    }
    bool IsNode(uint32_t n) const { return n < m_image.NodeCount(); }
    // A child in the range of its parent. REQUIRES: a node.
    bool IsChild(uint32_t n) const {
        uint32_t const nParent = m_image.Node(n).nParent;
        if (!IsNode(nParent)) return false;
        tagADDRNODE const parent = m_image.Node(nParent);
        return n >= parent.nFirstChild && n - parent.nFirstChild < parent.nChildCount;
    }
    // A node of the highest level but one below the towns that no range of children holds.
    bool IsAlias(uint32_t n) const { return m_image.Node(n).nLevel == LEVEL_OFFICE && !IsChild(n); }

    CCheckImage const& m_image;
    CCheckReport& m_report;
};

} // namespace qe

#endif
