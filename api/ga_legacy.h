// ga_legacy.h - the legacy command interface: one entry point, a command number, three records of fixed layout.
//
//   GA_ADRSRT request = {0};                                  // zero all three: lengths are measured to a NUL
//   GA_ADRNUM counts = {0};
//   GA_ADRFLD field = {0};
//   if (GA_adr_exec(GA_OPEN, 0, NULL, "qeadrs.dic", NULL) == 0) {
//       strcpy(request.szCode, "1000001");
//       GA_adr_exec(GA_SEARCH, 0, &request, NULL, &counts);   // how many prefectures, cities, towns
//       field.nPosition = 0;
//       GA_adr_exec(GA_GET, GA_TOWN, NULL, NULL, &field);     // the first town of the first city
//       GA_adr_exec(GA_CLOSE, 0, NULL, NULL, NULL);
//   }
//
// Dictionary  Its own, beside that of the postal address API: neither sees the other. The caller names the file.
// Texts       UTF-8. A text that fills its field has no NUL. Codes are ASCII digits; hyphens and blanks between them
//             are ignored (MakePostCode in dic/AddrDic.h says what becomes of other characters).
// Results     0 success, 1 failure; GA_SEARCH and GA_GET always 0. A position that is not there leaves the lengths in
//             the record as they were.
// Nothing     A search that finds nothing leaves the lists of the whole dictionary, as one without texts does. To tell,
//             set nNameLength to 1 and GA_GET the GA_CITY at position 32767: only where something was found, a city
//             that is not there has the length 0.
// Threads     One process-wide state, not locked: one thread at a time. Between a close and the next open, and before
//             the first open has succeeded, only GA_OPEN and GA_CLOSE may be called.
// Records     Only the fields named here are read or written. Integers are little-endian; nothing is aligned beyond
//             what the offsets show.
#ifndef QEADRS_API_GA_LEGACY_H
#define QEADRS_API_GA_LEGACY_H

#include "dic/Export.h"

#include <stddef.h>
#include <stdint.h>

// Commands of GA_adr_exec.
#define GA_OPEN 1
#define GA_CLOSE 2
#define GA_SEARCH 3
#define GA_GET 4
#define GA_NOTHING 21 // accepted, does nothing

// Kinds of entry for GA_GET.
#define GA_PREF 0
#define GA_CITY 1
#define GA_TOWN 2

// Kinds of a town's detail text.
#define GA_DETAIL_NONE 0
#define GA_DETAIL_AREA 1     // a level-3 text
#define GA_DETAIL_OFFICE 3   // an organisation
#define GA_DETAIL_BUILDING 4 // a building and its floor

#pragma pack(push, 1)

// What to search for, and which prefecture, city and town are selected in what was found.
//
//   off size  field       meaning
//     0    6  abUnused0
//     6    2  nPref       position of the selected prefecture, from 0
//     8    2  nCity       position of the selected city in it
//    10    2  nTown       position of the selected town in that one
//    12  488  abUnused12
//   500  514  szAddr      beginning of an address, "" for none; used when there is no code
//  1014    6  szShortCode beginning of a postal code, "" for none; used when szCode is empty
//  1020    8  szCode      beginning of a postal code, "" for none; the eight bytes "100-0001" become "1000001"
//
// A search rewrites the code that it uses to its digits. An address of more than 127 bytes is searched for anew each
// time, any other query only when it is not the one before.
typedef struct GA_ADRSRT {
    uint8_t abUnused0[6];
    int16_t nPref;
    int16_t nCity;
    int16_t nTown;
    uint8_t abUnused12[488];
    char szAddr[514];
    char szShortCode[6];
    char szCode[8];
} GA_ADRSRT;

// How long the lists are.
//
//   off size  field       meaning
//     0    2  nPrefs      prefectures
//     2    2  nCities     cities of the selected prefecture
//     4    2  nTowns      towns of the selected city; all three modulo 65,536
//     6    2  nMinus6     -1
//     8    2  nMinus8     -1
//    10  518  abUnused10
//   528    2  nPrefWidth  8: bytes for a prefecture's name on the screen
//   530    2  nCityWidth  16: for a city's
//   532    2  nTownWidth  60: for a town's
// A selection that is not there leaves 0 in the counts below it, and the widths as they were.
typedef struct GA_ADRNUM {
    int16_t nPrefs;
    int16_t nCities;
    int16_t nTowns;
    int16_t nMinus6;
    int16_t nMinus8;
    uint8_t abUnused10[518];
    int16_t nPrefWidth;
    int16_t nCityWidth;
    int16_t nTownWidth;
} GA_ADRNUM;

// One entry of a list. Lengths count bytes, modulo 256, up to the first NUL at or behind the text's beginning: in a
// record that was zero before, the text's own.
//
//   off size  field         meaning
//     0    2  nPosition     in: position in the list, from 0
//     2    2  abUnused2
//     4   60  acName        name
//    64   62  abUnused64
//   126  128  acDetail      town: what stands below the town area
//   254  123  abUnused254
//   377    1  nNameLength   of acName; of a city's name in two parts (GetShikugunType), of the first one
//   378    1  nRestLength   city's name in two parts: of the second one
//   379    2  abUnused379
//   381    1  nDetailLength town: of acDetail
//   382    4  abUnused382
//   386    1  nDetailKind   town: GA_DETAIL_xxx
//   387    5  acOldCode     town: old postal code
//   392    1  abUnused392
//   393    7  acCode        town: postal code
//   400    9  abUnused400
//   409    1  nOldCodeLength
//   410    1  nCodeLength
typedef struct GA_ADRFLD {
    int16_t nPosition;
    uint8_t abUnused2[2];
    char acName[60];
    uint8_t abUnused64[62];
    char acDetail[128];
    uint8_t abUnused254[123];
    uint8_t nNameLength;
    uint8_t nRestLength;
    uint8_t abUnused379[2];
    uint8_t nDetailLength;
    uint8_t abUnused382[4];
    uint8_t nDetailKind;
    char acOldCode[5];
    uint8_t abUnused392[1];
    char acCode[7];
    uint8_t abUnused400[9];
    uint8_t nOldCodeLength;
    uint8_t nCodeLength;
} GA_ADRFLD;

#pragma pack(pop)

#ifdef __cplusplus
static_assert(sizeof(GA_ADRSRT) == 1028 && offsetof(GA_ADRSRT, nPref) == 6, "the caller's record");
static_assert(offsetof(GA_ADRSRT, szAddr) == 500 && offsetof(GA_ADRSRT, szShortCode) == 1014, "a field moved");
static_assert(offsetof(GA_ADRSRT, szCode) == 1020, "a field moved");
static_assert(sizeof(GA_ADRNUM) == 534 && offsetof(GA_ADRNUM, nPrefWidth) == 528, "the caller's record");
static_assert(sizeof(GA_ADRFLD) == 411 && offsetof(GA_ADRFLD, acDetail) == 126, "the caller's record");
static_assert(offsetof(GA_ADRFLD, nNameLength) == 377 && offsetof(GA_ADRFLD, nDetailLength) == 381, "a field moved");
static_assert(offsetof(GA_ADRFLD, nDetailKind) == 386 && offsetof(GA_ADRFLD, acOldCode) == 387, "a field moved");
static_assert(offsetof(GA_ADRFLD, acCode) == 393 && offsetof(GA_ADRFLD, nOldCodeLength) == 409, "a field moved");

extern "C" {
#endif

// Runs a command:
//
//   1   GA_OPEN    maps the file pszPath; 1 when it cannot be mapped, and then the dictionary that was open still is.
//                  What is in the file is not checked.
//   2   GA_CLOSE   unmaps it; always 0
//   3   GA_SEARCH  searches for pRequest and counts into pRecord, a GA_ADRNUM; always 0. Without a text the lists are
//                  those of the whole dictionary. The code in the request is rewritten to its digits.
//   4   GA_GET     reads the entry of the kind nArgument at the position in pRecord, a GA_ADRFLD; always 0
//   21             does nothing and returns 0; all others do nothing and return 1
QEADRS_API int GA_adr_exec(unsigned short nCommand, short nArgument, GA_ADRSRT* pRequest, char const* pszPath,
                           void* pRecord);

// Searching with old names is always on: the first ignores its argument, the second returns 1.
QEADRS_API void GA_SetSearchOldName(int nFlag);
QEADRS_API int GA_GetSearchOldName(void);

#ifdef __cplusplus
}

// The commands one by one. Open: 1 success, 0 failure, pszIgnored is ignored; close: 1; search: 0; get: 0 success, 1
// when there is no such entry.
QEADRS_API int ga_legacy_open(char const* pszPath, char const* pszIgnored);
QEADRS_API int ga_legacy_close();
QEADRS_API int ga_legacy_stsrt(GA_ADRSRT* pRequest, GA_ADRNUM* pCounts);
QEADRS_API int ga_legacy_gtdat(short nKind, GA_ADRFLD* pField);

#    include "dic/AddrDic.h"

// The state of the interface, for hosts that look into it.
namespace ga_legacy {
extern QEADRS_API CAddrDic dic;  // its dictionary, from load to unload of the library
extern QEADRS_API int hDicFile;  // descriptor of the file that was opened last, -1 before
extern QEADRS_API uint32_t size; // bytes of the mapped file, 0 before
extern QEADRS_API int hFileMap;  // 0, and never used
} // namespace ga_legacy
#endif

#endif
