// The figures of the edition of 2026-05. They guard the tests themselves: a reader of the tables that lost rows would
// lose them on both sides of every comparison. Another edition has other figures; they are printed then.
#include "ExpectedRow.h"
#include "Failures.h"
#include "Lookup.h"

#include <functional>
#include <map>
#include <set>

using namespace national;

namespace {

constexpr uint32_t KNOWN_EDITION = 20260500;
constexpr unsigned EDITION_WORD = 3;

void ExpectFigure(char const* pszWhat, size_t nFound, size_t nKnown) {
    PrintFigure(pszWhat, nFound);
    if (Official().Word(EDITION_WORD) == KNOWN_EDITION)
        EXPECT_EQ(nFound, nKnown) << pszWhat;
    else
        std::printf("           (not compared: another edition)\n");
}

size_t CountRows(std::function<bool(CTownRow const&)> const& IsCounted) {
    size_t nRows = 0;
    for (CTownRow const& row : TownRows()) nRows += IsCounted(row);
    return nRows;
}

bool Contains(std::string_view str, std::string_view strPart) {
    return str.find(strPart) != std::string_view::npos;
}

TEST(Edition, HasItsKnownNumbersOfRowsAndCodes) {
    std::set<std::string_view> vOldCode;
    std::set<std::string> vKeys;
    for (CTownRow const& row : TownRows()) {
        vKeys.insert(CityKey(row.strPref, row.strCity));
        vOldCode.insert(row.strOldCode);
    }
    for (COfficeRow const& row : OfficeRows()) vOldCode.insert(row.strOldCode);
    ExpectFigure("rows of towns", TownRows().size(), 124511);
    ExpectFigure("codes of towns", TownCodes().size(), 120680);
    ExpectFigure("cities", vKeys.size(), 1892);
    ExpectFigure("rows of organisations", OfficeRows().size(), 22416);
    ExpectFigure("codes of organisations", OfficeCodes().size(), 22192);
    ExpectFigure("old codes", vOldCode.size(), 5407);
}

TEST(Edition, HasItsKnownKindsOfTownRows) {
    ExpectFigure("rows of 以下に掲載がない場合",
                 CountRows([](CTownRow const& row) { return row.strTown == "以下に掲載がない場合"; }), 1870);
    ExpectFigure("rows of 一円", CountRows([](CTownRow const& row) { return EndsWith(row.strTown, "一円"); }), 23);
    ExpectFigure("rows of の次に", CountRows([](CTownRow const& row) { return Contains(row.strTown, "の次に"); }),
                 21);
    ExpectFigure("rows whose old code is no prefix of their code",
                 CountRows([](CTownRow const& row) { return !BeginsWith(row.strCode, row.strOldCode); }), 3775);
}

TEST(Edition, HasItsKnownBuildings) {
    std::set<std::string> vBuilding;
    size_t nFloors = 0;
    for (size_t n = 0; n < TownRows().size(); ++n) {
        CPlace const& place = ExpectedTowns().PlacesOf(n).front();
        if (!place.building) continue;
        ++nFloors;
        vBuilding.insert(CityKey(TownRows()[n].strPref, TownRows()[n].strCity) + place.town.strName + "|" +
                         place.building->strName);
    }
    ExpectFigure("rows of floors", nFloors, 3437);
    ExpectFigure("buildings", vBuilding.size(), 86);
}

TEST(Edition, HasItsKnownNamesAboveTheLimit) {
    size_t nCut = 0;
    for (COfficeRow const& row : OfficeRows()) nCut += row.strName.size() > NAME_LIMIT;
    ExpectFigure("names of organisations above 127 bytes", nCut, 28);
}

} // namespace
