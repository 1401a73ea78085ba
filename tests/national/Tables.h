// Tables.h - the files that prepare.sh made, read without any code of the compiler. Each is read once for the
// process.
#ifndef QEADRS_TESTS_NATIONAL_TABLES_H
#define QEADRS_TESTS_NATIONAL_TABLES_H

#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace national {

// Path of a prepared file.
std::string DataPath(std::string const& strFile);

// A file's bytes. Throws std::runtime_error when it cannot be read.
std::string ReadFile(std::string const& strPath);

// A row of the town table. Texts lead into the file's bytes, which stay for the life of the process.
struct CTownRow {
    size_t nLine;
    std::string_view strOldCode, strCode;
    std::string_view strPrefKana, strCityKana, strTownKana;
    std::string_view strPref, strCity, strTown;
};
std::vector<CTownRow> const& TownRows();

// The rows of an edition in the older format, which breaks long rows over several lines and writes readings in half
// width: joined, and written as the town table writes them. Texts lead into the object.
class CJoinedTable {
  public:
    explicit CJoinedTable(std::string const& strPath);
    CJoinedTable(CJoinedTable const&) = delete;
    CJoinedTable& operator=(CJoinedTable const&) = delete;
    std::vector<CTownRow> const& Rows() const { return m_vRow; }

  private:
    std::string m_strText;
    std::deque<std::string> m_vText; // what is not in the file as it is
    std::vector<CTownRow> m_vRow;
};

// A row of the organisation table, with its reading in full width and the dashes of its address as the town table
// writes them. The name stays as it is.
struct COfficeRow {
    size_t nLine;
    std::string strKana, strName;
    std::string strPref, strCity, strTown, strRest;
    std::string strCode, strOldCode;
};
std::vector<COfficeRow> const& OfficeRows();

// "line 17, 0600000 北海道札幌市中央区 以下に掲載がない場合", for failures.
std::string Describe(CTownRow const& row);
std::string Describe(COfficeRow const& row);

// Half-width katakana, ASCII and the blank in full width; "-" becomes "−" (U+2212).
std::string FullWidth(std::string_view str);

// The character at the head of a UTF-8 text; empty at its end.
std::string_view FirstCharacter(std::string_view str);

// At most 127 bytes of a name: what stands before its last blank there, else as many whole characters as fit.
std::string CutName(std::string const& strName);

// A text of the caller as a search for an organisation turns it: without ASCII blanks and commas and without the first
// two bytes of every character of the block around the ideographic space, then without one legal form in front or
// behind. AliasOf: a name of the table without its ideographic spaces, turned so and cut.
std::string SearchedName(std::string_view strName);
std::string AliasOf(std::string const& strName);
std::string WithoutBlanks(std::string_view strName); // of both widths

inline bool BeginsWith(std::string_view str, std::string_view strHead) {
    return str.substr(0, strHead.size()) == strHead;
}
inline bool EndsWith(std::string_view str, std::string_view strTail) {
    return str.size() >= strTail.size() && str.substr(str.size() - strTail.size()) == strTail;
}

constexpr size_t NAME_LIMIT = 127;

} // namespace national

#endif
