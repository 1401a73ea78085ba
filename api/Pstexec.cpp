// Pstexec.cpp - the postal address API: where the dictionary is, opening and closing it, answers packed into blocks.
#include "api/Pstexec.h"

#include "api/PstexecState.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <exception>
#include <initializer_list>
#include <limits>
#include <string>
#include <vector>

CAddrDic dic;
int hDicFile = 0;
long nDicSize = 0;

// Declared here because <assert.h> hides it in a build without assertions, and this one is needed there too.
extern "C" [[noreturn]] void __assert_fail(char const*, char const*, unsigned, char const*) noexcept;

namespace {

constexpr char PROFILE_LIBRARY[] = "libqeprof.so";
constexpr char PROFILE_FUNCTION[] = "QeGetProfileString";
constexpr char DIC_FILE[] = "/qeadrs.dic";
constexpr size_t PATH_SIZE = 260;

using PFNPROFILE = int (*)(char const*, char const*, char const*, char*, int);

// The path of the dictionary file into szPath. False when the profile cannot be asked or the path does not fit.
bool FindDictionary(char (&szPath)[PATH_SIZE]) {
    HMODULE const hProfile = LoadLibrary(PROFILE_LIBRARY);
    if (hProfile == nullptr) return false;
    auto const pfnProfile = reinterpret_cast<PFNPROFILE>(GetProcAddress(hProfile, PROFILE_FUNCTION));
    // The module stays loaded here: a library of this name that lacks the function is the host's own, not ours to
    // drop.
    if (pfnProfile == nullptr) return false;
    std::memset(szPath, 0, sizeof szPath);
    pfnProfile("General", "DicDir", "", szPath, static_cast<int>(sizeof szPath));
    FreeLibrary(hProfile);
    size_t const nLength = strnlen(szPath, sizeof szPath);
    if (nLength > sizeof szPath - sizeof DIC_FILE) return false;
    std::memcpy(szPath + nLength, DIC_FILE, sizeof DIC_FILE);
    return true;
}

size_t TextLength(char const* psz) {
    return psz == nullptr || *psz == '\0' ? 0 : std::strlen(psz);
}

bool AreEqual(char const* psz, char const* pszOther) {
    return psz != nullptr && pszOther != nullptr && std::strcmp(psz, pszOther) == 0;
}

// A locked block, written front to back. Without memory for it nothing is written.
class CBlock {
  public:
    // Allocates and locks nSize zero bytes; stores the handle in *phResult whether or not it could be locked. The
    // texts of a damaged dictionary, which many nodes share, may add up to more than a 32-bit process can count.
    CBlock(uint64_t nSize, HGLOBAL* phResult)
        : m_hMem(*phResult = nSize > SIZE_MAX ? nullptr : GlobalAlloc(GHND, static_cast<SIZE_T>(nSize))),
          m_pStart(m_hMem == nullptr ? nullptr : static_cast<unsigned char*>(GlobalLock(m_hMem))),
          m_pNext(m_pStart) {}
    ~CBlock() {
        if (m_pStart != nullptr) GlobalUnlock(m_hMem);
    }
    CBlock(CBlock const&) = delete;
    CBlock& operator=(CBlock const&) = delete;

    bool IsLocked() const { return m_pStart != nullptr; }
    void PutByte(size_t n) { *m_pNext++ = static_cast<unsigned char>(n); }
    void PutShort(size_t n) { PutInteger(static_cast<uint16_t>(n)); }
    void PutLong(size_t n) { PutInteger(static_cast<uint32_t>(n)); }
    void PutText(char const* psz, size_t nLength) {
        if (nLength != 0) std::memcpy(m_pNext, psz, nLength);
        m_pNext += nLength;
    }
    // One byte with the length, by design: that of a longer text wraps, the text stays whole.
    void PutPrefixed(char const* psz) {
        size_t const nLength = TextLength(psz);
        PutByte(nLength % 256);
        PutText(psz, nLength);
    }
    unsigned char* Next() const { return m_pNext; }

  private:
    template <typename T>
    void PutInteger(T n) {
        std::memcpy(m_pNext, &n, sizeof n);
        m_pNext += sizeof n;
    }

    HGLOBAL m_hMem;
    unsigned char* m_pStart;
    unsigned char* m_pNext;
};

// A NUL-terminated text field of N bytes in a caller's record, with a NUL of our own behind it.
template <size_t N>
std::array<char, N + 1> TextField(unsigned char const* p) {
    std::array<char, N + 1> szText{};
    std::memcpy(szText.data(), p, N);
    return szText;
}

// The fields of the caller's address record.
constexpr size_t RECORD_OLD_CODE = 2;
constexpr size_t RECORD_CODE = 8;
constexpr size_t RECORD_ADDRESS = 23;
constexpr size_t RECORD_OFFICE = 145;
constexpr size_t OLD_CODE_SIZE = RECORD_CODE - RECORD_OLD_CODE;
constexpr size_t CODE_SIZE = RECORD_ADDRESS - RECORD_CODE;
constexpr size_t ADDRESS_SIZE = RECORD_OFFICE - RECORD_ADDRESS;
constexpr size_t LATEST_LENGTH = 60; // bytes of the joined address

// Copies a text without its NUL into a field of nSize bytes, as much as fits.
void PutField(unsigned char* pField, size_t nSize, char const* psz) {
    std::memcpy(pField, psz == nullptr ? "" : psz, std::min(TextLength(psz), nSize));
}

// The same with a NUL behind it.
void PutTextField(unsigned char* pField, size_t nSize, char const* psz) {
    PutField(pField, nSize - 1, psz);
    pField[std::min(TextLength(psz), nSize - 1)] = '\0';
}

// The texts of one address: first their order in the pool, then the place of each in its entry.
struct CZipText {
    char const* tagADDR::*pszText;
    size_t nSlot;
};
constexpr size_t ZIP_TEXTS = 7;
constexpr CZipText ZIP_POOL[ZIP_TEXTS] = {
    {&tagADDR::pszCodeExt, 1}, {&tagADDR::pszPostCode, 0}, {&tagADDR::pszPref, 2},   {&tagADDR::pszCity, 3},
    {&tagADDR::pszTown, 4},    {&tagADDR::pszArea, 5},     {&tagADDR::pszOffice, 6},
};
constexpr size_t ZIP_HEADER = 12;
constexpr size_t ZIP_ENTRY = 4 * ZIP_TEXTS;

// The block of a table of addresses: header, entries, and a pool of texts that the entries lead to. Its texts are put one
// behind the other.
class CTable {
  public:
    // nTexts is the size of the pool.
    CTable(size_t nEntries, uint64_t nTexts, HGLOBAL* phResult)
        : m_block(ZIP_HEADER + ZIP_ENTRY * nEntries + nTexts, phResult) {
        if (!m_block.IsLocked()) return;
        m_block.PutShort(nEntries);
        m_block.PutShort(0);
        m_block.PutLong(ZIP_HEADER);
        m_block.PutLong(ZIP_HEADER + ZIP_ENTRY * nEntries);
        m_pEntry = m_block.Next();
        m_pPool = m_pText = m_pEntry + ZIP_ENTRY * nEntries;
    }

    bool IsLocked() const { return m_block.IsLocked(); }

    // Stores the place of the text that is put next into a slot of the entry.
    void Begin(size_t nSlot) {
        auto const nPlace = static_cast<uint32_t>(m_pText - m_pPool);
        std::memcpy(m_pEntry + 4 * nSlot, &nPlace, sizeof nPlace);
    }
    void PutText(char const* psz, size_t nLength) {
        if (nLength != 0) std::memcpy(m_pText, psz, nLength);
        m_pText += nLength;
    }
    void PutByte(char c) { *m_pText++ = static_cast<unsigned char>(c); }

    // A whole text with its NUL.
    void Put(size_t nSlot, char const* psz, size_t nLength) {
        Begin(nSlot);
        PutText(psz, nLength);
        PutByte('\0');
    }
    void Put(size_t nSlot, char const* psz) { Put(nSlot, psz, TextLength(psz)); }
    void NextEntry() { m_pEntry += ZIP_ENTRY; }

  private:
    CBlock m_block;
    unsigned char* m_pEntry = nullptr;
    unsigned char* m_pPool = nullptr;
    unsigned char* m_pText = nullptr; // where the next text goes
};

// The lengths of texts that are measured twice, for the size of their block and to fill it: those of the first texts,
// all of most answers, are kept.
struct CLengths {
    static constexpr size_t KEPT = 16 * ZIP_TEXTS;
    size_t vLength[KEPT];

    size_t Measure(size_t nText, char const* psz) {
        size_t const nLength = TextLength(psz);
        if (nText < KEPT) vLength[nText] = nLength;
        return nLength;
    }
    size_t Of(size_t nText, char const* psz) const { return nText < KEPT ? vLength[nText] : TextLength(psz); }
};

int PackAddresses(std::vector<tagADDR> const& vAddr, HGLOBAL* phResult) {
    CLengths lengths;
    uint64_t nTexts = 0;
    size_t nText = 0;
    for (tagADDR const& addr : vAddr)
        for (CZipText const& text : ZIP_POOL) nTexts += lengths.Measure(nText++, addr.*text.pszText) + 1;
    CTable table(vAddr.size(), nTexts, phResult);
    if (!table.IsLocked()) return 1;
    nText = 0;
    for (tagADDR const& addr : vAddr) {
        for (CZipText const& text : ZIP_POOL) {
            char const* const psz = addr.*text.pszText;
            table.Put(text.nSlot, psz, lengths.Of(nText++, psz));
        }
        table.NextEntry();
    }
    return 0;
}

// The sort type at the front of a caller's record, for this call and all later ones.
void TakeSortType(unsigned char const* pRecord) {
    uint16_t nSortType;
    std::memcpy(&nSortType, pRecord, sizeof nSortType);
    dic.SetSortType(nSortType);
}

// Removes every address whose prefecture and city are those of the one kept before it.
void RemoveRepeatedCities(std::vector<tagADDR>& vAddr) {
    size_t nKept = 0;
    for (tagADDR const& addr : vAddr) {
        if (nKept > 0 && AreEqual(addr.pszPref, vAddr[nKept - 1].pszPref) &&
            AreEqual(addr.pszCity, vAddr[nKept - 1].pszCity))
            continue;
        vAddr[nKept++] = addr;
    }
    vAddr.erase(vAddr.begin() + static_cast<std::ptrdiff_t>(nKept), vAddr.end());
}

short PackCities(std::vector<tagADDR> const& vAddr, HGLOBAL* phResult) {
    uint64_t nSize = 2;
    for (tagADDR const& addr : vAddr) nSize += 1 + TextLength(addr.pszPref) + TextLength(addr.pszCity);
    CBlock block(nSize, phResult);
    if (!block.IsLocked()) return 1;
    block.PutShort(vAddr.size());
    for (tagADDR const& addr : vAddr) {
        size_t const nPref = TextLength(addr.pszPref);
        size_t const nCity = TextLength(addr.pszCity);
        block.PutByte((nPref + nCity) % 256); // one byte by design: a longer pair wraps, its texts stay whole
        block.PutText(addr.pszPref, nPref);
        block.PutText(addr.pszCity, nCity);
    }
    return 0;
}

// A field of the record that a block holds.
using PTEXT = char const* tagADDR::*;

uint64_t TotalLength(std::vector<tagADDR> const& vAddr, std::initializer_list<PTEXT> vText) {
    uint64_t nLength = 0;
    for (tagADDR const& addr : vAddr)
        for (PTEXT const pText : vText) nLength += TextLength(addr.*pText);
    return nLength;
}

// One name of each address, with its length in front.
uint32_t PackNames(std::vector<tagADDR> const& vAddr, PTEXT pName, HGLOBAL* phResult) {
    CBlock block(2 + vAddr.size() + TotalLength(vAddr, {pName}), phResult);
    if (!block.IsLocked()) return 1;
    block.PutShort(vAddr.size());
    for (tagADDR const& addr : vAddr) block.PutPrefixed(addr.*pName);
    return 0;
}

// The town and two codes of each town of a city, each with its length in front, and a closing zero.
uint32_t ListTowns(unsigned short nCity, PTEXT pFirstCode, PTEXT pSecondCode, HGLOBAL* phResult) {
    std::vector<tagADDR> vAddr;
    dic.GetTownFromNo(nCity, vAddr);
    std::initializer_list<PTEXT> const vText = {&tagADDR::pszTown, pFirstCode, pSecondCode};
    CBlock block(2 + 4 * uint64_t{vAddr.size()} + TotalLength(vAddr, vText), phResult);
    if (!block.IsLocked()) return 1;
    block.PutShort(vAddr.size());
    for (tagADDR const& addr : vAddr) {
        for (PTEXT const pText : vText) block.PutPrefixed(addr.*pText);
        block.PutByte(0);
    }
    return 0;
}

constexpr size_t SLOT_CODE = 0, SLOT_OLD_CODE = 1, SLOT_LINE = 4, SLOT_OFFICE = 6;

// Town, building and floor as one line: a level counts only behind the one before it.
void PutLine(CTable& table, tagADDR const& addr) {
    table.Begin(SLOT_LINE);
    if (addr.pszTown != nullptr) {
        table.PutText(addr.pszTown, TextLength(addr.pszTown));
        for (char const* psz : {addr.pszBlock, addr.pszNote}) {
            if (psz == nullptr) break;
            table.PutByte(' ');
            table.PutText(psz, TextLength(psz));
        }
    }
    table.PutByte('\0');
}

// The bytes of an entry's four NULs, of the two blanks in its line, and one more.
constexpr uint64_t LINE_OVERHEAD = 7;

// The table of addresses as lines. Its size counts the area too, which is not written: it is known to be larger than
// its content.
uint32_t PackLines(std::vector<tagADDR> const& vAddr, HGLOBAL* phResult) {
    uint64_t const nTexts =
        TotalLength(vAddr, {&tagADDR::pszCodeExt, &tagADDR::pszPostCode, &tagADDR::pszTown, &tagADDR::pszArea,
                            &tagADDR::pszBlock, &tagADDR::pszNote, &tagADDR::pszOffice});
    CTable table(vAddr.size(), LINE_OVERHEAD * vAddr.size() + nTexts, phResult);
    if (!table.IsLocked()) return 1;
    for (tagADDR const& addr : vAddr) {
        table.Put(SLOT_OLD_CODE, addr.pszCodeExt);
        table.Put(SLOT_CODE, addr.pszPostCode);
        PutLine(table, addr);
        table.Put(SLOT_OFFICE, addr.pszOffice);
        table.NextEntry();
    }
    return 0;
}

} // namespace

extern "C" {

short PstAdrOpen() {
    char szPath[PATH_SIZE];
    if (!FindDictionary(szPath)) return 1;
    hDicFile = open(szPath, O_RDONLY);
    struct stat status = {}; // a failed stat leaves size 0, which cannot be mapped
    stat(szPath, &status);
    // A file that this process cannot address is as good as none.
    auto const nSize = static_cast<size_t>(status.st_size <= std::numeric_limits<long>::max() ? status.st_size : 0);
    void* const pMapping = mmap(nullptr, nSize, PROT_READ, MAP_SHARED, hDicFile, 0);
    if (pMapping == MAP_FAILED) {
        close(hDicFile);
        return 1;
    }
    nDicSize = static_cast<long>(nSize); // only now: until here it belongs to the mapping that `dic` may still hold
    dic.SetDictionary(static_cast<unsigned char const*>(pMapping));
    return 0;
}

short PstAdrClose() {
    munmap(const_cast<unsigned char*>(dic.GetDicPointer()), static_cast<size_t>(nDicSize));
    nDicSize = 0; // a second close must not unmap what somebody else has mapped there since
    close(hDicFile);
    hDicFile = -1;
    return 0;
}

short PstAdrGetComment(CHAR* pszBuffer, int* pnKind) {
    constexpr char FILE_NAME[] = "../Pstexec";
    constexpr char FUNCTION[] = "short int PstAdrGetComment(CHAR*, int*)";
    constexpr int KIND_OFFICE = 3;
    constexpr size_t COMMENT_LENGTH = 127;
    // Part of the interface, whatever the build: hosts know these two by their file and line.
    if (pnKind == nullptr) __assert_fail("0", FILE_NAME, 240, FUNCTION);
    if (*pnKind != KIND_OFFICE) return 1;
    char const* const pszOffice = dic.GetLastInc();
    if (pszOffice == nullptr) return 1;
    size_t const nLength = std::strlen(pszOffice);
    if (nLength > COMMENT_LENGTH) __assert_fail("0", FILE_NAME, 250, FUNCTION);
    if (pszBuffer == nullptr) return 1;
    std::memcpy(pszBuffer, pszOffice, nLength);
    pszBuffer[nLength] = '\0';
    return 0;
}

int GetAdrFromZip(char const* pszCode, HGLOBAL* phResult) try {
    if (pszCode == nullptr || *pszCode == '\0' || phResult == nullptr) return 1;
    std::vector<tagADDR> vAddr;
    dic.GetAddrFromPostCode7(pszCode, vAddr);
    return vAddr.empty() ? 1 : PackAddresses(vAddr, phResult);
} catch (std::exception const&) {
    return 1;
}

short PstAdrCity(void* pRecord, HGLOBAL* phResult) try {
    if (pRecord == nullptr || phResult == nullptr) return 1;
    auto const* const p = static_cast<unsigned char const*>(pRecord);
    auto const szOldCode = TextField<OLD_CODE_SIZE>(p + RECORD_OLD_CODE);
    auto const szCode = TextField<8>(p + RECORD_CODE); // its record ends here: seven digits and the NUL
    TakeSortType(p);
    std::vector<tagADDR> vAddr;
    if (szCode[0] != '\0')
        dic.GetAddrFromPostCode7(szCode.data(), vAddr);
    else if (szOldCode[0] == '\0')
        return 1;
    else
        dic.GetAddrFromPostCode5(szOldCode.data(), vAddr);
    RemoveRepeatedCities(vAddr);
    return PackCities(vAddr, phResult);
} catch (std::exception const&) {
    return 1;
}

short PstAdrGetZip(void* pRecord) {
    if (pRecord == nullptr) return 1;
    auto* const p = static_cast<unsigned char*>(pRecord);
    TakeSortType(p);
    auto const szAddress = TextField<ADDRESS_SIZE>(p + RECORD_ADDRESS);
    tagADDR addr(0);
    dic.GetPostCodeFromAddr(szAddress.data(), reinterpret_cast<char*>(p + RECORD_OFFICE), addr);
    if (addr.pszPostCode == nullptr) return 1;
    PutField(p + RECORD_OLD_CODE, OLD_CODE_SIZE, addr.pszCodeExt);
    PutField(p + RECORD_CODE, CODE_SIZE, addr.pszPostCode);
    return 0;
}

short PstAdrGetLatestAdr(void* pRecord) {
    if (pRecord == nullptr) return 0;
    auto* const p = static_cast<unsigned char*>(pRecord);
    auto const szAddress = TextField<ADDRESS_SIZE>(p + RECORD_ADDRESS);
    tagADDR addr(0);
    dic.GetLatestAddr(szAddress.data(), addr);
    char szLatest[LATEST_LENGTH + 1] = "";
    size_t nLength = 0;
    for (char const* psz : {addr.pszPref, addr.pszCity, addr.pszTown, addr.pszArea}) {
        size_t const nPart = std::min(TextLength(psz), LATEST_LENGTH - nLength);
        if (nPart != 0) std::memcpy(szLatest + nLength, psz, nPart);
        nLength += nPart;
    }
    PutTextField(p + RECORD_ADDRESS, ADDRESS_SIZE, szLatest);
    PutTextField(p + RECORD_OLD_CODE, OLD_CODE_SIZE, addr.pszCodeExt);
    PutTextField(p + RECORD_CODE, CODE_SIZE, addr.pszPostCode);
    return 0;
}

int GetAdrFromAdd(char const* pszText, HGLOBAL* phResult) try {
    if (pszText == nullptr || phResult == nullptr) return 1;
    std::vector<tagADDR> vAddr;
    dic.GetAddrFromAddrPart(pszText, vAddr);
    return vAddr.empty() ? 1 : PackAddresses(vAddr, phResult);
} catch (std::exception const&) {
    return 1;
}

uint32_t PstAdrRPrf(void* pRecord, HGLOBAL* phResult) try {
    if (pRecord == nullptr || phResult == nullptr) return 1;
    auto const* const p = static_cast<unsigned char const*>(pRecord);
    TakeSortType(p);
    auto const* const pszText = reinterpret_cast<char const*>(p + RECORD_ADDRESS);
    std::vector<tagADDR> vAddr;
    if (*pszText != '\0')
        dic.GetPrefFromCity(pszText, vAddr);
    else
        dic.GetPref(vAddr);
    return vAddr.empty() ? PST_NO_PREFECTURE : PackNames(vAddr, &tagADDR::pszPref, phResult);
} catch (std::exception const&) {
    return 1;
}

uint32_t PstAdrRCity(unsigned short nPref, HGLOBAL* phResult) try {
    if (phResult == nullptr) return 1;
    std::vector<tagADDR> vAddr;
    dic.GetCityFromNo(nPref, vAddr);
    return PackNames(vAddr, &tagADDR::pszCity, phResult);
} catch (std::exception const&) {
    return 1;
}

uint32_t PstAdrTown(unsigned short nCity, HGLOBAL* phResult) try {
    if (phResult == nullptr) return 1;
    return ListTowns(nCity, &tagADDR::pszCodeExt, &tagADDR::pszPostCode, phResult);
} catch (std::exception const&) {
    return 1;
}

uint32_t PstAdrRTown(unsigned short nCity, HGLOBAL* phResult) try {
    if (phResult == nullptr) return 1;
    uint32_t const nStatus = ListTowns(nCity, &tagADDR::pszPostCode, &tagADDR::pszCodeExt, phResult);
    if (nStatus != 0) GlobalFree(*phResult); // unlike the others: its callers do not free a block they never saw
    return nStatus;
} catch (std::exception const&) {
    return 1;
}

uint32_t PstAdrRTownForUI(unsigned short nCity, HGLOBAL* phResult) try {
    if (phResult == nullptr) return 1;
    std::vector<tagADDR> vAddr;
    dic.GetTownExFromNo(nCity, vAddr);
    return PackLines(vAddr, phResult);
} catch (std::exception const&) {
    return 1;
}

} // extern "C"

short PstAdrGetNum() {
    return 1;
}
