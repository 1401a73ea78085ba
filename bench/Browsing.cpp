// Browsing.cpp - the lists of a selection screen: prefectures, the cities of the prefecture that has most, the towns
// and the lines of the city that has most; beside SELECTs from a table of places by their parents.
//
// The library answers each level once and begins again at the prefectures, so each list is measured together with the
// PstAdrRPrf before it: that of all prefectures before the cities, and before the towns the one of a text that names
// the city. SQLite gets the parent only.
#include "bench/Benchmarks.h"
#include "bench/OpenApi.h"

#include <algorithm>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

namespace {

constexpr size_t TEXT_AT = 23; // of the text in the record of PstAdrRPrf

// A row of the table of places.
struct CPlaceRow {
    std::string strParent, strName, strCode, strOld;
};

// The tree as tables, and the parents that are asked for.
struct CPlaces {
    std::vector<CPlaceRow> vPlace; // of prefectures, cities, towns by parent "", prefecture, prefecture and city
    std::vector<CPlaceRow> vLine;  // of addresses by prefecture and city: name is the line; codes as above
    std::string strPref, strCity;  // those with the most children; the city with its prefecture
    unsigned short nPref = 0;      // position of the prefecture
};

std::string TextOf(char const* psz) {
    return psz == nullptr ? "" : psz;
}

std::string LineOf(tagADDR const& addr) {
    std::string strLine = TextOf(addr.pszTown);
    if (addr.pszTown == nullptr || addr.pszBlock == nullptr) return strLine;
    strLine += ' ' + std::string(addr.pszBlock);
    return addr.pszNote == nullptr ? strLine : strLine + ' ' + addr.pszNote;
}

// Adds what lies below the city at the position in the class's last list of cities.
size_t AddCity(CAddrDic& dic, size_t nCity, std::string const& strCity, CPlaces& places) {
    std::vector<tagADDR> vTown, vLine;
    dic.GetTownFromNo(nCity, vTown);
    dic.GetTownExFromNo(nCity, vLine);
    for (tagADDR const& town : vTown)
        places.vPlace.push_back({strCity, town.pszTown, TextOf(town.pszPostCode), TextOf(town.pszCodeExt)});
    for (tagADDR const& addr : vLine)
        places.vLine.push_back({strCity, LineOf(addr), TextOf(addr.pszPostCode), TextOf(addr.pszCodeExt)});
    return vTown.size();
}

CPlaces ReadPlaces(CAddrDic& dic) {
    CPlaces places;
    size_t nMostCities = 0, nMostTowns = 0;
    dic.SetSortType(SORT_DICTIONARY);
    std::vector<tagADDR> vPref;
    dic.GetPref(vPref);
    for (size_t nPref = 0; nPref < vPref.size(); ++nPref) {
        std::vector<tagADDR> vAgain, vCity;
        dic.GetPref(vAgain);
        dic.GetCityFromNo(nPref, vCity);
        std::string const strPref = TextOf(vPref[nPref].pszPref);
        places.vPlace.push_back({"", strPref, "", ""});
        if (vCity.size() > nMostCities) {
            nMostCities = vCity.size();
            places.strPref = strPref;
            places.nPref = static_cast<unsigned short>(nPref);
        }
        for (size_t nCity = 0; nCity < vCity.size(); ++nCity) {
            std::string const strCity = strPref + vCity[nCity].pszCity;
            places.vPlace.push_back({strPref, vCity[nCity].pszCity, "", ""});
            size_t const nTowns = AddCity(dic, nCity, strCity, places);
            if (nTowns > nMostTowns) places.strCity = strCity;
            nMostTowns = std::max(nMostTowns, nTowns);
            // The city's towns are fixed now; the next city's are asked for from the prefectures on.
            vAgain.clear();
            dic.GetPref(vAgain);
            std::vector<tagADDR> vRefill;
            dic.GetCityFromNo(nPref, vRefill);
        }
    }
    return places;
}

void FillRows(CSqlite& db, std::string const& strTable, std::vector<CPlaceRow> const& vRow) {
    db.Execute(("BEGIN; CREATE TABLE " + strTable +
                " (parent TEXT NOT NULL, name TEXT NOT NULL, code TEXT NOT NULL, old TEXT NOT NULL)")
                   .c_str());
    CStatement insert(db, ("INSERT INTO " + strTable + " VALUES (?1, ?2, ?3, ?4)").c_str());
    std::vector<char> vNothing;
    for (CPlaceRow const& row : vRow) {
        insert.Bind(1, row.strParent);
        insert.Bind(2, row.strName);
        insert.Bind(3, row.strCode);
        insert.Bind(4, row.strOld);
        insert.CopyRows(vNothing);
    }
    db.Execute(("CREATE INDEX " + strTable + "_parent ON " + strTable + " (parent); COMMIT").c_str());
}

// What is measured: one list of the library, and the SELECT of the same.
struct CList {
    char const* pszGroup;
    char const* pszFunction;
    std::string strText; // for PstAdrRPrf
    uint32_t (*pfnList)(unsigned short, HGLOBAL*);
    unsigned short nPosition;
    char const* pszSql;
    std::string strParent; // in the table
};

HGLOBAL AskPrefectures(std::string const& strText, unsigned short nSortType) {
    std::vector<char> vRecord(TEXT_AT + strText.size() + 1);
    std::memcpy(vRecord.data(), &nSortType, sizeof nSortType);
    strText.copy(&vRecord[TEXT_AT], strText.size());
    HGLOBAL h = nullptr;
    if (PstAdrRPrf(vRecord.data(), &h) != 0) throw std::runtime_error("PstAdrRPrf finds nothing for " + strText);
    return h;
}

HGLOBAL AskList(CList const& list, unsigned short nSortType) {
    HGLOBAL const hPrefs = AskPrefectures(list.strText, nSortType);
    if (list.pfnList == nullptr) return hPrefs;
    GlobalFree(hPrefs);
    HGLOBAL h = nullptr;
    list.pfnList(list.nPosition, &h);
    return h;
}

void AddList(CList const& list, CSqlite& db, bool bSort) {
    unsigned short const nSortType = bSort ? SORT_ADDR : SORT_DICTIONARY;
    std::string const strGroup = std::string(list.pszGroup) + (bSort ? "_sorted/" : "/");
    benchmark::RegisterBenchmark((strGroup + list.pszFunction).c_str(), [=](benchmark::State& state) {
        COpenApi const api;
        for (auto _ : state) {
            HGLOBAL const h = AskList(list, nSortType);
            benchmark::DoNotOptimize(h);
            GlobalFree(h);
        }
    });
    std::string const strSql = list.pszSql + std::string(bSort ? " ORDER BY name" : "");
    benchmark::RegisterBenchmark((strGroup + "sqlite_memory").c_str(), [=, &db](benchmark::State& state) {
        CStatement select(db, strSql.c_str());
        std::vector<char> vText;
        for (auto _ : state) {
            select.Bind(1, list.strParent);
            benchmark::DoNotOptimize(select.CopyRows(vText));
            benchmark::ClobberMemory();
        }
    });
}

// Both sides must list as much.
void CompareCounts(CList const& list, CSqlite& db, std::ostream& out) {
    COpenApi const api;
    CStatement select(db, list.pszSql);
    std::vector<char> vText;
    select.Bind(1, list.strParent);
    size_t const nRows = select.CopyRows(vText);
    size_t const nCount = CView(AskList(list, SORT_DICTIONARY)).Count();
    out << list.pszGroup << " of \"" << list.strParent << "\": " << nCount << '\n';
    if (nCount != nRows) throw std::runtime_error(std::string(list.pszGroup) + ": SQLite lists another number");
}

} // namespace

void RegisterBrowsing(CBench& bench, std::ostream& out) {
    static CPlaces const places = ReadPlaces(bench.dictionary.Dic());
    static CSqlite db(":memory:");
    FillRows(db, "place", places.vPlace);
    FillRows(db, "line", places.vLine);
    constexpr char SQL_NAMES[] = "SELECT name FROM place WHERE parent = ?1";
    constexpr char SQL_TOWNS[] = "SELECT name, code, old FROM place WHERE parent = ?1";
    constexpr char SQL_LINES[] = "SELECT old, code, name FROM line WHERE parent = ?1";
    static CList const vList[] = {
        {"browse_prefectures", "PstAdrRPrf", "", nullptr, 0, SQL_NAMES, ""},
        {"browse_cities", "PstAdrRCity", "", PstAdrRCity, places.nPref, SQL_NAMES, places.strPref},
        // The text fixes the city: it is the only one, at position 0.
        {"browse_towns", "PstAdrRTown", places.strCity, PstAdrRTown, 0, SQL_TOWNS, places.strCity},
        {"browse_lines", "PstAdrRTownForUI", places.strCity, PstAdrRTownForUI, 0, SQL_LINES, places.strCity},
    };
    for (CList const& list : vList) {
        CompareCounts(list, db, out);
        AddList(list, db, false);
        if (list.pfnList != nullptr) AddList(list, db, true); // prefectures have one order only
    }
}
