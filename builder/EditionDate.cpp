// EditionDate.cpp - the date of an edition.
#include "builder/EditionDate.h"

#include "builder/Error.h"

#include <cstdio>

namespace qe {

bool IsEdition(uint32_t nEdition) {
    uint32_t const nYear = nEdition / 10000, nMonth = nEdition / 100 % 100, nDay = nEdition % 100;
    if (nYear < 1000 || nYear > 9999 || nMonth < 1 || nMonth > 12) return false;
    bool const bLeap = (nYear % 4 == 0 && nYear % 100 != 0) || nYear % 400 == 0;
    constexpr uint32_t DAYS[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return nDay <= DAYS[nMonth - 1] + (bLeap && nMonth == 2 ? 1 : 0);
}

std::string EditionText(uint32_t nEdition) {
    if (nEdition == 0) return "unknown";
    char szText[40];
    std::snprintf(szText, sizeof szText, "%04u-%02u-%02u", nEdition / 10000, nEdition / 100 % 100, nEdition % 100);
    if (nEdition % 100 == 0) szText[7] = '\0';
    return szText;
}

uint32_t ReadEdition(std::string const& strEdition) {
    unsigned nYear = 0, nMonth = 0, nDay = 0;
    int nRead = 0;
    bool const bMonth = std::sscanf(strEdition.c_str(), "%4u-%2u%n", &nYear, &nMonth, &nRead) == 2;
    auto const nLength = static_cast<int>(strEdition.size());
    bool const bDay = bMonth && nRead < nLength &&
                      std::sscanf(strEdition.c_str() + nRead, "-%2u%n", &nDay, &nRead) == 1 && nDay >= 1;
    uint32_t const nEdition = nYear * 10000 + nMonth * 100 + nDay;
    if (!bMonth || (nLength > 7 && !bDay) || !IsEdition(nEdition) || EditionText(nEdition) != strEdition)
        throw CBuildError("\"" + strEdition + "\" is no edition; write it as 2026-05 or 2026-05-29.");
    return nEdition;
}

bool IsEdition(std::string const& strEdition) try {
    return ReadEdition(strEdition) != 0;
} catch (CBuildError const&) {
    return false;
}

} // namespace qe
