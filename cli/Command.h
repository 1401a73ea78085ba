// Command.h - what the commands have in common: texts in, rows and remarks out, one exit status.
//
// A command derives from CCommand and says how a text becomes a query, and what the answer to a query is:
//
//   class CFindCommand : public CCommand { ... ReadQuery ... Answer ... };
//   return CFindCommand(options, common).Run(options.vText);
#ifndef QEADRS_CLI_COMMAND_H
#define QEADRS_CLI_COMMAND_H

#include "api/qeadrs.hpp"
#include "cli/Dictionary.h"
#include "cli/Failure.h"
#include "cli/Output.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qe {

class CCommand {
  public:
    virtual ~CCommand() = default;
    CCommand(CCommand const&) = delete;
    CCommand& operator=(CCommand const&) = delete;

    // Prints the answers to the texts, or to the lines of standard input when there are no texts. Throws CFailure
    // when it cannot go on. A text that is no query ends the command before the dictionary is opened; a line that is
    // none is reported and passed over.
    EExit Run(std::vector<std::string> const& vText);

  protected:
    // strQuery is what a line of standard input holds, for whoever types: "postal code".
    CCommand(CCommonOptions const& common, std::vector<std::string> vColumn, std::string strQuery);

    // The query that a text means. Throws CFailure with EXIT_USAGE when it means none.
    virtual std::string ReadQuery(std::string const& strText) const = 0;
    // Called once, before the first answer.
    virtual void Prepare() {}
    virtual void Answer(std::string const& strQuery) = 0;

    CDictionary& Dictionary() { return *m_dictionary; } // from Prepare on
    EForm Form() const { return m_nForm; }
    bool HasColours() const { return m_bColours; }

    void Print(CRow row, CRowExtra extra = {}) { m_output.Add(std::move(row), std::move(extra)); }
    void Remark(std::string const& strText) const;
    // The same about one query: "東京都: ...".
    void Remark(std::string_view strQuery, std::string const& strText) const;
    // Remarks that there is no answer, with the reason as far as there is one.
    void ReportNotFound(std::string_view strQuery, std::string const& strReason = "");
    // There is no answer, as far as the exit status goes.
    void SetNotFound();

  private:
    void AnswerAll(std::vector<std::string> const& vQuery);
    void AnswerLines();
    void AnswerLine(std::string const& strLine, size_t nLine);

    bool m_bQuiet;
    std::optional<std::string> m_strDic;
    std::string m_strQuery;
    EForm m_nForm;
    bool m_bColours;
    COutput m_output;
    std::optional<CDictionary> m_dictionary;
    EExit m_nStatus = EXIT_FOUND;
};

// The digits of a postal code or of its leading part; of an old code. Throws CFailure with EXIT_USAGE when the text is
// none.
std::string ReadCode(std::string const& strText);
std::string ReadOldCode(std::string const& strText);

// An address as it was typed, without the blanks around it. Throws CFailure with EXIT_USAGE when nothing is left, and
// when a NUL is in it: what stands behind one would not be read.
std::string ReadAddressText(std::string const& strText);

// The same for an address that has to fit into a field of nLongest bytes. Throws CFailure with EXIT_USAGE when
// it does not: it would be cut.
std::string ReadAddressField(std::string const& strText, size_t nLongest = qeadrs::ADDRESS_LENGTH);

} // namespace qe

#endif
