// TreeBuilder.h - entries with their display names, and putting many addresses into a new display tree (internal).
//
//   CTreeBuilder builder(dic, vRefineTree);       // the tree is empty
//   builder.Add(pInfo);                           // does what MakeTreeData does with the entry's nodes
//   builder.Finish();
//
// MakeTreeData looks for a prefecture and a city from the front of their levels. In a tree that has grown from nothing
// each is there once, so that an index finds the same entry. What lies below the cities waits until all is known: each
// list is allocated once, at its size.
#ifndef QEADRS_TREE_TREEBUILDER_H
#define QEADRS_TREE_TREEBUILDER_H

#include "dic/AddrDic.h"
#include "dic/ImageView.h"
#include "tree/AddrPnt.h"
#include "tree/NameForUI.h"

#include <cstddef>
#include <map>
#include <vector>

// Sorts entries by display name; those of one name keep their order. Nothing is thrown: when memory is short it only
// takes longer.
void SortEntries(std::vector<tagADDRPNT>& vEntry);

// Appends entries with their display names, one after another.
class CEntryWriter {
  public:
    explicit CEntryWriter(CImageView const& image) : m_image(image) {}

    void Append(tagADDRNODE const& node, std::vector<tagADDRPNT>& vEntry);

  private:
    CImageView m_image;
    // The names on the way up from the node before, its own left out: its neighbours share them.
    uint32_t m_nParent = ADDR_NONE;
    CTownNames m_names;
};

class CTreeBuilder {
  public:
    // REQUIRES: the tree is empty, and nobody else changes it.
    CTreeBuilder(CAddrDic& owner, std::vector<tagADDRPNT>& tree)
        : m_owner(owner), m_image(owner), m_writer(m_image), m_tree(tree) {}

    // The address of an entry; nothing for a superseded one and for one without a prefecture or a city.
    void Add(tagADDRINFO const* pInfo);

    // Writes what lies below the cities.
    void Finish();

  private:
    // A prefecture of the tree, and where the cities below it stand in m_vCity.
    struct CPref {
        std::map<tagADDRNODE const*, size_t> mapCity;
        size_t nLastCity = 0;
    };
    // A city of the tree: its position, and how many entries will lie below it.
    struct CCity {
        size_t nPref, nIndex, nEntries;
    };
    // What will lie below a city, by its place in m_vCity.
    struct CWaiting {
        tagADDRNODE const* pNode;
        size_t nCity;
    };

    size_t FindCity(tagADDRNODE const& pref, tagADDRNODE const& city);

    CAddrDic& m_owner;
    CImageView m_image;
    CEntryWriter m_writer;
    std::vector<tagADDRPNT>& m_tree;
    std::map<tagADDRNODE const*, size_t> m_mapPref;
    std::vector<CPref> m_vPref;
    std::vector<CCity> m_vCity; // in the order in which they came
    std::vector<CWaiting> m_vWaiting;
    // Of the entry before: the parent of its node, and the city of all nodes with that parent.
    bool m_bParent = false;
    uint32_t m_nParent = 0;
    size_t m_nCity = 0;
};

#endif
