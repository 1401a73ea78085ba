// Check.h - whether a dictionary file can be trusted.
//
//   CCheckReport const report = CheckDictionary(vByte);
//   if (!report.IsSound()) PrintReport(report, false, std::cout);
//
// Sound     Every operation of the library is safe on the file, whatever its arguments, and answers by the rules of the
//           national dictionary: each rule of CHECK_RULES holds.
// Remarks   What a reader may want to know of a sound file.
// Budget    Each table and the string area are read a fixed number of times, and the towns of each city are sorted: the
//           work is that of sorting the file's records, whatever is in it, with at most 127 bytes of each name. Texts
//           are measured and decoded once, by one pass over the area. In memory the file itself, six bits for each byte
//           of the string area, and some bits for each record. The text index, when there is one, is made anew from
//           the records and compared, in a file that is sound otherwise.
// Copies    The bytes are looked at as they are given: a file that changes meanwhile is not noticed.
#ifndef QEADRS_BUILDER_CHECK_H
#define QEADRS_BUILDER_CHECK_H

#include <array>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

namespace qe {

enum class ECheckRule : unsigned {
    // the file as a whole; when one of these is broken, nothing behind it is looked at
    File,
    Format,
    Tables,
    // what identifies it
    Checksum,
    Identification,
    Unused,
    // nodes
    Level,
    Runs,
    Parent,
    Children,
    Alias,
    EntryOfNode,
    GoneCity,
    // texts
    Name,
    Reading,
    Shared,
    PrefName,
    TownOrder,
    // entries
    Code,
    CodeOrder,
    NodeOfEntry,
    Successor,
    // indexes
    CityIndex,
    OfficeIndex,
    // made of all the above: looked at when nothing else is broken
    TextIndex,
    Count
};
constexpr size_t CHECK_RULE_COUNT = static_cast<size_t>(ECheckRule::Count);

struct CRuleText {
    char const* pszName; // for programs
    char const* pszText; // what holds in a sound file
};
extern std::array<CRuleText, CHECK_RULE_COUNT> const CHECK_RULES;

struct CViolation {
    ECheckRule nRule;
    std::string strWhere; // "node 17", "entry 3", "header word 5"
    std::string strPath;  // of the node concerned, in words: "東京都 千代田区 丸の内"
    std::string strWhat;
};

class CCheckReport {
  public:
    static constexpr size_t MOST_TOLD = 100; // of each rule, unless another number is asked for

    explicit CCheckReport(size_t nMostTold = MOST_TOLD) : m_nMostTold(nMostTold) {}

    // Counts the violation, and keeps it when it is among the first of its rule.
    void Add(CViolation violation);
    // Whether the next violation of the rule is kept: its text need not be made when it is not.
    bool IsTold(ECheckRule nRule) const { return CountOf(nRule) < m_nMostTold; }

    bool IsSound() const;
    size_t CountOf(ECheckRule nRule) const { return m_anCount[static_cast<size_t>(nRule)]; }
    std::vector<CViolation> const& Violations() const { return m_vViolation; }

    void Remark(std::string strText) { m_vRemark.push_back(std::move(strText)); }
    std::vector<std::string> const& Remarks() const { return m_vRemark; }

  private:
    size_t m_nMostTold;
    std::array<size_t, CHECK_RULE_COUNT> m_anCount = {};
    std::vector<CViolation> m_vViolation;
    std::vector<std::string> m_vRemark;
};

CCheckReport CheckDictionary(std::vector<unsigned char> const& vByte, size_t nMostTold = CCheckReport::MOST_TOLD);

// The same for a file, which is read, not mapped. Throws CBuildError when it cannot be read, and when it is larger than
// a dictionary can be (4 GB).
CCheckReport CheckDictionaryFile(std::string const& strPath, size_t nMostTold = CCheckReport::MOST_TOLD);

// A line for each violation told and a count for each rule broken; or one JSON object.
void PrintReport(CCheckReport const& report, bool bJson, std::ostream& out);

} // namespace qe

#endif
