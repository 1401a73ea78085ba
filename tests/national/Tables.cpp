// Tables.cpp - the official tables, field by field.
#include "Tables.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace national {

namespace {

constexpr size_t TOWN_FIELDS = 15;
constexpr size_t OFFICE_FIELDS = 13;

// The fields of one line. The tables quote texts and never use a quote within one.
std::vector<std::string_view> Fields(std::string_view strLine) {
    std::vector<std::string_view> vField;
    for (;;) {
        if (BeginsWith(strLine, "\"")) {
            size_t const nEnd = strLine.find('"', 1);
            if (nEnd == std::string_view::npos) throw std::runtime_error("a quote is not closed");
            vField.push_back(strLine.substr(1, nEnd - 1));
            strLine.remove_prefix(nEnd + 1);
        } else {
            vField.push_back(strLine.substr(0, strLine.find(',')));
            strLine.remove_prefix(vField.back().size());
        }
        if (strLine.empty()) return vField;
        if (strLine[0] != ',') throw std::runtime_error("a comma is missing");
        strLine.remove_prefix(1);
    }
}

template <typename FUNCTION>
void ForEachLine(std::string const& strText, size_t nFields, FUNCTION Take) {
    size_t nLine = 0;
    for (size_t nPos = 0; nPos < strText.size();) {
        ++nLine;
        size_t nEnd = strText.find('\n', nPos);
        if (nEnd == std::string::npos) nEnd = strText.size();
        std::string_view strLine(strText.data() + nPos, nEnd - nPos);
        if (EndsWith(strLine, "\r")) strLine.remove_suffix(1);
        std::vector<std::string_view> const vField = Fields(strLine);
        if (vField.size() != nFields)
            throw std::runtime_error("line " + std::to_string(nLine) + " has other columns");
        Take(nLine, vField);
        nPos = nEnd + 1;
    }
}

std::string_view WithoutPadding(std::string_view strOldCode) {
    return strOldCode.substr(0, strOldCode.find(' '));
}

void ReplaceAll(std::string& str, std::string_view strOld, std::string_view strNew) {
    for (size_t n = 0; (n = str.find(strOld, n)) != std::string::npos; n += strNew.size())
        str.replace(n, strOld.size(), strNew);
}

// Code page 932 has one character each for the two dashes, and the converter writes them in its own way.
std::string TableDashes(std::string_view strText) {
    std::string str(strText);
    ReplaceAll(str, "～", "〜");
    ReplaceAll(str, "－", "−");
    return str;
}

} // namespace

std::string DataPath(std::string const& strFile) {
    return QEADRS_TEST_DATA "/" + strFile;
}

std::string ReadFile(std::string const& strPath) {
    std::ifstream file(strPath, std::ios::binary);
    if (!file) throw std::runtime_error(strPath + " cannot be read; tests/national/prepare.sh makes it");
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<CTownRow> const& TownRows() {
    static std::string const strText = ReadFile(DataPath("utf_ken_all.csv"));
    static std::vector<CTownRow> const vRow = [] {
        std::vector<CTownRow> v;
        ForEachLine(strText, TOWN_FIELDS, [&](size_t nLine, std::vector<std::string_view> const& f) {
            v.push_back({nLine, WithoutPadding(f[1]), f[2], f[3], f[4], f[5], f[6], f[7], f[8]});
        });
        return v;
    }();
    return vRow;
}

std::vector<COfficeRow> const& OfficeRows() {
    static std::vector<COfficeRow> const vRow = [] {
        std::vector<COfficeRow> v;
        std::string const strText = ReadFile(DataPath("jigyosyo-utf8.csv"));
        ForEachLine(strText, OFFICE_FIELDS, [&](size_t nLine, std::vector<std::string_view> const& f) {
            std::string strKana = FullWidth(f[1]);
            ReplaceAll(strKana, "−", "ー"); // this table writes a long vowel as a hyphen
            v.push_back({nLine, strKana, std::string(f[2]), std::string(f[3]), std::string(f[4]), TableDashes(f[5]),
                         TableDashes(f[6]), std::string(f[7]), std::string(WithoutPadding(f[8]))});
        });
        return v;
    }();
    return vRow;
}

std::string Describe(CTownRow const& row) {
    std::string str = "line " + std::to_string(row.nLine) + ", ";
    return str.append(row.strCode)
        .append(" ")
        .append(row.strPref)
        .append(row.strCity)
        .append(" ")
        .append(row.strTown);
}

std::string Describe(COfficeRow const& row) {
    return "organisation line " + std::to_string(row.nLine) + ", " + row.strCode + " " + row.strPref + row.strCity +
           " " + row.strTown + " " + row.strRest + " " + row.strName;
}

std::string_view FirstCharacter(std::string_view str) {
    if (str.empty()) return str;
    auto const c = static_cast<unsigned char>(str[0]);
    return str.substr(0, c < 0x80 ? 1 : c < 0xE0 ? 2 : c < 0xF0 ? 3 : 4);
}

std::string FullWidth(std::string_view str) {
    // U+FF61 to U+FF9F; the last two are the voicing marks.
    constexpr std::string_view WIDE =
        "。「」、・ヲァィゥェォャュョッーアイウエオカキクケコサシスセソタチツテトナニヌネノハヒフヘホマミムメモ"
        "ヤユヨラリルレロワン゛゜";
    constexpr std::string_view VOICED =
        "カガキギクグケゲコゴサザシジスズセゼソゾタダチヂツヅテデトドハバヒビフブヘベホボウヴ";
    constexpr std::string_view HALF_VOICED = "ハパヒピフプヘペホポ";
    std::string strWide;
    auto const Voice = [&strWide](std::string_view strPairs) {
        for (size_t n = 0; n < strPairs.size(); n += 6)
            if (EndsWith(strWide, strPairs.substr(n, 3))) {
                strWide.replace(strWide.size() - 3, 3, strPairs.substr(n + 3, 3));
                return true;
            }
        return false;
    };
    for (std::string_view strLeft = str; !strLeft.empty();) {
        std::string_view const strCharacter = FirstCharacter(strLeft);
        strLeft.remove_prefix(strCharacter.size());
        auto const Byte = [&](size_t n) { return static_cast<unsigned char>(strCharacter[n]); };
        if (strCharacter == " ")
            strWide += "　";
        else if (strCharacter == "-")
            strWide += "−";
        else if (strCharacter.size() == 1) { // U+FF00 + (c - 0x20)
            unsigned const n = Byte(0) - 0x20u;
            strWide += '\xEF';
            strWide += static_cast<char>(0xBC + n / 64);
            strWide += static_cast<char>(0x80 + n % 64);
        } else if (strCharacter == "ﾞ" && Voice(VOICED)) {
        } else if (strCharacter == "ﾟ" && Voice(HALF_VOICED)) {
        } else if (strCharacter >= "｡" && strCharacter <= "ﾟ") {
            size_t const n = (Byte(1) - 0xBDu) * 64 + Byte(2) - 0xA1u;
            strWide += WIDE.substr(3 * n, 3);
        } else {
            strWide += strCharacter;
        }
    }
    return strWide;
}

std::string CutName(std::string const& strName) {
    if (strName.size() <= NAME_LIMIT) return strName;
    std::string strFit;
    for (;;) {
        std::string_view const strNext = FirstCharacter(std::string_view(strName).substr(strFit.size()));
        if (strFit.size() + strNext.size() > NAME_LIMIT) break;
        strFit += strNext;
    }
    // A blank that stands right behind what fits is a place to cut, too.
    if (BeginsWith(std::string_view(strName).substr(strFit.size()), "　")) return strFit;
    size_t const nBlank = strFit.rfind("　");
    return nBlank == std::string::npos ? strFit : strFit.substr(0, nBlank);
}

} // namespace national
