// AddrKey.h - the sort key behind tagADDR::operator< (internal).
#ifndef QEADRS_DIC_ADDRKEY_H
#define QEADRS_DIC_ADDRKEY_H

#include "dic/Addr.h"

#include <string>

// The record's key; records are ordered by the bytes of their keys.
std::string MakeSortKey(tagADDR const& addr);

// The letter that groups cities of one class: 'a' for a null name and 市, 'b' 区, 'c' 区 of a 市, 'd' 町 and 'e' 村
// of a 郡, 'f' 町 or 村 of a 島, 'g' 村 of a 庁, 'h' anything else. Characters are compared by two bytes, as for a
// double-byte encoding: the end of a UTF-8 name never matches, so every UTF-8 name is 'h'.
char CityClassLetter(char const* pszCity);

#endif
