// FaultWorld.h - what must not be left behind after a failure.
#ifndef QEADRS_TESTS_LIBRARY_FAULTWORLD_H
#define QEADRS_TESTS_LIBRARY_FAULTWORLD_H

#include "tests/library/AddrTextWorld.h"
#include "tests/library/ApiWorld.h"
#include "tests/library/FaultMemory.h"
#include "tests/support/SystemWatch.h"

#include <filesystem>
#include <fstream>
#include <string>

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
