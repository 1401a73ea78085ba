// Searching and counting through the legacy interface: the request's two codes and its positions, and every byte of
// both records.
#include "dic/ImageHeader.h"
#include "tests/library/LegacyWorld.h"

namespace {

using testing::ElementsAre;

class LegacySearch : public CLegacy {};

// --- the counts ----------------------------------------------------------------------------------------------------

TEST_F(LegacySearch, WritesThreeCountsTwoMarksAndThreeWidths) {
    OpenImage(CLegacyWorld());
    for (unsigned char cFill : FILLS)
        for (bool bTree : {true, false}) {
            CRequest request(cFill);
            request.Select(1, 0, 0).Ask(bTree ? "100" : "", "");
            CCounts const counts(cFill);
            CPicture const expected = Counted(counts, 2, bTree ? 1 : 2, 4);
            EXPECT_EQ(Search(request, counts), 0);
            EXPECT_TRUE(LooksLike(counts, expected)) << bTree;
        }
}

TEST_F(LegacySearch, CountsTheWholeDictionaryWithoutAText) {
    OpenImage(CLegacyWorld());
    EXPECT_THAT(Counts("", ""), ElementsAre(2, 1, 2)) << "北海道 is the first one";
    EXPECT_THAT(Counts("", "", 1), ElementsAre(2, 2, 4));
    EXPECT_THAT(Counts("", "", 1, 1), ElementsAre(2, 2, 2));
}

TEST_F(LegacySearch, CountsWhatAnAddressCanMean) {
    OpenImage(CLegacyWorld());
    EXPECT_THAT(Counts("", "東京都"), ElementsAre(1, 2, 4));
    EXPECT_THAT(Counts("", "東京都", 0, 1), ElementsAre(1, 2, 2));
    EXPECT_THAT(Counts("", "港区芝"), ElementsAre(1, 1, 2));
}

TEST_F(LegacySearch, LeavesTheWidthsAloneForASelectionThatIsNotThere) {
    OpenImage(CLegacyWorld());
    for (unsigned char cFill : FILLS)
        for (int nBeyond : {2, 3, 256, 32767}) {
            CRequest request(cFill);
            CCounts const noPref(cFill), noCity(cFill);
            CPicture const expectedPref = CountedInPart(noPref, 2, 0), expectedCity = CountedInPart(noCity, 2, 1);
            EXPECT_EQ(Search(request.Select(nBeyond, 0, 0).Ask("100", ""), noPref), 0);
            EXPECT_TRUE(LooksLike(noPref, expectedPref)) << nBeyond;
            EXPECT_EQ(Search(request.Select(1, nBeyond, 0).Ask("100", ""), noCity), 0);
            EXPECT_TRUE(LooksLike(noCity, expectedCity)) << nBeyond;
        }
}

TEST_F(LegacySearch, LeavesTheWidthsAloneForASelectionThatIsNotInTheWholeDictionary) {
    OpenImage(CLegacyWorld());
    for (unsigned char cFill : FILLS)
        for (int nBeyond : {2, 3, 256, 32767}) {
            ASSERT_THAT(Counts("", "", 1), ElementsAre(2, 2, 4)); // whose cities the second search is about
            CRequest request(cFill);
            CCounts const noPref(cFill), noCity(cFill);
            CPicture const expectedPref = CountedInPart(noPref, 2, 0), expectedCity = CountedInPart(noCity, 2, 2);
            EXPECT_EQ(Search(request.Select(nBeyond, 0, 0), noPref), 0);
            EXPECT_TRUE(LooksLike(noPref, expectedPref)) << nBeyond;
            EXPECT_EQ(Search(request.Select(1, nBeyond, 0), noCity), 0);
            EXPECT_TRUE(LooksLike(noCity, expectedCity)) << nBeyond;
        }
}

TEST_F(LegacySearch, DoesNotAskWhetherTheSelectedTownIsThere) {
    OpenImage(CLegacyWorld());
    CRequest request;
    CCounts const counts;
    CPicture const expected = Counted(counts, 2, 1, 1);
    EXPECT_EQ(Search(request.Select(0, 0, 32767).Ask("100", ""), counts), 0);
    EXPECT_TRUE(LooksLike(counts, expected));
}

TEST_F(LegacySearch, WritesOnlyTheTwoMarksForANegativePosition) {
    OpenImage(CLegacyWorld());
    for (unsigned char cFill : FILLS)
        for (char const* pszCode : {"100", ""})
            for (int nNegative : {-1, -32768, -256})
                for (int nWhich : {0, 1, 2}) {
                    CRequest request(cFill);
                    request.Ask(pszCode, "");
                    request.PutNumber(static_cast<size_t>(6 + 2 * nWhich), nNegative);
                    CCounts const counts(cFill);
                    CPicture expected(counts.Bytes());
                    expected.Number(6, -1).Number(8, -1);
                    EXPECT_EQ(Search(request, counts), 0);
                    EXPECT_TRUE(LooksLike(counts, expected)) << pszCode << " " << nNegative << " " << nWhich;
                }
}

TEST_F(LegacySearch, TakesItsPositionsFromBytes6And8And10) {
    OpenImage(CLegacyWorld());
    for (unsigned char cFill : FILLS) {
        CRequest request(cFill);
        request.Select(0x0102, 0x0304, 0x7F06).Ask("100", "");
        Search(request, CCounts());
        CAddrDicPeek const peek(ga_legacy::dic);
        EXPECT_EQ(peek.nSelPref, 0x0102); // a tree takes a selection as it comes
        EXPECT_EQ(peek.nSelCity, 0x0304);
        EXPECT_EQ(peek.nSelTown, 0x7F06);
    }
}

TEST_F(LegacySearch, CountsModulo65536) {
    CTestImage image = CNamedWorld("東京都", "港区", "芝");
    image.vInfo.clear();
    uint32_t const nCode = image.AddText("1000001", "100");
    for (int n = 0; n < 40000; ++n) image.AddInfoAt(2, nCode);
    image.AddInfo(2, "9999999");
    image.Complete();
    OpenImage(image);
    CRequest request;
    CCounts const counts;
    EXPECT_EQ(Search(request.Ask("1", ""), counts), 0);
    EXPECT_EQ(counts.Byte(4), 40000 & 0xFF);
    EXPECT_EQ(counts.Byte(5), 40000 >> 8);
    EXPECT_EQ(counts.Byte(6), 0xFF);
}

// --- the codes -----------------------------------------------------------------------------------------------------

TEST_F(LegacySearch, RewritesTheCodeToItsDigits) {
    OpenImage(CLegacyWorld());
    for (unsigned char cFill : FILLS) {
        CRequest request(cFill);
        request.Ask("100-0001", "");
        CPicture expected(request.Bytes());
        expected.Put(1020, std::string("1000001", 8));
        CCounts const counts(cFill);
        EXPECT_EQ(Search(request, counts), 0);
        EXPECT_TRUE(LooksLike(request, expected));
        EXPECT_EQ(counts.Number(4), 1);
        EXPECT_EQ(NameAt(TOWN, 0), "千代田");
    }
}

TEST_F(LegacySearch, LeavesTheBytesBehindTheCodesNewEnd) {
    OpenImage(CLegacyWorld());
    CRequest request(0x5A);
    request.Ask("", "");
    request.Put(1020, std::string("1-0-\0xyz", 8));
    CPicture expected(request.Bytes());
    expected.Put(1020, std::string("10\0-\0xyz", 8));
    EXPECT_EQ(Search(request, CCounts()), 0);
    EXPECT_TRUE(LooksLike(request, expected));
}

TEST_F(LegacySearch, KnowsDigitsOfTheDoubleByteCodePage) {
    OpenImage(CLegacyWorld());
    CRequest request;
    request.Ask("\x82\x50\x82\x4F\x82\x4F", "");
    CPicture expected(request.Bytes());
    expected.Put(1020, std::string("100\0\x82\x4F", 6));
    CCounts const counts;
    EXPECT_EQ(Search(request, counts), 0);
    EXPECT_TRUE(LooksLike(request, expected));
    EXPECT_EQ(counts.Number(0), 2);
}

TEST_F(LegacySearch, KeepsQuestionMarksAndAsterisksWhichMatchNothing) {
    OpenImage(CLegacyWorld());
    CRequest request;
    request.Ask("1?-?*", "");
    CPicture expected(request.Bytes());
    expected.Put(1020, std::string("1?"
                                   "?*",
                                   5));
    CCounts const counts;
    EXPECT_EQ(Search(request, counts), 0);
    EXPECT_TRUE(LooksLike(request, expected));
    EXPECT_EQ(NameAt(PREF, 0), "北海道") << "nothing found: the lists of the whole dictionary";
}

TEST_F(LegacySearch, TakesTheShortCodeOnlyWhenTheOtherFieldBeginsWithNul) {
    OpenImage(CLegacyWorld());
    for (unsigned char cFill : FILLS) {
        CRequest request(cFill);
        request.Ask("", "");
        request.Put(1014, std::string("1-05\0y", 6));
        request.Put(1020, std::string("\0"
                                      "000001x",
                                      8)); // all but the first byte of a code
        CPicture const expected = CPicture(request.Bytes()).Put(1014, std::string("105\0\0y", 6));
        CCounts const counts(cFill);
        CPicture const expectedCounts = Counted(counts, 1, 1, 2);
        EXPECT_EQ(Search(request, counts), 0);
        EXPECT_TRUE(LooksLike(request, expected));
        EXPECT_TRUE(LooksLike(counts, expectedCounts));
        EXPECT_EQ(NameAt(CITY, 0), "港区");
    }
}

TEST_F(LegacySearch, LeavesTheShortCodeAloneWhenTheOtherFieldBeginsWithAnything) {
    OpenImage(CLegacyWorld());
    for (unsigned char cFill : FILLS) {
        CRequest request(cFill);
        request.Ask("100", "");
        request.Put(1014, "1-0-5-");
        CBytes const vBefore = request.Bytes();
        EXPECT_EQ(Search(request, CCounts()), 0);
        EXPECT_TRUE(IsUntouched(request, vBefore));
        EXPECT_EQ(NameAt(PREF, 0), "北海道");
    }
}

// The choice is made before the code is normalised; the next search finds the field empty.
TEST_F(LegacySearch, TakesACodeWithoutDigitsForNoneAtAllTheFirstTime) {
    OpenImage(CLegacyWorld());
    CRequest request;
    request.Ask("-       ", "");
    request.Put(1014, "105");
    CPicture const expected = CPicture(request.Bytes()).Byte(1020, 0);
    CCounts const counts;
    EXPECT_EQ(Search(request.Select(1, 0, 0), counts), 0);
    EXPECT_EQ(counts.Number(2), 2) << "the whole dictionary";
    EXPECT_EQ(request.Bytes()[1020], 0);
    EXPECT_EQ(request.Bytes()[1021], ' ');
    EXPECT_EQ(request.Text(1014, 6), "105");
    EXPECT_EQ(Search(request.Select(0, 0, 0), counts), 0);
    EXPECT_EQ(counts.Number(0), 1);
    EXPECT_TRUE(LooksLike(request, expected));
}

TEST_F(LegacySearch, ReadsACodeThatFillsItsFieldWithoutNul) {
    OpenImage(CLegacyWorld());
    CRequest request(0x5A); // its page ends behind the code
    request.Ask("1000-001", "");
    CPicture expected(request.Bytes());
    expected.Put(1020, std::string("1000001", 8));
    CCounts const counts;
    EXPECT_EQ(Search(request, counts), 0);
    EXPECT_TRUE(LooksLike(request, expected));
    EXPECT_EQ(counts.Number(0), 1);

    request.Ask("10000012", "");
    CBytes const vBefore = request.Bytes();
    EXPECT_EQ(Search(request, counts), 0);
    EXPECT_TRUE(IsUntouched(request, vBefore)) << "eight digits are all of the field";
    EXPECT_EQ(counts.Number(0), 2) << "and the code of nothing";
}

TEST_F(LegacySearch, DropsAFirstByteThatEndsTheField) {
    OpenImage(CLegacyWorld());
    CRequest request(0x5A);
    request.Ask("1000001\x82", "");
    CPicture expected(request.Bytes());
    expected.Put(1020, std::string("1000001", 8));
    EXPECT_EQ(Search(request, CCounts()), 0);
    EXPECT_TRUE(LooksLike(request, expected));
    EXPECT_EQ(NameAt(TOWN, 0), "千代田");
}

TEST_F(LegacySearch, ReadsAShortCodeThatFillsItsFieldWithoutNul) {
    OpenImage(CLegacyWorld());
    CRequest request(0x5A);
    request.Ask("", "");
    request.Put(1014, "100811"); // the NUL behind it is the other code's
    CBytes const vBefore = request.Bytes();
    EXPECT_EQ(Search(request, CCounts()), 0);
    EXPECT_TRUE(IsUntouched(request, vBefore));
    EXPECT_EQ(NameAt(TOWN, 0), "丸の内 テスト");
    request.Put(1014, "10081-");
    CPicture expected(request.Bytes());
    expected.Byte(1019, 0);
    EXPECT_EQ(Search(request, CCounts()), 0);
    EXPECT_TRUE(LooksLike(request, expected));
}

// --- records -------------------------------------------------------------------------------------------------------

TEST_F(LegacySearch, ReadsPositionsOfTwoBytes) {
    CTestImage image;
    image.AddNode(LEVEL_PREF, ADDR_NONE, "東京都");
    for (int n = 0; n < 300; ++n) image.AddNode(LEVEL_CITY, 0, "city " + std::to_string(1000 + n));
    for (uint32_t n = 0; n < 300; ++n)
        for (uint32_t nTown = 0; nTown <= n % 3; ++nTown)
            image.AddInfo(image.AddNode(LEVEL_TOWN, n + 1, "town"), "1000001");
    image.AddInfo(0, "9");
    image.Complete();
    OpenImage(image);
    EXPECT_THAT(Counts("1", "", 0, 1), ElementsAre(1, 300, 2));
    EXPECT_THAT(Counts("1", "", 0, 257), ElementsAre(1, 300, 3)) << "257 % 256 == 1";
    EXPECT_EQ(NameAt(CITY, 257), "city 1257");
}

TEST_F(LegacySearch, WorksOnRecordsAtAnyAddress) {
    OpenImage(CLegacyWorld());
    for (size_t nShift : {1u, 2u, 3u}) {
        CBytes vByte(1028 + 534 + 411 + 3 * 8);
        unsigned char* const pRequest = vByte.data() + nShift;
        unsigned char* const pCounts = pRequest + 1028;
        unsigned char* const pEntry = pCounts + 534;
        std::memcpy(pRequest + 1020, "100-0001", 8);
        EXPECT_EQ(GA_adr_exec(SEARCH, 0, reinterpret_cast<GA_ADRSRT*>(pRequest), nullptr, pCounts), 0);
        EXPECT_EQ(std::memcmp(pRequest + 1020, "1000001", 8), 0);
        EXPECT_EQ(pCounts[4], 1);
        EXPECT_EQ(pCounts[532], 60);
        EXPECT_EQ(GA_adr_exec(GET, TOWN, nullptr, nullptr, pEntry), 0);
        EXPECT_STREQ(reinterpret_cast<char const*>(pEntry) + 4, "千代田");
        EXPECT_EQ(pEntry[410], 7);
    }
}

TEST_F(LegacySearch, TouchesNothingInFrontOfItsRecords) {
    OpenImage(CLegacyWorld());
    CRequest request(0, CGuardedBytes::StartOfPage);
    request.Ask("100-0001", "東京都");
    CCounts const counts(0, CGuardedBytes::StartOfPage);
    CPicture const expected = Counted(counts, 1, 1, 1);
    EXPECT_EQ(Search(request, counts), 0);
    EXPECT_TRUE(LooksLike(counts, expected));
    EXPECT_EQ(request.Text(1020, 8), "1000001");
}

#if defined(__i386__)
// In 64 bits such a count is a matter of memory alone.
TEST_F(LegacySearch, CountsNothingWhereThereAreMorePrefecturesThanAListCanHold) {
    CBytes vByte = CLegacyWorld().Bytes();
    uint32_t const nMany = 0x7FFFFFFF;
    for (tagHEADERWORD nWord : {HDR_NODE_COUNT, HDR_PREF_COUNT}) std::memcpy(&vByte[4 * nWord], &nMany, sizeof nMany);
    ga_legacy::dic.SetDictionary(vByte.data());
    CCounts const counts(0x5A);
    CPicture expected(counts.Bytes());
    expected.Number(6, -1).Number(8, -1);
    EXPECT_EQ(Search(CRequest(), counts), 0);
    EXPECT_TRUE(LooksLike(counts, expected));
}
#endif

} // namespace
