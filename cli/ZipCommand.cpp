// ZipCommand.cpp - `qeadrs zip`: from the codes that were asked for to rows of addresses.
//
// The API answers where it can: addresses by GetAdrFromZip, cities by PstAdrCity, the organisation met by
// PstAdrGetComment. The class answers the rest: buildings, floors, readings, and the addresses of an old code.
#include "cli/ZipCommand.h"

#include "api/Pstexec.h"
#include "cli/Address.h"
#include "cli/ApiData.h"
#include "cli/Command.h"
#include "cli/Text.h"

#include <algorithm>
#include <set>
#include <utility>

namespace qe {

namespace {

constexpr size_t COMMENT_SIZE = 128; // what PstAdrGetComment writes at most; it aborts on a longer name
constexpr int COMMENT_OFFICE = 3;

// --- addresses -----------------------------------------------------------------------------------------------------

std::vector<CRow> FindAddresses(CDictionary& dictionary, std::string const& strCode) {
    std::vector<tagADDR> vAddr;
    dictionary.Class().GetAddrFromPostCode7(strCode.c_str(), vAddr);
    HGLOBAL hResult = nullptr;
    int const nResult = GetAdrFromZip(strCode.c_str(), &hResult);
    return JoinAnswers(dictionary, nResult, hResult, vAddr).vAddress;
}

std::vector<CRow> FindAddressesOfOldCode(CDictionary& dictionary, std::string const& strCode) {
    std::vector<tagADDR> vAddr;
    dictionary.Class().GetAddrFromPostCode5(strCode.c_str(), vAddr);
    std::vector<CRow> vAddress;
    vAddress.reserve(vAddr.size());
    for (tagADDR const& addr : vAddr) vAddress.push_back(MakeAddress(dictionary, addr));
    return vAddress;
}

// --- cities --------------------------------------------------------------------------------------------------------

// A prefecture and city as PstAdrCity gives them, one text, as prefecture and city.
CRow SplitPrefecture(std::string const& strCode, std::string_view strBoth) {
    for (auto const& row : pref_order) {
        std::string_view const strPref = row + PREF_ORDER_NAME;
        if (strBoth.substr(0, strPref.size()) == strPref)
            return {strCode, std::string(strPref), std::string(strBoth.substr(strPref.size()))};
    }
    return {strCode, "", std::string(strBoth)};
}

std::vector<CRow> FindCities(CZipOptions const& options, std::string const& strCode) {
    tagCODERECORD record(options.bSort ? SORT_ADDR : SORT_DICTIONARY);
    char* const pszField = options.bOld ? record.szOldCode : record.szCode;
    strCode.copy(pszField, strCode.size()); // ReadCode has seen to it that it fits; the NUL is there
    HGLOBAL hResult = nullptr;
    if (PstAdrCity(&record, &hResult) != 0) throw CFailure(EXIT_SYSTEM, "not enough memory.");
    CBlock const block(hResult);
    std::vector<CRow> vCity;
    std::set<std::string_view> seen; // the API drops a repeated city only next to itself
    size_t nOffset = 2;
    for (unsigned i = 0; i < block.Short(0); ++i) {
        size_t const nLength = block.Byte(nOffset);
        std::string_view const strBoth = block.Bytes(nOffset + 1, nLength);
        nOffset += 1 + nLength;
        if (seen.insert(strBoth).second) vCity.push_back(SplitPrefecture(strCode, strBoth));
    }
    return vCity;
}

// --- the command ---------------------------------------------------------------------------------------------------

class CZipCommand : public CCommand {
  public:
    CZipCommand(CZipOptions const& options, CCommonOptions const& common)
        : CCommand(common, Columns(options), "postal code"), m_options(options) {}

    // The organisation that the last lookup through the API met, beside a table.
    void RemarkOffice() const {
        char szOffice[COMMENT_SIZE];
        int nKind = COMMENT_OFFICE;
        if (Form() != EForm::Table || m_nLongestOffice >= COMMENT_SIZE) return;
        if (PstAdrGetComment(szOffice, &nKind) == 0) Remark("organisation: " + Clean(szOffice));
    }

  private:
    static std::vector<std::string> Columns(CZipOptions const& options) {
        if (options.bCities) return {options.bOld ? "old_code" : "postal_code", "prefecture", "city"};
        return AddressColumns(options.bKana);
    }

    std::string ReadQuery(std::string const& strText) const override {
        return m_options.bOld ? ReadOldCode(strText) : ReadCode(strText);
    }

    void Prepare() override { Dictionary().SetSortType(m_options.bSort ? SORT_ADDR : SORT_DICTIONARY); }

    void Answer(std::string const& strCode) override {
        std::vector<CRow> vRow = m_options.bCities ? FindCities(m_options, strCode)
                                 : m_options.bOld  ? FindAddressesOfOldCode(Dictionary(), strCode)
                                                   : FindAddresses(Dictionary(), strCode);
        if (vRow.empty()) ReportNotFound(strCode);
        for (CRow& row : vRow) {
            if (!m_options.bCities) {
                m_nLongestOffice = std::max(m_nLongestOffice, row[COL_OFFICE].size());
                row = AddressRow(std::move(row), m_options.bKana);
            }
            Print(std::move(row));
        }
    }

    CZipOptions const& m_options;
    size_t m_nLongestOffice = 0;
};

} // namespace

EExit RunZip(CZipOptions const& options, CCommonOptions const& common) {
    CZipCommand command(options, common);
    EExit const nStatus = command.Run(options.vCode);
    if (options.vCode.size() == 1) command.RemarkOffice();
    return nStatus;
}

} // namespace qe
