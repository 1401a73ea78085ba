// The lists of browsing against a model of them: small random dictionaries, damaged ones among them, and thousands of
// random sequences of calls. After each call result, answer and lists must agree; the same for the exported calls.
#include "tests/library/BrowseModel.h"
#include "tests/library/RandomWorld.h"
#include "tests/support/Peek.h"

#include <functional>
#include <map>
#include <memory>

namespace {

// --- the library beside the model ----------------------------------------------------------------------------------

// How often what happened: a run in which something never happens has not tried it.
class CTally {
  public:
    void Count(std::string const& strWhat) { ++m_mapCount[strWhat]; }
    void ExpectAll(int nLeast, std::vector<std::string> const& vWhat) {
        for (std::string const& str : vWhat) EXPECT_GE(m_mapCount[str], nLeast) << str;
    }

  private:
    std::map<std::string, int> m_mapCount;
};

// A dictionary object and the model over the same image, with the calls made so far.
class CPair {
  public:
    explicit CPair(CAddrDic& owner) : m_dic(owner), m_peek(owner) {}

    void Bind(CRandomWorld const& world) {
        m_pWorld = &world;
        m_dic.SetDictionary(world.bytes.Data());
        model.Bind(world.model);
        Say("SetDictionary");
    }
    CModelImage const& Image() const { return m_pWorld->model; }
    void Say(std::string const& strCall) { m_strCalls += strCall + "\n"; }
    std::string const& Calls() const { return m_strCalls; }

    CPlace Node(tagADDRNODE const* p) const {
        if (p == nullptr) return NONE;
        CPlace const n = p - m_peek.pNodeTable;
        return Image().IsNode(n) ? n : FOREIGN;
    }
    CPlaces Nodes(CAddrDicPeek::CNodeList const& vNode) const {
        CPlaces vPlace;
        for (tagADDRNODE const* const p : vNode) vPlace.push_back(Node(p));
        return vPlace;
    }
    CPlace Text(char const* psz, std::string const& strCallers) const {
        if (psz == nullptr) return NONE;
        CPlace const n = psz - m_peek.pszStrings;
        if (n >= 0 && Image().Text(n) != NONE) return n;
        CPlace const nCallers = psz - strCallers.c_str();
        return nCallers >= 0 && nCallers <= Size(strCallers) ? CALLERS + nCallers : FOREIGN;
    }

    // A record of the library as the model has it.
    CModelRecord Record(tagADDR const& addr, std::string const& strCallers) const {
        CModelRecord record;
        int nField = 0;
        for (char const* psz : {addr.pszCodeExt, addr.pszPostCode, addr.pszPref, addr.pszPrefKana, addr.pszCity,
                                addr.pszCityKana, addr.pszTown, addr.pszTownKana, addr.pszArea, addr.pszAreaKana,
                                addr.pszOffice, addr.pszOfficeKana, addr.pszBlock, addr.pszBlockKana, addr.pszNote})
            record[nField++] = Text(psz, strCallers);
        for (tagADDRNODE const* p : {addr.pListCity, addr.pPrefNode, addr.pCityNode, addr.pTownNode})
            record[nField++] = Node(p);
        record[nField] = addr.nCityOrder;
        return record;
    }
    CModelRecords Records(std::vector<tagADDR> const& vAddr, std::string const& strCallers = {}) const {
        CModelRecords vRecord;
        for (tagADDR const& addr : vAddr) vRecord.push_back(Record(addr, strCallers));
        return vRecord;
    }

    void ExpectSameState() const {
        ASSERT_EQ(Nodes(m_peek.vPrefList), model.vPref) << m_strCalls;
        ASSERT_EQ(Nodes(m_peek.vCityList), model.vCity) << m_strCalls;
        ASSERT_EQ(Nodes(m_peek.vTownList), model.vTown) << m_strCalls;
        ASSERT_EQ(m_peek.nSortType, model.nSortType) << m_strCalls;
    }

    CModel model;

  private:
    CAddrDic& m_dic;
    CAddrDicPeek m_peek;
    CRandomWorld const* m_pWorld = nullptr;
    std::string m_strCalls;
};

// Everything that the object can be asked, one random question at a time.
class CDicGame {
  public:
    CDicGame(CRandom& random, CTally& tally) : m_random(random), m_tally(tally), m_pair(m_dic) {}

    void Bind(CRandomWorld const& world) {
        m_pair.Bind(world);
        m_vAddr.clear();
        m_vModel.clear();
        if (m_random() % 2 == 0) SetSortType(); // early, since there is nothing to sort in fixed levels
    }
    void Step();

  private:
    void AskPref();
    void AskPrefFromCity();
    void AskCity();
    void AskTown();
    void AskTownEx();
    void AskCode(bool bOld);
    void AskSearchCity();
    void AskDivide();
    void AskOthers();
    void SetSortType();
    void Compare(char const* pszCall, bool bResult, bool bModel, std::string const& strCallers = {});

    CRandom& m_random;
    CTally& m_tally;
    CAddrDic m_dic;
    CPair m_pair;
    std::vector<tagADDR> m_vAddr; // the answers of the step
    CModelRecords m_vModel;
};

void CDicGame::Compare(char const* pszCall, bool bResult, bool bModel, std::string const& strCallers) {
    ASSERT_EQ(bResult, bModel) << m_pair.Calls();
    ASSERT_EQ(m_pair.Records(m_vAddr, strCallers), m_vModel) << m_pair.Calls();
    m_pair.ExpectSameState();
    m_tally.Count(std::string(pszCall) + (bModel ? " true" : " false") + (m_vModel.empty() ? "" : ", answer"));
}

void CDicGame::AskPref() {
    m_pair.Say("GetPref");
    bool const bResult = m_dic.GetPref(m_vAddr);
    Compare("GetPref", bResult, m_pair.model.GetPref(m_vModel));
}

void CDicGame::AskPrefFromCity() {
    std::string const strText = AnyText(m_random, m_pair.Image());
    char const* const psz = m_random() % 32 == 0 ? nullptr : strText.c_str();
    m_pair.Say("GetPrefFromCity " + Shown(psz));
    bool const bResult = m_dic.GetPrefFromCity(psz, m_vAddr);
    Compare("GetPrefFromCity", bResult, m_pair.model.GetPrefFromCity(psz, m_vModel), strText);
    if (m_vModel.size() > 1) m_tally.Count("GetPrefFromCity, several");
}

void CDicGame::AskCity() {
    CPlace const nNo = AnyNo(m_random, m_pair.model.vPref);
    m_pair.Say("GetCityFromNo " + std::to_string(nNo));
    CPlaces const vBefore = m_pair.model.vCity;
    bool const bResult = m_dic.GetCityFromNo(static_cast<unsigned long>(nNo), m_vAddr);
    Compare("GetCityFromNo", bResult, m_pair.model.GetCityFromNo(nNo, m_vModel));
    if (!vBefore.empty() && !m_vModel.empty()) m_tally.Count("GetCityFromNo, fixed");
    if (m_vModel.size() > 1 && m_pair.model.nSortType == 9) m_tally.Count("GetCityFromNo, sorted");
}

void CDicGame::AskTown() {
    CPlace const nNo = AnyNo(m_random, m_pair.model.vCity);
    m_pair.Say("GetTownFromNo " + std::to_string(nNo));
    CPlaces const vBefore = m_pair.model.vTown;
    bool const bResult = m_dic.GetTownFromNo(static_cast<unsigned long>(nNo), m_vAddr);
    Compare("GetTownFromNo", bResult, m_pair.model.GetTownFromNo(nNo, m_vModel));
    if (!vBefore.empty() && !m_vModel.empty()) m_tally.Count("GetTownFromNo, fixed");
    if (!vBefore.empty() && vBefore[0] == NONE) m_tally.Count("GetTownFromNo, behind GetTownExFromNo");
    if (m_vModel.size() > 1 && m_pair.model.nSortType == 9) m_tally.Count("GetTownFromNo, sorted");
}

void CDicGame::AskTownEx() {
    CPlace const nNo = AnyNo(m_random, m_pair.model.vCity);
    m_pair.Say("GetTownExFromNo " + std::to_string(nNo));
    bool const bResult = m_dic.GetTownExFromNo(static_cast<unsigned long>(nNo), m_vAddr);
    Compare("GetTownExFromNo", bResult, m_pair.model.GetTownExFromNo(nNo, m_vModel));
    if (m_vModel.size() > 1 && m_pair.model.nSortType == 9) m_tally.Count("GetTownExFromNo, sorted");
}

void CDicGame::AskCode(bool bOld) {
    std::string const strCode = AnyCode(m_random, bOld);
    char const* const psz = m_random() % 32 == 0 ? nullptr : strCode.c_str();
    char const* const pszCall = bOld ? "GetAddrFromPostCode5" : "GetAddrFromPostCode7";
    m_pair.Say(std::string(pszCall) + " " + Shown(psz));
    int const nResult = bOld ? m_dic.GetAddrFromPostCode5(psz, m_vAddr) : m_dic.GetAddrFromPostCode7(psz, m_vAddr);
    bool const bModel =
        bOld ? m_pair.model.GetAddrFromPostCode5(psz, m_vModel) : m_pair.model.GetAddrFromPostCode7(psz, m_vModel);
    Compare(pszCall, nResult == 1, bModel);
    if (!m_pair.model.vCity.empty() && m_pair.model.vCity[0] == NONE) m_tally.Count("no city in front");
}

void CDicGame::AskSearchCity() {
    std::string const strName = AnyText(m_random, m_pair.Image());
    char const* const psz = m_random() % 32 == 0 ? nullptr : strName.c_str();
    m_pair.Say("SearchCity " + Shown(psz));
    std::vector<tagADDRNODE const*> vNode;
    CPlaces vModel;
    bool const bResult = m_dic.SearchCity(psz, vNode);
    Compare("SearchCity", bResult, m_pair.model.SearchCity(psz, vModel));
    ASSERT_EQ(m_pair.Nodes(vNode), vModel) << m_pair.Calls();
    if (vModel.size() > 1) m_tally.Count(IsLookedForAtEnds(strName) ? "several at their ends" : "several cities");
}

void CDicGame::AskDivide() {
    std::string const strText = AnyText(m_random, m_pair.Image());
    m_pair.Say("DivideAddr " + strText);
    tagADDR addr(0);
    bool const bResult = m_dic.DivideAddr(strText.c_str(), &addr);
    m_vAddr.push_back(addr);
    m_vModel.resize(1);
    Compare("DivideAddr", bResult, m_pair.model.DivideAddr(strText.c_str(), m_vModel[0]), strText);
}

// Calls that have an answer, but no list: the state stays.
void CDicGame::AskOthers() {
    std::string const strText = AnyText(m_random, m_pair.Image());
    m_pair.Say("GetAddrFromAddrPart, GetLatestAddr, GetPostCodeFromAddr, recCollectNode " + strText);
    tagADDR addr(0);
    std::vector<tagADDR> vAddr;
    std::vector<tagADDRNODE const*> vNode;
    m_dic.GetAddrFromAddrPart(strText.c_str(), vAddr);
    m_dic.GetLatestAddr(strText.c_str(), addr);
    m_dic.GetPostCodeFromAddr(strText.c_str(), nullptr, addr);
    m_dic.recCollectNode(m_dic.GetAddrNode(Below(m_random, m_pair.Image().vNode.size() + 1)), vNode);
    Compare("others", true, true);
}

void CDicGame::SetSortType() {
    static int const anSortType[] = {2, 9, 9, 0, 265};
    m_pair.model.nSortType = OneOf(m_random, anSortType);
    m_pair.Say("SetSortType " + std::to_string(m_pair.model.nSortType));
    m_dic.SetSortType(static_cast<unsigned short>(m_pair.model.nSortType));
    Compare("SetSortType", true, true);
}

void CDicGame::Step() {
    m_vAddr.clear();
    m_vModel.clear();
    switch (m_random() % 20) {
    case 0:
    case 1:
        return AskPref();
    case 2:
    case 3:
    case 4:
        return AskPrefFromCity();
    case 5:
        return AskDivide();
    case 6:
        return AskOthers();
    case 7:
        return AskCode(true);
    case 8:
        return AskCode(false);
    case 9:
        return AskSearchCity();
    case 10:
        return SetSortType();
    case 11:
    case 12:
        return AskTownEx();
    case 13:
    case 14:
    case 15:
        return AskTown();
    default:
        return AskCity();
    }
}

// Plays games over two dictionaries, which change now and then.
template <typename TGame>
void Play(CRandom& random, CTally& tally, int nWorlds) {
    for (int nWorld = 0; nWorld < nWorlds; ++nWorld) {
        CRandomWorld const first(random), second(random);
        for (int nGame = 0; nGame < 5; ++nGame) {
            TGame game(random, tally);
            game.Bind(first);
            for (int nStep = 0; nStep < 14; ++nStep) {
                if (random() % 30 == 0) game.Bind(random() % 2 == 0 ? first : second);
                game.Step();
                if (testing::Test::HasFatalFailure()) FAIL() << "world " << nWorld;
            }
        }
    }
}

TEST(BrowseState, IsThatOfTheModelAfterEveryCall) {
    CRandom random = Seeded(20261201);
    CTally tally;
    ASSERT_NO_FATAL_FAILURE(Play<CDicGame>(random, tally, 1200));
    tally.ExpectAll(40, {"GetPref true, answer",
                         "GetPref true",
                         "GetPref false, answer",
                         "GetPrefFromCity true, answer",
                         "GetPrefFromCity false",
                         "GetPrefFromCity, several",
                         "GetCityFromNo true, answer",
                         "GetCityFromNo true",
                         "GetCityFromNo false",
                         "GetCityFromNo, fixed",
                         "GetCityFromNo, sorted",
                         "GetTownFromNo true, answer",
                         "GetTownFromNo true",
                         "GetTownFromNo false",
                         "GetTownFromNo, fixed",
                         "GetTownFromNo, sorted",
                         "GetTownFromNo, behind GetTownExFromNo",
                         "GetTownExFromNo true, answer",
                         "GetTownExFromNo true",
                         "GetTownExFromNo, sorted",
                         "GetAddrFromPostCode5 true, answer",
                         "GetAddrFromPostCode5 false",
                         "GetAddrFromPostCode7 true, answer",
                         "GetAddrFromPostCode7 true",
                         "GetAddrFromPostCode7 false",
                         "no city in front",
                         "SearchCity false",
                         "several cities",
                         "several at their ends"});
    tally.ExpectAll(10, {"GetPrefFromCity true", "GetTownFromNo false, answer"}); // some damaged ones only
}

// --- the exported calls beside the model ---------------------------------------------------------------------------

void PutPrefixed(CBlockBytes& vByte, std::string const& str) {
    PutNumber(vByte, str.size(), 1);
    PutText(vByte, str);
}

// The same game through the exported calls. Of blocks that have no names, only the count is looked at.
class CApiGame {
  public:
    CApiGame(CRandom& random, CTally& tally) : m_random(random), m_tally(tally), m_pair(dic) {}
    ~CApiGame() { dic.SetDictionary(nullptr); }

    void Bind(CRandomWorld const& world) { m_pair.Bind(world); }
    void Step();

  private:
    void AskPrefs();
    void AskCities();
    void AskTowns(bool bOldCodeFirst);
    void AskLines();
    void AskZip();
    void AskCityOfCode();
    void AskOthers();

    std::string RecordWithSortType(std::string const& strRest);
    std::string Text(CPlace nText) const { return nText == NONE ? "" : m_pair.Image().At(nText); }
    CBlockBytes Packed(CModelRecords const& vRecord, std::vector<int> const& vField, bool bZero) const;
    void Compare(char const* pszCall, CPlace nStatus, CPlace nModel, HGLOBAL h, CBlockBytes const& vModel);

    CRandom& m_random;
    CTally& m_tally;
    CPair m_pair;
};

// The caller's two bytes, which also reach the model, in front of the rest.
std::string CApiGame::RecordWithSortType(std::string const& strRest) {
    m_pair.model.nSortType = m_random() % 2 == 0 ? 9 : 2;
    m_pair.Say("sort type " + std::to_string(m_pair.model.nSortType));
    return std::string({static_cast<char>(m_pair.model.nSortType), '\0'}) + strRest;
}

CBlockBytes CApiGame::Packed(CModelRecords const& vRecord, std::vector<int> const& vField, bool bZero) const {
    CBlockBytes vBlock;
    PutNumber(vBlock, vRecord.size(), 2);
    for (CModelRecord const& record : vRecord) {
        for (int const nField : vField) PutPrefixed(vBlock, Text(record[nField]));
        if (bZero) vBlock.push_back(0);
    }
    return vBlock;
}

// A block begins with the model's; there is none when the model has none.
void CApiGame::Compare(char const* pszCall, CPlace nStatus, CPlace nModel, HGLOBAL h, CBlockBytes const& vModel) {
    CBlockBytes vBlock;
    if (h != nullptr) {
        auto const* const p = static_cast<unsigned char const*>(GlobalLock(h));
        if (p != nullptr) vBlock.assign(p, p + std::min<size_t>(GlobalSize(h), vModel.size()));
        GlobalFree(h);
    }
    ASSERT_EQ(nStatus, nModel) << m_pair.Calls();
    ASSERT_EQ(h == nullptr, vModel.empty()) << m_pair.Calls();
    ASSERT_EQ(vBlock, vModel) << m_pair.Calls();
    m_pair.ExpectSameState();
    bool const bAnswer = vModel.size() > 1 && vModel[0] != 0;
    m_tally.Count(std::string(pszCall) + " " + std::to_string(nModel) + (bAnswer ? ", answer" : ""));
}

void CApiGame::AskPrefs() {
    std::string const strText = m_random() % 2 == 0 ? "" : AnyText(m_random, m_pair.Image());
    m_pair.Say("PstAdrRPrf " + strText);
    std::string strRecord = RecordWithSortType(std::string(21, 'x') + strText);
    HGLOBAL h = nullptr;
    uint32_t const nStatus = PstAdrRPrf(strRecord.data(), &h);
    CModelRecords vModel;
    if (strText.empty())
        m_pair.model.GetPref(vModel);
    else
        m_pair.model.GetPrefFromCity(strText.c_str(), vModel);
    Compare("PstAdrRPrf", nStatus, vModel.empty() ? 107 : 0, h,
            vModel.empty() ? CBlockBytes() : Packed(vModel, {PREF}, false));
}

void CApiGame::AskCities() {
    unsigned short const nNo = AnyNo(m_random, m_pair.model.vPref);
    m_pair.Say("PstAdrRCity " + std::to_string(nNo));
    HGLOBAL h = nullptr;
    uint32_t const nStatus = PstAdrRCity(nNo, &h);
    CModelRecords vModel;
    m_pair.model.GetCityFromNo(nNo, vModel);
    Compare("PstAdrRCity", nStatus, 0, h, Packed(vModel, {CITY}, false));
}

void CApiGame::AskTowns(bool bOldCodeFirst) {
    unsigned short const nNo = AnyNo(m_random, m_pair.model.vCity);
    char const* const pszCall = bOldCodeFirst ? "PstAdrTown" : "PstAdrRTown";
    m_pair.Say(std::string(pszCall) + " " + std::to_string(nNo));
    HGLOBAL h = nullptr;
    uint32_t const nStatus = bOldCodeFirst ? PstAdrTown(nNo, &h) : PstAdrRTown(nNo, &h);
    CModelRecords vModel;
    m_pair.model.GetTownFromNo(nNo, vModel);
    std::vector<int> const vField =
        bOldCodeFirst ? std::vector<int>{TOWN, CODE_EXT, CODE} : std::vector<int>{TOWN, CODE, CODE_EXT};
    Compare(pszCall, nStatus, 0, h, Packed(vModel, vField, true));
}

void CApiGame::AskLines() {
    unsigned short const nNo = AnyNo(m_random, m_pair.model.vCity);
    m_pair.Say("PstAdrRTownForUI " + std::to_string(nNo));
    HGLOBAL h = nullptr;
    uint32_t const nStatus = PstAdrRTownForUI(nNo, &h);
    CModelRecords vModel;
    m_pair.model.GetTownExFromNo(nNo, vModel);
    Compare("PstAdrRTownForUI", nStatus, 0, h, Packed(vModel, {}, false));
}

void CApiGame::AskZip() {
    std::string const strCode = AnyCode(m_random, false);
    m_pair.Say("GetAdrFromZip " + strCode);
    HGLOBAL h = nullptr;
    int const nStatus = GetAdrFromZip(strCode.c_str(), &h);
    CModelRecords vModel;
    m_pair.model.GetAddrFromPostCode7(strCode.c_str(), vModel);
    Compare("GetAdrFromZip", nStatus, vModel.empty() ? 1 : 0, h,
            vModel.empty() ? CBlockBytes() : Packed(vModel, {}, false));
}

// The 7-digit code is asked for unless it is empty; two empty ones are refused, with the sort type taken.
void CApiGame::AskCityOfCode() {
    std::string strOld = AnyCode(m_random, true), strCode = m_random() % 2 == 0 ? "" : AnyCode(m_random, false);
    m_pair.Say("PstAdrCity " + strOld + " " + strCode);
    strOld.resize(6, '\0');
    strCode.resize(8, '\0');
    std::string strRecord = RecordWithSortType(strOld + strCode);
    HGLOBAL h = nullptr;
    short const nStatus = PstAdrCity(strRecord.data(), &h);
    bool const bRefused = strOld[0] == '\0' && strCode[0] == '\0';
    CModelRecords vModel;
    if (strCode[0] != '\0')
        m_pair.model.GetAddrFromPostCode7(strCode.c_str(), vModel);
    else if (!bRefused)
        m_pair.model.GetAddrFromPostCode5(strOld.c_str(), vModel);
    GlobalFree(h); // its pairs are no business of the lists
    Compare("PstAdrCity", nStatus, bRefused ? 1 : 0, nullptr, {});
}

// Of the calls with address texts one takes the sort type, and none changes a list.
void CApiGame::AskOthers() {
    std::string const strText = AnyText(m_random, m_pair.Image());
    m_pair.Say("PstAdrGetZip, PstAdrGetLatestAdr, GetAdrFromAdd " + strText);
    std::string strAddress = std::string(21, '\0') + strText;
    strAddress.resize(143, '\0');
    strAddress += '\0'; // no organisation
    strAddress = RecordWithSortType(strAddress);
    PstAdrGetZip(strAddress.data());
    PstAdrGetLatestAdr(strAddress.data());
    HGLOBAL h = nullptr;
    GetAdrFromAdd(strText.c_str(), &h);
    GlobalFree(h);
    Compare("others", 0, 0, nullptr, {});
}

void CApiGame::Step() {
    switch (m_random() % 16) {
    case 0:
    case 1:
    case 2:
    case 3:
        return AskPrefs();
    case 4:
        return AskZip();
    case 5:
        return AskCityOfCode();
    case 6:
        return AskOthers();
    case 7:
    case 8:
        return AskTowns(true);
    case 9:
    case 10:
        return AskTowns(false);
    case 11:
        return AskLines();
    default:
        return AskCities();
    }
}

TEST(BrowseState, IsThatOfTheModelAfterEveryExportedCall) {
    CRandom random = Seeded(20261202);
    CTally tally;
    ASSERT_NO_FATAL_FAILURE(Play<CApiGame>(random, tally, 500));
    tally.ExpectAll(40, {"PstAdrRPrf 0, answer", "PstAdrRPrf 107", "PstAdrRCity 0, answer", "PstAdrRCity 0",
                         "PstAdrTown 0, answer", "PstAdrTown 0", "PstAdrRTown 0, answer", "PstAdrRTown 0",
                         "PstAdrRTownForUI 0, answer", "PstAdrRTownForUI 0", "GetAdrFromZip 0, answer",
                         "GetAdrFromZip 1", "PstAdrCity 0", "PstAdrCity 1"});
}

} // namespace
