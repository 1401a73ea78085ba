// Address.cpp - addresses as rows of texts.
#include "cli/Address.h"

#include <utility>

namespace qe {

namespace {

// By EColumn: the column's name, and the field it is filled from.
struct CField {
    char const* pszKey;
    char const* tagADDR::*pszText;
};
constexpr CField FIELDS[] = {
    {"postal_code", &tagADDR::pszPostCode},
    {"old_code", &tagADDR::pszCodeExt},
    {"prefecture", &tagADDR::pszPref},
    {"city", &tagADDR::pszCity},
    {"town", &tagADDR::pszTown},
    {"area", &tagADDR::pszArea},
    {"building", &tagADDR::pszBlock},
    {"floor", &tagADDR::pszNote},
    {"organisation", &tagADDR::pszOffice},
    {"prefecture_kana", &tagADDR::pszPrefKana},
    {"city_kana", &tagADDR::pszCityKana},
    {"town_kana", &tagADDR::pszTownKana},
    {"area_kana", &tagADDR::pszAreaKana},
    {"building_kana", &tagADDR::pszBlockKana},
    {"organisation_kana", &tagADDR::pszOfficeKana},
};
static_assert(std::size(FIELDS) == COL_COUNT);

size_t ColumnCount(bool bKana) {
    return bKana ? COL_COUNT : COL_PREF_KANA;
}

} // namespace

std::vector<std::string> AddressColumns(bool bKana) {
    std::vector<std::string> vKey;
    for (size_t i = 0; i < ColumnCount(bKana); ++i) vKey.emplace_back(FIELDS[i].pszKey);
    return vKey;
}

CRow MakeAddress(CDictionary const& dictionary, tagADDR const& addr) {
    CRow address;
    for (CField const& field : FIELDS) address.push_back(dictionary.Text(addr.*field.pszText));
    // In a dictionary the old code stands right behind the NUL of the postal code, and that NUL is what a lookup by
    // code leaves in pszCodeExt.
    if (addr.pszCodeExt != nullptr && address[COL_OLD_CODE].empty())
        address[COL_OLD_CODE] = dictionary.Text(addr.pszCodeExt + 1);
    return address;
}

CRow AddressRow(CRow address, bool bKana) {
    address.resize(ColumnCount(bKana));
    return address;
}

} // namespace qe
