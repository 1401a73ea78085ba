// GetAdrNum without a refinement tree: the lists of the whole dictionary, which it makes and keeps.
#include "tests/library/ListsWorld.h"

#include <gmock/gmock.h>

#include <climits>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// The display name of the towns' city, as CountryWith numbers them: "p.c".
std::string CityOfTowns(CListsDic& dic) {
    std::string const strTown = dic.Towns().empty() ? "" : dic.Towns()[0].szName;
    return strTown.substr(0, strTown.rfind('.'));
}

// --- the lists -----------------------------------------------------------------------------------------------------

TEST(SelectionLists, BeginWithTheFirstCityOfTheFirstPrefecture) {
    CListsDic dic((CListsWorld()));
    EXPECT_EQ(Count(dic, 0, 0, 0), Found(3, 2, 1)) << "北海道, 小樽市, 花園";
    EXPECT_THAT(Names(dic.Towns()), ElementsAre("花園"));
}

TEST(SelectionLists, HaveThePrefecturesInTheOrderOfTheirCodes) {
    CListsWorld const world;
    CListsDic dic(world);
    Count(dic, 0, 0, 0);
    EXPECT_THAT(Names(dic.Prefs()), ElementsAre("00北海道", "12東京都", "33広島県"));
    EXPECT_THAT(Numbers(dic, dic.Prefs()), ElementsAre(world.nHokkaido, world.nTokyo, world.nHiroshima));
}

TEST(SelectionLists, HaveAll47Prefectures) {
    CListsDic dic(CountryWith(std::vector<std::vector<int>>(47, {1})));
    EXPECT_EQ(Count(dic, 46, 0, 0), Found(47, 1, 1));
    EXPECT_STREQ(dic.Prefs().at(12).szName, "12東京都");
    EXPECT_THAT(Names(dic.Towns()), ElementsAre("46.0.0"));
}

TEST(SelectionLists, HaveTheCitiesByDisplayName) {
    CListsWorld const world;
    CListsDic dic(world);
    EXPECT_EQ(Count(dic, TOKYO, 0, 0), Found(3, 3, 2));
    EXPECT_THAT(Names(dic.Cities()), ElementsAre("h千代田区", "h府中市", "h港区"));
    EXPECT_THAT(Numbers(dic, dic.Cities()), ElementsAre(world.nChiyodaKu, world.nFuchu, world.nMinato));
}

TEST(SelectionLists, HaveTheCitiesOfOneKindTogether) {
    CTestImage image;
    image.AddNode(LEVEL_PREF, ADDR_NONE, "東京都");
    for (char const* pszCity : {"aabbcc", "aa" AGATA "cc" MURA, "aa" GUN "cc" CHO, "aa" SHI "cc" KU, "aabbcc" KU,
                                "zzbbcc" SHI, "bbbbcc" SHI})
        image.AddNode(LEVEL_CITY, 0, pszCity);
    image.Complete();
    CListsDic dic(image);
    EXPECT_EQ(Count(dic, 0, 0, 0), Found(1, 7, 0));
    EXPECT_THAT(Numbers(dic, dic.Cities()), ElementsAre(7, 6, 5, 4, 3, 2, 1)) << "市, 区, 市..区, 郡..町, 庁..村";
}

TEST(SelectionLists, HaveAllAddressesOfTodayBelowTheChildrenOfTheCity) {
    CListsWorld const world;
    CListsDic dic(world);
    Count(dic, TOKYO, MINATO, 0);
    EXPECT_EQ(Count(dic, TOKYO, FUCHU, 0), Found(3, 3, 1));
    EXPECT_EQ(Count(dic, TOKYO, MINATO, 0), Found(3, 3, 5));
    EXPECT_THAT(Names(dic.Towns()), ElementsAre("旧芝旧商会", "芝海ビル", "芝海ビル３階", "芝港商会", "芝１丁目"))
        << "neither 港区 itself, 芝, which has no entry, nor 旧芝, which is superseded";
    EXPECT_THAT(Numbers(dic, dic.Towns()),
                ElementsAre(world.nOldShokai, world.nBuilding, world.nFloor, world.nMinatoShokai, world.nArea));
}

TEST(SelectionLists, HaveEntriesWithoutChildren) {
    CListsDic dic((CListsWorld()));
    Count(dic, TOKYO, MINATO, 0);
    for (CEntryList const& vEntry : {dic.Prefs(), dic.Cities(), dic.Towns()}) {
        EXPECT_THAT(vEntry, testing::Not(IsEmpty()));
        for (tagADDRPNT const& entry : vEntry) EXPECT_THAT(entry.vChild, IsEmpty()) << entry.szName;
    }
}

TEST(SelectionLists, HaveEachOfManyTownsOfOneName) {
    CTestImage image;
    image.AddNode(LEVEL_PREF, ADDR_NONE, "東京都");
    image.AddNode(LEVEL_CITY, 0, "千代田区");
    std::vector<uint32_t> vNumber;
    for (uint32_t n = 2; n < 102; ++n) {
        image.AddInfo(image.AddNode(LEVEL_TOWN, 1, n % 2 == 0 ? "b" : "a"), "1000000");
        vNumber.push_back(n);
    }
    image.Complete();
    CListsDic dic(image);
    EXPECT_EQ(Count(dic, 0, 0, 0), Found(1, 1, 100));
    EXPECT_TRUE(std::is_sorted(dic.Towns().begin(), dic.Towns().end()));
    EXPECT_THAT(Numbers(dic, dic.Towns()), testing::UnorderedElementsAreArray(vNumber));
}

// --- when they are made again --------------------------------------------------------------------------------------

TEST(SelectionLists, MakeThePrefecturesAgainInEveryCall) {
    CListsDic dic((CListsWorld()));
    int const anCall[][2] = {{TOKYO, 0}, {TOKYO, 0}, {TOKYO, 1}, {HOKKAIDO, 0}, {99, 0}, {HOKKAIDO, 99}};
    for (auto const& an : anCall) {
        dic.Prefs() = {dic.Entry(0)};
        Count(dic, an[0], an[1], 0);
        EXPECT_THAT(Names(dic.Prefs()), ElementsAre("00北海道", "12東京都", "33広島県")) << an[0] << ' ' << an[1];
    }
}

TEST(SelectionLists, HaveThePrefecturesOfTheDictionaryThatIsBound) {
    CTestImage other = CListsWorld();
    other.vNode[CListsWorld().nTokyo].nName = other.AddText("沖縄県", "x");
    CListsDic dic((CListsWorld())), second(other);
    EXPECT_EQ(Count(dic, 0, 0, 0), Found(3, 2, 1));
    dic.SetDictionary(second.GetDicPointer()); // with as many prefectures
    EXPECT_EQ(Count(dic, 0, 0, 0), Found(3, 2, 1));
    EXPECT_THAT(Names(dic.Prefs()), ElementsAre("00北海道", "33広島県", "46沖縄県"));
}

TEST(SelectionLists, OfAnotherPrefectureBeginAtItsFirstCityWhicheverIsAskedFor) {
    CListsDic dic(CountryWith({{1}, {1}, {1}, {1}, {1, 2, 3, 4}, {5, 6, 7, 8}}));
    EXPECT_EQ(Count(dic, 4, 3, 0), Found(6, 4, 1));
    EXPECT_EQ(Count(dic, 4, 3, 0), Found(6, 4, 1));
    EXPECT_EQ(Count(dic, 5, 3, 0), Found(6, 4, 5));
    EXPECT_EQ(CityOfTowns(dic), "5.0");
    EXPECT_THAT(dic.Selection(), ElementsAre(5, 3, 0)) << "while that one counts as selected";
    EXPECT_EQ(Count(dic, 5, 3, 0), Found(6, 4, 5)) << "and asking again keeps it";
    EXPECT_EQ(CityOfTowns(dic), "5.0");
}

TEST(SelectionLists, OfAnotherPrefectureDoNotLookAtTheCity) {
    CListsDic dic(CountryWith({{1, 2}, {3, 4}}));
    for (int nCity : {2, 65536, INT_MAX}) {
        EXPECT_EQ(Count(dic, 1, nCity, 0), Found(2, 2, 3)) << nCity;
        EXPECT_EQ(Count(dic, 1, nCity, 0), Found(2, 2, 3)) << nCity;
        EXPECT_THAT(dic.Selection(), ElementsAre(1, nCity, 0));
        EXPECT_EQ(Count(dic, 0, 0, 0), Found(2, 2, 1));
    }
}

TEST(SelectionLists, OfTheFirstCallBeginAtTheFirstCityToo) {
    CListsDic dic(CountryWith({{1, 2}}));
    EXPECT_EQ(Count(dic, 0, 1, 0), Found(1, 2, 1)) << "prefecture 0 is the selected one, but has no cities yet";
    EXPECT_THAT(dic.Selection(), ElementsAre(0, 1, 0));
    EXPECT_EQ(Count(dic, 0, 1, 0), Found(1, 2, 1));
    EXPECT_EQ(Count(dic, 0, 0, 0), Found(1, 2, 1));
    EXPECT_EQ(Count(dic, 0, 1, 0), Found(1, 2, 2));
}

TEST(SelectionLists, OfAnotherCityAreMadeAgain) {
    CListsDic dic(CountryWith({{1, 2, 3}}));
    Count(dic, 0, 0, 0);
    for (int nCity : {1, 2, 0, 2, 1}) {
        EXPECT_EQ(Count(dic, 0, nCity, 0), Found(1, 3, nCity + 1)) << nCity;
        EXPECT_EQ(CityOfTowns(dic), "0." + std::to_string(nCity));
        EXPECT_THAT(dic.Selection(), ElementsAre(0, nCity, 0));
    }
}

TEST(SelectionLists, OfTheSameCityAreKept) {
    CListsDic dic(CountryWith({{3, 2}}));
    Count(dic, 0, 0, 0);
    dic.Towns().pop_back();
    for (int nTown : {0, 1, 2, INT_MAX}) EXPECT_EQ(Count(dic, 0, 0, nTown), Found(1, 2, 2)) << nTown;
    EXPECT_THAT(Names(dic.Towns()), ElementsAre("0.0.0", "0.0.1"));
}

TEST(SelectionLists, OfTheSamePrefectureKeepItsCities) {
    CListsDic dic(CountryWith({{1, 2, 3}}));
    Count(dic, 0, 0, 0);
    dic.Cities().erase(dic.Cities().begin());
    EXPECT_EQ(Count(dic, 0, 1, 0), Found(1, 2, 3)) << "the second city of the list as it is";
    EXPECT_THAT(Names(dic.Cities()), ElementsAre("hcity 1", "hcity 2"));
}

TEST(SelectionLists, WithoutTownsAreMadeAgainForTheCityAskedFor) {
    CListsDic dic(CountryWith({{1}, {0, 2, 0}}));
    EXPECT_EQ(Count(dic, 1, 1, 0), Found(2, 3, 0)) << "another prefecture: its first city, which has none";
    EXPECT_EQ(Count(dic, 1, 1, 0), Found(2, 3, 2)) << "nothing to keep";
    EXPECT_EQ(Count(dic, 1, 2, 0), Found(2, 3, 0));
    EXPECT_EQ(Count(dic, 1, 2, 0), Found(2, 3, 0));
    dic.Cities()[2] = dic.Cities()[1];
    EXPECT_EQ(Count(dic, 1, 2, 0), Found(2, 3, 2));
}

TEST(SelectionLists, DoNotLookAtTheTownButTakeIt) {
    CListsDic dic(CountryWith({{1, 2}}));
    Count(dic, 0, 0, 0);
    for (int nTown : {1, 2, 65536, INT_MAX}) {
        EXPECT_EQ(Count(dic, 0, 1, nTown), Found(1, 2, 2)) << nTown;
        EXPECT_THAT(dic.Selection(), ElementsAre(0, 1, nTown));
    }
}

TEST(SelectionLists, AreEmptyAndNothingIsSelectedAfterANewDictionary) {
    CListsDic dic(CountryWith({{1, 2}, {3, 4}}));
    Count(dic, 1, 1, 1);
    dic.SetDictionary(dic.GetDicPointer());
    EXPECT_THAT(dic.Prefs(), IsEmpty());
    EXPECT_THAT(dic.Cities(), IsEmpty());
    EXPECT_THAT(dic.Towns(), IsEmpty());
    EXPECT_THAT(dic.Selection(), ElementsAre(0, 0, 0));
    EXPECT_EQ(Count(dic, 0, 0, 0), Found(2, 2, 1));
}

// --- beside a tree -------------------------------------------------------------------------------------------------

TEST(SelectionLists, StepAsideForATreeAndAreThereAgainBehindIt) {
    CListsDic dic((CListsWorld()));
    EXPECT_EQ(Count(dic, TOKYO, 0, 0), Found(3, 3, 2));
    char szCode[] = "105";
    ASSERT_EQ(dic.MakeRefineTree(szCode, ""), 1);
    EXPECT_EQ(Count(dic, 0, 0, 0), Found(1, 1, 5));
    ASSERT_EQ(dic.MakeRefineTree(szCode + 3, ""), 1);
    EXPECT_EQ(Count(dic, TOKYO, MINATO, 0), Found(3, 3, 2)) << "the tree's prefecture 0 was selected between";
    EXPECT_THAT(Names(dic.Towns()), ElementsAre("丸の内", "千代田"));
}

// A position is all that is compared, and the tree's count like the lists'.
TEST(SelectionLists, BehindATreeWhoseSelectionHadTheSameNumbersAreTheOldOnes) {
    CListsDic dic(CountryWith({{1, 2}, {3, 4, 5}}));
    EXPECT_EQ(Count(dic, 0, 0, 0), Found(2, 2, 1));
    dic.Tree() = {dic.Entry(0), dic.Entry(1)};
    Count(dic, 1, 0, 0);
    dic.Tree().clear();
    EXPECT_EQ(Count(dic, 1, 0, 0), Found(2, 2, 1)) << "cities and towns of prefecture 0";
    EXPECT_EQ(CityOfTowns(dic), "0.0");
    EXPECT_EQ(Count(dic, 1, 1, 0), Found(2, 2, 2));
    EXPECT_EQ(CityOfTowns(dic), "0.1");
}

TEST(SelectionLists, BehindATreeWithAnotherPrefectureBeginAnew) {
    CListsDic dic(CountryWith({{1, 2}, {3, 4, 5}}));
    Count(dic, 0, 0, 0);
    EXPECT_EQ(Count(dic, 0, 1, 0), Found(2, 2, 2));
    dic.Tree() = {dic.Entry(0)};
    Count(dic, 7, 8, 9); // is not there, and selected
    dic.Tree().clear();
    EXPECT_EQ(Count(dic, 0, 1, 0), Found(2, 2, 1));
}

// --- positions that are not there ----------------------------------------------------------------------------------

TEST(SelectionLists, WithoutThatPrefectureCountNothingBelow) {
    CListsDic dic(CountryWith({{1, 2}, {3, 4}}));
    for (int nPref : {2, 3, 65536, INT_MAX}) EXPECT_EQ(Count(dic, nPref, 0, 0), Missed(2, 0, 0)) << nPref;
    Count(dic, 1, 1, 0);
    for (int nPref : {2, 3, 65536, INT_MAX}) EXPECT_EQ(Count(dic, nPref, 0, 7), Missed(2, 0, 0)) << nPref;
    EXPECT_THAT(dic.Selection(), ElementsAre(1, 1, 0)) << "the old selection stays";
    EXPECT_EQ(Count(dic, 1, 1, 0), Found(2, 2, 3)) << "and its lists";
}

TEST(SelectionLists, WithoutThatCityCountNothingBelow) {
    CListsDic dic(CountryWith({{1, 2}, {3, 4}}));
    Count(dic, 1, 0, 0);
    for (int nCity : {2, 3, 65536, INT_MAX}) {
        EXPECT_EQ(Count(dic, 1, nCity, 7), Missed(2, 2, 0)) << nCity;
        EXPECT_THAT(dic.Selection(), ElementsAre(1, 0, 0)) << nCity;
    }
    EXPECT_EQ(Count(dic, 1, 0, 0), Found(2, 2, 3));
    EXPECT_EQ(Count(dic, 1, 1, 0), Found(2, 2, 4));
}

TEST(SelectionLists, OfAPrefectureWithoutCitiesAreEmpty) {
    CListsDic dic(CountryWith({{1, 2}, {}}));
    EXPECT_EQ(Count(dic, 1, 0, 0), Missed(2, 0, 0));
    Count(dic, 0, 0, 0);
    EXPECT_EQ(Count(dic, 0, 1, 0), Found(2, 2, 2));
    EXPECT_EQ(Count(dic, 1, 0, 0), Missed(2, 0, 0));
    EXPECT_THAT(dic.Cities(), IsEmpty());
    EXPECT_THAT(dic.Towns(), IsEmpty());
    EXPECT_THAT(dic.Selection(), ElementsAre(0, 1, 0));
    EXPECT_EQ(Count(dic, 0, 1, 0), Found(2, 2, 1)) << "made anew: the first city";
}

TEST(SelectionLists, OfADictionaryWithoutPrefecturesAreEmpty) {
    CListsDic dic((CTestImage()));
    EXPECT_EQ(Count(dic, 0, 0, 0), Missed(0, 0, 0));
    CTestImage country = CountryWith({{1}});
    country.nPrefCount = 0;
    CListsDic without(country);
    EXPECT_EQ(Count(without, 0, 0, 0), Missed(0, 0, 0));
    EXPECT_THAT(without.Prefs(), IsEmpty());
}

TEST(SelectionLists, OfNoDictionaryAreEmpty) {
    CAddrDic unbound;
    EXPECT_EQ(Count(unbound, 0, 0, 0), Missed(0, 0, 0));
    EXPECT_EQ(Count(unbound, INT_MAX, INT_MAX, INT_MAX), Missed(0, 0, 0));
    EXPECT_EQ(Count(unbound, -1, 0, 0), NothingWritten());
    CListsDic dic(CountryWith({{1, 2}}));
    Count(dic, 0, 0, 0);
    dic.SetDictionary(nullptr);
    EXPECT_EQ(Count(dic, 0, 0, 0), Missed(0, 0, 0));
    EXPECT_THAT(dic.Prefs(), IsEmpty());
}

// --- more than 16 bits hold ----------------------------------------------------------------------------------------

// 東京都 with nCities cities, the last of which has nTowns towns; all names are "a".
CTestImage BigCountry(uint32_t nCities, uint32_t nTowns) {
    CTestImage image;
    uint32_t const nName = image.AddText("a"), nCode = image.AddText("1000000", "100");
    image.vNode.push_back({LEVEL_PREF, {}, image.AddText("東京都"), ADDR_NONE, ADDR_NONE, nCities, 1});
    for (uint32_t n = 1; n <= nCities; ++n)
        image.vNode.push_back({LEVEL_CITY, {}, nName, ADDR_NONE, 0, 0, ADDR_NONE});
    image.vNode.back().nName = image.AddText("b");
    image.vNode.back().nChildCount = nTowns;
    image.vNode.back().nFirstChild = nCities + 1;
    for (uint32_t n = 0; n < nTowns; ++n) {
        image.AddInfoAt(static_cast<uint32_t>(image.vNode.size()), nCode);
        image.vNode.push_back({LEVEL_TOWN, {}, nName, n, nCities, 0, ADDR_NONE});
    }
    image.nPrefCount = 1;
    return image;
}

TEST(SelectionLists, OfMoreThan32767EntriesHaveTruncatedCountsAndAllPositions) {
    struct {
        uint32_t nEntries;
        short nCount;
    } const aCase[] = {{32767, 32767}, {32768, -32768}, {40000, -25536}, {65536, 0}, {65537, 1}};
    for (auto const& c : aCase) {
        CListsDic dic(BigCountry(c.nEntries, c.nEntries));
        int const nLast = static_cast<int>(c.nEntries) - 1;
        EXPECT_EQ(Count(dic, 0, 0, 0), Found(1, c.nCount, 0)) << c.nEntries;
        EXPECT_EQ(Count(dic, 0, nLast, 0), Found(1, c.nCount, c.nCount)) << c.nEntries;
        EXPECT_EQ(Count(dic, 0, nLast + 1, 0), Missed(1, c.nCount, 0)) << c.nEntries;
        EXPECT_THAT(dic.Towns(), SizeIs(c.nEntries));
    }
}

// --- damaged dictionaries ------------------------------------------------------------------------------------------

TEST(SelectionLists, OfAHeaderThatCountsTooManyPrefecturesEndAtTheNodeTable) {
    struct {
        uint32_t nHeader;
        short nCount;
    } const aCase[] = {{10, 10}, {70000, 4464}, {0x80000000, 0}, {0xFFFFFFFF, -1}};
    for (auto const& c : aCase) {
        CTestImage country = CountryWith({{1}});
        country.nPrefCount = c.nHeader;
        CListsDic dic(country);
        EXPECT_EQ(Count(dic, 1, 0, 0), Found(c.nCount, 1, 1)) << "the header's number";
        EXPECT_THAT(Names(dic.Prefs()), ElementsAre("0.0.0", "00北海道", "hcity 0"));
        EXPECT_EQ(Count(dic, 3, 0, 0), Missed(c.nCount, 0, 0)) << "there are three nodes";
    }
}

TEST(SelectionLists, OfAHeaderWhosePrefecturesBeginBehindTheNodeTableAreEmpty) {
    for (uint32_t nFirst : {3u, 4u, 0x80000000u, 0xFFFFFFFFu}) {
        CTestImage country = CountryWith({{1}});
        country.nFirstPref = nFirst;
        country.nPrefCount = 2;
        CListsDic dic(country);
        EXPECT_EQ(Count(dic, 0, 0, 0), Missed(2, 0, 0)) << nFirst;
    }
}

TEST(SelectionLists, HaveNoChildrenBehindTheNodeTable) {
    for (uint32_t nCount : {3u, 0x80000000u, 0xFFFFFFFFu}) {
        CTestImage country = CountryWith({{2}});
        country.vNode[1].nChildCount = nCount;
        CListsDic dic(country);
        EXPECT_EQ(Count(dic, 0, 0, 0), Found(1, 1, 2)) << nCount;
        country.vNode[0].nChildCount = nCount;
        CListsDic cities(country);
        EXPECT_EQ(Count(cities, 0, 0, 0), Found(1, 3, 0)) << "the towns are taken for cities, 0.0.0 the first";
    }
}

TEST(SelectionLists, TakeChildrenThatLeadBackForWhatTheyAre) {
    CTestImage country = CountryWith({{1, 1}});
    for (tagADDRNODE& node : country.vNode) {
        node.nFirstChild = 0;
        node.nChildCount = static_cast<uint32_t>(country.vNode.size());
    }
    CListsDic dic(country);
    std::vector<int> const vFirst = Count(dic, 0, 0, 0);
    EXPECT_EQ(vFirst[0], 1);
    EXPECT_EQ(vFirst[2], 5) << "all nodes are children of the prefecture";
    EXPECT_THAT(dic.Towns(), SizeIs(testing::Le(10u))) << "the walk comes to an end";
    for (int nCity = 0; nCity < 5; ++nCity) EXPECT_EQ(Count(dic, 0, nCity, 0)[0], 1);
}

TEST(SelectionLists, HaveEmptyNamesWhereThereAreNone) {
    for (uint32_t nName : {0x7FFFFFFFu, 0xFFFFFFFFu}) {
        CTestImage country = CountryWith({{1}});
        for (tagADDRNODE& node : country.vNode) node.nName = nName;
        CListsDic dic(country);
        EXPECT_EQ(Count(dic, 0, 0, 0), Found(1, 1, 1));
        EXPECT_THAT(Names(dic.Prefs()), ElementsAre(""));
        EXPECT_THAT(Names(dic.Cities()), ElementsAre(""));
        EXPECT_THAT(Names(dic.Towns()), ElementsAre(""));
    }
}

TEST(SelectionLists, HaveNamesCutAtTheirFields) {
    CTestImage country = CountryWith({{1}});
    for (size_t n = 1; n < 3; ++n) country.vNode[n].nName = country.AddText(std::string(200, 'a'));
    CListsDic dic(country);
    EXPECT_EQ(Count(dic, 0, 0, 0), Found(1, 1, 1));
    EXPECT_THAT(Names(dic.Cities()), ElementsAre("h" + std::string(127, 'a')));
    EXPECT_THAT(Names(dic.Towns()), ElementsAre(std::string(128, 'a')));
}

} // namespace
