// `qeadrs browse`: the lists of the levels, the ways to name a place, and what is said where there is none.
#include "tests/cli/CliTest.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <set>
#include <utility>

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

namespace {

class QeadrsBrowse : public CliTest {
  protected:
    CResult Browse(std::vector<std::string> vArgument, std::string const& strInput = "") {
        return Ask("browse", std::move(vArgument), strInput);
    }

    // The same over a dictionary of the test's own.
    CResult BrowseIn(std::vector<CEntryText> const& vEntry, std::vector<std::string> vArgument) {
        return AskIn(vEntry, "browse", std::move(vArgument));
    }
};

char const CITIES_OF_TOKYO[] = "0\t千代田区\t\t\t\n1\t中央区\t\t\t\n2\t港区\t\t\t\n3\t新宿区\t\t\t\n4\t台東区\t\t\t\n"
                               "5\t渋谷区\t\t\t\n6\t府中市\t\t\t\n7\t大島町\t\t\t\n8\t利島村\t\t\t\n"
                               "9\t三宅島三宅村\t\t\t\n10\t八丈島八丈町\t\t\t\n11\t青ヶ島村\t\t\t\n";
char const TOWNS_OF_MINATO[] = "0\t芝浦\t\t\t\n1\t芝公園\t1050011\t105\t\n2\t芝\t\t\t\n3\t虎ノ門\t1050001\t105\t\n";
char const CITIES_OF_HOKKAIDO[] = "0\t札幌市中央区\t\t\t\n1\t札幌市北区\t\t\t\n2\t札幌市南区\t\t\t\n3\t小樽市\t\t\t\n"
                                  "4\t旭川市\t\t\t\n5\t稚内市\t\t\t\n6\t伊達市\t\t\t\n7\t余市郡余市町\t\t\t\n";

// 東京都 and 広島県 only; a town that was renamed, and a city that has become a part of another one.
std::vector<CEntryText> const TWO_PREFECTURES = {
    {"1000000", {{0, "東京都"}, {1, "新市"}, {2, "旧町"}}, 1},
    {"1000001", {{0, "東京都"}, {1, "新市"}, {2, "新町"}}},
    {"1000002", {{0, "東京都"}, {1, "旧市"}}, 1},
    {"1000003", {{0, "東京都"}, {1, "旧市"}, {2, "東"}}, 1},
    {"1000004", {{0, "東京都"}, {1, "旧市"}, {2, "西"}}, 1, ""},
    {"7300000", {{0, "広島県"}, {1, "呉市"}, {2, "中央"}}, -1, ""},
};

// One city with these towns.
std::vector<CEntryText> Towns(std::vector<std::string> const& vName) {
    std::vector<CEntryText> vEntry;
    for (std::string const& strName : vName)
        vEntry.push_back({std::to_string(1000000 + vEntry.size()), {{0, "東京都"}, {1, "港区"}, {2, strName}}});
    return vEntry;
}

std::string Address(std::string const& strCode, std::string const& strTown) {
    return strCode + "\t100\t東京都\t港区\t" + strTown + "\t\t\t\t\n";
}

// --- lists ---------------------------------------------------------------------------------------------------------

TEST_F(QeadrsBrowse, ListsThePrefecturesFromNorthToSouthWithTheirNumbers) {
    CResult const result = Browse({});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strErr, "");
    EXPECT_THAT(result.strOut, StartsWith("0\t北海道\t\t\t\n1\t青森県\t\t\t\n"));
    EXPECT_THAT(result.strOut, HasSubstr("\n12\t東京都\t\t\t\n"));
    EXPECT_THAT(result.strOut, EndsWith("\n45\t鹿児島県\t\t\t\n46\t沖縄県\t\t\t\n"));
    EXPECT_THAT(Lines(result.strOut), SizeIs(47));
}

TEST_F(QeadrsBrowse, LeavesOutAbsentPrefecturesAndKeepsTheNumbersOfTheOthers) {
    EXPECT_EQ(BrowseIn(TWO_PREFECTURES, {}).strOut, "12\t東京都\t\t\t\n33\t広島県\t\t\t\n");
}

TEST_F(QeadrsBrowse, ListsTheCitiesOfAPrefecture) {
    CResult const result = Browse({"東京都"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strErr, "");
    EXPECT_EQ(result.strOut, CITIES_OF_TOKYO);
}

TEST_F(QeadrsBrowse, ListsTheTownsOfACityWithTheirCodesAsFarAsTheyHaveSome) {
    CResult const result = Browse({"東京都", "港区"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strErr, "");
    EXPECT_EQ(result.strOut, TOWNS_OF_MINATO);
}

TEST_F(QeadrsBrowse, ListsATownsCodeWithoutAnOldOne) {
    EXPECT_EQ(BrowseIn(TWO_PREFECTURES, {"広島県", "呉市"}).strOut, "0\t中央\t7300000\t\t\n");
}

TEST_F(QeadrsBrowse, ListsTheOldCodeThatIsNoBeginningOfTheNewOne) {
    EXPECT_EQ(Browse({"東京都", "三宅村"}).strOut, "0\t神着\t1001101\t10011\t\n");
}

TEST_F(QeadrsBrowse, PrintsTheAddressesOfATown) {
    CResult const result = Browse({"東京都", "港区", "芝"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strErr, "");
    EXPECT_EQ(result.strOut, "1050014\t105\t東京都\t港区\t芝\t１〜３丁目\t\t\t\n"
                             "1080014\t108\t東京都\t港区\t芝\t４、５丁目\t\t\t\n");
}

// The library's record of a walk is not reset between neighbours: it holds アエル at the organisation.
TEST_F(QeadrsBrowse, PrintsBuildingsAndFloorsButNoneOfANeighbour) {
    EXPECT_EQ(
        Browse({"宮城県", "仙台市青葉区", "中央"}).strOut,
        "9800021\t980\t宮城県\t仙台市青葉区\t中央\t\t\t\t\n"
        "9806190\t980\t宮城県\t仙台市青葉区\t中央\t\tアエル\t\t\n"
        "9806101\t980\t宮城県\t仙台市青葉区\t中央\t\tアエル\t１階\t\n"
        "9806102\t980\t宮城県\t仙台市青葉区\t中央\t\tアエル\t２階\t\n"
        "9806103\t980\t宮城県\t仙台市青葉区\t中央\t\tアエル\t３階\t\n"
        "9808790\t980\t宮城県\t仙台市青葉区\t中央\t１丁目３−１　アエル３Ｆ\t\t\t株式会社　見本書房　仙台支店\n");
}

TEST_F(QeadrsBrowse, AddsReadingsOnDemand) {
    EXPECT_THAT(Browse({"--kana"}).strOut, StartsWith("0\t北海道\t\t\t\tホッカイドウ\n"));
    EXPECT_THAT(Browse({"--kana", "東京都"}).strOut, StartsWith("0\t千代田区\t\t\t\tチヨダク\n"));
    EXPECT_EQ(Browse({"--kana", "東京都", "大島町"}).strOut, "0\t元町\t1000101\t10001\t\tモトマチ\n");
    EXPECT_EQ(Browse({"--kana", "東京都", "港区", "芝浦"}).strOut,
              "1050023\t105\t東京都\t港区\t芝浦\t１丁目\t\t\t\tトウキョウト\tミナトク\tシバウラ\t１チョウメ\t\t\n"
              "1080023\t108\t東京都\t港区\t芝浦\t２〜４丁目\t\t\t\tトウキョウト\tミナトク\tシバウラ\t２−４チョウメ"
              "\t\t\n");
}

TEST_F(QeadrsBrowse, PrintsNoReadingOfANeighboursBuilding) {
    EXPECT_THAT(Browse({"--kana", "宮城県", "仙台市青葉区", "中央"}).strOut,
                EndsWith("\n" + Zip({"--kana", "9808790"}).strOut));
}

TEST_F(QeadrsBrowse, TellsTownsOfOneNameApart) {
    EXPECT_THAT(Browse({"富山県", "富山市"}).strOut,
                StartsWith("0\t石田\t9392707\t93927\t\n1\t石田\t9300974\t930\t\n"));
    EXPECT_EQ(Browse({"富山県", "富山市", "0"}).strOut, "9392707\t93927\t富山県\t富山市\t石田\t\t\t\t\n");
    EXPECT_EQ(Browse({"富山県", "富山市", "1"}).strOut, "9300974\t930\t富山県\t富山市\t石田\t\t\t\t\n");
    EXPECT_EQ(Browse({"--ui", "富山県", "富山市", "1"}).strOut, "9300974\t930\t石田\t\n");
}

// --- sorted --------------------------------------------------------------------------------------------------------

TEST_F(QeadrsBrowse, SortsCitiesByNameOnDemand) {
    EXPECT_EQ(Browse({"--sort", "東京都"}).strOut,
              "0\t三宅島三宅村\t\t\t\n1\t中央区\t\t\t\n2\t八丈島八丈町\t\t\t\n3\t利島村\t\t\t\n4\t千代田区\t\t\t\n"
              "5\t台東区\t\t\t\n6\t大島町\t\t\t\n7\t府中市\t\t\t\n8\t新宿区\t\t\t\n9\t渋谷区\t\t\t\n10\t港区\t\t\t\n"
              "11\t青ヶ島村\t\t\t\n");
}

TEST_F(QeadrsBrowse, SortsTownsByNameOnDemandAndKeepsTheirCodesWithThem) {
    EXPECT_EQ(Browse({"--sort", "東京都", "港区"}).strOut,
              "0\t芝\t\t\t\n1\t芝公園\t1050011\t105\t\n2\t芝浦\t\t\t\n3\t虎ノ門\t1050001\t105\t\n");
}

TEST_F(QeadrsBrowse, CountsInTheSortedListsWhenTheyAreSorted) {
    EXPECT_EQ(Browse({"--sort", "12", "10"}).strOut, Browse({"--sort", "東京都", "港区"}).strOut);
    EXPECT_EQ(Browse({"12", "10"}).strOut, Browse({"東京都", "八丈町"}).strOut);
    EXPECT_EQ(Browse({"--sort", "12", "10", "1"}).strOut, "1050011\t105\t東京都\t港区\t芝公園\t\t\t\t\n");
    EXPECT_EQ(Browse({"--sort", "12", "10", "2"}).strOut, Browse({"12", "2", "0"}).strOut);
}

TEST_F(QeadrsBrowse, KeepsReadingsAndMarksWithTheirPlaceWhenSorted) {
    std::vector<CEntryText> const vEntry = {{"1000000", {{0, "東京都"}, {1, "港区"}, {2, "b"}}, 1},
                                            {"1000001", {{0, "東京都"}, {1, "港区"}, {2, "a"}}}};
    EXPECT_EQ(BrowseIn(vEntry, {"--sort", "東京都", "港区"}).strOut,
              "0\ta\t1000001\t100\t\n1\tb\t1000000\t100\tyes\n");
    EXPECT_THAT(Browse({"--sort", "--kana", "東京都"}).strOut, EndsWith("\n11\t青ヶ島村\t\t\t\tアオガシマムラ\n"));
}

// --- superseded ----------------------------------------------------------------------------------------------------

TEST_F(QeadrsBrowse, MarksSupersededCitiesAndTowns) {
    EXPECT_EQ(BrowseIn(TWO_PREFECTURES, {"東京都"}).strOut, "0\t新市\t\t\t\n1\t旧市\t\t\tyes\n");
    EXPECT_EQ(BrowseIn(TWO_PREFECTURES, {"東京都", "新市"}).strOut,
              "0\t旧町\t1000000\t100\tyes\n1\t新町\t1000001\t100\t\n");
}

TEST_F(QeadrsBrowse, ListsTheTownsOfACityThatAreAllSuperseded) {
    CResult const result = BrowseIn(TWO_PREFECTURES, {"東京都", "旧市"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strErr, "");
    EXPECT_EQ(result.strOut, "0\t東\t1000003\t100\tyes\n1\t西\t1000004\t\tyes\n");
}

TEST_F(QeadrsBrowse, HasNoAddressOfTodayInASupersededPlace) {
    EXPECT_EQ(Remark(BrowseIn(TWO_PREFECTURES, {"東京都", "新市", "旧町"})),
              "qeadrs: 東京都新市旧町: not found; no address of today there\n");
    EXPECT_EQ(Remark(BrowseIn(TWO_PREFECTURES, {"--ui", "東京都", "旧市"})),
              "qeadrs: 東京都旧市: not found; no address of today there\n");
    EXPECT_EQ(Remark(BrowseIn(TWO_PREFECTURES, {"--ui", "東京都", "旧市", "東"})),
              "qeadrs: 東京都旧市東: not found; no address of today there\n");
}

TEST_F(QeadrsBrowse, PrintsTheCurrentPartsOfASupersededTown) {
    std::vector<CEntryText> const vEntry = {
        {"1000000", {{0, "東京都"}, {1, "港区"}, {2, "芝"}}, 1},
        {"1000001", {{0, "東京都"}, {1, "港区"}, {2, "芝"}, {3, "１丁目"}}},
    };
    EXPECT_EQ(BrowseIn(vEntry, {"東京都", "港区", "芝"}).strOut, "1000001\t100\t東京都\t港区\t芝\t１丁目\t\t\t\n");
    EXPECT_EQ(BrowseIn(vEntry, {"--ui", "東京都", "港区"}).strOut, "1000001\t100\t芝\t\n");
}

// --- lines for a screen --------------------------------------------------------------------------------------------

TEST_F(QeadrsBrowse, PrintsLinesForAScreenOfACity) {
    CResult const result = Browse({"--ui", "宮城県", "仙台市青葉区"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strErr, "");
    // The line of the bookshop is the library's own, with the building that its neighbours have left in it; the last
    // one is the city's own code, which has no town.
    EXPECT_EQ(result.strOut, "9800811\t980\t一番町\t\n9800011\t980\t上杉\t\n9800021\t980\t中央\t\n"
                             "9806190\t980\t中央 アエル\t\n9806101\t980\t中央 アエル １階\t\n"
                             "9806102\t980\t中央 アエル ２階\t\n9806103\t980\t中央 アエル ３階\t\n"
                             "9808790\t980\t中央 アエル\t株式会社　見本書房　仙台支店\n"
                             "9800014\t980\t本町\t\n9808570\t980\t本町\t宮城県庁\n9800000\t980\t\t\n");
}

TEST_F(QeadrsBrowse, PrintsLinesForAScreenOfATown) {
    CResult const result = Browse({"--ui", "東京都", "千代田区", "丸の内"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strErr, "");
    EXPECT_EQ(result.strOut, "1000005\t100\t丸の内\t\n1008790\t100\t丸の内\t（株）見本商事\n");
}

TEST_F(QeadrsBrowse, SortsTheLinesOnDemand) {
    EXPECT_EQ(Browse({"--ui", "--sort", "東京都", "台東区"}).strOut,
              "1100000\t110\t\t\n1100005\t110\t上野\t\n1100007\t110\t上野公園\t\n1110032\t111\t浅草\t\n"
              "1110053\t111\t浅草橋\t\n");
}

TEST_F(QeadrsBrowse, HasLinesForACityThatListsNoTowns) {
    EXPECT_EQ(Browse({"--ui", "東京都", "利島村"}).strOut, "1000301\t10003\t\t\n");
}

TEST_F(QeadrsBrowse, NeedsACityForItsLines) {
    for (std::vector<std::string> const& vPath :
         std::vector<std::vector<std::string>>{{"--ui"}, {"--ui", "東京都"}, {"--ui", "--json", "架空"}}) {
        SCOPED_TRACE(testing::PrintToString(vPath));
        for (CResult const& result : {Browse(vPath), AskOnTerminal("browse", vPath)}) {
            EXPECT_EQ(result.nStatus, 2);
            EXPECT_EQ(result.strOut, "");
            EXPECT_EQ(result.strErr, "qeadrs: --ui needs a prefecture and a city.\n");
        }
    }
}

// --- places by number ----------------------------------------------------------------------------------------------

TEST_F(QeadrsBrowse, TakesNumbersForPlaces) {
    EXPECT_EQ(Browse({"12", "2"}).strOut, TOWNS_OF_MINATO);
    EXPECT_EQ(Browse({"0"}).strOut, CITIES_OF_HOKKAIDO);
    EXPECT_EQ(Browse({"12", "港区", "1"}).strOut, "1050011\t105\t東京都\t港区\t芝公園\t\t\t\t\n");
}

TEST_F(QeadrsBrowse, TakesNumbersWithLeadingZeros) {
    EXPECT_EQ(Browse({"00012", "02"}).strOut, TOWNS_OF_MINATO);
    EXPECT_EQ(Browse({"000"}).strOut, CITIES_OF_HOKKAIDO);
}

TEST_F(QeadrsBrowse, ReportsANumberThatIsTooLarge) {
    for (std::string const strNumber : {"47", "65535", "65536", "65548", "4294967296", "4294967308",
                                        "18446744073709551628", "99999999999999999999999999"})
        EXPECT_EQ(Remark(Browse({strNumber})),
                  "qeadrs: " + strNumber + ": not found; the numbers of prefectures are 0 to 46\n");
    EXPECT_EQ(Remark(Browse({"12", "12"})), "qeadrs: 12: not found; the numbers of cities are 0 to 11\n");
    EXPECT_EQ(Remark(Browse({"12", "65538"})), "qeadrs: 65538: not found; the numbers of cities are 0 to 11\n");
    EXPECT_EQ(Remark(Browse({"12", "2", "4"})), "qeadrs: 4: not found; the numbers of towns are 0 to 3\n");
    EXPECT_EQ(Remark(Browse({"12", "2", "0004"})), "qeadrs: 0004: not found; the numbers of towns are 0 to 3\n");
}

TEST_F(QeadrsBrowse, ReportsTheNumberOfAnAbsentPrefecture) {
    for (std::string const strNumber : {"0", "13", "32", "34"})
        EXPECT_EQ(Remark(BrowseIn(TWO_PREFECTURES, {strNumber})),
                  "qeadrs: " + strNumber + ": not found; the numbers of prefectures are 12 to 33\n");
}

TEST_F(QeadrsBrowse, PrefersTheNumberToATownThatIsNamedSo) {
    std::vector<CEntryText> const vEntry = Towns({"2", "1", "0", "9"});
    EXPECT_EQ(BrowseIn(vEntry, {"東京都", "港区", "0"}).strOut, Address("1000000", "2"));
    EXPECT_EQ(BrowseIn(vEntry, {"東京都", "港区", "2"}).strOut, Address("1000002", "0"));
    EXPECT_EQ(Remark(BrowseIn(vEntry, {"東京都", "港区", "9"})),
              "qeadrs: 9: not found; the numbers of towns are 0 to 3\n");
}

TEST_F(QeadrsBrowse, TakesOtherDigitsForAName) {
    std::vector<CEntryText> const vEntry = Towns({"１", "０", "-1", "+0"});
    EXPECT_EQ(BrowseIn(vEntry, {"東京都", "港区", "０"}).strOut, Address("1000001", "０"));
    EXPECT_EQ(BrowseIn(vEntry, {"--", "東京都", "港区", "-1"}).strOut, Address("1000002", "-1"));
    EXPECT_EQ(BrowseIn(vEntry, {"東京都", "港区", "+0"}).strOut, Address("1000003", "+0"));
}

// The library takes a position of 16 bits.
TEST_F(QeadrsBrowse, NeverPrintsTheTownsOfAnotherCityForALargeNumber) {
    std::vector<CEntryText> vEntry;
    for (int i = 0; i < 65538; ++i)
        vEntry.push_back({"1000000", {{0, "東京都"}, {1, 'c' + std::to_string(i)}, {2, 't' + std::to_string(i)}}});
    std::string const strDic = WriteDictionary(vEntry);
    EXPECT_EQ(Run(WithDic("browse", strDic, {"東京都", "65534"})).strOut, "0\tt65534\t1000000\t100\t\n");
    for (char const* pszCity : {"65536", "c65537"}) {
        EXPECT_THAT(Run(WithDic("browse", strDic, {"東京都", pszCity})).strOut, Not(HasSubstr("t65535")));
        EXPECT_THAT(Run(WithDic("browse", strDic, {"東京都", pszCity, "0"})).strOut, Not(HasSubstr("t65535")));
    }
}

// --- places by name ------------------------------------------------------------------------------------------------

TEST_F(QeadrsBrowse, TakesReadingsInEitherKanaForPlaces) {
    for (char const* pszReading :
         {"トウキョウト", "とうきょうと", "トウキヨウト", "とうきようと", "ﾄｳｷｮｳﾄ", "とウきョうと"})
        EXPECT_EQ(Browse({pszReading}).strOut, CITIES_OF_TOKYO) << pszReading;
    EXPECT_EQ(Browse({"とうきょうと", "みなとく"}).strOut, TOWNS_OF_MINATO);
    EXPECT_EQ(Browse({"トウキョウト", "ﾐﾅﾄｸ", "しばこうえん"}).strOut,
              "1050011\t105\t東京都\t港区\t芝公園\t\t\t\t\n");
}

TEST_F(QeadrsBrowse, TakesTheBeginningOfANameOrReadingThatFitsOnePlace) {
    EXPECT_EQ(Browse({"東"}).strOut, CITIES_OF_TOKYO);
    EXPECT_EQ(Browse({"とうき"}).strOut, CITIES_OF_TOKYO);
    EXPECT_EQ(Browse({"東京", "ミナト"}).strOut, TOWNS_OF_MINATO);
}

TEST_F(QeadrsBrowse, TakesTheEndOfANameThatFitsOnePlace) {
    EXPECT_EQ(Browse({"北海道", "余市町"}).strOut, Browse({"北海道", "余市郡余市町"}).strOut);
    EXPECT_THAT(Browse({"北海道", "余市町"}).strOut, StartsWith("0\t入舟町\t"));
    EXPECT_EQ(Browse({"京都"}).strOut, Browse({"京都府"}).strOut); // its beginning, though 東京都 ends so
    EXPECT_EQ(Browse({"都"}).strOut, CITIES_OF_TOKYO);
}

TEST_F(QeadrsBrowse, PrefersAWholeNameToThoseThatItBegins) {
    EXPECT_THAT(Browse({"東京都", "港区", "芝"}).strOut, StartsWith("1050014\t"));
    EXPECT_THAT(Browse({"東京都", "港区", "しば"}).strOut, StartsWith("1050014\t"));
    std::vector<CEntryText> const vEntry = Towns({"本町東", "本町", "西本町"});
    EXPECT_EQ(BrowseIn(vEntry, {"東京都", "港区", "本町"}).strOut, Address("1000001", "本町"));
}

TEST_F(QeadrsBrowse, PrefersABeginningToAnEnd) {
    EXPECT_EQ(BrowseIn(Towns({"本町", "町田", "元町"}), {"東京都", "港区", "町"}).strOut, Address("1000001", "町田"));
}

TEST_F(QeadrsBrowse, DoesNotTakeAMiddleOfAName) {
    EXPECT_EQ(Remark(BrowseIn(Towns({"東本町", "西"}), {"東京都", "港区", "本"})),
              "qeadrs: 本: not found; no town of this name there\n");
}

TEST_F(QeadrsBrowse, IgnoresBlanksAroundAPlace) {
    EXPECT_EQ(Browse({" 12　", "\t港区 "}).strOut, TOWNS_OF_MINATO);
}

TEST_F(QeadrsBrowse, AsksWhichPlaceIsMeantWhenSeveralFit) {
    EXPECT_EQ(Remark(Browse({"山"})),
              "qeadrs: 山: not found; 3 prefectures fit, say which by its number: 5 山形県, 18 山梨県, 34 山口県\n");
    EXPECT_EQ(Remark(Browse({"北海道", "さっぽろ"})), "qeadrs: さっぽろ: not found; 3 cities fit, say which by its "
                                                      "number: 0 札幌市中央区, 1 札幌市北区, 2 札幌市南区\n");
    EXPECT_EQ(Remark(Browse({"富山県", "富山市", "石田"})),
              "qeadrs: 石田: not found; 2 towns fit, say which by its number: 0 石田, 1 石田\n");
}

TEST_F(QeadrsBrowse, NamesFiveOfThePlacesThatFit) {
    EXPECT_EQ(Remark(Browse({"東京都", "区"})), "qeadrs: 区: not found; 6 cities fit, say which by its number: "
                                                "0 千代田区, 1 中央区, 2 港区, 3 新宿区, 4 台東区, ...\n");
    EXPECT_EQ(Remark(BrowseIn(Towns({"ta", "tb", "tc", "td", "te"}), {"東京都", "港区", "t"})),
              "qeadrs: t: not found; 5 towns fit, say which by its number: 0 ta, 1 tb, 2 tc, 3 td, 4 te\n");
    std::vector<std::string> vName;
    for (int i = 0; i < 1234; ++i) vName.push_back('t' + std::to_string(i));
    EXPECT_EQ(Remark(BrowseIn(Towns(vName), {"東京都", "港区", "t"})),
              "qeadrs: t: not found; 1,234 towns fit, say which by its number: 0 t0, 1 t1, 2 t2, 3 t3, 4 t4, ...\n");
}

TEST_F(QeadrsBrowse, AsksByTheNumbersOfTheSortedList) {
    EXPECT_EQ(Remark(Browse({"--sort", "東京都", "町"})),
              "qeadrs: 町: not found; 2 cities fit, say which by its number: 2 八丈島八丈町, 6 大島町\n");
}

TEST_F(QeadrsBrowse, TellsWhichPrefecturesAPlaceOfANextLevelLiesIn) {
    EXPECT_EQ(Remark(Browse({"府中市"})),
              "qeadrs: 府中市: not found; no prefecture of this name; it is a place in 広島県, 東京都\n");
    EXPECT_EQ(Remark(Browse({"小樽市"})),
              "qeadrs: 小樽市: not found; no prefecture of this name; it is a place in 北海道\n");
    EXPECT_EQ(Remark(Browse({"東京都千代田区"})),
              "qeadrs: 東京都千代田区: not found; no prefecture of this name; it is a place in 東京都\n");
}

TEST_F(QeadrsBrowse, ReportsANameThatIsNotThere) {
    EXPECT_EQ(Remark(Browse({"架空県"})), "qeadrs: 架空県: not found; no prefecture of this name\n");
    EXPECT_EQ(Remark(Browse({"東京都", "小樽市"})), "qeadrs: 小樽市: not found; no city of this name there\n");
    EXPECT_EQ(Remark(Browse({"東京都", "港区", "銀座"})), "qeadrs: 銀座: not found; no town of this name there\n");
    EXPECT_EQ(Remark(Browse({"--ui", "東京都", "港区", "銀座"})),
              "qeadrs: 銀座: not found; no town of this name there\n");
}

TEST_F(QeadrsBrowse, ReportsTheFirstPlaceThatIsNotThere) {
    EXPECT_EQ(Remark(Browse({"架空県", "x", "y"})), "qeadrs: 架空県: not found; no prefecture of this name\n");
}

TEST_F(QeadrsBrowse, NamesOnlyTheBeginningOfALongTextThatIsNotThere) {
    std::string const strLong = std::string(1000, 'x');
    EXPECT_EQ(Remark(Browse({strLong})),
              "qeadrs: " + std::string(40, 'x') + "...: not found; no prefecture of this name\n");
    EXPECT_EQ(Remark(Browse({"東京都", strLong})),
              "qeadrs: " + std::string(40, 'x') + "...: not found; no city of this name there\n");
    // Longer than the field of an address record.
    EXPECT_THAT(Remark(Browse({"小樽市" + strLong})),
                EndsWith("...: not found; no prefecture of this name; it is a place in 北海道\n"));
}

TEST_F(QeadrsBrowse, FindsNothingForATextThatIsNotUtf8) {
    EXPECT_EQ(Remark(Browse({"\xFF"})), "qeadrs: \uFFFD: not found; no prefecture of this name\n");
    EXPECT_EQ(Remark(Browse({"東京都", "\xFF"})), "qeadrs: \uFFFD: not found; no city of this name there\n");
    // One town only, with a reading or without: the text is still not its name.
    EXPECT_EQ(Remark(Browse({"東京都", "大島町", "\xE5"})),
              "qeadrs: \uFFFD: not found; no town of this name there\n");
    EXPECT_EQ(Remark(BrowseIn(Towns({"芝"}), {"東京都", "港区", "\xFF"})),
              "qeadrs: \uFFFD: not found; no town of this name there\n");
}

TEST_F(QeadrsBrowse, DoesNotTakeAPartOfACharacter) {
    std::vector<CEntryText> const vEntry = Towns({"芝"}); // E8 8A 9D
    EXPECT_EQ(Remark(BrowseIn(vEntry, {"東京都", "港区", "\xE8\x8A"})),
              "qeadrs: \uFFFD\uFFFD: not found; no town of this name there\n");
    EXPECT_EQ(Remark(BrowseIn(vEntry, {"東京都", "港区", "\x8A\x9D"})),
              "qeadrs: \uFFFD\uFFFD: not found; no town of this name there\n");
}

// --- wrong calls ---------------------------------------------------------------------------------------------------

TEST_F(QeadrsBrowse, RefusesABlankPlace) {
    for (std::vector<std::string> const& vPath : std::vector<std::vector<std::string>>{
             {""}, {" "}, {"　"}, {"東京都", ""}, {"東京都", "　"}, {"東京都", "港区", "\t"}, {"架空", "", "x"}}) {
        SCOPED_TRACE(testing::PrintToString(vPath));
        CResult const result = Browse(vPath);
        EXPECT_EQ(result.nStatus, 2);
        EXPECT_EQ(result.strOut, "");
        EXPECT_THAT(result.strErr, AllOf(StartsWith("qeadrs: \""), EndsWith(": it has no characters.\n")));
    }
}

TEST_F(QeadrsBrowse, RefusesAWrongCall) {
    for (std::vector<std::string> const& vCall : std::vector<std::vector<std::string>>{
             {"東京都", "港区", "芝", "１丁目"}, {"--json", "--header"}, {"--limit", "1"}, {"-x"}}) {
        SCOPED_TRACE(testing::PrintToString(vCall));
        CResult const result = Browse(vCall);
        EXPECT_EQ(result.nStatus, 2);
        EXPECT_EQ(result.strOut, "");
        EXPECT_THAT(result.strErr,
                    AllOf(StartsWith("qeadrs: "), EndsWith("\nRun `qeadrs --help` or `qeadrs COMMAND --help`.\n")));
    }
}

TEST_F(QeadrsBrowse, SeesAWrongCallBeforeItMissesTheDictionary) {
    EXPECT_EQ(Run({"browse", " "}).nStatus, 2);
    EXPECT_EQ(Run({"browse", "--ui", "東京都"}).nStatus, 2);
    EXPECT_EQ(Run({"browse"}).nStatus, 3);
    EXPECT_EQ(Run({"browse", "東京都"}).nStatus, 3);
}

// --- odd dictionaries ----------------------------------------------------------------------------------------------

TEST_F(QeadrsBrowse, TellsWhatIsThereWhereACityListsNoTowns) {
    for (char const* pszCity : {"利島村", "青ヶ島村"})
        EXPECT_EQ(Remark(Browse({"東京都", pszCity})),
                  "qeadrs: 東京都" + std::string(pszCity) +
                      ": not found; there are no towns (--ui shows the city's addresses)\n");
    EXPECT_EQ(Remark(Browse({"東京都", "利島村", "0"})), "qeadrs: 0: not found; there are no towns\n");
    EXPECT_EQ(Remark(Browse({"東京都", "利島村", "利島村"})), "qeadrs: 利島村: not found; there are no towns\n");
}

TEST_F(QeadrsBrowse, ReportsAPrefectureWithoutCities) {
    std::vector<CEntryText> const vEntry = {{"1000000", {{0, "東京都"}}}};
    EXPECT_EQ(BrowseIn(vEntry, {}).strOut, "12\t東京都\t\t\t\n");
    EXPECT_EQ(Remark(BrowseIn(vEntry, {"東京都"})), "qeadrs: 東京都: not found; there are no cities\n");
    EXPECT_EQ(Remark(BrowseIn(vEntry, {"東京都", "0"})), "qeadrs: 0: not found; there are no cities\n");
    EXPECT_EQ(Remark(BrowseIn(vEntry, {"--ui", "東京都", "0", "0"})), "qeadrs: 0: not found; there are no cities\n");
}

TEST_F(QeadrsBrowse, ReportsAnEmptyDictionary) {
    EXPECT_EQ(Remark(BrowseIn({}, {"東京都"})), "qeadrs: 東京都: not found; there are no prefectures\n");
    EXPECT_EQ(Remark(BrowseIn({}, {"0"})), "qeadrs: 0: not found; there are no prefectures\n");
    // Nothing was asked for that could be named.
    EXPECT_THAT(Remark(BrowseIn({}, {})), AllOf(StartsWith("qeadrs: "), Not(StartsWith("qeadrs: : "))));
}

// A prefecture that the library cannot place is not listed, or stands where the one before it stood.
TEST_F(QeadrsBrowse, SurvivesAnUnknownPrefecture) {
    CEntryText const tokyo = {"1000000", {{0, "東京都"}, {1, "港区"}, {2, "芝"}}};
    CEntryText const unknown = {"1000001", {{0, "架空県"}, {1, "見本市"}, {2, "架空"}}};
    Remark(BrowseIn({unknown}, {}));
    EXPECT_EQ(Remark(BrowseIn({unknown}, {"架空県"})), "qeadrs: 架空県: not found; there are no prefectures\n");
    EXPECT_EQ(BrowseIn({unknown, tokyo}, {}).strOut, "12\t東京都\t\t\t\n");
    EXPECT_EQ(BrowseIn({tokyo, unknown}, {}).strOut, "12\t架空県\t\t\t\n");
    EXPECT_EQ(BrowseIn({tokyo, unknown}, {"12", "0", "0"}).strOut, "1000001\t100\t架空県\t見本市\t架空\t\t\t\t\n");
}

// The length of a name has one byte in the library's blocks.
TEST_F(QeadrsBrowse, SurvivesNamesThatAreTooLongForTheLibrary) {
    std::string const str256(256, 'x');
    std::string const str300(300, 'y');
    std::vector<CEntryText> const vEntry = Towns({"a", str256, "b", str300, "c"});
    CResult const result = BrowseIn(vEntry, {"東京都", "港区"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strErr, "");
    EXPECT_EQ(result.strOut, "0\ta\t1000000\t100\t\n1\t" + str256 + "\t1000001\t100\t\n2\tb\t1000002\t100\t\n3\t" +
                                 str300 + "\t1000003\t100\t\n4\tc\t1000004\t100\t\n");
    EXPECT_EQ(BrowseIn(vEntry, {"東京都", "港区", "4"}).strOut, Address("1000004", "c"));
    EXPECT_EQ(BrowseIn({{"1000000", {{0, "東京都"}, {1, str256}, {2, "芝"}}}, {"1000001", {{0, "東京都"}, {1, "z"}}}},
                       {"東京都"})
                  .strOut,
              "0\t" + str256 + "\t\t\t\n1\tz\t\t\t\n");
}

TEST_F(QeadrsBrowse, TakesTheLongestNameThatFitsTheLibrary) {
    std::string const strName(255, 'x');
    EXPECT_EQ(BrowseIn(Towns({strName, "b"}), {"東京都", "港区"}).strOut,
              "0\t" + strName + "\t1000000\t100\t\n1\tb\t1000001\t100\t\n");
}

// Such a one stands in the list of towns, where the library puts every named place right below a city.
TEST_F(QeadrsBrowse, PrintsTheAddressOfAnOrganisationRightBelowACity) {
    std::vector<CEntryText> const vEntry = {{"1000000", {{0, "東京都"}, {1, "港区"}, {7, "役所"}}},
                                            {"1000001", {{0, "東京都"}, {1, "港区"}, {2, "芝"}}}};
    EXPECT_EQ(BrowseIn(vEntry, {"東京都", "港区"}).strOut, "0\t役所\t1000000\t100\t\n1\t芝\t1000001\t100\t\n");
    EXPECT_EQ(BrowseIn(vEntry, {"東京都", "港区", "1"}).strOut, Address("1000001", "芝"));
    EXPECT_EQ(BrowseIn(vEntry, {"東京都", "港区", "0"}).strOut, "1000000\t100\t東京都\t港区\t\t\t\t\t役所\n");
}

TEST_F(QeadrsBrowse, KeepsALineALineWhateverTheNamesHold) {
    std::vector<CEntryText> const vEntry = Towns({"a\tb\nc\x1B[md", "x\xE5\x8D"});
    EXPECT_EQ(BrowseIn(vEntry, {"東京都", "港区"}).strOut,
              "0\ta b c [md\t1000000\t100\t\n1\tx\uFFFD\uFFFD\t1000001\t100\t\n");
    EXPECT_EQ(Remark(BrowseIn(Towns({"t\nu", "t\x1Bv"}), {"東京都", "港区", "t"})),
              "qeadrs: t: not found; 2 towns fit, say which by its number: 0 t u, 1 t v\n");
}

// --- forms ---------------------------------------------------------------------------------------------------------

TEST_F(QeadrsBrowse, IsOneJsonObjectPerPlaceOnDemand) {
    EXPECT_EQ(BrowseIn(TWO_PREFECTURES, {"--json", "東京都", "旧市"}).strOut,
              R"({"number":"0","name":"東","postal_code":"1000003","old_code":"100","superseded":"yes"})"
              "\n"
              R"({"number":"1","name":"西","postal_code":"1000004","old_code":null,"superseded":"yes"})"
              "\n");
    EXPECT_THAT(Browse({"--json", "--kana", "東京都"}).strOut,
                StartsWith(R"({"number":"0","name":"千代田区","postal_code":null,"old_code":null,"superseded":null,)"
                           R"("kana":"チヨダク"})"
                           "\n"));
    EXPECT_EQ(Browse({"--json", "--ui", "広島県", "府中市"}).strOut,
              R"({"postal_code":"7260003","old_code":"726","line":"元町","organisation":null})"
              "\n"
              R"({"postal_code":"7260000","old_code":"726","line":null,"organisation":null})"
              "\n");
    EXPECT_EQ(Browse({"--json", "千葉県", "成田市", "花崎町"}).strOut, Zip({"--json", "2860033"}).strOut);
}

TEST_F(QeadrsBrowse, NamesItsColumnsOnDemand) {
    std::string const strList = "number\tname\tpostal_code\told_code\tsuperseded";
    EXPECT_THAT(Browse({"--header"}).strOut, StartsWith(strList + "\n0\t北海道\t"));
    EXPECT_EQ(Browse({"--header", "東京都"}).strOut, strList + "\n" + CITIES_OF_TOKYO);
    EXPECT_EQ(Browse({"--header", "--kana", "東京都", "大島町"}).strOut,
              strList + "\tkana\n0\t元町\t1000101\t10001\t\tモトマチ\n");
    EXPECT_EQ(Browse({"--header", "東京都", "三宅村", "神着"}).strOut, Zip({"--header", "1001101"}).strOut);
    EXPECT_EQ(Browse({"--header", "--kana", "東京都", "港区", "芝公園"}).strOut,
              Zip({"--header", "--kana", "1050011"}).strOut);
    EXPECT_EQ(Browse({"--header", "--kana", "--ui", "広島県", "府中市", "元町"}).strOut,
              "postal_code\told_code\tline\torganisation\n7260003\t726\t元町\t\n");
    EXPECT_EQ(Browse({"--header", "架空県"}).strOut, strList + "\n");
}

TEST_F(QeadrsBrowse, IsATableOnATerminal) {
    EXPECT_EQ(AskOnTerminal("browse", {"広島県"}).strOut,
              "number  name\n0       広島市中区\n1       府中市\n2       安芸郡府中町\n");
    EXPECT_EQ(AskOnTerminal("browse", {"--kana", "東京都", "港区"}).strOut,
              "number  name    postal code  old code  kana\n"
              "0       芝浦                           シバウラ\n"
              "1       芝公園  1050011      105       シバコウエン\n"
              "2       芝                             シバ\n"
              "3       虎ノ門  1050001      105       トラノモン\n");
    EXPECT_EQ(AskOnTerminal("browse", {"東京都", "港区", "芝浦"}).strOut,
              "postal code  old code  prefecture  city  town  area\n"
              "1050023      105       東京都      港区  芝浦  １丁目\n"
              "1080023      108       東京都      港区  芝浦  ２〜４丁目\n");
    EXPECT_EQ(AskOnTerminal("browse", {"--ui", "東京都", "千代田区", "丸の内"}).strOut,
              "postal code  old code  line    organisation\n"
              "1000005      100       丸の内\n"
              "1008790      100       丸の内  （株）見本商事\n");
    EXPECT_EQ(RunOnTerminal(WithDic("browse", WriteDictionary(TWO_PREFECTURES), {"東京都"})).strOut,
              "number  name  superseded\n0       新市\n1       旧市  yes\n");
}

TEST_F(QeadrsBrowse, KeepsQuietOnDemand) {
    for (std::vector<std::string> const& vPath : std::vector<std::vector<std::string>>{
             {"-q", "架空県"}, {"-q", "99"}, {"-q", "山"}, {"-q", "東京都", "利島村"}, {"-q", "府中市"}})
        EXPECT_EQ(Remark(Browse(vPath)), "") << testing::PrintToString(vPath);
    EXPECT_EQ(Browse({"-q", "東京都"}).strOut, CITIES_OF_TOKYO);
}

TEST_F(QeadrsBrowse, ReportsAFullDisk) {
    CHandle const hFull = open("/dev/full", O_WRONLY);
    CHandle const hError = open(Path("stderr").c_str(), O_WRONLY | O_CREAT, 0600);
    EXPECT_EQ(Wait(StartCommand(WithDic("browse", Sample(), {"東京都"}), hFull, hFull, hError)), 4);
    EXPECT_EQ(ReadFile(Path("stderr")), "qeadrs: the output cannot be written.\n");
}

TEST_F(QeadrsBrowse, ExplainsItselfOnOneScreen) {
    CResult const result = Run({"browse", "--help"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_THAT(result.strOut, StartsWith("qeadrs browse - prefectures, cities and towns, level by level\n"
                                          "Usage: qeadrs browse [OPTION...] [PREFECTURE [CITY [TOWN]]]\n"));
    EXPECT_THAT(result.strOut, EndsWith("\nExit: 0 found, 1 not found, 2 usage, 3 no dictionary, 4 system error.\n"));
    EXPECT_LE(Lines(result.strOut).size(), 24u);
}

TEST_F(QeadrsBrowse, IsListedAmongTheCommands) {
    EXPECT_THAT(Run({"--help"}).strOut, HasSubstr("\n  browse "));
}

// --- standard input ------------------------------------------------------------------------------------------------

TEST_F(QeadrsBrowse, DoesNotReadStandardInput) {
    CHandle const hInput = open(WriteFile("input", "東京都\n").c_str(), O_RDONLY);
    CHandle const hNull = open("/dev/null", O_RDWR);
    for (std::vector<std::string> const& vPath : std::vector<std::vector<std::string>>{{}, {"東京都"}, {"架空"}})
        Wait(StartCommand(WithDic("browse", Sample(), vPath), hInput, hNull, hNull));
    EXPECT_EQ(lseek(hInput, 0, SEEK_CUR), 0);
    CPipe const pipe; // nothing ever comes out of it
    EXPECT_EQ(Wait(StartCommand(WithDic("browse", Sample(), {}), pipe.hRead, hNull, hNull)), 0);
    EXPECT_EQ(Wait(StartCommand(WithDic("browse", Sample(), {"東京都"}), -1, hNull, hNull)), 0);
}

TEST_F(QeadrsBrowse, ListsThePrefecturesToAPipeThoughSomebodyTypes) {
    m_environment["TERM"] = "xterm-256color";
    CTerminal const terminal;
    CPipe output;
    CHandle const hNull = open("/dev/null", O_RDWR);
    pid_t const nProcess = StartCommand(WithDic("browse", Sample(), {}), terminal.hSlave, output.hWrite, hNull);
    output.hWrite = CHandle();
    EXPECT_EQ(ReadAll(output.hRead), Browse({}).strOut);
    EXPECT_EQ(Wait(nProcess), 0);
}

TEST_F(QeadrsBrowse, ListsThePrefecturesOnATerminalWhenNobodyTypes) {
    m_environment["TERM"] = "xterm-256color";
    EXPECT_THAT(AskOnTerminal("browse", {}).strOut, StartsWith("number  name\n0       北海道\n"));
}

// --- the whole sample ----------------------------------------------------------------------------------------------

using CTexts = std::vector<std::string>;

// The texts between the tabs of a line.
CTexts Cells(std::string const& strLine) {
    CTexts vCell(1);
    for (char const c : strLine) {
        if (c == '\t')
            vCell.emplace_back();
        else
            vCell.back() += c;
    }
    return vCell;
}

// Columns of `qeadrs zip --kana`.
enum { CODE, OLD_CODE, PREF, CITY, TOWN, AREA, BUILDING, FLOOR, OFFICE, PREF_KANA, CITY_KANA, TOWN_KANA, COUNT = 15 };
// Columns of the lists.
enum { NUMBER, NAME, TOWN_CODE, TOWN_OLD_CODE, SUPERSEDED };

bool IsTownItself(CTexts const& vAddress) {
    return (vAddress[AREA] + vAddress[BUILDING] + vAddress[FLOOR] + vAddress[OFFICE]).empty();
}

// The address of a town itself, by an address in it.
CTexts TownItself(CTexts vAddress) {
    for (size_t n = AREA; n < COUNT; ++n)
        if (n < PREF_KANA || n > TOWN_KANA) vAddress[n].clear();
    return vAddress;
}

// The line for a screen of an address: its town, then its building, then its floor; the area is not in it. A line of an
// organisation is taken without its building, which may be a neighbour's.
CTexts ScreenLine(CTexts const& vAddress) {
    std::string strLine = vAddress[TOWN];
    if (vAddress[OFFICE].empty() && !vAddress[BUILDING].empty()) strLine += ' ' + vAddress[BUILDING];
    if (vAddress[OFFICE].empty() && !vAddress[FLOOR].empty()) strLine += ' ' + vAddress[FLOOR];
    return {vAddress[CODE], vAddress[OLD_CODE], strLine, vAddress[OFFICE]};
}

using CRows = std::vector<CTexts>;

CRows Sorted(CRows vRow) {
    std::sort(vRow.begin(), vRow.end());
    return vRow;
}

// The sample with an earlier edition, so that some of its cities are superseded, against what `zip` says of all codes.
class QeadrsBrowseOfAll : public QeadrsBrowse {
  protected:
    void SetUp() override {
        QeadrsBrowse::SetUp();
        std::string const strData = SAMPLE_DIR;
        CHandle const hNull = open("/dev/null", O_RDWR);
        pid_t const nProcess = Start({QEADRS_DIC_FILE, "build", "--towns", strData + "/utf_ken_all.csv", "--offices",
                                      strData + "/JIGYOSYO.CSV", "--previous", strData + "/previous-2018-01.csv",
                                      "--sample", "-q", "-o", Path("all.dic")},
                                     m_environment, "/", hNull, hNull, STDERR_FILENO);
        ASSERT_EQ(Wait(nProcess), 0);
    }

    // What a command prints; its status goes into nStatus.
    CRows Print(std::string const& strCommand, CTexts const& vArgument, int* pnStatus = nullptr) {
        CResult const result = Run(WithDic(strCommand, Path("all.dic"), vArgument));
        if (pnStatus != nullptr) *pnStatus = result.nStatus;
        CRows vRow;
        for (std::string const& strLine : Lines(result.strOut)) vRow.push_back(Cells(strLine));
        return vRow;
    }

    // The addresses of a town, checked against its row in the list of towns.
    CRows PrintTown(CTexts const& pref, CTexts const& city, CTexts const& town) {
        int nStatus = 0;
        CRows vAddress = Print("browse", {"--kana", pref[NUMBER], city[NUMBER], town[NUMBER]}, &nStatus);
        EXPECT_EQ(nStatus, town[SUPERSEDED] == "yes" ? 1 : 0);
        std::string strCodes; // of the town itself, when it has some, or of all its subdivisions
        std::set<std::string> others;
        for (CTexts const& v : vAddress) {
            EXPECT_EQ(v[PREF] + v[CITY] + v[TOWN], pref[NAME] + city[NAME] + town[NAME]);
            if (IsTownItself(v)) strCodes = v[CODE] + v[OLD_CODE];
            if (v[OFFICE].empty()) others.insert(v[CODE] + v[OLD_CODE]);
        }
        if (strCodes.empty() && others.size() == 1) strCodes = *others.begin();
        EXPECT_EQ(strCodes, town[SUPERSEDED] == "yes" ? "" : town[TOWN_CODE] + town[TOWN_OLD_CODE]);
        return vAddress;
    }

    // The lines of a city, those of organisations without a building.
    CRows PrintLines(CTexts const& pref, CTexts const& city) {
        CRows vLine = Print("browse", {"--ui", pref[NUMBER], city[NUMBER]});
        for (CTexts& v : vLine)
            if (!v[3].empty()) v[2] = v[2].substr(0, v[2].find(' '));
        return vLine;
    }
};

// What differs from `zip`, which finds by code what stands here below a place:
// - It prints superseded addresses, too.
// - A town that has no entry of its own refers to the code of its subdivisions when they all have the same one. It is
//   a line for the screen here, and no address.
// - What lies in no town (a city's own code, a village that is one town, its organisations) stands below no town here,
//   but among the lines of its city.
TEST_F(QeadrsBrowseOfAll, AgreesWithZip) {
    using CPath = CTexts; // names of prefecture, city and, for towns, town
    std::map<CPath, CRows> mapTown;
    for (CTexts const& v : Print("zip", {"--kana", "0", "1", "2", "3", "4", "5", "6", "7", "8", "9"}))
        mapTown[{v[PREF], v[CITY], v[TOWN]}].push_back(v);
    std::map<CPath, CRows> mapCity;
    std::map<CPath, CRows> mapReferring; // the towns without an entry of their own
    for (auto const& [path, vRow] : mapTown) {
        std::set<std::string> codes;
        for (CTexts const& v : vRow)
            if (v[OFFICE].empty()) codes.insert(v[CODE]);
        bool const bItself = std::any_of(vRow.begin(), vRow.end(), IsTownItself);
        CPath const city = {path[0], path[1]};
        if (!path[2].empty() && !bItself && codes.size() == 1) mapReferring[city].push_back(TownItself(vRow[0]));
        CRows& vCity = mapCity[city];
        vCity.insert(vCity.end(), vRow.begin(), vRow.end());
    }
    EXPECT_THAT(mapCity, SizeIs(108));
    EXPECT_GT(mapTown.size(), 300u);

    size_t nSuperseded = 0;
    for (CTexts const& pref : Print("browse", {}))
        for (CTexts const& city : Print("browse", {pref[NUMBER]})) {
            SCOPED_TRACE(pref[NAME] + city[NAME]);
            CRows vExpected = std::exchange(mapCity[{pref[NAME], city[NAME]}], {});
            CRows vExpectedLine;
            nSuperseded += city[SUPERSEDED] == "yes" ? 1u : 0u;
            if (city[SUPERSEDED] == "yes") vExpected.clear(); // so is all below it
            for (CTexts const& v : vExpected) vExpectedLine.push_back(ScreenLine(v));
            for (CTexts const& v : mapReferring[{pref[NAME], city[NAME]}]) vExpectedLine.push_back(ScreenLine(v));
            EXPECT_EQ(Sorted(PrintLines(pref, city)), Sorted(vExpectedLine));

            CRows vPrinted;
            for (CTexts const& town : Print("browse", {pref[NUMBER], city[NUMBER]})) {
                CRows const vTown = PrintTown(pref, city, town);
                vPrinted.insert(vPrinted.end(), vTown.begin(), vTown.end());
            }
            vExpected.erase(
                std::remove_if(vExpected.begin(), vExpected.end(), [](CTexts const& v) { return v[TOWN].empty(); }),
                vExpected.end());
            EXPECT_EQ(Sorted(vPrinted), Sorted(vExpected));
        }
    EXPECT_EQ(nSuperseded, 2u);
    for (auto const& [path, vRow] : mapCity) EXPECT_THAT(vRow, IsEmpty()) << "not listed: " << path[0] + path[1];
}

} // namespace
