// CRecipe - damage to a dictionary in words.
//
//   CRecipe recipe("set node[東京都 千代田区 丸の内].nParent = none");
//   EXPECT_THAT(LinesOf(recipe.Apply(SmallWorld())), ElementsAre("parent: node 9 (丸の内) has no parent"));
//
// A recipe is one or more steps with ";" between them. The checksum is repaired behind the last one unless one of
// them is "keep the checksum".
//
//   set node[N].FIELD = VALUE      nLevel, abUnused, nName, nInfo, nParent, nChildCount, nFirstChild
//   set entry[N].FIELD = VALUE     nCode, nNode
//   set city[N] = VALUE            a place of the city index; office[N] one of the organisation index
//   set header[N] = VALUE          a word of the header
//   set text[N] = "..."            bytes of the string area from there on, "\0" for a NUL
//   set byte[N] = VALUE            word[N] for four bytes from there on
//   flip bit B of byte N
//   copy N bytes from N to N       exchange N bytes at N and at N
//   cut to N bytes                 shorten to N bytes: the same, and the header says so
//   add N bytes                    zeros, behind the last
//   append the index               the text index, at byte "size": that of the records as the steps before left them
//
// N and VALUE are sums and differences of numbers (decimal or 0x...), "none" (0xFFFFFFFF), "superseded"
// (0x80000000), "size" (the file's), "nodes", "entries", "area" (how many), any place that can be set, and the index of a node or an
// entry: node[NAMES], names from the prefecture down with blanks between them and "-" for a nameless town, or
// entry[CODE], the first one of seven digits. All of them are those of the dictionary before the first step.
#ifndef QEADRS_TESTS_BUILDER_CHECKRECIPE_H
#define QEADRS_TESTS_BUILDER_CHECKRECIPE_H

#include "tests/builder/CheckWorld.h"

#include <string>

class CRecipe {
  public:
    explicit CRecipe(std::string strSteps) : m_strSteps(std::move(strSteps)) {}

    // Throws std::logic_error for a recipe that cannot be followed.
    CImageBytes Apply(CImageBytes const& vSound);

  private:
    struct CPlace {
        size_t nOffset;
        size_t nBytes;
    };

    [[noreturn]] void Fail() const;
    void Skip();
    bool Take(char const* psz);
    void Need(char const* psz);

    void DoStep();
    void SetText();
    unsigned char* Bytes(uint32_t nOffset, uint32_t nBytes);
    uint32_t Sum();
    uint32_t Value();
    CPlace Place();
    uint32_t Node();
    uint32_t Entry();
    bool IsIndex() const;
    std::string Name(uint32_t nNode) const;
    std::string TextAt(uint32_t nOffset) const;

    std::string m_strSteps;
    CImageBytes m_vSound, m_vByte;
    char const* m_p = nullptr; // what of the step at hand is still to be read
};

#endif
