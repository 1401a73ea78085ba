// BatchAnswer.cpp - one lookup per record, without the API: the class answers what the commands ask of it, too.
#include "cli/BatchAnswer.h"

#include "cli/Address.h"
#include "cli/Reading.h"
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

std::string NotFound(std::string const& strReason) {
    return strReason.empty() ? "not found" : "not found; " + strReason;
}

std::string Recognised(std::string const& strLevels) {
    return strLevels.empty() ? "" : "recognised: " + strLevels;
}

// A text as it is, not as a name: null and "" are two.
bool IsSame(std::string_view str, std::string_view strOther) {
    return str == strOther && (str.data() == nullptr) == (strOther.data() == nullptr);
}

} // namespace

std::vector<CBatchColumn> BatchColumns(CBatchQuestion const& question, std::string const& strPrefix) {
    std::vector<CBatchColumn> vColumn;
    COperation const operation = Operation(question.nOp);
    for (char const* pszName : operation.vName)
        vColumn.push_back({strPrefix + pszName, vColumn.size() == operation.nNumber});
    if (question.bReading) vColumn.insert(vColumn.end() - 1, {strPrefix + "reading", true});
    return vColumn;
}

void CBatchAnswerer::Read(std::vector<std::string_view> const& vText) {
    m_vText.assign(vText.begin(), vText.end());
    if (!m_question.IsRead()) return;
    if (m_pReader == nullptr) m_pReader = std::make_unique<qeadrs::CAddressText>(m_dictionary.Class());
    m_vTrimmed.clear();
    for (std::string_view const strText : m_vText) m_vTrimmed.push_back(Trim(strText));
    m_vReading.resize(m_vText.size());
    m_pReader->ReadBatch(m_vTrimmed.data(), m_vTrimmed.size(), m_vReading.data(),
                         m_question.nOp == EBatchOp::Latest ? QETEXT_RENEW : 0);
}

bool CBatchAnswerer::Answer(size_t nText, CRow& row) {
    std::string_view const strText = m_vText[nText];
    std::string_view const strTrimmed = Trim(strText);
    if (strTrimmed.empty()) return Refuse(row, "empty");
    if (m_question.IsRead()) return AnswerReading(nText, row);
    if (m_question.nOp == EBatchOp::Zip) return AnswerCode(strText, row);
    if (strTrimmed.size() > qeadrs::ADDRESS_LENGTH)
        return Refuse(row, "no address: more than " + std::to_string(qeadrs::ADDRESS_LENGTH) + " bytes");
    return m_question.nOp == EBatchOp::Addr ? AnswerAddress(strTrimmed, row) : AnswerLatest(strTrimmed, row);
}

bool CBatchAnswerer::AnswerCode(std::string_view strText, CRow& row) {
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
    if (records.empty() || records.Class()[0].pszPostCode == nullptr)
        return Refuse(row, NotFound(Recognised(DescribeLevels(record))));
    tagADDR const& addr = records.Class()[0];
    CFoundPlace const place = FindPlace(m_dictionary, addr);
    Fill(row, {record.strCode, record.strOldCode, NameOf(m_dictionary, place.pPref),
               NameOf(m_dictionary, place.pCity), NameOf(m_dictionary, place.pTown), record.strArea});
    std::string const strDoubt = DescribeDoubt(m_dictionary, addr);
    row.back() = std::string(FOUND) + (strDoubt.empty() ? "" : "; ") + strDoubt;
    return true;
}

bool CBatchAnswerer::AnswerReading(size_t nText, CRow& row) {
    bool const bLatest = m_question.nOp == EBatchOp::Latest;
    CReading const reading(m_dictionary, m_vText[nText], m_vReading[nText]);
    bool const bFound = bLatest ? reading.HasLatest() : reading.HasCode();
    Fill(row, {});
    if (m_question.bReading) row[row.size() - 2] = '{' + reading.Members() + '}';
    if (!bFound) {
        row.back() = NotFound(reading.WhyNotFound());
        return false;
    }
    CRow answer = bLatest ? reading.LatestColumns() : reading.Columns();
    std::move(answer.begin(), answer.end(), row.begin());
    std::string const strDoubt = reading.Doubt(bLatest);
    row.back() = std::string(FOUND) + (strDoubt.empty() ? "" : "; ") + strDoubt;
    return true;
}

bool CBatchAnswerer::AnswerLatest(std::string_view strAddress, CRow& row) {
    qeadrs::CRecords const records = m_dictionary.Latest(strAddress);
    qeadrs::CRecords const given = m_dictionary.Separate(strAddress);
    if (records.empty()) return Refuse(row, NotFound(Recognised(DescribeLevels(given[0]))));
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
