// Address texts that nobody would write: cut, stirred and sprinkled with other bytes. What holds for every text has to
// hold for them.
#include "AddressRecord.h"
#include "Failures.h"
#include "GuardedPages.h"
#include "Lookup.h"
#include "Previous.h"
#include "SlowAddress.h"

#include <algorithm>
#include <random>

using namespace national;

namespace {

class CNoise {
  public:
    explicit CNoise(unsigned nSeed) : m_random(nSeed) { std::printf("seed %u\n", nSeed); }

    size_t Number(size_t nBelow) { return nBelow == 0 ? 0 : m_random() % nBelow; }

    std::string Address() {
        switch (Number(3)) {
        case 0: {
            COfficeRow const& row = OfficeRows()[Number(OfficeRows().size())];
            return row.strPref + row.strCity + row.strTown + row.strRest;
        }
        case 1:
            if (!GoneTowns().empty()) return TextOf(GoneTowns()[Number(GoneTowns().size())].key) + "１−２";
            [[fallthrough]];
        default: {
            CTownRow const& row = TownRows()[Number(TownRows().size())];
            return std::string(row.strPref).append(row.strCity).append(row.strTown);
        }
        }
    }

    // The front stays whole, so that the search goes down from a prefecture.
    std::string CutBehind() {
        std::string const str = Address();
        return str.substr(0, 9 + Number(str.size()));
    }

    std::string Sprinkled() {
        std::string str = Address();
        for (size_t n = 1 + Number(3); n-- > 0;) {
            size_t const nAt = Number(4) == 0 ? Number(str.size()) : std::min<size_t>(str.size(), 12 + Number(40));
            str.insert(nAt, 1, static_cast<char>(1 + Number(255)));
        }
        return str;
    }

    std::string Stirred() {
        std::vector<std::string> vPiece;
        for (std::string strRest = Address(); !strRest.empty();) {
            size_t const nSize = 1 + Number(strRest.size());
            vPiece.push_back(strRest.substr(0, nSize));
            strRest.erase(0, nSize);
        }
        std::shuffle(vPiece.begin(), vPiece.end(), m_random);
        std::string str;
        for (std::string const& strPiece : vPiece) str += strPiece;
        return str;
    }

    std::string Bytes() {
        std::string str(1 + Number(40), ' ');
        for (char& c : str) c = static_cast<char>(1 + Number(255));
        return str;
    }

    // Mostly texts whose front is whole; those without a prefecture are looked for in the whole country, slowly.
    std::string Text() {
        switch (Number(16)) {
        case 0:
            return Stirred();
        case 1:
            return Bytes();
        case 2:
        case 3:
        case 4:
            return Sprinkled();
        case 5: {
            std::string const str = Address();
            return str.substr(Number(str.size()));
        }
        default:
            return CutBehind();
        }
    }

    std::string Office() {
        if (Number(8) == 0) return Bytes();
        std::string str = OfficeRows()[Number(OfficeRows().size())].strName;
        if (Number(2) == 0) str = str.substr(0, 6 + Number(str.size()));
        if (Number(4) == 0) str.insert(Number(str.size()), Number(2) == 0 ? "　" : " ,");
        return str;
    }

  private:
    std::mt19937 m_random;
};

bool IsInMapping(char const* psz) {
    auto const* const p = reinterpret_cast<unsigned char const*>(psz);
    unsigned char const* const pArea = Official().Bytes() + Official().Word(13);
    return psz == nullptr || (p >= pArea && p < pArea + Official().Word(10));
}

bool AreTextsInMapping(tagADDR const& addr) {
    for (char const* psz : {addr.pszCodeExt, addr.pszPostCode, addr.pszPref, addr.pszPrefKana, addr.pszCity,
                            addr.pszCityKana, addr.pszTown, addr.pszTownKana, addr.pszAreaKana, addr.pszOffice,
                            addr.pszOfficeKana, addr.pszBlock, addr.pszBlockKana, addr.pszNote})
        if (!IsInMapping(psz)) return false;
    return true;
}

bool IsNode(tagADDRNODE const* pNode, uint32_t nNode) {
    return pNode == (nNode == NONE ? nullptr : Dictionary().GetAddrNode(nNode));
}

std::string Text(char const* psz) {
    return psz == nullptr ? "" : psz;
}

// "e6 9d b1 ..."
std::string Hex(std::string const& str) {
    std::string strHex;
    for (char c : str) {
        constexpr char DIGITS[] = "0123456789abcdef";
        strHex += DIGITS[static_cast<unsigned char>(c) / 16];
        strHex += DIGITS[static_cast<unsigned char>(c) % 16];
    }
    return strHex;
}

TEST(AnyText, IsSeparatedIntoNamesOfTheDictionaryAndARemainderThatTogetherAreTheText) {
    CNoise noise(20260530);
    CFailures failures;
    CGuardedPages pages;
    size_t anFound[4] = {};
    for (size_t n = 0; n < 2000 && !failures.Enough(); ++n) {
        std::string const strText = noise.Text();
        char const* const pszText = n % 2 == 0 ? pages.AtEnd(WithNul(strText)) : pages.AtStart(WithNul(strText));
        CSeparated const expected = Separate(strText);
        ++anFound[(expected.nPref != NONE) + (expected.nCity != NONE) + (expected.nTown != NONE)];
        tagADDR addr(0);
        bool const bResult = Dictionary().DivideAddr(pszText, &addr);
        bool const bRest = addr.pszArea == pszText + expected.nConsumed;
        bool const bWhole =
            Text(addr.pszPref) + Text(addr.pszCity) + Text(addr.pszTown) + Text(addr.pszArea) == strText;
        bool const bNodes = IsNode(addr.pPrefNode, expected.nPref) && IsNode(addr.pCityNode, expected.nCity) &&
                            IsNode(addr.pTownNode, expected.nTown);
        std::string_view const strCode = expected.nEntry == NONE ? "" : Official().Entries()[expected.nEntry].strCode;
        if (!bResult || !bRest || !bWhole || !bNodes || !AreTextsInMapping(addr) || Text(addr.pszPostCode) != strCode)
            failures.Add("text " + std::to_string(n) + ": " + strText + "\n  " + Hex(strText));
    }
    PrintFigure("texts of which nothing was found", anFound[0]);
    PrintFigure("texts of which one level was found", anFound[1]);
    PrintFigure("texts of which two levels were found", anFound[2]);
    PrintFigure("texts of which all levels were found", anFound[3]);
}

TEST(AnyText, IsRenewedWithNamesOfTheDictionaryAndItsOwnRemainder) {
    CNoise noise(20260531);
    CFailures failures;
    CGuardedPages pages;
    size_t nRenewed = 0;
    for (size_t n = 0; n < 1000 && !failures.Enough(); ++n) {
        std::string const strText = noise.Text();
        char const* const pszText = pages.AtEnd(WithNul(strText));
        CSeparated const found = Separate(strText);
        tagADDR addr(0);
        uint32_t const nResult = Dictionary().GetLatestAddr(pszText, addr);
        bool const bEntry = found.nTown != NONE && Official().Nodes()[found.nTown].nEntry != NONE;
        nRenewed += bEntry && Official().Entries()[Official().Nodes()[found.nTown].nEntry].bSuperseded;
        bool const bRest = addr.pszArea == (found.nTown == NONE ? nullptr : pszText + found.nConsumed);
        std::string const strLatest =
            Text(addr.pszPref) + Text(addr.pszCity) + Text(addr.pszTown) + Text(addr.pszArea);
        if (nResult != (bEntry ? 1u : 0u) || !bRest || strLatest != LatestText(strText, found) ||
            !AreTextsInMapping(addr))
            failures.Add("text " + std::to_string(n) + ": " + strText + "\n  " + Hex(strText));
    }
    PrintFigure("texts that were renewed", nRenewed);
}

class AnyRecord : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(m_host.IsOpen()); }

    // The record at the end of its page for even numbers, at the start for odd ones.
    char* Place(size_t n, std::string const& str) { return n % 2 == 0 ? m_pages.AtEnd(str) : m_pages.AtStart(str); }

    CGuardedPages m_pages;

  private:
    CHost m_host;
};

TEST_F(AnyRecord, GetsItsCodesFromGetZipAndNothingElseChanges) {
    CNoise noise(20260601);
    CFailures failures;
    size_t nFound = 0;
    for (size_t n = 0; n < 1000 && !failures.Enough(); ++n) {
        std::string const strAddress = noise.Text();
        std::string const strOffice = noise.Office();
        short nExpected;
        std::string const strExpected = ExpectedAfterGetZip(strAddress, strOffice, nExpected);
        char* const pRecord = Place(n, OfficeRecord(strAddress, strOffice));
        short const nResult = PstAdrGetZip(pRecord);
        nFound += nResult == 0;
        if (nResult != nExpected || std::string(pRecord, RECORD_OFFICE) != strExpected ||
            pRecord + RECORD_OFFICE != SearchedName(strOffice))
            failures.Add("record " + std::to_string(n) + ": " + strAddress + " | " + strOffice + "\n  " +
                         Hex(strAddress) + " | " + Hex(strOffice));
    }
    PrintFigure("records that got a code", nFound);
}

TEST_F(AnyRecord, GetsItsLatestAddressAndNothingInFrontOfItButItsCodes) {
    CNoise noise(20260602);
    CFailures failures;
    for (size_t n = 0; n < 1000 && !failures.Enough(); ++n) {
        std::string const strAddress = noise.Text();
        std::string const strExpected = ExpectedAfterGetLatest(strAddress);
        char* const pRecord = Place(n, AddressRecord(strAddress));
        if (PstAdrGetLatestAdr(pRecord) != 0 || std::string(pRecord, strExpected.size()) != strExpected)
            failures.Add("record " + std::to_string(n) + ": " + strAddress + "\n  " + Hex(strAddress));
    }
}

TEST_F(AnyRecord, GetsTheBlockOfTheSlowReaderForItsText) {
    CNoise noise(20260603);
    CFailures failures;
    size_t nBlocks = 0;
    for (size_t n = 0; n < 600 && !failures.Enough(); ++n) {
        std::string const strText = n % 8 == 0 ? noise.Text() : noise.CutBehind();
        std::vector<CBlockAddress> const vExpected = AddressesOfPart(strText);
        if (vExpected.size() > 20000) continue; // whole prefectures have their own test
        HGLOBAL hBlock = nullptr;
        int const nResult = GetAdrFromAdd(Place(n, WithNul(strText)), &hBlock);
        nBlocks += nResult == 0;
        CompareBlocks(failures, strText + " " + Hex(strText), nResult == 0 ? TakeBlock(hBlock) : "",
                      ExpectedBlock(vExpected));
    }
    PrintFigure("texts that got a block", nBlocks);
}

} // namespace
