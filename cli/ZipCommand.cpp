// ZipCommand.cpp - `qeadrs zip`: from the codes that were asked for to rows of addresses.
//
// The API answers where it can: addresses by GetAdrFromZip, cities by PstAdrCity, the organisation met by
// PstAdrGetComment. The class answers the rest: buildings, floors, readings, and the addresses of an old code.
#include "cli/ZipCommand.h"

#include "cli/Address.h"
#include "cli/Command.h"
#include "cli/Text.h"

#include <algorithm>
#include <set>
#include <utility>

namespace qe {

namespace {

constexpr size_t LONGEST_OFFICE = 127; // PstAdrGetComment aborts on a longer name

// --- addresses -----------------------------------------------------------------------------------------------------

std::vector<CRow> FindAddresses(CDictionary& dictionary, std::string const& strCode) {
    return JoinAnswers(dictionary.Api().FromCode(strCode), dictionary.Dic().FromCode(strCode)).vAddress;
}

std::vector<CRow> FindAddressesOfOldCode(CDictionary& dictionary, std::string const& strCode) {
    std::vector<CRow> vAddress;
    for (qeadrs::CRecord const& record : dictionary.Dic().FromOldCode(strCode))
        vAddress.push_back(MakeAddress(record));
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

std::vector<CRow> FindCities(qeadrs::CApi& api, std::string const& strCode, bool bOld) {
    qeadrs::CNames const names = Demand(bOld ? api.CitiesOfOldCode(strCode) : api.CitiesOfCode(strCode));
    std::vector<CRow> vCity;
    std::set<std::string_view> seen; // the API drops a repeated city only next to itself
    for (std::string_view const strBoth : names)
        if (seen.insert(strBoth).second) vCity.push_back(SplitPrefecture(strCode, strBoth));
    return vCity;
}

// --- the command ---------------------------------------------------------------------------------------------------

class CZipCommand : public CCommand {
  public:
    CZipCommand(CZipOptions const& options, CCommonOptions const& common)
        : CCommand(common, Columns(options), "postal code"), m_options(options) {}

    // The organisation that the last lookup through the API met, beside a table.
    void RemarkOffice() {
        if (Form() != EForm::Table || m_nLongestOffice > LONGEST_OFFICE) return;
        if (auto const strOffice = Dictionary().Api().LastOffice()) Remark("organisation: " + Clean(*strOffice));
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
        std::vector<CRow> vRow = m_options.bCities ? FindCities(Dictionary().Api(), strCode, m_options.bOld)
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
