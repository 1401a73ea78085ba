// Opening and closing through the legacy interface: the calls of the system, what each failure leaves behind, and the
// state that hosts can look at.
#include "tests/library/LegacyWorld.h"
#include "tests/support/ProcessState.h"
#include "tests/support/SystemWatch.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsNull;

class LegacyFile : public CLegacy {
  protected:
    // What an open leaves behind that nobody is to give back: a test that opens twice does it itself.
    static void GiveBack(void const* p, size_t nSize, int hFile) {
        munmap(const_cast<void*>(p), nSize);
        close(hFile);
    }

    // The first town of the image that is in use, which tells it from others.
    static std::string FirstTown() {
        Counts("1", "");
        return NameAt(TOWN, 0);
    }
    static CNamedWorld WorldOf(std::string const& strTown) { return CNamedWorld("東京都", "港区", strTown); }
};

// --- opening -------------------------------------------------------------------------------------------------------

TEST_F(LegacyFile, IsOpenedStepByStep) {
    CTinyWorld const world;
    std::string const strPath = Write(world);
    CSystemWatch watch;
    EXPECT_EQ(Open(strPath), 0);
    EXPECT_THAT(watch.Names(), ElementsAre("open", "stat", "mmap")); // mapped for reading, shared, from the start
    auto const& vCall = watch.Calls();
    EXPECT_EQ(vCall[0].strText, strPath);
    EXPECT_EQ(vCall[0].nNumber & O_ACCMODE, O_RDONLY);
    EXPECT_EQ(vCall[0].nNumber & (O_CREAT | O_TRUNC | O_APPEND | O_EXCL), 0);
    EXPECT_EQ(vCall[1].strText, strPath);
    EXPECT_EQ(vCall[2].nSize, world.Bytes().size());
    EXPECT_EQ(vCall[2].nNumber, vCall[0].hFile);
}

TEST_F(LegacyFile, LeavesDescriptorSizeAndImageInTheState) {
    CTinyWorld const world;
    std::string const strPath = Write(world);
    CSystemWatch watch;
    EXPECT_EQ(Open(strPath), 0);
    EXPECT_EQ(ga_legacy::hDicFile, watch.Calls("open").at(0).hFile);
    EXPECT_TRUE(IsOpen(ga_legacy::hDicFile)) << "it stays open while the mapping is in use";
    EXPECT_EQ(ga_legacy::size, world.Bytes().size());
    EXPECT_EQ(ga_legacy::dic.GetDicPointer(), watch.Calls("mmap").at(0).pAddress);
    EXPECT_EQ(ga_legacy::hFileMap, 0);
    EXPECT_EQ(std::memcmp(ga_legacy::dic.GetDicPointer(), world.Bytes().data(), ga_legacy::size), 0);
}

TEST_F(LegacyFile, OfAnyContentsIsTaken) {
    EXPECT_EQ(Open(Write(CBytes(108))), 0);
    EXPECT_THAT(Counts("", ""), ElementsAre(0, 0, 0));
    EXPECT_THAT(Counts("1", "東京都"), ElementsAre(0, 0, 0));
}

TEST_F(LegacyFile, IsTakenByItsPathAsItStands) {
    CSystemWatch watch;
    watch.Fail("open");
    for (std::string const& strPath : {std::string(""), std::string("qeadrs.dic"), std::string("/a//b/"),
                                       std::string(5000, 'p'), std::string("東京.dic")}) {
        EXPECT_EQ(Open(strPath), 1);
        EXPECT_EQ(watch.Calls("open").back().strText, strPath);
        EXPECT_EQ(watch.Calls("stat").back().strText, strPath);
    }
}

// --- failures ------------------------------------------------------------------------------------------------------

TEST_F(LegacyFile, ThatIsMissingFailsOnTheMapping) {
    CSystemWatch watch;
    EXPECT_EQ(Open(Path("missing")), 1);
    EXPECT_THAT(watch.Names(), ElementsAre("open", "stat", "mmap", "close"));
    EXPECT_EQ(watch.Calls()[2].nSize, 0u);
    EXPECT_EQ(watch.Calls()[2].nNumber, -1);
    EXPECT_EQ(watch.Calls()[3].nNumber, -1);
    EXPECT_EQ(ga_legacy::hDicFile, -1);
    EXPECT_EQ(ga_legacy::size, 0u);
    EXPECT_THAT(ga_legacy::dic.GetDicPointer(), IsNull());
}

TEST_F(LegacyFile, ThatCannotBeOpenedFailsOnTheMappingWithItsSizeKnown) {
    CTinyWorld const world;
    std::string const strPath = Write(world);
    CSystemWatch watch;
    watch.Fail("open");
    EXPECT_EQ(Open(strPath), 1);
    EXPECT_THAT(watch.Names(), ElementsAre("open", "stat", "mmap", "close"));
    EXPECT_EQ(watch.Calls()[2].nSize, world.Bytes().size());
    EXPECT_EQ(watch.Calls()[2].nNumber, -1);
    EXPECT_EQ(watch.Calls()[3].nNumber, -1);
    EXPECT_EQ(ga_legacy::hDicFile, -1);
    EXPECT_EQ(ga_legacy::size, world.Bytes().size());
}

TEST_F(LegacyFile, WhoseSizeIsUnknownCannotBeMapped) {
    std::string const strPath = Write(CTinyWorld());
    CSystemWatch watch;
    watch.Fail("stat");
    EXPECT_EQ(Open(strPath), 1);
    EXPECT_THAT(watch.Names(), ElementsAre("open", "stat", "mmap", "close"));
    EXPECT_EQ(watch.Calls()[2].nSize, 0u);
    EXPECT_EQ(ga_legacy::size, 0u);
    EXPECT_EQ(watch.Calls()[3].nNumber, watch.Calls()[0].hFile);
    EXPECT_FALSE(IsOpen(ga_legacy::hDicFile));
}

TEST_F(LegacyFile, ThatIsEmptyFailsAndLeavesTheNumberOfTheClosedDescriptor) {
    std::string const strPath = Write(CBytes());
    CSystemWatch watch;
    EXPECT_EQ(Open(strPath), 1);
    EXPECT_THAT(watch.Names(), ElementsAre("open", "stat", "mmap", "close"));
    EXPECT_GE(ga_legacy::hDicFile, 0);
    EXPECT_EQ(ga_legacy::hDicFile, watch.Calls()[0].hFile);
    EXPECT_EQ(watch.Calls()[3].nNumber, ga_legacy::hDicFile);
    EXPECT_FALSE(IsOpen(ga_legacy::hDicFile));
    EXPECT_EQ(ga_legacy::size, 0u);
    EXPECT_THAT(ga_legacy::dic.GetDicPointer(), IsNull());
}

TEST_F(LegacyFile, ThatIsAFolderFailsAndIsClosed) {
    std::filesystem::create_directory(Path("folder"));
    CSystemWatch watch;
    EXPECT_EQ(Open(Path("folder")), 1);
    EXPECT_THAT(watch.Names(), ElementsAre("open", "stat", "mmap", "close"));
    EXPECT_GE(ga_legacy::hDicFile, 0);
    EXPECT_EQ(watch.Calls()[3].nNumber, watch.Calls()[0].hFile);
    EXPECT_FALSE(IsOpen(ga_legacy::hDicFile));
    EXPECT_THAT(ga_legacy::dic.GetDicPointer(), IsNull());
}

TEST_F(LegacyFile, ThatCannotBeMappedFailsAndIsClosed) {
    CTinyWorld const world;
    std::string const strPath = Write(world);
    CSystemWatch watch;
    watch.Fail("mmap");
    EXPECT_EQ(Open(strPath), 1);
    EXPECT_THAT(watch.Names(), ElementsAre("open", "stat", "mmap", "close"));
    EXPECT_EQ(watch.Calls()[3].nNumber, watch.Calls()[0].hFile);
    EXPECT_EQ(ga_legacy::hDicFile, watch.Calls()[0].hFile);
    EXPECT_FALSE(IsOpen(ga_legacy::hDicFile));
    EXPECT_EQ(ga_legacy::size, world.Bytes().size());
    EXPECT_THAT(ga_legacy::dic.GetDicPointer(), IsNull());
}

TEST_F(LegacyFile, OfMoreBytesThanASignedWordCountsIsNotMapped) {
    std::string const strPath = Write(CTinyWorld());
    for (uint64_t nSize :
         {0x7FFFFFFFull, 0x80000000ull, 0x80000001ull, 0xFFFFFFFFull, 0x100000000ull, 0x100001000ull}) {
        std::filesystem::resize_file(strPath, nSize); // with a hole
        CSystemWatch watch;
        watch.Fail("mmap");
        EXPECT_EQ(Open(strPath), 1);
        EXPECT_EQ(watch.Calls("mmap").at(0).nSize, nSize <= 0x7FFFFFFF ? nSize : 0) << nSize;
        EXPECT_EQ(ga_legacy::size, nSize <= 0x7FFFFFFF ? nSize : 0) << nSize;
    }
    EXPECT_EQ(Open(strPath), 1) << "nor a part of it";
}

TEST_F(LegacyFile, CanBeOpenedAfterAFailure) {
    ASSERT_EQ(Open(Path("missing")), 1);
    EXPECT_EQ(Open(Write(WorldOf("芝"))), 0);
    EXPECT_EQ(FirstTown(), "芝");
}

TEST_F(LegacyFile, ThatCannotBeOpenedLeavesTheOneInUse) {
    std::string const strEmpty = Write(CBytes()), strGood = Write(WorldOf("丸の内"));
    OpenImage(CLegacyWorld());
    ASSERT_THAT(Counts("100", "", 1), ElementsAre(2, 1, 4));
    unsigned char const* const pImage = ga_legacy::dic.GetDicPointer();
    tagADDRPNT const* const pTree = CAddrDicPeek(ga_legacy::dic).vRefineTree.data();
    for (std::string const& strPath : {Path("missing"), strEmpty, strGood}) {
        {
            CSystemWatch watch;
            if (strPath == strGood) watch.Fail("mmap");
            EXPECT_EQ(Open(strPath), 1) << strPath;
            EXPECT_THAT(watch.Calls("munmap"), IsEmpty());
            EXPECT_EQ(watch.Calls("close").size(), 1u) << "that of the new one";
        }
        EXPECT_EQ(ga_legacy::dic.GetDicPointer(), pImage);
        EXPECT_EQ(NameAt(TOWN, 3), "千代田") << "the lists and the selection stay too";
        EXPECT_THAT(Counts("100", "", 1), ElementsAre(2, 1, 4));
        EXPECT_EQ(CAddrDicPeek(ga_legacy::dic).vRefineTree.data(), pTree) << "and the last query";
    }
}

// --- opening again -------------------------------------------------------------------------------------------------

TEST_F(LegacyFile, OpenedOverAnotherLeavesThatMappedAndItsDescriptorOpen) {
    CNamedWorld const first = WorldOf("芝");
    OpenImage(first);
    unsigned char const* const pFirst = ga_legacy::dic.GetDicPointer();
    size_t const nFirst = ga_legacy::size;
    int const hFirst = ga_legacy::hDicFile;
    std::string const strSecond = Write(WorldOf("丸の内"));
    {
        CSystemWatch watch;
        EXPECT_EQ(Open(strSecond), 0);
        EXPECT_THAT(watch.Names(), ElementsAre("open", "stat", "mmap"));
    }
    EXPECT_EQ(FirstTown(), "丸の内");
    EXPECT_NE(ga_legacy::dic.GetDicPointer(), pFirst);
    EXPECT_NE(ga_legacy::hDicFile, hFirst);
    EXPECT_TRUE(IsOpen(hFirst));
    ASSERT_TRUE(IsMapped(pFirst));
    EXPECT_EQ(std::memcmp(pFirst, first.Bytes().data(), nFirst), 0);
    GiveBack(pFirst, nFirst, hFirst);
}

TEST_F(LegacyFile, OpenedTwiceIsMappedTwice) {
    std::string const strPath = Write(WorldOf("芝"));
    ASSERT_EQ(Open(strPath), 0);
    unsigned char const* const pFirst = ga_legacy::dic.GetDicPointer();
    size_t const nFirst = ga_legacy::size;
    int const hFirst = ga_legacy::hDicFile;
    ASSERT_EQ(Open(strPath), 0);
    EXPECT_NE(ga_legacy::dic.GetDicPointer(), pFirst);
    CSystemWatch watch;
    EXPECT_EQ(Close(), 0);
    EXPECT_TRUE(IsOpen(hFirst)) << "a close is that of the last one only";
    EXPECT_TRUE(IsFileMapped(strPath));
    GiveBack(pFirst, nFirst, hFirst);
    EXPECT_FALSE(IsFileMapped(strPath));
}

TEST_F(LegacyFile, OpenedAgainHasEmptyListsAndNoSelection) {
    std::string const strPath = Write(CLegacyWorld());
    for (bool bClosed : {true, false})
        for (char const* pszCode : {"100", ""}) {
            ASSERT_EQ(Open(strPath), 0);
            Counts(pszCode, "", 1);
            ASSERT_EQ(NameAt(PREF, 1), "東京都");
            if (bClosed) Close();
            ASSERT_EQ(Open(strPath), 0);
            for (short nKind : {PREF, CITY, TOWN}) EXPECT_EQ(NameAt(nKind, 0), "") << nKind;
            CAddrDicPeek const peek(ga_legacy::dic);
            EXPECT_THAT(peek.vRefineTree, IsEmpty());
            EXPECT_THAT(peek.vPrefPnt, IsEmpty());
            EXPECT_THAT(peek.vCityPnt, IsEmpty());
            EXPECT_THAT(peek.vTownPnt, IsEmpty());
            EXPECT_EQ(peek.nSelPref, 0);
            EXPECT_EQ(peek.nSelCity, 0);
            EXPECT_EQ(peek.nSelTown, 0);
        }
}

TEST_F(LegacyFile, OpenedAgainForgetsTheLastQuery) {
    for (bool bClosed : {true, false}) {
        OpenImage(WorldOf("芝"));
        ASSERT_EQ(FirstTown(), "芝");
        if (bClosed) Close();
        OpenImage(WorldOf("丸の内"));
        EXPECT_STREQ(CAddrDicPeek(ga_legacy::dic).szRefinePostCode, "");
        EXPECT_EQ(FirstTown(), "丸の内") << "the same query, and another file";
    }
}

// --- closing -------------------------------------------------------------------------------------------------------

TEST_F(LegacyFile, ClosedUnmapsTheImageAndClosesTheFileAndKeepsTheState) {
    CTinyWorld const world;
    std::string const strPath = Write(world);
    ASSERT_EQ(Open(strPath), 0);
    unsigned char const* const pImage = ga_legacy::dic.GetDicPointer();
    int const hFile = ga_legacy::hDicFile;
    CBytes const vState = State();
    ASSERT_TRUE(IsFileMapped(strPath));
    CSystemWatch watch;
    EXPECT_EQ(Close(), 0);
    EXPECT_THAT(watch.Names(), ElementsAre("munmap", "close"));
    EXPECT_EQ(watch.Calls()[0].pAddress, pImage);
    EXPECT_EQ(watch.Calls()[0].nSize, world.Bytes().size());
    EXPECT_EQ(watch.Calls()[1].nNumber, hFile);
    EXPECT_FALSE(IsFileMapped(strPath));
    EXPECT_FALSE(IsOpen(hFile));
    EXPECT_EQ(State(), vState) << "descriptor, size and pointer are the last open's";
    EXPECT_EQ(ga_legacy::hDicFile, hFile);
    EXPECT_EQ(ga_legacy::size, world.Bytes().size());
    EXPECT_EQ(ga_legacy::dic.GetDicPointer(), pImage);
}

TEST_F(LegacyFile, ClosedWithNothingOpenSucceeds) {
    CSystemWatch watch;
    EXPECT_EQ(Close(), 0);
    EXPECT_EQ(ga_legacy_close(), 1);
    EXPECT_THAT(watch.Names(), ElementsAre("munmap", "close", "munmap", "close"));
    for (size_t n : {0u, 2u}) {
        EXPECT_THAT(watch.Calls()[n].pAddress, IsNull());
        EXPECT_EQ(watch.Calls()[n].nSize, 0u);
        EXPECT_EQ(watch.Calls()[n + 1].nNumber, -1);
    }
    EXPECT_EQ(ga_legacy::hDicFile, -1);
    EXPECT_EQ(ga_legacy::size, 0u);
}

// By then the address and the number may be somebody else's.
TEST_F(LegacyFile, ClosedTwiceGivesNothingBackTheSecondTime) {
    OpenImage(CTinyWorld());
    size_t const nSize = ga_legacy::size;
    int const hFile = ga_legacy::hDicFile;
    void* const pImage = const_cast<unsigned char*>(ga_legacy::dic.GetDicPointer());
    ASSERT_EQ(Close(), 0);
    ASSERT_EQ(mmap(pImage, nSize, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0), pImage);
    int const hOther = open("/dev/null", O_RDONLY);
    ASSERT_EQ(hOther, hFile) << "the lowest free number";
    CSystemWatch watch;
    EXPECT_EQ(Close(), 0);
    EXPECT_THAT(watch.Names(), ElementsAre("munmap", "close"));
    EXPECT_THAT(watch.Calls()[0].pAddress, IsNull());
    EXPECT_EQ(watch.Calls()[1].nNumber, -1);
    EXPECT_TRUE(IsMapped(pImage));
    EXPECT_TRUE(IsOpen(hOther));
    GiveBack(pImage, nSize, hOther);
}

TEST_F(LegacyFile, ClosedIgnoresTheResultsOfItsCalls) {
    OpenImage(CTinyWorld());
    {
        CSystemWatch watch;
        watch.Fail("munmap");
        watch.Fail("close");
        EXPECT_EQ(Close(), 0);
        EXPECT_THAT(watch.Names(), ElementsAre("munmap", "close"));
    }
    EXPECT_TRUE(IsOpen(ga_legacy::hDicFile));
    EXPECT_TRUE(IsMapped(ga_legacy::dic.GetDicPointer()));
    GiveBack(ga_legacy::dic.GetDicPointer(), ga_legacy::size, ga_legacy::hDicFile);
}

// The failed open has left its own descriptor and size in the state.
TEST_F(LegacyFile, ClosedAfterAFailedOpenGivesBackTheOneInUse) {
    CTinyWorld const world;
    std::string const strEmpty = Write(CBytes()), strGood = Write(CLegacyWorld());
    for (std::string const& strFailing : {Path("missing"), strEmpty, strGood}) {
        std::string const strPath = Write(world);
        ASSERT_EQ(Open(strPath), 0);
        unsigned char const* const pImage = ga_legacy::dic.GetDicPointer();
        int const hFile = ga_legacy::hDicFile;
        CSystemWatch watch;
        watch.Fail("mmap");
        ASSERT_EQ(Open(strFailing), 1);
        EXPECT_NE(ga_legacy::hDicFile, hFile);
        EXPECT_NE(ga_legacy::size, world.Bytes().size());
        EXPECT_EQ(Close(), 0);
        EXPECT_EQ(watch.Calls("munmap").at(0).pAddress, pImage);
        EXPECT_EQ(watch.Calls("munmap").at(0).nSize, world.Bytes().size());
        EXPECT_EQ(watch.Calls("close").back().nNumber, hFile);
        EXPECT_FALSE(IsFileMapped(strPath));
        EXPECT_FALSE(IsOpen(hFile));
    }
}

TEST_F(LegacyFile, CanBeOpenedAndClosedManyTimes) {
    std::string const strPath = Write(WorldOf("芝"));
    int hFirst = -1;
    for (int n = 0; n < 100; ++n) {
        ASSERT_EQ(Open(strPath), 0);
        ASSERT_EQ(FirstTown(), "芝");
        if (n == 0) hFirst = ga_legacy::hDicFile;
        ASSERT_EQ(ga_legacy::hDicFile, hFirst) << "no descriptor is lost";
        ASSERT_EQ(Close(), 0);
        ASSERT_FALSE(IsFileMapped(strPath));
    }
}

} // namespace
