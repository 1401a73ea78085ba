// PstAdrRPrf, PstAdrRCity, PstAdrTown, PstAdrRTown and PstAdrRTownForUI: the blocks of browsing, byte for byte.
#include "tests/library/ApiWorld.h"
#include "tests/support/GuardedBytes.h"
#include "tests/support/Peek.h"
#include "tests/support/SystemWatch.h"

#include <cstring>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using CPositions = std::initializer_list<unsigned short>;
using PFNBROWSE = uint32_t (*)(unsigned short, HGLOBAL*);

// --- the blocks, put together from their drawings ----------------------------------------------------------------

void PutPrefixed(CBlockBytes& vByte, std::string const& str) {
    PutNumber(vByte, str.size(), 1);
    PutText(vByte, str);
}

// Prefectures and cities. A missing name is "".
CBlockBytes Names(std::vector<std::string> const& vName) {
    CBlockBytes vBlock;
    PutNumber(vBlock, vName.size(), 2);
    for (std::string const& str : vName) PutPrefixed(vBlock, str);
    return vBlock;
}

struct CTownText {
    std::string strTown, strCode, strOldCode;
};

CBlockBytes Towns(std::vector<CTownText> const& vTown, std::string CTownText::*pFirst,
                  std::string CTownText::*pSecond) {
    CBlockBytes vBlock;
    PutNumber(vBlock, vTown.size(), 2);
    for (CTownText const& town : vTown) {
        for (auto const pText : {&CTownText::strTown, pFirst, pSecond}) PutPrefixed(vBlock, town.*pText);
        vBlock.push_back(0);
    }
    return vBlock;
}
CBlockBytes OldCodeFirst(std::vector<CTownText> const& vTown) {
    return Towns(vTown, &CTownText::strOldCode, &CTownText::strCode);
}
CBlockBytes NewCodeFirst(std::vector<CTownText> const& vTown) {
    return Towns(vTown, &CTownText::strCode, &CTownText::strOldCode);
}

// What the display table is made of; null is missing.
struct CLineText {
    char const *pszCode, *pszOldCode, *pszTown;
    char const* pszArea = nullptr;
    char const* pszBlock = nullptr;
    char const* pszNote = nullptr;
    char const* pszOffice = nullptr;
};

std::string OrEmpty(char const* psz) {
    return psz != nullptr ? psz : "";
}

std::string Line(CLineText const& text) {
    if (text.pszTown == nullptr) return "";
    if (text.pszBlock == nullptr) return text.pszTown;
    std::string const strLine = std::string(text.pszTown) + " " + text.pszBlock;
    return text.pszNote == nullptr ? strLine : strLine + " " + text.pszNote;
}

CBlockBytes Lines(std::vector<CLineText> const& vText) {
    CBlockBytes vEntry, vPool;
    size_t nPoolSize = 0;
    auto const Pool = [&vPool](std::string const& str) {
        size_t const nOffset = vPool.size();
        PutText(vPool, str);
        vPool.push_back(0);
        return nOffset;
    };
    for (CLineText const& text : vText) {
        size_t const nOldCode = Pool(OrEmpty(text.pszOldCode));
        size_t const nCode = Pool(OrEmpty(text.pszCode));
        size_t const nLine = Pool(Line(text));
        size_t const nOffice = Pool(OrEmpty(text.pszOffice));
        for (size_t n : {nCode, nOldCode, size_t{0}, size_t{0}, nLine, size_t{0}, nOffice}) PutNumber(vEntry, n, 4);
        nPoolSize += 7;
        for (char const* psz :
             {text.pszOldCode, text.pszCode, text.pszTown, text.pszArea, text.pszBlock, text.pszNote, text.pszOffice})
            nPoolSize += OrEmpty(psz).size();
    }
    vPool.resize(nPoolSize); // zeros behind the content: room for texts that are counted and not written
    CBlockBytes vBlock;
    PutNumber(vBlock, vText.size(), 2);
    PutNumber(vBlock, 0, 2);
    PutNumber(vBlock, 12, 4);
    PutNumber(vBlock, 12 + 28 * vText.size(), 4);
    vBlock.insert(vBlock.end(), vEntry.begin(), vEntry.end());
    vBlock.insert(vBlock.end(), vPool.begin(), vPool.end());
    return vBlock;
}

// --- the worlds ----------------------------------------------------------------------------------------------------

constexpr unsigned short TOKYO = 12, HIROSHIMA = 33; // their numbers

// Two prefectures; old codes are the first three digits.
//
//   東京都   千代田区   丸の内 1000005   旧町 1000099 (superseded)   千代田 1000001   (nameless) 1000000
//            港区       芝 1050014   １丁目 1050015 (area)   海ビル 1050016 (building)   ２階 1050017 (floor in it)
//                                    港商会 1058444 (organisation)
//                       海岸 (no entry)
//   広島県   府中市     元町 7260003
struct CBrowseWorld : CTestImage {
    CBrowseWorld() {
        nTokyo = AddNode(LEVEL_PREF, ADDR_NONE, "東京都", "トウキョウト");
        uint32_t const nHiroshima = AddNode(LEVEL_PREF, ADDR_NONE, "広島県", "ヒロシマケン");
        uint32_t const nChiyodaKu = AddNode(LEVEL_CITY, nTokyo, "千代田区", "チヨダク");
        nMinato = AddNode(LEVEL_CITY, nTokyo, "港区", "ミナトク");
        uint32_t const nFuchu = AddNode(LEVEL_CITY, nHiroshima, "府中市", "フチュウシ");
        nMarunouchi = AddNode(LEVEL_TOWN, nChiyodaKu, "丸の内", "マルノウチ");
        uint32_t const nOld = AddNode(LEVEL_TOWN, nChiyodaKu, "旧町", "キュウマチ");
        uint32_t const nChiyoda = AddNode(LEVEL_TOWN, nChiyodaKu, "千代田", "チヨダ");
        uint32_t const nNameless = AddNode(LEVEL_TOWN, nChiyodaKu, "");
        nShiba = AddNode(LEVEL_TOWN, nMinato, "芝", "シバ");
        AddNode(LEVEL_TOWN, nMinato, "海岸", "カイガン");
        uint32_t const nMotomachi = AddNode(LEVEL_TOWN, nFuchu, "元町", "モトマチ");
        uint32_t const nArea = AddNode(LEVEL_AREA, nShiba, "１丁目");
        nBuilding = AddNode(LEVEL_BLOCK, nShiba, "海ビル");
        uint32_t const nOffice = AddNode(LEVEL_OFFICE, nShiba, "港商会");
        nFloor = AddNode(LEVEL_NOTE, nBuilding, "２階");
        AddInfo(nNameless, "1000000", "100");
        AddInfo(nChiyoda, "1000001", "100");
        AddInfo(nMarunouchi, "1000005", "100");
        AddSuperseded(nOld, "1000099", "100", 2);
        AddInfo(nShiba, "1050014", "105");
        AddInfo(nArea, "1050015", "105");
        AddInfo(nBuilding, "1050016", "105");
        AddInfo(nFloor, "1050017", "105");
        AddInfo(nOffice, "1058444", "105");
        AddInfo(nMotomachi, "7260003", "726");
        Complete();
    }
    uint32_t nTokyo, nMinato, nMarunouchi, nShiba, nBuilding, nFloor;
};

// All prefectures of that world.
std::vector<std::string> TwoPrefectures() {
    std::vector<std::string> vName(HIROSHIMA + 1u);
    vName[TOKYO] = "東京都";
    vName[HIROSHIMA] = "広島県";
    return vName;
}

std::vector<CTownText> const CHIYODA_TOWNS = {
    {"丸の内", "1000005", "100"}, {"旧町", "1000099", "100"}, {"千代田", "1000001", "100"}};
std::vector<CTownText> const MINATO_TOWNS = {{"芝", "1050014", "105"}, {"海岸", "", ""}};

// A text of one level stays in the records of later siblings: the area in those of building and organisation, the
// building in that of the organisation.
std::vector<CLineText> const MINATO_LINES = {
    {"1050014", "105", "芝"},
    {"1050015", "105", "芝", "１丁目"},
    {"1050016", "105", "芝", "１丁目", "海ビル"},
    {"1050017", "105", "芝", "１丁目", "海ビル", "２階"},
    {"1058444", "105", "芝", "１丁目", "海ビル", nullptr, "港商会"},
};

// 北海道, a city "C" and this many children of one of the two, which share their texts and their entry.
CTestImage Crowd(uint8_t nLevel, size_t nChildren, std::string const& strName) {
    CTestImage image;
    uint32_t nParent = image.AddNode(LEVEL_PREF, ADDR_NONE, "北海道");
    if (nLevel == LEVEL_TOWN) nParent = image.AddNode(LEVEL_CITY, nParent, "C");
    uint32_t const nChild = image.AddNode(nLevel, nParent, strName);
    image.AddInfo(nChild, "1000001", "100");
    image.Complete();
    image.vNode.insert(image.vNode.end(), nChildren - 1, tagADDRNODE(image.vNode[nChild]));
    image.vNode[nParent].nChildCount = static_cast<uint32_t>(nChildren);
    return image;
}

// --- the calls -----------------------------------------------------------------------------------------------------

// The caller's record up to the NUL of its text; what stands between sort type and text is nobody's business.
std::string Record(unsigned nSortType, std::string const& strText, char cFill = '\xA5') {
    return std::string({static_cast<char>(nSortType % 256), static_cast<char>(nSortType / 256)}) +
           std::string(21, cFill) + strText;
}

class BrowseBlock : public CApi {
  protected:
    static CBlockBytes Prefectures(std::string const& strText = "", unsigned nSortType = 2) {
        std::string strRecord = Record(nSortType, strText);
        HGLOBAL h = nullptr;
        EXPECT_EQ(PstAdrRPrf(strRecord.data(), &h), 0u) << strText;
        return Take(h);
    }
    static CBlockBytes Ask(PFNBROWSE pfn, unsigned short nNo) {
        HGLOBAL h = nullptr;
        EXPECT_EQ(pfn(nNo, &h), 0u) << nNo;
        return Take(h);
    }
    // The answer behind a fresh PstAdrRPrf with this text and the cities of its first prefecture.
    static CBlockBytes AskBelow(std::string const& strText, PFNBROWSE pfn, unsigned short nNo = 0,
                                unsigned nSortType = 2) {
        Prefectures(strText, nSortType);
        Ask(PstAdrRCity, 0);
        return Ask(pfn, nNo);
    }
};

CBlockBytes const NO_ENTRIES = {0, 0};
CBlockBytes const NO_LINES = {0, 0, 0, 0, 12, 0, 0, 0, 12, 0, 0, 0};

// --- prefectures ---------------------------------------------------------------------------------------------------

class PrefBlock : public BrowseBlock {};

char const* const ALL_PREFECTURES[] = {
    "北海道", "青森県", "岩手県", "宮城県",   "秋田県", "山形県",   "福島県", "茨城県", "栃木県", "群馬県",
    "埼玉県", "千葉県", "東京都", "神奈川県", "新潟県", "富山県",   "石川県", "福井県", "山梨県", "長野県",
    "岐阜県", "静岡県", "愛知県", "三重県",   "滋賀県", "京都府",   "大阪府", "兵庫県", "奈良県", "和歌山県",
    "鳥取県", "島根県", "岡山県", "広島県",   "山口県", "徳島県",   "香川県", "愛媛県", "高知県", "福岡県",
    "佐賀県", "長崎県", "熊本県", "大分県",   "宮崎県", "鹿児島県", "沖縄県",
};

// Those prefectures from the last to the first, without one of them.
CTestImage Japan(std::string const& strWithout = "") {
    CTestImage image;
    for (size_t n = std::size(ALL_PREFECTURES); n-- > 0;)
        if (ALL_PREFECTURES[n] != strWithout) image.AddNode(LEVEL_PREF, ADDR_NONE, ALL_PREFECTURES[n], "ヨミ");
    image.Complete();
    return image;
}

TEST_F(PrefBlock, OfAFullDictionaryHas47NamesInTheOrderOfTheirNumbers) {
    Bind(Japan());
    EXPECT_EQ(Prefectures(), Names(std::vector<std::string>(std::begin(ALL_PREFECTURES), std::end(ALL_PREFECTURES))));
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
    std::vector<std::string> vName(std::begin(ALL_PREFECTURES), std::end(ALL_PREFECTURES));
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

// --- towns with their codes ----------------------------------------------------------------------------------------

class TownBlock : public BrowseBlock {};

// "P" and "C" with one town of these texts, or no entry for it when there is no code.
CTestImage WithTown(std::string const& strTown, char const* pszCode, std::string const& strOldCode = "") {
    CTestImage image;
    uint32_t const nCity = image.AddNode(LEVEL_CITY, image.AddNode(LEVEL_PREF, ADDR_NONE, "P"), "C");
    uint32_t const nTown = image.AddNode(LEVEL_TOWN, nCity, strTown);
    if (pszCode != nullptr) image.AddInfo(nTown, pszCode, strOldCode);
    image.Complete();
    return image;
}

TEST_F(TownBlock, OfPstAdrTownIsTheseBytes) {
    Bind(WithTown("TT", "1234567", "123"));
    EXPECT_THAT(AskBelow("P", PstAdrTown),
                ElementsAre(1, 0, 2, 'T', 'T', 3, '1', '2', '3', 7, '1', '2', '3', '4', '5', '6', '7', 0));
}

TEST_F(TownBlock, OfPstAdrRTownIsTheseBytes) {
    Bind(WithTown("TT", "1234567", "123"));
    EXPECT_THAT(AskBelow("P", PstAdrRTown),
                ElementsAre(1, 0, 2, 'T', 'T', 7, '1', '2', '3', '4', '5', '6', '7', 3, '1', '2', '3', 0));
}

TEST_F(TownBlock, OfATownWithoutCodesIsItsNameAndThreeZeros) {
    Bind(WithTown("T", nullptr));
    for (PFNBROWSE pfn : {PstAdrTown, PstAdrRTown})
        EXPECT_THAT(AskBelow("P", pfn), ElementsAre(1, 0, 1, 'T', 0, 0, 0));
}

TEST_F(TownBlock, OfATownWhoseCodesLieOutsideIsItsNameAndThreeZeros) {
    CTestImage image = WithTown("T", "1234567", "123");
    image.vInfo[0].nCode = static_cast<uint32_t>(image.strArea.size());
    Bind(image);
    for (PFNBROWSE pfn : {PstAdrTown, PstAdrRTown})
        EXPECT_THAT(AskBelow("P", pfn), ElementsAre(1, 0, 1, 'T', 0, 0, 0));
}

TEST_F(TownBlock, HasTheOldCodeFirstInPstAdrTown) {
    Bind(CBrowseWorld());
    EXPECT_EQ(AskBelow("東京都", PstAdrTown), OldCodeFirst(CHIYODA_TOWNS));
}

TEST_F(TownBlock, HasTheNewCodeFirstInPstAdrRTown) {
    Bind(CBrowseWorld());
    EXPECT_EQ(AskBelow("東京都", PstAdrRTown), NewCodeFirst(CHIYODA_TOWNS));
}

TEST_F(TownBlock, HasTheSameSizeInBothOrders) {
    Bind(CBrowseWorld());
    EXPECT_EQ(AskBelow("東京都", PstAdrTown).size(), AskBelow("東京都", PstAdrRTown).size());
}

TEST_F(TownBlock, HasTheTownsOfTheCityAtThatPosition) {
    Bind(CBrowseWorld());
    EXPECT_EQ(AskBelow("東京都", PstAdrTown, 1), OldCodeFirst(MINATO_TOWNS));
}

TEST_F(TownBlock, CountsPositionsInTheSortedCities) {
    CTestImage image;
    uint32_t const nPref = image.AddNode(LEVEL_PREF, ADDR_NONE, "P");
    uint32_t const nLast = image.AddNode(LEVEL_CITY, nPref, "Z");
    uint32_t const nFirst = image.AddNode(LEVEL_CITY, nPref, "A");
    image.AddNode(LEVEL_TOWN, nLast, "z");
    image.AddNode(LEVEL_TOWN, nFirst, "a");
    image.Complete();
    Bind(image);
    EXPECT_EQ(AskBelow("P", PstAdrTown, 0, 9), OldCodeFirst({{"a", "", ""}}));
}

TEST_F(TownBlock, IsSortedUnderSortTypeNine) {
    Bind(CBrowseWorld());
    EXPECT_EQ(AskBelow("東京都", PstAdrTown, 0, 9),
              OldCodeFirst({CHIYODA_TOWNS[0], CHIYODA_TOWNS[2], CHIYODA_TOWNS[1]}));
}

TEST_F(TownBlock, BehindAPositionOutsideTheAnswerHasTwoBytes) {
    Bind(CBrowseWorld());
    for (PFNBROWSE pfn : {PstAdrTown, PstAdrRTown})
        for (unsigned short n : CPositions{2, 255, 256, 65535})
            EXPECT_EQ(AskBelow("東京都", pfn, n), NO_ENTRIES) << n;
}

TEST_F(TownBlock, BeforeAnyCitiesHasTwoBytes) {
    Bind(CBrowseWorld());
    Prefectures();
    for (PFNBROWSE pfn : {PstAdrTown, PstAdrRTown}) EXPECT_EQ(Ask(pfn, 0), NO_ENTRIES);
}

TEST_F(TownBlock, OfACityWithItsNamelessTownOnlyHasTwoBytes) {
    Bind(WithTown("", "1234567", "123"));
    for (PFNBROWSE pfn : {PstAdrTown, PstAdrRTown}) EXPECT_EQ(AskBelow("P", pfn), NO_ENTRIES);
}

TEST_F(TownBlock, HoldsTheFirstTownOnlyWhenAskedForAgain) {
    Bind(CBrowseWorld());
    AskBelow("東京都", PstAdrRTown);
    EXPECT_EQ(Ask(PstAdrTown, 1), OldCodeFirst({CHIYODA_TOWNS[0]}));
}

TEST_F(TownBlock, HoldsTheTownOfTheTextOnly) {
    Bind(CBrowseWorld());
    Prefectures("東京都千代田区千代田");
    EXPECT_EQ(Ask(PstAdrRTown, 0), NewCodeFirst({CHIYODA_TOWNS[2]}));
}

TEST_F(TownBlock, HoldsTheTownsBeforeADamagedOne) {
    CBrowseWorld world;
    world.vNode[world.nMinato].nFirstChild = static_cast<uint32_t>(world.vNode.size() - 1); // ２階, and no node
    Bind(world);
    EXPECT_EQ(AskBelow("東京都", PstAdrTown, 1), OldCodeFirst({{"２階", "1050017", "105"}}));
}

TEST_F(TownBlock, WrapsTheLengthsOfLongTextsButHoldsThemWhole) {
    for (size_t nLength : {255u, 256u, 257u, 70000u}) {
        CTownText const town = {std::string(nLength, 'T'), std::string(nLength + 1, '1'),
                                std::string(nLength + 2, '2')};
        Bind(WithTown(town.strTown, town.strCode.c_str(), town.strOldCode));
        EXPECT_EQ(AskBelow("P", PstAdrTown), OldCodeFirst({town})) << nLength;
        EXPECT_EQ(AskBelow("P", PstAdrRTown), NewCodeFirst({town})) << nLength;
    }
}

TEST_F(TownBlock, CountsModulo65536ButHoldsAll) {
    Bind(Crowd(LEVEL_TOWN, 65537, "T"));
    CBlockBytes const vBlock = AskBelow("北海道", PstAdrTown);
    EXPECT_EQ(vBlock, OldCodeFirst(std::vector<CTownText>(65537, {"T", "1000001", "100"})));
    EXPECT_THAT(CBlockBytes(vBlock.begin(), vBlock.begin() + 2), ElementsAre(1, 0));
}

// --- addresses as lines --------------------------------------------------------------------------------------------

class LineBlock : public BrowseBlock {
  protected:
    // The lines of a city that the text leads to.
    CBlockBytes LinesOf(CTestImage const& image, std::string const& strText = "P") {
        Bind(image);
        return AskBelow(strText, PstAdrRTownForUI);
    }
};

// "P", "C" and nodes below, in a line from the city down.
CTestImage Chain(std::vector<std::pair<uint8_t, std::string>> const& vNode) {
    CTestImage image;
    uint32_t nNode = image.AddNode(LEVEL_CITY, image.AddNode(LEVEL_PREF, ADDR_NONE, "P"), "C");
    for (auto const& node : vNode) nNode = image.AddNode(node.first, nNode, node.second);
    image.AddInfo(nNode, "1234567", "123"); // for the last one
    image.Complete();
    return image;
}

TEST_F(LineBlock, OfATownAndAFloorIsTheseBytes) {
    CTestImage image = Chain({{LEVEL_TOWN, "T"}, {LEVEL_BLOCK, "B"}, {LEVEL_NOTE, "N"}});
    image.AddInfo(2, "7654321", "321");
    image.Complete();
    EXPECT_THAT(LinesOf(image), ElementsAre(2, 0, 0, 0, 12, 0, 0, 0, 68, 0, 0, 0, // n, 0, entries, pool
                                            4, 0, 0, 0, 0, 0, 0, 0,               // code, old code
                                            0, 0, 0, 0, 0, 0, 0, 0,               //
                                            12, 0, 0, 0, 0, 0, 0, 0, 14, 0, 0, 0, // line, 0, organisation
                                            19, 0, 0, 0, 15, 0, 0, 0,             //
                                            0, 0, 0, 0, 0, 0, 0, 0,               //
                                            27, 0, 0, 0, 0, 0, 0, 0, 33, 0, 0, 0, //
                                            '3', '2', '1', 0, '7', '6', '5', '4', '3', '2', '1', 0, 'T', 0, 0, //
                                            '1', '2', '3', 0, '1', '2', '3', '4', '5', '6', '7', 0,            //
                                            'T', ' ', 'B', ' ', 'N', 0, 0,                                     //
                                            0, 0, 0, 0)); // 3 + 1 bytes that are counted and not written
}

TEST_F(LineBlock, HasEveryCurrentAddressBelowTheCity) {
    Bind(CBrowseWorld());
    EXPECT_EQ(AskBelow("東京都", PstAdrRTownForUI, 1), Lines(MINATO_LINES));
}

TEST_F(LineBlock, LeavesOutSupersededTownsAndKeepsNamelessOnes) {
    Bind(CBrowseWorld());
    EXPECT_EQ(AskBelow("東京都", PstAdrRTownForUI),
              Lines({{"1000005", "100", "丸の内"}, {"1000001", "100", "千代田"}, {"1000000", "100", ""}}));
}

TEST_F(LineBlock, BeginsItsPoolWithTheOldCodeOfTheFirst) {
    Bind(CBrowseWorld());
    CBlockBytes const vBlock = AskBelow("東京都", PstAdrRTownForUI);
    EXPECT_EQ(CBlockBytes(&vBlock[12], &vBlock[20]), CBlockBytes({4, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(LineBlock, IsSortedUnderSortTypeNine) {
    Bind(CBrowseWorld());
    EXPECT_EQ(AskBelow("東京都", PstAdrRTownForUI, 0, 9),
              Lines({{"1000000", "100", ""}, {"1000005", "100", "丸の内"}, {"1000001", "100", "千代田"}}));
}

TEST_F(LineBlock, BehindAPositionOutsideTheAnswerHasTwelveBytes) {
    Bind(CBrowseWorld());
    for (unsigned short n : CPositions{2, 255, 65535})
        EXPECT_EQ(AskBelow("東京都", PstAdrRTownForUI, n), NO_LINES) << n;
}

TEST_F(LineBlock, OfACityWithoutCurrentAddressesHasTwelveBytes) {
    EXPECT_EQ(LinesOf(WithTown("T", nullptr)), NO_LINES);
}

TEST_F(LineBlock, IsTheSameWhenAskedForAgain) {
    Bind(CBrowseWorld());
    CBlockBytes const vBlock = AskBelow("東京都", PstAdrRTownForUI);
    EXPECT_EQ(Ask(PstAdrRTownForUI, 0), vBlock);
}

TEST_F(LineBlock, LeavesNoTownsForTheTownListsUntilTheNextPrefectures) {
    Bind(CBrowseWorld());
    AskBelow("東京都", PstAdrRTownForUI);
    EXPECT_EQ(Ask(PstAdrTown, 0), NO_ENTRIES);
    EXPECT_EQ(Ask(PstAdrRTown, 0), NO_ENTRIES);
    EXPECT_EQ(AskBelow("東京都", PstAdrTown), OldCodeFirst(CHIYODA_TOWNS));
}

TEST_F(LineBlock, WithoutAnAddressLeavesTheTownsForTheTownLists) {
    LinesOf(WithTown("T", nullptr));
    EXPECT_EQ(Ask(PstAdrTown, 0), OldCodeFirst({{"T", "", ""}}));
}

TEST_F(LineBlock, JoinsTownBuildingAndFloorByBlanks) {
    EXPECT_EQ(LinesOf(Chain({{LEVEL_TOWN, "T"}, {LEVEL_BLOCK, "B"}, {LEVEL_NOTE, "N"}})),
              Lines({{"1234567", "123", "T", nullptr, "B", "N"}}));
}

TEST_F(LineBlock, DoesNotShowAFloorWithoutItsBuilding) {
    CBlockBytes const vBlock = LinesOf(Chain({{LEVEL_TOWN, "T"}, {LEVEL_NOTE, "NN"}}));
    EXPECT_EQ(vBlock, Lines({{"1234567", "123", "T", nullptr, nullptr, "NN"}}));
    EXPECT_EQ(vBlock.size(), 40u + 7 + 3 + 7 + 1 + 2) << "but its size counts";
}

TEST_F(LineBlock, HasAnEmptyLineForABuildingWithoutATown) {
    CBlockBytes const vBlock = LinesOf(Chain({{LEVEL_BLOCK, "BB"}, {LEVEL_NOTE, "N"}}));
    EXPECT_EQ(vBlock, Lines({{"1234567", "123", nullptr, nullptr, "BB", "N"}}));
    EXPECT_EQ(vBlock.size(), 40u + 7 + 3 + 7 + 2 + 1) << "but their sizes count";
}

TEST_F(LineBlock, HasAnEmptyLineForATownWhoseNameLiesOutside) {
    CTestImage image = Chain({{LEVEL_TOWN, "T"}, {LEVEL_BLOCK, "B"}});
    image.vNode[2].nName = static_cast<uint32_t>(image.strArea.size());
    EXPECT_EQ(LinesOf(image), Lines({{"1234567", "123", nullptr, nullptr, "B"}}));
}

TEST_F(LineBlock, HasABlankBetweenANamelessTownAndItsBuilding) {
    EXPECT_EQ(LinesOf(Chain({{LEVEL_TOWN, ""}, {LEVEL_BLOCK, "B"}})), Lines({{"1234567", "123", "", nullptr, "B"}}));
}

TEST_F(LineBlock, HasBothBlanksForANamelessBuilding) {
    EXPECT_EQ(LinesOf(Chain({{LEVEL_TOWN, "T"}, {LEVEL_BLOCK, ""}, {LEVEL_NOTE, "N"}})),
              Lines({{"1234567", "123", "T", nullptr, "", "N"}}));
}

TEST_F(LineBlock, HasItsBlanksWhenTownBuildingAndFloorAreOneAndTheSameText) {
    CTestImage image = Chain({{LEVEL_TOWN, "T"}, {LEVEL_BLOCK, "T"}, {LEVEL_NOTE, "T"}});
    image.vNode[3].nName = image.vNode[4].nName = image.vNode[2].nName;
    EXPECT_EQ(LinesOf(image), Lines({{"1234567", "123", "T", nullptr, "T", "T"}}));
}

TEST_F(LineBlock, CountsTheAreaAndDoesNotWriteIt) {
    CBlockBytes const vBlock = LinesOf(Chain({{LEVEL_TOWN, "T"}, {LEVEL_AREA, "0123456789"}}));
    EXPECT_EQ(vBlock, Lines({{"1234567", "123", "T", "0123456789"}}));
    EXPECT_EQ(vBlock.size(), 40u + 7 + 3 + 7 + 1 + 10);
}

TEST_F(LineBlock, HoldsAnOrganisationBesideTheLine) {
    EXPECT_EQ(LinesOf(Chain({{LEVEL_TOWN, "T"}, {LEVEL_OFFICE, "OO"}})),
              Lines({{"1234567", "123", "T", nullptr, nullptr, nullptr, "OO"}}));
}

TEST_F(LineBlock, HasEmptyTextsForCodesThatLieOutside) {
    CTestImage image = Chain({{LEVEL_TOWN, "T"}});
    image.vInfo[0].nCode = static_cast<uint32_t>(image.strArea.size());
    EXPECT_EQ(LinesOf(image), Lines({{nullptr, nullptr, "T"}}));
}

TEST_F(LineBlock, HoldsLongTextsWhole) {
    std::string const strTown(70000, 'T'), strBlock(300, 'B'), strOffice(500, 'O');
    CTestImage const image = Chain({{LEVEL_TOWN, strTown}, {LEVEL_BLOCK, strBlock}, {LEVEL_OFFICE, strOffice}});
    EXPECT_EQ(LinesOf(image),
              Lines({{"1234567", "123", strTown.c_str(), nullptr, strBlock.c_str(), nullptr, strOffice.c_str()}}));
}

TEST_F(LineBlock, CountsModulo65536AndTellsTheTrueNumberByItsPool) {
    CBlockBytes const vBlock = LinesOf(Crowd(LEVEL_TOWN, 65537, "T"), "北海道");
    EXPECT_EQ(vBlock, Lines(std::vector<CLineText>(65537, {"1000001", "100", "T"})));
    EXPECT_THAT(CBlockBytes(vBlock.begin(), vBlock.begin() + 2), ElementsAre(1, 0));
}

// --- all of them ---------------------------------------------------------------------------------------------------

// An entry point, what has to be asked before it, and its answer in the world of two prefectures.
struct CEntryPoint {
    char const* pszName;
    int nLevel; // 0 prefectures, 1 cities, 2 towns
    uint32_t (*pfn)(HGLOBAL*);
    CBlockBytes vBlock;
    CBlockBytes vBlank; // its answer when there is nothing
};

std::vector<CEntryPoint> EntryPoints() {
    static std::string strAll = Record(2, "");
    return {
        {"PstAdrRPrf", 0, [](HGLOBAL* ph) { return PstAdrRPrf(strAll.data(), ph); }, Names(TwoPrefectures()),
         Names({""})},
        {"PstAdrRCity", 1, [](HGLOBAL* ph) { return PstAdrRCity(TOKYO, ph); }, Names({"千代田区", "港区"}),
         NO_ENTRIES},
        {"PstAdrTown", 2, [](HGLOBAL* ph) { return PstAdrTown(1, ph); }, OldCodeFirst(MINATO_TOWNS), NO_ENTRIES},
        {"PstAdrRTown", 2, [](HGLOBAL* ph) { return PstAdrRTown(1, ph); }, NewCodeFirst(MINATO_TOWNS), NO_ENTRIES},
        {"PstAdrRTownForUI", 2, [](HGLOBAL* ph) { return PstAdrRTownForUI(1, ph); }, Lines(MINATO_LINES), NO_LINES},
    };
}

class EveryBrowseBlock : public BrowseBlock, public testing::WithParamInterface<CEntryPoint> {
  protected:
    EveryBrowseBlock() {
        Bind(CBrowseWorld());
        if (GetParam().nLevel > 0) Prefectures();
        if (GetParam().nLevel > 1) Ask(PstAdrRCity, TOKYO);
    }
};

INSTANTIATE_TEST_SUITE_P(Of, EveryBrowseBlock, testing::ValuesIn(EntryPoints()),
                         [](auto const& entry) { return entry.param.pszName; });

TEST_P(EveryBrowseBlock, IsMovableZeroFilledAndOfExactSize) {
    CSystemWatch watch;
    HGLOBAL h = nullptr;
    EXPECT_EQ(GetParam().pfn(&h), 0u);
    auto const vCall = watch.Calls("GlobalAlloc");
    ASSERT_EQ(vCall.size(), 1u);
    EXPECT_EQ(vCall[0].nNumber, 66);
    EXPECT_EQ(vCall[0].nSize, GetParam().vBlock.size());
    EXPECT_EQ(Take(h), GetParam().vBlock);
}

TEST_P(EveryBrowseBlock, IsLockedOnceAndUnlocked) {
    CSystemWatch watch;
    HGLOBAL h = nullptr;
    GetParam().pfn(&h);
    EXPECT_THAT(watch.Names(), ElementsAre("GlobalAlloc", "GlobalLock", "GlobalUnlock"));
    Take(h);
}

// The handle of a call that could not lock its block.
HGLOBAL FailToLock(CEntryPoint const& entry, HGLOBAL h) {
    CSystemWatch watch;
    watch.Fail("GlobalLock");
    EXPECT_EQ(entry.pfn(&h), 1u);
    EXPECT_THAT(watch.Names(), ElementsAre("GlobalAlloc", "GlobalLock"));
    return h;
}

TEST_P(EveryBrowseBlock, ThatCannotBeLockedLeavesItsHandle) {
    HGLOBAL const h = FailToLock(GetParam(), Untouched());
    EXPECT_NE(h, Untouched());
    EXPECT_NE(h, nullptr);
    GlobalFree(h);
}

TEST_F(TownBlock, OfPstAdrRTownThatCannotBeLockedIsFreed) {
    Bind(WithTown("T", "1234567", "123"));
    Prefectures("PC");
    HGLOBAL const h = FailToLock(EntryPoints().at(3), Untouched());
    ASSERT_NE(h, Untouched());
    EXPECT_EQ(GlobalFree(h), h) << "no live block";
}

// All but PstAdrRTown.
class EveryBrowseBlockThatStays : public EveryBrowseBlock {};

std::vector<CEntryPoint> EntryPointsThatDoNotFree() {
    std::vector<CEntryPoint> vEntry = EntryPoints();
    vEntry.erase(vEntry.begin() + 3);
    return vEntry;
}

INSTANTIATE_TEST_SUITE_P(Of, EveryBrowseBlockThatStays, testing::ValuesIn(EntryPointsThatDoNotFree()),
                         [](auto const& entry) { return entry.param.pszName; });

TEST_P(EveryBrowseBlockThatStays, IsNotWrittenAndTheCallersToFreeWhenItCannotBeLocked) {
    EXPECT_EQ(Take(FailToLock(GetParam(), Untouched())), CBlockBytes(GetParam().vBlock.size(), 0));
}

TEST_P(EveryBrowseBlock, ThatCannotBeAllocatedIsRefusedWithANullHandle) {
    CSystemWatch watch;
    watch.Fail("GlobalAlloc");
    HGLOBAL h = Untouched();
    EXPECT_EQ(GetParam().pfn(&h), 1u);
    EXPECT_EQ(h, nullptr);
}

TEST_P(EveryBrowseBlock, IsNotMadeWithoutAPlaceForItsHandle) {
    CSystemWatch watch;
    EXPECT_EQ(GetParam().pfn(nullptr), 1u);
    EXPECT_THAT(watch.Names(), IsEmpty());
}

TEST_P(EveryBrowseBlock, ComesAfterACallWithoutAPlaceForItsHandleAsIfThereWasNone) {
    GetParam().pfn(nullptr);
    HGLOBAL h = nullptr;
    EXPECT_EQ(GetParam().pfn(&h), 0u);
    EXPECT_EQ(Take(h), GetParam().vBlock);
}

TEST_F(PrefBlock, IsNotMadeWithoutARecord) {
    Bind(CBrowseWorld());
    CSystemWatch watch;
    HGLOBAL h = Untouched();
    EXPECT_EQ(PstAdrRPrf(nullptr, &h), 1u);
    EXPECT_EQ(PstAdrRPrf(nullptr, nullptr), 1u);
    EXPECT_EQ(h, Untouched());
    EXPECT_THAT(watch.Names(), IsEmpty());
}

// A new dictionary, whose only prefecture has no number, and no question before this one.
TEST_P(EveryBrowseBlock, HoldsNothingOfTheDictionaryBefore) {
    Bind(WithTown("T", "1234567", "123"));
    HGLOBAL h = nullptr;
    EXPECT_EQ(GetParam().pfn(&h), 0u);
    EXPECT_EQ(Take(h), GetParam().vBlank);
}

// Damaged: what stands in the answer is open, but it is made without a look behind the image.
TEST_P(EveryBrowseBlock, StaysInsideTheStringAreaWhenItsLastTextLacksItsNul) {
    CBrowseWorld world;
    std::vector<uint32_t> vNode = {world.nMinato, world.nShiba, world.nBuilding, world.nFloor};
    if (GetParam().nLevel == 0) vNode = {world.nTokyo}; // whose cities could not be reached
    for (uint32_t n : vNode) world.vNode[n].nName = static_cast<uint32_t>(world.strArea.size());
    world.strArea += "unterminated";
    CGuardedBytes const image(world.Bytes());
    dic.SetDictionary(image.Data());
    Prefectures();
    if (GetParam().nLevel > 1) Ask(PstAdrRCity, TOKYO);
    HGLOBAL h = nullptr;
    EXPECT_EQ(GetParam().pfn(&h), 0u);
    EXPECT_NE(Take(h).at(0), 0) << "its other entries are there";
    dic.SetDictionary(nullptr);
}

// --- more than a 32-bit process can count --------------------------------------------------------------------------

class HugeBlock : public BrowseBlock {
  protected:
    static constexpr size_t CHILDREN = 16385;
    static constexpr size_t NAME = 262144; // 16,385 times that is 4 GiB and 256 KiB

    // Without memory for it the size that was asked for is seen, and nothing is written. A 32-bit process does not
    // even ask.
    static void ExpectSize(PFNBROWSE pfn, uint64_t nSize) {
        CSystemWatch watch;
        watch.Fail("GlobalAlloc");
        HGLOBAL h = Untouched();
        EXPECT_EQ(pfn(0, &h), 1u);
        EXPECT_EQ(h, nullptr);
        std::vector<uint64_t> vAsked;
        for (CSystemCall const& call : watch.Calls("GlobalAlloc")) vAsked.push_back(call.nSize);
        EXPECT_EQ(vAsked, nSize > SIZE_MAX ? std::vector<uint64_t>() : std::vector<uint64_t>{nSize});
    }
};

TEST_F(HugeBlock, OfCitiesIsAskedForInFullOrNotAtAll) {
    Bind(Crowd(LEVEL_CITY, CHILDREN, std::string(NAME, 'C')));
    Prefectures();
    ExpectSize(PstAdrRCity, 2 + uint64_t{CHILDREN} * (1 + NAME));
}

TEST_F(HugeBlock, OfTownsIsAskedForInFullOrNotAtAll) {
    Bind(Crowd(LEVEL_TOWN, CHILDREN, std::string(NAME, 'T')));
    Prefectures();
    Ask(PstAdrRCity, 0);
    ExpectSize(PstAdrRTown, 2 + uint64_t{CHILDREN} * (4 + NAME + 7 + 3));
}

TEST_F(HugeBlock, OfLinesIsAskedForInFullOrNotAtAll) {
    Bind(Crowd(LEVEL_TOWN, CHILDREN, std::string(NAME, 'T')));
    Prefectures();
    Ask(PstAdrRCity, 0);
    ExpectSize(PstAdrRTownForUI, 12 + uint64_t{CHILDREN} * (28 + 7 + NAME + 7 + 3));
}

// The block that lookups by code share, too.
TEST_F(HugeBlock, OfAddressesIsAskedForInFullOrNotAtAll) {
    Bind(Crowd(LEVEL_TOWN, CHILDREN, std::string(NAME, 'T')));
    auto const Find = [](unsigned short, HGLOBAL* ph) { return static_cast<uint32_t>(GetAdrFromAdd("北海道", ph)); };
    size_t const nTexts = 3 + 7 + 9 + 1 + NAME + 7; // old code, code, prefecture, city, town; a NUL for each of seven
    ExpectSize(Find, 12 + uint64_t{CHILDREN} * (28 + nTexts));
}

} // namespace
