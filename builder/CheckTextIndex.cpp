// CheckTextIndex.cpp - the rule of the index of folded names: made anew from the records, it has the same bytes.
#include "builder/CheckRules.h"

#include "builder/TextTable.h"
#include "text/AddressText.h"

#include <algorithm>

namespace qe {

void CheckTextIndex(std::vector<unsigned char> const& vByte, CCheckReport& report) {
    auto const table = FindTextTable(vByte);
    if (!table) return;
    auto const Tell = [&](std::string const& strWhat) {
        report.Add({ECheckRule::TextIndex, "header word " + Number(HDR_FIFTH_TABLE), "", strWhat});
    };
    if (table->nSize > vByte.size() - table->nOffset)
        return Tell("the text index, " + Number(table->nSize) + " bytes at " + Number(table->nOffset) +
                    ", does not lie in the file");
    CAddrDic dic;
    dic.SetDictionary(vByte.data());
    std::vector<unsigned char> const vRight = qeadrs::BuildTextIndex(dic);
    if (!table->IsLike(ReadTextTable(vRight)))
        return report.Remark(
            "The text index was made for other readers: those of this version build their own at the first reading.");
    unsigned char const* const pFirst = vByte.data() + table->nOffset;
    if (table->nSize != vRight.size())
        Tell("the text index has " + Number(table->nSize) + " bytes, that of the records " + Number(vRight.size()));
    else if (auto const pDifferent = std::mismatch(vRight.begin(), vRight.end(), pFirst);
             pDifferent.first != vRight.end())
        Tell("the text index differs from that of the records from its byte " +
             Number(static_cast<size_t>(pDifferent.first - vRight.begin())) + " on");
}

} // namespace qe
