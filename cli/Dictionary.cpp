// Dictionary.cpp - opening the dictionary, after a look at its header.
#include "cli/Dictionary.h"

#include "api/Pstexec.h"
#include "cli/ApiData.h"
#include "cli/Failure.h"
#include "cli/Location.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace qe {

namespace fs = std::filesystem;

namespace {

// What is looked at in the header, by byte offsets; all numbers are 32-bit little-endian words.
constexpr char MAGIC[] = "QEADRS\x1A"; // 7 characters and the NUL
constexpr size_t VERSION_AT = 8;
constexpr size_t FILE_SIZE_AT = 20;
constexpr size_t HEADER_SIZE = 108;
constexpr uint32_t KNOWN_VERSION = 1;

struct CTable {
    size_t nOffsetAt;
    size_t nCountAt;
    size_t nRecord;
};
constexpr CTable STRING_AREA = {0x34, 0x28, 1};
constexpr CTable TABLES[] = {
    {0x2C, 0x20, sizeof(tagADDRNODE)},
    {0x30, 0x24, sizeof(tagADDRINFO)},
    STRING_AREA,
    {0x38, 0x50, 4},
    {0x44, 0x68, 4},
};

uint32_t Word(unsigned char const* pImage, size_t nAt) {
    uint32_t n;
    std::memcpy(&n, pImage + nAt, sizeof n);
    return n;
}

bool LiesInFile(CTable const& table, unsigned char const* pImage, uint64_t nSize) {
    uint64_t const nOffset = Word(pImage, table.nOffsetAt);
    bool const bAligned = table.nRecord == 1 || nOffset % 4 == 0;
    return bAligned && nOffset <= nSize && Word(pImage, table.nCountAt) * uint64_t{table.nRecord} <= nSize - nOffset;
}

void CheckHeader(std::string const& strFile, unsigned char const* pImage, size_t nSize) {
    auto const Refuse = [&](std::string const& strReason) {
        throw CFailure(EXIT_NO_DICTIONARY, "no dictionary: " + strFile + " " + strReason + "\n" + WAY_OUT);
    };
    if (nSize < sizeof MAGIC || std::memcmp(pImage, MAGIC, sizeof MAGIC) != 0) Refuse("is not a dictionary of ours.");
    if (nSize < HEADER_SIZE) Refuse("is damaged or cut off: " + std::to_string(nSize) + " bytes.");
    uint32_t const nVersion = Word(pImage, VERSION_AT);
    if (nVersion > KNOWN_VERSION)
        Refuse("has format " + std::to_string(nVersion) + ", newer than this program's " +
               std::to_string(KNOWN_VERSION) + ". Update the program.");
    uint32_t const nFileSize = Word(pImage, FILE_SIZE_AT);
    if (nFileSize != nSize)
        Refuse("is damaged or cut off: " + std::to_string(nSize) + " bytes instead of " + std::to_string(nFileSize) +
               ".");
    for (CTable const& table : TABLES)
        if (!LiesInFile(table, pImage, nSize))
            Refuse("is damaged: the table that offset " + std::to_string(table.nOffsetAt) +
                   " names does not lie in the file.");
    uint32_t const nStrings = Word(pImage, STRING_AREA.nCountAt);
    if (nStrings > 0 && pImage[Word(pImage, STRING_AREA.nOffsetAt) + size_t{nStrings} - 1] != '\0')
        Refuse("is damaged: its last text has no end.");
}

// A folder of our own that holds qeadrs.dic, a link to the file of --dic, and a profile that names the folder. While
// the object lives QE_PROFILE leads to that profile.
class CPrivateProfile {
  public:
    explicit CPrivateProfile(std::string const& strFile) : m_strFolder(MakeFolder()) {
        std::error_code error;
        fs::create_symlink(fs::absolute(strFile), m_strFolder + "/" + DICTIONARY_NAME, error);
        std::ofstream profile(Profile());
        profile << "[General]\nDicDir = " << m_strFolder << '\n';
        profile.close();
        if (error || !profile) {
            Remove();
            throw CFailure(EXIT_SYSTEM, m_strFolder + " cannot be written.");
        }
        if (char const* const psz = std::getenv("QE_PROFILE")) m_strBefore = psz;
        setenv("QE_PROFILE", Profile().c_str(), 1);
    }
    ~CPrivateProfile() {
        m_strBefore ? setenv("QE_PROFILE", m_strBefore->c_str(), 1) : unsetenv("QE_PROFILE");
        Remove();
    }
    CPrivateProfile(CPrivateProfile const&) = delete;
    CPrivateProfile& operator=(CPrivateProfile const&) = delete;

  private:
    std::string Profile() const { return m_strFolder + "/qe.ini"; }

    void Remove() const {
        std::error_code error;
        fs::remove_all(m_strFolder, error); // links are removed, not followed
    }

    // Below TMPDIR, unless its name would not come through a profile whole.
    static std::string MakeFolder() {
        char const* const pszTmp = std::getenv("TMPDIR");
        std::string strBase = pszTmp == nullptr ? "" : pszTmp;
        bool const bUsable = !strBase.empty() && strBase[0] == '/' && strBase.size() < 200 &&
                             strBase.find_first_of(";\r\n") == std::string::npos;
        std::string strFolder = (bUsable ? strBase : "/tmp") + "/qeadrs-XXXXXX";
        if (mkdtemp(strFolder.data()) == nullptr)
            throw CFailure(EXIT_SYSTEM, strFolder + ": a temporary folder cannot be made: " + std::strerror(errno));
        return strFolder;
    }

    std::string m_strFolder;
    std::optional<std::string> m_strBefore;
};

short OpenThroughApi(std::optional<std::string> const& strDic, std::string const& strFile) {
    if (!strDic) return PstAdrOpen();
    CPrivateProfile const profile(strFile);
    return PstAdrOpen();
}

} // namespace

CApiOpening::CApiOpening(std::optional<std::string> const& strDic, std::string const& strFile) {
    if (OpenThroughApi(strDic, strFile) != 0) throw CFailure(EXIT_SYSTEM, strFile + " cannot be opened.");
}

CApiOpening::~CApiOpening() {
    PstAdrClose();
}

CMapping::CMapping(std::string const& strFile, std::string const& strHint) : m_status{} {
    auto const Missing = [&](std::string const& strReason) {
        return CFailure(EXIT_NO_DICTIONARY, "no dictionary: " + strFile + strReason + "\n" + strHint);
    };
    // Not blocking: a named pipe is refused below instead of waited for.
    int const hFile = open(strFile.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (hFile < 0) throw Missing(std::string(": ") + std::strerror(errno) + ".");
    fstat(hFile, &m_status); // of an open descriptor; if it fails all the same, this is no regular file
    bool const bFile = S_ISREG(m_status.st_mode);
    void* const p = bFile && Size() > 0 ? mmap(nullptr, Size(), PROT_READ, MAP_SHARED, hFile, 0) : nullptr;
    int const nError = errno;
    close(hFile);
    if (!bFile) throw Missing(" is not a file.");
    if (p == MAP_FAILED) throw CFailure(EXIT_SYSTEM, strFile + " cannot be mapped: " + std::strerror(nError) + ".");
    m_pStart = static_cast<unsigned char const*>(p);
}

CMapping::~CMapping() {
    if (m_pStart != nullptr) munmap(const_cast<unsigned char*>(m_pStart), Size());
}

bool CMapping::IsFile(std::string const& strFile) const {
    struct stat status;
    return stat(strFile.c_str(), &status) == 0 && status.st_dev == m_status.st_dev &&
           status.st_ino == m_status.st_ino;
}

CDictionaryFile::CDictionaryFile(std::optional<std::string> const& strDic)
    : m_strFile(strDic ? FileOfOption(*strDic) : FileOfProfile()),
      m_mapping(m_strFile, (strDic ? "" : DescribeProfile() + "\n") + WAY_OUT) {
    CheckHeader(m_strFile, m_mapping.Bytes(), m_mapping.Size());
}

void CDictionaryFile::CheckUnchanged() const {
    if (!m_mapping.IsFile(m_strFile)) throw CFailure(EXIT_SYSTEM, m_strFile + " has just been replaced. Try again.");
}

CDictionary::CDictionary(std::optional<std::string> const& strDic) : m_file(strDic), m_api(strDic, m_file.Name()) {
    m_file.CheckUnchanged();
    m_dic.SetDictionary(m_file.Bytes());
}

void CDictionary::SetSortType(unsigned short nType) {
    // Without a code the API takes the sort type and answers nothing.
    tagCODERECORD record(nType);
    HGLOBAL hResult = nullptr;
    PstAdrCity(&record, &hResult);
    m_dic.SetSortType(nType);
}

bool CDictionary::Holds(char const* psz) const {
    auto const* const p = reinterpret_cast<unsigned char const*>(psz);
    return psz != nullptr && p >= m_file.Bytes() && p < m_file.Bytes() + m_file.Size();
}

std::string CDictionary::Text(char const* psz) const {
    if (!Holds(psz)) return "";
    auto const nOffset = static_cast<size_t>(reinterpret_cast<unsigned char const*>(psz) - m_file.Bytes());
    return std::string(psz, strnlen(psz, m_file.Size() - nOffset));
}

} // namespace qe
