// The shortcuts of the searches give the very answers of the plain model: the first words of texts that are compared
// at once, and what an object keeps of the searches it has made.
#include "tests/library/PlainWorld.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

namespace {

unsigned long Number(char const* pszVariable, unsigned long nElse) {
    char const* const psz = std::getenv(pszVariable);
    return psz == nullptr ? nElse : std::strtoul(psz, nullptr, 10);
}

// QEADRS_SEED and QEADRS_WORLDS give other worlds, or more of them: a world's seed is that of the first one and its
// number.
unsigned FirstSeed() {
    return static_cast<unsigned>(Number("QEADRS_SEED", 20261202));
}

// An object is asked at first use, after 5 and after 55 searches of the whole country, each time in another order.
std::string AskOften(CRandom& random, CAddrDic& dictionary, unsigned char const* pImage, CWildWorld const& world,
                     CAskedTexts const& texts, size_t nQuestions) {
    std::vector<CQuestion> vQuestion = world.Questions(random, nQuestions), vCountry[2];
    for (size_t n = 0; n < 55; ++n) vCountry[n < 5 ? 0 : 1].push_back(world.WholeCountry(random));
    Stir(random, vQuestion);
    CExpected const expected(pImage, texts, vQuestion);
    std::string strDifference = expected.Difference(dictionary, "at first use");
    for (std::vector<CQuestion> const& vSearch : vCountry) {
        if (strDifference.empty())
            strDifference = CExpected(pImage, texts, vSearch).Difference(dictionary, "the whole country");
        if (strDifference.empty())
            strDifference = expected.Difference(dictionary, "after searches of the whole country");
    }
    return strDifference;
}

void AskWorlds(CWildRecipe const& recipe, unsigned nFirstSeed, unsigned long nWorlds, size_t nQuestions) {
    CAskedTexts const texts;
    int nFailures = 0;
    for (unsigned n = 0; n < nWorlds && nFailures < 5; ++n) {
        CRandom random(nFirstSeed + n);
        CWildWorld const world(random, recipe);
        CGuardedBytes const bytes(world.Bytes());
        CAddrDic dictionary;
        dictionary.SetDictionary(bytes.Data());
        std::string const strDifference = AskOften(random, dictionary, bytes.Data(), world, texts, nQuestions);
        if (strDifference.empty()) continue;
        ADD_FAILURE() << "seed " << nFirstSeed + n << ": " << strDifference;
        ++nFailures;
    }
}

TEST(FastPaths, AnswerSmallRandomDictionariesLikeThePlainModelHoweverOftenTheyAreAsked) {
    AskWorlds({}, FirstSeed(), Number("QEADRS_WORLDS", 1500), 2 * QUESTIONS);
}

TEST(FastPaths, AnswerTinyDictionariesLikeThePlainModel) {
    AskWorlds({1, 2, 2, 1, 50, 4}, FirstSeed() + 1000000, Number("QEADRS_WORLDS", 1500) / 4, QUESTIONS);
}

TEST(FastPaths, AnswerLargerRandomDictionariesLikeThePlainModel) {
    AskWorlds({8, 30, 12, 1, 60, 12}, FirstSeed() + 2000000, Number("QEADRS_WORLDS", 1500) / 100, 6 * QUESTIONS);
}

// Names in the order of their levels, joined in all ways: cut at every byte, and each byte changed. No damage.
TEST(FastPaths, ReadEveryTextThatDiffersFromNamesInOneByteLikeThePlainModel) {
    CAskedTexts const texts;
    for (unsigned n = 0; n < 12; ++n) {
        unsigned const nSeed = FirstSeed() + 3000000 + n;
        CRandom random(nSeed);
        CWildWorld const world(random, {3, 4, 5, 1, 60, 0});
        CGuardedBytes const bytes(world.Bytes());
        std::vector<CQuestion> vQuestion;
        for (int nText = 0; nText < 3; ++nText) {
            std::string const str = world.AskedText(random).substr(0, 150);
            for (size_t nAt = 0; nAt <= str.size(); ++nAt) {
                std::string strChanged = str + 'x';
                ++strChanged[nAt];
                if (strChanged[nAt] == '\0') ++strChanged[nAt];
                for (std::string const& strAsked : {str.substr(0, nAt), strChanged})
                    for (EQuestion const nKind :
                         {QUESTION_DIVIDE, QUESTION_CITY, QUESTION_TOWN, QUESTION_CITY_INDEX, QUESTION_CODE})
                        vQuestion.push_back({nKind, strAsked, "", NO_NODE});
            }
        }
        CExpected const expected(bytes.Data(), texts, vQuestion);
        CAddrDic dictionary;
        dictionary.SetDictionary(bytes.Data());
        for (char const* pszWhen : {"at first", "once more", "a third time"})
            EXPECT_EQ(expected.Difference(dictionary, pszWhen), "") << "seed " << nSeed;
    }
}

// --- the string area's end -----------------------------------------------------------------------------------------

// One node of each level and one entry, all with the same text: the last of the area, of nText bytes with its NUL or
// without it.
CTestImage LastText(std::string const& str, bool bNul) {
    CTestImage image;
    uint32_t const nPref = image.AddNode(LEVEL_PREF, ADDR_NONE, "p");
    uint32_t const nCity = image.AddNode(LEVEL_CITY, nPref, "c");
    image.AddInfo(image.AddNode(LEVEL_OFFICE, image.AddNode(LEVEL_TOWN, nCity, "t"), "o"), "1");
    image.Complete();
    auto const nText = static_cast<uint32_t>(image.strArea.size());
    for (tagADDRNODE& node : image.vNode) node.nName = nText;
    image.vInfo[0].nCode = nText;
    image.strArea += str;
    if (bNul) image.strArea += '\0';
    return image;
}

TEST(FastPaths, ReadNothingBehindTheLastTextOfTheArea) {
    CAskedTexts const texts;
    for (size_t nLength = 0; nLength <= 20; ++nLength)
        for (bool const bNul : {true, false}) {
            std::string const str = std::string("1234567890abcdefghij").substr(0, nLength);
            CGuardedBytes const bytes(LastText(str, bNul).Bytes());
            std::vector<CQuestion> vQuestion;
            for (int nKind = 0; nKind < QUESTIONS; ++nKind)
                for (std::string const& strAsked :
                     {str, str + str + str, str + "x", str + '\x01', str.substr(0, nLength / 2), std::string("z")})
                    for (unsigned long const nNumber : {0UL, 1UL, NO_NODE})
                        vQuestion.push_back({static_cast<EQuestion>(nKind), strAsked, strAsked, nNumber});
            CAddrDic dictionary;
            dictionary.SetDictionary(bytes.Data());
            CExpected const expected(bytes.Data(), texts, vQuestion);
            for (char const* pszWhen : {"at first", "once more", "a third time"})
                EXPECT_EQ(expected.Difference(dictionary, pszWhen), "") << nLength << " bytes, with NUL: " << bNul;
        }
}

// Bytes that lie behind the area, not behind the image, belong to no text.
TEST(FastPaths, TakeTheEndOfTheAreaForTheEndOfATextThatGoesOnBehindIt) {
    CAskedTexts const texts;
    std::string const str = "1234567890abcdefghij";
    for (size_t nLost = 0; nLost <= str.size() + 1; ++nLost) {
        std::vector<unsigned char> vByte = LastText(str, true).Bytes();
        auto const nSize = static_cast<uint32_t>(HeaderWord(vByte.data(), HDR_STRING_SIZE) - nLost);
        std::memcpy(&vByte[4 * HDR_STRING_SIZE], &nSize, sizeof nSize);
        CGuardedBytes const bytes(vByte);
        std::vector<CQuestion> vQuestion;
        for (int nKind = 0; nKind < QUESTIONS; ++nKind)
            for (size_t nLength = 0; nLength <= str.size(); ++nLength)
                vQuestion.push_back({static_cast<EQuestion>(nKind), str.substr(0, nLength), str, NO_NODE});
        CAddrDic dictionary;
        dictionary.SetDictionary(bytes.Data());
        CExpected const expected(bytes.Data(), texts, vQuestion);
        for (char const* pszWhen : {"at first", "once more"})
            EXPECT_EQ(expected.Difference(dictionary, pszWhen), "") << nLost << " bytes less";
    }
}

// --- long tables ---------------------------------------------------------------------------------------------------

// Codes of all lengths, more than the first steps of a search meet; sorted, nearly sorted, or in any order.
CTestImage LongTable(CRandom& random, size_t nEntries, size_t nSwaps) {
    CTinyWorld image;
    std::vector<std::string> vCode;
    for (size_t n = 0; n < nEntries; ++n) {
        char sz[16];
        std::snprintf(sz, sizeof sz, "%07u", static_cast<unsigned>(Below(random, 10 * nEntries)));
        vCode.emplace_back(sz);
        if (Chance(random, 2)) vCode.back().resize(Below(random, 7));
        if (Chance(random, 2)) vCode.back() += AnyBytes(random, 1 + Below(random, 6));
        if (Chance(random, 2)) vCode.back() = "5005000";
    }
    std::sort(vCode.begin(), vCode.end());
    for (; nSwaps > 0; --nSwaps) std::swap(vCode[Below(random, nEntries)], vCode[Below(random, nEntries)]);
    for (std::string const& strCode : vCode) image.AddInfo(image.nTown, strCode, "100");
    image.Complete();
    return image;
}

TEST(FastPaths, SearchLongTablesOfCodesLikeThePlainModel) {
    CAskedTexts const texts;
    for (size_t const nEntries : {100u, 4095u, 4096u, 9000u, 40000u})
        for (size_t const nSwaps : {size_t{0}, size_t{20}, nEntries}) {
            CRandom random = Seeded(FirstSeed() + static_cast<unsigned>(nEntries + nSwaps));
            CTestImage const image = LongTable(random, nEntries, nSwaps);
            CGuardedBytes const bytes(image.Bytes());
            std::vector<CQuestion> vQuestion;
            for (int n = 0; n < 800; ++n) {
                std::string str = image.strArea.c_str() + OneOf(random, image.vInfo).nCode;
                if (Chance(random, 50)) str.resize(Below(random, str.size() + 1));
                if (Chance(random, 20)) str = ChangedText(random, str);
                if (Chance(random, 10)) str += AnyBytes(random, 3);
                vQuestion.push_back({QUESTION_CODE, str, "", 0});
            }
            CExpected const expected(bytes.Data(), texts, vQuestion);
            CAddrDic dictionary;
            dictionary.SetDictionary(bytes.Data());
            for (char const* pszWhen : {"at first", "once more", "a third time"})
                EXPECT_EQ(expected.Difference(dictionary, pszWhen), "")
                    << nEntries << " entries, " << nSwaps << " swaps";
        }
}

// Old codes of all lengths behind codes of all lengths. The code that an old one begins stands in front of them all.
TEST(FastPaths, CompareOldCodesOfAnyLengthLikeThePlainModel) {
    CAskedTexts const texts;
    std::string const strOld = "12345678901234567890", strCode = "23456789";
    CTinyWorld image;
    image.vInfo.clear();
    for (int n = 0; n < 3; ++n) image.AddInfo(image.nTown, strOld, "");
    for (size_t nCode = 6; nCode <= 8; ++nCode)
        for (size_t nOld = 0; nOld <= strOld.size(); ++nOld)
            for (size_t nAt = nOld == 0 ? 0 : nOld - 1; nAt <= nOld; ++nAt) {
                std::string str = strOld.substr(0, nOld) + 'x';
                ++str[nAt];
                str.resize(nOld);
                image.AddInfo(image.nTown, strCode.substr(0, nCode), str);
            }
    image.Complete();
    CGuardedBytes const bytes(image.Bytes());
    std::vector<CQuestion> vQuestion;
    for (size_t n = 0; n <= strOld.size(); ++n) vQuestion.push_back({QUESTION_CODE5, strOld.substr(0, n), "", 0});
    CExpected const expected(bytes.Data(), texts, vQuestion);
    for (size_t n = 1; n < strOld.size(); ++n)
        EXPECT_EQ(expected.Answers()[n].vAddr.size(), 1u + 3u) << "the one that was there, and three";
    CAddrDic dictionary;
    dictionary.SetDictionary(bytes.Data());
    EXPECT_EQ(expected.Difference(dictionary, "at first"), "");
}

// One way up of more nodes than there are levels, with city and prefecture around the most that are read.
TEST(FastPaths, EndWaysUpAndDownWhereThePlainModelDoes) {
    CAskedTexts const texts;
    for (size_t const nNodes : {250u, 255u, 256u, 257u, 258u, 300u})
        for (size_t const nAbove : {1u, 2u, 3u}) {
            CTestImage image;
            for (uint32_t n = 0; n < nNodes; ++n) {
                uint8_t const nLevel = n < nAbove ? LEVEL_PREF : n < 2 * nAbove ? LEVEL_CITY : LEVEL_TOWN;
                image.AddNode(nLevel, n - 1, std::to_string(n), "ヨミ");
            }
            for (uint32_t n = 0; n < nNodes; ++n) image.AddInfo(n, "1000001");
            for (uint32_t n = 0; n < nNodes; ++n) image.vNode[n].nInfo = n;
            for (uint32_t n = 0; n + 1 < nNodes; ++n) image.vNode[n].nFirstChild = n + 1;
            for (uint32_t n = 0; n + 1 < nNodes; ++n) image.vNode[n].nChildCount = 1;
            CGuardedBytes const bytes(image.Bytes());
            std::vector<CQuestion> vQuestion = {{QUESTION_CODE7, "1", "", 2}, {QUESTION_CODE5, "", "", 0}};
            for (unsigned long n = 0; n < nNodes; ++n) vQuestion.push_back({QUESTION_ENTRY, "", "", n});
            for (unsigned long n = 0; n < 50; ++n) vQuestion.push_back({QUESTION_BELOW, "", "", n});
            CExpected const expected(bytes.Data(), texts, vQuestion);
            CAddrDic dictionary;
            dictionary.SetDictionary(bytes.Data());
            EXPECT_EQ(expected.Difference(dictionary, "at first"), "") << nNodes << " nodes";
        }
}

// A city with so many towns that an object may keep something of some and not of others; the nodes before them have
// no names.
TEST(FastPaths, SearchMoreNodesThanAnyCountryHasLikeThePlainModel) {
    constexpr uint32_t MILLION = 1U << 20;
    CTestImage image;
    uint32_t const nPref = image.AddNode(LEVEL_PREF, ADDR_NONE, "県");
    uint32_t const nCity = image.AddNode(LEVEL_CITY, nPref, "市");
    tagADDRNODE const nameless = {LEVEL_TOWN, {}, ADDR_NONE, ADDR_NONE, nCity, 0, ADDR_NONE};
    image.vNode.resize(MILLION - 40, nameless);
    for (int n = 0; n < 80; ++n) image.AddNode(LEVEL_TOWN, nCity, "町" + std::to_string(n % 50) + "目");
    image.vNode[nPref].nFirstChild = nCity;
    image.vNode[nPref].nChildCount = 1;
    image.vNode[nCity].nFirstChild = MILLION - 60;
    image.vNode[nCity].nChildCount = 1000;
    image.nFirstPref = nPref;
    image.nPrefCount = 1;
    image.vCityIndex = {nCity};
    image.nFirstCity = nCity;
    image.nFirstTown = MILLION - 100;
    image.nTownCount = 200;
    CGuardedBytes const bytes(image.Bytes());
    CAskedTexts const texts;
    std::vector<CQuestion> vQuestion;
    for (int n = 0; n < 52; ++n)
        for (unsigned long const nBelow : {static_cast<unsigned long>(nCity), NO_NODE})
            vQuestion.push_back({QUESTION_TOWN, "町" + std::to_string(n) + "目1", "", nBelow});
    CExpected const expected(bytes.Data(), texts, vQuestion);
    CAddrDic dictionary;
    dictionary.SetDictionary(bytes.Data());
    for (char const* pszWhen : {"at first", "once more", "a third time"})
        EXPECT_EQ(expected.Difference(dictionary, pszWhen), "");
}

// --- names that a hash takes for each other ------------------------------------------------------------------------

// FNV-1a, the hash of the table of names. With another one these would be names like all others.
uint64_t Fnv(std::string const& str) {
    uint64_t nHash = 0xCBF29CE484222325U;
    for (char const c : str) nHash = (nHash ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
    return nHash;
}

// Whether the upper twelve bits, and the lower ones of a small table, are the same in both words.
bool AreHashesAlike(std::string const& str, std::string const& strOther) {
    uint64_t const n = Fnv(str), nOther = Fnv(strOther);
    return n >> 52 == nOther >> 52 && (((n ^ n >> 32) ^ (nOther ^ nOther >> 32)) & 15) == 0;
}

// A name that begins with the text, or does not, and whose hash is nearly that of the text.
std::string AlikeName(std::string const& strText, std::string const& strBegin) {
    for (int n = 0;; ++n) {
        std::string str = strBegin + std::to_string(n);
        if (AreHashesAlike(str, strText)) return str;
    }
}

TEST(FastPaths, TellNamesApartWhoseHashesMeet) {
    CAskedTexts const texts;
    for (char const* pszText : {"abc", "abcdef", "東京府", "q"})
        for (bool const bLonger : {true, false}) {
            std::string const strText = pszText, strName = AlikeName(strText, bLonger ? strText : "x");
            CTestImage image;
            uint32_t const nPref = image.AddNode(LEVEL_PREF, ADDR_NONE, "県");
            uint32_t const nCity = image.AddNode(LEVEL_CITY, nPref, strName);
            image.AddNode(LEVEL_CITY, nPref, std::string(strText.size(), 'z'));
            image.AddNode(LEVEL_TOWN, nCity, strName);
            image.AddNode(LEVEL_TOWN, nCity, std::string(strText.size(), 'z'));
            image.AddNode(LEVEL_TOWN, nCity, std::string(strName.size(), 'z'));
            image.Complete();
            CGuardedBytes const bytes(image.Bytes());
            std::vector<CQuestion> vQuestion;
            for (int n = 0; n < 20; ++n)
                for (std::string const& str : {strText, strText + "yyyyyyy", strName, strName + "1"})
                    for (EQuestion const nKind : {QUESTION_CITY, QUESTION_TOWN, QUESTION_DIVIDE})
                        vQuestion.push_back({nKind, str, "", NO_NODE});
            CExpected const expected(bytes.Data(), texts, vQuestion);
            CAddrDic dictionary;
            dictionary.SetDictionary(bytes.Data());
            EXPECT_EQ(expected.Difference(dictionary, "asked often"), "") << strName;
        }
}

// --- another image -------------------------------------------------------------------------------------------------

// The same object over one image after the other: at one address, at others, and without any in between.
TEST(FastPaths, ForgetAnImageWhenAnotherOneIsBoundAlsoAtTheSameAddress) {
    CAskedTexts const texts;
    constexpr size_t SIZE = 40000;
    CGuardedBytes const place(std::string(SIZE, '\0').data(), SIZE, CGuardedBytes::Writable);
    CAddrDic dictionary;
    int nFailures = 0;
    for (unsigned n = 0; n < 400 && nFailures < 5; ++n) {
        unsigned const nSeed = FirstSeed() + 4000000 + n;
        CRandom random(nSeed);
        CWildWorld const world(random, {}, SIZE);
        if (world.Bytes().size() != SIZE) continue;
        std::memcpy(place.Data(), world.Bytes().data(), SIZE);
        CGuardedBytes const elsewhere(world.Bytes());
        unsigned char const* const pImage = n % 3 == 2 ? elsewhere.Data() : place.Data();
        if (n % 5 == 4) dictionary.SetDictionary(nullptr);
        dictionary.SetDictionary(pImage);
        std::string const strDifference = AskOften(random, dictionary, pImage, world, texts, QUESTIONS);
        EXPECT_EQ(strDifference, "") << "seed " << nSeed;
        nFailures += strDifference.empty() ? 0 : 1;
    }
}

// Names and codes of the same lengths in the same places, all of them others.
TEST(FastPaths, ForgetNamesAndCodesThatAnotherEditionHasInTheSamePlaces) {
    CAskedTexts const texts;
    CTestImage image;
    std::vector<std::string> vName;
    uint32_t const nPref = image.AddNode(LEVEL_PREF, ADDR_NONE, "abc");
    std::vector<uint32_t> vCity;
    for (int n = 0; n < 20; ++n) vCity.push_back(image.AddNode(LEVEL_CITY, nPref, "abcdef" + std::to_string(n)));
    for (uint32_t const nCity : vCity)
        for (int n = 0; n < 20; ++n) image.AddNode(LEVEL_TOWN, nCity, "defabc" + std::to_string(n));
    for (uint32_t n = 0; n < image.vNode.size(); ++n) image.AddInfo(n, "1" + std::to_string(100000 + n), "100");
    image.Complete();
    std::vector<unsigned char> vByte = image.Bytes();
    CGuardedBytes const place(vByte.data(), vByte.size(), CGuardedBytes::Writable);
    CAddrDic dictionary;
    for (int nEdition = 0; nEdition < 6; ++nEdition) {
        std::vector<CQuestion> vQuestion;
        for (char const* pszPref : {"", "abc", "bcd", "cde"})
            for (char const* pszCity : {"", "abcdef1", "bcdefg7", "cdefgh19", "abcdef"})
                for (char const* pszTown : {"", "defabc5", "efgbcd17", "fghcde0", "defabc"})
                    for (EQuestion const nKind : {QUESTION_DIVIDE, QUESTION_CITY, QUESTION_TOWN, QUESTION_PART})
                        vQuestion.push_back({nKind, pszPref + std::string(pszCity) + pszTown, "", NO_NODE});
        for (int n = 0; n < 700; ++n) {
            vQuestion.push_back({QUESTION_CODE, std::to_string(n % 4) + std::to_string(100000 + n), "", 0});
            vQuestion.push_back({QUESTION_CODE7, std::to_string(n % 4) + std::to_string(100000 + n), "", 2});
        }
        dictionary.SetDictionary(place.Data());
        CExpected const expected(place.Data(), texts, vQuestion);
        for (char const* pszWhen : {"at first", "once more", "a third time"})
            EXPECT_EQ(expected.Difference(dictionary, pszWhen), "") << "edition " << nEdition;
        // Letters and the first digit go on by one; every third edition begins again.
        unsigned char* const pArea = place.Data() + HeaderWord(place.Data(), HDR_STRING_AREA);
        for (size_t n = 0; n < image.strArea.size(); ++n) {
            char const c = image.strArea[n];
            bool const bStart = n > 0 && image.strArea[n - 1] == '\0';
            auto const nStep = static_cast<unsigned char>((nEdition + 1) % 3);
            bool const bMoves = (c >= 'a' && c <= 'f') || (bStart && c == '1' && image.strArea[n + 6] != '\0');
            if (bMoves) pArea[n] = static_cast<unsigned char>(static_cast<unsigned char>(c) + nStep);
        }
    }
}

// --- order and kinds -----------------------------------------------------------------------------------------------

TEST(FastPaths, OrderRecordsLikeThePlainModel) {
    static char const* const apszPref[] = {"東京都", "北海道", "沖縄県", "無県", "東京", ""};
    CRandom random = Seeded(FirstSeed());
    CPlainDic const plain;
    for (int nPool = 0; nPool < 40; ++nPool) {
        CNames const vName = AnyNames(random);
        auto const Any = [&]() { return Chance(random, 20) ? nullptr : OneOf(random, vName).c_str(); };
        std::vector<tagADDR> vAddr;
        for (int n = 0; n < 40; ++n) {
            tagADDR addr(0);
            addr.pszPref = Chance(random, 20) ? Any() : OneOf(random, apszPref);
            addr.pszCity = Any();
            addr.pszTown = Any();
            addr.pszArea = Any();
            addr.pszOffice = Any();
            addr.nCityOrder = static_cast<int>(Below(random, 2));
            vAddr.push_back(addr);
        }
        for (tagADDR const& left : vAddr)
            for (tagADDR const& right : vAddr)
                ASSERT_EQ(left < right, plain.IsBefore(left, right))
                    << Escaped(PlainKey(left)) << ' ' << Escaped(PlainKey(right));
    }
}

TEST(FastPaths, TellTheKindsOfCityNamesLikeThePlainModel) {
    CRandom random = Seeded(FirstSeed());
    size_t nParts = 0;
    for (int n = 0; n < 20000; ++n) {
        std::string str = Chance(random, 70) ? TwoPartName(random) : AnyBytes(random, Below(random, 12));
        if (Chance(random, 20)) str = ChangedText(random, str);
        unsigned short nType = 77, nExpected = 77;
        unsigned short const nPart = PlainShikugunType(str.c_str(), &nExpected);
        ASSERT_EQ(GetShikugunType(str.c_str(), &nType), nPart) << Escaped(str);
        ASSERT_EQ(nType, nExpected) << Escaped(str);
        nParts += nPart != 0 ? 1 : 0;
    }
    EXPECT_GT(nParts, 5000u);
}

// --- the test itself -----------------------------------------------------------------------------------------------

// Worlds in which nothing is found would prove nothing.
TEST(FastPaths, AreAskedForWhatTheDictionariesHave) {
    CAskedTexts const texts;
    std::vector<size_t> vAsked(QUESTIONS), vFound(QUESTIONS);
    size_t nFronts = 0;
    for (unsigned n = 0; n < 300; ++n) {
        CRandom random(FirstSeed() + n);
        CWildWorld const world(random);
        CExpected const expected(world.Bytes().data(), texts, world.Questions(random, 2 * QUESTIONS));
        for (size_t nQuestion = 0; nQuestion < expected.Questions().size(); ++nQuestion) {
            CQuestion const& question = expected.Questions()[nQuestion];
            CAnswer const& answer = expected.Answers()[nQuestion];
            auto const nKind = static_cast<size_t>(question.nKind);
            bool const bList = nKind >= QUESTION_PART && nKind != QUESTION_CITY_INDEX;
            bool const bDivided = question.nKind == QUESTION_DIVIDE || question.nKind == QUESTION_CODE_OF;
            ++vAsked[nKind];
            vFound[nKind] += size_t{bList      ? answer.vAddr.size() > 1 || !answer.vNode.empty()
                                    : bDivided ? answer.vAddr[0].pszTownKana != MarkedAddr().pszTownKana &&
                                                     answer.vAddr[0].pszTownKana != nullptr
                                               : answer.nResult > 0};
            if (question.nKind != QUESTION_CITY || answer.nResult < 0) continue;
            size_t const nName = std::strlen(answer.vAddr[0].pszCity);
            nFronts += size_t{static_cast<size_t>(answer.nRead) != nName};
        }
    }
    for (size_t n = 0; n < QUESTIONS; ++n) {
        CQuestion const question = {static_cast<EQuestion>(n), "", "", 0};
        std::printf("%6zu of %6zu  %s\n", vFound[n], vAsked[n], Shown(question).c_str());
        EXPECT_GT(vFound[n], vAsked[n] / 20) << Shown(question);
    }
    EXPECT_GT(nFronts, 5u) << "names met by one of their two parts";
}

} // namespace
