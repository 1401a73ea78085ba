// `qeadrs batch` with a million addresses: nothing lost, nothing reordered, every answer right, and no more memory
// than for a hundred thousand.
#include "tests/cli/BatchTest.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <map>
#include <random>
#include <thread>

namespace {

#ifdef QEADRS_SANITIZED                         // the program is; the test itself is not
constexpr size_t LARGE = 20'000, SMALL = 2'000; // and no limits: a sanitizer's own memory grows
constexpr bool HAS_LIMITS = false;
#else
constexpr size_t LARGE = 1'000'000, SMALL = 100'000;
constexpr bool HAS_LIMITS = true;
#endif

// What `qeadrs addr` says of an address.
struct CKnown {
    std::string strAddress;
    std::string strUpToRest; // the columns, of which the rest is the last
    std::string strStatus;
};

class BatchOfAMillion : public BatchTest {
  protected:
    // The towns of the sample, or of the whole data when it is there, as far as the command finds them.
    void AskCommand() {
#ifdef QEADRS_TEST_DATA
        m_strDic = QEADRS_TEST_DATA "/qeadrs.dic";
        std::string const strTable = QEADRS_TEST_DATA "/utf_ken_all.csv";
#else
        m_strDic = Sample();
        std::string const strTable = SAMPLE_DIR "/utf_ken_all.csv";
#endif
        std::vector<std::string> vText;
        std::string strInput;
        std::vector<CTownRow> const vTown = TownRows(strTable);
        size_t const nStride = 1 + vTown.size() / 5'000;
        for (size_t i = 0; i < vTown.size(); i += nStride) {
            // What stands behind the sign is no house number.
            std::string const strText = vTown[i].strPref + vTown[i].strCity + vTown[i].strTown + "#0";
            if (strText.size() > 100) continue; // a remark names the whole address
            vText.push_back(strText);
            strInput += strText + '\n';
        }
        CResult const result = Run(WithDic("addr", m_strDic, {}), strInput);
        std::map<std::string, std::string> remarks; // by address
        for (std::string const& strLine : Lines(result.strErr)) {
            size_t const nColon = strLine.find(": ", 8);
            remarks[strLine.substr(8, nColon - 8)] = strLine.substr(nColon + 2);
        }
        std::vector<std::string> const vRow = Lines(result.strOut);
        size_t nRow = 0;
        for (std::string const& strText : vText) {
            std::string const strRemark = remarks[strText];
            if (strRemark.substr(0, 9) == "not found") continue;
            std::string const strRow = vRow.at(nRow++);
            m_vKnown.push_back({strText.substr(0, strText.size() - 1), strRow.substr(0, strRow.size() - 1),
                                strRemark.empty() ? "found" : "found; " + strRemark});
        }
        ASSERT_EQ(nRow, vRow.size());
        ASSERT_GT(nRow, 100u);
    }

    // Sends so many addresses through the command, which has the number of each in front and behind. Returns its
    // largest size in KB.
    long Send(size_t nLines, std::string const& strJobs) {
        CPipe in, out;
        pid_t const nProcess = StartCommand(
            WithDic("batch", m_strDic, {"--from", "tsv", "--column", "2", "--op", "addr", "--jobs", strJobs}),
            in.hRead, out.hWrite, STDERR_FILENO);
        in.hRead = CHandle();
        out.hWrite = CHandle();
        std::thread writer([&] {
            ForEachBlock(nLines,
                         [&](std::string const& strInput, std::string const&) { SendAll(in.hWrite, strInput); });
            in.hWrite = CHandle();
        });
        bool bSame = true;
        ForEachBlock(nLines, [&](std::string const&, std::string const& strExpected) {
            std::string const strAnswer = ReadExactly(out.hRead, strExpected.size());
            if (bSame && strAnswer != strExpected) ADD_FAILURE() << strAnswer << "\ninstead of\n" << strExpected;
            bSame = bSame && strAnswer == strExpected;
        });
        EXPECT_EQ(ReadAll(out.hRead), "");
        writer.join();
        rusage usage = {};
        int nStatus = -1;
        EXPECT_EQ(wait4(nProcess, &nStatus, 0, &usage), nProcess);
        EXPECT_EQ(nStatus, 0);
        return usage.ru_maxrss;
    }

  private:
    // Calls Take with a few hundred lines and their answers, the same ones each time: the seed is fixed.
    template <typename TTake>
    void ForEachBlock(size_t nLines, TTake const& Take) const {
        std::mt19937 random(20261121);
        std::string strInput, strExpected;
        for (size_t i = 0; i < nLines; ++i) {
            CKnown const& known = m_vKnown[random() % m_vKnown.size()];
            std::string const strNumber = std::to_string(i);
            std::string const strLine = strNumber + '\t' + known.strAddress + strNumber;
            strInput += strLine + '\n';
            strExpected += strLine + '\t' + known.strUpToRest + strNumber + '\t' + known.strStatus + '\n';
            if (i % 500 != 499 && i + 1 != nLines) continue;
            Take(strInput, strExpected);
            strInput.clear();
            strExpected.clear();
        }
    }

    static void SendAll(int hFile, std::string const& strText) {
        for (size_t nDone = 0; nDone < strText.size();) {
            ssize_t const n = write(hFile, strText.data() + nDone, strText.size() - nDone);
            if (n <= 0) return; // the reader misses it
            nDone += static_cast<size_t>(n);
        }
    }

    static std::string ReadExactly(int hFile, size_t nSize) {
        std::string str(nSize, '\0');
        size_t nDone = 0;
        for (ssize_t n; nDone < nSize && (n = read(hFile, &str[nDone], nSize - nDone)) > 0;)
            nDone += static_cast<size_t>(n);
        str.resize(nDone);
        return str;
    }

    std::string m_strDic;
    std::vector<CKnown> m_vKnown;
};

TEST_F(BatchOfAMillion, LosesAndReordersNothingAndNeedsNoMoreMemoryThanForAHundredThousand) {
    ASSERT_NO_FATAL_FAILURE(AskCommand());
    long const nSmall = Send(SMALL, "2");
    long const nLarge = Send(LARGE, "2");
    if (!HAS_LIMITS) return;
    EXPECT_LT(nLarge, 48 * 1024) << "KB";
    EXPECT_LT(nLarge, nSmall + 4 * 1024) << "KB; " << nSmall << " for a tenth of the lines";
}

} // namespace
