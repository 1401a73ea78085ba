// Help.cpp - names on the left, what they mean on the right, lines broken at blanks.
#include "options/Help.h"

#include <algorithm>
#include <ostream>
#include <sstream>

namespace qe {

namespace {

constexpr size_t PROGRAM_WIDTH = 80;
constexpr size_t COMMAND_WIDTH = 100;

// Columns on a terminal. In our texts what takes three bytes is a character of two columns: 〒, 北海道.
size_t Width(std::string const& strText) {
    size_t nWidth = 0;
    for (char const c : strText) {
        auto const n = static_cast<unsigned char>(c);
        nWidth += n < 0x80 || (n >= 0xC0 && n < 0xE0) ? 1 : n >= 0xE0 ? 2 : 0;
    }
    return nWidth;
}

// The words of the text on lines of nWidth columns; all lines but the first, which goes on, are indented.
void Wrap(std::ostream& out, std::string const& strText, size_t nIndent, size_t nWidth) {
    std::istringstream in(strText);
    size_t nAt = nIndent;
    for (std::string strWord; in >> strWord;) {
        bool const bFirst = nAt == nIndent;
        if (!bFirst && nAt + 1 + Width(strWord) > nWidth) {
            out << '\n' << std::string(nIndent, ' ');
            nAt = nIndent;
        } else if (!bFirst) {
            out << ' ';
            ++nAt;
        }
        out << strWord;
        nAt += Width(strWord);
    }
    out << '\n';
}

using CRows = std::vector<std::pair<std::string, std::string>>;

CRows Rows(std::vector<COptionEntry> const& vOption) {
    CRows vRow;
    for (COptionEntry const& option : vOption) vRow.emplace_back(Label(option), option.strHelp);
    return vRow;
}

void PrintRows(std::ostream& out, char const* pszTitle, CRows const& vRow, size_t nColumn, size_t nWidth) {
    if (vRow.empty()) return;
    out << '\n' << pszTitle << ":\n";
    for (auto const& [strLabel, strHelp] : vRow) {
        out << "  " << strLabel << std::string(nColumn - 2 - Width(strLabel), ' ');
        Wrap(out, strHelp, nColumn, nWidth);
    }
}

// Where the right side begins: two blanks behind the longest name.
size_t Column(CRows const& vRow, size_t nColumn = 0) {
    for (auto const& [strLabel, strHelp] : vRow) nColumn = std::max(nColumn, 2 + Width(strLabel) + 2);
    return nColumn;
}

void PrintParagraphs(std::ostream& out, std::string const& strText, size_t nWidth) {
    std::istringstream in(strText);
    for (std::string strLine; std::getline(in, strLine);) Wrap(out, strLine, 0, nWidth);
}

} // namespace

void PrintHelp(CProgram const& program, std::ostream& out) {
    out << program.strName << " - " << program.strHelp << '\n';
    out << "Usage: " << program.strName << " COMMAND [OPTION...] " << program.style.strTexts << '\n';
    if (!program.style.strNote.empty()) out << std::string(7, ' ') << program.style.strNote << '\n';
    CRows vCommand;
    for (CCommandEntry const& command : program.vCommand) vCommand.emplace_back(command.strName, command.strHelp);
    CRows const vOption = Rows(program.vOption);
    size_t const nColumn = Column(vOption, Column(vCommand));
    PrintRows(out, "Commands", vCommand, nColumn, PROGRAM_WIDTH);
    PrintRows(out, "Options", vOption, nColumn, PROGRAM_WIDTH);
    out << "\n`" << program.strName << " COMMAND --help` explains a command.\n";
    PrintParagraphs(out, program.style.strExit, PROGRAM_WIDTH);
}

void PrintHelp(CProgram const& program, CCommandEntry const& command, std::ostream& out) {
    out << program.strName << ' ' << command.strName << " - " << command.strHelp << '\n';
    out << "Usage: " << program.strName << ' ' << Usage(command) << '\n';
    CRows const vText = Rows(command.vText);
    CRows const vOption = Rows(command.vOption);
    size_t const nColumn = Column(vOption, Column(vText));
    PrintRows(out, "Arguments", vText, nColumn, COMMAND_WIDTH);
    PrintRows(out, "Options", vOption, nColumn, COMMAND_WIDTH);
    out << '\n';
    PrintParagraphs(out, command.strDetails, COMMAND_WIDTH);
    // A command whose status means something else tells so itself.
    if (command.strDetails.find("Exit: ") == std::string::npos)
        PrintParagraphs(out, program.style.strExit, COMMAND_WIDTH);
}

} // namespace qe
