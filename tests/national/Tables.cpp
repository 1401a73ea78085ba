// Tables.cpp - the official tables, field by field.
#include "Tables.h"

#include <fstream>
#include <stdexcept>
#include <unordered_map>

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
    std::ifstream file(strPath, std::ios::binary | std::ios::ate);
    if (!file) throw std::runtime_error(strPath + " cannot be read; tests/national/prepare.sh makes it");
    std::string strBytes(static_cast<size_t>(file.tellg()), '\0');
    file.seekg(0);
    if (!file.read(strBytes.data(), static_cast<std::streamsize>(strBytes.size())))
        throw std::runtime_error(strPath + " cannot be read to its end");
    return strBytes;
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

CJoinedTable::CJoinedTable(std::string const& strPath) : m_strText(ReadFile(strPath)) {
    auto const Keep = [this](std::string str) -> std::string_view {
        m_vText.push_back(std::move(str));
        return m_vText.back();
    };
    auto const IsOpen = [](std::string_view str, std::string_view strOpen, std::string_view strClose) {
        return str.find(strOpen) != std::string_view::npos && str.find(strClose) == std::string_view::npos;
    };
    std::unordered_map<std::string_view, std::string_view> mapWide; // prefectures and cities come again and again
    auto const Wide = [&](std::string_view str) {
        auto const [pFound, bNew] = mapWide.emplace(str, "");
        if (bNew) pFound->second = Keep(FullWidth(str));
        return pFound->second;
    };
    ForEachLine(m_strText, TOWN_FIELDS, [&](size_t nLine, std::vector<std::string_view> const& f) {
        if (!m_vRow.empty() && IsOpen(m_vRow.back().strTown, "（", "）")) {
            CTownRow& row = m_vRow.back();
            // A reading that is complete already is only repeated.
            if (IsOpen(row.strTownKana, "(", ")")) row.strTownKana = Keep(std::string(row.strTownKana).append(f[5]));
            row.strTown = Keep(std::string(row.strTown).append(f[8]));
            return;
        }
        m_vRow.push_back({nLine, WithoutPadding(f[1]), f[2], Wide(f[3]), Wide(f[4]), f[5], f[6], f[7], f[8]});
    });
    for (CTownRow& row : m_vRow) {
        row.strTownKana = Keep(FullWidth(row.strTownKana));
        if (std::string const strTown = TableDashes(row.strTown); strTown != row.strTown) row.strTown = Keep(strTown);
    }
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

std::string SearchedName(std::string_view strName) {
    constexpr std::string_view FORMS[] = {"株式会社", "（株）",           "有限会社",     "（有）",
                                          "財団法人", "（財）",           "社団法人",     "（社）",
                                          "学校法人", "特定医療法人財団", "医療法人財団", "医療法人社団",
                                          "医療法人", "社会福祉法人",     "独立行政法人"};
    std::string str;
    for (size_t n = 0; n < strName.size(); ++n) {
        if (strName.substr(n, 2) == "\xE3\x80")
            ++n;
        else if (strName[n] != ' ' && strName[n] != ',')
            str += strName[n];
    }
    for (std::string_view strForm : FORMS) {
        if (BeginsWith(str, strForm)) return str.substr(strForm.size());
        if (EndsWith(str, strForm)) return str.substr(0, str.size() - strForm.size());
    }
    return str;
}

std::string AliasOf(std::string const& strName) {
    std::string str = strName;
    ReplaceAll(str, "　", "");
    return CutName(SearchedName(str));
}

std::string WithoutBlanks(std::string_view strName) {
    std::string str(strName);
    ReplaceAll(str, "　", "");
    ReplaceAll(str, " ", "");
    return str;
}

} // namespace national
