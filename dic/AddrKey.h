// AddrKey.h - the sort key behind tagADDR::operator<, and lists sorted by it (internal).
#ifndef QEADRS_DIC_ADDRKEY_H
#define QEADRS_DIC_ADDRKEY_H

#include "dic/Addr.h"

#include <string>
#include <vector>

// A prefecture's number, its row in pref_order; -1 when the table does not know the name.
int FindPrefNumber(char const* pszPref);

// The record's key; records are ordered by the bytes of their keys.
std::string MakeSortKey(tagADDR const& addr);

// Sorts the records as tagADDR::operator< orders them, with each key made once instead of twice per comparison.
// Records of equal keys, such as the floors of one building, keep their order. When memory runs out the list stays as
// it was.
void SortAddrs(std::vector<tagADDR>& vAddr);

// The letter that groups cities of one class: 'a' for a null name and 市, 'b' 区, 'c' 区 of a 市, 'd' 町 and 'e' 村
// of a 郡, 'f' 町 or 村 of a 島, 'g' 村 of a 庁, 'h' anything else. Characters are compared by two bytes, as for a
// double-byte encoding: the end of a UTF-8 name never matches, so every UTF-8 name is 'h'.
char CityClassLetter(char const* pszCity);

#endif
