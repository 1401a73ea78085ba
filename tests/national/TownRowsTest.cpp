// Every row of the town table, through the lookup by code.
#include "ExpectedRow.h"
#include "Failures.h"
#include "Lookup.h"
#include "Previous.h"

#include <algorithm>
#include <map>

using namespace national;

namespace {

// Expected addresses by code, sorted: those of its rows, and the towns that are gone whose code it was.
std::map<std::string_view, std::vector<std::string>> ExpectedByCode() {
    std::map<std::string_view, std::vector<std::string>> mapCode;
    for (size_t n = 0; n < TownRows().size(); ++n)
        for (CPlace const& place : ExpectedTowns().PlacesOf(n))
            mapCode[TownRows()[n].strCode].push_back(ExpectedText(TownRows()[n], place));
    for (CGoneTown const& town : GoneTowns())
        if (OfficeCodes().count(town.strCode) == 0) mapCode[town.strCode].push_back(ExpectedText(town));
    for (auto& [strCode, vText] : mapCode) std::sort(vText.begin(), vText.end());
    return mapCode;
}

std::vector<std::string> SortedAnswers(std::string_view strCode) {
    std::vector<std::string> vText = Answers(Dictionary(), std::string(strCode));
    std::sort(vText.begin(), vText.end());
    return vText;
}

TEST(WholeTownTable, GivesEveryRowBackFromItsCodeWithAllTextsAndReadings) {
    CFailures failures;
    size_t nPlaces = 0;
    for (size_t n = 0; n < TownRows().size() && !failures.Enough(); ++n) {
        CTownRow const& row = TownRows()[n];
        std::vector<std::string> const vFound = SortedAnswers(row.strCode);
        for (CPlace const& place : ExpectedTowns().PlacesOf(n)) {
            ++nPlaces;
            std::string const strExpected = ExpectedText(row, place);
            if (!std::binary_search(vFound.begin(), vFound.end(), strExpected))
                failures.Add(Describe(row) + "\n  is not among the answers: " + strExpected + "\n  the first of " +
                             std::to_string(vFound.size()) + " is: " + (vFound.empty() ? "" : vFound.front()));
        }
    }
    PrintFigure("rows of the town table looked up", TownRows().size());
    PrintFigure("places that they name", nPlaces);
}

TEST(WholeTownTable, GivesNoAddressThatNoRowExplains) {
    CFailures failures;
    size_t nAnswers = 0;
    auto const mapExpected = ExpectedByCode();
    for (auto const& [strCode, vExpected] : mapExpected) {
        std::vector<std::string> const vFound = SortedAnswers(strCode);
        nAnswers += vFound.size();
        std::vector<std::string> vExtra;
        std::set_difference(vFound.begin(), vFound.end(), vExpected.begin(), vExpected.end(),
                            std::back_inserter(vExtra));
        for (std::string const& strExtra : vExtra) failures.Add(std::string(strCode) + " gives " + strExtra);
        if (failures.Enough()) return;
    }
    PrintFigure("codes of towns looked up", mapExpected.size());
    PrintFigure("addresses that they give", nAnswers);
}

TEST(WholeTownTable, GivesEveryAddressOnceForEveryRowThatNamesIt) {
    CFailures failures;
    size_t nRepeated = 0;
    for (auto const& [strCode, vExpected] : ExpectedByCode()) {
        std::vector<std::string> const vFound = SortedAnswers(strCode);
        for (auto p = vExpected.begin(); p != vExpected.end(); p = std::upper_bound(p, vExpected.end(), *p)) {
            auto const nExpected = std::count(p, vExpected.end(), *p);
            auto const nFound = std::count(vFound.begin(), vFound.end(), *p);
            nRepeated += nExpected > 1;
            if (nExpected != nFound)
                failures.Add(std::string(strCode) + " gives " + std::to_string(nFound) + " times instead of " +
                             std::to_string(nExpected) + ": " + *p);
        }
        if (failures.Enough()) return;
    }
    PrintFigure("addresses that a code gives more than once, since several rows name them", nRepeated);
}

} // namespace
