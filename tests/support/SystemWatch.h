// CSystemWatch - records the library's calls of the system and of the platform layer, and makes them fail on demand.
//
//   CSystemWatch watch;
//   watch.Fail("GlobalLock");
//   PstAdrCity(abRecord, &h);
//   EXPECT_THAT(watch.Names(), ElementsAre("GlobalAlloc", "GlobalLock"));
//
// While none exists every call goes through untouched and nothing is allocated; at most one may exist at a time. Link
// qetestwatch.
#ifndef QEADRS_TESTS_SUPPORT_SYSTEMWATCH_H
#define QEADRS_TESTS_SUPPORT_SYSTEMWATCH_H

#include "platform/Win32Compat.h"

#include <set>
#include <string>
#include <vector>

struct CSystemCall {
    std::string strName;            // open64 and its like count as open
    std::string strText = {};       // path, library or function
    void const* pAddress = nullptr; // mapping, module or block
    size_t nSize = 0;
    int nNumber = 0; // flags of open and GlobalAlloc, descriptor of mmap and close
    int hFile = 0;   // result of open
};

class CSystemWatch {
  public:
    CSystemWatch();
    ~CSystemWatch();
    CSystemWatch(CSystemWatch const&) = delete;
    CSystemWatch& operator=(CSystemWatch const&) = delete;

    // From now on this call does nothing and fails: null, -1, or MAP_FAILED.
    void Fail(std::string const& strName) { m_setFail.insert(strName); }

    // From now on this call does nothing and succeeds (munmap, close).
    void Ignore(std::string const& strName) { m_setIgnore.insert(strName); }

    // GetProcAddress answers this function.
    void GiveFunction(FARPROC pfn) { m_pfnGiven = pfn; }

    std::vector<CSystemCall> const& Calls() const { return m_vCall; }
    std::vector<std::string> Names() const;
    std::vector<CSystemCall> Calls(std::string const& strName) const;

    // For the wrappers.
    static CSystemWatch* Current();
    bool Fails(std::string const& strName) const { return m_setFail.count(strName) != 0; }
    bool Ignores(std::string const& strName) const { return m_setIgnore.count(strName) != 0; }
    FARPROC GivenFunction() const { return m_pfnGiven; }
    void Record(CSystemCall const& call);

  private:
    std::vector<CSystemCall> m_vCall;
    std::set<std::string> m_setFail;
    std::set<std::string> m_setIgnore;
    FARPROC m_pfnGiven = nullptr;
};

#endif
