// The selection screens of a host over the whole country: searches, counts and every position through the command
// interface, with records by byte offsets, against the texts of the slow reader.
#include "GuardedPages.h"
#include "Refining.h"

#include "api/ga_legacy.h"

using namespace national;

namespace {

// --- records -------------------------------------------------------------------------------------------------------

constexpr size_t REQUEST_BYTES = 1028, REQUEST_SELECTED = 6, REQUEST_ADDR = 500;
constexpr size_t REQUEST_SHORT_CODE = 1014, REQUEST_CODE = 1020, SHORT_CODE_BYTES = 6, CODE_BYTES = 8;
constexpr size_t COUNTS_BYTES = 534, COUNTS_MINUS = 6, COUNTS_WIDTHS = 528;
constexpr size_t FIELD_BYTES = 411, FIELD_NAME = 4, FIELD_DETAIL = 126, FIELD_NAME_LENGTH = 377;
constexpr size_t FIELD_DETAIL_LENGTH = 381, FIELD_KIND = 386, FIELD_OLD_CODE = 387, FIELD_CODE = 393;
constexpr size_t FIELD_OLD_CODE_LENGTH = 409, FIELD_CODE_LENGTH = 410;
constexpr size_t NAME_BYTES = 60, DETAIL_BYTES = 128, OLD_CODE_BYTES = 5, SEVEN_BYTES = 7;
constexpr char FILL = 'Z'; // what nobody writes stays

void Put16(std::string& strRecord, size_t nAt, long n) {
    strRecord[nAt] = static_cast<char>(n & 0xFF);
    strRecord[nAt + 1] = static_cast<char>(n >> 8 & 0xFF);
}
long Get16(std::string const& strRecord, size_t nAt) {
    auto const n = static_cast<unsigned char>(strRecord[nAt]) | static_cast<unsigned char>(strRecord[nAt + 1]) << 8;
    return static_cast<int16_t>(n);
}

// A text in a field that is zero behind it.
void PutText(std::string& strRecord, size_t nAt, size_t nBytes, std::string str) {
    str.resize(nBytes);
    strRecord.replace(nAt, nBytes, str);
}

// The record of command 3 for a code and an address. A short code goes into the one field or into the other.
std::string Request(std::string const& strCode, std::string const& strAddr, bool bShort) {
    std::string str(REQUEST_BYTES, FILL);
    str.replace(REQUEST_ADDR, strAddr.size() + 1, WithNul(strAddr));
    if (!bShort) {
        std::string const strField = WithNul(strCode).substr(0, CODE_BYTES);
        return str.replace(REQUEST_CODE, strField.size(), strField);
    }
    str[REQUEST_CODE] = '\0';
    return str.replace(REQUEST_SHORT_CODE, strCode.size() + 1, WithNul(strCode));
}

// The same after the command: the code is its digits and their NUL, and nothing behind them changes.
std::string ExpectedRequest(std::string str, std::string const& strCode, bool bShort) {
    std::string const strDigits = WithNul(NormalCode(strCode));
    return str.replace(bShort ? REQUEST_SHORT_CODE : REQUEST_CODE, strDigits.size(), strDigits);
}

// Counts; widths when the selection is there.
std::string ExpectedCounts(size_t nPrefs, size_t nCities, size_t nTowns, bool bWidths = true) {
    std::string str(COUNTS_BYTES, FILL);
    Put16(str, 0, static_cast<long>(nPrefs));
    Put16(str, 2, static_cast<long>(nCities));
    Put16(str, 4, static_cast<long>(nTowns));
    str.replace(COUNTS_MINUS, 4, 4, '\xFF');
    if (bWidths) str.replace(COUNTS_WIDTHS, 6, std::string("\x08\0\x10\0\x3C\0", 6));
    return str;
}

// The record of command 4: zero wherever a length is measured.
std::string Field(long nPosition) {
    static std::string const strEmpty = [] {
        std::string str(FIELD_BYTES, FILL);
        str.replace(FIELD_NAME, NAME_BYTES, NAME_BYTES, FILL).replace(FIELD_NAME + NAME_BYTES, 1, 1, '\0');
        str.replace(FIELD_DETAIL + DETAIL_BYTES, 1, 1, '\0').replace(FIELD_OLD_CODE + OLD_CODE_BYTES, 1, 1, '\0');
        return str.replace(FIELD_CODE + SEVEN_BYTES, 9, 9, '\0');
    }();
    std::string str = strEmpty;
    Put16(str, 0, nPosition);
    return str;
}

char Length(std::string_view str, size_t nLimit) {
    return static_cast<char>(std::min(str.size(), nLimit));
}

// The same after the command, for a prefecture or a city.
std::string NameField(long nPosition, std::string const& strName) {
    std::string str = Field(nPosition);
    PutText(str, FIELD_NAME, NAME_BYTES, strName);
    str[FIELD_NAME_LENGTH] = Length(strName, NAME_BYTES);
    return str;
}

// For a position outside a list: what was there goes, the lengths stay.
std::string NoNameField(long nPosition) {
    std::string str = Field(nPosition);
    PutText(str, FIELD_NAME, NAME_BYTES, "");
    return str;
}
std::string NoTownField(long nPosition) {
    std::string str = NoNameField(nPosition);
    PutText(str, FIELD_DETAIL, DETAIL_BYTES, "");
    PutText(str, FIELD_OLD_CODE, OLD_CODE_BYTES, "");
    PutText(str, FIELD_CODE, SEVEN_BYTES, "");
    str[FIELD_KIND] = 0;
    return str;
}

// What stands below the town: an organisation, or a building and its floor, or a part of the town.
std::pair<char, std::string> DetailOf(CAddress const& a) {
    if (a.strOffice) return {3, std::string(*a.strOffice)};
    if (a.strBlock) return {4, std::string(*a.strBlock).append(a.strNote.value_or(""))};
    if (a.strArea) return {1, std::string(*a.strArea)};
    return {0, ""};
}

// For a town or what lies below it.
std::string TownField(long nPosition, uint32_t nNode) {
    CAddress a;
    for (uint32_t n = nNode; Official().Nodes()[n].nLevel > 1; n = Official().Nodes()[n].nParent)
        Official().TakeTexts(n, a);
    std::string const strName(a.strTown.value_or(Official().Nodes()[nNode].strName));
    auto const [cKind, strDetail] = DetailOf(a);
    CCodes const codes = CodesOf(nNode);
    std::string str = NameField(nPosition, strName);
    PutText(str, FIELD_DETAIL, DETAIL_BYTES, strDetail);
    str[FIELD_DETAIL_LENGTH] = Length(strDetail, DETAIL_BYTES);
    str[FIELD_KIND] = cKind;
    PutText(str, FIELD_OLD_CODE, OLD_CODE_BYTES, std::string(codes.strOldCode.value_or("")));
    PutText(str, FIELD_CODE, SEVEN_BYTES, std::string(codes.strCode.value_or("")));
    str[FIELD_OLD_CODE_LENGTH] = Length(codes.strOldCode.value_or(""), OLD_CODE_BYTES);
    str[FIELD_CODE_LENGTH] = Length(codes.strCode.value_or(""), SEVEN_BYTES);
    return str;
}

std::string ExpectedField(short nKind, size_t nPosition, uint32_t nNode) {
    auto const n = static_cast<long>(nPosition);
    return nKind == GA_TOWN ? TownField(n, nNode) : NameField(n, NameOf(nNode));
}

// --- the lists of the whole dictionary -----------------------------------------------------------------------------

CBranches SortedBranches(CNodes const& vNode) {
    CBranches v;
    for (uint32_t n : vNode) v.push_back(NewBranch(n));
    recSortBranches(v);
    return v;
}

CBranches TownsOf(uint32_t nCity) {
    CNodes vNode;
    for (uint32_t n : ChildrenOf(nCity)) recCollectBelow(n, vNode);
    return SortedBranches(vNode);
}

// What they hold after a count: another prefecture begins at its first city.
class CSlowLists {
  public:
    void Select(int nPref, int nCity) { m_nPref = nPref, m_nCity = nCity; }
    void Count(int nPref, int nCity) {
        if (nPref != m_nPref || vCity.empty()) {
            vCity = SortedBranches(ChildrenOf(vPref[static_cast<size_t>(nPref)].nNode));
            vTown = TownsOf(vCity[0].nNode);
        } else if (nCity != m_nCity || vTown.empty()) {
            vTown = TownsOf(vCity[static_cast<size_t>(nCity)].nNode);
        }
        Select(nPref, nCity);
    }

    CBranches vPref = SortedBranches(AllPrefectures()), vCity, vTown;

  private:
    int m_nPref = 0, m_nCity = 0;
};

// --- the host ------------------------------------------------------------------------------------------------------

class LegacyScreens : public testing::Test {
  protected:
    void SetUp() override { ASSERT_EQ(GA_adr_exec(GA_OPEN, 0, nullptr, DataPath("qeadrs.dic").c_str(), nullptr), 0); }
    void TearDown() override {
        PrintFigure("counts asked", m_nCounts);
        PrintFigure("positions read", m_nPositions);
        EXPECT_EQ(GA_adr_exec(GA_CLOSE, 0, nullptr, nullptr, nullptr), 0);
    }

    // The question of the next counts.
    void Ask(std::string const& strCode, std::string const& strAddr, bool bShort = false) {
        m_strQuestion = strCode + "|" + strAddr;
        m_strRequest = Request(strCode, strAddr, bShort);
        m_strExpectedRequest = ExpectedRequest(m_strRequest, strCode, bShort);
    }
    bool Enough() const { return m_failures.Enough(); }

    // Compares both records of a count; returns how many towns it tells.
    size_t CheckCounts(int nPref, int nCity, int nTown, std::string const& strExpected) {
        for (std::string* p : {&m_strRequest, &m_strExpectedRequest}) {
            Put16(*p, REQUEST_SELECTED, nPref);
            Put16(*p, REQUEST_SELECTED + 2, nCity);
            Put16(*p, REQUEST_SELECTED + 4, nTown);
        }
        std::string strCounts(COUNTS_BYTES, FILL);
        int const nResult =
            GA_adr_exec(GA_SEARCH, 0, reinterpret_cast<GA_ADRSRT*>(m_strRequest.data()), nullptr, strCounts.data());
        m_lists.Select(nPref, nCity);
        ++m_nCounts;
        std::string const strAt = " at " + std::to_string(nPref) + "/" + std::to_string(nCity);
        if (nResult != 0 || strCounts != strExpected)
            Fail(strAt + " counts " + std::to_string(Get16(strCounts, 0)) + "/" +
                 std::to_string(Get16(strCounts, 2)) + "/" + std::to_string(Get16(strCounts, 4)) + " instead of " +
                 std::to_string(Get16(strExpected, 0)) + "/" + std::to_string(Get16(strExpected, 2)) + "/" +
                 std::to_string(Get16(strExpected, 4)) + " or writes something else");
        if (m_strRequest != m_strExpectedRequest || m_strRequest.size() != REQUEST_BYTES)
            Fail(strAt + " writes something else to its request");
        return static_cast<size_t>(Get16(strCounts, 4));
    }

    void CheckField(short nKind, long nPosition, std::string const& strExpected) {
        if (std::string const str = GetField(nKind, nPosition); str != strExpected)
            FailAt(nKind, nPosition, str, strExpected);
    }

    static void SortWithoutPositions(CTexts& vField) {
        for (std::string& str : vField) Put16(str, 0, 0);
        std::sort(vField.begin(), vField.end());
    }

    // Every position of a list. Those of equal display names may have changed places.
    void CheckList(short nKind, CBranches const& vEntry, bool bSorted = true) {
        for (size_t n = 0, nEnd = 0; n < vEntry.size() && !Enough(); n = nEnd) {
            for (nEnd = n + 1; bSorted && nEnd < vEntry.size() && vEntry[nEnd].strName == vEntry[n].strName;) ++nEnd;
            CTexts vFound, vExpected;
            for (size_t i = n; i < nEnd; ++i) {
                vFound.push_back(GetField(nKind, static_cast<long>(i)));
                vExpected.push_back(ExpectedField(nKind, i, vEntry[i].nNode));
            }
            if (nEnd - n > 1) SortWithoutPositions(vFound), SortWithoutPositions(vExpected);
            for (size_t i = 0; i < vFound.size(); ++i)
                if (vFound[i] != vExpected[i]) FailAt(nKind, static_cast<long>(n + i), vFound[i], vExpected[i]);
        }
    }

    // All of a tree, and beside it; returns how many towns all counts tell.
    size_t CheckTree(CExpectedTree const& expected) {
        CBranches const& vPref = expected.vPref;
        size_t nTowns = 0;
        for (size_t nPref = 0; nPref < vPref.size() && !Enough(); ++nPref) {
            CBranches const& vCity = vPref[nPref].vChild;
            for (size_t nCity = 0; nCity < vCity.size() && !Enough(); ++nCity) {
                CBranches const& vTown = vCity[nCity].vChild;
                nTowns += CheckCounts(static_cast<int>(nPref), static_cast<int>(nCity), 7,
                                      ExpectedCounts(vPref.size(), vCity.size(), vTown.size()));
                CheckList(GA_TOWN, vTown, expected.nResult == 1);
            }
            CheckList(GA_CITY, vCity, expected.nResult == 1);
        }
        CheckList(GA_PREF, vPref, expected.nResult == 1);
        CheckBeside(vPref);
        return nTowns;
    }

    // Behind the end of each list.
    void CheckBeside(CBranches const& vPref) {
        auto const nPrefs = static_cast<int>(vPref.size()), nCities = static_cast<int>(vPref[0].vChild.size());
        auto const nTowns = static_cast<long>(vPref[0].vChild[0].vChild.size());
        CheckCounts(0, 0, 0, ExpectedCounts(vPref.size(), vPref[0].vChild.size(), vPref[0].vChild[0].vChild.size()));
        CheckField(GA_PREF, nPrefs, NoNameField(nPrefs));
        CheckField(GA_CITY, nCities, NameField(nCities, ""));
        CheckField(GA_TOWN, nTowns, NoTownField(nTowns));
        CheckField(GA_PREF, -1, NoNameField(-1));
        CheckField(GA_CITY, -1, NameField(-1, ""));
        CheckField(GA_TOWN, -1, Field(-1));
        CheckCounts(0, nCities, 0, ExpectedCounts(vPref.size(), vPref[0].vChild.size(), 0, false));
        CheckField(GA_TOWN, 0, NoTownField(0));
        CheckCounts(nPrefs, 0, 0, ExpectedCounts(vPref.size(), 0, 0, false));
        CheckField(GA_CITY, 0, NameField(0, ""));
        CheckField(GA_TOWN, 0, NoTownField(0));
        CheckCounts(0, 0, 0, ExpectedCounts(vPref.size(), vPref[0].vChild.size(), vPref[0].vChild[0].vChild.size()));
    }

    // The lists of the whole dictionary at a selection that is there.
    void CheckSelectedLists(int nPref, int nCity) {
        CSlowLists lists = m_lists;
        lists.Count(nPref, nCity);
        CheckCounts(nPref, nCity, 0, ExpectedCounts(lists.vPref.size(), lists.vCity.size(), lists.vTown.size()));
        m_lists = lists;
    }
    CSlowLists const& Lists() const { return m_lists; }

    // The question is answered by a tree or, when that is empty, by the lists.
    void CheckAnswer(CExpectedTree const& expected) {
        if (expected.vPref.empty()) {
            CheckSelectedLists(0, 0);
            CheckField(GA_PREF, 12, NameField(12, "東京都"));
            return;
        }
        size_t const nTowns = CheckTree(expected), nLeaves = LeavesOf(expected.vPref).size();
        if (nTowns != nLeaves)
            Fail(" has " + std::to_string(nTowns) + " towns instead of " + std::to_string(nLeaves) + " leaves");
        m_nLeaves += nLeaves;
    }
    size_t Leaves() const { return m_nLeaves; }

  private:
    void Fail(std::string const& strWhat) { m_failures.Add(m_strQuestion + strWhat); }
    void FailAt(short nKind, long nPosition, std::string const& strFound, std::string const& strExpected) {
        size_t n = 0;
        while (strFound[n] == strExpected[n]) ++n;
        auto const Name = [](std::string const& str) { return std::string(str.c_str() + FIELD_NAME); };
        Fail(" kind " + std::to_string(nKind) + " position " + std::to_string(nPosition) + ": " + Name(strFound) +
             " instead of " + Name(strExpected) + ", or else different from byte " + std::to_string(n) + " on");
    }
    std::string GetField(short nKind, long nPosition) {
        std::string str = Field(nPosition);
        ++m_nPositions;
        if (GA_adr_exec(GA_GET, nKind, nullptr, nullptr, str.data()) != 0) Fail(" gives a failure");
        return str;
    }

    CFailures m_failures;
    std::string m_strQuestion, m_strRequest, m_strExpectedRequest;
    CSlowLists m_lists;
    size_t m_nCounts = 0, m_nPositions = 0, m_nLeaves = 0;
};

// --- tests ---------------------------------------------------------------------------------------------------------

TEST_F(LegacyScreens, ShowEveryPositionOfEveryPrefectureThatIsSearchedFor) {
    for (std::string const& strPref : PrefecturesOfTable()) {
        Ask("", strPref, true);
        CheckAnswer(TreeOfAddress(strPref));
        if (Enough()) return;
    }
    size_t nExpected = 0;
    for (uint32_t nPref : AllPrefectures()) {
        CNodes vNode;
        recCollectBelow(nPref, vNode);
        nExpected += vNode.size();
    }
    EXPECT_EQ(Leaves(), nExpected);
}

TEST_F(LegacyScreens, ShowEveryPositionOfTheCitiesAndTownsThatAreSearchedFor) {
    for (CCity const& city : CitiesOfRegions())
        for (std::string const& strText : TextsOfCity(city)) {
            Ask("", strText, true);
            CheckAnswer(TreeOfAddress(strText));
            if (Enough()) return;
        }
    EXPECT_GT(Leaves(), 0u);
}

TEST_F(LegacyScreens, ShowEveryPositionOfAThousandPartsOfCodes) {
    std::printf("seed %u\n", SEED);
    CTexts vCode = PartsOfCodes(1000);
    std::string const strLast(Official().Entries().back().strCode);
    for (size_t nDigits = 1; nDigits <= strLast.size(); ++nDigits) vCode.push_back(strLast.substr(0, nDigits));
    for (size_t n = 0; n < vCode.size() && !Enough(); ++n) {
        Ask(vCode[n], n % 4 == 0 ? "東京都" : "", n % 2 == 0 && vCode[n].size() < SHORT_CODE_BYTES);
        CheckAnswer(TreeOfCode(NormalCode(vCode[n])));
    }
    EXPECT_GT(Leaves(), 0u);
}

TEST_F(LegacyScreens, ShowEveryPositionOfTheWholeDictionaryWithoutAQuestion) {
    Ask("", "", true);
    size_t nCities = 0, nTowns = 0;
    for (int nPref = 0; nPref < 47 && !Enough(); ++nPref) {
        // Another prefecture begins at its first city, and stays there when asked the same again.
        for (int nCity : {1, 1, 0}) CheckSelectedLists(nPref, nPref == 0 ? 0 : nCity);
        CheckList(GA_CITY, Lists().vCity);
        auto const n = static_cast<int>(Lists().vCity.size());
        CheckField(GA_CITY, n, NoNameField(n));
        for (int nCity = 0; nCity < n && !Enough(); ++nCity) {
            CheckSelectedLists(nPref, nCity);
            CheckList(GA_TOWN, Lists().vTown);
            auto const nBehind = static_cast<long>(Lists().vTown.size());
            CheckField(GA_TOWN, nBehind, NoTownField(nBehind));
            ++nCities;
            nTowns += Lists().vTown.size();
        }
    }
    CheckList(GA_PREF, Lists().vPref);
    CheckField(GA_PREF, 47, NoNameField(47));
    PrintFigure("cities", nCities);
    PrintFigure("towns and what lies below them", nTowns);
    EXPECT_EQ(nCities, Official().Word(20));
    size_t nExpected = 0; // all but the cities themselves
    for (uint32_t n = 0; n < Official().Nodes().size(); ++n)
        nExpected += Official().Nodes()[n].nLevel > 1 && !Official().Nodes()[n].bAlias && HasCurrentEntry(n);
    EXPECT_EQ(nTowns, nExpected);
}

} // namespace
