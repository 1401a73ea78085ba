// The dictionary object while no image is bound, where it must not take a number or a text for one of an image's.
#include "tests/support/Peek.h"

#include <gmock/gmock.h>

namespace {

using testing::IsEmpty;
using testing::IsNull;

TEST(UnboundDictionary, HasNoLastOrganisationWhateverItRemembers) {
    CAddrDic dic;
    CAddrDicPeek const peek(dic);
    peek.pszLastOffice = "office";
    EXPECT_THAT(dic.GetLastInc(), IsNull());
}

// The empty old code begins every table at its first entry, even one that is not there.
TEST(UnboundDictionary, AnswersTheEmptyOldCodeWithNoAddressAndForgetsTheCities) {
    CAddrDic dic;
    CAddrDicPeek const peek(dic);
    peek.vCityList = {nullptr};
    std::vector<tagADDR> vAddr;
    EXPECT_EQ(dic.GetAddrFromPostCode5("", vAddr), 1);
    EXPECT_THAT(vAddr, IsEmpty());
    EXPECT_THAT(peek.vCityList, IsEmpty());
}

} // namespace
