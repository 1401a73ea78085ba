// SqliteTable.cpp - the thinnest cover over SQLite's C interface that does what a careful host would do.
#include "bench/SqliteTable.h"

#include <sqlite3.h>

#include <cstdio>
#include <stdexcept>

namespace {

[[noreturn]] void Fail(sqlite3* pDb) {
    throw std::runtime_error(std::string("SQLite: ") + sqlite3_errmsg(pDb));
}

std::string_view TextOf(char const* psz) {
    return psz == nullptr ? std::string_view("") : std::string_view(psz);
}

} // namespace

CSqlite::CSqlite(std::string const& strPath, bool bReadOnly) : m_pDb(nullptr) {
    int const nFlags = bReadOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    if (sqlite3_open_v2(strPath.c_str(), &m_pDb, nFlags, nullptr) == SQLITE_OK) return;
    std::string const strMessage = strPath + ": " + sqlite3_errmsg(m_pDb);
    sqlite3_close(m_pDb); // a failed open leaves a connection, too
    throw std::runtime_error("SQLite: " + strMessage);
}

CSqlite::~CSqlite() {
    sqlite3_close(m_pDb);
}

void CSqlite::Execute(char const* pszSql) {
    if (sqlite3_exec(m_pDb, pszSql, nullptr, nullptr, nullptr) != SQLITE_OK) Fail(m_pDb);
}

CStatement::CStatement(CSqlite const& db, char const* pszSql) : m_pDb(db.Handle()), m_pStatement(nullptr) {
    if (sqlite3_prepare_v2(m_pDb, pszSql, -1, &m_pStatement, nullptr) != SQLITE_OK) Fail(m_pDb);
}

CStatement::~CStatement() {
    sqlite3_finalize(m_pStatement);
}

void CStatement::Bind(int nParameter, std::string_view strText) {
    int const nResult =
        sqlite3_bind_text(m_pStatement, nParameter, strText.data(), static_cast<int>(strText.size()), nullptr);
    if (nResult != SQLITE_OK) Fail(m_pDb);
}

bool CStatement::Step() {
    int const nResult = sqlite3_step(m_pStatement);
    if (nResult != SQLITE_ROW && nResult != SQLITE_DONE) Fail(m_pDb);
    return nResult == SQLITE_ROW;
}

void CStatement::Reset() {
    if (sqlite3_reset(m_pStatement) != SQLITE_OK) Fail(m_pDb);
}

size_t CStatement::CopyRows(std::vector<char>& vText) {
    vText.clear();
    size_t nRows = 0;
    int const nColumns = sqlite3_column_count(m_pStatement);
    while (Step()) {
        for (int n = 0; n < nColumns; ++n) {
            unsigned char const* const p = sqlite3_column_text(m_pStatement, n);
            vText.insert(vText.end(), p, p + sqlite3_column_bytes(m_pStatement, n) + 1);
        }
        ++nRows;
    }
    Reset();
    return nRows;
}

long CStatement::FirstNumber() {
    long const nNumber = Step() ? static_cast<long>(sqlite3_column_int64(m_pStatement, 0)) : 0;
    Reset();
    return nNumber;
}

void FillTable(CSqlite& db, std::vector<tagROW> const& vRow) {
    db.Execute(
        "BEGIN; CREATE TABLE addr (code TEXT NOT NULL, old TEXT NOT NULL, ext TEXT NOT NULL, pref TEXT NOT NULL,"
        " city TEXT NOT NULL, town TEXT NOT NULL, area TEXT NOT NULL, office TEXT NOT NULL)");
    CStatement insert(db, "INSERT INTO addr VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8)");
    std::vector<char> vNothing;
    for (tagROW const& row : vRow) {
        insert.Bind(1, TextOf(row.addr.pszPostCode));
        insert.Bind(2, TextOf(row.pszOld));
        insert.Bind(3, TextOf(row.addr.pszCodeExt));
        insert.Bind(4, TextOf(row.addr.pszPref));
        insert.Bind(5, TextOf(row.addr.pszCity));
        insert.Bind(6, TextOf(row.addr.pszTown));
        insert.Bind(7, TextOf(row.addr.pszArea));
        insert.Bind(8, TextOf(row.addr.pszOffice));
        insert.CopyRows(vNothing);
    }
    // Indexes last: filling them in order of the rows would be the slower way.
    db.Execute("CREATE INDEX addr_code ON addr (code); CREATE INDEX addr_old ON addr (old);"
               "CREATE INDEX addr_names ON addr (pref, city, town); CREATE INDEX addr_city ON addr (city); COMMIT;"
               "ANALYZE");
}

void MakeTableFile(std::string const& strPath, std::vector<tagROW> const& vRow) {
    std::remove(strPath.c_str());
    CSqlite db(strPath);
    FillTable(db, vRow);
}
