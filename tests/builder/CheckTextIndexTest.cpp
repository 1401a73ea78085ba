// The text index: where the compiler puts it, and that nothing but the index of the records themselves is accepted.
#include "builder/ImageWriter.h"
#include "builder/TextTable.h"
#include "tests/builder/CheckMutants.h"
#include "tests/builder/CheckRecipe.h"
#include "text/AddressText.h"

#include <gmock/gmock.h>

#include <algorithm>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

namespace {

CImageBytes const& Indexed() {
    static CImageBytes const vByte = CRecipe("append the index").Apply(SmallWorld());
    return vByte;
}

constexpr size_t MARK_BYTES = 4, FOLDINGS = 4, LAYOUT = 12; // of the index; its size is between

} // namespace

TEST(CheckTextIndex, StandsBehindAllOtherTablesOnAMultipleOf16) {
    CImageBytes const& vByte = Indexed();
    EXPECT_THAT(LinesOf(vByte), IsEmpty());
    EXPECT_EQ(WordAt(vByte, 4 * HDR_FIFTH_TABLE), SmallWorld().size());
    EXPECT_EQ(WordAt(vByte, 4 * HDR_FIFTH_TABLE) % 16, 0u);
    EXPECT_EQ(WordAt(vByte, 4 * HDR_SIXTH_TABLE), vByte.size());
    EXPECT_EQ(WordAt(vByte, 4 * HDR_FILE_SIZE), vByte.size());
    EXPECT_EQ(vByte.size() % 16, 0u);
    EXPECT_TRUE(std::equal(SmallWorld().begin() + HDR_BYTES, SmallWorld().end(), vByte.begin() + HDR_BYTES))
        << "the records are what they were";
}

TEST(CheckTextIndex, IsMadeOfTheRecordsAndNotOfTheOneThatIsThere) {
    CImageBytes vByte = Indexed();
    auto const table = qe::FindTextTable(vByte);
    ASSERT_TRUE(table);
    unsigned char const* const pIndex = vByte.data() + table->nOffset;
    CImageBytes const vIndex(pIndex, pIndex + table->nSize);
    for (size_t n = table->nOffset; n < vByte.size(); n += 4) SetWordAt(vByte, n, ADDR_NONE);
    CAddrDic dic;
    dic.SetDictionary(vByte.data());
    EXPECT_EQ(qeadrs::BuildTextIndex(dic), vIndex);
}

// Each byte once, by another bit each time.
TEST(CheckTextIndex, IsRefusedWithAnyByteChangedAlthoughTheChecksumIsRight) {
    CImageBytes vByte = Indexed();
    auto const table = qe::FindTextTable(vByte);
    ASSERT_TRUE(table);
    for (uint32_t n = MARK_BYTES; n < table->nSize; ++n) {
        if (n / 4 == FOLDINGS / 4 || n / 4 == LAYOUT / 4) continue; // other readers' index
        unsigned char& c = vByte[table->nOffset + n];
        unsigned char const cRight = c;
        c = static_cast<unsigned char>(c ^ 1u << n % 8);
        qe::RepairChecksum(vByte);
        CTrial const trial("byte " + std::to_string(n) + " of the text index");
        ASSERT_THAT(LinesOf(vByte), ElementsAre(StartsWith("text-index: header word 15 the text index"))) << n;
        c = cRight;
    }
}

// A file that ends within it is refused, unless nothing but its mark, or less, is left.
TEST(CheckTextIndex, IsRefusedCutAtEveryByte) {
    auto const table = qe::FindTextTable(Indexed());
    ASSERT_TRUE(table);
    size_t nRefused = 0;
    for (size_t nLength = table->nOffset; nLength < table->nOffset + table->nSize; ++nLength) {
        CImageBytes vByte(Indexed().begin(), Indexed().begin() + static_cast<std::ptrdiff_t>(nLength));
        SetWordAt(vByte, 4 * HDR_FILE_SIZE, static_cast<uint32_t>(nLength));
        SetWordAt(vByte, 4 * HDR_SIXTH_TABLE, static_cast<uint32_t>(nLength));
        qe::RepairChecksum(vByte);
        CTrial const trial("the text index cut to " + std::to_string(nLength - table->nOffset) + " bytes");
        bool const bFound = qe::FindTextTable(vByte).has_value();
        EXPECT_EQ(LinesOf(vByte).empty(), !bFound) << nLength;
        nRefused += bFound;
    }
    EXPECT_GT(nRefused, table->nSize / 2);
}

TEST(CheckTextIndex, OfOtherFoldingsOrAnotherLayoutIsARemark) {
    for (size_t nWord : {FOLDINGS, LAYOUT}) {
        CImageBytes vByte = Indexed();
        size_t const nOffset = WordAt(vByte, 4 * HDR_FIFTH_TABLE) + nWord;
        SetWordAt(vByte, nOffset, WordAt(vByte, nOffset) + 1);
        SetWordAt(vByte, vByte.size() - 4, 0x55555555); // what is in it is not for us to judge
        qe::RepairChecksum(vByte);
        qe::CCheckReport const report = qe::CheckDictionary(vByte);
        EXPECT_TRUE(report.IsSound());
        EXPECT_THAT(report.Remarks(), ElementsAre(StartsWith("The text index was made for other readers: ")));
    }
}

TEST(CheckTextIndex, IsNoMatterForARemarkWhenItIsRightOrNotThere) {
    EXPECT_THAT(qe::CheckDictionary(Indexed()).Remarks(), IsEmpty());
    EXPECT_THAT(qe::CheckDictionary(SmallWorld()).Remarks(), IsEmpty());
}

// --- sound files that are made to hurt: many names, all rules kept ---------------------------------------

namespace {

// A dictionary put together name by name; each has its own text and no reading.
class CSoundWorld {
  public:
    uint32_t Add(uint8_t nLevel, uint32_t nParent, std::string const& strName, uint32_t nInfo = ADDR_NONE) {
        auto const nNode = static_cast<uint32_t>(m_vNode.size());
        m_vNode.push_back({nLevel, {}, AddText(strName), nInfo, nParent, 0, ADDR_NONE});
        if (nParent != ADDR_NONE && m_vNode[nParent].nChildCount++ == 0) m_vNode[nParent].nFirstChild = nNode;
        if (nLevel == LEVEL_CITY) m_vCity.push_back(nNode);
        return nNode;
    }
    // Entries of one code, in the order of their nodes.
    uint32_t AddEntry(uint32_t nNode) {
        m_vEntry.push_back({0, nNode});
        return static_cast<uint32_t>(m_vEntry.size() - 1);
    }

    CImageBytes Bytes() const {
        CImageBytes vByte = Hostile(m_vNode, m_strArea, m_vEntry, m_vCity);
        SetRun(vByte, LEVEL_PREF, HDR_FIRST_PREF, HDR_PREF_COUNT);
        SetRun(vByte, LEVEL_CITY, HDR_FIRST_CITY, HDR_CITY_COUNT);
        SetRun(vByte, LEVEL_TOWN, HDR_FIRST_TOWN, HDR_TOWN_COUNT);
        qe::RepairChecksum(vByte);
        return vByte;
    }

  private:
    uint32_t AddText(std::string const& str) {
        auto const nOffset = static_cast<uint32_t>(m_strArea.size());
        m_strArea.append(str).append(2, '\0');
        return nOffset;
    }
    void SetRun(CImageBytes& vByte, uint8_t nLevel, tagHEADERWORD nFirst, tagHEADERWORD nCount) const {
        auto const IsOfLevel = [=](tagADDRNODE const& node) { return node.nLevel == nLevel; };
        auto const pFirst = std::find_if(m_vNode.begin(), m_vNode.end(), IsOfLevel);
        SetWordAt(vByte, 4 * nFirst, static_cast<uint32_t>(pFirst - m_vNode.begin()));
        SetWordAt(vByte, 4 * nCount, static_cast<uint32_t>(std::count_if(m_vNode.begin(), m_vNode.end(), IsOfLevel)));
    }

    std::vector<tagADDRNODE> m_vNode;
    std::vector<tagADDRINFO> m_vEntry;
    std::vector<uint32_t> m_vCity;
    std::string m_strArea = std::string("1000000\0\0", 9); // the only code
};

void ExpectSoundInTime(CSoundWorld const& world) {
    CImageBytes vByte = world.Bytes();
    CTrial const trial("the text index of a hostile file");
    qe::AppendTextIndex(vByte);
    EXPECT_THAT(LinesOf(vByte), IsEmpty());
}

} // namespace

// More than the index has numbers for.
TEST(CheckBudget, TheTextIndexOfCitiesOfOneName) {
    CSoundWorld world;
    world.Add(LEVEL_PREF, ADDR_NONE, "東京都");
    for (uint32_t n = 0; n < 66000; ++n) world.Add(LEVEL_CITY, 0, "千代田市丸の内区");
    ExpectSoundInTime(world);
}

TEST(CheckBudget, TheTextIndexOfSubdivisionsThatSayMuch) {
    CSoundWorld world;
    world.Add(LEVEL_PREF, ADDR_NONE, "東京都");
    world.Add(LEVEL_CITY, 0, "千代田区");
    world.Add(LEVEL_TOWN, 1, "丸の内");
    for (uint32_t n = 0; n < 100000; ++n)
        world.Add(LEVEL_AREA, 2, "上、下、１丁目１、２、３、４、５−６〜７、８番地「９を除く」",
                  world.AddEntry(3 + n));
    ExpectSoundInTime(world);
}

TEST(CheckBudget, TheTextIndexOfBuildingsWithBrackets) {
    CSoundWorld world;
    world.Add(LEVEL_PREF, ADDR_NONE, "東京都");
    world.Add(LEVEL_CITY, 0, "千代田区");
    world.Add(LEVEL_TOWN, 1, "丸の内");
    for (uint32_t n = 0; n < 100000; ++n)
        world.Add(LEVEL_BLOCK, 2, std::to_string(n) + "ビル（次のビル）", world.AddEntry(3 + n));
    ExpectSoundInTime(world);
}

// Names whose hashes all lie in a thirty-second of the table, which then is one run of taken slots.
TEST(CheckBudget, TheTextIndexOfTownsWithChosenHashes) {
    CSoundWorld world;
    world.Add(LEVEL_PREF, ADDR_NONE, "東京都");
    world.Add(LEVEL_CITY, 0, "千代田区");
    constexpr uint64_t MULTIPLIER = 0x9E3779B97F4A7C15;
    constexpr uint32_t NAMES = 500000, LETTERS = 26, LENGTH = 6;
    uint32_t nNames = 0;
    for (uint64_t nTried = 0; nNames < NAMES; ++nTried) {
        std::string strName(LENGTH, 'a');
        uint64_t nHash = 2 * MULTIPLIER, nRest = nTried; // below node 1
        for (char& c : strName) {
            c = static_cast<char>('a' + nRest % LETTERS);
            nRest /= LETTERS;
            nHash = (nHash ^ static_cast<unsigned char>(c)) * MULTIPLIER;
        }
        if (nHash >> 59 != 0) continue;
        world.Add(LEVEL_TOWN, 1, strName);
        ++nNames;
    }
    ExpectSoundInTime(world);
}
