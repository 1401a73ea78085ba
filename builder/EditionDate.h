// EditionDate.h - the date of an edition: a number in files, a text for people.
#ifndef QEADRS_BUILDER_EDITIONDATE_H
#define QEADRS_BUILDER_EDITIONDATE_H

#include <cstdint>
#include <string>

namespace qe {

// Whether the number is a date, yyyymmdd, or with day 00 a month.
bool IsEdition(uint32_t nEdition);

// "2026-05" or "2026-05-29", "unknown" for 0.
std::string EditionText(uint32_t nEdition);
// The reverse of it; throws CBuildError for any other text.
uint32_t ReadEdition(std::string const& strEdition);
bool IsEdition(std::string const& strEdition);

} // namespace qe

#endif
