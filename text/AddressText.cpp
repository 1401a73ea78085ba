// AddressText.cpp - CAddressText: readers over an index, one text at a time or several at once.
#include "text/AddressText.h"

#include "text/FoldedText.h"
#include "text/ReadingParts.h"
#include "text/TextIndex.h"
#include "text/TextReader.h"

#include <algorithm>

namespace qeadrs {

namespace {

constexpr size_t READERS = 16; // texts that wait for memory at once

void AppendUtf8(std::string& str, uint32_t n) {
    if (n < 0x80) {
        str += static_cast<char>(n);
    } else if (n < 0x800) {
        str += static_cast<char>(0xC0 | n >> 6);
        str += static_cast<char>(0x80 | (n & 0x3F));
    } else if (n > 0xFFFF) {
        str += static_cast<char>(0xF0 | n >> 18);
        str += static_cast<char>(0x80 | (n >> 12 & 0x3F));
        str += static_cast<char>(0x80 | (n >> 6 & 0x3F));
        str += static_cast<char>(0x80 | (n & 0x3F));
    } else {
        str += static_cast<char>(0xE0 | n >> 12);
        str += static_cast<char>(0x80 | (n >> 6 & 0x3F));
        str += static_cast<char>(0x80 | (n & 0x3F));
    }
}

} // namespace

class CAddressText::CImplementation {
  public:
    explicit CImplementation(CAddrDic const& dic) : m_dic(dic), m_view(dic) {
        auto const index = TextIndex(dic);
        m_bOwn = m_index.Bind(index.data(), index.size());
    }

    bool HasIndex() const { return m_bOwn; }

    QETEXTREADING const& Read(std::string_view strText, uint32_t nOptions, std::vector<CTextStep>* pvStep) {
        CTextReader& reader = Reader(0);
        reader.SetSteps(pvStep);
        reader.Begin(strText);
        reader.ProbeTowns();
        reader.ProbeNodes();
        reader.ProbeNames();
        reader.Finish(nOptions, m_reading);
        reader.SetSteps(nullptr);
        m_reading.pCandidate = reader.Candidates().data();
        m_reading.nCandidate = reader.Candidates().size();
        return m_reading;
    }

    void ReadBatch(std::string_view const* pText, size_t nCount, QETEXTREADING* pReading, uint32_t nOptions) {
        m_vCandidate.clear();
        for (size_t n = 0; n < nCount; n += READERS)
            ReadGroup(pText + n, std::min(READERS, nCount - n), pReading + n, nOptions);
        size_t nFirst = 0;
        for (size_t n = 0; n < nCount; ++n) {
            pReading[n].pCandidate = m_vCandidate.data() + nFirst;
            nFirst += pReading[n].nCandidate;
        }
    }

  private:
    CTextReader& Reader(size_t n) {
        if (!m_index.IsBound()) {
            m_vBuilt = BuildTextIndex(m_dic);
            m_index.Bind(m_vBuilt.data(), m_vBuilt.size());
        }
        while (m_vReader.size() <= n) m_vReader.push_back(std::make_unique<CTextReader>(m_view, m_index));
        return *m_vReader[n];
    }

    void ReadGroup(std::string_view const* pText, size_t nCount, QETEXTREADING* pReading, uint32_t nOptions) {
        for (size_t i = 0; i < nCount; ++i) Prefetch(pText[i].data());
        for (size_t i = 0; i < nCount; ++i) {
            Reader(i).SetSteps(nullptr);
            m_vReader[i]->Begin(pText[i]);
        }
        for (size_t i = 0; i < nCount; ++i) m_vReader[i]->ProbeTowns();
        for (size_t i = 0; i < nCount; ++i) m_vReader[i]->ProbeNodes();
        for (size_t i = 0; i < nCount; ++i) m_vReader[i]->ProbeNames();
        for (size_t i = 0; i < nCount; ++i) {
            m_vReader[i]->Finish(nOptions, pReading[i]);
            auto const& vCandidate = m_vReader[i]->Candidates();
            pReading[i].nCandidate = vCandidate.size();
            for (QETEXTPLACE const& place : vCandidate) m_vCandidate.push_back(place);
        }
    }

    CAddrDic const& m_dic;
    CDictionaryView const m_view;
    CTextIndex m_index;
    bool m_bOwn = false;
    std::vector<unsigned char> m_vBuilt; // where the dictionary has none
    std::vector<std::unique_ptr<CTextReader>> m_vReader;
    QETEXTREADING m_reading{};
    std::vector<QETEXTPLACE> m_vCandidate; // of a batch
};

CAddressText::CAddressText(CAddrDic const& dic) : m_pImplementation(std::make_unique<CImplementation>(dic)) {}

CAddressText::~CAddressText() = default;

QETEXTREADING const& CAddressText::Read(std::string_view strText, uint32_t nOptions) {
    return m_pImplementation->Read(strText, nOptions, nullptr);
}

void CAddressText::ReadBatch(std::string_view const* pText, size_t nCount, QETEXTREADING* pReading,
                             uint32_t nOptions) {
    m_pImplementation->ReadBatch(pText, nCount, pReading, nOptions);
}

QETEXTREADING const& CAddressText::Explain(std::string_view strText, std::vector<CTextStep>& vStep,
                                           uint32_t nOptions) {
    vStep.clear();
    return m_pImplementation->Read(strText, nOptions, &vStep);
}

bool CAddressText::HasIndex() const {
    return m_pImplementation->HasIndex();
}

std::string CAddressText::Canonical(QETEXTREADING const& reading, std::string_view strText) {
    std::string str;
    for (std::string_view const strPart : CanonicalParts(reading, strText)) str += strPart;
    return str;
}

namespace {

std::vector<std::string_view> Names(uint32_t nBits, std::initializer_list<std::string_view> names) {
    std::vector<std::string_view> vName;
    for (std::string_view const strName : names) {
        if ((nBits & 1) != 0) vName.push_back(strName);
        nBits >>= 1;
    }
    return vName;
}

} // namespace

std::vector<std::string_view> FoldingNames(uint32_t nFoldings) {
    return Names(nFoldings, {"width", "blank", "dash", "number", "ke", "no", "tsu", "kanji", "combining", "repeat",
                             "aza", "prefecture", "street"});
}

std::vector<std::string_view> SuppliedNames(uint32_t nSupplied) {
    return Names(nSupplied, {"prefecture", "county", "city", "ward"});
}

std::string_view SurenessName(uint32_t nSureness) {
    constexpr std::string_view NAMES[] = {"nothing",  "city_not_found", "town_not_found", "several",
                                          "supplied", "folded",         "exact"};
    return nSureness < std::size(NAMES) ? NAMES[nSureness] : std::string_view();
}

std::string FoldName(std::string_view strName) {
    CFoldedText folded;
    folded.Fold(strName);
    std::string str;
    for (size_t i = 0; i < folded.nCount; ++i) {
        uint32_t const n = folded.anToken[i];
        bool const bPair = n >= 0xD800 && n < 0xDC00 && i + 1 < folded.nCount;
        AppendUtf8(str, bPair ? 0x10000 + ((n & 0x3FF) << 10) + (folded.anToken[++i] & 0x3FFu) : n);
    }
    return str;
}

} // namespace qeadrs
