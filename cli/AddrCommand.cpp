// AddrCommand.cpp - `qeadrs addr`: from an address, and an organisation at it, to its postal code.
//
// The API gives the codes (PstAdrGetZip), and no more than them. The class reads the same text once more and gives
// the levels, what it left unread, and the organisation behind the code.
#include "cli/AddrCommand.h"

#include "cli/Address.h"
#include "cli/Command.h"
#include "cli/Text.h"

#include <cstring>

namespace qe {

namespace {

// Positions in an organisation's name are counted in 16 bits while blanks are removed from it.
constexpr size_t OFFICE_LENGTH = 65000;

class CAddrCommand : public CCommand {
  public:
    CAddrCommand(CAddrOptions const& options, CCommonOptions const& common)
        : CCommand(common, Columns(options), "address"),
          m_options(options),
          m_strOffice(ReadOffice(options.strOffice.value_or(""))) {}

  private:
    static std::vector<std::string> Columns(CAddrOptions const& options) {
        std::vector<std::string> vKey = {"postal_code", "old_code", "prefecture", "city", "town", "rest"};
        if (options.strOffice) vKey.emplace_back("organisation");
        if (options.bKana) vKey.insert(vKey.end(), {"prefecture_kana", "city_kana", "town_kana"});
        return vKey;
    }

    // The library removes other blanks itself, but leaves a byte of each wide one.
    static std::string ReadOffice(std::string const& strText) {
        std::string strOffice = DropWideBlanks(Trim(strText));
        if (strOffice.size() <= OFFICE_LENGTH) return strOffice;
        throw CFailure(EXIT_USAGE, Quote(strOffice) + " has " + Grouped(strOffice.size()) +
                                       " bytes; the name of an organisation may have " + Grouped(OFFICE_LENGTH) +
                                       ".");
    }

    std::string ReadQuery(std::string const& strText) const override { return ReadAddressField(strText); }

    void Answer(std::string const& strAddress) override {
        qeadrs::CResult<qeadrs::CCodes> const codes = Dictionary().Api().CodeOf(strAddress, m_strOffice);
        tagADDR addr(0);
        Dictionary().Class().DivideAddr(strAddress.c_str(), &addr);
        if (!codes) {
            std::string const strLevels = DescribeLevels(Dictionary().Dic().Read(addr));
            return ReportNotFound(strAddress, strLevels.empty() ? "" : "recognised: " + strLevels);
        }
        bool const bOwnCode = codes->strCode == Dictionary().Text(addr.pszPostCode); // not an organisation's
        CFoundPlace const place = FindPlace(Dictionary().Dic(), addr);
        CRow row = {codes->strCode,    codes->strOldCode, Name(place.pPref),
                    Name(place.pCity), Name(place.pTown), addr.pszArea};
        if (m_options.strOffice) row.push_back(bOwnCode ? "" : FindOffice(*codes, addr));
        if (m_options.bKana) row.insert(row.end(), {Kana(place.pPref), Kana(place.pCity), Kana(place.pTown)});
        Print(std::move(row));
        std::string const strDoubt = bOwnCode ? DescribeDoubt(Dictionary().Dic(), addr) : "";
        if (!strDoubt.empty()) Remark(strAddress, strDoubt);
        if (bOwnCode && !m_strOffice.empty()) RemarkOffice(strAddress, addr);
    }

    // --- levels ------------------------------------------------------------------------------------------------

    std::string Name(tagADDRNODE const* pNode) { return std::string(NameOf(Dictionary().Dic(), pNode)); }

    // The reading stands right behind the name's NUL.
    std::string Kana(tagADDRNODE const* pNode) {
        if (pNode == nullptr) return "";
        return Dictionary().Text(Dictionary().Class().GetString(pNode->nName + Name(pNode).size() + 1));
    }

    // --- organisation ------------------------------------------------------------------------------------------

    // The organisation that gave its code: the API does not name it. "" when it cannot be told.
    std::string FindOffice(qeadrs::CCodes const& codes, tagADDR const& addr) {
        std::vector<tagADDR> vAddr;
        Dictionary().Class().GetAddrFromPostCode7(codes.strCode.c_str(), vAddr);
        std::vector<std::string> vOffice;
        for (tagADDR const& candidate : vAddr) {
            // The same texts of the dictionary: the same nodes.
            bool const bThere = candidate.pszPref == addr.pszPref && candidate.pszCity == addr.pszCity &&
                                candidate.pszTown == addr.pszTown;
            if (bThere && candidate.pszOffice != nullptr) vOffice.push_back(Dictionary().Text(candidate.pszOffice));
        }
        return vOffice.size() == 1 ? vOffice[0] : ChooseOffice(vOffice, codes.strOffice);
    }

    // Of organisations that share a code, the one that the API has met: the first name, as it is or without blanks and
    // legal form, that begins with what the API has left of the name asked for.
    std::string ChooseOffice(std::vector<std::string> const& vOffice, std::string const& strStart) {
        std::string strChosen;
        std::string strFirst;
        for (std::string const& strOffice : vOffice)
            for (std::string const& strName : {strOffice, Stripped(strOffice)}) {
                if (strName.compare(0, strStart.size(), strStart) != 0) continue;
                if (!strChosen.empty() && strName >= strFirst) continue;
                strChosen = strOffice;
                strFirst = strName;
            }
        return strChosen;
    }

    std::string Stripped(std::string const& strOffice) {
        std::string strName = DropWideBlanks(strOffice);
        Dictionary().Class().SearchInc(strName.data());
        strName.resize(std::strlen(strName.c_str())); // it has become shorter in place
        return strName;
    }

    void RemarkOffice(std::string const& strAddress, tagADDR const& addr) const {
        std::string strMissing;
        auto const Require = [&strMissing](char const* pszLevel, char const* pszName) {
            if (pszName == nullptr) strMissing += (strMissing.empty() ? "" : " and no ") + std::string(pszLevel);
        };
        Require("prefecture", addr.pszPref);
        Require("city", addr.pszCity);
        Require("town", addr.pszTown);
        Remark(strAddress, "organisation " + Shorten(m_strOffice) +
                               (strMissing.empty() ? " has no code of its own in this town"
                                                   : " not found: the text names no " + strMissing));
    }

    CAddrOptions const& m_options;
    std::string m_strOffice;
};

} // namespace

EExit RunAddr(CAddrOptions const& options, CCommonOptions const& common) {
    return CAddrCommand(options, common).Run(options.vText);
}

} // namespace qe
