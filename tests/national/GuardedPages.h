// CGuardedPages - memory between two pages that cannot be touched, used again and again.
//
//   CGuardedPages pages;
//   PstAdrGetZip(pages.AtEnd(abRecord));           // one byte too far, on either side, ends the test program
//
// A copy at the end finds reading and writing behind it, one at the start before it.
#ifndef QEADRS_TESTS_NATIONAL_GUARDEDPAGES_H
#define QEADRS_TESTS_NATIONAL_GUARDEDPAGES_H

#include <cstring>
#include <stdexcept>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace national {

class CGuardedPages {
  public:
    CGuardedPages() : m_nPage(static_cast<size_t>(sysconf(_SC_PAGESIZE))) {
        m_pMapping = mmap(nullptr, 3 * m_nPage, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (m_pMapping == MAP_FAILED || mprotect(Page(), m_nPage, PROT_READ | PROT_WRITE) != 0)
            throw std::runtime_error("no guarded pages");
    }
    ~CGuardedPages() { munmap(m_pMapping, 3 * m_nPage); }
    CGuardedPages(CGuardedPages const&) = delete;
    CGuardedPages& operator=(CGuardedPages const&) = delete;

    // A copy of the bytes whose last one is the last, or whose first one is the first, of the page.
    char* AtEnd(std::string const& str) { return Put(str, m_nPage - Checked(str)); }
    char* AtStart(std::string const& str) {
        Checked(str);
        return Put(str, 0);
    }

  private:
    char* Page() const { return static_cast<char*>(m_pMapping) + m_nPage; }
    size_t Checked(std::string const& str) const {
        if (str.size() > m_nPage) throw std::runtime_error("longer than a page");
        return str.size();
    }
    char* Put(std::string const& str, size_t nOffset) {
        return static_cast<char*>(std::memcpy(Page() + nOffset, str.data(), str.size()));
    }

    size_t m_nPage;
    void* m_pMapping;
};

// A text with its NUL, for AtEnd and AtStart.
inline std::string WithNul(std::string str) {
    return str.append(1, '\0');
}

} // namespace national

#endif
