// Dictionary.cpp - opening the dictionary, and why it is refused.
#include "cli/Dictionary.h"

#include "cli/Failure.h"
#include "cli/Location.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace qe {

namespace fs = std::filesystem;

namespace {

// Throws CFailure with what is wrong with the file, and the way out.
[[noreturn]] void Refuse(std::string const& strFile, qeadrs::CError const& error, bool bProfile) {
    using qeadrs::EError;
    if (error.nKind == EError::System || error.nKind == EError::NoMemory)
        throw CFailure(EXIT_SYSTEM, strFile + ' ' + error.Text() + '.');
    bool const bNoFile = error.nKind == EError::NoFile;
    std::string strReason = bNoFile ? std::string(": ") + std::strerror(error.nSystem) : ' ' + error.Text();
    if (error.nKind == EError::NewerFormat) strReason += ". Update the program";
    bool const bMissing = bNoFile || error.nKind == EError::NotAFile;
    throw CFailure(EXIT_NO_DICTIONARY, "no dictionary: " + strFile + strReason + ".\n" +
                                           (bMissing && bProfile ? DescribeProfile() + "\n" : "") + WAY_OUT);
}

qeadrs::CDictionaryFile Map(std::string const& strFile, bool bProfile) {
    qeadrs::CResult<qeadrs::CDictionaryFile> file = qeadrs::CDictionaryFile::Open(strFile);
    if (!file) Refuse(strFile, file.Error(), bProfile);
    return *std::move(file);
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

// The API's dictionary: strFile, through a profile of our own for --dic.
qeadrs::CApi OpenThroughApi(std::optional<std::string> const& strDic, std::string const& strFile) {
    std::optional<CPrivateProfile> profile;
    if (strDic) profile.emplace(strFile);
    qeadrs::CResult<qeadrs::CApi> api = qeadrs::CApi::Open();
    if (!api) throw CFailure(EXIT_SYSTEM, strFile + " cannot be opened.");
    return *std::move(api);
}

} // namespace

CDictionaryFile::CDictionaryFile(std::optional<std::string> const& strDic)
    : m_strFile(strDic ? FileOfOption(*strDic) : FileOfProfile()), m_mapped(Map(m_strFile, !strDic)) {}

void CDictionaryFile::CheckUnchanged() const {
    if (!m_mapped.Is(m_strFile)) throw CFailure(EXIT_SYSTEM, m_strFile + " has just been replaced. Try again.");
}

CDictionary::CDictionary(std::optional<std::string> const& strDic)
    : m_file(strDic), m_api(OpenThroughApi(strDic, m_file.Name())), m_dic(m_file.Mapped()) {
    m_file.CheckUnchanged();
}

void CDictionary::SetSortType(unsigned short nType) {
    m_api.SetSortType(nType);
    m_dic.SetSortType(nType);
}

} // namespace qe
