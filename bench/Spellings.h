// Spellings.h - addresses as people write them: towns of the table, each spelled in one of fourteen ways, and beside it
// as the dictionary has it.
//
//   std::vector<CSpelling> const vSpelling = MakeSpellings(questions);     // in the questions' random order
//
// The ways take turns; where a name has nothing to change in one of them, the next one has its turn.
#ifndef QEADRS_BENCH_SPELLINGS_H
#define QEADRS_BENCH_SPELLINGS_H

#include "bench/Questions.h"

#include <string>
#include <vector>

struct CSpelling {
    char const* pszWay;         // "as the table", "no prefecture", ...
    std::string strText;        // 〒100-0005 東京都千代田区丸の内１－２－３
    std::string strTable;       // 東京都千代田区丸の内１－２－３
    CQuestion const* pQuestion; // with the names and the code that are due
};

// REQUIRES: the questions outlive the answer.
std::vector<CSpelling> MakeSpellings(CQuestions const& questions);

#endif
