// Browsing.h - the lists of browsing as texts and nodes, for comparing them with the tables and the slow reader.
#ifndef QEADRS_TESTS_NATIONAL_BROWSING_H
#define QEADRS_TESTS_NATIONAL_BROWSING_H

#include "ExpectedRow.h"
#include "Failures.h"
#include "Lookup.h"
#include "Prepared.h"
#include "SlowBrowse.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

namespace national {

using CRecords = std::vector<tagADDR>;
using CTexts = std::vector<std::string>;

constexpr unsigned SEED = 20260529;

// The lists of the class, each begun at the prefectures: a level is asked for once.
inline CRecords ListPrefectures() {
    CRecords vAddr;
    EXPECT_TRUE(Dictionary().GetPref(vAddr));
    return vAddr;
}
inline CRecords ListCities(unsigned long nPref) {
    ListPrefectures();
    CRecords vAddr;
    EXPECT_TRUE(Dictionary().GetCityFromNo(nPref, vAddr));
    return vAddr;
}
inline CRecords ListTowns(unsigned long nPref, unsigned long nCity) {
    ListCities(nPref);
    CRecords vAddr;
    EXPECT_TRUE(Dictionary().GetTownFromNo(nCity, vAddr));
    return vAddr;
}
inline CRecords ListAddresses(unsigned long nPref, unsigned long nCity) {
    ListCities(nPref);
    CRecords vAddr;
    EXPECT_TRUE(Dictionary().GetTownExFromNo(nCity, vAddr));
    return vAddr;
}

// All that a record tells: its texts, then both codes; "~" for what it lacks.
inline std::string RecordText(tagADDR const& addr) {
    auto const OrNone = [](char const* psz) { return std::string(psz == nullptr ? "~" : psz); };
    return AddressText(addr) + "|" + OrNone(addr.pszPostCode) + "|" + OrNone(addr.pszCodeExt);
}
inline CTexts RecordTexts(CRecords const& vAddr) {
    CTexts vText;
    for (tagADDR const& addr : vAddr) vText.push_back(RecordText(addr));
    return vText;
}

// The same for an expected one.
struct CCodes {
    COptionalText strCode, strOldCode;
};
inline std::string ExpectedText(CAddress const& address, CCodes const& codes) {
    return AddressText(address)
        .append("|")
        .append(codes.strCode.value_or("~"))
        .append("|")
        .append(codes.strOldCode.value_or("~"));
}
inline std::string PrefText(std::string_view strName, std::string_view strKana) {
    CAddress a;
    a.strPref = strName, a.strPrefKana = strKana;
    return ExpectedText(a, {});
}
inline std::string CityText(std::string_view strName, std::string_view strKana) {
    CAddress a;
    a.strCity = strName, a.strCityKana = strKana;
    return ExpectedText(a, {});
}
inline std::string TownText(std::string_view strName, std::string_view strKana, CCodes const& codes) {
    CAddress a;
    a.strTown = strName, a.strTownKana = strKana;
    return ExpectedText(a, codes);
}

// The codes of a node's entry, superseded or not.
inline CCodes CodesOf(uint32_t nNode) {
    uint32_t const nEntry = Official().Nodes()[nNode].nEntry;
    if (nEntry == NONE) return {};
    return {Official().Entries()[nEntry].strCode, Official().Entries()[nEntry].strOldCode};
}

inline uint32_t IndexOf(tagADDRNODE const* pNode) {
    return pNode == nullptr ? NONE : static_cast<uint32_t>(pNode - Dictionary().GetAddrNode(0));
}
inline CNodes IndicesOf(std::vector<tagADDRNODE const*> const& vNode) {
    CNodes v;
    for (tagADDRNODE const* pNode : vNode) v.push_back(IndexOf(pNode));
    return v;
}
inline CNodes ListNodes(CRecords const& vAddr) {
    CNodes v;
    for (tagADDR const& addr : vAddr) v.push_back(IndexOf(addr.pListCity));
    return v;
}

// A city by its two numbers, and the node that the slow reader has there.
struct CCity {
    unsigned long nPref, nCity;
    uint32_t nNode;
    std::string strKey;
};
template <typename CHECK>
void ForEachCity(CHECK Check) {
    CFailures failures;
    for (unsigned long nPref = 0; nPref < AllPrefectures().size(); ++nPref) {
        uint32_t const nPrefNode = AllPrefectures()[nPref];
        unsigned long nCity = 0;
        for (uint32_t nNode : ChildrenOf(nPrefNode)) {
            Check(failures, CCity{nPref, nCity++, nNode, CityKey(NameOf(nPrefNode), NameOf(nNode))});
            if (failures.Enough()) return;
        }
    }
}

// The first difference of two lists is a failure.
template <typename LIST, typename DESCRIBE>
void CompareLists(CFailures& failures, std::string const& strQuestion, LIST const& vFound, LIST const& vExpected,
                  DESCRIBE Describe) {
    if (vFound == vExpected) return;
    size_t n = 0;
    while (n < vFound.size() && n < vExpected.size() && vFound[n] == vExpected[n]) ++n;
    auto const At = [&](LIST const& v) { return n < v.size() ? Describe(v[n]) : std::string("nothing"); };
    failures.Add(strQuestion + ": " + std::to_string(vFound.size()) + " instead of " +
                 std::to_string(vExpected.size()) + "; number " + std::to_string(n) + " is\n  " + At(vFound) +
                 "\ninstead of\n  " + At(vExpected));
}
inline void CompareTexts(CFailures& failures, std::string const& strQuestion, CTexts const& vFound,
                         CTexts const& vExpected) {
    CompareLists(failures, strQuestion, vFound, vExpected, [](std::string const& str) { return str; });
}
inline void CompareNodes(CFailures& failures, std::string const& strQuestion, CNodes const& vFound,
                         CNodes const& vExpected) {
    CompareLists(failures, strQuestion, vFound, vExpected, [](uint32_t n) {
        return "node " + std::to_string(n) + (n < Official().Nodes().size() ? " " + NameOf(n) : "");
    });
}

} // namespace national

#endif
