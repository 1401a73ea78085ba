// written.c - a host of the text layer: one address as somebody wrote it, part by part as the dictionary has it.
//
//   written qeadrs.dic '札幌市中央区大通西25丁目'
//
// Exit: 0 found, 1 not found or several places, 2 no dictionary, 3 wrong call.
#include "text/qetext.h"

#include <stdio.h>
#include <string.h>

static char const* const SURENESS[] = {"nothing found",  "no such city",      "no such town", "several places",
                                       "names left out", "spelled otherwise", "exactly so"};

static void PrintPlace(QETEXTPLACE const* pPlace) {
    char const* const apszPart[] = {pPlace->pszPref, pPlace->pszCity,     pPlace->pszTown,
                                    pPlace->pszArea, pPlace->pszBuilding, pPlace->pszFloor};
    printf("%s", pPlace->pszPostCode == NULL ? "-" : pPlace->pszPostCode);
    for (size_t n = 0; n < sizeof apszPart / sizeof apszPart[0]; ++n)
        if (apszPart[n] != NULL && *apszPart[n] != '\0') printf(" %s", apszPart[n]);
    printf("\n");
}

int main(int nArguments, char** ppszArgument) {
    if (nArguments != 3) {
        fprintf(stderr, "usage: written FILE TEXT\n");
        return 3;
    }
    QETEXT* const pText = QeTextOpen(ppszArgument[1], NULL);
    if (pText == NULL) {
        fprintf(stderr, "%s is no dictionary that can be opened.\n", ppszArgument[1]);
        return 2;
    }
    char const* const pszText = ppszArgument[2];
    QETEXTREADING reading;
    int nExit = 1;
    if (QeTextRead(pText, pszText, strlen(pszText), 0, &reading) == QETEXT_OK) {
        printf("%s\n", SURENESS[reading.nSureness]);
        for (size_t n = 0; n < reading.nCandidate; ++n) PrintPlace(&reading.pCandidate[n]);
        printf("not read: %.*s\n", (int)reading.rest.nLength, pszText + reading.rest.nOffset);
        nExit = reading.nSureness >= QETEXT_SUPPLIED ? 0 : 1;
    }
    QeTextClose(pText);
    return nExit;
}
