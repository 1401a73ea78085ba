// AddrCommand.h - `qeadrs addr`: the postal codes of addresses.
#ifndef QEADRS_CLI_ADDRCOMMAND_H
#define QEADRS_CLI_ADDRCOMMAND_H

#include "cli/Failure.h"
#include "cli/Output.h"

#include <optional>
#include <string>
#include <vector>

namespace qe {

struct CAddrOptions {
    std::vector<std::string> vText;       // none: one per line from standard input
    std::optional<std::string> strOffice; // organisation at each of the addresses; "" asks for none
    bool bKana = false;
    bool bExact = false; // by the interfaces of the library alone
};

// Prints the answers, and remarks on standard error. Throws CFailure when it cannot go on; with bExact an address that
// the API's record cannot hold ends the command before anything is looked up, unless it came from standard input.
EExit RunAddr(CAddrOptions const& options, CCommonOptions const& common);

} // namespace qe

#endif
