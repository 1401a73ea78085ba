// GetNameForUI: the names under which nodes are shown, and by which trees are sorted.
#include "tests/library/Prefectures.h"
#include "tests/library/TreeWorld.h"

#include <gmock/gmock.h>

namespace {

std::string Padded(std::string strName, size_t nSize) {
    strName.resize(nSize);
    return strName;
}

// The name of a node; the table, the texts and the field each at the end or at the start of their pages.
std::string NameForUI(CTestImage const& image, size_t nNode, int nSize = NAME_SIZE) {
    size_t const nField = nSize < 0 ? 0 : static_cast<size_t>(nSize);
    std::string strName;
    for (auto nPlace : {CGuardedBytes::EndOfPage, CGuardedBytes::StartOfPage}) {
        CGuardedBytes const nodes(image.vNode.data(), image.vNode.size() * sizeof(tagADDRNODE),
                                  CGuardedBytes::ReadOnly, nPlace);
        CGuardedBytes const texts(image.strArea.data(), image.strArea.size(), CGuardedBytes::ReadOnly, nPlace);
        CGuardedBytes const field(std::string(nField, '\0').data(), nField, CGuardedBytes::Writable, nPlace);
        auto const* const pTable = static_cast<tagADDRNODE const*>(static_cast<void const*>(nodes.Data()));
        EXPECT_EQ(GetNameForUI(pTable + nNode, pTable, texts.Data(), field.Text(), nSize), 1);
        strName.assign(field.Text(), strnlen(field.Text(), nField));
        EXPECT_EQ(std::string(field.Text(), nField), Padded(strName, nField)) << "zeros behind the name";
    }
    return strName;
}

// Of a node alone.
std::string NameOfOne(uint8_t nLevel, std::string const& strName, int nSize = NAME_SIZE) {
    CTestImage image;
    image.AddNode(nLevel, ADDR_NONE, strName);
    return NameForUI(image, 0, nSize);
}

// A way up: each node is the parent of the one before it. A city stands above them all, with more above it.
struct CLevelText {
    uint8_t nLevel;
    std::string strName;
};
CTestImage WayUp(std::vector<CLevelText> const& vNode, bool bCity = true) {
    CTestImage image;
    for (CLevelText const& node : vNode)
        image.AddNode(node.nLevel, static_cast<uint32_t>(image.vNode.size() + 1), node.strName);
    if (bCity) {
        for (CLevelText const& node : {CLevelText{LEVEL_CITY, "city"}, CLevelText{LEVEL_TOWN, "no town"},
                                       CLevelText{LEVEL_OFFICE, "no office"}})
            image.AddNode(node.nLevel, static_cast<uint32_t>(image.vNode.size() + 1), node.strName);
    }
    image.vNode.back().nParent = ADDR_NONE;
    return image;
}
std::string NameOnWay(std::vector<CLevelText> const& vNode) {
    return NameForUI(WayUp(vNode), 0);
}

// --- prefectures ---------------------------------------------------------------------------------------------------

TEST(DisplayName, OfAPrefectureIsItsTwoDigitCodeAndItsName) {
    EXPECT_EQ(NameOfOne(LEVEL_PREF, "北海道"), "00北海道");
    EXPECT_EQ(NameOfOne(LEVEL_PREF, "東京都"), "12東京都");
    EXPECT_EQ(NameOfOne(LEVEL_PREF, "沖縄県"), "46沖縄県");
}

TEST(DisplayName, PutsThePrefecturesInTheirOrder) {
    CTestImage image;
    for (char const* psz : PREFECTURES) image.AddNode(LEVEL_PREF, ADDR_NONE, psz);
    std::vector<uint32_t> vOrder;
    for (uint32_t n = 0; n < std::size(PREFECTURES); ++n) vOrder.push_back(n);
    std::shuffle(vOrder.begin(), vOrder.end(), std::mt19937(47));
    CTreeDic const dic(image);
    CTree tree;
    for (uint32_t n : vOrder) dic.Insert(tree, {n, n, n});
    recSortTree(tree);
    ASSERT_EQ(tree.size(), std::size(PREFECTURES));
    for (uint32_t n = 0; n < tree.size(); ++n) {
        EXPECT_EQ(tree[n].pNode, dic.Node(n));
        EXPECT_EQ(NameOf(tree[n]), std::to_string(100 + n).substr(1) + PREFECTURES[n]);
    }
}

TEST(DisplayName, OfAPrefectureThatTheTableLacksIsItsNameAlone) {
    for (char const* psz : {"東京", "東京都 ", "東京府", "12東京都", "x", ""})
        EXPECT_EQ(NameOfOne(LEVEL_PREF, psz), psz);
}

TEST(DisplayName, OfAPrefectureOrACityDoesNotDependOnWhatStandsAbove) {
    EXPECT_EQ(NameOnWay({{LEVEL_PREF, "東京都"}, {LEVEL_TOWN, "town"}}), "12東京都");
    EXPECT_EQ(NameOnWay({{LEVEL_CITY, "港区"}, {LEVEL_OFFICE, "office"}}), "h港区");
}

// --- cities --------------------------------------------------------------------------------------------------------

TEST(DisplayName, OfEveryCityInUtf8HasTheLastLetter) {
    for (std::string const strName : {"札幌市", "千代田区", "札幌市中央区", "西多摩郡奥多摩町", "西多摩郡檜原村",
                                      "大島町", "八丈島八丈町", "三宅支庁御蔵島村", "市", "区", "町", "村", "郡"})
        EXPECT_EQ(NameOfOne(LEVEL_CITY, strName), "h" + strName);
}

TEST(DisplayName, OfACityInADoubleByteEncodingHasTheLetterOfItsKind) {
    EXPECT_EQ(NameOfOne(LEVEL_CITY, "aabbcc" SHI), "aaabbcc" SHI);
    EXPECT_EQ(NameOfOne(LEVEL_CITY, "aabbcc" KU), "baabbcc" KU);
    EXPECT_EQ(NameOfOne(LEVEL_CITY, "aa" SHI "cc" KU), "caa" SHI "cc" KU);
    EXPECT_EQ(NameOfOne(LEVEL_CITY, "aa" GUN "cc" CHO), "daa" GUN "cc" CHO);
    EXPECT_EQ(NameOfOne(LEVEL_CITY, "aa" GUN "cc" MURA), "eaa" GUN "cc" MURA);
    EXPECT_EQ(NameOfOne(LEVEL_CITY, "aa" SHIMA "cc" CHO), "faa" SHIMA "cc" CHO);
    EXPECT_EQ(NameOfOne(LEVEL_CITY, "aa" SHIMA "cc" MURA), "faa" SHIMA "cc" MURA);
    EXPECT_EQ(NameOfOne(LEVEL_CITY, "aa" AGATA "cc" MURA), "gaa" AGATA "cc" MURA);
    EXPECT_EQ(NameOfOne(LEVEL_CITY, "aabbcc" CHO), "haabbcc" CHO);
    EXPECT_EQ(NameOfOne(LEVEL_CITY, "aabbcc"), "haabbcc");
}

TEST(DisplayName, OfACityHasTheLetterOfItsKindFromThreeBytesOn) {
    EXPECT_EQ(NameOfOne(LEVEL_CITY, "x" SHI), "ax" SHI);
    EXPECT_EQ(NameOfOne(LEVEL_CITY, "x" KU), "bx" KU);
    EXPECT_EQ(NameOfOne(LEVEL_CITY, SHI), "h" SHI);
    EXPECT_EQ(NameOfOne(LEVEL_CITY, KU), "h" KU);
    EXPECT_EQ(NameOfOne(LEVEL_CITY, "x"), "hx");
    EXPECT_EQ(NameOfOne(LEVEL_CITY, ""), "h");
}

// --- what lies below a city ----------------------------------------------------------------------------------------

TEST(DisplayName, OfATownIsItsName) {
    EXPECT_EQ(NameOnWay({{LEVEL_TOWN, "芝"}}), "芝");
    EXPECT_EQ(NameOnWay({{LEVEL_TOWN, ""}}), "");
}

TEST(DisplayName, OfAnAreaIsTheTownAndTheArea) {
    EXPECT_EQ(NameOnWay({{LEVEL_AREA, "１丁目"}, {LEVEL_TOWN, "芝"}}), "芝１丁目");
    EXPECT_EQ(NameOnWay({{LEVEL_AREA, "１丁目"}}), "１丁目");
}

TEST(DisplayName, LeavesOutAnAreaOfMoreThanNineteenBytes) {
    std::string const strShort(19, 'a'), strLong(20, 'a');
    EXPECT_EQ(NameOnWay({{LEVEL_AREA, strShort}, {LEVEL_TOWN, "芝"}}), "芝" + strShort);
    EXPECT_EQ(NameOnWay({{LEVEL_AREA, strLong}, {LEVEL_TOWN, "芝"}}), "芝");
    EXPECT_EQ(NameOnWay({{LEVEL_AREA, "六文字の名前"}, {LEVEL_TOWN, "芝"}}), "芝六文字の名前") << "18 bytes";
    EXPECT_EQ(NameOnWay({{LEVEL_AREA, "七文字になる名"}, {LEVEL_TOWN, "芝"}}), "芝") << "21 bytes";
    EXPECT_EQ(NameOnWay({{LEVEL_AREA, std::string(500, 'a')}, {LEVEL_TOWN, "芝"}}), "芝");
}

TEST(DisplayName, OfALongAreaWithoutATownIsEmpty) {
    EXPECT_EQ(NameOnWay({{LEVEL_AREA, std::string(20, 'a')}}), "");
    EXPECT_EQ(NameOnWay({{LEVEL_GROUP, "group"}, {LEVEL_AREA, std::string(20, 'a')}}), "");
    EXPECT_EQ(NameOnWay({{LEVEL_NOTE, "note"}, {LEVEL_AREA, std::string(20, 'a')}}), "");
}

TEST(DisplayName, OfABuildingIsTheTownAndTheBuildingWithoutTheArea) {
    EXPECT_EQ(NameOnWay({{LEVEL_BLOCK, "海ビル"}, {LEVEL_TOWN, "芝"}}), "芝海ビル");
    EXPECT_EQ(NameOnWay({{LEVEL_BLOCK, "海ビル"}, {LEVEL_AREA, "１丁目"}, {LEVEL_TOWN, "芝"}}), "芝海ビル");
    EXPECT_EQ(NameOnWay({{LEVEL_BLOCK, ""}, {LEVEL_AREA, "１丁目"}, {LEVEL_TOWN, "芝"}}), "芝")
        << "nameless, yet there";
}

TEST(DisplayName, OfAFloorIsTheTownTheBuildingAndTheFloor) {
    EXPECT_EQ(NameOnWay({{LEVEL_NOTE, "３階"}, {LEVEL_BLOCK, "海ビル"}, {LEVEL_TOWN, "芝"}}), "芝海ビル３階");
    EXPECT_EQ(NameOnWay({{LEVEL_BLOCK, "海ビル"}, {LEVEL_NOTE, "３階"}, {LEVEL_TOWN, "芝"}}), "芝海ビル３階")
        << "in this order, whichever stands above";
    EXPECT_EQ(NameOnWay({{LEVEL_NOTE, "３階"}, {LEVEL_BLOCK, ""}, {LEVEL_TOWN, "芝"}}), "芝３階");
}

TEST(DisplayName, LeavesOutAFloorWithoutABuilding) {
    EXPECT_EQ(NameOnWay({{LEVEL_NOTE, "３階"}, {LEVEL_TOWN, "芝"}}), "芝");
    EXPECT_EQ(NameOnWay({{LEVEL_NOTE, "３階"}, {LEVEL_AREA, "１丁目"}, {LEVEL_TOWN, "芝"}}), "芝１丁目");
    EXPECT_EQ(NameOnWay({{LEVEL_NOTE, "３階"}}), "");
}

TEST(DisplayName, OfAnOrganisationIsTheTownAndTheOrganisationAlone) {
    std::vector<CLevelText> const vRest = {
        {LEVEL_NOTE, "３階"}, {LEVEL_BLOCK, "海ビル"}, {LEVEL_AREA, "１丁目"}, {LEVEL_TOWN, "芝"}};
    for (std::string const strName : {"港商会", ""})
        for (size_t n = 0; n <= vRest.size(); ++n) {
            std::vector<CLevelText> vNode = vRest;
            vNode.insert(vNode.begin() + static_cast<std::ptrdiff_t>(n), {LEVEL_OFFICE, strName});
            EXPECT_EQ(NameOnWay(vNode), "芝" + strName) << n;
        }
}

TEST(DisplayName, HasOfTwoOfOneLevelTheUpperOne) {
    for (uint8_t nLevel : {LEVEL_TOWN, LEVEL_AREA, LEVEL_BLOCK, LEVEL_OFFICE}) {
        EXPECT_EQ(NameOnWay({{nLevel, "near"}, {LEVEL_GROUP, ""}, {nLevel, "far"}}), "far") << int{nLevel};
        EXPECT_EQ(NameOnWay({{nLevel, "near"}, {nLevel, ""}}), "") << int{nLevel};
    }
    EXPECT_EQ(NameOnWay({{LEVEL_NOTE, "near"}, {LEVEL_NOTE, "far"}, {LEVEL_BLOCK, "b"}}), "bfar");
    EXPECT_EQ(NameOnWay({{LEVEL_AREA, "near"}, {LEVEL_AREA, std::string(20, 'a')}, {LEVEL_TOWN, "t"}}), "t");
}

TEST(DisplayName, LeavesOutOtherLevelsButNotWhatStandsAboveThem) {
    for (uint8_t nLevel : std::initializer_list<uint8_t>{LEVEL_GROUP, LEVEL_PREF, 8, 9, 200, 255}) {
        EXPECT_EQ(NameOnWay({{LEVEL_AREA, "a"}, {nLevel, "other"}, {LEVEL_TOWN, "t"}}), "ta") << int{nLevel};
        if (nLevel == LEVEL_PREF) continue; // has a name of its own
        EXPECT_EQ(NameOnWay({{nLevel, "other"}, {LEVEL_AREA, "a"}, {LEVEL_TOWN, "t"}}), "ta") << int{nLevel};
        EXPECT_EQ(NameOnWay({{nLevel, "other"}}), "") << int{nLevel};
    }
}

TEST(DisplayName, EndsAtTheTopWhereThereIsNoCity) {
    EXPECT_EQ(NameForUI(WayUp({{LEVEL_AREA, "a"}, {LEVEL_TOWN, "t"}}, false), 0), "ta");
    EXPECT_EQ(NameForUI(WayUp({{LEVEL_AREA, "a"}, {LEVEL_TOWN, "t"}, {LEVEL_PREF, "東京都"}}, false), 0), "ta");
    EXPECT_EQ(NameForUI(WayUp({{LEVEL_GROUP, "g"}}, false), 0), "");
}

// The rule once more: of every level the last name below the first city.
std::string Expected(std::vector<CLevelText> const& vNode) {
    std::string const* apName[256] = {};
    for (CLevelText const& node : vNode) {
        if (node.nLevel == LEVEL_CITY) break;
        apName[node.nLevel] = &node.strName;
    }
    auto const Text = [&](int nLevel) { return apName[nLevel] == nullptr ? std::string() : *apName[nLevel]; };
    if (apName[7] != nullptr) return Text(2) + Text(7);
    if (apName[4] != nullptr) return Text(2) + Text(4) + Text(6);
    return Text(2) + (Text(3).size() > 19 ? "" : Text(3));
}

TEST(DisplayName, OfEveryCombinationOfLevelsIsThatOfTheRule) {
    std::mt19937 random(51);
    for (int nRound = 0; nRound < 400; ++nRound) {
        std::vector<CLevelText> vNode;
        for (size_t n = random() % 7; vNode.size() <= n;) {
            auto const nLevel = static_cast<uint8_t>(vNode.empty() ? 2 + random() % 7 : random() % 9);
            std::string const strName(random() % 24, static_cast<char>('a' + vNode.size()));
            vNode.push_back({nLevel, strName});
        }
        std::string strLevels;
        for (CLevelText const& node : vNode) strLevels += std::to_string(node.nLevel) + ' ';
        ASSERT_EQ(NameOnWay(vNode), Expected(vNode)) << strLevels;
    }
}

// --- fields --------------------------------------------------------------------------------------------------------

TEST(DisplayName, IsCutAtTheSizeOfItsField) {
    for (size_t nLength : {126u, 127u, 128u, 129u, 200u}) {
        std::string const strName(nLength, 'n');
        EXPECT_EQ(NameOfOne(LEVEL_TOWN, strName), strName.substr(0, 128)) << nLength;
        EXPECT_EQ(NameOfOne(LEVEL_CITY, strName), "h" + strName.substr(0, 127)) << nLength;
        EXPECT_EQ(NameOfOne(LEVEL_PREF, strName), strName.substr(0, 128)) << nLength;
        EXPECT_EQ(NameOnWay({{LEVEL_OFFICE, "12345"}, {LEVEL_TOWN, strName}}), (strName + "12345").substr(0, 128));
        EXPECT_EQ(NameOnWay({{LEVEL_AREA, "12345"}, {LEVEL_TOWN, strName}}), (strName + "12345").substr(0, 128));
        EXPECT_EQ(NameOnWay({{LEVEL_OFFICE, strName}, {LEVEL_TOWN, "t"}}), ("t" + strName).substr(0, 128));
        EXPECT_EQ(NameOnWay({{LEVEL_NOTE, "12345"}, {LEVEL_BLOCK, strName}}), (strName + "12345").substr(0, 128));
    }
}

TEST(DisplayName, IsCutAtEverySize) {
    CTestImage const floor = WayUp({{LEVEL_NOTE, "３階"}, {LEVEL_BLOCK, "海ビル"}, {LEVEL_TOWN, "芝"}});
    for (int nSize = 0; nSize <= 25; ++nSize) {
        auto const nLength = static_cast<size_t>(nSize);
        EXPECT_EQ(NameOfOne(LEVEL_PREF, "東京都", nSize), std::string("12東京都").substr(0, nLength));
        EXPECT_EQ(NameOfOne(LEVEL_CITY, "札幌市", nSize), std::string("h札幌市").substr(0, nLength));
        EXPECT_EQ(NameForUI(floor, 0, nSize), std::string("芝海ビル３階").substr(0, nLength));
    }
}

TEST(DisplayName, InAFieldOfANegativeSizeIsNone) {
    for (int nSize : {-1, -128, INT32_MIN})
        for (uint8_t nLevel : {LEVEL_PREF, LEVEL_CITY, LEVEL_TOWN}) EXPECT_EQ(NameOfOne(nLevel, "東京都", nSize), "");
}

TEST(DisplayName, IsNotWrittenForNull) {
    CTreeDic const dic((CTextWorld()));
    for (unsigned nMissing = 0; nMissing < 4; ++nMissing) {
        char szName[NAME_SIZE];
        std::memset(szName, 'x', sizeof szName);
        EXPECT_EQ(GetNameForUI(nMissing == 0 ? nullptr : dic.Node(0), nMissing == 1 ? nullptr : dic.Node(0),
                               nMissing == 2 ? nullptr : dic.Strings(), nMissing == 3 ? nullptr : szName, NAME_SIZE),
                  0);
        EXPECT_EQ(std::string(szName, sizeof szName), std::string(sizeof szName, 'x')) << nMissing;
    }
}

// --- damaged ways up -----------------------------------------------------------------------------------------------

using DamagedWayUp = TimedTest;

TEST_F(DamagedWayUp, ThatGoesInACircleComesToAnEnd) {
    for (size_t nBack = 0; nBack < 3; ++nBack) {
        CTestImage image = WayUp({{LEVEL_AREA, "a"}, {LEVEL_GROUP, "g"}, {LEVEL_TOWN, "t"}}, false);
        image.vNode[2].nParent = static_cast<uint32_t>(nBack);
        EXPECT_EQ(NameForUI(image, 0), "ta") << nBack;
    }
    for (uint8_t nLevel : {LEVEL_TOWN, LEVEL_AREA, LEVEL_BLOCK, LEVEL_OFFICE}) {
        CTestImage image = WayUp({{nLevel, "own parent"}}, false);
        image.vNode[0].nParent = 0;
        EXPECT_EQ(NameForUI(image, 0), "own parent") << int{nLevel};
    }
}

TEST_F(DamagedWayUp, OfOneHundredLevelsIsReadToItsTop) {
    std::vector<CLevelText> vNode(99, {LEVEL_GROUP, "g"});
    vNode.push_back({LEVEL_TOWN, "t"});
    EXPECT_EQ(NameOnWay(vNode), "t") << "there are eight in a sound dictionary";
}

TEST_F(DamagedWayUp, InTheClassEndsAtAParentOrANameThatIsNotThere) {
    CTextWorld world;
    CTriple const anNode = {world.nTokyo, world.nMinato, world.nArea};
    for (uint32_t nWord : {static_cast<uint32_t>(world.strArea.size()), 0x80000000u, ADDR_NONE}) {
        CTextWorld damaged;
        damaged.vNode[anNode[2]].nName = nWord; // the area's; the building is shown without it, the area as its town
        CTreeDic dic(damaged);
        EXPECT_EQ(dic.Refine("10500"), 1);
        EXPECT_THAT(dic.TreeLines(), testing::ElementsAre("12東京都", " h港区", "  芝", "  芝", "  芝海ビル"));
        for (uint32_t nNode : {world.nShiba, world.nMinato, world.nTokyo}) damaged.vNode[nNode].nName = nWord;
        CTreeDic nameless(damaged);
        EXPECT_EQ(nameless.Refine("10500"), 1);
        EXPECT_THAT(nameless.TreeLines(), testing::ElementsAre("", " ", "  ", "  ", "  海ビル"));
    }
}

} // namespace
