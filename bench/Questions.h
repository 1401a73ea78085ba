// Questions.h - addresses to ask for, each with its names one by one and with the answer that is due.
//
//   CPlainTree const tree(dic);                             // the three levels as lists
//   CQuestions const questions = MakeQuestions(dic, tree, 100000);   // shuffled with BENCH_SEED
//   FillNames(db, tree, dic);                               // tables town and office, indexed by their names
//
// The library gets the text, SQLite the names: what a caller has who need not take a text apart.
#ifndef QEADRS_BENCH_QUESTIONS_H
#define QEADRS_BENCH_QUESTIONS_H

#include "bench/SqliteTable.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

// A prefecture, a city or a town. Positions are those in the list of the level above or below.
struct CPlainNode {
    std::string_view strName;
    size_t nParent;
    size_t nFirst; // children: [nFirst, nFirst + nCount)
    size_t nCount;
    std::string_view strCode, strOld; // "" without an entry
    std::string strLatest[3];         // of a town with an entry: the names that hold today
    bool bCurrent;                    // has an entry, and that is no superseded one
};

// The dictionary's upper three levels in node order, and the separation of a text in its plainest form.
class CPlainTree {
  public:
    // REQUIRES: a dictionary of our compiler, where each level's nodes stand together.
    explicit CPlainTree(CAddrDic& dic);

    std::vector<CPlainNode> const& Prefs() const { return m_vLevel[0]; }
    std::vector<CPlainNode> const& Cities() const { return m_vLevel[1]; }
    std::vector<CPlainNode> const& Towns() const { return m_vLevel[2]; }
    CPlainNode const& CityOf(CPlainNode const& town) const { return m_vLevel[1][town.nParent]; }
    CPlainNode const& PrefOf(CPlainNode const& town) const { return m_vLevel[0][CityOf(town).nParent]; }

    // The town that a text names: the first prefecture that begins it, the longest city, the first town, each below
    // the one before or, when that is missing, in the whole country. Null when there is none.
    CPlainNode const* Find(std::string_view strText) const;

  private:
    std::vector<CPlainNode> m_vLevel[3];
};

struct CQuestion {
    std::string strText;                    // 東京都千代田区丸の内
    std::string strOffice;                  // "" without an organisation
    std::array<std::string, 4> vName;       // prefecture, city, town, organisation as the tables have them
    std::string_view strCode, strOld;       // the answer
    std::array<std::string_view, 3> strNow; // the names that hold today
};

struct CQuestions {
    std::vector<CQuestion> vFull;    // current towns, with their prefecture
    std::vector<CQuestion> vBare;    // the same towns without it
    std::vector<CQuestion> vNothing; // texts that begin with no name at all
    std::vector<CQuestion> vOffice;  // organisations, each at its address
    std::vector<CQuestion> vGone;    // towns of earlier editions; none in a dictionary without them
    std::vector<CQuestion> vCity;    // a prefecture and a city, no more
    std::vector<CQuestion> vFront;   // the first two characters of a city's name, where they begin no prefecture's
    std::vector<CQuestion> vHidden;  // towns met whose name an earlier town's begins: the answer is the earlier one's
};

// At most nMost of vFull, and fewer of the others.
CQuestions MakeQuestions(CAddrDic& dic, CPlainTree const& tree, size_t nMost);

// Table town (pref, city, town, code, old, and the names that hold today) with indexes over its three names and over
// city and town; table office (pref, city, town, office, code, old) with one over its four names.
void FillNames(CSqlite& db, CPlainTree const& tree, CAddrDic& dic);

#endif
