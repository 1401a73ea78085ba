// DictionaryFile.h - a dictionary file as the tools look at it: read, not mapped, and not trusted.
#ifndef QEADRS_BUILDER_DICTIONARYFILE_H
#define QEADRS_BUILDER_DICTIONARYFILE_H

#include "builder/EditionDate.h"
#include "builder/ImageWriter.h"
#include "dic/AddrDic.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace qe {

// "official tables", "SKK dictionaries", "sample", "unknown".
char const* SourceText(uint32_t nSource);

class CDictionaryFile {
  public:
    // Reads the file. Throws CBuildError when it cannot be read, is no dictionary, is of a newer format, is not as
    // long as its header says, or has a table that does not lie within it.
    explicit CDictionaryFile(std::string const& strPath);

    bool IsIntact() const; // the checksum is right
    uint32_t Word(unsigned nWord) const;
    size_t Size() const { return m_vByte.size(); }
    std::vector<unsigned char> const& Bytes() const { return m_vByte; }

  private:
    std::vector<unsigned char> m_vByte;
};

// Header, counts, edition and sizes of the areas: aligned text, or one JSON object.
void PrintInfo(CDictionaryFile const& file, bool bJson, std::ostream& out);

// The tree down to nLevel (7: all of it), one line for each node: two blanks for each step below the prefecture,
// level, name ("-" for a nameless town), then after tabs reading, code and old code as far as the node has them.
void PrintTree(CDictionaryFile const& file, unsigned nLevel, std::ostream& out);

} // namespace qe

#endif
