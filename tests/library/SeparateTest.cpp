// An address text cut into prefecture, city and town: which name is taken, how far the text is read, what is written.
#include "tests/library/AddrTextWorld.h"

#include <gmock/gmock.h>

#include <cstring>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsNull;

// One level read at the front of a text.
struct CRead {
    int nNode;
    std::string strRest; // of the text, from the cursor on
    tagADDR addr;
};

CRead Pref(CAddrDic& dic, char const* pszText) {
    CRead read = {0, "", MarkedAddr()};
    read.nNode = dic.SeparatePref(&pszText, read.addr);
    read.strRest = pszText;
    return read;
}

CRead City(CAddrDic& dic, char const* pszText, unsigned long nPref = NO_NODE) {
    CRead read = {0, "", MarkedAddr()};
    read.nNode = dic.SeparateCity(&pszText, nPref, read.addr);
    read.strRest = pszText;
    return read;
}

CRead Town(CAddrDic& dic, char const* pszText, unsigned long nCity = NO_NODE) {
    CRead read = {0, "", MarkedAddr()};
    read.nNode = dic.SeparateTown(&pszText, nCity, read.addr);
    read.strRest = pszText;
    return read;
}

// Nodes of one level, in the order given, below one node of the level above: that is node 0, they are 1, 2, ...
CTestImage Siblings(uint8_t nLevel, std::vector<std::string> const& vName) {
    CTestImage image;
    if (nLevel != LEVEL_PREF) image.AddNode(nLevel - 1, ADDR_NONE, "parent");
    for (std::string const& str : vName) image.AddNode(nLevel, nLevel == LEVEL_PREF ? ADDR_NONE : 0, str);
    image.Complete();
    return image;
}

// --- prefectures ---------------------------------------------------------------------------------------------------

TEST(SeparatePref, ReadsThePrefectureAtTheFront) {
    CTextWorld const world;
    CGuardedDic dic(world);
    CRead const read = Pref(dic, "広島県府中市");
    EXPECT_EQ(read.nNode, static_cast<int>(world.nHiroshima));
    EXPECT_EQ(read.strRest, "府中市");
    EXPECT_THAT(Changed(read.addr), ElementsAre("pszPref", "pszPrefKana", "pPrefNode"));
    EXPECT_EQ(read.addr.pszPref, dic.Name(world.nHiroshima)) << "the image's own text";
    EXPECT_EQ(read.addr.pszPrefKana, read.addr.pszPref + std::strlen("広島県") + 1);
    EXPECT_STREQ(read.addr.pszPrefKana, "ヒロシマケン");
    EXPECT_EQ(read.addr.pPrefNode, dic.Node(world.nHiroshima));
}

TEST(SeparatePref, WritesNoCodesEvenWhenThePrefectureHasAnEntry) {
    CTextWorld world;
    world.AddInfo(world.nTokyo, "1999999", "199");
    world.Complete();
    CGuardedDic dic(world);
    EXPECT_THAT(Changed(Pref(dic, "東京都").addr), ElementsAre("pszPref", "pszPrefKana", "pPrefNode"));
}

TEST(SeparatePref, ThatFailsChangesNothing) {
    CTextWorld const world;
    CGuardedDic dic(world);
    for (char const* psz : {"", "東京", "千代田区", " 東京都", "大東京都", "東\xE4"}) {
        CRead const read = Pref(dic, psz);
        EXPECT_EQ(read.nNode, -1) << psz;
        EXPECT_EQ(read.strRest, psz);
        EXPECT_THAT(Changed(read.addr), IsEmpty()) << psz;
    }
}

TEST(SeparatePref, TakesTheFirstThatFitsAndNotTheLongest) {
    CGuardedDic shorter(Siblings(LEVEL_PREF, {"京都", "京都府"}));
    EXPECT_EQ(Pref(shorter, "京都府京都市").nNode, 0);
    EXPECT_EQ(Pref(shorter, "京都府京都市").strRest, "府京都市");
    CGuardedDic longer(Siblings(LEVEL_PREF, {"京都府", "京都"}));
    EXPECT_EQ(Pref(longer, "京都府京都市").nNode, 0);
    EXPECT_EQ(Pref(longer, "京都市").nNode, 1);
}

TEST(SeparatePref, FindsTheFirstOfTwoOfOneName) {
    CGuardedDic dic(Siblings(LEVEL_PREF, {"x", "県", "県"}));
    EXPECT_EQ(Pref(dic, "県").nNode, 1);
    EXPECT_EQ(Pref(dic, "県").strRest, "");
}

TEST(SeparatePref, TakesAPrefectureWithoutANameForTheBeginningOfEveryText) {
    CGuardedDic dic(Siblings(LEVEL_PREF, {"東京都", "", "広島県"}));
    EXPECT_EQ(Pref(dic, "東京都").nNode, 0);
    EXPECT_EQ(Pref(dic, "広島県").nNode, 1);
    EXPECT_EQ(Pref(dic, "広島県").strRest, "広島県");
    EXPECT_EQ(Pref(dic, "").nNode, 1);
}

TEST(SeparatePref, StopsAtAPrefectureThatCannotBeRead) {
    CTestImage image = Siblings(LEVEL_PREF, {"東京都", "大阪府", "広島県"});
    image.vNode[1].nName = ADDR_NONE;
    CGuardedDic dic(image);
    EXPECT_EQ(Pref(dic, "東京都").nNode, 0) << "before it";
    EXPECT_EQ(Pref(dic, "広島県").nNode, -1) << "behind it";
}

TEST(SeparatePref, LooksOnlyAtTheNodesThatTheHeaderCallsPrefectures) {
    CTestImage image = Siblings(LEVEL_PREF, {"東京都", "大阪府", "広島県"});
    image.nFirstPref = 1;
    image.nPrefCount = 1;
    CGuardedDic dic(image);
    EXPECT_EQ(Pref(dic, "東京都").nNode, -1);
    EXPECT_EQ(Pref(dic, "大阪府").nNode, 1);
    EXPECT_EQ(Pref(dic, "広島県").nNode, -1);
}

TEST(SeparatePref, StopsAtTheEndOfTheNodes) {
    CTestImage image = Siblings(LEVEL_PREF, {"東京都", "広島県"});
    for (uint32_t nCount : {3u, 1000000u, 0x80000000u, 0xFFFFFFFFu}) {
        image.nPrefCount = nCount;
        CGuardedDic dic(image);
        EXPECT_EQ(Pref(dic, "広島県").nNode, 1);
        EXPECT_EQ(Pref(dic, "大阪府").nNode, -1);
    }
    for (uint32_t nFirst : {2u, 1000000u, 0x80000000u, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
        image.nFirstPref = nFirst;
        image.nPrefCount = 1;
        CGuardedDic dic(image);
        EXPECT_EQ(Pref(dic, "東京都").nNode, -1);
    }
}

TEST(SeparatePref, FindsNothingInADictionaryWithoutPrefectures) {
    CTestImage image = Siblings(LEVEL_PREF, {"東京都"});
    image.nPrefCount = 0;
    CGuardedDic dic(image);
    EXPECT_EQ(Pref(dic, "東京都").nNode, -1);
}

// --- cities --------------------------------------------------------------------------------------------------------

TEST(SeparateCity, ReadsTheCityAtTheFrontWithItsCodes) {
    CTextWorld const world;
    CGuardedDic dic(world);
    CRead const read = City(dic, "千代田区丸の内", world.nTokyo);
    EXPECT_EQ(read.nNode, static_cast<int>(world.nChiyodaKu));
    EXPECT_EQ(read.strRest, "丸の内");
    EXPECT_THAT(Changed(read.addr), ElementsAre("pszCodeExt", "pszPostCode", "pszCity", "pszCityKana", "pCityNode"));
    EXPECT_EQ(read.addr.pszCity, dic.Name(world.nChiyodaKu));
    EXPECT_EQ(read.addr.pszCityKana, read.addr.pszCity + std::strlen("千代田区") + 1);
    EXPECT_EQ(read.addr.pCityNode, dic.Node(world.nChiyodaKu));
    EXPECT_STREQ(read.addr.pszPostCode, "1000000");
    EXPECT_EQ(read.addr.pszCodeExt, read.addr.pszPostCode + 8) << "the text behind the NUL, not the NUL";
    EXPECT_STREQ(read.addr.pszCodeExt, "100");
    EXPECT_EQ(read.addr.pszPostCode, dic.GetString(world.vInfo[0].nCode));
}

TEST(SeparateCity, WithoutAnEntryLeavesTheCodesAlone) {
    CTextWorld const world;
    CGuardedDic dic(world);
    EXPECT_THAT(Changed(City(dic, "港区芝", world.nTokyo).addr), ElementsAre("pszCity", "pszCityKana", "pCityNode"));
}

TEST(SeparateCity, WhoseEntryIsNotThereLeavesTheCodesAlone) {
    CTextWorld world;
    for (uint32_t nInfo : {static_cast<uint32_t>(world.vInfo.size()), 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFEu}) {
        world.vNode[world.nChiyodaKu].nInfo = nInfo;
        CGuardedDic dic(world);
        EXPECT_THAT(Changed(City(dic, "千代田区").addr), ElementsAre("pszCity", "pszCityKana", "pCityNode"));
    }
}

TEST(SeparateCity, ThatFailsChangesNothing) {
    CTextWorld const world;
    CGuardedDic dic(world);
    for (char const* psz : {"", "千代田", "丸の内", "東京都千代田区", " 港区"})
        for (unsigned long nPref : {NO_NODE, static_cast<unsigned long>(world.nTokyo)}) {
            CRead const read = City(dic, psz, nPref);
            EXPECT_EQ(read.nNode, -1) << psz;
            EXPECT_EQ(read.strRest, psz);
            EXPECT_THAT(Changed(read.addr), IsEmpty()) << psz;
        }
}

TEST(SeparateCity, LooksOnlyBelowItsPrefecture) {
    CTextWorld const world;
    CGuardedDic dic(world);
    EXPECT_EQ(City(dic, "府中市", world.nTokyo).nNode, static_cast<int>(world.nFuchu));
    EXPECT_EQ(City(dic, "府中市", world.nHiroshima).nNode, static_cast<int>(world.nFuchuHiroshima));
    EXPECT_EQ(City(dic, "港区", world.nHiroshima).nNode, -1);
}

TEST(SeparateCity, WithoutAPrefectureLooksAtAllCities) {
    CTextWorld const world;
    CGuardedDic dic(world);
    for (unsigned long nPref :
         {NO_NODE, 0xFFFFFFFFul, static_cast<unsigned long>(world.vNode.size()), 0x80000000ul}) {
        EXPECT_EQ(City(dic, "府中市", nPref).nNode, static_cast<int>(world.nFuchu)) << nPref;
        EXPECT_EQ(City(dic, "千代田区", nPref).nNode, static_cast<int>(world.nChiyodaKu)) << nPref;
        EXPECT_EQ(City(dic, "東京都", nPref).nNode, -1) << "is no city";
    }
}

TEST(SeparateCity, WithoutAPrefectureStaysInTheRunOfCitiesOfTheHeader) {
    CTextWorld world;
    world.nFirstCity = world.nMinato;
    world.vCityIndex.resize(2);
    CGuardedDic dic(world);
    EXPECT_EQ(City(dic, "千代田区").nNode, -1);
    EXPECT_EQ(City(dic, "港区").nNode, static_cast<int>(world.nMinato));
    EXPECT_EQ(City(dic, "府中市").nNode, static_cast<int>(world.nFuchu));
    world.nFirstCity = world.nFuchuHiroshima;
    CGuardedDic last(world);
    EXPECT_EQ(City(last, "府中市").nNode, static_cast<int>(world.nFuchuHiroshima));
    EXPECT_EQ(City(last, "港区").nNode, -1);
}

TEST(SeparateCity, BelowAPrefectureWithoutCitiesFindsNothing) {
    CTextWorld world;
    world.vNode[world.nTokyo].nChildCount = 0;
    CGuardedDic dic(world);
    EXPECT_EQ(City(dic, "港区", world.nTokyo).nNode, -1) << "it is not widened to all cities";
}

TEST(SeparateCity, TakesTheLongestThatFits) {
    for (auto const& vName : {std::vector<std::string>{"府中", "府中市", "府"}, {"府中市", "府中", "府"}}) {
        CGuardedDic dic(Siblings(LEVEL_CITY, vName));
        CRead const read = City(dic, "府中市宮西町", 0);
        EXPECT_STREQ(read.addr.pszCity, "府中市");
        EXPECT_EQ(read.strRest, "宮西町");
        EXPECT_STREQ(City(dic, "府中町", 0).addr.pszCity, "府中");
    }
}

TEST(SeparateCity, TakesTheFirstOfTwoOfEqualLength) {
    CGuardedDic dic(Siblings(LEVEL_CITY, {"府", "府中市", "府中市", "府中"}));
    EXPECT_EQ(City(dic, "府中市", 0).nNode, 2);
    EXPECT_EQ(City(dic, "府中市").nNode, 2);
}

TEST(SeparateCity, SkipsCitiesWithoutAName) {
    CGuardedDic dic(Siblings(LEVEL_CITY, {"", "港区", ""}));
    EXPECT_EQ(City(dic, "港区", 0).nNode, 2);
    EXPECT_EQ(City(dic, "芝", 0).nNode, -1);
    EXPECT_EQ(City(dic, "", 0).nNode, -1);
}

TEST(SeparateCity, SkipsCitiesWhoseNameCannotBeRead) {
    CTestImage image = Siblings(LEVEL_CITY, {"港", "x", "港区"});
    for (uint32_t nName : {static_cast<uint32_t>(image.strArea.size()), 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        image.vNode[2].nName = nName;
        CGuardedDic dic(image);
        EXPECT_EQ(City(dic, "港区", 0).nNode, 3);
    }
}

TEST(SeparateCity, KeepsTheBestOfThoseBeforeTheEndOfTheNodes) {
    CTestImage image = Siblings(LEVEL_CITY, {"港", "港区"});
    for (uint32_t nCount : {3u, 1000000u, 0x80000000u, 0xFFFFFFFFu}) {
        image.vNode[0].nChildCount = nCount;
        CGuardedDic dic(image);
        EXPECT_EQ(City(dic, "港区", 0).nNode, 2);
    }
}

TEST(SeparateCity, BelowAPrefectureWhoseCitiesAreNotThereFindsNothing) {
    CTestImage image = Siblings(LEVEL_CITY, {"港区"});
    for (uint32_t nFirst : {2u, 1000000u, 0x80000000u, 0xFFFFFFFEu}) {
        image.vNode[0].nFirstChild = nFirst;
        CGuardedDic dic(image);
        EXPECT_EQ(City(dic, "港区", 0).nNode, -1) << nFirst;
    }
}

// A name of two parts is found by either part when its marker can be seen, which in UTF-8 it never can.

TEST(SeparateCity, AcceptsTheFrontPartOfATwoPartName) {
    for (char const* psz : {"aaaa" SHI "bb" KU, "aaaa" GUN "bb" CHO, "aaaa" GUN "bb" MURA, "aaaa" SHIMA "bb" CHO,
                            "aaaa" SHIMA "bb" MURA, "aaaa" AGATA "bb" MURA}) {
        CGuardedDic dic(Siblings(LEVEL_CITY, {psz}));
        CRead const read = City(dic, (std::string(psz, 6) + "town").c_str(), 0);
        EXPECT_EQ(read.nNode, 1);
        EXPECT_EQ(read.strRest, "town");
        EXPECT_STREQ(read.addr.pszCity, psz) << "the whole name, not the part that was given";
    }
}

TEST(SeparateCity, ReadsTheLengthOfTheFrontPartAlsoWhenTheRestOfTheNameWasGiven) {
    CGuardedDic dic(Siblings(LEVEL_CITY, {"aaaa" GUN "bb" CHO}));
    CRead const read = City(dic, "bb" CHO "12345", 0);
    EXPECT_EQ(read.nNode, 1);
    EXPECT_EQ(read.strRest, "345") << "the rest has four bytes, the front part six";
    CGuardedDic longRest(Siblings(LEVEL_CITY, {"aa" GUN "bbbbbb" CHO}));
    EXPECT_EQ(City(longRest, "bbbbbb" CHO "12345", 0).strRest, "bb" CHO "12345") << "eight bytes, and four";
}

TEST(SeparateCity, StopsAtTheEndOfATextShorterThanTheFrontPart) {
    CGuardedDic dic(Siblings(LEVEL_CITY, {"aaaaaaaa" GUN "bb" CHO}));
    for (std::string const strText : {"bb" CHO, "bb" CHO "1", "bb" CHO "123456"}) {
        CGuardedBytes const text(strText, CGuardedBytes::ReadOnly);
        char const* psz = text.Text();
        tagADDR addr(0);
        EXPECT_EQ(dic.SeparateCity(&psz, 0, addr), 1);
        EXPECT_EQ(psz, text.Text() + strText.size()) << "the text's own NUL";
    }
    EXPECT_EQ(City(dic, "bb" CHO "1234567", 0).strRest, "7") << "ten bytes";
}

TEST(SeparateCity, DoesNotAcceptOtherPartsOfATwoPartName) {
    CGuardedDic dic(Siblings(LEVEL_CITY, {"aaaa" GUN "bb" CHO, "dddd" KU, "eeee" SHI}));
    for (char const* psz :
         {"aaaa", "aaaa\xE9", "aaaa" CHO, "bb", "bb\xE7", "b" CHO, GUN "bb" CHO, "dddd", "eeee", CHO})
        EXPECT_EQ(City(dic, psz, 0).nNode, -1) << psz;
}

TEST(SeparateCity, GivenWithItsFullNameReadsTheFullLength) {
    CGuardedDic dic(Siblings(LEVEL_CITY, {"aaaa" GUN "bb" CHO}));
    EXPECT_EQ(City(dic, "aaaa" GUN "bb" CHO "town", 0).strRest, "town");
}

TEST(SeparateCity, TakesAPartialNameOnlyWhenItIsLongerThanTheBestSoFar) {
    CGuardedDic equal(Siblings(LEVEL_CITY, {"aaaa" GUN, "aaaa" GUN "bb" CHO, "aaaa" GUN "cc" CHO}));
    EXPECT_EQ(City(equal, "aaaa" GUN "x", 0).nNode, 1) << "six bytes each";
    CGuardedDic longer(Siblings(LEVEL_CITY, {"aaaa", "aaaa" GUN "bb" CHO, "aaaa" GUN "cc" CHO}));
    EXPECT_EQ(City(longer, "aaaa" GUN "x", 0).nNode, 2) << "the earlier one of the two of six bytes";
    EXPECT_EQ(City(longer, "aaaa" GUN "cc" CHO, 0).nNode, 3) << "a full name of ten bytes";
    CGuardedDic counted(Siblings(LEVEL_CITY, {"bb" CHO "1", "aaaa" GUN "bb" CHO}));
    EXPECT_EQ(City(counted, "bb" CHO "1", 0).nNode, 2) << "five bytes that fit give way to six that are counted";
}

TEST(SeparateCity, DoesNotAcceptAPartOfANameInUtf8) {
    CGuardedDic dic(Siblings(LEVEL_CITY, {"札幌市中央区", "石狩郡当別町", "三宅島三宅村"}));
    for (char const* psz : {"札幌市", "中央区", "石狩郡", "当別町", "三宅島", "三宅村"})
        EXPECT_EQ(City(dic, psz, 0).nNode, -1) << psz;
    EXPECT_EQ(City(dic, "札幌市中央区", 0).nNode, 1);
}

// --- towns ---------------------------------------------------------------------------------------------------------

TEST(SeparateTown, ReadsTheTownAtTheFrontWithItsCodesAndTheRest) {
    CTextWorld const world;
    CGuardedDic dic(world);
    char const szText[] = "丸の内２丁目";
    char const* pszCursor = szText;
    tagADDR addr = MarkedAddr();
    EXPECT_EQ(dic.SeparateTown(&pszCursor, world.nChiyodaKu, addr), static_cast<int>(world.nMarunouchi));
    EXPECT_EQ(pszCursor, szText + std::strlen("丸の内"));
    EXPECT_THAT(Changed(addr),
                ElementsAre("pszCodeExt", "pszPostCode", "pszTown", "pszTownKana", "pszArea", "pTownNode"));
    EXPECT_EQ(addr.pszArea, pszCursor) << "the caller's own text";
    EXPECT_EQ(addr.pszTown, dic.Name(world.nMarunouchi));
    EXPECT_STREQ(addr.pszTownKana, "マルノウチ");
    EXPECT_EQ(addr.pTownNode, dic.Node(world.nMarunouchi));
    EXPECT_STREQ(addr.pszPostCode, "1000005");
    EXPECT_EQ(addr.pszCodeExt, addr.pszPostCode + 8);
}

TEST(SeparateTown, AtTheEndOfTheTextLeavesAnEmptyRest) {
    CTextWorld const world;
    CGuardedDic dic(world);
    CGuardedBytes const text(std::string("芝"), CGuardedBytes::ReadOnly);
    char const* psz = text.Text();
    tagADDR addr(0);
    EXPECT_EQ(dic.SeparateTown(&psz, world.nMinato, addr), static_cast<int>(world.nShiba));
    EXPECT_EQ(addr.pszArea, text.Text() + 3);
}

TEST(SeparateTown, WithoutAnEntryLeavesTheCodesAlone) {
    CTextWorld world;
    world.vNode[world.nShiba].nInfo = ADDR_NONE;
    CGuardedDic dic(world);
    EXPECT_THAT(Changed(Town(dic, "芝", world.nMinato).addr),
                ElementsAre("pszTown", "pszTownKana", "pszArea", "pTownNode"));
}

TEST(SeparateTown, ThatIsSupersededIsReadLikeAnyOther) {
    CTextWorld const world;
    CGuardedDic dic(world);
    CRead const read = Town(dic, "旧町９", world.nChiyodaKu);
    EXPECT_EQ(read.nNode, static_cast<int>(world.nOldTown));
    EXPECT_STREQ(read.addr.pszPostCode, "1000099");
    EXPECT_STREQ(read.addr.pszCodeExt, "10099");
    EXPECT_EQ(read.strRest, "９");
}

TEST(SeparateTown, ThatFailsChangesNothing) {
    CTextWorld const world;
    CGuardedDic dic(world);
    for (char const* psz : {"", "丸の", "２丁目", " 丸の内"}) {
        CRead const read = Town(dic, psz, world.nChiyodaKu);
        EXPECT_EQ(read.nNode, -1) << psz;
        EXPECT_EQ(read.strRest, psz);
        EXPECT_THAT(Changed(read.addr), IsEmpty()) << psz;
    }
}

TEST(SeparateTown, TakesTheFirstThatFitsAndNotTheLongest) {
    CGuardedDic dic(Siblings(LEVEL_TOWN, {"丸", "丸の内", "丸の内"}));
    EXPECT_EQ(Town(dic, "丸の内", 0).nNode, 1);
    EXPECT_EQ(Town(dic, "丸の内", 0).strRest, "の内");
    CGuardedDic other(Siblings(LEVEL_TOWN, {"内", "丸の内", "丸", "丸の内"}));
    EXPECT_EQ(Town(other, "丸の内", 0).nNode, 2);
}

TEST(SeparateTown, LooksBelowItsCityOrAtAllTowns) {
    CTextWorld const world;
    CGuardedDic dic(world);
    EXPECT_EQ(Town(dic, "芝", world.nChiyodaKu).nNode, -1);
    for (unsigned long nCity : {NO_NODE, 0xFFFFFFFFul, static_cast<unsigned long>(world.vNode.size())}) {
        EXPECT_EQ(Town(dic, "芝", nCity).nNode, static_cast<int>(world.nShiba));
        EXPECT_EQ(Town(dic, "元町", nCity).nNode, static_cast<int>(world.nMotomachi));
        EXPECT_EQ(Town(dic, "１丁目", nCity).nNode, -1) << "is no town";
    }
}

TEST(SeparateTown, BelowACityWithoutTownsFindsNothing) {
    CTextWorld world;
    world.vNode[world.nMinato].nChildCount = 0;
    CGuardedDic dic(world);
    EXPECT_EQ(Town(dic, "芝", world.nMinato).nNode, -1);
}

TEST(SeparateTown, WithoutACityStaysInTheRunOfTownsOfTheHeader) {
    CTextWorld world;
    world.nFirstTown = world.nChiyoda;
    world.nTownCount = 3;
    CGuardedDic dic(world);
    EXPECT_EQ(Town(dic, "丸の内").nNode, -1);
    EXPECT_EQ(Town(dic, "千代田").nNode, static_cast<int>(world.nChiyoda));
    EXPECT_EQ(Town(dic, "芝").nNode, static_cast<int>(world.nShiba));
    EXPECT_EQ(Town(dic, "宮西町").nNode, -1);
    world.nTownCount = 0;
    CGuardedDic none(world);
    EXPECT_EQ(Town(none, "千代田").nNode, -1);
}

TEST(SeparateTown, SkipsTownsWithoutANameOrWithOneThatCannotBeRead) {
    CTestImage image = Siblings(LEVEL_TOWN, {"", "x", "芝"});
    for (uint32_t nName : {static_cast<uint32_t>(image.strArea.size()), 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        image.vNode[2].nName = nName;
        CGuardedDic dic(image);
        EXPECT_EQ(Town(dic, "芝", 0).nNode, 3);
        EXPECT_EQ(Town(dic, "", 0).nNode, -1) << "the rest of a whole address does not name the nameless town";
    }
}

TEST(SeparateTown, IsFoundBeforeChildrenThatAreNotThere) {
    CTestImage image = Siblings(LEVEL_TOWN, {"丸の内", "芝"});
    for (uint32_t nCount : {3u, 1000000u, 0x80000000u, 0xFFFFFFFFu}) {
        image.vNode[0].nChildCount = nCount;
        CGuardedDic dic(image);
        EXPECT_EQ(Town(dic, "芝", 0).nNode, 2);
        EXPECT_EQ(Town(dic, "海", 0).nNode, -1);
    }
}

// --- the three in one ----------------------------------------------------------------------------------------------

TEST(DivideAddr, CutsAnAddressIntoItsLevels) {
    CTextWorld const world;
    CGuardedDic dic(world);
    char const szText[] = "東京都千代田区丸の内２丁目７番";
    tagADDR addr(0);
    EXPECT_TRUE(dic.DivideAddr(szText, &addr));
    EXPECT_EQ(addr.pszPref, dic.Name(world.nTokyo));
    EXPECT_EQ(addr.pszCity, dic.Name(world.nChiyodaKu));
    EXPECT_EQ(addr.pszTown, dic.Name(world.nMarunouchi));
    EXPECT_STREQ(addr.pszPrefKana, "トウキョウト");
    EXPECT_STREQ(addr.pszCityKana, "チヨダク");
    EXPECT_STREQ(addr.pszTownKana, "マルノウチ");
    EXPECT_EQ(addr.pszArea, szText + std::strlen("東京都千代田区丸の内"));
    EXPECT_STREQ(addr.pszPostCode, "1000005") << "the town's, not the city's";
    EXPECT_STREQ(addr.pszCodeExt, "100");
    EXPECT_EQ(addr.pPrefNode, dic.Node(world.nTokyo));
    EXPECT_EQ(addr.pCityNode, dic.Node(world.nChiyodaKu));
    EXPECT_EQ(addr.pTownNode, dic.Node(world.nMarunouchi));
}

TEST(DivideAddr, WritesNoOtherFields) {
    CTextWorld const world;
    CGuardedDic dic(world);
    tagADDR addr = MarkedAddr();
    EXPECT_TRUE(dic.DivideAddr("東京都千代田区丸の内", &addr));
    EXPECT_THAT(Changed(addr),
                ElementsAre("pszCodeExt", "pszPostCode", "pszPref", "pszPrefKana", "pszCity", "pszCityKana",
                            "pszTown", "pszTownKana", "pszArea", "pPrefNode", "pCityNode", "pTownNode"));
}

TEST(DivideAddr, WithoutATownLeavesTheTextBehindTheCity) {
    CTextWorld const world;
    CGuardedDic dic(world);
    char const szText[] = "東京都千代田区";
    tagADDR addr(0);
    EXPECT_TRUE(dic.DivideAddr(szText, &addr));
    EXPECT_EQ(addr.pszArea, szText + std::strlen(szText));
    EXPECT_STREQ(addr.pszPostCode, "1000000") << "the city's";
    char const szMore[] = "東京都千代田区無町";
    EXPECT_TRUE(dic.DivideAddr(szMore, &addr));
    EXPECT_EQ(addr.pszArea, szMore + std::strlen("東京都千代田区"));
    EXPECT_THAT(addr.pszTown, IsNull());
}

TEST(DivideAddr, WithoutAPrefectureLooksForTheCityEverywhereAndKeepsThePrefectureOpen) {
    CTextWorld const world;
    CGuardedDic dic(world);
    tagADDR addr(0);
    EXPECT_TRUE(dic.DivideAddr("港区芝１丁目", &addr));
    EXPECT_THAT(addr.pszPref, IsNull());
    EXPECT_THAT(addr.pPrefNode, IsNull());
    EXPECT_STREQ(addr.pszCity, "港区");
    EXPECT_STREQ(addr.pszTown, "芝");
    EXPECT_STREQ(addr.pszArea, "１丁目");
}

TEST(DivideAddr, WithoutACityLooksForTheTownEverywhere) {
    CTextWorld const world;
    CGuardedDic dic(world);
    tagADDR addr(0);
    EXPECT_TRUE(dic.DivideAddr("東京都元町", &addr));
    EXPECT_THAT(addr.pszCity, IsNull());
    EXPECT_EQ(addr.pTownNode, dic.Node(world.nMotomachi)) << "that of 広島県";
    tagADDR town(0);
    EXPECT_TRUE(dic.DivideAddr("芝", &town));
    EXPECT_STREQ(town.pszTown, "芝");
    EXPECT_STREQ(town.pszArea, "");
}

TEST(DivideAddr, OfATextThatIsNoAddressLeavesItAsTheRest) {
    CTextWorld const world;
    CGuardedDic dic(world);
    for (char const* psz : {"", "無県", "\xFF\xFE", "丸"}) {
        tagADDR addr = MarkedAddr();
        EXPECT_TRUE(dic.DivideAddr(psz, &addr)) << psz;
        EXPECT_EQ(addr.pszArea, psz);
        EXPECT_THAT(Changed(addr), ElementsAre("pszArea")) << psz;
    }
}

TEST(DivideAddr, DoesNotSkipBlanksBetweenLevels) {
    CTextWorld const world;
    CGuardedDic dic(world);
    tagADDR addr(0);
    EXPECT_TRUE(dic.DivideAddr("東京都 港区", &addr));
    EXPECT_STREQ(addr.pszPref, "東京都");
    EXPECT_THAT(addr.pszCity, IsNull());
    EXPECT_STREQ(addr.pszArea, " 港区");
}

TEST(DivideAddr, IsFalseOnlyForNull) {
    CTextWorld const world;
    CGuardedDic dic(world);
    tagADDR addr = MarkedAddr();
    EXPECT_FALSE(dic.DivideAddr(nullptr, &addr));
    EXPECT_THAT(Changed(addr), IsEmpty());
    EXPECT_FALSE(dic.DivideAddr("東京都", nullptr));
    EXPECT_FALSE(dic.DivideAddr(nullptr, nullptr));
}

TEST(Separation, OfNothingFindsNothing) {
    CTextWorld const world;
    CGuardedDic dic(world);
    tagADDR addr = MarkedAddr();
    EXPECT_EQ(dic.SeparatePref(nullptr, addr), -1);
    EXPECT_EQ(dic.SeparateCity(nullptr, NO_NODE, addr), -1);
    EXPECT_EQ(dic.SeparateTown(nullptr, NO_NODE, addr), -1);
    char const* psz = nullptr;
    EXPECT_EQ(dic.SeparatePref(&psz, addr), -1);
    EXPECT_EQ(dic.SeparateCity(&psz, NO_NODE, addr), -1);
    EXPECT_EQ(dic.SeparateTown(&psz, NO_NODE, addr), -1);
    EXPECT_THAT(psz, IsNull());
    EXPECT_THAT(Changed(addr), IsEmpty());
}

TEST(Separation, ByAnObjectWithoutAnImageFindsNothing) {
    CAddrDic unbound, released;
    CTextWorld const world;
    CGuardedBytes const image(world.Bytes());
    released.SetDictionary(image.Data());
    released.SetDictionary(nullptr);
    for (CAddrDic* pDic : {&unbound, &released}) {
        EXPECT_EQ(Pref(*pDic, "東京都").nNode, -1);
        for (unsigned long nParent : {0ul, NO_NODE}) {
            EXPECT_EQ(City(*pDic, "港区", nParent).nNode, -1);
            EXPECT_EQ(Town(*pDic, "芝", nParent).nNode, -1);
        }
        tagADDR addr = MarkedAddr();
        EXPECT_TRUE(pDic->DivideAddr("東京都", &addr));
        EXPECT_STREQ(addr.pszArea, "東京都");
    }
}

} // namespace
