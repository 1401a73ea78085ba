// Skk.h - the second source: the postal dictionaries of Debian's skkdic-extra, for a machine that reaches a package
// registry and nothing else. Public domain, the whole country; no readings, no old codes, some years old.
#ifndef QEADRS_BUILDER_SKK_H
#define QEADRS_BUILDER_SKK_H

#include "builder/Source.h"

#include <string>
#include <vector>

namespace qe {

struct CSkkTables {
    std::vector<CTownRow> vTown; // texts written as the official table writes them; no readings, no old codes
    std::vector<COfficeRow> vOffice;
    std::string strTownSource; // names for messages
    std::string strOfficeSource;
    uint32_t nEdition = 0;             // of the file's own time stamp
    std::vector<std::string> vLeftOut; // "FILE:LINE: ..." for each entry without a known prefecture or city
};

// Reads SKK-JISYO.zipcode and, when it is there, SKK-JISYO.office.zipcode in strFolder. Throws CBuildError.
CSkkTables ReadSkkTables(std::string const& strFolder);

} // namespace qe

#endif
