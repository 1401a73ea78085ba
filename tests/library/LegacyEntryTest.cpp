// Entries of the lists through the legacy interface: every byte of the caller's record, and lengths that run on where a
// field is full.
#include "tests/library/AddrTextWorld.h"
#include "tests/library/LegacyWorld.h"

#include <tuple>

namespace {

using testing::ElementsAre;

class LegacyEntry : public CLegacy {
  protected:
    // Searches for a part of a code; without one, the lists are those of the whole dictionary.
    static void Select(char const* pszCode, int nPref = 0, int nCity = 0) { Counts(pszCode, "", nPref, nCity); }

    // Gets the entry twice, through the command and through its function, into records of all fills, and compares
    // with what Draw makes of the record before. nStatus is the function's; the command's is always 0.
    template <typename DRAW>
    static void ExpectEntry(short nKind, int nPosition, int nStatus, DRAW const& Draw) {
        for (unsigned char cFill : FILLS)
            for (CGuardedBytes::EPlace nPlace : {CGuardedBytes::EndOfPage, CGuardedBytes::StartOfPage}) {
                CEntry const byCommand(nPosition, cFill, nPlace), byFunction(nPosition, cFill, nPlace);
                CPicture expected(byCommand.Bytes());
                Draw(expected, cFill != 0);
                EXPECT_EQ(Get(nKind, byCommand), 0);
                EXPECT_TRUE(LooksLike(byCommand, expected)) << "kind " << nKind << " fill " << int{cFill};
                EXPECT_EQ(ga_legacy_gtdat(nKind, byFunction.Record()), nStatus);
                EXPECT_TRUE(LooksLike(byFunction, expected)) << "kind " << nKind << " fill " << int{cFill};
            }
    }

    static void ExpectUntouched(short nKind, int nPosition) {
        ExpectEntry(nKind, nPosition, 1, [](CPicture&, bool) {});
    }
    // The name's field is emptied, its length is not written.
    static void ExpectNoName(short nKind, int nPosition) {
        ExpectEntry(nKind, nPosition, 1, [](CPicture& picture, bool) { picture.Field(4, 60, ""); });
    }
    // A name below 60 bytes, and its length.
    static void ExpectName(short nKind, int nPosition, std::string const& strName) {
        ExpectEntry(nKind, nPosition, 0, [&](CPicture& picture, bool) {
            picture.Field(4, 60, strName).Byte(377, static_cast<int>(strName.size()));
        });
    }

    struct CTown {
        std::string strName, strDetail;
        int nDetailKind;
        std::string strOldCode, strCode;
    };
    // A town whose name and detail leave room in their fields. Codes that fill theirs count all that follows them: in
    // a record full of other bytes the old code's 5 bytes, one more, the code's 7, and the last 11.
    static void ExpectTown(int nPosition, CTown const& town) {
        ExpectEntry(TOWN, nPosition, 0, [&](CPicture& picture, bool bRunsOn) {
            picture.Field(4, 60, town.strName).Field(126, 128, town.strDetail).Byte(386, town.nDetailKind);
            picture.Field(387, 5, town.strOldCode).Field(393, 7, town.strCode);
            picture.Byte(377, static_cast<int>(town.strName.size()));
            picture.Byte(381, static_cast<int>(town.strDetail.size()));
            bool const bOldRunsOn = bRunsOn && town.strOldCode.size() == 5;
            bool const bRunsOnAgain = bRunsOn && town.strCode.size() == 7;
            picture.Byte(409, bOldRunsOn ? 24 : static_cast<int>(town.strOldCode.size()));
            picture.Byte(410, bRunsOnAgain ? 18 : static_cast<int>(town.strCode.size()));
        });
    }

    static std::string Name(size_t nLength) {
        std::string str;
        for (size_t n = 0; n < nLength; ++n) str += static_cast<char>('a' + n % 26);
        return str;
    }
};

// --- what is written -----------------------------------------------------------------------------------------------

TEST_F(LegacyEntry, OfAPrefectureWritesItsNameAndTheLength) {
    OpenImage(CLegacyWorld());
    for (bool bTree : {true, false}) {
        Select(bTree ? "100" : "");
        ExpectName(PREF, 0, "北海道");
        ExpectName(PREF, 1, "東京都");
    }
}

TEST_F(LegacyEntry, OfACityWritesItsNameAndTheLength) {
    OpenImage(CLegacyWorld());
    for (char const* pszAddr : {"東京都", ""}) {
        Counts("", pszAddr, *pszAddr == '\0' ? 1 : 0);
        ExpectName(CITY, 0, "千代田区");
        ExpectName(CITY, 1, "港区");
    }
}

TEST_F(LegacyEntry, OfATownWritesItsTextsTheirKindAndFourLengths) {
    OpenImage(CLegacyWorld());
    for (bool bTree : {true, false}) {
        Select(bTree ? "100" : "", 1);
        ExpectTown(0, {"丸の内", "", 0, "10055", "1000005"});
        ExpectTown(1, {"丸の内", "テスト", 3, "100", "1008111"});
        ExpectTown(2, {"丸の内", "丸ビル１階", 4, "100", "1006001"});
        ExpectTown(3, {"千代田", "", 0, "100", "1000001"});
    }
    Select("105");
    ExpectTown(0, {"芝", "１丁目", 1, "10501", "1050014"});
}

TEST_F(LegacyEntry, OfATownWithoutAnEntryOfItsOwnHasNoCodes) {
    CLegacyWorld world;
    world.vNode[world.nChiyoda].nInfo = ADDR_NONE;
    OpenImage(world);
    Select("1000001");
    ExpectTown(0, {"千代田", "", 0, "", ""});
}

TEST_F(LegacyEntry, OfATownWithCodesOfOtherLengthsHasThese) {
    for (auto const& [strOldCode, strCode] :
         {std::pair<std::string, std::string>{"", "1"}, {"1234", "100000"}, {"123456", "10000011"}}) {
        CNamedWorld world("東京都", "港区", "芝");
        world.vInfo[0].nCode = world.AddText(strCode, strOldCode);
        OpenImage(world);
        Select("1");
        ExpectTown(0, {"芝", "", 0, strOldCode.substr(0, 5), strCode.substr(0, 7)});
    }
}

// --- failures ------------------------------------------------------------------------------------------------------

TEST_F(LegacyEntry, OfAnotherKindIsAFailureThatTouchesNothing) {
    OpenImage(CLegacyWorld());
    Select("100", 1);
    for (int nKind : {-1, 3, 4, 5, 21, 127, 128, 255, 256, 257, 258, 0x0200, 32767, -32768, -254, -255, -256})
        ExpectUntouched(static_cast<short>(nKind), 0);
}

TEST_F(LegacyEntry, OfEveryOtherKindThereIsIsAFailure) {
    OpenImage(CLegacyWorld());
    Select("100", 1);
    CEntry const entry(0, 0x5A);
    CBytes const vBefore = entry.Bytes();
    for (int nKind = -32768; nKind <= 32767; ++nKind) {
        if (nKind >= 0 && nKind <= 2) continue;
        ASSERT_EQ(Get(static_cast<short>(nKind), entry), 0) << nKind;
        ASSERT_EQ(ga_legacy_gtdat(static_cast<short>(nKind), entry.Record()), 1) << nKind;
        ASSERT_EQ(entry.Bytes(), vBefore) << nKind;
    }
}

TEST_F(LegacyEntry, OfAPrefectureThatIsNotThereEmptiesTheName) {
    OpenImage(CLegacyWorld());
    for (bool bTree : {true, false}) {
        Select(bTree ? "100" : "");
        for (int nPosition : {2, 3, 256, 32767, -1, -32768}) ExpectNoName(PREF, nPosition);
    }
}

TEST_F(LegacyEntry, OfACityThatIsNotInTheTreeIsASuccessWithoutAName) {
    OpenImage(CLegacyWorld());
    for (int nPref : {1, 2, 32767}) { // the selected one, and two that are not there
        Select("100", nPref);
        for (int nPosition : {1, 2, 256, 32767, -1, -32768}) ExpectName(CITY, nPosition, "");
    }
    ExpectName(CITY, 0, "");
    Select("100", 1);
    ExpectName(CITY, 0, "千代田区");
}

TEST_F(LegacyEntry, OfACityThatIsNotInTheWholeDictionaryEmptiesTheName) {
    OpenImage(CLegacyWorld());
    Select("", 1);
    for (int nPosition : {2, 3, 256, 32767, -1, -32768}) ExpectNoName(CITY, nPosition);
}

TEST_F(LegacyEntry, OfATownAtANegativePositionTouchesNothing) {
    OpenImage(CLegacyWorld());
    for (bool bTree : {true, false}) {
        Select(bTree ? "100" : "", 1);
        for (int nPosition : {-1, -2, -256, -32768}) ExpectUntouched(TOWN, nPosition);
    }
}

TEST_F(LegacyEntry, OfATownThatIsNotThereEmptiesItsTextsButNotTheLengths) {
    OpenImage(CLegacyWorld());
    auto const ExpectNoTown = [](int nPosition) {
        ExpectEntry(TOWN, nPosition, 1, [](CPicture& picture, bool) {
            picture.Field(4, 60, "").Field(126, 128, "").Byte(386, 0).Field(387, 5, "").Field(393, 7, "");
        });
    };
    for (bool bTree : {true, false}) {
        Select(bTree ? "100" : "", 1);
        for (int nPosition : {4, 5, 256, 32767}) ExpectNoTown(nPosition);
    }
    Select("100", 2); // no such prefecture, and a city that the one before has not
    ExpectNoTown(0);
    Select("100", 1, 1);
    ExpectNoTown(0);
}

TEST_F(LegacyEntry, BeforeASearchIsNotThere) {
    OpenImage(CLegacyWorld());
    ExpectNoName(PREF, 0);
    ExpectNoName(CITY, 0);
    CEntry const entry(0, 0x5A);
    EXPECT_EQ(ga_legacy_gtdat(TOWN, entry.Record()), 1);
    EXPECT_EQ(entry.Byte(377), 0x5A);
}

TEST_F(LegacyEntry, OfAnyKindIsReadWithoutChangingTheLists) {
    OpenImage(CLegacyWorld());
    Select("100", 1);
    CBytes const vState = State();
    for (int nKind : {0, 1, 2, 3, -1})
        for (int nPosition : {0, 1, -1, 32767}) Get(static_cast<short>(nKind), CEntry(nPosition));
    EXPECT_EQ(State(), vState);
}

// --- names of any length -------------------------------------------------------------------------------------------

TEST_F(LegacyEntry, HasRoomForANameOf60BytesWithoutANul) {
    for (size_t nLength : {1u, 58u, 59u, 60u, 61u, 120u, 200u}) {
        std::string const strName = Name(nLength);
        OpenImage(CNamedWorld(strName, strName, strName));
        size_t const nCopied = std::min<size_t>(nLength, 60);
        bool const bFull = nLength >= 60;
        Select("1");
        for (bool bTree : {true, false}) {
            Select(bTree ? "1" : "");
            for (short nKind : {PREF, CITY}) {
                if (nKind == PREF && !bTree) continue; // a name that is no prefecture's has no place in that order
                ExpectEntry(nKind, 0, 0, [&](CPicture& picture, bool bRunsOn) {
                    // All that follows, up to the record's end: 407 bytes.
                    picture.Field(4, 60, strName).Byte(377, bFull && bRunsOn ? 407 - 256 : static_cast<int>(nCopied));
                });
            }
            ExpectEntry(TOWN, 0, 0, [&](CPicture& picture, bool bRunsOn) {
                picture.Field(4, 60, strName).Field(126, 128, "").Byte(386, 0);
                picture.Field(387, 5, "10001").Field(393, 7, "1000001").Byte(381, 0);
                // Up to the detail, which is empty.
                picture.Byte(377, bFull && bRunsOn ? 126 - 4 : static_cast<int>(nCopied));
                picture.Byte(409, bRunsOn ? 24 : 5).Byte(410, bRunsOn ? 18 : 7);
            });
        }
    }
}

TEST_F(LegacyEntry, CountsAFullNameUpToTheNextNulModulo256) {
    OpenImage(CNamedWorld(Name(60), "港区", "芝"));
    Select("1");
    for (size_t nNul : {64u, 65u, 100u, 259u, 260u, 261u, 410u}) {
        CEntry const entry(0, 0x5A);
        entry.PutByte(nNul, 0);
        CPicture expected(entry.Bytes());
        expected.Field(4, 60, Name(60)).Byte(377, static_cast<int>((nNul - 4) % 256));
        EXPECT_EQ(Get(PREF, entry), 0);
        EXPECT_TRUE(LooksLike(entry, expected)) << nNul;
    }
}

TEST_F(LegacyEntry, CountsTheNameOfATownIntoItsDetailWhenItIsFull) {
    CNamedWorld world(LEVEL_OFFICE, "office");
    world.vNode[world.nTown].nName = world.AddText(Name(60));
    OpenImage(world);
    Select("1");
    CEntry const entry(0, 0x5A);
    EXPECT_EQ(Get(TOWN, entry), 0);
    EXPECT_EQ(entry.Byte(377), 126 - 4 + 6);
    EXPECT_EQ(entry.Byte(381), 6);
}

TEST_F(LegacyEntry, HasRoomForADetailOf128BytesWithoutANul) {
    for (auto const& [nLevel, nDetailKind] :
         {std::pair<uint8_t, int>{LEVEL_AREA, 1}, {LEVEL_OFFICE, 3}, {LEVEL_BLOCK, 4}, {LEVEL_NOTE, 0}})
        for (size_t nLength : {1u, 127u, 128u, 129u, 300u}) {
            OpenImage(CNamedWorld(nLevel, Name(nLength)));
            Select("1");
            int const nKind = nDetailKind;
            ExpectEntry(TOWN, 0, 0, [&](CPicture& picture, bool bRunsOn) {
                picture.Field(4, 60, "芝").Field(126, 128, Name(nLength)).Byte(386, nKind).Byte(377, 3);
                picture.Field(387, 5, "10001").Field(393, 7, "1000001");
                // Up to the kind when that is 0, else up to the record's end: 285 bytes.
                int const nOn = nKind == 0 ? 386 - 126 : 411 - 126;
                int const nCopied = static_cast<int>(std::min<size_t>(nLength, 128));
                picture.Byte(381, (bRunsOn && nLength >= 128 ? nOn : nCopied) % 256);
                picture.Byte(409, bRunsOn ? 24 : 5).Byte(410, bRunsOn ? 18 : 7);
            });
        }
}

// --- lengths of the codes ------------------------------------------------------------------------------------------

TEST_F(LegacyEntry, CountsItsFullCodesOnIntoTheBytesBehindThem) {
    OpenImage(CNamedWorld("東京都", "港区", "芝"));
    Select("1");
    // Bytes 392 and 400 to 404 before, and the lengths that come of them.
    for (auto const& [n392, nBehind, nOldLength, nLength] :
         {std::tuple{0, 0, 5, 7}, {1, 0, 13, 7}, {0, 1, 5, 8}, {1, 1, 14, 8}, {1, 5, 18, 12}, {0, 5, 5, 12}}) {
        CEntry const entry;
        entry.PutByte(392, n392);
        for (int n = 0; n < nBehind; ++n) entry.PutByte(static_cast<size_t>(400 + n), 'x');
        CPicture expected(entry.Bytes());
        expected.Field(4, 60, "芝").Byte(377, 3).Field(387, 5, "10001").Field(393, 7, "1000001");
        expected.Byte(409, nOldLength).Byte(410, nLength);
        EXPECT_EQ(Get(TOWN, entry), 0);
        EXPECT_TRUE(LooksLike(entry, expected)) << n392 << " " << nBehind;
    }
}

// The old code is found behind the code in the dictionary, whatever stands behind the code in the record.
TEST_F(LegacyEntry, FindsTheOldCodeWhateverFollowsTheCodeInTheRecord) {
    OpenImage(CNamedWorld("東京都", "港区", "芝"));
    Select("1");
    for (unsigned char cFill : FILLS) {
        CEntry const entry(0, cFill);
        EXPECT_EQ(Get(TOWN, entry), 0);
        EXPECT_EQ(entry.Text(387, 5), "10001");
    }
}

// --- cities in two parts -------------------------------------------------------------------------------------------

TEST_F(LegacyEntry, OfACityInTwoPartsWritesTheLengthsOfBoth) {
    for (std::string const strName :
         {"aa" SHI "cc" KU, "aabb" SHI "cc" KU, "aa" GUN "ccdd" CHO, "aa" AGATA "cc" MURA}) {
        size_t const nFront = strName.size() - (strName.find("ccdd") == std::string::npos ? 4 : 6);
        OpenImage(CNamedWorld("東京都", strName, "芝"));
        for (bool bTree : {true, false}) {
            Select(bTree ? "1" : "");
            ExpectEntry(CITY, 0, 0, [&](CPicture& picture, bool) {
                picture.Field(4, 60, strName).Byte(377, static_cast<int>(nFront));
                picture.Byte(378, static_cast<int>(strName.size() - nFront));
            });
        }
    }
}

TEST_F(LegacyEntry, OfACityInTwoPartsThatIsCutHasTheLengthsOfWhatIsLeft) {
    std::string const strFront = Name(54) + SHI, strRest = "cc" KU; // 60 bytes
    OpenImage(CNamedWorld("東京都", strFront + strRest + "more", "芝"));
    for (bool bTree : {true, false}) {
        Select(bTree ? "1" : "");
        CEntry const entry;
        CPicture expected(entry.Bytes());
        expected.Field(4, 60, strFront + strRest).Byte(377, 56).Byte(378, 4);
        EXPECT_EQ(Get(CITY, entry), 0);
        EXPECT_TRUE(LooksLike(entry, expected)) << bTree;
    }
}

TEST_F(LegacyEntry, OfACityInOnePartLeavesTheSecondLengthAlone) {
    for (std::string const strName : {"aabbcc" SHI, "aabbcc" KU, "aa", "a", "札幌市中央区", "石狩郡当別町"}) {
        OpenImage(CNamedWorld("東京都", strName, "芝"));
        for (bool bTree : {true, false}) {
            Select(bTree ? "1" : "");
            ExpectName(CITY, 0, strName); // and nothing else, for every fill of byte 378
        }
    }
}

TEST_F(LegacyEntry, OfAPrefectureOrATownIsNeverInTwoParts) {
    std::string const strName = "aa" SHI "cc" KU;
    OpenImage(CNamedWorld(strName, "港区", strName));
    Select("1");
    ExpectName(PREF, 0, strName);
    ExpectTown(0, {strName, "", 0, "10001", "1000001"});
}

// --- positions -----------------------------------------------------------------------------------------------------

TEST_F(LegacyEntry, IsFoundAtAPositionOfTwoBytes) {
    CTestImage image = CNamedWorld("東京都", "港区", "town 1000");
    image.vInfo.clear();
    for (uint32_t n = 1; n < 300; ++n) image.AddNode(LEVEL_TOWN, 1, "town " + std::to_string(1000 + n));
    for (uint32_t n = 0; n < 300; ++n) image.AddInfo(n + 2, "1000001", "100");
    image.AddInfo(2, "9999999");
    for (tagADDRNODE& node : image.vNode) node.nInfo = ADDR_NONE;
    image.Complete();
    OpenImage(image);
    for (bool bTree : {true, false}) {
        Select(bTree ? "1" : "");
        for (int nPosition : {0, 1, 255, 256, 257, 299})
            EXPECT_EQ(NameAt(TOWN, nPosition), "town " + std::to_string(1000 + nPosition)) << bTree;
    }
}

} // namespace
