// Reading the official tables: files, zips, encodings, rows, and what is refused with which words.
#include "builder/Source.h"

#include "tests/builder/Support.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

CTown const CHIYODA{"東京都", "千代田区", "千代田", "チヨダ", "1000001"};
CTown const OTEMACHI{"東京都", "千代田区", "大手町", "オオテマチ", "1000004"};

class Source : public testing::Test {
  protected:
    qe::CSource Read(std::string const& strBytes) const { return qe::ReadSource(m_folder.Write("t.csv", strBytes)); }

    // The lines as the reader sees them.
    std::vector<std::string> Lines(std::string const& strBytes) const {
        qe::CSource const source = Read(strBytes);
        qe::CLineReader reader(source);
        std::vector<std::string> vLine;
        while (reader.Next()) vLine.emplace_back(reader.Line());
        return vLine;
    }

    // The fields of a one-line text.
    std::vector<std::string> Fields(std::string const& strLine, size_t nExpected) const {
        qe::CSource const source = Read(strLine + "\n");
        qe::CLineReader reader(source);
        EXPECT_TRUE(reader.Next());
        return reader.Fields(nExpected);
    }

    qe::CTownTable Towns(std::string const& strBytes) const { return qe::ReadTownTable(Read(strBytes)); }

    // What a table of towns is refused with, behind "FILE".
    std::string TownError(std::string const& strBytes) const {
        return Behind(ErrorOf([&] { Towns(strBytes); }));
    }
    std::string OfficeError(std::string const& strBytes) const {
        return Behind(ErrorOf([&] { qe::ReadOfficeTable(Read(strBytes)); }));
    }
    std::string Behind(std::string const& strError) const {
        std::string const strPath = m_folder.Path("t.csv");
        EXPECT_THAT(strError, StartsWith(strPath));
        return strError.substr(std::min(strPath.size(), strError.size()));
    }

    CTestFolder m_folder;
};

std::string Show(qe::CTownRow const& row) {
    return row.strOldCode + "|" + row.strCode + "|" + row.strPref + "|" + row.strCity + "|" + row.strTown + "|" +
           row.strPrefKana + "|" + row.strCityKana + "|" + row.strTownKana;
}

std::vector<std::string> Show(qe::CTownTable const& table) {
    std::vector<std::string> vRow;
    for (qe::CTownRow const& row : table.vRow) vRow.push_back(Show(row));
    return vRow;
}

// A line of the code page's table: its readings are half-width.
std::string NarrowLine(std::string const& strKana, std::string const& strTown, std::string const& strCode = "0600042",
                       std::string const& strJis = "01101") {
    return strJis + ",\"060  \",\"" + strCode + "\",\"ﾎﾂｶｲﾄﾞｳ\",\"ｻﾂﾎﾟﾛｼ\",\"" + strKana +
           "\",\"北海道\",\"札幌市\",\"" + strTown + "\",1,0,1,0,0,0\r\n";
}

// The same town in the UTF-8 edition.
std::string WideLine(std::string const& strKana, std::string const& strTown, std::string const& strCode = "0600042") {
    return "01101,\"060  \",\"" + strCode + "\",\"ホツカイドウ\",\"サツポロシ\",\"" + strKana +
           "\",\"北海道\",\"札幌市\",\"" + strTown + "\",1,0,1,0,0,0\r\n";
}

} // namespace

// --- lines and fields ---

TEST_F(Source, LinesMayEndInLfOrCrLf) {
    EXPECT_THAT(Lines("a\nb\r\nc\n"), ElementsAre("a", "b", "c"));
}

TEST_F(Source, AByteOrderMarkIsSkipped) {
    EXPECT_THAT(Lines("\xEF\xBB\xBF"
                      "a\n"),
                ElementsAre("a"));
}

TEST_F(Source, LinesAreCountedFromOne) {
    qe::CSource const source = Read("a\nb\n");
    qe::CLineReader reader(source);
    ASSERT_TRUE(reader.Next());
    EXPECT_EQ(reader.Number(), 1u);
    ASSERT_TRUE(reader.Next());
    EXPECT_EQ(reader.Number(), 2u);
    EXPECT_FALSE(reader.Next());
    EXPECT_EQ(reader.Number(), 2u);
}

TEST_F(Source, FieldsAreCutAtCommasAndLoseTheirQuotes) {
    EXPECT_THAT(Fields("1,\"a\",\"b,c\",", 4), ElementsAre("1", "a", "b,c", ""));
}

TEST_F(Source, DoubledQuotesInsideQuotesAreOne) {
    EXPECT_THAT(Fields("\"a\"\"b\",\"\"\"\",\"\"", 3), ElementsAre("a\"b", "\"", ""));
}

TEST_F(Source, AFieldTooFewIsToldWithBothCounts) {
    EXPECT_THAT(ErrorOf([&] { Fields("a,b", 3); }), EndsWith("t.csv:1: expected 3 columns, found 2."));
}

TEST_F(Source, AFieldTooManyIsToldWithBothCounts) {
    EXPECT_THAT(ErrorOf([&] { Fields("a,b,", 2); }), EndsWith("t.csv:1: expected 2 columns, found 3."));
}

TEST_F(Source, AQuoteThatIsNotClosedIsTold) {
    EXPECT_THAT(ErrorOf([&] { Fields("a,\"b", 2); }),
                EndsWith("t.csv:1: a quote is not closed; the line is cut off or damaged."));
}

TEST_F(Source, AQuoteThatEndsInADoubledOneIsNotClosed) {
    EXPECT_THAT(ErrorOf([&] { Fields("a,\"b\"\"", 2); }), HasSubstr("t.csv:1: a quote is not closed"));
}

TEST_F(Source, TextBehindAClosingQuoteIsTold) {
    EXPECT_THAT(ErrorOf([&] { Fields("\"a\"b,c", 2); }), EndsWith("t.csv:1: text behind a closing quote."));
}

// --- files and zips ---

TEST_F(Source, APlainFileHasItsPathForAName) {
    qe::CSource const source = Read("a\n");
    EXPECT_EQ(source.Name(), m_folder.Path("t.csv"));
    EXPECT_EQ(source.nEdition, 0u);
}

TEST_F(Source, AZipIsReadThroughItsOnlyTable) {
    std::string const strPath =
        m_folder.Write("t.zip", Zip({{"readme.txt", "x\n"}, {"KEN_ALL.CSV", "東京\n"}}, 202605));
    qe::CSource const source = qe::ReadSource(strPath);
    EXPECT_EQ(source.strText, "東京\n");
    EXPECT_EQ(source.Name(), strPath + "(KEN_ALL.CSV)");
}

TEST_F(Source, TheEditionIsTheMonthOfTheMember) {
    EXPECT_EQ(qe::ReadSource(m_folder.Write("t.zip", Zip({{"t.csv", "a\n"}}, 202605))).nEdition, 20260500u);
    EXPECT_EQ(qe::ReadSource(m_folder.Write("t.zip", Zip({{"t.csv", "a\n"}}, 201512))).nEdition, 20151200u);
}

TEST_F(Source, AZipIsKnownByItsBytesAndNotByItsName) {
    EXPECT_EQ(qe::ReadSource(m_folder.Write("t.csv", Zip({{"t.csv", "a\n"}}))).strText, "a\n");
    EXPECT_EQ(qe::ReadSource(m_folder.Write("t.zip", "a\n")).strText, "a\n");
}

TEST_F(Source, AZipWithoutATableIsRefused) {
    std::string const strPath = m_folder.Write("t.zip", Zip({{"readme.txt", "x\n"}}));
    EXPECT_EQ(ErrorOf([&] { qe::ReadSource(strPath); }), strPath + ": holds no CSV file.");
}

TEST_F(Source, AZipWithTwoTablesIsRefused) {
    std::string const strPath = m_folder.Write("t.zip", Zip({{"a.csv", "x\n"}, {"b.CSV", "y\n"}}));
    EXPECT_EQ(ErrorOf([&] { qe::ReadSource(strPath); }),
              strPath + ": holds more than one CSV file; unpack it and name the right one.");
}

TEST_F(Source, AZipWithAnEmptyTableIsRefused) {
    std::string const strPath = m_folder.Write("t.zip", Zip({{"a.csv", ""}}));
    EXPECT_EQ(ErrorOf([&] { qe::ReadSource(strPath); }), strPath + "(a.csv): is empty.");
}

TEST_F(Source, AZipCutOffAnywhereIsRefused) {
    std::string const strZip = Zip({{"a.csv", Line(CHIYODA)}});
    for (size_t nSize = 2; nSize < strZip.size(); ++nSize) {
        std::string const strPath = m_folder.Write("t.zip", strZip.substr(0, nSize));
        EXPECT_THAT(ErrorOf([&] { qe::ReadSource(strPath); }), StartsWith(strPath)) << nSize;
    }
}

TEST_F(Source, AZipWithAChangedByteInItsTableIsRefused) {
    std::string strZip = Zip({{"a.csv", Line(CHIYODA)}});
    size_t const nPos = strZip.find("千代田");
    ASSERT_NE(nPos, std::string::npos);
    strZip[nPos + 2] ^= 1;
    std::string const strPath = m_folder.Write("t.zip", strZip);
    EXPECT_EQ(ErrorOf([&] { qe::ReadSource(strPath); }),
              strPath + ": its member a.csv is damaged: the checksum differs.");
}

TEST_F(Source, ALineInsideAZipIsNamedWithItsMember) {
    std::string const strPath = m_folder.Write("t.zip", Zip({{"a.csv", Line(CHIYODA) + "x\n"}}));
    EXPECT_EQ(ErrorOf([&] { qe::ReadTownTable(qe::ReadSource(strPath)); }),
              strPath + "(a.csv):2: expected 15 columns, found 1.");
}

TEST_F(Source, AMissingFileIsRefused) {
    std::string const strPath = m_folder.Path("none.csv");
    EXPECT_EQ(ErrorOf([&] { qe::ReadSource(strPath); }), strPath + ": No such file or directory");
}

TEST_F(Source, AFolderIsRefused) {
    std::string const strPath = m_folder.Path("");
    EXPECT_EQ(ErrorOf([&] { qe::ReadSource(strPath); }),
              strPath + ": this is a directory; name a zip or CSV file in it.");
}

TEST_F(Source, AnEmptyFileIsRefused) {
    std::string const strPath = m_folder.Write("t.csv", "");
    EXPECT_EQ(ErrorOf([&] { qe::ReadSource(strPath); }), strPath + ": is empty.");
}

TEST_F(Source, AFileCutOffWithinALineIsRefusedAtThatLine) {
    EXPECT_EQ(TownError("a\nb\nc"), ":3: the file is cut off within this line; get it again.");
}

TEST_F(Source, EveryTableCutOffWithinALineIsRefused) {
    std::string const strTable = Table({CHIYODA, OTEMACHI});
    for (size_t nSize = 1; nSize < strTable.size(); ++nSize) {
        if (strTable[nSize - 1] == '\n') continue;
        std::string const strLine = nSize <= Line(CHIYODA).size() ? ":1:" : ":2:";
        ASSERT_THAT(TownError(strTable.substr(0, nSize)), StartsWith(strLine)) << nSize;
    }
}

TEST_F(Source, ANulByteIsRefusedAtItsLine) {
    std::string strTable = Line(CHIYODA) + Line(OTEMACHI);
    strTable[strTable.size() - 4] = '\0';
    EXPECT_EQ(TownError(strTable), ":2: a NUL byte: this is no text file.");
}

// --- encodings ---

TEST_F(Source, Utf8IsDetected) {
    qe::CSource const source = Read(Line(CHIYODA));
    EXPECT_STREQ(qe::EncodingName(source.nEncoding), "UTF-8");
    EXPECT_EQ(source.strText, Line(CHIYODA));
}

TEST_F(Source, CodePage932IsDetected) {
    qe::CSource const source = Read(EncodeCp932(Line(CHIYODA)));
    EXPECT_STREQ(qe::EncodingName(source.nEncoding), "CP932");
    EXPECT_EQ(source.strText, Line(CHIYODA));
}

TEST_F(Source, PlainAsciiIsUtf8) {
    EXPECT_EQ(Read("abc\n").nEncoding, qe::EEncoding::Utf8);
}

TEST_F(Source, ATextInNeitherEncodingIsTakenForTheOneThatFitsFurther) {
    EXPECT_EQ(TownError("a\n\x93\x8C\n\xFF\n"), ":3: this line is not CP932, and the file is not UTF-8 either.");
}

TEST_F(Source, Utf16IsRefused) {
    std::string strWide;
    for (char c : std::string("13101,100\n")) strWide += std::string(1, c) + '\0';
    EXPECT_NE(TownError("\xFF\xFE" + strWide), "");
}

TEST_F(Source, EucJis2004IsReadWhereItIsAskedFor) {
    qe::CSource const source = qe::ReadEucSource(m_folder.Write("t", Encode("東京か\u309A\n", "EUC-JISX0213")));
    EXPECT_EQ(source.strText, "東京か\u309A\n");
    EXPECT_STREQ(qe::EncodingName(source.nEncoding), "EUC-JIS-2004");
}

TEST_F(Source, ALineThatIsNotEucJis2004IsNamed) {
    std::string const strPath = m_folder.Write("t", "a\n\xFF\xFF\n");
    EXPECT_EQ(ErrorOf([&] { qe::ReadEucSource(strPath); }), strPath + ":2: this line is not EUC-JIS-2004.");
}

// --- the town table ---

TEST_F(Source, ATownRowHasItsColumnsByName) {
    qe::CTownTable const table = Towns(
        "01101,\"060  \",\"0600042\",\"ホッカイドウ\",\"サッポロシ\",\"オオドオリ\",\"北海道\",\"札幌市\",\"大通\","
        "1,0,1,0,0,0\r\n");
    ASSERT_EQ(table.vRow.size(), 1u);
    EXPECT_EQ(table.vRow[0].strJis, "01101");
    EXPECT_EQ(Show(table.vRow[0]), "060|0600042|北海道|札幌市|大通|ホッカイドウ|サッポロシ|オオドオリ");
    EXPECT_EQ(table.vRow[0].nLine, 1u);
    EXPECT_EQ(table.nLines, 1u);
    EXPECT_EQ(table.nJoined, 0u);
}

TEST_F(Source, AnOldCodeOfFiveDigitsStays) {
    CTown town = CHIYODA;
    town.strOldCode = "06123";
    EXPECT_EQ(Towns(Line(town)).vRow[0].strOldCode, "06123");
}

TEST_F(Source, LinesOfTheCodePagesTableAreJoinedUntilTheParenthesisCloses) {
    std::string const strTable = NarrowLine("ｵｵﾄﾞｵﾘ(1-9ﾁﾖｳﾒ､", "大通（１〜９丁目、") +
                                 NarrowLine("11-19ﾁﾖｳﾒ､", "１１〜１９丁目、") + NarrowLine("21ﾁﾖｳﾒ)", "２１丁目）") +
                                 NarrowLine("ﾐﾅﾐ", "南", "0600043");
    qe::CTownTable const table = Towns(EncodeCp932(strTable));
    EXPECT_THAT(
        Show(table),
        ElementsAre("060|0600042|北海道|札幌市|大通（１〜９丁目、１１〜１９丁目、２１丁目）|ホツカイドウ|サツポロシ|"
                    "オオドオリ（１−９チヨウメ、１１−１９チヨウメ、２１チヨウメ）",
                    "060|0600043|北海道|札幌市|南|ホツカイドウ|サツポロシ|ミナミ"));
    EXPECT_EQ(table.nLines, 4u);
    EXPECT_EQ(table.nJoined, 2u);
    EXPECT_EQ(table.vRow[1].nLine, 4u);
}

// Where the whole reading fits into one line, the next lines say it again.
TEST_F(Source, AReadingThatIsCompleteIsNotJoinedAgain) {
    std::string const strTable = NarrowLine("ｵｵﾄﾞｵﾘ(ｿﾉﾀ)", "大通（その") + NarrowLine("ｵｵﾄﾞｵﾘ(ｿﾉﾀ)", "他）");
    EXPECT_THAT(Show(Towns(EncodeCp932(strTable))),
                ElementsAre("060|0600042|北海道|札幌市|大通（その他）|ホツカイドウ|サツポロシ|オオドオリ（ソノタ）"));
}

// Kyoto: the reading has no parenthesis at all and is repeated.
TEST_F(Source, AReadingWithoutAParenthesisIsNotJoined) {
    std::string const strTable =
        NarrowLine("ｶﾒﾔﾁﾖｳ", "亀屋町（御幸町通御池上る、") + NarrowLine("ｶﾒﾔﾁﾖｳ", "御幸町通押小路下る）");
    EXPECT_THAT(
        Show(Towns(EncodeCp932(strTable))),
        ElementsAre(
            "060|0600042|北海道|札幌市|亀屋町（御幸町通御池上る、御幸町通押小路下る）|ホツカイドウ|サツポロシ|"
            "カメヤチヨウ"));
}

TEST_F(Source, BothEncodingsGiveTheSameRows) {
    std::string const strNarrow = NarrowLine("ｵｵﾄﾞｵﾘ(1-9<2-3ｦﾉｿﾞｸ>､", "大通（１〜９「２−３を除く」、") +
                                  NarrowLine("ﾊﾟｰｸ)", "パーク）") + NarrowLine("ﾐﾅﾐ1ｼﾞﾖｳ", "南一条", "0600043");
    std::string const strWide =
        WideLine("オオドオリ（１−９＜２−３ヲノゾク＞、パーク）", "大通（１〜９「２−３を除く」、パーク）") +
        WideLine("ミナミ１ジヨウ", "南一条", "0600043");
    EXPECT_EQ(Show(Towns(EncodeCp932(strNarrow))), Show(Towns(strWide)));
}

TEST_F(Source, AParenthesisThatNeverClosesIsToldAtTheEndOfTheFile) {
    EXPECT_EQ(TownError(EncodeCp932(NarrowLine("ｵｵﾄﾞｵﾘ(1", "大通（１"))),
              ":1: the file ends within the parenthesis of this town.");
}

TEST_F(Source, AParenthesisThatDoesNotGoOnWithTheSameCodeIsTold) {
    EXPECT_EQ(TownError(EncodeCp932(NarrowLine("ﾐﾅﾐ", "南") + NarrowLine("ｵｵﾄﾞｵﾘ(1", "大通（１") +
                                    NarrowLine("2)", "２）", "0600043"))),
              ":3: the parenthesis opened in line 2 does not go on here.");
}

TEST_F(Source, AParenthesisThatDoesNotGoOnInTheSameCityIsTold) {
    EXPECT_EQ(
        TownError(EncodeCp932(NarrowLine("ｵｵﾄﾞｵﾘ(1", "大通（１") + NarrowLine("2)", "２）", "0600042", "01102"))),
        ":2: the parenthesis opened in line 1 does not go on here.");
}

TEST_F(Source, ATownRowWithAColumnMissingIsRefusedAtItsLine) {
    std::string const strLine = Line(OTEMACHI);
    EXPECT_EQ(TownError(Line(CHIYODA) + strLine.substr(strLine.find(',') + 1)), ":2: expected 15 columns, found 14.");
}

TEST_F(Source, ATownRowWithAColumnTooManyIsRefusedAtItsLine) {
    EXPECT_EQ(TownError(Line(CHIYODA) + "13101," + Line(OTEMACHI)), ":2: expected 15 columns, found 16.");
}

TEST_F(Source, ABlankLineIsRefused) {
    EXPECT_EQ(TownError(Line(CHIYODA) + "\r\n"), ":2: expected 15 columns, found 1.");
}

TEST_F(Source, AHeaderLineIsRefused) {
    EXPECT_EQ(TownError("jis,old,code,k,k,k,p,c,t,1,2,3,4,5,6\r\n" + Line(CHIYODA)),
              ":1: column 1 must be a code of five digits, not \"jis\".");
}

TEST_F(Source, ACodeThatIsNotSevenDigitsIsRefused) {
    for (char const* pszCode : {"", "100000", "10000011", "100-001", "100000a"}) {
        CTown town = OTEMACHI;
        town.strCode = pszCode;
        EXPECT_EQ(TownError(Line(CHIYODA) + Line(town)),
                  std::string(":2: the postal code must have seven digits, not \"") + pszCode + "\".");
    }
}

TEST_F(Source, AnOldCodeThatIsNotThreeOrFiveDigitsIsRefused) {
    for (char const* pszCode : {"", "1", "1000", "100000", "10a", "1 0"}) {
        CTown town = OTEMACHI;
        town.strOldCode = pszCode;
        EXPECT_EQ(TownError(Line(CHIYODA) + Line(town)),
                  std::string(":2: the old postal code must have three or five digits, not \"") + pszCode + "\".");
    }
}

TEST_F(Source, AnUnknownPrefectureIsRefused) {
    for (char const* pszPref : {"", "東京", "江戸府"}) {
        CTown town = OTEMACHI;
        town.strPref = pszPref;
        EXPECT_EQ(TownError(Line(CHIYODA) + Line(town)), std::string(":2: \"") + pszPref + "\" is no prefecture.");
    }
}

TEST_F(Source, ATownRowWithoutACityIsRefused) {
    CTown town = OTEMACHI;
    town.strCity = "";
    EXPECT_EQ(TownError(Line(CHIYODA) + Line(town)), ":2: the city is empty.");
}

TEST_F(Source, ARowWithoutTheReadingOfItsPrefectureIsRefused) {
    std::string strLine = Line(OTEMACHI);
    strLine.erase(strLine.find("ケン"), std::string("ケン").size());
    EXPECT_EQ(TownError(Line(CHIYODA) + strLine), ":2: the prefecture has no reading.");
}

TEST_F(Source, ARowWithoutTheReadingOfItsCityIsRefused) {
    std::string strLine = Line(OTEMACHI);
    strLine.erase(strLine.find("\"シ\"") + 1, std::string("シ").size());
    EXPECT_EQ(TownError(Line(CHIYODA) + strLine), ":2: the city has no reading.");
}

TEST_F(Source, ATownRowWithoutATownIsRefused) {
    CTown town = OTEMACHI;
    town.strTown = "";
    EXPECT_EQ(TownError(Line(CHIYODA) + Line(town)), ":2: the town is empty.");
}

TEST_F(Source, AnOrganisationTableIsNoTownTable) {
    EXPECT_EQ(TownError(Line(COffice{"宮内庁", "東京都", "千代田区", "千代田", "１−１", "1008111"})),
              ":1: expected 15 columns, found 13.");
}

// --- the organisation table ---

TEST_F(Source, AnOfficeRowHasItsColumnsByName) {
    std::vector<qe::COfficeRow> const vRow =
        qe::ReadOfficeTable(Read("13101,\"ｸﾅｲﾁﾖｳ\",\"宮内庁\",\"東京都\",\"千代田区\",\"千代田\",\"１−１\","
                                 "\"1008111\",\"100  \",\"銀座\",0,0,0\r\n"));
    ASSERT_EQ(vRow.size(), 1u);
    qe::COfficeRow const& row = vRow[0];
    EXPECT_THAT((std::vector<std::string>{row.strKana, row.strName, row.strPref, row.strCity, row.strTown,
                                          row.strRest, row.strCode, row.strOldCode}),
                ElementsAre("クナイチヨウ", "宮内庁", "東京都", "千代田区", "千代田", "１−１", "1008111", "100"));
    EXPECT_EQ(row.nLine, 1u);
}

// The table writes small kana large and a long vowel as a hyphen.
TEST_F(Source, AHyphenInAnOfficesReadingIsALongVowel) {
    COffice office{"サッポロビール", "東京都", "千代田区", "千代田", "", "1008111"};
    std::string strLine = Line(office);
    strLine.replace(strLine.find("ﾅﾏｴ"), std::string("ﾅﾏｴ").size(), "ｻﾂﾎﾟﾛﾋﾞ-ﾙ");
    EXPECT_EQ(qe::ReadOfficeTable(Read(strLine)).at(0).strKana, "サツポロビール");
    EXPECT_EQ(qe::ReadOfficeTable(Read(EncodeCp932(strLine))).at(0).strKana, "サツポロビール");
}

TEST_F(Source, OfficeRowsOfBothEncodingsAreEqual) {
    std::string const strTable = Line(COffice{"見本〜会", "東京都", "千代田区", "東〜町", "１−１〜３", "1008111"});
    auto const ReadTable = [&](std::string const& strBytes) {
        qe::COfficeRow const row = qe::ReadOfficeTable(Read(strBytes)).at(0);
        return row.strKana + "|" + row.strTown + "|" + row.strRest;
    };
    EXPECT_EQ(ReadTable(EncodeCp932(strTable)), ReadTable(strTable));
}

TEST_F(Source, AnOfficeMayLackItsTownAndItsRest) {
    std::vector<qe::COfficeRow> const vRow =
        qe::ReadOfficeTable(Read(Line(COffice{"役場", "東京都", "千代田区", "", "", "1008111"})));
    ASSERT_EQ(vRow.size(), 1u);
    EXPECT_EQ(vRow[0].strTown + vRow[0].strRest, "");
}

TEST_F(Source, AnOfficeWithoutANameIsRefused) {
    EXPECT_EQ(OfficeError(Line(COffice{"", "東京都", "千代田区", "千代田", "１", "1008111"})),
              ":1: the organisation has no name.");
}

TEST_F(Source, AnOfficeWithoutAReadingIsRefused) {
    std::string strLine = Line(COffice{"役場", "東京都", "千代田区", "千代田", "１", "1008111"});
    strLine.erase(strLine.find("ﾅﾏｴ"), std::string("ﾅﾏｴ").size());
    EXPECT_EQ(OfficeError(strLine), ":1: the organisation has no reading.");
}

TEST_F(Source, AnOfficeRowWithAWrongCodeIsRefused) {
    EXPECT_EQ(OfficeError(Line(COffice{"役場", "東京都", "千代田区", "千代田", "１", "100811"})),
              ":1: the postal code must have seven digits, not \"100811\".");
}

TEST_F(Source, ATownTableIsNoOrganisationTable) {
    EXPECT_EQ(OfficeError(Line(CHIYODA)), ":1: expected 13 columns, found 15.");
}
