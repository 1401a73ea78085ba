// Previous.cpp - reading earlier editions, and what has become of their towns.
#include "Previous.h"

#include <algorithm>
#include <filesystem>
#include <map>

namespace national {

namespace {

CEdition MakeEdition(std::string strName, std::vector<CTownRow> const& vRow, CExpectedTowns const& expected) {
    CEdition edition;
    edition.strName = std::move(strName);
    edition.vTown.reserve(vRow.size());
    edition.mapTown.reserve(vRow.size());
    edition.mapCode.reserve(vRow.size());
    std::vector<bool> vHasOwnCode;
    auto const Take = [&](CTownRow const& row, CPlace const& place) {
        std::string const strCode(row.strCode), strOldCode(row.strOldCode);
        CTownKey const key(row.strPref, row.strCity, place.town.strName);
        size_t const nTown = edition.mapTown.emplace(PathOf(key), edition.vTown.size()).first->second;
        if (nTown == edition.vTown.size()) {
            edition.vTown.push_back({key,
                                     std::string(row.strPrefKana),
                                     std::string(row.strCityKana),
                                     place.town.strKana,
                                     strCode,
                                     strOldCode,
                                     {}});
            vHasOwnCode.push_back(false);
            edition.vCity.insert(CityKey(row.strPref, row.strCity));
        }
        CTownOfEdition& town = edition.vTown[nTown];
        if (town.vCode.insert(strCode).second) edition.mapCode[strCode].push_back(nTown);
        if (!place.bDefault || vHasOwnCode[nTown]) return;
        vHasOwnCode[nTown] = true;
        town.strCode = strCode;
        town.strOldCode = strOldCode;
    };
    // Buildings come last: a town's first code is never one of theirs.
    for (bool const bBuildings : {false, true})
        for (size_t n = 0; n < vRow.size(); ++n)
            for (CPlace const& place : expected.PlacesOf(n))
                if (place.building.has_value() == bBuildings) Take(vRow[n], place);
    return edition;
}

// A name for comparison over the years: 区 and 町 come and go.
std::string FoldOverYears(std::string_view strName) {
    std::string str = FoldTown(strName);
    for (std::string_view strPart : {"区", "町"})
        for (size_t n; (n = str.find(strPart)) != std::string::npos;) str.erase(n, strPart.size());
    return str;
}

} // namespace

std::string PathOf(CTownKey const& key) {
    return std::get<0>(key) + "/" + std::get<1>(key) + "/" + std::get<2>(key);
}

std::string TextOf(CTownKey const& key) {
    return std::get<0>(key) + std::get<1>(key) + std::get<2>(key);
}

std::vector<CEdition> const& Editions() {
    static std::vector<CEdition> const vEdition = [] {
        constexpr std::string_view HEAD = "previous-", TAIL = ".csv";
        std::vector<std::string> vFile;
        for (auto const& file : std::filesystem::directory_iterator(DataPath(""))) {
            std::string const strFile = file.path().filename().string();
            if (BeginsWith(strFile, HEAD) && EndsWith(strFile, TAIL)) vFile.push_back(strFile);
        }
        std::sort(vFile.begin(), vFile.end()); // the month is in the name
        std::vector<CEdition> v;
        for (std::string const& strFile : vFile) {
            CJoinedTable const table(DataPath(strFile));
            v.push_back(MakeEdition(strFile.substr(HEAD.size(), strFile.size() - HEAD.size() - TAIL.size()),
                                    table.Rows(), CExpectedTowns(table.Rows())));
        }
        v.push_back(MakeEdition("today", TownRows(), ExpectedTowns()));
        return v;
    }();
    return vEdition;
}

std::vector<CGoneTown> const& GoneTowns() {
    static std::vector<CGoneTown> const vGone = [] {
        std::map<std::pair<std::string, std::string>, CTownOfEdition const*> mapCity; // of today, for its readings
        std::map<std::string, std::string> mapPrefKana;
        for (CTownOfEdition const& town : Today().vTown) {
            mapCity.emplace(std::pair(std::get<0>(town.key), std::get<1>(town.key)), &town);
            mapPrefKana.emplace(std::get<0>(town.key), town.strPrefKana);
        }
        std::vector<CGoneTown> v;
        std::set<CTownKey> vSeen;
        for (size_t n = Editions().size() - 1; n-- > 0;) {
            for (CTownOfEdition const& town : Editions()[n].vTown) {
                auto const& [strPref, strCity, strTown] = town.key;
                bool const bCityGone = !Today().HasCityOf(town.key);
                if (Today().Has(town.key) || (strTown.empty() && !bCityGone) || !vSeen.insert(town.key).second)
                    continue;
                // A town that is there for its organisations has no reading; the city of the newest edition gives its.
                bool const bOffices = OfficeTowns().count({CityKey(strPref, strCity), strTown}) != 0;
                CTownOfEdition const* const pCity = mapCity.emplace(std::pair(strPref, strCity), &town).first->second;
                v.push_back({town.key, mapPrefKana.at(strPref), pCity->strCityKana, bOffices ? "" : town.strTownKana,
                             town.strCode, town.strOldCode, n, bCityGone});
            }
        }
        return v;
    }();
    return vGone;
}

std::string ExpectedText(CGoneTown const& town) {
    CAddress a;
    a.strPref = std::get<0>(town.key), a.strPrefKana = town.strPrefKana;
    a.strCity = std::get<1>(town.key), a.strCityKana = town.strCityKana;
    a.strTown = std::get<2>(town.key), a.strTownKana = town.strTownKana;
    return AddressText(a);
}

std::set<CTownKey> PossibleHeirs(CTownKey const& key, size_t nEdition) {
    if (nEdition + 1 == Editions().size()) return {key};
    CEdition const& next = Editions()[nEdition + 1];
    if (next.Has(key)) return PossibleHeirs(key, nEdition + 1);
    std::string const& strName = std::get<2>(key);
    std::set<CTownKey> vCandidate;
    auto const pSameCode = next.mapCode.find(Editions()[nEdition].Town(key).strCode);
    if (pSameCode != next.mapCode.end()) {
        for (size_t n : pSameCode->second) vCandidate.insert(next.vTown[n].key);
        std::set<CTownKey> vSameName;
        for (CTownKey const& candidate : vCandidate)
            if (std::get<2>(candidate) == strName) vSameName.insert(candidate);
        if (!vSameName.empty()) vCandidate = vSameName;
    } else { // the same name in another city or, under another spelling, in any; else a whole city
        for (CTownOfEdition const& town : next.vTown) {
            std::string const& strTown = std::get<2>(town.key);
            bool const bSamePref = std::get<0>(town.key) == std::get<0>(key);
            if (bSamePref && (strTown.empty() || FoldOverYears(strTown) == FoldOverYears(strName)))
                vCandidate.insert(town.key);
        }
    }
    std::set<CTownKey> vHeir;
    for (CTownKey const& candidate : vCandidate) vHeir.merge(PossibleHeirs(candidate, nEdition + 1));
    return vHeir;
}

std::set<std::pair<std::string, std::string>> const& OfficeTowns() {
    static std::set<std::pair<std::string, std::string>> const vTown = [] {
        std::set<std::pair<std::string, std::string>> v;
        for (COfficeRow const& row : OfficeRows()) {
            std::string const strCity = CityKey(row.strPref, row.strCity);
            if (ExpectedTowns().ReadingsOf(strCity, row.strTown).empty() &&
                (row.strTown.empty() || ExpectedTowns().FoldedAlike(strCity, row.strTown).empty()))
                v.emplace(strCity, row.strTown);
        }
        return v;
    }();
    return vTown;
}

} // namespace national
