// PstexecState.h - the state behind the postal address API (internal; the shared library does not export it).
#ifndef QEADRS_API_PSTEXECSTATE_H
#define QEADRS_API_PSTEXECSTATE_H

#include "dic/AddrDic.h"

extern CAddrDic dic;  // the API's dictionary, from load to unload of the library
extern int hDicFile;  // descriptor of the mapped file; 0 before the first open, -1 after a close
extern long nDicSize; // size of the mapping in bytes; 0 when there is none to unmap

#endif
