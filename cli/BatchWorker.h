// BatchWorker.h - one thread's part of a batch: from a chunk of records to what is written of them.
#ifndef QEADRS_CLI_BATCHWORKER_H
#define QEADRS_CLI_BATCHWORKER_H

#include "cli/BatchAnswer.h"
#include "cli/BatchForm.h"
#include "cli/BatchPool.h"

#include <string>
#include <string_view>

namespace qe {

// Malformed records that are reported one by one; the others are counted.
constexpr size_t BATCH_REPORTED = 10;

class CBatchWorker {
  public:
    // All are borrowed. bRejects: malformed records go there instead of into the output.
    CBatchWorker(CBatchForm const& form, CBatchAnswerer answerer, size_t nColumns, std::string const& strHeader,
                 bool bRejects)
        : m_form(form),
          m_answerer(std::move(answerer)),
          m_strHeader(strHeader),
          m_bRejects(bRejects),
          m_row(nColumns) {}

    // Fills all but the chunk. Every record of it is in the output or the rejects, in its order.
    void Answer(CBatchWork& work);

  private:
    void AnswerRecord(CBatchWork& work, std::string_view strRecord, EBatchRecord nKind);
    std::string ReadRecord(std::string_view strRecord, EBatchRecord nKind);

    CBatchForm const& m_form;
    CBatchAnswerer m_answerer;
    std::string const& m_strHeader;
    bool m_bRejects;
    CRow m_row; // kept for their memory
    std::string m_strText;
};

} // namespace qe

#endif
