// Output.h - answers on standard output: rows under columns, in one of three forms.
//
//   COutput output(EForm::Table, {"postal_code", "city"}, false, std::cout);
//   output.Add({"1000001", "千代田区"});
//   output.Flush();
//
// Table   for eyes: a header, columns lined up by their width on a terminal, columns without any text left out. The
//         rows appear at Flush. On a terminal with colours marked parts of texts are coloured; NO_COLOR turns that off.
// Tabs    for programs: every column, always in the same order, separated by one tab; a header line only on demand.
// Json    for programs: one object per line, every key always there, null where there is no text.
#ifndef QEADRS_CLI_OUTPUT_H
#define QEADRS_CLI_OUTPUT_H

#include <cstddef>
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

    EForm Form() const;      // --json, else by what standard output is
    bool HasColours() const; // a table on a terminal that has them, and whose user wants them
};

using CRow = std::vector<std::string>;

// A part of a row's text in a colour: what the dictionary supplied, and what the question writes in another way.
enum class EMark { Supplied, Folded };
struct CMark {
    size_t nColumn;
    size_t nOffset; // in bytes, of the text as Clean returns it
    size_t nLength;
    EMark nMark;
};

// What one form alone shows of a row.
struct CRowExtra {
    std::vector<CMark> vMark = {}; // in a table; in the order of columns, and within them of offsets
    std::string strMembers = {};   // in JSON, behind the columns: `"a":1,"b":[]`; "" for none
};

class COutput {
  public:
    // vKey names the columns as programs know them; the table's header shows them with blanks for "_".
    COutput(EForm nForm, std::vector<std::string> vKey, bool bHeader, std::ostream& out);

    // REQUIRES: as many texts as columns; members that are JSON; marks only where there are colours.
    void Add(CRow row, CRowExtra extra = {});

    // Everything added so far is on its way afterwards. Throws CFailure when it cannot be written.
    void Flush();

  private:
    void PrintTable();
    void PrintCells(CRow const& row, std::vector<CMark> const& vMark, std::vector<size_t> const& vWidth);
    void PrintTabs(CRow const& row);
    void PrintJson(CRow const& row, std::string const& strMembers);

    EForm m_nForm;
    std::vector<std::string> m_vKey;
    bool m_bHeader;                          // still to be printed
    std::vector<CRow> m_vRow;                // of the table, until Flush
    std::vector<std::vector<CMark>> m_vMark; // of these rows
    std::ostream& m_out;
};

// Throws CFailure when something could not be written to the stream, after flushing it.
void CheckWritten(std::ostream& out);

} // namespace qe

#endif
