// ImageTables.h - the tables of a dictionary file, as the tools name them.
#ifndef QEADRS_BUILDER_IMAGETABLES_H
#define QEADRS_BUILDER_IMAGETABLES_H

#include "dic/ImageHeader.h"

namespace qe {

struct CImageTable {
    char const* pszName;
    tagHEADERWORD nOffset;
    tagHEADERWORD nCount;
    size_t nRecord; // bytes of each of its records
};
constexpr CImageTable IMAGE_TABLES[] = {
    {"nodes", HDR_NODE_TABLE, HDR_NODE_COUNT, sizeof(tagADDRNODE)},
    {"entries", HDR_INFO_TABLE, HDR_INFO_COUNT, sizeof(tagADDRINFO)},
    {"strings", HDR_STRING_AREA, HDR_STRING_SIZE, 1},
    {"city index", HDR_CITY_INDEX, HDR_CITY_COUNT, sizeof(uint32_t)},
    {"organisation index", HDR_OFFICE_INDEX, HDR_OFFICE_COUNT, sizeof(uint32_t)},
};

} // namespace qe

#endif
