#include "tests/support/SystemWatch.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/types.h>

#include <cerrno>
#include <cstdarg>

namespace {

CSystemWatch* pCurrent = nullptr;

} // namespace

CSystemWatch::CSystemWatch() {
    pCurrent = this;
}

CSystemWatch::~CSystemWatch() {
    pCurrent = nullptr;
}

CSystemWatch* CSystemWatch::Current() {
    return pCurrent;
}

void CSystemWatch::Record(CSystemCall const& call) {
    m_vCall.push_back(call);
}

std::vector<std::string> CSystemWatch::Names() const {
    std::vector<std::string> vName;
    for (CSystemCall const& call : m_vCall) vName.push_back(call.strName);
    return vName;
}

std::vector<CSystemCall> CSystemWatch::Calls(std::string const& strName) const {
    std::vector<CSystemCall> vCall;
    for (CSystemCall const& call : m_vCall)
        if (call.strName == strName) vCall.push_back(call);
    return vCall;
}

// The linker's names: a call of f reaches __wrap_f, and __real_f is the f that would have been called.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {

int __real_open(char const*, int, ...);
int __real_open64(char const*, int, ...);
int __real_stat(char const*, struct stat*);
int __real_stat64(char const*, struct stat64*);
void* __real_mmap(void*, size_t, int, int, int, off_t);
void* __real_mmap64(void*, size_t, int, int, int, off64_t);
int __real_munmap(void*, size_t);
int __real_close(int);
HMODULE __real_LoadLibrary(LPCSTR);
FARPROC __real_GetProcAddress(HMODULE, LPCSTR);
BOOL __real_FreeLibrary(HMODULE);
HGLOBAL __real_GlobalAlloc(UINT, SIZE_T);
LPVOID __real_GlobalLock(HGLOBAL);
BOOL __real_GlobalUnlock(HGLOBAL);

} // extern "C"

namespace {

// Notes a call; true when it is to fail. Without a watch nothing is made of the arguments: the test may be one of
// memory that runs out.
bool Note(char const* pszName, char const* pszText = "", void const* p = nullptr, size_t nSize = 0, int nNumber = 0,
          int hFile = 0) {
    if (pCurrent == nullptr) return false;
    pCurrent->Record({pszName, pszText, p, nSize, nNumber, hFile});
    return pCurrent->Fails(pszName);
}

bool IsIgnored(char const* pszName) {
    return pCurrent != nullptr && pCurrent->Ignores(pszName);
}

// The library never creates a file, so the mode is only passed on for others in the test program.
template <typename FUNCTION>
int Open(FUNCTION pfnReal, char const* pszPath, int nFlags, int nMode) {
    bool const bFails = pCurrent != nullptr && pCurrent->Fails("open");
    int const hFile = bFails ? -1 : pfnReal(pszPath, nFlags, nMode);
    Note("open", pszPath, nullptr, 0, nFlags, hFile);
    return hFile;
}

template <typename FUNCTION, typename STAT>
int Stat(FUNCTION pfnReal, char const* pszPath, STAT* pStat) {
    return Note("stat", pszPath) ? -1 : pfnReal(pszPath, pStat);
}

template <typename FUNCTION, typename OFFSET>
void* Map(FUNCTION pfnReal, void* pWish, size_t nSize, int nProt, int nFlags, int hFile, OFFSET nOffset) {
    bool const bFails = pCurrent != nullptr && pCurrent->Fails("mmap");
    void* const p = bFails ? MAP_FAILED : pfnReal(pWish, nSize, nProt, nFlags, hFile, nOffset);
    if (bFails) errno = ENODEV; // as a file system that cannot map says
    bool const bPlain = pWish == nullptr && nProt == PROT_READ && nFlags == MAP_SHARED && nOffset == 0;
    Note(bPlain ? "mmap" : "mmap with other arguments", "", p, nSize, hFile);
    return p;
}

int ModeArgument(int nFlags, va_list vArgument) {
    return (nFlags & O_CREAT) != 0 ? va_arg(vArgument, int) : 0;
}

} // namespace

extern "C" {

int __wrap_open(char const* pszPath, int nFlags, ...) {
    va_list vArgument;
    va_start(vArgument, nFlags);
    int const nMode = ModeArgument(nFlags, vArgument);
    va_end(vArgument);
    return Open(__real_open, pszPath, nFlags, nMode);
}

int __wrap_open64(char const* pszPath, int nFlags, ...) {
    va_list vArgument;
    va_start(vArgument, nFlags);
    int const nMode = ModeArgument(nFlags, vArgument);
    va_end(vArgument);
    return Open(__real_open64, pszPath, nFlags, nMode);
}

int __wrap_stat(char const* pszPath, struct stat* pStat) {
    return Stat(__real_stat, pszPath, pStat);
}

int __wrap_stat64(char const* pszPath, struct stat64* pStat) {
    return Stat(__real_stat64, pszPath, pStat);
}

void* __wrap_mmap(void* pWish, size_t nSize, int nProt, int nFlags, int hFile, off_t nOffset) {
    return Map(__real_mmap, pWish, nSize, nProt, nFlags, hFile, nOffset);
}

void* __wrap_mmap64(void* pWish, size_t nSize, int nProt, int nFlags, int hFile, off64_t nOffset) {
    return Map(__real_mmap64, pWish, nSize, nProt, nFlags, hFile, nOffset);
}

int __wrap_munmap(void* p, size_t nSize) {
    if (Note("munmap", "", p, nSize)) return -1;
    return IsIgnored("munmap") ? 0 : __real_munmap(p, nSize);
}

int __wrap_close(int hFile) {
    if (Note("close", "", nullptr, 0, hFile)) return -1;
    return IsIgnored("close") ? 0 : __real_close(hFile);
}

HMODULE __wrap_LoadLibrary(LPCSTR pszName) {
    return Note("LoadLibrary", pszName) ? nullptr : __real_LoadLibrary(pszName);
}

FARPROC __wrap_GetProcAddress(HMODULE hModule, LPCSTR pszName) {
    if (Note("GetProcAddress", pszName, hModule)) return nullptr;
    FARPROC const pfnGiven = pCurrent != nullptr ? pCurrent->GivenFunction() : nullptr;
    return pfnGiven != nullptr ? pfnGiven : __real_GetProcAddress(hModule, pszName);
}

BOOL __wrap_FreeLibrary(HMODULE hModule) {
    return Note("FreeLibrary", "", hModule) ? 0 : __real_FreeLibrary(hModule);
}

HGLOBAL __wrap_GlobalAlloc(UINT nFlags, SIZE_T nSize) {
    return Note("GlobalAlloc", "", nullptr, nSize, static_cast<int>(nFlags)) ? nullptr
                                                                             : __real_GlobalAlloc(nFlags, nSize);
}

LPVOID __wrap_GlobalLock(HGLOBAL hMem) {
    return Note("GlobalLock", "", hMem) ? nullptr : __real_GlobalLock(hMem);
}

BOOL __wrap_GlobalUnlock(HGLOBAL hMem) {
    return Note("GlobalUnlock", "", hMem) ? 0 : __real_GlobalUnlock(hMem);
}

} // extern "C"
// NOLINTEND(bugprone-reserved-identifier)
