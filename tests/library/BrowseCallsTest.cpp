// Where one call of the interface meets the lists that another has left.
#include "tests/library/AddrTextWorld.h"
#include "tests/library/ApiWorld.h"

#include <memory>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The exported calls over the world of address texts: 東京都 (12) has 千代田区, 港区 and 府中市, 広島県 (33) 府中市.
class BrowseCalls : public CApi {
  protected:
    using CNames = std::vector<std::string>;

    BrowseCalls() { Bind(CTextWorld()); }

    static CNames Prefs(std::string const& strText = "") {
        std::string strRecord = std::string("\2\0", 2) + std::string(21, 'x') + strText;
        HGLOBAL h = nullptr;
        EXPECT_EQ(PstAdrRPrf(strRecord.data(), &h), 0u);
        return NamesIn(h, 1);
    }
    static CNames Cities(unsigned short nPref) {
        HGLOBAL h = nullptr;
        EXPECT_EQ(PstAdrRCity(nPref, &h), 0u);
        return NamesIn(h, 1);
    }
    static CNames Towns(unsigned short nCity) {
        HGLOBAL h = nullptr;
        EXPECT_EQ(PstAdrRTown(nCity, &h), 0u);
        return NamesIn(h, 4);
    }
    static int Zip(char const* pszCode) {
        HGLOBAL h = nullptr;
        int const nStatus = GetAdrFromZip(pszCode, &h);
        GlobalFree(h);
        return nStatus;
    }
    // By its old code when that is all there is.
    static void CityOfOldCode(std::string strCode) {
        strCode.resize(14, '\0');
        std::string strRecord = std::string("\2\0", 2) + strCode;
        HGLOBAL h = nullptr;
        EXPECT_EQ(PstAdrCity(strRecord.data(), &h), 0);
        GlobalFree(h);
    }

  private:
    // The first of each nTexts texts of a list.
    static CNames NamesIn(HGLOBAL h, size_t nTexts) {
        CBlockBytes const vBlock = Take(h);
        CNames vName;
        size_t nText = 0;
        for (size_t n = 2; n < vBlock.size(); n += 1u + vBlock[n], ++nText)
            if (nText % nTexts == 0)
                vName.emplace_back(reinterpret_cast<char const*>(&vBlock[n]) + 1, size_t{vBlock[n]});
        return vName;
    }
};

TEST_F(BrowseCalls, LeadFromPrefecturesToTowns) {
    ASSERT_EQ(Prefs().at(12), "東京都");
    ASSERT_THAT(Cities(12), ElementsAre("千代田区", "港区", "府中市"));
    EXPECT_THAT(Towns(2), ElementsAre("宮西町"));
}

TEST_F(BrowseCalls, FindNothingForANumberOfAnOlderAnswer) {
    Prefs();
    Prefs("東京都");
    EXPECT_THAT(Cities(33), IsEmpty());
}

TEST_F(BrowseCalls, FindNothingForACityNumberOfAnOlderAnswer) {
    Prefs();
    Cities(12);
    Prefs();
    ASSERT_THAT(Cities(33), ElementsAre("府中市"));
    EXPECT_THAT(Towns(2), IsEmpty());
}

TEST_F(BrowseCalls, FindNothingForACityNumberBetweenPrefecturesAndCities) {
    Prefs();
    Cities(12);
    Prefs();
    EXPECT_THAT(Towns(0), IsEmpty());
}

TEST_F(BrowseCalls, LeadToTheCityOfTheTextFromEveryPrefectureThatItHas) {
    ASSERT_THAT(Prefs("府中市"), ElementsAre("東京都", "広島県"));
    EXPECT_THAT(Cities(1), ElementsAre("府中市"));
    EXPECT_THAT(Towns(0), ElementsAre("宮西町")) << "the first city of that name, in 東京都";
}

TEST_F(BrowseCalls, ListTheTownsOfALookupByCodeBetweenCitiesAndTowns) {
    Prefs();
    Cities(12);
    ASSERT_EQ(Zip("7260003"), 0);
    EXPECT_THAT(Towns(0), ElementsAre("元町"));
}

TEST_F(BrowseCalls, HaveOneCityForEachAddressOfALookupByCode) {
    Prefs();
    Cities(12);
    ASSERT_EQ(Zip("10"), 0); // 千代田区 six times, then 港区
    EXPECT_THAT(Towns(6), ElementsAre("芝"));
}

TEST_F(BrowseCalls, HaveTheCityOfALookupByCodeOnlyWhenItComesBeforeTheCities) {
    Prefs();
    ASSERT_EQ(Zip("1050014"), 0);
    EXPECT_THAT(Cities(33), ElementsAre("港区"));
    EXPECT_THAT(Towns(0), ElementsAre("芝"));
}

TEST_F(BrowseCalls, ListTheTownsOfALookupByOldCode) {
    Prefs();
    Cities(12);
    CityOfOldCode("726");
    EXPECT_THAT(Towns(0), ElementsAre("元町"));
}

TEST_F(BrowseCalls, HaveOneCityForNeighbouringAddressesOfALookupByOldCode) {
    Prefs();
    Cities(12);
    CityOfOldCode("105");
    EXPECT_THAT(Towns(1), IsEmpty());
    EXPECT_THAT(Towns(0), ElementsAre("芝"));
}

TEST_F(BrowseCalls, KeepTheirCitiesWhenALookupFindsNoCode) {
    Prefs();
    Cities(12);
    ASSERT_EQ(Zip("9999999"), 1);
    EXPECT_THAT(Towns(1), ElementsAre("芝"));
}

TEST_F(BrowseCalls, LoseTheirCitiesToALookupWhoseAddressesHaveNoTown) {
    Prefs();
    Cities(12);
    ASSERT_EQ(Zip("1000000"), 1) << "the entry of 千代田区 itself";
    EXPECT_THAT(Towns(1), IsEmpty());
}

TEST_F(BrowseCalls, KeepTheirTownsWhenALookupComesBehindThem) {
    Prefs();
    Cities(12);
    Towns(1);
    ASSERT_EQ(Zip("7260003"), 0);
    EXPECT_THAT(Towns(0), ElementsAre("芝")) << "the towns are fixed";
}

TEST_F(BrowseCalls, FindNothingInADictionaryThatIsBoundAgain) {
    Prefs();
    Cities(12);
    Bind(CTextWorld());
    EXPECT_THAT(Cities(12), IsEmpty());
    EXPECT_THAT(Towns(0), IsEmpty());
}

TEST_F(BrowseCalls, TouchNothingOfADictionaryThatIsGone) {
    auto pOld = std::make_unique<CGuardedBytes>(CTextWorld().Bytes());
    dic.SetDictionary(pOld->Data());
    Prefs("府中市");
    ASSERT_THAT(Towns(0), ElementsAre("宮西町"));
    Bind(CTextWorld());
    pOld.reset();
    EXPECT_THAT(Cities(0), IsEmpty());
    EXPECT_THAT(Towns(0), IsEmpty());
}

} // namespace
