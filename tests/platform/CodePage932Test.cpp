// Code page 932: every byte and every two-byte code, against the system's own converter.
#include "platform/Win32Compat.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <cstdio>
#include <iconv.h>
#include <map>
#include <random>
#include <string>

namespace {

// Code page 932 as the system's converter knows it.
class Converter {
  public:
    Converter() : m_cd(iconv_open("UTF-32LE", "CP932")) {}
    ~Converter() {
        if (IsOpen()) iconv_close(m_cd);
    }
    Converter(Converter const&) = delete;
    Converter& operator=(Converter const&) = delete;

    bool IsOpen() const { return m_cd != reinterpret_cast<iconv_t>(-1); }

    // The Unicode character that exactly these bytes stand for; 0 when they are not one character.
    uint32_t Decode(std::string strBytes) {
        unsigned char out[8] = {};
        char* pIn = strBytes.data();
        char* pOut = reinterpret_cast<char*>(out);
        size_t nIn = strBytes.size();
        size_t nOut = sizeof out;
        iconv(m_cd, nullptr, nullptr, nullptr, nullptr);
        if (iconv(m_cd, &pIn, &nIn, &pOut, &nOut) != 0 || nIn != 0 || nOut != sizeof out - 4) return 0;
        return uint32_t{out[0]} | uint32_t{out[1]} << 8 | uint32_t{out[2]} << 16 | uint32_t{out[3]} << 24;
    }

  private:
    iconv_t m_cd;
};

std::string Byte(unsigned int c) {
    return std::string(1, static_cast<char>(c));
}

std::string TwoBytes(unsigned int c) {
    return Byte(c >> 8) + Byte(c & 0xFF);
}

// The usual width of each half-width form, U+FF61 to U+FF9F in order.
constexpr char32_t kana_partner[] = U"。「」、・ヲァィゥェォャュョッーアイウエオカキクケコサシスセソタチツテト"
                                    U"ナニヌネノハヒフヘホマミムメモヤユヨラリルレロワン゛゜";
static_assert(sizeof kana_partner / sizeof kana_partner[0] == 0xFF9F - 0xFF61 + 2, "one partner each, and the end");

// Signs that are not the wide form of an ASCII one by their Unicode value, but stand for one in Japanese text.
std::map<uint32_t, unsigned int> const mapSign = {
    {U'’', '\''}, {U'”', '"'}, {U'￥', '\\'}, {U'￣', '~'}, {U'　', ' '},
};

// The single-byte code page 932 form of a Unicode character, 0 when there is none.
unsigned int SingleByteOf(uint32_t nChar) {
    if (nChar >= 0xFF01 && nChar <= 0xFF5E) return nChar - 0xFF01 + '!';
    auto it = mapSign.find(nChar);
    if (it != mapSign.end()) return it->second;
    for (unsigned int n = 0; kana_partner[n]; ++n) {
        if (kana_partner[n] == nChar) return 0xA1 + n;
    }
    return 0;
}

TEST(CodePage932, ByteTypesAreTheDocumentedRangesForEveryByte) {
    for (unsigned int c = 0; c < 256; ++c) {
        bool bSingle = (c >= 0x20 && c <= 0x7E) || (c >= 0xA1 && c <= 0xDF);
        bool bLead = (c >= 0x81 && c <= 0x9F) || (c >= 0xE0 && c <= 0xFC);
        EXPECT_EQ(_mbbtype(static_cast<unsigned char>(c), 0), bSingle ? 0 : bLead ? 1 : -1) << c;
        bool bTrail = (c >= 0x40 && c <= 0x7E) || (c >= 0x80 && c <= 0xFC);
        EXPECT_EQ(_mbbtype(static_cast<unsigned char>(c), 1), bTrail ? 2 : -1) << c;
    }
}

TEST(CodePage932, OnlyALeadByteBeforeAsksForATrailByte) {
    for (unsigned int c = 0; c < 256; ++c) {
        unsigned char cByte = static_cast<unsigned char>(c);
        for (int nType : {-1, 2, 3, -2, 4, 255, 256, 257, INT32_MAX, INT32_MIN}) {
            EXPECT_EQ(_mbbtype(cByte, nType), _mbbtype(cByte, 0)) << c << " " << nType;
        }
    }
}

TEST(CodePage932, ByteTypesAgreeWithTheSystemsConverter) {
    Converter converter;
    ASSERT_TRUE(converter.IsOpen()) << "this system has no CP932 converter";
    for (unsigned int c = 0x20; c < 256; ++c) {
        if (c == 0x7F || c == 0x80 || c == 0xA0 || c >= 0xFD) continue; // no characters, though some map to controls
        bool bSingle = converter.Decode(Byte(c)) != 0;
        EXPECT_EQ(_mbbtype(static_cast<unsigned char>(c), 0), bSingle ? _MBC_SINGLE : _MBC_LEAD) << c;
    }
    // Every character of two bytes is made of what we call a lead and a trail byte.
    for (unsigned int c = 0x100; c <= 0xFFFF; ++c) {
        if (converter.Decode(Byte(c >> 8)) != 0 || converter.Decode(TwoBytes(c)) == 0) continue;
        EXPECT_EQ(_mbbtype(static_cast<unsigned char>(c >> 8), 0), _MBC_LEAD) << std::hex << c;
        EXPECT_EQ(_mbbtype(static_cast<unsigned char>(c & 0xFF), 1), _MBC_TRAIL) << std::hex << c;
    }
}

TEST(CodePage932, SingleByteFormsAgreeWithTheSystemsConverterForEveryCode) {
    Converter converter;
    ASSERT_TRUE(converter.IsOpen()) << "this system has no CP932 converter";
    unsigned int nConverted = 0;
    for (unsigned int c = 0; c <= 0xFFFF; ++c) {
        // A code below 0x100, or one that begins with a whole character, is no character of two bytes.
        bool bTwo = c >= 0x100 && _mbbtype(static_cast<unsigned char>(c >> 8), 0) == _MBC_LEAD;
        unsigned int nSingle = bTwo ? SingleByteOf(converter.Decode(TwoBytes(c))) : 0;
        EXPECT_EQ(_mbctombb(c), nSingle ? nSingle : c) << std::hex << c;
        if (nSingle) ++nConverted;
    }
    // 94 wide ASCII characters, two of them in two places each; 63 kana and their punctuation; 5 signs.
    EXPECT_EQ(nConverted, 94u + 2u + 63u + 5u);
}

TEST(CodePage932, AConvertedCodeIsTheSameCharacterInHalfWidth) {
    Converter converter;
    ASSERT_TRUE(converter.IsOpen()) << "this system has no CP932 converter";
    for (unsigned int c = 0x8140; c <= 0xFCFC; ++c) {
        unsigned int nSingle = _mbctombb(c);
        if (nSingle == c) continue;
        uint32_t nWide = converter.Decode(TwoBytes(c));
        uint32_t nHalf = converter.Decode(Byte(nSingle));
        if (nHalf >= 0xFF61 && nHalf <= 0xFF9F) {
            EXPECT_EQ(nWide, uint32_t{kana_partner[nHalf - 0xFF61]}) << std::hex << c;
        } else if (!mapSign.count(nWide)) {
            EXPECT_EQ(nWide - 0xFF00, nHalf - 0x20) << std::hex << c;
        }
    }
}

TEST(CodePage932, DigitsAndWildcardsOfAPostalCodeBecomeSingleBytes) {
    for (unsigned int n = 0; n < 10; ++n) EXPECT_EQ(_mbctombb(0x824F + n), '0' + n);
    EXPECT_EQ(_mbctombb(0x8148), unsigned{'?'});
    EXPECT_EQ(_mbctombb(0x8196), unsigned{'*'});
    EXPECT_EQ(_mbctombb(0x824E), 0x824Eu);
    EXPECT_EQ(_mbctombb(0x8259), 0x8259u);
}

TEST(CodePage932, QuotesAndSignsWithTwoPlacesOrAnotherNameBecomeAscii) {
    EXPECT_EQ(_mbctombb(0x8166), unsigned{'\''});
    EXPECT_EQ(_mbctombb(0xFA56), unsigned{'\''});
    EXPECT_EQ(_mbctombb(0xEEFB), unsigned{'\''});
    EXPECT_EQ(_mbctombb(0x8168), unsigned{'"'});
    EXPECT_EQ(_mbctombb(0xFA57), unsigned{'"'});
    EXPECT_EQ(_mbctombb(0xEEFC), unsigned{'"'});
    EXPECT_EQ(_mbctombb(0x815F), unsigned{'\\'});
    EXPECT_EQ(_mbctombb(0x818F), unsigned{'\\'});
    EXPECT_EQ(_mbctombb(0x8160), unsigned{'~'});
    EXPECT_EQ(_mbctombb(0x8150), unsigned{'~'});
    EXPECT_EQ(_mbctombb(0x817C), unsigned{'-'});
    EXPECT_EQ(_mbctombb(0x8140), unsigned{' '});
}

TEST(CodePage932, VoicedKanaComeBackUnchanged) {
    for (unsigned int c : {0x834Bu, 0x834Du, 0x8370u, 0x8372u, 0x838Eu, 0x8394u, 0x8395u, 0x8396u}) {
        EXPECT_EQ(_mbctombb(c), c) << std::hex << c; // ガ ギ パ ビ ヮ ヴ ヵ ヶ
    }
}

TEST(CodePage932, OpeningQuotesComeBackUnchanged) {
    EXPECT_EQ(_mbctombb(0x8165), 0x8165u);
    EXPECT_EQ(_mbctombb(0x8167), 0x8167u);
}

TEST(CodePage932, CodesAboveSixteenBitsComeBackUnchanged) {
    for (unsigned int c : {0x1824Fu, 0x1008140u, 0x80008260u, 0xFFFF8281u, 0x10000u, 0xFFFFFFFFu}) {
        EXPECT_EQ(_mbctombb(c), c) << std::hex << c;
    }
    constexpr unsigned int nSeed = 932;
    std::printf("seed %u\n", nSeed);
    std::mt19937 random(nSeed);
    for (int n = 0; n < 100000; ++n) {
        unsigned int c = static_cast<unsigned int>(random()) | 0x10000u;
        ASSERT_EQ(_mbctombb(c), c) << std::hex << c;
    }
}

} // namespace
