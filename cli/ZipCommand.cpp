// ZipCommand.cpp - `qeadrs zip`: from the codes that were asked for to rows of addresses.
//
// The API answers where it can: addresses by GetAdrFromZip, cities by PstAdrCity, the organisation met by
// PstAdrGetComment. The class answers the rest: buildings, floors, readings, and the addresses of an old code.
#include "cli/ZipCommand.h"

#include "api/Pstexec.h"
#include "cli/Address.h"
#include "cli/ApiData.h"
#include "cli/Dictionary.h"
#include "cli/Text.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <set>
#include <utility>

namespace qe {

namespace {

constexpr size_t CODE_DIGITS = 7;
constexpr size_t COMMENT_SIZE = 128; // what PstAdrGetComment writes at most; it aborts on a longer name
constexpr int COMMENT_OFFICE = 3;

// The digits of a code. Throws CFailure when the text is no code.
std::string ReadCode(std::string const& strText, bool bOld) {
    std::string const strCode = FoldCode(strText).value_or("");
    bool const bRight =
        bOld ? strCode.size() == 3 || strCode.size() == 5 : !strCode.empty() && strCode.size() <= CODE_DIGITS;
    if (bRight) return strCode;
    throw CFailure(EXIT_USAGE,
                   Quote(strText) + " is no " +
                       (bOld ? "old postal code: it has 3 or 5 digits." : "postal code: it has 1 to 7 digits."));
}

// --- addresses -----------------------------------------------------------------------------------------------------

// The seven texts of each address in a block of GetAdrFromZip, as far as they are columns.
std::vector<CRow> ReadAddresses(CBlock const& block) {
    constexpr size_t ENTRY_SIZE = 28;
    constexpr std::pair<size_t, EColumn> SLOTS[] = {{0, COL_CODE},  {8, COL_PREF},  {12, COL_CITY},
                                                    {16, COL_TOWN}, {20, COL_AREA}, {24, COL_OFFICE}};
    size_t const nEntries = block.Long(4);
    size_t const nPool = block.Long(8);
    // Not the count at offset 0: it has 16 bits, and a short leading part may have more answers.
    size_t const nCount = nPool > nEntries ? (nPool - nEntries) / ENTRY_SIZE : 0;
    std::vector<CRow> vAddress(nCount, CRow(COL_COUNT));
    for (size_t i = 0; i < nCount; ++i)
        for (auto const& [nSlot, nColumn] : SLOTS)
            vAddress[i][nColumn] = block.Text(nPool + block.Long(nEntries + ENTRY_SIZE * i + nSlot));
    return vAddress;
}

// Adds what the block does not carry. REQUIRES: both are the same address.
void Complete(CRow& address, CRow const& full) {
    for (EColumn nColumn : {COL_OLD_CODE, COL_BUILDING, COL_FLOOR, COL_PREF_KANA, COL_CITY_KANA, COL_TOWN_KANA,
                            COL_AREA_KANA, COL_BUILDING_KANA, COL_OFFICE_KANA})
        address[nColumn] = full[nColumn];
}

std::vector<CRow> FindAddresses(CDictionary& dictionary, std::string const& strCode) {
    std::vector<tagADDR> vAddr;
    dictionary.Class().GetAddrFromPostCode7(strCode.c_str(), vAddr);
    HGLOBAL hResult = nullptr;
    if (GetAdrFromZip(strCode.c_str(), &hResult) != 0) {
        if (vAddr.empty()) return {};
        throw CFailure(EXIT_SYSTEM, "not enough memory."); // the API does not tell this from "not found"
    }
    std::vector<CRow> vAddress = ReadAddresses(CBlock(hResult));
    // Same file, same order, same sort type: the two answers are the same addresses one by one.
    for (size_t i = 0; i < vAddress.size() && i < vAddr.size(); ++i)
        Complete(vAddress[i], MakeAddress(dictionary, vAddr[i]));
    return vAddress;
}

std::vector<CRow> FindAddressesOfOldCode(CDictionary& dictionary, std::string const& strCode) {
    std::vector<tagADDR> vAddr;
    dictionary.Class().GetAddrFromPostCode5(strCode.c_str(), vAddr);
    std::vector<CRow> vAddress;
    for (tagADDR const& addr : vAddr) vAddress.push_back(MakeAddress(dictionary, addr));
    return vAddress;
}

// --- cities --------------------------------------------------------------------------------------------------------

// A prefecture and city as PstAdrCity gives them, one text, as prefecture and city.
CRow SplitPrefecture(std::string const& strCode, std::string_view strBoth) {
    for (auto const& row : pref_order) {
        std::string_view const strPref = row + PREF_ORDER_NAME;
        if (strBoth.substr(0, strPref.size()) == strPref)
            return {strCode, std::string(strPref), std::string(strBoth.substr(strPref.size()))};
    }
    return {strCode, "", std::string(strBoth)};
}

std::vector<CRow> FindCities(CZipOptions const& options, std::string const& strCode) {
    tagCODERECORD record(options.bSort ? SORT_ADDR : SORT_DICTIONARY);
    char* const pszField = options.bOld ? record.szOldCode : record.szCode;
    std::memcpy(pszField, strCode.data(), strCode.size()); // ReadCode has seen to it that it fits; the NUL is there
    HGLOBAL hResult = nullptr;
    if (PstAdrCity(&record, &hResult) != 0) throw CFailure(EXIT_SYSTEM, "not enough memory.");
    CBlock const block(hResult);
    std::vector<CRow> vCity;
    std::set<std::string_view> seen; // the API drops a repeated city only next to itself
    size_t nOffset = 2;
    for (unsigned i = 0; i < block.Short(0); ++i) {
        size_t const nLength = block.Byte(nOffset);
        std::string_view const strBoth = block.Bytes(nOffset + 1, nLength);
        nOffset += 1 + nLength;
        if (seen.insert(strBoth).second) vCity.push_back(SplitPrefecture(strCode, strBoth));
    }
    return vCity;
}

// --- the command ---------------------------------------------------------------------------------------------------

class CZipCommand {
  public:
    CZipCommand(CZipOptions const& options, CCommonOptions const& common)
        : m_options(options),
          m_common(common),
          m_nForm(common.Form()),
          m_dictionary(common.strDic),
          m_output(m_nForm, Columns(options), common.bHeader, std::cout) {
        m_dictionary.SetSortType(options.bSort ? SORT_ADDR : SORT_DICTIONARY);
    }

    EExit AnswerAll(std::vector<std::string> const& vCode) {
        for (std::string const& strCode : vCode) Answer(strCode);
        m_output.Flush();
        if (vCode.size() == 1 && m_nForm == EForm::Table) RemarkOffice();
        return m_nStatus;
    }

    EExit AnswerLines() {
        bool const bTyped = isatty(STDIN_FILENO) != 0;
        if (bTyped) Remark("one postal code per line, Ctrl-D ends");
        std::string strLine;
        for (size_t nLine = 1; std::getline(std::cin, strLine); ++nLine) {
            if (!IsBlank(strLine)) AnswerLine(strLine, nLine);
            // Line by line for whoever waits for the answer; a table is lined up as a whole unless somebody types.
            if (bTyped || m_nForm != EForm::Table) m_output.Flush();
        }
        m_output.Flush();
        if (std::ferror(stdin) != 0) throw CFailure(EXIT_SYSTEM, "standard input cannot be read.");
        return m_nStatus;
    }

  private:
    static std::vector<std::string> Columns(CZipOptions const& options) {
        if (options.bCities) return {options.bOld ? "old_code" : "postal_code", "prefecture", "city"};
        return AddressColumns(options.bKana);
    }

    void AnswerLine(std::string const& strLine, size_t nLine) try {
        Answer(ReadCode(strLine, m_options.bOld));
    } catch (CFailure const& failure) {
        if (failure.Status() != EXIT_USAGE) throw;
        std::cerr << "qeadrs: line " << nLine << ": " << failure.what() << '\n';
        m_nStatus = EXIT_USAGE;
    }

    void Answer(std::string const& strCode) {
        std::vector<CRow> vRow = m_options.bCities ? FindCities(m_options, strCode)
                                 : m_options.bOld  ? FindAddressesOfOldCode(m_dictionary, strCode)
                                                   : FindAddresses(m_dictionary, strCode);
        if (vRow.empty()) {
            Remark(strCode + ": not found");
            m_nStatus = std::max(m_nStatus, EXIT_NOT_FOUND);
        }
        for (CRow& row : vRow) {
            if (!m_options.bCities) {
                m_nLongestOffice = std::max(m_nLongestOffice, row[COL_OFFICE].size());
                row = AddressRow(std::move(row), m_options.bKana);
            }
            m_output.Add(std::move(row));
        }
    }

    // The organisation that the last lookup through the API met.
    void RemarkOffice() {
        char szOffice[COMMENT_SIZE];
        int nKind = COMMENT_OFFICE;
        if (m_nLongestOffice >= COMMENT_SIZE || PstAdrGetComment(szOffice, &nKind) != 0) return;
        Remark("organisation: " + Clean(szOffice));
    }

    void Remark(std::string const& strText) const {
        if (!m_common.bQuiet) std::cerr << "qeadrs: " << strText << '\n';
    }

    CZipOptions const& m_options;
    CCommonOptions const& m_common;
    EForm m_nForm;
    CDictionary m_dictionary;
    COutput m_output;
    EExit m_nStatus = EXIT_FOUND;
    size_t m_nLongestOffice = 0;
};

} // namespace

EExit RunZip(CZipOptions const& options, CCommonOptions const& common) {
    std::vector<std::string> vCode;
    for (std::string const& strText : options.vCode) vCode.push_back(ReadCode(strText, options.bOld));
    CZipCommand command(options, common);
    return vCode.empty() ? command.AnswerLines() : command.AnswerAll(vCode);
}

} // namespace qe
