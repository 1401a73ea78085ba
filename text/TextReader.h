// TextReader.h - the reading of one text, in steps, so that several texts can wait for memory at once.
//
//   reader.Begin(strText);                  // folds the front, asks for the slot where a city's name may end
//   reader.ProbeTowns();                    // looks the city up, asks for the slots of all names that its town can have
//   reader.ProbeNodes();                    // looks them up, asks for the node of the longest one that is there ...
//   reader.ProbeNames();                    // ... and for its name and entry
//   reader.Finish(nOptions, reading);       // everything is near now
#ifndef QEADRS_TEXT_TEXTREADER_H
#define QEADRS_TEXT_TEXTREADER_H

#include "text/AddressText.h"
#include "text/AreaRules.h"
#include "text/DictionaryWalk.h"
#include "text/FoldedText.h"
#include "text/TextIndex.h"

namespace qeadrs {

inline void Prefetch(void const* p) {
    __builtin_prefetch(p);
}

class CTextReader {
  public:
    CTextReader(CDictionaryView const& dic, CTextIndex const& index) : m_dic(dic), m_index(index) {}

    // Where the steps of the reading are told; null: nowhere.
    void SetSteps(std::vector<CTextStep>* pvStep) { m_pvStep = pvStep; }

    void Begin(std::string_view strText);
    void ProbeTowns();
    void ProbeNodes();
    void ProbeNames();

    // Writes all but pCandidate, which stands in Candidates() until the next Finish. REQUIRES: Begin.
    void Finish(uint32_t nOptions, QETEXTREADING& reading);
    std::vector<QETEXTPLACE> const& Candidates() const { return m_vCandidate; }

  private:
    // A length at which the text begins with a name of a city.
    struct CCityLength {
        size_t nTokens;
        CTextHash hash;
        uint32_t nValue; // of the first slot ...
        bool bOnly;      // ... and whether it is the only one
    };
    // A city that the text can mean.
    struct CCity {
        uint32_t nNode = ADDR_NONE;
        uint32_t nForm = 0;     // CITY_xxx
        size_t nPrefTokens = 0; // of the text
        size_t nTokens = 0;     // prefecture included
        bool bExact = false;    // bytes of the dictionary
        bool bKyoto = false;    // streets may stand in front of its towns
        tagTEXTCITY const* pIndex = nullptr;
    };
    // A town of it. nBegin behind the city's tokens where a street stands in between.
    struct CTown {
        CCity city;
        uint32_t nNode = ADDR_NONE;
        size_t nBegin = 0; // tokens [nBegin, nEnd)
        size_t nEnd = 0;
        bool bDivided = false;
        bool bExact = false;
        bool bStreet = false;
        bool bBeforeGap = false; // shorter than another one, and the text has a 字 or a blank behind it
    };
    // What a town's part of the answer is: nodes that the text can mean, the likeliest first.
    struct CDivision {
        std::vector<uint32_t> vNode;
        bool bSeveral = false;
        bool bNamed = false;      // the text names the first of them: by its number, its name, its street
        std::string_view strPart; // the dictionary's bytes of the subdivision's or building's name
        size_t nAreaEnd = 0;      // tokens: [town's end, nAreaEnd) is the name of a subdivision
        size_t nBuilding = 0, nBuildingEnd = 0;
        size_t nFloor = 0, nFloorEnd = 0;
    };
    struct CProbe {
        CTextHash hash;
        size_t nTokens; // of the town's name
    };
    static constexpr size_t CITY_LENGTHS = 8;
    static constexpr size_t TOWN_NAMES = TEXT_NAME_TOKENS + 1;

    // --- the front ---
    uint32_t FirstCity() const { return m_dic.Word(HDR_FIRST_CITY); }
    void ReadCode();
    void BeginCities();
    bool ProbeCity();
    void FindCities();

    // --- names against the dictionary ---
    bool ReadCity(uint32_t nValue, size_t nTokens, CCity& city);
    bool IsName(std::string_view strName, size_t nBegin, size_t nEnd, bool& bExact);
    bool IsTown(CTown& town, uint32_t nValue);
    bool IsBareNumber(CTown const& town);
    void FoldName(std::string_view strName, uint32_t nOptions = 0);
    size_t MatchedTokens(std::string_view strName, size_t nBegin);

    // --- levels ---
    void FindTowns(CCity const& city, std::vector<CTown>& vTown);
    size_t TownNames(uint32_t nCity, tagTEXTCITY const& city, size_t nBegin, CProbe (&aName)[TOWN_NAMES]);
    void FindTownsAt(CCity const& city, size_t nBegin, std::vector<CTown>& vTown);
    bool IsPartOfName(CTown const& town);
    bool HasGap(CTown const& town) const;
    void AddTownBeforeGap(CProbe const* pName, size_t nNames, std::vector<CTown>& vTown);
    bool GoesOnInWords(size_t nToken);
    void PreferPlaceBelow(CProbe const* pName, size_t nNames, std::vector<CTown>& vTown);
    bool FindTownsBehindStreet(CCity const& city, std::vector<CTown>& vTown, bool& bStreet);
    size_t BehindCount(size_t nToken) const;
    size_t StreetMarker(size_t nToken) const;
    void Resolve();
    void ResolveCities(CCityLength const& length);
    void DropOtherTowns();

    // --- below the town ---
    struct CRuleFindings;
    void Divide(CTown const& town, CDivision& division);
    bool ReadDivision(CTown const& town, CDivision& division, CRuleFindings& findings);
    void ReadRules(CTown const& town, CHouseNumber const& number, CRuleFindings& findings);
    EFit FitOf(tagAREARULE const& rule, CTown const& town, CHouseNumber const& number, bool& bNumber);
    uint32_t FindBelow(CTown const& town, size_t nBegin, size_t& nEnd, std::string_view& strPart);
    bool IsBelow(CTown const& town, uint32_t nNode, size_t nBegin, size_t nEnd, std::string_view& strPart);
    uint32_t FindStreetArea(CTown const& town);
    bool ReadBuilding(CTown const& town, size_t nBegin, CDivision& division);
    bool ReadFloor(uint32_t nBuilding, size_t nBegin, CDivision& division);
    size_t BehindBuildingWord(size_t nToken);

    // --- the answer ---
    bool AnswerPlainly(QETEXTREADING& reading);
    void Answer(QETEXTREADING& reading);
    void ReadAgain(QETEXTREADING& reading);
    bool HasAzaBehind(size_t nToken);
    void AnswerTowns(QETEXTREADING& reading);
    void DropUnnamedTwins();
    bool HasShorterDivided(size_t nTokens) const;
    void AnswerCities(QETEXTREADING& reading);
    void AnswerNothing(QETEXTREADING& reading);
    std::vector<uint32_t> NamelessTowns(tagADDRNODE const& city, bool bFront, bool& bNamed) const;
    QETEXTPLACE WholeCity(CCity const& city, bool& bOnlyOne);
    static uint32_t SurenessOfOne(QETEXTREADING const& reading);
    void WriteFront(CCity const& city, QETEXTREADING& reading);
    void WriteTown(CTown const& town, CDivision const& division, QETEXTREADING& reading);
    void WriteFoldings(CCity const& city, CTown const* pTown, QETEXTREADING& reading);
    uint32_t Foldings(size_t nFirstByte, size_t nFirst, size_t nEnd, std::string_view strName);
    void UseCode(QETEXTREADING& reading);
    bool HasCode(QETEXTPLACE const& place) const;
    bool IsCodeBelow(QETEXTPLACE const& place, bool bTownFound) const;
    void RemarkWordsBehind(size_t nToken, QETEXTREADING& reading);
    void Renew(QETEXTREADING& reading, uint32_t nOptions);
    QETEXTPLACE PlaceOf(uint32_t nNode) const;
    QETEXTPLACE PlainPlace(uint32_t nTown, tagADDRNODE const& town) const;
    QETEXTPLACE PlaceOfEntry(uint32_t nEntry) const;
    void SetRest(size_t nToken, QETEXTREADING& reading);
    QETEXTSPAN Span(size_t nFirst, size_t nEnd) const;
    void TellCities() const;
    void TellTowns() const;
    void TellAnswer(QETEXTREADING const& reading) const;
    void Step(char const* pszStep, QETEXTSPAN span, std::string strWhat) const;
    bool IsTelling() const { return m_pvStep != nullptr; }

    CDictionaryView const& m_dic;
    CTextIndex const& m_index;
    std::vector<CTextStep>* m_pvStep = nullptr;

    std::string_view m_strText;
    size_t m_nBase = 0; // where the address begins, behind a code
    QETEXTSPAN m_code{};
    char m_szCode[8] = {};
    CFoldedText m_folded;
    uint32_t m_nFoldOptions = 0;
    CFoldedText m_name;          // a name of the dictionary ...
    uint32_t m_nNameOptions = 0; // ... and how it was folded
    bool m_bCityProbe = false;   // a name of a city may end ...
    size_t m_nCityTokens = 0;    // ... behind so many tokens ...
    CTextHash m_cityHash;        // ... with this hash
    CCityLength m_aLength[CITY_LENGTHS];
    size_t m_nLengths = 0;
    CProbe m_aProbe[TOWN_NAMES];
    size_t m_nProbes = 0;
    uint32_t m_nProbedCity = ADDR_NONE;
    CTextIndex::CTable m_towns; // of that city
    size_t m_nFound = 0;        // slots of the longest name that is there: none, one, or more ...
    uint32_t m_nFoundValue = 0; // ... the last one looked at ...
    size_t m_nFoundTokens = 0;  // ... and the name's tokens

    std::vector<CCity> m_vCity;
    std::vector<CTown> m_vTown;
    CDivision m_division;
    std::vector<QETEXTPLACE> m_vCandidate;
};

} // namespace qeadrs

#endif
