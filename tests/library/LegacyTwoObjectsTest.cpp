// The legacy interface beside the postal address API: two dictionaries in one process, neither of which sees the other.
#include "tests/library/LegacyWorld.h"
#include "tests/support/TestProfile.h"

#include "api/Pstexec.h"
#include "api/PstexecState.h"

#include <fcntl.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsNull;

class LegacyTwoObjects : public CLegacy {
  protected:
    LegacyTwoObjects() {
        profile.SetDicDir(profile.Folder());
        profile.WriteDictionary(CLegacyWorld().Bytes());
    }
    ~LegacyTwoObjects() override {
        if (::dic.GetDicPointer() != nullptr && nDicSize > 0) PstAdrClose();
        ::dic.SetDictionary(nullptr);
        ::hDicFile = 0;
        nDicSize = 0;
    }

    // The towns of a code through the API.
    static std::vector<std::string> ApiTowns(char const* pszCode) {
        std::vector<tagADDR> vAddr;
        ::dic.GetAddrFromPostCode7(pszCode, vAddr);
        std::vector<std::string> vTown;
        for (tagADDR const& addr : vAddr) vTown.emplace_back(addr.pszTown);
        return vTown;
    }
    static CBytes ApiState() {
        auto const* const p = reinterpret_cast<unsigned char const*>(&::dic);
        return CBytes(p, p + sizeof ::dic);
    }
    // Runs every command once; all must succeed.
    static void RunCommands(std::string const& strPath) {
        EXPECT_EQ(Open(strPath), 0);
        EXPECT_THAT(Counts("100", "", 1), ElementsAre(2, 1, 4));
        EXPECT_EQ(NameAt(TOWN, 3), "千代田");
        EXPECT_EQ(Close(), 0);
    }

    CTestProfile profile;
};

TEST_F(LegacyTwoObjects, AreNotOne) {
    EXPECT_NE(&::dic, &ga_legacy::dic);
    EXPECT_NE(&::hDicFile, &ga_legacy::hDicFile);
}

TEST_F(LegacyTwoObjects, CanBeOpenOnOneFile) {
    ASSERT_EQ(PstAdrOpen(), 0);
    ASSERT_EQ(Open(profile.DictionaryPath()), 0);
    EXPECT_NE(::dic.GetDicPointer(), ga_legacy::dic.GetDicPointer()) << "mapped twice";
    EXPECT_NE(::hDicFile, ga_legacy::hDicFile);
    EXPECT_THAT(ApiTowns("1000001"), ElementsAre("千代田"));
    EXPECT_THAT(Counts("1000001", ""), ElementsAre(1, 1, 1));
    EXPECT_EQ(NameAt(TOWN, 0), "千代田");
}

TEST_F(LegacyTwoObjects, CanBeOpenOnDifferentFiles) {
    ASSERT_EQ(PstAdrOpen(), 0);
    OpenImage(CNamedWorld("東京都", "港区", "白金"));
    for (bool bAgain : {false, true}) {
        EXPECT_THAT(ApiTowns("1000001"), ElementsAre("千代田")) << bAgain;
        EXPECT_THAT(Counts("1000001", ""), ElementsAre(1, 1, 1)) << bAgain;
        EXPECT_EQ(NameAt(TOWN, 0), "白金") << bAgain;
    }
}

TEST_F(LegacyTwoObjects, OneIsOpenWithoutTheOther) {
    ASSERT_EQ(Open(profile.DictionaryPath()), 0);
    EXPECT_THAT(::dic.GetDicPointer(), IsNull());
    EXPECT_EQ(::hDicFile, 0);
    EXPECT_EQ(nDicSize, 0);
    Close();
    ga_legacy::dic.SetDictionary(nullptr);
    ga_legacy::hDicFile = -1;
    ga_legacy::size = 0;
    ASSERT_EQ(PstAdrOpen(), 0);
    EXPECT_THAT(ga_legacy::dic.GetDicPointer(), IsNull());
    EXPECT_EQ(ga_legacy::hDicFile, -1);
    EXPECT_EQ(ga_legacy::size, 0u);
}

TEST_F(LegacyTwoObjects, OneAnswersAfterTheOtherIsClosed) {
    ASSERT_EQ(PstAdrOpen(), 0);
    ASSERT_EQ(Open(profile.DictionaryPath()), 0);
    ASSERT_EQ(Close(), 0);
    EXPECT_THAT(ApiTowns("1000001"), ElementsAre("千代田"));
    EXPECT_NE(fcntl(::hDicFile, F_GETFD), -1);
    ASSERT_EQ(Open(profile.DictionaryPath()), 0);
    ASSERT_EQ(PstAdrClose(), 0);
    ::dic.SetDictionary(nullptr);
    nDicSize = 0;
    EXPECT_THAT(Counts("1000001", ""), ElementsAre(1, 1, 1));
    EXPECT_EQ(NameAt(TOWN, 0), "千代田");
    EXPECT_NE(fcntl(ga_legacy::hDicFile, F_GETFD), -1);
}

TEST_F(LegacyTwoObjects, OneIsUnchangedByEveryCommandOfTheOther) {
    ASSERT_EQ(PstAdrOpen(), 0);
    ASSERT_THAT(ApiTowns("1008111"), ElementsAre("丸の内"));
    ASSERT_STREQ(::dic.GetLastInc(), "テスト");
    CBytes const vState = ApiState();
    int const hFile = ::hDicFile;
    long const nSize = nDicSize;
    RunCommands(profile.DictionaryPath());
    EXPECT_EQ(Open(Path("missing")), 1);
    EXPECT_EQ(ApiState(), vState);
    EXPECT_EQ(::hDicFile, hFile);
    EXPECT_EQ(nDicSize, nSize);
    EXPECT_STREQ(::dic.GetLastInc(), "テスト");
}

TEST_F(LegacyTwoObjects, TheOtherIsUnchangedByTheApi) {
    ASSERT_EQ(Open(profile.DictionaryPath()), 0);
    ASSERT_THAT(Counts("100", "", 1), ElementsAre(2, 1, 4));
    CBytes const vState = State();
    ASSERT_EQ(PstAdrOpen(), 0);
    std::vector<tagADDR> vPref, vCity;
    ::dic.SetSortType(9);
    EXPECT_EQ(ApiTowns("100").size(), 5u);
    EXPECT_TRUE(::dic.GetPrefFromCity("東京都千代田区千代田", vPref));
    ASSERT_EQ(PstAdrClose(), 0);
    EXPECT_EQ(State(), vState);
    EXPECT_EQ(NameAt(TOWN, 3), "千代田");
}

TEST_F(LegacyTwoObjects, KeepSortTypesAndListsApart) {
    ASSERT_EQ(PstAdrOpen(), 0);
    ASSERT_EQ(Open(profile.DictionaryPath()), 0);
    CAddrDicPeek const api(::dic), legacy(ga_legacy::dic);
    ::dic.SetSortType(9);
    EXPECT_EQ(legacy.nSortType, 2);
    ga_legacy::dic.SetSortType(8);
    EXPECT_EQ(api.nSortType, 9);
    for (char const* pszCode : {"100", ""}) Counts(pszCode, "", 1);
    EXPECT_THAT(api.vRefineTree, IsEmpty());
    EXPECT_THAT(api.vPrefPnt, IsEmpty());
    EXPECT_THAT(api.vCityPnt, IsEmpty());
    EXPECT_THAT(api.vTownPnt, IsEmpty());
    EXPECT_EQ(api.nSelPref, 0);
    EXPECT_STREQ(api.szRefinePostCode, "");
    EXPECT_EQ(ApiTowns("100").size(), 5u);
    EXPECT_EQ(api.vCityList.size(), 5u);
    EXPECT_THAT(legacy.vCityList, IsEmpty());
    EXPECT_EQ(NameAt(PREF, 1), "東京都");
}

} // namespace
