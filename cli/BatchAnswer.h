// BatchAnswer.h - what a batch looks up for each record: the answers of `qeadrs zip`, `addr` and `latest`, a row
// each.
//
//   CBatchAnswerer answerer({EBatchOp::Addr}, file);
//   answerer.Read({"丸の内2-1 千代田区", "東京都千代田区丸の内２"});
//   answerer.Answer(1, row);                            // 1000005, 100, 東京都, 千代田区, 丸の内, ２, found
//
// Columns  Those of the command, then all that was read as a JSON object when it is asked for, then the status; for codes
//          the number of addresses, too, of which the row is the first in dictionary order. Without an answer all but the
//          status, what was read, and the number are "".
// Status   "found", or "not found", or why the text cannot be looked up; behind "; " what the command would remark.
// Threads  An object for each thread; all may borrow one file.
#ifndef QEADRS_CLI_BATCHANSWER_H
#define QEADRS_CLI_BATCHANSWER_H

#include "api/qeadrs.hpp"
#include "cli/BatchForm.h"
#include "text/AddressText.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qe {

enum class EBatchOp { Zip, Addr, Latest };

// What is looked up, and how.
struct CBatchQuestion {
    EBatchOp nOp = EBatchOp::Zip;
    bool bExact = false;   // addresses by the class alone, as with --exact
    bool bReading = false; // a column with all that was read; REQUIRES: addresses, and not bExact

    bool IsRead() const { return nOp != EBatchOp::Zip && !bExact; }
};

// The results of an operation, their names behind strPrefix.
std::vector<CBatchColumn> BatchColumns(CBatchQuestion const& question, std::string const& strPrefix);

class CBatchAnswerer {
  public:
    // The file is borrowed.
    CBatchAnswerer(CBatchQuestion const& question, qeadrs::CDictionaryFile const& file)
        : m_question(question), m_dictionary(file) {}

    // Takes the texts of the next records; addresses are read for several of them at once. They are borrowed until the
    // next call. REQUIRES: texts without NULs.
    void Read(std::vector<std::string_view> const& vText);

    // Replaces the row by the answer to one of them; true when there is one.
    bool Answer(size_t nText, CRow& row);

  private:
    bool AnswerCode(std::string_view strText, CRow& row);
    bool AnswerAddress(std::string_view strAddress, CRow& row);
    bool AnswerLatest(std::string_view strAddress, CRow& row);
    bool AnswerReading(size_t nText, CRow& row);

    CBatchQuestion m_question;
    qeadrs::CDictionary m_dictionary;
    std::unique_ptr<qeadrs::CAddressText> m_pReader;
    std::vector<std::string_view> m_vText;
    std::vector<std::string_view> m_vTrimmed;
    std::vector<QETEXTREADING> m_vReading;
};

} // namespace qe

#endif
