// ManPage.cpp - commands and options as scdoc's text: *bold* as typed, _underlined_ for what it stands for.
#include "options/ManPage.h"

#include <algorithm>
#include <cctype>
#include <ostream>
#include <sstream>

namespace qe {

namespace {

// Our text, its marks without a meaning; commands between backticks and options become bold.
std::string Escape(std::string const& strText) {
    std::string strEscaped;
    bool bCommand = false;
    bool bOption = false;
    for (size_t n = 0; n <= strText.size(); ++n) {
        char const c = n < strText.size() ? strText[n] : '\0';
        if (bOption && c != '-' && std::isalnum(static_cast<unsigned char>(c)) == 0) {
            strEscaped += '*';
            bOption = false;
        }
        if (!bCommand && !bOption && strText.compare(n, 2, "--") == 0) {
            strEscaped += '*';
            bOption = true;
        }
        if (c == '`') bCommand = !bCommand;
        if (c == '\\' || c == '*' || c == '_' || c == '+') strEscaped += '\\';
        if (c != '\0') strEscaped += c == '`' ? '*' : c;
    }
    return strEscaped;
}

// What the reader types as it stands.
std::string Bold(std::string const& strText) {
    return "*" + strText + "*";
}

// "--output FILE [OPTION...]": what is in capitals is underlined, options are bold.
std::string MarkUsage(std::string const& strUsage) {
    std::string strMarked;
    bool bInside = false;
    for (char const c : Escape(strUsage) + '\0') {
        bool const bCapital = std::isupper(static_cast<unsigned char>(c)) != 0;
        if (bCapital != bInside) strMarked += '_';
        bInside = bCapital;
        if (c != '\0') strMarked += c;
    }
    return strMarked;
}

// One sentence: a capital in front and a full stop at the end.
std::string Sentence(std::string strText) {
    if (strText.empty()) return "";
    strText[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(strText[0])));
    return Escape(strText) + (strText.back() == '.' ? "" : ".");
}

void PrintOption(std::ostream& out, COptionEntry const& option) {
    std::string strNames;
    for (std::string const& strName : option.vName) strNames += (strNames.empty() ? "" : ", ") + Bold(strName);
    if (!option.strNegated.empty()) strNames += ", " + Bold(option.strNegated);
    if (!option.strValue.empty())
        strNames += " " + (option.vWord.empty() ? "_" + option.strValue + "_" : Escape(option.strValue));
    out << strNames << "\n\t" << Sentence(option.strHelp);
    if (option.bRequired) out << " Required.";
    out << "\n\n";
}

void PrintCommand(std::ostream& out, CProgram const& program, CCommandEntry const& command,
                  std::vector<COptionEntry> const& vCommon) {
    std::string const strUsage = Usage(command);
    out << "## " << command.strName << "\n\n"
        << Bold(program.strName + " " + command.strName) << MarkUsage(strUsage.substr(command.strName.size()))
        << "\n\n"
        << Sentence(command.strHelp) << "\n\n";
    for (COptionEntry const& text : command.vText)
        out << '_' << text.vName.front() << "_\n\t" << Sentence(text.strHelp) << "\n\n";
    for (COptionEntry const& option : command.vOption)
        if (std::find(vCommon.begin(), vCommon.end(), option) == vCommon.end()) PrintOption(out, option);
    std::istringstream in(command.strDetails);
    for (std::string strLine; std::getline(in, strLine);) out << Escape(strLine) << "\n\n";
}

// What every command takes, with the same words.
std::vector<COptionEntry> CommonOptions(CProgram const& program) {
    std::vector<COptionEntry> vCommon;
    for (COptionEntry const& option : program.vCommand.front().vOption) {
        auto const Has = [&](CCommandEntry const& command) {
            return std::find(command.vOption.begin(), command.vOption.end(), option) != command.vOption.end();
        };
        if (std::all_of(program.vCommand.begin(), program.vCommand.end(), Has)) vCommon.push_back(option);
    }
    return vCommon;
}

} // namespace

void PrintManSections(CProgram const& program, std::ostream& out) {
    std::vector<COptionEntry> const vCommon = CommonOptions(program);
    out << "# OPTIONS\n\nEvery command takes:\n\n";
    for (COptionEntry const& option : vCommon) PrintOption(out, option);
    out << "Without a command:\n\n";
    for (COptionEntry const& option : program.vOption)
        if (std::find(vCommon.begin(), vCommon.end(), option) == vCommon.end()) PrintOption(out, option);
    out << "# COMMANDS\n\n";
    for (CCommandEntry const& command : program.vCommand) PrintCommand(out, program, command, vCommon);
}

} // namespace qe
