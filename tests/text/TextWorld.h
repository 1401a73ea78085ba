// TextWorld.h - a small country for the tests of the text layer: all kinds of names that are read in their own ways.
//
//   CImageBytes const vByte = TextImage();                        // with its index in the fifth table
//   std::vector<std::string> const vText = Texts();               // of all its places, in several spellings
#ifndef QEADRS_TESTS_TEXT_TEXTWORLD_H
#define QEADRS_TESTS_TEXT_TEXTWORLD_H

#include "dic/ImageHeader.h"
#include "tests/support/TestImage.h"
#include "text/AddressText.h"

#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

using CImageBytes = std::vector<unsigned char>;

// Prefecture, city, town, code, and below the town "name=code" or "building/floor=code". Rows of a prefecture, of a
// city and of a town stand together.
struct CTextRow {
    char const *pszPref, *pszCity, *pszTown, *pszCode;
    std::vector<std::pair<char const*, char const*>> vBelow = {};
};

inline std::vector<CTextRow> const& TextRows() {
    static std::vector<CTextRow> const vRow = {
        {"北海道", "札幌市中央区", "", "0600000"},
        {"北海道", "札幌市中央区", "旭ケ丘", "0640941"},
        {"北海道", "札幌市中央区", "北一条西", "", {{"１〜１９丁目", "0600001"}, {"２０〜２８丁目", "0640821"}}},
        {"北海道", "札幌市中央区", "大通西", "", {{"１〜１９丁目", "0600042"}, {"２０〜２８丁目", "0640820"}}},
        {"北海道", "札幌市北区", "北八条西", "0600808"},
        {"北海道", "札幌市北区", "十二", "0010012"},
        {"北海道", "余市郡余市町", "黒川町", "0460003"},
        {"岩手県",
         "岩手郡葛巻町",
         "葛巻",
         "",
         {{"第１地割〜第３９地割、第４６地割", "0285402"}, {"その他", "0285403"}}},
        {"宮城県", "仙台市青葉区", "一番町", "9800811"},
        {"宮城県",
         "仙台市青葉区",
         "中央",
         "9800021",
         {{"アエル/１階", "9806101"}, {"アエル/２０階", "9806120"}, {"アエル/地階・階層不明", "9806190"}}},
        {"東京都", "千代田区", "", "1000000"},
        {"東京都", "千代田区", "一ツ橋", "1000003"},
        {"東京都", "千代田区", "丸の内", "1000005"},
        {"東京都", "千代田区", "霞が関", "1000013"},
        {"東京都", "港区", "芝", "", {{"１〜３丁目", "1050014"}, {"４、５丁目", "1080014"}}},
        {"東京都", "府中市", "", "1830000"},
        {"東京都", "府中市", "宮町", "1830023"},
        {"東京都", "府中市", "緑ケ丘", "1830024"},
        {"東京都", "三宅島三宅村", "神着", "1001101"},
        {"東京都", "利島村", "", "1000301"},
        {"神奈川県", "横浜市青葉区", "青葉台", "2270062"},
        {"岐阜県", "大垣市", "大字佐々良木", "5030001"},
        {"岐阜県", "大垣市", "沢渡町", "5030002"},
        {"岐阜県", "大垣市", "砂新田", "5030004"},
        {"岐阜県", "大垣市", "砂", "5030003"},
        {"岐阜県", "大垣市", "西小", "5030006"},
        {"岐阜県", "大垣市", "西", "5030005"},
        {"京都府", "京都市中京区", "", "6040000"},
        {"京都府",
         "京都市中京区",
         "亀屋町",
         "",
         {{"御幸町通御池上る、御幸町通押小路下る", "6040941"}, {"麩屋町通姉小路上る、麩屋町通御池下る", "6048095"}}},
        {"京都府", "京都市中京区", "西ノ京桑原町", "6048571"},
        {"広島県", "府中市", "元町", "7260003"},
        {"広島県", "府中市", "緑ヶ丘", "7260004"},
        {"広島県", "安芸郡府中町", "本町", "7350006"},
        {"香川県",
         "仲多度郡琴平町",
         "",
         "",
         {{"１〜４２６番地「川東」", "7660002"}, {"４２７番地以降「川西」", "7660001"}}},
        {"鹿児島県", "鹿児島市", "上之園町", "8900052"},
    };
    return vRow;
}

// Its records, level by level as a dictionary has them.
inline CTestImage TextRecords() {
    CTestImage image;
    std::map<std::string, uint32_t> mapNode;
    auto const AddOnce = [&](uint8_t nLevel, std::string const& strParent, std::string const& strName) {
        std::string const strPath = strParent + '/' + strName;
        uint32_t const nParent = strParent.empty() ? ADDR_NONE : mapNode.at(strParent);
        auto const [pNode, bNew] = mapNode.emplace(strPath, 0);
        if (bNew) pNode->second = image.AddNode(nLevel, nParent, strName);
        return strPath;
    };
    auto const CityPath = [](CTextRow const& row) { return std::string("/") + row.pszPref + '/' + row.pszCity; };
    auto const TownPath = [&](CTextRow const& row) { return CityPath(row) + '/' + row.pszTown; };
    for (CTextRow const& row : TextRows()) AddOnce(LEVEL_PREF, "", row.pszPref);
    for (CTextRow const& row : TextRows()) AddOnce(LEVEL_CITY, std::string("/") + row.pszPref, row.pszCity);
    for (CTextRow const& row : TextRows()) AddOnce(LEVEL_TOWN, CityPath(row), row.pszTown);
    for (bool const bFloors : {false, true})
        for (CTextRow const& row : TextRows())
            for (auto const& [pszName, pszCode] : row.vBelow) {
                char const* const pszFloor = std::strchr(pszName, '/');
                if (!bFloors && pszFloor == nullptr) AddOnce(LEVEL_AREA, TownPath(row), pszName);
                if (pszFloor == nullptr) continue;
                std::string const strBuilding(pszName, pszFloor);
                if (!bFloors) AddOnce(LEVEL_BLOCK, TownPath(row), strBuilding);
                if (bFloors) AddOnce(LEVEL_NOTE, TownPath(row) + '/' + strBuilding, pszFloor + 1);
            }
    std::multimap<std::string, uint32_t> mapEntry; // by code
    for (CTextRow const& row : TextRows()) {
        if (*row.pszCode != '\0') mapEntry.emplace(row.pszCode, mapNode.at(TownPath(row)));
        for (auto const& [pszName, pszCode] : row.vBelow)
            mapEntry.emplace(pszCode, mapNode.at(TownPath(row) + '/' + pszName));
    }
    for (auto const& [strCode, nNode] : mapEntry) image.AddInfo(nNode, strCode, strCode.substr(0, 3));
    image.Complete();
    return image;
}

inline void SetWord(CImageBytes& vByte, size_t nWord, uint32_t n) {
    std::memcpy(vByte.data() + 4 * nWord, &n, sizeof n);
}

// The image with these bytes as its fifth table, at its end.
inline CImageBytes WithIndex(CImageBytes vByte, CImageBytes const& vIndex) {
    vByte.resize((vByte.size() + 15) / 16 * 16);
    SetWord(vByte, HDR_FIFTH_TABLE, static_cast<uint32_t>(vByte.size()));
    vByte.insert(vByte.end(), vIndex.begin(), vIndex.end());
    std::memcpy(vByte.data(), IMAGE_MAGIC, sizeof IMAGE_MAGIC);
    SetWord(vByte, HDR_VERSION, IMAGE_VERSION);
    SetWord(vByte, HDR_FILE_SIZE, static_cast<uint32_t>(vByte.size()));
    SetWord(vByte, HDR_SIXTH_TABLE, static_cast<uint32_t>(vByte.size()));
    return vByte;
}

inline CImageBytes IndexOf(CImageBytes const& vByte) {
    CAddrDic dic;
    dic.SetDictionary(vByte.data());
    return qeadrs::BuildTextIndex(dic);
}

inline CImageBytes TextImage() {
    CImageBytes const vPlain = WithIndex(TextRecords().Bytes(), {});
    return WithIndex(vPlain, IndexOf(vPlain));
}

inline void ReplaceAll(std::string& str, std::string const& strFrom, std::string const& strTo) {
    for (size_t n = 0; (n = str.find(strFrom, n)) != std::string::npos; n += strTo.size())
        str.replace(n, strFrom.size(), strTo);
}

// Each place of it as the table has it, and as people do: some 500 texts.
inline std::vector<std::string> Texts() {
    std::vector<std::string> vText;
    for (CTextRow const& row : TextRows()) {
        std::string const strCity = row.pszCity, strTown = row.pszTown;
        std::vector<std::string> vBehind = {"",       "１－２－３", "2丁目3番4号", " 25-1 サンハイツ２０３号室",
                                            "５の２", "第四十地割"};
        for (auto const& [pszName, pszCode] : row.vBelow) vBehind.emplace_back(pszName);
        for (std::string const& strBehind : vBehind) {
            vText.push_back(row.pszPref + strCity + strTown + strBehind);
            vText.push_back(strCity + strTown + strBehind);
            vText.push_back(std::string("〒") + "100-0005　" + row.pszPref + ' ' + strCity + ' ' + strTown + ' ' +
                            strBehind);
        }
        std::string strOther = row.pszPref + strCity + strTown + "二十一－３";
        for (auto const& [strFrom, strTo] : std::vector<std::pair<std::string, std::string>>{{"ケ", "ヶ"},
                                                                                             {"の", "ノ"},
                                                                                             {"之", "の"},
                                                                                             {"一", "1"},
                                                                                             {"八", "８"},
                                                                                             {"沢", "澤"},
                                                                                             {"が", "か\u3099"}})
            ReplaceAll(strOther, strFrom, strTo);
        vText.push_back(strOther);
        vText.push_back(row.pszPref + strCity + "大字" + strTown + "字１");
        vText.push_back(row.pszPref + strCity + "烏丸通四条上る" + strTown + "１");
        vText.push_back(strCity.substr(strCity.find("郡") == std::string::npos ? 0 : strCity.find("郡") + 3) +
                        strTown);
        vText.push_back(strCity.substr(strCity.find("市") == std::string::npos ? 0 : strCity.find("市") + 3) +
                        strTown);
    }
    return vText;
}

#endif
