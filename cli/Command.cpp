// Command.cpp - answering the arguments, or standard input line by line.
#include "cli/Command.h"

#include "cli/Text.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <utility>

namespace qe {

namespace {

constexpr size_t MOST_DIGITS = 7;

} // namespace

CCommand::CCommand(CCommonOptions const& common, std::vector<std::string> vColumn, std::string strQuery)
    : m_bQuiet(common.bQuiet),
      m_strDic(common.strDic),
      m_strQuery(std::move(strQuery)),
      m_nForm(common.Form()),
      m_bColours(common.HasColours()),
      m_output(m_nForm, std::move(vColumn), common.bHeader, std::cout) {}

EExit CCommand::Run(std::vector<std::string> const& vText) {
    std::vector<std::string> vQuery;
    vQuery.reserve(vText.size());
    for (std::string const& strText : vText) vQuery.push_back(ReadQuery(strText));
    m_dictionary.emplace(m_strDic);
    Prepare();
    vQuery.empty() ? AnswerLines() : AnswerAll(vQuery);
    return m_nStatus;
}

void CCommand::AnswerAll(std::vector<std::string> const& vQuery) {
    for (std::string const& strQuery : vQuery) Answer(strQuery);
    m_output.Flush();
}

void CCommand::AnswerLines() {
    bool const bTyped = isatty(STDIN_FILENO) != 0;
    if (bTyped) Remark("one " + m_strQuery + " per line, Ctrl-D ends");
    std::string strLine;
    for (size_t nLine = 1; std::getline(std::cin, strLine); ++nLine) {
        if (!IsBlank(strLine)) AnswerLine(strLine, nLine);
        // Line by line for whoever waits for the answer; a table is lined up as a whole unless somebody types.
        if (bTyped || m_nForm != EForm::Table) m_output.Flush();
    }
    m_output.Flush();
    if (std::ferror(stdin) != 0) throw CFailure(EXIT_SYSTEM, "standard input cannot be read.");
}

void CCommand::AnswerLine(std::string const& strLine, size_t nLine) try {
    Answer(ReadQuery(strLine));
} catch (CFailure const& failure) {
    if (failure.Status() != EXIT_USAGE) throw;
    std::cerr << "qeadrs: line " << nLine << ": " << failure.what() << '\n';
    m_nStatus = EXIT_USAGE;
}

void CCommand::Remark(std::string const& strText) const {
    if (!m_bQuiet) std::cerr << "qeadrs: " << strText << '\n';
}

void CCommand::Remark(std::string_view strQuery, std::string const& strText) const {
    Remark(Shorten(strQuery) + ": " + strText);
}

void CCommand::ReportNotFound(std::string_view strQuery, std::string const& strReason) {
    Remark(strQuery, strReason.empty() ? "not found" : "not found; " + strReason);
    SetNotFound();
}

void CCommand::SetNotFound() {
    m_nStatus = std::max(m_nStatus, EXIT_NOT_FOUND);
}

std::string ReadCode(std::string const& strText) {
    std::string strCode = FoldCode(strText).value_or("");
    if (!strCode.empty() && strCode.size() <= MOST_DIGITS) return strCode;
    throw CFailure(EXIT_USAGE, Quote(strText) + " is no postal code: it has 1 to 7 digits.");
}

std::string ReadOldCode(std::string const& strText) {
    std::string strCode = FoldCode(strText).value_or("");
    if (strCode.size() == 3 || strCode.size() == 5) return strCode;
    throw CFailure(EXIT_USAGE, Quote(strText) + " is no old postal code: it has 3 or 5 digits.");
}

std::string ReadAddressText(std::string const& strText) {
    std::string strAddress(Trim(strText));
    if (strAddress.empty()) throw CFailure(EXIT_USAGE, Quote(strText) + " is no address: it has no characters.");
    if (strAddress.find('\0') != std::string::npos)
        throw CFailure(EXIT_USAGE, Quote(strText) + " is no address: it has a NUL in it.");
    return strAddress;
}

std::string ReadAddressField(std::string const& strText, size_t nLongest) {
    std::string strAddress = ReadAddressText(strText);
    if (strAddress.size() <= nLongest) return strAddress;
    throw CFailure(EXIT_USAGE, Quote(strAddress) + " has " + std::to_string(strAddress.size()) +
                                   " bytes; an address field holds " + std::to_string(nLongest) + ".");
}

} // namespace qe
