// SlowAddress.cpp - names compared one by one.
#include "SlowAddress.h"

#include "Tables.h"

#include <algorithm>

namespace national {

namespace {

using CNode = CSlowReader::CNode;

struct CRange {
    uint32_t nFirst, nCount;
};

// The nodes below one, or a whole level by the header's words.
CRange RangeBelow(uint32_t nParent, unsigned nFirstWord, unsigned nCountWord) {
    if (nParent == NONE) return {Official().Word(nFirstWord), Official().Word(nCountWord)};
    CNode const& parent = Official().Nodes()[nParent];
    return {parent.nFirstChild, parent.nChildren};
}

// The first node, or the first of the longest ones, whose name begins the text.
uint32_t Match(std::string_view strText, CRange range, bool bLongest) {
    uint32_t nBest = NONE;
    size_t nLength = 0;
    for (uint32_t n = range.nFirst; n - range.nFirst < range.nCount; ++n) {
        std::string_view const strName = Official().Nodes()[n].strName;
        if (strName.size() <= nLength || !BeginsWith(strText, strName)) continue;
        nBest = n;
        nLength = strName.size();
        if (!bLongest) break;
    }
    return nBest;
}

// A current entry for each node below, depth first. A text stays for later siblings of other levels.
void ListBelow(uint32_t nNode, CBlockAddress record, std::vector<CBlockAddress>& vAddress) {
    CNode const& node = Official().Nodes()[nNode];
    for (uint32_t n = node.nFirstChild; n - node.nFirstChild < node.nChildren; ++n) {
        Official().TakeTexts(n, record.address);
        uint32_t const nEntry = Official().Nodes()[n].nEntry;
        if (nEntry != NONE && !Official().Entries()[nEntry].bSuperseded) {
            record.strCode = Official().Entries()[nEntry].strCode;
            record.strBeforeCode = Official().Entries()[nEntry].strOldCode;
            vAddress.push_back(record);
        }
        ListBelow(n, record, vAddress);
    }
}

void ListCitiesAndPrefectures(std::string_view strText, std::vector<CBlockAddress>& vAddress) {
    CRange const prefs = RangeBelow(NONE, 19, 18);
    for (uint32_t n = prefs.nFirst; n - prefs.nFirst < prefs.nCount; ++n) {
        if (!BeginsWith(Official().Nodes()[n].strName, strText)) continue;
        CBlockAddress record;
        Official().TakeTexts(n, record.address);
        ListBelow(n, record, vAddress);
    }
    for (uint32_t n : Official().CityIndex()) {
        if (!BeginsWith(Official().Nodes()[n].strName, strText)) continue;
        CBlockAddress record;
        Official().TakeTexts(n, record.address);
        Official().TakeTexts(Official().Nodes()[n].nParent, record.address);
        ListBelow(n, record, vAddress);
    }
}

} // namespace

CSeparated Separate(std::string_view strText) {
    CSeparated found;
    auto const Take = [&](uint32_t nNode) {
        if (nNode != NONE) found.nConsumed += Official().Nodes()[nNode].strName.size();
        return nNode;
    };
    auto const Rest = [&] { return strText.substr(found.nConsumed); };
    found.nPref = Take(Match(Rest(), RangeBelow(NONE, 19, 18), false));
    found.nCity = Take(Match(Rest(), RangeBelow(found.nPref, 21, 20), true));
    found.nTown = Take(Match(Rest(), RangeBelow(found.nCity, 23, 22), false));
    for (uint32_t n : {found.nCity, found.nTown})
        if (n != NONE && Official().Nodes()[n].nEntry != NONE) found.nEntry = Official().Nodes()[n].nEntry;
    return found;
}

uint32_t EntryOfOffice(CSeparated const& address, std::string const& strOffice) {
    if (strOffice.empty()) return address.nEntry;
    std::string const strName = SearchedName(strOffice);
    std::vector<uint32_t> const& vIndex = Official().OfficeIndex();
    auto const& vNode = Official().Nodes();
    auto p = std::lower_bound(vIndex.begin(), vIndex.end(), strName,
                              [&](uint32_t n, std::string const& str) { return vNode[n].strName < str; });
    for (; p != vIndex.end() && BeginsWith(vNode[*p].strName, strName); ++p)
        if (address.nTown == Official().Ancestor(*p, 2) && address.nCity == Official().Ancestor(*p, 1) &&
            address.nPref == Official().Ancestor(*p, 0))
            return vNode[*p].nEntry;
    return address.nEntry;
}

std::string LatestText(std::string_view strText, CSeparated const& address) {
    auto const& vNode = Official().Nodes();
    CAddress a;
    for (uint32_t n : {address.nPref, address.nCity, address.nTown})
        if (n != NONE) Official().TakeTexts(n, a);
    uint32_t const nEntry = address.nTown == NONE ? NONE : vNode[address.nTown].nEntry;
    if (nEntry != NONE && Official().Entries()[nEntry].bSuperseded)
        a = Official().Address(Official().Entries()[nEntry].nSuccessor);
    std::string str;
    for (COptionalText const* p : {&a.strPref, &a.strCity, &a.strTown}) str += p->value_or("");
    if (address.nTown != NONE) str += strText.substr(address.nConsumed);
    return str;
}

std::vector<CBlockAddress> AddressesOfPart(std::string_view strText) {
    std::vector<CBlockAddress> vAddress;
    CSeparated const found = Separate(strText);
    if (found.nPref == NONE) {
        ListCitiesAndPrefectures(strText, vAddress);
        return vAddress;
    }
    CBlockAddress record;
    uint32_t nDeepest = NONE;
    for (uint32_t n : {found.nPref, found.nCity, found.nTown})
        if (n != NONE) {
            Official().TakeTexts(n, record.address);
            nDeepest = n;
        }
    if (found.nEntry != NONE) {
        record.strCode = Official().Entries()[found.nEntry].strCode;
        record.strBeforeCode = Official().Entries()[found.nEntry].strOldCode;
    }
    if (found.nTown != NONE) record.address.strArea = strText.substr(found.nConsumed);
    // A town below no city is passed over: only the prefecture is known then.
    if (found.nCity == NONE) nDeepest = found.nPref;
    if (found.nCity != NONE && found.nTown != NONE) vAddress.push_back(record);
    ListBelow(nDeepest, record, vAddress);
    return vAddress;
}

} // namespace national
