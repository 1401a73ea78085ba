// LegacyCalls.h - a host of the legacy interface: the commands that an input says, on records before guard pages.
//
//   f BYTE                             what the records hold from now on where the input says nothing
//   b OFFSET|BYTES                     what they hold from that offset on, over all else; the next f takes it away
//   s PREF,CITY,TOWN|SHORT|CODE|ADDR   GA_SEARCH; a text longer than its field fills it, without a NUL
//   g KIND,POSITION                    GA_GET, into a new record; G: into the record of the one before
//   o, c                               GA_OPEN, GA_CLOSE; O: GA_OPEN of a file that is not there
//   x COMMAND                          any other command
//   n FLAG                             GA_SetSearchOldName
//
// Between a close and the next open no search and no entry is asked for.
#ifndef QEADRS_FUZZ_LEGACYCALLS_H
#define QEADRS_FUZZ_LEGACYCALLS_H

#include "fuzz/Fuzz.h"

// Opens the file, calls, and closes it. It may be opened a second time in between.
void CallLegacy(CLineInput input, std::string const& strPath);

#endif
