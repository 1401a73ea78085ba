// BatchCutter.h - where the records of a batch end, byte by byte as its input comes.
//
//   CBatchCutter cutter(true);                                    // quoted fields may hold line breaks
//   nCut = cutter.Cut("a,\"b\nc\"\nd", false, vRecord);           // one record of 8 bytes; "d" is not whole yet
//   cutter.Cut("d,e", true, vRecord);                             // and comes again, with what follows
//
// Every byte is in one record: their sizes add up to what is cut, whatever is wrong with the text.
//
// Broken   A record with a quotation mark where none can be, or without the one that closes it, would take the lines
//          behind it along. So only its first line is broken, and the next one begins afresh.
// TooLong  A line of more than BATCH_LONGEST bytes comes in pieces and so needs no memory: the first is TooLong, the
//          others are its Rest. A record of several lines that is as long is Broken.
#ifndef QEADRS_CLI_BATCHCUTTER_H
#define QEADRS_CLI_BATCHCUTTER_H

#include <cstddef>
#include <string_view>
#include <vector>

namespace qe {

// Bytes that a record may have, without its line end.
constexpr size_t BATCH_LONGEST = 1'000'000;

enum class EBatchRecord : unsigned char { Whole, Broken, TooLong, Rest, ByteOrderMark };

struct CBatchRecord {
    size_t nSize;  // with its line end
    size_t nLines; // line ends in it; the end of the input is one
    EBatchRecord nKind;
};

class CBatchCutter {
  public:
    // bQuotes: fields in quotation marks may hold commas, doubled quotation marks and line breaks.
    explicit CBatchCutter(bool bQuotes) : m_bQuotes(bQuotes) {}

    // Appends the records that the text begins with and returns their size. REQUIRES: the text begins with what the
    // call before left uncut; bEnd when nothing follows it.
    size_t Cut(std::string_view strText, bool bEnd, std::vector<CBatchRecord>& vRecord);

  private:
    // What the bytes of the record so far have led to.
    enum class EState : unsigned char {
        Field,   // to the beginning of a field
        Plain,   // into a field without quotation marks
        Quoted,  // between quotation marks
        Quote,   // behind a quotation mark there: the closing one, or the first of two
        Return,  // behind the closing one and a CR
        Broken,  // nowhere: no record begins so
        TooLong, // into a line whose first piece is cut off
    };

    size_t CutMark(std::string_view strText, bool bEnd, std::vector<CBatchRecord>& vRecord);
    size_t CutOne(std::string_view strRest, bool bEnd, std::vector<CBatchRecord>& vRecord);
    bool FindEnd(std::string_view strRest);
    EState Next(char c) const;
    size_t Add(CBatchRecord const& record, std::vector<CBatchRecord>& vRecord);
    size_t AddFirstLine(std::vector<CBatchRecord>& vRecord);

    bool const m_bQuotes;
    bool m_bBegun = false;
    EState m_nState = EState::Field;
    size_t m_nSeen = 0;      // bytes of the record that have been looked at
    size_t m_nBreaks = 0;    // line breaks among them
    size_t m_nFirstLine = 0; // bytes of its first line, 0 before that ends
};

} // namespace qe

#endif
