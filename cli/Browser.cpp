// Browser.cpp - the browsing calls of the API, each beside its like in the class.
#include "cli/Browser.h"

#include "api/Pstexec.h"
#include "cli/Address.h"
#include "cli/ApiData.h"
#include "cli/Failure.h"

#include <cstdint>
#include <cstring>
#include <limits>
#include <unordered_set>
#include <utility>

namespace qe {

namespace {

void Check(uint32_t nStatus) {
    if (nStatus != 0) throw CFailure(EXIT_SYSTEM, "not enough memory.");
}

// The record of PstAdrRPrf: the address record, whose text goes on to its NUL, however long it is.
std::vector<char> PrefectureRecord(std::string const& strText, uint16_t nSortType) {
    std::vector<char> vRecord(offsetof(tagADDRESSRECORD, szAddress) + strText.size() + 1);
    std::memcpy(vRecord.data(), &nSortType, sizeof nSortType);
    strText.copy(&vRecord[offsetof(tagADDRESSRECORD, szAddress)], strText.size());
    return vRecord;
}

// Texts of a block that stand one behind the other, each with a byte of its length in front. A text above 255 bytes
// stands there whole, though its byte does not hold its length: the class knows it.
class CTextReader {
  public:
    explicit CTextReader(CBlock const& block) : m_block(block) {}
    std::string Take(std::string const& strKnown) {
        size_t const nLength = strKnown.size();
        std::string strText(m_block.Bytes(m_nOffset + 1, nLength));
        m_nOffset += 1 + nLength;
        return strText;
    }
    void SkipByte() { ++m_nOffset; }

  private:
    CBlock const& m_block;
    size_t m_nOffset = 2; // behind the count
};

constexpr size_t LINE_SLOTS[] = {0, 4, 16, 24}; // postal code, old code, line, organisation

CRow ReadLine(CBlock const& block, size_t nLine) {
    CRow row;
    for (size_t const nSlot : LINE_SLOTS) row.push_back(block.EntryText(nLine, nSlot));
    return row;
}

} // namespace

// --- both answers --------------------------------------------------------------------------------------------------

CBrowser::CAnswer CBrowser::AskPrefectures(std::string const& strText) {
    std::vector<char> vRecord = PrefectureRecord(strText, m_nSortType);
    CAnswer answer;
    HGLOBAL hResult = nullptr;
    uint32_t const nStatus = PstAdrRPrf(vRecord.data(), &hResult);
    if (nStatus != PST_NO_PREFECTURE) {
        Check(nStatus);
        answer.pBlock = std::make_unique<CBlock>(hResult);
    }
    m_dictionary.Class().SetSortType(m_nSortType);
    if (strText.empty())
        m_dictionary.Class().GetPref(answer.vAddr);
    else
        m_dictionary.Class().GetPrefFromCity(strText.c_str(), answer.vAddr);
    return answer;
}

CBrowser::CAnswer CBrowser::Ask(size_t nNumber, PFNAPI pfnApi, PFNCLASS pfnClass) {
    CAnswer answer;
    if (nNumber > std::numeric_limits<unsigned short>::max()) return answer;
    HGLOBAL hResult = nullptr;
    Check(pfnApi(static_cast<unsigned short>(nNumber), &hResult));
    answer.pBlock = std::make_unique<CBlock>(hResult);
    (m_dictionary.Class().*pfnClass)(nNumber, answer.vAddr);
    return answer;
}

CBrowser::CAnswer CBrowser::AskCities(size_t nPref) {
    AskPrefectures("");
    return Ask(nPref, PstAdrRCity, &CAddrDic::GetCityFromNo);
}

CBrowser::CAnswer CBrowser::AskTowns(size_t nPref, size_t nCity) {
    AskCities(nPref);
    return Ask(nCity, PstAdrRTown, &CAddrDic::GetTownFromNo);
}

CBrowser::CAnswer CBrowser::AskAll(size_t nPref, size_t nCity) {
    AskCities(nPref);
    return Ask(nCity, PstAdrRTownForUI, &CAddrDic::GetTownExFromNo);
}

// --- lists ---------------------------------------------------------------------------------------------------------

CPlace CBrowser::MakePlace(size_t nNumber, tagADDR const& addr) const {
    CPlace place = {nNumber, "", "", "", "", false, addr.pListCity};
    for (char const* psz : {addr.pszPrefKana, addr.pszCityKana, addr.pszTownKana})
        if (psz != nullptr) place.strKana = m_dictionary.Text(psz);
    tagADDRINFO const* const pInfo = EntryOf(place.pNode);
    place.bSuperseded = pInfo != nullptr && (pInfo->nNode & ADDRINFO_SUPERSEDED) != 0;
    return place;
}

tagADDRINFO const* CBrowser::EntryOf(tagADDRNODE const* pNode) const {
    return pNode == nullptr ? nullptr : m_dictionary.Class().GetAddrInfo(pNode->nInfo);
}

std::vector<CPlace> CBrowser::Prefectures() {
    CAnswer const answer = AskPrefectures("");
    std::vector<CPlace> vPlace;
    if (answer.pBlock == nullptr) return vPlace;
    CTextReader reader(*answer.pBlock);
    for (size_t i = 0; i < answer.vAddr.size(); ++i) {
        CPlace place = MakePlace(i, answer.vAddr[i]);
        place.strName = reader.Take(m_dictionary.Text(answer.vAddr[i].pszPref));
        if (!place.strName.empty()) vPlace.push_back(std::move(place));
    }
    return vPlace;
}

std::vector<CPlace> CBrowser::Cities(size_t nPref) {
    CAnswer const answer = AskCities(nPref);
    std::vector<CPlace> vPlace;
    if (answer.pBlock == nullptr) return vPlace;
    CTextReader reader(*answer.pBlock);
    for (tagADDR const& addr : answer.vAddr) {
        vPlace.push_back(MakePlace(vPlace.size(), addr));
        vPlace.back().strName = reader.Take(m_dictionary.Text(addr.pszCity));
    }
    return vPlace;
}

std::vector<CPlace> CBrowser::Towns(size_t nPref, size_t nCity) {
    CAnswer const answer = AskTowns(nPref, nCity);
    std::vector<CPlace> vPlace;
    if (answer.pBlock == nullptr) return vPlace;
    CTextReader reader(*answer.pBlock);
    for (tagADDR const& addr : answer.vAddr) {
        vPlace.push_back(MakePlace(vPlace.size(), addr));
        vPlace.back().strName = reader.Take(m_dictionary.Text(addr.pszTown));
        vPlace.back().strCode = reader.Take(m_dictionary.Text(addr.pszPostCode));
        vPlace.back().strOldCode = reader.Take(m_dictionary.Text(addr.pszCodeExt));
        reader.SkipByte();
    }
    return vPlace;
}

std::vector<std::string> CBrowser::PrefecturesOf(std::string const& strText) {
    CAnswer const answer = AskPrefectures(strText);
    std::vector<std::string> vName;
    if (answer.pBlock == nullptr) return vName;
    CTextReader reader(*answer.pBlock);
    for (tagADDR const& addr : answer.vAddr) vName.push_back(reader.Take(m_dictionary.Text(addr.pszPref)));
    return vName;
}

// --- what lies below -----------------------------------------------------------------------------------------------

// A node may refer to the entry of another one: a city to that of its nameless town, a town to that of a subdivision.
std::vector<CRow> CBrowser::Addresses(CPlace const& place) const {
    std::vector<tagADDRNODE const*> vNode;
    m_dictionary.Class().recCollectNode(place.pNode, vNode);
    std::unordered_set<tagADDRINFO const*> seen;
    std::vector<CRow> vAddress;
    for (tagADDRNODE const* pNode : vNode) {
        tagADDRINFO const* const pInfo = EntryOf(pNode);
        if (!seen.insert(pInfo).second) continue;
        tagADDR addr(0);
        m_dictionary.Class().GetAddr(pInfo, &addr);
        vAddress.push_back(MakeAddress(m_dictionary, addr));
    }
    return vAddress;
}

std::vector<CRow> CBrowser::Lines(size_t nPref, size_t nCity) {
    return LinesOf(nPref, nCity, [](tagADDR const&) { return true; });
}

// Names of towns are never shared between nodes: an address lies in the town whose very text it has.
std::vector<CRow> CBrowser::Lines(size_t nPref, size_t nCity, size_t nTown) {
    CAnswer const towns = AskTowns(nPref, nCity);
    if (nTown >= towns.vAddr.size()) return {};
    char const* const pszTown = towns.vAddr[nTown].pszTown;
    return LinesOf(nPref, nCity, [pszTown](tagADDR const& addr) { return addr.pszTown == pszTown; });
}

std::vector<CRow> CBrowser::LinesOf(size_t nPref, size_t nCity, std::function<bool(tagADDR const&)> const& Fits) {
    CAnswer const answer = AskAll(nPref, nCity);
    std::vector<CRow> vLine;
    if (answer.pBlock == nullptr) return vLine;
    for (size_t i = 0; i < answer.vAddr.size(); ++i)
        if (Fits(answer.vAddr[i])) vLine.push_back(ReadLine(*answer.pBlock, i));
    return vLine;
}

} // namespace qe
