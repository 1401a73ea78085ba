// BatchAnswer.h - what a batch looks up for each record: the answers of `qeadrs zip`, `addr` and `latest`, a row
// each.
//
//   CBatchAnswerer answerer(EBatchOp::Addr, file);
//   answerer.Answer("東京都千代田区丸の内２", row);   // 1000005, 100, 東京都, 千代田区, 丸の内, ２, found
//
// Columns  Those of the command, then the status; for codes the number of addresses, too, of which the row is the
//          first in dictionary order. Without an answer all but the status (and the number) are "".
// Status   "found", or "not found", or why the text cannot be looked up; behind "; " what the command would remark.
// Threads  An object for each thread; all may borrow one file.
#ifndef QEADRS_CLI_BATCHANSWER_H
#define QEADRS_CLI_BATCHANSWER_H

#include "api/qeadrs.hpp"
#include "cli/BatchForm.h"

#include <string>
#include <vector>

namespace qe {

enum class EBatchOp { Zip, Addr, Latest };

// The results of an operation, their names behind strPrefix.
std::vector<CBatchColumn> BatchColumns(EBatchOp nOp, std::string const& strPrefix);

class CBatchAnswerer {
  public:
    // The file is borrowed.
    CBatchAnswerer(EBatchOp nOp, qeadrs::CDictionaryFile const& file) : m_nOp(nOp), m_dictionary(file) {}

    // Replaces the row by the answer; true when there is one. REQUIRES: a text without NULs.
    bool Answer(std::string const& strText, CRow& row);

  private:
    bool AnswerCode(std::string const& strText, CRow& row);
    bool AnswerAddress(std::string_view strAddress, CRow& row);
    bool AnswerLatest(std::string_view strAddress, CRow& row);

    EBatchOp m_nOp;
    qeadrs::CDictionary m_dictionary;
};

} // namespace qe

#endif
