// BatchTest.h - `qeadrs batch` over the sample, and addresses to feed it with.
#ifndef QEADRS_TESTS_CLI_BATCHTEST_H
#define QEADRS_TESTS_CLI_BATCHTEST_H

#include "tests/cli/CliTest.h"

#include <string>
#include <vector>

class BatchTest : public CliTest {
  protected:
    CResult Batch(std::vector<std::string> vArgument, std::string const& strInput = "") {
        return Ask("batch", std::move(vArgument), strInput);
    }
    // Output and no malformed records.
    std::string Answers(std::vector<std::string> const& vArgument, std::string const& strInput) {
        CResult const result = Batch(vArgument, strInput);
        EXPECT_EQ(result.nStatus, 0);
        EXPECT_EQ(result.strErr, "");
        return result.strOut;
    }
    pid_t StartBatch(std::vector<std::string> vArgument, int hIn, int hOut, int hErr) {
        return StartCommand(WithDic("batch", Sample(), std::move(vArgument)), hIn, hOut, hErr);
    }
};

// The rows of a table of towns as it is published: postal code, and prefecture, city and town in one.
struct CTownRow {
    std::string strCode, strPref, strCity, strTown;
};
std::vector<CTownRow> TownRows(std::string const& strFile);

#endif
