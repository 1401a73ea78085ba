// Legacy.cpp - the legacy command interface over the sample dictionary.
#include "fuzz/LegacyCalls.h"
#include "fuzz/Worlds.h"

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* p, size_t nSize) {
    static CDictionaryFolder const folder(SampleWorld());
    CallLegacy(CLineInput(p, nSize), folder.Path());
    return 0;
}
