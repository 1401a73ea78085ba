// What an object keeps of its searches needs memory: without it, or with some of it, the answers are the same, and
// nobody hears of it.
#include "tests/library/FaultMemory.h"
#include "tests/library/PlainWorld.h"

#include <gtest/gtest.h>

#include <new>

namespace {

// The operations that list nothing, so that they have an answer without memory.
bool NeedsNoMemory(CQuestion const& question) {
    return question.nKind == QUESTION_CODE ||
           (question.nKind >= QUESTION_ENTRY && question.nKind <= QUESTION_ORGANISATION) ||
           question.nKind == QUESTION_CITY_INDEX;
}

// The address of a question's answer, in words that take no memory: its numbers and its record.
struct CShortAnswer {
    long nResult, nRead;
    tagADDR addr;
};

CShortAnswer AskShortly(CAddrDic& dictionary, CQuestion const& question, char* pszName) {
    static tagADDR const marked = MarkedAddr();
    char const* const pszText = question.strText.c_str();
    CShortAnswer answer = {0, 0, marked};
    char const* psz = pszText;
    if (question.nKind == QUESTION_CODE) answer.nResult = dictionary.SearchPostCode7(psz);
    if (question.nKind == QUESTION_ENTRY)
        answer.nResult = dictionary.GetAddr(dictionary.GetAddrInfo(question.nNumber), &answer.addr);
    if (question.nKind == QUESTION_PREF) answer.nResult = dictionary.SeparatePref(&psz, answer.addr);
    if (question.nKind == QUESTION_CITY)
        answer.nResult = dictionary.SeparateCity(&psz, question.nNumber, answer.addr);
    if (question.nKind == QUESTION_TOWN)
        answer.nResult = dictionary.SeparateTown(&psz, question.nNumber, answer.addr);
    if (question.nKind == QUESTION_DIVIDE) answer.nResult = dictionary.DivideAddr(psz, &answer.addr) ? 1 : 0;
    if (question.nKind == QUESTION_LATEST)
        answer.nResult = static_cast<long>(dictionary.GetLatestAddr(psz, answer.addr));
    if (question.nKind == QUESTION_CODE_OF)
        answer.nResult = dictionary.GetPostCodeFromAddr(psz, pszName, answer.addr);
    if (question.nKind == QUESTION_ORGANISATION) answer.nResult = dictionary.SearchInc(pszName);
    if (question.nKind == QUESTION_CITY_INDEX) answer.nResult = dictionary.SearchCity(psz);
    answer.nRead = static_cast<long>(psz - pszText);
    return answer;
}

// The questions with their answers and with room for the names, which are changed in place.
class CFaultQuestions {
  public:
    CFaultQuestions(CRandom& random, CWildWorld const& world, unsigned char const* pImage) {
        m_plain.SetDictionary(pImage);
        for (int n = 0; n < 60; ++n) Add(world.WholeCountry(random));
        for (CQuestion const& question : world.Questions(random, 3 * QUESTIONS))
            if (NeedsNoMemory(question)) Add(question);
        Stir(random, m_vQuestion);
        for (CQuestion const& question : m_vQuestion) {
            std::vector<char> vName = NameOf(question);
            m_vAnswer.push_back(Ask(m_plain, question, question.strText.c_str(), vName.data()));
        }
    }

    // True when all answers are the right ones; takes no memory of its own.
    bool Agree(CAddrDic& dictionary, size_t& nWhere) {
        for (nWhere = 0; nWhere < m_vQuestion.size(); ++nWhere) {
            CQuestion const& question = m_vQuestion[nWhere];
            std::memcpy(m_szName, question.strName.c_str(), question.strName.size() + 1);
            CShortAnswer const answer = AskShortly(dictionary, question, m_szName);
            CAnswer const& expected = m_vAnswer[nWhere];
            if (answer.nResult != expected.nResult || answer.nRead != expected.nRead ||
                !AreEqual(answer.addr, expected.vAddr[0]))
                return false;
        }
        return true;
    }

    std::string Told(size_t n) const { return n < m_vQuestion.size() ? Shown(m_vQuestion[n]) : "nothing"; }

  private:
    void Add(CQuestion const& question) { m_vQuestion.push_back(question); }
    static std::vector<char> NameOf(CQuestion const& question) {
        char const* const psz = question.strName.c_str();
        return {psz, psz + question.strName.size() + 1};
    }

    CPlainDic m_plain;
    std::vector<CQuestion> m_vQuestion;
    std::vector<CAnswer> m_vAnswer;
    char m_szName[1000] = "";
};

// One object with so many allocations from its first question on; true when they were enough. Then it is asked again,
// with all the memory there is.
bool Try(unsigned char const* pImage, CFaultQuestions& questions, long nAllocations, CShortage::EKind nKind) {
    CAddrDic dictionary;
    dictionary.SetDictionary(pImage);
    bool bAgree = true, bThrown = false;
    size_t nWhere = 0;
    CShortage shortage(nAllocations, nKind);
    try {
        for (int n = 0; n < 2 && bAgree; ++n) bAgree = questions.Agree(dictionary, nWhere);
    } catch (std::bad_alloc const&) {
        bThrown = true;
    }
    bool const bFailed = shortage.End();
    EXPECT_FALSE(bThrown) << nAllocations << " allocations, " << questions.Told(nWhere);
    EXPECT_TRUE(bAgree) << nAllocations << " allocations, " << questions.Told(nWhere);
    EXPECT_TRUE(questions.Agree(dictionary, nWhere)) << "with memory again: " << questions.Told(nWhere);
    return !bFailed || testing::Test::HasFailure();
}

TEST(FastPathsOutOfMemory, AnswerLikeThePlainModelAtEachAllocationThatFails) {
    CWildRecipe const large = {8, 30, 12, 1, 60, 0};
    for (unsigned n = 0; n < 30; ++n) {
        CRandom random(20261203 + n);
        CWildWorld const world(random, n < 5 ? large : CWildRecipe());
        CGuardedBytes const bytes(world.Bytes());
        CFaultQuestions questions(random, world, bytes.Data());
        for (CShortage::EKind const nKind : SHORTAGES) {
            SCOPED_TRACE("seed " + std::to_string(20261203 + n));
            long nTries = 0;
            while (!Try(bytes.Data(), questions, nTries, nKind)) ASSERT_LT(++nTries, 1000);
        }
        if (HasFailure()) return;
    }
}

TEST(FastPathsOutOfMemory, LoseNothing) {
    CRandom random = Seeded(20261204);
    CWildWorld const world(random);
    CGuardedBytes const bytes(world.Bytes());
    CFaultQuestions questions(random, world, bytes.Data());
    size_t nWhere = 0;
    long const nLive = memory.nLive;
    for (long nAllocations = 0; nAllocations < 5; ++nAllocations) {
        CAddrDic dictionary;
        for (int n = 0; n < 3; ++n) {
            dictionary.SetDictionary(bytes.Data());
            CShortage const shortage(nAllocations);
            EXPECT_TRUE(questions.Agree(dictionary, nWhere));
        }
    }
    EXPECT_EQ(memory.nLive, nLive);
}

} // namespace
