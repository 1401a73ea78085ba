// MeasureText.h - how well a dictionary's addresses are read when people write them: the library's answers to seeded
// questions from the tables, held against what has to be reached.
//
//   for (CTextFigure const& figure : MeasureText(dictionary, tables))
//       if (!figure.IsReached()) puts(figure.strQuestion.c_str());
#ifndef QEADRS_BUILDER_MEASURETEXT_H
#define QEADRS_BUILDER_MEASURETEXT_H

#include "builder/DictionaryFile.h"
#include "builder/Measure.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qe {

struct CTextFigure : CFigure {
    unsigned nWanted = 0;   // share that has to be right, of 10,000
    size_t nSeveral = 0;    // questions that the table itself answers in several ways: each is right
    size_t nUnknown = 0;    // questions for a town that the table lacks: counted as misses
    size_t nSureWrong = 0;  // answered as the only place that the text can mean, and that is another town
    bool bExpected = false; // the tables have what is asked for: no question at all is a fault of the measurement

    bool IsReached() const {
        return uint64_t{Right()} * 10000 >= uint64_t{nAsked} * nWanted && (nAsked != 0 || !bExpected);
    }
};

// The figures of all classes of questions in their order; at last that of all sure answers, whose misses are the wrong
// ones.
std::vector<CTextFigure> MeasureText(CDictionaryFile const& file, CMeasuredTables const& tables);

} // namespace qe

#endif
