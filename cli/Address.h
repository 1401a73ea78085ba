// Address.h - one address as the commands print it: a text for each column, "" where the address has none.
#ifndef QEADRS_CLI_ADDRESS_H
#define QEADRS_CLI_ADDRESS_H

#include "api/qeadrs.hpp"
#include "cli/Dictionary.h"
#include "cli/Output.h"

#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace qe {

// The columns in their order, which never changes: programs count them. Readings come last and only on demand.
enum EColumn : size_t {
    COL_CODE,
    COL_OLD_CODE,
    COL_PREF,
    COL_CITY,
    COL_TOWN,
    COL_AREA,
    COL_BUILDING,
    COL_FLOOR,
    COL_OFFICE,
    COL_PREF_KANA,
    COL_CITY_KANA,
    COL_TOWN_KANA,
    COL_AREA_KANA,
    COL_BUILDING_KANA,
    COL_OFFICE_KANA,
    COL_COUNT,
};

// The names of the columns, with or without those of the readings.
std::vector<std::string> AddressColumns(bool bKana);

// An address out of the class's answers, all columns.
CRow MakeAddress(qeadrs::CRecord const& record);

// The address cut to the columns of AddressColumns.
CRow AddressRow(CRow address, bool bKana);

// The two answers to one query as one: the API's, and the class's, which have what the API's lacks. Same file, same
// order, same sort type: they are the same addresses one by one.
struct CAddresses {
    size_t nCount = 0;          // all there are
    std::vector<CRow> vAddress; // the first nLimit of them, all columns
};
CAddresses JoinAnswers(qeadrs::CResult<qeadrs::CAddresses> answer, qeadrs::CRecords const& records,
                       size_t nLimit = std::numeric_limits<size_t>::max());

// The levels that were read from an address text, for a remark: "prefecture 東京都, city 千代田区"; "" for none.
std::string DescribeLevels(qeadrs::CRecord const& record);

// The place that an address was found to be; null where there is no such level. A level that the text leaves out is the
// one above the level that it names. That of a town found without its city holds against a prefecture that the text
// names: the code is the town's, wherever it lies.
struct CFoundPlace {
    tagADDRNODE const* pPref;
    tagADDRNODE const* pCity;
    tagADDRNODE const* pTown;
};
CFoundPlace FindPlace(qeadrs::CDictionary const& dictionary, tagADDR const& addr);

// The name of a node, "" for null.
std::string_view NameOf(qeadrs::CDictionary const& dictionary, tagADDRNODE const* pNode);

// Its reading, which stands right behind the name's NUL.
std::string_view KanaOf(qeadrs::CDictionary const& dictionary, tagADDRNODE const* pNode);

// Why the code may well be another place's than meant; "" when nothing speaks for that.
std::string DescribeDoubt(qeadrs::CDictionary const& dictionary, tagADDR const& addr);

} // namespace qe

#endif
