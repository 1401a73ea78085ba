// TracedTool.cpp - the program under the system's own means of watching a child. The leak check cannot be watched, so
// it is off.
#include "tests/builder/TracedTool.h"

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>

namespace {

using CRegisters = user_regs_struct;

// A call of the system, and where its arguments name a file: by a path, or by a descriptor.
struct CWatched {
    unsigned long long nNumber;
    char const* pszName;
    unsigned long long CRegisters::*pPath;
    unsigned long long CRegisters::*pFile;
};
constexpr CWatched WATCHED[] = {
    {SYS_open, "open", &CRegisters::rdi, nullptr},          {SYS_openat, "open", &CRegisters::rsi, nullptr},
    {SYS_creat, "open", &CRegisters::rdi, nullptr},         {SYS_mkdir, "mkdir", &CRegisters::rdi, nullptr},
    {SYS_mkdirat, "mkdir", &CRegisters::rsi, nullptr},      {SYS_link, "link", &CRegisters::rsi, nullptr},
    {SYS_linkat, "link", &CRegisters::r10, nullptr},        {SYS_symlink, "symlink", &CRegisters::rsi, nullptr},
    {SYS_rename, "rename", &CRegisters::rsi, nullptr},      {SYS_renameat, "rename", &CRegisters::r10, nullptr},
    {SYS_renameat2, "rename", &CRegisters::r10, nullptr},   {SYS_unlink, "unlink", &CRegisters::rdi, nullptr},
    {SYS_unlinkat, "unlink", &CRegisters::rsi, nullptr},    {SYS_rmdir, "rmdir", &CRegisters::rdi, nullptr},
    {SYS_truncate, "truncate", &CRegisters::rdi, nullptr},  {SYS_chmod, "chmod", &CRegisters::rdi, nullptr},
    {SYS_fchmodat, "chmod", &CRegisters::rsi, nullptr},     {SYS_write, "write", nullptr, &CRegisters::rdi},
    {SYS_pwrite64, "write", nullptr, &CRegisters::rdi},     {SYS_writev, "write", nullptr, &CRegisters::rdi},
    {SYS_sendfile, "write", nullptr, &CRegisters::rdi},     {SYS_copy_file_range, "write", nullptr, &CRegisters::rdx},
    {SYS_pread64, "pread", nullptr, &CRegisters::rdi},      {SYS_fsync, "fsync", nullptr, &CRegisters::rdi},
    {SYS_fdatasync, "fsync", nullptr, &CRegisters::rdi},    {SYS_ftruncate, "truncate", nullptr, &CRegisters::rdi},
    {SYS_fallocate, "truncate", nullptr, &CRegisters::rdi}, {SYS_fchmod, "chmod", nullptr, &CRegisters::rdi},
    {SYS_flock, "flock", nullptr, &CRegisters::rdi},
};

std::string TextOf(pid_t nProcess, unsigned long long nAddress) {
    std::array<char, 4096> szText{};
    int const hMemory = open(("/proc/" + std::to_string(nProcess) + "/mem").c_str(), O_RDONLY | O_CLOEXEC);
    ssize_t const nRead = pread(hMemory, szText.data(), szText.size() - 1, static_cast<off_t>(nAddress));
    close(hMemory);
    return nRead <= 0 ? "" : szText.data();
}

std::string PathOf(pid_t nProcess, unsigned long long nFile) {
    std::error_code error; // none: the descriptor is not open
    return std::filesystem::read_symlink("/proc/" + std::to_string(nProcess) + "/fd/" + std::to_string(nFile), error)
        .string();
}

// "write t.dic" for a call on a file of the folder or on the folder itself, "" for any other.
std::string Describe(pid_t nProcess, CRegisters const& registers, std::string const& strFolder) {
    for (CWatched const& watched : WATCHED) {
        if (registers.orig_rax != watched.nNumber) continue;
        std::string const strPath = watched.pPath != nullptr ? TextOf(nProcess, registers.*watched.pPath)
                                                             : PathOf(nProcess, registers.*watched.pFile);
        if (strPath.compare(0, strFolder.size(), strFolder) != 0) return "";
        size_t const nName = strPath.find_first_not_of('/', strFolder.size());
        return watched.pszName + std::string(" ") + (nName == std::string::npos ? "." : strPath.substr(nName));
    }
    return "";
}

class CTracer {
  public:
    CTracer(pid_t nProcess, std::string strFolder, CFault const& fault)
        : m_nProcess(nProcess), m_strFolder(std::move(strFolder)), m_fault(fault) {
        while (m_strFolder.back() == '/') m_strFolder.pop_back();
    }

    // From its first stop to its end: exit status, or minus the signal.
    int Run(CTracedRun& run) {
        int nStatus = Wait();
        ptrace(PTRACE_SETOPTIONS, m_nProcess, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
        while (WIFSTOPPED(nStatus)) {
            int const nStop = WSTOPSIG(nStatus);
            bool const bCall = nStop == (SIGTRAP | 0x80);
            if (bCall) AtCall(run);
            // A signal is delivered; the trap behind the beginning of the program is none of its own.
            int const nSignal = bCall || nStop == SIGTRAP ? 0 : nStop;
            ptrace(PTRACE_SYSCALL, m_nProcess, nullptr, nSignal);
            nStatus = Wait();
        }
        return WIFSIGNALED(nStatus) ? -WTERMSIG(nStatus) : WEXITSTATUS(nStatus);
    }

  private:
    int Wait() const {
        int nStatus = 0;
        while (waitpid(m_nProcess, &nStatus, 0) < 0 && errno == EINTR) {
        }
        return nStatus;
    }

    // Called at the begin and at the end of each call.
    void AtCall(CTracedRun& run) {
        m_bBegins = !m_bBegins;
        CRegisters registers = {};
        ptrace(PTRACE_GETREGS, m_nProcess, nullptr, &registers);
        if (!m_bBegins) {
            if (m_bReplacesResult) {
                registers.rax = static_cast<unsigned long long>(-m_fault.nNumber);
                ptrace(PTRACE_SETREGS, m_nProcess, nullptr, &registers);
            }
            m_bReplacesResult = false;
            return;
        }
        std::string const strCall = Describe(m_nProcess, registers, m_strFolder);
        if (strCall.empty()) return;
        run.vCall.push_back(strCall);
        if (m_fault.nKind == CFault::Nothing || static_cast<int>(run.vCall.size()) != m_fault.nCall + 1) return;
        run.bReached = true;
        if (m_fault.nKind == CFault::Signals) {
            kill(m_nProcess, m_fault.nNumber);
            return;
        }
        bool const bWrite = registers.orig_rax == SYS_write;
        if (m_fault.nKind == CFault::Halves && (!bWrite || registers.rdx < 2)) return;
        if (m_fault.nKind == CFault::Halves) registers.rdx /= 2;
        if (m_fault.nKind == CFault::Fails) registers.orig_rax = ~0ull; // no call has this number
        m_bReplacesResult = m_fault.nKind == CFault::Fails;
        ptrace(PTRACE_SETREGS, m_nProcess, nullptr, &registers);
    }

    pid_t m_nProcess;
    std::string m_strFolder;
    CFault m_fault;
    bool m_bBegins = false;
    bool m_bReplacesResult = false;
};

} // namespace

CTracedRun RunTraced(CArguments const& vArgument, std::string const& strFolder, CFault const& fault,
                     std::function<void()> const& prepare) {
    CTestFolder const outputs;
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1); // here and not in the child of a process that may have threads
    pid_t const nProcess = StartTool(
        vArgument,
        [&] {
            if (prepare) prepare();
            ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        },
        outputs.Path("out"), outputs.Path("err"));
    CTracedRun run;
    run.nStatus = CTracer(nProcess, strFolder, fault).Run(run);
    unsetenv("ASAN_OPTIONS");
    run.strOut = ReadFile(outputs.Path("out"));
    run.strErr = ReadFile(outputs.Path("err"));
    return run;
}
