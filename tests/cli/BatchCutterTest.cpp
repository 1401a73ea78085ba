// Where the records of a batch end, against a reader that has the whole text before it.
#include "cli/BatchCutter.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <string>
#include <tuple>

using qe::CBatchCutter;
using qe::CBatchRecord;
using qe::EBatchRecord;

namespace {

// Size, lines and kind.
using CSeen = std::vector<std::tuple<size_t, size_t, EBatchRecord>>;

CSeen Seen(std::vector<CBatchRecord> const& vRecord) {
    CSeen vSeen;
    for (CBatchRecord const& record : vRecord) vSeen.emplace_back(record.nSize, record.nLines, record.nKind);
    return vSeen;
}

// Bytes of the sound record that the text begins with, 0 when it begins with none.
size_t SoundRecord(std::string const& strText) {
    size_t n = 0;
    while (true) {
        if (n < strText.size() && strText[n] == '"') {
            do { // over one quoted part to the mark behind it
                n = strText.find('"', n + 1);
                if (n == std::string::npos) return 0;
                ++n;
            } while (n < strText.size() && strText[n] == '"');
            if (n < strText.size() && strText[n] == '\r') {
                ++n;
                if (n < strText.size() && strText[n] != '\n') return 0;
            }
        } else {
            n = std::min(strText.find_first_of("\",\n", n), strText.size());
        }
        if (n == strText.size()) return n;
        if (strText[n] == '"') return 0;
        if (strText[n] == '\n') return n + 1;
        if (strText[n] != ',') return 0;
        ++n;
    }
}

CSeen Expected(std::string strText, bool bQuotes) {
    CSeen vSeen;
    while (!strText.empty()) {
        size_t const nLine = std::min(strText.find('\n'), strText.size() - 1) + 1;
        size_t const nSound = bQuotes ? SoundRecord(strText) : nLine;
        size_t const nSize = nSound == 0 ? nLine : nSound;
        std::string const strRecord = strText.substr(0, nSize);
        auto const nBreaks = static_cast<size_t>(std::count(strRecord.begin(), strRecord.end(), '\n'));
        vSeen.emplace_back(nSize, nBreaks + (strRecord.back() == '\n' ? 0 : 1),
                           nSound == 0 ? EBatchRecord::Broken : EBatchRecord::Whole);
        strText.erase(0, nSize);
    }
    return vSeen;
}

// The text as it comes in pieces of up to nPiece bytes.
CSeen InPieces(std::string const& strText, bool bQuotes, size_t nPiece) {
    CBatchCutter cutter(bQuotes);
    std::vector<CBatchRecord> vRecord;
    std::string strHeld;
    for (size_t n = 0; n < strText.size(); n += nPiece) {
        strHeld += strText.substr(n, nPiece);
        strHeld.erase(0, cutter.Cut(strHeld, false, vRecord));
    }
    EXPECT_EQ(cutter.Cut(strHeld, true, vRecord), strHeld.size());
    return Seen(vRecord);
}

TEST(BatchCutter, CutsEveryTextAsASlowReaderDoesHoweverItComes) {
    std::mt19937 random(20261121);
    for (int i = 0; i < 30'000; ++i) {
        std::string strText(random() % 24, ' ');
        for (char& c : strText) c = "\"\"\",\n\ra"[random() % 7];
        SCOPED_TRACE(testing::PrintToString(strText));
        for (bool const bQuotes : {false, true})
            for (size_t const nPiece : {1u, 3u, 100u})
                ASSERT_EQ(InPieces(strText, bQuotes, nPiece), Expected(strText, bQuotes)) << bQuotes << nPiece;
    }
}

TEST(BatchCutter, CutsALongLineTheSameWayHoweverItComes) {
    std::string const strLong(qe::BATCH_LONGEST + 1, 'x');
    for (std::string const& strText : {strLong + "\na\n", "\"" + strLong + "\na\n\"\n",
                                       "a,\"\n" + strLong + "\"\nb\n", "\"a\"b" + strLong + "\nb\n", strLong}) {
        SCOPED_TRACE(strText.substr(0, 4));
        // Pieces of a line are one line again.
        auto const Lines = [&](size_t nPiece) {
            CSeen vSeen;
            for (auto const& [nSize, nLines, nKind] : InPieces(strText, true, nPiece)) {
                if (nKind != EBatchRecord::Rest) {
                    vSeen.emplace_back(nSize, nLines, nKind);
                } else {
                    std::get<0>(vSeen.back()) += nSize;
                    std::get<1>(vSeen.back()) += nLines;
                }
            }
            return vSeen;
        };
        CSeen const vWhole = Lines(strText.size());
        EXPECT_EQ(std::count_if(vWhole.begin(), vWhole.end(),
                                [](auto const& seen) { return std::get<2>(seen) == EBatchRecord::TooLong; }),
                  1);
        for (size_t const nPiece : {7'919u, 65'536u, 999'999u, 1'000'002u})
            EXPECT_EQ(Lines(nPiece), vWhole) << nPiece;
    }
}

} // namespace
