// PostCode.cpp - postal-code lookup: from a code in any spelling to the addresses filed under it.
#include "dic/AddrDic.h"
#include "dic/AddrKey.h"
#include "dic/LevelText.h"
#include "dic/Prefix.h"
#include "dic/SearchMemory.h"
#include "platform/Win32Compat.h"

#include <algorithm>
#include <string>

namespace {

// Entries that one old-code lookup examines. The dictionary keeps the entries of an old code near the 7-digit codes
// that begin with it, so that this bound is generous; it is what a caller waits for at most.
constexpr uint32_t OLD_CODE_SCAN = 10000;

char const NO_OFFICE[] = "会社名なし";

// "?" and "*" pass the normalisation but match only themselves.
bool IsCodeCharacter(unsigned c) {
    return (c >= '0' && c <= '9') || c == '?' || c == '*';
}

// Entries among which the last steps of a search go on. One after the other these steps would wait for most of the
// cache lines that the records and codes of so few entries fill, so all are fetched at once.
constexpr uint32_t FETCHED_ENTRIES = 48;

} // namespace

// The text is shortened in place: nothing is ever written beyond what has been read.
void CAddrDic::MakePostCode(char* pszText) {
    if (pszText == nullptr) return;
    char* pszOut = pszText;
    for (char const* p = pszText; *p != '\0';) {
        unsigned const c = static_cast<unsigned char>(*p++);
        if (_mbbtype(static_cast<unsigned char>(c), 0) == _MBC_SINGLE) {
            if (IsCodeCharacter(c)) *pszOut++ = static_cast<char>(c);
            continue;
        }
        if (*p == '\0') break; // a first byte without its second
        unsigned const nPair = c << 8 | static_cast<unsigned char>(*p++);
        unsigned const nSingle = _mbctombb(nPair);
        if (nSingle != nPair && IsCodeCharacter(nSingle)) *pszOut++ = static_cast<char>(nSingle);
    }
    *pszOut = '\0';
}

namespace {

// The probes are part of what callers can observe on an unsorted table: the first at (count - 1) / 2, then always the
// middle of what is left, rounded down. A code outside the string area, which only a damaged dictionary has, counts as
// empty.
long FindFirstEntry(CImageView const& image, CPrefix const& code, CCodeProbes& probes) {
    if (image.Image() == nullptr) return -1;
    CBisection at(image.InfoCount() - 1);
    bool bFetched = false;
    for (;;) {
        if (!probes.GoKnownSteps(code, at)) return -1;
        tagADDRINFO const* const pInfo = image.Info(at.nMiddle);
        if (pInfo == nullptr) return -1;
        if (!bFetched && at.nHigh - at.nLow < FETCHED_ENTRIES) {
            FetchLines(image.Info(at.nLow), (at.nHigh - at.nLow + 1) * sizeof(tagADDRINFO));
            probes.FetchCodes(image, at);
            bFetched = true;
        }
        probes.Keep(image, pInfo->nCode, at.nPlace);
        int const nOrder = code.Order(image, pInfo->nCode);
        if (nOrder == 0) break;
        if (!at.Narrow(nOrder < 0)) return -1;
    }
    uint32_t nFirst = at.nMiddle;
    while (nFirst > 0 && code.Order(image, image.Info(nFirst - 1)->nCode) == 0) --nFirst;
    return static_cast<long>(nFirst);
}

} // namespace

long CAddrDic::SearchPostCode7(char const* pszCode) {
    if (pszCode == nullptr || *pszCode == '\0') return 0;
    return FindFirstEntry(CImageView(*this), CPrefix(pszCode), CSearchMemoryRef(pSearchMemory)->probes);
}

namespace {

// A digit stands for itself in every code page; a text of nothing else is normalised already.
bool IsNormalised(char const* pszCode) {
    while (*pszCode >= '0' && *pszCode <= '9') ++pszCode;
    return *pszCode == '\0';
}

// Behind the last of the entries from nFirst on whose codes begin with the text.
uint32_t EndOfRun(CImageView const& image, uint32_t nFirst, CPrefix const& code) {
    uint32_t nEnd = nFirst;
    while (nEnd < image.InfoCount() && code.Order(image, image.Info(nEnd)->nCode) == 0) ++nEnd;
    return nEnd;
}

// Room for nMore records at once, and twice what there was at least.
void MakeRoom(std::vector<tagADDR>& vAddr, size_t nMore) {
    if (vAddr.capacity() - vAddr.size() < nMore) vAddr.reserve(std::max(vAddr.size() + nMore, 2 * vAddr.capacity()));
}

} // namespace

int CAddrDic::GetAddrFromPostCode7(char const* pszCode, std::vector<tagADDR>& vAddr) {
    if (pszCode == nullptr || *pszCode == '\0') return 0;
    std::string strCode;
    if (!IsNormalised(pszCode)) {
        strCode = pszCode;
        MakePostCode(strCode.data());
        pszCode = strCode.c_str();
        if (*pszCode == '\0') return 0;
    }
    CImageView const image(*this);
    CPrefix const code(pszCode);
    long const nStart = FindFirstEntry(image, code, CSearchMemoryRef(pSearchMemory)->probes);
    if (nStart < 0) return 0;

    vCityList.clear();
    pszLastOffice = nullptr;
    auto const nFirst = static_cast<uint32_t>(nStart);
    uint32_t const nEnd = EndOfRun(image, nFirst, code);
    MakeRoom(vAddr, nEnd - nFirst);
    for (uint32_t nIndex = nFirst; nIndex < nEnd; ++nIndex) {
        tagADDR& addr = vAddr.emplace_back(0);
        addr.pListCity = StoreEntry(image, *image.Info(nIndex), addr);
        if (addr.pszTown == nullptr || addr.pListCity == nullptr)
            vAddr.pop_back();
        else if (addr.pszOffice != nullptr)
            pszLastOffice = addr.pszOffice;
    }
    if (nSortType == SORT_ADDR) SortAddrs(vAddr);
    for (tagADDR const& addr : vAddr)
        if (addr.pListCity != nullptr) vCityList.push_back(addr.pListCity);
    KeepOfficeText();
    return 1;
}

// The copy that stays readable after the image is gone; a longer name is cut to the buffer.
void CAddrDic::KeepOfficeText() {
    if (pszLastOffice == nullptr) {
        std::memcpy(szOffice, NO_OFFICE, sizeof NO_OFFICE);
        return;
    }
    size_t const nLength = strnlen(pszLastOffice, sizeof szOffice - 1);
    std::memcpy(szOffice, pszLastOffice, nLength);
    szOffice[nLength] = '\0';
}

namespace {

// An old code that entries are compared with.
class COldCode {
  public:
    explicit COldCode(char const* psz)
        : m_psz(psz),
          m_nLength(std::strlen(psz)),
          m_nWord(FirstWordOfText(psz)),
          m_nMask(m_nLength >= WORD_BYTES ? ~uint64_t{0} : ~uint64_t{0} >> 8 * (WORD_BYTES - 1 - m_nLength)) {}

    // Whether it is the old code of the entry. An entry without a readable one may have any.
    bool MayBelongTo(CImageView const& image, tagADDRINFO const& info) const {
        // Behind a code of seven digits, the rule, it stands in the next word; most differ there.
        if (image.HasWordAt(info.nCode) && image.HasWordAt(info.nCode + WORD_BYTES) &&
            ZeroBytes(image.WordAt(info.nCode)) == SEVEN_BYTES && m_nLength < WORD_BYTES)
            return (image.WordAt(info.nCode + WORD_BYTES) & m_nMask) == m_nWord;
        char const* const pszOld = image.Behind(info.nCode, 1);
        return pszOld == nullptr || std::strcmp(pszOld, m_psz) == 0;
    }

  private:
    static constexpr uint64_t SEVEN_BYTES = uint64_t{0x80} << 56; // the NUL is the eighth byte

    char const* m_psz;
    size_t m_nLength;
    uint64_t m_nWord;
    uint64_t m_nMask; // the bytes of a word that the text and its NUL cover
};

} // namespace

int CAddrDic::GetAddrFromPostCode5(char const* pszCode, std::vector<tagADDR>& vAddr) {
    if (pszCode == nullptr) return 0;
    long const nStart = SearchPostCode7(pszCode);
    if (nStart < 0) return 0;
    vCityList.clear();
    CImageView const image(*this);
    COldCode const code(pszCode);
    auto const nFirst = static_cast<uint32_t>(nStart);
    // The matches need not stand side by side, so the scan does not stop at the first entry that differs.
    for (uint32_t nIndex = nFirst; nIndex < image.InfoCount() && nIndex - nFirst < OLD_CODE_SCAN; ++nIndex) {
        tagADDRINFO const& info = *image.Info(nIndex);
        if (!code.MayBelongTo(image, info)) continue;
        tagADDR& addr = vAddr.emplace_back(0);
        tagADDRNODE const* const pCity = StoreEntry(image, info, addr);
        if (vCityList.empty() || vCityList.back() != pCity) vCityList.push_back(pCity);
    }
    return 1;
}

int CAddrDic::GetCityFromPostCode5(char const*, std::vector<tagADDR>&) {
    return 1;
}
