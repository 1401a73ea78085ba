// The sample data of the repository: it compiles, and everything that it holds comes back from its codes.
#include "builder/Compiler.h"
#include "builder/Text.h"
#include "builder/TownText.h"
#include "dic/AddrDic.h"
#include "tests/builder/Support.h"

#include <gmock/gmock.h>

#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

using testing::Contains;
using testing::ElementsAre;

namespace {

std::string const TOWNS = QEADRS_SAMPLE "/utf_ken_all.csv";
std::string const OFFICES = QEADRS_SAMPLE "/JIGYOSYO.CSV";

struct CSample {
    CSample() : CSample(qe::ReadSource(TOWNS), qe::ReadSource(OFFICES)) {}
    CSample(qe::CSource const& sourceTowns, qe::CSource const& sourceOffices)
        : towns(qe::ReadTownTable(sourceTowns)), vOffice(qe::ReadOfficeTable(sourceOffices)) {
        qe::CCompiler compiler(statistics);
        compiler.AddTowns(towns.vRow, sourceTowns.Name());
        compiler.AddOffices(vOffice, sourceOffices.Name());
        image = compiler.Compile(0, qe::ESource::Sample);
        dic.SetDictionary(image.vByte.data());
    }

    // "prefecture|city|town|area|building|floor|organisation" for each address of a code.
    std::vector<std::string> Addresses(std::string const& strCode) { return Texts(strCode, false); }
    std::vector<std::string> Readings(std::string const& strCode) { return Texts(strCode, true); }

    qe::CTownTable towns;
    std::vector<qe::COfficeRow> vOffice;
    qe::CStatistics statistics;
    qe::CImage image;
    CAddrDic dic;

  private:
    std::vector<std::string> Texts(std::string const& strCode, bool bKana) {
        std::vector<tagADDR> vAddr;
        dic.GetAddrFromPostCode7(strCode.c_str(), vAddr);
        std::vector<std::string> vText;
        for (tagADDR const& a : vAddr) {
            std::string str;
            for (char const* psz :
                 {bKana ? a.pszPrefKana : a.pszPref, bKana ? a.pszCityKana : a.pszCity,
                  bKana ? a.pszTownKana : a.pszTown, bKana ? a.pszAreaKana : a.pszArea,
                  bKana ? a.pszBlockKana : a.pszBlock, a.pszNote, bKana ? a.pszOfficeKana : a.pszOffice})
                str += (str.empty() ? "" : "|") + std::string(psz == nullptr ? "" : psz);
            while (str.back() == '|') str.pop_back();
            vText.push_back(str);
        }
        return vText;
    }
};

class Sample : public testing::Test {
  protected:
    CSample m_sample;
};

std::string Path(qe::CTownRow const& row, std::string const& strTown) {
    return row.strPref + "|" + row.strCity + "|" + strTown;
}

// The addresses that a row of the table stands for, as CSample::Addresses writes them; a building and its town, which
// stand in one text of the table, without the border between them.
std::vector<std::string> Expected(qe::CTownRow const& row) {
    qe::CTownText const text = qe::ReadTownText(row.strCity, row.strTown, row.strTownKana);
    std::vector<std::string> vExpected;
    for (qe::CNamed const& area : text.vArea) vExpected.push_back(Path(row, text.town.strName) + "|" + area.strName);
    if (text.nKind == qe::ETownKind::Nameless) vExpected.push_back(row.strPref + "|" + row.strCity);
    if (text.nKind == qe::ETownKind::Town || text.bDefault) vExpected.push_back(Path(row, text.town.strName));
    if (text.nKind == qe::ETownKind::Floor)
        vExpected.push_back(Path(row, text.town.strName) +
                            (text.floor.strName.empty() ? "" : "|" + text.floor.strName));
    return vExpected;
}

} // namespace

TEST_F(Sample, HoldsWhatItsReadmeCounts) {
    EXPECT_EQ(m_sample.towns.vRow.size(), 394u);
    EXPECT_EQ(m_sample.vOffice.size(), 50u);
    EXPECT_EQ(m_sample.statistics.Get("cities"), 106u);
    EXPECT_EQ(m_sample.statistics.Get("rows_of_whole_cities"), 101u + 3 + 3); // not listed, numbers, 一円
    EXPECT_EQ(m_sample.statistics.Get("rows_of_floors"), 6u + 12);
    EXPECT_EQ(m_sample.statistics.Get("buildings_without_town"), 0u);
    EXPECT_EQ(m_sample.statistics.Get("offices_left_out"), 0u);
}

TEST_F(Sample, HasAllPrefectures) {
    EXPECT_EQ(m_sample.statistics.Get("prefectures_missing"), 0u);
}

TEST_F(Sample, LosesNoReadingButThoseOfKyoto) {
    EXPECT_EQ(m_sample.statistics.Get("rows_without_area_readings"), 5u);
}

TEST_F(Sample, EveryTownRowComesBackFromItsCode) {
    for (qe::CTownRow const& row : m_sample.towns.vRow) {
        std::vector<std::string> vFound = m_sample.Addresses(row.strCode);
        bool const bFloor = qe::ReadTownText(row.strCity, row.strTown, "").nKind == qe::ETownKind::Floor;
        if (bFloor)
            for (std::string& str : vFound) { // town, empty area, building: "中央||アエル"
                size_t const nBorder = str.find("||");
                ASSERT_NE(nBorder, std::string::npos) << str;
                str.erase(nBorder, 2);
            }
        std::vector<std::string> const vExpected = Expected(row);
        ASSERT_FALSE(vExpected.empty()) << row.nLine;
        for (std::string const& strExpected : vExpected)
            EXPECT_THAT(vFound, Contains(strExpected)) << "line " << row.nLine;
    }
}

TEST_F(Sample, NoCodeGivesMoreThanItsRows) {
    std::map<std::string, size_t> mapCount;
    for (qe::CTownRow const& row : m_sample.towns.vRow) mapCount[row.strCode] += Expected(row).size();
    for (qe::COfficeRow const& row : m_sample.vOffice) ++mapCount[row.strCode];
    size_t nAll = 0;
    for (auto const& [strCode, nCount] : mapCount) {
        EXPECT_EQ(m_sample.Addresses(strCode).size(), nCount) << strCode;
        nAll += nCount;
    }
    EXPECT_EQ(m_sample.statistics.Get("entries"), nAll);
}

TEST_F(Sample, EveryReadingOfAPlainTownComesBack) {
    for (qe::CTownRow const& row : m_sample.towns.vRow) {
        if (qe::Contains(row.strTown, "（") ||
            qe::ReadTownText(row.strCity, row.strTown, "").nKind != qe::ETownKind::Town ||
            qe::Contains(row.strTown, "の次に"))
            continue;
        EXPECT_THAT(m_sample.Readings(row.strCode),
                    Contains(row.strPrefKana + "|" + row.strCityKana + "|" + row.strTownKana));
    }
}

TEST_F(Sample, EveryOfficeComesBackFromItsCode) {
    for (qe::COfficeRow const& row : m_sample.vOffice) {
        std::string const strName = qe::CutName(row.strName, qe::NAME_LIMIT);
        size_t nFound = 0;
        for (std::string const& str : m_sample.Addresses(row.strCode))
            if (qe::BeginsWith(str, row.strPref + "|" + row.strCity + "|") &&
                qe::EndsWith(str, "|" + row.strRest + "|||" + strName))
                ++nFound;
        EXPECT_EQ(nFound, 1u) << "line " << row.nLine;
    }
}

TEST_F(Sample, EveryOldCodeWithinReachFindsItsRows) {
    std::map<std::string, std::set<std::string>> mapOld;
    for (qe::CTownRow const& row : m_sample.towns.vRow)
        if (qe::BeginsWith(row.strCode, row.strOldCode)) mapOld[row.strOldCode].insert(row.strCode);
    for (auto const& [strOld, vCode] : mapOld) {
        std::vector<tagADDR> vAddr;
        m_sample.dic.GetAddrFromPostCode5(strOld.c_str(), vAddr);
        std::set<std::string> vFound;
        for (tagADDR const& addr : vAddr) vFound.insert(addr.pszPostCode);
        for (std::string const& strCode : vCode) EXPECT_THAT(vFound, Contains(strCode)) << strOld;
    }
}

// --- the codes that the README names ---

TEST_F(Sample, ATownOfManyCodesHasItsRangesApart) {
    EXPECT_THAT(m_sample.Addresses("060-0042"), ElementsAre("北海道|札幌市中央区|大通西|１〜１９丁目"));
    EXPECT_THAT(m_sample.Addresses("064-0820"), ElementsAre("北海道|札幌市中央区|大通西|２０〜２８丁目"));
}

TEST_F(Sample, APlaceListGivesEveryPlace) {
    EXPECT_THAT(m_sample.Addresses("098-4581"),
                ElementsAre("北海道|稚内市|抜海村|上勇知", "北海道|稚内市|抜海村|下勇知", "北海道|稚内市|抜海村|夕来",
                            "北海道|稚内市|抜海村|オネトマナイ"));
    EXPECT_THAT(m_sample.Addresses("097-0037"), ElementsAre("北海道|稚内市|抜海村"));
}

TEST_F(Sample, NumbersAndNamesOfAListAreApart) {
    EXPECT_THAT(m_sample.Addresses("079-8431"),
                ElementsAre("北海道|旭川市|永山町|１〜１３丁目", "北海道|旭川市|永山町|番外地"));
}

TEST_F(Sample, QuotesHoldTheirCommasTogether) {
    EXPECT_THAT(m_sample.Addresses("039-2113"),
                ElementsAre("青森県|上北郡六戸町|折茂|今熊「２１３〜２３４、２４０を除く」",
                            "青森県|上北郡六戸町|折茂|大原", "青森県|上北郡六戸町|折茂|沖山",
                            "青森県|上北郡六戸町|折茂|上折茂「１−１３、７１−１９２を除く」"));
}

TEST_F(Sample, CitiesOfOneCodeAreBothFound) {
    EXPECT_THAT(m_sample.Addresses("871-0000"), ElementsAre("福岡県|築上郡吉富町", "大分県|中津市"));
    EXPECT_THAT(m_sample.Addresses("501-6123"),
                ElementsAre("岐阜県|岐阜市|柳津町流通センター", "岐阜県|羽島郡笠松町|流通センター"));
}

TEST_F(Sample, NumbersBehindACitysNameAreTheCitys) {
    EXPECT_THAT(m_sample.Addresses("306-0433"), ElementsAre("茨城県|猿島郡境町"));
    EXPECT_THAT(m_sample.Addresses("871-0099"), ElementsAre("大分県|中津市"));
    EXPECT_THAT(m_sample.Addresses("409-0142"), ElementsAre("山梨県|北都留郡小菅村||１〜６６３番地"));
    EXPECT_THAT(m_sample.Addresses("766-0002"), ElementsAre("香川県|仲多度郡琴平町||１〜４２６番地（川東）"));
    EXPECT_THAT(m_sample.Addresses("857-2427"), ElementsAre("長崎県|西海市|大島町"));
}

TEST_F(Sample, TheWholeOfACityAndATownCalledSoAreTwoThings) {
    EXPECT_THAT(m_sample.Addresses("100-0301"), ElementsAre("東京都|利島村"));
    EXPECT_THAT(m_sample.Addresses("522-0317"), ElementsAre("滋賀県|犬上郡多賀町|一円"));
}

TEST_F(Sample, BuildingsHaveTheirFloors) {
    EXPECT_THAT(m_sample.Addresses("980-6101"), ElementsAre("宮城県|仙台市青葉区|中央||アエル|１階"));
    EXPECT_THAT(m_sample.Addresses("980-6190"), ElementsAre("宮城県|仙台市青葉区|中央||アエル"));
    EXPECT_THAT(m_sample.Addresses("450-6201"),
                ElementsAre("愛知県|名古屋市中村区|名駅||ミッドランドスクエア（高層棟）|１階"));
}

TEST_F(Sample, LotsStandBelowTheirTown) {
    EXPECT_THAT(m_sample.Addresses("028-7917"),
                ElementsAre("岩手県|九戸郡洋野町|種市|第１地割〜第３地割（八木南町、八木北町）"));
    EXPECT_THAT(m_sample.Addresses("029-5523"), ElementsAre("岩手県|和賀郡西和賀町|越中畑|６４地割〜６６地割"));
}

TEST_F(Sample, TwoTownsOfOneNameHaveTheirOwnReadings) {
    EXPECT_THAT(m_sample.Readings("939-2707"), ElementsAre("トヤマケン|トヤマシ|イシダ"));
    EXPECT_THAT(m_sample.Readings("930-0974"), ElementsAre("トヤマケン|トヤマシ|イシデン"));
}

TEST_F(Sample, OfficesAreFoundInTownsOfAnotherSpelling) {
    EXPECT_THAT(m_sample.Addresses("060-8621"),
                ElementsAre("北海道|札幌市中央区|北一条西|６丁目１−２|||株式会社　日本経済新聞社　札幌支社"));
    EXPECT_THAT(m_sample.Addresses("306-0495"), ElementsAre("茨城県|猿島郡境町||３９１−１|||境町役場"));
    EXPECT_THAT(m_sample.Addresses("602-8570"),
                ElementsAre("京都府|京都市上京区|下立売通新町西入薮ノ内町||||京都府庁"));
    EXPECT_THAT(m_sample.Addresses("101-8701"),
                ElementsAre("東京都|千代田区|神田神保町|１丁目１０１|||株式会社　見本出版",
                            "東京都|千代田区|神田神保町|１丁目１０１|||見本出版販売（株）"));
}

TEST_F(Sample, LongNamesOfOfficesAreCut) {
    EXPECT_THAT(
        m_sample.Addresses("060-8790"),
        ElementsAre(
            "北海道|札幌市中央区|大通西|１０丁目４|||一般財団法人　架空地域産業振興総合研究機構　北海道支部連合会　"
            "札幌中央地区"));
    EXPECT_EQ(m_sample.statistics.Get("names_cut"), 2u);
}

// --- the other encoding ---

namespace {

// The town table as code page 932 has it: a town text of more than 38 characters goes on in the next lines.
std::string BreakLongTowns(std::string const& strTable) {
    std::string strBroken;
    std::istringstream in(strTable);
    for (std::string strLine; std::getline(in, strLine);) {
        size_t const nEnd = strLine.find("\",", strLine.rfind("\",") - 1);
        size_t const nBegin = strLine.rfind('"', nEnd - 1) + 1;
        std::string strRest = strLine.substr(nBegin, nEnd - nBegin);
        while (!strRest.empty()) {
            std::string const strPart = strRest.substr(0, 38 * 3);
            strBroken += strLine.substr(0, nBegin) + strPart + strLine.substr(nEnd) + "\n";
            strRest.erase(0, strPart.size());
        }
    }
    return strBroken;
}

} // namespace

TEST_F(Sample, BothEncodingsCompileToTheSameBytes) {
    CTestFolder const folder;
    std::string const strTowns = folder.Write("KEN_ALL.CSV", EncodeCp932(BreakLongTowns(ReadFile(TOWNS))));
    std::string const strOffices = folder.Write("JIGYOSYO.CSV", EncodeCp932(ReadFile(OFFICES)));
    CSample const other(qe::ReadSource(strTowns), qe::ReadSource(strOffices));
    EXPECT_GT(other.towns.nJoined, 0u);
    EXPECT_EQ(other.image.vByte, m_sample.image.vByte);
}
