// Addresses of a postal code: what is appended, in which order, and what is remembered of it.
#include "dic/AddrDic.h"

#include "tests/support/Peek.h"
#include "tests/support/TestImage.h"

#include <gmock/gmock.h>

#include <cstring>
#include <string>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsNull;

// A prefecture of three cities, and how to file towns below them.
//
//   node 0  東京都     1  千代田区    2  港区    3  利島村
struct CWorld : CTestImage {
    CWorld() {
        AddNode(LEVEL_PREF, ADDR_NONE, "東京都", "トウキョウト");
        for (char const* psz : {"千代田区", "港区", "利島村"}) AddNode(LEVEL_CITY, 0, psz);
    }

    uint32_t AddTown(uint32_t nCity, std::string_view strTown, std::string_view strCode, std::string_view strOld) {
        return AddInfo(AddNode(LEVEL_TOWN, nCity, strTown), strCode, strOld);
    }

    // An organisation in a town of its own, "town of NAME".
    uint32_t AddOffice(uint32_t nCity, std::string const& strOffice, std::string_view strCode) {
        uint32_t const nTown = AddNode(LEVEL_TOWN, nCity, "town of " + strOffice);
        return AddInfo(AddNode(LEVEL_OFFICE, nTown, strOffice), strCode, "100");
    }
};
constexpr uint32_t PREF = 0, CHIYODA = 1, MINATO = 2, TOSHIMA = 3;

class CLookup {
  public:
    explicit CLookup(CTestImage const& image) : m_vByte(image.Bytes()) { dic.SetDictionary(m_vByte.data()); }

    int Post7(char const* pszCode) { return dic.GetAddrFromPostCode7(pszCode, vAddr); }
    int Post5(char const* pszCode) { return dic.GetAddrFromPostCode5(pszCode, vAddr); }

    std::vector<std::string> Towns() const {
        std::vector<std::string> vTown;
        for (tagADDR const& addr : vAddr) vTown.emplace_back(addr.pszTown != nullptr ? addr.pszTown : "(null)");
        return vTown;
    }

    // The city list as node indices, -1 for null.
    std::vector<long> Cities() {
        std::vector<long> vCity;
        for (tagADDRNODE const* p : CAddrDicPeek(dic).vCityList)
            vCity.push_back(p == nullptr ? -1 : static_cast<long>(p - dic.GetAddrNode(0)));
        return vCity;
    }
    std::string Office() { return CAddrDicPeek(dic).szOffice; }

    CAddrDic dic;
    std::vector<tagADDR> vAddr;

  private:
    std::vector<unsigned char> m_vByte;
};

// --- seven digits
// -------------------------------------------------------------------------------------------------------

TEST(AddressesOfAPostCode, HoldTheTextsOfTheirEntryAndItsCityAsListNode) {
    CWorld world;
    world.AddTown(CHIYODA, "千代田", "1000001", "100");
    CLookup lookup(world);
    EXPECT_EQ(lookup.Post7("1000001"), 1);
    ASSERT_EQ(lookup.vAddr.size(), 1u);
    tagADDR const& addr = lookup.vAddr[0];
    EXPECT_STREQ(addr.pszPostCode, "1000001");
    EXPECT_STREQ(addr.pszCodeExt, "");
    EXPECT_STREQ(addr.pszPref, "東京都");
    EXPECT_STREQ(addr.pszPrefKana, "トウキョウト");
    EXPECT_STREQ(addr.pszCity, "千代田区");
    EXPECT_STREQ(addr.pszTown, "千代田");
    EXPECT_THAT(addr.pszArea, IsNull());
    EXPECT_THAT(addr.pszOffice, IsNull());
    EXPECT_EQ(addr.pListCity, lookup.dic.GetAddrNode(CHIYODA));
    EXPECT_THAT(addr.pPrefNode, IsNull());
    EXPECT_THAT(addr.pCityNode, IsNull());
    EXPECT_THAT(addr.pTownNode, IsNull());
    EXPECT_EQ(addr.nCityOrder, 0);
}

TEST(AddressesOfAPostCode, AreTheSameInEverySpellingOfIt) {
    CWorld world;
    world.AddTown(CHIYODA, "千代田", "1000001", "100");
    for (char const* psz : {"1000001", "100-0001", " 100 0001 ", "\x81\xA7\x82\x50\x82\x4F\x82\x4F-0001"}) {
        CLookup lookup(world);
        EXPECT_EQ(lookup.Post7(psz), 1) << psz;
        EXPECT_THAT(lookup.Towns(), ElementsAre("千代田")) << psz;
    }
}

TEST(AddressesOfAPostCode, DoNotChangeTheCallersText) {
    CLookup lookup{CTinyWorld()};
    char szCode[] = "100-0001";
    EXPECT_EQ(lookup.Post7(szCode), 1);
    EXPECT_STREQ(szCode, "100-0001");
}

CWorld ThreeDigitWorld() {
    CWorld world;
    world.AddTown(MINATO, "before", "0999999", "099");
    world.AddTown(MINATO, "c", "1000000", "100");
    world.AddTown(CHIYODA, "b", "1000001", "100");
    world.AddTown(MINATO, "a", "1000001", "100");
    world.AddTown(CHIYODA, "d", "1009999", "100");
    world.AddTown(MINATO, "behind", "1010000", "101");
    return world;
}

TEST(AddressesOfAPostCode, AreThoseOfAllCodesWithThatBeginningInTableOrder) {
    CLookup lookup{ThreeDigitWorld()};
    EXPECT_EQ(lookup.Post7("100"), 1);
    EXPECT_THAT(lookup.Towns(), ElementsAre("c", "b", "a", "d"));
}

TEST(AddressesOfAPostCode, EndWithTheTable) {
    CLookup lookup{ThreeDigitWorld()};
    EXPECT_EQ(lookup.Post7("101"), 1);
    EXPECT_THAT(lookup.Towns(), ElementsAre("behind"));
}

TEST(AddressesOfAPostCode, AreSortedUnderSortTypeNine) {
    CLookup lookup{ThreeDigitWorld()};
    lookup.dic.SetSortType(9);
    EXPECT_EQ(lookup.Post7("100"), 1);
    EXPECT_THAT(lookup.Towns(), ElementsAre("b", "d", "a", "c")) << "千代田区 before 港区";
    EXPECT_THAT(lookup.Cities(), ElementsAre(CHIYODA, CHIYODA, MINATO, MINATO)) << "in the order of the answer";
}

TEST(AddressesOfAPostCode, StayInTableOrderUnderEveryOtherSortType) {
    for (unsigned short nSortType : std::initializer_list<unsigned short>{0, 1, 2, 3, 8, 10, 0x109, 0xFFFF}) {
        CLookup lookup{ThreeDigitWorld()};
        lookup.dic.SetSortType(nSortType);
        EXPECT_EQ(lookup.Post7("100"), 1);
        EXPECT_THAT(lookup.Towns(), ElementsAre("c", "b", "a", "d")) << nSortType;
    }
}

TEST(AddressesOfAPostCode, AreSortedByTheConventionalOrderOfPrefectures) {
    CTestImage image;
    for (char const* psz : {"沖縄県", "東京都", "北海道"}) {
        uint32_t const nCity = image.AddNode(LEVEL_CITY, image.AddNode(LEVEL_PREF, ADDR_NONE, psz), "市");
        image.AddInfo(image.AddNode(LEVEL_TOWN, nCity, psz), "1000001", "100");
    }
    CLookup lookup(image);
    lookup.dic.SetSortType(9);
    lookup.Post7("1000001");
    EXPECT_THAT(lookup.Towns(), ElementsAre("北海道", "東京都", "沖縄県"));
}

TEST(AddressesOfAPostCode, AreAppendedToWhatTheCallerHas) {
    CLookup lookup{ThreeDigitWorld()};
    EXPECT_EQ(lookup.Post7("101"), 1);
    EXPECT_EQ(lookup.Post7("1000001"), 1);
    EXPECT_THAT(lookup.Towns(), ElementsAre("behind", "b", "a"));
    EXPECT_THAT(lookup.Cities(), ElementsAre(MINATO, CHIYODA, MINATO)) << "the list is of the whole vector";
}

TEST(AddressesOfAPostCode, AreSortedTogetherWithWhatTheCallerHas) {
    CLookup lookup{ThreeDigitWorld()};
    lookup.dic.SetSortType(9);
    tagADDR own(0);
    own.pszPref = "東京都";
    own.pszCity = "千代田区";
    own.pszTown = "c";
    lookup.vAddr.push_back(own); // without a list node
    own.pszTown = "z";
    own.pListCity = lookup.dic.GetAddrNode(TOSHIMA);
    lookup.vAddr.push_back(own);
    EXPECT_EQ(lookup.Post7("100"), 1);
    EXPECT_THAT(lookup.Towns(), ElementsAre("b", "c", "d", "z", "a", "c"));
    EXPECT_THAT(lookup.Cities(), ElementsAre(CHIYODA, CHIYODA, TOSHIMA, MINATO, MINATO));
}

TEST(AddressesOfAPostCode, LeaveOutEntriesWithoutATown) {
    CWorld world;
    world.AddInfo(CHIYODA, "1000001", "100");
    world.AddTown(CHIYODA, "千代田", "1000001", "100");
    world.AddInfo(world.AddNode(LEVEL_OFFICE, CHIYODA, "no town"), "1000001", "100");
    CLookup lookup(world);
    EXPECT_EQ(lookup.Post7("1000001"), 1);
    EXPECT_THAT(lookup.Towns(), ElementsAre("千代田"));
    EXPECT_THAT(lookup.Cities(), ElementsAre(CHIYODA));
    EXPECT_THAT(lookup.dic.GetLastInc(), IsNull()) << "an entry left out is not remembered";
}

TEST(AddressesOfAPostCode, KeepEntriesWithANamelessTown) {
    CWorld world;
    world.AddTown(CHIYODA, "", "1000000", "100");
    CLookup lookup(world);
    EXPECT_EQ(lookup.Post7("1000000"), 1);
    EXPECT_THAT(lookup.Towns(), ElementsAre(""));
}

TEST(AddressesOfAPostCode, LeaveOutEntriesWithoutACity) {
    CWorld world;
    uint32_t const nTown = world.AddNode(LEVEL_TOWN, PREF, "cityless");
    world.AddInfo(world.AddNode(LEVEL_OFFICE, nTown, "cityless office"), "1000001", "100");
    world.AddTown(CHIYODA, "千代田", "1000001", "100");
    CLookup lookup(world);
    EXPECT_EQ(lookup.Post7("1000001"), 1);
    EXPECT_THAT(lookup.Towns(), ElementsAre("千代田"));
    EXPECT_THAT(lookup.dic.GetLastInc(), IsNull()) << "an entry left out is not remembered";
}

TEST(AddressesOfAPostCode, CanBeNoneAlthoughTheCodeWasFound) {
    CWorld world;
    world.AddInfo(CHIYODA, "1000001", "100");
    CLookup lookup(world);
    EXPECT_EQ(lookup.Post7("1000001"), 1);
    EXPECT_EQ(lookup.vAddr.size(), 0u);
    EXPECT_EQ(lookup.Office(), "会社名なし");
}

TEST(AddressesOfAPostCode, IncludeSupersededOnes) {
    CWorld world;
    world.vInfo[world.AddTown(CHIYODA, "old", "1000001", "100")].nNode |= ADDRINFO_SUPERSEDED;
    CLookup lookup(world);
    EXPECT_EQ(lookup.Post7("1000001"), 1);
    EXPECT_THAT(lookup.Towns(), ElementsAre("old"));
    EXPECT_THAT(lookup.Cities(), ElementsAre(CHIYODA));
}

TEST(AddressesOfAPostCode, FillTheCityListWithRepeats) {
    CWorld world;
    for (uint32_t nCity : {CHIYODA, CHIYODA, MINATO, CHIYODA}) world.AddTown(nCity, "x", "1000001", "100");
    CLookup lookup(world);
    CAddrDicPeek(lookup.dic).vCityList = {nullptr, nullptr, nullptr, nullptr, nullptr, nullptr};
    lookup.Post7("1000001");
    EXPECT_THAT(lookup.Cities(), ElementsAre(CHIYODA, CHIYODA, MINATO, CHIYODA));
}

// --- the last organisation
// ----------------------------------------------------------------------------------------------

TEST(OfficeOfALookup, IsTheLastOneInTableOrder) {
    CWorld world;
    world.AddOffice(CHIYODA, "first office", "1000001");
    world.AddOffice(MINATO, "last office", "1000001");
    world.AddTown(CHIYODA, "no office", "1000001", "100");
    CLookup lookup(world);
    lookup.dic.SetSortType(9);
    EXPECT_EQ(lookup.Post7("1000001"), 1);
    EXPECT_THAT(lookup.Towns(), ElementsAre("no office", "town of first office", "town of last office"));
    EXPECT_STREQ(lookup.dic.GetLastInc(), "last office");
    EXPECT_EQ(lookup.dic.GetLastInc(), lookup.vAddr[2].pszOffice) << "borrowed from the image";
    EXPECT_EQ(lookup.Office(), "last office");
}

TEST(OfficeOfALookup, IsNotTheLastOneInSortedOrder) {
    CWorld world;
    world.AddOffice(MINATO, "sorted last", "1000001");
    world.AddOffice(CHIYODA, "sorted first", "1000001");
    CLookup lookup(world);
    lookup.dic.SetSortType(9);
    lookup.Post7("1000001");
    EXPECT_THAT(lookup.Towns(), ElementsAre("town of sorted first", "town of sorted last"));
    EXPECT_STREQ(lookup.dic.GetLastInc(), "sorted first");
}

TEST(OfficeOfALookup, IsForgottenByALookupWithoutOne) {
    CWorld world;
    world.AddOffice(CHIYODA, "office", "1000001");
    world.AddTown(CHIYODA, "千代田", "1000002", "100");
    CLookup lookup(world);
    lookup.Post7("1000001");
    ASSERT_STREQ(lookup.dic.GetLastInc(), "office");
    EXPECT_EQ(lookup.Post7("1000002"), 1);
    EXPECT_THAT(lookup.dic.GetLastInc(), IsNull());
    EXPECT_EQ(lookup.Office(), "会社名なし");
}

TEST(OfficeOfALookup, IsCutToTheSizeOfItsBuffer) {
    for (size_t nLength : {998u, 999u, 1000u, 1001u, 5000u}) {
        std::string const strOffice(nLength, 'x');
        CWorld world;
        world.AddOffice(CHIYODA, strOffice, "1000001");
        CLookup lookup(world);
        EXPECT_EQ(lookup.Post7("1000001"), 1);
        EXPECT_EQ(lookup.Office(), strOffice.substr(0, 999)) << nLength;
        EXPECT_EQ(lookup.dic.GetLastInc(), strOffice) << "the borrowed text is whole";
        EXPECT_EQ(CAddrDicPeek(lookup.dic).nSortType, 2) << "the member behind the buffer";
    }
}

// --- codes that are not there
// ---------------------------------------------------------------------------------------------

TEST(FailedLookup, LeavesAnswerCityListAndOfficeAsTheyWere) {
    CWorld world;
    world.AddOffice(CHIYODA, "office", "1000001");
    world.AddOffice(CHIYODA, "other", "1000002");
    for (char const* psz :
         {static_cast<char const*>(nullptr), "", "-", "no digits", "１００", "2000000", "10000011", "1?"}) {
        CLookup lookup(world);
        lookup.Post7("1000001");
        EXPECT_EQ(lookup.Post7(psz), 0) << (psz != nullptr ? psz : "(null)");
        EXPECT_THAT(lookup.Towns(), ElementsAre("town of office"));
        EXPECT_THAT(lookup.Cities(), ElementsAre(CHIYODA));
        EXPECT_STREQ(lookup.dic.GetLastInc(), "office");
        EXPECT_EQ(lookup.Office(), "office");
    }
}

TEST(FailedLookup, ByOldCodeLeavesAnswerAndCityListAsTheyWere) {
    CLookup lookup{ThreeDigitWorld()};
    lookup.Post5("101");
    for (char const* psz : {static_cast<char const*>(nullptr), "2", "10x", "99"}) {
        EXPECT_EQ(lookup.Post5(psz), 0) << (psz != nullptr ? psz : "(null)");
        EXPECT_THAT(lookup.Towns(), ElementsAre("behind"));
        EXPECT_THAT(lookup.Cities(), ElementsAre(MINATO));
    }
}

// --- the old code
// ---------------------------------------------------------------------------------------------------------

TEST(AddressesOfAnOldCode, AreTheEntriesWithExactlyThatOldCode) {
    CWorld world;
    world.AddTown(CHIYODA, "a", "1000001", "100");
    world.AddTown(CHIYODA, "longer", "1000002", "10001");
    world.AddTown(CHIYODA, "shorter", "1000003", "10");
    world.AddTown(CHIYODA, "b", "1000004", "100");
    CLookup lookup(world);
    EXPECT_EQ(lookup.Post5("100"), 1);
    EXPECT_THAT(lookup.Towns(), ElementsAre("a", "b"));
    EXPECT_STREQ(lookup.vAddr[0].pszPostCode, "1000001");
    EXPECT_STREQ(lookup.vAddr[0].pszCodeExt, "");
}

TEST(AddressesOfAnOldCode, NeedNotStandSideBySideNorBeginWithIt) {
    CWorld world;
    world.AddTown(CHIYODA, "a", "1000001", "100");
    world.AddTown(CHIYODA, "other", "1000002", "101");
    world.AddTown(CHIYODA, "far", "9999999", "100");
    CLookup lookup(world);
    EXPECT_EQ(lookup.Post5("100"), 1);
    EXPECT_THAT(lookup.Towns(), ElementsAre("a", "far"));
}

TEST(AddressesOfAnOldCode, BeginAtTheFirstCodeThatBeginsWithIt) {
    CWorld world;
    world.AddTown(CHIYODA, "too early", "0990000", "100");
    world.AddTown(CHIYODA, "first", "1000000", "100");
    CLookup lookup(world);
    EXPECT_EQ(lookup.Post5("100"), 1);
    EXPECT_THAT(lookup.Towns(), ElementsAre("first"));
}

TEST(AddressesOfAnOldCode, CanBeNoneAlthoughACodeBeginsWithIt) {
    CWorld world;
    world.AddTown(CHIYODA, "a", "1000001", "101");
    CLookup lookup(world);
    CAddrDicPeek(lookup.dic).vCityList = {nullptr};
    EXPECT_EQ(lookup.Post5("100"), 1);
    EXPECT_EQ(lookup.vAddr.size(), 0u);
    EXPECT_THAT(lookup.Cities(), IsEmpty());
}

TEST(AddressesOfAnOldCode, AreNotNormalised) {
    CWorld world;
    world.AddTown(CHIYODA, "a", "1000001", "100");
    CLookup lookup(world);
    EXPECT_EQ(lookup.Post5("1-00"), 0);
}

TEST(AddressesOfAnOldCode, StayInTableOrderUnderSortTypeNine) {
    CLookup lookup{ThreeDigitWorld()};
    lookup.dic.SetSortType(9);
    EXPECT_EQ(lookup.Post5("100"), 1);
    EXPECT_THAT(lookup.Towns(), ElementsAre("c", "b", "a", "d"));
}

TEST(AddressesOfAnOldCode, IncludeEntriesWithoutTownOrCity) {
    CWorld world;
    world.AddInfo(CHIYODA, "1000001", "100");
    world.AddInfo(PREF, "1000002", "100");
    CLookup lookup(world);
    EXPECT_EQ(lookup.Post5("100"), 1);
    EXPECT_THAT(lookup.Towns(), ElementsAre("(null)", "(null)"));
    EXPECT_THAT(lookup.Cities(), ElementsAre(CHIYODA, -1));
    EXPECT_THAT(lookup.vAddr[0].pListCity, IsNull()) << "the list node is the other lookup's";
}

TEST(AddressesOfAnOldCode, AreAppendedToWhatTheCallerHas) {
    CLookup lookup{ThreeDigitWorld()};
    lookup.Post7("101");
    EXPECT_EQ(lookup.Post5("100"), 1);
    EXPECT_THAT(lookup.Towns(), ElementsAre("behind", "c", "b", "a", "d"));
    EXPECT_THAT(lookup.Cities(), ElementsAre(MINATO, CHIYODA, MINATO, CHIYODA)) << "the list is of this lookup only";
}

TEST(AddressesOfAnOldCode, ListACityOnceWhereItsEntriesAreNeighbours) {
    CWorld world;
    for (uint32_t nCity : {CHIYODA, CHIYODA, MINATO, MINATO, CHIYODA}) world.AddTown(nCity, "x", "1000001", "100");
    CLookup lookup(world);
    lookup.Post5("100");
    EXPECT_EQ(lookup.vAddr.size(), 5u);
    EXPECT_THAT(lookup.Cities(), ElementsAre(CHIYODA, MINATO, CHIYODA));
}

TEST(AddressesOfAnOldCode, ListNoCityByTheSameRule) {
    CWorld world;
    for (uint32_t nNode : {PREF, PREF, CHIYODA, PREF, PREF}) world.AddInfo(nNode, "1000001", "100");
    CLookup lookup(world);
    lookup.Post5("100");
    EXPECT_THAT(lookup.Cities(), ElementsAre(-1, CHIYODA, -1));
}

TEST(AddressesOfAnOldCode, DoNotTouchTheOfficeOfTheLastLookup) {
    CWorld world;
    world.AddOffice(CHIYODA, "office", "1000001");
    world.AddOffice(CHIYODA, "other", "1000002");
    CLookup lookup(world);
    lookup.Post7("1000001");
    lookup.vAddr.clear();
    EXPECT_EQ(lookup.Post5("100"), 1);
    EXPECT_EQ(lookup.vAddr.size(), 2u);
    EXPECT_STREQ(lookup.dic.GetLastInc(), "office");
    EXPECT_EQ(lookup.Office(), "office");
}

TEST(AddressesOfAnOldCode, IncludeEntriesThatHaveNone) {
    CWorld world;
    world.AddTown(CHIYODA, "a", "1000001", "100");
    world.AddTown(CHIYODA, "b", "1000002", "101");
    world.AddInfoAt(world.AddNode(LEVEL_TOWN, CHIYODA, "none"), static_cast<uint32_t>(world.strArea.size()));
    world.vInfo[2].nCode = static_cast<uint32_t>(world.strArea.size());
    world.strArea += std::string("1000003") + '\0'; // its NUL ends the area: no old code behind it
    CLookup lookup(world);
    EXPECT_EQ(lookup.Post5("100"), 1);
    EXPECT_THAT(lookup.Towns(), ElementsAre("a", "none"));
}

TEST(AddressesOfAnOldCode, OfTheEmptyTextAreTheEntriesWithAnEmptyOne) {
    CWorld world;
    world.AddTown(CHIYODA, "a", "1000001", "100");
    world.AddTown(CHIYODA, "b", "1000002", "");
    CLookup lookup(world);
    EXPECT_EQ(lookup.Post5(""), 1);
    EXPECT_THAT(lookup.Towns(), ElementsAre("b"));
}

TEST(AddressesOfAnOldCode, OfTheEmptyTextAreNoneInAnEmptyTable) {
    CLookup lookup{CWorld()};
    CAddrDicPeek(lookup.dic).vCityList = {nullptr};
    EXPECT_EQ(lookup.Post5(""), 1);
    EXPECT_EQ(lookup.vAddr.size(), 0u);
    EXPECT_THAT(lookup.Cities(), IsEmpty());
}

// One entry in front, then 10,002 whose codes begin with 100; one of these has the old code.
std::vector<std::string> TownsWhenTheMatchStandsAt(uint32_t nOffset) {
    CWorld world;
    world.AddTown(CHIYODA, "too early", "0990000", "100");
    uint32_t const nOther = world.AddNode(LEVEL_TOWN, CHIYODA, "other");
    uint32_t const nMatch = world.AddNode(LEVEL_TOWN, CHIYODA, "match");
    uint32_t const nOtherCode = world.AddText("1000001", "101");
    uint32_t const nMatchCode = world.AddText("1000001", "100");
    for (uint32_t n = 0; n < 10002; ++n)
        world.AddInfoAt(n == nOffset ? nMatch : nOther, n == nOffset ? nMatchCode : nOtherCode);
    CLookup lookup(world);
    EXPECT_EQ(lookup.Post5("100"), 1);
    return lookup.Towns();
}

TEST(AddressesOfAnOldCode, AreLookedForInTenThousandEntriesAndNoMore) {
    EXPECT_THAT(TownsWhenTheMatchStandsAt(0), ElementsAre("match"));
    EXPECT_THAT(TownsWhenTheMatchStandsAt(9999), ElementsAre("match"));
    EXPECT_THAT(TownsWhenTheMatchStandsAt(10000), IsEmpty());
    EXPECT_THAT(TownsWhenTheMatchStandsAt(10001), IsEmpty());
}

TEST(AddressesOfAnOldCode, CountEveryEntryExaminedNotOnlyTheMatches) {
    CWorld world;
    uint32_t const nCode = world.AddText("1000001", "100");
    uint32_t const nTown = world.AddNode(LEVEL_TOWN, CHIYODA, "x");
    for (int n = 0; n < 10500; ++n) world.AddInfoAt(nTown, nCode);
    CLookup lookup(world);
    EXPECT_EQ(lookup.Post5("100"), 1);
    EXPECT_EQ(lookup.vAddr.size(), 10000u);
}

TEST(CitiesOfAnOldCode, AreAnEmptyEntryPoint) {
    CLookup lookup{ThreeDigitWorld()};
    lookup.Post7("101");
    for (char const* psz : {static_cast<char const*>(nullptr), "", "100"}) {
        EXPECT_EQ(lookup.dic.GetCityFromPostCode5(psz, lookup.vAddr), 1);
        EXPECT_THAT(lookup.Towns(), ElementsAre("behind"));
        EXPECT_THAT(lookup.Cities(), ElementsAre(MINATO));
    }
}

} // namespace
