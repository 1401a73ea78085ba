// Superseded.cpp - the part of the compiler that places the towns of earlier editions.
#include "builder/Compiler.h"
#include "builder/CompilerCity.h"

#include <algorithm>
#include <set>

namespace qe {

void CCompiler::AddPrevious(std::vector<CTownRow> const& vRow, std::string const& strSource) {
    m_vPrevious.push_back({strSource, {}});
    size_t nBuildings = 0;
    m_vPrevious.back().edition.AddRows(vRow, nBuildings);
    m_statistics["previous_rows"] += vRow.size();
    m_statistics["previous_rows_of_floors_passed_over"] += nBuildings;
}

// Today's towns with the codes of all that lies in them, buildings included; towns that only organisations name are
// not the table's.
CEdition CCompiler::TodaysTowns() const {
    CEdition today;
    for (CPlace const* pPref : m_vPref) {
        if (pPref == nullptr) continue;
        for (CPlace const* pCity : pPref->vChild) {
            for (CPlace const* pTown : pCity->vChild) {
                CEditionTown town;
                town.key = {pPref->strName, pCity->strName, pTown->strName};
                ForEachWithCode(*pTown, [&](CPlace const& place) {
                    town.strCode = place.strCode;
                    town.strOldCode = place.strOldCode;
                    town.bOwnCode = &place == pTown;
                    today.Add(town);
                });
            }
        }
    }
    return today;
}

// The place whose entry takes over: in the town the one with the same code, else the town's own or its first.
CCompiler::CPlace const* CCompiler::FindHeir(CEditionTown const& town, std::string const& strCode) {
    CPlace const* pSameCode = nullptr;
    CPlace const* pFirst = nullptr;
    for (CPlace const* pTown : FindCity(town.key.strPref, town.key.strCity)->mapName[town.key.strTown]) {
        ForEachWithCode(*pTown, [&](CPlace const& place) {
            if (pFirst == nullptr) pFirst = &place;
            if (pSameCode == nullptr && place.strCode == strCode) pSameCode = &place;
        });
    }
    return pSameCode != nullptr ? pSameCode : pFirst;
}

// The city of an old town; one that is gone is made again, behind the cities of today.
CCompiler::CCity& CCompiler::OldCity(CEditionTown const& town) {
    if (CCity* const pCity = FindCity(town.key.strPref, town.key.strCity)) return *pCity;
    ++m_statistics["superseded_cities"];
    CTownRow row;
    row.strPref = town.key.strPref;
    row.strCity = town.key.strCity;
    row.strPrefKana = town.strPrefKana;
    row.strCityKana = town.strCityKana;
    return FindOrAddCity(row);
}

// Follows a town through the later editions to today's.
void CCompiler::PlaceSuperseded(CEdition const& today, size_t nEdition, CEditionTown const& town) {
    std::string strRules;
    CSuccession step = {&town, ERule::None};
    for (size_t n = nEdition; step.pTown != nullptr && n < m_vPrevious.size(); ++n) {
        CEdition const& next = n + 1 < m_vPrevious.size() ? m_vPrevious[n + 1].edition : today;
        if (CEditionTown const* const pSame = next.Find(step.pTown->key)) {
            step.pTown = pSame;
            continue;
        }
        step = FindSuccessor(*step.pTown, m_vPrevious[n].edition, next);
        strRules += (strRules.empty() ? "" : ", then ") + std::string(RuleName(step.nRule));
    }
    m_strSuccessions += town.key.Path() + '\t' + town.strCode + '\t' +
                        (step.pTown == nullptr ? "" : step.pTown->key.Path()) + '\t' + strRules + '\n';
    if (step.pTown == nullptr) {
        ++m_statistics["superseded_towns_left_out"];
        Remark("left out, no address of today takes the place of " + town.key.Path());
        return;
    }
    CCity& city = OldCity(town);
    // A town that only organisations name is there already: then the old entry is that town's.
    auto const pNamed = city.mapName.find(town.key.strTown);
    CPlace* const pTown = pNamed != city.mapName.end() ? pNamed->second.front()
                                                       : FindOrAddTown(city, town.key.strTown, town.strTownKana);
    SetCode(pTown, town.strCode, town.strOldCode);
    pTown->pSuccessor = FindHeir(*step.pTown, town.strCode);
    if (town.key.strTown.empty()) OfferDefault(city, pTown, true);
    ++m_statistics["superseded_towns"];
    std::string strRule = RuleName(step.nRule);
    std::replace(strRule.begin(), strRule.end(), ' ', '_');
    ++m_statistics["superseded_by_" + strRule];
}

// Newest edition first: a town that several of them have is taken as the newest writes it.
void CCompiler::PlaceSuperseded() {
    m_strSuccessions = "old_path\told_code\tsuccessor\trule\n";
    CEdition const today = TodaysTowns();
    std::set<CTownKey> placed;
    for (size_t n = m_vPrevious.size(); n-- > 0;) {
        for (CEditionTown const& town : m_vPrevious[n].edition.Towns()) {
            if (today.Find(town.key) != nullptr || placed.count(town.key) != 0) continue;
            // A city of today has its nameless town by today's table, or none.
            if (town.key.strTown.empty() && today.HasCity(town.key)) continue;
            placed.insert(town.key);
            BeginRow(m_vPrevious[n].strSource, town.nLine);
            PlaceSuperseded(today, n, town);
        }
    }
    // A city that is gone without a nameless town refers to its first town: no list of today's cities holds it then.
    size_t const nGone = static_cast<size_t>(m_statistics.Get("superseded_cities"));
    for (size_t n = m_vCity.size() - nGone; n < m_vCity.size(); ++n)
        OfferDefault(m_vCity[n], m_vCity[n].pPlace->vChild.front(), false);
}

} // namespace qe
