// The comment on the last lookup (the name of its organisation), and the count.
#include "tests/library/ApiWorld.h"
#include "tests/support/GuardedBytes.h"
#include "tests/support/Peek.h"

#include <cerrno>
#include <csignal>
#include <cstring>

namespace {

constexpr int KIND_OFFICE = 3;

class Comment : public CApi {
  protected:
    // Binds a dictionary in which 1000001 leads to an organisation of this name, and 1000002 to none.
    void BindOffice(std::string const& strOffice) {
        CTinyWorld world;
        world.vInfo[0].nNode = world.AddNode(LEVEL_OFFICE, world.nTown, strOffice);
        world.AddInfo(world.nTown, "1000002", "100");
        Bind(world);
    }

    static void Look(char const* pszCode) {
        std::vector<tagADDR> vAddr;
        ASSERT_EQ(dic.GetAddrFromPostCode7(pszCode, vAddr), 1);
    }

    // Result of the call; the text goes to m_strText, which is "(untouched)" when nothing was written.
    short Get(int nKind) {
        char szBuffer[200];
        std::memset(szBuffer, '#', sizeof szBuffer);
        short const nResult = PstAdrGetComment(szBuffer, &nKind);
        m_strBuffer.assign(szBuffer, sizeof szBuffer);
        return nResult;
    }
    bool Untouched() const { return m_strBuffer == std::string(200, '#'); }
    static std::string Filled(std::string const& strText) {
        return strText + '\0' + std::string(199 - strText.size(), '#');
    }

    std::string m_strBuffer;
};

TEST_F(Comment, OfKindThreeIsTheOrganisationOfTheLastLookup) {
    BindOffice("衆議院");
    Look("1000001");
    EXPECT_EQ(Get(KIND_OFFICE), 0);
    EXPECT_EQ(m_strBuffer, Filled("衆議院")) << "the text and its NUL, nothing else";
}

TEST_F(Comment, LeavesTheKindAlone) {
    BindOffice("衆議院");
    Look("1000001");
    char szBuffer[128];
    int nKind = KIND_OFFICE;
    EXPECT_EQ(PstAdrGetComment(szBuffer, &nKind), 0);
    EXPECT_EQ(nKind, KIND_OFFICE);
}

TEST_F(Comment, OfAnyOtherKindIsRefusedAndTheBufferStays) {
    BindOffice("衆議院");
    Look("1000001");
    for (int nKind : {2, 0, 1, 4, -3, 3 + 256, 3 + 65536, -2147483647 - 1}) {
        EXPECT_EQ(Get(nKind), 1) << nKind;
        EXPECT_TRUE(Untouched()) << nKind;
    }
}

TEST_F(Comment, BeforeAnyLookupIsRefusedAndTheBufferStays) {
    BindOffice("衆議院");
    EXPECT_EQ(Get(KIND_OFFICE), 1);
    EXPECT_TRUE(Untouched());
}

TEST_F(Comment, WithoutADictionaryIsRefused) {
    EXPECT_EQ(Get(KIND_OFFICE), 1);
    EXPECT_TRUE(Untouched());
}

TEST_F(Comment, AfterALookupWithoutAnOrganisationIsRefusedAndTheBufferStays) {
    BindOffice("衆議院");
    Look("1000001");
    Look("1000002");
    EXPECT_EQ(Get(KIND_OFFICE), 1);
    EXPECT_TRUE(Untouched());
}

TEST_F(Comment, AfterALookupThatFoundNothingIsStillTheOneBefore) {
    BindOffice("衆議院");
    Look("1000001");
    std::vector<tagADDR> vAddr;
    ASSERT_EQ(dic.GetAddrFromPostCode7("9", vAddr), 0);
    EXPECT_EQ(Get(KIND_OFFICE), 0);
    EXPECT_EQ(m_strBuffer, Filled("衆議院"));
}

TEST_F(Comment, MayHold127Bytes) {
    BindOffice(std::string(127, 'x'));
    Look("1000001");
    EXPECT_EQ(Get(KIND_OFFICE), 0);
    EXPECT_EQ(m_strBuffer, Filled(std::string(127, 'x')));
}

TEST_F(Comment, FitsIntoABufferOf128Bytes) {
    BindOffice(std::string(127, 'x'));
    Look("1000001");
    CGuardedBytes const buffer(std::string(127, '#'), CGuardedBytes::Writable);
    int nKind = KIND_OFFICE;
    EXPECT_EQ(PstAdrGetComment(buffer.Text(), &nKind), 0);
    EXPECT_EQ(buffer.Text(), std::string(127, 'x'));
}

TEST_F(Comment, CanBeTheEmptyText) {
    BindOffice("");
    Look("1000001");
    EXPECT_EQ(Get(KIND_OFFICE), 0);
    EXPECT_EQ(m_strBuffer, Filled(""));
}

TEST_F(Comment, IsNotWrittenToNoBuffer) {
    BindOffice("衆議院");
    Look("1000001");
    int nKind = KIND_OFFICE;
    EXPECT_EQ(PstAdrGetComment(nullptr, &nKind), 1);
}

// What the host sees on its standard error, to the letter.
std::string AssertionMessage(int nLine) {
    return std::string(program_invocation_short_name) + ": ../Pstexec:" + std::to_string(nLine) +
           ": short int PstAdrGetComment(CHAR*, int*): Assertion `0' failed.\n";
}

using CommentDeathTest = Comment;

TEST_F(CommentDeathTest, AbortsWithoutAKind) {
    char szBuffer[128];
    EXPECT_EXIT(PstAdrGetComment(szBuffer, nullptr), testing::KilledBySignal(SIGABRT),
                testing::Eq(AssertionMessage(240)));
}

TEST_F(CommentDeathTest, AbortsWithoutAKindEvenWhenThereIsAnOrganisation) {
    BindOffice("衆議院");
    Look("1000001");
    EXPECT_EXIT(PstAdrGetComment(nullptr, nullptr), testing::KilledBySignal(SIGABRT),
                testing::Eq(AssertionMessage(240)));
}

TEST_F(CommentDeathTest, AbortsAt128Bytes) {
    BindOffice(std::string(128, 'x'));
    Look("1000001");
    EXPECT_EXIT(Get(KIND_OFFICE), testing::KilledBySignal(SIGABRT), testing::Eq(AssertionMessage(250)));
}

TEST_F(CommentDeathTest, AsksForTheKindBeforeItMeasuresTheText) {
    BindOffice(std::string(128, 'x'));
    Look("1000001");
    EXPECT_EQ(Get(2), 1);
}

TEST(AddressCount, IsAlwaysOne) {
    EXPECT_EQ(PstAdrGetNum(), 1);
    static_assert(std::is_same_v<decltype(PstAdrGetNum()), short>);
}

} // namespace
