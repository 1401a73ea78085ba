// Dictionaries with damaged records: an answer need not make sense, but every call ends and stays inside the image.
//
// The image stands right before a page that cannot be touched, and its string area is its last part.
#include "dic/AddrDic.h"

#include "tests/support/GuardedBytes.h"
#include "tests/support/Peek.h"
#include "tests/support/TestImage.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <functional>

namespace {

using testing::IsNull;

char const* const CODES[] = {"1000001", "100", "1", "0", "9999999", "10000011", ""};

// Every call that takes an entry or a code; the answers are thrown away.
void AskEverything(CAddrDic& dic) {
    for (unsigned long n = 0; dic.GetAddrInfo(n) != nullptr; ++n) {
        tagADDRNODE const *pPref, *pCity, *pTown;
        tagADDR addr(0);
        dic.GetAddrPtr(dic.GetAddrInfo(n), &pPref, &pCity, &pTown);
        dic.GetCityNode(dic.GetAddrInfo(n));
        dic.GetAddr(dic.GetAddrInfo(n), &addr);
    }
    for (char const* pszCode : CODES) {
        std::vector<tagADDR> vAddr;
        dic.SearchPostCode7(pszCode);
        dic.GetAddrFromPostCode7(pszCode, vAddr);
        dic.GetAddrFromPostCode5(pszCode, vAddr);
        dic.GetLastInc();
    }
}

// A tiny world with an organisation and a second entry, so that lists have something to compare.
struct CSmallWorld : CTinyWorld {
    CSmallWorld() {
        nOffice = AddNode(LEVEL_OFFICE, nTown, "会社", "カイシャ");
        nOfficeInfo = AddInfo(nOffice, "1000001", "100");
        nOther = AddNode(LEVEL_TOWN, nCity, "丸の内", "マルノウチ");
        AddInfo(nOther, "1000005", "100");
    }
    uint32_t nOffice, nOfficeInfo, nOther;
};

void AskDamaged(std::function<void(CSmallWorld&)> const& Damage) {
    CSmallWorld world;
    Damage(world);
    CGuardedBytes const image(world.Bytes());
    CAddrDic dic;
    dic.SetDictionary(image.Data());
    AskEverything(dic);
}

TEST(DamagedImage, SoundOneAnswersRightBeforeTheEndOfItsMapping) {
    CGuardedBytes const image(CSmallWorld().Bytes());
    CAddrDic dic;
    dic.SetDictionary(image.Data());
    AskEverything(dic);
    std::vector<tagADDR> vAddr;
    EXPECT_EQ(dic.GetAddrFromPostCode7("100", vAddr), 1);
    EXPECT_EQ(vAddr.size(), 3u);
}

TEST(DamagedImage, WithoutNulAtTheEndOfItsLastReadingIsHarmless) {
    AskDamaged([](CSmallWorld& world) {
        world.vNode[world.nTown].nName = world.AddText("town", "kana");
        world.strArea.pop_back();
    });
}

TEST(DamagedImage, WithoutNulAtTheEndOfItsLastNameIsHarmless) {
    for (uint8_t nLevel = LEVEL_PREF; nLevel <= LEVEL_OFFICE; ++nLevel)
        AskDamaged([nLevel](CSmallWorld& world) {
            uint32_t const nNode = world.AddNode(nLevel, world.nTown, "unterminated");
            world.AddInfo(nNode, "1000009", "100");
            world.vNode[nNode].nName = static_cast<uint32_t>(world.strArea.size());
            world.strArea += "unterminated";
        });
}

TEST(DamagedImage, WithoutNulAtTheEndOfItsLastCodeIsHarmless) {
    for (char const* psz : {"1000001", "1000009", "100", "1", "9", "99999999"})
        AskDamaged([psz](CSmallWorld& world) {
            world.AddInfoAt(world.nTown, static_cast<uint32_t>(world.strArea.size()));
            world.strArea += psz;
        });
}

TEST(DamagedImage, WithoutNulAtTheEndOfItsLastOldCodeIsHarmless) {
    for (char const* psz : {"100", "1", "1000"})
        AskDamaged([psz](CSmallWorld& world) {
            world.AddInfoAt(world.nTown, static_cast<uint32_t>(world.strArea.size()));
            world.strArea += std::string("1000009") + '\0' + psz;
        });
}

TEST(DamagedImage, WhoseCodeLacksItsNulHasNoTextBehindIt) {
    CSmallWorld world;
    uint32_t const nInfo = world.AddInfoAt(world.nTown, static_cast<uint32_t>(world.strArea.size()));
    world.strArea += "1000009";
    CGuardedBytes const image(world.Bytes());
    CAddrDic dic;
    dic.SetDictionary(image.Data());
    tagADDR addr(0);
    EXPECT_EQ(dic.GetAddr(dic.GetAddrInfo(nInfo), &addr), 1);
    EXPECT_THAT(addr.pszCodeExt, IsNull()) << "it would be the byte behind the area";
}

// The organisation is copied, so it is measured first.
TEST(DamagedImage, WhoseLastOrganisationLacksItsNulIsHarmless) {
    for (size_t nLength : {1u, 999u, 1000u, 3000u}) {
        CSmallWorld world;
        world.vNode[world.nOffice].nName = static_cast<uint32_t>(world.strArea.size());
        world.strArea.append(nLength, 'x');
        CGuardedBytes const image(world.Bytes());
        CAddrDic dic;
        dic.SetDictionary(image.Data());
        std::vector<tagADDR> vAddr;
        EXPECT_EQ(dic.GetAddrFromPostCode7("1000001", vAddr), 1);
        EXPECT_LT(strnlen(CAddrDicPeek(dic).szOffice, 1000), 1000u) << "ends inside its buffer";
    }
}

// In a child: sorting reads the texts whole, and a fault there must not take the other tests along.
TEST(DamagedImage, WithoutNulAtTheEndOfItsLastNameCanBeSorted) {
    for (uint32_t CSmallWorld::*pnNode : {&CSmallWorld::nOffice, &CSmallWorld::nOther}) {
        CSmallWorld world;
        world.vNode[world.*pnNode].nName = static_cast<uint32_t>(world.strArea.size());
        world.strArea += "unterminated";
        auto const Sort = [&] {
            CGuardedBytes const image(world.Bytes());
            CAddrDic dic;
            dic.SetDictionary(image.Data());
            dic.SetSortType(SORT_ADDR);
            std::vector<tagADDR> vAddr;
            std::_Exit(dic.GetAddrFromPostCode7("100", vAddr) == 1 ? 0 : 1);
        };
        EXPECT_EXIT(Sort(), testing::ExitedWithCode(0), "");
    }
}

TEST(DamagedImage, WhoseParentsGoInACircleComesToAnEnd) {
    AskDamaged([](CSmallWorld& world) { world.vNode[world.nPref].nParent = world.nTown; });
    AskDamaged([](CSmallWorld& world) { world.vNode[world.nTown].nParent = world.nTown; });
    AskDamaged([](CSmallWorld& world) { world.vNode[world.nPref].nParent = world.nPref; });
}

TEST(DamagedImage, WhoseParentsGoInACircleHasNoCityWhenNoneIsInIt) {
    CSmallWorld world;
    world.vNode[world.nTown].nParent = world.nOffice;
    CGuardedBytes const image(world.Bytes());
    CAddrDic dic;
    dic.SetDictionary(image.Data());
    EXPECT_THAT(dic.GetCityNode(dic.GetAddrInfo(world.nInfo)), IsNull());
    EXPECT_THAT(dic.GetCityNode(dic.GetAddrInfo(world.nOfficeInfo)), IsNull());
}

// Whatever hangs below a long chain of parents, a question is answered in few steps for each entry.
TEST(DamagedImage, WithParentsByTheHundredHasNoCityAtTheirEnd) {
    for (auto const& [nAreas, bFound] : {std::pair{254u, true}, std::pair{255u, false}, std::pair{1000u, false}}) {
        CTestImage world;
        uint32_t const nCity = world.AddNode(LEVEL_CITY, ADDR_NONE, "千代田区");
        uint32_t nNode = nCity;
        for (uint32_t n = 0; n <= nAreas; ++n) nNode = world.AddNode(LEVEL_AREA, nNode, "");
        uint32_t const nInfo = world.AddInfo(nNode, "1000001");
        CGuardedBytes const image(world.Bytes());
        CAddrDic dic;
        dic.SetDictionary(image.Data());
        EXPECT_EQ(dic.GetCityNode(dic.GetAddrInfo(nInfo)), bFound ? dic.GetAddrNode(nCity) : nullptr) << nAreas;
    }
}

TEST(DamagedImage, WithAParentOutOfRangeIsHarmless) {
    for (uint32_t nParent : {5u, 1000000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFEu})
        for (uint32_t nNode = 0; nNode < 5; ++nNode)
            AskDamaged([=](CSmallWorld& world) { world.vNode[nNode].nParent = nParent; });
}

TEST(DamagedImage, WithAnEntrysNodeOutOfRangeIsHarmless) {
    for (uint32_t nNode : {5u, 1000000u, 0x7FFFFFFFu, 0x80000000u, 0x80000005u, 0xFFFFFFFFu})
        for (uint32_t nInfo = 0; nInfo < 3; ++nInfo)
            AskDamaged([=](CSmallWorld& world) { world.vInfo[nInfo].nNode = nNode; });
}

TEST(DamagedImage, WithACodeOutsideTheStringAreaIsHarmless) {
    for (uint32_t nInfo = 0; nInfo < 3; ++nInfo) {
        AskDamaged([=](CSmallWorld& w) { w.vInfo[nInfo].nCode = static_cast<uint32_t>(w.strArea.size()); });
        for (uint32_t nCode : {1000000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu})
            AskDamaged([=](CSmallWorld& world) { world.vInfo[nInfo].nCode = nCode; });
    }
}

TEST(DamagedImage, WithANameOutsideTheStringAreaIsHarmless) {
    for (uint32_t nNode = 0; nNode < 5; ++nNode) {
        AskDamaged([=](CSmallWorld& w) { w.vNode[nNode].nName = static_cast<uint32_t>(w.strArea.size()); });
        for (uint32_t nName : {1000000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu})
            AskDamaged([=](CSmallWorld& world) { world.vNode[nNode].nName = nName; });
    }
}

TEST(DamagedImage, WhoseLastEntryHasNoCodeEndsALookupThere) {
    CSmallWorld world;
    world.vInfo[2].nCode = 0xFFFFFFFF;
    CGuardedBytes const image(world.Bytes());
    CAddrDic dic;
    dic.SetDictionary(image.Data());
    std::vector<tagADDR> vAddr;
    EXPECT_EQ(dic.GetAddrFromPostCode7("100", vAddr), 1);
    EXPECT_EQ(vAddr.size(), 2u);
}

} // namespace
