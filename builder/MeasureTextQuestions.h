// MeasureTextQuestions.h - addresses as people write them, made of the official tables, and which answers are right.
//
//   CTextQuestions const questions = TextQuestions(tables);
//   for (CTextClass const& asked : questions.vClass)
//       for (CTextQuestion const& question : asked.vQuestion) Ask(question.strText);
//
// Both the texts and the right answers come from the tables alone. The same tables give the same questions anywhere.
#ifndef QEADRS_BUILDER_MEASURETEXTQUESTIONS_H
#define QEADRS_BUILDER_MEASURETEXTQUESTIONS_H

#include "builder/Edition.h"
#include "builder/Measure.h"

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace qe {

constexpr uint64_t TEXT_SEED = 20260529;

struct CTextQuestion {
    std::string strText;
    // Towns that the text means: the row's; another one, too, that the table spells just as the text does. None when the
    // table has no such town.
    std::vector<CTownKey> vTown;
    std::set<std::string> codes; // listed by the table for the place: the towns, or what is named below one
    CTownKey city;               // the row's, without a town
    // Towns that the table lacks, and the dictionary has: earlier editions' spellings, towns of organisations. One of
    // that city is no other one when its folded name is among these, or begins strWhole.
    std::set<std::string> names;
    std::string strWhole;  // an organisation's address behind its city, folded; "" for rows of the town table
    bool bSeveral = false; // the text is spelled like another place of the table
};

struct CTextClass {
    std::string strKey; // snake_case, for programs
    std::string strName;
    unsigned nWanted = 0; // share that has to be right, of 10,000
    std::vector<CTextQuestion> vQuestion;
    bool bCandidates = false; // right: the town, and one of its codes among the candidates; else: the code
    bool bExpected = false;   // the tables have so many rows for it that a class without a question is a fault
};

struct CTextQuestions {
    std::vector<CTextClass> vClass;
    std::set<CTownKey> towns; // all that the town table names

    // Whether an answer's town is another one than the text can mean.
    bool IsAnother(CTextQuestion const& question, CTownKey const& town) const;
};

// 10,000 rows as they are; a thousand of each change of the spelling; a thousand of two changes; every organisation's
// address, no class of them without a table of organisations. All of them from small tables.
CTextQuestions TextQuestions(CMeasuredTables const& tables);

} // namespace qe

#endif
