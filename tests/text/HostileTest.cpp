// Whatever the text, and whatever stands in the place of an index: nothing is read outside of either, and no name is
// answered that the text does not hold.
#include "tests/text/TextPromises.h"
#include "tests/text/TextWorld.h"
#include "text/TextIndex.h"

#include <gmock/gmock.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <random>
#include <stdexcept>
#include <tuple>

namespace {

using qeadrs::CAddressText;
using CRandom = std::mt19937;

// Fixed, and printed so that a failure can be told from that of another test.
CRandom Seeded(unsigned nSeed) {
    std::printf("seed %u\n", nSeed);
    return CRandom(nSeed);
}

size_t Below(CRandom& random, size_t n) {
    return random() % n;
}

// Bytes that end with their page, the next one cannot be touched; used again and again.
class CGuarded {
  public:
    explicit CGuarded(size_t nMost) : m_nPage(static_cast<size_t>(sysconf(_SC_PAGESIZE))) {
        m_nUsable = (nMost + m_nPage - 1) / m_nPage * m_nPage;
        m_p = static_cast<unsigned char*>(
            mmap(nullptr, m_nUsable + m_nPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        if (m_p == MAP_FAILED || mprotect(m_p + m_nUsable, m_nPage, PROT_NONE) != 0)
            throw std::runtime_error("no memory before a guard page");
    }
    ~CGuarded() { munmap(m_p, m_nUsable + m_nPage); }
    CGuarded(CGuarded const&) = delete;
    CGuarded& operator=(CGuarded const&) = delete;

    unsigned char* Put(void const* p, size_t nSize) {
        if (nSize > m_nUsable) throw std::length_error("no room before the guard page");
        unsigned char* const pTo = m_p + m_nUsable - nSize;
        if (nSize != 0) std::memcpy(pTo, p, nSize);
        return pTo;
    }
    std::string_view Put(std::string_view str) {
        return {reinterpret_cast<char const*>(Put(str.data(), str.size())), str.size()};
    }

  private:
    size_t m_nPage, m_nUsable;
    unsigned char* m_p;
};

void ExpectSupported(QETEXTREADING const& reading, std::string_view strText, CAddrDic const& dic,
                     std::string const& strWhat) {
    std::string const strBroken = BrokenPromise(reading, strText, dic);
    EXPECT_EQ(strBroken, "") << strWhat << ": \"" << strText << '"';
}

// A reader over an image, and texts before a page that cannot be touched.
class CHostile {
  public:
    explicit CHostile(CImageBytes const& vByte) : m_image(vByte.size()) {
        m_dic.SetDictionary(m_image.Put(vByte.data(), vByte.size()));
        m_pText = std::make_unique<CAddressText>(m_dic);
    }
    bool HasIndex() const { return m_pText->HasIndex(); }

    void Try(std::string_view strText, std::string const& strWhat) {
        static CGuarded guarded(1 << 20);
        std::string_view const strGuarded = guarded.Put(strText);
        ExpectSupported(m_pText->Read(strGuarded, m_nOptions), strGuarded, m_dic, strWhat);
        m_nOptions ^= QETEXT_RENEW;
    }
    // The other two ways to read: the same, and as well.
    void TryAll(std::string_view strText, std::string const& strWhat) {
        Try(strText, strWhat);
        QETEXTREADING const reading = m_pText->Read(strText);
        QETEXTREADING batched;
        m_pText->ReadBatch(&strText, 1, &batched);
        EXPECT_EQ(batched.place.nTown, reading.place.nTown) << strText;
        EXPECT_EQ(batched.nSureness, reading.nSureness) << strText;
        std::vector<qeadrs::CTextStep> vStep;
        EXPECT_EQ(m_pText->Explain(strText, vStep).nSureness, reading.nSureness) << strText;
        for (qeadrs::CTextStep const& step : vStep) EXPECT_TRUE(LiesIn(strText, step.span)) << strText;
    }

  private:
    CGuarded m_image;
    CAddrDic m_dic;
    std::unique_ptr<CAddressText> m_pText;
    uint32_t m_nOptions = 0;
};

constexpr uint32_t WORD_VALUES[] = {0, 1, 2, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF};

class HostileIndex : public testing::Test {
  protected:
    // As many of the texts, others each time.
    void TrySome(CImageBytes const& vIndex, size_t nTexts, std::string const& strWhat) {
        CHostile hostile(WithIndex(m_vPlain, vIndex));
        ++(hostile.HasIndex() ? m_nBound : m_nRefused);
        if (!hostile.HasIndex()) return; // another one would be made, as sound as any
        for (size_t n = 0; n < nTexts; ++n, m_nNext += 7) hostile.Try(m_vText[m_nNext % m_vText.size()], strWhat);
    }

    CImageBytes const m_vPlain = WithIndex(TextRecords().Bytes(), {});
    CImageBytes const m_vIndex = IndexOf(m_vPlain);
    std::vector<std::string> const m_vText = Texts();
    size_t m_nNext = 0, m_nBound = 0, m_nRefused = 0;
};

std::string Where(size_t nOffset, uint32_t nValue) {
    return "index[" + std::to_string(nOffset) + "] = " + std::to_string(nValue);
}

void SetIndexWord(CImageBytes& vIndex, size_t nOffset, uint32_t nValue) {
    std::memcpy(vIndex.data() + nOffset, &nValue, sizeof nValue);
}

uint32_t IndexWord(CImageBytes const& vIndex, size_t nOffset) {
    return ReadWord(vIndex.data() + nOffset);
}

} // namespace

// --- damaged indexes -----------------------------------------------------------------------------------------------

TEST_F(HostileIndex, SoundOnesServeAndEachTextHasAnAnswerThatItSupports) {
    CHostile hostile(WithIndex(m_vPlain, m_vIndex));
    ASSERT_TRUE(hostile.HasIndex());
    for (std::string const& strText : m_vText) hostile.TryAll(strText, "sound");
    EXPECT_GT(m_vText.size(), 500u);
}

TEST_F(HostileIndex, DamagedInAnyByteTheyAnswerNoNameThatTheTextLacks) {
    CRandom random = Seeded(20260901);
    for (size_t n = 0; n < m_vIndex.size(); ++n) {
        CImageBytes vIndex = m_vIndex;
        vIndex[n] = static_cast<unsigned char>(vIndex[n] ^ (1 + Below(random, 255)));
        TrySome(vIndex, 2, Where(n, vIndex[n]));
    }
    EXPECT_GT(m_nBound, 100u);
    EXPECT_GT(m_nRefused, 10u);
}

TEST_F(HostileIndex, DamagedInAnyWordTheyAnswerNoNameThatTheTextLacks) {
    CRandom random = Seeded(20260902);
    for (size_t n = 0; n + 4 <= m_vIndex.size(); n += 4) {
        CImageBytes vIndex = m_vIndex;
        // Numbers at the bounds, or that of another place: slots then lead to other nodes, circles among them.
        SetIndexWord(vIndex, n,
                     random() % 2 == 0 ? WORD_VALUES[Below(random, std::size(WORD_VALUES))]
                                       : IndexWord(m_vIndex, Below(random, m_vIndex.size() / 4) * 4));
        TrySome(vIndex, 6, Where(n, IndexWord(vIndex, n)));
    }
    EXPECT_GT(m_nBound, 100u);
}

// Sections that overlap, lie in the header, begin at each other's places or end behind the end.
TEST_F(HostileIndex, WithAnyHeaderTheyAnswerNoNameThatTheTextLacks) {
    constexpr size_t HEADER_WORDS = 32;
    std::vector<uint32_t> vValue(std::begin(WORD_VALUES), std::end(WORD_VALUES));
    for (size_t n = 0; n < HEADER_WORDS; ++n) {
        uint32_t const nWord = IndexWord(m_vIndex, 4 * n);
        for (uint32_t const nValue : {nWord - 4, nWord - 1, nWord, nWord + 1, nWord + 4, nWord * 2, nWord / 2})
            vValue.push_back(nValue);
    }
    auto const nSize = static_cast<uint32_t>(m_vIndex.size());
    for (uint32_t const nValue : {nSize - 8, nSize - 4, nSize - 1, nSize, nSize + 1, nSize + 4})
        vValue.push_back(nValue);
    std::sort(vValue.begin(), vValue.end());
    vValue.erase(std::unique(vValue.begin(), vValue.end()), vValue.end());
    for (size_t n = 0; n < HEADER_WORDS; ++n)
        for (uint32_t const nValue : vValue) {
            CImageBytes vIndex = m_vIndex;
            SetIndexWord(vIndex, 4 * n, nValue);
            TrySome(vIndex, 2, Where(4 * n, nValue));
        }
    EXPECT_GT(m_nBound, 100u);
    EXPECT_GT(m_nRefused, 100u);
}

TEST_F(HostileIndex, DamagedInManyPlacesTheyAnswerNoNameThatTheTextLacks) {
    CRandom random = Seeded(20260903);
    for (int nRound = 0; nRound < 200; ++nRound) {
        CImageBytes vIndex = m_vIndex;
        for (size_t n = 1 + Below(random, 64); n > 0; --n)
            SetIndexWord(vIndex, (HDR_WORDS + Below(random, vIndex.size() / 4 - HDR_WORDS)) * 4,
                         random() % 2 == 0 ? static_cast<uint32_t>(random())
                                           : IndexWord(m_vIndex, Below(random, vIndex.size() / 4) * 4));
        TrySome(vIndex, 20, "round " + std::to_string(nRound));
    }
    EXPECT_GT(m_nBound, 150u);
}

// Slots that lead to other names than those whose hashes they have: the first way to a name that the text lacks.
TEST_F(HostileIndex, WithSlotsThatLeadElsewhereTheyAnswerNoNameThatTheTextLacks) {
    CRandom random = Seeded(20260906);
    using qeadrs::tagTEXTSLOT;
    size_t const nCitySlots = size_t{1} << IndexWord(m_vIndex, 4 * qeadrs::TXT_CITY_BITS);
    for (auto const& [nSection, nSlots] :
         {std::pair<unsigned, size_t>(qeadrs::TXT_CITY_SLOTS, nCitySlots),
          {qeadrs::TXT_TOWN_SLOTS, IndexWord(m_vIndex, 4 * qeadrs::TXT_TOWN_COUNT)}}) {
        std::vector<size_t> vValue; // offsets of the values of slots that are taken
        for (size_t n = 0; n < nSlots; ++n) {
            size_t const nOffset =
                IndexWord(m_vIndex, 4 * nSection) + n * sizeof(tagTEXTSLOT) + offsetof(tagTEXTSLOT, nValue);
            if (IndexWord(m_vIndex, nOffset) != qeadrs::TEXT_FREE) vValue.push_back(nOffset);
        }
        ASSERT_GT(vValue.size(), 20u);
        for (int nRound = 0; nRound < 10; ++nRound) {
            CImageBytes vIndex = m_vIndex;
            // Neighbours are mostly those of one city.
            size_t const nDistance = 1 + Below(random, vValue.size() / 4);
            for (size_t n = 0; n < vValue.size(); ++n)
                SetIndexWord(vIndex, vValue[n], IndexWord(m_vIndex, vValue[(n + nDistance) % vValue.size()]));
            TrySome(vIndex, m_vText.size(), "moved by " + std::to_string(nDistance));
        }
    }
    EXPECT_EQ(m_nBound, 20u);
}

// Cities with the tables of others, and rules of other subdivisions.
TEST_F(HostileIndex, WithRecordsThatBelongElsewhereTheyAnswerNoNameThatTheTextLacks) {
    CRandom random = Seeded(20260907);
    for (auto const& [nSection, nCount, nSize] :
         {std::tuple<unsigned, unsigned, size_t>(qeadrs::TXT_CITIES, qeadrs::TXT_CITY_COUNT,
                                                 sizeof(qeadrs::tagTEXTCITY)),
          {qeadrs::TXT_RULES, qeadrs::TXT_RULE_COUNT, sizeof(qeadrs::tagAREARULE)}}) {
        size_t const nWords = nSize / 4, nRecords = IndexWord(m_vIndex, 4 * nCount);
        ASSERT_GT(nRecords, 10u);
        for (int nRound = 0; nRound < 10; ++nRound) {
            CImageBytes vIndex = m_vIndex;
            for (size_t n = 0; n < nRecords; ++n) {
                // One word of another record, or all of it.
                size_t const nFrom = Below(random, nRecords), nWord = Below(random, nWords);
                for (size_t i = 0; i < nWords; ++i)
                    if (nRound % 2 == 0 || i == nWord)
                        SetIndexWord(vIndex, IndexWord(m_vIndex, 4 * nSection) + n * nSize + 4 * i,
                                     IndexWord(m_vIndex, IndexWord(m_vIndex, 4 * nSection) + nFrom * nSize + 4 * i));
            }
            TrySome(vIndex, m_vText.size(), "round " + std::to_string(nRound));
        }
    }
    EXPECT_EQ(m_nBound, 20u);
}

TEST_F(HostileIndex, FilledWithOneByteTheyAnswerNoNameThatTheTextLacks) {
    for (int const nByte : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
        // All of it, and all but a header of so many bytes.
        for (size_t nKept = 0; nKept <= 256; nKept += 8) {
            CImageBytes vIndex = m_vIndex;
            std::fill(vIndex.begin() + static_cast<std::ptrdiff_t>(nKept), vIndex.end(),
                      static_cast<unsigned char>(nByte));
            TrySome(vIndex, 100, "filled from " + std::to_string(nKept) + " on with " + std::to_string(nByte));
        }
    }
    EXPECT_GT(m_nBound, 10u);
    EXPECT_GT(m_nRefused, 10u);
}

// The file ends where the index is cut: what lies behind cannot be touched. With its own size and with the right one.
TEST_F(HostileIndex, CutAnywhereTheyAreRefusedOrReadNoFurther) {
    constexpr size_t SIZE_WORD = 8;
    for (size_t n = 0; n < m_vIndex.size(); ++n) {
        CImageBytes vIndex(m_vIndex.begin(), m_vIndex.begin() + static_cast<std::ptrdiff_t>(n));
        CHostile hostile(WithIndex(m_vPlain, vIndex));
        EXPECT_FALSE(hostile.HasIndex()) << n;
        if (n % 64 == 0) hostile.Try(m_vText[n % m_vText.size()], "cut at " + std::to_string(n));
        if (n < SIZE_WORD + 4) continue;
        SetIndexWord(vIndex, SIZE_WORD, static_cast<uint32_t>(n));
        TrySome(vIndex, 3, "cut at " + std::to_string(n) + ", with the size");
    }
    EXPECT_GT(m_nRefused, 100u);
}

// A reader without an index makes one.
TEST_F(HostileIndex, WithoutOneTheAnswersAreTheSame) {
    CAddrDic dicOne, dicOther;
    CImageBytes const vWith = WithIndex(m_vPlain, m_vIndex);
    dicOne.SetDictionary(vWith.data());
    dicOther.SetDictionary(m_vPlain.data());
    CAddressText one(dicOne), other(dicOther);
    ASSERT_TRUE(one.HasIndex());
    ASSERT_FALSE(other.HasIndex());
    for (std::string const& strText : m_vText) {
        QETEXTREADING const a = one.Read(strText), b = other.Read(strText);
        EXPECT_EQ(a.place.nTown, b.place.nTown) << strText;
        EXPECT_EQ(a.place.nEntry, b.place.nEntry) << strText;
        EXPECT_EQ(a.nSureness, b.nSureness) << strText;
        EXPECT_EQ(a.nCandidate, b.nCandidate) << strText;
    }
}

// --- texts ---------------------------------------------------------------------------------------------------------

class HostileText : public testing::Test {
  protected:
    CHostile m_hostile{TextImage()};
    std::vector<std::string> const m_vText = Texts();
};

TEST_F(HostileText, CutAtAnyByteIsReadAsFarAsItGoes) {
    for (size_t n = 0; n < m_vText.size(); n += 5)
        for (size_t nEnd = 0; nEnd <= m_vText[n].size(); ++nEnd) {
            m_hostile.Try(std::string_view(m_vText[n]).substr(0, nEnd), "cut at " + std::to_string(nEnd));
            m_hostile.Try(std::string_view(m_vText[n]).substr(nEnd), "cut in front at " + std::to_string(nEnd));
        }
}

TEST_F(HostileText, EndingWithinACharacterOrANumberIsReadAsFarAsItGoes) {
    for (size_t n = 0; n < m_vText.size(); n += 2)
        for (char const* const pszEnd :
             {"\xE4", "\xE4\xB8", "\xF0\xA0\xAE", "\xF0", "\xC2", "一", "十",         "二十",
              "〇",   "１",       "－",           "ー",   "第",   "大", "大字",       "か\u3099",
              "ｶ",    "々",       "\uFE00",       "〒",   "〒1",  "（", "\U000E0100", "\U00020BB7"})
            m_hostile.Try(m_vText[n] + pszEnd, "with an end");
}

TEST_F(HostileText, OfRandomBytesHasNoNameThatItLacks) {
    CRandom random = Seeded(20260904);
    for (int nRound = 0; nRound < 2000; ++nRound) {
        std::string strText(Below(random, 64), '\0');
        for (char& c : strText) c = static_cast<char>(random());
        m_hostile.Try(strText, "random");
    }
}

// Parts of addresses behind each other in any order, with bytes changed, in all three ways of reading.
TEST_F(HostileText, OfAddressesInPiecesHasNoNameThatItLacks) {
    static char const* const PIECE[] = {
        "北海道", "東京", "京都",   "府中市",       "府中",     "青葉区", "札幌市",     "中央区", "余市町", "大通西",
        "大",     "字",   "小字",   "々",           "一",       "十",     "百",         "２１",   "丁目",   "番地",
        "の",     "之",   "ヶ",     "が",           "か\u3099", "旭",     "丘",         "　",     " ",      "-",
        "ー",     "〜",   "〒",     "100",          "0005",     "上る",   "通",         "アエル", "ｱｴﾙ",    "２０階",
        "（",     "）",   "「",     "」",           "、",       "・",     "\xFF",       "\xE5",   "葛巻",   "地割",
        "第",     "４０", "その他", "西ノ京桑原町", "佐々良木", "\uFE00", "\U000E0100", "澤"};
    CRandom random = Seeded(20260905);
    for (int nRound = 0; nRound < 6000; ++nRound) {
        std::string strText = random() % 2 == 0 ? m_vText[Below(random, m_vText.size())] : "";
        for (size_t n = Below(random, 12); n > 0; --n) {
            // Anywhere, between characters mostly.
            size_t nPos = Below(random, strText.size() + 1);
            while (random() % 16 != 0 && nPos < strText.size() && (strText[nPos] & 0xC0) == 0x80) ++nPos;
            strText.insert(nPos, PIECE[Below(random, std::size(PIECE))]);
        }
        if (!strText.empty() && random() % 4 == 0)
            strText[Below(random, strText.size())] = static_cast<char>(random());
        if (nRound % 8 == 0)
            m_hostile.TryAll(strText, "pieces");
        else
            m_hostile.Try(strText, "pieces");
    }
}

TEST_F(HostileText, OfNothingHasNoAnswer) {
    CImageBytes const vByte = TextImage();
    CAddrDic dic;
    dic.SetDictionary(vByte.data());
    CAddressText text(dic);
    for (std::string_view const strText :
         {std::string_view(), std::string_view(""), std::string_view(" 　\n"), std::string_view("\0\0", 2),
          std::string_view("字"), std::string_view("〒")}) {
        QETEXTREADING const reading = text.Read(strText);
        EXPECT_EQ(reading.nSureness, uint32_t{QETEXT_NOTHING}) << strText;
        EXPECT_EQ(reading.nCandidate, 0u) << strText;
        EXPECT_EQ(CAddressText::Canonical(reading, strText), "") << strText;
    }
    text.ReadBatch(nullptr, 0, nullptr);
}

TEST_F(HostileText, OfADictionaryWithoutAnImageHasNoAnswer) {
    CAddrDic const dic;
    CAddressText text(dic);
    for (std::string const& strText : m_vText) EXPECT_EQ(text.Read(strText).nSureness, uint32_t{QETEXT_NOTHING});
}
