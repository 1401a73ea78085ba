// Measure.h - a dictionary measured against the tables that it was compiled from: how many addresses are found as a
// user expects, and which are not.
//
//   for (CFigure const& figure : Measure(dictionary, tables)) puts(figure.strQuestion.c_str());
#ifndef QEADRS_BUILDER_MEASURE_H
#define QEADRS_BUILDER_MEASURE_H

#include "builder/DictionaryFile.h"
#include "builder/Source.h"

#include <map>
#include <string>
#include <vector>

namespace qe {

struct CMeasuredTables {
    std::vector<CTownRow> vTown;
    std::vector<COfficeRow> vOffice;
    struct CPrevious {
        std::string strName; // of the edition, for the figures
        std::vector<CTownRow> vTown;
    };
    std::vector<CPrevious> vPrevious;
};

constexpr char HOUSE_NUMBER[] = "１－２－３"; // behind each town that is asked for

struct CMiss {
    std::string strText;  // what was asked
    std::string strCause; // why it was not answered as wanted, one of a few texts
    std::string strFound; // what came instead
};

struct CFigure {
    std::string strKey; // snake_case, for programs
    std::string strQuestion;
    size_t nAsked = 0;
    std::vector<CMiss> vMiss;

    // How many misses each cause has.
    std::map<std::string, size_t> Causes() const {
        std::map<std::string, size_t> mapCause;
        for (CMiss const& miss : vMiss) ++mapCause[miss.strCause];
        return mapCause;
    }
    size_t Right() const { return nAsked - vMiss.size(); }
    double Percent() const {
        return nAsked == 0 ? 100 : 100.0 * static_cast<double>(Right()) / static_cast<double>(nAsked);
    }
};

// Asks the dictionary for every row of the tables. The questions' order is fixed.
std::vector<CFigure> Measure(CDictionaryFile const& file, CMeasuredTables const& tables);

} // namespace qe

#endif
