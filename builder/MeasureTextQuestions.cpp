// MeasureTextQuestions.cpp - a row of the town table as a written address, and that address written otherwise.
//
//   column                              town             below it           asked for
//   旭ケ丘                              旭ケ丘                              any code of the town
//   大通西（１〜１９丁目）              大通西                              any code of the town
//   抜海村（上勇知、下勇知）            抜海村           上勇知             codes of the rows with that name
//   添川（渡戸沢「筍沢温泉」）          添川             渡戸沢筍沢温泉     the same
//   吉水町（西堀川通高辻上る、…）     吉水町, with the street in front   the same
//   中央アエル（１階）                  中央             アエル１階         the row's code
#include "builder/MeasureTextQuestions.h"

#include "builder/MeasureTextWriting.h"
#include "builder/Text.h"
#include "builder/TownText.h"

#include <algorithm>
#include <initializer_list>
#include <map>
#include <utility>

namespace qe {

namespace {

constexpr size_t ROWS_ASKED = 10000;
constexpr size_t ASKED_OF_A_CHANGE = 1000;
constexpr unsigned WANTED_ROWS = 9995;
constexpr unsigned WANTED_CHANGE = 9900;
constexpr unsigned WANTED_TWO_CHANGES = 9800;
constexpr unsigned WANTED_AREAS = 9900;
constexpr unsigned WANTED_OFFICES = 9800;
constexpr size_t EXPECTED_FROM = 100; // rows that have what a class asks for

// Towns are compared over the spellings of one edition.
std::string Fold(std::string const& strTown) {
    return FoldTownName(WithNewKanji(strTown));
}

bool IsAmong(std::vector<CTownKey> const& vTown, CTownKey const& town) {
    return std::any_of(vTown.begin(), vTown.end(),
                       [&](CTownKey const& other) { return !(town < other) && !(other < town); });
}

// Whether the text goes on behind the head, and not within a number.
bool GoesOn(std::string_view str, std::string_view strHead) {
    if (!BeginsWith(str, strHead)) return false;
    auto const IsDigit = [](char c) { return c >= '0' && c <= '9'; };
    return strHead.empty() || str.size() == strHead.size() || !IsDigit(strHead.back()) ||
           !IsDigit(str[strHead.size()]);
}

// 余市郡余市町 has a county, 大和郡山市 has none.
size_t CountySize(std::string const& strCity) {
    constexpr std::string_view COUNTY = "郡";
    size_t const nPos = strCity.find(COUNTY);
    bool const bCounty = nPos != std::string::npos && nPos + COUNTY.size() < strCity.size() &&
                         (EndsWith(strCity, "町") || EndsWith(strCity, "村"));
    return bCounty ? nPos + COUNTY.size() : 0;
}

bool IsStreetOfKyoto(CTownRow const& row, std::string const& strPlace) {
    if (!BeginsWith(row.strCity, "京都市")) return false;
    return Contains(strPlace, "通") || EndsWith(strPlace, "上る") || EndsWith(strPlace, "下る") ||
           EndsWith(strPlace, "入");
}

// The name of a place of a list, without what tells only numbers of it; "" where it has no name.
std::string NameOfPlace(std::string const& strItem) {
    std::string strName = WithoutQuotes(strItem);
    size_t const nQuote = strItem.find("「");
    if (nQuote != std::string::npos && nQuote == strName.size()) {
        std::string const strInner = strItem.substr(nQuote + 3, strItem.find("」") - nQuote - 3);
        if (strInner != "その他") strName += strInner;
    }
    strName.erase(std::min(strName.find("・"), strName.size()));
    for (char const* pszNumber : {"０", "１",   "２",   "３",   "４",     "５",   "６",   "７", "８", "９",
                                  "〜", "番地", "丁目", "地割", "その他", "除く", "以外", "、", "（", "〔"})
        if (Contains(strName, pszNumber)) return "";
    return strName == "大字" ? "" : strName; // 田島（大字）: what the town has besides its blocks
}

// What follows the last street of an address in Kyoto: 東塩小路町, of 烏丸通塩小路下る東塩小路町; the text without one.
std::string BehindStreets(std::string const& str) {
    std::string const strFront = str.substr(0, str.find("（")); // a street in parentheses is behind the town
    size_t nEnd = 0;
    for (std::string_view const strTurn :
         {"上る", "上ル", "下る", "下ル", "東入", "西入", "東入る", "西入る", "東入ル", "西入ル"}) {
        size_t const nPos = strFront.rfind(strTurn);
        if (nPos != std::string::npos) nEnd = std::max(nEnd, nPos + strTurn.size());
    }
    // 堀川通寺之内上る４丁目天神北町
    constexpr std::string_view BLOCK = "丁目";
    size_t const nBlock = str.find(BLOCK, nEnd);
    bool const bBlock =
        nEnd > 0 && nBlock == nEnd + std::string_view("４").size() && BeginsWithDigit(str.substr(nEnd));
    return str.substr(bBlock ? nBlock + BLOCK.size() : nEnd);
}

// The numbers of a list, with the unit that counts them: 1丁目, 2丁目 and 5丁目 of １、２、５丁目; 113番地 to 791番地; 9地割
// and 10地割 of 第９地割〜第１０地割; only the first two of 430番地以上. None for other texts.
std::vector<std::string> NumbersOf(std::string const& strArea) {
    constexpr unsigned long MOST = 9999;
    std::string strList = strArea;
    auto const CutOff = [&](std::string_view strTail) {
        if (!EndsWith(strList, strTail)) return false;
        strList.erase(strList.size() - strTail.size());
        return true;
    };
    bool const bUpwards = CutOff("以上");
    std::string strUnit;
    for (char const* pszUnit : {"丁目", "番地", "地割"})
        if (strUnit.empty() && CutOff(pszUnit)) strUnit = pszUnit;
    if (strUnit.empty()) return {};
    for (std::string const& strIgnored : {strUnit, std::string("第")}) // every number may have them
        for (size_t nPos; (nPos = strList.find(strIgnored)) != std::string::npos;)
            strList.erase(nPos, strIgnored.size());
    std::vector<std::string> vNumber;
    for (std::string const& strWide : SplitList(strList)) {
        std::string const strItem = ToHalfWidth(strWide);
        constexpr std::string_view TO = "〜";
        size_t const nTo = strItem.find(TO);
        std::string const strFirst = strItem.substr(0, nTo);
        std::string const strLast = nTo == std::string::npos ? strFirst : strItem.substr(nTo + TO.size());
        for (std::string const& strNumber : {strFirst, strLast})
            if (strNumber.empty() || strNumber.size() > 4 ||
                strNumber.find_first_not_of("0123456789") != std::string::npos)
                return {};
        unsigned long const nLast = std::min(std::stoul(strLast) + (bUpwards ? 1 : 0), MOST);
        for (unsigned long n = std::stoul(strFirst); n <= nLast; ++n) vNumber.push_back(std::to_string(n) + strUnit);
    }
    return vNumber;
}

// Whether a row has what a class asks for: told from its columns, not by what makes the questions, so that a class of a
// whole country that asks nothing is noticed.
using HasRow = bool (*)(CTownRow const& row);

bool HasOneOf(CTownRow const& row, std::initializer_list<char const*> vszPart) {
    std::string const strName = row.strCity + row.strTown.substr(0, row.strTown.find("（"));
    return std::any_of(vszPart.begin(), vszPart.end(), [&](char const* psz) { return Contains(strName, psz); });
}
bool HasAnything(CTownRow const& row) {
    return !Contains(row.strTown, "階");
}
bool HasCounty(CTownRow const& row) {
    return Contains(row.strCity, "郡") && !EndsWith(row.strCity, "市") && !EndsWith(row.strCity, "区");
}
bool HasKe(CTownRow const& row) {
    return HasOneOf(row, {"ケ丘", "ヶ丘", "ケ谷", "ヶ谷", "ケ崎", "ヶ崎", "ケ原", "ヶ原"});
}
bool HasNo(CTownRow const& row) {
    return HasOneOf(row, {"山ノ", "山の", "井ノ", "井の", "中ノ", "中の", "西ノ", "西の"});
}
bool HasNewKanji(CTownRow const& row) {
    return HasOneOf(row, {"沢", "浜", "広", "島", "高", "富"});
}
bool HasNumber(CTownRow const& row) {
    return HasOneOf(row, {"一条", "二条", "三条", "四条", "五条", "一番町", "二番町", "三番町"});
}
bool HasStreets(CTownRow const& row) {
    return BeginsWith(row.strCity, "京都市") && HasAnything(row);
}
bool HasFloor(CTownRow const& row) {
    return EndsWith(row.strTown, "階）");
}
bool HasBlock(CTownRow const& row) {
    return EndsWith(row.strTown, "丁目）") && !EndsWith(row.strTown, "（丁目）");
}

// A row that can be asked for.
struct CTextRow {
    CTownRow const* pRow;
    CTownKey town;
    std::string strPlace;  // that the row alone is for, as it is written below its town
    std::string strStreet; // the same in Kyoto, before the town
    bool bFloor = false;
};

class CQuestions {
  public:
    explicit CQuestions(CMeasuredTables const& tables) : m_tables(tables) { ReadTowns(); }

    CTextQuestions Make() {
        AskRows();
        for (size_t nChange = 0; nChange < CHANGES; ++nChange) AskChange(nChange);
        AskTwoChanges();
        AskPlaces();
        AskNumbers();
        AskOffices();
        CTextQuestions questions;
        questions.vClass = std::move(m_vClass);
        for (auto const& [town, codes] : m_mapTown) questions.towns.insert(town);
        return questions;
    }

  private:
    // --- the table's own facts ---

    void ReadTowns() {
        for (CTownRow const& row : m_tables.vTown) {
            CTownText const text = ReadTownText(row.strCity, row.strTown, row.strTownKana);
            if (text.nKind == ETownKind::Floor) continue;
            CTownKey const town = {row.strPref, row.strCity,
                                   text.nKind == ETownKind::Nameless ? "" : text.town.strName};
            m_mapTown[town].insert(row.strCode);
            for (CNamed const& area : text.vArea) {
                m_mapPlace[{town, NameIn(row, area.strName)}].insert(row.strCode);
                m_mapPlace[{town, WithoutQuotes(area.strName)}].insert(row.strCode);
                for (std::string const& strNumber : NumbersOf(area.strName))
                    m_mapNumber[{town, strNumber}].insert(row.strCode);
            }
        }
        for (auto const& [town, codes] : m_mapTown) {
            std::map<std::string, std::vector<CTownKey>>& mapFolded = m_mapCity[{town.strPref, town.strCity, ""}];
            mapFolded[Fold(town.strTown)].push_back(town);
        }
        for (auto const& [city, mapFolded] : m_mapCity) {
            std::string const strBare = city.strCity.substr(CountySize(city.strCity));
            std::set<std::string> const written = {city.strCity, strBare, city.strPref + city.strCity,
                                                   city.strPref + strBare};
            for (std::string const& strWritten : written) m_mapWrittenCity[strWritten].push_back(&city);
        }
        for (CTownRow const& row : m_tables.vTown) m_vRow.push_back(ReadRow(row));
    }

    static std::string NameIn(CTownRow const& row, std::string const& strItem) {
        return IsStreetOfKyoto(row, strItem) ? strItem : NameOfPlace(strItem);
    }

    CTextRow ReadRow(CTownRow const& row) {
        CTownText const text = ReadTownText(row.strCity, row.strTown, row.strTownKana);
        CTextRow read{&row, {row.strPref, row.strCity, ""}, "", "", false};
        if (text.nKind == ETownKind::Nameless) return read;
        read.town.strTown = text.town.strName;
        if (text.nKind == ETownKind::Floor) {
            // The building's town is the longest whose name begins the text.
            do read.town.strTown.pop_back();
            while (!read.town.strTown.empty() && m_mapTown.count(read.town) == 0);
            // サンシャイン６０ １階
            CWritten building;
            building.strTown = text.town.strName.substr(read.town.strTown.size());
            building.strPlace = text.floor.strName;
            read.strPlace = building.Text();
            m_mapBuilding[read.town][Fold(building.strTown)].insert(row.strCode);
            read.bFloor = true;
        }
        for (CNamed const& area : text.vArea) {
            read.strPlace = NameIn(row, area.strName);
            if (!read.strPlace.empty()) break;
        }
        if (!read.bFloor && IsStreetOfKyoto(row, read.strPlace)) read.strStreet.swap(read.strPlace);
        return read;
    }

    std::set<std::string> const* CodesOf(CTownKey const& town) const {
        auto const p = m_mapTown.find(town);
        return p == m_mapTown.end() ? nullptr : &p->second;
    }

    // The towns of a city with a name's folded form; a city of nothing but floors has none.
    std::vector<CTownKey> const* TownsSpelled(CTownKey const& city, std::string const& strName) const {
        auto const pCity = m_mapCity.find(city);
        if (pCity == m_mapCity.end()) return nullptr;
        auto const pTowns = pCity->second.find(Fold(strName));
        return pTowns == pCity->second.end() ? nullptr : &pTowns->second;
    }

    // --- a row as a question ---

    static CWritten Write(CTextRow const& row) {
        CWritten written;
        size_t const nCounty = CountySize(row.town.strCity);
        written.strPref = row.town.strPref;
        written.strCounty = row.town.strCity.substr(0, nCounty);
        written.strCity = row.town.strCity.substr(nCounty);
        written.strStreet = row.strStreet;
        written.strTown = row.town.strTown;
        written.strPlace = row.strPlace;
        written.strNumber = HOUSE_NUMBER;
        return written;
    }

    CTextQuestion Question(CTextRow const& row, CWritten const& written) const {
        CTextQuestion question;
        question.strText = written.Text();
        question.vTown = {row.town};
        question.city = {row.town.strPref, row.town.strCity, ""};
        question.names = {Fold(row.town.strTown)};
        std::string const& strPlace = row.strStreet.empty() ? row.strPlace : row.strStreet;
        auto const pPlace = m_mapPlace.find({row.town, strPlace});
        if (row.bFloor)
            question.codes = {row.pRow->strCode};
        else if (!strPlace.empty() && pPlace != m_mapPlace.end())
            question.codes = pPlace->second;
        else
            question.codes = m_mapTown.at(row.town);
        // 丸の内 written 丸ノ内 is another town where the city has both; a place behind its town may be one as well.
        std::string const strCity = row.town.strCity.substr(0, CountySize(row.town.strCity)) + written.strCity;
        std::vector<CTownKey> vOther = {{row.town.strPref, strCity, written.strTown}};
        if (!written.strPlace.empty()) {
            if (std::vector<CTownKey> const* const pLonger =
                    TownsSpelled(question.city, written.strTown + written.strPlace))
                vOther.insert(vOther.end(), pLonger->begin(), pLonger->end());
        }
        for (CTownKey const& town : vOther) {
            std::set<std::string> const* const pCodes = CodesOf(town);
            if (pCodes == nullptr || town.strTown.empty() || IsAmong(question.vTown, town)) continue;
            question.vTown.push_back(town);
            question.codes.insert(pCodes->begin(), pCodes->end());
            question.bSeveral = true;
        }
        return question;
    }

    // Whether what is left of the address means one place only: the city's name is unique, or the town's is in the
    // cities of that name.
    bool IsUnique(CTextRow const& row, CWritten const& written) const {
        size_t const nCounty = written.strCounty.empty() ? CountySize(row.town.strCity) : 0;
        auto const p = m_mapWrittenCity.find(written.strPref + row.town.strCity.substr(nCounty));
        if (p == m_mapWrittenCity.end()) return false;
        std::string const strFolded = Fold(row.town.strTown);
        return std::all_of(p->second.begin(), p->second.end(), [&](CTownKey const* pCity) {
            if (pCity->strPref == row.town.strPref && pCity->strCity == row.town.strCity) return true;
            return !strFolded.empty() && m_mapCity.at(*pCity).count(strFolded) == 0;
        });
    }

    // --- changes: each returns whether it changes something ---

    using Change = bool (*)(CTextRow const& row, CWritten& written, CRandom& random);
    struct CNamedChange {
        char const* pszKey;
        char const* pszName;
        Change pApply;
        HasRow pHas;
    };
    static constexpr size_t CHANGES = 13;
    static CNamedChange const CHANGE[CHANGES]; // two of them are applied in this order

    static bool WithoutPrefecture(CTextRow const&, CWritten& written, CRandom&) {
        written.strPref.clear();
        return true;
    }
    static bool WithoutCounty(CTextRow const&, CWritten& written, CRandom&) {
        return !std::exchange(written.strCounty, "").empty();
    }
    static bool ChangeKe(CTextRow const&, CWritten& written, CRandom&) {
        bool const bCity = SwapKe(written.strCity);
        return SwapKe(written.strTown) || bCity;
    }
    static bool ChangeGa(CTextRow const&, CWritten& written, CRandom&) {
        bool const bCity = WriteGa(written.strCity);
        return WriteGa(written.strTown) || bCity;
    }
    static bool ChangeNo(CTextRow const&, CWritten& written, CRandom&) {
        bool const bCity = SwapNo(written.strCity);
        return SwapNo(written.strTown) || bCity;
    }
    static bool ChangeAza(CTextRow const& row, CWritten& written, CRandom&) {
        if (written.strTown.empty() || row.bFloor) return false;
        if (TakeOutAza(written.strTown)) return true;
        written.strTown = "大字" + written.strTown;
        if (!written.strPlace.empty()) written.strPlace = "字" + written.strPlace;
        return true;
    }
    static bool ChangeKanji(CTextRow const&, CWritten& written, CRandom& random) {
        return WriteOldKanji(written.strTown, random) || WriteOldKanji(written.strCity, random);
    }
    static bool ChangeNumber(CTextRow const&, CWritten& written, CRandom& random) {
        return RewriteNumber(written.strTown, random);
    }
    static bool ChangeUnits(CTextRow const&, CWritten& written, CRandom&) {
        written.strNumber = "2丁目3番4号";
        return true;
    }
    static bool AddBuilding(CTextRow const& row, CWritten& written, CRandom& random) {
        written.strBehind = SomeBuilding(random);
        return !row.bFloor;
    }
    static bool AddStreet(CTextRow const& row, CWritten& written, CRandom& random) {
        if (!BeginsWith(row.town.strCity, "京都市") || row.town.strTown.empty() || !written.strStreet.empty())
            return false;
        written.strStreet = StreetOfKyoto(random);
        return true;
    }
    static bool AddCode(CTextRow const& row, CWritten& written, CRandom& random) {
        written.strCode = CodeInFront(row.pRow->strCode, random);
        return true;
    }
    static bool InHalfWidth(CTextRow const&, CWritten& written, CRandom&) {
        written.bHalfWidth = true;
        return true;
    }

    // --- classes ---

    CTextClass& NewClass(std::string strKey, std::string strName, unsigned nWanted, HasRow pHas) {
        auto const nRows = std::count_if(m_tables.vTown.begin(), m_tables.vTown.end(), pHas);
        m_vClass.push_back(
            {std::move(strKey), std::move(strName), nWanted, {}, false, static_cast<size_t>(nRows) >= EXPECTED_FROM});
        return m_vClass.back();
    }

    // All rows in an order of the class's own.
    std::vector<CTextRow const*> Shuffled(CRandom& random) const {
        std::vector<CTextRow const*> vRow;
        for (CTextRow const& row : m_vRow) vRow.push_back(&row);
        for (size_t n = vRow.size(); n > 1; --n) std::swap(vRow[n - 1], vRow[random.Below(static_cast<uint32_t>(n))]);
        return vRow;
    }

    void AskRows() {
        CTextClass& asked = NewClass("text_rows", "official rows with a house number", WANTED_ROWS, HasAnything);
        asked.bExpected = true; // of a table without rows nothing is measured
        CRandom random(TEXT_SEED);
        for (CTextRow const* pRow : Shuffled(random)) {
            if (asked.vQuestion.size() == ROWS_ASKED) return;
            asked.vQuestion.push_back(Question(*pRow, Write(*pRow)));
        }
    }

    void AskChange(size_t nChange) {
        CNamedChange const& change = CHANGE[nChange];
        CTextClass& asked =
            NewClass(std::string("text_").append(change.pszKey), change.pszName, WANTED_CHANGE, change.pHas);
        CRandom random(TEXT_SEED + 1 + nChange);
        for (CTextRow const* pRow : Shuffled(random)) {
            if (asked.vQuestion.size() == ASKED_OF_A_CHANGE) return;
            CWritten written = Write(*pRow);
            if (!change.pApply(*pRow, written, random) || !IsUnique(*pRow, written)) continue;
            asked.vQuestion.push_back(Question(*pRow, written));
        }
    }

    // Every pair of changes in turn, each as often as the others as far as there are rows for it.
    void AskTwoChanges() {
        CTextClass& asked = NewClass("text_two_changes", "two of these changes", WANTED_TWO_CHANGES, HasAnything);
        CRandom random(TEXT_SEED + 1 + CHANGES);
        std::vector<CTextRow const*> const vRow = Shuffled(random);
        struct CPair {
            size_t nFirst, nSecond;
            size_t nNextRow;
        };
        std::vector<CPair> vPair;
        for (size_t nSecond = 1; nSecond < CHANGES; ++nSecond)
            for (size_t nFirst = 0; nFirst < nSecond; ++nFirst) {
                // Both write the same character.
                if (CHANGE[nFirst].pApply == ChangeKe && CHANGE[nSecond].pApply == ChangeGa) continue;
                vPair.push_back({nFirst, nSecond, 0});
            }
        for (bool bMore = true; bMore;) {
            bMore = false;
            for (CPair& pair : vPair) {
                while (pair.nNextRow < vRow.size()) {
                    CTextRow const& row = *vRow[pair.nNextRow++];
                    CWritten written = Write(row);
                    if (!CHANGE[pair.nFirst].pApply(row, written, random) ||
                        !CHANGE[pair.nSecond].pApply(row, written, random) || !IsUnique(row, written))
                        continue;
                    asked.vQuestion.push_back(Question(row, written));
                    bMore = true;
                    break;
                }
                if (asked.vQuestion.size() == ASKED_OF_A_CHANGE) return;
            }
        }
    }

    // Rows of a place or floor, as they are: its own code.
    void AskPlaces() {
        CTextClass& asked = NewClass("text_places", "a place of a list, a street of Kyoto or a floor: its own code",
                                     WANTED_AREAS, HasFloor);
        CRandom random(TEXT_SEED + 2 + CHANGES);
        for (CTextRow const* pRow : Shuffled(random)) {
            if (asked.vQuestion.size() == ASKED_OF_A_CHANGE) return;
            if (pRow->strPlace.empty() && pRow->strStreet.empty()) continue;
            asked.vQuestion.push_back(Question(*pRow, Write(*pRow)));
        }
    }

    // Rows of numbers, each with a number of its own: the codes of the rows that list this number.
    void AskNumbers() {
        CTextClass& asked = NewClass("text_numbers", "a town block, lot or house number of a list: its own code",
                                     WANTED_AREAS, HasBlock);
        CRandom random(TEXT_SEED + 3 + CHANGES);
        for (CTextRow const* pRow : Shuffled(random)) {
            if (asked.vQuestion.size() == ASKED_OF_A_CHANGE) return;
            CTownRow const& row = *pRow->pRow;
            CTownText const text = ReadTownText(row.strCity, row.strTown, row.strTownKana);
            if (text.nKind != ETownKind::Areas) continue;
            std::vector<std::string> const vNumber = NumbersOf(text.vArea.front().strName);
            if (vNumber.empty()) continue;
            std::string const& strNumber = vNumber[random.Below(static_cast<uint32_t>(vNumber.size()))];
            CWritten written = Write(*pRow);
            written.strPlace.clear();
            written.strNumber = EndsWith(strNumber, "地割") ? "第" + strNumber + "５番地" : strNumber + "５－６";
            CTextQuestion question = Question(*pRow, written);
            question.codes = m_mapNumber.at({pRow->town, strNumber});
            asked.vQuestion.push_back(std::move(question));
        }
    }

    // --- organisations ---

    // The town that the row names, as the table spells it. Where the rest of the address goes on with the name of a
    // longer town (正木, 中１－１－１), that one as well; where the table has no town of the column's name, the longest
    // that begins it (古町通, of 古町通７番町).
    std::vector<CTownKey> TownsOf(COfficeRow const& row) const {
        std::vector<CTownKey> vTown;
        auto const pCity = m_mapCity.find({row.strPref, row.strCity, ""});
        if (pCity == m_mapCity.end()) return vTown;
        // Streets of Kyoto stand in front of the town.
        bool const bKyoto = BeginsWith(row.strCity, "京都市");
        std::string const strColumn = Fold(bKyoto ? BehindStreets(row.strTown) : row.strTown);
        std::string const strWhole =
            Fold(bKyoto ? BehindStreets(row.strTown + row.strRest) : row.strTown + row.strRest);
        auto const pColumn = pCity->second.find(strColumn);
        std::vector<CTownKey> const* const pOfColumn =
            pColumn == pCity->second.end() || strColumn.empty() ? nullptr : &pColumn->second;
        std::vector<CTownKey> const* pLongest = pOfColumn;
        for (auto const& [strFolded, vTwin] : pCity->second) { // ascending: the longest one comes last
            bool const bLonger = pOfColumn == nullptr || strFolded.size() > strColumn.size();
            if (!strFolded.empty() && bLonger && GoesOn(strWhole, strFolded)) pLongest = &vTwin;
        }
        for (std::vector<CTownKey> const* pTown : {pOfColumn, pLongest == pOfColumn ? nullptr : pLongest})
            if (pTown != nullptr) vTown.insert(vTown.end(), pTown->begin(), pTown->end());
        // The table has no towns of some cities, and some organisations stand outside all towns.
        bool const bNoTowns = pCity->second.size() == 1 && pCity->second.count("") == 1;
        bool const bCityItself = bNoTowns || (row.strTown.empty() && BeginsWithDigit(row.strRest));
        if (vTown.empty() && bCityItself) vTown.push_back({row.strPref, row.strCity, ""});
        return vTown;
    }

    void AskOffices() {
        if (m_tables.vOffice.empty()) return;
        CTextClass& asked = NewClass("text_offices",
                                     "organisations' own addresses: the town, and its code among the "
                                     "candidates",
                                     WANTED_OFFICES, HasAnything);
        asked.bCandidates = true;
        for (COfficeRow const& row : m_tables.vOffice) {
            CTextQuestion question;
            question.strText = row.strPref + row.strCity + row.strTown + row.strRest;
            question.vTown = TownsOf(row);
            question.bSeveral = question.vTown.size() > 1;
            question.city = {row.strPref, row.strCity, ""};
            question.names = {Fold(row.strTown)};
            question.strWhole = Fold(row.strTown + row.strRest);
            std::string const strRest = Fold(row.strRest);
            for (CTownKey const& town : question.vTown) {
                question.names.insert(Fold(town.strTown));
                if (std::set<std::string> const* const pCodes = CodesOf(town))
                    question.codes.insert(pCodes->begin(), pCodes->end());
                // An organisation in a building has the building's codes as well.
                auto const pBuildings = m_mapBuilding.find(town);
                if (pBuildings == m_mapBuilding.end()) continue;
                for (auto const& [strBuilding, codes] : pBuildings->second)
                    if (Contains(strRest, strBuilding)) question.codes.insert(codes.begin(), codes.end());
            }
            asked.vQuestion.push_back(std::move(question));
        }
    }

    CMeasuredTables const& m_tables;
    std::map<CTownKey, std::set<std::string>> m_mapTown; // codes; the nameless towns included
    std::map<std::pair<CTownKey, std::string>, std::set<std::string>> m_mapPlace;   // codes of the names of lists
    std::map<std::pair<CTownKey, std::string>, std::set<std::string>> m_mapNumber;  // codes of the numbers of lists
    std::map<CTownKey, std::map<std::string, std::set<std::string>>> m_mapBuilding; // codes by folded names
    std::map<CTownKey, std::map<std::string, std::vector<CTownKey>>> m_mapCity;     // its towns by their folded names
    std::map<std::string, std::vector<CTownKey const*>> m_mapWrittenCity; // with and without prefecture and county
    std::vector<CTextRow> m_vRow;
    std::vector<CTextClass> m_vClass;
};

CQuestions::CNamedChange const CQuestions::CHANGE[CHANGES] = {
    {"no_prefecture", "no prefecture", WithoutPrefecture, HasAnything},
    {"no_county", "no county", WithoutCounty, HasCounty},
    {"ke", "ヶ and ケ swapped", ChangeKe, HasKe},
    {"ga", "written が", ChangeGa, HasKe},
    {"no", "ノ and の swapped", ChangeNo, HasNo},
    {"aza", "大字 put in, or left out", ChangeAza, HasAnything},
    {"old_kanji", "old kanji", ChangeKanji, HasNewKanji},
    {"town_number", "the town's number in kanji or digits", ChangeNumber, HasNumber},
    {"half_width", "half width, and blanks between the parts", InHalfWidth, HasAnything},
    {"units", "2丁目3番4号", ChangeUnits, HasAnything},
    {"building", "a building behind the number", AddBuilding, HasAnything},
    {"street", "a street of Kyoto put in", AddStreet, HasStreets},
    {"code", "〒 and the code in front", AddCode, HasAnything},
};

} // namespace

bool CTextQuestions::IsAnother(CTextQuestion const& question, CTownKey const& town) const {
    if (IsAmong(question.vTown, town)) return false;
    bool const bCity = town.strPref == question.city.strPref && town.strCity == question.city.strCity;
    if (!bCity || towns.count(town) != 0) return true;
    std::string const strFolded = Fold(town.strTown);
    return question.names.count(strFolded) == 0 && (strFolded.empty() || !GoesOn(question.strWhole, strFolded));
}

CTextQuestions TextQuestions(CMeasuredTables const& tables) {
    return CQuestions(tables).Make();
}

} // namespace qe
