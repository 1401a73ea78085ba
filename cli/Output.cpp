// Output.cpp - rows as a table, as tab-separated lines or as JSON Lines.
#include "cli/Output.h"

#include "cli/Failure.h"
#include "cli/Text.h"

#include <unistd.h>

#include <algorithm>
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

} // namespace

EForm CCommonOptions::Form() const {
    if (bJson) return EForm::Json;
    return isatty(STDOUT_FILENO) != 0 ? EForm::Table : EForm::Tabs;
}

COutput::COutput(EForm nForm, std::vector<std::string> vKey, bool bHeader, std::ostream& out)
    : m_nForm(nForm), m_vKey(std::move(vKey)), m_bHeader(bHeader), m_out(out) {}

void COutput::Add(CRow row) {
    if (m_nForm == EForm::Json) return PrintJson(row);
    for (std::string& strText : row) strText = Clean(strText);
    if (m_nForm == EForm::Table)
        m_vRow.push_back(std::move(row));
    else
        PrintTabs(row);
}

void COutput::Flush() {
    if (m_nForm == EForm::Tabs && std::exchange(m_bHeader, false)) PrintTabs(m_vKey); // also above no rows at all
    if (m_nForm == EForm::Table && !m_vRow.empty()) PrintTable();
    m_vRow.clear();
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
    PrintCells(header, vWidth);
    for (CRow const& row : m_vRow) PrintCells(row, vWidth);
}

// Blanks are printed only in front of a text: a line does not end in any.
void COutput::PrintCells(CRow const& row, std::vector<size_t> const& vWidth) {
    size_t nBlanks = 0;
    for (size_t i = 0; i < row.size(); ++i) {
        if (vWidth[i] == 0) continue;
        if (!row[i].empty()) m_out << std::string(std::exchange(nBlanks, 0), ' ') << row[i];
        nBlanks += vWidth[i] - DisplayWidth(row[i]) + COLUMN_GAP;
    }
    m_out << '\n';
}

void COutput::PrintTabs(CRow const& row) {
    if (std::exchange(m_bHeader, false)) PrintTabs(m_vKey);
    for (size_t i = 0; i < row.size(); ++i) m_out << (i == 0 ? "" : "\t") << row[i];
    m_out << '\n';
}

void COutput::PrintJson(CRow const& row) {
    nlohmann::ordered_json object;
    for (size_t i = 0; i < row.size(); ++i)
        object[m_vKey[i]] = row[i].empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(row[i]);
    m_out << object.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
}

void CheckWritten(std::ostream& out) {
    out.flush();
    if (!out) throw CFailure(EXIT_SYSTEM, "the output cannot be written.");
}

} // namespace qe
