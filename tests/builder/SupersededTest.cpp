// Towns of earlier editions: where they stand in the dictionary, and which address of today takes their place.
#include "tests/builder/World.h"

#include <gmock/gmock.h>

#include <random>
#include <set>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

using Editions = CWorld::Editions;

CTown Hamamatsu(std::string const& strCity, std::string const& strTown, std::string const& strCode,
                std::string const& strOldCode = "430") {
    return {"静岡県", strCity, strTown, "", strCode, strOldCode};
}

// "prefecture city town rest code old code" after the town was renewed; "none" when no town with an entry was found.
std::string Latest(CWorld& world, std::string const& strText) {
    tagADDR addr(0);
    if (world.Dic().GetLatestAddr(strText.c_str(), addr) != 1) return "none";
    std::string str;
    for (char const* psz :
         {addr.pszPref, addr.pszCity, addr.pszTown, addr.pszArea, addr.pszPostCode, addr.pszCodeExt})
        str += (str.empty() ? "" : "|") + std::string(psz == nullptr ? "-" : psz);
    return str;
}

// Codes and nodes' names of the superseded entries, in the order of the table.
std::vector<std::string> Superseded(CWorld const& world) {
    std::vector<std::string> vEntry;
    for (uint32_t n = 0; tagADDRINFO const* pInfo = world.Dic().GetAddrInfo(n); ++n)
        if ((pInfo->nNode & ADDRINFO_SUPERSEDED) != 0)
            vEntry.push_back(world.Dic().GetString(pInfo->nCode) +
                             (" " + world.Name(pInfo->nNode & ~ADDRINFO_SUPERSEDED)));
    return vEntry;
}

// The cities' names in their order.
std::vector<std::string> Cities(CWorld const& world) {
    std::vector<std::string> vName = world.Names('1');
    for (std::string& strName : vName) strName.erase(strName.find('|'));
    return vName;
}

tagADDRINFO const* EntryOf(CWorld const& world, std::string const& strCode) {
    for (uint32_t n = 0; tagADDRINFO const* pInfo = world.Dic().GetAddrInfo(n); ++n)
        if (world.Dic().GetString(pInfo->nCode) == strCode) return pInfo;
    return nullptr;
}

} // namespace

// --- one town ---

TEST(Superseded, ATownThatIsGoneIsRenewed) {
    CWorld world({Town("丸の内", "マルノウチ", "1000005")}, {}, Editions{{Town("永楽町", "エイラク", "1000005")}});
    EXPECT_EQ(Latest(world, "東京都千代田区永楽町２丁目"), "東京都|千代田区|丸の内|２丁目|1000005|100");
    EXPECT_EQ(world.Count("superseded_towns"), 1u);
    EXPECT_THAT(world.Successions(), ElementsAre("東京都/千代田区/永楽町|1000005|東京都/千代田区/丸の内|same code"));
    EXPECT_THAT(world.Remarks(), IsEmpty());
}

TEST(Superseded, ItStandsInItsOldCityWithItsOldCodesAndItsReading) {
    CTown old = Town("永楽町", "エイラク", "1009999");
    old.strOldCode = "10099";
    CWorld world({Town("丸の内", "マルノウチ", "1000005"), Town("以下に掲載がない場合", "", "1000000")}, {},
                 Editions{{old}});
    EXPECT_EQ(world.Tree(), "0 東京都|ケン\n"
                            "  1 千代田区|シ|1000000|100\n"
                            "    2 丸の内|マルノウチ|1000005|100\n"
                            "    2 永楽町|エイラク|1009999|10099\n"
                            "    2 -||1000000|100\n");
    EXPECT_EQ(Latest(world, "東京都千代田区永楽町"), "東京都|千代田区|||1009999|10099");
}

TEST(Superseded, ItsEntryIsFoundByItsCodeButIsNoPlaceOfToday) {
    CWorld world({Town("丸の内", "マルノウチ", "1000005"), Town("以下に掲載がない場合", "", "1000000")}, {},
                 Editions{{Town("永楽町", "エイラク", "1009999")}});
    std::vector<tagADDR> vAddr;
    ASSERT_EQ(world.Dic().GetAddrFromPostCode7("1009999", vAddr), 1);
    ASSERT_EQ(vAddr.size(), 1u);
    EXPECT_STREQ(vAddr[0].pszTown, "永楽町");
    tagADDRNODE const *pPref = nullptr, *pCity = nullptr, *pTown = nullptr;
    EXPECT_EQ(world.Dic().GetAddrPtr(EntryOf(world, "1009999"), &pPref, &pCity, &pTown), 0);
    EXPECT_EQ(world.Dic().GetAddrPtr(EntryOf(world, "1000005"), &pPref, &pCity, &pTown), 1);
    vAddr.clear();
    world.Dic().GetAddrFromAddrPart("東京都千代田区", vAddr);
    EXPECT_EQ(vAddr.size(), 2u); // 丸の内 and the nameless town
}

TEST(Superseded, ItsEntryNamesTheEntryOfItsSuccessorBehindItsOldCode) {
    CWorld const world({Town("丸の内", "マルノウチ", "1000005"), Town("大手町", "オオテ", "1000004")}, {},
                       Editions{{Town("永楽町", "エイラク", "1000005"), Town("道三町", "ドウサン", "1000004")}});
    ASSERT_THAT(Superseded(world), UnorderedElementsAre("1000005 永楽町", "1000004 道三町"));
    for (uint32_t n = 0; tagADDRINFO const* pInfo = world.Dic().GetAddrInfo(n); ++n) {
        if ((pInfo->nNode & ADDRINFO_SUPERSEDED) == 0) continue;
        char const* const pszCode = world.Dic().GetString(pInfo->nCode);
        std::string const strNew = std::string(pszCode) == "1000005" ? "丸の内" : "大手町";
        uint32_t const nNext =
            ReadWord(reinterpret_cast<unsigned char const*>(pszCode) + 8 + 4); // "100" and two NULs
        tagADDRINFO const* const pNext = world.Dic().GetAddrInfo(nNext);
        ASSERT_NE(pNext, nullptr);
        EXPECT_EQ(world.Name(pNext->nNode), strNew);
    }
}

TEST(Superseded, ATownOfTodaysTableIsNotTouched) {
    std::vector<CTown> const vTown = {Town("丸の内", "マルノウチ", "1000005"),
                                      Town("大手町（１丁目）", "", "1000004"),
                                      Town("以下に掲載がない場合", "", "1000000")};
    CWorld const alone(vTown);
    CWorld const world(vTown, {},
                       Editions{vTown, {Town("丸の内", "マルノウチ", "1009999"), Town("大手町", "", "1000004")}});
    EXPECT_EQ(world.Bytes(), alone.Bytes());
    EXPECT_THAT(world.Successions(), IsEmpty());
    EXPECT_EQ(world.Count("superseded_towns"), 0u);
    EXPECT_EQ(world.Count("previous_rows"), 5u);
}

TEST(Superseded, WithoutEarlierEditionsNothingIsSuperseded) {
    CWorld const world({Town("丸の内", "マルノウチ", "1000005")});
    EXPECT_THAT(world.Successions(), IsEmpty());
    EXPECT_THAT(Superseded(world), IsEmpty());
}

TEST(Superseded, ATownOfSeveralRowsIsOneEntryWithTheCodeOfItsOwn) {
    CWorld world({Town("丸の内", "マルノウチ", "1000005"), Town("大手町", "オオテ", "1000007")}, {},
                 Editions{{Town("永楽町（１丁目）", "", "1000005"), Town("永楽町（２丁目）", "", "1000006"),
                           Town("永楽町（その他）", "", "1000007")}});
    EXPECT_THAT(Superseded(world), ElementsAre("1000007 永楽町"));
    EXPECT_EQ(Latest(world, "東京都千代田区永楽町"), "東京都|千代田区|大手町||1000007|100");
    EXPECT_EQ(world.Count("superseded_towns"), 1u);
}

TEST(Superseded, ATownWithoutACodeOfItsOwnHasThatOfItsFirstPlace) {
    CWorld world({Town("丸の内", "マルノウチ", "1000006"), Town("大手町", "オオテ", "1000005")}, {},
                 Editions{{Town("永楽町（２丁目）", "", "1000006"), Town("永楽町（１丁目）", "", "1000005")}});
    EXPECT_THAT(Superseded(world), ElementsAre("1000006 永楽町"));
    EXPECT_EQ(Latest(world, "東京都千代田区永楽町"), "東京都|千代田区|丸の内||1000006|100");
}

TEST(Superseded, FloorsOfAnEarlierEditionArePassedOverAndCounted) {
    CWorld const world({Town("中央", "チュウオウ", "9800021")}, {},
                       Editions{{Town("中央", "チュウオウ", "9800021"), Town("中央アエル（１階）", "", "9806101"),
                                 Town("中央アエル（２階）", "", "9806102")}});
    EXPECT_EQ(world.Count("previous_rows_of_floors_passed_over"), 2u);
    EXPECT_EQ(world.Count("previous_rows"), 3u);
    EXPECT_THAT(world.Successions(), IsEmpty());
}

// --- which entry of the successor ---

TEST(Superseded, TheSuccessorsEntryIsTheOneOfTheSameCode) {
    CWorld const world({Town("丸の内（１丁目）", "", "1000005"), Town("丸の内（２丁目）", "", "1000006")}, {},
                       Editions{{Town("永楽町", "", "1000006")}});
    std::vector<std::string> vArea;
    tagADDRINFO const* const pOld = EntryOf(world, "1000006")->nNode & ADDRINFO_SUPERSEDED
                                        ? EntryOf(world, "1000006")
                                        : EntryOf(world, "1000006") + 1;
    ASSERT_NE(pOld->nNode & ADDRINFO_SUPERSEDED, 0u);
    char const* const pszCode = world.Dic().GetString(pOld->nCode);
    uint32_t const nNext = ReadWord(reinterpret_cast<unsigned char const*>(pszCode) + 8 + 4);
    EXPECT_EQ(world.Name(world.Dic().GetAddrInfo(nNext)->nNode), "２丁目");
}

TEST(Superseded, ABuildingsCodeLeadsToItsTown) {
    CWorld world({Town("中央", "チュウオウ", "9800021"), Town("中央アエル（１階）", "", "9806101")}, {},
                 Editions{{Town("旧中央", "", "9806101")}});
    EXPECT_EQ(Latest(world, "東京都千代田区旧中央"), "東京都|千代田区|中央||9806101|100");
}

TEST(Superseded, AnOrganisationsCodeLeadsNowhere) {
    CWorld world({Town("中央", "チュウオウ", "9800021")}, {Office("役場", "中央", "", "9808701")},
                 Editions{{Town("旧町", "", "9808701"), Town("中央", "", "9800021")}});
    EXPECT_EQ(Latest(world, "東京都千代田区旧町"), "none");
    EXPECT_EQ(world.Count("superseded_towns_left_out"), 1u);
}

// --- cities that are gone ---

TEST(Superseded, ACityThatIsGoneStandsBehindTheCitiesOfItsPrefecture) {
    CWorld world({Hamamatsu("浜松市中央区", "助信町", "4300903"), Hamamatsu("沼津市", "大手町", "4100801")}, {},
                 Editions{{Hamamatsu("浜松市中区", "助信町", "4300903"), Hamamatsu("沼津市", "大手町", "4100801")}});
    EXPECT_THAT(Cities(world), ElementsAre("浜松市中央区", "沼津市", "浜松市中区"));
    EXPECT_EQ(Latest(world, "静岡県浜松市中区助信町９−１"), "静岡県|浜松市中央区|助信町|９−１|4300903|430");
    EXPECT_EQ(world.Count("superseded_cities"), 1u);
    EXPECT_EQ(world.Count("cities"), 2u);
    EXPECT_EQ(world.Word(HDR_CITY_COUNT), 3u);
}

TEST(Superseded, CitiesOfOtherPrefecturesStandBehindThemAsBefore) {
    CWorld const world(
        {Hamamatsu("沼津市", "大手町", "4100801"), CTown{"愛知県", "豊橋市", "旭町", "", "4400801"}}, {},
        Editions{{Hamamatsu("旧市", "大手町", "4100801"), CTown{"愛知県", "昔市", "旭町", "", "4400801"}}});
    EXPECT_EQ(world.Tree(LEVEL_CITY), "0 静岡県|ケン\n  1 沼津市|シ\n  1 旧市|シ|4100801|430\n"
                                      "0 愛知県|ケン\n  1 豊橋市|シ\n  1 昔市|シ|4400801|100\n");
}

TEST(Superseded, SeveralOldCitiesStandInTheOrderOfTheirTableNewestEditionFirst) {
    CWorld const world({Hamamatsu("沼津市", "大手町",
                                  "1"
                                  "000001")},
                       {},
                       Editions{{Hamamatsu("丙市", "東", "1000001"), Hamamatsu("丁市", "東", "1000001")},
                                {Hamamatsu("乙市", "東", "1000001"), Hamamatsu("甲市", "東", "1000001")}});
    EXPECT_THAT(Cities(world), ElementsAre("沼津市", "乙市", "甲市", "丙市", "丁市"));
}

TEST(Superseded, TheNamelessTownOfAnOldCityIsSupersededAndTheCityRefersToIt) {
    CWorld world({Hamamatsu("浜松市中央区", "以下に掲載がない場合", "4300000"),
                  Hamamatsu("浜松市中央区", "助信町", "4300903")},
                 {},
                 Editions{{Hamamatsu("浜松市中区", "以下に掲載がない場合", "4300000"),
                           Hamamatsu("浜松市中区", "助信町", "4300903")}});
    EXPECT_EQ(world.CityRefersTo(1), "4300000 ");
    tagADDRNODE const* const pCity = world.Dic().GetAddrNode(world.Word(HDR_FIRST_CITY) + 1);
    tagADDRINFO const* const pInfo = world.Dic().GetAddrInfo(pCity->nInfo);
    EXPECT_NE(pInfo->nNode & ADDRINFO_SUPERSEDED, 0u);
    EXPECT_EQ(world.Dic().GetAddrNode(pInfo->nNode & ~ADDRINFO_SUPERSEDED)->nParent, world.Word(HDR_FIRST_CITY) + 1);
    EXPECT_THAT(world.Successions(),
                ElementsAre("静岡県/浜松市中区/|4300000|静岡県/浜松市中央区/|same code",
                            "静岡県/浜松市中区/助信町|4300903|静岡県/浜松市中央区/助信町|same code"));
    EXPECT_EQ(world.Tree(), "0 静岡県|ケン\n"
                            "  1 浜松市中央区|シ|4300000|430\n"
                            "    2 助信町||4300903|430\n"
                            "    2 -||4300000|430\n"
                            "  1 浜松市中区|シ|4300000|430\n"
                            "    2 助信町||4300903|430\n"
                            "    2 -||4300000|430\n");
}

// Lists of today's cities leave out those that refer to a superseded entry.
TEST(Superseded, EveryOldCityRefersToASupersededEntryOfItsOwn) {
    CWorld const world(
        {Hamamatsu("甲市", "以下に掲載がない場合", "1000000"), Hamamatsu("甲市", "東", "1000001"),
         Hamamatsu("乙市", "西", "1000002")},
        {},
        Editions{{Hamamatsu("一市", "東", "1000001"), Hamamatsu("一市", "東台", "1000001"),
                  Hamamatsu("一市", "以下に掲載がない場合", "1000001"), Hamamatsu("二市", "東", "1000001"),
                  Hamamatsu("二市", "東台", "1000001"),                 // no nameless town
                  Hamamatsu("三市", "以下に掲載がない場合", "1000009"), // left out: 乙市 has no default
                  Hamamatsu("三市", "西", "1000002")}});
    EXPECT_EQ(world.Count("superseded_cities"), 3u);
    EXPECT_EQ(world.CityRefersTo(2), "1000001 ");
    EXPECT_EQ(world.CityRefersTo(3), "1000001 東");
    EXPECT_EQ(world.CityRefersTo(4), "1000002 西");
    for (uint32_t nCity = 2; nCity < 5; ++nCity) {
        uint32_t const nNode = world.Word(HDR_FIRST_CITY) + nCity;
        tagADDRINFO const* const pInfo = world.Dic().GetAddrInfo(world.Dic().GetAddrNode(nNode)->nInfo);
        ASSERT_NE(pInfo, nullptr) << nCity;
        EXPECT_NE(pInfo->nNode & ADDRINFO_SUPERSEDED, 0u) << nCity;
        EXPECT_EQ(world.Dic().GetAddrNode(pInfo->nNode & ~ADDRINFO_SUPERSEDED)->nParent, nNode) << nCity;
    }
}

TEST(Superseded, TheNamelessTownOfACityOfTodayIsTodaysAlone) {
    CWorld const world(
        {Town("丸の内", "マルノウチ", "1000005")}, {},
        Editions{{Town("以下に掲載がない場合", "", "1000005"), Town("丸の内", "マルノウチ", "1000005")}});
    EXPECT_THAT(Superseded(world), IsEmpty());
    EXPECT_THAT(world.Successions(), IsEmpty());
    EXPECT_EQ(world.CityRefersTo(), "none");
}

TEST(Superseded, TheCodeOfACityThatIsGoneIsThatOfItsNamelessTown) {
    CWorld world(
        {Hamamatsu("丹波篠山市", "以下に掲載がない場合", "6692300"), Hamamatsu("丹波篠山市", "東新町", "6692332")},
        {}, Editions{{Hamamatsu("篠山市", "以下に掲載がない場合", "6692300", "66923")}});
    tagADDR addr(0);
    world.Dic().DivideAddr("静岡県篠山市どこか", &addr);
    EXPECT_STREQ(addr.pszCity, "篠山市");
    EXPECT_STREQ(addr.pszPostCode, "6692300");
    EXPECT_STREQ(addr.pszCodeExt, "66923");
}

TEST(Superseded, APrefectureThatTodaysTableLacksIsMadeInItsPlace) {
    CWorld world({CTown{"沖縄県", "那覇市", "泉崎", "", "9000021"}}, {},
                 Editions{{Hamamatsu("旧市", "東", "9000021")}});
    EXPECT_THAT(world.Names('0'), ElementsAre("静岡県|ケン", "沖縄県|ケン"));
    EXPECT_EQ(Latest(world, "静岡県旧市東"), "沖縄県|那覇市|泉崎||9000021|430");
}

// --- order of the towns ---

TEST(Superseded, ANameThatBeginsAnotherComesAfterItWhicheverOfThemIsGone) {
    CWorld world({Town("名駅南", "", "4500003"), Town("栄", "", "4600008")}, {},
                 Editions{{Town("名駅", "", "4500003"), Town("栄町", "", "4600008")}});
    EXPECT_THAT(world.Names('2'),
                ElementsAre("名駅南||4500003|100", "栄町||4600008|100", "栄||4600008|100", "名駅||4500003|100"));
    EXPECT_EQ(Latest(world, "東京都千代田区名駅南１"), "東京都|千代田区|名駅南|１|4500003|100");
    EXPECT_EQ(Latest(world, "東京都千代田区名駅１"), "東京都|千代田区|名駅南|１|4500003|100");
    EXPECT_EQ(Latest(world, "東京都千代田区栄町１"), "東京都|千代田区|栄|１|4600008|100");
    EXPECT_EQ(Latest(world, "東京都千代田区栄１"), "東京都|千代田区|栄|１|4600008|100");
}

TEST(Superseded, OldTownsOfAnOldCityAreOrderedLikeAnyOther) {
    CWorld const world(
        {Hamamatsu("甲市", "東", "1000001")}, {},
        Editions{{Hamamatsu("旧市", "以下に掲載がない場合", "1000001"), Hamamatsu("旧市", "東", "1000001"),
                  Hamamatsu("旧市", "東新井", "1000001"), Hamamatsu("旧市", "東新", "1000001")}});
    EXPECT_THAT(world.Tree(), HasSubstr("  1 旧市|シ|1000001|430\n"
                                        "    2 東新井||1000001|430\n"
                                        "    2 東新||1000001|430\n"
                                        "    2 東||1000001|430\n"
                                        "    2 -||1000001|430\n"));
}

TEST(Superseded, NoNameStandsBeforeOneThatItBeginsInAnyCity) {
    std::vector<CTown> vNow, vOld;
    for (char const* psz : {"東", "西東", "東西", "西", "東東西"}) vNow.push_back(Town(psz, "", "1000001"));
    for (char const* psz : {"西西", "東東", "西東東", "東西西", "東西東", "西西西"})
        vOld.push_back(Town(psz, "", "1000001"));
    CWorld const world(vNow, {}, Editions{vOld});
    std::vector<std::string> vName = world.Names('2');
    ASSERT_EQ(vName.size(), 11u);
    for (std::string& strName : vName) strName.erase(strName.find('|'));
    for (size_t n = 0; n < vName.size(); ++n)
        for (size_t nLater = n + 1; nLater < vName.size(); ++nLater)
            EXPECT_NE(vName[nLater].substr(0, vName[n].size()), vName[n]);
}

// --- a chain of changes ---

// 旧町 (2015) became 中町 (2018), that 新町 (2021), that 今町 of today; each with another code, found by another rule.
TEST(Superseded, AChainOverThreeEditionsEndsAtTodaysEntry) {
    CWorld world(
        {Town("今町", "", "1000004"), Town("駅前", "", "1000009")}, {},
        Editions{{Town("旧町", "", "1000001"), Town("駅前", "", "1000009")},
                 {Town("中町", "", "1000001"), Town("中町（１丁目）", "", "1000002"), Town("駅前", "", "1000009")},
                 {Town("中", "", "1000003"), Town("新町", "", "1000001"), Town("駅前", "", "1000009")}});
    // 中町 of 2018 is 新町 by its code; 新町's code is gone, its name and the city's default too.
    EXPECT_THAT(world.Successions(),
                ElementsAre("東京都/千代田区/中|1000003||none", "東京都/千代田区/新町|1000001||none",
                            "東京都/千代田区/中町|1000001||same code, then none",
                            "東京都/千代田区/旧町|1000001||same code, then same code, then none"));
    EXPECT_EQ(world.Count("superseded_towns_left_out"), 4u);

    CWorld whole(
        {Town("今町", "", "1000004"), Town("駅前", "", "1000009"), Town("以下に掲載がない場合", "", "1000000")}, {},
        Editions{{Town("旧町", "", "1000001"), Town("駅前", "", "1000009")},
                 {Town("中町", "", "1000001"), Town("駅前", "", "1000009")},
                 {Town("新町", "", "1000001"), Town("今町", "", "1000001"), Town("駅前", "", "1000009")}});
    EXPECT_THAT(
        whole.Successions(),
        ElementsAre("東京都/千代田区/新町|1000001|東京都/千代田区/|default of the heir of the city",
                    "東京都/千代田区/中町|1000001|東京都/千代田区/|same code and closest name, then default of the "
                    "heir of the city",
                    "東京都/千代田区/旧町|1000001|東京都/千代田区/|same code, then same code and closest name, then "
                    "default of the heir of the city"));
    for (char const* pszTown : {"旧町", "中町", "新町"})
        EXPECT_EQ(Latest(whole, std::string("東京都千代田区") + pszTown), "東京都|千代田区|||1000001|100") << pszTown;
}

TEST(Superseded, AStepThatKeepsTheTownIsNoStep) {
    CWorld world({Town("今町", "", "1000002")}, {},
                 Editions{{Town("旧町", "", "1000001")},
                          {Town("中町", "", "1000001")},
                          {Town("中町", "", "1000002")}}); // 中町 has another code since
    EXPECT_THAT(world.Successions(),
                ElementsAre("東京都/千代田区/中町|1000002|東京都/千代田区/今町|same code",
                            "東京都/千代田区/旧町|1000001|東京都/千代田区/今町|same code, then same code"));
    EXPECT_EQ(Latest(world, "東京都千代田区旧町"), "東京都|千代田区|今町||1000001|100");
}

TEST(Superseded, AChainThroughACityThatIsGoneTooEndsToday) {
    CWorld world({Hamamatsu("新市", "本町", "1000003")}, {},
                 Editions{{Hamamatsu("甲町", "大字本町", "1000001")},
                          {Hamamatsu("乙市", "本町", "1000001"), Hamamatsu("乙市", "南", "1000002")},
                          {Hamamatsu("乙市", "本町", "1000003")}});
    EXPECT_EQ(Latest(world, "静岡県甲町大字本町"), "静岡県|新市|本町||1000001|430");
    EXPECT_EQ(Latest(world, "静岡県乙市本町"), "静岡県|新市|本町||1000003|430");
    EXPECT_THAT(Cities(world), ElementsAre("新市", "乙市", "甲町"));
}

TEST(Superseded, NoEntryOfTodayIsReachedOverASupersededOne) {
    CWorld const world(
        {Town("今町", "", "1000001")}, {},
        Editions{{Town("旧町", "", "1000001")}, {Town("中町", "", "1000001")}, {Town("新町", "", "1000001")}});
    size_t nSuperseded = 0;
    for (uint32_t n = 0; tagADDRINFO const* pInfo = world.Dic().GetAddrInfo(n); ++n) {
        if ((pInfo->nNode & ADDRINFO_SUPERSEDED) == 0) continue;
        ++nSuperseded;
        auto const* const p = reinterpret_cast<unsigned char const*>(world.Dic().GetString(pInfo->nCode));
        EXPECT_EQ(world.Dic().GetAddrInfo(ReadWord(p + 12))->nNode & ADDRINFO_SUPERSEDED, 0u);
    }
    EXPECT_EQ(nSuperseded, 3u);
}

TEST(Superseded, ATownOfSeveralEditionsIsTakenAsTheNewestWritesIt) {
    CTown newer = Town("旧町", "ニュー", "1000002");
    newer.strOldCode = "102";
    CWorld world({Town("一", "", "1000001"), Town("二", "", "1000002")}, {},
                 Editions{{Town("旧町", "オールド", "1000001")}, {newer}});
    EXPECT_THAT(Superseded(world), ElementsAre("1000002 旧町"));
    EXPECT_EQ(Latest(world, "東京都千代田区旧町"), "東京都|千代田区|二||1000002|102");
    EXPECT_THAT(world.Names('2'), testing::Contains("旧町|ニュー|1000002|102"));
}

TEST(Superseded, ATownThatIsBackIsNotSuperseded) {
    CWorld world({Town("旧町", "", "1000001")}, {},
                 Editions{{Town("旧町", "", "1000001")}, {Town("別町", "", "1000001")}});
    EXPECT_THAT(Superseded(world), ElementsAre("1000001 別町"));
    EXPECT_EQ(Latest(world, "東京都千代田区旧町"), "東京都|千代田区|旧町||1000001|100");
}

// --- left out ---

TEST(Superseded, ATownThatNothingFitsIsLeftOutRemarkedAndReported) {
    CWorld world({Town("丸の内", "", "1000005")}, {},
                 Editions{{Town("丸の内", "", "1000005"), Town("永楽町", "", "1009999")}});
    EXPECT_THAT(world.Remarks(),
                ElementsAre("OLD1:2: left out, no address of today takes the place of 東京都/千代田区/永楽町"));
    EXPECT_THAT(world.Successions(), ElementsAre("東京都/千代田区/永楽町|1009999||none"));
    EXPECT_EQ(world.Count("superseded_towns_left_out"), 1u);
    EXPECT_EQ(world.Count("superseded_towns"), 0u);
    EXPECT_EQ(Latest(world, "東京都千代田区永楽町"), "none");
    EXPECT_THAT(world.Names('2'), ElementsAre("丸の内||1000005|100"));
}

TEST(Superseded, ACityWhoseTownsAreAllLeftOutIsNotMadeAgain) {
    CWorld const world({Town("丸の内", "", "1000005")}, {}, Editions{{Hamamatsu("旧市", "東", "1009999")}});
    EXPECT_THAT(Cities(world), ElementsAre("千代田区"));
    EXPECT_EQ(world.Count("superseded_cities"), 0u);
    EXPECT_EQ(world.Count("cities"), 1u);
}

TEST(Superseded, TheRemarkNamesTheEditionAndTheFirstRowOfTheTown) {
    CWorld const world({Town("丸の内", "", "1000005")}, {},
                       Editions{{Town("丸の内", "", "1000005")},
                                {Town("丸の内", "", "1000005"), Town("永楽町（１丁目）", "", "1009998"),
                                 Town("永楽町（その他）", "", "1009999")}});
    EXPECT_THAT(world.Remarks(), ElementsAre(HasSubstr("OLD2:2: left out")));
}

TEST(Superseded, EveryTownThatIsGoneIsPlacedOrLeftOutUnderOneRule) {
    CWorld const world({Hamamatsu("甲市", "東", "1000001"), Hamamatsu("甲市", "南", "1000002"),
                        Hamamatsu("甲市", "西", "1000002"), Hamamatsu("乙市", "山町", "1000003"),
                        Hamamatsu("乙市", "川", "1000004"), Hamamatsu("甲市", "以下に掲載がない場合", "1000000")},
                       {},
                       Editions{{Hamamatsu("旧市", "昔", "1000001"), Hamamatsu("旧市", "南", "1000002"),
                                 Hamamatsu("旧市", "西町", "1000002"), Hamamatsu("旧市", "西南西", "1000002"),
                                 Hamamatsu("旧市", "東町", "1000008"), Hamamatsu("旧市", "無", "1000009"),
                                 Hamamatsu("古市", "川", "1000004"), Hamamatsu("古市", "沼", "1000007")}});
    EXPECT_EQ(world.Count("superseded_by_same_code"), 2u);                         // 昔, 川
    EXPECT_EQ(world.Count("superseded_by_same_code_and_name"), 1u);                // 南
    EXPECT_EQ(world.Count("superseded_by_same_code_and_folded_name"), 1u);         // 西町
    EXPECT_EQ(world.Count("superseded_by_same_code_and_closest_name"), 1u);        // 西南西
    EXPECT_EQ(world.Count("superseded_by_same_name_in_the_heir_of_the_city"), 1u); // 東町
    EXPECT_EQ(world.Count("superseded_by_default_of_the_heir_of_the_city"), 1u);   // 無
    EXPECT_EQ(world.Count("superseded_towns"), 7u);
    EXPECT_EQ(world.Count("superseded_towns_left_out"), 1u); // 沼: 乙市 has no default
    EXPECT_EQ(world.Successions().size(), 8u);
    EXPECT_EQ(world.Count("superseded_cities"), 2u);
}

// --- towns that only organisations name ---

TEST(Superseded, ATownThatOnlyOrganisationsNameTakesTheOldEntry) {
    CWorld world({Town("丸の内", "", "1000005")}, {Office("郵便局", "永楽町", "１", "1008799")},
                 Editions{{Town("永楽町", "エイラク", "1000005")}});
    EXPECT_THAT(world.Names('2'), ElementsAre("丸の内||1000005|100", "永楽町||1000005|100"));
    EXPECT_EQ(world.Count("superseded_towns"), 1u);
    EXPECT_EQ(Latest(world, "東京都千代田区永楽町１"), "東京都|千代田区|丸の内|１|1000005|100");
    tagADDR addr(0);
    std::string strName = "郵便局";
    EXPECT_EQ(world.Dic().GetPostCodeFromAddr("東京都千代田区永楽町１", strName.data(), addr), 1);
    EXPECT_STREQ(addr.pszPostCode, "1008799");
}

TEST(Superseded, WhatLiesInSuchATownStaysCurrent) {
    CWorld world({Town("丸の内", "", "1000005")}, {Office("郵便局", "永楽町", "１", "1008799")},
                 Editions{{Town("永楽町", "エイラク", "1000005")}});
    std::vector<tagADDR> vAddr;
    world.Dic().GetAddrFromAddrPart("東京都千代田区", vAddr);
    std::vector<std::string> vCode;
    for (tagADDR const& addr : vAddr) vCode.emplace_back(addr.pszPostCode);
    EXPECT_THAT(vCode, ElementsAre("1000005", "1008799"));
}

TEST(Superseded, AnOrganisationsTownThatIsLeftOutKeepsNoCode) {
    CWorld const world({Town("丸の内", "", "1000005")}, {Office("郵便局", "永楽町", "１", "1008799")},
                       Editions{{Town("永楽町", "エイラク", "1009999"), Town("丸の内", "", "1000005")}});
    EXPECT_THAT(world.Names('2'), ElementsAre("丸の内||1000005|100", "永楽町"));
}

// --- tables by chance ---

namespace {

// A table of up to three cities, with towns whose names begin others' and codes that several of them share.
std::vector<CTown> AnyTable(std::mt19937& random) {
    std::vector<CTown> vTown;
    std::set<std::string> taken;
    for (char const* pszCity : {"甲市", "乙市", "丙市", "丁市"}) {
        if (random() % 4 == 0) continue;
        auto const Code = [&] { return std::to_string(1000000 + random() % 12); };
        if (random() % 3 != 0) vTown.push_back(Hamamatsu(pszCity, "以下に掲載がない場合", Code()));
        for (unsigned n = static_cast<unsigned>(random() % 6); n > 0; --n) {
            std::string strTown;
            for (unsigned nLength = 1 + static_cast<unsigned>(random() % 3); nLength > 0; --nLength)
                strTown += std::vector<std::string>{"東", "西", "町"}[random() % 3];
            if (!taken.insert(pszCity + strTown).second) continue;
            if (random() % 4 == 0) strTown += "（１丁目）";
            vTown.push_back(Hamamatsu(pszCity, strTown, Code()));
        }
    }
    if (vTown.empty()) vTown.push_back(Hamamatsu("甲市", "東", "1000001"));
    return vTown;
}

std::string PathOf(CTown const& town) {
    std::string const strTown = town.strTown.substr(0, town.strTown.find("（"));
    return town.strPref + "/" + town.strCity + "/" + (strTown == "以下に掲載がない場合" ? "" : strTown);
}

} // namespace

TEST(Superseded, WhateverTheTablesHoldEveryTownThatIsGoneIsRenewedOrReportedOnce) {
    std::mt19937 random(20151029);
    size_t nRenewed = 0, nLeftOut = 0;
    for (int nRound = 0; nRound < 200; ++nRound) {
        SCOPED_TRACE(nRound);
        std::vector<CTown> const vToday = AnyTable(random);
        Editions vPrevious;
        for (unsigned n = static_cast<unsigned>(random() % 4); n > 0; --n) vPrevious.push_back(AnyTable(random));
        std::vector<COffice> const vOffice = {COffice{"役場", "静岡県", vToday[0].strCity, "東町西", "", "1008701"}};
        CWorld world(vToday, vOffice, vPrevious);
        CWorld const alone(vToday, vOffice);

        std::set<std::string> today, cities, gone, reported;
        for (CTown const& town : vToday) {
            today.insert(PathOf(town));
            cities.insert(town.strCity);
        }
        for (auto const& vTown : vPrevious)
            for (CTown const& town : vTown)
                if (today.count(PathOf(town)) == 0 && (PathOf(town).back() != '/' || cities.count(town.strCity) == 0))
                    gone.insert(PathOf(town));
        uint64_t nSuperseded = 0;
        for (std::string const& strLine : world.Successions()) {
            std::string const strOld = strLine.substr(0, strLine.find('|'));
            std::string const strNext = strLine.substr(strOld.size() + 9, strLine.rfind('|') - strOld.size() - 9);
            EXPECT_TRUE(reported.insert(strOld).second) << strLine;
            if (!strNext.empty()) {
                EXPECT_EQ(today.count(strNext), 1u) << strLine;
                ++nSuperseded;
            }
            if (strOld.back() == '/') continue;
            std::string strText = strOld;
            for (size_t nPos; (nPos = strText.find('/')) != std::string::npos;) strText.erase(nPos, 1);
            tagADDR addr(0);
            bool const bRenewed = world.Dic().GetLatestAddr(strText.c_str(), addr) == 1;
            if (!strNext.empty()) {
                EXPECT_TRUE(bRenewed) << strLine;
                EXPECT_EQ(std::string(addr.pszPref) + "/" + addr.pszCity + "/" + addr.pszTown, strNext) << strLine;
            }
        }
        EXPECT_EQ(reported, gone);
        EXPECT_EQ(world.Count("superseded_towns"), nSuperseded);
        EXPECT_EQ(world.Count("superseded_towns_left_out"), gone.size() - nSuperseded);
        EXPECT_EQ(world.Count("entries"), alone.Count("entries") + nSuperseded);
        EXPECT_EQ(world.Count("cities"), cities.size());
        // Today's towns are found as before.
        for (CTown const& town : vToday) {
            std::string const strText = town.strPref + town.strCity + town.strTown.substr(0, town.strTown.find("（"));
            if (PathOf(town).back() == '/') continue;
            tagADDR addr(0);
            EXPECT_EQ(world.Dic().GetLatestAddr(strText.c_str(), addr), 1u) << strText;
            EXPECT_EQ(std::string(addr.pszPref) + "/" + addr.pszCity + "/" + addr.pszTown, PathOf(town));
        }
        nRenewed += nSuperseded;
        nLeftOut += gone.size() - nSuperseded;
    }
    EXPECT_GT(nRenewed, 500u); // the chance tables do hold both
    EXPECT_GT(nLeftOut, 20u);
}

// --- the image ---

TEST(Superseded, TheCountsOfTodaysCitiesLeaveOldOnesOut) {
    CWorld const world({Hamamatsu("甲市", "以下に掲載がない場合", "1000000"), Hamamatsu("甲市", "東", "1000001")}, {},
                       Editions{{Hamamatsu("旧市", "東", "1000001")}});
    EXPECT_EQ(world.Count("cities"), 1u);
    EXPECT_EQ(world.Count("cities_without_code"), 0u);
}

TEST(Superseded, TheSameInputGivesTheSameBytes) {
    auto const Make = [] {
        return CWorld({Hamamatsu("甲市", "東", "1000001")}, {},
                      Editions{{Hamamatsu("旧市", "東", "1000001"), Hamamatsu("古市", "東", "1000001")}})
            .Bytes();
    };
    EXPECT_EQ(Make(), Make());
}

TEST(Superseded, EntriesStillStandInTheOrderOfTheirCodesAndEveryNodeInOneRunPerLevel) {
    CWorld const world({Hamamatsu("甲市", "東", "1000005"), Hamamatsu("乙市", "西", "1000001")},
                       {COffice{"役場", "静岡県", "甲市", "東", "", "1008701"}},
                       Editions{{Hamamatsu("旧市", "東", "1000001"), Hamamatsu("甲市", "古", "1000005"),
                                 Hamamatsu("旧市", "以下に掲載がない場合", "1000005")}});
    std::string strLast;
    for (uint32_t n = 0; tagADDRINFO const* pInfo = world.Dic().GetAddrInfo(n); ++n) {
        EXPECT_LE(strLast, world.Dic().GetString(pInfo->nCode));
        strLast = world.Dic().GetString(pInfo->nCode);
    }
    for (auto const& [nLevel, nFirst, nCount] : {std::tuple{LEVEL_PREF, HDR_FIRST_PREF, HDR_PREF_COUNT},
                                                 std::tuple{LEVEL_CITY, HDR_FIRST_CITY, HDR_CITY_COUNT},
                                                 std::tuple{LEVEL_TOWN, HDR_FIRST_TOWN, HDR_TOWN_COUNT}}) {
        uint32_t nNodes = 0;
        for (uint32_t n = 0; tagADDRNODE const* pNode = world.Dic().GetAddrNode(n); ++n) {
            if (pNode->nLevel != nLevel) continue;
            EXPECT_EQ(n, world.Word(nFirst) + nNodes++);
        }
        EXPECT_EQ(nNodes, world.Word(nCount));
    }
}

TEST(Superseded, EveryCityOldOrNewStandsInTheCityIndexByTheBytesOfItsName) {
    CWorld const world({Hamamatsu("わ市", "東", "1000005"), Hamamatsu("あ市", "西", "1000001")}, {},
                       Editions{{Hamamatsu("み市", "東", "1000001")}});
    std::vector<std::string> vName;
    for (uint32_t n = 0; n < world.Word(HDR_CITY_COUNT); ++n)
        vName.push_back(world.Name(ReadWord(world.Bytes().data() + world.Word(HDR_CITY_INDEX) + 4 * n)));
    EXPECT_THAT(vName, ElementsAre("あ市", "み市", "わ市"));
}

TEST(Superseded, NamesOfOldTownsAreNoneOfTodaysStrings) {
    CWorld const world({Hamamatsu("甲市", "東", "1000005")}, {}, Editions{{Hamamatsu("旧市", "東", "1000005")}});
    std::set<uint32_t> names;
    for (uint32_t n = 0; n < world.Count("nodes"); ++n) names.insert(world.Dic().GetAddrNode(n)->nName);
    EXPECT_EQ(names.size(), world.Count("nodes"));
}

TEST(Superseded, ALongNameOfAnOldTownIsCut) {
    std::string const strLong = Repeat("東", 50);
    CWorld const world({Town("西", "", "1000005")}, {}, Editions{{Town(strLong, "", "1000005")}});
    EXPECT_THAT(Superseded(world), ElementsAre("1000005 " + Repeat("東", 42)));
}
