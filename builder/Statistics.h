// Statistics.h - what a compilation read, made, folded, cut and left out, each with a count.
#ifndef QEADRS_BUILDER_STATISTICS_H
#define QEADRS_BUILDER_STATISTICS_H

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace qe {

// Counts in the order in which they were first named; names are snake_case, as in the JSON.
class CStatistics {
  public:
    uint64_t& operator[](std::string const& strName);
    uint64_t Get(std::string const& strName) const; // 0 when never counted

    // A thing that was changed or left out, with its place in the source.
    void Remark(std::string strText) { m_vRemark.push_back(std::move(strText)); }

    std::vector<std::pair<std::string, uint64_t>> const& Counts() const { return m_vCount; }
    std::vector<std::string> const& Remarks() const { return m_vRemark; }

  private:
    std::vector<std::pair<std::string, uint64_t>> m_vCount;
    std::vector<std::string> m_vRemark;
};

} // namespace qe

#endif
