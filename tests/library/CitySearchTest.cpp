// Cities by their names: by the front of a name in the index, or by the end of one in the run of cities.
#include "tests/library/BrowseWorld.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using CNumbers = std::vector<uint32_t>;

// The positions in the index of the cities found, in a dictionary of TokyoWith.
CNumbers Found(CBrowsedDic& dic, char const* pszName) {
    CNodeList vNode;
    EXPECT_TRUE(dic.SearchCity(pszName, vNode)) << pszName;
    CNumbers vPos = dic.Numbers(vNode);
    for (uint32_t& n : vPos) --n;
    return vPos;
}

CNumbers FoundIn(std::vector<std::string> const& vCity, std::string const& strName) {
    CBrowsedDic dic(TokyoWith(vCity));
    return Found(dic, CGuardedBytes(strName, CGuardedBytes::ReadOnly).Text());
}

bool Fails(CAddrDic& dic, char const* pszName) {
    CNodeList vNode;
    return !dic.SearchCity(pszName, vNode) && vNode.empty();
}

// --- by the front: the index ---------------------------------------------------------------------------------------

TEST(CitySearch, HasTheHitFirstThenThoseBeforeItBackwardsThenThoseBehindIt) {
    EXPECT_THAT(FoundIn({"0", "a1", "a2", "a3", "a4", "a5", "b"}, "a"), ElementsAre(3, 2, 1, 4, 5));
}

TEST(CitySearch, FindsWholeNamesAndTheirBeginnings) {
    CTextWorld const world;
    CBrowsedDic dic(world);
    for (char const* psz : {"府中市", "府中", "府", "\xE5\xBA"}) {
        CNodeList vNode;
        EXPECT_TRUE(dic.SearchCity(psz, vNode));
        EXPECT_THAT(dic.Numbers(vNode), ElementsAre(world.nFuchu, world.nFuchuHiroshima)) << psz;
    }
}

TEST(CitySearch, NeverFindsTheFirstOfTheIndexBehindAHit) {
    EXPECT_THAT(FoundIn({"a0", "a1", "a2"}, "a"), ElementsAre(1, 2));
    EXPECT_THAT(FoundIn({"a0", "a1", "a2", "b"}, "a"), ElementsAre(1, 2));
    EXPECT_THAT(FoundIn({"a0", "a1", "a2", "a3", "a4", "a5"}, "a"), ElementsAre(2, 1, 3, 4, 5));
}

TEST(CitySearch, ThatHitsTheFirstOfTheIndexHasThoseBehindIt) {
    EXPECT_THAT(FoundIn({"a0", "a1"}, "a"), ElementsAre(1));
    EXPECT_THAT(FoundIn({"a0", "a1", "b", "c", "d"}, "a"), ElementsAre(1)) << "hit by the second probe";
}

TEST(CitySearch, ThatOnlyTheFirstOfTheIndexMatchesIsTrueAndEmpty) {
    EXPECT_THAT(FoundIn({"a"}, "a"), IsEmpty());
    EXPECT_THAT(FoundIn({"a", "b"}, "a"), IsEmpty());
    EXPECT_THAT(FoundIn({"a", "b", "c", "d", "e"}, "a"), IsEmpty());
}

TEST(CitySearch, ThatHitsTheLastOfTheIndexEndsThere) {
    EXPECT_THAT(FoundIn({"a", "b"}, "b"), ElementsAre(1));
    EXPECT_THAT(FoundIn({"a", "b", "c1", "c2"}, "c2"), ElementsAre(3));
}

TEST(CitySearch, OfAnEmptyNameHasAllButTheFirstOfTheIndex) {
    EXPECT_THAT(FoundIn({"a", "b", "c", "d", "e", "f", "g"}, ""), ElementsAre(3, 2, 1, 4, 5, 6));
    EXPECT_THAT(FoundIn({"", "", ""}, ""), ElementsAre(1, 2));
    EXPECT_THAT(FoundIn({"a"}, ""), IsEmpty());
}

TEST(CitySearch, OfANameThatNoneBeginsWithFails) {
    CBrowsedDic dic(TokyoWith({"b", "c", "da", "db", "e"}));
    for (char const* psz : {"a", "B", "bb", "d\x01", "dab", "ea", "f", "\xFF", "区"})
        EXPECT_TRUE(Fails(dic, psz)) << psz;
}

TEST(CitySearch, InAnEmptyIndexFails) {
    CBrowsedDic dic(TokyoWith({}));
    EXPECT_TRUE(Fails(dic, ""));
    EXPECT_TRUE(Fails(dic, "a"));
}

// The search step by step, {ADDR_NONE} when it fails: first the probe that hits, then the walks.
CNumbers Expected(std::vector<std::string> const& vCity, std::string const& strName) {
    auto const Begins = [&](int n) { return vCity[static_cast<size_t>(n)].compare(0, strName.size(), strName) == 0; };
    int const nCount = static_cast<int>(vCity.size());
    int nLow = 0, nHigh = nCount - 1, nMiddle = nHigh / 2;
    while (!Begins(nMiddle)) {
        if (vCity[static_cast<size_t>(nMiddle)] > strName)
            nHigh = nMiddle - 1;
        else
            nLow = nMiddle + 1;
        if (nLow > nHigh) return {ADDR_NONE};
        nMiddle = (nLow + nHigh) / 2;
    }
    CNumbers vPos;
    for (int n = nMiddle; n > 0 && Begins(n); --n) vPos.push_back(static_cast<uint32_t>(n));
    for (int n = nMiddle + 1; n < nCount && Begins(n); ++n) vPos.push_back(static_cast<uint32_t>(n));
    return vPos;
}

TEST(CitySearch, FindsTheSameInTheSameOrderInIndexesOfEverySmallSize) {
    for (size_t nCount = 1; nCount <= 40; ++nCount) {
        std::vector<std::string> vCity;
        for (size_t n = 0; n < nCount; ++n) vCity.push_back(std::to_string(100 + n * 2 / 5 * 2));
        CBrowsedDic dic(TokyoWith(vCity));
        for (int n = 99; n <= 135; ++n) {
            std::string const strName = std::to_string(n);
            CNumbers const vExpected = Expected(vCity, strName);
            CNodeList vNode;
            bool const bFound = dic.SearchCity(strName.c_str(), vNode);
            CNumbers const vPos = bFound ? Found(dic, strName.c_str()) : CNumbers{ADDR_NONE};
            ASSERT_EQ(vPos, vExpected) << strName << " of " << nCount;
        }
        ASSERT_EQ(Found(dic, "1"), Expected(vCity, "1")) << nCount;
    }
}

TEST(CitySearch, OfAnUnsortedIndexEndsEachWalkAtTheFirstThatDoesNotBeginSo) {
    EXPECT_THAT(FoundIn({"a0", "a1", "z", "a3", "z", "a5", "a6"}, "a"), ElementsAre(3));
    EXPECT_THAT(FoundIn({"a0", "z", "a2", "a3", "a4", "z", "a6"}, "a"), ElementsAre(3, 2, 4));
}

TEST(CitySearch, OfAnUnsortedIndexMissesWhatTheProbesPassBy) {
    CBrowsedDic dic(TokyoWith({"c", "b", "a"}));
    EXPECT_TRUE(Fails(dic, "c"));
}

TEST(CitySearch, EndsWithTheIndexAndNotWithTheTableBehindIt) {
    CTestImage const image = TokyoWith({"a0", "a1", "a2", "a3"});
    CBrowsedDic dic(WithoutLastEntry(image, HDR_CITY_COUNT));
    EXPECT_THAT(Found(dic, "a"), ElementsAre(1, 2)) << "there are nodes enough to go on";
}

TEST(CitySearch, FailsWhenAProbeHasNoReadableName) {
    for (uint32_t nBehind : {0u, 1u, 0x7FFFFFFFu}) {
        CTestImage image = TokyoWith({"a", "b", "c"}); // position 1 is probed first
        image.vNode[2].nName = static_cast<uint32_t>(image.strArea.size()) + nBehind;
        CBrowsedDic dic(image);
        for (char const* psz : {"", "a", "b", "c"}) EXPECT_TRUE(Fails(dic, psz)) << psz;
    }
}

TEST(CitySearch, FailsWhenAProbeNamesNoNode) {
    for (uint32_t nNode : {4u, 0x80000000u, ADDR_NONE}) {
        CTestImage image = TokyoWith({"a", "b", "c"});
        image.vCityIndex[1] = nNode;
        CBrowsedDic dic(image);
        for (char const* psz : {"", "a", "b", "c"}) EXPECT_TRUE(Fails(dic, psz)) << psz;
    }
}

TEST(CitySearch, EndsEachWalkAtAnEntryThatCannotBeRead) {
    for (uint32_t nNode : {8u, 0x80000000u, ADDR_NONE}) {
        CTestImage image = TokyoWith({"a", "a", "a", "a", "a", "a", "a"}); // position 3 is probed first
        image.vCityIndex[1] = nNode;
        image.vNode[6].nName = static_cast<uint32_t>(image.strArea.size()); // at position 5
        CBrowsedDic dic(image);
        EXPECT_THAT(Found(dic, "a"), ElementsAre(3, 2, 4)) << nNode;
    }
}

TEST(CitySearch, TakesANameThatTheStringAreaCutsOffForNoLongerThanItIs) {
    CTestImage image = TokyoWith({"a", "b", "cc"});
    image.strArea.resize(image.vNode[3].nName + 2);
    CBrowsedDic dic(image);
    EXPECT_THAT(Found(dic, "c"), ElementsAre(2));
    EXPECT_TRUE(Fails(dic, "ccc"));
}

// --- the answer ----------------------------------------------------------------------------------------------------

TEST(CitySearch, ReplacesTheAnswerBefore) {
    CBrowsedDic dic(TokyoWith({"a", "b", "c" KU}));
    for (char const* psz : {"b", "c" KU}) {
        CNodeList vNode(5, dic.Node(0));
        EXPECT_TRUE(dic.SearchCity(psz, vNode));
        EXPECT_EQ(vNode.size(), 1u) << psz;
    }
}

TEST(CitySearch, EmptiesTheAnswerWhenItFails) {
    CBrowsedDic dic(TokyoWith({"a"}));
    CNodeList vNode(5, dic.Node(0));
    EXPECT_FALSE(dic.SearchCity("x", vNode));
    EXPECT_THAT(vNode, IsEmpty());
}

TEST(CitySearch, OfNullFailsAndLeavesTheAnswerAlone) {
    CBrowsedDic dic(TokyoWith({"a"}));
    CNodeList vNode(5, dic.Node(0));
    EXPECT_FALSE(dic.SearchCity(nullptr, vNode));
    EXPECT_EQ(vNode.size(), 5u);
}

TEST(CitySearch, LeavesTheListsAlone) {
    CBrowsedDic dic(TokyoWith({"a", "b"}));
    dic.PrefList() = dic.CityList() = dic.TownList() = {dic.Node(0)};
    Found(dic, "b");
    Found(dic, "b" KU);
    for (CNodeList const& vNode : {dic.PrefList(), dic.CityList(), dic.TownList()})
        EXPECT_THAT(dic.Numbers(vNode), ElementsAre(0));
}

TEST(CitySearch, WithoutADictionaryFindsNothing) {
    CAddrDic dic;
    CNodeList vNode;
    EXPECT_TRUE(Fails(dic, "a"));
    EXPECT_TRUE(Fails(dic, ""));
    EXPECT_TRUE(dic.SearchCity("a" KU, vNode)) << "none of no cities ends so";
    EXPECT_THAT(vNode, IsEmpty());
}

// --- which of the two ----------------------------------------------------------------------------------------------

// The cities are the name with something before it, the name, and the name with something behind it. By the front the
// first is not found, by the end the last.
bool IsSoughtByItsEnd(std::string const& strName) {
    CNumbers const vPos = FoundIn({"!" + strName, strName, strName + "!"}, strName);
    if (vPos == CNumbers{0, 1}) return true;
    EXPECT_THAT(vPos, ElementsAre(1, 2)) << strName;
    return false;
}

struct CEnding {
    std::string strSuffix;
    std::vector<std::string> vMarker, vOther;
};
std::vector<CEnding> const ENDINGS = {{KU, {SHI}, {KU, CHO, GUN, SHIMA, MURA, AGATA}},
                                      {CHO, {GUN}, {SHI, KU, CHO, SHIMA, MURA, AGATA}},
                                      {MURA, {GUN, SHIMA, AGATA}, {SHI, KU, CHO, MURA}}};

TEST(CityNameThatEndsLikeAWardTownOrVillage, IsSoughtByItsEnd) {
    for (CEnding const& ending : ENDINGS)
        for (char const* psz : {"a", "aa", "aaa", "aaaa", "aaaaa", "aaaaaa", "aaaaaaa", "aaaaaaaaaaaaaaa"})
            EXPECT_TRUE(IsSoughtByItsEnd(psz + ending.strSuffix)) << psz;
}

TEST(CityNameThatEndsLikeAWardTownOrVillage, IsSoughtByItsFrontWhenItHoldsWhatItStandsBehind) {
    for (CEnding const& ending : ENDINGS)
        for (std::string const& strMarker : ending.vMarker)
            for (char const* pszFront : {"aa", "aaa", "aaaaaa", "aaaaaaa"})
                for (char const* pszBetween : {"bb", "bbbb", "bbbbbb"})
                    EXPECT_FALSE(IsSoughtByItsEnd(pszFront + strMarker + pszBetween + ending.strSuffix));
}

TEST(CityNameThatEndsLikeAWardTownOrVillage, IsSoughtByItsEndWhenItHoldsWhatOthersStandBehind) {
    for (CEnding const& ending : ENDINGS)
        for (std::string const& strOther : ending.vOther)
            EXPECT_TRUE(IsSoughtByItsEnd("aa" + strOther + "bb" + ending.strSuffix));
}

// Looked at are the bytes six before the end, eight, ten and so on, but not the first two of the name.
TEST(CityNameThatEndsLikeAWardTownOrVillage, IsSoughtByItsEndWhenTheMarkerIsNotLookedAt) {
    for (CEnding const& ending : ENDINGS)
        for (std::string const& strMarker : ending.vMarker) {
            std::string const strSuffix = ending.strSuffix;
            EXPECT_TRUE(IsSoughtByItsEnd("aaaa" + strMarker + strSuffix)) << "right before the end";
            EXPECT_TRUE(IsSoughtByItsEnd("aaaa" + strMarker + "b" + strSuffix)) << "one byte before the end";
            EXPECT_TRUE(IsSoughtByItsEnd("aaaa" + strMarker + "bbb" + strSuffix)) << "between two places";
            EXPECT_TRUE(IsSoughtByItsEnd(strMarker + "bbbb" + strSuffix)) << "at the front";
            EXPECT_TRUE(IsSoughtByItsEnd("a" + strMarker + "bbbbbb" + strSuffix)) << "one byte behind the front";
        }
}

TEST(CityNameThatEndsLikeAWardTownOrVillage, IsSoughtByItsEndWhenItIsTooShortForAMarker) {
    for (CEnding const& ending : ENDINGS)
        for (std::string const& strMarker : ending.vMarker) {
            EXPECT_TRUE(IsSoughtByItsEnd(ending.strSuffix));
            EXPECT_TRUE(IsSoughtByItsEnd(strMarker + ending.strSuffix));
            EXPECT_TRUE(IsSoughtByItsEnd(strMarker + "bb" + ending.strSuffix)) << "six bytes";
            EXPECT_TRUE(IsSoughtByItsEnd("a" + strMarker + "bb" + ending.strSuffix)) << "seven bytes";
        }
}

TEST(CityNameThatEndsOtherwise, IsSoughtByItsFront) {
    for (char const* psz : {"a", "aa", "a" SHI, "a" GUN, "a" SHIMA, "a" AGATA, "a" KU "b", "\xE5", "\x8C", "a\xE5",
                            "千代田区", "区", "元町", "a村", "府中市", "札幌市北区"})
        EXPECT_FALSE(IsSoughtByItsEnd(psz)) << psz;
}

// --- by the end: the run of cities ---------------------------------------------------------------------------------

TEST(CitySearchByTheEnd, FindsNamesThatEndWithTheName) {
    EXPECT_THAT(FoundIn({"a" KU, "xa" KU, "b" KU, "a" KU "x", "a", KU "a" KU}, "a" KU), ElementsAre(0, 1, 5));
}

TEST(CitySearchByTheEnd, FindsNamesThatTheNameEndsWith) {
    EXPECT_THAT(FoundIn({"c" KU, "bc" KU, "abc" KU, "b" KU, "ab", "abcd" KU}, "abc" KU), ElementsAre(0, 1, 2));
}

TEST(CitySearchByTheEnd, FindsNamelessCitiesForEveryName) {
    EXPECT_THAT(FoundIn({"", "a" KU, "b"}, "b" KU), ElementsAre(0)) << "no name is the end of every name";
}

TEST(CitySearchByTheEnd, ThatFindsNothingIsTrueAndEmpty) {
    EXPECT_THAT(FoundIn({"a", "b"}, "c" KU), IsEmpty());
    EXPECT_THAT(FoundIn({}, "c" KU), IsEmpty());
}

TEST(CitySearchByTheEnd, HasTheCitiesInTheirOwnOrderAndTheFirstOfTheIndexToo) {
    CTestImage image = TokyoWith({"c" KU, "b" KU, "a" KU});
    std::reverse(image.vCityIndex.begin(), image.vCityIndex.end());
    CBrowsedDic dic(image);
    EXPECT_THAT(Found(dic, KU), ElementsAre(0, 1, 2));
}

TEST(CitySearchByTheEnd, LooksAtTheRunOfCitiesOnly) {
    CTestImage image = TokyoWith({"a" KU, "b" KU, "c" KU, "d" KU});
    image.nFirstCity = 2;
    image.vCityIndex.resize(2);
    CBrowsedDic dic(image);
    EXPECT_THAT(Found(dic, KU), ElementsAre(1, 2));
}

TEST(CitySearchByTheEnd, OfARunThatLeavesTheNodeTableFailsAndKeepsWhatItFound) {
    CTestImage image = TokyoWith({"a" KU, "b" KU, "c" KU});
    image.nFirstCity = 2;
    CBrowsedDic dic(image);
    CNodeList vNode;
    EXPECT_FALSE(dic.SearchCity(KU, vNode));
    EXPECT_THAT(dic.Numbers(vNode), ElementsAre(2, 3));
}

TEST(CitySearchByTheEnd, OfARunThatLiesBehindTheNodeTableFails) {
    for (uint32_t nFirst : {4u, 0x80000000u, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
        CTestImage image = TokyoWith({"a" KU, "b" KU, "c" KU});
        image.nFirstCity = nFirst;
        CBrowsedDic dic(image);
        EXPECT_TRUE(Fails(dic, KU)) << nFirst;
    }
}

TEST(CitySearchByTheEnd, PassesOverACityWithoutAReadableName) {
    CTestImage image = TokyoWith({"a" KU, "b" KU, "c" KU});
    image.vNode[2].nName = static_cast<uint32_t>(image.strArea.size());
    CBrowsedDic dic(image);
    EXPECT_THAT(Found(dic, KU), ElementsAre(0, 2));
}

TEST(CitySearchByTheEnd, PassesOverANameThatTheStringAreaCutsOff) {
    CTestImage image = TokyoWith({"a" KU, "b" KU});
    image.strArea.resize(image.vNode[2].nName + 3);
    CBrowsedDic dic(image);
    EXPECT_THAT(Found(dic, KU), ElementsAre(0));
}

// The difference is counted in 16 bits: of a name 65,536 bytes longer nothing is left out, and it is not the same.
TEST(CitySearchByTheEnd, FindsALongerNameByItsEndUpTo65535BytesMore) {
    for (size_t nMore : {65534u, 65535u}) {
        std::string const strMore(nMore, 'x');
        EXPECT_THAT(FoundIn({"a" KU}, strMore + "a" KU), ElementsAre(0)) << nMore;
        EXPECT_THAT(FoundIn({strMore + "a" KU}, "a" KU), ElementsAre(0)) << nMore;
    }
}

TEST(CitySearchByTheEnd, MissesALongerNameFrom65536BytesMoreOn) {
    for (size_t nMore : {65536u, 65537u, 65538u, 131072u}) {
        std::string const strMore(nMore, 'x');
        EXPECT_THAT(FoundIn({"a" KU}, strMore + "a" KU), IsEmpty()) << nMore;
        EXPECT_THAT(FoundIn({strMore + "a" KU}, "a" KU), IsEmpty()) << nMore;
    }
}

} // namespace
