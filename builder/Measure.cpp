// Measure.cpp - every row of the tables asked for through the library's public class.
#include "builder/Measure.h"

#include "builder/Edition.h"
#include "builder/Text.h"
#include "builder/TownText.h"
#include "dic/AddrDic.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace qe {

namespace {

std::string Text(char const* psz) {
    return psz == nullptr ? "" : psz;
}

std::string BeforeParenthesis(std::string const& str) {
    return str.substr(0, str.find("（"));
}

// "東京都|千代田区|丸の内|rest": what a separation found.
std::string Found(tagADDR const& addr) {
    return Text(addr.pszPref) + "|" + Text(addr.pszCity) + "|" + Text(addr.pszTown) + "|" + Text(addr.pszArea) + " " +
           Text(addr.pszPostCode);
}

// What is known of today's towns from the table alone.
struct CTownFacts {
    std::set<std::string> codes; // all that the table lists for the town
    bool bDefault = false;       // one of them is the town's own
};

// A row whose town has a name.
struct CTownQuestion {
    CTownRow const* pRow;
    CTownKey town;       // that the row stands for
    std::string strTail; // of the column's text, behind the town's name and in front of the parenthesis
};

class CMeasurement {
  public:
    CMeasurement(CDictionaryFile const& file, CMeasuredTables const& tables) : m_tables(tables) {
        m_dic.SetDictionary(file.Bytes().data());
        ReadTowns();
    }

    std::vector<CFigure> Measure() {
        MeasureTowns();
        MeasureOffices();
        for (CMeasuredTables::CPrevious const& previous : m_tables.vPrevious) MeasureGoneTowns(previous);
        MeasureCities();
        return std::move(m_vFigure);
    }

  private:
    size_t NewFigure(std::string strKey, std::string strQuestion) {
        m_vFigure.push_back({std::move(strKey), std::move(strQuestion), 0, {}});
        return m_vFigure.size() - 1;
    }

    // Counts an answer; a wrong one is kept.
    void Count(size_t nFigure, bool bRight, std::string const& strText, std::string const& strCause,
               std::string const& strFound) {
        ++m_vFigure[nFigure].nAsked;
        if (!bRight) m_vFigure[nFigure].vMiss.push_back({strText, strCause, strFound});
    }

    // --- the table's own facts ---

    void Learn(CTownKey const& town, std::string const& strCode, bool bOwn) {
        CTownFacts& facts = m_mapTown[town];
        facts.codes.insert(strCode);
        facts.bDefault = facts.bDefault || bOwn;
    }

    void ReadTowns() {
        std::vector<CTownRow const*> vFloor;
        std::map<std::string, std::set<std::string>> mapPrefs; // by city name
        for (CTownRow const& row : m_tables.vTown) {
            mapPrefs[row.strCity].insert(row.strPref);
            m_city.insert({row.strPref, row.strCity});
            m_text.insert({row.strPref, row.strCity, BeforeParenthesis(row.strTown)});
            CTownText const text = ReadTownText(row.strCity, row.strTown, row.strTownKana);
            if (text.nKind == ETownKind::Floor) {
                vFloor.push_back(&row);
                continue;
            }
            CTownKey const town = {row.strPref, row.strCity,
                                   text.nKind == ETownKind::Nameless ? "" : text.town.strName};
            Learn(town, row.strCode, text.nKind != ETownKind::Areas || text.bDefault);
            if (!town.strTown.empty())
                m_vQuestion.push_back({&row, town, BeforeParenthesis(row.strTown).substr(town.strTown.size())});
        }
        for (CTownRow const* pRow : vFloor) ReadFloor(*pRow);
        for (auto const& [strCity, prefs] : mapPrefs)
            if (prefs.size() == 1) m_uniqueCity.insert(strCity);
    }

    // A floor belongs to the longest town whose name begins the building's.
    void ReadFloor(CTownRow const& row) {
        std::string const strText = BeforeParenthesis(row.strTown);
        CTownKey town = {row.strPref, row.strCity, strText};
        while (!town.strTown.empty()) {
            town.strTown.pop_back();
            if (m_mapTown.count(town) != 0) break;
        }
        Learn(town, row.strCode, false);
        m_vQuestion.push_back({&row, town, strText.substr(town.strTown.size())});
    }

    // --- towns ---

    bool IsFound(CTownQuestion const& question, tagADDR const& addr, std::string const& strTail, bool bPref) const {
        return (!bPref || Text(addr.pszPref) == question.town.strPref) &&
               Text(addr.pszCity) == question.town.strCity && Text(addr.pszTown) == question.town.strTown &&
               Text(addr.pszArea) == strTail;
    }

    void MeasureTowns() {
        size_t const nLevels = NewFigure("town_levels", "prefecture, city and town of every row, found exactly");
        size_t const nCode = NewFigure("town_code", "the code is one that the table lists for the town; where the "
                                                    "town has several and none of its own, the city's");
        size_t const nNoPref = NewFigure("town_without_prefecture",
                                         "the same without the prefecture, where the city's name is the only one");
        size_t const nNumber = NewFigure("town_with_house_number", "the same followed by a house number, left over");
        for (CTownQuestion const& question : m_vQuestion) {
            std::string const strBelow = question.town.strCity + question.town.strTown + question.strTail;
            std::string const strWhole = question.town.strPref + strBelow;
            tagADDR addr(0);
            m_dic.DivideAddr(strWhole.c_str(), &addr);
            Count(nLevels, IsFound(question, addr, question.strTail, true), strWhole, "other levels", Found(addr));
            CountCode(nCode, question, addr, strWhole);
            tagADDR numbered(0);
            std::string const strNumbered = strWhole + HOUSE_NUMBER;
            m_dic.DivideAddr(strNumbered.c_str(), &numbered);
            Count(nNumber, IsFound(question, numbered, question.strTail + HOUSE_NUMBER, true), strNumbered,
                  "other levels", Found(numbered));
            if (m_uniqueCity.count(question.town.strCity) == 0) continue;
            tagADDR bare(0);
            m_dic.DivideAddr(strBelow.c_str(), &bare);
            Count(nNoPref, IsFound(question, bare, question.strTail, false) && bare.pTownNode == addr.pTownNode,
                  strBelow, "other levels", Found(bare));
        }
    }

    void CountCode(size_t nFigure, CTownQuestion const& question, tagADDR const& addr, std::string const& strText) {
        CTownFacts const& town = m_mapTown.at(question.town);
        std::string const strCode = Text(addr.pszPostCode);
        bool const bListed = town.codes.count(strCode) != 0;
        auto const pCity = m_mapTown.find({question.town.strPref, question.town.strCity, ""});
        bool const bCitys = pCity != m_mapTown.end() && pCity->second.codes.count(strCode) != 0;
        bool const bCitysWillDo = !town.bDefault && town.codes.size() > 1;
        Count(nFigure, bListed || (bCitys && bCitysWillDo), strText, "another code", Found(addr));
    }

    // --- organisations ---

    // The entry that the lookup by code gives for the row: of several the one with its name, else the first.
    bool FindOffice(COfficeRow const& row, tagADDR& office) {
        std::vector<tagADDR> vAddr;
        m_dic.GetAddrFromPostCode7(row.strCode.c_str(), vAddr);
        bool bFound = false;
        for (tagADDR const& addr : vAddr) {
            if (addr.pszOffice == nullptr || (bFound && !BeginsWith(row.strName, addr.pszOffice))) continue;
            office = addr;
            bFound = true;
        }
        return bFound;
    }

    std::string AskOffice(std::string const& strAddress, std::string strName, tagADDR& addr) {
        m_dic.GetPostCodeFromAddr(strAddress.c_str(), strName.data(), addr);
        return Text(addr.pszPostCode);
    }

    std::string CauseOfMiss(tagADDR const& office, tagADDR const& answer, std::string strName) {
        if (Text(office.pszTown).empty()) return "the organisation has no town";
        if (answer.pszTown == nullptr) return "the address names no town as the dictionary spells it";
        if (Text(answer.pszTown) != Text(office.pszTown)) return "the address names another town";
        if (m_dic.SearchInc(strName.data()) < 0) return "the name is cut in the dictionary";
        return "another one of that name stands in the town";
    }

    void MeasureOffices() {
        size_t const nShown =
            NewFigure("office_at_its_address", "address as the dictionary has it + name without blanks, own code");
        size_t const nSpelled =
            NewFigure("office_at_spelled_address", "address as the organisation table spells it, own code");
        for (COfficeRow const& row : m_tables.vOffice) {
            tagADDR office(0);
            if (!FindOffice(row, office)) {
                Count(nShown, false, row.strCode + " " + row.strName, "not in the dictionary", "");
                continue;
            }
            std::string const strName = WithoutBlanks(row.strName);
            std::string const strShown =
                Text(office.pszPref) + Text(office.pszCity) + Text(office.pszTown) + Text(office.pszArea);
            std::string const strSpelled = row.strPref + row.strCity + row.strTown + row.strRest;
            for (auto const& [nFigure, strAddress] : {std::pair(nShown, strShown), std::pair(nSpelled, strSpelled)}) {
                tagADDR addr(0);
                bool const bRight = AskOffice(strAddress, strName, addr) == row.strCode;
                Count(nFigure, bRight,
                      std::string(row.strCode).append(" ").append(strAddress).append(" ").append(strName),
                      bRight ? "" : CauseOfMiss(office, addr, strName), Found(addr));
            }
        }
    }

    // --- earlier editions ---

    void MeasureGoneTowns(CMeasuredTables::CPrevious const& previous) {
        size_t const nTowns = NewFigure("gone_towns_" + previous.strName,
                                        "towns of " + previous.strName + " that are gone: renewed to one of today");
        size_t const nCities =
            NewFigure("gone_cities_towns_" + previous.strName, "of these, the towns of cities that are gone");
        std::set<CTownKey> asked;
        for (CTownRow const& row : previous.vTown) {
            CTownText const text = ReadTownText(row.strCity, row.strTown, row.strTownKana);
            std::string const& strTown = text.town.strName;
            if (text.nKind == ETownKind::Nameless || text.nKind == ETownKind::Floor || strTown.empty()) continue;
            CTownKey const town = {row.strPref, row.strCity, BeforeParenthesis(row.strTown)};
            bool const bToday = m_text.count(town) != 0 || m_mapTown.count({row.strPref, row.strCity, strTown}) != 0;
            if (bToday || !asked.insert(town).second) continue;
            std::string const strText = town.strPref + town.strCity + town.strTown;
            tagADDR addr(0);
            bool const bRight = m_dic.GetLatestAddr(strText.c_str(), addr) == 1 &&
                                m_mapTown.count({Text(addr.pszPref), Text(addr.pszCity), Text(addr.pszTown)}) != 0;
            Count(nTowns, bRight, row.strCode + " " + strText, "not renewed", Found(addr));
            if (m_city.count({town.strPref, town.strCity}) == 0)
                Count(nCities, bRight, row.strCode + " " + strText, "not renewed", Found(addr));
        }
    }

    // --- cities ---

    // The nodes from the city down to a node; in the order of these paths a walk down the tree meets them.
    using CPath = std::vector<unsigned long>;
    static constexpr size_t LONGEST_PATH = 32; // only a damaged file has longer ones: eight levels need seven steps

    // Every current entry below each city by the paths of its nodes; towns that refer to an area's entry besides.
    std::map<CPath, tagADDRINFO const*> CurrentPlaces() const {
        std::map<CPath, tagADDRINFO const*> mapPlace;
        auto const Add = [&](unsigned long nNode, tagADDRINFO const* pInfo) {
            CPath path;
            while (path.size() < LONGEST_PATH) {
                tagADDRNODE const* const pNode = m_dic.GetAddrNode(nNode);
                if (pNode == nullptr) return;
                path.insert(path.begin(), nNode);
                if (pNode->nLevel == LEVEL_CITY) {
                    mapPlace.emplace(path, pInfo);
                    return;
                }
                nNode = pNode->nParent;
            }
        };
        for (unsigned long n = 0; tagADDRINFO const* pInfo = m_dic.GetAddrInfo(n); ++n)
            if ((pInfo->nNode & ADDRINFO_SUPERSEDED) == 0) Add(pInfo->nNode, pInfo);
        for (unsigned long n = 0; tagADDRNODE const* pNode = m_dic.GetAddrNode(n); ++n) {
            tagADDRINFO const* const pInfo = m_dic.GetAddrInfo(pNode->nInfo);
            bool const bRefers = pInfo != nullptr && pInfo->nNode != n && (pInfo->nNode & ADDRINFO_SUPERSEDED) == 0;
            if (pNode->nLevel == LEVEL_TOWN && bRefers) Add(n, pInfo);
        }
        return mapPlace;
    }

    // The name of the record's deepest level, by the level of the node that it stands for.
    static char const* DeepestName(tagADDR const& addr, uint8_t nLevel) {
        switch (nLevel) {
        case LEVEL_TOWN:
            return addr.pszTown;
        case LEVEL_AREA:
            return addr.pszArea;
        case LEVEL_BLOCK:
            return addr.pszBlock;
        case LEVEL_NOTE:
            return addr.pszNote;
        default:
            return addr.pszOffice;
        }
    }

    void MeasureCities() {
        size_t const nFigure =
            NewFigure("city_parts", "every city as a partial address: exactly the entries below it");
        std::map<unsigned long, std::vector<std::pair<unsigned long, tagADDRINFO const*>>> mapCity;
        for (auto const& [path, pInfo] : CurrentPlaces()) mapCity[path.front()].emplace_back(path.back(), pInfo);
        for (auto const& [nCity, vPlace] : mapCity) {
            tagADDR place(0);
            m_dic.GetAddr(vPlace.front().second, &place);
            std::string const strText = Text(place.pszPref) + Text(place.pszCity);
            std::vector<tagADDR> vAddr;
            m_dic.GetAddrFromAddrPart(strText.c_str(), vAddr);
            bool bRight = vAddr.size() == vPlace.size();
            for (size_t n = 0; bRight && n < vAddr.size(); ++n) {
                tagADDRNODE const* const pNode = m_dic.GetAddrNode(vPlace[n].first);
                bRight = DeepestName(vAddr[n], pNode->nLevel) == m_dic.GetString(pNode->nName) &&
                         vAddr[n].pszPostCode == m_dic.GetString(vPlace[n].second->nCode);
            }
            Count(nFigure, bRight, strText, "other addresses",
                  std::to_string(vAddr.size()) + " instead of " + std::to_string(vPlace.size()));
        }
    }

    CMeasuredTables const& m_tables;
    CAddrDic m_dic;
    std::map<CTownKey, CTownFacts> m_mapTown; // today's, the nameless ones included
    std::set<CTownKey> m_text;                // the column's texts in front of their parentheses, buildings included
    std::vector<CTownQuestion> m_vQuestion;
    std::set<std::pair<std::string, std::string>> m_city; // today's, by prefecture and name
    std::set<std::string> m_uniqueCity;
    std::vector<CFigure> m_vFigure;
};

} // namespace

std::vector<CFigure> Measure(CDictionaryFile const& file, CMeasuredTables const& tables) {
    return CMeasurement(file, tables).Measure();
}

} // namespace qe
