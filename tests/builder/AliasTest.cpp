// The second name of an organisation, under which searches find it.
#include "tests/builder/World.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

// Nodes behind all places of the tree: those that no parent counts among its children.
std::vector<uint32_t> Aliases(CWorld const& world) {
    std::vector<bool> vChild(world.Word(HDR_NODE_COUNT), false);
    for (uint32_t n = 0; n < vChild.size(); ++n) {
        tagADDRNODE const* const pNode = world.Dic().GetAddrNode(n);
        for (uint32_t nChild = 0; nChild < pNode->nChildCount; ++nChild) vChild[pNode->nFirstChild + nChild] = true;
        if (pNode->nLevel == LEVEL_PREF) vChild[n] = true;
    }
    std::vector<uint32_t> vAlias;
    for (uint32_t n = 0; n < vChild.size(); ++n)
        if (!vChild[n]) vAlias.push_back(n);
    return vAlias;
}

std::vector<std::string> AliasNames(CWorld const& world) {
    std::vector<std::string> vName;
    for (uint32_t nNode : Aliases(world)) vName.push_back(world.Name(nNode));
    return vName;
}

// The only organisation's alias, "none" when it has none.
std::string AliasOf(std::string const& strName) {
    CWorld const world({Town("大手町", "オオテ", "1000004")}, {Office(strName, "大手町", "１")});
    std::vector<std::string> const vName = AliasNames(world);
    return vName.empty() ? "none" : vName.size() == 1 ? vName[0] : "several";
}

// The code that an address with an organisation's name gives.
std::string CodeOf(CWorld& world, std::string strName, std::string const& strAddress = "東京都千代田区大手町") {
    tagADDR addr(0);
    EXPECT_EQ(world.Dic().GetPostCodeFromAddr(strAddress.c_str(), strName.data(), addr), 1);
    return addr.pszPostCode == nullptr ? "" : addr.pszPostCode;
}

CWorld const& Nikkei() {
    static CWorld const world({Town("大手町", "オオテ", "1000004"), Town("丸の内", "マル", "1000005")},
                              {Office("株式会社　日本経済新聞社　札幌支社", "大手町", "１−３−７", "1008066")});
    return world;
}

} // namespace

// --- the node ---

TEST(Alias, IsANodeWithTheOfficesParentAndEntryBehindAllOthers) {
    CWorld const& world = Nikkei();
    std::vector<uint32_t> const vAlias = Aliases(world);
    ASSERT_EQ(vAlias.size(), 1u);
    EXPECT_EQ(vAlias[0], world.Word(HDR_NODE_COUNT) - 1);
    tagADDRNODE const* const pAlias = world.Dic().GetAddrNode(vAlias[0]);
    tagADDRINFO const* const pInfo = world.Dic().GetAddrInfo(pAlias->nInfo);
    ASSERT_NE(pInfo, nullptr);
    tagADDRNODE const* const pOffice = world.Dic().GetAddrNode(pInfo->nNode);
    EXPECT_STREQ(world.Dic().GetString(pOffice->nName), "株式会社　日本経済新聞社　札幌支社");
    EXPECT_EQ(pAlias->nLevel, LEVEL_OFFICE);
    EXPECT_EQ(pAlias->nParent, pOffice->nParent);
    EXPECT_EQ(pAlias->nInfo, pOffice->nInfo);
    EXPECT_EQ(pAlias->nChildCount, 0u);
    EXPECT_STREQ(world.Dic().GetString(world.Dic().GetAddrNode(pAlias->nParent)->nName), "１−３−７");
    EXPECT_EQ(world.Count("office_aliases"), 1u);
    EXPECT_EQ(world.Count("offices_without_alias"), 0u);
}

TEST(Alias, IsMetByNoWalkDownTheTreeAndByNoCode) {
    CWorld world({Town("大手町", "オオテ", "1000004")}, {Office("株式会社　甲", "大手町", "１", "1008066")});
    EXPECT_THAT(world.Names('7'), ElementsAre("株式会社　甲|ナマエ|1008066|100"));
    std::vector<tagADDR> vAddr;
    world.Dic().GetAddrFromPostCode7("1008066", vAddr);
    ASSERT_EQ(vAddr.size(), 1u);
    EXPECT_STREQ(vAddr[0].pszOffice, "株式会社　甲");
    vAddr.clear();
    world.Dic().GetAddrFromAddrPart("東京都千代田区", vAddr);
    EXPECT_EQ(vAddr.size(), 2u); // the town and the organisation
}

TEST(Alias, StandsInTheIndexBesideTheDisplayedName) {
    CWorld const& world = Nikkei();
    std::vector<std::string> vName;
    for (uint32_t nNode : world.OfficeIndex()) vName.push_back(world.Name(nNode));
    EXPECT_THAT(vName, ElementsAre("日本経済新聞社札幌支社", "株式会社　日本経済新聞社　札幌支社"));
}

TEST(Alias, OfEveryOfficeHasOneAlsoWhereItIsTheNameItself) {
    CWorld const world(
        {Town("大手町", "オオテ", "1000004"), Town("丸の内", "マル", "1000005")},
        {Office("気象庁", "大手町", "１"), Office("丙（株）", "丸の内", ""), Office("丁　戊", "大手町", "１")});
    EXPECT_THAT(AliasNames(world), UnorderedElementsAre("気象庁", "丙", "丁戊"));
    EXPECT_EQ(world.Word(HDR_OFFICE_COUNT), 6u);
    EXPECT_EQ(world.Count("nodes"), world.Word(HDR_NODE_COUNT));
}

TEST(Alias, StandsInTheOrderOfItsParents) {
    CWorld const world({Town("大手町", "オオテ", "1000004"), Town("丸の内", "マル", "1000005")},
                       {Office("ん", "丸の内", ""), Office("み", "大手町", ""), Office("あ", "丸の内", "")});
    EXPECT_THAT(AliasNames(world), ElementsAre("み", "ん", "あ"));
}

// --- the name ---

TEST(Alias, IsTheNameWithoutBlanksAndWithoutOneLegalForm) {
    EXPECT_EQ(AliasOf("株式会社　日本経済新聞社　札幌支社"), "日本経済新聞社札幌支社");
    EXPECT_EQ(AliasOf("甲乙　株式会社"), "甲乙");
    EXPECT_EQ(AliasOf("　甲　　乙　"), "甲乙");
    EXPECT_EQ(AliasOf("ABC Bank,Tokyo"), "ABCBankTokyo");
    EXPECT_EQ(AliasOf("株式会社甲（株）"), "甲（株）"); // one form at most
    EXPECT_EQ(AliasOf("甲（株）本社"), "甲（株）本社"); // neither in front nor at the end
    EXPECT_EQ(AliasOf("独立行政法人　医療法人　甲"), "医療法人甲");
}

TEST(Alias, OfANameOfOnlyALegalFormThereIsNone) {
    for (char const* pszName : {"株式会社", "　株式会社　", "（有）", "医療法人　財団", "　", " "}) {
        CWorld world({Town("大手町", "オオテ", "1000004")}, {Office(pszName, "大手町", "１")});
        EXPECT_THAT(AliasNames(world), IsEmpty()) << pszName;
        EXPECT_EQ(world.Word(HDR_OFFICE_COUNT), 1u) << pszName;
        EXPECT_EQ(world.Count("office_aliases"), 0u) << pszName;
        EXPECT_EQ(world.Count("offices_without_alias"), 1u) << pszName;
    }
}

// Every character that begins like the ideographic space loses two bytes, in the alias as in the query.
TEST(Alias, OfANameWithOtherCharactersOfTheBlanksBlockIsWhatAQueryBecomes) {
    EXPECT_EQ(AliasOf("佐々木"), "佐\x85木");
    EXPECT_EQ(AliasOf("「甲」会"), "\x8C甲\x8D会");
    for (char const* pszName : {"佐々木　商店", "株式会社　「甲」会", "〇〇、〒郵便局"}) {
        CWorld world({Town("大手町", "オオテ", "1000004")}, {Office(pszName, "大手町", "１", "1008066")});
        std::string strAsked = pszName;
        for (size_t nPos; (nPos = strAsked.find("　")) != std::string::npos;) strAsked.erase(nPos, 3);
        EXPECT_EQ(CodeOf(world, strAsked), "1008066") << pszName;
    }
}

TEST(Alias, IsCutToTheLimitAtACharacter) {
    EXPECT_EQ(AliasOf(Repeat("株", 50)), Repeat("株", 42)); // 126 bytes: the next one would end at 129
    EXPECT_EQ(AliasOf("X" + Repeat("株", 50)), "X" + Repeat("株", 42));
    EXPECT_EQ(AliasOf("X" + Repeat("株", 42)), "X" + Repeat("株", 42));
    EXPECT_EQ(AliasOf(Repeat("々", 130)), Repeat("\x85", 127));
}

TEST(Alias, IsMadeOfTheWholeNameWhereTheDisplayedOneIsCut) {
    std::string const strName = Repeat("甲　", 21) + "乙丙"; // 132 bytes, of them 63 in blanks
    CWorld world({Town("大手町", "オオテ", "1000004")}, {Office(strName, "大手町", "１", "1008066")});
    EXPECT_THAT(AliasNames(world), ElementsAre(Repeat("甲", 21) + "乙丙"));
    EXPECT_THAT(world.Names('7'), ElementsAre(Repeat("甲　", 20) + "甲|ナマエ|1008066|100"));
    EXPECT_EQ(CodeOf(world, Repeat("甲", 21) + "乙丙"), "1008066");
}

TEST(Alias, OfAnEnormousNameIsMadeToo) {
    EXPECT_EQ(AliasOf(Repeat("甲　", 12000)), Repeat("甲", 42));
}

// --- searches ---

TEST(Alias, LetsANameWithoutBlanksAndLegalFormFindTheOffice) {
    CWorld world({Town("大手町", "オオテ", "1000004"), Town("丸の内", "マル", "1000005")},
                 {Office("株式会社　日本経済新聞社　札幌支社", "大手町", "１−３−７", "1008066")});
    for (char const* pszName :
         {"日本経済新聞社札幌支社", "株式会社日本経済新聞社札幌支社", "日本経済新聞社札幌支社株式会社",
          "日本経済新聞社", "日本 経済 新聞社 札幌支社", "（株）日本経済新聞社"})
        EXPECT_EQ(CodeOf(world, pszName), "1008066") << pszName;
    EXPECT_EQ(CodeOf(world, "日本経済新聞社札幌支社", "東京都千代田区大手町１−３−７"), "1008066");
    EXPECT_EQ(CodeOf(world, "日本経済新聞社札幌支店"), "1000004");
    EXPECT_EQ(CodeOf(world, "日本経済新聞社札幌支社", "東京都千代田区丸の内"), "1000005");
}

TEST(Alias, OfTheRightTownWinsAmongEqualNames) {
    CWorld world({Town("大手町", "オオテ", "1000004"), Town("丸の内", "マル", "1000005")},
                 {Office("甲　銀行", "丸の内", "１", "1008001"), Office("甲　銀行", "大手町", "１", "1008002"),
                  Office("株式会社　甲　銀行", "大手町", "２", "1008003")});
    EXPECT_EQ(CodeOf(world, "甲銀行"), "1008002");
    EXPECT_EQ(CodeOf(world, "甲銀行", "東京都千代田区丸の内"), "1008001");
}

TEST(Alias, IsFoundByEveryBeginningOfItThatIsNotEmpty) {
    CWorld world({Town("大手町", "オオテ", "1000004")}, {Office("乙　丙丁", "大手町", "１", "1008001")});
    for (char const* pszName : {"乙", "乙丙", "乙丙丁"}) EXPECT_EQ(CodeOf(world, pszName), "1008001") << pszName;
}

// --- the writer's part ---

namespace {

// 東京都 / 港区 / 芝 with two organisations; aliases are added by the tests.
struct CAliasWriter : qe::CImageWriter {
    CAliasWriter() {
        AddNode(ADDR_NONE, LEVEL_PREF, "東京都", "トウキョウト");
        AddNode(0, LEVEL_CITY, "港区", "ミナトク");
        AddNode(1, LEVEL_TOWN, "芝", "シバ");
        AddNode(2, LEVEL_OFFICE, "株式会社　甲", "コウ");
        AddEntry(3, "1058001", "105");
        AddNode(2, LEVEL_OFFICE, "乙　会", "オツ");
        AddEntry(4, "1058002", "105");
    }
};

tagADDRNODE NodeOf(qe::CImage const& image, uint32_t nId) {
    CAddrDic dic;
    dic.SetDictionary(image.vByte.data());
    return *dic.GetAddrNode(image.vNodeIndex[nId]);
}

std::string NameOf(qe::CImage const& image, uint32_t nId) {
    CAddrDic dic;
    dic.SetDictionary(image.vByte.data());
    return dic.GetString(dic.GetAddrNode(image.vNodeIndex[nId])->nName);
}

} // namespace

TEST(WriterAlias, HasTheLevelParentAndEntryOfItsNode) {
    CAliasWriter writer;
    uint32_t const nAlias = writer.AddAlias(3, "甲");
    EXPECT_EQ(nAlias, 5u);
    EXPECT_TRUE(writer.HasEntry(nAlias));
    qe::CImage const image = writer.Write();
    tagADDRNODE const alias = NodeOf(image, nAlias);
    tagADDRNODE const node = NodeOf(image, 3);
    EXPECT_EQ(alias.nLevel, LEVEL_OFFICE);
    EXPECT_EQ(alias.nParent, node.nParent);
    EXPECT_EQ(alias.nInfo, node.nInfo);
    EXPECT_NE(alias.nInfo, ADDR_NONE);
    EXPECT_EQ(alias.nChildCount, 0u);
    EXPECT_EQ(alias.nFirstChild, ADDR_NONE);
    EXPECT_EQ(NameOf(image, nAlias), "甲");
}

TEST(WriterAlias, StandsBehindNodesThatAreAddedAfterItHoweverDeepTheyLie) {
    CAliasWriter writer;
    uint32_t const nAlias = writer.AddAlias(3, "甲");
    uint32_t nDeep = 2;
    for (uint8_t nLevel : {LEVEL_AREA, LEVEL_BLOCK, LEVEL_NOTE}) nDeep = writer.AddNode(nDeep, nLevel, "深");
    qe::CImage const image = writer.Write();
    EXPECT_EQ(image.vNodeIndex[nAlias], HeaderWord(image.vByte.data(), HDR_NODE_COUNT) - 1);
    EXPECT_LT(image.vNodeIndex[nDeep], image.vNodeIndex[nAlias]);
}

TEST(WriterAlias, IsCountedByNoParentAndLeavesTheChildrenTogether) {
    CAliasWriter writer;
    writer.AddAlias(3, "甲");
    uint32_t const nThird = writer.AddNode(2, LEVEL_OFFICE, "丙");
    qe::CImage const image = writer.Write();
    tagADDRNODE const town = NodeOf(image, 2);
    EXPECT_EQ(town.nChildCount, 3u);
    EXPECT_EQ(town.nFirstChild, image.vNodeIndex[3]);
    EXPECT_EQ(image.vNodeIndex[4], image.vNodeIndex[3] + 1);
    EXPECT_EQ(image.vNodeIndex[nThird], image.vNodeIndex[3] + 2);
}

TEST(WriterAlias, OfSeveralStandInTheOrderOfTheirParentsThenOfAdding) {
    CAliasWriter writer;
    uint32_t const nTown = writer.AddNode(1, LEVEL_TOWN, "麻布");
    uint32_t const nOffice = writer.AddNode(nTown, LEVEL_OFFICE, "丁");
    writer.AddEntry(nOffice, "1068001", "106");
    uint32_t const nLast = writer.AddAlias(nOffice, "一");
    uint32_t const nFirst = writer.AddAlias(4, "二");
    uint32_t const nSecond = writer.AddAlias(3, "三");
    qe::CImage const image = writer.Write();
    EXPECT_LT(image.vNodeIndex[nFirst], image.vNodeIndex[nSecond]);
    EXPECT_LT(image.vNodeIndex[nSecond], image.vNodeIndex[nLast]);
}

TEST(WriterAlias, HasNoReadingAndSharesEqualTexts) {
    CAliasWriter writer;
    uint32_t const nFirst = writer.AddAlias(3, "同");
    uint32_t const nSecond = writer.AddAlias(4, "同");
    qe::CImage const image = writer.Write();
    EXPECT_EQ(NodeOf(image, nFirst).nName, NodeOf(image, nSecond).nName);
    CAddrDic dic;
    dic.SetDictionary(image.vByte.data());
    EXPECT_STREQ(dic.GetString(NodeOf(image, nFirst).nName + 4ul), ""); // 同 and its NUL
}

TEST(WriterAlias, ItsEntryStillBelongsToTheNode) {
    CAliasWriter writer;
    uint32_t const nAlias = writer.AddAlias(3, "甲");
    qe::CImage const image = writer.Write();
    CAddrDic dic;
    dic.SetDictionary(image.vByte.data());
    EXPECT_EQ(dic.GetAddrInfo(NodeOf(image, nAlias).nInfo)->nNode, image.vNodeIndex[3]);
    EXPECT_EQ(HeaderWord(image.vByte.data(), HDR_INFO_COUNT), 2u);
}

TEST(WriterAlias, StandsInTheIndexOnlyWhenItIsPutThere) {
    CAliasWriter writer;
    uint32_t const nAlias = writer.AddAlias(3, "甲");
    EXPECT_EQ(HeaderWord(writer.Write().vByte.data(), HDR_OFFICE_COUNT), 0u);
    writer.AddOffice(nAlias);
    writer.AddOffice(4);
    qe::CImage const image = writer.Write();
    unsigned char const* const p = image.vByte.data();
    ASSERT_EQ(HeaderWord(p, HDR_OFFICE_COUNT), 2u);
    EXPECT_EQ(ReadWord(p + HeaderWord(p, HDR_OFFICE_INDEX)), image.vNodeIndex[4]); // 乙 before 甲
    EXPECT_EQ(ReadWord(p + HeaderWord(p, HDR_OFFICE_INDEX) + 4), image.vNodeIndex[nAlias]);
}

TEST(WriterAlias, LeavesTheRunsOfTheUpperLevelsAlone) {
    CAliasWriter writer;
    qe::CImage const before = writer.Write();
    writer.AddAlias(3, "甲");
    qe::CImage const after = writer.Write();
    for (tagHEADERWORD nWord : {HDR_FIRST_PREF, HDR_PREF_COUNT, HDR_FIRST_CITY, HDR_CITY_COUNT, HDR_FIRST_TOWN,
                                HDR_TOWN_COUNT, HDR_OFFICE_COUNT})
        EXPECT_EQ(HeaderWord(after.vByte.data(), nWord), HeaderWord(before.vByte.data(), nWord)) << nWord;
}
