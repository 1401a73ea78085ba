// Image.cpp - odd and damaged dictionaries. The input is a recipe: what is added to the small world before it is
// written, and what is changed in its bytes. The checksum is repaired. When the checker takes the result for sound, every
// operation is run on it, from memory between guard pages and from a file; when only its tables lie in it, every operation
// that keeps to them by itself.
//
//   A PARENT,LEVEL|NAME|READING   a node more; a prefecture has no parent
//   C NODE|CODE|OLDCODE           an entry more
//   S ENTRY,ENTRY                 the first is superseded by the second
//   F NODE,ENTRY                  the node refers to another node's entry
//   L NODE|NAME                   a second name of the node, in the organisation index; O NODE: its first one
//   Z                             what was added so far is left out, the small world first of all
//
//   n NODE,FIELD,VALUE      a field of a node: 0 level, 1 name, 2 entry, 3 parent, 4 child count, 5 first child
//   e ENTRY,FIELD,VALUE     a field of an entry: 0 code, 1 node
//   c POSITION,VALUE        an entry of the city-name index, o of the organisation index
//   h WORD,VALUE            a word of the header
//   a OFFSET,BYTE           a byte of the string area; b one of the file
//   w OFFSET|TEXT           a text over the bytes of the string area
//   x OFFSET,BIT            flips a bit of the file
//   s OFFSET,OFFSET,SIZE    swaps two ranges of the file; d copies the first over the second
//   N NODE,NODE             swaps two nodes; E two entries
//   t SIZE                  cuts the file, and its header says so; T cuts it only
//   i OFFSET,BYTE,SIZE      inserts bytes into the file, and its header says so
//   k                       leaves the checksum as it is
//   q TEXT                  a text to ask for, beside those of the dictionary
//
// Numbers are taken modulo what they count; of what is added, -1 is the last one, and so on.
#include "api/Pstexec.h"
#include "builder/Check.h"
#include "builder/ImageTables.h"
#include "builder/ImageWriter.h"
#include "dic/ImageHeader.h"
#include "fuzz/ApiCalls.h"
#include "fuzz/LegacyCalls.h"
#include "fuzz/Worlds.h"
#include "tests/support/EveryOperation.h"
#include "tests/support/GuardedBytes.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <random>

namespace {

constexpr size_t MOST_LINES = 64, MOST_INSERTED = 4096, MOST_QUERIES = 8, LONGEST_QUERY = 1000;
constexpr uint32_t MOST_OF_SOUND = 10,
                   MOST_OF_DAMAGED = 3; // nodes, and entries, that one image's texts are drawn from

size_t nImages, nSound, nChanged, nBounded; // told at the end: a target whose mutants are all refused proves little

void Tell() {
    std::fprintf(stderr, "images: %zu, of these sound: %zu, of these changed: %zu; refused but tried: %zu\n", nImages,
                 nSound, nChanged, nBounded);
}

// The dictionary that is written, before anything is changed in it.
class CWorldRecipe {
  public:
    CWorldRecipe() { AddSmallWorld(m_writer); }

    void Add(CLineInput& input) {
        auto const nNodes = static_cast<uint32_t>(m_writer.NodeCount());
        auto const nEntries = static_cast<uint32_t>(m_writer.EntryCount());
        switch (input.Command()) {
        case 'A': {
            uint32_t const nParent = Below(input, nNodes);
            auto const nLevel = static_cast<uint8_t>(input.Number() % (LEVEL_OFFICE + 2));
            input.Field();
            std::string const strName = input.Field(), strReading = input.Rest();
            if (nLevel != LEVEL_PREF && nNodes == 0) return;
            m_writer.AddNode(nLevel == LEVEL_PREF ? ADDR_NONE : nParent, nLevel, strName, strReading);
            return;
        }
        case 'C': {
            uint32_t const nNode = Below(input, nNodes);
            input.Field();
            std::string const strCode = input.Field(), strOld = input.Rest();
            if (nNodes != 0) m_writer.AddEntry(nNode, strCode, strOld);
            return;
        }
        case 'S': {
            uint32_t const nEntry = Below(input, nEntries), nSuccessor = Below(input, nEntries);
            return nEntries != 0 ? m_writer.Supersede(nEntry, nSuccessor) : void();
        }
        case 'F': {
            uint32_t const nNode = Below(input, nNodes), nEntry = Below(input, nEntries);
            return nEntries != 0 ? m_writer.Refer(nNode, nEntry) : void();
        }
        case 'L':
        case 'O': {
            uint32_t const nNode = Below(input, nNodes);
            input.Field();
            if (nNodes == 0 || !m_writer.HasEntry(nNode)) return;
            return m_writer.AddOffice(input.Command() == 'O' ? nNode : m_writer.AddAlias(nNode, input.Rest()));
        }
        case 'Z':
            m_writer = qe::CImageWriter();
            m_writer.SetIdentification(20260500, qe::ESource::Sample);
            return;
        default:
            return;
        }
    }

    std::vector<unsigned char> Bytes() const { return m_writer.Write().vByte; }

  private:
    static uint32_t Below(CLineInput& input, uint32_t nCount) {
        uint32_t const n = input.Number();
        if (nCount == 0) return 0;
        return n <= INT32_MAX ? n % nCount : nCount - 1 - ~n % nCount;
    }

    qe::CImageWriter m_writer;
};

class CRecipe {
  public:
    explicit CRecipe(std::vector<unsigned char> vByte) : m_vByte(std::move(vByte)), m_vSound(m_vByte) {}

    void Change(CLineInput& input) {
        if (m_vByte.size() < HDR_BYTES) return; // cut already
        switch (input.Command()) {
        case 'n': {
            constexpr size_t anField[] = {0, 4, 8, 12, 16, 20};
            size_t const nNode = Below(input, HDR_NODE_COUNT), nField = input.Number() % 6;
            size_t const nOffset = Word(HDR_NODE_TABLE) + nNode * sizeof(tagADDRNODE) + anField[nField];
            return nField == 0 ? Put(nOffset, input.Number(), 1) : Put(nOffset, input.Number(), 4);
        }
        case 'e': {
            size_t const nEntry = Below(input, HDR_INFO_COUNT), nField = input.Number() % 2;
            return Put(Word(HDR_INFO_TABLE) + nEntry * sizeof(tagADDRINFO) + 4 * nField, input.Number(), 4);
        }
        case 'c':
        case 'o': {
            bool const bCity = input.Command() == 'c';
            size_t const n = Below(input, bCity ? HDR_CITY_COUNT : HDR_OFFICE_COUNT);
            return Put(Word(bCity ? HDR_CITY_INDEX : HDR_OFFICE_INDEX) + 4 * n, input.Number(), 4);
        }
        case 'h': {
            size_t const nWord = input.Number() % HDR_WORDS;
            return Put(4 * nWord, input.Number(), 4);
        }
        case 'a': {
            size_t const nOffset = Below(input, HDR_STRING_SIZE);
            return Put(Word(HDR_STRING_AREA) + nOffset, input.Number(), 1);
        }
        case 'w': {
            size_t const nOffset = Below(input, HDR_STRING_SIZE);
            input.Field();
            std::string const strText = input.Rest();
            for (size_t n = 0; n < strText.size(); ++n)
                Put(Word(HDR_STRING_AREA) + nOffset + n, static_cast<unsigned char>(strText[n]), 1);
            return;
        }
        case 'b': {
            size_t const nOffset = input.Number();
            return Put(nOffset, input.Number(), 1);
        }
        case 'x': {
            size_t const nOffset = input.Number() % m_vByte.size();
            m_vByte[nOffset] ^= static_cast<unsigned char>(1u << input.Number() % 8);
            return;
        }
        case 's':
        case 'd': {
            size_t const nFrom = input.Number(), nTo = input.Number();
            return Move(nFrom, nTo, input.Number(), input.Command() == 's');
        }
        case 'N':
            return Swap(input, HDR_NODE_TABLE, HDR_NODE_COUNT, sizeof(tagADDRNODE));
        case 'E':
            return Swap(input, HDR_INFO_TABLE, HDR_INFO_COUNT, sizeof(tagADDRINFO));
        case 't':
        case 'T':
            m_vByte.resize(input.Number() % (m_vByte.size() + 1));
            return input.Command() == 't' ? SaySize() : void();
        case 'i': {
            size_t const nOffset = input.Number() % (m_vByte.size() + 1);
            auto const cByte = static_cast<unsigned char>(input.Number());
            m_vByte.insert(m_vByte.begin() + static_cast<std::ptrdiff_t>(nOffset), input.Number() % MOST_INSERTED,
                           cByte);
            return m_vByte.size() >= HDR_BYTES ? SaySize() : void();
        }
        case 'k':
            m_bRepair = false;
            return;
        case 'q':
            if (vQuery.size() < MOST_QUERIES) vQuery.push_back(input.Rest().substr(0, LONGEST_QUERY));
            return;
        default:
            return;
        }
    }

    std::vector<unsigned char> Bytes() {
        if (m_bRepair && m_vByte.size() >= HDR_BYTES) qe::RepairChecksum(m_vByte);
        return m_vByte;
    }

    std::vector<std::string> vQuery;

  private:
    // Tables are looked for where they were: a header that is changed first must not lead the other changes away.
    uint32_t Word(tagHEADERWORD nWord) const { return HeaderWord(m_vSound.data(), nWord); }

    // What is not there is taken for the first: the bytes that follow are changed then.
    size_t Below(CLineInput& input, tagHEADERWORD nCount) const {
        uint32_t const n = input.Number();
        return Word(nCount) == 0 ? 0 : n % Word(nCount);
    }

    void Put(size_t nOffset, uint32_t nValue, size_t nSize) {
        nOffset %= m_vByte.size();
        std::memcpy(&m_vByte[nOffset], &nValue, std::min(nSize, m_vByte.size() - nOffset));
    }
    void SaySize() {
        if (m_vByte.size() >= HDR_BYTES) Put(size_t{4} * HDR_FILE_SIZE, static_cast<uint32_t>(m_vByte.size()), 4);
    }
    void Move(size_t nFrom, size_t nTo, size_t nSize, bool bSwap) {
        nFrom %= m_vByte.size();
        nTo %= m_vByte.size();
        nSize = std::min({nSize % 512, m_vByte.size() - nFrom, m_vByte.size() - nTo});
        for (size_t n = 0; n < nSize; ++n)
            if (bSwap)
                std::swap(m_vByte[nFrom + n], m_vByte[nTo + n]);
            else
                m_vByte[nTo + n] = m_vByte[nFrom + n];
    }
    void Swap(CLineInput& input, tagHEADERWORD nTable, tagHEADERWORD nCount, size_t nRecord) {
        size_t const nFrom = Below(input, nCount), nTo = Below(input, nCount);
        if (nFrom != nTo) Move(Word(nTable) + nRecord * nFrom, Word(nTable) + nRecord * nTo, nRecord, true);
    }

    std::vector<unsigned char> m_vByte;
    std::vector<unsigned char> m_vSound;
    bool m_bRepair = true;
};

bool TablesLieInside(std::vector<unsigned char> const& vByte) {
    if (vByte.size() < HDR_BYTES) return false;
    return std::all_of(std::begin(qe::IMAGE_TABLES), std::end(qe::IMAGE_TABLES), [&](qe::CImageTable const& table) {
        uint64_t const nOffset = HeaderWord(vByte.data(), table.nOffset);
        uint64_t const nSize = uint64_t{HeaderWord(vByte.data(), table.nCount)} * table.nRecord;
        return (table.nRecord == 1 || nOffset % 4 == 0) && nOffset <= vByte.size() && nSize <= vByte.size() - nOffset;
    });
}

// Everything that the two interfaces offer, with the texts that were asked for before.
std::string HostCommands(CEveryOperation const& run) {
    std::string str = "p 2|\nr 0\nt 0\np 9|\nr 1\nT 1\np 9|\nr 0\nu 0\na \ns 0,0,0|||\ng 0,0\ng 1,0\ng 2,0\n";
    for (size_t n = 0; n < run.Texts().size(); ++n) {
        std::string const &strText = run.Texts()[n], &strCode = run.Codes()[n % run.Codes().size()],
                          &strOffice = run.Offices()[n % run.Offices().size()];
        str += "a " + strText + "\nl " + strText + "\ng 2|" + strText + "|" + strOffice + "\np 2|" + strText +
               "\nz " + strCode + "\nc 9||" + strCode + "\nk 3\ns 0,0,0|||" + strText + "\ng 0,0\ng 1,0\ng 2,0\n";
    }
    return str;
}

template <typename FCall>
void InParts(std::string const& strCommands, FCall const& call) {
    constexpr size_t LINES = 60; // fewer than one input may have
    for (size_t nPos = 0; nPos < strCommands.size();) {
        size_t nEnd = nPos;
        for (size_t n = 0; n < LINES && nEnd < strCommands.size(); ++n) nEnd = strCommands.find('\n', nEnd) + 1;
        call(CLineInput(reinterpret_cast<uint8_t const*>(&strCommands[nPos]), nEnd - nPos));
        nPos = nEnd;
    }
}

// --- mutants of recipes --------------------------------------------------------------------------------------------

constexpr char const* NAMES[] = {"丸",
                                 "丸の内",
                                 "丸ビル",
                                 "千代",
                                 "千代田",
                                 "千代田区",
                                 "府中",
                                 "府中市",
                                 "府中町",
                                 "宮町",
                                 "大通",
                                 "港区",
                                 "大島町",
                                 "八丈島八丈町",
                                 "安芸郡",
                                 "安芸郡府中町",
                                 "京都市上京区",
                                 "東京都",
                                 "広島県",
                                 "北海道",
                                 "沖縄県",
                                 "京都府",
                                 "１丁目",
                                 "２丁目",
                                 "１０",
                                 "１−１",
                                 "１階",
                                 "地階",
                                 "（株）見本",
                                 "見本",
                                 "見本商事",
                                 "株式会社",
                                 "有限会社　",
                                 "（有）",
                                 "",
                                 "x",
                                 "ﾁﾖﾀﾞ",
                                 "　",
                                 "以下に掲載がない場合"};

// Lines that mean something: most of what they make is refused all the same, but often enough it is not.
class CLineMaker {
  public:
    explicit CLineMaker(unsigned nSeed) : m_random(nSeed) {}

    size_t Below(size_t n) { return n == 0 ? 0 : m_random() % n; }

    std::string Lines() { return Below(4) == 0 ? Damage() : Addition(); }

    std::string Damage() {
        switch (Below(10)) {
        case 0:
            return (Below(2) == 0 ? "E " : "N ") + Small() + "," + Small();
        case 1:
            return "n " + Small() + "," + Digits(Below(6)) + "," + Value();
        case 2:
            return "e " + Small() + "," + Digits(Below(2)) + "," + Value();
        case 3:
            return (Below(2) == 0 ? "c " : "o ") + Small() + "," + Small();
        case 4:
            return "h " + Digits(Below(27)) + "," + Value();
        case 5:
            return "a " + Digits(Below(700)) + "," + Digits(Below(3) == 0 ? 0 : 32 + Below(224));
        case 6:
            return "x " + Digits(Below(1600)) + "," + Digits(Below(8));
        case 7:
            return "s " + Digits(4 * Below(400)) + "," + Digits(4 * Below(400)) + "," + Digits(4 * Below(16));
        case 8:
            return "i " + Digits(Below(1600)) + ",0," + Digits(4 * Below(8));
        default:
            return "w " + Digits(Below(700)) + "|" + (Below(2) == 0 ? Code() : Name());
        }
    }

    // The small world's nodes in order of adding: 2 prefectures, 4 cities, 8 towns, and what lies below. Behind the
    // nameless town of the first city no other one can stand.
    std::string Addition() {
        std::string const strCity = Digits(3 + Below(3)), strTown = Digits(6 + Below(8));
        switch (Below(12)) {
        case 0:
            return "A " + strCity + ",2|" + Name() + "|" + Name() + "\n" + Entry();
        case 1:
            return "A " + strTown + ",3|" + Name() + "|\n" + Entry();
        case 2:
            return "A " + strTown + ",4|" + Name() + "|\nA -1,6|" + Name() + "|\n" + Entry();
        case 3:
            return "A " + strTown + ",7|" + Organisation();
        case 4:
            return "A " + strTown + ",5||\nA -1,7|" + Organisation();
        case 5:
            return "A " + Digits(Below(2)) + ",1|" + Name() + "|\nA -1,2|" + Name() + "|\n" + Entry() + "\nF -2,-1";
        case 6:
            return std::string("A 0,0|") + (Below(2) == 0 ? "沖縄県" : "福岡県") + "|\nA -1,1|" + Name() +
                   "|\nA -1,2|" + Name() + "|\n" + Entry();
        case 7:
            return "S " + Small() + "," + Small();
        case 8:
            return Entry() + "\nS -1," + Small();
        case 9:
            return "A -1," + Digits(3 + Below(5)) + "|" + Name() + "|\n" + Entry();
        case 10:
            return "A " + Small() + "," + Digits(Below(8)) + "|" + Name() + "|" + Name();
        default:
            return "q " + Name() + Name() + Name();
        }
    }

  private:
    static std::string Digits(size_t n) { return std::to_string(n); }
    std::string Small() { return Digits(Below(Below(2) == 0 ? 12 : 32)); }
    std::string Value() {
        static char const* const apszValue[] = {"4294967295", "2147483648", "2147483647", "65535", "256", "127"};
        if (Below(3) == 0) return apszValue[Below(std::size(apszValue))];
        return Digits(Below(4) == 0 ? (size_t{1} << 31) + Below(16) : Below(32));
    }
    // Now and then at the length that a name may just have, or one more.
    std::string Name() {
        std::string const str = NAMES[Below(std::size(NAMES))];
        if (Below(16) != 0) return Below(4) == 0 ? str + NAMES[Below(std::size(NAMES))] : str;
        return str + std::string(127 + Below(2) - std::min<size_t>(str.size(), 127), 'x');
    }
    // An organisation's name and what stands behind it; it is searched for by its name without a legal form.
    std::string Organisation() {
        static char const* const apszForm[] = {"", "（株）", "有限会社　", "株式会社"};
        std::string const strName = Name();
        return apszForm[Below(std::size(apszForm))] + strName + "|\n" + Entry() + "\nO -1\nL -1|" + strName;
    }
    std::string Entry() { return "C -1|" + Code() + "|" + OldCode(); }
    std::string Code() { return (Below(2) == 0 ? "10000" : "18300") + Digits(10 + Below(90)); }
    std::string OldCode() {
        static char const* const apszCode[] = {"100", "10055", "", "183"};
        return apszCode[Below(std::size(apszCode))];
    }

    std::mt19937 m_random;
};

// --- asking --------------------------------------------------------------------------------------------------------

// Both interfaces, from a file.
void AskInterfaces(std::vector<unsigned char> const& vByte, std::string const& strCommands) {
    static CDictionaryFolder const folder(vByte);
    folder.Write(vByte);
    Require(PstAdrOpen() == 0, "the dictionary can be opened");
    InParts(strCommands, [](CLineInput const& input) { CallApi(input); });
    Require(PstAdrClose() == 0, "a close succeeds");
    InParts(strCommands, [](CLineInput const& input) { CallLegacy(input, folder.Path()); });
}

} // namespace

// Bytes in some mutants, else lines. Damage is rarely taken for sound, and additions may not go together, so that now and
// then all damage goes, and some of the additions with it.
extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* p, size_t nSize, size_t nMost, unsigned nSeed) {
    CLineMaker maker(nSeed);
    if (maker.Below(6) == 0) return LLVMFuzzerMutate(p, nSize, nMost);
    std::vector<std::string> vLine = LinesOf(p, nSize);
    auto const IsTakenOut = [&](std::string const& str) {
        return str.find_first_of("ACSFLOZq") != 0 || maker.Below(4) == 0;
    };
    size_t const nLine = maker.Below(vLine.size()), nOther = maker.Below(vLine.size());
    switch (vLine.empty() ? 5 : maker.Below(9)) {
    case 0:
    case 1:
    case 8:
        vLine.erase(std::remove_if(vLine.begin(), vLine.end(), IsTakenOut), vLine.end());
        break;
    case 2:
        vLine.erase(vLine.begin() + static_cast<std::ptrdiff_t>(nLine));
        break;
    case 3:
        std::swap(vLine[nLine], vLine[nOther]);
        break;
    case 4:
        vLine[nLine] = maker.Lines();
        break;
    default:
        vLine.insert(vLine.begin() + static_cast<std::ptrdiff_t>(nLine), maker.Lines());
    }
    return PutLines(vLine, p, nMost);
}

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* p, size_t nSize) {
    static bool const bRegistered = [] {
        Require(qe::CheckDictionary(SmallWorld()).IsSound(), "the small world is sound");
        return std::atexit(Tell) == 0;
    }();
    (void)bRegistered;
    CWorldRecipe world;
    CLineInput additions(p, nSize), changes(p, nSize);
    for (size_t n = 0; n < MOST_LINES && additions.Next(); ++n) world.Add(additions);
    CRecipe recipe(world.Bytes());
    for (size_t n = 0; n < MOST_LINES && changes.Next(); ++n) recipe.Change(changes);
    std::vector<unsigned char> const vByte = recipe.Bytes();
    ++nImages;
    qe::CCheckReport const report = qe::CheckDictionary(vByte);
    bool const bSound = report.IsSound();
    nSound += bSound;
    if (std::getenv("QEADRS_FUZZ_TELL") != nullptr)
        for (qe::CViolation const& violation : report.Violations())
            std::fprintf(stderr, "%s: %s %s\n", qe::CHECK_RULES[static_cast<size_t>(violation.nRule)].pszName,
                         violation.strWhere.c_str(), violation.strWhat.c_str());
    nChanged += bSound && vByte != SmallWorld();
    if (!bSound && !TablesLieInside(vByte)) return 0;
    nBounded += !bSound;
    // A mapping begins with a page, so an image of an odd size cannot end with one.
    CGuardedBytes const image(vByte.data(), vByte.size(), CGuardedBytes::ReadOnly,
                              vByte.size() % 4 == 0 ? CGuardedBytes::EndOfPage : CGuardedBytes::StartOfPage);
    CEveryOperation run(image.Data(), bSound ? CEveryOperation::Sound : CEveryOperation::Bounded,
                        bSound ? MOST_OF_SOUND : MOST_OF_DAMAGED);
    for (std::string const& str : recipe.vQuery) run.AlsoAsk(str);
    run.Run(HeaderWord(vByte.data(), HDR_CHECKSUM));
    if (bSound) AskInterfaces(vByte, HostCommands(run));
    return 0;
}
