// LegacyModel.h - a model of the legacy interface: what searching and getting leave in the caller's records, and the
// tree, the lists and the selection that they keep in between.
//
//   CLegacyModel model;
//   model.Open(image);                            // reads the image by itself; no call of the library
//   model.Search(vRequest, vCounts, order);       // writes into the records' bytes what the library must write
//   model.Get(2, vField);
//
// Entries of one display name may stand in any order behind each other: the model takes the order that the library's
// lists have, within each run of equal names.
#ifndef QEADRS_TESTS_LIBRARY_LEGACYMODEL_H
#define QEADRS_TESTS_LIBRARY_LEGACYMODEL_H

#include "tests/library/BrowseModel.h"

// --- entries and lists ---------------------------------------------------------------------------------------------

struct CEntry {
    CPlace nNode;
    std::string strName; // at most 128 bytes
    std::vector<CEntry> vChild;
    bool operator==(CEntry const& other) const {
        return nNode == other.nNode && strName == other.strName && vChild == other.vChild;
    }
};
using CEntries = std::vector<CEntry>;

inline std::ostream& operator<<(std::ostream& stream, CEntry const& entry) {
    stream << entry.nNode << ' ' << entry.strName;
    if (!entry.vChild.empty()) stream << " {";
    for (CEntry const& child : entry.vChild) stream << ' ' << child;
    return stream << (entry.vChild.empty() ? ";" : " }");
}

struct CLegacyLists {
    CEntries vTree, vPref, vCity, vTown;
};

inline CEntry* Find(CEntries& v, CPlace nNode) {
    auto const p = std::find_if(v.begin(), v.end(), [&](CEntry const& entry) { return entry.nNode == nNode; });
    return p == v.end() ? nullptr : &*p;
}

inline CEntry const* At(CEntries const& v, CPlace n) {
    return n >= 0 && n < Size(v) ? &Of(v, n) : nullptr;
}

inline CPlaces NodesOf(CEntries const& v) {
    CPlaces vNode;
    for (CEntry const& entry : v) vNode.push_back(entry.nNode);
    return vNode;
}

// By name, the lowest level first. Of equal names the next node of the order comes first, if it is among them.
inline void Sort(CEntries& v, CEntries const& vOrder) {
    std::stable_sort(v.begin(), v.end(),
                     [](CEntry const& left, CEntry const& right) { return left.strName < right.strName; });
    for (size_t n = 0; n < std::min(v.size(), vOrder.size()); ++n)
        for (size_t nNext = n; nNext < v.size() && v[nNext].strName == v[n].strName; ++nNext)
            if (v[nNext].nNode == vOrder[n].nNode) {
                std::swap(v[n], v[nNext]);
                break;
            }
    for (size_t n = 0; n < v.size(); ++n) Sort(v[n].vChild, n < vOrder.size() ? vOrder[n].vChild : CEntries());
}

// --- texts ---------------------------------------------------------------------------------------------------------

inline std::string Cut(std::string const& str, size_t nSize) {
    return str.substr(0, nSize);
}

inline bool Begins(std::string const& str, std::string const& strBegin) {
    return str.compare(0, strBegin.size(), strBegin) == 0;
}

// The letter of a city's class: that of its last character and of the marker before it.
inline char CityLetter(std::string const& strName) {
    if (strName.size() < 3) return 'h';
    if (EndsIn(strName, SHI)) return 'a';
    if (EndsIn(strName, KU)) return FindMarker(strName, {SHI}) == 0 ? 'b' : 'c';
    bool const bMura = EndsIn(strName, MURA);
    if (FrontPart(strName) == 0) return 'h';
    size_t const nMarker = FrontPart(strName) - 2;
    if (Holds(strName, nMarker, GUN)) return bMura ? 'e' : 'd';
    return Holds(strName, nMarker, SHIMA) ? 'f' : 'g';
}

// The digits, "?" and "*" of a text in code page 932, full-width ones made narrow. What is no single-byte character
// counts two bytes.
inline std::string CodeOf(std::string const& strText) {
    std::string strCode;
    for (size_t n = 0; n < strText.size(); ++n) {
        auto const c = static_cast<unsigned char>(strText[n]);
        bool const bSingle = (c >= 0x20 && c <= 0x7E) || (c >= 0xA1 && c <= 0xDF);
        if (bSingle) {
            if (std::strchr("0123456789?*", c) != nullptr) strCode += strText[n];
            continue;
        }
        unsigned const cNext = ++n < strText.size() ? static_cast<unsigned char>(strText[n]) : 0;
        if (c == 0x82 && cNext >= 0x4F && cNext <= 0x58) strCode += static_cast<char>('0' + (cNext - 0x4F));
        if (c == 0x81 && cNext == 0x48) strCode += '?';
        if (c == 0x81 && cNext == 0x96) strCode += '*';
    }
    return strCode;
}

// --- the caller's records ------------------------------------------------------------------------------------------

constexpr size_t REQUEST_SIZE = 1028, COUNTS_SIZE = 534, FIELD_SIZE = 411;

// Where in the request the texts begin.
constexpr size_t ADDR_TEXT = 500, SHORT_CODE = 1014, LONG_CODE = 1020;

// A text ends at its NUL or with the record.
inline std::string TextIn(CBlockBytes const& vByte, size_t nOffset) {
    auto const p = vByte.begin() + static_cast<std::ptrdiff_t>(nOffset);
    return {p, std::find(p, vByte.end(), 0)};
}

inline CPlace ShortIn(CBlockBytes const& vByte, size_t nOffset) {
    return static_cast<int16_t>(vByte[nOffset] + 256 * vByte[nOffset + 1]);
}

inline void PutShort(CBlockBytes& vByte, size_t nOffset, CPlace n) {
    vByte[nOffset] = static_cast<unsigned char>(n & 0xFF);
    vByte[nOffset + 1] = static_cast<unsigned char>(n >> 8 & 0xFF);
}

// As much of the text as fits, and zeros behind it.
inline void PutFilled(CBlockBytes& vByte, size_t nOffset, size_t nSize, std::string strText) {
    strText.resize(nSize, '\0');
    std::copy(strText.begin(), strText.end(), vByte.begin() + static_cast<std::ptrdiff_t>(nOffset));
}

inline unsigned char LengthIn(CBlockBytes const& vByte, size_t nOffset) {
    return static_cast<unsigned char>(TextIn(vByte, nOffset).size() & 0xFF);
}

// --- the model -----------------------------------------------------------------------------------------------------
//
//   search      with a text   tree of what it finds; the same query again keeps the tree
//               without       no tree
//   count       with a tree   its levels; the selection is taken whatever it is
//               without       prefectures anew each time; cities and towns when the selection has moved
//   get         position in the selected branch of the tree, without a tree in the lists
class CLegacyModel {
  public:
    void Open(CModelImage const& image) {
        *this = CLegacyModel();
        m_p = &image;
        m_browse.Bind(image);
    }
    void Search(CBlockBytes& vRequest, CBlockBytes& vCounts, CLegacyLists const& order);
    void Get(CPlace nKind, CBlockBytes& vField) const;

    CLegacyLists lists;
    std::string strCode, strAddr; // the query that is kept
    bool bKept = true;            // "-" is the code of a query that was too long to keep
    bool bSorted = true;          // not the tree of a scan that met the end of the entries
    CPlace nSelPref = 0, nSelCity = 0, nSelTown = 0;

    // Walks down in which children led back, or more was met than there is: how they end is left open.
    bool bOpenEnded = false;

  private:
    void Refine(std::string const& strNewCode, std::string const& strNewAddr, CEntries const& vOrder);
    void TakeCode(CEntries const& vOrder);
    void TakeAddr();
    CPlaces SearchCities(std::string const& strText);
    void Insert(CModelInfo const& info);
    void CountTree(CPlace nPref, CPlace nCity, CPlace nTown, CBlockBytes& vCounts);
    void CountLists(CPlace nPref, CPlace nCity, CPlace nTown, CBlockBytes& vCounts, CLegacyLists const& order);
    void ListTowns(CPlace nCity, CEntries const& vOrder);
    void Select(CPlace nPref, CPlace nCity, CPlace nTown) {
        nSelPref = nPref;
        nSelCity = nCity;
        nSelTown = nTown;
    }
    static void PutWidths(CBlockBytes& vCounts) {
        PutShort(vCounts, 528, 8);
        PutShort(vCounts, 530, 16);
        PutShort(vCounts, 532, 60);
    }
    void GetPref(CPlace nPos, CBlockBytes& vField) const;
    void GetCity(CPlace nPos, CBlockBytes& vField) const;
    void GetTown(CPlace nPos, CBlockBytes& vField) const;
    CEntries const* Towns() const;
    void Describe(CPlace nNode, CBlockBytes& vField) const;

    bool HasName(CPlace nNode) const { return m_p->Name(nNode) != NONE; }
    std::string Name(CPlace nNode) const { return HasName(nNode) ? m_p->At(m_p->Name(nNode)) : ""; }
    std::string DisplayName(CPlace nNode) const;
    CEntry Entry(CPlace nNode) const { return {nNode, DisplayName(nNode), {}}; }
    bool HasInfo(CPlace nNode) const { return m_p->Node(nNode).nInfo < Size(m_p->vInfo); }
    CModelInfo const& Info(CPlace nNode) const { return Of(m_p->vInfo, m_p->Node(nNode).nInfo); }
    void Collect(CPlace nNode, CPlaces& vPath, CPlaces& vOut);
    void Collect(CPlace nNode, CPlaces& vOut) {
        CPlaces vPath;
        Collect(nNode, vPath, vOut);
    }

    CModelImage const* m_p = nullptr;
    CModel m_browse; // searches codes, divides address texts
    CPlace m_nMet = 0;
};

// --- the model: names and nodes ------------------------------------------------------------------------------------

// Names of the levels below the city, the highest of each level. The organisation comes before building and floor, and
// these before a level-3 text, which is shown when it is short.
inline std::string CLegacyModel::DisplayName(CPlace nNode) const {
    unsigned const nLevel = m_p->Node(nNode).nLevel;
    if (nLevel == LEVEL_PREF) {
        CPlace const nNumber = PrefNumber(Name(nNode));
        std::string const strNumber = {static_cast<char>('0' + nNumber / 10), static_cast<char>('0' + nNumber % 10)};
        return Cut((nNumber == NONE ? "" : strNumber) + Name(nNode), 128);
    }
    if (nLevel == LEVEL_CITY) return HasName(nNode) ? Cut(CityLetter(Name(nNode)) + Name(nNode), 128) : "";
    CPlaces vLevel(8, NONE);
    for (CPlace n = nNode; m_p->IsNode(n) && m_p->Node(n).nLevel != LEVEL_CITY; n = m_p->Node(n).nParent)
        if (m_p->Node(n).nLevel < vLevel.size()) vLevel[m_p->Node(n).nLevel] = HasName(n) ? n : NONE;
    auto const Text = [&](CPlace nWanted) { return Of(vLevel, nWanted) == NONE ? "" : Name(Of(vLevel, nWanted)); };
    std::string strName = Text(LEVEL_TOWN);
    if (vLevel[LEVEL_OFFICE] != NONE)
        strName += Text(LEVEL_OFFICE);
    else if (vLevel[LEVEL_BLOCK] != NONE)
        strName += Text(LEVEL_BLOCK) + Text(LEVEL_NOTE);
    else if (Text(LEVEL_AREA).size() <= 19)
        strName += Text(LEVEL_AREA);
    return Cut(strName, 128);
}

// Nodes with a current entry, parents first.
inline void CLegacyModel::Collect(CPlace nNode, CPlaces& vPath, CPlaces& vOut) {
    bool const bBack = std::find(vPath.begin(), vPath.end(), nNode) != vPath.end();
    if (bBack || ++m_nMet > Size(m_p->vNode)) bOpenEnded = true;
    if (bOpenEnded) return;
    if (HasInfo(nNode) && !Info(nNode).bSuperseded) vOut.push_back(nNode);
    vPath.push_back(nNode);
    for (CPlace const nChild : m_p->Children(nNode)) Collect(nChild, vPath, vOut);
    vPath.pop_back();
}

// A prefecture and a city stand in the tree once. The town of a city that is new goes below the last city of the last
// prefecture, wherever its own prefecture stands.
inline void CLegacyModel::Insert(CModelInfo const& info) {
    if (info.bSuperseded || !m_p->IsNode(info.nNode)) return;
    CPlace nPref = NONE, nCity = NONE;
    for (CPlace n = m_p->Node(info.nNode).nParent; m_p->IsNode(n); n = m_p->Node(n).nParent) {
        if (m_p->Node(n).nLevel == LEVEL_PREF) nPref = n;
        if (m_p->Node(n).nLevel == LEVEL_CITY) nCity = n;
    }
    if (nPref == NONE || nCity == NONE) return;
    if (Find(lists.vTree, nPref) == nullptr) lists.vTree.push_back(Entry(nPref));
    CEntry& pref = *Find(lists.vTree, nPref);
    CEntry* pCity = Find(pref.vChild, nCity);
    if (pCity == nullptr) {
        pref.vChild.push_back(Entry(nCity));
        pCity = &lists.vTree.back().vChild.back();
    }
    pCity->vChild.push_back(Entry(info.nNode));
}

// --- the model: searching ------------------------------------------------------------------------------------------

inline void CLegacyModel::Search(CBlockBytes& vRequest, CBlockBytes& vCounts, CLegacyLists const& order) {
    size_t const nField = vRequest[LONG_CODE] != 0 ? LONG_CODE : SHORT_CODE;
    std::string const strText = TextIn(vRequest, nField), strNewCode = CodeOf(strText);
    PutFilled(vRequest, nField, std::min(strText.size(), strNewCode.size() + 1), strNewCode);
    Refine(strNewCode, TextIn(vRequest, ADDR_TEXT), order.vTree);

    CPlace const nPref = ShortIn(vRequest, 6), nCity = ShortIn(vRequest, 8), nTown = ShortIn(vRequest, 10);
    if (nPref >= 0 && nCity >= 0 && nTown >= 0) {
        for (size_t const n : {0u, 2u, 4u}) PutShort(vCounts, n, 0);
        if (lists.vTree.empty())
            CountLists(nPref, nCity, nTown, vCounts, order);
        else
            CountTree(nPref, nCity, nTown, vCounts);
    }
    PutShort(vCounts, 6, -1);
    PutShort(vCounts, 8, -1);
}

inline void CLegacyModel::Refine(std::string const& strNewCode, std::string const& strNewAddr,
                                 CEntries const& vOrder) {
    if (bKept && strNewCode == strCode && strNewAddr == strAddr) return;
    bKept = strNewCode.size() <= 7 && strNewAddr.size() <= 127;
    strCode = strNewCode;
    strAddr = strNewAddr;
    lists.vTree.clear();
    bSorted = true;
    if (!strCode.empty()) return TakeCode(vOrder);
    if (strAddr.empty()) return;
    TakeAddr();
    Sort(lists.vTree, vOrder);
}

// All entries in a row whose codes begin so, from the first one found; from entry 0 when none is. A row that meets the
// end of the table leaves the tree as it was put together.
inline void CLegacyModel::TakeCode(CEntries const& vOrder) {
    CPlace n = m_browse.SearchCode(strCode);
    if (n == NONE) n = 0;
    for (; n < Size(m_p->vInfo); ++n) {
        CPlace const nText = m_p->Text(Of(m_p->vInfo, n).nCode);
        if (nText == NONE || !Begins(m_p->At(nText), strCode)) return Sort(lists.vTree, vOrder);
        Insert(Of(m_p->vInfo, n));
    }
    bSorted = false;
}

// All below the deepest level that the text names in one go from the prefecture down. A node stands for its entry, and
// that for the node it names.
inline void CLegacyModel::TakeAddr() {
    CModelRecord divided;
    m_browse.DivideAddr(strAddr.c_str(), divided);
    m_nMet = 0;
    CPlaces vNode;
    if (divided[PREF_NODE] == NONE)
        vNode = SearchCities(strAddr);
    else if (divided[CITY_NODE] == NONE)
        Collect(divided[PREF_NODE], vNode);
    else
        Collect(divided[divided[TOWN_NODE] == NONE ? CITY_NODE : TOWN_NODE], vNode);
    for (CPlace const nNode : vNode) Insert(Info(nNode));
}

// Cities that the text begins with: the whole of one whose name is the text, and the first child of it that begins
// what follows; when nothing comes of these, all other cities found. A name in two parts is met by either part.
inline CPlaces CLegacyModel::SearchCities(std::string const& strText) {
    CPlaces vOut, vRest;
    for (CPlace const nCity : m_p->Cities()) {
        std::string const strName = Name(nCity);
        if (strName.empty()) continue;
        size_t const nFront = FrontPart(strName);
        size_t nCovered = 0;
        if (nFront == 0)
            nCovered = Begins(strText, strName) ? strName.size() : 0;
        else if (Begins(strText, Cut(strName, nFront)))
            nCovered = nFront;
        else if (Begins(strText, strName.substr(nFront)))
            nCovered = strName.size() - nFront;
        if (nCovered == 0) continue;
        std::string const strRest = strText.substr(nCovered);
        if (strRest.empty()) {
            Collect(nCity, vOut);
            continue;
        }
        CPlaces const vChild = m_p->Children(nCity);
        auto const p = std::find_if(vChild.begin(), vChild.end(),
                                    [&](CPlace n) { return HasName(n) && Begins(strRest, Name(n)); });
        if (p != vChild.end())
            Collect(*p, vOut);
        else
            vRest.push_back(nCity);
    }
    if (vOut.empty())
        for (CPlace const nCity : vRest) Collect(nCity, vOut);
    return vOut;
}

// --- the model: counting -------------------------------------------------------------------------------------------

inline void CLegacyModel::CountTree(CPlace nPref, CPlace nCity, CPlace nTown, CBlockBytes& vCounts) {
    Select(nPref, nCity, nTown);
    PutShort(vCounts, 0, Size(lists.vTree));
    CEntry const* const pPref = At(lists.vTree, nPref);
    if (pPref == nullptr) return;
    PutShort(vCounts, 2, Size(pPref->vChild));
    CEntry const* const pCity = At(pPref->vChild, nCity);
    if (pCity == nullptr) return;
    PutShort(vCounts, 4, Size(pCity->vChild));
    PutWidths(vCounts);
}

// Another prefecture begins at its first city, whichever is selected; cities and towns stay as long as the selected
// numbers do, also when it was a tree in which they were selected.
inline void CLegacyModel::CountLists(CPlace nPref, CPlace nCity, CPlace nTown, CBlockBytes& vCounts,
                                     CLegacyLists const& order) {
    lists.vPref.clear();
    for (CPlace const nNode : m_p->Prefs()) lists.vPref.push_back(Entry(nNode));
    Sort(lists.vPref, order.vPref);
    PutShort(vCounts, 0, m_p->Word(18));
    if (nPref != nSelPref || lists.vCity.empty()) {
        CEntry const* const pPref = At(lists.vPref, nPref);
        if (pPref == nullptr) return;
        lists.vCity.clear();
        lists.vTown.clear();
        for (CPlace const nNode : m_p->Children(pPref->nNode)) lists.vCity.push_back(Entry(nNode));
        Sort(lists.vCity, order.vCity);
        if (lists.vCity.empty()) return;
        ListTowns(0, order.vTown);
    } else if (nCity != nSelCity || lists.vTown.empty()) {
        PutShort(vCounts, 2, Size(lists.vCity));
        if (At(lists.vCity, nCity) == nullptr) return;
        ListTowns(nCity, order.vTown);
    }
    PutShort(vCounts, 2, Size(lists.vCity));
    PutShort(vCounts, 4, Size(lists.vTown));
    Select(nPref, nCity, nTown);
    PutWidths(vCounts);
}

// What lies below the city, not the city itself.
inline void CLegacyModel::ListTowns(CPlace nCity, CEntries const& vOrder) {
    m_nMet = 0;
    CPlaces vNode;
    for (CPlace const nChild : m_p->Children(Of(lists.vCity, nCity).nNode)) Collect(nChild, vNode);
    lists.vTown.clear();
    for (CPlace const nNode : vNode) lists.vTown.push_back(Entry(nNode));
    Sort(lists.vTown, vOrder);
}

// --- the model: getting --------------------------------------------------------------------------------------------

inline void CLegacyModel::Get(CPlace nKind, CBlockBytes& vField) const {
    CPlace const nPos = ShortIn(vField, 0);
    if (nKind == 0) GetPref(nPos, vField);
    if (nKind == 1) GetCity(nPos, vField);
    if (nKind == 2) GetTown(nPos, vField);
}

// From a list the display name without its two digits, from the tree the node's own name.
inline void CLegacyModel::GetPref(CPlace nPos, CBlockBytes& vField) const {
    bool const bTree = !lists.vTree.empty();
    CEntry const* const pEntry = At(bTree ? lists.vTree : lists.vPref, nPos);
    PutFilled(vField, 4, 60, "");
    if (pEntry == nullptr) return;
    std::string const strShown = pEntry->strName.size() < 2 ? "" : pEntry->strName.substr(2);
    PutFilled(vField, 4, 60, bTree ? Name(pEntry->nNode) : strShown);
    vField[377] = LengthIn(vField, 4);
}

// From a list without its letter. A city that is not in the tree has an empty name, one that is not in the list none.
inline void CLegacyModel::GetCity(CPlace nPos, CBlockBytes& vField) const {
    bool const bTree = !lists.vTree.empty();
    CEntry const* const pPref = At(lists.vTree, nSelPref);
    CEntry const* const pChild = pPref == nullptr ? nullptr : At(pPref->vChild, nPos);
    CEntry const* const pEntry = bTree ? pChild : At(lists.vCity, nPos);
    PutFilled(vField, 4, 60, "");
    if (!bTree && pEntry == nullptr) return;
    std::string strName;
    if (pEntry != nullptr && bTree) strName = Name(pEntry->nNode);
    if (pEntry != nullptr && !bTree && !pEntry->strName.empty()) strName = pEntry->strName.substr(1);
    PutFilled(vField, 4, 60, strName);
    size_t const nFront = FrontPart(Cut(strName, 60));
    unsigned char const nLength = LengthIn(vField, 4);
    vField[377] = nFront != 0 ? static_cast<unsigned char>(nFront) : nLength;
    if (nFront != 0) vField[378] = static_cast<unsigned char>(nLength - nFront);
}

inline CEntries const* CLegacyModel::Towns() const {
    if (lists.vTree.empty()) return &lists.vTown;
    CEntry const* const pPref = At(lists.vTree, nSelPref);
    CEntry const* const pCity = pPref == nullptr ? nullptr : At(pPref->vChild, nSelCity);
    return pCity == nullptr ? nullptr : &pCity->vChild;
}

inline void CLegacyModel::GetTown(CPlace nPos, CBlockBytes& vField) const {
    if (nPos < 0) return;
    PutFilled(vField, 4, 60, "");
    PutFilled(vField, 126, 128, "");
    PutFilled(vField, 387, 5, "");
    PutFilled(vField, 393, 7, "");
    vField[386] = 0;
    CEntry const* const pEntry = Towns() == nullptr ? nullptr : At(*Towns(), nPos);
    if (pEntry == nullptr) return;
    CPlace const nNode = pEntry->nNode;
    if (HasInfo(nNode)) {
        CPlace const nCode = m_p->Text(Info(nNode).nCode), nOldCode = m_p->Behind(Info(nNode).nCode);
        if (nCode != NONE) PutFilled(vField, 393, 7, m_p->At(nCode));
        if (nOldCode != NONE) PutFilled(vField, 387, 5, m_p->At(nOldCode));
    }
    Describe(nNode, vField);
    vField[377] = LengthIn(vField, 4);
    vField[381] = LengthIn(vField, 126);
    vField[409] = LengthIn(vField, 387);
    vField[410] = LengthIn(vField, 393);
}

// Names on the way up to the city: the town's, and what lies below it. A node whose name cannot be read adds nothing,
// and one without a parent nothing but, when it is the entry's own, its name.
inline void CLegacyModel::Describe(CPlace nNode, CBlockBytes& vField) const {
    std::string strTown = Name(nNode), strDetail;
    unsigned char nKind = 0;
    for (CPlace n = nNode; m_p->IsNode(n); n = m_p->Node(n).nParent) {
        CModelNode const& node = m_p->Node(n);
        if (node.nLevel == LEVEL_CITY || node.nParent == ADDR_NONE) break;
        bool const bBelowTown = node.nLevel == LEVEL_AREA || node.nLevel == LEVEL_BLOCK || node.nLevel == LEVEL_NOTE;
        if (!HasName(n) || (bBelowTown && nKind == 3)) continue;
        switch (node.nLevel) {
        case LEVEL_TOWN:
            strTown = Name(n);
            break;
        case LEVEL_AREA:
            strDetail = Name(n);
            nKind = 1;
            break;
        case LEVEL_BLOCK:
            strDetail = Name(n) + strDetail;
            nKind = 4;
            break;
        case LEVEL_NOTE:
            strDetail = Name(n);
            break;
        case LEVEL_OFFICE:
            strDetail = Name(n);
            nKind = 3;
            break;
        default:
            break;
        }
    }
    PutFilled(vField, 4, 60, strTown);
    PutFilled(vField, 126, 128, strDetail);
    vField[386] = nKind;
}

#endif
