// FaultMemory.cpp - the allocations of the test program: they fail on demand.
#include "tests/library/FaultMemory.h"

#include <cstdlib>
#include <new>

CMemory memory;

namespace {

// Takes one from those that are left; false when there was none.
bool Take() noexcept {
    if (memory.nAllowed == 0) memory.bFailed = true;
    if (memory.nAllowed == 0) return false;
    if (memory.nAllowed > 0) --memory.nAllowed;
    return true;
}

void* Allocate(size_t nSize) noexcept {
    if (memory.nKind == CShortage::Objects && !Take()) return nullptr;
    void* const p = std::malloc(nSize == 0 ? 1 : nSize);
    if (p != nullptr) {
        ++memory.nLive;
        memory.nTaken += nSize;
    }
    return p;
}

void Release(void* p) noexcept {
    if (p != nullptr) --memory.nLive;
    std::free(p);
}

} // namespace

// Those of the whole process: the library's vectors are to run out of memory, too.
void* operator new(size_t nSize) {
    void* const p = Allocate(nSize);
    if (p == nullptr) throw std::bad_alloc();
    return p;
}
void* operator new(size_t nSize, std::nothrow_t const&) noexcept {
    return Allocate(nSize);
}
void operator delete(void* p) noexcept {
    Release(p);
}
void operator delete(void* p, size_t) noexcept {
    Release(p);
}
void operator delete(void* p, std::nothrow_t const&) noexcept {
    Release(p);
}

#ifdef QE_MALLOC_FAILS
// The system's own, with names that nobody else has.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {

void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);

// Those of the whole process: the platform layer's, the loader's and that of files.
__attribute__((visibility("default"))) void* malloc(size_t nSize) noexcept {
    return memory.nKind == CShortage::Bytes && !Take() ? nullptr : __libc_malloc(nSize);
}
__attribute__((visibility("default"))) void* calloc(size_t nCount, size_t nSize) noexcept {
    return memory.nKind == CShortage::Bytes && !Take() ? nullptr : __libc_calloc(nCount, nSize);
}
__attribute__((visibility("default"))) void* realloc(void* p, size_t nSize) noexcept {
    return memory.nKind == CShortage::Bytes && !Take() ? nullptr : __libc_realloc(p, nSize);
}

} // extern "C"
// NOLINTEND(bugprone-reserved-identifier)
#endif
