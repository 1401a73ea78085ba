// AreaRules.cpp - from the names of subdivisions to rules and places, and from a house number to the rule that it fits.
//
// A name is a list of items. An item is a number, a range or several of them with what stands behind (３丁目１８・２１番),
// the same behind a place (西５〜８線７９〜１１０番地), or a place (渡戸沢「筍沢温泉」). In names only Arabic digits count: kanji
// numerals belong to places (二の井, 第一大原野).
#include "text/AreaRules.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>
#include <utility>

namespace qeadrs {

namespace {

constexpr uint32_t NUMBER_LIMIT = 0xFFFF;
constexpr uint32_t ALL_BELOW = 0xFFFF;
constexpr uint32_t LAST = 0xFFFFFFFF;
constexpr size_t NAME_LIMIT = 127;    // bytes: a longer list goes on in the next name
constexpr uint32_t REPEAT_LIMIT = 64; // lines, lots or blocks that a range of house numbers is repeated for
constexpr uint32_t BLOCK_LIMIT = 100; // no town has as many blocks: a bare number from here on is a house's

constexpr uint32_t Value(uint32_t nMain, uint32_t nBelow) {
    return nMain << 16 | nBelow;
}

uint32_t AddDigit(uint32_t nNumber, uint32_t nDigit) {
    return std::min(nNumber * 10 + nDigit, NUMBER_LIMIT);
}

// --- names ---------------------------------------------------------------------------------------------------------

// A character of a name, 0 for one that is not well-formed or lies beyond the basic plane: no rule asks for those.
uint32_t Character(std::string_view str, size_t nPos) {
    auto const At = [&](size_t n) -> uint32_t { return static_cast<unsigned char>(str[n]); };
    uint32_t const nHead = At(nPos);
    if (nHead < 0x80) return nHead;
    if ((nHead & 0xF0) != 0xE0 || str.size() - nPos < 3) return 0;
    return (nHead & 0x0F) << 12 | (At(nPos + 1) & 0x3F) << 6 | (At(nPos + 2) & 0x3F);
}

struct CUnitName {
    std::u16string_view strName;
    EAreaUnit nUnit;
};
constexpr CUnitName UNIT_NAMES[] = {{u"丁目", UNIT_BLOCK}, {u"丁", UNIT_BLOCK}, {u"番地", UNIT_HOUSE},
                                    {u"番", UNIT_HOUSE},   {u"地割", UNIT_LOT}, {u"線", UNIT_LINE},
                                    {u"条", UNIT_ROW},     {u"区", UNIT_WARD},  {u"号", UNIT_SUB}};

// Tokens [nFirst, nEnd) of a name.
struct CPiece {
    size_t nFirst;
    size_t nEnd;
    size_t Size() const { return nEnd - nFirst; }
};

// One end of a range: "３", "３−２", "３番地の２", "１−７−１".
struct CRangeEnd {
    uint32_t nBlock = 0;
    uint32_t nMain = 0;
    uint32_t nBelow = 0;
    bool bBelow = false;
    uint8_t nUnit = UNIT_NONE;

    uint32_t From() const { return Value(nMain, bBelow ? nBelow : 0); }
    uint32_t To() const { return Value(nMain, bBelow ? nBelow : ALL_BELOW); }
};

// What the items of one list share.
struct CList {
    size_t nPlace = 0;
    uint32_t nBlock = 0; // the block that numbers without one lie in: "３丁目５、２０"
    uint8_t nFlags = 0;
    std::vector<size_t> vPending{}; // rules whose unit stands further behind: "１、２丁目"
    uint8_t nFirstUnit = UNIT_NONE; // the first one that stands there
    CRangeEnd last{};               // the last number
    bool bAnyBelow = false;         // a number below another was met
    bool bDisorder = false;         // ... and then a smaller one: some may be numbers below others
    bool bCounted = false;          // 第 stands in front of a number
};

class CAreaReader {
  public:
    explicit CAreaReader(std::string_view strName);
    void Read(uint32_t nBlock);
    void SetOpenUnit(uint8_t nUnit) { Resolve(m_list, nUnit); }

    bool IsUnitOpen() const { return !m_list.vPending.empty(); }
    uint8_t FirstUnit() const { return m_list.nFirstUnit; }
    uint32_t LastBlock() const { return m_list.nBlock; }
    CAreaMeaning& Meaning() { return m_meaning; }

  private:
    // Characters at positions: 0 behind the piece that is read.
    uint32_t At(size_t nAt) const { return nAt < m_nEnd ? m_anCharacter[nAt] : 0; }
    bool Is(size_t nAt, std::u16string_view str) const;
    bool Contains(CPiece piece, std::u16string_view str) const;
    bool IsDigit(size_t nAt) const;
    bool IsNumber(size_t nAt) const { return IsDigit(nAt) || (At(nAt) == u'第' && IsDigit(nAt + 1)); }
    bool IsJoined(size_t nAt) const;
    bool IsOpening(size_t nAt) const { return At(nAt) == u'「' || At(nAt) == u'（' || At(nAt) == u'〔'; }
    size_t Closing(size_t nAt) const;
    bool Skip(std::u16string_view str);
    uint32_t ReadNumber();
    uint8_t ReadUnit();

    bool ReadWhole();
    template <typename F>
    void ForEachItem(CPiece piece, bool bDots, F const& read);
    void ReadItem(CList& list, CPiece item);
    void ReadNumbers(CList& list);
    void ReadRange(CList& list, bool bDot);
    bool ReadEnd(CRangeEnd& end);
    void ReadLots(CList& list, CRangeEnd const& first);
    bool ReadLotPart(uint32_t& nFrom, uint32_t& nTo);
    void ReadWithin(CList& list, CRangeEnd const& from, CRangeEnd const& to);
    bool ReadOtherEnd(CRangeEnd const& from, CRangeEnd& to);
    void ReadBrackets(CList& list, bool bNumbers, size_t nFirstRule);
    void ReadPlaces(CPiece piece);
    uint8_t ReadParity(CPiece piece) const;

    void AddRule(CList& list, uint8_t nUnit, uint32_t nBlock, uint32_t nFrom, uint32_t nTo);
    void AddPlace(CPiece piece);
    void Mark(size_t nFirstRule, uint8_t nFlags);
    void Resolve(CList& list, uint8_t nUnit);

    CFoldedText m_text;
    uint32_t m_anCharacter[CFoldedText::LIMIT + 8] = {};
    size_t m_nAt = 0;
    size_t m_nEnd = 0;
    CList m_list;
    CAreaMeaning m_meaning;
};

CAreaReader::CAreaReader(std::string_view strName) {
    m_text.Fold(strName);
    m_nEnd = m_text.nCount;
    for (size_t i = 0; i < m_nEnd; ++i) m_anCharacter[i] = Character(strName, m_text.anBegin[i]);
}

bool CAreaReader::Is(size_t nAt, std::u16string_view str) const {
    for (char16_t const c : str)
        if (At(nAt++) != c) return false;
    return true;
}

bool CAreaReader::Contains(CPiece piece, std::u16string_view str) const {
    for (size_t i = piece.nFirst; i + str.size() <= piece.nEnd; ++i)
        if (Is(i, str)) return true;
    return false;
}

bool CAreaReader::IsDigit(size_t nAt) const {
    uint32_t const n = At(nAt);
    return (n >= u'０' && n <= u'９') || (n >= '0' && n <= '9');
}

// A dash or の and a digit behind it.
bool CAreaReader::IsJoined(size_t nAt) const {
    if (!IsDigit(nAt + 1)) return false;
    return At(nAt) == u'の' || At(nAt) == u'ノ' || m_text.anToken[nAt] == '-';
}

// The bracket that closes the one at a position; the end of the piece when there is none.
size_t CAreaReader::Closing(size_t nAt) const {
    size_t nDepth = 0;
    for (; nAt < m_nEnd; ++nAt) {
        if (IsOpening(nAt)) ++nDepth;
        if ((At(nAt) == u'」' || At(nAt) == u'）' || At(nAt) == u'〕') && --nDepth == 0) break;
    }
    return nAt;
}

bool CAreaReader::Skip(std::u16string_view str) {
    if (!Is(m_nAt, str)) return false;
    m_nAt += str.size();
    return true;
}

uint32_t CAreaReader::ReadNumber() {
    uint32_t nNumber = 0;
    for (; IsDigit(m_nAt); ++m_nAt) {
        uint32_t const n = At(m_nAt);
        nNumber = AddDigit(nNumber, n >= u'０' ? n - u'０' : n - '0');
    }
    return nNumber;
}

uint8_t CAreaReader::ReadUnit() {
    for (CUnitName const& unit : UNIT_NAMES)
        if (Skip(unit.strName)) return unit.nUnit;
    return UNIT_NONE;
}

void CAreaReader::Read(uint32_t nBlock) {
    m_list.nBlock = nBlock;
    if (ReadWhole()) return;
    ForEachItem({0, m_text.nCount}, false, [&](CPiece item) { ReadItem(m_list, item); });
    // "第１、２" does not say of what, and the numbers of addresses have no 第.
    if (m_list.bDisorder || (m_list.bCounted && IsUnitOpen())) Mark(0, AREA_VAGUE);
}

// Names that are to be taken as a whole.
bool CAreaReader::ReadWhole() {
    for (char16_t const* psz : {u"上る", u"下る", u"上ル", u"下ル", u"東入", u"西入"}) { // streets of Kyoto
        if (!Contains({0, m_nEnd}, psz)) continue;
        AddPlace({0, m_nEnd});
        return true;
    }
    if (m_text.Text() == "大字") { // folding leaves nothing of it: what is not counted by 丁目
        AddRule(m_list, UNIT_HOUSE, 0, 0, LAST);
        Mark(0, AREA_VAGUE);
        return true;
    }
    uint8_t const nParity = ReadParity({0, m_nEnd});
    if (nParity != 0) Skip(nParity == AREA_ODD ? u"奇数" : u"偶数");
    bool const bNumber = m_nAt != 0 || Is(0, u"番地") || Is(0, u"丁目");
    uint8_t const nUnit = ReadUnit();
    Skip(u"のみ");
    if (bNumber && m_nAt == m_nEnd) AddRule(m_list, nUnit == UNIT_NONE ? uint8_t{UNIT_HOUSE} : nUnit, 0, 0, LAST);
    if (bNumber && m_nAt == m_nEnd) Mark(0, nParity);
    return !m_meaning.vRule.empty();
}

// Calls read for the items between commas, and between dots if asked for, outside brackets.
template <typename F>
void CAreaReader::ForEachItem(CPiece piece, bool bDots, F const& read) {
    size_t const nEnd = m_nEnd;
    size_t nFirst = piece.nFirst;
    m_nEnd = piece.nEnd;
    for (size_t i = piece.nFirst;; ++i) {
        if (IsOpening(i)) i = Closing(i);
        bool const bAnd = Is(i, u"及び");
        if (i < m_nEnd && At(i) != u'、' && !bAnd && !(bDots && At(i) == u'・')) continue;
        m_nEnd = std::min(i, piece.nEnd);
        if (nFirst < m_nEnd) read(CPiece{nFirst, m_nEnd});
        m_nEnd = piece.nEnd;
        if (i >= m_nEnd) break;
        if (bAnd) ++i;
        nFirst = i + 1;
    }
    m_nEnd = nEnd;
}

void CAreaReader::ReadItem(CList& list, CPiece item) {
    size_t nNumber = item.nFirst;
    while (nNumber < item.nEnd && !IsNumber(nNumber))
        nNumber = IsOpening(nNumber) ? Closing(nNumber) + 1 : nNumber + 1;
    if (nNumber >= item.nEnd) {
        ReadPlaces(item);
        return;
    }
    size_t const nFirstRule = m_meaning.vRule.size();
    CPiece const place{item.nFirst, nNumber};
    CList behind;
    behind.nPlace = nNumber;
    CList& numbers = place.Size() == 0 ? list : behind;
    m_nAt = nNumber;
    ReadNumbers(numbers);
    bool const bOne = m_meaning.vRule.size() == nFirstRule + 1;
    uint8_t const nUnit = bOne ? m_meaning.vRule.back().nUnit : uint8_t{UNIT_NONE};
    if (m_nAt < item.nEnd) { // １丁目東; but 北１３号沢 and 国有林７７林班 are just names
        bool const bKeep = nUnit == UNIT_BLOCK || nUnit == UNIT_HOUSE || nUnit == UNIT_LOT;
        if (!bKeep) {
            m_meaning.vRule.resize(nFirstRule);
            numbers.vPending.clear();
        }
        Mark(nFirstRule, AREA_VAGUE);
        AddPlace(item);
    }
    if (place.Size() == 0) return;
    if (place.nFirst !=
        0) { // ８９７番地及び中島５０５〜５１８番地: rules hold a place only where the name begins with it
        m_meaning.vRule.resize(nFirstRule);
        AddPlace(place);
    } else if (bOne && m_nAt == item.nEnd && m_meaning.vRule.back().nFrom >> 16 == m_meaning.vRule.back().nTo >> 16) {
        AddPlace(item); // 東火行１番地 is a name, too
    }
}

// Numbers and ranges with dots between them, from m_nAt on, and what belongs to them.
void CAreaReader::ReadNumbers(CList& list) {
    size_t const nFirstRule = m_meaning.vRule.size();
    ReadRange(list, false);
    for (;;) {
        ReadBrackets(list, true, nFirstRule);
        if (At(m_nAt) != u'・' || !IsNumber(m_nAt + 1)) break;
        ++m_nAt;
        ReadRange(list, true);
    }
    size_t const nSuffix = m_nAt;
    Skip(u"の");
    if (Skip(u"奇数"))
        Mark(nFirstRule, AREA_ODD);
    else if (Skip(u"偶数"))
        Mark(nFirstRule, AREA_EVEN);
    else if (Skip(u"一部"))
        Mark(nFirstRule, AREA_VAGUE);
    else
        m_nAt = nSuffix;
    Skip(u"番地");
    Skip(u"全域");
    Skip(u"のみ");
}

bool CAreaReader::ReadEnd(CRangeEnd& end) {
    if (!IsNumber(m_nAt)) return false;
    Skip(u"第");
    end.nMain = ReadNumber();
    auto const ReadBelow = [&]() {
        if (!IsDigit(m_nAt)) ++m_nAt;
        end.nBelow = ReadNumber();
        end.bBelow = true;
    };
    if (IsJoined(m_nAt)) ReadBelow();
    if (end.bBelow && IsJoined(m_nAt)) { // １−７−１: block, house and number below
        end.nBlock = end.nMain;
        end.nMain = end.nBelow;
        ReadBelow();
    }
    end.nUnit = ReadUnit();
    if (end.nUnit != UNIT_HOUSE || end.bBelow || !(IsDigit(m_nAt) || IsJoined(m_nAt))) return true;
    ReadBelow();
    Skip(u"号");
    return true;
}

// Behind "〜": the other end. False for an open range.
bool CAreaReader::ReadOtherEnd(CRangeEnd const& from, CRangeEnd& to) {
    size_t nNumber = m_nAt;
    if (from.nUnit == UNIT_LOT) // ６４地割〜越中畑６６地割
        while (nNumber < m_nEnd && !IsNumber(nNumber) && !IsOpening(nNumber)) ++nNumber;
    if (!IsNumber(nNumber)) return false;
    m_nAt = nNumber;
    CRangeEnd end;
    ReadEnd(end);
    if (from.bBelow && !end.bBelow) { // ３の２〜６, １番１〜２３号; but ７９９の１〜８６７番地
        bool const bMain = end.nUnit == UNIT_HOUSE && end.nMain >= from.nMain;
        if (!bMain) {
            end.nBelow = end.nMain;
            end.bBelow = true;
            end.nMain = from.nMain;
            if (end.nUnit == UNIT_SUB) end.nUnit = UNIT_HOUSE;
        }
    }
    to = end;
    return true;
}

void CAreaReader::ReadRange(CList& list, bool bDot) {
    if (At(m_nAt) == u'第') list.bCounted = true;
    CRangeEnd from;
    ReadEnd(from);
    if (from.nUnit == UNIT_LOT && At(m_nAt) == u'「' && At(Closing(m_nAt) + 1) == u'〜') return ReadLots(list, from);
    // A number below the one in front: "４の２・４・６", "２８１の２〜９、１１〜１８".
    bool const bBare = !from.bBelow && from.nUnit == UNIT_NONE && list.last.bBelow && from.nMain > list.last.nBelow;
    if (bBare && (bDot || from.nMain < list.last.nMain)) {
        from.nBelow = from.nMain;
        from.bBelow = true;
        from.nMain = list.last.nMain;
        from.nBlock = list.last.nBlock;
    }
    CRangeEnd to = from;
    uint32_t nTo = to.To();
    uint32_t nFrom = from.From();
    bool bVague = false;
    if (Skip(u"〜") || Skip(u"～"))
        nTo = ReadOtherEnd(from, to) ? to.To() : LAST;
    else if (Skip(u"以上") || Skip(u"以降"))
        nTo = LAST;
    else if (Skip(u"以下"))
        nFrom = 0;
    else if (Skip(u"以内")) {
        if (from.bBelow)
            bVague = true; // ５１３の１以内: within that one, wherever
        else
            nFrom = 0;
    }
    if (from.nUnit == UNIT_NONE || to.nUnit == UNIT_NONE) from.nUnit = std::max(from.nUnit, to.nUnit);
    uint8_t const nUnit = std::max(from.nUnit == UNIT_SUB ? from.nUnit : to.nUnit, from.nUnit);
    bool const bOuter = nUnit == UNIT_BLOCK || (nUnit >= UNIT_LOT && nUnit <= UNIT_WARD);
    if (bOuter && IsNumber(m_nAt)) return ReadWithin(list, from, to);
    if (nUnit == UNIT_BLOCK) list.nBlock = 0;
    if (from.nBlock == 0 && (nUnit == UNIT_HOUSE || nUnit == UNIT_NONE)) from.nBlock = list.nBlock;
    if (nUnit == UNIT_BLOCK || from.nBlock != list.last.nBlock) list.bAnyBelow = false;
    if (list.bAnyBelow && from.nMain < list.last.nMain) list.bDisorder = true; // １−５７、５８、７６、４４番地
    if (from.bBelow) list.bAnyBelow = true;
    list.last = to;
    list.last.nBlock = from.nBlock;
    AddRule(list, nUnit, from.nBlock, nFrom, nTo);
    if (bVague && !m_meaning.vRule.empty()) m_meaning.vRule.back().nFlags |= AREA_VAGUE;
}

// "３丁目５", "西５〜８線７９〜１１０番地": numbers within one block, or within each of some lines.
void CAreaReader::ReadWithin(CList& list, CRangeEnd const& from, CRangeEnd const& to) {
    if (from.nUnit == UNIT_BLOCK && from.nMain == to.nMain) {
        Resolve(list, UNIT_BLOCK);
        list.nBlock = from.nMain;
        list.last = CRangeEnd();
        return ReadRange(list, false);
    }
    Resolve(list, from.nUnit);
    size_t const nFirstRule = m_meaning.vRule.size();
    CList inner;
    inner.nPlace = list.nPlace;
    inner.nFlags = list.nFlags;
    ReadRange(inner, false);
    std::vector<tagAREARULE> const vInner(m_meaning.vRule.begin() + static_cast<std::ptrdiff_t>(nFirstRule),
                                          m_meaning.vRule.end());
    m_meaning.vRule.resize(nFirstRule);
    if (vInner.size() != 1 || from.nMain > to.nMain || to.nMain - from.nMain >= REPEAT_LIMIT) return;
    for (uint32_t n = from.nMain; n <= to.nMain; ++n)
        for (tagAREARULE rule : vInner) {
            if (from.nUnit == UNIT_BLOCK) {
                rule.nBlock = n;
            } else { // what is below the house number is left out
                bool const bWhole = (rule.nFrom & ALL_BELOW) == 0 && (rule.nTo & ALL_BELOW) == ALL_BELOW;
                if (!bWhole) rule.nFlags |= AREA_VAGUE;
                rule.nUnit = from.nUnit;
                rule.nFrom = Value(n, rule.nFrom >> 16);
                rule.nTo = Value(n, rule.nTo >> 16);
            }
            m_meaning.vRule.push_back(rule);
        }
}

// "第２地割「７０〜１３６」〜第４地割「３〜１１」": of the lots at both ends just these numbers. m_nAt is at the bracket.
void CAreaReader::ReadLots(CList& list, CRangeEnd const& first) {
    uint32_t nFrom = 0;
    uint32_t nTo = ALL_BELOW;
    bool const bExcept = !ReadLotPart(nFrom, nTo);
    Skip(u"〜");
    CRangeEnd last = first;
    if (!ReadOtherEnd(first, last)) return;
    uint32_t nLastFrom = 0;
    uint32_t nLastTo = ALL_BELOW;
    if (At(m_nAt) == u'「') ReadLotPart(nLastFrom, nLastTo);
    if (last.nMain <= first.nMain) return;
    if (bExcept) { // 第４０地割「５７番地１２５、１７６を除く」: of number 57 some, and no more can be said of it
        AddRule(list, UNIT_LOT, 0, Value(first.nMain, 0), Value(first.nMain, nFrom - 1));
        AddRule(list, UNIT_LOT, 0, Value(first.nMain, nFrom), Value(first.nMain, nTo));
        m_meaning.vRule.back().nFlags |= AREA_VAGUE;
        nFrom = nTo + 1;
        nTo = ALL_BELOW;
    }
    AddRule(list, UNIT_LOT, 0, Value(first.nMain, nFrom), Value(first.nMain, nTo));
    if (last.nMain - first.nMain > 1)
        AddRule(list, UNIT_LOT, 0, Value(first.nMain + 1, 0), Value(last.nMain - 1, ALL_BELOW));
    AddRule(list, UNIT_LOT, 0, Value(last.nMain, nLastFrom), Value(last.nMain, nLastTo));
}

// The numbers in the bracket at m_nAt: the main numbers of the first range. False when they are left out; then there is
// a number in front of them and one behind.
bool CAreaReader::ReadLotPart(uint32_t& nFrom, uint32_t& nTo) {
    size_t const nClosing = Closing(m_nAt);
    bool const bExcept = Contains({m_nAt, nClosing}, u"を除く");
    ++m_nAt;
    CRangeEnd from;
    if (ReadEnd(from)) {
        CRangeEnd to = from;
        if (Skip(u"〜")) ReadOtherEnd(from, to);
        nFrom = from.nMain;
        nTo = std::max(to.nMain, nFrom);
    }
    if (bExcept) { // something is in front of and behind what is left out
        nFrom = std::min(std::max(nFrom, 1u), ALL_BELOW - 1);
        nTo = std::min(nTo, ALL_BELOW - 1);
    }
    m_nAt = std::min(nClosing + 1, m_nEnd);
    return !bExcept;
}

// The brackets at m_nAt: exceptions, places, 奇数. bNumbers: numbers stand in front of them, else a place.
void CAreaReader::ReadBrackets(CList& list, bool bNumbers, size_t nFirstRule) {
    while (IsOpening(m_nAt)) {
        size_t const nClosing = Closing(m_nAt);
        CPiece inner{m_nAt + 1, nClosing};
        size_t nNext = std::min(nClosing + 1, m_nEnd);
        size_t const nExcept = std::u16string_view(u"を除く").size();
        bool bExcept = inner.Size() > nExcept && Is(nClosing - nExcept, u"を除く");
        if (bExcept) inner.nEnd -= nExcept;
        if (Is(nNext, u"以外")) {
            bExcept = true;
            nNext += 2;
        }
        if (uint8_t const nParity = ReadParity(inner)) {
            Mark(nFirstRule, nParity);
            m_nAt = nNext;
            continue;
        }
        CList numbers;
        numbers.nPlace = list.nPlace;
        numbers.nBlock = list.nBlock;
        numbers.nFlags = static_cast<uint8_t>(list.nFlags | (bExcept ? AREA_EXCEPT : 0));
        if (bNumbers && !m_meaning.vRule.empty() && m_meaning.vRule.back().nUnit == UNIT_BLOCK)
            numbers.nBlock = m_meaning.vRule.back().nFrom >> 16; // １丁目「１１を除く」
        ForEachItem(inner, true, [&](CPiece item) {
            m_nAt = item.nFirst;
            if (IsNumber(m_nAt) && (bExcept || !bNumbers)) {
                ReadNumbers(numbers);
                if (m_nAt < item.nEnd) Mark(nFirstRule, AREA_VAGUE);
            } else if (bExcept) {
                Mark(nFirstRule, AREA_VAGUE);
            } else if (IsNumber(m_nAt)) {
                Mark(nFirstRule, AREA_VAGUE);
            } else {
                AddPlace(item);
            }
        });
        m_nAt = nNext;
    }
}

// An item without a number outside brackets: "豊岡・東町", "渡戸沢「筍沢温泉」", "下久保「１７４を除く」".
void CAreaReader::ReadPlaces(CPiece piece) {
    ForEachItem(piece, true, [&](CPiece item) {
        size_t nBracket = item.nFirst;
        while (nBracket < item.nEnd && !IsOpening(nBracket)) ++nBracket;
        size_t const nFirstRule = m_meaning.vRule.size();
        CList numbers;
        numbers.nPlace = nBracket;
        m_nAt = nBracket;
        if (item.nFirst == 0) {
            ReadBrackets(numbers, nBracket == 0, nFirstRule);
        } else if (nBracket < item.nEnd) {
            CPiece const inner{nBracket + 1, Closing(nBracket)};
            ForEachItem(inner, true, [&](CPiece name) { AddPlace(name); });
        }
        // 中一里山「９番地の４、１２番地」 is no more of the place than that.
        bool bPart = false;
        for (size_t i = nFirstRule; i < m_meaning.vRule.size(); ++i)
            bPart = bPart || (m_meaning.vRule[i].nFlags & AREA_EXCEPT) == 0;
        if (!bPart) AddPlace({item.nFirst, nBracket});
    });
}

uint8_t CAreaReader::ReadParity(CPiece piece) const {
    if (Contains(piece, u"奇数")) return AREA_ODD;
    return Contains(piece, u"偶数") ? uint8_t{AREA_EVEN} : uint8_t{0};
}

void CAreaReader::AddRule(CList& list, uint8_t nUnit, uint32_t nBlock, uint32_t nFrom, uint32_t nTo) {
    Resolve(list, nUnit);
    if (nFrom > nTo) return;
    if (nUnit == UNIT_NONE) list.vPending.push_back(m_meaning.vRule.size());
    tagAREARULE const rule{0, nUnit, list.nFlags, static_cast<uint16_t>(list.nPlace), nBlock, nFrom, nTo};
    m_meaning.vRule.push_back(rule);
}

// The unit of all numbers in front that stand without one.
void CAreaReader::Resolve(CList& list, uint8_t nUnit) {
    if (nUnit == UNIT_NONE) return;
    if (list.nFirstUnit == UNIT_NONE) list.nFirstUnit = nUnit;
    for (size_t const n : list.vPending) {
        if (n >= m_meaning.vRule.size()) continue;
        tagAREARULE& rule = m_meaning.vRule[n];
        bool const bWhole = (rule.nFrom & ALL_BELOW) == 0 && (rule.nTo & ALL_BELOW) == ALL_BELOW;
        if (nUnit == UNIT_HOUSE || (bWhole && rule.nBlock == 0)) rule.nUnit = nUnit;
    }
    list.vPending.clear();
}

void CAreaReader::Mark(size_t nFirstRule, uint8_t nFlags) {
    for (size_t i = nFirstRule; i < m_meaning.vRule.size(); ++i)
        if ((m_meaning.vRule[i].nFlags & AREA_EXCEPT) == 0) m_meaning.vRule[i].nFlags |= nFlags;
}

// No place is empty, a number, その他, a Latin letter (白滝Ｂ・Ｃ), or a part of a number.
void CAreaReader::AddPlace(CPiece piece) {
    if (piece.Size() == 0 || Is(piece.nFirst, u"その他") || m_text.abInNumber[piece.nFirst]) return;
    if (piece.Size() == 1 && m_text.anToken[piece.nFirst] < 0x80) return;
    if (piece.nEnd < m_text.nCount && m_text.abInNumber[piece.nEnd]) return;
    size_t nAt = piece.nFirst;
    while (nAt < piece.nEnd && (IsDigit(nAt) || m_text.anToken[nAt] == '-')) ++nAt;
    size_t nUnit = 0;
    for (CUnitName const& unit : UNIT_NAMES)
        if (nAt > piece.nFirst && Is(nAt, unit.strName)) nUnit = std::max(nUnit, unit.strName.size());
    if (nAt + nUnit >= piece.nEnd) return;
    m_meaning.vPlace.push_back({static_cast<uint16_t>(piece.nFirst), static_cast<uint16_t>(piece.Size())});
}

// Whether a list goes on in the next name: together they would have been too long for one.
bool GoesOn(std::string_view strName, std::string_view strNext) {
    constexpr std::string_view COMMA = "、";
    return strName.size() + COMMA.size() + std::min(strNext.find(COMMA), strNext.size()) > NAME_LIMIT;
}

// --- house numbers -------------------------------------------------------------------------------------------------

// The tokens of the words that stand in house numbers: characters may fold to older forms of themselves.
struct CNumberTokens {
    struct CUnit {
        uint16_t anToken[2];
        size_t nTokens;
        uint8_t nUnit;
    };
    CUnit aUnit[std::size(UNIT_NAMES)];
    uint16_t nCounted = 0; // 第
    uint16_t nOf = 0;      // の
    uint16_t nTown = 0;    // 町, 通 and 丁 behind a unit: the number belongs to a name
    uint16_t nStreet = 0;
    uint16_t nBlock = 0;

    CNumberTokens() {
        constexpr char const* NAMES[] = {"丁目", "丁", "番地", "番", "地割", "線", "条", "区", "号"};
        static_assert(std::size(NAMES) == std::size(UNIT_NAMES));
        CFoldedText text;
        for (size_t i = 0; i < std::size(NAMES); ++i) {
            text.Fold(NAMES[i]);
            aUnit[i] = {{text.anToken[0], text.anToken[1]}, UNIT_NAMES[i].strName.size(), UNIT_NAMES[i].nUnit};
        }
        text.Fold("第の町通丁");
        nCounted = text.anToken[0];
        nOf = text.anToken[1];
        nTown = text.anToken[2];
        nStreet = text.anToken[3];
        nBlock = text.anToken[4];
    }
};

CNumberTokens const& NumberTokens() {
    static CNumberTokens const tokens;
    return tokens;
}

// A letter, kana or kanji; no bracket, comma or sign.
bool IsWord(uint16_t nToken) {
    return (nToken >= 'a' && nToken <= 'z') || (nToken >= u'ぁ' && nToken != u'・');
}

} // namespace

CAreaMeaning ReadArea(std::string_view strName, std::vector<std::string_view> const& vNext, uint32_t nBlock) {
    CAreaReader reader(strName);
    reader.Read(nBlock);
    bool bGoesOn = !vNext.empty() && GoesOn(strName, vNext.front());
    if (bGoesOn) reader.Meaning().nOpenBlock = reader.LastBlock();
    for (size_t i = 0; bGoesOn && reader.IsUnitOpen(); ++i) {
        CAreaReader next(vNext[i]);
        next.Read(0);
        reader.SetOpenUnit(next.FirstUnit());
        bGoesOn = i + 1 < vNext.size() && GoesOn(vNext[i], vNext[i + 1]);
    }
    return std::move(reader.Meaning());
}

CHouseNumber ReadHouseNumber(CFoldedText& text, size_t nFirst) {
    CNumberTokens const& tokens = NumberTokens();
    CHouseNumber number;
    auto const Token = [&](size_t n) -> uint16_t {
        return n < CFoldedText::LIMIT && text.Has(n + 1) ? text.anToken[n] : uint16_t{0};
    };
    auto const IsDigit = [&](size_t n) { return IsDigitToken(Token(n)); };
    size_t nAt = nFirst;
    while (number.nParts < CHouseNumber::PARTS) {
        bool const bCounted = Token(nAt) == tokens.nCounted && IsDigit(nAt + 1);
        if (bCounted) ++nAt;
        if (!IsDigit(nAt)) break;
        if (number.nParts == 0 && text.anToken[nAt] == '0') break; // 011-251-1111: a telephone's
        CHouseNumber::CPart part{0, UNIT_NONE};
        do part.nNumber = AddDigit(part.nNumber, text.anToken[nAt++] - uint32_t{'0'});
        while (IsDigit(nAt) && text.abInNumber[nAt]);
        for (CNumberTokens::CUnit const& unit : tokens.aUnit) {
            if (Token(nAt) != unit.anToken[0] || (unit.nTokens == 2 && Token(nAt + 1) != unit.anToken[1])) continue;
            part.nUnit = unit.nUnit;
            nAt += unit.nTokens;
            break;
        }
        uint16_t const nBehind = part.nUnit != UNIT_NONE ? Token(nAt) : uint16_t{0};
        if (nBehind != 0 && (nBehind == tokens.nTown || nBehind == tokens.nStreet || nBehind == tokens.nBlock))
            break; // ３番町, １条通, １番丁
        bool const bJoined = Token(nAt) == '-' || Token(nAt) == tokens.nOf;
        if (part.nUnit == UNIT_NONE && bCounted) break; // 第20ビル
        if (part.nUnit == UNIT_NONE && !bJoined && number.nParts == 0) {
            bool const bTouched = IsWord(Token(nAt)) && text.anBegin[nAt] == text.anEnd[nAt - 1];
            if (bTouched) break; // 20ビル, 5F; but 25 ビル, 1-2-3ビル
        }
        number.aPart[number.nParts++] = part;
        number.nTokens = nAt - nFirst;
        if (bJoined)
            ++nAt;
        else if (part.nUnit == UNIT_NONE)
            break;
    }
    return number;
}

namespace {

using CPart = CHouseNumber::CPart;

EFit Compare(tagAREARULE const& rule, CPart const* pMain, CPart const* pEnd) {
    if (pMain >= pEnd) return EFit::Maybe;
    uint32_t const nMain = std::min(pMain->nNumber, NUMBER_LIMIT);
    bool const bBelow = pMain + 1 < pEnd && rule.nUnit != UNIT_BLOCK && pMain[1].nUnit != UNIT_BLOCK;
    uint32_t const nBelow = bBelow ? std::min(pMain[1].nNumber, NUMBER_LIMIT) : 0;
    uint32_t const nFirst = Value(nMain, nBelow);
    uint32_t const nLast = bBelow ? nFirst : Value(nMain, ALL_BELOW);
    if (nLast < rule.nFrom || nFirst > rule.nTo) return EFit::No;
    EFit nFit = nFirst >= rule.nFrom && nLast <= rule.nTo ? EFit::Yes : EFit::Maybe;
    if ((rule.nFlags & (AREA_ODD | AREA_EVEN)) != 0) {
        // Of numbers below one main number these are counted.
        bool const bCountBelow = rule.nFrom >> 16 == rule.nTo >> 16 && rule.nTo != Value(nMain, ALL_BELOW);
        if (bCountBelow && !bBelow) return EFit::Maybe;
        bool const bOdd = (bCountBelow ? nBelow : nMain) % 2 != 0;
        if (bOdd != ((rule.nFlags & AREA_ODD) != 0)) nFit = EFit::No;
    }
    return nFit;
}

bool IsBare(CPart const& part) {
    return part.nUnit == UNIT_NONE;
}

// A number of houses, which may have to lie in a block.
EFit FitsHouse(tagAREARULE const& rule, CPart const* pFirst, CPart const* pEnd) {
    bool const bBlock = pFirst->nUnit == UNIT_BLOCK;
    if (rule.nBlock != 0) {
        if ((bBlock || IsBare(*pFirst)) && pFirst->nNumber == rule.nBlock) return Compare(rule, pFirst + 1, pEnd);
        // The block may not be said: 大江６５１番地, 大江６５１.
        bool const bNoBlock = pFirst->nUnit == UNIT_HOUSE || (IsBare(*pFirst) && pFirst + 1 == pEnd);
        return bNoBlock && Compare(rule, pFirst, pEnd) != EFit::No ? EFit::Maybe : EFit::No;
    }
    if (!bBlock) return Compare(rule, IsBare(*pFirst) || pFirst->nUnit == UNIT_HOUSE ? pFirst : pFirst + 1, pEnd);
    EFit const nFit = Compare(rule, pFirst + 1, pEnd);
    // A number of which the name does not say what it counts may be the block's.
    bool const bMaybeBlock = rule.nUnit == UNIT_NONE && Compare(rule, pFirst, pFirst + 1) != EFit::No;
    return nFit == EFit::No && bMaybeBlock ? EFit::Maybe : nFit;
}

// All blocks, or all houses outside blocks: 越ケ谷（丁目） beside 越ケ谷（番地）. A written unit decides; a small bare number may
// be either's (鴨部1-2), unless odd or even ones are asked for: the other half is then filed the same way.
EFit FitsWhole(tagAREARULE const& rule, CPart const* pFirst, CPart const* pEnd) {
    CPart const* const pBlock =
        std::find_if(pFirst, pEnd, [](CPart const& part) { return part.nUnit == UNIT_BLOCK; });
    if (pBlock != pEnd) return rule.nUnit == UNIT_BLOCK ? Compare(rule, pBlock, pEnd) : EFit::No;
    bool const bEither = IsBare(*pFirst) && pFirst->nNumber < BLOCK_LIMIT;
    if (rule.nUnit == UNIT_BLOCK && !bEither) return EFit::No;
    EFit const nFit = Compare(rule, IsBare(*pFirst) || pFirst->nUnit == UNIT_HOUSE ? pFirst : pFirst + 1, pEnd);
    return bEither && (rule.nFlags & (AREA_ODD | AREA_EVEN)) == 0 ? std::min(nFit, EFit::Maybe) : nFit;
}

} // namespace

EFit Fits(tagAREARULE const& rule, CHouseNumber const& number) {
    CPart const* const pFirst = number.aPart;
    CPart const* const pEnd = pFirst + std::min(number.nParts, CHouseNumber::PARTS);
    if (pFirst == pEnd) return EFit::Maybe;
    bool const bWhole = rule.nFrom == 0 && rule.nTo == LAST && rule.nBlock == 0;
    if (bWhole && (rule.nUnit == UNIT_BLOCK || rule.nUnit == UNIT_HOUSE)) return FitsWhole(rule, pFirst, pEnd);
    if (rule.nUnit == UNIT_NONE || rule.nUnit == UNIT_HOUSE) return FitsHouse(rule, pFirst, pEnd);
    CPart const* const pWritten =
        std::find_if(pFirst, pEnd, [&](CPart const& part) { return part.nUnit == rule.nUnit; });
    bool const bBareCounts = rule.nUnit == UNIT_BLOCK || rule.nUnit == UNIT_LOT;
    // 号 stands behind 番 as well; a subdivision's own is the first one.
    if (pWritten != pEnd && (rule.nUnit != UNIT_SUB || pWritten == pFirst)) return Compare(rule, pWritten, pEnd);
    return bBareCounts && IsBare(*pFirst) ? Compare(rule, pFirst, pEnd) : EFit::No;
}

} // namespace qeadrs
