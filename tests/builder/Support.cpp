// Support.cpp - what the tests of the compiler share.
#include "tests/builder/Support.h"

#include <gtest/gtest.h>
#include <iconv.h>
#include <unistd.h>
#include <zip.h>

#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

CTestFolder::CTestFolder() {
    std::string strPath = (fs::temp_directory_path() / "qeadrs-builder-XXXXXX").string();
    if (mkdtemp(strPath.data()) == nullptr) throw std::runtime_error("no folder for the test: " + strPath);
    m_path = strPath;
}

CTestFolder::~CTestFolder() {
    std::error_code error;
    fs::remove_all(m_path, error);
}

std::string CTestFolder::Write(std::string const& strName, std::string const& strBytes) const {
    fs::create_directories((m_path / strName).parent_path());
    WriteFile(Path(strName), strBytes);
    return Path(strName);
}

std::map<std::string, std::string> CTestFolder::Content() const {
    std::map<std::string, std::string> content;
    for (auto const& entry : fs::directory_iterator(m_path))
        content[entry.path().filename().string()] = entry.is_directory() ? "/" : ReadFile(entry.path().string());
    return content;
}

std::string ReadFile(std::string const& strPath) {
    std::ifstream in(strPath, std::ios::binary);
    EXPECT_TRUE(in) << strPath;
    return {std::istreambuf_iterator<char>(in), {}};
}

void WriteFile(std::string const& strPath, std::string const& strBytes) {
    std::ofstream out(strPath, std::ios::binary);
    out << strBytes << std::flush;
    EXPECT_TRUE(out) << strPath;
}

std::string Encode(std::string const& strUtf8, char const* pszEncoding) {
    iconv_t const handle = iconv_open(pszEncoding, "UTF-8");
    EXPECT_NE(handle, reinterpret_cast<iconv_t>(-1)) << pszEncoding;
    std::string strEncoded(strUtf8.size() * 2 + 16, '\0');
    char* pIn = const_cast<char*>(strUtf8.data());
    size_t nIn = strUtf8.size();
    char* pOut = strEncoded.data();
    size_t nOut = strEncoded.size();
    EXPECT_EQ(iconv(handle, &pIn, &nIn, &pOut, &nOut), 0u) << "not in " << pszEncoding << ": " << pIn;
    EXPECT_EQ(iconv(handle, nullptr, nullptr, &pOut, &nOut), 0u); // a character that waits for its mark
    iconv_close(handle);
    strEncoded.resize(strEncoded.size() - nOut);
    return strEncoded;
}

std::string EncodeCp932(std::string const& strUtf8) {
    std::string str = strUtf8;
    for (auto const& [strOurs, strTheirs] : {std::pair{"〜", "～"}, std::pair{"−", "－"}})
        for (size_t nPos; (nPos = str.find(strOurs)) != std::string::npos;) str.replace(nPos, 3, strTheirs);
    return Encode(str, "CP932");
}

std::string Zip(std::vector<std::pair<std::string, std::string>> const& vMember, unsigned nMonth) {
    CTestFolder const folder;
    std::tm date = {};
    date.tm_year = static_cast<int>(nMonth / 100) - 1900;
    date.tm_mon = static_cast<int>(nMonth % 100) - 1;
    date.tm_mday = 15;
    zip_t* const pZip = zip_open(folder.Path("zip").c_str(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
    for (auto const& [strName, strBytes] : vMember) {
        zip_source_t* const pSource = zip_source_buffer(pZip, strBytes.data(), strBytes.size(), 0);
        zip_int64_t const n = zip_file_add(pZip, strName.c_str(), pSource, 0);
        EXPECT_GE(n, 0) << strName;
        // Stored, not deflated: a changed byte then is a wrong checksum and nothing else.
        EXPECT_EQ(zip_set_file_compression(pZip, static_cast<zip_uint64_t>(n), ZIP_CM_STORE, 0), 0);
        EXPECT_EQ(zip_file_set_mtime(pZip, static_cast<zip_uint64_t>(n), std::mktime(&date), 0), 0);
    }
    EXPECT_EQ(zip_close(pZip), 0);
    return ReadFile(folder.Path("zip"));
}

std::string Repeat(std::string const& str, size_t nTimes) {
    std::string strAll;
    while (nTimes-- > 0) strAll += str;
    return strAll;
}

namespace {

std::string Quoted(std::string const& str) {
    return "\"" + str + "\"";
}

std::string Padded(std::string strOldCode) {
    if (strOldCode.size() < 5) strOldCode.resize(5, ' ');
    return strOldCode;
}

} // namespace

std::string Line(CTown const& town) {
    std::string strLine = "13101";
    for (std::string const& strField : {Padded(town.strOldCode), town.strCode, std::string("ケン"), std::string("シ"),
                                        town.strKana, town.strPref, town.strCity, town.strTown})
        strLine += "," + Quoted(strField);
    return strLine + ",0,0,0,0,0,0\r\n";
}

std::string Line(COffice const& office) {
    std::string strLine = "13101";
    for (std::string const& strField :
         {std::string("ﾅﾏｴ"), office.strName, office.strPref, office.strCity, office.strTown, office.strRest,
          office.strCode, Padded(office.strOldCode), std::string("銀座")})
        strLine += "," + Quoted(strField);
    return strLine + ",0,0,0\r\n";
}

std::string Table(std::vector<CTown> const& vTown) {
    std::string str;
    for (CTown const& town : vTown) str += Line(town);
    return str;
}

std::string Table(std::vector<COffice> const& vOffice) {
    std::string str;
    for (COffice const& office : vOffice) str += Line(office);
    return str;
}
