// ReadingParts.h - what the C++ and the C interface share of a reading's record.
#ifndef QEADRS_TEXT_READINGPARTS_H
#define QEADRS_TEXT_READINGPARTS_H

#include "text/qetext.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace qeadrs {

constexpr QETEXTPLACE EmptyPlace() {
    QETEXTPLACE place{};
    place.nPref = place.nCity = place.nTown = place.nArea = place.nBuilding = place.nFloor = place.nEntry =
        QETEXT_NONE;
    return place;
}

constexpr QETEXTREADING EmptyReading() {
    QETEXTREADING reading{};
    reading.place = reading.latest = EmptyPlace();
    return reading;
}

// The canonical text in its parts: prefecture, city, town, and of the text what stands behind the town. All empty where
// no city was found.
inline std::array<std::string_view, 4> CanonicalParts(QETEXTREADING const& reading, std::string_view strText) {
    auto const Name = [](char const* psz) { return psz == nullptr ? std::string_view() : std::string_view(psz); };
    if (reading.place.pszCity == nullptr) return {};
    size_t const nRest = reading.area.nLength != 0 ? reading.area.nOffset : reading.rest.nOffset;
    return {Name(reading.place.pszPref), Name(reading.place.pszCity), Name(reading.place.pszTown),
            strText.substr(std::min(nRest, strText.size()))};
}

} // namespace qeadrs

#endif
