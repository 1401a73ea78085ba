// Previous.h - the earlier editions of the town table that prepare.sh kept, and the towns that are gone since: worked
// out from the tables alone. All lists are empty when there are no earlier editions.
//
// Gone is a town whose prefecture, city and name no row of today's table has; of a city that is gone, also the
// nameless town that stands for the whole of it. A town that several editions have is taken as the newest writes it.
#ifndef QEADRS_TESTS_NATIONAL_PREVIOUS_H
#define QEADRS_TESTS_NATIONAL_PREVIOUS_H

#include "ExpectedRow.h"

#include <set>
#include <string>
#include <tuple>
#include <unordered_map>
#include <vector>

namespace national {

// Prefecture, city and town, "" for the nameless one.
using CTownKey = std::tuple<std::string, std::string, std::string>;

// "静岡県/浜松市中区/助信町"
std::string PathOf(CTownKey const& key);
// "静岡県浜松市中区助信町"
std::string TextOf(CTownKey const& key);

// A town of one edition.
struct CTownOfEdition {
    CTownKey key;
    std::string strPrefKana, strCityKana, strTownKana;
    std::string strCode, strOldCode; // the first of its own, else of its first part
    std::set<std::string> vCode;     // all codes in it; those of its buildings too
};

struct CEdition {
    std::string strName; // "2015-10"
    std::vector<CTownOfEdition> vTown;
    std::unordered_map<std::string, size_t> mapTown;              // index in vTown by PathOf
    std::unordered_map<std::string, std::vector<size_t>> mapCode; // towns with the code
    std::set<std::string> vCity;                                  // by CityKey
    bool Has(CTownKey const& key) const { return mapTown.count(PathOf(key)) != 0; }
    bool HasCityOf(CTownKey const& key) const {
        return vCity.count(CityKey(std::get<0>(key), std::get<1>(key))) != 0;
    }
    CTownOfEdition const& Town(CTownKey const& key) const { return vTown[mapTown.at(PathOf(key))]; }
};

// Oldest first; the last one is today's.
std::vector<CEdition> const& Editions();
inline CEdition const& Today() {
    return Editions().back();
}

struct CGoneTown {
    CTownKey key;
    std::string strPrefKana, strCityKana, strTownKana; // as the dictionary has them
    std::string strCode, strOldCode;
    size_t nEdition; // index of the newest edition that has it
    bool bCityGone;
};
std::vector<CGoneTown> const& GoneTowns();

// As AddressText writes it.
std::string ExpectedText(CGoneTown const& town);

// The towns that can take a town's place by the rules, each edition's answer followed to today's: with the town's code
// there are only those that have it, of these only those of the same name if there are any.
std::set<CTownKey> PossibleHeirs(CTownKey const& key, size_t nEdition);

// Towns that the town table lacks and organisations name, by city (CityKey) and name.
std::set<std::pair<std::string, std::string>> const& OfficeTowns();

} // namespace national

#endif
