#include "tests/cli/CliTest.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

namespace fs = std::filesystem;

fs::path CliTest::s_pathSample;

namespace {

fs::path MakeFolder() {
    std::string strName = testing::TempDir() + "qe-cli-XXXXXX";
    if (mkdtemp(strName.data()) == nullptr) throw std::runtime_error("no temporary folder");
    return fs::canonical(strName);
}

CHandle Open(std::string const& strFile, int nFlags) {
    return open(strFile.c_str(), nFlags | O_CLOEXEC, 0600);
}

} // namespace

void CliTest::SetUpTestSuite() {
    s_pathSample = MakeFolder();
    CHandle const hNull = Open("/dev/null", O_RDWR);
    std::string const strData = SAMPLE_DIR;
    pid_t const nProcess = Start({QEADRS_DIC_FILE, "build", "--towns", strData + "/utf_ken_all.csv", "--offices",
                                  strData + "/JIGYOSYO.CSV", "--sample", "-q", "-o", Sample()},
                                 {}, "/", hNull, hNull, STDERR_FILENO);
    ASSERT_EQ(Wait(nProcess), 0) << "the sample cannot be compiled";
}

void CliTest::TearDownTestSuite() {
    fs::remove_all(s_pathSample);
}

void CliTest::SetUp() {
    ASSERT_FALSE(fs::exists("/etc/qe.ini")) << "a profile of this machine would stand in for the tests' own";
    m_pathFolder = MakeFolder();
    m_pathTmp = m_pathFolder / "tmp";
    fs::create_directories(m_pathTmp);
    fs::create_directories(m_pathFolder / "home");
    // A sanitizer's finding must not look like "not found".
    m_environment = {{"HOME", Path("home")},
                     {"TMPDIR", m_pathTmp.string()},
                     {"ASAN_OPTIONS", "exitcode=99"},
                     {"LSAN_OPTIONS", "exitcode=99"},
                     {"UBSAN_OPTIONS", "exitcode=99"}};
}

void CliTest::TearDown() {
    if (m_pathFolder.empty()) return;
    EXPECT_TRUE(fs::is_empty(m_pathTmp)) << "a temporary file is left";
    fs::remove_all(m_pathFolder);
}

std::string CliTest::Sample() {
    return (s_pathSample / "qeadrs.dic").string();
}

pid_t CliTest::StartCommand(std::vector<std::string> vArgument, int hIn, int hOut, int hErr) {
    vArgument.insert(vArgument.begin(), QEADRS_FILE);
    return Start(vArgument, m_environment, m_pathFolder.string(), hIn, hOut, hErr);
}

CResult CliTest::Run(std::vector<std::string> vArgument, std::string const& strInput) {
    CHandle const hIn = Open(WriteFile("stdin", strInput), O_RDONLY);
    int const nFlags = O_WRONLY | O_CREAT | O_TRUNC;
    int const nStatus = Wait(StartCommand(std::move(vArgument), hIn, Open(Path("stdout"), nFlags), //
                                          Open(Path("stderr"), nFlags)));
    return {nStatus, ReadFile(Path("stdout")), ReadFile(Path("stderr"))};
}

CResult CliTest::RunOnTerminal(std::vector<std::string> vArgument, std::string const& strInput) {
    CHandle const hIn = Open(WriteFile("stdin", strInput), O_RDONLY);
    CTerminal terminal;
    pid_t const nProcess =
        StartCommand(std::move(vArgument), hIn, terminal.hSlave, Open(Path("stderr"), O_WRONLY | O_CREAT | O_TRUNC));
    terminal.hSlave = CHandle(); // the program's copy is the only one now, so that its end can be seen
    std::string const strOut = ReadAll(terminal.hMaster);
    int const nStatus = Wait(nProcess);
    return {nStatus, strOut, ReadFile(Path("stderr"))};
}

CResult CliTest::Ask(std::string const& strCommand, std::vector<std::string> vArgument, std::string const& strInput) {
    return Run(WithDic(strCommand, Sample(), std::move(vArgument)), strInput);
}

CResult CliTest::AskOnTerminal(std::string const& strCommand, std::vector<std::string> vArgument,
                               std::string const& strInput) {
    return RunOnTerminal(WithDic(strCommand, Sample(), std::move(vArgument)), strInput);
}

CResult CliTest::AskIn(std::vector<CEntryText> const& vEntry, std::string const& strCommand,
                       std::vector<std::string> vArgument) {
    return Run(WithDic(strCommand, WriteDictionary(vEntry), std::move(vArgument)));
}

std::string CliTest::Remark(CResult const& result, int nStatus) {
    EXPECT_EQ(result.nStatus, nStatus);
    EXPECT_EQ(result.strOut, "");
    return result.strErr;
}

CResult CliTest::Zip(std::vector<std::string> vArgument, std::string const& strInput) {
    return Ask("zip", std::move(vArgument), strInput);
}

CResult CliTest::ZipOnTerminal(std::vector<std::string> vArgument, std::string const& strInput) {
    return AskOnTerminal("zip", std::move(vArgument), strInput);
}

std::string CliTest::WriteFile(std::string const& strName, std::string const& strContent) const {
    fs::create_directories(fs::path(Path(strName)).parent_path());
    std::ofstream(Path(strName), std::ios::binary) << strContent;
    return Path(strName);
}

void CliTest::UseProfile(std::string const& strDicDir) {
    m_environment["QE_PROFILE"] = WriteFile("profile.ini", "[General]\nDicDir = " + strDicDir + "\n");
}

std::string CliTest::WriteDictionary(std::vector<CEntryText> const& vEntry) const {
    qe::CImageWriter writer;
    std::vector<std::pair<CNodeText, uint32_t>> vOpen; // the last entry's path and its nodes
    std::vector<uint32_t> vId;
    for (CEntryText const& entry : vEntry) {
        size_t nShared = 0;
        while (nShared < vOpen.size() && nShared < entry.vPath.size() &&
               vOpen[nShared].first.strName == entry.vPath[nShared].strName)
            ++nShared;
        vOpen.resize(nShared);
        for (size_t i = nShared; i < entry.vPath.size(); ++i) {
            vOpen.emplace_back(entry.vPath[i], writer.AddNode(vOpen.empty() ? ADDR_NONE : vOpen.back().second,
                                                              entry.vPath[i].nLevel, entry.vPath[i].strName));
            if (entry.vPath[i].nLevel == LEVEL_OFFICE) writer.AddOffice(vOpen.back().second);
        }
        vId.push_back(writer.AddEntry(vOpen.back().second, entry.strCode,
                                      entry.strOldCode.value_or(entry.strCode.substr(0, 3))));
    }
    for (size_t i = 0; i < vEntry.size(); ++i)
        if (vEntry[i].nSuccessor >= 0) writer.Supersede(vId[i], vId[static_cast<size_t>(vEntry[i].nSuccessor)]);
    std::vector<unsigned char> const vByte = writer.Write().vByte;
    return WriteFile("own.dic", std::string(vByte.begin(), vByte.end()));
}

std::vector<std::string> WithDic(std::string const& strCommand, std::string const& strDic,
                                 std::vector<std::string> vArgument) {
    vArgument.insert(vArgument.begin(), {strCommand, "--dic", strDic});
    return vArgument;
}

std::vector<std::string> WithDic(std::string const& strDic, std::vector<std::string> vArgument) {
    return WithDic("zip", strDic, std::move(vArgument));
}

std::string ReadFile(std::string const& strFile) {
    std::ifstream file(strFile, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> Lines(std::string const& strText) {
    std::vector<std::string> vLine;
    std::istringstream stream(strText);
    for (std::string strLine; std::getline(stream, strLine);) vLine.push_back(strLine);
    return vLine;
}
