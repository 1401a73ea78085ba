// Output.cpp - rows as a table, as tab-separated lines or as JSON Lines.
#include "cli/Output.h"

#include "cli/Failure.h"
#include "cli/Text.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <ostream>
#include <utility>

#include <nlohmann/json.hpp>

namespace qe {

namespace {

constexpr size_t COLUMN_GAP = 2;

std::string Title(std::string strKey) {
    std::replace(strKey.begin(), strKey.end(), '_', ' ');
    return strKey;
}

// The text with the escape sequences of its colours, those every terminal with colours knows: cyan and yellow.
std::string Coloured(std::string const& strText, size_t nColumn, std::vector<CMark> const& vMark) {
    std::string strOut;
    size_t nDone = 0;
    for (CMark const& mark : vMark) {
        if (mark.nColumn != nColumn) continue;
        strOut += strText.substr(nDone, mark.nOffset - nDone);
        strOut += mark.nMark == EMark::Supplied ? "\x1B[36m" : "\x1B[33m";
        strOut += strText.substr(mark.nOffset, mark.nLength) + "\x1B[m";
        nDone = mark.nOffset + mark.nLength;
    }
    return strOut + strText.substr(nDone);
}

} // namespace

EForm CCommonOptions::Form() const {
    if (bJson) return EForm::Json;
    return isatty(STDOUT_FILENO) != 0 ? EForm::Table : EForm::Tabs;
}

// https://no-color.org: set to anything but nothing, it asks for none.
bool CCommonOptions::HasColours() const {
    auto const Variable = [](char const* pszName) {
        char const* const psz = std::getenv(pszName);
        return std::string(psz == nullptr ? "" : psz);
    };
    std::string const strTerminal = Variable("TERM");
    return Form() == EForm::Table && Variable("NO_COLOR").empty() && !strTerminal.empty() && strTerminal != "dumb";
}

COutput::COutput(EForm nForm, std::vector<std::string> vKey, bool bHeader, std::ostream& out)
    : m_nForm(nForm), m_vKey(std::move(vKey)), m_bHeader(bHeader), m_out(out) {}

void COutput::Add(CRow row, CRowExtra extra) {
    if (m_nForm == EForm::Json) return PrintJson(row, extra.strMembers);
    for (std::string& strText : row) strText = Clean(strText);
    if (m_nForm == EForm::Tabs) return PrintTabs(row);
    m_vRow.push_back(std::move(row));
    m_vMark.push_back(std::move(extra.vMark));
}

void COutput::Flush() {
    if (m_nForm == EForm::Tabs && std::exchange(m_bHeader, false)) PrintTabs(m_vKey); // also above no rows at all
    if (m_nForm == EForm::Table && !m_vRow.empty()) PrintTable();
    m_vRow.clear();
    m_vMark.clear();
    CheckWritten(m_out);
}

void COutput::PrintTable() {
    CRow header;
    std::vector<size_t> vWidth; // 0: the column has no text and is left out
    for (size_t i = 0; i < m_vKey.size(); ++i) {
        header.push_back(Title(m_vKey[i]));
        size_t nWidth = 0;
        for (CRow const& row : m_vRow) nWidth = std::max(nWidth, DisplayWidth(row[i]));
        vWidth.push_back(nWidth == 0 ? 0 : std::max(nWidth, DisplayWidth(header[i])));
    }
    PrintCells(header, {}, vWidth);
    for (size_t i = 0; i < m_vRow.size(); ++i) PrintCells(m_vRow[i], m_vMark[i], vWidth);
}

// Blanks are printed only in front of a text: a line does not end in any.
void COutput::PrintCells(CRow const& row, std::vector<CMark> const& vMark, std::vector<size_t> const& vWidth) {
    size_t nBlanks = 0;
    for (size_t i = 0; i < row.size(); ++i) {
        if (vWidth[i] == 0) continue;
        if (!row[i].empty()) m_out << std::string(std::exchange(nBlanks, 0), ' ') << Coloured(row[i], i, vMark);
        nBlanks += vWidth[i] - DisplayWidth(row[i]) + COLUMN_GAP;
    }
    m_out << '\n';
}

void COutput::PrintTabs(CRow const& row) {
    if (std::exchange(m_bHeader, false)) PrintTabs(m_vKey);
    for (size_t i = 0; i < row.size(); ++i) m_out << (i == 0 ? "" : "\t") << row[i];
    m_out << '\n';
}

void COutput::PrintJson(CRow const& row, std::string const& strMembers) {
    nlohmann::ordered_json object;
    for (size_t i = 0; i < row.size(); ++i)
        object[m_vKey[i]] = row[i].empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(row[i]);
    std::string strObject = object.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
    if (!strMembers.empty()) strObject.insert(strObject.size() - 1, ',' + strMembers);
    m_out << strObject << '\n';
}

void CheckWritten(std::ostream& out) {
    out.flush();
    if (!out) throw CFailure(EXIT_SYSTEM, "the output cannot be written.");
}

} // namespace qe
