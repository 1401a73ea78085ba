// AdrNum.cpp - the lists behind a selection screen: how long they are, and what stands at a position.
//
// While the refinement tree holds something, the lists are its levels; else they are those of the whole dictionary.
#include "dic/AddrDic.h"
#include "dic/ImageView.h"
#include "dic/NodeEntry.h"
#include "dic/NodeRange.h"
#include "dic/UpwardWalk.h"
#include "tree/TreeBuilder.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

namespace {

// Bytes that a host needs for a name of each level.
constexpr short PREF_WIDTH = 8;
constexpr short CITY_WIDTH = 16;
constexpr short TOWN_WIDTH = 60;

// What display names begin with, and the lists show without.
constexpr size_t PREF_PREFIX = 2; // the code
constexpr size_t CITY_PREFIX = 1; // the letter of the kind

// Kinds of a town's detail text.
enum tagDETAIL : char { DETAIL_NONE = 0, DETAIL_AREA = 1, DETAIL_OFFICE = 3, DETAIL_BLOCK = 4 };

// A caller's field of nSize bytes: a text that fills it has no NUL, a shorter one is followed by zeros.
struct CField {
    char* psz;
    size_t nSize;

    CField(char* pszField, int nLength) : psz(pszField), nSize(nLength < 0 ? 0 : static_cast<size_t>(nLength)) {}

    void Set(std::string_view strText) const {
        size_t const nLength = strText.copy(psz, nSize);
        std::memset(psz + nLength, 0, nSize - nLength);
    }
    // In front of what is there, whose end goes when both do not fit.
    void Prepend(std::string_view strText) const {
        size_t const nLength = std::min(strText.size(), nSize);
        std::memmove(psz + nLength, psz, std::min(strnlen(psz, nSize), nSize - nLength));
        strText.copy(psz, nLength);
    }
};

// A text of the image; null counts as "".
std::string_view View(CImageView const& image, char const* psz) {
    return std::string_view(psz, image.Length(psz));
}

std::string_view NameOf(CImageView const& image, tagADDRNODE const* pNode) {
    return pNode == nullptr ? "" : View(image, image.At(pNode->nName));
}

// A display name without its prefix.
std::string_view ShownName(tagADDRPNT const& entry, size_t nPrefix) {
    char const* const pszShown = entry.szName + nPrefix; // in its field, also behind a name of one byte
    return std::string_view(pszShown, strnlen(pszShown, sizeof entry.szName - nPrefix));
}

// The entry at a position, null outside the list.
tagADDRPNT const* At(std::vector<tagADDRPNT> const& vEntry, int nIndex) {
    return static_cast<size_t>(nIndex) < vEntry.size() ? &vEntry[static_cast<size_t>(nIndex)] : nullptr;
}

short Truncated(size_t n) {
    return static_cast<short>(static_cast<uint16_t>(n));
}

using CNodes = std::vector<tagADDRNODE const*>;

// Makes vEntry a list of these nodes, sorted by display name. Its memory is used again; when there is not enough, it
// stays as it was.
void FillEntries(CImageView const& image, CNodes const& vNode, std::vector<tagADDRPNT>& vEntry) {
    if (vEntry.capacity() < vNode.size()) {
        std::vector<tagADDRPNT> vLarger;
        vLarger.reserve(vNode.size());
        vEntry.swap(vLarger);
    }
    vEntry.clear();
    CEntryWriter writer(image);
    for (tagADDRNODE const* const pNode : vNode) writer.Append(*pNode, vEntry);
    SortEntries(vEntry);
}

CNodes NodesOf(CImageView const& image, CNodeRange const& range) {
    CNodes vNode;
    vNode.reserve(range.Count());
    for (uint32_t n = range.nFirst; n < range.nEnd; ++n) vNode.push_back(image.Node(n));
    return vNode;
}

// The nodes of current entries below a city.
CNodes TownsOf(CImageView const& image, tagADDRNODE const& city) {
    CSubtreeWalk walk(image);
    CNodes vNode;
    CNodeRange const children = ChildrenOf(image, city);
    vNode.reserve(children.Count()); // mostly one for each
    for (uint32_t n = children.nFirst; n < children.nEnd; ++n) CollectCurrent(image, walk, *image.Node(n), vNode);
    return vNode;
}

} // namespace

// --- counts --------------------------------------------------------------------------------------------------------

int CAddrDic::GetAdrNum(int nPref, int nCity, int nTown, short* pnPref, short* pnCity, short* pnTown,
                        short* pnPrefWidth, short* pnCityWidth, short* pnTownWidth) {
    for (short const* p : {pnPref, pnCity, pnTown, pnPrefWidth, pnCityWidth, pnTownWidth})
        if (p == nullptr) return 0;
    if (nPref < 0 || nCity < 0 || nTown < 0) return 0;
    *pnPref = *pnCity = *pnTown = 0;
    bool const bFound = vRefineTree.empty() ? CountLists(nPref, nCity, nTown, pnPref, pnCity, pnTown)
                                            : CountTree(nPref, nCity, nTown, pnPref, pnCity, pnTown);
    if (!bFound) return 0;
    *pnPrefWidth = PREF_WIDTH;
    *pnCityWidth = CITY_WIDTH;
    *pnTownWidth = TOWN_WIDTH;
    return 1;
}

bool CAddrDic::CountTree(int nPref, int nCity, int nTown, short* pnPref, short* pnCity, short* pnTown) {
    Select(nPref, nCity, nTown); // also when it is not there
    *pnPref = Truncated(vRefineTree.size());
    tagADDRPNT const* const pPref = At(vRefineTree, nPref);
    if (pPref == nullptr) return false;
    *pnCity = Truncated(pPref->vChild.size());
    if (nCity >= *pnCity) return false; // as the host sees the count
    *pnTown = Truncated(pPref->vChild[static_cast<size_t>(nCity)].vChild.size());
    return true;
}

bool CAddrDic::CountLists(int nPref, int nCity, int nTown, short* pnPref, short* pnCity, short* pnTown) {
    if (pImage == nullptr) return false;
    CImageView const image(*this);
    FillEntries(image, NodesOf(image, PrefNodes(image)), vPrefPnt);
    *pnPref = Truncated(image.Word(HDR_PREF_COUNT));
    if (nSelPref != nPref || vCityPnt.empty()) {
        tagADDRPNT const* const pPref = At(vPrefPnt, nPref);
        if (pPref == nullptr) return false;
        std::vector<tagADDRPNT> vCity, vTown;
        FillEntries(image, NodesOf(image, ChildrenOf(image, *pPref->pNode)), vCity);
        // Another prefecture begins at its first city, whichever was asked for.
        if (!vCity.empty()) FillEntries(image, TownsOf(image, *vCity[0].pNode), vTown);
        vCityPnt.swap(vCity); // both or, when memory runs out, none
        vTownPnt.swap(vTown);
        if (vCityPnt.empty()) return false;
    } else if (nSelCity != nCity || vTownPnt.empty()) {
        tagADDRPNT const* const pCity = At(vCityPnt, nCity);
        *pnCity = Truncated(vCityPnt.size());
        if (pCity == nullptr) return false;
        FillEntries(image, TownsOf(image, *pCity->pNode), vTownPnt);
    }
    *pnCity = Truncated(vCityPnt.size());
    *pnTown = Truncated(vTownPnt.size());
    Select(nPref, nCity, nTown);
    return true;
}

void CAddrDic::Select(int nPref, int nCity, int nTown) {
    nSelPref = nPref;
    nSelCity = nCity;
    nSelTown = nTown;
}

// --- what stands at a position -------------------------------------------------------------------------------------

bool CAddrDic::GetAtPref(int nIndex, char* pszName, int nNameSize) {
    if (pszName == nullptr) return false;
    CField const name(pszName, nNameSize);
    name.Set("");
    bool const bTree = !vRefineTree.empty();
    tagADDRPNT const* const pEntry = At(bTree ? vRefineTree : vPrefPnt, nIndex);
    if (pEntry == nullptr) return false;
    name.Set(bTree ? NameOf(CImageView(*this), pEntry->pNode) : ShownName(*pEntry, PREF_PREFIX));
    return true;
}

// In a tree a city that is not there has an empty name; outside one it is a failure.
bool CAddrDic::GetAtCity(int nIndex, char* pszName, int nNameSize, int* pnType) {
    if (pszName == nullptr) return false;
    CField const name(pszName, nNameSize);
    name.Set("");
    if (!vRefineTree.empty()) {
        tagADDRPNT const* const pPref = At(vRefineTree, nSelPref);
        tagADDRPNT const* const pEntry = pPref == nullptr ? nullptr : At(pPref->vChild, nIndex);
        if (pEntry != nullptr) name.Set(NameOf(CImageView(*this), pEntry->pNode));
    } else {
        tagADDRPNT const* const pEntry = At(vCityPnt, nIndex);
        if (pEntry == nullptr) return false;
        name.Set(ShownName(*pEntry, CITY_PREFIX));
    }
    unsigned short nKind = SHIKUGUN_OTHER;
    if (pnType != nullptr)
        *pnType = GetShikugunType(std::string(pszName, strnlen(pszName, name.nSize)).c_str(), &nKind);
    return true;
}

tagADDRPNT const* CAddrDic::FindTown(int nIndex) const {
    if (vRefineTree.empty()) return At(vTownPnt, nIndex);
    tagADDRPNT const* const pPref = At(vRefineTree, nSelPref);
    tagADDRPNT const* const pCity = pPref == nullptr ? nullptr : At(pPref->vChild, nSelCity);
    return pCity == nullptr ? nullptr : At(pCity->vChild, nIndex);
}

namespace {

// What a level on the way up from a town's entry to the city tells of it.
void TakeLevel(uint8_t nLevel, std::string_view strName, CField const& town, CField const& detail,
               char& nDetailKind) {
    if (nLevel == LEVEL_TOWN) town.Set(strName);
    if (nLevel == LEVEL_OFFICE) {
        detail.Set(strName);
        nDetailKind = DETAIL_OFFICE;
    }
    if (nDetailKind == DETAIL_OFFICE) return; // where it stands is not told
    if (nLevel == LEVEL_NOTE) detail.Set(strName);
    if (nLevel == LEVEL_AREA) {
        detail.Set(strName);
        nDetailKind = DETAIL_AREA;
    }
    if (nLevel == LEVEL_BLOCK) {
        detail.Prepend(strName);
        nDetailKind = DETAIL_BLOCK;
    }
}

} // namespace

bool CAddrDic::GetAtTown(int nIndex, char* pszTown, int nTownSize, char* pszDetail, int nDetailSize, char* pszCode5,
                         int nCode5Size, char* pszCode7, int nCode7Size, char* pnDetailKind) {
    for (char const* p : {pszTown, pszDetail, pszCode5, pszCode7, pnDetailKind})
        if (p == nullptr) return false;
    if (nIndex < 0) return false;
    CField const town(pszTown, nTownSize), detail(pszDetail, nDetailSize);
    CField const code5(pszCode5, nCode5Size), code7(pszCode7, nCode7Size);
    for (CField const& field : {town, detail, code5, code7}) field.Set("");
    *pnDetailKind = DETAIL_NONE;
    tagADDRPNT const* const pEntry = FindTown(nIndex);
    if (pEntry == nullptr || pEntry->pNode == nullptr) return false;

    CImageView const image(*this);
    tagADDR codes(0);
    StoreCodes(image, *pEntry->pNode, codes);
    code7.Set(View(image, codes.pszPostCode));
    code5.Set(View(image, codes.pszCodeExt));
    town.Set(NameOf(image, pEntry->pNode));
    for (CUpwardWalk walk(image, pEntry->pNode); walk.Node() != nullptr; walk.Next()) {
        if (walk.Node()->nLevel == LEVEL_CITY || walk.Node()->nParent == ADDR_NONE) break;
        char const* const pszName = image.At(walk.Node()->nName);
        if (pszName != nullptr) TakeLevel(walk.Node()->nLevel, View(image, pszName), town, detail, *pnDetailKind);
    }
    return true;
}
