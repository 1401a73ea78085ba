// DispTree.cpp - display names, and addresses as a tree of prefectures, cities and what lies below them.
#include "tree/DispTree.h"

#include "tree/NameForUI.h"
#include "tree/TreeBuilder.h"

#include <algorithm>

namespace {

constexpr size_t NOT_THERE = static_cast<size_t>(-1);
constexpr int NAME_SIZE = sizeof(tagADDRPNT::szName);

// Reads bare tables.
struct CTableReader {
    tagADDRNODE const* pNodeTable;
    char const* pszStrings;

    char const* Name(tagADDRNODE const& node) const { return pszStrings + node.nName; }
    tagADDRNODE const* Above(tagADDRNODE const& node) const {
        return node.nParent == ADDR_NONE ? nullptr : pNodeTable + node.nParent;
    }
};

// Reads within the bounds of an image.
struct CImageReader {
    CAddrDic const& owner;
    CImageText const& text;

    char const* Name(tagADDRNODE const& node) const { return text.At(node.nName); }
    tagADDRNODE const* Above(tagADDRNODE const& node) const { return owner.GetAddrNode(node.nParent); }
};

size_t FindEntry(std::vector<tagADDRPNT> const& vEntry, tagADDRNODE const* pNode) {
    for (size_t n = 0; n < vEntry.size(); ++n)
        if (vEntry[n].pNode == pNode) return n;
    return NOT_THERE;
}

// A new last entry, whose name the function writes.
template <typename FName>
void AppendEntry(std::vector<tagADDRPNT>& vEntry, tagADDRNODE const* pNode, FName const& WriteName) {
    tagADDRPNT& entry = vEntry.emplace_back();
    entry.pNode = pNode;
    WriteName(pNode, entry.szName);
}

// What puts an address into the tree, once it is known where its prefecture and its city are.
template <typename FName>
void AppendAddress(std::vector<tagADDRPNT>& tree, size_t nPref, size_t nCity, tagADDRNODE const* const* ppNode,
                   FName const& WriteName) {
    if (nPref == NOT_THERE) AppendEntry(tree, ppNode[0], WriteName);
    std::vector<tagADDRPNT>& vCity = nPref == NOT_THERE ? tree.back().vChild : tree[nPref].vChild;
    if (nCity != NOT_THERE) return AppendEntry(vCity[nCity].vChild, ppNode[2], WriteName);
    AppendEntry(vCity, ppNode[1], WriteName);
    // Not below the new city, when its prefecture is not the last one: the tree's users know it so.
    std::vector<tagADDRPNT>& vLast = tree.back().vChild;
    if (!vLast.empty()) AppendEntry(vLast.back().vChild, ppNode[2], WriteName);
}

} // namespace

int GetNameForUI(tagADDRNODE const* pNode, tagADDRNODE const* pNodeTable, unsigned char const* pStrings, char* pszOut,
                 int nSize) {
    if (pNode == nullptr || pNodeTable == nullptr || pStrings == nullptr || pszOut == nullptr) return 0;
    CTableReader const reader = {pNodeTable, reinterpret_cast<char const*>(pStrings)};
    ComposeNameForUI(reader, *pNode, pszOut, nSize);
    return 1;
}

int MakeTreeData(std::vector<tagADDRPNT>& tree, tagADDRNODE const** ppNode, tagADDRNODE const* pNodeTable,
                 unsigned char const* pStrings, int nSize) {
    if (ppNode == nullptr) return 1;
    size_t const nPref = FindEntry(tree, ppNode[0]);
    size_t const nCity = nPref == NOT_THERE ? NOT_THERE : FindEntry(tree[nPref].vChild, ppNode[1]);
    AppendAddress(tree, nPref, nCity, ppNode, [=](tagADDRNODE const* pNode, char(&szName)[NAME_SIZE]) {
        GetNameForUI(pNode, pNodeTable, pStrings, szName, std::min(nSize, NAME_SIZE));
    });
    return 1;
}

void recSortTree(std::vector<tagADDRPNT>& tree) {
    for (tagADDRPNT& entry : tree) recSortTree(entry.vChild);
    std::sort(tree.begin(), tree.end());
}

// --- trees of the class --------------------------------------------------------------------------------------------

tagADDRPNT MakeEntry(CAddrDic const& dic, CImageText const& text, tagADDRNODE const& node) {
    tagADDRPNT entry;
    entry.pNode = &node;
    ComposeNameForUI(CImageReader{dic, text}, node, entry.szName, NAME_SIZE);
    return entry;
}

// Entries of one city mostly follow one another.
size_t CTreeBuilder::CLevel::Find(tagADDRNODE const* pNode) {
    if (pNode == m_pLast) return m_nLast;
    auto const it = m_mapPosition.find(pNode);
    if (it == m_mapPosition.end()) return NOT_THERE;
    m_pLast = pNode;
    return m_nLast = it->second;
}

void CTreeBuilder::Add(tagADDRINFO const* pInfo) {
    tagADDRNODE const* vNode[3];
    if (m_owner.GetAddrPtr(pInfo, &vNode[0], &vNode[1], &vNode[2]) == 0) return;
    if (vNode[0] == nullptr || vNode[1] == nullptr) return;
    size_t const nPref = m_prefs.Find(vNode[0]);
    if (nPref == NOT_THERE) {
        m_prefs.Append(vNode[0]);
        m_vCities.emplace_back();
    }
    CLevel& cities = nPref == NOT_THERE ? m_vCities.back() : m_vCities[nPref];
    size_t const nCity = cities.Find(vNode[1]);
    if (nCity == NOT_THERE) cities.Append(vNode[1]);
    AppendAddress(m_tree, nPref, nCity, vNode, [this](tagADDRNODE const* pNode, char(&szName)[NAME_SIZE]) {
        ComposeNameForUI(CImageReader{m_owner, m_text}, *pNode, szName, NAME_SIZE);
    });
}
