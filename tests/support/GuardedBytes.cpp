#include "tests/support/GuardedBytes.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <system_error>

namespace {

[[noreturn]] void Fail(char const* pszCall) {
    throw std::system_error(errno, std::generic_category(), pszCall);
}

} // namespace

CGuardedBytes::CGuardedBytes(void const* p, size_t nSize, EAccess nAccess) {
    auto const nPage = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    size_t const nUsable = (nSize + nPage - 1) / nPage * nPage;
    m_nMapping = nUsable + nPage;
    m_pMapping = mmap(nullptr, m_nMapping, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (m_pMapping == MAP_FAILED) Fail("mmap");
    auto* const pStart = static_cast<unsigned char*>(m_pMapping);
    m_p = pStart + nUsable - nSize;
    if (nSize != 0) std::memcpy(m_p, p, nSize);
    if (mprotect(pStart + nUsable, nPage, PROT_NONE) != 0) Fail("mprotect");
    if (nAccess == ReadOnly && nUsable != 0 && mprotect(pStart, nUsable, PROT_READ) != 0) Fail("mprotect");
}

CGuardedBytes::~CGuardedBytes() {
    munmap(m_pMapping, m_nMapping);
}
