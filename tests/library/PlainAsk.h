// PlainAsk.h - one question to the library and to its plain model, and all that their answers consist of.
//
//   CQuestion const question = {QUESTION_TOWN, "本町１丁目", "", NO_NODE};
//   CAnswer const expected = Ask(plain, question, pszText, pszName);
//   CAnswer const answer = Ask(dictionary, question, pszText, pszName);
//   EXPECT_EQ(Difference(question, answer, expected), "");
//
// Both are given the same copies of the texts, which answers lead into.
#ifndef QEADRS_TESTS_LIBRARY_PLAINASK_H
#define QEADRS_TESTS_LIBRARY_PLAINASK_H

#include "tests/library/AddrTextWorld.h"
#include "tests/library/PlainDic.h"
#include "tests/support/Peek.h"

#include <array>
#include <cstdio>
#include <string>
#include <vector>

enum EQuestion {
    QUESTION_CODE,         // SearchPostCode7
    QUESTION_CODE7,        // GetAddrFromPostCode7, nNumber is the sort type
    QUESTION_CODE5,        // GetAddrFromPostCode5
    QUESTION_ENTRY,        // GetAddr, GetAddrPtr, GetCityNode of entry nNumber
    QUESTION_PREF,         // SeparatePref
    QUESTION_CITY,         // SeparateCity below node nNumber
    QUESTION_TOWN,         // SeparateTown below node nNumber
    QUESTION_DIVIDE,       // DivideAddr
    QUESTION_LATEST,       // GetLatestAddr
    QUESTION_CODE_OF,      // GetPostCodeFromAddr, strName is the organisation's
    QUESTION_ORGANISATION, // SearchInc of strName
    QUESTION_PART,         // GetAddrFromAddrPart
    QUESTION_PREF_PART,    // GetPrefFromPart
    QUESTION_CITY_PART,    // GetCityFromPart
    QUESTION_CITY_INDEX,   // SearchCity
    QUESTION_CITIES,       // SearchCity2
    QUESTION_BELOW,        // recTraceNode of node nNumber
    QUESTIONS
};

struct CQuestion {
    EQuestion nKind;
    std::string strText;
    std::string strName;
    unsigned long nNumber;
};

// What a question gives back, and what a lookup by code that found something leaves in the object for other calls.
struct CAnswer {
    long nResult = 0, nMore = 0;
    long nRead = 0; // bytes of the text
    std::vector<tagADDR> vAddr;
    std::vector<tagADDRNODE const*> vNode;
    std::string strName; // as it was left
    std::vector<tagADDRNODE const*> vCityList;
    char const* pszLastOffice = nullptr;
    std::string strOffice;
};

inline void LookAt(CPlainDic const& dictionary, CAnswer& answer) {
    answer.vCityList = dictionary.vCityList;
    answer.pszLastOffice = dictionary.pszLastOffice;
    answer.strOffice = dictionary.strOffice;
}
inline void LookAt(CAddrDic& dictionary, CAnswer& answer) {
    CAddrDicPeek const peek(dictionary);
    answer.vCityList = peek.vCityList;
    answer.pszLastOffice = peek.pszLastOffice;
    answer.strOffice = peek.szOffice;
}

// A lookup appends, so it is given a list that holds something. REQUIRES: pszName is writable and holds strName.
template <typename TDic>
CAnswer Ask(TDic& dictionary, CQuestion const& question, char const* pszText, char* pszName) {
    static tagADDR const marked = MarkedAddr();
    CAnswer answer;
    char const* psz = pszText;
    tagADDR addr = marked;
    bool const bList = question.nKind == QUESTION_CODE7 || question.nKind == QUESTION_CODE5;
    if (bList) answer.vAddr.push_back(tagADDR(0));
    switch (question.nKind) {
    case QUESTION_CODE:
        answer.nResult = dictionary.SearchPostCode7(pszText);
        break;
    case QUESTION_CODE7:
        dictionary.SetSortType(static_cast<unsigned short>(question.nNumber));
        answer.nResult = dictionary.GetAddrFromPostCode7(pszText, answer.vAddr);
        break;
    case QUESTION_CODE5:
        answer.nResult = dictionary.GetAddrFromPostCode5(pszText, answer.vAddr);
        break;
    case QUESTION_ENTRY: {
        tagADDRINFO const* const pInfo = dictionary.GetAddrInfo(question.nNumber);
        answer.vNode.assign(3, nullptr);
        answer.nResult = dictionary.GetAddr(pInfo, &addr);
        answer.nMore = dictionary.GetAddrPtr(pInfo, &answer.vNode[0], &answer.vNode[1], &answer.vNode[2]);
        answer.vNode.push_back(dictionary.GetCityNode(pInfo));
        break;
    }
    case QUESTION_PREF:
        answer.nResult = dictionary.SeparatePref(&psz, addr);
        break;
    case QUESTION_CITY:
        answer.nResult = dictionary.SeparateCity(&psz, question.nNumber, addr);
        break;
    case QUESTION_TOWN:
        answer.nResult = dictionary.SeparateTown(&psz, question.nNumber, addr);
        break;
    case QUESTION_DIVIDE:
        answer.nResult = dictionary.DivideAddr(psz, &addr) ? 1 : 0;
        break;
    case QUESTION_LATEST:
        answer.nResult = static_cast<long>(dictionary.GetLatestAddr(psz, addr));
        break;
    case QUESTION_CODE_OF:
        answer.nResult = dictionary.GetPostCodeFromAddr(psz, pszName, addr);
        break;
    case QUESTION_ORGANISATION:
        answer.nResult = dictionary.SearchInc(pszName);
        break;
    case QUESTION_PART:
        answer.nResult = dictionary.GetAddrFromAddrPart(psz, answer.vAddr);
        break;
    case QUESTION_PREF_PART:
        dictionary.GetPrefFromPart(psz, answer.vAddr);
        break;
    case QUESTION_CITY_PART:
        dictionary.GetCityFromPart(psz, answer.vAddr);
        break;
    case QUESTION_CITY_INDEX:
        answer.nResult = dictionary.SearchCity(psz);
        break;
    case QUESTION_CITIES:
        answer.nResult = dictionary.SearchCity2(psz, answer.vNode);
        break;
    case QUESTION_BELOW:
        dictionary.recTraceNode(dictionary.GetAddrNode(question.nNumber), marked, answer.vAddr);
        break;
    case QUESTIONS:
        break;
    }
    answer.nRead = static_cast<long>(psz - pszText);
    if (!bList) answer.vAddr.push_back(addr);
    answer.strName = pszName;
    if (bList && answer.nResult != 0) LookAt(dictionary, answer);
    if (question.nKind == QUESTION_CODE5) { // these are an earlier lookup's
        answer.pszLastOffice = nullptr;
        answer.strOffice.clear();
    }
    return answer;
}

// Bytes that are no printable ASCII as \xE5.
inline std::string Escaped(std::string const& str) {
    std::string strShown = "\"";
    for (char const c : str) {
        char sz[8];
        bool const bPlain = c >= ' ' && c < 0x7F && c != '"' && c != '\\';
        std::snprintf(sz, sizeof sz, bPlain ? "%c" : "\\x%02X", static_cast<unsigned char>(c));
        strShown += sz;
    }
    return strShown + '"';
}

inline std::string Shown(CQuestion const& question) {
    static std::array<char const*, QUESTIONS> const apszKind = {"SearchPostCode7",
                                                                "GetAddrFromPostCode7",
                                                                "GetAddrFromPostCode5",
                                                                "GetAddr, GetAddrPtr, GetCityNode",
                                                                "SeparatePref",
                                                                "SeparateCity",
                                                                "SeparateTown",
                                                                "DivideAddr",
                                                                "GetLatestAddr",
                                                                "GetPostCodeFromAddr",
                                                                "SearchInc",
                                                                "GetAddrFromAddrPart",
                                                                "GetPrefFromPart",
                                                                "GetCityFromPart",
                                                                "SearchCity",
                                                                "SearchCity2",
                                                                "recTraceNode"};
    return apszKind[question.nKind] + std::string(" of ") + Escaped(question.strText) + ", " +
           Escaped(question.strName) + ", " + std::to_string(question.nNumber);
}

inline bool AreEqual(tagADDR const& left, tagADDR const& right) {
    return std::memcmp(&left, &right, offsetof(tagADDR, nCityOrder)) == 0 && left.nCityOrder == right.nCityOrder;
}

// "" when the answers are the same; else the question and the first thing that differs.
inline std::string Difference(CQuestion const& question, CAnswer const& answer, CAnswer const& expected) {
    auto const Told = [&](std::string const& strWhat) { return Shown(question) + ": " + strWhat; };
    auto const Numbers = [&](char const* pszWhat, long n, long nExpected) {
        return Told(pszWhat + std::string(" ") + std::to_string(n) + " instead of " + std::to_string(nExpected));
    };
    if (answer.nResult != expected.nResult) return Numbers("result", answer.nResult, expected.nResult);
    if (answer.nMore != expected.nMore) return Numbers("second result", answer.nMore, expected.nMore);
    if (answer.nRead != expected.nRead) return Numbers("bytes read", answer.nRead, expected.nRead);
    if (answer.strName != expected.strName) return Told("the name becomes " + Escaped(answer.strName));
    if (answer.vNode != expected.vNode) return Told("other nodes");
    if (answer.vCityList != expected.vCityList) return Told("another city list");
    if (answer.pszLastOffice != expected.pszLastOffice) return Told("another last organisation");
    if (answer.strOffice != expected.strOffice) return Told("office text " + Escaped(answer.strOffice));
    if (answer.vAddr.size() != expected.vAddr.size())
        return Numbers("records", static_cast<long>(answer.vAddr.size()), static_cast<long>(expected.vAddr.size()));
    for (size_t n = 0; n < answer.vAddr.size(); ++n) {
        if (AreEqual(answer.vAddr[n], expected.vAddr[n])) continue;
        auto const vField = Fields(answer.vAddr[n]), vExpected = Fields(expected.vAddr[n]);
        for (size_t nField = 0; nField < vField.size(); ++nField)
            if (vField[nField].second != vExpected[nField].second)
                return Told("record " + std::to_string(n) + ": another " + vField[nField].first);
        return Told("record " + std::to_string(n) + ": another nCityOrder");
    }
    return "";
}

#endif
