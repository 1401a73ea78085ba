// CAddressText - reads addresses as people write them: from text to the places of a dictionary.
//
//   qeadrs::CAddressText text(dic);                       // dic: a CAddrDic with an image
//   QETEXTREADING const& reading = text.Read("060-0042 札幌市中央区大通西1-2-3");
//   puts(reading.place.pszPref);                          // 北海道, supplied: the text lacks it
//
// The engine compares bytes; this layer turns what people write into what the dictionary holds, and changes nothing in
// the engine. qetext.h describes the records and what the fields mean.
//
// Index     Names are found in folded form in the index that the compiler puts into the dictionary's fifth table. A
//           dictionary without one, or with one of other foldings, gets it built at the first reading (the country: 3 MB,
//           13 milliseconds). No name is answered that was not compared with the dictionary's own; which numbers belong to
//           which subdivision of a town is believed (`qeadrs-dic check` proves it).
// Time      Linear in the text; only its first 255 characters, blanks not counted, are looked at for names.
// Lifetime  Texts of an answer lead into the dictionary's image and live as long as it; the answer and its candidates live
//           until the next call.
// Threads   One object, one thread; objects over the same image are independent.
// Failure   Nothing throws but std::bad_alloc.
#ifndef QEADRS_TEXT_ADDRESSTEXT_H
#define QEADRS_TEXT_ADDRESSTEXT_H

#include "dic/AddrDic.h"
#include "text/qetext.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace qeadrs {

// One step of a reading, for people: `qeadrs explain`.
struct CTextStep {
    std::string strStep; // snake_case, for programs: "code", "city", "town", "area", ...
    QETEXTSPAN span;     // of the text that it is about; length 0 for none
    std::string strWhat; // what was looked at and what came of it, in a few words
};

class QETEXT_API CAddressText {
  public:
    // Looks at the index in the dictionary; reads and builds nothing yet. REQUIRES: the dictionary stays bound to its
    // image while this object lives.
    explicit CAddressText(CAddrDic const& dic);
    ~CAddressText();
    CAddressText(CAddressText const&) = delete;
    CAddressText& operator=(CAddressText const&) = delete;

    // Reads one text. nOptions: QETEXT_RENEW or 0.
    QETEXTREADING const& Read(std::string_view strText, uint32_t nOptions = 0);

    // Reads nCount independent texts into pReading, in their order, probing for several of them at once.
    void ReadBatch(std::string_view const* pText, size_t nCount, QETEXTREADING* pReading, uint32_t nOptions = 0);

    // Reads one text and tells how: the steps in the order in which they were taken.
    QETEXTREADING const& Explain(std::string_view strText, std::vector<CTextStep>& vStep, uint32_t nOptions = 0);

    // Whether the dictionary's own index serves; otherwise one is built at the first reading.
    bool HasIndex() const;

    // The address in the spelling of the dictionary, the rest as it is written: prefecture, city, town, rest. "" where no
    // city was found. A street of Kyoto is left out: the engine finds no town behind one. REQUIRES: the reading is of
    // this text.
    static std::string Canonical(QETEXTREADING const& reading, std::string_view strText);

  private:
    class CImplementation;
    std::unique_ptr<CImplementation> m_pImplementation;
};

// The names of the bits in nFoldings and nSupplied, and of a sureness, snake_case: "number", "kanji", "prefecture".
QETEXT_API std::vector<std::string_view> FoldingNames(uint32_t nFoldings);
QETEXT_API std::vector<std::string_view> SuppliedNames(uint32_t nSupplied);
QETEXT_API std::string_view SurenessName(uint32_t nSureness);

// The index of a dictionary's names in folded form, as the compiler puts it into the fifth table (docs/format.md).
// Equal dictionaries, equal bytes, in every word size. What the dictionary's own fifth table holds does not matter.
QETEXT_API std::vector<unsigned char> BuildTextIndex(CAddrDic const& dic);

// The bytes of the index that the dictionary has, empty when its fifth table holds none of this format and of these
// foldings.
QETEXT_API std::basic_string_view<unsigned char> TextIndex(CAddrDic const& dic);

// A name in folded form, as UTF-8 for people and tests: "旭ヶ丘", "旭ケ丘" and "旭が丘" are one.
QETEXT_API std::string FoldName(std::string_view strName);

} // namespace qeadrs

#endif
