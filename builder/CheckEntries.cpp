// CheckEntries.cpp - the rules of entries: codes, their order, nodes, successors.
#include "builder/CheckRules.h"

#include <algorithm>
#include <string_view>

namespace qe {

namespace {

bool IsDigits(std::string_view str) {
    return std::all_of(str.begin(), str.end(), [](char c) { return c >= '0' && c <= '9'; });
}

class CEntryCheck : CRecordCheck {
  public:
    CEntryCheck(CCheckImage const& image, CCheckReport& report) : CRecordCheck(image, report) {}

    void Check() {
        for (uint32_t n = 0; n < m_image.EntryCount(); ++n) {
            CheckNode(n);
            CheckCodes(n);
            if (n > 0) CheckOrder(n);
        }
        for (uint32_t n = 0; n < m_image.NodeCount(); ++n)
            if (uint32_t const nName = m_image.Node(n).nName; nName >= m_nLowestCode && nName < m_nCodesEnd)
                TellNode(ECheckRule::CodeOrder, n, "has its name among the codes");
    }

  private:
    void CheckNode(uint32_t n) {
        uint32_t const nNode = m_image.Entry(n).nNode & ~ADDRINFO_SUPERSEDED;
        if (!IsNode(nNode))
            return TellEntry(ECheckRule::NodeOfEntry, n, "names node " + Number(nNode) + " outside the table");
        if (m_image.Node(nNode).nInfo != n)
            TellEntry(ECheckRule::NodeOfEntry, n,
                      "names node " + Number(nNode) + ", which has " + Named("entry", m_image.Node(nNode).nInfo));
        if (IsAlias(nNode)) TellEntry(ECheckRule::NodeOfEntry, n, "names an alias");
        uint8_t const nLevel = m_image.Node(nNode).nLevel;
        if (nLevel < LEVEL_TOWN) TellEntry(ECheckRule::NodeOfEntry, n, "names a prefecture or a city");
        if ((m_image.Entry(n).nNode & ADDRINFO_SUPERSEDED) != 0 && nLevel > LEVEL_TOWN)
            TellEntry(ECheckRule::NodeOfEntry, n, "is superseded, but names no town");
    }

    void CheckCodes(uint32_t n) {
        tagADDRINFO const entry = m_image.Entry(n);
        auto const strCode = m_image.Text(entry.nCode);
        if (!strCode || !m_image.IsWhole(entry.nCode) || strCode->size() != CODE_DIGITS || !IsDigits(*strCode))
            return TellEntry(ECheckRule::Code, n, "has no code of seven digits");
        uint64_t const nOld = uint64_t{entry.nCode} + CODE_DIGITS + 1;
        auto const strOld = m_image.Text(nOld);
        if (!strOld || !IsDigits(*strOld) || (!strOld->empty() && strOld->size() != 3 && strOld->size() != 5))
            return TellEntry(ECheckRule::Code, n, "has an old code that has neither three nor five digits");
        m_nLowestCode = std::min(m_nLowestCode, entry.nCode);
        m_nCodesEnd = std::max(m_nCodesEnd, nOld + strOld->size() + 1);
        if ((entry.nNode & ADDRINFO_SUPERSEDED) != 0) CheckSuccessor(n, nOld + strOld->size() + 1);
    }

    void CheckSuccessor(uint32_t n, uint64_t nOffset) {
        auto const nSuccessor = m_image.LongAt(nOffset);
        if (!nSuccessor) return TellEntry(ECheckRule::Successor, n, "has no successor behind its old code");
        if (*nSuccessor >= m_image.EntryCount())
            return TellEntry(ECheckRule::Successor, n,
                             "names the entry " + Number(*nSuccessor) + " outside the table");
        uint32_t const nNode = m_image.Entry(*nSuccessor).nNode;
        if ((nNode & ADDRINFO_SUPERSEDED) != 0)
            TellEntry(ECheckRule::Successor, n,
                      "names the entry " + Number(*nSuccessor) + ", which is superseded itself");
        else if (IsNode(nNode) && m_image.Node(nNode).nLevel == LEVEL_OFFICE)
            TellEntry(ECheckRule::Successor, n, "names the entry " + Number(*nSuccessor) + ", an organisation's");
    }

    void CheckOrder(uint32_t n) {
        tagADDRINFO const before = m_image.Entry(n - 1), entry = m_image.Entry(n);
        auto const strBefore = m_image.Text(before.nCode), strCode = m_image.Text(entry.nCode);
        if (!strBefore || !strCode) return; // told already
        int const nOrder = strBefore->substr(0, CODE_DIGITS + 1).compare(strCode->substr(0, CODE_DIGITS + 1));
        uint32_t const nNodeBefore = before.nNode & ~ADDRINFO_SUPERSEDED, nNode = entry.nNode & ~ADDRINFO_SUPERSEDED;
        if (nOrder > 0 || (nOrder == 0 && nNodeBefore >= nNode))
            TellEntry(ECheckRule::CodeOrder, n, "stands behind one of a higher code or node");
        // Entries of one code may share its text; another code's text stands behind all before it.
        if (nOrder < 0 && entry.nCode <= m_nHighestCode)
            TellEntry(ECheckRule::CodeOrder, n, "has its code before others'");
        m_nHighestCode = std::max(m_nHighestCode, entry.nCode);
    }

    uint32_t m_nLowestCode = UINT32_MAX, m_nHighestCode = 0;
    uint64_t m_nCodesEnd = 0; // behind the last text of them
};

} // namespace

void CheckEntries(CCheckImage const& image, CCheckReport& report) {
    CEntryCheck(image, report).Check();
}

} // namespace qe
