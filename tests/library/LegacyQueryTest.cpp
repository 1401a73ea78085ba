// Queries of the legacy interface: the address of the request, and how long an answer and a selection last.
#include "tests/library/LegacyWorld.h"

namespace {

using testing::ElementsAre;

class LegacyQuery : public CLegacy {
  protected:
    // The address of a search in 港区 whose text has so many bytes.
    static std::string MinatoKu(size_t nLength) {
        std::string const strAddr = "東京都港区";
        return strAddr + std::string(nLength - strAddr.size(), '9');
    }
};

// --- the address ---------------------------------------------------------------------------------------------------

TEST_F(LegacyQuery, TakesTheAddressFromByte500AndNeverWritesIt) {
    OpenImage(CLegacyWorld());
    for (unsigned char cFill : FILLS) {
        CRequest request(cFill);
        request.Ask("", "東京都港区");
        CBytes const vBefore = request.Bytes();
        CCounts const counts(cFill);
        CPicture const expected = Counted(counts, 1, 1, 2);
        EXPECT_EQ(Search(request, counts), 0);
        EXPECT_TRUE(IsUntouched(request, vBefore));
        EXPECT_TRUE(LooksLike(counts, expected));
        EXPECT_STREQ(CAddrDicPeek(ga_legacy::dic).szRefineAddr, "東京都港区");
    }
}

TEST_F(LegacyQuery, PrefersACodeToAnAddress) {
    OpenImage(CLegacyWorld());
    EXPECT_THAT(Counts("060", "東京都港区"), ElementsAre(1, 1, 1));
    EXPECT_EQ(NameAt(PREF, 0), "北海道");
}

TEST_F(LegacyQuery, AnswersAnAddressOfAnyLengthItsFieldCanHold) {
    OpenImage(CLegacyWorld());
    for (size_t nLength : {126u, 127u, 128u, 129u, 255u, 256u, 512u, 513u, 514u}) {
        CRequest request(0x5A);
        request.Ask("", MinatoKu(nLength));
        CBytes const vBefore = request.Bytes();
        CCounts const counts;
        CPicture const expected = Counted(counts, 1, 1, 2);
        EXPECT_EQ(Search(request, counts), 0);
        EXPECT_TRUE(LooksLike(counts, expected)) << nLength;
        EXPECT_TRUE(IsUntouched(request, vBefore)) << nLength;
    }
}

TEST_F(LegacyQuery, ReadsARecordWithoutAnyNulToItsEnd) {
    OpenImage(CLegacyWorld());
    CRequest const request(0x5A);
    request.Put(500, MinatoKu(514));
    request.Put(1014, "99999911111111");
    CBytes const vBefore = request.Bytes();
    EXPECT_EQ(Search(request, CCounts()), 0);
    EXPECT_TRUE(IsUntouched(request, vBefore));
}

// What can be kept is: a tree that is emptied behind the object's back stays so.
TEST_F(LegacyQuery, KeepsTheAnswerToAnAddressOf127BytesButNotOf128) {
    OpenImage(CLegacyWorld());
    std::vector<tagADDRPNT>& vTree = CAddrDicPeek(ga_legacy::dic).vRefineTree;
    for (size_t nLength : {127u, 128u, 513u}) {
        ASSERT_THAT(Counts("", MinatoKu(nLength)), ElementsAre(1, 1, 2)) << nLength;
        vTree.clear();
        Counts("", MinatoKu(nLength));
        EXPECT_EQ(vTree.empty(), nLength == 127) << nLength;
    }
}

// --- what lasts ----------------------------------------------------------------------------------------------------

TEST_F(LegacyQuery, FindsTheSameQueryAnsweredInWhateverSpelling) {
    OpenImage(CLegacyWorld());
    ASSERT_THAT(Counts("100-0001", ""), ElementsAre(1, 1, 1));
    CAddrDicPeek const peek(ga_legacy::dic);
    EXPECT_STREQ(peek.szRefinePostCode, "1000001");
    tagADDRPNT const* const pTree = peek.vRefineTree.data();
    std::strcpy(peek.vRefineTree[0].szName, "a mark");
    EXPECT_THAT(Counts("1000001", ""), ElementsAre(1, 1, 1));
    EXPECT_EQ(peek.vRefineTree.data(), pTree);
    EXPECT_STREQ(peek.vRefineTree[0].szName, "a mark");
    Counts("1000001", "東京都");
    EXPECT_STRNE(peek.vRefineTree[0].szName, "a mark") << "another address is another query";
}

TEST_F(LegacyQuery, TakesNoNoticeOfAScanThatRunsOffTheTable) {
    OpenImage(CLegacyWorld());
    char szCode[] = "105";
    ASSERT_EQ(ga_legacy::dic.MakeRefineTree(szCode, ""), 0) << "its entries are the last ones";
    OpenImage(CLegacyWorld());
    for (bool bAgain : {false, true}) {
        CRequest request;
        CCounts const counts;
        CPicture const expected = Counted(counts, 1, 1, 2);
        EXPECT_EQ(Search(request.Ask("105", ""), counts), 0) << bAgain;
        EXPECT_TRUE(LooksLike(counts, expected)) << bAgain;
        EXPECT_EQ(NameAt(TOWN, 0), "芝 １丁目") << "in the order of the table";
        EXPECT_EQ(NameAt(TOWN, 1), "芝");
    }
    EXPECT_THAT(Counts("", "東京都港区"), ElementsAre(1, 1, 2));
    EXPECT_EQ(NameAt(TOWN, 0), "芝") << "in the order of the screen";
}

TEST_F(LegacyQuery, SelectsThePrefectureAndTheCityOfTheEntriesThatAreReadThen) {
    OpenImage(CLegacyWorld());
    for (char const* pszAddr : {"", "東京都"}) {
        int const nTokyo = *pszAddr == '\0' ? 1 : 0;
        Counts("", pszAddr, nTokyo, 0);
        Counts("", pszAddr, nTokyo, 1);
        EXPECT_EQ(NameAt(CITY, 0), "千代田区") << pszAddr;
        EXPECT_EQ(NameAt(CITY, 1), "港区") << pszAddr;
        EXPECT_EQ(NameAt(TOWN, 0), "芝") << pszAddr;
        Counts("", pszAddr, nTokyo, 0);
        EXPECT_EQ(NameAt(TOWN, 0), "丸の内") << pszAddr;
        EXPECT_EQ(NameAt(TOWN, 3), "千代田") << pszAddr;
    }
}

} // namespace
