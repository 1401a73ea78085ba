// The image writer: where each record goes, read back through the tables of the image.
#include "builder/ImageWriter.h"

#include "dic/AddrDic.h"
#include "dic/ImageHeader.h"

#include <gmock/gmock.h>

#include <cstring>
#include <map>
#include <set>
#include <string>

namespace {

using qe::CImage;
using qe::CImageWriter;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

// An image and the dictionary object over it.
class CWritten {
  public:
    explicit CWritten(CImageWriter const& writer) : image(writer.Write()) { dic.SetDictionary(image.vByte.data()); }

    uint32_t Word(tagHEADERWORD n) const { return HeaderWord(image.vByte.data(), n); }
    tagADDRNODE const& Node(uint32_t n) const { return *dic.GetAddrNode(n); }
    tagADDRINFO const& Info(uint32_t n) const { return *dic.GetAddrInfo(n); }
    std::string Text(uint32_t nOffset) const { return dic.GetString(nOffset); }
    std::string Name(uint32_t nNode) const { return Text(Node(nNode).nName); }

    std::vector<std::string> Names() const {
        std::vector<std::string> vName;
        for (uint32_t n = 0; n < Word(HDR_NODE_COUNT); ++n) vName.push_back(Name(n));
        return vName;
    }
    std::vector<std::string> Codes() const {
        std::vector<std::string> vCode;
        for (uint32_t n = 0; n < Word(HDR_INFO_COUNT); ++n) vCode.push_back(Text(Info(n).nCode));
        return vCode;
    }
    std::vector<uint32_t> Index(tagHEADERWORD nTable, tagHEADERWORD nCount) const {
        std::vector<uint32_t> vNode;
        for (uint32_t n = 0; n < Word(nCount); ++n)
            vNode.push_back(ReadWord(image.vByte.data() + Word(nTable) + 4 * n));
        return vNode;
    }

    CImage image;
    CAddrDic dic;
};

// Two prefectures, added in an order that is not the image's; ids in the order of adding.
//
//   0 東京都   1 港区   2 芝   3 １丁目   4 北海道   5 札幌市   6 大通   7 千代田区   8 千代田   9 会社   10 麻布
struct CWriterWorld : CImageWriter {
    CWriterWorld() {
        AddNode(ADDR_NONE, LEVEL_PREF, "東京都", "トウキョウト");
        AddNode(0, LEVEL_CITY, "港区", "ミナトク");
        AddNode(1, LEVEL_TOWN, "芝", "シバ");
        AddNode(2, LEVEL_AREA, "１丁目", "１チョウメ");
        AddNode(ADDR_NONE, LEVEL_PREF, "北海道", "ホッカイドウ");
        AddNode(4, LEVEL_CITY, "札幌市", "サッポロシ");
        AddNode(5, LEVEL_TOWN, "大通", "オオドオリ");
        AddNode(0, LEVEL_CITY, "千代田区", "チヨダク");
        AddNode(7, LEVEL_TOWN, "千代田", "チヨダ");
        AddNode(3, LEVEL_OFFICE, "会社", "カイシャ");
        AddNode(1, LEVEL_TOWN, "麻布", "アザブ");
        AddEntry(10, "1060001", "106");
        AddEntry(8, "1000001", "100");
        AddEntry(6, "0600000", "060");
        AddEntry(9, "1000001", "100");
        AddOffice(9);
    }
};

// --- nodes
// --------------------------------------------------------------------------------------------------------------

TEST(ImageWriter, PutsNodesDepthByDepthInTheOrderOfTheirParents) {
    CWritten const written{CWriterWorld()};
    EXPECT_THAT(written.Names(), ElementsAre("東京都", "北海道",             //
                                             "港区", "千代田区", "札幌市",   //
                                             "芝", "麻布", "千代田", "大通", //
                                             "１丁目", "会社"));
}

TEST(ImageWriter, TellsWhereEachNodeAndEntryWent) {
    CWritten const written{CWriterWorld()};
    EXPECT_THAT(written.image.vNodeIndex, ElementsAre(0, 2, 5, 9, 1, 4, 8, 3, 7, 10, 6));
    EXPECT_THAT(written.image.vEntryIndex, ElementsAre(3, 1, 0, 2));
}

TEST(ImageWriter, LinksEachParentToItsChildrenAndBack) {
    CWritten const written{CWriterWorld()};
    uint32_t nLinked = 0;
    for (uint32_t n = 0; n < written.Word(HDR_NODE_COUNT); ++n) {
        tagADDRNODE const& node = written.Node(n);
        if (node.nChildCount == 0) continue;
        for (uint32_t nChild = 0; nChild < node.nChildCount; ++nChild)
            EXPECT_EQ(written.Node(node.nFirstChild + nChild).nParent, n);
        nLinked += node.nChildCount;
    }
    EXPECT_EQ(nLinked, 9u) << "every node but the two roots";
    EXPECT_EQ(written.Node(0).nParent, ADDR_NONE);
    EXPECT_EQ(written.Node(1).nParent, ADDR_NONE);
    EXPECT_EQ(written.Node(2).nFirstChild, 5u);
    EXPECT_EQ(written.Node(2).nChildCount, 2u);
}

TEST(ImageWriter, KeepsLevelNameReadingAndZeroPadding) {
    CWritten const written{CWriterWorld()};
    tagADDRNODE const& node = written.Node(3);
    EXPECT_EQ(node.nLevel, LEVEL_CITY);
    EXPECT_THAT(node.abUnused, Each(0));
    EXPECT_EQ(written.Text(node.nName), "千代田区");
    EXPECT_EQ(written.Text(node.nName + 13), "チヨダク") << "directly behind the name's NUL";
}

TEST(ImageWriter, GivesEachNodeItsFirstEntryAndOthersNone) {
    CWriterWorld writer;
    uint32_t const nSecond = writer.AddEntry(8, "1000002", "100");
    CWritten const written(writer);
    EXPECT_EQ(written.Node(7).nInfo, 1u);
    EXPECT_EQ(written.Text(written.Info(written.image.vEntryIndex[nSecond]).nCode), "1000002");
    EXPECT_EQ(written.Node(0).nInfo, ADDR_NONE);
    EXPECT_FALSE(writer.HasEntry(7));
    EXPECT_TRUE(writer.HasEntry(8));
}

TEST(ImageWriter, LetsANodeReferToTheEntryOfAnother) {
    CWriterWorld writer;
    writer.Refer(7, 1);
    EXPECT_TRUE(writer.HasEntry(7));
    CWritten const written(writer);
    EXPECT_EQ(written.Node(3).nInfo, 1u);
    EXPECT_EQ(written.Info(1).nNode, 7u) << "the entry still belongs to the town";
}

TEST(ImageWriter, NotesTheRunsOfTheUpperLevelsInTheHeader) {
    CWritten const written{CWriterWorld()};
    EXPECT_EQ(written.Word(HDR_FIRST_PREF), 0u);
    EXPECT_EQ(written.Word(HDR_PREF_COUNT), 2u);
    EXPECT_EQ(written.Word(HDR_FIRST_CITY), 2u);
    EXPECT_EQ(written.Word(HDR_CITY_COUNT), 3u);
    EXPECT_EQ(written.Word(HDR_FIRST_TOWN), 5u);
    EXPECT_EQ(written.Word(HDR_TOWN_COUNT), 4u);
}

// --- entries and indices
// ------------------------------------------------------------------------------------------------

TEST(ImageWriter, SortsEntriesByCodeThenByNode) {
    CWritten const written{CWriterWorld()};
    EXPECT_THAT(written.Codes(), ElementsAre("0600000", "1000001", "1000001", "1060001"));
    EXPECT_EQ(written.Info(1).nNode, 7u);
    EXPECT_EQ(written.Info(2).nNode, 10u);
}

TEST(ImageWriter, PutsTheOldCodeBehindTheCode) {
    CWritten const written{CWriterWorld()};
    EXPECT_EQ(written.Text(written.Info(3).nCode + 8), "106");
}

TEST(ImageWriter, MarksASupersededEntryAndNamesItsSuccessor) {
    CWriterWorld writer;
    writer.Supersede(0, 2); // 1060001 became 0600000, which stands in front of it
    CWritten const written(writer);
    EXPECT_EQ(written.Info(3).nNode, 6u | ADDRINFO_SUPERSEDED);
    auto const* const p =
        reinterpret_cast<unsigned char const*>(written.dic.GetString(written.Info(3).nCode + 8 + 4));
    EXPECT_EQ(ReadWord(p), 0u);
    EXPECT_EQ(written.Info(0).nNode, 8u);
}

TEST(ImageWriter, GivesASupersededEntryCodesOfItsOwn) {
    CWriterWorld writer;
    uint32_t const nOld = writer.AddEntry(2, "1000001", "100");
    writer.Supersede(nOld, 1);
    CWritten const written(writer);
    uint32_t const nIndex = written.image.vEntryIndex[nOld];
    for (uint32_t n = 0; n < 5; ++n) {
        if (n == nIndex) continue;
        EXPECT_NE(written.Info(n).nCode, written.Info(nIndex).nCode);
    }
}

TEST(ImageWriter, SortsTheCityIndexByNameBytesThenByNode) {
    CWriterWorld writer;
    uint32_t const nLast = writer.AddNode(4, LEVEL_CITY, "千代田区");
    CWritten const written(writer);
    // 千代田区 U+5343, 札幌市 U+672D, 港区 U+6E2F
    EXPECT_THAT(written.Index(HDR_CITY_INDEX, HDR_CITY_COUNT),
                ElementsAre(3, written.image.vNodeIndex[nLast], written.image.vNodeIndex[5], 2));
}

TEST(ImageWriter, SortsTheOrganisationIndexByNameBytesThenByNode) {
    CWriterWorld writer;
    for (char const* psz : {"株式会社", "A社", "会社"}) writer.AddOffice(writer.AddNode(2, LEVEL_OFFICE, psz));
    CWritten const written(writer);
    std::vector<std::string> vName;
    auto const vIndex = written.Index(HDR_OFFICE_INDEX, HDR_OFFICE_COUNT);
    for (uint32_t n : vIndex) vName.push_back(written.Name(n));
    EXPECT_THAT(vName, ElementsAre("A社", "会社", "会社", "株式会社"));
    EXPECT_LT(vIndex[1], vIndex[2]);
}

// --- texts
// --------------------------------------------------------------------------------------------------------------

TEST(ImageWriter, PutsTheCodesFirstInTableOrderAndEqualNeighboursOnce) {
    CWritten const written{CWriterWorld()};
    std::string const strCodes("0600000\000060\0001000001\000100\0001060001\000106\000", 36);
    EXPECT_EQ(std::string(written.dic.GetStrings(), 36), strCodes);
    EXPECT_EQ(written.Info(0).nCode, 0u);
    EXPECT_EQ(written.Info(1).nCode, 12u);
    EXPECT_EQ(written.Info(2).nCode, 12u);
    EXPECT_EQ(written.Info(3).nCode, 24u);
}

TEST(ImageWriter, DoesNotShareACodeWithAnotherOldCode) {
    CWriterWorld writer;
    uint32_t const nOther = writer.AddEntry(2, "1000001", "105");
    CWritten const written(writer);
    EXPECT_EQ(written.Text(written.Info(written.image.vEntryIndex[nOther]).nCode + 8), "105");
}

TEST(ImageWriter, SharesEqualTextsOnlyBelowTheTownLevel) {
    CImageWriter writer;
    std::map<uint8_t, std::set<uint32_t>> mapId;
    for (uint8_t nLevel = LEVEL_PREF; nLevel <= LEVEL_OFFICE; ++nLevel)
        for (int n = 0; n < 2; ++n) mapId[nLevel].insert(writer.AddNode(ADDR_NONE, nLevel, "name", "kana"));
    uint32_t const nOtherKana = writer.AddNode(ADDR_NONE, LEVEL_AREA, "name", "other kana");
    CWritten const written(writer);
    std::set<uint32_t> setShared, setOwn;
    for (auto const& [nLevel, setId] : mapId)
        for (uint32_t nId : setId)
            (nLevel > LEVEL_TOWN ? setShared : setOwn).insert(written.Node(written.image.vNodeIndex[nId]).nName);
    EXPECT_EQ(setShared.size(), 1u);
    EXPECT_EQ(setOwn.size(), 6u);
    EXPECT_EQ(setOwn.count(*setShared.begin()), 0u);
    EXPECT_EQ(setShared.count(written.Node(written.image.vNodeIndex[nOtherKana]).nName), 0u);
}

TEST(ImageWriter, SharesATextWithinItsCityOnly) {
    CImageWriter writer;
    uint32_t const nPref = writer.AddNode(ADDR_NONE, LEVEL_PREF, "東京都");
    std::vector<uint32_t> vArea;
    std::vector<uint32_t> vAlias;
    for (char const* pszCity : {"港区", "千代田区"}) {
        uint32_t const nCity = writer.AddNode(nPref, LEVEL_CITY, pszCity);
        for (char const* pszTown : {"一町", "二町"}) {
            vArea.push_back(writer.AddNode(writer.AddNode(nCity, LEVEL_TOWN, pszTown), LEVEL_AREA, "１丁目"));
            uint32_t const nOffice = writer.AddNode(vArea.back(), LEVEL_OFFICE, pszTown);
            writer.AddEntry(nOffice, "1000001", "100");
            vAlias.push_back(writer.AddAlias(nOffice, "会社"));
        }
    }
    CWritten const written(writer);
    for (std::vector<uint32_t> const& vId : {vArea, vAlias}) {
        std::vector<uint32_t> vName;
        for (uint32_t nId : vId) vName.push_back(written.Node(written.image.vNodeIndex[nId]).nName);
        EXPECT_EQ(vName[0], vName[1]);
        EXPECT_EQ(vName[2], vName[3]);
        EXPECT_NE(vName[1], vName[2]);
    }
}

TEST(ImageWriter, PutsNamesOfTownsInTheOrderOfNodesAndThoseBelowInTheOrderOfEntries) {
    CImageWriter writer;
    uint32_t const nPref = writer.AddNode(ADDR_NONE, LEVEL_PREF, "pref");
    uint32_t const nCity = writer.AddNode(nPref, LEVEL_CITY, "city");
    for (char const* psz : {"9", "1"}) { // the codes of the first town stand behind those of the second
        std::string const strNumber(psz);
        uint32_t const nTown = writer.AddNode(nCity, LEVEL_TOWN, "town" + strNumber);
        uint32_t const nArea = writer.AddNode(nTown, LEVEL_AREA, "area" + strNumber);
        uint32_t const nOffice = writer.AddNode(nArea, LEVEL_OFFICE, "office" + strNumber);
        writer.AddNode(nTown, LEVEL_AREA, "without a code" + strNumber);
        writer.AddEntry(nTown, strNumber + "000001", "");
        writer.AddEntry(nOffice, strNumber + "000002", "");
        writer.AddEntry(nArea, strNumber + "000003", "");
        writer.AddAlias(nOffice, "alias" + strNumber);
    }
    CWritten const written(writer);
    std::map<uint32_t, std::string> mapName; // by offset
    for (uint32_t n = 0; n < written.Word(HDR_NODE_COUNT); ++n) mapName[written.Node(n).nName] = written.Name(n);
    std::vector<std::string> vName;
    for (auto const& [nOffset, strName] : mapName) vName.push_back(strName);
    EXPECT_THAT(vName, ElementsAre("pref", "city", "town9", "town1",       //
                                   "area1", "office1", "area9", "office9", //
                                   "without a code9", "without a code1",   //
                                   "alias9", "alias1"));
}

TEST(ImageWriter, EndsTheStringAreaInNul) {
    CWritten const written{CWriterWorld()};
    EXPECT_EQ(*written.dic.GetString(written.Word(HDR_STRING_SIZE) - 1), '\0');
}

// --- header
// -------------------------------------------------------------------------------------------------------------

TEST(ImageWriter, IdentifiesTheImage) {
    CWriterWorld writer;
    writer.SetIdentification(20260529, qe::ESource::Official);
    CWritten const written(writer);
    EXPECT_EQ(std::memcmp(written.image.vByte.data(), "QEADRS\x1A", 8), 0);
    EXPECT_EQ(written.Word(HDR_VERSION), 1u);
    EXPECT_EQ(written.Word(HDR_EDITION), 20260529u);
    EXPECT_EQ(written.Word(HDR_SOURCE), 1u);
    EXPECT_EQ(written.Word(HDR_FILE_SIZE), written.image.vByte.size());
}

TEST(ImageWriter, AlignsEveryTableAndKeepsItInsideTheFile) {
    CWritten const written{CWriterWorld()};
    size_t const nFile = written.image.vByte.size();
    auto const Expect = [&](tagHEADERWORD nTable, size_t nBytes) {
        EXPECT_EQ(written.Word(nTable) % 4, 0u) << nTable;
        EXPECT_GE(written.Word(nTable), HDR_BYTES) << nTable;
        EXPECT_LE(written.Word(nTable) + nBytes, nFile) << nTable;
    };
    Expect(HDR_NODE_TABLE, written.Word(HDR_NODE_COUNT) * sizeof(tagADDRNODE));
    Expect(HDR_INFO_TABLE, written.Word(HDR_INFO_COUNT) * sizeof(tagADDRINFO));
    Expect(HDR_CITY_INDEX, written.Word(HDR_CITY_COUNT) * 4);
    Expect(HDR_OFFICE_INDEX, written.Word(HDR_OFFICE_COUNT) * 4);
    Expect(HDR_STRING_AREA, written.Word(HDR_STRING_SIZE));
    Expect(HDR_FIFTH_TABLE, 0);
    Expect(HDR_SIXTH_TABLE, 0);
}

// CRC-32 bit by bit, over the image with zeros in place of the checksum.
uint32_t SlowChecksum(std::vector<unsigned char> vByte) {
    std::memset(vByte.data() + 16, 0, 4);
    uint32_t nCrc = 0xFFFFFFFF;
    for (unsigned char c : vByte)
        for (int nBit = 0; nBit < 8; ++nBit) {
            bool const bOdd = ((nCrc ^ (static_cast<unsigned>(c) >> nBit)) & 1) != 0;
            nCrc = (nCrc >> 1) ^ (bOdd ? 0xEDB88320u : 0);
        }
    return ~nCrc;
}

TEST(ImageWriter, HoldsTheChecksumOfAllOtherBytes) {
    CWritten const written{CWriterWorld()};
    EXPECT_EQ(written.Word(HDR_CHECKSUM), SlowChecksum(written.image.vByte));
    EXPECT_EQ(qe::ImageChecksum(written.image.vByte.data(), written.image.vByte.size()), written.Word(HDR_CHECKSUM));
}

TEST(ImageWriter, ChecksumsLikeEverybodyElse) {
    std::vector<unsigned char> const vByte(20, 0);
    constexpr uint32_t BY_ZLIB = 0x0FD59B8D; // crc32 of 20 zero bytes
    EXPECT_EQ(qe::ImageChecksum(vByte.data(), vByte.size()), BY_ZLIB);
    EXPECT_EQ(SlowChecksum(vByte), BY_ZLIB);
}

TEST(ImageWriter, RepairsTheChecksumOfAChangedImage) {
    CImage image = CWriterWorld().Write();
    image.vByte[200] ^= 1;
    ASSERT_NE(ReadWord(image.vByte.data() + 16), SlowChecksum(image.vByte));
    qe::RepairChecksum(image.vByte);
    EXPECT_EQ(ReadWord(image.vByte.data() + 16), SlowChecksum(image.vByte));
}

TEST(ImageWriter, WritesTheSameBytesForTheSameInput) {
    CWriterWorld const writer;
    auto const vByte = writer.Write().vByte;
    EXPECT_EQ(writer.Write().vByte, vByte);
    EXPECT_EQ(CWriterWorld().Write().vByte, vByte);
}

// --- as the library sees it
// -----------------------------------------------------------------------------------------------

TEST(ImageWriter, WritesWhatALookupFinds) {
    CWritten written{CWriterWorld()};
    std::vector<tagADDR> vAddr;
    EXPECT_EQ(written.dic.GetAddrFromPostCode7("100-0001", vAddr), 1);
    ASSERT_EQ(vAddr.size(), 2u);
    EXPECT_STREQ(vAddr[0].pszTown, "千代田");
    EXPECT_STREQ(vAddr[1].pszPref, "東京都");
    EXPECT_STREQ(vAddr[1].pszCity, "港区");
    EXPECT_STREQ(vAddr[1].pszTown, "芝");
    EXPECT_STREQ(vAddr[1].pszArea, "１丁目");
    EXPECT_STREQ(vAddr[1].pszOffice, "会社");
    EXPECT_STREQ(vAddr[1].pszOfficeKana, "カイシャ");
}

TEST(ImageWriter, WritesAnImageOfNothing) {
    CWritten written{CImageWriter()};
    EXPECT_EQ(written.Word(HDR_NODE_COUNT), 0u);
    EXPECT_EQ(written.Word(HDR_INFO_COUNT), 0u);
    EXPECT_EQ(written.Word(HDR_STRING_SIZE), 0u);
    EXPECT_THAT(written.Index(HDR_CITY_INDEX, HDR_CITY_COUNT), IsEmpty());
    EXPECT_EQ(written.dic.SearchPostCode7("1"), -1);
}

} // namespace
