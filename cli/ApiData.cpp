// ApiData.cpp - filling the caller's records, reading the API's answer blocks.
#include "cli/ApiData.h"

#include "cli/Failure.h"
#include "dic/AddrDic.h"

#include <algorithm>
#include <cstring>

namespace qe {

CAddressRecord::CAddressRecord(std::string const& strAddress, std::string const& strOffice)
    : m_vByte(sizeof(tagADDRESSRECORD) + strOffice.size()) {
    uint16_t const nSortType = SORT_DICTIONARY;
    std::memcpy(m_vByte.data(), &nSortType, sizeof nSortType);
    strAddress.copy(&m_vByte[offsetof(tagADDRESSRECORD, szAddress)], ADDRESS_LENGTH);
    strOffice.copy(&m_vByte[offsetof(tagADDRESSRECORD, szOffice)], strOffice.size());
}

std::string CAddressRecord::OldCode() const {
    return Field(offsetof(tagADDRESSRECORD, szOldCode), sizeof(tagADDRESSRECORD::szOldCode));
}

std::string CAddressRecord::Code() const {
    return Field(offsetof(tagADDRESSRECORD, szCode), sizeof(tagADDRESSRECORD::szCode));
}

std::string CAddressRecord::Address() const {
    return Field(offsetof(tagADDRESSRECORD, szAddress), sizeof(tagADDRESSRECORD::szAddress));
}

std::string CAddressRecord::Office() const {
    return Field(offsetof(tagADDRESSRECORD, szOffice), m_vByte.size() - offsetof(tagADDRESSRECORD, szOffice));
}

std::string CAddressRecord::Field(size_t nOffset, size_t nSize) const {
    return std::string(&m_vByte[nOffset], strnlen(&m_vByte[nOffset], nSize));
}

CBlock::CBlock(HGLOBAL hMem)
    : m_hMem(hMem), m_pStart(static_cast<char const*>(GlobalLock(hMem))), m_nSize(GlobalSize(hMem)) {
    if (m_pStart != nullptr) return;
    GlobalFree(hMem);
    throw CFailure(EXIT_SYSTEM, "not enough memory.");
}

CBlock::~CBlock() {
    GlobalUnlock(m_hMem);
    GlobalFree(m_hMem);
}

std::string_view CBlock::Bytes(size_t nOffset, size_t nLength) const {
    if (nOffset > m_nSize || nLength > m_nSize - nOffset)
        throw CFailure(EXIT_SYSTEM, "an answer of the library ends too early.");
    return {m_pStart + nOffset, nLength};
}

std::string CBlock::Text(size_t nOffset) const {
    std::string_view const strRest = Bytes(nOffset, m_nSize - std::min(nOffset, m_nSize));
    return std::string(strRest.substr(0, strRest.find('\0')));
}

std::string CBlock::EntryText(size_t nEntry, size_t nSlot) const {
    return Text(size_t{Long(8)} + Long(Long(4) + ENTRY_SIZE * nEntry + nSlot));
}

uint32_t CBlock::Integer(size_t nOffset, size_t nBytes) const {
    uint32_t n = 0;
    for (size_t i = nBytes; i > 0; --i) n = n << 8 | static_cast<unsigned char>(Bytes(nOffset, nBytes)[i - 1]);
    return n;
}

} // namespace qe
