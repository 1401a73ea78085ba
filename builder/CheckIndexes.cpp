// CheckIndexes.cpp - the rules of the two indexes.
#include "builder/CheckRules.h"

#include <string_view>
#include <vector>

namespace qe {

namespace {

class CIndexCheck : CRecordCheck {
  public:
    CIndexCheck(CCheckImage const& image, CCheckReport& report) : CRecordCheck(image, report) {}

    void Check() {
        CheckIndex(ECheckRule::CityIndex, "city index ", HDR_CITY_INDEX, HDR_CITY_COUNT, LEVEL_CITY);
        CheckIndex(ECheckRule::OfficeIndex, "organisation index ", HDR_OFFICE_INDEX, HDR_OFFICE_COUNT, LEVEL_OFFICE);
    }

  private:
    void CheckIndex(ECheckRule nRule, char const* pszIndex, tagHEADERWORD nTable, tagHEADERWORD nCountWord,
                    uint8_t nLevel) {
        std::vector<bool> vSeen(m_image.NodeCount());
        std::string_view strBefore;
        uint32_t nBefore = 0;
        auto const Tell = [&](uint32_t n, uint32_t nNode, std::string const& strWhat) {
            if (!m_report.IsTold(nRule)) return m_report.Add({nRule, "", "", ""});
            m_report.Add({nRule, pszIndex + Number(n), m_image.Path(nNode), strWhat});
        };
        for (uint32_t n = 0; n < m_image.Word(nCountWord); ++n) {
            uint32_t const nNode = m_image.IndexEntry(nTable, n);
            if (!IsNode(nNode) || m_image.Node(nNode).nLevel != nLevel) {
                Tell(n, nNode, "names node " + Number(nNode) + ", which is none of level " + Number(nLevel));
                continue;
            }
            if (vSeen[nNode]) Tell(n, nNode, "names node " + Number(nNode) + " a second time");
            vSeen[nNode] = true;
            auto const strName = m_image.Text(m_image.Node(nNode).nName);
            if (!strName || strName->size() > NAME_LIMIT) continue; // told already
            if (*strName < strBefore) Tell(n, nNode, "stands behind a higher name");
            if (*strName == strBefore && nNode < nBefore) Tell(n, nNode, "stands behind a later node of its name");
            strBefore = *strName;
            nBefore = nNode;
        }
        for (uint32_t n = 0; n < m_image.NodeCount(); ++n)
            if (m_image.Node(n).nLevel == nLevel && !vSeen[n]) TellNode(nRule, n, "is not in the index");
    }
};

} // namespace

void CheckIndexes(CCheckImage const& image, CCheckReport& report) {
    CIndexCheck(image, report).Check();
}

} // namespace qe
