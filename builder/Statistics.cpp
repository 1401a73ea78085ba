// Statistics.cpp - counts of a compilation.
#include "builder/Statistics.h"

#include <algorithm>

namespace qe {

uint64_t& CStatistics::operator[](std::string const& strName) {
    auto const pFound =
        std::find_if(m_vCount.begin(), m_vCount.end(), [&](auto const& count) { return count.first == strName; });
    if (pFound != m_vCount.end()) return pFound->second;
    m_vCount.emplace_back(strName, 0);
    return m_vCount.back().second;
}

uint64_t CStatistics::Get(std::string const& strName) const {
    for (auto const& [strCounted, nCount] : m_vCount)
        if (strCounted == strName) return nCount;
    return 0;
}

} // namespace qe
