// TextIndexBuilder.cpp - the index of folded names, made from a dictionary's records.
#include "text/AddressText.h"
#include "text/AreaRules.h"
#include "text/CityForms.h"
#include "text/DictionaryWalk.h"
#include "text/FoldTable.h"
#include "text/FoldedText.h"
#include "text/TextIndex.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <string>
#include <unordered_map>

namespace qeadrs {

namespace {

struct CHashed {
    CTextHash hash;
    uint32_t nValue;
};

CTextHash HashOf(uint32_t nParent, std::u16string_view strTokens) {
    CTextHash hash(nParent);
    for (char16_t const nToken : strTokens) hash.Add(nToken);
    return hash;
}

// The names of one hash table, in an order in which equal ones stay.
std::vector<tagTEXTSLOT> MakeTable(std::vector<CHashed> const& vName, uint32_t& nBits) {
    nBits = 1;
    while ((size_t{1} << nBits) < 2 * vName.size()) ++nBits;
    uint32_t const nMask = (uint32_t{1} << nBits) - 1;
    std::vector<tagTEXTSLOT> vSlot(size_t{1} << nBits, tagTEXTSLOT{0, TEXT_FREE});
    for (CHashed const& name : vName) {
        uint32_t nSlot = name.hash.Slot(nBits);
        uint32_t nProbes = 1;
        while (vSlot[nSlot].nValue != TEXT_FREE && nProbes++ < TEXT_PROBES) nSlot = (nSlot + 1) & nMask;
        if (vSlot[nSlot].nValue == TEXT_FREE) vSlot[nSlot] = {name.hash.Check(), name.nValue};
    }
    return vSlot;
}

// The pairs of tokens in towns' names, in two bits for each town. The country's 121,000 towns have some 50,000 pairs, so that
// fewer than one in five of all others is taken for one of them.
class CPairSet {
  public:
    explicit CPairSet(uint32_t nTowns) {
        while (m_nBits < PAIR_BITS_MOST && (uint64_t{1} << m_nBits) < uint64_t{2} * nTowns) ++m_nBits;
        m_vWord.resize(size_t{1} << (m_nBits - PAIR_BITS_FEWEST));
    }
    void Add(std::u16string_view strTokens) {
        for (size_t i = 1; i < strTokens.size(); ++i) {
            uint32_t const nBit = CTokenPair(strTokens[i - 1], strTokens[i]).Bit(m_nBits);
            m_vWord[nBit / 32] |= uint32_t{1} << nBit % 32;
        }
    }
    uint32_t Bits() const { return m_nBits; }
    std::vector<uint32_t> const& Words() const { return m_vWord; }

  private:
    uint32_t m_nBits = PAIR_BITS_FEWEST;
    std::vector<uint32_t> m_vWord;
};

// The towns that the header counts, and never more than there are nodes: a damaged one may count anything.
uint32_t CountTowns(CDictionaryView const& dic) {
    if (dic.GetDicPointer() == nullptr) return 0;
    return std::min(dic.Word(HDR_TOWN_COUNT), dic.Word(HDR_NODE_COUNT));
}

class CTextIndexBuilder {
  public:
    explicit CTextIndexBuilder(CAddrDic const& dic) : m_dic(dic), m_pairs(CountTowns(m_dic)) {}

    std::vector<unsigned char> Build() {
        if (m_dic.GetDicPointer() != nullptr) {
            ReadCities();
            ReadTowns();
        }
        return Write();
    }

  private:
    struct CCityName {
        std::u16string strTokens;
        uint32_t nValue;
    };

    // The tokens of a name; none for a name that is too long to be found.
    std::u16string Tokens(std::string_view strName) {
        m_folded.Fold(strName);
        if (m_folded.nCount > TEXT_NAME_TOKENS) return {};
        return {m_folded.anToken, m_folded.anToken + m_folded.nCount};
    }

    // --- cities ---

    void ReadCities() {
        m_nFirstCity = m_dic.Word(HDR_FIRST_CITY);
        m_nBudget = uint64_t{4} * m_dic.Word(HDR_NODE_COUNT);
        uint32_t const nCities = std::min<uint32_t>(m_dic.Word(HDR_CITY_COUNT), CITY_NUMBER);
        for (uint32_t n = 0; n < nCities; ++n) {
            tagADDRNODE const* const pCity = m_dic.GetAddrNode(m_nFirstCity + n);
            if (pCity == nullptr || pCity->nLevel != LEVEL_CITY) break;
            m_vCity.push_back(pCity);
            tagADDRNODE const* const pPref = NodeAbove(m_dic, *pCity);
            AddCityForms(n, pPref == nullptr ? std::string_view() : NodeName(m_dic, *pPref), NodeName(m_dic, *pCity),
                         IsSuperseded(m_dic, *pCity));
        }
        std::stable_sort(m_vCityName.begin(), m_vCityName.end(),
                         [](CCityName const& a, CCityName const& b) { return a.strTokens < b.strTokens; });
        MarkLongerNames();
    }

    // Of an old city only the whole name counts: short ones are today's.
    void AddCityForms(uint32_t nCity, std::string_view strPref, std::string_view strCity, bool bOld) {
        for (uint32_t nPrefForm : {CITY_PREF, CITY_SHORT_PREF, 0u}) {
            std::u16string const strPrefTokens = Tokens(PrefForm(strPref, nPrefForm));
            if (nPrefForm != 0 && strPrefTokens.empty()) continue;
            for (uint32_t nForm : {0u, CITY_NO_COUNTY, CITY_WARD_ONLY, CITY_NO_WARD}) {
                if (bOld && nForm != 0) break;
                std::u16string const strTokens = Tokens(CityForm(strCity, nForm));
                if (strTokens.empty()) continue;
                m_vCityName.push_back({strPrefTokens + strTokens, nCity | nPrefForm | nForm});
            }
        }
    }

    // Names stand sorted, so that one that begins others stands in front of them.
    void MarkLongerNames() {
        bool bGoesOn = false;
        for (size_t i = m_vCityName.size(); i-- > 0;) {
            std::u16string const& str = m_vCityName[i].strTokens;
            if (i + 1 < m_vCityName.size()) {
                std::u16string const& strNext = m_vCityName[i + 1].strTokens;
                if (strNext != str) bGoesOn = strNext.compare(0, str.size(), str) == 0; // equal ones are alike
            }
            if (bGoesOn) m_vCityName[i].nValue |= CITY_GOES_ON;
            m_nCityTokens = std::max(m_nCityTokens, str.size());
            m_last.insert(str.back());
        }
    }

    // --- towns ---

    void ReadTowns() {
        for (uint32_t n = 0; n < m_vCity.size(); ++n) {
            tagTEXTCITY city{};
            std::vector<CHashed> vName;
            ForEachChild(m_dic, *m_vCity[n], [&](uint32_t nTown, tagADDRNODE const& town) {
                if (m_nBudget == 0) return true;
                --m_nBudget;
                if (town.nLevel == LEVEL_TOWN) AddTown(city, vName, n, nTown, town);
                return m_nBudget == 0;
            });
            std::vector<tagTEXTSLOT> const vSlot = MakeTable(vName, city.nBits);
            city.nFirstSlot = static_cast<uint32_t>(m_vTownSlot.size());
            m_vTownSlot.insert(m_vTownSlot.end(), vSlot.begin(), vSlot.end());
            m_vTextCity.push_back(city);
            if (m_nBudget == 0) break;
        }
    }

    static void AddLength(uint32_t (&anLengths)[2], size_t nTokens) {
        anLengths[nTokens / 32] |= uint32_t{1} << nTokens % 32;
    }

    void AddTown(tagTEXTCITY& city, std::vector<CHashed>& vName, uint32_t nCity, uint32_t nTown,
                 tagADDRNODE const& town) {
        bool const bDivided = AddDivisions(city, vName, nTown, town);
        std::u16string const strTokens = Tokens(NodeName(m_dic, town));
        if (strTokens.empty()) return;
        AddLength(city.anTownLengths, strTokens.size());
        m_pairs.Add(strTokens);
        vName.push_back({HashOf(m_nFirstCity + nCity, strTokens), nTown | (bDivided ? TOWN_DIVIDED : 0)});
    }

    // The subdivisions and buildings of a town. Returns whether there are any.
    bool AddDivisions(tagTEXTCITY& city, std::vector<CHashed>& vName, uint32_t nTown, tagADDRNODE const& town) {
        std::vector<uint32_t> vDivision;
        ForEachChild(m_dic, town, [&](uint32_t nNode, tagADDRNODE const& node) {
            if (m_nBudget == 0) return true;
            --m_nBudget;
            if (IsDivision(node)) vDivision.push_back(nNode);
            return m_nBudget == 0;
        });
        size_t const nHead = m_vRule.size();
        m_vRule.push_back({nTown, RULES_HEAD, 0, 0, 0, 0, 0});
        CBareNames const mapName = CountBareNames(vDivision);
        uint32_t nBlock = 0; // town block that a list goes on in
        for (size_t i = 0; i < vDivision.size(); ++i) {
            tagADDRNODE const& node = *m_dic.GetAddrNode(vDivision[i]);
            if (node.nLevel == LEVEL_BLOCK)
                AddBuilding(city, vName, nTown, vDivision[i], mapName);
            else
                nBlock = AddArea(city, vName, nTown, vDivision, i, nBlock);
        }
        m_vRule[nHead].nTo = static_cast<uint32_t>(m_vRule.size() - nHead - 1);
        if (m_vRule[nHead].nTo == 0) {
            m_vRule.pop_back();
        } else {
            CTextHash hash(nTown);
            hash.Add(TOKEN_RULES);
            vName.push_back({hash, static_cast<uint32_t>(nHead) | TOWN_RULES});
        }
        return !vDivision.empty();
    }

    void AddBelow(tagTEXTCITY& city, std::vector<CHashed>& vName, uint32_t nTown, uint32_t nNode,
                  std::u16string_view strTokens) {
        if (strTokens.empty() || strTokens.size() > TEXT_NAME_TOKENS) return;
        AddLength(city.anAreaLengths, strTokens.size());
        vName.push_back({HashOf(nTown, strTokens), nNode});
    }

    // How many buildings of a town have a name, or the part of one in front of its bracket.
    using CBareNames = std::unordered_map<std::u16string, size_t>;
    CBareNames CountBareNames(std::vector<uint32_t> const& vDivision) {
        CBareNames mapName;
        for (uint32_t nNode : vDivision) {
            tagADDRNODE const& node = *m_dic.GetAddrNode(nNode);
            if (node.nLevel != LEVEL_BLOCK) continue;
            std::u16string const strTokens = Tokens(NodeName(m_dic, node));
            ++mapName[strTokens.substr(0, strTokens.find(u'('))];
        }
        return mapName;
    }

    // A building's name counts without its brackets, and without what stands in them when no other one begins so.
    void AddBuilding(tagTEXTCITY& city, std::vector<CHashed>& vName, uint32_t nTown, uint32_t nNode,
                     CBareNames const& mapName) {
        std::u16string const strTokens = Tokens(NodeName(m_dic, *m_dic.GetAddrNode(nNode)));
        std::u16string strBare = strTokens;
        strBare.erase(std::remove_if(strBare.begin(), strBare.end(), IsBracketToken), strBare.end());
        AddBelow(city, vName, nTown, nNode, strBare);
        size_t const nBracket = strTokens.find(u'(');
        if (nBracket == 0 || nBracket == std::u16string::npos) return;
        std::u16string const strBefore = strTokens.substr(0, nBracket);
        if (mapName.at(strBefore) == 1) AddBelow(city, vName, nTown, nNode, strBefore);
    }

    // A unit may stand only behind the last number of a list, which may go on in the next names: eight are enough for
    // the longest list.
    uint32_t AddArea(tagTEXTCITY& city, std::vector<CHashed>& vName, uint32_t nTown,
                     std::vector<uint32_t> const& vDivision, size_t nDivision, uint32_t nBlock) {
        constexpr size_t NAMES_BEHIND = 8;
        std::string_view const strName = NodeName(m_dic, *m_dic.GetAddrNode(vDivision[nDivision]));
        std::vector<std::string_view> vNext;
        for (size_t i = nDivision + 1; i < vDivision.size() && vNext.size() < NAMES_BEHIND; ++i)
            vNext.push_back(NodeName(m_dic, *m_dic.GetAddrNode(vDivision[i])));
        CAreaMeaning const meaning = ReadArea(strName, vNext, nBlock);
        for (tagAREARULE rule : meaning.vRule) {
            rule.nNode = vDivision[nDivision];
            m_vRule.push_back(rule);
        }
        m_folded.Fold(strName);
        std::u16string const strTokens(m_folded.anToken, m_folded.anToken + m_folded.nCount);
        for (CAreaPlace const& place : meaning.vPlace)
            if (place.nFirst < strTokens.size())
                AddBelow(city, vName, nTown, vDivision[nDivision], strTokens.substr(place.nFirst, place.nCount));
        return meaning.nOpenBlock;
    }

    // --- the bytes ---

    template <typename T>
    uint32_t AppendSection(std::vector<T> const& vRecord) {
        auto const nOffset = static_cast<uint32_t>(m_vByte.size());
        m_vByte.resize(m_vByte.size() + vRecord.size() * sizeof(T));
        if (!vRecord.empty()) std::memcpy(m_vByte.data() + nOffset, vRecord.data(), vRecord.size() * sizeof(T));
        return nOffset;
    }

    std::vector<unsigned char> Write() {
        uint32_t anHeader[TXT_WORDS] = {};
        std::vector<CHashed> vCityName;
        for (CCityName const& name : m_vCityName)
            vCityName.push_back({HashOf(TEXT_CITY_PARENT, name.strTokens), name.nValue});
        std::vector<tagTEXTSLOT> const vCitySlot = MakeTable(vCityName, anHeader[TXT_CITY_BITS]);
        m_vByte.resize(TXT_BYTES);
        anHeader[TXT_MAGIC] = TEXT_MAGIC;
        anHeader[TXT_FOLDINGS] = FOLD_VERSION;
        anHeader[TXT_LAYOUT] = TEXT_LAYOUT;
        anHeader[TXT_CITY_SLOTS] = AppendSection(vCitySlot);
        anHeader[TXT_CITIES] = AppendSection(m_vTextCity);
        anHeader[TXT_CITY_COUNT] = static_cast<uint32_t>(m_vTextCity.size());
        anHeader[TXT_TOWN_SLOTS] = AppendSection(m_vTownSlot);
        anHeader[TXT_TOWN_COUNT] = static_cast<uint32_t>(m_vTownSlot.size());
        anHeader[TXT_RULES] = AppendSection(m_vRule);
        anHeader[TXT_RULE_COUNT] = static_cast<uint32_t>(m_vRule.size());
        anHeader[TXT_PAIRS] = AppendSection(m_pairs.Words());
        anHeader[TXT_PAIR_BITS] = m_pairs.Bits();
        anHeader[TXT_CITY_TOKENS] = static_cast<uint32_t>(m_nCityTokens);
        anHeader[TXT_SIZE] = static_cast<uint32_t>(m_vByte.size());
        if (m_last.size() <= TEXT_LAST_TOKENS) {
            for (uint32_t nToken : m_last) {
                uint32_t const n = anHeader[TXT_LAST_COUNT]++;
                anHeader[TXT_LAST + n / 2] |= nToken << 16 * (n % 2);
            }
        }
        std::memcpy(m_vByte.data(), anHeader, TXT_BYTES);
        return std::move(m_vByte);
    }

    CDictionaryView const m_dic;
    CFoldedText m_folded;
    uint32_t m_nFirstCity = 0;
    uint64_t m_nBudget =
        1; // children yet to be visited: a damaged dictionary may count the same ones again and again
    std::vector<tagADDRNODE const*> m_vCity;
    std::vector<CCityName> m_vCityName;
    size_t m_nCityTokens = 0;
    std::set<char16_t> m_last;
    std::vector<tagTEXTCITY> m_vTextCity;
    std::vector<tagTEXTSLOT> m_vTownSlot;
    std::vector<tagAREARULE> m_vRule;
    CPairSet m_pairs;
    std::vector<unsigned char> m_vByte;
};

} // namespace

std::vector<unsigned char> BuildTextIndex(CAddrDic const& dic) {
    return CTextIndexBuilder(dic).Build();
}

std::basic_string_view<unsigned char> TextIndex(CAddrDic const& dic) {
    unsigned char const* const pImage = dic.GetDicPointer();
    if (pImage == nullptr) return {};
    uint32_t const nOffset = HeaderWord(pImage, HDR_FIFTH_TABLE);
    uint32_t const nFile = HeaderWord(pImage, HDR_FILE_SIZE);
    CTextIndex index;
    if (nOffset < HDR_BYTES || nOffset > nFile || !index.Bind(pImage + nOffset, nFile - nOffset)) return {};
    return {pImage + nOffset, index.Size()};
}

} // namespace qeadrs
