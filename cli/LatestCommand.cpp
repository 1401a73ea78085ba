// LatestCommand.cpp - `qeadrs latest`: from an address to its latest form.
//
// The address is read as people write it, and given in the dictionary's spelling. With --exact the API rewrites it
// (PstAdrGetLatestAdr), but does not tell whether it knew it, and cuts what it writes: the class tells both.
#include "cli/LatestCommand.h"

#include "cli/Address.h"
#include "cli/Command.h"
#include "cli/Reading.h"
#include "cli/Text.h"
#include "text/AddressText.h"

#include <optional>

namespace qe {

namespace {

bool AreEqual(char const* psz, char const* pszOther) {
    return psz == nullptr || pszOther == nullptr ? psz == pszOther : std::string_view(psz) == pszOther;
}

std::vector<std::string> const COLUMNS = {"address", "postal_code", "old_code", "changed", "latest_code"};

class CExactLatest : public CCommand {
  public:
    explicit CExactLatest(CCommonOptions const& common) : CCommand(common, COLUMNS, "address") {}

  private:
    std::string ReadQuery(std::string const& strText) const override { return ReadAddressField(strText); }

    void Answer(std::string const& strAddress) override {
        tagADDR latest(0);
        if (Dictionary().Class().GetLatestAddr(strAddress.c_str(), latest) == 0) {
            std::string const strLevels = DescribeLevels(Dictionary().Dic().Read(latest));
            return ReportNotFound(strAddress, strLevels.empty() ? "" : "recognised: " + strLevels);
        }
        qeadrs::CLatest const written = Demand(Dictionary().Api().Latest(strAddress));
        std::string const strLatest = Whole(written.strAddress, latest);
        Print({strLatest, written.strCode, written.strOldCode, IsChanged(strAddress, latest) ? "yes" : "no",
               LatestCode(strLatest)});
    }

    // The address that the API has written, with the end that it has cut off.
    std::string Whole(std::string const& strWritten, tagADDR const& latest) {
        std::string strJoin;
        for (char const* psz : {latest.pszPref, latest.pszCity, latest.pszTown}) strJoin += Dictionary().Text(psz);
        strJoin += latest.pszArea; // there, and in the caller's text, when a town was found
        bool const bCut =
            strJoin.size() > strWritten.size() && strJoin.compare(0, strWritten.size(), strWritten) == 0;
        return bCut ? strJoin : strWritten;
    }

    bool IsChanged(std::string const& strAddress, tagADDR const& latest) {
        tagADDR given(0);
        Dictionary().Class().DivideAddr(strAddress.c_str(), &given);
        return !AreEqual(given.pszPref, latest.pszPref) || !AreEqual(given.pszCity, latest.pszCity) ||
               !AreEqual(given.pszTown, latest.pszTown);
    }

    // The code of the address as it is now; "" when it has none. The names may have become longer than the API's
    // field: the class, which the API asks, has no limit.
    std::string LatestCode(std::string const& strLatest) {
        if (strLatest.size() > qeadrs::ADDRESS_LENGTH)
            return std::string(Dictionary().Dic().CodeOf(strLatest)[0].strCode);
        qeadrs::CResult<qeadrs::CCodes> const codes = Dictionary().Api().CodeOf(strLatest);
        return codes ? codes->strCode : "";
    }
};

class CReadLatest : public CCommand {
  public:
    explicit CReadLatest(CCommonOptions const& common) : CCommand(common, COLUMNS, "address") {}

  private:
    // The text as it is: what is told of it counts its bytes.
    std::string ReadQuery(std::string const& strText) const override {
        ReadAddressText(strText);
        return strText;
    }

    void Prepare() override { m_reader.emplace(Dictionary().Class()); }

    void Answer(std::string const& strText) override {
        std::string_view const strAddress = Trim(strText);
        CReading const reading(Dictionary().Dic(), strText, m_reader->Read(strAddress, QETEXT_RENEW));
        if (!reading.HasLatest()) return ReportNotFound(strAddress, reading.WhyNotFound());
        CRowExtra extra;
        if (HasColours()) extra.vMark = reading.LatestMarks();
        if (Form() == EForm::Json) extra.strMembers = reading.Members();
        Print(reading.LatestColumns(), std::move(extra));
        std::string const strDoubt = reading.Doubt(true);
        if (!strDoubt.empty()) Remark(strAddress, strDoubt);
    }

    std::optional<qeadrs::CAddressText> m_reader;
};

} // namespace

EExit RunLatest(CLatestOptions const& options, CCommonOptions const& common) {
    if (options.bExact) return CExactLatest(common).Run(options.vText);
    return CReadLatest(common).Run(options.vText);
}

} // namespace qe
