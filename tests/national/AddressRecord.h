// AddressRecord.h - the record that PstAdrGetZip and PstAdrGetLatestAdr take, byte for byte.
#ifndef QEADRS_TESTS_NATIONAL_ADDRESSRECORD_H
#define QEADRS_TESTS_NATIONAL_ADDRESSRECORD_H

#include "SlowAddress.h"

#include <string>

namespace national {

constexpr size_t RECORD_OLD_CODE = 2, RECORD_CODE = 8, RECORD_ADDRESS = 23, RECORD_OFFICE = 145;
constexpr size_t RECORD_ADDRESS_SIZE = RECORD_OFFICE - RECORD_ADDRESS;
constexpr size_t LATEST_LIMIT = 60;
constexpr char RECORD_FILL = 'Z'; // what nobody writes stays

// Sort type 2 and the address; with an organisation and its NUL, or without that field. An address that is too long
// fills its field without a NUL.
inline std::string AddressRecord(std::string const& strAddress) {
    std::string str(RECORD_OFFICE, RECORD_FILL);
    str[0] = 2, str[1] = 0;
    std::string const strField = (strAddress + '\0').substr(0, RECORD_ADDRESS_SIZE);
    return str.replace(RECORD_ADDRESS, strField.size(), strField);
}
inline std::string OfficeRecord(std::string const& strAddress, std::string const& strOffice) {
    return AddressRecord(strAddress) + strOffice + '\0';
}

// What the library reads of an address: a field without a NUL ends with the field.
inline std::string AddressRead(std::string const& strAddress) {
    return strAddress.substr(0, RECORD_ADDRESS_SIZE);
}

// The record after PstAdrGetZip, up to the organisation: two codes without a NUL, or nothing changed.
inline std::string ExpectedAfterGetZip(std::string const& strAddress, std::string const& strOffice, short& nResult) {
    std::string str = AddressRecord(strAddress);
    uint32_t const nEntry = EntryOfOffice(Separate(AddressRead(strAddress)), strOffice);
    nResult = nEntry == NONE;
    if (nEntry == NONE) return str;
    CSlowReader::CEntry const& entry = Official().Entries()[nEntry];
    str.replace(RECORD_OLD_CODE, entry.strOldCode.size(), entry.strOldCode);
    return str.replace(RECORD_CODE, entry.strCode.size(), entry.strCode);
}

// The record after PstAdrGetLatestAdr, up to the NUL of the address.
inline std::string ExpectedAfterGetLatest(std::string const& strAddress) {
    std::string str = AddressRecord(strAddress).substr(0, RECORD_ADDRESS);
    std::string const strRead = AddressRead(strAddress);
    CSeparated const found = Separate(strRead);
    auto const PutCode = [&str](size_t nAt, std::string_view strCode) {
        str.replace(nAt, strCode.size() + 1, std::string(strCode) + '\0');
    };
    PutCode(RECORD_OLD_CODE, found.nEntry == NONE ? "" : Official().Entries()[found.nEntry].strOldCode);
    PutCode(RECORD_CODE, found.nEntry == NONE ? "" : Official().Entries()[found.nEntry].strCode);
    return str + LatestText(strRead, found).substr(0, LATEST_LIMIT) + '\0';
}

} // namespace national

#endif
