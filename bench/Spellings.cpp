// Spellings.cpp - one change for each address.
#include "bench/Spellings.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace {

constexpr char NUMBER[] = "１－２－３";

// The four parts of an address; a way of spelling changes some of them.
struct CParts {
    std::string strFront, strPref, strCity, strTown, strNumber;
    std::string_view strCode;

    std::string Text(char const* pszBetween = "") const {
        std::string str = strFront;
        for (std::string const* pPart : {&strPref, &strCity, &strTown, &strNumber})
            if (!pPart->empty()) str.append(str.empty() ? "" : pszBetween).append(*pPart);
        return str;
    }
};

using CPair = std::pair<std::string_view, std::string_view>;

// Whether one of the pairs' first texts is there: the first of them that is becomes its second one.
template <size_t N>
bool Replace(std::string& str, CPair const (&aPair)[N]) {
    for (auto const& [strFrom, strTo] : aPair) {
        size_t const nPos = str.find(strFrom);
        if (nPos == std::string::npos) continue;
        str.replace(nPos, strFrom.size(), strTo);
        return true;
    }
    return false;
}

template <size_t N>
bool ReplaceAnywhere(CParts& parts, CPair const (&aPair)[N]) {
    return Replace(parts.strTown, aPair) || Replace(parts.strCity, aPair) || Replace(parts.strPref, aPair);
}

bool EndsIn(std::string_view str, std::string_view strEnd) {
    return str.size() >= strEnd.size() && str.substr(str.size() - strEnd.size()) == strEnd;
}

// --- the ways ------------------------------------------------------------------------------------------------------

bool AsTheTable(CParts&) {
    return true;
}

bool NoPrefecture(CParts& parts) {
    parts.strPref.clear();
    return true;
}

// 余市郡余市町; 大和郡山市 is no county's.
bool NoCounty(CParts& parts) {
    static constexpr std::string_view COUNTY = "郡";
    size_t const nPos = parts.strCity.find(COUNTY);
    if (nPos == std::string::npos || !(EndsIn(parts.strCity, "町") || EndsIn(parts.strCity, "村"))) return false;
    parts.strCity.erase(0, nPos + COUNTY.size());
    return true;
}

bool OtherKe(CParts& parts) {
    static constexpr CPair PAIR[] = {{"ヶ", "ケ"}, {"ケ", "ヶ"}};
    return ReplaceAnywhere(parts, PAIR);
}

bool WrittenGa(CParts& parts) {
    static constexpr CPair PAIR[] = {{"ヶ", "が"}, {"ケ", "が"}};
    return ReplaceAnywhere(parts, PAIR);
}

bool OtherNo(CParts& parts) {
    static constexpr CPair PAIR[] = {{"ノ", "の"}, {"の", "ノ"}, {"之", "の"}};
    return ReplaceAnywhere(parts, PAIR);
}

bool WithOaza(CParts& parts) {
    if (parts.strTown.find("字") != std::string::npos) return false;
    parts.strTown.insert(0, "大字");
    return true;
}

bool OldKanji(CParts& parts) {
    static constexpr CPair PAIR[] = {{"沢", "澤"}, {"浜", "濱"}, {"広", "廣"}, {"国", "國"}, {"竜", "龍"},
                                     {"桜", "櫻"}, {"条", "條"}, {"学", "學"}, {"栄", "榮"}, {"万", "萬"},
                                     {"滝", "瀧"}, {"辺", "邊"}, {"関", "關"}, {"円", "圓"}, {"恵", "惠"},
                                     {"県", "縣"}, {"区", "區"}};
    return ReplaceAnywhere(parts, PAIR);
}

bool OtherDigits(CParts& parts) {
    static constexpr CPair PAIR[] = {{"一", "１"}, {"二", "２"}, {"三", "３"}, {"四", "４"},
                                     {"五", "５"}, {"六", "６"}, {"七", "７"}, {"八", "８"},
                                     {"九", "９"}, {"１", "一"}, {"２", "二"}, {"３", "三"}};
    return Replace(parts.strTown, PAIR);
}

bool AsciiWithBlanks(CParts& parts) {
    static constexpr CPair PAIR[] = {{"１", "1"}, {"２", "2"}, {"３", "3"}, {"４", "4"}, {"５", "5"}, {"６", "6"},
                                     {"７", "7"}, {"８", "8"}, {"９", "9"}, {"０", "0"}, {"－", "-"}};
    for (std::string* pPart : {&parts.strTown, &parts.strNumber})
        while (Replace(*pPart, PAIR)) {
        }
    parts.strPref += ' ';
    parts.strCity += ' ';
    parts.strTown += ' ';
    return true;
}

bool NumberInWords(CParts& parts) {
    parts.strNumber = "２丁目３番４号";
    return true;
}

bool WithBuilding(CParts& parts) {
    parts.strNumber += "　サンハイツ２０３号室";
    return true;
}

bool KyotoStreet(CParts& parts) {
    static constexpr std::string_view KYOTO = "京都市";
    if (std::string_view(parts.strCity).substr(0, KYOTO.size()) != KYOTO) return false;
    parts.strTown.insert(0, "烏丸通四条上る");
    return true;
}

bool CodeInFront(CParts& parts) {
    if (parts.strCode.size() != 7) return false;
    parts.strFront.append("〒").append(parts.strCode.substr(0, 3)).append("-").append(parts.strCode.substr(3));
    parts.strFront += ' ';
    return true;
}

// Rare ones come often enough: each has its turn as often as all others, as long as a name fits.
struct CWay {
    char const* pszName;
    bool (*pfnChange)(CParts&);
};
constexpr CWay WAY[] = {{"as the table", AsTheTable},
                        {"no prefecture", NoPrefecture},
                        {"no county", NoCounty},
                        {"other ke", OtherKe},
                        {"written ga", WrittenGa},
                        {"other no", OtherNo},
                        {"with 大字", WithOaza},
                        {"old kanji", OldKanji},
                        {"other digits", OtherDigits},
                        {"ASCII with blanks", AsciiWithBlanks},
                        {"number in words", NumberInWords},
                        {"with building", WithBuilding},
                        {"street of Kyoto", KyotoStreet},
                        {"code in front", CodeInFront}};

} // namespace

std::vector<CSpelling> MakeSpellings(CQuestions const& questions) {
    std::vector<CSpelling> vSpelling;
    size_t nWay = 0;
    for (CQuestion const& question : questions.vFull) {
        CParts const table = {"", question.vName[0], question.vName[1], question.vName[2], NUMBER, question.strCode};
        CParts parts = table;
        while (!WAY[nWay % std::size(WAY)].pfnChange(parts)) ++nWay;
        vSpelling.push_back({WAY[nWay % std::size(WAY)].pszName, parts.Text(), table.Text(), &question});
        ++nWay;
    }
    // Copies, one behind the other: texts are read in the order of memory.
    return std::vector<CSpelling>(vSpelling);
}
