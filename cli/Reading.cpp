// Reading.cpp - what was read of a text as columns, remarks, colours and JSON.
#include "cli/Reading.h"

#include "cli/Address.h"
#include "cli/Text.h"

#include <algorithm>

#include <nlohmann/json.hpp>

namespace qe {

namespace {

using CJson = nlohmann::ordered_json;

constexpr size_t PLACES_NAMED = 3; // in a remark

CJson TextOrNull(std::string_view strText) {
    return strText.empty() ? CJson() : CJson(std::string(strText));
}

CJson NumberOrNull(uint32_t n) {
    return n == QETEXT_NONE ? CJson() : CJson(n);
}

CJson Names(std::vector<std::string_view> const& vName) {
    CJson names = CJson::array();
    for (std::string_view const strName : vName) names.push_back(std::string(strName));
    return names;
}

std::vector<std::string_view> RemarkNames(uint32_t nRemarks) {
    constexpr std::pair<uint32_t, std::string_view> NAMES[] = {{QETEXT_CODE_CONTRADICTS, "code_contradicts"},
                                                               {QETEXT_CODE_DECIDED, "code_decided"},
                                                               {QETEXT_OLD_NAME, "old_name"},
                                                               {QETEXT_RENEWED, "renewed"},
                                                               {QETEXT_WORDS_BEHIND, "words_behind"}};
    std::vector<std::string_view> vName;
    for (auto const& [nBit, strName] : NAMES)
        if ((nRemarks & nBit) != 0) vName.push_back(strName);
    return vName;
}

// Where a name stands in a row.
struct CCellPlace {
    size_t nColumn;
    size_t nOffset;
};

// The part of a name that the text has not, or not so: what is left between the characters that both begin and end
// with. Supplied where the text has nothing in its place. A text that has more than the name marks all of it.
void MarkDifference(CCellPlace const& place, std::string const& strName, std::string const& strWritten,
                    std::vector<CMark>& vMark) {
    if (strName.empty() || strName == strWritten) return;
    size_t const nShorter = std::min(strName.size(), strWritten.size());
    size_t nBack = 0; // first: 余市町 has the end of 余市郡余市町
    while (nBack < nShorter && strName[strName.size() - 1 - nBack] == strWritten[strWritten.size() - 1 - nBack])
        ++nBack;
    while (nBack > 0 && IsWithinCharacter(strName[strName.size() - nBack])) --nBack;
    size_t nFront = 0;
    while (nFront < nShorter - nBack && strName[nFront] == strWritten[nFront]) ++nFront;
    while (nFront > 0 && nFront < strName.size() && IsWithinCharacter(strName[nFront])) --nFront;
    bool const bMore = nFront + nBack == strName.size();
    size_t const nFirst = bMore ? 0 : nFront;
    bool const bSupplied = !bMore && nFront + nBack == strWritten.size();
    vMark.push_back({place.nColumn, place.nOffset + nFirst, bMore ? strName.size() : strName.size() - nBack - nFront,
                     bSupplied ? EMark::Supplied : EMark::Folded});
}

} // namespace

CReading::CReading(qeadrs::CDictionary const& dictionary, std::string_view strText, QETEXTREADING const& reading)
    : m_dictionary(dictionary),
      m_strText(Trim(strText)),
      m_nBlanks(static_cast<size_t>(m_strText.data() - strText.data())),
      m_reading(reading),
      m_bOpen(HasSeveralCities()),
      m_place(m_bOpen ? Common() : reading.place) {
    m_strRest = Behind({reading.code, reading.pref, reading.city, reading.street, reading.town});
}

std::string_view CReading::Behind(std::initializer_list<QETEXTSPAN> spans) const {
    size_t nEnd = 0;
    for (QETEXTSPAN const& span : spans)
        if (span.nLength != 0) nEnd = std::max(nEnd, span.nOffset + span.nLength);
    return Trim(m_strText.substr(std::min(nEnd, m_strText.size())));
}

std::string_view CReading::Part(QETEXTSPAN const& span) const {
    return m_strText.substr(std::min(span.nOffset, m_strText.size()), span.nLength);
}

void CReading::Choose(QETEXTPLACE const& place) {
    m_place = place;
    m_bOpen = false;
}

bool CReading::HasSeveralCities() const {
    if (m_reading.nSureness != QETEXT_SEVERAL || m_reading.town.nLength != 0) return false;
    QETEXTPLACE const* const pEnd = m_reading.pCandidate + m_reading.nCandidate;
    return std::any_of(m_reading.pCandidate, pEnd,
                       [this](QETEXTPLACE const& place) { return place.nCity != m_reading.place.nCity; });
}

// The prefecture that all candidates lie in, if they do.
QETEXTPLACE CReading::Common() const {
    QETEXTPLACE place = {};
    for (uint32_t* pNode :
         {&place.nPref, &place.nCity, &place.nTown, &place.nArea, &place.nBuilding, &place.nFloor, &place.nEntry})
        *pNode = QETEXT_NONE;
    QETEXTPLACE const* const pEnd = m_reading.pCandidate + m_reading.nCandidate;
    uint32_t const nPref = m_reading.place.nPref;
    if (std::any_of(m_reading.pCandidate, pEnd, [=](QETEXTPLACE const& other) { return other.nPref != nPref; }))
        return place;
    place.pszPref = m_reading.place.pszPref;
    place.nPref = nPref;
    return place;
}

CRow CReading::Columns() const {
    CRow row;
    row.reserve(10); // with an organisation and readings behind them
    for (char const* psz :
         {m_place.pszPostCode, m_place.pszOldCode, m_place.pszPref, m_place.pszCity, m_place.pszTown})
        row.emplace_back(Text(psz));
    row.emplace_back(m_strRest);
    return row;
}

CRow CReading::Kana() const {
    return {Kana(m_place.nPref), Kana(m_place.nCity), Kana(m_place.nTown)};
}

std::string CReading::Kana(uint32_t nNode) const {
    return std::string(KanaOf(m_dictionary, m_dictionary.Class().GetAddrNode(nNode)));
}

std::string CReading::CityName(QETEXTPLACE const& place) const {
    return std::string(Text(place.pszPref)).append(Text(place.pszCity));
}

std::string CReading::TownName(QETEXTPLACE const& place) const {
    return CityName(place).append(Text(place.pszTown));
}

// As it is written.
std::string CReading::Street() const {
    return Clean(Trim(Part(m_reading.street)));
}

bool CReading::HasLatest() const {
    return HasTown() && ((m_reading.nRemarks & QETEXT_OLD_NAME) == 0 || IsRenewed());
}

CRow CReading::LatestColumns() const {
    std::string strAddress;
    for (char const* psz : {Latest().pszPref, Latest().pszCity})
        strAddress += Clean(Text(psz)); // one by one, as they are marked
    strAddress += Street() + Clean(Text(Latest().pszTown));
    strAddress += m_strRest;
    return {std::move(strAddress), std::string(Text(m_place.pszPostCode)), std::string(Text(m_place.pszOldCode)),
            IsRenewed() ? "yes" : "no", std::string(Text(Latest().pszPostCode))};
}

std::string CReading::WhyNotFound() const {
    if (m_bOpen) {
        std::string const strDoubt = CodeDoubt();
        return Grouped(m_reading.nCandidate) + " cities fit: " + DescribeFirst(Candidates(0)) +
               (strDoubt.empty() ? "" : "; ") + strDoubt;
    }
    qeadrs::CRecord record;
    record.strPref = Text(m_place.pszPref);
    record.strCity = Text(m_place.pszCity);
    record.strTown = Text(m_place.pszTown);
    std::string const strLevels = DescribeLevels(record);
    return strLevels.empty() ? "" : "recognised: " + strLevels;
}

std::string CReading::Doubt(bool bRenews) const {
    std::string strDoubt;
    auto const Add = [&strDoubt](std::string const& str) { strDoubt += (strDoubt.empty() ? "" : "; ") + str; };
    if (m_reading.nSureness == QETEXT_SEVERAL && m_reading.nCandidate > 1) Add(DescribeOthers());
    if (m_reading.nSureness == QETEXT_TOWN_NOT_FOUND && !m_strRest.empty())
        Add("no town recognised; the code is the city's");
    std::string const strCode = CodeDoubt();
    if (!strCode.empty()) Add(strCode);
    if ((m_reading.nRemarks & QETEXT_OLD_NAME) != 0 && !bRenews)
        Add("a place of an earlier edition; `qeadrs latest` has its latest form");
    return strDoubt;
}

std::string CReading::CodeDoubt() const {
    if ((m_reading.nRemarks & QETEXT_CODE_CONTRADICTS) == 0) return "";
    return "the code " + Clean(Part(m_reading.code)) + " in front is another place's";
}

std::vector<QETEXTPLACE> CReading::Candidates(size_t nFirst) const {
    return {m_reading.pCandidate + nFirst, m_reading.pCandidate + m_reading.nCandidate};
}

std::string CReading::DescribeOthers() const {
    size_t const nOthers = m_reading.nCandidate - 1;
    return Grouped(nOthers) + (nOthers == 1 ? " other place fits: " : " other places fit: ") +
           DescribeFirst(Candidates(1));
}

std::string CReading::DescribeFirst(std::vector<QETEXTPLACE> const& vPlace) const {
    std::string strPlaces;
    for (size_t i = 0; i < std::min(vPlace.size(), PLACES_NAMED); ++i)
        strPlaces += (i == 0 ? "" : ", ") + Describe(vPlace[i]);
    return strPlaces + (vPlace.size() > PLACES_NAMED ? ", ..." : "");
}

std::vector<CMark> CReading::Marks() const {
    std::vector<CMark> vMark;
    MarkDifference({2, 0}, Clean(Text(m_place.pszPref)), Clean(Part(m_reading.pref)), vMark);
    MarkDifference({3, 0}, Clean(Text(m_place.pszCity)), Clean(Part(m_reading.city)), vMark);
    MarkDifference({4, 0}, Clean(Text(m_place.pszTown)), Clean(Part(m_reading.town)), vMark);
    return vMark;
}

std::vector<CMark> CReading::LatestMarks() const {
    std::vector<CMark> vMark;
    size_t nOffset = 0;
    auto const Mark = [&](char const* psz, QETEXTSPAN const& span) {
        std::string const strName = Clean(Text(psz));
        MarkDifference({0, nOffset}, strName, Clean(Part(span)), vMark);
        nOffset += strName.size();
    };
    Mark(Latest().pszPref, m_reading.pref);
    Mark(Latest().pszCity, m_reading.city);
    nOffset += Street().size();
    Mark(Latest().pszTown, m_reading.town);
    return vMark;
}

std::string CReading::Describe(QETEXTPLACE const& place) const {
    std::string strPlace;
    for (char const* psz : {place.pszPref, place.pszCity, place.pszTown}) strPlace += Text(psz);
    std::string strAll(Text(place.pszPostCode));
    for (std::string_view const str :
         {std::string_view(strPlace), Text(place.pszArea), Text(place.pszBuilding), Text(place.pszFloor)})
        if (!str.empty()) strAll.append(strAll.empty() ? "" : " ").append(str);
    return Clean(strAll);
}

std::string CReading::Members() const {
    auto const Below = [this](QETEXTPLACE const& place, CJson& object) {
        object["area"] = TextOrNull(Text(place.pszArea));
        object["building"] = TextOrNull(Text(place.pszBuilding));
        object["floor"] = TextOrNull(Text(place.pszFloor));
        object["entry"] = NumberOrNull(place.nEntry);
        object["nodes"] = {{"prefecture", NumberOrNull(place.nPref)},   {"city", NumberOrNull(place.nCity)},
                           {"town", NumberOrNull(place.nTown)},         {"area", NumberOrNull(place.nArea)},
                           {"building", NumberOrNull(place.nBuilding)}, {"floor", NumberOrNull(place.nFloor)}};
    };
    auto const WholePlace = [&](QETEXTPLACE const& place) {
        CJson object;
        object["postal_code"] = TextOrNull(Text(place.pszPostCode));
        object["old_code"] = TextOrNull(Text(place.pszOldCode));
        object["prefecture"] = TextOrNull(Text(place.pszPref));
        object["city"] = TextOrNull(Text(place.pszCity));
        object["town"] = TextOrNull(Text(place.pszTown));
        Below(place, object);
        return object;
    };
    CJson members;
    members["sureness"] = std::string(qeadrs::SurenessName(m_reading.nSureness));
    members["supplied"] = Names(qeadrs::SuppliedNames(m_reading.nSupplied));
    members["foldings"] = Names(qeadrs::FoldingNames(m_reading.nFoldings));
    members["remarks"] = Names(RemarkNames(m_reading.nRemarks));
    members["typed_code"] = TextOrNull(Part(m_reading.code));
    QETEXTREADING chosen = m_reading;
    chosen.place = m_place;
    members["canonical"] = m_bOpen ? CJson() : TextOrNull(qeadrs::CAddressText::Canonical(chosen, m_strText));
    Below(m_place, members);
    std::pair<char const*, QETEXTSPAN> const SPANS[] = {
        {"code", m_reading.code},         {"prefecture", m_reading.pref}, {"city", m_reading.city},
        {"street", m_reading.street},     {"town", m_reading.town},       {"area", m_reading.area},
        {"building", m_reading.building}, {"floor", m_reading.floor},     {"rest", m_reading.rest}};
    for (auto const& [pszName, span] : SPANS)
        members["spans"][pszName] =
            span.nLength == 0 ? CJson() : CJson{{"offset", Offset(span)}, {"length", span.nLength}};
    members["latest"] = IsRenewed() ? WholePlace(m_reading.latest) : CJson();
    members["candidates"] = CJson::array();
    for (size_t i = 0; i < m_reading.nCandidate; ++i)
        members["candidates"].push_back(WholePlace(m_reading.pCandidate[i]));
    std::string const strObject = members.dump(-1, ' ', false, CJson::error_handler_t::replace);
    return strObject.substr(1, strObject.size() - 2);
}

} // namespace qe
