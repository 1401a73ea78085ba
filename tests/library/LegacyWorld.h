// LegacyWorld.h - the legacy command interface over files of one's own, and a caller's records as bytes: the tests
// name a field by its offset, so that one that moves is seen.
#ifndef QEADRS_TESTS_LIBRARY_LEGACYWORLD_H
#define QEADRS_TESTS_LIBRARY_LEGACYWORLD_H

#include "api/ga_legacy.h"
#include "tests/support/GuardedBytes.h"
#include "tests/support/Peek.h"
#include "tests/support/TestImage.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <vector>

using CBytes = std::vector<unsigned char>;

// The numbers that hosts know; the header's names are not used here.
constexpr unsigned short OPEN = 1, CLOSE = 2, SEARCH = 3, GET = 4, NOTHING = 21;
constexpr short PREF = 0, CITY = 1, TOWN = 2;

// A host may hand in anything behind the fields: each test of what a call writes runs over all of these, so that no
// written byte hides as the one that was there.
constexpr unsigned char FILLS[] = {0x00, 0x5A, 0xFF};

// Two prefectures, in the image the other way round than on the screen.
//
//   東京都  千代田区      千代田  1000001 100
//                         丸の内  1000005 10055  丸ビル (building)  １階 (note) 1006001 100
//                                                テスト (organisation) 1008111 100
//           港区          芝      1050015 105    １丁目 (area) 1050014 10501
//   北海道  札幌市中央区  大通西  0600042 060
//                         北      1000099 100
//
// The codes of 港区 are the last entries, and not in the order of the screen.
struct CLegacyWorld : CTestImage {
    CLegacyWorld() {
        nTokyo = AddNode(LEVEL_PREF, ADDR_NONE, "東京都", "トウキョウト");
        nHokkaido = AddNode(LEVEL_PREF, ADDR_NONE, "北海道", "ホッカイドウ");
        nChiyodaKu = AddNode(LEVEL_CITY, nTokyo, "千代田区", "チヨダク");
        nMinatoKu = AddNode(LEVEL_CITY, nTokyo, "港区", "ミナトク");
        nChuoKu = AddNode(LEVEL_CITY, nHokkaido, "札幌市中央区", "サッポロシチュウオウク");
        nChiyoda = AddNode(LEVEL_TOWN, nChiyodaKu, "千代田", "チヨダ");
        nMarunouchi = AddNode(LEVEL_TOWN, nChiyodaKu, "丸の内", "マルノウチ");
        nShiba = AddNode(LEVEL_TOWN, nMinatoKu, "芝", "シバ");
        nOdori = AddNode(LEVEL_TOWN, nChuoKu, "大通西", "オオドオリニシ");
        nKita = AddNode(LEVEL_TOWN, nChuoKu, "北", "キタ");
        nBuilding = AddNode(LEVEL_BLOCK, nMarunouchi, "丸ビル", "マルビル");
        nOffice = AddNode(LEVEL_OFFICE, nMarunouchi, "テスト", "テスト");
        nFloor = AddNode(LEVEL_NOTE, nBuilding, "１階");
        nArea = AddNode(LEVEL_AREA, nShiba, "１丁目", "1チョウメ");
        AddInfo(nOdori, "0600042", "060");
        AddInfo(nChiyoda, "1000001", "100");
        AddInfo(nMarunouchi, "1000005", "10055");
        AddInfo(nKita, "1000099", "100");
        AddInfo(nFloor, "1006001", "100");
        AddInfo(nOffice, "1008111", "100");
        AddInfo(nArea, "1050014", "10501");
        AddInfo(nShiba, "1050015", "105");
        Complete();
    }
    uint32_t nTokyo, nHokkaido, nChiyodaKu, nMinatoKu, nChuoKu, nChiyoda, nMarunouchi, nShiba, nOdori, nKita;
    uint32_t nBuilding, nOffice, nFloor, nArea;
};

// One prefecture, city and town with names of the test's choice, and the entry 1000001, old code 10001. An entry
// behind it ends every walk over the codes that begin with 1.
struct CNamedWorld : CTestImage {
    CNamedWorld(std::string const& strPref, std::string const& strCity, std::string const& strTown) {
        nPref = AddNode(LEVEL_PREF, ADDR_NONE, strPref);
        nCity = AddNode(LEVEL_CITY, nPref, strCity);
        nTown = AddNode(LEVEL_TOWN, nCity, strTown);
        AddInfo(nTown, "1000001", "10001");
        AddInfo(nTown, "9999999", "99999");
        Complete();
    }
    // The same with one more node below the town; the entry is that node's.
    CNamedWorld(uint8_t nLevel, std::string const& strDetail) : CNamedWorld("東京都", "港区", "芝") {
        vInfo[0].nNode = AddNode(nLevel, nTown, strDetail);
        vInfo[1].nNode = nTown;
        for (tagADDRNODE& node : vNode) node.nInfo = ADDR_NONE;
        Complete();
    }
    uint32_t nPref, nCity, nTown;
};

// A caller's record, all bytes the same, with a page right behind it, or right before, that cannot be touched.
template <typename RECORD, size_t SIZE>
class CRecordBytes {
    static_assert(sizeof(RECORD) == SIZE && alignof(RECORD) == 1, "the caller's record");

  public:
    explicit CRecordBytes(unsigned char cFill = 0, CGuardedBytes::EPlace nPlace = CGuardedBytes::EndOfPage)
        : m_bytes(CBytes(SIZE, cFill).data(), SIZE, CGuardedBytes::Writable, nPlace) {}

    RECORD* Record() const { return reinterpret_cast<RECORD*>(m_bytes.Data()); }
    unsigned char* Data() const { return m_bytes.Data(); }
    CBytes Bytes() const { return CBytes(Data(), Data() + SIZE); }

    int Byte(size_t nOffset) const { return Data()[nOffset]; }
    int Number(size_t nOffset) const {
        return static_cast<int16_t>(static_cast<uint16_t>(Byte(nOffset) | Byte(nOffset + 1) << 8));
    }
    // What stands in nSize bytes, up to the first NUL.
    std::string Text(size_t nOffset, size_t nSize) const {
        auto const* const psz = reinterpret_cast<char const*>(Data()) + nOffset;
        return std::string(psz, strnlen(psz, nSize));
    }

    void PutByte(size_t nOffset, int n) const { Data()[nOffset] = static_cast<unsigned char>(n); }
    void PutNumber(size_t nOffset, int n) const {
        PutByte(nOffset, n & 0xFF);
        PutByte(nOffset + 1, n >> 8 & 0xFF);
    }
    // The bytes of a text, without a NUL.
    void Put(size_t nOffset, std::string const& str) const { std::memcpy(Data() + nOffset, str.data(), str.size()); }

  private:
    CGuardedBytes m_bytes;
};

// The request of a search: positions at 6, 8 and 10, address at 500, short code at 1014, code at 1020.
class CRequest : public CRecordBytes<GA_ADRSRT, 1028> {
  public:
    explicit CRequest(unsigned char cFill = 0, CGuardedBytes::EPlace nPlace = CGuardedBytes::EndOfPage)
        : CRecordBytes(cFill, nPlace) {
        Select(0, 0, 0);
        Ask("", "");
    }
    CRequest& Select(int nPref, int nCity, int nTown) {
        PutNumber(6, nPref);
        PutNumber(8, nCity);
        PutNumber(10, nTown);
        return *this;
    }
    // Each with its NUL, as far as the field goes.
    CRequest& Ask(std::string const& strCode, std::string const& strAddr) {
        Put(500, (strAddr + '\0').substr(0, 514));
        Put(1014, std::string(1, '\0'));
        Put(1020, (strCode + '\0').substr(0, 8));
        return *this;
    }
};

using CCounts = CRecordBytes<GA_ADRNUM, 534>;

// One entry: position at 0, name at 4, detail at 126, its kind at 386, old code at 387, code at 393, lengths at 377,
// 378, 381, 409 and 410.
class CEntry : public CRecordBytes<GA_ADRFLD, 411> {
  public:
    explicit CEntry(int nPosition = 0, unsigned char cFill = 0,
                    CGuardedBytes::EPlace nPlace = CGuardedBytes::EndOfPage)
        : CRecordBytes(cFill, nPlace) {
        PutNumber(0, nPosition);
    }
    std::string Name() const { return Text(4, 60); }
    std::string Detail() const { return Text(126, 128); }
};

// What a record looks like after a call: as it was before, but for these places.
class CPicture {
  public:
    explicit CPicture(CBytes const& vBefore) : m_vByte(vBefore) {}
    CPicture& Byte(size_t nOffset, int n) {
        m_vByte.at(nOffset) = static_cast<unsigned char>(n);
        return *this;
    }
    CPicture& Number(size_t nOffset, int n) { return Byte(nOffset, n & 0xFF).Byte(nOffset + 1, n >> 8 & 0xFF); }
    CPicture& Put(size_t nOffset, std::string const& str) {
        for (char c : str) Byte(nOffset++, c);
        return *this;
    }
    // A text with zeros behind it, cut to its field.
    CPicture& Field(size_t nOffset, size_t nSize, std::string const& str) {
        return Put(nOffset, (str + std::string(nSize, '\0')).substr(0, nSize));
    }
    CBytes const& Bytes() const { return m_vByte; }

  private:
    CBytes m_vByte;
};

template <typename RECORD, size_t SIZE>
testing::AssertionResult LooksLike(CRecordBytes<RECORD, SIZE> const& record, CPicture const& picture) {
    testing::AssertionResult result = testing::AssertionFailure();
    CBytes const vByte = record.Bytes();
    if (vByte == picture.Bytes()) return testing::AssertionSuccess();
    for (size_t n = 0; n < SIZE; ++n)
        if (vByte[n] != picture.Bytes().at(n))
            result << " byte " << n << " is " << int{vByte[n]} << ", not " << int{picture.Bytes()[n]} << ";";
    return result;
}

template <typename RECORD, size_t SIZE>
testing::AssertionResult IsUntouched(CRecordBytes<RECORD, SIZE> const& record, CBytes const& vBefore) {
    return LooksLike(record, CPicture(vBefore));
}

// The answer to a search: counts, marks and widths.
inline CPicture Counted(CCounts const& before, int nPrefs, int nCities, int nTowns) {
    CPicture picture(before.Bytes());
    picture.Number(0, nPrefs).Number(2, nCities).Number(4, nTowns).Number(6, -1).Number(8, -1);
    return picture.Number(528, 8).Number(530, 16).Number(532, 60);
}

// That to a search whose selection is not there: the widths stay.
inline CPicture CountedInPart(CCounts const& before, int nPrefs, int nCities) {
    CPicture picture(before.Bytes());
    return picture.Number(0, nPrefs).Number(2, nCities).Number(4, 0).Number(6, -1).Number(8, -1);
}

// A folder of its own for each test, and the interface as it was loaded before and after it.
class CLegacy : public testing::Test {
  protected:
    // The path as the kernel writes it, without a doubled slash or a link on the way.
    CLegacy() : m_strFolder((std::filesystem::canonical(testing::TempDir()) / "qe-legacy-XXXXXX").string()) {
        if (mkdtemp(m_strFolder.data()) == nullptr)
            throw std::system_error(errno, std::generic_category(), "mkdtemp");
    }
    ~CLegacy() override {
        ga_legacy_close();
        ga_legacy::dic.SetDictionary(nullptr);
        ga_legacy::hDicFile = -1;
        ga_legacy::size = 0;
        ga_legacy::hFileMap = 0;
        std::error_code error;
        std::filesystem::remove_all(m_strFolder, error);
    }

    std::string Path(std::string const& strName) const { return m_strFolder + "/" + strName; }

    // A new file each time: a mapped one must not change.
    std::string Write(CBytes const& vByte) {
        std::string const strPath = Path(std::to_string(m_nFiles++) + ".dic");
        std::ofstream file(strPath, std::ios::binary);
        file.write(reinterpret_cast<char const*>(vByte.data()), static_cast<std::streamsize>(vByte.size()));
        if (!file.flush()) throw std::runtime_error("cannot write " + strPath);
        return strPath;
    }
    std::string Write(CTestImage const& image) { return Write(image.Bytes()); }

    static int Open(std::string const& strPath) { return GA_adr_exec(OPEN, 0, nullptr, strPath.c_str(), nullptr); }
    void OpenImage(CTestImage const& image) { ASSERT_EQ(Open(Write(image)), 0); }
    static int Close() { return GA_adr_exec(CLOSE, 0, nullptr, nullptr, nullptr); }

    static int Search(CRequest const& request, CCounts const& counts) {
        return GA_adr_exec(SEARCH, 0, request.Record(), nullptr, counts.Data());
    }
    static int Get(short nKind, CEntry const& entry) {
        return GA_adr_exec(GET, nKind, nullptr, nullptr, entry.Data());
    }

    // Searches, and the three counts.
    static std::vector<int> Counts(std::string const& strCode, std::string const& strAddr, int nPref = 0,
                                   int nCity = 0) {
        CRequest request;
        request.Select(nPref, nCity, 0).Ask(strCode, strAddr);
        CCounts const counts;
        EXPECT_EQ(Search(request, counts), 0);
        return {counts.Number(0), counts.Number(2), counts.Number(4)};
    }

    // The name, or name and detail, at a position.
    static std::string NameAt(short nKind, int nPosition) {
        CEntry const entry(nPosition);
        EXPECT_EQ(Get(nKind, entry), 0);
        return entry.Name() + (entry.Detail().empty() ? "" : " " + entry.Detail());
    }

    // The object's own bytes and the numbers beside it: what a command that does nothing leaves alone.
    static CBytes State() {
        auto const* const p = reinterpret_cast<unsigned char const*>(&ga_legacy::dic);
        CBytes vByte(p, p + sizeof ga_legacy::dic);
        for (uint32_t n : {static_cast<uint32_t>(ga_legacy::hDicFile), ga_legacy::size,
                           static_cast<uint32_t>(ga_legacy::hFileMap)})
            for (int nShift = 0; nShift < 32; nShift += 8) vByte.push_back(static_cast<unsigned char>(n >> nShift));
        return vByte;
    }

  private:
    std::string m_strFolder;
    int m_nFiles = 0;
};

#endif
