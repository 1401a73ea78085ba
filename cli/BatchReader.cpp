// BatchReader.cpp - reading as much as there is, and giving it out at the ends of records.
#include "cli/BatchReader.h"

#include "cli/Failure.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace qe {

namespace {

// Large enough that handing a chunk over costs nothing, small enough to stay in a processor's cache.
constexpr size_t CHUNK_SIZE = 65536;

} // namespace

bool CBatchReader::Next(CBatchChunk& chunk) {
    chunk.vRecord.clear();
    size_t nCut = 0;
    while (!m_bStopped) {
        nCut += m_cutter.Cut(std::string_view(m_strText).substr(nCut), m_bEnd, chunk.vRecord);
        // A byte order mark alone is no answer to anybody.
        bool const bRecord = !chunk.vRecord.empty() && chunk.vRecord.back().nKind != EBatchRecord::ByteOrderMark;
        if (m_bEnd || nCut >= CHUNK_SIZE || (bRecord && !CBatchStop::IsReady(m_hFile))) break;
        m_bStopped = !ReadMore();
    }
    // The two buffers change places: only what is behind the last whole record is copied.
    chunk.strText.swap(m_strText);
    m_strText.assign(chunk.strText, nCut);
    chunk.strText.resize(nCut);
    return nCut > 0;
}

// False when the batch is to end.
bool CBatchReader::ReadMore() {
    size_t const nBefore = m_strText.size();
    m_strText.resize(nBefore + CHUNK_SIZE);
    ssize_t nRead = -1;
    while (nRead < 0) {
        if (!m_stop.WaitFor(m_hFile)) break;
        nRead = read(m_hFile, &m_strText[nBefore], CHUNK_SIZE);
        if (nRead < 0 && errno != EINTR && errno != EAGAIN)
            throw CFailure(EXIT_SYSTEM, std::string("the input cannot be read: ") + std::strerror(errno) + ".");
    }
    m_strText.resize(nBefore + static_cast<size_t>(nRead > 0 ? nRead : 0));
    m_bEnd = nRead == 0;
    return nRead >= 0;
}

} // namespace qe
