// Lookup.cpp - asking the library.
#include "Lookup.h"

#include "Previous.h"
#include "Tables.h"

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <unistd.h>

namespace national {

namespace {

COptionalText TextOf(char const* psz) {
    return psz == nullptr ? COptionalText() : COptionalText(psz);
}

} // namespace

CAddrDic& Dictionary() {
    static CAddrDic dictionary;
    static int const nBound = dictionary.SetDictionary(Official().Bytes());
    static_cast<void>(nBound);
    return dictionary;
}

std::string AddressText(tagADDR const& addr) {
    return AddressText(CAddress{TextOf(addr.pszPref), TextOf(addr.pszPrefKana), TextOf(addr.pszCity),
                                TextOf(addr.pszCityKana), TextOf(addr.pszTown), TextOf(addr.pszTownKana),
                                TextOf(addr.pszArea), TextOf(addr.pszAreaKana), TextOf(addr.pszBlock),
                                TextOf(addr.pszBlockKana), TextOf(addr.pszNote), TextOf(addr.pszOffice),
                                TextOf(addr.pszOfficeKana)});
}

std::vector<std::string> Answers(CAddrDic& dictionary, std::string const& strCode) {
    std::vector<tagADDR> vAddr;
    dictionary.GetAddrFromPostCode7(strCode.c_str(), vAddr);
    std::vector<std::string> vText;
    for (tagADDR const& addr : vAddr) vText.push_back(AddressText(addr));
    return vText;
}

std::set<std::string_view> const& TownCodes() {
    static std::set<std::string_view> const vCode = [] {
        std::set<std::string_view> v;
        for (CTownRow const& row : TownRows()) v.insert(row.strCode);
        return v;
    }();
    return vCode;
}

std::set<std::string_view> const& OfficeCodes() {
    static std::set<std::string_view> const vCode = [] {
        std::set<std::string_view> v;
        for (COfficeRow const& row : OfficeRows()) v.insert(row.strCode);
        return v;
    }();
    return vCode;
}

std::set<std::string_view> const& GoneCodes() {
    static std::set<std::string_view> const vCode = [] {
        std::set<std::string_view> v;
        for (CGoneTown const& town : GoneTowns()) v.insert(town.strCode);
        return v;
    }();
    return vCode;
}

std::set<std::string_view> const& AllCodes() {
    static std::set<std::string_view> const vCode = [] {
        std::set<std::string_view> v = TownCodes();
        v.insert(OfficeCodes().begin(), OfficeCodes().end());
        v.insert(GoneCodes().begin(), GoneCodes().end());
        return v;
    }();
    return vCode;
}

std::set<std::string_view> const& OldCodes() {
    static std::set<std::string_view> const vCode = [] {
        std::set<std::string_view> v;
        for (CTownRow const& row : TownRows()) v.insert(row.strOldCode);
        for (COfficeRow const& row : OfficeRows()) v.insert(row.strOldCode);
        for (CGoneTown const& town : GoneTowns()) v.insert(town.strOldCode);
        return v;
    }();
    return vCode;
}

CHost::CHost() {
    char const* const pszTemp = std::getenv("TMPDIR");
    m_strProfile = std::string(pszTemp != nullptr ? pszTemp : "/tmp") + "/qeadrs-national-XXXXXX";
    int const nFile = mkstemp(m_strProfile.data());
    if (nFile < 0) throw std::runtime_error(m_strProfile + " cannot be made");
    close(nFile);
    std::ofstream(m_strProfile) << "[General]\nDicDir=" << DataPath("").substr(0, DataPath("").size() - 1) << "\n";
    setenv("QE_PROFILE", m_strProfile.c_str(), 1);
    m_bOpen = PstAdrOpen() == 0;
}

CHost::~CHost() {
    if (m_bOpen) PstAdrClose();
    unlink(m_strProfile.c_str());
}

std::string TakeBlock(HGLOBAL hBlock) {
    std::string strBlock(GlobalSize(hBlock), '\0');
    void const* const p = GlobalLock(hBlock);
    if (p == nullptr) throw std::runtime_error("a block cannot be locked");
    std::memcpy(strBlock.data(), p, strBlock.size());
    GlobalUnlock(hBlock);
    GlobalFree(hBlock);
    return strBlock;
}

std::string ZipBlock(std::string const& strCode) {
    HGLOBAL hBlock = nullptr;
    return GetAdrFromZip(strCode.c_str(), &hBlock) == 0 ? TakeBlock(hBlock) : std::string();
}

std::string AddBlock(std::string const& strText) {
    HGLOBAL hBlock = nullptr;
    return GetAdrFromAdd(strText.c_str(), &hBlock) == 0 ? TakeBlock(hBlock) : std::string();
}

void PutInteger(std::string& str, size_t n, size_t nBytes) {
    for (; nBytes-- > 0; n >>= 8) str += static_cast<char>(n & 0xFF);
}

std::string ExpectedBlock(std::vector<CBlockAddress> const& vAddress) {
    if (vAddress.empty()) return "";
    std::string strEntries, strPool;
    for (CBlockAddress const& address : vAddress) {
        // In the pool the code comes second; in the entry it is the other way round.
        PutInteger(strEntries, strPool.size() + address.strBeforeCode.size() + 1, 4);
        PutInteger(strEntries, strPool.size(), 4);
        strPool.append(address.strBeforeCode).append(1, '\0').append(address.strCode).append(1, '\0');
        CAddress const& a = address.address;
        for (COptionalText const* p : {&a.strPref, &a.strCity, &a.strTown, &a.strArea, &a.strOffice}) {
            PutInteger(strEntries, strPool.size(), 4);
            strPool.append(p->value_or("")).append(1, '\0');
        }
    }
    std::string strBlock;
    PutInteger(strBlock, vAddress.size(), 2);
    PutInteger(strBlock, 0, 2);
    PutInteger(strBlock, 12, 4);
    PutInteger(strBlock, 12 + 28 * vAddress.size(), 4);
    return strBlock + strEntries + strPool;
}

void CompareBlocks(CFailures& failures, std::string const& strQuestion, std::string const& strBlock,
                   std::string const& strExpected) {
    if (strBlock == strExpected) return;
    size_t n = 0;
    while (n < strBlock.size() && n < strExpected.size() && strBlock[n] == strExpected[n]) ++n;
    failures.Add(strQuestion + ": the block has " + std::to_string(strBlock.size()) + " bytes instead of " +
                 std::to_string(strExpected.size()) + " and differs from byte " + std::to_string(n) + " on");
}

std::string CityBlock(std::string const& strCode, std::string const& strOldCode, unsigned short nSortType) {
    unsigned char abRecord[16] = {};
    std::memcpy(abRecord, &nSortType, sizeof nSortType);
    std::memcpy(abRecord + 2, strOldCode.c_str(), strOldCode.size() + 1);
    std::memcpy(abRecord + 8, strCode.c_str(), strCode.size() + 1);
    HGLOBAL hBlock = nullptr;
    return PstAdrCity(abRecord, &hBlock) == 0 ? TakeBlock(hBlock) : std::string();
}

} // namespace national
