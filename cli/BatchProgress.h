// BatchProgress.h - how far a batch is, on one line of the terminal that is written again and again.
#ifndef QEADRS_CLI_BATCHPROGRESS_H
#define QEADRS_CLI_BATCHPROGRESS_H

#include <chrono>
#include <cstdint>
#include <optional>

namespace qe {

class CBatchProgress {
  public:
    // nBytes: of the input, where that is known; only then it can tell how much is left.
    CBatchProgress(bool bShown, std::optional<uint64_t> nBytes) : m_bShown(bShown), m_nBytes(nBytes) {}

    // So much is done; shown a few times a second.
    void Show(uint64_t nRecords, uint64_t nBytes);
    // Takes the line off the terminal, for something else to be printed or for good.
    void Clear();

  private:
    using CClock = std::chrono::steady_clock;

    bool m_bShown;
    std::optional<uint64_t> m_nBytes;
    CClock::time_point m_begun = CClock::now();
    CClock::time_point m_shown = m_begun;
    bool m_bThere = false;
};

} // namespace qe

#endif
