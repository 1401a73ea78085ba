// GetShikugunType: kinds of city-level names. The suffix test looks at two bytes, so that only names in the manner of
// a double-byte encoding have a kind.
#include "tests/library/AddrTextWorld.h"

#include <gmock/gmock.h>

namespace {

struct CKind {
    unsigned nType, nPrefix;
    bool operator==(CKind const& other) const { return nType == other.nType && nPrefix == other.nPrefix; }
};
void PrintTo(CKind const& kind, std::ostream* pOut) {
    *pOut << "kind " << kind.nType << " prefix " << kind.nPrefix;
}

constexpr unsigned short UNTOUCHED = 999;

CKind KindOf(std::string const& strName) {
    CGuardedBytes const name(strName, CGuardedBytes::ReadOnly); // a look behind the NUL would end the test
    unsigned short nType = UNTOUCHED;
    unsigned short const nPrefix = GetShikugunType(name.Text(), &nType);
    return {nType, nPrefix};
}

TEST(ShikugunType, IsThatOfTheLastTwoBytesAndOfTheMarkerBeforeThem) {
    EXPECT_EQ(KindOf("aabbcc" SHI), (CKind{0, 0}));
    EXPECT_EQ(KindOf("aabbcc" KU), (CKind{1, 0}));
    EXPECT_EQ(KindOf("aa" SHI "cc" KU), (CKind{2, 4}));
    EXPECT_EQ(KindOf("aa" GUN "cc" CHO), (CKind{3, 4}));
    EXPECT_EQ(KindOf("aa" GUN "cc" MURA), (CKind{4, 4}));
    EXPECT_EQ(KindOf("aa" SHIMA "cc" CHO), (CKind{5, 4}));
    EXPECT_EQ(KindOf("aa" SHIMA "cc" MURA), (CKind{5, 4}));
    EXPECT_EQ(KindOf("aa" AGATA "cc" MURA), (CKind{6, 4}));
    EXPECT_EQ(KindOf("aabbcc" CHO), (CKind{7, 0}));
    EXPECT_EQ(KindOf("aabbcc" MURA), (CKind{7, 0}));
    EXPECT_EQ(KindOf("aabbccdd"), (CKind{7, 0}));
}

TEST(ShikugunType, LooksOnlyForTheMarkersOfItsEnding) {
    EXPECT_EQ(KindOf("aa" SHI "cc" SHI), (CKind{0, 0})) << "nothing is searched before 市";
    EXPECT_EQ(KindOf("aa" GUN "cc" SHI), (CKind{0, 0}));
    EXPECT_EQ(KindOf("aa" GUN "cc" KU), (CKind{1, 0}));
    EXPECT_EQ(KindOf("aa" SHI "cc" CHO), (CKind{7, 0}));
    EXPECT_EQ(KindOf("aa" AGATA "cc" CHO), (CKind{7, 0}));
    EXPECT_EQ(KindOf("aa" SHI "cc" MURA), (CKind{7, 0}));
    for (std::string const strEnd : {GUN, SHIMA, AGATA})
        EXPECT_EQ(KindOf("aa" SHI "cc" + strEnd), (CKind{7, 0})) << "a marker is no ending";
}

TEST(ShikugunType, TakesTheMarkerNearestToTheEnd) {
    EXPECT_EQ(KindOf("aa" GUN SHIMA "cc" CHO), (CKind{5, 6}));
    EXPECT_EQ(KindOf("aa" SHIMA GUN "cc" CHO), (CKind{3, 6}));
    EXPECT_EQ(KindOf("aa" AGATA SHIMA GUN "cc" MURA), (CKind{4, 8}));
    EXPECT_EQ(KindOf("aa" GUN "bb" AGATA "cc" MURA), (CKind{6, 8}));
    EXPECT_EQ(KindOf("aa" SHI "bb" SHI "cc" KU), (CKind{2, 8}));
}

TEST(ShikugunType, DoesNotTakeTheCharacterRightBeforeTheEndingForAMarker) {
    EXPECT_EQ(KindOf("aabb" SHI KU), (CKind{1, 0}));
    EXPECT_EQ(KindOf("aabb" GUN CHO), (CKind{7, 0}));
    EXPECT_EQ(KindOf("aabb" SHIMA MURA), (CKind{7, 0}));
    EXPECT_EQ(KindOf("aabb" AGATA MURA), (CKind{7, 0}));
}

TEST(ShikugunType, DoesNotLookAtTheFirstTwoPositions) {
    EXPECT_EQ(KindOf(SHI "bbcc" KU), (CKind{1, 0})) << "position 0";
    EXPECT_EQ(KindOf("a" SHI "bbcc" KU), (CKind{1, 0})) << "position 1";
    EXPECT_EQ(KindOf("aa" SHI "bbcc" KU), (CKind{2, 4})) << "position 2";
    EXPECT_EQ(KindOf("aaa" SHI "bbcc" KU), (CKind{2, 5})) << "position 3";
    EXPECT_EQ(KindOf(GUN "bbcc" CHO), (CKind{7, 0}));
    EXPECT_EQ(KindOf("a" GUN "bbcc" MURA), (CKind{7, 0}));
}

TEST(ShikugunType, DoesNotSearchNamesTooShortForAMarker) {
    EXPECT_EQ(KindOf("a" KU), (CKind{1, 0}));
    EXPECT_EQ(KindOf(SHI KU), (CKind{1, 0}));
    EXPECT_EQ(KindOf(SHI "cc" KU), (CKind{1, 0}));
    EXPECT_EQ(KindOf("a" SHI "cc" KU), (CKind{1, 0}));
    EXPECT_EQ(KindOf(GUN "cc" CHO), (CKind{7, 0}));
    EXPECT_EQ(KindOf(AGATA "cc" MURA), (CKind{7, 0}));
}

TEST(ShikugunType, FindsMarkersOnlyInStepsOfTwoFromTheEnd) {
    EXPECT_EQ(KindOf("aaa" SHI "b" KU), (CKind{1, 0}));
    EXPECT_EQ(KindOf("aaa" SHI "bbb" KU), (CKind{1, 0}));
    EXPECT_EQ(KindOf("aaaaa" GUN "bbb" CHO), (CKind{7, 0}));
    EXPECT_EQ(KindOf("aaaa" GUN "bbbb" CHO), (CKind{3, 6}));
}

TEST(ShikugunType, OfANameBelowThreeBytesIsNotWritten) {
    for (std::string const strName : {"", "a", "\xE5", "aa", SHI, KU, CHO})
        EXPECT_EQ(KindOf(strName), (CKind{UNTOUCHED, 0})) << strName.size();
    EXPECT_EQ(KindOf("abc"), (CKind{7, 0}));
    EXPECT_EQ(KindOf("a" SHI), (CKind{0, 0}));
    EXPECT_EQ(KindOf("市"), (CKind{7, 0})) << "three bytes, and the last two are not the first two";
}

TEST(ShikugunType, OfNothingIsNotWritten) {
    unsigned short nType = UNTOUCHED;
    EXPECT_EQ(GetShikugunType(nullptr, &nType), 0);
    EXPECT_EQ(nType, UNTOUCHED);
    EXPECT_EQ(GetShikugunType("aa" GUN "cc" CHO, nullptr), 0);
    EXPECT_EQ(GetShikugunType(nullptr, nullptr), 0);
}

TEST(ShikugunType, IsSevenForEveryNameInUtf8) {
    for (char const* psz :
         {"市", "千代田区", "府中市", "札幌市中央区", "横浜市西区", "石狩郡当別町", "利島村", "三宅島三宅村",
          "島嶼大島町", "八丈支庁青ヶ島村", "大島町", "郡上市", "市川市", "庁", "島", "x市", "xx郡yy町"})
        EXPECT_EQ(KindOf(psz), (CKind{7, 0})) << psz;
}

TEST(ShikugunType, IsSevenWhateverCharacterOfUtf8StandsAtTheEnd) {
    for (unsigned nChar = 0x80; nChar < 0x10000; ++nChar) {
        if (nChar >= 0xD800 && nChar < 0xE000) continue; // no characters
        std::string str = "札幌市中央郡西島";
        if (nChar < 0x800)
            str += static_cast<char>(0xC0 | nChar >> 6);
        else
            (str += static_cast<char>(0xE0 | nChar >> 12)) += static_cast<char>(0x80 | (nChar >> 6 & 0x3F));
        str += static_cast<char>(0x80 | (nChar & 0x3F));
        unsigned short nType = UNTOUCHED;
        ASSERT_EQ(GetShikugunType(str.c_str(), &nType), 0) << std::hex << nChar;
        ASSERT_EQ(nType, 7) << std::hex << nChar;
    }
}

TEST(ShikugunType, GivesALongLengthInSixteenBits) {
    EXPECT_EQ(KindOf(std::string(65530, 'a') + SHI "cc" KU), (CKind{2, 65532}));
    EXPECT_EQ(KindOf(std::string(69992, 'a') + SHI "cc" KU), (CKind{2, 69994 - 65536}));
}

} // namespace
