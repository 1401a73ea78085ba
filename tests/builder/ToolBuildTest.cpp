// qeadrs-dic build: what it says, what it refuses with which exit status, and what becomes of the old dictionary.
#include "builder/DictionaryFile.h"
#include "builder/ImageWriter.h"
#include "builder/TextTable.h"
#include "tests/builder/Tool.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstring>
#include <thread>

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Key;
using testing::Not;
using testing::StartsWith;
using Clock = std::chrono::steady_clock;

namespace {

std::string const SAMPLE_TOWNS = QEADRS_SAMPLE "/utf_ken_all.csv";
std::string const SAMPLE_OFFICES = QEADRS_SAMPLE "/JIGYOSYO.CSV";
CTown const CHIYODA{"東京都", "千代田区", "千代田", "チヨダ", "1000001"};
CTown const OTEMACHI{"東京都", "千代田区", "大手町", "オオテマチ", "1000004"};

// Runs of the program over the sample data.
class ToolSample : public Tool {
  protected:
    CArguments Sample(CArguments const& vMore = {}) const {
        CArguments v{"build", "--towns", SAMPLE_TOWNS, "--offices", SAMPLE_OFFICES, "-o", Dictionary()};
        v.insert(v.end(), vMore.begin(), vMore.end());
        return v;
    }
};

} // namespace

// --- what it says ---

TEST_F(ToolSample, BuildWritesTheDictionaryAndNothingElse) {
    CToolRun const run = Run(Sample());
    EXPECT_EQ(run.nStatus, 0);
    EXPECT_EQ(run.strErr, "");
    EXPECT_THAT(m_folder.Content(), ElementsAre(Key("t.dic")));
    EXPECT_TRUE(qe::CDictionaryFile(Dictionary()).IsIntact());
}

TEST_F(ToolSample, BuildPutsTheTextIndexIntoTheDictionaryAndCountsItsBytes) {
    nlohmann::json const json = nlohmann::json::parse(Output(Sample({"--json"})));
    auto const index = qe::FindTextTable(qe::CDictionaryFile(Dictionary()).Bytes());
    ASSERT_TRUE(index);
    EXPECT_EQ(json["counts"]["text_index_bytes"], index->nSize);
    EXPECT_EQ(Output({"check", Dictionary()}), "sound: all 25 rules hold\n");
}

TEST_F(ToolSample, BuildNamesItsSourcesAndItsCounts) {
    std::string const strOut = Output(Sample());
    EXPECT_THAT(strOut, HasSubstr(SAMPLE_TOWNS + ", UTF-8\n"));
    EXPECT_THAT(strOut, HasSubstr(SAMPLE_OFFICES + ", UTF-8\n"));
    EXPECT_THAT(strOut, testing::ContainsRegex("\ntown rows +394\n"));
    EXPECT_THAT(strOut, testing::ContainsRegex("\noffice rows +50\n"));
    EXPECT_THAT(strOut, EndsWith("\n2 remarks on single rows; --verbose lists them.\n"));
}

TEST_F(ToolSample, VerboseListsTheRemarks) {
    CToolRun const run = Run(Sample({"--verbose"}));
    EXPECT_EQ(run.nStatus, 0);
    EXPECT_EQ(std::count(run.strErr.begin(), run.strErr.end(), '\n'), 2);
    EXPECT_THAT(run.strErr, HasSubstr("cut to 127 bytes: 一般財団法人　架空地域産業振興総合研究機構"));
    EXPECT_THAT(run.strOut, Not(HasSubstr("--verbose")));
}

TEST_F(ToolSample, JsonIsOneObjectWithAllCounts) {
    std::string const strOut = Output(Sample({"--json"}));
    nlohmann::json const json = nlohmann::json::parse(strOut); // throws for anything but one value
    ASSERT_TRUE(json.is_object());
    auto const Count = [&](char const* psz) { return json["counts"].value(psz, 0u); };
    EXPECT_EQ(Count("town_rows"), 394u);
    EXPECT_EQ(Count("rows_of_whole_cities") + Count("rows_of_towns") + Count("rows_of_areas") +
                  Count("rows_of_floors"),
              394u);
    EXPECT_EQ(Count("office_rows"), 50u);
    EXPECT_EQ(Count("offices_in_towns_spelled_alike") + Count("offices_in_towns_folded") +
                  Count("offices_in_towns_added") + Count("offices_without_town") + Count("offices_left_out"),
              50u);
    EXPECT_EQ(Count("bytes"), ReadFile(Dictionary()).size());
    EXPECT_EQ(json["remarks"].size(), 2u);
    EXPECT_EQ(json["dictionary"], Dictionary());
    EXPECT_EQ(std::count(strOut.begin(), strOut.end(), '\n'), 1);
}

TEST_F(ToolSample, QuietIsSilent) {
    for (char const* pszOption : {"-q", "--quiet"}) {
        CToolRun const run = Run(Sample({pszOption}));
        EXPECT_EQ(run.nStatus, 0);
        EXPECT_EQ(run.strOut + run.strErr, "") << pszOption;
    }
}

TEST_F(ToolSample, ProgressIsToldOnStandardErrorWhenAskedFor) {
    CToolRun const run = Run(Sample({"--progress", "--json"}));
    EXPECT_EQ(run.strErr, "reading " + SAMPLE_TOWNS + "\nreading " + SAMPLE_OFFICES + "\ncompiling\nwriting " +
                              Dictionary() + "\n");
    EXPECT_THAT(run.strOut, StartsWith("{"));
}

TEST_F(ToolSample, TheOutputCannotBeWrittenIsAFailure) {
    CToolRun const run = Run(Sample(), FillStandardOutput);
    EXPECT_EQ(run.nStatus, 1);
    EXPECT_EQ(run.strErr, "qeadrs-dic: the output cannot be written.\n");
}

TEST_F(ToolSample, SampleMarksTheDictionary) {
    Output(Sample({"--sample"}));
    EXPECT_THAT(Output({"info", Dictionary()}), HasSubstr("source              sample\n"));
}

// --- same input, same bytes ---

TEST_F(ToolSample, TwoRunsGiveTheSameBytes) {
    Output(Sample());
    std::string const strFirst = ReadFile(Dictionary());
    Output(Sample({"--json", "--verbose"}));
    EXPECT_EQ(ReadFile(Dictionary()), strFirst);
}

TEST_F(ToolSample, LocaleAndTimeZoneDoNotChangeTheBytes) {
    std::string const strZip = m_folderOutputs.Write("t.zip", Zip({{"t.csv", ReadFile(SAMPLE_TOWNS)}}, 202605));
    CArguments const vBuild{"build", "--towns", strZip, "-o", Dictionary()};
    Output(vBuild);
    std::string const strFirst = ReadFile(Dictionary());
    for (auto const& [pszName, pszValue] :
         {std::pair{"TZ", "Asia/Tokyo"}, {"TZ", "UTC+11"}, {"LC_ALL", "C"}, {"LC_ALL", "C.UTF-8"}}) {
        EXPECT_EQ(Run(vBuild, [&, psz = pszName, pszTo = pszValue] { setenv(psz, pszTo, 1); }).nStatus, 0);
        EXPECT_EQ(ReadFile(Dictionary()), strFirst) << pszName << "=" << pszValue;
    }
}

TEST_F(ToolSample, TheFilesNameDoesNotChangeTheBytes) {
    Output(Sample());
    std::string const strFirst = ReadFile(Dictionary());
    Output({"build", "--towns", m_folderOutputs.Write("x", ReadFile(SAMPLE_TOWNS)), "--offices",
            m_folderOutputs.Write("y", ReadFile(SAMPLE_OFFICES)), "-o", Path("other.dic")});
    EXPECT_EQ(ReadFile(Path("other.dic")), strFirst);
}

// --- edition ---

TEST_F(Tool, AnEditionIsAMonthOrADay) {
    for (char const* pszEdition : {"2026-05", "2026-05-29", "1000-01", "9999-12-31"}) {
        EXPECT_EQ(Build(Line(CHIYODA), {"--edition", pszEdition}).nStatus, 0);
        EXPECT_EQ(nlohmann::json::parse(Output({"info", "--json", Dictionary()}))["edition"], pszEdition);
    }
}

TEST_F(Tool, TheEditionOfAZipIsItsMonth) {
    EXPECT_EQ(Build(Zip({{"t.csv", Line(CHIYODA)}}, 202605)).nStatus, 0);
    EXPECT_THAT(Output({"info", Dictionary()}), HasSubstr("edition             2026-05\n"));
}

TEST_F(Tool, TheNewerOfTwoZipsGivesTheEdition) {
    std::string const strOffices = Table({COffice{"宮内庁", "東京都", "千代田区", "千代田", "", "1008111"}});
    std::string const strZip = m_folderOutputs.Write("o.zip", Zip({{"o.csv", strOffices}}, 202606));
    EXPECT_EQ(Build(Zip({{"t.csv", Line(CHIYODA)}}, 202605), {"--offices", strZip}).nStatus, 0);
    EXPECT_THAT(Output({"info", Dictionary()}), HasSubstr("edition             2026-06\n"));
}

TEST_F(Tool, AnEditionAskedForWinsOverTheZips) {
    EXPECT_EQ(Build(Zip({{"t.csv", Line(CHIYODA)}}, 202605), {"--edition", "2020-01-02"}).nStatus, 0);
    EXPECT_THAT(Output({"info", Dictionary()}), HasSubstr("edition             2020-01-02\n"));
}

TEST_F(Tool, AnythingElseIsNoEdition) {
    std::string const strOld = PutOldDictionary();
    for (char const* pszEdition :
         {"2026",       "2026-",       "2026-5",     "2026-00",     "2026-13", "2026-05-", "2026-05-0",
          "2026-05-00", "2026-05-32",  "2026-02-29", "2026-05-291", "26-05",   "0000-05",  "2026/05",
          "202605",     "2026-05-29x", " 2026-05",   "+202-05",     "2026- 5", "x",        "２０２６-05"}) {
        CToolRun const run = Build(Line(CHIYODA), {"--edition", pszEdition});
        EXPECT_EQ(run.nStatus, 2) << pszEdition;
        EXPECT_THAT(run.strErr, HasSubstr("is no edition; write it as 2026-05 or 2026-05-29.")) << pszEdition;
        EXPECT_EQ(ReadFile(Dictionary()), strOld) << pszEdition;
    }
}

// --- usage ---

namespace {

class ToolUsage : public Tool {
  protected:
    void ExpectUsage(CArguments const& vArgument, std::string const& strWord) const {
        std::string const strOld = PutOldDictionary();
        CToolRun const run = Run(vArgument);
        EXPECT_EQ(run.nStatus, 2);
        EXPECT_EQ(run.strOut, "");
        EXPECT_THAT(run.strErr, HasSubstr(strWord));
        EXPECT_EQ(ReadFile(Dictionary()), strOld);
    }
};

} // namespace

TEST_F(ToolUsage, NoCommandIsAUsageError) {
    ExpectUsage({}, "subcommand");
}

TEST_F(ToolUsage, AnUnknownCommandIsAUsageError) {
    ExpectUsage({"frobnicate"}, "subcommand");
}

TEST_F(ToolUsage, AnUnknownOptionIsAUsageError) {
    ExpectUsage({"build", "--towns", SAMPLE_TOWNS, "-o", Dictionary(), "--frobnicate"}, "--frobnicate");
}

TEST_F(ToolUsage, AWordTooManyIsAUsageError) {
    ExpectUsage({"build", "--towns", SAMPLE_TOWNS, "-o", Dictionary(), "frobnicate"}, "frobnicate");
}

TEST_F(ToolUsage, ABuildWithoutOutputIsAUsageError) {
    ExpectUsage({"build", "--towns", SAMPLE_TOWNS}, "--output");
}

TEST_F(ToolUsage, AnOptionWithoutItsValueIsAUsageError) {
    ExpectUsage({"build", "--towns", SAMPLE_TOWNS, "-o"}, "--output");
}

TEST_F(ToolUsage, ABuildWithoutATableIsAUsageError) {
    ExpectUsage({"build", "-o", Dictionary()}, "--towns or --skk");
}

TEST_F(ToolUsage, BothSourcesTogetherAreAUsageError) {
    ExpectUsage({"build", "--towns", SAMPLE_TOWNS, "--skk", Path(""), "-o", Dictionary()}, "--skk");
}

TEST_F(ToolUsage, OfficesWithTheSecondSourceAreAUsageError) {
    ExpectUsage({"build", "--skk", Path(""), "--offices", SAMPLE_OFFICES, "-o", Dictionary()}, "--offices");
}

TEST_F(ToolUsage, OfficesWithoutTownsAreAUsageError) {
    ExpectUsage({"build", "--offices", SAMPLE_OFFICES, "-o", Dictionary()}, "--offices");
}

TEST_F(ToolUsage, InfoAndDumpWithoutAFileAreUsageErrors) {
    ExpectUsage({"info"}, "FILE");
    ExpectUsage({"dump"}, "FILE");
}

TEST_F(ToolUsage, ALevelThatIsNoneIsAUsageError) {
    for (char const* pszLevel : {"8", "-1", "x", ""})
        ExpectUsage({"dump", "--level", pszLevel, Dictionary()}, "--level");
}

TEST_F(ToolUsage, HelpAndVersionAreNoErrors) {
    EXPECT_THAT(Output({"--help"}), HasSubstr("build"));
    EXPECT_THAT(Output({"build", "--help"}), HasSubstr("--towns"));
    EXPECT_THAT(Output({"--version"}), testing::MatchesRegex("[0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

// --- broken input ---

namespace {

// Each test gives one broken table; the program must name it, exit with 1 and leave the old dictionary alone.
class ToolBroken : public Tool {
  protected:
    void SetUp() override { m_strOld = PutOldDictionary(); }

    void ExpectRefused(CArguments const& vSource, std::string const& strMessage) const {
        CArguments vArgument{"build", "-o", Dictionary()};
        vArgument.insert(vArgument.end(), vSource.begin(), vSource.end());
        CToolRun const run = Run(vArgument);
        EXPECT_EQ(run.nStatus, 1);
        EXPECT_EQ(run.strOut, "");
        EXPECT_EQ(run.strErr, "qeadrs-dic: " + strMessage + "\n");
        EXPECT_THAT(m_folder.Content(), ElementsAre(testing::Pair("t.dic", m_strOld)));
    }
    // A broken town table, and the message behind its name.
    void ExpectTownsRefused(std::string const& strBytes, std::string const& strMessage) const {
        std::string const strPath = m_folderOutputs.Write("towns.csv", strBytes);
        ExpectRefused({"--towns", strPath}, strPath + strMessage);
    }
    // A broken organisation table beside a good town table.
    void ExpectOfficesRefused(std::string const& strBytes, std::string const& strMessage) const {
        std::string const strPath = m_folderOutputs.Write("offices.csv", strBytes);
        ExpectRefused({"--towns", SAMPLE_TOWNS, "--offices", strPath}, strPath + strMessage);
    }

    std::string m_strOld;
    std::string const m_strGood = Line(CHIYODA);
    COffice const m_office{"宮内庁", "東京都", "千代田区", "千代田", "１−１", "1008111"};
};

} // namespace

TEST_F(ToolBroken, ATableCutOffInALineIsNamedWithIt) {
    std::string const strCut = m_strGood + Line(OTEMACHI).substr(0, 40);
    ExpectTownsRefused(strCut, ":2: the file is cut off within this line; get it again.");
}

TEST_F(ToolBroken, AnOrganisationTableCutOffInALineIsNamedWithIt) {
    ExpectOfficesRefused(Line(m_office) + Line(m_office).substr(0, 40),
                         ":2: the file is cut off within this line; get it again.");
}

TEST_F(ToolBroken, AQuoteCutOffAtALineEndIsNamedWithIt) {
    ExpectTownsRefused(m_strGood + Line(OTEMACHI).substr(0, 40) + "\r\n",
                       ":2: a quote is not closed; the line is cut off or damaged.");
}

TEST_F(ToolBroken, AColumnMissingIsNamedWithItsLine) {
    ExpectTownsRefused(m_strGood + Line(OTEMACHI).substr(6), ":2: expected 15 columns, found 14.");
}

TEST_F(ToolBroken, AColumnMissingInTheOrganisationTableIsNamedWithItsLine) {
    ExpectOfficesRefused(Line(m_office) + Line(m_office).substr(6), ":2: expected 13 columns, found 12.");
}

TEST_F(ToolBroken, ADamagedCharacterOfTheCodePageIsNamedWithItsLine) {
    ExpectTownsRefused(EncodeCp932(m_strGood) + "\xFF" + EncodeCp932(Line(OTEMACHI)),
                       ":2: this line is not CP932, and the file is not UTF-8 either.");
}

TEST_F(ToolBroken, ADamagedCharacterOfUtf8IsNamedWithItsLine) {
    std::string const strPath = m_folderOutputs.Write("towns.csv", m_strGood + "\xFF" + Line(OTEMACHI));
    CToolRun const run = Run({"build", "--towns", strPath, "-o", Dictionary()});
    EXPECT_EQ(run.nStatus, 1);
    EXPECT_THAT(run.strErr, HasSubstr(strPath + ":2: this line is not UTF-8, and the file is not CP932 either."));
    EXPECT_THAT(m_folder.Content(), ElementsAre(testing::Pair("t.dic", m_strOld)));
}

TEST_F(ToolBroken, AnEmptyTableIsNamed) {
    ExpectTownsRefused("", ": is empty.");
}

TEST_F(ToolBroken, AnEmptyOrganisationTableIsNamed) {
    ExpectOfficesRefused("", ": is empty.");
}

TEST_F(ToolBroken, AFolderIsNoTable) {
    std::string const strFolder = m_folderOutputs.Path("");
    ExpectRefused({"--towns", strFolder}, strFolder + ": this is a directory; name a zip or CSV file in it.");
}

TEST_F(ToolBroken, AMissingTableIsNamed) {
    std::string const strPath = m_folderOutputs.Path("none.csv");
    ExpectRefused({"--towns", strPath}, strPath + ": No such file or directory");
}

TEST_F(ToolBroken, AMissingOrganisationTableIsNamed) {
    std::string const strPath = m_folderOutputs.Path("none.csv");
    ExpectRefused({"--towns", SAMPLE_TOWNS, "--offices", strPath}, strPath + ": No such file or directory");
}

TEST_F(ToolBroken, ANulByteIsNamedWithItsLine) {
    ExpectTownsRefused(m_strGood + "13101,\"100" + std::string(1, '\0') + "\"\r\n",
                       ":2: a NUL byte: this is no text file.");
}

TEST_F(ToolBroken, TheTablesExchangedAreNamedWithTheFirstLine) {
    ExpectRefused({"--towns", SAMPLE_OFFICES, "--offices", SAMPLE_TOWNS},
                  SAMPLE_OFFICES + ":1: expected 15 columns, found 13.");
}

TEST_F(ToolBroken, AZipCutOffIsNamed) {
    std::string const strZip = Zip({{"t.csv", m_strGood}});
    ExpectTownsRefused(strZip.substr(0, strZip.size() / 2),
                       ": is cut off or damaged: it cannot be opened as a zip file.");
}

TEST_F(ToolBroken, ALineOfAZipsMemberIsNamedWithBoth) {
    ExpectTownsRefused(Zip({{"KEN_ALL.CSV", m_strGood + "x\r\n"}}), "(KEN_ALL.CSV):2: expected 15 columns, found 1.");
}

TEST_F(ToolBroken, AParenthesisThatNeverClosesIsNamedWithItsLine) {
    CTown town = OTEMACHI;
    town.strTown = "大手町（１丁目";
    ExpectTownsRefused(m_strGood + Line(town), ":2: the file ends within the parenthesis of this town.");
}

// --- the output ---

TEST_F(ToolSample, AMissingOutputFolderIsAFailure) {
    CToolRun const run = Run({"build", "--towns", SAMPLE_TOWNS, "-o", Path("none/t.dic")});
    EXPECT_EQ(run.nStatus, 1);
    EXPECT_EQ(run.strErr,
              "qeadrs-dic: " + Path("none/t.dic") +
                  ": cannot be created: No such file or directory; an earlier file of that name is untouched.\n");
    EXPECT_THAT(m_folder.Content(), IsEmpty());
}

TEST_F(ToolSample, AFolderInPlaceOfTheOutputIsAFailure) {
    m_folder.Write("t.dic/inside", "x");
    CToolRun const run = Run(Sample());
    EXPECT_EQ(run.nStatus, 1);
    EXPECT_THAT(run.strErr, StartsWith("qeadrs-dic: " + Dictionary() + ": cannot be replaced: "));
    EXPECT_THAT(m_folder.Content(), ElementsAre(testing::Pair("t.dic", "/")));
    EXPECT_EQ(ReadFile(Path("t.dic/inside")), "x");
}

// The limit lets the first 8192 bytes through and fails the rest, as a disk does that runs full.
TEST_F(ToolSample, AFullDiskLeavesTheOldDictionary) {
    std::string const strOld = PutOldDictionary();
    CToolRun const run = Run(Sample(), [] {
        rlimit const limit{8192, 8192};
        setrlimit(RLIMIT_FSIZE, &limit);
    });
    EXPECT_EQ(run.nStatus, 1);
    EXPECT_EQ(run.strErr, "qeadrs-dic: " + Dictionary() +
                              ": cannot be written: File too large; an earlier file of that name is untouched.\n");
    EXPECT_THAT(m_folder.Content(), ElementsAre(testing::Pair("t.dic", strOld)));
}

TEST_F(ToolSample, AFullDiskWithoutAnOldDictionaryLeavesNothing) {
    CToolRun const run = Run(Sample(), [] {
        rlimit const limit{8192, 8192};
        setrlimit(RLIMIT_FSIZE, &limit);
    });
    EXPECT_EQ(run.nStatus, 1);
    EXPECT_THAT(m_folder.Content(), IsEmpty());
}

TEST_F(ToolSample, TheDictionaryIsReadableAsTheMaskSays) {
    Run(Sample(), [] { umask(027); });
    struct stat status = {};
    ASSERT_EQ(stat(Dictionary().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777u, 0640u);
}

// A program that has the old file mapped goes on with the old bytes.
TEST_F(ToolSample, AReaderOfTheOldDictionaryIsNotDisturbed) {
    std::string const strOld = PutOldDictionary();
    int const nFile = open(Dictionary().c_str(), O_RDONLY);
    void* const pMapped = mmap(nullptr, strOld.size(), PROT_READ, MAP_SHARED, nFile, 0);
    close(nFile);
    ASSERT_NE(pMapped, MAP_FAILED);
    Output(Sample());
    EXPECT_EQ(std::string(static_cast<char const*>(pMapped), strOld.size()), strOld);
    EXPECT_NE(ReadFile(Dictionary()), strOld);
    munmap(pMapped, strOld.size());
}

// --- killed while writing ---

namespace {

// A table large enough that a run takes a while.
std::string LargeTable() {
    std::string str;
    for (int n = 0; n < 3000; ++n)
        str += Line(CTown{"東京都", "見本" + std::to_string(n / 50) + "市", "町" + std::to_string(n), "マチ",
                          std::to_string(1000000 + n)});
    return str;
}

class ToolKilled : public Tool {
  protected:
    void SetUp() override {
        m_strTowns = m_folderOutputs.Write("large.csv", LargeTable());
        m_vBuild = {"build", "--towns", m_strTowns, "-o", Dictionary(), "-q"};
        auto const start = Clock::now();
        ASSERT_EQ(Run(m_vBuild).nStatus, 0);
        m_duration = Clock::now() - start;
        m_strNew = ReadFile(Dictionary());
        m_strOld = PutOldDictionary();
        ASSERT_NE(m_strOld, m_strNew);
    }

    // True when the dictionary is the new one, false when it is the old one; anything else fails.
    bool IsNew() const {
        std::string const strBytes = ReadFile(Dictionary());
        EXPECT_TRUE(strBytes == m_strOld || strBytes == m_strNew) << strBytes.size() << " bytes";
        EXPECT_TRUE(qe::CDictionaryFile(Dictionary()).IsIntact());
        return strBytes == m_strNew;
    }

    // Whether a file beside the dictionary is being written.
    bool HasTemporary() const {
        for (auto const& entry : std::filesystem::directory_iterator(Path("")))
            if (entry.path().filename() != "t.dic") return true;
        return false;
    }

    // What a killed run has left.
    void RemoveTemporary() const {
        for (auto const& [strName, strBytes] : m_folder.Content())
            if (strName != "t.dic") std::filesystem::remove(Path(strName));
    }

    // Runs the program, and from the moment that its temporary file is there kills it at the system call with this
    // number, before it is carried out. False when it ended earlier.
    bool RunAndKillAtCall(int nCall) const {
        pid_t const nProcess = StartTool(m_vBuild, [] {
            setenv("ASAN_OPTIONS", "detect_leaks=0", 1); // the leak check cannot be traced
            ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        });
        int nStatus = 0;
        int nCallsSeen = 0;
        bool bEntry = false; // the next stop is the begin of a call
        while (waitpid(nProcess, &nStatus, 0) == nProcess && WIFSTOPPED(nStatus)) {
            bEntry = !bEntry;
            if (bEntry && HasTemporary() && nCallsSeen++ == nCall) {
                kill(nProcess, SIGKILL);
                return WaitForTool(nProcess) == -SIGKILL;
            }
            ptrace(PTRACE_SYSCALL, nProcess, nullptr, nullptr);
        }
        EXPECT_TRUE(WIFEXITED(nStatus) && WEXITSTATUS(nStatus) == 0);
        return false;
    }

    std::string m_strTowns, m_strOld, m_strNew;
    CArguments m_vBuild;
    Clock::duration m_duration{};
};

} // namespace

TEST_F(ToolKilled, AtAnyMomentItLeavesTheOldOrTheNewDictionary) {
    int nOld = 0;
    for (int n = 0; n < 40; ++n) {
        pid_t const nProcess = StartTool(m_vBuild);
        std::this_thread::sleep_for(m_duration * n / 30); // the last ones come too late
        kill(nProcess, SIGKILL);
        WaitForTool(nProcess);
        nOld += IsNew() ? 0 : 1;
        RemoveTemporary();
        WriteFile(Dictionary(), m_strOld);
    }
    EXPECT_GE(nOld, 1);
}

// Every call of the system from the one that follows the creation of the temporary file up to its renaming.
TEST_F(ToolKilled, AtEveryCallWhileItWritesItLeavesTheOldDictionary) {
    int nCall = 0;
    for (; RunAndKillAtCall(nCall); ++nCall) {
        EXPECT_FALSE(IsNew()) << "call " << nCall;
        EXPECT_TRUE(HasTemporary()) << "call " << nCall;
        RemoveTemporary();
    }
    EXPECT_GE(nCall, 5); // write, mode, sync, read back, rename
    EXPECT_TRUE(IsNew());
    EXPECT_FALSE(HasTemporary());
}

TEST_F(ToolKilled, AReaderOfTheOldDictionaryIsNotDisturbed) {
    int const nFile = open(Dictionary().c_str(), O_RDONLY);
    void* const pMapped = mmap(nullptr, m_strOld.size(), PROT_READ, MAP_SHARED, nFile, 0);
    close(nFile);
    ASSERT_NE(pMapped, MAP_FAILED);
    for (int nCall = 0; RunAndKillAtCall(nCall); ++nCall) {
        EXPECT_EQ(std::memcmp(pMapped, m_strOld.data(), m_strOld.size()), 0) << "call " << nCall;
        RemoveTemporary();
    }
    EXPECT_EQ(std::memcmp(pMapped, m_strOld.data(), m_strOld.size()), 0);
    munmap(pMapped, m_strOld.size());
}

// What a killed run has left behind does not stand in the way of the next one.
TEST_F(ToolKilled, TheNextRunSucceeds) {
    ASSERT_TRUE(RunAndKillAtCall(0));
    EXPECT_EQ(Run(m_vBuild).nStatus, 0);
    EXPECT_TRUE(IsNew());
}
