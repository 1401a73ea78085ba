// Lookup.cpp - asking the library.
#include "Lookup.h"

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

std::set<std::string_view> const& OldCodes() {
    static std::set<std::string_view> const vCode = [] {
        std::set<std::string_view> v;
        for (CTownRow const& row : TownRows()) v.insert(row.strOldCode);
        for (COfficeRow const& row : OfficeRows()) v.insert(row.strOldCode);
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

std::string CityBlock(std::string const& strCode, std::string const& strOldCode, unsigned short nSortType) {
    unsigned char abRecord[16] = {};
    std::memcpy(abRecord, &nSortType, sizeof nSortType);
    std::memcpy(abRecord + 2, strOldCode.c_str(), strOldCode.size() + 1);
    std::memcpy(abRecord + 8, strCode.c_str(), strCode.size() + 1);
    HGLOBAL hBlock = nullptr;
    return PstAdrCity(abRecord, &hBlock) == 0 ? TakeBlock(hBlock) : std::string();
}

} // namespace national
