// UpwardWalk.h - steps from a node up to its prefecture (internal).
//
//   for (CUpwardWalk walk(dic, nNode); walk.Node() != nullptr; walk.Next()) ...
//
// A chain that meets more nodes than the image has goes in a circle (only a damaged dictionary's does), and ends.
#ifndef QEADRS_DIC_UPWARDWALK_H
#define QEADRS_DIC_UPWARDWALK_H

#include "dic/AddrDic.h"
#include "dic/ImageHeader.h"

class CUpwardWalk {
  public:
    CUpwardWalk(CAddrDic const& owner, tagADDRNODE const* pNode)
        : m_owner(owner),
          m_pNode(pNode),
          m_nLeft(owner.GetDicPointer() == nullptr ? 0 : HeaderWord(owner.GetDicPointer(), HDR_NODE_COUNT)) {}
    CUpwardWalk(CAddrDic const& owner, uint32_t nNode) : CUpwardWalk(owner, owner.GetAddrNode(nNode)) {}

    tagADDRNODE const* Node() const { return m_pNode; } // null at the end
    void Next() {
        m_pNode = m_owner.GetAddrNode(m_pNode->nParent);
        if (m_pNode != nullptr && --m_nLeft == 0) m_pNode = nullptr;
    }
    bool IsCircle() const { return m_nLeft == 0; } // at the end: the walk was cut off, no root was met

  private:
    CAddrDic const& m_owner;
    tagADDRNODE const* m_pNode;
    uint32_t m_nLeft;
};

#endif
