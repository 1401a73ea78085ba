// Files made to hurt: sixteen times as large, they take about sixteen times as long to refuse, not 256 times.
#include "builder/ImageWriter.h"
#include "tests/builder/CheckMutants.h"
#include "tests/support/EveryOperation.h"
#include "tests/support/GuardedBytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <functional>
#include <iostream>

namespace {

constexpr uint32_t FEW = 8000, TIMES = 16; // nodes: at last as many as the whole country has
constexpr double MOST_TIMES = 80;          // tables that leave the processor's caches are slower by node, too

std::string const TOKYO("東京都\0\0", 11);

// Of the processor, not of the clock: other programs do not count. The best of some: neither do their caches.
double SecondsToRefuse(CImageBytes const& vByte, int nRuns) {
    double nBest = 1e9;
    for (int n = 0; n < nRuns; ++n) {
        std::clock_t const nStart = std::clock();
        qe::CCheckReport const report = qe::CheckDictionary(vByte);
        nBest = std::min(nBest, static_cast<double>(std::clock() - nStart) / CLOCKS_PER_SEC);
        EXPECT_FALSE(report.IsSound());
        EXPECT_TRUE(LiesInItsFile(report)) << "nothing else would have been looked at";
    }
    return nBest;
}

void ExpectWorkByItsSize(std::function<CImageBytes(uint32_t nNodes)> const& Make) {
    CTrial const trial("a hostile file");
    double const nFew = SecondsToRefuse(Make(FEW), 5), nMany = SecondsToRefuse(Make(FEW * TIMES), 2);
    EXPECT_LT(nMany, MOST_TIMES * std::max(nFew, 0.001)) << FEW << " nodes: " << nFew << " s";
    std::cout << FEW << " nodes: " << nFew << " s, " << nMany / nFew << " times that for " << TIMES
              << " times as many\n";
}

void ExpectOperationsByItsSize(std::function<CImageBytes(uint32_t nNodes)> const& Make) {
    CTrial const trial("operations on a hostile file");
    auto const Seconds = [&](uint32_t nNodes) {
        CImageBytes const vByte = Make(nNodes);
        CGuardedBytes const image(vByte);
        CEveryOperation run(image.Data(), CEveryOperation::Bounded, 1);
        std::clock_t const nStart = std::clock();
        run.Run();
        return static_cast<double>(std::clock() - nStart) / CLOCKS_PER_SEC;
    };
    double const nFew = Seconds(FEW / 8), nMany = Seconds(FEW / 8 * TIMES);
    EXPECT_LT(nMany, MOST_TIMES * std::max(nFew, 0.001)) << FEW / 8 << " nodes: " << nFew << " s";
    std::cout << FEW / 8 << " nodes: " << nFew << " s, " << nMany / nFew << " times that for " << TIMES
              << " times as many\n";
}

// Every city has all towns.
CImageBytes CitiesWithTheSameTowns(uint32_t nNodes) {
    uint32_t const nCities = nNodes / 2;
    std::vector<tagADDRNODE> vNode(nNodes, {LEVEL_TOWN, {}, 0, ADDR_NONE, 1, 0, ADDR_NONE});
    vNode[0] = {LEVEL_PREF, {}, 0, ADDR_NONE, ADDR_NONE, nCities, 1};
    std::vector<uint32_t> vCity;
    for (uint32_t n = 1; n <= nCities; ++n) {
        vNode[n] = {LEVEL_CITY, {}, 0, ADDR_NONE, 0, nNodes - nCities - 1, nCities + 1};
        vCity.push_back(n);
    }
    CImageBytes vByte = Hostile(vNode, TOKYO, {}, vCity);
    SetWordAt(vByte, 4 * HDR_PREF_COUNT, 1);
    SetWordAt(vByte, 4 * HDR_FIRST_CITY, 1);
    SetWordAt(vByte, 4 * HDR_TOWN_COUNT, nNodes - nCities - 1);
    SetWordAt(vByte, 4 * HDR_FIRST_TOWN, nCities + 1);
    qe::RepairChecksum(vByte);
    return vByte;
}

} // namespace

TEST(CheckBudget, AllNodesNamingAllBehindThemAsChildren) {
    ExpectWorkByItsSize([](uint32_t nNodes) {
        std::vector<tagADDRNODE> vNode;
        for (uint32_t n = 0; n < nNodes; ++n)
            vNode.push_back({LEVEL_TOWN, {}, 0, ADDR_NONE, 0, nNodes - n - 1, n + 1});
        return Hostile(vNode, TOKYO);
    });
}

TEST(CheckBudget, NodesInOneCircle) {
    ExpectWorkByItsSize([](uint32_t nNodes) {
        std::vector<tagADDRNODE> vNode;
        for (uint32_t n = 0; n < nNodes; ++n)
            vNode.push_back({LEVEL_AREA, {}, 0, ADDR_NONE, (n + 1) % nNodes, 1, (n + 1) % nNodes});
        return Hostile(vNode, TOKYO);
    });
}

TEST(CheckBudget, NodesThatAreTheirOwnParents) {
    ExpectWorkByItsSize([](uint32_t nNodes) {
        std::vector<tagADDRNODE> vNode;
        for (uint32_t n = 0; n < nNodes; ++n) vNode.push_back({LEVEL_AREA, {}, 0, ADDR_NONE, n, 1, n});
        return Hostile(vNode, TOKYO);
    });
}

// Each entry is at the end of the chain.
TEST(CheckBudget, ADeepChainOfParents) {
    ExpectWorkByItsSize([](uint32_t nNodes) {
        std::vector<tagADDRNODE> vNode;
        for (uint32_t n = 0; n < nNodes; ++n) vNode.push_back({LEVEL_AREA, {}, 0, n, n - 1, 1, n + 1});
        return Hostile(vNode, TOKYO, std::vector<tagADDRINFO>(nNodes, {0, nNodes - 1}));
    });
}

TEST(CheckBudget, OneLongTextForAllNodes) {
    for (char const c : {'x', '\xFF'})
        for (size_t const nBefore : {0u, 1u})
            ExpectWorkByItsSize([=](uint32_t nNodes) {
                std::vector<tagADDRNODE> const vNode(nNodes, {LEVEL_AREA, {}, 0, ADDR_NONE, 0, 0, ADDR_NONE});
                return Hostile(vNode,
                               std::string(nBefore, '\0') + std::string(32 * nNodes, c) + std::string(2, '\0'));
            });
}

// Each of the names begins or ends many others.
TEST(CheckBudget, TownsWhoseNamesBeginOneAnother) {
    ExpectWorkByItsSize([](uint32_t nNodes) {
        std::vector<tagADDRNODE> vNode(nNodes, {LEVEL_TOWN, {}, 0, ADDR_NONE, 1, 0, ADDR_NONE});
        std::string const strRun(127, 'x');
        std::string strArea;
        for (uint32_t n = 2; n < nNodes; ++n) {
            vNode[n].nName = static_cast<uint32_t>(strArea.size() + n % 127);
            if (n % 127 == 126) strArea += strRun + std::string(2, '\0');
        }
        strArea += strRun + std::string(2, '\0');
        vNode[0] = {LEVEL_PREF, {}, 0, ADDR_NONE, ADDR_NONE, 1, 1};
        vNode[1] = {LEVEL_CITY, {}, 0, ADDR_NONE, 0, nNodes - 2, 2};
        return Hostile(vNode, strArea);
    });
}

TEST(CheckBudget, CitiesWithTheSameTowns) {
    ExpectWorkByItsSize(CitiesWithTheSameTowns);
}

// Parents and entries, as one number, leave the same rest by a number of our choice: in a hash table of that many
// places they would all fall into one.
TEST(CheckBudget, OrganisationsWithChosenEntries) {
    constexpr uint32_t PARENTS = 25;
    for (uint32_t nPlaces : {172933u, 351061u})
        ExpectWorkByItsSize([=](uint32_t nNodes) {
            uint32_t const nEach = nNodes / PARENTS - 1;
            std::vector<tagADDRNODE> vNode;
            for (uint32_t n = 0; n < PARENTS; ++n)
                vNode.push_back({LEVEL_PREF, {}, 0, ADDR_NONE, ADDR_NONE, nEach, PARENTS + n * nEach});
            for (uint32_t n = 0; n < PARENTS; ++n)
                for (uint32_t nOffice = 0; nOffice < nEach; ++nOffice) {
                    uint32_t const nRest = static_cast<uint32_t>(nPlaces - (uint64_t{n} << 32) % nPlaces);
                    vNode.push_back({LEVEL_OFFICE, {}, 0, nRest + nOffice * nPlaces, n, 0, ADDR_NONE});
                }
            return Hostile(vNode, TOKYO);
        });
}

// Aliases of one entry, each in two indexes' first place.
TEST(CheckBudget, AliasesOfOneOrganisation) {
    ExpectWorkByItsSize([](uint32_t nNodes) {
        std::vector<tagADDRNODE> vNode(nNodes, {LEVEL_OFFICE, {}, 0, 0, 2, 0, ADDR_NONE});
        vNode[0] = {LEVEL_PREF, {}, 0, ADDR_NONE, ADDR_NONE, 1, 1};
        vNode[1] = {LEVEL_CITY, {}, 0, ADDR_NONE, 0, 1, 2};
        vNode[2] = {LEVEL_TOWN, {}, 0, ADDR_NONE, 1, 1, 3};
        return Hostile(vNode, TOKYO, {{0, 3}}, std::vector<uint32_t>(nNodes, 1), std::vector<uint32_t>(nNodes, 3));
    });
}

TEST(CheckBudget, EntriesOfOneLongCode) {
    ExpectWorkByItsSize([](uint32_t nNodes) {
        tagADDRNODE const pref = {LEVEL_PREF, {}, 0, ADDR_NONE, ADDR_NONE, 0, ADDR_NONE};
        return Hostile({pref}, std::string(32 * nNodes, '1') + std::string(2, '\0'),
                       std::vector<tagADDRINFO>(nNodes, {0, 0}));
    });
}

// A town refers to entries below it: each of them is that of one more town.
TEST(CheckBudget, TownsThatAllReferToOneEntry) {
    ExpectWorkByItsSize([](uint32_t nNodes) {
        std::vector<tagADDRNODE> vNode(nNodes, {LEVEL_TOWN, {}, 0, 0, 1, nNodes - 1, 1});
        vNode[0] = {LEVEL_PREF, {}, 0, ADDR_NONE, ADDR_NONE, 1, 1};
        vNode[1] = {LEVEL_CITY, {}, 0, 0, 0, nNodes - 2, 2};
        vNode[nNodes - 1] = {LEVEL_AREA, {}, 0, 0, 2, 0, ADDR_NONE};
        return Hostile(vNode,
                       TOKYO + std::string("1000000\0"
                                           "100\0",
                                           12),
                       {{11, nNodes - 1}});
    });
}

// --- the library on such files -------------------------------------------------------------------------------------

// No operation promises anything on a file that is refused; but where a bound costs nothing, it has one.
TEST(CheckBudget, OperationsOnCirclesAndChainsOfParents) {
    std::string const strArea = TOKYO + std::string("1000000\0"
                                                    "100\0",
                                                    12);
    for (uint32_t nStep : {1u, ADDR_NONE}) // parents behind their children, and before them
        ExpectOperationsByItsSize([=](uint32_t nNodes) {
            std::vector<tagADDRNODE> vNode;
            std::vector<uint32_t> vOffice;
            for (uint32_t n = 0; n < nNodes; ++n) {
                vNode.push_back({LEVEL_OFFICE, {}, 0, n, (n + nNodes + nStep) % nNodes, 1, (n + 1) % nNodes});
                vOffice.push_back(n);
            }
            return Hostile(vNode, strArea, std::vector<tagADDRINFO>(nNodes, {11, nNodes - 1}), {}, vOffice);
        });
}

// A reading may be as long as it likes: no operation measures it when the string area ends in NUL.
TEST(CheckBudget, AReadingOfMegabytesIsHarmless) {
    CImageBytes vByte = SmallWorld();
    constexpr uint32_t MORE = 4u << 20;
    uint32_t const nOld = static_cast<uint32_t>(vByte.size());
    uint32_t const nEnd = WordAt(vByte, 4 * HDR_STRING_AREA) + WordAt(vByte, 4 * HDR_STRING_SIZE);
    ASSERT_EQ(nEnd, nOld) << "the string area is the last table";
    // The displayed name's reading stands before the aliases' texts; the last text of the area is an alias's reading.
    vByte.insert(vByte.end() - 1, MORE, 'x');
    SetWordAt(vByte, 4 * HDR_STRING_SIZE, WordAt(vByte, 4 * HDR_STRING_SIZE) + MORE);
    for (tagHEADERWORD nWord : {HDR_FILE_SIZE, HDR_FIFTH_TABLE, HDR_SIXTH_TABLE})
        SetWordAt(vByte, 4 * nWord, nOld + MORE);
    qe::RepairChecksum(vByte);
    CMutants mutants;
    mutants.Try(vByte, "a reading of 4 MB");
    EXPECT_EQ(mutants.Accepted(), 1u) << testing::PrintToString(LinesOf(vByte));
}
