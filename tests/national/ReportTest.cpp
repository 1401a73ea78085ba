// What the compiler's own report promises: how many addresses of the official tables are found as a user expects.
#include "Failures.h"
#include "Lookup.h"
#include "Previous.h"
#include "ReportFigures.h"

using namespace national;

namespace {

TEST(Report, FindsEveryTownOfTheTable) {
    size_t const nMost = TownRows().size() * 98 / 100; // rows without a town's name are left out
    ExpectAllRight("town_levels", nMost);
    ExpectAllRight("town_code", nMost);
    ExpectAllRight("town_without_prefecture", nMost);
    ExpectAllRight("town_with_house_number", nMost);
}

TEST(Report, FindsEveryCurrentAddressOfACityByItsName) {
    ExpectAllRight("city_parts", Today().vCity.size());
}

// Which organisation is meant, a name and a town do not always say: that part of the misses stays.
TEST(Report, FindsOrganisationsAtTheirAddressesButForFourKnownCauses) {
    CFigure figure = FigureOf("office_at_its_address");
    EXPECT_EQ(figure.nAsked, OfficeRows().size());
    std::pair<char const*, size_t> const aLimit[] = {{"another one of that name stands in the town", 146},
                                                     {"the address names another town", 64},
                                                     {"the name is cut in the dictionary", 17},
                                                     {"the organisation has no town", 117}};
    size_t nMisses = 0;
    for (auto const& [pszCause, nLimit] : aLimit) {
        PrintFigure(pszCause, figure.mapMisses[pszCause]);
        EXPECT_LE(figure.mapMisses[pszCause], nLimit) << pszCause;
        nMisses += figure.mapMisses[pszCause];
    }
    EXPECT_EQ(figure.mapMisses.size(), std::size(aLimit)) << "another cause";
    EXPECT_EQ(figure.nRight + nMisses, figure.nAsked);
}

} // namespace
