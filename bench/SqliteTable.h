// SqliteTable.h - the yardstick: the dictionary's rows in an indexed SQLite table, asked by prepared statements.
//
//   CSqlite db(":memory:");
//   FillTable(db, dictionary.Rows());
//   CStatement select(db, SQL_BY_CODE);
//   std::vector<char> vText;
//   select.Bind(1, "1000001");
//   size_t nRows = select.CopyRows(vText);
//
// The columns are the seven texts of a GetAdrFromZip block in the order of its pool, so that the copied texts equal
// that pool byte by byte.
#ifndef QEADRS_BENCH_SQLITETABLE_H
#define QEADRS_BENCH_SQLITETABLE_H

#include "bench/World.h"

#include <string>
#include <string_view>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

inline constexpr char SQL_BY_CODE[] = "SELECT ext, code, pref, city, town, area, office FROM addr WHERE code = ?1";
inline constexpr char SQL_BY_LEAD[] =
    "SELECT ext, code, pref, city, town, area, office FROM addr WHERE code >= ?1 AND code < ?2";
inline constexpr char SQL_BY_OLD[] = "SELECT ext, code, pref, city, town, area, office FROM addr WHERE old = ?1";
// Of table town (Questions.h).
inline constexpr char SQL_BY_NAMES[] =
    "SELECT code, old FROM town WHERE pref = ?1 AND city = ?2 AND town = ?3 LIMIT 1";
inline constexpr char SQL_FIRST_BY_CODE[] = "SELECT rowid FROM addr WHERE code = ?1 LIMIT 1";
inline constexpr char SQL_FIRST_BY_LEAD[] =
    "SELECT rowid FROM addr WHERE code >= ?1 AND code < ?2 ORDER BY code LIMIT 1";
inline constexpr char SQL_CITIES_BY_CODE[] = "SELECT DISTINCT pref, city FROM addr WHERE code = ?1";
inline constexpr char SQL_CITIES_BY_OLD[] = "SELECT DISTINCT pref, city FROM addr WHERE old = ?1";

// A connection. All failures throw std::runtime_error with SQLite's own message.
class CSqlite {
  public:
    explicit CSqlite(std::string const& strPath, bool bReadOnly = false);
    ~CSqlite();
    CSqlite(CSqlite const&) = delete;
    CSqlite& operator=(CSqlite const&) = delete;

    void Execute(char const* pszSql);
    sqlite3* Handle() const { return m_pDb; }

  private:
    sqlite3* m_pDb;
};

class CStatement {
  public:
    CStatement(CSqlite const& db, char const* pszSql);
    ~CStatement();
    CStatement(CStatement const&) = delete;
    CStatement& operator=(CStatement const&) = delete;

    // The text is not copied: it must live until the statement has run.
    void Bind(int nParameter, std::string_view strText);
    // Steps to the end and resets. CopyRows replaces vText by all texts of all rows, each with its NUL, and returns
    // the number of rows; FirstNumber returns the first column of the first row, 0 when there is none.
    size_t CopyRows(std::vector<char>& vText);
    long FirstNumber();

  private:
    bool Step();
    void Reset();

    sqlite3* m_pDb;
    sqlite3_stmt* m_pStatement;
};

// Makes table addr with its indexes over code, old code, names, and city in an empty database.
void FillTable(CSqlite& db, std::vector<tagROW> const& vRow);

// The same as a new file, written as one transaction; an earlier file is removed.
void MakeTableFile(std::string const& strPath, std::vector<tagROW> const& vRow);

#endif
