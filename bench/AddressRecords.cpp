// AddressRecords.cpp - from an address to its code and to its latest form, as a host asks: the exported functions with
// their record, beside SQLite that is given the names already taken apart.
#include "bench/AddressRecord.h"
#include "bench/Benchmarks.h"
#include "bench/OpenApi.h"

#include <ostream>
#include <stdexcept>

#include <benchmark/benchmark.h>

namespace {

using benchmark::DoNotOptimize;

constexpr char SQL_BARE[] = "SELECT code, old FROM town WHERE city = ?1 AND town = ?2 LIMIT 1";
constexpr char SQL_OFFICE[] =
    "SELECT code, old FROM office WHERE pref = ?1 AND city = ?2 AND town = ?3 AND office = ?4 LIMIT 1";
constexpr char SQL_LATEST[] = "SELECT code, old, nowpref, nowcity, nowtown FROM town"
                              " WHERE pref = ?1 AND city = ?2 AND town = ?3 LIMIT 1";
constexpr size_t LATEST_TEXT = 60; // bytes that PstAdrGetLatestAdr writes at most

// One group: what is asked, and the SELECT that answers the same.
struct CGroup {
    char const* pszGroup;
    char const* pszSql;
    size_t nFirst, nNames; // of vName: the statement's parameters
    bool bLatest;
};

void BindNames(CStatement& select, CGroup const& group, CQuestion const& question) {
    for (size_t n = 0; n < group.nNames; ++n) select.Bind(static_cast<int>(n) + 1, question.vName[group.nFirst + n]);
}

short Ask(CGroup const& group, CQuestion const& question, tagADDRESSRECORD& record) {
    record.Fill(question.strText, question.strOffice);
    return group.bLatest ? PstAdrGetLatestAdr(&record) : PstAdrGetZip(&record);
}

// --- the comparison before the loops -------------------------------------------------------------------------------

void Append(std::vector<char>& vText, std::string_view str) {
    vText.insert(vText.end(), str.begin(), str.end());
    vText.push_back('\0');
}

// The texts of the answer that is due, in SQLite's order of columns.
std::vector<char> Due(CGroup const& group, CQuestion const& question) {
    std::vector<char> vText;
    if (question.strCode.empty()) return vText;
    Append(vText, question.strCode);
    Append(vText, question.strOld);
    if (group.bLatest)
        for (std::string_view const str : question.strNow) Append(vText, str);
    return vText;
}

bool IsDue(CGroup const& group, CQuestion const& question, short nResult, tagADDRESSRECORD const& record) {
    if (nResult != (question.strCode.empty() ? 1 : 0)) return false;
    if (question.strCode != record.szCode ||
        question.strOld != std::string_view(record.szOldCode, strnlen(record.szOldCode, sizeof record.szOldCode)))
        return false;
    if (!group.bLatest) return true;
    std::string strNow;
    for (std::string_view const str : question.strNow) strNow += str;
    return strNow.substr(0, LATEST_TEXT) == record.szAddress;
}

// Both sides against the answer that is due. Questions that SQLite answers otherwise (one name for two towns) leave
// the list; one that the library answers otherwise ends the run, unless its group is one where names may differ.
void KeepSame(CSqlite& db, CGroup const& group, std::vector<CQuestion>& vQuestion, bool bStrict, std::ostream& out) {
    COpenApi const api;
    CStatement select(db, group.pszSql);
    std::vector<char> vText;
    std::vector<CQuestion> vSame;
    vSame.reserve(vQuestion.size());
    for (CQuestion const& question : vQuestion) {
        tagADDRESSRECORD record;
        short const nResult = Ask(group, question, record);
        bool const bOurs = IsDue(group, question, nResult, record);
        if (!bOurs && bStrict)
            throw std::runtime_error(std::string(group.pszGroup) + ": wrong for " + question.strText);
        BindNames(select, group, question);
        select.CopyRows(vText);
        if (bOurs && vText == Due(group, question)) vSame.push_back(question);
    }
    out << "same answers, " << group.pszGroup << ": " << vSame.size() << " of " << vQuestion.size()
        << "; the others are not asked\n";
    if (vSame.size() < vQuestion.size() / 10 * 9)
        throw std::runtime_error(std::string(group.pszGroup) + ": both sides agree too seldom");
    vQuestion = std::vector<CQuestion>(vSame);
}

// --- the loops -----------------------------------------------------------------------------------------------------

template <typename F>
void Add(std::string const& strName, std::vector<CQuestion> const& vQuestion, F Loop) {
    benchmark::RegisterBenchmark(strName.c_str(), [&vQuestion, Loop = std::move(Loop)](benchmark::State& state) {
        size_t n = 0;
        Loop(state, [&]() -> CQuestion const& {
            CQuestion const& question = vQuestion[n];
            if (++n == vQuestion.size()) n = 0;
            return question;
        });
    });
}

void AddGroup(CBench& bench, CGroup const& group, std::vector<CQuestion> const& vQuestion) {
    std::string const strGroup = std::string(group.pszGroup) + '/';
    Add(strGroup + (group.bLatest ? "PstAdrGetLatestAdr" : "PstAdrGetZip"), vQuestion,
        [group](benchmark::State& state, auto const& Next) {
            COpenApi const api;
            for (auto _ : state) {
                tagADDRESSRECORD record;
                DoNotOptimize(Ask(group, Next(), record));
                DoNotOptimize(record);
            }
        });
    for (bool const bFile : {false, true})
        Add(strGroup + (bFile ? "sqlite_file" : "sqlite_memory"), vQuestion,
            [&bench, group, bFile](benchmark::State& state, auto const& Next) {
                CStatement select(bFile ? bench.file : bench.memory, group.pszSql);
                std::vector<char> vText;
                for (auto _ : state) {
                    BindNames(select, group, Next());
                    DoNotOptimize(select.CopyRows(vText));
                    benchmark::ClobberMemory();
                }
            });
}

} // namespace

void RegisterAddressRecords(CBench& bench, std::ostream& out) {
    CQuestions& questions = bench.questions;
    out << "addresses of towns: " << questions.vFull.size() << " current and " << questions.vGone.size()
        << " gone; compared but not timed, since an earlier town's name begins theirs: " << questions.vHidden.size()
        << '\n';
    CGroup const full = {"zip_full", SQL_BY_NAMES, 0, 3, false};
    CGroup const hidden = {"hidden towns", SQL_BY_NAMES, 0, 3, false};
    CGroup const bare = {"zip_bare", SQL_BARE, 1, 2, false};
    CGroup const nothing = {"zip_nothing", SQL_BY_NAMES, 0, 3, false};
    CGroup const office = {"zip_office", SQL_OFFICE, 0, 4, false};
    CGroup const latest = {"latest", SQL_LATEST, 0, 3, true};
    CGroup const gone = {"latest_gone", SQL_LATEST, 0, 3, true};
    KeepSame(bench.memory, full, questions.vFull, true, out);
    KeepSame(bench.memory, hidden, questions.vHidden, true, out);
    KeepSame(bench.memory, bare, questions.vBare, true, out);
    KeepSame(bench.memory, nothing, questions.vNothing, true, out);
    // An organisation may share its name, or the beginning of it, with another one in the same town.
    KeepSame(bench.memory, office, questions.vOffice, false, out);
    KeepSame(bench.memory, latest, questions.vFull, true, out);
    if (!questions.vGone.empty()) KeepSame(bench.memory, gone, questions.vGone, true, out);
    AddGroup(bench, full, questions.vFull);
    AddGroup(bench, bare, questions.vBare);
    AddGroup(bench, nothing, questions.vNothing);
    AddGroup(bench, office, questions.vOffice);
    AddGroup(bench, latest, questions.vFull);
    if (!questions.vGone.empty()) AddGroup(bench, gone, questions.vGone);
}
