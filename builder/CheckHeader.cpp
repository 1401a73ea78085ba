// CheckHeader.cpp - the rules of the file as a whole: header, tables, checksum.
#include "builder/CheckRules.h"

#include "builder/EditionDate.h"
#include "builder/ImageTables.h"
#include "builder/ImageWriter.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>

namespace qe {

namespace {

// Where one flipped bit would make the checksum right: its position in the file, and the bit. The checksum is linear:
// a flipped bit changes it by a value that depends on the distance from the end only, and that can be followed from
// the end to the front, eight values at a time.
struct CFlippedBit {
    size_t nOffset;
    unsigned nBit;
};
uint32_t OneByteOn(uint32_t nCrc) {
    for (int n = 0; n < 8; ++n) nCrc = (nCrc >> 1) ^ ((nCrc & 1) != 0 ? 0xEDB88320u : 0);
    return nCrc;
}
std::optional<CFlippedBit> FindFlippedBit(std::vector<unsigned char> const& vByte, uint32_t nDifference) {
    for (unsigned nBit = 0; nBit < 32; ++nBit)
        if (nDifference == 1u << nBit) return CFlippedBit{4 * size_t{HDR_CHECKSUM} + nBit / 8, nBit % 8};
    std::array<uint32_t, 256> anStep;
    for (uint32_t n = 0; n < anStep.size(); ++n) anStep[n] = OneByteOn(n);
    std::array<uint32_t, 8> anEffect;
    for (unsigned nBit = 0; nBit < 8; ++nBit) anEffect[nBit] = anStep[1u << nBit];
    for (size_t nOffset = vByte.size(); nOffset-- > 0;)
        for (unsigned nBit = 0; nBit < 8; ++nBit) {
            if (anEffect[nBit] == nDifference && nOffset / 4 != HDR_CHECKSUM) return CFlippedBit{nOffset, nBit};
            anEffect[nBit] = (anEffect[nBit] >> 8) ^ anStep[anEffect[nBit] & 0xFF];
        }
    return std::nullopt;
}

class CHeaderCheck {
  public:
    CHeaderCheck(std::vector<unsigned char> const& vByte, CCheckReport& report) : m_vByte(vByte), m_report(report) {}

    // Whether the rest of the file can be looked at.
    bool Check() {
        if (!CheckFile()) return false;
        bool const bInside = CheckTables();
        CheckChecksum();
        if (!bInside) return false;
        CheckIdentification();
        for (unsigned nWord : {7u, 24u, 25u})
            if (Word(nWord) != 0) Tell(ECheckRule::Unused, nWord, "is " + Number(Word(nWord)));
        return true;
    }

  private:
    uint32_t Word(unsigned nWord) const { return ReadWord(m_vByte.data() + size_t{4} * nWord); }
    void Tell(ECheckRule nRule, unsigned nWord, std::string const& strWhat) {
        m_report.Add({nRule, "header word " + Number(nWord), "", strWhat});
    }

    // What fails here may fail because of one flipped bit; of another file's checksum nothing need be said.
    bool CheckFile() {
        if (IsRightFile()) return true;
        if (m_vByte.size() >= HDR_BYTES && WrongMagicBytes() <= 1)
            if (auto const bit = FlippedBit()) TellFlippedBit(*bit);
        return false;
    }

    bool IsRightFile() {
        if (m_vByte.size() < HDR_BYTES || WrongMagicBytes() != 0) {
            m_report.Add({ECheckRule::File, "file", "", "is no dictionary of ours"});
            return false;
        }
        if (Word(HDR_VERSION) != IMAGE_VERSION) {
            Tell(ECheckRule::Format, HDR_VERSION,
                 "is " + Number(Word(HDR_VERSION)) + ", known is " + Number(IMAGE_VERSION));
            return false;
        }
        if (Word(HDR_FILE_SIZE) == m_vByte.size()) return true;
        Tell(ECheckRule::File, HDR_FILE_SIZE,
             "says " + Number(Word(HDR_FILE_SIZE)) + " bytes, the file has " + Number(m_vByte.size()));
        return false;
    }

    size_t WrongMagicBytes() const {
        size_t nWrong = 0;
        for (size_t n = 0; n < sizeof IMAGE_MAGIC; ++n)
            if (m_vByte[n] != static_cast<unsigned char>(IMAGE_MAGIC[n])) ++nWrong;
        return nWrong;
    }

    bool CheckTables() {
        struct CRun {
            uint64_t nBegin, nEnd;
            CImageTable const* pTable;
        };
        std::vector<CRun> vRun;
        bool bRight = true;
        for (CImageTable const& table : IMAGE_TABLES) {
            uint64_t const nOffset = Word(table.nOffset), nSize = uint64_t{Word(table.nCount)} * table.nRecord;
            bool const bAligned = table.nRecord == 1 || nOffset % 4 == 0;
            bool const bInside =
                nOffset >= HDR_BYTES && nOffset <= m_vByte.size() && nSize <= m_vByte.size() - nOffset;
            if (bAligned && bInside) {
                vRun.push_back({nOffset, nOffset + nSize, &table});
                continue;
            }
            Tell(ECheckRule::Tables, table.nOffset,
                 std::string("the table of ") + table.pszName + ", " + Number(nSize) + " bytes at " +
                     Number(nOffset) +
                     (bAligned ? ", does not lie behind the header in the file" : ", is not aligned"));
            bRight = false;
        }
        for (tagHEADERWORD nWord : {HDR_FIFTH_TABLE, HDR_SIXTH_TABLE})
            if (Word(nWord) > m_vByte.size()) Tell(ECheckRule::Tables, nWord, "leads out of the file");
        // An empty table may stand where another one begins.
        std::sort(vRun.begin(), vRun.end(), [](CRun const& a, CRun const& b) {
            return a.nBegin != b.nBegin ? a.nBegin < b.nBegin : a.nEnd < b.nEnd;
        });
        for (size_t n = 1; n < vRun.size(); ++n)
            if (vRun[n].nBegin < vRun[n - 1].nEnd)
                Tell(ECheckRule::Tables, vRun[n].pTable->nOffset,
                     std::string("the table of ") + vRun[n].pTable->pszName + " begins in that of " +
                         vRun[n - 1].pTable->pszName);
        if (bRight) CheckLastText();
        return bRight;
    }

    // Then every text ends in NUL, and the engine need not measure each of them anew.
    void CheckLastText() {
        uint64_t const nEnd = uint64_t{Word(HDR_STRING_AREA)} + Word(HDR_STRING_SIZE);
        if (Word(HDR_STRING_SIZE) != 0 && m_vByte[static_cast<size_t>(nEnd - 1)] != '\0')
            Tell(ECheckRule::Tables, HDR_STRING_SIZE, "the string area does not end in NUL");
    }

    std::optional<CFlippedBit> FlippedBit() const {
        uint32_t const nDifference = ImageChecksum(m_vByte.data(), m_vByte.size()) ^ Word(HDR_CHECKSUM);
        return nDifference == 0 ? std::nullopt : FindFlippedBit(m_vByte, nDifference);
    }
    // Damage in several places may look like it, too.
    void TellFlippedBit(CFlippedBit const& bit) {
        Tell(ECheckRule::Checksum, HDR_CHECKSUM,
             "is wrong, as if bit " + Number(bit.nBit) + " of byte " + Number(bit.nOffset) + " were flipped");
    }
    void CheckChecksum() {
        if (ImageChecksum(m_vByte.data(), m_vByte.size()) == Word(HDR_CHECKSUM)) return;
        if (auto const bit = FlippedBit()) return TellFlippedBit(*bit);
        Tell(ECheckRule::Checksum, HDR_CHECKSUM, "is wrong, by more than one bit");
    }

    void CheckIdentification() {
        uint32_t const nEdition = Word(HDR_EDITION);
        if (nEdition != 0 && !IsEdition(nEdition))
            Tell(ECheckRule::Identification, HDR_EDITION, "is no edition: " + Number(nEdition));
        if (Word(HDR_SOURCE) > static_cast<uint32_t>(ESource::Sample))
            Tell(ECheckRule::Identification, HDR_SOURCE, "is no source: " + Number(Word(HDR_SOURCE)));
    }

    std::vector<unsigned char> const& m_vByte;
    CCheckReport& m_report;
};

} // namespace

bool CheckHeader(std::vector<unsigned char> const& vByte, CCheckReport& report) {
    return CHeaderCheck(vByte, report).Check();
}

} // namespace qe
