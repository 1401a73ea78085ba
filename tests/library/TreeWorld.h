// TreeWorld.h - a dictionary whose refinement tree can be looked at, trees as lines of text, and trees compared.
#ifndef QEADRS_TESTS_LIBRARY_TREEWORLD_H
#define QEADRS_TESTS_LIBRARY_TREEWORLD_H

#include "tests/library/BrowseWorld.h"
#include "tree/DispTree.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <array>
#include <random>

using CTree = std::vector<tagADDRPNT>;
using CLines = std::vector<std::string>;
using CNumbers = std::vector<uint32_t>;
using CTriple = std::array<uint32_t, 3>; // prefecture, city, deepest node

constexpr int NAME_SIZE = 128;

// A name that need not end in NUL.
inline std::string NameOf(tagADDRPNT const& entry) {
    return {entry.szName, strnlen(entry.szName, sizeof entry.szName)};
}

// A line for each entry, its children below it and further in.
inline void AddLines(CTree const& tree, std::string const& strIndent, CLines& vLine) {
    for (tagADDRPNT const& entry : tree) {
        vLine.push_back(strIndent + NameOf(entry));
        AddLines(entry.vChild, strIndent + ' ', vLine);
    }
}
inline CLines Lines(CTree const& tree) {
    CLines vLine;
    AddLines(tree, "", vLine);
    return vLine;
}

inline tagADDRPNT Entry(std::string const& strName, CTree vChild = {}, tagADDRNODE const* pNode = nullptr) {
    tagADDRPNT entry;
    entry.pNode = pNode;
    entry.vChild = std::move(vChild);
    std::memcpy(entry.szName, strName.data(), std::min(strName.size(), sizeof entry.szName));
    return entry;
}

// Nodes, all bytes of the names, and children.
inline bool IsSame(CTree const& tree, CTree const& other) {
    return std::equal(tree.begin(), tree.end(), other.begin(), other.end(),
                      [](tagADDRPNT const& a, tagADDRPNT const& b) {
                          return a.pNode == b.pNode && std::memcmp(a.szName, b.szName, sizeof a.szName) == 0 &&
                                 IsSame(a.vChild, b.vChild);
                      });
}

class CTreeDic : public CBrowsedDic {
  public:
    using CBrowsedDic::CBrowsedDic;

    CTree& Tree() { return CAddrDicPeek(*this).vRefineTree; }
    CLines TreeLines() { return Lines(Tree()); }

    // A query whose texts stand before pages that cannot be touched; the code's can be written, as it must.
    int Refine(std::string const& strCode, std::string const& strAddr = {}) {
        CGuardedBytes const code(strCode, CGuardedBytes::Writable), addr(strAddr, CGuardedBytes::ReadOnly);
        return MakeRefineTree(code.Text(), addr.Text());
    }

    int Insert(CTree& tree, CTriple const& anNode, int nSize = NAME_SIZE) const {
        tagADDRNODE const* vNode[] = {Node(anNode[0]), Node(anNode[1]), Node(anNode[2])};
        return MakeTreeData(tree, vNode, Node(0), Strings(), nSize);
    }

    // An entry's nodes, one after another as MakeTreeData takes them.
    void InsertEntry(CTree& tree, tagADDRINFO const* pInfo) {
        tagADDRNODE const* vNode[3];
        if (GetAddrPtr(pInfo, &vNode[0], &vNode[1], &vNode[2]) == 0) return;
        if (vNode[0] != nullptr && vNode[1] != nullptr && vNode[2] != nullptr)
            MakeTreeData(tree, vNode, Node(0), Strings(), NAME_SIZE);
    }

    unsigned char const* Strings() const { return reinterpret_cast<unsigned char const*>(GetStrings()); }
};

// What does not come to an end: better the test program ends.
class TimedTest : public testing::Test {
  protected:
    void SetUp() override { alarm(20); } // seconds; these tests take some milliseconds
    void TearDown() override { alarm(0); }
};

#endif
