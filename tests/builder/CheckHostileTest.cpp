// Files made to hurt, of half a million nodes: work that grows with their square would outlast the trial by far, and
// the trial ends the process.
#include "builder/ImageWriter.h"
#include "tests/builder/CheckMutants.h"
#include "tests/support/EveryOperation.h"
#include "tests/support/GuardedBytes.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

constexpr uint32_t NODES = 500000;

std::string const TOKYO("東京都\0\0", 11);

void ExpectRefusedInTime(std::function<CImageBytes(uint32_t nNodes)> const& Make) {
    CTrial const trial("a hostile file");
    qe::CCheckReport const report = qe::CheckDictionary(Make(NODES));
    EXPECT_FALSE(report.IsSound());
    EXPECT_TRUE(LiesInItsFile(report)) << "nothing else would have been looked at";
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
    ExpectRefusedInTime([](uint32_t nNodes) {
        std::vector<tagADDRNODE> vNode;
        for (uint32_t n = 0; n < nNodes; ++n)
            vNode.push_back({LEVEL_TOWN, {}, 0, ADDR_NONE, 0, nNodes - n - 1, n + 1});
        return Hostile(vNode, TOKYO);
    });
}

TEST(CheckBudget, NodesInOneCircle) {
    ExpectRefusedInTime([](uint32_t nNodes) {
        std::vector<tagADDRNODE> vNode;
        for (uint32_t n = 0; n < nNodes; ++n)
            vNode.push_back({LEVEL_AREA, {}, 0, ADDR_NONE, (n + 1) % nNodes, 1, (n + 1) % nNodes});
        return Hostile(vNode, TOKYO);
    });
}

TEST(CheckBudget, NodesThatAreTheirOwnParents) {
    ExpectRefusedInTime([](uint32_t nNodes) {
        std::vector<tagADDRNODE> vNode;
        for (uint32_t n = 0; n < nNodes; ++n) vNode.push_back({LEVEL_AREA, {}, 0, ADDR_NONE, n, 1, n});
        return Hostile(vNode, TOKYO);
    });
}

// Each entry is at the end of the chain.
TEST(CheckBudget, ADeepChainOfParents) {
    ExpectRefusedInTime([](uint32_t nNodes) {
        std::vector<tagADDRNODE> vNode;
        for (uint32_t n = 0; n < nNodes; ++n) vNode.push_back({LEVEL_AREA, {}, 0, n, n - 1, 1, n + 1});
        return Hostile(vNode, TOKYO, std::vector<tagADDRINFO>(nNodes, {0, nNodes - 1}));
    });
}

TEST(CheckBudget, OneLongTextForAllNodes) {
    for (char const c : {'x', '\xFF'})
        for (size_t const nBefore : {0u, 1u})
            ExpectRefusedInTime([=](uint32_t nNodes) {
                std::vector<tagADDRNODE> const vNode(nNodes, {LEVEL_AREA, {}, 0, ADDR_NONE, 0, 0, ADDR_NONE});
                return Hostile(vNode,
                               std::string(nBefore, '\0') + std::string(32 * nNodes, c) + std::string(2, '\0'));
            });
}

// Each of the names begins or ends many others.
TEST(CheckBudget, TownsWhoseNamesBeginOneAnother) {
    ExpectRefusedInTime([](uint32_t nNodes) {
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
    ExpectRefusedInTime(CitiesWithTheSameTowns);
}

// Parents and entries, as one number, leave the same rest by a number of our choice: in a hash table of that many
// places they would all fall into one.
TEST(CheckBudget, OrganisationsWithChosenEntries) {
    constexpr uint32_t PARENTS = 25;
    for (uint32_t nPlaces : {172933u, 351061u})
        ExpectRefusedInTime([=](uint32_t nNodes) {
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
    ExpectRefusedInTime([](uint32_t nNodes) {
        std::vector<tagADDRNODE> vNode(nNodes, {LEVEL_OFFICE, {}, 0, 0, 2, 0, ADDR_NONE});
        vNode[0] = {LEVEL_PREF, {}, 0, ADDR_NONE, ADDR_NONE, 1, 1};
        vNode[1] = {LEVEL_CITY, {}, 0, ADDR_NONE, 0, 1, 2};
        vNode[2] = {LEVEL_TOWN, {}, 0, ADDR_NONE, 1, 1, 3};
        return Hostile(vNode, TOKYO, {{0, 3}}, std::vector<uint32_t>(nNodes, 1), std::vector<uint32_t>(nNodes, 3));
    });
}

TEST(CheckBudget, EntriesOfOneLongCode) {
    ExpectRefusedInTime([](uint32_t nNodes) {
        tagADDRNODE const pref = {LEVEL_PREF, {}, 0, ADDR_NONE, ADDR_NONE, 0, ADDR_NONE};
        return Hostile({pref}, std::string(32 * nNodes, '1') + std::string(2, '\0'),
                       std::vector<tagADDRINFO>(nNodes, {0, 0}));
    });
}

// A town refers to entries below it: each of them is that of one more town.
TEST(CheckBudget, TownsThatAllReferToOneEntry) {
    ExpectRefusedInTime([](uint32_t nNodes) {
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
TEST(CheckBudget, OperationsOnCirclesAndChainsOfParentsComeToAnEnd) {
    constexpr uint32_t FEWER = 16000; // each operation goes some way from each of them
    std::string const strArea = TOKYO + std::string("1000000\0"
                                                    "100\0",
                                                    12);
    for (uint32_t nStep : {1u, ADDR_NONE}) { // parents behind their children, and before them
        std::vector<tagADDRNODE> vNode;
        std::vector<uint32_t> vOffice;
        for (uint32_t n = 0; n < FEWER; ++n) {
            vNode.push_back({LEVEL_OFFICE, {}, 0, n, (n + FEWER + nStep) % FEWER, 1, (n + 1) % FEWER});
            vOffice.push_back(n);
        }
        CTrial const trial("operations on a hostile file");
        CGuardedBytes const image(
            Hostile(vNode, strArea, std::vector<tagADDRINFO>(FEWER, {11, FEWER - 1}), {}, vOffice));
        CEveryOperation(image.Data(), CEveryOperation::Bounded, 1).Run();
    }
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
