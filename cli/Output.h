// Output.h - answers on standard output: rows under columns, in one of three forms.
//
//   COutput output(EForm::Table, {"postal_code", "city"}, false, std::cout);
//   output.Add({"1000001", "千代田区"});
//   output.Flush();
//
// Table   for eyes: a header, columns lined up by their width on a terminal, columns without any text left out. The
//         rows appear at Flush.
// Tabs    for programs: every column, always in the same order, separated by one tab; a header line only on demand.
// Json    for programs: one object per line, every key always there, null where there is no text.
#ifndef QEADRS_CLI_OUTPUT_H
#define QEADRS_CLI_OUTPUT_H

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace qe {

enum class EForm { Table, Tabs, Json };

// What every command takes.
struct CCommonOptions {
    std::optional<std::string> strDic; // --dic
    bool bJson = false;
    bool bHeader = false;
    bool bQuiet = false;

    EForm Form() const; // --json, else by what standard output is
};

using CRow = std::vector<std::string>;

class COutput {
  public:
    // vKey names the columns as programs know them; the table's header shows them with blanks for "_".
    COutput(EForm nForm, std::vector<std::string> vKey, bool bHeader, std::ostream& out);

    // REQUIRES: as many texts as columns.
    void Add(CRow row);

    // Everything added so far is on its way afterwards. Throws CFailure when it cannot be written.
    void Flush();

  private:
    void PrintTable();
    void PrintCells(CRow const& row, std::vector<size_t> const& vWidth);
    void PrintTabs(CRow const& row);
    void PrintJson(CRow const& row);

    EForm m_nForm;
    std::vector<std::string> m_vKey;
    bool m_bHeader;           // still to be printed
    std::vector<CRow> m_vRow; // of the table, until Flush
    std::ostream& m_out;
};

// Throws CFailure when something could not be written to the stream, after flushing it.
void CheckWritten(std::ostream& out);

} // namespace qe

#endif
