// CheckTexts.cpp - the rules of texts: names, readings, prefectures, the order of towns.
#include "builder/CheckRules.h"

#include "builder/ImageWriter.h"
#include "builder/Text.h"
#include "dic/AddrDic.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace qe {

namespace {

constexpr size_t LONGEST_CITY = 255; // prefecture and city together

class CTextCheck : CRecordCheck {
  public:
    CTextCheck(CCheckImage const& image, CCheckReport& report)
        : CRecordCheck(image, report), m_vReading(image.AreaSize()), m_vOwned(image.AreaSize()) {}

    void Check() {
        for (uint32_t n = 0; n < m_image.NodeCount(); ++n)
            if (auto const strName = m_image.Text(m_image.Node(n).nName))
                Mark(m_vReading, m_image.Node(n).nName + uint64_t{strName->size()} + 1);
        for (uint32_t n = 0; n < m_image.NodeCount(); ++n) CheckNode(n, m_image.Node(n));
        CheckPrefNames();
        for (uint32_t n = 0; n < m_image.NodeCount(); ++n)
            if (m_image.Node(n).nLevel == LEVEL_CITY) CheckTownOrder(m_image.Node(n));
    }

  private:
    void CheckNode(uint32_t n, tagADDRNODE const& node) {
        auto const strName = m_image.Text(node.nName);
        if (!strName) return TellNode(ECheckRule::Name, n, "has no name in the string area");
        if (!m_image.IsWhole(node.nName)) TellNode(ECheckRule::Name, n, "has a name that begins within another text");
        if (strName->size() > NAME_LIMIT)
            TellNode(ECheckRule::Name, n, "has a name of " + Number(strName->size()) + " bytes");
        if (strName->empty() && node.nLevel != LEVEL_TOWN && node.nLevel != LEVEL_GROUP)
            TellNode(ECheckRule::Name, n, "has no name");
        bool const bAlias = IsAlias(n);
        if (!bAlias && !m_image.IsUtf8(node.nName)) TellNode(ECheckRule::Name, n, "has a name that is not UTF-8");
        CheckReading(n, node, node.nName + uint64_t{strName->size()} + 1, bAlias);
        if (m_vOwned[node.nName]) TellNode(ECheckRule::Shared, n, "has the name of a prefecture, a city or a town");
        if (m_vReading[node.nName]) TellNode(ECheckRule::Shared, n, "has the reading of a node as its name");
        if (node.nLevel <= LEVEL_TOWN) Mark(m_vOwned, node.nName);
        if (node.nLevel == LEVEL_CITY && IsNode(node.nParent)) {
            auto const strPref = m_image.Text(m_image.Node(node.nParent).nName);
            if (strPref && strPref->size() + strName->size() > LONGEST_CITY)
                TellNode(ECheckRule::Name, n, "and its prefecture have more than 255 bytes");
        }
    }

    static void Mark(std::vector<bool>& vMark, uint64_t nOffset) {
        if (nOffset < vMark.size()) vMark[static_cast<size_t>(nOffset)] = true;
    }

    void CheckReading(uint32_t n, tagADDRNODE const& node, uint64_t nOffset, bool bAlias) {
        auto const strReading = m_image.Text(nOffset);
        if (!strReading) return TellNode(ECheckRule::Reading, n, "has no text behind its name");
        if (!m_image.IsUtf8(nOffset)) TellNode(ECheckRule::Reading, n, "has a reading that is not UTF-8");
        bool const bNeeded = node.nLevel <= LEVEL_CITY || (node.nLevel == LEVEL_OFFICE && !bAlias);
        bool const bOfficial = m_image.Word(HDR_SOURCE) == static_cast<uint32_t>(ESource::Official);
        if (bOfficial && bNeeded && strReading->empty()) TellNode(ECheckRule::Reading, n, "has no reading");
    }

    void CheckPrefNames() {
        int nBefore = -1;
        for (uint32_t n = 0; n < m_image.NodeCount() && m_image.Node(n).nLevel == LEVEL_PREF; ++n) {
            auto const strName = m_image.Text(m_image.Node(n).nName);
            int nRow = 0;
            while (nRow < PREF_ORDER_ROWS && strName != pref_order[nRow] + PREF_ORDER_NAME) ++nRow;
            if (nRow == PREF_ORDER_ROWS) {
                TellNode(ECheckRule::PrefName, n, "is no prefecture that there is");
                continue;
            }
            if (nRow <= nBefore) TellNode(ECheckRule::PrefName, n, "stands behind a later one, or a second time");
            nBefore = nRow;
        }
    }

    // Sorted by their bytes, the names that begin with another one follow it. REQUIRES: a city.
    void CheckTownOrder(tagADDRNODE const& city) {
        uint32_t const nNodes = m_image.NodeCount();
        if (city.nFirstChild >= nNodes) return;
        struct CName {
            std::string_view strName;
            uint32_t nNode;
        };
        std::vector<CName> vName;
        uint32_t const nEnd = city.nFirstChild + std::min(city.nChildCount, nNodes - city.nFirstChild);
        for (uint32_t n = city.nFirstChild; n < nEnd && m_nTownsLeft > 0; ++n, --m_nTownsLeft) {
            auto const strName = m_image.Text(m_image.Node(n).nName);
            if (strName && strName->size() <= NAME_LIMIT) vName.push_back({*strName, n});
        }
        std::sort(vName.begin(), vName.end(), [](CName const& a, CName const& b) {
            int const nOrder = a.strName.compare(b.strName);
            return nOrder != 0 ? nOrder < 0 : a.nNode < b.nNode;
        });
        // The names that begin the one at hand, each with the first node of it and of those it begins with.
        std::vector<CName> vBeginning;
        std::vector<uint32_t> vBehind;
        for (CName const& name : vName) {
            auto const IsLonger = [&](std::string_view str) { return BeginsWith(name.strName, str); };
            while (!vBeginning.empty() && !IsLonger(vBeginning.back().strName)) vBeginning.pop_back();
            if (!vBeginning.empty() && vBeginning.back().strName == name.strName) {
                // The second town of a name: what begins the first begins it, too.
                if (vBeginning.size() > 1 && vBeginning[vBeginning.size() - 2].nNode < name.nNode)
                    vBehind.push_back(name.nNode);
                continue;
            }
            uint32_t const nFirst = vBeginning.empty() ? ADDR_NONE : vBeginning.back().nNode;
            if (nFirst < name.nNode) vBehind.push_back(name.nNode);
            vBeginning.push_back({name.strName, std::min(nFirst, name.nNode)});
        }
        std::sort(vBehind.begin(), vBehind.end());
        for (uint32_t n : vBehind)
            TellNode(ECheckRule::TownOrder, n, "stands behind a town whose name begins its own");
    }

    // By offset of the string area.
    std::vector<bool> m_vReading; // the reading of some node begins here
    std::vector<bool> m_vOwned;   // a name that must not be shared; those of upper levels stand before the others
    uint32_t m_nTownsLeft = m_image.NodeCount();
};

} // namespace

void CheckTexts(CCheckImage const& image, CCheckReport& report) {
    CTextCheck(image, report).Check();
}

} // namespace qe
