// Win32Compat.h - the Win32-style functions that the library imports, and nothing else of Win32.
//
//   HGLOBAL h = GlobalAlloc(GHND, 100);            // a movable block of 100 zero bytes, behind a handle
//   char* p = (char*)GlobalLock(h);                // the block's address, valid until the matching GlobalUnlock
//   ...
//   GlobalUnlock(h);
//   GlobalFree(h);
//
// The library sees this header only. libqewin.so is our implementation; a host with a compatibility layer of its own
// links that one instead, and needs to offer exactly the functions below, with C linkage.
//
// Handles   A handle is a number, not an address. A stale, null or foreign handle is refused by every function.
// Threads   All functions here may be called from several threads at once.
// Code page `_mbbtype` and `_mbctombb` follow code page 932, whatever the process locale is.
#ifndef QEADRS_PLATFORM_WIN32COMPAT_H
#define QEADRS_PLATFORM_WIN32COMPAT_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef char CHAR;
typedef int BOOL;
typedef unsigned int UINT;
typedef void* HANDLE;
typedef HANDLE HGLOBAL;
typedef void* HMODULE;
typedef size_t SIZE_T;
typedef void* LPVOID;
typedef char const* LPCSTR;
typedef void (*FARPROC)(void);

// Flags of GlobalAlloc. Only the two combinations that include GMEM_MOVEABLE are supported.
#define GMEM_MOVEABLE 0x0002
#define GMEM_ZEROINIT 0x0040
#define GHND (GMEM_MOVEABLE | GMEM_ZEROINIT) /* 66 */

// Allocates a movable block of nSize bytes (0 is legal), zero-filled whatever the flags say.
// Returns its handle, lock count 0, or null when there is no memory or the flags do not ask for a movable block.
HGLOBAL GlobalAlloc(UINT nFlags, SIZE_T nSize);

// Adds one to the block's lock count and returns its address: null for a handle that is not a live block, and for
// a block whose lock count is at its maximum.
LPVOID GlobalLock(HGLOBAL hMem);

// Takes one from the lock count. Returns 1 while the block stays locked, 0 when it is unlocked now, was not locked,
// or hMem is not a live block.
BOOL GlobalUnlock(HGLOBAL hMem);

// Frees the block, locked or not. Returns null on success, hMem when it is not a live block.
HGLOBAL GlobalFree(HGLOBAL hMem);

// The size in bytes that was asked for, 0 when hMem is not a live block. For callers: the library does not use it.
SIZE_T GlobalSize(HGLOBAL hMem);

// Loads a shared library: a bare name is looked for in the folder of libqewin.so first, then by the system's rules;
// a name with a slash is taken as a path. Returns null when there is no such library.
HMODULE LoadLibrary(LPCSTR pszName);

// The address of an exported function, null when the module or the name is null or there is no such function.
FARPROC GetProcAddress(HMODULE hModule, LPCSTR pszName);

// Gives one LoadLibrary back. Returns 1 on success, 0 for null or when the loader refuses.
BOOL FreeLibrary(HMODULE hModule);

// Results of _mbbtype.
#define _MBC_SINGLE 0     /* 0x20-0x7E, 0xA1-0xDF: a character of one byte */
#define _MBC_LEAD 1       /* 0x81-0x9F, 0xE0-0xFC: first byte of a character of two bytes */
#define _MBC_TRAIL 2      /* 0x40-0x7E, 0x80-0xFC: second byte of a character of two bytes */
#define _MBC_ILLEGAL (-1) /* neither of what was asked for */

// Classifies one byte of code page 932 text. nType is the type of the byte before it: with 1 (a lead byte) the answer
// is _MBC_TRAIL or _MBC_ILLEGAL, with any other value _MBC_SINGLE, _MBC_LEAD or _MBC_ILLEGAL.
int _mbbtype(unsigned char c, int nType);

// The single-byte form of a two-byte character of code page 932 (first byte in bits 8-15): full-width ASCII, the
// ideographic space, and the punctuation and katakana that have a half-width form. Anything else comes back as it is.
unsigned int _mbctombb(unsigned int c);

#ifdef __cplusplus
}
#endif

#endif
