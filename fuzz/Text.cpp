// Text.cpp - addresses as people write them, over an index that is sound or damaged. The input is a text of commands:
//
//   r TEXT            reads the text in all ways; R the same with the latest form of old names
//   m TEXT\xE5...    the same with bytes in hexadecimal and \n for the end of a line
//   c                 the reading of the last text by the C interface
//
//   x OFFSET,VALUE    a word of the index from here on; b OFFSET,VALUE a byte; t SIZE cuts it
//   k FROM,TO,SIZE    copies a range of it over another one; f OFFSET,BYTE fills it from there on
//
// Offsets are taken modulo the size of the index.
#include "fuzz/Fuzz.h"
#include "tests/text/TextPromises.h"
#include "tests/text/TextWorld.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace {

constexpr size_t MOST_LINES = 64, LONGEST = 4096;

// The dictionary without its index, and the index: made once.
CImageBytes const& PlainImage() {
    static CImageBytes const vByte = WithIndex(TextRecords().Bytes(), {});
    return vByte;
}
CImageBytes const& SoundIndex() {
    static CImageBytes const vByte = IndexOf(PlainImage());
    return vByte;
}

std::string WithBytes(std::string const& str) {
    std::string strBytes;
    for (size_t n = 0; n < str.size(); ++n) {
        char const cNext = n + 1 < str.size() ? str[n + 1] : '\0';
        if (str[n] == '\\' && cNext == 'n') {
            strBytes += '\n';
            ++n;
        } else if (str[n] == '\\' && cNext == 'x') {
            strBytes += static_cast<char>(std::strtoul(str.substr(n + 2, 2).c_str(), nullptr, 16));
            n += 3;
        } else {
            strBytes += str[n];
        }
    }
    return strBytes;
}

class CReader {
  public:
    CReader() : m_vIndex(SoundIndex()) {}

    void Call(CLineInput& input) {
        char const c = input.Command();
        if (c == 'r' || c == 'R') return Read(input.Rest(), c == 'R' ? QETEXT_RENEW : 0);
        if (c == 'm') return Read(WithBytes(input.Rest()), 0);
        if (c == 'c') return ReadByC();
        if (std::strchr("xbtkf", c) == nullptr || c == '\0' || m_vIndex.size() < 4) return;
        Damage(input);
        m_pText.reset();
    }

  private:
    size_t Offset(CLineInput& input) const { return input.Number() % m_vIndex.size(); }

    void Damage(CLineInput& input) {
        size_t const nOffset = Offset(input);
        switch (input.Command()) {
        case 'x': {
            uint32_t const nValue = input.Number();
            std::memcpy(&m_vIndex[std::min(nOffset / 4 * 4, m_vIndex.size() / 4 * 4 - 4)], &nValue, sizeof nValue);
            return;
        }
        case 'b':
            m_vIndex[nOffset] = static_cast<unsigned char>(input.Number());
            return;
        case 't':
            m_vIndex.resize(nOffset);
            return;
        case 'f':
            std::fill(m_vIndex.begin() + static_cast<std::ptrdiff_t>(nOffset), m_vIndex.end(),
                      static_cast<unsigned char>(input.Number()));
            return;
        default: {
            size_t const nTo = Offset(input), nSize = input.Number();
            size_t const nMost = std::min({nSize, m_vIndex.size() - nOffset, m_vIndex.size() - nTo});
            std::memmove(&m_vIndex[nTo], &m_vIndex[nOffset], nMost);
        }
        }
    }

    qeadrs::CAddressText& Text() {
        if (m_pText == nullptr) {
            m_vImage = WithIndex(PlainImage(), m_vIndex);
            m_vImage.resize((m_vImage.size() + 3) / 4 * 4); // before a page that cannot be touched, and aligned
            m_dic.SetDictionary(m_image.Put(m_vImage.data(), m_vImage.size()));
            m_pText = std::make_unique<qeadrs::CAddressText>(m_dic);
        }
        return *m_pText;
    }

    void Read(std::string const& strLine, uint32_t nOptions) {
        m_strText = strLine.substr(0, LONGEST);
        qeadrs::CAddressText& text = Text();
        std::string_view const str(reinterpret_cast<char const*>(m_text.Put(m_strText.data(), m_strText.size())),
                                   m_strText.size());
        QETEXTREADING const reading = text.Read(str, nOptions);
        std::string const strBroken = BrokenPromise(reading, str, m_dic);
        Require(strBroken.empty(), strBroken.c_str());
        std::string_view const astr[] = {str, str.substr(str.size() / 2), str};
        QETEXTREADING aReading[3];
        text.ReadBatch(astr, 3, aReading, nOptions);
        for (size_t n = 0; n < 3; ++n)
            Require(BrokenPromise(aReading[n], astr[n], m_dic).empty(),
                    "what is read in a batch follows from the text");
        for (QETEXTREADING const& other : {aReading[0], aReading[2]})
            Require(other.nSureness == reading.nSureness && other.place.nTown == reading.place.nTown &&
                        other.place.nEntry == reading.place.nEntry && other.nCandidate == reading.nCandidate,
                    "a batch reads as one by one");
        std::vector<qeadrs::CTextStep> vStep;
        Require(text.Explain(str, vStep, nOptions).nSureness == reading.nSureness,
                "what is explained is what is read");
        for (qeadrs::CTextStep const& step : vStep)
            Require(LiesIn(str, step.span), "a step is about a part of the text");
        qeadrs::FoldName(str);
    }

    void ReadByC() {
        int nError = 0;
        Text();
        QETEXT* const pText = QeTextOpenImage(m_dic.GetDicPointer(), &nError);
        if (pText == nullptr) return Require(nError != QETEXT_OK, "a failure has a number");
        QETEXTREADING reading;
        Require(QeTextRead(pText, m_strText.data(), m_strText.size(), 0, &reading) == QETEXT_OK, "a text is read");
        char* const pBuffer = reinterpret_cast<char*>(m_text.Fill(0x5A, 64));
        size_t const nLength = QeTextCanonical(&reading, m_strText.data(), pBuffer, 64);
        bool const bWritten = nLength != 0 && nLength < 64;
        Require(bWritten ? pBuffer[nLength] == '\0' : pBuffer[0] == 0x5A, "a text is written when it fits");
        QeTextClose(pText);
    }

    CImageBytes m_vIndex, m_vImage;
    CGuardedRecord m_image{1u << 20}, m_text;
    CAddrDic m_dic;
    std::unique_ptr<qeadrs::CAddressText> m_pText;
    std::string m_strText;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* p, size_t nSize) {
    CReader reader;
    CLineInput input(p, nSize);
    for (size_t n = 0; n < MOST_LINES && input.Next(); ++n) reader.Call(input);
    return 0;
}
