// GetAtTown: what stands at a position of the towns, and which levels of the address its texts come from.
#include "tests/library/TownAnswer.h"

#include <gmock/gmock.h>

#include <climits>

namespace {

using testing::ElementsAre;

// --- positions -----------------------------------------------------------------------------------------------------

TEST(TownPositions, AreThoseOfTheTownList) {
    CListsDic dic((CListsWorld()));
    ASSERT_EQ(Count(dic, TOKYO, 0, 0), Found(3, 3, 2));
    EXPECT_EQ(TextsAt(dic, 0), "丸の内//0");
    EXPECT_EQ(CodesAt(dic, 0), "1000005/100");
    EXPECT_EQ(TextsAt(dic, 1), "千代田//0");
    EXPECT_EQ(CodesAt(dic, 1), "1000001/100");
    ASSERT_EQ(Count(dic, TOKYO, MINATO, 0), Found(3, 3, 5));
    EXPECT_EQ(TextsAt(dic, 0), "旧芝/旧商会/3");
    EXPECT_EQ(TextsAt(dic, 1), "芝/１丁目/1") << "of 海ビル below １丁目: the upper one replaces the lower";
    EXPECT_EQ(TextsAt(dic, 2), "芝/１丁目/1") << "３階";
    EXPECT_EQ(TextsAt(dic, 3), "芝/港商会/3");
    EXPECT_EQ(TextsAt(dic, 4), "芝/１丁目/1");
    EXPECT_EQ(CodesAt(dic, 4), "1050015/105");
}

TEST(TownPositions, AfterAnotherPrefectureAreThoseOfItsFirstCity) {
    CListsDic dic((CListsWorld()));
    Count(dic, HOKKAIDO, 0, 0);
    ASSERT_EQ(Count(dic, TOKYO, MINATO, 0), Found(3, 3, 2));
    EXPECT_EQ(TextsAt(dic, 1), "千代田//0");
}

TEST(TownPositions, OfATreeAreThoseOfTheSelectedCity) {
    CListsWorld const world;
    CListsDic dic(world);
    dic.Towns() = {dic.Entry(world.nHanazono), dic.Entry(world.nHanazono)};
    dic.Tree() = {dic.Entry(world.nHokkaido, {dic.Entry(world.nSapporo, {dic.Entry(world.nKita)})}),
                  dic.Entry(world.nTokyo,
                            {dic.Entry(world.nFuchu, {dic.Entry(world.nMiyanishi)}),
                             dic.Entry(world.nMinato, {dic.Entry(world.nMinatoShokai), dic.Entry(world.nMinato)})})};
    EXPECT_EQ(TextsAt(dic, 0), "北一条//0");
    Count(dic, 1, 0, 0);
    EXPECT_EQ(TextsAt(dic, 0), "宮西町//0");
    Count(dic, 1, 1, 0);
    EXPECT_EQ(TextsAt(dic, 0), "芝/港商会/3");
    EXPECT_EQ(CodesAt(dic, 0), "1058444/105");
    EXPECT_EQ(TextsAt(dic, 1), "港区//0") << "a city among the towns";
    EXPECT_EQ(CodesAt(dic, 1), "1050000/105");
}

TEST(TownPositions, BelowZeroLeaveAllFieldsAlone) {
    CListsWorld const world;
    CListsDic dic(world);
    CAddrDic unbound;
    CFields fields;
    for (int nIndex : {-1, -32768, INT_MIN}) {
        for (bool bTree : {false, true}) {
            if (!bTree) dic.Towns() = {dic.Entry(world.nShiba)};
            if (bTree) dic.Tree() = {dic.Entry(0, {dic.Entry(0, {dic.Entry(world.nShiba)})})};
            EXPECT_FALSE(fields.Ask(dic, nIndex));
            EXPECT_TRUE(fields.AreUntouched()) << nIndex;
            dic.Tree().clear();
        }
        EXPECT_FALSE(fields.Ask(unbound, nIndex));
        EXPECT_TRUE(fields.AreUntouched()) << nIndex;
    }
}

TEST(TownPositions, BehindTheListAreNotFoundAndEmpty) {
    CListsDic dic((CListsWorld()));
    ExpectNothingAt(dic, 0);
    ASSERT_EQ(Count(dic, TOKYO, 0, 0), Found(3, 3, 2));
    for (int nIndex : {2, 3, 32767, 65536, 65537, INT_MAX}) ExpectNothingAt(dic, nIndex);
    CAddrDic unbound;
    ExpectNothingAt(unbound, 0);
}

TEST(TownPositions, BehindACityOfATreeAreNotFoundAndEmpty) {
    CListsWorld const world;
    CListsDic dic(world);
    dic.Towns() = CEntryList(9, dic.Entry(world.nShiba));
    dic.Tree() = {
        dic.Entry(world.nTokyo, {dic.Entry(world.nMinato, {dic.Entry(world.nShiba)}), dic.Entry(world.nFuchu)})};
    for (int nIndex : {1, 2, 65536, INT_MAX}) ExpectNothingAt(dic, nIndex);
    dic.Select(0, 1, 0);
    ExpectNothingAt(dic, 0);
}

TEST(TownPositions, OfASelectionOutsideTheTreeAreNotFoundAndEmpty) {
    CListsWorld const world;
    CListsDic dic(world);
    dic.Tree() = {dic.Entry(world.nTokyo, {dic.Entry(world.nMinato, {dic.Entry(world.nShiba)})})};
    for (int n : {1, 2, 65536, INT_MAX, -1, INT_MIN}) {
        dic.Select(n, 0, 0);
        ExpectNothingAt(dic, 0);
        dic.Select(0, n, 0);
        ExpectNothingAt(dic, 0);
        dic.Select(n, n, n);
        ExpectNothingAt(dic, 0);
        dic.Select(0, 0, n);
        EXPECT_EQ(TextsAt(dic, 0), "芝//0") << "the selected town is not looked at";
    }
    Count(dic, 0, 5, 0);
    ExpectNothingAt(dic, 0);
}

TEST(TownPositions, OfTheListDoNotDependOnTheSelection) {
    CListsWorld const world;
    CListsDic dic(world);
    dic.Towns() = {dic.Entry(world.nShiba)};
    for (int n : {7, INT_MAX, -1, INT_MIN}) {
        dic.Select(n, n, n);
        EXPECT_EQ(TextsAt(dic, 0), "芝//0");
    }
}

TEST(TownPositions, OfEntriesWithoutANodeAreEmpty) {
    CListsWorld const world;
    CListsDic dic(world);
    CFields fields;
    dic.Towns().resize(1);
    fields.Ask(dic, 0);
    EXPECT_EQ(fields.Texts() + fields.Codes(), "//0/");
    dic.Tree() = {dic.Entry(0, {dic.Entry(0, {Entry(nullptr)})})};
    fields.Ask(dic, 0);
    EXPECT_EQ(fields.Texts() + fields.Codes(), "//0/");
    dic.Tree()[0].pNode = dic.Tree()[0].vChild[0].pNode = nullptr;
    dic.Tree()[0].vChild[0].vChild[0] = dic.Entry(world.nShiba);
    EXPECT_EQ(TextsAt(dic, 0), "芝//0") << "the nodes above are not looked at";
}

TEST(TownPositions, GoUpToTheEndOfALongList) {
    CListsWorld const world;
    CListsDic dic(world);
    CEntryList vTown(65537);
    vTown.back() = dic.Entry(world.nShiba);
    dic.Towns() = vTown;
    EXPECT_EQ(TextsAt(dic, 65536), "芝//0");
    dic.Tree() = {dic.Entry(0, {dic.Entry(0, std::move(vTown))})};
    EXPECT_EQ(TextsAt(dic, 65536), "芝//0");
    ExpectNothingAt(dic, 65537);
}

TEST(TownPositions, WithoutOneOfTheFieldsAreNotFoundAndLeaveTheOthersAlone) {
    CListsWorld const world;
    CListsDic dic(world);
    dic.Towns() = {dic.Entry(world.nMinatoShokai)};
    CFields const fields;
    for (int nNull = 0; nNull < 5; ++nNull) {
        auto const P = [&](int n, CTextField const& field) { return n == nNull ? nullptr : field.Data(); };
        EXPECT_FALSE(dic.GetAtTown(0, P(0, fields.town), 60, P(1, fields.detail), 128, P(2, fields.code5), 5,
                                   P(3, fields.code7), 7, P(4, fields.kind)));
        EXPECT_TRUE(fields.AreUntouched()) << nNull;
    }
}

TEST(TownPositions, LeaveTheListsAndTheSelectionAlone) {
    CListsDic dic((CListsWorld()));
    Count(dic, TOKYO, 0, 0);
    Count(dic, TOKYO, 0, 1);
    CFields fields;
    for (int nIndex : {-1, 0, 1, 2}) fields.Ask(dic, nIndex);
    EXPECT_THAT(dic.Selection(), ElementsAre(TOKYO, 0, 1));
    EXPECT_THAT(Names(dic.Prefs()), ElementsAre("00北海道", "12東京都", "33広島県"));
    EXPECT_THAT(Names(dic.Cities()), ElementsAre("h千代田区", "h府中市", "h港区"));
    EXPECT_THAT(Names(dic.Towns()), ElementsAre("丸の内", "千代田"));
}

// --- the levels of an address --------------------------------------------------------------------------------------

TEST(TownTexts, OfEachLevelBelowItsTown) {
    EXPECT_EQ(Told({{2, "T"}}), "T//0");
    EXPECT_EQ(Told({{2, "T"}, {3, "A"}}), "T/A/1");
    EXPECT_EQ(Told({{2, "T"}, {4, "B"}}), "T/B/4");
    EXPECT_EQ(Told({{2, "T"}, {6, "N"}}), "T/N/0") << "a note has no kind of its own";
    EXPECT_EQ(Told({{2, "T"}, {7, "O"}}), "T/O/3");
}

TEST(TownTexts, OfALevelBelowABuilding) {
    EXPECT_EQ(Told({{2, "T"}, {4, "B"}, {6, "N"}}), "T/BN/4");
    EXPECT_EQ(Told({{2, "T"}, {4, "B"}, {3, "A"}}), "T/BA/4");
    EXPECT_EQ(Told({{2, "T"}, {4, "B"}, {7, "O"}}), "T/O/3") << "the organisation alone";
    EXPECT_EQ(Told({{2, "T"}, {4, "B"}, {4, "b"}}), "T/Bb/4");
    EXPECT_EQ(Told({{2, "T"}, {4, "B"}, {4, "b"}, {6, "N"}}), "T/BbN/4");
    EXPECT_EQ(Told({{2, "T"}, {4, "B"}, {6, "N"}, {4, "b"}, {6, "n"}}), "T/BN/4") << "a note replaces all below it";
}

TEST(TownTexts, OfALevelBelowALevel3Text) {
    EXPECT_EQ(Told({{2, "T"}, {3, "A"}, {3, "a"}}), "T/A/1");
    EXPECT_EQ(Told({{2, "T"}, {3, "A"}, {4, "B"}}), "T/A/1") << "it replaces what is there";
    EXPECT_EQ(Told({{2, "T"}, {3, "A"}, {6, "N"}}), "T/A/1");
    EXPECT_EQ(Told({{2, "T"}, {3, "A"}, {4, "B"}, {6, "N"}}), "T/A/1");
    EXPECT_EQ(Told({{2, "T"}, {3, "A"}, {7, "O"}}), "T/O/3");
    EXPECT_EQ(Told({{2, "T"}, {3, "A"}, {4, "B"}, {7, "O"}}), "T/O/3");
}

TEST(TownTexts, OfALevelBelowANote) {
    EXPECT_EQ(Told({{2, "T"}, {6, "N"}, {6, "n"}}), "T/N/0");
    EXPECT_EQ(Told({{2, "T"}, {6, "N"}, {3, "A"}}), "T/N/1") << "the kind stays";
    EXPECT_EQ(Told({{2, "T"}, {6, "N"}, {4, "B"}}), "T/N/4");
    EXPECT_EQ(Told({{2, "T"}, {6, "N"}, {7, "O"}}), "T/O/3");
    EXPECT_EQ(Told({{2, "T"}, {3, "A"}, {6, "N"}, {4, "B"}}), "T/A/1");
}

TEST(TownTexts, OfALevelBelowAnOrganisation) {
    EXPECT_EQ(Told({{2, "T"}, {7, "O"}, {3, "A"}}), "T/O/3");
    EXPECT_EQ(Told({{2, "T"}, {7, "O"}, {4, "B"}}), "T/O/3");
    EXPECT_EQ(Told({{2, "T"}, {7, "O"}, {6, "N"}}), "T/O/3");
    EXPECT_EQ(Told({{2, "T"}, {7, "O"}, {7, "o"}}), "T/O/3") << "the upper organisation";
    EXPECT_EQ(Told({{2, "T"}, {3, "A"}, {7, "O"}, {4, "B"}}), "T/O/3");
}

TEST(TownTexts, HaveTheUppermostTown) {
    EXPECT_EQ(Told({{2, "T"}, {2, "t"}}), "T//0");
    EXPECT_EQ(Told({{2, "T"}, {3, "A"}, {2, "t"}, {7, "O"}}), "T/O/3");
    EXPECT_EQ(Told({{3, "A"}, {2, "T"}}), "T/A/1");
}

TEST(TownTexts, WithoutATownHaveTheNameOfTheNodeItself) {
    EXPECT_EQ(Told({{3, "A"}}), "A/A/1");
    EXPECT_EQ(Told({{4, "B"}, {6, "N"}}), "N/BN/4");
    EXPECT_EQ(Told({{7, "O"}}), "O/O/3");
    EXPECT_EQ(Told(CPath()), "C//0") << "the city";
}

TEST(TownTexts, PassOverAllOtherLevels) {
    for (int nLevel : {0, 5, 8, 9, 130, 255}) {
        EXPECT_EQ(Told({{2, "T"}, {nLevel, "-"}, {3, "A"}}), "T/A/1") << nLevel;
        EXPECT_EQ(Told({{nLevel, "-"}, {2, "T"}, {nLevel, "-"}, {4, "B"}, {nLevel, "-"}, {6, "N"}}), "T/BN/4");
        EXPECT_EQ(Told({{nLevel, "-"}}), "-//0") << "but the node itself has its name: " << nLevel;
        EXPECT_EQ(Told({{2, "T"}, {nLevel, "-"}}), "T//0") << nLevel;
    }
}

TEST(TownTexts, EndAtTheCity) {
    EXPECT_EQ(Told({{2, "T"}, {1, "c"}, {7, "O"}}), "O/O/3");
    EXPECT_EQ(Told({{2, "T"}, {7, "O"}, {1, "c"}}), "c//0") << "which is not looked at, and neither is what is above";
}

TEST(TownTexts, EndBeforeANodeWithoutAParent) {
    CPath const path = {{2, "T"}, {4, "B"}, {6, "N"}};
    std::string const strTold[] = {"N/BN/4", "N/N/0", "N//0"};
    for (uint32_t n = 0; n < 3; ++n) {
        CTestImage image = ImageOf(path);
        image.vNode[2 + n].nParent = ADDR_NONE;
        EXPECT_EQ(Told(image), strTold[n]) << "node " << n;
        EXPECT_EQ(CodesIn(image), "1000001/100");
    }
}

TEST(TownTexts, EndBehindANodeWhoseParentIsNotThere) {
    CPath const path = {{2, "T"}, {4, "B"}, {6, "N"}};
    std::string const strTold[] = {"T/BN/4", "N/BN/4", "N/N/0"};
    for (uint32_t n = 0; n < 3; ++n)
        for (uint32_t nParent : {5u, 6u, 0x80000000u, 0xFFFFFFFEu}) {
            CTestImage image = ImageOf(path);
            image.vNode[2 + n].nParent = nParent;
            EXPECT_EQ(Told(image), strTold[n]) << "node " << n << " parent " << nParent;
        }
}

// The same, once more and in other words: from the node to the city or to the top of the levels.
std::string ToldByHand(CPath const& path) {
    std::string strTown = path.back().second, strDetail;
    int nKind = 0;
    for (size_t n = path.size(); n-- > 0 && path[n].first != 1;) {
        std::string const& strName = path[n].second;
        switch (path[n].first) {
        case 2:
            strTown = strName;
            break;
        case 7:
            strDetail = strName, nKind = 3;
            break;
        case 3:
            if (nKind != 3) strDetail = strName, nKind = 1;
            break;
        case 4:
            if (nKind != 3) strDetail = strName + strDetail, nKind = 4;
            break;
        case 6:
            if (nKind != 3) strDetail = strName;
            break;
        default:
            break;
        }
    }
    return strTown + "/" + strDetail + "/" + std::to_string(nKind);
}

TEST(TownTexts, OfAllPathsOfUpToFourNodes) {
    std::string const strNames = "abcd";
    CFields fields;
    int nPaths = 0;
    for (size_t nLength = 1; nLength <= 4; ++nLength)
        for (int nCase = 0; nCase < 1 << 3 * nLength; ++nCase, ++nPaths) {
            CPath path;
            for (size_t n = 0; n < nLength; ++n)
                path.emplace_back(nCase >> 3 * n & 7, strNames.substr(0, n + 1) + "-");
            CLastDic dic(ImageOf(path));
            ASSERT_TRUE(fields.Ask(dic, 0));
            ASSERT_EQ(fields.Texts(), ToldByHand(path)) << "levels, three bits each: " << nCase;
        }
    EXPECT_EQ(nPaths, 8 + 64 + 512 + 4096);
}

} // namespace
