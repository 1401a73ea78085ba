// Addresses.h - the address texts that the benchmarks ask for, made of a dictionary's own entries.
#ifndef QEADRS_BENCH_ADDRESSES_H
#define QEADRS_BENCH_ADDRESSES_H

#include "dic/AddrDic.h"

#include <string>
#include <vector>

struct COfficeText {
    std::string strAddress;
    std::string strName; // without blanks
};

// The texts to ask for, in random order.
struct CAddressTexts {
    std::vector<std::string> vWhole;    // 東京都千代田区丸の内１－２－３
    std::vector<std::string> vBare;     // the same without the prefecture
    std::vector<std::string> vGone;     // towns of earlier editions; none in a dictionary without them
    std::vector<COfficeText> vOffice;   // an organisation at its address
    std::vector<std::string> vPath;     // all paths of towns, sorted: what the yardstick searches ...
    std::vector<std::string> vBarePath; // ... and without the prefecture
};

// Throws std::runtime_error when the dictionary has none. The order is fixed by BENCH_SEED.
CAddressTexts MakeAddressTexts(CAddrDic& dic);

#endif
