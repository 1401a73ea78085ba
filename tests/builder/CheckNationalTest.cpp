// The national dictionary under the checker's rules and the library's operations.
#include "builder/TextTable.h"
#include "tests/builder/CheckWorld.h"
#include "tests/support/EveryOperation.h"
#include "tests/support/GuardedBytes.h"

#include <gmock/gmock.h>

TEST(Check, TheNationalDictionaryIsSoundAndHarmless) {
    std::string const strBytes = BytesOf(QEADRS_TEST_DATA "/qeadrs.dic");
    CImageBytes vByte(strBytes.begin(), strBytes.end());
    ASSERT_THAT(LinesOf(vByte), testing::IsEmpty());
    qe::AppendTextIndex(vByte); // a second one, where it was compiled with one
    ASSERT_THAT(LinesOf(vByte), testing::IsEmpty());
    ASSERT_TRUE(qe::FindTextTable(vByte));
    CGuardedBytes const image(vByte);
    CEveryOperation run(image.Data(), CEveryOperation::Sound, 1);
    run.Run(1);
    EXPECT_GT(run.Addresses(), 100000u);
}
