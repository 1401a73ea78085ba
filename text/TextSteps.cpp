// TextSteps.cpp - how a text was read, told step by step.
#include "text/DictionaryWalk.h"
#include "text/TextReader.h"

#include <string>

namespace qeadrs {

namespace {

std::string Join(std::vector<std::string_view> const& vName) {
    std::string str;
    for (std::string_view const strName : vName) str += (str.empty() ? "" : ", ") + std::string(strName);
    return str;
}

std::string Described(QETEXTPLACE const& place) {
    std::string str;
    for (char const* psz :
         {place.pszPref, place.pszCity, place.pszTown, place.pszArea, place.pszBuilding, place.pszFloor})
        if (psz != nullptr && *psz != '\0') str += (str.empty() ? "" : " ") + std::string(psz);
    return str + (place.pszPostCode == nullptr ? ", without a code" : ", " + std::string(place.pszPostCode));
}

// Why an answer is no surer than it is.
std::string Reason(QETEXTREADING const& reading) {
    switch (reading.nSureness) {
    case QETEXT_NOTHING:
        return "the text begins with no prefecture and no city";
    case QETEXT_CITY_NOT_FOUND:
        return "no city of the prefecture stands behind it";
    case QETEXT_TOWN_NOT_FOUND:
        return "the text names no town of the city; the code is the city's";
    case QETEXT_SEVERAL:
        return "the text does not say which of " + std::to_string(reading.nCandidate) + " places it means";
    case QETEXT_SUPPLIED:
        return "what the text leaves out was supplied: " + Join(SuppliedNames(reading.nSupplied));
    case QETEXT_FOLDED:
        return "written in another way than the dictionary's: " + Join(FoldingNames(reading.nFoldings));
    default:
        return "as the dictionary spells it";
    }
}

} // namespace

void CTextReader::TellCities() const {
    for (CCityLength const* p = m_aLength; p != m_aLength + m_nLengths; ++p)
        Step("city_name", Span(0, p->nTokens), "begins like the name of a city");
    for (CCity const& city : m_vCity) Step("city", Span(0, city.nTokens), Described(PlaceOf(city.nNode)));
}

void CTextReader::TellTowns() const {
    for (CTown const& town : m_vTown) {
        if (town.bStreet) Step("street", Span(town.city.nTokens, town.nBegin), "streets in front of the town");
        Step("town", Span(town.nBegin, town.nEnd),
             Described(PlaceOf(town.nNode)) + (town.bDivided ? "; it has subdivisions or buildings" : ""));
    }
}

void CTextReader::TellAnswer(QETEXTREADING const& reading) const {
    if (reading.area.nLength != 0) Step("area", reading.area, "the name of a subdivision");
    if (reading.building.nLength != 0) Step("building", reading.building, "a building of the town");
    if (reading.floor.nLength != 0) Step("floor", reading.floor, "a floor of it");
    bool const bNumber = reading.place.pszArea != nullptr && reading.area.nLength == 0 && reading.rest.nLength != 0 &&
                         reading.street.nLength == 0 && reading.nSureness != QETEXT_SEVERAL;
    if (bNumber) Step("number", reading.rest, "the number chooses " + std::string(reading.place.pszArea));
    if ((reading.nRemarks & QETEXT_CODE_DECIDED) != 0)
        Step("code", reading.code, "the code in front decides between the candidates");
    if ((reading.nRemarks & QETEXT_CODE_CONTRADICTS) != 0)
        Step("code", reading.code, "the code in front is none of this place");
    for (size_t i = 0; i < m_vCandidate.size(); ++i) Step("candidate", {0, 0}, Described(m_vCandidate[i]));
    if (reading.nFoldings != 0)
        Step("folding", {0, 0}, "taken for the same: " + Join(FoldingNames(reading.nFoldings)));
    if ((reading.nRemarks & QETEXT_OLD_NAME) != 0) Step("old_name", reading.town, "an old name");
    if ((reading.nRemarks & QETEXT_RENEWED) != 0) Step("latest", {0, 0}, Described(reading.latest));
    bool const bWords = (reading.nRemarks & QETEXT_WORDS_BEHIND) != 0;
    if (reading.rest.nLength != 0)
        Step("rest", reading.rest,
             bWords ? "left as it is written; the town may be the beginning of a longer name"
                    : "left as it is written");
    Step("answer", {0, 0}, std::string(SurenessName(reading.nSureness)) + ": " + Reason(reading));
}

} // namespace qeadrs
