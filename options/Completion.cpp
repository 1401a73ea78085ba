// Completion.cpp - one function per shell, and the quoting that each of them wants.
#include "options/Completion.h"

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

namespace qe {

namespace {

using CNames = std::vector<std::string>;

std::string Join(CNames const& vName, std::string const& strBetween) {
    std::string strAll;
    for (std::string const& strName : vName) strAll += (strAll.empty() ? "" : strBetween) + strName;
    return strAll;
}

CNames Names(COptionEntry const& option) {
    CNames vName = option.vName;
    if (!option.strNegated.empty()) vName.push_back(option.strNegated);
    return vName;
}

CNames Names(std::vector<COptionEntry> const& vOption) {
    CNames vAll;
    for (COptionEntry const& option : vOption)
        for (std::string const& strName : Names(option)) vAll.push_back(strName);
    return vAll;
}

CNames Names(std::vector<CCommandEntry> const& vCommand) {
    CNames vAll;
    for (CCommandEntry const& command : vCommand) vAll.push_back(command.strName);
    return vAll;
}

// What stands for a value, by the name of its kind.
bool IsFile(std::string const& strKind) {
    return strKind == "FILE";
}
bool IsFolder(std::string const& strKind) {
    return strKind == "FOLDER";
}

bool TakesFile(CCommandEntry const& command) {
    return std::any_of(command.vText.begin(), command.vText.end(),
                       [](COptionEntry const& text) { return IsFile(text.vName.front()); });
}

// A shell function's name: "_qeadrs_dic".
std::string FunctionName(CProgram const& program) {
    std::string strName = "_" + program.strName;
    std::replace(strName.begin(), strName.end(), '-', '_');
    return strName;
}

std::string Heading(CProgram const& program, char const* pszShell) {
    return "# " + std::string(pszShell) + " completion of " + program.strName + ", made from its options.\n";
}

// In single quotes, for any of the shells.
std::string Quote(std::string const& strText, char const* pszQuote) {
    std::string strQuoted = "'";
    for (char const c : strText) c == '\'' ? strQuoted += pszQuote : strQuoted += c;
    return strQuoted + "'";
}
std::string ShellQuote(std::string const& strText) {
    return Quote(strText, "'\\''");
}
std::string FishQuote(std::string const& strText) {
    return Quote(strText, "\\'");
}

// --- bash ----------------------------------------------------------------------------------------------------------

constexpr char BASH_FILES[] = "compopt -o filenames 2>/dev/null\n";
constexpr char BASH_INDENT[] = "            ";

// COMPREPLY from what compgen finds, one on a line: names of files may hold blanks.
std::string BashFill(std::string const& strWhat) {
    return "mapfile -t COMPREPLY < <(compgen " + strWhat + " -- \"$cur\")\n";
}

std::string BashWords(CNames const& vWord) {
    return BashFill("-W '" + Join(vWord, " ") + "'");
}

// A branch of a case for all options that take such a value: "-d | --dic) ...".
void PrintBashValues(std::ostream& out, CNames const& vName, std::string const& strFill) {
    if (vName.empty()) return;
    out << "        " << Join(vName, " | ") << ")\n";
    if (!strFill.empty()) out << strFill;
    out << BASH_INDENT << "return ;;\n";
}

void PrintBashCommand(std::ostream& out, CCommandEntry const& command) {
    CNames vFile, vFolder, vOther;
    out << "    " << command.strName << ")\n        case $prev in\n";
    for (COptionEntry const& option : command.vOption) {
        if (option.strValue.empty()) continue;
        if (!option.vWord.empty()) {
            PrintBashValues(out, option.vName, BASH_INDENT + BashWords(option.vWord));
            continue;
        }
        CNames& vKind = IsFile(option.strValue) ? vFile : IsFolder(option.strValue) ? vFolder : vOther;
        vKind.insert(vKind.end(), option.vName.begin(), option.vName.end());
    }
    std::string const strFiles = std::string(BASH_INDENT) + BASH_FILES + BASH_INDENT;
    PrintBashValues(out, vFile, strFiles + BashFill("-f"));
    PrintBashValues(out, vFolder, strFiles + BashFill("-d"));
    PrintBashValues(out, vOther, "");
    out << "        esac\n        if [[ $cur == -* ]]; then\n" << BASH_INDENT << BashWords(Names(command.vOption));
    if (TakesFile(command)) out << "        else\n" << strFiles << BashFill("-f");
    out << "        fi ;;\n";
}

// --- zsh -----------------------------------------------------------------------------------------------------------

// A text between the brackets that zsh has behind an option.
std::string ZshText(std::string const& strText) {
    std::string strEscaped;
    for (char const c : strText) {
        if (c == '[' || c == ']' || c == ':' || c == '\\') strEscaped += '\\';
        strEscaped += c;
    }
    return strEscaped;
}

std::string ZshAction(std::string const& strKind, CNames const& vWord) {
    if (!vWord.empty()) return "(" + Join(vWord, " ") + ")";
    return IsFile(strKind) ? "_files" : IsFolder(strKind) ? "_path_files -/" : " ";
}

void PrintZshOption(std::ostream& out, COptionEntry const& option, char const* pszIndent) {
    CNames const vName = Names(option);
    for (std::string const& strName : vName) {
        // Once on a line, under any of its names, unless it may be given again.
        std::string strSpec = option.bRepeated ? "*" : "(" + Join(vName, " ") + ")";
        strSpec += strName;
        if (!option.strValue.empty()) strSpec += strName.size() == 2 ? "+" : "=";
        strSpec += "[" + ZshText(option.strHelp) + "]";
        if (!option.strValue.empty())
            strSpec += ":" + ZshText(option.strValue) + ":" + ZshAction(option.strValue, option.vWord);
        out << " \\\n" << pszIndent << ShellQuote(strSpec);
    }
}

void PrintZshCommand(std::ostream& out, CCommandEntry const& command) {
    out << "    " << command.strName << ")\n        _arguments -s -S";
    for (COptionEntry const& option : command.vOption) PrintZshOption(out, option, "            ");
    for (COptionEntry const& text : command.vText) {
        std::string const strName = text.vName.front();
        out << " \\\n            "
            << ShellQuote((text.bRepeated   ? "*:"
                           : text.bRequired ? ":"
                                            : "::") +
                          strName + ":" + ZshAction(strName, {}));
    }
    out << " ;;\n";
}

// --- fish ----------------------------------------------------------------------------------------------------------

void PrintFishOption(std::ostream& out, COptionEntry const& option, std::string const& strComplete) {
    out << strComplete;
    for (std::string const& strName : option.vName)
        out << (strName.size() == 2 ? " -s " + strName.substr(1) : " -l " + strName.substr(2));
    if (IsFile(option.strValue))
        out << " -r -F";
    else if (IsFolder(option.strValue))
        out << " -x -a '(__fish_complete_directories)'";
    else if (!option.vWord.empty())
        out << " -x -a " << FishQuote(Join(option.vWord, " "));
    else if (!option.strValue.empty())
        out << " -x";
    out << " -d " << FishQuote(option.strHelp) << '\n';
    if (!option.strNegated.empty())
        out << strComplete << " -l " << option.strNegated.substr(2) << " -d "
            << FishQuote("the opposite of " + option.vName.back()) << '\n';
}

} // namespace

void PrintBash(CProgram const& program, std::ostream& out) {
    std::string const strFunction = FunctionName(program);
    CNames const vCommand = Names(program.vCommand);
    out << Heading(program, "bash") << strFunction << "() {\n"
        << "    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]} command='' n\n"
        << "    COMPREPLY=()\n"
        // bash cuts a line at "=": "--dic=FILE" is three words.
        << "    if [[ $cur == = ]]; then\n        cur=\n"
        << "    elif [[ $prev == = ]]; then\n        prev=${COMP_WORDS[COMP_CWORD-2]}\n    fi\n"
        << "    for ((n = 1; n < COMP_CWORD; n++)); do\n        case ${COMP_WORDS[n]} in\n        "
        << Join(vCommand, " | ") << ")\n            command=${COMP_WORDS[n]}\n            break ;;\n"
        << "        esac\n    done\n    case $command in\n";
    for (CCommandEntry const& command : program.vCommand) PrintBashCommand(out, command);
    out << "    *)\n        if [[ $cur == -* ]]; then\n"
        << BASH_INDENT << BashWords(Names(program.vOption)) << "        else\n"
        << BASH_INDENT << BashWords(vCommand) << "        fi ;;\n    esac\n}\n"
        << "complete -F " << strFunction << ' ' << program.strName << '\n';
}

void PrintZsh(CProgram const& program, std::ostream& out) {
    std::string const strFunction = FunctionName(program);
    out << "#compdef " << program.strName << '\n'
        << Heading(program, "zsh") << strFunction << "() {\n    local context state state_descr line ret=1\n"
        << "    typeset -A opt_args\n    _arguments -C -S";
    for (COptionEntry const& option : program.vOption) PrintZshOption(out, option, "        ");
    out << " \\\n        '1:command:->command' \\\n        '*::argument:->argument' && ret=0\n"
        << "    case $state in\n    command)\n        local -a commands\n        commands=(\n";
    for (CCommandEntry const& command : program.vCommand)
        out << "            " << ShellQuote(command.strName + ":" + command.strHelp) << '\n';
    out << "        )\n        _describe -t commands command commands && ret=0 ;;\n    argument)\n        "
        << strFunction << "_argument && ret=0 ;;\n    esac\n    return ret\n}\n\n"
        << strFunction << "_argument() {\n    case $words[1] in\n";
    for (CCommandEntry const& command : program.vCommand) PrintZshCommand(out, command);
    // Loaded as a function of its own name it is called at once; sourced, it is announced.
    out << "    esac\n}\n\nif [[ $funcstack[1] == _" << program.strName << " ]]; then\n    " << strFunction
        << " \"$@\"\nelse\n    compdef " << strFunction << ' ' << program.strName << "\nfi\n";
}

void PrintFish(CProgram const& program, std::ostream& out) {
    std::string const strComplete = "complete -c " + program.strName;
    out << Heading(program, "fish") << strComplete << " -f\n";
    for (CCommandEntry const& command : program.vCommand)
        out << strComplete << " -n __fish_use_subcommand -a " << command.strName << " -d "
            << FishQuote(command.strHelp) << '\n';
    for (COptionEntry const& option : program.vOption)
        PrintFishOption(out, option, strComplete + " -n __fish_use_subcommand");
    for (CCommandEntry const& command : program.vCommand) {
        std::string const strHere = strComplete + " -n '__fish_seen_subcommand_from " + command.strName + "'";
        if (TakesFile(command)) out << strHere << " -F\n";
        for (COptionEntry const& option : command.vOption) PrintFishOption(out, option, strHere);
    }
}

} // namespace qe
