// ApiData.cpp - reading the API's answer blocks.
#include "cli/ApiData.h"

#include "cli/Failure.h"

#include <algorithm>

namespace qe {

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

uint32_t CBlock::Integer(size_t nOffset, size_t nBytes) const {
    uint32_t n = 0;
    for (size_t i = nBytes; i > 0; --i) n = n << 8 | static_cast<unsigned char>(Bytes(nOffset, nBytes)[i - 1]);
    return n;
}

} // namespace qe
