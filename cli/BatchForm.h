// BatchForm.h - what a record of a batch looks like: where its column is, and where results go.
//
//   auto const form = MakeBatchForm(EBatchForm::Csv, "2", {{"city"}, {"status"}});
//   strFault = form->Read("1,\"東京都\"\r\n", strText);            // "" and "東京都"
//   form->Write("1,\"東京都\"\r\n", {"", "not found"}, strOut);    // "1,\"東京都\",,not found\r\n"
//
// All that was in a record is in the output, byte for byte; results stand behind it, in front of its line end or of
// the closing brace. A last record that has no line end gets one.
//
// Threads   Once the header is read, any number of them may use one object.
#ifndef QEADRS_CLI_BATCHFORM_H
#define QEADRS_CLI_BATCHFORM_H

#include "cli/Output.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qe {

enum class EBatchForm { Tsv, Csv, Jsonl };

// A result.
struct CBatchColumn {
    std::string strName;
    bool bJson = false; // JSON as it is: in JSON without quotation marks
};

class CBatchForm {
  public:
    virtual ~CBatchForm() = default;
    CBatchForm(CBatchForm const&) = delete;
    CBatchForm& operator=(CBatchForm const&) = delete;

    // Takes the record that names the columns, finds the one to look up by its name, and returns the record with the
    // names of the results. Throws CFailure when there is no such column, or one of a result's name already.
    virtual std::string ReadHeader(std::string_view strRecord) = 0;

    // The text to look up; the reason when the record has none.
    virtual std::string Read(std::string_view strRecord, std::string& strText) const = 0;

    // Appends the record with the results. REQUIRES: Read gave a text.
    virtual void Write(std::string_view strRecord, CRow const& row, std::string& strOut) const = 0;

  protected:
    CBatchForm() = default;
};

// strColumn is the number of a column, counted from 1, or its name; the name of a key in JSON. Throws CFailure with
// EXIT_USAGE when it cannot be one: bHeader tells that names can be known.
std::unique_ptr<CBatchForm> MakeBatchForm(EBatchForm nForm, std::string const& strColumn, bool bHeader,
                                          std::vector<CBatchColumn> const& vColumn);

// The third form. Throws CFailure when a result has the name of the key.
std::unique_ptr<CBatchForm> MakeBatchJson(std::string const& strKey, std::vector<CBatchColumn> const& vColumn);

// The record without its LF or CR LF; the line end of the output's record.
std::string_view WithoutLineEnd(std::string_view strRecord);
void AppendLineEnd(std::string_view strRecord, std::string& strOut);

} // namespace qe

#endif
