// Every row of the organisation table, through the lookup by code.
#include "ExpectedRow.h"
#include "Failures.h"
#include "Lookup.h"
#include "Previous.h"

#include <algorithm>
#include <map>

using namespace national;

namespace {

enum ETown { TOWN_NONE, TOWN_AS_IN_TABLE, TOWN_FOLDED, TOWN_OF_ITS_OWN, TOWN_KINDS };

// The towns in which an organisation may stand: those of the table with its spelling, else those that fold to the
// same, else one of its own.
std::vector<CName> PossibleTowns(COfficeRow const& row, ETown& nKind) {
    std::string const strCity = CityKey(row.strPref, row.strCity);
    std::vector<CName> vTown;
    auto const AddAll = [&](std::string const& strTown) {
        for (std::string const& strKana : ExpectedTowns().ReadingsOf(strCity, strTown))
            vTown.push_back({strTown, strKana});
    };
    nKind = row.strTown.empty() ? TOWN_NONE : TOWN_AS_IN_TABLE;
    AddAll(row.strTown);
    if (row.strTown.empty()) vTown = {CName{}};
    if (!vTown.empty()) return vTown;
    nKind = TOWN_FOLDED;
    for (std::string const& strTown : ExpectedTowns().FoldedAlike(strCity, row.strTown)) AddAll(strTown);
    if (!vTown.empty()) return vTown;
    nKind = TOWN_OF_ITS_OWN;
    return {CName{row.strTown, ""}};
}

CTownRow const& AnyRowOfCity(COfficeRow const& row) {
    static std::map<std::string, CTownRow const*> const mapCity = [] {
        std::map<std::string, CTownRow const*> m;
        for (CTownRow const& town : TownRows()) m.emplace(CityKey(town.strPref, town.strCity), &town);
        return m;
    }();
    return *mapCity.at(CityKey(row.strPref, row.strCity));
}

// All address texts that would be right for the row.
std::vector<std::string> PossibleTexts(COfficeRow const& row, ETown& nKind) {
    CTownRow const& city = AnyRowOfCity(row);
    std::string const strName = CutName(row.strName);
    std::string const strRest = CutName(row.strRest);
    std::vector<CName> const vTown = PossibleTowns(row, nKind);
    std::vector<std::string> vText;
    for (CName const& town : vTown) {
        CAddress a;
        a.strPref = city.strPref, a.strPrefKana = city.strPrefKana;
        a.strCity = city.strCity, a.strCityKana = city.strCityKana;
        a.strTown = town.strName, a.strTownKana = town.strKana;
        if (!strRest.empty()) a.strArea = strRest, a.strAreaKana = "";
        a.strOffice = strName, a.strOfficeKana = row.strKana;
        vText.push_back(AddressText(a));
    }
    return vText;
}

bool IsIn(std::string const& str, std::vector<std::string> const& vText) {
    return std::find(vText.begin(), vText.end(), str) != vText.end();
}

TEST(WholeOrganisationTable, GivesEveryRowBackFromItsCodeWithNameReadingAndAddress) {
    CFailures failures;
    size_t anKind[TOWN_KINDS] = {};
    for (COfficeRow const& row : OfficeRows()) {
        ETown nKind;
        std::vector<std::string> const vPossible = PossibleTexts(row, nKind);
        ++anKind[nKind];
        std::vector<std::string> const vFound = Answers(Dictionary(), row.strCode);
        if (std::none_of(vFound.begin(), vFound.end(), [&](std::string const& str) { return IsIn(str, vPossible); }))
            failures.Add(Describe(row) + "\n  expected: " + vPossible.front() +
                         "\n  found:    " + (vFound.empty() ? "" : vFound.front()));
        if (failures.Enough()) return;
    }
    PrintFigure("organisations looked up", OfficeRows().size());
    PrintFigure("without a town", anKind[TOWN_NONE]);
    PrintFigure("in towns spelled as in the town table", anKind[TOWN_AS_IN_TABLE]);
    PrintFigure("in towns matched after folding", anKind[TOWN_FOLDED]);
    PrintFigure("in towns of their own", anKind[TOWN_OF_ITS_OWN]);
}

TEST(WholeOrganisationTable, GivesAsManyAnswersForACodeAsItHasRowsAndTownsThatAreGone) {
    CFailures failures;
    std::map<std::string_view, size_t> mapRows;
    for (COfficeRow const& row : OfficeRows()) ++mapRows[row.strCode];
    for (CGoneTown const& town : GoneTowns())
        if (OfficeCodes().count(town.strCode) != 0) ++mapRows[town.strCode];
    for (auto const& [strCode, nRows] : mapRows) {
        size_t const nFound = Answers(Dictionary(), std::string(strCode)).size();
        if (nFound != nRows)
            failures.Add(std::string(strCode) + ": " + std::to_string(nFound) + " instead of " +
                         std::to_string(nRows));
        if (failures.Enough()) return;
    }
    PrintFigure("codes of organisations", mapRows.size());
}

TEST(WholeOrganisationTable, SharesNoCodeWithTheTownTable) {
    CFailures failures;
    for (std::string_view strCode : OfficeCodes())
        if (TownCodes().count(strCode) != 0) failures.Add(std::string(strCode));
}

TEST(WholeOrganisationTable, KeepsTheReadingOfATownThatItsFoldedSpellingNames) {
    CFailures failures;
    for (COfficeRow const& row : OfficeRows()) {
        ETown nKind;
        PossibleTowns(row, nKind);
        if (nKind != TOWN_FOLDED) continue;
        for (uint32_t nEntry : Official().EntriesOf(row.strCode))
            if (Official().Address(nEntry).strTownKana == "") failures.Add(Describe(row));
        if (failures.Enough()) return;
    }
}

TEST(WholeOrganisationTable, CutsTheNamesAboveTheLimitAndNoOthers) {
    CFailures failures;
    size_t nCut = 0;
    for (COfficeRow const& row : OfficeRows()) {
        std::string const strCut = CutName(row.strName);
        std::vector<uint32_t> const vEntry = Official().EntriesOf(row.strCode);
        if (std::none_of(vEntry.begin(), vEntry.end(),
                         [&](uint32_t n) { return Official().Address(n).strOffice == strCut; }))
            failures.Add(Describe(row) + "\n  expected: " + strCut);
        if (failures.Enough()) return;
        if (strCut == row.strName) continue;
        ++nCut;
        std::printf("%9zu  %s %s ... %s\n", nCut, row.strCode.c_str(), strCut.c_str(),
                    row.strName.c_str() + strCut.size());
    }
    PrintFigure("names cut", nCut);
}

TEST(WholeOrganisationTable, LeavesTheLastNameOfEveryCodeAsTheComment) {
    CHost const host;
    ASSERT_TRUE(host.IsOpen());
    CFailures failures;
    for (std::string_view strCode : OfficeCodes()) {
        ZipBlock(std::string(strCode));
        char szName[128] = {};
        int nKind = 3;
        short const nResult = PstAdrGetComment(szName, &nKind);
        std::vector<uint32_t> const vEntry = Official().EntriesOf(strCode);
        if (nResult != 0 || vEntry.empty() || Official().Address(vEntry.back()).strOffice != szName)
            failures.Add(std::string(strCode) + " leaves " + szName);
        if (failures.Enough()) return;
    }
}

TEST(WholeTownTable, LeavesNoCommentForAnyCode) {
    CHost const host;
    ASSERT_TRUE(host.IsOpen());
    CFailures failures;
    for (std::string_view strCode : TownCodes()) {
        ZipBlock(std::string(strCode));
        char szName[128] = {};
        int nKind = 3;
        if (PstAdrGetComment(szName, &nKind) != 1) failures.Add(std::string(strCode) + " leaves " + szName);
        if (failures.Enough()) return;
    }
}

} // namespace
