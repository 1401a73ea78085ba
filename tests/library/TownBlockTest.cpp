// PstAdrTown and PstAdrRTown: towns with their codes, byte for byte.
#include "tests/library/BrowseBlockWorld.h"

namespace {

// --- towns with their codes ----------------------------------------------------------------------------------------

class TownBlock : public BrowseBlock {};

TEST_F(TownBlock, OfPstAdrTownIsTheseBytes) {
    Bind(WithTown("TT", "1234567", "123"));
    EXPECT_THAT(AskBelow("P", PstAdrTown),
                ElementsAre(1, 0, 2, 'T', 'T', 3, '1', '2', '3', 7, '1', '2', '3', '4', '5', '6', '7', 0));
}

TEST_F(TownBlock, OfPstAdrRTownIsTheseBytes) {
    Bind(WithTown("TT", "1234567", "123"));
    EXPECT_THAT(AskBelow("P", PstAdrRTown),
                ElementsAre(1, 0, 2, 'T', 'T', 7, '1', '2', '3', '4', '5', '6', '7', 3, '1', '2', '3', 0));
}

TEST_F(TownBlock, OfATownWithoutCodesIsItsNameAndThreeZeros) {
    Bind(WithTown("T", nullptr));
    for (PFNBROWSE pfn : {PstAdrTown, PstAdrRTown})
        EXPECT_THAT(AskBelow("P", pfn), ElementsAre(1, 0, 1, 'T', 0, 0, 0));
}

TEST_F(TownBlock, OfATownWhoseCodesLieOutsideIsItsNameAndThreeZeros) {
    CTestImage image = WithTown("T", "1234567", "123");
    image.vInfo[0].nCode = static_cast<uint32_t>(image.strArea.size());
    Bind(image);
    for (PFNBROWSE pfn : {PstAdrTown, PstAdrRTown})
        EXPECT_THAT(AskBelow("P", pfn), ElementsAre(1, 0, 1, 'T', 0, 0, 0));
}

TEST_F(TownBlock, HasTheOldCodeFirstInPstAdrTown) {
    Bind(CBrowseWorld());
    EXPECT_EQ(AskBelow("東京都", PstAdrTown), OldCodeFirst(CHIYODA_TOWNS));
}

TEST_F(TownBlock, HasTheNewCodeFirstInPstAdrRTown) {
    Bind(CBrowseWorld());
    EXPECT_EQ(AskBelow("東京都", PstAdrRTown), NewCodeFirst(CHIYODA_TOWNS));
}

TEST_F(TownBlock, HasTheSameSizeInBothOrders) {
    Bind(CBrowseWorld());
    EXPECT_EQ(AskBelow("東京都", PstAdrTown).size(), AskBelow("東京都", PstAdrRTown).size());
}

TEST_F(TownBlock, HasTheTownsOfTheCityAtThatPosition) {
    Bind(CBrowseWorld());
    EXPECT_EQ(AskBelow("東京都", PstAdrTown, 1), OldCodeFirst(MINATO_TOWNS));
}

TEST_F(TownBlock, CountsPositionsInTheSortedCities) {
    CTestImage image;
    uint32_t const nPref = image.AddNode(LEVEL_PREF, ADDR_NONE, "P");
    uint32_t const nLast = image.AddNode(LEVEL_CITY, nPref, "Z");
    uint32_t const nFirst = image.AddNode(LEVEL_CITY, nPref, "A");
    image.AddNode(LEVEL_TOWN, nLast, "z");
    image.AddNode(LEVEL_TOWN, nFirst, "a");
    image.Complete();
    Bind(image);
    EXPECT_EQ(AskBelow("P", PstAdrTown, 0, 9), OldCodeFirst({{"a", "", ""}}));
}

TEST_F(TownBlock, IsSortedUnderSortTypeNine) {
    Bind(CBrowseWorld());
    EXPECT_EQ(AskBelow("東京都", PstAdrTown, 0, 9),
              OldCodeFirst({CHIYODA_TOWNS[0], CHIYODA_TOWNS[2], CHIYODA_TOWNS[1]}));
}

TEST_F(TownBlock, BehindAPositionOutsideTheAnswerHasTwoBytes) {
    Bind(CBrowseWorld());
    for (PFNBROWSE pfn : {PstAdrTown, PstAdrRTown})
        for (unsigned short n : CPositions{2, 255, 256, 65535})
            EXPECT_EQ(AskBelow("東京都", pfn, n), NO_ENTRIES) << n;
}

TEST_F(TownBlock, BeforeAnyCitiesHasTwoBytes) {
    Bind(CBrowseWorld());
    Prefectures();
    for (PFNBROWSE pfn : {PstAdrTown, PstAdrRTown}) EXPECT_EQ(Ask(pfn, 0), NO_ENTRIES);
}

TEST_F(TownBlock, OfACityWithItsNamelessTownOnlyHasTwoBytes) {
    Bind(WithTown("", "1234567", "123"));
    for (PFNBROWSE pfn : {PstAdrTown, PstAdrRTown}) EXPECT_EQ(AskBelow("P", pfn), NO_ENTRIES);
}

TEST_F(TownBlock, HoldsTheFirstTownOnlyWhenAskedForAgain) {
    Bind(CBrowseWorld());
    AskBelow("東京都", PstAdrRTown);
    EXPECT_EQ(Ask(PstAdrTown, 1), OldCodeFirst({CHIYODA_TOWNS[0]}));
}

TEST_F(TownBlock, HoldsTheTownOfTheTextOnly) {
    Bind(CBrowseWorld());
    Prefectures("東京都千代田区千代田");
    EXPECT_EQ(Ask(PstAdrRTown, 0), NewCodeFirst({CHIYODA_TOWNS[2]}));
}

TEST_F(TownBlock, HoldsTheTownsBeforeADamagedOne) {
    CBrowseWorld world;
    world.vNode[world.nMinato].nFirstChild = static_cast<uint32_t>(world.vNode.size() - 1); // ２階, and no node
    Bind(world);
    EXPECT_EQ(AskBelow("東京都", PstAdrTown, 1), OldCodeFirst({{"２階", "1050017", "105"}}));
}

TEST_F(TownBlock, WrapsTheLengthsOfLongTextsButHoldsThemWhole) {
    for (size_t nLength : {255u, 256u, 257u, 70000u}) {
        CTownText const town = {std::string(nLength, 'T'), std::string(nLength + 1, '1'),
                                std::string(nLength + 2, '2')};
        Bind(WithTown(town.strTown, town.strCode.c_str(), town.strOldCode));
        EXPECT_EQ(AskBelow("P", PstAdrTown), OldCodeFirst({town})) << nLength;
        EXPECT_EQ(AskBelow("P", PstAdrRTown), NewCodeFirst({town})) << nLength;
    }
}

TEST_F(TownBlock, CountsModulo65536ButHoldsAll) {
    Bind(Crowd(LEVEL_TOWN, 65537, "T"));
    CBlockBytes const vBlock = AskBelow("北海道", PstAdrTown);
    EXPECT_EQ(vBlock, OldCodeFirst(std::vector<CTownText>(65537, {"T", "1000001", "100"})));
    EXPECT_THAT(CBlockBytes(vBlock.begin(), vBlock.begin() + 2), ElementsAre(1, 0));
}

} // namespace
