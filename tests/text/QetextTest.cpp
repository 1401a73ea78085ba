// The C interface of the text layer: what it takes and refuses, and that it answers as the class does.
#include "text/qetext.h"
#include "tests/library/FaultMemory.h"
#include "tests/support/GuardedBytes.h"
#include "tests/support/SystemWatch.h"
#include "tests/support/TestImage.h"
#include "tests/support/TestProfile.h"
#include "tests/text/TextWorld.h"
#include "text/AddressText.h"
#include "text/FoldTable.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <tuple>

namespace {

// Two prefectures, a ward of 札幌市, a town of a county; 大通西 has its codes by town block.
CTestImage World() {
    CTestImage image;
    uint32_t const nHokkaido = image.AddNode(LEVEL_PREF, ADDR_NONE, "北海道");
    uint32_t const nTokyo = image.AddNode(LEVEL_PREF, ADDR_NONE, "東京都");
    uint32_t const nChuo = image.AddNode(LEVEL_CITY, nHokkaido, "札幌市中央区");
    uint32_t const nYoichi = image.AddNode(LEVEL_CITY, nHokkaido, "余市郡余市町");
    uint32_t const nChiyoda = image.AddNode(LEVEL_CITY, nTokyo, "千代田区");
    uint32_t const nAsahi = image.AddNode(LEVEL_TOWN, nChuo, "旭ケ丘");
    uint32_t const nOdori = image.AddNode(LEVEL_TOWN, nChuo, "大通西");
    uint32_t const nKurokawa = image.AddNode(LEVEL_TOWN, nYoichi, "黒川町");
    uint32_t const nMarunouchi = image.AddNode(LEVEL_TOWN, nChiyoda, "丸の内");
    uint32_t const nFirst = image.AddNode(LEVEL_AREA, nOdori, "１〜１９丁目");
    uint32_t const nSecond = image.AddNode(LEVEL_AREA, nOdori, "２０〜２８丁目");
    image.AddInfo(nKurokawa, "0460003", "046");
    image.AddInfo(nFirst, "0600042", "060");
    image.AddInfo(nSecond, "0640820", "064");
    image.AddInfo(nAsahi, "0640941", "064");
    image.AddInfo(nMarunouchi, "1000005", "100");
    image.Complete();
    return image;
}

// With what is looked at when a file is opened: the mark, the format, the size.
std::vector<unsigned char> AsFile(std::vector<unsigned char> vByte, uint32_t nFormat = 1) {
    auto const nSize = static_cast<uint32_t>(vByte.size());
    std::memcpy(&vByte[0], "QEADRS\x1A", 8);
    std::memcpy(&vByte[8], &nFormat, sizeof nFormat);
    std::memcpy(&vByte[20], &nSize, sizeof nSize);
    return vByte;
}

char const* const TEXTS[] = {
    "北海道札幌市中央区大通西２５丁目",
    "札幌市中央区大通西",
    "余市町 黒川町 1-2-3",
    "千代田区丸ノ内２丁目",
    "〒064-0941 札幌市中央区旭が丘",
    "北海道無い市",
    "東京都千代田区無い町",
    "どこでもない",
    "",
};

auto Fields(QETEXTPLACE const& place) {
    auto const Text = [](char const* psz) { return std::string(psz == nullptr ? "(none)" : psz); };
    return std::make_tuple(Text(place.pszPref), Text(place.pszCity), Text(place.pszTown), Text(place.pszArea),
                           Text(place.pszBuilding), Text(place.pszFloor), Text(place.pszPostCode),
                           Text(place.pszOldCode), place.nPref, place.nCity, place.nTown, place.nArea,
                           place.nBuilding, place.nFloor, place.nEntry);
}

// Every field of an answer, its candidates included.
void ExpectEqual(QETEXTREADING const& found, QETEXTREADING const& wanted) {
    EXPECT_EQ(Fields(found.place), Fields(wanted.place));
    EXPECT_EQ(Fields(found.latest), Fields(wanted.latest));
    EXPECT_EQ(std::tie(found.nSureness, found.nSupplied, found.nFoldings, found.nRemarks),
              std::tie(wanted.nSureness, wanted.nSupplied, wanted.nFoldings, wanted.nRemarks));
    for (auto pSpan : {&QETEXTREADING::code, &QETEXTREADING::pref, &QETEXTREADING::city, &QETEXTREADING::street,
                       &QETEXTREADING::town, &QETEXTREADING::area, &QETEXTREADING::building, &QETEXTREADING::floor,
                       &QETEXTREADING::rest})
        EXPECT_EQ(std::tie((found.*pSpan).nOffset, (found.*pSpan).nLength),
                  std::tie((wanted.*pSpan).nOffset, (wanted.*pSpan).nLength));
    ASSERT_EQ(found.nCandidate, wanted.nCandidate);
    for (size_t n = 0; n < found.nCandidate; ++n)
        EXPECT_EQ(Fields(found.pCandidate[n]), Fields(wanted.pCandidate[n])) << n;
}

QETEXTREADING Filled() {
    QETEXTREADING reading;
    std::memset(static_cast<void*>(&reading), 0x55, sizeof reading);
    return reading;
}
void ExpectEmpty(QETEXTREADING const& reading) {
    QETEXTREADING empty = {};
    for (QETEXTPLACE* const pPlace : {&empty.place, &empty.latest})
        pPlace->nPref = pPlace->nCity = pPlace->nTown = pPlace->nArea = pPlace->nBuilding = pPlace->nFloor =
            pPlace->nEntry = QETEXT_NONE;
    ExpectEqual(reading, empty);
    EXPECT_EQ(reading.pCandidate, nullptr);
}

class TextCalls : public testing::Test {
  protected:
    void SetUp() override { m_profile.WriteDictionary(AsFile(World().Bytes())); }
    void TearDown() override { QeTextClose(m_pText); }

    QETEXT* Text() {
        if (m_pText == nullptr) m_pText = QeTextOpen(m_profile.DictionaryPath().c_str(), nullptr);
        return m_pText;
    }
    // Opens a file that no reader takes; says with which error, and errno.
    static std::pair<int, int> Refusal(std::string const& strFile) {
        int nError = -1;
        errno = 0;
        EXPECT_EQ(QeTextOpen(strFile.c_str(), &nError), nullptr);
        int const nSystem = errno;
        EXPECT_EQ(QeTextOpen(strFile.c_str(), nullptr), nullptr);
        return {nError, nSystem};
    }
    int RefusalOf(std::vector<unsigned char> const& vByte) {
        m_profile.WriteDictionary(vByte);
        return Refusal(m_profile.DictionaryPath()).first;
    }

    CTestProfile m_profile;
    QETEXT* m_pText = nullptr;
};

TEST_F(TextCalls, OpenAFileAndAnImageAlike) {
    int nError = -1;
    m_pText = QeTextOpen(m_profile.DictionaryPath().c_str(), &nError);
    ASSERT_NE(m_pText, nullptr);
    EXPECT_EQ(nError, QETEXT_OK);
    CGuardedBytes const image(World().Bytes());
    nError = -1;
    QETEXT* const pOther = QeTextOpenImage(image.Data(), &nError);
    ASSERT_NE(pOther, nullptr);
    EXPECT_EQ(nError, QETEXT_OK);
    for (char const* const pszText : TEXTS) {
        QETEXTREADING reading = Filled(), other = Filled();
        EXPECT_EQ(QeTextRead(m_pText, pszText, std::strlen(pszText), 0, &reading), QETEXT_OK);
        EXPECT_EQ(QeTextRead(pOther, pszText, std::strlen(pszText), 0, &other), QETEXT_OK);
        ExpectEqual(reading, other);
    }
    QeTextClose(pOther);
}

TEST_F(TextCalls, ReadWhatTheClassReads) {
    ASSERT_NE(Text(), nullptr);
    std::vector<unsigned char> const vByte = World().Bytes();
    CAddrDic dic;
    dic.SetDictionary(vByte.data());
    qeadrs::CAddressText text(dic);
    for (char const* const pszText : TEXTS) {
        SCOPED_TRACE(pszText);
        QETEXTREADING reading = Filled();
        EXPECT_EQ(QeTextRead(m_pText, pszText, std::strlen(pszText), QETEXT_RENEW, &reading), QETEXT_OK);
        ExpectEqual(reading, text.Read(pszText, QETEXT_RENEW));
    }
    QETEXTREADING reading = Filled();
    ASSERT_EQ(QeTextRead(m_pText, TEXTS[0], std::strlen(TEXTS[0]), 0, &reading), QETEXT_OK);
    EXPECT_STREQ(reading.place.pszPostCode, "0640820");
    EXPECT_EQ(QeTextFoldingVersion(), qeadrs::FOLD_VERSION);
}

TEST_F(TextCalls, SayWhyAFileCannotBeOpened) {
    using testing::Pair;
    std::string const strFolder = m_profile.Folder();
    EXPECT_THAT(Refusal(strFolder + "/nothing.dic"), Pair(QETEXT_ERR_FILE, ENOENT));
    EXPECT_THAT(Refusal(""), Pair(QETEXT_ERR_FILE, ENOENT));
    EXPECT_THAT(Refusal(m_profile.DictionaryPath() + "/x"), Pair(QETEXT_ERR_FILE, ENOTDIR));
    EXPECT_THAT(Refusal(strFolder), Pair(QETEXT_ERR_FILE, EISDIR));
    std::string const strPipe = strFolder + "/pipe";
    ASSERT_EQ(mkfifo(strPipe.c_str(), 0600), 0);
    EXPECT_THAT(Refusal(strPipe), Pair(QETEXT_ERR_FILE, EINVAL));
    EXPECT_THAT(Refusal("/dev/null"), Pair(QETEXT_ERR_FILE, EINVAL));
    EXPECT_EQ(std::remove(strPipe.c_str()), 0);
    CSystemWatch watch;
    watch.Fail("mmap");
    EXPECT_THAT(Refusal(m_profile.DictionaryPath()), Pair(QETEXT_ERR_FILE, ENODEV));
    EXPECT_EQ(watch.Names().back(), "close") << "what was opened is closed";
}

TEST_F(TextCalls, RefuseWhatIsNoDictionaryAndANewerOne) {
    EXPECT_EQ(RefusalOf({}), QETEXT_ERR_FORMAT);
    EXPECT_EQ(RefusalOf(std::vector<unsigned char>(4096, 'x')), QETEXT_ERR_FORMAT);
    EXPECT_EQ(RefusalOf(AsFile(World().Bytes(), 2)), QETEXT_ERR_FORMAT);
    EXPECT_EQ(RefusalOf(AsFile(World().Bytes(), 0xFFFFFFFF)), QETEXT_ERR_FORMAT);
}

TEST_F(TextCalls, RefuseADictionaryCutAtEveryByte) {
    std::vector<unsigned char> vByte = AsFile(World().Bytes());
    std::string const strFile = m_profile.DictionaryPath();
    for (size_t nSize = vByte.size(); nSize-- > 0;) {
        ASSERT_EQ(truncate(strFile.c_str(), static_cast<off_t>(nSize)), 0);
        int nError = -1;
        ASSERT_EQ(QeTextOpen(strFile.c_str(), &nError), nullptr) << nSize << " bytes";
        ASSERT_EQ(nError, QETEXT_ERR_FORMAT) << nSize << " bytes";
    }
    // Even where the size that it tells is the one that it has: the texts are the last thing in it.
    for (size_t nSize = vByte.size() - 1; nSize >= 108; nSize -= 13) {
        vByte.resize(nSize);
        ASSERT_EQ(RefusalOf(AsFile(vByte)), QETEXT_ERR_FORMAT) << nSize << " bytes";
    }
}

TEST_F(TextCalls, RefuseNull) {
    ASSERT_NE(Text(), nullptr);
    int nError = -1;
    EXPECT_EQ(QeTextOpen(nullptr, &nError), nullptr);
    EXPECT_EQ(nError, QETEXT_ERR_ARGUMENT);
    nError = -1;
    EXPECT_EQ(QeTextOpenImage(nullptr, &nError), nullptr);
    EXPECT_EQ(nError, QETEXT_ERR_ARGUMENT);
    EXPECT_EQ(QeTextOpen(nullptr, nullptr), nullptr);
    EXPECT_EQ(QeTextOpenImage(nullptr, nullptr), nullptr);
    QeTextClose(nullptr);

    QETEXTREADING reading = Filled();
    EXPECT_EQ(QeTextRead(nullptr, "", 0, 0, &reading), QETEXT_ERR_ARGUMENT);
    ExpectEmpty(reading);
    reading = Filled();
    EXPECT_EQ(QeTextRead(m_pText, nullptr, 0, 0, &reading), QETEXT_ERR_ARGUMENT);
    ExpectEmpty(reading);
    EXPECT_EQ(QeTextRead(m_pText, "", 0, 0, nullptr), QETEXT_ERR_ARGUMENT);

    EXPECT_EQ(QeTextCanonical(nullptr, "", nullptr, 0), 0u);
    EXPECT_EQ(QeTextRead(m_pText, TEXTS[0], std::strlen(TEXTS[0]), 0, &reading), QETEXT_OK);
    EXPECT_EQ(QeTextCanonical(&reading, nullptr, nullptr, 0), 0u);
}

TEST_F(TextCalls, RefuseNullInABatchAndEmptyAllOfIt) {
    ASSERT_NE(Text(), nullptr);
    char const* apszText[] = {TEXTS[0], nullptr, TEXTS[2]};
    size_t const anSize[] = {std::strlen(TEXTS[0]), 0, std::strlen(TEXTS[2])};
    for (int nNull = 0; nNull < 4; ++nNull) {
        SCOPED_TRACE(nNull);
        QETEXTREADING aReading[] = {Filled(), Filled(), Filled()};
        apszText[1] = nNull == 3 ? nullptr : TEXTS[1];
        EXPECT_EQ(QeTextReadBatch(nNull == 0 ? nullptr : m_pText, nNull == 1 ? nullptr : apszText,
                                  nNull == 2 ? nullptr : anSize, 3, 0, aReading),
                  QETEXT_ERR_ARGUMENT);
        for (QETEXTREADING const& reading : aReading) ExpectEmpty(reading);
    }
    EXPECT_EQ(QeTextReadBatch(m_pText, apszText, anSize, 3, 0, nullptr), QETEXT_ERR_ARGUMENT);
    EXPECT_EQ(QeTextReadBatch(m_pText, nullptr, nullptr, 0, 0, nullptr), QETEXT_OK) << "no text is none too many";
    EXPECT_EQ(QeTextReadBatch(nullptr, nullptr, nullptr, 0, 0, nullptr), QETEXT_ERR_ARGUMENT);
}

TEST_F(TextCalls, ReadABatchAsTheyReadItsTextsOneByOne) {
    ASSERT_NE(Text(), nullptr);
    QETEXT* const pOther = QeTextOpen(m_profile.DictionaryPath().c_str(), nullptr);
    ASSERT_NE(pOther, nullptr);
    for (size_t const nCount :
         {1u, 2u, 7u, 100u, 1000u, 3u}) { // a small one behind a large one: nothing of that is left
        std::vector<char const*> vText;
        std::vector<size_t> vSize;
        for (size_t n = 0; n < nCount; ++n) vText.push_back(TEXTS[(n * 5 + nCount) % std::size(TEXTS)]);
        for (char const* const pszText : vText) vSize.push_back(std::strlen(pszText));
        std::vector<QETEXTREADING> vReading(nCount, Filled());
        ASSERT_EQ(QeTextReadBatch(m_pText, vText.data(), vSize.data(), nCount, QETEXT_RENEW, vReading.data()),
                  QETEXT_OK);
        for (size_t n = 0; n < nCount; ++n) {
            SCOPED_TRACE(vText[n]);
            QETEXTREADING single = Filled();
            ASSERT_EQ(QeTextRead(pOther, vText[n], vSize[n], QETEXT_RENEW, &single), QETEXT_OK);
            ExpectEqual(vReading[n], single);
        }
    }
    QeTextClose(pOther);
}

TEST_F(TextCalls, ReadTheBytesOfATextAndNoMore) {
    ASSERT_NE(Text(), nullptr);
    for (char const* const pszText : TEXTS) {
        std::string const strText = pszText;
        for (size_t nSize = 0; nSize <= strText.size(); ++nSize) { // within characters, too
            CGuardedBytes const guarded(strText.data(), nSize, CGuardedBytes::ReadOnly);
            char const* const pGuarded = guarded.Text();
            QETEXTREADING reading = Filled(), batch = Filled();
            ASSERT_EQ(QeTextRead(m_pText, pGuarded, nSize, 0, &reading), QETEXT_OK);
            EXPECT_LE(reading.rest.nOffset, nSize);
            EXPECT_EQ(reading.rest.nOffset + reading.rest.nLength, nSize) << strText << ' ' << nSize;
            char szCanonical[256];
            size_t const nLength = QeTextCanonical(&reading, pGuarded, szCanonical, sizeof szCanonical);
            if (nLength > 0) {
                EXPECT_EQ(std::string(szCanonical), qeadrs::CAddressText::Canonical(reading, {pGuarded, nSize}));
            }
            ASSERT_EQ(QeTextReadBatch(m_pText, &pGuarded, &nSize, 1, 0, &batch), QETEXT_OK);
            EXPECT_EQ(Fields(batch.place), Fields(reading.place));
        }
    }
}

TEST_F(TextCalls, WriteTheCanonicalTextWhereItFitsAndNothingElsewhere) {
    ASSERT_NE(Text(), nullptr);
    for (char const* const pszText : TEXTS) {
        SCOPED_TRACE(pszText);
        QETEXTREADING reading = Filled();
        ASSERT_EQ(QeTextRead(m_pText, pszText, std::strlen(pszText), 0, &reading), QETEXT_OK);
        std::string const strWanted = qeadrs::CAddressText::Canonical(reading, pszText);
        EXPECT_EQ(QeTextCanonical(&reading, pszText, nullptr, 0), strWanted.size()) << "only its length";
        EXPECT_EQ(QeTextCanonical(&reading, pszText, nullptr, 1000), strWanted.size());
        for (size_t nBuffer = 0; nBuffer <= strWanted.size() + 2; ++nBuffer) {
            std::string const strBefore(nBuffer, '\x55');
            CGuardedBytes const buffer(strBefore.data(), nBuffer, CGuardedBytes::Writable);
            EXPECT_EQ(QeTextCanonical(&reading, pszText, buffer.Text(), nBuffer), strWanted.size());
            bool const bWritten = !strWanted.empty() && nBuffer > strWanted.size();
            std::string strAfter = strBefore;
            if (bWritten) strAfter.replace(0, strWanted.size() + 1, strWanted.c_str(), strWanted.size() + 1);
            EXPECT_EQ(std::string(buffer.Text(), nBuffer), strAfter) << nBuffer;
        }
    }
    QETEXTREADING reading = Filled();
    char const szText[] = "余市町 黒川町 1-2-3";
    ASSERT_EQ(QeTextRead(m_pText, szText, std::strlen(szText), 0, &reading), QETEXT_OK);
    char szCanonical[64] = "";
    size_t const nLength = QeTextCanonical(&reading, szText, szCanonical, sizeof szCanonical);
    EXPECT_EQ(nLength, std::strlen(szCanonical));
    EXPECT_STREQ(szCanonical, "北海道余市郡余市町黒川町1-2-3");
}

TEST_F(TextCalls, SayWhenThereIsNoMemory) {
    std::string const strFile = m_profile.DictionaryPath();
    CTestImage const world = World();
    std::vector<unsigned char> const vByte = world.Bytes();
    long const nLive = memory.nLive;
    for (bool bImage : {false, true}) {
        for (long nAllowed = 0;; ++nAllowed) {
            CShortage shortage(nAllowed);
            int nError = -1;
            QETEXT* const pText =
                bImage ? QeTextOpenImage(vByte.data(), &nError) : QeTextOpen(strFile.c_str(), &nError);
            bool const bFailed = shortage.End();
            EXPECT_EQ(pText == nullptr, bFailed);
            EXPECT_EQ(nError, bFailed ? QETEXT_ERR_MEMORY : QETEXT_OK);
            QeTextClose(pText);
            EXPECT_EQ(memory.nLive, nLive) << "what was taken is given back";
            ASSERT_LT(nAllowed, 1000);
            if (!bFailed) break;
        }
    }
}

// A reader holds two folded texts and short lists; where the dictionary has an index, nothing of the dictionary is copied.
TEST_F(TextCalls, TakeLittleMemoryToOpenAndReadWhereThereIsAnIndex) {
    constexpr size_t MOST = 32 * 1024;
    CImageBytes const vPlain = WithIndex(TextRecords().Bytes(), {});
    CImageBytes const vWith = WithIndex(vPlain, IndexOf(vPlain));
    auto const TakenBy = [](CImageBytes const& vByte) {
        size_t const nBefore = memory.nTaken;
        QETEXT* const pText = QeTextOpenImage(vByte.data(), nullptr);
        QETEXTREADING reading;
        EXPECT_EQ(QeTextRead(pText, TEXTS[0], std::strlen(TEXTS[0]), 0, &reading), QETEXT_OK);
        QeTextClose(pText);
        return memory.nTaken - nBefore;
    };
    size_t const nWith = TakenBy(vWith), nWithout = TakenBy(vPlain);
    EXPECT_LT(nWith, MOST);
    EXPECT_GT(nWithout, nWith + IndexOf(vPlain).size()) << "the index is made at the first reading";
    EXPECT_LT(nWithout, MOST + 16 * vPlain.size()) << "in all that is taken, some of it given back on the way";
}

TEST_F(TextCalls, ReadOnAfterAReadingThatHadNoMemory) {
    for (bool bBatch : {false, true}) {
        bool bRan = true;
        for (long nAllowed = 0; bRan; ++nAllowed) {
            QETEXT* const pText = QeTextOpen(m_profile.DictionaryPath().c_str(), nullptr);
            ASSERT_NE(pText, nullptr);
            size_t const nSize = std::strlen(TEXTS[0]);
            QETEXTREADING reading = Filled();
            auto const Read = [&] {
                return bBatch ? QeTextReadBatch(pText, &TEXTS[0], &nSize, 1, QETEXT_RENEW, &reading)
                              : QeTextRead(pText, TEXTS[0], nSize, QETEXT_RENEW, &reading);
            };
            CShortage shortage(nAllowed);
            int const nStatus = Read();
            bRan = shortage.End();
            if (nStatus != QETEXT_OK) {
                EXPECT_EQ(nStatus, QETEXT_ERR_MEMORY);
                EXPECT_TRUE(bRan);
                ExpectEmpty(reading);
                EXPECT_EQ(Read(), QETEXT_OK);
            }
            EXPECT_STREQ(reading.place.pszPostCode, "0640820") << nAllowed;
            QeTextClose(pText);
            ASSERT_LT(nAllowed, 10000);
        }
    }
}

} // namespace
