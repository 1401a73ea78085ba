// BatchJson.cpp - records that are JSON objects, one on a line.
//
// An object is read for its one key, without making anything of the rest, and the results are put in as text in front
// of its closing brace: keys, their order, numbers and blanks stay what they are.
#include "cli/BatchForm.h"
#include "cli/Failure.h"
#include "cli/Text.h"

#include <algorithm>
#include <utility>

#include <nlohmann/json.hpp>

namespace qe {

namespace {

using CBatchJson = nlohmann::json;

std::string Dump(std::string const& strText) {
    return CBatchJson(strText).dump(-1, ' ', false, CBatchJson::error_handler_t::replace);
}

// Takes the text of one key of the outermost object.
class CKeyReader : public nlohmann::json_sax<CBatchJson> {
  public:
    CKeyReader(std::string const& strKey, std::vector<CBatchColumn> const& vColumn, std::string& strText)
        : m_strKey(strKey), m_vColumn(vColumn), m_strText(strText) {}

    // What the line lacks, "" when it has a text.
    std::string Fault() const {
        if (!m_strFault.empty()) return m_strFault;
        return m_bFound ? "" : "no key " + Quote(m_strKey);
    }

    bool null() override { return Value(&EMPTY); }
    bool boolean(bool) override { return Value(nullptr); }
    bool number_integer(number_integer_t) override { return Value(nullptr); }
    bool number_unsigned(number_unsigned_t) override { return Value(nullptr); }
    bool number_float(number_float_t, string_t const&) override { return Value(nullptr); }
    bool binary(binary_t&) override { return Value(nullptr); }
    bool string(string_t& str) override { return Value(&str); }
    bool start_object(size_t) override { return Open(m_nDepth == 0 || Value(nullptr)); }
    bool start_array(size_t) override { return Open(Value(nullptr)); }
    bool end_object() override { return Close(); }
    bool end_array() override { return Close(); }

    bool key(string_t& str) override {
        if (m_nDepth != 1) return true;
        m_bWanted = str == m_strKey;
        if (m_bWanted && m_bFound) return Fail("two keys " + Quote(m_strKey));
        m_bFound = m_bFound || m_bWanted;
        auto const IsName = [&](CBatchColumn const& column) { return column.strName == str; };
        if (std::any_of(m_vColumn.begin(), m_vColumn.end(), IsName))
            return Fail("a key " + Quote(str) + " already: name the results by --prefix TEXT");
        return true;
    }

    bool parse_error(size_t, std::string const&, nlohmann::detail::exception const&) override { return NoObject(); }

  private:
    bool Fail(std::string strFault) {
        m_strFault = std::move(strFault);
        return false;
    }
    bool Open(bool bRight) {
        ++m_nDepth;
        return bRight;
    }
    bool Close() {
        --m_nDepth;
        return true;
    }
    bool NoObject() { return Fail("no JSON object"); }

    // Looks at the value behind a key, or at one that is no object's; null for one that is no text.
    bool Value(std::string const* pText) {
        if (m_nDepth == 0) return NoObject();
        if (!std::exchange(m_bWanted, false)) return true;
        if (pText == nullptr) return Fail("the value of key " + Quote(m_strKey) + " is no text");
        m_strText = *pText;
        return true;
    }

    static inline std::string const EMPTY;

    std::string const& m_strKey;
    std::vector<CBatchColumn> const& m_vColumn;
    std::string& m_strText;
    std::string m_strFault;
    size_t m_nDepth = 0;
    bool m_bFound = false;
    bool m_bWanted = false; // the value that comes is the key's
};

class CObjects : public CBatchForm {
  public:
    CObjects(std::string strKey, std::vector<CBatchColumn> const& vColumn)
        : m_strKey(std::move(strKey)), m_vColumn(vColumn) {
        for (CBatchColumn const& column : vColumn) {
            if (column.strName == m_strKey)
                throw CFailure(EXIT_USAGE, "the key and a result are both " + Quote(m_strKey) +
                                               ": name the results by --prefix TEXT.");
            m_vLead.push_back("," + Dump(column.strName) + ":");
        }
    }

    std::string ReadHeader(std::string_view) override {
        throw CFailure(EXIT_USAGE, "--header: JSON objects have their keys.");
    }

    std::string Read(std::string_view strRecord, std::string& strText) const override {
        CKeyReader reader(m_strKey, m_vColumn, strText);
        CBatchJson::sax_parse(strRecord.begin(), strRecord.end(), &reader);
        return reader.Fault();
    }

    // An object that has the key is not empty: its last value stands in front of the brace.
    void Write(std::string_view strRecord, CRow const& row, std::string& strOut) const override {
        size_t const nBrace = strRecord.rfind('}');
        strOut += strRecord.substr(0, nBrace);
        for (size_t i = 0; i < row.size(); ++i) {
            strOut += m_vLead[i];
            strOut += row[i].empty() ? "null" : m_vColumn[i].bJson ? row[i] : Dump(row[i]);
        }
        strOut += strRecord.substr(nBrace);
        if (strOut.back() != '\n') strOut += '\n';
    }

  private:
    std::string m_strKey;
    std::vector<CBatchColumn> m_vColumn;
    std::vector<std::string> m_vLead; // what stands in front of each value
};

} // namespace

std::unique_ptr<CBatchForm> MakeBatchJson(std::string const& strKey, std::vector<CBatchColumn> const& vColumn) {
    return std::make_unique<CObjects>(strKey, vColumn);
}

} // namespace qe
