// Location.cpp - which dictionary file to open, and how to tell a user where it was looked for.
#include "cli/Location.h"

#include "cli/Failure.h"
#include "platform/QeProfile.h"
#include "platform/Win32Compat.h"

#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <vector>

namespace qe {

namespace fs = std::filesystem;

namespace {

constexpr char PROFILE_LIBRARY[] = "libqeprof.so";
constexpr char PROFILE_FUNCTION[] = "QeGetProfileString";
constexpr size_t LONGEST_FOLDER = 248; // 260 bytes for the path less "/qeadrs.dic" and its NUL

// The profile library, which PstAdrOpen loads by the same name from the same place.
class CProfileLibrary {
  public:
    CProfileLibrary()
        : m_hModule(LoadLibrary(PROFILE_LIBRARY)),
          m_pfnGet(reinterpret_cast<decltype(&QeGetProfileString)>(GetProcAddress(m_hModule, PROFILE_FUNCTION))) {
        if (m_pfnGet != nullptr) return;
        FreeLibrary(m_hModule);
        throw CFailure(EXIT_SYSTEM,
                       std::string(PROFILE_LIBRARY) +
                           " cannot be loaded; it belongs into the folder of libqewin.so. Install again.");
    }
    ~CProfileLibrary() { FreeLibrary(m_hModule); }
    CProfileLibrary(CProfileLibrary const&) = delete;
    CProfileLibrary& operator=(CProfileLibrary const&) = delete;

    // The value as a whole, also where the library's own buffer would have been too short for it.
    std::string Get(char const* pszSection, char const* pszKey) const {
        std::vector<char> vText(16384);
        m_pfnGet(pszSection, pszKey, "", vText.data(), static_cast<int>(vText.size()));
        return vText.data();
    }

  private:
    HMODULE m_hModule;
    decltype(&QeGetProfileString) m_pfnGet;
};

std::string Environment(char const* pszName) {
    char const* const psz = std::getenv(pszName);
    return psz == nullptr ? "" : psz;
}

bool IsThere(std::string const& strFile) {
    std::error_code error;
    return fs::exists(strFile, error);
}

} // namespace

std::string FileOfOption(std::string const& strDic) {
    std::error_code error;
    return fs::is_directory(strDic, error) ? (fs::path(strDic) / DICTIONARY_NAME).string() : strDic;
}

std::string FileOfProfile() {
    std::string const strFolder = CProfileLibrary().Get("General", "DicDir");
    if (strFolder.size() > LONGEST_FOLDER)
        throw CFailure(EXIT_NO_DICTIONARY,
                       "no dictionary: the folder that DicDir names has " + std::to_string(strFolder.size()) +
                           " bytes; the library takes up to " + std::to_string(LONGEST_FOLDER) + ".\n" +
                           DescribeProfile() +
                           "\nWay out: use a shorter path (a symbolic link will do), or --dic FILE.");
    return strFolder + "/" + DICTIONARY_NAME;
}

// The order is that of platform/QeProfile.h.
std::string DescribeProfile() {
    std::string const strVariable = Environment("QE_PROFILE");
    std::string const strXdg = Environment("XDG_CONFIG_HOME");
    std::string const strHome = Environment("HOME");
    std::string const strUser = !strXdg.empty()    ? strXdg + "/qe/qe.ini"
                                : !strHome.empty() ? strHome + "/.config/qe/qe.ini"
                                                   : "";
    std::string const strSystem = "/etc/qe.ini";
    for (std::string const& strPlace : {strVariable, strUser, strSystem})
        if (!strPlace.empty() && IsThere(strPlace))
            return "The folder is that of DicDir in section [General] of the profile " + strPlace + ".";
    return "There is no profile: looked for QE_PROFILE (" + (strVariable.empty() ? "not set" : strVariable) + "), " +
           (strUser.empty() ? "HOME (not set)" : strUser) + " and " + strSystem + ".";
}

} // namespace qe
