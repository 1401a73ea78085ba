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

// A page in front, the bytes' own pages, a page behind.
CGuardedBytes::CGuardedBytes(void const* p, size_t nSize, EAccess nAccess, EPlace nPlace) {
    auto const nPage = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    size_t const nUsable = (nSize + nPage - 1) / nPage * nPage;
    m_nMapping = nPage + nUsable + nPage;
    m_pMapping = mmap(nullptr, m_nMapping, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (m_pMapping == MAP_FAILED) Fail("mmap");
    auto* const pStart = static_cast<unsigned char*>(m_pMapping) + nPage;
    m_p = nPlace == StartOfPage ? pStart : pStart + nUsable - nSize;
    if (nSize != 0) std::memcpy(m_p, p, nSize);
    if (mprotect(m_pMapping, nPage, PROT_NONE) != 0) Fail("mprotect");
    if (mprotect(pStart + nUsable, nPage, PROT_NONE) != 0) Fail("mprotect");
    if (nAccess == ReadOnly && nUsable != 0 && mprotect(pStart, nUsable, PROT_READ) != 0) Fail("mprotect");
}

CGuardedBytes::~CGuardedBytes() {
    munmap(m_pMapping, m_nMapping);
}
