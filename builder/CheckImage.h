// CheckImage.h - an untrusted image as the checker reads it: every access within bounds, every text measured (internal).
#ifndef QEADRS_BUILDER_CHECKIMAGE_H
#define QEADRS_BUILDER_CHECKIMAGE_H

#include "builder/Check.h"
#include "dic/ImageHeader.h"

#include <cstring>
#include <optional>
#include <string_view>

namespace qe {

// Where the texts of an area end: the next NUL from any byte on, in constant time. Three bits for each byte.
class CTextEnds {
  public:
    explicit CTextEnds(std::string_view strArea);
    // The offset of the next NUL, that of this byte itself included; the area's size when there is none.
    // REQUIRES: an offset in the area.
    size_t Find(size_t nOffset) const;

  private:
    size_t m_nSize;
    std::vector<uint64_t> m_vNul;  // a bit for each byte of the area: it is NUL
    std::vector<uint32_t> m_vNext; // by word of these: the first one from there on that is not 0
};

// REQUIRES: the header is whole, and nodes, entries, indexes and string area lie in the file.
class CCheckImage {
  public:
    explicit CCheckImage(std::vector<unsigned char> const& vByte);

    uint32_t Word(tagHEADERWORD nWord) const { return HeaderWord(m_vByte.data(), nWord); }
    uint32_t NodeCount() const { return Word(HDR_NODE_COUNT); }
    uint32_t EntryCount() const { return Word(HDR_INFO_COUNT); }

    // REQUIRES: an index of the table.
    tagADDRNODE Node(uint32_t n) const { return Record<tagADDRNODE>(HDR_NODE_TABLE, n); }
    tagADDRINFO Entry(uint32_t n) const { return Record<tagADDRINFO>(HDR_INFO_TABLE, n); }
    uint32_t IndexEntry(tagHEADERWORD nTable, uint32_t n) const { return Record<uint32_t>(nTable, n); }

    // The text at an offset of the string area, without its NUL; nothing outside the area and without a NUL in it.
    std::optional<std::string_view> Text(uint64_t nOffset) const;
    // Whether the text at this offset is a whole one, and not the end of another. REQUIRES: there is one.
    bool IsWhole(uint64_t nOffset) const {
        return nOffset == 0 || m_strArea[static_cast<size_t>(nOffset - 1)] == '\0';
    }
    // Whether the text at this offset is UTF-8. REQUIRES: there is one.
    bool IsUtf8(uint64_t nOffset) const;
    uint32_t AreaSize() const { return Word(HDR_STRING_SIZE); }
    // The four bytes at an offset of the area, aligned or not; nothing when they do not lie in it.
    std::optional<uint32_t> LongAt(uint64_t nOffset) const;

    // The names from the prefecture down to the node; "?" for one that cannot be read and for each character
    // that cannot be shown; cut after some levels, and where a parent does not stand before its child.
    std::string Path(uint32_t nNode) const;

  private:
    template <typename T>
    T Record(tagHEADERWORD nTable, uint32_t n) const {
        T record = {};
        std::memcpy(&record, m_vByte.data() + Word(nTable) + size_t{n} * sizeof(T), sizeof record);
        return record;
    }

    std::vector<unsigned char> const& m_vByte;
    std::string_view m_strArea;
    CTextEnds m_ends;
    std::vector<bool> m_vBad; // by offset of a NUL: the text that it ends is not UTF-8
};

} // namespace qe

#endif
