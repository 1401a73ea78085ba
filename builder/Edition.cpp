// Edition.cpp - the towns of one edition, and the rules by which a later edition's take their places.
#include "builder/Edition.h"

#include "builder/Text.h"
#include "builder/TownText.h"

#include <algorithm>
#include <numeric>
#include <set>
#include <utility>

namespace qe {

namespace {

CTownKey CityKey(CTownKey const& key) {
    return {key.strPref, key.strCity, ""};
}

// Old forms of characters and their modern ones: spellings between which the town table changes now and then.
constexpr std::string_view VARIANTS[][2] = {
    {"舘", "館"}, {"檜", "桧"}, {"澤", "沢"}, {"濱", "浜"}, {"邊", "辺"}, {"邉", "辺"}, {"齋", "斎"}, {"嶋", "島"},
    {"廣", "広"}, {"國", "国"}, {"櫻", "桜"}, {"眞", "真"}, {"條", "条"}, {"瀧", "滝"}, {"彌", "弥"}, {"與", "与"},
    {"龍", "竜"}, {"藪", "薮"}, {"渕", "淵"}, {"曾", "曽"}, {"壽", "寿"}, {"榮", "栄"}, {"冨", "富"}, {"峯", "峰"},
    {"嶽", "岳"}, {"﨑", "崎"}, {"髙", "高"}, {"籠", "篭"}, {"諫", "諌"}, {"頸", "頚"}, {"驒", "騨"}, {"蘆", "芦"},
    {"壺", "壷"}, {"枡", "桝"}, {"檮", "梼"}, {"禰", "祢"}, {"礪", "砺"}, {"鷗", "鴎"}, {"圓", "円"}, {"萬", "万"},
    {"薗", "園"}, {"埜", "野"}, {"槇", "槙"}, {"禮", "礼"}, {"鐵", "鉄"}, {"惠", "恵"},
};

std::vector<std::string_view> Characters(std::string_view str) {
    std::vector<std::string_view> vCharacter;
    while (!str.empty()) {
        vCharacter.push_back(str.substr(0, CharacterSize(str)));
        str.remove_prefix(vCharacter.back().size());
    }
    return vCharacter;
}

// Hiragana and small kana as full-sized katakana, variants as their modern forms, all else unchanged.
std::string FoldCharacter(std::string_view strCharacter) {
    constexpr std::string_view SMALL[][2] = {{"ァ", "ア"}, {"ィ", "イ"}, {"ゥ", "ウ"}, {"ェ", "エ"},
                                             {"ォ", "オ"}, {"ッ", "ツ"}, {"ャ", "ヤ"}, {"ュ", "ユ"},
                                             {"ョ", "ヨ"}, {"ヮ", "ワ"}, {"ヵ", "カ"}};
    for (auto const& pair : VARIANTS)
        if (strCharacter == pair[0]) return std::string(pair[1]);
    std::string str(strCharacter);
    // U+3041 to U+3096 stand 0x60 below their katakana: three bytes, of which the last two carry the difference.
    if (str.size() == 3 && str >= "ぁ" && str <= "ゖ") {
        unsigned const nCode = ((str[1] & 0x3Fu) << 6 | (str[2] & 0x3Fu)) + 0x60;
        str[1] = static_cast<char>(0x80 | (nCode >> 6 & 0x3F));
        str[2] = static_cast<char>(0x80 | (nCode & 0x3F));
    }
    for (auto const& pair : SMALL)
        if (str == pair[0]) return std::string(pair[1]);
    return str;
}

// How far a name is from the old one: whether equal (0), equal after folding (1), or by characters (2 and more).
size_t Distance(std::string const& strOld, std::string const& strName) {
    if (strOld == strName) return 0;
    std::string const strFoldedOld = FoldOldName(strOld);
    std::string const strFolded = FoldOldName(strName);
    return strFoldedOld == strFolded ? 1 : 2 + EditDistance(strFoldedOld, strFolded);
}

// Of several towns with the code the one with the closest name; of equally close ones one of the same city, else the
// first of the table.
CSuccession Closest(CEditionTown const& town, std::vector<CEditionTown const*> const& vCandidate) {
    CSuccession best;
    std::pair<size_t, bool> bestRank;
    for (CEditionTown const* pCandidate : vCandidate) {
        bool const bElsewhere =
            town.key.strPref != pCandidate->key.strPref || town.key.strCity != pCandidate->key.strCity;
        std::pair<size_t, bool> const rank = {Distance(town.key.strTown, pCandidate->key.strTown), bElsewhere};
        if (best.pTown != nullptr && !(rank < bestRank)) continue;
        best.pTown = pCandidate;
        bestRank = rank;
    }
    best.nRule = vCandidate.size() == 1 ? ERule::Code
                 : bestRank.first == 0  ? ERule::CodeName
                 : bestRank.first == 1  ? ERule::CodeFolded
                                        : ERule::CodeClosest;
    return best;
}

// The city that has most of the old city's codes; of equal ones the old city itself, else the first of the table. An
// empty key when none of the codes is left.
CTownKey HeirOf(CTownKey const& city, CEdition const& then, CEdition const& next) {
    std::map<CTownKey, size_t> mapCount;
    std::vector<CTownKey> vOrder;
    std::set<std::string> codes;
    for (std::string const& strCode : then.CodesOf(city)) {
        if (!codes.insert(strCode).second) continue; // each code counts once, however many towns share it
        std::set<CTownKey> heirs;
        for (CEditionTown const* pTown : next.WithCode(strCode)) {
            CTownKey const heir = CityKey(pTown->key);
            if (heirs.insert(heir).second && mapCount[heir]++ == 0) vOrder.push_back(heir);
        }
    }
    if (vOrder.empty()) return next.HasCity(city) ? city : CTownKey{};
    CTownKey best = mapCount.count(city) != 0 ? city : vOrder.front();
    for (CTownKey const& heir : vOrder)
        if (mapCount[heir] > mapCount[best]) best = heir;
    return best;
}

} // namespace

char const* RuleName(ERule nRule) {
    switch (nRule) {
    case ERule::None:
        break;
    case ERule::Code:
        return "same code";
    case ERule::CodeName:
        return "same code and name";
    case ERule::CodeFolded:
        return "same code and folded name";
    case ERule::CodeClosest:
        return "same code and closest name";
    case ERule::Name:
        return "same name in the heir of the city";
    case ERule::CityDefault:
        return "default of the heir of the city";
    }
    return "none";
}

void CEdition::Add(CEditionTown const& town) {
    CEditionTown*& pTown = m_mapTown[town.key];
    CCityOfEdition& city = m_mapCity[CityKey(town.key)];
    if (pTown == nullptr) {
        m_vTown.push_back(town);
        pTown = &m_vTown.back();
        city.vTown.push_back(pTown);
    } else if (town.bOwnCode && !pTown->bOwnCode) {
        pTown->strCode = town.strCode;
        pTown->strOldCode = town.strOldCode;
        pTown->bOwnCode = true;
    }
    auto& vWithCode = m_mapCode[town.strCode];
    if (std::find(vWithCode.begin(), vWithCode.end(), pTown) == vWithCode.end()) vWithCode.push_back(pTown);
    city.vCode.push_back(town.strCode);
}

void CEdition::AddRows(std::vector<CTownRow> const& vRow, size_t& nBuildings) {
    for (CTownRow const& row : vRow) {
        CTownText const text = ReadTownText(row.strCity, row.strTown, row.strTownKana);
        if (text.nKind == ETownKind::Floor) {
            ++nBuildings;
            continue;
        }
        std::string const strName = text.nKind == ETownKind::Nameless ? "" : CutName(text.town.strName, NAME_LIMIT);
        Add({{row.strPref, row.strCity, strName},
             row.strPrefKana,
             row.strCityKana,
             strName.empty() ? "" : text.town.strKana,
             row.strCode,
             row.strOldCode,
             row.nLine,
             text.nKind != ETownKind::Areas || text.bDefault});
    }
}

CEditionTown const* CEdition::Find(CTownKey const& key) const {
    auto const pFound = m_mapTown.find(key);
    return pFound == m_mapTown.end() ? nullptr : pFound->second;
}

std::vector<CEditionTown const*> const& CEdition::TownsOf(CTownKey const& city) const {
    static std::vector<CEditionTown const*> const vNone;
    auto const pFound = m_mapCity.find(CityKey(city));
    return pFound == m_mapCity.end() ? vNone : pFound->second.vTown;
}

std::vector<CEditionTown const*> const& CEdition::WithCode(std::string const& strCode) const {
    static std::vector<CEditionTown const*> const vNone;
    auto const pFound = m_mapCode.find(strCode);
    return pFound == m_mapCode.end() ? vNone : pFound->second;
}

std::vector<std::string> const& CEdition::CodesOf(CTownKey const& city) const {
    static std::vector<std::string> const vNone;
    auto const pFound = m_mapCity.find(CityKey(city));
    return pFound == m_mapCity.end() ? vNone : pFound->second.vCode;
}

CSuccession FindSuccessor(CEditionTown const& town, CEdition const& then, CEdition const& next) {
    if (auto const& vCandidate = next.WithCode(town.strCode); !vCandidate.empty()) return Closest(town, vCandidate);
    CTownKey const heir = HeirOf(CityKey(town.key), then, next);
    CEditionTown const* pFolded = nullptr;
    for (CEditionTown const* pCandidate : next.TownsOf(heir)) {
        size_t const nDistance = Distance(town.key.strTown, pCandidate->key.strTown);
        if (nDistance == 0) return {pCandidate, ERule::Name};
        if (nDistance == 1 && pFolded == nullptr) pFolded = pCandidate;
    }
    if (pFolded != nullptr) return {pFolded, ERule::Name};
    CEditionTown const* const pDefault = next.Find(heir);
    return pDefault == nullptr ? CSuccession{} : CSuccession{pDefault, ERule::CityDefault};
}

std::string FoldOldName(std::string const& strName) {
    std::string strFolded;
    for (std::string_view strCharacter : Characters(strName))
        if (strCharacter != "区" && strCharacter != "町") strFolded += FoldCharacter(strCharacter);
    return strFolded.empty() ? strName : FoldTownName(strFolded); // 町 of 上北郡七戸町 is not the nameless town
}

size_t EditDistance(std::string const& str, std::string const& strOther) {
    std::vector<std::string_view> const vFrom = Characters(str);
    std::vector<std::string_view> const vTo = Characters(strOther);
    std::vector<size_t> vCost(vTo.size() + 1);
    std::iota(vCost.begin(), vCost.end(), size_t{0});
    for (size_t i = 0; i < vFrom.size(); ++i) {
        size_t nDiagonal = vCost[0];
        vCost[0] = i + 1;
        for (size_t j = 0; j < vTo.size(); ++j) {
            size_t const nReplaced = nDiagonal + (vFrom[i] == vTo[j] ? 0 : 1);
            nDiagonal = vCost[j + 1];
            vCost[j + 1] = std::min({nReplaced, nDiagonal + 1, vCost[j] + 1});
        }
    }
    return vCost.back();
}

} // namespace qe
