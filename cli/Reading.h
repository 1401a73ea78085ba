// Reading.h - an address as people write it, read, as the commands print it.
//
//   qeadrs::CAddressText reader(dictionary.Class());
//   CReading const reading(dictionary, strText, reader.Read(Trim(strText)));
//   if (reading.HasCode()) Print(reading.Columns());       // 0640820, 064, 北海道, 札幌市中央区, 大通西, ２５丁目
//
// Everything is borrowed, and the reading is the reader's until its next call.
#ifndef QEADRS_CLI_READING_H
#define QEADRS_CLI_READING_H

#include "api/qeadrs.hpp"
#include "cli/Output.h"
#include "text/AddressText.h"

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace qe {

class CReading {
  public:
    // REQUIRES: a reading of the text without the blanks around it. A text without a town that fits several cities
    // means none of them: its place is what they have in common.
    CReading(qeadrs::CDictionary const& dictionary, std::string_view strText, QETEXTREADING const& reading);

    QETEXTREADING const& Record() const { return m_reading; }
    QETEXTPLACE const& Place() const { return m_place; }
    // Another one of the candidates in the place of the likeliest.
    void Choose(QETEXTPLACE const& place);
    // What stands behind prefecture, city and town; behind the city.
    std::string_view Rest() const { return m_strRest; }
    std::string_view BehindCity() const { return Behind({m_reading.code, m_reading.pref, m_reading.city}); }

    bool HasCode() const { return !Text(m_place.pszPostCode).empty(); }
    bool IsRenewed() const { return (m_reading.nRemarks & QETEXT_RENEWED) != 0; }
    bool HasTown() const { return !Text(m_place.pszTown).empty(); }

    // The address as `qeadrs addr` prints it: postal code, old code, prefecture, city, town, rest.
    CRow Columns() const;
    // Prefecture, city and town in kana.
    CRow Kana() const;
    // Prefecture and city of a place in one; with its town.
    std::string CityName(QETEXTPLACE const& place) const;
    std::string TownName(QETEXTPLACE const& place) const;

    // The address in its latest form as `qeadrs latest` prints it: address, with streets of Kyoto as the text has
    // them; postal code and old code as the text is written, "yes" or "no", latest code.
    CRow LatestColumns() const;

    // Whether there is such a form: the town is known, and what replaced it if it was replaced.
    bool HasLatest() const;

    // Why there is no answer, for a remark: "recognised: prefecture 東京都, city 千代田区", "2 cities fit: ..."; "" for
    // nothing to say.
    std::string WhyNotFound() const;
    // What speaks against the answer, or has to be known of it, for a remark; "" for nothing. That a name is an old one
    // is left out where the answer renews it.
    std::string Doubt(bool bRenews) const;
    // The part of it that holds whichever candidate is chosen: a code in front of the address that is another place's.
    std::string CodeDoubt() const;

    // Where the names of Columns() and the address of LatestColumns() are not as the text has them.
    std::vector<CMark> Marks() const;
    std::vector<CMark> LatestMarks() const;

    // All that is known beyond the columns, as members of a JSON object: `"sureness":"exact",...`.
    std::string Members() const;

    // Code and names of a place in one line; of many places the first three.
    std::string Describe(QETEXTPLACE const& place) const;
    std::string DescribeFirst(std::vector<QETEXTPLACE> const& vPlace) const;

    // A part of the text, and where it stands in the text that was given.
    std::string_view Part(QETEXTSPAN const& span) const;
    size_t Offset(QETEXTSPAN const& span) const { return m_nBlanks + span.nOffset; }

    // A text of the reading's places, "" for null and outside of the dictionary.
    std::string_view Text(char const* psz) const { return m_dictionary.File().Text(psz); }

  private:
    QETEXTPLACE const& Latest() const { return IsRenewed() ? m_reading.latest : m_place; }
    std::string_view Behind(std::initializer_list<QETEXTSPAN> spans) const;
    std::string Street() const;
    std::string Kana(uint32_t nNode) const;
    bool HasSeveralCities() const;
    QETEXTPLACE Common() const;
    std::vector<QETEXTPLACE> Candidates(size_t nFirst) const;
    std::string DescribeOthers() const;

    qeadrs::CDictionary const& m_dictionary;
    std::string_view m_strText; // without the blanks around it ...
    size_t m_nBlanks;           // ... and so many bytes of them in front
    QETEXTREADING const& m_reading;
    bool m_bOpen; // which of several cities is not known
    QETEXTPLACE m_place;
    std::string_view m_strRest; // behind the names of prefecture, city and town
};

} // namespace qe

#endif
