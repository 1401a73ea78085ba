// Tests of reading addresses: each way of writing them, on a small country.
#include "tests/text/TextWorld.h"
#include "text/AddressText.h"

#include <gtest/gtest.h>

namespace {

std::string Text(char const* psz) {
    return psz == nullptr ? "" : psz;
}

// "北海道 札幌市中央区 大通西 １〜１９丁目 0600042": the levels that there are, and the code.
std::string Described(QETEXTPLACE const& place) {
    std::string str;
    for (char const* psz : {place.pszPref, place.pszCity, place.pszTown, place.pszArea, place.pszBuilding,
                            place.pszFloor, place.pszPostCode})
        if (psz != nullptr && *psz != '\0') str += (str.empty() ? "" : " ") + std::string(psz);
    return str;
}

class Reading : public testing::Test {
  protected:
    Reading() : m_vByte(TextImage()) {
        m_dic.SetDictionary(m_vByte.data());
        m_pText = std::make_unique<qeadrs::CAddressText>(m_dic);
    }

    QETEXTREADING const& Read(std::string const& strText, uint32_t nOptions = 0) {
        m_strText = strText;
        return m_pText->Read(m_strText, nOptions);
    }
    std::string Place(std::string const& strText) { return Described(Read(strText).place); }
    std::string Part(QETEXTSPAN const& span) const { return m_strText.substr(span.nOffset, span.nLength); }

    void ExpectPlaces(std::vector<std::pair<std::string, std::string>> const& vCase) {
        for (auto const& [strText, strPlace] : vCase) EXPECT_EQ(Place(strText), strPlace) << strText;
    }

    CImageBytes m_vByte;
    CAddrDic m_dic;
    std::unique_ptr<qeadrs::CAddressText> m_pText;
    std::string m_strText;
};

// A dictionary of these records, with its index, and a reader of it.
class CSmallReader {
  public:
    explicit CSmallReader(CTestImage& image) {
        image.Complete();
        m_vByte = WithIndex(image.Bytes(), {});
        m_vByte = WithIndex(m_vByte, IndexOf(m_vByte));
        m_dic.SetDictionary(m_vByte.data());
        m_pText = std::make_unique<qeadrs::CAddressText>(m_dic);
    }
    QETEXTREADING const& Read(std::string_view strText, uint32_t nOptions = 0) {
        return m_pText->Read(strText, nOptions);
    }

  private:
    CImageBytes m_vByte;
    CAddrDic m_dic;
    std::unique_ptr<qeadrs::CAddressText> m_pText;
};

// One of a single town 東町 in 西市, code 0000001.
CSmallReader ReaderOfOneTown(char const* pszPref) {
    CTestImage image;
    uint32_t const nCity = image.AddNode(LEVEL_CITY, image.AddNode(LEVEL_PREF, ADDR_NONE, pszPref), "西市");
    image.AddInfo(image.AddNode(LEVEL_TOWN, nCity, "東町"), "0000001", "000");
    return CSmallReader(image);
}

} // namespace

TEST_F(Reading, AnAddressAsTheDictionarySpellsItIsExact) {
    QETEXTREADING const& reading = Read("東京都千代田区丸の内２丁目４－１");
    EXPECT_EQ(Described(reading.place), "東京都 千代田区 丸の内 1000005");
    EXPECT_EQ(reading.nSureness, uint32_t{QETEXT_EXACT});
    EXPECT_EQ(reading.nFoldings, 0u);
    EXPECT_EQ(reading.nSupplied, 0u);
    EXPECT_EQ(reading.nCandidate, 1u);
    EXPECT_EQ(Part(reading.pref), "東京都");
    EXPECT_EQ(Part(reading.city), "千代田区");
    EXPECT_EQ(Part(reading.town), "丸の内");
    EXPECT_EQ(Part(reading.rest), "２丁目４－１");
}

TEST_F(Reading, WhatIsLeftOutIsSupplied) {
    struct CCase {
        char const *pszText, *pszPlace;
        uint32_t nSupplied;
    };
    for (CCase const& test :
         {CCase{"千代田区丸の内1", "東京都 千代田区 丸の内 1000005", QETEXT_PREF_SUPPLIED},
          CCase{"余市町黒川町1", "北海道 余市郡余市町 黒川町 0460003", QETEXT_PREF_SUPPLIED | QETEXT_COUNTY_SUPPLIED},
          CCase{"北海道余市町黒川町", "北海道 余市郡余市町 黒川町 0460003", QETEXT_COUNTY_SUPPLIED},
          CCase{"三宅村神着", "東京都 三宅島三宅村 神着 1001101", QETEXT_PREF_SUPPLIED | QETEXT_COUNTY_SUPPLIED},
          CCase{"宮城県青葉区一番町", "宮城県 仙台市青葉区 一番町 9800811", QETEXT_CITY_SUPPLIED},
          CCase{"札幌市北8条西", "北海道 札幌市北区 北八条西 0600808",
                QETEXT_PREF_SUPPLIED | QETEXT_WARD_SUPPLIED}}) {
        QETEXTREADING const& reading = Read(test.pszText);
        EXPECT_EQ(Described(reading.place), test.pszPlace) << test.pszText;
        EXPECT_EQ(reading.nSupplied, test.nSupplied) << test.pszText;
        EXPECT_EQ(reading.nSureness, uint32_t{QETEXT_SUPPLIED}) << test.pszText;
    }
}

TEST_F(Reading, TheTownTellsCitiesOfOneNameApart) {
    ExpectPlaces({{"府中市宮町1", "東京都 府中市 宮町 1830023"},
                  {"府中市元町1", "広島県 府中市 元町 7260003"},
                  {"青葉区一番町", "宮城県 仙台市青葉区 一番町 9800811"},
                  {"青葉区青葉台", "神奈川県 横浜市青葉区 青葉台 2270062"}});
}

TEST_F(Reading, ASmallDifferenceOfSpellingDoesNotTellCitiesApart) {
    QETEXTREADING const& reading = Read("府中市緑ヶ丘1");
    EXPECT_EQ(reading.nSureness, uint32_t{QETEXT_SEVERAL});
    ASSERT_EQ(reading.nCandidate, 2u);
    EXPECT_EQ(Described(reading.pCandidate[0]), "広島県 府中市 緑ヶ丘 7260004") << "spelled as in the text";
    EXPECT_EQ(Described(reading.pCandidate[1]), "東京都 府中市 緑ケ丘 1830024");
}

TEST_F(Reading, CitiesOfOneNameWithoutATownAreAllCandidates) {
    QETEXTREADING const& reading = Read("府中市１−２");
    EXPECT_EQ(reading.nSureness, uint32_t{QETEXT_SEVERAL});
    ASSERT_EQ(reading.nCandidate, 2u);
    EXPECT_EQ(Described(reading.pCandidate[0]), "東京都 府中市 1830000");
    EXPECT_EQ(Described(reading.pCandidate[1]), "広島県 府中市");
}

TEST_F(Reading, APrefectureWithoutItsLastCharacterIsUnderstoodInFrontOfItsCity) {
    QETEXTREADING const& reading = Read("東京千代田区丸の内");
    EXPECT_EQ(Described(reading.place), "東京都 千代田区 丸の内 1000005");
    EXPECT_EQ(reading.nFoldings, uint32_t{QETEXT_FOLD_PREF});
    EXPECT_EQ(Place("鹿児島県鹿児島市上之園町"), "鹿児島県 鹿児島市 上之園町 8900052");
    EXPECT_EQ(Place("鹿児島市上之園町"), "鹿児島県 鹿児島市 上之園町 8900052");
}

TEST_F(Reading, ACityOfAnotherPrefectureIsNotSupplied) {
    QETEXTREADING const& reading = Read("北海道千代田区丸の内");
    EXPECT_EQ(reading.nSureness, uint32_t{QETEXT_CITY_NOT_FOUND});
    EXPECT_EQ(Described(reading.place), "北海道");
    EXPECT_EQ(Part(reading.rest), "千代田区丸の内");
}

TEST_F(Reading, NamesInOtherFormsAreFound) {
    struct CCase {
        char const *pszText, *pszTown;
        uint32_t nFoldings;
    };
    for (CCase const& test : {CCase{"北海道札幌市中央区旭ヶ丘", "旭ケ丘", QETEXT_FOLD_KE},
                              CCase{"北海道札幌市中央区旭が丘", "旭ケ丘", QETEXT_FOLD_KE},
                              CCase{"東京都千代田区丸ノ内", "丸の内", QETEXT_FOLD_NO},
                              CCase{"東京都千代田区一っ橋", "一ツ橋", QETEXT_FOLD_TSU},
                              CCase{"北海道札幌市北区北8条西", "北八条西", QETEXT_FOLD_NUMBER},
                              CCase{"岐阜県大垣市大字沢渡町", "沢渡町", QETEXT_FOLD_AZA},
                              CCase{"岐阜県大垣市佐々良木", "大字佐々良木", QETEXT_FOLD_AZA},
                              CCase{"岐阜県大垣市澤渡町", "沢渡町", QETEXT_FOLD_KANJI},
                              CCase{"岐阜県大垣市大字佐佐良木", "大字佐々良木", QETEXT_FOLD_REPEAT},
                              CCase{"東京都千代田区霞か\u3099関", "霞が関", QETEXT_FOLD_COMBINING | QETEXT_FOLD_KE},
                              CCase{"東京都 千代田区　丸の内", "丸の内", QETEXT_FOLD_BLANK}}) {
        QETEXTREADING const& reading = Read(test.pszText);
        EXPECT_EQ(Text(reading.place.pszTown), test.pszTown) << test.pszText;
        EXPECT_EQ(reading.nFoldings, test.nFoldings) << test.pszText;
        EXPECT_EQ(reading.nSureness, uint32_t{QETEXT_FOLDED}) << test.pszText;
    }
}

TEST_F(Reading, TheRestIsLeftAsItIsWritten) {
    EXPECT_EQ(Part(Read("東京都千代田区丸の内　字東 １－２ ").rest), "字東 １－２ ");
    EXPECT_EQ(Part(Read("東京都千代田区丸の内").rest), "");
    EXPECT_EQ(Part(Read("どこか１－２").rest), "どこか１－２");
}

TEST_F(Reading, AWordOfATownIsNeitherDroppedNorAdded) {
    for (char const* pszText : {"岐阜県大垣市沢渡", "東京都府中市宮", "東京都千代田区一橋"})
        EXPECT_EQ(Read(pszText).nSureness, uint32_t{QETEXT_TOWN_NOT_FOUND}) << pszText;
}

TEST_F(Reading, AWordOfATownThatTheTextHasIsNotPassedOver) {
    for (char const* pszText : {"東京都千代田区丸の内町1-1", "東京都府中市宮町村1", "京都府京都市中京区亀屋町通四条"})
        EXPECT_EQ(Read(pszText).nSureness, uint32_t{QETEXT_TOWN_NOT_FOUND}) << pszText;
}

TEST_F(Reading, AnAzaWithinATownLeavesTheShorterTownOpen) {
    QETEXTREADING const& reading = Read("岐阜県大垣市大字砂字新田100");
    EXPECT_EQ(reading.nSureness, uint32_t{QETEXT_SEVERAL});
    ASSERT_EQ(reading.nCandidate, 2u);
    EXPECT_EQ(Described(reading.pCandidate[0]), "岐阜県 大垣市 砂 5030003");
    EXPECT_EQ(Described(reading.pCandidate[1]), "岐阜県 大垣市 砂新田 5030004");
    EXPECT_EQ(Place("岐阜県大垣市砂新田100"), "岐阜県 大垣市 砂新田 5030004");
    EXPECT_EQ(Read("岐阜県大垣市砂新田100").nSureness, uint32_t{QETEXT_EXACT});
}

TEST_F(Reading, ATownThatEndsInSmallMayHaveAnAzaBehindIt) {
    EXPECT_EQ(Place("岐阜県大垣市西小字東1"), "岐阜県 大垣市 西小 5030006");
    EXPECT_EQ(Place("岐阜県大垣市西字東1"), "岐阜県 大垣市 西 5030005");
    EXPECT_EQ(Place("岐阜県大垣市小字西1"), "岐阜県 大垣市 西 5030005");
}

TEST_F(Reading, AnotherBuildingIsNotTheTables) {
    for (char const* pszText :
         {"宮城県仙台市青葉区中央1-3-1アエル前 佐藤ビル2階", "宮城県仙台市青葉区中央1-3-1アエルネット20階"})
        EXPECT_EQ(Place(pszText), "宮城県 仙台市青葉区 中央 9800021") << pszText;
    for (char const* pszText :
         {"宮城県仙台市青葉区中央1-3-1アエル20階建て1階", "宮城県仙台市青葉区中央1-3-1アエル２号館20階"})
        EXPECT_EQ(Read(pszText).nSureness, uint32_t{QETEXT_SEVERAL}) << pszText;
    EXPECT_EQ(Place("宮城県仙台市青葉区中央1-3-1アエルビル20階"), "宮城県 仙台市青葉区 中央 アエル ２０階 9806120");
}

TEST_F(Reading, ACodeDoesNotMakeACityWithoutATownSure) {
    EXPECT_EQ(Read("〒183-0000 府中市1-2-3").nSureness, uint32_t{QETEXT_TOWN_NOT_FOUND});
    EXPECT_EQ(Place("〒726-0003 府中市1-2-3"), "広島県 府中市");
    EXPECT_EQ(Read("〒726-0003 府中市1-2-3").nSupplied, uint32_t{QETEXT_PREF_SUPPLIED});
    EXPECT_EQ(Read("〒183 府中市1-2-3").nSureness, uint32_t{QETEXT_SEVERAL}) << "a part of a code only sorts";
}

TEST_F(Reading, WhatFormsPutAroundACodeIsPassedOver) {
    for (char const* pszText : {"〒100-0005、東京都千代田区丸の内", "〒100-0005:東京都千代田区丸の内",
                                "(〒100-0005)東京都千代田区丸の内", "\"100-0005\",東京都千代田区丸の内"})
        EXPECT_EQ(Place(pszText), "東京都 千代田区 丸の内 1000005") << pszText;
}

TEST_F(Reading, ATownNotFoundGivesTheCodeOfTheCity) {
    QETEXTREADING const& reading = Read("東京都千代田区ないまち１");
    EXPECT_EQ(reading.nSureness, uint32_t{QETEXT_TOWN_NOT_FOUND});
    EXPECT_EQ(Described(reading.place), "東京都 千代田区 1000000");
    EXPECT_EQ(Part(reading.rest), "ないまち１");
}

TEST_F(Reading, ACityThatHasNoTownsIsFoundWhole) {
    EXPECT_EQ(Read("東京都利島村1").nSureness, uint32_t{QETEXT_EXACT});
    EXPECT_EQ(Place("利島村1"), "東京都 利島村 1000301");
}

TEST_F(Reading, ANumberChoosesTheSubdivision) {
    ExpectPlaces({{"札幌市中央区大通西２５丁目", "北海道 札幌市中央区 大通西 ２０〜２８丁目 0640820"},
                  {"札幌市中央区大通西十九丁目", "北海道 札幌市中央区 大通西 １〜１９丁目 0600042"},
                  {"札幌市中央区大通西1-2-3", "北海道 札幌市中央区 大通西 １〜１９丁目 0600042"},
                  {"港区芝5-2", "東京都 港区 芝 ４、５丁目 1080014"}});
}

TEST_F(Reading, ANumberOfACityWithoutATownChoosesItsPart) {
    ExpectPlaces({{"香川県琴平町426", "香川県 仲多度郡琴平町 １〜４２６番地「川東」 7660002"},
                  {"香川県仲多度郡琴平町427", "香川県 仲多度郡琴平町 ４２７番地以降「川西」 7660001"}});
}

TEST_F(Reading, WithoutANumberAllSubdivisionsAreCandidates) {
    QETEXTREADING const& reading = Read("札幌市中央区大通西");
    EXPECT_EQ(reading.nSureness, uint32_t{QETEXT_SEVERAL});
    ASSERT_EQ(reading.nCandidate, 2u);
    EXPECT_EQ(Text(reading.pCandidate[0].pszPostCode), "0600042");
    EXPECT_EQ(Text(reading.pCandidate[1].pszPostCode), "0640820");
}

TEST_F(Reading, ANumberThatNoSubdivisionHasLeavesAllOfThem) {
    QETEXTREADING const& reading = Read("札幌市中央区大通西99丁目");
    EXPECT_EQ(reading.nSureness, uint32_t{QETEXT_SEVERAL});
    EXPECT_EQ(reading.nCandidate, 2u);
}

TEST_F(Reading, ABuildingAndItsFloorAreFoundBehindTheNumberOrTheTown) {
    std::string const strFloor = "宮城県 仙台市青葉区 中央 アエル ２０階 9806120";
    ExpectPlaces({{"仙台市青葉区中央1-3-1 アエル20階", strFloor},
                  {"仙台市青葉区中央１丁目３番１号アエル　２０F", strFloor},
                  {"仙台市青葉区中央アエル２０階", strFloor},
                  {"仙台市青葉区中央1アエル２０階", strFloor},
                  {"仙台市青葉区中央1-3-1 ｱｴﾙB1F", "宮城県 仙台市青葉区 中央 アエル"},
                  {"仙台市青葉区中央1-3-1", "宮城県 仙台市青葉区 中央 9800021"}});
    QETEXTREADING const& reading = Read("仙台市青葉区中央1-3-1 アエル20階の奥");
    EXPECT_EQ(Part(reading.building), "アエル");
    EXPECT_EQ(Part(reading.floor), "20階");
    EXPECT_EQ(Part(reading.rest), "1-3-1 アエル20階の奥");
}

TEST_F(Reading, ABuildingWithoutAFloorHasItselfAndAllItsFloorsAsCandidates) {
    QETEXTREADING const& reading = Read("仙台市青葉区中央1-3-1アエル");
    EXPECT_EQ(reading.nSureness, uint32_t{QETEXT_SEVERAL});
    EXPECT_EQ(reading.nCandidate, 4u);
}

TEST_F(Reading, StreetsOfKyotoStandInFrontOfTheTownAndChooseItsPart) {
    ExpectPlaces({{"京都市中京区御幸町通御池上る亀屋町370",
                   "京都府 京都市中京区 亀屋町 御幸町通御池上る、御幸町通押小路下る 6040941"},
                  {"京都市中京区麩屋町通御池下ル亀屋町1",
                   "京都府 京都市中京区 亀屋町 麩屋町通姉小路上る、麩屋町通御池下る 6048095"},
                  {"京都市中京区三条通河原町東入２丁目西ノ京桑原町1", "京都府 京都市中京区 西ノ京桑原町 6048571"}});
    QETEXTREADING const& reading = Read("京都府京都市中京区烏丸通四条上がる西ノ京桑原町1");
    EXPECT_EQ(Part(reading.street), "烏丸通四条上がる");
    EXPECT_EQ(reading.nFoldings, uint32_t{QETEXT_FOLD_STREET});
}

TEST_F(Reading, ACodeInFrontIsReportedAndHeldAgainstThePlace) {
    QETEXTREADING const& reading = Read("〒100-0005　東京都千代田区丸の内");
    EXPECT_EQ(Part(reading.code), "100-0005");
    EXPECT_EQ(reading.nRemarks, 0u);
    EXPECT_EQ(reading.nFoldings, 0u) << "a blank behind the code is none of the address";
    EXPECT_EQ(Read("100-0003 東京都千代田区丸の内").nRemarks, uint32_t{QETEXT_CODE_CONTRADICTS});
    EXPECT_EQ(Read("1000005東京都千代田区丸の内").nRemarks, 0u);
    EXPECT_EQ(Read("〒１００−０００５千代田区丸の内").nRemarks, 0u);
    EXPECT_EQ(Place("〒東京都千代田区丸の内"), "東京都 千代田区 丸の内 1000005");
}

TEST_F(Reading, ACodeInFrontIsHeldAgainstTheNumberToo) {
    EXPECT_EQ(Read("〒060-0042 札幌市中央区大通西25丁目").nRemarks, uint32_t{QETEXT_CODE_CONTRADICTS});
    EXPECT_EQ(Read("〒064-0820 札幌市中央区大通西25丁目").nRemarks, 0u);
    EXPECT_EQ(Read("〒060-0042 札幌市中央区").nRemarks, 0u) << "the city has a place with this code";
}

TEST_F(Reading, WordsRightBehindATownMayBelongToALongerName) {
    EXPECT_EQ(Read("東京都千代田区丸の内鬱町1").nRemarks, uint32_t{QETEXT_WORDS_BEHIND});
    EXPECT_EQ(Read("東京都千代田区丸の内　鬱町1").nRemarks, 0u);
    EXPECT_EQ(Read("東京都千代田区丸の内字東1").nRemarks, 0u);
    EXPECT_EQ(Read("東京都千代田区丸の内1鬱町").nRemarks, 0u);
}

TEST_F(Reading, ANumberIsNoTownUnlessAnotherOneFollows) {
    ExpectPlaces({{"北海道札幌市北区十二番地1", "北海道 札幌市北区 十二 0010012"},
                  {"北海道札幌市北区12 3-4", "北海道 札幌市北区 十二 0010012"},
                  {"北海道札幌市北区12番地3", "北海道 札幌市北区"},
                  {"北海道札幌市北区12-3", "北海道 札幌市北区"},
                  {"北海道札幌市北区12", "北海道 札幌市北区"}});
}

TEST_F(Reading, ACodeInFrontDecidesBetweenCandidates) {
    QETEXTREADING const& reading = Read("064-0820札幌市中央区大通西");
    EXPECT_EQ(Described(reading.place), "北海道 札幌市中央区 大通西 ２０〜２８丁目 0640820");
    EXPECT_EQ(reading.nRemarks, uint32_t{QETEXT_CODE_DECIDED});
    EXPECT_EQ(reading.nSureness, uint32_t{QETEXT_SUPPLIED});
    EXPECT_EQ(reading.nCandidate, 2u);
}

TEST_F(Reading, TheCanonicalTextIsWhatTheEngineUnderstands) {
    for (std::string const& strText : Texts()) {
        QETEXTREADING const& reading = Read(strText);
        if (reading.nSureness < QETEXT_SUPPLIED || reading.place.pszTown == nullptr || *reading.place.pszTown == '\0')
            continue;
        std::string const strCanonical = qeadrs::CAddressText::Canonical(reading, strText);
        tagADDR addr(0);
        ASSERT_TRUE(m_dic.DivideAddr(strCanonical.c_str(), &addr));
        EXPECT_EQ(addr.pTownNode, m_dic.GetAddrNode(reading.place.nTown)) << strText << " -> " << strCanonical;
    }
}

// A telling reading goes the long way always.
TEST_F(Reading, PlainAddressesAreAnsweredAsTheLongWayAnswersThem) {
    for (std::string const& strText : Texts()) {
        QETEXTREADING plain = Read(strText);
        std::vector<qeadrs::CTextStep> vStep;
        QETEXTREADING const& told = m_pText->Explain(strText, vStep);
        EXPECT_EQ(Described(plain.place), Described(told.place)) << strText;
        EXPECT_EQ(plain.nSureness, told.nSureness) << strText;
        EXPECT_EQ(plain.nFoldings, told.nFoldings) << strText;
        EXPECT_EQ(plain.nSupplied, told.nSupplied) << strText;
        EXPECT_EQ(plain.nRemarks, told.nRemarks) << strText;
        EXPECT_EQ(plain.nCandidate, told.nCandidate) << strText;
        EXPECT_EQ(plain.place.nEntry, told.place.nEntry) << strText;
        EXPECT_EQ(plain.rest.nOffset, told.rest.nOffset) << strText;
        EXPECT_EQ(plain.town.nOffset, told.town.nOffset) << strText;
        EXPECT_EQ(plain.town.nLength, told.town.nLength) << strText;
        EXPECT_EQ(vStep.back().strStep, "answer") << strText;
    }
}

TEST_F(Reading, NamesOfBitsStandInTheirOrder) {
    using Names = std::vector<std::string_view>;
    EXPECT_EQ(qeadrs::FoldingNames(QETEXT_FOLD_WIDTH | QETEXT_FOLD_KANJI | QETEXT_FOLD_STREET),
              (Names{"width", "kanji", "street"}));
    EXPECT_EQ(qeadrs::SuppliedNames(QETEXT_PREF_SUPPLIED | QETEXT_WARD_SUPPLIED), (Names{"prefecture", "ward"}));
    EXPECT_EQ(qeadrs::SurenessName(QETEXT_NOTHING), "nothing");
    EXPECT_EQ(qeadrs::SurenessName(QETEXT_EXACT), "exact");
    EXPECT_EQ(qeadrs::SurenessName(QETEXT_EXACT + 1), "");
}

TEST(ReadingOfAnOldName, GivesItsLatestFormOnRequestBesideIt) {
    CTestImage image;
    uint32_t const nPref = image.AddNode(LEVEL_PREF, ADDR_NONE, "北県");
    uint32_t const nCity = image.AddNode(LEVEL_CITY, nPref, "西市");
    uint32_t const nNew = image.AddNode(LEVEL_TOWN, nCity, "新町");
    uint32_t const nOld = image.AddNode(LEVEL_TOWN, nCity, "旧ケ町");
    uint32_t const nEntry = image.AddInfo(nNew, "0000001", "000");
    image.AddSuperseded(nOld, "0000002", "000", nEntry);
    CSmallReader text(image);
    QETEXTREADING const renewed = text.Read("西市旧が町１－２", QETEXT_RENEW);
    EXPECT_EQ(Described(renewed.place), "北県 西市 旧ケ町 0000002");
    EXPECT_EQ(Described(renewed.latest), "北県 西市 新町 0000001");
    EXPECT_EQ(renewed.nRemarks, unsigned{QETEXT_OLD_NAME | QETEXT_RENEWED});
    QETEXTREADING const plain = text.Read("西市旧が町１－２");
    EXPECT_EQ(Described(plain.place), "北県 西市 旧ケ町 0000002");
    EXPECT_EQ(Described(plain.latest), "");
    EXPECT_EQ(plain.nRemarks, unsigned{QETEXT_OLD_NAME});
    EXPECT_EQ(text.Read("西市新町１－２", QETEXT_RENEW).nRemarks, 0u);
}

// A street is looked for in so many tokens; how much of the text happens to be folded then says nothing.
TEST_F(Reading, AMarkOfAStreetAtTheEndOfTheSearchIsReadWhole) {
    for (size_t nBefore = 58; nBefore < 66; ++nBefore) {
        std::string strText = "京都市中京区";
        for (size_t n = 0; n < nBefore; ++n) strText += "西";
        std::string const strOne = Place(strText + "上がる西ノ京桑原町");
        EXPECT_EQ(Place(strText + "上か\u3099る西ノ京桑原町"), strOne) << nBefore;
    }
}

TEST(ReadingOfOneTown, IsExactInTheDictionarysOwnBytesWhateverIsDroppedOfThem) {
    CSmallReader text = ReaderOfOneTown("大沢　");
    EXPECT_EQ(text.Read("大沢　西市東町").nSureness, uint32_t{QETEXT_EXACT});
    EXPECT_EQ(text.Read("大沢西市東町").nSureness, uint32_t{QETEXT_FOLDED});
}

// In "北十" the last character is two tokens, the digits of ten.
TEST(ReadingOfOneTown, FindsACityBehindAPrefectureThatEndsInANumber) {
    CSmallReader text = ReaderOfOneTown("北十");
    for (std::string const strText : {"北十西市東町", "北10西市東町"}) {
        QETEXTREADING const& reading = text.Read(strText);
        EXPECT_EQ(Described(reading.place), "北十 西市 東町 0000001") << strText;
        EXPECT_EQ(strText.substr(reading.city.nOffset, reading.city.nLength), "西市") << strText;
    }
}
