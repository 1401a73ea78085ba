// Prepared.h - the numbers in the small JSON files that prepare.sh has the compiler write.
#ifndef QEADRS_TESTS_NATIONAL_PREPARED_H
#define QEADRS_TESTS_NATIONAL_PREPARED_H

#include <cstddef>
#include <map>
#include <optional>
#include <string>

namespace national {

// A count of the compiler, from statistics.json; 0 for one that it did not come to.
size_t CompilersCount(std::string const& strName);

// One question of figures.json: how many were asked and answered rightly, and the misses by their causes.
struct CFigure {
    size_t nAsked = 0, nRight = 0;
    std::map<std::string, size_t> mapMisses;
};
// None when the report lacks it.
std::optional<CFigure> Figure(std::string const& strKey);

} // namespace national

#endif
