// Addresses.cpp - from entries to texts as a user writes them.
#include "bench/Addresses.h"

#include "bench/World.h"
#include "builder/Text.h"

#include <algorithm>
#include <random>
#include <stdexcept>

namespace {

constexpr size_t ADDRESSES = 20000; // of each kind: more than the caches hold, few enough to be asked often
constexpr char HOUSE_NUMBER[] = "１－２－３";

template <typename T>
void ShuffleAndCut(std::vector<T>& vText) {
    std::shuffle(vText.begin(), vText.end(), std::mt19937(BENCH_SEED));
    vText.resize(std::min(vText.size(), ADDRESSES));
}

void SortUnique(std::vector<std::string>& vPath) {
    std::sort(vPath.begin(), vPath.end());
    vPath.erase(std::unique(vPath.begin(), vPath.end()), vPath.end());
}

} // namespace

CAddressTexts MakeAddressTexts(CAddrDic& dic) {
    CAddressTexts texts;
    for (unsigned long n = 0; tagADDRINFO const* pInfo = dic.GetAddrInfo(n); ++n) {
        tagADDR addr(0);
        dic.GetAddr(pInfo, &addr);
        if (addr.pszPref == nullptr || addr.pszCity == nullptr || addr.pszTown == nullptr || *addr.pszTown == '\0')
            continue;
        std::string const strBare = std::string(addr.pszCity) + addr.pszTown;
        std::string const strWhole = addr.pszPref + strBare;
        texts.vPath.push_back(strWhole);
        texts.vBarePath.push_back(strBare);
        if ((pInfo->nNode & ADDRINFO_SUPERSEDED) != 0) {
            texts.vGone.push_back(strWhole + HOUSE_NUMBER);
        } else if (addr.pszOffice != nullptr) {
            texts.vOffice.push_back(
                {strWhole + (addr.pszArea == nullptr ? "" : addr.pszArea), qe::WithoutBlanks(addr.pszOffice)});
        } else {
            texts.vWhole.push_back(strWhole + HOUSE_NUMBER);
            texts.vBare.push_back(strBare + HOUSE_NUMBER);
        }
    }
    for (auto* pText : {&texts.vWhole, &texts.vBare, &texts.vGone}) ShuffleAndCut(*pText);
    ShuffleAndCut(texts.vOffice);
    SortUnique(texts.vPath);
    SortUnique(texts.vBarePath);
    if (texts.vWhole.empty() || texts.vOffice.empty()) throw std::runtime_error("the dictionary has no addresses");
    return texts;
}
