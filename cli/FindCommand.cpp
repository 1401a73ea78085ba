// FindCommand.cpp - `qeadrs find`: from a partial address to all addresses that it can stand for.
//
// The API answers (GetAdrFromAdd); the class adds buildings, floors and readings. An answer goes through the levels
// with one record, in which a building stays while its neighbours are listed: what is not an address's own is taken
// out again by comparing it with the entries of its code, which are read one by one.
#include "cli/FindCommand.h"

#include "cli/Address.h"
#include "cli/Command.h"
#include "cli/Text.h"

#include <utility>

namespace qe {

namespace {

// The levels that can stand below a town, with their columns.
struct CLevel {
    char const* tagADDR::*pszText;
    EColumn nColumn;
    EColumn nKanaColumn;
};
constexpr CLevel BELOW_A_TOWN[] = {
    {&tagADDR::pszArea, COL_AREA, COL_AREA_KANA},
    {&tagADDR::pszBlock, COL_BUILDING, COL_BUILDING_KANA},
    {&tagADDR::pszNote, COL_FLOOR, COL_FLOOR}, // a floor has no reading
    {&tagADDR::pszOffice, COL_OFFICE, COL_OFFICE_KANA},
};

class CFindCommand : public CCommand {
  public:
    CFindCommand(CFindOptions const& options, CCommonOptions const& common)
        : CCommand(common, AddressColumns(options.bKana), "partial address"), m_options(options) {}

  private:
    std::string ReadQuery(std::string const& strText) const override { return ReadAddressText(strText); }

    void Answer(std::string const& strText) override {
        CAddresses addresses = FindAddresses(strText);
        if (addresses.nCount == 0) return ReportNotFound(strText);
        RemarkCount(strText, addresses.nCount, addresses.vAddress.size());
        for (CRow& address : addresses.vAddress) Print(AddressRow(std::move(address), m_options.bKana));
    }

    void RemarkCount(std::string const& strText, size_t nCount, size_t nShown) const {
        std::string strCount = Grouped(nCount) + (nCount == 1 ? " address" : " addresses");
        if (nShown < nCount) strCount += nShown == 0 ? ", none shown" : ", the first " + Grouped(nShown) + " shown";
        Remark(strText, strCount);
    }

    CAddresses FindAddresses(std::string const& strText) {
        qeadrs::CRecords const records = Dictionary().Dic().FromPart(strText);
        CAddresses addresses = JoinAnswers(Dictionary().Api().FromPart(strText), records, m_options.nLimit);
        for (size_t i = 0; i < addresses.vAddress.size() && i < records.size(); ++i)
            TakeOutNeighbours(records.Class()[i], addresses.vAddress[i]);
        return addresses;
    }

    // The entry of the address's code that has the most levels, all of them the address's: the very same texts of the
    // dictionary. Null when there is none: the code may be a subdivision's.
    tagADDR const* FindOwn(tagADDR const& addr, std::vector<tagADDR> const& vEntry) const {
        tagADDR const* pOwn = nullptr;
        size_t nMost = 0;
        for (tagADDR const& entry : vEntry) {
            bool bFits = entry.pszTown == addr.pszTown && entry.pszCity == addr.pszCity;
            size_t nLevels = 1;
            for (CLevel const& level : BELOW_A_TOWN) {
                if (entry.*level.pszText == nullptr) continue;
                bFits = bFits && entry.*level.pszText == addr.*level.pszText;
                ++nLevels;
            }
            if (!bFits || nLevels <= nMost) continue;
            pOwn = &entry;
            nMost = nLevels;
        }
        return pOwn;
    }

    void TakeOutNeighbours(tagADDR const& addr, CRow& row) {
        std::vector<tagADDR> vEntry;
        Dictionary().Class().GetAddrFromPostCode7(row[COL_CODE].c_str(), vEntry);
        tagADDR const* const pOwn = FindOwn(addr, vEntry);
        if (pOwn == nullptr) return;
        for (CLevel const& level : BELOW_A_TOWN) {
            // The unread rest of the text stands in the area, and is nobody's.
            if (pOwn->*level.pszText != nullptr || !Dictionary().Dic().File().Holds(addr.*level.pszText)) continue;
            row[level.nColumn].clear();
            row[level.nKanaColumn].clear();
        }
    }

    CFindOptions const& m_options;
};

} // namespace

EExit RunFind(CFindOptions const& options, CCommonOptions const& common) {
    return CFindCommand(options, common).Run(options.vText);
}

} // namespace qe
