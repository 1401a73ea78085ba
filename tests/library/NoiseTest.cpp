// Address texts and images full of noise: whatever the bytes, every call ends, stays inside text and image, and keeps
// its promises about what it read.
#include "tests/library/AddrTextWorld.h"

#include <gmock/gmock.h>

#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <random>

namespace {

using CRandom = std::mt19937;

// Fixed, and printed so that a failure can be told from that of another test.
CRandom Seeded(unsigned nSeed) {
    std::printf("seed %u\n", nSeed);
    return CRandom(nSeed);
}

// The same on every machine, unlike std::uniform_int_distribution.
size_t Below(CRandom& random, size_t n) {
    return random() % n;
}

// --- texts ---------------------------------------------------------------------------------------------------------

char const* const PIECES[] = {"東京都",   "広島県",
                              "千代田区", "港区",
                              "府中市",   "丸の内",
                              "千代田",   "旧町",
                              "芝",       "１丁目",
                              "テスト",   "株式会社",
                              "（有）",   "　",
                              " ",        ",",
                              "、",       "x",
                              "\xE3",     "\xE3\x80",
                              "\x80",     "\xFF",
                              "\xC0\x80", "\xED\xA0\x80",
                              "\xF8",     "\xE6\x9D\xB1\xE4",
                              SHI,        GUN};

// Bytes without NUL, pieces of addresses, or pieces cut anywhere.
std::string Noise(CRandom& random, size_t nLength) {
    std::string str;
    switch (random() % 3) {
    case 0:
        while (str.size() < nLength) str += static_cast<char>(1 + random() % 255);
        break;
    case 1:
        while (str.size() < nLength) str += PIECES[Below(random, std::size(PIECES))];
        break;
    default:
        while (str.size() < nLength) {
            std::string const strPiece = PIECES[Below(random, std::size(PIECES))];
            str += strPiece.substr(0, 1 + Below(random, strPiece.size()));
        }
    }
    str.resize(nLength);
    return str;
}

std::vector<std::string> NoiseOfManyLengths(CRandom& random) {
    std::vector<std::string> vText;
    for (int n = 0; n < 1500; ++n) vText.push_back(Noise(random, Below(random, 90)));
    for (size_t nLength : {250u, 4095u, 4096u, 4097u, 65534u, 65535u, 65536u, 99999u, 100000u})
        for (int n = 0; n < 3; ++n) vText.push_back(Noise(random, nLength));
    for (size_t nLength : {70u, 65535u, 100000u})
        for (char const* psz : {"東京都", "千代田区丸の内", "東京都千代田区旧町", "東京都港区芝"})
            vText.push_back(psz + Noise(random, nLength));
    return vText;
}

bool LiesIn(char const* p, CGuardedBytes const& text, size_t nLength) {
    return p >= text.Text() && p <= text.Text() + nLength;
}

TEST(NoisyText, IsDividedIntoWhatWasReadAndTheRest) {
    CRandom random = Seeded(20261121);
    CTextWorld const world;
    CGuardedDic dic(world);
    int nTowns = 0;
    for (std::string const& str : NoiseOfManyLengths(random)) {
        CGuardedBytes const text(str, CGuardedBytes::ReadOnly);
        tagADDR addr(0);
        ASSERT_TRUE(dic.DivideAddr(text.Text(), &addr));
        ASSERT_TRUE(LiesIn(addr.pszArea, text, str.size()));
        std::string strJoined;
        for (char const* psz : {addr.pszPref, addr.pszCity, addr.pszTown, addr.pszArea})
            if (psz != nullptr) strJoined += psz;
        ASSERT_EQ(strJoined, str) << "in UTF-8 every name was read whole";
        nTowns += addr.pszTown != nullptr;
    }
    EXPECT_GT(nTowns, 50) << "the noise holds addresses, too";
}

TEST(NoisyText, MovesTheCursorInsideItsText) {
    CRandom random = Seeded(20261122);
    CTestImage image; // names whose markers can be seen: more may be counted than the text has
    uint32_t const nPref = image.AddNode(LEVEL_PREF, ADDR_NONE, "p");
    for (char const* psz :
         {"aaaaaaaa" SHI "b" KU, "aaaaaaaa" SHI "bb" KU, "cccccccccccc" GUN "b" CHO, "dd" SHIMA "bb" MURA})
        image.AddNode(LEVEL_CITY, nPref, psz);
    image.Complete();
    CGuardedDic dic(image);
    char const* const apszPiece[] = {"p", "a", "b", "dd", SHI, KU, GUN, CHO, SHIMA, MURA, "bb" KU, "bb" MURA};
    int nFound = 0;
    for (int nText = 0; nText < 3000; ++nText) {
        std::string str;
        for (size_t n = Below(random, 5); n > 0; --n) str += apszPiece[Below(random, std::size(apszPiece))];
        CGuardedBytes const text(str, CGuardedBytes::ReadOnly);
        tagADDR addr(0);
        ASSERT_TRUE(dic.DivideAddr(text.Text(), &addr));
        ASSERT_TRUE(LiesIn(addr.pszArea, text, str.size()));
        nFound += addr.pszCity != nullptr;
    }
    EXPECT_GT(nFound, 100);
}

TEST(NoisyText, HasALatestAddressOrNot) {
    CRandom random = Seeded(20261123);
    CTextWorld const world;
    CGuardedDic dic(world);
    for (std::string const& str : NoiseOfManyLengths(random)) {
        CGuardedBytes const text(str, CGuardedBytes::ReadOnly);
        tagADDR addr(0);
        uint32_t const nResult = dic.GetLatestAddr(text.Text(), addr);
        ASSERT_EQ(nResult, addr.pszTown != nullptr ? 1u : 0u) << "each town of this world has a latest address";
        if (nResult == 1) {
            ASSERT_TRUE(LiesIn(addr.pszArea, text, str.size()));
            ASSERT_STRNE(addr.pszTown, "旧町");
        }
    }
}

TEST(NoisyText, StandsForAddressesOfTheDictionary) {
    CRandom random = Seeded(20261124);
    CTextWorld const world;
    CGuardedDic dic(world);
    for (std::string const& str : NoiseOfManyLengths(random)) {
        CGuardedBytes const text(str, CGuardedBytes::ReadOnly);
        std::vector<tagADDR> vAddr;
        ASSERT_EQ(dic.GetAddrFromAddrPart(text.Text(), vAddr), 1);
        ASSERT_LE(vAddr.size(), 2 * world.vNode.size() + 1);
        for (tagADDR const& addr : vAddr)
            ASSERT_TRUE(addr.pszPref == dic.Name(world.nTokyo) || addr.pszPref == dic.Name(world.nHiroshima));
        ASSERT_LT(dic.SearchCity(text.Text()), 4);
    }
}

// The blank removal by its rule: a byte-by-byte copy.
std::string WithoutBlanks(std::string const& str) {
    std::string strOut;
    for (size_t n = 0; n < str.size(); ++n) {
        if (str[n] == ' ' || str[n] == ',') continue;
        if (str.compare(n, 2, "\xE3\x80") == 0)
            ++n;
        else
            strOut += str[n];
    }
    return strOut;
}

TEST(NoisyText, LosesItsBlanks) {
    CRandom random = Seeded(20261125);
    CAddrDic dic;
    for (std::string const& str : NoiseOfManyLengths(random)) {
        CGuardedBytes const text(str, CGuardedBytes::Writable);
        dic.EraseBlank(text.Text());
        ASSERT_EQ(text.Text(), WithoutBlanks(str));
    }
}

TEST(NoisyText, IsAnOrganisationsNameOrNot) {
    CRandom random = Seeded(20261126);
    CTextWorld const world;
    CGuardedDic dic(world);
    for (std::string const& str : NoiseOfManyLengths(random)) {
        CGuardedBytes const name(str, CGuardedBytes::Writable);
        int const nPos = dic.SearchInc(name.Text());
        ASSERT_GE(nPos, -1);
        ASSERT_LT(nPos, 4);
        std::string const strLeft = name.Text(), strBlank = WithoutBlanks(str);
        ASSERT_THAT(strBlank, testing::AnyOf(testing::StartsWith(strLeft), testing::EndsWith(strLeft)));
        ASSERT_EQ(nPos >= 0, !str.empty() && (strLeft.empty() || std::string("テスト商事").rfind(strLeft, 0) == 0 ||
                                              std::string("港商会").rfind(strLeft, 0) == 0));
    }
}

TEST(NoisyText, HasACodeOrNotWithNoisyOrganisations) {
    CRandom random = Seeded(20261127);
    CTextWorld const world;
    CGuardedDic dic(world);
    std::vector<std::string> vName = {"",
                                      " ",
                                      " , ",
                                      "　",
                                      "株式会社",
                                      "（社）",
                                      " 医療法人 ",
                                      "独立行政法人",
                                      "株式会社株式会社",
                                      std::string(100000, ' '),
                                      std::string(65535, ',') + "テスト"};
    for (std::string const& str : NoiseOfManyLengths(random)) {
        CGuardedBytes const text(str, CGuardedBytes::ReadOnly);
        std::string const& strName =
            random() % 2 == 0 ? vName[Below(random, vName.size())] : Noise(random, Below(random, 40));
        CGuardedBytes const name(strName, CGuardedBytes::Writable);
        tagADDR plain(0), addr(0);
        ASSERT_EQ(dic.GetPostCodeFromAddr(text.Text(), nullptr, plain), 1);
        ASSERT_EQ(dic.GetPostCodeFromAddr(text.Text(), name.Text(), addr), 1);
        plain.pszPostCode = addr.pszPostCode;
        plain.pszCodeExt = addr.pszCodeExt;
        ASSERT_EQ(Fields(addr), Fields(plain)) << "an organisation replaces the codes alone";
    }
}

// --- images --------------------------------------------------------------------------------------------------------

// A walk that does not come to an end takes all memory: better the test program ends.
class NoisyImage : public testing::Test {
  protected:
    void SetUp() override { alarm(60); } // seconds; under the sanitizers they take some of them
    void TearDown() override { alarm(0); }
};

// Every call of the text analysis; the answers are thrown away.
void AskEverything(CAddrDic& dic, size_t nNodes) {
    static volatile size_t nRead; // keeps the reading
    static char const* const apszText[] = {
        "",
        "東京",
        "東京都",
        "東京都千代田区",
        "東京都千代田区丸の内２丁目",
        "東京都千代田区旧町",
        "旧町",
        "府中市",
        "府",
        "港区芝１丁目",
        "丸の内",
        "広島県府中市元町",
        "\xE5",
        "無県",
    };
    for (char const* psz : apszText) {
        tagADDR addr(0);
        std::vector<tagADDR> vAddr;
        ASSERT_TRUE(dic.DivideAddr(psz, &addr));
        addr = tagADDR(0);
        dic.GetLatestAddr(psz, addr);
        ASSERT_EQ(dic.GetAddrFromAddrPart(psz, vAddr), 1);
        dic.GetPrefFromPart(psz, vAddr);
        dic.GetCityFromPart(psz, vAddr);
        dic.SearchCity(psz);
        for (char const* pszName : {"テスト", "株式会社", "港商会", " ", "x", ""}) {
            char szName[64];
            std::strcpy(szName, pszName);
            dic.GetPostCodeFromAddr(psz, szName, addr);
            std::strcpy(szName, pszName);
            dic.SearchInc(szName);
        }
        for (unsigned long nParent : {0ul, 2ul, 6ul, static_cast<unsigned long>(nNodes), NO_NODE}) {
            char const* pszCursor = psz;
            dic.SeparateCity(&pszCursor, nParent, addr);
            dic.SeparateTown(&pszCursor, nParent, addr);
        }
        vAddr.push_back(addr);
        dic.GetLatestAddr(psz, vAddr.back());
        // Texts that are given out end inside the image.
        for (tagADDR const& found : vAddr)
            for (auto const& field : Fields(found))
                if (field.second != nullptr && field.first.rfind("psz", 0) == 0)
                    nRead = nRead + std::strlen(static_cast<char const*>(field.second));
    }
    char szBuffer[4096];
    for (unsigned long n = 0; n < nNodes; ++n) {
        std::vector<tagADDR> vAddr;
        dic.recTraceNode(dic.GetAddrNode(n), tagADDR(0), vAddr);
        ASSERT_LE(vAddr.size(), nNodes);
        szBuffer[0] = '\0';
        dic.GetAfterCityName(dic.GetAddrNode(n), szBuffer);
    }
}

// A number that may be anything, but often nearly makes sense.
uint32_t AnyWord(CRandom& random, CTestImage const& image) {
    switch (random() % 6) {
    case 0:
        return static_cast<uint32_t>(random());
    case 1:
        return 0xFFFFFFFF - random() % 4;
    case 2:
        return 0x80000000 + random() % 32;
    case 3:
        return static_cast<uint32_t>(image.strArea.size() - random() % 8);
    case 4:
        return static_cast<uint32_t>(Below(random, image.strArea.size()));
    default:
        return static_cast<uint32_t>(Below(random, image.vNode.size() + 2));
    }
}

void Damage(CRandom& random, CTestImage& image) {
    switch (random() % 10) {
    case 0:
        image.vNode[Below(random, image.vNode.size())].nLevel = static_cast<uint8_t>(random() % 10);
        break;
    case 1:
        image.vInfo[Below(random, image.vInfo.size())].nCode = AnyWord(random, image);
        break;
    case 2:
        image.vInfo[Below(random, image.vInfo.size())].nNode = AnyWord(random, image);
        break;
    case 3:
        image.vCityIndex[Below(random, image.vCityIndex.size())] = AnyWord(random, image);
        break;
    case 4:
        image.vOfficeIndex[Below(random, image.vOfficeIndex.size())] = AnyWord(random, image);
        break;
    default:
        uint32_t tagADDRNODE::*const apnField[] = {&tagADDRNODE::nName, &tagADDRNODE::nInfo, &tagADDRNODE::nParent,
                                                   &tagADDRNODE::nChildCount, &tagADDRNODE::nFirstChild};
        image.vNode[Below(random, image.vNode.size())].*apnField[Below(random, std::size(apnField))] =
            AnyWord(random, image);
    }
}

TEST_F(NoisyImage, SoundOneAnswersWithinItsBounds) {
    CTextWorld const world;
    CGuardedDic dic(world);
    AskEverything(dic, world.vNode.size());
}

TEST_F(NoisyImage, WithDamagedRecordsIsHarmless) {
    CRandom random = Seeded(20261128);
    for (int nRun = 0; nRun < 1500; ++nRun) {
        CTextWorld world;
        for (size_t n = 1 + Below(random, nRun % 3 == 0 ? 40 : 4); n > 0; --n) Damage(random, world);
        CGuardedDic dic(world);
        AskEverything(dic, world.vNode.size());
        if (HasFatalFailure()) FAIL() << "run " << nRun;
    }
}

TEST_F(NoisyImage, WithDamagedRecordsAndAStringAreaWithoutItsLastNulIsHarmless) {
    CRandom random = Seeded(20261129);
    for (int nRun = 0; nRun < 700; ++nRun) {
        CTextWorld world;
        world.strArea.resize(world.strArea.size() - 1 - Below(random, 12));
        if (world.strArea.back() == '\0') world.strArea.back() = 'x';
        for (size_t n = Below(random, 4); n > 0; --n) Damage(random, world);
        CGuardedDic dic(world);
        AskEverything(dic, world.vNode.size());
        if (HasFatalFailure()) FAIL() << "run " << nRun;
    }
}

TEST_F(NoisyImage, WithEveryWordOfEveryNodeSetToEachOtherNodeIsHarmless) {
    CTextWorld const sound;
    auto const nNodes = static_cast<uint32_t>(sound.vNode.size());
    for (uint32_t tagADDRNODE::*pnField :
         {&tagADDRNODE::nParent, &tagADDRNODE::nFirstChild, &tagADDRNODE::nChildCount})
        for (uint32_t nNode = 0; nNode < nNodes; ++nNode)
            for (uint32_t nWord = 0; nWord < nNodes; nWord += 3) {
                CTextWorld world;
                world.vNode[nNode].*pnField = nWord;
                CGuardedDic dic(world);
                AskEverything(dic, nNodes);
                if (HasFatalFailure()) FAIL() << nNode << " set to " << nWord;
            }
}

TEST_F(NoisyImage, WithRangesBeyondTheNodesIsHarmless) {
    for (uint32_t CTestImage::*pnWord : {&CTestImage::nFirstPref, &CTestImage::nPrefCount, &CTestImage::nFirstCity,
                                         &CTestImage::nFirstTown, &CTestImage::nTownCount})
        for (uint32_t nWord : {0u, 1u, 17u, 18u, 19u, 1000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
            CTextWorld world;
            world.*pnWord = nWord;
            CGuardedDic dic(world);
            AskEverything(dic, world.vNode.size());
        }
}

} // namespace
