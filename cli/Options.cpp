// Options.cpp - one function per command; what a command has to say beyond its options is its footer.
#include "cli/Options.h"

#include "cli/Text.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>

#include <CLI/CLI.hpp>

namespace qe {

namespace {

constexpr char ZIP_HELP[] =
    "Codes may be written with 〒, hyphens, blanks and full-width digits; 1 to 7 digits are a leading part. On a "
    "terminal the answer is a table; elsewhere tab-separated lines that always hold: postal code, old code, "
    "prefecture, city, town, area, building, floor, organisation (with --kana also the readings of all but codes "
    "and floor; with --cities the code asked for, prefecture, city). In JSON a level that is absent is null.";

constexpr char ADDR_HELP[] =
    "An address is read as people write it; `qeadrs explain` tells how. Columns: postal code, old code, prefecture, "
    "city, town as the dictionary spells them, rest (what stands behind the town); of several cities none is found "
    "unless a town tells which; with --org the organisation when the code is its own, which needs a town; with "
    "--kana the readings of the three names. On a terminal what the text leaves out is cyan, what it writes in "
    "another way yellow. --json has all that was read. With --exact names have to be spelled as in the dictionary, "
    "prefecture and city may be left out, and an address may have 121 bytes.";

constexpr char LATEST_HELP[] =
    "An address is read as for `qeadrs addr`, and names its town. Columns: address (its latest form, as the "
    "dictionary spells it), postal code and old code (still those of the address as it was), changed (\"yes\": "
    "prefecture, city or town were replaced; \"no\"), latest code (that of the latest form). A street of Kyoto "
    "stays as it is. --json has both forms. On a terminal what the text has not is cyan, left out or new; what it "
    "has in another form yellow. With --exact the address keeps the names that were not replaced as the text has "
    "them; it is whole where the library cuts it after 60 bytes, and may have 121 itself.";

constexpr char EXPLAIN_HELP[] =
    "A line for each step: what it is about, the part of the text, what it was taken for. The last lines have how "
    "sure the answer is, and the place: exact, folded (written in another way), supplied (names are left out), "
    "several (places that fit), town_not_found, city_not_found, nothing. In JSON an object for each text, with all "
    "that `qeadrs addr --json` tells, and the steps.";

constexpr char FIND_HELP[] =
    "A text that begins with a whole prefecture stands for all below the levels that it names, any other one for "
    "all below the prefectures and cities whose names it begins. Columns are those of `qeadrs zip`; behind a whole "
    "town the area holds the rest of the text. How many there are is remarked on standard error.";

constexpr char BROWSE_HELP[] =
    "Without a place on a terminal: pick one from lists, typing a part of a name or of its reading to narrow them. A "
    "place is its number, its name or reading, or the one beginning or end of a name that fits a single one. Lists "
    "have the columns number (counted from 0, as the library does), name, postal code, old code, superseded "
    "(\"yes\": a place of an earlier edition), with --kana the reading; a town's addresses have those of "
    "`qeadrs zip`; --ui has postal code, old code, line, organisation.";

constexpr char REFINE_HELP[] =
    "Each prefecture, city and address on a line of its own, indented below what it lies in and sorted by name. An "
    "address is its postal code, town and what stands below the town; one that two places of the dictionary refer "
    "to stands there twice. A code may be written as for `qeadrs zip`, an address as for `qeadrs find`, in 127 "
    "bytes; names end after 60 bytes. A new city of a prefecture that is not the last one so far is listed there, "
    "but its addresses below the last city of the last prefecture: so it is in the interface's tree. In JSON an "
    "object per prefecture. How large the tree is is remarked on standard error.";

// What every command takes.
void AddBasic(CLI::App& command, CCommonOptions& common) {
    command
        .add_option("-d,--dic", common.strDic, "dictionary, or the folder of a qeadrs.dic (default: the profile's)")
        ->type_name("FILE");
    command.add_flag("--json", common.bJson, "one JSON object per line");
    command.add_flag("-q,--quiet", common.bQuiet, "no remarks, errors only");
}

// What every command takes that answers in columns.
void AddCommon(CLI::App& command, CCommonOptions& common) {
    AddBasic(command, common);
    command.add_flag("--header", common.bHeader, "a first line that names the tab-separated columns")
        ->excludes(command.get_option("--json"));
}

void AddExact(CLI::App& command, bool& bExact) {
    command.add_flag("--exact", bExact, "names as the dictionary spells them, by the library's interfaces alone");
}

void AddZip(CLI::App& app, CZipOptions& options, CCommonOptions& common, EExit& nStatus) {
    CLI::App* const pZip = app.add_subcommand("zip", "addresses of postal codes");
    pZip->add_option("CODE", options.vCode,
                     "postal codes or leading parts of them (none: one per line from standard input)");
    auto* const pOld = pZip->add_flag("--old", options.bOld, "the codes are old ones, of 3 or 5 digits");
    auto* const pCities = pZip->add_flag("--cities", options.bCities, "only the prefecture and city, each once");
    pZip->add_flag("--kana", options.bKana, "readings, too")->excludes(pCities);
    // A lookup by old code is in dictionary order, whatever the sort type.
    pZip->add_flag("--sort", options.bSort, "from 北海道 to 沖縄県, then by name (default: dictionary order)")
        ->excludes(pOld);
    AddCommon(*pZip, common);
    pZip->footer(ZIP_HELP);
    pZip->callback([&options, &common, &nStatus] { nStatus = RunZip(options, common); });
}

void AddAddr(CLI::App& app, CAddrOptions& options, CCommonOptions& common, EExit& nStatus) {
    CLI::App* const pAddr = app.add_subcommand("addr", "postal codes of addresses");
    pAddr->add_option("TEXT", options.vText, "addresses (none: one per line from standard input)");
    pAddr->add_option("--org", options.strOffice, "organisation there, as its name begins")->type_name("NAME");
    pAddr->add_flag("--kana", options.bKana, "readings, too");
    AddExact(*pAddr, options.bExact);
    AddCommon(*pAddr, common);
    pAddr->footer(ADDR_HELP);
    pAddr->callback([&options, &common, &nStatus] { nStatus = RunAddr(options, common); });
}

void AddLatest(CLI::App& app, CLatestOptions& options, CCommonOptions& common, EExit& nStatus) {
    CLI::App* const pLatest = app.add_subcommand("latest", "old addresses in their latest form");
    pLatest->add_option("TEXT", options.vText, "addresses (none: one per line from standard input)");
    AddExact(*pLatest, options.bExact);
    AddCommon(*pLatest, common);
    pLatest->footer(LATEST_HELP);
    pLatest->callback([&options, &common, &nStatus] { nStatus = RunLatest(options, common); });
}

void AddExplain(CLI::App& app, CExplainOptions& options, CCommonOptions& common, EExit& nStatus) {
    CLI::App* const pExplain = app.add_subcommand("explain", "how addresses are read, step by step");
    pExplain->add_option("TEXT", options.vText, "addresses (none: one per line from standard input)");
    AddCommon(*pExplain, common);
    pExplain->footer(EXPLAIN_HELP);
    pExplain->callback([&options, &common, &nStatus] { nStatus = RunExplain(options, common); });
}

// Why the text is no number, "" when it is one.
std::string CheckCount(std::string const& strText) {
    bool const bNumber = !strText.empty() && strText.find_first_not_of("0123456789") == std::string::npos;
    return bNumber ? "" : Quote(strText) + " is no number of addresses.";
}

// A number beyond all numbers of addresses is the largest one. REQUIRES: digits only.
size_t ReadCount(std::string const& strText) {
    return static_cast<size_t>(std::min<unsigned long long>(std::strtoull(strText.c_str(), nullptr, 10), SIZE_MAX));
}

void AddFind(CLI::App& app, CFindOptions& options, CCommonOptions& common, EExit& nStatus) {
    CLI::App* const pFind = app.add_subcommand("find", "addresses that partial texts can stand for");
    pFind->add_option("TEXT", options.vText, "beginnings of addresses (none: one per line from standard input)");
    pFind
        ->add_option_function<std::string>(
            "--limit", [&options](std::string const& strText) { options.nLimit = ReadCount(strText); },
            "print the first N of each text only; 0 just counts")
        ->check(CheckCount)
        ->type_name("N");
    pFind->add_flag("--kana", options.bKana, "readings, too");
    AddCommon(*pFind, common);
    pFind->footer(FIND_HELP);
    pFind->callback([&options, &common, &nStatus] { nStatus = RunFind(options, common); });
}

void AddBrowse(CLI::App& app, CBrowseOptions& options, CCommonOptions& common, EExit& nStatus) {
    CLI::App* const pBrowse = app.add_subcommand("browse", "prefectures, cities and towns, level by level");
    for (auto const& [strName, strHelp] :
         {std::pair("PREFECTURE", "list its cities (none: all prefectures)"), std::pair("CITY", "list its towns"),
          std::pair("TOWN", "print the addresses of the town")})
        pBrowse->add_option_function<std::string>(
            strName, [&options](std::string const& strText) { options.vPath.push_back(strText); }, strHelp);
    pBrowse->add_flag("--ui", options.bLines, "a city's or town's addresses as lines for a screen");
    pBrowse->add_flag("--sort", options.bSort, "cities and towns by name (default: dictionary order)");
    pBrowse->add_flag("--kana", options.bKana, "readings, too");
    AddCommon(*pBrowse, common);
    pBrowse->footer(BROWSE_HELP);
    pBrowse->callback([&options, &common, &nStatus] { nStatus = RunBrowse(options, common); });
}

void AddRefine(CLI::App& app, CRefineOptions& options, CCommonOptions& common, EExit& nStatus) {
    CLI::App* const pRefine = app.add_subcommand("refine", "tree of what a partial code or address can mean");
    pRefine->add_option("--code", options.strCode, "beginning of a postal code")->type_name("TEXT");
    pRefine
        ->add_option("--addr", options.strAddr,
                     "beginning of an address, when there is no code (neither: the whole dictionary)")
        ->type_name("TEXT");
    pRefine->add_option("--levels", options.nLevels, "1 prefectures, 2 and cities, 3 and addresses (default)")
        ->check([](std::string const& strText) {
            bool const bRight = strText == "1" || strText == "2" || strText == "3";
            return bRight ? "" : Quote(strText) + " is no number of levels: it is 1, 2 or 3.";
        })
        ->type_name("N");
    AddBasic(*pRefine, common);
    pRefine->footer(REFINE_HELP);
    pRefine->callback([&options, &common, &nStatus] { nStatus = RunRefine(options, common); });
}

} // namespace

void AddCommands(CLI::App& app, COptions& options, EExit& nStatus) {
    AddZip(app, options.zip, options.common, nStatus);
    AddAddr(app, options.addr, options.common, nStatus);
    AddLatest(app, options.latest, options.common, nStatus);
    AddExplain(app, options.explain, options.common, nStatus);
    AddFind(app, options.find, options.common, nStatus);
    AddBrowse(app, options.browse, options.common, nStatus);
    AddRefine(app, options.refine, options.common, nStatus);
    AddBatch(app, options.batch, nStatus);
}

} // namespace qe
