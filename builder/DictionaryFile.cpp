// DictionaryFile.cpp - a dictionary file as the tools look at it.
#include "builder/DictionaryFile.h"

#include "builder/Error.h"
#include "builder/ImageTables.h"
#include "builder/TextTable.h"
#include "dic/ImageHeader.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iomanip>
#include <iterator>
#include <ostream>

#include <nlohmann/json.hpp>

namespace qe {

namespace {

constexpr unsigned DEEPEST = 32; // steps below a prefecture that are shown; eight levels need seven

struct CLevel {
    char const* pszName;
    tagHEADERWORD nCount;
};
constexpr CLevel LEVELS[] = {{"prefectures", HDR_PREF_COUNT},
                             {"cities", HDR_CITY_COUNT},
                             {"towns", HDR_TOWN_COUNT},
                             {"organisation names", HDR_OFFICE_COUNT}};

// Walks the tree downwards in the order of the nodes. A child is visited only from the parent that it names, and
// parents come before their children, so the walk ends on any file.
class CTreePrinter {
  public:
    CTreePrinter(CAddrDic const& dictionary, unsigned nLevel, std::ostream& out)
        : m_dic(dictionary), m_nLevel(nLevel), m_out(out) {}

    void PrintChildren(uint32_t nFirst, uint32_t nCount, uint32_t nParent, unsigned nDepth) {
        if (nDepth > DEEPEST) return; // only a damaged file is
        for (uint32_t n = 0; n < nCount; ++n) {
            uint32_t const nIndex = nFirst + n;
            tagADDRNODE const* const pNode = m_dic.GetAddrNode(nIndex);
            if (pNode == nullptr || pNode->nParent != nParent || (nParent != ADDR_NONE && nIndex <= nParent)) return;
            if (pNode->nLevel > m_nLevel) continue;
            PrintNode(*pNode, nDepth);
            PrintChildren(pNode->nFirstChild, pNode->nChildCount, nIndex, nDepth + 1);
        }
    }

  private:
    char const* Text(unsigned long nOffset) const {
        char const* const psz = m_dic.GetString(nOffset);
        return psz == nullptr ? "" : psz;
    }
    char const* TextBehind(uint32_t nOffset) const { return Text(nOffset + std::strlen(Text(nOffset)) + 1ul); }

    void PrintNode(tagADDRNODE const& node, unsigned nDepth) {
        char const* const pszName = Text(node.nName);
        m_out << std::string(size_t{2} * nDepth, ' ') << unsigned{node.nLevel} << ' '
              << (*pszName == '\0' ? "-" : pszName);
        char const* const pszKana = TextBehind(node.nName);
        tagADDRINFO const* const pInfo = m_dic.GetAddrInfo(node.nInfo);
        if (*pszKana != '\0' || pInfo != nullptr) m_out << '\t' << pszKana;
        if (pInfo != nullptr) m_out << '\t' << Text(pInfo->nCode) << '\t' << TextBehind(pInfo->nCode);
        m_out << '\n';
    }

    CAddrDic const& m_dic;
    unsigned m_nLevel;
    std::ostream& m_out;
};

} // namespace

char const* SourceText(uint32_t nSource) {
    switch (static_cast<ESource>(nSource)) {
    case ESource::Official:
        return "official tables";
    case ESource::Skk:
        return "SKK dictionaries (no readings, no old codes)";
    case ESource::Sample:
        return "sample";
    case ESource::Unknown:
        break;
    }
    return "unknown";
}

CDictionaryFile::CDictionaryFile(std::string const& strPath) {
    struct stat status = {};
    if (stat(strPath.c_str(), &status) != 0) throw CBuildError(strPath + ": " + std::strerror(errno));
    if (!S_ISREG(status.st_mode)) throw CBuildError(strPath + ": is not a file.");
    std::ifstream file(strPath, std::ios::binary);
    m_vByte.assign(std::istreambuf_iterator<char>(file), {});
    if (!file) throw CBuildError(strPath + ": cannot be read.");
    if (m_vByte.size() < HDR_BYTES || std::memcmp(m_vByte.data(), IMAGE_MAGIC, sizeof IMAGE_MAGIC) != 0)
        throw CBuildError(strPath + ": is not a dictionary of ours.");
    if (Word(HDR_VERSION) > IMAGE_VERSION)
        throw CBuildError(strPath + ": has format " + std::to_string(Word(HDR_VERSION)) +
                          ", newer than this program's " + std::to_string(IMAGE_VERSION) + "; update the program.");
    if (Word(HDR_FILE_SIZE) != m_vByte.size())
        throw CBuildError(strPath + ": is damaged: " + std::to_string(m_vByte.size()) + " bytes instead of " +
                          std::to_string(Word(HDR_FILE_SIZE)) + ".");
    for (CImageTable const& table : IMAGE_TABLES) {
        uint64_t const nOffset = Word(table.nOffset);
        if (nOffset % (table.nRecord < 4 ? 1 : 4) != 0 || nOffset > Size() ||
            uint64_t{Word(table.nCount)} * table.nRecord > Size() - nOffset)
            throw CBuildError(strPath + ": is damaged: the table of " + table.pszName + " does not lie in the file.");
    }
    if (Word(HDR_STRING_SIZE) != 0 && m_vByte[Word(HDR_STRING_AREA) + size_t{Word(HDR_STRING_SIZE)} - 1] != 0)
        throw CBuildError(strPath + ": is damaged: the last text has no end.");
}

bool CDictionaryFile::IsIntact() const {
    return ImageChecksum(m_vByte.data(), m_vByte.size()) == Word(HDR_CHECKSUM);
}

uint32_t CDictionaryFile::Word(unsigned nWord) const {
    return ReadWord(m_vByte.data() + size_t{4} * nWord);
}

void PrintInfo(CDictionaryFile const& file, bool bJson, std::ostream& out) {
    nlohmann::ordered_json info;
    info["format"] = file.Word(HDR_VERSION);
    info["edition"] = EditionText(file.Word(HDR_EDITION));
    info["source"] = SourceText(file.Word(HDR_SOURCE));
    info["checksum"] = file.IsIntact() ? "right" : "WRONG: the file has been changed or damaged";
    info["bytes"] = file.Size();
    for (CLevel const& level : LEVELS) info[level.pszName] = file.Word(level.nCount);
    for (CImageTable const& table : IMAGE_TABLES) {
        auto& area = info["tables"][table.pszName];
        area["offset"] = file.Word(table.nOffset);
        area["records"] = file.Word(table.nCount);
        area["bytes"] = uint64_t{file.Word(table.nCount)} * table.nRecord;
    }
    // Its records are of several kinds.
    if (auto const index = FindTextTable(file.Bytes()))
        info["tables"]["text index"] = {{"offset", index->nOffset}, {"bytes", index->nSize}};
    if (bJson) {
        out << info.dump() << '\n';
        return;
    }
    for (auto const& [strName, value] : info.items())
        if (!value.is_object())
            out << std::left << std::setw(20) << strName
                << (value.is_string() ? value.get<std::string>() : value.dump()) << '\n';
    out << '\n'
        << std::left << std::setw(20) << "table" << std::right << std::setw(10) << "offset" << std::setw(10)
        << "records" << std::setw(10) << "bytes" << '\n';
    for (auto const& [strName, area] : info["tables"].items())
        out << std::left << std::setw(20) << strName << std::right << std::setw(10) << area["offset"].dump()
            << std::setw(10) << (area.contains("records") ? area["records"].dump() : "") << std::setw(10)
            << area["bytes"].dump() << '\n';
}

void PrintTree(CDictionaryFile const& file, unsigned nLevel, std::ostream& out) {
    CAddrDic dictionary;
    dictionary.SetDictionary(file.Bytes().data());
    CTreePrinter(dictionary, nLevel, out)
        .PrintChildren(file.Word(HDR_FIRST_PREF), file.Word(HDR_PREF_COUNT), ADDR_NONE, 0);
}

} // namespace qe
