// PstAdrGetZip and PstAdrGetLatestAdr on the caller's record, and the block of GetAdrFromAdd, byte for byte.
#include "tests/library/AddrTextWorld.h"
#include "tests/library/ApiWorld.h"
#include "tests/support/GuardedBytes.h"
#include "tests/support/Peek.h"
#include "tests/support/SystemWatch.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

using testing::IsEmpty;

// The record's fields: sort type, old code, code, address, organisation.
constexpr size_t OLD_CODE = 2, CODE = 8, ADDRESS = 23, OFFICE = 145;
constexpr size_t ADDRESS_SIZE = OFFICE - ADDRESS;

// A record full of a byte that no call writes, then with the fields that a caller fills.
class CRecord {
  public:
    explicit CRecord(size_t nSize, unsigned char nFill = 0xA5) : m_vByte(nSize, nFill) {}
    static CRecord Of(std::string const& strAddress, std::string const& strOffice, unsigned char nFill = 0xA5) {
        CRecord record(OFFICE + strOffice.size() + 1, nFill);
        return record.Sort(2).Text(ADDRESS, strAddress).Text(OFFICE, strOffice);
    }

    CRecord Sort(unsigned n) const { return Bytes(0, {static_cast<char>(n & 0xFF), static_cast<char>(n >> 8)}); }
    CRecord Text(size_t nOffset, std::string const& str) const { return Bytes(nOffset, str + '\0'); } // with its NUL
    CRecord Bytes(size_t nOffset, std::string const& str) const {
        CRecord record = *this;
        std::copy(str.begin(), str.end(), record.m_vByte.begin() + static_cast<std::ptrdiff_t>(nOffset));
        return record;
    }
    CBlockBytes const& All() const { return m_vByte; }

  private:
    CBlockBytes m_vByte;
};

class AddressRecord : public CApi {
  protected:
    AddressRecord() { Bind(CTextWorld()); }

    struct CResult {
        short nResult;
        CBlockBytes vRecord; // as it is behind the call
    };

    // Calls with the record at the end of a page and at the start of one, where neither may look further.
    static CResult Call(short (*pfn)(void*), CRecord const& record) {
        CResult aResult[2];
        for (auto nPlace : {CGuardedBytes::EndOfPage, CGuardedBytes::StartOfPage}) {
            size_t const nSize = record.All().size();
            CGuardedBytes const bytes(record.All().data(), nSize, CGuardedBytes::Writable, nPlace);
            CResult& result = aResult[nPlace == CGuardedBytes::StartOfPage];
            result.nResult = pfn(bytes.Data());
            result.vRecord.assign(bytes.Data(), bytes.Data() + nSize);
        }
        EXPECT_EQ(aResult[0].nResult, aResult[1].nResult);
        EXPECT_EQ(aResult[0].vRecord, aResult[1].vRecord);
        return aResult[0];
    }

    static void ExpectZip(CRecord const& before, short nResult, CRecord const& behind) {
        CResult const result = Call(PstAdrGetZip, before);
        EXPECT_EQ(result.nResult, nResult);
        EXPECT_EQ(result.vRecord, behind.All());
    }

    static void ExpectLatest(CRecord const& before, CRecord const& behind) {
        CResult const result = Call(PstAdrGetLatestAdr, before);
        EXPECT_EQ(result.nResult, 0);
        EXPECT_EQ(result.vRecord, behind.All());
    }
};

char const MARUNOUCHI[] = "東京都千代田区丸の内２丁目";

// --- PstAdrGetZip --------------------------------------------------------------------------------------------------

using PostCodeOfARecord = AddressRecord;

TEST_F(PostCodeOfARecord, IsWrittenWithoutItsNulAndNothingElseChanges) {
    for (int nFill : {0x00, 0x20, 0xA5, 0xFF}) {
        CRecord const record = CRecord::Of(MARUNOUCHI, "", static_cast<unsigned char>(nFill));
        ExpectZip(record, 0, record.Bytes(OLD_CODE, "100").Bytes(CODE, "1000005"));
    }
}

TEST_F(PostCodeOfARecord, LeavesARestOfTheFieldThatTheCallerDidNotZero) {
    CRecord const record = CRecord::Of(MARUNOUCHI, "").Bytes(OLD_CODE, "98765").Bytes(CODE, "987654321012345");
    ExpectZip(record, 0, record.Bytes(OLD_CODE, "10065").Bytes(CODE, "100000521012345"));
}

TEST_F(PostCodeOfARecord, IsThatOfTheOrganisationWhoseNameIsNormalisedInPlace) {
    CRecord const record = CRecord::Of(MARUNOUCHI, "株式会社 テスト, 商事");
    ExpectZip(record, 0, record.Bytes(OLD_CODE, "100").Bytes(CODE, "1008222").Bytes(OFFICE, [&] {
        // Blanks go first and move what follows, then the word in front does: what lies behind the NUL stays.
        std::string strName = "株式会社 テスト, 商事";
        std::string const strNoBlank = "株式会社テスト商事", strNormal = "テスト商事";
        std::copy_n(strNoBlank.c_str(), strNoBlank.size() + 1, strName.begin());
        std::copy_n(strNormal.c_str(), strNormal.size() + 1, strName.begin());
        return strName;
    }()));
}

TEST_F(PostCodeOfARecord, IsTheTownsWhenTheOrganisationIsNotThere) {
    CRecord const record = CRecord::Of(MARUNOUCHI, "無い会社");
    ExpectZip(record, 0, record.Bytes(OLD_CODE, "100").Bytes(CODE, "1000005"));
}

TEST_F(PostCodeOfARecord, IsTheTownsAlsoWhenTheOrganisationHasNoEntry) {
    CTextWorld world;
    world.vNode[world.nTest].nInfo = ADDR_NONE;
    Bind(world);
    CRecord const record = CRecord::Of(MARUNOUCHI, "テスト");
    ExpectZip(record, 0, record.Bytes(OLD_CODE, "100").Bytes(CODE, "1000005"));
}

TEST_F(PostCodeOfARecord, IsTheCitysWithoutATown) {
    CRecord const record = CRecord::Of("東京都千代田区", "");
    ExpectZip(record, 0, record.Bytes(OLD_CODE, "100").Bytes(CODE, "1000000"));
}

TEST_F(PostCodeOfARecord, ThatIsNotFoundLeavesTheRecordButForItsOrganisation) {
    for (char const* psz : {"無県", "", "東京都", "東京都港区", " 東京都千代田区丸の内"}) {
        CRecord const record = CRecord::Of(psz, "");
        ExpectZip(record, 1, record);
        ExpectZip(CRecord::Of(psz, "a b"), 1, CRecord::Of(psz, "a b").Bytes(OFFICE, std::string("ab\0", 3)));
    }
}

TEST_F(PostCodeOfARecord, HasAnEmptyOldCodeWhereThereIsNone) {
    CTextWorld world;
    world.vNode[world.nMarunouchi].nInfo = world.AddInfo(world.nMarunouchi, "1000006");
    Bind(world);
    CRecord const record = CRecord::Of(MARUNOUCHI, "");
    ExpectZip(record, 0, record.Bytes(CODE, "1000006"));
}

TEST_F(PostCodeOfARecord, KeepsALongCodeInsideItsField) {
    CTextWorld world;
    world.vNode[world.nMarunouchi].nInfo = world.AddInfo(world.nMarunouchi, "1234567890abcdefghij", "0123456789");
    Bind(world);
    CRecord const record = CRecord::Of(MARUNOUCHI, "");
    ExpectZip(record, 0, record.Bytes(OLD_CODE, "012345").Bytes(CODE, "1234567890abcde"));
}

TEST_F(PostCodeOfARecord, IsNotWrittenWhenTheCodeCannotBeRead) {
    CTextWorld world;
    world.vInfo[world.vNode[world.nMarunouchi].nInfo].nCode = 0xFFFFFFFF;
    Bind(world);
    CRecord const record = CRecord::Of(MARUNOUCHI, "");
    ExpectZip(record, 1, record);
}

TEST_F(PostCodeOfARecord, EndsAnAddressWithoutANulAtTheEndOfItsField) {
    std::string strAddress = "東京都千代田区丸の内";
    strAddress.resize(ADDRESS_SIZE, '9');
    CRecord const record = CRecord::Of("", "テスト商事").Bytes(ADDRESS, strAddress);
    ExpectZip(record, 0, record.Bytes(OLD_CODE, "100").Bytes(CODE, "1008222"));
    // A town that would fit only with what follows the field is not read.
    CTextWorld world;
    std::string const strLong(ADDRESS_SIZE - std::strlen("東京都千代田区") + 1, 'x');
    world.vNode[world.nMarunouchi].nName = world.AddText(strLong);
    Bind(world);
    CRecord const full = CRecord::Of("", "x").Bytes(ADDRESS, "東京都千代田区" + strLong.substr(1));
    ExpectZip(full, 0, full.Bytes(OLD_CODE, "100").Bytes(CODE, "1000000"));
}

TEST_F(PostCodeOfARecord, KeepsTheSortTypeWhateverItFinds) {
    for (unsigned nSort : {9u, 2u, 0u, 0x0100u, 0xFFFFu})
        for (char const* psz : {MARUNOUCHI, "無県"}) {
            dic.SetSortType(1);
            Call(PstAdrGetZip, CRecord::Of(psz, "").Sort(nSort));
            EXPECT_EQ(CAddrDicPeek(dic).nSortType, nSort) << psz;
        }
}

TEST_F(PostCodeOfARecord, NeedsARecord) {
    dic.SetSortType(9);
    EXPECT_EQ(PstAdrGetZip(nullptr), 1);
    EXPECT_EQ(CAddrDicPeek(dic).nSortType, 9);
}

TEST_F(PostCodeOfARecord, NeedsNoAlignment) {
    CRecord const record = CRecord::Of(MARUNOUCHI, "");
    CBlockBytes vByte(1, 0);
    vByte.insert(vByte.end(), record.All().begin(), record.All().end());
    EXPECT_EQ(PstAdrGetZip(&vByte[1]), 0);
    EXPECT_EQ(std::memcmp(&vByte[1 + CODE], "1000005", 7), 0);
}

// --- PstAdrGetLatestAdr --------------------------------------------------------------------------------------------

using LatestOfARecord = AddressRecord;

CRecord Old(std::string const& strAddress, size_t nSize = OFFICE) {
    return CRecord(nSize).Text(ADDRESS, strAddress);
}

TEST_F(LatestOfARecord, IsTheAddressWithTheLatestNamesAndTheOldOnesCodes) {
    CRecord const record = Old("東京都千代田区旧町２丁目");
    ExpectLatest(record,
                 record.Text(ADDRESS, "東京都千代田区丸の内２丁目").Text(OLD_CODE, "10099").Text(CODE, "1000099"));
}

TEST_F(LatestOfARecord, OfACurrentAddressIsTheAddress) {
    CRecord const record = Old(MARUNOUCHI);
    ExpectLatest(record, record.Text(OLD_CODE, "100").Text(CODE, "1000005"));
}

TEST_F(LatestOfARecord, JoinsWhatItFoundWithoutAPrefecture) {
    CRecord const record = Old("港区芝９");
    ExpectLatest(record, record.Text(OLD_CODE, "105").Text(CODE, "1050014"));
    CRecord const old = Old("旧町９");
    ExpectLatest(old, old.Text(ADDRESS, "東京都千代田区丸の内９").Text(OLD_CODE, "10099").Text(CODE, "1000099"));
}

TEST_F(LatestOfARecord, WithoutATownDropsTheRest) {
    CRecord const record = Old("東京都千代田区無町９");
    ExpectLatest(record, record.Text(ADDRESS, "東京都千代田区").Text(OLD_CODE, "100").Text(CODE, "1000000"));
    CRecord const pref = Old("東京都無市");
    ExpectLatest(pref, pref.Text(ADDRESS, "東京都").Text(OLD_CODE, "").Text(CODE, ""));
}

TEST_F(LatestOfARecord, IsEmptyWithEmptyCodesWhenNothingIsRecognised) {
    for (char const* psz : {"", "無県無市", " 東京都"})
        ExpectLatest(Old(psz), Old(psz).Text(ADDRESS, "").Text(OLD_CODE, "").Text(CODE, ""));
}

TEST_F(LatestOfARecord, KeepsTheOldTownWhoseSuccessorIsMissing) {
    CTextWorld world;
    world.strArea[world.vInfo[world.nOldInfo].nCode + sizeof "1000099" + sizeof "10099" + 3] = '\x7F';
    Bind(world);
    CRecord const record = Old("東京都千代田区旧町２丁目");
    ExpectLatest(record, record.Text(OLD_CODE, "10099").Text(CODE, "1000099"));
}

TEST_F(LatestOfARecord, ChangesNothingButItsThreeTexts) {
    CRecord const record = Old(MARUNOUCHI, 400); // the fill byte is in all that follows a NUL
    ExpectLatest(record, record.Text(OLD_CODE, "100").Text(CODE, "1000005"));
    CRecord const office = Old(MARUNOUCHI, 400).Text(OFFICE, "a b, 株式会社");
    ExpectLatest(office, office.Text(OLD_CODE, "100").Text(CODE, "1000005"));
}

TEST_F(LatestOfARecord, LeavesTheSortTypeAlone) {
    dic.SetSortType(9);
    ExpectLatest(Old("").Sort(2), Old("").Sort(2).Text(ADDRESS, "").Text(OLD_CODE, "").Text(CODE, ""));
    EXPECT_EQ(CAddrDicPeek(dic).nSortType, 9);
}

TEST_F(LatestOfARecord, IsCutAfterSixtyBytesAlsoWithinACharacter) {
    std::string const strFront = "東京都千代田区丸の内"; // 30 bytes
    for (size_t nRest = 25; nRest <= ADDRESS_SIZE - 31; ++nRest) {
        std::string const strAddress = strFront + std::string(nRest, 'x');
        CRecord const record = Old(strAddress);
        ExpectLatest(record,
                     record.Text(ADDRESS, strAddress.substr(0, 60)).Text(OLD_CODE, "100").Text(CODE, "1000005"));
    }
    for (size_t nPad : {0u, 1u, 2u}) {
        std::string strAddress = strFront + std::string(nPad, 'x');
        for (int n = 0; n < 15; ++n) strAddress += "海";
        CRecord const record = Old(strAddress);
        ExpectLatest(record,
                     record.Text(ADDRESS, strAddress.substr(0, 60)).Text(OLD_CODE, "100").Text(CODE, "1000005"));
    }
}

TEST_F(LatestOfARecord, IsCutWhereverTheNamesReachSixtyBytes) {
    for (size_t nPref : {58u, 59u, 60u, 61u, 70u}) {
        CTestImage image;
        uint32_t const nCity =
            image.AddNode(LEVEL_CITY, image.AddNode(LEVEL_PREF, ADDR_NONE, std::string(nPref, 'p')), "ci");
        image.AddInfo(image.AddNode(LEVEL_TOWN, nCity, "to"), "1000005", "100");
        image.Complete();
        Bind(image);
        std::string const strAddress = std::string(nPref, 'p') + "citorest";
        ExpectLatest(
            Old(strAddress),
            Old(strAddress).Text(ADDRESS, strAddress.substr(0, 60)).Text(OLD_CODE, "100").Text(CODE, "1000005"));
    }
}

TEST_F(LatestOfARecord, EndsAnAddressWithoutANulAtTheEndOfItsField) {
    std::string strAddress = "東京都千代田区旧町";
    strAddress.resize(ADDRESS_SIZE, '9');
    CRecord const record = CRecord(OFFICE).Bytes(ADDRESS, strAddress); // the page ends with it
    std::string const strLatest = "東京都千代田区丸の内" + std::string(30, '9');
    ExpectLatest(record, record.Text(ADDRESS, strLatest).Text(OLD_CODE, "10099").Text(CODE, "1000099"));
}

TEST_F(LatestOfARecord, KeepsALongCodeInsideItsField) {
    CTextWorld world;
    world.vNode[world.nMarunouchi].nInfo = world.AddInfo(world.nMarunouchi, "1234567890abcdefghij", "0123456789");
    Bind(world);
    CRecord const record = Old(MARUNOUCHI);
    ExpectLatest(record, record.Text(OLD_CODE, "01234").Text(CODE, "1234567890abcd"));
}

TEST_F(LatestOfARecord, OfNothingSucceeds) {
    EXPECT_EQ(PstAdrGetLatestAdr(nullptr), 0);
}

// --- GetAdrFromAdd -------------------------------------------------------------------------------------------------

// The block put together from its drawing. An address is its texts in the order of the pool.
CBlockBytes Expected(std::vector<std::array<std::string, 7>> const& vAddress) {
    CBlockBytes vEntry, vPool;
    for (auto const& aText : vAddress) {
        size_t anOffset[7];
        for (size_t n = 0; n < 7; ++n) {
            anOffset[n] = vPool.size();
            PutText(vPool, aText[n]);
            vPool.push_back(0);
        }
        std::swap(anOffset[0], anOffset[1]); // the entry names the 7-digit code first
        for (size_t nOffset : anOffset) PutNumber(vEntry, nOffset, 4);
    }
    CBlockBytes vBlock;
    PutNumber(vBlock, vAddress.size(), 2);
    PutNumber(vBlock, 0, 2);
    PutNumber(vBlock, 12, 4);
    PutNumber(vBlock, 12 + 28 * vAddress.size(), 4);
    vBlock.insert(vBlock.end(), vEntry.begin(), vEntry.end());
    vBlock.insert(vBlock.end(), vPool.begin(), vPool.end());
    return vBlock;
}

class BlockOfAPart : public AddressRecord {
  protected:
    static CBlockBytes Ask(char const* pszText) {
        HGLOBAL h = nullptr;
        EXPECT_EQ(GetAdrFromAdd(pszText, &h), 0) << pszText;
        return Take(h);
    }
};

TEST_F(BlockOfAPart, OfOneAddressIsTheseBytes) {
    CTestImage image;
    uint32_t const nCity = image.AddNode(LEVEL_CITY, image.AddNode(LEVEL_PREF, ADDR_NONE, "P"), "CC");
    image.AddInfo(image.AddNode(LEVEL_TOWN, nCity, "T"), "1234567", "123");
    image.Complete();
    Bind(image);
    EXPECT_THAT(Ask("PCCTx"),
                testing::ElementsAre(1, 0, 0, 0, 12, 0, 0, 0, 40, 0, 0, 0,             // header
                                     4, 0, 0, 0, 0, 0, 0, 0, 12, 0, 0, 0, 14, 0, 0, 0, // code, old, P, CC
                                     17, 0, 0, 0, 19, 0, 0, 0, 21, 0, 0, 0,            // T, x, office
                                     '1', '2', '3', 0, '1', '2', '3', '4', '5', '6', '7', 0, 'P', 0, 'C', 'C', 0, 'T',
                                     0, 'x', 0, 0));
}

TEST_F(BlockOfAPart, HasTheOldCodeWhereThatOfAPostCodeHasAnEmptyText) {
    EXPECT_EQ(Ask("広島"), Expected({{"726", "7260003", "広島県", "府中市", "元町", "", ""}}));
    HGLOBAL h = nullptr;
    ASSERT_EQ(GetAdrFromZip("7260003", &h), 0);
    EXPECT_EQ(Take(h), Expected({{"", "7260003", "広島県", "府中市", "元町", "", ""}})) << "otherwise the same block";
}

TEST_F(BlockOfAPart, HoldsAllAddressesInOrderOfDiscoveryWithTheRestOfTheText) {
    EXPECT_EQ(Ask("東京都港区芝９丁目"), Expected({{"105", "1050014", "東京都", "港区", "芝", "９丁目", ""},
                                                   {"105", "1050015", "東京都", "港区", "芝", "１丁目", ""},
                                                   {"105", "1058444", "東京都", "港区", "芝", "１丁目", "港商会"},
                                                   {"105", "1050016", "東京都", "港区", "芝", "１丁目", "港商会"}}));
}

TEST_F(BlockOfAPart, IsNotSortedWhateverTheSortType) {
    CBlockBytes const vBlock = Ask("");
    dic.SetSortType(9);
    EXPECT_EQ(Ask(""), vBlock);
    EXPECT_EQ(vBlock[0], 12 + 11);
}

TEST_F(BlockOfAPart, HasEmptyTextsWhereTheAddressHasNoCodes) {
    CTextWorld world;
    world.vNode[world.nShiba].nInfo = ADDR_NONE;
    world.vNode[world.nShiba].nChildCount = 0;
    Bind(world);
    EXPECT_EQ(Ask("東京都港区芝"), Expected({{"", "", "東京都", "港区", "芝", "", ""}}));
}

TEST_F(BlockOfAPart, CountsItsAddressesInSixteenBits) {
    CTestImage image;
    constexpr uint32_t COUNT = 65536 + 2;
    image.AddNode(LEVEL_PREF, ADDR_NONE, "P");
    uint32_t const nText = image.AddText("1", "");
    for (uint32_t n = 0; n < COUNT; ++n) {
        image.vNode.push_back({LEVEL_CITY, {}, nText, n, 0, 0, ADDR_NONE});
        image.AddInfoAt(n + 1, nText);
    }
    image.Complete();
    Bind(image);
    CBlockBytes const vBlock = Ask("P");
    ASSERT_EQ(vBlock.size(), 12 + COUNT * (28 + 7 + 3u)) << "three texts of one byte, four empty ones";
    uint32_t nPool;
    std::memcpy(&nPool, &vBlock[8], sizeof nPool);
    EXPECT_EQ((nPool - 12) / 28, COUNT);
    EXPECT_EQ(vBlock[0] + 256 * vBlock[1], 2);
}

TEST_F(BlockOfAPart, IsMovableZeroFilledAndOfExactSize) {
    CSystemWatch watch;
    CBlockBytes const vBlock = Ask("東京都府中市");
    auto const vCall = watch.Calls("GlobalAlloc");
    ASSERT_EQ(vCall.size(), 1u);
    EXPECT_EQ(vCall[0].nNumber, 66);
    EXPECT_EQ(vCall[0].nSize, 12u + 28 + (3 + 7 + 9 + 9 + 9 + 0 + 0) + 7);
    EXPECT_EQ(vBlock.size(), vCall[0].nSize);
}

TEST_F(BlockOfAPart, IsNotMadeForATextThatFitsNothing) {
    CSystemWatch watch;
    for (char const* psz : {"無県", "丸の内", "府中市宮西町", "\xFF", static_cast<char const*>(nullptr)}) {
        HGLOBAL h = Untouched();
        EXPECT_EQ(GetAdrFromAdd(psz, &h), 1) << (psz != nullptr ? psz : "(null)");
        EXPECT_EQ(h, Untouched());
    }
    EXPECT_THAT(watch.Names(), IsEmpty());
}

TEST_F(BlockOfAPart, IsNotMadeWithoutAPlaceForItsHandle) {
    EXPECT_EQ(GetAdrFromAdd("東京都", nullptr), 1);
    EXPECT_EQ(GetAdrFromAdd(nullptr, nullptr), 1);
}

TEST_F(BlockOfAPart, ThatCannotBeAllocatedOrLockedIsRefused) {
    HGLOBAL h = Untouched();
    {
        CSystemWatch watch;
        watch.Fail("GlobalAlloc");
        EXPECT_EQ(GetAdrFromAdd("東京都", &h), 1);
        EXPECT_EQ(h, nullptr);
    }
    {
        CSystemWatch watch;
        watch.Fail("GlobalLock");
        EXPECT_EQ(GetAdrFromAdd("東京都", &h), 1);
    }
    CBlockBytes const vBlock = Take(h);
    EXPECT_EQ(vBlock, CBlockBytes(vBlock.size(), 0)) << "the handle is the caller's to free";
}

TEST_F(BlockOfAPart, ReadsItsTextUpToItsNulOnly) {
    CGuardedBytes const text(std::string("東京都港区芝"), CGuardedBytes::ReadOnly);
    EXPECT_EQ(Ask(text.Text())[0], 4);
}

} // namespace
