// Address.cpp - addresses as rows of texts.
#include "cli/Address.h"

#include "cli/ApiData.h"
#include "cli/Failure.h"

#include <algorithm>
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

// Not the count at offset 0 of a block: it has 16 bits, and a query may have more answers.
size_t CountAddresses(CBlock const& block) {
    size_t const nEntries = block.Long(4);
    size_t const nPool = block.Long(8);
    return nPool > nEntries ? (nPool - nEntries) / ENTRY_SIZE : 0;
}

// The first addresses of a block, as far as their texts are columns.
std::vector<CRow> ReadAddresses(CBlock const& block, size_t nCount) {
    constexpr std::pair<size_t, EColumn> SLOTS[] = {{0, COL_CODE},  {8, COL_PREF},  {12, COL_CITY},
                                                    {16, COL_TOWN}, {20, COL_AREA}, {24, COL_OFFICE}};
    std::vector<CRow> vAddress(nCount, CRow(COL_COUNT));
    for (size_t i = 0; i < nCount; ++i)
        for (auto const& [nSlot, nColumn] : SLOTS) vAddress[i][nColumn] = block.EntryText(i, nSlot);
    return vAddress;
}

// Adds what the block does not carry. REQUIRES: both are the same address.
void Complete(CRow& address, CRow const& full) {
    for (EColumn nColumn : {COL_OLD_CODE, COL_BUILDING, COL_FLOOR, COL_PREF_KANA, COL_CITY_KANA, COL_TOWN_KANA,
                            COL_AREA_KANA, COL_BUILDING_KANA, COL_OFFICE_KANA})
        address[nColumn] = full[nColumn];
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
    // code leaves in pszCodeExt. Address text leaves the old code itself, which may be "".
    if (addr.pszCodeExt != nullptr && addr.pszCodeExt == addr.pszPostCode + address[COL_CODE].size())
        address[COL_OLD_CODE] = dictionary.Text(addr.pszCodeExt + 1);
    return address;
}

CRow AddressRow(CRow address, bool bKana) {
    address.resize(ColumnCount(bKana));
    return address;
}

CAddresses JoinAnswers(CDictionary const& dictionary, int nResult, HGLOBAL hResult, std::vector<tagADDR> const& vAddr,
                       size_t nLimit) {
    if (nResult != 0) {
        if (vAddr.empty()) return {};
        throw CFailure(EXIT_SYSTEM, "not enough memory."); // the API does not tell this from "not found"
    }
    CBlock const block(hResult);
    CAddresses addresses;
    addresses.nCount = CountAddresses(block);
    addresses.vAddress = ReadAddresses(block, std::min(addresses.nCount, nLimit));
    for (size_t i = 0; i < addresses.vAddress.size() && i < vAddr.size(); ++i)
        Complete(addresses.vAddress[i], MakeAddress(dictionary, vAddr[i]));
    return addresses;
}

std::string DescribeLevels(CDictionary const& dictionary, tagADDR const& addr) {
    std::string strLevels;
    for (EColumn nColumn : {COL_PREF, COL_CITY, COL_TOWN}) {
        std::string const strName = dictionary.Text(addr.*FIELDS[nColumn].pszText);
        if (!strName.empty())
            strLevels += (strLevels.empty() ? "" : ", ") + (FIELDS[nColumn].pszKey + (' ' + strName));
    }
    return strLevels;
}

} // namespace qe
