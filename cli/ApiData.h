// ApiData.h - what crosses the C line of the API: the caller's records, and the blocks that hold its answers.
#ifndef QEADRS_CLI_APIDATA_H
#define QEADRS_CLI_APIDATA_H

#include "platform/Win32Compat.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

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

// The record that PstAdrGetZip and PstAdrGetLatestAdr take. PstAdrRPrf reads the sort type and the address of one, to
// the address's NUL.
//
//   off size  field      meaning
//     0    2  nSortType  as above; PstAdrGetLatestAdr does not read it
//     2    6  szOldCode  out: old code; ends with its field or at a NUL
//     8   15  szCode     out: postal code, in the same way
//    23  122  szAddress  address; PstAdrGetLatestAdr writes the latest form back
//   145    ?  szOffice   organisation; runs on to the end of the record
struct tagADDRESSRECORD {
    uint16_t nSortType;
    char szOldCode[6];
    char szCode[15];
    char szAddress[122];
    char szOffice[1];
};
static_assert(offsetof(tagADDRESSRECORD, nSortType) == 0 && offsetof(tagADDRESSRECORD, szOldCode) == 2);
static_assert(offsetof(tagADDRESSRECORD, szCode) == 8 && offsetof(tagADDRESSRECORD, szAddress) == 23);
static_assert(offsetof(tagADDRESSRECORD, szOffice) == 145, "the caller's record");

// Bytes that an address field holds beside its NUL.
constexpr size_t ADDRESS_LENGTH = sizeof(tagADDRESSRECORD::szAddress) - 1;
static_assert(ADDRESS_LENGTH == 121);

// Such a record, with room for an organisation's name of any length.
class CAddressRecord {
  public:
    // REQUIRES: at most ADDRESS_LENGTH bytes of address, and no NUL in either text.
    explicit CAddressRecord(std::string const& strAddress, std::string const& strOffice = "");

    void* Pointer() { return m_vByte.data(); }

    std::string OldCode() const;
    std::string Code() const;
    std::string Address() const;
    std::string Office() const;

  private:
    std::string Field(size_t nOffset, size_t nSize) const; // up to its NUL, or its end

    std::vector<char> m_vByte;
};

// Bytes of an entry in a table of addresses.
constexpr size_t ENTRY_SIZE = 28;

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

    // A text of a table of addresses, by the number of its entry and the offset of its slot in the entry.
    std::string EntryText(size_t nEntry, size_t nSlot) const;

  private:
    uint32_t Integer(size_t nOffset, size_t nBytes) const;

    HGLOBAL m_hMem;
    char const* m_pStart;
    size_t m_nSize;
};

} // namespace qe

#endif
