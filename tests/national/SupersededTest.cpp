// Addresses that have changed: every town of the earlier editions that is gone, and what it became.
#include "ExpectedRow.h"
#include "Failures.h"
#include "GuardedPages.h"
#include "Lookup.h"
#include "Previous.h"
#include "SlowAddress.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <sstream>
#include <stdexcept>

using namespace national;

namespace {

constexpr char HOUSE_NUMBER[] = "１−２−３";

std::string Text(char const* psz) {
    return psz == nullptr ? "" : psz;
}

CTownKey KeyOf(tagADDR const& addr) {
    return {Text(addr.pszPref), Text(addr.pszCity), Text(addr.pszTown)};
}

CTownKey KeyOf(uint32_t nEntry) {
    CAddress const a = Official().Address(nEntry);
    return {std::string(a.strPref.value_or("")), std::string(a.strCity.value_or("")),
            std::string(a.strTown.value_or(""))};
}

// The superseded entry of each town that is gone.
std::map<CTownKey, uint32_t> const& SupersededEntries() {
    static std::map<CTownKey, uint32_t> const mapEntry = [] {
        std::map<CTownKey, uint32_t> m;
        for (uint32_t n = 0; n < Official().Entries().size(); ++n)
            if (Official().Entries()[n].bSuperseded) m.emplace(KeyOf(n), n);
        return m;
    }();
    return mapEntry;
}

uint32_t SupersededEntry(CGoneTown const& town) {
    auto const pFound = SupersededEntries().find(town.key);
    if (pFound == SupersededEntries().end()) throw std::runtime_error("no superseded entry for " + PathOf(town.key));
    return pFound->second;
}

TEST(TownsThatAreGone, AreAsManyAsTheEditionsAreKnownToDifferIn) {
    size_t nCities = 0;
    for (CGoneTown const& town : GoneTowns()) nCities += std::get<2>(town.key).empty();
    PrintFigure("towns that are gone, cities included", GoneTowns().size());
    PrintFigure("cities that are gone", nCities);
    EXPECT_EQ(SupersededEntries().size(), GoneTowns().size());
    if (Official().Word(3) != 20260500 || Editions().size() != 3 || Editions().front().strName != "2015-10") return;
    EXPECT_EQ(GoneTowns().size(), 1562u);
    EXPECT_EQ(nCities, 9u);
}

TEST(TownsThatAreGone, AreRenewedToATownOfToday) {
    CFailures failures;
    size_t nAsked = 0, nOfGoneCities = 0;
    for (CGoneTown const& town : GoneTowns()) {
        if (std::get<2>(town.key).empty()) continue;
        ++nAsked;
        nOfGoneCities += town.bCityGone;
        std::string const strText = TextOf(town.key);
        tagADDR addr(0);
        if (Dictionary().GetLatestAddr(strText.c_str(), addr) != 1 || !Today().Has(KeyOf(addr)))
            failures.Add(PathOf(town.key) + " becomes " + PathOf(KeyOf(addr)));
        if (failures.Enough()) return;
    }
    PrintFigure("towns asked", nAsked);
    PrintFigure("of them in cities that are gone", nOfGoneCities);
}

// Every town of every earlier edition, gone or not.
TEST(TownsOfEarlierEditions, AreAllRenewedToATownOfToday) {
    CFailures failures;
    size_t nAsked = 0;
    for (size_t n = 0; n + 1 < Editions().size(); ++n) {
        for (CTownOfEdition const& town : Editions()[n].vTown) {
            if (std::get<2>(town.key).empty()) continue;
            ++nAsked;
            std::string const strText = TextOf(town.key);
            tagADDR addr(0);
            uint32_t const nResult = Dictionary().GetLatestAddr(strText.c_str(), addr);
            bool const bNoEntry = addr.pTownNode != nullptr && addr.pTownNode->nInfo == NONE;
            bool const bKept = !Today().Has(town.key) || KeyOf(addr) == town.key;
            // A town with several codes and none of its own has no entry, and stays what it is.
            if (nResult != (bNoEntry ? 0u : 1u) || !Today().Has(KeyOf(addr)) || !bKept)
                failures.Add(PathOf(town.key) + " becomes " + PathOf(KeyOf(addr)));
            if (failures.Enough()) return;
        }
    }
    PrintFigure("towns asked", nAsked);
}

TEST(TownsThatAreGone, KeepTheirOwnCodesReadingsNodesAndRest) {
    CFailures failures;
    for (CGoneTown const& town : GoneTowns()) {
        if (std::get<2>(town.key).empty()) continue;
        std::string const strText = TextOf(town.key) + HOUSE_NUMBER;
        tagADDR divided(0), addr(0);
        Dictionary().DivideAddr(strText.c_str(), &divided);
        Dictionary().GetLatestAddr(strText.c_str(), addr);
        CTownKey const heir = KeyOf(Official().Entries()[SupersededEntry(town)].nSuccessor);
        bool const bOld = Text(addr.pszPostCode) == town.strCode && Text(addr.pszCodeExt) == town.strOldCode &&
                          Text(addr.pszPrefKana) == town.strPrefKana && Text(addr.pszCityKana) == town.strCityKana &&
                          Text(addr.pszTownKana) == town.strTownKana && Text(addr.pszArea) == HOUSE_NUMBER &&
                          addr.pPrefNode == divided.pPrefNode && addr.pCityNode == divided.pCityNode &&
                          addr.pTownNode == divided.pTownNode;
        if (KeyOf(divided) != town.key || KeyOf(addr) != heir || !bOld)
            failures.Add(PathOf(town.key) + " becomes " + PathOf(KeyOf(addr)) + " " + Text(addr.pszPostCode) + " " +
                         Text(addr.pszArea));
        if (failures.Enough()) return;
    }
}

TEST(TownsOfToday, ComeBackUnchanged) {
    CFailures failures;
    size_t nAsked = 0, nNoEntry = 0;
    for (CTownOfEdition const& town : Today().vTown) {
        if (std::get<2>(town.key).empty()) continue;
        ++nAsked;
        std::string const strText = TextOf(town.key) + HOUSE_NUMBER;
        tagADDR divided(0), addr(0);
        Dictionary().DivideAddr(strText.c_str(), &divided);
        uint32_t const nResult = Dictionary().GetLatestAddr(strText.c_str(), addr);
        bool const bEntry = divided.pTownNode != nullptr && divided.pTownNode->nInfo != NONE;
        nNoEntry += !bEntry;
        if (nResult != (bEntry ? 1u : 0u) || std::memcmp(&addr, &divided, offsetof(tagADDR, nCityOrder)) != 0 ||
            KeyOf(addr) != town.key)
            failures.Add(PathOf(town.key) + " becomes " + PathOf(KeyOf(addr)));
        if (failures.Enough()) return;
    }
    PrintFigure("towns asked", nAsked);
    PrintFigure("of them without an entry", nNoEntry);
}

TEST(TownsThatAreGone, HaveASuccessorThatTheRulesAllow) {
    CFailures failures;
    for (CGoneTown const& town : GoneTowns()) {
        CSlowReader::CEntry const& entry = Official().Entries()[SupersededEntry(town)];
        CTownKey const heir = KeyOf(entry.nSuccessor);
        if (PossibleHeirs(town.key, town.nEdition).count(heir) == 0)
            failures.Add(PathOf(town.key) + " " + town.strCode + " is succeeded by " + PathOf(heir));
        if (failures.Enough()) return;
    }
}

// In the successor's town the part with the same code takes over, if there is one.
TEST(TownsThatAreGone, HaveASuccessorWithTheSameCodeWhereverTheSuccessorsTownHasIt) {
    CFailures failures;
    size_t nSame = 0;
    for (CGoneTown const& town : GoneTowns()) {
        uint32_t const nHeir = Official().Entries()[SupersededEntry(town)].nSuccessor;
        bool const bHasCode = Today().Town(KeyOf(nHeir)).vCode.count(town.strCode) != 0;
        nSame += bHasCode;
        if (bHasCode && Official().Entries()[nHeir].strCode != town.strCode)
            failures.Add(PathOf(town.key) + " " + town.strCode + " is succeeded by " +
                         std::string(Official().Entries()[nHeir].strCode));
        if (failures.Enough()) return;
    }
    PrintFigure("successors with the same code", nSame);
}

TEST(TownsThatAreGone, AreReportedWithTheirCodesAndSuccessors) {
    std::istringstream file(ReadFile(DataPath("successions.tsv")));
    std::string strLine;
    ASSERT_TRUE(std::getline(file, strLine));
    EXPECT_EQ(strLine, "old_path\told_code\tsuccessor\trule");
    std::multiset<std::vector<std::string>> vFound, vExpected;
    while (std::getline(file, strLine)) {
        std::vector<std::string> vField;
        std::istringstream line(strLine);
        for (std::string str; std::getline(line, str, '\t');) vField.push_back(str);
        ASSERT_EQ(vField.size(), 4u) << strLine;
        EXPECT_NE(vField.back(), "none");
        vField.pop_back();
        vFound.insert(vField);
    }
    for (CGoneTown const& town : GoneTowns())
        vExpected.insert(
            {PathOf(town.key), town.strCode, PathOf(KeyOf(Official().Entries()[SupersededEntry(town)].nSuccessor))});
    EXPECT_EQ(vFound.size(), vExpected.size());
    EXPECT_TRUE(vFound == vExpected);
}

TEST(TownsThatAreGone, AreFoundByTheirOldCodeAndLeftOutOfPartialAddresses) {
    CFailures failures;
    for (CGoneTown const& town : GoneTowns()) {
        std::vector<std::string> const vAnswer = Answers(Dictionary(), town.strCode);
        if (std::find(vAnswer.begin(), vAnswer.end(), ExpectedText(town)) == vAnswer.end())
            failures.Add(town.strCode + " does not give " + PathOf(town.key));
        CSlowReader::CEntry const& entry = Official().Entries()[SupersededEntry(town)];
        tagADDRINFO const* const pInfo = Dictionary().GetAddrInfo(SupersededEntry(town));
        tagADDRNODE const *pPref, *pCity, *pTown;
        if (pInfo == nullptr || Dictionary().GetAddrPtr(pInfo, &pPref, &pCity, &pTown) != 0 || pTown != nullptr ||
            pInfo->nNode != (entry.nNode | ADDRINFO_SUPERSEDED))
            failures.Add(PathOf(town.key) + " is taken for a current address");
        if (failures.Enough()) return;
    }
    std::vector<tagADDR> vAll;
    Dictionary().GetPrefFromPart("", vAll);
    size_t nCurrent = 0;
    for (tagADDR const& addr : vAll) {
        ++nCurrent;
        CTownKey const key = KeyOf(addr);
        // An organisation's town that is gone from the table is listed by its organisations.
        if (SupersededEntries().count(key) != 0 && addr.pszOffice == nullptr)
            failures.Add(PathOf(key) + " is listed");
        if (failures.Enough()) return;
    }
    PrintFigure("current addresses of the whole country", nCurrent);
}

TEST(TownsThatAreGone, AreRewrittenByTheHostsFunctionWithTheirHouseNumbers) {
    CHost const host;
    ASSERT_TRUE(host.IsOpen());
    CFailures failures;
    CGuardedPages pages;
    for (CGoneTown const& town : GoneTowns()) {
        if (std::get<2>(town.key).empty()) continue;
        CTownKey const heir = KeyOf(Official().Entries()[SupersededEntry(town)].nSuccessor);
        std::string const strAddress = TextOf(town.key) + "１番";
        std::string strRecord(145, '\0');
        strRecord.replace(23, strAddress.size(), strAddress);
        char* const pRecord = pages.AtEnd(strRecord);
        short const nResult = PstAdrGetLatestAdr(pRecord);
        if (nResult != 0 || pRecord + 23 != (TextOf(heir) + "１番").substr(0, 60) || pRecord + 2 != town.strOldCode ||
            pRecord + 8 != town.strCode)
            failures.Add(strAddress + " becomes " + (pRecord + 23));
        if (failures.Enough()) return;
    }
}

} // namespace
