#include "fuzz/Fuzz.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace {

[[noreturn]] void Fail(char const* pszCall) {
    throw std::system_error(errno, std::generic_category(), pszCall);
}

size_t PageSize() {
    return static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

void WriteFile(std::string const& strPath, void const* p, size_t nSize) {
    std::ofstream file(strPath, std::ios::binary);
    file.write(static_cast<char const*>(p), static_cast<std::streamsize>(nSize));
    if (!file.flush()) throw std::runtime_error("cannot write " + strPath);
}

} // namespace

void BreakPromise(char const* pszPromise) {
    std::fprintf(stderr, "broken promise: %s\n", pszPromise);
    std::abort();
}

bool CLineInput::Next() {
    if (m_strRest.empty()) return false;
    size_t const nEnd = std::min(m_strRest.find('\n'), m_strRest.size());
    m_strLine = m_strRest.substr(0, nEnd);
    m_strRest.remove_prefix(std::min(nEnd + 1, m_strRest.size()));
    m_cCommand = m_strLine.empty() ? '\0' : m_strLine.front();
    if (!m_strLine.empty()) m_strLine.remove_prefix(1);
    if (!m_strLine.empty() && m_strLine.front() == ' ') m_strLine.remove_prefix(1);
    return true;
}

std::string CLineInput::Field() {
    size_t const nEnd = std::min(m_strLine.find('|'), m_strLine.size());
    std::string str(m_strLine.substr(0, nEnd));
    m_strLine.remove_prefix(std::min(nEnd + 1, m_strLine.size()));
    return str;
}

uint32_t CLineInput::Number() {
    auto const IsDigit = [](char c) { return c >= '0' && c <= '9'; };
    bool bMinus = false;
    uint32_t n = 0;
    while (!m_strLine.empty() && !IsDigit(m_strLine.front())) {
        bMinus = m_strLine.front() == '-';
        m_strLine.remove_prefix(1);
    }
    for (; !m_strLine.empty() && IsDigit(m_strLine.front()); m_strLine.remove_prefix(1))
        n = n * 10 + static_cast<uint32_t>(m_strLine.front() - '0');
    return bMinus ? 0 - n : n;
}

std::string CLineInput::Rest() {
    std::string str(m_strLine);
    m_strLine = {};
    return str;
}

std::vector<std::string> LinesOf(uint8_t const* p, size_t nSize) {
    std::vector<std::string> vLine;
    std::string_view str(reinterpret_cast<char const*>(p), nSize);
    for (size_t nEnd; !str.empty(); str.remove_prefix(std::min(nEnd + 1, str.size()))) {
        nEnd = std::min(str.find('\n'), str.size());
        vLine.emplace_back(str.substr(0, nEnd));
    }
    return vLine;
}

size_t PutLines(std::vector<std::string> const& vLine, uint8_t* p, size_t nMost) {
    std::string str;
    for (std::string const& strLine : vLine)
        if (str.size() + strLine.size() < nMost) str += strLine + '\n';
    std::copy(str.begin(), str.end(), p);
    return str.size();
}

CGuardedRecord::CGuardedRecord(size_t nLargest) : m_nLargest(nLargest) {
    size_t const nUsable = (nLargest + PageSize() - 1) / PageSize() * PageSize();
    m_nMapping = nUsable + PageSize();
    m_pMapping = mmap(nullptr, m_nMapping, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (m_pMapping == MAP_FAILED) Fail("mmap");
    m_pEnd = static_cast<unsigned char*>(m_pMapping) + nUsable;
    if (mprotect(m_pEnd, PageSize(), PROT_NONE) != 0) Fail("mprotect");
}

CGuardedRecord::~CGuardedRecord() {
    munmap(m_pMapping, m_nMapping);
}

unsigned char* CGuardedRecord::Put(void const* p, size_t nSize) {
    nSize = std::min(nSize, m_nLargest);
    if (nSize != 0) std::memcpy(m_pEnd - nSize, p, nSize);
    return m_pEnd - nSize;
}

unsigned char* CGuardedRecord::Fill(unsigned char c, size_t nSize) {
    nSize = std::min(nSize, m_nLargest);
    return static_cast<unsigned char*>(std::memset(m_pEnd - nSize, c, nSize));
}

char* CGuardedRecord::PutText(std::string const& str) {
    std::string const strCut = str.substr(0, m_nLargest - 1);
    return reinterpret_cast<char*>(Put(strCut.c_str(), strCut.size() + 1));
}

CMemoryFile::CMemoryFile()
    : m_hFile(memfd_create("fuzz", MFD_CLOEXEC)), m_strPath("/proc/self/fd/" + std::to_string(m_hFile)) {
    if (m_hFile < 0) Fail("memfd_create");
}

CMemoryFile::~CMemoryFile() {
    close(m_hFile);
}

void CMemoryFile::Write(std::string_view strBytes) const {
    auto const nSize = static_cast<ssize_t>(strBytes.size());
    if (ftruncate(m_hFile, 0) != 0 || pwrite(m_hFile, strBytes.data(), strBytes.size(), 0) != nSize) Fail("pwrite");
}

CDictionaryFolder::CDictionaryFolder(std::vector<unsigned char> const& vByte)
    : m_strFolder((std::filesystem::temp_directory_path() / "qe-fuzz-XXXXXX").string()) {
    if (mkdtemp(m_strFolder.data()) == nullptr) Fail("mkdtemp");
    std::string const strText = "[General]\nDicDir=" + m_strFolder + "\n", strPath = m_strFolder + "/profile.ini";
    WriteFile(strPath, strText.data(), strText.size());
    setenv("QE_PROFILE", strPath.c_str(), 1);
    Write(vByte);
}

CDictionaryFolder::~CDictionaryFolder() {
    std::error_code error;
    std::filesystem::remove_all(m_strFolder, error);
}

void CDictionaryFolder::Write(std::vector<unsigned char> const& vByte) const {
    WriteFile(Path(), vByte.data(), vByte.size());
}
