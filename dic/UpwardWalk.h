// UpwardWalk.h - steps from a node up to its prefecture (internal).
//
//   for (CUpwardWalk walk(dic, nNode); walk.Node() != nullptr; walk.Next()) ...
//
// A chain that meets more nodes than the image has goes in a circle, and ends; so does one of hundreds of nodes, where
// eight levels are all that there are. Only a damaged dictionary has either.
#ifndef QEADRS_DIC_UPWARDWALK_H
#define QEADRS_DIC_UPWARDWALK_H

#include "dic/ImageView.h"

#include <algorithm>

class CUpwardWalk {
  public:
    static constexpr uint32_t MAX_STEPS = 256;

    CUpwardWalk(CImageView const& image, tagADDRNODE const* pNode)
        : m_image(image), m_pNode(pNode), m_nLeft(std::min(image.NodeCount(), MAX_STEPS)) {}
    CUpwardWalk(CImageView const& image, uint32_t nNode) : CUpwardWalk(image, image.Node(nNode)) {}

    tagADDRNODE const* Node() const { return m_pNode; } // null at the end
    void Next() {
        m_pNode = m_image.Node(m_pNode->nParent);
        if (m_pNode != nullptr && --m_nLeft == 0) m_pNode = nullptr;
    }
    bool IsCircle() const { return m_nLeft == 0; } // at the end: the walk was cut off, no root was met

  private:
    CImageView m_image;
    tagADDRNODE const* m_pNode;
    uint32_t m_nLeft;
};

#endif
