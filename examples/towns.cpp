// towns.cpp - a host of the postal address API in C++: the cities of a prefecture, or the towns of a city.
//
//   towns 東京都
//   towns 東京都 千代田区
//
// The dictionary is qeadrs.dic in the folder that the profile names. Exit: 0 found, 1 not found, 2 no dictionary.
#include "api/qeadrs.hpp"

#include <iostream>

// The position of a name in an answer, which is the number of the place; nothing when it is not there.
static std::optional<unsigned short> NumberOf(qeadrs::CNames const& names, std::string_view strName) {
    auto const p = std::find(names.begin(), names.end(), strName);
    if (p == names.end()) return std::nullopt;
    return static_cast<unsigned short>(std::distance(names.begin(), p));
}

int main(int nArguments, char** ppszArgument) {
    auto api = qeadrs::CApi::Open();
    if (!api) {
        std::cerr << "The dictionary " << api.Error().Text() << ".\n";
        return 2;
    }
    auto const prefectures = api->Prefectures();
    auto const nPref = prefectures && nArguments > 1 ? NumberOf(*prefectures, ppszArgument[1]) : std::nullopt;
    auto const cities = nPref ? api->Cities(*nPref) : qeadrs::EError::NotFound;
    if (!cities) return 1;
    if (nArguments == 2)
        for (std::string_view const strCity : *cities) std::cout << strCity << '\n';
    if (nArguments < 3) return 0;
    auto const nCity = NumberOf(*cities, ppszArgument[2]);
    auto const towns = nCity ? api->Towns(*nCity) : qeadrs::EError::NotFound;
    if (!towns) return 1;
    for (qeadrs::CTown const town : *towns) std::cout << town.strCode << '\t' << town.strName << '\n';
    return 0;
}
