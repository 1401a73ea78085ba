// AddrPnt.h - tagADDRPNT, one entry of the display tree: a dictionary node, its display name, its children.
#ifndef QEADRS_TREE_ADDRPNT_H
#define QEADRS_TREE_ADDRPNT_H

#include "dic/AddrNode.h"

#include <cstring>
#include <utility>
#include <vector>

struct tagADDRPNT {
    tagADDRNODE const* pNode = nullptr; // borrowed from the mapped dictionary
    std::vector<tagADDRPNT> vChild;     // owned by value: copying an entry copies its whole subtree
    char szName[128] = {};              // display name; ends in NUL when shorter than 128 bytes

    tagADDRPNT() = default;
    tagADDRPNT(tagADDRPNT const&) = default;
    tagADDRPNT(tagADDRPNT&&) noexcept = default;
    ~tagADDRPNT() = default;

    // An entry may take the place of one that it lies below: the old children go last.
    tagADDRPNT& operator=(tagADDRPNT const& other) { return *this = tagADDRPNT(other); }
    tagADDRPNT& operator=(tagADDRPNT&& other) noexcept {
        std::vector<tagADDRPNT> vOld = std::move(other.vChild);
        pNode = other.pNode;
        std::memmove(szName, other.szName, sizeof szName);
        vChild.swap(vOld);
        return *this;
    }

    // By display name only; entries of one name are equivalent. A name that fills its field ends there.
    bool operator<(tagADDRPNT const& other) const { return std::strncmp(szName, other.szName, sizeof szName) < 0; }
};
#if defined(__i386__)
static_assert(sizeof(tagADDRPNT) == 4 + 12 + 128, "the record of the 32-bit library");
#endif

#endif
