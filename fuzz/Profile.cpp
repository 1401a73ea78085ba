// Profile.cpp - the profile library on any file. The first line is "section|key|default|size of the buffer", what
// follows is the file.
#include "fuzz/Fuzz.h"
#include "platform/QeProfile.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* p, size_t nSize) {
    static CMemoryFile const file;
    static CGuardedRecord section, key, fallback, buffer;
    setenv("QE_PROFILE", file.Path().c_str(), 1);
    CLineInput input(p, nSize);
    if (!input.Next()) return 0;
    std::string const strSection = std::string(1, input.Command()) + input.Field(), strKey = input.Field(),
                      strDefault = input.Field();
    auto const nBuffer = static_cast<int>(input.Number() % 20000);
    std::string_view const str(reinterpret_cast<char const*>(p), nSize);
    file.Write(str.substr(std::min(str.find('\n'), str.size() - 1) + 1));

    // Null stands for a name that is not there at all.
    auto const TextOrNull = [](CGuardedRecord& record, std::string const& strText) {
        return strText == "-" ? nullptr : record.PutText(strText);
    };
    char* const psz = reinterpret_cast<char*>(buffer.Fill(0x5A, static_cast<size_t>(nBuffer)));
    int const nWritten = QeGetProfileString(TextOrNull(section, strSection), TextOrNull(key, strKey),
                                            TextOrNull(fallback, strDefault), psz, nBuffer);
    if (nBuffer == 0) {
        Require(nWritten == 0, "nothing is written into an empty buffer");
        return 0;
    }
    Require(nWritten >= 0 && nWritten < nBuffer, "a value is cut to its buffer");
    Require(std::strlen(psz) == static_cast<size_t>(nWritten), "a value ends in NUL");
    // The buffer may be the default, as well.
    std::memcpy(psz, strDefault.c_str(), std::min(strDefault.size() + 1, static_cast<size_t>(nBuffer)));
    psz[nBuffer - 1] = '\0';
    QeGetProfileString(section.PutText(strSection), key.PutText(strKey), psz, psz, nBuffer);
    return 0;
}
