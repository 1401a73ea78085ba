#include "builder/Fetch.h"

#include <curl/curl.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#include <zip.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <filesystem>
#include <memory>
#include <ostream>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>

namespace fs = std::filesystem;

namespace qe {
namespace {

struct COfficialFile {
    char const* pszFolder; // below the base address
    char const* pszName;
    char const* pszMember; // its letter case differs between editions, so it is compared without regard to case
};

constexpr COfficialFile official_file[] = {
    {"utf/zip/", "utf_ken_all.zip", "utf_ken_all.csv"},
    {"office/zip/", "jigyosyo.zip", "JIGYOSYO.CSV"},
};

struct CCloser {
    void operator()(FILE* p) const { fclose(p); }
    void operator()(zip_t* p) const { zip_discard(p); }
    void operator()(zip_file_t* p) const { zip_fclose(p); }
    void operator()(curl_slist* p) const { curl_slist_free_all(p); }
    void operator()(CURL* p) const { curl_easy_cleanup(p); }
};
template <class T>
using CHandle = std::unique_ptr<T, CCloser>;

std::string SystemText(int nError) {
    return std::generic_category().message(nError);
}

// DIR itself: made when missing, and locked, because two fetches would write the same .part.
class CFolder {
  public:
    explicit CFolder(std::string const& strDir);
    CFolder(CFolder const&) = delete;
    CFolder& operator=(CFolder const&) = delete;
    ~CFolder() { close(m_hDir); }

    // Makes the renames outlast a power failure. Some file systems know no fsync() of a folder; nothing is lost by
    // that.
    void Sync() const { (void)fsync(m_hDir); }

  private:
    int m_hDir;
};

CFolder::CFolder(std::string const& strDir) {
    if (strDir.empty()) throw CBuildError("The folder to download to is missing: name one with -d DIR.");
    std::error_code error;
    fs::create_directories(strDir, error);
    m_hDir = error ? -1 : open(strDir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (m_hDir < 0)
        throw CBuildError(strDir + ": cannot use this folder: " + (error ? error.message() : SystemText(errno)) +
                          ". Name another one with -d DIR.");
    // Any other error means that this file system has no locks; then we do without.
    if (flock(m_hDir, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        close(m_hDir);
        throw CBuildError(strDir + ": another fetch is at work in this folder. Wait for it, or name another one.");
    }
}

// NAME.part: there from Begin() until MoveTo(), or until the object goes.
class CPartFile {
  public:
    explicit CPartFile(fs::path path) : m_path(std::move(path)) {}
    CPartFile(CPartFile const&) = delete;
    CPartFile& operator=(CPartFile const&) = delete;
    ~CPartFile() { Discard(); }

    void Begin();                             // a new, empty file, whatever stood there
    void Write(char const* p, size_t nBytes); // REQUIRES: Begin() was called, Sync() was not
    void Sync();                              // to the disk, and closed
    void MoveTo(fs::path const& target);
    void Discard();

    fs::path const& Path() const { return m_path; }
    uint64_t Size() const { return m_nSize; }

  private:
    [[noreturn]] void Throw(char const* pszVerb, int nError) const {
        throw CBuildError(m_path.string() + ": cannot " + pszVerb + ": " + SystemText(nError));
    }

    fs::path m_path;
    CHandle<FILE> m_hFile;
    uint64_t m_nSize = 0;
    bool m_bThere = false;
};

void CPartFile::Begin() {
    m_hFile.reset();
    m_nSize = 0;
    if (unlink(m_path.c_str()) != 0 && errno != ENOENT) Throw("replace", errno);
    m_hFile.reset(fopen(m_path.c_str(), "wbxe")); // x: never through a link that somebody puts there meanwhile
    if (!m_hFile) Throw("create", errno);
    m_bThere = true;
}

void CPartFile::Write(char const* p, size_t nBytes) {
    if (fwrite(p, 1, nBytes, m_hFile.get()) != nBytes) Throw("write", errno);
    m_nSize += nBytes;
}

void CPartFile::Sync() {
    if (fflush(m_hFile.get()) != 0 || fsync(fileno(m_hFile.get())) != 0) Throw("write", errno);
    if (fclose(m_hFile.release()) != 0) Throw("write", errno);
}

void CPartFile::MoveTo(fs::path const& target) {
    if (rename(m_path.c_str(), target.c_str()) != 0)
        throw CBuildError(target.string() + ": cannot be replaced: " + SystemText(errno) + ".");
    m_bThere = false;
}

void CPartFile::Discard() {
    m_hFile.reset();
    if (std::exchange(m_bThere, false)) unlink(m_path.c_str());
}

// Reads the whole member, because its checksum is only compared at its end. Returns what is wrong; empty: nothing.
std::string CheckMember(zip_t* pZip, zip_uint64_t nMember, uint64_t nMaxBytes) {
    zip_stat_t stat;
    if (zip_stat_index(pZip, nMember, 0, &stat) != 0) return zip_strerror(pZip);
    if (stat.size == 0) return "it is empty";
    if (stat.size > nMaxBytes) return "it unpacks to more than " + std::to_string(nMaxBytes) + " bytes";
    CHandle<zip_file_t> pFile(zip_fopen_index(pZip, nMember, 0));
    if (!pFile) return zip_strerror(pZip);
    std::vector<char> vBuffer(size_t(1) << 16);
    uint64_t nRead = 0;
    zip_int64_t n = 0;
    while ((n = zip_fread(pFile.get(), vBuffer.data(), vBuffer.size())) > 0 && nRead <= stat.size)
        nRead += static_cast<uint64_t>(n);
    if (n < 0) return zip_file_strerror(pFile.get());
    return nRead == stat.size ? "" : "its size is not the one that the archive states";
}

// Returns what is wrong with the archive (empty: nothing) and the member's name as the archive spells it.
std::string CheckArchive(fs::path const& path, char const* pszMember, uint64_t nMaxBytes, std::string& strMember) {
    int nError = 0;
    CHandle<zip_t> pZip(zip_open(path.c_str(), ZIP_RDONLY | ZIP_CHECKCONS, &nError));
    if (!pZip) {
        zip_error_t error;
        zip_error_init_with_code(&error, nError);
        std::string const strText = zip_error_strerror(&error);
        zip_error_fini(&error);
        return "the content is not a sound zip archive (" + strText + ")";
    }
    zip_int64_t const nFound = zip_name_locate(pZip.get(), pszMember, ZIP_FL_NOCASE);
    if (nFound < 0) return std::string("the zip archive holds no ") + pszMember;
    zip_uint64_t const nMember = static_cast<zip_uint64_t>(nFound);
    strMember = zip_get_name(pZip.get(), nMember, 0);
    std::string const strWrong = CheckMember(pZip.get(), nMember, nMaxBytes);
    return strWrong.empty() ? "" : strMember + " in the zip archive is not usable: " + strWrong;
}

// The line that is rewritten while a file comes in.
class CProgressLine {
  public:
    CProgressLine(std::ostream& out, bool bWanted, char const* pszName)
        : m_out(out), m_bWanted(bWanted), m_pszName(pszName) {}

    void Show(uint64_t nBytes, uint64_t nTotal, uint64_t nPerSecond);
    void End(uint64_t nBytes, uint64_t nTotal, uint64_t nPerSecond); // the last state, then a new line

  private:
    std::ostream& m_out;
    bool m_bWanted;
    char const* m_pszName;
    std::chrono::steady_clock::time_point m_next{};
    size_t m_nWidth = 0; // of what stands in the line now; a shorter text must cover it
};

void CProgressLine::Show(uint64_t nBytes, uint64_t nTotal, uint64_t nPerSecond) {
    auto const now = std::chrono::steady_clock::now();
    if (!m_bWanted || now < m_next) return;
    m_next = now + std::chrono::milliseconds(100); // more often only makes a terminal flicker
    char sz[160];
    int n = snprintf(sz, sizeof(sz), "%s: %" PRIu64, m_pszName, nBytes);
    std::string strLine(sz, static_cast<size_t>(n));
    if (nTotal != 0) {
        double const fPercent = 100.0 * static_cast<double>(nBytes) / static_cast<double>(nTotal);
        n = snprintf(sz, sizeof(sz), " of %" PRIu64 " bytes, %.0f %%", nTotal, fPercent);
        strLine.append(sz, static_cast<size_t>(n));
    } else {
        strLine += " bytes";
    }
    strLine += ", " + std::to_string(nPerSecond / 1024) + " KiB/s";
    size_t const nWidth = strLine.size();
    if (nWidth < m_nWidth) strLine.append(m_nWidth - nWidth, ' ');
    m_nWidth = nWidth;
    m_out << '\r' << strLine << std::flush;
}

void CProgressLine::End(uint64_t nBytes, uint64_t nTotal, uint64_t nPerSecond) {
    if (!m_bWanted || (m_nWidth == 0 && nBytes == 0)) return;
    m_next = {};
    Show(nBytes, nTotal, nPerSecond);
    m_out << '\n' << std::flush;
    m_nWidth = 0;
}

// The headers of the answer that is coming in; a redirect's own are forgotten when the next answer begins.
struct CAnswer {
    std::string strETag, strLastModified, strDate, strContentRange, strContentLength;

    void TakeLine(std::string_view line);
    std::string Validator() const;
};

bool EqualNoCase(std::string_view a, std::string_view b) {
    auto const Lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [&](char x, char y) { return Lower(x) == Lower(y); });
}

void CAnswer::TakeLine(std::string_view line) {
    if (line.substr(0, 5) == "HTTP/") *this = {};
    size_t const nColon = line.find(':');
    if (nColon == std::string_view::npos) return;
    std::string_view const name = line.substr(0, nColon);
    std::string_view value = line.substr(nColon + 1);
    value.remove_prefix(std::min(value.find_first_not_of(" \t"), value.size()));
    value = value.substr(0, value.find_last_not_of(" \t\r\n") + 1);
    if (EqualNoCase(name, "ETag")) strETag = value;
    if (EqualNoCase(name, "Last-Modified")) strLastModified = value;
    if (EqualNoCase(name, "Date")) strDate = value;
    if (EqualNoCase(name, "Content-Range")) strContentRange = value;
    if (EqualNoCase(name, "Content-Length")) strContentLength = value;
}

// What If-Range may say: a strong ETag; else a Last-Modified that was a minute old when it was sent, since a younger
// one may stand for two contents. Empty: a rest of this file could not be told from the rest of another.
std::string CAnswer::Validator() const {
    if (strETag.size() >= 2 && strETag.front() == '"') return strETag;
    time_t const nDate = curl_getdate(strDate.c_str(), nullptr);
    time_t const nModified = curl_getdate(strLastModified.c_str(), nullptr);
    return nDate > 0 && nModified > 0 && nDate - nModified >= 60 ? strLastModified : "";
}

// The digits that begin text, which loses them. False: none, or too many for 64 bits.
bool TakeNumber(std::string_view& text, uint64_t& nNumber) {
    size_t const nDigits = std::min(text.find_first_not_of("0123456789"), text.size());
    if (nDigits == 0 || nDigits > 18) return false;
    nNumber = 0;
    for (char c : text.substr(0, nDigits)) nNumber = nNumber * 10 + static_cast<uint64_t>(c - '0');
    text.remove_prefix(nDigits);
    return true;
}

// "bytes 100-199/200" gives 100 and 200; an unknown total ("*") gives 0.
bool ReadContentRange(std::string_view text, uint64_t& nFirst, uint64_t& nTotal) {
    uint64_t nLast = 0;
    nTotal = 0;
    if (!EqualNoCase(text.substr(0, 6), "bytes ")) return false;
    text.remove_prefix(6);
    if (!TakeNumber(text, nFirst) || text.substr(0, 1) != "-") return false;
    text.remove_prefix(1);
    if (!TakeNumber(text, nLast) || text.substr(0, 1) != "/") return false;
    text.remove_prefix(1);
    return text == "*" || (TakeNumber(text, nTotal) && text.empty());
}

// One of the two files on its way into its .part.
class CDownload {
  public:
    CDownload(CURL* hCurl, CFetchOptions const& options, COfficialFile const& file, std::ostream& remarks);

    void Run(); // afterwards the .part is complete, checked and on the disk

    CPartFile& Part() { return m_part; }
    fs::path const& Target() const { return m_target; }
    std::string const& Member() const { return m_strMember; }

  private:
    static size_t OnHeader(char* p, size_t nSize, size_t nCount, void* pThis) noexcept;
    static size_t OnBody(char* p, size_t nSize, size_t nCount, void* pThis) noexcept;
    static int OnProgress(void* pThis, curl_off_t, curl_off_t, curl_off_t, curl_off_t) noexcept;

    bool Attempt();
    CHandle<curl_slist> SetUp(char* pszError);
    void SetLimits();
    void TakeBody(char const* p, size_t nBytes);
    void AcceptAnswer();
    bool ContinuesOurs() const;
    void StartOver();
    void Finish();
    void Explain(CURLcode nCode, char const* pszError);
    void ExplainStatus();
    bool WasCut(CURLcode nCode) const;
    bool WasReached() const;
    void Pause(int nTry) const;
    long Status() const;
    uint64_t Rate() const;
    bool Stopped() const { return m_options.pStop != nullptr && *m_options.pStop != 0; }
    bool Resumes() const { return m_part.Size() != 0 && !m_strValidator.empty(); }
    void Fail(std::string strProblem, bool bAgain) {
        m_strProblem = std::move(strProblem);
        m_bAgain = bAgain;
    }

    CURL* m_hCurl;
    CFetchOptions const& m_options;
    COfficialFile const& m_file;
    std::ostream& m_remarks;
    std::string m_strUrl;
    fs::path m_target;
    CPartFile m_part;
    CProgressLine m_progress;
    std::string m_strMember;

    // What is known about the file that the .part is the beginning of.
    std::string m_strValidator; // for If-Range; empty: this beginning cannot be continued
    uint64_t m_nTotal = 0;      // 0: unknown
    bool m_bSpliced = false;    // the .part was put together from several answers

    // This attempt.
    CAnswer m_answer;
    bool m_bAccepted = false; // its body goes into the .part
    std::string m_strProblem; // empty: none so far
    bool m_bAgain = false;    // the problem may be gone at the next try
};

CDownload::CDownload(CURL* hCurl, CFetchOptions const& options, COfficialFile const& file, std::ostream& remarks)
    : m_hCurl(hCurl),
      m_options(options),
      m_file(file),
      m_remarks(remarks),
      m_strUrl(options.strBase + (options.strBase.back() == '/' ? "" : "/") + file.pszFolder + file.pszName),
      m_target(fs::path(options.strDir) / file.pszName),
      m_part(m_target.string() + ".part"),
      m_progress(remarks, options.bProgress, file.pszName) {
    std::error_code error;
    fs::file_status const status = fs::status(m_target, error);
    if (fs::exists(status) && !fs::is_regular_file(status))
        throw CBuildError(m_target.string() + ": is not a file, so it cannot be replaced. Move it out of the way.");
}

void CDownload::Run() {
    m_part.Begin();
    int nTry = 1;
    while (!Attempt() && m_bAgain && nTry < m_options.nTries) {
        nTry++;
        m_remarks << m_file.pszName << ": " << m_strProblem << "; trying again (" << std::to_string(nTry) << " of "
                  << std::to_string(m_options.nTries) << ")\n"
                  << std::flush;
        Pause(nTry);
    }
    if (m_strProblem.empty()) return;
    std::string const strTries = nTry > 1 ? " (gave up after " + std::to_string(nTry) + " tries)" : "";
    throw CBuildError(m_strUrl + ": " + m_strProblem + strTries +
                      ". Nothing was replaced. Try again later, save the "
                      "file by hand as " +
                      m_target.string() + ", or name another address with --base.");
}

bool CDownload::Attempt() {
    m_answer = {};
    m_bAccepted = false;
    m_bAgain = false;
    m_strProblem.clear();
    char szError[CURL_ERROR_SIZE] = "";
    CHandle<curl_slist> const pHeaders = SetUp(szError);
    CURLcode const nCode = curl_easy_perform(m_hCurl);
    m_progress.End(m_part.Size(), m_nTotal, Rate());
    if (nCode == CURLE_OK)
        Finish();
    else
        Explain(nCode, szError);
    return m_strProblem.empty();
}

// Returns the header list, which has to live until the transfer ends. The connection itself survives the reset.
CHandle<curl_slist> CDownload::SetUp(char* pszError) {
    curl_easy_reset(m_hCurl);
    SetLimits();
    curl_easy_setopt(m_hCurl, CURLOPT_URL, m_strUrl.c_str());
    curl_easy_setopt(m_hCurl, CURLOPT_USERAGENT, "qeadrs-dic");
    curl_easy_setopt(m_hCurl, CURLOPT_ERRORBUFFER, pszError);
    curl_easy_setopt(m_hCurl, CURLOPT_FAILONERROR, 1L); // the page that comes with a 404 is no part of the file
    curl_easy_setopt(m_hCurl, CURLOPT_HEADERFUNCTION, &CDownload::OnHeader);
    curl_easy_setopt(m_hCurl, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(m_hCurl, CURLOPT_WRITEFUNCTION, &CDownload::OnBody);
    curl_easy_setopt(m_hCurl, CURLOPT_WRITEDATA, this);
    curl_easy_setopt(m_hCurl, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(m_hCurl, CURLOPT_XFERINFOFUNCTION, &CDownload::OnProgress);
    curl_easy_setopt(m_hCurl, CURLOPT_XFERINFODATA, this);
    if (!Resumes()) return nullptr;
    // Not CURLOPT_RESUME_FROM: that fails on a server without ranges, where the whole file is a good answer too.
    curl_easy_setopt(m_hCurl, CURLOPT_RANGE, (std::to_string(m_part.Size()) + "-").c_str());
    CHandle<curl_slist> pHeaders(curl_slist_append(nullptr, ("If-Range: " + m_strValidator).c_str()));
    if (!pHeaders) throw CBuildError("Out of memory.");
    curl_easy_setopt(m_hCurl, CURLOPT_HTTPHEADER, pHeaders.get());
    return pHeaders;
}

// TLS verification is libcurl's default and stays as it is.
void CDownload::SetLimits() {
    bool const bTls = EqualNoCase(std::string_view(m_strUrl).substr(0, 6), "https:");
    curl_easy_setopt(m_hCurl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(m_hCurl, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(m_hCurl, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(m_hCurl, CURLOPT_MAXREDIRS, 5L);
    // A redirect must not lead from a verified connection to an open one.
    curl_easy_setopt(m_hCurl, CURLOPT_REDIR_PROTOCOLS_STR, bTls ? "https" : "http,https");
    // 0 would mean "no limit" or five minutes to libcurl.
    curl_easy_setopt(m_hCurl, CURLOPT_CONNECTTIMEOUT, std::max(1L, m_options.nConnectSeconds));
    curl_easy_setopt(m_hCurl, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(m_hCurl, CURLOPT_LOW_SPEED_TIME, std::max(1L, m_options.nStallSeconds));
}

size_t CDownload::OnHeader(char* p, size_t nSize, size_t nCount, void* pThis) noexcept {
    CDownload& self = *static_cast<CDownload*>(pThis);
    try {
        if (!self.m_bAccepted) self.m_answer.TakeLine({p, nSize * nCount}); // later lines are trailers
        return nSize * nCount;
    } catch (std::exception const& e) { // libcurl is C: nothing may fly through it
        self.Fail(e.what(), false);
        return 0;
    }
}

size_t CDownload::OnBody(char* p, size_t nSize, size_t nCount, void* pThis) noexcept {
    CDownload& self = *static_cast<CDownload*>(pThis);
    try {
        self.TakeBody(p, nSize * nCount);
        return self.m_strProblem.empty() ? nSize * nCount : CURL_WRITEFUNC_ERROR;
    } catch (std::exception const& e) {
        self.Fail(e.what(), false);
        return CURL_WRITEFUNC_ERROR;
    }
}

int CDownload::OnProgress(void* pThis, curl_off_t, curl_off_t, curl_off_t, curl_off_t) noexcept {
    CDownload& self = *static_cast<CDownload*>(pThis);
    try {
        if (self.m_bAccepted) self.m_progress.Show(self.m_part.Size(), self.m_nTotal, self.Rate());
        return self.Stopped() ? 1 : 0;
    } catch (std::exception const& e) {
        self.Fail(e.what(), false);
        return 1;
    }
}

void CDownload::TakeBody(char const* p, size_t nBytes) {
    if (!m_bAccepted) AcceptAnswer();
    if (!m_strProblem.empty()) return;
    if (m_nTotal > m_options.nMaxBytes || nBytes > m_options.nMaxBytes - m_part.Size())
        return Fail("the file is larger than " + std::to_string(m_options.nMaxBytes) + " bytes", false);
    m_part.Write(p, nBytes);
}

// Decides, when the headers are complete, where the body goes: behind what we have, or into a new file.
void CDownload::AcceptAnswer() {
    long const nStatus = Status();
    if (nStatus == 206 && Resumes()) {
        m_bAccepted = m_bSpliced = ContinuesOurs();
        if (m_bAccepted) return;
        StartOver();
        return Fail("the server sent a part that does not continue ours", true);
    }
    if (nStatus != 200) return Fail("HTTP status " + std::to_string(nStatus), false);
    StartOver();
    std::string_view length = m_answer.strContentLength;
    if (!TakeNumber(length, m_nTotal)) m_nTotal = 0;
    m_strValidator = m_answer.Validator();
    m_bAccepted = true;
}

// The server's word for it (206 to our If-Range) is not enough: one that ignores If-Range gives the tail of any file.
bool CDownload::ContinuesOurs() const {
    uint64_t nFirst = 0;
    uint64_t nTotal = 0;
    bool const bSame = m_strValidator == m_answer.strETag || m_strValidator == m_answer.strLastModified;
    return bSame && ReadContentRange(m_answer.strContentRange, nFirst, nTotal) && nFirst == m_part.Size() &&
           (m_nTotal == 0 || nTotal == m_nTotal);
}

void CDownload::StartOver() {
    if (m_part.Size() != 0) m_part.Begin();
    m_strValidator.clear();
    m_nTotal = 0;
    m_bSpliced = false;
}

// The answer came to its end; is this the file?
void CDownload::Finish() {
    if (!m_bAccepted) AcceptAnswer(); // there was no body
    if (!m_strProblem.empty()) return;
    if (m_nTotal != 0 && m_part.Size() < m_nTotal) return Fail("the server sent only a part of the rest", true);
    if (m_part.Size() == 0) return Fail("the answer is empty", false);
    m_part.Sync();
    std::string const strWrong = CheckArchive(m_part.Path(), m_file.pszMember, m_options.nMaxBytes, m_strMember);
    if (strWrong.empty()) return;
    // The seam may be to blame, so a file from several answers gets another chance in one piece.
    Fail(strWrong, m_bSpliced);
    StartOver();
}

void CDownload::Explain(CURLcode nCode, char const* pszError) {
    if (!m_strProblem.empty()) return; // one of the callbacks ended the transfer and said why
    if (Stopped()) return Fail("stopped", false);
    if (nCode == CURLE_HTTP_RETURNED_ERROR) return ExplainStatus();
    Fail(*pszError != '\0' ? pszError : curl_easy_strerror(nCode), WasCut(nCode));
}

void CDownload::ExplainStatus() {
    long const nStatus = Status();
    bool const bRangeGone = nStatus == 416 && Resumes(); // the file is shorter now, so it is another one
    if (bRangeGone) StartOver();
    bool const bBusy = nStatus >= 500 || nStatus == 408 || nStatus == 429;
    Fail("HTTP status " + std::to_string(nStatus), bBusy || bRangeGone);
}

// A server that cannot be reached at all is not asked again: whoever is offline wants to know at once. Once bytes
// have come, a network that is gone for a moment is worth another try.
bool CDownload::WasCut(CURLcode nCode) const {
    switch (nCode) {
    case CURLE_PARTIAL_FILE:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
    case CURLE_GOT_NOTHING:
    case CURLE_HTTP2:
    case CURLE_HTTP2_STREAM:
        return true;
    case CURLE_OPERATION_TIMEDOUT:
        return WasReached();
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_CONNECT:
    case CURLE_SSL_CONNECT_ERROR:
        return m_part.Size() != 0;
    default:
        return false;
    }
}

bool CDownload::WasReached() const {
    curl_off_t nMicroseconds = 0; // until the request could be sent
    curl_easy_getinfo(m_hCurl, CURLINFO_PRETRANSFER_TIME_T, &nMicroseconds);
    return nMicroseconds > 0 || m_part.Size() != 0;
}

void CDownload::Pause(int nTry) const {
    int const nDoublings = std::clamp(nTry - 2, 0, 6);
    auto const end =
        std::chrono::steady_clock::now() +
        std::chrono::milliseconds(std::clamp(m_options.nPauseMilliseconds, 0L, 60000L)) * (1 << nDoublings);
    while (!Stopped() && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::min<std::chrono::steady_clock::duration>(
            std::chrono::milliseconds(100), end - std::chrono::steady_clock::now()));
}

long CDownload::Status() const {
    long nStatus = 0;
    curl_easy_getinfo(m_hCurl, CURLINFO_RESPONSE_CODE, &nStatus);
    return nStatus;
}

uint64_t CDownload::Rate() const {
    curl_off_t nPerSecond = 0;
    curl_easy_getinfo(m_hCurl, CURLINFO_SPEED_DOWNLOAD_T, &nPerSecond);
    return static_cast<uint64_t>(std::max<curl_off_t>(0, nPerSecond));
}

bool SameContent(fs::path const& a, fs::path const& b) {
    CHandle<FILE> pA(fopen(a.c_str(), "rbe"));
    CHandle<FILE> pB(fopen(b.c_str(), "rbe"));
    if (!pA || !pB) return false;
    std::vector<char> vA(size_t(1) << 16), vB(vA.size());
    for (;;) {
        size_t const nA = fread(vA.data(), 1, vA.size(), pA.get());
        size_t const nB = fread(vB.data(), 1, vB.size(), pB.get());
        if (nA != nB || memcmp(vA.data(), vB.data(), nA) != 0) return false;
        if (nA < vA.size()) return ferror(pA.get()) == 0 && ferror(pB.get()) == 0;
    }
}

// Puts checked files in place. All or none: until Keep() is called, the destructor takes every step back.
class CInstall {
  public:
    CInstall() = default;
    CInstall(CInstall const&) = delete;
    CInstall& operator=(CInstall const&) = delete;
    ~CInstall();

    void Put(CPartFile& part, fs::path const& target);
    void Keep() { m_bKeep = true; }

  private:
    struct CStep {
        fs::path target;
        fs::path old; // empty: there was no such file
        bool bMoved;
    };
    std::vector<CStep> m_vSteps;
    bool m_bKeep = false;
};

// The old file gets a second name first, so that DIR/NAME exists at every moment.
void CInstall::Put(CPartFile& part, fs::path const& target) {
    std::error_code error;
    m_vSteps.push_back({target, {}, false});
    if (fs::exists(target, error)) {
        fs::path const old = target.string() + ".part.old";
        m_vSteps.back().old = old;
        fs::create_hard_link(target, old, error);
        if (error) fs::copy_file(target, old, error);
        if (error) throw CBuildError(target.string() + ": cannot be kept aside: " + error.message() + ".");
    }
    part.MoveTo(target);
    m_vSteps.back().bMoved = true;
}

CInstall::~CInstall() {
    std::error_code error; // a step that cannot be taken back leaves the newer of two sound files
    for (CStep const& step : m_vSteps) {
        if (!m_bKeep && step.bMoved && step.old.empty()) fs::remove(step.target, error);
        if (!m_bKeep && step.bMoved && !step.old.empty()) fs::rename(step.old, step.target, error);
        if (!step.old.empty()) fs::remove(step.old, error);
    }
}

std::vector<CFetchedFile> PutInPlace(std::deque<CDownload>& vDownloads, CFolder const& folder) {
    std::vector<CFetchedFile> vFetched;
    CInstall install;
    for (CDownload& download : vDownloads) {
        CPartFile& part = download.Part();
        std::error_code error;
        fs::remove(download.Target().string() + ".part.old", error); // of a run that was killed
        bool const bUnchanged = SameContent(part.Path(), download.Target());
        vFetched.push_back({download.Target().string(), download.Member(), part.Size(), bUnchanged});
        if (bUnchanged)
            part.Discard();
        else
            install.Put(part, download.Target());
    }
    folder.Sync();
    install.Keep();
    return vFetched;
}

// libcurl's own start and end, once per process.
struct CCurlLibrary {
    CURLcode nCode = curl_global_init(CURL_GLOBAL_DEFAULT);
    ~CCurlLibrary() { curl_global_cleanup(); }
};

} // namespace

std::vector<CFetchedFile> FetchOfficialFiles(CFetchOptions const& options, std::ostream& remarks) {
    std::string_view const base = options.strBase;
    if (!EqualNoCase(base.substr(0, 7), "http://") && !EqualNoCase(base.substr(0, 8), "https://"))
        throw CBuildError("\"" + options.strBase + "\": a base address begins with http:// or https://.");
    static CCurlLibrary const library;
    CHandle<CURL> const hCurl(library.nCode == CURLE_OK ? curl_easy_init() : nullptr);
    if (!hCurl) throw CBuildError("libcurl cannot be started.");

    CFolder const folder(options.strDir);
    std::deque<CDownload> vDownloads;
    for (COfficialFile const& file : official_file) vDownloads.emplace_back(hCurl.get(), options, file, remarks);
    for (CDownload& download : vDownloads) download.Run();
    return PutInPlace(vDownloads, folder);
}

} // namespace qe
