// Codes.cpp - postal codes and organisations' names as they are typed: all that normalises a text, in place or not.
#include "cli/Text.h"
#include "dic/AddrDic.h"
#include "fuzz/Fuzz.h"
#include "fuzz/Worlds.h"
#include "platform/Win32Compat.h"

#include <algorithm>
#include <cstring>

namespace {

bool AreAll(std::string_view str, char const* pszAllowed) {
    return str.find_first_not_of(pszAllowed) == std::string_view::npos;
}

void RunCodePage(std::string const& str) {
    int nType = 0;
    for (size_t n = 0; n + 1 < str.size(); ++n) {
        auto const c = static_cast<unsigned char>(str[n]), cNext = static_cast<unsigned char>(str[n + 1]);
        nType = _mbbtype(c, nType);
        Require(nType >= _MBC_ILLEGAL && nType <= _MBC_TRAIL, "a byte has one of four types");
        unsigned const nCode = static_cast<unsigned>(c) << 8 | cNext, nSingle = _mbctombb(nCode);
        Require(nSingle == nCode || nSingle <= 0xFF, "a character has a single byte or stays as it is");
    }
}

void RunLibrary(std::string const& str) {
    static CGuardedRecord record(1u << 18);
    static CAddrDic dic;
    dic.SetDictionary(SmallWorld().data());
    char* psz = record.PutText(str);
    dic.MakePostCode(psz);
    std::string const strCode = psz;
    Require(strCode.size() <= str.size() && AreAll(strCode, "0123456789?*"), "a code has digits, ? and * only");
    dic.MakePostCode(psz);
    Require(strCode == psz, "a code that is normalised stays as it is");
    std::vector<tagADDR> vAddr;
    dic.GetAddrFromPostCode7(record.PutText(str), vAddr);

    psz = record.PutText(str);
    dic.EraseBlank(psz);
    Require(std::strlen(psz) <= str.size() && std::strpbrk(psz, " ,") == nullptr, "no blank is left");
    std::string const strBlankless = psz;
    psz = record.PutText(str);
    Require(dic.SearchInc(psz) < 2, "an organisation stands in the index");
    Require(std::strlen(psz) <= strBlankless.size() && strBlankless.find(psz) != std::string::npos,
            "a legal form is taken off the front or the end");
    unsigned short nType = 0;
    psz = record.PutText(str);
    unsigned short const nFront = GetShikugunType(psz, &nType);
    Require(nType <= SHIKUGUN_OTHER && nFront <= str.size(), "a name has one of eight kinds");
}

void RunCommandLine(std::string const& str) {
    if (auto const strCode = qe::FoldCode(str)) {
        Require(!strCode->empty() && AreAll(*strCode, "0123456789"), "a folded code has digits only");
        Require(qe::FoldCode(*strCode) == strCode, "a folded code stays as it is");
        Require(qe::IsUtf8(str), "a code was UTF-8");
    }
    std::string const strClean = qe::Clean(str);
    Require(qe::IsUtf8(strClean), "a clean text is UTF-8");
    Require(qe::Clean(strClean) == strClean, "a clean text stays as it is");
    size_t const nWidth = qe::DisplayWidth(strClean);
    for (size_t const nCut : {size_t{0}, size_t{1}, nWidth / 2, nWidth})
        Require(qe::DisplayWidth(qe::CutToWidth(strClean, nCut)) <= nCut, "a text is cut to its width");
    Require(qe::DropLast(strClean).size() <= strClean.size(), "a text is shorter without its last character");
    Require(qe::Trim(str).size() <= str.size() && qe::DropWideBlanks(str).size() <= str.size(), "blanks are taken");
    Require(qe::IsUtf8(qe::Quote(str)) && qe::IsUtf8(qe::FoldForFilter(str)), "a text for people is UTF-8");
    if (qe::IsBlank(str)) Require(qe::Trim(str).empty(), "nothing is left of blanks");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* p, size_t nSize) {
    std::string const str(reinterpret_cast<char const*>(p), nSize);
    RunCodePage(str);
    RunCommandLine(str);
    RunLibrary(str.substr(0, str.find('\0')));
    return 0;
}
