// AddressText.h - addresses as people write them.
//
// The engine compares bytes; this layer turns what people write into what the dictionary holds, and changes nothing in
// the engine.
#ifndef QEADRS_TEXT_ADDRESSTEXT_H
#define QEADRS_TEXT_ADDRESSTEXT_H

#include "text/qetext.h"

#include <string>
#include <string_view>

namespace qeadrs {

// A name in folded form, as UTF-8 for people and tests: "旭ヶ丘", "旭ケ丘" and "旭が丘" are one.
QETEXT_API std::string FoldName(std::string_view strName);

} // namespace qeadrs

#endif
