// legacy.c - a host of the legacy command interface: the candidates for a part of a code, or of an address, field by
// field.
//
//   legacy qeadrs.dic 100-0
//   legacy qeadrs.dic 東京都千代田区
//
// Exit: 0 found, 1 not found, 2 no dictionary, 3 wrong call.
#include "api/ga_legacy.h"

#include <stdio.h>
#include <string.h>

// A text fills its field, or ends at a NUL.
#define PRINT_TEXT(pszTitle, acField) printf("%s%.*s\n", pszTitle, (int)sizeof(acField), acField)

static GA_ADRNUM Count(GA_ADRSRT* pRequest, int nPref, int nCity) {
    GA_ADRNUM counts;
    memset(&counts, 0, sizeof counts);
    pRequest->nPref = (int16_t)nPref;
    pRequest->nCity = (int16_t)nCity;
    GA_adr_exec(GA_SEARCH, 0, pRequest, NULL, &counts);
    return counts;
}

// The entry at a position. The record is zero before: lengths are measured to the next NUL.
static GA_ADRFLD Get(short nKind, int nPosition) {
    GA_ADRFLD field;
    memset(&field, 0, sizeof field);
    field.nPosition = (int16_t)nPosition;
    GA_adr_exec(GA_GET, nKind, NULL, NULL, &field);
    return field;
}

// A search that finds nothing leaves the lists of the whole dictionary. Where it has found something, a city that is
// not there has the length 0; elsewhere the record is left alone.
static int HasFound(void) {
    GA_ADRFLD field;
    memset(&field, 0, sizeof field);
    field.nPosition = INT16_MAX;
    field.nNameLength = 1;
    GA_adr_exec(GA_GET, GA_CITY, NULL, NULL, &field);
    return field.nNameLength == 0;
}

static char const* DetailKind(int nKind) {
    switch (nKind) {
    case GA_DETAIL_AREA:
        return "area";
    case GA_DETAIL_OFFICE:
        return "organisation";
    case GA_DETAIL_BUILDING:
        return "building";
    default:
        return "none";
    }
}

static void PrintTown(int nTown) {
    GA_ADRFLD const field = Get(GA_TOWN, nTown);
    PRINT_TEXT("    town: ", field.acName);
    PRINT_TEXT("      detail: ", field.acDetail);
    printf("      kind of detail: %s\n", DetailKind(field.nDetailKind));
    PRINT_TEXT("      postal code: ", field.acCode);
    PRINT_TEXT("      old code: ", field.acOldCode);
    printf("      lengths: %d %d %d %d\n", field.nNameLength, field.nDetailLength, field.nCodeLength,
           field.nOldCodeLength);
}

static void PrintCity(GA_ADRSRT* pRequest, int nPref, int nCity) {
    GA_ADRNUM const counts = Count(pRequest, nPref, nCity);
    GA_ADRFLD const field = Get(GA_CITY, nCity);
    PRINT_TEXT("  city: ", field.acName);
    printf("    lengths of the name and of its second part: %d %d\n", field.nNameLength, field.nRestLength);
    for (int n = 0; n < counts.nTowns; ++n) PrintTown(n);
}

static void PrintPrefecture(GA_ADRSRT* pRequest, int nPref) {
    GA_ADRNUM const counts = Count(pRequest, nPref, 0);
    GA_ADRFLD const field = Get(GA_PREF, nPref);
    PRINT_TEXT("prefecture: ", field.acName);
    printf("  length: %d\n", field.nNameLength);
    for (int n = 0; n < counts.nCities; ++n) PrintCity(pRequest, nPref, n);
}

// Returns 1 when something was found.
static int PrintCandidates(GA_ADRSRT* pRequest) {
    GA_ADRNUM const counts = Count(pRequest, 0, 0);
    if (!HasFound()) return 0;
    printf("widths: %d %d %d\n", counts.nPrefWidth, counts.nCityWidth, counts.nTownWidth);
    for (int n = 0; n < counts.nPrefs; ++n) PrintPrefecture(pRequest, n);
    return 1;
}

int main(int nArguments, char** ppszArgument) {
    GA_ADRSRT request;
    memset(&request, 0, sizeof request);
    if (nArguments != 3 || strlen(ppszArgument[2]) > 127) {
        fprintf(stderr, "Usage: %s DICTIONARY CODE-OR-ADDRESS\n", ppszArgument[0]);
        return 3;
    }
    char const* const pszText = ppszArgument[2];
    int const bCode = strspn(pszText, "0123456789-") == strlen(pszText) && strlen(pszText) <= sizeof request.szCode;
    memcpy(bCode ? request.szCode : request.szAddr, pszText, strlen(pszText));
    if (GA_adr_exec(GA_OPEN, 0, NULL, ppszArgument[1], NULL) != 0) {
        fprintf(stderr, "%s cannot be opened.\n", ppszArgument[1]);
        return 2;
    }
    int const bFound = PrintCandidates(&request);
    if (!bFound) fprintf(stderr, "There is no address for %s.\n", pszText);
    GA_adr_exec(GA_CLOSE, 0, NULL, NULL, NULL);
    return bFound ? 0 : 1;
}
