// FileMonth.cpp - six digits, or four and two with a hyphen, that are a month of 1900 to 2099.
#include "builder/FileMonth.h"

#include <filesystem>

namespace qe {

unsigned MonthOfName(std::string const& strPath) {
    std::string const strName = std::filesystem::path(strPath).filename().string();
    for (size_t nPos = 0; nPos < strName.size(); ++nPos) {
        std::string strMonth = strName.substr(nPos, 7);
        if (strMonth.size() == 7) strMonth.erase(strMonth[4] == '-' ? 4 : 6, 1);
        if (strMonth.size() != 6 || strMonth.find_first_not_of("0123456789") != std::string::npos) continue;
        auto const nMonth = static_cast<unsigned>(std::stoul(strMonth));
        if (nMonth / 100 >= 1900 && nMonth / 100 < 2100 && nMonth % 100 >= 1 && nMonth % 100 <= 12) return nMonth;
    }
    return 0;
}

} // namespace qe
