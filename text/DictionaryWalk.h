// DictionaryWalk.h - short ways through the nodes of a dictionary, all by its public members.
#ifndef QEADRS_TEXT_DICTIONARYWALK_H
#define QEADRS_TEXT_DICTIONARYWALK_H

#include "dic/AddrDic.h"
#include "dic/ImageHeader.h"

#include <cstdint>
#include <string_view>

namespace qeadrs {

// The tables of a dictionary by the class's pointers and the header, with the class's own bounds: its accessors without a
// call into another library for each name.
class CDictionaryView {
  public:
    explicit CDictionaryView(CAddrDic const& dic) : m_pImage(dic.GetDicPointer()) {
        if (m_pImage == nullptr) return;
        m_pszStrings = dic.GetStrings();
        m_nStrings = Word(HDR_STRING_SIZE);
        m_pNode = dic.GetAddrNode(0);
        m_nNodes = m_pNode == nullptr ? 0 : Word(HDR_NODE_COUNT);
        m_pInfo = dic.GetAddrInfo(0);
        m_nInfos = m_pInfo == nullptr ? 0 : Word(HDR_INFO_COUNT);
    }

    unsigned char const* GetDicPointer() const { return m_pImage; }
    char const* GetStrings() const { return m_pszStrings; }
    tagADDRNODE const* GetAddrNode(uint32_t n) const { return n < m_nNodes ? m_pNode + n : nullptr; }
    tagADDRINFO const* GetAddrInfo(uint32_t n) const { return n < m_nInfos ? m_pInfo + n : nullptr; }
    char const* GetString(uint32_t n) const { return n < m_nStrings ? m_pszStrings + n : nullptr; }

    // A word of the header. REQUIRES: an image.
    uint32_t Word(tagHEADERWORD nWord) const { return HeaderWord(m_pImage, nWord); }

  private:
    unsigned char const* m_pImage;
    char const* m_pszStrings = nullptr;
    tagADDRNODE const* m_pNode = nullptr;
    tagADDRINFO const* m_pInfo = nullptr;
    uint32_t m_nStrings = 0;
    uint32_t m_nNodes = 0;
    uint32_t m_nInfos = 0;
};

inline std::string_view NodeName(CDictionaryView const& dic, tagADDRNODE const& node) {
    char const* const psz = dic.GetString(node.nName);
    return psz == nullptr ? std::string_view() : std::string_view(psz);
}

// The entry of a node, null when it has none.
inline tagADDRINFO const* NodeEntry(CDictionaryView const& dic, tagADDRNODE const& node) {
    return node.nInfo == ADDR_NONE ? nullptr : dic.GetAddrInfo(node.nInfo);
}

inline bool IsSuperseded(CDictionaryView const& dic, tagADDRNODE const& node) {
    tagADDRINFO const* const pInfo = NodeEntry(dic, node);
    return pInfo != nullptr && (pInfo->nNode & ADDRINFO_SUPERSEDED) != 0;
}

// The node above, null when there is none.
inline tagADDRNODE const* NodeAbove(CDictionaryView const& dic, tagADDRNODE const& node) {
    return node.nParent == ADDR_NONE ? nullptr : dic.GetAddrNode(node.nParent);
}

// Calls visit(index, node) for the children of a node, until it returns true or a child lies outside the table.
template <typename F>
void ForEachChild(CDictionaryView const& dic, tagADDRNODE const& node, F const& visit) {
    for (uint32_t i = 0; i < node.nChildCount; ++i) {
        uint32_t const nIndex = node.nFirstChild + i;
        tagADDRNODE const* const pChild = nIndex < node.nFirstChild ? nullptr : dic.GetAddrNode(nIndex);
        if (pChild == nullptr || visit(nIndex, *pChild)) return;
    }
}

// Whether a node below a town is one that an address is told apart by: a subdivision or a building with a code of its
// own, not the rest of an organisation's address.
inline bool IsDivision(tagADDRNODE const& node) {
    return (node.nLevel == LEVEL_AREA && node.nInfo != ADDR_NONE) || node.nLevel == LEVEL_BLOCK;
}

// Whether a token is a bracket, which a building's name may have or not.
inline bool IsBracketToken(uint16_t nToken) {
    return nToken == '(' || nToken == ')';
}

} // namespace qeadrs

#endif
