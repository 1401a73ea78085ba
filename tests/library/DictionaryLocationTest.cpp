// Opening and closing: where the dictionary is looked for, and what each failure leaves behind.
#include "tests/library/ApiWorld.h"

#include "dic/ImageHeader.h"
#include "tests/support/Peek.h"
#include "tests/support/ProcessState.h"
#include "tests/support/SystemWatch.h"
#include "tests/support/TestProfile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsNull;
using testing::Not;

// A profile and a folder for the dictionary; the API closed before and after, whatever the test does.
class DictionaryLocation : public testing::Test {
  protected:
    DictionaryLocation() { profile.SetDicDir(profile.Folder()); }

    void TearDown() override {
        if (dic.GetDicPointer() != nullptr && nDicSize > 0) PstAdrClose();
        dic.SetDictionary(nullptr);
        hDicFile = 0;
        nDicSize = 0;
    }

    static std::string FirstTown() {
        std::vector<tagADDR> vAddr;
        dic.GetAddrFromPostCode7("1", vAddr);
        return vAddr.empty() ? "(none)" : vAddr[0].pszTown;
    }

    CTestProfile profile;
    CTinyWorld world;
};

// --- opening
// --------------------------------------------------------------------------------------------------------------

TEST_F(DictionaryLocation, IsTheFolderInTheProfile) {
    profile.WriteDictionary(world.Bytes());
    EXPECT_EQ(PstAdrOpen(), 0);
    EXPECT_EQ(FirstTown(), "千代田");
}

TEST_F(DictionaryLocation, IsAskedForAndOpenedStepByStep) {
    profile.WriteDictionary(world.Bytes());
    CSystemWatch watch;
    EXPECT_EQ(PstAdrOpen(), 0);
    EXPECT_THAT(watch.Names(), ElementsAre("LoadLibrary", "GetProcAddress", "FreeLibrary", "open", "stat", "mmap"));
    auto const& vCall = watch.Calls();
    EXPECT_EQ(vCall[0].strText, "libqeprof.so");
    EXPECT_EQ(vCall[1].strText, "QeGetProfileString");
    EXPECT_EQ(vCall[2].pAddress, vCall[1].pAddress) << "the same module";
    EXPECT_EQ(vCall[3].strText, profile.DictionaryPath());
    EXPECT_EQ(vCall[3].nNumber & O_ACCMODE, O_RDONLY);
    EXPECT_EQ(vCall[4].strText, profile.DictionaryPath());
    EXPECT_EQ(vCall[5].nSize, world.Bytes().size());
    EXPECT_EQ(vCall[5].nNumber, vCall[3].hFile);
}

TEST_F(DictionaryLocation, OpenedLeavesDescriptorSizeAndImageInTheState) {
    profile.WriteDictionary(world.Bytes());
    CSystemWatch watch;
    EXPECT_EQ(PstAdrOpen(), 0);
    EXPECT_EQ(hDicFile, watch.Calls("open").at(0).hFile);
    EXPECT_TRUE(IsOpen(hDicFile)) << "it stays open while the mapping is in use";
    EXPECT_EQ(nDicSize, static_cast<long>(world.Bytes().size()));
    EXPECT_EQ(dic.GetDicPointer(), watch.Calls("mmap").at(0).pAddress);
}

TEST_F(DictionaryLocation, OpenedForgetsTheWorkingStateOfTheLastOne) {
    world.vInfo[0].nNode = world.AddNode(LEVEL_OFFICE, world.nTown, "office");
    profile.WriteDictionary(world.Bytes());
    ASSERT_EQ(PstAdrOpen(), 0);
    FirstTown();
    ASSERT_STREQ(dic.GetLastInc(), "office");
    PstAdrClose();
    ASSERT_EQ(PstAdrOpen(), 0);
    EXPECT_THAT(dic.GetLastInc(), IsNull());
}

// The file in its place may be another one by then: no position of an answer from the old one leads anywhere.
TEST_F(DictionaryLocation, OpenedAgainHasNoListsOfBrowsing) {
    world.Complete();
    profile.WriteDictionary(world.Bytes());
    ASSERT_EQ(PstAdrOpen(), 0);
    std::vector<tagADDR> vPref, vCity, vTown;
    ASSERT_TRUE(dic.GetPrefFromCity("東京都千代田区千代田", vPref));
    PstAdrClose();
    ASSERT_EQ(PstAdrOpen(), 0);
    EXPECT_FALSE(dic.GetCityFromNo(0, vCity));
    EXPECT_FALSE(dic.GetTownFromNo(0, vTown));
    EXPECT_THAT(CAddrDicPeek(dic).vTownList, IsEmpty());
}

TEST_F(DictionaryLocation, IsTheRootFolderWhenTheProfileDoesNotTell) {
    profile.SetDicDir(""); // the same as no key at all
    for (bool bFirst : {true, false}) {
        CSystemWatch watch;
        watch.Fail("open");
        EXPECT_EQ(PstAdrOpen(), 1);
        EXPECT_EQ(watch.Calls("open").at(0).strText, "/qeadrs.dic") << bFirst;
        EXPECT_EQ(watch.Calls("stat").at(0).strText, "/qeadrs.dic") << bFirst;
        std::filesystem::resize_file(profile.Folder() + "/profile.ini", 0); // and now there is no key
    }
}

TEST_F(DictionaryLocation, IsPutTogetherWithoutLookingForASlash) {
    profile.SetDicDir(profile.Folder() + "/");
    profile.WriteDictionary(world.Bytes());
    CSystemWatch watch;
    EXPECT_EQ(PstAdrOpen(), 0);
    EXPECT_EQ(watch.Calls("open").at(0).strText, profile.Folder() + "//qeadrs.dic");
}

TEST_F(DictionaryLocation, OpensAFileOfAnyContentsThatCanBeMapped) {
    std::vector<unsigned char> vByte(HDR_BYTES);
    profile.WriteDictionary(vByte);
    EXPECT_EQ(PstAdrOpen(), 0);
    EXPECT_EQ(FirstTown(), "(none)");
}

// --- how long a folder may be
// ---------------------------------------------------------------------------------------------

// Stands in for the profile library's function and answers a value of the length that a test wants.
size_t nValueLength = 0;
bool bValueEnds = true;
struct CProfileCall {
    std::string strSection, strKey, strDefault, strBuffer;
    int nSize;
} lastProfileCall;

int AnswerProfile(char const* pszSection, char const* pszKey, char const* pszDefault, char* pszBuffer, int nSize) {
    lastProfileCall = {pszSection, pszKey, pszDefault, std::string(pszBuffer, 260), nSize};
    std::memset(pszBuffer, 'd', nValueLength);
    if (bValueEnds) pszBuffer[nValueLength] = '\0';
    return -1; // a result that nobody looks at
}

class LongFolder : public DictionaryLocation {
  protected:
    LongFolder() {
        watch.GiveFunction(reinterpret_cast<FARPROC>(AnswerProfile));
        watch.Fail("open");
        bValueEnds = true;
        nValueLength = 0;
    }
    CSystemWatch watch;
};

TEST_F(LongFolder, IsAskedForWithAZeroedBufferOf260Bytes) {
    EXPECT_EQ(PstAdrOpen(), 1);
    EXPECT_EQ(lastProfileCall.strSection, "General");
    EXPECT_EQ(lastProfileCall.strKey, "DicDir");
    EXPECT_EQ(lastProfileCall.strDefault, "");
    EXPECT_EQ(lastProfileCall.nSize, 260);
    EXPECT_EQ(lastProfileCall.strBuffer, std::string(260, '\0'));
}

TEST_F(LongFolder, IsTakenUpTo248Bytes) {
    for (nValueLength = 0; nValueLength <= 248; ++nValueLength) {
        EXPECT_EQ(PstAdrOpen(), 1);
        ASSERT_EQ(watch.Calls("open").back().strText, std::string(nValueLength, 'd') + "/qeadrs.dic");
    }
}

TEST_F(LongFolder, IsRefusedFrom249BytesOn) {
    for (nValueLength = 249; nValueLength <= 259; ++nValueLength) EXPECT_EQ(PstAdrOpen(), 1) << nValueLength;
    EXPECT_THAT(watch.Names(), Not(Contains("open")));
}

TEST_F(LongFolder, IsRefusedWhenItsValueFillsTheBufferWithoutNul) {
    bValueEnds = false;
    nValueLength = 260;
    EXPECT_EQ(PstAdrOpen(), 1);
    EXPECT_THAT(watch.Names(), Not(Contains("open")));
}

TEST_F(LongFolder, LeavesTheStateAloneWhenItIsRefused) {
    hDicFile = 77;
    nDicSize = 88;
    nValueLength = 249;
    EXPECT_EQ(PstAdrOpen(), 1);
    EXPECT_EQ(hDicFile, 77);
    EXPECT_EQ(nDicSize, 88);
    EXPECT_THAT(dic.GetDicPointer(), IsNull());
}

// A folder whose path has exactly this many bytes.
std::string FolderOfLength(std::string const& strBase, size_t nLength) {
    std::string str = strBase;
    while (nLength - str.size() > 101) str += "/" + std::string(99, 'f');
    str += "/" + std::string(nLength - str.size() - 1, 'f');
    std::filesystem::create_directories(str);
    return str;
}

TEST_F(DictionaryLocation, IsFoundInAFolderOf248BytesButNotOf249) {
    profile.WriteDictionary(world.Bytes());
    for (size_t nLength : {248u, 249u}) {
        std::string const strFolder = FolderOfLength(profile.Folder(), nLength);
        ASSERT_EQ(strFolder.size(), nLength);
        std::filesystem::copy_file(profile.DictionaryPath(), strFolder + "/qeadrs.dic");
        profile.SetDicDir(strFolder);
        EXPECT_EQ(PstAdrOpen(), nLength == 248 ? 0 : 1);
        if (nLength == 248) {
            EXPECT_EQ(FirstTown(), "千代田");
            PstAdrClose();
        }
    }
}

// --- failures
// -------------------------------------------------------------------------------------------------------------

TEST_F(DictionaryLocation, IsUnknownWithoutTheProfileLibrary) {
    profile.WriteDictionary(world.Bytes());
    hDicFile = 77;
    CSystemWatch watch;
    watch.Fail("LoadLibrary");
    EXPECT_EQ(PstAdrOpen(), 1);
    EXPECT_THAT(watch.Names(), ElementsAre("LoadLibrary"));
    EXPECT_EQ(hDicFile, 77);
    EXPECT_EQ(nDicSize, 0);
}

TEST_F(DictionaryLocation, IsUnknownWithoutTheProfileFunctionAndTheLibraryIsKept) {
    profile.WriteDictionary(world.Bytes());
    hDicFile = 77;
    CSystemWatch watch;
    watch.Fail("GetProcAddress");
    EXPECT_EQ(PstAdrOpen(), 1);
    EXPECT_THAT(watch.Names(), ElementsAre("LoadLibrary", "GetProcAddress")) << "no FreeLibrary";
    EXPECT_EQ(hDicFile, 77);
    EXPECT_EQ(nDicSize, 0);
    FreeLibrary(const_cast<void*>(watch.Calls()[1].pAddress));
}

TEST_F(DictionaryLocation, WithoutAFileFailsOnTheMapping) {
    CSystemWatch watch;
    EXPECT_EQ(PstAdrOpen(), 1);
    EXPECT_THAT(watch.Names(),
                ElementsAre("LoadLibrary", "GetProcAddress", "FreeLibrary", "open", "stat", "mmap", "close"));
    EXPECT_EQ(watch.Calls("mmap").at(0).nNumber, -1);
    EXPECT_EQ(watch.Calls("close").at(0).nNumber, -1);
    EXPECT_EQ(hDicFile, -1);
    EXPECT_EQ(nDicSize, 0);
    EXPECT_THAT(dic.GetDicPointer(), IsNull());
}

TEST_F(DictionaryLocation, WithAnEmptyFileFailsAndKeepsTheNumberOfTheClosedDescriptor) {
    profile.WriteDictionary({});
    CSystemWatch watch;
    EXPECT_EQ(PstAdrOpen(), 1);
    EXPECT_GE(hDicFile, 0);
    EXPECT_EQ(hDicFile, watch.Calls("open").at(0).hFile);
    EXPECT_EQ(watch.Calls("close").at(0).nNumber, hDicFile);
    EXPECT_FALSE(IsOpen(hDicFile));
    EXPECT_EQ(nDicSize, 0);
    EXPECT_THAT(dic.GetDicPointer(), IsNull());
}

TEST_F(DictionaryLocation, WithAFolderInPlaceOfTheFileFailsAndClosesIt) {
    std::filesystem::create_directory(profile.DictionaryPath());
    CSystemWatch watch;
    EXPECT_EQ(PstAdrOpen(), 1);
    EXPECT_EQ(hDicFile, watch.Calls("open").at(0).hFile);
    EXPECT_FALSE(IsOpen(hDicFile));
    EXPECT_THAT(dic.GetDicPointer(), IsNull());
}

TEST_F(DictionaryLocation, ThatCannotBeMappedFailsAndIsClosed) {
    profile.WriteDictionary(world.Bytes());
    CSystemWatch watch;
    watch.Fail("mmap");
    EXPECT_EQ(PstAdrOpen(), 1);
    EXPECT_FALSE(IsOpen(hDicFile));
    EXPECT_EQ(hDicFile, watch.Calls("open").at(0).hFile);
    EXPECT_THAT(dic.GetDicPointer(), IsNull());
}

TEST_F(DictionaryLocation, CanBeOpenedAfterAFailure) {
    ASSERT_EQ(PstAdrOpen(), 1);
    profile.WriteDictionary(world.Bytes());
    EXPECT_EQ(PstAdrOpen(), 0);
    EXPECT_EQ(FirstTown(), "千代田");
}

// --- closing and opening again
// ----------------------------------------------------------------------------------------------

TEST_F(DictionaryLocation, ClosedUnmapsTheImageAndClosesTheFile) {
    profile.WriteDictionary(world.Bytes());
    ASSERT_EQ(PstAdrOpen(), 0);
    unsigned char const* const pImage = dic.GetDicPointer();
    int const hFile = hDicFile;
    ASSERT_TRUE(IsFileMapped(profile.DictionaryPath()));
    CSystemWatch watch;
    EXPECT_EQ(PstAdrClose(), 0);
    EXPECT_THAT(watch.Names(), ElementsAre("munmap", "close"));
    EXPECT_EQ(watch.Calls()[0].pAddress, pImage);
    EXPECT_EQ(watch.Calls()[0].nSize, world.Bytes().size());
    EXPECT_EQ(watch.Calls()[1].nNumber, hFile);
    EXPECT_FALSE(IsFileMapped(profile.DictionaryPath()));
    EXPECT_FALSE(IsOpen(hFile));
    EXPECT_EQ(hDicFile, -1);
    EXPECT_EQ(dic.GetDicPointer(), pImage) << "the object is not reset";
}

TEST_F(DictionaryLocation, ClosedAgainOrNeverOpenedGivesZero) {
    CSystemWatch watch;
    watch.Ignore("close"); // descriptor 0 is the test program's
    EXPECT_EQ(PstAdrClose(), 0);
    EXPECT_THAT(watch.Names(), ElementsAre("munmap", "close"));
    EXPECT_THAT(watch.Calls()[0].pAddress, IsNull());
    EXPECT_EQ(watch.Calls()[0].nSize, 0u);
    EXPECT_EQ(watch.Calls()[1].nNumber, 0);
    EXPECT_EQ(hDicFile, -1);
    EXPECT_EQ(PstAdrClose(), 0);
    EXPECT_EQ(watch.Calls()[3].nNumber, -1);
    EXPECT_EQ(hDicFile, -1);
}

TEST_F(DictionaryLocation, ClosedIgnoresTheResultsOfItsCalls) {
    profile.WriteDictionary(world.Bytes());
    ASSERT_EQ(PstAdrOpen(), 0);
    unsigned char const* const pImage = dic.GetDicPointer();
    auto const nSize = static_cast<size_t>(nDicSize);
    int const hFile = hDicFile;
    {
        CSystemWatch watch;
        watch.Fail("munmap");
        watch.Fail("close");
        EXPECT_EQ(PstAdrClose(), 0);
        EXPECT_EQ(hDicFile, -1);
    }
    munmap(const_cast<unsigned char*>(pImage), nSize);
    close(hFile);
}

// Whatever lives at the old address by then is not the library's any more.
TEST_F(DictionaryLocation, ClosedTwiceUnmapsNothingTheSecondTime) {
    profile.WriteDictionary(world.Bytes());
    ASSERT_EQ(PstAdrOpen(), 0);
    size_t const nSize = world.Bytes().size();
    void* const pImage = const_cast<unsigned char*>(dic.GetDicPointer());
    ASSERT_EQ(PstAdrClose(), 0);
    ASSERT_EQ(mmap(pImage, nSize, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0), pImage);
    EXPECT_EQ(PstAdrClose(), 0);
    EXPECT_TRUE(IsMapped(pImage));
    munmap(pImage, nSize);
}

TEST_F(DictionaryLocation, OpenedAgainLeavesTheEarlierMappingAndDescriptor) {
    profile.WriteDictionary(world.Bytes());
    ASSERT_EQ(PstAdrOpen(), 0);
    unsigned char const* const pFirst = dic.GetDicPointer();
    auto const nFirst = static_cast<size_t>(nDicSize);
    int const hFirst = hDicFile;
    CTinyWorld second;
    second.vNode[second.nTown].nName = second.AddText("丸の内");
    std::filesystem::remove(profile.DictionaryPath()); // a new file: a mapped one must not change
    profile.WriteDictionary(second.Bytes());
    EXPECT_EQ(PstAdrOpen(), 0);
    EXPECT_EQ(FirstTown(), "丸の内");
    EXPECT_NE(dic.GetDicPointer(), pFirst);
    EXPECT_TRUE(IsOpen(hFirst));
    ASSERT_TRUE(IsMapped(pFirst));
    EXPECT_EQ(std::memcmp(pFirst, world.Bytes().data(), nFirst), 0);
    munmap(const_cast<unsigned char*>(pFirst), nFirst);
    close(hFirst);
}

TEST_F(DictionaryLocation, ThatFailsToOpenAgainLeavesTheEarlierDictionaryInUse) {
    profile.WriteDictionary(world.Bytes());
    ASSERT_EQ(PstAdrOpen(), 0);
    int const hFirst = hDicFile;
    profile.SetDicDir(profile.Folder() + "/nowhere");
    EXPECT_EQ(PstAdrOpen(), 1);
    EXPECT_EQ(FirstTown(), "千代田");
    EXPECT_EQ(nDicSize, static_cast<long>(world.Bytes().size())) << "so that closing unmaps the earlier one";
    CSystemWatch watch;
    EXPECT_EQ(PstAdrClose(), 0);
    EXPECT_EQ(watch.Calls("munmap").at(0).nSize, world.Bytes().size());
    close(hFirst);
}

TEST_F(DictionaryLocation, FromProfileToResultBlock) {
    profile.WriteDictionary(world.Bytes());
    HGLOBAL h = nullptr;
    ASSERT_EQ(PstAdrOpen(), 0);
    EXPECT_EQ(GetAdrFromZip("100-0001", &h), 0);
    auto const* const p = static_cast<char const*>(GlobalLock(h));
    ASSERT_NE(p, nullptr);
    EXPECT_STREQ(p + 40 + 1, "1000001");
    GlobalUnlock(h);
    GlobalFree(h);
    EXPECT_EQ(PstAdrClose(), 0);
}

// --- an API that was never touched
// ----------------------------------------------------------------------------------------

TEST(ApiState, BeginsWithZeros) {
    // Every test of this program puts this state back, so it is the one that the library is loaded with.
    EXPECT_EQ(hDicFile, 0);
    EXPECT_EQ(nDicSize, 0);
    EXPECT_THAT(dic.GetDicPointer(), IsNull());
}

} // namespace
