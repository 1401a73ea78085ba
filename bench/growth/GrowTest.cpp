// The larger dictionaries are what they are said to be: sound, with all addresses in each copy, and codes of their own.
#include "bench/growth/Grow.h"

#include "bench/growth/SpreadCodes.h"
#include "builder/Error.h"
#include "dic/AddrDic.h"
#include "tests/builder/CheckWorld.h"

#include <gmock/gmock.h>

#include <set>
#include <string>

using testing::IsEmpty;

namespace {

constexpr EGrowth KINDS[] = {EGrowth::Cities, EGrowth::Towns};

CImageBytes Grow(CImageBytes const& vByte, EGrowth nKind, uint32_t nTimes) {
    return GrowDictionary(vByte, nKind, nTimes).vByte;
}

uint32_t Count(CImageBytes const& vByte, tagHEADERWORD nWord) {
    return HeaderWord(vByte.data(), nWord);
}

// All codes, each once; the number of entries goes to *pnEntries.
std::set<std::string> Codes(CImageBytes const& vByte, size_t* pnEntries) {
    CAddrDic dic;
    dic.SetDictionary(vByte.data());
    std::set<std::string> setCode;
    for (*pnEntries = 0; tagADDRINFO const* pInfo = dic.GetAddrInfo(*pnEntries); ++*pnEntries)
        setCode.insert(dic.GetString(pInfo->nCode));
    return setCode;
}

// "丸の内 1000005" of the address, "" without a town.
std::string TownAndCode(CImageBytes const& vByte, char const* pszAddress) {
    CAddrDic dic;
    dic.SetDictionary(vByte.data());
    tagADDR addr(0);
    dic.GetPostCodeFromAddr(pszAddress, nullptr, addr);
    return addr.pszTown == nullptr ? "" : std::string(addr.pszTown) + ' ' + addr.pszPostCode;
}

} // namespace

TEST(Grow, LeavesTheCountryAsItIsWhenGrownOnce) {
    for (EGrowth const nKind : KINDS) {
        EXPECT_EQ(Grow(SmallWorld(), nKind, 1), SmallWorld());
        EXPECT_EQ(Grow(SampleWorld(), nKind, 1), SampleWorld());
    }
}

TEST(Grow, MakesSoundDictionariesOfManyTimesTheCountry) {
    for (EGrowth const nKind : KINDS) {
        EXPECT_THAT(LinesOf(Grow(SmallWorld(), nKind, 2)), IsEmpty());
        EXPECT_THAT(LinesOf(Grow(SmallWorld(), nKind, MOST_TIMES)), IsEmpty());
        EXPECT_THAT(LinesOf(Grow(SampleWorld(), nKind, 11)), IsEmpty());
    }
}

TEST(Grow, CopiesWhatItSays) {
    CImageBytes const& vByte = SmallWorld();
    CImageBytes const vCities = Grow(vByte, EGrowth::Cities, 5), vTowns = Grow(vByte, EGrowth::Towns, 5);
    EXPECT_EQ(Count(vCities, HDR_PREF_COUNT), Count(vByte, HDR_PREF_COUNT));
    EXPECT_EQ(Count(vTowns, HDR_PREF_COUNT), Count(vByte, HDR_PREF_COUNT));
    EXPECT_EQ(Count(vCities, HDR_CITY_COUNT), 5 * Count(vByte, HDR_CITY_COUNT));
    EXPECT_EQ(Count(vTowns, HDR_CITY_COUNT), Count(vByte, HDR_CITY_COUNT));
    for (tagHEADERWORD const nWord : {HDR_TOWN_COUNT, HDR_INFO_COUNT, HDR_OFFICE_COUNT}) {
        EXPECT_EQ(Count(vCities, nWord), 5 * Count(vByte, nWord)) << nWord;
        EXPECT_EQ(Count(vTowns, nWord), 5 * Count(vByte, nWord)) << nWord;
    }
}

TEST(Grow, FindsEachCopyByItsMark) {
    CImageBytes const vCities = Grow(SmallWorld(), EGrowth::Cities, 5),
                      vTowns = Grow(SmallWorld(), EGrowth::Towns, 5);
    for (CImageBytes const* pImage : {&vCities, &vTowns})
        EXPECT_EQ(TownAndCode(*pImage, "東京都千代田区丸の内１"), "丸の内 1000005");
    EXPECT_EQ(TownAndCode(vCities, "東京都㐃千代田区㐃丸の内１").substr(0, 13), "㐃丸の内 ");
    EXPECT_EQ(TownAndCode(vCities, "東京都㐃千代田区㐂丸の内１"), "");
    EXPECT_EQ(TownAndCode(vTowns, "東京都千代田区㐃丸の内１").substr(0, 13), "㐃丸の内 ");
    EXPECT_NE(TownAndCode(vTowns, "東京都千代田区㐃丸の内１"), TownAndCode(vTowns, "東京都千代田区㐂丸の内１"));
    EXPECT_EQ(TownAndCode(vTowns, "東京都千代田区㐄丸の内１"), "") << "five times has no sixth copy";
}

TEST(Grow, UsesNoCodeTwiceWhileThereAreEnough) {
    size_t nEntries, nGrown;
    size_t const nCodes = Codes(SmallWorld(), &nEntries).size();
    EXPECT_EQ(Codes(Grow(SmallWorld(), EGrowth::Towns, 300), &nGrown).size(), 300 * nCodes);
    EXPECT_EQ(nGrown, 300 * nEntries);
}

TEST(Grow, UsesEachFreeCodeWhenThereAreNotEnough) {
    CAddrDic dic;
    dic.SetDictionary(SmallWorld().data());
    size_t nEntries;
    size_t const nCodes = Codes(SmallWorld(), &nEntries).size();
    // Three copies to two free codes: of three neighbours two share a code, and no code is left out between them.
    auto const nTimes = static_cast<uint32_t>((10000000 - nCodes) / nCodes * 3 / 2);
    CSpreadCodes const codes(dic, nTimes);
    long nBefore = -1;
    for (uint32_t nCopy = 1; nCopy < 30000; ++nCopy) {
        long const nCode = std::stol(codes.NewCode(nCopy, 0));
        EXPECT_GE(nCode, nBefore);
        EXPECT_LE(nCode, nBefore + 1);
        nBefore = nCode;
    }
    EXPECT_NEAR(static_cast<double>(nBefore), 20000, 2);
}

TEST(Grow, RefusesWhatItCannotGrow) {
    EXPECT_THROW(Grow(SmallWorld(), EGrowth::Cities, 0), qe::CBuildError);
    EXPECT_THROW(Grow(SmallWorld(), EGrowth::Cities, MOST_TIMES + 1), qe::CBuildError);
    CImageBytes vDamaged = SmallWorld();
    vDamaged[HDR_BYTES + 20] ^= 1;
    EXPECT_THROW(Grow(vDamaged, EGrowth::Cities, 2), qe::CBuildError);
}
