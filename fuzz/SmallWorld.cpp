#include "fuzz/Worlds.h"

//   東京都  千代田区  （丸の内） 1000000; 丸の内 1000005 › 丸ビル › １階 1006390; 丸の内 › １−１ › （株）見本 1008111
//                     千代田 1000001, 千代田町 1000002, 旧町 1000003 (superseded by 千代田)
//           府中市    宮町 1830023 › １丁目, ２丁目
//   広島県  府中市    府川町 7260013
//           安芸郡府中町  大通 7350006
void AddSmallWorld(qe::CImageWriter& writer) {
    writer.SetIdentification(20260500, qe::ESource::Sample);
    uint32_t const nTokyo = writer.AddNode(ADDR_NONE, LEVEL_PREF, "東京都", "トウキョウト");
    uint32_t const nHiroshima = writer.AddNode(ADDR_NONE, LEVEL_PREF, "広島県", "ヒロシマケン");
    uint32_t const nChiyoda = writer.AddNode(nTokyo, LEVEL_CITY, "千代田区", "チヨダク");
    uint32_t const nFuchu = writer.AddNode(nTokyo, LEVEL_CITY, "府中市", "フチュウシ");
    uint32_t const nFuchuShi = writer.AddNode(nHiroshima, LEVEL_CITY, "府中市", "フチュウシ");
    uint32_t const nFuchuCho = writer.AddNode(nHiroshima, LEVEL_CITY, "安芸郡府中町", "アキグンフチュウチョウ");

    uint32_t const nMarunouchi = writer.AddNode(nChiyoda, LEVEL_TOWN, "丸の内", "マルノウチ");
    uint32_t const nLonger = writer.AddNode(nChiyoda, LEVEL_TOWN, "千代田町", "チヨダチョウ");
    uint32_t const nTown = writer.AddNode(nChiyoda, LEVEL_TOWN, "千代田", "チヨダ");
    uint32_t const nOld = writer.AddNode(nChiyoda, LEVEL_TOWN, "旧町", "キュウマチ");
    uint32_t const nNameless = writer.AddNode(nChiyoda, LEVEL_TOWN, "", "");
    uint32_t const nMiya = writer.AddNode(nFuchu, LEVEL_TOWN, "宮町", "ミヤマチ");
    uint32_t const nFukawa = writer.AddNode(nFuchuShi, LEVEL_TOWN, "府川町", "フカワチョウ");
    uint32_t const nOdori = writer.AddNode(nFuchuCho, LEVEL_TOWN, "大通", "オオドオリ");
    uint32_t const nBuilding = writer.AddNode(nMarunouchi, LEVEL_BLOCK, "丸ビル", "マルビル");
    uint32_t const nFloor = writer.AddNode(nBuilding, LEVEL_NOTE, "１階", "");
    uint32_t const nLot = writer.AddNode(nMarunouchi, LEVEL_AREA, "１−１", "");
    uint32_t const nOffice = writer.AddNode(nLot, LEVEL_OFFICE, "（株）見本　商事", "ミホンショウジ");
    uint32_t const nFirst = writer.AddNode(nMiya, LEVEL_AREA, "１丁目", "１チョウメ");
    uint32_t const nSecond = writer.AddNode(nMiya, LEVEL_AREA, "２丁目", "２チョウメ");

    uint32_t const nDefault = writer.AddEntry(nNameless, "1000000", "100");
    writer.Refer(nChiyoda, nDefault);
    writer.AddEntry(nMarunouchi, "1000005", "100");
    uint32_t const nToday = writer.AddEntry(nTown, "1000001", "100");
    writer.AddEntry(nLonger, "1000002", "100");
    writer.Supersede(writer.AddEntry(nOld, "1000003", "10055"), nToday);
    writer.AddEntry(nFloor, "1006390", "100");
    writer.AddEntry(nOffice, "1008111", "100");
    writer.Refer(nMiya, writer.AddEntry(nFirst, "1830023", "183"));
    writer.AddEntry(nSecond, "1830023", "183");
    writer.AddEntry(nFukawa, "7260013", "726");
    writer.AddEntry(nOdori, "7350006", "735");

    writer.AddOffice(nOffice);
    writer.AddOffice(writer.AddAlias(nOffice, "見本商事"));
}

std::vector<unsigned char> const& SmallWorld() {
    static std::vector<unsigned char> const vByte = [] {
        qe::CImageWriter writer;
        AddSmallWorld(writer);
        return writer.Write().vByte;
    }();
    return vByte;
}
