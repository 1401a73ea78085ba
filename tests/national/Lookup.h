// Lookup.h - the library's answers in a form that compares with the slow reader's.
#ifndef QEADRS_TESTS_NATIONAL_LOOKUP_H
#define QEADRS_TESTS_NATIONAL_LOOKUP_H

#include "SlowReader.h"
#include "api/Pstexec.h"
#include "dic/AddrDic.h"

#include <set>
#include <string>
#include <vector>

namespace national {

// A dictionary object over the bytes of the official dictionary.
CAddrDic& Dictionary();

// The record's texts, as AddressText writes those of the slow reader.
std::string AddressText(tagADDR const& addr);

// The answer to a 7-digit code or a part of one, in the library's order.
std::vector<std::string> Answers(CAddrDic& dictionary, std::string const& strCode);

// All codes, and all old codes, of both official tables.
std::set<std::string_view> const& TownCodes();
std::set<std::string_view> const& OfficeCodes();
std::set<std::string_view> const& OldCodes();

// The library as a host uses it: a profile file of our own names the folder of the prepared dictionary, PstAdrOpen
// finds it there; closed and removed at the end.
class CHost {
  public:
    CHost();
    ~CHost();
    CHost(CHost const&) = delete;
    CHost& operator=(CHost const&) = delete;
    bool IsOpen() const { return m_bOpen; }

  private:
    std::string m_strProfile;
    bool m_bOpen = false;
};

// The bytes of a block, which is freed.
std::string TakeBlock(HGLOBAL hBlock);

// The block of GetAdrFromZip; "" when it finds nothing.
std::string ZipBlock(std::string const& strCode);

// The block of PstAdrCity for a code or an old code; "" when it fails.
std::string CityBlock(std::string const& strCode, std::string const& strOldCode, unsigned short nSortType = 2);

} // namespace national

#endif
