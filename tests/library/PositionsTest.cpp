// GetAtPref and GetAtCity: the names at the positions of a refinement tree and of the dictionary's lists.
#include "tests/library/ListsWorld.h"

#include <gmock/gmock.h>

#include <climits>
#include <ostream>

namespace {

using testing::ElementsAre;

// What a lookup told: its result, the name, and for cities the length of the first part of the name.
struct CTold {
    bool bFound;
    std::string strName;
    int nType;
    bool operator==(CTold const& other) const {
        return bFound == other.bFound && strName == other.strName && nType == other.nType;
    }
};
void PrintTo(CTold const& told, std::ostream* pOut) {
    *pOut << (told.bFound ? "found '" : "not found '") << told.strName << "' type " << told.nType;
}

constexpr int UNTOUCHED = -77; // a type that nobody wrote

CTold PrefAt(CAddrDic& dic, int nIndex, size_t nSize = 60) {
    CTextField const name(nSize);
    bool const bFound = dic.GetAtPref(nIndex, name.Data(), name.Size());
    return {bFound, name.Text(), UNTOUCHED};
}

CTold CityAt(CAddrDic& dic, int nIndex, size_t nSize = 60) {
    CTextField const name(nSize);
    CGuardedBytes const type(&UNTOUCHED, sizeof UNTOUCHED, CGuardedBytes::Writable);
    int* const pnType = static_cast<int*>(static_cast<void*>(type.Data()));
    bool const bFound = dic.GetAtCity(nIndex, name.Data(), name.Size(), pnType);
    return {bFound, name.Text(), *pnType};
}

CTold Pref(std::string const& str) {
    return {true, str, UNTOUCHED};
}
CTold City(std::string const& str, int nType = 0) {
    return {true, str, nType};
}
CTold const NO_NAME = {false, "", UNTOUCHED};

// 東京都 (府中市, 港区) and 北海道 (札幌市), in this order.
struct CTreeDic : CListsDic {
    explicit CTreeDic(CListsWorld const& world = CListsWorld()) : CListsDic(world) {
        Tree() = {Entry(world.nTokyo, {Entry(world.nFuchu), Entry(world.nMinato)}),
                  Entry(world.nHokkaido, {Entry(world.nSapporo)})};
    }
};

// The lists of the dictionary, with the cities of 東京都.
struct CSelectedDic : CListsDic {
    CSelectedDic() : CListsDic(CListsWorld()) { EXPECT_EQ(Count(*this, TOKYO, 0, 0), Found(3, 3, 2)); }
};

// A dictionary with one prefecture and one city of this name, in the lists and in the tree.
struct CNamedDic : CListsDic {
    explicit CNamedDic(std::string const& strName, bool bTree) : CListsDic(Image(strName)) {
        EXPECT_EQ(Count(*this, 0, 0, 0), Found(1, 1, 0));
        if (bTree) Tree() = {Entry(0, {Entry(1)})};
    }

    static CTestImage Image(std::string const& strName) {
        CTestImage image;
        image.AddNode(LEVEL_PREF, ADDR_NONE, strName);
        image.AddNode(LEVEL_CITY, 0, strName);
        image.Complete();
        return image;
    }
};

// --- names ---------------------------------------------------------------------------------------------------------

TEST(Positions, OfPrefecturesHaveTheirNamesWithoutTheirCodes) {
    CSelectedDic dic;
    EXPECT_EQ(PrefAt(dic, HOKKAIDO), Pref("北海道"));
    EXPECT_EQ(PrefAt(dic, TOKYO), Pref("東京都"));
    EXPECT_EQ(PrefAt(dic, HIROSHIMA), Pref("広島県"));
}

TEST(Positions, OfAllPrefecturesAreTheirNumbers) {
    CListsDic dic(CountryWith(std::vector<std::vector<int>>(47, {1})));
    ASSERT_EQ(Count(dic, 0, 0, 0), Found(47, 1, 1));
    EXPECT_EQ(PrefAt(dic, 12), Pref("東京都"));
    for (int n = 0; n < 47; ++n) EXPECT_EQ(PrefAt(dic, n), Pref(pref_order[n] + PREF_ORDER_NAME));
}

TEST(Positions, OfCitiesHaveTheirNamesWithoutTheLettersOfTheirKinds) {
    CSelectedDic dic;
    EXPECT_EQ(CityAt(dic, CHIYODAKU), City("千代田区"));
    EXPECT_EQ(CityAt(dic, FUCHU), City("府中市"));
    EXPECT_EQ(CityAt(dic, MINATO), City("港区"));
}

TEST(Positions, OfATreeHaveTheNamesOfItsNodes) {
    CTreeDic dic;
    EXPECT_EQ(PrefAt(dic, 0), Pref("東京都"));
    EXPECT_EQ(PrefAt(dic, 1), Pref("北海道"));
    EXPECT_EQ(CityAt(dic, 0), City("府中市"));
    EXPECT_EQ(CityAt(dic, 1), City("港区"));
    Count(dic, 1, 0, 0);
    EXPECT_EQ(CityAt(dic, 0), City("札幌市")) << "of the selected prefecture";
}

TEST(Positions, OfARefinementHaveItsNames) {
    CListsDic dic((CListsWorld()));
    char szCode[] = "1";
    ASSERT_EQ(dic.MakeRefineTree(szCode, ""), 1);
    ASSERT_EQ(Count(dic, 0, 0, 0), Found(1, 3, 2));
    EXPECT_EQ(PrefAt(dic, 0), Pref("東京都"));
    EXPECT_EQ(CityAt(dic, CHIYODAKU), City("千代田区"));
    EXPECT_EQ(CityAt(dic, FUCHU), City("府中市"));
    EXPECT_EQ(CityAt(dic, MINATO), City("港区"));
    EXPECT_EQ(CityAt(dic, 3), City(""));
}

// The prefix is counted in bytes, whatever stands there.
TEST(Positions, OfPrefecturesWithoutACodeLackTheFirstTwoBytesOfTheirNames) {
    for (std::string const strName : {"江戸", "abcd", "abc"}) {
        CNamedDic dic(strName, false);
        EXPECT_EQ(PrefAt(dic, 0), Pref(strName.substr(2))) << strName;
    }
    for (std::string const strName : {"ab", "a", ""}) {
        CNamedDic dic(strName, false);
        EXPECT_EQ(PrefAt(dic, 0), Pref("")) << strName;
    }
    CNamedDic tree("江戸", true);
    EXPECT_EQ(PrefAt(tree, 0), Pref("江戸")) << "in a tree they have no prefix";
}

TEST(Positions, HaveTheShortestNamesOfCities) {
    for (bool bTree : {false, true})
        for (std::string const strName : {"abc", "ab", "a", ""}) {
            CNamedDic dic(strName, bTree);
            EXPECT_EQ(CityAt(dic, 0), City(strName)) << strName;
        }
}

TEST(Positions, HaveWhatADisplayNameWithoutItsNulHolds) {
    CSelectedDic dic;
    std::memset(dic.Prefs()[2].szName, 'p', 128);
    std::memset(dic.Cities()[2].szName, 'c', 128);
    for (size_t nSize : {126u, 127u, 128u, 500u}) {
        EXPECT_EQ(PrefAt(dic, 2, nSize), Pref(std::string(126, 'p')));
        EXPECT_EQ(CityAt(dic, 2, nSize), City(std::string(nSize == 126 ? 126 : 127, 'c')));
    }
}

TEST(Positions, OfATreeHaveNamesOfAnyLength) {
    std::string const strName(500, 'a');
    CNamedDic dic(strName, true);
    EXPECT_EQ(PrefAt(dic, 0, 501), Pref(strName));
    EXPECT_EQ(CityAt(dic, 0, 501), City(strName));
    EXPECT_EQ(CityAt(dic, 0, 499), City(strName.substr(0, 499)));
}

// --- the caller's field --------------------------------------------------------------------------------------------

// Whatever its size: the name as far as it fits, zeros behind it, nothing behind the field or in front of it.
TEST(Positions, FillTheFieldAndNoByteMore) {
    for (CGuardedBytes::EPlace nPlace : {CGuardedBytes::EndOfPage, CGuardedBytes::StartOfPage})
        for (bool bTree : {false, true}) {
            CNamedDic dic("東京都", bTree);
            for (size_t nSize : {0u, 1u, 2u, 8u, 9u, 10u, 59u, 60u, 61u, 4096u}) {
                CTextField const name(nSize, nPlace);
                EXPECT_TRUE(dic.GetAtPref(0, name.Data(), name.Size()));
                EXPECT_EQ(name.Text(), std::string("東京都").substr(0, nSize));
                name.Fill();
                int nType = UNTOUCHED;
                EXPECT_TRUE(dic.GetAtCity(0, name.Data(), name.Size(), &nType));
                EXPECT_EQ(name.Text(), std::string("東京都").substr(0, nSize));
            }
        }
}

TEST(Positions, WriteNothingBehindAFieldInsideItsPage) {
    for (bool bTree : {false, true})
        for (int nSize : {0, 1, 9, 20}) {
            CNamedDic dic("東京都", bTree);
            CTextField const bytes(30);
            int nType = UNTOUCHED;
            dic.GetAtPref(0, bytes.Data(), nSize);
            dic.GetAtCity(0, bytes.Data(), nSize, &nType);
            auto const nBehind = static_cast<size_t>(30 - nSize);
            EXPECT_EQ(std::string(bytes.Data() + nSize, nBehind), std::string(nBehind, 'x')) << nSize;
        }
}

TEST(Positions, WriteNothingIntoAFieldOfANegativeSize) {
    for (bool bTree : {false, true}) {
        CNamedDic dic("東京都", bTree);
        for (int nSize : {-1, -60, INT_MIN}) {
            CTextField const name(60);
            int nType = UNTOUCHED;
            EXPECT_TRUE(dic.GetAtPref(0, name.Data(), nSize));
            EXPECT_TRUE(dic.GetAtCity(0, name.Data(), nSize, &nType));
            EXPECT_TRUE(name.IsUntouched());
            EXPECT_EQ(nType, 0) << "nothing was copied";
        }
    }
}

TEST(Positions, WithoutAFieldAreNotFound) {
    CTreeDic tree;
    CSelectedDic lists;
    for (CListsDic* const pDic : {static_cast<CListsDic*>(&tree), static_cast<CListsDic*>(&lists)}) {
        int nType = UNTOUCHED;
        EXPECT_FALSE(pDic->GetAtPref(0, nullptr, 60));
        EXPECT_FALSE(pDic->GetAtCity(0, nullptr, 60, &nType));
        EXPECT_EQ(nType, UNTOUCHED);
    }
}

TEST(Positions, HaveNamesForThoseWhoDoNotAskForTheType) {
    CTreeDic tree;
    CSelectedDic lists;
    CTextField const name(60);
    tree.GetAtCity(0, name.Data(), name.Size(), nullptr);
    EXPECT_EQ(name.Text(), "府中市");
    lists.GetAtCity(0, name.Data(), name.Size(), nullptr);
    EXPECT_EQ(name.Text(), "千代田区");
}

// --- types ---------------------------------------------------------------------------------------------------------

TEST(Positions, TellWhereTheFirstPartOfACitysNameEnds) {
    for (bool bTree : {false, true}) {
        struct {
            std::string strName;
            int nType;
        } const aCase[] = {{"aa" SHI "cc" KU, 4},     {"aabb" GUN "cc" CHO, 6}, {"aa" SHIMA "cc" MURA, 4},
                           {"aa" AGATA "cc" MURA, 4}, {"aabbcc" KU, 0},         {"aabbcc" SHI, 0},
                           {"京都市北区", 0}};
        for (auto const& c : aCase) {
            CNamedDic dic(c.strName, bTree);
            EXPECT_EQ(CityAt(dic, 0), City(c.strName, c.nType)) << bTree;
        }
    }
}

// The type is that of the copy: without its ending the name has no parts.
TEST(Positions, TellItOfTheNameAsItWasCopied) {
    std::string const strName = "aa" SHI "cc" KU;
    for (bool bTree : {false, true}) {
        CNamedDic dic(strName, bTree);
        for (size_t nSize : {9u, 8u})
            EXPECT_EQ(CityAt(dic, 0, nSize), City(strName, 4)) << "with its NUL and without";
        for (size_t nSize : {7u, 6u, 3u, 2u, 1u, 0u})
            EXPECT_EQ(CityAt(dic, 0, nSize), City(strName.substr(0, nSize), 0)) << nSize;
    }
    std::string const strLonger = strName + "dd" KU;
    CNamedDic dic(strLonger, true);
    EXPECT_EQ(CityAt(dic, 0, 8), City(strName, 4));
    EXPECT_EQ(CityAt(dic, 0, 12), City(strLonger, 4));
}

TEST(Positions, TellTheLengthAsAnUnsignedNumberOf16Bits) {
    std::string const strEnd = SHI "cc" KU;
    struct {
        size_t nFront;
        int nType;
    } const aCase[] = {{40000, 40002}, {65532, 65534}, {65534, 0}, {65536, 2}, {70000, 4466}};
    for (auto const& c : aCase) {
        std::string const strName = std::string(c.nFront, 'a') + strEnd;
        CTestImage const image = CNamedDic::Image(strName);
        CListsDic dic(image);
        dic.Tree() = {dic.Entry(0, {dic.Entry(1)})};
        EXPECT_EQ(CityAt(dic, 0, strName.size()), City(strName, c.nType)) << c.nFront;
    }
}

// --- positions that are not there ----------------------------------------------------------------------------------

TEST(Positions, OutsideTheListsAreNotFound) {
    CSelectedDic dic;
    for (int nIndex : {3, 4, 32767, 65536, INT_MAX, -1, -32768, INT_MIN}) {
        EXPECT_EQ(PrefAt(dic, nIndex), NO_NAME) << nIndex;
        EXPECT_EQ(CityAt(dic, nIndex), NO_NAME) << nIndex;
    }
}

TEST(Positions, OutsideATreeAreNotFoundOrCitiesWithoutAName) {
    CTreeDic dic;
    for (int nIndex : {2, 3, 32767, 65536, INT_MAX, -1, -32768, INT_MIN}) {
        EXPECT_EQ(PrefAt(dic, nIndex), NO_NAME) << nIndex;
        EXPECT_EQ(CityAt(dic, nIndex), City("")) << "with the type of no name: " << nIndex;
    }
    dic.Tree()[0].vChild.clear();
    EXPECT_EQ(CityAt(dic, 0), City(""));
}

TEST(Positions, BeforeTheFirstCountAreNotFound) {
    CListsDic dic((CListsWorld()));
    CAddrDic unbound;
    for (int nIndex : {-1, 0, 1}) {
        EXPECT_EQ(PrefAt(dic, nIndex), NO_NAME);
        EXPECT_EQ(CityAt(dic, nIndex), NO_NAME);
        EXPECT_EQ(PrefAt(unbound, nIndex), NO_NAME);
        EXPECT_EQ(CityAt(unbound, nIndex), NO_NAME);
    }
}

TEST(Positions, OfASelectionOutsideTheTreeAreCitiesWithoutAName) {
    CTreeDic dic;
    for (int nPref : {2, 3, 65536, INT_MAX, -1, INT_MIN}) {
        dic.Select(nPref, 0, 0);
        EXPECT_EQ(CityAt(dic, 0), City("")) << nPref;
        EXPECT_EQ(PrefAt(dic, 1), Pref("北海道")) << "prefectures do not depend on it";
    }
    Count(dic, 1, 7, 8);
    EXPECT_EQ(CityAt(dic, 0), City("札幌市")) << "nor do cities on the city";
}

TEST(Positions, OfTheListsDoNotDependOnTheSelection) {
    CSelectedDic dic;
    for (int n : {-1, 7, INT_MAX, INT_MIN}) {
        dic.Select(n, n, n);
        EXPECT_EQ(PrefAt(dic, HOKKAIDO), Pref("北海道")) << n;
        EXPECT_EQ(CityAt(dic, FUCHU), City("府中市")) << n;
    }
}

TEST(Positions, GoUpToTheEndOfALongTree) {
    CTreeDic dic;
    uint32_t const nNode = Numbers(dic, dic.Tree()[1].vChild)[0];
    dic.Tree().resize(65537);
    dic.Tree().back() = dic.Entry(nNode);
    dic.Tree()[0].vChild.resize(65537);
    dic.Tree()[0].vChild.back() = dic.Entry(nNode);
    EXPECT_EQ(PrefAt(dic, 65536), Pref("札幌市"));
    EXPECT_EQ(CityAt(dic, 65536), City("札幌市"));
    EXPECT_EQ(PrefAt(dic, 65537), NO_NAME);
    EXPECT_EQ(CityAt(dic, 65537), City(""));
}

// --- entries without names -----------------------------------------------------------------------------------------

TEST(Positions, OfATreesEntriesWithoutANodeHaveNoName) {
    CTreeDic dic;
    dic.Tree()[0].vChild[0].pNode = nullptr;
    dic.Tree()[1].pNode = nullptr;
    EXPECT_EQ(CityAt(dic, 0), City(""));
    EXPECT_EQ(CityAt(dic, 1), City("港区"));
    EXPECT_EQ(PrefAt(dic, 1), Pref(""));
}

TEST(Positions, OfTheListsDoNotNeedTheNodes) {
    CSelectedDic dic;
    dic.Prefs()[0].pNode = dic.Cities()[0].pNode = nullptr;
    EXPECT_EQ(PrefAt(dic, 0), Pref("北海道"));
    EXPECT_EQ(CityAt(dic, 0), City("千代田区"));
}

TEST(Positions, OfNamesOutsideTheStringAreaHaveNone) {
    CListsWorld world;
    auto const nEnd = static_cast<uint32_t>(world.strArea.size());
    for (uint32_t nName : {nEnd, nEnd + 1, 0x80000000u, 0xFFFFFFFFu}) {
        world.vNode[world.nTokyo].nName = world.vNode[world.nFuchu].nName = nName;
        CTreeDic dic(world);
        EXPECT_EQ(PrefAt(dic, 0), Pref("")) << nName;
        EXPECT_EQ(CityAt(dic, 0), City("")) << nName;
    }
}

// The last text of the area has lost its NUL, and a page that cannot be touched stands behind it.
TEST(Positions, OfANameThatDoesNotEndInTheStringAreaStayInsideTheImage) {
    CListsWorld world;
    world.vNode[world.nTokyo].nName = world.vNode[world.nFuchu].nName = world.AddText("abcd");
    world.strArea.resize(world.strArea.size() - 2);
    CTreeDic dic(world);
    EXPECT_THAT(PrefAt(dic, 0).strName, testing::AnyOf("", "abcd"));
    EXPECT_THAT(CityAt(dic, 0).strName, testing::AnyOf("", "abcd"));
}

TEST(Positions, LeaveTheListsAndTheSelectionAlone) {
    CTreeDic tree;
    CSelectedDic lists;
    Count(tree, 1, 0, 5);
    for (int nIndex : {-1, 0, 1, 2, 3}) {
        PrefAt(tree, nIndex), CityAt(tree, nIndex);
        PrefAt(lists, nIndex), CityAt(lists, nIndex);
    }
    EXPECT_THAT(tree.Selection(), ElementsAre(1, 0, 5));
    EXPECT_THAT(lists.Selection(), ElementsAre(TOKYO, 0, 0));
    EXPECT_THAT(Names(lists.Prefs()), ElementsAre("00北海道", "12東京都", "33広島県"));
    EXPECT_THAT(Names(lists.Cities()), ElementsAre("h千代田区", "h府中市", "h港区"));
    EXPECT_THAT(Names(lists.Towns()), ElementsAre("丸の内", "千代田"));
    EXPECT_THAT(tree.Tree(), testing::SizeIs(2));
}

} // namespace
