// ImageWriter.cpp - from a tree of nodes and entries to the bytes of the dictionary file.
#include "builder/ImageWriter.h"

#include "builder/Error.h"
#include "dic/ImageHeader.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>

namespace qe {

namespace {

constexpr size_t TABLE_ALIGNMENT = 16;

constexpr std::array<uint32_t, 256> MakeCrcTable() {
    std::array<uint32_t, 256> anTable{};
    for (uint32_t n = 0; n < 256; ++n) {
        uint32_t nCrc = n;
        for (int nBit = 0; nBit < 8; ++nBit) nCrc = nCrc >> 1 ^ ((nCrc & 1) != 0 ? 0xEDB88320u : 0);
        anTable[n] = nCrc;
    }
    return anTable;
}
constexpr std::array<uint32_t, 256> CRC_TABLE = MakeCrcTable();

uint32_t UpdateCrc(uint32_t nCrc, unsigned char const* p, size_t nSize) {
    for (size_t i = 0; i < nSize; ++i) nCrc = nCrc >> 8 ^ CRC_TABLE[(nCrc ^ p[i]) & 0xFF];
    return nCrc;
}

template <typename T>
void AppendRecord(std::vector<unsigned char>& vByte, T const& record) {
    auto const* const p = reinterpret_cast<unsigned char const*>(&record);
    vByte.insert(vByte.end(), p, p + sizeof record);
}

// As the string area has a name and its reading.
std::string Joined(std::string_view strName, std::string_view strKana) {
    std::string strText;
    strText.reserve(strName.size() + strKana.size() + 2);
    strText.append(strName).push_back('\0');
    strText.append(strKana).push_back('\0');
    return strText;
}

} // namespace

// CImageLayout - one writing of an image: the order of its records, then their bytes.
class CImageLayout {
  public:
    explicit CImageLayout(CImageWriter const& writer) : m_writer(writer) {}

    CImage Write() {
        OrderNodes();
        OrderEntries();
        WriteStrings();
        WriteImage();
        return std::move(m_image);
    }

  private:
    using CNode = CImageWriter::CNode;
    using CEntry = CImageWriter::CEntry;

    CNode const& Node(uint32_t nId) const { return m_writer.m_vNode[nId]; }
    std::string const& NodeText(uint32_t nId) const { return m_writer.m_vText[Node(nId).nText]; }
    uint32_t NewNode(uint32_t nId) const { return nId == ADDR_NONE ? ADDR_NONE : m_image.vNodeIndex[nId]; }
    uint32_t NewEntry(uint32_t nId) const { return nId == ADDR_NONE ? ADDR_NONE : m_image.vEntryIndex[nId]; }

    // Depth by depth; the children of one parent together, in the order of the parents. A node is always added after
    // its parent, so one pass over the nodes in order of adding sees every parent first.
    void OrderNodes() {
        uint32_t const nCount = static_cast<uint32_t>(m_writer.m_vNode.size());
        m_vChildCount.assign(nCount, 0);
        std::vector<std::vector<uint32_t>> vDepth; // node ids by depth, in order of adding
        std::vector<uint32_t> vDepthOf(nCount, 0);
        std::vector<uint32_t> vAlias;
        for (uint32_t nId = 0; nId < nCount; ++nId) {
            uint32_t const nParent = Node(nId).nParent;
            if (Node(nId).bAlias) {
                vAlias.push_back(nId);
                continue;
            }
            if (nParent != ADDR_NONE) {
                vDepthOf[nId] = vDepthOf[nParent] + 1;
                ++m_vChildCount[nParent];
            }
            if (vDepthOf[nId] == vDepth.size()) vDepth.emplace_back();
            vDepth[vDepthOf[nId]].push_back(nId);
        }
        vDepth.push_back(std::move(vAlias)); // like a depth below all others
        m_image.vNodeIndex.assign(nCount, ADDR_NONE);
        for (std::vector<uint32_t>& vId : vDepth) {
            std::stable_sort(vId.begin(), vId.end(), [this](uint32_t a, uint32_t b) {
                return NewNode(Node(a).nParent) < NewNode(Node(b).nParent);
            });
            for (uint32_t nId : vId) {
                m_image.vNodeIndex[nId] = static_cast<uint32_t>(m_vNodeOrder.size());
                m_vNodeOrder.push_back(nId);
            }
        }
    }

    void OrderEntries() {
        auto const& vEntry = m_writer.m_vEntry;
        m_vEntryOrder.resize(vEntry.size());
        std::iota(m_vEntryOrder.begin(), m_vEntryOrder.end(), 0u);
        std::stable_sort(m_vEntryOrder.begin(), m_vEntryOrder.end(), [&](uint32_t a, uint32_t b) {
            int const nOrder = std::strcmp(vEntry[a].strCodes.c_str(), vEntry[b].strCodes.c_str());
            return nOrder != 0 ? nOrder < 0 : NewNode(vEntry[a].nNode) < NewNode(vEntry[b].nNode);
        });
        m_image.vEntryIndex.resize(vEntry.size());
        for (uint32_t n = 0; n < m_vEntryOrder.size(); ++n) m_image.vEntryIndex[m_vEntryOrder[n]] = n;
    }

    // Node ids whose level is nLevel, by the bytes of their names.
    std::vector<uint32_t> SortByName(std::vector<uint32_t> vId) const {
        std::sort(vId.begin(), vId.end(), [this](uint32_t a, uint32_t b) {
            int const nOrder = std::strcmp(NodeText(a).c_str(), NodeText(b).c_str());
            return nOrder != 0 ? nOrder < 0 : NewNode(a) < NewNode(b);
        });
        return vId;
    }

    // Codes first and in table order, so that neighbouring entries of a search share cache lines; then the names. A
    // superseded entry's codes carry its successor and are never shared.
    void WriteStrings() {
        std::string strLast;
        uint32_t nLast = 0;
        for (uint32_t nId : m_vEntryOrder) {
            CEntry const& entry = m_writer.m_vEntry[nId];
            std::string strCodes = entry.strCodes;
            if (entry.nSuccessor != ADDR_NONE) {
                uint32_t const nSuccessor = NewEntry(entry.nSuccessor);
                strCodes.append(reinterpret_cast<char const*>(&nSuccessor), sizeof nSuccessor);
            }
            if (entry.nSuccessor != ADDR_NONE || strCodes != strLast) nLast = AppendString(strCodes);
            strLast = entry.nSuccessor != ADDR_NONE ? std::string() : strCodes;
            m_vCodeOffset.push_back(nLast);
        }
        WriteNames();
    }

    // A text is compared with the names of all towns of a city in turn, and so these stand in the order of the nodes.
    // What is below a town is mostly read for the entries of a run of codes, and so it stands in their order.
    void WriteNames() {
        m_vTextOffset.assign(m_writer.m_vText.size(), ADDR_NONE);
        for (uint32_t nId : m_vNodeOrder)
            if (Node(nId).nLevel <= LEVEL_TOWN) AppendName(nId);
        std::vector<uint32_t> vPath; // of one entry, from its node up to what is below the town
        for (uint32_t nEntry : m_vEntryOrder) {
            vPath.clear();
            for (uint32_t nId = m_writer.m_vEntry[nEntry].nNode; nId != ADDR_NONE; nId = Node(nId).nParent) {
                if (Node(nId).nLevel <= LEVEL_TOWN) break;
                vPath.push_back(nId);
            }
            while (!vPath.empty()) {
                AppendName(vPath.back());
                vPath.pop_back();
            }
        }
        for (uint32_t nId : m_vNodeOrder) AppendName(nId); // aliases, and what has no entry
    }

    void AppendName(uint32_t nId) {
        uint32_t& nOffset = m_vTextOffset[Node(nId).nText];
        if (nOffset == ADDR_NONE) nOffset = AppendString(NodeText(nId));
    }

    uint32_t AppendString(std::string const& str) {
        uint32_t const nOffset = static_cast<uint32_t>(m_strArea.size());
        m_strArea += str;
        if (m_strArea.size() > ADDR_NONE) throw CBuildError("The names do not fit into a dictionary of 4 GB.");
        return nOffset;
    }

    void BeginTable(tagHEADERWORD nWord) {
        AlignImage(m_image.vByte);
        m_anHeader[nWord] = static_cast<uint32_t>(m_image.vByte.size());
    }

    void WriteIndex(tagHEADERWORD nTable, tagHEADERWORD nCount, std::vector<uint32_t> const& vId) {
        BeginTable(nTable);
        for (uint32_t nId : SortByName(vId)) AppendRecord(m_image.vByte, NewNode(nId));
        m_anHeader[nCount] = static_cast<uint32_t>(vId.size());
    }

    void WriteNodes() {
        BeginTable(HDR_NODE_TABLE);
        // Children stand in the order of their parents, so the next depth is handed out front to back.
        uint32_t nNextChild = 0;
        while (nNextChild < m_vNodeOrder.size() && Node(m_vNodeOrder[nNextChild]).nParent == ADDR_NONE) ++nNextChild;
        for (uint32_t nId : m_vNodeOrder) {
            CNode const& node = Node(nId);
            uint32_t const nChildren = m_vChildCount[nId];
            AppendRecord(m_image.vByte, tagADDRNODE{node.nLevel,
                                                    {},
                                                    m_vTextOffset[node.nText],
                                                    NewEntry(node.nEntry),
                                                    NewNode(node.nParent),
                                                    nChildren,
                                                    nChildren == 0 ? ADDR_NONE : nNextChild});
            nNextChild += nChildren;
        }
        m_anHeader[HDR_NODE_COUNT] = static_cast<uint32_t>(m_vNodeOrder.size());
    }

    void WriteEntries() {
        BeginTable(HDR_INFO_TABLE);
        for (size_t n = 0; n < m_vEntryOrder.size(); ++n) {
            CEntry const& entry = m_writer.m_vEntry[m_vEntryOrder[n]];
            uint32_t const nMark = entry.nSuccessor != ADDR_NONE ? ADDRINFO_SUPERSEDED : 0;
            AppendRecord(m_image.vByte, tagADDRINFO{m_vCodeOffset[n], NewNode(entry.nNode) | nMark});
        }
        m_anHeader[HDR_INFO_COUNT] = static_cast<uint32_t>(m_vEntryOrder.size());
    }

    // The run of nodes of one level at its depth: its first node and its length.
    void WriteLevel(uint8_t nLevel, tagHEADERWORD nFirst, tagHEADERWORD nCount) {
        uint32_t nNodes = 0;
        for (uint32_t n = 0; n < m_vNodeOrder.size(); ++n) {
            if (Node(m_vNodeOrder[n]).nLevel != nLevel) continue;
            if (nNodes++ == 0) m_anHeader[nFirst] = n;
        }
        m_anHeader[nCount] = nNodes;
    }

    void WriteImage() {
        m_image.vByte.resize(HDR_BYTES);
        WriteNodes();
        WriteEntries();
        std::vector<uint32_t> vCity;
        for (uint32_t nId : m_vNodeOrder)
            if (Node(nId).nLevel == LEVEL_CITY) vCity.push_back(nId);
        WriteLevel(LEVEL_PREF, HDR_FIRST_PREF, HDR_PREF_COUNT);
        WriteLevel(LEVEL_CITY, HDR_FIRST_CITY, HDR_CITY_COUNT);
        WriteLevel(LEVEL_TOWN, HDR_FIRST_TOWN, HDR_TOWN_COUNT);
        WriteIndex(HDR_CITY_INDEX, HDR_CITY_COUNT, vCity);
        WriteIndex(HDR_OFFICE_INDEX, HDR_OFFICE_COUNT, m_writer.m_vOffice);
        BeginTable(HDR_STRING_AREA);
        m_image.vByte.insert(m_image.vByte.end(), m_strArea.begin(), m_strArea.end());
        m_anHeader[HDR_STRING_SIZE] = static_cast<uint32_t>(m_strArea.size());
        BeginTable(HDR_FIFTH_TABLE); // empty, at the end of the file: AppendTextIndex fills it
        BeginTable(HDR_SIXTH_TABLE);
        WriteHeader();
    }

    void WriteHeader() {
        std::memcpy(&m_anHeader[HDR_MAGIC], IMAGE_MAGIC, sizeof IMAGE_MAGIC);
        m_anHeader[HDR_VERSION] = IMAGE_VERSION;
        m_anHeader[HDR_EDITION] = m_writer.m_nEdition;
        m_anHeader[HDR_FILE_SIZE] = static_cast<uint32_t>(m_image.vByte.size());
        m_anHeader[HDR_SOURCE] = static_cast<uint32_t>(m_writer.m_nSource);
        std::memcpy(m_image.vByte.data(), m_anHeader.data(), HDR_BYTES);
        RepairChecksum(m_image.vByte);
    }

    CImageWriter const& m_writer;
    CImage m_image;
    std::array<uint32_t, HDR_WORDS> m_anHeader{};
    std::vector<uint32_t> m_vNodeOrder;  // node ids in image order
    std::vector<uint32_t> m_vChildCount; // by node id
    std::vector<uint32_t> m_vEntryOrder; // entry ids in image order
    std::vector<uint32_t> m_vCodeOffset; // by entry index
    std::vector<uint32_t> m_vTextOffset; // by text number
    std::string m_strArea;
};

void CImageWriter::SetIdentification(uint32_t nEdition, ESource nSource) {
    m_nEdition = nEdition;
    m_nSource = nSource;
}

uint32_t CImageWriter::AddOwnText(std::string_view strName, std::string_view strKana) {
    m_vText.push_back(Joined(strName, strKana));
    return static_cast<uint32_t>(m_vText.size() - 1);
}

// Shared with the nodes of its city only: a reader of neighbouring entries would have to go far for the rest, and what
// is written twice for it is one hundredth of the national dictionary.
uint32_t CImageWriter::AddSharedText(uint32_t nCity, std::string_view strName, std::string_view strKana) {
    std::string strKey = Joined(strName, strKana);
    strKey.append(reinterpret_cast<char const*>(&nCity), sizeof nCity);
    auto const [pFound, bNew] = m_mapShared.emplace(std::move(strKey), static_cast<uint32_t>(m_vText.size()));
    return bNew ? AddOwnText(strName, strKana) : pFound->second;
}

// Texts of the upper levels stay apart even when they are equal: an organisation is matched to its town by the place
// of the town's name, not by its characters.
uint32_t CImageWriter::AddNode(uint32_t nParent, uint8_t nLevel, std::string_view strName, std::string_view strKana) {
    auto const nId = static_cast<uint32_t>(m_vNode.size());
    uint32_t const nCity = nLevel == LEVEL_CITY ? nId : nParent == ADDR_NONE ? ADDR_NONE : m_vNode[nParent].nCity;
    uint32_t const nText =
        nLevel <= LEVEL_TOWN ? AddOwnText(strName, strKana) : AddSharedText(nCity, strName, strKana);
    m_vNode.push_back({nParent, ADDR_NONE, nText, nCity, nLevel, false});
    return nId;
}

uint32_t CImageWriter::AddAlias(uint32_t nNode, std::string_view strName) {
    CNode alias = m_vNode[nNode];
    alias.nText = AddSharedText(alias.nCity, strName, {});
    alias.bAlias = true;
    m_vNode.push_back(alias);
    return static_cast<uint32_t>(m_vNode.size() - 1);
}

uint32_t CImageWriter::AddEntry(uint32_t nNode, std::string_view strCode, std::string_view strOldCode) {
    std::string strCodes;
    strCodes.append(strCode).push_back('\0');
    strCodes.append(strOldCode).push_back('\0');
    m_vEntry.push_back({nNode, ADDR_NONE, std::move(strCodes)});
    uint32_t const nEntry = static_cast<uint32_t>(m_vEntry.size() - 1);
    if (!HasEntry(nNode)) Refer(nNode, nEntry);
    return nEntry;
}

void CImageWriter::Refer(uint32_t nNode, uint32_t nEntry) {
    m_vNode[nNode].nEntry = nEntry;
}

void CImageWriter::Supersede(uint32_t nEntry, uint32_t nSuccessor) {
    m_vEntry[nEntry].nSuccessor = nSuccessor;
}

void CImageWriter::AddOffice(uint32_t nNode) {
    m_vOffice.push_back(nNode);
}

CImage CImageWriter::Write() const {
    return CImageLayout(*this).Write();
}

uint32_t ImageChecksum(unsigned char const* pImage, size_t nSize) {
    constexpr size_t BEFORE = size_t{4} * HDR_CHECKSUM;
    constexpr unsigned char ZERO[4] = {};
    uint32_t nCrc = UpdateCrc(0xFFFFFFFF, pImage, BEFORE);
    nCrc = UpdateCrc(nCrc, ZERO, sizeof ZERO);
    return ~UpdateCrc(nCrc, pImage + BEFORE + sizeof ZERO, nSize - BEFORE - sizeof ZERO);
}

void AlignImage(std::vector<unsigned char>& vByte) {
    vByte.resize((vByte.size() + TABLE_ALIGNMENT - 1) / TABLE_ALIGNMENT * TABLE_ALIGNMENT);
    if (vByte.size() > ADDR_NONE) throw CBuildError("The tables do not fit into a dictionary of 4 GB.");
}

void RepairChecksum(std::vector<unsigned char>& vByte) {
    uint32_t const nChecksum = ImageChecksum(vByte.data(), vByte.size());
    std::memcpy(vByte.data() + size_t{4} * HDR_CHECKSUM, &nChecksum, sizeof nChecksum);
}

} // namespace qe
