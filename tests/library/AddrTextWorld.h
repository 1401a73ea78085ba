// AddrTextWorld.h - a small world for the analysis of address texts, and helpers to look at records.
#ifndef QEADRS_TESTS_LIBRARY_ADDRTEXTWORLD_H
#define QEADRS_TESTS_LIBRARY_ADDRTEXTWORLD_H

#include "dic/AddrDic.h"
#include "dic/ImageHeader.h"
#include "tests/support/GuardedBytes.h"
#include "tests/support/TestImage.h"

#include <cstring>
#include <string>
#include <utility>
#include <vector>

// A name in the manner of a double-byte encoding: its suffix characters have two bytes, those that the library
// compares. The text is no UTF-8.
#define SHI "\xE5\xB8"   // 市
#define KU "\xE5\x8C"    // 区
#define CHO "\xE7\x94"   // 町
#define GUN "\xE9\x83"   // 郡
#define SHIMA "\xE5\xB3" // 島
#define MURA "\xE6\x9D"  // 村
#define AGATA "\xE5\xBA" // 庁

constexpr unsigned long NO_NODE = static_cast<unsigned long>(-1); // the index that a failed level hands down

// A dictionary over an image that stands read-only right before a page that cannot be touched.
class CGuardedDic : public CAddrDic {
  public:
    explicit CGuardedDic(CTestImage const& image) : CGuardedDic(image.Bytes()) {}
    explicit CGuardedDic(std::vector<unsigned char> const& vByte) : m_image(vByte) { SetDictionary(m_image.Data()); }

    tagADDRNODE const* Node(uint32_t n) const { return GetAddrNode(n); }
    char const* Name(uint32_t nNode) const { return GetString(GetAddrNode(nNode)->nName); }

  private:
    CGuardedBytes m_image;
};

// The image with one entry less in an index than stands there: a walk too far meets the last one.
inline std::vector<unsigned char> WithoutLastEntry(CTestImage const& image, tagHEADERWORD nCount) {
    std::vector<unsigned char> vByte = image.Bytes();
    uint32_t const n = HeaderWord(vByte.data(), nCount) - 1;
    std::memcpy(&vByte[4 * nCount], &n, sizeof n);
    return vByte;
}

// Two prefectures that share the name of a city, towns, an old town, and organisations.
//
//   東京都    千代田区 1000000  丸の内 1000005  テスト 1008111, テスト商事 1008222
//                               千代田 1000001  テスト 1008333
//                               旧町   1000099  superseded by 丸の内
//             港区              芝     1050014  １丁目 1050015 (area)  港商会 1058444, 海ビル 1050016 (building)
//             府中市            宮西町 1830022
//   広島県    府中市            元町   7260003
//
// Old codes are the first three digits; that of 旧町 is 10099.
struct CTextWorld : CTestImage {
    CTextWorld() {
        nTokyo = AddNode(LEVEL_PREF, ADDR_NONE, "東京都", "トウキョウト");
        nHiroshima = AddNode(LEVEL_PREF, ADDR_NONE, "広島県", "ヒロシマケン");
        nChiyodaKu = AddNode(LEVEL_CITY, nTokyo, "千代田区", "チヨダク");
        nMinato = AddNode(LEVEL_CITY, nTokyo, "港区", "ミナトク");
        nFuchu = AddNode(LEVEL_CITY, nTokyo, "府中市", "フチュウシ");
        nFuchuHiroshima = AddNode(LEVEL_CITY, nHiroshima, "府中市", "フチュウシ");
        nMarunouchi = AddNode(LEVEL_TOWN, nChiyodaKu, "丸の内", "マルノウチ");
        nChiyoda = AddNode(LEVEL_TOWN, nChiyodaKu, "千代田", "チヨダ");
        nOldTown = AddNode(LEVEL_TOWN, nChiyodaKu, "旧町", "キュウマチ");
        nShiba = AddNode(LEVEL_TOWN, nMinato, "芝", "シバ");
        nMiyanishi = AddNode(LEVEL_TOWN, nFuchu, "宮西町", "ミヤニシチョウ");
        nMotomachi = AddNode(LEVEL_TOWN, nFuchuHiroshima, "元町", "モトマチ");
        nArea = AddNode(LEVEL_AREA, nShiba, "１丁目", "１チョウメ");
        nTest = AddNode(LEVEL_OFFICE, nMarunouchi, "テスト", "テスト");
        nTestShoji = AddNode(LEVEL_OFFICE, nMarunouchi, "テスト商事", "テストショウジ");
        nTestChiyoda = AddNode(LEVEL_OFFICE, nChiyoda, "テスト", "テスト");
        nMinatoShokai = AddNode(LEVEL_OFFICE, nArea, "港商会", "ミナトショウカイ");
        nBuilding = AddNode(LEVEL_BLOCK, nArea, "海ビル", "ウミビル");
        AddInfo(nChiyodaKu, "1000000", "100");
        AddInfo(nChiyoda, "1000001", "100");
        uint32_t const nInfo = AddInfo(nMarunouchi, "1000005", "100");
        nOldInfo = AddSuperseded(nOldTown, "1000099", "10099", nInfo);
        AddInfo(nTest, "1008111", "100");
        AddInfo(nTestShoji, "1008222", "100");
        AddInfo(nTestChiyoda, "1008333", "100");
        AddInfo(nShiba, "1050014", "105");
        AddInfo(nArea, "1050015", "105");
        AddInfo(nBuilding, "1050016", "105");
        AddInfo(nMinatoShokai, "1058444", "105");
        AddInfo(nMiyanishi, "1830022", "183");
        AddInfo(nMotomachi, "7260003", "726");
        Complete();
    }
    uint32_t nTokyo, nHiroshima, nChiyodaKu, nMinato, nFuchu, nFuchuHiroshima;
    uint32_t nMarunouchi, nChiyoda, nOldTown, nShiba, nMiyanishi, nMotomachi;
    uint32_t nArea, nTest, nTestShoji, nTestChiyoda, nMinatoShokai, nBuilding;
    uint32_t nOldInfo;
};

inline std::string Shown(char const* psz) {
    return psz != nullptr ? psz : "(null)";
}

// The fields of a record by name, as addresses.
inline std::vector<std::pair<std::string, void const*>> Fields(tagADDR const& addr) {
    return {
        {"pszCodeExt", addr.pszCodeExt},   {"pszPostCode", addr.pszPostCode},   {"pszPref", addr.pszPref},
        {"pszPrefKana", addr.pszPrefKana}, {"pszCity", addr.pszCity},           {"pszCityKana", addr.pszCityKana},
        {"pszTown", addr.pszTown},         {"pszTownKana", addr.pszTownKana},   {"pszArea", addr.pszArea},
        {"pszAreaKana", addr.pszAreaKana}, {"pszOffice", addr.pszOffice},       {"pszOfficeKana", addr.pszOfficeKana},
        {"pszBlock", addr.pszBlock},       {"pszBlockKana", addr.pszBlockKana}, {"pszNote", addr.pszNote},
        {"pListCity", addr.pListCity},     {"pPrefNode", addr.pPrefNode},       {"pCityNode", addr.pCityNode},
        {"pTownNode", addr.pTownNode}};
}

// A record none of whose fields has the value that an operation would write.
inline tagADDR MarkedAddr() {
    static char const szMark[] = "marked";
    static tagADDRNODE const node = {};
    tagADDR addr(0);
    for (char const* tagADDR::*psz :
         {&tagADDR::pszCodeExt, &tagADDR::pszPostCode, &tagADDR::pszPref, &tagADDR::pszPrefKana, &tagADDR::pszCity,
          &tagADDR::pszCityKana, &tagADDR::pszTown, &tagADDR::pszTownKana, &tagADDR::pszArea, &tagADDR::pszAreaKana,
          &tagADDR::pszOffice, &tagADDR::pszOfficeKana, &tagADDR::pszBlock, &tagADDR::pszBlockKana,
          &tagADDR::pszNote})
        addr.*psz = szMark;
    addr.pListCity = addr.pPrefNode = addr.pCityNode = addr.pTownNode = &node;
    addr.nCityOrder = 77;
    return addr;
}

// Names of the fields that differ from those of a marked record.
inline std::vector<std::string> Changed(tagADDR const& addr) {
    auto const vMarked = Fields(MarkedAddr());
    auto const vField = Fields(addr);
    std::vector<std::string> vName;
    for (size_t n = 0; n < vField.size(); ++n)
        if (vField[n].second != vMarked[n].second) vName.push_back(vField[n].first);
    if (addr.nCityOrder != 77) vName.emplace_back("nCityOrder");
    return vName;
}

#endif
