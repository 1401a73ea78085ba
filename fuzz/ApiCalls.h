// ApiCalls.h - a host of the postal address API that calls what an input says, and reads every block to its end.
//
//   z CODE                      GetAdrFromZip
//   c SORT|OLDCODE|CODE         PstAdrCity; a text longer than its field fills it, without a NUL
//   g SORT|ADDRESS|OFFICE       PstAdrGetZip
//   l ADDRESS                   PstAdrGetLatestAdr
//   a TEXT                      GetAdrFromAdd
//   p SORT|TEXT                 PstAdrRPrf
//   r N, t N, T N, u N          PstAdrRCity, PstAdrTown, PstAdrRTown, PstAdrRTownForUI
//   k KIND                      PstAdrGetComment
//   o                           PstAdrClose and PstAdrOpen
#ifndef QEADRS_FUZZ_APICALLS_H
#define QEADRS_FUZZ_APICALLS_H

#include "fuzz/Fuzz.h"

// REQUIRES: the dictionary is open.
void CallApi(CLineInput input);

#endif
