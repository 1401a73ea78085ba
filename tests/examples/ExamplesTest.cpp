// ExamplesTest.cpp - the example hosts: what they print, and how they end.
#include "tests/support/TestImage.h"
#include "tests/support/TestProfile.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstring>
#include <string>

namespace {

// What a host has printed, errors included, and its exit status.
struct CRun {
    std::string strOutput;
    int nStatus;
};

CRun RunHost(std::string const& strCommand) {
    CRun run = {"", -1};
    FILE* const pOutput = popen((strCommand + " 2>&1").c_str(), "r");
    if (pOutput == nullptr) return run;
    for (int c = std::fgetc(pOutput); c != EOF; c = std::fgetc(pOutput)) run.strOutput += static_cast<char>(c);
    int const nStatus = pclose(pOutput);
    run.nStatus = WIFEXITED(nStatus) ? WEXITSTATUS(nStatus) : -1;
    return run;
}

// 千代田区 with a subdivision of 一ツ橋, a building and an organisation.
CTestImage Chiyoda() {
    CTestImage image;
    uint32_t const nPref = image.AddNode(LEVEL_PREF, ADDR_NONE, "東京都");
    uint32_t const nCity = image.AddNode(LEVEL_CITY, nPref, "千代田区");
    uint32_t const nTown = image.AddNode(LEVEL_TOWN, nCity, "一ツ橋");
    image.AddNode(LEVEL_TOWN, nCity, "大手町");
    uint32_t const nArea = image.AddNode(LEVEL_AREA, nTown, "１丁目");
    uint32_t const nBlock = image.AddNode(LEVEL_BLOCK, nTown + 1, "ＪＡビル");
    uint32_t const nNote = image.AddNode(LEVEL_NOTE, nBlock, "１階");
    uint32_t const nOffice = image.AddNode(LEVEL_OFFICE, nNote, "見本商事");
    image.AddInfo(nArea, "1000003", "100");
    image.AddInfo(nNote, "1006801", "100");
    image.AddInfo(nOffice, "1008790", "10000");
    image.AddSuperseded(nTown, "2000000", "200", 0); // a search that ends with the table leaves its tree unsorted
    image.Complete();
    return image;
}

// The image with what the C++ hosts look at before they bind it: the mark, the format, the size of the file.
std::vector<unsigned char> AsFile(std::vector<unsigned char> vByte) {
    auto const nSize = static_cast<uint32_t>(vByte.size());
    uint32_t const nFormat = 1;
    std::memcpy(&vByte[0], "QEADRS\x1A", 8);
    std::memcpy(&vByte[8], &nFormat, sizeof nFormat);
    std::memcpy(&vByte[20], &nSize, sizeof nSize);
    return vByte;
}

class Examples : public testing::Test {
  protected:
    void SetUp() override {
        m_profile.SetDicDir(m_profile.Folder());
        m_profile.WriteDictionary(AsFile(Chiyoda().Bytes()));
    }
    CRun RunLegacy(std::string const& strText) {
        return RunHost(EXAMPLE_LEGACY " " + m_profile.DictionaryPath() + " '" + strText + "'");
    }
    CRun RunLookup(std::string const& strText) {
        return RunHost(EXAMPLE_LOOKUP " " + m_profile.DictionaryPath() + " '" + strText + "'");
    }
    CTestProfile m_profile;
};

TEST_F(Examples, ThePostalAddressHostPrintsEveryFieldOfAnAddress) {
    CRun const run = RunHost(EXAMPLE_PSTEXEC " 100-8790");
    EXPECT_EQ(run.strOutput, "address 1 of 1\n"
                             "  postal code: 1008790\n"
                             "  (always empty): \n"
                             "  prefecture: 東京都\n"
                             "  city: 千代田区\n"
                             "  town: 大手町\n"
                             "  area: \n"
                             "  organisation: 見本商事\n");
    EXPECT_EQ(run.nStatus, 0);
}

TEST_F(Examples, ThePostalAddressHostSaysWhenThereIsNoSuchCode) {
    CRun const run = RunHost(EXAMPLE_PSTEXEC " 9999999");
    EXPECT_EQ(run.strOutput, "There is no address with the code 9999999.\n");
    EXPECT_EQ(run.nStatus, 1);
}

TEST_F(Examples, ThePostalAddressHostSaysWhenThereIsNoDictionary) {
    m_profile.SetDicDir(m_profile.Folder() + "/nothing");
    EXPECT_EQ(RunHost(EXAMPLE_PSTEXEC).nStatus, 2);
}

TEST_F(Examples, TheLegacyHostPrintsEveryFieldOfEveryCandidate) {
    CRun const run = RunLegacy("100");
    EXPECT_EQ(run.strOutput, "widths: 8 16 60\n"
                             "prefecture: 東京都\n"
                             "  length: 9\n"
                             "  city: 千代田区\n"
                             "    lengths of the name and of its second part: 12 0\n"
                             "    town: 一ツ橋\n"
                             "      detail: １丁目\n"
                             "      kind of detail: area\n"
                             "      postal code: 1000003\n"
                             "      old code: 100\n"
                             "      lengths: 9 9 7 3\n"
                             "    town: 大手町\n"
                             "      detail: 見本商事\n"
                             "      kind of detail: organisation\n"
                             "      postal code: 1008790\n"
                             "      old code: 10000\n"
                             "      lengths: 9 12 7 5\n"
                             "    town: 大手町\n"
                             "      detail: ＪＡビル１階\n"
                             "      kind of detail: building\n"
                             "      postal code: 1006801\n"
                             "      old code: 100\n"
                             "      lengths: 9 18 7 3\n");
    EXPECT_EQ(run.nStatus, 0);
}

TEST_F(Examples, TheLegacyHostTakesAnAddressAsWell) {
    EXPECT_EQ(RunLegacy("東京都千代田区").strOutput, RunLegacy("100").strOutput);
    EXPECT_EQ(RunLegacy("100-8790").nStatus, 0);
}

TEST_F(Examples, TheLegacyHostSaysWhenNothingIsFound) {
    for (char const* const pszText : {"9999999", "無い市"}) {
        CRun const run = RunLegacy(pszText);
        EXPECT_EQ(run.strOutput, std::string("There is no address for ") + pszText + ".\n");
        EXPECT_EQ(run.nStatus, 1);
    }
}

TEST_F(Examples, TheLegacyHostSaysWhenThereIsNoDictionaryAndWhenItIsCalledWrongly) {
    EXPECT_EQ(RunHost(EXAMPLE_LEGACY " " + m_profile.Folder() + "/nothing.dic 100").nStatus, 2);
    EXPECT_EQ(RunHost(EXAMPLE_LEGACY).nStatus, 3);
    EXPECT_EQ(RunLegacy(std::string(128, '1')).nStatus, 3);
}

TEST_F(Examples, TheHostInCppFindsAddressesOfACodeAndTheCodeOfAnAddress) {
    CRun const run = RunLookup("100-");
    EXPECT_EQ(run.strOutput, "1000003 東京都千代田区一ツ橋１丁目 \n"
                             "1006801 東京都千代田区大手町ＪＡビル１階 \n"
                             "1008790 東京都千代田区大手町ＪＡビル１階 見本商事\n");
    EXPECT_EQ(run.nStatus, 0);
    EXPECT_EQ(RunLookup("東京都千代田区無い町").nStatus, 1);
    EXPECT_EQ(RunLookup("9999999").nStatus, 1);
}

TEST_F(Examples, TheHostInCppSaysWhenThereIsNoDictionaryAndWhenItIsCalledWrongly) {
    std::string const strFile = m_profile.Folder() + "/nothing.dic";
    CRun const run = RunHost(EXAMPLE_LOOKUP " " + strFile + " 100");
    EXPECT_EQ(run.strOutput, strFile + " cannot be opened: No such file or directory.\n");
    EXPECT_EQ(run.nStatus, 2);
    EXPECT_EQ(RunHost(EXAMPLE_LOOKUP).nStatus, 3);
}

TEST_F(Examples, TheBrowsingHostInCppListsCitiesAndTowns) {
    EXPECT_EQ(RunHost(EXAMPLE_TOWNS " 東京都").strOutput, "千代田区\n");
    EXPECT_EQ(RunHost(EXAMPLE_TOWNS " 東京都 千代田区").strOutput, "2000000\t一ツ橋\n\t大手町\n");
    for (char const* const pszPlace : {"", "無い県", "東京都 無い市"})
        EXPECT_EQ(RunHost(std::string(EXAMPLE_TOWNS " ") + pszPlace).nStatus, 1) << pszPlace;
    m_profile.SetDicDir(m_profile.Folder() + "/nothing");
    EXPECT_EQ(RunHost(EXAMPLE_TOWNS " 東京都").nStatus, 2);
}

TEST_F(Examples, TheHostOfTheTextLayerPrintsThePlaceThatATextMeans) {
    std::string const strCommand = EXAMPLE_WRITTEN " " + m_profile.DictionaryPath() + " ";
    CRun const run = RunHost(strCommand + "'千代田区 一ツ橋 1-2'");
    EXPECT_EQ(run.strOutput, "names left out\n1000003 東京都 千代田区 一ツ橋 １丁目\nnot read: 1-2\n");
    EXPECT_EQ(run.nStatus, 0);
    EXPECT_EQ(RunHost(strCommand + "どこでもない").strOutput, "nothing found\nnot read: どこでもない\n");
    EXPECT_EQ(RunHost(strCommand + "どこでもない").nStatus, 1);
    EXPECT_EQ(RunHost(EXAMPLE_WRITTEN " " + m_profile.Folder() + " x").nStatus, 2);
    EXPECT_EQ(RunHost(EXAMPLE_WRITTEN).nStatus, 3);
}

TEST_F(Examples, TheHostOfTheTextLayerInCppSpellsEachLine) {
    std::string const strCommand = EXAMPLE_SPELLED " " + m_profile.DictionaryPath();
    CRun const run = RunHost("printf '千代田区 一つ橋 1-2\\nどこでもない\\n' | " + strCommand);
    EXPECT_EQ(run.strOutput, "1000003 東京都千代田区一ツ橋1-2\n? どこでもない\n");
    EXPECT_EQ(run.nStatus, 0);
    EXPECT_EQ(RunHost(EXAMPLE_SPELLED " " + m_profile.Folder() + " </dev/null").nStatus, 2);
    EXPECT_EQ(RunHost(EXAMPLE_SPELLED).nStatus, 3);
}

} // namespace
