// AddrCommand.cpp - `qeadrs addr`: from an address, and an organisation at it, to its postal code.
//
// The address is read as people write it, and the class is asked for an organisation at the place found. With --exact
// the API gives the codes (PstAdrGetZip), and no more than them: the class reads the same text once more and gives the
// levels, what it left unread, and the organisation behind the code.
#include "cli/AddrCommand.h"

#include "cli/Address.h"
#include "cli/Command.h"
#include "cli/Reading.h"
#include "cli/Text.h"
#include "text/AddressText.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <set>

namespace qe {

namespace {

// Positions in an organisation's name are counted in 16 bits while blanks are removed from it.
constexpr size_t OFFICE_LENGTH = 65000;

// What both ways of reading have in common: the columns, and the organisation.
class CAddrCommand : public CCommand {
  protected:
    CAddrCommand(CAddrOptions const& options, CCommonOptions const& common)
        : CCommand(common, Columns(options), "address"),
          m_options(options),
          m_strOffice(ReadOffice(options.strOffice.value_or(""))) {}

    CAddrOptions const& Options() const { return m_options; }
    std::string const& Office() const { return m_strOffice; }

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

    void RemarkOffice(std::string_view strAddress, tagADDR const& addr) const {
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

    std::string Stripped(std::string const& strOffice) {
        std::string strName = DropWideBlanks(strOffice);
        Dictionary().Class().SearchInc(strName.data());
        strName.resize(std::strlen(strName.c_str())); // it has become shorter in place
        return strName;
    }

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

    CAddrOptions const& m_options;
    std::string m_strOffice;
};

class CExactAddr : public CAddrCommand {
  public:
    CExactAddr(CAddrOptions const& options, CCommonOptions const& common) : CAddrCommand(options, common) {}

  private:
    std::string ReadQuery(std::string const& strText) const override { return ReadAddressField(strText); }

    void Answer(std::string const& strAddress) override {
        qeadrs::CResult<qeadrs::CCodes> const codes = Dictionary().Api().CodeOf(strAddress, Office());
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
        if (Options().strOffice) row.push_back(bOwnCode ? "" : FindOffice(*codes, addr));
        if (Options().bKana) row.insert(row.end(), {Kana(place.pPref), Kana(place.pCity), Kana(place.pTown)});
        Print(std::move(row));
        std::string const strDoubt = bOwnCode ? DescribeDoubt(Dictionary().Dic(), addr) : "";
        if (!strDoubt.empty()) Remark(strAddress, strDoubt);
        if (bOwnCode && !Office().empty()) RemarkOffice(strAddress, addr);
    }

    std::string Name(tagADDRNODE const* pNode) { return std::string(NameOf(Dictionary().Dic(), pNode)); }
    std::string Kana(tagADDRNODE const* pNode) { return std::string(KanaOf(Dictionary().Dic(), pNode)); }
};

class CReadAddr : public CAddrCommand {
  public:
    CReadAddr(CAddrOptions const& options, CCommonOptions const& common) : CAddrCommand(options, common) {}

  private:
    // The text as it is: what is told of it counts its bytes.
    std::string ReadQuery(std::string const& strText) const override {
        ReadAddressText(strText);
        return strText;
    }

    void Prepare() override { m_reader.emplace(Dictionary().Class()); }

    void Answer(std::string const& strText) override {
        std::string_view const strAddress = Trim(strText);
        CReading reading(Dictionary().Dic(), strText, m_reader->Read(strAddress));
        std::vector<COfficeTown> const vTown = FindTowns(reading);
        if (!vTown.empty()) reading.Choose(vTown[0].place);
        CRow row = reading.Columns();
        std::vector<CMark> vMark = HasColours() ? reading.Marks() : std::vector<CMark>();
        if (!vTown.empty()) Replace(row, vMark, vTown[0]);
        if (row[0].empty()) return ReportNotFound(strAddress, reading.WhyNotFound());
        if (Options().strOffice) row.push_back(vTown.empty() ? "" : FindOffice(vTown[0].codes, vTown[0].addr));
        if (Options().bKana) {
            for (std::string& strKana : reading.Kana()) row.push_back(std::move(strKana));
            if (!vTown.empty()) row.back() = KanaOf(Dictionary().Dic(), vTown[0].addr.pTownNode);
        }
        CRowExtra extra;
        extra.vMark = std::move(vMark);
        if (Form() == EForm::Json) extra.strMembers = reading.Members();
        Print(std::move(row), std::move(extra));
        // Of several places it is the organisation's.
        std::string const strDoubt = vTown.empty() ? reading.Doubt(false) : reading.CodeDoubt();
        if (!strDoubt.empty()) Remark(strAddress, strDoubt);
        if (vTown.empty() && !Office().empty()) RemarkOffice(strAddress, NamesOf(reading));
        if (vTown.size() > 1) RemarkTowns(strAddress, reading, vTown);
    }

    // A town in which the organisation asked for has a code of its own.
    struct COfficeTown {
        QETEXTPLACE place; // what was read
        tagADDR addr;      // the town: the one that was read, or one that only organisations have
        qeadrs::CCodes codes;
        std::string strRest; // what stands behind it
    };

    // Those that the text can mean, in their order. Where none of the towns that were read has it, the text behind
    // the city may begin with the name of one that only organisations have, as they spell it.
    std::vector<COfficeTown> FindTowns(CReading const& reading) {
        std::vector<COfficeTown> vTown;
        if (Office().empty()) return vTown;
        for (bool const bRead : {true, false}) {
            std::set<std::string> lookedAt;
            for (size_t i = 0; i < reading.Record().nCandidate; ++i) {
                COfficeTown town = {reading.Record().pCandidate[i], tagADDR(0), {}, std::string(reading.Rest())};
                std::string const strName = bRead ? reading.TownName(town.place) : reading.CityName(town.place);
                if (!lookedAt.insert(strName).second) continue;
                bool const bThere =
                    bRead ? IsInTown(town, strName) : IsBehindCity(town, strName, reading.BehindCity());
                if (bThere) vTown.push_back(std::move(town));
            }
            if (!vTown.empty()) break;
        }
        return vTown;
    }

    // Whether it has a code of its own in the town that was read: the class knows towns by their names only.
    bool IsInTown(COfficeTown& town, std::string const& strTown) {
        return !Dictionary().Text(town.place.pszTown).empty() && IsAt(town, strTown);
    }

    bool IsBehindCity(COfficeTown& town, std::string const& strCity, std::string_view strBehind) {
        if (!IsAt(town, strCity + std::string(strBehind.substr(0, qeadrs::ADDRESS_LENGTH)))) return false;
        std::string const strName = Dictionary().Text(town.addr.pszTown);
        if (strBehind.substr(0, strName.size()) != strName) return false;
        town.strRest = Trim(strBehind.substr(strName.size()));
        return Dictionary().Class().GetAddrInfo(town.addr.pTownNode->nInfo) == nullptr;
    }

    bool IsAt(COfficeTown& town, std::string const& strAddress) {
        Dictionary().Class().DivideAddr(strAddress.c_str(), &town.addr);
        if (town.addr.pTownNode == nullptr) return false;
        qeadrs::CRecords const found = Dictionary().Dic().CodeOf(strAddress, Office());
        town.codes = {std::string(found[0].strCode), std::string(found[0].strOldCode), Stripped(Office())};
        return !town.codes.strCode.empty() && town.codes.strCode != Dictionary().Text(town.addr.pszPostCode);
    }

    // The organisation's code, and its town, which is as the text has it where another one was read.
    void Replace(CRow& row, std::vector<CMark>& vMark, COfficeTown const& town) {
        row[COL_CODE] = town.codes.strCode;
        row[COL_OLD_CODE] = town.codes.strOldCode;
        std::string const strTown = Dictionary().Text(town.addr.pszTown);
        if (row[COL_TOWN] == strTown) return;
        row[COL_TOWN] = strTown;
        row[COL_TOWN + 1] = town.strRest;
        auto const IsOfTown = [](CMark const& mark) { return mark.nColumn == COL_TOWN; };
        vMark.erase(std::remove_if(vMark.begin(), vMark.end(), IsOfTown), vMark.end());
    }

    void RemarkTowns(std::string_view strAddress, CReading const& reading,
                     std::vector<COfficeTown> const& vTown) const {
        std::vector<QETEXTPLACE> vOther;
        for (size_t i = 1; i < vTown.size(); ++i) {
            QETEXTPLACE place = {};
            place.pszPref = vTown[i].addr.pszPref;
            place.pszCity = vTown[i].addr.pszCity;
            place.pszTown = vTown[i].addr.pszTown;
            vOther.push_back(place);
        }
        Remark(strAddress, "organisation " + Shorten(Office()) + " has a code of its own in " +
                               Grouped(vOther.size()) +
                               (vOther.size() == 1 ? " other town, too: " : " other towns, too: ") +
                               reading.DescribeFirst(vOther));
    }

    // The names that were found, as the class gives them.
    static tagADDR NamesOf(CReading const& reading) {
        QETEXTPLACE const& place = reading.Place();
        tagADDR addr(0);
        addr.pszPref = place.pszPref;
        addr.pszCity = place.pszCity;
        addr.pszTown = reading.HasTown() ? place.pszTown : nullptr;
        return addr;
    }

    std::optional<qeadrs::CAddressText> m_reader;
};

} // namespace

EExit RunAddr(CAddrOptions const& options, CCommonOptions const& common) {
    if (options.bExact) return CExactAddr(options, common).Run(options.vText);
    return CReadAddr(options, common).Run(options.vText);
}

} // namespace qe
