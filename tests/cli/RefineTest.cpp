// `qeadrs refine`: the candidate tree as lines and as objects, and what is said where there is none.
#include "tests/cli/CliTest.h"

#include <nlohmann/json.hpp>

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;

using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

namespace {

// Behind all others in the order of codes: a search that ends with the table leaves its tree unsorted.
CEntryText const LAST = {"9999999", {{0, "沖縄県"}, {1, "那覇市"}, {2, "泉崎"}}};

class QeadrsRefine : public CliTest {
  protected:
    CResult Refine(std::vector<std::string> vArgument) { return Ask("refine", std::move(vArgument)); }

    // The same over a dictionary of the test's own.
    CResult RefineIn(std::vector<CEntryText> const& vEntry, std::vector<std::string> vArgument) {
        return AskIn(vEntry, "refine", std::move(vArgument));
    }
};

char const FUCHU[] = "東京都 (1 city)\n"
                     "  府中市 (5 addresses)\n"
                     "    1830000\n"
                     "    1830000\n"
                     "    1830023 宮町\n"
                     "    1838703 宮西町 府中市役所\n"
                     "    1830055 府中町\n"
                     "広島県 (1 city)\n"
                     "  府中市 (3 addresses)\n"
                     "    7260000\n"
                     "    7260000\n"
                     "    7260003 元町\n";

// --- what is found -------------------------------------------------------------------------------------------------

TEST_F(QeadrsRefine, PrintsTheTreeOfAPartOfACodeWithItsCounts) {
    CResult const result = Refine({"--code", "1050"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strOut, "東京都 (1 city)\n"
                             "  港区 (5 addresses)\n"
                             "    1050000\n"
                             "    1050011 芝公園\n"
                             "    1050023 芝浦 １丁目\n"
                             "    1050014 芝 １〜３丁目\n"
                             "    1050001 虎ノ門\n");
    EXPECT_EQ(result.strErr, "qeadrs: 1050: 1 prefecture, 1 city, 5 addresses\n");
}

TEST_F(QeadrsRefine, PrintsTheTreeOfACityThatTwoPrefecturesHave) {
    CResult const result = Refine({"--addr", "府中市"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strOut, FUCHU);
    EXPECT_EQ(result.strErr, "qeadrs: 府中市: 2 prefectures, 2 cities, 8 addresses\n");
}

TEST_F(QeadrsRefine, TakesCodesInTheSpellingsOfOtherCommands) {
    std::string const strExpected = Refine({"--code", "1050011"}).strOut;
    EXPECT_THAT(strExpected, HasSubstr("芝公園"));
    for (char const* const pszCode : {"105-0011", "〒105-0011", "１０５−００１１", "105ー0011"})
        EXPECT_EQ(Refine({"--code", pszCode}).strOut, strExpected) << pszCode;
}

TEST_F(QeadrsRefine, TakesAnAddressWithBlanksAroundIt) {
    EXPECT_EQ(Refine({"--addr", "　府中市 "}).strOut, FUCHU);
}

TEST_F(QeadrsRefine, LooksAtTheCodeAloneWhenBothAreGiven) {
    CResult const result = Refine({"--addr", "府中市", "--code", "7260003"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strOut, "広島県 (1 city)\n  府中市 (1 address)\n    7260003 元町\n");
    EXPECT_EQ(result.strErr, "qeadrs: the address is not looked at beside a code\n"
                             "qeadrs: 7260003: 1 prefecture, 1 city, 1 address\n");
}

TEST_F(QeadrsRefine, PrintsTheListsOfTheWholeDictionaryWithoutAText) {
    CResult const result = Refine({});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_THAT(result.strOut, StartsWith("北海道 (8 cities)\n"));
    EXPECT_THAT(result.strOut, HasSubstr("\n東京都 (12 cities)\n  三宅島三宅村 (2 addresses)\n    1001100\n"
                                         "    1001101 神着\n  中央区 (5 addresses)\n"));
    EXPECT_THAT(result.strOut, HasSubstr("\n沖縄県 (1 city)\n"));
    EXPECT_EQ(result.strErr, "qeadrs: 47 prefectures, 106 cities, 467 addresses\n");
    EXPECT_THAT(Lines(result.strOut), SizeIs(47 + 106 + 467));
}

TEST_F(QeadrsRefine, StopsAtTheLevelThatIsAskedFor) {
    CResult const prefs = Refine({"--addr", "府中市", "--levels", "1"});
    EXPECT_EQ(prefs.strOut, "東京都 (1 city)\n広島県 (1 city)\n");
    EXPECT_EQ(prefs.strErr, "qeadrs: 府中市: 2 prefectures, 2 cities\n");
    CResult const cities = Refine({"--addr", "府中市", "--levels", "2"});
    EXPECT_EQ(cities.strOut, "東京都 (1 city)\n  府中市 (5 addresses)\n広島県 (1 city)\n  府中市 (3 addresses)\n");
    EXPECT_EQ(cities.strErr, "qeadrs: 府中市: 2 prefectures, 2 cities, 8 addresses\n");
    EXPECT_EQ(Refine({"--addr", "府中市", "--levels", "3"}).strOut, FUCHU);
    EXPECT_THAT(Lines(Refine({"--levels", "1"}).strOut), SizeIs(47));
}

TEST_F(QeadrsRefine, PrintsAnObjectForEachPrefecture) {
    CResult const result = Refine({"--addr", "府中市", "--json"});
    EXPECT_EQ(result.nStatus, 0);
    std::vector<std::string> const vLine = Lines(result.strOut);
    ASSERT_THAT(vLine, SizeIs(2));
    EXPECT_THAT(vLine[0], StartsWith(R"({"prefecture":"東京都","city_count":1,"cities":[{"city":"府中市",)"
                                     R"("address_count":5,"addresses":[{"postal_code":"1830000","old_code":"183",)"
                                     R"("town":null,"detail":null,"detail_kind":null},)"));
    EXPECT_EQ(vLine[1], R"({"prefecture":"広島県","city_count":1,"cities":[{"city":"府中市","address_count":3,)"
                        R"("addresses":[{"postal_code":"7260000","old_code":"726","town":null,"detail":null,)"
                        R"("detail_kind":null},{"postal_code":"7260000","old_code":"726","town":null,"detail":null,)"
                        R"("detail_kind":null},{"postal_code":"7260003","old_code":"726","town":"元町",)"
                        R"("detail":null,"detail_kind":null}]}]})");
}

TEST_F(QeadrsRefine, LeavesOutOfAnObjectWhatIsBelowTheLevelThatIsAskedFor) {
    EXPECT_EQ(Refine({"--code", "726", "--json", "--levels", "1"}).strOut,
              "{\"prefecture\":\"広島県\",\"city_count\":1}\n");
    EXPECT_EQ(
        Refine({"--code", "726", "--json", "--levels", "2"}).strOut,
        "{\"prefecture\":\"広島県\",\"city_count\":1,\"cities\":[{\"city\":\"府中市\",\"address_count\":2}]}\n");
}

TEST_F(QeadrsRefine, NamesTheKindsOfDetails) {
    auto const Kind = [&](char const* pszCode) {
        auto const object = nlohmann::json::parse(Refine({"--code", pszCode, "--json"}).strOut);
        auto const& address = object["cities"][0]["addresses"][0];
        return address["detail_kind"].get<std::string>() + ": " + address["detail"].get<std::string>();
    };
    EXPECT_EQ(Kind("1050023"), "area: １丁目");
    EXPECT_EQ(Kind("1006801"), "building: ＪＡビル１階");
    EXPECT_EQ(Kind("1006890"), "building: ＪＡビル");
    EXPECT_EQ(Kind("1008111"), "organisation: 宮内庁");
}

// --- rules of the tree ---------------------------------------------------------------------------------------------

TEST_F(QeadrsRefine, ListsCitiesAndTownsByTheBytesOfTheirNames) {
    CResult const result = RefineIn({{"1000001", {{0, "東京都"}, {1, "港区"}, {2, "芝"}}},
                                     {"1000002", {{0, "東京都"}, {1, "港区"}, {2, "三田"}}},
                                     {"1000003", {{0, "東京都"}, {1, "中央区"}, {2, "銀座"}}},
                                     {"1000004", {{0, "北海道"}, {1, "小樽市"}, {2, "色内"}}},
                                     LAST},
                                    {"--code", "1"});
    EXPECT_EQ(result.strOut, "北海道 (1 city)\n  小樽市 (1 address)\n    1000004 色内\n"
                             "東京都 (2 cities)\n  中央区 (1 address)\n    1000003 銀座\n"
                             "  港区 (2 addresses)\n    1000002 三田\n    1000001 芝\n");
}

// The second city of 東京都 comes after 北海道 in the order of codes.
TEST_F(QeadrsRefine, ShowsTheAddressesOfALaterCityWhereTheInterfaceHasThem) {
    CResult const result = RefineIn({{"1000001", {{0, "東京都"}, {1, "港区"}, {2, "芝"}}},
                                     {"1000003", {{0, "東京都"}, {1, "中央区"}, {2, "銀座"}}},
                                     {"1000002", {{0, "北海道"}, {1, "小樽市"}, {2, "色内"}}},
                                     LAST},
                                    {"--code", "1"});
    EXPECT_EQ(result.strOut, "北海道 (1 city)\n  小樽市 (2 addresses)\n    1000002 色内\n    1000003 銀座\n"
                             "東京都 (2 cities)\n  中央区 (0 addresses)\n  港区 (1 address)\n    1000001 芝\n");
    EXPECT_EQ(result.strErr, "qeadrs: 1: 2 prefectures, 3 cities, 3 addresses\n");
}

TEST_F(QeadrsRefine, LeavesSupersededAddressesOut) {
    std::vector<CEntryText> const vEntry = {{"1000001", {{0, "東京都"}, {1, "港区"}, {2, "旧町"}}, 1},
                                            {"1000002", {{0, "東京都"}, {1, "港区"}, {2, "新町"}}}};
    char const* const pszExpected = "東京都 (1 city)\n  港区 (1 address)\n    1000002 新町\n";
    EXPECT_EQ(RefineIn(vEntry, {"--code", "1"}).strOut, pszExpected);
    EXPECT_EQ(RefineIn(vEntry, {"--addr", "東京都"}).strOut, pszExpected);
    EXPECT_EQ(RefineIn(vEntry, {}).strOut, pszExpected);
}

// Twenty-one characters of three bytes, and twenty with an ASCII one in front.
TEST_F(QeadrsRefine, EndsALongNameAtTheLastWholeCharacterOfItsFirstSixtyBytes) {
    std::string strTwenty;
    for (int n = 0; n < 20; ++n) strTwenty += "町";
    CResult const result = RefineIn({{"1000001", {{0, "東京都"}, {1, "港区"}, {2, strTwenty + "長"}}},
                                     {"1000002", {{0, "東京都"}, {1, "港区"}, {2, "a" + strTwenty}}}},
                                    {"--code", "1"});
    EXPECT_THAT(result.strOut, HasSubstr("\n    1000001 " + strTwenty + "\n"));
    EXPECT_THAT(result.strOut, HasSubstr("\n    1000002 a" + strTwenty.substr(3) + "\n"));
}

TEST_F(QeadrsRefine, KeepsEachEntryOnOneLineWhateverItsName) {
    CResult const result = RefineIn({{"1000001", {{0, "東京都"}, {1, "港\t区"}, {2, "芝\n浦"}}}}, {"--code", "1"});
    EXPECT_EQ(result.strOut, "東京都 (1 city)\n  港 区 (1 address)\n    1000001 芝 浦\n");
}

// --- what is not found, and wrong calls ----------------------------------------------------------------------------

TEST_F(QeadrsRefine, FindsNothingInsteadOfTheWholeDictionaryWhereATextFindsNothing) {
    EXPECT_EQ(Remark(Refine({"--code", "9999999"}), 1), "qeadrs: 9999999: not found\n");
    EXPECT_EQ(Remark(Refine({"--addr", "無い市"}), 1), "qeadrs: 無い市: not found\n");
    EXPECT_EQ(Remark(Refine({"--code", "9999999", "--json"}), 1), "qeadrs: 9999999: not found\n");
}

// The last code of the table: the search ends with the table.
TEST_F(QeadrsRefine, FindsTheLastCode) {
    CResult const result =
        RefineIn({{"1000001", {{0, "東京都"}, {1, "港区"}, {2, "芝"}}}, LAST}, {"--code", "9999999"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strOut, "沖縄県 (1 city)\n  那覇市 (1 address)\n    9999999 泉崎\n");
}

TEST_F(QeadrsRefine, ShowsTheCandidatesOfTheLastCodesInTheOrderOfTheirCodes) {
    CResult const result = RefineIn({{"9000001", {{0, "東京都"}, {1, "港区"}, {2, "芝"}}},
                                     {"9000002", {{0, "東京都"}, {1, "港区"}, {2, "三田"}}}},
                                    {"--code", "9"});
    EXPECT_EQ(result.strOut, "東京都 (1 city)\n  港区 (2 addresses)\n    9000001 芝\n    9000002 三田\n");
}

TEST_F(QeadrsRefine, KeepsQuietOnDemand) {
    EXPECT_EQ(Refine({"-q", "--code", "726", "--addr", "府中市"}).strErr, "");
    EXPECT_EQ(Remark(Refine({"-q", "--code", "9999999"}), 1), "");
}

TEST_F(QeadrsRefine, RefusesWhatIsNoCodeNoAddressAndNoNumberOfLevels) {
    EXPECT_THAT(Remark(Refine({"--code", "12345678"}), 2), HasSubstr("is no postal code: it has 1 to 7 digits."));
    EXPECT_THAT(Remark(Refine({"--code", "府中市"}), 2), HasSubstr("\"府中市\" is no postal code"));
    EXPECT_THAT(Remark(Refine({"--code", ""}), 2), HasSubstr("is no postal code"));
    EXPECT_THAT(Remark(Refine({"--addr", " "}), 2), HasSubstr("is no address"));
    EXPECT_THAT(Remark(Refine({"--levels", "4"}), 2), HasSubstr("\"4\" is no number of levels: it is 1, 2 or 3."));
    EXPECT_THAT(Remark(Refine({"--levels", "x"}), 2), HasSubstr("is no number of levels"));
    EXPECT_THAT(Remark(Refine({"府中市"}), 2), HasSubstr("府中市"));
}

TEST_F(QeadrsRefine, TakesAnAddressOf127BytesAndRefusesALongerOne) {
    std::string const strTown(127 - std::string("東京都港区").size(), 'x');
    EXPECT_EQ(Refine({"--addr", "東京都港区" + strTown}).nStatus, 0);
    EXPECT_THAT(Remark(Refine({"--addr", "東京都港区" + strTown + "x"}), 2),
                HasSubstr("has 128 bytes; an address field holds 127."));
}

TEST_F(QeadrsRefine, ReportsAMissingDictionaryAndOneThatIsNone) {
    CResult const missing = Run({"refine", "--dic", Path("nothing.dic"), "--code", "1"});
    EXPECT_THAT(Remark(missing, 3), AllOf(HasSubstr("no dictionary"), HasSubstr("Way out")));
    CResult const other = Run({"refine", "--dic", WriteFile("text.dic", "hello, this is a text"), "--code", "1"});
    EXPECT_THAT(Remark(other, 3), HasSubstr("is not a dictionary of ours."));
}

TEST_F(QeadrsRefine, FindsTheDictionaryThroughTheProfile) {
    UseProfile(std::filesystem::path(Sample()).parent_path().string());
    EXPECT_EQ(Run({"refine", "--addr", "府中市"}).strOut, FUCHU);
}

TEST_F(QeadrsRefine, ExplainsItselfOnOneScreen) {
    CResult const result = Run({"refine", "--help"});
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_THAT(result.strOut, StartsWith("qeadrs refine - "));
    for (char const* const pszOption :
         {"--code TEXT", "--addr TEXT", "--levels N ", "--json", "--quiet", "--dic FILE"})
        EXPECT_THAT(result.strOut, HasSubstr(pszOption));
    EXPECT_THAT(result.strOut, Not(HasSubstr("--header")));
    EXPECT_THAT(result.strOut, EndsWith("4 system error.\n"));
    EXPECT_LE(Lines(result.strOut).size(), 24u);
}

} // namespace
