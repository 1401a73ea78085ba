// CTestImage - a dictionary image put together record by record, in whatever order and with whatever numbers a test
// wants, those included that the compiler would never write.
//
//   CTestImage image;
//   auto nPref = image.AddNode(LEVEL_PREF, ADDR_NONE, "東京都", "トウキョウト");
//   auto nCity = image.AddNode(LEVEL_CITY, nPref, "千代田区");
//   image.AddInfo(image.AddNode(LEVEL_TOWN, nCity, "千代田"), "1000001", "100");
//   image.vNode[nCity].nParent = nCity;            // damage is a plain assignment
//   auto vByte = image.Bytes();
//   dic.SetDictionary(vByte.data());
//
// Nothing is sorted and nothing is linked downwards: records stand in the order of adding, child counts stay 0, the
// header knows of no level and the indexes are empty, unless Complete() fills all that in. The string area is the
// last thing in the image, and the image's size is a multiple of 16.
#ifndef QEADRS_TESTS_SUPPORT_TESTIMAGE_H
#define QEADRS_TESTS_SUPPORT_TESTIMAGE_H

#include "dic/AddrNode.h"

#include <string>
#include <string_view>
#include <vector>

class CTestImage {
  public:
    // Offset in the string area of "name NUL reading NUL", or of "code NUL old code NUL".
    uint32_t AddText(std::string_view strFirst, std::string_view strSecond = {});

    uint32_t AddNode(uint8_t nLevel, uint32_t nParent, std::string_view strName, std::string_view strKana = {});

    uint32_t AddInfo(uint32_t nNode, std::string_view strCode, std::string_view strOldCode = {});

    // An entry whose code lies at the given offset: thousands of entries can share one.
    uint32_t AddInfoAt(uint32_t nNode, uint32_t nCode);

    // An old address: nSuccessor is the entry that has taken its place, written directly behind the old code.
    uint32_t AddSuperseded(uint32_t nNode, std::string_view strCode, std::string_view strOldCode,
                           uint32_t nSuccessor);

    // Makes the records a dictionary that can be read downwards: children, the nodes' entries (the first that names
    // the node), the runs of prefectures, cities and towns, and both indexes. The entries stay in their order.
    // REQUIRES: the prefectures, the cities, the towns, and the children of each node, were added in one go each.
    void Complete();

    std::vector<unsigned char> Bytes() const;

    std::vector<tagADDRNODE> vNode;
    std::vector<tagADDRINFO> vInfo;
    std::string strArea;
    std::vector<uint32_t> vCityIndex, vOfficeIndex; // the header counts as many city nodes as vCityIndex has entries
    uint32_t nFirstPref = 0, nPrefCount = 0, nFirstCity = 0, nFirstTown = 0, nTownCount = 0;
};

// A prefecture, city and town, and one entry for the town: enough for most questions.
//
//   entry 0  1000001  old 100  千代田, 千代田区, 東京都
struct CTinyWorld : CTestImage {
    CTinyWorld();
    uint32_t nPref, nCity, nTown, nInfo;
};

#endif
