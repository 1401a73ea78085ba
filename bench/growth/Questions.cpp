// Questions.cpp - drawing the questions.
#include "bench/growth/Questions.h"

#include "bench/AddressRecord.h"
#include "bench/World.h"
#include "builder/SearchedName.h"
#include "builder/Text.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <random>
#include <stdexcept>

namespace {

constexpr char HOUSE_NUMBER[] = "１－２－３";
constexpr size_t LEAD_DIGITS = 3;
constexpr size_t MOST_LISTS = 100; // of the kinds that are answered by long lists
constexpr size_t DRAWS = 100;      // for each question wanted: superseded entries are rare

// None is a name or begins with one; that is made sure of.
char const* const NOTHING[] = {
    "アトランティス市海底", "ゑびす町", "ここにはない", "凶京都千代田区", "〒１００", "不明", "？？？", "ＡＢＣビル"};

class CDraw {
  public:
    CDraw(CMappedDictionary const& dictionary, size_t nMost) : m_dictionary(dictionary), m_nMost(nMost) {
        m_dic.SetDictionary(dictionary.Image());
    }

    CGrowthQuestions Draw() {
        size_t const nEntries = m_dictionary.Word(HDR_INFO_COUNT);
        for (size_t n = 0; nEntries > 0 && n < DRAWS * m_nMost && !IsFull(); ++n) TakeEntry(m_random() % nEntries);
        if (m_questions.vWhole.empty() || m_questions.vOffice.empty())
            throw std::runtime_error("the dictionary has no addresses");
        DrawCities();
        AddNothing();
        return std::move(m_questions);
    }

  private:
    template <typename T>
    void Keep(std::vector<T>& vQuestion, T question, size_t nMost) {
        if (vQuestion.size() < nMost) vQuestion.push_back(std::move(question));
    }
    template <typename T>
    void Keep(std::vector<T>& vQuestion, T question) {
        Keep(vQuestion, std::move(question), m_nMost);
    }

    bool IsFull() const {
        CGrowthQuestions const& q = m_questions;
        return q.vCode.size() == m_nMost && q.vOld.size() == m_nMost && q.vWhole.size() == m_nMost &&
               q.vOffice.size() == m_nMost && q.vGone.size() == m_nMost;
    }

    void TakeEntry(size_t nEntry) {
        tagADDRINFO const* const pInfo = m_dic.GetAddrInfo(nEntry);
        tagADDR addr(0);
        m_dic.GetAddr(pInfo, &addr);
        std::string const strCode = addr.pszPostCode;
        Keep(m_questions.vCode, strCode);
        Keep(m_questions.vLead, strCode.substr(0, LEAD_DIGITS), MOST_LISTS);
        std::string const strOld = m_dic.GetString(pInfo->nCode + strCode.size() + 1);
        if (!strOld.empty()) Keep(m_questions.vOld, strOld);
        if (addr.pszPref == nullptr || addr.pszCity == nullptr || addr.pszTown == nullptr || *addr.pszTown == '\0')
            return;
        TakeAddress(addr, (pInfo->nNode & ADDRINFO_SUPERSEDED) != 0);
    }

    // An address that the caller's record cannot hold would be cut there, and find something else.
    void TakeAddress(tagADDR const& addr, bool bGone) {
        std::string const strBare = std::string(addr.pszCity) + addr.pszTown;
        std::string const strWhole = addr.pszPref + strBare;
        if (strWhole.size() + sizeof HOUSE_NUMBER > sizeof tagADDRESSRECORD::szAddress) return;
        if (bGone) return Keep(m_questions.vGone, strWhole + HOUSE_NUMBER);
        if (addr.pszOffice != nullptr) return TakeOffice(strWhole, addr.pszOffice);
        Keep(m_questions.vWhole, {strWhole + HOUSE_NUMBER, ""});
        Keep(m_questions.vBare, {strBare + HOUSE_NUMBER, ""});
    }

    // Without the few that are called nothing but 学校法人: what is left of such a name, a mark at most, begins all
    // others, and a search walks over them, thousands of times as long as for any other name.
    void TakeOffice(std::string const& strWhole, std::string const& strName) {
        constexpr size_t MARK = 3;
        if (qe::SearchedName(strName).size() <= MARK) return;
        Keep(m_questions.vOffice, {strWhole + HOUSE_NUMBER, qe::WithoutBlanks(strName)});
    }

    void DrawCities() {
        for (size_t n = 0; n < std::min(m_nMost, MOST_LISTS); ++n) {
            tagADDRNODE const* const pCity =
                m_dic.GetAddrNode(m_dictionary.Word(HDR_FIRST_CITY) + m_random() % m_dictionary.Word(HDR_CITY_COUNT));
            std::string const strCity = m_dic.GetString(pCity->nName);
            m_questions.vCity.push_back(m_dic.GetString(m_dic.GetAddrNode(pCity->nParent)->nName) + strCity);
            constexpr size_t LAST = 3; // bytes of 市, 区, 町, 村
            m_questions.vPartCity.push_back(strCity.substr(0, strCity.size() - LAST));
        }
    }

    void AddNothing() {
        for (char const* const psz : NOTHING) {
            std::string const strText = std::string(psz) + HOUSE_NUMBER;
            tagADDR addr(0);
            m_dic.DivideAddr(strText.c_str(), &addr);
            if (addr.pPrefNode != nullptr || addr.pCityNode != nullptr || addr.pTownNode != nullptr)
                throw std::runtime_error("the dictionary has something that " + strText + " names");
            m_questions.vNothing.push_back({strText, ""});
        }
    }

    CMappedDictionary const& m_dictionary;
    size_t m_nMost;
    CAddrDic m_dic;
    std::mt19937 m_random{BENCH_SEED};
    CGrowthQuestions m_questions;
};

} // namespace

CMappedDictionary::CMappedDictionary(std::string const& strPath) {
    struct stat status = {};
    int const nFile = open(strPath.c_str(), O_RDONLY | O_CLOEXEC);
    if (nFile < 0 || fstat(nFile, &status) != 0) throw std::runtime_error(strPath + ": cannot be opened");
    m_nSize = static_cast<size_t>(status.st_size);
    void* const p = mmap(nullptr, m_nSize, PROT_READ, MAP_SHARED, nFile, 0);
    close(nFile);
    if (p == MAP_FAILED || m_nSize < HDR_BYTES) throw std::runtime_error(strPath + ": cannot be mapped");
    m_pImage = static_cast<unsigned char const*>(p);
}

CMappedDictionary::~CMappedDictionary() {
    munmap(const_cast<unsigned char*>(m_pImage), m_nSize);
}

CGrowthQuestions DrawQuestions(CMappedDictionary const& dictionary, size_t nMost) {
    return CDraw(dictionary, nMost).Draw();
}
