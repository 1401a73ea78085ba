// DispTree.h - the display tree: the names under which nodes are shown and sorted, and putting addresses into a tree.
//
//   std::vector<tagADDRPNT> tree;
//   tagADDRNODE const* vNode[3] = {pPref, pCity, pTown};
//   MakeTreeData(tree, vNode, pNodeTable, pStrings, 128);      // three levels: 12東京都, h千代田区, 丸の内
//   recSortTree(tree);
//
// A name begins with what puts it in its place when sorted by bytes: a prefecture's with its two-digit code, a city's
// with the letter of its class.
//
// REQUIRES (all functions): the node table and the string area are whole; nobody tells how long they are. The class
// CAddrDic, which knows, reads them within their bounds.
#ifndef QEADRS_TREE_DISPTREE_H
#define QEADRS_TREE_DISPTREE_H

#include "dic/Export.h"
#include "tree/AddrPnt.h"

// Writes the display name of a node into pszOut, at most nSize bytes; a name that fills them has no NUL. A prefecture:
// its code and its name (the name alone when pref_order lacks it). A city: the letter 'a' to 'h' of its kind
// (GetShikugunType) and its name. Anything below: the town, and behind it the organisation, or else the building and
// its floor, or else the level-3 text of up to 19 bytes. Returns 1, also when that is nothing, and 0, with nothing
// written, for null. REQUIRES: pszOut is zero-filled.
QEADRS_API int GetNameForUI(tagADDRNODE const* pNode, tagADDRNODE const* pNodeTable, unsigned char const* pStrings,
                            char* pszOut, int nSize);

// Puts an address into the tree: ppNode[0] its prefecture, [1] its city, [2] its deepest node. A prefecture and a city
// are there once, what lies below each time it is put in. A new city of a prefecture that is not the tree's last one
// becomes its last child, but the deepest node goes below the last city of the last prefecture. Always 1.
QEADRS_API int MakeTreeData(std::vector<tagADDRPNT>& tree, tagADDRNODE const** ppNode, tagADDRNODE const* pNodeTable,
                            unsigned char const* pStrings, int nSize);

// Sorts all levels by display name, the lowest first. Entries of equal names may end in any order.
QEADRS_API void recSortTree(std::vector<tagADDRPNT>& tree);

#endif
