// SubtreeWalk.h - all nodes below nodes, depth first, parents before their children (internal).
//
//   CSubtreeWalk walk(dic);
//   walk.Below(*pNode, addr, [&](tagADDRNODE const& node, tagADDR& addr) { StoreLevel(text, node, addr); ... });
//
// In a damaged dictionary children may lead back to their ancestors, or belong to many parents: a child that is its
// own ancestor is passed over, one object looks at no more children than the dictionary has nodes (each node of a
// sound one is the child of one other), and it goes no deeper than 256 nodes.
#ifndef QEADRS_DIC_SUBTREEWALK_H
#define QEADRS_DIC_SUBTREEWALK_H

#include "dic/NodeRange.h"

class CSubtreeWalk {
  public:
    explicit CSubtreeWalk(CImageView const& image) : m_image(image), m_nLeft(image.NodeCount()) {}

    // Visits every node below this one with the state of its parents. The siblings of one parent share one copy: what
    // the visit of one writes stays for those that follow, and goes down to its own children.
    template <typename TState, typename FVisit>
    void Below(tagADDRNODE const& node, TState const& state, FVisit const& visit) {
        Descend(node, state, visit, nullptr, 0);
    }

  private:
    // Levels are numbered by one byte: a longer path repeats some.
    static constexpr unsigned MAX_DEPTH = 256;

    struct CPath {
        tagADDRNODE const* pNode;
        CPath const* pAbove;
    };

    static bool LiesOn(CPath const* pPath, tagADDRNODE const* pNode) {
        while (pPath != nullptr && pPath->pNode != pNode) pPath = pPath->pAbove;
        return pPath != nullptr;
    }

    template <typename TState, typename FVisit>
    void Descend(tagADDRNODE const& node, TState state, FVisit const& visit, CPath const* pAbove, unsigned nDepth) {
        if (node.nFirstChild == ADDR_NONE || node.nChildCount == 0 || nDepth == MAX_DEPTH) return;
        CPath const path = {&node, pAbove};
        CNodeRange const children = ChildrenOf(m_image, node);
        for (uint32_t n = children.nFirst; n < children.nEnd && m_nLeft > 0; ++n) {
            --m_nLeft; // before the child is walked: its own walk may use up the rest
            tagADDRNODE const& child = *m_image.Node(n);
            if (child.nChildCount != 0 && LiesOn(&path, &child)) continue;
            visit(child, state);
            if (child.nChildCount != 0) Descend(child, state, visit, &path, nDepth + 1);
        }
    }

    CImageView m_image;
    uint32_t m_nLeft;
};

#endif
