// OptionTable.h - a program's commands and options as one table, read from its parser.
//
//   CProgram const program = ReadProgram(app, style);   // CLI::App, all commands added
//   PrintHelp(program, "", std::cout);
//
// Help, man page and completions are all written from it, so that none of them can know an option that the parser
// does not, or forget one.
//
// An option's value is named by its type name: FILE and FOLDER are completed as such, and words with "|" between them
// ("tsv|csv") or a CLI::IsMember check are the only values there are. An option or command of the group "" is hidden.
#ifndef QEADRS_OPTIONS_OPTIONTABLE_H
#define QEADRS_OPTIONS_OPTIONTABLE_H

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace qe {

struct COptionEntry {
    std::vector<std::string> vName; // "-d", "--dic"; of a text its name only: "CODE"
    std::string strNegated;         // "--no-progress" beside "--progress", else ""
    std::string strValue;           // "FILE"; "" for a flag
    std::vector<std::string> vWord; // the only values, when there are not more
    bool bRequired = false;
    bool bRepeated = false; // may be given again
    std::string strHelp;

    bool operator==(COptionEntry const& other) const;
};

struct CCommandEntry {
    std::string strName;
    std::string strHelp;
    std::string strDetails; // paragraphs, one line each; commands between ` and `
    std::vector<COptionEntry> vText;
    std::vector<COptionEntry> vOption;
};

// What the parser does not know about its program.
struct CProgramStyle {
    std::string strVersion;
    std::string strTexts; // what follows a command: "[TEXT...]"
    std::string strNote;  // a line below the usage, or ""
    std::string strExit;  // the line that explains the exit status
};

struct CProgram {
    std::string strName;
    std::string strHelp;
    CProgramStyle style;
    std::vector<COptionEntry> vOption;
    std::vector<CCommandEntry> vCommand;
};

CProgram ReadProgram(CLI::App const& app, CProgramStyle const& style);

// "-d, --dic FILE"; "--[no-]progress".
std::string Label(COptionEntry const& option);

// What is typed behind the program's name: "zip [OPTION...] [CODE...]", "build --output FILE [OPTION...]".
std::string Usage(CCommandEntry const& command);

} // namespace qe

#endif
