// BatchFiles.cpp - opening, writing and telling apart the files of a batch.
#include "cli/BatchFiles.h"

#include "cli/Failure.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace qe {

namespace {

CBatchFile Open(std::string const& strFile, int nFlags) {
    int const hFile = open(strFile.c_str(), nFlags | O_CLOEXEC | O_NOCTTY, 0666);
    if (hFile < 0) throw CFailure(EXIT_SYSTEM, strFile + ": " + std::strerror(errno) + ".");
    return {hFile, strFile};
}

std::optional<struct stat> RegularFile(int hFile) {
    struct stat status;
    if (fstat(hFile, &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    return status;
}

} // namespace

CBatchFile::~CBatchFile() {
    if (m_hFile > STDERR_FILENO) close(m_hFile);
}

CBatchFile::CBatchFile(CBatchFile&& other) noexcept
    : m_hFile(std::exchange(other.m_hFile, -1)), m_strName(std::move(other.m_strName)) {}

void CBatchFile::Write(std::string const& strText) const {
    for (size_t nDone = 0; nDone < strText.size();) {
        ssize_t const nWritten = write(m_hFile, strText.data() + nDone, strText.size() - nDone);
        if (nWritten >= 0) {
            nDone += static_cast<size_t>(nWritten);
        } else if (errno == EAGAIN) { // somebody else has made the file so that it does not wait
            pollfd file = {m_hFile, POLLOUT, 0};
            poll(&file, 1, -1);
        } else if (errno == EPIPE && m_hFile == STDOUT_FILENO) {
            throw CClosedPipe();
        } else if (errno != EINTR) {
            throw CFailure(EXIT_SYSTEM, m_strName + " cannot be written: " + std::strerror(errno) + ".");
        }
    }
}

std::optional<uint64_t> CBatchFile::Remaining() const {
    std::optional<struct stat> const status = RegularFile(m_hFile);
    off_t const nHere = status ? lseek(m_hFile, 0, SEEK_CUR) : -1;
    if (nHere < 0 || nHere > status->st_size) return std::nullopt;
    return static_cast<uint64_t>(status->st_size - nHere);
}

bool CBatchFile::IsSame(CBatchFile const& other) const {
    std::optional<struct stat> const status = RegularFile(m_hFile);
    std::optional<struct stat> const statusOther = RegularFile(other.m_hFile);
    return status && statusOther && status->st_dev == statusOther->st_dev && status->st_ino == statusOther->st_ino;
}

void CBatchFile::Truncate() const {
    if (RegularFile(m_hFile) && ftruncate(m_hFile, 0) != 0)
        throw CFailure(EXIT_SYSTEM, m_strName + " cannot be emptied: " + std::strerror(errno) + ".");
}

CBatchFile OpenBatchInput(std::optional<std::string> const& strFile) {
    return strFile && *strFile != "-" ? Open(*strFile, O_RDONLY) : CBatchFile(STDIN_FILENO, "standard input");
}

CBatchFile OpenBatchRejects(std::string const& strFile) {
    return Open(strFile, O_WRONLY | O_CREAT);
}

} // namespace qe
