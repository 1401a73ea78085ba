// SearchedName.cpp - an organisation's name as a search for it arrives at the index.
#include "builder/SearchedName.h"

#include "builder/Text.h"
#include "builder/TownText.h"
#include "dic/AddrDic.h"

#include <cstring>

namespace qe {

std::string SearchedName(std::string const& strName) {
    std::string strSearched = WithoutBlanks(strName);
    CAddrDic().SearchInc(strSearched.data());
    strSearched.resize(std::strlen(strSearched.c_str()));
    return CutName(strSearched, NAME_LIMIT);
}

} // namespace qe
