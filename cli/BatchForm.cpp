// BatchForm.cpp - records of columns: between tabs, or between commas and in quotation marks where these are needed.
//
// CSV is that of RFC 4180, read and written here and by no library: those hand out fields and lose the quotation
// marks and line ends that stood around them, and here a record comes out as it came in.
#include "cli/BatchForm.h"

#include "cli/Failure.h"
#include "cli/Text.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <system_error>

namespace qe {

namespace {

// The end of the field that begins at nStart. REQUIRES: in CSV, sound quotation marks.
size_t FieldEnd(std::string_view strBody, size_t nStart, bool bCsv) {
    size_t nFrom = nStart;
    if (bCsv && nStart < strBody.size() && strBody[nStart] == '"') {
        nFrom = strBody.find('"', nStart + 1);
        while (nFrom + 1 < strBody.size() && strBody[nFrom + 1] == '"') nFrom = strBody.find('"', nFrom + 2);
    }
    return std::min(strBody.find(bCsv ? ',' : '\t', nFrom), strBody.size());
}

// A field as its writer meant it.
std::string_view FieldText(std::string_view strField, bool bCsv, std::string& strBuffer) {
    if (!bCsv || strField.empty() || strField.front() != '"') return strField;
    strBuffer.clear();
    for (size_t n = 1; n + 1 < strField.size(); ++n) {
        strBuffer += strField[n];
        if (strField[n] == '"') ++n; // the second of two
    }
    return strBuffer;
}

class CColumns : public CBatchForm {
  public:
    CColumns(bool bCsv, std::string const& strColumn, bool bHeader, std::vector<CBatchColumn> const& vColumn)
        : m_bCsv(bCsv), m_vColumn(vColumn) {
        bool const bNumber = strColumn.find_first_not_of("0123456789") == std::string::npos;
        if (bNumber) m_nColumn = ReadNumber(strColumn);
        if (!bNumber && bHeader) m_strName = strColumn;
        if (m_nColumn == 0 && m_strName.empty())
            throw CFailure(EXIT_USAGE, Quote(strColumn) + " is no column: they are counted from 1" +
                                           (bHeader ? "." : ", and have names with --header only."));
    }

    std::string ReadHeader(std::string_view strRecord) override {
        std::string strBuffer;
        size_t nFields = 0;
        ForEachField(WithoutLineEnd(strRecord), [&](std::string_view strField) {
            std::string_view const strName = FieldText(strField, m_bCsv, strBuffer);
            ++nFields;
            if (!m_strName.empty() && strName == m_strName) TakeColumn(nFields);
            for (CBatchColumn const& column : m_vColumn)
                if (strName == column.strName)
                    throw CFailure(EXIT_USAGE, "the header has a column " + Quote(strName) +
                                                   " already: name the results by --prefix TEXT.");
            return true;
        });
        if (m_nColumn == 0 || m_nColumn > nFields)
            throw CFailure(EXIT_USAGE, m_strName.empty() ? "the header has " + ColumnsMissing(nFields) + "."
                                                         : "the header has no column " + Quote(m_strName) + ".");
        CRow vName;
        for (CBatchColumn const& column : m_vColumn) vName.push_back(column.strName);
        std::string strOut;
        Write(strRecord, vName, strOut);
        return strOut;
    }

    std::string Read(std::string_view strRecord, std::string& strText) const override {
        size_t nFields = 0;
        bool bThere = false;
        ForEachField(WithoutLineEnd(strRecord), [&](std::string_view strField) {
            bThere = ++nFields == m_nColumn;
            if (bThere) ReadText(strField, strText);
            return !bThere;
        });
        if (!bThere) return ColumnsMissing(nFields);
        return IsUtf8(strText) ? "" : "column " + std::to_string(m_nColumn) + " is not UTF-8";
    }

    void Write(std::string_view strRecord, CRow const& row, std::string& strOut) const override {
        strOut += WithoutLineEnd(strRecord);
        for (std::string const& strText : row)
            m_bCsv ? WriteQuoted(strText, strOut) : WriteText('\t', strText, strOut);
        AppendLineEnd(strRecord, strOut);
    }

  private:
    // Calls Take with one field after the other, for as long as it returns true.
    template <typename TTake>
    void ForEachField(std::string_view strBody, TTake const& Take) const {
        for (size_t nStart = 0; nStart <= strBody.size();) {
            size_t const nEnd = FieldEnd(strBody, nStart, m_bCsv);
            if (!Take(strBody.substr(nStart, nEnd - nStart))) return;
            nStart = nEnd + 1;
        }
    }

    // 0 without digits. The bound is that of 32 bits everywhere, and no line has so many columns.
    static size_t ReadNumber(std::string const& strDigits) {
        uint32_t nColumn = 0;
        auto const result = std::from_chars(strDigits.data(), strDigits.data() + strDigits.size(), nColumn);
        if (result.ec == std::errc::result_out_of_range)
            throw CFailure(EXIT_USAGE, Quote(strDigits) + " is no column: no line has so many.");
        return nColumn;
    }

    void ReadText(std::string_view strField, std::string& strText) const {
        std::string_view const str = FieldText(strField, m_bCsv, strText);
        if (str.data() != strText.data()) strText.assign(str);
    }

    static void WriteText(char cBefore, std::string const& strText, std::string& strOut) {
        strOut += cBefore;
        strOut += Clean(strText);
    }

    static void WriteQuoted(std::string const& strText, std::string& strOut) {
        std::string const strClean = Clean(strText);
        bool const bPlain = strClean.find_first_of(",\"") == std::string::npos;
        strOut += bPlain ? "," : ",\"";
        for (char const c : strClean) {
            if (c == '"') strOut += c;
            strOut += c;
        }
        if (!bPlain) strOut += '"';
    }

    void TakeColumn(size_t nColumn) {
        if (m_nColumn != 0) throw CFailure(EXIT_USAGE, "the header has two columns " + Quote(m_strName) + ".");
        m_nColumn = nColumn;
    }

    std::string ColumnsMissing(size_t nFields) const {
        return std::to_string(nFields) + (nFields == 1 ? " column" : " columns") + ", and no column " +
               std::to_string(m_nColumn);
    }

    bool m_bCsv;
    size_t m_nColumn = 0; // counted from 1; 0 while only its name is known
    std::string m_strName;
    std::vector<CBatchColumn> m_vColumn;
};

} // namespace

std::unique_ptr<CBatchForm> MakeBatchForm(EBatchForm nForm, std::string const& strColumn, bool bHeader,
                                          std::vector<CBatchColumn> const& vColumn) {
    if (nForm == EBatchForm::Jsonl) return MakeBatchJson(strColumn, vColumn);
    return std::make_unique<CColumns>(nForm == EBatchForm::Csv, strColumn, bHeader, vColumn);
}

std::string_view WithoutLineEnd(std::string_view strRecord) {
    for (char const c : {'\n', '\r'})
        if (!strRecord.empty() && strRecord.back() == c) strRecord.remove_suffix(1);
    return strRecord;
}

void AppendLineEnd(std::string_view strRecord, std::string& strOut) {
    strOut += strRecord.substr(WithoutLineEnd(strRecord).size());
    if (strOut.back() != '\n') strOut += '\n';
}

} // namespace qe
