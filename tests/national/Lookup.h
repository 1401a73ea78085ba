// Lookup.h - the library's answers in a form that compares with the slow reader's.
#ifndef QEADRS_TESTS_NATIONAL_LOOKUP_H
#define QEADRS_TESTS_NATIONAL_LOOKUP_H

#include "Failures.h"
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

// All codes of the official tables, and those of towns that are gone.
std::set<std::string_view> const& TownCodes();
std::set<std::string_view> const& OfficeCodes();
std::set<std::string_view> const& GoneCodes();
std::set<std::string_view> const& AllCodes();

// All old codes of all of them.
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

// The lowest bytes of a number, as blocks have them.
void PutInteger(std::string& str, size_t n, size_t nBytes);

// One address of a block: the text in front of the code in the pool, the code, and five levels of the address.
struct CBlockAddress {
    std::string_view strBeforeCode, strCode;
    CAddress address;
};
// The block of GetAdrFromZip and GetAdrFromAdd for these addresses, put together byte by byte; "" for none.
std::string ExpectedBlock(std::vector<CBlockAddress> const& vAddress);

// A difference between blocks is a failure that names the question.
void CompareBlocks(CFailures& failures, std::string const& strQuestion, std::string const& strBlock,
                   std::string const& strExpected);

// The block of GetAdrFromZip, of GetAdrFromAdd; "" when it finds nothing.
std::string ZipBlock(std::string const& strCode);
std::string AddBlock(std::string const& strText);

// The block of PstAdrCity for a code or an old code; "" when it fails.
std::string CityBlock(std::string const& strCode, std::string const& strOldCode, unsigned short nSortType = 2);

} // namespace national

#endif
