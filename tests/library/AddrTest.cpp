// The address record and the order of result lists.
#include "dic/Addr.h"

#include "dic/AddrDic.h"
#include "dic/AddrKey.h"
#include "dic/Suffix.h"
#include "tests/library/Prefectures.h"
#include "tests/support/GuardedBytes.h"
#include "tree/AddrPnt.h"

#include <gmock/gmock.h>

#include <pthread.h>

#include <algorithm>
#include <new>
#include <random>
#include <string>

namespace {

using testing::Each;
using testing::IsNull;

// --- the record
// -------------------------------------------------------------------------------------------------------

static_assert(sizeof(void*) != 4 || (sizeof(tagADDR) == 80 && alignof(tagADDR) == 4));
static_assert(offsetof(tagADDR, pszCodeExt) == 0 && offsetof(tagADDR, pszPostCode) == sizeof(void*));
static_assert(offsetof(tagADDR, pszPref) == 2 * sizeof(void*) && offsetof(tagADDR, pszPrefKana) == 3 * sizeof(void*));
static_assert(offsetof(tagADDR, pszCity) == 4 * sizeof(void*) && offsetof(tagADDR, pszCityKana) == 5 * sizeof(void*));
static_assert(offsetof(tagADDR, pszTown) == 6 * sizeof(void*) && offsetof(tagADDR, pszTownKana) == 7 * sizeof(void*));
static_assert(offsetof(tagADDR, pszAreaKana) == 9 * sizeof(void*));
static_assert(offsetof(tagADDR, pszOfficeKana) == 11 * sizeof(void*));
static_assert(offsetof(tagADDR, pszBlock) == 12 * sizeof(void*) &&
              offsetof(tagADDR, pszBlockKana) == 13 * sizeof(void*));
static_assert(offsetof(tagADDR, pszNote) == 14 * sizeof(void*) && offsetof(tagADDR, pPrefNode) == 16 * sizeof(void*));
static_assert(offsetof(tagADDR, pCityNode) == 17 * sizeof(void*) &&
              offsetof(tagADDR, pTownNode) == 18 * sizeof(void*));
static_assert(offsetof(tagADDRPNT, pNode) == 0 && offsetof(tagADDRPNT, vChild) == sizeof(void*));
static_assert(offsetof(tagADDRPNT, szName) == 4 * sizeof(void*) && sizeof(tagADDRPNT) == 4 * sizeof(void*) + 128);

// Out of line, so that nothing after the end of the object's life can be optimised together with its destructor.
__attribute__((noinline)) void Destroy(tagADDR* pAddr) {
    pAddr->~tagADDR();
}

TEST(AddressRecord, IsAllZeroWhateverKindItIsMadeOf) {
    alignas(tagADDR) unsigned char abMemory[sizeof(tagADDR)];
    for (int nKind : {0, 5, -1}) {
        std::fill(std::begin(abMemory), std::end(abMemory), static_cast<unsigned char>(0xAA));
        auto* const pAddr = new (abMemory) tagADDR(nKind);
        EXPECT_EQ(pAddr->nCityOrder, 0);
        size_t const nFields = offsetof(tagADDR, nCityOrder) + sizeof(int); // 64 bits: padding behind the last field
        EXPECT_THAT(std::vector<unsigned char>(abMemory, abMemory + nFields), Each(0)) << nKind;
        Destroy(pAddr);
    }
}

TEST(AddressRecord, MadeOfKindFiveHasNoCityOrder) {
    EXPECT_EQ(tagADDR(5).nCityOrder, 0);
}

TEST(AddressRecord, LeavesOnlyZerosBehind) {
    alignas(tagADDR) unsigned char abMemory[sizeof(tagADDR)];
    auto* const pAddr = new (abMemory) tagADDR(0);
    size_t const nFields = offsetof(tagADDR, nCityOrder) + sizeof(int);
    std::memset(static_cast<void*>(abMemory), 0xAA, nFields);
    Destroy(pAddr);
    EXPECT_THAT(std::vector<unsigned char>(abMemory, abMemory + nFields), Each(0));
}

TEST(AddressRecord, IsCopiedWithAllItsFields) {
    tagADDR addr(0);
    std::memset(static_cast<void*>(&addr), 0x5A, sizeof addr);
    tagADDR const copy(addr);
    tagADDR assigned(0);
    assigned = addr;
    size_t const nFields = offsetof(tagADDR, nCityOrder) + sizeof(int);
    EXPECT_EQ(std::memcmp(&copy, &addr, nFields), 0);
    EXPECT_EQ(std::memcmp(&assigned, &addr, nFields), 0);
}

TEST(AddressRecord, CopiesATextWithItsNulAndReturnsThePlace) {
    char szText[] = "xxxxxxxx";
    EXPECT_EQ(tagADDR(0).StrCpy(szText, "abc"), szText);
    EXPECT_EQ(std::string(szText, 8), std::string("abc\0xxxx", 8));
}

TEST(AddressRecord, CopiesNoTextFromNull) {
    char szText[] = "xxxx";
    EXPECT_THAT(tagADDR(0).StrCpy(szText, nullptr), IsNull());
    EXPECT_STREQ(szText, "xxxx");
}

// --- the class of a city
// ----------------------------------------------------------------------------------------------

// Names of a double-byte encoding: each unit has two bytes, and a suffix is its first two.
constexpr char SHI[] = "\xE5\xB8";
constexpr char KU[] = "\xE5\x8C";
constexpr char CHO[] = "\xE7\x94";
constexpr char GUN[] = "\xE9\x83";
constexpr char SHIMA[] = "\xE5\xB3";
constexpr char MURA[] = "\xE6\x9D";
constexpr char AGATA[] = "\xE5\xBA";

// "." stands for a unit without meaning; the first two units are never looked at for a marker, nor is the one right
// before the last.
std::string Name(std::initializer_list<char const*> vUnit) {
    std::string strName;
    for (char const* psz : vUnit) strName += psz[0] == '.' ? "\x8A\x8A" : psz;
    return strName;
}

char Letter(std::initializer_list<char const*> vUnit) {
    return CityClassLetter(Name(vUnit).c_str());
}

TEST(CityClass, TestsTheSevenSuffixesByTheirUtf8Bytes) {
    char const* const apszSuffix[] = {"市", "区", "町", "郡", "島", "村", "庁"};
    char const* const apszUnit[] = {SHI, KU, CHO, GUN, SHIMA, MURA, AGATA};
    for (int n = 0; n < SUFFIX_COUNT; ++n) {
        EXPECT_EQ(std::string(suffix_table[n]), apszSuffix[n]);
        EXPECT_EQ(std::string(suffix_table[n], 2), apszUnit[n]);
    }
}

TEST(CityClass, OfNoNameIsA) {
    EXPECT_EQ(CityClassLetter(nullptr), 'a');
}

TEST(CityClass, OfACityIsA) {
    EXPECT_EQ(Letter({SHI}), 'a');
    EXPECT_EQ(Letter({".", ".", GUN, ".", SHI}), 'a');
}

TEST(CityClass, OfAWardIsCBehindACityAndBElse) {
    EXPECT_EQ(Letter({".", SHI, ".", KU}), 'c');
    EXPECT_EQ(Letter({".", SHI, ".", ".", ".", ".", KU}), 'c') << "the scan goes back unit by unit";
    EXPECT_EQ(Letter({".", ".", ".", KU}), 'b');
    EXPECT_EQ(Letter({KU}), 'b');
    EXPECT_EQ(Letter({".", GUN, ".", KU}), 'b') << "only a city counts";
}

TEST(CityClass, OfATownIsDInACountyFOnAnIslandAndHElse) {
    EXPECT_EQ(Letter({".", GUN, ".", CHO}), 'd');
    EXPECT_EQ(Letter({".", SHIMA, ".", CHO}), 'f');
    EXPECT_EQ(Letter({".", AGATA, ".", CHO}), 'h');
    EXPECT_EQ(Letter({".", ".", ".", CHO}), 'h');
}

TEST(CityClass, OfAVillageIsEInACountyFOnAnIslandGInADistrictAndHElse) {
    EXPECT_EQ(Letter({".", GUN, ".", MURA}), 'e');
    EXPECT_EQ(Letter({".", SHIMA, ".", MURA}), 'f');
    EXPECT_EQ(Letter({".", AGATA, ".", MURA}), 'g');
    EXPECT_EQ(Letter({".", SHI, ".", MURA}), 'h');
    EXPECT_EQ(Letter({".", ".", ".", MURA}), 'h');
}

TEST(CityClass, IsDecidedByTheMarkerNearestToTheEnd) {
    EXPECT_EQ(Letter({".", GUN, SHIMA, ".", CHO}), 'f');
    EXPECT_EQ(Letter({".", SHIMA, GUN, ".", CHO}), 'd');
    EXPECT_EQ(Letter({".", GUN, AGATA, ".", MURA}), 'g');
    EXPECT_EQ(Letter({".", AGATA, SHIMA, ".", MURA}), 'f');
}

TEST(CityClass, IgnoresAMarkerAtTheVeryStart) {
    EXPECT_EQ(Letter({SHI, ".", ".", KU}), 'b');
    EXPECT_EQ(Letter({GUN, ".", ".", CHO}), 'h');
    EXPECT_EQ(Letter({GUN, ".", ".", MURA}), 'h');
}

// With a name of seven bytes the one position in reach would be 1.
TEST(CityClass, IgnoresAMarkerAtTheSecondByte) {
    EXPECT_EQ(CityClassLetter((std::string("x") + SHI + ".." + KU).c_str()), 'b');
    EXPECT_EQ(CityClassLetter((std::string("x") + GUN + ".." + CHO).c_str()), 'h');
    EXPECT_EQ(CityClassLetter((std::string("x") + GUN + ".." + MURA).c_str()), 'h');
}

TEST(CityClass, IgnoresAMarkerRightBeforeTheSuffix) {
    EXPECT_EQ(Letter({".", ".", ".", SHI, KU}), 'b');
    EXPECT_EQ(Letter({".", ".", ".", GUN, CHO}), 'h');
}

TEST(CityClass, IgnoresAMarkerBetweenTwoUnits) {
    EXPECT_EQ(CityClassLetter((std::string("..x") + GUN + "x.." + CHO).c_str()), 'h');
}

TEST(CityClass, OfANameTooShortForAMarkerIsThatOfItsEnd) {
    for (size_t nUnits : {0u, 1u, 2u}) {
        std::string strName(2 * nUnits, '.');
        EXPECT_EQ(CityClassLetter((strName + KU).c_str()), 'b') << nUnits;
        EXPECT_EQ(CityClassLetter((strName + CHO).c_str()), 'h') << nUnits;
        EXPECT_EQ(CityClassLetter((strName + MURA).c_str()), 'h') << nUnits;
    }
}

TEST(CityClass, OfAnyOtherEndIsH) {
    EXPECT_EQ(Letter({".", GUN, ".", "."}), 'h');
    EXPECT_EQ(Letter({".", ".", ".", GUN}), 'h');
    EXPECT_EQ(CityClassLetter(""), 'h');
    EXPECT_EQ(CityClassLetter("\xE5"), 'h');
}

// The end of a UTF-8 name is the last two of three bytes, which no suffix begins with.
TEST(CityClass, OfARealNameIsH) {
    for (char const* psz : {"札幌市", "千代田区", "札幌市中央区", "余市郡余市町", "利島村"})
        EXPECT_EQ(CityClassLetter(psz), 'h') << psz;
}

// --- the order
// --------------------------------------------------------------------------------------------------------

tagADDR Addr(char const* pszPref, char const* pszCity = nullptr, char const* pszTown = nullptr,
             char const* pszArea = nullptr, char const* pszOffice = nullptr) {
    tagADDR addr(0);
    addr.pszPref = pszPref;
    addr.pszCity = pszCity;
    addr.pszTown = pszTown;
    addr.pszArea = pszArea;
    addr.pszOffice = pszOffice;
    return addr;
}

TEST(AddressOrder, KnowsThe47PrefecturesFromNorthToSouth) {
    ASSERT_EQ(std::size(PREFECTURES), 47u);
    for (size_t n = 0; n < 47; ++n) {
        std::string const strCode = (n < 10 ? "0" : "") + std::to_string(n);
        EXPECT_EQ(std::string(pref_order[n]), strCode);
        EXPECT_EQ(std::string(pref_order[n] + 3), PREFECTURES[n]);
        EXPECT_EQ(MakeSortKey(Addr(PREFECTURES[n])), strCode + PREFECTURES[n]);
    }
}

TEST(AddressOrder, KnowsThePrefecturesByTheirWholeNamesOnly) {
    for (int n = 0; n < 47; ++n) {
        std::string const strName = PREFECTURES[n];
        EXPECT_EQ(FindPrefNumber(strName.c_str()), n);
        for (size_t nLength = 0; nLength < strName.size(); ++nLength)
            EXPECT_EQ(FindPrefNumber(strName.substr(0, nLength).c_str()), -1) << strName << ' ' << nLength;
        EXPECT_EQ(FindPrefNumber((strName + "x").c_str()), -1) << strName;
        EXPECT_EQ(FindPrefNumber((strName + strName).c_str()), -1) << strName;
        for (size_t nByte = 0; nByte < strName.size(); ++nByte) {
            std::string strOther = strName;
            strOther[nByte] = 'x';
            EXPECT_EQ(FindPrefNumber(strOther.c_str()), -1) << strName << ' ' << nByte;
        }
    }
}

TEST(AddressOrder, LooksForAPrefectureNoFurtherThanToTheEndOfTheName) {
    for (char const* psz : {"", "x", "東", "東京", "東京都", "鹿児島県", "鹿児島", "xxxxx", "xxxxxx", "xxxxxxx"}) {
        CGuardedBytes const name(std::string(psz), CGuardedBytes::ReadOnly); // its NUL ends the page
        std::string const strName = psz;
        EXPECT_EQ(FindPrefNumber(name.Text()), strName == "東京都" ? 12 : strName == "鹿児島県" ? 45 : -1) << psz;
    }
}

TEST(AddressOrder, PadsTheRowsOfThePrefectureTableWithZeros) {
    static_assert(sizeof pref_order == 47 * 16);
    for (auto const& row : pref_order) {
        size_t const nEnd = 3 + std::strlen(row + 3);
        EXPECT_EQ(std::string(row + nEnd, row + 16), std::string(16 - nEnd, '\0')) << row + 3;
    }
}

TEST(AddressOrder, GoesByPrefectureBeforeAnythingElse) {
    for (size_t n = 1; n < 47; ++n) {
        EXPECT_TRUE(Addr(PREFECTURES[n - 1], "龠", "龠") < Addr(PREFECTURES[n], "亜", "亜")) << PREFECTURES[n];
        EXPECT_FALSE(Addr(PREFECTURES[n], "亜", "亜") < Addr(PREFECTURES[n - 1], "龠", "龠")) << PREFECTURES[n];
    }
}

TEST(AddressOrder, PutsTokyoAfterHokkaidoWhateverTheCities) {
    EXPECT_TRUE(Addr("北海道", "龠") < Addr("東京都", "A"));
    EXPECT_FALSE(Addr("東京都", "A") < Addr("北海道", "龠"));
}

TEST(AddressOrder, PutsAPrefectureThatItDoesNotKnowLast) {
    EXPECT_EQ(MakeSortKey(Addr("東京府", "芝区")), "東京府芝区");
    EXPECT_TRUE(Addr("沖縄県", "龠") < Addr("東京府", "亜"));
    EXPECT_TRUE(Addr("沖縄県", "龠") < Addr("東京", "亜")) << "a beginning is not a match";
}

TEST(AddressOrder, PutsAnAddressWithoutPrefectureLast) {
    EXPECT_EQ(MakeSortKey(Addr(nullptr, "千代田区")), "千代田区");
    for (char const* pszPref : PREFECTURES) EXPECT_TRUE(Addr(pszPref, "龠") < Addr(nullptr, "千代田区")) << pszPref;
    EXPECT_FALSE(Addr(nullptr, "千代田区") < Addr("沖縄県", "龠"));
}

TEST(AddressOrder, GoesOnByCityTownAreaAndOrganisation) {
    EXPECT_EQ(MakeSortKey(Addr("東京都", "港区", "芝", "１丁目", "会社")), "12東京都港区芝１丁目会社");
    tagADDR const vAscending[] = {
        Addr("東京都"),
        Addr("東京都", "B"),
        Addr("東京都", "B", "A"),
        Addr("東京都", "B", "B", "C"),
        Addr("東京都", "B", "B", "D", "A"),
        Addr("東京都", "B", "B", "D", "B"),
        Addr("東京都", "C"),
    };
    for (size_t n = 1; n < std::size(vAscending); ++n) {
        EXPECT_TRUE(vAscending[n - 1] < vAscending[n]) << n;
        EXPECT_FALSE(vAscending[n] < vAscending[n - 1]) << n;
    }
}

TEST(AddressOrder, ComparesBytesWithoutSign) {
    EXPECT_TRUE(Addr(nullptr, "z") < Addr(nullptr, "亜"));
    EXPECT_FALSE(Addr(nullptr, "亜") < Addr(nullptr, "z"));
}

TEST(AddressOrder, LooksAtNoOtherField) {
    tagADDRNODE const node = {};
    tagADDR addr = Addr("東京都", "港区", "芝");
    tagADDR const plain = addr;
    addr.pszPostCode = addr.pszCodeExt = addr.pszPrefKana = addr.pszCityKana = addr.pszTownKana = "x";
    addr.pszAreaKana = addr.pszOfficeKana = addr.pszBlock = addr.pszBlockKana = addr.pszNote = "x";
    addr.pListCity = addr.pPrefNode = addr.pCityNode = addr.pTownNode = &node;
    EXPECT_EQ(MakeSortKey(addr), MakeSortKey(plain));
}

TEST(AddressOrder, HoldsEqualTextsForEqual) {
    std::string const strCopy = "東京都";
    EXPECT_FALSE(Addr("東京都", "港区") < Addr(strCopy.c_str(), "港区"));
    EXPECT_FALSE(Addr(strCopy.c_str(), "港区") < Addr("東京都", "港区"));
    EXPECT_FALSE(Addr(nullptr) < Addr(nullptr));
}

TEST(AddressOrder, DoesNotSeeWhereOneTextEndsAndTheNextBegins) {
    tagADDR const first = Addr("東京都", "XY", "Z");
    tagADDR const second = Addr("東京都", "X", "YZ");
    EXPECT_EQ(MakeSortKey(first), MakeSortKey(second));
    EXPECT_FALSE(first < second);
    EXPECT_FALSE(second < first);
}

TEST(AddressOrder, PutsTheCityClassInFrontOfTheCityOnRequest) {
    std::string const strTown = Name({".", GUN, ".", CHO});
    tagADDR addr = Addr("東京都", strTown.c_str(), "芝");
    EXPECT_EQ(MakeSortKey(addr), "12東京都" + strTown + "芝");
    for (int nOrder : {1, -1, 256}) {
        addr.nCityOrder = nOrder;
        EXPECT_EQ(MakeSortKey(addr), "12東京都d" + strTown + "芝");
    }
    addr.pszCity = nullptr;
    EXPECT_EQ(MakeSortKey(addr), "12東京都a芝");
}

TEST(AddressOrder, AsksEachRecordForItsOwnCityClass) {
    std::string const strWard = Name({".", ".", ".", KU}); // class b, and its bytes are above every letter
    tagADDR plain = Addr("東京都", strWard.c_str());
    tagADDR classed = plain;
    classed.nCityOrder = 1;
    EXPECT_TRUE(classed < plain);
    EXPECT_FALSE(plain < classed);
}

// --- sorted lists ------------------------------------------------------------------------------------------------

// Texts of every kind that the key looks at, each record marked with its place.
std::vector<tagADDR> ManyRecords() {
    static char szPlace[200][4];
    std::vector<tagADDR> vAddr;
    for (size_t n = 0; n < std::size(szPlace); ++n) {
        std::snprintf(szPlace[n], sizeof szPlace[n], "%03u", static_cast<unsigned>(n * 77 % 200));
        tagADDR addr = Addr(n % 7 == 0 ? nullptr : PREFECTURES[n * 31 % 47], n % 5 == 0 ? nullptr : szPlace[n] + 1);
        addr.pszTown = n % 3 == 0 ? "龠" : "亜";
        addr.pszNote = szPlace[n]; // no part of the key
        vAddr.push_back(addr);
    }
    return vAddr;
}

TEST(SortedList, StandsInTheOrderOfTheRecords) {
    std::vector<tagADDR> vAddr = ManyRecords();
    std::vector<tagADDR> vExpected = vAddr;
    std::stable_sort(vExpected.begin(), vExpected.end());
    SortAddrs(vAddr);
    ASSERT_EQ(vAddr.size(), vExpected.size());
    for (size_t n = 0; n < vAddr.size(); ++n) EXPECT_STREQ(vAddr[n].pszNote, vExpected[n].pszNote) << n;
}

TEST(SortedList, KeepsRecordsOfEqualKeysInTheirOrder) {
    std::vector<tagADDR> vAddr(100, Addr("東京都", "千代田区", "丸の内")); // more than any sort treats one by one
    std::vector<tagADDRNODE> vNode(vAddr.size());
    for (size_t n = 0; n < vAddr.size(); ++n) vAddr[n].pListCity = &vNode[n];
    SortAddrs(vAddr);
    for (size_t n = 0; n < vAddr.size(); ++n) EXPECT_EQ(vAddr[n].pListCity, &vNode[n]) << n;
}

// Keys of which one is the beginning of another, equal ones of different texts, ones of whole words, and empty ones.
TEST(SortedList, StandsInTheOrderOfTheRecordsWhateverTheirKeysHaveInCommon) {
    std::mt19937 random(91);
    std::vector<std::string> vText = {""};
    for (size_t const nLength : {1u, 2u, 5u, 7u, 8u, 9u, 15u, 16u, 17u, 24u, 40u, 128u, 1000u})
        for (char const* pszEnd : {"", "a", "\x01", "\xFF"}) vText.push_back(std::string(nLength, 'a') + pszEnd);
    std::vector<tagADDRNODE> const vNode(300);
    auto const AnyText = [&] { return random() % 3 == 0 ? nullptr : vText[random() % vText.size()].c_str(); };
    for (size_t const nRecords : {2u, 3u, 16u, 17u, 32u, 33u, 100u, 300u})
        for (int nRound = 0; nRound < 20; ++nRound) {
            std::vector<tagADDR> vAddr;
            for (size_t n = 0; n < nRecords; ++n) {
                vAddr.push_back(Addr(random() % 4 == 0 ? PREFECTURES[random() % 3] : AnyText(), AnyText(), AnyText(),
                                     AnyText(), AnyText()));
                vAddr.back().nCityOrder = static_cast<int>(random() % 2);
                vAddr.back().pListCity = &vNode[n];
            }
            std::vector<tagADDR> vExpected = vAddr;
            std::stable_sort(vExpected.begin(), vExpected.end());
            SortAddrs(vAddr);
            for (size_t n = 0; n < nRecords; ++n) {
                ASSERT_EQ(vAddr[n].pListCity, vExpected[n].pListCity) << nRecords << ", round " << nRound;
                ASSERT_EQ(MakeSortKey(vAddr[n]), MakeSortKey(vExpected[n]));
            }
        }
}

// Of 6,000 keys each is the beginning of the next, a word longer: calls that lay inside each other once for every word
// would need more than this stack.
TEST(SortedList, OfManyKeysThatAreTheBeginningsOfOthersNeedsLittleStack) {
    constexpr size_t KEYS = 6000, STACK = 256 << 10;
    std::string const strText(8 * KEYS, 'a');
    std::vector<tagADDR> vAddr;
    for (size_t n = 0; n < KEYS; ++n)
        vAddr.push_back(Addr(nullptr, nullptr, strText.c_str() + 8 * (n * 7 % KEYS), nullptr));
    pthread_attr_t attributes;
    pthread_t thread;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, STACK), 0);
    auto const Sort = [](void* p) -> void* {
        SortAddrs(*static_cast<std::vector<tagADDR>*>(p));
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, Sort, &vAddr), 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
    ASSERT_EQ(pthread_attr_destroy(&attributes), 0);
    for (size_t n = 0; n < KEYS; ++n) ASSERT_EQ(vAddr[n].pszTown, strText.c_str() + 8 * (KEYS - 1 - n)) << n;
}

#if defined(__i386__)
// 52 keys of five times 16 MiB: a number of 32 bits would have it that 64 MiB hold them all.
TEST(SortedList, OfKeysLongerThanTheMemoryStaysAsItIs) {
    std::string const strText(16 << 20, 'a');
    char const* const psz = strText.c_str();
    std::vector<tagADDRNODE> const vNode(52);
    std::vector<tagADDR> vAddr(vNode.size(), Addr(psz, psz, psz, psz, psz));
    for (size_t n = 0; n < vAddr.size(); ++n) vAddr[n].pListCity = &vNode[n];
    EXPECT_THROW(SortAddrs(vAddr), std::bad_alloc);
    ASSERT_EQ(vAddr.size(), vNode.size());
    for (size_t n = 0; n < vAddr.size(); ++n) EXPECT_EQ(vAddr[n].pListCity, &vNode[n]) << n;
}
#endif

TEST(SortedList, OfNoRecordStaysEmpty) {
    std::vector<tagADDR> vAddr;
    SortAddrs(vAddr);
    EXPECT_TRUE(vAddr.empty());
}

// --- the order of display entries
// ---------------------------------------------------------------------------------------

TEST(DisplayOrder, GoesByNameOnly) {
    tagADDRNODE const node = {};
    tagADDRPNT a, b;
    std::strcpy(a.szName, "12東京都");
    std::strcpy(b.szName, "13神奈川県");
    EXPECT_TRUE(a < b);
    EXPECT_FALSE(b < a);
    std::strcpy(b.szName, "12東京都");
    b.pNode = &node;
    b.vChild.resize(1);
    EXPECT_FALSE(a < b);
    EXPECT_FALSE(b < a);
}

TEST(DisplayOrder, ComparesBytesWithoutSign) {
    tagADDRPNT a, b;
    std::strcpy(a.szName, "z");
    std::strcpy(b.szName, "亜");
    EXPECT_TRUE(a < b);
    EXPECT_FALSE(b < a);
}

TEST(DisplayOrder, DoesNotReadBeyondANameThatFillsItsField) {
    std::vector<tagADDRPNT> vPnt(4);
    for (tagADDRPNT& pnt : vPnt) std::fill(std::begin(pnt.szName), std::end(pnt.szName), 'a');
    vPnt[0].pNode = vPnt[2].pNode = nullptr;
    tagADDRNODE const node = {};
    vPnt[1].pNode = &node; // stands right behind the name of entry 0
    EXPECT_FALSE(vPnt[0] < vPnt[2]);
    EXPECT_FALSE(vPnt[2] < vPnt[0]);
    vPnt[2].szName[127] = 'b';
    EXPECT_TRUE(vPnt[0] < vPnt[2]);
    vPnt[2].szName[127] = '\0';
    EXPECT_TRUE(vPnt[2] < vPnt[0]);
}

} // namespace
