// ExpectedRow.cpp - the rules of the town column, one function each.
#include "ExpectedRow.h"

#include <algorithm>
#include <stdexcept>

namespace national {

namespace {

using CPlaces = std::vector<CPlace>;

bool IsDigit(std::string_view strCharacter) {
    return strCharacter.size() == 3 && strCharacter >= "０" && strCharacter <= "９";
}

// Splits at each 、 outside brackets.
std::vector<std::string> Items(std::string_view str) {
    std::vector<std::string> vItem(1);
    int nOpen = 0;
    while (!str.empty()) {
        std::string_view const strCharacter = FirstCharacter(str);
        str.remove_prefix(strCharacter.size());
        if (strCharacter == "、" && nOpen == 0) {
            vItem.emplace_back();
            continue;
        }
        if (strCharacter == "「" || strCharacter == "＜" || strCharacter == "〔") ++nOpen;
        if (strCharacter == "」" || strCharacter == "＞" || strCharacter == "〕") --nOpen;
        vItem.back() += strCharacter;
    }
    return vItem;
}

// The text without all that stands from an opening to its closing mark.
std::string Without(std::string str, std::string_view strOpen, std::string_view strClose) {
    for (size_t nFrom; (nFrom = str.find(strOpen)) != std::string::npos;) {
        size_t const nTo = str.find(strClose, nFrom);
        if (nTo == std::string::npos) break;
        str.erase(nFrom, nTo + strClose.size() - nFrom);
    }
    return str;
}

// "head（inner）" cut at the first, or at the last, opening parenthesis.
struct CCut {
    std::string strHead, strInner;
    bool bCut = false;
};
CCut CutAtParenthesis(std::string_view str, bool bLast) {
    constexpr std::string_view OPEN = "（", CLOSE = "）";
    size_t const nOpen = bLast ? str.rfind(OPEN) : str.find(OPEN);
    if (nOpen == std::string_view::npos || !EndsWith(str, CLOSE)) return {std::string(str), "", false};
    size_t const nInner = nOpen + OPEN.size();
    return {std::string(str.substr(0, nOpen)), std::string(str.substr(nInner, str.size() - CLOSE.size() - nInner)),
            true};
}

// Whether a text is the city's name, with or without its county.
bool IsCitysName(std::string_view strCity, std::string_view str) {
    return strCity == str || EndsWith(strCity, std::string("郡").append(str));
}

CPlace TownItself(CName town) {
    return {std::move(town), {}, {}, {}, true};
}
CPlace AreaOf(CName town, CName area) {
    return {std::move(town), std::move(area), {}, {}, false};
}

bool PlaceWholeCity(CTownRow const& row, CPlaces& vPlace) {
    constexpr std::string_view WHOLE = "一円";
    bool const bWhole = EndsWith(row.strTown, WHOLE) &&
                        IsCitysName(row.strCity, row.strTown.substr(0, row.strTown.size() - WHOLE.size()));
    if (row.strTown != "以下に掲載がない場合" && !bWhole) return false;
    vPlace.push_back(TownItself({}));
    return true;
}

// The text between a head and a tail; the tail is followed by what stands in strBehind.
std::string Between(std::string_view str, std::string_view strHead, std::string_view strTail, std::string& strBefore,
                    std::string& strBehind) {
    size_t const nHead = str.find(strHead);
    size_t const nTail = str.find(strTail);
    if (nHead == std::string_view::npos || nTail == std::string_view::npos) return {};
    strBefore = str.substr(0, nHead);
    strBehind = str.substr(nTail + strTail.size());
    return std::string(str.substr(nHead + strHead.size(), nTail - nHead - strHead.size()));
}

// X の次に [range] 番地がくる場合 [（…）]
bool PlaceNextNumbers(CTownRow const& row, CPlaces& vPlace) {
    std::string strName, strBehind, strKanaName, strKanaBehind;
    CName range;
    range.strName = Between(row.strTown, "の次に", "がくる場合", strName, strBehind);
    if (range.strName.empty()) return false;
    range.strKana = Between(row.strTownKana, "ノツギニ", "ガクルバアイ", strKanaName, strKanaBehind);
    CName const town = IsCitysName(row.strCity, strName) ? CName{} : CName{strName, strKanaName};
    if (range.strName == "番地" && strBehind.empty()) {
        vPlace.push_back(TownItself(town));
        return true;
    }
    if (range.strName == "番地") range = {"", ""};
    vPlace.push_back(AreaOf(town, {range.strName + strBehind, range.strKana + strKanaBehind}));
    return true;
}

// The building's town is found later, when all towns are known: until then its text is the place's town.
bool PlaceFloor(CTownRow const& row, CPlaces& vPlace) {
    CCut const cut = CutAtParenthesis(row.strTown, true);
    CCut const cutKana = CutAtParenthesis(row.strTownKana, true);
    if (!cut.bCut) return false;
    std::string_view strDigits = cut.strInner;
    while (IsDigit(FirstCharacter(strDigits))) strDigits.remove_prefix(FirstCharacter(strDigits).size());
    bool const bFloor = strDigits == "階" && strDigits.size() < cut.strInner.size();
    if (!bFloor && cut.strInner != "地階・階層不明") return false;
    CPlace place = TownItself({cut.strHead, cutKana.strHead});
    place.bDefault = false;
    place.building = CName{};
    if (bFloor) place.strFloor = cut.strInner;
    vPlace.push_back(place);
    return true;
}

// Where lots begin in a text: before its first digit and the counting word in front of it.
size_t FindLots(std::string_view str, std::string_view strCounter) {
    size_t n = 0;
    while (n < str.size() && !IsDigit(FirstCharacter(str.substr(n)))) n += FirstCharacter(str.substr(n)).size();
    return EndsWith(str.substr(0, n), strCounter) ? n - strCounter.size() : n;
}

CName CutLots(std::string_view str, std::string_view strCounter) {
    size_t const nLots = FindLots(str, strCounter);
    std::string const strTown(str.substr(0, nLots));
    std::string strLots(str.substr(nLots));
    for (size_t n; !strTown.empty() && (n = strLots.find(strTown)) != std::string::npos;)
        strLots.erase(n, strTown.size());
    return {strTown, strLots};
}

// 種市第１地割〜第３地割（…）, 越中畑６４地割〜越中畑６６地割, 穴明２２地割、穴明２３地割: lots in the plural.
bool PlaceLots(CTownRow const& row, CPlaces& vPlace) {
    std::string const strHead = CutAtParenthesis(row.strTown, false).strHead;
    size_t const nFirst = strHead.find("地割");
    if (nFirst == std::string::npos || strHead.find("地割", nFirst + 1) == std::string::npos) return false;
    CName const texts = CutLots(row.strTown, "第"); // town and lots
    CName const readings = CutLots(row.strTownKana, "ダイ");
    vPlace.push_back(AreaOf({texts.strName, readings.strName}, {texts.strKana, readings.strKana}));
    return true;
}

// １、１〜１９丁目, 第１
bool IsNumber(std::string_view str) {
    if (BeginsWith(str, "第")) str.remove_prefix(FirstCharacter(str).size());
    return IsDigit(FirstCharacter(str));
}

// A list of places and numbers as level-3 texts; numbers that are neighbours join.
std::vector<CName> AreasOf(std::vector<CName> const& vItem) {
    std::vector<CName> vArea;
    bool bAfterNumber = false;
    for (CName item : vItem) {
        if (item.strName.size() > NAME_LIMIT)
            item = {Without(item.strName, "「", "」"), Without(item.strKana, "＜", "＞")};
        bool const bNumber = IsNumber(item.strName);
        if (bNumber && bAfterNumber && vArea.back().strName.size() + 3 + item.strName.size() <= NAME_LIMIT) {
            vArea.back().strName += "、" + item.strName;
            if (!item.strKana.empty()) vArea.back().strKana += "、" + item.strKana;
        } else {
            vArea.push_back(item);
        }
        bAfterNumber = bNumber;
    }
    return vArea;
}

void PlaceTown(CTownRow const& row, CPlaces& vPlace) {
    CCut const cut = CutAtParenthesis(row.strTown, false);
    CCut const cutKana = CutAtParenthesis(row.strTownKana, false);
    CName const town{cut.strHead, cutKana.strHead};
    if (!cut.bCut || EndsWith(Without(cut.strInner, "「", "」"), "を除く")) {
        vPlace.push_back(TownItself(town));
        return;
    }
    std::vector<std::string> const vText = Items(cut.strInner);
    std::vector<std::string> vKana = Items(cutKana.strInner);
    if (vKana.size() != vText.size()) vKana.assign(vText.size(), "");
    std::vector<CName> vItem;
    for (size_t n = 0; n < vText.size(); ++n) {
        if (vText[n] == "その他")
            vPlace.push_back(TownItself(town));
        else
            vItem.push_back({vText[n], vKana[n]});
    }
    for (CName const& area : AreasOf(vItem)) vPlace.push_back(AreaOf(town, area));
}

CPlaces PlacesOfRow(CTownRow const& row) {
    CPlaces vPlace;
    if (!PlaceWholeCity(row, vPlace) && !PlaceNextNumbers(row, vPlace) && !PlaceFloor(row, vPlace) &&
        !PlaceLots(row, vPlace))
        PlaceTown(row, vPlace);
    return vPlace;
}

// Value of a digit in either script, of 十, 百 and 千, or -1.
long NumeralValue(std::string_view strCharacter) {
    constexpr std::string_view DIGITS = "０１２３４５６７８９〇一二三四五六七八九";
    if (strCharacter.size() == 1 && strCharacter >= "0" && strCharacter <= "9") return strCharacter[0] - '0';
    size_t const n = strCharacter.size() == 3 ? DIGITS.find(strCharacter) : std::string_view::npos;
    if (n != std::string_view::npos) return static_cast<long>(n / 3 % 10);
    return strCharacter == "十" ? 10 : strCharacter == "百" ? 100 : strCharacter == "千" ? 1000 : -1;
}

} // namespace

// A run of numerals becomes its value: 二十一, 二一 and ２１ are one number.
std::string FoldTown(std::string_view strTown) {
    std::string strFolded;
    long nSum = 0, nDigits = -1; // nDigits: the digits since the last 十, 百 or 千; -1 when there is none
    bool bNumber = false;
    auto const EndNumber = [&] {
        if (bNumber) strFolded += std::to_string(nSum + std::max(nDigits, 0L));
        nSum = 0, nDigits = -1, bNumber = false;
    };
    while (!strTown.empty()) {
        std::string_view const strCharacter = FirstCharacter(strTown);
        strTown.remove_prefix(strCharacter.size());
        if (long const nValue = NumeralValue(strCharacter); nValue >= 10) {
            nSum += nValue * (nDigits < 0 ? 1 : nDigits);
            nDigits = -1, bNumber = true;
            continue;
        } else if (nValue >= 0) {
            nDigits = std::max(nDigits, 0L) * 10 % 100000000 + nValue, bNumber = true;
            continue;
        }
        EndNumber();
        if (strCharacter == "ヶ" || strCharacter == "ガ" || strCharacter == "が")
            strFolded += "ケ";
        else if (strCharacter == "ノ" || strCharacter == "之")
            strFolded += "の";
        else if (strCharacter == "大" && BeginsWith(strTown, "字"))
            continue; // 大字 goes as a whole: its 字 in the next round
        else if (strCharacter != "字")
            strFolded += strCharacter;
    }
    EndNumber();
    return strFolded;
}

CExpectedTowns::CExpectedTowns(std::vector<CTownRow> const& vRow) {
    for (CTownRow const& row : vRow) {
        m_vPlaces.push_back(PlacesOfRow(row));
        CCity& city = m_mapCity[CityKey(row.strPref, row.strCity)];
        for (CPlace const& place : m_vPlaces.back())
            if (!place.building) AddTown(city, place);
    }
    for (size_t n = 0; n < vRow.size(); ++n)
        for (CPlace& place : m_vPlaces[n])
            if (place.building) PlaceBuilding(m_mapCity[CityKey(vRow[n].strPref, vRow[n].strCity)], vRow[n], place);
}

void CExpectedTowns::AddTown(CCity& city, CPlace const& place) {
    std::vector<size_t>& vSame = city.mapName[place.town.strName];
    auto const pFound = std::find_if(vSame.begin(), vSame.end(),
                                     [&](size_t n) { return city.vTown[n].name.strKana == place.town.strKana; });
    if (pFound != vSame.end()) {
        city.vTown[*pFound].nDefaults += place.bDefault;
        return;
    }
    if (vSame.empty()) city.mapFolded[FoldTown(place.town.strName)].push_back(place.town.strName);
    vSame.push_back(city.vTown.size());
    city.vTown.push_back({place.town, place.bDefault});
}

void CExpectedTowns::PlaceBuilding(CCity const& city, CTownRow const& row, CPlace& place) const {
    CName text = place.town;
    place.town = {};
    for (CTown const& town : city.vTown) {
        bool const bBegins =
            town.name.strName.size() < text.strName.size() && BeginsWith(text.strName, town.name.strName);
        bool const bReads = BeginsWith(text.strKana, town.name.strKana);
        if (bBegins && bReads && town.name.strName.size() > place.town.strName.size()) place.town = town.name;
    }
    if (place.town.strName.empty()) throw std::runtime_error("a building without a town: " + Describe(row));
    place.building =
        CName{text.strName.substr(place.town.strName.size()), text.strKana.substr(place.town.strKana.size())};
}

std::vector<std::string> CExpectedTowns::ReadingsOf(std::string const& strCity, std::string const& strTown) const {
    std::vector<std::string> vKana;
    auto const pCity = m_mapCity.find(strCity);
    if (pCity == m_mapCity.end()) return vKana;
    auto const pName = pCity->second.mapName.find(strTown);
    if (pName == pCity->second.mapName.end()) return vKana;
    for (size_t n : pName->second) vKana.push_back(pCity->second.vTown[n].name.strKana);
    return vKana;
}

std::vector<std::string> CExpectedTowns::FoldedAlike(std::string const& strCity, std::string const& strTown) const {
    auto const pCity = m_mapCity.find(strCity);
    if (pCity == m_mapCity.end()) return {};
    auto const pFolded = pCity->second.mapFolded.find(FoldTown(strTown));
    return pFolded == pCity->second.mapFolded.end() ? std::vector<std::string>() : pFolded->second;
}

std::vector<CExpectedTowns::CTown> const& CExpectedTowns::TownsOf(std::string const& strCity) const {
    return m_mapCity.at(strCity).vTown;
}

CExpectedTowns const& ExpectedTowns() {
    static CExpectedTowns const towns(TownRows());
    return towns;
}

std::map<std::string, std::string_view> const& CityCodes() {
    static std::map<std::string, std::string_view> const mapCode = [] {
        std::map<std::string, std::string_view> mapWhole, mapNumbers;
        for (size_t n = 0; n < TownRows().size(); ++n) {
            CTownRow const& row = TownRows()[n];
            if (!ExpectedTowns().PlacesOf(n).front().town.strName.empty()) continue;
            bool const bNumbers = row.strTown.find("の次に") != std::string_view::npos;
            (bNumbers ? mapNumbers : mapWhole).emplace(CityKey(row.strPref, row.strCity), row.strCode);
        }
        mapWhole.insert(mapNumbers.begin(), mapNumbers.end());
        return mapWhole;
    }();
    return mapCode;
}

std::string ExpectedText(CTownRow const& row, CPlace const& place) {
    CAddress a;
    a.strPref = row.strPref, a.strPrefKana = row.strPrefKana;
    a.strCity = row.strCity, a.strCityKana = row.strCityKana;
    a.strTown = place.town.strName, a.strTownKana = place.town.strKana;
    if (place.area) a.strArea = place.area->strName, a.strAreaKana = place.area->strKana;
    if (place.building) a.strBlock = place.building->strName, a.strBlockKana = place.building->strKana;
    if (place.strFloor) a.strNote = *place.strFloor;
    return AddressText(a);
}

} // namespace national
