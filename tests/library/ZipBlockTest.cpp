// GetAdrFromZip: the block of all addresses of a postal code, byte for byte.
#include "tests/library/ApiWorld.h"
#include "tests/support/GuardedBytes.h"
#include "tests/support/SystemWatch.h"

#include <array>

namespace {

using testing::ElementsAre;

// One address as the caller sees it, absent levels as "".
struct CZipAddress {
    std::string strCode, strPref, strCity, strTown, strArea, strOffice;
};

// The block put together from its drawing: header, entries, pool.
CBlockBytes Expected(std::vector<CZipAddress> const& vAddress) {
    CBlockBytes vEntry, vPool;
    auto const Pool = [&vPool](std::string const& str) {
        size_t const nOffset = vPool.size();
        PutText(vPool, str);
        vPool.push_back(0);
        return nOffset;
    };
    for (CZipAddress const& address : vAddress) {
        size_t const nExt = Pool("");
        size_t const nCode = Pool(address.strCode);
        PutNumber(vEntry, nCode, 4);
        PutNumber(vEntry, nExt, 4);
        for (std::string const* pstr :
             {&address.strPref, &address.strCity, &address.strTown, &address.strArea, &address.strOffice})
            PutNumber(vEntry, Pool(*pstr), 4);
    }
    CBlockBytes vBlock;
    PutNumber(vBlock, vAddress.size(), 2);
    PutNumber(vBlock, 0, 2);
    PutNumber(vBlock, 12, 4);
    PutNumber(vBlock, 12 + 28 * vAddress.size(), 4);
    vBlock.insert(vBlock.end(), vEntry.begin(), vEntry.end());
    vBlock.insert(vBlock.end(), vPool.begin(), vPool.end());
    return vBlock;
}

// Three codes; 1000001 has a town, an area with an office, and an entry without a prefecture.
//
//   1000001  千代田      1000001  港区 芝 １丁目 会社      1000001  無県 町 (no prefecture)      1000002  丸の内
struct CZipWorld : CTinyWorld {
    CZipWorld() {
        uint32_t const nMinato = AddNode(LEVEL_CITY, nPref, "港区");
        uint32_t const nArea = AddNode(LEVEL_AREA, AddNode(LEVEL_TOWN, nMinato, "芝"), "１丁目");
        AddInfo(AddNode(LEVEL_OFFICE, nArea, "会社"), "1000001", "100");
        AddInfo(AddNode(LEVEL_TOWN, AddNode(LEVEL_CITY, ADDR_NONE, "無県"), "町"), "1000001", "100");
        AddInfo(AddNode(LEVEL_TOWN, nCity, "丸の内"), "1000002", "100");
    }
};

CZipAddress const CHIYODA = {"1000001", "東京都", "千代田区", "千代田", "", ""};
CZipAddress const SHIBA = {"1000001", "東京都", "港区", "芝", "１丁目", "会社"};
CZipAddress const NO_PREF = {"1000001", "", "無県", "町", "", ""};
CZipAddress const MARUNOUCHI = {"1000002", "東京都", "千代田区", "丸の内", "", ""};

class ZipBlock : public CApi {
  protected:
    CBlockBytes Ask(char const* pszCode) {
        HGLOBAL h = nullptr;
        EXPECT_EQ(GetAdrFromZip(pszCode, &h), 0) << pszCode;
        return Take(h);
    }
};

TEST_F(ZipBlock, IsHeaderEntriesAndPool) {
    Bind(CTinyWorld());
    EXPECT_EQ(Ask("1000001"), Expected({CHIYODA}));
}

TEST_F(ZipBlock, OfOneAddressIsTheseBytes) {
    CTestImage image;
    uint32_t const nCity = image.AddNode(LEVEL_CITY, image.AddNode(LEVEL_PREF, ADDR_NONE, "P"), "CC");
    image.AddInfo(image.AddNode(LEVEL_TOWN, nCity, "T"), "1234567", "123");
    Bind(image);
    EXPECT_THAT(Ask("1234567"), ElementsAre(1, 0, 0, 0, 12, 0, 0, 0, 40, 0, 0, 0,            // N, 0, entries, pool
                                            1, 0, 0, 0, 0, 0, 0, 0, 9, 0, 0, 0, 11, 0, 0, 0, // code, "", P, CC
                                            14, 0, 0, 0, 16, 0, 0, 0, 17, 0, 0, 0,           // T, area, office
                                            0, '1', '2', '3', '4', '5', '6', '7', 0, 'P', 0, 'C', 'C', // pool
                                            0, 'T', 0, 0, 0));
}

TEST_F(ZipBlock, KeepsTableOrderAndHasEmptyTextsForAbsentLevels) {
    Bind(CZipWorld());
    EXPECT_EQ(Ask("1000001"), Expected({CHIYODA, SHIBA, NO_PREF}));
}

TEST_F(ZipBlock, OfABeginningHoldsAllCodesThatBeginSo) {
    Bind(CZipWorld());
    EXPECT_EQ(Ask("100"), Expected({CHIYODA, SHIBA, NO_PREF, MARUNOUCHI}));
}

TEST_F(ZipBlock, IsTheSameForEverySpelling) {
    Bind(CZipWorld());
    EXPECT_EQ(Ask("100-0002"), Expected({MARUNOUCHI}));
    EXPECT_EQ(Ask("\x82\x50\x82\x4F\x82\x4F 0002"), Expected({MARUNOUCHI}));
}

TEST_F(ZipBlock, IsSortedWhileTheSortTypeIsNine) {
    Bind(CZipWorld());
    dic.SetSortType(9);
    EXPECT_EQ(Ask("100"), Expected({MARUNOUCHI, CHIYODA, SHIBA, NO_PREF}));
    EXPECT_EQ(Ask("100"), Expected({MARUNOUCHI, CHIYODA, SHIBA, NO_PREF})) << "the call does not set it back";
}

TEST_F(ZipBlock, HasAnEmptyTextInSecondPlaceOfEveryEntry) {
    Bind(CZipWorld());
    CBlockBytes const vBlock = Ask("100");
    auto const Long = [&](size_t n) {
        return vBlock[n] + 256u * vBlock[n + 1] + 65536u * vBlock[n + 2] + 16777216u * vBlock[n + 3];
    };
    ASSERT_EQ(vBlock[0], 4);
    for (size_t n = 0; n < 4; ++n) EXPECT_EQ(vBlock.at(Long(8) + Long(12 + 28 * n + 4)), 0) << n;
}

TEST_F(ZipBlock, CountsItsAddressesInTwoBytes) {
    CTinyWorld world;
    for (int n = 0; n < 299; ++n) world.AddInfoAt(world.nTown, world.vInfo[0].nCode);
    Bind(world);
    EXPECT_EQ(Ask("1000001"), Expected(std::vector<CZipAddress>(300, CHIYODA)));
}

TEST_F(ZipBlock, IsMovableZeroFilledAndOfExactSize) {
    Bind(CTinyWorld());
    CSystemWatch watch;
    CBlockBytes const vBlock = Ask("1000001");
    auto const vCall = watch.Calls("GlobalAlloc");
    ASSERT_EQ(vCall.size(), 1u);
    EXPECT_EQ(vCall[0].nNumber, 66);
    EXPECT_EQ(vCall[0].nSize, vBlock.size());
    EXPECT_EQ(vCall[0].nSize, 12u + 28 + (0 + 7 + 9 + 12 + 9 + 0 + 0) + 7);
}

TEST_F(ZipBlock, LeavesTheOfficeForTheComment) {
    Bind(CZipWorld());
    Ask("1000001");
    EXPECT_STREQ(dic.GetLastInc(), "会社");
}

TEST_F(ZipBlock, IsNotMadeForACodeThatIsNotThere) {
    Bind(CZipWorld());
    CSystemWatch watch;
    for (char const* psz : {static_cast<char const*>(nullptr), "", "-", "9", "10000011", "no code"}) {
        HGLOBAL h = Untouched();
        EXPECT_EQ(GetAdrFromZip(psz, &h), 1) << (psz != nullptr ? psz : "(null)");
        EXPECT_EQ(h, Untouched());
    }
    EXPECT_THAT(watch.Names(), testing::IsEmpty());
}

TEST_F(ZipBlock, IsNotMadeForACodeWithoutTowns) {
    CTinyWorld world;
    world.vInfo[0].nNode = world.nCity;
    Bind(world);
    HGLOBAL h = Untouched();
    EXPECT_EQ(GetAdrFromZip("1000001", &h), 1);
    EXPECT_EQ(h, Untouched());
}

TEST_F(ZipBlock, IsNotMadeWithoutAPlaceForItsHandle) {
    Bind(CTinyWorld());
    EXPECT_EQ(GetAdrFromZip("1000001", nullptr), 1);
}

TEST_F(ZipBlock, ThatCannotBeAllocatedIsRefused) {
    Bind(CTinyWorld());
    CSystemWatch watch;
    watch.Fail("GlobalAlloc");
    HGLOBAL h = Untouched();
    EXPECT_EQ(GetAdrFromZip("1000001", &h), 1);
    EXPECT_EQ(h, nullptr);
}

TEST_F(ZipBlock, ThatCannotBeLockedStaysEmptyAndIsRefused) {
    Bind(CTinyWorld());
    HGLOBAL h = Untouched();
    {
        CSystemWatch watch;
        watch.Fail("GlobalLock");
        EXPECT_EQ(GetAdrFromZip("1000001", &h), 1);
        EXPECT_THAT(watch.Names(), ElementsAre("GlobalAlloc", "GlobalLock"));
    }
    CBlockBytes const vBlock = Take(h);
    EXPECT_EQ(vBlock, CBlockBytes(vBlock.size(), 0)) << "the handle is the caller's to free";
}

// Damaged: what stands in the answer is open, but it is made without a look behind the image.
TEST_F(ZipBlock, StaysInsideTheStringAreaWhenItsLastTextLacksItsNul) {
    CTinyWorld world;
    world.vNode[world.nTown].nName = static_cast<uint32_t>(world.strArea.size());
    world.strArea += "unterminated";
    CGuardedBytes const image(world.Bytes());
    dic.SetDictionary(image.Data());
    HGLOBAL h = Untouched();
    if (GetAdrFromZip("1000001", &h) == 0)
        EXPECT_EQ(Take(h).at(0), 1);
    else
        EXPECT_EQ(h, Untouched());
    dic.SetDictionary(nullptr);
}

} // namespace
