// BatchWriter.cpp - writing a chunk, and keeping count.
#include "cli/BatchWriter.h"

#include "cli/BatchWorker.h"

#include <iostream>

namespace qe {

void CBatchWriter::Write(CBatchWork const& work) {
    m_output.Write(work.strOut);
    if (m_pRejects != nullptr) m_pRejects->Write(work.strRejects);
    Report(work);
    m_counts.nBytes += work.counts.nBytes;
    m_counts.nLines += work.counts.nLines;
    m_counts.nRecords += work.counts.nRecords;
    m_counts.nFound += work.counts.nFound;
    m_counts.nMalformed += work.counts.nMalformed;
    m_progress.Show(m_counts.nRecords, m_counts.nBytes);
}

// The first malformed records by their lines, counted from 1.
void CBatchWriter::Report(CBatchWork const& work) {
    for (auto const& [nLine, strFault] : work.vFault) {
        if (m_nReported == BATCH_REPORTED) return;
        m_progress.Clear();
        std::cerr << "qeadrs: line " << m_counts.nLines + nLine + 1 << ": " << strFault << '\n';
        ++m_nReported;
    }
}

} // namespace qe
