// NodeRange.h - runs of neighbouring nodes: children, levels (internal).
#ifndef QEADRS_DIC_NODERANGE_H
#define QEADRS_DIC_NODERANGE_H

#include "dic/AddrDic.h"
#include "dic/ImageHeader.h"

#include <algorithm>

// A run of nodes, cut off at the end of the node table: what lies behind cannot be read anyway.
struct CNodeRange {
    uint32_t nFirst;
    uint32_t nEnd;

    uint32_t Count() const { return nEnd - nFirst; }
};

// REQUIRES: an image is bound.
inline CNodeRange MakeRange(CAddrDic const& dic, uint32_t nFirst, uint32_t nCount) {
    uint32_t const nNodes = HeaderWord(dic.GetDicPointer(), HDR_NODE_COUNT);
    nFirst = std::min(nFirst, nNodes);
    return {nFirst, nFirst + std::min(nCount, nNodes - nFirst)};
}

inline CNodeRange ChildrenOf(CAddrDic const& dic, tagADDRNODE const& node) {
    return MakeRange(dic, node.nFirstChild, node.nChildCount);
}

// All nodes of a level, by the header words that tell the first one and their number. REQUIRES: an image is bound.
inline CNodeRange LevelNodes(CAddrDic const& dic, tagHEADERWORD nFirst, tagHEADERWORD nCount) {
    unsigned char const* const pImage = dic.GetDicPointer();
    return MakeRange(dic, HeaderWord(pImage, nFirst), HeaderWord(pImage, nCount));
}

inline CNodeRange PrefNodes(CAddrDic const& dic) {
    return LevelNodes(dic, HDR_FIRST_PREF, HDR_PREF_COUNT);
}

#endif
