// GlobalMemory.cpp - movable memory blocks behind handles.
//
// A handle names a slot of one table and the generation of that slot. It is looked up, never followed, so any value a
// caller may come up with is answered from the table alone.
//
//   bits from the top      64 bit   32 bit
//   generation of slot       32       11     1 .. maximum; moves on when the block is freed
//   index of slot            31       20
//   always 1                  1        1     so that no handle is null or equals the address of a block
//
// Invariant: a slot below nUsed either holds a block (pBlock is not null) or is in the queue of free slots.
#include "platform/Win32Compat.h"

#include <sys/single_threaded.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <type_traits>

#define QE_EXPORT __attribute__((visibility("default")))

namespace {

constexpr bool bWide = sizeof(uintptr_t) == 8;
constexpr unsigned nIndexBits = bWide ? 31 : 20;
constexpr unsigned nGenerationBits = bWide ? 32 : 11;
static_assert(1 + nIndexBits + nGenerationBits == sizeof(uintptr_t) * 8, "a handle has no bit to spare");

constexpr uint32_t nMaxSlots = uint32_t(1) << nIndexBits;
constexpr uint32_t nMaxGeneration = uint32_t((uint64_t(1) << nGenerationBits) - 1);
constexpr uint32_t nMaxLocks = 0xFFFF;

// Freed slots wait in a queue of at least this length. With the 2047 generations of 32 bits an old handle comes back
// after some eight million allocations at the earliest; the last slot freed would have it back after 2047.
constexpr uint32_t nMinWaiting = 4096;

struct tagSLOT {
    void* pBlock;         // null: the slot is free
    size_t nSize;         // size asked for; in a free slot the index of the next one in the queue
    uint32_t nGeneration; // that of the handle in use, or of the next one to be handed out
    uint32_t nLocks;
};
static_assert(std::is_trivially_copyable_v<tagSLOT>, "realloc moves slots");
static_assert(nMaxSlots <= SIZE_MAX / sizeof(tagSLOT), "the size of a full table can be counted");

// A host may allocate and free from its own static destructors, and they may run after everything of ours: so nothing
// here has a destructor, and nothing needs a constructor. The blocks stay reachable from pSlots, also for a leak
// checker, which therefore does not report a block that a host forgot.
std::mutex mtxSlots;
static_assert(std::is_trivially_destructible_v<std::mutex>, "usable until the process ends");
tagSLOT* pSlots = nullptr;
uint32_t nCapacity = 0; // slots that pSlots has room for
uint32_t nUsed = 0;     // slots that were handed out at least once
uint32_t nHead = 0;     // queue of free slots: oldest and newest; both mean nothing while nFree is 0
uint32_t nTail = 0;
uint32_t nFree = 0;
uint32_t nFirstGeneration = 1; // of a slot that was never used

// Holds mtxSlots as long as it lives, unless the process has a single thread: there is nobody to lock out then, and four
// locks are a good part of what a small block costs. No thread begins while it lives.
class CSlotsLock {
  public:
    CSlotsLock() : m_bHeld(!__libc_single_threaded) {
        if (m_bHeld) mtxSlots.lock();
    }
    ~CSlotsLock() {
        if (m_bHeld) mtxSlots.unlock();
    }
    CSlotsLock(CSlotsLock const&) = delete;
    CSlotsLock& operator=(CSlotsLock const&) = delete;

  private:
    bool m_bHeld;
};

uint32_t NextGeneration(uint32_t nGeneration) {
    return nGeneration == nMaxGeneration ? 1 : nGeneration + 1;
}

HGLOBAL MakeHandle(uint32_t nIndex, uint32_t nGeneration) {
    uintptr_t n = (uintptr_t(nGeneration) << (nIndexBits + 1)) | (uintptr_t(nIndex) << 1) | 1;
    return reinterpret_cast<HGLOBAL>(n); // NOLINT(performance-no-int-to-ptr): it is a number for the caller, too
}

// The slot of a live block, else null. REQUIRES: mtxSlots is held.
tagSLOT* FindSlot(HGLOBAL hMem) {
    uintptr_t n = reinterpret_cast<uintptr_t>(hMem);
    uintptr_t nIndex = (n >> 1) & (nMaxSlots - 1);
    if ((n & 1) == 0 || nIndex >= nUsed) return nullptr;
    tagSLOT* pSlot = pSlots + nIndex;
    // A free slot already has the generation of its next handle, which a guess could hit: so ask for the block, too.
    return pSlot->pBlock && pSlot->nGeneration == n >> (nIndexBits + 1) ? pSlot : nullptr;
}

// Makes room for one more slot. REQUIRES: mtxSlots is held.
bool Grow() {
    if (nUsed < nCapacity) return true;
    if (nCapacity == nMaxSlots) return false;
    uint32_t nWanted = nCapacity ? nCapacity * 2 : 256; // a power of two, so it meets nMaxSlots exactly
    void* p = std::realloc(pSlots, size_t{nWanted} * sizeof(tagSLOT));
    if (!p) return false;
    pSlots = static_cast<tagSLOT*>(p);
    nCapacity = nWanted;
    return true;
}

// A slot for a new block, with its generation set; null when there is none. REQUIRES: mtxSlots is held.
tagSLOT* TakeSlot() {
    if (nFree <= nMinWaiting && Grow()) {
        tagSLOT* pSlot = pSlots + nUsed++;
        pSlot->nGeneration = nFirstGeneration;
        return pSlot;
    }
    if (nFree == 0) return nullptr;
    tagSLOT* pSlot = pSlots + nHead;
    nHead = uint32_t(pSlot->nSize);
    --nFree;
    return pSlot;
}

// Puts a slot at the end of the queue and makes its handle stale. REQUIRES: mtxSlots is held.
void GiveSlotBack(tagSLOT* pSlot) {
    uint32_t nIndex = uint32_t(pSlot - pSlots);
    pSlot->pBlock = nullptr;
    pSlot->nGeneration = NextGeneration(pSlot->nGeneration);
    if (nFree++ == 0) {
        nHead = nIndex;
    } else {
        pSlots[nTail].nSize = nIndex;
    }
    nTail = nIndex;
}

// Zero-filled memory; an empty block has an address of its own, too, because null from GlobalLock means failure and
// nothing else. The C library keeps freed small blocks at hand for malloc only: clearing one costs half of a calloc.
// A large one is best left to calloc, which knows when the pages are fresh.
void* AllocateZeroed(size_t nSize) {
    if (nSize == 0) nSize = 1;
    if (nSize > 1024) return std::calloc(1, nSize);
    void* pBlock = std::malloc(nSize);
    asm volatile("" : "+r"(pBlock)); // or the compiler makes a calloc of the two again
    return pBlock ? std::memset(pBlock, 0, nSize) : nullptr;
}

// Runs when libqewin.so is unloaded or the process ends, and gives the table back if no block needs it; a host that
// loads and unloads us again and again would else lose one each time. Later calls start a new table, whose
// generations go on from the old ones, so that even now no stale handle comes alive.
__attribute__((destructor)) void DropEmptyTable() {
    CSlotsLock const lock;
    if (nFree < nUsed) return;
    for (uint32_t n = 0; n < nUsed; ++n) nFirstGeneration = std::max(nFirstGeneration, pSlots[n].nGeneration);
    std::free(pSlots);
    pSlots = nullptr;
    nCapacity = nUsed = nFree = 0;
}

} // namespace

QE_EXPORT HGLOBAL GlobalAlloc(UINT nFlags, SIZE_T nSize) {
    if (!(nFlags & GMEM_MOVEABLE)) return nullptr;
    void* pBlock = AllocateZeroed(nSize);
    if (!pBlock) return nullptr;
    HGLOBAL hMem = nullptr;
    {
        CSlotsLock const lock;
        if (tagSLOT* pSlot = TakeSlot()) {
            pSlot->pBlock = pBlock;
            pSlot->nSize = nSize;
            pSlot->nLocks = 0;
            hMem = MakeHandle(uint32_t(pSlot - pSlots), pSlot->nGeneration);
        }
    }
    if (!hMem) std::free(pBlock);
    return hMem;
}

QE_EXPORT LPVOID GlobalLock(HGLOBAL hMem) {
    CSlotsLock const lock;
    tagSLOT* pSlot = FindSlot(hMem);
    if (!pSlot || pSlot->nLocks == nMaxLocks) return nullptr;
    ++pSlot->nLocks;
    return pSlot->pBlock;
}

QE_EXPORT BOOL GlobalUnlock(HGLOBAL hMem) {
    CSlotsLock const lock;
    tagSLOT* pSlot = FindSlot(hMem);
    if (!pSlot || pSlot->nLocks == 0) return 0;
    return --pSlot->nLocks != 0 ? 1 : 0;
}

QE_EXPORT HGLOBAL GlobalFree(HGLOBAL hMem) {
    void* pBlock = nullptr;
    {
        CSlotsLock const lock;
        tagSLOT* pSlot = FindSlot(hMem);
        if (!pSlot) return hMem;
        pBlock = pSlot->pBlock;
        GiveSlotBack(pSlot);
    }
    std::free(pBlock);
    return nullptr;
}

QE_EXPORT SIZE_T GlobalSize(HGLOBAL hMem) {
    CSlotsLock const lock;
    tagSLOT* pSlot = FindSlot(hMem);
    return pSlot ? pSlot->nSize : 0;
}
