// What the five calls of browsing have in common: size, lock, failures, and what they leave alone.
#include "tests/library/BrowseBlockWorld.h"

namespace {

// --- all of them ---------------------------------------------------------------------------------------------------

// An entry point, what has to be asked before it, and its answer in the world of two prefectures.
struct CEntryPoint {
    char const* pszName;
    int nLevel; // 0 prefectures, 1 cities, 2 towns
    uint32_t (*pfn)(HGLOBAL*);
    CBlockBytes vBlock;
    CBlockBytes vBlank; // its answer when there is nothing
};

std::vector<CEntryPoint> EntryPoints() {
    static std::string strAll = Record(2, "");
    return {
        {"PstAdrRPrf", 0, [](HGLOBAL* ph) { return PstAdrRPrf(strAll.data(), ph); }, Names(TwoPrefectures()),
         Names({""})},
        {"PstAdrRCity", 1, [](HGLOBAL* ph) { return PstAdrRCity(TOKYO, ph); }, Names({"千代田区", "港区"}),
         NO_ENTRIES},
        {"PstAdrTown", 2, [](HGLOBAL* ph) { return PstAdrTown(1, ph); }, OldCodeFirst(MINATO_TOWNS), NO_ENTRIES},
        {"PstAdrRTown", 2, [](HGLOBAL* ph) { return PstAdrRTown(1, ph); }, NewCodeFirst(MINATO_TOWNS), NO_ENTRIES},
        {"PstAdrRTownForUI", 2, [](HGLOBAL* ph) { return PstAdrRTownForUI(1, ph); }, Lines(MINATO_LINES), NO_LINES},
    };
}

class EveryBrowseBlock : public BrowseBlock, public testing::WithParamInterface<CEntryPoint> {
  protected:
    EveryBrowseBlock() {
        Bind(CBrowseWorld());
        if (GetParam().nLevel > 0) Prefectures();
        if (GetParam().nLevel > 1) Ask(PstAdrRCity, TOKYO);
    }
};

INSTANTIATE_TEST_SUITE_P(Of, EveryBrowseBlock, testing::ValuesIn(EntryPoints()),
                         [](auto const& entry) { return entry.param.pszName; });

TEST_P(EveryBrowseBlock, IsMovableZeroFilledAndOfExactSize) {
    CSystemWatch watch;
    HGLOBAL h = nullptr;
    EXPECT_EQ(GetParam().pfn(&h), 0u);
    auto const vCall = watch.Calls("GlobalAlloc");
    ASSERT_EQ(vCall.size(), 1u);
    EXPECT_EQ(vCall[0].nNumber, 66);
    EXPECT_EQ(vCall[0].nSize, GetParam().vBlock.size());
    EXPECT_EQ(Take(h), GetParam().vBlock);
}

TEST_P(EveryBrowseBlock, IsLockedOnceAndUnlocked) {
    CSystemWatch watch;
    HGLOBAL h = nullptr;
    GetParam().pfn(&h);
    EXPECT_THAT(watch.Names(), ElementsAre("GlobalAlloc", "GlobalLock", "GlobalUnlock"));
    Take(h);
}

// The handle of a call that could not lock its block.
HGLOBAL FailToLock(CEntryPoint const& entry, HGLOBAL h) {
    CSystemWatch watch;
    watch.Fail("GlobalLock");
    EXPECT_EQ(entry.pfn(&h), 1u);
    EXPECT_THAT(watch.Names(), ElementsAre("GlobalAlloc", "GlobalLock"));
    return h;
}

TEST_P(EveryBrowseBlock, ThatCannotBeLockedLeavesItsHandle) {
    HGLOBAL const h = FailToLock(GetParam(), Untouched());
    EXPECT_NE(h, Untouched());
    EXPECT_NE(h, nullptr);
    GlobalFree(h);
}

TEST_F(BrowseBlock, OfPstAdrRTownThatCannotBeLockedIsFreed) {
    Bind(WithTown("T", "1234567", "123"));
    Prefectures("PC");
    HGLOBAL const h = FailToLock(EntryPoints().at(3), Untouched());
    ASSERT_NE(h, Untouched());
    EXPECT_EQ(GlobalFree(h), h) << "no live block";
}

// All but PstAdrRTown.
class EveryBrowseBlockThatStays : public EveryBrowseBlock {};

std::vector<CEntryPoint> EntryPointsThatDoNotFree() {
    std::vector<CEntryPoint> vEntry = EntryPoints();
    vEntry.erase(vEntry.begin() + 3);
    return vEntry;
}

INSTANTIATE_TEST_SUITE_P(Of, EveryBrowseBlockThatStays, testing::ValuesIn(EntryPointsThatDoNotFree()),
                         [](auto const& entry) { return entry.param.pszName; });

TEST_P(EveryBrowseBlockThatStays, IsNotWrittenAndTheCallersToFreeWhenItCannotBeLocked) {
    EXPECT_EQ(Take(FailToLock(GetParam(), Untouched())), CBlockBytes(GetParam().vBlock.size(), 0));
}

TEST_P(EveryBrowseBlock, ThatCannotBeAllocatedIsRefusedWithANullHandle) {
    CSystemWatch watch;
    watch.Fail("GlobalAlloc");
    HGLOBAL h = Untouched();
    EXPECT_EQ(GetParam().pfn(&h), 1u);
    EXPECT_EQ(h, nullptr);
}

TEST_P(EveryBrowseBlock, IsNotMadeWithoutAPlaceForItsHandle) {
    CSystemWatch watch;
    EXPECT_EQ(GetParam().pfn(nullptr), 1u);
    EXPECT_THAT(watch.Names(), IsEmpty());
}

TEST_P(EveryBrowseBlock, ComesAfterACallWithoutAPlaceForItsHandleAsIfThereWasNone) {
    GetParam().pfn(nullptr);
    HGLOBAL h = nullptr;
    EXPECT_EQ(GetParam().pfn(&h), 0u);
    EXPECT_EQ(Take(h), GetParam().vBlock);
}

TEST_F(BrowseBlock, OfPrefecturesIsNotMadeWithoutARecord) {
    Bind(CBrowseWorld());
    CSystemWatch watch;
    HGLOBAL h = Untouched();
    EXPECT_EQ(PstAdrRPrf(nullptr, &h), 1u);
    EXPECT_EQ(PstAdrRPrf(nullptr, nullptr), 1u);
    EXPECT_EQ(h, Untouched());
    EXPECT_THAT(watch.Names(), IsEmpty());
}

// A new dictionary, whose only prefecture has no number, and no question before this one.
TEST_P(EveryBrowseBlock, HoldsNothingOfTheDictionaryBefore) {
    Bind(WithTown("T", "1234567", "123"));
    HGLOBAL h = nullptr;
    EXPECT_EQ(GetParam().pfn(&h), 0u);
    EXPECT_EQ(Take(h), GetParam().vBlank);
}

// Damaged: what stands in the answer is open, but it is made without a look behind the image.
TEST_P(EveryBrowseBlock, StaysInsideTheStringAreaWhenItsLastTextLacksItsNul) {
    CBrowseWorld world;
    std::vector<uint32_t> vNode = {world.nMinato, world.nShiba, world.nBuilding, world.nFloor};
    if (GetParam().nLevel == 0) vNode = {world.nTokyo}; // whose cities could not be reached
    for (uint32_t n : vNode) world.vNode[n].nName = static_cast<uint32_t>(world.strArea.size());
    world.strArea += "unterminated";
    CGuardedBytes const image(world.Bytes());
    dic.SetDictionary(image.Data());
    Prefectures();
    if (GetParam().nLevel > 1) Ask(PstAdrRCity, TOKYO);
    HGLOBAL h = nullptr;
    EXPECT_EQ(GetParam().pfn(&h), 0u);
    EXPECT_NE(Take(h).at(0), 0) << "its other entries are there";
    dic.SetDictionary(nullptr);
}

// --- more than a 32-bit process can count --------------------------------------------------------------------------

class HugeBlock : public BrowseBlock {
  protected:
    static constexpr size_t CHILDREN = 16385;
    static constexpr size_t NAME = 262144; // 16,385 times that is 4 GiB and 256 KiB

    // Without memory for it the size that was asked for is seen, and nothing is written. A 32-bit process does not
    // even ask.
    static void ExpectSize(PFNBROWSE pfn, uint64_t nSize) {
        CSystemWatch watch;
        watch.Fail("GlobalAlloc");
        HGLOBAL h = Untouched();
        EXPECT_EQ(pfn(0, &h), 1u);
        EXPECT_EQ(h, nullptr);
        std::vector<uint64_t> vAsked;
        for (CSystemCall const& call : watch.Calls("GlobalAlloc")) vAsked.push_back(call.nSize);
        EXPECT_EQ(vAsked, nSize > SIZE_MAX ? std::vector<uint64_t>() : std::vector<uint64_t>{nSize});
    }
};

TEST_F(HugeBlock, OfCitiesIsAskedForInFullOrNotAtAll) {
    Bind(Crowd(LEVEL_CITY, CHILDREN, std::string(NAME, 'C')));
    Prefectures();
    ExpectSize(PstAdrRCity, 2 + uint64_t{CHILDREN} * (1 + NAME));
}

TEST_F(HugeBlock, OfTownsIsAskedForInFullOrNotAtAll) {
    Bind(Crowd(LEVEL_TOWN, CHILDREN, std::string(NAME, 'T')));
    Prefectures();
    Ask(PstAdrRCity, 0);
    ExpectSize(PstAdrRTown, 2 + uint64_t{CHILDREN} * (4 + NAME + 7 + 3));
}

TEST_F(HugeBlock, OfLinesIsAskedForInFullOrNotAtAll) {
    Bind(Crowd(LEVEL_TOWN, CHILDREN, std::string(NAME, 'T')));
    Prefectures();
    Ask(PstAdrRCity, 0);
    ExpectSize(PstAdrRTownForUI, 12 + uint64_t{CHILDREN} * (28 + 7 + NAME + 7 + 3));
}

// The block that lookups by code share, too.
TEST_F(HugeBlock, OfAddressesIsAskedForInFullOrNotAtAll) {
    Bind(Crowd(LEVEL_TOWN, CHILDREN, std::string(NAME, 'T')));
    auto const Find = [](unsigned short, HGLOBAL* ph) { return static_cast<uint32_t>(GetAdrFromAdd("北海道", ph)); };
    size_t const nTexts = 3 + 7 + 9 + 1 + NAME + 7; // old code, code, prefecture, city, town; a NUL for each of seven
    ExpectSize(Find, 12 + uint64_t{CHILDREN} * (28 + nTexts));
}

} // namespace
