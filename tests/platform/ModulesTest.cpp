// Loading libraries by name. QEWIN_FILE and QEPROF_FILE are the two products of this build, side by side.
#include "platform/QeProfile.h"
#include "platform/Win32Compat.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <malloc.h>
#include <random>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

// The file that a function was loaded from.
fs::path FileOf(FARPROC pProc) {
    Dl_info info;
    if (!pProc || dladdr(reinterpret_cast<void*>(pProc), &info) == 0) return {};
    return fs::canonical(info.dli_fname);
}

bool IsLoaded(char const* pszFile) {
    void* p = dlopen(pszFile, RTLD_NOW | RTLD_NOLOAD);
    if (p) dlclose(p);
    return p != nullptr;
}

class Modules : public testing::Test {
  protected:
    void SetUp() override {
        // Nothing but the place of libqewin.so may lead to the libraries.
        ASSERT_EQ(getenv("LD_LIBRARY_PATH"), nullptr) << "run the tests without LD_LIBRARY_PATH";
        std::string strName = (fs::temp_directory_path() / "qe-modules-XXXXXX").string();
        ASSERT_NE(mkdtemp(strName.data()), nullptr);
        m_pathFolder = fs::canonical(strName);
        m_pathBefore = fs::current_path();
        fs::current_path(m_pathFolder);
    }
    void TearDown() override {
        if (m_pathFolder.empty()) return;
        fs::current_path(m_pathBefore);
        fs::remove_all(m_pathFolder);
    }

    fs::path m_pathFolder; // empty, and the current folder
    fs::path m_pathBefore;
};

TEST_F(Modules, ABareNameIsFoundBesideTheLibraryItself) {
    HMODULE hModule = LoadLibrary("libqeprof.so");
    ASSERT_NE(hModule, nullptr);
    EXPECT_EQ(FileOf(GetProcAddress(hModule, "QeGetProfileString")), fs::canonical(QEPROF_FILE));
    EXPECT_EQ(FreeLibrary(hModule), 1);
}

TEST_F(Modules, TheFunctionFoundCanBeCalled) {
    HMODULE hModule = LoadLibrary("libqeprof.so");
    auto pGet = reinterpret_cast<decltype(&QeGetProfileString)>(GetProcAddress(hModule, "QeGetProfileString"));
    ASSERT_NE(pGet, nullptr);
    char szBuffer[8] = "before";
    EXPECT_EQ(pGet(nullptr, nullptr, "later", szBuffer, sizeof szBuffer), 5);
    EXPECT_STREQ(szBuffer, "later");
    FreeLibrary(hModule);
}

TEST_F(Modules, AMovedPairOfLibrariesFindsEachOtherInItsNewFolder) {
    fs::copy_file(QEWIN_FILE, m_pathFolder / "libqewin.so");
    fs::copy_file(QEPROF_FILE, m_pathFolder / "libqeprof.so");
    fs::current_path("/");
    void* pMoved = dlopen((m_pathFolder / "libqewin.so").c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(pMoved, nullptr) << dlerror();
    auto pLoad = reinterpret_cast<decltype(&LoadLibrary)>(dlsym(pMoved, "LoadLibrary"));
    auto pGet = reinterpret_cast<decltype(&GetProcAddress)>(dlsym(pMoved, "GetProcAddress"));
    auto pFree = reinterpret_cast<decltype(&FreeLibrary)>(dlsym(pMoved, "FreeLibrary"));
    HMODULE hModule = pLoad("libqeprof.so");
    EXPECT_EQ(FileOf(pGet(hModule, "QeGetProfileString")), m_pathFolder / "libqeprof.so");
    EXPECT_EQ(pFree(hModule), 1);
    dlclose(pMoved);
}

TEST_F(Modules, ALibraryLoadedByARelativePathFindsItsFolderAfterTheHostLeftIt) {
    fs::create_directory("lib");
    fs::copy_file(QEWIN_FILE, m_pathFolder / "lib" / "libqewin.so");
    fs::copy_file(QEPROF_FILE, m_pathFolder / "lib" / "libqeprof.so");
    void* pMoved = dlopen("lib/libqewin.so", RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(pMoved, nullptr) << dlerror();
    fs::current_path("/");
    auto pLoad = reinterpret_cast<decltype(&LoadLibrary)>(dlsym(pMoved, "LoadLibrary"));
    auto pGet = reinterpret_cast<decltype(&GetProcAddress)>(dlsym(pMoved, "GetProcAddress"));
    auto pFree = reinterpret_cast<decltype(&FreeLibrary)>(dlsym(pMoved, "FreeLibrary"));
    HMODULE hModule = pLoad("libqeprof.so");
    Dl_info info;
    ASSERT_NE(dladdr(reinterpret_cast<void*>(pGet(hModule, "QeGetProfileString")), &info), 0);
    EXPECT_EQ(std::string(info.dli_fname), (m_pathFolder / "lib" / "libqeprof.so").string());
    EXPECT_EQ(pFree(hModule), 1);
    dlclose(pMoved);
}

// Under the leak sanitizer the same is found by the sanitizer, whose allocator mallinfo2 knows nothing of.
TEST_F(Modules, ALibraryLoadedAndUnloadedAgainAndAgainLeavesNothingBehind) {
    fs::copy_file(QEWIN_FILE, m_pathFolder / "libqewin.so");
    fs::copy_file(QEPROF_FILE, m_pathFolder / "libqeprof.so");
    size_t nBefore = 0;
    for (int nRound = 0; nRound < 50; ++nRound) {
        if (nRound == 10) nBefore = mallinfo2().uordblks; // the loader's own memory has settled
        void* pMoved = dlopen("./libqewin.so", RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(pMoved, nullptr) << dlerror();
        auto pLoad = reinterpret_cast<decltype(&LoadLibrary)>(dlsym(pMoved, "LoadLibrary"));
        auto pFreeLibrary = reinterpret_cast<decltype(&FreeLibrary)>(dlsym(pMoved, "FreeLibrary"));
        auto pAlloc = reinterpret_cast<decltype(&GlobalAlloc)>(dlsym(pMoved, "GlobalAlloc"));
        auto pFree = reinterpret_cast<decltype(&GlobalFree)>(dlsym(pMoved, "GlobalFree"));
        EXPECT_EQ(pFree(pAlloc(GHND, 100)), nullptr);
        EXPECT_EQ(pFreeLibrary(pLoad("libqeprof.so")), 1);
        ASSERT_EQ(dlclose(pMoved), 0);
    }
    EXPECT_LT(mallinfo2().uordblks, nBefore + 40 * 100);
}

TEST_F(Modules, ABareNameThatIsNotBesideTheLibraryIsTheSystems) {
    HMODULE hModule = LoadLibrary("libm.so.6");
    ASSERT_NE(hModule, nullptr);
    auto pCos = reinterpret_cast<double (*)(double)>(GetProcAddress(hModule, "cos"));
    ASSERT_NE(pCos, nullptr);
    EXPECT_EQ(pCos(0.0), 1.0);
    EXPECT_EQ(FreeLibrary(hModule), 1);
}

TEST_F(Modules, ANameWithASlashIsAPath) {
    EXPECT_EQ(LoadLibrary("./libqeprof.so"), nullptr) << "there is none in the current folder";
    HMODULE hModule = LoadLibrary(QEPROF_FILE);
    ASSERT_NE(hModule, nullptr);
    EXPECT_NE(GetProcAddress(hModule, "QeGetProfileString"), nullptr);
    FreeLibrary(hModule);
    fs::copy_file(QEPROF_FILE, m_pathFolder / "copy.so");
    hModule = LoadLibrary("./copy.so");
    EXPECT_EQ(FileOf(GetProcAddress(hModule, "QeGetProfileString")), m_pathFolder / "copy.so");
    EXPECT_EQ(FreeLibrary(hModule), 1);
}

TEST_F(Modules, NamesOfNoLibraryGiveNull) {
    std::FILE* pFile = std::fopen("text.so", "w");
    ASSERT_NE(pFile, nullptr);
    std::fputs("not a library\n", pFile);
    std::fclose(pFile);
    std::string strLong(100000, 'x');
    for (char const* psz : {"libqe-no-such-thing.so", "/", ".", "..", "./", "./text.so",
                            "/no/such/folder/libqeprof.so", " ", "\xFF\xFE", "%s%n", strLong.c_str()}) {
        EXPECT_EQ(LoadLibrary(psz), nullptr) << std::string(psz).substr(0, 40);
    }
}

TEST_F(Modules, NullAndTheEmptyNameGiveNull) {
    EXPECT_EQ(LoadLibrary(nullptr), nullptr);
    EXPECT_EQ(LoadLibrary(""), nullptr);
}

TEST_F(Modules, AFunctionThatIsNotExportedHasNoAddress) {
    HMODULE hModule = LoadLibrary("libqeprof.so");
    ASSERT_NE(hModule, nullptr);
    EXPECT_EQ(GetProcAddress(hModule, "QeGetProfileStringX"), nullptr);
    EXPECT_EQ(GetProcAddress(hModule, "qegetprofilestring"), nullptr);
    EXPECT_EQ(GetProcAddress(hModule, ""), nullptr);
    EXPECT_EQ(GetProcAddress(hModule, nullptr), nullptr);
    EXPECT_EQ(FreeLibrary(hModule), 1);
}

TEST_F(Modules, EachLoadIsGivenBackOnceAndTheLastOneUnloads) {
    HMODULE hOne = LoadLibrary("libqeprof.so");
    HMODULE hTwo = LoadLibrary("libqeprof.so");
    ASSERT_NE(hOne, nullptr);
    EXPECT_EQ(hOne, hTwo);
    EXPECT_EQ(FreeLibrary(hOne), 1);
    EXPECT_TRUE(IsLoaded(QEPROF_FILE));
    EXPECT_NE(GetProcAddress(hTwo, "QeGetProfileString"), nullptr);
    EXPECT_EQ(FreeLibrary(hTwo), 1);
    EXPECT_FALSE(IsLoaded(QEPROF_FILE));
    EXPECT_EQ(FreeLibrary(hTwo), 0);
}

TEST_F(Modules, AStaleModuleIsRefused) {
    HMODULE hModule = LoadLibrary("libqeprof.so");
    EXPECT_EQ(FreeLibrary(hModule), 1);
    EXPECT_EQ(FreeLibrary(hModule), 0);
    EXPECT_EQ(GetProcAddress(hModule, "QeGetProfileString"), nullptr);
}

TEST_F(Modules, ForeignModulesAreRefused) {
    HMODULE hModule = LoadLibrary("libqeprof.so");
    int nLocal = 0;
    void* pOwn = dlopen(QEPROF_FILE, RTLD_NOW); // the same as hModule, so not foreign
    void* pProgram = dlopen(nullptr, RTLD_NOW); // the loader's, but not ours
    EXPECT_EQ(pOwn, hModule);
    uintptr_t nModule = reinterpret_cast<uintptr_t>(hModule);
    for (HMODULE h : {HMODULE{nullptr}, HMODULE{&nLocal}, HMODULE{pProgram}, reinterpret_cast<HMODULE>(uintptr_t{1}),
                      reinterpret_cast<HMODULE>(UINTPTR_MAX), reinterpret_cast<HMODULE>(nModule + 1)}) {
        EXPECT_EQ(GetProcAddress(h, "QeGetProfileString"), nullptr) << h;
        EXPECT_EQ(FreeLibrary(h), 0) << h;
    }
    dlclose(pProgram);
    dlclose(pOwn);
    EXPECT_EQ(FreeLibrary(hModule), 1);
}

TEST_F(Modules, AHundredThousandRandomModulesAreRefused) {
    constexpr uint64_t nSeed = 20240301;
    std::printf("seed %llu\n", static_cast<unsigned long long>(nSeed));
    std::mt19937_64 random(nSeed);
    HMODULE hModule = LoadLibrary("libqeprof.so");
    for (int n = 0; n < 100000;) {
        HMODULE h = reinterpret_cast<HMODULE>(static_cast<uintptr_t>(random()));
        if (h == hModule) continue; // drawn by chance: draw again
        ASSERT_EQ(GetProcAddress(h, "QeGetProfileString"), nullptr) << h;
        ASSERT_EQ(FreeLibrary(h), 0) << h;
        ++n;
    }
    EXPECT_EQ(FreeLibrary(hModule), 1);
}

TEST_F(Modules, ThreadsLoadAskAndFreeAtOnce) {
    std::atomic<int> nFailures{0};
    std::vector<std::thread> vThread;
    for (int nThread = 0; nThread < 6; ++nThread) {
        vThread.emplace_back([&nFailures] {
            for (int n = 0; n < 300; ++n) {
                HMODULE hModule = LoadLibrary("libqeprof.so");
                if (!hModule || !GetProcAddress(hModule, "QeGetProfileString")) ++nFailures;
                if (FreeLibrary(hModule) != 1) ++nFailures;
            }
        });
    }
    for (std::thread& thread : vThread) thread.join();
    EXPECT_EQ(nFailures, 0);
    EXPECT_FALSE(IsLoaded(QEPROF_FILE)) << "every load was given back";
}

TEST_F(Modules, AskingAModuleThatAnotherThreadFreesIsHarmless) {
    for (int nRound = 0; nRound < 100; ++nRound) {
        HMODULE hModule = LoadLibrary("libqeprof.so");
        ASSERT_NE(hModule, nullptr);
        std::atomic<int> nAsking{0};
        auto ask = [hModule, &nAsking] {
            bool bFound = GetProcAddress(hModule, "QeGetProfileString") != nullptr;
            ++nAsking;
            while (bFound) bFound = GetProcAddress(hModule, "QeGetProfileString") != nullptr;
        };
        std::thread one(ask);
        std::thread two(ask);
        while (nAsking < 2) std::this_thread::yield();
        EXPECT_EQ(FreeLibrary(hModule), 1);
        one.join();
        two.join();
        ASSERT_FALSE(IsLoaded(QEPROF_FILE)) << "the last one to leave closes it, in round " << nRound;
    }
}

} // namespace
