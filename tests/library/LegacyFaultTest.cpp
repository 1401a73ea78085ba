// The legacy command interface when a file cannot be opened and when memory runs out.
#include "tests/library/FaultWorld.h"

#include "tests/library/LegacyWorld.h"

namespace {

using testing::ElementsAre;

class LegacyFaults : public CLegacy {};

constexpr char const* LEGACY_POINTS[] = {"open", "stat", "mmap"};

TEST_F(LegacyFaults, OfOpeningLeaveNothingBehindAndTheNextOpenSucceeds) {
    std::string const strPath = Write(CLegacyWorld());
    CHoldings const before = CHoldings::Now(strPath);
    for (char const* pszName : LEGACY_POINTS) {
        SCOPED_TRACE(pszName);
        {
            CSystemWatch watch;
            watch.Fail(pszName);
            EXPECT_EQ(GA_adr_exec(OPEN, 0, nullptr, strPath.c_str(), nullptr), 1);
            EXPECT_EQ(ga_legacy_open(strPath.c_str(), nullptr), 0);
            EXPECT_THAT(watch.Names(), ElementsAre("open", "stat", "mmap", "close", "open", "stat", "mmap", "close"));
        }
        EXPECT_EQ(CHoldings::Now(strPath), before);
        EXPECT_EQ(Open(strPath), 0);
        EXPECT_THAT(Counts("100-0001", ""), ElementsAre(1, 1, 1));
        EXPECT_EQ(Close(), 0);
        EXPECT_EQ(CHoldings::Now(strPath), before);
    }
}

TEST_F(LegacyFaults, OfOpeningLeaveTheDictionaryInUseThatWasOpen) {
    std::string const strPath = Write(CLegacyWorld());
    for (char const* pszName : LEGACY_POINTS) {
        SCOPED_TRACE(pszName);
        CHoldings const before = CHoldings::Now(strPath);
        ASSERT_EQ(Open(strPath), 0);
        CHoldings const open = CHoldings::Now(strPath);
        {
            CSystemWatch watch;
            watch.Fail(pszName);
            EXPECT_EQ(Open(strPath), 1);
        }
        EXPECT_EQ(CHoldings::Now(strPath), open);
        EXPECT_THAT(Counts("100-0001", ""), ElementsAre(1, 1, 1));
        EXPECT_EQ(NameAt(TOWN, 0), "千代田");
        EXPECT_EQ(Close(), 0);
        EXPECT_EQ(CHoldings::Now(strPath), before) << "what is closed is the dictionary that was in use";
    }
}

TEST_F(LegacyFaults, OfMemoryDoNotReachOpeningAndClosing) {
    std::string const strPath = Write(CLegacyWorld()), strNowhere = strPath + ".none";
    for (CShortage::EKind const nKind : SHORTAGES) {
        CShortage shortage(0, nKind);
        int const nOpened = GA_adr_exec(OPEN, 0, nullptr, strPath.c_str(), nullptr);
        int const nClosed = GA_adr_exec(CLOSE, 0, nullptr, nullptr, nullptr);
        int const nNowhere = GA_adr_exec(OPEN, 0, nullptr, strNowhere.c_str(), nullptr);
        EXPECT_FALSE(shortage.End());
        EXPECT_EQ(nOpened, 0);
        EXPECT_EQ(nClosed, 0);
        EXPECT_EQ(nNowhere, 1);
    }
}

TEST_F(LegacyFaults, OfMemoryInASearchLeaveTheCountsAndTheNextSearchIsComplete) {
    OpenImage(CLegacyWorld());
    for (char const* pszCode : {"1", ""})
        for (char const* pszAddr : {"", "東京都"}) {
            SCOPED_TRACE(std::string(pszCode) + "," + pszAddr);
            CCounts const expected(0x5A);
            CRequest request;
            request.Ask(pszCode, pszAddr);
            Search(request, expected);
            long nTries = 0, nLive = 0;
            for (bool bEnough = false; !bEnough; ++nTries) {
                ASSERT_LT(nTries, 10000);
                Counts("06", ""); // another tree, so that this one is made anew
                ga_legacy::dic.SetDictionary(ga_legacy::dic.GetDicPointer()); // and no lists
                CCounts const counts(0x5A), again(0x5A);
                CBytes const vBefore = counts.Bytes();
                {
                    CShortage shortage(nTries);
                    EXPECT_EQ(GA_adr_exec(SEARCH, 0, request.Record(), nullptr, counts.Data()), 0);
                    bEnough = !shortage.End();
                }
                EXPECT_TRUE(bEnough ? counts.Bytes() == expected.Bytes()
                                    : LooksLike(counts, CPicture(vBefore).Number(6, -1).Number(8, -1)))
                    << nTries;
                Search(request, again);
                EXPECT_EQ(again.Bytes(), expected.Bytes()) << "the same search, after " << nTries;
                if (nTries == 0) nLive = memory.nLive;
                EXPECT_EQ(memory.nLive, nLive);
            }
            EXPECT_GT(nTries, 3);
        }
}

TEST_F(LegacyFaults, OfMemoryInAnEntryLeaveItsLengthsAndTheNextOneIsComplete) {
    OpenImage(CLegacyWorld());
    ASSERT_THAT(Counts("", "北海道"), ElementsAre(1, 1, 2));
    for (short const nKind : {PREF, CITY, TOWN}) {
        CEntry const expected(0, 0);
        ASSERT_EQ(Get(nKind, expected), 0);
        CEntry const entry(0, 0x5A), again(0, 0);
        int nStatus = 0, nDropped = 0;
        bool bFailed = false;
        {
            CShortage shortage(0);
            nStatus = ga_legacy_gtdat(nKind, entry.Record());
            nDropped = GA_adr_exec(GET, nKind, nullptr, nullptr, entry.Data());
            bFailed = shortage.End();
        }
        EXPECT_EQ(bFailed, nKind == CITY) << nKind; // its name is copied once more to tell its kind
        EXPECT_EQ(nStatus, bFailed ? 1 : 0) << nKind;
        EXPECT_EQ(nDropped, 0);
        if (bFailed) {
            EXPECT_EQ(entry.Byte(377), 0x5A);
            EXPECT_EQ(entry.Byte(378), 0x5A);
        }
        ASSERT_EQ(Get(nKind, again), 0);
        EXPECT_EQ(again.Bytes(), expected.Bytes()) << nKind;
    }
}

} // namespace
