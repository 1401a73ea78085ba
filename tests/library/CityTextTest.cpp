// SearchCity2: what an address text that begins with a city names.
#include "tests/library/TreeWorld.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

CNumbers Named(CTreeDic& dic, std::string const& strAddr) {
    CNodeList vNode = {nullptr, dic.Node(0)};
    EXPECT_EQ(dic.SearchCity2(CGuardedBytes(strAddr, CGuardedBytes::ReadOnly).Text(), vNode), 0) << strAddr;
    return dic.Numbers(vNode);
}
CNumbers NamedIn(CTestImage const& image, std::string const& strAddr) {
    CTreeDic dic(image);
    return Named(dic, strAddr);
}

// 東京都 with cities, node 1 and on, and towns of the last of them, each with an entry; the cities have one, too.
CTestImage CityWorld(std::vector<std::string> const& vCity, std::vector<std::string> const& vTown = {}) {
    CTestImage image = TokyoWith(vCity);
    auto const nLast = static_cast<uint32_t>(vCity.size());
    for (std::string const& str : vTown) image.AddNode(LEVEL_TOWN, nLast, str);
    for (uint32_t n = 1; n < image.vNode.size(); ++n) image.AddInfo(n, "1000000");
    image.Complete();
    return image;
}
// One city, node 1, and its towns.
CNumbers NamedInCity(std::string const& strCity, std::vector<std::string> const& vTown, std::string const& strAddr) {
    return NamedIn(CityWorld({strCity}, vTown), strAddr);
}

// --- whole names ---------------------------------------------------------------------------------------------------

TEST(CityText, OfACityAloneIsAllThatLiesInIt) {
    CTextWorld const world;
    EXPECT_THAT(NamedIn(world, "港区"), ElementsAre(world.nShiba, world.nArea, world.nMinatoShokai, world.nBuilding));
    EXPECT_THAT(NamedIn(world, "千代田区"), ElementsAre(world.nChiyodaKu, world.nMarunouchi, world.nTest,
                                                        world.nTestShoji, world.nChiyoda, world.nTestChiyoda));
}

TEST(CityText, OfANameThatCitiesShareIsThatOfAllInTheOrderOfTheDictionary) {
    CTextWorld world;
    EXPECT_THAT(NamedIn(world, "府中市"), ElementsAre(world.nMiyanishi, world.nMotomachi));
    std::reverse(world.vCityIndex.begin(), world.vCityIndex.end());
    EXPECT_THAT(NamedIn(world, "府中市"), ElementsAre(world.nMiyanishi, world.nMotomachi)) << "not of the index";
}

TEST(CityText, InUtf8TakesCityNamesAsAWhole) {
    struct {
        char const *pszCity, *pszFront, *pszRest;
    } const vName[] = {{"札幌市中央区", "札幌市", "中央区"},     {"西多摩郡奥多摩町", "西多摩郡", "奥多摩町"},
                       {"西多摩郡檜原村", "西多摩郡", "檜原村"}, {"八丈島八丈町", "八丈島", "八丈町"},
                       {"三宅島三宅村", "三宅島", "三宅村"},     {"八丈支庁青ヶ島村", "八丈支庁", "青ヶ島村"}};
    for (auto const& name : vName) {
        EXPECT_THAT(NamedInCity(name.pszCity, {"town"}, name.pszCity), ElementsAre(1, 2));
        EXPECT_THAT(NamedInCity(name.pszCity, {"town"}, std::string(name.pszCity) + "town"), ElementsAre(2));
        EXPECT_THAT(NamedInCity(name.pszCity, {"town"}, name.pszFront), IsEmpty()) << name.pszFront;
        EXPECT_THAT(NamedInCity(name.pszCity, {"town"}, name.pszRest), IsEmpty()) << name.pszRest;
    }
}

TEST(CityText, TakesShortCityNamesAsAWhole) {
    for (std::string const strCity : {"a", "ab", SHI, KU, "町", "x" KU}) {
        EXPECT_THAT(NamedInCity(strCity, {"t"}, strCity), ElementsAre(1, 2));
        EXPECT_THAT(NamedInCity(strCity, {"u", "t"}, strCity + "t"), ElementsAre(3));
        EXPECT_THAT(NamedInCity(strCity, {"t"}, strCity.substr(0, strCity.size() - 1)), IsEmpty());
    }
}

TEST(CityText, ThatBeginsWithNoCityNamesNothing) {
    CTreeDic dic((CTextWorld()));
    for (char const* psz : {"", "x", "府中", "東京都", "東京都港区", "丸の内", "\xE6\xB8", " 港区"})
        EXPECT_THAT(Named(dic, psz), IsEmpty()) << psz;
}

TEST(CityText, NeverBeginsWithACityThatHasNoName) {
    EXPECT_THAT(NamedInCity("", {"t"}, "t"), IsEmpty());
    EXPECT_THAT(NamedInCity("", {"t"}, ""), IsEmpty());
    for (uint32_t nBehind : {0u, 1u, 0x7FFFFFFFu}) {
        CTestImage image = CityWorld({"a", "b"}, {"t"});
        image.vNode[1].nName = static_cast<uint32_t>(image.strArea.size()) + nBehind;
        EXPECT_THAT(NamedIn(image, "a"), IsEmpty());
        EXPECT_THAT(NamedIn(image, "b"), ElementsAre(2, 3)) << "the walk goes on";
    }
}

// --- names in two parts, in the manner of a double-byte encoding ---------------------------------------------------

struct CTwoParts {
    std::string strMarker, strEnd;
};
CTwoParts const TWO_PARTS[] = {{SHI, KU}, {GUN, CHO}, {SHIMA, CHO}, {GUN, MURA}, {SHIMA, MURA}, {AGATA, MURA}};

TEST(CityText, MayGiveTheLeadingPartAlone) {
    for (auto const& [strMarker, strEnd] : TWO_PARTS) {
        std::string const strFront = "aa" + strMarker, strCity = strFront + "bbcc" + strEnd;
        EXPECT_THAT(NamedInCity(strCity, {"t"}, strFront), ElementsAre(1, 2));
        EXPECT_THAT(NamedInCity(strCity, {"u", "t"}, strFront + "t"), ElementsAre(3));
        EXPECT_THAT(NamedInCity(strCity, {"u", "t"}, strFront + "x"), ElementsAre(1, 2, 3)) << "no town: the city";
    }
}

TEST(CityText, MayGiveTheRestOfTheNameAloneWhichThenIsCoveredWhole) {
    for (auto const& [strMarker, strEnd] : TWO_PARTS) {
        std::string const strRest = "bbcc" + strEnd, strCity = "aa" + strMarker + strRest;
        EXPECT_THAT(NamedInCity(strCity, {"t"}, strRest), ElementsAre(1, 2));
        EXPECT_THAT(NamedInCity(strCity, {strEnd + "t", "t"}, strRest + "t"), ElementsAre(3))
            << "six bytes, not the four of the leading part";
        std::string const strLong = "aabbccdd" + strMarker + "bb" + strEnd;
        EXPECT_THAT(NamedInCity(strLong, {"t"}, "bb" + strEnd + "t"), ElementsAre(2))
            << "four bytes, not the ten of the leading part";
    }
}

TEST(CityText, OfAWholeNameInTwoPartsIsCoveredByTheLeadingPartOnly) {
    for (auto const& [strMarker, strEnd] : TWO_PARTS) {
        std::string const strRest = "bbcc" + strEnd, strCity = "aa" + strMarker + strRest;
        EXPECT_THAT(NamedInCity(strCity, {"t"}, strCity + "t"), ElementsAre(1, 2)) << "no town begins the rest";
        EXPECT_THAT(NamedInCity(strCity, {"t", strRest}, strCity + "t"), ElementsAre(3)) << "but this one does";
    }
}

TEST(CityText, ThatHasNeitherPartDoesNotBeginWithTheCity) {
    for (auto const& [strMarker, strEnd] : TWO_PARTS) {
        std::string const strCity = "aa" + strMarker + "bbcc" + strEnd;
        for (std::string const& str : {"aa" + strMarker.substr(0, 1), std::string("aa"), "bbcc" + strEnd.substr(0, 1),
                                       "cc" + strEnd, strMarker + "bbcc" + strEnd, strEnd, std::string()})
            EXPECT_THAT(NamedInCity(strCity, {"t"}, str), IsEmpty()) << str;
    }
}

TEST(CityText, LooksOnlyForTheMarkersOfTheNamesEnding) {
    CTwoParts const vOther[] = {{GUN, KU},   {SHIMA, KU}, {AGATA, KU}, {SHI, CHO}, {AGATA, CHO},
                                {SHI, MURA}, {SHI, SHI},  {GUN, SHI},  {SHI, GUN}, {GUN, "xx"}};
    for (auto const& [strMarker, strEnd] : vOther) {
        std::string const strFront = "aa" + strMarker, strRest = "bbcc" + strEnd, strCity = strFront + strRest;
        EXPECT_THAT(NamedInCity(strCity, {"t"}, strCity + "t"), ElementsAre(2)) << "as a whole";
        EXPECT_THAT(NamedInCity(strCity, {"t"}, strFront), IsEmpty());
        EXPECT_THAT(NamedInCity(strCity, {"t"}, strRest), IsEmpty());
    }
}

// Marker positions are counted from the end in steps of two, from the last six bytes on and down to position 2.
TEST(CityText, TakesTheMarkerNearestToTheEnd) {
    std::string const strCity = "aa" GUN "bb" AGATA "cc" MURA;
    EXPECT_THAT(NamedInCity(strCity, {"t"}, "aa" GUN "bb" AGATA "t"), ElementsAre(2));
    EXPECT_THAT(NamedInCity(strCity, {"t"}, "cc" MURA "t"), ElementsAre(2));
    EXPECT_THAT(NamedInCity(strCity, {"t"}, "aa" GUN "t"), IsEmpty());
    EXPECT_THAT(NamedInCity(strCity, {"t"}, "bb" AGATA "cc" MURA "t"), IsEmpty());
}

TEST(CityText, TakesNoMarkerAtTheStartRightBeforeTheEndOrBetweenTheSteps) {
    for (std::string const strCity : {SHI "bbcc" KU, "aabb" SHI KU, "a" SHI "bcc" KU, "aaa" SHI "bcc" KU}) {
        EXPECT_THAT(NamedInCity(strCity, {"t"}, strCity + "t"), ElementsAre(2)) << "as a whole";
        for (size_t n = 1; n < strCity.size(); ++n) {
            EXPECT_THAT(NamedInCity(strCity, {"t"}, strCity.substr(n)), IsEmpty()) << n;
            EXPECT_THAT(NamedInCity(strCity, {"t"}, strCity.substr(0, n)), IsEmpty()) << n;
        }
    }
    EXPECT_THAT(NamedInCity("aa" SHI "cc" KU, {"t"}, "cc" KU), ElementsAre(1, 2)) << "the first position of all";
}

// The leading part has 65,536 bytes and more: no 16-bit length of it will do.
TEST(CityText, OfACityWithALeadingPartOfMoreThan65535BytesIsCoveredAsAnyOther) {
    for (size_t nFront : {65534u, 65536u, 65538u, 70000u}) {
        std::string const strFront = std::string(nFront - 2, 'a') + SHI, strRest = "bbcc" KU;
        EXPECT_THAT(NamedInCity(strFront + strRest, {"t"}, strFront + "t"), ElementsAre(2)) << nFront;
        EXPECT_THAT(NamedInCity(strFront + strRest, {"t"}, strRest + "t"), ElementsAre(2)) << nFront;
        EXPECT_THAT(NamedInCity(strFront + strRest, {"t"}, strFront.substr(0, 4)), IsEmpty()) << nFront;
    }
}

// --- what follows the city -----------------------------------------------------------------------------------------

TEST(CityText, NamesTheFirstChildThatBeginsTheRest) {
    CTextWorld const world;
    EXPECT_THAT(NamedIn(world, "港区芝"),
                ElementsAre(world.nShiba, world.nArea, world.nMinatoShokai, world.nBuilding));
    EXPECT_THAT(NamedIn(world, "千代田区千代田１番"), ElementsAre(world.nChiyoda, world.nTestChiyoda));
    EXPECT_THAT(NamedInCity("city", {"x", "a", "ab", "a"}, "cityab"), ElementsAre(3)) << "the first, not the longest";
    EXPECT_THAT(NamedInCity("city", {"x", "abc", "ab", "a"}, "cityab"), ElementsAre(4));
}

TEST(CityText, NamesANamelessChildWhateverFollows) {
    EXPECT_THAT(NamedInCity("city", {"x", "", "t"}, "cityt"), ElementsAre(3));
    EXPECT_THAT(NamedInCity("city", {"x", "", "t"}, "cityx"), ElementsAre(2)) << "an earlier one comes first";
}

TEST(CityText, DoesNotNameAChildThatHasNoReadableName) {
    for (uint32_t nBehind : {0u, 1u, 0x7FFFFFFFu}) {
        CTestImage image = CityWorld({"city"}, {"x", "t"});
        image.vNode[2].nName = static_cast<uint32_t>(image.strArea.size()) + nBehind;
        EXPECT_THAT(NamedIn(image, "cityt"), ElementsAre(3)) << nBehind;
    }
}

TEST(CityText, DoesNotNameAChildOfAChild) {
    CTextWorld const world;
    EXPECT_THAT(NamedIn(world, "港区１丁目"),
                ElementsAre(world.nShiba, world.nArea, world.nMinatoShokai, world.nBuilding))
        << "no town: the city";
}

TEST(CityText, NamesTheWholeCitiesWhenNoChildBeginsTheRest) {
    CTextWorld const world;
    EXPECT_THAT(NamedIn(world, "府中市x"), ElementsAre(world.nMiyanishi, world.nMotomachi));
    EXPECT_THAT(NamedIn(CityWorld({"a", "ab", "ab"}), "abc"), ElementsAre(1, 2, 3)) << "without children";
}

TEST(CityText, NamesNoWholeCitiesWhenAnotherIsNamedFurther) {
    CTextWorld const world;
    EXPECT_THAT(NamedIn(world, "府中市元町"), ElementsAre(world.nMotomachi));
    EXPECT_THAT(NamedIn(world, "府中市宮西町1"), ElementsAre(world.nMiyanishi));
    EXPECT_THAT(NamedIn(CityWorld({"a", "ab"}), "ab"), ElementsAre(2)) << "the other city's whole name";
    EXPECT_THAT(NamedIn(CityWorld({"ab", "a"}), "ab"), ElementsAre(1));
}

TEST(CityText, NamesTheWholeCitiesWhenWhatIsNamedFurtherHasNothingOfToday) {
    CTestImage image = CityWorld({"a", "ab"}, {"t"});
    image.vInfo[image.vNode[2].nInfo].nNode |= ADDRINFO_SUPERSEDED;
    EXPECT_THAT(NamedIn(image, "ab"), ElementsAre(3)) << "the town";
    image.vInfo[image.vNode[3].nInfo].nNode |= ADDRINFO_SUPERSEDED;
    EXPECT_THAT(NamedIn(image, "ab"), ElementsAre(1));
    EXPECT_THAT(NamedIn(image, "abt"), ElementsAre(1));
    EXPECT_THAT(NamedIn(image, "abx"), ElementsAre(1));
}

// --- the run of cities, and the list -------------------------------------------------------------------------------

TEST(CityText, IsLookedForInTheRunOfCitiesOnly) {
    CTestImage const image = CityWorld({"a", "b", "c"});
    CTreeDic dic(WithoutLastEntry(image, HDR_CITY_COUNT));
    EXPECT_THAT(Named(dic, "b"), ElementsAre(2));
    EXPECT_THAT(Named(dic, "c"), IsEmpty());
    CTestImage later = image;
    later.nFirstCity = 2; // three from there on: cut off at the end of the nodes
    EXPECT_THAT(NamedIn(later, "a"), IsEmpty());
    EXPECT_THAT(NamedIn(later, "c"), ElementsAre(3));
}

TEST(CityText, WhoseRunOfCitiesIsNotThereNamesNothing) {
    for (uint32_t nFirst : {4u, 0x80000000u, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
        CTestImage image = CityWorld({"a", "b", "c"});
        image.nFirstCity = nFirst;
        image.vCityIndex.resize(10);
        EXPECT_THAT(NamedIn(image, "a"), IsEmpty()) << nFirst;
    }
    EXPECT_THAT(NamedIn(CTestImage(), "a"), IsEmpty());
}

TEST(CityText, EmptiesTheListEvenWithoutATextOrAnImage) {
    CTreeDic dic((CTextWorld()));
    CNodeList vNode = {dic.Node(0), nullptr};
    EXPECT_EQ(dic.SearchCity2(nullptr, vNode), 0);
    EXPECT_THAT(vNode, IsEmpty());
    CAddrDic unbound;
    for (char const* psz : {"", "港区", static_cast<char const*>(nullptr)}) {
        vNode = {dic.Node(0)};
        EXPECT_EQ(unbound.SearchCity2(psz, vNode), 0);
        EXPECT_THAT(vNode, IsEmpty());
    }
}

TEST(CityText, ChangesNothingButTheList) {
    CTreeDic dic((CTextWorld()));
    dic.Refine("105");
    dic.PrefList() = dic.CityList() = dic.TownList() = {dic.Node(0)};
    CTree const vExpected = dic.Tree();
    for (char const* psz : {"府中市", "府中市x", "x"}) Named(dic, psz);
    EXPECT_TRUE(IsSame(dic.Tree(), vExpected));
    for (CNodeList const* p : {&dic.PrefList(), &dic.CityList(), &dic.TownList()})
        EXPECT_EQ(*p, CNodeList{dic.Node(0)});
}

// --- damaged trees -------------------------------------------------------------------------------------------------

using DamagedCityText = TimedTest;

TEST_F(DamagedCityText, WithChildrenOutsideTheNodesNamesWhatIsThere) {
    for (uint32_t nCount : {3u, 0x80000000u, 0xFFFFFFFFu}) {
        CTestImage image = CityWorld({"city"}, {"s", "t"});
        image.vNode[1].nChildCount = nCount;
        EXPECT_THAT(NamedIn(image, "cityt"), ElementsAre(3));
        EXPECT_THAT(NamedIn(image, "cityx"), ElementsAre(1, 2, 3));
        for (uint32_t nFirst : {4u, 0x80000000u, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
            image.vNode[1].nFirstChild = nFirst;
            EXPECT_THAT(NamedIn(image, "cityt"), ElementsAre(1)) << nFirst;
        }
    }
}

TEST_F(DamagedCityText, WhereChildrenGoInACircleComesToAnEnd) {
    for (uint32_t nBack : {0u, 1u, 2u, 3u})
        for (uint32_t nCount : {1u, 3u, 0xFFFFFFFFu}) {
            CTestImage image = CityWorld({"a", "ab"}, {"s", "t"});
            for (uint32_t n = 1; n < image.vNode.size(); ++n) {
                image.vNode[n].nFirstChild = nBack;
                image.vNode[n].nChildCount = nCount;
            }
            for (char const* psz : {"a", "ab", "abs", "abx", "aba", "x"})
                EXPECT_LE(NamedIn(image, psz).size(), 3 * image.vNode.size());
        }
}

} // namespace
