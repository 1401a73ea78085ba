// What the compiler makes is sound, and what is sound is harmless.
#include "builder/Error.h"
#include "builder/TextTable.h"
#include "tests/builder/CheckMutants.h"
#include "tests/builder/CheckRecipe.h"
#include "tests/support/EveryOperation.h"
#include "tests/support/GuardedBytes.h"

#include <gmock/gmock.h>

#include <iostream>
#include <random>

using testing::IsEmpty;

namespace {

qe::CTownRow Town(std::string const& strTown, std::string const& strCode) {
    return TownRow("東京都", "千代田区", strTown, strCode);
}

void RunOn(CImageBytes const& vByte, CEveryOperation& run, uint32_t nRuns) {
    CTrial const trial("a sound dictionary");
    for (uint32_t nSeed = 0; nSeed < nRuns; ++nSeed) run.Run(nSeed);
    EXPECT_THAT(LinesOf(vByte), IsEmpty());
}

} // namespace

TEST(Check, TheSmallWorldIsSoundAndSmall) {
    EXPECT_THAT(LinesOf(SmallWorld()), IsEmpty());
    EXPECT_LT(SmallWorld().size(), 2048u);
    CImageBytes const& vByte = SmallWorld();
    EXPECT_EQ(WordAt(vByte, 4 * HDR_STRING_AREA) + WordAt(vByte, 4 * HDR_STRING_SIZE), vByte.size())
        << "a guard page behind the image is one behind the texts";
    EXPECT_EQ(vByte.size() % 4, 0u) << "else it would not stand at the end of a page";
}

TEST(Check, EveryOperationMeetsAllOfTheSmallWorld) {
    CGuardedBytes const image(SmallWorld());
    CEveryOperation run(image.Data(), CEveryOperation::Sound);
    RunOn(SmallWorld(), run, 1);
    EXPECT_GT(run.Addresses(), 500u);
    EXPECT_GT(run.Blocks(), 50u) << "the interfaces are bound to it";
    EXPECT_GT(run.Entries(), 500u);
}

TEST(Check, ADictionaryWithoutOrganisationsIsSound) {
    EXPECT_THAT(LinesOf(Compile({{Town("丸の内", "1000005")}, {}, {}})), IsEmpty());
}

TEST(Check, ACityThatIsGoneMayReferToItsNamelessTownOrToItsFirstOne) {
    for (char const* pszTown : {"以下に掲載がない場合", "大手"})
        EXPECT_THAT(LinesOf(Compile({{Town("以下に掲載がない場合", "1000000")},
                                     {},
                                     {{TownRow("東京都", "千代田市", pszTown, "1000009")}}})),
                    IsEmpty())
            << pszTown;
}

// Whoever writes the town means no organisation in it.
TEST(Check, ATownDoesNotReferToTheEntryOfAnOrganisation) {
    CImageBytes const vByte = Compile({{Town("以下に掲載がない場合", "1000000")},
                                       {OfficeRow("宮内庁", "東京都", "千代田区", "千代田", "", "1008111")},
                                       {}});
    EXPECT_THAT(LinesOf(vByte), IsEmpty());
    CRecipe recipe("set node[東京都 千代田区 千代田].nInfo = entry[1008111]");
    EXPECT_THAT(LinesOf(recipe.Apply(vByte)),
                testing::ElementsAre("entry-of-node: node 2 (東京都 千代田区 千代田) refers to the entry of node 4"));
}

TEST(Check, TwoTownsOfOneNameAreSound) {
    std::vector<qe::CTownRow> vTown = {Town("丸の内", "1000005"), Town("丸の内", "1000006")};
    vTown[0].strTownKana = "マルノウチ";
    vTown[1].strTownKana = "マルウチ";
    EXPECT_THAT(LinesOf(Compile({vTown, {}, {}})), IsEmpty());
}

namespace {

// Tables of a few names and codes in every form that the compiler knows.
class CRandomTables {
  public:
    explicit CRandomTables(uint32_t nSeed) : m_random(nSeed) {}

    CTables Next() {
        CTables tables;
        tables.vTown = Towns(1 + Below(12));
        for (auto n = Below(4); n > 0; --n) {
            qe::CTownRow const& town = tables.vTown[Below(tables.vTown.size())];
            char const* const pszTown = Below(3) == 0 ? "" : Choose(TOWNS_OF_ALL);
            tables.vOffice.push_back(
                OfficeRow(Choose(NAMES), town.strPref, town.strCity, pszTown, Choose(RESTS), Choose(CODES)));
        }
        for (auto n = Below(3); n > 0; --n) tables.vPrevious.push_back(Towns(1 + Below(6)));
        return tables;
    }

  private:
    static constexpr char const* CITIES[][2] = {{"東京都", "千代田区"},
                                                {"東京都", "利島村"},
                                                {"東京都", "府中市"},
                                                {"広島県", "府中市"},
                                                {"北海道", "余市郡余市町"}};
    static constexpr char const* TOWNS_OF_ALL[] = {"以下に掲載がない場合",
                                                   "丸",
                                                   "丸の内",
                                                   "丸の内（その他）",
                                                   "丸の内（１丁目）",
                                                   "丸の内（２〜３丁目、５丁目）",
                                                   "丸ビル（１階）",
                                                   "丸ビル（地階・階層不明）",
                                                   "丸の内ビル（１階）",
                                                   "丸の内ビル（２階）",
                                                   "利島村一円",
                                                   "千代田区の次に番地がくる場合",
                                                   "丸の次に番地がくる場合",
                                                   "大手",
                                                   "大手（次のビルを除く）",
                                                   "大手第１地割〜大手第３地割",
                                                   "一ツ橋（上、下）"};
    static constexpr char const* RESTS[] = {"", "１丁目", "１−１"};
    static constexpr char const* NAMES[] = {"テスト", "株式会社　テスト", "テスト（有）", "株式会社"};
    static constexpr char const* CODES[] = {"1000000", "1000001", "1000002", "2000000"};

    size_t Below(size_t n) { return m_random() % n; }
    template <size_t N>
    char const* Choose(char const* const (&apszChoice)[N]) {
        return apszChoice[Below(N)];
    }
    std::vector<qe::CTownRow> Towns(size_t nRows) {
        std::vector<qe::CTownRow> vTown;
        for (; nRows > 0; --nRows) {
            char const* const* const ppszCity = CITIES[Below(std::size(CITIES))];
            char const* const pszTown = Choose(TOWNS_OF_ALL);
            vTown.push_back(TownRow(ppszCity[0], ppszCity[1], pszTown, Choose(CODES)));
        }
        return vTown;
    }

    std::mt19937 m_random;
};

std::string Described(CTables const& tables) {
    std::string str;
    auto const Add = [&](char const* pszTable, std::vector<qe::CTownRow> const& vRow) {
        for (auto const& row : vRow)
            str += pszTable + row.strPref + ' ' + row.strCity + ' ' + row.strTown + ' ' + row.strCode + '\n';
    };
    Add("town ", tables.vTown);
    for (auto const& row : tables.vOffice)
        str += "organisation " + row.strName + ' ' + row.strPref + ' ' + row.strCity + ' ' + row.strTown + ' ' +
               row.strRest + ' ' + row.strCode + '\n';
    for (auto const& vRow : tables.vPrevious) Add("earlier town ", vRow);
    return str;
}

} // namespace

TEST(Check, WhateverTheCompilerMakesIsSound) {
    CRandomTables random(1);
    size_t nMade = 0, nRefused = 0;
    for (int nWorld = 0; nWorld < 1500; ++nWorld) {
        CTables const tables = random.Next();
        CImageBytes vByte;
        try {
            vByte = Compile(tables);
            ++nMade;
        } catch (qe::CBuildError const&) {
            ++nRefused;
            continue;
        }
        ASSERT_THAT(LinesOf(vByte), IsEmpty()) << Described(tables);
        qe::AppendTextIndex(vByte);
        ASSERT_THAT(LinesOf(vByte), IsEmpty()) << "with its text index:\n" << Described(tables);
    }
    std::cout << nMade << " dictionaries made, " << nRefused << " tables refused by the compiler\n";
    EXPECT_GT(nMade, 1000u);
}

TEST(Check, TheSampleIsSoundAndHarmless) {
    CImageBytes const vByte = SampleWorld();
    CGuardedBytes const image(vByte);
    CEveryOperation run(image.Data(), CEveryOperation::Sound);
    RunOn(vByte, run, 8);
    EXPECT_GT(run.Addresses(), 1000u);
    EXPECT_GT(run.Blocks(), 100u);
    EXPECT_GT(run.Entries(), 1000u);
}

TEST(Check, ADictionaryOfNothingIsSoundAndHarmless) {
    CImageBytes const vByte = Hostile({}, "");
    CGuardedBytes const image(vByte);
    CEveryOperation run(image.Data(), CEveryOperation::Sound);
    RunOn(vByte, run, 1);
}
