// qeadrs.hpp - the library for C++ hosts: what is open closes itself, answers are ranges, errors are values.
//
//   auto dictionary = qeadrs::CDictionary::Open("qeadrs.dic");        // a file of yours, as often as you like
//   if (!dictionary) return puts(dictionary.Error().Text().c_str());
//   for (qeadrs::CRecord const address : dictionary->FromCode("100-0001"))
//       std::cout << address.strPref << address.strCity << address.strTown << '\n';
//
//   auto api = qeadrs::CApi::Open();                                  // the dictionary of the profile, one a process
//   if (auto codes = api->CodeOf("東京都千代田区丸の内")) std::cout << codes->strCode << '\n';
//
// All is in this header, over the functions of Pstexec.h and the class CAddrDic: a host links what it would link without
// it, libqeadrs and libqewin.
//
// Names     As everywhere in the library: CDictionary, FromCode, strCity. What the language looks for by name (begin,
//           end, size, empty, value_type) is spelled as it wants it.
// Errors    What can fail returns a CResult: the answer, or a CError to act on. Nothing throws but std::bad_alloc.
// Texts     UTF-8, as std::string_view. "" stands for an absent text. A text of yours that holds a NUL finds nothing:
//           no name does, and what stands behind it would not be read.
// Lifetime  A text leads into the object that gave it: those of a block live as long as the block (CAddresses, CNames
//           ...), those of the class as long as the mapping of the file (CDictionary, or the CDictionaryFile it
//           borrows) and the CRecords that they came in. Copy what you keep. Elements of a range are made on the way:
//           take them by value.
// Moved     What has been moved from may be assigned and destroyed, nothing else; files, blocks and answers are empty
//           then, and say so.
// Safety    Blocks and records are read within their bounds whatever is in them: one that ends too early is an error
//           (EError::DamagedBlock), a text outside is "".
// Threads   CApi: one thread at a time, for the whole process. CDictionary: one thread each; any number of them may
//           borrow one CDictionaryFile.
#ifndef QEADRS_API_QEADRS_HPP
#define QEADRS_API_QEADRS_HPP

#include "api/Pstexec.h"
#include "dic/AddrDic.h"
#include "dic/ImageHeader.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <variant>
#include <vector>

namespace qeadrs {

// --- errors --------------------------------------------------------------------------------------------------------

enum class EError : unsigned {
    NotFound,     // nothing fits: ask for less, or for something else
    NoFile,       // the file cannot be opened; nSystem says why
    NotAFile,     // a folder, a pipe, a device
    NotOurs,      // no dictionary of ours
    NewerFormat,  // a dictionary for a newer library: update
    DamagedFile,  // cut off, or its tables do not lie in it: get it anew
    NoDictionary, // PstAdrOpen found none: look at the profile
    AlreadyOpen,  // a CApi lives, and there is one a process
    TextTooLong,  // the interface has no room for the text
    NoText,       // there is no text where one is needed, or it holds a NUL
    NoMemory,     //
    DamagedBlock, // an answer block ends too early, or is at odds with itself
    System,       // the system refuses; nSystem says why
    Count,
};

struct CError {
    EError nKind;
    int nSystem = 0;          // errno, where the system had a say
    std::string strMore = {}; // what exactly, where there is more to say

    // The reason as the rest of a sentence: "is not a dictionary of ours".
    std::string Text() const;
};

namespace detail {
inline constexpr char const* ERROR_TEXTS[] = {
    "is not found",
    "cannot be opened",
    "is not a file",
    "is not a dictionary of ours",
    "has a newer format than this program knows",
    "is damaged or cut off",
    "is not there: the profile names no folder with a dictionary",
    "is open already",
    "is too long",
    "holds no text, or a NUL",
    "does not fit into the memory",
    "is damaged: the answer block ends too early",
    "is refused by the system",
};
static_assert(sizeof ERROR_TEXTS / sizeof *ERROR_TEXTS == static_cast<size_t>(EError::Count), "a text for each");
} // namespace detail

inline std::string CError::Text() const {
    std::string strText = detail::ERROR_TEXTS[nKind < EError::Count ? static_cast<size_t>(nKind) : 0];
    if (!strMore.empty()) strText = strMore;
    if (nSystem != 0) strText += ": " + std::generic_category().message(nSystem);
    return strText;
}

// An answer, or the reason why there is none. Asking for what is not there ends the process (abort), as it must not
// pass unnoticed.
template <typename T>
class CResult {
  public:
    using value_type = T;

    CResult(T value) : m_content(std::in_place_index<0>, std::move(value)) {}
    CResult(CError error) : m_content(std::in_place_index<1>, std::move(error)) {}
    CResult(EError nKind, int nSystem = 0) : CResult(CError{nKind, nSystem}) {}

    explicit operator bool() const noexcept { return m_content.index() == 0; }
    T& operator*() & { return *Get<0>(m_content); }
    T const& operator*() const& { return *Get<0>(m_content); }
    T operator*() && { return std::move(*Get<0>(m_content)); } // a value: for (... : *api.FromCode(...)) keeps it
    T* operator->() { return Get<0>(m_content); }
    T const* operator->() const { return Get<0>(m_content); }
    CError const& Error() const { return *Get<1>(m_content); }

  private:
    template <size_t N, typename TContent>
    static auto Get(TContent& content) {
        auto* const p = std::get_if<N>(&content);
        if (p == nullptr) std::abort();
        return p;
    }

    std::variant<T, CError> m_content;
};

// --- a mapped dictionary file --------------------------------------------------------------------------------------

namespace detail {

inline bool HoldsNul(std::string_view strText) {
    return strText.find('\0') != std::string_view::npos;
}

// The tables that are read; the header names them by their words.
struct CTablePlace {
    tagHEADERWORD nOffset, nCount;
    size_t nRecord;
};
inline constexpr CTablePlace TABLES[] = {
    {HDR_NODE_TABLE, HDR_NODE_COUNT, sizeof(tagADDRNODE)},
    {HDR_INFO_TABLE, HDR_INFO_COUNT, sizeof(tagADDRINFO)},
    {HDR_STRING_AREA, HDR_STRING_SIZE, 1},
    {HDR_CITY_INDEX, HDR_CITY_COUNT, sizeof(uint32_t)},
    {HDR_OFFICE_INDEX, HDR_OFFICE_COUNT, sizeof(uint32_t)},
};

inline bool LiesInFile(CTablePlace const& table, unsigned char const* pImage, uint64_t nSize) {
    uint64_t const nOffset = HeaderWord(pImage, table.nOffset);
    bool const bAligned = table.nRecord == 1 || nOffset % 4 == 0;
    return bAligned && nOffset <= nSize &&
           HeaderWord(pImage, table.nCount) * uint64_t{table.nRecord} <= nSize - nOffset;
}

// What is wrong with the header; nothing when the image can be bound.
inline std::optional<CError> CheckHeader(unsigned char const* pImage, size_t nSize) {
    auto const Damaged = [](std::string strMore) {
        return CError{EError::DamagedFile, 0, "is damaged" + std::move(strMore)};
    };
    if (nSize < sizeof IMAGE_MAGIC || std::memcmp(pImage, IMAGE_MAGIC, sizeof IMAGE_MAGIC) != 0)
        return CError{EError::NotOurs};
    if (nSize < HDR_BYTES) return Damaged(" or cut off: " + std::to_string(nSize) + " bytes");
    uint32_t const nVersion = HeaderWord(pImage, HDR_VERSION);
    if (nVersion > IMAGE_VERSION)
        return CError{EError::NewerFormat, 0,
                      "has format " + std::to_string(nVersion) + ", newer than this program's " +
                          std::to_string(IMAGE_VERSION)};
    uint32_t const nFileSize = HeaderWord(pImage, HDR_FILE_SIZE);
    if (nFileSize != nSize)
        return Damaged(" or cut off: " + std::to_string(nSize) + " bytes instead of " + std::to_string(nFileSize));
    for (CTablePlace const& table : TABLES)
        if (!LiesInFile(table, pImage, nSize))
            return Damaged(": the table that offset " + std::to_string(4 * table.nOffset) +
                           " names does not lie in the file");
    size_t const nStrings = HeaderWord(pImage, HDR_STRING_SIZE);
    if (nStrings > 0 && pImage[HeaderWord(pImage, HDR_STRING_AREA) + nStrings - 1] != '\0')
        return Damaged(": its last text has no end");
    return std::nullopt;
}

class CFileHandle {
  public:
    // Not blocking: a named pipe is refused by its kind instead of waited for.
    explicit CFileHandle(std::string const& strFile)
        : m_hFile(open(strFile.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}
    ~CFileHandle() {
        if (m_hFile >= 0) close(m_hFile);
    }
    CFileHandle(CFileHandle const&) = delete;
    CFileHandle& operator=(CFileHandle const&) = delete;
    int Handle() const { return m_hFile; }

  private:
    int m_hFile;
};

} // namespace detail

// A dictionary file, mapped read-only as long as the object lives. Its header is looked at: ours, of a format that is
// known, as long as it says, its tables inside the file. The records are not; for a file whose way is not known run
// `qeadrs-dic check` first. Replace a file by renaming a new one over it: what is mapped stays as it is.
class CDictionaryFile {
  public:
    static CResult<CDictionaryFile> Open(std::string const& strFile) {
        if (detail::HoldsNul(strFile)) return EError::NoText;
        detail::CFileHandle const file(strFile);
        if (file.Handle() < 0) return {EError::NoFile, errno};
        struct stat status;
        if (fstat(file.Handle(), &status) != 0) return {EError::System, errno};
        if (!S_ISREG(status.st_mode)) return EError::NotAFile;
        if (status.st_size <= 0) return EError::NotOurs;
        if (static_cast<uint64_t>(status.st_size) > std::numeric_limits<size_t>::max()) return EError::DamagedFile;
        auto const nSize = static_cast<size_t>(status.st_size);
        void* const p = mmap(nullptr, nSize, PROT_READ, MAP_SHARED, file.Handle(), 0);
        if (p == MAP_FAILED)
            return CError{errno == ENOMEM ? EError::NoMemory : EError::System, errno, "cannot be mapped"};
        CDictionaryFile mapped(static_cast<unsigned char const*>(p), nSize, status.st_dev, status.st_ino);
        if (std::optional<CError> error = detail::CheckHeader(mapped.m_pStart, nSize)) return std::move(*error);
        return CResult<CDictionaryFile>(std::move(mapped));
    }

    ~CDictionaryFile() {
        if (m_pStart != nullptr) munmap(const_cast<unsigned char*>(m_pStart), m_nSize);
    }
    CDictionaryFile(CDictionaryFile&& other) noexcept
        : m_pStart(std::exchange(other.m_pStart, nullptr)),
          m_nSize(std::exchange(other.m_nSize, 0)),
          m_nDevice(other.m_nDevice),
          m_nInode(other.m_nInode) {}
    CDictionaryFile& operator=(CDictionaryFile&& other) noexcept {
        CDictionaryFile taken(std::move(other)); // unmaps what was here
        std::swap(m_pStart, taken.m_pStart);
        std::swap(m_nSize, taken.m_nSize);
        std::swap(m_nDevice, taken.m_nDevice);
        std::swap(m_nInode, taken.m_nInode);
        return *this;
    }

    // Null and 0 for one that has been moved from.
    unsigned char const* Bytes() const { return m_pStart; }
    size_t Size() const { return m_nSize; }

    // Decimal yyyymmdd; dd is 00 when only the month is known; 0: unknown.
    uint32_t Edition() const { return m_pStart == nullptr ? 0 : HeaderWord(m_pStart, HDR_EDITION); }

    // Whether strFile still names the very file that is mapped. False tells that an update has put a new one there.
    bool Is(std::string const& strFile) const {
        struct stat status;
        return m_pStart != nullptr && stat(strFile.c_str(), &status) == 0 && status.st_dev == m_nDevice &&
               status.st_ino == m_nInode;
    }

    // Whether a text lies in the mapping; and the text itself, up to its NUL or the end of the file, "" when it is null
    // or lies elsewhere.
    bool Holds(char const* psz) const {
        auto const n = reinterpret_cast<uintptr_t>(psz);
        auto const nStart = reinterpret_cast<uintptr_t>(m_pStart);
        return m_pStart != nullptr && n >= nStart && n - nStart < m_nSize;
    }
    std::string_view Text(char const* psz) const {
        if (!Holds(psz)) return {};
        size_t const nOffset = reinterpret_cast<uintptr_t>(psz) - reinterpret_cast<uintptr_t>(m_pStart);
        return {psz, strnlen(psz, m_nSize - nOffset)};
    }

  private:
    CDictionaryFile(unsigned char const* pStart, size_t nSize, uint64_t nDevice, uint64_t nInode)
        : m_pStart(pStart), m_nSize(nSize), m_nDevice(nDevice), m_nInode(nInode) {}

    unsigned char const* m_pStart;
    size_t m_nSize;
    uint64_t m_nDevice;
    uint64_t m_nInode;
};

// --- answers of the class ------------------------------------------------------------------------------------------

// One address of an answer; what it lacks is "", with a null data() where a "" of the dictionary would be a name (a
// town without one stands for the city as a whole).
struct CRecord {
    std::string_view strCode;
    std::string_view strOldCode; // old code of three or five digits
    std::string_view strPref, strPrefKana;
    std::string_view strCity, strCityKana;
    std::string_view strTown, strTownKana;
    std::string_view strArea, strAreaKana; // level 3; after the analysis of a text what was left unread of it
    std::string_view strBlock, strBlockKana;
    std::string_view strNote; // a floor
    std::string_view strOffice, strOfficeKana;
};

// An iterator over anything that has At(position): elements are made when they are looked at.
template <typename TRange, typename TElement>
class CPositionIterator {
  public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = TElement;
    using difference_type = std::ptrdiff_t;
    using reference = TElement;
    class pointer { // keeps an element for operator->
      public:
        explicit pointer(TElement element) : m_element(std::move(element)) {}
        TElement const* operator->() const { return &m_element; }

      private:
        TElement m_element;
    };

    CPositionIterator() = default;
    CPositionIterator(TRange range, size_t nPosition) : m_range(range), m_nPosition(nPosition) {}
    reference operator*() const { return m_range.At(m_nPosition); }
    pointer operator->() const { return pointer(**this); }
    CPositionIterator& operator++() {
        m_nPosition = m_range.Next(m_nPosition);
        return *this;
    }
    CPositionIterator operator++(int) {
        CPositionIterator const before = *this;
        ++*this;
        return before;
    }
    friend bool operator==(CPositionIterator const& a, CPositionIterator const& b) {
        return a.m_nPosition == b.m_nPosition;
    }
    friend bool operator!=(CPositionIterator const& a, CPositionIterator const& b) { return !(a == b); }

  private:
    TRange m_range = {};
    size_t m_nPosition = 0;
};

namespace detail {

// Where the texts of a record may lie: in the file, or in the copy of the text that was asked for.
struct CTextPlaces {
    CDictionaryFile const* pFile = nullptr;
    char const* pAsked = nullptr;
    size_t nAsked = 0; // its NUL included

    std::string_view Text(char const* psz) const {
        auto const n = reinterpret_cast<uintptr_t>(psz);
        auto const nStart = reinterpret_cast<uintptr_t>(pAsked);
        if (pAsked != nullptr && n >= nStart && n - nStart < nAsked)
            return {psz, strnlen(psz, nAsked - static_cast<size_t>(n - nStart))};
        return pFile == nullptr ? std::string_view() : pFile->Text(psz);
    }

    CRecord Read(tagADDR const& addr) const {
        CRecord record;
        record.strCode = Text(addr.pszPostCode);
        record.strOldCode = Text(addr.pszCodeExt);
        // In a dictionary the old code stands right behind the NUL of the code, and that NUL is what a lookup by code
        // leaves in pszCodeExt. Address text leaves the old code itself, which may be "".
        if (addr.pszCodeExt != nullptr && addr.pszPostCode != nullptr &&
            addr.pszCodeExt == addr.pszPostCode + record.strCode.size())
            record.strOldCode = Text(addr.pszCodeExt + 1);
        record.strPref = Text(addr.pszPref);
        record.strPrefKana = Text(addr.pszPrefKana);
        record.strCity = Text(addr.pszCity);
        record.strCityKana = Text(addr.pszCityKana);
        record.strTown = Text(addr.pszTown);
        record.strTownKana = Text(addr.pszTownKana);
        record.strArea = Text(addr.pszArea);
        record.strAreaKana = Text(addr.pszAreaKana);
        record.strBlock = Text(addr.pszBlock);
        record.strBlockKana = Text(addr.pszBlockKana);
        record.strNote = Text(addr.pszNote);
        record.strOffice = Text(addr.pszOffice);
        record.strOfficeKana = Text(addr.pszOfficeKana);
        return record;
    }
};

} // namespace detail

// The addresses of an answer, none when nothing was found.
class CRecords {
    struct CView {
        tagADDR const* pAddr = nullptr;
        detail::CTextPlaces places = {};
        CRecord At(size_t n) const { return places.Read(pAddr[n]); }
        size_t Next(size_t n) const { return n + 1; }
    };

  public:
    using value_type = CRecord;
    using iterator = CPositionIterator<CView, CRecord>;
    using const_iterator = iterator;

    CRecords(CRecords&&) noexcept = default;
    CRecords& operator=(CRecords&&) noexcept = default;
    CRecords(CRecords const&) = delete;
    CRecords& operator=(CRecords const&) = delete;
    ~CRecords() = default;

    iterator begin() const { return {View(), 0}; }
    iterator end() const { return {View(), m_vAddr.size()}; }
    size_t size() const { return m_vAddr.size(); }
    bool empty() const { return m_vAddr.empty(); }

    // The record at a position, a blank one beyond the last.
    CRecord operator[](size_t n) const { return n < size() ? View().At(n) : CRecord(); }

    // The records as the class gave them, with their nodes.
    std::vector<tagADDR> const& Class() const { return m_vAddr; }

  private:
    friend class CDictionary;
    // Filled for one text. The texts of a moved vector stay where they are.
    CRecords(CDictionaryFile const& file, std::string_view strAsked)
        : m_pFile(&file), m_vAsked(strAsked.begin(), strAsked.end()) {
        m_vAsked.push_back('\0');
    }
    bool HasText() const { return std::memchr(m_vAsked.data(), '\0', m_vAsked.size()) == &m_vAsked.back(); }
    CView View() const { return {m_vAddr.data(), {m_pFile, m_vAsked.data(), m_vAsked.size()}}; }

    CDictionaryFile const* m_pFile;
    std::vector<char> m_vAsked;
    std::vector<tagADDR> m_vAddr;
};

// How long the lists of a refinement are, below the places that were selected; each modulo 65,536.
struct CRefinedCounts {
    unsigned nPrefs, nCities, nTowns;
};

// A town of a refinement, and what stands below it.
struct CRefinedTown {
    std::string strTown, strDetail, strOldCode, strCode;
    int nDetailKind; // 0 none, 1 a subdivision, 3 an organisation, 4 a building and its floor
};

// An object of the class over a mapped file. What its operations do in detail is told in AddrDic.h.
class CDictionary {
  public:
    // A dictionary with a file of its own.
    static CResult<CDictionary> Open(std::string const& strFile) {
        CResult<CDictionaryFile> file = CDictionaryFile::Open(strFile);
        if (!file) return file.Error();
        return CDictionary(*std::move(file));
    }

    // One that owns its file.
    explicit CDictionary(CDictionaryFile&& file)
        : m_pOwn(std::make_unique<CDictionaryFile>(std::move(file))), m_pFile(m_pOwn.get()) {
        Bind();
    }

    // One that borrows its file, which has to live, and stay where it is, longer than this object and its answers.
    explicit CDictionary(CDictionaryFile const& file) : m_pFile(&file) { Bind(); }

    CDictionaryFile const& File() const { return *m_pFile; }

    // The texts of a record that an operation of the class has filled; those outside the file are "".
    CRecord Read(tagADDR const& addr) const { return detail::CTextPlaces{m_pFile, nullptr, 0}.Read(addr); }

    CAddrDic& Class() { return *m_pDic; } // for all that is not below
    CAddrDic const& Class() const { return *m_pDic; }

    // The order of the lists from now on: SORT_DICTIONARY or SORT_ADDR.
    void SetSortType(unsigned short nType) { m_pDic->SetSortType(nType); }

    // --- lookups

    // The addresses of a code, or of all codes that begin so; ASCII digits, hyphens do not matter.
    CRecords FromCode(std::string_view strCode) {
        return Ask(strCode, [&](char* psz, auto& vAddr) { m_pDic->GetAddrFromPostCode7(psz, vAddr); });
    }
    CRecords FromOldCode(std::string_view strCode) {
        return Ask(strCode, [&](char* psz, auto& vAddr) { m_pDic->GetAddrFromPostCode5(psz, vAddr); });
    }
    // Every address that a part of one can stand for.
    CRecords FromPart(std::string_view strText) {
        return Ask(strText, [&](char* psz, auto& vAddr) { m_pDic->GetAddrFromAddrPart(psz, vAddr); });
    }

    // The levels that are recognised in an address, one record; none for a text in which none is.
    CRecords Separate(std::string_view strText) {
        return AskOne(strText, [&](char* psz, tagADDR& addr) {
            m_pDic->DivideAddr(psz, &addr);
            return addr.pszPref != nullptr || addr.pszCity != nullptr || addr.pszTown != nullptr;
        });
    }
    // The latest form of an address down to its town, one record, with the codes of the address as it was; none when no
    // town is recognised.
    CRecords Latest(std::string_view strText) {
        return AskOne(strText, [&](char* psz, tagADDR& addr) { return m_pDic->GetLatestAddr(psz, addr) != 0; });
    }
    // The code of an address, or of an organisation at it: the levels recognised, one record; none without a code.
    CRecords CodeOf(std::string_view strAddress, std::string_view strOffice = {}) {
        std::string strName(strOffice); // shortened in place
        return AskOne(strAddress, [&](char* psz, tagADDR& addr) {
            if (detail::HoldsNul(strName)) return false;
            // Told by the code: 0 means that the organisation lacks an entry, and the address has kept its own.
            m_pDic->GetPostCodeFromAddr(psz, strName.data(), addr);
            return addr.pszPostCode != nullptr;
        });
    }

    // --- browsing: a number is a position in the answer before, and each level is asked once

    CRecords Prefectures() {
        return Ask({}, [&](char*, auto& vAddr) { m_pDic->GetPref(vAddr); });
    }
    CRecords PrefecturesOf(std::string_view strText) { // those that a text can lie in
        return Ask(strText, [&](char* psz, auto& vAddr) { m_pDic->GetPrefFromCity(psz, vAddr); });
    }
    CRecords Cities(unsigned long nPref) {
        return Ask({}, [&](char*, auto& vAddr) { m_pDic->GetCityFromNo(nPref, vAddr); });
    }
    CRecords Towns(unsigned long nCity) {
        return Ask({}, [&](char*, auto& vAddr) { m_pDic->GetTownFromNo(nCity, vAddr); });
    }
    CRecords AddressesOf(unsigned long nCity) { // in place of the towns: all below the city
        return Ask({}, [&](char*, auto& vAddr) { m_pDic->GetTownExFromNo(nCity, vAddr); });
    }

    // --- refinement: what a part of a code or, without a code, of an address can mean

    // Makes the tree of candidates. Select then selects a place in it by positions and tells how long the lists are;
    // nothing for a place that is not there. A search that finds nothing, as that for a text with a NUL, leaves the
    // lists of the whole dictionary.
    void Refine(std::string_view strCode, std::string_view strAddress = {}) {
        if (detail::HoldsNul(strCode) || detail::HoldsNul(strAddress)) strCode = strAddress = {};
        std::string strDigits(strCode); // shortened in place
        m_pDic->MakeRefineTree(strDigits.data(), std::string(strAddress).c_str());
    }
    std::optional<CRefinedCounts> Select(int nPref, int nCity = 0, int nTown = 0) {
        short anCount[3], anWidth[3];
        if (m_pDic->GetAdrNum(nPref, nCity, nTown, &anCount[0], &anCount[1], &anCount[2], &anWidth[0], &anWidth[1],
                              &anWidth[2]) == 0)
            return std::nullopt;
        return CRefinedCounts{static_cast<uint16_t>(anCount[0]), static_cast<uint16_t>(anCount[1]),
                              static_cast<uint16_t>(anCount[2])};
    }
    // The entries of the selected lists; nothing at a position that is not there. Names above 1,023 bytes, which no
    // dictionary of ours has, are cut.
    std::optional<std::string> RefinedPref(int nIndex) {
        CField szName = {};
        if (!m_pDic->GetAtPref(nIndex, szName, sizeof szName - 1)) return std::nullopt;
        return szName;
    }
    std::optional<std::string> RefinedCity(int nIndex) {
        CField szName = {};
        if (!m_pDic->GetAtCity(nIndex, szName, sizeof szName - 1, nullptr) || *szName == '\0') return std::nullopt;
        return szName;
    }
    std::optional<CRefinedTown> RefinedTown(int nIndex) {
        CField szTown = {}, szDetail = {}, szOldCode = {}, szCode = {};
        char nKind = 0;
        if (!m_pDic->GetAtTown(nIndex, szTown, sizeof szTown - 1, szDetail, sizeof szDetail - 1, szOldCode,
                               sizeof szOldCode - 1, szCode, sizeof szCode - 1, &nKind))
            return std::nullopt;
        return CRefinedTown{szTown, szDetail, szOldCode, szCode, nKind};
    }

  private:
    using CField = char[1024];

    void Bind() { m_pDic->SetDictionary(m_pFile->Bytes()); }

    template <typename TAsk>
    CRecords Ask(std::string_view strText, TAsk const& Fill) {
        CRecords records(*m_pFile, strText);
        if (records.HasText()) Fill(records.m_vAsked.data(), records.m_vAddr);
        return records;
    }
    template <typename TAsk>
    CRecords AskOne(std::string_view strText, TAsk const& Fill) {
        return Ask(strText, [&](char* psz, std::vector<tagADDR>& vAddr) {
            tagADDR addr(0);
            if (Fill(psz, addr)) vAddr.push_back(addr);
        });
    }

    std::unique_ptr<CDictionaryFile> m_pOwn; // null when the file is borrowed
    CDictionaryFile const* m_pFile;
    std::unique_ptr<CAddrDic> m_pDic = std::make_unique<CAddrDic>();
};

// --- answer blocks of the API --------------------------------------------------------------------------------------

// Bytes that are read within their bounds: what lies outside is 0, or "". Borrowed.
class CBytes {
  public:
    CBytes() = default;
    explicit CBytes(std::string_view strBytes) : m_strBytes(strBytes) {}

    size_t Size() const { return m_strBytes.size(); }
    unsigned Byte(size_t nOffset) const { return Number(nOffset, 1); }
    unsigned Short(size_t nOffset) const { return Number(nOffset, 2); }
    uint32_t Long(size_t nOffset) const { return Number(nOffset, 4); }
    bool Holds(size_t nOffset, size_t nLength) const { return nOffset <= Size() && nLength <= Size() - nOffset; }
    // Bytes from there on; "" when they do not all lie inside.
    std::string_view Part(size_t nOffset, size_t nLength) const {
        return Holds(nOffset, nLength) ? m_strBytes.substr(nOffset, nLength) : std::string_view();
    }
    // Up to its NUL, or the end of the bytes.
    std::string_view Text(uint64_t nOffset) const {
        if (nOffset >= Size()) return {};
        std::string_view const strRest = m_strBytes.substr(static_cast<size_t>(nOffset));
        return strRest.substr(0, strRest.find('\0'));
    }

  private:
    uint32_t Number(size_t nOffset, size_t nBytes) const {
        uint32_t n = 0;
        for (size_t i = nBytes; i > 0 && Holds(nOffset, nBytes); --i)
            n = n << 8 | static_cast<unsigned char>(m_strBytes[nOffset + i - 1]);
        return n;
    }

    std::string_view m_strBytes;
};

// An answer block: locked while the object lives, freed with it.
class CBlock {
  public:
    // Takes the block over, whatever happens.
    static CResult<CBlock> Take(HGLOBAL hMem) {
        void const* const p = GlobalLock(hMem);
        if (p != nullptr) return CBlock(hMem, p);
        GlobalFree(hMem);
        return EError::NoMemory;
    }

    ~CBlock() {
        if (m_hMem == nullptr) return;
        GlobalUnlock(m_hMem);
        GlobalFree(m_hMem);
    }
    CBlock(CBlock&& other) noexcept
        : m_hMem(std::exchange(other.m_hMem, nullptr)), m_bytes(std::exchange(other.m_bytes, CBytes())) {}
    CBlock& operator=(CBlock&& other) noexcept {
        CBlock taken(std::move(other)); // frees what was here
        std::swap(m_hMem, taken.m_hMem);
        std::swap(m_bytes, taken.m_bytes);
        return *this;
    }

    CBytes const& Bytes() const { return m_bytes; } // none for one that has been moved from

  private:
    CBlock(HGLOBAL hMem, void const* p) : m_hMem(hMem), m_bytes({static_cast<char const*>(p), GlobalSize(hMem)}) {}

    HGLOBAL m_hMem;
    CBytes m_bytes;
};

// The parts of the two kinds of block.
//
//   off size  a table of texts, N entries      |  off size  a list of texts, N entries
//     0    2  N modulo 65,536                  |    0    2  N modulo 65,536
//     2    2  0                                |    2       entries, packed: texts, each with a byte of its length
//     4    4  offset of the entries            |            (modulo 256) in front
//     8    4  offset of the pool               |
//    12  28N  entries: seven offsets of texts  |
//             in the pool                      |
//             pool: texts that end in NUL      |
inline constexpr size_t TABLE_HEADER_SIZE = 12;
inline constexpr size_t TABLE_ENTRIES_AT = 4;
inline constexpr size_t TABLE_POOL_AT = 8;
inline constexpr size_t ENTRY_SIZE = 28;
inline constexpr size_t LIST_HEADER_SIZE = 2;
static_assert(TABLE_POOL_AT + 4 == TABLE_HEADER_SIZE && ENTRY_SIZE == 7 * sizeof(uint32_t), "the blocks");

// An entry of GetAdrFromZip and GetAdrFromAdd.
struct CAddress {
    std::string_view strCode;    // +0
    std::string_view strOldCode; // +4: "" from GetAdrFromZip
    std::string_view strPref;    // +8
    std::string_view strCity;    // +12
    std::string_view strTown;    // +16
    std::string_view strArea;    // +20
    std::string_view strOffice;  // +24

    // From Text(slot), which gives the text at a slot of the entry.
    template <typename TText>
    static CAddress Read(TText const& Text) {
        return {Text(0), Text(4), Text(8), Text(12), Text(16), Text(20), Text(24)};
    }
};
static_assert(sizeof(CAddress) == ENTRY_SIZE / 4 * sizeof(std::string_view), "a text for each offset");

// An entry of PstAdrRTownForUI.
struct CLine {
    std::string_view strCode;    // +0
    std::string_view strOldCode; // +4
    std::string_view strLine;    // +16: town, building, floor
    std::string_view strOffice;  // +24

    // As that of CAddress.
    template <typename TText>
    static CLine Read(TText const& Text) {
        return {Text(0), Text(4), Text(16), Text(24)};
    }
};
static_assert(sizeof(CLine) == 4 * sizeof(std::string_view), "+8, +12 and +20 are nobody's");

// A table of texts as a range of its entries.
template <typename TEntry>
class CTable {
  public:
    using value_type = TEntry;
    using iterator = CPositionIterator<CTable, TEntry>;
    using const_iterator = iterator;

    CTable() = default;

    // Nothing when the block is damaged: shorter than its entries, or at odds with its count.
    static std::optional<CTable> Over(CBytes const& bytes) {
        CTable table;
        table.m_bytes = bytes;
        table.m_nEntries = bytes.Long(TABLE_ENTRIES_AT);
        table.m_nPool = bytes.Long(TABLE_POOL_AT);
        bool const bThere = bytes.Size() >= TABLE_HEADER_SIZE && table.m_nEntries == TABLE_HEADER_SIZE &&
                            table.m_nEntries <= table.m_nPool && table.m_nPool <= bytes.Size();
        if (!bThere || (table.m_nPool - table.m_nEntries) % ENTRY_SIZE != 0) return std::nullopt;
        // The count has 16 bits, the table may be longer.
        if (table.size() % 0x10000 != bytes.Short(0)) return std::nullopt;
        return table;
    }

    iterator begin() const { return {*this, 0}; }
    iterator end() const { return {*this, size()}; }
    size_t size() const { return (m_nPool - m_nEntries) / ENTRY_SIZE; }
    bool empty() const { return size() == 0; }
    TEntry operator[](size_t n) const { return n < size() ? At(n) : TEntry(); } // a blank one beyond the last

    // The same without the question.
    TEntry At(size_t n) const {
        return TEntry::Read([&](size_t nSlot) {
            return m_bytes.Text(uint64_t{m_nPool} + m_bytes.Long(m_nEntries + n * ENTRY_SIZE + nSlot));
        });
    }
    size_t Next(size_t n) const { return n + 1; }

  private:
    CBytes m_bytes;
    size_t m_nEntries = 0;
    size_t m_nPool = 0;
};

// Reads texts that stand one behind the other, each with a byte of its length in front. A text outside of the bytes is
// "", and the reader at odds with its block from then on.
class CPackedReader {
  public:
    explicit CPackedReader(CBytes const& bytes, size_t nOffset = LIST_HEADER_SIZE)
        : m_bytes(bytes), m_nOffset(nOffset) {}

    std::string_view Take() { return Take(m_bytes.Byte(m_nOffset)); }
    // A text whose length is known: above 255 bytes the byte in front does not hold it.
    std::string_view Take(size_t nLength) {
        m_bGood = m_bGood && m_bytes.Holds(m_nOffset, 1) && m_bytes.Byte(m_nOffset) == nLength % 0x100 &&
                  m_bytes.Holds(m_nOffset + 1, nLength);
        if (!m_bGood) return {};
        std::string_view const strText = m_bytes.Part(m_nOffset + 1, nLength);
        m_nOffset += 1 + nLength;
        return strText;
    }
    void TakeZero() {
        m_bGood = m_bGood && m_bytes.Holds(m_nOffset, 1) && m_bytes.Byte(m_nOffset) == 0;
        if (m_bGood) ++m_nOffset;
    }

    bool IsGood() const { return m_bGood; }
    size_t Offset() const { return m_nOffset; }

  private:
    CBytes m_bytes;
    size_t m_nOffset;
    bool m_bGood = true;
};

// An entry of PstAdrRPrf and PstAdrRCity: a name. Of PstAdrCity: prefecture and city as one text.
struct CNameEntry {
    using value_type = std::string_view;
    static value_type Read(CPackedReader& reader) { return reader.Take(); }
};

// An entry of PstAdrTown and PstAdrRTown.
struct CTown {
    std::string_view strName, strCode, strOldCode;
};
static_assert(sizeof(CTown) == 3 * sizeof(std::string_view), "three texts, and a zero behind them");
struct CTownEntry { // PstAdrRTown: the code in front
    using value_type = CTown;
    static value_type Read(CPackedReader& reader) {
        CTown town;
        town.strName = reader.Take();
        town.strCode = reader.Take();
        town.strOldCode = reader.Take();
        reader.TakeZero();
        return town;
    }
};
struct CTownOldCodeFirst { // PstAdrTown
    using value_type = CTown;
    static value_type Read(CPackedReader& reader) {
        CTown town = CTownEntry::Read(reader);
        std::swap(town.strCode, town.strOldCode);
        return town;
    }
};

// A list of texts as a range of its entries.
template <typename TEntry>
class CPacked {
  public:
    using value_type = typename TEntry::value_type;
    using iterator = CPositionIterator<CPacked, value_type>;
    using const_iterator = iterator;

    CPacked() = default;

    // Nothing when the block is damaged: it has to end with its last entry, and count them. A text above 255 bytes,
    // which no dictionary of ours has, makes it look so: CPackedReader reads it for those who know its length.
    static std::optional<CPacked> Over(CBytes const& bytes) {
        if (!bytes.Holds(0, LIST_HEADER_SIZE)) return std::nullopt;
        CPacked list;
        list.m_bytes = bytes;
        CPackedReader reader(bytes);
        for (; reader.IsGood() && reader.Offset() < bytes.Size(); ++list.m_nCount) TEntry::Read(reader);
        if (!reader.IsGood() || list.m_nCount % 0x10000 != bytes.Short(0)) return std::nullopt;
        return list;
    }

    iterator begin() const { return {*this, std::min(LIST_HEADER_SIZE, m_bytes.Size())}; }
    iterator end() const { return {*this, m_bytes.Size()}; }
    size_t size() const { return m_nCount; }
    bool empty() const { return m_nCount == 0; }

    // By offsets in the block.
    value_type At(size_t nOffset) const {
        CPackedReader reader(m_bytes, nOffset);
        return TEntry::Read(reader);
    }
    size_t Next(size_t nOffset) const {
        CPackedReader reader(m_bytes, nOffset);
        TEntry::Read(reader);
        return reader.Offset();
    }

  private:
    CBytes m_bytes;
    size_t m_nCount = 0;
};

// A block and the range of its entries. It may be moved, and is empty then; texts and iterators stay good.
template <typename TRange>
class CAnswer : public TRange {
  public:
    static CResult<CAnswer> Of(CResult<CBlock> block) {
        if (!block) return block.Error();
        std::optional<TRange> const range = TRange::Over(block->Bytes());
        if (!range) return EError::DamagedBlock;
        return CAnswer(*std::move(block), *range);
    }

    // The range goes with its block.
    CAnswer(CAnswer&& other) noexcept : TRange(other.TakeRange()), m_block(std::move(other.m_block)) {}
    CAnswer& operator=(CAnswer&& other) noexcept {
        static_cast<TRange&>(*this) = other.TakeRange();
        m_block = std::move(other.m_block);
        return *this;
    }

    CBytes const& Bytes() const { return m_block.Bytes(); }

  private:
    CAnswer(CBlock block, TRange const& range) : TRange(range), m_block(std::move(block)) {}

    TRange TakeRange() noexcept { return std::exchange(static_cast<TRange&>(*this), TRange()); }

    CBlock m_block;
};

using CAddresses = CAnswer<CTable<CAddress>>;
using CLines = CAnswer<CTable<CLine>>;
using CNames = CAnswer<CPacked<CNameEntry>>;
using CTowns = CAnswer<CPacked<CTownEntry>>;
using CTownsOldCodeFirst = CAnswer<CPacked<CTownOldCodeFirst>>;

// --- the caller's records ------------------------------------------------------------------------------------------

// The record that PstAdrCity takes.
//
//   off size  field      meaning
//     0    2  nSortType  2 dictionary order, 9 sorted; kept by the API for later calls
//     2    6  szOldCode  old code, used when szCode is empty
//     8    8  szCode     postal code or a leading part of one
struct tagCODERECORD {
    uint16_t nSortType;
    char szOldCode[6];
    char szCode[8];
};
static_assert(sizeof(tagCODERECORD) == 16 && offsetof(tagCODERECORD, szOldCode) == 2, "the caller's record");
static_assert(offsetof(tagCODERECORD, szCode) == 8, "a field moved");

// The record that PstAdrGetZip and PstAdrGetLatestAdr take. PstAdrRPrf reads the sort type and the address of one, to
// the address's NUL.
//
//   off size  field      meaning
//     0    2  nSortType  as above; PstAdrGetLatestAdr does not read it
//     2    6  szOldCode  out: old code; ends with its field or at a NUL
//     8   15  szCode     out: postal code, in the same way
//    23  122  szAddress  address; PstAdrGetLatestAdr writes the latest form back
//   145    ?  szOffice   organisation; runs on to the end of the record
struct tagADDRESSRECORD {
    uint16_t nSortType;
    char szOldCode[6];
    char szCode[15];
    char szAddress[122];
    char szOffice[1];
};
static_assert(offsetof(tagADDRESSRECORD, nSortType) == 0 && offsetof(tagADDRESSRECORD, szOldCode) == 2);
static_assert(offsetof(tagADDRESSRECORD, szCode) == 8 && offsetof(tagADDRESSRECORD, szAddress) == 23);
static_assert(offsetof(tagADDRESSRECORD, szOffice) == 145, "the caller's record");

// Bytes that an address field holds beside its NUL.
inline constexpr size_t ADDRESS_LENGTH = sizeof(tagADDRESSRECORD::szAddress) - 1;
static_assert(ADDRESS_LENGTH == 121);

// Such a record, with room for an organisation's name, or an address of PstAdrRPrf, of any length.
class CAddressRecord {
  public:
    // REQUIRES: no NUL in either text; beside an organisation, and for all but PstAdrRPrf, at most ADDRESS_LENGTH
    // bytes of address. (What is longer stays in the record, and is read as far as the field goes.)
    CAddressRecord(unsigned short nSortType, std::string_view strAddress, std::string_view strOffice = {})
        : m_vByte(std::max(offsetof(tagADDRESSRECORD, szOffice), ADDRESS_AT + strAddress.size()) + strOffice.size() +
                  1) {
        std::memcpy(m_vByte.data(), &nSortType, sizeof nSortType);
        strAddress.copy(&m_vByte[ADDRESS_AT], strAddress.size());
        if (strAddress.size() <= ADDRESS_LENGTH)
            strOffice.copy(&m_vByte[offsetof(tagADDRESSRECORD, szOffice)], strOffice.size());
    }

    void* Pointer() { return m_vByte.data(); }

    // The fields, each up to its NUL or its end.
    std::string OldCode() const {
        return Field(offsetof(tagADDRESSRECORD, szOldCode), sizeof(tagADDRESSRECORD::szOldCode));
    }
    std::string Code() const { return Field(offsetof(tagADDRESSRECORD, szCode), sizeof(tagADDRESSRECORD::szCode)); }
    std::string Address() const { return Field(ADDRESS_AT, sizeof(tagADDRESSRECORD::szAddress)); }
    std::string Office() const { return Field(offsetof(tagADDRESSRECORD, szOffice), m_vByte.size()); }

  private:
    static constexpr size_t ADDRESS_AT = offsetof(tagADDRESSRECORD, szAddress);

    std::string Field(size_t nOffset, size_t nSize) const { // up to its NUL, or its end
        return std::string(&m_vByte[nOffset], strnlen(&m_vByte[nOffset], std::min(nSize, m_vByte.size() - nOffset)));
    }

    std::vector<char> m_vByte;
};

// --- the API -------------------------------------------------------------------------------------------------------

struct CCodes {
    std::string strCode, strOldCode;
    std::string strOffice; // the name that was asked for, as it was looked up: without blanks and legal form
};

struct CLatest {
    std::string strAddress;          // cut after 60 bytes, where that may be within a character
    std::string strCode, strOldCode; // of the address as it was; "" when it has none
};

// The dictionary of the postal address API, open as long as the object lives. There is one for the process.
class CApi {
  public:
    static CResult<CApi> Open() {
        if (s_bOpen) return EError::AlreadyOpen;
        if (PstAdrOpen() != 0) return EError::NoDictionary;
        return CApi();
    }
    ~CApi() {
        if (!m_bOpen) return;
        PstAdrClose();
        s_bOpen = false;
    }
    CApi(CApi&& other) noexcept : m_bOpen(std::exchange(other.m_bOpen, false)), m_nSortType(other.m_nSortType) {}
    CApi& operator=(CApi&& other) noexcept {
        CApi taken(std::move(other)); // closes what was open here
        std::swap(m_bOpen, taken.m_bOpen);
        std::swap(m_nSortType, taken.m_nSortType);
        return *this;
    }

    // The order of the lists from now on: SORT_DICTIONARY, as at first, or SORT_ADDR.
    void SetSortType(unsigned short nType) {
        m_nSortType = nType;
        // Without a code the API takes the sort type and answers nothing.
        tagCODERECORD record = {nType, {}, {}};
        HGLOBAL hResult = nullptr;
        PstAdrCity(&record, &hResult);
    }

    // GetAdrFromZip: the addresses of a code, or of all codes that begin so; ASCII digits, hyphens do not matter.
    CResult<CAddresses> FromCode(std::string_view strCode) { return FromText(GetAdrFromZip, strCode); }
    // GetAdrFromAdd: every address that a part of one can stand for. "" stands for the whole dictionary.
    CResult<CAddresses> FromPart(std::string_view strText) { return FromText(GetAdrFromAdd, strText); }

    // PstAdrCity: prefecture and city of a code or its beginning (up to seven digits and no more), of an old code (up
    // to five); each as one text.
    CResult<CNames> CitiesOfCode(std::string_view strCode) { return CitiesOf(&tagCODERECORD::szCode, strCode); }
    CResult<CNames> CitiesOfOldCode(std::string_view strCode) { return CitiesOf(&tagCODERECORD::szOldCode, strCode); }

    // PstAdrGetZip: the codes of an address, or of an organisation at it. An address has room for ADDRESS_LENGTH bytes
    // here and below; CDictionary takes any.
    CResult<CCodes> CodeOf(std::string_view strAddress, std::string_view strOffice = {}) {
        if (std::optional<EError> error = LookAt(strAddress)) return *error;
        if (detail::HoldsNul(strOffice)) return EError::NoText;
        CAddressRecord record(m_nSortType, strAddress, strOffice);
        if (PstAdrGetZip(record.Pointer()) != 0) return EError::NotFound;
        return CCodes{record.Code(), record.OldCode(), record.Office()};
    }
    // PstAdrGetLatestAdr: the latest form of an address; not found when nothing of it is recognised.
    CResult<CLatest> Latest(std::string_view strAddress) {
        if (std::optional<EError> error = LookAt(strAddress)) return *error;
        CAddressRecord record(m_nSortType, strAddress);
        PstAdrGetLatestAdr(record.Pointer());
        if (record.Address().empty()) return EError::NotFound;
        return CLatest{record.Address(), record.Code(), record.OldCode()};
    }

    // PstAdrRPrf: the prefectures by their numbers, "" for one that the dictionary lacks; or those that a text can lie
    // in. Then, below a position of the answer before, each once: PstAdrRCity, and PstAdrRTown, PstAdrTown (the same
    // entries) or PstAdrRTownForUI. Nothing below is an empty range.
    CResult<CNames> Prefectures(std::string_view strText = {}) { return CNames::Of(PrefectureBlock(strText)); }
    CResult<CNames> Cities(unsigned short nPref) { return CNames::Of(Block(PstAdrRCity, nPref)); }
    CResult<CTowns> Towns(unsigned short nCity) { return CTowns::Of(Block(PstAdrRTown, nCity)); }
    CResult<CTownsOldCodeFirst> TownsOldCodeFirst(unsigned short nCity) {
        return CTownsOldCodeFirst::Of(Block(PstAdrTown, nCity));
    }
    CResult<CLines> Lines(unsigned short nCity) { return CLines::Of(Block(PstAdrRTownForUI, nCity)); }

    // The blocks themselves.
    using PFNBROWSE = uint32_t (*)(unsigned short, HGLOBAL*);
    CResult<CBlock> PrefectureBlock(std::string_view strText = {}) {
        if (detail::HoldsNul(strText)) return EError::NoText;
        CAddressRecord record(m_nSortType, strText);
        HGLOBAL hResult = nullptr;
        uint32_t const nStatus = PstAdrRPrf(record.Pointer(), &hResult);
        if (nStatus == PST_NO_PREFECTURE) return EError::NotFound;
        return TakeBlock(nStatus == 0, hResult);
    }
    CResult<CBlock> Block(PFNBROWSE pfn, unsigned short nNumber) {
        HGLOBAL hResult = nullptr;
        bool const bDone = pfn(nNumber, &hResult) == 0;
        if (!bDone && pfn == PstAdrRTown) return EError::NoMemory; // it has freed the block itself
        return TakeBlock(bDone, hResult);
    }

    // PstAdrGetComment: the organisation that the last FromCode met. REQUIRES: names of at most 127 bytes, as every
    // sound dictionary has them; a longer one ends the process.
    CResult<std::string> LastOffice() {
        char szOffice[COMMENT_SIZE] = {};
        int nKind = COMMENT_OFFICE;
        if (PstAdrGetComment(szOffice, &nKind) != 0) return EError::NotFound;
        return std::string(szOffice);
    }
    // PstAdrGetNum: always 1.
    int Number() { return PstAdrGetNum(); }

  private:
    static constexpr size_t COMMENT_SIZE = 128;
    static constexpr int COMMENT_OFFICE = 3;
    static inline bool s_bOpen = false;

    CApi() { s_bOpen = true; }

    static std::optional<EError> LookAt(std::string_view strAddress) {
        if (detail::HoldsNul(strAddress)) return EError::NoText;
        if (strAddress.size() > ADDRESS_LENGTH) return EError::TextTooLong;
        return std::nullopt;
    }

    // A block that an unsuccessful call has left is ours as well.
    static CResult<CBlock> TakeBlock(bool bDone, HGLOBAL hResult) {
        if (bDone) return CBlock::Take(hResult);
        if (hResult != nullptr) GlobalFree(hResult);
        return EError::NoMemory;
    }

    static CResult<CAddresses> FromText(int (*pfn)(char const*, HGLOBAL*), std::string_view strText) {
        if (detail::HoldsNul(strText)) return EError::NoText;
        HGLOBAL hResult = nullptr;
        bool const bDone = pfn(std::string(strText).c_str(), &hResult) == 0;
        // The API does not tell a lack of memory from "not found" before there is a block.
        if (!bDone && hResult == nullptr) return EError::NotFound;
        return CAddresses::Of(TakeBlock(bDone, hResult));
    }

    template <size_t N>
    CResult<CNames> CitiesOf(char (tagCODERECORD::*pField)[N], std::string_view strCode) {
        if (strCode.empty() || detail::HoldsNul(strCode)) return EError::NoText;
        if (strCode.size() >= N) return EError::TextTooLong;
        tagCODERECORD record = {m_nSortType, {}, {}};
        strCode.copy(record.*pField, N - 1);
        HGLOBAL hResult = nullptr;
        bool const bDone = PstAdrCity(&record, &hResult) == 0;
        return CNames::Of(TakeBlock(bDone, hResult));
    }

    bool m_bOpen = true;
    unsigned short m_nSortType = SORT_DICTIONARY;
};

} // namespace qeadrs

#endif
