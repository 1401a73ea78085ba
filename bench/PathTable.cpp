#include "bench/PathTable.h"

#include <algorithm>
#include <iterator>

namespace {

// Below(text) is the last path in order that is not above the text. When that does not begin the text, no path that
// does is longer than what the two have in common.
template <typename F>
std::string_view LongestPath(std::string_view strText, F const& Below) {
    while (!strText.empty()) {
        std::string_view const strPath = Below(strText);
        size_t const nCommon = static_cast<size_t>(
            std::mismatch(strPath.begin(), strPath.end(), strText.begin(), strText.end()).first - strPath.begin());
        if (nCommon == strPath.size()) return strPath;
        strText = strText.substr(0, nCommon);
    }
    return {};
}

} // namespace

std::string_view LongestPathInMemory(std::vector<std::string> const& vPath, std::string_view strText) {
    return LongestPath(strText, [&](std::string_view strKey) -> std::string_view {
        auto const p = std::upper_bound(vPath.begin(), vPath.end(), strKey);
        return p == vPath.begin() ? std::string_view() : std::string_view(*std::prev(p));
    });
}

std::string_view LongestPathInSqlite(CStatement& select, std::vector<char>& vText, std::string_view strText) {
    return LongestPath(strText, [&](std::string_view strKey) -> std::string_view {
        select.Bind(1, strKey);
        return select.CopyRows(vText) == 0 ? std::string_view() : std::string_view(vText.data(), vText.size() - 1);
    });
}

void FillPaths(CSqlite& db, std::vector<std::string> const& vPath) {
    db.Execute("BEGIN; CREATE TABLE town (path TEXT PRIMARY KEY) WITHOUT ROWID");
    {
        CStatement insert(db, "INSERT INTO town VALUES (?1)");
        std::vector<char> vNothing;
        for (std::string const& strPath : vPath) {
            insert.Bind(1, strPath);
            insert.CopyRows(vNothing);
        }
    }
    db.Execute("COMMIT; ANALYZE");
}
