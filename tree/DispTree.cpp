// DispTree.cpp - display names, and addresses as a tree of prefectures, cities and what lies below them.
#include "tree/DispTree.h"

#include "dic/NodeEntry.h"
#include "dic/TextSort.h"
#include "tree/TreeBuilder.h"

#include <algorithm>
#include <memory>
#include <new>

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
    CImageView const& image;

    char const* Name(tagADDRNODE const& node) const { return image.At(node.nName); }
    tagADDRNODE const* Above(tagADDRNODE const& node) const { return image.Node(node.nParent); }
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
    SortEntries(tree);
}

void SortEntries(std::vector<tagADDRPNT>& vEntry) {
    if (std::is_sorted(vEntry.begin(), vEntry.end())) return;
    CTextItem vFew[FEW_TEXTS];
    std::unique_ptr<CTextItem[]> pMany;
    CTextItem* pItem = vFew;
    if (vEntry.size() > FEW_TEXTS) {
        pMany.reset(new (std::nothrow) CTextItem[vEntry.size()]);
        pItem = pMany.get();
        // The entries themselves, each moved many times.
        if (pItem == nullptr) return std::stable_sort(vEntry.begin(), vEntry.end());
    }
    for (size_t n = 0; n < vEntry.size(); ++n) pItem[n] = {0, vEntry[n].szName, n};
    SortTexts(pItem, pItem + vEntry.size(), NAME_SIZE / WORD_BYTES);
    PutInOrder(pItem, vEntry.size(), vEntry.data());
}

// --- trees of the class --------------------------------------------------------------------------------------------

void CEntryWriter::Append(tagADDRNODE const& node, std::vector<tagADDRPNT>& vEntry) {
    CImageReader const reader = {m_image};
    tagADDRPNT& entry = vEntry.emplace_back();
    entry.pNode = &node;
    if (node.nLevel <= LEVEL_CITY) return ComposeNameForUI(reader, node, entry.szName, NAME_SIZE);
    if (node.nParent != m_nParent) {
        m_names = CTownNames();
        m_names.Collect(reader, m_image.Node(node.nParent), MAX_NAME_STEPS - 1);
        m_nParent = node.nParent;
    }
    CTownNames names = m_names;
    names.AddBelow(reader, node);
    CFieldText out(entry.szName, NAME_SIZE);
    names.Append(out);
}

// The city's place in m_vCity; a prefecture or city that the tree lacks is put in.
size_t CTreeBuilder::FindCity(tagADDRNODE const& pref, tagADDRNODE const& city) {
    auto const [itPref, bNewPref] = m_mapPref.emplace(&pref, m_vPref.size());
    if (bNewPref) {
        m_vPref.emplace_back();
        m_writer.Append(pref, m_tree);
    }
    size_t const nPref = itPref->second;
    auto const [itCity, bNewCity] = m_vPref[nPref].mapCity.emplace(&city, m_vCity.size());
    if (bNewCity) {
        std::vector<tagADDRPNT>& vEntry = m_tree[nPref].vChild;
        m_vPref[nPref].nLastCity = m_vCity.size();
        m_vCity.push_back({nPref, vEntry.size(), 0});
        m_writer.Append(city, vEntry);
    }
    return itCity->second;
}

void CTreeBuilder::Add(tagADDRINFO const* pInfo) {
    if (pInfo == nullptr || IsSuperseded(*pInfo)) return;
    tagADDRNODE const* const pNode = m_image.Node(pInfo->nNode);
    if (pNode == nullptr) return;
    size_t nCity = m_nCity;
    // Prefecture and city are met on the way up from the parent on: neighbours share them.
    if (!m_bParent || pNode->nParent != m_nParent) {
        tagADDRNODE const *pPref = nullptr, *pCity = nullptr, *pTown = nullptr;
        m_owner.GetAddrPtr(pInfo, &pPref, &pCity, &pTown);
        size_t const nCities = m_vCity.size();
        nCity = m_nCity = pPref == nullptr || pCity == nullptr ? NOT_THERE : FindCity(*pPref, *pCity);
        m_bParent = true;
        m_nParent = pNode->nParent;
        // Not below the new city, when its prefecture is not the last one: the tree's users know it so.
        if (m_vCity.size() != nCities) nCity = m_vPref.back().nLastCity;
    }
    if (nCity == NOT_THERE) return;
    m_vWaiting.push_back({pNode, nCity});
    ++m_vCity[nCity].nEntries;
}

void CTreeBuilder::Finish() {
    auto const Below = [this](CCity const& city) -> std::vector<tagADDRPNT>& {
        return m_tree[city.nPref].vChild[city.nIndex].vChild;
    };
    for (CCity const& city : m_vCity) Below(city).reserve(city.nEntries);
    for (CWaiting const& waiting : m_vWaiting) m_writer.Append(*waiting.pNode, Below(m_vCity[waiting.nCity]));
}
