// TownText.h - what the town column of one row stands for: a place below its city.
#ifndef QEADRS_BUILDER_TOWNTEXT_H
#define QEADRS_BUILDER_TOWNTEXT_H

#include <string>
#include <string_view>
#include <vector>

namespace qe {

// Bytes that no name but a longer one's cut form exceeds: readers keep 128 with the NUL.
constexpr size_t NAME_LIMIT = 127;

struct CNamed {
    std::string strName;
    std::string strKana;
};

enum class ETownKind {
    Nameless, // the city as a whole: 以下に掲載がない場合, 利島村一円, 境町の次に番地がくる場合
    Town, // a town, and the code is the town's own: 旭ケ丘, 常盤（その他）, 中央（次のビルを除く）
    Areas, // subdivisions of a town (or of the city: then strTown is empty), each with the code
    Floor, // a floor of a building: 中央アエル（１階）; no floor for 地階・階層不明
};

struct CTownText {
    ETownKind nKind = ETownKind::Town;
    CNamed town;               // Town, Areas: the town. Floor: town and building in one text
    std::vector<CNamed> vArea; // Areas: level-3 names
    bool bDefault = false;     // Areas: the code is also the town's own (a list with その他 in it)
    CNamed floor;              // Floor: empty for 地階・階層不明
    bool bShortened = false;   // an area's 「…」 had to be dropped to stay within NAME_LIMIT
    bool bReadingLost = false; // the reading does not cut up like the text
};

// Reads the town text of a city. strKana may be empty (a source without readings).
CTownText ReadTownText(std::string_view strCity, std::string_view strTown, std::string_view strKana);

} // namespace qe

#endif
