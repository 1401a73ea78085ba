// GetLatestAddr: the names of a superseded town replaced by those of the address that took its place.
#include "tests/library/AddrTextWorld.h"

#include <gmock/gmock.h>

#include <cstring>
#include <set>

namespace {

using testing::IsEmpty;
using testing::IsNull;

char const OLD_ADDRESS[] = "東京都千代田区旧町２丁目";

// What separation alone makes of a text.
tagADDR Divided(CAddrDic& dic, char const* pszText) {
    tagADDR addr(0);
    for (int nNode = dic.SeparatePref(&pszText, addr), nLevel = 1; nLevel <= 2; ++nLevel)
        nNode = nLevel == 1 ? dic.SeparateCity(&pszText, static_cast<unsigned long>(nNode), addr)
                            : dic.SeparateTown(&pszText, static_cast<unsigned long>(nNode), addr);
    return addr;
}

// The world with another successor in place of 丸の内.
CTextWorld WorldWithSuccessor(uint32_t nSuccessor) {
    CTextWorld world;
    size_t const nPos = world.vInfo[world.nOldInfo].nCode + sizeof "1000099" + sizeof "10099";
    std::memcpy(&world.strArea[nPos], &nSuccessor, sizeof nSuccessor);
    return world;
}

TEST(LatestAddr, OfACurrentTownIsThatOfTheText) {
    CTextWorld const world;
    CGuardedDic dic(world);
    for (char const* psz : {"東京都千代田区丸の内２丁目", "千代田区千代田", "芝１丁目", "東京都元町"}) {
        tagADDR addr(0);
        EXPECT_EQ(dic.GetLatestAddr(psz, addr), 1u) << psz;
        EXPECT_EQ(Fields(addr), Fields(Divided(dic, psz))) << psz;
    }
}

TEST(LatestAddr, OfASupersededTownHasTheNamesOfItsSuccessorAndNothingElseOfIt) {
    CTextWorld const world;
    CGuardedDic dic(world);
    tagADDR addr(0);
    EXPECT_EQ(dic.GetLatestAddr(OLD_ADDRESS, addr), 1u);
    EXPECT_EQ(addr.pszPref, dic.Name(world.nTokyo));
    EXPECT_EQ(addr.pszCity, dic.Name(world.nChiyodaKu));
    EXPECT_EQ(addr.pszTown, dic.Name(world.nMarunouchi));
    EXPECT_STREQ(addr.pszPostCode, "1000099") << "the old address's own";
    EXPECT_STREQ(addr.pszCodeExt, "10099");
    EXPECT_STREQ(addr.pszTownKana, "キュウマチ");
    EXPECT_EQ(addr.pTownNode, dic.Node(world.nOldTown));
    EXPECT_EQ(addr.pszArea, OLD_ADDRESS + std::strlen("東京都千代田区旧町"));
    tagADDR expected = Divided(dic, OLD_ADDRESS);
    expected.pszTown = dic.Name(world.nMarunouchi);
    EXPECT_EQ(Fields(addr), Fields(expected));
}

TEST(LatestAddr, MayLieInAnotherPrefecture) {
    CTextWorld const sound;
    CTextWorld const world = WorldWithSuccessor(sound.vNode[sound.nMotomachi].nInfo);
    CGuardedDic dic(world);
    tagADDR addr(0);
    EXPECT_EQ(dic.GetLatestAddr(OLD_ADDRESS, addr), 1u);
    tagADDR expected = Divided(dic, OLD_ADDRESS);
    expected.pszPref = dic.Name(world.nHiroshima);
    expected.pszCity = dic.Name(world.nFuchuHiroshima);
    expected.pszTown = dic.Name(world.nMotomachi);
    EXPECT_EQ(Fields(addr), Fields(expected)) << "readings and nodes stay those of the old address";
}

TEST(LatestAddr, FillsInThePrefectureThatTheTextLacks) {
    CTextWorld const world;
    CGuardedDic dic(world);
    tagADDR addr(0);
    EXPECT_EQ(dic.GetLatestAddr("旧町", addr), 1u);
    EXPECT_STREQ(addr.pszPref, "東京都");
    EXPECT_STREQ(addr.pszCity, "千代田区");
    EXPECT_STREQ(addr.pszTown, "丸の内");
    EXPECT_THAT(addr.pPrefNode, IsNull());
    EXPECT_THAT(addr.pszPrefKana, IsNull());
}

TEST(LatestAddr, LosesTheNamesThatItsSuccessorLacks) {
    CTextWorld const sound;
    CTextWorld const world = WorldWithSuccessor(sound.vNode[sound.nChiyodaKu].nInfo);
    CGuardedDic dic(world);
    tagADDR addr(0);
    EXPECT_EQ(dic.GetLatestAddr(OLD_ADDRESS, addr), 1u);
    EXPECT_STREQ(addr.pszCity, "千代田区");
    EXPECT_THAT(addr.pszTown, IsNull()) << "the entry of a city has no town";
}

TEST(LatestAddr, GoesOneStepAlsoWhenTheSuccessorIsSupersededItself) {
    CTextWorld world;
    uint32_t const nLast = world.AddSuperseded(world.nShiba, "1050099", "10599", 0);
    size_t const nPos = world.vInfo[world.nOldInfo].nCode + sizeof "1000099" + sizeof "10099";
    std::memcpy(&world.strArea[nPos], &nLast, sizeof nLast);
    CGuardedDic dic(world);
    tagADDR addr(0);
    EXPECT_EQ(dic.GetLatestAddr(OLD_ADDRESS, addr), 1u);
    EXPECT_STREQ(addr.pszCity, "港区");
    EXPECT_STREQ(addr.pszTown, "芝");
    CGuardedDic self(WorldWithSuccessor(world.nOldInfo));
    EXPECT_EQ(self.GetLatestAddr(OLD_ADDRESS, addr), 1u);
    EXPECT_STREQ(addr.pszTown, "旧町") << "an entry that names itself";
}

TEST(LatestAddr, WithoutATownIsNoneThoughPrefectureAndCityAreFilled) {
    CTextWorld const world;
    CGuardedDic dic(world);
    for (char const* psz : {"", "東京都", "東京都千代田区", "東京都千代田区無町", "千代田区", "無県"}) {
        tagADDR addr(0);
        EXPECT_EQ(dic.GetLatestAddr(psz, addr), 0u) << psz;
        EXPECT_EQ(Fields(addr), Fields(Divided(dic, psz))) << psz;
        EXPECT_THAT(addr.pszArea, IsNull()) << "only a town leaves a rest";
    }
}

TEST(LatestAddr, OfATownWithoutAnEntryIsNone) {
    CTextWorld world;
    for (uint32_t nInfo : {ADDR_NONE, static_cast<uint32_t>(world.vInfo.size()), 0x80000000u}) {
        world.vNode[world.nOldTown].nInfo = nInfo;
        CGuardedDic dic(world);
        tagADDR addr(0);
        EXPECT_EQ(dic.GetLatestAddr(OLD_ADDRESS, addr), 0u);
        EXPECT_EQ(Fields(addr), Fields(Divided(dic, OLD_ADDRESS)));
        EXPECT_STREQ(addr.pszTown, "旧町");
    }
}

TEST(LatestAddr, WhoseSuccessorIsNotThereIsNoneAndKeepsTheOldOne) {
    CTextWorld const sound;
    for (uint32_t nSuccessor :
         {static_cast<uint32_t>(sound.vInfo.size()), 1000000u, 0x7FFFFFFFu, 0x80000000u, 0x80000001u, ADDR_NONE}) {
        CGuardedDic dic(WorldWithSuccessor(nSuccessor));
        tagADDR addr(0);
        EXPECT_EQ(dic.GetLatestAddr(OLD_ADDRESS, addr), 0u) << nSuccessor;
        EXPECT_EQ(Fields(addr), Fields(Divided(dic, OLD_ADDRESS)));
        EXPECT_STREQ(addr.pszTown, "旧町");
        EXPECT_STREQ(addr.pszPostCode, "1000099");
    }
}

// The string area ends with the image: what stands behind the index moves it.
TEST(LatestAddr, IsFoundWhereverItsIndexLies) {
    std::set<uintptr_t> setAlignment;
    for (size_t nPad = 0; nPad < 4; ++nPad) {
        CTextWorld world;
        uint32_t const nMotomachi = world.vNode[world.nMotomachi].nInfo;
        uint32_t const nInfo = world.AddSuperseded(world.nOldTown, "1000098", "10098", nMotomachi);
        world.vNode[world.nOldTown].nInfo = nInfo;
        world.AddText("behind", std::string(nPad, 'x'));
        CGuardedDic dic(world);
        char const* const pIndex = dic.GetString(world.vInfo[nInfo].nCode + sizeof "1000098" + sizeof "10098");
        setAlignment.insert(reinterpret_cast<uintptr_t>(pIndex) % 4);
        tagADDR addr(0);
        EXPECT_EQ(dic.GetLatestAddr(OLD_ADDRESS, addr), 1u) << nPad;
        EXPECT_STREQ(addr.pszTown, "元町") << nPad;
        EXPECT_STREQ(addr.pszCodeExt, "10098") << nPad;
    }
    EXPECT_EQ(setAlignment.size(), 4u);
}

// The string area stands right before the page that cannot be touched.
TEST(LatestAddr, WhoseIndexIsCutOffByTheEndOfTheTextsIsNone) {
    for (size_t nCut = 0; nCut <= 4; ++nCut) {
        CTextWorld world;
        uint32_t const nInfo = world.AddSuperseded(world.nOldTown, "1000098", "10098", 0x00000002);
        world.vNode[world.nOldTown].nInfo = nInfo;
        world.strArea.resize(world.strArea.size() - nCut);
        CGuardedDic dic(world);
        tagADDR addr(0);
        EXPECT_EQ(dic.GetLatestAddr(OLD_ADDRESS, addr), nCut == 0 ? 1u : 0u) << nCut;
        EXPECT_STREQ(addr.pszTown, nCut == 0 ? "丸の内" : "旧町") << nCut;
        EXPECT_STREQ(addr.pszPostCode, "1000098") << nCut;
        EXPECT_STREQ(addr.pszCodeExt, "10098") << nCut;
    }
}

TEST(LatestAddr, WhoseIndexEndsInABusyByteAtTheEndOfTheTextsIsRead) {
    CTextWorld world; // the last byte of the area is no NUL then
    world.vNode[world.nOldTown].nInfo = world.AddSuperseded(world.nOldTown, "1000098", "10098", 0x7F000000);
    CGuardedDic dic(world);
    tagADDR addr(0);
    EXPECT_EQ(dic.GetLatestAddr(OLD_ADDRESS, addr), 0u) << "out of range";
    EXPECT_STREQ(addr.pszTown, "旧町");
    EXPECT_STREQ(addr.pszCodeExt, "10098") << "texts before it end all the same";
}

TEST(LatestAddr, WhoseCodesEndWithTheTextsIsNone) {
    for (std::string const strCode : {"1000098", "1", ""})
        for (bool bOld : {false, true}) {
            CTextWorld world;
            auto const nCode = static_cast<uint32_t>(world.strArea.size());
            world.strArea += strCode + (bOld ? std::string(1, '\0') + "10098" : "");
            world.vNode[world.nOldTown].nInfo = world.AddInfoAt(world.nOldTown | ADDRINFO_SUPERSEDED, nCode);
            CGuardedDic dic(world);
            tagADDR addr(0);
            EXPECT_EQ(dic.GetLatestAddr(OLD_ADDRESS, addr), 0u) << strCode << bOld;
            EXPECT_STREQ(addr.pszTown, "旧町");
        }
}

TEST(LatestAddr, OfNothingIsNone) {
    CTextWorld const world;
    CGuardedDic dic(world);
    tagADDR addr = MarkedAddr();
    EXPECT_EQ(dic.GetLatestAddr(nullptr, addr), 0u);
    EXPECT_THAT(Changed(addr), IsEmpty());
    CAddrDic unbound;
    EXPECT_EQ(unbound.GetLatestAddr(OLD_ADDRESS, addr), 0u);
    EXPECT_THAT(Changed(addr), IsEmpty());
}

} // namespace
