// Edition.h - the towns of one edition of the town table, and which town of a later edition takes a town's place.
//
//   CEdition then, now;
//   then.Add(town); ...                                   // all towns of both
//   CSuccession next = FindSuccessor(*then.Find(key), then, now);
//   if (next.pTown != nullptr) use(next.pTown->key, next.nRule);
#ifndef QEADRS_BUILDER_EDITION_H
#define QEADRS_BUILDER_EDITION_H

#include "builder/Source.h"

#include <deque>
#include <map>
#include <string>
#include <tuple>
#include <unordered_map>
#include <vector>

namespace qe {

// A town by its names; an empty town is the nameless one, which stands for the whole city.
struct CTownKey {
    std::string strPref, strCity, strTown;
    bool operator<(CTownKey const& other) const {
        return std::tie(strPref, strCity, strTown) < std::tie(other.strPref, other.strCity, other.strTown);
    }
    // "静岡県/浜松市中区/助信町", for people.
    std::string Path() const { return strPref + "/" + strCity + "/" + strTown; }
};

struct CEditionTown {
    CTownKey key;
    std::string strPrefKana, strCityKana, strTownKana;
    std::string strCode;    // the town's own, else that of its first subdivision
    std::string strOldCode; // the old code beside it
    size_t nLine = 0;       // row that names it first
    bool bOwnCode = false;
};

class CEdition {
  public:
    // Another row of a town. The first code of its own takes the place of a subdivision's; all are found by WithCode.
    void Add(CEditionTown const& town);

    // All towns of a table: its rows read as the compiler reads them. Floors of buildings are left out, because a
    // building is no town; nBuildings counts their rows.
    void AddRows(std::vector<CTownRow> const& vRow, size_t& nBuildings);

    std::deque<CEditionTown> const& Towns() const { return m_vTown; } // in table order
    CEditionTown const* Find(CTownKey const& key) const;              // null when there is none
    bool HasCity(CTownKey const& key) const { return m_mapCity.count({key.strPref, key.strCity, ""}) != 0; }
    std::vector<CEditionTown const*> const& TownsOf(CTownKey const& city) const; // by prefecture and city
    std::vector<CEditionTown const*> const& WithCode(std::string const& strCode) const;
    std::vector<std::string> const& CodesOf(CTownKey const& city) const;

  private:
    std::deque<CEditionTown> m_vTown;
    std::map<CTownKey, CEditionTown*> m_mapTown;
    std::unordered_map<std::string, std::vector<CEditionTown const*>> m_mapCode;
    struct CCityOfEdition {
        std::vector<CEditionTown const*> vTown;
        std::vector<std::string> vCode; // each town's, repeats included
    };
    std::map<CTownKey, CCityOfEdition> m_mapCity; // by key without a town
};

// The rule that chose a successor, the first that finds one.
enum class ERule {
    None,        // nothing fits: the town is left out
    Code,        // the only town with the same code
    CodeName,    // of several with the same code the one of the same name
    CodeFolded,  // ... of the same name after folding
    CodeClosest, // ... with the fewest characters to change
    Name,        // no town has the code: the same name in the city that took over most of the old city's codes
    CityDefault, // else that city's default entry
};
char const* RuleName(ERule nRule);

struct CSuccession {
    CEditionTown const* pTown = nullptr;
    ERule nRule = ERule::None;
};
CSuccession FindSuccessor(CEditionTown const& town, CEdition const& then, CEdition const& next);

// A town's name for comparison over the years: folded as organisations' towns are, besides variants of one character
// (舘 and 館, 檜 and 桧), small kana as large ones, and without 区 and 町 unless nothing else is left.
std::string FoldOldName(std::string const& strName);

// Characters to insert, remove or replace to make one text of the other.
size_t EditDistance(std::string const& str, std::string const& strOther);

} // namespace qe

#endif
