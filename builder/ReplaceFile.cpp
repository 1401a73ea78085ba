// ReplaceFile.cpp - a file is replaced whole or not at all.
#include "builder/ReplaceFile.h"

#include "builder/Error.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace qe {

namespace {

// Holds the signals that ask the program to end until the temporary file is renamed or removed; then they arrive.
class CHeldSignals {
  public:
    CHeldSignals() {
        sigset_t set;
        sigemptyset(&set);
        for (int const nSignal : {SIGHUP, SIGINT, SIGTERM}) sigaddset(&set, nSignal);
        pthread_sigmask(SIG_BLOCK, &set, &m_before);
    }
    ~CHeldSignals() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    CHeldSignals(CHeldSignals const&) = delete;
    CHeldSignals& operator=(CHeldSignals const&) = delete;

  private:
    sigset_t m_before = {};
};

// The temporary file: removed unless it has been renamed.
class CTemporary {
  public:
    explicit CTemporary(std::string const& strPath) : m_strTarget(strPath), m_strPath(strPath + ".new-XXXXXX") {
        m_nFile = mkstemp(m_strPath.data());
        if (m_nFile < 0) Fail("cannot be created");
    }
    ~CTemporary() {
        if (m_nFile >= 0) close(m_nFile);
        if (!m_strPath.empty()) unlink(m_strPath.c_str());
    }
    CTemporary(CTemporary const&) = delete;
    CTemporary& operator=(CTemporary const&) = delete;

    void Write(std::vector<unsigned char> const& vByte) {
        for (size_t nDone = 0; nDone < vByte.size();) {
            ssize_t const nWritten = write(m_nFile, vByte.data() + nDone, vByte.size() - nDone);
            if (nWritten < 0 && errno == EINTR) continue;
            if (nWritten < 0) Fail("cannot be written");
            nDone += static_cast<size_t>(nWritten);
        }
        mode_t const nMask = umask(0); // mkstemp makes it private; a dictionary is readable like any file
        umask(nMask);
        if (fchmod(m_nFile, 0666 & ~nMask) != 0 || fsync(m_nFile) != 0) Fail("cannot be written");
    }

    void Verify(std::vector<unsigned char> const& vByte) {
        std::vector<unsigned char> vRead(1u << 20);
        size_t nDone = 0;
        for (;;) {
            ssize_t const nRead = pread(m_nFile, vRead.data(), vRead.size(), static_cast<off_t>(nDone));
            if (nRead < 0) Fail("cannot be read back");
            if (nRead == 0) break;
            auto const nSize = static_cast<size_t>(nRead);
            if (nSize > vByte.size() - nDone || std::memcmp(vRead.data(), vByte.data() + nDone, nSize) != 0) break;
            nDone += nSize;
        }
        if (nDone != vByte.size())
            throw CBuildError(m_strTarget + ": was not written as it should be; is the disk sound?");
    }

    void Rename() {
        if (rename(m_strPath.c_str(), m_strTarget.c_str()) != 0) Fail("cannot be replaced");
        m_strPath.clear();
        std::string const strFolder = m_strTarget.substr(0, m_strTarget.find_last_of('/') + 1);
        int const nFolder = open(strFolder.empty() ? "." : strFolder.c_str(), O_RDONLY | O_DIRECTORY);
        if (nFolder < 0) return; // the name is in place; only its survival of a power cut is not assured
        fsync(nFolder);
        close(nFolder);
    }

  private:
    [[noreturn]] void Fail(char const* pszWhat) {
        std::string const strReason = std::strerror(errno);
        if (m_nFile >= 0 && !m_strPath.empty()) unlink(m_strPath.c_str());
        throw CBuildError(m_strTarget + ": " + pszWhat + ": " + strReason +
                          "; an earlier file of that name is untouched.");
    }

    std::string m_strTarget;
    std::string m_strPath; // empty once renamed
    int m_nFile = -1;
};

} // namespace

namespace {

// The file that a path stands for: behind symbolic links, since replacing the link would leave the file as it was.
std::string Resolve(std::string const& strPath) {
    struct stat status = {};
    if (stat(strPath.c_str(), &status) != 0) return strPath; // new, or creating it will say what is wrong
    if (!S_ISREG(status.st_mode))
        throw CBuildError(strPath + ": cannot be replaced: it is not a regular file; nothing was changed.");
    std::unique_ptr<char, decltype(&std::free)> const pszReal(realpath(strPath.c_str(), nullptr), &std::free);
    return pszReal == nullptr ? strPath : pszReal.get();
}

} // namespace

void ReplaceFile(std::string const& strPath, std::vector<unsigned char> const& vByte) {
    std::string const strFile = Resolve(strPath);
    CHeldSignals const held; // outlives the temporary file
    CTemporary file(strFile);
    file.Write(vByte);
    file.Verify(vByte);
    file.Rename();
}

} // namespace qe
