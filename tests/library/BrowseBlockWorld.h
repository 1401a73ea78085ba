// BrowseBlockWorld.h - the blocks of browsing put together from their drawings, worlds for them, and the calls.
#ifndef QEADRS_TESTS_LIBRARY_BROWSEBLOCKWORLD_H
#define QEADRS_TESTS_LIBRARY_BROWSEBLOCKWORLD_H

#include "tests/library/ApiWorld.h"
#include "tests/support/GuardedBytes.h"
#include "tests/support/Peek.h"
#include "tests/support/SystemWatch.h"

#include <cstring>

using testing::ElementsAre;
using testing::IsEmpty;

using CPositions = std::initializer_list<unsigned short>;
using PFNBROWSE = uint32_t (*)(unsigned short, HGLOBAL*);

// --- the blocks, put together from their drawings ----------------------------------------------------------------

inline void PutPrefixed(CBlockBytes& vByte, std::string const& str) {
    PutNumber(vByte, str.size(), 1);
    PutText(vByte, str);
}

// Prefectures and cities. A missing name is "".
inline CBlockBytes Names(std::vector<std::string> const& vName) {
    CBlockBytes vBlock;
    PutNumber(vBlock, vName.size(), 2);
    for (std::string const& str : vName) PutPrefixed(vBlock, str);
    return vBlock;
}

struct CTownText {
    std::string strTown, strCode, strOldCode;
};

inline CBlockBytes Towns(std::vector<CTownText> const& vTown, std::string CTownText::*pFirst,
                         std::string CTownText::*pSecond) {
    CBlockBytes vBlock;
    PutNumber(vBlock, vTown.size(), 2);
    for (CTownText const& town : vTown) {
        for (auto const pText : {&CTownText::strTown, pFirst, pSecond}) PutPrefixed(vBlock, town.*pText);
        vBlock.push_back(0);
    }
    return vBlock;
}
inline CBlockBytes OldCodeFirst(std::vector<CTownText> const& vTown) {
    return Towns(vTown, &CTownText::strOldCode, &CTownText::strCode);
}
inline CBlockBytes NewCodeFirst(std::vector<CTownText> const& vTown) {
    return Towns(vTown, &CTownText::strCode, &CTownText::strOldCode);
}

// What the display table is made of; null is missing.
struct CLineText {
    char const *pszCode, *pszOldCode, *pszTown;
    char const* pszArea = nullptr;
    char const* pszBlock = nullptr;
    char const* pszNote = nullptr;
    char const* pszOffice = nullptr;
};

inline std::string OrEmpty(char const* psz) {
    return psz != nullptr ? psz : "";
}

inline std::string Line(CLineText const& text) {
    if (text.pszTown == nullptr) return "";
    if (text.pszBlock == nullptr) return text.pszTown;
    std::string const strLine = std::string(text.pszTown) + " " + text.pszBlock;
    return text.pszNote == nullptr ? strLine : strLine + " " + text.pszNote;
}

inline CBlockBytes Lines(std::vector<CLineText> const& vText) {
    CBlockBytes vEntry, vPool;
    size_t nPoolSize = 0;
    auto const Pool = [&vPool](std::string const& str) {
        size_t const nOffset = vPool.size();
        PutText(vPool, str);
        vPool.push_back(0);
        return nOffset;
    };
    for (CLineText const& text : vText) {
        size_t const nOldCode = Pool(OrEmpty(text.pszOldCode));
        size_t const nCode = Pool(OrEmpty(text.pszCode));
        size_t const nLine = Pool(Line(text));
        size_t const nOffice = Pool(OrEmpty(text.pszOffice));
        for (size_t n : {nCode, nOldCode, size_t{0}, size_t{0}, nLine, size_t{0}, nOffice}) PutNumber(vEntry, n, 4);
        nPoolSize += 7;
        for (char const* psz :
             {text.pszOldCode, text.pszCode, text.pszTown, text.pszArea, text.pszBlock, text.pszNote, text.pszOffice})
            nPoolSize += OrEmpty(psz).size();
    }
    vPool.resize(nPoolSize); // zeros behind the content: room for texts that are counted and not written
    CBlockBytes vBlock;
    PutNumber(vBlock, vText.size(), 2);
    PutNumber(vBlock, 0, 2);
    PutNumber(vBlock, 12, 4);
    PutNumber(vBlock, 12 + 28 * vText.size(), 4);
    vBlock.insert(vBlock.end(), vEntry.begin(), vEntry.end());
    vBlock.insert(vBlock.end(), vPool.begin(), vPool.end());
    return vBlock;
}

// --- the worlds ----------------------------------------------------------------------------------------------------

constexpr unsigned short TOKYO = 12, HIROSHIMA = 33; // their numbers

// Two prefectures; old codes are the first three digits.
//
//   東京都   千代田区   丸の内 1000005   旧町 1000099 (superseded)   千代田 1000001   (nameless) 1000000
//            港区       芝 1050014   １丁目 1050015 (area)   海ビル 1050016 (building)   ２階 1050017 (floor in it)
//                                    港商会 1058444 (organisation)
//                       海岸 (no entry)
//   広島県   府中市     元町 7260003
struct CBrowseWorld : CTestImage {
    CBrowseWorld() {
        nTokyo = AddNode(LEVEL_PREF, ADDR_NONE, "東京都", "トウキョウト");
        uint32_t const nHiroshima = AddNode(LEVEL_PREF, ADDR_NONE, "広島県", "ヒロシマケン");
        uint32_t const nChiyodaKu = AddNode(LEVEL_CITY, nTokyo, "千代田区", "チヨダク");
        nMinato = AddNode(LEVEL_CITY, nTokyo, "港区", "ミナトク");
        uint32_t const nFuchu = AddNode(LEVEL_CITY, nHiroshima, "府中市", "フチュウシ");
        nMarunouchi = AddNode(LEVEL_TOWN, nChiyodaKu, "丸の内", "マルノウチ");
        uint32_t const nOld = AddNode(LEVEL_TOWN, nChiyodaKu, "旧町", "キュウマチ");
        uint32_t const nChiyoda = AddNode(LEVEL_TOWN, nChiyodaKu, "千代田", "チヨダ");
        uint32_t const nNameless = AddNode(LEVEL_TOWN, nChiyodaKu, "");
        nShiba = AddNode(LEVEL_TOWN, nMinato, "芝", "シバ");
        AddNode(LEVEL_TOWN, nMinato, "海岸", "カイガン");
        uint32_t const nMotomachi = AddNode(LEVEL_TOWN, nFuchu, "元町", "モトマチ");
        uint32_t const nArea = AddNode(LEVEL_AREA, nShiba, "１丁目");
        nBuilding = AddNode(LEVEL_BLOCK, nShiba, "海ビル");
        uint32_t const nOffice = AddNode(LEVEL_OFFICE, nShiba, "港商会");
        nFloor = AddNode(LEVEL_NOTE, nBuilding, "２階");
        AddInfo(nNameless, "1000000", "100");
        AddInfo(nChiyoda, "1000001", "100");
        AddInfo(nMarunouchi, "1000005", "100");
        AddSuperseded(nOld, "1000099", "100", 2);
        AddInfo(nShiba, "1050014", "105");
        AddInfo(nArea, "1050015", "105");
        AddInfo(nBuilding, "1050016", "105");
        AddInfo(nFloor, "1050017", "105");
        AddInfo(nOffice, "1058444", "105");
        AddInfo(nMotomachi, "7260003", "726");
        Complete();
    }
    uint32_t nTokyo, nMinato, nMarunouchi, nShiba, nBuilding, nFloor;
};

// All prefectures of that world.
inline std::vector<std::string> TwoPrefectures() {
    std::vector<std::string> vName(HIROSHIMA + 1u);
    vName[TOKYO] = "東京都";
    vName[HIROSHIMA] = "広島県";
    return vName;
}

std::vector<CTownText> const CHIYODA_TOWNS = {
    {"丸の内", "1000005", "100"}, {"旧町", "1000099", "100"}, {"千代田", "1000001", "100"}};
std::vector<CTownText> const MINATO_TOWNS = {{"芝", "1050014", "105"}, {"海岸", "", ""}};

// A text of one level stays in the records of later siblings: the area in those of building and organisation, the
// building in that of the organisation.
std::vector<CLineText> const MINATO_LINES = {
    {"1050014", "105", "芝"},
    {"1050015", "105", "芝", "１丁目"},
    {"1050016", "105", "芝", "１丁目", "海ビル"},
    {"1050017", "105", "芝", "１丁目", "海ビル", "２階"},
    {"1058444", "105", "芝", "１丁目", "海ビル", nullptr, "港商会"},
};

// 北海道, a city "C" and this many children of one of the two, which share their texts and their entry.
inline CTestImage Crowd(uint8_t nLevel, size_t nChildren, std::string const& strName) {
    CTestImage image;
    uint32_t nParent = image.AddNode(LEVEL_PREF, ADDR_NONE, "北海道");
    if (nLevel == LEVEL_TOWN) nParent = image.AddNode(LEVEL_CITY, nParent, "C");
    uint32_t const nChild = image.AddNode(nLevel, nParent, strName);
    image.AddInfo(nChild, "1000001", "100");
    image.Complete();
    image.vNode.insert(image.vNode.end(), nChildren - 1, tagADDRNODE(image.vNode[nChild]));
    image.vNode[nParent].nChildCount = static_cast<uint32_t>(nChildren);
    return image;
}

// --- the calls -----------------------------------------------------------------------------------------------------

// The caller's record up to the NUL of its text; what stands between sort type and text is nobody's business.
inline std::string Record(unsigned nSortType, std::string const& strText, char cFill = '\xA5') {
    return std::string({static_cast<char>(nSortType % 256), static_cast<char>(nSortType / 256)}) +
           std::string(21, cFill) + strText;
}

class BrowseBlock : public CApi {
  protected:
    static CBlockBytes Prefectures(std::string const& strText = "", unsigned nSortType = 2) {
        std::string strRecord = Record(nSortType, strText);
        HGLOBAL h = nullptr;
        EXPECT_EQ(PstAdrRPrf(strRecord.data(), &h), 0u) << strText;
        return Take(h);
    }
    static CBlockBytes Ask(PFNBROWSE pfn, unsigned short nNo) {
        HGLOBAL h = nullptr;
        EXPECT_EQ(pfn(nNo, &h), 0u) << nNo;
        return Take(h);
    }
    // The answer behind a fresh PstAdrRPrf with this text and the cities of its first prefecture.
    static CBlockBytes AskBelow(std::string const& strText, PFNBROWSE pfn, unsigned short nNo = 0,
                                unsigned nSortType = 2) {
        Prefectures(strText, nSortType);
        Ask(PstAdrRCity, 0);
        return Ask(pfn, nNo);
    }
};

CBlockBytes const NO_ENTRIES = {0, 0};
CBlockBytes const NO_LINES = {0, 0, 0, 0, 12, 0, 0, 0, 12, 0, 0, 0};

// "P" and "C" with one town of these texts, or no entry for it when there is no code.
inline CTestImage WithTown(std::string const& strTown, char const* pszCode, std::string const& strOldCode = "") {
    CTestImage image;
    uint32_t const nCity = image.AddNode(LEVEL_CITY, image.AddNode(LEVEL_PREF, ADDR_NONE, "P"), "C");
    uint32_t const nTown = image.AddNode(LEVEL_TOWN, nCity, strTown);
    if (pszCode != nullptr) image.AddInfo(nTown, pszCode, strOldCode);
    image.Complete();
    return image;
}

#endif
