// ProcessState.h - what this process has open and mapped.
#ifndef QEADRS_TESTS_SUPPORT_PROCESSSTATE_H
#define QEADRS_TESTS_SUPPORT_PROCESSSTATE_H

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <fstream>
#include <string>

inline bool IsOpen(int hFile) {
    return fcntl(hFile, F_GETFD) != -1;
}

// Whether a page of memory is mapped.
inline bool IsMapped(void const* p) {
    auto const nPage = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    unsigned char c = 0;
    return mincore(const_cast<void*>(p), nPage, &c) == 0;
}

// Whether a file is mapped anywhere. After an munmap its place may be taken at once, by the sanitizers for one.
inline bool IsFileMapped(std::string const& strPath) {
    std::ifstream maps("/proc/self/maps");
    for (std::string strLine; std::getline(maps, strLine);)
        if (strLine.find(strPath) != std::string::npos) return true;
    return false;
}

#endif
