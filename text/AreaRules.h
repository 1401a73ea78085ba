// AreaRules.h - what the names of subdivisions say: numbers, ranges of numbers, and place names.
//
//   １〜１９丁目                     town blocks 1 to 19
//   １、２丁目, ４００、４００−２番地  several; the unit stands behind the last
//   第４０地割〜第４５地割            lots of land
//   ４３０番地以上, １７００番地〜     open ranges
//   ３丁目５, ４丁目５５〜１１４番地    house numbers within a town block
//   東火行１番地, 西５〜８線７９〜１１０番地   a number below a place name
//   ４３０番地以上「１７７０−１〜２を除く」  with exceptions
//   上勇知; 土手畑・藤場; 渡戸沢「筍沢温泉」; 第２２地割〜第２３地割（一区、二区）   place names
#ifndef QEADRS_TEXT_AREARULES_H
#define QEADRS_TEXT_AREARULES_H

#include "text/FoldedText.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>
#include <vector>

namespace qeadrs {

// What a number counts.
enum EAreaUnit : uint8_t {
    UNIT_NONE = 0,  // a bare number: that of the house (番地) unless the text says another unit
    UNIT_BLOCK = 1, // 丁目, 丁
    UNIT_HOUSE = 2, // 番地, 番
    UNIT_LOT = 3,   // 地割
    UNIT_LINE = 4,  // 線
    UNIT_ROW = 5,   // 条
    UNIT_WARD = 6,  // 区
    UNIT_SUB = 7,   // 号
};

enum EAreaRuleFlag : uint8_t {
    AREA_EXCEPT = 1, // numbers that the subdivision's other rules and places leave out
    AREA_ODD = 2,    // odd numbers only
    AREA_EVEN = 4,   // even numbers only
    AREA_VAGUE = 8,  // the name says more than this rule does: a number that fits is a candidate, not the answer
};

// One condition of a subdivision, as the index holds it. Numbers are main number * 65,536 + number below it (５−２: the
// fifth, second), so that a range of main numbers ends at ...FFFF.
//
//   off size  field    meaning
//     0    4  nNode    node of the subdivision
//     4    1  nUnit    EAreaUnit
//     5    1  nFlags   EAreaRuleFlag
//     6    2  nPlace   tokens of the name, from its first, that have to stand in front of the number; 0 for none
//     8    4  nBlock   town block (丁目) that the number has to lie in; 0 for none
//    12    4  nFrom    first ...
//    16    4  nTo      ... and last number
struct tagAREARULE {
    uint32_t nNode;
    uint8_t nUnit;
    uint8_t nFlags;
    uint16_t nPlace;
    uint32_t nBlock;
    uint32_t nFrom;
    uint32_t nTo;
};
static_assert(sizeof(tagAREARULE) == 20 && alignof(tagAREARULE) == 4, "on disk: 32 and 64 bit agree");
static_assert(std::is_trivially_copyable_v<tagAREARULE> && std::is_standard_layout_v<tagAREARULE>);

// A place name within the name of a subdivision: tokens [nFirst, nFirst + nCount) of its folded form.
struct CAreaPlace {
    uint16_t nFirst;
    uint16_t nCount;
};

// What one subdivision's name says. Numbers that a rule leaves out (AREA_EXCEPT) are left out of its places, too.
struct CAreaMeaning {
    std::vector<tagAREARULE> vRule; // nNode is left 0
    std::vector<CAreaPlace> vPlace; // of the folded name
    uint32_t nOpenBlock = 0;        // the block that a list which goes on in the next name goes on in; 0 for none
};
// vNext: the names of the subdivisions behind it, nearest first, for a unit that stands only behind the last number of a
// list that goes on there. nBlock: nOpenBlock of the subdivision right in front, 0 for the first one. The name may be
// any bytes; there are at most 64 rules for each token.
CAreaMeaning ReadArea(std::string_view strName, std::vector<std::string_view> const& vNext, uint32_t nBlock = 0);

// The numbers behind a town, as far as they are read: "２丁目３番４号", "2-3-4", "第４０地割１２番地５". None where the first
// begins with 0 (a telephone's), is counted with 第 and no unit, or stands alone and touches a word: "20ビル", "5F".
struct CHouseNumber {
    struct CPart {
        uint32_t nNumber; // at most 65,535: larger ones count as that
        uint8_t nUnit;    // as it is written; UNIT_NONE where a dash or nothing stands behind it
    };
    static constexpr size_t PARTS = 4;
    CPart aPart[PARTS];
    size_t nParts = 0;
    size_t nTokens = 0; // tokens that were read
};
CHouseNumber ReadHouseNumber(CFoldedText& text, size_t nFirst); // folds as much of the text as it needs

// Whether the number fits the rule, apart from the rule's place: Maybe where the text does not say enough (the rule asks
// for a house number, and the text ends behind the town block; the rule asks for any block, and a bare number may be a
// house's).
enum class EFit { No, Maybe, Yes };
EFit Fits(tagAREARULE const& rule, CHouseNumber const& number);

} // namespace qeadrs

#endif
