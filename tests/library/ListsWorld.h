// ListsWorld.h - dictionaries for the selection lists, the lists themselves, and the caller's fields.
#ifndef QEADRS_TESTS_LIBRARY_LISTSWORLD_H
#define QEADRS_TESTS_LIBRARY_LISTSWORLD_H

#include "tests/library/AddrTextWorld.h"
#include "tests/support/Peek.h"

#include <gtest/gtest.h>

#include <algorithm>

using CEntryList = std::vector<tagADDRPNT>;

// An entry whose display name nobody may show: trees are read from the dictionary.
inline tagADDRPNT Entry(tagADDRNODE const* pNode, CEntryList vChild = {}) {
    tagADDRPNT entry;
    entry.pNode = pNode;
    entry.vChild = std::move(vChild);
    std::strcpy(entry.szName, "not to be shown");
    return entry;
}

// A dictionary on a guarded image, with its tree, its lists and its selection.
class CListsDic : public CGuardedDic {
  public:
    using CGuardedDic::CGuardedDic;

    CEntryList& Tree() { return CAddrDicPeek(*this).vRefineTree; }
    CEntryList& Prefs() { return CAddrDicPeek(*this).vPrefPnt; }
    CEntryList& Cities() { return CAddrDicPeek(*this).vCityPnt; }
    CEntryList& Towns() { return CAddrDicPeek(*this).vTownPnt; }

    std::vector<int> Selection() {
        CAddrDicPeek const peek(*this);
        return {peek.nSelPref, peek.nSelCity, peek.nSelTown};
    }
    void Select(int nPref, int nCity, int nTown) {
        CAddrDicPeek const peek(*this);
        peek.nSelPref = nPref;
        peek.nSelCity = nCity;
        peek.nSelTown = nTown;
    }

    // An entry for a node, for trees and lists of the tests' own.
    tagADDRPNT Entry(uint32_t nNode, CEntryList vChild = {}) const { return ::Entry(Node(nNode), std::move(vChild)); }
};

// Display names of a list.
inline std::vector<std::string> Names(CEntryList const& vEntry) {
    std::vector<std::string> vName;
    for (tagADDRPNT const& entry : vEntry)
        vName.emplace_back(entry.szName, strnlen(entry.szName, sizeof entry.szName));
    return vName;
}

// Positions of its entries in the node table.
inline std::vector<uint32_t> Numbers(CListsDic const& dic, CEntryList const& vEntry) {
    std::vector<uint32_t> vNumber;
    for (tagADDRPNT const& entry : vEntry) vNumber.push_back(static_cast<uint32_t>(entry.pNode - dic.Node(0)));
    return vNumber;
}

// Three prefectures, none of whose levels stand in the order of their display names.
//
//   広島県  府中市            元町     7260003
//   東京都  港区     1050000  芝       no entry   １丁目 1050015 (area)   港商会 1058444, 海ビル 1050016 (building)
//                                                                                        ３階   1050017 (floor)
//                             旧芝     1050099, superseded by １丁目      旧商会 1058555
//           千代田区 1000000  千代田   1000001
//                             丸の内   1000005
//           府中市            宮西町   1830022
//   北海道  札幌市            南二条   0600002
//                             北一条   0600001
//           小樽市            花園     0470024
struct CListsWorld : CTestImage {
    CListsWorld() {
        nHiroshima = AddNode(LEVEL_PREF, ADDR_NONE, "広島県");
        nTokyo = AddNode(LEVEL_PREF, ADDR_NONE, "東京都");
        nHokkaido = AddNode(LEVEL_PREF, ADDR_NONE, "北海道");
        nFuchuHiroshima = AddNode(LEVEL_CITY, nHiroshima, "府中市");
        nMinato = AddNode(LEVEL_CITY, nTokyo, "港区");
        nChiyodaKu = AddNode(LEVEL_CITY, nTokyo, "千代田区");
        nFuchu = AddNode(LEVEL_CITY, nTokyo, "府中市");
        nSapporo = AddNode(LEVEL_CITY, nHokkaido, "札幌市");
        nOtaru = AddNode(LEVEL_CITY, nHokkaido, "小樽市");
        nMotomachi = AddNode(LEVEL_TOWN, nFuchuHiroshima, "元町");
        nShiba = AddNode(LEVEL_TOWN, nMinato, "芝");
        nOldShiba = AddNode(LEVEL_TOWN, nMinato, "旧芝");
        nChiyoda = AddNode(LEVEL_TOWN, nChiyodaKu, "千代田");
        nMarunouchi = AddNode(LEVEL_TOWN, nChiyodaKu, "丸の内");
        nMiyanishi = AddNode(LEVEL_TOWN, nFuchu, "宮西町");
        nMinami = AddNode(LEVEL_TOWN, nSapporo, "南二条");
        nKita = AddNode(LEVEL_TOWN, nSapporo, "北一条");
        nHanazono = AddNode(LEVEL_TOWN, nOtaru, "花園");
        nArea = AddNode(LEVEL_AREA, nShiba, "１丁目");
        nOldShokai = AddNode(LEVEL_OFFICE, nOldShiba, "旧商会");
        nMinatoShokai = AddNode(LEVEL_OFFICE, nArea, "港商会");
        nBuilding = AddNode(LEVEL_BLOCK, nArea, "海ビル");
        nFloor = AddNode(LEVEL_NOTE, nBuilding, "３階");
        AddInfo(nHanazono, "0470024", "047");
        AddInfo(nKita, "0600001", "060");
        AddInfo(nMinami, "0600002", "060");
        AddInfo(nChiyodaKu, "1000000", "100");
        AddInfo(nChiyoda, "1000001", "100");
        AddInfo(nMarunouchi, "1000005", "100");
        AddInfo(nMinato, "1050000", "105");
        uint32_t const nInfo = AddInfo(nArea, "1050015", "105");
        AddInfo(nBuilding, "1050016", "105");
        AddInfo(nFloor, "1050017", "105");
        AddSuperseded(nOldShiba, "1050099", "10599", nInfo);
        AddInfo(nMinatoShokai, "1058444", "105");
        AddInfo(nOldShokai, "1058555", "105");
        AddInfo(nMiyanishi, "1830022", "183");
        AddInfo(nMotomachi, "7260003", "726");
        Complete();
    }
    uint32_t nHiroshima, nTokyo, nHokkaido, nFuchuHiroshima, nMinato, nChiyodaKu, nFuchu, nSapporo, nOtaru;
    uint32_t nMotomachi, nShiba, nOldShiba, nChiyoda, nMarunouchi, nMiyanishi, nMinami, nKita, nHanazono;
    uint32_t nArea, nOldShokai, nMinatoShokai, nBuilding, nFloor;
};

// Its positions, by display name.
constexpr int HOKKAIDO = 0, TOKYO = 1, HIROSHIMA = 2;
constexpr int CHIYODAKU = 0, FUCHU = 1, MINATO = 2; // of 東京都
constexpr int OTARU = 0, SAPPORO = 1;               // of 北海道

// Prefectures 0, 1, ... of pref_order, vvTowns[p][c] towns in city "city c" of prefecture p, the towns "p.c.t", each
// with an entry.
inline CTestImage CountryWith(std::vector<std::vector<int>> const& vvTowns) {
    CTestImage image;
    for (size_t p = 0; p < vvTowns.size(); ++p) image.AddNode(LEVEL_PREF, ADDR_NONE, pref_order[p] + PREF_ORDER_NAME);
    for (uint32_t p = 0; p < vvTowns.size(); ++p)
        for (size_t c = 0; c < vvTowns[p].size(); ++c) image.AddNode(LEVEL_CITY, p, "city " + std::to_string(c));
    auto nCity = static_cast<uint32_t>(vvTowns.size());
    for (size_t p = 0; p < vvTowns.size(); ++p)
        for (size_t c = 0; c < vvTowns[p].size(); ++c, ++nCity)
            for (int t = 0; t < vvTowns[p][c]; ++t) {
                std::string const strTown = std::to_string(p) + "." + std::to_string(c) + "." + std::to_string(t);
                image.AddInfo(image.AddNode(LEVEL_TOWN, nCity, strTown), "1000000", "100");
            }
    image.Complete();
    return image;
}

// --- the outputs of a count ----------------------------------------------------------------------------------------

constexpr short MARK = -99; // what they hold before

// Right before a page that cannot be touched.
struct CGuardedShort : CGuardedBytes {
    CGuardedShort() : CGuardedBytes(&MARK, sizeof MARK, Writable) {}
    short* Pointer() const { return static_cast<short*>(static_cast<void*>(Data())); }
};

// The result, the three counts, the three widths. nNull, when it is not negative, is the output that is left out.
inline std::vector<int> Count(CAddrDic& dic, int nPref, int nCity, int nTown, int nNull = -1) {
    CGuardedShort const anOut[6];
    short* apn[6];
    for (int n = 0; n < 6; ++n) apn[n] = n == nNull ? nullptr : anOut[n].Pointer();
    std::vector<int> vResult = {dic.GetAdrNum(nPref, nCity, nTown, apn[0], apn[1], apn[2], apn[3], apn[4], apn[5])};
    for (CGuardedShort const& out : anOut) vResult.push_back(*out.Pointer());
    return vResult;
}

inline std::vector<int> Found(int nPref, int nCity, int nTown) {
    return {1, nPref, nCity, nTown, 8, 16, 60};
}
inline std::vector<int> Missed(int nPref, int nCity, int nTown) {
    return {0, nPref, nCity, nTown, MARK, MARK, MARK};
}
inline std::vector<int> NothingWritten() {
    return {0, MARK, MARK, MARK, MARK, MARK, MARK};
}

// --- the caller's text fields --------------------------------------------------------------------------------------

// A field right before a page that cannot be touched (or right behind one), full of 'x'.
class CTextField {
  public:
    explicit CTextField(size_t nSize, CGuardedBytes::EPlace nPlace = CGuardedBytes::EndOfPage)
        : m_nSize(nSize), m_bytes(std::string(nSize, 'x').data(), nSize, CGuardedBytes::Writable, nPlace) {}

    char* Data() const { return m_bytes.Text(); }
    int Size() const { return static_cast<int>(m_nSize); }
    void Fill() const { std::fill_n(Data(), m_nSize, 'x'); }
    bool IsUntouched() const { return std::string(Data(), m_nSize) == std::string(m_nSize, 'x'); }

    // Up to its first zero, or all of it; nothing but zeros may follow.
    std::string Text() const {
        std::string const str(Data(), m_nSize);
        std::string const strText = str.substr(0, str.find('\0'));
        EXPECT_EQ(str.substr(strText.size()), std::string(m_nSize - strText.size(), '\0')) << "zeros to the end";
        return strText;
    }

  private:
    size_t m_nSize;
    CGuardedBytes m_bytes;
};

#endif
