// TextTable.h - the fifth table of a dictionary file: the index of folded names (docs/format.md, "Text index").
//
//   CImage image = compiler.Compile(nEdition, ESource::Official);
//   AppendTextIndex(image, statistics);
//
// The index is made of the records alone, and so whoever has them can make it anew and compare.
#ifndef QEADRS_BUILDER_TEXTTABLE_H
#define QEADRS_BUILDER_TEXTTABLE_H

#include "builder/ImageWriter.h"
#include "builder/Statistics.h"

#include <optional>
#include <vector>

namespace qe {

// Where the index lies and what it says of itself. Nothing of it is looked at, but that these words can be read.
struct CTextTable {
    uint32_t nOffset; // in the file
    uint32_t nSize;   // in bytes, by its own word
    uint32_t nFoldings;
    uint32_t nLayout;

    // Whether both are for the same readers.
    bool IsLike(CTextTable const& other) const { return nFoldings == other.nFoldings && nLayout == other.nLayout; }
};

// Nothing when the fifth table is empty, or something else than such an index. REQUIRES: a whole header.
std::optional<CTextTable> FindTextTable(std::vector<unsigned char> const& vByte);

// The same of an index by itself. REQUIRES: one as it is built.
CTextTable ReadTextTable(std::vector<unsigned char> const& vIndex);

// The index of an image without one is put behind its last byte. Throws CBuildError when the image would exceed 4 GB.
// REQUIRES: a sound image.
void AppendTextIndex(std::vector<unsigned char>& vByte);

// The same, and counted.
void AppendTextIndex(CImage& image, CStatistics& statistics);

} // namespace qe

#endif
