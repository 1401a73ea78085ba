#include "tests/support/EveryOperation.h"

#include "api/Pstexec.h"
#include "api/PstexecState.h"
#include "api/ga_legacy.h"
#include "dic/ImageHeader.h"
#include "dic/ImageView.h"
#include "tests/support/GuardedBytes.h"
#include "tests/support/Peek.h"
#include "tree/DispTree.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <memory>

#if defined(__SANITIZE_ADDRESS__)
#    define QEADRS_HEAP_IS_WATCHED
#elif defined(__has_feature)
#    if __has_feature(address_sanitizer)
#        define QEADRS_HEAP_IS_WATCHED
#    endif
#endif

namespace {

constexpr size_t AFTER_CITY_SIZE = 1024; // what the operation asks for
constexpr size_t RECORD_ADDRESS = 23, RECORD_OFFICE = 145, ADDRESS_SIZE = RECORD_OFFICE - RECORD_ADDRESS;
constexpr int POSITIONS[] = {0, 1, 2, 7, 32767, INT_MAX, -1, INT_MIN};
constexpr unsigned char FILL = 0x5A; // what a caller's memory holds that is written to

void Require(bool bKept, char const* pszPromise) {
    if (bKept) return;
    std::fprintf(stderr, "broken promise: %s\n", pszPromise);
    std::abort();
}

// Memory of the caller's: a record, a field to be written to, a text with its NUL.
class CCallers {
  public:
    CCallers(size_t nSize, unsigned char cFill) : m_nSize(nSize) { std::memset(Place(), cFill, nSize); }
    explicit CCallers(std::vector<unsigned char> const& vByte) : m_nSize(vByte.size()) {
        std::copy(vByte.begin(), vByte.end(), Place());
    }
    explicit CCallers(std::string const& str) : m_nSize(std::strlen(str.c_str()) + 1) {
        std::memcpy(Place(), str.c_str(), m_nSize);
    }
    ~CCallers() {
#if !defined(QEADRS_HEAP_IS_WATCHED)
        Unused().push_back(std::move(m_pBlock));
#endif
    }
    CCallers(CCallers const&) = delete;
    CCallers& operator=(CCallers const&) = delete;

    unsigned char* Data() const {
        return m_p;
    }
    char* Text() const {
        return reinterpret_cast<char*>(m_p);
    }
    size_t Size() const {
        return m_nSize;
    }

  private:
    unsigned char* m_p = nullptr;
    size_t m_nSize;
#if defined(QEADRS_HEAP_IS_WATCHED)
    unsigned char* Place() {
        m_pBlock = std::make_unique<unsigned char[]>(m_nSize);
        return m_p = m_pBlock.get();
    }
    std::unique_ptr<unsigned char[]> m_pBlock;
#else
    // A mapping for each text would take most of the time: they are used again.
    static constexpr size_t LARGEST = 16384;
    using CBlock = std::unique_ptr<CGuardedBytes>;
    static std::vector<CBlock>& Unused() {
        static std::vector<CBlock> vUnused;
        return vUnused;
    }
    unsigned char* Place() {
        Require(m_nSize <= LARGEST, "a caller's text is short");
        if (Unused().empty())
            Unused().push_back(
                std::make_unique<CGuardedBytes>(std::string(LARGEST - 1, ' '), CGuardedBytes::Writable));
        m_pBlock = std::move(Unused().back());
        Unused().pop_back();
        return m_p = m_pBlock->Data() + LARGEST - m_nSize;
    }
    CBlock m_pBlock;
#endif
};

// A caller's record: sort type, codes, address, organisation.
std::vector<unsigned char> Record(unsigned char cSort, std::string const& strAddress, std::string const& strOffice) {
    std::vector<unsigned char> vByte(RECORD_OFFICE + strOffice.size() + 1);
    vByte[0] = cSort;
    std::memcpy(vByte.data() + RECORD_ADDRESS, strAddress.data(), std::min(strAddress.size(), ADDRESS_SIZE));
    std::memcpy(vByte.data() + RECORD_OFFICE, strOffice.data(), strOffice.size());
    return vByte;
}

} // namespace

CEveryOperation::CEveryOperation(unsigned char const* pImage, ETrust nTrust, uint32_t nMost)
    : m_pImage(pImage), m_nTrust(nTrust), m_nMost(nMost) {}

CEveryOperation::~CEveryOperation() {
    dic.SetDictionary(nullptr);
    ga_legacy::dic.SetDictionary(nullptr);
}

void CEveryOperation::Run(uint32_t nSeed) {
    m_dic.SetDictionary(m_pImage);
    dic.SetDictionary(m_pImage);
    ga_legacy::dic.SetDictionary(m_pImage);
    Draw(nSeed);
    Require(PstAdrGetNum() == 1 && GA_GetSearchOldName() == 1, "the constants are what they are");
    RunAccessors();
    RunNodes();
    RunEntries();
    for (unsigned short nSort : {SORT_DICTIONARY, SORT_ADDR}) {
        m_dic.SetSortType(nSort);
        for (size_t n = nSort == SORT_ADDR; n < m_vCode.size(); n += 2) {
            RunCode(m_vCode[n]);
            RunApiCode(m_vCode[n]);
            RunLegacy(m_vCode[n], "");
        }
        for (size_t n = nSort == SORT_ADDR; n < m_vText.size(); n += 2) {
            std::string const strOffice = m_vOffice.empty() ? "" : m_vOffice[n % m_vOffice.size()];
            RunText(m_vText[n], strOffice);
            RunApiText(m_vText[n], strOffice);
            RunBrowsing(m_vText[n]);
            RunLegacy("", m_vText[n]);
        }
        RunLegacy("", "");
    }
    Read(m_dic.GetLastInc());
}

// --- what is asked for ---------------------------------------------------------------------------------------------

void CEveryOperation::Draw(uint32_t nSeed) {
    m_nSeed = nSeed;
    auto const Choose = [&](uint32_t nCount, std::vector<uint32_t>& vIndex) {
        vIndex.clear();
        uint32_t const nTaken = std::min(nCount, m_nMost);
        for (uint32_t n = 0; n < nTaken; ++n)
            vIndex.push_back(static_cast<uint32_t>((uint64_t{n} * nCount / nTaken + nSeed) % nCount));
    };
    Choose(HeaderWord(m_pImage, HDR_NODE_COUNT), m_vNode);
    Choose(HeaderWord(m_pImage, HDR_INFO_COUNT), m_vEntry);
    m_vText = {"", "\xE6", "東京都"};
    m_vCode = {"", "1", "?"};
    m_vOffice = {"", "株式会社"};
    for (auto* const pv : {&m_vText, &m_vCode, &m_vOffice}) pv->insert(pv->end(), m_vAlso.begin(), m_vAlso.end());
    if (nSeed % 64 == 0) {
        m_vText.emplace_back(600, '\x8F');
        m_vCode.emplace_back(300, '9');
    }
    for (size_t n = 0; n < m_vNode.size(); ++n) DrawTexts(m_vNode[n], static_cast<uint32_t>(n) + nSeed);
    CImageView const text(m_dic);
    for (size_t n = 0; n < m_vEntry.size(); ++n) {
        tagADDRINFO const& entry = *m_dic.GetAddrInfo(m_vEntry[n]);
        char const* const pszCode = text.At(entry.nCode);
        char const* const pszOld = text.Behind(entry.nCode, 1);
        if (pszCode == nullptr || pszOld == nullptr) continue;
        constexpr size_t LENGTHS[] = {7, 3, 5, 2};
        size_t const nLength = LENGTHS[(n + nSeed) % 4];
        m_vCode.push_back(n % 4 == 3 ? std::string(pszOld, strnlen(pszOld, 20))
                                     : std::string(pszCode, strnlen(pszCode, nLength)));
    }
}

// The names from the prefecture down to the node, in one of the forms in which callers write them.
void CEveryOperation::DrawTexts(uint32_t nNode, uint32_t nKind) {
    CImageView const text(m_dic);
    std::string strPath, strBelow, strName;
    bool bFirst = true;
    unsigned nSteps = 0;
    for (auto const* p = m_dic.GetAddrNode(nNode); p != nullptr && nSteps < 16; p = m_dic.GetAddrNode(p->nParent)) {
        char const* const psz = text.At(p->nName);
        std::string const str = psz == nullptr ? "" : std::string(psz, strnlen(psz, 300));
        if (bFirst) strName = str;
        if (bFirst && p->nLevel == LEVEL_OFFICE) m_vOffice.push_back(nKind % 2 == 0 ? str : "（株）" + str + "　");
        bFirst = false;
        strBelow = strPath;
        strPath.insert(0, str);
        ++nSteps;
    }
    switch (nKind % 4) {
    case 0:
        m_vText.push_back(strPath + "１丁目");
        break;
    case 1:
        m_vText.push_back(strBelow); // without the prefecture
        break;
    case 2:
        m_vText.push_back(strPath.substr(0, strPath.size() * 2 / 3)); // maybe within a character
        break;
    default:
        m_vText.push_back(strName);
    }
}

// --- what is answered ----------------------------------------------------------------------------------------------

void CEveryOperation::Read(char const* psz) {
    if (psz == nullptr) return;
    if (m_pszAsked != nullptr && psz >= m_pszAsked && psz <= m_pszAsked + std::strlen(m_pszAsked)) return;
    char const* const pszArea = m_dic.GetStrings();
    size_t const nArea = HeaderWord(m_pImage, HDR_STRING_SIZE);
    Require(psz >= pszArea && psz < pszArea + nArea, "a text lies in the string area");
    size_t const nRoom = nArea - static_cast<size_t>(psz - pszArea), nLength = strnlen(psz, nRoom);
    Require(m_nTrust == Bounded || nLength < nRoom, "a text ends in the string area");
    m_nSum += nLength;
}

void CEveryOperation::Read(tagADDR const& addr) {
    ++m_nAddresses;
    for (char const* psz : {addr.pszCodeExt, addr.pszPostCode, addr.pszPref, addr.pszPrefKana, addr.pszCity,
                            addr.pszCityKana, addr.pszTown, addr.pszTownKana, addr.pszArea, addr.pszAreaKana,
                            addr.pszOffice, addr.pszOfficeKana, addr.pszBlock, addr.pszBlockKana, addr.pszNote})
        Read(psz);
    for (auto const* p : {addr.pListCity, addr.pPrefNode, addr.pCityNode, addr.pTownNode}) Read(p);
}

void CEveryOperation::Read(std::vector<tagADDR> const& vAddr) {
    for (tagADDR const& addr : vAddr) Read(addr);
}

void CEveryOperation::Read(tagADDRNODE const* pNode) {
    if (pNode == nullptr) return;
    auto const* const pFirst = m_dic.GetAddrNode(0);
    Require(pFirst != nullptr && pNode >= pFirst && pNode < pFirst + HeaderWord(m_pImage, HDR_NODE_COUNT),
            "a node lies in the node table");
    m_nSum += pNode->nLevel;
}

void CEveryOperation::Read(std::vector<tagADDRNODE const*> const& vNode) {
    for (auto const* p : vNode) Read(p);
}

void CEveryOperation::Read(std::vector<tagADDRPNT> const& tree) {
    for (tagADDRPNT const& entry : tree) {
        ++m_nEntries;
        Read(entry.pNode);
        m_nSum += strnlen(entry.szName, sizeof entry.szName);
        Read(entry.vChild);
    }
}

void CEveryOperation::Take(uint32_t nStatus, HGLOBAL const& h) {
    if (nStatus != 0 || h == nullptr) return;
    auto const* const p = static_cast<unsigned char const*>(GlobalLock(h));
    size_t const nSize = GlobalSize(h);
    for (size_t n = 0; n < nSize; ++n) m_nSum += p[n];
    GlobalUnlock(h);
    GlobalFree(h);
    ++m_nBlocks;
}

// --- the class -----------------------------------------------------------------------------------------------------

// Each index and offset is told by its number alone.
void CEveryOperation::RunAccessors() {
    unsigned long const nNodes = HeaderWord(m_pImage, HDR_NODE_COUNT),
                        nEntries = HeaderWord(m_pImage, HDR_INFO_COUNT),
                        nArea = HeaderWord(m_pImage, HDR_STRING_SIZE);
    for (unsigned long const nBase : {0ul, nNodes, nEntries, nArea})
        for (unsigned long const nStep : {0ul, 1ul, 0x7FFFFFFFul, 0x80000000ul, 0xFFFFFFFFul, ULONG_MAX})
            for (unsigned long const n : {nBase + nStep, nBase - nStep}) {
                Require((m_dic.GetAddrNode(n) != nullptr) == (n < nNodes), "a node lies in the table");
                Require((m_dic.GetAddrInfo(n) != nullptr) == (n < nEntries), "an entry lies in the table");
                Require((m_dic.GetString(n) != nullptr) == (n < nArea), "a text begins in the area");
            }
}

void CEveryOperation::RunNodes() {
    auto const* const pStrings = reinterpret_cast<unsigned char const*>(m_dic.GetStrings());
    auto const* const pNodes = m_dic.GetAddrNode(0);
    CImageView const text(m_dic);
    for (uint32_t nNode : m_vNode) {
        tagADDRNODE const* const pNode = m_dic.GetAddrNode(nNode);
        if (m_nTrust == Sound) {
            for (size_t nSize : {128u, 61u, 20u, 1u, 0u})
                GetNameForUI(pNode, pNodes, pStrings, CCallers(nSize, 0).Text(), static_cast<int>(nSize));
            CCallers const afterCity(AFTER_CITY_SIZE, 0);
            m_dic.GetAfterCityName(pNode, afterCity.Text());
            Require(std::memchr(afterCity.Data(), 0, AFTER_CITY_SIZE) != nullptr, "the names of a node fit");
        }
        if (char const* const pszName = text.At(pNode->nName)) {
            unsigned short nType = 0;
            size_t const nFront = GetShikugunType(pszName, &nType);
            Require(nType <= SHIKUGUN_OTHER && nFront <= std::strlen(pszName), "a name has one of eight kinds");
        }
        std::vector<tagADDR> vAddr;
        m_dic.recTraceNode(pNode, tagADDR(0), vAddr);
        Read(vAddr);
        std::vector<tagADDRNODE const*> vNode;
        m_dic.recCollectNode(pNode, vNode);
        Read(vNode);
        m_dic.MakeTreeFromNode(vNode);
        RunLists(m_dic);
    }
}

void CEveryOperation::RunEntries() {
    bool const bSound = m_nTrust == Sound;
    std::vector<tagADDRPNT> tree;
    for (uint32_t nEntry : m_vEntry) {
        tagADDRINFO const* const pEntry = m_dic.GetAddrInfo(nEntry);
        tagADDRNODE const* vNode[3] = {};
        bool const bPlaced = m_dic.GetAddrPtr(pEntry, &vNode[0], &vNode[1], &vNode[2]) == 1;
        for (auto const* p : vNode) Read(p);
        auto const* const pCity = m_dic.GetCityNode(pEntry);
        Read(pCity);
        tagADDR addr(0);
        m_dic.GetAddr(pEntry, &addr);
        Read(addr);
        bool const bWhole = bPlaced && vNode[0] != nullptr && vNode[1] != nullptr && vNode[2] != nullptr;
        if (!bSound) continue;
        Require(bWhole == ((pEntry->nNode & ADDRINFO_SUPERSEDED) == 0), "an entry of today has its nodes");
        Require(pCity != nullptr && addr.pszPref != nullptr && addr.pszCity != nullptr, "an entry lies in a city");
        Require(addr.pszPostCode != nullptr && std::strlen(addr.pszPostCode) == 7, "an entry has a code");
        if (bWhole)
            MakeTreeData(tree, vNode, m_dic.GetAddrNode(0),
                         reinterpret_cast<unsigned char const*>(m_dic.GetStrings()), 128);
    }
    recSortTree(tree);
    Read(tree);
}

void CEveryOperation::RunCode(std::string const& strCode) {
    CCallers const code(strCode);
    m_dic.MakePostCode(code.Text());
    CCallers const digits(std::string(code.Text()));
    long const nFound = m_dic.SearchPostCode7(digits.Text());
    Require(nFound == 0 || m_dic.GetAddrInfo(static_cast<unsigned long>(nFound)) != nullptr || nFound == -1,
            "an entry was found");
    std::vector<tagADDR> vAddr;
    m_dic.GetAddrFromPostCode7(digits.Text(), vAddr);
    Read(m_dic.GetLastInc());
    m_dic.GetAddrFromPostCode5(digits.Text(), vAddr);
    m_dic.GetCityFromPostCode5(digits.Text(), vAddr);
    Read(vAddr);
    m_dic.MakeRefineTree(CCallers(strCode).Text(), "");
    RunLists(m_dic);
}

void CEveryOperation::RunText(std::string const& strText, std::string const& strOffice) {
    CCallers const text(strText), office(strOffice);
    m_pszAsked = text.Text();
    tagADDR addr(0);
    Require(m_dic.DivideAddr(text.Text(), &addr), "a text is divided");
    Read(addr);
    tagADDR latest(0);
    m_dic.GetLatestAddr(text.Text(), latest);
    Read(latest);
    tagADDR found(0);
    m_dic.GetPostCodeFromAddr(text.Text(), office.Text(), found);
    Read(found);
    tagADDR anywhere(0);
    uint32_t const nNodes = HeaderWord(m_pImage, HDR_NODE_COUNT);
    uint32_t const nDrawn = m_vNode.empty() ? 0 : m_vNode[m_nSeed % m_vNode.size()];
    for (unsigned long nNode :
         {ULONG_MAX, 0x80000000ul, static_cast<unsigned long>(nNodes), static_cast<unsigned long>(nDrawn)}) {
        char const* psz = text.Text();
        m_dic.SeparatePref(&psz, anywhere);
        m_dic.SeparateCity(&psz, nNode, anywhere);
        m_dic.SeparateTown(&psz, nNode, anywhere);
        Read(psz);
        Read(anywhere);
    }
    std::vector<tagADDR> vAddr;
    m_dic.GetAddrFromAddrPart(text.Text(), vAddr);
    m_dic.GetPrefFromPart(text.Text(), vAddr);
    m_dic.GetCityFromPart(text.Text(), vAddr);
    Read(vAddr);
    std::vector<tagADDRNODE const*> vNode;
    m_dic.SearchCity(text.Text());
    m_dic.SearchCity(text.Text(), vNode);
    Read(vNode);
    m_dic.SearchCity2(text.Text(), vNode);
    Read(vNode);
    m_dic.EraseBlank(CCallers(strText).Text());
    int const nOffice = m_dic.SearchInc(CCallers(strText).Text());
    Require(nOffice == -1 || static_cast<uint32_t>(nOffice) < HeaderWord(m_pImage, HDR_OFFICE_COUNT),
            "an organisation stands in the index");
    m_dic.SeparateAddr(text.Text());
    RunLists(m_dic);
    m_dic.MakeRefineTree(CCallers("").Text(), text.Text());
    RunLists(m_dic);
    m_pszAsked = nullptr;
}

void CEveryOperation::RunBrowsing(std::string const& strText) {
    CCallers const text(strText);
    m_pszAsked = text.Text();
    for (unsigned long nNo : {0ul, 1ul, 46ul, 0xFFFFul, ULONG_MAX}) {
        std::vector<tagADDR> vPref, vCity, vTown, vBelow;
        if (strText.empty())
            m_dic.GetPref(vPref);
        else
            m_dic.GetPrefFromCity(text.Text(), vPref);
        m_dic.GetCityFromNo(nNo, vCity);
        m_dic.GetTownFromNo((nNo + m_nSeed) % 4, vTown);
        m_dic.GetTownExFromNo(nNo % 2, vBelow);
        for (auto const* pvAddr : {&vPref, &vCity, &vTown, &vBelow}) Read(*pvAddr);
    }
    m_pszAsked = nullptr;
}

void CEveryOperation::RunLists(CAddrDic& owner) {
    short n0, n1, n2, n3, n4, n5;
    for (int n : {-1, 0, 1, 9, INT_MAX}) owner.GetAdrNum(n, n / 2, n, &n0, &n1, &n2, &n3, &n4, &n5);
    owner.GetAdrNum(0, 0, 0, &n0, &n1, &n2, &n3, &n4, &n5);
    Read(CAddrDicPeek(owner).vRefineTree);
    CCallers const name(60, FILL), detail(128, FILL), code5(5, FILL), code7(7, FILL);
    for (int nIndex : POSITIONS) {
        int nType = 0;
        char nKind = 0;
        owner.GetAtPref(nIndex, name.Text(), 60);
        owner.GetAtCity(nIndex, name.Text(), 60, &nType);
        owner.GetAtTown(nIndex, name.Text(), 60, detail.Text(), 128, code5.Text(), 5, code7.Text(), 7, &nKind);
    }
}

// --- the interfaces ------------------------------------------------------------------------------------------------

void CEveryOperation::RunApiCode(std::string const& strCode) {
    HGLOBAL h = nullptr;
    int const nStatus = GetAdrFromZip(CCallers(strCode).Text(), &h);
    Take(static_cast<uint32_t>(nStatus), h);
    for (int nKind : {3, 0}) {
        if (nKind == 3 && m_nTrust != Sound) continue;
        CCallers const comment(128, FILL);
        bool const bWritten = PstAdrGetComment(comment.Text(), &nKind) == 0;
        Require(bWritten == (std::memchr(comment.Data(), 0, 128) != nullptr), "a comment that is told ends in NUL");
    }
    for (size_t nField : {2u, 8u}) {
        CCallers const record(16, 0);
        record.Data()[0] = strCode.size() % 2 == 0 ? SORT_DICTIONARY : SORT_ADDR;
        std::memcpy(record.Data() + nField, strCode.data(), std::min(strCode.size(), nField == 2 ? size_t{6} : 8));
        h = nullptr;
        Take(static_cast<uint32_t>(PstAdrCity(record.Data(), &h)), h);
    }
}

void CEveryOperation::RunApiText(std::string const& strText, std::string const& strOffice) {
    unsigned char const cSort = strText.size() % 2 == 0 ? SORT_DICTIONARY : SORT_ADDR;
    PstAdrGetZip(CCallers(Record(cSort, strText, strOffice)).Data());
    std::vector<unsigned char> vLatest = Record(cSort, strText, "");
    vLatest.pop_back(); // no organisation in this one
    PstAdrGetLatestAdr(CCallers(vLatest).Data());
    CCallers const text(strText);
    HGLOBAL h = nullptr;
    Take(static_cast<uint32_t>(GetAdrFromAdd(text.Text(), &h)), h);
    CCallers const query(RECORD_ADDRESS + text.Size(), 0);
    query.Data()[0] = cSort;
    std::memcpy(query.Data() + RECORD_ADDRESS, text.Data(), text.Size());
    for (unsigned short nNo : std::initializer_list<unsigned short>{0, 1, 46})
        for (auto const pfnTowns : {PstAdrTown, PstAdrRTown, PstAdrRTownForUI}) {
            h = nullptr;
            Take(PstAdrRPrf(query.Data(), &h), h);
            h = nullptr;
            Take(PstAdrRCity(nNo, &h), h);
            h = nullptr;
            Take(pfnTowns(static_cast<unsigned short>(nNo % 2), &h), h);
        }
}

void CEveryOperation::RunLegacy(std::string const& strCode, std::string const& strText) {
    CCallers const request(sizeof(GA_ADRSRT), 0);
    auto* const pRequest = reinterpret_cast<GA_ADRSRT*>(request.Data());
    for (int16_t n : {int16_t{-1}, int16_t{1}, int16_t{0}}) {
        pRequest->nPref = pRequest->nCity = n;
        std::memcpy(pRequest->szCode, strCode.data(), std::min(strCode.size(), sizeof pRequest->szCode));
        std::memcpy(pRequest->szAddr, strText.data(), std::min(strText.size(), sizeof pRequest->szAddr));
        GA_adr_exec(GA_SEARCH, 0, pRequest, nullptr, CCallers(sizeof(GA_ADRNUM), FILL).Data());
    }
    CCallers const field(sizeof(GA_ADRFLD), 0); // each entry stands on the one before
    for (int nIndex : POSITIONS)
        for (short nKind : std::initializer_list<short>{GA_PREF, GA_CITY, GA_TOWN}) {
            reinterpret_cast<GA_ADRFLD*>(field.Data())->nPosition = static_cast<int16_t>(nIndex);
            GA_adr_exec(GA_GET, nKind, nullptr, nullptr, field.Data());
        }
    Read(CAddrDicPeek(ga_legacy::dic).vRefineTree);
}
