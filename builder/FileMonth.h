// FileMonth.h - the month that the name of a source file tells.
#ifndef QEADRS_BUILDER_FILEMONTH_H
#define QEADRS_BUILDER_FILEMONTH_H

#include <string>

namespace qe {

// "ken_all-2015-10.zip" is 201510; 0 when there is none.
unsigned MonthOfName(std::string const& strPath);

} // namespace qe

#endif
