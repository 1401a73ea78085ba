// FaultWorld.h - memory that runs out on demand, and what must not be left behind after a failure.
//
//   for (long n = 0;; ++n) {
//       CShortage shortage(n);                     // the n + 1st allocation from here on fails, and all behind it
//       ...
//   }
//
// The operators new, and malloc where there is no sanitizer, are those of the whole process (FaultMemory.cpp); it has
// one thread.
#ifndef QEADRS_TESTS_LIBRARY_FAULTWORLD_H
#define QEADRS_TESTS_LIBRARY_FAULTWORLD_H

#include "tests/library/AddrTextWorld.h"
#include "tests/library/ApiWorld.h"
#include "tests/support/SystemWatch.h"

#include <filesystem>
#include <fstream>
#include <string>

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

// How many descriptors this process has open, and how often a file is mapped.
inline size_t CountDescriptors() {
    size_t n = 0;
    for (auto const& entry : std::filesystem::directory_iterator("/proc/self/fd")) n += size_t{entry.exists()};
    return n;
}
inline size_t CountMappings(std::string const& strPath) {
    size_t n = 0;
    std::ifstream maps("/proc/self/maps");
    for (std::string strLine; std::getline(maps, strLine);) n += size_t{strLine.find(strPath) != std::string::npos};
    return n;
}

// What a process holds that a failed call must not add to.
struct CHoldings {
    size_t nDescriptors, nMappings;

    static CHoldings Now(std::string const& strPath) { return {CountDescriptors(), CountMappings(strPath)}; }
    bool operator==(CHoldings const& other) const {
        return nDescriptors == other.nDescriptors && nMappings == other.nMappings;
    }
};
inline std::ostream& operator<<(std::ostream& out, CHoldings const& holdings) {
    return out << holdings.nDescriptors << " descriptors, " << holdings.nMappings << " mappings";
}

// The dictionary of these tests: the city of GetAtCity has more bytes than a short std::string holds.
struct CFaultWorld : CTextWorld {
    CFaultWorld() {
        vNode[nChiyodaKu].nName = AddText("千代田特別の区", "チヨダトクベツノク");
        Complete();
    }
};

#endif
