// FaultMemory.h - memory that runs out on demand.
//
//   for (long n = 0;; ++n) {
//       CShortage shortage(n);                     // the n + 1st allocation from here on fails, and all behind it
//       ...
//   }
//
// The operators new, and malloc where there is no sanitizer, are those of the whole process (FaultMemory.cpp); it has
// one thread.
#ifndef QEADRS_TESTS_LIBRARY_FAULTMEMORY_H
#define QEADRS_TESTS_LIBRARY_FAULTMEMORY_H

#include <cstddef>

struct CMemory;
extern CMemory memory;

class CShortage {
  public:
    enum EKind {
        Objects, // operator new
        Bytes,   // malloc and its like: the same, and what the platform layer and the system take
    };

    explicit CShortage(long nAllowed, EKind nKind = Objects);
    ~CShortage() { End(); }
    CShortage(CShortage const&) = delete;
    CShortage& operator=(CShortage const&) = delete;

    // The same as the end of the object, for those who want to look at what happened; true when memory ran out.
    bool End();
};

// The kinds that can fail in this build: the sanitizers have a malloc of their own.
#ifdef QE_MALLOC_FAILS
constexpr CShortage::EKind SHORTAGES[] = {CShortage::Objects, CShortage::Bytes};
#else
constexpr CShortage::EKind SHORTAGES[] = {CShortage::Objects};
#endif

struct CMemory {
    long nAllowed = -1; // allocations left before one fails, -1 for any number
    CShortage::EKind nKind = CShortage::Objects;
    long nLive = 0;       // blocks of operator new that live
    size_t nTaken = 0;    // bytes that operator new has given out in all
    bool bFailed = false; // an allocation failed since the last shortage began
};

inline CShortage::CShortage(long nAllowed, EKind nKind) {
    memory.bFailed = false;
    memory.nKind = nKind;
    memory.nAllowed = nAllowed;
}

inline bool CShortage::End() {
    memory.nAllowed = -1;
    return memory.bFailed;
}

#endif
