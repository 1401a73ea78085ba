// BatchAnswer.cpp - one lookup per record, by the class alone: it answers what the commands ask of the API, too.
#include "cli/BatchAnswer.h"

#include "cli/Address.h"
#include "cli/Text.h"

namespace qe {

namespace {

constexpr size_t CODE_DIGITS = 7;
constexpr std::string_view FOUND = "found";

// Where texts stand in the rows.
constexpr size_t ZIP_COUNT = 9;

struct COperation {
    std::vector<char const*> vName;
    size_t nNumber; // the column that is a number
};

COperation Operation(EBatchOp nOp) {
    switch (nOp) {
    case EBatchOp::Zip:
        return {{"postal_code", "old_code", "prefecture", "city", "town", "area", "building", "floor", "organisation",
                 "count", "status"},
                ZIP_COUNT};
    case EBatchOp::Addr:
        return {{"postal_code", "old_code", "prefecture", "city", "town", "rest", "status"}, std::string::npos};
    default:
        return {{"address", "postal_code", "old_code", "changed", "latest_code", "status"}, std::string::npos};
    }
}

// The row's texts in their order; what is left of it becomes "".
void Fill(CRow& row, std::initializer_list<std::string_view> vText) {
    size_t nColumn = 0;
    for (std::string_view const str : vText) row[nColumn++].assign(str);
    while (nColumn < row.size()) row[nColumn++].clear();
}

bool Refuse(CRow& row, std::string_view strStatus) {
    Fill(row, {});
    row.back().assign(strStatus);
    return false;
}

std::string NotFound(qeadrs::CRecord const& record) {
    std::string const strLevels = DescribeLevels(record);
    return strLevels.empty() ? "not found" : "not found; recognised: " + strLevels;
}

// A text as it is, not as a name: null and "" are two.
bool IsSame(std::string_view str, std::string_view strOther) {
    return str == strOther && (str.data() == nullptr) == (strOther.data() == nullptr);
}

} // namespace

std::vector<CBatchColumn> BatchColumns(EBatchOp nOp, std::string const& strPrefix) {
    std::vector<CBatchColumn> vColumn;
    COperation const operation = Operation(nOp);
    for (char const* pszName : operation.vName)
        vColumn.push_back({strPrefix + pszName, vColumn.size() == operation.nNumber});
    return vColumn;
}

bool CBatchAnswerer::Answer(std::string const& strText, CRow& row) {
    std::string_view const strTrimmed = Trim(strText);
    if (strTrimmed.empty()) return Refuse(row, "empty");
    if (m_nOp == EBatchOp::Zip) return AnswerCode(strText, row);
    if (strTrimmed.size() > qeadrs::ADDRESS_LENGTH)
        return Refuse(row, "no address: more than " + std::to_string(qeadrs::ADDRESS_LENGTH) + " bytes");
    return m_nOp == EBatchOp::Addr ? AnswerAddress(strTrimmed, row) : AnswerLatest(strTrimmed, row);
}

bool CBatchAnswerer::AnswerCode(std::string const& strText, CRow& row) {
    std::string const strCode = FoldCode(strText).value_or("");
    if (strCode.empty() || strCode.size() > CODE_DIGITS) return Refuse(row, "no postal code: it has 1 to 7 digits");
    qeadrs::CRecords const records = m_dictionary.FromCode(strCode);
    qeadrs::CRecord const first = records[0];
    Fill(row, {first.strCode, first.strOldCode, first.strPref, first.strCity, first.strTown, first.strArea,
               first.strBlock, first.strNote, first.strOffice});
    row[ZIP_COUNT] = std::to_string(records.size());
    row.back().assign(records.empty() ? "not found" : FOUND);
    return !records.empty();
}

bool CBatchAnswerer::AnswerAddress(std::string_view strAddress, CRow& row) {
    qeadrs::CRecords const records = m_dictionary.Separate(strAddress);
    qeadrs::CRecord const record = records[0];
    if (records.empty() || records.Class()[0].pszPostCode == nullptr) return Refuse(row, NotFound(record));
    tagADDR const& addr = records.Class()[0];
    CFoundPlace const place = FindPlace(m_dictionary, addr);
    Fill(row, {record.strCode, record.strOldCode, NameOf(m_dictionary, place.pPref),
               NameOf(m_dictionary, place.pCity), NameOf(m_dictionary, place.pTown), record.strArea});
    std::string const strDoubt = DescribeDoubt(m_dictionary, addr);
    row.back() = std::string(FOUND) + (strDoubt.empty() ? "" : "; ") + strDoubt;
    return true;
}

bool CBatchAnswerer::AnswerLatest(std::string_view strAddress, CRow& row) {
    qeadrs::CRecords const records = m_dictionary.Latest(strAddress);
    qeadrs::CRecords const given = m_dictionary.Separate(strAddress);
    if (records.empty()) return Refuse(row, NotFound(given[0]));
    qeadrs::CRecord const latest = records[0];
    std::string strLatest;
    for (std::string_view const str : {latest.strPref, latest.strCity, latest.strTown, latest.strArea})
        strLatest += str;
    qeadrs::CRecord const asGiven = given[0];
    bool const bSame = IsSame(asGiven.strPref, latest.strPref) && IsSame(asGiven.strCity, latest.strCity) &&
                       IsSame(asGiven.strTown, latest.strTown);
    qeadrs::CRecords const now = m_dictionary.Separate(strLatest);
    Fill(row, {strLatest, latest.strCode, latest.strOldCode, bSame ? "no" : "yes", now[0].strCode});
    row.back().assign(FOUND);
    return true;
}

} // namespace qe
