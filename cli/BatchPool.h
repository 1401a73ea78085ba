// BatchPool.h - the threads of a batch: chunks in, answered by whoever is free, written in the order they came.
//
//   CBatchPool pool(8, Write, [&stop] { stop.Request(); });
//   pool.Start(Answer);                                   // once for each thread
//   while (CBatchWork* const pWork = pool.Free()) { ... fill it ...; pool.Give(); }
//   pool.Finish();
//
// Memory   There are so many chunks and no more: who reads waits until one is written.
// Failure  What a thread throws ends the pool: no chunk is written behind it, Free gives null, and Finish throws it.
#ifndef QEADRS_CLI_BATCHPOOL_H
#define QEADRS_CLI_BATCHPOOL_H

#include "cli/BatchReader.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace qe {

struct CBatchCounts {
    uint64_t nBytes = 0;
    uint64_t nLines = 0;   // of the input
    uint64_t nRecords = 0; // without a header
    uint64_t nFound = 0;
    uint64_t nMalformed = 0;
};

// A chunk, and what has become of it.
struct CBatchWork {
    CBatchChunk chunk;
    bool bHeader = false; // its first record is the header
    std::string strOut;
    std::string strRejects;
    CBatchCounts counts;
    std::vector<std::pair<uint64_t, std::string>> vFault; // lines of the chunk, from 0, and what is wrong with them
};

class CBatchPool {
  public:
    using CStep = std::function<void(CBatchWork&)>;

    // Write is called by one thread at a time; Wake by one whose step has thrown.
    CBatchPool(size_t nWorks, CStep Write, std::function<void()> Wake);
    ~CBatchPool(); // finishes what was given
    CBatchPool(CBatchPool const&) = delete;
    CBatchPool& operator=(CBatchPool const&) = delete;

    void Start(CStep Answer);

    // The next chunk to fill and to give, always the same one until it is given; null when a thread has failed.
    CBatchWork* Free();
    void Give();

    // Waits until all that was given is written. Throws what a thread has thrown.
    void Finish();

  private:
    struct CSlot {
        CBatchWork work;
        bool bAnswered = false;
    };

    void Run(CStep const& Answer);
    void WriteAnswered(std::unique_lock<std::mutex>& lock);
    void Join();

    CStep m_Write;
    std::function<void()> m_Wake;
    std::mutex m_mutex; // for all below
    std::condition_variable m_given;
    std::condition_variable m_written;
    std::vector<CSlot> m_vSlot; // a ring
    uint64_t m_nGiven = 0;      // these three only grow; each is behind the one above it
    uint64_t m_nTaken = 0;
    uint64_t m_nWritten = 0;
    bool m_bWriting = false;
    bool m_bEnd = false;
    std::exception_ptr m_pFailure;
    std::vector<std::thread> m_vThread;
};

} // namespace qe

#endif
