// BatchWorker.cpp - answering the records of a chunk, and sorting out those that are none.
#include "cli/BatchWorker.h"

#include "cli/Text.h"

#include <utility>

namespace qe {

void CBatchWorker::Answer(CBatchWork& work) {
    work.strOut.clear();
    work.strRejects.clear();
    work.vFault.clear();
    work.counts = {};
    work.counts.nBytes = work.chunk.strText.size();
    std::string_view strRest = work.chunk.strText;
    for (CBatchRecord const& record : work.chunk.vRecord) {
        AnswerRecord(work, strRest.substr(0, record.nSize), record.nKind);
        work.counts.nLines += record.nLines;
        strRest.remove_prefix(record.nSize);
    }
}

void CBatchWorker::AnswerRecord(CBatchWork& work, std::string_view strRecord, EBatchRecord nKind) {
    std::string& strMalformed = m_bRejects ? work.strRejects : work.strOut;
    if (nKind == EBatchRecord::ByteOrderMark) {
        work.strOut += strRecord;
    } else if (std::exchange(work.bHeader, false)) {
        work.strOut += m_strHeader;
    } else if (nKind == EBatchRecord::Rest) {
        strMalformed += strRecord;
    } else if (std::string strFault = ReadRecord(strRecord, nKind); !strFault.empty()) {
        strMalformed += strRecord;
        ++work.counts.nRecords;
        ++work.counts.nMalformed;
        if (work.vFault.size() < BATCH_REPORTED) work.vFault.emplace_back(work.counts.nLines, std::move(strFault));
    } else {
        ++work.counts.nRecords;
        if (m_answerer.Answer(m_strText, m_row)) ++work.counts.nFound;
        m_form.Write(strRecord, m_row, work.strOut);
    }
}

// The text to look up into m_strText; the reason when there is none.
std::string CBatchWorker::ReadRecord(std::string_view strRecord, EBatchRecord nKind) {
    if (nKind == EBatchRecord::TooLong) return "more than " + Grouped(BATCH_LONGEST) + " bytes";
    if (nKind == EBatchRecord::Broken) return "a quotation mark in the wrong place, or without its counterpart";
    if (strRecord.find('\0') != std::string_view::npos) return "a NUL in it";
    std::string strFault = m_form.Read(strRecord, m_strText);
    return strFault.empty() && m_strText.find('\0') != std::string::npos ? "a NUL in it" : strFault;
}

} // namespace qe
