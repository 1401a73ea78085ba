// The postal address API when memory or a block cannot be had: the status, what becomes of the handle, and that the
// next call answers as if nothing had happened.
#include "tests/library/FaultWorld.h"

#include "api/ga_legacy.h"
#include "tests/library/TreeWorld.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsNull;

// The caller's record: sort type, old code, code, address, organisation.
struct CCallerRecord {
    unsigned char ab[300] = {};
    CCallerRecord(char const* pszOldCode, char const* pszCode, char const* pszAddress, char const* pszOffice = "") {
        ab[0] = SORT_DICTIONARY;
        char* const psz = reinterpret_cast<char*>(ab);
        std::strcpy(psz + 2, pszOldCode);
        std::strcpy(psz + 8, pszCode);
        std::strcpy(psz + 23, pszAddress);
        std::strcpy(psz + 145, pszOffice);
    }
};

void BeginBrowsing() {
    CAddrList vAddr;
    dic.GetPref(vAddr);
}

void BrowseToCities() {
    BeginBrowsing();
    CAddrList vAddr;
    dic.GetCityFromNo(NO_TOKYO, vAddr);
}

void NoLists() {}

// Lists without room for anything, as they are before the first answer: where there is room nothing fails.
void DropLists() {
    CAddrDicPeek const peek(dic);
    for (CNodeList* pList : {&peek.vPrefList, &peek.vCityList, &peek.vTownList}) CNodeList().swap(*pList);
}

struct CEntryPoint {
    char const* pszName;
    void (*Prepare)();
    uint32_t (*Call)(HGLOBAL*);
    bool bFrees = false; // a block that cannot be locked
};

uint32_t Status(int n) {
    return static_cast<uint32_t>(n);
}

constexpr CEntryPoint ENTRY_POINTS[] = {
    {"GetAdrFromZip", NoLists, [](HGLOBAL* ph) { return Status(GetAdrFromZip("1", ph)); }},
    {"PstAdrCity", NoLists,
     [](HGLOBAL* ph) {
         CCallerRecord record("", "1", "");
         return Status(PstAdrCity(record.ab, ph));
     }},
    {"PstAdrCity, an old code", NoLists,
     [](HGLOBAL* ph) {
         CCallerRecord record("100", "", "");
         return Status(PstAdrCity(record.ab, ph));
     }},
    {"GetAdrFromAdd", NoLists, [](HGLOBAL* ph) { return Status(GetAdrFromAdd("東京都", ph)); }},
    {"PstAdrRPrf", NoLists,
     [](HGLOBAL* ph) {
         CCallerRecord record("", "", "");
         return PstAdrRPrf(record.ab, ph);
     }},
    {"PstAdrRPrf, a text", NoLists,
     [](HGLOBAL* ph) {
         CCallerRecord record("", "", "府中市");
         return PstAdrRPrf(record.ab, ph);
     }},
    {"PstAdrRCity", BeginBrowsing, [](HGLOBAL* ph) { return PstAdrRCity(NO_TOKYO, ph); }},
    {"PstAdrTown", BrowseToCities, [](HGLOBAL* ph) { return PstAdrTown(0, ph); }},
    {"PstAdrRTown", BrowseToCities, [](HGLOBAL* ph) { return PstAdrRTown(0, ph); }, true},
    {"PstAdrRTownForUI", BrowseToCities, [](HGLOBAL* ph) { return PstAdrRTownForUI(0, ph); }},
};

class ApiFaults : public CApi {
  protected:
    ApiFaults() { Bind(m_world); }

    static CBlockBytes Answer(CEntryPoint const& entry) {
        HGLOBAL h = Untouched();
        entry.Prepare();
        EXPECT_EQ(entry.Call(&h), 0u) << entry.pszName;
        return Take(h);
    }
    // The answer to the call after one that failed.
    static CBlockBytes NextAnswer(CEntryPoint const& entry) {
        HGLOBAL h = Untouched();
        EXPECT_EQ(entry.Call(&h), 0u) << entry.pszName;
        return Take(h);
    }

    CFaultWorld m_world;
};

// The handle of an answer that has one already is null: that memory is the block's own.
TEST_F(ApiFaults, OfMemoryAreStatus1AndLeaveTheHandleAloneOrNull) {
    for (CShortage::EKind const nKind : SHORTAGES)
        for (CEntryPoint const& entry : ENTRY_POINTS) {
            CBlockBytes const vExpected = Answer(entry);
            long nTries = 0, nLive = 0, nNull = 0;
            for (bool bEnough = false; !bEnough; ++nTries) {
                SCOPED_TRACE(entry.pszName + std::string(" with allocations: ") + std::to_string(nTries));
                ASSERT_LT(nTries, 10000);
                HGLOBAL h = Untouched();
                DropLists();
                entry.Prepare();
                uint32_t nStatus = 0;
                {
                    CShortage shortage(nTries, nKind);
                    nStatus = entry.Call(&h);
                    bEnough = !shortage.End();
                }
                EXPECT_EQ(nStatus, bEnough ? 0u : 1u);
                if (bEnough) {
                    EXPECT_EQ(Take(h), vExpected);
                } else {
                    EXPECT_TRUE(h == Untouched() || h == nullptr);
                    if (h == nullptr) ++nNull;
                    if (h == nullptr) entry.Prepare(); // the lists are those of the answer that had no block
                    EXPECT_EQ(NextAnswer(entry), vExpected) << "the next call";
                }
                if (nTries == 0) nLive = memory.nLive;
                EXPECT_EQ(memory.nLive, nLive);
            }
            EXPECT_GT(nTries, 1) << entry.pszName;
            EXPECT_EQ(nNull > 0, nKind == CShortage::Bytes) << entry.pszName << ": blocks are not objects";
        }
}

TEST_F(ApiFaults, OfABlockThatCannotBeHadAreStatus1AndANullHandle) {
    for (CEntryPoint const& entry : ENTRY_POINTS) {
        SCOPED_TRACE(entry.pszName);
        CBlockBytes const vExpected = Answer(entry);
        Answer(entry);
        long const nLive = memory.nLive;
        HGLOBAL h = Untouched();
        entry.Prepare();
        {
            CSystemWatch watch;
            watch.Fail("GlobalAlloc");
            EXPECT_EQ(entry.Call(&h), 1u);
            EXPECT_THAT(watch.Names(), ElementsAre("GlobalAlloc"));
            EXPECT_EQ(watch.Calls().at(0).nSize, vExpected.size());
            EXPECT_EQ(watch.Calls().at(0).nNumber, 66) << "movable, zero-filled";
        }
        EXPECT_THAT(h, IsNull());
        entry.Prepare(); // the lists are those of the answer that had no block
        HGLOBAL hNext = Untouched();
        EXPECT_EQ(entry.Call(&hNext), 0u);
        EXPECT_EQ(Take(hNext), vExpected);
        EXPECT_EQ(memory.nLive, nLive);
    }
}

TEST_F(ApiFaults, OfABlockThatCannotBeLockedAreStatus1AndLeaveItZeroAndWithTheCaller) {
    for (CEntryPoint const& entry : ENTRY_POINTS) {
        SCOPED_TRACE(entry.pszName);
        CBlockBytes const vExpected = Answer(entry);
        HGLOBAL h = Untouched();
        entry.Prepare();
        {
            CSystemWatch watch;
            watch.Fail("GlobalLock");
            EXPECT_EQ(entry.Call(&h), 1u);
            EXPECT_THAT(watch.Names(), ElementsAre("GlobalAlloc", "GlobalLock"))
                << "what is not locked is not unlocked";
            EXPECT_EQ(watch.Calls().at(1).pAddress, h);
        }
        EXPECT_EQ(GlobalSize(h), entry.bFrees ? 0 : vExpected.size());
        if (entry.bFrees) {
            EXPECT_EQ(GlobalFree(h), h) << "freed by the library, and no block any more";
        } else {
            CBlockBytes const vByte = Take(h);
            EXPECT_EQ(vByte.size(), vExpected.size());
            EXPECT_THAT(vByte, Each(0)) << "nothing is written";
        }
        EXPECT_EQ(Answer(entry), vExpected) << "the next call";
    }
}

// The lists are those of the answer, whether or not there was a block for it: browsing goes on from there.
TEST_F(ApiFaults, OfABlockLeaveTheListsToTheNextLevel) {
    CEntryPoint const& towns = ENTRY_POINTS[8];
    CBlockBytes const vExpected = Answer(towns);
    ASSERT_GT(vExpected.size(), 30u);
    for (char const* pszFault : {"GlobalAlloc", "GlobalLock"}) {
        CCallerRecord record("", "", "");
        HGLOBAL hPref = nullptr, hCity = nullptr, hTown = nullptr;
        {
            CSystemWatch watch;
            watch.Fail(pszFault);
            EXPECT_EQ(PstAdrRPrf(record.ab, &hPref), 1u) << "not the status of an empty answer";
            EXPECT_EQ(PstAdrRCity(NO_TOKYO, &hCity), 1u);
        }
        EXPECT_EQ(PstAdrRTown(0, &hTown), 0u);
        EXPECT_EQ(Take(hTown), vExpected) << pszFault;
        for (HGLOBAL const h : {hPref, hCity}) GlobalFree(h);
    }
}

TEST_F(ApiFaults, OfNothingFoundNeedNoBlock) {
    CCallerRecord record("", "", "無");
    HGLOBAL h = Untouched();
    CSystemWatch watch;
    watch.Fail("GlobalAlloc");
    EXPECT_EQ(PstAdrRPrf(record.ab, &h), 107u);
    EXPECT_EQ(GetAdrFromZip("9999999", &h), 1);
    EXPECT_EQ(GetAdrFromAdd("無", &h), 1);
    EXPECT_THAT(watch.Names(), IsEmpty());
    EXPECT_EQ(h, Untouched());
}

// Their answers go into the caller's own memory.
TEST_F(ApiFaults, OfMemoryDoNotReachWhatAnswersIntoARecord) {
    CBlockBytes vTold[2];
    for (bool const bShort : {false, true}) {
        Answer(ENTRY_POINTS[0]);
        CCallerRecord zip("", "", "東京都千代田特別の区丸の内", "株式会社 テスト商事"),
            latest("", "", "東京都千代田特別の区旧町3");
        char szComment[128] = "";
        int nKind = 3, anStatus[5] = {};
        {
            CSystemWatch watch;
            for (char const* psz : {"GlobalAlloc", "GlobalLock", "open", "stat", "mmap", "LoadLibrary"})
                watch.Fail(psz);
            CShortage shortage(bShort ? 0 : -1);
            anStatus[0] = PstAdrGetZip(zip.ab);
            anStatus[1] = PstAdrGetLatestAdr(latest.ab);
            anStatus[2] = PstAdrGetComment(szComment, &nKind);
            anStatus[3] = PstAdrGetNum();
            anStatus[4] = GA_GetSearchOldName();
            GA_SetSearchOldName(0);
            EXPECT_FALSE(shortage.End());
            EXPECT_THAT(watch.Names(), IsEmpty());
        }
        EXPECT_THAT(anStatus, ElementsAre(0, 0, 0, 1, 1));
        CBlockBytes& vByte = vTold[bShort ? 1 : 0];
        for (CCallerRecord const* p : {&zip, &latest}) vByte.insert(vByte.end(), std::begin(p->ab), std::end(p->ab));
        vByte.insert(vByte.end(), std::begin(szComment), std::end(szComment));
    }
    EXPECT_EQ(vTold[1], vTold[0]);
    EXPECT_EQ(std::string(vTold[0].begin() + 8, vTold[0].begin() + 15), "1008222");
}

} // namespace
