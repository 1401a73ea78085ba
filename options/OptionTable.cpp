// OptionTable.cpp - the parser's commands and options, picked out of it.
#include "options/OptionTable.h"

#include <algorithm>
#include <tuple>

#include <CLI/CLI.hpp>

namespace qe {

namespace {

std::vector<std::string> Split(std::string const& strText, char cBetween) {
    std::vector<std::string> vPart(1);
    for (char const c : strText) {
        if (c == cBetween)
            vPart.emplace_back();
        else
            vPart.back() += c;
    }
    return vPart;
}

// The parser puts what its checks say of themselves behind the type's name: "TEXT:{tsv,csv}", "N:INT in [1 - 20]".
void ReadValue(CLI::Option const& option, COptionEntry& entry) {
    std::string const strType = option.get_type_name();
    entry.strValue = strType.substr(0, strType.find(':'));
    size_t const nOpen = strType.find('{');
    size_t const nClose = strType.find('}');
    if (entry.strValue.find('|') != std::string::npos)
        entry.vWord = Split(entry.strValue, '|');
    else if (nOpen != std::string::npos && nClose != std::string::npos && nOpen < nClose)
        entry.vWord = Split(strType.substr(nOpen + 1, nClose - nOpen - 1), ',');
}

COptionEntry ReadOption(CLI::Option const& option) {
    COptionEntry entry;
    for (std::string const& strName : option.get_snames()) entry.vName.push_back("-" + strName);
    for (std::string const& strName : option.get_lnames()) {
        bool const bNegated = strName.compare(0, 3, "no-") == 0 && option.check_lname(strName.substr(3));
        (bNegated ? entry.strNegated : entry.vName.emplace_back()) = "--" + strName;
    }
    if (option.get_positional()) entry.vName = {option.get_single_name()};
    if (!option.get_positional() && option.get_items_expected_max() > 0) ReadValue(option, entry);
    entry.bRequired = option.get_required();
    entry.bRepeated =
        option.get_items_expected_max() > 1 || option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll;
    entry.strHelp = option.get_description();
    return entry;
}

// In the order in which they were added, but the help at the end: it is the same everywhere.
std::vector<COptionEntry> ReadOptions(CLI::App const& app, bool bTexts) {
    std::vector<COptionEntry> vOption;
    for (CLI::Option const* const p : app.get_options())
        if (!p->get_group().empty() && p->get_positional() == bTexts && p != app.get_help_ptr())
            vOption.push_back(ReadOption(*p));
    if (!bTexts && app.get_help_ptr() != nullptr) vOption.push_back(ReadOption(*app.get_help_ptr()));
    return vOption;
}

} // namespace

bool COptionEntry::operator==(COptionEntry const& other) const {
    auto const All = [](COptionEntry const& o) {
        return std::tie(o.vName, o.strNegated, o.strValue, o.vWord, o.bRequired, o.bRepeated, o.strHelp);
    };
    return All(*this) == All(other);
}

CProgram ReadProgram(CLI::App const& app, CProgramStyle const& style) {
    CProgram program{app.get_name(), app.get_description(), style, ReadOptions(app, false), {}};
    for (CLI::App const* const pCommand : app.get_subcommands({}))
        if (!pCommand->get_group().empty())
            program.vCommand.push_back({pCommand->get_name(), pCommand->get_description(), pCommand->get_footer(),
                                        ReadOptions(*pCommand, true), ReadOptions(*pCommand, false)});
    return program;
}

std::string Label(COptionEntry const& option) {
    std::string strLabel;
    for (std::string const& strName : option.vName) strLabel += (strLabel.empty() ? "" : ", ") + strName;
    if (!option.strNegated.empty()) strLabel.replace(strLabel.rfind("--"), 2, "--[no-]");
    return option.strValue.empty() ? strLabel : strLabel + " " + option.strValue;
}

std::string Usage(CCommandEntry const& command) {
    std::string strUsage = command.strName;
    for (COptionEntry const& option : command.vOption)
        if (option.bRequired) strUsage += " " + option.vName.back() + " " + option.strValue;
    strUsage += " [OPTION...]";
    // Each text needs the one before it: "[PREFECTURE [CITY]]".
    std::string strEnd;
    for (COptionEntry const& text : command.vText) {
        strUsage += (text.bRequired ? " " : " [") + text.vName.front() + (text.bRepeated ? "..." : "");
        if (!text.bRequired) strEnd += ']';
    }
    return strUsage + strEnd;
}

} // namespace qe
