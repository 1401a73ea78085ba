// Refine.cpp - refinement search: from a part of a postal code or of an address to the tree of all that it can mean.
#include "dic/AddrDic.h"
#include "dic/ImageHeader.h"
#include "dic/ImageText.h"
#include "dic/NodeEntry.h"
#include "dic/NodeRange.h"
#include "dic/Suffix.h"
#include "tree/DispTree.h"
#include "tree/TreeBuilder.h"

#include <cstring>

namespace {

// No text of a query: normalised codes hold nothing but digits, "?" and "*".
constexpr char NO_QUERY[] = "-";

// Bytes of the text that the city's name covers, -1 when the text does not begin like it: a name of two parts may be
// given by the second one alone, every other name as a whole.
long CoveredByCity(char const* pszText, char const* pszName) {
    unsigned short nType = SHIKUGUN_OTHER;
    size_t const nFront = FrontPartLength(pszName, &nType);
    if (nFront == 0) return MatchName(pszText, pszName);
    if (std::strncmp(pszText, pszName, nFront) == 0) return static_cast<long>(nFront);
    return MatchName(pszText, pszName + nFront);
}

// Cities whose names an address text begins with, and what the rest of the text names in them.
class CCitySearch {
  public:
    CCitySearch(CAddrDic const& owner, std::vector<tagADDRNODE const*>& vNode)
        : m_owner(owner), m_text(owner), m_walk(owner), m_vNode(vNode) {}

    void Search(char const* pszText) {
        CNodeRange const cities = LevelNodes(m_owner, HDR_FIRST_CITY, HDR_CITY_COUNT);
        for (uint32_t n = cities.nFirst; n < cities.nEnd; ++n) LookAt(*m_owner.GetAddrNode(n), pszText);
        if (!m_vNode.empty()) return;
        for (tagADDRNODE const* const pCity : m_vPartly) CollectCurrent(m_owner, m_walk, *pCity, m_vNode);
    }

  private:
    void LookAt(tagADDRNODE const& city, char const* pszText) {
        char const* const pszName = m_text.At(city.nName);
        if (pszName == nullptr || *pszName == '\0') return;
        long const nCovered = CoveredByCity(pszText, pszName);
        if (nCovered < 0) return;
        char const* const pszRest = pszText + nCovered;
        tagADDRNODE const* const pFound = *pszRest == '\0' ? &city : FindChild(city, pszRest);
        if (pFound != nullptr)
            CollectCurrent(m_owner, m_walk, *pFound, m_vNode);
        else
            m_vPartly.push_back(&city);
    }

    // The first child whose name begins the text; one without a name begins every text.
    tagADDRNODE const* FindChild(tagADDRNODE const& city, char const* pszText) const {
        CNodeRange const children = ChildrenOf(m_owner, city);
        for (uint32_t n = children.nFirst; n < children.nEnd; ++n) {
            char const* const pszName = m_text.At(m_owner.GetAddrNode(n)->nName);
            if (pszName != nullptr && MatchName(pszText, pszName) >= 0) return m_owner.GetAddrNode(n);
        }
        return nullptr;
    }

    CAddrDic const& m_owner;
    CImageText m_text;
    CSubtreeWalk m_walk;
    std::vector<tagADDRNODE const*>& m_vNode;
    std::vector<tagADDRNODE const*> m_vPartly;
};

} // namespace

int CAddrDic::MakeRefineTree(char const* pszCode, char const* pszAddr) {
    if (pszCode != nullptr) MakePostCode(const_cast<char*>(pszCode)); // the caller's own, by agreement
    if (pszCode == nullptr) pszCode = "";
    if (pszAddr == nullptr) pszAddr = "";
    if (std::strcmp(pszCode, szRefinePostCode) == 0 && std::strcmp(pszAddr, szRefineAddr) == 0) return 1;
    KeepQuery(NO_QUERY, ""); // until the tree is made: memory may run out
    vRefineTree.clear();
    int nResult = 1;
    if (*pszCode != '\0') {
        nResult = MakeTreeFromCode(pszCode);
    } else if (*pszAddr != '\0') {
        SeparateAddr(pszAddr);
        recSortTree(vRefineTree);
    }
    KeepQuery(pszCode, pszAddr);
    return nResult;
}

// The texts of a query, which another one with the same texts finds answered. Texts that are longer than their members
// are not kept: no query will equal them.
void CAddrDic::KeepQuery(char const* pszCode, char const* pszAddr) {
    size_t const nCode = std::strlen(pszCode), nAddr = std::strlen(pszAddr);
    if (nCode >= sizeof szRefinePostCode || nAddr >= sizeof szRefineAddr) return;
    std::memcpy(szRefinePostCode, pszCode, nCode + 1);
    std::memcpy(szRefineAddr, pszAddr, nAddr + 1);
}

// A code that is not there begins at the first entry, which ends the walk. At the end of the table the tree is left as
// it has grown: its users know it unsorted then.
int CAddrDic::MakeTreeFromCode(char const* pszCode) {
    long const nFound = SearchPostCode7(pszCode);
    size_t const nLength = std::strlen(pszCode);
    CImageText const text(*this);
    CTreeBuilder builder(*this, vRefineTree);
    for (unsigned long nIndex = nFound < 0 ? 0 : static_cast<unsigned long>(nFound);; ++nIndex) {
        tagADDRINFO const* const pInfo = GetAddrInfo(nIndex);
        if (pInfo == nullptr) return 0;
        if (text.ComparePrefix(GetString(pInfo->nCode), pszCode, nLength) != 0) break;
        builder.Add(pInfo);
    }
    recSortTree(vRefineTree);
    return 1;
}

int CAddrDic::SeparateAddr(char const* pszAddr) {
    tagADDR addr(0);
    DivideAddr(pszAddr, &addr);
    std::vector<tagADDRNODE const*> vNode;
    if (addr.pPrefNode == nullptr)
        SearchCity2(pszAddr, vNode);
    else
        recCollectNode(addr.pCityNode == nullptr   ? addr.pPrefNode
                       : addr.pTownNode == nullptr ? addr.pCityNode
                                                   : addr.pTownNode,
                       vNode);
    return MakeTreeFromNode(vNode);
}

int CAddrDic::SearchCity2(char const* pszAddr, std::vector<tagADDRNODE const*>& vNode) {
    vNode.clear();
    if (pszAddr != nullptr && pImage != nullptr) CCitySearch(*this, vNode).Search(pszAddr);
    return 0;
}

int CAddrDic::MakeTreeFromNode(std::vector<tagADDRNODE const*>& vNode) {
    vRefineTree.clear();
    CTreeBuilder builder(*this, vRefineTree);
    for (tagADDRNODE const* const pNode : vNode)
        if (pNode != nullptr) builder.Add(GetAddrInfo(pNode->nInfo));
    return 1;
}
