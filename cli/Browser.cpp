// Browser.cpp - the browsing calls of the API, each beside its like in the class.
#include "cli/Browser.h"

#include "cli/Address.h"
#include "cli/Failure.h"

#include <algorithm>
#include <limits>
#include <unordered_set>
#include <utility>

namespace qe {

// --- both answers --------------------------------------------------------------------------------------------------

CBrowser::CAnswer CBrowser::AskPrefectures(std::string const& strText) {
    CAnswer answer;
    qeadrs::CResult<qeadrs::CBlock> block = m_dictionary.Api().PrefectureBlock(strText);
    if (block || block.Error().nKind != qeadrs::EError::NotFound) answer.block = Demand(std::move(block));
    if (strText.empty())
        m_dictionary.Class().GetPref(answer.vAddr);
    else
        m_dictionary.Class().GetPrefFromCity(strText.c_str(), answer.vAddr);
    return answer;
}

CBrowser::CAnswer CBrowser::Ask(size_t nNumber, PFNAPI pfnApi, PFNCLASS pfnClass) {
    CAnswer answer;
    if (nNumber > std::numeric_limits<unsigned short>::max()) return answer;
    answer.block = Demand(m_dictionary.Api().Block(pfnApi, static_cast<unsigned short>(nNumber)));
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

// The block's texts have the lengths of the class's: above 255 bytes the block itself does not tell.
std::vector<CPlace> CBrowser::Places(CAnswer const& answer, CTextMembers const& vText) const {
    if (!answer.block) return {};
    constexpr std::string CPlace::*TEXTS[] = {&CPlace::strName, &CPlace::strCode, &CPlace::strOldCode};
    qeadrs::CPackedReader reader(answer.block->Bytes());
    std::vector<CPlace> vPlace;
    for (tagADDR const& addr : answer.vAddr) {
        CPlace place = MakePlace(vPlace.size(), addr);
        for (size_t i = 0; i < vText.size(); ++i)
            place.*TEXTS[i] = reader.Take(m_dictionary.Text(addr.*vText[i]).size());
        if (vText.size() > 1) reader.TakeZero();
        vPlace.push_back(std::move(place));
    }
    if (!reader.IsGood()) throw CFailure(EXIT_SYSTEM, "an answer of the library ends too early.");
    return vPlace;
}

std::vector<CPlace> CBrowser::Prefectures() {
    std::vector<CPlace> vPlace = Places(AskPrefectures(""), {&tagADDR::pszPref});
    vPlace.erase(
        std::remove_if(vPlace.begin(), vPlace.end(), [](CPlace const& place) { return place.strName.empty(); }),
        vPlace.end());
    return vPlace;
}

std::vector<CPlace> CBrowser::Cities(size_t nPref) {
    return Places(AskCities(nPref), {&tagADDR::pszCity});
}

std::vector<CPlace> CBrowser::Towns(size_t nPref, size_t nCity) {
    return Places(AskTowns(nPref, nCity), {&tagADDR::pszTown, &tagADDR::pszPostCode, &tagADDR::pszCodeExt});
}

std::vector<std::string> CBrowser::PrefecturesOf(std::string const& strText) {
    std::vector<std::string> vName;
    for (CPlace& place : Places(AskPrefectures(strText), {&tagADDR::pszPref}))
        vName.push_back(std::move(place.strName));
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
        vAddress.push_back(MakeAddress(m_dictionary.Dic().Read(addr)));
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
    AskCities(nPref);
    CAnswer answer = Ask(nCity, PstAdrRTownForUI, &CAddrDic::GetTownExFromNo);
    std::vector<CRow> vLine;
    if (!answer.block) return vLine;
    qeadrs::CLines const lines = Demand(qeadrs::CLines::Of(*std::move(answer.block)));
    for (size_t i = 0; i < answer.vAddr.size(); ++i) {
        qeadrs::CLine const line = lines[i];
        if (Fits(answer.vAddr[i]))
            vLine.push_back({std::string(line.strCode), std::string(line.strOldCode), std::string(line.strLine),
                             std::string(line.strOffice)});
    }
    return vLine;
}

} // namespace qe
