// lookup.cpp - a host in C++: all addresses of a postal code, or the postal code of an address.
//
//   lookup qeadrs.dic 100-0001
//   lookup qeadrs.dic 東京都千代田区千代田
//
// Exit: 0 found, 1 not found, 2 no dictionary, 3 wrong call.
#include "api/qeadrs.hpp"

#include <iostream>

int main(int nArguments, char** ppszArgument) {
    if (nArguments != 3) {
        std::cerr << "usage: lookup FILE TEXT\n";
        return 3;
    }
    auto dictionary = qeadrs::CDictionary::Open(ppszArgument[1]);
    if (!dictionary) {
        std::cerr << ppszArgument[1] << ' ' << dictionary.Error().Text() << ".\n";
        return 2;
    }
    std::string_view const strText = ppszArgument[2];
    bool const bCode = strText.find_first_not_of("0123456789-") == std::string_view::npos;
    qeadrs::CRecords const records = bCode ? dictionary->FromCode(strText) : dictionary->CodeOf(strText);
    for (qeadrs::CRecord const record : records)
        std::cout << record.strCode << ' ' << record.strPref << record.strCity << record.strTown << record.strArea
                  << record.strBlock << record.strNote << ' ' << record.strOffice << '\n';
    return records.empty() ? 1 : 0;
}
