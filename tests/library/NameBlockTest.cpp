// PstAdrRPrf and PstAdrRCity: names with their lengths in front, byte for byte.
#include "dic/ImageHeader.h"
#include "tests/library/BrowseBlockWorld.h"
#include "tests/library/Prefectures.h"

namespace {

// --- prefectures ---------------------------------------------------------------------------------------------------

class PrefBlock : public BrowseBlock {};

// All prefectures from the last to the first, without one of them.
CTestImage Japan(std::string const& strWithout = "") {
    CTestImage image;
    for (size_t n = std::size(PREFECTURES); n-- > 0;)
        if (PREFECTURES[n] != strWithout) image.AddNode(LEVEL_PREF, ADDR_NONE, PREFECTURES[n], "ヨミ");
    image.Complete();
    return image;
}

TEST_F(PrefBlock, OfAFullDictionaryHas47NamesInTheOrderOfTheirNumbers) {
    Bind(Japan());
    EXPECT_EQ(Prefectures(), Names(std::vector<std::string>(std::begin(PREFECTURES), std::end(PREFECTURES))));
}

TEST_F(PrefBlock, HasKanagawaAsEntry13WithItsTwelveBytes) {
    Bind(Japan());
    CBlockBytes const vBlock = Prefectures();
    size_t nEntry = 2;
    for (int n = 0; n < 13; ++n) nEntry += 1u + vBlock.at(nEntry);
    EXPECT_EQ(vBlock.at(nEntry), 12);
    EXPECT_EQ(std::memcmp(&vBlock[nEntry + 1], "神奈川県", 12), 0);
}

TEST_F(PrefBlock, HasALengthOfZeroForAPrefectureThatTheDictionaryLacks) {
    Bind(Japan("東京都"));
    std::vector<std::string> vName(std::begin(PREFECTURES), std::end(PREFECTURES));
    vName[TOKYO] = "";
    EXPECT_EQ(Prefectures(), Names(vName));
}

TEST_F(PrefBlock, ReachesToTheHighestNumberOfASmallDictionary) {
    Bind(CBrowseWorld());
    EXPECT_EQ(Prefectures(), Names(TwoPrefectures()));
}

TEST_F(PrefBlock, OfTwoPrefecturesIsTheseBytes) {
    CTestImage image;
    image.AddNode(LEVEL_PREF, ADDR_NONE, "北海道");
    image.AddNode(LEVEL_PREF, ADDR_NONE, "岩手県");
    image.Complete();
    Bind(image);
    EXPECT_THAT(Prefectures(), ElementsAre(3, 0, 9, 0xE5, 0x8C, 0x97, 0xE6, 0xB5, 0xB7, 0xE9, 0x81, 0x93, // 北海道
                                           0, 9, 0xE5, 0xB2, 0xA9, 0xE6, 0x89, 0x8B, 0xE7, 0x9C, 0x8C));
}

TEST_F(PrefBlock, StandsInItsOrderUnderSortTypeNineToo) {
    Bind(Japan());
    CBlockBytes const vBlock = Prefectures("", 2);
    EXPECT_EQ(Prefectures("", 9), vBlock);
}

TEST_F(PrefBlock, LeavesOutAFirstPrefectureThatNoTableKnows) {
    CTestImage image;
    for (char const* psz : {"無県", "北海道"}) image.AddNode(LEVEL_PREF, ADDR_NONE, psz);
    image.Complete();
    Bind(image);
    EXPECT_EQ(Prefectures(), Names({"北海道", ""}));
}

TEST_F(PrefBlock, HasAnUnknownPrefectureInThePlaceOfTheOneBeforeIt) {
    CTestImage image;
    for (char const* psz : {"北海道", "無県"}) image.AddNode(LEVEL_PREF, ADDR_NONE, psz);
    image.Complete();
    Bind(image);
    EXPECT_EQ(Prefectures(), Names({"無県", ""}));
}

TEST_F(PrefBlock, EndsWithAPrefectureWhoseReadingLiesOutside) {
    CTestImage image;
    for (char const* psz : {"青森県", "岩手県", "北海道"}) image.AddNode(LEVEL_PREF, ADDR_NONE, psz);
    image.Complete();
    image.vNode[1].nName = static_cast<uint32_t>(image.strArea.size());
    image.strArea += std::string("岩手県") + '\0';
    Bind(image);
    EXPECT_EQ(Prefectures(), Names({"", "青森県", "岩手県"}));
}

TEST_F(PrefBlock, OfATextThatNamesAPrefectureIsThatOne) {
    Bind(CBrowseWorld());
    EXPECT_EQ(Prefectures("東京都港区芝"), Names({"東京都"}));
}

TEST_F(PrefBlock, OfACityHasEachOfItsPrefecturesOnceAtItsOwnPosition) {
    CTestImage image;
    uint32_t const nTokyo = image.AddNode(LEVEL_PREF, ADDR_NONE, "東京都");
    uint32_t const nHiroshima = image.AddNode(LEVEL_PREF, ADDR_NONE, "広島県");
    image.AddNode(LEVEL_CITY, nTokyo, "中央区");
    image.AddNode(LEVEL_CITY, nTokyo, "府中市");
    image.AddNode(LEVEL_CITY, nHiroshima, "府中市");
    image.AddNode(LEVEL_CITY, nHiroshima, "府中市府中");
    image.Complete();
    Bind(image);
    EXPECT_EQ(Prefectures("府中市"), Names({"東京都", "広島県"}));
}

TEST_F(PrefBlock, IsNotMadeForATextThatNamesNoCity) {
    Bind(CBrowseWorld());
    for (char const* psz : {"大阪市", "x", "芝", "東京"}) {
        CSystemWatch watch;
        std::string strRecord = Record(2, psz);
        HGLOBAL h = Untouched();
        EXPECT_EQ(PstAdrRPrf(strRecord.data(), &h), 107u) << psz;
        EXPECT_EQ(h, Untouched()) << psz;
        EXPECT_THAT(watch.Names(), IsEmpty()) << psz;
    }
}

TEST_F(PrefBlock, IsNotMadeForADictionaryWithoutPrefectures) {
    Bind(CTestImage());
    std::string strRecord = Record(2, "");
    HGLOBAL h = Untouched();
    EXPECT_EQ(PstAdrRPrf(strRecord.data(), &h), 107u);
    EXPECT_EQ(h, Untouched());
}

TEST_F(PrefBlock, IsNotMadeWithoutADictionary) {
    for (char const* psz : {"", "東京都"}) {
        std::string strRecord = Record(2, psz);
        HGLOBAL h = Untouched();
        EXPECT_EQ(PstAdrRPrf(strRecord.data(), &h), 107u) << psz;
        EXPECT_EQ(h, Untouched()) << psz;
    }
}

TEST_F(PrefBlock, ThatIsNotMadeEndsTheAnswersBefore) {
    Bind(CBrowseWorld());
    Prefectures();
    std::string strRecord = Record(2, "大阪市");
    HGLOBAL h = nullptr;
    ASSERT_EQ(PstAdrRPrf(strRecord.data(), &h), 107u);
    EXPECT_EQ(Ask(PstAdrRCity, TOKYO), NO_ENTRIES);
}

// The record stands between two pages that cannot be touched, and cannot be written itself.
uint32_t AskGuarded(std::string const& strRecord, CGuardedBytes::EPlace nPlace, HGLOBAL* ph) {
    CGuardedBytes const record(strRecord, CGuardedBytes::ReadOnly, nPlace);
    return PstAdrRPrf(record.Data(), ph);
}

TEST_F(PrefBlock, ReadsNothingBeforeItsRecordOrBehindItsText) {
    Bind(CBrowseWorld());
    for (std::string const& strText : {std::string(), std::string("東京都"), std::string("府中市")})
        for (auto const nPlace : {CGuardedBytes::EndOfPage, CGuardedBytes::StartOfPage}) {
            ASSERT_EQ(Record(2, "").size() + 1, 24u);
            HGLOBAL h = nullptr;
            EXPECT_EQ(AskGuarded(Record(2, strText), nPlace, &h), 0u) << strText;
            Take(h);
        }
}

TEST_F(PrefBlock, DoesNotDependOnWhatStandsBetweenSortTypeAndText) {
    Bind(CBrowseWorld());
    for (int n = 0; n < 256; ++n) {
        std::string strRecord = Record(2, "府中市", static_cast<char>(n));
        HGLOBAL h = nullptr;
        ASSERT_EQ(PstAdrRPrf(strRecord.data(), &h), 0u);
        ASSERT_EQ(Take(h), Names({"広島県"})) << n;
    }
}

TEST_F(PrefBlock, ReadsATextLongerThanTheFieldOfOtherRecordsWhole) {
    CTestImage image;
    for (char c : {'A', 'B'}) image.AddNode(LEVEL_PREF, ADDR_NONE, std::string(130, 'P') + c);
    image.Complete();
    Bind(image);
    HGLOBAL h = nullptr;
    ASSERT_EQ(AskGuarded(Record(2, std::string(130, 'P') + 'B'), CGuardedBytes::EndOfPage, &h), 0u);
    EXPECT_EQ(Take(h), Names({std::string(130, 'P') + 'B'}));
}

TEST_F(PrefBlock, WrapsTheLengthOfALongNameButHoldsItWhole) {
    for (size_t nLength : {254u, 255u, 256u, 257u, 600u}) {
        CTestImage image;
        std::string const strName(nLength, 'P');
        image.AddNode(LEVEL_PREF, ADDR_NONE, strName);
        image.Complete();
        Bind(image);
        CBlockBytes const vBlock = Prefectures(strName);
        EXPECT_EQ(vBlock, Names({strName}));
        EXPECT_EQ(vBlock.at(2), nLength % 256);
        EXPECT_EQ(vBlock.size(), 3 + nLength);
    }
}

TEST_F(PrefBlock, TakesTheSortTypeForItAndLaterCalls) {
    Bind(CBrowseWorld());
    Prefectures("", 9);
    Ask(PstAdrRCity, TOKYO);
    EXPECT_EQ(Ask(PstAdrRTown, 0),
              NewCodeFirst({CHIYODA_TOWNS[0], CHIYODA_TOWNS[2], CHIYODA_TOWNS[1]})); // 丸, 千, 旧 by their bytes
}

TEST_F(PrefBlock, TakesTheSortTypeOfARecordThatFindsNothing) {
    Bind(CBrowseWorld());
    std::string strRecord = Record(9, "大阪市");
    HGLOBAL h = nullptr;
    ASSERT_EQ(PstAdrRPrf(strRecord.data(), &h), 107u);
    EXPECT_EQ(CAddrDicPeek(dic).nSortType, 9);
}

TEST_F(PrefBlock, TakesBothBytesOfTheSortType) {
    Bind(CBrowseWorld());
    Prefectures("東京都", 9 + 256);
    Ask(PstAdrRCity, 0);
    EXPECT_EQ(Ask(PstAdrRTown, 0), NewCodeFirst(CHIYODA_TOWNS)) << "265 is not 9";
}

TEST_F(PrefBlock, SetsTheSortTypeBack) {
    Bind(CBrowseWorld());
    Prefectures("", 9);
    EXPECT_EQ(AskBelow("東京都", PstAdrRTown), NewCodeFirst(CHIYODA_TOWNS));
}

// --- cities --------------------------------------------------------------------------------------------------------

class CityNameBlock : public BrowseBlock {};

// "P" with these cities.
CTestImage WithCities(std::vector<std::string> const& vName) {
    CTestImage image;
    uint32_t const nPref = image.AddNode(LEVEL_PREF, ADDR_NONE, "P");
    for (std::string const& str : vName) image.AddNode(LEVEL_CITY, nPref, str);
    image.Complete();
    return image;
}

TEST_F(CityNameBlock, OfTwoCitiesIsTheseBytes) {
    Bind(WithCities({"CC", "D"}));
    Prefectures("P");
    EXPECT_THAT(Ask(PstAdrRCity, 0), ElementsAre(2, 0, 2, 'C', 'C', 1, 'D'));
}

TEST_F(CityNameBlock, HasTheCitiesOfThePrefectureAtThatPosition) {
    Bind(CBrowseWorld());
    Prefectures();
    EXPECT_EQ(Ask(PstAdrRCity, HIROSHIMA), Names({"府中市"}));
    Prefectures();
    EXPECT_EQ(Ask(PstAdrRCity, TOKYO), Names({"千代田区", "港区"}));
}

TEST_F(CityNameBlock, CountsPositionsInTheAnswerToAText) {
    Bind(CBrowseWorld());
    Prefectures("広島県");
    EXPECT_EQ(Ask(PstAdrRCity, 0), Names({"府中市"}));
}

TEST_F(CityNameBlock, BehindAPositionOutsideTheAnswerHasTwoBytes) {
    Bind(CBrowseWorld());
    Prefectures();
    for (unsigned short n : CPositions{34, 46, 47, 255, 256, 65535}) EXPECT_EQ(Ask(PstAdrRCity, n), NO_ENTRIES) << n;
}

TEST_F(CityNameBlock, OfAPrefectureThatTheDictionaryLacksHasTwoBytes) {
    Bind(CBrowseWorld());
    Prefectures();
    EXPECT_EQ(Ask(PstAdrRCity, 0), NO_ENTRIES);
}

TEST_F(CityNameBlock, BeforeAnyPrefecturesHasTwoBytes) {
    Bind(CBrowseWorld());
    EXPECT_EQ(Ask(PstAdrRCity, 0), NO_ENTRIES);
}

TEST_F(CityNameBlock, OfAPrefectureWithoutCitiesHasTwoBytes) {
    Bind(WithCities({}));
    Prefectures("P");
    EXPECT_EQ(Ask(PstAdrRCity, 0), NO_ENTRIES);
}

TEST_F(CityNameBlock, HoldsTheFirstCityOnlyWhenAskedForAgain) {
    Bind(CBrowseWorld());
    Prefectures();
    Ask(PstAdrRCity, TOKYO);
    EXPECT_EQ(Ask(PstAdrRCity, HIROSHIMA), Names({"千代田区"}));
}

TEST_F(CityNameBlock, HoldsTheCityOfTheTextOnly) {
    Bind(CBrowseWorld());
    Prefectures("東京都港区");
    EXPECT_EQ(Ask(PstAdrRCity, 0), Names({"港区"}));
}

TEST_F(CityNameBlock, IsSortedUnderSortTypeNine) {
    Bind(WithCities({"C", "A", "B"}));
    Prefectures("P", 9);
    EXPECT_EQ(Ask(PstAdrRCity, 0), Names({"A", "B", "C"}));
}

TEST_F(CityNameBlock, HoldsEmptyAndMissingNamesAsALengthOfZero) {
    CTestImage image = WithCities({"A", "", "B"});
    image.vNode[1].nName = static_cast<uint32_t>(image.strArea.size());
    Bind(image);
    Prefectures("P");
    EXPECT_THAT(Ask(PstAdrRCity, 0), ElementsAre(3, 0, 0, 0, 1, 'B'));
}

TEST_F(CityNameBlock, WrapsTheLengthOfALongNameButHoldsItWhole) {
    for (size_t nLength : {254u, 255u, 256u, 257u, 70000u}) {
        Bind(WithCities({std::string(nLength, 'C'), "D"}));
        Prefectures("P");
        CBlockBytes const vBlock = Ask(PstAdrRCity, 0);
        EXPECT_EQ(vBlock, Names({std::string(nLength, 'C'), "D"}));
        EXPECT_EQ(vBlock.at(2), nLength % 256);
    }
}

TEST_F(CityNameBlock, CountsModulo65536ButHoldsAll) {
    Bind(Crowd(LEVEL_CITY, 65537, "C"));
    Prefectures();
    CBlockBytes const vBlock = Ask(PstAdrRCity, 0);
    EXPECT_EQ(vBlock, Names(std::vector<std::string>(65537, "C")));
    EXPECT_THAT(CBlockBytes(vBlock.begin(), vBlock.begin() + 2), ElementsAre(1, 0));
}

#if defined(__i386__)
// In 64 bits such a count is a matter of memory alone.
TEST_F(PrefBlock, OfMorePrefecturesThanAListCanHoldIsNone) {
    std::vector<unsigned char> vByte = Japan().Bytes();
    uint32_t const nMany = 0x7FFFFFFF;
    for (tagHEADERWORD nWord : {HDR_NODE_COUNT, HDR_PREF_COUNT}) std::memcpy(&vByte[4 * nWord], &nMany, sizeof nMany);
    dic.SetDictionary(vByte.data());
    char szRecord[24] = {};
    HGLOBAL h = Untouched();
    EXPECT_EQ(PstAdrRPrf(szRecord, &h), 1u);
    EXPECT_EQ(h, Untouched());
}
#endif

} // namespace
