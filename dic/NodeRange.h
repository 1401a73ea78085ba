// NodeRange.h - runs of neighbouring nodes: children, levels (internal).
#ifndef QEADRS_DIC_NODERANGE_H
#define QEADRS_DIC_NODERANGE_H

#include "dic/ImageView.h"

#include <algorithm>

// A run of nodes, cut off at the end of the node table: what lies behind cannot be read anyway.
struct CNodeRange {
    uint32_t nFirst;
    uint32_t nEnd;

    uint32_t Count() const { return nEnd - nFirst; }
};

inline CNodeRange MakeRange(CImageView const& image, uint32_t nFirst, uint32_t nCount) {
    uint32_t const nNodes = image.NodeCount();
    nFirst = std::min(nFirst, nNodes);
    return {nFirst, nFirst + std::min(nCount, nNodes - nFirst)};
}

inline CNodeRange ChildrenOf(CImageView const& image, tagADDRNODE const& node) {
    return MakeRange(image, node.nFirstChild, node.nChildCount);
}

// All nodes of a level, by the header words that tell the first one and their number.
inline CNodeRange LevelNodes(CImageView const& image, tagHEADERWORD nFirst, tagHEADERWORD nCount) {
    return image.Image() == nullptr ? CNodeRange{0, 0} : MakeRange(image, image.Word(nFirst), image.Word(nCount));
}

inline CNodeRange PrefNodes(CImageView const& image) {
    return LevelNodes(image, HDR_FIRST_PREF, HDR_PREF_COUNT);
}

#endif
