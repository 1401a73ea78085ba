// The legacy command interface: which numbers do something, what they return, and which records they reach.
#include "tests/library/LegacyWorld.h"
#include "tests/support/SystemWatch.h"

#include <limits>
#include <type_traits>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsNull;

static_assert(std::is_same_v<decltype(&GA_adr_exec), int (*)(unsigned short, short, GA_ADRSRT*, char const*, void*)>);
static_assert(std::is_same_v<decltype(&GA_SetSearchOldName), void (*)(int)>);
static_assert(std::is_same_v<decltype(&GA_GetSearchOldName), int (*)()>);
static_assert(std::is_same_v<decltype(&ga_legacy_open), int (*)(char const*, char const*)>);
static_assert(std::is_same_v<decltype(&ga_legacy_close), int (*)()>);
static_assert(std::is_same_v<decltype(&ga_legacy_stsrt), int (*)(GA_ADRSRT*, GA_ADRNUM*)>);
static_assert(std::is_same_v<decltype(&ga_legacy_gtdat), int (*)(short, GA_ADRFLD*)>);
static_assert(std::is_same_v<decltype(ga_legacy::hDicFile), int>);
static_assert(std::is_same_v<decltype(ga_legacy::size), uint32_t>);
static_assert(sizeof ga_legacy::hFileMap == 4);

// Before any test has run.
int const hFileAtLoad = ga_legacy::hDicFile;
uint32_t const nSizeAtLoad = ga_legacy::size;
int const hMapAtLoad = ga_legacy::hFileMap;

bool DoesSomething(unsigned nCommand) {
    return nCommand >= 1 && nCommand <= 4;
}

class LegacyCommand : public CLegacy {};

// --- numbers -------------------------------------------------------------------------------------------------------

TEST_F(LegacyCommand, StateBeginsWithoutAFile) {
    EXPECT_EQ(hFileAtLoad, -1);
    EXPECT_EQ(nSizeAtLoad, 0u);
    EXPECT_EQ(hMapAtLoad, 0);
    EXPECT_THAT(ga_legacy::dic.GetDicPointer(), IsNull());
}

TEST_F(LegacyCommand, OfEveryNumberBut1To4And21IsRefused) {
    for (unsigned nCommand = 0; nCommand <= 0xFFFF; ++nCommand) {
        if (DoesSomething(nCommand)) continue;
        int const nStatus = GA_adr_exec(static_cast<unsigned short>(nCommand), 0, nullptr, nullptr, nullptr);
        ASSERT_EQ(nStatus, nCommand == 21 ? 0 : 1) << nCommand;
    }
}

TEST_F(LegacyCommand, OfEveryNumberBut1To4TouchesNoRecordAndNoState) {
    OpenImage(CLegacyWorld());
    ASSERT_THAT(Counts("100", "", 1), ElementsAre(2, 1, 4)); // a state that something could be done to
    std::string const strOther = Write(CTinyWorld());
    for (unsigned char cFill : FILLS) {
        CRequest const request(cFill);
        CEntry const record(0, cFill); // for a search it would be too small: its page ends the test
        CBytes const vRequest = request.Bytes(), vRecord = record.Bytes(), vState = State();
        CSystemWatch watch;
        for (unsigned nCommand = 0; nCommand <= 0xFFFF; ++nCommand) {
            if (DoesSomething(nCommand)) continue;
            GA_adr_exec(static_cast<unsigned short>(nCommand), TOWN, request.Record(), strOther.c_str(),
                        record.Data());
            ASSERT_TRUE(IsUntouched(request, vRequest)) << nCommand;
            ASSERT_TRUE(IsUntouched(record, vRecord)) << nCommand;
            ASSERT_EQ(State(), vState) << nCommand;
        }
        EXPECT_THAT(watch.Names(), IsEmpty());
    }
}

TEST_F(LegacyCommand, TwentyOneIsAcceptedWithAnyArguments) {
    OpenImage(CTinyWorld());
    CEntry const record;
    EXPECT_EQ(GA_adr_exec(NOTHING, -1, nullptr, "nowhere", record.Data()), 0);
    EXPECT_EQ(GA_adr_exec(NOTHING, TOWN, nullptr, nullptr, nullptr), 0);
}

TEST_F(LegacyCommand, LooksAtItsArgumentOnlyToGetAnEntry) {
    std::string const strPath = Write(CLegacyWorld());
    for (short nArgument : {short{-1}, short{1}, short{2}, short{3}, short{32767}}) {
        EXPECT_EQ(GA_adr_exec(OPEN, nArgument, nullptr, strPath.c_str(), nullptr), 0) << nArgument;
        CRequest const request;
        CCounts const counts;
        EXPECT_EQ(GA_adr_exec(SEARCH, nArgument, request.Record(), nullptr, counts.Data()), 0) << nArgument;
        EXPECT_EQ(counts.Number(0), 2) << nArgument;
        EXPECT_EQ(GA_adr_exec(CLOSE, nArgument, nullptr, nullptr, nullptr), 0) << nArgument;
        EXPECT_EQ(GA_adr_exec(NOTHING, nArgument, nullptr, nullptr, nullptr), 0) << nArgument;
    }
}

// --- records that are not there ------------------------------------------------------------------------------------

TEST_F(LegacyCommand, WithoutAPathOpensNothingAndFails) {
    OpenImage(CLegacyWorld());
    ASSERT_THAT(Counts("100", "", 1), ElementsAre(2, 1, 4));
    CBytes const vState = State();
    CSystemWatch watch;
    EXPECT_EQ(GA_adr_exec(OPEN, 0, nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(ga_legacy_open(nullptr, nullptr), 0);
    EXPECT_EQ(ga_legacy_open(nullptr, "qeadrs.dic"), 0);
    EXPECT_THAT(watch.Names(), IsEmpty());
    EXPECT_EQ(State(), vState);
}

TEST_F(LegacyCommand, ThatSearchesWithoutOneOfItsRecordsDoesNothing) {
    OpenImage(CLegacyWorld());
    ASSERT_THAT(Counts("100", "", 1), ElementsAre(2, 1, 4));
    for (unsigned char cFill : FILLS) {
        CRequest request(cFill);
        request.Ask("10-50", "");
        CCounts const counts(cFill);
        CBytes const vRequest = request.Bytes(), vCounts = counts.Bytes(), vState = State();
        EXPECT_EQ(GA_adr_exec(SEARCH, 0, request.Record(), nullptr, nullptr), 0);
        EXPECT_EQ(GA_adr_exec(SEARCH, 0, nullptr, nullptr, counts.Data()), 0);
        EXPECT_EQ(GA_adr_exec(SEARCH, 0, nullptr, nullptr, nullptr), 0);
        EXPECT_EQ(ga_legacy_stsrt(request.Record(), nullptr), 0);
        EXPECT_EQ(ga_legacy_stsrt(nullptr, reinterpret_cast<GA_ADRNUM*>(counts.Data())), 0);
        EXPECT_TRUE(IsUntouched(request, vRequest)) << "the code keeps its spelling";
        EXPECT_TRUE(IsUntouched(counts, vCounts));
        EXPECT_EQ(State(), vState);
    }
}

TEST_F(LegacyCommand, ThatGetsAnEntryWithoutARecordDoesNothing) {
    OpenImage(CLegacyWorld());
    ASSERT_THAT(Counts("100", "", 1), ElementsAre(2, 1, 4));
    for (short nKind : {PREF, CITY, TOWN, short{3}, short{-1}}) {
        EXPECT_EQ(GA_adr_exec(GET, nKind, nullptr, nullptr, nullptr), 0) << nKind;
        EXPECT_EQ(ga_legacy_gtdat(nKind, nullptr), 1) << nKind;
    }
}

TEST_F(LegacyCommand, BeforeTheFirstOpenFindsNothing) {
    for (char const* pszCode : {"", "1000001"}) {
        CRequest request(0x5A);
        request.Ask(pszCode, "東京都");
        CCounts const counts(0x5A);
        CPicture expected(counts.Bytes());
        expected.Number(0, 0).Number(2, 0).Number(4, 0).Number(6, -1).Number(8, -1);
        EXPECT_EQ(Search(request, counts), 0);
        EXPECT_TRUE(LooksLike(counts, expected)) << pszCode;
    }
    for (short nKind : {PREF, CITY, TOWN}) {
        CEntry const entry(0, 0x5A);
        EXPECT_EQ(Get(nKind, entry), 0);
        for (size_t nLength : {377u, 378u, 381u, 409u, 410u}) EXPECT_EQ(entry.Byte(nLength), 0x5A) << nLength;
    }
    EXPECT_EQ(Close(), 0);
}

// --- the functions behind the commands -----------------------------------------------------------------------------

TEST_F(LegacyCommand, FunctionsHaveStatusesOfTheirOwn) {
    std::string const strPath = Write(CLegacyWorld());
    EXPECT_EQ(ga_legacy_open(strPath.c_str(), nullptr), 1) << "1 is success, as nowhere else";
    EXPECT_EQ(GA_adr_exec(OPEN, 0, nullptr, strPath.c_str(), nullptr), 0);
    EXPECT_EQ(ga_legacy_open(Path("missing").c_str(), nullptr), 0);
    EXPECT_EQ(GA_adr_exec(OPEN, 0, nullptr, Path("missing").c_str(), nullptr), 1);
    EXPECT_EQ(ga_legacy_close(), 1);
    EXPECT_EQ(ga_legacy_close(), 1) << "with nothing open";
    EXPECT_EQ(Close(), 0);
}

TEST_F(LegacyCommand, FunctionsDoWhatTheirCommandsDo) {
    CLegacyWorld const world;
    OpenImage(world);
    CRequest requests[2];
    CCounts const counts[2];
    for (CRequest& request : requests) request.Select(1, 0, 0).Ask("100-", "");
    EXPECT_EQ(Search(requests[0], counts[0]), 0);
    EXPECT_EQ(ga_legacy_stsrt(requests[1].Record(), counts[1].Record()), 0);
    EXPECT_EQ(requests[0].Bytes(), requests[1].Bytes());
    EXPECT_EQ(counts[0].Bytes(), counts[1].Bytes());
    for (short nKind : {PREF, CITY, TOWN}) {
        CEntry const entries[2];
        EXPECT_EQ(Get(nKind, entries[0]), 0);
        EXPECT_EQ(ga_legacy_gtdat(nKind, entries[1].Record()), 0) << nKind;
        EXPECT_EQ(entries[0].Bytes(), entries[1].Bytes()) << nKind;
        EXPECT_NE(entries[0].Bytes(), CBytes(411)) << nKind;
    }
}

// The second text is the record of the command, which means nothing here and need not even be readable.
TEST_F(LegacyCommand, OpensWithoutALookAtItsRecord) {
    std::string const strPath = Write(CLegacyWorld());
    CGuardedBytes const end("", CGuardedBytes::Writable);
    EXPECT_EQ(GA_adr_exec(OPEN, 0, nullptr, strPath.c_str(), end.Data() + 1), 0);
    EXPECT_EQ(Close(), 0);
    EXPECT_EQ(ga_legacy_open(strPath.c_str(), end.Text() + 1), 1);
    CEntry const record(0, 0x5A);
    CBytes const vRecord = record.Bytes();
    EXPECT_EQ(GA_adr_exec(OPEN, 0, nullptr, strPath.c_str(), record.Data()), 0);
    EXPECT_TRUE(IsUntouched(record, vRecord));
}

TEST_F(LegacyCommand, OfNoKindLeavesTheRecordMapUnused) {
    ga_legacy::hFileMap = 77;
    OpenImage(CLegacyWorld());
    Counts("100", "");
    NameAt(TOWN, 0);
    EXPECT_EQ(Close(), 0);
    EXPECT_EQ(Open(Path("missing")), 1);
    EXPECT_EQ(ga_legacy::hFileMap, 77);
}

// --- the switch that is none ---------------------------------------------------------------------------------------

TEST_F(LegacyCommand, SearchingWithOldNamesIsAlwaysOn) {
    OpenImage(CLegacyWorld());
    CBytes const vState = State();
    EXPECT_EQ(GA_GetSearchOldName(), 1);
    for (int nFlag : {0, 1, -1, 2, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        GA_SetSearchOldName(nFlag);
        EXPECT_EQ(GA_GetSearchOldName(), 1) << nFlag;
    }
    EXPECT_EQ(State(), vState);
}

} // namespace
