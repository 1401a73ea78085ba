// The texts of a refinement query: the same two again find the tree as it is, and long ones stay in their fields.
#include "tests/library/TreeWorld.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

struct RefinementQuery : testing::Test {
    RefinementQuery() : dic(world), peek(dic) {}

    // Whether a query finds its tree made: then an entry that nobody would make is still in it.
    bool FindsItMade(std::string const& strCode, std::string const& strAddr) {
        dic.Tree().push_back(Entry("mark"));
        EXPECT_EQ(dic.Refine(strCode, strAddr), 1) << strCode << ' ' << strAddr;
        bool const bMade = !dic.Tree().empty() && NameOf(dic.Tree().back()) == "mark";
        if (bMade) dic.Tree().pop_back();
        return bMade;
    }

    std::string KeptCode() const { return {peek.szRefinePostCode, strnlen(peek.szRefinePostCode, 8)}; }
    std::string KeptAddr() const { return {peek.szRefineAddr, strnlen(peek.szRefineAddr, 128)}; }

    CTextWorld const world;
    CTreeDic dic;
    CAddrDicPeek const peek;
};

// --- the same texts again ------------------------------------------------------------------------------------------

TEST_F(RefinementQuery, FindsTheTreeOfTheSameTextsAsItIs) {
    for (auto const& [strCode, strAddr] : std::vector<std::pair<std::string, std::string>>{
             {"105", ""}, {"", "府中市"}, {"1000005", "府中市"}, {"", "東京都港区"}, {"999", ""}, {"", "x"}}) {
        EXPECT_EQ(dic.Refine(strCode, strAddr), 1);
        tagADDRPNT const* const pMemory = dic.Tree().data();
        CTree const vExpected = dic.Tree();
        EXPECT_EQ(dic.Refine(strCode, strAddr), 1);
        EXPECT_EQ(dic.Tree().data(), pMemory);
        EXPECT_TRUE(IsSame(dic.Tree(), vExpected));
        EXPECT_TRUE(FindsItMade(strCode, strAddr)) << strCode << ' ' << strAddr;
        EXPECT_EQ(KeptCode(), strCode);
        EXPECT_EQ(KeptAddr(), strAddr);
    }
}

TEST_F(RefinementQuery, IsOneTheSecondTimeWhenItReachedTheEndOfTheTable) {
    EXPECT_EQ(dic.Refine("7"), 0);
    tagADDRPNT const* const pMemory = dic.Tree().data();
    CLines const vLine = dic.TreeLines();
    EXPECT_THAT(vLine, ElementsAre("33広島県", " h府中市", "  元町"));
    for (int n = 0; n < 3; ++n) {
        EXPECT_EQ(dic.Refine("7"), 1);
        EXPECT_EQ(dic.Tree().data(), pMemory);
        EXPECT_EQ(dic.TreeLines(), vLine);
    }
    EXPECT_TRUE(FindsItMade("7", ""));
    EXPECT_EQ(dic.Refine("7", "x"), 0) << "another address is another query";
}

TEST_F(RefinementQuery, LeavesAnUnsortedTreeUnsortedTheSecondTime) {
    CTextWorld unsorted;
    unsorted.vInfo.resize(3); // 千代田 stands before 丸の内
    CTreeDic other(unsorted);
    EXPECT_EQ(other.Refine("1000"), 0);
    CLines const vLine = other.TreeLines();
    EXPECT_THAT(vLine, ElementsAre("12東京都", " h千代田区", "  千代田", "  丸の内"));
    EXPECT_EQ(other.Refine("1000"), 1);
    EXPECT_EQ(other.TreeLines(), vLine);
}

TEST_F(RefinementQuery, FindsAWrongTreeToo) {
    dic.Refine("", "広島県");
    dic.SeparateAddr("東京都府中市"); // makes another tree and keeps no texts
    EXPECT_EQ(dic.Refine("", "広島県"), 1);
    EXPECT_THAT(dic.TreeLines(), ElementsAre("12東京都", " h府中市", "  宮西町"));
}

TEST_F(RefinementQuery, OfTwoEmptyTextsIsTheOneThatANewDictionaryKnows) {
    EXPECT_TRUE(FindsItMade("", ""));
    dic.Refine("105");
    dic.SetDictionary(dic.GetDicPointer());
    EXPECT_THAT(dic.TreeLines(), IsEmpty());
    EXPECT_TRUE(FindsItMade("", ""));
    EXPECT_TRUE(FindsItMade("--", "")) << "empty once in form";
}

TEST_F(RefinementQuery, OfTwoEmptyTextsEmptiesTheTreeOfAnother) {
    dic.Refine("105");
    EXPECT_FALSE(FindsItMade("", ""));
    EXPECT_THAT(dic.TreeLines(), IsEmpty());
    EXPECT_TRUE(FindsItMade("", ""));
}

TEST_F(RefinementQuery, IsAnotherWhenOneOfTheTextsDiffers) {
    dic.Refine("105", "東京都");
    EXPECT_FALSE(FindsItMade("105", "東京")) << "the address alone, though the code makes the tree";
    EXPECT_FALSE(FindsItMade("105", ""));
    EXPECT_FALSE(FindsItMade("105", "東京都"));
    EXPECT_FALSE(FindsItMade("100", "東京都"));
    EXPECT_FALSE(FindsItMade("10", "東京都"));
    EXPECT_FALSE(FindsItMade("", "東京都"));
    EXPECT_FALSE(FindsItMade("", "東京都港区"));
    EXPECT_FALSE(FindsItMade("10", "東京都")) << "only the last one is known";
}

TEST_F(RefinementQuery, IsTheSameInAnySpellingOfItsCode) {
    dic.Refine("105-001");
    for (char const* psz : {"105001", "1 0 5 0 0 1",
                            "\x82\x50"
                            "05-001",
                            "(105)001"}) {
        EXPECT_TRUE(FindsItMade(psz, "")) << psz;
        char szCode[16] = {};
        std::strcpy(szCode, psz);
        dic.MakeRefineTree(szCode, "");
        EXPECT_STREQ(szCode, "105001") << "in form, although nothing was made";
    }
}

TEST_F(RefinementQuery, IsForgottenWithTheDictionary) {
    dic.Refine("105", "東京都");
    dic.SetDictionary(dic.GetDicPointer());
    EXPECT_EQ(std::string(peek.szRefinePostCode, 8), std::string(8, '\0'));
    EXPECT_EQ(std::string(peek.szRefineAddr, 128), std::string(128, '\0'));
    EXPECT_FALSE(FindsItMade("105", "東京都"));
    EXPECT_THAT(dic.TreeLines(), SizeIs(6));
    CTextWorld other;
    other.vNode[other.nTokyo].nName = other.AddText("北海道");
    CGuardedBytes const bytes(other.Bytes());
    dic.SetDictionary(bytes.Data());
    EXPECT_EQ(dic.Refine("105", "東京都"), 1);
    EXPECT_EQ(dic.TreeLines().at(0), "00北海道");
}

// --- long texts ----------------------------------------------------------------------------------------------------

// Codes of twenty digits.
struct LongTexts : RefinementQuery {
    LongTexts() {
        CTextWorld longCodes;
        for (tagADDRINFO& info : longCodes.vInfo)
            info.nCode =
                longCodes.AddText(std::string(longCodes.strArea.c_str() + info.nCode) + "0123456789012", "old");
        m_bytes = longCodes.Bytes();
        dic.SetDictionary(m_bytes.data());
        CAddrDicPeek state(dic);
        state.nSelPref = 0x11111111, state.nSelCity = 0x22222222, state.nSelTown = 0x33333333;
        state.nSelUnused = 0x44444444;
        m_pOfficeIndex = peek.pOfficeIndex;
    }

    // What stands in front of the texts and behind them.
    void ExpectNeighboursUntouched() const {
        EXPECT_EQ(peek.pOfficeIndex, m_pOfficeIndex);
        EXPECT_EQ(peek.nSelPref, 0x11111111);
        EXPECT_EQ(peek.nSelCity, 0x22222222);
        EXPECT_EQ(peek.nSelTown, 0x33333333);
        EXPECT_EQ(peek.nSelUnused, 0x44444444);
        EXPECT_NE(std::memchr(peek.szRefinePostCode, 0, 8), nullptr) << "each text ends in its field";
        EXPECT_NE(std::memchr(peek.szRefineAddr, 0, 128), nullptr);
    }

  private:
    std::vector<unsigned char> m_bytes;
    uint32_t const* m_pOfficeIndex;
};

TEST_F(LongTexts, OfSevenDigitsAreKept) {
    EXPECT_FALSE(FindsItMade("1050015", ""));
    EXPECT_TRUE(FindsItMade("1050015", ""));
    EXPECT_FALSE(FindsItMade("1-0-5-0-0-1-4", "")) << "13 bytes before they are in form";
    EXPECT_TRUE(FindsItMade("1050014", ""));
    EXPECT_EQ(KeptCode(), "1050014");
    ExpectNeighboursUntouched();
}

TEST_F(LongTexts, OfMoreDigitsAreAnsweredEachTime) {
    for (std::string const strCode : {"10500150", "105-0015-0", "105001501", "10500150123456789012"})
        for (std::string const strAddr : {"", "東京都"})
            for (int n = 0; n < 3; ++n) {
                EXPECT_FALSE(FindsItMade(strCode, strAddr)) << strCode;
                EXPECT_THAT(dic.TreeLines(), ElementsAre("12東京都", " h港区", "  芝１丁目"));
                EXPECT_EQ(KeptCode(), "-");
                EXPECT_EQ(KeptAddr(), "");
                ExpectNeighboursUntouched();
            }
}

TEST_F(LongTexts, OfMoreDigitsMayMatchNothing) {
    EXPECT_FALSE(FindsItMade("1050015", ""));
    for (std::string const& strCode : {std::string("10500151"), std::string(21, '1'), std::string(1000, '1'),
                                       "10500150123456789012" + std::string(100000, '1')}) {
        EXPECT_FALSE(FindsItMade(strCode, ""));
        EXPECT_THAT(dic.TreeLines(), IsEmpty()) << strCode;
        ExpectNeighboursUntouched();
    }
    EXPECT_FALSE(FindsItMade("1050015", "")) << "the tree is no longer its own";
}

TEST_F(LongTexts, OfMoreDigitsAtTheEndOfTheTableAreZeroEachTime) {
    for (int n = 0; n < 3; ++n) EXPECT_EQ(dic.Refine("72600030"), 0) << "no tree to be found made";
    EXPECT_THAT(dic.TreeLines(), ElementsAre("33広島県", " h府中市", "  元町"));
}

TEST_F(LongTexts, OfUpTo127BytesAreKept) {
    for (size_t nLength : {126u, 127u}) {
        std::string strAddr = "東京都港区";
        strAddr.resize(nLength, 'x');
        EXPECT_FALSE(FindsItMade("", strAddr));
        EXPECT_THAT(dic.TreeLines(), SizeIs(6));
        EXPECT_TRUE(FindsItMade("", strAddr)) << nLength;
        EXPECT_EQ(KeptAddr(), strAddr);
        ExpectNeighboursUntouched();
    }
}

TEST_F(LongTexts, OfMoreBytesAreAnsweredEachTime) {
    for (size_t nLength : {128u, 129u, 500u, 100000u}) {
        std::string strAddr = "東京都港区";
        strAddr.resize(nLength, 'x');
        for (std::string const strCode : {"", "1050015"})
            for (int n = 0; n < 3; ++n) {
                EXPECT_FALSE(FindsItMade(strCode, strAddr)) << nLength;
                EXPECT_THAT(dic.TreeLines(), SizeIs(strCode.empty() ? 6 : 3));
                EXPECT_EQ(KeptCode(), "-");
                EXPECT_EQ(KeptAddr(), "");
                ExpectNeighboursUntouched();
            }
    }
}

TEST_F(LongTexts, AreNotTakenForTheirFrontParts) {
    std::string const strAddr = "東京都港区" + std::string(112, 'x'); // 127 bytes
    for (auto const& [strCode, strLong] : std::vector<std::pair<std::string, std::string>>{
             {"1050015", strAddr + "x"}, {"10500150", strAddr}, {"10500150", strAddr + "x"}}) {
        dic.Refine("1050015", strAddr);
        EXPECT_FALSE(FindsItMade(strCode, strLong));
        EXPECT_FALSE(FindsItMade("1050015", strAddr));
        dic.Refine(strCode, strLong);
        EXPECT_FALSE(FindsItMade("", ""));
        EXPECT_THAT(dic.TreeLines(), IsEmpty());
        dic.Refine(strCode, strLong);
        EXPECT_FALSE(FindsItMade("-", "")) << "no code at all once in form";
    }
}

} // namespace
