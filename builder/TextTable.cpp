// TextTable.cpp - the fifth table of a dictionary file: the index of folded names.
#include "builder/TextTable.h"

#include "builder/Error.h"
#include "text/AddressText.h"
#include "text/TextIndex.h"

#include <cstring>

namespace qe {

namespace {

CTextTable Read(unsigned char const* p, uint32_t nOffset) {
    auto const Word = [p](qeadrs::tagTEXTHEADER nWord) { return ReadWord(p + size_t{4} * nWord); };
    return {nOffset, Word(qeadrs::TXT_SIZE), Word(qeadrs::TXT_FOLDINGS), Word(qeadrs::TXT_LAYOUT)};
}

void SetWord(std::vector<unsigned char>& vByte, tagHEADERWORD nWord, size_t nValue) {
    auto const n = static_cast<uint32_t>(nValue);
    std::memcpy(vByte.data() + size_t{4} * nWord, &n, sizeof n);
}

} // namespace

std::optional<CTextTable> FindTextTable(std::vector<unsigned char> const& vByte) {
    uint32_t const nOffset = HeaderWord(vByte.data(), HDR_FIFTH_TABLE);
    bool const bReadable = nOffset >= HDR_BYTES && nOffset % 4 == 0 && nOffset <= vByte.size() &&
                           vByte.size() - nOffset >= qeadrs::TXT_BYTES;
    if (!bReadable || ReadWord(vByte.data() + nOffset) != qeadrs::TEXT_MAGIC) return std::nullopt;
    return Read(vByte.data() + nOffset, nOffset);
}

CTextTable ReadTextTable(std::vector<unsigned char> const& vIndex) {
    return Read(vIndex.data(), 0);
}

void AppendTextIndex(std::vector<unsigned char>& vByte) {
    CAddrDic dic;
    dic.SetDictionary(vByte.data());
    std::vector<unsigned char> const vIndex = qeadrs::BuildTextIndex(dic);
    AlignImage(vByte);
    SetWord(vByte, HDR_FIFTH_TABLE, vByte.size());
    vByte.insert(vByte.end(), vIndex.begin(), vIndex.end());
    AlignImage(vByte);
    SetWord(vByte, HDR_SIXTH_TABLE, vByte.size()); // empty, at the end of the file
    SetWord(vByte, HDR_FILE_SIZE, vByte.size());
    RepairChecksum(vByte);
}

void AppendTextIndex(CImage& image, CStatistics& statistics) {
    AppendTextIndex(image.vByte);
    statistics["text_index_bytes"] = FindTextTable(image.vByte)->nSize;
    statistics["bytes"] = image.vByte.size();
}

} // namespace qe
