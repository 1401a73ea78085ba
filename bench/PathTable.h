// PathTable.h - the plainest yardstick for an address: a sorted list of whole town paths (東京都千代田区丸の内) that is
// searched for the longest one that begins the text, in memory and in SQLite.
#ifndef QEADRS_BENCH_PATHTABLE_H
#define QEADRS_BENCH_PATHTABLE_H

#include "bench/SqliteTable.h"

#include <string>
#include <string_view>
#include <vector>

inline constexpr char SQL_LONGEST_PATH[] = "SELECT path FROM town WHERE path <= ?1 ORDER BY path DESC LIMIT 1";

// Makes the table in an empty database. REQUIRES: the paths are sorted.
void FillPaths(CSqlite& db, std::vector<std::string> const& vPath);

// Empty when no path begins the text. The answer leads into the list, or into vText.
std::string_view LongestPathInMemory(std::vector<std::string> const& vPath, std::string_view strText);
std::string_view LongestPathInSqlite(CStatement& select, std::vector<char>& vText, std::string_view strText);

#endif
