// Candidates.h - the candidate tree of a part of a code or of an address, through the legacy command interface.
//
//   CCandidates candidates(strFile);
//   candidates.Search("10000", "");                     // "" for both: the whole dictionary
//   for (int n = 0; n < candidates.Count(0, 0).nPrefs; ++n) puts(candidates.Prefecture(n).c_str());
//
// Positions are those of the prefecture and the city that the last Count selected. The interface has one dictionary
// for the process: do not make a second object while one lives.
#ifndef QEADRS_CLI_CANDIDATES_H
#define QEADRS_CLI_CANDIDATES_H

#include "api/ga_legacy.h"

#include <string>

namespace qe {

// Bytes that the interface takes of an address.
constexpr size_t CANDIDATE_ADDRESS_LENGTH = 127;

struct CCandidateCounts {
    int nPrefs, nCities, nTowns;
};

struct CCandidate {
    std::string strCode, strOldCode, strTown, strDetail;
    int nDetailKind; // GA_DETAIL_xxx
};

class CCandidates {
  public:
    // Throws CFailure when the file cannot be opened. REQUIRES: a dictionary, of sound header.
    explicit CCandidates(std::string const& strFile);
    ~CCandidates();
    CCandidates(CCandidates const&) = delete;
    CCandidates& operator=(CCandidates const&) = delete;

    // What Count counts from now on; an address is looked at only without a code. REQUIRES: a code of up to seven
    // digits, an address of up to CANDIDATE_ADDRESS_LENGTH bytes, no NUL in either.
    void Search(std::string const& strCode, std::string const& strAddr);

    // Whether the texts find anything, from the first Count on. When they do not, the lists are those of the whole
    // dictionary.
    bool IsTree();

    // Selects a prefecture and a city of it, and counts. Throws CFailure for more entries than a list has positions.
    CCandidateCounts Count(int nPref, int nCity);

    // The entries at a position of the lists. Names end at the last whole character of their first 60 bytes.
    std::string Prefecture(int n);
    std::string City(int n);
    CCandidate Town(int n);

  private:
    GA_ADRFLD Get(short nKind, int n);

    GA_ADRSRT m_request = {};
};

} // namespace qe

#endif
