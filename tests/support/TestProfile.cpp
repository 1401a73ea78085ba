#include "tests/support/TestProfile.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace fs = std::filesystem;

namespace {

void Write(std::string const& strPath, char const* p, size_t nSize) {
    std::ofstream file(strPath, std::ios::binary);
    file.write(p, static_cast<std::streamsize>(nSize));
    if (!file.flush()) throw std::runtime_error("cannot write " + strPath);
}

void WriteProfile(std::string const& strFolder, std::string const& strText) {
    Write(strFolder + "/profile.ini", strText.data(), strText.size());
}

} // namespace

CTestProfile::CTestProfile() : m_strFolder((fs::temp_directory_path() / "qe-library-XXXXXX").string()) {
    if (mkdtemp(m_strFolder.data()) == nullptr) throw std::system_error(errno, std::generic_category(), "mkdtemp");
    WriteProfile(m_strFolder, "");
    setenv("QE_PROFILE", (m_strFolder + "/profile.ini").c_str(), 1);
}

CTestProfile::~CTestProfile() {
    unsetenv("QE_PROFILE");
    std::error_code error;
    fs::remove_all(m_strFolder, error);
}

void CTestProfile::SetDicDir(std::string const& strDicDir) const {
    WriteProfile(m_strFolder, "[General]\nDicDir=" + strDicDir + "\n");
}

void CTestProfile::WriteDictionary(std::vector<unsigned char> const& vByte) const {
    fs::create_directories(m_strFolder);
    Write(DictionaryPath(), reinterpret_cast<char const*>(vByte.data()), vByte.size());
}
