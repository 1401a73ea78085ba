// NameForUI.h - display names over any way to reach texts and parents (internal).
//
// The exported function has bare tables to read from, the class reads within the image's bounds: a reader of either
// kind offers
//
//   char const* Name(tagADDRNODE const& node);            // null when it has none
//   tagADDRNODE const* Above(tagADDRNODE const& node);    // null at the top
#ifndef QEADRS_TREE_NAMEFORUI_H
#define QEADRS_TREE_NAMEFORUI_H

#include "dic/AddrDic.h"
#include "dic/AddrKey.h"

#include <cstring>

// A text that grows within a field of nSize bytes, which may end up without its NUL.
class CFieldText {
  public:
    // REQUIRES: the field is zero-filled.
    CFieldText(char* pszOut, int nSize) : m_pszOut(pszOut), m_nLeft(nSize < 0 ? 0 : static_cast<size_t>(nSize)) {}

    void Append(char const* psz) { Append(psz, psz == nullptr ? 0 : strnlen(psz, m_nLeft)); }
    void Append(char const* psz, size_t nLength) {
        if (nLength > m_nLeft) nLength = m_nLeft;
        // A call: what the compiler puts in place of memcpy takes longer to begin than these short texts to be copied.
        if (nLength != 0) std::memmove(m_pszOut, psz, nLength);
        m_pszOut += nLength;
        m_nLeft -= nLength;
    }

  private:
    char* m_pszOut;
    size_t m_nLeft;
};

// Steps up from a node; more than there are levels means that parents go in a circle.
constexpr int MAX_NAME_STEPS = 256;

// A level-3 text of more bytes is too long to be shown.
constexpr size_t LONGEST_SHOWN_AREA = 19;

template <typename TReader>
void AppendPrefName(TReader const& reader, tagADDRNODE const& node, CFieldText& out) {
    char const* const pszName = reader.Name(node);
    if (pszName == nullptr) return;
    int const nNumber = FindPrefNumber(pszName);
    if (nNumber >= 0) out.Append(pref_order[nNumber]);
    out.Append(pszName);
}

template <typename TReader>
void AppendCityName(TReader const& reader, tagADDRNODE const& node, CFieldText& out) {
    char const* const pszName = reader.Name(node);
    if (pszName == nullptr) return;
    unsigned short nType = SHIKUGUN_OTHER;
    GetShikugunType(pszName, &nType);
    char const cLetter = static_cast<char>('a' + nType);
    out.Append(&cLetter, 1);
    out.Append(pszName);
}

// The names that make up the display name of what lies below a city. Of several nodes of one level on the way up the
// last one counts.
class CTownNames {
  public:
    // The names on the way up from the node to the city, the node's included.
    template <typename TReader>
    void Collect(TReader const& reader, tagADDRNODE const* pNode, int nSteps = MAX_NAME_STEPS) {
        for (; pNode != nullptr && pNode->nLevel != LEVEL_CITY && nSteps > 0; --nSteps) {
            Take(reader, *pNode);
            pNode = reader.Above(*pNode);
        }
    }

    // The same for a child of the node whose names these are.
    template <typename TReader>
    void AddBelow(TReader const& reader, tagADDRNODE const& child) {
        if (child.nLevel <= LEVEL_OFFICE && !m_abTaken[child.nLevel]) Take(reader, child);
    }

    void Append(CFieldText& out) const {
        out.Append(m_vszName[LEVEL_TOWN]);
        if (m_vszName[LEVEL_OFFICE] != nullptr) return out.Append(m_vszName[LEVEL_OFFICE]);
        if (m_vszName[LEVEL_BLOCK] != nullptr) {
            out.Append(m_vszName[LEVEL_BLOCK]);
            return out.Append(m_vszName[LEVEL_NOTE]);
        }
        char const* const pszArea = m_vszName[LEVEL_AREA];
        if (pszArea == nullptr) return;
        if (strnlen(pszArea, LONGEST_SHOWN_AREA + 1) <= LONGEST_SHOWN_AREA) out.Append(pszArea);
    }

  private:
    template <typename TReader>
    void Take(TReader const& reader, tagADDRNODE const& node) {
        if (node.nLevel > LEVEL_OFFICE) return;
        m_vszName[node.nLevel] = reader.Name(node);
        m_abTaken[node.nLevel] = true;
    }

    char const* m_vszName[LEVEL_OFFICE + 1] = {};
    bool m_abTaken[LEVEL_OFFICE + 1] = {}; // also when it has no name
};

template <typename TReader>
void ComposeNameForUI(TReader const& reader, tagADDRNODE const& node, char* pszOut, int nSize) {
    CFieldText out(pszOut, nSize);
    if (node.nLevel == LEVEL_PREF) return AppendPrefName(reader, node, out);
    if (node.nLevel == LEVEL_CITY) return AppendCityName(reader, node, out);
    CTownNames names;
    names.Collect(reader, &node);
    names.Append(out);
}

#endif
