// QeProfile.cpp - one setting out of an INI file, read with inih.
//
//   ; where the dictionary is
//   [General]
//   DicDir = /var/lib/qeadrs        ; a comment after a value needs a blank before its semicolon
//
// inih splits the lines. Built as usual it sees 199 bytes at a time and would take the rest of a longer line for a
// line of its own, so that a folder called ".../x=1" made up a key. Its limit can be raised only in variables that
// all users of libinih in the process share, and those belong to the host. So the lines are read here, whole: inih
// gets as much of each as it can take, and the value of a line that was cut is picked out of the original.
//
// Nothing is allocated here, so nothing can throw; and without std::string none of its out-of-line copies is
// exported.
//
// Limits: a line counts up to 8191 bytes and a key up to 190; section names are told apart by their first 49 bytes.

// 64-bit file sizes and inode numbers, or a 32-bit process cannot even look at a file on a large file system.
#define _FILE_OFFSET_BITS 64 // NOLINT(bugprone-reserved-identifier)

#include "platform/QeProfile.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ini.h>
#include <sys/stat.h>

#define QE_EXPORT __attribute__((visibility("default")))

namespace {

constexpr size_t nMaxSection = 49; // what inih keeps of the name of a section

struct tagSEARCH {
    char const* pszSection;
    char const* pszKey;
    char* pszBuffer;
    int nSize;
    int nWritten; // -1 until the key is found
    std::FILE* pFile;
    bool bCut;         // the line that inih works on is not all of szLine
    char szLine[8192]; // the line without its end and without blanks in front
};

// Writes as much of a text as there is room for. The text may lie in the buffer itself.
int Store(char* pszBuffer, int nSize, char const* pszText, size_t nLength) {
    nLength = std::min(nLength, size_t(nSize) - 1);
    std::memmove(pszBuffer, pszText, nLength);
    pszBuffer[nLength] = '\0';
    return int(nLength);
}

// inih's own idea of a blank, but not dependent on the locale, where 0xA0 inside a UTF-8 character may be one.
bool IsBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c;
}

// Equal in their first nMax bytes without regard to ASCII case. Not strcasecmp: it folds by the host's locale, and in
// a Turkish one "DICDIR" and "DicDir" differ.
bool IsSame(char const* psz1, char const* psz2, size_t nMax) {
    for (size_t n = 0; n < nMax; ++n) {
        if (Lower(psz1[n]) != Lower(psz2[n])) return false;
        if (!psz1[n]) return true;
    }
    return true;
}

// Reads a line of any length into pSearch->szLine and drops what does not fit, so that it cannot pass for the next
// line. Blanks in front are dropped, too: inih takes an indented line for more of the value above it, and people do
// indent their keys.
bool ReadLine(tagSEARCH* pSearch) {
    size_t n = 0;
    int c = std::getc(pSearch->pFile);
    if (c == EOF) return false;
    for (; c != EOF && c != '\n'; c = std::getc(pSearch->pFile)) {
        bool bSkip = n == 0 && IsBlank(char(c));
        if (!bSkip && n < sizeof pSearch->szLine - 1) pSearch->szLine[n++] = char(c);
    }
    pSearch->szLine[n] = '\0';
    return true;
}

// The reader of inih, in the manner of fgets. It ends the text as soon as the key was found: the first one counts.
char* NextLine(char* pszLine, int nLine, void* pStream) {
    auto* pSearch = static_cast<tagSEARCH*>(pStream);
    if (nLine < 3 || pSearch->nWritten >= 0 || !ReadLine(pSearch)) return nullptr;
    size_t nLength = std::strlen(pSearch->szLine);
    size_t nTaken = std::min(nLength, size_t(nLine) - 2);
    pSearch->bCut = nTaken < nLength;
    std::memcpy(pszLine, pSearch->szLine, nTaken);
    // A section's name that lost its bracket would be no section, and its keys would count for the one before.
    if (pSearch->bCut && pszLine[0] == '[') pszLine[nTaken - 1] = ']';
    std::memcpy(pszLine + nTaken, "\n", 2);
    return pszLine;
}

// Stores the value of a line that inih saw only the beginning of, by inih's rules: from the first = or : up to a
// semicolon behind a blank, without blanks at either end.
// REQUIRES: inih found a key in the line.
int StoreWhole(tagSEARCH* pSearch) {
    char const* pszFrom = pSearch->szLine + std::strcspn(pSearch->szLine, "=:");
    if (*pszFrom) ++pszFrom;
    char const* pszTo = pszFrom;
    while (*pszTo && !(*pszTo == ';' && pszTo > pszFrom && IsBlank(pszTo[-1]))) ++pszTo;
    while (pszFrom < pszTo && IsBlank(*pszFrom)) ++pszFrom;
    while (pszFrom < pszTo && IsBlank(pszTo[-1])) --pszTo;
    return Store(pSearch->pszBuffer, pSearch->nSize, pszFrom, size_t(pszTo - pszFrom));
}

// The handler of inih; its result says that the line was understood.
int OnKey(void* pUser, char const* pszSection, char const* pszKey, char const* pszValue) {
    auto* pSearch = static_cast<tagSEARCH*>(pUser);
    if (pszValue && IsSame(pszSection, pSearch->pszSection, nMaxSection) &&
        IsSame(pszKey, pSearch->pszKey, SIZE_MAX)) {
        pSearch->nWritten = pSearch->bCut
                                ? StoreWhole(pSearch)
                                : Store(pSearch->pszBuffer, pSearch->nSize, pszValue, std::strlen(pszValue));
    }
    return 1;
}

struct tagPATH {
    char szPath[PATH_MAX]; // empty: no such path
};

// The path that an environment variable leads to; none when it is unset, empty or too long for any file.
tagPATH FromEnvironment(char const* pszName, char const* pszSuffix) {
    tagPATH path;
    char const* psz = std::getenv(pszName);
    int n = psz && *psz ? std::snprintf(path.szPath, sizeof path.szPath, "%s%s", psz, pszSuffix) : 0;
    if (n <= 0 || size_t(n) >= sizeof path.szPath) path.szPath[0] = '\0';
    return path;
}

// Opens the first profile that exists; null when there is none, or when that one cannot be read.
std::FILE* OpenProfile() {
    char const* pszXdg = std::getenv("XDG_CONFIG_HOME");
    tagPATH const vPath[] = {FromEnvironment("QE_PROFILE", ""),
                             pszXdg && *pszXdg ? FromEnvironment("XDG_CONFIG_HOME", "/qe/qe.ini")
                                               : FromEnvironment("HOME", "/.config/qe/qe.ini"),
                             {"/etc/qe.ini"}};
    for (tagPATH const& path : vPath) {
        struct stat status;
        if (!path.szPath[0] || stat(path.szPath, &status) != 0) continue;
        // Opening a pipe would wait for a writer, and reading a device might never come to an end.
        return S_ISREG(status.st_mode) ? std::fopen(path.szPath, "re") : nullptr;
    }
    return nullptr;
}

} // namespace

QE_EXPORT int QeGetProfileString(char const* pszSection, char const* pszKey, char const* pszDefault, char* pszBuffer,
                                 int nSize) {
    if (!pszBuffer || nSize <= 0) return 0;
    tagSEARCH search;
    search.pszSection = pszSection;
    search.pszKey = pszKey;
    search.pszBuffer = pszBuffer;
    search.nSize = nSize;
    search.nWritten = -1;
    search.pFile = pszSection && pszKey ? OpenProfile() : nullptr;
    if (search.pFile) {
        // Its result tells of lines that are no INI at all; they do no harm to the others.
        ini_parse_stream(NextLine, &search, OnKey, &search);
        std::fclose(search.pFile);
    }
    if (search.nWritten >= 0) return search.nWritten;
    if (!pszDefault) pszDefault = "";
    return Store(pszBuffer, nSize, pszDefault, std::strlen(pszDefault));
}
