// BrowseWorld.h - a dictionary whose browsing lists can be looked at and set, small trees, and helpers to look at
// answers.
#ifndef QEADRS_TESTS_LIBRARY_BROWSEWORLD_H
#define QEADRS_TESTS_LIBRARY_BROWSEWORLD_H

#include "tests/library/AddrTextWorld.h"
#include "tests/support/Peek.h"

#include <algorithm>

using CAddrList = std::vector<tagADDR>;
using CNodeList = CAddrDicPeek::CNodeList;

// Numbers of the prefectures of CTextWorld, and of one that it lacks.
constexpr unsigned long NO_HOKKAIDO = 0, NO_TOKYO = 12, NO_HIROSHIMA = 33;

// Sort types that leave an answer in its own order, as all do but 9.
constexpr unsigned short OTHER_SORT_TYPES[] = {0, 1, SORT_DICTIONARY, 8, 10, 0x0900, 0x0109, 0xFFFF};

// A dictionary on a guarded image, with its three lists.
class CBrowsedDic : public CGuardedDic {
  public:
    using CGuardedDic::CGuardedDic;

    CNodeList& PrefList() { return CAddrDicPeek(*this).vPrefList; }
    CNodeList& CityList() { return CAddrDicPeek(*this).vCityList; }
    CNodeList& TownList() { return CAddrDicPeek(*this).vTownList; }

    // Positions in the node table, ADDR_NONE for null.
    std::vector<uint32_t> Numbers(CNodeList const& vNode) const {
        std::vector<uint32_t> vNumber;
        for (tagADDRNODE const* const pNode : vNode)
            vNumber.push_back(pNode == nullptr ? ADDR_NONE : static_cast<uint32_t>(pNode - Node(0)));
        return vNumber;
    }

    // The string stored behind the name of a node.
    char const* Reading(uint32_t nNode) const { return Name(nNode) + std::strlen(Name(nNode)) + 1; }
};

inline std::vector<std::string> Texts(CAddrList const& vAddr, char const* tagADDR::*psz) {
    std::vector<std::string> vText;
    for (tagADDR const& addr : vAddr) vText.push_back(Shown(addr.*psz));
    return vText;
}

inline std::vector<std::string> CityNames(CAddrList const& vAddr) {
    return Texts(vAddr, &tagADDR::pszCity);
}
inline std::vector<std::string> TownNames(CAddrList const& vAddr) {
    return Texts(vAddr, &tagADDR::pszTown);
}

inline CNodeList ListNodes(CAddrList const& vAddr) {
    CNodeList vNode;
    for (tagADDR const& addr : vAddr) vNode.push_back(addr.pListCity);
    return vNode;
}

// Names of the fields that are not zero.
inline std::vector<std::string> Filled(tagADDR const& addr) {
    std::vector<std::string> vName;
    for (auto const& field : Fields(addr))
        if (field.second != nullptr) vName.push_back(field.first);
    if (addr.nCityOrder != 0) vName.emplace_back("nCityOrder");
    return vName;
}

// A record that was in the answer before.
inline tagADDR EarlierAddr(char const* tagADDR::*psz, char const* pszText, tagADDRNODE const* pNode = nullptr) {
    tagADDR addr(0);
    addr.*psz = pszText;
    addr.pListCity = pNode;
    return addr;
}

// 東京都 and its cities: city n is node n + 1, and stands at position n of the index.
inline CTestImage TokyoWith(std::vector<std::string> const& vCity) {
    CTestImage image;
    image.AddNode(LEVEL_PREF, ADDR_NONE, "東京都", "トウキョウト");
    for (std::string const& strCity : vCity)
        image.AddNode(LEVEL_CITY, 0, strCity, "reading of " + std::to_string(image.vNode.size()));
    image.Complete();
    for (uint32_t n = 0; n < vCity.size(); ++n) image.vCityIndex[n] = n + 1;
    return image;
}

// 東京都 with 千代田区 alone, node 1, and its towns: town n is node n + 2 and has the codes 1000000 + n and 10000 + n.
inline CTestImage ChiyodaWith(std::vector<std::string> const& vTown) {
    CTestImage image = TokyoWith({"千代田区"});
    for (std::string const& strTown : vTown)
        image.AddNode(LEVEL_TOWN, 1, strTown, "reading of " + std::to_string(image.vNode.size()));
    for (uint32_t n = 0; n < vTown.size(); ++n)
        image.AddInfo(n + 2, std::to_string(1000000 + n), std::to_string(10000 + n));
    image.Complete();
    return image;
}

// "b", "a", "b", "a", ...: enough names for a sort that mixes equal ones up to do so.
inline std::vector<std::string> ManyOfTwoNames() {
    std::vector<std::string> vName;
    for (int n = 0; n < 100; ++n) vName.emplace_back(n % 2 == 0 ? "b" : "a");
    return vName;
}

// Their nodes when sorted and otherwise left in order; nFirst is the node of the first name.
inline std::vector<uint32_t> ManyInOrder(uint32_t nFirst) {
    std::vector<uint32_t> vNumber;
    for (uint32_t nStart : {1u, 0u})
        for (uint32_t n = nStart; n < 100; n += 2) vNumber.push_back(nFirst + n);
    return vNumber;
}

#endif
