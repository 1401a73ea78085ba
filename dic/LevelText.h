// LevelText.h - a node's texts in the fields of its level (internal).
#ifndef QEADRS_DIC_LEVELTEXT_H
#define QEADRS_DIC_LEVELTEXT_H

#include "dic/Addr.h"
#include "dic/ImageText.h"

// Writes the node's name and reading into the record's fields of a level. A note has a name only; a grouping level
// and levels that nobody knows have no field at all.
inline void StoreLevel(CImageText const& text, uint8_t nLevel, tagADDRNODE const& node, tagADDR& addr) {
    auto const Take = [&](char const*& pszName, char const*& pszKana) {
        pszName = text.At(node.nName);
        pszKana = text.Behind(node.nName, 1);
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
        addr.pszNote = text.At(node.nName);
        return;
    case LEVEL_OFFICE:
        return Take(addr.pszOffice, addr.pszOfficeKana);
    default:
        return;
    }
}

// The same into the fields of the node's own level.
inline void StoreLevel(CImageText const& text, tagADDRNODE const& node, tagADDR& addr) {
    StoreLevel(text, node.nLevel, node, addr);
}

#endif
