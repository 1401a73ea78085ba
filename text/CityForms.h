// CityForms.h - the ways in which people write the name of a city.
#ifndef QEADRS_TEXT_CITYFORMS_H
#define QEADRS_TEXT_CITYFORMS_H

#include <cstdint>
#include <string>
#include <string_view>

namespace qeadrs {

// The name of a prefecture as a form has it: whole, without its 都, 府 or 県, or not at all. "" also where it has no
// short form (北海道).
std::string_view PrefForm(std::string_view strPref, uint32_t nForm);

// The name of a city as a form (CITY_NO_COUNTY, CITY_WARD_ONLY, CITY_NO_WARD; 0: whole) has it; "" where it has none: a
// county ends in 郡, or 島, in front of the name of a town or village (余市郡余市町, 三宅島三宅村), and a ward stands
// behind its city (札幌市中央区).
std::string_view CityForm(std::string_view strCity, uint32_t nForm);

} // namespace qeadrs

#endif
