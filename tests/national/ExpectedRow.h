// ExpectedRow.h - what each row of the official tables has to become, worked out a second time from the rows alone.
//
// The town column stands for a place below its city:
//
//   旭ケ丘                                     the town
//   以下に掲載がない場合, 利島村一円           a nameless town (a plain 一円 is a town)
//   境町の次に番地がくる場合                   the same when it is the city's own name, else that town; a number
//                                              range or （…） with it is a level-3 text
//   大通西（１〜１９丁目）                     town and level 3
//   抜海村（上勇知、下勇知）                   town and a level 3 for each place; numbers that stand side by side
//                                              stay one text, and what would exceed 127 bytes goes on in another one
//   常盤（その他）, 中央（次のビルを除く）     the town: its default. その他 in a list is the town besides the places
//   中央アエル（１階）, （地階・階層不明）     the longest other town of the city that begins the text, building,
//                                              floor
//   種市第１地割〜種市第３地割（八木南町）     town 種市, the rest is one level-3 text
//   上野々３９地割, 井道、奥井道、内井道       plain towns
//
// Readings are cut where the texts are; a reading without the parenthesis gives the town's alone.
#ifndef QEADRS_TESTS_NATIONAL_EXPECTEDROW_H
#define QEADRS_TESTS_NATIONAL_EXPECTEDROW_H

#include "SlowReader.h"
#include "Tables.h"

#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace national {

struct CName {
    std::string strName, strKana;
};

// A place below the city.
struct CPlace {
    CName town;
    std::optional<CName> area, building;
    std::optional<std::string> strFloor;
    bool bDefault = true; // the place is the town itself, without more
};

// All places of the town table, row by row, and the towns that they make.
class CExpectedTowns {
  public:
    explicit CExpectedTowns(std::vector<CTownRow> const& vRow);

    // The places of row n: one, or more for a list.
    std::vector<CPlace> const& PlacesOf(size_t nRow) const { return m_vPlaces[nRow]; }

    // Readings of the towns of this name in the city (prefecture and city in one text), none when there is no such
    // town.
    std::vector<std::string> ReadingsOf(std::string const& strCity, std::string const& strTown) const;

    // Names of the city's towns that are equal to this one after folding numbers, ケ, の and 字.
    std::vector<std::string> FoldedAlike(std::string const& strCity, std::string const& strTown) const;

    struct CTown {
        CName name;
        unsigned nDefaults; // rows that are the town itself
    };
    // The city's towns in the order of the table.
    std::vector<CTown> const& TownsOf(std::string const& strCity) const;

  private:
    struct CCity {
        std::vector<CTown> vTown;
        std::unordered_map<std::string, std::vector<size_t>> mapName;
        std::unordered_map<std::string, std::vector<std::string>> mapFolded;
    };
    void AddTown(CCity& city, CPlace const& place);
    void PlaceBuilding(CCity const& city, CTownRow const& row, CPlace& place) const;

    std::vector<std::vector<CPlace>> m_vPlaces;
    std::unordered_map<std::string, CCity> m_mapCity;
};

// Those of the official table, worked out once for the process.
CExpectedTowns const& ExpectedTowns();

// The address texts of a place and its row, as AddressText writes them.
std::string ExpectedText(CTownRow const& row, CPlace const& place);

// The code that stands for a whole city, by CityKey: that of the first row for all that is not listed, else that of the
// first of its numbers.
std::map<std::string, std::string_view> const& CityCodes();

// "札幌市中央区" of "北海道" as the key of a city.
inline std::string CityKey(std::string_view strPref, std::string_view strCity) {
    return std::string(strPref).append(strCity);
}

// A town's name with its numbers, ケ, の and 字 written in one way.
std::string FoldTown(std::string_view strTown);

} // namespace national

#endif
