// Modules.cpp - shared libraries by name, over dlopen.
//
// An HMODULE is the loader's own handle, which the loader follows without a look. A list of those handed out stands
// in front of it, so that a stale or foreign one never gets that far.
//
// The loader is never called with our mutex held: it runs the constructors of what it loads under a lock of its own,
// and such a constructor may well call LoadLibrary.
//
// No std::string or std::vector here: their out-of-line copies would become exports of libqewin.so in some builds.
#include "platform/Win32Compat.h"

#include <climits>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <mutex>
#include <new>
#include <type_traits>
#include <unistd.h>
#include <utility>

#define QE_EXPORT __attribute__((visibility("default")))

namespace {

// The folder of libqewin.so, with the closing slash; empty when it is not known. Found out while we are being loaded:
// after a relative LD_LIBRARY_PATH the path that the loader reports is worth nothing once the host has changed
// folder.
struct tagFOLDER {
    char szPath[PATH_MAX] = "";

    tagFOLDER() {
        Dl_info info;
        if (!dladdr(this, &info) || !info.dli_fname) return;
        char const* pszSlash = std::strrchr(info.dli_fname, '/');
        if (!pszSlash) return;
        char szBase[PATH_MAX] = "";
        bool bRelative = info.dli_fname[0] != '/';
        // The system names a folder it cannot reach "(unreachable)/...", which is no path.
        if (bRelative && (!getcwd(szBase, sizeof szBase) || szBase[0] != '/')) return;
        int n = std::snprintf(szPath, sizeof szPath, "%s%s%.*s", szBase, bRelative ? "/" : "",
                              int(pszSlash - info.dli_fname) + 1, info.dli_fname);
        if (n < 0 || size_t(n) >= sizeof szPath) szPath[0] = '\0';
    }
};
tagFOLDER folder;
static_assert(std::is_trivially_destructible_v<tagFOLDER>, "a host's static destructors may still load libraries");

// A module handed out and not yet given back. The entry goes with the last user, so that nothing is left when
// libqewin.so is unloaded itself.
struct tagMODULE {
    HMODULE hModule;
    unsigned nLoads;   // LoadLibrary calls not given back
    unsigned nReaders; // calls of GetProcAddress under way
    unsigned nOwed;    // dlclose calls that wait for them
    tagMODULE* pNext;
};

std::mutex mtxModules;
static_assert(std::is_trivially_destructible_v<std::mutex>, "usable until the process ends");
tagMODULE* pModules = nullptr;

// The link that leads to the entry of a loaded module; the last link, which is null, when there is no such entry.
// REQUIRES: mtxModules is held.
tagMODULE** Find(HMODULE hModule) {
    tagMODULE** ppModule = &pModules;
    while (*ppModule && (*ppModule)->hModule != hModule) ppModule = &(*ppModule)->pNext;
    return ppModule;
}

// Takes an entry off the list unless somebody still needs it. REQUIRES: mtxModules is held.
void Drop(tagMODULE** ppModule) {
    tagMODULE* pModule = *ppModule;
    if (pModule->nLoads > 0 || pModule->nReaders > 0) return;
    *ppModule = pModule->pNext;
    delete pModule;
}

// Counts one LoadLibrary. False: no memory.
bool Remember(HMODULE hModule) {
    std::lock_guard<std::mutex> lock(mtxModules);
    tagMODULE** ppModule = Find(hModule);
    if (!*ppModule) *ppModule = new (std::nothrow) tagMODULE{hModule, 0, 0, 0, nullptr};
    if (!*ppModule) return false;
    ++(*ppModule)->nLoads;
    return true;
}

HMODULE OpenBesideUs(char const* pszName) {
    char szFile[PATH_MAX + NAME_MAX + 1];
    if (std::strchr(pszName, '/') || !folder.szPath[0] || std::strlen(pszName) > NAME_MAX) return nullptr;
    std::snprintf(szFile, sizeof szFile, "%s%s", folder.szPath, pszName);
    return dlopen(szFile, RTLD_NOW | RTLD_LOCAL);
}

} // namespace

QE_EXPORT HMODULE LoadLibrary(LPCSTR pszName) {
    // The loader takes the empty name for the program itself, which is no library to give away.
    if (!pszName || !*pszName) return nullptr;
    HMODULE hModule = OpenBesideUs(pszName);
    if (!hModule) hModule = dlopen(pszName, RTLD_NOW | RTLD_LOCAL);
    if (!hModule || Remember(hModule)) return hModule;
    dlclose(hModule);
    return nullptr;
}

QE_EXPORT FARPROC GetProcAddress(HMODULE hModule, LPCSTR pszName) {
    if (!hModule || !pszName) return nullptr;
    tagMODULE* pModule = nullptr;
    {
        std::lock_guard<std::mutex> lock(mtxModules);
        pModule = *Find(hModule);
        if (!pModule || pModule->nLoads == 0) return nullptr;
        ++pModule->nReaders; // from here on another thread's FreeLibrary cannot take the module away under dlsym
    }
    FARPROC pProc = reinterpret_cast<FARPROC>(dlsym(hModule, pszName));
    unsigned nOwed = 0;
    {
        std::lock_guard<std::mutex> lock(mtxModules);
        if (--pModule->nReaders == 0) std::swap(nOwed, pModule->nOwed);
        Drop(Find(hModule));
    }
    for (; nOwed > 0; --nOwed) dlclose(hModule);
    return pProc;
}

QE_EXPORT BOOL FreeLibrary(HMODULE hModule) {
    if (!hModule) return 0;
    {
        std::lock_guard<std::mutex> lock(mtxModules);
        tagMODULE** ppModule = Find(hModule);
        tagMODULE* pModule = *ppModule;
        if (!pModule || pModule->nLoads == 0) return 0;
        --pModule->nLoads;
        if (pModule->nReaders > 0) {
            ++pModule->nOwed;
            return 1;
        }
        Drop(ppModule);
    }
    return dlclose(hModule) == 0 ? 1 : 0;
}
