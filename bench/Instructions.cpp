// Instructions.cpp - qeadrs_instructions DICTIONARY FUNCTION: asks for every address text once, for a tool that
// counts instructions from outside (instructions.sh). Prints the number of calls.
#include "bench/Addresses.h"
#include "bench/World.h"

#include <cstdlib>
#include <exception>
#include <iostream>

namespace {

size_t Ask(CAddrDic& dic, CAddressTexts const& texts, std::string const& strFunction) {
    tagADDR addr(0);
    if (strFunction == "GetPostCodeFromAddr+organisation") {
        for (COfficeText office : texts.vOffice)
            dic.GetPostCodeFromAddr(office.strAddress.c_str(), office.strName.data(), addr);
        return texts.vOffice.size();
    }
    for (std::string const& strText : texts.vWhole) {
        if (strFunction == "DivideAddr")
            dic.DivideAddr(strText.c_str(), &addr);
        else if (strFunction == "GetPostCodeFromAddr")
            dic.GetPostCodeFromAddr(strText.c_str(), nullptr, addr);
        else
            dic.GetLatestAddr(strText.c_str(), addr);
    }
    return texts.vWhole.size();
}

} // namespace

int main(int nArguments, char** ppszArgument) try {
    if (nArguments != 3) throw std::runtime_error("usage: qeadrs_instructions DICTIONARY FUNCTION");
    CBenchDictionary dictionary(ppszArgument[1]);
    CAddressTexts const texts = MakeAddressTexts(dictionary.Dic());
    std::cout << Ask(dictionary.Dic(), texts, ppszArgument[2]) << '\n';
    return EXIT_SUCCESS;
} catch (std::exception const& error) {
    std::cerr << "qeadrs_instructions: " << error.what() << '\n';
    return EXIT_FAILURE;
}
