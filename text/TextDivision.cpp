// TextDivision.cpp - below the town: which subdivision, building or floor a text means.
#include "text/DictionaryWalk.h"
#include "text/TextReader.h"
#include "text/Tokens.h"

#include <algorithm>
#include <string>
#include <tuple>

namespace qeadrs {

namespace {

constexpr size_t FLOOR_TOKENS = 10; // more than a floor has

// In the order of the dictionary, each once.
void Order(std::vector<uint32_t>& v) {
    std::sort(v.begin(), v.end());
    v.erase(std::unique(v.begin(), v.end()), v.end());
}

// REQUIRES: v is in order.
bool Has(std::vector<uint32_t> const& v, uint32_t n) {
    return std::binary_search(v.begin(), v.end(), n);
}

// Whether two names are the same, brackets apart.
bool AreSame(uint16_t const* p, size_t nCount, uint16_t const* pOther, size_t nOtherCount) {
    size_t n = 0;
    size_t nOther = 0;
    for (;;) {
        while (n < nCount && IsBracketToken(p[n])) ++n;
        while (nOther < nOtherCount && IsBracketToken(pOther[nOther])) ++nOther;
        if (n == nCount || nOther == nOtherCount) return n == nCount && nOther == nOtherCount;
        if (p[n++] != pOther[nOther++]) return false;
    }
}

// A street's name without what people put in or leave out: 通, and the る of 上る, 下ル, 上がる, 西入る.
std::u16string Street(uint16_t const* pToken, size_t nCount) {
    std::u16string str;
    for (size_t i = 0; i < nCount; ++i) {
        uint16_t const n = pToken[i];
        bool const bBehindUp = !str.empty() && (str.back() == u'上' || str.back() == u'下' || str.back() == u'入');
        if (n == TOKEN_STREET || (bBehindUp && (n == TOKEN_RU || n == TOKEN_RU_KATAKANA || n == TOKEN_KE))) continue;
        str.push_back(n);
    }
    return str;
}

} // namespace

// What the numbers behind the town, or a place name, say of the subdivisions.
struct CTextReader::CRuleFindings {
    std::vector<uint32_t> vBest;       // the number lies in them, and nothing says more
    std::vector<uint32_t> vPossible;   // it may lie in them
    std::vector<uint32_t> vLess;       // it lies in them, too, and others say more
    std::vector<uint32_t> vExcepted;   // it is one that their names leave out
    std::vector<uint32_t> vImpossible; // it does not lie in them
    bool bPlace = false;               // vBest by a place name, too

    // Takes the exceptions out, and puts the second best in the place of the best where that is left without any.
    void Settle() {
        for (std::vector<uint32_t>* pv : {&vBest, &vLess, &vPossible, &vExcepted, &vImpossible}) Order(*pv);
        for (std::vector<uint32_t>* pv : {&vBest, &vLess, &vPossible})
            pv->erase(std::remove_if(pv->begin(), pv->end(), [this](uint32_t n) { return Has(vExcepted, n); }),
                      pv->end());
        if (vBest.empty()) {
            vBest = vLess;
            bPlace = false;
        }
        auto const MayLie = [this](uint32_t n) { return Has(vBest, n) || Has(vPossible, n); };
        vImpossible.erase(std::remove_if(vImpossible.begin(), vImpossible.end(), MayLie), vImpossible.end());
        vImpossible.insert(vImpossible.end(), vExcepted.begin(), vExcepted.end());
        Order(vImpossible);
    }
};

// Whether the name of the node is what the tokens say, brackets apart: a building's, or one of the place names in a
// subdivision's. strPart: the bytes of that name.
bool CTextReader::IsBelow(CTown const& town, uint32_t nNode, size_t nBegin, size_t nEnd, std::string_view& strPart) {
    tagADDRNODE const* const pNode = m_dic.GetAddrNode(nNode);
    if (pNode == nullptr || pNode->nParent != town.nNode || !IsDivision(*pNode)) return false;
    FoldName(NodeName(m_dic, *pNode));
    uint16_t const* const pText = m_folded.anToken + nBegin;
    size_t const nTokens = nEnd - nBegin;
    strPart = m_name.Bytes(0, m_name.nCount);
    if (AreSame(pText, nTokens, m_name.anToken, m_name.nCount)) return true;
    if (pNode->nLevel == LEVEL_BLOCK) {
        auto const* const pEnd = std::find(m_name.anToken, m_name.anToken + m_name.nCount, uint16_t{'('});
        auto const nBefore = static_cast<size_t>(pEnd - m_name.anToken);
        strPart = m_name.Bytes(0, nBefore);
        return AreSame(pText, nTokens, m_name.anToken, nBefore);
    }
    CAreaMeaning const meaning = ReadArea(NodeName(m_dic, *pNode), {});
    return std::any_of(meaning.vPlace.begin(), meaning.vPlace.end(), [&](CAreaPlace const& place) {
        if (size_t{place.nFirst} + place.nCount > m_name.nCount) return false;
        strPart = m_name.Bytes(place.nFirst, size_t{place.nFirst} + place.nCount);
        return AreSame(pText, nTokens, m_name.anToken + place.nFirst, place.nCount);
    });
}

// The subdivision or building with the longest name at a place of the text, ADDR_NONE when there is none. Of two with one
// folded name (大桑町カ, 大桑町ケ) the one that is spelled as in the text.
uint32_t CTextReader::FindBelow(CTown const& town, size_t nBegin, size_t& nEnd, std::string_view& strPart) {
    CTextIndex::CTable const table = m_index.TownTable(*town.city.pIndex);
    uint64_t const nLengths = Lengths(town.city.pIndex->anAreaLengths);
    CTextHash hash(town.nNode);
    uint32_t nFound = ADDR_NONE;
    size_t nTokens = 0; // brackets apart
    for (size_t n = nBegin + 1; nLengths >> nTokens > 1 && m_folded.Has(n); ++n) {
        if (IsBracketToken(m_folded.anToken[n - 1])) continue;
        hash.Add(m_folded.anToken[n - 1]);
        ++nTokens;
        if ((nLengths >> nTokens & 1) == 0 || !m_folded.MayEnd(n)) continue;
        CTextIndex::ForEach(table, hash, [&](uint32_t nValue) {
            std::string_view str;
            if ((nValue & TOWN_RULES) != 0 || !IsBelow(town, nValue & TOWN_NODE, nBegin, n, str)) return false;
            bool const bExact = str == m_folded.Bytes(nBegin, n);
            if (nEnd == n && nFound != ADDR_NONE && !bExact) return false;
            nFound = nValue & TOWN_NODE;
            nEnd = n;
            strPart = str;
            return bExact;
        });
    }
    if (nFound != ADDR_NONE)
        while (m_folded.Has(nEnd + 1) && m_folded.anToken[nEnd] == ')') ++nEnd;
    return nFound;
}

// The subdivision that the street in front of the town names.
uint32_t CTextReader::FindStreetArea(CTown const& town) {
    size_t const nFirst = town.city.nTokens;
    std::u16string const strStreet = Street(m_folded.anToken + nFirst, town.nBegin - nFirst);
    uint32_t nFound = ADDR_NONE;
    ForEachChild(m_dic, *m_dic.GetAddrNode(town.nNode), [&](uint32_t nNode, tagADDRNODE const& node) {
        if (node.nLevel != LEVEL_AREA || !IsDivision(node)) return false;
        FoldName(NodeName(m_dic, node));
        size_t nBegin = 0; // of each street of a list
        for (size_t n = 0; n <= m_name.nCount; ++n) {
            if (n < m_name.nCount && m_name.anToken[n] != TOKEN_COMMA) continue;
            if (Street(m_name.anToken + nBegin, n - nBegin) == strStreet) nFound = nNode;
            nBegin = n + 1;
        }
        return nFound != ADDR_NONE;
    });
    return nFound;
}

// The rules of a town's subdivisions against the numbers behind it. Of several that fit, the one that says most.
void CTextReader::ReadRules(CTown const& town, CHouseNumber const& number, CRuleFindings& findings) {
    CTextIndex::CRules rules;
    CTextHash hash(town.nNode);
    hash.Add(TOKEN_RULES);
    CTextIndex::ForEach(m_index.TownTable(*town.city.pIndex), hash, [&](uint32_t nValue) {
        rules = m_index.Rules(nValue, town.nNode);
        return rules.nCount != 0;
    });
    using CWeight = std::tuple<uint32_t, bool, uint32_t>; // place, town block, how narrow
    CWeight best{};
    for (size_t i = 0; i < rules.nCount; ++i) {
        tagAREARULE const& rule = rules.pFirst[i];
        bool bNumber = false;
        EFit const nFit = FitOf(rule, town, number, bNumber);
        bool const bExcept = (rule.nFlags & AREA_EXCEPT) != 0;
        if (bExcept) {
            if (nFit == EFit::Yes) findings.vExcepted.push_back(rule.nNode);
        } else if (nFit == EFit::No) {
            if (rule.nPlace == 0) findings.vImpossible.push_back(rule.nNode);
        } else if (nFit == EFit::Maybe || (rule.nFlags & AREA_VAGUE) != 0) {
            if (bNumber) findings.vPossible.push_back(rule.nNode);
        } else {
            CWeight const weight(rule.nPlace, rule.nBlock != 0, ~(rule.nTo - rule.nFrom));
            if (findings.vBest.empty() || weight > best) {
                findings.vLess.insert(findings.vLess.end(), findings.vBest.begin(), findings.vBest.end());
                findings.vBest.clear();
                best = weight;
            }
            (weight == best ? findings.vBest : findings.vLess).push_back(rule.nNode);
        }
    }
    findings.bPlace = std::get<0>(best) != 0;
    findings.Settle();
}

// How a rule fits what stands behind the town: the number, or, below a place name, the name and the number behind it.
// bNumber: there is one.
EFit CTextReader::FitOf(tagAREARULE const& rule, CTown const& town, CHouseNumber const& number, bool& bNumber) {
    tagADDRNODE const* const pNode = m_dic.GetAddrNode(rule.nNode);
    if (pNode == nullptr || pNode->nParent != town.nNode) return EFit::No;
    CHouseNumber below;
    if (rule.nPlace != 0) {
        FoldName(NodeName(m_dic, *pNode));
        size_t const nPlace = rule.nPlace;
        if (nPlace > m_name.nCount || !m_folded.Has(town.nEnd + nPlace)) return EFit::No;
        if (!std::equal(m_name.anToken, m_name.anToken + nPlace, m_folded.anToken + town.nEnd)) return EFit::No;
        below = ReadHouseNumber(m_folded, town.nEnd + nPlace);
    }
    CHouseNumber const& read = rule.nPlace != 0 ? below : number;
    bNumber = read.nParts != 0;
    return bNumber ? Fits(rule, read) : EFit::Maybe;
}

// Behind the word that a building's name may go on with, ビル or タワー, where there is one.
size_t CTextReader::BehindBuildingWord(size_t nToken) {
    for (std::u16string_view const strWord : {u"ビルディング", u"ビル", u"タワー"}) {
        if (!m_folded.Has(nToken + strWord.size())) continue;
        auto const* const p = m_folded.anToken + nToken;
        auto const IsSame = [](uint16_t nRead, char16_t nWord) { return nRead == (nWord == u'ー' ? u'-' : nWord); };
        if (std::equal(p, p + strWord.size(), strWord.begin(), IsSame)) return nToken + strWord.size();
    }
    return nToken;
}

// The floor behind a building's name: the number in front of 階 or F. Without one that the table has the building's own
// code counts, and without any the building and all its floors do. False when the name goes on in words that are none of
// the building's: アエル前.
bool CTextReader::ReadFloor(uint32_t nBuilding, size_t nBegin, CDivision& division) {
    division.vNode.assign(1, nBuilding);
    tagADDRNODE const& building = *m_dic.GetAddrNode(nBuilding);
    size_t n = BehindBuildingWord(nBegin);
    m_folded.Has(n + FLOOR_TOKENS);
    while (IsBracketToken(m_folded.anToken[n])) ++n;
    uint16_t const nToken = m_folded.anToken[n];
    bool const bUnder = nToken == TOKEN_GROUND || (nToken == 'b' && IsDigitToken(m_folded.anToken[n + 1]));
    if (bUnder) return true;
    size_t nEnd = n;
    while (IsDigitToken(m_folded.anToken[nEnd]) && (nEnd == n || m_folded.abInNumber[nEnd])) ++nEnd;
    bool const bFloor =
        nEnd > n && ((m_folded.anToken[nEnd] == TOKEN_FLOOR && m_folded.anToken[nEnd + 1] != TOKEN_BUILT) ||
                     m_folded.anToken[nEnd] == 'f');
    bool const bWords = nEnd == n && n < m_folded.nCount && m_folded.anBegin[n] == m_folded.anEnd[n - 1];
    if (bWords) return false;
    ForEachChild(m_dic, building, [&](uint32_t nNode, tagADDRNODE const& node) {
        if (node.nLevel != LEVEL_NOTE) return false;
        if (!bFloor) {
            division.vNode.push_back(nNode);
            return false;
        }
        FoldName(NodeName(m_dic, node));
        bool const bSame = m_name.nCount == nEnd - n + 1 && m_name.anToken[m_name.nCount - 1] == TOKEN_FLOOR &&
                           std::equal(m_folded.anToken + n, m_folded.anToken + nEnd, m_name.anToken);
        if (bSame) division.vNode.assign(1, nNode);
        return bSame;
    });
    division.bSeveral = division.vNode.size() > 1;
    if (bFloor) {
        division.nFloor = n;
        division.nFloorEnd = nEnd + 1;
    }
    return true;
}

// A building of the town at a place of the text, and its floor.
bool CTextReader::ReadBuilding(CTown const& town, size_t nBegin, CDivision& division) {
    size_t nEnd = 0;
    std::string_view strPart;
    uint32_t const nBuilding = FindBelow(town, nBegin, nEnd, strPart);
    if (nBuilding == ADDR_NONE || m_dic.GetAddrNode(nBuilding)->nLevel != LEVEL_BLOCK) return false;
    if (!ReadFloor(nBuilding, nEnd, division)) {
        division.vNode.assign(1, town.nNode);
        return false;
    }
    division.strPart = strPart;
    division.nBuilding = nBegin;
    division.nBuildingEnd = nEnd;
    return true;
}

// Whether the text names a part of the town: by a street in front, a building, a place name or a number behind. What the
// numbers leave possible stands in findings all the same.
bool CTextReader::ReadDivision(CTown const& town, CDivision& division, CRuleFindings& findings) {
    uint32_t const nStreet = town.bStreet ? FindStreetArea(town) : ADDR_NONE;
    if (nStreet != ADDR_NONE) {
        division.vNode.assign(1, nStreet);
        return true;
    }
    CHouseNumber const number = ReadHouseNumber(m_folded, town.nEnd);
    size_t nBehind = town.nEnd + number.nTokens;
    while (IsDigitToken(m_folded.anToken[nBehind])) ++nBehind; // 1アエル: no number of a subdivision, but a building
    if (ReadBuilding(town, town.nEnd, division) || ReadBuilding(town, nBehind, division)) return true;
    ReadRules(town, number, findings);
    size_t nAreaEnd = town.nEnd;
    uint32_t const nArea = FindBelow(town, town.nEnd, nAreaEnd, division.strPart);
    bool const bArea = nArea != ADDR_NONE && m_dic.GetAddrNode(nArea)->nLevel == LEVEL_AREA;
    if (bArea && !findings.bPlace && !Has(findings.vExcepted, nArea)) {
        division.vNode.assign(1, nArea);
        division.nAreaEnd = nAreaEnd;
        return true;
    }
    if (findings.vBest.empty()) return false;
    division.vNode = findings.vBest;
    division.bSeveral = division.vNode.size() > 1;
    return true;
}

// Which of a town's nodes the text means. The town's own entry is what is left when nothing names a part of it; where it
// has none, its parts are all candidates but those that the number rules out.
void CTextReader::Divide(CTown const& town, CDivision& division) {
    division = {};
    tagADDRNODE const& node = *m_dic.GetAddrNode(town.nNode);
    std::vector<uint32_t>& vNode = division.vNode;
    vNode.assign(1, town.nNode);
    if (!town.bDivided) return;
    m_folded.Has(CFoldedText::LIMIT);
    CRuleFindings findings;
    division.bNamed = ReadDivision(town, division, findings);
    if (division.bNamed) return;
    if (NodeEntry(m_dic, node) == nullptr) vNode.clear();
    vNode.insert(vNode.end(), findings.vPossible.begin(), findings.vPossible.end());
    auto const AddOthers = [&](std::vector<uint32_t> const& vNot) {
        ForEachChild(m_dic, node, [&](uint32_t nNode, tagADDRNODE const& child) {
            bool const bOpen = !Has(vNot, nNode) && !Has(findings.vPossible, nNode);
            if (IsDivision(child) && child.nInfo != ADDR_NONE && bOpen) vNode.push_back(nNode);
            return false;
        });
    };
    bool const bNothingBehind = town.nEnd >= m_folded.nCount;
    if (vNode.empty() || bNothingBehind) AddOthers(findings.vImpossible);
    if (vNode.empty()) AddOthers({}); // a number that no part has rules none of them out
    if (vNode.empty()) vNode.assign(1, town.nNode);
    division.bSeveral = vNode.size() > 1;
}

} // namespace qeadrs
