// Support.h - what the tests of the compiler share: a folder of their own, files in every encoding, and table rows.
#ifndef QEADRS_TESTS_BUILDER_SUPPORT_H
#define QEADRS_TESTS_BUILDER_SUPPORT_H

#include "builder/Error.h"

#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

// A folder that lives as long as the object.
class CTestFolder {
  public:
    CTestFolder();
    ~CTestFolder();
    CTestFolder(CTestFolder const&) = delete;
    CTestFolder& operator=(CTestFolder const&) = delete;

    std::string Path(std::string const& strName) const { return (m_path / strName).string(); }

    // Writes a file and returns its path.
    std::string Write(std::string const& strName, std::string const& strBytes) const;

    // The names in the folder, with the bytes of each file ("/" for a folder).
    std::map<std::string, std::string> Content() const;

  private:
    std::filesystem::path m_path;
};

std::string ReadFile(std::string const& strPath);
void WriteFile(std::string const& strPath, std::string const& strBytes);

// UTF-8 in another encoding ("CP932", "EUC-JISX0213"), by the system's converter.
std::string Encode(std::string const& strUtf8, char const* pszEncoding);

// The text in code page 932 as the official files have it: the tables' dashes are those of the code page.
std::string EncodeCp932(std::string const& strUtf8);

// The bytes of a zip file with these members (name and content), all dated in the month yyyymm.
std::string Zip(std::vector<std::pair<std::string, std::string>> const& vMember, unsigned nMonth = 202605);

// The text so many times in a row.
std::string Repeat(std::string const& str, size_t nTimes);

// A row of the town table. Prefecture and city have the readings ケン and シ.
struct CTown {
    std::string strPref, strCity, strTown, strKana, strCode;
    std::string strOldCode = "100";
};
std::string Line(CTown const& town);
std::string Table(std::vector<CTown> const& vTown);

// A row of the organisation table. The name's reading is ﾅﾏｴ.
struct COffice {
    std::string strName, strPref, strCity, strTown, strRest, strCode;
    std::string strOldCode = "100";
};
std::string Line(COffice const& office);
std::string Table(std::vector<COffice> const& vOffice);

// The message of the CBuildError that the call throws; "" when it throws none.
template <typename F>
std::string ErrorOf(F call) {
    try {
        call();
    } catch (qe::CBuildError const& error) {
        return error.what();
    }
    return "";
}

#endif
