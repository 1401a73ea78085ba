// Damage by recipes: what is told, word for word, or that it is harmless.
#include "tests/builder/CheckRecipe.h"
#include "tests/builder/CheckMutants.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <sstream>
#include <stdexcept>

namespace {

// recipes/*.txt: a recipe, then its violations, one in each line and indented, or "sound"; "#" begins a comment.
struct CCase {
    std::string strPlace; // file and line
    std::string strRecipe;
    std::vector<std::string> vExpected;
};

void ReadCases(std::filesystem::path const& path, std::vector<CCase>& vCase) {
    std::istringstream in(BytesOf(path.string()));
    int nLine = 0;
    for (std::string str; ++nLine, std::getline(in, str);) {
        if (str.empty() || str[0] == '#') continue;
        if (str[0] != ' ')
            vCase.push_back({path.filename().string() + ':' + std::to_string(nLine), str, {}});
        else
            vCase.at(vCase.size() - 1).vExpected.push_back(str.substr(str.find_first_not_of(' ')));
    }
}

std::vector<CCase> const& Cases() {
    static std::vector<CCase> const vCase = [] {
        std::set<std::filesystem::path> setPath;
        for (auto const& entry : std::filesystem::directory_iterator(QEADRS_RECIPES))
            if (entry.path().extension() == ".txt") setPath.insert(entry.path());
        std::vector<CCase> v;
        for (auto const& path : setPath) ReadCases(path, v);
        return v;
    }();
    return vCase;
}

bool IsHarmless(CCase const& recipe) {
    return recipe.vExpected == std::vector<std::string>{"sound"};
}

std::string Joined(std::vector<std::string> const& vLine) {
    std::string str;
    for (std::string const& strLine : vLine) str += "    " + strLine + '\n';
    return str;
}

} // namespace

TEST(CheckRecipes, AreRefusedWithTheseWords) {
    size_t nRefused = 0;
    for (CCase const& recipe : Cases()) {
        EXPECT_FALSE(recipe.vExpected.empty()) << recipe.strPlace;
        std::vector<std::string> vLine = LinesOf(CRecipe(recipe.strRecipe).Apply(SmallWorld()));
        if (vLine.empty()) vLine.push_back("sound");
        EXPECT_EQ(Joined(vLine), Joined(recipe.vExpected)) << recipe.strPlace << ": " << recipe.strRecipe;
        nRefused += !IsHarmless(recipe);
    }
    EXPECT_GT(nRefused, 50u);
}

TEST(CheckRecipes, AreHarmless) {
    CMutants mutants;
    size_t nHarmless = 0;
    for (CCase const& recipe : Cases()) {
        mutants.Try(recipe.strRecipe);
        nHarmless += IsHarmless(recipe);
    }
    mutants.Finish("recipes");
    EXPECT_EQ(mutants.Accepted(), nHarmless);
}

// That a rule is broken tells nothing when others are always broken with it.
TEST(CheckRecipes, BreakEveryRuleAlone) {
    std::set<std::string> setAlone;
    for (CCase const& recipe : Cases()) {
        std::set<std::string> setRule;
        for (std::string const& strLine : recipe.vExpected) setRule.insert(strLine.substr(0, strLine.find(':')));
        if (setRule.size() == 1) setAlone.insert(*setRule.begin());
    }
    for (qe::CRuleText const& rule : qe::CHECK_RULES) EXPECT_EQ(setAlone.count(rule.pszName), 1u) << rule.pszName;
}

TEST(CheckRecipes, ThatCannotBeFollowedAreNoTest) {
    for (char const* psz : {"set", "set node[東京都 ない].nParent = 1", "set node[0].nNothing = 1", "flip bit 1",
                            "set node[0].nParent = 1 2", "set entry[9999999].nCode = 1", "cut to x bytes",
                            "copy 2 bytes from size - 1 to 0", "exchange 4 bytes at 0 and at none"})
        EXPECT_THROW(CRecipe(psz).Apply(SmallWorld()), std::exception) << psz;
}

TEST(CheckRecipes, ThatChangeNothingLeaveTheSmallWorldAsItIs) {
    for (char const* psz :
         {"set node[東京都].nName = node[東京都].nName", "flip bit 1 of byte 500; flip bit 1 of byte 500",
          "set entry[1008111].nNode = node[東京都 千代田区 丸の内 １丁目 株式会社　テスト]",
          "exchange 24 bytes at 200 and at 300; exchange 24 bytes at 300 and at 200", "copy 8 bytes from 100 to 100",
          "shorten to size bytes", "add 4 bytes; cut to size bytes"})
        EXPECT_EQ(CRecipe(psz).Apply(SmallWorld()), SmallWorld()) << psz;
}

TEST(CheckRecipes, MoveBytesAsTheySay) {
    CImageBytes const& vSound = SmallWorld();
    CImageBytes vByte = CRecipe("keep the checksum; copy 3 bytes from 8 to 300").Apply(vSound);
    EXPECT_TRUE(std::equal(vSound.begin() + 8, vSound.begin() + 11, vByte.begin() + 300));
    EXPECT_TRUE(std::equal(vSound.begin() + 303, vSound.end(), vByte.begin() + 303));
    vByte = CRecipe("keep the checksum; exchange 8 bytes at 0 and at 64").Apply(vSound);
    EXPECT_TRUE(std::equal(vSound.begin(), vSound.begin() + 8, vByte.begin() + 64));
    EXPECT_TRUE(std::equal(vSound.begin() + 64, vSound.begin() + 72, vByte.begin()));
}
