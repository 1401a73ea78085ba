// PlainWorld.h - small dictionaries with names and codes that searches may take for each other, damaged ones among
// them, and questions made of their names.
//
//   CWildWorld const world(random);                // read-only, its last text before a page that cannot be touched
//   std::vector<CQuestion> const vQuestion = world.Questions(random, 40);
#ifndef QEADRS_TESTS_LIBRARY_PLAINWORLD_H
#define QEADRS_TESTS_LIBRARY_PLAINWORLD_H

#include "tests/library/PlainAsk.h"
#include "tests/library/RandomWorld.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

using CNames = std::vector<std::string>;

template <typename T>
T const& OneOf(CRandom& random, std::vector<T> const& v) {
    return v[Below(random, v.size())];
}
inline bool Chance(CRandom& random, size_t nPercent) {
    return Below(random, 100) < nPercent;
}
template <typename T>
void Stir(CRandom& random, std::vector<T>& v) {
    for (size_t n = v.size(); n > 1; --n) std::swap(v[n - 1], v[Below(random, n)]);
}

// --- names and codes -----------------------------------------------------------------------------------------------

// Letters of two kinds, characters as the dictionary has them, or any bytes but NUL.
inline std::string AnyBytes(CRandom& random, size_t nSize) {
    static char const* const apszCharacter[] = {"東", "京", "市", "区", "町", "府", "中", "一", "丁", "目"};
    size_t const nKind = Below(random, 3);
    std::string str;
    while (str.size() < nSize)
        if (nKind == 0)
            str += static_cast<char>('a' + Below(random, 2));
        else if (nKind == 1)
            str += OneOf(random, apszCharacter);
        else
            str += static_cast<char>(1 + Below(random, 255));
    return str.substr(0, nSize);
}

inline std::string ChangedText(CRandom& random, std::string str) {
    if (str.empty()) return str;
    size_t const nAt =
        Chance(random, 50) ? Below(random, str.size()) : Below(random, std::min<size_t>(str.size(), 10));
    auto const c = static_cast<unsigned char>(str[nAt]);
    str[nAt] = static_cast<char>(c == 255 ? 1 : c + 1);
    return str;
}

// A name of two parts in the manner of a double-byte encoding: any text, a marker, whole units, a suffix. Not all
// suffixes go with all markers.
inline std::string TwoPartName(CRandom& random) {
    static char const* const apszParts[][2] = {{SHI, KU},     {GUN, CHO}, {SHIMA, CHO}, {GUN, MURA}, {SHIMA, MURA},
                                               {AGATA, MURA}, {GUN, KU},  {AGATA, CHO}, {GUN, SHI}};
    auto const& apszPart = OneOf(random, apszParts);
    std::string str = AnyBytes(random, 2 + Below(random, 9));
    str += apszPart[0];
    str += AnyBytes(random, 2 + 2 * Below(random, 4));
    return str += apszPart[1];
}

// Names of all lengths around those of words and cache lines; many begin with each other or are equal. In most worlds
// none is longer than those of a sound dictionary, in half of them none has two parts.
inline CNames AnyNames(CRandom& random) {
    static constexpr size_t anSize[] = {1,  2, 3, 4, 5, 6, 7, 8,  9,  10, 11, 12,  15,  16, 17,
                                        24, 3, 6, 9, 3, 6, 9, 12, 63, 64, 65, 126, 127, 6,  128};
    CNames vName;
    bool const bLong = Chance(random, 30), bParts = Chance(random, 50);
    for (size_t n = 3 + Below(random, 12); n > 0; --n) {
        size_t const nKind = vName.empty() ? 9 : Below(random, 13);
        std::string const strOther = vName.empty() ? "" : OneOf(random, vName);
        if (nKind == 0)
            vName.emplace_back();
        else if (nKind <= 2)
            vName.push_back(strOther.substr(0, Below(random, strOther.size() + 1)));
        else if (nKind <= 4)
            vName.push_back(strOther + AnyBytes(random, 1 + Below(random, 9)));
        else if (nKind == 5)
            vName.push_back(ChangedText(random, strOther));
        else if (nKind <= 9 && bParts)
            vName.push_back(TwoPartName(random));
        else
            vName.push_back(AnyBytes(random, bLong && Chance(random, 20) ? 200 : OneOf(random, anSize)));
        if (!bLong && vName.back().size() > 127) vName.back().resize(127);
    }
    return vName;
}

// Seven digits, many of them alike; in some worlds also others.
inline CNames AnyCodes(CRandom& random) {
    static char const* const apszOdd[] = {
        "",         "1",   "100",     "10000011", "100000123456", "12345678",
        "\xFF\x80", "?*?", "1000001", "9999999",  "0000000",      "99999999999999999999"};
    CNames vCode;
    bool const bOdd = Chance(random, 40);
    for (size_t n = 1 + Below(random, 14); n > 0; --n) {
        char sz[8];
        std::snprintf(sz, sizeof sz, "%03u%04u", 100 + static_cast<unsigned>(Below(random, 3)),
                      static_cast<unsigned>(Below(random, Chance(random, 70) ? 4 : 10000)));
        vCode.emplace_back(bOdd && Chance(random, 40) ? OneOf(random, apszOdd) : sz);
    }
    return vCode;
}

// --- dictionaries --------------------------------------------------------------------------------------------------

struct CWildRecipe {
    size_t nPrefs = 4, nCities = 4, nTowns = 5, nLower = 2; // at most, below each node above
    size_t nEntryPercent = 60;
    size_t nDamages = 8;
};

class CWildWorld {
  public:
    explicit CWildWorld(CRandom& random, CWildRecipe const& recipe = {}, size_t nImageSize = 0)
        : m_vName(AnyNames(random)), m_vCode(AnyCodes(random)) {
        Make(random, recipe);
        if (nImageSize > m_vByte.size()) Widen(nImageSize - m_vByte.size());
        m_plain.SetDictionary(m_vByte.data());
    }
    CWildWorld(CWildWorld const&) = delete;
    CWildWorld& operator=(CWildWorld const&) = delete;

    CBlockBytes const& Bytes() const { return m_vByte; }

    std::vector<CQuestion> Questions(CRandom& random, size_t nCount) const {
        std::vector<CQuestion> vQuestion;
        for (size_t n = 0; n < nCount; ++n) {
            auto const nKind = static_cast<EQuestion>(n % QUESTIONS);
            bool const bCode = nKind <= QUESTION_CODE5;
            std::string strText =
                bCode ? AskedCode(random, nKind == QUESTION_CODE5) : AskedText(random, LevelAsked(nKind));
            // A lookup takes spellings; the search itself takes the text as it is.
            if (nKind == QUESTION_CODE7 && strText.size() > 3 && Chance(random, 30)) strText.insert(3, "-");
            vQuestion.push_back({nKind, strText, AskedName(random), AskedNumber(random, nKind)});
        }
        return vQuestion;
    }

    // A search of all cities or of all towns.
    CQuestion WholeCountry(CRandom& random) const {
        EQuestion const nKind = Chance(random, 50) ? QUESTION_CITY : QUESTION_TOWN;
        return {nKind, AskedText(random, LevelAsked(Chance(random, 80) ? nKind : QUESTION_DIVIDE)), "", NO_NODE};
    }

    // Prefecture, city and town as they may stand in an address, from a level on, each of them or not; whole, cut,
    // changed or lengthened.
    std::string AskedText(CRandom& random, uint8_t nFrom = LEVEL_PREF) const {
        std::string str;
        if (nFrom == LEVEL_PREF && Chance(random, 60)) str += NameOf(random, HDR_FIRST_PREF, HDR_PREF_COUNT);
        if (nFrom <= LEVEL_CITY && Chance(random, 80))
            str += Part(random, NameOf(random, HDR_FIRST_CITY, HDR_CITY_COUNT));
        if (Chance(random, 75)) str += NameOf(random, HDR_FIRST_TOWN, HDR_TOWN_COUNT);
        switch (Below(random, 10)) {
        case 0:
            return str.substr(0, Below(random, str.size() + 1));
        case 1:
            return ChangedText(random, str);
        case 2:
            return str + AnyBytes(random, 1 + Below(random, 20));
        case 3:
            return str + OneOf(random, m_vName);
        case 4:
            return Chance(random, 20) ? str + AnyBytes(random, 5000) : OneOf(random, m_vName);
        case 5:
            return Chance(random, 50) ? AnyBytes(random, Below(random, 20)) : "";
        default:
            return str;
        }
    }

  private:
    static uint8_t LevelAsked(EQuestion nKind) {
        bool const bCity = nKind == QUESTION_CITY || nKind == QUESTION_CITY_PART || nKind == QUESTION_CITY_INDEX ||
                           nKind == QUESTION_CITIES;
        if (nKind == QUESTION_TOWN) return LEVEL_TOWN;
        return bCity ? LEVEL_CITY : LEVEL_PREF;
    }
    std::string NameOf(CRandom& random, unsigned nFirst, unsigned nCount) const {
        uint32_t anWord[2];
        std::memcpy(&anWord[0], &m_vByte[4 * nFirst], 4);
        std::memcpy(&anWord[1], &m_vByte[4 * nCount], 4);
        if (anWord[1] == 0) return OneOf(random, m_vName);
        tagADDRNODE const* const pNode = m_plain.GetAddrNode(anWord[0] + Below(random, anWord[1]));
        return pNode == nullptr ? OneOf(random, m_vName) : TextAt(pNode->nName);
    }
    std::string TextAt(uint32_t nOffset) const {
        uint32_t const nSize = HeaderWord(m_vByte.data(), HDR_STRING_SIZE);
        char const* const pszArea =
            reinterpret_cast<char const*>(m_vByte.data()) + HeaderWord(m_vByte.data(), HDR_STRING_AREA);
        return nOffset >= nSize ? "" : std::string(pszArea + nOffset, strnlen(pszArea + nOffset, nSize - nOffset));
    }
    // The whole name, or one of its two parts.
    static std::string Part(CRandom& random, std::string const& strName) {
        size_t const nFront = FrontPart(strName);
        if (nFront == 0 || Chance(random, 30)) return strName;
        return Chance(random, 50) ? strName.substr(0, nFront) : strName.substr(nFront);
    }
    std::string AskedName(CRandom& random) const {
        static char const* const apszForm[] = {"株式会社", "（株）", "医療法人", "", " ", "　"};
        std::string const str = OneOf(random, m_vName);
        switch (Below(random, 8)) {
        case 0:
            return "";
        case 1:
            return str.substr(0, Below(random, str.size() + 1));
        case 2:
            return ChangedText(random, str);
        case 3:
            return OneOf(random, apszForm) + str;
        case 4:
            return str + OneOf(random, apszForm);
        case 5:
            return str + AnyBytes(random, 3);
        default:
            return str;
        }
    }
    std::string AskedCode(CRandom& random, bool bOld) const {
        uint32_t const nInfos = HeaderWord(m_vByte.data(), HDR_INFO_COUNT);
        std::string str = OneOf(random, m_vCode);
        if (nInfos != 0 && Chance(random, 60)) {
            uint32_t const nCode = m_plain.GetAddrInfo(Below(random, nInfos))->nCode;
            str = TextAt(nCode);
            if (bOld && Chance(random, 70)) return TextAt(nCode + static_cast<uint32_t>(str.size()) + 1);
        }
        switch (Below(random, 8)) {
        case 0:
        case 1:
        case 2:
            return str.substr(0, Below(random, str.size() + 1));
        case 3:
            return ChangedText(random, str);
        case 4:
            return str + (Chance(random, 50) ? "1" : AnyBytes(random, 9));
        case 5:
            return OneOf(random, OLD_CODES);
        default:
            return str;
        }
    }
    unsigned long AskedNumber(CRandom& random, EQuestion nKind) const {
        static constexpr unsigned short anSort[] = {2, 9, 9, 0};
        if (nKind == QUESTION_CODE7) return OneOf(random, anSort);
        if (nKind == QUESTION_ENTRY) return Below(random, HeaderWord(m_vByte.data(), HDR_INFO_COUNT) + size_t{2});
        uint32_t const nNodes = HeaderWord(m_vByte.data(), HDR_NODE_COUNT);
        switch (Below(random, 8)) {
        case 0:
            return nNodes;
        case 1:
            return 0xFFFFFFFF;
        case 2: // the same in 32 bits
            return static_cast<unsigned long>(uint64_t{1} << 32);
        case 3:
        case 4:
            return NO_NODE;
        default:
            return Below(random, nNodes + size_t{1});
        }
    }

    void Entries(CRandom& random, CTestImage& image, size_t nPercent) const {
        std::vector<std::pair<std::string, uint32_t>> vEntry;
        for (uint32_t n = 0; n < image.vNode.size(); ++n)
            for (; Chance(random, nPercent) && vEntry.size() < 2 * image.vNode.size();)
                vEntry.emplace_back(OneOf(random, m_vCode), n);
        std::stable_sort(vEntry.begin(), vEntry.end(),
                         [](auto const& left, auto const& right) { return left.first < right.first; });
        for (auto const& [strCode, nNode] : vEntry) {
            size_t const nOld = Chance(random, 60) ? 3 : Below(random, strCode.size() + 1);
            std::string const strOld = Chance(random, 70) ? strCode.substr(0, nOld) : OneOf(random, OLD_CODES);
            if (Chance(random, 20))
                image.AddSuperseded(nNode, strCode, strOld, AnyWord(random, vEntry.size()));
            else
                image.AddInfo(nNode, strCode, strOld);
        }
    }

    CTestImage Tree(CRandom& random, CWildRecipe const& recipe) const {
        static char const* const apszPref[] = {"東京都", "東京", "北海道", "広島県", "", "東京都市"};
        CTestImage image;
        std::vector<uint32_t> vParent = {ADDR_NONE};
        bool const bReal = Chance(random, 50);
        auto const Level = [&](uint8_t nLevel, size_t nMost) {
            AddChildren(random, image, vParent, nMost, [&](uint32_t n) {
                std::string const& str = OneOf(random, m_vName);
                image.AddNode(nLevel, n, nLevel == LEVEL_PREF && bReal ? OneOf(random, apszPref) : str,
                              Chance(random, 50) ? "ヨミ" : "");
            });
        };
        Level(LEVEL_PREF, recipe.nPrefs);
        Level(LEVEL_CITY, recipe.nCities);
        Level(LEVEL_TOWN, recipe.nTowns);
        for (int n = 0; n < 2; ++n)
            AddChildren(random, image, vParent, recipe.nLower, [&](uint32_t nNode) {
                auto const nLevel = static_cast<uint8_t>(Chance(random, 40) ? 7 : 3 + Below(random, 5));
                image.AddNode(nLevel, nNode, OneOf(random, m_vName), "ヨミ");
            });
        return image;
    }

    static uint32_t AnyOffset(CRandom& random, CTestImage const& image) {
        switch (Below(random, 4)) {
        case 0:
            return AnyWord(random, image.strArea.size());
        case 1: // among the last bytes
            return static_cast<uint32_t>(image.strArea.size() - std::min(image.strArea.size(), Below(random, 12)));
        case 2: // the very text of another
            return image.vNode.empty() ? 0 : OneOf(random, image.vNode).nName;
        default:
            return static_cast<uint32_t>(Below(random, image.strArea.size() + 1));
        }
    }

    static void DamageEntries(CRandom& random, CTestImage& image) {
        if (image.vInfo.empty()) return;
        tagADDRINFO& info = image.vInfo[Below(random, image.vInfo.size())];
        switch (Below(random, 4)) {
        case 0:
            return Stir(random, image.vInfo);
        case 1:
            std::swap(info, image.vInfo[Below(random, image.vInfo.size())]);
            return;
        case 2:
            info.nCode = AnyOffset(random, image);
            return;
        default:
            info.nNode = AnyWord(random, image.vNode.size());
        }
    }

    static void DamageRuns(CRandom& random, CTestImage& image) {
        size_t const nNodes = image.vNode.size();
        uint32_t CTestImage::*const apnFirst[] = {&CTestImage::nFirstPref, &CTestImage::nFirstCity,
                                                  &CTestImage::nFirstTown};
        switch (Below(random, 5)) {
        case 0:
            image.*OneOf(random, apnFirst) = AnyWord(random, nNodes);
            return;
        case 1:
            image.nPrefCount = AnyWord(random, nNodes);
            return;
        case 2:
            image.nTownCount = AnyWord(random, nNodes);
            return;
        case 3: // the towns are all nodes
            image.nFirstTown = 0;
            image.nTownCount = static_cast<uint32_t>(nNodes);
            return;
        default: // as many cities
            image.vCityIndex.resize(Below(random, nNodes + 4), AnyWord(random, nNodes));
        }
    }

    static void DamageTree(CRandom& random, CTestImage& image) {
        size_t const nNodes = image.vNode.size();
        if (nNodes == 0) return;
        tagADDRNODE& node = image.vNode[Below(random, Chance(random, 50) ? nNodes : std::min<size_t>(nNodes, 15))];
        tagADDRNODE const& other = OneOf(random, image.vNode);
        switch (Below(random, 10)) {
        case 0:
            node.nLevel = static_cast<uint8_t>(Below(random, 9));
            return;
        case 1:
        case 2:
        case 3:
            node.nName = AnyOffset(random, image);
            return;
        case 4:
            node.nInfo = AnyWord(random, image.vInfo.size());
            return;
        case 5: // also in circles
            node.nParent = AnyWord(random, nNodes);
            return;
        case 6:
            node.nChildCount = AnyWord(random, nNodes);
            return;
        case 7:
            node.nFirstChild = AnyWord(random, nNodes);
            return;
        default: // those of another node, or some of them
            node.nFirstChild = other.nFirstChild + static_cast<uint32_t>(Below(random, 2));
            node.nChildCount = other.nChildCount + static_cast<uint32_t>(Below(random, 3));
        }
    }

    static void DamageIndexes(CRandom& random, CTestImage& image) {
        std::vector<uint32_t>& vIndex = Chance(random, 50) ? image.vCityIndex : image.vOfficeIndex;
        if (vIndex.empty()) return;
        if (Chance(random, 50)) return Stir(random, vIndex);
        vIndex[Below(random, vIndex.size())] = AnyWord(random, image.vNode.size());
    }

    void Make(CRandom& random, CWildRecipe const& recipe) {
        CTestImage image = Tree(random, recipe);
        Entries(random, image, recipe.nEntryPercent);
        image.Complete();
        // The last text, which some records are given: nothing stands behind it.
        image.strArea += Chance(random, 50) ? OneOf(random, m_vName) : OneOf(random, m_vCode);
        image.strArea += '\0';
        for (size_t n = Chance(random, 60) ? Below(random, recipe.nDamages + 1) : 0; n > 0; --n)
            switch (Below(random, 4)) {
            case 0:
                DamageEntries(random, image);
                break;
            case 1:
                DamageRuns(random, image);
                break;
            case 2:
                DamageIndexes(random, image);
                break;
            default:
                DamageTree(random, image);
            }
        size_t const nLost = Chance(random, 15) ? 1 + Below(random, 9) : 0; // its last NUL at least
        image.strArea.resize(image.strArea.size() - std::min(image.strArea.size(), nLost));
        m_vByte = image.Bytes();
        Widen(4 * Below(random, 4));
        if (Chance(random, 8)) { // the area ends before its last texts do
            uint32_t const nSize = HeaderWord(m_vByte.data(), HDR_STRING_SIZE);
            auto const nShorter = static_cast<uint32_t>(nSize - Below(random, std::min<size_t>(nSize + 1u, 30)));
            std::memcpy(&m_vByte[4 * HDR_STRING_SIZE], &nShorter, sizeof nShorter);
        }
    }

    // Puts bytes in front of the string area: the image begins at another address, the area ends at the same one.
    void Widen(size_t nBytes) {
        uint32_t nArea = HeaderWord(m_vByte.data(), HDR_STRING_AREA);
        m_vByte.insert(m_vByte.begin() + static_cast<std::ptrdiff_t>(nArea), nBytes, 0);
        nArea += static_cast<uint32_t>(nBytes);
        std::memcpy(&m_vByte[4 * HDR_STRING_AREA], &nArea, sizeof nArea);
    }

    CNames m_vName, m_vCode;
    CBlockBytes m_vByte;
    CPlainDic m_plain;
};

// --- asking --------------------------------------------------------------------------------------------------------

// Copies of a question's texts, each with its NUL right before a page that cannot be touched.
class CAskedTexts {
  public:
    CAskedTexts()
        : m_text(std::string(SIZE - 1, 'x'), CGuardedBytes::Writable),
          m_name(std::string(SIZE - 1, 'x'), CGuardedBytes::Writable) {}

    template <typename TDic>
    CAnswer Asked(TDic& dictionary, CQuestion const& question) const {
        return Ask(dictionary, question, Put(m_text, question.strText), Put(m_name, question.strName));
    }

  private:
    static constexpr size_t SIZE = 16384;

    static char* Put(CGuardedBytes const& bytes, std::string const& str) {
        size_t const nSize = str.size() + 1;
        return static_cast<char*>(std::memcpy(bytes.Text() + SIZE - nSize, str.c_str(), nSize));
    }

    CGuardedBytes m_text, m_name;
};

// Questions with the answers that the plain model gives.
class CExpected {
  public:
    CExpected(unsigned char const* pImage, CAskedTexts const& texts, std::vector<CQuestion> vQuestion)
        : m_texts(texts), m_vQuestion(std::move(vQuestion)) {
        m_plain.SetDictionary(pImage);
        for (CQuestion const& question : m_vQuestion) m_vAnswer.push_back(texts.Asked(m_plain, question));
    }

    // The first difference, with what came before it; "" when there is none.
    std::string Difference(CAddrDic& dictionary, char const* pszWhen) const {
        for (size_t n = 0; n < m_vQuestion.size(); ++n) {
            CQuestion const& question = m_vQuestion[n];
            CAnswer before, after;
            LookAt(dictionary, before);
            CAnswer const answer = m_texts.Asked(dictionary, question);
            LookAt(dictionary, after);
            std::string const str = ::Difference(question, answer, m_vAnswer[n]);
            if (!str.empty()) return std::string(pszWhen) + ", " + str;
            bool const bKeeps = question.nKind > QUESTION_CODE5 || answer.nResult == 0;
            if (bKeeps && !::Difference(question, after, before).empty())
                return std::string(pszWhen) + ", " + Shown(question) + ": the object's lists change";
        }
        return "";
    }

    std::vector<CQuestion> const& Questions() const { return m_vQuestion; }
    std::vector<CAnswer> const& Answers() const { return m_vAnswer; }

  private:
    CAskedTexts const& m_texts;
    std::vector<CQuestion> m_vQuestion;
    std::vector<CAnswer> m_vAnswer;
    CPlainDic m_plain;
};

#endif
