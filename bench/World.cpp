// World.cpp - reading the dictionary's rows through the dictionary object, and choosing the codes to ask for.
#include "bench/World.h"

#include "builder/DictionaryFile.h"
#include "dic/ImageHeader.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <set>
#include <sstream>
#include <stdexcept>
#include <system_error>

namespace {

std::string Describe(qe::CDictionaryFile const& file) {
    std::ostringstream text;
    text << qe::SourceText(file.Word(HDR_SOURCE)) << ", edition " << qe::EditionText(file.Word(HDR_EDITION)) << ", "
         << file.Size() << " bytes, " << file.Word(HDR_INFO_COUNT) << " entries";
    return text.str();
}

CCodes Shuffled(std::set<std::string> const& setText, size_t nLimit) {
    CCodes vCode;
    for (std::string const& str : setText) {
        tagCODE code = {};
        if (str.empty() || str.size() >= sizeof code.szCode) continue;
        std::memcpy(code.szCode, str.data(), str.size());
        std::memcpy(code.szEnd, str.data(), str.size());
        ++code.szEnd[str.size() - 1];
        vCode.push_back(code);
    }
    std::shuffle(vCode.begin(), vCode.end(), std::mt19937(BENCH_SEED));
    vCode.resize(std::min(vCode.size(), nLimit));
    if (vCode.empty()) throw std::runtime_error("the dictionary has no codes to ask for");
    return vCode;
}

} // namespace

CBenchDictionary::CBenchDictionary(std::string const& strPath) : m_strPath(strPath) {
    {
        qe::CDictionaryFile const file(strPath); // refuses what is not a dictionary; gone again before measuring
        m_strDescription = Describe(file);
        m_nSize = file.Size();
    }
    int const nFile = open(strPath.c_str(), O_RDONLY | O_CLOEXEC);
    if (nFile < 0) throw std::system_error(errno, std::generic_category(), strPath);
    m_pMapping = mmap(nullptr, m_nSize, PROT_READ, MAP_SHARED, nFile, 0);
    close(nFile);
    if (m_pMapping == MAP_FAILED) throw std::system_error(errno, std::generic_category(), strPath);
    m_dic.SetDictionary(static_cast<unsigned char const*>(m_pMapping));
    ReadRows();
}

CBenchDictionary::~CBenchDictionary() {
    munmap(m_pMapping, m_nSize);
}

void CBenchDictionary::ReadRows() {
    for (unsigned long nIndex = 0;; ++nIndex) {
        tagADDRINFO const* const pInfo = m_dic.GetAddrInfo(nIndex);
        if (pInfo == nullptr) break;
        tagROW row = {tagADDR(0), nullptr};
        m_dic.GetAddr(pInfo, &row.addr);
        std::string const strCode = row.addr.pszPostCode == nullptr ? "" : row.addr.pszPostCode;
        row.pszOld = m_dic.GetString(pInfo->nCode + strCode.size() + 1);
        if (row.pszOld == nullptr) row.pszOld = "";
        m_vEntryCode.push_back(strCode);
        if (row.addr.pszTown != nullptr && m_dic.GetCityNode(pInfo) != nullptr)
            m_vRow.push_back(row);
        else
            ++m_nLeftOut;
    }
}

CCodes MakeCodes(std::vector<tagROW> const& vRow, size_t nDigits, size_t nLimit) {
    std::set<std::string> setText;
    for (tagROW const& row : vRow) setText.insert(std::string(row.addr.pszPostCode).substr(0, nDigits));
    return Shuffled(setText, nLimit);
}

CCodes MakeOldCodes(std::vector<tagROW> const& vRow, size_t nLimit) {
    std::set<std::string> setText;
    for (tagROW const& row : vRow) setText.insert(row.pszOld);
    return Shuffled(setText, nLimit);
}

CProfile::CProfile(std::string const& strDictionary) {
    namespace fs = std::filesystem;
    std::string strTemplate = fs::temp_directory_path() / "qeadrs-bench-XXXXXX";
    if (mkdtemp(strTemplate.data()) == nullptr) throw std::system_error(errno, std::generic_category(), strTemplate);
    m_strFolder = strTemplate;
    fs::create_symlink(fs::absolute(strDictionary), fs::path(m_strFolder) / "qeadrs.dic");
    fs::path const profile = fs::path(m_strFolder) / "qe.ini";
    std::ofstream(profile) << "[General]\nDicDir=" << m_strFolder << '\n';
    setenv("QE_PROFILE", profile.c_str(), 1);
}

CProfile::~CProfile() {
    std::error_code error;
    std::filesystem::remove_all(m_strFolder, error);
}
