// spelled.cpp - a host of the text layer in C++: each line of standard input in the spelling of the dictionary, its
// postal code in front; "?" where the place is not known for sure.
//
//   spelled qeadrs.dic <addresses.txt
//
// Exit: 0, 2 no dictionary, 3 wrong call.
#include "api/qeadrs.hpp"
#include "text/AddressText.h"

#include <iostream>
#include <string>

int main(int nArguments, char** ppszArgument) {
    if (nArguments != 2) {
        std::cerr << "usage: spelled FILE\n";
        return 3;
    }
    auto const file = qeadrs::CDictionaryFile::Open(ppszArgument[1]);
    if (!file) {
        std::cerr << ppszArgument[1] << ' ' << file.Error().Text() << ".\n";
        return 2;
    }
    CAddrDic dic;
    dic.SetDictionary(file->Bytes());
    qeadrs::CAddressText text(dic);
    for (std::string strLine; std::getline(std::cin, strLine);) {
        QETEXTREADING const& reading = text.Read(strLine);
        if (reading.nSureness < QETEXT_SUPPLIED) {
            std::cout << "? " << strLine << '\n';
            continue;
        }
        char const* const pszCode = reading.place.pszPostCode;
        std::cout << (pszCode == nullptr ? "-" : pszCode) << ' ' << qeadrs::CAddressText::Canonical(reading, strLine)
                  << '\n';
    }
    return 0;
}
