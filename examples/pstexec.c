// pstexec.c - a host of the postal address API: all addresses of a postal code, field by field.
//
//   pstexec 100-0001
//
// The dictionary is qeadrs.dic in the folder that the profile names. Exit: 0 found, 1 not found, 2 no dictionary.
#include "api/Pstexec.h"

#include <stdint.h>
#include <stdio.h>

// The offsets of an entry of the block, each of four bytes, in their order.
static char const* const FIELDS[] = {"postal code", "(always empty)", "prefecture",  "city",
                                     "town",        "area",           "organisation"};
enum { FIELD_COUNT = sizeof FIELDS / sizeof FIELDS[0], ENTRY_SIZE = 4 * FIELD_COUNT };

// Integers are little-endian, and stand where they stand.
static uint32_t ReadLong(unsigned char const* p) {
    return p[0] | (uint32_t)p[1] << 8 | (uint32_t)p[2] << 16 | (uint32_t)p[3] << 24;
}

static void PrintAddresses(unsigned char const* pBlock) {
    unsigned const nAddresses = pBlock[0] | (unsigned)pBlock[1] << 8;
    unsigned char const* pEntry = pBlock + ReadLong(pBlock + 4);
    char const* const pszPool = (char const*)pBlock + ReadLong(pBlock + 8);
    for (unsigned n = 0; n < nAddresses; ++n, pEntry += ENTRY_SIZE) {
        printf("address %u of %u\n", n + 1, nAddresses);
        for (int i = 0; i < FIELD_COUNT; ++i)
            printf("  %s: %s\n", FIELDS[i], pszPool + ReadLong(pEntry + 4 * (size_t)i));
    }
}

// Returns 1 when there are addresses.
static int PrintAddressesOf(char const* pszCode) {
    HGLOBAL hBlock = NULL;
    if (GetAdrFromZip(pszCode, &hBlock) != 0) return 0;
    unsigned char const* const pBlock = (unsigned char const*)GlobalLock(hBlock);
    if (pBlock != NULL) {
        PrintAddresses(pBlock);
        GlobalUnlock(hBlock);
    }
    GlobalFree(hBlock); // the block is ours
    return pBlock != NULL;
}

int main(int nArguments, char** ppszArgument) {
    char const* const pszCode = nArguments > 1 ? ppszArgument[1] : "100-0001";
    if (PstAdrOpen() != 0) {
        fprintf(stderr, "There is no qeadrs.dic in the folder that the profile names.\n");
        return 2;
    }
    int const bFound = PrintAddressesOf(pszCode);
    if (!bFound) fprintf(stderr, "There is no address with the code %s.\n", pszCode);
    PstAdrClose();
    return bFound ? 0 : 1;
}
