// The blocks of browsing as a host gets them: every byte of those of every city against ones that are put together from
// the slow reader's records, in dictionary order and sorted; texts that a host may ask for.
#include "AddressRecord.h"
#include "Failures.h"
#include "Lookup.h"
#include "SlowBrowse.h"

#include <algorithm>
#include <map>

using namespace national;

namespace {

constexpr uint32_t NO_PREFECTURE = 107;

// --- what the host calls -------------------------------------------------------------------------------------------

int nUntouched; // its address stands in a handle that nobody has written
HGLOBAL const hUntouched = HGLOBAL(&nUntouched);

// A block's bytes; of a failed call "status 107", and whether its handle was written.
std::string Taken(uint32_t nStatus, HGLOBAL hBlock) {
    if (nStatus == 0) return TakeBlock(hBlock);
    return "status " + std::to_string(nStatus) + (hBlock == hUntouched ? "" : ", handle written");
}

std::string PrefBlock(std::string const& strText, unsigned short nSortType) {
    std::string strRecord(RECORD_ADDRESS, RECORD_FILL);
    strRecord[0] = static_cast<char>(nSortType);
    strRecord[1] = 0;
    strRecord += strText + '\0';
    std::string const strBefore = strRecord;
    HGLOBAL hBlock = hUntouched;
    uint32_t const nStatus = PstAdrRPrf(strRecord.data(), &hBlock);
    EXPECT_TRUE(strRecord == strBefore) << "the record was written";
    return Taken(nStatus, hBlock);
}

using PBROWSE = uint32_t (*)(unsigned short, HGLOBAL*);
std::string Block(PBROWSE pBrowse, size_t nPosition) {
    HGLOBAL hBlock = hUntouched;
    uint32_t const nStatus = pBrowse(static_cast<unsigned short>(nPosition), &hBlock);
    return Taken(nStatus, hBlock);
}

// --- what it should get --------------------------------------------------------------------------------------------

void PutPrefixed(std::string& str, std::string_view strText) {
    PutInteger(str, strText.size() % 256, 1);
    str += strText;
}

std::string ExpectedNameList(CNodes const& vNode) {
    std::string strBlock;
    PutInteger(strBlock, vNode.size(), 2);
    for (uint32_t n : vNode) PutPrefixed(strBlock, NameOf(n));
    return strBlock;
}

std::string ExpectedPrefs(CNodes const& vNode) {
    return vNode.empty() ? "status " + std::to_string(NO_PREFECTURE) : ExpectedNameList(vNode);
}

std::string ExpectedTownList(CNodes const& vTown, bool bOldCodeFirst) {
    std::string strBlock;
    PutInteger(strBlock, vTown.size(), 2);
    for (uint32_t n : vTown) {
        uint32_t const nEntry = Official().Nodes()[n].nEntry;
        std::string_view strFirst, strSecond;
        if (nEntry != NONE) strFirst = Official().Entries()[nEntry].strCode;
        if (nEntry != NONE) strSecond = Official().Entries()[nEntry].strOldCode;
        if (bOldCodeFirst) std::swap(strFirst, strSecond);
        PutPrefixed(strBlock, NameOf(n));
        PutPrefixed(strBlock, strFirst);
        PutPrefixed(strBlock, strSecond);
        PutInteger(strBlock, 0, 1);
    }
    return strBlock;
}

// Town, building and floor, each only behind the one before it.
std::string LineOf(CAddress const& a) {
    std::string strLine;
    if (!a.strTown) return strLine;
    strLine += *a.strTown;
    if (a.strBlock) strLine.append(" ").append(*a.strBlock);
    if (a.strBlock && a.strNote) strLine.append(" ").append(*a.strNote);
    return strLine;
}

std::string ExpectedLines(std::vector<CBlockAddress> const& vAddress) {
    std::string strEntries, strPool;
    size_t nSize = 12 + 28 * vAddress.size();
    for (CBlockAddress const& address : vAddress) {
        CAddress const& a = address.address;
        size_t const nOldCode = strPool.size();
        strPool.append(address.strBeforeCode).append(1, '\0');
        size_t const nCode = strPool.size();
        strPool.append(address.strCode).append(1, '\0');
        size_t const nLine = strPool.size();
        strPool.append(LineOf(a)).append(1, '\0');
        size_t const nOffice = strPool.size();
        strPool.append(a.strOffice.value_or("")).append(1, '\0');
        for (size_t n : {nCode, nOldCode, size_t{0}, size_t{0}, nLine, size_t{0}, nOffice})
            PutInteger(strEntries, n, 4);
        nSize += 7 + address.strBeforeCode.size() + address.strCode.size();
        for (COptionalText const* p : {&a.strTown, &a.strArea, &a.strBlock, &a.strNote, &a.strOffice})
            nSize += p->value_or("").size();
    }
    std::string strBlock;
    PutInteger(strBlock, vAddress.size(), 2);
    PutInteger(strBlock, 0, 2);
    PutInteger(strBlock, 12, 4);
    PutInteger(strBlock, 12 + strEntries.size(), 4);
    strBlock += strEntries + strPool;
    if (strBlock.size() > nSize) ADD_FAILURE() << "a block would be larger than its size";
    strBlock.resize(nSize, '\0');
    return strBlock;
}

// Sorts by the texts of a key, equal ones in their order.
template <typename ELEMENT, typename KEY>
void SortByText(std::vector<ELEMENT>& v, KEY Key) {
    std::multimap<std::string, ELEMENT> mapKey; // keeps equal ones in the order in which they come
    for (ELEMENT const& element : v) mapKey.emplace(Key(element), element);
    v.clear();
    for (auto const& [strKey, element] : mapKey) v.push_back(element);
}

// The texts that count in the order of lists of addresses; prefecture and city are not in these records.
std::string OrderText(CBlockAddress const& address) {
    std::string str;
    for (COptionalText const* p : {&address.address.strTown, &address.address.strArea, &address.address.strOffice})
        str += p->value_or("");
    return str;
}

// --- the tests -----------------------------------------------------------------------------------------------------

class BrowseBlocks : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(m_host.IsOpen()); }

    // Prefectures and cities; asked anew before each list of towns.
    void AskCities(size_t nPref, CNodes const& vCity) {
        std::string const strPref = NameOf(AllPrefectures()[nPref]);
        Compare("all prefectures", PrefBlock("", m_nSortType), m_strPrefs);
        Compare(strPref, Block(PstAdrRCity, nPref), ExpectedNameList(vCity));
    }

    // The three lists of one city.
    void AskTowns(size_t nPref, CNodes const& vCity, size_t nCity) {
        std::string const strCity = NameOf(AllPrefectures()[nPref]) + NameOf(vCity[nCity]);
        CNodes vTown = NamedChildrenOf(vCity[nCity]);
        std::vector<CBlockAddress> vAddress = AddressesOfPart(strCity);
        if (m_nSortType == 9) SortByText(vTown, NameOf);
        if (m_nSortType == 9) SortByText(vAddress, OrderText);
        AskCities(nPref, vCity);
        Compare(strCity + ", towns", Block(PstAdrTown, nCity), ExpectedTownList(vTown, true));
        AskCities(nPref, vCity);
        Compare(strCity + ", towns, code first", Block(PstAdrRTown, nCity), ExpectedTownList(vTown, false));
        Compare(strCity + ", lines", Block(PstAdrRTownForUI, nCity), ExpectedLines(vAddress));
        // Now there is nothing left to be asked: the list of towns begins with no node.
        if (!vAddress.empty()) Compare(strCity + ", towns after lines", Block(PstAdrTown, nCity), EMPTY);
        m_nAddresses += vAddress.size();
    }

    void AskEveryCity(unsigned short nSortType) {
        m_nSortType = nSortType;
        for (size_t nPref = 0; nPref < AllPrefectures().size(); ++nPref) {
            CNodes vCity = ChildrenOf(AllPrefectures()[nPref]);
            if (nSortType == 9) SortByText(vCity, NameOf);
            for (size_t nCity = 0; nCity < vCity.size() && !m_failures.Enough(); ++nCity)
                AskTowns(nPref, vCity, nCity);
            m_nCities += vCity.size();
        }
        PrintFigure("cities", m_nCities);
        PrintFigure("addresses in their lines", m_nAddresses);
        PrintFigure("bytes of blocks compared", m_nBytes);
        EXPECT_EQ(m_nCities, Official().CityIndex().size());
        EXPECT_GT(m_nAddresses, m_nCities);
    }

    void Compare(std::string const& strQuestion, std::string const& strBlock, std::string const& strExpected) {
        m_nBytes += strBlock.size();
        if (!m_failures.Enough()) CompareBlocks(m_failures, strQuestion, strBlock, strExpected);
    }

    std::string const EMPTY = std::string(2, '\0');

  private:
    CHost m_host;
    CFailures m_failures;
    std::string const m_strPrefs = ExpectedNameList(AllPrefectures());
    unsigned short m_nSortType = 2;
    size_t m_nCities = 0, m_nAddresses = 0, m_nBytes = 0;
};

TEST_F(BrowseBlocks, OfEveryCityAreRightInEveryByteInDictionaryOrder) {
    AskEveryCity(2);
}

TEST_F(BrowseBlocks, OfEveryCityAreRightInEveryByteSorted) {
    AskEveryCity(9);
}

TEST_F(BrowseBlocks, OfAllPrefecturesHaveTheirKnownPlaces) {
    std::string const strBlock = PrefBlock("", 2);
    EXPECT_EQ(strBlock.substr(0, 2), std::string("\x2F\0", 2)); // 47
    EXPECT_EQ(strBlock.substr(2, 10), "\x09北海道");
    EXPECT_NE(strBlock.find("\x09東京都\x0C神奈川県\x09新潟県"), std::string::npos);
    EXPECT_EQ(strBlock.substr(strBlock.size() - 10), "\x09沖縄県");
}

// The blocks of names, and of one town, written out.
std::string Names(std::initializer_list<std::string_view> vName) {
    std::string strBlock;
    PutInteger(strBlock, vName.size(), 2);
    for (std::string_view str : vName) PutPrefixed(strBlock, str);
    return strBlock;
}
std::string OneTown(std::string_view strTown, std::string_view strFirst, std::string_view strSecond) {
    std::string strBlock("\x01\0", 2);
    for (std::string_view str : {strTown, strFirst, strSecond}) PutPrefixed(strBlock, str);
    return strBlock.append(1, '\0');
}

TEST_F(BrowseBlocks, OfATextWithPrefectureCityAndTownHoldOneEntryEach) {
    for (char const* pszText : {"東京都千代田区丸の内", "東京都千代田区丸の内１−１"}) {
        EXPECT_EQ(PrefBlock(pszText, 2), Names({"東京都"})) << pszText;
        EXPECT_EQ(Block(PstAdrRCity, 1), EMPTY) << "there is one prefecture only";
        EXPECT_EQ(Block(PstAdrRCity, 0), Names({"千代田区"})) << pszText;
        EXPECT_EQ(Block(PstAdrRCity, 0), Names({"千代田区"})) << "the same again";
        EXPECT_EQ(Block(PstAdrTown, 1), EMPTY) << "there is one city only";
        EXPECT_EQ(Block(PstAdrTown, 0), OneTown("丸の内", "100", "1000005")) << pszText;
        EXPECT_EQ(Block(PstAdrRTown, 0), OneTown("丸の内", "1000005", "100")) << pszText;
    }
}

TEST_F(BrowseBlocks, OfATextWithPrefectureAndCityHoldAllTownsOfThatCity) {
    uint32_t const nCity = Separate("東京都千代田区").nCity;
    ASSERT_NE(nCity, NONE);
    EXPECT_EQ(PrefBlock("東京都千代田区", 2), Names({"東京都"}));
    EXPECT_EQ(Block(PstAdrRCity, 0), Names({"千代田区"}));
    Compare("千代田区", Block(PstAdrRTown, 0), ExpectedTownList(NamedChildrenOf(nCity), false));
}

TEST_F(BrowseBlocks, OfEveryCityAloneHoldThePrefecturesInWhichTheSearchMeetsIt) {
    size_t nMissed = 0;
    for (std::string const& strName : CityNames()) {
        CNodes const vPref = PrefecturesFound(strName);
        nMissed += vPref.empty();
        Compare(strName, PrefBlock(strName, 2), ExpectedPrefs(vPref));
    }
    PrintFigure("names of cities", CityNames().size());
    PrintFigure("not found", nMissed);
    EXPECT_LE(nMissed, 1u); // the first of the index
}

TEST_F(BrowseBlocks, OfACityOfSeveralPrefecturesHoldEachInTheOrderOfTheSearch) {
    for (char const* pszName : {"府中市", "伊達市"}) {
        CNodes const vPref = PrefecturesFound(pszName);
        EXPECT_EQ(vPref.size(), 2u) << pszName;
        EXPECT_EQ(PrefBlock(pszName, 2), ExpectedPrefs(vPref)) << pszName;
        // The list of cities holds the one that the text has been taken for, whatever the prefecture.
        EXPECT_EQ(Block(PstAdrRCity, 0), Names({pszName}));
        EXPECT_EQ(Block(PstAdrRCity, 1), Names({pszName}));
        EXPECT_EQ(Block(PstAdrRCity, 2), EMPTY);
        Compare(pszName, Block(PstAdrRTown, 0), ExpectedTownList(NamedChildrenOf(Separate(pszName).nCity), false));
    }
}

TEST_F(BrowseBlocks, OfTheFirstCityOfTheIndexAreNoneUnlessItsPrefectureStandsInFront) {
    CNodes const& vIndex = Official().CityIndex();
    std::string const strCity = NameOf(vIndex[0]);
    std::string const strPref = NameOf(Official().Nodes()[vIndex[0]].nParent);
    ASSERT_FALSE(BeginsWith(NameOf(vIndex[1]), strCity)) << "another city is found by its name";
    std::printf("the first city of the index is %s\n", strCity.c_str());
    EXPECT_EQ(PrefBlock(strCity, 2), "status 107");
    EXPECT_EQ(Block(PstAdrRCity, 0), EMPTY);
    EXPECT_EQ(PrefBlock(strPref + strCity, 2), Names({strPref}));
    EXPECT_EQ(Block(PstAdrRCity, 0), Names({strCity}));
    Compare(strCity, Block(PstAdrTown, 0), ExpectedTownList(NamedChildrenOf(vIndex[0]), true));
}

TEST_F(BrowseBlocks, OfATextThatNamesNoCityAreNone) {
    for (char const* pszText : {"x", "東京", "市", "丸の内"}) {
        EXPECT_EQ(PrefBlock(pszText, 2), "status 107") << pszText;
        EXPECT_EQ(Block(PstAdrRCity, 0), EMPTY) << pszText;
        EXPECT_EQ(Block(PstAdrTown, 0), EMPTY) << pszText;
    }
}

} // namespace
