#include "fuzz/LegacyCalls.h"

#include "api/ga_legacy.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

constexpr size_t MOST_CALLS = 128; // of one input

template <typename RECORD>
class CCallersRecord {
  public:
    // All bytes the same.
    RECORD& New(unsigned char cFill) {
        m_p = m_record.Fill(cFill, sizeof(RECORD));
        m_vBefore.assign(m_p, m_p + sizeof(RECORD));
        return *reinterpret_cast<RECORD*>(m_p);
    }
    // As the last call left it.
    RECORD& Again(unsigned char cFill) {
        if (m_p == nullptr) return New(cFill);
        m_vBefore.assign(m_p, m_p + sizeof(RECORD));
        return *reinterpret_cast<RECORD*>(m_p);
    }
    // Bytes at an offset, as far as they lie in the record.
    void Put(size_t nOffset, std::string const& strBytes) {
        nOffset %= sizeof(RECORD);
        std::memcpy(m_p + nOffset, strBytes.data(), std::min(strBytes.size(), sizeof(RECORD) - nOffset));
    }
    // As the caller has filled it in.
    void Keep() { m_vBefore.assign(m_p, m_p + sizeof(RECORD)); }

    bool IsUntouched(size_t nOffset, size_t nSize) const {
        return std::memcmp(m_p + nOffset, &m_vBefore[nOffset], nSize) == 0;
    }

  private:
    CGuardedRecord m_record{sizeof(RECORD)};
    unsigned char* m_p = nullptr;
    std::vector<unsigned char> m_vBefore;
};

template <size_t N>
void PutText(char (&szField)[N], std::string const& str) {
    std::memcpy(szField, str.c_str(), std::min(str.size() + 1, N));
}

class CHost {
  public:
    void Open(std::string const& strPath) {
        // The interface leaves the earlier mapping and its descriptor to the host; this host would run out of both.
        void const* const pMapping = m_bOpen ? ga_legacy::dic.GetDicPointer() : nullptr;
        size_t const nSize = m_nSize;
        int const hFile = m_hFile;
        Require(GA_adr_exec(GA_OPEN, 0, nullptr, m_text.PutText(strPath), nullptr) == 0, "the file can be opened");
        if (pMapping != nullptr) {
            munmap(const_cast<void*>(pMapping), nSize);
            close(hFile);
        }
        m_bOpen = true;
        m_nSize = ga_legacy::size;
        m_hFile = ga_legacy::hDicFile;
    }

    void Close() {
        Require(GA_adr_exec(GA_CLOSE, 0, nullptr, nullptr, nullptr) == 0, "a close succeeds");
        m_bOpen = false;
    }

    void Call(CLineInput& input, std::string const& strPath) {
        switch (input.Command()) {
        case 'f':
            m_cFill = static_cast<unsigned char>(input.Number());
            m_vBytes.clear();
            return;
        case 'b': {
            size_t const nOffset = input.Number();
            input.Field();
            m_vBytes.emplace_back(nOffset, input.Rest());
            return;
        }
        case 's':
            return Search(input);
        case 'g':
            return Get(input, m_field.New(m_cFill));
        case 'G':
            return Get(input, m_field.Again(m_cFill));
        case 'o':
            return Open(strPath);
        case 'O':
            return Require(GA_adr_exec(GA_OPEN, 0, nullptr, "/nowhere/qeadrs.dic", nullptr) == 1,
                           "a file that is not there cannot be opened");
        case 'c':
            return Close();
        case 'x': {
            auto const nCommand = static_cast<unsigned short>(input.Number());
            if (nCommand < GA_OPEN || nCommand > GA_GET)
                Require(GA_adr_exec(nCommand, 0, nullptr, nullptr, nullptr) == (nCommand == GA_NOTHING ? 0 : 1),
                        "an unknown command fails");
            return;
        }
        case 'n':
            GA_SetSearchOldName(static_cast<int>(input.Number()));
            return Require(GA_GetSearchOldName() == 1, "old names are always searched for");
        default:
            return;
        }
    }

  private:
    void Search(CLineInput& input) {
        if (!m_bOpen) return;
        GA_ADRSRT& request = m_request.New(m_cFill);
        request.nPref = static_cast<int16_t>(input.Number());
        request.nCity = static_cast<int16_t>(input.Number());
        request.nTown = static_cast<int16_t>(input.Number());
        input.Field();
        PutText(request.szShortCode, input.Field());
        PutText(request.szCode, input.Field());
        PutText(request.szAddr, input.Rest());
        for (auto const& [nOffset, strBytes] : m_vBytes) m_request.Put(nOffset, strBytes);
        m_request.Keep();
        GA_ADRNUM& counts = m_counts.New(m_cFill);
        Require(GA_adr_exec(GA_SEARCH, 0, &request, nullptr, &counts) == 0, "a search succeeds");
        Require(counts.nMinus6 == -1 && counts.nMinus8 == -1, "two fields are -1");
        Require(m_request.IsUntouched(0, 1014) && m_counts.IsUntouched(10, 518), "nothing else is written");
    }

    void Get(CLineInput& input, GA_ADRFLD& field) {
        if (!m_bOpen) return;
        auto const nKind = static_cast<short>(input.Number());
        field.nPosition = static_cast<int16_t>(input.Number());
        for (auto const& [nOffset, strBytes] : m_vBytes) m_field.Put(nOffset, strBytes);
        m_field.Keep();
        Require(GA_adr_exec(GA_GET, nKind, nullptr, nullptr, &field) == 0, "an entry is always told");
        struct CGap {
            size_t nOffset, nSize;
        };
        for (CGap const gap : {CGap{0, 4}, {64, 62}, {254, 123}, {379, 2}, {382, 4}, {392, 1}, {400, 9}})
            Require(m_field.IsUntouched(gap.nOffset, gap.nSize), "what is between the fields is left alone");
        if (nKind == GA_PREF || nKind == GA_CITY)
            Require(m_field.IsUntouched(126, 251) && m_field.IsUntouched(381, 30),
                    "the fields of a town are its own");
    }

    bool m_bOpen = false;
    size_t m_nSize = 0;
    int m_hFile = -1;
    unsigned char m_cFill = 0;
    std::vector<std::pair<size_t, std::string>> m_vBytes;
    CGuardedRecord m_text;
    CCallersRecord<GA_ADRSRT> m_request;
    CCallersRecord<GA_ADRNUM> m_counts;
    CCallersRecord<GA_ADRFLD> m_field;
};

} // namespace

void CallLegacy(CLineInput input, std::string const& strPath) {
    CHost host;
    host.Open(strPath);
    for (size_t n = 0; n < MOST_CALLS && input.Next(); ++n) host.Call(input, strPath);
    host.Close();
}
