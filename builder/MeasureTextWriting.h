// MeasureTextWriting.h - an address in its parts, and the ways in which people write it otherwise than the tables do.
// What is known here about spelling is independent of the library's own foldings: it asks, it does not answer.
#ifndef QEADRS_BUILDER_MEASURETEXTWRITING_H
#define QEADRS_BUILDER_MEASURETEXTWRITING_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qe {

// Numbers that only depend on the seed: the same in every word size and with every library.
class CRandom {
  public:
    explicit CRandom(uint64_t nSeed) : m_nState(nSeed) {}
    // REQUIRES: nLimit > 0.
    uint32_t Below(uint32_t nLimit) { return static_cast<uint32_t>((Next() >> 32) * nLimit >> 32); }
    template <typename T, size_t COUNT>
    T const& Of(T const (&aChoice)[COUNT]) {
        return aChoice[Below(static_cast<uint32_t>(COUNT))];
    }

  private:
    uint64_t Next() {
        m_nState += 0x9E3779B97F4A7C15u;
        uint64_t n = m_nState;
        n = (n ^ (n >> 30)) * 0xBF58476D1CE4E5B9u;
        n = (n ^ (n >> 27)) * 0x94D049BB133111EBu;
        return n ^ (n >> 31);
    }

    uint64_t m_nState;
};

// The parts of an address in the order in which they are written. An empty one is left out.
struct CWritten {
    std::string strCode; // with what parts it from the address: "〒060-0042 "
    std::string strPref;
    std::string strCounty; // 余市郡, with strCity 余市町
    std::string strCity;
    std::string strStreet; // of Kyoto
    std::string strTown;
    std::string strPlace; // below the town: a name of its list, a building and floor
    std::string strNumber;
    std::string strBehind; // a building that the tables do not know
    bool bHalfWidth = false;

    // The text. Two numbers never run into each other: "二十一 １－２－３".
    std::string Text() const;
};

// Full-width ASCII and katakana in half width; everything else as it is.
std::string ToHalfWidth(std::string_view str);

// Each returns whether it changed anything.
bool SwapKe(std::string& str);                         // 旭ケ丘, 旭ヶ丘: one for the other, behind a kanji
bool WriteGa(std::string& str);                        // 旭が丘
bool SwapNo(std::string& str);                         // 丸の内, 丸ノ内: one for the other, behind a kanji
bool TakeOutAza(std::string& str);                     // 大字
bool WriteOldKanji(std::string& str, CRandom& random); // one kanji that has an old form: 浜町, 濱町
bool RewriteNumber(std::string& str, CRandom& random); // 北八条西: 北８条西, 北8条西; 二十一丁目: 二一丁目

// The text with one form of each kanji that is written in several, and without 々.
std::string WithNewKanji(std::string_view str);

// A street and where from its crossing, as people in Kyoto write it before the town: "烏丸通四条上る".
std::string StreetOfKyoto(CRandom& random);
// A building that no table lists, with a blank before it: " サンハイツ２０３号室".
std::string SomeBuilding(CRandom& random);
// "〒060-0042", "０６０００４２　", ...
std::string CodeInFront(std::string_view strCode, CRandom& random);

} // namespace qe

#endif
