// The legacy commands against a model of them: small random dictionaries in files, damaged ones among them, and
// thousands of random sequences of opening, closing, searching and getting. After each command status, the bytes of all
// three records, tree, lists, selection and query must agree.
//
// Not compared, but run, are damages whose outcome is left open: children that lead back or belong to many parents,
// so that a walk ends by its limits; parents in a circle; a string area that does not end in NUL.
#include "api/ga_legacy.h"
#include "tests/library/LegacyRandom.h"
#include "tests/support/Peek.h"

#include <sys/mman.h>
#include <unistd.h>

#include <map>
#include <sstream>

namespace {

// --- the library's side --------------------------------------------------------------------------------------------

// A record of the caller's right before a page that cannot be touched.
class CRecord {
  public:
    explicit CRecord(size_t nSize)
        : m_bytes(CBlockBytes(nSize).data(), nSize, CGuardedBytes::Writable), m_nSize(nSize) {}
    void Set(CBlockBytes const& vByte) { std::memcpy(m_bytes.Data(), vByte.data(), m_nSize); }
    CBlockBytes Bytes() const { return {m_bytes.Data(), m_bytes.Data() + m_nSize}; }
    template <typename T>
    T* As() const {
        return reinterpret_cast<T*>(m_bytes.Data());
    }

  private:
    CGuardedBytes m_bytes;
    size_t m_nSize;
};

struct CRecords {
    CRecord request = CRecord(REQUEST_SIZE), counts = CRecord(COUNTS_SIZE), field = CRecord(FIELD_SIZE);
};

CEntries LibraryEntries(std::vector<tagADDRPNT> const& vPnt, tagADDRNODE const* pNodeTable) {
    CEntries v;
    for (tagADDRPNT const& pnt : vPnt) {
        std::string strName(pnt.szName, sizeof pnt.szName);
        strName.erase(strName.find_last_not_of('\0') + 1); // it is zero-filled
        v.push_back({pnt.pNode - pNodeTable, strName, LibraryEntries(pnt.vChild, pNodeTable)});
    }
    return v;
}

CLegacyLists LibraryLists() {
    CAddrDicPeek const peek(ga_legacy::dic);
    return {LibraryEntries(peek.vRefineTree, peek.pNodeTable), LibraryEntries(peek.vPrefPnt, peek.pNodeTable),
            LibraryEntries(peek.vCityPnt, peek.pNodeTable), LibraryEntries(peek.vTownPnt, peek.pNodeTable)};
}

// Opening and closing. An open dictionary that another one replaces stays mapped, with its descriptor: that is the
// host's to give back, here the test's.
class CMapping {
  public:
    ~CMapping() { Close(); }
    bool IsOpen() const { return m_pImage != nullptr; }
    int Open(std::string const& strPath, size_t nSize) {
        int const nStatus = GA_adr_exec(1, 0, nullptr, strPath.c_str(), nullptr);
        if (nStatus != 0) return nStatus;
        if (IsOpen()) {
            munmap(m_pImage, m_nSize);
            close(m_hFile);
        }
        m_pImage = const_cast<unsigned char*>(ga_legacy::dic.GetDicPointer());
        m_nSize = nSize;
        m_hFile = ga_legacy::hDicFile;
        return 0;
    }
    int Close() {
        m_pImage = nullptr;
        return GA_adr_exec(2, 0, nullptr, nullptr, nullptr);
    }

  private:
    void* m_pImage = nullptr;
    size_t m_nSize = 0;
    int m_hFile = -1;
};

// --- the game ------------------------------------------------------------------------------------------------------

// How often what happened: a run in which something never happens has not tried it.
class CHappened {
  public:
    void Count(bool bHappened, std::string const& strWhat) { m_mapCount[strWhat] += bHappened ? 1 : 0; }
    void ExpectAll(int nLeast) const {
        for (auto const& what : m_mapCount) {
            std::printf("%7d  %s\n", what.second, what.first.c_str());
            EXPECT_GE(what.second, nLeast) << what.first;
        }
    }

  private:
    std::map<std::string, int> m_mapCount;
};

template <typename T>
void Tell(std::ostream& stream, char const* pszWhat, T const& library, T const& model) {
    if (!(library == model))
        stream << pszWhat << ":\n  library " << testing::PrintToString(library) << "\n  model   "
               << testing::PrintToString(model) << "\n";
}

void TellBytes(std::ostream& stream, char const* pszWhat, CBlockBytes const& vLibrary, CBlockBytes const& vModel) {
    for (size_t n = 0; n < vModel.size(); ++n)
        if (vLibrary[n] != vModel[n])
            stream << pszWhat << " byte " << n << ": library " << int{vLibrary[n]} << ", model " << int{vModel[n]}
                   << "\n";
}

// One sequence over two dictionaries, the commands on both sides.
class CLegacyGame {
  public:
    CLegacyGame(CRandom& random, CHappened& happened, CRecords& records, CDicFile const& first,
                CDicFile const& second)
        : m_random(random), m_happened(happened), m_records(records), m_apFile{&first, &second} {
        OpenFile(first);
    }

    // The next command; false when the sides differ, or when the model has left it open what comes of a walk.
    bool Step();
    std::string Difference() const { return m_difference.str(); }
    std::string const& Calls() const { return m_strCalls; }
    bool IsOpenEnded() const { return m_model.bOpenEnded; }

  private:
    void OpenFile(CDicFile const& file);
    void OpenNothing();
    void Close();
    void Search();
    void Get();
    void TurnAround();
    CPlace Count(CPlace nKind) const;
    void CountSearch(CLegacyModel const& before, CBlockBytes const& vRequest);
    void CountGet(CPlace nKind, CBlockBytes const& vBefore, CBlockBytes const& vField);
    void Compare();
    void Say(std::string const& str) { m_strCalls += str + "\n"; }

    CRandom& m_random;
    CHappened& m_happened;
    CRecords& m_records;
    std::array<CDicFile const*, 2> m_apFile;
    CMapping m_mapping;
    CLegacyModel m_model;
    CModelImage const* m_pImage = nullptr;
    CBlockBytes m_vLast;
    std::string m_strCalls;
    std::ostringstream m_difference;
};

void CLegacyGame::OpenFile(CDicFile const& file) {
    bool const bAgain = m_mapping.IsOpen() && m_pImage == &file.image;
    m_happened.Count(bAgain && !m_model.lists.vTree.empty(), "open again with a tree");
    m_happened.Count(m_mapping.IsOpen() && !bAgain, "open another one");
    m_happened.Count(m_pImage != nullptr && !m_mapping.IsOpen(), "open behind a close");
    Say("open " + file.strPath);
    Tell(m_difference, "open", m_mapping.Open(file.strPath, file.nSize), 0);
    m_model.Open(file.image);
    m_pImage = &file.image;
    Tell<size_t>(m_difference, "size", ga_legacy::size, file.nSize);
}

// Not there, a folder, an empty file: all stays.
void CLegacyGame::OpenNothing() {
    static CTempFile const empty("empty.dic", {});
    std::string const astrPath[] = {OwnPath("nothing"), testing::TempDir(), empty.strPath};
    std::string const& strPath = OneOf(m_random, astrPath);
    m_happened.Count(m_mapping.IsOpen(), "open fails, the other one stays");
    Say("open " + strPath);
    Tell(m_difference, "open", m_mapping.Open(strPath, 0), 1);
}

void CLegacyGame::Close() {
    Say("close");
    Tell(m_difference, "close", m_mapping.Close(), 0);
}

// Tree and lists backwards, on both sides: what is made anew is in order again, and can be told from what is kept.
void CLegacyGame::TurnAround() {
    Say("turn around");
    CAddrDicPeek const peek(ga_legacy::dic);
    for (auto* const pv : {&peek.vRefineTree, &peek.vPrefPnt, &peek.vCityPnt, &peek.vTownPnt})
        std::reverse(pv->begin(), pv->end());
    CLegacyLists& lists = m_model.lists;
    for (auto* const pv : {&lists.vTree, &lists.vPref, &lists.vCity, &lists.vTown})
        std::reverse(pv->begin(), pv->end());
}

void CLegacyGame::Search() {
    if (m_random() % 3 == 0) TurnAround();
    CBlockBytes vRequest = AnyRequest(m_random, *m_pImage, m_vLast), vCounts = AnyBytes(m_random, COUNTS_SIZE);
    PutIndexes(m_random, vRequest, {m_model.nSelPref, m_model.nSelCity, m_model.nSelTown}, Size(m_pImage->Prefs()));
    CBlockBytes const vSent = vRequest;
    Say("search [" + TextIn(vRequest, SHORT_CODE) + "] [" + TextIn(vRequest, LONG_CODE) + "] [" +
        TextIn(vRequest, ADDR_TEXT) + "] " + std::to_string(ShortIn(vRequest, 6)) + " " +
        std::to_string(ShortIn(vRequest, 8)) + " " + std::to_string(ShortIn(vRequest, 10)));
    m_records.request.Set(vRequest);
    m_records.counts.Set(vCounts);
    short const nIgnored = static_cast<short>(m_random());
    int const nStatus =
        GA_adr_exec(3, nIgnored, m_records.request.As<GA_ADRSRT>(), "ignored", m_records.counts.As<GA_ADRNUM>());
    Tell(m_difference, "search", nStatus, 0);

    CLegacyModel const before = m_model;
    m_model.Search(vRequest, vCounts, LibraryLists());
    if (m_model.bOpenEnded) return;
    TellBytes(m_difference, "request", m_records.request.Bytes(), vRequest);
    TellBytes(m_difference, "counts", m_records.counts.Bytes(), vCounts);
    m_vLast = m_random() % 2 == 0 ? vSent : vRequest;
    CountSearch(before, vSent);
}

void CLegacyGame::CountSearch(CLegacyModel const& before, CBlockBytes const& vRequest) {
    CPlace const nPref = ShortIn(vRequest, 6), nCity = ShortIn(vRequest, 8), nTown = ShortIn(vRequest, 10);
    bool const bTree = !m_model.lists.vTree.empty(), bTreeBefore = !before.lists.vTree.empty();
    bool const bText = !m_model.strCode.empty() || !m_model.strAddr.empty();
    bool const bSame = m_model.strCode == before.strCode && m_model.strAddr == before.strAddr;
    bool const bNegative = nPref < 0 || nCity < 0 || nTown < 0;
    bool const bSelected = !bNegative && m_model.nSelPref == nPref && m_model.nSelCity == nCity;
    bool const bLists = !bTree && !bNegative;
    CLegacyLists const& lists = m_model.lists;
    m_happened.Count(bTree && !m_model.strCode.empty(), "search by code");
    m_happened.Count(bTree && m_model.strCode.empty(), "search by address");
    m_happened.Count(bTree && bSame && before.bKept && bTreeBefore, "same query");
    m_happened.Count(bTree && bSame && before.bKept && !before.bSorted, "same query, unsorted tree");
    m_happened.Count(bTree && bSame && !before.bKept, "same query, not kept");
    m_happened.Count(bTree && !m_model.bSorted && lists.vTree.size() > 1, "unsorted tree");
    m_happened.Count(bText && !bTree, "nothing found");
    m_happened.Count(bTreeBefore && bLists && bSelected, "from the tree to the lists");
    m_happened.Count(!bTreeBefore && bTree, "from the lists to the tree");
    m_happened.Count(bLists && bSelected && nPref != before.nSelPref && nCity > 0,
                     "other prefecture, not first city");
    m_happened.Count(bLists && bSelected && nPref == before.nSelPref && nCity != before.nSelCity, "other city");
    m_happened.Count(bLists && bSelected && nPref == before.nSelPref && nCity == before.nSelCity && nCity > 0 &&
                         !before.lists.vTown.empty(),
                     "same city");
    m_happened.Count(bLists && !bSelected && nPref >= Size(lists.vPref), "no such prefecture");
    m_happened.Count(bLists && !bSelected && nPref < Size(lists.vPref) && lists.vCity.empty(), "no cities");
    m_happened.Count(bLists && !bSelected && nCity >= Size(lists.vCity) && !lists.vCity.empty(), "no such city");
    m_happened.Count(bTree && !bNegative && At(lists.vTree, nPref) == nullptr, "no such prefecture in the tree");
    m_happened.Count(bNegative, "negative");
    m_happened.Count(bTree && m_model.strCode.size() > 7, "code too long, found");
    m_happened.Count(bTree && m_model.strAddr.size() > 127, "address too long");
    m_happened.Count(bTree && m_model.strAddr.size() == 127, "address just short enough");
    m_happened.Count(vRequest[LONG_CODE] == 0 && vRequest[SHORT_CODE] != 0 && bTree, "code in the short field");
    m_happened.Count(vRequest[LONG_CODE] != 0 && vRequest[SHORT_CODE] != 0 && bTree, "codes in both fields");
    m_happened.Count(TextIn(vRequest, LONG_CODE).size() == 8, "code field without NUL");
    m_happened.Count(m_pImage->vInfo.empty() && !m_model.strCode.empty(), "code, no entries");
    for (CEntry const& pref : lists.vTree)
        m_happened.Count(std::any_of(pref.vChild.begin(), pref.vChild.end(),
                                     [](CEntry const& city) { return city.vChild.empty(); }),
                         "city whose towns stand elsewhere");
    for (CEntry const& town : lists.vTown) m_happened.Count(town.strName.size() == 128, "name of 128 bytes");
}

// How many entries of a kind there are to be got.
CPlace CLegacyGame::Count(CPlace nKind) const {
    CLegacyLists const& lists = m_model.lists;
    bool const bTree = !lists.vTree.empty();
    CEntry const* const pPref = At(lists.vTree, m_model.nSelPref);
    CEntry const* const pCity = pPref == nullptr ? nullptr : At(pPref->vChild, m_model.nSelCity);
    if (nKind == 0) return Size(bTree ? lists.vTree : lists.vPref);
    if (nKind == 1) return !bTree ? Size(lists.vCity) : pPref == nullptr ? 0 : Size(pPref->vChild);
    if (nKind == 2) return !bTree ? Size(lists.vTown) : pCity == nullptr ? 0 : Size(pCity->vChild);
    return 0;
}

void CLegacyGame::Get() {
    static constexpr short anKind[] = {0, 0, 1, 1, 1, 2, 2, 2, 2, 2, 2, 2, 3, -1, 0x102};
    short nKind = OneOf(m_random, anKind);
    for (int nTries = 0; nTries < 3 && Count(nKind) == 0; ++nTries) nKind = OneOf(m_random, anKind);
    CPlace const nSize = Count(nKind);
    CBlockBytes vField = AnyBytes(m_random, FIELD_SIZE);
    PutShort(vField, 0, AnyIndex(m_random, 0, nSize));
    Say("get " + std::to_string(nKind) + " " + std::to_string(ShortIn(vField, 0)));
    CBlockBytes const vBefore = vField;
    m_records.field.Set(vField);
    Tell(m_difference, "get", GA_adr_exec(4, nKind, nullptr, nullptr, m_records.field.As<GA_ADRFLD>()), 0);
    m_model.Get(nKind, vField);
    TellBytes(m_difference, "field", m_records.field.Bytes(), vField);
    CountGet(nKind, vBefore, vField);
}

void CLegacyGame::CountGet(CPlace nKind, CBlockBytes const& vBefore, CBlockBytes const& vField) {
    static char const* const apszKind[] = {"prefecture", "city", "town"};
    if (nKind < 0 || nKind > 2) return m_happened.Count(true, "get another kind");
    bool const bTree = !m_model.lists.vTree.empty();
    std::string const strKind = apszKind[nKind] + std::string(bTree ? " of the tree" : " of a list");
    bool const bNamed = vField[4] != 0;
    m_happened.Count(bNamed, strKind);
    m_happened.Count(vField[4] == 0 && ShortIn(vField, 0) >= 0, strKind + " outside");
    m_happened.Count(ShortIn(vField, 0) < 0, strKind + " negative");
    m_happened.Count(bNamed && vField[63] != 0, "name of 60 bytes");
    m_happened.Count(nKind == 1 && vField[378] != vBefore[378], "city in two parts");
    if (nKind != 2 || !bNamed) return;
    for (int n : {0, 1, 3, 4}) m_happened.Count(vField[386] == n, "detail kind " + std::to_string(n));
    m_happened.Count(vField[253] != 0, "detail of 128 bytes");
    m_happened.Count(vField[386] == 0 && vField[126] != 0, "note alone");
    m_happened.Count(vField[399] != 0 && vField[410] != 7, "code measured too far");
}

// What outlives the command, whichever it was.
void CLegacyGame::Compare() {
    CAddrDicPeek const peek(ga_legacy::dic);
    CLegacyLists const lists = LibraryLists();
    Tell(m_difference, "tree", lists.vTree, m_model.lists.vTree);
    Tell(m_difference, "prefectures", lists.vPref, m_model.lists.vPref);
    Tell(m_difference, "cities", lists.vCity, m_model.lists.vCity);
    Tell(m_difference, "towns", lists.vTown, m_model.lists.vTown);
    Tell<CPlaces>(m_difference, "selection", {peek.nSelPref, peek.nSelCity, peek.nSelTown},
                  {m_model.nSelPref, m_model.nSelCity, m_model.nSelTown});
    Tell<std::string>(m_difference, "code", peek.szRefinePostCode, m_model.bKept ? m_model.strCode : "-");
    if (m_model.bKept) Tell<std::string>(m_difference, "address", peek.szRefineAddr, m_model.strAddr);
}

bool CLegacyGame::Step() {
    size_t const nCommand = Below(m_random, 40);
    if (nCommand == 0 || (!m_mapping.IsOpen() && nCommand < 10))
        OpenNothing();
    else if (nCommand == 1 || (!m_mapping.IsOpen() && nCommand < 14))
        Close();
    else if (nCommand == 2 || !m_mapping.IsOpen())
        OpenFile(*OneOf(m_random, {m_apFile[0], m_apFile[1]}));
    else if (nCommand < 22)
        Search();
    else
        Get();
    if (!m_model.bOpenEnded) Compare();
    return !m_model.bOpenEnded && Difference().empty();
}

constexpr int COMMANDS = 12;

TEST(LegacySequence, LeavesRecordsAndListsAsTheModelDoes) {
    CRandom random = Seeded(20261203);
    CHappened happened;
    CRecords records;
    int nWhole = 0, nOpenEnded = 0, nDiffering = 0;
    std::string strFirst;
    while (nWhole + nDiffering < 3000) {
        CDicFile const first("a.dic", UpToPageEnd(AnyImage(random).Bytes()));
        CDicFile const second("b.dic", UpToPageEnd(AnyImage(random).Bytes()));
        for (int nGame = 0; nGame < 5; ++nGame) {
            CLegacyGame game(random, happened, records, first, second);
            int nSteps = 0;
            while (nSteps < COMMANDS && game.Step()) ++nSteps;
            if (nSteps == COMMANDS)
                ++nWhole;
            else
                ++(game.IsOpenEnded() ? nOpenEnded : nDiffering);
            if (!game.IsOpenEnded() && nSteps < COMMANDS && strFirst.empty())
                strFirst = game.Calls() + game.Difference();
        }
    }
    std::printf("%d sequences agree, %d differ, %d end where the outcome is open\n", nWhole, nDiffering, nOpenEnded);
    EXPECT_EQ(nDiffering, 0) << strFirst;
    EXPECT_LT(nOpenEnded, nWhole / 50);
    happened.ExpectAll(20);
}

// --- damages whose outcome is open ---------------------------------------------------------------------------------

// Children that lead back, or that many share, parents in circles, and entries of anything.
void Entangle(CRandom& random, CTestImage& image) {
    size_t const nNodes = image.vNode.size();
    for (size_t nDamages = 1 + Below(random, 8); nNodes > 0 && nDamages > 0; --nDamages) {
        tagADDRNODE& node = image.vNode[Below(random, random() % 2 == 0 ? nNodes : std::min<size_t>(nNodes, 15))];
        switch (random() % 4) {
        case 0:
            node.nFirstChild = static_cast<uint32_t>(Below(random, nNodes));
            node.nChildCount = AnyWord(random, nNodes);
            break;
        case 1:
            node.nParent = static_cast<uint32_t>(Below(random, nNodes));
            break;
        case 2:
            node.nInfo = AnyWord(random, image.vInfo.size());
            break;
        default:
            Damage(random, image);
        }
    }
}

struct CRun {
    size_t nOffset, nSize;
};

// Status 0, and all bytes outside the runs as they were.
void ExpectWithin(int nStatus, CRecord const& record, CBlockBytes const& vSent, std::vector<CRun> const& vRun) {
    EXPECT_EQ(nStatus, 0);
    CBlockBytes vByte = record.Bytes();
    for (CRun const& run : vRun)
        std::copy_n(vSent.begin() + static_cast<std::ptrdiff_t>(run.nOffset), run.nSize,
                    vByte.begin() + static_cast<std::ptrdiff_t>(run.nOffset));
    EXPECT_EQ(vByte, vSent);
}

TEST(LegacySequence, WritesNothingElseWhateverCirclesADamagedDictionaryHas) {
    CRandom random = Seeded(20261204);
    CRecords records;
    CHappened happened;
    for (int nWorld = 0; nWorld < 300 && !HasFailure(); ++nWorld) {
        CTestImage image = AnyImage(random);
        CModelImage const sound(image.Bytes()); // for the texts of the questions
        Entangle(random, image);
        CBlockBytes vByte = UpToPageEnd(image.Bytes());
        if (random() % 2 == 0) vByte.back() = 'x';
        CTempFile const file("c.dic", vByte);
        CMapping mapping;
        ASSERT_EQ(mapping.Open(file.strPath, file.nSize), 0);
        CPlaces vLast = {0, 0, 0};
        for (int nCommand = 0; nCommand < 20; ++nCommand) {
            CBlockBytes vRequest = AnyRequest(random, sound, {}), vCounts = AnyBytes(random, COUNTS_SIZE);
            PutIndexes(random, vRequest, vLast, 3);
            vLast = {ShortIn(vRequest, 6), ShortIn(vRequest, 8), ShortIn(vRequest, 10)};
            records.request.Set(vRequest);
            records.counts.Set(vCounts);
            int nStatus = GA_adr_exec(3, 0, records.request.As<GA_ADRSRT>(), nullptr, records.counts.As<GA_ADRNUM>());
            ExpectWithin(nStatus, records.request, vRequest, {{SHORT_CODE, 14}});
            ExpectWithin(nStatus, records.counts, vCounts, {{0, 10}, {528, 6}});
            happened.Count(!CAddrDicPeek(ga_legacy::dic).vRefineTree.empty(), "tree");
            happened.Count(!CAddrDicPeek(ga_legacy::dic).vTownPnt.empty(), "list of towns");
            for (short nKind = 0; nKind < 3; ++nKind) {
                CBlockBytes vField = AnyBytes(random, FIELD_SIZE);
                PutShort(vField, 0, AnyIndex(random, 0, 5));
                records.field.Set(vField);
                nStatus = GA_adr_exec(4, nKind, nullptr, nullptr, records.field.As<GA_ADRFLD>());
                ExpectWithin(nStatus, records.field, vField,
                             {{4, 60}, {126, 128}, {377, 2}, {381, 1}, {386, 6}, {393, 7}, {409, 2}});
            }
        }
    }
    happened.ExpectAll(500);
}

} // namespace
