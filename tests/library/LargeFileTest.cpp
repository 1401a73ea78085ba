// Opening a dictionary file of a size that only some processes can count.
#include "api/Pstexec.h"
#include "api/PstexecState.h"
#include "tests/support/SystemWatch.h"
#include "tests/support/TestProfile.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <limits>

namespace {

using testing::IsNull;

TEST(LargeFile, OfMoreBytesThanTheProcessCountsIsMappedInNoPart) {
    CTestProfile const profile;
    profile.SetDicDir(profile.Folder());
    profile.WriteDictionary({0});
    for (uint64_t nSize : {0x7FFFFFFFull, 0x80000000ull, 0xFFFFFFFFull, 0x100000000ull, 0x100001000ull}) {
        std::filesystem::resize_file(profile.DictionaryPath(), nSize); // with a hole
        bool const bCountable = nSize <= static_cast<uint64_t>(std::numeric_limits<long>::max());
        CSystemWatch watch;
        watch.Fail("mmap"); // it asks for zero bytes, which no mapping has, or for all
        EXPECT_EQ(PstAdrOpen(), 1);
        EXPECT_EQ(watch.Calls("mmap").at(0).nSize, bCountable ? nSize : 0) << nSize;
        EXPECT_EQ(nDicSize, 0) << "as it was";
        EXPECT_THAT(dic.GetDicPointer(), IsNull());
    }
}

} // namespace
