// A dictionary that is replaced by renaming a new file over it while it is open: the old edition goes on answering,
// from the file that has no name any more, until the next open.
#include "tests/library/ApiWorld.h"
#include "tests/library/LegacyWorld.h"
#include "tests/support/ProcessState.h"
#include "tests/support/TestProfile.h"

#include <sys/mman.h>
#include <unistd.h>

namespace {

using testing::ElementsAre;
using namespace std::string_literals;

// The tiny world of an edition: its town has the edition's name. Others before it make its file a larger one, with
// every table in another place.
std::vector<unsigned char> Edition(std::string const& strTown, int nOthers) {
    CTestImage image;
    uint32_t const nPref = image.AddNode(LEVEL_PREF, ADDR_NONE, "東京都", "トウキョウト");
    uint32_t const nCity = image.AddNode(LEVEL_CITY, nPref, "千代田区", "チヨダク");
    for (int n = 0; n < nOthers; ++n) image.AddNode(LEVEL_TOWN, nCity, "町" + std::to_string(n));
    uint32_t const nTown = image.AddNode(LEVEL_TOWN, nCity, strTown);
    image.AddInfo(nTown, "1000001", "100");
    image.AddInfo(nCity, "9999999", "999");
    image.Complete();
    return image.Bytes();
}

constexpr int FEW = 0, MANY = 2000; // the second edition is some pages larger, or smaller

void ReplaceBy(std::string const& strPath, std::vector<unsigned char> const& vByte) {
    std::string const strNew = strPath + ".new";
    std::ofstream file(strNew, std::ios::binary);
    file.write(reinterpret_cast<char const*>(vByte.data()), static_cast<std::streamsize>(vByte.size()));
    if (!file.flush()) throw std::runtime_error("cannot write " + strNew);
    std::filesystem::rename(strNew, strPath);
}

class ReplacedDictionary : public testing::Test {
  protected:
    ReplacedDictionary() { m_profile.SetDicDir(m_profile.Folder()); }
    void TearDown() override {
        dic.SetDictionary(nullptr);
        hDicFile = 0;
        nDicSize = 0;
    }

    // The town of an address, read from the block.
    static std::string TownOf(char const* pszCode) {
        HGLOBAL h = nullptr;
        if (GetAdrFromZip(pszCode, &h) != 0) return "(none)";
        auto const* const p = static_cast<char const*>(GlobalLock(h));
        uint32_t nPool = 0, nTown = 0;
        std::memcpy(&nPool, p + 8, sizeof nPool);
        std::memcpy(&nTown, p + 12 + 16, sizeof nTown);
        std::string const strTown = p + nPool + nTown;
        GlobalUnlock(h);
        GlobalFree(h);
        return strTown;
    }

    CTestProfile m_profile;
};

TEST_F(ReplacedDictionary, GoesOnAnsweringUntilTheNextOpen) {
    for (int const nOthers : {FEW, MANY}) {
        m_profile.WriteDictionary(Edition("旧版", nOthers));
        ASSERT_EQ(PstAdrOpen(), 0);
        EXPECT_EQ(TownOf("1000001"), "旧版");
        ReplaceBy(m_profile.DictionaryPath(), Edition("新版", MANY - nOthers));
        EXPECT_TRUE(IsFileMapped(m_profile.DictionaryPath() + " (deleted)"));
        EXPECT_EQ(TownOf("1000001"), "旧版");
        HGLOBAL h = nullptr;
        EXPECT_EQ(GetAdrFromAdd("東京都千代田区旧版", &h), 0) << "pages that were not read before";
        GlobalFree(h);
        EXPECT_EQ(PstAdrClose(), 0);
        EXPECT_FALSE(IsFileMapped(m_profile.DictionaryPath()));
        ASSERT_EQ(PstAdrOpen(), 0);
        EXPECT_EQ(TownOf("1000001"), "新版");
        EXPECT_EQ(PstAdrClose(), 0);
        std::filesystem::remove(m_profile.DictionaryPath());
    }
}

// Opening without closing is how a host changes over without a moment in between; its texts from the old edition,
// which stays mapped, remain readable.
TEST_F(ReplacedDictionary, ChangesOverWithTheNextOpenAndItsTextsStay) {
    m_profile.WriteDictionary(Edition("旧版", FEW));
    ASSERT_EQ(PstAdrOpen(), 0);
    void* const pOld = const_cast<unsigned char*>(dic.GetDicPointer());
    auto const nOld = static_cast<size_t>(nDicSize);
    int const hOld = hDicFile;
    std::vector<tagADDR> vAddr;
    ASSERT_EQ(dic.GetAddrFromPostCode7("1000001", vAddr), 1);
    ReplaceBy(m_profile.DictionaryPath(), Edition("新版", MANY));
    ASSERT_EQ(PstAdrOpen(), 0);
    EXPECT_EQ(TownOf("1000001"), "新版");
    EXPECT_STREQ(vAddr[0].pszTown, "旧版");
    EXPECT_EQ(PstAdrClose(), 0);
    EXPECT_STREQ(vAddr[0].pszTown, "旧版") << "a close takes the newest mapping only";
    munmap(pOld, nOld);
    close(hOld);
}

// Whether the next file is smaller, larger or of the same size.
TEST_F(ReplacedDictionary, IsTheOneOfItsOpeningThroughAnyNumberOfReplacements) {
    m_profile.WriteDictionary(Edition("版0", FEW));
    int nEdition = 0;
    for (int const nOthers : {MANY, FEW, FEW, MANY / 2, MANY, MANY, 1, FEW}) {
        std::string const strTown = "版" + std::to_string(nEdition++);
        ASSERT_EQ(PstAdrOpen(), 0);
        for (bool const bReplaced : {false, true}) {
            EXPECT_EQ(TownOf("1000001"), strTown) << bReplaced;
            ReplaceBy(m_profile.DictionaryPath(), Edition("版" + std::to_string(nEdition), nOthers));
        }
        EXPECT_EQ(TownOf("1000001"), strTown) << "replaced twice";
        EXPECT_EQ(PstAdrClose(), 0);
        EXPECT_FALSE(IsFileMapped(m_profile.DictionaryPath()));
    }
}

// A position in an answer stays one in the next level of the same edition.
TEST_F(ReplacedDictionary, GoesOnBrowsingFromTheAnswersBefore) {
    m_profile.WriteDictionary(Edition("旧版", FEW));
    ASSERT_EQ(PstAdrOpen(), 0);
    unsigned char abRecord[300] = {};
    HGLOBAL hPref = nullptr, hCity = nullptr, hTown = nullptr;
    EXPECT_EQ(PstAdrRPrf(abRecord, &hPref), 0u);
    ReplaceBy(m_profile.DictionaryPath(), Edition("新版", MANY));
    EXPECT_EQ(PstAdrRCity(12, &hCity), 0u);
    EXPECT_EQ(PstAdrTown(0, &hTown), 0u);
    std::string const strTown = "\1\0\6旧版\3"
                                "100\7"
                                "1000001\0"s;
    EXPECT_EQ(GlobalSize(hTown), strTown.size());
    EXPECT_EQ(std::memcmp(GlobalLock(hTown), strTown.data(), strTown.size()), 0);
    GlobalUnlock(hTown);
    for (HGLOBAL const h : {hPref, hCity, hTown}) GlobalFree(h);
    EXPECT_EQ(PstAdrClose(), 0);
}

TEST_F(ReplacedDictionary, MayBeRemovedToo) {
    m_profile.WriteDictionary(Edition("旧版", FEW));
    ASSERT_EQ(PstAdrOpen(), 0);
    std::filesystem::remove(m_profile.DictionaryPath());
    EXPECT_EQ(TownOf("1000001"), "旧版");
    int const hFile = hDicFile;
    EXPECT_EQ(PstAdrOpen(), 1) << "there is no next one";
    EXPECT_EQ(TownOf("1000001"), "旧版");
    hDicFile = hFile; // the failed open has written -1 over it
    EXPECT_EQ(PstAdrClose(), 0);
}

class ReplacedLegacyDictionary : public CLegacy {};

TEST_F(ReplacedLegacyDictionary, GoesOnAnsweringUntilTheNextOpen) {
    for (int const nOthers : {FEW, MANY}) {
        std::string const strPath = Write(Edition("旧版", nOthers));
        ASSERT_EQ(Open(strPath), 0);
        EXPECT_THAT(Counts("1000001", ""), ElementsAre(1, 1, 1));
        EXPECT_EQ(NameAt(TOWN, 0), "旧版");
        ReplaceBy(strPath, Edition("新版", MANY - nOthers));
        EXPECT_TRUE(IsFileMapped(strPath + " (deleted)"));
        EXPECT_EQ(NameAt(TOWN, 0), "旧版") << "the list that was there";
        EXPECT_THAT(Counts("", "東京都千代田区旧版"), ElementsAre(1, 1, 1)) << "and a new search";
        EXPECT_EQ(NameAt(TOWN, 0), "旧版");
        EXPECT_EQ(Close(), 0);
        EXPECT_FALSE(IsFileMapped(strPath));
        ASSERT_EQ(Open(strPath), 0);
        EXPECT_THAT(Counts("1000001", ""), ElementsAre(1, 1, 1));
        EXPECT_EQ(NameAt(TOWN, 0), "新版");
        EXPECT_EQ(Close(), 0);
    }
}

TEST_F(ReplacedLegacyDictionary, ChangesOverWithTheNextOpenAndKeepsTheOldMapping) {
    for (int const nOthers : {FEW, MANY}) {
        std::string const strPath = Write(Edition("旧版", nOthers));
        ASSERT_EQ(Open(strPath), 0);
        void* const pOld = const_cast<unsigned char*>(ga_legacy::dic.GetDicPointer());
        size_t const nOld = ga_legacy::size;
        int const hOld = ga_legacy::hDicFile;
        ReplaceBy(strPath, Edition("新版", MANY - nOthers));
        ASSERT_EQ(Open(strPath), 0);
        EXPECT_THAT(Counts("1000001", ""), ElementsAre(1, 1, 1));
        EXPECT_EQ(NameAt(TOWN, 0), "新版");
        EXPECT_EQ(Close(), 0);
        EXPECT_TRUE(IsFileMapped(strPath + " (deleted)")) << "a close takes the newest mapping only";
        EXPECT_TRUE(IsOpen(hOld));
        munmap(pOld, nOld);
        close(hOld);
        EXPECT_FALSE(IsFileMapped(strPath));
    }
}

TEST_F(ReplacedLegacyDictionary, IsTheOneOfItsOpeningThroughAnyNumberOfReplacements) {
    std::string const strPath = Write(Edition("版0", FEW));
    int nEdition = 0;
    for (int const nOthers : {MANY, FEW, FEW, MANY / 2, MANY, MANY, 1, FEW}) {
        std::string const strTown = "版" + std::to_string(nEdition++);
        ASSERT_EQ(Open(strPath), 0);
        for (char const* pszText : {"", "東京都千代田区"}) {
            Counts("1000001", "");
            EXPECT_EQ(NameAt(TOWN, 0), strTown) << pszText;
            ReplaceBy(strPath, Edition("版" + std::to_string(nEdition), nOthers));
            Counts("",
                   pszText + (*pszText == '\0' ? "" : strTown)); // made anew, from pages that were not read before
        }
        EXPECT_EQ(NameAt(TOWN, 0), strTown);
        EXPECT_EQ(Close(), 0);
    }
}

// Each interface has its own mapping: one that has opened the new edition leaves the other with the old one.
TEST_F(ReplacedLegacyDictionary, IsNotTheOneOfThePostalAddressApi) {
    CTestProfile const profile;
    profile.SetDicDir(profile.Folder());
    profile.WriteDictionary(Edition("旧版", FEW));
    ASSERT_EQ(PstAdrOpen(), 0);
    ASSERT_EQ(Open(profile.DictionaryPath()), 0);
    ReplaceBy(profile.DictionaryPath(), Edition("新版", MANY));
    ASSERT_EQ(PstAdrClose(), 0);
    ASSERT_EQ(PstAdrOpen(), 0);
    std::vector<tagADDR> vAddr;
    ASSERT_EQ(dic.GetAddrFromPostCode7("1000001", vAddr), 1);
    EXPECT_STREQ(vAddr[0].pszTown, "新版");
    EXPECT_THAT(Counts("1000001", ""), ElementsAre(1, 1, 1));
    EXPECT_EQ(NameAt(TOWN, 0), "旧版");
    EXPECT_EQ(PstAdrClose(), 0);
    dic.SetDictionary(nullptr);
    hDicFile = 0;
    nDicSize = 0;
}

} // namespace
