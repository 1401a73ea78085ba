// Check.cpp - the rules of a dictionary file, each looked at in time linear in the file's size.
#include "builder/Check.h"

#include "builder/CheckRules.h"
#include "builder/Error.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <utility>

namespace qe {

std::array<CRuleText, CHECK_RULE_COUNT> const CHECK_RULES = {{
    {"file", "the file begins with the mark of a dictionary, and is as long as its header says"},
    {"format", "the format is one that this program knows"},
    {"tables",
     "each table lies in the file, behind the header, aligned, and apart from the others; the string area ends "
     "in NUL"},
    {"checksum", "the checksum is right"},
    {"identification", "the edition is a date, a month or unknown, and the source one of those that there are"},
    {"unused", "what is not used is 0"},
    {"level", "levels are those that there are, and grow from parent to child: prefecture, city, town, below"},
    {"runs", "all prefectures, all cities and all towns stand together, where the header says"},
    {"parent", "each node but a prefecture stands behind its parent"},
    {"children", "each node but a prefecture and an alias is the child of one node, its parent"},
    {"alias",
     "an alias has the level, the parent and the entry of an organisation and stands behind all children; each "
     "organisation has one, named as it is searched for"},
    {"entry-of-node",
     "a node refers to its own entry; a city to that of its nameless town or, when it is gone, of any; "
     "a town to that of its parts when they have one code; each organisation has an entry"},
    {"gone-city", "a city that is gone refers to a superseded entry, stands behind those of today, and has no "
                  "current entry below it"},
    {"name",
     "names are whole texts, UTF-8, of at most 127 bytes; only towns and groups may have none; prefecture and "
     "city stay below 256"},
    {"reading", "a reading stands behind each name, and is UTF-8"},
    {"shared", "the name of a prefecture, a city or a town is no other node's, and no name is a reading"},
    {"pref-name", "the prefectures are those that there are, in their order"},
    {"town-order", "a town whose name begins another one's in the same city stands behind it"},
    {"code", "codes have seven digits, old codes three or five or none"},
    {"code-order", "entries are sorted by code and node, and their codes stand together and in this order"},
    {"node-of-entry",
     "an entry names a town or what is below one, a superseded one a town, and that refers back to it"},
    {"successor", "a superseded entry names one that is not, and no organisation's"},
    {"city-index", "the index holds each city once, by name and node"},
    {"organisation-index", "the index holds each organisation and each alias once, by name and node"},
    {"text-index", "the index of folded names, where there is one, is that of these records"},
}};

void CCheckReport::Add(CViolation violation) {
    bool const bTold = IsTold(violation.nRule);
    ++m_anCount[static_cast<size_t>(violation.nRule)];
    if (bTold) m_vViolation.push_back(std::move(violation));
}

bool CCheckReport::IsSound() const {
    return std::all_of(m_anCount.begin(), m_anCount.end(), [](size_t n) { return n == 0; });
}

CCheckReport CheckDictionary(std::vector<unsigned char> const& vByte, size_t nMostTold) {
    CCheckReport report(nMostTold);
    if (!CheckHeader(vByte, report)) return report;
    CCheckImage const image(vByte);
    CheckNodes(image, report);
    CheckTexts(image, report);
    CheckOffices(image, report);
    CheckEntries(image, report);
    CheckIndexes(image, report);
    // It is made by code that wants a sound image.
    if (report.IsSound()) CheckTextIndex(vByte, report);
    return report;
}

CCheckReport CheckDictionaryFile(std::string const& strPath, size_t nMostTold) {
    struct stat status = {};
    if (stat(strPath.c_str(), &status) != 0) throw CBuildError(strPath + ": " + std::strerror(errno));
    if (!S_ISREG(status.st_mode)) throw CBuildError(strPath + ": is not a file.");
    if (static_cast<uint64_t>(status.st_size) > UINT32_MAX) throw CBuildError(strPath + ": is larger than 4 GB.");
    std::ifstream file(strPath, std::ios::binary);
    std::vector<unsigned char> vByte(static_cast<size_t>(status.st_size));
    file.read(reinterpret_cast<char*>(vByte.data()), static_cast<std::streamsize>(vByte.size()));
    if (!file) throw CBuildError(strPath + ": cannot be read.");
    return CheckDictionary(vByte, nMostTold);
}

} // namespace qe
