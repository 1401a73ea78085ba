// SlowAddress.h - address texts answered a second time, from the slow reader's records and without any code of the
// library: first match of prefecture and town, longest match of city, each level below the one before it.
#ifndef QEADRS_TESTS_NATIONAL_SLOWADDRESS_H
#define QEADRS_TESTS_NATIONAL_SLOWADDRESS_H

#include "Lookup.h"

#include <string>
#include <string_view>
#include <vector>

namespace national {

struct CSeparated {
    uint32_t nPref = NONE, nCity = NONE, nTown = NONE; // nodes
    uint32_t nEntry = NONE;                            // whose codes the text has: the town's, else the city's
    size_t nConsumed = 0;                              // bytes of the text that the levels took
};
CSeparated Separate(std::string_view strText);

// The entry that gives an organisation at an address its codes: the first one of the index whose name begins with the
// searched one, in the very town of the address; else the entry of the address, or NONE. An empty name asks for none.
uint32_t EntryOfOffice(CSeparated const& address, std::string const& strOffice);

// Prefecture, city and town in today's form and the rest of the text, which is dropped without a town.
std::string LatestText(std::string_view strText, CSeparated const& address);

// Everything that a partial address can stand for, as the block has it.
std::vector<CBlockAddress> AddressesOfPart(std::string_view strText);

} // namespace national

#endif
