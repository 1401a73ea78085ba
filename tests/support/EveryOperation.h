// CEveryOperation - every operation of the library on one image, with texts and codes drawn from the image itself:
// the class, both display functions, the postal address API and the legacy interface. What they answer is read to the
// last byte: nodes must lie in the table, texts in the string area or in the text that was asked for, and sound files
// must answer for each entry. The process ends with a sentence on stderr where one does not; what lives on has seen no
// harm.
//
//   CGuardedBytes const image(vByte);
//   CEveryOperation run(image.Data(), CEveryOperation::Sound);
//   run.Run();
//   EXPECT_GT(run.Addresses(), 0u);
//
// Bounds  At most so many nodes, entries, texts and codes are taken, evenly over their tables; the next seed takes
//         others. The work of one text is bounded by that of listing the dictionary some times over.
// Trust   Bounded leaves out what has no way to keep to the tables (the display functions on bare tables) and what
//         ends the process on purpose (the comment, for a name that is too long).
// Memory  Texts, fields and records of the caller's end with a page behind which nothing can be touched; in builds with
//         the address sanitizer they are blocks of its own heap, which it watches on both sides.
#ifndef QEADRS_TESTS_SUPPORT_EVERYOPERATION_H
#define QEADRS_TESTS_SUPPORT_EVERYOPERATION_H

#include "dic/AddrDic.h"
#include "platform/Win32Compat.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

class CEveryOperation {
  public:
    enum ETrust { Sound, Bounded };

    // REQUIRES: tables and string area lie in the image.
    CEveryOperation(unsigned char const* pImage, ETrust nTrust, uint32_t nMost = 16);
    ~CEveryOperation(); // binds the two interfaces to nothing
    CEveryOperation(CEveryOperation const&) = delete;
    CEveryOperation& operator=(CEveryOperation const&) = delete;

    // A text to ask for in all runs from now on, as an address, a code and an organisation, beside those of the image.
    void AlsoAsk(std::string const& strText) { m_vAlso.push_back(strText); }

    void Run(uint32_t nSeed = 0);

    // What the last run has asked for.
    std::vector<std::string> const& Texts() const { return m_vText; }
    std::vector<std::string> const& Codes() const { return m_vCode; }
    std::vector<std::string> const& Offices() const { return m_vOffice; }

    // What the runs have met, for tests that want to know that they met something.
    size_t Addresses() const { return m_nAddresses; } // records in answers
    size_t Blocks() const { return m_nBlocks; }       // result blocks
    size_t Entries() const { return m_nEntries; }     // entries of selection lists

  private:
    void Draw(uint32_t nSeed);
    void DrawTexts(uint32_t nNode, uint32_t nKind);
    void RunAccessors();
    void RunNodes();
    void RunEntries();
    void RunCode(std::string const& strCode);
    void RunText(std::string const& strText, std::string const& strOffice);
    void RunBrowsing(std::string const& strText);
    void RunLists(CAddrDic& owner);
    void RunApiCode(std::string const& strCode);
    void RunApiText(std::string const& strText, std::string const& strOffice);
    void RunLegacy(std::string const& strCode, std::string const& strText);

    void Read(char const* psz);
    void Read(tagADDR const& addr);
    void Read(std::vector<tagADDR> const& vAddr);
    void Read(tagADDRNODE const* pNode);
    void Read(std::vector<tagADDRNODE const*> const& vNode);
    void Read(std::vector<tagADDRPNT> const& tree);
    void Take(uint32_t nStatus, HGLOBAL const& h); // of a call in the same line, which sets it

    unsigned char const* m_pImage;
    ETrust m_nTrust;
    uint32_t m_nMost;
    CAddrDic m_dic;
    uint32_t m_nSeed = 0;
    char const* m_pszAsked = nullptr; // where the text at hand stands, as long as answers may lead into it
    std::vector<uint32_t> m_vNode, m_vEntry;
    std::vector<std::string> m_vText, m_vCode, m_vOffice, m_vAlso;
    size_t m_nAddresses = 0, m_nBlocks = 0, m_nEntries = 0, m_nSum = 0;
};

#endif
