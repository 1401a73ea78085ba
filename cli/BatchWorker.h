// BatchWorker.h - one thread's part of a batch: from a chunk of records to what is written of them.
#ifndef QEADRS_CLI_BATCHWORKER_H
#define QEADRS_CLI_BATCHWORKER_H

#include "cli/BatchAnswer.h"
#include "cli/BatchForm.h"
#include "cli/BatchPool.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qe {

// Malformed records that are reported one by one; the others are counted.
constexpr size_t BATCH_REPORTED = 10;

// Records that are looked up together.
constexpr size_t BATCH_BLOCK = 64;

class CBatchWorker {
  public:
    // All are borrowed. bRejects: malformed records go there instead of into the output.
    CBatchWorker(CBatchForm const& form, CBatchAnswerer answerer, size_t nColumns, std::string const& strHeader,
                 bool bRejects)
        : m_form(form),
          m_answerer(std::move(answerer)),
          m_strHeader(strHeader),
          m_bRejects(bRejects),
          m_row(nColumns),
          m_vItem(BATCH_BLOCK) {}

    // Fills all but the chunk. Every record of it is in the output or the rejects, in its order.
    void Answer(CBatchWork& work);

  private:
    // What is to be written of a record.
    struct CItem {
        enum class EWhat : unsigned char { Copy, Header, Malformed, Asked };
        std::string_view strRecord;
        EWhat nWhat = EWhat::Copy;
        std::string strText = {}; // to look up
    };

    CItem::EWhat Look(CBatchWork& work, std::string_view strRecord, EBatchRecord nKind, std::string& strText);
    std::string ReadRecord(std::string_view strRecord, EBatchRecord nKind, std::string& strText) const;
    void AnswerBlock(CBatchWork& work);
    void Write(CBatchWork& work, CItem const& item);

    CBatchForm const& m_form;
    CBatchAnswerer m_answerer;
    std::string const& m_strHeader;
    bool m_bRejects;
    size_t m_nItems = 0;
    size_t m_nAsked = 0; // of the block, answered so far
    CRow m_row;          // this and the vectors are kept for their memory
    std::vector<CItem> m_vItem;
    std::vector<std::string_view> m_vText;
};

} // namespace qe

#endif
