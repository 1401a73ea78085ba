// ga_legacy.cpp - the legacy command interface: commands to calls of its own dictionary, answers into the caller's
// records.
#include "api/ga_legacy.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <exception>
#include <limits>

namespace ga_legacy {
CAddrDic dic;
int hDicFile = -1;
uint32_t size = 0;
int hFileMap = 0;
} // namespace ga_legacy

namespace {

// What a close gives back, once: a second one must not take what somebody else has mapped and opened since.
struct CMapping {
    void* p = nullptr;
    size_t nSize = 0;
    int hFile = -1;
};
CMapping mapping;

// A NUL-terminated text field of N bytes in a caller's record, with a NUL of our own behind it.
template <size_t N>
struct CTextField {
    explicit CTextField(char const (&szField)[N]) : szText{} { std::memcpy(szText, szField, N); }
    char szText[N + 1];
};

// Bytes from a place in the record to the first NUL, modulo 256. A field that is full goes on into what follows it, as
// far as the record goes.
uint8_t MeasuredLength(GA_ADRFLD const& field, char const* psz) {
    auto const* const pEnd = reinterpret_cast<char const*>(&field + 1);
    return static_cast<uint8_t>(strnlen(psz, static_cast<size_t>(pEnd - psz)));
}

int GetPref(GA_ADRFLD& field) {
    if (!ga_legacy::dic.GetAtPref(field.nPosition, field.acName, sizeof field.acName)) return 1;
    field.nNameLength = MeasuredLength(field, field.acName);
    return 0;
}

int GetCity(GA_ADRFLD& field) {
    int nFront = 0;
    if (!ga_legacy::dic.GetAtCity(field.nPosition, field.acName, sizeof field.acName, &nFront)) return 1;
    uint8_t const nLength = MeasuredLength(field, field.acName);
    field.nNameLength = nFront != 0 ? static_cast<uint8_t>(nFront) : nLength;
    if (nFront != 0) field.nRestLength = static_cast<uint8_t>(nLength - nFront);
    return 0;
}

int GetTown(GA_ADRFLD& field) {
    if (!ga_legacy::dic.GetAtTown(field.nPosition, field.acName, sizeof field.acName, field.acDetail,
                                  sizeof field.acDetail, field.acOldCode, sizeof field.acOldCode, field.acCode,
                                  sizeof field.acCode, reinterpret_cast<char*>(&field.nDetailKind)))
        return 1;
    field.nNameLength = MeasuredLength(field, field.acName);
    field.nDetailLength = MeasuredLength(field, field.acDetail);
    field.nOldCodeLength = MeasuredLength(field, field.acOldCode);
    field.nCodeLength = MeasuredLength(field, field.acCode);
    return 0;
}

} // namespace

int ga_legacy_open(char const* pszPath, char const*) {
    if (pszPath == nullptr) return 0;
    ga_legacy::hDicFile = open(pszPath, O_RDONLY);
    struct stat status = {}; // a failed stat leaves size 0, which cannot be mapped
    stat(pszPath, &status);
    bool const bCountable = status.st_size <= std::numeric_limits<int32_t>::max();
    ga_legacy::size = static_cast<uint32_t>(bCountable ? status.st_size : 0);
    void* const p = mmap(nullptr, ga_legacy::size, PROT_READ, MAP_SHARED, ga_legacy::hDicFile, 0);
    if (p == MAP_FAILED) {
        close(ga_legacy::hDicFile);
        return 0;
    }
    mapping = {p, ga_legacy::size, ga_legacy::hDicFile};
    ga_legacy::dic.SetDictionary(static_cast<unsigned char const*>(p));
    return 1;
}

int ga_legacy_close() {
    munmap(mapping.p, mapping.nSize);
    close(mapping.hFile);
    mapping = {};
    return 1;
}

namespace {

// The search with the code in one of the request's two fields.
template <size_t N>
void Search(char (&szCode)[N], char const* pszAddr) {
    CTextField code(szCode);
    ga_legacy::dic.MakePostCode(code.szText);
    std::memcpy(szCode, code.szText, N); // what stands behind the digits has not moved
    ga_legacy::dic.MakeRefineTree(code.szText, pszAddr);
}

void SearchAndCount(GA_ADRSRT& request, GA_ADRNUM& counts) {
    CTextField const addr(request.szAddr);
    if (request.szCode[0] != '\0')
        Search(request.szCode, addr.szText);
    else
        Search(request.szShortCode, addr.szText);
    // What is not counted keeps the caller's value. The record may stand at any address, these do not.
    short nPrefs = counts.nPrefs, nCities = counts.nCities, nTowns = counts.nTowns;
    short nPrefWidth = counts.nPrefWidth, nCityWidth = counts.nCityWidth, nTownWidth = counts.nTownWidth;
    ga_legacy::dic.GetAdrNum(request.nPref, request.nCity, request.nTown, &nPrefs, &nCities, &nTowns, &nPrefWidth,
                             &nCityWidth, &nTownWidth);
    counts.nPrefs = nPrefs;
    counts.nCities = nCities;
    counts.nTowns = nTowns;
    counts.nPrefWidth = nPrefWidth;
    counts.nCityWidth = nCityWidth;
    counts.nTownWidth = nTownWidth;
}

} // namespace

int ga_legacy_stsrt(GA_ADRSRT* pRequest, GA_ADRNUM* pCounts) {
    if (pRequest == nullptr || pCounts == nullptr) return 0;
    try {
        SearchAndCount(*pRequest, *pCounts);
    } catch (std::exception const&) {
        // No result is told anyway; the counts stay as they were.
    }
    pCounts->nMinus6 = pCounts->nMinus8 = -1;
    return 0;
}

int ga_legacy_gtdat(short nKind, GA_ADRFLD* pField) try {
    if (pField == nullptr) return 1;
    switch (nKind) {
    case GA_PREF:
        return GetPref(*pField);
    case GA_CITY:
        return GetCity(*pField);
    case GA_TOWN:
        return GetTown(*pField);
    default:
        return 1;
    }
} catch (std::exception const&) {
    return 1;
}

extern "C" {

int GA_adr_exec(unsigned short nCommand, short nArgument, GA_ADRSRT* pRequest, char const* pszPath, void* pRecord) {
    switch (nCommand) {
    case GA_OPEN:
        return ga_legacy_open(pszPath, static_cast<char const*>(pRecord)) != 0 ? 0 : 1;
    case GA_CLOSE:
        ga_legacy_close();
        return 0;
    case GA_SEARCH:
        return ga_legacy_stsrt(pRequest, static_cast<GA_ADRNUM*>(pRecord));
    case GA_GET:
        ga_legacy_gtdat(nArgument, static_cast<GA_ADRFLD*>(pRecord)); // its callers look at the lengths
        return 0;
    case GA_NOTHING:
        return 0;
    default:
        return 1;
    }
}

void GA_SetSearchOldName(int) {}

int GA_GetSearchOldName() {
    return 1;
}

} // extern "C"
