// Refining.h - display names and trees of candidates made a second time, from the slow reader's records and without any
// code of the library; the library's own in a form that compares with them; the questions that the tests ask.
#ifndef QEADRS_TESTS_NATIONAL_REFINING_H
#define QEADRS_TESTS_NATIONAL_REFINING_H

#include "Browsing.h"
#include "tests/support/Peek.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace national {

// --- display names -------------------------------------------------------------------------------------------------

constexpr size_t DISPLAY_LIMIT = 128;   // a name of so many bytes has no NUL
constexpr size_t SHOWN_AREA_LIMIT = 19; // a longer level-3 text is not shown

// The table's prefectures, whose order is the conventional one.
inline CTexts const& PrefecturesOfTable() {
    static CTexts const vPref = [] {
        CTexts v;
        for (CTownRow const& row : TownRows())
            if (v.empty() || v.back() != row.strPref) v.emplace_back(row.strPref);
        return v;
    }();
    return vPref;
}

// "00" to "46".
inline std::string PrefCode(std::string_view strPref) {
    CTexts const& vPref = PrefecturesOfTable();
    auto const n = static_cast<size_t>(std::find(vPref.begin(), vPref.end(), strPref) - vPref.begin());
    return {static_cast<char>('0' + n / 10), static_cast<char>('0' + n % 10)};
}

inline std::string ComposeDisplayName(uint32_t nNode) {
    CSlowReader::CNode const& node = Official().Nodes()[nNode];
    if (node.nLevel == 0) return PrefCode(node.strName) + NameOf(nNode);
    if (node.nLevel == 1) return "h" + NameOf(nNode); // no name of this encoding is of another kind
    CAddress a;
    for (uint32_t n = nNode; n != NONE && Official().Nodes()[n].nLevel != 1; n = Official().Nodes()[n].nParent)
        Official().TakeTexts(n, a);
    std::string str(a.strTown.value_or(""));
    if (a.strOffice)
        str += *a.strOffice;
    else if (a.strBlock)
        str.append(*a.strBlock).append(a.strNote.value_or(""));
    else if (a.strArea && a.strArea->size() <= SHOWN_AREA_LIMIT)
        str += *a.strArea;
    return str.substr(0, DISPLAY_LIMIT);
}

// Composed once for each node.
inline std::string const& DisplayName(uint32_t nNode) {
    static CTexts const vName = [] {
        CTexts v;
        for (uint32_t n = 0; n < Official().Nodes().size(); ++n) v.push_back(ComposeDisplayName(n));
        return v;
    }();
    return vName[nNode];
}

// --- trees ---------------------------------------------------------------------------------------------------------

// An entry of a tree with what stands below it.
struct CBranch {
    uint32_t nNode;
    std::string_view strName; // where the display name is
    std::vector<CBranch> vChild;
};
using CBranches = std::vector<CBranch>;

inline CBranch NewBranch(uint32_t nNode) {
    return {nNode, DisplayName(nNode), {}};
}

inline CBranch* FindBranch(CBranches& vBranch, uint32_t nNode) {
    for (CBranch& branch : vBranch)
        if (branch.nNode == nNode) return &branch;
    return nullptr;
}

// Puts the address of a node in, found by looking at each entry. What belongs below a new city of a prefecture that is
// not the last one goes below the last city of the last prefecture.
inline void Insert(CBranches& tree, uint32_t nNode) {
    uint32_t const nCity = Official().Ancestor(nNode, 1), nPref = Official().Ancestor(nNode, 0);
    CBranch* pPref = FindBranch(tree, nPref);
    CBranch* pCity = pPref == nullptr ? nullptr : FindBranch(pPref->vChild, nCity);
    if (pPref == nullptr) pPref = &tree.emplace_back(NewBranch(nPref));
    if (pCity == nullptr) {
        pPref->vChild.push_back(NewBranch(nCity));
        pCity = &tree.back().vChild.back();
    }
    pCity->vChild.push_back(NewBranch(nNode));
}

// Entries of equal names by their nodes, so that two sorted trees compare.
inline void recSortBranches(CBranches& vBranch) {
    for (CBranch& branch : vBranch) recSortBranches(branch.vChild);
    std::sort(vBranch.begin(), vBranch.end(), [](CBranch const& a, CBranch const& b) {
        int const nOrder = a.strName.compare(b.strName); // by bytes
        return nOrder != 0 ? nOrder < 0 : a.nNode < b.nNode;
    });
}

inline bool recIsSorted(CBranches const& vBranch) {
    return std::is_sorted(vBranch.begin(), vBranch.end(),
                          [](CBranch const& a, CBranch const& b) { return a.strName < b.strName; }) &&
           std::all_of(vBranch.begin(), vBranch.end(), [](CBranch const& a) { return recIsSorted(a.vChild); });
}

// The library's, whose texts lead into it.
inline CBranches BranchesOf(std::vector<tagADDRPNT> const& tree) {
    CBranches vBranch;
    for (tagADDRPNT const& entry : tree)
        vBranch.push_back({IndexOf(entry.pNode),
                           {entry.szName, strnlen(entry.szName, sizeof entry.szName)},
                           BranchesOf(entry.vChild)});
    return vBranch;
}

// One text for each leaf, and one for an entry without any: where it stands, the nodes and display names on the way.
inline void recListLeaves(CBranches const& vBranch, std::string const& strWay, CTexts& vText) {
    for (CBranch const& branch : vBranch) {
        std::string const str = strWay + "/" + std::to_string(branch.nNode) + " " + std::string(branch.strName);
        if (branch.vChild.empty()) vText.push_back(str);
        recListLeaves(branch.vChild, str, vText);
    }
}

inline bool recAreEqual(CBranches const& v, CBranches const& vOther) {
    return std::equal(v.begin(), v.end(), vOther.begin(), vOther.end(), [](CBranch const& a, CBranch const& b) {
        return a.nNode == b.nNode && a.strName == b.strName && recAreEqual(a.vChild, b.vChild);
    });
}

// A difference is a failure that tells the first leaf that differs.
inline void CompareTrees(CFailures& failures, std::string const& strQuestion, CBranches const& vFound,
                         CBranches const& vExpected) {
    if (recAreEqual(vFound, vExpected)) return;
    CTexts vFoundText, vExpectedText;
    recListLeaves(vFound, "", vFoundText);
    recListLeaves(vExpected, "", vExpectedText);
    CompareTexts(failures, strQuestion, vFoundText, vExpectedText);
    if (vFoundText == vExpectedText) failures.Add(strQuestion + ": the trees differ");
}

// The nodes of all addresses, the third level, in their order.
inline CNodes LeavesOf(CBranches const& tree) {
    CNodes vNode;
    for (CBranch const& pref : tree)
        for (CBranch const& city : pref.vChild)
            for (CBranch const& leaf : city.vChild) vNode.push_back(leaf.nNode);
    return vNode;
}
inline CNodes Sorted(CNodes v) {
    std::sort(v.begin(), v.end());
    return v;
}

// --- what a question finds -----------------------------------------------------------------------------------------

inline uint32_t NodeOfItsEntry(uint32_t nNode) {
    return Official().Entries()[Official().Nodes()[nNode].nEntry].nNode;
}

// What a text without a prefecture names. A town without a name begins every text.
inline CNodes NodesOfBareCity(std::string_view strText) {
    CNodes vNode, vPartly;
    for (uint32_t n = 0; n < Official().Word(20); ++n) {
        uint32_t const nCity = Official().Word(21) + n;
        std::string_view const strCity = Official().Nodes()[nCity].strName;
        if (strCity.empty() || !BeginsWith(strText, strCity)) continue;
        std::string_view const strRest = strText.substr(strCity.size());
        uint32_t nFound = strRest.empty() ? nCity : NONE;
        if (nFound == NONE)
            for (uint32_t nTown : ChildrenOf(nCity))
                if (nFound == NONE && BeginsWith(strRest, Official().Nodes()[nTown].strName)) nFound = nTown;
        if (nFound != NONE)
            recCollectBelow(nFound, vNode);
        else
            vPartly.push_back(nCity);
    }
    if (vNode.empty())
        for (uint32_t nCity : vPartly) recCollectBelow(nCity, vNode);
    return vNode;
}

inline CNodes NodesOfAddress(std::string_view strText) {
    CSeparated const found = Separate(strText);
    if (found.nPref == NONE) return NodesOfBareCity(strText);
    CNodes vNode;
    recCollectBelow(found.nCity == NONE ? found.nPref : found.nTown == NONE ? found.nCity : found.nTown, vNode);
    return vNode;
}

// Digits, "?" and "*" of a code that is written in ASCII.
inline std::string NormalCode(std::string_view strCode) {
    std::string str;
    for (char c : strCode)
        if ((c >= '0' && c <= '9') || c == '?' || c == '*') str += c;
    return str;
}

// A tree as it was put together, and whether it stays so: at the end of the table nobody sorts it.
struct CExpectedTree {
    CBranches vPref;
    int nResult = 1;
};

inline CExpectedTree UnsortedTreeOfAddress(std::string_view strText) {
    CExpectedTree tree;
    for (uint32_t n : NodesOfAddress(strText)) Insert(tree.vPref, NodeOfItsEntry(n));
    return tree;
}

inline CExpectedTree TreeOfAddress(std::string_view strText) {
    CExpectedTree tree = UnsortedTreeOfAddress(strText);
    recSortBranches(tree.vPref);
    return tree;
}

// strCode: a normal one, not empty.
inline CExpectedTree TreeOfCode(std::string_view strCode) {
    CExpectedTree tree;
    std::vector<CSlowReader::CEntry> const& vEntry = Official().Entries();
    size_t n = Official().FirstEntry(strCode) == NONE ? 0 : Official().FirstEntry(strCode);
    for (; n < vEntry.size() && BeginsWith(vEntry[n].strCode, strCode); ++n)
        if (!vEntry[n].bSuperseded) Insert(tree.vPref, vEntry[n].nNode);
    tree.nResult = n < vEntry.size();
    if (tree.nResult == 1) recSortBranches(tree.vPref);
    return tree;
}

// A dictionary object of a test's own: the answers depend on the question before.
class CRefiner {
  public:
    CRefiner() : m_peek(m_dic) { m_dic.SetDictionary(Official().Bytes()); }

    int Make(std::string strCode, std::string const& strAddr) {
        return m_dic.MakeRefineTree(strCode.data(), strAddr.c_str());
    }
    CAddrDic& Dic() { return m_dic; }
    CAddrDicPeek& State() { return m_peek; }
    CBranches Tree() const { return BranchesOf(m_peek.vRefineTree); }

    // Compares the tree with an expected one; a sorted one without regard to the order of equal names.
    void Check(CFailures& failures, std::string const& strQuestion, CExpectedTree const& expected) const {
        CBranches tree = Tree();
        if (expected.nResult == 1) {
            if (!recIsSorted(tree)) failures.Add(strQuestion + ": the tree is not sorted");
            recSortBranches(tree);
        }
        CompareTrees(failures, strQuestion, tree, expected.vPref);
    }

  private:
    CAddrDic m_dic;
    CAddrDicPeek m_peek;
};

// --- questions -----------------------------------------------------------------------------------------------------

// One prefecture of each region, and their cities: of wards, of 郡, of islands and those that two prefectures have.
inline std::vector<CCity> CitiesOfRegions() {
    static std::set<std::string> const vPref = {"北海道", "宮城県", "東京都", "新潟県", "愛知県",
                                                "大阪府", "広島県", "香川県", "福岡県", "沖縄県"};
    std::vector<CCity> vCity;
    ForEachCity([&](CFailures&, CCity const& city) {
        if (vPref.count(NameOf(AllPrefectures()[city.nPref])) != 0) vCity.push_back(city);
    });
    return vCity;
}

// The first characters of a town in the middle of the city's list, not all of them; "" when no town has two characters.
inline std::string BeginningOfATown(uint32_t nCity) {
    CNodes const vTown = NamedChildrenOf(nCity);
    for (size_t n = 0; n < vTown.size(); ++n) {
        std::string const strName = NameOf(vTown[(vTown.size() / 2 + n) % vTown.size()]);
        std::string const strFirst(FirstCharacter(strName));
        if (strFirst.size() < strName.size()) return strFirst;
    }
    return "";
}

constexpr char NO_TOWN[] = "存在しない町"; // no name begins so

// A city behind its prefecture and alone; whole, with a town that does not exist and with the beginning of one that does.
inline CTexts TextsOfCity(CCity const& city) {
    std::string const strName = NameOf(city.nNode), strBeginning = BeginningOfATown(city.nNode);
    CTexts v = {city.strKey, strName, city.strKey + NO_TOWN, strName + NO_TOWN};
    if (strBeginning.empty()) return v;
    v.push_back(city.strKey + strBeginning);
    v.push_back(strName + strBeginning);
    return v;
}

// Parts of codes of one to seven digits, each once: every other one begins a code, and every third is written with a
// hyphen.
inline CTexts PartsOfCodes(size_t nCount) {
    std::mt19937 random(SEED);
    auto const Below = [&random](size_t n) { return static_cast<size_t>(random()) % n; };
    std::set<std::string> vSeen;
    CTexts vCode;
    while (vCode.size() < nCount) {
        std::string str(Official().Entries()[Below(Official().Entries().size())].strCode);
        str.resize(1 + Below(str.size()));
        if (vCode.size() % 2 == 1)
            for (char& c : str) c = static_cast<char>('0' + Below(10));
        if (!vSeen.insert(str).second) continue;
        if (vCode.size() % 3 == 0) str.insert(std::min<size_t>(3, str.size()), "-");
        vCode.push_back(str);
    }
    return vCode;
}

} // namespace national

#endif
