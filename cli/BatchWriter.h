// BatchWriter.h - the last step of a batch: output, rejects, reports and progress, chunk after chunk in their order.
#ifndef QEADRS_CLI_BATCHWRITER_H
#define QEADRS_CLI_BATCHWRITER_H

#include "cli/BatchFiles.h"
#include "cli/BatchPool.h"
#include "cli/BatchProgress.h"

namespace qe {

class CBatchWriter {
  public:
    // Files are borrowed; pRejects is null when malformed records are in the output.
    CBatchWriter(CBatchFile const& output, CBatchFile const* pRejects, CBatchProgress progress)
        : m_output(output), m_pRejects(pRejects), m_progress(progress) {}

    // Throws what CBatchFile::Write throws.
    void Write(CBatchWork const& work);

    // Takes the progress off the terminal; the last reports stay.
    void Clear() { m_progress.Clear(); }

    CBatchCounts const& Counts() const { return m_counts; }

  private:
    void Report(CBatchWork const& work);

    CBatchFile const& m_output;
    CBatchFile const* m_pRejects;
    CBatchProgress m_progress;
    CBatchCounts m_counts;
    size_t m_nReported = 0;
};

} // namespace qe

#endif
