// The blocks that a host gets: every byte of every code's block against one that the slow reader puts together.
#include "Failures.h"
#include "Lookup.h"
#include "Tables.h"

#include <algorithm>
#include <array>
#include <random>

using namespace national;

namespace {

using CEntries = std::vector<uint32_t>;

std::string ExpectedZipBlock(CEntries const& vEntry) {
    std::vector<CBlockAddress> vAddress;
    for (uint32_t nEntry : vEntry)
        vAddress.push_back({"", Official().Entries()[nEntry].strCode, Official().Address(nEntry)});
    return ExpectedBlock(vAddress);
}

std::string ExpectedCityBlock(CEntries const& vEntry) {
    std::string strPairs, strLast;
    size_t nPairs = 0;
    for (uint32_t nEntry : vEntry) {
        CAddress const a = Official().Address(nEntry);
        std::string const strBoth = std::string(*a.strPref).append(*a.strCity);
        std::string const strPair = std::string(*a.strPref).append("\n").append(*a.strCity);
        if (nPairs > 0 && strPair == strLast) continue;
        strLast = strPair;
        ++nPairs;
        PutInteger(strPairs, strBoth.size() % 256, 1);
        strPairs += strBoth;
    }
    std::string strBlock;
    PutInteger(strBlock, nPairs, 2);
    return strBlock + strPairs;
}

class HostBlocks : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(m_host.IsOpen()); }

    template <typename CODES>
    void CheckZipBlocks(CODES const& codes) {
        CFailures failures;
        size_t nBytes = 0;
        for (std::string_view strCode : codes) {
            std::string const strBlock = ZipBlock(std::string(strCode));
            nBytes += strBlock.size();
            CompareBlocks(failures, std::string(strCode), strBlock, ExpectedZipBlock(Official().EntriesOf(strCode)));
            if (failures.Enough()) return;
        }
        PrintFigure("codes and leading parts asked", codes.size());
        PrintFigure("bytes of blocks compared", nBytes);
    }

    template <typename CODES>
    void CheckCityBlocks(CODES const& codes) {
        CFailures failures;
        for (std::string_view strCode : codes) {
            CompareBlocks(failures, std::string(strCode), CityBlock(std::string(strCode), ""),
                          ExpectedCityBlock(Official().EntriesOf(strCode)));
            if (failures.Enough()) return;
        }
        PrintFigure("codes asked", codes.size());
    }

  private:
    CHost m_host;
};

constexpr unsigned SEED = 20260529;

// Leading parts of four to six digits: some that exist.
std::vector<std::string_view> SampleOfLongerParts(size_t nSize) {
    std::printf("seed %u\n", SEED);
    std::vector<std::string_view> vPart;
    for (auto const& [strPart, nEntry] : Official().Prefixes())
        if (strPart.size() >= 4 && strPart.size() <= 6) vPart.push_back(strPart);
    std::mt19937 random(SEED);
    for (size_t n = 0; n < nSize && n < vPart.size(); ++n)
        std::swap(vPart[n], vPart[n + random() % (vPart.size() - n)]);
    vPart.resize(std::min(nSize, vPart.size()));
    return vPart;
}

TEST_F(HostBlocks, OfEveryTownCodeAreRightInEveryByte) {
    CheckZipBlocks(TownCodes());
}

TEST_F(HostBlocks, OfEveryOrganisationCodeAreRightInEveryByte) {
    CheckZipBlocks(OfficeCodes());
}

TEST_F(HostBlocks, OfEveryCodeOfATownThatIsGoneAreRightInEveryByte) {
    CheckZipBlocks(GoneCodes());
}

TEST_F(HostBlocks, OfEveryPartOfOneToThreeDigitsAreRightInEveryByte) {
    std::vector<std::string> vPart;
    for (unsigned n = 0; n < 1000; ++n) {
        std::string const str = std::to_string(1000 + n).substr(1);
        for (size_t nDigits = 1; nDigits <= 3; ++nDigits)
            if (str.substr(nDigits).find_first_not_of('0') == std::string::npos)
                vPart.push_back(str.substr(0, nDigits));
    }
    ASSERT_EQ(vPart.size(), 10u + 100u + 1000u);
    CheckZipBlocks(vPart);
}

TEST_F(HostBlocks, OfLongerPartsAreRightInEveryByte) {
    CheckZipBlocks(SampleOfLongerParts(10000));
}

TEST_F(HostBlocks, OfCitiesAreRightForEveryTownCode) {
    CheckCityBlocks(TownCodes());
}

TEST_F(HostBlocks, OfCitiesAreRightForEveryOrganisationCode) {
    CheckCityBlocks(OfficeCodes());
}

TEST_F(HostBlocks, OfCitiesAreRightForEveryCodeOfATownThatIsGone) {
    CheckCityBlocks(GoneCodes());
}

TEST_F(HostBlocks, OfCitiesAreRightForLongerParts) {
    CheckCityBlocks(SampleOfLongerParts(10000));
}

TEST_F(HostBlocks, OfCitiesAreRightForEveryOldCode) {
    CFailures failures;
    for (std::string_view strOldCode : OldCodes()) {
        CompareBlocks(failures, "old " + std::string(strOldCode), CityBlock("", std::string(strOldCode)),
                      ExpectedCityBlock(Official().EntriesInReachOfOldCode(strOldCode)));
        if (failures.Enough()) return;
    }
    PrintFigure("old codes asked", OldCodes().size());
}

// The conventional order of the prefectures.
constexpr std::string_view PREFECTURES[] = {
    "北海道", "青森県", "岩手県", "宮城県",   "秋田県", "山形県",   "福島県", "茨城県", "栃木県", "群馬県",
    "埼玉県", "千葉県", "東京都", "神奈川県", "新潟県", "富山県",   "石川県", "福井県", "山梨県", "長野県",
    "岐阜県", "静岡県", "愛知県", "三重県",   "滋賀県", "京都府",   "大阪府", "兵庫県", "奈良県", "和歌山県",
    "鳥取県", "島根県", "岡山県", "広島県",   "山口県", "徳島県",   "香川県", "愛媛県", "高知県", "福岡県",
    "佐賀県", "長崎県", "熊本県", "大分県",   "宮崎県", "鹿児島県", "沖縄県"};

std::string SortKey(uint32_t nEntry) {
    CAddress const a = Official().Address(nEntry);
    auto const nPref = std::find(std::begin(PREFECTURES), std::end(PREFECTURES), a.strPref) - PREFECTURES;
    std::string strKey = std::to_string(100 + nPref).substr(1);
    for (COptionalText const* p : {&a.strPref, &a.strCity, &a.strTown, &a.strArea, &a.strOffice})
        strKey.append(p->value_or(""));
    return strKey;
}

// The seven texts of each address of a block, joined; those whose keys are equal may come in any order.
std::vector<std::string> AddressesOf(std::string const& strBlock) {
    auto const Integer = [&strBlock](size_t nAt) {
        size_t n = 0;
        for (size_t i = 4; i-- > 0;) n = n << 8 | static_cast<unsigned char>(strBlock[nAt + i]);
        return n;
    };
    std::vector<std::string> vAddress((Integer(8) - 12) / 28);
    for (size_t i = 0; i < vAddress.size(); ++i)
        for (size_t nText = 0; nText < 7; ++nText)
            vAddress[i].append(strBlock.c_str() + Integer(8) + Integer(12 + 28 * i + 4 * nText)).append("|");
    return vAddress;
}

// The addresses of a part in the expected order, each group of equal keys sorted by its texts.
std::vector<std::string> ExpectedSorted(std::string_view strPart) {
    std::vector<std::pair<std::string, std::string>> vKeyed;
    for (uint32_t nEntry : Official().EntriesOf(strPart))
        vKeyed.emplace_back(SortKey(nEntry), AddressesOf(ExpectedZipBlock({nEntry})).front());
    std::sort(vKeyed.begin(), vKeyed.end());
    std::vector<std::string> vAddress;
    for (auto const& keyed : vKeyed) vAddress.push_back(keyed.second);
    return vAddress;
}

// The same for an answer: neighbours of one key are put in the order of their texts.
std::vector<std::string> WithTiesInOrder(std::vector<std::string> vAddress) {
    auto const Key = [](std::string const& str) { // all but the code and the empty text
        std::string strKey = str.substr(str.find('|') + 2);
        strKey.erase(std::remove(strKey.begin(), strKey.end(), '|'), strKey.end());
        return strKey;
    };
    for (auto p = vAddress.begin(); p != vAddress.end();) {
        auto const pEnd =
            std::find_if(p, vAddress.end(), [&](std::string const& str) { return Key(str) != Key(*p); });
        std::sort(p, pEnd);
        p = pEnd;
    }
    return vAddress;
}

TEST_F(HostBlocks, AreInTheConventionalOrderOnceTheSortTypeAsksForIt) {
    CFailures failures;
    std::vector<std::string_view> vPart = SampleOfLongerParts(2000);
    for (std::string_view str : {"0", "100", "39", "498", "600", "871"}) vPart.push_back(str);
    CityBlock("1000001", "", 9);
    for (std::string_view strPart : vPart) {
        if (WithTiesInOrder(AddressesOf(ZipBlock(std::string(strPart)))) != ExpectedSorted(strPart))
            failures.Add(std::string(strPart) + " is not in order");
        if (failures.Enough()) break;
    }
    CityBlock("1000001", "", 2);
    PrintFigure("sorted blocks", vPart.size());
}

} // namespace
