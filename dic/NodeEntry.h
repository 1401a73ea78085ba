// NodeEntry.h - a node's postal-code entry (internal).
#ifndef QEADRS_DIC_NODEENTRY_H
#define QEADRS_DIC_NODEENTRY_H

#include "dic/ImageView.h"
#include "dic/SubtreeWalk.h"

inline bool IsSuperseded(tagADDRINFO const& info) {
    return (info.nNode & ADDRINFO_SUPERSEDED) != 0;
}

// Whether the node has an entry, and one of today.
inline bool HasCurrentEntry(CImageView const& image, tagADDRNODE const& node) {
    tagADDRINFO const* const pInfo = image.Info(node.nInfo);
    return pInfo != nullptr && !IsSuperseded(*pInfo);
}

// Appends the node and all below it that have a current entry, parents first.
inline void CollectCurrent(CImageView const& image, CSubtreeWalk& walk, tagADDRNODE const& node,
                           std::vector<tagADDRNODE const*>& vNode) {
    struct CNothing {};
    auto const Collect = [&](tagADDRNODE const& found, CNothing) {
        if (HasCurrentEntry(image, found)) vNode.push_back(&found);
    };
    Collect(node, {});
    walk.Below(node, CNothing(), Collect);
}

// Writes the codes of the node's entry into the record; without an entry its fields stay.
inline void StoreCodes(CImageView const& image, tagADDRNODE const& node, tagADDR& addr) {
    tagADDRINFO const* const pInfo = image.Info(node.nInfo);
    if (pInfo == nullptr) return;
    addr.pszPostCode = image.At(pInfo->nCode);
    addr.pszCodeExt = image.Behind(pInfo->nCode, 1); // the old code, other than StoreEntry
}

#endif
