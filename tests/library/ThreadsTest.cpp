// Several dictionary objects over one mapping, each in a thread of its own: nothing that one does is seen by another.
// The thread sanitizer (preset tsan) looks on.
#include "api/Pstexec.h"
#include "api/PstexecState.h"
#include "api/ga_legacy.h"
#include "tests/library/AddrTextWorld.h"
#include "tree/DispTree.h"

#include <gmock/gmock.h>

#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <thread>

namespace {

constexpr size_t THREADS = 4;
constexpr int ROUNDS = 25;

using CAddrList = std::vector<tagADDR>;
using CAnswers = std::vector<std::string>;

// One image in a file, mapped once and shared by all, as a host does it.
class CMappedFile {
  public:
    explicit CMappedFile(std::vector<unsigned char> const& vByte) : m_nSize(vByte.size()) {
        std::string strPath = (std::filesystem::temp_directory_path() / "qe-threads-XXXXXX").string();
        int const hFile = mkstemp(strPath.data());
        if (hFile < 0) throw std::system_error(errno, std::generic_category(), "mkstemp");
        unlink(strPath.c_str());
        bool const bWritten = write(hFile, vByte.data(), m_nSize) == static_cast<ssize_t>(m_nSize);
        m_p = bWritten ? mmap(nullptr, m_nSize, PROT_READ, MAP_SHARED, hFile, 0) : MAP_FAILED;
        close(hFile);
        if (m_p == MAP_FAILED) throw std::system_error(errno, std::generic_category(), "mmap");
    }
    ~CMappedFile() { munmap(m_p, m_nSize); }
    CMappedFile(CMappedFile const&) = delete;
    CMappedFile& operator=(CMappedFile const&) = delete;

    unsigned char const* Data() const { return static_cast<unsigned char const*>(m_p); }

  private:
    size_t m_nSize;
    void* m_p;
};

// All texts of an answer.
std::string Told(CAddrList const& vAddr) {
    std::string str;
    for (tagADDR const& addr : vAddr)
        for (char const* psz : {addr.pszCodeExt, addr.pszPostCode, addr.pszPref, addr.pszPrefKana, addr.pszCity,
                                addr.pszCityKana, addr.pszTown, addr.pszTownKana, addr.pszArea, addr.pszAreaKana,
                                addr.pszOffice, addr.pszOfficeKana, addr.pszBlock, addr.pszNote})
            str += Shown(psz) + ' ';
    return str + std::to_string(vAddr.size());
}

std::string Told(CAddrDic const& dic, std::vector<tagADDRNODE const*> const& vNode) {
    std::string str;
    for (tagADDRNODE const* const pNode : vNode) str += Shown(dic.GetString(pNode->nName)) + ' ';
    return str;
}

// --- what a thread does, each step a question of its own with its answer -------------------------------------------

std::string LookUp(CAddrDic& dic) {
    std::string str;
    for (unsigned short const nSortType : {SORT_DICTIONARY, SORT_ADDR}) {
        dic.SetSortType(nSortType);
        for (char const* pszCode : {"1", "100-00", "1008111", "1050015", "726", "9"}) {
            CAddrList vAddr;
            dic.GetAddrFromPostCode7(pszCode, vAddr);
            str += Told(vAddr) + ' ' + Shown(dic.GetLastInc()) + '\n';
        }
        CAddrList vOld;
        dic.GetAddrFromPostCode5("100", vOld);
        str += Told(vOld) + '\n';
    }
    dic.SetSortType(SORT_DICTIONARY);
    return str;
}

std::string ReadTexts(CAddrDic& dic) {
    std::string str;
    for (char const* pszText : {"東京都千代田区丸の内２丁目", "東京都千代田区旧町3", "府中市元町", "港区", "", "x"}) {
        tagADDR addr(0), latest(0), found(0);
        dic.DivideAddr(pszText, &addr);
        str += Told({addr}) + std::to_string(dic.GetLatestAddr(pszText, latest)) + Told({latest});
        char szOffice[] = "株式会社テスト 商事";
        str += std::to_string(dic.GetPostCodeFromAddr(pszText, szOffice, found)) + Told({found}) + szOffice;
        CAddrList vAddr;
        dic.GetAddrFromAddrPart(pszText, vAddr);
        str += Told(vAddr) + '\n';
    }
    return str;
}

std::string Browse(CAddrDic& dic) {
    std::string str;
    for (char const* pszText : {"", "府中市", "東京都"}) {
        for (bool const bLines : {false, true}) {
            CAddrList vPref, vCity, vTown;
            bool const bFound = *pszText == '\0' ? dic.GetPref(vPref) : dic.GetPrefFromCity(pszText, vPref);
            str += std::to_string(bFound) + Told(vPref);
            dic.GetCityFromNo(*pszText == '\0' ? 12 : 0, vCity);
            str += Told(vCity);
            bLines ? dic.GetTownExFromNo(0, vTown) : dic.GetTownFromNo(0, vTown);
            str += Told(vTown) + '\n';
        }
    }
    std::vector<tagADDRNODE const*> vNode;
    dic.SearchCity("府中", vNode);
    dic.recCollectNode(dic.GetAddrNode(0), vNode);
    return str + Told(dic, vNode);
}

std::string Refine(CAddrDic& dic) {
    std::string str;
    for (char const* pszQuery : {"1", "100-00", "726", "", "東京都千代田区", "府中市", "x"}) {
        bool const bCode = *pszQuery >= '0' && *pszQuery <= '9';
        char szCode[8] = "";
        if (bCode) std::strcpy(szCode, pszQuery);
        dic.MakeRefineTree(szCode, bCode ? "" : pszQuery);
        for (int nPref = 0; nPref < 3; ++nPref) {
            short n[6] = {};
            dic.GetAdrNum(nPref, 0, 0, &n[0], &n[1], &n[2], &n[3], &n[4], &n[5]);
            for (short const nValue : n) str += std::to_string(nValue) + ' ';
            for (int nIndex = 0; nIndex < 3; ++nIndex) {
                char szName[61] = "", szDetail[129] = "", szOld[6] = "", szNew[8] = "", cKind = 0;
                int nType = 0;
                str += std::to_string(dic.GetAtPref(nIndex, szName, 60)) + szName;
                str += std::to_string(dic.GetAtCity(nIndex, szName, 60, &nType)) + szName + std::to_string(nType);
                str += std::to_string(dic.GetAtTown(nIndex, szName, 60, szDetail, 128, szOld, 5, szNew, 7, &cKind));
                str += std::string(szName) + szDetail + szOld + szNew + std::to_string(cKind) + '\n';
            }
        }
    }
    return str;
}

// Entries and nodes by their positions, and what the free functions make of them.
std::string ReadTables(CAddrDic& dic) {
    std::string str;
    for (unsigned long n = 0; dic.GetAddrInfo(n) != nullptr; ++n) {
        tagADDR addr(0);
        tagADDRNODE const *pPref = nullptr, *pCity = nullptr, *pTown = nullptr;
        int const nResult = dic.GetAddr(dic.GetAddrInfo(n), &addr);
        int const nCurrent = dic.GetAddrPtr(dic.GetAddrInfo(n), &pPref, &pCity, &pTown);
        str += std::to_string(nResult) + std::to_string(nCurrent) + Told({addr});
        str += std::to_string(dic.GetCityNode(dic.GetAddrInfo(n)) - dic.GetAddrNode(0)) + ' ';
        str += std::to_string(dic.SearchPostCode7(addr.pszPostCode)) + '\n';
    }
    auto const* const pStrings = reinterpret_cast<unsigned char const*>(dic.GetStrings());
    std::vector<tagADDRPNT> tree;
    for (unsigned long n = 0; dic.GetAddrNode(n) != nullptr; ++n) {
        tagADDRNODE const* const pNode = dic.GetAddrNode(n);
        char szName[129] = "", szBelow[1024] = "";
        unsigned short nType = 0;
        str += std::to_string(GetShikugunType(dic.GetString(pNode->nName), &nType)) + std::to_string(nType);
        GetNameForUI(pNode, dic.GetAddrNode(0), pStrings, szName, 128);
        dic.GetAfterCityName(pNode, szBelow);
        CAddrList vAddr;
        dic.recTraceNode(pNode, tagADDR(0), vAddr);
        str += szName + std::string(" ") + szBelow + Told(vAddr) + '\n';
        tagADDRNODE const* vLevel[3] = {};
        if (dic.GetAddrPtr(dic.GetAddrInfo(pNode->nInfo), &vLevel[0], &vLevel[1], &vLevel[2]) != 0)
            MakeTreeData(tree, vLevel, dic.GetAddrNode(0), pStrings, 128);
    }
    recSortTree(tree);
    for (tagADDRPNT const& pref : tree) str += pref.szName + std::to_string(pref.vChild.size());
    return str;
}

// Parts of names, and organisations.
std::string SearchNames(CAddrDic& dic) {
    std::string str;
    for (char const* pszText : {"", "東", "府", "府中市", "広島県府中市", "港", "x"}) {
        CAddrList vPref, vCity;
        dic.GetPrefFromPart(pszText, vPref);
        dic.GetCityFromPart(pszText, vCity);
        std::vector<tagADDRNODE const*> vNode;
        dic.SearchCity2(pszText, vNode);
        str += Told(vPref) + Told(vCity) + std::to_string(dic.SearchCity(pszText)) + Told(dic, vNode);
        dic.MakeTreeFromNode(vNode);
        short n[6] = {};
        dic.GetAdrNum(0, 0, 0, &n[0], &n[1], &n[2], &n[3], &n[4], &n[5]);
        str += std::to_string(n[0]) + ' ' + std::to_string(n[1]) + ' ' + std::to_string(n[2]) + '\n';
        dic.SeparateAddr(pszText);
    }
    for (char const* pszOffice : {"テスト", "（有）テスト 商事", "株式会社 港商会", "無い会社", ""}) {
        char szOffice[64] = "", szBlanks[64] = "";
        std::strcpy(szOffice, pszOffice);
        std::strcpy(szBlanks, pszOffice);
        str += std::to_string(dic.SearchInc(szOffice)) + szOffice;
        dic.EraseBlank(szBlanks);
        str += szBlanks;
        for (char const* pszText : {"東京都千代田区丸の内", "東京都千代田区千代田１", "東京都港区芝１丁目"}) {
            char szName[64] = "";
            std::strcpy(szName, pszOffice);
            tagADDR addr(0);
            str += std::to_string(dic.GetPostCodeFromAddr(pszText, szName, addr)) + Told({addr}) + '\n';
        }
    }
    return str;
}

using PFNSTEP = std::string (*)(CAddrDic&);
constexpr PFNSTEP STEPS[] = {LookUp, ReadTexts, Browse, Refine, ReadTables, SearchNames};
constexpr size_t STEP_COUNT = std::size(STEPS);

// How many threads are in a step at the same time. Nothing waits for these counts and nothing is ordered by them:
// they hide no race from the sanitizer.
struct COverlap {
    std::atomic<int> nInside{0}, nMost{0};

    void Enter() {
        int const n = nInside.fetch_add(1, std::memory_order_relaxed) + 1;
        int nSeen = nMost.load(std::memory_order_relaxed);
        while (nSeen < n && !nMost.compare_exchange_weak(nSeen, n, std::memory_order_relaxed)) {
        }
    }
    void Leave() { nInside.fetch_sub(1, std::memory_order_relaxed); }
    int Most() const { return nMost.load(std::memory_order_relaxed); }
};

// All steps in each round, beginning with one of them: while one thread looks up, the next one browses. Rounds go on,
// for a while, until others have been seen at work.
CAnswers Work(unsigned char const* pImage, size_t nFirst, COverlap& overlap, int nThreads) {
    CAddrDic dic;
    dic.SetDictionary(pImage);
    CAnswers vAnswer;
    for (int nRound = 0; nRound < ROUNDS || (overlap.Most() < nThreads && nRound < 40 * ROUNDS); ++nRound)
        for (size_t n = 0; n < STEP_COUNT; ++n) {
            overlap.Enter();
            std::string strAnswer = STEPS[(nFirst + n) % STEP_COUNT](dic);
            overlap.Leave();
            if (nRound < ROUNDS) vAnswer.push_back(std::move(strAnswer));
        }
    return vAnswer;
}

// Runs a call for each number below THREADS, in a thread each; none is done before the last one has begun.
template <typename F>
void InThreads(F const& call) {
    std::atomic<size_t> nReady{0};
    std::vector<std::thread> vThread;
    for (size_t n = 0; n < THREADS; ++n)
        vThread.emplace_back([&, n] {
            ++nReady;
            while (nReady < THREADS) std::this_thread::yield();
            call(n);
        });
    for (std::thread& thread : vThread) thread.join();
}

TEST(ParallelDictionaries, OverOneMappingAnswerAsOneDoesAlone) {
    CMappedFile const file(CTextWorld().Bytes());
    std::vector<CAnswers> vExpected, vAnswer(THREADS);
    COverlap alone, together;
    for (size_t n = 0; n < THREADS; ++n) vExpected.push_back(Work(file.Data(), n, alone, 1));
    for (std::string const& strAnswer : vExpected[0]) ASSERT_GT(strAnswer.size(), 100u) << "every step finds a lot";
    InThreads([&](size_t n) { vAnswer[n] = Work(file.Data(), n, together, 2); });
    EXPECT_GE(together.Most(), 2) << "they were at work at the same time";
    for (size_t n = 0; n < THREADS; ++n) EXPECT_EQ(vAnswer[n], vExpected[n]) << "thread " << n;
}

// The interfaces have one object for the process: one thread, and no other, may have them while others use objects of
// their own.
TEST(ParallelDictionaries, DoNotDisturbTheInterfacesOnOneThread) {
    CMappedFile const file(CTextWorld().Bytes());
    COverlap alone, together;
    CAnswers const vExpected = Work(file.Data(), 1, alone, 1);
    dic.SetDictionary(file.Data());
    ga_legacy::dic.SetDictionary(file.Data());
    std::atomic<size_t> nWrong{0};
    InThreads([&](size_t n) {
        if (n != 0) {
            if (Work(file.Data(), 1, together, 1) != vExpected) ++nWrong;
            return;
        }
        for (int nRound = 0; nRound < 10 * ROUNDS; ++nRound) {
            HGLOBAL h = nullptr;
            if (GetAdrFromZip("100", &h) != 0 || GlobalSize(h) < 100) ++nWrong;
            GlobalFree(h);
            GA_ADRSRT request = {};
            GA_ADRNUM counts = {};
            std::strcpy(request.szCode, nRound % 2 == 0 ? "1" : "7260003");
            if (GA_adr_exec(GA_SEARCH, 0, &request, nullptr, &counts) != 0 || counts.nPrefs != 1) ++nWrong;
        }
    });
    EXPECT_EQ(nWrong, 0u);
    dic.SetDictionary(nullptr);
    ga_legacy::dic.SetDictionary(nullptr);
}

// Objects that come and go beside others: construction, binding and destruction touch nothing that is shared.
TEST(ParallelDictionaries, MayBeMadeAndDestroyedWhileOthersAnswer) {
    CMappedFile const file(CTextWorld().Bytes());
    std::string strExpected;
    {
        CAddrDic owned;
        owned.SetDictionary(file.Data());
        strExpected = Browse(owned) + Refine(owned);
    }
    std::atomic<size_t> nWrong{0};
    InThreads([&](size_t) {
        for (int nRound = 0; nRound < 4 * ROUNDS; ++nRound) {
            CAddrDic owned;
            owned.SetDictionary(file.Data());
            if (Browse(owned) + Refine(owned) != strExpected) ++nWrong;
        }
    });
    EXPECT_EQ(nWrong, 0u);
}

} // namespace
