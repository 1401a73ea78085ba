// SpreadCodes.h - postal codes for the copies of a dictionary (Grow.h says how they are chosen).
#ifndef QEADRS_BENCH_GROWTH_SPREADCODES_H
#define QEADRS_BENCH_GROWTH_SPREADCODES_H

#include "dic/AddrDic.h"

#include <cstdint>
#include <string>
#include <vector>

class CSpreadCodes {
  public:
    // REQUIRES: the dictionary is sound and has entries.
    CSpreadCodes(CAddrDic const& dic, uint32_t nTimes);

    // The code of an entry's copy; of copy 0 that of the entry itself. Entries of one code have one code in each
    // copy.
    std::string NewCode(uint32_t nCopy, uint32_t nEntry) const;

  private:
    uint32_t m_nTimes;
    std::vector<uint32_t> m_vCode; // the different codes of the dictionary, as numbers, by rank
    std::vector<uint32_t> m_vRank; // of each entry's code among them
    std::vector<uint32_t> m_vFree; // the codes that it does not use
};

#endif
