// CImageWriter - writes a dictionary image from a tree that is put together node by node.
//
//   CImageWriter writer;
//   auto nPref = writer.AddNode(ADDR_NONE, LEVEL_PREF, "東京都", "トウキョウト");
//   auto nCity = writer.AddNode(nPref, LEVEL_CITY, "千代田区", "チヨダク");
//   auto nTown = writer.AddNode(nCity, LEVEL_TOWN, "千代田", "チヨダ");
//   writer.AddEntry(nTown, "1000001", "100");
//   CImage image = writer.Write();            // image.vByte is what the file holds
//
// Ids       AddNode and AddEntry return positions in order of adding. The image orders its records by rules of its
//           own (Write says which); CImage tells where each one went.
// Limits    Nothing here knows what the national dictionary should hold: any tree can be written, also one that no
//           reader should trust, so that tests can make small and odd images with it.
// Failure   Throws CBuildError when the image would exceed 4 GB.
#ifndef QEADRS_BUILDER_IMAGEWRITER_H
#define QEADRS_BUILDER_IMAGEWRITER_H

#include "dic/AddrNode.h"
#include "dic/ImageHeader.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace qe {

// What marks a file as a dictionary (header words 0 and 1), and the format that is written (word 2).
using ::IMAGE_MAGIC;
using ::IMAGE_VERSION;

// What a dictionary was compiled from (header word 6).
enum class ESource : uint32_t { Unknown = 0, Official = 1, Skk = 2, Sample = 3 };

struct CImage {
    std::vector<unsigned char> vByte;
    std::vector<uint32_t> vNodeIndex;  // by node id: the node's index in the image
    std::vector<uint32_t> vEntryIndex; // by entry id: the entry's index in the image
};

class CImageWriter {
  public:
    // Edition (yyyymmdd, dd 00 for a month, 0 unknown) and source, for the header.
    void SetIdentification(uint32_t nEdition, ESource nSource);

    // A node below nParent (ADDR_NONE: at the root). Siblings keep the order in which they were added.
    uint32_t AddNode(uint32_t nParent, uint8_t nLevel, std::string_view strName, std::string_view strKana = {});

    // A postal-code entry whose deepest node is nNode; the node refers to it unless it refers to another one already.
    uint32_t AddEntry(uint32_t nNode, std::string_view strCode, std::string_view strOldCode);

    // A second name of a node for the indexes: a node with the same level, parent and entry that is nobody's child, so
    // that no walk down the tree meets it. REQUIRES: the node has its entry.
    uint32_t AddAlias(uint32_t nNode, std::string_view strName);

    // Makes a node refer to an entry that is another node's (a city to the entry of its nameless town).
    void Refer(uint32_t nNode, uint32_t nEntry);
    bool HasEntry(uint32_t nNode) const { return m_vNode[nNode].nEntry != ADDR_NONE; }

    // Marks an entry as superseded by another one.
    void Supersede(uint32_t nEntry, uint32_t nSuccessor);

    // Puts a node into the organisation index.
    void AddOffice(uint32_t nNode);

    size_t NodeCount() const { return m_vNode.size(); }
    size_t EntryCount() const { return m_vEntry.size(); }

    // Lays the image out: nodes by depth, below that by their parents' order, aliases behind all of them; entries by
    // code, then by node; city index (all nodes of level 1) and organisation index by name bytes, then by node. In the
    // string area the codes stand first, in table order; then the names of levels 0 to 2 in the order of the nodes, one
    // for each node; then those below in the order of the entries, once for each city; aliases last.
    CImage Write() const;

  private:
    struct CNode {
        uint32_t nParent;
        uint32_t nEntry;
        uint32_t nText;
        uint32_t nCity; // itself for a city, none for what is in no city
        uint8_t nLevel;
        bool bAlias;
    };
    struct CEntry {
        uint32_t nNode;
        uint32_t nSuccessor;
        std::string strCodes; // code NUL old code NUL
    };
    friend class CImageLayout;

    uint32_t AddOwnText(std::string_view strName, std::string_view strKana);
    uint32_t AddSharedText(uint32_t nCity, std::string_view strName, std::string_view strKana);

    uint32_t m_nEdition = 0;
    ESource m_nSource = ESource::Unknown;
    std::vector<CNode> m_vNode;
    std::vector<CEntry> m_vEntry;
    std::vector<uint32_t> m_vOffice;
    std::vector<std::string> m_vText;                      // "name NUL reading NUL", by text number
    std::unordered_map<std::string, uint32_t> m_mapShared; // the same and the city's id
};

// The checksum in the header: CRC-32 (polynomial 0xEDB88320) of the image with the checksum's own word taken as zero.
uint32_t ImageChecksum(unsigned char const* pImage, size_t nSize);

// Zeros up to where the next table may begin, a multiple of 16. Throws CBuildError when the image would exceed 4 GB.
void AlignImage(std::vector<unsigned char>& vByte);

// Writes the checksum into an image, for those who change one after the fact.
void RepairChecksum(std::vector<unsigned char>& vByte);

} // namespace qe

#endif
