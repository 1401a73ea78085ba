// Address.cpp - addresses as rows of texts.
#include "cli/Address.h"

#include "cli/Failure.h"
#include "cli/Text.h"

#include <algorithm>
#include <utility>

namespace qe {

namespace {

// By EColumn: the column's name, and the field it is filled from.
struct CField {
    char const* pszKey;
    std::string_view qeadrs::CRecord::*pText;
};
constexpr CField FIELDS[] = {
    {"postal_code", &qeadrs::CRecord::strCode},
    {"old_code", &qeadrs::CRecord::strOldCode},
    {"prefecture", &qeadrs::CRecord::strPref},
    {"city", &qeadrs::CRecord::strCity},
    {"town", &qeadrs::CRecord::strTown},
    {"area", &qeadrs::CRecord::strArea},
    {"building", &qeadrs::CRecord::strBlock},
    {"floor", &qeadrs::CRecord::strNote},
    {"organisation", &qeadrs::CRecord::strOffice},
    {"prefecture_kana", &qeadrs::CRecord::strPrefKana},
    {"city_kana", &qeadrs::CRecord::strCityKana},
    {"town_kana", &qeadrs::CRecord::strTownKana},
    {"area_kana", &qeadrs::CRecord::strAreaKana},
    {"building_kana", &qeadrs::CRecord::strBlockKana},
    {"organisation_kana", &qeadrs::CRecord::strOfficeKana},
};
static_assert(std::size(FIELDS) == COL_COUNT);

size_t ColumnCount(bool bKana) {
    return bKana ? COL_COUNT : COL_PREF_KANA;
}

// The API's texts as far as it has them, the class's for all else. REQUIRES: both are the same address.
CRow Join(qeadrs::CAddress const& address, qeadrs::CRecord const& record) {
    CRow row = MakeAddress(record);
    row[COL_CODE] = address.strCode;
    row[COL_PREF] = address.strPref;
    row[COL_CITY] = address.strCity;
    row[COL_TOWN] = address.strTown;
    row[COL_AREA] = address.strArea;
    row[COL_OFFICE] = address.strOffice;
    return row;
}

} // namespace

std::vector<std::string> AddressColumns(bool bKana) {
    std::vector<std::string> vKey;
    for (size_t i = 0; i < ColumnCount(bKana); ++i) vKey.emplace_back(FIELDS[i].pszKey);
    return vKey;
}

CRow MakeAddress(qeadrs::CRecord const& record) {
    CRow address;
    for (CField const& field : FIELDS) address.emplace_back(record.*field.pText);
    return address;
}

CRow AddressRow(CRow address, bool bKana) {
    address.resize(ColumnCount(bKana));
    return address;
}

CAddresses JoinAnswers(qeadrs::CResult<qeadrs::CAddresses> answer, qeadrs::CRecords const& records, size_t nLimit) {
    // The API does not tell a lack of memory from "not found".
    if (!answer && records.empty()) return {};
    qeadrs::CAddresses const block = Demand(std::move(answer));
    CAddresses addresses;
    addresses.nCount = block.size();
    for (size_t i = 0; i < std::min(addresses.nCount, nLimit); ++i)
        addresses.vAddress.push_back(Join(block[i], records[i]));
    return addresses;
}

std::string DescribeLevels(qeadrs::CRecord const& record) {
    std::string strLevels;
    for (EColumn nColumn : {COL_PREF, COL_CITY, COL_TOWN}) {
        std::string const strName(record.*FIELDS[nColumn].pText);
        if (!strName.empty())
            strLevels += (strLevels.empty() ? "" : ", ") + (FIELDS[nColumn].pszKey + (' ' + strName));
    }
    return strLevels;
}

CFoundPlace FindPlace(qeadrs::CDictionary const& dictionary, tagADDR const& addr) {
    auto const Parent = [&dictionary](tagADDRNODE const* pNode) {
        return pNode == nullptr ? nullptr : dictionary.Class().GetAddrNode(pNode->nParent);
    };
    tagADDRNODE const* const pCity = addr.pCityNode != nullptr ? addr.pCityNode : Parent(addr.pTownNode);
    tagADDRNODE const* const pPref = pCity != nullptr ? Parent(pCity) : addr.pPrefNode;
    return {pPref, pCity, addr.pTownNode};
}

std::string_view NameOf(qeadrs::CDictionary const& dictionary, tagADDRNODE const* pNode) {
    if (pNode == nullptr) return {};
    return dictionary.File().Text(dictionary.Class().GetString(pNode->nName));
}

std::string_view KanaOf(qeadrs::CDictionary const& dictionary, tagADDRNODE const* pNode) {
    if (pNode == nullptr) return {};
    size_t const nReading = pNode->nName + NameOf(dictionary, pNode).size() + 1;
    return dictionary.File().Text(dictionary.Class().GetString(nReading));
}

std::string DescribeDoubt(qeadrs::CDictionary const& dictionary, tagADDR const& addr) {
    if (addr.pTownNode == nullptr) return "";
    if (addr.pCityNode == nullptr)
        return "no city recognised; this is the first town of the dictionary that the text names";
    if (dictionary.Class().GetAddrInfo(addr.pTownNode->nInfo) != nullptr) return "";
    return Clean(NameOf(dictionary, addr.pTownNode)) + " has codes for its parts only; this one is the city's";
}

} // namespace qe
