// BrowseCommand.cpp - `qeadrs browse`: down a path of numbers and names, or down a path that is picked on the screen.
#include "cli/BrowseCommand.h"

#include "cli/Address.h"
#include "cli/Browser.h"
#include "cli/Command.h"
#include "cli/Picker.h"
#include "cli/Text.h"

#include <unistd.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <utility>

namespace qe {

namespace {

constexpr size_t LEVELS = 3; // prefecture, city, town
constexpr char const* LEVEL_NAMES[LEVELS] = {"prefecture", "city", "town"};
constexpr char const* LEVELS_NAMES[LEVELS] = {"prefectures", "cities", "towns"};
constexpr size_t MOST_NAMED = 5; // places that a remark names

bool IsNumber(std::string const& strText) {
    return strText.find_first_not_of("0123456789") == std::string::npos;
}

// The places for which bFits holds.
std::vector<CPlace> Select(std::vector<CPlace> const& vPlace, std::function<bool(CPlace const&)> const& Fits) {
    std::vector<CPlace> vFound;
    std::copy_if(vPlace.begin(), vPlace.end(), std::back_inserter(vFound), Fits);
    return vFound;
}

bool BeginsWith(std::string const& strText, std::string const& strBeginning) {
    return strText.compare(0, strBeginning.size(), strBeginning) == 0;
}

bool EndsWith(std::string const& strText, std::string const& strEnd) {
    return strText.size() >= strEnd.size() &&
           strText.compare(strText.size() - strEnd.size(), strEnd.size(), strEnd) == 0;
}

// The places that a text of the command line can mean: the one with this number; else those of this name or reading;
// else those that begin so; else those that end so, as 余市町 ends 余市郡余市町.
std::vector<CPlace> FindPlaces(std::vector<CPlace> const& vPlace, std::string const& strText) {
    if (IsNumber(strText)) {
        std::string const strNumber = strText.substr(std::min(strText.find_first_not_of('0'), strText.size() - 1));
        return Select(vPlace, [&](CPlace const& place) { return std::to_string(place.nNumber) == strNumber; });
    }
    std::string const strFolded = FoldForFilter(strText);
    if (strFolded.empty()) return {}; // not UTF-8: no name, and no part of one
    using CTest = std::function<bool(CPlace const&)>;
    CTest const vTest[] = {
        [&](CPlace const& place) { return place.strName == strText; },
        [&](CPlace const& place) { return FoldForFilter(place.strKana) == strFolded; },
        [&](CPlace const& place) { return BeginsWith(place.strName, strText); },
        [&](CPlace const& place) { return BeginsWith(FoldForFilter(place.strKana), strFolded); },
        [&](CPlace const& place) { return EndsWith(place.strName, strText); },
    };
    for (CTest const& Fits : vTest) {
        std::vector<CPlace> vFound = Select(vPlace, Fits);
        if (!vFound.empty()) return vFound;
    }
    return {};
}

// "0 千代田区, 1 中央区, ..." for a remark.
std::string NamePlaces(std::vector<CPlace> const& vPlace) {
    std::string strNames;
    for (size_t i = 0; i < vPlace.size() && i < MOST_NAMED; ++i)
        strNames += (i == 0 ? "" : ", ") + std::to_string(vPlace[i].nNumber) + ' ' + Clean(vPlace[i].strName);
    return strNames + (vPlace.size() > MOST_NAMED ? ", ..." : "");
}

std::vector<std::string> Columns(CBrowseOptions const& options, bool bPick) {
    if (options.bLines) return {"postal_code", "old_code", "line", "organisation"};
    if (options.vPath.size() == LEVELS || bPick) return AddressColumns(options.bKana);
    std::vector<std::string> vColumn = {"number", "name", "postal_code", "old_code", "superseded"};
    if (options.bKana) vColumn.emplace_back("kana");
    return vColumn;
}

CRow PlaceRow(CPlace place, bool bKana) {
    CRow row = {std::to_string(place.nNumber), std::move(place.strName), std::move(place.strCode),
                std::move(place.strOldCode), place.bSuperseded ? "yes" : ""};
    if (bKana) row.push_back(std::move(place.strKana));
    return row;
}

CPickItem MakeItem(CPlace const& place) {
    std::string strLine = place.strName;
    for (std::string const* pstr : {&place.strKana, &place.strCode})
        if (!pstr->empty()) strLine += "  " + *pstr;
    if (place.bSuperseded) strLine += "  (superseded)";
    return {Clean(strLine), {FoldForFilter(place.strName), FoldForFilter(place.strKana), place.strCode}};
}

// --- the command ---------------------------------------------------------------------------------------------------

class CBrowseCommand : public CCommand {
  public:
    CBrowseCommand(CBrowseOptions const& options, CCommonOptions const& common, bool bPick)
        : CCommand(common, Columns(options, bPick), "place"), m_options(options), m_bPick(bPick) {}

  private:
    // The prefecture, the city and the town, as far down as they are known.
    using CPath = std::vector<CPlace>;

    std::string ReadQuery(std::string const& strText) const override { return strText; } // the path as one text

    void Prepare() override { m_browser.emplace(Dictionary(), m_options.bSort ? SORT_ADDR : SORT_DICTIONARY); }

    void Answer(std::string const& strQuery) override {
        std::optional<CPath> const path = m_bPick ? Pick() : Resolve();
        if (!path && m_bPick) return ReportNotFound("browse", "nothing was picked");
        if (!path || PrintBelow(*path)) return;
        ReportNotFound(m_bPick ? Title(*path) : path->empty() ? "browse" : strQuery, WhyEmpty(path->size()));
    }

    std::string WhyEmpty(size_t nLevel) const {
        if (nLevel == LEVELS || m_options.bLines || m_bPick) return "no address of today there";
        return std::string("there are no ") + LEVELS_NAMES[nLevel] +
               (nLevel == LEVELS - 1 ? " (--ui shows the city's addresses)" : "");
    }

    // The list below a path of fewer than three places.
    std::vector<CPlace> List(CPath const& path) {
        return path.empty()       ? m_browser->Prefectures()
               : path.size() == 1 ? m_browser->Cities(path[0].nNumber)
                                  : m_browser->Towns(path[0].nNumber, path[1].nNumber);
    }

    // Prints what is below; false when there is nothing.
    bool PrintBelow(CPath const& path) {
        std::vector<CRow> vRow;
        if (path.size() == LEVELS || m_options.bLines || m_bPick) {
            vRow = AddressRows(path);
        } else {
            for (CPlace& place : List(path)) vRow.push_back(PlaceRow(std::move(place), m_options.bKana));
        }
        for (CRow& row : vRow) Print(std::move(row));
        return !vRow.empty();
    }

    // The addresses of a city or town; of a prefecture none, which is picked only when it has no cities.
    std::vector<CRow> AddressRows(CPath const& path) {
        if (path.size() < LEVELS - 1) return {};
        if (m_options.bLines)
            return path.size() == LEVELS ? m_browser->Lines(path[0].nNumber, path[1].nNumber, path[2].nNumber)
                                         : m_browser->Lines(path[0].nNumber, path[1].nNumber);
        std::vector<CRow> vRow = m_browser->Addresses(path.back());
        for (CRow& row : vRow) row = AddressRow(std::move(row), m_options.bKana);
        return vRow;
    }

    // --- a path of texts

    // Nothing when a text of the path means no place or several; that has been remarked then.
    std::optional<CPath> Resolve() {
        CPath path;
        for (std::string const& strText : m_options.vPath) {
            std::vector<CPlace> const vPlace = List(path);
            std::vector<CPlace> const vFound = FindPlaces(vPlace, strText);
            if (vFound.size() != 1) {
                ReportNotFound(strText, vFound.empty() ? WhyNone(path.size(), vPlace, strText)
                                                       : WhichOne(path.size(), vFound));
                return std::nullopt;
            }
            path.push_back(vFound[0]);
        }
        return path;
    }

    static std::string WhichOne(size_t nLevel, std::vector<CPlace> const& vFound) {
        return Grouped(vFound.size()) + ' ' + LEVELS_NAMES[nLevel] +
               " fit, say which by its number: " + NamePlaces(vFound);
    }

    std::string WhyNone(size_t nLevel, std::vector<CPlace> const& vPlace, std::string const& strText) {
        if (vPlace.empty()) return std::string("there are no ") + LEVELS_NAMES[nLevel];
        if (IsNumber(strText))
            return "the numbers of " + std::string(LEVELS_NAMES[nLevel]) + " are " +
                   std::to_string(vPlace.front().nNumber) + " to " + std::to_string(vPlace.back().nNumber);
        std::string const strReason = std::string("no ") + LEVEL_NAMES[nLevel] + " of this name";
        if (nLevel > 0) return strReason + " there";
        std::string strPrefs;
        for (std::string const& strPref : m_browser->PrefecturesOf(strText))
            strPrefs += (strPrefs.empty() ? "" : ", ") + Clean(strPref);
        return strReason + (strPrefs.empty() ? "" : "; it is a place in " + strPrefs);
    }

    // --- a path picked on the screen

    // Nothing when the user has left without a choice. A place that lists nothing ends the path.
    std::optional<CPath> Pick() {
        CPicker picker;
        if (!picker.Start()) throw CFailure(EXIT_SYSTEM, "the terminal cannot be used.");
        CPath path;
        std::vector<size_t> vItem = {0}; // the bar of each level
        size_t const nLevels = m_options.bLines ? LEVELS - 1 : LEVELS;
        while (path.size() < nLevels) {
            std::vector<CPlace> const vPlace = List(path);
            if (vPlace.empty() && !path.empty()) break;
            std::vector<CPickItem> vLine;
            vLine.reserve(vPlace.size());
            for (CPlace const& place : vPlace) vLine.push_back(MakeItem(place));
            EPick const nPick = picker.Pick(Title(path), vLine, vItem.back());
            if (nPick == EPick::Quit || (nPick == EPick::Back && path.empty())) return std::nullopt;
            if (nPick == EPick::Taken) {
                path.push_back(vPlace[vItem.back()]);
                vItem.push_back(0);
            } else {
                path.pop_back();
                vItem.pop_back();
            }
        }
        return path;
    }

    static std::string Title(CPath const& path) {
        if (path.empty()) return "都道府県";
        std::string strTitle;
        for (CPlace const& place : path) strTitle += Clean(place.strName);
        return strTitle;
    }

    CBrowseOptions const m_options;
    bool m_bPick;
    std::optional<CBrowser> m_browser;
};

} // namespace

EExit RunBrowse(CBrowseOptions const& options, CCommonOptions const& common) {
    bool const bTerminal = isatty(STDIN_FILENO) != 0 && common.Form() == EForm::Table && CPicker::IsPossible();
    bool const bPick = options.vPath.empty() && bTerminal;
    if (options.bLines && options.vPath.size() < LEVELS - 1 && !bPick)
        throw CFailure(EXIT_USAGE, "--ui needs a prefecture and a city.");
    CBrowseOptions read = options;
    std::string strPath;
    for (std::string& strText : read.vPath) {
        strText = ReadAddressText(strText);
        strPath += strText;
    }
    return CBrowseCommand(read, common, bPick).Run({strPath});
}

} // namespace qe
