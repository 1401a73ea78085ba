// A host's day: the profile names the folder, the library finds the dictionary there, answers, closes, opens again.
#include "Failures.h"
#include "Lookup.h"
#include "Tables.h"

#include <gmock/gmock.h>

using namespace national;

namespace {

TEST(HostOfTheWholeCountry, FindsTheDictionaryThroughItsProfile) {
    CHost const host;
    EXPECT_TRUE(host.IsOpen());
}

TEST(HostOfTheWholeCountry, GetsTheImperialPalaceForItsCode) {
    CHost const host;
    ASSERT_TRUE(host.IsOpen());
    EXPECT_THAT(ZipBlock("100-0001"),
                testing::HasSubstr(std::string("\0001000001\0東京都\0千代田区\0千代田\0", 1 + 8 + 10 + 13 + 10)));
}

TEST(HostOfTheWholeCountry, GetsPrefectureAndCityForAnOldCode) {
    CHost const host;
    ASSERT_TRUE(host.IsOpen());
    EXPECT_THAT(CityBlock("", "10003"), testing::HasSubstr("東京都利島村"));
}

TEST(HostOfTheWholeCountry, GetsTheSameAnswersAfterItHasClosedAndOpenedAgain) {
    std::string strBefore;
    {
        CHost const host;
        ASSERT_TRUE(host.IsOpen());
        strBefore = ZipBlock("060");
    }
    CHost const host;
    ASSERT_TRUE(host.IsOpen());
    EXPECT_FALSE(strBefore.empty());
    EXPECT_TRUE(ZipBlock("060") == strBefore);
}

} // namespace
