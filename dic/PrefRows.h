// PrefRows.h - from the name of a prefecture to its row in pref_order (internal).
#ifndef QEADRS_DIC_PREFROWS_H
#define QEADRS_DIC_PREFROWS_H

#include "dic/AddrDic.h"

#include <cstddef>
#include <cstdint>

// Rows of pref_order by a number made of bytes 2 to 5 of the name: of the 47 names no two have the same one.
constexpr size_t PREF_HASH_BYTES = 6; // every name is longer
constexpr uint32_t PREF_HASH_FACTOR = 0xAD51C357;
constexpr unsigned PREF_HASH_BITS = 7;

constexpr size_t PrefHash(char const* pszPref) {
    uint32_t nWord = 0;
    for (size_t n = 2; n < PREF_HASH_BYTES; ++n)
        nWord |= static_cast<uint32_t>(static_cast<unsigned char>(pszPref[n])) << 8 * (n - 2);
    return nWord * PREF_HASH_FACTOR >> (32 - PREF_HASH_BITS);
}

struct CPrefRows {
    signed char vRow[1 << PREF_HASH_BITS] = {}; // one more than the row, 0 where there is none
    int nRows = 0;

    constexpr CPrefRows() {
        for (int nRow = 0; nRow < PREF_ORDER_ROWS; ++nRow) {
            signed char& nSlot = vRow[PrefHash(pref_order[nRow] + PREF_ORDER_NAME)];
            if (nSlot == 0) ++nRows;
            nSlot = static_cast<signed char>(nRow + 1);
        }
    }
};

#endif
