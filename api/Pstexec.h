// Pstexec.h - the postal address API: one dictionary for the process, found through the profile, answers as movable
// memory blocks.
//
//   HGLOBAL h;
//   if (PstAdrOpen() == 0 && GetAdrFromZip("100-0001", &h) == 0) {
//       unsigned char const* p = GlobalLock(h);    // the block drawn at GetAdrFromZip
//       ...
//       GlobalUnlock(h);
//       GlobalFree(h);                             // the caller owns the block
//   }
//   PstAdrClose();
//
// Dictionary  The file qeadrs.dic in the folder that the profile names: section General, key DicDir (QeProfile.h says
//             where the profile is). An absent key means the root folder.
// Texts       UTF-8, NUL-terminated. Codes are ASCII digits; hyphens and blanks between them are ignored. A code is
//             read as code page 932, full-width digits included; a UTF-8 character or a control character in it may
//             take the digit behind it along, so fold such texts first.
// Results     0 success, 1 failure, and nothing else is told; out-parameters are written where it says so.
// Threads     One process-wide state, not locked: one thread at a time. Between a close and the next open, and before
//             the first open has succeeded, only PstAdrOpen and PstAdrClose may be called.
// Blocks      Integers are little-endian.
#ifndef QEADRS_API_PSTEXEC_H
#define QEADRS_API_PSTEXEC_H

#include "dic/Export.h"
#include "platform/Win32Compat.h"

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Maps the dictionary. 0; 1 when the profile library or its function is missing, the path needs more than the 260
// bytes kept for it (a folder of 249 bytes or more), or the file cannot be mapped. What is in the file is not
// checked. A second open without a close maps the file again and answers from there; the earlier mapping stays.
QEADRS_API short PstAdrOpen(void);

// Unmaps the dictionary and closes its descriptor. Always 0, also when nothing was open; but call it only after an
// open that succeeded, since a descriptor number that is not ours any more is closed all the same (before the first
// open that number is 0).
QEADRS_API short PstAdrClose(void);

// *pnKind 3: copies the name of the organisation that the last 7-digit lookup met into pszBuffer, 128 bytes of the
// caller's at least, and returns 0. 1, and nothing written, for any other kind and when that lookup met none. A null
// pnKind and a name above 127 bytes abort the process; a null pszBuffer gives 1.
QEADRS_API short PstAdrGetComment(CHAR* pszBuffer, int* pnKind);

// All addresses of a postal code or of its leading part (1 to 7 digits), in dictionary order, or sorted when a
// PstAdrCity before has set sort type 9. 0 with a block in *phResult; 1 for null arguments, "" and a code that is not
// there (*phResult untouched), and when there is no memory (*phResult is the handle as far as there is one).
//
//   off size  the block, N addresses
//     0    2  N
//     2    2  0
//     4    4  12: offset of the entries
//     8    4  12 + 28 N: offset of the pool
//    12  28N  entries of seven 32-bit offsets into the pool: +0 postal code, +4 always an empty text, +8 prefecture,
//             +12 city, +16 town, +20 level-3 name, +24 organisation
//             pool: NUL-terminated texts; an absent level is an empty text
QEADRS_API int GetAdrFromZip(char const* pszCode, HGLOBAL* phResult);

// The prefecture and city of a postal code, each pair once where equal ones are neighbours.
//
//   off size  pRecord, the caller's
//     0    2  sort type, kept for later calls: 2 dictionary order, 9 sorted
//     2    6  old 5-digit postal code, NUL-terminated; used when the next field is empty
//     8    8  7-digit postal code or a leading part of one, NUL-terminated
//
//   off size  the block, N pairs
//     0    2  N; 0 when nothing was found
//     2       pairs, packed: one byte with the length of both texts (modulo 256), prefecture, city; no NUL
//
// 0 with a block in *phResult; 1 for a null argument, two empty codes (the sort type is taken all the same), and when
// the block cannot be had or locked (*phResult is the handle as far as there is one).
QEADRS_API short PstAdrCity(void* pRecord, HGLOBAL* phResult);

// The postal code of an address, and of an organisation at that address when one is named.
//
//   off size  pRecord, the caller's
//     0    2  sort type, kept for later calls: 2 dictionary order, 9 sorted
//     2    6  out: old postal code, without a NUL
//     8   15  out: 7-digit postal code, without a NUL
//    23  122  address, NUL-terminated
//   145       organisation, NUL-terminated; "" for none. It is stripped in place of blanks, commas and one legal form
//
// 0 when a code was found; 1 when none was (both code fields untouched) and for null. The codes are written without a
// NUL: zero the record first. An address without a NUL inside its field ends with the field; an organisation without
// a NUL cannot be detected, since nobody tells how long the record is. REQUIRES: the organisation ends in NUL.
QEADRS_API short PstAdrGetZip(void* pRecord);

// Rewrites an address into its latest form: the record above, without sort type and organisation (145 bytes). The
// address becomes prefecture, city, town and the rest of the text behind the town, joined and cut after 60 bytes,
// where that may be within a character; without a town the rest is dropped, and what was not recognised with it. Both
// codes are written with their NUL, and are those of the address as it was; "" when it has none. Always 0, also for
// null; that something was replaced shows in the text only.
QEADRS_API short PstAdrGetLatestAdr(void* pRecord);

// All addresses that a partial address can stand for, in dictionary order: all below the levels that it names, or
// below the prefectures and cities whose names it begins. 0 with a block in *phResult; 1 for null arguments and a
// text that fits nothing (*phResult untouched), and when there is no memory (*phResult is the handle as far as there
// is one). The block is that of GetAdrFromZip, with the old postal code at +4; its count has 16 bits, while "" finds
// more addresses than that: the pool's offset tells their true number, (offset - 12) / 28.
QEADRS_API int GetAdrFromAdd(char const* pszText, HGLOBAL* phResult);

// --- browsing --------------------------------------------------------------------------------------------------
//
//   PstAdrRPrf(&record, &h);        // prefectures: all, or those that a text can lie in
//   PstAdrRCity(12, &h);            // cities of the prefecture at position 12 of that answer
//   PstAdrRTown(0, &h);             // towns of the city at position 0 of that one; or PstAdrTown, PstAdrRTownForUI
//
// A number is a position in the answer before, counted from 0. Each level is asked for once: a second PstAdrRCity
// answers with the first city of the first answer only, a second PstAdrRTown with the first town; PstAdrRPrf begins
// again. A city or town that the text of PstAdrRPrf names is the only one of its level. The lookups by postal code
// rewrite the list of cities. Superseded cities and towns are listed like those of today.
//
// Each returns 0 with a block in *phResult, of 0 entries when there is nothing or no such position; 1 for null and
// when there is no memory (*phResult is the handle as far as there is one; the block is not freed).

// The status of an answer without a prefecture.
#define PST_NO_PREFECTURE 107

// The prefectures. Only two fields of the caller's record are read:
//
//   off size  pRecord
//     0    2  sort type, kept for later calls: 2 dictionary order, 9 sorted (cities and towns; prefectures always
//             stand in their conventional order)
//    23       a city name or an address, NUL-terminated, of any length; "" asks for all prefectures
//
//   off size  the block, N names
//     0    2  N
//     2       names, packed: one byte with the length (modulo 256), the name; no NUL
//
// Of all prefectures each stands at its number, 0 for 北海道 to 46 for 沖縄県; one that the dictionary lacks has length
// 0. PST_NO_PREFECTURE when there is none (*phResult untouched).
QEADRS_API uint32_t PstAdrRPrf(void* pRecord, HGLOBAL* phResult);

// The cities of a prefecture, in a block like that of PstAdrRPrf.
QEADRS_API uint32_t PstAdrRCity(unsigned short nPref, HGLOBAL* phResult);

// The towns of a city with their codes, as far as a town has a code of its own.
//
//   off size  the block, N towns
//     0    2  N
//     2       towns, packed: town, old postal code and postal code, each as one byte with the length (modulo 256) and
//             the text without NUL; then one byte 0
QEADRS_API uint32_t PstAdrTown(unsigned short nCity, HGLOBAL* phResult);

// The same with the postal code in front of the old one. Other than PstAdrTown it frees a block that it cannot lock:
// with status 1 the handle in *phResult is none any more.
QEADRS_API uint32_t PstAdrRTown(unsigned short nCity, HGLOBAL* phResult);

// All current addresses below a city, as lines for a screen. After an answer that was not empty PstAdrTown and
// PstAdrRTown answer with 0 entries until PstAdrRPrf has begun again.
//
//   off size  the block, N addresses
//     0    2  N modulo 65,536; the pool's offset tells the true number, (offset - 12) / 28
//     2    2  0
//     4    4  12: offset of the entries
//     8    4  12 + 28 N: offset of the pool
//    12  28N  entries of seven 32-bit offsets into the pool: +0 postal code, +4 old code, +16 line, +24 organisation;
//             +8, +12 and +20 are 0 and to be ignored
//             pool: NUL-terminated texts, "" for an absent one. The line is the town and, behind a blank each, the
//             building and its floor; "" without a town. A building stays in the lines of organisations that are
//             listed behind it. The block is larger than its content.
QEADRS_API uint32_t PstAdrRTownForUI(unsigned short nCity, HGLOBAL* phResult);

#ifdef __cplusplus
}

// Always 1. Unlike the others a C++ function: its symbol carries its empty parameter list.
QEADRS_API short PstAdrGetNum();
#endif

#endif
