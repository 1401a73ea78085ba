// CityForms.cpp - cutting the names of prefectures and cities.
#include "text/CityForms.h"

#include "text/TextIndex.h"
#include "text/Tokens.h"

namespace qeadrs {

namespace {

bool EndsWith(std::string_view str, std::string_view strTail) {
    return str.size() >= strTail.size() && str.substr(str.size() - strTail.size()) == strTail;
}

// Behind the first marker that has a character in front of it and a name of two characters behind it; 0 for none.
size_t Behind(std::string_view str, std::string_view strMarker) {
    if (str.size() <= KANJI_BYTES) return 0;
    size_t const nFound = str.find(strMarker, KANJI_BYTES);
    size_t const nBehind = nFound + strMarker.size();
    return nFound == std::string_view::npos || str.size() - nBehind < 2 * KANJI_BYTES ? 0 : nBehind;
}

size_t BehindCounty(std::string_view strCity) {
    if (!EndsWith(strCity, "町") && !EndsWith(strCity, "村")) return 0;
    size_t const nCounty = Behind(strCity, "郡");
    return nCounty != 0 ? nCounty : Behind(strCity, "島");
}

size_t BehindCity(std::string_view strCity) {
    return EndsWith(strCity, "区") ? Behind(strCity, "市") : 0;
}

} // namespace

std::string_view PrefForm(std::string_view strPref, uint32_t nForm) {
    if ((nForm & CITY_PREF) != 0) return strPref;
    if ((nForm & CITY_SHORT_PREF) == 0) return {};
    bool const bEnding = EndsWith(strPref, "都") || EndsWith(strPref, "府") || EndsWith(strPref, "県");
    return bEnding ? strPref.substr(0, strPref.size() - KANJI_BYTES) : std::string_view();
}

std::string_view CityForm(std::string_view strCity, uint32_t nForm) {
    if ((nForm & CITY_NO_COUNTY) != 0) {
        size_t const nCounty = BehindCounty(strCity);
        return nCounty == 0 ? std::string_view() : strCity.substr(nCounty);
    }
    size_t const nCity = (nForm & (CITY_WARD_ONLY | CITY_NO_WARD)) != 0 ? BehindCity(strCity) : 0;
    if ((nForm & CITY_WARD_ONLY) != 0) return nCity == 0 ? std::string_view() : strCity.substr(nCity);
    if ((nForm & CITY_NO_WARD) != 0) return strCity.substr(0, nCity);
    return strCity;
}

} // namespace qeadrs
