// AddrPnt.h - tagADDRPNT, one entry of the display tree: a dictionary node, its display name, its children.
#ifndef QEADRS_TREE_ADDRPNT_H
#define QEADRS_TREE_ADDRPNT_H

#include "dic/AddrNode.h"

#include <cstring>
#include <vector>

struct tagADDRPNT {
    tagADDRNODE const* pNode = nullptr; // borrowed from the mapped dictionary
    std::vector<tagADDRPNT> vChild;     // owned by value: copying an entry copies its whole subtree
    char szName[128] = {};              // display name; ends in NUL when shorter than 128 bytes

    // By display name only; entries of one name are equivalent. A name that fills its field ends there.
    bool operator<(tagADDRPNT const& other) const { return std::strncmp(szName, other.szName, sizeof szName) < 0; }
};
#if defined(__i386__)
static_assert(sizeof(tagADDRPNT) == 4 + 12 + 128, "the record of the 32-bit library");
#endif

#endif
