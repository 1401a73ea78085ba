// FormatPageTest.cpp - the worked example of docs/format.md: what the page shows is a file, the file is what the
// compiler makes of the page's rows, and the library answers from it as the page says.
#include "builder/Check.h"
#include "builder/Compiler.h"
#include "builder/TextTable.h"
#include "dic/AddrDic.h"
#include "dic/ImageHeader.h"
#include "text/AddressText.h"

#include <gmock/gmock.h>

#include <array>
#include <codecvt>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <locale>
#include <map>
#include <sstream>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

using CBytes = std::vector<unsigned char>;
using CCells = std::vector<std::string>;

// --- the page -------------------------------------------------------------------------------------------------------

std::vector<std::string> LinesOfExample() {
    std::ifstream file(QEADRS_FORMAT_PAGE);
    std::vector<std::string> vLine;
    bool bExample = false;
    for (std::string strLine; std::getline(file, strLine);) {
        if (strLine.rfind("## ", 0) == 0) bExample = strLine == "## A whole dictionary, byte by byte";
        if (bExample) vLine.push_back(strLine);
    }
    return vLine;
}

std::string Trimmed(std::string const& str) {
    size_t const nFirst = str.find_first_not_of(" `");
    return nFirst == std::string::npos ? "" : str.substr(nFirst, str.find_last_not_of(" `") + 1 - nFirst);
}

// The rows of all tables whose first cell begins so, without their backticks.
std::vector<CCells> Rows(std::string const& strBegin) {
    std::vector<CCells> vRow;
    for (std::string const& strLine : LinesOfExample()) {
        if (strLine.rfind("| " + strBegin, 0) != 0) continue;
        std::istringstream in(strLine.substr(1));
        vRow.emplace_back();
        for (std::string strCell; std::getline(in, strCell, '|');) vRow.back().push_back(Trimmed(strCell));
    }
    return vRow;
}

// A fenced block by the line that opens it.
std::string Block(std::string const& strOpening) {
    std::string strText;
    bool bBlock = false;
    for (std::string const& strLine : LinesOfExample()) {
        if (bBlock && strLine == "```") return strText;
        if (bBlock) strText += strLine + '\n';
        if (strLine == strOpening) bBlock = true;
    }
    throw std::runtime_error("no such block on the page: " + strOpening);
}

qe::CSource TableOfPage(std::string const& strName) {
    qe::CSource source;
    source.strPath = strName;
    source.strText = Block("```csv " + strName);
    return qe::DecodeSource(std::move(source));
}

CBytes CompiledFromPage() {
    qe::CStatistics statistics;
    qe::CCompiler compiler(statistics);
    compiler.AddTowns(qe::ReadTownTable(TableOfPage("towns.csv")).vRow, "towns.csv");
    compiler.AddOffices(qe::ReadOfficeTable(TableOfPage("organisations.csv")), "organisations.csv");
    compiler.AddPrevious(qe::ReadTownTable(TableOfPage("earlier-towns.csv")).vRow, "earlier-towns.csv");
    CBytes vByte = compiler.Compile(20260500, qe::ESource::Official).vByte;
    qe::AppendTextIndex(vByte);
    return vByte;
}

// The bytes of all rows, one behind the other. Each row stands at the offset that it names.
CBytes BytesOfPage() {
    CBytes vByte;
    for (CCells const& row : Rows("0x")) {
        EXPECT_EQ(std::stoul(row[0], nullptr, 16), vByte.size()) << row[0] << " is out of place";
        std::string strDigits;
        for (char c : row[1])
            if (c != ' ') strDigits += c;
        EXPECT_EQ(strDigits.size() % 2, 0u) << row[0];
        for (size_t n = 0; n + 1 < strDigits.size(); n += 2)
            vByte.push_back(static_cast<unsigned char>(std::stoul(strDigits.substr(n, 2), nullptr, 16)));
    }
    return vByte;
}

// --- what each byte means, read from the bytes alone ------------------------------------------------------------------

std::string Hex(uint32_t n, int nDigits) {
    char sz[16];
    std::snprintf(sz, sizeof sz, "%0*X", nDigits, n);
    return sz;
}
std::string At(uint32_t n) {
    return "0x" + Hex(n, 3);
} // an offset
std::string Dec(uint32_t n) {
    return std::to_string(n);
}

constexpr std::array<char const*, HDR_WORDS> WORD_NAMES = {"the mark `QEADRS`, 0x1A, NUL",
                                                           nullptr,
                                                           "format version",
                                                           "edition",
                                                           "checksum",
                                                           "size of the file",
                                                           "compiled from: official tables",
                                                           "0",
                                                           "nodes",
                                                           "entries",
                                                           "bytes in the string area",
                                                           "node table at",
                                                           "info table at",
                                                           "string area at",
                                                           "city-name index at",
                                                           "text index at",
                                                           "empty table at",
                                                           "organisation index at",
                                                           "prefectures",
                                                           "first prefecture: node",
                                                           "cities",
                                                           "first city: node",
                                                           "towns",
                                                           "first town: node",
                                                           "0",
                                                           "0",
                                                           "entries of the organisation index"};
constexpr std::array<char const*, 8> LEVEL_NAMES = {"prefecture", "city",     "town",  "subdivision",
                                                    "building",   "grouping", "floor", "organisation"};

constexpr std::array<char const*, 20> INDEX_WORD_NAMES = {"the mark `QETX`",
                                                          "foldings",
                                                          "bytes of the index",
                                                          "layout",
                                                          "slots of city names: at",
                                                          "b",
                                                          "cities: at",
                                                          "how many",
                                                          "slots of towns: at",
                                                          "how many",
                                                          "rules: at",
                                                          "how many",
                                                          "tokens of the longest city name",
                                                          "last tokens of city names",
                                                          "the last tokens",
                                                          "",
                                                          "",
                                                          "",
                                                          "pairs: at",
                                                          "b"};
enum : uint32_t {
    INDEX_SIZE = 2,
    INDEX_CITIES = 4,
    INDEX_BITS = 5,
    INDEX_TOWNS = 8,
    INDEX_RULES = 10,
    INDEX_LAST = 14,
    INDEX_LAST_END = 18,
    INDEX_PAIRS = 18
};

// The hash of a name below a node by the page's rule.
class CHash {
  public:
    CHash(uint32_t nNode, std::string const& strFolded) : m_n((uint64_t{nNode} + 1) * M) {
        std::wstring_convert<std::codecvt_utf8_utf16<char16_t>, char16_t> convert;
        for (char16_t const nToken : convert.from_bytes(strFolded)) Add(nToken);
    }
    void Add(uint16_t nToken) { m_n = (m_n ^ nToken) * M; }
    uint32_t Check() const { return static_cast<uint32_t>(m_n >> 8); }
    uint32_t Slot(uint32_t nBits) const { return static_cast<uint32_t>(m_n >> (64 - nBits)); }

  private:
    static constexpr uint64_t M = 0x9E3779B97F4A7C15;
    uint64_t m_n;
};

// The page's rows as they have to be for these bytes.
class CDescription {
  public:
    explicit CDescription(CBytes const& vByte) : m_vByte(vByte) {
        Header();
        Table(HDR_NODE_TABLE, HDR_NODE_COUNT, sizeof(tagADDRNODE), &CDescription::Node);
        Table(HDR_INFO_TABLE, HDR_INFO_COUNT, sizeof(tagADDRINFO), &CDescription::Entry);
        Table(HDR_CITY_INDEX, HDR_CITY_COUNT, sizeof(uint32_t), &CDescription::IndexEntry);
        Table(HDR_OFFICE_INDEX, HDR_OFFICE_COUNT, sizeof(uint32_t), &CDescription::IndexEntry);
        Pad(Head(HDR_STRING_AREA));
        for (auto const& [nOffset, nSuperseded] : m_mapCode) Codes(nOffset, nSuperseded);
        for (auto const& [nOffset, bReading] : m_mapName) Name(nOffset, bReading);
        Pad(Head(HDR_FIFTH_TABLE));
        Index();
        Pad(Head(HDR_SIXTH_TABLE));
    }

    std::vector<std::string> Lines() const { return m_vLine; }

    uint32_t Long(size_t nAt) const {
        if (nAt + 4 > m_vByte.size()) throw std::out_of_range("the page's offsets lead out of its file");
        return ReadWord(m_vByte.data() + nAt);
    }
    uint32_t Head(tagHEADERWORD nWord) const { return Long(size_t{4} * nWord); }
    std::string Text(uint32_t nOffset) const {
        std::string str;
        for (size_t n = Head(HDR_STRING_AREA) + nOffset; m_vByte.at(n) != 0; ++n)
            str += static_cast<char>(m_vByte[n]);
        return str;
    }

    // "entry 2, nodes 9, 7, 4, 2, 0": the way up from an entry.
    std::string Way(uint32_t nEntry) const {
        std::string str = "entry " + Dec(nEntry) + ", nodes";
        uint32_t nNode = Long(Head(HDR_INFO_TABLE) + 8 * nEntry + 4) & ~ADDRINFO_SUPERSEDED;
        for (char const* psz = " "; nNode != ADDR_NONE; psz = ", ") {
            str += psz + std::to_string(nNode);
            nNode = Long(Head(HDR_NODE_TABLE) + 24 * nNode + 12);
        }
        return str;
    }

  private:
    std::string Digits(size_t nFrom, size_t nSize) const {
        std::string strDigits;
        for (size_t n = nFrom; n < nFrom + nSize; ++n) strDigits += Hex(m_vByte.at(n), 2);
        return strDigits;
    }
    void Row(size_t nSize, std::string const& strMeaning) { RowOf(Digits(m_nAt, nSize), nSize, strMeaning); }
    void RowOf(std::string const& strBytes, size_t nSize, std::string const& strMeaning) {
        m_vLine.push_back("| " + At(static_cast<uint32_t>(m_nAt)) + " | `" + strBytes + "` | " + strMeaning + " |");
        m_nAt += nSize;
    }

    void Header() {
        Row(8, WORD_NAMES[0]);
        for (uint32_t n = 2; n < HDR_WORDS; ++n) {
            std::string str = "word " + Dec(n) + ": " + WORD_NAMES[n];
            uint32_t const nValue = Long(4 * n);
            if (n == HDR_CHECKSUM)
                str += " 0x" + Hex(nValue, 8);
            else if (str.substr(str.size() - 3) == " at")
                str += " " + At(nValue);
            else if (n != HDR_SOURCE && str.back() != '0')
                str += " " + Dec(nValue);
            Row(4, str);
        }
    }

    void Pad(uint32_t nTo) {
        if (m_nAt < nTo) Row(nTo - m_nAt, "up to a multiple of 16");
    }

    void Table(tagHEADERWORD nTable, tagHEADERWORD nCount, size_t nSize, void (CDescription::*pRecord)(uint32_t)) {
        Pad(Head(nTable));
        for (uint32_t n = 0; n < Head(nCount); ++n) {
            (this->*pRecord)(n);
            ASSERT_EQ(m_nAt, Head(nTable) + (n + 1) * nSize);
        }
    }

    std::string NameOf(uint32_t nNode) const {
        std::string const strName = Text(Long(Head(HDR_NODE_TABLE) + 24 * nNode + 4));
        return strName.empty() ? "without a name" : strName;
    }

    void Node(uint32_t n) {
        uint32_t const nName = Long(m_nAt + 4), nInfo = Long(m_nAt + 8), nParent = Long(m_nAt + 12);
        uint32_t const nChildren = Long(m_nAt + 16);
        m_mapName[nName] = nName + static_cast<uint32_t>(Text(nName).size()) + 1;
        std::string str = "node " + Dec(n) + ": " + LEVEL_NAMES.at(m_vByte.at(m_nAt)) + ' ' + NameOf(n);
        str += " (" + At(nName) + "); " + (nInfo == ADDR_NONE ? "no entry" : "entry " + Dec(nInfo));
        str += nParent == ADDR_NONE ? "; no parent" : "; parent " + Dec(nParent);
        str += nChildren == 0 ? "; no child" : "; " + Dec(nChildren) + (nChildren == 1 ? " child" : " children");
        if (nChildren != 0) str += " from " + Dec(Long(m_nAt + 20)) + " on";
        std::string strBytes = Digits(m_nAt, 1) + ' ' + Digits(m_nAt + 1, 3);
        for (size_t nField = 4; nField < 24; nField += 4) strBytes += ' ' + Digits(m_nAt + nField, 4);
        RowOf(strBytes, 24, str);
    }

    void Entry(uint32_t n) {
        uint32_t const nCode = Long(m_nAt), nNode = Long(m_nAt + 4);
        bool const bSuperseded = (nNode & ADDRINFO_SUPERSEDED) != 0;
        m_mapCode[nCode] = bSuperseded;
        std::string str = "entry " + Dec(n) + ": code " + Text(nCode) + " (" + At(nCode) + ")";
        str += "; node " + Dec(nNode & ~ADDRINFO_SUPERSEDED) + (bSuperseded ? "; superseded" : "");
        RowOf(Digits(m_nAt, 4) + ' ' + Digits(m_nAt + 4, 4), 8, str);
    }

    void IndexEntry(uint32_t) { Row(4, "node " + Dec(Long(m_nAt)) + ": " + NameOf(Long(m_nAt))); }

    // The bytes of a text: the characters that are not ASCII apart, and the NUL.
    static std::string TextBytes(std::string const& strText) {
        std::string strBytes;
        for (char const cPlain : strText) {
            auto const c = static_cast<unsigned char>(cPlain);
            if (c >= 0xC0 && !strBytes.empty()) strBytes += ' ';
            strBytes += Hex(c, 2);
        }
        return strBytes + (strText.empty() ? "00" : " 00");
    }

    uint32_t AreaOffset() const { return static_cast<uint32_t>(m_nAt) - Head(HDR_STRING_AREA); }

    void Codes(uint32_t nOffset, bool bSuperseded) {
        ASSERT_EQ(nOffset, AreaOffset()) << "texts stand side by side";
        std::string const strCode = Text(nOffset);
        std::string const strOld = Text(nOffset + static_cast<uint32_t>(strCode.size()) + 1);
        std::string strBytes = TextBytes(strCode) + ' ' + TextBytes(strOld);
        size_t const nSize = strCode.size() + strOld.size() + 2;
        std::string strMeaning = At(nOffset) + ": " + strCode + ", old code " + strOld;
        if (!bSuperseded) return RowOf(strBytes, nSize, strMeaning);
        strBytes += ' ' + Digits(m_nAt + nSize, 4);
        RowOf(strBytes, nSize + 4, strMeaning + "; replaced by entry " + Dec(Long(m_nAt + nSize)));
    }

    void Name(uint32_t nOffset, uint32_t nReading) {
        ASSERT_EQ(nOffset, AreaOffset()) << "texts stand side by side";
        std::string const strName = Text(nOffset), strReading = Text(nReading);
        RowOf(TextBytes(strName), strName.size() + 1,
              At(nOffset) + ": " + (strName.empty() ? "an empty name" : strName));
        RowOf(TextBytes(strReading), strReading.size() + 1, strReading.empty() ? "no reading" : strReading);
    }

    // --- the text index: offsets within it ---

    uint32_t IndexAt() const { return static_cast<uint32_t>(m_nAt) - Head(HDR_FIFTH_TABLE); }
    uint32_t IndexWord(uint32_t n) const { return Long(Head(HDR_FIFTH_TABLE) + 4 * n); }

    void Index() {
        uint32_t const nBase = Head(HDR_FIFTH_TABLE);
        for (uint32_t n = 0; n < INDEX_WORD_NAMES.size(); ++n) IndexHeader(n);
        ASSERT_EQ(IndexAt(), IndexWord(INDEX_CITIES));
        Slots(IndexWord(INDEX_BITS), [this](uint32_t nValue, CHash& hash) { return CitySlot(nValue, hash); });
        ASSERT_EQ(IndexAt(), IndexWord(INDEX_CITIES + 2));
        for (uint32_t n = 0; n < IndexWord(INDEX_CITIES + 3); ++n) City(n);
        ASSERT_EQ(IndexAt(), IndexWord(INDEX_TOWNS));
        for (uint32_t n = 0; n < IndexWord(INDEX_CITIES + 3); ++n) {
            size_t const nCity = nBase + IndexWord(INDEX_CITIES + 2) + 24 * n;
            ASSERT_EQ(IndexAt(), IndexWord(INDEX_TOWNS) + 8 * Long(nCity));
            uint32_t const nNode = Head(HDR_FIRST_CITY) + n;
            Slots(Long(nCity + 4), [=](uint32_t nValue, CHash& hash) { return TownSlot(nNode, nValue, hash); });
        }
        ASSERT_EQ(IndexAt(), IndexWord(INDEX_RULES));
        for (uint32_t n = 0; n < IndexWord(INDEX_RULES + 1); ++n) Rule(n);
        ASSERT_EQ(IndexAt(), IndexWord(INDEX_PAIRS));
        Pairs(IndexWord(INDEX_PAIRS + 1));
        ASSERT_EQ(IndexAt(), IndexWord(INDEX_SIZE));
    }

    void IndexHeader(uint32_t n) {
        uint32_t const nValue = IndexWord(n);
        bool const bLast = n >= INDEX_LAST && n < INDEX_LAST_END;
        std::string str = "word " + Dec(n) + (bLast && n > INDEX_LAST ? "" : ": ") + INDEX_WORD_NAMES[n];
        if (n == 1)
            str += " 0x" + Hex(nValue, 8);
        else if (bLast)
            str += LastTokens(nValue);
        else if (str.substr(str.size() - 3) == " at")
            str += " " + At(nValue);
        else if (n != 0)
            str += " " + Dec(nValue);
        Row(4, str);
    }

    static std::string LastTokens(uint32_t nValue) {
        std::string str;
        std::wstring_convert<std::codecvt_utf8_utf16<char16_t>, char16_t> convert;
        for (uint32_t const n : {nValue & 0xFFFF, nValue >> 16})
            if (n != 0) str += ' ' + convert.to_bytes(static_cast<char16_t>(n));
        return str;
    }

    // The slots of one table: describe(value, hash) says what is there and under which hash. Neighbours that are free
    // have one row.
    template <typename F>
    void Slots(uint32_t nBits, F const& describe) {
        uint32_t const nSlots = uint32_t{1} << nBits, nFirst = static_cast<uint32_t>(m_nAt);
        for (uint32_t n = 0; n < nSlots;) {
            uint32_t nFree = n;
            std::string strBytes;
            while (nFree < nSlots && Long(nFirst + 8 * nFree + 4) == ADDR_NONE)
                strBytes += (strBytes.empty() ? "" : " ") + Digits(nFirst + 8 * nFree++, 8);
            if (nFree > n) {
                RowOf(strBytes, size_t{8} * (nFree - n),
                      nFree - n == 1 ? "slot " + Dec(n) + ": free"
                                     : "slots " + Dec(n) + " to " + Dec(nFree - 1) + ": free");
                n = nFree;
                continue;
            }
            CHash hash(0, "");
            std::string const str = describe(Long(m_nAt + 4), hash);
            EXPECT_EQ(Long(m_nAt), hash.Check()) << str;
            for (uint32_t nOwn = hash.Slot(nBits); nOwn != n; nOwn = (nOwn + 1) % nSlots)
                EXPECT_NE(Long(nFirst + 8 * nOwn + 4), ADDR_NONE) << str << " is not found from its own slot on";
            RowOf(Digits(m_nAt, 4) + ' ' + Digits(m_nAt + 4, 4), 8, "slot " + Dec(n) + ": " + str);
            ++n;
        }
    }

    uint32_t NodeField(uint32_t nNode, uint32_t nField) const {
        return Long(Head(HDR_NODE_TABLE) + 24 * nNode + nField);
    }

    // The example has no county.
    std::string CitySlot(uint32_t nValue, CHash& hash) const {
        uint32_t const nNumber = nValue & 0xFFFF, nNode = Head(HDR_FIRST_CITY) + nNumber;
        std::string strPref = NameOf(NodeField(nNode, 12)), strCity = NameOf(nNode);
        bool const bShort = (nValue >> 17 & 1) != 0, bWard = (nValue >> 19 & 1) != 0,
                   bNoWard = (nValue >> 20 & 1) != 0;
        if ((nValue >> 16 & 3) == 0) strPref.clear();
        if (bShort) strPref.resize(strPref.size() - 3); // a character
        size_t const nWard = strCity.find("市") + 3;
        if (bWard) strCity.erase(0, nWard);
        if (bNoWard) strCity.resize(nWard);
        std::string const strFolded = qeadrs::FoldName(strPref) + qeadrs::FoldName(strCity);
        hash = CHash(ADDR_NONE, strFolded);
        return strFolded + ", city " + Dec(nNumber) + ((nValue >> 21 & 1) != 0 ? "; longer names begin so" : "");
    }

    static std::string LengthsOf(uint32_t nLow, uint32_t nHigh) {
        std::string str;
        for (uint32_t n = 0; n < 64; ++n)
            if (((n < 32 ? nLow >> n : nHigh >> (n - 32)) & 1) != 0) str += (str.empty() ? "" : ", ") + Dec(n);
        return str.empty() ? "none" : "of " + str + " tokens";
    }

    void City(uint32_t n) {
        std::string const str = "city " + Dec(n) + ", " + NameOf(Head(HDR_FIRST_CITY) + n) + ": " +
                                Dec(1u << Long(m_nAt + 4)) + " slots from " + Dec(Long(m_nAt)) +
                                " on; names of towns " + LengthsOf(Long(m_nAt + 8), Long(m_nAt + 12)) +
                                ", below them " + LengthsOf(Long(m_nAt + 16), Long(m_nAt + 20));
        std::string strBytes = Digits(m_nAt, 4);
        strBytes += ' ' + Digits(m_nAt + 4, 4) + ' ' + Digits(m_nAt + 8, 8) + ' ' + Digits(m_nAt + 16, 8);
        RowOf(strBytes, 24, str);
    }

    // The example has no place name in a subdivision.
    std::string TownSlot(uint32_t nCity, uint32_t nValue, CHash& hash) const {
        if ((nValue >> 30 & 1) != 0) {
            uint32_t const nRule = nValue & 0x1FFFFFFF;
            uint32_t const nTown = Long(Head(HDR_FIFTH_TABLE) + IndexWord(INDEX_RULES) + 20 * nRule);
            hash = CHash(nTown, "");
            hash.Add(0xFFFF);
            return "rules of node " + Dec(nTown) + " from rule " + Dec(nRule) + " on";
        }
        uint32_t const nNode = nValue & 0x1FFFFFFF, nParent = NodeField(nNode, 12);
        bool const bTown = m_vByte.at(Head(HDR_NODE_TABLE) + 24 * nNode) == LEVEL_TOWN;
        EXPECT_TRUE(!bTown || nParent == nCity);
        hash = CHash(nParent, qeadrs::FoldName(NameOf(nNode)));
        return qeadrs::FoldName(NameOf(nNode)) + " below node " + Dec(nParent) + ": node " + Dec(nNode) +
               ((nValue >> 29 & 1) != 0 ? ", divided" : "");
    }

    void Rule(uint32_t n) {
        uint32_t const nNode = Long(m_nAt), nUnit = m_vByte.at(m_nAt + 4);
        std::string str = "rule " + Dec(n) + ": ";
        if (nUnit == 255) {
            str += "head of node " + Dec(nNode) + ", " + NameOf(nNode) + ": " + Dec(Long(m_nAt + 16)) + " behind it";
        } else {
            str += "node " + Dec(nNode) + ", " + NameOf(nNode) + ": unit " + Dec(nUnit) + ", flags " +
                   Dec(m_vByte.at(m_nAt + 5)) + ", from 0x" + Hex(Long(m_nAt + 12), 8) + " to 0x" +
                   Hex(Long(m_nAt + 16), 8);
        }
        std::string strBytes =
            Digits(m_nAt, 4) + ' ' + Digits(m_nAt + 4, 1) + ' ' + Digits(m_nAt + 5, 1) + ' ' + Digits(m_nAt + 6, 2);
        for (size_t nField = 8; nField < 20; nField += 4) strBytes += ' ' + Digits(m_nAt + nField, 4);
        RowOf(strBytes, 20, str);
    }

    // The example's set is one word.
    void Pairs(uint32_t nBits) {
        ASSERT_EQ(nBits, 5u);
        std::map<uint32_t, std::string> mapBit;
        std::wstring_convert<std::codecvt_utf8_utf16<char16_t>, char16_t> convert;
        for (uint32_t n = 0; n < Head(HDR_TOWN_COUNT); ++n) {
            uint32_t const nName = NodeField(Head(HDR_FIRST_TOWN) + n, 4);
            std::u16string const strTokens = convert.from_bytes(qeadrs::FoldName(Text(nName)));
            for (size_t i = 1; i < strTokens.size(); ++i) {
                uint32_t const nPair = uint32_t{strTokens[i - 1]} * 65536 + strTokens[i];
                std::string const strPair = ' ' + convert.to_bytes(strTokens.substr(i - 1, 2));
                std::string& strPairs = mapBit[nPair * 0x9E3779B1 >> (32 - nBits)];
                if (strPairs.find(strPair) == std::string::npos) strPairs += strPair;
            }
        }
        uint32_t nWord = 0;
        std::string strMeaning = "pairs:";
        for (auto const& [nBit, strPairs] : mapBit) {
            nWord |= 1u << nBit;
            strMeaning += (nBit == mapBit.begin()->first ? " bit " : ", bit ") + Dec(nBit) + strPairs;
        }
        EXPECT_EQ(Long(m_nAt), nWord);
        Row(4, strMeaning);
    }

    CBytes const& m_vByte;
    size_t m_nAt = 0;
    std::vector<std::string> m_vLine;
    std::map<uint32_t, bool> m_mapCode;     // by offset in the string area: of a superseded entry
    std::map<uint32_t, uint32_t> m_mapName; // by offset: where the reading is
};

// --- the questions ------------------------------------------------------------------------------------------------------

std::string Joined(std::initializer_list<char const*> vszPart) {
    std::string str;
    for (char const* psz : vszPart)
        if (psz != nullptr && *psz != '\0') str += (str.empty() ? "" : " ") + std::string(psz);
    return str;
}

std::string Address(tagADDR const& a) {
    return Joined({a.pszPostCode, a.pszPref, a.pszCity, a.pszTown, a.pszArea, a.pszBlock, a.pszNote, a.pszOffice});
}

std::string Ask(CBytes const& vByte, std::string const& strCall, std::string const& strQuestion) {
    CAddrDic dic;
    dic.SetDictionary(vByte.data());
    std::string strAnswer;
    std::vector<tagADDR> vAddr;
    tagADDR addr(0);
    if (strCall == "GetAddrFromPostCode7")
        dic.GetAddrFromPostCode7(strQuestion.c_str(), vAddr);
    else if (strCall == "GetAddrFromPostCode5")
        dic.GetAddrFromPostCode5(strQuestion.c_str(), vAddr);
    else if (strCall == "GetAddrFromAddrPart")
        dic.GetAddrFromAddrPart(strQuestion.c_str(), vAddr);
    else if (strCall == "GetLatestAddr") {
        if (dic.GetLatestAddr(strQuestion.c_str(), addr) == 1)
            return Joined({addr.pszPref, addr.pszCity, addr.pszTown});
    } else if (strCall == "GetPostCodeFromAddr") {
        size_t const nPlus = strQuestion.find(" + ");
        std::string strName = nPlus == std::string::npos ? "" : strQuestion.substr(nPlus + 3);
        dic.GetPostCodeFromAddr(strQuestion.substr(0, nPlus).c_str(), strName.data(), addr);
        return Joined({addr.pszPostCode});
    } else if (strCall == "SearchCity") {
        return "position " + std::to_string(dic.SearchCity(strQuestion.c_str()));
    } else if (strCall == "SearchInc") {
        std::string strName = strQuestion;
        return "position " + std::to_string(dic.SearchInc(strName.data()));
    } else {
        ADD_FAILURE() << "the page asks with " << strCall;
    }
    for (tagADDR const& a : vAddr) strAnswer += (strAnswer.empty() ? "" : "; ") + Address(a);
    return strAnswer.empty() ? "nothing" : strAnswer;
}

// --- the promises -------------------------------------------------------------------------------------------------------

TEST(FormatPage, ShowsEveryByteOfTheFileThatTheCompilerMakesOfItsRows) {
    CBytes const vPage = BytesOfPage(), vFile = CompiledFromPage();
    EXPECT_EQ(vPage.size(), vFile.size());
    for (size_t n = 0; n < vPage.size() && n < vFile.size(); ++n)
        ASSERT_EQ(vPage[n], vFile[n]) << At(static_cast<uint32_t>(n));
}

TEST(FormatPage, SaysOfEveryByteWhatItMeans) {
    CBytes const vFile = CompiledFromPage();
    std::vector<std::string> vShown;
    for (std::string const& strLine : LinesOfExample())
        if (strLine.rfind("| 0x", 0) == 0) vShown.push_back(strLine);
    std::vector<std::string> const vTrue = CDescription(vFile).Lines();
    std::string strTrue;
    for (std::string const& strLine : vTrue) strTrue += strLine + '\n';
    EXPECT_THAT(vShown, ElementsAreArray(vTrue)) << "the page should say:\n" << strTrue;
}

TEST(FormatPage, ShowsASoundDictionary) {
    qe::CCheckReport const report = qe::CheckDictionary(BytesOfPage());
    EXPECT_TRUE(report.IsSound());
    std::vector<std::string> vWhat;
    for (qe::CViolation const& v : report.Violations()) vWhat.push_back(v.strWhere + " " + v.strWhat);
    EXPECT_THAT(vWhat, IsEmpty());
}

TEST(FormatPage, AnswersItsQuestionsFromItsBytes) {
    CBytes const vByte = BytesOfPage();
    ASSERT_TRUE(qe::CheckDictionary(vByte).IsSound()); // of any other file nothing is asked
    std::vector<CCells> const vRow = Rows("`");
    EXPECT_EQ(vRow.size(), 13u);
    for (CCells const& row : vRow) {
        ASSERT_EQ(row.size(), 3u);
        EXPECT_EQ(Ask(vByte, row[0], row[1]), row[2]) << row[0] << ' ' << row[1];
    }
}

TEST(FormatPage, FollowsEachEntryUpTheTree) {
    CBytes const vByte = BytesOfPage();
    ASSERT_TRUE(qe::CheckDictionary(vByte).IsSound()); // of any other file nothing is asked
    CDescription const description(vByte);
    CAddrDic dic;
    dic.SetDictionary(vByte.data());
    std::vector<CCells> const vRow = Rows("entry ");
    ASSERT_EQ(vRow.size(), description.Head(HDR_INFO_COUNT));
    for (uint32_t n = 0; n < vRow.size(); ++n) {
        tagADDR addr(0);
        dic.GetAddr(dic.GetAddrInfo(n), &addr);
        EXPECT_THAT(vRow[n], ElementsAre(description.Way(n), Address(addr)));
    }
}

} // namespace
