// GetAtTown: how it fills the caller's fields, its codes, and damaged dictionaries.
#include "tests/library/TownAnswer.h"

#include <gmock/gmock.h>

#include <unistd.h>

#include <climits>

namespace {

// --- the fields ----------------------------------------------------------------------------------------------------

std::string Letters(size_t n, char c) {
    return std::string(n, c);
}

// What fits of both, the front first.
TEST(TownFields, HoldABuildingAndItsFloorAsFarAsTheyFit) {
    for (size_t nFloor : {1u, 27u, 28u, 29u, 100u, 127u, 128u, 129u, 500u})
        for (size_t nBuilding : {1u, 27u, 28u, 29u, 100u, 127u, 128u, 129u, 500u})
            for (size_t nDetail : {0u, 1u, 2u, 3u, 127u, 128u, 129u}) {
                CLastDic dic(ImageOf({{2, "T"}, {4, Letters(nBuilding, 'b')}, {6, Letters(nFloor, 'f')}}));
                CFields fields(nDetail);
                ASSERT_TRUE(fields.Ask(dic, 0));
                // The floor was cut before the building came.
                std::string const strBoth = Letters(nBuilding, 'b') + Letters(std::min(nFloor, nDetail), 'f');
                ASSERT_EQ(fields.Texts(), "T/" + strBoth.substr(0, nDetail) + "/4")
                    << nBuilding << " + " << nFloor << " in " << nDetail;
                ASSERT_EQ(fields.Codes(), "1000001/100");
            }
}

TEST(TownFields, HoldBuildingsInBuildingsAsFarAsTheyFit) {
    CPath path = {{2, "T"}};
    for (char c = 'a'; c <= 'z'; ++c) path.emplace_back(4, Letters(10, c));
    CLastDic dic(ImageOf(path));
    CFields fields;
    ASSERT_TRUE(fields.Ask(dic, 0));
    std::string strExpected;
    for (char c = 'a'; c <= 'l'; ++c) strExpected += Letters(10, c);
    EXPECT_EQ(fields.Texts(), "T/" + strExpected + "mmmmmmmm/4");
}

// Each text, in a field of each size: cut or followed by zeros, and no byte more on either side.
TEST(TownFields, HoldTextsAsFarAsTheyFit) {
    for (CGuardedBytes::EPlace nPlace : {CGuardedBytes::EndOfPage, CGuardedBytes::StartOfPage})
        for (int nLevel : {3, 4, 6, 7}) {
            CLastDic dic(ImageOf({{2, "TTTTTTTTTT"}, {nLevel, "dddddddddd"}}));
            for (size_t nSize : {0u, 1u, 2u, 3u, 4u, 6u, 7u, 8u, 9u, 10u, 11u, 60u, 4096u}) {
                CFields fields(nSize, nSize, nSize, nSize, nPlace);
                ASSERT_TRUE(fields.Ask(dic, 0));
                EXPECT_EQ(fields.town.Text(), Letters(std::min<size_t>(nSize, 10), 'T')) << nSize;
                EXPECT_EQ(fields.detail.Text(), Letters(std::min<size_t>(nSize, 10), 'd')) << nSize;
                EXPECT_EQ(fields.Codes(),
                          std::string("1000001").substr(0, nSize) + "/" + std::string("100").substr(0, nSize));
            }
        }
}

TEST(TownFields, AreClearedOfALongerTextBelow) {
    EXPECT_EQ(Told({{2, "T"}, {3, "A"}, {3, Letters(128, 'a')}}), "T/A/1") << "zeros to the end";
    EXPECT_EQ(Told({{2, "T"}, {6, "N"}, {4, Letters(128, 'b')}}), "T/N/4");
    EXPECT_EQ(Told({{2, "T"}, {7, "O"}, {3, Letters(128, 'a')}}), "T/O/3");
    EXPECT_EQ(Told({{2, "T"}, {2, Letters(60, 't')}}), "T//0");
}

TEST(TownFields, HoldAnEmptyName) {
    EXPECT_EQ(Told({{2, ""}}), "//0");
    EXPECT_EQ(Told({{2, ""}, {7, "O"}}), "/O/3");
    EXPECT_EQ(Told({{2, "T"}, {3, ""}, {4, "B"}}), "T//1");
    EXPECT_EQ(Told({{2, "T"}, {4, ""}, {6, "N"}}), "T/N/4");
    EXPECT_EQ(Told({{2, "T"}, {7, ""}, {3, "A"}}), "T//3");
}

TEST(TownFields, OfANegativeSizeAreLeftAlone) {
    for (int nLevel : {3, 4, 6, 7})
        for (int nSize : {-1, -128, INT_MIN}) {
            CLastDic dic(ImageOf({{2, "T"}, {4, "B"}, {nLevel, "d"}}));
            CFields const fields;
            EXPECT_TRUE(dic.GetAtTown(0, fields.town.Data(), nSize, fields.detail.Data(), nSize, fields.code5.Data(),
                                      nSize, fields.code7.Data(), nSize, fields.kind.Data()));
            for (CTextField const* p : {&fields.town, &fields.detail, &fields.code5, &fields.code7})
                EXPECT_TRUE(p->IsUntouched());
            EXPECT_EQ(*fields.kind.Data(), nLevel == 7 ? 3 : 4);
        }
}

// --- codes ---------------------------------------------------------------------------------------------------------

// A town with these codes.
CTestImage Coded(std::string const& strCode, std::string const& strOldCode) {
    CTestImage image = ImageOf({{2, "T"}});
    image.vInfo[0].nCode = image.AddText(strCode, strOldCode);
    return image;
}

TEST(TownCodes, AreTheCodeAndTheOldOneBehindIt) {
    EXPECT_EQ(CodesIn(Coded("1000001", "100")), "1000001/100");
    EXPECT_EQ(CodesIn(Coded("0600001", "06008")), "0600001/06008") << "both fill their fields";
    EXPECT_EQ(CodesIn(Coded("1000001", "")), "1000001/");
}

TEST(TownCodes, OfOtherLengthsAreFoundWhereTheyAre) {
    EXPECT_EQ(CodesIn(Coded("10000", "100")), "10000/100");
    EXPECT_EQ(CodesIn(Coded("100", "06008")), "100/06008");
    EXPECT_EQ(CodesIn(Coded("", "100")), "/100");
    EXPECT_EQ(CodesIn(Coded("", "")), "/");
}

TEST(TownCodes, LongerThanTheirFieldsAreCut) {
    EXPECT_EQ(CodesIn(Coded("12345678901", "654321")), "1234567/65432") << "the old one is still that behind it";
    for (size_t nCode7 : {0u, 1u, 5u, 6u}) {
        CLastDic dic(Coded("1000001", "06008"));
        CFields fields(128, nCode7);
        ASSERT_TRUE(fields.Ask(dic, 0));
        EXPECT_EQ(fields.Codes(), std::string("1000001").substr(0, nCode7) + "/06008") << nCode7;
    }
}

// What stands behind a full field is the caller's, and no part of the code.
TEST(TownCodes, DoNotDependOnWhatStandsBehindTheCallersField) {
    for (char c : {'x', '1', '\1', '\xFF', '\0'})
        for (size_t nBehind : {1u, 2u, 9u, 100u}) {
            CLastDic dic(Coded("0600001", "06008"));
            CTextField const record(7 + nBehind);
            CFields const fields;
            std::string const strBehind(nBehind, c);
            std::memcpy(record.Data() + 7, strBehind.data(), nBehind);
            EXPECT_TRUE(dic.GetAtTown(0, fields.town.Data(), 60, fields.detail.Data(), 128, fields.code5.Data(), 5,
                                      record.Data(), 7, fields.kind.Data()));
            EXPECT_EQ(fields.code5.Text(), "06008");
            EXPECT_EQ(std::string(record.Data(), 7 + nBehind), "0600001" + strBehind);
        }
}

TEST(TownCodes, OfANodeWithoutAnEntryAreEmpty) {
    for (uint32_t nInfo : {ADDR_NONE, 1u, 2u, 0x80000000u, 0xFFFFFFFEu}) {
        CTestImage image = ImageOf({{2, "T"}, {7, "O"}});
        image.vNode[3].nInfo = nInfo;
        image.vNode[2].nInfo = 0;
        EXPECT_EQ(CodesIn(image), "/") << "those of the town above are not its own: " << nInfo;
        EXPECT_EQ(Told(image), "T/O/3") << nInfo;
    }
}

TEST(TownCodes, OfASupersededEntryAreItsOwn) {
    CTestImage image = Coded("1000099", "10099");
    image.vInfo[0].nNode |= ADDRINFO_SUPERSEDED;
    EXPECT_EQ(CodesIn(image), "1000099/10099");
}

// --- damaged dictionaries ------------------------------------------------------------------------------------------

TEST(DamagedTown, WhoseCodesLieOutsideTheStringAreaHasNone) {
    CTestImage image = Coded("1000001", "100");
    auto const nEnd = static_cast<uint32_t>(image.strArea.size());
    for (uint32_t nCode : {nEnd, nEnd + 1, 0x80000000u, 0xFFFFFFF8u, 0xFFFFFFFFu}) {
        image.vInfo[0].nCode = nCode;
        EXPECT_EQ(CodesIn(image), "/") << nCode;
    }
}

TEST(DamagedTown, WhoseOldCodeLiesBehindTheStringAreaHasNoOldCode) {
    CTestImage image = Coded("1000001", "");
    image.strArea.pop_back();
    EXPECT_EQ(CodesIn(image), "1000001/");
}

// Each of its texts as the last one of the image, without a NUL: the page behind cannot be touched.
TEST(DamagedTown, WhoseTextsDoNotEndStaysInsideTheImage) {
    for (uint32_t nNode : {2u, 3u, 4u}) {
        CTestImage image = ImageOf({{2, "T"}, {4, "B"}, {6, "N"}});
        image.vNode[nNode].nName = static_cast<uint32_t>(image.strArea.size());
        image.strArea += "abc";
        CLastDic dic(image);
        CFields fields;
        fields.Ask(dic, 0);
        EXPECT_EQ(fields.Codes(), "1000001/100");
        EXPECT_THAT(fields.Texts(), testing::AnyOf(testing::HasSubstr("N"), testing::HasSubstr("B")));
    }
    for (std::string const strEnd : {"1000001", "10000", "1"}) {
        CTestImage image = ImageOf({{2, "T"}});
        image.vInfo[0].nCode = static_cast<uint32_t>(image.strArea.size());
        image.strArea += strEnd;
        EXPECT_THAT(CodesIn(image), testing::AnyOf("/", strEnd + "/"));
    }
    CTestImage image = Coded("1000001", "06008");
    image.strArea.pop_back();
    EXPECT_THAT(CodesIn(image), testing::AnyOf("1000001/", "1000001/06008"));
}

TEST(DamagedTown, WhoseNamesLieOutsideTheStringAreaHasTheOthers) {
    CPath const path = {{2, "T"}, {4, "B"}, {6, "N"}};
    for (uint32_t nName : {1000u, 0x80000000u, 0xFFFFFFFFu}) {
        CTestImage image = ImageOf(path);
        image.vNode[4].nName = nName;
        EXPECT_EQ(Told(image), "T/B/4") << nName;
        image = ImageOf(path);
        image.vNode[2].nName = nName;
        EXPECT_EQ(Told(image), "N/BN/4") << nName;
        for (tagADDRNODE& node : image.vNode) node.nName = nName;
        CLastDic dic(image);
        CFields fields;
        fields.Ask(dic, 0);
        EXPECT_EQ(fields.town.Text() + fields.detail.Text(), "") << nName;
    }
}

// A walk without an end hangs: better the test program ends.
class DamagedTownParents : public testing::Test {
  protected:
    void SetUp() override { alarm(10); } // seconds; they take some milliseconds
    void TearDown() override { alarm(0); }
};

TEST_F(DamagedTownParents, ThatGoInACircleComeToAnEnd) {
    for (int nLevel : {0, 2, 3, 4, 5, 6, 7, 255})
        for (uint32_t nParent : {2u, 3u, 4u}) {
            CTestImage image = ImageOf({{nLevel, "aa"}, {4, "bb"}, {nLevel, "cc"}});
            image.vNode[2].nParent = nParent;
            CLastDic dic(image);
            CFields fields;
            fields.Ask(dic, 0);
            EXPECT_EQ(fields.Codes(), "1000001/100") << nLevel << ' ' << nParent;
            EXPECT_NE(fields.town.Text(), "");
        }
}

TEST_F(DamagedTownParents, OfAHundredThousandBuildingsComeToAnEnd) {
    CTestImage image = ImageOf({{4, "b"}});
    for (uint32_t n = 3; n < 100000; ++n)
        image.vNode.push_back({LEVEL_BLOCK, {}, image.vNode[2].nName, ADDR_NONE, n - 1, 0, ADDR_NONE});
    EXPECT_EQ(Told(image), "b/" + Letters(128, 'b') + "/4");
}

} // namespace
