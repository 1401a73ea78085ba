#include "fuzz/ApiCalls.h"

#include "api/Pstexec.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr size_t MOST_CALLS = 64; // of one input; an address list can be as long as the dictionary

// A block, read byte by byte, and freed.
class CBlock {
  public:
    explicit CBlock(HGLOBAL h) : m_h(h), m_nSize(GlobalSize(h)), m_p(static_cast<unsigned char*>(GlobalLock(h))) {
        if (m_p == nullptr) BreakPromise("the handle of an answer is a block");
        for (size_t n = 0; n < m_nSize; ++n) {
            unsigned char const volatile c = m_p[n];
            (void)c;
        }
    }
    ~CBlock() {
        Require(GlobalUnlock(m_h) == 0, "an answer was unlocked");
        Require(GlobalFree(m_h) == nullptr, "an answer can be freed");
    }
    CBlock(CBlock const&) = delete;
    CBlock& operator=(CBlock const&) = delete;

    size_t Size() const { return m_nSize; }
    size_t Byte(size_t n) const {
        Require(n < m_nSize, "a block is as long as it says");
        return m_p[n];
    }
    size_t Short(size_t n) const { return Byte(n) | Byte(n + 1) << 8; }
    size_t Long(size_t n) const { return Short(n) | Short(n + 2) << 16; }

  private:
    HGLOBAL m_h;
    size_t m_nSize;
    unsigned char* m_p;
};

// Names (or towns: three texts and a 0), each with its length in front, to the very end of the block. No name of these
// dictionaries is as long as 256 bytes.
void ReadPacked(HGLOBAL h, size_t nTexts, bool bClosed) {
    CBlock const block(h);
    size_t nPos = 2;
    for (size_t n = block.Short(0); n > 0; --n) {
        for (size_t nText = 0; nText < nTexts; ++nText) nPos += 1 + block.Byte(nPos);
        if (bClosed) Require(block.Byte(nPos++) == 0, "a town is closed by a zero");
    }
    Require(nPos == block.Size(), "a packed block ends with its last text");
}

// The offset table: entries up to the pool, each slot leads to a text in the pool.
void ReadTable(HGLOBAL h) {
    CBlock const block(h);
    Require(block.Long(4) == 12 && block.Short(2) == 0, "entries begin at 12");
    size_t const nPool = block.Long(8), nEntries = (nPool - 12) / 28;
    Require(nPool >= 12 && (nPool - 12) % 28 == 0 && nPool <= block.Size(), "the pool stands behind the entries");
    Require(nEntries % 65536 == block.Short(0), "the count is that of the entries");
    for (size_t nEntry = 12; nEntry < nPool; nEntry += 4) {
        size_t nText = nPool + block.Long(nEntry);
        while (block.Byte(nText) != 0) ++nText;
    }
}

HGLOBAL const NO_HANDLE = reinterpret_cast<HGLOBAL>(uintptr_t{0x5A5A5A5A});

template <typename FCall, typename FRead>
void Ask(FCall const& call, FRead const& read) {
    HGLOBAL h = NO_HANDLE;
    if (call(&h) == 0)
        read(h);
    else
        Require(h == NO_HANDLE, "without an answer the handle stays");
}

void PutField(std::vector<unsigned char>& vRecord, size_t nOffset, size_t nSize, std::string const& str) {
    size_t const nLength = std::min(str.size() + 1, nSize);
    std::memcpy(&vRecord[nOffset], str.c_str(), nLength);
}

std::vector<unsigned char> Record(size_t nSize, uint32_t nSort) {
    std::vector<unsigned char> vRecord(nSize);
    vRecord[0] = static_cast<unsigned char>(nSort);
    vRecord[1] = static_cast<unsigned char>(nSort >> 8);
    return vRecord;
}

class CHost {
  public:
    void Call(CLineInput& input) {
        auto const Packed = [](HGLOBAL h) { ReadPacked(h, 1, false); };
        auto const Towns = [](HGLOBAL h) { ReadPacked(h, 3, true); };
        auto const nNumber = [&] { return static_cast<unsigned short>(input.Number()); };
        switch (input.Command()) {
        case 'z': {
            char const* const pszCode = m_text.PutText(input.Rest());
            return Ask([&](HGLOBAL* ph) { return GetAdrFromZip(pszCode, ph); }, ReadTable);
        }
        case 'a': {
            char const* const pszText = m_text.PutText(input.Rest());
            return Ask([&](HGLOBAL* ph) { return GetAdrFromAdd(pszText, ph); }, ReadTable);
        }
        case 'c': {
            auto vRecord = Record(16, input.Number());
            input.Field();
            PutField(vRecord, 2, 6, input.Field());
            PutField(vRecord, 8, 8, input.Rest());
            return Ask([&](HGLOBAL* ph) { return PstAdrCity(m_record.Put(vRecord.data(), vRecord.size()), ph); },
                       Packed);
        }
        case 'g':
            return GetZip(input);
        case 'l':
            return GetLatest(input.Rest());
        case 'p': {
            auto vRecord = Record(23, input.Number());
            input.Field();
            std::string const strText = input.Rest();
            vRecord.insert(vRecord.end(), strText.c_str(), strText.c_str() + strText.size() + 1);
            vRecord.resize(std::min<size_t>(vRecord.size(), 60000));
            vRecord.back() = 0;
            return Ask([&](HGLOBAL* ph) { return PstAdrRPrf(m_record.Put(vRecord.data(), vRecord.size()), ph); },
                       Packed);
        }
        case 'r':
            return Ask([n = nNumber()](HGLOBAL* ph) { return PstAdrRCity(n, ph); }, Packed);
        case 't':
            return Ask([n = nNumber()](HGLOBAL* ph) { return PstAdrTown(n, ph); }, Towns);
        case 'T':
            return Ask([n = nNumber()](HGLOBAL* ph) { return PstAdrRTown(n, ph); }, Towns);
        case 'u':
            return Ask([n = nNumber()](HGLOBAL* ph) { return PstAdrRTownForUI(n, ph); }, ReadTable);
        case 'k':
            return GetComment(static_cast<int>(input.Number()));
        case 'n':
            return Require(PstAdrGetNum() == 1, "the count is 1");
        case 'o':
            Require(PstAdrClose() == 0, "a close succeeds");
            return Require(PstAdrOpen() == 0, "the dictionary opens again");
        default:
            return;
        }
    }

  private:
    void GetZip(CLineInput& input) {
        auto vRecord = Record(145, input.Number());
        input.Field();
        PutField(vRecord, 23, 122, input.Field());
        std::string const strOffice = input.Rest();
        vRecord.insert(vRecord.end(), strOffice.c_str(), strOffice.c_str() + strOffice.size() + 1);
        vRecord.resize(std::min<size_t>(vRecord.size(), 60000));
        vRecord.back() = 0;
        unsigned char const* const p = m_record.Put(vRecord.data(), vRecord.size());
        bool const bFound = PstAdrGetZip(m_record.Put(vRecord.data(), vRecord.size())) == 0;
        Require(bFound == (p[8] != 0), "a code is written when one was found");
        Require(std::memcmp(p + 23, &vRecord[23], 122) == 0, "the address is left alone");
    }

    void GetLatest(std::string const& strAddress) {
        auto vRecord = Record(145, 0);
        PutField(vRecord, 23, 122, strAddress);
        unsigned char* const p = m_record.Put(vRecord.data(), vRecord.size());
        Require(PstAdrGetLatestAdr(p) == 0, "a latest address is always told");
        Require(std::memchr(p + 2, 0, 6) != nullptr && std::memchr(p + 8, 0, 15) != nullptr, "the codes end in NUL");
        Require(std::memchr(p + 23, 0, 61) != nullptr, "the address has at most 60 bytes");
    }

    void GetComment(int nKind) {
        char* const psz = reinterpret_cast<char*>(m_record.Fill(0x5A, 128));
        short const nStatus = PstAdrGetComment(psz, &nKind);
        Require(nStatus == 1 || nKind == 3, "only kind 3 has a comment");
        Require((std::memchr(psz, 0, 128) != nullptr) == (nStatus == 0), "a comment ends in NUL");
    }

    CGuardedRecord m_text, m_record;
};

} // namespace

void CallApi(CLineInput input) {
    static CHost host;
    for (size_t n = 0; n < MOST_CALLS && input.Next(); ++n) host.Call(input);
}
