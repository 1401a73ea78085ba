// Candidates.cpp - requests to the legacy command interface, and what is in its answers.
#include "cli/Candidates.h"

#include "cli/Failure.h"
#include "cli/Text.h"

#include <cstring>
#include <limits>

namespace qe {

namespace {

constexpr size_t LONGEST_CHARACTER = 4; // bytes in UTF-8

// A field of the record: its text ends at a NUL or with it.
template <size_t N>
std::string Field(char const (&acField)[N]) {
    return std::string(acField, strnlen(acField, N));
}

// A name: one that fills its field may have been cut within a character, which then goes.
template <size_t N>
std::string Text(char const (&acField)[N]) {
    std::string strText = Field(acField);
    for (size_t nCut = 0; strText.size() == N && nCut < LONGEST_CHARACTER; ++nCut)
        if (std::string strWhole = strText.substr(0, N - nCut); IsUtf8(strWhole)) return strWhole;
    return strText;
}

int Positive(int16_t nCount) {
    if (nCount >= 0) return nCount;
    throw CFailure(EXIT_SYSTEM,
                   "there are more candidates than a list has positions. Give more of the code or address.");
}

} // namespace

CCandidates::CCandidates(std::string const& strFile) {
    if (GA_adr_exec(GA_OPEN, 0, nullptr, strFile.c_str(), nullptr) != 0)
        throw CFailure(EXIT_SYSTEM, strFile + " cannot be opened.");
}

CCandidates::~CCandidates() {
    GA_adr_exec(GA_CLOSE, 0, nullptr, nullptr, nullptr);
}

void CCandidates::Search(std::string const& strCode, std::string const& strAddr) {
    m_request = {};
    strCode.copy(m_request.szCode, sizeof m_request.szCode - 1);
    strAddr.copy(m_request.szAddr, CANDIDATE_ADDRESS_LENGTH);
}

CCandidateCounts CCandidates::Count(int nPref, int nCity) {
    GA_ADRNUM counts = {};
    m_request.nPref = static_cast<int16_t>(nPref);
    m_request.nCity = static_cast<int16_t>(nCity);
    GA_adr_exec(GA_SEARCH, 0, &m_request, nullptr, &counts);
    return {Positive(counts.nPrefs), Positive(counts.nCities), Positive(counts.nTowns)};
}

// A city that is not there has an empty name in a tree, and is a failure, which leaves the record alone, elsewhere.
bool CCandidates::IsTree() {
    GA_ADRFLD field = {};
    field.nPosition = std::numeric_limits<int16_t>::max();
    field.nNameLength = 1;
    GA_adr_exec(GA_GET, GA_CITY, nullptr, nullptr, &field);
    return field.nNameLength == 0;
}

std::string CCandidates::Prefecture(int n) {
    return Text(Get(GA_PREF, n).acName);
}

std::string CCandidates::City(int n) {
    return Text(Get(GA_CITY, n).acName);
}

CCandidate CCandidates::Town(int n) {
    GA_ADRFLD const field = Get(GA_TOWN, n);
    return {Field(field.acCode), Field(field.acOldCode), Text(field.acName), Text(field.acDetail), field.nDetailKind};
}

GA_ADRFLD CCandidates::Get(short nKind, int n) {
    GA_ADRFLD field = {};
    field.nPosition = static_cast<int16_t>(n);
    GA_adr_exec(GA_GET, nKind, nullptr, nullptr, &field);
    return field;
}

} // namespace qe
