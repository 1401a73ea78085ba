// The dictionary object: what binding forgets, the doors into the tables, and entries turned into address records.
#include "dic/AddrDic.h"

#include "dic/ImageHeader.h"
#include "tests/support/Peek.h"
#include "tests/support/TestImage.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>

namespace {

using testing::Each;
using testing::IsEmpty;
using testing::IsNull;

constexpr unsigned long NO_INDEX = 0xFFFFFFFF;

// A dictionary object over an image that lives as long as it does.
class CBoundDic {
  public:
    explicit CBoundDic(CTestImage const& image) : m_vByte(image.Bytes()) { m_dic.SetDictionary(m_vByte.data()); }

    CAddrDic* operator->() { return &m_dic; }
    CAddrDic& operator*() { return m_dic; }
    unsigned char const* Image() const { return m_vByte.data(); }

  private:
    std::vector<unsigned char> m_vByte;
    CAddrDic m_dic;
};

// Puts something other than zero into every member.
void Litter(CAddrDic& dic) {
    static tagADDRNODE const node = {};
    CAddrDicPeek peek(dic);
    std::fill(std::begin(peek.szRefinePostCode), std::end(peek.szRefinePostCode), 'x');
    std::fill(std::begin(peek.szRefineAddr), std::end(peek.szRefineAddr), 'x');
    peek.nSelPref = peek.nSelCity = peek.nSelTown = peek.nSelUnused = 7;
    peek.vPrefList = peek.vCityList = peek.vTownList = {&node, nullptr};
    peek.pszLastOffice = "office";
    peek.nSortType = SORT_ADDR;
    tagADDRPNT pnt;
    pnt.vChild.resize(3);
    peek.vRefineTree = peek.vPrefPnt = peek.vCityPnt = peek.vTownPnt = {pnt, pnt};
}

void ExpectNoWorkingState(CAddrDic& dic) {
    CAddrDicPeek const peek(dic);
    EXPECT_THAT(peek.szRefinePostCode, Each('\0'));
    EXPECT_THAT(peek.szRefineAddr, Each('\0'));
    EXPECT_EQ(peek.nSelPref, 0);
    EXPECT_EQ(peek.nSelCity, 0);
    EXPECT_EQ(peek.nSelTown, 0);
    EXPECT_EQ(peek.nSelUnused, 0);
    EXPECT_THAT(peek.vPrefList, IsEmpty());
    EXPECT_THAT(peek.vCityList, IsEmpty());
    EXPECT_THAT(peek.vTownList, IsEmpty());
    EXPECT_THAT(peek.pszLastOffice, IsNull());
    EXPECT_EQ(peek.nSortType, SORT_DICTIONARY);
    EXPECT_EQ(peek.vRefineTree.size(), 0u);
    EXPECT_EQ(peek.vPrefPnt.size(), 0u);
    EXPECT_EQ(peek.vCityPnt.size(), 0u);
    EXPECT_EQ(peek.vTownPnt.size(), 0u);
}

void ExpectUnbound(CAddrDic& dic) {
    CAddrDicPeek const peek(dic);
    EXPECT_THAT(peek.pImage, IsNull());
    EXPECT_THAT(peek.pNodeTable, IsNull());
    EXPECT_THAT(peek.pInfoTable, IsNull());
    EXPECT_THAT(peek.pszStrings, IsNull());
    EXPECT_THAT(peek.pCityIndex, IsNull());
    EXPECT_THAT(peek.pFifthTable, IsNull());
    EXPECT_THAT(peek.pSixthTable, IsNull());
    EXPECT_THAT(peek.pOfficeIndex, IsNull());
}

// --- binding
// --------------------------------------------------------------------------------------------------------

TEST(AddressDictionary, BeginsEmptyWhateverTheMemoryHeldBefore) {
    alignas(CAddrDic) static unsigned char abMemory[sizeof(CAddrDic)];
    std::fill(std::begin(abMemory), std::end(abMemory), static_cast<unsigned char>(0xAA));
    auto* const pDic = new (abMemory) CAddrDic;
    ExpectUnbound(*pDic);
    ExpectNoWorkingState(*pDic);
    EXPECT_THAT(CAddrDicPeek(*pDic).szOffice, Each('\0'));
    pDic->~CAddrDic();
}

TEST(AddressDictionary, BindingForgetsAllWorkingState) {
    auto const vByte = CTinyWorld().Bytes();
    CAddrDic dic;
    Litter(dic);
    EXPECT_EQ(dic.SetDictionary(vByte.data()), 1);
    ExpectNoWorkingState(dic);
}

TEST(AddressDictionary, BindingTheSameImageAgainForgetsAllWorkingStateToo) {
    CBoundDic dic{CTinyWorld()};
    Litter(*dic);
    EXPECT_EQ(dic->SetDictionary(dic.Image()), 1);
    ExpectNoWorkingState(*dic);
}

TEST(AddressDictionary, BindingTakesTheSortTypeBackToDictionaryOrder) {
    CTinyWorld const world;
    CBoundDic dic(world);
    dic->SetSortType(9);
    ASSERT_EQ(CAddrDicPeek(*dic).nSortType, 9);
    dic->SetDictionary(dic.Image());
    EXPECT_EQ(CAddrDicPeek(*dic).nSortType, 2);
}

TEST(AddressDictionary, BindsEveryTableAtTheOffsetInItsHeaderWord) {
    std::vector<unsigned char> vByte(HDR_BYTES);
    for (unsigned n = HDR_NODE_TABLE; n <= HDR_OFFICE_INDEX; ++n) {
        uint32_t const nOffset = 0x1000 + 0x100 * n;
        std::memcpy(vByte.data() + 4 * n, &nOffset, sizeof nOffset);
    }
    vByte.resize(0x1000 + 0x100 * HDR_WORDS);
    CAddrDic dic;
    dic.SetDictionary(vByte.data());
    CAddrDicPeek const peek(dic);
    auto const Offset = [&](void const* p) { return static_cast<unsigned char const*>(p) - vByte.data(); };
    EXPECT_EQ(Offset(peek.pImage), 0);
    EXPECT_EQ(Offset(peek.pNodeTable), 0x1B00);
    EXPECT_EQ(Offset(peek.pInfoTable), 0x1C00);
    EXPECT_EQ(Offset(peek.pszStrings), 0x1D00);
    EXPECT_EQ(Offset(peek.pCityIndex), 0x1E00);
    EXPECT_EQ(Offset(peek.pFifthTable), 0x1F00);
    EXPECT_EQ(Offset(peek.pSixthTable), 0x2000);
    EXPECT_EQ(Offset(peek.pOfficeIndex), 0x2100);
}

TEST(AddressDictionary, GivesTheImageAndItsStringAreaBack) {
    CTinyWorld const world;
    CBoundDic dic(world);
    EXPECT_EQ(dic->GetDicPointer(), dic.Image());
    EXPECT_STREQ(dic->GetStrings(), "東京都");
}

TEST(AddressDictionary, AnswersFromTheImageBoundLast) {
    CTestImage second;
    second.AddNode(LEVEL_PREF, ADDR_NONE, "北海道");
    auto const vByte = second.Bytes();
    CBoundDic dic{CTinyWorld()};
    dic->SetDictionary(vByte.data());
    EXPECT_STREQ(dic->GetString(dic->GetAddrNode(0)->nName), "北海道");
    EXPECT_THAT(dic->GetAddrNode(1), IsNull());
    EXPECT_THAT(dic->GetAddrInfo(0), IsNull());
}

TEST(AddressDictionary, AcceptsAHeaderWithoutLookingAtTheWordsThatAreNotItsOwn) {
    CTinyWorld const world;
    auto vByte = world.Bytes();
    for (unsigned n : {0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u, 24u, 25u}) std::memset(vByte.data() + 4 * n, 0xFF, 4);
    CAddrDic dic;
    EXPECT_EQ(dic.SetDictionary(vByte.data()), 1);
    std::vector<tagADDR> vAddr;
    EXPECT_EQ(dic.GetAddrFromPostCode7("1000001", vAddr), 1);
    EXPECT_EQ(vAddr.size(), 1u);
}

TEST(AddressDictionary, KeepsObjectsOverOneImageApart) {
    CTinyWorld const world;
    CBoundDic first(world);
    CAddrDic second;
    second.SetDictionary(first.Image());
    std::vector<tagADDR> vAddr;
    first->GetAddrFromPostCode7("1000001", vAddr);
    EXPECT_EQ(CAddrDicPeek(*first).vCityList.size(), 1u);
    EXPECT_THAT(CAddrDicPeek(second).vCityList, IsEmpty());
}

// --- the doors into the tables
// ----------------------------------------------------------------------------------------

TEST(AddressDictionary, GivesTheLastByteOfTheStringAreaButNotTheOneBehind) {
    CTinyWorld const world;
    CBoundDic dic(world);
    unsigned long const nSize = world.strArea.size();
    EXPECT_EQ(dic->GetString(nSize - 1), dic->GetStrings() + nSize - 1);
    EXPECT_THAT(dic->GetString(nSize), IsNull());
    EXPECT_THAT(dic->GetString(nSize + 1), IsNull());
    EXPECT_THAT(dic->GetString(NO_INDEX), IsNull());
}

TEST(AddressDictionary, GivesTheLastNodeButNotTheOneBehind) {
    CTinyWorld const world;
    CBoundDic dic(world);
    ASSERT_EQ(world.vNode.size(), 3u);
    EXPECT_EQ(dic->GetAddrNode(2), dic->GetAddrNode(0) + 2);
    EXPECT_EQ(dic->GetAddrNode(2)->nLevel, LEVEL_TOWN);
    EXPECT_THAT(dic->GetAddrNode(3), IsNull());
    EXPECT_THAT(dic->GetAddrNode(NO_INDEX), IsNull());
}

TEST(AddressDictionary, GivesTheLastEntryButNotTheOneBehind) {
    CTinyWorld world;
    world.AddInfo(world.nTown, "1000002", "100");
    CBoundDic dic(world);
    EXPECT_EQ(dic->GetAddrInfo(1), dic->GetAddrInfo(0) + 1);
    EXPECT_STREQ(dic->GetString(dic->GetAddrInfo(1)->nCode), "1000002");
    EXPECT_THAT(dic->GetAddrInfo(2), IsNull());
    EXPECT_THAT(dic->GetAddrInfo(NO_INDEX), IsNull());
}

TEST(AddressDictionary, DoesNotCutAnIndexDownToTheWidthOfATable) {
    CBoundDic dic{CTinyWorld()};
    for (unsigned long n : {~0ul, ~0ul - 0xFFFFFFFFul}) {
        if (n == 0) continue; // 32 bits: nothing is wider than a table's index
        EXPECT_THAT(dic->GetString(n), IsNull());
        EXPECT_THAT(dic->GetAddrNode(n), IsNull());
        EXPECT_THAT(dic->GetAddrInfo(n), IsNull());
    }
}

TEST(AddressDictionary, ReadsTheCountsFromTheImageEachTime) {
    auto vByte = CTinyWorld().Bytes();
    CAddrDic dic;
    dic.SetDictionary(vByte.data());
    ASSERT_NE(dic.GetAddrNode(2), nullptr);
    ASSERT_NE(dic.GetAddrInfo(0), nullptr);
    ASSERT_NE(dic.GetString(0), nullptr);
    for (unsigned n : {HDR_NODE_COUNT, HDR_INFO_COUNT, HDR_STRING_SIZE}) std::memset(vByte.data() + 4 * n, 0, 4);
    EXPECT_THAT(dic.GetAddrNode(2), IsNull());
    EXPECT_THAT(dic.GetAddrInfo(0), IsNull());
    EXPECT_THAT(dic.GetString(0), IsNull());
}

TEST(AddressDictionary, FindsNothingWhileNoImageIsBound) {
    CAddrDic dic;
    std::vector<tagADDR> vAddr;
    EXPECT_THAT(dic.GetDicPointer(), IsNull());
    EXPECT_THAT(dic.GetStrings(), IsNull());
    EXPECT_THAT(dic.GetString(0), IsNull());
    EXPECT_THAT(dic.GetAddrNode(0), IsNull());
    EXPECT_THAT(dic.GetAddrInfo(0), IsNull());
    EXPECT_THAT(dic.GetLastInc(), IsNull());
    EXPECT_EQ(dic.SearchPostCode7("1000001"), -1);
    EXPECT_EQ(dic.GetAddrFromPostCode7("1000001", vAddr), 0);
    EXPECT_EQ(dic.GetAddrFromPostCode5("100", vAddr), 0);
    EXPECT_EQ(vAddr.size(), 0u);
}

TEST(AddressDictionary, TurnsNoEntryIntoNodesOrTextsWhileNoImageIsBound) {
    CAddrDic dic;
    tagADDRINFO const info = {0, 0};
    tagADDRNODE const* apNode[3] = {};
    tagADDR addr(0);
    EXPECT_EQ(dic.GetAddrPtr(&info, &apNode[0], &apNode[1], &apNode[2]), 0);
    EXPECT_THAT(dic.GetCityNode(&info), IsNull());
    EXPECT_EQ(dic.GetAddr(&info, &addr), 1);
    EXPECT_THAT(addr.pszPostCode, IsNull());
    EXPECT_THAT(addr.pszPref, IsNull());
}

// --- nodes of an entry
// ------------------------------------------------------------------------------------------------

// A chain of nodes, one for each level given from the root down, and an entry for the last one.
struct CChain : CTestImage {
    explicit CChain(std::vector<uint8_t> const& vLevel) {
        uint32_t nParent = ADDR_NONE;
        for (uint8_t nLevel : vLevel) {
            std::string const strName = "level" + std::to_string(nLevel) + "#" + std::to_string(vNode.size());
            nParent = AddNode(nLevel, nParent, strName, strName + " kana");
        }
        AddInfo(nParent, "1000001", "100");
    }
};

// The three nodes of an entry by index; -1 for null, -2 for "not written".
struct CAncestors {
    int nResult;
    long nPref, nCity, nTown;
};
bool operator==(CAncestors const& a, CAncestors const& b) {
    return a.nResult == b.nResult && a.nPref == b.nPref && a.nCity == b.nCity && a.nTown == b.nTown;
}
std::ostream& operator<<(std::ostream& out, CAncestors const& a) {
    return out << a.nResult << ": " << a.nPref << ' ' << a.nCity << ' ' << a.nTown;
}

CAncestors Ancestors(CTestImage const& image) {
    static tagADDRNODE const unwritten = {};
    CBoundDic dic(image);
    tagADDRNODE const *pPref = &unwritten, *pCity = &unwritten, *pTown = &unwritten;
    int const nResult = dic->GetAddrPtr(dic->GetAddrInfo(0), &pPref, &pCity, &pTown);
    auto const Index = [&](tagADDRNODE const* p) -> long {
        return p == &unwritten ? -2 : p == nullptr ? -1 : static_cast<long>(p - dic->GetAddrNode(0));
    };
    return {nResult, Index(pPref), Index(pCity), Index(pTown)};
}

TEST(NodesOfAnEntry, AreItsPrefectureItsCityAndItsDeepestNode) {
    EXPECT_EQ(Ancestors(CChain({0, 1, 2})), (CAncestors{1, 0, 1, 2}));
    EXPECT_EQ(Ancestors(CChain({0, 1, 2, 3, 7})), (CAncestors{1, 0, 1, 4})) << "the deepest node, whatever its level";
}

TEST(NodesOfAnEntry, LackTheLevelsThatAreNotOnTheWay) {
    EXPECT_EQ(Ancestors(CChain({0, 2})), (CAncestors{1, 0, -1, 1}));
    EXPECT_EQ(Ancestors(CChain({1, 2})), (CAncestors{1, -1, 0, 1}));
    EXPECT_EQ(Ancestors(CChain({2})), (CAncestors{1, -1, -1, 0})) << "a node without a parent ends the way";
}

TEST(NodesOfAnEntry, PassOverEveryOtherLevel) {
    EXPECT_EQ(Ancestors(CChain({0, 5, 1, 5, 2, 3, 4, 6, 9})), (CAncestors{1, 0, 2, 8}));
}

TEST(NodesOfAnEntry, CountTheDeepestNodeOnlyOnce) {
    EXPECT_EQ(Ancestors(CChain({0, 1})), (CAncestors{1, 0, -1, 1}));
    EXPECT_EQ(Ancestors(CChain({0})), (CAncestors{1, -1, -1, 0}));
}

TEST(NodesOfAnEntry, AreTheTopmostOfSeveralOfOneLevel) {
    EXPECT_EQ(Ancestors(CChain({0, 0, 1, 1, 2})), (CAncestors{1, 0, 2, 4}));
}

TEST(NodesOfAnEntry, AreNullForASupersededEntry) {
    CChain chain({0, 1, 2});
    chain.vInfo[0].nNode |= ADDRINFO_SUPERSEDED;
    EXPECT_EQ(Ancestors(chain), (CAncestors{0, -1, -1, -1}));
}

TEST(NodesOfAnEntry, AreNullForANodeOutOfRange) {
    for (uint32_t nNode : {3u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        CChain chain({0, 1, 2});
        chain.vInfo[0].nNode = nNode;
        EXPECT_EQ(Ancestors(chain), (CAncestors{0, -1, -1, -1})) << nNode;
    }
}

TEST(NodesOfAnEntry, AreNotWrittenWhenAnArgumentIsNull) {
    CBoundDic dic{CChain({0, 1, 2})};
    tagADDRINFO const* const pInfo = dic->GetAddrInfo(0);
    tagADDRNODE const unwritten = {};
    for (int nNull = 0; nNull < 4; ++nNull) {
        tagADDRNODE const* apNode[3] = {&unwritten, &unwritten, &unwritten};
        EXPECT_EQ(dic->GetAddrPtr(nNull == 0 ? nullptr : pInfo, nNull == 1 ? nullptr : &apNode[0],
                                  nNull == 2 ? nullptr : &apNode[1], nNull == 3 ? nullptr : &apNode[2]),
                  0);
        EXPECT_THAT(apNode, Each(&unwritten)) << nNull;
    }
}

// Index of the entry's city node, -1 for null.
long City(CTestImage const& image) {
    CBoundDic dic(image);
    tagADDRNODE const* const p = dic->GetCityNode(dic->GetAddrInfo(0));
    return p == nullptr ? -1 : static_cast<long>(p - dic->GetAddrNode(0));
}

TEST(CityOfAnEntry, IsTheFirstNodeOfLevelOneOnTheWayUp) {
    EXPECT_EQ(City(CChain({0, 1, 2, 3})), 1);
    EXPECT_EQ(City(CChain({0, 1, 1, 5, 2})), 2);
}

TEST(CityOfAnEntry, CanBeTheEntrysOwnNode) {
    EXPECT_EQ(City(CChain({0, 1})), 1);
}

TEST(CityOfAnEntry, IsNullWhenNoNodeOnTheWayIsACity) {
    EXPECT_EQ(City(CChain({0, 2})), -1);
    EXPECT_EQ(City(CChain({2})), -1);
}

TEST(CityOfAnEntry, IsFoundForASupersededEntryToo) {
    CChain chain({0, 1, 2});
    chain.vInfo[0].nNode |= ADDRINFO_SUPERSEDED;
    EXPECT_EQ(City(chain), 1);
}

TEST(CityOfAnEntry, IsNullWhenTheWayUpLeavesTheTable) {
    for (uint32_t nParent : {3u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFEu}) {
        CChain chain({0, 1, 2});
        chain.vNode[2].nParent = nParent;
        EXPECT_EQ(City(chain), -1) << nParent;
    }
    CChain chain({0, 1, 2});
    chain.vInfo[0].nNode = 3;
    EXPECT_EQ(City(chain), -1);
}

TEST(CityOfAnEntry, IsNullForNoEntry) {
    CBoundDic dic{CChain({0, 1, 2})};
    EXPECT_THAT(dic->GetCityNode(nullptr), IsNull());
}

// --- texts of an entry
// ------------------------------------------------------------------------------------------------

// Every field holds a value of its own that no operation would write.
struct CMarkedAddr : tagADDR {
    static constexpr int ORDER = 77;

    CMarkedAddr() : tagADDR(0) {
        for (auto ppsz : Texts()) this->*ppsz = MARK;
        pListCity = pPrefNode = pCityNode = pTownNode = &node;
        nCityOrder = ORDER;
    }

    static std::vector<char const * tagADDR::*> Texts() {
        return {&tagADDR::pszCodeExt, &tagADDR::pszPostCode,  &tagADDR::pszPref,   &tagADDR::pszPrefKana,
                &tagADDR::pszCity,    &tagADDR::pszCityKana,  &tagADDR::pszTown,   &tagADDR::pszTownKana,
                &tagADDR::pszArea,    &tagADDR::pszAreaKana,  &tagADDR::pszOffice, &tagADDR::pszOfficeKana,
                &tagADDR::pszBlock,   &tagADDR::pszBlockKana, &tagADDR::pszNote};
    }

    // The texts in the order of the fields; a dash for a field that still holds its mark.
    std::vector<std::string> Read() const {
        std::vector<std::string> vText;
        for (auto ppsz : Texts()) vText.push_back(this->*ppsz == MARK ? "-" : this->*ppsz);
        return vText;
    }

    bool NodesKept() const {
        return pListCity == &node && pPrefNode == &node && pCityNode == &node && pTownNode == &node &&
               nCityOrder == ORDER;
    }

    static constexpr char MARK[] = "mark";
    static constexpr tagADDRNODE node = {};
};

// The texts of the entry of a one-node image whose node has the given level.
std::vector<std::string> TextsOfLevel(uint8_t nLevel) {
    CTestImage image;
    image.AddInfo(image.AddNode(nLevel, ADDR_NONE, "name", "kana"), "1000001", "100");
    CBoundDic dic(image);
    CMarkedAddr addr;
    EXPECT_EQ(dic->GetAddr(dic->GetAddrInfo(0), &addr), 1);
    EXPECT_TRUE(addr.NodesKept()) << int(nLevel);
    return addr.Read();
}

using CTexts = std::vector<std::string>;

TEST(TextsOfAnEntry, AreACodeAndAnEmptyTextInPlaceOfTheOldCode) {
    CTinyWorld const world;
    CBoundDic dic(world);
    tagADDR addr(0);
    EXPECT_EQ(dic->GetAddr(dic->GetAddrInfo(0), &addr), 1);
    EXPECT_STREQ(addr.pszPostCode, "1000001");
    EXPECT_STREQ(addr.pszCodeExt, "");
    EXPECT_EQ(addr.pszCodeExt, addr.pszPostCode + 7) << "the code's own NUL";
}

TEST(TextsOfAnEntry, GoFromEachLevelIntoItsOwnFields) {
    EXPECT_EQ(TextsOfLevel(LEVEL_PREF),
              (CTexts{"", "1000001", "name", "kana", "-", "-", "-", "-", "-", "-", "-", "-", "-", "-", "-"}));
    EXPECT_EQ(TextsOfLevel(LEVEL_CITY),
              (CTexts{"", "1000001", "-", "-", "name", "kana", "-", "-", "-", "-", "-", "-", "-", "-", "-"}));
    EXPECT_EQ(TextsOfLevel(LEVEL_TOWN),
              (CTexts{"", "1000001", "-", "-", "-", "-", "name", "kana", "-", "-", "-", "-", "-", "-", "-"}));
    EXPECT_EQ(TextsOfLevel(LEVEL_AREA),
              (CTexts{"", "1000001", "-", "-", "-", "-", "-", "-", "name", "kana", "-", "-", "-", "-", "-"}));
    EXPECT_EQ(TextsOfLevel(LEVEL_BLOCK),
              (CTexts{"", "1000001", "-", "-", "-", "-", "-", "-", "-", "-", "-", "-", "name", "kana", "-"}));
    EXPECT_EQ(TextsOfLevel(LEVEL_OFFICE),
              (CTexts{"", "1000001", "-", "-", "-", "-", "-", "-", "-", "-", "name", "kana", "-", "-", "-"}));
}

TEST(TextsOfAnEntry, TakeTheNameOfANoteButNoReading) {
    EXPECT_EQ(TextsOfLevel(LEVEL_NOTE),
              (CTexts{"", "1000001", "-", "-", "-", "-", "-", "-", "-", "-", "-", "-", "-", "-", "name"}));
}

TEST(TextsOfAnEntry, TakeNothingFromAGroupAndFromUnknownLevels) {
    for (int nLevel = 0; nLevel < 256; ++nLevel) {
        if (nLevel != LEVEL_GROUP && nLevel <= LEVEL_OFFICE) continue;
        EXPECT_EQ(TextsOfLevel(static_cast<uint8_t>(nLevel)),
                  (CTexts{"", "1000001", "-", "-", "-", "-", "-", "-", "-", "-", "-", "-", "-", "-", "-"}))
            << nLevel;
    }
}

TEST(TextsOfAnEntry, AreThoseOfAllNodesUpToTheRoot) {
    CBoundDic dic{CChain({0, 1, 2, 3, 4, 5, 6, 7})};
    CMarkedAddr addr;
    EXPECT_EQ(dic->GetAddr(dic->GetAddrInfo(0), &addr), 1);
    EXPECT_EQ(addr.Read(), (CTexts{"", "1000001", "level0#0", "level0#0 kana", "level1#1", "level1#1 kana",
                                   "level2#2", "level2#2 kana", "level3#3", "level3#3 kana", "level7#7",
                                   "level7#7 kana", "level4#4", "level4#4 kana", "level6#6"}));
    EXPECT_TRUE(addr.NodesKept());
}

TEST(TextsOfAnEntry, AreThoseOfTheTopmostOfSeveralNodesOfOneLevel) {
    CBoundDic dic{CChain({0, 1, 2, 2})};
    tagADDR addr(0);
    dic->GetAddr(dic->GetAddrInfo(0), &addr);
    EXPECT_STREQ(addr.pszTown, "level2#2");
}

TEST(TextsOfAnEntry, EndAtANodeWithoutAParentWhateverItsLevel) {
    CBoundDic dic{CChain({2, 3})};
    tagADDR addr(0);
    EXPECT_EQ(dic->GetAddr(dic->GetAddrInfo(0), &addr), 1);
    EXPECT_STREQ(addr.pszTown, "level2#0");
    EXPECT_THAT(addr.pszCity, IsNull());
    EXPECT_THAT(addr.pszPref, IsNull());
}

TEST(TextsOfAnEntry, AreFoundForASupersededEntryToo) {
    CTinyWorld world;
    world.vInfo[0].nNode |= ADDRINFO_SUPERSEDED;
    CBoundDic dic(world);
    tagADDR addr(0);
    tagADDRNODE const *pPref, *pCity, *pTown;
    EXPECT_EQ(dic->GetAddr(dic->GetAddrInfo(0), &addr), 1);
    EXPECT_STREQ(addr.pszTown, "千代田");
    EXPECT_STREQ(addr.pszPref, "東京都");
    EXPECT_EQ(dic->GetAddrPtr(dic->GetAddrInfo(0), &pPref, &pCity, &pTown), 0);
}

TEST(TextsOfAnEntry, AreOnlyTheCodeWhenItsNodeIsOutOfRange) {
    CTinyWorld world;
    world.vInfo[0].nNode = 3;
    CBoundDic dic(world);
    CMarkedAddr addr;
    EXPECT_EQ(dic->GetAddr(dic->GetAddrInfo(0), &addr), 1);
    EXPECT_EQ(addr.Read(), (CTexts{"", "1000001", "-", "-", "-", "-", "-", "-", "-", "-", "-", "-", "-", "-", "-"}));
}

TEST(TextsOfAnEntry, KeepAReadingThatEndsTheStringArea) {
    CTestImage image;
    uint32_t const nCode = image.AddText("1000001", "100");
    image.AddInfoAt(image.AddNode(LEVEL_TOWN, ADDR_NONE, "千代田", ""), nCode);
    CBoundDic dic(image);
    tagADDR addr(0);
    dic->GetAddr(dic->GetAddrInfo(0), &addr);
    EXPECT_STREQ(addr.pszTownKana, "");
    EXPECT_EQ(addr.pszTownKana, dic->GetStrings() + image.strArea.size() - 1);
}

TEST(TextsOfAnEntry, LackAReadingThatWouldBeginBehindTheStringArea) {
    CTestImage image;
    uint32_t const nCode = image.AddText("1000001", "100");
    image.AddInfoAt(image.AddNode(LEVEL_TOWN, ADDR_NONE, "千代田", ""), nCode);
    image.strArea.pop_back(); // the name's NUL is the last byte now
    CBoundDic dic(image);
    CMarkedAddr addr;
    EXPECT_EQ(dic->GetAddr(dic->GetAddrInfo(0), &addr), 1);
    EXPECT_STREQ(addr.pszTown, "千代田");
    EXPECT_THAT(addr.pszTownKana, IsNull()) << "the field is met, so its old value does not stay";
}

TEST(TextsOfAnEntry, AreNotWrittenForANullArgument) {
    CBoundDic dic{CTinyWorld()};
    CMarkedAddr addr;
    EXPECT_EQ(dic->GetAddr(nullptr, &addr), 0);
    EXPECT_THAT(addr.Read(), Each("-"));
    EXPECT_EQ(dic->GetAddr(dic->GetAddrInfo(0), nullptr), 0);
}

// --- the last organisation
// --------------------------------------------------------------------------------------------

TEST(LastOrganisation, IsGivenOnlyFromInsideTheStringArea) {
    CTinyWorld const world;
    CBoundDic dic(world);
    CAddrDicPeek const peek(*dic);
    char const* const pszArea = dic->GetStrings();
    char const* const pszEnd = pszArea + world.strArea.size();
    for (char const* psz : {pszArea, pszEnd - 1}) {
        peek.pszLastOffice = psz;
        EXPECT_EQ(dic->GetLastInc(), psz);
    }
    for (char const* psz : {pszArea - 1, pszEnd, pszEnd + 1}) {
        peek.pszLastOffice = psz;
        EXPECT_THAT(dic->GetLastInc(), IsNull());
    }
}

TEST(LastOrganisation, IsNullBeforeTheFirstLookup) {
    CBoundDic dic{CTinyWorld()};
    EXPECT_THAT(dic->GetLastInc(), IsNull());
}

TEST(SortType, IsStoredAsItIsGiven) {
    CBoundDic dic{CTinyWorld()};
    for (unsigned short n : std::initializer_list<unsigned short>{0, 2, 9, 0xFFFF}) {
        dic->SetSortType(n);
        EXPECT_EQ(CAddrDicPeek(*dic).nSortType, n);
    }
}

} // namespace
