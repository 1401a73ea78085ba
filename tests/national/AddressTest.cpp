// Addresses as people write them, asked for by every row of the tables: levels, rest, codes, organisations.
#include "AddressRecord.h"
#include "ExpectedRow.h"
#include "Failures.h"
#include "GuardedPages.h"
#include "Lookup.h"
#include "Prepared.h"
#include "Previous.h"
#include "SlowAddress.h"

#include <algorithm>
#include <map>
#include <set>

using namespace national;

namespace {

constexpr char HOUSE_NUMBER[] = "１−２−３";

// A row whose town has a name: its city, its town, and what of its text stands behind the town's name and in front of a
// parenthesis (アエル of 中央アエル（１階）).
struct CQuestion {
    CTownRow const* pRow;
    std::string strCity, strTown, strTail;
    std::string Text() const { return strCity + strTown + strTail; }
};
std::vector<CQuestion> const& Questions() {
    static std::vector<CQuestion> const vQuestion = [] {
        std::vector<CQuestion> v;
        for (size_t n = 0; n < TownRows().size(); ++n) {
            CTownRow const& row = TownRows()[n];
            std::string const& strTown = ExpectedTowns().PlacesOf(n).front().town.strName;
            if (strTown.empty()) continue;
            std::string const strText(row.strTown.substr(0, row.strTown.find("（")));
            v.push_back({&row, CityKey(row.strPref, row.strCity), strTown, strText.substr(strTown.size())});
        }
        return v;
    }();
    return vQuestion;
}

bool IsIn(std::vector<std::string> const& v, char const* psz) {
    return psz != nullptr && std::find(v.begin(), v.end(), psz) != v.end();
}

std::string Text(char const* psz) {
    return psz == nullptr ? "" : psz;
}

// Whether a text was separated into the levels of the question; pszArea has to be the end of the text itself.
bool IsSeparated(CQuestion const& question, std::string const& strText, std::string const& strRest,
                 tagADDR const& addr) {
    CTownRow const& row = *question.pRow;
    return Text(addr.pszPref) == row.strPref && Text(addr.pszPrefKana) == row.strPrefKana &&
           Text(addr.pszCity) == row.strCity && Text(addr.pszCityKana) == row.strCityKana &&
           Text(addr.pszTown) == question.strTown &&
           IsIn(ExpectedTowns().ReadingsOf(question.strCity, question.strTown), addr.pszTownKana) &&
           addr.pszArea == strText.c_str() + (strText.size() - strRest.size());
}

void CheckSeparation(std::string const& strBehind) {
    CFailures failures;
    for (CQuestion const& question : Questions()) {
        std::string const strText = question.Text() + strBehind;
        tagADDR addr(0);
        if (!Dictionary().DivideAddr(strText.c_str(), &addr) ||
            !IsSeparated(question, strText, question.strTail + strBehind, addr))
            failures.Add(Describe(*question.pRow) + "\n  as " + strText + " leaves " + Text(addr.pszArea));
        if (failures.Enough()) return;
    }
    PrintFigure("rows asked", Questions().size());
}

TEST(AddressesOfTheWholeTable, AreSeparatedIntoPrefectureCityAndTown) {
    CheckSeparation("");
    EXPECT_EQ(Figure("town_levels").value_or(CFigure()).nAsked, Questions().size());
}

TEST(AddressesOfTheWholeTable, LeaveAHouseNumberBehindTheTown) {
    CheckSeparation(HOUSE_NUMBER);
    EXPECT_EQ(Figure("town_with_house_number").value_or(CFigure()).nAsked, Questions().size());
}

// 大通西１〜１９丁目, 抜海村上勇知, 中央アエル１階: what stands in a parenthesis, without it.
TEST(AddressesOfTheWholeTable, LeaveTheirAreasBuildingsAndFloorsBehindTheTown) {
    CFailures failures;
    size_t nAsked = 0, nLonger = 0;
    for (size_t n = 0; n < TownRows().size(); ++n) {
        CTownRow const& row = TownRows()[n];
        for (CPlace const& place : ExpectedTowns().PlacesOf(n)) {
            if (place.town.strName.empty() || (!place.area && !place.building)) continue;
            ++nAsked;
            std::string const strRest = (place.area ? place.area->strName : "") +
                                        (place.building ? place.building->strName : "") + place.strFloor.value_or("");
            std::string const strText = CityKey(row.strPref, row.strCity) + place.town.strName + strRest;
            tagADDR addr(0);
            Dictionary().DivideAddr(strText.c_str(), &addr);
            if (Text(addr.pszTown) == place.town.strName && Text(addr.pszArea) == strRest) continue;
            // 庶路宮下 is a town beside the 宮下 of 庶路, 土師宮町 one of an organisation: the text means either. A
            // town that is gone takes nothing away from today's.
            std::string const strCity = CityKey(row.strPref, row.strCity);
            bool const bLonger = Text(addr.pszTown).size() > place.town.strName.size() &&
                                 (!ExpectedTowns().ReadingsOf(strCity, Text(addr.pszTown)).empty() ||
                                  OfficeTowns().count({strCity, Text(addr.pszTown)}) != 0);
            nLonger += bLonger;
            if (!bLonger) failures.Add(Describe(row) + "\n  as " + strText + " leaves " + Text(addr.pszArea));
            if (failures.Enough()) return;
        }
    }
    PrintFigure("areas, buildings and floors asked", nAsked);
    PrintFigure("of them texts that are another town's, too", nLonger);
}

TEST(AddressesOfTheWholeTable, AreFoundWithoutTheirPrefectureWhereTheCitysNameIsTheOnlyOne) {
    std::map<std::string_view, std::set<std::string_view>> mapPrefs;
    for (CTownRow const& row : TownRows()) mapPrefs[row.strCity].insert(row.strPref);
    CFailures failures;
    constexpr size_t STEP = 13; // each is looked for among all cities; the report has asked them all
    size_t nUnique = 0, nAsked = 0;
    for (CQuestion const& question : Questions()) {
        CTownRow const& row = *question.pRow;
        if (mapPrefs[row.strCity].size() > 1 || nUnique++ % STEP != 0) continue;
        ++nAsked;
        std::string const strText = question.Text().substr(row.strPref.size());
        tagADDR addr(0);
        Dictionary().DivideAddr(strText.c_str(), &addr);
        if (addr.pszPref != nullptr || Text(addr.pszCity) != row.strCity || Text(addr.pszTown) != question.strTown ||
            Text(addr.pszArea) != question.strTail)
            failures.Add(Describe(row) + "\n  as " + strText + " leaves " + Text(addr.pszArea));
        if (failures.Enough()) return;
    }
    PrintFigure("rows asked without prefecture", nAsked);
    EXPECT_EQ(Figure("town_without_prefecture").value_or(CFigure()).nAsked, nUnique);
}

// The codes of each town by its city and name, apart for each reading: those of rows that are the town itself, and all.
struct CCodes {
    std::set<std::string_view> vOwn, vAll;
};
using CAlike = std::map<std::string, CCodes>; // by reading
std::map<std::pair<std::string, std::string>, CAlike> CodesOfTowns() {
    std::map<std::pair<std::string, std::string>, CAlike> mapTown;
    for (size_t n = 0; n < TownRows().size(); ++n) {
        CTownRow const& row = TownRows()[n];
        for (CPlace const& place : ExpectedTowns().PlacesOf(n)) {
            CCodes& codes = mapTown[{CityKey(row.strPref, row.strCity), place.town.strName}][place.town.strKana];
            codes.vAll.insert(row.strCode);
            if (place.bDefault) codes.vOwn.insert(row.strCode);
        }
    }
    return mapTown;
}

// The town's own code if it has one, else that of all its parts, else that of its city. A text does not say which of two
// towns it means that differ in their readings only: the right code is that of the one that was found.
TEST(AddressesOfTheWholeTable, HaveTheCodeThatTheTableListsForTheirTown) {
    std::set<std::pair<std::string_view, std::string_view>> vPair;
    for (CTownRow const& row : TownRows()) vPair.emplace(row.strCode, row.strOldCode);
    auto const mapTown = CodesOfTowns();
    CFailures failures;
    size_t nOwn = 0, nOne = 0, nCity = 0, nAlike = 0;
    for (CQuestion const& question : Questions()) {
        tagADDR addr(0);
        std::string const strText = question.Text();
        Dictionary().DivideAddr(strText.c_str(), &addr);
        CAlike const& alike = mapTown.at({question.strCity, question.strTown});
        auto const pFound = alike.find(Text(addr.pszTownKana));
        if (pFound == alike.end()) {
            failures.Add(Describe(*question.pRow) + " is read " + Text(addr.pszTownKana));
            continue;
        }
        CCodes const& codes = pFound->second;
        bool const bCity = codes.vOwn.empty() && codes.vAll.size() > 1;
        std::set<std::string_view> const vRight = !codes.vOwn.empty() ? codes.vOwn
                                                  : bCity             ? std::set{CityCodes().at(question.strCity)}
                                                                      : codes.vAll;
        ++(!codes.vOwn.empty() ? nOwn : bCity ? nCity : nOne);
        nAlike += alike.size() > 1;
        // Of several that are written alike one with a code comes first.
        bool const bCityForNone =
            std::all_of(alike.begin(), alike.end(), [](auto const& town) { return town.second.vOwn.empty(); });
        if (vRight.count(Text(addr.pszPostCode)) == 0 || (bCity && !bCityForNone) ||
            vPair.count({Text(addr.pszPostCode), Text(addr.pszCodeExt)}) == 0)
            failures.Add(Describe(*question.pRow) + " has " + Text(addr.pszPostCode) + " " + Text(addr.pszCodeExt));
        if (failures.Enough()) return;
    }
    PrintFigure("rows of towns with a code of their own", nOwn);
    PrintFigure("rows of towns whose parts have one code", nOne);
    PrintFigure("rows of towns with several codes and none of their own, which give the city's", nCity);
    PrintFigure("rows of towns that another one of the city is written like", nAlike);
    EXPECT_EQ(Figure("town_code").value_or(CFigure()).nAsked, Questions().size());
}

// --- organisations -------------------------------------------------------------------------------------------------

// An organisation's entry: of those of its code the one with its name and reading.
uint32_t EntryOf(COfficeRow const& row) {
    for (uint32_t n : Official().EntriesOf(row.strCode)) {
        CAddress const a = Official().Address(n);
        if (a.strOffice == CutName(row.strName) && a.strOfficeKana == row.strKana) return n;
    }
    return NONE;
}

std::string ShownAddress(CAddress const& a) {
    std::string str;
    for (COptionalText const* p : {&a.strPref, &a.strCity, &a.strTown, &a.strArea}) str += p->value_or("");
    return str;
}

std::string CauseOfMiss(CAddress const& office, CSeparated const& address, std::string const& strName) {
    if (office.strTown.value_or("").empty()) return "the organisation has no town";
    if (address.nTown == NONE || Official().Nodes()[address.nTown].strName != office.strTown)
        return "the address names another town";
    std::string const strSearched = SearchedName(strName);
    if (!BeginsWith(AliasOf(strName), strSearched)) return "the name is cut in the dictionary";
    return "another one of that name stands in the town";
}

TEST(OrganisationsOfTheWholeTable, AreFoundAtTheirAddressAsTheSlowReaderAndTheReportSay) {
    CFailures failures;
    CFigure figure;
    for (COfficeRow const& row : OfficeRows()) {
        uint32_t const nOffice = EntryOf(row);
        ASSERT_NE(nOffice, NONE) << Describe(row);
        CAddress const office = Official().Address(nOffice);
        std::string const strAddress = ShownAddress(office);
        std::string const strName = WithoutBlanks(row.strName);
        CSeparated const address = Separate(strAddress);
        uint32_t const nExpected = EntryOfOffice(address, strName);
        std::string strAsked = strName;
        tagADDR addr(0);
        int const nResult = Dictionary().GetPostCodeFromAddr(strAddress.c_str(), strAsked.data(), addr);
        bool const bSame = nExpected == NONE
                               ? addr.pszPostCode == nullptr
                               : Text(addr.pszPostCode) == Official().Entries()[nExpected].strCode &&
                                     Text(addr.pszCodeExt) == Official().Entries()[nExpected].strOldCode;
        if (nResult != 1 || !bSame || strAsked.c_str() != SearchedName(strName))
            failures.Add(Describe(row) + "\n  at " + strAddress + " has " + Text(addr.pszPostCode));
        if (failures.Enough()) return;
        ++figure.nAsked;
        if (Text(addr.pszPostCode) == row.strCode)
            ++figure.nRight;
        else
            ++figure.mapMisses[CauseOfMiss(office, address, strName)];
    }
    PrintFigure("organisations asked", figure.nAsked);
    PrintFigure("organisations found", figure.nRight);
    for (auto const& [strCause, nCount] : figure.mapMisses) PrintFigure(strCause.c_str(), nCount);
    CFigure const report = Figure("office_at_its_address").value_or(CFigure());
    EXPECT_EQ(figure.nAsked, report.nAsked);
    EXPECT_EQ(figure.nRight, report.nRight);
    EXPECT_EQ(figure.mapMisses, report.mapMisses);
}

// 株式会社　日本経済新聞社　札幌支社 is found as people write it.
TEST(OrganisationsOfTheWholeTable, AreFoundInTheIndexByTheirNamesWithoutBlanksUnlessTheNameIsCut) {
    CFailures failures;
    size_t nCut = 0;
    CAddrDic& dictionary = Dictionary();
    for (COfficeRow const& row : OfficeRows()) {
        std::string strName = WithoutBlanks(row.strName);
        bool const bCut = !BeginsWith(AliasOf(row.strName), SearchedName(strName));
        nCut += bCut;
        long const nFound = dictionary.SearchInc(strName.data());
        if (nFound < 0 && !bCut) failures.Add(Describe(row));
        if (failures.Enough()) return;
    }
    PrintFigure("names that are cut even without their blanks", nCut);
}

// --- the same through the host's functions --------------------------------------------------------------------------

class HostAddresses : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(m_host.IsOpen()); }

    // Every nStep-th row's address with a house number, every such organisation's with its name.
    template <typename CHECK>
    void ForEachAddress(size_t nStep, CHECK Check) {
        size_t nAsked = 0;
        CFailures failures;
        for (size_t n = 0; n < Questions().size() && !failures.Enough(); n += nStep, ++nAsked)
            Check(failures, Questions()[n].Text() + HOUSE_NUMBER, std::string());
        for (size_t n = 0; n < OfficeRows().size() && !failures.Enough(); n += nStep, ++nAsked) {
            COfficeRow const& row = OfficeRows()[n];
            Check(failures, row.strPref + row.strCity + row.strTown + row.strRest, row.strName);
        }
        for (size_t n = 0; n < GoneTowns().size() && !failures.Enough(); n += nStep, ++nAsked)
            Check(failures, TextOf(GoneTowns()[n].key) + HOUSE_NUMBER, std::string());
        PrintFigure("addresses asked", nAsked);
    }

    CGuardedPages m_pages;

  private:
    CHost m_host;
};

TEST_F(HostAddresses, HaveTheCodesOfTheSlowReaderInTheirRecords) {
    ForEachAddress(11, [this](CFailures& failures, std::string const& strAddress, std::string const& strOffice) {
        short nExpected;
        std::string const strExpected = ExpectedAfterGetZip(strAddress, strOffice, nExpected);
        char* const pRecord = m_pages.AtEnd(OfficeRecord(strAddress, strOffice));
        short const nResult = PstAdrGetZip(pRecord);
        if (nResult != nExpected || std::string(pRecord, RECORD_OFFICE) != strExpected ||
            std::string(pRecord + RECORD_OFFICE) != SearchedName(strOffice))
            failures.Add(strAddress + " " + strOffice);
    });
}

TEST_F(HostAddresses, AreRewrittenToTheLatestFormInTheirRecords) {
    ForEachAddress(11, [this](CFailures& failures, std::string const& strAddress, std::string const&) {
        std::string const strExpected = ExpectedAfterGetLatest(strAddress);
        char* const pRecord = m_pages.AtEnd(AddressRecord(strAddress));
        if (PstAdrGetLatestAdr(pRecord) != 0 || std::string(pRecord, strExpected.size()) != strExpected)
            failures.Add(strAddress + " becomes " + std::string(pRecord + RECORD_ADDRESS, LATEST_LIMIT));
    });
}

} // namespace
