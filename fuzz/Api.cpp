// Api.cpp - the postal address API over the sample dictionary.
#include "api/Pstexec.h"
#include "fuzz/ApiCalls.h"
#include "fuzz/Worlds.h"

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* p, size_t nSize) {
    static CDictionaryFolder const folder(SampleWorld());
    // Opened for each input: the sort type and the lists of the one before would be part of a find.
    Require(PstAdrOpen() == 0, "the dictionary can be opened");
    CallApi(CLineInput(p, nSize));
    Require(PstAdrClose() == 0, "a close succeeds");
    return 0;
}
