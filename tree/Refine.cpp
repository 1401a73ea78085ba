// Refine.cpp - refinement search: from a part of a postal code or of an address to the tree of all that it can mean.
#include "dic/AddrDic.h"
#include "dic/NameSearch.h"
#include "dic/NodeEntry.h"
#include "dic/NodeRange.h"
#include "dic/Prefix.h"
#include "dic/Suffix.h"
#include "tree/DispTree.h"
#include "tree/TreeBuilder.h"

#include <algorithm>
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
    CCitySearch(CImageView const& image, CNameMarks& marks, std::vector<tagADDRNODE const*>& vNode)
        : m_image(image), m_marks(marks), m_walk(image), m_nLeft(image.NodeCount()), m_vNode(vNode) {}

    void Search(char const* pszText) {
        CNameSearch cities(m_image, m_marks, pszText);
        cities.ForEach(LevelNodes(m_image, HDR_FIRST_CITY, HDR_CITY_COUNT),
                       [&](uint32_t n, CNameSearch::CName const& name) {
                           LookAt(*m_image.Node(n), name, pszText);
                           return false;
                       });
        if (!m_vNode.empty()) return;
        for (tagADDRNODE const* const pCity : m_vPartly) CollectCurrent(m_image, m_walk, *pCity, m_vNode);
    }

  private:
    void LookAt(tagADDRNODE const& city, CNameSearch::CName const& name, char const* pszText) {
        if (name.psz == nullptr || *name.psz == '\0') return;
        long const nCovered = name.bOnePart ? name.nLength : CoveredByCity(pszText, name.psz);
        if (nCovered < 0) return;
        char const* const pszRest = pszText + nCovered;
        tagADDRNODE const* const pFound = *pszRest == '\0' ? &city : FindChild(city, pszRest);
        if (pFound != nullptr)
            CollectCurrent(m_image, m_walk, *pFound, m_vNode);
        else
            m_vPartly.push_back(&city);
    }

    // The first child whose name begins the text; one without a name begins every text. All cities together have no more
    // children than there are nodes; in a damaged dictionary, where they share them, the search ends with as many.
    tagADDRNODE const* FindChild(tagADDRNODE const& city, char const* pszText) {
        CNodeRange children = ChildrenOf(m_image, city);
        children.nEnd = children.nFirst + std::min(children.Count(), m_nLeft);
        m_nLeft -= children.Count();
        tagADDRNODE const* pFound = nullptr;
        CNameSearch search(m_image, m_marks, pszText);
        search.ForEach(children, [&](uint32_t n, CNameSearch::CName const& name) {
            if (name.nLength >= 0) pFound = m_image.Node(n);
            return pFound != nullptr;
        });
        return pFound;
    }

    CImageView const& m_image;
    CNameMarks& m_marks;
    CSubtreeWalk m_walk;
    uint32_t m_nLeft; // children that will still be looked at
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
    CPrefix const prefix(pszCode);
    CImageView const image(*this);
    CTreeBuilder builder(*this, vRefineTree);
    tagADDRINFO const* pInfo = nullptr;
    for (uint32_t nIndex = nFound < 0 ? 0 : static_cast<uint32_t>(nFound);; ++nIndex) {
        pInfo = image.Info(nIndex);
        if (pInfo == nullptr || prefix.Order(image, pInfo->nCode) != 0) break;
        builder.Add(pInfo);
    }
    builder.Finish();
    if (pInfo == nullptr) return 0;
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
    if (pszAddr != nullptr && pImage != nullptr)
        CCitySearch(CImageView(*this), CSearchMemoryRef(pSearchMemory)->marks, vNode).Search(pszAddr);
    return 0;
}

int CAddrDic::MakeTreeFromNode(std::vector<tagADDRNODE const*>& vNode) {
    vRefineTree.clear();
    CImageView const image(*this);
    CTreeBuilder builder(*this, vRefineTree);
    for (tagADDRNODE const* const pNode : vNode)
        if (pNode != nullptr) builder.Add(image.Info(pNode->nInfo));
    builder.Finish();
    return 1;
}
