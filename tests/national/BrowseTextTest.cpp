// Browsing that begins with a text: city names and their beginnings, prefecture, city and town.
#include "Browsing.h"

#include <set>

using namespace national;

namespace {

// --- searching for cities ------------------------------------------------------------------------------------------

// All texts, byte by byte, that names of cities begin with; "" and whole names too.
std::set<std::string> BeginningsOfCityNames() {
    std::set<std::string> vText;
    for (std::string const& strName : CityNames())
        for (size_t n = 0; n <= strName.size(); ++n) vText.insert(strName.substr(0, n));
    return vText;
}

// Compares the search for each text; returns how many find something.
size_t CompareSearches(std::set<std::string> const& vText) {
    CFailures failures;
    size_t nFinding = 0;
    for (std::string const& strText : vText) {
        std::optional<CNodes> const vExpected = CitiesFound(strText);
        std::vector<tagADDRNODE const*> vNode(1, Dictionary().GetAddrNode(0)); // is replaced
        bool const bFound = Dictionary().SearchCity(strText.c_str(), vNode);
        nFinding += !vNode.empty();
        if (bFound != vExpected.has_value())
            failures.Add("\"" + strText + "\" gives " + (bFound ? "true" : "false"));
        else
            CompareNodes(failures, strText, IndicesOf(vNode), vExpected.value_or(CNodes()));
        if (failures.Enough()) break;
    }
    PrintFigure("texts searched for", vText.size());
    PrintFigure("of them found", nFinding);
    return nFinding;
}

TEST(BrowseSearch, FindsTheCitiesOfEveryBeginningOfEveryNameInItsOwnOrder) {
    std::set<std::string> const vText = BeginningsOfCityNames();
    EXPECT_GT(vText.size(), CityNames().size());
    EXPECT_GT(CompareSearches(vText), CityNames().size());
}

TEST(BrowseSearch, FindsNoCityForOtherTexts) {
    constexpr char const* CUT_SUFFIXES[] = {"\xE5\x8C", "\xE7\x94", "\xE6\x9D"}; // 区, 町, 村 but their last byte
    std::set<std::string> vText = {"\x01", "\x7F", "\xFF", "x"};
    size_t nName = 0;
    for (std::string const& strName : CityNames()) {
        vText.insert(strName + "x");
        vText.insert("x" + strName);
        vText.insert(strName.substr(1));
        vText.insert(strName + CUT_SUFFIXES[nName++ % std::size(CUT_SUFFIXES)]);
    }
    EXPECT_EQ(CompareSearches(vText), 0u);
}

// --- texts ---------------------------------------------------------------------------------------------------------

TEST(BrowseText, OfEveryCityAloneGivesThePrefecturesInWhichTheSearchMeetsIt) {
    CFailures failures;
    std::set<std::string> vShared;
    size_t nMissed = 0;
    for (std::string const& strName : CityNames()) {
        CNodes const vPref = PrefecturesFound(strName);
        CTexts vExpected; // names without readings
        for (uint32_t nPref : vPref) {
            CAddress a;
            a.strPref = Official().Nodes()[nPref].strName;
            vExpected.push_back(ExpectedText(a, {}));
        }
        CRecords vAddr;
        bool const bFound = Dictionary().GetPrefFromCity(strName.c_str(), vAddr);
        if (vPref.size() > 1) vShared.insert(strName);
        nMissed += vPref.empty();
        if (bFound == vPref.empty()) failures.Add(strName + (bFound ? " is found" : " is not found"));
        CompareTexts(failures, strName, RecordTexts(vAddr), vExpected);
        CompareNodes(failures, strName, ListNodes(vAddr), vPref);
        if (failures.Enough()) return;
    }
    PrintFigure("names of cities", CityNames().size());
    PrintFigure("of them in several prefectures", vShared.size());
    PrintFigure("not found", nMissed);
    EXPECT_EQ(vShared.count("府中市") + vShared.count("伊達市"), 2u);
}

TEST(BrowseText, OfACityAloneFixesTheFirstCityOfThatNameForEveryPrefectureThatItGives) {
    CFailures failures;
    for (std::string const& strName : CityNames()) {
        CNodes const vCity(1, Separate(strName).nCity);
        for (unsigned long nPref = 0; nPref < PrefecturesFound(strName).size(); ++nPref) {
            CRecords vPref, vFound;
            Dictionary().GetPrefFromCity(strName.c_str(), vPref);
            bool const bFound = Dictionary().GetCityFromNo(nPref, vFound);
            if (!bFound) failures.Add(strName + " fixes no city");
            CompareNodes(failures, strName, ListNodes(vFound), vCity);
        }
        if (failures.Enough()) return;
    }
}

// Every city's first towns and a few others.
std::vector<uint32_t> SampleOfTowns() {
    CNodes vSample;
    ForEachCity([&](CFailures&, CCity const& city) {
        CNodes const vTown = NamedChildrenOf(city.nNode);
        for (size_t n = 0; n < vTown.size(); n += 29) vSample.push_back(vTown[n]);
    });
    return vSample;
}

TEST(BrowseText, OfPrefectureCityAndTownFixesAllThree) {
    CFailures failures;
    CNodes const vSample = SampleOfTowns();
    for (uint32_t nTown : vSample) {
        uint32_t const nCity = Official().Ancestor(nTown, 1), nPref = Official().Ancestor(nTown, 0);
        std::string const strText = NameOf(nPref) + NameOf(nCity) + NameOf(nTown);
        CSeparated const found = Separate(strText); // of two towns of one name the first
        CRecords vPref, vCity, vTown;
        Dictionary().GetPrefFromCity(strText.c_str(), vPref);
        Dictionary().GetCityFromNo(0, vCity);
        Dictionary().GetTownFromNo(0, vTown);
        CSlowReader::CNode const& town = Official().Nodes()[found.nTown];
        CTexts const vExpected = {TownText(town.strName, town.strKana, CodesOf(found.nTown))};
        if (vPref.size() != 1 || vPref[0].pszPref != NameOf(nPref) || found.nTown == NONE)
            failures.Add(strText + " gives another prefecture");
        CompareNodes(failures, strText, ListNodes(vCity), {nCity});
        CompareNodes(failures, strText, ListNodes(vTown), {found.nTown});
        CompareTexts(failures, strText, RecordTexts(vTown), vExpected);
        if (failures.Enough()) return;
    }
    PrintFigure("texts asked", vSample.size());
}

} // namespace
