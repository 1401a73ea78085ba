// ApiData.h - what crosses the C line of the API: the caller's records, and the blocks that hold its answers.
#ifndef QEADRS_CLI_APIDATA_H
#define QEADRS_CLI_APIDATA_H

#include "platform/Win32Compat.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qe {

// The record that PstAdrCity takes.
//
//   off size  field      meaning
//     0    2  nSortType  2 dictionary order, 9 sorted; kept by the API for later calls
//     2    6  szOldCode  old code, used when szCode is empty
//     8    8  szCode     postal code or a leading part of one
struct tagCODERECORD {
    uint16_t nSortType;
    char szOldCode[6];
    char szCode[8];

    explicit tagCODERECORD(uint16_t nType) : nSortType(nType), szOldCode{}, szCode{} {}
};
static_assert(sizeof(tagCODERECORD) == 16 && offsetof(tagCODERECORD, szCode) == 8, "the caller's record");

// An answer block: locked while the object lives, freed with it. Reading outside the block throws CFailure.
class CBlock {
  public:
    // Takes the block over, whatever happens.
    explicit CBlock(HGLOBAL hMem);
    ~CBlock();
    CBlock(CBlock const&) = delete;
    CBlock& operator=(CBlock const&) = delete;

    unsigned Byte(size_t nOffset) const { return Integer(nOffset, 1); }
    unsigned Short(size_t nOffset) const { return Integer(nOffset, 2); }
    uint32_t Long(size_t nOffset) const { return Integer(nOffset, 4); }
    std::string Text(size_t nOffset) const; // up to its NUL
    std::string_view Bytes(size_t nOffset, size_t nLength) const;

  private:
    uint32_t Integer(size_t nOffset, size_t nBytes) const;

    HGLOBAL m_hMem;
    char const* m_pStart;
    size_t m_nSize;
};

} // namespace qe

#endif
