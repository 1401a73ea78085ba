// CheckOffices.cpp - the rules of organisations and of the aliases under which they are found.
#include "builder/CheckRules.h"

#include "builder/SearchedName.h"
#include "builder/Text.h"

#include <vector>

namespace qe {

namespace {

class COfficeCheck : CRecordCheck {
  public:
    COfficeCheck(CCheckImage const& image, CCheckReport& report)
        : CRecordCheck(image, report), m_vFound(image.EntryCount()) {}

    void Check() {
        for (uint32_t n = 0; n < m_image.NodeCount(); ++n)
            if (IsChild(n)) m_nLastChild = n;
        for (uint32_t n = 0; n < m_image.NodeCount(); ++n)
            if (IsAlias(n)) CheckAlias(n, m_image.Node(n));
        for (uint32_t n = 0; n < m_image.NodeCount(); ++n) {
            tagADDRNODE const node = m_image.Node(n);
            if (node.nLevel != LEVEL_OFFICE || IsAlias(n) || node.nInfo >= m_image.EntryCount()) continue;
            if (!m_vFound[node.nInfo] && !Searched(node).empty())
                TellNode(ECheckRule::Alias, n, "is an organisation without an alias");
        }
    }

  private:
    void CheckAlias(uint32_t n, tagADDRNODE const& node) {
        if (n < m_nLastChild) TellNode(ECheckRule::Alias, n, "stands before a node that is a child");
        if (node.nChildCount != 0) TellNode(ECheckRule::Alias, n, "has children");
        if (node.nInfo >= m_image.EntryCount()) return; // told as an entry that is not there
        uint32_t const nOwner = m_image.Entry(node.nInfo).nNode & ~ADDRINFO_SUPERSEDED;
        if (!IsOfficeOf(nOwner, node))
            return TellNode(ECheckRule::Alias, n, "has no organisation of its parent and entry beside it");
        if (m_vFound[node.nInfo]) TellNode(ECheckRule::Alias, n, "is a second alias of node " + Number(nOwner));
        m_vFound[node.nInfo] = true;
        auto const strName = m_image.Text(node.nName);
        // Made of the whole name, the alias may go on where the name that is shown was cut.
        if (strName && !BeginsWith(*strName, Searched(m_image.Node(nOwner))))
            TellNode(ECheckRule::Alias, n, "is not what node " + Number(nOwner) + " is searched for by");
    }

    // Whether the node is an organisation that has the parent and the entry of the alias.
    bool IsOfficeOf(uint32_t n, tagADDRNODE const& alias) const {
        if (!IsNode(n) || !IsChild(n)) return false;
        tagADDRNODE const node = m_image.Node(n);
        return node.nLevel == LEVEL_OFFICE && node.nParent == alias.nParent && node.nInfo == alias.nInfo;
    }

    // Of a name that is told already when it has none or is too long: nothing.
    std::string Searched(tagADDRNODE const& node) const {
        auto const strName = m_image.Text(node.nName);
        return strName && strName->size() <= NAME_LIMIT ? SearchedName(std::string(*strName)) : "";
    }

    std::vector<bool> m_vFound; // by entry: its organisation has an alias
    uint32_t m_nLastChild = 0;
};

} // namespace

void CheckOffices(CCheckImage const& image, CCheckReport& report) {
    COfficeCheck(image, report).Check();
}

} // namespace qe
