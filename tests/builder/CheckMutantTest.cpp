// Damage behind a right checksum: what is accepted of it is harmless under every operation of the library.
#include "tests/builder/CheckMutants.h"
#include "tests/builder/CheckRecipe.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <stdexcept>

// Each byte of the file, and with them every character of every text.
TEST(CheckMutants, AcceptedOnesOfAllFlippedBitsAreHarmless) {
    CMutants mutants(8);
    for (size_t nByte = 0; nByte < SmallWorld().size(); ++nByte) {
        if (nByte / 4 == HDR_CHECKSUM) continue; // it would be repaired at once
        for (unsigned nBit = 0; nBit < 8; ++nBit)
            mutants.Try("flip bit " + std::to_string(nBit) + " of byte " + std::to_string(nByte));
    }
    mutants.Finish("flipped bits");
}

TEST(CheckMutants, AcceptedOnesOfAllBoundaryValuesOfAllFieldsAreHarmless) {
    CMutants mutants(4);
    std::vector<CField> const vField = AllFields(SmallWorld());
    for (CField const& field : vField) {
        if (field.Name() == "header[" + std::to_string(HDR_CHECKSUM) + ']') continue;
        for (uint32_t const nValue : ValuesFor(SmallWorld(), field, vField))
            mutants.Try("set " + field.Name() + " = " + std::to_string(nValue));
    }
    mutants.Finish("boundary values and values of other records");
}

namespace {

// Recipes of some steps at random, each of a kind that passes many rules: values that are right elsewhere, records
// and texts moved as a whole. One number is drawn in each statement: compilers choose the order within one.
class CRandomRecipes {
  public:
    CRandomRecipes(CImageBytes const& vByte, unsigned long nSeed)
        : m_random(static_cast<uint32_t>(nSeed)), m_vByte(vByte), m_vField(AllFields(vByte)) {}

    std::string Next() {
        std::string strRecipe = Step();
        for (uint32_t n = Below(3); n > 0; --n) strRecipe += "; " + Step();
        return strRecipe;
    }

  private:
    uint32_t Below(size_t n) { return static_cast<uint32_t>(m_random() % n); }
    std::string Number(size_t nBelow) { return std::to_string(Below(nBelow)); }

    // Not the checksum: it would be repaired at once.
    CField const& Field() {
        for (;;)
            if (CField const& field = m_vField[Below(m_vField.size())]; field.Name() != "header[4]") return field;
    }
    // The same place of another record.
    CField const& Other(CField const& field) {
        for (;;)
            if (CField const& other = Field(); other.IsLike(field)) return other;
    }
    std::string Move(size_t nBytes, std::string const& strFrom, std::string const& strTo) {
        std::string const str = std::to_string(nBytes) + " bytes ";
        return Below(2) == 0 ? "copy " + str + "from " + strFrom + " to " + strTo
                             : "exchange " + str + "at " + strFrom + " and at " + strTo;
    }
    std::string MoveBytes(size_t nBytes, std::string const& strBase, size_t nRoom) {
        std::string const strFrom = strBase + Number(nRoom - nBytes + 1);
        return Move(nBytes, strFrom, strBase + Number(nRoom - nBytes + 1));
    }
    std::string SetPlace(std::string const& strPlace, size_t nPlaces, size_t nValues) {
        std::string const strStep = "set " + strPlace + Number(nPlaces) + "] = ";
        return strStep + Number(nValues);
    }
    // One record or more to the place of others of their table.
    std::string MoveRecords(tagHEADERWORD nTable, tagHEADERWORD nCount, size_t nRecord) {
        uint32_t const nRecords = WordAt(m_vByte, 4 * nCount);
        uint32_t const nMore = Below(2);
        uint32_t const nMoved = 1 + nMore * Below(nRecords / 2);
        size_t const nFrom = Below(nRecords - nMoved + 1) * nRecord;
        size_t const nTo = Below(nRecords - nMoved + 1) * nRecord;
        std::string const strTable = "header[" + std::to_string(nTable) + "] + ";
        return Move(nMoved * nRecord, strTable + std::to_string(nFrom), strTable + std::to_string(nTo));
    }

    std::string Step() {
        switch (Below(16)) {
        case 0:
            return SetPlace("byte[", m_vByte.size(), 256);
        case 1:
            return SetPlace("word[", m_vByte.size() - 3, m_vByte.size());
        case 2:
            return SetPlace("byte[header[13] + ", m_nArea, 256);
        case 3:
            return MoveBytes(1 + Below(12), "header[13] + ", m_nArea);
        case 4:
            return MoveBytes(1 + Below(64), "", m_vByte.size());
        case 5:
            return MoveRecords(HDR_NODE_TABLE, HDR_NODE_COUNT, sizeof(tagADDRNODE));
        case 6:
            return MoveRecords(HDR_INFO_TABLE, HDR_INFO_COUNT, sizeof(tagADDRINFO));
        case 7:
            return MoveRecords(HDR_CITY_INDEX, HDR_CITY_COUNT, sizeof(uint32_t));
        case 8:
            return MoveRecords(HDR_OFFICE_INDEX, HDR_OFFICE_COUNT, sizeof(uint32_t));
        case 9:
            return "shorten to " + Number(m_vByte.size()) + " bytes";
        case 10:
        case 11:
        case 12: {
            CField const& field = Field();
            std::string const strField = field.Name();
            std::string const strOther = Other(field).Name();
            return "set " + strField + " = " + strOther + "; set " + strOther + " = " + strField;
        }
        default: {
            std::string const strField = Field().Name();
            std::string const strOther = Field().Name();
            return "set " + strField + " = " + strOther + " + " + Number(3) + " - 1";
        }
        }
    }

    std::mt19937 m_random;
    CImageBytes const& m_vByte;
    std::vector<CField> m_vField;
    uint32_t m_nArea = WordAt(m_vByte, 4 * HDR_STRING_SIZE);
};

unsigned long Number(char const* pszVariable, unsigned long nElse) {
    char const* const psz = std::getenv(pszVariable);
    return psz == nullptr ? nElse : std::strtoul(psz, nullptr, 10);
}

} // namespace

// QEADRS_SEED and QEADRS_MUTANTS give another search, or a longer one.
TEST(CheckMutants, AcceptedOnesOfRandomRecipesAreHarmless) {
    unsigned long const nSeed = Number("QEADRS_SEED", 20260529), nMutants = Number("QEADRS_MUTANTS", 8000);
    CRandomRecipes recipes(SmallWorld(), nSeed);
    CMutants mutants(2);
    for (unsigned long n = 0; n < nMutants; ++n) {
        std::string const strRecipe = recipes.Next();
        CImageBytes vByte;
        try {
            vByte = CRecipe(strRecipe).Apply(SmallWorld());
        } catch (std::logic_error const&) {
            continue; // a place behind the end of a shortened file
        }
        if (vByte != SmallWorld()) mutants.Try(vByte, strRecipe);
    }
    mutants.Finish(("random recipes, seed " + std::to_string(nSeed)).c_str());
    EXPECT_GT(mutants.Accepted(), nMutants / 100);
    EXPECT_GT(mutants.Refused(), nMutants / 2);
}
