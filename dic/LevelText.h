// LevelText.h - a node's texts in the fields of its level (internal).
#ifndef QEADRS_DIC_LEVELTEXT_H
#define QEADRS_DIC_LEVELTEXT_H

#include "dic/Addr.h"
#include "dic/ImageView.h"
#include "dic/UpwardWalk.h"

// Writes the node's name and reading into the record's fields of a level. A note has a name only; a grouping level
// and levels that nobody knows have no field at all.
inline void StoreLevel(CImageView const& image, uint8_t nLevel, tagADDRNODE const& node, tagADDR& addr) {
    auto const Take = [&](char const*& pszName, char const*& pszKana) {
        image.TakePair(node.nName, pszName, pszKana);
    };
    switch (nLevel) {
    case LEVEL_PREF:
        return Take(addr.pszPref, addr.pszPrefKana);
    case LEVEL_CITY:
        return Take(addr.pszCity, addr.pszCityKana);
    case LEVEL_TOWN:
        return Take(addr.pszTown, addr.pszTownKana);
    case LEVEL_AREA:
        return Take(addr.pszArea, addr.pszAreaKana);
    case LEVEL_BLOCK:
        return Take(addr.pszBlock, addr.pszBlockKana);
    case LEVEL_NOTE:
        addr.pszNote = image.At(node.nName);
        return;
    case LEVEL_OFFICE:
        return Take(addr.pszOffice, addr.pszOfficeKana);
    default:
        return;
    }
}

// The same into the fields of the node's own level.
inline void StoreLevel(CImageView const& image, tagADDRNODE const& node, tagADDR& addr) {
    StoreLevel(image, node.nLevel, node, addr);
}

// Writes the texts of an entry, those of all its levels and its code, with an empty old code. Returns its city node:
// the first of that level on the way up, null when there is none.
inline tagADDRNODE const* StoreEntry(CImageView const& image, tagADDRINFO const& info, tagADDR& addr) {
    addr.pszPostCode = image.At(info.nCode);
    // The code's own NUL, not the old code behind it: callers of this operation rely on an empty text here.
    addr.pszCodeExt = image.Behind(info.nCode, 0);
    tagADDRNODE const* pCity = nullptr;
    for (CUpwardWalk walk(image, info.nNode & ~ADDRINFO_SUPERSEDED); walk.Node() != nullptr; walk.Next()) {
        StoreLevel(image, *walk.Node(), addr);
        if (pCity == nullptr && walk.Node()->nLevel == LEVEL_CITY) pCity = walk.Node();
    }
    return pCity;
}

#endif
