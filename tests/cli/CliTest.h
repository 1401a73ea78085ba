// CliTest.h - the command `qeadrs` as built, over a dictionary compiled from the repository's sample.
#ifndef QEADRS_TESTS_CLI_CLITEST_H
#define QEADRS_TESTS_CLI_CLITEST_H

#include "builder/ImageWriter.h"
#include "tests/cli/Process.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

struct CResult {
    int nStatus;
    std::string strOut;
    std::string strErr;
};

// One row of a small dictionary of the test's own: names from the prefecture down, with the levels' numbers. An
// organisation (level 7) is in the index of organisations.
struct CNodeText {
    uint8_t nLevel;
    std::string strName;
};
struct CEntryText {
    std::string strCode;
    std::vector<CNodeText> vPath;
    int nSuccessor = -1;                        // position of the row that replaces this one
    std::optional<std::string> strOldCode = {}; // else the first three digits of the code
};

class CliTest : public testing::Test {
  protected:
    static void SetUpTestSuite();
    static void TearDownTestSuite();
    void SetUp() override;
    void TearDown() override; // also: the command has left no temporary file

    // The command with these arguments, its output into a file. Without a profile unless Environment() gets one.
    CResult Run(std::vector<std::string> vArgument, std::string const& strInput = "");
    // The same with the output on a terminal.
    CResult RunOnTerminal(std::vector<std::string> vArgument, std::string const& strInput = "");
    // A command over the sample, with these arguments.
    CResult Ask(std::string const& strCommand, std::vector<std::string> vArgument, std::string const& strInput = "");
    CResult AskOnTerminal(std::string const& strCommand, std::vector<std::string> vArgument,
                          std::string const& strInput = "");
    // A command over a dictionary of the test's own.
    CResult AskIn(std::vector<CEntryText> const& vEntry, std::string const& strCommand,
                  std::vector<std::string> vArgument);
    // Nothing is printed and the status is nStatus; the remark is returned.
    static std::string Remark(CResult const& result, int nStatus = 1);
    // "zip" over the sample.
    CResult Zip(std::vector<std::string> vArgument, std::string const& strInput = "");
    CResult ZipOnTerminal(std::vector<std::string> vArgument, std::string const& strInput = "");
    pid_t StartCommand(std::vector<std::string> vArgument, int hIn, int hOut, int hErr);

    // Files below the test's own folder.
    std::string Path(std::string const& strName) const { return (m_pathFolder / strName).string(); }
    std::string WriteFile(std::string const& strName, std::string const& strContent) const;
    // A profile that names strDicDir, in force from now on.
    void UseProfile(std::string const& strDicDir);
    // A dictionary of a few entries. Neighbours that share a beginning of their paths share its nodes.
    std::string WriteDictionary(std::vector<CEntryText> const& vEntry) const;

    static std::string Sample(); // file of the sample dictionary

    CEnvironment m_environment;
    std::filesystem::path m_pathFolder; // the test's own, and the command's current folder
    std::filesystem::path m_pathTmp;    // the command's TMPDIR
    static std::filesystem::path s_pathSample;
};

// The command and its arguments, with "--dic" of a file between them; the same for zip.
std::vector<std::string> WithDic(std::string const& strCommand, std::string const& strDic,
                                 std::vector<std::string> vArgument);
std::vector<std::string> WithDic(std::string const& strDic, std::vector<std::string> vArgument);

std::string ReadFile(std::string const& strFile);
std::vector<std::string> Lines(std::string const& strText);

#endif
