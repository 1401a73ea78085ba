// PstAdrRTownForUI: the table of addresses as lines, byte for byte.
#include "tests/library/BrowseBlockWorld.h"

namespace {

// --- addresses as lines --------------------------------------------------------------------------------------------

class LineBlock : public BrowseBlock {
  protected:
    // The lines of a city that the text leads to.
    CBlockBytes LinesOf(CTestImage const& image, std::string const& strText = "P") {
        Bind(image);
        return AskBelow(strText, PstAdrRTownForUI);
    }
};

// "P", "C" and nodes below, in a line from the city down.
CTestImage Chain(std::vector<std::pair<uint8_t, std::string>> const& vNode) {
    CTestImage image;
    uint32_t nNode = image.AddNode(LEVEL_CITY, image.AddNode(LEVEL_PREF, ADDR_NONE, "P"), "C");
    for (auto const& node : vNode) nNode = image.AddNode(node.first, nNode, node.second);
    image.AddInfo(nNode, "1234567", "123"); // for the last one
    image.Complete();
    return image;
}

TEST_F(LineBlock, OfATownAndAFloorIsTheseBytes) {
    CTestImage image = Chain({{LEVEL_TOWN, "T"}, {LEVEL_BLOCK, "B"}, {LEVEL_NOTE, "N"}});
    image.AddInfo(2, "7654321", "321");
    image.Complete();
    EXPECT_THAT(LinesOf(image), ElementsAre(2, 0, 0, 0, 12, 0, 0, 0, 68, 0, 0, 0, // n, 0, entries, pool
                                            4, 0, 0, 0, 0, 0, 0, 0,               // code, old code
                                            0, 0, 0, 0, 0, 0, 0, 0,               //
                                            12, 0, 0, 0, 0, 0, 0, 0, 14, 0, 0, 0, // line, 0, organisation
                                            19, 0, 0, 0, 15, 0, 0, 0,             //
                                            0, 0, 0, 0, 0, 0, 0, 0,               //
                                            27, 0, 0, 0, 0, 0, 0, 0, 33, 0, 0, 0, //
                                            '3', '2', '1', 0, '7', '6', '5', '4', '3', '2', '1', 0, 'T', 0, 0, //
                                            '1', '2', '3', 0, '1', '2', '3', '4', '5', '6', '7', 0,            //
                                            'T', ' ', 'B', ' ', 'N', 0, 0,                                     //
                                            0, 0, 0, 0)); // 3 + 1 bytes that are counted and not written
}

TEST_F(LineBlock, HasEveryCurrentAddressBelowTheCity) {
    Bind(CBrowseWorld());
    EXPECT_EQ(AskBelow("東京都", PstAdrRTownForUI, 1), Lines(MINATO_LINES));
}

TEST_F(LineBlock, LeavesOutSupersededTownsAndKeepsNamelessOnes) {
    Bind(CBrowseWorld());
    EXPECT_EQ(AskBelow("東京都", PstAdrRTownForUI),
              Lines({{"1000005", "100", "丸の内"}, {"1000001", "100", "千代田"}, {"1000000", "100", ""}}));
}

TEST_F(LineBlock, BeginsItsPoolWithTheOldCodeOfTheFirst) {
    Bind(CBrowseWorld());
    CBlockBytes const vBlock = AskBelow("東京都", PstAdrRTownForUI);
    EXPECT_EQ(CBlockBytes(&vBlock[12], &vBlock[20]), CBlockBytes({4, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(LineBlock, IsSortedUnderSortTypeNine) {
    Bind(CBrowseWorld());
    EXPECT_EQ(AskBelow("東京都", PstAdrRTownForUI, 0, 9),
              Lines({{"1000000", "100", ""}, {"1000005", "100", "丸の内"}, {"1000001", "100", "千代田"}}));
}

TEST_F(LineBlock, BehindAPositionOutsideTheAnswerHasTwelveBytes) {
    Bind(CBrowseWorld());
    for (unsigned short n : CPositions{2, 255, 65535})
        EXPECT_EQ(AskBelow("東京都", PstAdrRTownForUI, n), NO_LINES) << n;
}

TEST_F(LineBlock, OfACityWithoutCurrentAddressesHasTwelveBytes) {
    EXPECT_EQ(LinesOf(WithTown("T", nullptr)), NO_LINES);
}

TEST_F(LineBlock, IsTheSameWhenAskedForAgain) {
    Bind(CBrowseWorld());
    CBlockBytes const vBlock = AskBelow("東京都", PstAdrRTownForUI);
    EXPECT_EQ(Ask(PstAdrRTownForUI, 0), vBlock);
}

TEST_F(LineBlock, LeavesNoTownsForTheTownListsUntilTheNextPrefectures) {
    Bind(CBrowseWorld());
    AskBelow("東京都", PstAdrRTownForUI);
    EXPECT_EQ(Ask(PstAdrTown, 0), NO_ENTRIES);
    EXPECT_EQ(Ask(PstAdrRTown, 0), NO_ENTRIES);
    EXPECT_EQ(AskBelow("東京都", PstAdrTown), OldCodeFirst(CHIYODA_TOWNS));
}

TEST_F(LineBlock, WithoutAnAddressLeavesTheTownsForTheTownLists) {
    LinesOf(WithTown("T", nullptr));
    EXPECT_EQ(Ask(PstAdrTown, 0), OldCodeFirst({{"T", "", ""}}));
}

TEST_F(LineBlock, JoinsTownBuildingAndFloorByBlanks) {
    EXPECT_EQ(LinesOf(Chain({{LEVEL_TOWN, "T"}, {LEVEL_BLOCK, "B"}, {LEVEL_NOTE, "N"}})),
              Lines({{"1234567", "123", "T", nullptr, "B", "N"}}));
}

TEST_F(LineBlock, DoesNotShowAFloorWithoutItsBuilding) {
    CBlockBytes const vBlock = LinesOf(Chain({{LEVEL_TOWN, "T"}, {LEVEL_NOTE, "NN"}}));
    EXPECT_EQ(vBlock, Lines({{"1234567", "123", "T", nullptr, nullptr, "NN"}}));
    EXPECT_EQ(vBlock.size(), 40u + 7 + 3 + 7 + 1 + 2) << "but its size counts";
}

TEST_F(LineBlock, HasAnEmptyLineForABuildingWithoutATown) {
    CBlockBytes const vBlock = LinesOf(Chain({{LEVEL_BLOCK, "BB"}, {LEVEL_NOTE, "N"}}));
    EXPECT_EQ(vBlock, Lines({{"1234567", "123", nullptr, nullptr, "BB", "N"}}));
    EXPECT_EQ(vBlock.size(), 40u + 7 + 3 + 7 + 2 + 1) << "but their sizes count";
}

TEST_F(LineBlock, HasAnEmptyLineForATownWhoseNameLiesOutside) {
    CTestImage image = Chain({{LEVEL_TOWN, "T"}, {LEVEL_BLOCK, "B"}});
    image.vNode[2].nName = static_cast<uint32_t>(image.strArea.size());
    EXPECT_EQ(LinesOf(image), Lines({{"1234567", "123", nullptr, nullptr, "B"}}));
}

TEST_F(LineBlock, HasABlankBetweenANamelessTownAndItsBuilding) {
    EXPECT_EQ(LinesOf(Chain({{LEVEL_TOWN, ""}, {LEVEL_BLOCK, "B"}})), Lines({{"1234567", "123", "", nullptr, "B"}}));
}

TEST_F(LineBlock, HasBothBlanksForANamelessBuilding) {
    EXPECT_EQ(LinesOf(Chain({{LEVEL_TOWN, "T"}, {LEVEL_BLOCK, ""}, {LEVEL_NOTE, "N"}})),
              Lines({{"1234567", "123", "T", nullptr, "", "N"}}));
}

TEST_F(LineBlock, HasItsBlanksWhenTownBuildingAndFloorAreOneAndTheSameText) {
    CTestImage image = Chain({{LEVEL_TOWN, "T"}, {LEVEL_BLOCK, "T"}, {LEVEL_NOTE, "T"}});
    image.vNode[3].nName = image.vNode[4].nName = image.vNode[2].nName;
    EXPECT_EQ(LinesOf(image), Lines({{"1234567", "123", "T", nullptr, "T", "T"}}));
}

TEST_F(LineBlock, CountsTheAreaAndDoesNotWriteIt) {
    CBlockBytes const vBlock = LinesOf(Chain({{LEVEL_TOWN, "T"}, {LEVEL_AREA, "0123456789"}}));
    EXPECT_EQ(vBlock, Lines({{"1234567", "123", "T", "0123456789"}}));
    EXPECT_EQ(vBlock.size(), 40u + 7 + 3 + 7 + 1 + 10);
}

TEST_F(LineBlock, HoldsAnOrganisationBesideTheLine) {
    EXPECT_EQ(LinesOf(Chain({{LEVEL_TOWN, "T"}, {LEVEL_OFFICE, "OO"}})),
              Lines({{"1234567", "123", "T", nullptr, nullptr, nullptr, "OO"}}));
}

TEST_F(LineBlock, HasEmptyTextsForCodesThatLieOutside) {
    CTestImage image = Chain({{LEVEL_TOWN, "T"}});
    image.vInfo[0].nCode = static_cast<uint32_t>(image.strArea.size());
    EXPECT_EQ(LinesOf(image), Lines({{nullptr, nullptr, "T"}}));
}

TEST_F(LineBlock, HoldsLongTextsWhole) {
    std::string const strTown(70000, 'T'), strBlock(300, 'B'), strOffice(500, 'O');
    CTestImage const image = Chain({{LEVEL_TOWN, strTown}, {LEVEL_BLOCK, strBlock}, {LEVEL_OFFICE, strOffice}});
    EXPECT_EQ(LinesOf(image),
              Lines({{"1234567", "123", strTown.c_str(), nullptr, strBlock.c_str(), nullptr, strOffice.c_str()}}));
}

TEST_F(LineBlock, CountsModulo65536AndTellsTheTrueNumberByItsPool) {
    CBlockBytes const vBlock = LinesOf(Crowd(LEVEL_TOWN, 65537, "T"), "北海道");
    EXPECT_EQ(vBlock, Lines(std::vector<CLineText>(65537, {"1000001", "100", "T"})));
    EXPECT_THAT(CBlockBytes(vBlock.begin(), vBlock.begin() + 2), ElementsAre(1, 0));
}

} // namespace
