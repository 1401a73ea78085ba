// TreeBuilder.h - putting many addresses into a new display tree (internal).
//
//   CTreeBuilder builder(dic, vRefineTree);       // the tree is empty
//   builder.Add(pInfo);                           // does what MakeTreeData does with the entry's nodes
//
// MakeTreeData looks for a prefecture and a city from the front of their levels. In a tree that has grown from nothing
// each is there once, so that an index finds the same entry.
#ifndef QEADRS_TREE_TREEBUILDER_H
#define QEADRS_TREE_TREEBUILDER_H

#include "dic/AddrDic.h"
#include "dic/ImageText.h"
#include "tree/AddrPnt.h"

#include <cstddef>
#include <map>
#include <vector>

// An entry with its display name, without children.
tagADDRPNT MakeEntry(CAddrDic const& dic, CImageText const& text, tagADDRNODE const& node);

class CTreeBuilder {
  public:
    // REQUIRES: the tree is empty, and nobody else changes it.
    CTreeBuilder(CAddrDic& owner, std::vector<tagADDRPNT>& tree) : m_owner(owner), m_text(owner), m_tree(tree) {}

    // The address of an entry; nothing for a superseded one and for one without a prefecture or a city.
    void Add(tagADDRINFO const* pInfo);

  private:
    // Where the entries of one level stand, by their nodes.
    class CLevel {
      public:
        // The position, NOT_THERE when there is none.
        size_t Find(tagADDRNODE const* pNode);
        void Append(tagADDRNODE const* pNode) { m_mapPosition.emplace(pNode, m_mapPosition.size()); }

      private:
        std::map<tagADDRNODE const*, size_t> m_mapPosition;
        tagADDRNODE const* m_pLast = nullptr; // found before
        size_t m_nLast = 0;
    };

    CAddrDic& m_owner;
    CImageText m_text;
    std::vector<tagADDRPNT>& m_tree;
    CLevel m_prefs;
    std::vector<CLevel> m_vCities; // of each prefecture of the tree
};

#endif
