// The shortcuts of the searches on the whole dictionary: every field of the answers is the plain model's, at first
// use and after thousands of searches.
#include "Failures.h"
#include "Lookup.h"
#include "Previous.h"
#include "Tables.h"
#include "tests/library/PlainAsk.h"

#include <random>

using namespace national;

namespace {

constexpr unsigned SEED = 20261205;

// An object of the library and the model, over the same bytes.
class FastPathsOfTheWholeTable : public testing::Test {
  protected:
    void SetUp() override {
        std::printf("seed %u\n", SEED);
        m_dictionary.SetDictionary(Official().Bytes());
        m_plain.SetDictionary(Official().Bytes());
    }

    // With bAgain the library is asked once more.
    void Check(EQuestion nKind, std::string const& strText, unsigned long nNumber = NO_NODE, bool bAgain = false) {
        if (m_failures.Enough()) return;
        CQuestion const question = {nKind, strText, "", nNumber};
        char szName[] = "";
        CAnswer const expected = Ask(m_plain, question, question.strText.c_str(), szName);
        for (int n = 0; n <= (bAgain ? 1 : 0); ++n) {
            CAnswer const answer = Ask(m_dictionary, question, question.strText.c_str(), szName);
            std::string const str = Difference(question, answer, expected);
            if (!str.empty()) m_failures.Add(strText + ": " + str);
        }
        ++m_nAsked;
    }

    size_t Below(size_t n) { return m_random() % n; }
    CTownRow const& AnyRow() { return TownRows()[Below(TownRows().size())]; }

    void TearDown() override { PrintFigure("questions", m_nAsked); }

    CAddrDic m_dictionary;
    CPlainDic m_plain;
    CFailures m_failures;

  private:
    std::mt19937 m_random{SEED};
    size_t m_nAsked = 0;
};

std::string WithoutPref(CTownRow const& row) {
    return std::string(row.strCity).append(row.strTown);
}
std::string Whole(CTownRow const& row) {
    return std::string(row.strPref).append(WithoutPref(row));
}

TEST_F(FastPathsOfTheWholeTable, FindEveryCodeLikeThePlainModel) {
    for (std::string_view const strCode : AllCodes()) {
        std::string const str(strCode);
        if (m_dictionary.SearchPostCode7(str.c_str()) != m_plain.SearchPostCode7(str.c_str()))
            m_failures.Add("the first entry of " + str);
        Check(QUESTION_CODE7, str, Below(16) == 0 ? SORT_ADDR : SORT_DICTIONARY);
    }
}

TEST_F(FastPathsOfTheWholeTable, FindPartsOfCodesAndUnknownCodesLikeThePlainModel) {
    for (int n = 0; n < 8000; ++n) {
        std::string strCode = std::to_string(10000000 + Below(10000000)).substr(1);
        if (n % 2 == 0) strCode = AnyRow().strCode;
        strCode.resize(1 + Below(7));
        Check(QUESTION_CODE, strCode);
        if (strCode.size() >= 5) Check(QUESTION_CODE7, strCode, SORT_DICTIONARY);
    }
}

TEST_F(FastPathsOfTheWholeTable, FindOldCodesLikeThePlainModel) {
    size_t n = 0;
    for (std::string_view const strCode : OldCodes())
        if (n++ % 40 == 0) Check(QUESTION_CODE5, std::string(strCode));
}

TEST_F(FastPathsOfTheWholeTable, DescribeEveryEntryLikeThePlainModel) {
    for (unsigned long n = 0; n <= Official().Entries().size(); n += 1 + Below(5)) Check(QUESTION_ENTRY, "", n);
}

TEST_F(FastPathsOfTheWholeTable, ReadAddressesLikeThePlainModel) {
    for (int n = 0; n < 20000; ++n) {
        CTownRow const& row = AnyRow();
        Check(QUESTION_DIVIDE, Whole(row) + "１−２", NO_NODE, n % 4 == 0);
        if (n % 4 == 0) Check(QUESTION_DIVIDE, WithoutPref(row));
        if (n % 4 == 1) Check(QUESTION_LATEST, Whole(row));
        if (n % 4 == 2) Check(QUESTION_CODE_OF, Whole(row));
    }
    for (CGoneTown const& town : GoneTowns()) Check(QUESTION_LATEST, TextOf(town.key));
}

// What is left of the city's name finds a city or none; then the towns of the whole country are searched.
TEST_F(FastPathsOfTheWholeTable, ReadChangedAndCutAddressesLikeThePlainModel) {
    for (int n = 0; n < 1500; ++n) {
        CTownRow const& row = AnyRow();
        size_t const nFront = row.strPref.size() + (n % 10 == 0 ? 0 : row.strCity.size());
        std::string str = Whole(row) + "１−２";
        size_t const nAt = nFront + Below(str.size() - nFront);
        Check(QUESTION_DIVIDE, str.substr(0, nAt), NO_NODE, true);
        str[nAt] = static_cast<char>(str[nAt] == '\xFF' ? 1 : str[nAt] + 1);
        Check(QUESTION_DIVIDE, str, NO_NODE, true);
    }
}

// Names of towns alone, among them those that other names begin with, and texts that nothing begins with.
TEST_F(FastPathsOfTheWholeTable, SearchTheWholeCountryLikeThePlainModel) {
    for (int n = 0; n < 200; ++n) {
        CTownRow const& row = AnyRow();
        std::string const strTown(row.strTown);
        Check(QUESTION_TOWN, strTown, NO_NODE, true);
        Check(QUESTION_CITY, WithoutPref(row), NO_NODE, true);
        Check(QUESTION_CITY_INDEX, std::string(row.strCity));
        if (n % 3 != 0) continue;
        Check(QUESTION_TOWN, "x" + strTown, NO_NODE, true);
        Check(QUESTION_TOWN, strTown.substr(0, 6) + "\x01", NO_NODE, true);
        Check(QUESTION_DIVIDE, strTown, NO_NODE, true);
    }
    for (char const* psz : {"", "x", "1-2-3", "\xE3\x80\x80", "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF", "丁目"})
        for (EQuestion const nKind : {QUESTION_PREF, QUESTION_CITY, QUESTION_TOWN, QUESTION_DIVIDE, QUESTION_CODE_OF})
            Check(nKind, psz, NO_NODE, true);
}

TEST_F(FastPathsOfTheWholeTable, ListAllThatAPartStandsForLikeThePlainModel) {
    for (char const* psz :
         {"東京都", "沖縄県那覇市", "府中市", "中央", "京都府京都市上京区", "東京都府中市本町", "港区x"})
        for (EQuestion const nKind : {QUESTION_PART, QUESTION_CITIES, QUESTION_PREF_PART, QUESTION_CITY_PART})
            Check(nKind, psz);
    for (uint32_t n = 0; n < Official().Word(18); ++n)
        for (EQuestion const nKind : {QUESTION_PREF, QUESTION_CITY, QUESTION_DIVIDE, QUESTION_CITIES})
            Check(nKind, std::string(Official().Nodes()[Official().Word(19) + n].strName));
}

} // namespace
