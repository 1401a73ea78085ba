#include "tests/builder/CheckMutants.h"

#include "builder/TextTable.h"
#include "dic/AddrDic.h"
#include "tests/builder/CheckRecipe.h"
#include "tests/support/EveryOperation.h"
#include "tests/support/GuardedBytes.h"
#include "text/AddressText.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <set>

#if defined(__SANITIZE_ADDRESS__)
#    include <sanitizer/common_interface_defs.h>
#endif

namespace {

constexpr unsigned MOST_SECONDS = 60; // of one trial
constexpr int SIGNALS[] = {SIGALRM, SIGABRT, SIGSEGV, SIGBUS, SIGFPE};
char szTrial[600];

void Say() {
    [[maybe_unused]] auto const nWritten = write(STDERR_FILENO, szTrial, std::strlen(szTrial));
}

void Tell(int nSignal) {
    Say();
    std::signal(nSignal, SIG_DFL);
    raise(nSignal);
}

} // namespace

CTrial::CTrial(std::string const& strWhat) {
    std::snprintf(szTrial, sizeof szTrial, "while trying: %s\n", strWhat.c_str());
    alarm(MOST_SECONDS);
    std::signal(SIGALRM, Tell);
#if defined(__SANITIZE_ADDRESS__)
    __sanitizer_set_death_callback(Say); // it handles the other signals
#else
    for (int nSignal : SIGNALS) std::signal(nSignal, Tell);
#endif
}

CTrial::~CTrial() {
    alarm(0);
    szTrial[0] = '\0';
#if !defined(__SANITIZE_ADDRESS__)
    for (int nSignal : SIGNALS) std::signal(nSignal, SIG_DFL);
#endif
}

void CMutants::Try(std::string const& strRecipe) {
    Try(CRecipe(strRecipe).Apply(SmallWorld()), strRecipe);
}

// The page that cannot be touched lies behind the image or in front of it, by turns; only a size that is a multiple
// of 4 leaves an image aligned at the end of a page.
void CMutants::Try(CImageBytes const& vByte, std::string const& strWhat) {
    CTrial const trial(strWhat);
    qe::CCheckReport const report = qe::CheckDictionary(vByte);
    bool const bSound = report.IsSound();
    ++(bSound ? m_nAccepted : m_nRefused);
    if (!bSound && !(LiesInItsFile(report) && ++m_nInItsFile % m_nRefusedEach == 0)) return;
    bool const bEnd = vByte.size() % 4 == 0 && m_nSeed % 2 == 0;
    CGuardedBytes const image(vByte.data(), vByte.size(), CGuardedBytes::ReadOnly,
                              bEnd ? CGuardedBytes::EndOfPage : CGuardedBytes::StartOfPage);
    CEveryOperation run(image.Data(), bSound ? CEveryOperation::Sound : CEveryOperation::Bounded, bSound ? 4 : 2);
    run.Run(m_nSeed += 5);
    m_nBounded += bSound ? 0 : 1;
    if (bSound && !qe::FindTextTable(vByte)) TryIndex(vByte, image.Data(), strWhat);
}

void CMutants::TryIndex(CImageBytes vByte, unsigned char const* pGuarded, std::string const& strWhat) {
    CAddrDic dic;
    dic.SetDictionary(pGuarded);
    std::vector<unsigned char> const vIndex = qeadrs::BuildTextIndex(dic);
    qe::AppendTextIndex(vByte);
    auto const table = qe::FindTextTable(vByte);
    ASSERT_TRUE(table) << strWhat;
    ASSERT_EQ(table->nSize, vIndex.size()) << strWhat;
    EXPECT_TRUE(std::equal(vIndex.begin(), vIndex.end(), vByte.data() + table->nOffset)) << strWhat;
    EXPECT_EQ(LinesOf(vByte), std::vector<std::string>()) << strWhat;
}

void CMutants::Finish(char const* pszWhat) const {
    std::cout << pszWhat << ": " << m_nRefused << " refused (" << m_nBounded << " of them tried), " << m_nAccepted
              << " accepted\n";
    EXPECT_GT(m_nAccepted, 0u);
    EXPECT_GT(m_nRefused, 0u);
    EXPECT_GT(m_nBounded, 0u);
}

// --- fields --------------------------------------------------------------------------------------------------------

namespace {

// Successors stand in the string area, behind "code NUL old code NUL".
void AddSuccessors(CImageBytes const& vByte, std::vector<CField>& vField) {
    for (uint32_t n = 0; n < WordAt(vByte, 4 * HDR_INFO_COUNT); ++n) {
        size_t const nEntry = WordAt(vByte, 4 * HDR_INFO_TABLE) + n * sizeof(tagADDRINFO);
        if ((WordAt(vByte, nEntry + 4) & ADDRINFO_SUPERSEDED) == 0) continue;
        size_t const nOld = size_t{WordAt(vByte, 4 * HDR_STRING_AREA)} + WordAt(vByte, nEntry) + 8;
        size_t const nPlace = nOld + std::strlen(reinterpret_cast<char const*>(vByte.data()) + nOld) + 1;
        vField.push_back({"word", '[' + std::to_string(nPlace) + ']', n, WordAt(vByte, nPlace)});
    }
}

} // namespace

bool CField::IsLike(CField const& other) const {
    auto const Table = [](CField const& field) { return field.strRecord.substr(0, field.strRecord.find('[')); };
    return Table(*this) == Table(other) && (strMember == other.strMember || strMember[0] == '[');
}

std::vector<CField> AllFields(CImageBytes const& vByte) {
    std::vector<CField> vField;
    struct CMember {
        char const* pszName;
        uint32_t nOffset;
    };
    auto const Add = [&](std::string const& strTable, tagHEADERWORD nTable, tagHEADERWORD nCount, uint32_t nRecord,
                         std::vector<CMember> const& vMember) {
        for (uint32_t n = 0; n < WordAt(vByte, 4 * nCount); ++n)
            for (CMember const& member : vMember) {
                uint32_t const nPlace = WordAt(vByte, 4 * nTable) + n * nRecord + member.nOffset;
                bool const bByte = member.nOffset < 4 && nRecord == sizeof(tagADDRNODE);
                vField.push_back({strTable + '[' + std::to_string(n) + ']', member.pszName, n,
                                  bByte ? vByte.at(nPlace) : WordAt(vByte, nPlace)});
            }
    };
    for (uint32_t n = 0; n < HDR_WORDS; ++n)
        vField.push_back({"header", '[' + std::to_string(n) + ']', n, WordAt(vByte, 4 * n)});
    Add("node", HDR_NODE_TABLE, HDR_NODE_COUNT, sizeof(tagADDRNODE),
        {{".nLevel", 0},
         {".abUnused", 1},
         {".nName", 4},
         {".nInfo", 8},
         {".nParent", 12},
         {".nChildCount", 16},
         {".nFirstChild", 20}});
    Add("entry", HDR_INFO_TABLE, HDR_INFO_COUNT, sizeof(tagADDRINFO), {{".nCode", 0}, {".nNode", 4}});
    Add("city", HDR_CITY_INDEX, HDR_CITY_COUNT, 4, {{"", 0}});
    Add("office", HDR_OFFICE_INDEX, HDR_OFFICE_COUNT, 4, {{"", 0}});
    AddSuccessors(vByte, vField);
    return vField;
}

std::vector<uint32_t> ValuesFor(CImageBytes const& vByte, CField const& field, std::vector<CField> const& vField) {
    std::set<uint32_t> setValue = {0,
                                   1,
                                   2,
                                   7,
                                   8,
                                   0xFF,
                                   0x7FFFFFFF,
                                   0x80000000,
                                   0x80000001,
                                   0xFFFFFFFE,
                                   0xFFFFFFFF,
                                   field.nIndex,
                                   field.nIndex | ADDRINFO_SUPERSEDED,
                                   field.nValue ^ ADDRINFO_SUPERSEDED};
    for (tagHEADERWORD nWord : {HDR_NODE_COUNT, HDR_INFO_COUNT, HDR_STRING_SIZE, HDR_FILE_SIZE})
        for (uint32_t nOff : {1u, 0u, ADDR_NONE}) setValue.insert(WordAt(vByte, 4 * nWord) - nOff);
    for (uint32_t nOff : {1u, 4u}) setValue.insert({field.nValue - nOff, field.nValue + nOff});
    for (CField const& other : vField)
        if (other.IsLike(field)) setValue.insert(other.nValue);
    bool const bByte = field.strMember == ".nLevel" || field.strMember == ".abUnused";
    std::set<uint32_t> setFit;
    for (uint32_t n : setValue) setFit.insert(bByte ? n & 0xFF : n);
    setFit.erase(field.nValue);
    return {setFit.begin(), setFit.end()};
}
