// qeadrs-dic info and dump, and which files they refuse.
#include "builder/DictionaryFile.h"
#include "builder/TextTable.h"
#include "dic/ImageHeader.h"
#include "tests/builder/Tool.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <cstring>
#include <sstream>

using testing::AnyOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

// A dictionary of three towns and an organisation.
class ToolShow : public Tool {
  protected:
    void SetUp() override {
        std::string const strTowns =
            Table({CTown{"東京都", "千代田区", "以下に掲載がない場合", "イカニ", "1000000"},
                   CTown{"東京都", "千代田区", "千代田", "チヨダ", "1000001"},
                   CTown{"東京都", "千代田区", "一ツ橋（１丁目）", "ヒトツバシ（１チョウメ）", "1000003"}});
        std::string const strOffices = Table({COffice{"宮内庁", "東京都", "千代田区", "千代田", "１−１", "1008111"}});
        CToolRun const run = Build(
            strTowns, {"--offices", m_folderOutputs.Write("offices.csv", strOffices), "--edition", "2026-05-29"});
        ASSERT_EQ(run.nStatus, 0) << run.strErr;
        m_strBytes = ReadFile(Dictionary());
    }

    // Changes one word of the header, repairs the checksum, and writes the file.
    void SetHeaderWord(tagHEADERWORD nWord, uint32_t nValue) const {
        std::vector<unsigned char> vByte(m_strBytes.begin(), m_strBytes.end());
        std::memcpy(vByte.data() + 4 * nWord, &nValue, sizeof nValue);
        qe::RepairChecksum(vByte);
        WriteFile(Dictionary(), std::string(vByte.begin(), vByte.end()));
    }

    void ExpectRefused(std::string const& strMessage) const {
        for (char const* pszCommand : {"info", "dump"}) {
            CToolRun const run = Run({pszCommand, Dictionary()});
            EXPECT_EQ(run.nStatus, 1) << pszCommand;
            EXPECT_EQ(run.strOut, "") << pszCommand;
            EXPECT_EQ(run.strErr, "qeadrs-dic: " + Dictionary() + strMessage + "\n");
        }
    }

    std::string m_strBytes;
};

} // namespace

TEST_F(ToolShow, InfoShowsHeaderCountsEditionAndSizes) {
    std::string const strBytes = std::to_string(m_strBytes.size());
    auto const index = qe::FindTextTable({m_strBytes.begin(), m_strBytes.end()});
    ASSERT_TRUE(index);
    std::string const strIndex = std::to_string(index->nSize);
    EXPECT_EQ(Output({"info", Dictionary()}), "format              1\n"
                                              "edition             2026-05-29\n"
                                              "source              official tables\n"
                                              "checksum            right\n"
                                              "bytes               " +
                                                  strBytes +
                                                  "\n"
                                                  "prefectures         1\n"
                                                  "cities              1\n"
                                                  "towns               3\n"
                                                  "organisation names  2\n"
                                                  "\n"
                                                  "table                   offset   records     bytes\n"
                                                  "nodes                      112         9       216\n"
                                                  "entries                    336         4        32\n"
                                                  "strings                    400       198       198\n"
                                                  "city index                 368         1         4\n"
                                                  "organisation index         384         2         8\n"
                                                  "text index                 608          " +
                                                  std::string(10 - strIndex.size(), ' ') + strIndex + "\n");
}

TEST_F(ToolShow, InfoAsJsonIsOneObjectWithTheSameFigures) {
    nlohmann::json const json = nlohmann::json::parse(Output({"info", "--json", Dictionary()}));
    EXPECT_EQ(json["format"], 1);
    EXPECT_EQ(json["edition"], "2026-05-29");
    EXPECT_EQ(json["source"], "official tables");
    EXPECT_EQ(json["checksum"], "right");
    EXPECT_EQ(json["bytes"], m_strBytes.size());
    EXPECT_EQ(json["towns"], 3);
    EXPECT_EQ(json["organisation names"], 2);
    EXPECT_EQ(json["tables"]["nodes"], nlohmann::json({{"offset", 112}, {"records", 9}, {"bytes", 216}}));
    EXPECT_EQ(json["tables"].size(), 6u);
    EXPECT_EQ(json["tables"]["text index"]["offset"], 608);
}

TEST_F(ToolShow, InfoOfADictionaryWithoutATextIndexDoesNotNameIt) {
    std::string const strBefore = Output({"info", Dictionary()});
    SetHeaderWord(HDR_FIFTH_TABLE, static_cast<uint32_t>(m_strBytes.size()));
    EXPECT_EQ(Output({"info", Dictionary()}), strBefore.substr(0, strBefore.find("text index")));
    nlohmann::json const json = nlohmann::json::parse(Output({"info", "--json", Dictionary()}));
    EXPECT_EQ(json["tables"].size(), 5u);
}

TEST_F(ToolShow, DumpShowsTheTree) {
    EXPECT_EQ(Output({"dump", Dictionary()}), "0 東京都\tケン\n"
                                              "  1 千代田区\tシ\t1000000\t100\n"
                                              "    2 千代田\tチヨダ\t1000001\t100\n"
                                              "      3 １−１\n"
                                              "        7 宮内庁\tナマエ\t1008111\t100\n"
                                              "    2 一ツ橋\tヒトツバシ\t1000003\t100\n"
                                              "      3 １丁目\t１チョウメ\t1000003\t100\n"
                                              "    2 -\t\t1000000\t100\n");
}

TEST_F(ToolShow, DumpEndsAtTheLevelAskedFor) {
    EXPECT_EQ(Output({"dump", "--level", "0", Dictionary()}), "0 東京都\tケン\n");
    EXPECT_EQ(Output({"dump", Dictionary(), "--level", "2"}), "0 東京都\tケン\n"
                                                              "  1 千代田区\tシ\t1000000\t100\n"
                                                              "    2 千代田\tチヨダ\t1000001\t100\n"
                                                              "    2 一ツ橋\tヒトツバシ\t1000003\t100\n"
                                                              "    2 -\t\t1000000\t100\n");
    EXPECT_EQ(Output({"dump", Dictionary(), "--level", "7"}), Output({"dump", Dictionary()}));
}

TEST_F(ToolShow, ADumpThatCannotBeWrittenIsAFailure) {
    CToolRun const run = Run({"dump", Dictionary()}, FillStandardOutput);
    EXPECT_EQ(run.nStatus, 1);
    EXPECT_EQ(run.strErr, "qeadrs-dic: the output cannot be written.\n");
}

// --- files that are none ---

TEST_F(ToolShow, AMissingFileIsRefused) {
    std::filesystem::remove(Dictionary());
    ExpectRefused(": No such file or directory");
}

TEST_F(ToolShow, AFolderIsRefused) {
    std::filesystem::remove(Dictionary());
    std::filesystem::create_directory(Dictionary());
    ExpectRefused(": is not a file.");
}

TEST_F(ToolShow, AFileThatIsNoDictionaryIsRefused) {
    WriteFile(Dictionary(), Line(CTown{"東京都", "千代田区", "千代田", "チヨダ", "1000001"}));
    ExpectRefused(": is not a dictionary of ours.");
}

TEST_F(ToolShow, AnEmptyFileIsRefused) {
    WriteFile(Dictionary(), "");
    ExpectRefused(": is not a dictionary of ours.");
}

TEST_F(ToolShow, ANewerFormatIsRefusedAsSuch) {
    SetHeaderWord(HDR_VERSION, 2);
    ExpectRefused(": has format 2, newer than this program's 1; update the program.");
}

TEST_F(ToolShow, ACutOffDictionaryIsRefusedWithBothSizes) {
    WriteFile(Dictionary(), m_strBytes.substr(0, 500));
    ExpectRefused(": is damaged: 500 bytes instead of " + std::to_string(m_strBytes.size()) + ".");
}

TEST_F(ToolShow, ATableOutsideTheFileIsRefusedByItsName) {
    SetHeaderWord(HDR_NODE_COUNT, 0x0AAAAAAB);
    ExpectRefused(": is damaged: the table of nodes does not lie in the file.");
}

TEST_F(ToolShow, ALastTextWithoutItsEndIsRefused) {
    SetHeaderWord(HDR_STRING_SIZE, 196); // without the NUL of the last name and that of its empty reading
    ExpectRefused(": is damaged: the last text has no end.");
}

TEST_F(ToolShow, AFlippedByteIsAWrongChecksum) {
    std::string strBytes = m_strBytes;
    strBytes[strBytes.find("千代田")] ^= 1;
    WriteFile(Dictionary(), strBytes);
    EXPECT_THAT(Output({"info", Dictionary()}),
                HasSubstr("checksum            WRONG: the file has been changed or damaged\n"));
    EXPECT_EQ(nlohmann::json::parse(Output({"info", "--json", Dictionary()}))["checksum"],
              "WRONG: the file has been changed or damaged");
}

// --- the same on every byte, without a process for each ---

namespace {

// What opening the file is refused with, "" when it is opened. An opened one must be printed without harm.
std::string OpenError(std::string const& strPath) {
    return ErrorOf([&] {
        qe::CDictionaryFile const file(strPath);
        std::ostringstream out;
        qe::PrintInfo(file, false, out);
        qe::PrintTree(file, LEVEL_OFFICE, out);
    });
}

} // namespace

TEST_F(ToolShow, ADictionaryCutOffAtEveryLengthIsRefused) {
    for (size_t nSize = 0; nSize < m_strBytes.size(); ++nSize) {
        WriteFile(Dictionary(), m_strBytes.substr(0, nSize));
        EXPECT_THAT(OpenError(Dictionary()),
                    AnyOf(EndsWith(": is not a dictionary of ours."), HasSubstr(": is damaged: ")))
            << nSize;
    }
}

TEST_F(ToolShow, ADictionaryWithSomethingBehindItIsRefused) {
    WriteFile(Dictionary(), m_strBytes + "x");
    EXPECT_THAT(OpenError(Dictionary()), HasSubstr(": is damaged: " + std::to_string(m_strBytes.size() + 1) +
                                                   " bytes instead of " + std::to_string(m_strBytes.size()) + "."));
}

// Another bit in each byte.
TEST_F(ToolShow, AFlippedBitInAnyByteIsRefusedOrAWrongChecksum) {
    for (size_t nByte = 0; nByte < m_strBytes.size(); ++nByte) {
        std::string strBytes = m_strBytes;
        strBytes[nByte] = static_cast<char>(strBytes[nByte] ^ 1 << nByte % 8);
        WriteFile(Dictionary(), strBytes);
        if (!OpenError(Dictionary()).empty()) continue;
        EXPECT_FALSE(qe::CDictionaryFile(Dictionary()).IsIntact()) << "byte " << nByte;
    }
}

// A damaged file with the right checksum must not lead the printer astray: no bits, all bits, the largest index and
// the next value in every word of the file.
TEST_F(ToolShow, ADamagedWordWithARepairedChecksumDoesNoHarm) {
    for (size_t nPos = 0; nPos + 4 <= m_strBytes.size(); nPos += 4) {
        uint32_t nOld;
        std::memcpy(&nOld, m_strBytes.data() + nPos, sizeof nOld);
        for (uint32_t nNew : {0u, 0xFFFFFFFFu, 0x7FFFFFFFu, nOld + 1}) {
            std::vector<unsigned char> vByte(m_strBytes.begin(), m_strBytes.end());
            std::memcpy(vByte.data() + nPos, &nNew, sizeof nNew);
            qe::RepairChecksum(vByte);
            WriteFile(Dictionary(), std::string(vByte.begin(), vByte.end()));
            std::string const strError = OpenError(Dictionary());
            EXPECT_THAT(strError, AnyOf("", StartsWith(Dictionary()))) << nPos << " = " << nNew;
        }
    }
}

TEST(EditionText, SaysMonthDayOrUnknown) {
    EXPECT_EQ(qe::EditionText(20260529), "2026-05-29");
    EXPECT_EQ(qe::EditionText(20260500), "2026-05");
    EXPECT_EQ(qe::EditionText(0), "unknown");
}

TEST(EditionText, IsReadBack) {
    for (uint32_t nEdition : {20260529u, 20260500u, 20240229u, 20000229u, 10000101u, 99991231u})
        EXPECT_EQ(qe::ReadEdition(qe::EditionText(nEdition)), nEdition);
}
