// ReportFigures.h - what the tests of the compiler's report expect of its figures.
#ifndef QEADRS_TESTS_NATIONAL_REPORTFIGURES_H
#define QEADRS_TESTS_NATIONAL_REPORTFIGURES_H

#include "Lookup.h"
#include "Prepared.h"

#include <gtest/gtest.h>

#include <string>

namespace national {

inline CFigure FigureOf(std::string const& strKey) {
    std::optional<CFigure> const figure = Figure(strKey);
    EXPECT_TRUE(figure) << "figures.json has no " << strKey;
    PrintFigure((strKey + " asked").c_str(), figure ? figure->nAsked : 0);
    PrintFigure((strKey + " right").c_str(), figure ? figure->nRight : 0);
    return figure.value_or(CFigure());
}

inline void ExpectAllRight(std::string const& strKey, size_t nAskedAtLeast) {
    CFigure const figure = FigureOf(strKey);
    EXPECT_GE(figure.nAsked, nAskedAtLeast) << strKey;
    EXPECT_EQ(figure.nRight, figure.nAsked) << strKey;
}

} // namespace national

#endif
