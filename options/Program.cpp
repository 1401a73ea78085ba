// Program.cpp - help, version and the files made of the options, hung into the parser.
#include "options/Program.h"

#include "options/Completion.h"
#include "options/Help.h"
#include "options/ManPage.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>

#include <CLI/CLI.hpp>

namespace qe {

namespace {

class CHelp : public CLI::FormatterBase {
  public:
    explicit CHelp(CProgramStyle style) : m_style(std::move(style)) {}

    std::string make_help(CLI::App const* pApp, std::string, CLI::AppFormatMode) const override {
        bool const bProgram = pApp->get_parent() == nullptr;
        CProgram const program = ReadProgram(bProgram ? *pApp : *pApp->get_parent(), m_style);
        std::ostringstream out;
        if (bProgram) PrintHelp(program, out);
        for (CCommandEntry const& command : program.vCommand)
            if (!bProgram && command.strName == pApp->get_name()) PrintHelp(program, command, out);
        return out.str();
    }

  private:
    CProgramStyle m_style;
};

void Generate(CProgram const& program, std::string const& strWhat, std::ostream& out) {
    if (strWhat == "bash") PrintBash(program, out);
    if (strWhat == "zsh") PrintZsh(program, out);
    if (strWhat == "fish") PrintFish(program, out);
    if (strWhat == "man") PrintManSections(program, out);
}

// A value that is missing, without what the parser tells of how it would check it:
// "--jobs: 1 required N:INT in [1 - 256] missing".
std::string Plain(CLI::Error const& error) {
    static std::string const REQUIRED = ": 1 required ";
    std::string const strText = error.what();
    size_t const nStart = strText.find(REQUIRED);
    if (error.get_name() != "ArgumentMismatch" || nStart == std::string::npos) return strText;
    size_t const nValue = nStart + REQUIRED.size();
    return strText.substr(0, nStart) + ": " + strText.substr(nValue, strText.find_first_of(": ", nValue) - nValue) +
           " is missing";
}

} // namespace

void SetUpProgram(CLI::App& app, CProgramStyle const& style) {
    app.formatter(std::make_shared<CHelp>(style));
    app.failure_message([strName = app.get_name()](CLI::App const*, CLI::Error const& error) {
        return strName + ": " + Plain(error) + "\nRun `" + strName + " --help` or `" + strName +
               " COMMAND --help`.\n";
    });
    app.set_help_flag("-h,--help", "this help");
    app.set_version_flag("--version", style.strVersion, "version of the program");
    app.require_subcommand(1);
    app.add_option_function<std::string>("--generate",
                                         [&app, style](std::string const& strWhat) {
                                             Generate(ReadProgram(app, style), strWhat, std::cout);
                                             throw CLI::Success();
                                         })
        ->check(CLI::IsMember({"bash", "zsh", "fish", "man"}))
        ->group("");
}

} // namespace qe
