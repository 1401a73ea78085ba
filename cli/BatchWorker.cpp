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
        CItem& item = m_vItem[m_nItems++];
        item.strRecord = strRest.substr(0, record.nSize);
        item.nWhat = Look(work, item.strRecord, record.nKind, item.strText);
        if (m_nItems == m_vItem.size()) AnswerBlock(work);
        work.counts.nLines += record.nLines;
        strRest.remove_prefix(record.nSize);
    }
    AnswerBlock(work);
}

// What a record is, with the text to look up; counts it.
CBatchWorker::CItem::EWhat CBatchWorker::Look(CBatchWork& work, std::string_view strRecord, EBatchRecord nKind,
                                              std::string& strText) {
    if (nKind == EBatchRecord::ByteOrderMark) return CItem::EWhat::Copy;
    if (std::exchange(work.bHeader, false)) return CItem::EWhat::Header;
    if (nKind == EBatchRecord::Rest) return CItem::EWhat::Malformed;
    ++work.counts.nRecords;
    std::string strFault = ReadRecord(strRecord, nKind, strText);
    if (strFault.empty()) return CItem::EWhat::Asked;
    ++work.counts.nMalformed;
    if (work.vFault.size() < BATCH_REPORTED) work.vFault.emplace_back(work.counts.nLines, std::move(strFault));
    return CItem::EWhat::Malformed;
}

// The text to look up into strText; the reason when there is none.
std::string CBatchWorker::ReadRecord(std::string_view strRecord, EBatchRecord nKind, std::string& strText) const {
    if (nKind == EBatchRecord::TooLong) return "more than " + Grouped(BATCH_LONGEST) + " bytes";
    if (nKind == EBatchRecord::Broken) return "a quotation mark in the wrong place, or without its counterpart";
    if (strRecord.find('\0') != std::string_view::npos) return "a NUL in it";
    std::string strFault = m_form.Read(strRecord, strText);
    return strFault.empty() && strText.find('\0') != std::string::npos ? "a NUL in it" : strFault;
}

void CBatchWorker::AnswerBlock(CBatchWork& work) {
    m_vText.clear();
    for (size_t i = 0; i < m_nItems; ++i)
        if (m_vItem[i].nWhat == CItem::EWhat::Asked) m_vText.push_back(m_vItem[i].strText);
    m_answerer.Read(m_vText);
    m_nAsked = 0;
    for (size_t i = 0; i < m_nItems; ++i) Write(work, m_vItem[i]);
    m_nItems = 0;
}

void CBatchWorker::Write(CBatchWork& work, CItem const& item) {
    switch (item.nWhat) {
    case CItem::EWhat::Copy:
        work.strOut += item.strRecord;
        break;
    case CItem::EWhat::Header:
        work.strOut += m_strHeader;
        break;
    case CItem::EWhat::Malformed:
        (m_bRejects ? work.strRejects : work.strOut) += item.strRecord;
        break;
    case CItem::EWhat::Asked:
        if (m_answerer.Answer(m_nAsked++, m_row)) ++work.counts.nFound;
        m_form.Write(item.strRecord, m_row, work.strOut);
        break;
    }
}

} // namespace qe
