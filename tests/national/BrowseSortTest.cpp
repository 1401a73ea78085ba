// Browsing the whole country in sorted order.
#include "Browsing.h"
#include "dic/AddrKey.h"

#include <random>
#include <set>

using namespace national;

namespace {

// --- sorting -------------------------------------------------------------------------------------------------------

// Sort type 9 for as long as it lives.
class CSorted {
  public:
    CSorted() { Dictionary().SetSortType(SORT_ADDR); }
    ~CSorted() { Dictionary().SetSortType(SORT_DICTIONARY); }
    CSorted(CSorted const&) = delete;
    CSorted& operator=(CSorted const&) = delete;
};

bool AreSame(CRecords const& vAddr, CRecords const& vOther) {
    return std::equal(vAddr.begin(), vAddr.end(), vOther.begin(), vOther.end(), [](auto const& a, auto const& b) {
        return std::memcmp(&a, &b, offsetof(tagADDR, nCityOrder)) == 0 && a.nCityOrder == b.nCityOrder;
    });
}

void Shuffle(CRecords& vAddr, std::mt19937& random) {
    for (size_t n = vAddr.size(); n > 1; --n) std::swap(vAddr[n - 1], vAddr[random() % n]);
}

TEST(BrowseSorted, PutsTheShuffledAddressesOfEveryCityInTheOrderOfTheirComparison) {
    std::printf("seed %u\n", SEED);
    std::mt19937 random(SEED);
    size_t nMoved = 0;
    ForEachCity([&](CFailures& failures, CCity const& city) {
        CRecords vShuffled = ListAddresses(city.nPref, city.nCity);
        Shuffle(vShuffled, random);
        CRecords vSorted = vShuffled, vExpected = vShuffled;
        SortAddrs(vSorted);
        std::stable_sort(vExpected.begin(), vExpected.end());
        nMoved += !AreSame(vShuffled, vExpected);
        if (!AreSame(vSorted, vExpected)) failures.Add(city.strKey);
    });
    PrintFigure("cities whose addresses were not in order", nMoved);
    EXPECT_GT(nMoved, 1000u);
}

// With prefecture and city in the records, and the class of the city in the keys of half of them.
TEST(BrowseSorted, PutsAShuffledSampleOfTheWholeCountryInTheOrderOfItsComparison) {
    std::printf("seed %u\n", SEED);
    std::mt19937 random(SEED);
    CRecords vAll, vShuffled;
    Dictionary().GetPrefFromPart("", vAll);
    for (size_t n = 0; n < vAll.size(); n += 15) {
        vShuffled.push_back(vAll[n]);
        vShuffled.back().nCityOrder = static_cast<int>(random() % 2);
        if (random() % 8 == 0) vShuffled.back().pszPref = nullptr;
    }
    Shuffle(vShuffled, random);
    CRecords vSorted = vShuffled, vExpected = vShuffled;
    SortAddrs(vSorted);
    std::stable_sort(vExpected.begin(), vExpected.end());
    EXPECT_TRUE(AreSame(vSorted, vExpected));
    EXPECT_FALSE(AreSame(vSorted, vShuffled));
    PrintFigure("addresses sorted", vSorted.size());
}

CRecords InOrder(CRecords vAddr) {
    std::stable_sort(vAddr.begin(), vAddr.end());
    return vAddr;
}

TEST(BrowseSorted, ListsTheAddressesBelowEveryCityInTheOrderOfTheirComparison) {
    ForEachCity([](CFailures& failures, CCity const& city) {
        CRecords const vExpected = InOrder(ListAddresses(city.nPref, city.nCity));
        ListCities(city.nPref); // at its place in the table
        CSorted const sorted;
        CRecords vAddr;
        EXPECT_TRUE(Dictionary().GetTownExFromNo(city.nCity, vAddr));
        if (!AreSame(vAddr, vExpected)) failures.Add(city.strKey);
    });
}

TEST(BrowseSorted, ListsCitiesAndTownsInTheOrderOfTheirComparison) {
    std::map<unsigned long, CRecords> mapCities;
    std::map<uint32_t, CRecords> mapTowns; // by the city's node
    ForEachCity([&](CFailures&, CCity const& city) {
        mapCities.emplace(city.nPref, ListCities(city.nPref));
        mapTowns.emplace(city.nNode, ListTowns(city.nPref, city.nCity));
    });
    CSorted const sorted;
    size_t nMoved = 0;
    ForEachCity([&](CFailures& failures, CCity const& city) {
        CRecords const vCity = ListCities(city.nPref);
        if (!AreSame(vCity, InOrder(mapCities[city.nPref]))) failures.Add(city.strKey + ": its prefecture's cities");
        if (city.nCity >= vCity.size()) return;
        // A number is a position in the sorted answer.
        uint32_t const nNode = IndexOf(vCity[city.nCity].pListCity);
        nMoved += nNode != city.nNode;
        if (!AreSame(ListTowns(city.nPref, city.nCity), InOrder(mapTowns[nNode]))) failures.Add(NameOf(nNode));
    });
    PrintFigure("cities that stand elsewhere than in the table", nMoved);
    EXPECT_GT(nMoved, 1000u);
}

} // namespace
