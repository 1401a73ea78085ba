// Opening and closing the dictionary of the postal address API with each of their calls failing in turn.
#include "tests/library/FaultWorld.h"

#include "tests/support/TestProfile.h"

#include <dlfcn.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

using testing::ElementsAre;

class OpeningFaults : public testing::Test {
  protected:
    OpeningFaults() {
        m_profile.SetDicDir(m_profile.Folder());
        m_profile.WriteDictionary(CTinyWorld().Bytes());
    }
    void TearDown() override {
        dic.SetDictionary(nullptr);
        hDicFile = 0;
        nDicSize = 0;
    }

    CHoldings Holdings() const { return CHoldings::Now(m_profile.DictionaryPath()); }
    static size_t Profiles() { return CountMappings("libqeprof.so"); }

    static std::string FirstTown() {
        std::vector<tagADDR> vAddr;
        dic.GetAddrFromPostCode7("1", vAddr);
        return vAddr.empty() ? "(none)" : vAddr[0].pszTown;
    }

    // What one call's failure does to an open: it fails, too, but for the call that nobody looks at.
    struct CPoint {
        char const* pszName;
        short nStatus;
        bool bKeepsLibrary; // deliberately: one that lacks the function is not ours to drop
    };
    static constexpr CPoint POINTS[] = {{"LoadLibrary", 1, false}, {"GetProcAddress", 1, true},
                                        {"FreeLibrary", 0, true},  {"open", 1, false},
                                        {"stat", 1, false},        {"mmap", 1, false}};

    // Opens with one call failing; gives back what the library keeps of its profile library.
    static void OpenWith(CPoint const& point) {
        size_t const nProfiles = Profiles();
        int const hBefore = hDicFile;
        CSystemWatch watch;
        watch.Fail(point.pszName);
        EXPECT_EQ(PstAdrOpen(), point.nStatus);
        std::vector<CSystemCall> const vOpen = watch.Calls("open");
        EXPECT_EQ(hDicFile, vOpen.empty() ? hBefore : vOpen[0].hFile) << "the number of a closed one stays, too";
        EXPECT_EQ(watch.Names().back() == "close", point.nStatus != 0 && !vOpen.empty())
            << "what was opened is closed";
        if (point.bKeepsLibrary) {
            EXPECT_GT(Profiles(), nProfiles);
            FreeLibraryOf(watch);
        }
        EXPECT_EQ(Profiles(), nProfiles);
    }
    static void FreeLibraryOf(CSystemWatch const& watch) {
        void* const pModule = const_cast<void*>(watch.Calls("GetProcAddress").at(0).pAddress);
        // Not by the name that the watch knows.
        BOOL(*volatile const pfnFree)
        (HMODULE) = reinterpret_cast<BOOL (*)(HMODULE)>(dlsym(RTLD_DEFAULT, "FreeLibrary"));
        EXPECT_EQ(pfnFree(pModule), 1);
    }

    CTestProfile m_profile;
};

TEST_F(OpeningFaults, LeaveNothingBehindAndTheNextOpenSucceeds) {
    for (CPoint const& point : POINTS) {
        SCOPED_TRACE(point.pszName);
        CHoldings const before = Holdings();
        unsigned char const* const pImage = dic.GetDicPointer();
        OpenWith(point);
        if (point.nStatus != 0) {
            EXPECT_EQ(Holdings(), before);
            EXPECT_EQ(dic.GetDicPointer(), pImage) << "nothing is bound";
            EXPECT_EQ(nDicSize, 0);
            ASSERT_EQ(PstAdrOpen(), 0);
        }
        EXPECT_EQ(FirstTown(), "千代田");
        EXPECT_EQ(PstAdrClose(), 0);
        EXPECT_EQ(Holdings(), before);
    }
}

TEST_F(OpeningFaults, LeaveTheDictionaryInUseThatWasOpen) {
    for (CPoint const& point : POINTS) {
        if (point.nStatus == 0) continue;
        SCOPED_TRACE(point.pszName);
        CHoldings const before = Holdings();
        ASSERT_EQ(PstAdrOpen(), 0);
        unsigned char const* const pImage = dic.GetDicPointer();
        int const hFirst = hDicFile;
        CHoldings const open = Holdings();
        OpenWith(point);
        EXPECT_EQ(Holdings(), open);
        EXPECT_EQ(dic.GetDicPointer(), pImage);
        EXPECT_EQ(FirstTown(), "千代田");
        hDicFile = hFirst; // of an open that fails behind `open` the state keeps the number that is closed by now
        EXPECT_EQ(PstAdrClose(), 0);
        EXPECT_EQ(Holdings(), before);
    }
}

// Where the system can do without what it asked for (the buffer of a file), the open succeeds and the dictionary
// answers.
TEST_F(OpeningFaults, OfMemoryAreStatus1LikeTheOthers) {
    CHoldings const before = Holdings();
    size_t const nProfiles = Profiles();
    for (CShortage::EKind const nKind : SHORTAGES) {
        int nTries = 0, nFailed = 0;
        for (bool bEnough = false; !bEnough; ++nTries) {
            SCOPED_TRACE("kind " + std::to_string(nKind) + " with allocations: " + std::to_string(nTries));
            ASSERT_LT(nTries, 1000);
            short nStatus = 0;
            {
                CShortage shortage(nTries, nKind);
                nStatus = PstAdrOpen();
                bEnough = !shortage.End();
            }
            EXPECT_EQ(Profiles(), nProfiles);
            if (nStatus == 0) {
                EXPECT_EQ(FirstTown(), "千代田");
                CShortage shortage(0, nKind);
                EXPECT_EQ(PstAdrClose(), 0);
                EXPECT_FALSE(shortage.End());
            }
            if (nKind == CShortage::Objects || bEnough) {
                EXPECT_EQ(nStatus, bEnough ? 0 : 1);
            }
            EXPECT_EQ(Holdings(), before);
            nFailed += nStatus;
        }
        EXPECT_GT(nFailed, 0);
    }
}

TEST_F(OpeningFaults, OfClosingAreNotTold) {
    for (char const* pszName : {"munmap", "close"}) {
        SCOPED_TRACE(pszName);
        ASSERT_EQ(PstAdrOpen(), 0);
        void* const pImage = const_cast<unsigned char*>(dic.GetDicPointer());
        auto const nSize = static_cast<size_t>(nDicSize);
        int const hFile = hDicFile;
        {
            CSystemWatch watch;
            watch.Fail(pszName);
            EXPECT_EQ(PstAdrClose(), 0);
            EXPECT_THAT(watch.Names(), ElementsAre("munmap", "close")) << "one does not keep the other from it";
        }
        EXPECT_EQ(hDicFile, -1);
        EXPECT_EQ(PstAdrOpen(), 0);
        EXPECT_EQ(FirstTown(), "千代田");
        EXPECT_EQ(PstAdrClose(), 0);
        std::string(pszName) == "munmap" ? munmap(pImage, nSize) : close(hFile);
    }
}

} // namespace
