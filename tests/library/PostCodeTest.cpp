// Postal codes as texts: bringing a caller's spelling into form, and finding the first entry that begins with it.
#include "dic/AddrDic.h"

#include "platform/Win32Compat.h"
#include "tests/support/GuardedBytes.h"
#include "tests/support/TestImage.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>

namespace {

std::string MakePostCode(std::string strText) {
    CAddrDic dic;
    dic.MakePostCode(strText.data());
    strText.resize(std::strlen(strText.c_str()));
    return strText;
}

bool IsKept(unsigned c) {
    return (c >= '0' && c <= '9') || c == '?' || c == '*';
}

// The rule written down once more, the simple way: into a second buffer, with a NUL for the missing second byte.
std::string SlowPostCode(std::string const& strText) {
    std::string strOut;
    for (size_t n = 0; n < strText.size();) {
        unsigned const c = static_cast<unsigned char>(strText[n]);
        if (_mbbtype(static_cast<unsigned char>(c), 0) != _MBC_SINGLE) {
            unsigned const nSecond = n + 1 < strText.size() ? static_cast<unsigned char>(strText[n + 1]) : 0;
            unsigned const nPair = c * 256 + nSecond;
            unsigned const nSingle = _mbctombb(nPair);
            if (nSingle != nPair && IsKept(nSingle)) strOut += static_cast<char>(nSingle);
            n += 2;
        } else {
            if (IsKept(c)) strOut += static_cast<char>(c);
            n += 1;
        }
    }
    return strOut;
}

// --- bringing a code into form
// ----------------------------------------------------------------------------------------

TEST(PostCodeText, KeepsDigitsAndWildcards) {
    EXPECT_EQ(MakePostCode("0123456789"), "0123456789");
    EXPECT_EQ(MakePostCode("10?00*"), "10?00*");
    EXPECT_EQ(MakePostCode(""), "");
}

TEST(PostCodeText, DropsHyphensBlanksAndLetters) {
    EXPECT_EQ(MakePostCode("100-0001"), "1000001");
    EXPECT_EQ(MakePostCode(" 1 0 1 "), "101");
    EXPECT_EQ(MakePostCode("ZIP 100-0001 (JP)"), "1000001");
    EXPECT_EQ(MakePostCode("/:;@+,.<=>!#"), "") << "neighbours of the digits and wildcards";
}

TEST(PostCodeText, LosesTheByteBehindOneThatIsNoCharacter) {
    EXPECT_EQ(MakePostCode("1\t01"), "11");
    EXPECT_EQ(MakePostCode("1\x7F"
                           "01"),
              "11");
    EXPECT_EQ(MakePostCode("1\n\t01"), "101");
}

TEST(PostCodeText, WithoutAnyDigitBecomesEmpty) {
    EXPECT_EQ(MakePostCode("no code at all"), "");
    EXPECT_EQ(MakePostCode("---"), "");
}

TEST(PostCodeText, TakesFullWidthDigitsOfCodePage932ForDigits) {
    for (int n = 0; n < 10; ++n) EXPECT_EQ(MakePostCode({'\x82', static_cast<char>(0x4F + n)}), std::to_string(n));
    EXPECT_EQ(MakePostCode("\x82\x50\x82\x4F\x82\x4F\x81\x7C\x82\x4F\x82\x4F\x82\x4F\x82\x50"), "1000001");
    EXPECT_EQ(MakePostCode("1\x82\x4F"
                           "0"),
              "100");
}

TEST(PostCodeText, TakesFullWidthWildcardsOfCodePage932ForWildcards) {
    EXPECT_EQ(MakePostCode("\x81\x48\x81\x96"), "?*");
}

TEST(PostCodeText, DropsOtherDoubleByteCharactersWhole) {
    EXPECT_EQ(MakePostCode("\x81\xA7"
                           "100"),
              "100")
        << "the postal mark";
    EXPECT_EQ(MakePostCode("\x82\x60\x81\x40\x83\x5C"), "") << "full-width A, a blank, and katakana so";
    EXPECT_EQ(MakePostCode("\x89\x30"
                           "1"),
              "1")
        << "a digit as second byte is no digit";
}

TEST(PostCodeText, LosesFullWidthDigitsOfUtf8) {
    EXPECT_EQ(MakePostCode("１００"), "");
    EXPECT_EQ(MakePostCode("１"), "");
    for (char const* psz : {"０", "１", "２", "３", "４", "５", "６", "７", "８", "９"})
        EXPECT_EQ(MakePostCode(psz), "") << psz;
}

// The bytes of UTF-8 are taken two by two as they are met; the mark has three, and the third takes a digit along.
TEST(PostCodeText, LosesTheFirstDigitBehindAPostalMarkOfUtf8) {
    EXPECT_EQ(MakePostCode("〒100-0001"), "000001");
    EXPECT_EQ(MakePostCode("〒 100-0001"), "1000001");
}

TEST(PostCodeText, AgreesWithTheSlowReaderOnEveryByte) {
    for (int c = 1; c < 256; ++c) {
        std::string const strByte(1, static_cast<char>(c));
        EXPECT_EQ(MakePostCode(strByte), SlowPostCode(strByte)) << c;
        for (char const* pszBehind : {"0", "9", "?", "*", "77"})
            EXPECT_EQ(MakePostCode(strByte + pszBehind), SlowPostCode(strByte + pszBehind)) << c << ' ' << pszBehind;
    }
}

TEST(PostCodeText, AgreesWithTheSlowReaderOnEveryPairOfBytes) {
    for (int nPair = 0x0101; nPair < 0x10000; ++nPair) {
        if (nPair % 256 == 0) continue;
        std::string const strPair = {static_cast<char>(nPair / 256), static_cast<char>(nPair % 256), '5'};
        ASSERT_EQ(MakePostCode(strPair), SlowPostCode(strPair)) << std::hex << nPair;
    }
}

TEST(PostCodeText, AgreesWithTheSlowReaderOnRandomBytes) {
    std::mt19937 random(20260529);
    for (int nRound = 0; nRound < 2000; ++nRound) {
        std::string strText(random() % 40, '\0');
        for (char& c : strText) c = static_cast<char>(random() % 3 == 0 ? '0' + random() % 10 : 1 + random() % 255);
        ASSERT_EQ(MakePostCode(strText), SlowPostCode(strText)) << nRound;
    }
}

TEST(PostCodeText, NeverGrows) {
    for (int c = 1; c < 256; ++c) {
        std::string const strText(9, static_cast<char>(c));
        EXPECT_LE(MakePostCode(strText).size(), strText.size()) << c;
    }
}

TEST(PostCodeText, IsReadAndWrittenNoFurtherThanItsNul) {
    CAddrDic dic;
    for (char const* psz : {"100\x82", "\x82", "1\xE0\x82\x4F", "\xFF", "100", "", "１００"}) {
        CGuardedBytes const bytes(psz, CGuardedBytes::Writable);
        dic.MakePostCode(bytes.Text());
        EXPECT_EQ(bytes.Text(), SlowPostCode(psz)) << psz;
    }
}

TEST(PostCodeText, IsNotWrittenBehindItsNewEnd) {
    char szText[] = "1-2-3\0abc";
    CAddrDic().MakePostCode(szText);
    EXPECT_STREQ(szText, "123");
    EXPECT_EQ(std::string(szText + 5, 5), std::string("\0abc\0", 5));
}

TEST(PostCodeText, OfSeventyThousandCharactersComesToAnEnd) {
    std::string strLong;
    for (int n = 0; n < 7000; ++n) strLong += "-12345678x";
    strLong += "9";
    EXPECT_EQ(MakePostCode(strLong), SlowPostCode(strLong));
    EXPECT_EQ(MakePostCode(strLong).size(), 56001u);
}

TEST(PostCodeText, MayBeNull) {
    CAddrDic dic;
    dic.MakePostCode(nullptr);
    EXPECT_EQ(dic.SearchPostCode7(nullptr), 0) << "the object is still in order";
}

// --- finding a code
// -----------------------------------------------------------------------------------------------------

// A dictionary that holds nothing but codes, in the order given.
class CCodeDic {
  public:
    explicit CCodeDic(std::vector<std::string> const& vCode) {
        CTestImage image;
        for (std::string const& strCode : vCode) image.AddInfo(0, strCode, "100");
        m_vByte = image.Bytes();
        m_dic.SetDictionary(m_vByte.data());
    }
    long Find(char const* pszCode) { return m_dic.SearchPostCode7(pszCode); }
    long Find(std::string const& strCode) { return Find(strCode.c_str()); }

  private:
    std::vector<unsigned char> m_vByte;
    CAddrDic m_dic;
};

// The search step by step, over plain strings.
long SlowSearch(std::vector<std::string> const& vCode, std::string const& strCode) {
    if (strCode.empty()) return 0;
    auto const Compare = [&](uint32_t n) { return std::strncmp(vCode[n].c_str(), strCode.c_str(), strCode.size()); };
    uint32_t const nCount = static_cast<uint32_t>(vCode.size());
    uint32_t nLow = 0, nHigh = nCount - 1, nMiddle = nHigh / 2;
    for (;;) {
        if (nMiddle >= nCount) return -1;
        int const nOrder = Compare(nMiddle);
        if (nOrder == 0) break;
        if (nOrder > 0)
            nHigh = nMiddle - 1;
        else
            nLow = nMiddle + 1;
        if (nLow > nHigh) return -1;
        nMiddle = (nLow + nHigh) / 2;
    }
    while (nMiddle > 0 && Compare(nMiddle - 1) == 0) --nMiddle;
    return static_cast<long>(nMiddle);
}

// On a sorted table: simply the first one.
long FirstWith(std::vector<std::string> const& vCode, std::string const& strCode) {
    for (size_t n = 0; n < vCode.size(); ++n)
        if (vCode[n].compare(0, strCode.size(), strCode) == 0) return static_cast<long>(n);
    return -1;
}

std::vector<std::string> RandomCodes(std::mt19937& random, size_t nCount, unsigned nRange) {
    std::vector<std::string> vCode;
    for (size_t n = 0; n < nCount; ++n) {
        std::string const strDigits = std::to_string(random() % nRange * (10000000 / nRange));
        vCode.push_back(std::string(7 - strDigits.size(), '0') + strDigits);
    }
    return vCode;
}

// Every beginning of every code of the table, and as many of codes that are (mostly) not in it.
std::vector<std::string> Queries(std::mt19937& random, std::vector<std::string> const& vCode) {
    std::vector<std::string> vQuery = {"?", "*", "0", "9999999", "99999999", "12345678901234567890", ":", " "};
    auto const vOther = RandomCodes(random, vCode.size() + 1, 10000000);
    for (auto const* pvFrom : {&vCode, &vOther})
        for (std::string const& strCode : *pvFrom)
            for (size_t nLength = 1; nLength <= strCode.size(); ++nLength)
                vQuery.push_back(strCode.substr(0, nLength));
    return vQuery;
}

TEST(PostCodeSearch, FindsTheLowestEntryOfACodeThatSeveralShare) {
    CCodeDic dic({"0600000", "1000001", "1000001", "1000001", "1000001", "1000001", "1010001"});
    EXPECT_EQ(dic.Find("1000001"), 1);
}

TEST(PostCodeSearch, FindsTheFirstOfAllCodesWithABeginning) {
    CCodeDic dic({"0999999", "1000000", "1000001", "1009999", "1010000"});
    EXPECT_EQ(dic.Find("100"), 1);
    EXPECT_EQ(dic.Find("1"), 1);
    EXPECT_EQ(dic.Find("0"), 0);
    EXPECT_EQ(dic.Find("101"), 4);
}

TEST(PostCodeSearch, GivesTheFirstEntryForAnEmptyCodeAndForNone) {
    CCodeDic dic({"1000001", "1000002"});
    EXPECT_EQ(dic.Find(""), 0);
    EXPECT_EQ(dic.Find(nullptr), 0);
}

TEST(PostCodeSearch, FindsNothingInAnEmptyTable) {
    CCodeDic dic({});
    EXPECT_EQ(dic.Find("1000001"), -1);
    EXPECT_EQ(dic.Find("1"), -1);
    EXPECT_EQ(dic.Find(""), 0) << "the empty code is not looked up at all";
}

TEST(PostCodeSearch, FindsTheOnlyEntryAndNothingBesideIt) {
    CCodeDic dic({"5000000"});
    EXPECT_EQ(dic.Find("5000000"), 0);
    EXPECT_EQ(dic.Find("5"), 0);
    EXPECT_EQ(dic.Find("4999999"), -1);
    EXPECT_EQ(dic.Find("5000001"), -1);
    EXPECT_EQ(dic.Find("50000000"), -1) << "longer than the code";
}

TEST(PostCodeSearch, TakesWildcardsForThemselves) {
    CCodeDic dic({"1000001", "1000002", "100?001"});
    EXPECT_EQ(dic.Find("100?"), 2);
    EXPECT_EQ(dic.Find("1*"), -1);
    EXPECT_EQ(dic.Find("?000001"), -1);
}

TEST(PostCodeSearch, IsNotForgivingAboutSpelling) {
    CCodeDic dic({"1000001"});
    EXPECT_EQ(dic.Find("100-0001"), -1);
}

TEST(PostCodeSearch, FindsTheFirstMatchForEveryBeginningInSortedTables) {
    std::mt19937 random(471);
    for (size_t nCount = 0; nCount < 40; ++nCount) {
        auto vCode = RandomCodes(random, nCount, nCount % 2 == 0 ? 20 : 10000000);
        std::sort(vCode.begin(), vCode.end());
        CCodeDic dic(vCode);
        for (std::string const& strQuery : Queries(random, vCode)) {
            ASSERT_EQ(dic.Find(strQuery), FirstWith(vCode, strQuery)) << nCount << ' ' << strQuery;
            ASSERT_EQ(dic.Find(strQuery), SlowSearch(vCode, strQuery)) << nCount << ' ' << strQuery;
        }
    }
}

TEST(PostCodeSearch, ProbesUnsortedTablesInTheSameOrderAsTheSlowReader) {
    std::mt19937 random(472);
    for (size_t nCount = 2; nCount < 40; ++nCount) {
        auto const vCode = RandomCodes(random, nCount, nCount % 2 == 0 ? 20 : 10000000);
        CCodeDic dic(vCode);
        for (std::string const& strQuery : Queries(random, vCode))
            ASSERT_EQ(dic.Find(strQuery), SlowSearch(vCode, strQuery)) << nCount << ' ' << strQuery;
    }
}

TEST(PostCodeSearch, FindsEveryCodeOfALargeTable) {
    std::mt19937 random(473);
    auto vCode = RandomCodes(random, 5000, 10000000);
    std::sort(vCode.begin(), vCode.end());
    CCodeDic dic(vCode);
    for (std::string const& strCode : vCode) {
        auto const nFirst = std::lower_bound(vCode.begin(), vCode.end(), strCode) - vCode.begin();
        ASSERT_EQ(dic.Find(strCode), nFirst) << strCode;
    }
}

} // namespace
