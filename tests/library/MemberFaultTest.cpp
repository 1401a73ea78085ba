// The members of the class when memory runs out at each of their allocations in turn: they throw std::bad_alloc and
// nothing else, lose nothing, and the next call answers as if nothing had happened.
#include "tests/library/FaultWorld.h"
#include "tests/library/TreeWorld.h"

namespace {

// What a member gives back, without a word: telling it in words would allocate.
struct CGiven {
    CAddrList vAddr;
    CNodeList vNode;
    CTree tree;
    long nResult = 0;
    int nNumber = 0;
    short anCount[6] = {};
    char szText[128] = "";
};

// It and all state of the object that other calls read.
CLines Told(CBrowsedDic& dic, CGiven const& given) {
    CLines vLine = {std::to_string(given.nResult), std::to_string(given.nNumber), given.szText};
    for (short const n : given.anCount) vLine.push_back(std::to_string(n));
    for (tagADDR const& addr : given.vAddr)
        for (auto const& field : Fields(addr)) {
            bool const bNode = field.first.substr(0, 2) != "ps";
            auto const* const psz = static_cast<char const*>(field.second);
            vLine.push_back(field.first + '=' + (psz == nullptr ? "null" : bNode ? "node" : psz));
        }
    CAddrDicPeek const peek(dic);
    for (CNodeList const* pList :
         {&given.vNode, static_cast<CNodeList const*>(&peek.vPrefList),
          static_cast<CNodeList const*>(&peek.vCityList), static_cast<CNodeList const*>(&peek.vTownList)}) {
        vLine.push_back("list");
        for (uint32_t const n : dic.Numbers(*pList)) vLine.push_back(std::to_string(n));
    }
    for (CTree const* pTree :
         {&given.tree, static_cast<CTree const*>(&peek.vRefineTree), static_cast<CTree const*>(&peek.vPrefPnt),
          static_cast<CTree const*>(&peek.vCityPnt), static_cast<CTree const*>(&peek.vTownPnt)}) {
        vLine.push_back("tree");
        AddLines(*pTree, "", vLine);
    }
    for (int const n : {peek.nSelPref, peek.nSelCity, peek.nSelTown, int{peek.nSortType}})
        vLine.push_back(std::to_string(n));
    vLine.push_back(Shown(dic.GetLastInc()));
    vLine.insert(vLine.end(), {peek.szRefinePostCode, peek.szRefineAddr, peek.szOffice});
    return vLine;
}

void Nothing(CBrowsedDic&) {}

void ListPrefs(CBrowsedDic& dic) {
    CAddrList vAddr;
    dic.GetPref(vAddr);
}

void ListCities(CBrowsedDic& dic) {
    ListPrefs(dic);
    CAddrList vAddr;
    dic.GetCityFromNo(NO_TOKYO, vAddr);
}

void Refine(CBrowsedDic& dic, char const* pszCode, char const* pszAddr) {
    char szCode[8] = "";
    std::strcpy(szCode, pszCode);
    dic.MakeRefineTree(szCode, pszAddr);
}

void Count(CBrowsedDic& dic, int nPref, int nCity, CGiven& given) {
    short* const pn = given.anCount;
    given.nResult = dic.GetAdrNum(nPref, nCity, 0, pn, pn + 1, pn + 2, pn + 3, pn + 4, pn + 5);
}

void CountCities(CBrowsedDic& dic) {
    CGiven given;
    Count(dic, 0, 0, given);
}

void ListTreeNodes(CBrowsedDic& dic) {
    dic.TownList() = {dic.GetAddrNode(6), dic.GetAddrNode(10), nullptr, dic.GetAddrNode(11)};
}

struct CMember {
    char const* pszName;
    void (*Prepare)(CBrowsedDic&);
    void (*Call)(CBrowsedDic&, CGiven&);
};

constexpr CMember ALLOCATING[] = {
    {"GetAddrFromPostCode7", Nothing,
     [](CBrowsedDic& dic, CGiven& given) { given.nResult = dic.GetAddrFromPostCode7("1", given.vAddr); }},
    {"GetAddrFromPostCode7, a long text", Nothing,
     [](CBrowsedDic& dic, CGiven& given) {
         given.nResult = dic.GetAddrFromPostCode7("1 0 0 - 0 0 0 1           ", given.vAddr);
     }},
    {"GetAddrFromPostCode7, sorted", [](CBrowsedDic& dic) { dic.SetSortType(SORT_ADDR); },
     [](CBrowsedDic& dic, CGiven& given) { given.nResult = dic.GetAddrFromPostCode7("1", given.vAddr); }},
    {"GetAddrFromPostCode5", Nothing,
     [](CBrowsedDic& dic, CGiven& given) { given.nResult = dic.GetAddrFromPostCode5("100", given.vAddr); }},
    {"GetAddrFromAddrPart", Nothing,
     [](CBrowsedDic& dic, CGiven& given) { given.nResult = dic.GetAddrFromAddrPart("", given.vAddr); }},
    {"GetAddrFromAddrPart, a whole address", Nothing,
     [](CBrowsedDic& dic, CGiven& given) {
         given.nResult = dic.GetAddrFromAddrPart("東京都千代田区丸の内", given.vAddr);
     }},
    {"GetPrefFromPart", Nothing, [](CBrowsedDic& dic, CGiven& given) { dic.GetPrefFromPart("東", given.vAddr); }},
    {"GetCityFromPart", Nothing, [](CBrowsedDic& dic, CGiven& given) { dic.GetCityFromPart("府", given.vAddr); }},
    {"recTraceNode", Nothing,
     [](CBrowsedDic& dic, CGiven& given) { dic.recTraceNode(dic.GetAddrNode(0), tagADDR(0), given.vAddr); }},
    {"recCollectNode", Nothing,
     [](CBrowsedDic& dic, CGiven& given) { dic.recCollectNode(dic.GetAddrNode(0), given.vNode); }},
    {"GetPref", Nothing, [](CBrowsedDic& dic, CGiven& given) { given.nResult = dic.GetPref(given.vAddr); }},
    {"GetPrefFromCity", Nothing,
     [](CBrowsedDic& dic, CGiven& given) { given.nResult = dic.GetPrefFromCity("府中市", given.vAddr); }},
    {"GetPrefFromCity, an address", Nothing,
     [](CBrowsedDic& dic, CGiven& given) {
         given.nResult = dic.GetPrefFromCity("東京都千代田区丸の内", given.vAddr);
     }},
    {"SearchCity", Nothing,
     [](CBrowsedDic& dic, CGiven& given) { given.nResult = dic.SearchCity("府中市", given.vNode); }},
    {"GetCityFromNo", ListPrefs,
     [](CBrowsedDic& dic, CGiven& given) { given.nResult = dic.GetCityFromNo(NO_TOKYO, given.vAddr); }},
    {"GetTownFromNo", ListCities,
     [](CBrowsedDic& dic, CGiven& given) { given.nResult = dic.GetTownFromNo(0, given.vAddr); }},
    {"GetTownExFromNo", ListCities,
     [](CBrowsedDic& dic, CGiven& given) { given.nResult = dic.GetTownExFromNo(0, given.vAddr); }},
    {"MakeRefineTree, a code", Nothing, [](CBrowsedDic& dic, CGiven&) { Refine(dic, "1", ""); }},
    {"MakeRefineTree, an address", Nothing, [](CBrowsedDic& dic, CGiven&) { Refine(dic, "", "東京都"); }},
    {"MakeRefineTree, in place of another", [](CBrowsedDic& dic) { Refine(dic, "183", ""); },
     [](CBrowsedDic& dic, CGiven&) { Refine(dic, "", "府中市元町"); }},
    {"SeparateAddr", Nothing, [](CBrowsedDic& dic, CGiven& given) { given.nResult = dic.SeparateAddr("広島県"); }},
    {"SearchCity2", Nothing,
     [](CBrowsedDic& dic, CGiven& given) { given.nResult = dic.SearchCity2("府中市x", given.vNode); }},
    {"MakeTreeFromNode", ListTreeNodes,
     [](CBrowsedDic& dic, CGiven& given) { given.nResult = dic.MakeTreeFromNode(dic.TownList()); }},
    {"GetAdrNum, the first", Nothing, [](CBrowsedDic& dic, CGiven& given) { Count(dic, 0, 0, given); }},
    {"GetAdrNum, another prefecture", CountCities, [](CBrowsedDic& dic, CGiven& given) { Count(dic, 1, 0, given); }},
    {"GetAdrNum, another city", CountCities, [](CBrowsedDic& dic, CGiven& given) { Count(dic, 0, 1, given); }},
    {"GetAtCity, a name that no small text holds", [](CBrowsedDic& dic) { Refine(dic, "1", ""); },
     [](CBrowsedDic& dic, CGiven& given) {
         given.nResult = dic.GetAtCity(0, given.szText, sizeof given.szText, &given.nNumber);
     }},
    {"MakeTreeData", Nothing,
     [](CBrowsedDic& dic, CGiven& given) {
         tagADDRNODE const* vNode[] = {dic.GetAddrNode(0), dic.GetAddrNode(2), dic.GetAddrNode(6)};
         given.nResult = MakeTreeData(given.tree, vNode, dic.GetAddrNode(0),
                                      reinterpret_cast<unsigned char const*>(dic.GetStrings()), NAME_SIZE);
     }},
};

CLines Expected(CFaultWorld const& world, CMember const& member) {
    CBrowsedDic dic(world);
    CGiven given;
    member.Prepare(dic);
    member.Call(dic, given);
    return Told(dic, given);
}

// One try with so many allocations; true when they were enough.
bool Try(CFaultWorld const& world, CMember const& member, long nAllocations, CLines const& vExpected) {
    SCOPED_TRACE(member.pszName + std::string(" with allocations: ") + std::to_string(nAllocations));
    CBrowsedDic dic(world);
    member.Prepare(dic);
    bool bThrown = false, bFailed = false;
    {
        CGiven given;
        CShortage shortage(nAllocations);
        try {
            member.Call(dic, given);
        } catch (std::bad_alloc const&) {
            bThrown = true;
        }
        bFailed = shortage.End();
        EXPECT_EQ(bThrown, bFailed) << "an answer that lacks something must not look like one";
        if (!bThrown) {
            EXPECT_EQ(Told(dic, given), vExpected);
        }
    }
    if (!bThrown) return true;
    CGiven again;
    member.Call(dic, again);
    EXPECT_EQ(Told(dic, again), vExpected) << "the next call";
    CAddrList vAddr;
    EXPECT_EQ(dic.GetAddrFromPostCode7("1008111", vAddr), 1) << "another question";
    EXPECT_EQ(vAddr.size(), 1u);
    return false;
}

TEST(MembersOutOfMemory, ThrowNothingElseLoseNothingAndAnswerTheNextTime) {
    CFaultWorld const world;
    for (CMember const& member : ALLOCATING) {
        CLines const vExpected = Expected(world, member);
        EXPECT_GT(vExpected.size(), 10u);
        Try(world, member, 0, vExpected); // the test framework's own memory, once
        long nTries = 0;
        long const nLive = memory.nLive;
        for (; !Try(world, member, nTries, vExpected); ++nTries) {
            ASSERT_EQ(memory.nLive, nLive) << member.pszName << " with allocations: " << nTries;
            ASSERT_LT(nTries, 10000);
        }
        EXPECT_EQ(memory.nLive, nLive) << member.pszName;
        EXPECT_GT(nTries, 0) << member.pszName << " allocates";
    }
}

// What the next level reads: the lists of before or those of the answer, never a part of them.
TEST(MembersOutOfMemory, ChangeTheListOfABrowsingLevelAtOnceOrNotAtAll) {
    CFaultWorld const world;
    for (CMember const& member : ALLOCATING) {
        std::string const strName = member.pszName;
        if (strName.size() < 6 || strName.substr(strName.size() - 6) != "FromNo") continue;
        SCOPED_TRACE(strName);
        bool bEnough = false;
        for (long nTries = 0; !bEnough; ++nTries) {
            ASSERT_LT(nTries, 10000);
            CBrowsedDic dic(world);
            member.Prepare(dic);
            CAddrDicPeek const peek(dic);
            CNodeList const vCity = peek.vCityList, vTown = peek.vTownList;
            CGiven given;
            CShortage shortage(nTries);
            try {
                member.Call(dic, given);
            } catch (std::bad_alloc const&) {
            }
            bEnough = !shortage.End();
            EXPECT_EQ(peek.vCityList == vCity && peek.vTownList == vTown, !bEnough) << nTries;
        }
    }
}

// All others, so that a host without memory still gets their answers.
TEST(MembersWithoutMemory, AnswerWhereNothingIsListed) {
    CFaultWorld const world;
    CTreeDic dic(world), reference(world);
    for (CBrowsedDic* p : {&dic, &reference}) {
        ListCities(*p);
        Refine(*p, "1", "");
        CountCities(*p);
    }
    CLines vTold[2];
    for (bool const bShort : {false, true}) {
        CTreeDic& asked = bShort ? dic : reference;
        tagADDR record(0), latest(0), divided(0), coded(0);
        tagADDRNODE const *pPref = nullptr, *pCity = nullptr, *pTown = nullptr;
        char szCode[] = "100-0001", szOffice[] = "株式会社 テスト", szBlanks[] = "a, b", szNames[256] = "";
        char szPref[60], szTown[60], szDetail[128], szOld[5], szNew[7], cKind = 0, szShown[NAME_SIZE] = "";
        unsigned short nType = 0;
        short anCount[6] = {};
        char const* pszText = "東京都x";
        long anResult[21] = {};
        CAddrList vNone;
        {
            CShortage shortage(bShort ? 0 : -1);
            long* pn = anResult;
            asked.MakePostCode(szCode);
            *pn++ = asked.SearchPostCode7("1008");
            *pn++ = asked.GetAddr(asked.GetAddrInfo(3), &record);
            *pn++ = asked.GetAddrPtr(asked.GetAddrInfo(2), &pPref, &pCity, &pTown);
            *pn++ = asked.GetCityNode(asked.GetAddrInfo(2)) == pCity;
            *pn++ = asked.GetCityFromPostCode5("100", vNone);
            *pn++ = asked.SeparatePref(&pszText, divided);
            *pn++ = asked.DivideAddr("東京都港区芝２", &divided);
            *pn++ = static_cast<long>(asked.GetLatestAddr("東京都千代田特別の区旧町", latest));
            *pn++ = asked.GetPostCodeFromAddr("東京都千代田特別の区丸の内", szOffice, coded);
            *pn++ = asked.SearchInc(szOffice);
            asked.EraseBlank(szBlanks);
            *pn++ = asked.GetAfterCityName(asked.GetAddrNode(14), szNames);
            *pn++ = asked.SearchCity("府");
            *pn++ = asked.GetAtPref(0, szPref, sizeof szPref);
            *pn++ = asked.GetAtTown(0, szTown, sizeof szTown, szDetail, sizeof szDetail, szOld, sizeof szOld, szNew,
                                    sizeof szNew, &cKind);
            *pn++ =
                asked.GetAdrNum(0, 1, 0, anCount, anCount + 1, anCount + 2, anCount + 3, anCount + 4, anCount + 5);
            *pn++ = GetShikugunType("千代田区", &nType);
            *pn++ = GetNameForUI(asked.GetAddrNode(2), asked.GetAddrNode(0),
                                 reinterpret_cast<unsigned char const*>(asked.GetStrings()), szShown, NAME_SIZE);
            char szAgain[] = "1";
            *pn++ = asked.MakeRefineTree(szAgain, ""); // as before: nothing to make
            recSortTree(asked.Tree());
            *pn = asked.SetDictionary(asked.GetDicPointer());
            EXPECT_FALSE(shortage.End());
        }
        CLines& vLine = vTold[bShort ? 1 : 0];
        for (long const n : anResult) vLine.push_back(std::to_string(n));
        for (short const n : anCount) vLine.push_back(std::to_string(n));
        for (tagADDR const* p : {&record, &latest, &divided, &coded})
            for (auto const& field : Fields(*p)) vLine.push_back(field.second == nullptr ? "null" : "set");
        vLine.insert(vLine.end(),
                     {szCode, szOffice, szBlanks, szNames, szPref, szTown, szShown, Shown(coded.pszPostCode)});
    }
    EXPECT_EQ(vTold[1], vTold[0]);
    EXPECT_THAT(vTold[0], testing::Contains("1000001"));
}

} // namespace
