// Tool.h - the program qeadrs-dic as a child process, and a folder with what it reads and writes.
#ifndef QEADRS_TESTS_BUILDER_TOOL_H
#define QEADRS_TESTS_BUILDER_TOOL_H

#include "tests/builder/Support.h"

#include <gtest/gtest.h>
#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

struct CToolRun {
    int nStatus = -1; // exit status; minus the signal's number when one ended it
    std::string strOut, strErr;
};

using CArguments = std::vector<std::string>;

// Starts the program without waiting. In the child prepare is called before the program begins. Its outputs go into
// files of these names; "" discards them.
pid_t StartTool(CArguments const& vArgument, std::function<void()> const& prepare = nullptr,
                std::string const& strOutFile = "", std::string const& strErrFile = "");

// Waits for its end: exit status, or minus the signal.
int WaitForTool(pid_t nProcess);

// For the child: its standard output is a device that is full.
void FillStandardOutput();

class Tool : public testing::Test {
  protected:
    CToolRun Run(CArguments const& vArgument, std::function<void()> const& prepare = nullptr) const;

    // "build --towns TABLE -o t.dic", the table written from these bytes.
    CToolRun Build(std::string const& strTowns, CArguments const& vMore = {}) const;

    // The standard output of a run that must succeed.
    std::string Output(CArguments const& vArgument) const;

    std::string Path(std::string const& strName) const { return m_folder.Path(strName); }
    std::string Dictionary() const { return Path("t.dic"); }

    // Puts a dictionary of one town at Dictionary() and returns its bytes.
    std::string PutOldDictionary() const;

    CTestFolder m_folder;
    CTestFolder m_folderOutputs; // beside, so that m_folder holds nothing but what the program leaves there
};

#endif
