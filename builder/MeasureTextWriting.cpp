// MeasureTextWriting.cpp - ways of writing, each as people use it.
#include "builder/MeasureTextWriting.h"

#include "builder/Text.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>

namespace qe {

namespace {

constexpr char const* KANJI_DIGIT[] = {"〇", "一", "二", "三", "四", "五", "六", "七", "八", "九"};
constexpr char const* FULL_WIDTH_DIGIT[] = {"０", "１", "２", "３", "４", "５", "６", "７", "８", "９"};

// New form and old one.
constexpr char const* OLD_KANJI[][2] = {
    {"浜", "濱"}, {"沢", "澤"}, {"桜", "櫻"}, {"竜", "龍"}, {"広", "廣"}, {"国", "國"}, {"島", "嶋"}, {"辺", "邊"},
    {"塩", "鹽"}, {"関", "關"}, {"滝", "瀧"}, {"学", "學"}, {"芦", "蘆"}, {"豊", "豐"}, {"栄", "榮"}, {"条", "條"},
    {"来", "來"}, {"宝", "寶"}, {"円", "圓"}, {"弁", "辨"}, {"蔵", "藏"}, {"鉄", "鐵"}, {"駅", "驛"}, {"桧", "檜"},
    {"館", "舘"}, {"崎", "﨑"}, {"高", "髙"}, {"真", "眞"}, {"万", "萬"}, {"与", "與"}, {"仏", "佛"}, {"児", "兒"},
    {"総", "總"}, {"亀", "龜"}, {"岳", "嶽"}, {"稲", "稻"}, {"瀬", "瀨"}, {"黒", "黑"}, {"静", "靜"}, {"恵", "惠"},
    {"徳", "德"}, {"郷", "鄕"}, {"実", "實"}, {"寿", "壽"}, {"当", "當"}, {"楽", "樂"}, {"満", "滿"}, {"焼", "燒"},
    {"緑", "綠"}, {"縄", "繩"}, {"薬", "藥"}, {"軽", "輕"}, {"霊", "靈"}, {"麦", "麥"}, {"浅", "淺"}, {"峰", "峯"},
    {"曽", "曾"}, {"富", "冨"}, {"荘", "莊"}, {"帯", "帶"}, {"巣", "巢"}, {"横", "橫"}, {"渋", "澁"}, {"糸", "絲"},
    {"観", "觀"}, {"衛", "衞"}, {"弥", "彌"}};

// What the organisations' table and the town table write differently besides.
constexpr char const* VARIANT_KANJI[][2] = {{"応", "應"}, {"淵", "渕"}, {"餅", "餠"},
                                            {"梼", "檮"}, {"潟", "瀉"}, {"藪", "薮"}};

// The katakana of half width in their order, from U+FF61 on, as they are in full width.
constexpr std::string_view HALF_WIDTH_KATAKANA = "。「」、・ヲァィゥェォャュョッーアイウエオカキクケコサシスセソタチ"
                                                 "ツテトナニヌネノハヒフヘホマミムメモヤユヨラリルレロワン";
constexpr uint32_t FIRST_HALF_WIDTH = 0xFF61;
constexpr uint32_t FIRST_VOICED = 0x30AC; // ガ ...
constexpr uint32_t LAST_VOICED = 0x30DD;  // ... to ポ

template <size_t COUNT>
std::string NewForm(std::string const& strCharacter, char const* const (&aPair)[COUNT][2]) {
    for (auto const& [pszNew, pszOld] : aPair)
        if (strCharacter == pszOld) return pszNew;
    return strCharacter;
}

// Offset of each character, and the text's end.
std::vector<size_t> Characters(std::string_view str) {
    std::vector<size_t> vPos;
    for (size_t nPos = 0; nPos < str.size(); nPos += CharacterSize(str.substr(nPos))) vPos.push_back(nPos);
    vPos.push_back(str.size());
    return vPos;
}

// The character of a text of one to three bytes.
uint32_t CodePoint(std::string_view str) {
    auto const Byte = [&](size_t n) { return static_cast<uint32_t>(static_cast<unsigned char>(str[n])); };
    if (str.size() == 2) return (Byte(0) & 0x1F) << 6 | (Byte(1) & 0x3F);
    if (str.size() == 3) return (Byte(0) & 0x0F) << 12 | (Byte(1) & 0x3F) << 6 | (Byte(2) & 0x3F);
    return str.size() == 1 ? Byte(0) : 0;
}

std::string Utf8(uint32_t nCharacter) {
    if (nCharacter < 0x80) return {static_cast<char>(nCharacter)};
    return {static_cast<char>(0xE0 | nCharacter >> 12), static_cast<char>(0x80 | (nCharacter >> 6 & 0x3F)),
            static_cast<char>(0x80 | (nCharacter & 0x3F))};
}

bool IsKanji(std::string_view strCharacter) {
    uint32_t const n = CodePoint(strCharacter);
    return (n >= 0x4E00 && n <= 0x9FFF) || strCharacter == "々";
}

// What each pair's one member becomes behind a kanji.
bool Replace(std::string& str, std::initializer_list<std::pair<char const*, char const*>> listPair) {
    std::string strNew;
    bool bBehindKanji = false;
    std::vector<size_t> const vPos = Characters(str);
    for (size_t n = 0; n + 1 < vPos.size(); ++n) {
        std::string strCharacter = str.substr(vPos[n], vPos[n + 1] - vPos[n]);
        bool const bKanji = IsKanji(strCharacter);
        if (bBehindKanji)
            for (auto const& [pszFrom, pszTo] : listPair)
                if (strCharacter == pszFrom) {
                    strCharacter = pszTo;
                    break;
                }
        strNew += strCharacter;
        bBehindKanji = bKanji;
    }
    bool const bChanged = strNew != str;
    str = std::move(strNew);
    return bChanged;
}

// --- numbers ---

int IndexOf(char const* const (&aDigit)[10], std::string_view strCharacter) {
    auto const* const p = std::find(std::begin(aDigit), std::end(aDigit), strCharacter);
    return p == std::end(aDigit) ? -1 : static_cast<int>(p - std::begin(aDigit));
}

bool IsNumeral(std::string_view strCharacter) {
    return (strCharacter >= "0" && strCharacter <= "9") || IndexOf(FULL_WIDTH_DIGIT, strCharacter) >= 0 ||
           IndexOf(KANJI_DIGIT, strCharacter) >= 0 || strCharacter == "十" || strCharacter == "百" ||
           strCharacter == "千";
}

bool EndsWithNumeral(std::string_view str) {
    std::vector<size_t> const vPos = Characters(str);
    return vPos.size() > 1 && IsNumeral(str.substr(vPos[vPos.size() - 2]));
}

bool BeginsWithNumeral(std::string_view str) {
    return IsNumeral(str.substr(0, CharacterSize(str)));
}

// A number in kanji or full-width digits, below 200; -1 for any other.
int NumberOf(std::string_view str) {
    int nNumber = 0;
    int nDigits = -1; // what a unit counts
    std::vector<size_t> const vPos = Characters(str);
    for (size_t n = 0; n + 1 < vPos.size(); ++n) {
        std::string_view const strCharacter = str.substr(vPos[n], vPos[n + 1] - vPos[n]);
        int nDigit = IndexOf(FULL_WIDTH_DIGIT, strCharacter);
        if (nDigit < 0) nDigit = IndexOf(KANJI_DIGIT, strCharacter);
        if (nDigit >= 0) {
            nDigits = std::max(nDigits, 0) * 10 + nDigit;
        } else if (strCharacter == "十" || strCharacter == "百") {
            nNumber += (nDigits < 0 ? 1 : nDigits) * (strCharacter == "十" ? 10 : 100);
            nDigits = -1;
        } else {
            return -1;
        }
        if (nNumber >= 200 || nDigits >= 200) return -1;
    }
    return nNumber + std::max(nDigits, 0);
}

std::string InDigits(int nNumber, char const* const (&aDigit)[10]) {
    std::string str;
    for (char const cDigit : std::to_string(nNumber)) str += aDigit[cDigit - '0'];
    return str;
}

// 十, 十一, 二十一, 百五
std::string InKanji(int nNumber) {
    std::string str;
    if (nNumber >= 100) str += "百";
    int const nTens = nNumber / 10 % 10;
    if (nTens > 1) str += KANJI_DIGIT[nTens];
    if (nTens > 0) str += "十";
    if (nNumber % 10 > 0) str += KANJI_DIGIT[nNumber % 10];
    return str;
}

// Whether a numeral there counts something, and is no part of a name like 八幡.
bool Counts(std::string_view strBefore, std::string_view strBehind) {
    if (EndsWith(strBefore, "第")) return true;
    constexpr std::string_view COUNTED[] = {"条", "丁", "番", "線", "区", "号", "地割"};
    return std::any_of(std::begin(COUNTED), std::end(COUNTED),
                       [&](std::string_view strCounted) { return BeginsWith(strBehind, strCounted); });
}

} // namespace

std::string CWritten::Text() const {
    std::string strText = bHalfWidth ? ToHalfWidth(strCode) : strCode;
    bool bFirst = true;
    for (std::string const* pPart : {&strPref, &strCounty, &strCity, &strStreet, &strTown, &strPlace, &strNumber}) {
        if (pPart->empty()) continue;
        bool const bNumbers = EndsWithNumeral(strText) && BeginsWithNumeral(*pPart);
        // A county and its city are one part.
        bool const bBlank = bHalfWidth && !(pPart == &strCity && !strCounty.empty());
        if (bNumbers || (bBlank && !bFirst)) strText += ' ';
        strText += bHalfWidth ? ToHalfWidth(*pPart) : *pPart;
        bFirst = false;
    }
    return strText + (bHalfWidth ? ToHalfWidth(strBehind) : strBehind);
}

std::string ToHalfWidth(std::string_view str) {
    auto const KatakanaIndex = [](uint32_t nCharacter) { return HALF_WIDTH_KATAKANA.find(Utf8(nCharacter)); };
    auto const Half = [](size_t nIndex) { return Utf8(FIRST_HALF_WIDTH + static_cast<uint32_t>(nIndex / 3)); };
    std::string strHalf;
    std::vector<size_t> const vPos = Characters(str);
    for (size_t n = 0; n + 1 < vPos.size(); ++n) {
        std::string_view const strCharacter = str.substr(vPos[n], vPos[n + 1] - vPos[n]);
        uint32_t const nCharacter = CodePoint(strCharacter);
        if (nCharacter >= 0xFF01 && nCharacter <= 0xFF5E) {
            strHalf += static_cast<char>(nCharacter - 0xFEE0);
        } else if (strCharacter == "　") {
            strHalf += ' ';
        } else if (nCharacter < 0x3000 || nCharacter > 0x30FF) {
            strHalf += strCharacter;
        } else if (KatakanaIndex(nCharacter) != std::string::npos) {
            strHalf += Half(KatakanaIndex(nCharacter));
        } else if (nCharacter < FIRST_VOICED || nCharacter > LAST_VOICED) {
            strHalf += strCharacter;
        } else if (KatakanaIndex(nCharacter - 1) != std::string::npos) {
            strHalf.append(Half(KatakanaIndex(nCharacter - 1))).append("ﾞ");
        } else {
            strHalf.append(Half(KatakanaIndex(nCharacter - 2))).append("ﾟ");
        }
    }
    return strHalf;
}

bool SwapKe(std::string& str) {
    return Replace(str, {{"ケ", "ヶ"}, {"ヶ", "ケ"}});
}

bool WriteGa(std::string& str) {
    return Replace(str, {{"ケ", "が"}, {"ヶ", "が"}});
}

bool SwapNo(std::string& str) {
    return Replace(str, {{"ノ", "の"}, {"の", "ノ"}});
}

bool TakeOutAza(std::string& str) {
    constexpr std::string_view AZA = "大字";
    size_t const nPos = str.find(AZA);
    if (nPos == std::string::npos) return false;
    str.erase(nPos, AZA.size());
    return true;
}

bool WriteOldKanji(std::string& str, CRandom& random) {
    std::vector<size_t> vPair; // that the text has the new form of
    for (size_t n = 0; n < std::size(OLD_KANJI); ++n)
        if (Contains(str, OLD_KANJI[n][0])) vPair.push_back(n);
    if (vPair.empty()) return false;
    auto const& [pszNew, pszOld] = OLD_KANJI[vPair[random.Below(static_cast<uint32_t>(vPair.size()))]];
    for (size_t nPos = 0; (nPos = str.find(pszNew, nPos)) != std::string::npos;) str.replace(nPos, 3, pszOld);
    return true;
}

std::string WithNewKanji(std::string_view str) {
    std::string strNew;
    std::string strLast; // for 々
    std::vector<size_t> const vPos = Characters(str);
    for (size_t n = 0; n + 1 < vPos.size(); ++n) {
        std::string const strCharacter(str.substr(vPos[n], vPos[n + 1] - vPos[n]));
        if (strCharacter != "々") {
            strLast = NewForm(strCharacter, OLD_KANJI);
            strLast = NewForm(strLast, VARIANT_KANJI);
        }
        strNew += strLast;
    }
    return strNew;
}

bool RewriteNumber(std::string& str, CRandom& random) {
    std::string_view const strAll = str;
    std::vector<size_t> const vPos = Characters(str);
    for (size_t n = 0, nEnd = 0; n + 1 < vPos.size(); n = std::max(nEnd, n + 1)) {
        auto const Character = [&](size_t nIndex) {
            return strAll.substr(vPos[nIndex], vPos[nIndex + 1] - vPos[nIndex]);
        };
        for (nEnd = n; nEnd + 1 < vPos.size() && IsNumeral(Character(nEnd));) ++nEnd;
        std::string const strOld(strAll.substr(vPos[n], vPos[nEnd] - vPos[n]));
        int const nNumber = strOld.empty() ? -1 : NumberOf(strOld);
        if (nNumber <= 0 || !Counts(strAll.substr(0, vPos[n]), strAll.substr(vPos[nEnd]))) continue;
        std::vector<std::string> vNew;
        for (std::string const& strNew : {InDigits(nNumber, FULL_WIDTH_DIGIT), std::to_string(nNumber),
                                          InKanji(nNumber), InDigits(nNumber, KANJI_DIGIT)})
            if (strNew != strOld) vNew.push_back(strNew);
        str.replace(vPos[n], strOld.size(), vNew[random.Below(static_cast<uint32_t>(vNew.size()))]);
        return true;
    }
    return false;
}

std::string StreetOfKyoto(CRandom& random) {
    constexpr char const* SOUTHWARD[] = {"烏丸", "室町", "新町",   "西洞院", "油小路", "堀川",
                                         "大宮", "千本", "河原町", "寺町",   "東洞院", "高倉"};
    constexpr char const* EASTWARD[] = {"四条", "五条",   "七条",   "三条",   "御池",
                                        "二条", "丸太町", "今出川", "仏光寺", "松原"};
    std::string const strSouthward = random.Of(SOUTHWARD);
    std::string const strEastward = random.Of(EASTWARD);
    if (random.Below(2) == 0) return strSouthward + "通" + strEastward + random.Of({"上る", "下る", "上ル", "下ル"});
    return strEastward + "通" + strSouthward + random.Of({"東入", "西入", "東入る", "西入る", "東入ル", "西入ル"});
}

std::string SomeBuilding(CRandom& random) {
    constexpr char const* BUILDING[] = {
        " サンハイツ２０３号室",   "　グリーンコーポ１０１", " メゾン青山 5F",           " 第２中央ビル３階",
        " コーポ山田Ｂ棟２０２",   " ハイツ本町 302",        "　マンション旭ヶ丘４－Ｂ", " 大手町ビルディング 5F",
        " 県営住宅３号棟４０５号", " ライオンズ東町 1203",   "　駅前プラザ７Ｆ",         " シャトー・ド・桜 201号"};
    return random.Of(BUILDING);
}

std::string CodeInFront(std::string_view strCode, CRandom& random) {
    std::string const strFirst(strCode.substr(0, 3));
    std::string const strLast(strCode.substr(3));
    auto const Wide = [](std::string const& str) {
        std::string strWide;
        for (char const cDigit : str) strWide += FULL_WIDTH_DIGIT[cDigit - '0'];
        return strWide;
    };
    switch (random.Below(6)) {
    case 0:
        return "〒" + strFirst + "-" + strLast + " ";
    case 1:
        return "〒" + strFirst + strLast + " ";
    case 2:
        return "〒" + strFirst + strLast;
    case 3:
        return "〒" + Wide(strFirst) + "－" + Wide(strLast) + "　";
    case 4:
        return strFirst + "-" + strLast + " ";
    default:
        return "〒 " + Wide(strFirst) + Wide(strLast) + "　";
    }
}

} // namespace qe
