// Compiler.cpp - the compiler's input: tables as CSV or zip, in any encoding.
//
// The input is a town table; behind a line "%%" an organisation table, behind further ones earlier editions. An input
// that begins like a zip is one town table, and is read where the compiler reads files. What the compiler accepts, it
// makes a sound dictionary of.
#include "builder/Compiler.h"
#include "builder/Check.h"
#include "builder/Error.h"
#include "builder/TextTable.h"
#include "fuzz/Fuzz.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <random>
#include <utility>

namespace {

constexpr size_t MOST_EDITIONS = 3;

size_t nInputs, nCompiled; // told at the end: a target whose tables are all refused proves nothing

void Tell() {
    std::fprintf(stderr, "inputs: %zu, of these compiled: %zu\n", nInputs, nCompiled);
}

bool IsZip(std::string_view str) {
    return str.substr(0, 2) == "PK";
}

std::vector<std::string_view> Tables(std::string_view str) {
    std::vector<std::string_view> vTable;
    if (IsZip(str)) return {str};
    constexpr std::string_view SEPARATOR = "%%\n";
    for (size_t nEnd; (nEnd = str.find(SEPARATOR)) != std::string_view::npos;) {
        vTable.push_back(str.substr(0, nEnd));
        str.remove_prefix(nEnd + SEPARATOR.size());
    }
    vTable.push_back(str);
    return vTable;
}

qe::CSource Source(std::string_view strBytes) {
    qe::CSource source;
    source.strPath = "TABLE";
    source.strText = strBytes;
    return source;
}

qe::CSource Read(std::string_view strBytes) {
#ifdef QEADRS_FUZZ_FILES
    static CMemoryFile const file;
    if (IsZip(strBytes)) {
        file.Write(strBytes);
        return qe::ReadSource(file.Path());
    }
#endif
    return qe::DecodeSource(Source(strBytes));
}

// The same bytes read otherwise, and towns matched without a dictionary.
void ReadOtherwise(std::string_view strBytes) try {
    qe::DecodeEucSource(Source(strBytes));
} catch (qe::CBuildError const&) {
}

void Match(std::vector<qe::CTownRow> const& vThen, std::vector<qe::CTownRow> const& vNow) {
    qe::CEdition then, now;
    size_t nBuildings = 0;
    then.AddRows(vThen, nBuildings);
    now.AddRows(vNow, nBuildings);
    for (qe::CEditionTown const& town : then.Towns()) {
        qe::CSuccession const next = FindSuccessor(town, then, now);
        Require((next.pTown != nullptr) == (next.nRule != qe::ERule::None), "a rule has chosen the successor");
    }
}

void Compile(std::vector<std::string_view> const& vTable) {
    qe::CStatistics statistics;
    qe::CCompiler compiler(statistics);
    std::vector<qe::CTownRow> const vTown = qe::ReadTownTable(Read(vTable[0])).vRow;
    compiler.AddTowns(vTown, "TOWNS");
    if (vTable.size() > 1 && !vTable[1].empty()) compiler.AddOffices(qe::ReadOfficeTable(Read(vTable[1])), "OFFICES");
    for (size_t n = 2; n < vTable.size() && n < 2 + MOST_EDITIONS; ++n) {
        std::vector<qe::CTownRow> const vThen = qe::ReadTownTable(Read(vTable[n])).vRow;
        compiler.AddPrevious(vThen, "OLD");
        Match(vThen, vTown);
    }
    std::vector<unsigned char> vByte = compiler.Compile(20260500, qe::ESource::Official).vByte;
    qe::AppendTextIndex(vByte);
    qe::CCheckReport const report = qe::CheckDictionary(vByte);
    ++nCompiled;
    for (qe::CViolation const& violation : report.Violations())
        std::fprintf(stderr, "%s: %s %s\n", qe::CHECK_RULES[static_cast<size_t>(violation.nRule)].pszName,
                     violation.strWhere.c_str(), violation.strWhat.c_str());
    Require(report.IsSound(), "a dictionary that was compiled is sound");
}

// --- mutants of tables ---------------------------------------------------------------------------------------------

constexpr char const* PLACES[][2] = {{"東京都", "千代田区"}, {"東京都", "利島村"},       {"東京都", "府中市"},
                                     {"広島県", "府中市"},   {"北海道", "余市郡余市町"}, {"京都府", "京都市上京区"}};
constexpr char const* TOWNS[] = {"以下に掲載がない場合",
                                 "丸",
                                 "丸の内",
                                 "丸の内（その他）",
                                 "丸の内（１丁目）",
                                 "丸の内（２〜３丁目、５丁目）",
                                 "丸の内（次のビルを除く）",
                                 "丸ビル（１階）",
                                 "丸ビル（地階・階層不明）",
                                 "丸の内丸ビル（２階）",
                                 "利島村一円",
                                 "千代田区の次に番地がくる場合",
                                 "大手第１地割〜大手第３地割",
                                 "大手（第１地割）",
                                 "一ツ橋（上、下）",
                                 "一ツ橋（「上」以外、１−２）",
                                 "大字大手（１〜５００「４番地」、",
                                 "八木）",
                                 ""};
constexpr char const* READINGS[] = {
    "テスト", "ﾃｽﾄ", "テスト（１チョウメ）", "ﾃｽﾄ(1-2ﾁﾖｳﾒ)", "イカニケイサイガナイバアイ", ""};
constexpr char const* ORGANISATIONS[] = {"テスト", "株式会社　テスト", "テスト（有）", "株式会社", "（株）"};
constexpr char const* RESTS[] = {"", "１丁目", "１−１", "１丁目１−１　丸ビル３階"};
constexpr char const* CODES[] = {"1000000", "1000001", "1000002", "2000000"};
constexpr char const* OLD_CODES[] = {"100  ", "10055", "", "060"};

class CRowMaker {
  public:
    explicit CRowMaker(unsigned nSeed) : m_random(nSeed) {}

    size_t Below(size_t n) { return n == 0 ? 0 : m_random() % n; }

    std::string Row(bool bOffice) {
        auto const& apszPlace = PLACES[Below(std::size(PLACES))];
        std::string const strPlace = Quoted(apszPlace[0]) + "," + Quoted(apszPlace[1]) + ",", strJis = "13101,";
        if (bOffice)
            return strJis + Quoted(OneOf(READINGS)) + "," + Quoted(OneOf(ORGANISATIONS)) + "," + strPlace +
                   Quoted(OneOf(TOWNS)) + "," + Quoted(OneOf(RESTS)) + "," + Quoted(OneOf(CODES)) + "," +
                   Quoted(OneOf(OLD_CODES)) + ",\"\",0,0,0";
        return strJis + Quoted(OneOf(OLD_CODES)) + "," + Quoted(OneOf(CODES)) + ",\"ト\",\"チ\"," +
               Quoted(OneOf(READINGS)) + "," + strPlace + Quoted(OneOf(TOWNS)) + ",0,0,0,0,0,0";
    }

    // Another text of the same kind, or any other, in one of the row's fields.
    std::string Change(std::string const& strRow) {
        size_t const nField = strRow.find(",\"", Below(strRow.size()));
        size_t const nEnd = nField == std::string::npos ? nField : strRow.find('"', nField + 2);
        if (nEnd == std::string::npos) return Row(false);
        std::string const strTown = OneOf(TOWNS);
        std::string const strText = Below(2) == 0   ? strTown
                                    : Below(2) == 0 ? std::string(OneOf(READINGS))
                                    : Below(2) == 0 ? std::string(OneOf(CODES))
                                                    : std::string(OneOf(ORGANISATIONS));
        return strRow.substr(0, nField + 2) + strText + strRow.substr(nEnd);
    }

  private:
    template <size_t N>
    char const* OneOf(char const* const (&apsz)[N]) {
        return apsz[Below(N)];
    }
    static std::string Quoted(std::string const& str) { return '"' + str + '"'; }

    std::mt19937 m_random;
};

} // namespace

// Bytes in every fourth mutant and in zips, else rows.
extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* p, size_t nSize, size_t nMost, unsigned nSeed) {
    CRowMaker maker(nSeed);
    if (maker.Below(4) == 0 || IsZip({reinterpret_cast<char const*>(p), nSize}))
        return LLVMFuzzerMutate(p, nSize, nMost);
    std::vector<std::string> vLine = LinesOf(p, nSize);
    if (vLine.empty()) vLine.push_back(maker.Row(false));
    auto const pLine = vLine.begin() + static_cast<std::ptrdiff_t>(maker.Below(vLine.size()));
    auto const nSection = std::count(vLine.begin(), pLine, "%%");
    switch (maker.Below(8)) {
    case 0:
    case 1:
        vLine.insert(pLine, maker.Row(nSection == 1));
        break;
    case 2:
        vLine.erase(pLine);
        break;
    case 3:
        vLine.push_back(*pLine);
        break;
    case 4: {
        bool const bOffice = std::count(vLine.begin(), vLine.end(), "%%") == 0;
        vLine.emplace_back("%%");
        vLine.push_back(maker.Row(bOffice));
        break;
    }
    default:
        *pLine = maker.Change(*pLine);
    }
    return PutLines(vLine, p, nMost);
}

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* p, size_t nSize) {
    static bool const bRegistered = std::atexit(Tell) == 0;
    (void)bRegistered;
    ++nInputs;
    std::string_view const str(reinterpret_cast<char const*>(p), nSize);
    ReadOtherwise(str);
    try {
        Compile(Tables(str));
    } catch (qe::CBuildError const&) {
        // refused, with a sentence for the user
    }
    return 0;
}
