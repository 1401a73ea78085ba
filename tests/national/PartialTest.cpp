// Partial addresses: the blocks that a host gets, against lists that the slow reader makes.
#include "ExpectedRow.h"
#include "Failures.h"
#include "Lookup.h"
#include "Previous.h"
#include "SlowAddress.h"

using namespace national;

namespace {

class HostParts : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(m_host.IsOpen()); }

    // Compares the block of each text; returns how many addresses all of them hold.
    size_t Check(std::vector<std::string> const& vText) {
        CFailures failures;
        size_t nAddresses = 0, nBytes = 0;
        for (std::string const& strText : vText) {
            std::vector<CBlockAddress> const vExpected = AddressesOfPart(strText);
            std::string const strBlock = AddBlock(strText);
            nAddresses += vExpected.size();
            nBytes += strBlock.size();
            CompareBlocks(failures, strText, strBlock, ExpectedBlock(vExpected));
            if (failures.Enough()) break;
        }
        PrintFigure("partial addresses asked", vText.size());
        PrintFigure("addresses in their blocks", nAddresses);
        PrintFigure("bytes of blocks compared", nBytes);
        return nAddresses;
    }

  private:
    CHost m_host;
};

std::vector<uint32_t> NodesOfLevel(unsigned nLevel) {
    std::vector<uint32_t> vNode;
    for (uint32_t n = 0; n < Official().Nodes().size(); ++n)
        if (Official().Nodes()[n].nLevel == nLevel) vNode.push_back(n);
    return vNode;
}

std::string Name(uint32_t nNode) {
    return std::string(Official().Nodes()[nNode].strName);
}

TEST_F(HostParts, ThatAreACityGiveExactlyTheCurrentAddressesBelowItInTheirOrder) {
    std::vector<std::string> vText;
    for (uint32_t n : NodesOfLevel(1)) vText.push_back(Name(Official().Nodes()[n].nParent) + Name(n));
    size_t const nAddresses = Check(vText);
    // Each current entry once, and the towns that refer to a part's entry once more.
    size_t nExpected = 0;
    for (CSlowReader::CEntry const& entry : Official().Entries()) nExpected += !entry.bSuperseded;
    for (uint32_t n : NodesOfLevel(2)) {
        uint32_t const nEntry = Official().Nodes()[n].nEntry;
        nExpected += nEntry != NONE && Official().Entries()[nEntry].nNode != n;
    }
    EXPECT_EQ(nAddresses, nExpected);
}

TEST_F(HostParts, ThatAreACityThatIsGoneGiveNoBlock) {
    CFailures failures;
    size_t nAsked = 0;
    for (CGoneTown const& town : GoneTowns()) {
        if (!town.bCityGone || !std::get<2>(town.key).empty()) continue;
        ++nAsked;
        if (!AddBlock(TextOf(town.key)).empty()) failures.Add(TextOf(town.key));
        if (failures.Enough()) return;
    }
    PrintFigure("cities that are gone", nAsked);
}

TEST_F(HostParts, ThatAreAPrefectureGiveTheCurrentAddressesBelowIt) {
    std::vector<std::string> vText;
    for (uint32_t n : NodesOfLevel(0)) vText.push_back(Name(n));
    ASSERT_EQ(vText.size(), 47u);
    Check(vText);
}

TEST_F(HostParts, ThatBeginPrefecturesOrCitiesGiveWhatLiesBelowAllOfThem) {
    Check({"東京", "北", "京", "福", "さ", "府中", "府中市", "伊達市", "泊村", "余市郡", "鹿", "町", "丸の内", "ほ",
           "x"});
}

// The beginnings of a character, too.
TEST_F(HostParts, ThatEndWithinACharacterGiveWhatTheirBytesBegin) {
    Check({"\xE6\x9D", "\xE6\x9D\xB1\xE4", "東京都千代\xE7\x94", "東京都千代田区丸\xE3", "府\xE4\xB8"});
}

TEST_F(HostParts, ThatAreATownGiveTheTownItselfFirstAndThenItsParts) {
    std::vector<std::string> vText;
    for (size_t n = 0; n < TownRows().size(); n += 37) {
        CTownRow const& row = TownRows()[n];
        CPlace const& place = ExpectedTowns().PlacesOf(n).front();
        vText.push_back(CityKey(row.strPref, row.strCity) + place.town.strName + (n % 2 == 0 ? "" : "１２番"));
    }
    for (size_t n = 0; n < GoneTowns().size(); n += 3) vText.push_back(TextOf(GoneTowns()[n].key));
    Check(vText);
}

} // namespace
