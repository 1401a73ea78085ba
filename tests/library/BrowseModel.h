// BrowseModel.h - a model of browsing: what each call answers, and what it leaves in the three lists.
//
//   CModel model;
//   model.Bind(CModelImage(vByte));               // reads the image by itself; no call of the library
//   bool bFound = model.GetCityFromNo(12, vRecord);
//
// Written from the description of the lists, with 64-bit offsets that no damage can make wrap.
#ifndef QEADRS_TESTS_LIBRARY_BROWSEMODEL_H
#define QEADRS_TESTS_LIBRARY_BROWSEMODEL_H

#include "tests/library/AddrTextWorld.h"
#include "tests/library/ApiWorld.h"

#include <algorithm>
#include <array>
#include <ostream>
#include <string>
#include <vector>

// --- the image as its drawing has it -------------------------------------------------------------------------------

// An offset in the string area, the index of a node or of an entry; NONE is null.
using CPlace = int64_t;
constexpr CPlace NONE = -1;
constexpr CPlace FOREIGN = -2;              // an address outside the image
constexpr CPlace CALLERS = CPlace{1} << 40; // added to an offset in the caller's text

using CPlaces = std::vector<CPlace>;

template <typename T>
CPlace Size(T const& v) {
    return static_cast<CPlace>(v.size());
}
template <typename T>
T const& Of(std::vector<T> const& v, CPlace n) {
    return v[static_cast<size_t>(n)];
}

struct CModelNode {
    unsigned nLevel;
    CPlace nName, nInfo, nParent, nChildren, nFirstChild;
};

struct CModelInfo {
    CPlace nCode, nNode;
    bool bSuperseded;
};

// The tables read into plain records. REQUIRES: the string area ends in NUL.
struct CModelImage {
    explicit CModelImage(CBlockBytes const& vImage) : vByte(vImage) {
        for (CPlace n = 0; n < Word(8); ++n) {
            CPlace const p = Word(11) + 24 * n;
            vNode.push_back(
                {vByte[static_cast<size_t>(p)], Long(p + 4), Long(p + 8), Long(p + 12), Long(p + 16), Long(p + 20)});
        }
        for (CPlace n = 0; n < Word(9); ++n) {
            CPlace const nNode = Long(Word(12) + 8 * n + 4);
            vInfo.push_back({Long(Word(12) + 8 * n), nNode % 0x80000000, nNode >= 0x80000000});
        }
        for (CPlace n = 0; n < Word(20); ++n) vCityIndex.push_back(Long(Word(14) + 4 * n));
        strArea.assign(reinterpret_cast<char const*>(&vByte[static_cast<size_t>(Word(13))]),
                       static_cast<size_t>(Word(10)));
    }

    CPlace Word(CPlace nWord) const { return Long(4 * nWord); }
    CPlace Long(CPlace nOffset) const {
        auto const* const p = &vByte.at(static_cast<size_t>(nOffset));
        return p[0] + 256ll * p[1] + 65536ll * p[2] + 16777216ll * p[3];
    }

    CPlace Text(CPlace nOffset) const { return nOffset < Size(strArea) ? nOffset : NONE; }
    std::string At(CPlace nText) const { return strArea.c_str() + nText; }
    // What stands behind the text at nOffset: 1 the text behind its NUL, 0 the NUL itself.
    CPlace Behind(CPlace nOffset, CPlace nSkip = 1) const {
        if (Text(nOffset) == NONE) return NONE;
        return Text(nOffset + static_cast<CPlace>(At(nOffset).size()) + nSkip);
    }

    bool IsNode(CPlace n) const { return n >= 0 && n < Size(vNode); }
    CModelNode const& Node(CPlace n) const { return Of(vNode, n); }
    CPlace Name(CPlace nNode) const { return Text(Node(nNode).nName); }
    CPlace Reading(CPlace nNode) const { return Behind(Node(nNode).nName); }
    bool BeginsWith(CPlace nNode, std::string const& str) const {
        return Name(nNode) != NONE && At(Name(nNode)).compare(0, str.size(), str) == 0;
    }

    // The nodes of a run, as far as the table has them.
    CPlaces Run(CPlace nFirst, CPlace nCount) const {
        CPlaces vRun;
        for (CPlace n = nFirst; n < nFirst + nCount && IsNode(n); ++n) vRun.push_back(n);
        return vRun;
    }
    CPlaces Prefs() const { return Run(Word(19), Word(18)); }
    CPlaces Cities() const { return Run(Word(21), Word(20)); }
    CPlaces Towns() const { return Run(Word(23), Word(22)); }
    CPlaces Children(CPlace nNode) const { return Run(Node(nNode).nFirstChild, Node(nNode).nChildren); }

    CBlockBytes vByte;
    std::vector<CModelNode> vNode;
    std::vector<CModelInfo> vInfo;
    CPlaces vCityIndex;
    std::string strArea;
};

inline bool IsWhole(CPlaces const& vRun, CPlace nCount) {
    return Size(vRun) == nCount;
}

// --- address records -----------------------------------------------------------------------------------------------

// The twenty fields in their order.
enum EField {
    CODE_EXT,
    CODE,
    PREF,
    PREF_KANA,
    CITY,
    CITY_KANA,
    TOWN,
    TOWN_KANA,
    AREA,
    AREA_KANA,
    OFFICE,
    OFFICE_KANA,
    BLOCK,
    BLOCK_KANA,
    NOTE,
    LIST_NODE,
    PREF_NODE,
    CITY_NODE,
    TOWN_NODE,
    ORDER,
    FIELDS
};

struct CModelRecord {
    CModelRecord() {
        anField.fill(NONE);
        anField[ORDER] = 0;
    }
    CPlace& operator[](int nField) { return anField[static_cast<size_t>(nField)]; }
    CPlace operator[](int nField) const { return anField[static_cast<size_t>(nField)]; }
    bool operator==(CModelRecord const& other) const { return anField == other.anField; }
    std::array<CPlace, FIELDS> anField;
};
using CModelRecords = std::vector<CModelRecord>;

// Offsets and indices in the order of EField.
inline std::ostream& operator<<(std::ostream& stream, CModelRecord const& record) {
    for (CPlace const n : record.anField) stream << n << ' ';
    return stream << '\n';
}

char const* const PREF_NUMBERS[] = {
    "北海道", "青森県", "岩手県", "宮城県",   "秋田県", "山形県",   "福島県", "茨城県", "栃木県", "群馬県",
    "埼玉県", "千葉県", "東京都", "神奈川県", "新潟県", "富山県",   "石川県", "福井県", "山梨県", "長野県",
    "岐阜県", "静岡県", "愛知県", "三重県",   "滋賀県", "京都府",   "大阪府", "兵庫県", "奈良県", "和歌山県",
    "鳥取県", "島根県", "岡山県", "広島県",   "山口県", "徳島県",   "香川県", "愛媛県", "高知県", "福岡県",
    "佐賀県", "長崎県", "熊本県", "大分県",   "宮崎県", "鹿児島県", "沖縄県",
};

inline CPlace PrefNumber(std::string const& strName) {
    auto const p = std::find(std::begin(PREF_NUMBERS), std::end(PREF_NUMBERS), strName);
    return p == std::end(PREF_NUMBERS) ? NONE : p - std::begin(PREF_NUMBERS);
}

// What records are sorted by: the prefecture's number when it has one, then five names without anything between them.
inline std::string SortKey(CModelImage const& image, CModelRecord const& record) {
    std::string strKey;
    CPlace const nNumber = record[PREF] == NONE ? NONE : PrefNumber(image.At(record[PREF]));
    if (nNumber != NONE) strKey = {static_cast<char>('0' + nNumber / 10), static_cast<char>('0' + nNumber % 10)};
    for (int nField : {PREF, CITY, TOWN, AREA, OFFICE})
        if (record[nField] != NONE) strKey += image.At(record[nField]);
    return strKey;
}

// --- names that end in two bytes -----------------------------------------------------------------------------------

inline bool Holds(std::string const& str, size_t nPos, char const* pszTwoBytes) {
    return nPos + 2 <= str.size() && str.compare(nPos, 2, pszTwoBytes) == 0;
}
inline bool EndsIn(std::string const& str, char const* pszTwoBytes) {
    return str.size() >= 2 && Holds(str, str.size() - 2, pszTwoBytes);
}

// Where one of the markers stands: from six bytes before the end backwards in steps of two, down to byte 2; else 0.
inline size_t FindMarker(std::string const& str, std::vector<char const*> const& vMarker) {
    for (size_t nEnd = str.size(); nEnd >= 8; nEnd -= 2)
        for (char const* psz : vMarker)
            if (Holds(str, nEnd - 6, psz)) return nEnd - 6;
    return 0;
}

// Length of a city name's part up to its marker, 0 when it has none.
inline size_t FrontPart(std::string const& strName) {
    size_t nPos = 0;
    if (strName.size() < 3) return 0;
    if (EndsIn(strName, KU)) nPos = FindMarker(strName, {SHI});
    if (EndsIn(strName, CHO)) nPos = FindMarker(strName, {GUN, SHIMA});
    if (EndsIn(strName, MURA)) nPos = FindMarker(strName, {GUN, SHIMA, AGATA});
    return nPos == 0 ? 0 : nPos + 2;
}

// Whether a name is looked for at the ends of city names: it ends like a ward, town or village without its front.
inline bool IsLookedForAtEnds(std::string const& strName) {
    if (EndsIn(strName, KU)) return FindMarker(strName, {SHI}) == 0;
    if (EndsIn(strName, CHO)) return FindMarker(strName, {GUN}) == 0;
    if (EndsIn(strName, MURA)) return FindMarker(strName, {GUN, SHIMA, AGATA}) == 0;
    return false;
}

inline bool IsEndOf(std::string const& strEnd, std::string const& str) {
    return strEnd.size() <= str.size() && str.compare(str.size() - strEnd.size(), strEnd.size(), strEnd) == 0;
}

// --- the model -----------------------------------------------------------------------------------------------------
//
//   list        filled by                                                    emptied by
//   prefectures GetPref (a slot for each number), GetPrefFromCity            both of them
//   cities      GetCityFromNo, GetPrefFromCity (the city of the text),       both of them, and the lookups
//               the lookups by code
//   towns       GetTownFromNo, GetTownExFromNo, GetPrefFromCity              both of them, and GetTownExFromNo
//               (the town of the text)
//
// A level that holds something when it is asked for is fixed: its first entry is the only answer, and stays. All
// other calls leave the lists alone; another image empties them and sets the sort type back.
class CModel {
  public:
    void Bind(CModelImage const& image) {
        m_p = &image;
        Empty();
        nSortType = 2;
    }

    bool GetPref(CModelRecords& vOut);
    bool GetPrefFromCity(char const* pszText, CModelRecords& vOut);
    bool GetCityFromNo(CPlace nNo, CModelRecords& vOut);
    bool GetTownFromNo(CPlace nNo, CModelRecords& vOut);
    bool GetTownExFromNo(CPlace nNo, CModelRecords& vOut);
    bool SearchCity(char const* pszName, CPlaces& vOut) const;
    bool GetAddrFromPostCode7(char const* pszCode, CModelRecords& vOut);
    bool GetAddrFromPostCode5(char const* pszCode, CModelRecords& vOut);
    bool DivideAddr(char const* pszText, CModelRecord& record) const;
    CPlace SearchCode(std::string const& strCode) const;

    CPlaces vPref, vCity, vTown;
    int nSortType = 2;

  private:
    void Empty() {
        vPref.clear();
        vCity.clear();
        vTown.clear();
    }
    void Sort(CModelRecords& vOut) const;
    bool HasInfo(CPlace nNode) const { return m_p->Node(nNode).nInfo < Size(m_p->vInfo); }
    CModelInfo const& Info(CPlace nNode) const { return Of(m_p->vInfo, m_p->Node(nNode).nInfo); }
    void TakeCodes(CPlace nNode, CModelRecord& record) const;
    void TakeName(CPlace nNode, int nField, CModelRecord& record) const;
    void TakeLevel(CPlace nNode, CModelRecord& record) const;
    void Trace(CPlace nNode, CModelRecord record, CPlaces& vPath, size_t& nLeft, CModelRecords& vOut) const;
    CPlace SeparatePref(std::string const& strText, size_t& nPos, CModelRecord& record) const;
    CPlace SeparateCity(std::string const& strText, size_t& nPos, CPlace nPref, CModelRecord& record) const;
    CPlace SeparateTown(std::string const& strText, size_t& nPos, CPlace nCity, CModelRecord& record) const;
    bool SearchCityEnds(std::string const& strName, CPlaces& vOut) const;
    bool SearchCityIndex(std::string const& strName, CPlaces& vOut) const;
    CModelRecord Address(CModelInfo const& info) const;
    CPlace CityOf(CModelInfo const& info) const;

    CModelImage const* m_p = nullptr;
};

inline void Append(CModelRecords const& vRecord, CPlaces& vList) {
    for (CModelRecord const& record : vRecord) vList.push_back(record[LIST_NODE]);
}

// Records of equal keys keep their order.
inline void CModel::Sort(CModelRecords& vOut) const {
    if (nSortType != 9) return;
    std::stable_sort(vOut.begin(), vOut.end(), [this](CModelRecord const& left, CModelRecord const& right) {
        return SortKey(*m_p, left) < SortKey(*m_p, right);
    });
}

inline void CModel::TakeName(CPlace nNode, int nField, CModelRecord& record) const {
    record[nField] = m_p->Name(nNode);
    if (nField != NOTE) record[nField + 1] = m_p->Reading(nNode);
}

// Name and reading into the fields of the node's own level. A grouping level (5) and unknown ones have none.
inline void CModel::TakeLevel(CPlace nNode, CModelRecord& record) const {
    static int const anField[] = {PREF, CITY, TOWN, AREA, BLOCK, FIELDS, NOTE, OFFICE};
    unsigned const nLevel = m_p->Node(nNode).nLevel;
    if (nLevel < std::size(anField) && anField[nLevel] != FIELDS) TakeName(nNode, anField[nLevel], record);
}

// Both codes of the node's entry, if it has one.
inline void CModel::TakeCodes(CPlace nNode, CModelRecord& record) const {
    if (!HasInfo(nNode)) return;
    record[CODE] = m_p->Text(Info(nNode).nCode);
    record[CODE_EXT] = m_p->Behind(Info(nNode).nCode);
}

// One slot for each number. A prefecture without a number takes the slot of the one before it, and none when it is
// the first; a slot behind the end makes room for itself. A reading that lies outside ends it all.
inline bool CModel::GetPref(CModelRecords& vOut) {
    Empty();
    auto const nMost = std::max<CPlace>(Size(m_p->vNode), 47);
    auto nSlots = static_cast<size_t>(std::min(m_p->Word(18), nMost));
    vOut.resize(nSlots);
    vPref.resize(nSlots, NONE);
    CPlace nNumber = NONE;
    for (CPlace const nNode : m_p->Prefs()) {
        CPlace const nName = m_p->Name(nNode);
        if (nName != NONE && PrefNumber(m_p->At(nName)) != NONE) nNumber = PrefNumber(m_p->At(nName));
        if (nNumber == NONE) continue;
        auto const nSlot = static_cast<size_t>(nNumber);
        nSlots = std::max(nSlots, nSlot + 1);
        vOut.resize(nSlots);
        vPref.resize(nSlots, NONE);
        vOut[nSlot][PREF] = nName;
        if (m_p->Reading(nNode) == NONE) return false;
        vOut[nSlot][PREF_KANA] = m_p->Reading(nNode);
        vPref[nSlot] = nNode;
    }
    return true;
}

// A text with a prefecture in front gives what was read of it; else the prefectures, each name once, of the cities
// found for the city of the text. City and town of the text fix their levels in either case, also when nothing comes
// of it.
inline bool CModel::GetPrefFromCity(char const* pszText, CModelRecords& vOut) {
    if (pszText == nullptr) return false;
    Empty();
    CModelRecord divided;
    DivideAddr(pszText, divided);
    if (divided[TOWN_NODE] != NONE) vTown.push_back(divided[TOWN_NODE]);
    if (divided[CITY_NODE] != NONE) vCity.push_back(divided[CITY_NODE]);
    if (divided[PREF_NODE] != NONE) {
        vPref.push_back(divided[PREF_NODE]);
        vOut.push_back(divided);
        return true;
    }
    CPlaces vFound;
    if (divided[CITY] == NONE || !SearchCity(m_p->At(divided[CITY]).c_str(), vFound) || vFound.empty()) return false;
    for (CPlace const nCity : vFound) {
        CPlace const nParent = m_p->Node(nCity).nParent;
        if (!m_p->IsNode(nParent)) return true;
        CPlace const nName = m_p->Name(nParent);
        bool const bListed = std::any_of(vOut.begin(), vOut.end(), [&](CModelRecord const& other) {
            return nName != NONE && m_p->At(other[PREF]) == m_p->At(nName);
        });
        if (nName == NONE || bListed) continue;
        CModelRecord record;
        record[PREF] = nName;
        record[LIST_NODE] = nParent;
        vOut.push_back(record);
        vPref.push_back(nParent);
    }
    return true;
}

// Children that the table lacks are passed over.
inline bool CModel::GetCityFromNo(CPlace nNo, CModelRecords& vOut) {
    if (nNo >= Size(vPref)) return false;
    bool const bFixed = !vCity.empty();
    CPlace const nNode = bFixed ? vCity[0] : Of(vPref, nNo);
    if (nNode == NONE) return false;
    for (CPlace const nCity : bFixed ? CPlaces{nNode} : m_p->Children(nNode)) {
        CModelRecord record;
        TakeName(nCity, CITY, record);
        record[LIST_NODE] = nCity;
        vOut.push_back(record);
    }
    if (bFixed) return true;
    Sort(vOut);
    Append(vOut, vCity);
    return true;
}

// A child that the table lacks ends it, and nothing is kept; children without a name are passed over.
inline bool CModel::GetTownFromNo(CPlace nNo, CModelRecords& vOut) {
    if (nNo >= Size(vCity)) return false;
    bool const bFixed = !vTown.empty();
    CPlace const nNode = bFixed ? vTown[0] : Of(vCity, nNo);
    if (nNode == NONE) return false;
    CPlaces const vNode = bFixed ? CPlaces{nNode} : m_p->Children(nNode);
    for (CPlace const nTown : vNode) {
        bool const bNamed = m_p->Name(nTown) != NONE && !m_p->At(m_p->Name(nTown)).empty();
        if (!bFixed && !bNamed) continue;
        CModelRecord record;
        TakeName(nTown, TOWN, record);
        TakeCodes(nTown, record);
        record[LIST_NODE] = nTown;
        vOut.push_back(record);
    }
    if (bFixed) return true;
    if (!IsWhole(vNode, m_p->Node(nNode).nChildren)) return false;
    Sort(vOut);
    Append(vOut, vTown);
    return true;
}

// Its records name no list node: the list of towns holds nothing but NONE then.
inline bool CModel::GetTownExFromNo(CPlace nNo, CModelRecords& vOut) {
    vTown.clear();
    if (nNo >= Size(vCity)) return true;
    CPlace const nNode = Of(vCity, nNo);
    if (nNode == NONE) return true;
    CPlaces vPath = {nNode};
    size_t nLeft = m_p->vNode.size();
    Trace(nNode, CModelRecord(), vPath, nLeft, vOut);
    Sort(vOut);
    Append(vOut, vTown);
    return true;
}

// Depth first; siblings share one record. In a damaged tree an ancestor is passed over, and the walk ends with as
// many children as there are nodes.
inline void CModel::Trace(CPlace nNode, CModelRecord record, CPlaces& vPath, size_t& nLeft,
                          CModelRecords& vOut) const {
    for (CPlace const nChild : m_p->Children(nNode)) {
        if (nLeft == 0) return;
        --nLeft;
        if (std::find(vPath.begin(), vPath.end(), nChild) != vPath.end()) continue;
        TakeLevel(nChild, record);
        if (HasInfo(nChild) && !Info(nChild).bSuperseded) {
            TakeCodes(nChild, record);
            vOut.push_back(record);
        }
        vPath.push_back(nChild);
        Trace(nChild, record, vPath, nLeft, vOut);
        vPath.pop_back();
    }
}

inline bool CModel::SearchCity(char const* pszName, CPlaces& vOut) const {
    if (pszName == nullptr) return false;
    vOut.clear();
    return IsLookedForAtEnds(pszName) ? SearchCityEnds(pszName, vOut) : SearchCityIndex(pszName, vOut);
}

// In node order; either may be the end of the other.
inline bool CModel::SearchCityEnds(std::string const& strName, CPlaces& vOut) const {
    for (CPlace const nCity : m_p->Cities()) {
        if (m_p->Name(nCity) == NONE) continue;
        std::string const strCity = m_p->At(m_p->Name(nCity));
        if (IsEndOf(strCity, strName) || IsEndOf(strName, strCity)) vOut.push_back(nCity);
    }
    return IsWhole(m_p->Cities(), m_p->Word(20));
}

// The hit, then backwards down to position 1, then forwards. An entry that cannot be read ends search and walks.
inline bool CModel::SearchCityIndex(std::string const& strName, CPlaces& vOut) const {
    CPlaces const& vIndex = m_p->vCityIndex;
    auto const nCount = Size(vIndex);
    auto const Begins = [&](CPlace n) {
        return m_p->IsNode(Of(vIndex, n)) && m_p->BeginsWith(Of(vIndex, n), strName);
    };
    CPlace nLow = 0, nHigh = nCount - 1, nHit = nHigh / 2;
    for (;; nHit = (nLow + nHigh) / 2) {
        if (nLow > nHigh) return false;
        CPlace const nNode = Of(vIndex, nHit);
        if (!m_p->IsNode(nNode) || m_p->Name(nNode) == NONE) return false;
        int const nOrder = m_p->At(m_p->Name(nNode)).compare(0, strName.size(), strName);
        if (nOrder == 0) break;
        (nOrder > 0 ? nHigh : nLow) = nOrder > 0 ? nHit - 1 : nHit + 1;
    }
    for (CPlace n = nHit; n > 0 && Begins(n); --n) vOut.push_back(Of(vIndex, n));
    for (CPlace n = nHit + 1; n < nCount && Begins(n); ++n) vOut.push_back(Of(vIndex, n));
    return true;
}

// --- the model: address texts and codes ----------------------------------------------------------------------------

inline bool CModel::DivideAddr(char const* pszText, CModelRecord& record) const {
    if (pszText == nullptr) return false;
    size_t nPos = 0;
    CPlace const nPref = SeparatePref(pszText, nPos, record);
    CPlace const nCity = SeparateCity(pszText, nPos, nPref, record);
    if (SeparateTown(pszText, nPos, nCity, record) == NONE) record[AREA] = CALLERS + static_cast<CPlace>(nPos);
    return true;
}

// The first whose name the text begins with; "" fits every text, and a name that cannot be read ends the search.
inline CPlace CModel::SeparatePref(std::string const& strText, size_t& nPos, CModelRecord& record) const {
    for (CPlace const nNode : m_p->Prefs()) {
        if (m_p->Name(nNode) == NONE) return NONE;
        std::string const strName = m_p->At(m_p->Name(nNode));
        if (strText.compare(nPos, strName.size(), strName) != 0) continue;
        TakeName(nNode, PREF, record);
        record[PREF_NODE] = nNode;
        nPos += strName.size();
        return nNode;
    }
    return NONE;
}

// The longest, the first of equal ones: the whole name, or the length of its front part when the text goes on with
// the front part or with what follows it.
inline CPlace CModel::SeparateCity(std::string const& strText, size_t& nPos, CPlace nPref,
                                   CModelRecord& record) const {
    CPlace nBest = NONE;
    size_t nBestLength = 0;
    for (CPlace const nNode : nPref == NONE ? m_p->Cities() : m_p->Children(nPref)) {
        std::string const strName = m_p->Name(nNode) == NONE ? "" : m_p->At(m_p->Name(nNode));
        size_t const nFront = FrontPart(strName);
        auto const Follows = [&](std::string const& str) { return strText.compare(nPos, str.size(), str) == 0; };
        size_t nLength = 0;
        if (Follows(strName))
            nLength = strName.size();
        else if (nFront != 0 && (Follows(strName.substr(0, nFront)) || Follows(strName.substr(nFront))))
            nLength = nFront;
        if (nLength <= nBestLength) continue;
        nBest = nNode;
        nBestLength = nLength;
    }
    if (nBest == NONE) return NONE;
    TakeName(nBest, CITY, record);
    TakeCodes(nBest, record);
    record[CITY_NODE] = nBest;
    nPos = std::min(nPos + nBestLength, strText.size());
    return nBest;
}

// The first whose name, which is not empty, the text goes on with.
inline CPlace CModel::SeparateTown(std::string const& strText, size_t& nPos, CPlace nCity,
                                   CModelRecord& record) const {
    for (CPlace const nNode : nCity == NONE ? m_p->Towns() : m_p->Children(nCity)) {
        std::string const strName = m_p->Name(nNode) == NONE ? "" : m_p->At(m_p->Name(nNode));
        if (strName.empty() || strText.compare(nPos, strName.size(), strName) != 0) continue;
        TakeName(nNode, TOWN, record);
        TakeCodes(nNode, record);
        record[TOWN_NODE] = nNode;
        nPos += strName.size();
        record[AREA] = CALLERS + static_cast<CPlace>(nPos);
        return nNode;
    }
    return NONE;
}

// The first entry whose code begins so; a code that cannot be read counts as "".
inline CPlace CModel::SearchCode(std::string const& strCode) const {
    auto const Order = [&](CPlace n) {
        CPlace const nText = m_p->Text(Of(m_p->vInfo, n).nCode);
        return (nText == NONE ? "" : m_p->At(nText)).compare(0, strCode.size(), strCode);
    };
    if (strCode.empty()) return 0;
    CPlace nLow = 0, nHigh = Size(m_p->vInfo) - 1, nHit = nHigh / 2;
    for (;; nHit = (nLow + nHigh) / 2) {
        if (nLow > nHigh) return NONE;
        int const nOrder = Order(nHit);
        if (nOrder == 0) break;
        (nOrder > 0 ? nHigh : nLow) = nOrder > 0 ? nHit - 1 : nHit + 1;
    }
    while (nHit > 0 && Order(nHit - 1) == 0) --nHit;
    return nHit;
}

// Other than elsewhere the second code is the first one's own NUL.
inline CModelRecord CModel::Address(CModelInfo const& info) const {
    CModelRecord record;
    record[CODE] = m_p->Text(info.nCode);
    record[CODE_EXT] = m_p->Behind(info.nCode, 0);
    for (CPlace n = info.nNode; m_p->IsNode(n); n = m_p->Node(n).nParent) TakeLevel(n, record);
    return record;
}

inline CPlace CModel::CityOf(CModelInfo const& info) const {
    CPlace n = info.nNode;
    while (m_p->IsNode(n) && m_p->Node(n).nLevel != LEVEL_CITY) n = m_p->Node(n).nParent;
    return m_p->IsNode(n) ? n : NONE;
}

// All entries whose codes begin so and that have a town and a city; their cities, repeats included, in the answer's
// order.
inline bool CModel::GetAddrFromPostCode7(char const* pszCode, CModelRecords& vOut) {
    std::string strCode = pszCode == nullptr ? "" : pszCode;
    strCode.erase(std::remove(strCode.begin(), strCode.end(), '-'), strCode.end());
    CPlace const nStart = strCode.empty() ? NONE : SearchCode(strCode);
    if (nStart == NONE) return false;
    vCity.clear();
    for (auto n = static_cast<size_t>(nStart); n < m_p->vInfo.size(); ++n) {
        CModelRecord record = Address(m_p->vInfo[n]);
        if (record[CODE] == NONE || m_p->At(record[CODE]).compare(0, strCode.size(), strCode) != 0) break;
        record[LIST_NODE] = CityOf(m_p->vInfo[n]);
        if (record[TOWN] != NONE && record[LIST_NODE] != NONE) vOut.push_back(record);
    }
    Sort(vOut);
    Append(vOut, vCity);
    return true;
}

// All entries from the first whose code begins so, as far as their old code is the same or cannot be read; the cities
// without neighbouring repeats, and NONE for an entry without one. Never sorted, and no record names its city.
inline bool CModel::GetAddrFromPostCode5(char const* pszCode, CModelRecords& vOut) {
    CPlace const nStart = pszCode == nullptr ? NONE : SearchCode(pszCode);
    if (nStart == NONE) return false;
    vCity.clear();
    for (auto n = static_cast<size_t>(nStart); n < m_p->vInfo.size(); ++n) {
        CModelInfo const& info = m_p->vInfo[n];
        if (m_p->Behind(info.nCode) != NONE && m_p->At(m_p->Behind(info.nCode)) != pszCode) continue;
        CPlace const nCity = CityOf(info);
        if (vCity.empty() || vCity.back() != nCity) vCity.push_back(nCity);
        vOut.push_back(Address(info));
    }
    return true;
}

#endif
