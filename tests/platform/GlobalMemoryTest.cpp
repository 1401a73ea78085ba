// Movable memory blocks: what a handle promises while it lives, and that nothing else passes for one.
#include "platform/Win32Compat.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <malloc.h>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

// The sanitizers' allocators end the process when there is no memory, unless told to answer like the usual one.
extern "C" __attribute__((visibility("default"))) char const* __asan_default_options() {
    return "allocator_may_return_null=1";
}
extern "C" __attribute__((visibility("default"))) char const* __tsan_default_options() {
    return "allocator_may_return_null=1";
}

namespace {

HGLOBAL Handle(uintptr_t n) {
    return reinterpret_cast<HGLOBAL>(n);
}

uintptr_t Number(HGLOBAL h) {
    return reinterpret_cast<uintptr_t>(h);
}

// True when every function answers as for a handle that is no live block. Unlock comes before Lock on purpose: if the
// handle were live and locked it would show as well.
bool IsRefused(HGLOBAL h) {
    return GlobalSize(h) == 0 && GlobalUnlock(h) == 0 && GlobalLock(h) == nullptr && GlobalFree(h) == h;
}

// A block of 100 bytes, locked once and filled with one letter, that must come through a test unharmed.
class Witness {
  public:
    Witness() : m_h(GlobalAlloc(GHND, 100)), m_p(static_cast<char*>(GlobalLock(m_h))) {
        if (!m_p) std::abort();
        std::memset(m_p, 'w', 100);
    }
    ~Witness() { GlobalFree(m_h); }
    Witness(Witness const&) = delete;
    Witness& operator=(Witness const&) = delete;

    HGLOBAL Get() const { return m_h; }

    // Same address, size and contents, and locked exactly once. The lock is gone afterwards: ask once.
    bool IsUnharmed() const {
        bool bSame = GlobalSize(m_h) == 100 && std::string(m_p, 100) == std::string(100, 'w');
        bSame = bSame && GlobalLock(m_h) == m_p && GlobalUnlock(m_h) == 1;
        return bSame && GlobalUnlock(m_h) == 0 && GlobalFree(m_h) == nullptr;
    }

  private:
    HGLOBAL m_h;
    char* m_p;
};

TEST(GlobalMemory, AHandleIsNeverTheAddressOfItsBlock) {
    for (int n = 0; n < 10000; ++n) {
        HGLOBAL h = GlobalAlloc(GHND, 16);
        ASSERT_NE(h, nullptr);
        EXPECT_NE(h, GlobalLock(h));
        EXPECT_EQ(GlobalFree(h), nullptr);
    }
}

TEST(GlobalMemory, ABlockIsZeroFilledEvenWhereAnotherOneWasWritten) {
    for (UINT nFlags : {UINT{GHND}, UINT{GMEM_MOVEABLE}}) {
        for (size_t nSize : {size_t{1}, size_t{24}, size_t{1000}, size_t{1024}, size_t{1025}, size_t{300000}}) {
            for (int nRound = 0; nRound < 3; ++nRound) {
                HGLOBAL h = GlobalAlloc(nFlags, nSize);
                char* p = static_cast<char*>(GlobalLock(h));
                ASSERT_NE(p, nullptr);
                EXPECT_EQ(std::string(p, nSize), std::string(nSize, '\0')) << nFlags << " " << nSize;
                std::memset(p, 0x5A, nSize);
                GlobalFree(h);
            }
        }
    }
}

TEST(GlobalMemory, EveryByteOfABlockBelongsToTheCaller) {
    for (size_t nSize = 1; nSize < 300; ++nSize) {
        HGLOBAL h = GlobalAlloc(GHND, nSize);
        std::memset(GlobalLock(h), 0xFF, nSize); // the address sanitizer would see one byte too many
        EXPECT_EQ(GlobalFree(h), nullptr);
    }
}

TEST(GlobalMemory, AnEmptyBlockHasAHandleAndAnAddress) {
    HGLOBAL h = GlobalAlloc(GHND, 0);
    ASSERT_NE(h, nullptr);
    EXPECT_NE(GlobalLock(h), nullptr);
    EXPECT_EQ(GlobalSize(h), 0u);
    EXPECT_EQ(GlobalFree(h), nullptr);
}

TEST(GlobalMemory, OnlyMovableBlocksAreGivenOut) {
    EXPECT_EQ(GlobalAlloc(0, 10), nullptr);
    EXPECT_EQ(GlobalAlloc(GMEM_ZEROINIT, 10), nullptr);
    EXPECT_EQ(GHND, 66);
    for (UINT nFlags : {UINT{GHND}, UINT{GMEM_MOVEABLE}}) {
        HGLOBAL h = GlobalAlloc(nFlags, 10);
        EXPECT_NE(h, nullptr);
        EXPECT_EQ(GlobalFree(h), nullptr);
    }
}

TEST(GlobalMemory, ABlockLargerThanAnyObjectIsNotGivenOut) {
    for (SIZE_T nSize : {SIZE_MAX, SIZE_MAX - 1, SIZE_MAX - 4096, SIZE_MAX / 2 + 1}) {
        EXPECT_EQ(GlobalAlloc(GHND, nSize), nullptr) << nSize;
    }
}

TEST(GlobalMemory, WithoutMemoryThereIsNoHandleAndTheOtherBlocksStay) {
    Witness witness;
    // An eighth of the address space each time: too much at once in 64 bits, sooner or later in 32.
    std::vector<HGLOBAL> vLive;
    while (vLive.size() < 8) {
        HGLOBAL h = GlobalAlloc(GHND, SIZE_MAX / 8);
        if (!h) break;
        vLive.push_back(h);
    }
    EXPECT_LT(vLive.size(), 8u);
    for (HGLOBAL h : vLive) EXPECT_EQ(GlobalFree(h), nullptr);
    EXPECT_TRUE(witness.IsUnharmed());
}

TEST(GlobalMemory, SizeIsTheOneAskedFor) {
    for (SIZE_T nSize : {SIZE_T{1}, SIZE_T{2}, SIZE_T{15}, SIZE_T{17}, SIZE_T{4097}, SIZE_T{1000003}}) {
        HGLOBAL h = GlobalAlloc(GHND, nSize);
        EXPECT_EQ(GlobalSize(h), nSize);
        GlobalLock(h);
        EXPECT_EQ(GlobalSize(h), nSize) << "while it is locked";
        GlobalFree(h);
    }
}

TEST(GlobalMemory, LocksAreCountedAndAllGiveTheSameAddress) {
    HGLOBAL h = GlobalAlloc(GHND, 8);
    LPVOID p = GlobalLock(h);
    EXPECT_EQ(GlobalLock(h), p);
    EXPECT_EQ(GlobalLock(h), p);
    EXPECT_EQ(GlobalUnlock(h), 1);
    EXPECT_EQ(GlobalUnlock(h), 1);
    EXPECT_EQ(GlobalUnlock(h), 0);
    EXPECT_EQ(GlobalLock(h), p) << "and again from the start";
    EXPECT_EQ(GlobalUnlock(h), 0);
    GlobalFree(h);
}

TEST(GlobalMemory, UnlockingAnUnlockedBlockChangesNothing) {
    HGLOBAL h = GlobalAlloc(GHND, 8);
    EXPECT_EQ(GlobalUnlock(h), 0);
    EXPECT_EQ(GlobalUnlock(h), 0);
    EXPECT_NE(GlobalLock(h), nullptr);
    EXPECT_NE(GlobalLock(h), nullptr);
    EXPECT_EQ(GlobalUnlock(h), 1) << "a count below zero would show here";
    GlobalFree(h);
}

TEST(GlobalMemory, LockGivesNullAtTheMaximumCountAndRecoversBelowIt) {
    HGLOBAL h = GlobalAlloc(GHND, 8);
    LPVOID p = GlobalLock(h);
    int nLocks = 1;
    while (nLocks < 1000000 && GlobalLock(h)) ++nLocks;
    EXPECT_EQ(nLocks, 65535);
    EXPECT_EQ(GlobalLock(h), nullptr);
    EXPECT_EQ(GlobalUnlock(h), 1) << "a refused lock does not count";
    EXPECT_EQ(GlobalLock(h), p);
    EXPECT_EQ(GlobalLock(h), nullptr);
    GlobalFree(h);
}

TEST(GlobalMemory, FreeTakesLockedBlocksToo) {
    HGLOBAL h = GlobalAlloc(GHND, 8);
    GlobalLock(h);
    EXPECT_EQ(GlobalFree(h), nullptr);
    EXPECT_TRUE(IsRefused(h));
}

TEST(GlobalMemory, AStaleHandleIsRefusedByEveryFunction) {
    HGLOBAL h = GlobalAlloc(GHND, 8);
    EXPECT_EQ(GlobalFree(h), nullptr);
    EXPECT_EQ(GlobalFree(h), h);
    EXPECT_EQ(GlobalLock(h), nullptr);
    EXPECT_EQ(GlobalUnlock(h), 0);
    EXPECT_EQ(GlobalSize(h), 0u);
}

TEST(GlobalMemory, NullIsRefusedByEveryFunction) {
    EXPECT_EQ(GlobalLock(nullptr), nullptr);
    EXPECT_EQ(GlobalUnlock(nullptr), 0);
    EXPECT_EQ(GlobalSize(nullptr), 0u);
    EXPECT_EQ(GlobalFree(nullptr), nullptr);
}

TEST(GlobalMemory, AddressesAreRefusedByEveryFunction) {
    Witness witness;
    int nOnStack = 0;
    static int nStatic = 0;
    std::vector<char> vHeap(64);
    EXPECT_TRUE(IsRefused(&nOnStack));
    EXPECT_TRUE(IsRefused(&nStatic));
    for (char& c : vHeap) EXPECT_TRUE(IsRefused(&c));
    char* p = static_cast<char*>(GlobalLock(witness.Get()));
    for (int n = 0; n < 100; ++n) EXPECT_TRUE(IsRefused(p + n)) << "the block's own address + " << n;
    GlobalUnlock(witness.Get());
    EXPECT_TRUE(witness.IsUnharmed());
}

TEST(GlobalMemory, SmallAndLargeNumbersAreRefusedByEveryFunction) {
    Witness witness;
    for (uintptr_t n = 0; n < 5000; ++n) {
        ASSERT_NE(Handle(n), witness.Get()) << "a live handle is too easy to guess";
        EXPECT_TRUE(IsRefused(Handle(n))) << n;
        EXPECT_TRUE(IsRefused(Handle(~n))) << ~n;
    }
    EXPECT_TRUE(witness.IsUnharmed());
}

TEST(GlobalMemory, AHandleWithAnyBitsTurnedIsRefusedByEveryFunction) {
    Witness witness;
    constexpr unsigned nBits = sizeof(uintptr_t) * 8;
    for (unsigned nOne = 0; nOne < nBits; ++nOne) {
        for (unsigned nTwo = nOne; nTwo < nBits; ++nTwo) {
            uintptr_t nTurned = (uintptr_t{1} << nOne) | (uintptr_t{1} << nTwo);
            EXPECT_TRUE(IsRefused(Handle(Number(witness.Get()) ^ nTurned))) << nOne << " " << nTwo;
        }
    }
    EXPECT_TRUE(witness.IsUnharmed());
}

// Its slot is free then, and ready for the next generation: a good guess at the next handle must not work early.
TEST(GlobalMemory, AStaleHandleWithAnyBitsTurnedIsRefusedByEveryFunction) {
    HGLOBAL h = GlobalAlloc(GHND, 8);
    GlobalFree(h);
    constexpr unsigned nBits = sizeof(uintptr_t) * 8;
    for (unsigned nOne = 0; nOne < nBits; ++nOne) {
        for (unsigned nTwo = nOne; nTwo < nBits; ++nTwo) {
            uintptr_t nTurned = (uintptr_t{1} << nOne) | (uintptr_t{1} << nTwo);
            EXPECT_TRUE(IsRefused(Handle(Number(h) ^ nTurned))) << nOne << " " << nTwo;
        }
    }
}

TEST(GlobalMemory, AHundredThousandRandomHandlesAreRefusedByEveryFunction) {
    constexpr uint64_t nSeed = 20240229;
    std::printf("seed %llu\n", static_cast<unsigned long long>(nSeed));
    std::mt19937_64 random(nSeed);
    // Free slots, and live blocks next to the witness, so that part of the values point at something.
    std::vector<HGLOBAL> vLive;
    std::vector<HGLOBAL> vStale;
    for (int n = 0; n < 100; ++n) {
        vLive.push_back(GlobalAlloc(GHND, 32));
        vStale.push_back(GlobalAlloc(GHND, 32));
    }
    for (HGLOBAL h : vStale) GlobalFree(h);
    Witness witness;
    std::set<HGLOBAL> setKept(vLive.begin(), vLive.end());
    setKept.insert(witness.Get());
    for (int n = 0; n < 100000;) {
        // Every second one has only its lower half random: near the handles that are handed out first.
        uintptr_t nValue = static_cast<uintptr_t>(random());
        if (n % 2) nValue &= (uintptr_t{1} << (sizeof nValue * 4)) - 1;
        if (n % 4 == 3) nValue |= Number(witness.Get()) & ~((uintptr_t{1} << (sizeof nValue * 4)) - 1);
        if (setKept.count(Handle(nValue))) continue; // drawn by chance: not a wrong handle, draw again
        ASSERT_TRUE(IsRefused(Handle(nValue))) << std::hex << nValue;
        ++n;
    }
    for (HGLOBAL h : vLive) EXPECT_EQ(GlobalFree(h), nullptr);
    EXPECT_TRUE(witness.IsUnharmed());
}

TEST(GlobalMemory, AReusedSlotDoesNotReviveItsOldHandle) {
    HGLOBAL hOld = GlobalAlloc(GHND, 8);
    GlobalFree(hOld);
    // So many that every slot is in use again, the old one among them.
    std::vector<HGLOBAL> vLive;
    for (int n = 0; n < 10000; ++n) {
        vLive.push_back(GlobalAlloc(GHND, 8));
        ASSERT_NE(vLive.back(), hOld);
        ASSERT_TRUE(IsRefused(hOld)) << "after " << n;
    }
    for (HGLOBAL h : vLive) EXPECT_EQ(GlobalFree(h), nullptr);
}

// In 32 bits a handle cannot be unique for ever; what counts is that it stays away for long.
TEST(GlobalMemory, AHandleDoesNotComeBackWithinFiveMillionAllocations) {
    HGLOBAL hOld = GlobalAlloc(GHND, 8);
    GlobalFree(hOld);
    for (int n = 0; n < 5000000; ++n) {
        HGLOBAL h = GlobalAlloc(GHND, 8);
        GlobalFree(h);
        ASSERT_NE(h, hOld) << "after " << n;
    }
    EXPECT_TRUE(IsRefused(hOld));
}

TEST(GlobalMemory, HandlesStayGoodAfterEveryGenerationOfTheirSlotsWasUsed) {
    // 2047 generations and a queue of 4096 slots in 32 bits: this goes round there, and one further.
    for (int n = 0; n < 9000000; ++n) {
        HGLOBAL h = GlobalAlloc(GHND, 1);
        ASSERT_NE(h, nullptr) << n;
        ASSERT_EQ(GlobalFree(h), nullptr) << n;
    }
    EXPECT_TRUE(Witness().IsUnharmed());
}

// Counts nothing under a sanitizer, whose allocator mallinfo2 does not see; the other builds hold the promise.
TEST(GlobalMemory, AMillionBlocksOneAfterTheOtherNeedNoMoreMemoryThanAFew) {
    auto nInUse = [] {
        struct mallinfo2 info = mallinfo2();
        return info.uordblks + info.hblkhd;
    };
    for (int n = 0; n < 20000; ++n) GlobalFree(GlobalAlloc(GHND, 8));
    size_t nBefore = nInUse();
    for (int n = 0; n < 1000000; ++n) GlobalFree(GlobalAlloc(GHND, 8));
    EXPECT_LE(nInUse(), nBefore + 10000);
}

TEST(GlobalMemory, ManyBlocksLiveSideBySide) {
    constexpr size_t nBlocks = 50000;
    std::vector<HGLOBAL> vLive;
    for (size_t n = 0; n < nBlocks; ++n) {
        vLive.push_back(GlobalAlloc(GHND, sizeof n));
        std::memcpy(GlobalLock(vLive[n]), &n, sizeof n);
    }
    EXPECT_EQ(std::set<HGLOBAL>(vLive.begin(), vLive.end()).size(), nBlocks);
    // Every third one goes and is replaced; the others must not notice.
    for (size_t n = 0; n < nBlocks; n += 3) EXPECT_EQ(GlobalFree(vLive[n]), nullptr);
    for (size_t n = 0; n < nBlocks; n += 3) {
        vLive[n] = GlobalAlloc(GHND, sizeof n);
        std::memcpy(GlobalLock(vLive[n]), &n, sizeof n);
    }
    for (size_t n = 0; n < nBlocks; ++n) {
        size_t nFound = 0;
        std::memcpy(&nFound, GlobalLock(vLive[n]), sizeof nFound);
        ASSERT_EQ(nFound, n);
        ASSERT_EQ(GlobalFree(vLive[n]), nullptr);
    }
}

TEST(GlobalMemory, ThreadsWithBlocksOfTheirOwnDoNotDisturbEachOther) {
    std::atomic<int> nFailures{0};
    std::vector<std::thread> vThread;
    for (int nThread = 0; nThread < 8; ++nThread) {
        vThread.emplace_back([nThread, &nFailures] {
            for (int nRound = 0; nRound < 2000; ++nRound) {
                HGLOBAL vh[8];
                for (HGLOBAL& h : vh) {
                    h = GlobalAlloc(GHND, 64);
                    char* p = static_cast<char*>(GlobalLock(h));
                    if (!p || std::string(p, 64) != std::string(64, '\0')) return void(++nFailures);
                    std::memset(p, nThread + 1, 64);
                    if (GlobalUnlock(h) != 0) ++nFailures;
                }
                for (HGLOBAL h : vh) {
                    char* p = static_cast<char*>(GlobalLock(h));
                    if (!p || std::string(p, 64) != std::string(64, static_cast<char>(nThread + 1))) ++nFailures;
                    if (GlobalSize(h) != 64 || GlobalFree(h) != nullptr || GlobalFree(h) != h) ++nFailures;
                }
            }
        });
    }
    for (std::thread& thread : vThread) thread.join();
    EXPECT_EQ(nFailures, 0);
}

TEST(GlobalMemory, LocksOfOneBlockByManyThreadsAddUp) {
    HGLOBAL h = GlobalAlloc(GHND, 8);
    std::vector<std::thread> vThread;
    for (int nThread = 0; nThread < 8; ++nThread) {
        vThread.emplace_back([h] {
            for (int n = 0; n < 1000; ++n) GlobalLock(h);
            for (int n = 0; n < 500; ++n) GlobalUnlock(h);
        });
    }
    for (std::thread& thread : vThread) thread.join();
    int nLocks = 1;
    while (GlobalUnlock(h)) ++nLocks;
    EXPECT_EQ(nLocks, 8 * 500);
    GlobalFree(h);
}

TEST(GlobalMemory, OfManyThreadsThatFreeOneBlockExactlyOneSucceeds) {
    for (int nRound = 0; nRound < 200; ++nRound) {
        HGLOBAL h = GlobalAlloc(GHND, 8);
        std::atomic<int> nFreed{0};
        std::vector<std::thread> vThread;
        for (int nThread = 0; nThread < 4; ++nThread) {
            vThread.emplace_back([h, &nFreed] {
                if (GlobalFree(h) == nullptr) ++nFreed;
            });
        }
        for (std::thread& thread : vThread) thread.join();
        ASSERT_EQ(nFreed, 1);
    }
}

// Frees what the host still holds and does it all once more; a failure ends the process with its own code.
void UseBlocksAtExit(HGLOBAL hMem) {
    HGLOBAL hLate = GlobalAlloc(GHND, 4);
    if (!GlobalLock(hMem) || GlobalFree(hMem) || !GlobalLock(hLate) || GlobalFree(hLate)) _exit(7);
}

// Constructed before the library has given out its first block, so destroyed after anything that the library might
// have built on that occasion.
struct tagHOST {
    HGLOBAL hMem = nullptr;
    ~tagHOST() { UseBlocksAtExit(hMem); }
};

TEST(GlobalMemoryDeathTest, AHostMayFreeItsBlocksFromItsStaticDestructors) {
    testing::FLAGS_gtest_death_test_style = "threadsafe"; // a process of its own, where no block was given out yet
    EXPECT_EXIT(
        {
            static tagHOST host;
            host.hMem = GlobalAlloc(GHND, 100);
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}

// Registered before the loader registers its own end of the process, so called when the destructors of all shared
// libraries have run.
HGLOBAL hLast = nullptr;
HGLOBAL hStale = nullptr;

void AfterEverything() {
    if (!hStale) return;
    if (hLast) UseBlocksAtExit(hLast);
    HGLOBAL hLate = GlobalAlloc(GHND, 4);
    if (!hLate || !IsRefused(hStale) || GlobalFree(hLate)) _exit(8);
    std::fputs("reached the end", stderr);
}

void RegisterBeforeTheLoader(int, char**, char**) {
    on_exit([](int, void*) { AfterEverything(); }, nullptr);
}
__attribute__((section(".preinit_array"), used)) void (*pRegister)(int, char**, char**) = RegisterBeforeTheLoader;

TEST(GlobalMemoryDeathTest, ABlockSurvivesTheDestructorsOfAllLibraries) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            hStale = GlobalAlloc(GHND, 100);
            hLast = GlobalAlloc(GHND, 100);
            GlobalFree(hStale);
            std::exit(0);
        },
        testing::ExitedWithCode(0), "reached the end");
}

TEST(GlobalMemoryDeathTest, AStaleHandleStaysStaleAfterTheDestructorsOfAllLibraries) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            hStale = GlobalAlloc(GHND, 100); // the only block, so the library has nothing left when it ends
            GlobalFree(hStale);
            std::exit(0);
        },
        testing::ExitedWithCode(0), "reached the end");
}

} // namespace
