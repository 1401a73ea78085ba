// SearchedName.h - an organisation's name as a search for it arrives at the index.
#ifndef QEADRS_BUILDER_SEARCHEDNAME_H
#define QEADRS_BUILDER_SEARCHEDNAME_H

#include <string>

namespace qe {

// The name without ideographic spaces, then normalised by the library itself, which strips blanks, one legal form and,
// of every character of the block around the ideographic space, the first two bytes; cut to what a name may hold. Empty
// when nothing is left.
std::string SearchedName(std::string const& strName);

} // namespace qe

#endif
