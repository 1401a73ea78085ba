// Questions.cpp - the tree as plain lists, and texts out of them.
#include "bench/Questions.h"

#include "builder/Text.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <set>
#include <stdexcept>

namespace {

// Of nMost questions with a whole address; to find that nothing matches takes the library long, and the plain search
// longer.
constexpr size_t ShareOfOthers(size_t nMost) {
    return nMost / 5;
}
constexpr size_t ShareOfNothing(size_t nMost) {
    return nMost / 50;
}

constexpr size_t RECORD_TEXT = 121; // bytes of an address that the record of PstAdrGetZip holds
constexpr uint8_t LEVELS[] = {LEVEL_PREF, LEVEL_CITY, LEVEL_TOWN};

// The texts behind an entry: code, old code, and of a superseded entry the index of its successor.
struct CEntryTexts {
    std::string_view strCode, strOld;
    uint32_t nSuccessor;
};

CEntryTexts ReadEntry(CAddrDic& dic, tagADDRINFO const& info) {
    CEntryTexts entry = {dic.GetString(info.nCode), {}, ADDR_NONE};
    entry.strOld = entry.strCode.data() + entry.strCode.size() + 1;
    if ((info.nNode & ADDRINFO_SUPERSEDED) != 0)
        std::memcpy(&entry.nSuccessor, entry.strOld.data() + entry.strOld.size() + 1, sizeof entry.nSuccessor);
    return entry;
}

std::string TextOf(char const* psz) {
    return psz == nullptr ? "" : psz;
}

void SetLatest(CAddrDic& dic, tagADDRINFO const& info, uint32_t nSuccessor, CPlainNode& node) {
    tagADDRINFO const* const pLatest = node.bCurrent ? &info : dic.GetAddrInfo(nSuccessor);
    tagADDR addr(0);
    dic.GetAddr(pLatest, &addr);
    node.strLatest[0] = TextOf(addr.pszPref);
    node.strLatest[1] = TextOf(addr.pszCity);
    node.strLatest[2] = TextOf(addr.pszTown);
}

CPlainNode ReadNode(CAddrDic& dic, tagADDRNODE const& node) {
    CPlainNode plain = {
        dic.GetString(node.nName), node.nParent, node.nFirstChild, node.nChildCount, {}, {}, {}, false};
    tagADDRINFO const* const pInfo = dic.GetAddrInfo(node.nInfo);
    if (pInfo == nullptr) return plain;
    CEntryTexts const entry = ReadEntry(dic, *pInfo);
    plain.strCode = entry.strCode;
    plain.strOld = entry.strOld;
    plain.bCurrent = (pInfo->nNode & ADDRINFO_SUPERSEDED) == 0;
    if (node.nLevel == LEVEL_TOWN) SetLatest(dic, *pInfo, entry.nSuccessor, plain);
    return plain;
}

bool Begins(std::string_view strName, std::string_view strText) {
    return !strName.empty() && strText.substr(0, strName.size()) == strName;
}

// --- questions -----------------------------------------------------------------------------------------------------

void ShuffleAndCut(std::vector<CQuestion>& vQuestion, size_t nLimit) {
    std::shuffle(vQuestion.begin(), vQuestion.end(), std::mt19937(BENCH_SEED));
    vQuestion.resize(std::min(vQuestion.size(), nLimit));
    // Copies, one behind the other: the questions themselves are then read in the order of memory on both sides, and
    // what misses the caches is the answering.
    vQuestion = std::vector<CQuestion>(vQuestion);
}

CQuestion QuestionOf(CPlainTree const& tree, CPlainNode const& town, std::string strText) {
    CPlainNode const& city = tree.CityOf(town);
    CPlainNode const& pref = tree.PrefOf(town);
    return {std::move(strText),
            "",
            {std::string(pref.strName), std::string(city.strName), std::string(town.strName), ""},
            town.strCode,
            town.strOld,
            {town.strLatest[0], town.strLatest[1], town.strLatest[2]}};
}

// Towns with an entry, of today or gone, that their own names find. In random order from the start: what is not needed
// is not looked for.
std::vector<CQuestion> AskForTowns(CPlainTree const& tree, bool bCurrent, size_t nLimit,
                                   std::vector<CQuestion>& vHidden) {
    std::vector<CPlainNode const*> vTown;
    for (CPlainNode const& town : tree.Towns())
        if (town.bCurrent == bCurrent && !town.strCode.empty() && !town.strName.empty()) vTown.push_back(&town);
    std::shuffle(vTown.begin(), vTown.end(), std::mt19937(BENCH_SEED));
    std::vector<CQuestion> vQuestion;
    for (CPlainNode const* const pTown : vTown) {
        if (vQuestion.size() == nLimit) break;
        CPlainNode const& city = tree.CityOf(*pTown);
        std::string strText(tree.PrefOf(*pTown).strName);
        strText.append(city.strName).append(pTown->strName);
        if (strText.size() > RECORD_TEXT) continue;
        CPlainNode const* const pFound = tree.Find(strText);
        if (pFound == nullptr) throw std::runtime_error("no town begins " + strText);
        (pFound == pTown ? vQuestion : vHidden).push_back(QuestionOf(tree, *pFound, std::move(strText)));
    }
    return vQuestion;
}

// The same towns without their prefecture, as far as the city's name alone leads there.
void AddBare(CPlainTree const& tree, size_t nLimit, CQuestions& questions) {
    for (CQuestion question : questions.vFull) {
        question.strText = question.vName[1] + question.vName[2];
        CPlainNode const* const pTown = tree.Find(question.strText);
        if (pTown == nullptr || pTown->strCode.data() != question.strCode.data()) continue;
        questions.vBare.push_back(std::move(question));
        if (questions.vBare.size() == nLimit) break;
    }
}

// Addresses whose first characters are missing, so that what is left begins with the middle of a name.
void AddNothing(CPlainTree const& tree, CAddrDic& dic, size_t nLimit, CQuestions& questions) {
    for (CQuestion const& question : questions.vFull) {
        std::string_view strText = question.strText;
        strText.remove_prefix(question.vName[0].size() + qe::CharacterSize(question.vName[1]));
        tagADDR addr(0);
        std::string strTail(strText);
        dic.DivideAddr(strTail.c_str(), &addr);
        if (addr.pszPref != nullptr || addr.pszCity != nullptr || addr.pszTown != nullptr) continue;
        if (questions.vNothing.size() < 100 && tree.Find(strText) != nullptr)
            throw std::runtime_error("DivideAddr misses " + strTail);
        std::string const strNone = "～";
        questions.vNothing.push_back(
            {strTail, "", {question.vName[0], strNone + question.vName[1], question.vName[2], ""}, {}, {}, {}});
        if (questions.vNothing.size() == nLimit) break;
    }
}

void AddOffices(CAddrDic& dic, size_t nLimit, CQuestions& questions) {
    for (unsigned long n = 0; tagADDRINFO const* pInfo = dic.GetAddrInfo(n); ++n) {
        tagADDR addr(0);
        dic.GetAddr(pInfo, &addr);
        if (addr.pszOffice == nullptr || addr.pszTown == nullptr || *addr.pszTown == '\0') continue;
        CEntryTexts const entry = ReadEntry(dic, *pInfo);
        CQuestion question = {std::string(addr.pszPref) + addr.pszCity + addr.pszTown + TextOf(addr.pszArea),
                              qe::WithoutBlanks(addr.pszOffice),
                              {addr.pszPref, addr.pszCity, addr.pszTown, addr.pszOffice},
                              entry.strCode,
                              entry.strOld,
                              {}};
        if (question.strText.size() <= RECORD_TEXT) questions.vOffice.push_back(std::move(question));
    }
    ShuffleAndCut(questions.vOffice, nLimit);
}

// The cities of today: those of earlier editions have no current address.
void AddCities(CPlainTree const& tree, CQuestions& questions) {
    for (CPlainNode const& city : tree.Cities()) {
        auto const pTown = tree.Towns().begin() + static_cast<std::ptrdiff_t>(city.nCount == 0 ? 0 : city.nFirst);
        if (std::none_of(pTown, pTown + static_cast<std::ptrdiff_t>(city.nCount),
                         [](CPlainNode const& town) { return town.bCurrent; }))
            continue;
        std::string const strPref(tree.Prefs()[city.nParent].strName), strCity(city.strName);
        questions.vCity.push_back({strPref + strCity, "", {strPref, strCity, "", ""}, {}, {}, {}});
    }
    ShuffleAndCut(questions.vCity, NO_LIMIT);
}

// A text between two bounds: the names that begin with it are those from vName[1] on and below vName[2].
void AddFronts(CPlainTree const& tree, CQuestions& questions) {
    std::vector<CPlainNode> const& vPref = tree.Prefs();
    std::set<std::string> setFront;
    for (CPlainNode const& city : tree.Cities()) {
        size_t const nFirst = qe::CharacterSize(city.strName);
        setFront.emplace(city.strName.substr(0, nFirst + qe::CharacterSize(city.strName.substr(nFirst))));
    }
    for (std::string const& strFront : setFront) {
        if (std::any_of(vPref.begin(), vPref.end(), [&](auto const& pref) { return Begins(strFront, pref.strName); }))
            continue;
        std::string strEnd = strFront;
        ++strEnd.back();
        questions.vFront.push_back({strFront, "", {"", strFront, strEnd, ""}, {}, {}, {}});
    }
    ShuffleAndCut(questions.vFront, NO_LIMIT);
}

} // namespace

CPlainTree::CPlainTree(CAddrDic& dic) {
    size_t nBegin[4] = {}; // first node of each level
    for (unsigned long n = 0; tagADDRNODE const* pNode = dic.GetAddrNode(n); ++n)
        for (size_t nLevel = 0; nLevel < std::size(LEVELS); ++nLevel) {
            if (pNode->nLevel != LEVELS[nLevel]) continue;
            if (m_vLevel[nLevel].empty()) nBegin[nLevel] = n;
            if (n != nBegin[nLevel] + m_vLevel[nLevel].size())
                throw std::runtime_error("the nodes of a level do not stand together");
            m_vLevel[nLevel].push_back(ReadNode(dic, *pNode));
        }
    for (size_t nLevel = 0; nLevel < std::size(LEVELS); ++nLevel)
        for (CPlainNode& node : m_vLevel[nLevel]) {
            if (nLevel > 0) node.nParent -= nBegin[nLevel - 1];
            node.nFirst -= nBegin[nLevel + 1];
        }
}

CPlainNode const* CPlainTree::Find(std::string_view strText) const {
    CPlainNode const *pPref = nullptr, *pCity = nullptr;
    for (CPlainNode const& pref : m_vLevel[0])
        if (pPref == nullptr && Begins(pref.strName, strText)) pPref = &pref;
    if (pPref != nullptr) strText.remove_prefix(pPref->strName.size());
    size_t const nCity = pPref == nullptr ? 0 : pPref->nFirst;
    size_t const nCities = pPref == nullptr ? m_vLevel[1].size() : pPref->nCount;
    for (size_t n = nCity; n < nCity + nCities; ++n) {
        CPlainNode const& city = m_vLevel[1][n];
        if (Begins(city.strName, strText) && (pCity == nullptr || city.strName.size() > pCity->strName.size()))
            pCity = &city;
    }
    if (pCity != nullptr) strText.remove_prefix(pCity->strName.size());
    size_t const nTown = pCity == nullptr ? 0 : pCity->nFirst;
    size_t const nTowns = pCity == nullptr ? m_vLevel[2].size() : pCity->nCount;
    for (size_t n = nTown; n < nTown + nTowns; ++n)
        if (Begins(m_vLevel[2][n].strName, strText)) return &m_vLevel[2][n];
    return nullptr;
}

CQuestions MakeQuestions(CAddrDic& dic, CPlainTree const& tree, size_t nMost) {
    CQuestions questions;
    questions.vFull = AskForTowns(tree, true, nMost, questions.vHidden);
    questions.vGone = AskForTowns(tree, false, ShareOfOthers(nMost), questions.vHidden);
    AddBare(tree, ShareOfOthers(nMost), questions);
    AddNothing(tree, dic, ShareOfNothing(nMost), questions);
    AddOffices(dic, nMost, questions);
    AddFronts(tree, questions);
    AddCities(tree, questions);
    for (auto const* pQuestions : {&questions.vFull, &questions.vBare, &questions.vNothing, &questions.vOffice})
        if (pQuestions->empty()) throw std::runtime_error("the dictionary has too few addresses to ask for");
    return questions;
}

// --- tables --------------------------------------------------------------------------------------------------------

namespace {

void InsertRow(CStatement& insert, std::initializer_list<std::string_view> texts) {
    std::vector<char> vNothing;
    int nParameter = 0;
    for (std::string_view const str : texts) insert.Bind(++nParameter, str);
    insert.CopyRows(vNothing);
}

void InsertTowns(CSqlite& db, CPlainTree const& tree) {
    CStatement insert(db, "INSERT INTO town VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8)");
    for (CPlainNode const& town : tree.Towns())
        if (!town.strCode.empty())
            InsertRow(insert, {tree.PrefOf(town).strName, tree.CityOf(town).strName, town.strName, town.strCode,
                               town.strOld, town.strLatest[0], town.strLatest[1], town.strLatest[2]});
}

void InsertOffices(CSqlite& db, CAddrDic& dic) {
    CStatement insert(db, "INSERT INTO office VALUES (?1, ?2, ?3, ?4, ?5, ?6)");
    for (unsigned long n = 0; tagADDRINFO const* pInfo = dic.GetAddrInfo(n); ++n) {
        tagADDR addr(0);
        dic.GetAddr(pInfo, &addr);
        if (addr.pszOffice == nullptr || addr.pszTown == nullptr) continue;
        CEntryTexts const entry = ReadEntry(dic, *pInfo);
        InsertRow(insert, {addr.pszPref, addr.pszCity, addr.pszTown, addr.pszOffice, entry.strCode, entry.strOld});
    }
}

} // namespace

void FillNames(CSqlite& db, CPlainTree const& tree, CAddrDic& dic) {
    db.Execute("BEGIN; CREATE TABLE town (pref TEXT NOT NULL, city TEXT NOT NULL, town TEXT NOT NULL,"
               " code TEXT NOT NULL, old TEXT NOT NULL, nowpref TEXT NOT NULL, nowcity TEXT NOT NULL,"
               " nowtown TEXT NOT NULL); CREATE TABLE office (pref TEXT NOT NULL, city TEXT NOT NULL,"
               " town TEXT NOT NULL, office TEXT NOT NULL, code TEXT NOT NULL, old TEXT NOT NULL)");
    InsertTowns(db, tree);
    InsertOffices(db, dic);
    db.Execute("CREATE INDEX town_names ON town (pref, city, town); CREATE INDEX town_bare ON town (city, town);"
               "CREATE INDEX office_names ON office (pref, city, town, office); COMMIT; ANALYZE");
}
