// The header for C++ hosts: files, answers of the class, answer blocks, and the API, all by qeadrs.hpp.
#include "api/qeadrs.hpp"

#include "tests/library/AddrTextWorld.h"
#include "tests/library/BrowseBlockWorld.h"
#include "tests/support/ProcessState.h"
#include "tests/support/TestProfile.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <type_traits>

namespace {

using qeadrs::EError;
using testing::HasSubstr;

using CTexts = std::vector<std::string_view>;

// --- worlds --------------------------------------------------------------------------------------------------------

void SetWord(std::vector<unsigned char>& vByte, size_t nOffset, uint32_t nWord) {
    std::memcpy(&vByte[nOffset], &nWord, sizeof nWord);
}

uint32_t GetWord(std::vector<unsigned char> const& vByte, size_t nOffset) {
    uint32_t nWord = 0;
    std::memcpy(&nWord, &vByte[nOffset], sizeof nWord);
    return nWord;
}

// An image with the words that the library does not read and that the header for hosts looks at.
std::vector<unsigned char> AsFile(CTestImage const& image) {
    std::vector<unsigned char> vByte = image.Bytes();
    std::memcpy(vByte.data(), IMAGE_MAGIC, sizeof IMAGE_MAGIC);
    SetWord(vByte, 8, 1);
    SetWord(vByte, 12, 20260500);
    SetWord(vByte, 20, static_cast<uint32_t>(vByte.size()));
    return vByte;
}

// A folder with a dictionary that both the profile and a path lead to.
class HostHeader : public testing::Test {
  protected:
    HostHeader() { m_profile.SetDicDir(m_profile.Folder()); }
    void TearDown() override {
        dic.SetDictionary(nullptr);
        hDicFile = 0;
        nDicSize = 0;
    }

    std::string const& Write(std::vector<unsigned char> const& vByte) {
        m_profile.WriteDictionary(vByte);
        return m_strFile;
    }
    std::string const& Write(CTestImage const& image) { return Write(AsFile(image)); }

    qeadrs::CDictionary Dictionary(CTestImage const& image) { return *qeadrs::CDictionary::Open(Write(image)); }
    qeadrs::CApi Api(CTestImage const& image) {
        Write(image);
        return *qeadrs::CApi::Open();
    }

    // Why the file is refused; Count when it is not.
    static EError WhyRefused(std::string const& strFile) {
        qeadrs::CResult<qeadrs::CDictionaryFile> const file = qeadrs::CDictionaryFile::Open(strFile);
        return file ? EError::Count : file.Error().nKind;
    }

    CTestProfile m_profile;
    std::string m_strFile = m_profile.DictionaryPath();
};

// --- errors --------------------------------------------------------------------------------------------------------

TEST(HostErrors, HaveATextEach) {
    std::set<std::string> setText;
    for (unsigned n = 0; n < static_cast<unsigned>(EError::Count); ++n)
        setText.insert(qeadrs::CError{static_cast<EError>(n)}.Text());
    EXPECT_EQ(setText.size(), static_cast<size_t>(EError::Count));
    EXPECT_EQ(setText.count(""), 0u);
    EXPECT_FALSE(qeadrs::CError{EError::Count}.Text().empty());
}

TEST(HostErrors, SayWhatTheSystemSays) {
    EXPECT_EQ((qeadrs::CError{EError::NoFile, ENOENT}.Text()), "cannot be opened: No such file or directory");
}

TEST(HostErrors, EndTheProcessOfWhoTakesThemForAnAnswer) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    qeadrs::CResult<std::string> const none(EError::NotFound);
    qeadrs::CResult<std::string> const some(std::string("text"));
    EXPECT_EXIT(none->size(), testing::KilledBySignal(SIGABRT), "");
    EXPECT_EXIT(some.Error().Text(), testing::KilledBySignal(SIGABRT), "");
}

// --- files ---------------------------------------------------------------------------------------------------------

TEST_F(HostHeader, RefusesAFileThatIsCutAtAnyByte) {
    size_t n = AsFile(CTinyWorld()).size();
    EXPECT_EQ(WhyRefused(Write(CTinyWorld())), EError::Count);
    while (n-- > 0) {
        std::filesystem::resize_file(m_strFile, n);
        EXPECT_EQ(WhyRefused(m_strFile), n < 8 ? EError::NotOurs : EError::DamagedFile) << n;
    }
}

// The tables that the library reads: by words of the header, and bytes of a record.
struct CTableWords {
    size_t nOffset, nCount, nRecord;
};
constexpr CTableWords TABLE_WORDS[] = {{11, 8, 24}, {12, 9, 8}, {13, 10, 1}, {14, 20, 4}, {17, 26, 4}};

TEST_F(HostHeader, RefusesAFileWhoseTablesDoNotLieInIt) {
    std::vector<unsigned char> const vByte = AsFile(CTextWorld());
    auto const nSize = static_cast<uint32_t>(vByte.size());
    auto const WhyWith = [&](size_t nWord, size_t nValue) {
        std::vector<unsigned char> vDamaged = vByte;
        SetWord(vDamaged, 4 * nWord, static_cast<uint32_t>(nValue));
        return WhyRefused(Write(vDamaged));
    };
    for (CTableWords const& words : TABLE_WORDS) {
        SCOPED_TRACE(words.nOffset);
        size_t const nRoom = (nSize - GetWord(vByte, 4 * words.nOffset)) / words.nRecord;
        EXPECT_EQ(WhyWith(words.nCount, nRoom), EError::Count) << "as many as there is room for";
        EXPECT_EQ(WhyWith(words.nCount, nRoom + 1), EError::DamagedFile);
        EXPECT_EQ(WhyWith(words.nCount, 0xFFFFFFFF), EError::DamagedFile);
        EXPECT_EQ(WhyWith(words.nOffset, nSize), EError::DamagedFile);
        EXPECT_EQ(WhyWith(words.nOffset, 0xFFFFFFFC), EError::DamagedFile);
        EXPECT_EQ(WhyWith(words.nOffset, GetWord(vByte, 4 * words.nOffset) - 2), EError::DamagedFile)
            << "not aligned, or the last text without an end";
    }
}

TEST_F(HostHeader, RefusesAFileWhoseLastTextHasNoEnd) {
    std::vector<unsigned char> vByte = AsFile(CTinyWorld());
    vByte.back() = 'x';
    EXPECT_EQ(WhyRefused(Write(vByte)), EError::DamagedFile);
}

TEST_F(HostHeader, TellsWhyAFileIsNone) {
    EXPECT_EQ(qeadrs::CDictionary::Open(m_strFile).Error().nSystem, ENOENT);
    EXPECT_EQ(WhyRefused(m_strFile), EError::NoFile);
    EXPECT_EQ(WhyRefused(m_profile.Folder()), EError::NotAFile);
    EXPECT_EQ(WhyRefused(std::string("a\0b", 3)), EError::NoText);
    std::string const strPipe = m_profile.Folder() + "/pipe";
    ASSERT_EQ(mkfifo(strPipe.c_str(), 0600), 0);
    EXPECT_EQ(WhyRefused(strPipe), EError::NotAFile);
    std::vector<unsigned char> vByte = AsFile(CTinyWorld());
    SetWord(vByte, 8, 2);
    EXPECT_EQ(WhyRefused(Write(vByte)), EError::NewerFormat);
    vByte[0] = 'q';
    EXPECT_EQ(WhyRefused(Write(vByte)), EError::NotOurs);
}

TEST_F(HostHeader, LeavesNothingOpenWhereTheSystemRefusesAMapping) {
    Write(CTinyWorld());
    CSystemWatch watch;
    watch.Fail("mmap");
    EXPECT_THAT(qeadrs::CDictionaryFile::Open(m_strFile).Error().Text(), HasSubstr("cannot be mapped: "));
    EXPECT_EQ(watch.Names().back(), "close");
    EXPECT_FALSE(IsOpen(watch.Calls("open")[0].hFile));
}

TEST_F(HostHeader, MapsAFileAsLongAsSomebodyHoldsIt) {
    Write(CTinyWorld());
    {
        qeadrs::CDictionaryFile file = *qeadrs::CDictionaryFile::Open(m_strFile);
        qeadrs::CDictionaryFile moved = std::move(file);
        EXPECT_EQ(moved.Edition(), 20260500u);
        EXPECT_EQ(moved.Size(), AsFile(CTinyWorld()).size());
        EXPECT_TRUE(IsFileMapped(m_strFile));
        qeadrs::CDictionary owner(std::move(moved));
        qeadrs::CDictionary const other = std::move(owner);
        EXPECT_TRUE(IsFileMapped(m_strFile));
        EXPECT_EQ(other.File().Edition(), 20260500u);
    }
    EXPECT_FALSE(IsFileMapped(m_strFile));
}

TEST_F(HostHeader, UnmapsTheFileThatAnotherOneIsMovedOver) {
    std::string const strOther = m_profile.Folder() + "/other.dic";
    std::filesystem::copy_file(Write(CTinyWorld()), strOther);
    qeadrs::CDictionaryFile file = *qeadrs::CDictionaryFile::Open(m_strFile);
    qeadrs::CDictionaryFile other = *qeadrs::CDictionaryFile::Open(strOther);
    file = std::move(other);
    EXPECT_FALSE(IsFileMapped(m_strFile));
    EXPECT_EQ(other.Bytes(), nullptr); // NOLINT: what is left of it is told
    EXPECT_EQ(other.Size(), 0u);
    EXPECT_EQ(other.Edition(), 0u);
    EXPECT_FALSE(other.Is(strOther));
    qeadrs::CDictionaryFile& same = file;
    file = std::move(same);
    EXPECT_TRUE(file.Is(strOther));
    EXPECT_TRUE(IsFileMapped(strOther));
}

TEST_F(HostHeader, SeesThatAFileHasBeenReplaced) {
    qeadrs::CDictionary dictionary = Dictionary(CTinyWorld());
    EXPECT_TRUE(dictionary.File().Is(m_strFile));
    std::filesystem::rename(m_strFile, m_strFile + ".old");
    EXPECT_FALSE(dictionary.File().Is(m_strFile));
    Write(CTextWorld());
    EXPECT_FALSE(dictionary.File().Is(m_strFile));
    EXPECT_EQ(dictionary.FromCode("1000001")[0].strTown, "千代田");
}

TEST_F(HostHeader, ReadsTextsOfTheFileWithinTheFileOnly) {
    qeadrs::CDictionaryFile const file = *qeadrs::CDictionaryFile::Open(Write(CTinyWorld()));
    auto const* const pStart = reinterpret_cast<char const*>(file.Bytes());
    EXPECT_EQ(file.Text(pStart), "QEADRS\x1A");
    EXPECT_EQ(file.Text(pStart + file.Size() - 1), "");
    EXPECT_TRUE(file.Holds(pStart + file.Size() - 1));
    EXPECT_FALSE(file.Holds(pStart + file.Size()));
    EXPECT_EQ(file.Text(nullptr), "");
    // Behind the string area, the last thing in that file, another one's page goes on to its very end.
    std::vector<unsigned char> vByte = AsFile(CTinyWorld());
    vByte.resize(static_cast<size_t>(sysconf(_SC_PAGESIZE)), 'x');
    SetWord(vByte, 20, static_cast<uint32_t>(vByte.size()));
    std::filesystem::remove(m_strFile); // what is mapped stays
    qeadrs::CDictionaryFile const full = *qeadrs::CDictionaryFile::Open(Write(vByte));
    EXPECT_EQ(full.Text(reinterpret_cast<char const*>(full.Bytes()) + full.Size() - 3), "xxx");
    EXPECT_EQ(file.Text("elsewhere"), "");
}

// --- answers of the class ------------------------------------------------------------------------------------------

TEST_F(HostHeader, GivesEveryTextOfAnAddress) {
    qeadrs::CDictionary dictionary = Dictionary(CBrowseWorld());
    qeadrs::CRecords const records = dictionary.FromCode("105-0017");
    ASSERT_EQ(records.size(), 1u);
    qeadrs::CRecord const record = *records.begin();
    EXPECT_THAT(
        (CTexts{record.strCode, record.strOldCode, record.strPref, record.strPrefKana, record.strCity,
                record.strCityKana, record.strTown, record.strTownKana, record.strBlock, record.strNote}),
        ElementsAre("1050017", "105", "東京都", "トウキョウト", "港区", "ミナトク", "芝", "シバ", "海ビル", "２階"));
    EXPECT_EQ(record.strOffice.data(), nullptr) << "absent, and not a name of nothing";
    EXPECT_EQ(dictionary.FromCode("1058444")[0].strOffice, "港商会");
    EXPECT_EQ(dictionary.FromCode("1050015")[0].strArea, "１丁目");
    EXPECT_NE(dictionary.FromCode("1000000")[0].strTown.data(), nullptr) << "a town without a name";
}

TEST_F(HostHeader, GivesTheOldCodeWhicheverWayAnAddressIsFound) {
    qeadrs::CDictionary dictionary = Dictionary(CTextWorld());
    EXPECT_EQ(dictionary.FromCode("1000005")[0].strOldCode, "100");
    EXPECT_EQ(dictionary.FromOldCode("105")[0].strOldCode, "105");
    EXPECT_EQ(dictionary.FromPart("東京都千代田区丸の内")[0].strOldCode, "100");
    EXPECT_EQ(dictionary.CodeOf("東京都千代田区丸の内")[0].strOldCode, "100");
}

TEST_F(HostHeader, AnswersLikeTheClass) {
    qeadrs::CDictionary dictionary = Dictionary(CTextWorld());
    CGuardedDic plain{CTextWorld()};
    for (char const* pszCode : {"1", "100", "1000005", "105-0014", "9", ""}) {
        std::vector<tagADDR> vAddr;
        plain.GetAddrFromPostCode7(pszCode, vAddr);
        qeadrs::CRecords const records = dictionary.FromCode(pszCode);
        ASSERT_EQ(records.size(), vAddr.size()) << pszCode;
        EXPECT_EQ(records.empty(), vAddr.empty());
        for (size_t i = 0; i < vAddr.size(); ++i) EXPECT_EQ(records[i].strCode, vAddr[i].pszPostCode);
    }
    for (char const* pszText : {"", "東京都", "府中市", "東京都千代田区丸の内２丁目", "無い"}) {
        std::vector<tagADDR> vAddr;
        plain.GetAddrFromAddrPart(pszText, vAddr);
        EXPECT_EQ(dictionary.FromPart(pszText).size(), vAddr.size()) << pszText;
    }
}

TEST_F(HostHeader, KeepsTheUnreadRestOfATextWithItsAnswer) {
    qeadrs::CDictionary dictionary = Dictionary(CTextWorld());
    std::string strText = "東京都千代田区丸の内２";
    qeadrs::CRecords records = dictionary.Separate(strText);
    strText.assign(strText.size(), 'x');
    qeadrs::CRecords const moved = std::move(records);
    EXPECT_TRUE(records.empty()); // NOLINT: what is left of it is told
    EXPECT_EQ(moved[0].strTown, "丸の内");
    EXPECT_EQ(moved[0].strArea, "２");
    EXPECT_EQ(dictionary.FromPart("東京都千代田区丸の内3-1")[0].strArea, "3-1") << "also in the shortest texts";
    EXPECT_NE(moved.Class()[0].pTownNode, nullptr);
}

TEST_F(HostHeader, FindsNothingForATextWithANul) {
    qeadrs::CDictionary dictionary = Dictionary(CTextWorld());
    std::string_view const strCode("1000005\0", 8);
    std::string_view const strText("東京都千代田区丸の内\0", sizeof "東京都千代田区丸の内");
    EXPECT_TRUE(dictionary.FromCode(strCode).empty());
    EXPECT_TRUE(dictionary.FromPart(strText).empty());
    EXPECT_TRUE(dictionary.Separate(strText).empty());
    EXPECT_TRUE(dictionary.CodeOf(strText).empty());
    EXPECT_TRUE(dictionary.CodeOf("東京都千代田区丸の内", std::string_view("\0x", 2)).empty());
    EXPECT_EQ(dictionary.CodeOf("東京都千代田区丸の内").size(), 1u);
}

TEST_F(HostHeader, GivesLatestAddressesAndCodesOfOrganisations) {
    qeadrs::CDictionary dictionary = Dictionary(CTextWorld());
    EXPECT_EQ(dictionary.Latest("東京都千代田区旧町")[0].strTown, "丸の内");
    EXPECT_EQ(dictionary.Latest("東京都千代田区旧町")[0].strCode, "1000099") << "of the address as it was";
    EXPECT_TRUE(dictionary.Latest("無い町").empty());
    EXPECT_EQ(dictionary.CodeOf("東京都千代田区丸の内", "株式会社テスト")[0].strCode, "1008111");
    EXPECT_TRUE(dictionary.CodeOf("無い町").empty());
    EXPECT_EQ(dictionary.CodeOf("東京都千代田区丸の内", std::string(200000, 'x'))[0].strCode, "1000005");
    EXPECT_EQ(dictionary.CodeOf("東京都千代田区丸の内", std::string(200000, ' '))[0].strCode, "1008111")
        << "a name of which nothing remains begins every name";
}

TEST_F(HostHeader, FindsTheCodeOfAnAddressAlsoWhenTheOrganisationHasNoEntry) {
    for (uint32_t nInfo : {ADDR_NONE, 10000u}) {
        CTextWorld world;
        world.vNode[world.nTest].nInfo = nInfo;
        qeadrs::CDictionary dictionary = Dictionary(world);
        qeadrs::CRecords const records = dictionary.CodeOf("東京都千代田区丸の内", "テスト");
        ASSERT_EQ(records.size(), 1u);
        EXPECT_EQ(records[0].strCode, "1000005");
        EXPECT_EQ(qeadrs::CApi::Open()->CodeOf("東京都千代田区丸の内", "テスト")->strCode, "1000005")
            << "like the API";
    }
}

TEST_F(HostHeader, WalksDownThePlaces) {
    qeadrs::CDictionary dictionary = Dictionary(CBrowseWorld());
    EXPECT_EQ(dictionary.Prefectures()[TOKYO].strPref, "東京都");
    EXPECT_EQ(dictionary.Cities(TOKYO)[1].strCity, "港区");
    qeadrs::CRecords const towns = dictionary.Towns(1);
    ASSERT_EQ(towns.size(), 2u);
    EXPECT_EQ(towns[1].strTownKana, "カイガン");
    EXPECT_EQ(towns[1].strCode, "");
    EXPECT_EQ(towns[2].strTown, "") << "beyond the last";
    EXPECT_EQ(dictionary.PrefecturesOf("府中市")[0].strPref, "広島県");
    EXPECT_EQ(dictionary.PrefecturesOf("港区")[0].strPref, "東京都");
    dictionary.Prefectures();
    dictionary.Cities(TOKYO);
    EXPECT_EQ(dictionary.AddressesOf(1).size(), MINATO_LINES.size());
    EXPECT_TRUE(dictionary.Cities(99).empty());
}

TEST_F(HostHeader, SortsWhenItIsToldTo) {
    qeadrs::CDictionary dictionary = Dictionary(CTextWorld());
    qeadrs::CDictionary sorted = Dictionary(CTextWorld());
    sorted.SetSortType(SORT_ADDR);
    CGuardedDic plain{CTextWorld()};
    plain.SetSortType(SORT_ADDR);
    std::vector<tagADDR> vAddr;
    plain.GetAddrFromPostCode7("1", vAddr);
    qeadrs::CRecords const records = sorted.FromCode("1");
    auto const IsSame = [](qeadrs::CRecord const& a, qeadrs::CRecord const& b) { return a.strCode == b.strCode; };
    ASSERT_EQ(records.size(), vAddr.size());
    for (size_t i = 0; i < vAddr.size(); ++i) EXPECT_EQ(records[i].strCode, vAddr[i].pszPostCode);
    qeadrs::CRecords const unsorted = dictionary.FromCode("1");
    EXPECT_FALSE(std::equal(records.begin(), records.end(), unsorted.begin(), unsorted.end(), IsSame));
}

TEST_F(HostHeader, RefinesDownToATown) {
    qeadrs::CDictionary dictionary = Dictionary(CBrowseWorld());
    dictionary.Refine("105");
    auto const counts = dictionary.Select(0);
    ASSERT_TRUE(counts);
    EXPECT_EQ(counts->nPrefs, 1u);
    EXPECT_EQ(counts->nCities, 1u);
    EXPECT_EQ(counts->nTowns, 5u);
    EXPECT_EQ(dictionary.RefinedPref(0), "東京都");
    EXPECT_EQ(dictionary.RefinedPref(1), std::nullopt);
    EXPECT_EQ(dictionary.RefinedCity(0), "港区");
    EXPECT_EQ(dictionary.RefinedCity(1), std::nullopt);
    std::set<std::string> setCode;
    for (int n = 0; auto town = dictionary.RefinedTown(n); ++n) setCode.insert(town->strCode + ' ' + town->strDetail);
    EXPECT_EQ(setCode, (std::set<std::string>{"1050014 ", "1050015 １丁目", "1050016 海ビル", "1050017 海ビル２階",
                                              "1058444 港商会"}));
    EXPECT_EQ(dictionary.Select(-1).has_value(), false);
    EXPECT_EQ(dictionary.RefinedTown(-1).has_value(), false);
    EXPECT_EQ(dictionary.RefinedTown(99).has_value(), false);
}

TEST_F(HostHeader, RefinesNothingByATextWithANul) {
    using namespace std::string_view_literals;
    qeadrs::CDictionary dictionary = Dictionary(CBrowseWorld());
    unsigned const nPrefs = dictionary.Select(0)->nPrefs; // those of the whole dictionary
    ASSERT_GT(nPrefs, 1u);
    for (auto const& [strCode, strAddress] :
         {std::pair{"105\0junk"sv, ""sv}, std::pair{"\0junk"sv, "東京都港区"sv},
          std::pair{""sv, "東京都港区\0junk"sv}, std::pair{"105"sv, "\0junk"sv}}) {
        dictionary.Refine("105"); // what was there before does not stay
        EXPECT_EQ(dictionary.Select(0)->nPrefs, 1u);
        dictionary.Refine(strCode, strAddress);
        EXPECT_EQ(dictionary.Select(0)->nPrefs, nPrefs);
    }
}

TEST_F(HostHeader, LetsSeveralObjectsReadOneFile) {
    qeadrs::CDictionaryFile const file = *qeadrs::CDictionaryFile::Open(Write(CTextWorld()));
    qeadrs::CDictionary first(file), second(file);
    qeadrs::CRecords const ofFirst = first.FromCode("1000005");
    EXPECT_EQ(second.FromCode("1000005")[0].strTown.data(), ofFirst[0].strTown.data()) << "nothing is copied";
    EXPECT_EQ(first.Class().GetDicPointer(), file.Bytes());
}

TEST_F(HostHeader, HasRangesForAlgorithms) {
    qeadrs::CDictionary dictionary = Dictionary(CBrowseWorld());
    qeadrs::CRecords const records = dictionary.FromCode("1");
    auto const InMinato = [](qeadrs::CRecord const& record) { return record.strCity == "港区"; };
    EXPECT_EQ(std::count_if(records.begin(), records.end(), InMinato), 5);
    EXPECT_EQ(std::find_if(records.begin(), records.end(), InMinato)->strTown, "芝");
    EXPECT_EQ(std::next(records.begin(), 2)->strCode, records[2].strCode);
    EXPECT_EQ((*records.begin()++).strCode, records[0].strCode);
    auto const pMost = std::max_element(records.begin(), records.end(),
                                        [](auto const& a, auto const& b) { return a.strCode < b.strCode; });
    EXPECT_EQ(pMost->strCode, "1058444");
    EXPECT_EQ(qeadrs::CRecords::iterator(), qeadrs::CRecords::iterator());
    size_t nRecords = 0;
    for (qeadrs::CRecord const record : dictionary.FromCode("1")) nRecords += !record.strCode.empty();
    EXPECT_EQ(nRecords, records.size());
}

// --- blocks --------------------------------------------------------------------------------------------------------

qeadrs::CBytes BytesOf(unsigned char const* p, size_t nSize) {
    return qeadrs::CBytes({reinterpret_cast<char const*>(p), nSize});
}
qeadrs::CBytes BytesOf(CBlockBytes const& vByte) {
    return BytesOf(vByte.data(), vByte.size());
}

using CLineTable = qeadrs::CTable<qeadrs::CLine>;
using CAddressTable = qeadrs::CTable<qeadrs::CAddress>;
using CNameList = qeadrs::CPacked<qeadrs::CNameEntry>;
using CTownList = qeadrs::CPacked<qeadrs::CTownEntry>;

CTexts TextsOf(std::string_view str) {
    return {str};
}
CTexts TextsOf(qeadrs::CTown const& town) {
    return {town.strName, town.strCode, town.strOldCode};
}
CTexts TextsOf(qeadrs::CLine const& line) {
    return {line.strCode, line.strOldCode, line.strLine, line.strOffice};
}
CTexts TextsOf(qeadrs::CAddress const& address) {
    return {address.strCode, address.strOldCode, address.strPref,  address.strCity,
            address.strTown, address.strArea,    address.strOffice};
}

// Reads all that can be read of a block, behind which memory ends; every text has to lie in it. Returns whether the
// block is taken for a whole one.
template <typename TRange>
bool ReadAll(CBlockBytes const& vByte) {
    CGuardedBytes const guarded(vByte);
    auto const range = TRange::Over(BytesOf(guarded.Data(), vByte.size()));
    if (!range) return false;
    auto const nStart = reinterpret_cast<uintptr_t>(guarded.Data());
    size_t nEntries = 0;
    for (auto const entry : *range) {
        ++nEntries;
        for (std::string_view const str : TextsOf(entry)) {
            if (str.empty()) continue;
            auto const n = reinterpret_cast<uintptr_t>(str.data());
            EXPECT_TRUE(n >= nStart && n - nStart + str.size() <= vByte.size());
        }
    }
    EXPECT_EQ(nEntries, range->size());
    return true;
}

// The block cut at every byte, refused when fewer than nLeast bytes are left, and with every byte changed in every bit,
// and to the most and the least it can be.
template <typename TRange>
void ReadDamaged(CBlockBytes const& vBlock, size_t nLeast) {
    ASSERT_TRUE(ReadAll<TRange>(vBlock));
    for (size_t n = 0; n < vBlock.size(); ++n) {
        bool const bWhole = ReadAll<TRange>(CBlockBytes(vBlock.data(), vBlock.data() + n));
        EXPECT_EQ(bWhole, n >= nLeast) << "cut at " << n;
        for (unsigned nFlip : {0x01u, 0x02u, 0x04u, 0x08u, 0x10u, 0x20u, 0x40u, 0x80u, 0xFFu, vBlock[n] ^ 0xFFu,
                               unsigned{vBlock[n]}}) {
            CBlockBytes vDamaged = vBlock;
            vDamaged[n] = static_cast<unsigned char>(vBlock[n] ^ nFlip); // the last two give 0xFF and 0
            ReadAll<TRange>(vDamaged);
        }
    }
}

TEST(HostBlocks, AreNeverReadBeyondTheirEndWhateverIsInThem) {
    CBlockBytes const vNames = Names({"東京都", "", "広島県"}), vTowns = NewCodeFirst(CHIYODA_TOWNS);
    ReadDamaged<CNameList>(vNames, vNames.size());
    ReadDamaged<CTownList>(vTowns, vTowns.size());
    // The pool may end within a text: what is left of it is read.
    size_t const nPool = 12 + 28 * MINATO_LINES.size();
    ReadDamaged<CLineTable>(Lines(MINATO_LINES), nPool);
    ReadDamaged<CAddressTable>(Lines(MINATO_LINES), nPool);
}

TEST(HostBlocks, AreRefusedWhenTheyAreAtOddsWithTheirCount) {
    for (size_t nByte : {0u, 1u}) {
        CBlockBytes vNames = Names({"東京都", "広島県"}), vLines = Lines(MINATO_LINES);
        ++vNames[nByte];
        ++vLines[nByte];
        EXPECT_FALSE(CNameList::Over(BytesOf(vNames)));
        EXPECT_FALSE(CLineTable::Over(BytesOf(vLines)));
    }
    CBlockBytes vTowns = NewCodeFirst(CHIYODA_TOWNS);
    vTowns.back() = 1; // the zero behind the last town
    EXPECT_FALSE(CTownList::Over(BytesOf(vTowns)));
}

TEST(HostBlocks, GiveWhatIsInThem) {
    CBlockBytes const vNames = Names({"東京都", "", "広島県"}), vTowns = NewCodeFirst(CHIYODA_TOWNS);
    auto const names = *CNameList::Over(BytesOf(vNames));
    EXPECT_THAT(CTexts(names.begin(), names.end()), ElementsAre("東京都", "", "広島県"));
    auto const towns = *CTownList::Over(BytesOf(vTowns));
    ASSERT_EQ(towns.size(), CHIYODA_TOWNS.size());
    auto pTown = towns.begin();
    for (CTownText const& text : CHIYODA_TOWNS) {
        EXPECT_THAT(TextsOf(*pTown), ElementsAre(text.strTown, text.strCode, text.strOldCode));
        ++pTown;
    }
    EXPECT_EQ(pTown, towns.end());
    CBlockBytes const vLines = Lines(MINATO_LINES);
    auto const lines = *CLineTable::Over(BytesOf(vLines));
    ASSERT_EQ(lines.size(), MINATO_LINES.size());
    for (size_t i = 0; i < lines.size(); ++i)
        EXPECT_THAT(TextsOf(lines[i]), ElementsAre(MINATO_LINES[i].pszCode, MINATO_LINES[i].pszOldCode,
                                                   Line(MINATO_LINES[i]), OrEmpty(MINATO_LINES[i].pszOffice)));
    EXPECT_THAT(TextsOf(lines[lines.size()]), ElementsAre("", "", "", "")) << "beyond the last";
    EXPECT_TRUE(CNameList::Over(BytesOf(NO_ENTRIES))->empty());
    EXPECT_TRUE(CLineTable::Over(BytesOf(NO_LINES))->empty());
    EXPECT_EQ(CNameList().begin(), CNameList().end());
    EXPECT_EQ(CLineTable().begin(), CLineTable().end());
}

TEST(HostBlocks, HaveMoreEntriesThanTheirCountCanTell) {
    constexpr size_t MANY = 0x10001;
    CBlockBytes vNames(2 + MANY); // as many names of nothing
    vNames[0] = 1;
    EXPECT_EQ(CNameList::Over(BytesOf(vNames))->size(), MANY);
    CBlockBytes vTable;
    for (auto const& [n, nBytes] : {std::pair<size_t, int>{1, 4}, {12, 4}, {12 + 28 * MANY, 4}})
        PutNumber(vTable, n, nBytes);
    vTable.resize(12 + 28 * MANY + 1);
    EXPECT_EQ(CAddressTable::Over(BytesOf(vTable))->size(), MANY);
}

TEST(HostBlocks, AreReadWithKnownLengthsWhereTheirsAreModulo256) {
    std::string const strLong(300, 'x');
    CBlockBytes const vByte = Names({strLong, "b"});
    EXPECT_FALSE(CNameList::Over(BytesOf(vByte)));
    qeadrs::CPackedReader reader(BytesOf(vByte));
    EXPECT_EQ(reader.Take(300), strLong);
    EXPECT_EQ(reader.Take(), "b");
    EXPECT_TRUE(reader.IsGood());
    EXPECT_EQ(reader.Offset(), vByte.size());
    EXPECT_EQ(reader.Take(), "");
    EXPECT_FALSE(reader.IsGood());
    qeadrs::CPackedReader wrong(BytesOf(vByte));
    EXPECT_EQ(wrong.Take(299), "") << "another length than the byte says";
    EXPECT_EQ(wrong.Take(), "") << "no way back";
    EXPECT_FALSE(wrong.IsGood());
}

TEST(HostBlocks, AreBytesWithBounds) {
    qeadrs::CBytes const bytes(std::string_view("\x01\x02\x03\x84\x05", 5));
    EXPECT_EQ(bytes.Long(0), 0x84030201u);
    EXPECT_EQ(bytes.Short(3), 0x0584u);
    EXPECT_EQ(bytes.Byte(4), 5u);
    for (size_t n : {size_t{2}, size_t{5}, SIZE_MAX}) EXPECT_EQ(bytes.Long(n), 0u);
    EXPECT_EQ(bytes.Part(4, 1), "\x05");
    EXPECT_EQ(bytes.Part(4, 2), "");
    EXPECT_EQ(bytes.Part(5, SIZE_MAX), "");
    EXPECT_EQ(bytes.Text(4), "\x05") << "the end of the bytes ends a text";
    EXPECT_EQ(bytes.Text(UINT64_MAX), "");
}

TEST(HostBlocks, AreFreedWithTheirObjectAndMoveWithIt) {
    HGLOBAL const hMem = GlobalAlloc(GHND, 2);
    {
        qeadrs::CBlock block = *qeadrs::CBlock::Take(hMem);
        qeadrs::CBlock moved = std::move(block);
        EXPECT_EQ(moved.Bytes().Size(), 2u);
        EXPECT_EQ(block.Bytes().Size(), 0u); // NOLINT: what is left of it is told
        block = std::move(moved);
        auto names = qeadrs::CNames::Of(std::move(block));
        ASSERT_TRUE(names);
        EXPECT_EQ(GlobalSize(hMem), 2u);
    }
    EXPECT_EQ(GlobalSize(hMem), 0u);
    EXPECT_EQ(qeadrs::CBlock::Take(hMem).Error().nKind, EError::NoMemory);
    HGLOBAL const hShort = GlobalAlloc(GHND, 1);
    EXPECT_EQ(qeadrs::CNames::Of(qeadrs::CBlock::Take(hShort)).Error().nKind, EError::DamagedBlock);
    EXPECT_EQ(GlobalSize(hShort), 0u);
}

HGLOBAL AsBlock(CBlockBytes const& vByte) {
    HGLOBAL const hMem = GlobalAlloc(GHND, vByte.size());
    std::memcpy(GlobalLock(hMem), vByte.data(), vByte.size());
    GlobalUnlock(hMem);
    return hMem;
}

template <typename TAnswer>
void MoveAbout(CBlockBytes const& vByte, CBlockBytes const& vOther) {
    HGLOBAL const hMem = AsBlock(vByte), hOther = AsBlock(vOther);
    {
        TAnswer answer = *TAnswer::Of(qeadrs::CBlock::Take(hMem));
        size_t const nSize = answer.size();
        ASSERT_GT(nSize, 0u);
        auto const pFirst = answer.begin();
        CTexts const vFirst = TextsOf(*pFirst);
        auto const ExpectEmpty = [](TAnswer const& from) {
            EXPECT_EQ(from.size(), 0u);
            EXPECT_TRUE(from.begin() == from.end());
            EXPECT_EQ(from.Bytes().Size(), 0u);
        };
        TAnswer moved = std::move(answer);
        ExpectEmpty(answer); // NOLINT: what is left of it is told
        TAnswer target = *TAnswer::Of(qeadrs::CBlock::Take(hOther));
        target = std::move(moved);
        ExpectEmpty(moved); // NOLINT
        EXPECT_EQ(GlobalSize(hOther), 0u) << "freed as soon as nobody has it";
        TAnswer& same = target;
        target = std::move(same);
        EXPECT_EQ(target.size(), nSize);
        EXPECT_EQ(TextsOf(*target.begin()), vFirst);
        EXPECT_EQ(TextsOf(*pFirst), vFirst) << "iterators stay good";
    }
    EXPECT_EQ(GlobalSize(hMem), 0u);
}

TEST(HostBlocks, TakeTheirEntriesAlongWhenTheyMove) {
    MoveAbout<qeadrs::CNames>(Names({"東京都", "広島県"}), Names({"香川県"}));
    MoveAbout<qeadrs::CTowns>(NewCodeFirst(CHIYODA_TOWNS), NO_ENTRIES);
    MoveAbout<qeadrs::CLines>(Lines(MINATO_LINES), NO_LINES);
}

// --- the API -------------------------------------------------------------------------------------------------------

static_assert(!std::is_copy_constructible_v<qeadrs::CApi> && !std::is_copy_constructible_v<qeadrs::CBlock> &&
              !std::is_copy_constructible_v<qeadrs::CDictionaryFile> &&
              !std::is_copy_constructible_v<qeadrs::CRecords>);

TEST_F(HostHeader, OpensTheDictionaryOfTheProfileOnceAtATime) {
    EXPECT_EQ(qeadrs::CApi::Open().Error().nKind, EError::NoDictionary);
    Write(CTinyWorld());
    {
        qeadrs::CApi api = *qeadrs::CApi::Open();
        EXPECT_EQ(qeadrs::CApi::Open().Error().nKind, EError::AlreadyOpen);
        qeadrs::CApi const moved = std::move(api);
        EXPECT_TRUE(IsFileMapped(m_strFile));
    }
    EXPECT_FALSE(IsFileMapped(m_strFile));
    EXPECT_TRUE(qeadrs::CApi::Open());
}

TEST_F(HostHeader, ClosesTheApiThatAnotherOneIsMovedOver) {
    Write(CTinyWorld());
    qeadrs::CApi api = *qeadrs::CApi::Open();
    qeadrs::CApi moved = std::move(api);
    qeadrs::CApi& same = moved;
    moved = std::move(same);
    EXPECT_TRUE(IsFileMapped(m_strFile));
    moved = std::move(api); // NOLINT: which has nothing open
    EXPECT_FALSE(IsFileMapped(m_strFile));
    EXPECT_TRUE(qeadrs::CApi::Open());
}

TEST_F(HostHeader, CallsEveryFunctionOfTheApi) {
    qeadrs::CApi api = Api(CTextWorld());
    CTexts vTown;
    auto const addresses = *api.FromCode("105");
    for (qeadrs::CAddress const address : addresses) vTown.push_back(address.strTown);
    EXPECT_THAT(vTown, testing::Each("芝"));
    EXPECT_EQ(addresses.size(), 4u);
    EXPECT_THAT(TextsOf((*api.FromCode("1058444"))[0]),
                ElementsAre("1058444", "", "東京都", "港区", "芝", "１丁目", "港商会"));
    EXPECT_EQ(*api.LastOffice(), "港商会");
    EXPECT_EQ(api.FromCode("9").Error().nKind, EError::NotFound);
    EXPECT_EQ((*api.FromPart("東京都千代田区丸の内"))[0].strOldCode, "100");
    EXPECT_EQ(api.FromPart("無い").Error().nKind, EError::NotFound);
    EXPECT_EQ(*api.CitiesOfCode("1000005")->begin(), "東京都千代田区");
    EXPECT_EQ(*api.CitiesOfOldCode("105")->begin(), "東京都港区");
    EXPECT_TRUE(api.CitiesOfCode("9")->empty());
    EXPECT_EQ(api.LastOffice().Error().nKind, EError::NotFound);
    qeadrs::CResult<qeadrs::CCodes> const codes = api.CodeOf("東京都千代田区丸の内", "（株）テスト");
    ASSERT_TRUE(codes);
    EXPECT_EQ(codes->strCode, "1008111");
    EXPECT_EQ(codes->strOldCode, "100");
    EXPECT_EQ(codes->strOffice, "テスト");
    EXPECT_EQ(api.CodeOf("無い町").Error().nKind, EError::NotFound);
    qeadrs::CResult<qeadrs::CLatest> const latest = api.Latest("東京都千代田区旧町１");
    ASSERT_TRUE(latest);
    EXPECT_EQ(latest->strAddress, "東京都千代田区丸の内１");
    EXPECT_EQ(latest->strCode, "1000099");
    EXPECT_EQ(latest->strOldCode, "10099");
    EXPECT_EQ(api.Latest("無い町").Error().nKind, EError::NotFound);
    EXPECT_EQ(api.Number(), 1);
}

TEST_F(HostHeader, BrowsesByTheApi) {
    qeadrs::CApi api = Api(CBrowseWorld());
    auto const prefectures = *api.Prefectures();
    EXPECT_EQ(prefectures.size(), TwoPrefectures().size());
    EXPECT_EQ(*std::next(prefectures.begin(), TOKYO), "東京都");
    auto const cities = *api.Cities(TOKYO);
    EXPECT_THAT(CTexts(cities.begin(), cities.end()), ElementsAre("千代田区", "港区"));
    EXPECT_THAT(TextsOf(*api.Towns(1)->begin()), ElementsAre("芝", "1050014", "105"));
    api.Prefectures();
    api.Cities(TOKYO);
    EXPECT_THAT(TextsOf(*api.TownsOldCodeFirst(1)->begin()), ElementsAre("芝", "1050014", "105"));
    api.Prefectures();
    api.Cities(TOKYO);
    EXPECT_THAT(TextsOf((*api.Lines(1))[3]), ElementsAre("1050017", "105", "芝 海ビル ２階", ""));
    EXPECT_TRUE(api.Towns(0)->empty());
    EXPECT_EQ(*api.Prefectures("港区")->begin(), "東京都");
    EXPECT_EQ(api.Prefectures("無い" + std::string(1000, 'x')).Error().nKind, EError::NotFound);
    EXPECT_TRUE(api.Cities(65535)->empty());
}

TEST_F(HostHeader, TakesNoTextThatWouldBeCut) {
    qeadrs::CApi api = Api(CTextWorld());
    std::string const strText = "東京都千代田区丸の内";
    std::string const strLongest = strText + std::string(qeadrs::ADDRESS_LENGTH - strText.size(), '1');
    EXPECT_EQ(api.CodeOf(strLongest)->strCode, "1000005");
    EXPECT_TRUE(api.Latest(strLongest));
    EXPECT_EQ(api.CodeOf(strLongest + '1').Error().nKind, EError::TextTooLong);
    EXPECT_EQ(api.Latest(strLongest + '1').Error().nKind, EError::TextTooLong);
    EXPECT_TRUE(api.CitiesOfCode("1000005"));
    EXPECT_EQ(api.CitiesOfCode("100-0005").Error().nKind, EError::TextTooLong);
    EXPECT_EQ(api.CitiesOfOldCode("100000").Error().nKind, EError::TextTooLong);
    EXPECT_EQ(api.CitiesOfCode("").Error().nKind, EError::NoText);
    std::string const strNul = strText + '\0';
    EXPECT_EQ(api.CodeOf(strNul).Error().nKind, EError::NoText);
    EXPECT_EQ(api.CodeOf(strText, strNul).Error().nKind, EError::NoText);
    EXPECT_EQ(api.Latest(strNul).Error().nKind, EError::NoText);
    EXPECT_EQ(api.FromPart(strNul).Error().nKind, EError::NoText);
    EXPECT_EQ(api.FromCode(strNul).Error().nKind, EError::NoText);
    EXPECT_EQ(api.CitiesOfCode(std::string_view("1\0", 2)).Error().nKind, EError::NoText);
    EXPECT_EQ(api.Prefectures(strNul).Error().nKind, EError::NoText);
    EXPECT_EQ(api.CodeOf(strText, std::string(200000, 'x'))->strCode, "1000005");
}

TEST_F(HostHeader, SetsTheOrderOfTheApi) {
    qeadrs::CApi api = Api(CTextWorld());
    qeadrs::CDictionary dictionary = Dictionary(CTextWorld());
    for (unsigned short nType : {SORT_ADDR, SORT_DICTIONARY}) {
        api.SetSortType(nType);
        dictionary.SetSortType(nType);
        api.CodeOf("東京都"); // carries a sort type, too
        auto const addresses = *api.FromCode("1");
        qeadrs::CRecords const records = dictionary.FromCode("1");
        ASSERT_EQ(addresses.size(), records.size());
        for (size_t i = 0; i < records.size(); ++i) EXPECT_EQ(addresses[i].strCode, records[i].strCode) << i;
    }
}

TEST_F(HostHeader, SaysThatThereIsNoMemoryAndKeepsNoBlock) {
    qeadrs::CApi api = Api(CTextWorld());
    api.Prefectures();
    CSystemWatch watch;
    watch.Fail("GlobalLock");
    std::vector<EError> const vError = {
        api.FromCode("1000005").Error().nKind,  api.FromPart("東京都").Error().nKind,
        api.CitiesOfCode("1").Error().nKind,    api.Prefectures().Error().nKind,
        api.Cities(TOKYO).Error().nKind,        api.Towns(0).Error().nKind,
        api.TownsOldCodeFirst(0).Error().nKind, api.Lines(0).Error().nKind,
    };
    EXPECT_THAT(vError, testing::Each(EError::NoMemory));
    size_t nBlocks = 0;
    for (CSystemCall const& call : watch.Calls("GlobalLock")) {
        ++nBlocks;
        EXPECT_EQ(GlobalSize(const_cast<void*>(call.pAddress)), 0u) << "still there";
    }
    EXPECT_EQ(nBlocks, vError.size());
}

} // namespace
