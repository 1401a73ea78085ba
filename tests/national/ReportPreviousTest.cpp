// What the compiler's own report promises for the towns of earlier editions; left out where there are none.
#include "Previous.h"
#include "ReportFigures.h"

using namespace national;

namespace {

TEST(Report, RenewsTheTownsThatAreGoneOfEveryEarlierEdition) {
    for (size_t n = 0; n + 1 < Editions().size(); ++n) {
        CEdition const& edition = Editions()[n];
        size_t nGone = 0, nOfGoneCities = 0;
        for (CTownOfEdition const& town : edition.vTown) {
            if (Today().Has(town.key) || std::get<2>(town.key).empty()) continue;
            ++nGone;
            nOfGoneCities += !Today().HasCityOf(town.key);
        }
        CFigure const towns = FigureOf("gone_towns_" + edition.strName);
        EXPECT_GE(towns.nAsked, nGone);
        EXPECT_GE(100 * towns.nRight, 95 * towns.nAsked);
        ExpectAllRight("gone_cities_towns_" + edition.strName, nOfGoneCities);
    }
}

} // namespace
