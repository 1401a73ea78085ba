// TextReader.cpp - one text: its front, its city, its town, and what it names them by.
#include "text/TextReader.h"

#include "text/CityForms.h"
#include "text/DictionaryWalk.h"
#include "text/FoldTable.h"
#include "text/Tokens.h"

#include <algorithm>
#include <cstring>

namespace qeadrs {

namespace {

constexpr std::string_view KYOTO = "京都市";

constexpr size_t CODE_TOKENS = 20;   // more than 〒, a code, and what stands around them
constexpr size_t STREET_TOKENS = 64; // streets are looked for so far behind the city
constexpr size_t TWINS = 64;         // no city has more towns of one folded name
constexpr size_t CITIES = 64;        // no name stands for more cities
constexpr size_t STREETS = 6;        // so many marks of streets are tried
constexpr size_t MARK_TOKENS = 3;    // the longest: 上がる

bool IsPostalMark(uint16_t nToken) {
    return nToken == TOKEN_POSTAL_MARK || nToken == TOKEN_POSTAL_MARK_FACE;
}

bool IsOpening(uint16_t nToken) {
    return nToken == '(' || nToken == '"' || nToken == '\'' || nToken == '[';
}

// What forms and tables put behind a code.
bool IsSeparator(uint16_t nToken) {
    return nToken == ',' || nToken == ':' || nToken == TOKEN_COMMA || nToken == ')' || nToken == ']' ||
           nToken == '"' || nToken == '\'';
}

size_t Digits(CFoldedText& text, size_t nFirst, size_t nLimit) {
    size_t n = nFirst;
    while (n - nFirst < nLimit && text.Has(n + 1) && IsDigitToken(text.anToken[n])) {
        if (n > nFirst && !text.abInNumber[n]) break; // 〒2995245 千葉県
        ++n;
    }
    return n - nFirst;
}

// Whether a token does not stand right behind the one before it. The tokens of one number stand for the same bytes.
bool IsGap(CFoldedText const& text, size_t n) {
    return text.anBegin[n] != text.anEnd[n - 1] && text.anBegin[n] != text.anBegin[n - 1];
}

} // namespace

void CTextReader::Step(char const* pszStep, QETEXTSPAN span, std::string strWhat) const {
    if (m_pvStep != nullptr) m_pvStep->push_back({pszStep, span, std::move(strWhat)});
}

QETEXTSPAN CTextReader::Span(size_t nFirst, size_t nEnd) const {
    if (nFirst >= nEnd) return {0, 0};
    return {m_nBase + m_folded.anBegin[nFirst], size_t{m_folded.anEnd[nEnd - 1]} - m_folded.anBegin[nFirst]};
}

// --- the front -------------------------------------------------------------------------------------------------

void CTextReader::Begin(std::string_view strText) {
    m_strText = strText;
    m_nBase = 0;
    m_nFoldOptions = 0;
    m_code = {0, 0};
    m_szCode[0] = '\0';
    m_folded.Begin(strText);
    m_folded.Has(1);
    uint16_t const nFirst = m_folded.anToken[0];
    if (IsDigitToken(nFirst) || IsPostalMark(nFirst) || IsOpening(nFirst)) ReadCode();
    BeginCities();
}

// A postal code in front: seven digits, three and four with a dash between them, or, behind 〒, the beginning of one.
void CTextReader::ReadCode() {
    constexpr size_t OPEN = 2; // brackets or quotes may stand in front of it
    m_folded.Has(OPEN + 2);
    size_t nOpen = 0;
    while (nOpen < OPEN && IsOpening(m_folded.anToken[nOpen])) ++nOpen;
    bool const bMark = IsPostalMark(m_folded.anToken[nOpen]);
    if (!bMark && !IsDigitToken(m_folded.anToken[nOpen])) return;
    size_t const nFirst = nOpen + (bMark ? 1 : 0);
    size_t nEnd = nFirst + Digits(m_folded, nFirst, 8);
    size_t nDigits = nEnd - nFirst;
    if (nDigits == 3 && m_folded.anToken[nEnd] == '-') {
        size_t const nBehind = Digits(m_folded, nEnd + 1, 5);
        if (nBehind > 0) {
            nEnd += 1 + nBehind;
            nDigits += nBehind;
        }
    }
    bool const bCode = nDigits == 7 || (bMark && nDigits >= 3 && nDigits < 7);
    if (!bCode && !bMark) return;
    if (!bCode) nEnd = nFirst;
    if (bCode) {
        m_code = Span(nFirst, nEnd);
        size_t n = 0;
        for (size_t i = nFirst; i < nEnd; ++i)
            if (IsDigitToken(m_folded.anToken[i])) m_szCode[n++] = static_cast<char>(m_folded.anToken[i]);
        m_szCode[n] = '\0';
        Step("code", m_code, std::string("a postal code: ") + m_szCode);
    }
    while (m_folded.Has(nEnd + 1) && nEnd < CODE_TOKENS && IsSeparator(m_folded.anToken[nEnd])) ++nEnd;
    m_nBase = m_folded.anEnd[nEnd - 1];
    m_folded.Begin(m_strText.substr(m_nBase));
}

void CTextReader::BeginCities() {
    m_cityHash = CTextHash(TEXT_CITY_PARENT);
    m_nCityTokens = 0;
    m_nLengths = 0;
    m_nProbes = 0;
    m_nFound = 0;
    m_bCityProbe = m_index.IsBound() && ProbeCity(); // only a dictionary near 4 GB has none
}

// The next length at which the name of a city may end: its slot will be near when it is looked at. False when there is
// none.
bool CTextReader::ProbeCity() {
    CTextHash hash = m_cityHash;
    size_t n = m_nCityTokens;
    bool bMayEnd = false;
    while (!bMayEnd && n < m_index.CityTokens() && m_folded.Has(n + 1)) {
        hash.Add(m_folded.anToken[n]);
        bMayEnd = m_index.MayEndCity(m_folded.anToken[n]) && m_folded.MayEnd(n + 1);
        ++n;
    }
    m_cityHash = hash;
    m_nCityTokens = n;
    if (bMayEnd) Prefetch(m_index.CityTable().pSlot + hash.Slot(m_index.CityTable().nBits));
    return bMayEnd;
}

// All lengths at which the text begins with the name of a city.
void CTextReader::FindCities() {
    for (; m_bCityProbe; m_bCityProbe = ProbeCity()) {
        CCityLength length{m_nCityTokens, m_cityHash, 0, false};
        size_t nValues = 0;
        CTextIndex::ForEach(m_index.CityTable(), length.hash, [&](uint32_t nValue) {
            if (nValues++ == 0) length.nValue = nValue;
            return nValues > 1;
        });
        if (nValues == 0) continue;
        length.bOnly = nValues == 1;
        if (m_nLengths == CITY_LENGTHS) --m_nLengths; // the longest one counts
        m_aLength[m_nLengths++] = length;
        if ((length.nValue & CITY_GOES_ON) == 0) return;
    }
}

// The longest city, and the names of towns that can stand behind it: their slots will be near when they are looked at.
void CTextReader::ProbeTowns() {
    FindCities();
    if (m_nLengths == 0) return;
    CCityLength const& length = m_aLength[m_nLengths - 1];
    tagTEXTCITY const* const pCity = m_index.City(length.nValue & CITY_NUMBER);
    if (pCity == nullptr) return;
    m_nProbedCity = FirstCity() + (length.nValue & CITY_NUMBER);
    Prefetch(m_dic.GetAddrNode(m_nProbedCity));
    m_towns = m_index.TownTable(*pCity);
    if (m_towns.pSlot == nullptr) return;
    m_nProbes = TownNames(m_nProbedCity, *pCity, length.nTokens, m_aProbe);
    for (size_t i = 0; i < m_nProbes; ++i) Prefetch(m_towns.pSlot + m_aProbe[i].hash.Slot(m_towns.nBits));
}

// The beginnings of the text from nBegin on that may be names of the city's towns, the shortest first; their number.
size_t CTextReader::TownNames(uint32_t nCity, tagTEXTCITY const& city, size_t nBegin, CProbe (&aName)[TOWN_NAMES]) {
    CTextHash hash(nCity);
    size_t nNames = 0;
    uint64_t nLengths = Lengths(city.anTownLengths) >> 1;
    for (size_t n = 1; nLengths != 0 && m_folded.Has(nBegin + n); ++n, nLengths >>= 1) {
        uint16_t const* const pToken = m_folded.anToken + nBegin + n - 1;
        if (n > 1 && !m_index.MayGoOn(pToken[-1], pToken[0])) break;
        hash.Add(*pToken);
        if ((nLengths & 1) != 0 && m_folded.MayEnd(nBegin + n)) aName[nNames++] = {hash, n};
    }
    return nNames;
}

// The longest of these names that is in the table, and its node.
void CTextReader::ProbeNodes() {
    if (m_nProbes == 0) return;
    tagADDRNODE const* const pCity = m_dic.GetAddrNode(m_nProbedCity);
    if (pCity != nullptr) Prefetch(m_dic.GetString(pCity->nName));
    for (size_t i = m_nProbes; i-- > 0 && m_nFound == 0;) {
        CTextIndex::ForEach(m_towns, m_aProbe[i].hash, [this](uint32_t nValue) {
            m_nFoundValue = nValue;
            return ++m_nFound > 1;
        });
        m_nFoundTokens = m_aProbe[i].nTokens;
    }
    if (m_nFound != 0) Prefetch(m_dic.GetAddrNode(m_nFoundValue & TOWN_NODE));
}

void CTextReader::ProbeNames() {
    tagADDRNODE const* const pNode = m_nFound == 0 ? nullptr : m_dic.GetAddrNode(m_nFoundValue & TOWN_NODE);
    if (pNode == nullptr) return;
    Prefetch(m_dic.GetString(pNode->nName));
    Prefetch(m_dic.GetAddrInfo(pNode->nInfo));
}

// --- names against the dictionary ------------------------------------------------------------------------------

// Folds a name of the dictionary, once when it is asked for again.
void CTextReader::FoldName(std::string_view strName, uint32_t nOptions) {
    std::string_view const strLast = m_name.Text();
    if (strLast.data() == strName.data() && strLast.size() == strName.size() && m_nNameOptions == nOptions) return;
    m_name.Fold(strName, nOptions);
    m_nNameOptions = nOptions;
}

// The tokens of the text from nBegin on that are the name, 0 when it is not there.
size_t CTextReader::MatchedTokens(std::string_view strName, size_t nBegin) {
    size_t const nKanji = strName.size() / KANJI_BYTES; // as many tokens where none is a number or of another size
    bool const bSameBytes = nKanji != 0 && m_folded.Has(nBegin + nKanji) && m_folded.MayEnd(nBegin + nKanji) &&
                            m_folded.Bytes(nBegin, nBegin + nKanji) == strName;
    if (bSameBytes) return nKanji;
    FoldName(strName);
    size_t const nTokens = m_name.nCount;
    if (!m_folded.Has(nBegin + nTokens)) return 0;
    return std::equal(m_name.anToken, m_name.anToken + nTokens, m_folded.anToken + nBegin) ? nTokens : 0;
}

// Whether the tokens are the name. bExact: its very bytes, too.
bool CTextReader::IsName(std::string_view strName, size_t nBegin, size_t nEnd, bool& bExact) {
    bExact = m_folded.Bytes(nBegin, nEnd) == strName;
    return bExact || (!strName.empty() && MatchedTokens(strName, nBegin) == nEnd - nBegin);
}

// The city of a slot's value, when the first nTokens tokens are its name in the form that the value says.
bool CTextReader::ReadCity(uint32_t nValue, size_t nTokens, CCity& city) {
    city.nForm = nValue;
    city.nTokens = nTokens;
    city.pIndex = m_index.City(nValue & CITY_NUMBER);
    city.nNode = FirstCity() + (nValue & CITY_NUMBER);
    tagADDRNODE const* const pCity = m_dic.GetAddrNode(city.nNode);
    if (city.pIndex == nullptr || pCity == nullptr || pCity->nLevel != LEVEL_CITY) return false;
    std::string_view const strName = NodeName(m_dic, *pCity);
    city.bKyoto = strName.substr(0, KYOTO.size()) == KYOTO;
    std::string_view const strCity = CityForm(strName, nValue);
    tagADDRNODE const* const pPref = NodeAbove(m_dic, *pCity);
    bool const bPref = (nValue & (CITY_PREF | CITY_SHORT_PREF)) != 0;
    std::string_view const strPref =
        bPref && pPref != nullptr ? PrefForm(NodeName(m_dic, *pPref), nValue) : std::string_view();
    if (strCity.empty() || (bPref && strPref.empty())) return false;
    city.nPrefTokens = bPref ? MatchedTokens(strPref, 0) : 0;
    if (bPref && (city.nPrefTokens == 0 || city.nPrefTokens >= nTokens)) return false;
    if (!IsName(strCity, city.nPrefTokens, nTokens, city.bExact)) return false;
    std::string_view const strBytes = m_folded.Bytes(0, nTokens);
    city.bExact = strBytes.size() == strPref.size() + strCity.size() &&
                  strBytes.substr(0, strPref.size()) == strPref && strBytes.substr(strPref.size()) == strCity;
    return true;
}

bool CTextReader::IsTown(CTown& town, uint32_t nValue) {
    if ((nValue & TOWN_RULES) != 0) return false;
    town.nNode = nValue & TOWN_NODE;
    town.bDivided = (nValue & TOWN_DIVIDED) != 0;
    tagADDRNODE const* const pTown = m_dic.GetAddrNode(town.nNode);
    if (pTown == nullptr || pTown->nLevel != LEVEL_TOWN || pTown->nParent != town.city.nNode) return false;
    // A town that only organisations have, without a code of its own or of a part: mostly another town's name misspelled.
    if (!town.bDivided && pTown->nInfo == ADDR_NONE) return false;
    return IsName(NodeName(m_dic, *pTown), town.nBegin, town.nEnd, town.bExact) && !IsBareNumber(town);
}

// Whether the town is a number (十三 of あわら市) that the text has in other characters, and that is no town there but
// the number of a house or a town block: "13番地5", "2丁目3", "12-3". Behind "13 5-2" it is one.
bool CTextReader::IsBareNumber(CTown const& town) {
    if (town.bExact) return false;
    for (size_t n = town.nBegin; n < town.nEnd; ++n)
        if (!IsDigitToken(m_folded.anToken[n])) return false;
    return !m_folded.Has(town.nEnd + 1) || !IsDigitToken(m_folded.anToken[town.nEnd]);
}

// --- levels ----------------------------------------------------------------------------------------------------

// The longest towns of a city at a place of the text; a table that two towns of equal folded names share gives both.
void CTextReader::FindTownsAt(CCity const& city, size_t nBegin, std::vector<CTown>& vTown) {
    CTextIndex::CTable const table = m_index.TownTable(*city.pIndex);
    CProbe aName[TOWN_NAMES];
    size_t const nNames = TownNames(city.nNode, *city.pIndex, nBegin, aName);
    size_t const nBefore = vTown.size();
    for (size_t i = nNames; i-- > 0 && vTown.size() == nBefore;) {
        CTown town;
        town.city = city;
        town.nBegin = nBegin;
        town.nEnd = nBegin + aName[i].nTokens;
        CTextIndex::ForEach(table, aName[i].hash, [&](uint32_t nValue) {
            if (IsTown(town, nValue)) vTown.push_back(town);
            return vTown.size() - nBefore >= TWINS;
        });
    }
    if (vTown.size() == nBefore) return;
    if (GoesOnInWords(vTown[nBefore].nEnd)) PreferPlaceBelow(aName, nNames, vTown);
    if (IsPartOfName(vTown[nBefore]))
        vTown.resize(nBefore);
    else
        AddTownBeforeGap(aName, nNames, vTown);
}

// Whether what stands right behind a town makes it another name: 町, 村 and 区 are never added, and 丸太町通 is a street.
bool CTextReader::IsPartOfName(CTown const& town) {
    if (!m_folded.Has(town.nEnd + 1) || m_folded.anBegin[town.nEnd] != m_folded.anEnd[town.nEnd - 1]) return false;
    uint16_t const n = m_folded.anToken[town.nEnd];
    if (n == TOKEN_STREET) return town.city.bKyoto;
    if (n != TOKEN_TOWN && n != TOKEN_VILLAGE && n != TOKEN_WARD) return false;
    size_t nEnd = 0;
    std::string_view strPart;
    return !town.bDivided || FindBelow(town, town.nEnd, nEnd, strPart) == ADDR_NONE;
}

bool CTextReader::HasGap(CTown const& town) const {
    for (size_t n = town.nBegin + 1; n < town.nEnd; ++n)
        if (IsGap(m_folded, n)) return true;
    return false;
}

// A 字 or a blank within the text of a town, where its name has none, may stand between a shorter town and what is none of
// its name: 大字砂字新田 is 新田 in the town 砂 before it is the town 砂新田.
void CTextReader::AddTownBeforeGap(CProbe const* pName, size_t nNames, std::vector<CTown>& vTown) {
    CTown const longest = vTown.back();
    if (!HasGap(longest)) return;
    FoldName(NodeName(m_dic, *m_dic.GetAddrNode(longest.nNode)));
    uint64_t nGaps = 0; // bit n: behind n tokens of the town
    for (size_t n = 1; n < std::min(longest.nEnd - longest.nBegin, m_name.nCount); ++n)
        if (IsGap(m_folded, longest.nBegin + n) && !IsGap(m_name, n)) nGaps |= uint64_t{1} << n;
    for (size_t i = nNames; nGaps != 0 && i-- > 0;) {
        if (pName[i].nTokens >= longest.nEnd - longest.nBegin || (nGaps >> pName[i].nTokens & 1) == 0) continue;
        CTown town = longest;
        town.nEnd = longest.nBegin + pName[i].nTokens;
        bool bFound = false;
        CTextIndex::ForEach(m_index.TownTable(*town.city.pIndex), pName[i].hash, [&](uint32_t nValue) {
            bFound = IsTown(town, nValue);
            return bFound;
        });
        if (!bFound) continue;
        town.bBeforeGap = true;
        vTown.insert(vTown.end() - 1, town);
        return;
    }
}

// Whether what stands behind a name is neither the end of the text nor a number. REQUIRES: it is folded.
bool CTextReader::GoesOnInWords(size_t nToken) {
    return m_folded.Has(nToken + 1) && !IsDigitToken(m_folded.anToken[nToken]);
}

// A shorter town and a place name in it that reach further than the longest town: 由宇町 and 西区, not 由宇町西 and 区.
void CTextReader::PreferPlaceBelow(CProbe const* pName, size_t nNames, std::vector<CTown>& vTown) {
    CTown const longest = vTown.back();
    for (size_t i = nNames; i-- > 0;) {
        if (longest.nBegin + pName[i].nTokens >= longest.nEnd) continue;
        CTown town = longest;
        town.nEnd = longest.nBegin + pName[i].nTokens;
        bool bFurther = false;
        CTextIndex::ForEach(m_index.TownTable(*town.city.pIndex), pName[i].hash, [&](uint32_t nValue) {
            size_t nEnd = 0;
            std::string_view strPart;
            bFurther = (nValue & TOWN_DIVIDED) != 0 && IsTown(town, nValue) &&
                       FindBelow(town, town.nEnd, nEnd, strPart) != ADDR_NONE && nEnd > longest.nEnd;
            return bFurther;
        });
        if (!bFurther) continue;
        vTown.back() = town;
        return;
    }
}

// The tokens of a mark that ends a street of Kyoto at a token (上る, 下ル, 上がる, 東入, 西入る); 0 for none.
size_t CTextReader::StreetMarker(size_t nToken) const {
    uint16_t const* const p = m_folded.anToken + nToken; // a 0 behind the last one
    auto const IsRu = [](uint16_t n) { return n == TOKEN_RU || n == TOKEN_RU_KATAKANA; };
    if (p[0] == TOKEN_UP || p[0] == TOKEN_DOWN) {
        if (IsRu(p[1])) return 2;
        return p[1] == TOKEN_KE && IsRu(p[2]) ? 3 : 0;
    }
    if ((p[0] == TOKEN_EAST || p[0] == TOKEN_WEST) && p[1] == TOKEN_ENTER) return IsRu(p[2]) ? 3 : 2;
    return 0;
}

// The town stands behind the last mark of a street that has one behind it.
bool CTextReader::FindTownsBehindStreet(CCity const& city, std::vector<CTown>& vTown, bool& bStreet) {
    size_t anBehind[STREETS];
    size_t nMarks = 0;
    size_t const nLimit = city.nTokens + STREET_TOKENS;
    m_folded.Has(nLimit + MARK_TOKENS - 1);
    for (size_t n = city.nTokens; n < std::min(nLimit, m_folded.nCount); ++n) {
        size_t const nMark = StreetMarker(n);
        if (nMark == 0) continue;
        if (nMarks == STREETS) {
            std::copy(anBehind + 1, anBehind + STREETS, anBehind);
            --nMarks;
        }
        anBehind[nMarks++] = n + nMark;
        n += nMark - 1;
    }
    size_t const nBefore = vTown.size();
    bStreet = nMarks != 0;
    while (nMarks-- > 0) {
        for (size_t const nBegin : {anBehind[nMarks], BehindCount(anBehind[nMarks])}) {
            if (vTown.size() == nBefore) FindTownsAt(city, nBegin, vTown);
        }
        if (vTown.size() == nBefore) continue;
        for (size_t i = nBefore; i < vTown.size(); ++i) vTown[i].bStreet = true;
        return true;
    }
    return false;
}

// Behind "３丁目" or "２筋目", which may stand between a street and the town; nToken itself where there is none.
size_t CTextReader::BehindCount(size_t nToken) const {
    size_t n = nToken;
    while (n < m_folded.nCount && IsDigitToken(m_folded.anToken[n])) ++n;
    bool const bCount = n > nToken && (m_folded.anToken[n] == TOKEN_BLOCK || m_folded.anToken[n] == TOKEN_LINE) &&
                        m_folded.anToken[n + 1] == TOKEN_COUNTED;
    return bCount ? n + 2 : nToken;
}

void CTextReader::FindTowns(CCity const& city, std::vector<CTown>& vTown) {
    bool bStreet = false;
    if (city.bKyoto && FindTownsBehindStreet(city, vTown, bStreet)) return;
    size_t const nBefore = vTown.size();
    FindTownsAt(city, city.nTokens, vTown);
    // The name of a street may begin like a town: only a number behind it makes it one.
    if (bStreet && vTown.size() > nBefore && !IsDigitToken(m_folded.anToken[vTown[nBefore].nEnd]))
        vTown.resize(nBefore);
}

// The cities whose names the text begins with at one length, and their towns that it goes on with: the longest.
void CTextReader::ResolveCities(CCityLength const& length) {
    m_vCity.clear();
    m_vTown.clear();
    CTextIndex::ForEach(m_index.CityTable(), length.hash, [&](uint32_t nValue) {
        CCity city;
        auto const IsIt = [&city](CCity const& other) { return other.nNode == city.nNode; };
        bool const bNew =
            ReadCity(nValue, length.nTokens, city) && std::none_of(m_vCity.begin(), m_vCity.end(), IsIt);
        if (bNew) m_vCity.push_back(city);
        return m_vCity.size() >= CITIES;
    });
    for (CCity const& city : m_vCity) FindTowns(city, m_vTown);
    if (m_vTown.size() <= 1) return;
    size_t nLongest = 0;
    for (CTown const& town : m_vTown) nLongest = std::max(nLongest, town.nEnd - town.nBegin);
    auto const IsShorter = [&](CTown const& town) { return !town.bBeforeGap && town.nEnd - town.nBegin < nLongest; };
    m_vTown.erase(std::remove_if(m_vTown.begin(), m_vTown.end(), IsShorter), m_vTown.end());
    DropOtherTowns();
}

// Of several towns of one folded name today's count before superseded ones, and in one city those that are spelled as in
// the text. In several cities these only come first: nobody spells ヶ and ケ with care.
void CTextReader::DropOtherTowns() {
    auto const Drop = [this](auto const& IsOut) {
        m_vTown.erase(std::remove_if(m_vTown.begin(), m_vTown.end(), IsOut), m_vTown.end());
    };
    auto const IsOld = [this](CTown const& town) { return IsSuperseded(m_dic, *m_dic.GetAddrNode(town.nNode)); };
    if (!std::all_of(m_vTown.begin(), m_vTown.end(), IsOld)) Drop(IsOld);
    if (std::any_of(m_vTown.begin(), m_vTown.end(), [](CTown const& town) { return town.bBeforeGap; })) return;
    std::vector<CTown> const vAll = m_vTown;
    Drop([&vAll](CTown const& town) {
        return !town.bExact && std::any_of(vAll.begin(), vAll.end(), [&town](CTown const& other) {
            return other.bExact && other.city.nNode == town.city.nNode;
        });
    });
    std::stable_partition(m_vTown.begin(), m_vTown.end(), [](CTown const& town) { return town.bExact; });
}

// The longest name of a city counts. A shorter one does only when one of its towns reaches further than the longer name
// does, and never one without its ward: 大阪市旭区 is not the town 旭 of another ward.
void CTextReader::Resolve() {
    m_vCity.clear();
    m_vTown.clear();
    size_t nLongest = m_nLengths;
    for (size_t i = m_nLengths; i-- > 0;) {
        ResolveCities(m_aLength[i]);
        if (m_vCity.empty()) continue;
        if (nLongest == m_nLengths) nLongest = i;
        bool const bFurther = i == nLongest || (!m_vTown.empty() && m_vTown[0].nEnd > m_aLength[nLongest].nTokens &&
                                                (m_vTown[0].city.nForm & CITY_NO_WARD) == 0);
        if (bFurther && !m_vTown.empty()) return;
    }
    if (nLongest < m_nLengths) ResolveCities(m_aLength[nLongest]);
}

} // namespace qeadrs
