// BatchCutter.cpp - looking for the ends of records.
#include "cli/BatchCutter.h"

namespace qe {

size_t CBatchCutter::Cut(std::string_view strText, bool bEnd, std::vector<CBatchRecord>& vRecord) {
    size_t nCut = CutMark(strText, bEnd, vRecord);
    while (m_bBegun && nCut < strText.size()) {
        size_t const nRecord = CutOne(strText.substr(nCut), bEnd, vRecord);
        if (nRecord == 0) break;
        nCut += nRecord;
    }
    return nCut;
}

// In front of the first record some systems put a byte order mark, which is no part of it.
size_t CBatchCutter::CutMark(std::string_view strText, bool bEnd, std::vector<CBatchRecord>& vRecord) {
    constexpr std::string_view MARK = "\xEF\xBB\xBF";
    if (m_bBegun) return 0;
    if (!bEnd && strText.size() < MARK.size() && MARK.substr(0, strText.size()) == strText) return 0;
    m_bBegun = true;
    return strText.substr(0, MARK.size()) == MARK ? Add({MARK.size(), 0, EBatchRecord::ByteOrderMark}, vRecord) : 0;
}

// Cuts one record off, or a piece of one, and returns its size; 0 when more has to be seen first.
size_t CBatchCutter::CutOne(std::string_view strRest, bool bEnd, std::vector<CBatchRecord>& vRecord) {
    bool const bFound = FindEnd(strRest);
    bool const bOver = m_nSeen - (bFound ? 1 : 0) > BATCH_LONGEST;
    bool const bCutOff = m_nState == EState::TooLong;
    size_t const nLines = m_nBreaks + (bEnd && !bFound ? 1 : 0);
    if (m_nState == EState::Broken && m_nFirstLine != 0) return AddFirstLine(vRecord);
    if (bFound && !bOver) return Add({m_nSeen, nLines, bCutOff ? EBatchRecord::Rest : EBatchRecord::Whole}, vRecord);
    if (!bFound && !bOver && !bEnd && !bCutOff) return 0;
    if (m_nFirstLine != 0 && !bCutOff && (m_nState == EState::Quoted || (bOver && m_nFirstLine < m_nSeen)))
        return AddFirstLine(vRecord);
    if (bOver || bCutOff) {
        size_t const nSize = Add({m_nSeen, nLines, bCutOff ? EBatchRecord::Rest : EBatchRecord::TooLong}, vRecord);
        if (!bFound) m_nState = EState::TooLong;
        return nSize;
    }
    bool const bSound = m_nState != EState::Quoted && m_nState != EState::Broken;
    return Add({m_nSeen, nLines, bSound ? EBatchRecord::Whole : EBatchRecord::Broken}, vRecord);
}

// Looks on until the record ends or is seen to be broken; false while it does not end.
bool CBatchCutter::FindEnd(std::string_view strRest) {
    while (m_nSeen < strRest.size() && !(m_nState == EState::Broken && m_nFirstLine != 0)) {
        if (!m_bQuotes || m_nState == EState::Broken || m_nState == EState::TooLong) { // only the line's end matters
            size_t const nEnd = strRest.find('\n', m_nSeen);
            m_nSeen = nEnd == std::string_view::npos ? strRest.size() : nEnd;
            if (nEnd == std::string_view::npos) return false;
        }
        char const c = strRest[m_nSeen++];
        if (c == '\n') {
            ++m_nBreaks;
            if (m_nFirstLine == 0) m_nFirstLine = m_nSeen;
            if (m_nState != EState::Quoted) return true;
        }
        m_nState = Next(c);
    }
    return false;
}

// Within a record, and not at its end.
CBatchCutter::EState CBatchCutter::Next(char c) const {
    switch (m_nState) {
    case EState::Field:
        if (c == '"') return EState::Quoted;
        return c == ',' ? EState::Field : EState::Plain;
    case EState::Plain:
        if (c == '"') return EState::Broken;
        return c == ',' ? EState::Field : EState::Plain;
    case EState::Quoted:
        return c == '"' ? EState::Quote : EState::Quoted;
    case EState::Quote:
        if (c == '"') return EState::Quoted;
        if (c == '\r') return EState::Return;
        return c == ',' ? EState::Field : EState::Broken;
    default: // a CR behind a closing quotation mark that no LF follows
        return EState::Broken;
    }
}

size_t CBatchCutter::Add(CBatchRecord const& record, std::vector<CBatchRecord>& vRecord) {
    m_nState = EState::Field;
    m_nSeen = m_nBreaks = m_nFirstLine = 0;
    vRecord.push_back(record);
    return record.nSize;
}

size_t CBatchCutter::AddFirstLine(std::vector<CBatchRecord>& vRecord) {
    bool const bLong = m_nFirstLine - 1 > BATCH_LONGEST;
    return Add({m_nFirstLine, 1, bLong ? EBatchRecord::TooLong : EBatchRecord::Broken}, vRecord);
}

} // namespace qe
