// SpreadCodes.cpp - postal codes for the copies of a dictionary.
#include "bench/growth/SpreadCodes.h"

#include <cstdlib>

namespace {

constexpr uint32_t ALL_CODES = 10000000;
constexpr size_t CODE_DIGITS = 7;

} // namespace

CSpreadCodes::CSpreadCodes(CAddrDic const& dic, uint32_t nTimes) : m_nTimes(nTimes) {
    for (unsigned long n = 0; tagADDRINFO const* pInfo = dic.GetAddrInfo(n); ++n) {
        auto const nCode = static_cast<uint32_t>(std::strtoul(dic.GetString(pInfo->nCode), nullptr, 10));
        if (m_vCode.empty() || m_vCode.back() != nCode) m_vCode.push_back(nCode);
        m_vRank.push_back(static_cast<uint32_t>(m_vCode.size() - 1));
    }
    size_t nNext = 0;
    for (uint32_t nCode = 0; nCode < ALL_CODES; ++nCode)
        if (nNext < m_vCode.size() && m_vCode[nNext] == nCode)
            ++nNext;
        else
            m_vFree.push_back(nCode);
}

// The copies of one code stand side by side; all of them together are as even as whole numbers can be.
std::string CSpreadCodes::NewCode(uint32_t nCopy, uint32_t nEntry) const {
    uint64_t const nRank = m_vRank[nEntry];
    uint64_t const nCopies = m_nTimes - 1;
    std::string const strDigits = std::to_string(
        nCopy == 0 ? m_vCode[nRank]
                   : m_vFree[(nRank * nCopies + nCopy - 1) * m_vFree.size() / (m_vCode.size() * nCopies)]);
    return std::string(CODE_DIGITS - strDigits.size(), '0') + strDigits;
}
