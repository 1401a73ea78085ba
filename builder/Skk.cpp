// Skk.cpp - postal dictionaries of an input method as town and organisation tables.
//
// An entry is "1000001 /東京都千代田区千代田/", with several addresses between further slashes. The address is one
// text: where the city ends is learnt from the file itself, since the first code of a municipality ends in 00 and
// belongs to the whole of it. A municipality with one code only (利島村) has no such entry; its address is what no
// known city begins.
#include "builder/Skk.h"

#include "builder/Error.h"
#include "builder/Text.h"
#include "builder/TownText.h"
#include "dic/AddrDic.h"

#include <algorithm>
#include <map>
#include <unordered_set>

#include <unistd.h>

namespace qe {

namespace {

struct CEntry {
    size_t nLine;
    std::string strCode;
    std::string strText;
};

// Month names as the files' own time stamps write them.
constexpr char const* MONTHS[12] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                    "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// ";; Time-stamp: <04 May 2022>" as 20220504, 0 for any other line.
uint32_t ReadTimeStamp(std::string_view strLine) {
    constexpr std::string_view HEAD = ";; Time-stamp: <";
    if (!BeginsWith(strLine, HEAD) || strLine.size() < HEAD.size() + 11) return 0;
    std::string const strDate(strLine.substr(HEAD.size(), 11));
    for (uint32_t nMonth = 0; nMonth < 12; ++nMonth)
        if (strDate.compare(3, 3, MONTHS[nMonth]) == 0)
            return static_cast<uint32_t>(std::strtoul(strDate.c_str() + 7, nullptr, 10)) * 10000 +
                   (nMonth + 1) * 100 + static_cast<uint32_t>(std::strtoul(strDate.c_str(), nullptr, 10));
    return 0;
}

std::vector<CEntry> ReadEntries(CSource const& source, uint32_t* pnEdition) {
    std::vector<CEntry> vEntry;
    CLineReader reader(source);
    while (reader.Next()) {
        std::string_view const strLine = reader.Line();
        if (strLine.empty() || strLine[0] == ';') {
            if (uint32_t const nDate = ReadTimeStamp(strLine)) *pnEdition = nDate;
            continue;
        }
        if (strLine.size() < 10 || strLine.substr(7, 2) != " /" || !EndsWith(strLine, "/") ||
            strLine.find_first_not_of("0123456789") != 7)
            reader.Fail("expected \"1234567 /address/\"; is this a postal dictionary?");
        std::string_view strRest = strLine.substr(9);
        while (!strRest.empty()) {
            size_t const nSlash = strRest.find('/');
            std::string_view const strText = strRest.substr(0, nSlash);
            if (!strText.empty())
                vEntry.push_back({reader.Number(), std::string(strLine.substr(0, 7)), std::string(strText)});
            strRest.remove_prefix(nSlash + 1);
        }
    }
    return vEntry;
}

// The names of all municipalities by prefecture, and the cut of an address by them.
class CCityNames {
  public:
    explicit CCityNames(std::vector<CEntry> const& vEntry) {
        for (CEntry const& entry : vEntry) {
            std::string const strPref = Pref(entry.strText);
            std::string const strRest = entry.strText.substr(strPref.size());
            if (!strPref.empty() && EndsWith(entry.strCode, "00") && IsCityLike(strRest)) Add(strPref, strRest);
        }
        for (CEntry const& entry : vEntry) {
            std::string strPref, strCity, strTown;
            if (Split(entry.strText, strPref, strCity, strTown) || strPref.empty()) continue;
            if (IsCityLike(strTown)) Add(strPref, strTown);
        }
    }

    // Cuts an address at its prefecture and at the longest city known there; false (with the rest in strTown) when
    // one of them is missing.
    bool Split(std::string const& strText, std::string& strPref, std::string& strCity, std::string& strTown) const {
        strPref = Pref(strText);
        strTown = strText.substr(strPref.size());
        auto const pCities = m_mapCity.find(strPref);
        if (strPref.empty() || pCities == m_mapCity.end()) return false;
        for (size_t nLength = 0; nLength < std::min(strTown.size(), m_nLongest);) {
            nLength += CharacterSize(std::string_view(strTown).substr(nLength));
            if (pCities->second.count(strTown.substr(0, nLength)) != 0) strCity = strTown.substr(0, nLength);
        }
        strTown.erase(0, strCity.size());
        return !strCity.empty();
    }

  private:
    static std::string Pref(std::string const& strText) {
        for (char const* pszRow : pref_order)
            if (BeginsWith(strText, pszRow + PREF_ORDER_NAME)) return pszRow + PREF_ORDER_NAME;
        return "";
    }
    static bool IsCityLike(std::string const& str) {
        return EndsWith(str, "市") || EndsWith(str, "区") || EndsWith(str, "町") || EndsWith(str, "村");
    }

    void Add(std::string const& strPref, std::string const& strCity) {
        m_mapCity[strPref].insert(strCity);
        m_nLongest = std::max(m_nLongest, strCity.size());
    }

    std::map<std::string, std::unordered_set<std::string>> m_mapCity;
    size_t m_nLongest = 0; // bytes of the longest name
};

// The text in front of a floor ("霞が関ビル１階", "…地階"), empty when it does not end in one.
std::string_view BeforeFloor(std::string_view str) {
    if (EndsWith(str, "地階")) return str.substr(0, str.size() - std::string_view("地階").size());
    if (!EndsWith(str, "階")) return {};
    std::string_view strHead = str.substr(0, str.size() - std::string_view("階").size());
    size_t const nBefore = strHead.size();
    while (strHead.size() >= 3 && BeginsWithDigit(strHead.substr(strHead.size() - 3))) strHead.remove_suffix(3);
    return strHead.size() < nBefore ? strHead : std::string_view();
}

// Writes the town texts as the official table does: floors and notes in parentheses, a building's own entry as its
// unknown floor.
void RestoreParentheses(std::vector<CTownRow>& vRow) {
    std::unordered_set<std::string> vBuilding; // city and building
    auto const InCity = [](CTownRow const& row, std::string_view str) {
        return row.strPref + row.strCity + '\n' + std::string(str);
    };
    for (CTownRow& row : vRow) {
        // "…高層棟）（１階": a parenthesis that has lost its ends.
        if (size_t const nStray = row.strTown.find("）（"); nStray != std::string::npos)
            row.strTown.erase(nStray, std::string_view("）（").size());
        std::string_view const strBuilding = BeforeFloor(row.strTown);
        if (!strBuilding.empty()) vBuilding.insert(InCity(row, strBuilding));
    }
    constexpr std::string_view COMES = "がくる場合";
    for (CTownRow& row : vRow) {
        std::string_view const strBuilding = BeforeFloor(row.strTown);
        size_t const nComes = row.strTown.find(COMES);
        if (!strBuilding.empty())
            row.strTown = std::string(strBuilding) + "（" + row.strTown.substr(strBuilding.size()) + "）";
        else if (vBuilding.count(InCity(row, row.strTown)) != 0)
            row.strTown += "（地階・階層不明）";
        else if (nComes != std::string::npos && nComes + COMES.size() < row.strTown.size())
            row.strTown = row.strTown.substr(0, nComes + COMES.size()) + "（" +
                          row.strTown.substr(nComes + COMES.size()) + "）";
    }
}

// The front of an address below its city that is a town: the longest one spelled as in the town table, else the
// longest that is equal to a town after folding. Empty when there is none.
class CTownNames {
  public:
    explicit CTownNames(std::vector<CTownRow> const& vRow) {
        for (CTownRow const& row : vRow) {
            if (row.strTown.empty()) continue;
            m_vTown.insert(Key(row.strPref + row.strCity, row.strTown));
            m_vFolded.insert(Key(row.strPref + row.strCity, FoldTownName(row.strTown)));
        }
    }
    std::string Find(std::string const& strCity, std::string const& strText) const {
        std::string strTown, strFolded;
        for (size_t nLength = 0; nLength < std::min(strText.size(), NAME_LIMIT);) {
            nLength += CharacterSize(std::string_view(strText).substr(nLength));
            std::string const strHead = strText.substr(0, nLength);
            if (m_vTown.count(Key(strCity, strHead)) != 0) strTown = strHead;
            if (strTown.empty() && !CutsNumber(strText, nLength) &&
                m_vFolded.count(Key(strCity, FoldTownName(strHead))) != 0)
                strFolded = strHead;
        }
        return strTown.empty() ? strFolded : strTown;
    }

  private:
    static std::string Key(std::string const& strCity, std::string const& strTown) {
        return strCity + '\n' + strTown;
    }
    // Folding takes digits together: the head of a number is not a number of its own.
    static bool CutsNumber(std::string const& str, size_t nPos) {
        return BeginsWithDigit(std::string_view(str).substr(nPos < 3 ? 0 : nPos - 3)) &&
               BeginsWithDigit(std::string_view(str).substr(nPos));
    }

    std::unordered_set<std::string> m_vTown;
    std::unordered_set<std::string> m_vFolded;
};

void LeaveOut(CSkkTables& tables, std::string const& strSource, CEntry const& entry) {
    tables.vLeftOut.push_back(strSource + ":" + std::to_string(entry.nLine) +
                              ": left out, no known prefecture and city in it: " + entry.strText);
}

// "name @ address"
void ReadOffices(std::vector<CEntry> const& vEntry, CCityNames const& cities, CSkkTables& tables) {
    CTownNames const towns(tables.vTown);
    for (CEntry const& entry : vEntry) {
        COfficeRow row;
        row.nLine = entry.nLine;
        row.strCode = entry.strCode;
        size_t const nAt = entry.strText.find(" @ ");
        std::string strRest;
        if (nAt == std::string::npos ||
            !cities.Split(entry.strText.substr(nAt + 3), row.strPref, row.strCity, strRest)) {
            LeaveOut(tables, tables.strOfficeSource, entry);
            continue;
        }
        row.strName = entry.strText.substr(0, nAt);
        row.strTown = towns.Find(row.strPref + row.strCity, strRest);
        row.strRest = strRest.substr(row.strTown.size());
        tables.vOffice.push_back(std::move(row));
    }
}

} // namespace

CSkkTables ReadSkkTables(std::string const& strFolder) {
    CSkkTables tables;
    CSource const towns = ReadEucSource(strFolder + "/SKK-JISYO.zipcode");
    tables.strTownSource = towns.Name();
    std::vector<CEntry> const vEntry = ReadEntries(towns, &tables.nEdition);
    CCityNames const cities(vEntry);
    for (CEntry const& entry : vEntry) {
        CTownRow row;
        row.nLine = entry.nLine;
        row.strCode = entry.strCode;
        if (!cities.Split(entry.strText, row.strPref, row.strCity, row.strTown)) {
            LeaveOut(tables, tables.strTownSource, entry);
            continue;
        }
        tables.vTown.push_back(std::move(row));
    }
    std::string const strOfficePath = strFolder + "/SKK-JISYO.office.zipcode";
    if (access(strOfficePath.c_str(), R_OK) == 0) {
        CSource const offices = ReadEucSource(strOfficePath);
        tables.strOfficeSource = offices.Name();
        ReadOffices(ReadEntries(offices, &tables.nEdition), cities, tables);
    }
    RestoreParentheses(tables.vTown);
    return tables;
}

} // namespace qe
