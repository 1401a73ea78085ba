// Source.cpp - the texts and rows of the official tables, from bytes.
#include "builder/Source.h"

#include "builder/Error.h"
#include "builder/Text.h"
#include "dic/AddrDic.h"

#include <algorithm>
#include <iterator>

namespace qe {

namespace {

constexpr size_t TOWN_COLUMNS = 15;
constexpr size_t OFFICE_COLUMNS = 13;

size_t LineOf(std::string_view str, size_t nPos) {
    return static_cast<size_t>(std::count(str.begin(), str.begin() + static_cast<std::ptrdiff_t>(nPos), '\n')) + 1;
}

[[noreturn]] void FailLine(CSource const& source, size_t nLine, std::string const& strWhat) {
    throw CBuildError(source.Name() + ":" + std::to_string(nLine) + ": " + strWhat);
}

void CheckText(CSource const& source) {
    if (source.strText.empty()) throw CBuildError(source.Name() + ": is empty.");
    size_t const nNul = source.strText.find('\0');
    if (nNul != std::string::npos)
        FailLine(source, LineOf(source.strText, nNul), "a NUL byte: this is no text file.");
    if (source.strText.back() != '\n')
        FailLine(source, LineOf(source.strText, source.strText.size()),
                 "the file is cut off within this line; get it again.");
}

bool IsDigits(std::string_view str, size_t nLength) {
    return str.size() == nLength && std::all_of(str.begin(), str.end(), [](char c) { return c >= '0' && c <= '9'; });
}

std::string Replace(std::string str, std::string_view strOld, std::string_view strNew) {
    for (size_t nPos = 0; (nPos = str.find(strOld, nPos)) != std::string::npos; nPos += strNew.size())
        str.replace(nPos, strOld.size(), strNew);
    return str;
}

// Code page 932 converts its wave dash and its minus to other characters than the UTF-8 edition uses.
std::string MapDashes(std::string str) {
    return Replace(Replace(std::move(str), "～", "〜"), "－", "−");
}

bool IsKnownPref(std::string const& strPref) {
    return std::any_of(std::begin(pref_order), std::end(pref_order),
                       [&](char const* pszRow) { return strPref == pszRow + PREF_ORDER_NAME; });
}

// What both tables have in common: the codes and the prefecture.
void CheckRow(CLineReader const& reader, std::string const& strJis, std::string const& strPref,
              std::string const& strCode, std::string& strOldCode) {
    if (!IsDigits(strJis, 5)) reader.Fail("column 1 must be a code of five digits, not \"" + strJis + "\".");
    if (!IsDigits(strCode, 7)) reader.Fail("the postal code must have seven digits, not \"" + strCode + "\".");
    strOldCode.erase(strOldCode.find_last_not_of(' ') + 1);
    if (!IsDigits(strOldCode, 3) && !IsDigits(strOldCode, 5))
        reader.Fail("the old postal code must have three or five digits, not \"" + strOldCode + "\".");
    if (!IsKnownPref(strPref)) reader.Fail("\"" + strPref + "\" is no prefecture.");
}

CTownRow MakeTownRow(CLineReader const& reader, std::vector<std::string> const& vField) {
    CTownRow row;
    row.nLine = reader.Number();
    row.strJis = vField[0];
    row.strOldCode = vField[1];
    row.strCode = vField[2];
    row.strPrefKana = vField[3];
    row.strCityKana = vField[4];
    row.strTownKana = vField[5];
    row.strPref = vField[6];
    row.strCity = vField[7];
    row.strTown = vField[8];
    CheckRow(reader, row.strJis, row.strPref, row.strCode, row.strOldCode);
    if (row.strPrefKana.empty()) reader.Fail("the prefecture has no reading.");
    if (row.strCity.empty()) reader.Fail("the city is empty.");
    if (row.strCityKana.empty()) reader.Fail("the city has no reading.");
    if (row.strTown.empty()) reader.Fail("the town is empty.");
    return row;
}

// A town text that opens a parenthesis without closing it goes on in the next lines, and so does its reading.
bool IsTextOpen(std::string const& str) {
    return Contains(str, "（") && !Contains(str, "）");
}
bool IsReadingOpen(std::string const& str) {
    return Contains(str, "(") && !Contains(str, ")");
}

// Adds the lines that continue the row. A reading that is complete already is only repeated there.
void JoinLines(CLineReader& reader, CTownRow& row, size_t& nJoined) {
    while (IsTextOpen(row.strTown)) {
        if (!reader.Next()) reader.Fail("the file ends within the parenthesis of this town.");
        ++nJoined;
        std::vector<std::string> const vField = reader.Fields(TOWN_COLUMNS);
        if (vField[0] != row.strJis || vField[2] != row.strCode)
            reader.Fail("the parenthesis opened in line " + std::to_string(row.nLine) + " does not go on here.");
        row.strTown += vField[8];
        if (IsReadingOpen(row.strTownKana)) row.strTownKana += vField[5];
    }
}

} // namespace

char const* EncodingName(EEncoding nEncoding) {
    switch (nEncoding) {
    case EEncoding::Utf8:
        return "UTF-8";
    case EEncoding::Cp932:
        return "CP932";
    case EEncoding::EucJis2004:
        return "EUC-JIS-2004";
    }
    return "";
}

std::string CSource::Name() const {
    return strMember.empty() ? strPath : strPath + "(" + strMember + ")";
}

CSource DecodeSource(CSource source) {
    CheckText(source);
    if (BeginsWith(source.strText, "\xEF\xBB\xBF")) source.strText.erase(0, 3);
    size_t const nBadUtf8 = FindInvalidUtf8(source.strText);
    if (nBadUtf8 != std::string::npos) {
        std::string strUtf8;
        size_t nBad = 0;
        if (!ConvertToUtf8(source.strText, "CP932", strUtf8, &nBad)) {
            // The encoding that fits further is the one that was meant.
            bool const bUtf8 = nBadUtf8 > nBad;
            FailLine(source, LineOf(source.strText, std::max(nBad, nBadUtf8)),
                     std::string("this line is not ") + (bUtf8 ? "UTF-8" : "CP932") + ", and the file is not " +
                         (bUtf8 ? "CP932" : "UTF-8") + " either.");
        }
        source.strText = std::move(strUtf8);
        source.nEncoding = EEncoding::Cp932;
    }
    return source;
}

CSource DecodeEucSource(CSource source) {
    CheckText(source);
    std::string strUtf8;
    size_t nBad = 0;
    if (!ConvertToUtf8(source.strText, "EUC-JISX0213", strUtf8, &nBad))
        FailLine(source, LineOf(source.strText, nBad), "this line is not EUC-JIS-2004.");
    source.strText = std::move(strUtf8);
    source.nEncoding = EEncoding::EucJis2004;
    return source;
}

bool CLineReader::Next() {
    if (m_nPos >= m_source.strText.size()) return false;
    size_t const nEnd = m_source.strText.find('\n', m_nPos); // every source ends in a line end
    m_strLine = std::string_view(m_source.strText).substr(m_nPos, nEnd - m_nPos);
    if (EndsWith(m_strLine, "\r")) m_strLine.remove_suffix(1);
    m_nPos = nEnd + 1;
    ++m_nLine;
    return true;
}

std::vector<std::string> CLineReader::Fields(size_t nExpected) const {
    std::vector<std::string> vField;
    std::string_view strRest = m_strLine;
    for (bool bMore = true; bMore;) {
        std::string strField;
        if (BeginsWith(strRest, "\"")) {
            size_t nEnd = 1;
            for (; nEnd < strRest.size(); ++nEnd) {
                if (strRest[nEnd] == '"' && (nEnd + 1 >= strRest.size() || strRest[nEnd + 1] != '"')) break;
                if (strRest[nEnd] == '"') ++nEnd;
                strField += strRest[nEnd];
            }
            if (nEnd >= strRest.size()) Fail("a quote is not closed; the line is cut off or damaged.");
            strRest.remove_prefix(nEnd + 1);
        } else {
            strField = strRest.substr(0, strRest.find(','));
            strRest.remove_prefix(strField.size());
        }
        vField.push_back(std::move(strField));
        bMore = BeginsWith(strRest, ",");
        if (!bMore && !strRest.empty()) Fail("text behind a closing quote.");
        if (bMore) strRest.remove_prefix(1);
    }
    if (vField.size() != nExpected)
        Fail("expected " + std::to_string(nExpected) + " columns, found " + std::to_string(vField.size()) + ".");
    return vField;
}

void CLineReader::Fail(std::string const& strWhat) const {
    FailLine(m_source, m_nLine, strWhat);
}

CTownTable ReadTownTable(CSource const& source) {
    CTownTable table;
    CLineReader reader(source);
    while (reader.Next()) {
        CTownRow row = MakeTownRow(reader, reader.Fields(TOWN_COLUMNS));
        JoinLines(reader, row, table.nJoined);
        if (source.nEncoding == EEncoding::Cp932) {
            row.strTown = MapDashes(std::move(row.strTown));
            for (std::string* pKana : {&row.strPrefKana, &row.strCityKana, &row.strTownKana})
                *pKana = ToFullWidth(*pKana);
        }
        table.vRow.push_back(std::move(row));
    }
    table.nLines = reader.Number();
    return table;
}

std::vector<COfficeRow> ReadOfficeTable(CSource const& source) {
    std::vector<COfficeRow> vRow;
    CLineReader reader(source);
    while (reader.Next()) {
        std::vector<std::string> const vField = reader.Fields(OFFICE_COLUMNS);
        COfficeRow row;
        row.nLine = reader.Number();
        row.strKana = Replace(ToFullWidth(vField[1]), "−", "ー"); // this table writes the long vowel as a hyphen
        row.strName = vField[2];
        row.strPref = vField[3];
        row.strCity = vField[4];
        row.strTown = MapDashes(vField[5]);
        row.strRest = MapDashes(vField[6]); // names stay as their owners write them
        row.strCode = vField[7];
        row.strOldCode = vField[8];
        CheckRow(reader, vField[0], row.strPref, row.strCode, row.strOldCode);
        if (row.strName.empty()) reader.Fail("the organisation has no name.");
        if (row.strKana.empty()) reader.Fail("the organisation has no reading.");
        vRow.push_back(std::move(row));
    }
    return vRow;
}

} // namespace qe
