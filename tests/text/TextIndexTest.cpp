// The index of folded names: which bytes are one, and that every name of a dictionary is found by it.
#include "text/TextIndex.h"

#include "tests/text/TextWorld.h"
#include "text/CityForms.h"
#include "text/DictionaryWalk.h"
#include "text/FoldTable.h"
#include "text/FoldedText.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>
#include <set>
#include <utility>

using qeadrs::CTextHash;
using qeadrs::CTextIndex;
using namespace qeadrs; // the words and bits of the index
using testing::Contains;
using testing::IsEmpty;
using testing::Not;

namespace {

class TextIndexOfASmallCountry : public testing::Test {
  protected:
    TextIndexOfASmallCountry() { m_dic.SetDictionary(m_vImage.data()); }

    uint32_t Word(unsigned n) const {
        uint32_t nValue;
        std::memcpy(&nValue, m_vIndex.data() + 4 * n, sizeof nValue);
        return nValue;
    }
    // Whether the index can be bound with another word in its header.
    bool BindsWith(unsigned nWord, uint32_t nValue) const {
        CImageBytes vIndex = m_vIndex;
        SetWord(vIndex, nWord, nValue);
        CTextIndex index;
        bool const bBound = index.Bind(vIndex.data(), vIndex.size());
        EXPECT_EQ(index.IsBound(), bBound);
        return bBound;
    }

    static CTextHash Hash(uint32_t nParent, std::string_view strName) {
        auto const pFolded = std::make_unique<CFoldedText>();
        pFolded->Fold(strName);
        CTextHash hash(nParent);
        for (size_t i = 0; i < pFolded->nCount; ++i) hash.Add(pFolded->anToken[i]);
        return hash;
    }
    // The values of a name's slots.
    static std::vector<uint32_t> Values(CTextIndex::CTable const& table, CTextHash const& hash) {
        std::vector<uint32_t> vValue;
        CTextIndex::ForEach(table, hash, [&](uint32_t nValue) {
            vValue.push_back(nValue);
            return false;
        });
        return vValue;
    }
    std::vector<uint32_t> Cities(CTextIndex const& index, std::string_view strName) const {
        std::vector<uint32_t> vValue = Values(index.CityTable(), Hash(TEXT_CITY_PARENT, strName));
        for (uint32_t& nValue : vValue) nValue &= ~CITY_GOES_ON;
        return vValue;
    }
    // The number of a city by its name with the prefecture.
    uint32_t Number(std::string const& strName) const {
        CDictionaryView const dic(m_dic);
        for (uint32_t n = 0; n < dic.Word(HDR_CITY_COUNT); ++n) {
            tagADDRNODE const& city = *dic.GetAddrNode(dic.Word(HDR_FIRST_CITY) + n);
            if (std::string(NodeName(dic, *NodeAbove(dic, city))).append(NodeName(dic, city)) == strName) return n;
        }
        ADD_FAILURE() << "no city " << strName;
        return 0;
    }

    CImageBytes const m_vImage = WithIndex(TextRecords().Bytes(), {});
    CImageBytes const m_vIndex = IndexOf(m_vImage);
    CAddrDic m_dic;
};

uint32_t Crc32(CImageBytes const& vByte) {
    uint32_t n = 0xFFFFFFFF;
    for (unsigned char const c : vByte) {
        n ^= c;
        for (int i = 0; i < 8; ++i) n = (n & 1) != 0 ? n >> 1 ^ 0xEDB88320 : n >> 1;
    }
    return ~n;
}

} // namespace

// The index is a function of the records, of the foldings, and of the code that cuts names. The first two are told apart
// by the checker and by the header; the third has only the number of the layout.
TEST_F(TextIndexOfASmallCountry, IsTheOneThatItsLayoutStandsFor) {
    CImageBytes vIndex = m_vIndex;
    SetWord(vIndex, TXT_FOLDINGS, 0); // foldings that none of these names has change nothing else
    constexpr uint32_t LAYOUT = 1, CHECKSUM = 0x71BFAB26;
    EXPECT_TRUE(TEXT_LAYOUT == LAYOUT && Crc32(vIndex) == CHECKSUM)
        << "The index of the same records is another one: layout " << TEXT_LAYOUT << ", checksum 0x" << std::hex
        << Crc32(vIndex)
        << ". If what is put into an index has changed (its sections, CityForms, ReadArea), raise TEXT_LAYOUT: "
           "otherwise every dictionary of the earlier version is read with the wrong rules, and `check` calls it "
           "damaged. If only the rows of TextWorld.h or the foldings of their characters have, TEXT_LAYOUT stays. "
           "Then write both numbers here.";
}

TEST_F(TextIndexOfASmallCountry, IsBoundAsItWasBuilt) {
    CTextIndex index;
    EXPECT_FALSE(index.IsBound());
    ASSERT_TRUE(index.Bind(m_vIndex.data(), m_vIndex.size()));
    EXPECT_TRUE(index.IsBound());
    EXPECT_EQ(index.Size(), m_vIndex.size());
    EXPECT_TRUE(index.Bind(m_vIndex.data(), m_vIndex.size() + 16)) << "more may stand behind it";
    EXPECT_EQ(index.Size(), m_vIndex.size());
    CAddrDic dic;
    CImageBytes const vWith = WithIndex(m_vImage, m_vIndex);
    dic.SetDictionary(vWith.data());
    EXPECT_EQ(qeadrs::TextIndex(dic).size(), m_vIndex.size());
    EXPECT_EQ(qeadrs::BuildTextIndex(dic), m_vIndex) << "the one that is there is not looked at";
}

TEST_F(TextIndexOfASmallCountry, IsNotBoundWhenItIsTooShortOrNotAligned) {
    CTextIndex index;
    ASSERT_TRUE(index.Bind(m_vIndex.data(), m_vIndex.size()));
    EXPECT_FALSE(index.Bind(nullptr, m_vIndex.size()));
    EXPECT_FALSE(index.IsBound()) << "nor is the last one";
    for (size_t nSize = 0; nSize < m_vIndex.size(); ++nSize)
        ASSERT_FALSE(index.Bind(m_vIndex.data(), nSize)) << nSize;
    CImageBytes vMoved(m_vIndex.size() + 4);
    for (size_t n = 1; n < 4; ++n) {
        std::copy(m_vIndex.begin(), m_vIndex.end(), vMoved.begin() + static_cast<std::ptrdiff_t>(n));
        EXPECT_FALSE(index.Bind(vMoved.data() + n, m_vIndex.size())) << n;
    }
}

TEST_F(TextIndexOfASmallCountry, IsNotBoundWithABrokenWordInItsHeader) {
    auto const nSize = static_cast<uint32_t>(m_vIndex.size());
    constexpr uint32_t MOST = std::numeric_limits<uint32_t>::max();
    for (unsigned const nWord : {TXT_MAGIC, TXT_FOLDINGS, TXT_LAYOUT})
        for (uint32_t const nValue : {Word(nWord) + 1, Word(nWord) - 1, 0u, MOST})
            EXPECT_FALSE(BindsWith(nWord, nValue)) << nWord << " " << nValue;
    for (uint32_t const nValue : {0u, TXT_BYTES - 1, TXT_BYTES, nSize - 1, nSize + 1, MOST})
        EXPECT_FALSE(BindsWith(TXT_SIZE, nValue)) << nValue;
    for (uint32_t const nValue : {0u, 20u, 28u, 29u, 32u, 33u, 64u, MOST})
        EXPECT_FALSE(BindsWith(TXT_CITY_BITS, nValue)) << nValue;
    for (uint32_t const nValue : {0u, 4u, 20u, 28u, 29u, 32u, 33u, 64u, MOST})
        EXPECT_FALSE(BindsWith(TXT_PAIR_BITS, nValue)) << nValue;
    for (unsigned const nWord : {TXT_CITY_SLOTS, TXT_CITIES, TXT_TOWN_SLOTS, TXT_RULES, TXT_PAIRS})
        for (uint32_t const nValue :
             {0u, TXT_BYTES - 4, Word(nWord) + 1, Word(nWord) + 2, nSize, nSize + 4, MOST - 3})
            EXPECT_FALSE(BindsWith(nWord, nValue)) << nWord << " " << nValue;
    auto const ExpectRoom = [&](unsigned nWord, size_t nRecord) {
        auto const nMost = static_cast<uint32_t>((nSize - Word(nWord - 1)) / nRecord);
        EXPECT_TRUE(BindsWith(nWord, nMost)) << nWord;
        for (uint32_t const nValue : {nMost + 1, static_cast<uint32_t>(MOST / nRecord) + 1, MOST})
            EXPECT_FALSE(BindsWith(nWord, nValue)) << nWord << " " << nValue;
    };
    ExpectRoom(TXT_CITY_COUNT, sizeof(tagTEXTCITY));
    ExpectRoom(TXT_TOWN_COUNT, sizeof(tagTEXTSLOT));
    ExpectRoom(TXT_RULE_COUNT, sizeof(tagAREARULE));
    for (uint32_t const nValue : {TEXT_LAST_TOKENS + 1, MOST})
        EXPECT_FALSE(BindsWith(TXT_LAST_COUNT, nValue)) << nValue;
    // Counts and tokens that lead nowhere: names are missed, and that is all.
    for (unsigned const nWord : {unsigned{TXT_CITY_TOKENS}, unsigned{TXT_LAST}, TXT_LAST + 3u})
        for (uint32_t const nValue : {0u, MOST}) EXPECT_TRUE(BindsWith(nWord, nValue)) << nWord << " " << nValue;
}

TEST_F(TextIndexOfASmallCountry, FindsEachCityByEachFormOfItsName) {
    CTextIndex index;
    ASSERT_TRUE(index.Bind(m_vIndex.data(), m_vIndex.size()));
    CDictionaryView const dic(m_dic);
    for (uint32_t n = 0; n < dic.Word(HDR_CITY_COUNT); ++n) {
        tagADDRNODE const& city = *dic.GetAddrNode(dic.Word(HDR_FIRST_CITY) + n);
        std::string_view const strPref = NodeName(dic, *NodeAbove(dic, city)), strCity = NodeName(dic, city);
        ASSERT_NE(index.City(n), nullptr);
        for (uint32_t const nPref : {CITY_PREF, CITY_SHORT_PREF, 0u})
            for (uint32_t const nForm : {0u, CITY_NO_COUNTY, CITY_WARD_ONLY, CITY_NO_WARD}) {
                std::string const strName(CityForm(strCity, nForm));
                std::string const strFront(PrefForm(strPref, nPref));
                if (strName.empty() || (nPref != 0 && strFront.empty())) continue;
                EXPECT_THAT(Cities(index, strFront + strName), Contains(n | nPref | nForm)) << strFront << strName;
            }
    }
    EXPECT_EQ(index.City(dic.Word(HDR_CITY_COUNT)), nullptr);
    EXPECT_EQ(index.City(ADDR_NONE), nullptr);
}

// By hand what the cutting of names must give.
TEST_F(TextIndexOfASmallCountry, HasTheFormsThatPeopleWrite) {
    CTextIndex index;
    ASSERT_TRUE(index.Bind(m_vIndex.data(), m_vIndex.size()));
    using testing::UnorderedElementsAre;
    EXPECT_THAT(Cities(index, "余市町"), UnorderedElementsAre(Number("北海道余市郡余市町") | CITY_NO_COUNTY));
    EXPECT_THAT(Cities(index, "三宅村"), UnorderedElementsAre(Number("東京都三宅島三宅村") | CITY_NO_COUNTY));
    EXPECT_THAT(Cities(index, "利島村"), UnorderedElementsAre(Number("東京都利島村")));
    EXPECT_THAT(Cities(index, "東京千代田区"), UnorderedElementsAre(Number("東京都千代田区") | CITY_SHORT_PREF));
    EXPECT_THAT(Cities(index, "青葉区"), UnorderedElementsAre(Number("宮城県仙台市青葉区") | CITY_WARD_ONLY,
                                                              Number("神奈川県横浜市青葉区") | CITY_WARD_ONLY));
    EXPECT_THAT(Cities(index, "札幌市"), UnorderedElementsAre(Number("北海道札幌市中央区") | CITY_NO_WARD,
                                                              Number("北海道札幌市北区") | CITY_NO_WARD));
    EXPECT_THAT(Cities(index, "府中市"), UnorderedElementsAre(Number("東京都府中市"), Number("広島県府中市")));
    EXPECT_THAT(Cities(index, "北海札幌市"), IsEmpty());
    EXPECT_THAT(Cities(index, "代田区"), IsEmpty());
    EXPECT_THAT(Cities(index, ""), IsEmpty());
    CFoldedText last;
    last.Fold("市区町村都");
    for (size_t i = 0; i < 4; ++i) EXPECT_TRUE(index.MayEndCity(last.anToken[i])) << i;
    EXPECT_FALSE(index.MayEndCity(last.anToken[4]));
}

TEST_F(TextIndexOfASmallCountry, FindsEachTownInItsCityAndInNoOther) {
    CTextIndex index;
    ASSERT_TRUE(index.Bind(m_vIndex.data(), m_vIndex.size()));
    CDictionaryView const dic(m_dic);
    size_t nTowns = 0;
    for (uint32_t n = 0; n < dic.Word(HDR_CITY_COUNT); ++n) {
        uint32_t const nCity = dic.Word(HDR_FIRST_CITY) + n;
        CTextIndex::CTable const table = index.TownTable(*index.City(n));
        ForEachChild(dic, *dic.GetAddrNode(nCity), [&](uint32_t nTown, tagADDRNODE const& town) {
            std::string_view const strTown = NodeName(dic, town);
            if (strTown.empty()) return false;
            ++nTowns;
            bool bDivided = false;
            ForEachChild(dic, town, [&](uint32_t, tagADDRNODE const& node) {
                bDivided = bDivided || IsDivision(node);
                return false;
            });
            uint32_t const nValue = nTown | (bDivided ? TOWN_DIVIDED : 0);
            EXPECT_THAT(Values(table, Hash(nCity, strTown)), Contains(nValue)) << strTown;
            EXPECT_THAT(Values(table, Hash(nCity + 1, strTown)), Not(Contains(nValue))) << strTown;
            return false;
        });
    }
    EXPECT_GT(nTowns, 20u);
}

TEST_F(TextIndexOfASmallCountry, KnowsWhichTokensStandSideBySideInTowns) {
    CTextIndex index;
    ASSERT_TRUE(index.Bind(m_vIndex.data(), m_vIndex.size()));
    CDictionaryView const dic(m_dic);
    std::vector<uint16_t> vToken;
    std::set<std::pair<uint16_t, uint16_t>> pairs;
    for (uint32_t n = 0; n < dic.Word(HDR_TOWN_COUNT); ++n) {
        CFoldedText folded;
        folded.Fold(NodeName(dic, *dic.GetAddrNode(dic.Word(HDR_FIRST_TOWN) + n)));
        vToken.insert(vToken.end(), folded.anToken, folded.anToken + folded.nCount);
        for (size_t i = 1; i < folded.nCount; ++i) pairs.insert({folded.anToken[i - 1], folded.anToken[i]});
    }
    ASSERT_GT(pairs.size(), 40u);
    for (auto const& [nFirst, nSecond] : pairs)
        EXPECT_TRUE(index.MayGoOn(nFirst, nSecond)) << nFirst << " " << nSecond;
    size_t nOthers = 0, nShared = 0;
    for (uint16_t const nFirst : vToken)
        for (uint16_t const nSecond : vToken) {
            if (pairs.count({nFirst, nSecond}) != 0) continue;
            ++nOthers;
            nShared += index.MayGoOn(nFirst, nSecond) ? 1u : 0u;
        }
    EXPECT_LT(nShared * 2, nOthers) << "a set that tells nothing apart";
}

TEST(TextIndex, HasASetOfPairsForNoTowns) {
    CAddrDic dic;
    CImageBytes const vIndex = qeadrs::BuildTextIndex(dic);
    CTextIndex index;
    ASSERT_TRUE(index.Bind(vIndex.data(), vIndex.size()));
    EXPECT_FALSE(index.MayGoOn(u'丸', u'の'));
    EXPECT_FALSE(index.MayGoOn(0, 0));
    EXPECT_FALSE(index.MayGoOn(0xFFFF, 0xFFFF));
}

TEST_F(TextIndexOfASmallCountry, FindsWhatIsBelowATown) {
    CTextIndex index;
    ASSERT_TRUE(index.Bind(m_vIndex.data(), m_vIndex.size()));
    CDictionaryView const dic(m_dic);
    size_t nBuildings = 0, nTownsWithRules = 0;
    for (uint32_t n = 0; n < dic.Word(HDR_TOWN_COUNT); ++n) {
        uint32_t const nTown = dic.Word(HDR_FIRST_TOWN) + n;
        tagADDRNODE const& town = *dic.GetAddrNode(nTown);
        CTextIndex::CTable const table = index.TownTable(*index.City(town.nParent - dic.Word(HDR_FIRST_CITY)));
        ForEachChild(dic, town, [&](uint32_t nNode, tagADDRNODE const& node) {
            if (node.nLevel != LEVEL_BLOCK) return false;
            ++nBuildings;
            EXPECT_THAT(Values(table, Hash(nTown, NodeName(dic, node))), Contains(nNode));
            return false;
        });
        CTextHash hash(nTown);
        hash.Add(TOKEN_RULES);
        for (uint32_t const nValue : Values(table, hash)) {
            CTextIndex::CRules const rules = index.Rules(nValue, nTown);
            EXPECT_NE(rules.nCount, 0u);
            ++nTownsWithRules;
            for (size_t i = 0; i < rules.nCount; ++i)
                EXPECT_EQ(dic.GetAddrNode(rules.pFirst[i].nNode)->nParent, nTown);
            EXPECT_EQ(index.Rules(nValue, nTown + 1).nCount, 0u) << "another town's";
            EXPECT_EQ(index.Rules(nValue & ~TOWN_RULES, nTown).nCount, 0u) << "a node, and no rule";
            EXPECT_EQ(index.Rules(nValue + 1, nTown).nCount, 0u) << "no head";
            EXPECT_EQ(index.Rules(TOWN_RULES | TOWN_NODE, nTown).nCount, 0u) << "behind the last";
        }
    }
    EXPECT_EQ(nBuildings, 1u);
    EXPECT_EQ(nTownsWithRules, 5u); // 北一条西, 大通西, 葛巻, 芝, 琴平町
}

TEST_F(TextIndexOfASmallCountry, GivesNoSlotsToACityWhoseRecordLeadsOut) {
    CTextIndex index;
    ASSERT_TRUE(index.Bind(m_vIndex.data(), m_vIndex.size()));
    tagTEXTCITY const right = *index.City(0);
    EXPECT_NE(index.TownTable(right).pSlot, nullptr);
    uint32_t const nTotal = Word(TXT_TOWN_COUNT);
    for (auto const& [nFirst, nBits] : std::vector<std::pair<uint32_t, uint32_t>>{{nTotal, right.nBits},
                                                                                  {nTotal + 1, right.nBits},
                                                                                  {nTotal - 1, 1},
                                                                                  {0xFFFFFFFF, 1},
                                                                                  {0, 0},
                                                                                  {0, 28},
                                                                                  {0, 29},
                                                                                  {0, 32},
                                                                                  {0, 0xFFFFFFFF}}) {
        tagTEXTCITY city = right;
        city.nFirstSlot = nFirst;
        city.nBits = nBits;
        EXPECT_EQ(index.TownTable(city).pSlot, nullptr) << nFirst << " " << nBits;
    }
    CTextIndex::CTable const none;
    EXPECT_THAT(Values(none, Hash(0, "丸の内")), IsEmpty());
}
