// The dictionary compiled from the SKK postal dictionary: the second source, some years older than the table.
#include "ExpectedRow.h"
#include "Failures.h"
#include "Lookup.h"

#include <algorithm>
#include <map>
#include <set>

using namespace national;

namespace {

struct CSkkEntry {
    size_t nLine;
    std::string strCode, strText;
};

// "code /address/address/"
std::vector<CSkkEntry> const& SkkEntries() {
    static std::vector<CSkkEntry> const vEntry = [] {
        std::vector<CSkkEntry> v;
        std::string const strFile = ReadFile(DataPath("skk-zipcode.txt"));
        size_t nLine = 0;
        for (size_t nPos = 0; nPos < strFile.size();) {
            ++nLine;
            std::string const strLine = strFile.substr(nPos, strFile.find('\n', nPos) - nPos);
            nPos += strLine.size() + 1;
            if (BeginsWith(strLine, ";")) continue;
            for (size_t n = strLine.find('/'); n != std::string::npos && n + 1 < strLine.size();) {
                size_t const nEnd = strLine.find('/', n + 1);
                v.push_back({nLine, strLine.substr(0, strLine.find(' ')), strLine.substr(n + 1, nEnd - n - 1)});
                n = nEnd;
            }
        }
        return v;
    }();
    return vEntry;
}

CAddrDic& SkkDictionary() {
    static std::string const strBytes = ReadFile(DataPath("skk.dic"));
    static CAddrDic dictionary;
    static int const nBound = dictionary.SetDictionary(reinterpret_cast<unsigned char const*>(strBytes.data()));
    static_cast<void>(nBound);
    return dictionary;
}

// The answers that are no organisations.
std::vector<tagADDR> Addresses(std::string const& strCode) {
    std::vector<tagADDR> vAddr;
    SkkDictionary().GetAddrFromPostCode7(strCode.c_str(), vAddr);
    vAddr.erase(std::remove_if(vAddr.begin(), vAddr.end(), [](tagADDR const& a) { return a.pszOffice != nullptr; }),
                vAddr.end());
    return vAddr;
}

std::string Joined(tagADDR const& a) {
    std::string str;
    for (char const* psz : {a.pszPref, a.pszCity, a.pszTown, a.pszArea, a.pszBlock, a.pszNote})
        if (psz != nullptr) str += psz;
    return str;
}

std::string JoinedCity(tagADDR const& a) {
    return CityKey(a.pszPref, a.pszCity);
}

// Removes a text where it stands; false when it does not.
bool Remove(std::string& str, std::string_view strPart) {
    size_t const n = str.find(strPart);
    if (n != std::string::npos) str.erase(n, strPart.size());
    return n != std::string::npos;
}

// How an address has to come back: as the file writes it, but for two kinds of entry.
struct CExpected {
    std::string strText;
    bool bStray = false, bNumbers = false;
};
CExpected ExpectedOf(CSkkEntry const& entry) {
    CExpected expected{entry.strText};
    // "…高層棟）（１階": the middle of two parentheses whose ends the file has lost.
    expected.bStray = Remove(expected.strText, "）（");
    // "小菅村小菅村の次に１〜６６３番地がくる場合": the numbers follow the city at once; a note behind is in
    // parentheses.
    constexpr std::string_view NEXT = "の次に", COMES = "がくる場合";
    size_t const nNext = expected.strText.find(NEXT);
    if (nNext == std::string::npos) return expected;
    expected.bNumbers = true;
    std::string const strHead = expected.strText.substr(0, nNext);
    std::string strNumbers = expected.strText.substr(nNext + NEXT.size());
    std::string const strNote = strNumbers.substr(strNumbers.find(COMES) + COMES.size());
    strNumbers.erase(strNumbers.find(COMES));
    // The head ends in the city's name twice, once with its county.
    size_t nTwice = 0;
    for (size_t n = 3; n < strHead.size() / 2; n += 3)
        if (strHead.substr(strHead.size() - 2 * n, n) == strHead.substr(strHead.size() - n)) nTwice = n;
    expected.strText = strHead.substr(0, strHead.size() - nTwice) + strNumbers;
    if (!strNote.empty()) expected.strText.append("（").append(strNote).append("）");
    return expected;
}

TEST(SkkDictionary, GivesEveryAddressOfTheFileBackFromItsCode) {
    CFailures failures;
    size_t nStray = 0, nNumbers = 0;
    for (CSkkEntry const& entry : SkkEntries()) {
        CExpected const expected = ExpectedOf(entry);
        nStray += expected.bStray;
        nNumbers += expected.bNumbers;
        std::vector<tagADDR> const vAddr = Addresses(entry.strCode);
        if (std::none_of(vAddr.begin(), vAddr.end(), [&](tagADDR const& a) { return Joined(a) == expected.strText; }))
            failures.Add("line " + std::to_string(entry.nLine) + ", " + entry.strCode + " " + entry.strText +
                         "\n  gives " + (vAddr.empty() ? "nothing" : Joined(vAddr.front())));
        if (failures.Enough()) return;
    }
    PrintFigure("addresses of the SKK dictionary", SkkEntries().size());
    PrintFigure("of them with stray parentheses", nStray);
    PrintFigure("of them for the numbers that follow a city's name", nNumbers);
}

TEST(SkkDictionary, GivesAsManyAddressesForACodeAsTheFile) {
    std::map<std::string, size_t> mapCount;
    for (CSkkEntry const& entry : SkkEntries()) ++mapCount[entry.strCode];
    CFailures failures;
    for (auto const& [strCode, nCount] : mapCount) {
        size_t const nFound = Addresses(strCode).size();
        if (nFound != nCount)
            failures.Add(strCode + ": " + std::to_string(nFound) + " instead of " + std::to_string(nCount));
        if (failures.Enough()) return;
    }
    PrintFigure("codes of the SKK dictionary", mapCount.size());
}

using CCities = std::set<std::string>;

// The cities of every code of the official table.
std::map<std::string_view, CCities> const& OfficialCities() {
    static std::map<std::string_view, CCities> const mapCity = [] {
        std::map<std::string_view, CCities> m;
        for (CTownRow const& row : TownRows()) m[row.strCode].insert(CityKey(row.strPref, row.strCity));
        return m;
    }();
    return mapCity;
}

// The wards of 浜松市 were redrawn in 2024, after the SKK dictionary was made.
bool IsOfRedrawnWards(CCities const& vCity) {
    return std::all_of(vCity.begin(), vCity.end(),
                       [](std::string const& str) { return BeginsWith(str, "静岡県浜松市"); });
}

std::string List(CCities const& vCity) {
    std::string strList;
    for (std::string const& str : vCity) strList += " " + str;
    return strList;
}

TEST(SkkDictionary, CutsEveryAddressAtTheCityOfTheOfficialTable) {
    CFailures failures;
    size_t nShared = 0, nRedrawn = 0;
    for (auto const& [strCode, vOfficial] : OfficialCities()) {
        CCities vFound;
        for (tagADDR const& addr : Addresses(std::string(strCode))) vFound.insert(JoinedCity(addr));
        if (vFound.empty()) continue; // a code that is younger than the file
        ++nShared;
        if (vFound == vOfficial) continue;
        if (IsOfRedrawnWards(vFound) && IsOfRedrawnWards(vOfficial))
            ++nRedrawn;
        else
            failures.Add(std::string(strCode) + " gives" + List(vFound) + " instead of" + List(vOfficial));
        if (failures.Enough()) return;
    }
    PrintFigure("codes that both the SKK dictionary and the table have", nShared);
    PrintFigure("of them in wards of 浜松市 that were redrawn since", nRedrawn);
    // Without this a dictionary that gives nothing at all would pass.
    EXPECT_GT(nShared, OfficialCities().size() * 9 / 10);
}

} // namespace
