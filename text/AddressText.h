// AddressText.h - addresses as people write them.
//
// The engine compares bytes; this layer turns what people write into what the dictionary holds, and changes nothing in
// the engine.
#ifndef QEADRS_TEXT_ADDRESSTEXT_H
#define QEADRS_TEXT_ADDRESSTEXT_H

#include "dic/AddrDic.h"
#include "text/qetext.h"

#include <string>
#include <string_view>
#include <vector>

namespace qeadrs {

// The index of a dictionary's names in folded form, as it stands in the fifth table.
// Equal dictionaries, equal bytes, in every word size. What the dictionary's own fifth table holds does not matter.
QETEXT_API std::vector<unsigned char> BuildTextIndex(CAddrDic const& dic);

// The bytes of the index that the dictionary has, empty when its fifth table holds none of this format and of these
// foldings.
QETEXT_API std::basic_string_view<unsigned char> TextIndex(CAddrDic const& dic);

// A name in folded form, as UTF-8 for people and tests: "旭ヶ丘", "旭ケ丘" and "旭が丘" are one.
QETEXT_API std::string FoldName(std::string_view strName);

} // namespace qeadrs

#endif
