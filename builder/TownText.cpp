// TownText.cpp - from the town column of the official table to a place below the city.
//
//   旭ケ丘                                    Town     旭ケ丘
//   以下に掲載がない場合, 利島村一円          Nameless
//   大通西（１〜１９丁目）                    Areas    大通西: １〜１９丁目
//   抜海村（上勇知、下勇知、夕来）            Areas    抜海村: 上勇知 / 下勇知 / 夕来
//   西美里別（１１３〜７９１番地、西上）      Areas    西美里別: １１３〜７９１番地 / 西上
//   常盤（その他）, 中央（次のビルを除く）    Town     常盤, 中央
//   中央アエル（１階）                        Floor    中央アエル: １階
//   種市第１地割〜第３地割（八木南町）        Areas    種市: 第１地割〜第３地割（八木南町）
#include "builder/TownText.h"

#include "builder/Text.h"

#include <algorithm>

namespace qe {

namespace {

// A text and its reading, each cut in two at the (last) parenthesis that ends it.
struct CParenthesis {
    CNamed head;
    CNamed inner;
    bool bFound = false;
    bool bKana = false; // the reading has the parenthesis too
};

bool CutParenthesis(std::string_view str, bool bLast, std::string& strHead, std::string& strInner) {
    size_t const nOpen = bLast ? str.rfind("（") : str.find("（");
    if (nOpen == std::string_view::npos || !EndsWith(str, "）")) return false;
    size_t const nMark = std::string_view("（").size();
    strHead = str.substr(0, nOpen);
    strInner = str.substr(nOpen + nMark, str.size() - nOpen - 2 * nMark);
    return true;
}

CParenthesis Cut(std::string_view strTown, std::string_view strKana, bool bLast) {
    CParenthesis cut;
    cut.head = {std::string(strTown), std::string(strKana)};
    cut.bFound = CutParenthesis(strTown, bLast, cut.head.strName, cut.inner.strName);
    if (cut.bFound) cut.bKana = CutParenthesis(strKana, bLast, cut.head.strKana, cut.inner.strKana);
    return cut;
}

// Full-width digits and nothing else before 階.
bool IsFloor(std::string_view str) {
    if (str == "地階") return true;
    if (!BeginsWithDigit(str)) return false;
    while (BeginsWithDigit(str)) str.remove_prefix(3);
    return str == "階";
}

bool IsUnknownFloor(std::string_view str) {
    return str == "地階・階層不明";
}

// A number, a range of numbers, or one counted by 第.
bool IsNumber(std::string_view str) {
    if (BeginsWith(str, "第")) str.remove_prefix(std::string_view("第").size());
    return BeginsWithDigit(str);
}

// Whether the text is the city's own name, with or without its county in front.
bool IsCityItself(std::string_view strCity, std::string_view str) {
    if (!EndsWith(strCity, str)) return false;
    std::string_view const strCounty = strCity.substr(0, strCity.size() - str.size());
    return strCounty.empty() || EndsWith(strCounty, "郡");
}

// The areas of one row: neighbouring numbers stay one text, everything else stands for itself. A text that would be
// too long as a name goes on in the next one; a single item that is too long loses its 「…」.
class CAreaList {
  public:
    explicit CAreaList(CTownText& text) : m_text(text) {}

    void Add(CNamed item) {
        if (item.strName.size() > NAME_LIMIT) {
            item.strName = CutName(WithoutQuotes(item.strName), NAME_LIMIT);
            item.strKana = WithoutQuotes(item.strKana);
            m_text.bShortened = true;
        }
        bool const bNumber = IsNumber(item.strName);
        std::string const strJoined = m_text.vArea.empty() ? "" : m_text.vArea.back().strName + "、" + item.strName;
        if (bNumber && m_bLastNumber && strJoined.size() <= NAME_LIMIT) {
            m_text.vArea.back().strName = strJoined;
            if (!item.strKana.empty()) m_text.vArea.back().strKana += "、" + item.strKana;
        } else {
            m_text.vArea.push_back(std::move(item));
        }
        m_bLastNumber = bNumber;
    }

  private:
    CTownText& m_text;
    bool m_bLastNumber = false;
};

// One level-3 text that is not a list: the number range of a city's or a town's own name, or of lots (地割).
void SetSingleArea(CTownText& text, CNamed area) {
    text.nKind = ETownKind::Areas;
    CAreaList(text).Add(std::move(area));
}

void ReadAreas(CTownText& text, CParenthesis const& cut) {
    std::vector<std::string> const vName = SplitList(cut.inner.strName);
    std::vector<std::string> vKana;
    if (cut.bKana) vKana = SplitList(cut.inner.strKana);
    if (vKana.size() != vName.size()) vKana.assign(vName.size(), "");
    text.bReadingLost = !cut.head.strKana.empty() && vKana[0].empty();
    text.town = cut.head;
    CAreaList areas(text);
    for (size_t n = 0; n < vName.size(); ++n) {
        if (vName[n] == "その他")
            text.bDefault = true;
        else if (!vName[n].empty())
            areas.Add({vName[n], vKana[n]});
    }
    text.nKind = text.vArea.empty() ? ETownKind::Town : ETownKind::Areas;
}

// "X の次に [range] 番地がくる場合 [（…）]": the addresses of X that have no town, or those of a number range.
bool ReadNextIsNumber(CTownText& text, std::string_view strCity, std::string_view strTown, std::string_view strKana) {
    constexpr std::string_view NEXT = "の次に";
    constexpr std::string_view COMES = "がくる場合";
    constexpr std::string_view NEXT_KANA = "ノツギニ";
    constexpr std::string_view COMES_KANA = "ガクルバアイ";
    size_t const nNext = strTown.find(NEXT);
    size_t const nComes = strTown.find(COMES);
    if (nNext == std::string_view::npos || nComes == std::string_view::npos || nComes < nNext) return false;
    std::string_view const strOwner = strTown.substr(0, nNext);
    size_t const nKanaNext = strKana.find(NEXT_KANA);
    size_t const nKanaComes = strKana.find(COMES_KANA);
    bool const bKana =
        nKanaNext != std::string_view::npos && nKanaComes != std::string_view::npos && nKanaNext < nKanaComes;
    auto const Range = [](std::string_view str, size_t nFrom, size_t nTo, size_t nBehind) {
        return std::string(str.substr(nFrom, nTo - nFrom)) + std::string(str.substr(nBehind));
    };
    CNamed range;
    range.strName = Range(strTown, nNext + NEXT.size(), nComes, nComes + COMES.size());
    if (bKana)
        range.strKana = Range(strKana, nKanaNext + NEXT_KANA.size(), nKanaComes, nKanaComes + COMES_KANA.size());
    bool const bCity = IsCityItself(strCity, strOwner);
    if (!bCity) text.town = {std::string(strOwner), bKana ? std::string(strKana.substr(0, nKanaNext)) : ""};
    if (range.strName == "番地")
        text.nKind = bCity ? ETownKind::Nameless : ETownKind::Town;
    else
        SetSingleArea(text, std::move(range));
    return true;
}

bool ReadWholeCity(CTownText& text, std::string_view strCity, std::string_view strTown) {
    constexpr std::string_view WHOLE = "一円";
    bool const bWhole = EndsWith(strTown, WHOLE) && strTown.size() > WHOLE.size() &&
                        IsCityItself(strCity, strTown.substr(0, strTown.size() - WHOLE.size()));
    if (strTown.empty() || strTown == "以下に掲載がない場合" || bWhole) {
        text.nKind = ETownKind::Nameless;
        return true;
    }
    return false;
}

bool ReadFloor(CTownText& text, std::string_view strTown, std::string_view strKana) {
    CParenthesis const cut = Cut(strTown, strKana, true);
    if (!cut.bFound || (!IsFloor(cut.inner.strName) && !IsUnknownFloor(cut.inner.strName))) return false;
    text.nKind = ETownKind::Floor;
    text.town = cut.head;
    if (IsFloor(cut.inner.strName)) text.floor = cut.inner;
    return true;
}

// Where the lots of a town begin: 種市|第１地割, 越中畑|６４地割.
size_t FindLots(std::string_view str) {
    size_t nPos = 0;
    while (nPos < str.size() && !IsNumber(str.substr(nPos))) nPos += CharacterSize(str.substr(nPos));
    return nPos;
}

// The lots without the town's name, which may stand before each end of the range; the parenthesis stays as it is.
std::string WithoutRepeats(std::string_view strLots, std::string_view strTown) {
    size_t const nParenthesis = std::min(strLots.find("（"), strLots.size());
    std::string strRange(strLots.substr(0, nParenthesis));
    for (size_t nPos; !strTown.empty() && (nPos = strRange.find(strTown)) != std::string::npos;)
        strRange.erase(nPos, strTown.size());
    return strRange.append(strLots.substr(nParenthesis));
}

// "種市第１地割〜種市第３地割（…）": the town's name is not repeated in the range.
bool ReadLots(CTownText& text, std::string_view strTown, std::string_view strKana) {
    std::string_view const strHead = strTown.substr(0, strTown.find("（"));
    if (!Contains(strHead, "地割") || (!Contains(strHead, "〜") && !Contains(strHead, "、"))) return false;
    size_t const nLots = FindLots(strTown);
    if (nLots == 0 || nLots >= strTown.size()) return false;
    text.town.strName = strTown.substr(0, nLots);
    CNamed lots;
    lots.strName = WithoutRepeats(strTown.substr(nLots), text.town.strName);
    constexpr std::string_view COUNTED = "ダイ"; // 第
    size_t nKana = FindLots(strKana);
    if (Contains(lots.strName, "第") && EndsWith(strKana.substr(0, nKana), COUNTED)) nKana -= COUNTED.size();
    text.town.strKana = strKana.substr(0, nKana);
    lots.strKana = WithoutRepeats(strKana.substr(nKana), text.town.strKana);
    text.nKind = ETownKind::Areas;
    if (lots.strName.size() > NAME_LIMIT) {
        lots.strName = CutName(lots.strName, NAME_LIMIT);
        text.bShortened = true;
    }
    text.vArea.push_back(std::move(lots));
    return true;
}

} // namespace

CTownText ReadTownText(std::string_view strCity, std::string_view strTown, std::string_view strKana) {
    CTownText text;
    if (ReadWholeCity(text, strCity, strTown) || ReadNextIsNumber(text, strCity, strTown, strKana) ||
        ReadFloor(text, strTown, strKana) || ReadLots(text, strTown, strKana))
        return text;
    CParenthesis const cut = Cut(strTown, strKana, false);
    text.town = cut.head;
    // What is excluded inside 「」 concerns one place of a list; outside, the town is what remains: its default.
    if (!cut.bFound || EndsWith(WithoutQuotes(cut.inner.strName), "を除く"))
        text.nKind = ETownKind::Town;
    else
        ReadAreas(text, cut);
    return text;
}

} // namespace qe
