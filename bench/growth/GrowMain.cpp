// GrowMain.cpp - qeadrs_grow cities|towns TIMES DICTIONARY OUTPUT: writes a dictionary of many times the country.
#include "bench/growth/Grow.h"
#include "builder/DictionaryFile.h"

#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

int main(int nArguments, char** ppszArgument) try {
    std::string const strKind = nArguments == 5 ? ppszArgument[1] : "";
    if (strKind != "cities" && strKind != "towns") {
        std::cerr << "usage: qeadrs_grow cities|towns TIMES DICTIONARY OUTPUT\n";
        return 2;
    }
    unsigned long const nTimes = std::strtoul(ppszArgument[2], nullptr, 10);
    qe::CDictionaryFile const file(ppszArgument[3]);
    qe::CImage const image = GrowDictionary(file.Bytes(), strKind == "cities" ? EGrowth::Cities : EGrowth::Towns,
                                            nTimes > MOST_TIMES ? MOST_TIMES + 1 : static_cast<uint32_t>(nTimes));
    std::ofstream out(ppszArgument[4], std::ios::binary);
    out.write(reinterpret_cast<char const*>(image.vByte.data()), static_cast<std::streamsize>(image.vByte.size()));
    out.close();
    if (!out) throw std::runtime_error(std::string(ppszArgument[4]) + ": cannot be written");
    return EXIT_SUCCESS;
} catch (std::exception const& error) {
    std::cerr << "qeadrs_grow: " << error.what() << '\n';
    return EXIT_FAILURE;
}
