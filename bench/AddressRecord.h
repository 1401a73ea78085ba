// AddressRecord.h - the caller's record of the C interface's address functions, as a caller fills it.
#ifndef QEADRS_BENCH_ADDRESSRECORD_H
#define QEADRS_BENCH_ADDRESSRECORD_H

#include "dic/AddrDic.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

struct tagADDRESSRECORD {
    uint16_t nSortType = SORT_DICTIONARY;
    char szOldCode[6] = {};
    char szCode[15] = {};
    char szAddress[122] = {};
    char szOffice[256] = {};

    // What a caller does before each call. The names are normalised in place, so every call needs its copy. Longer
    // texts are cut.
    void Fill(std::string const& strAddress, std::string const& strOffice) {
        nSortType = SORT_DICTIONARY;
        std::memset(szOldCode, 0, sizeof szOldCode);
        std::memset(szCode, 0, sizeof szCode);
        Copy(szAddress, strAddress);
        Copy(szOffice, strOffice);
    }

  private:
    template <size_t SIZE>
    static void Copy(char (&szField)[SIZE], std::string const& strText) {
        szField[strText.copy(szField, SIZE - 1)] = '\0';
    }
};
static_assert(offsetof(tagADDRESSRECORD, szOldCode) == 2 && offsetof(tagADDRESSRECORD, szCode) == 8);
static_assert(offsetof(tagADDRESSRECORD, szAddress) == 23 && offsetof(tagADDRESSRECORD, szOffice) == 145);

#endif
