// The postal code of an address and of an organisation at it: names normalised, found, told apart by town.
#include "tests/library/AddrTextWorld.h"

#include <gmock/gmock.h>

#include <cstring>

namespace {

using testing::IsNull;

// --- blanks --------------------------------------------------------------------------------------------------------

std::string WithoutBlanks(std::string const& strText) {
    CGuardedBytes const text(strText, CGuardedBytes::Writable);
    CAddrDic().EraseBlank(text.Text());
    return text.Text();
}

TEST(EraseBlank, DropsBlanksAndCommasAndNothingElse) {
    EXPECT_EQ(WithoutBlanks(""), "");
    EXPECT_EQ(WithoutBlanks("abc"), "abc");
    EXPECT_EQ(WithoutBlanks(" a, b  c,"), "abc");
    EXPECT_EQ(WithoutBlanks(" , ,"), "");
    EXPECT_EQ(WithoutBlanks("a\tb\nc.d;e"), "a\tb\nc.d;e");
    EXPECT_EQ(WithoutBlanks("テスト 商事"), "テスト商事");
    EXPECT_EQ(WithoutBlanks("\xFF\x80 \xC3,\x81"), "\xFF\x80\xC3\x81");
}

TEST(EraseBlank, LeavesTheThirdByteOfAnIdeographicSpace) {
    EXPECT_EQ(WithoutBlanks("　"), "\x80");
    EXPECT_EQ(WithoutBlanks("ＡＢＣ　商事"), "ＡＢＣ\x80商事");
    EXPECT_EQ(WithoutBlanks("　　a　"), "\x80\x80"
                                        "a\x80");
}

TEST(EraseBlank, TakesTwoBytesOfEveryCharacterOfThatBlock) {
    EXPECT_EQ(WithoutBlanks("a、b。c「d」e〒f〜"), "a\x81"
                                                   "b\x82"
                                                   "c\x8C"
                                                   "d\x8D"
                                                   "e\x92"
                                                   "f\x9C");
    EXPECT_EQ(WithoutBlanks("ぁァ"), "ぁァ") << "kana begin with other two bytes";
}

TEST(EraseBlank, LooksAtTheTextAsItWasBefore) {
    EXPECT_EQ(WithoutBlanks("\xE3\xE3\x80\x80"), "\xE3\x80") << "what moves together is not looked at again";
    EXPECT_EQ(WithoutBlanks("\xE3 \x80"), "\xE3\x80");
    EXPECT_EQ(WithoutBlanks("\xE3\x80\xE3\x80"), "");
}

TEST(EraseBlank, StopsAtTheNulBehindAHalfCharacter) {
    EXPECT_EQ(WithoutBlanks("a\xE3"), "a\xE3");
    EXPECT_EQ(WithoutBlanks("a\xE3\x80"), "a");
}

TEST(EraseBlank, WorksInPlace) {
    char sz[] = "a b c\0behind";
    CAddrDic().EraseBlank(sz);
    EXPECT_EQ(std::string(sz), "abc");
    EXPECT_STREQ(sz + 6, "behind") << "nothing behind the text is touched";
}

TEST(EraseBlank, OfNothingDoesNothing) {
    CAddrDic().EraseBlank(nullptr);
}

TEST(EraseBlank, WorksOnTextsOfAnyLength) {
    for (size_t nLength : {65533u, 65534u, 65535u, 65536u, 65537u, 131072u, 200000u}) {
        std::string strText(nLength, 'x');
        EXPECT_EQ(WithoutBlanks(strText), strText) << nLength;
        strText[0] = strText[nLength / 2] = strText[nLength - 1] = ' ';
        EXPECT_EQ(WithoutBlanks(strText), std::string(nLength - 3, 'x')) << nLength;
        EXPECT_EQ(WithoutBlanks(std::string(nLength, ' ')), "") << nLength;
        std::string strSpaces;
        for (size_t n = 0; n < nLength / 3; ++n) strSpaces += "　";
        EXPECT_EQ(WithoutBlanks(strSpaces), std::string(nLength / 3, '\x80')) << nLength;
    }
}

// --- legal forms ---------------------------------------------------------------------------------------------------

// What SearchInc makes of a name.
std::string Normalised(std::string const& strName) {
    CGuardedBytes const name(strName, CGuardedBytes::Writable);
    CTextWorld const world;
    CGuardedDic dic(world);
    dic.SearchInc(name.Text());
    return name.Text();
}

char const* const LEGAL_FORMS[] = {
    "株式会社",     "（株）",       "有限会社", "（有）",       "財団法人",
    "（財）",       "社団法人",     "（社）",   "学校法人",     "特定医療法人財団",
    "医療法人財団", "医療法人社団", "医療法人", "社会福祉法人", "独立行政法人",
};
static_assert(sizeof LEGAL_FORMS / sizeof *LEGAL_FORMS == 15);

TEST(LegalForm, IsRemovedInFrontAndBehind) {
    for (std::string const strForm : LEGAL_FORMS) {
        EXPECT_EQ(Normalised(strForm + "テスト"), "テスト") << strForm;
        EXPECT_EQ(Normalised("テスト" + strForm), "テスト") << strForm;
        EXPECT_EQ(Normalised(strForm + "x"), "x") << strForm;
        EXPECT_EQ(Normalised("x" + strForm), "x") << strForm;
    }
}

TEST(LegalForm, AloneLeavesNothing) {
    for (std::string const strForm : LEGAL_FORMS) {
        EXPECT_EQ(Normalised(strForm), "") << strForm;
        EXPECT_EQ(Normalised(" " + strForm + ", "), "") << strForm;
    }
}

TEST(LegalForm, WithinANameStays) {
    for (std::string const strForm : LEGAL_FORMS)
        EXPECT_EQ(Normalised("テスト" + strForm + "本社"), "テスト" + strForm + "本社");
}

TEST(LegalForm, IsRemovedOnlyOnce) {
    for (std::string const strForm : LEGAL_FORMS) {
        EXPECT_EQ(Normalised(strForm + strForm + "テスト"), strForm + "テスト");
        EXPECT_EQ(Normalised("テスト" + strForm + strForm), "テスト" + strForm);
        EXPECT_EQ(Normalised(strForm + "テスト" + strForm), "テスト" + strForm) << "in front before behind";
        EXPECT_EQ(Normalised(strForm + strForm), strForm);
    }
}

// Whether a form of the table's is taken before another, whichever of them stands in front.
TEST(LegalForm, IsTheFirstOfTheTableThatFitsInFrontOrBehind) {
    for (size_t n = 0; n < 15; ++n)
        for (size_t nLater = n + 1; nLater < 15; ++nLater) {
            std::string const strForm = LEGAL_FORMS[n], strLater = LEGAL_FORMS[nLater];
            EXPECT_EQ(Normalised(strForm + "テスト" + strLater), "テスト" + strLater);
            EXPECT_EQ(Normalised(strLater + "テスト" + strForm), strLater + "テスト");
        }
}

TEST(LegalForm, IsTheLongOneWhereAShortOneIsPartOfIt) {
    EXPECT_EQ(Normalised("特定医療法人財団x"), "x");
    EXPECT_EQ(Normalised("医療法人財団x"), "x");
    EXPECT_EQ(Normalised("x医療法人社団"), "x");
    EXPECT_EQ(Normalised("特定医療法人x"), "特定医療法人x") << "is no word of its own";
    EXPECT_EQ(Normalised("x特定医療法人"), "x特定");
    EXPECT_EQ(Normalised("財団法人医療法人財団"), "医療法人財団");
}

TEST(LegalForm, HasFullWidthParentheses) {
    EXPECT_EQ(Normalised("(株)テスト"), "(株)テスト");
    EXPECT_EQ(Normalised("（株テスト"), "（株テスト");
    EXPECT_EQ(Normalised("（独）テスト"), "（独）テスト");
}

TEST(LegalForm, IsRecognisedWhenTheBlanksAreGone) {
    EXPECT_EQ(Normalised("株 式 会 社　テスト"), "\x80テスト");
    EXPECT_EQ(Normalised(" 株式会社 テスト , 商事"), "テスト商事");
    EXPECT_EQ(Normalised("テスト 有限, 会社 "), "テスト");
    EXPECT_EQ(Normalised("　株式会社"), "\x80") << "the stray byte is in front of the word";
}

TEST(LegalForm, CutOffIsNone) {
    EXPECT_EQ(Normalised("株式会"), "株式会");
    EXPECT_EQ(Normalised("式会社"), "式会社");
    EXPECT_EQ(Normalised("株式会\xE7\xA4"), "株式会\xE7\xA4");
    EXPECT_EQ(Normalised("x"), "x");
}

// --- the organisation index ----------------------------------------------------------------------------------------

// Organisations of the given names below one town, in index order as given.
CTestImage Offices(std::vector<std::string> const& vName) {
    CTestImage image;
    uint32_t const nTown = image.AddNode(LEVEL_TOWN, ADDR_NONE, "town");
    for (std::string const& str : vName) image.vOfficeIndex.push_back(image.AddNode(LEVEL_OFFICE, nTown, str));
    return image;
}

int Search(CAddrDic& dic, std::string const& strName) {
    CGuardedBytes const name(strName, CGuardedBytes::Writable);
    return dic.SearchInc(name.Text());
}

TEST(SearchInc, FindsTheFirstOfThoseThatBeginWithTheName) {
    CGuardedDic dic(Offices({"a", "ab", "aba", "abb", "abb", "abc", "b", "ba"}));
    EXPECT_EQ(Search(dic, "a"), 0);
    EXPECT_EQ(Search(dic, "ab"), 1);
    EXPECT_EQ(Search(dic, "aba"), 2);
    EXPECT_EQ(Search(dic, "abb"), 3);
    EXPECT_EQ(Search(dic, "abc"), 5);
    EXPECT_EQ(Search(dic, "b"), 6);
    EXPECT_EQ(Search(dic, "ba"), 7);
    EXPECT_EQ(Search(dic, "株式会社 a b b"), 3);
}

TEST(SearchInc, FindsNoneThatDoesNotBeginWithTheName) {
    CGuardedDic dic(Offices({"ab", "abb", "ba"}));
    for (char const* psz : {"A", "aa", "abba", "abc", "b ab", "c", "bb", "\xFF"})
        EXPECT_EQ(Search(dic, psz), -1) << psz;
}

TEST(SearchInc, ComparesBytesWithoutSign) {
    CGuardedDic dic(Offices({"Z", "z", "ア", "株"}));
    EXPECT_EQ(Search(dic, "Z"), 0);
    EXPECT_EQ(Search(dic, "z"), 1);
    EXPECT_EQ(Search(dic, "ア"), 2);
    EXPECT_EQ(Search(dic, "株"), 3);
}

TEST(SearchInc, OfNullOrAnEmptyNameFindsNone) {
    CGuardedDic dic(Offices({"a", "b"}));
    EXPECT_EQ(dic.SearchInc(nullptr), -1);
    EXPECT_EQ(Search(dic, ""), -1);
    char const szReadOnly[] = "";
    EXPECT_EQ(dic.SearchInc(szReadOnly), -1) << "and does not write it";
}

TEST(SearchInc, OfANameOfWhichNothingIsLeftFindsTheFirst) {
    for (size_t nCount : {1u, 2u, 3u, 10u}) {
        std::vector<std::string> vName;
        for (size_t n = 0; n < nCount; ++n) vName.emplace_back(1, static_cast<char>('a' + n));
        CGuardedDic dic(Offices(vName));
        for (char const* psz : {" ", ", ,", "株式会社", "（株）", " 医療法人 "})
            EXPECT_EQ(Search(dic, psz), 0) << psz;
    }
}

TEST(SearchInc, InAnEmptyIndexFindsNone) {
    CGuardedDic dic(Offices({}));
    EXPECT_EQ(Search(dic, "a"), -1);
    EXPECT_EQ(Search(dic, " "), -1);
}

TEST(SearchInc, FindsEveryNameInIndexesOfEverySmallSize) {
    for (size_t nCount = 1; nCount <= 40; ++nCount) {
        std::vector<std::string> vName;
        for (size_t n = 0; n < nCount; ++n) vName.push_back(std::to_string(1000 + n / 3)); // three of each
        CGuardedDic dic(Offices(vName));
        for (size_t n = 0; n < nCount; ++n) ASSERT_EQ(Search(dic, vName[n]), static_cast<int>(n - n % 3)) << nCount;
        EXPECT_EQ(Search(dic, "0999"), -1);
        EXPECT_EQ(Search(dic, "1000x"), -1);
        EXPECT_EQ(Search(dic, "2"), -1);
    }
}

TEST(SearchInc, GivesUpAtAProbeThatCannotBeRead) {
    CTestImage const sound = Offices({"a", "b", "c"});
    for (uint32_t nNode : {4u, 1000000u, 0x80000000u, 0xFFFFFFFFu}) {
        CTestImage image = sound;
        image.vOfficeIndex[1] = nNode;
        CGuardedDic dic(image);
        for (char const* psz : {"a", "c", " "}) EXPECT_EQ(Search(dic, psz), -1) << "position 1 is probed first";
    }
    for (uint32_t nName : {static_cast<uint32_t>(sound.strArea.size()), 0x80000000u, 0xFFFFFFFFu}) {
        CTestImage image = sound;
        image.vNode[2].nName = nName;
        CGuardedDic dic(image);
        for (char const* psz : {"a", "c", " "}) EXPECT_EQ(Search(dic, psz), -1);
    }
}

TEST(SearchInc, NormalisesTheNameAlsoWhenItFindsNone) {
    EXPECT_EQ(Normalised("株式会社 無い, 会社"), "無い会社");
    char sz[] = " a, b";
    EXPECT_EQ(CAddrDic().SearchInc(sz), -1) << "without an image";
    EXPECT_STREQ(sz, "ab");
}

// --- postal code of an address -------------------------------------------------------------------------------------

struct CAnswer {
    int nResult;
    std::string strCode, strOldCode;
    std::string strName; // as it was left
    tagADDR addr;
};

CAnswer Ask(CAddrDic& dic, char const* pszAddress, std::string const& strName) {
    CGuardedBytes const name(strName, CGuardedBytes::Writable);
    CAnswer answer = {0, "", "", "", MarkedAddr()};
    answer.nResult = dic.GetPostCodeFromAddr(pszAddress, name.Text(), answer.addr);
    answer.strCode = Shown(answer.addr.pszPostCode);
    answer.strOldCode = Shown(answer.addr.pszCodeExt);
    answer.strName = name.Text();
    return answer;
}

std::string CodeOf(CAddrDic& dic, char const* pszAddress, std::string const& strName) {
    CAnswer const answer = Ask(dic, pszAddress, strName);
    EXPECT_EQ(answer.nResult, 1);
    return answer.strCode;
}

char const MARUNOUCHI[] = "東京都千代田区丸の内２丁目";

TEST(PostCodeFromAddr, IsThatOfTheTown) {
    CTextWorld const world;
    CGuardedDic dic(world);
    for (char const* pszName : {static_cast<char const*>(nullptr), ""}) {
        tagADDR addr = MarkedAddr();
        EXPECT_EQ(dic.GetPostCodeFromAddr(MARUNOUCHI, pszName, addr), 1);
        EXPECT_STREQ(addr.pszPostCode, "1000005");
        EXPECT_EQ(addr.pszCodeExt, addr.pszPostCode + 8);
        EXPECT_STREQ(addr.pszPref, "東京都");
        EXPECT_STREQ(addr.pszCity, "千代田区");
        EXPECT_STREQ(addr.pszTown, "丸の内");
        EXPECT_EQ(addr.pszArea, MARUNOUCHI + std::strlen("東京都千代田区丸の内"));
        EXPECT_THAT(addr.pszOffice, IsNull()) << "the record is zeroed first";
        EXPECT_THAT(addr.pListCity, IsNull());
        EXPECT_EQ(addr.nCityOrder, 0);
    }
}

TEST(PostCodeFromAddr, IsThatOfTheOrganisationInThatTown) {
    CTextWorld const world;
    CGuardedDic dic(world);
    CAnswer const plain = Ask(dic, MARUNOUCHI, "");
    CAnswer const answer = Ask(dic, MARUNOUCHI, "株式会社　テスト商事");
    EXPECT_EQ(answer.strCode, "1000005") << "the stray byte of the ideographic space is no name";
    CAnswer const found = Ask(dic, MARUNOUCHI, "株式会社 テスト商事");
    EXPECT_EQ(found.nResult, 1);
    EXPECT_EQ(found.strCode, "1008222");
    EXPECT_EQ(found.addr.pszCodeExt, found.addr.pszPostCode + 8);
    EXPECT_EQ(found.strOldCode, "100");
    EXPECT_EQ(found.strName, "テスト商事") << "normalised in place";
    tagADDR expected = plain.addr;
    expected.pszPostCode = found.addr.pszPostCode;
    expected.pszCodeExt = found.addr.pszCodeExt;
    EXPECT_EQ(Fields(found.addr), Fields(expected)) << "nothing but the codes";
}

TEST(PostCodeFromAddr, TakesTheFirstOrganisationOfThatBeginningInThatTown) {
    CTextWorld const world;
    CGuardedDic dic(world);
    EXPECT_EQ(CodeOf(dic, MARUNOUCHI, "テ"), "1008111");
    EXPECT_EQ(CodeOf(dic, MARUNOUCHI, "テスト（株）"), "1008111");
    EXPECT_EQ(CodeOf(dic, "東京都千代田区千代田", "テスト"), "1008333") << "the second of the index";
    EXPECT_EQ(CodeOf(dic, "東京都千代田区千代田", "テスト商"), "1000001") << "stands in another town only";
}

TEST(PostCodeFromAddr, IgnoresAnOrganisationOfAnotherTown) {
    CTextWorld const world;
    CGuardedDic dic(world);
    EXPECT_EQ(CodeOf(dic, "東京都港区芝", "テスト"), "1050014");
    EXPECT_EQ(CodeOf(dic, "東京都千代田区旧町", "テスト"), "1000099");
    EXPECT_EQ(CodeOf(dic, MARUNOUCHI, "港商会"), "1000005");
}

TEST(PostCodeFromAddr, FindsAnOrganisationBelowASubdivisionOfTheTown) {
    CTextWorld const world;
    CGuardedDic dic(world);
    CAnswer const answer = Ask(dic, "東京都港区芝９丁目", "港商会");
    EXPECT_EQ(answer.strCode, "1058444") << "what the rest of the address says does not matter";
    EXPECT_STREQ(answer.addr.pszArea, "９丁目");
}

TEST(PostCodeFromAddr, OfAnOrganisationThatIsNotThereIsTheTowns) {
    CTextWorld const world;
    CGuardedDic dic(world);
    CAnswer const answer = Ask(dic, MARUNOUCHI, "有限会社 無い");
    EXPECT_EQ(answer.nResult, 1);
    EXPECT_EQ(answer.strCode, "1000005");
    EXPECT_EQ(answer.strName, "無い");
}

TEST(PostCodeFromAddr, WithoutATownIsTheCitysWhateverTheOrganisation) {
    CTextWorld const world;
    CGuardedDic dic(world);
    for (char const* pszName : {"", "テスト", "テスト商事", " "}) {
        EXPECT_EQ(CodeOf(dic, "東京都千代田区無町", pszName), "1000000");
        EXPECT_EQ(CodeOf(dic, "東京都港区", pszName), "(null)");
        EXPECT_EQ(CodeOf(dic, "無県", pszName), "(null)");
        EXPECT_EQ(CodeOf(dic, "", pszName), "(null)");
    }
    EXPECT_THAT(Ask(dic, "東京都千代田区無町", "テスト").addr.pszArea, IsNull());
}

TEST(PostCodeFromAddr, WithoutATownIsNotThatOfAnOrganisationDirectlyBelowTheCity) {
    CTestImage image;
    uint32_t const nCity = image.AddNode(LEVEL_CITY, image.AddNode(LEVEL_PREF, ADDR_NONE, "県"), "市");
    image.AddInfo(nCity, "1000000", "100");
    image.AddInfo(image.AddNode(LEVEL_OFFICE, nCity, "会"), "1008111", "100");
    image.Complete();
    CGuardedDic dic(image);
    EXPECT_EQ(CodeOf(dic, "県市", "会"), "1000000");
}

TEST(PostCodeFromAddr, WithoutPrefectureOrCityIsNotAnOrganisations) {
    CTextWorld const world;
    CGuardedDic dic(world);
    EXPECT_EQ(CodeOf(dic, "千代田区丸の内", "テスト"), "1000005") << "no prefecture is not the organisation's";
    EXPECT_EQ(CodeOf(dic, "東京都丸の内", "テスト"), "1000005");
    EXPECT_EQ(CodeOf(dic, "丸の内", "テスト"), "1000005");
}

TEST(PostCodeFromAddr, TellsTownsOfEqualSpellingApart) {
    CTestImage image;
    uint32_t const nPref = image.AddNode(LEVEL_PREF, ADDR_NONE, "県");
    uint32_t const nCity = image.AddNode(LEVEL_CITY, nPref, "市");
    uint32_t const nFirst = image.AddNode(LEVEL_TOWN, nCity, "町");
    uint32_t const nSecond = image.AddNode(LEVEL_TOWN, nCity, "町");
    image.AddInfo(nFirst, "1000001", "100");
    image.AddInfo(nSecond, "1000002", "100");
    image.AddInfo(image.AddNode(LEVEL_OFFICE, nSecond, "会"), "1008222", "100");
    image.Complete();
    CGuardedDic dic(image);
    EXPECT_EQ(CodeOf(dic, "県市町", "会"), "1000001")
        << "the address means the first, the organisation is in the second";
}

TEST(PostCodeFromAddr, OfANameOfWhichNothingIsLeftIsTheFirstOrganisationsOfTheTown) {
    CTextWorld const world;
    CGuardedDic dic(world);
    for (char const* pszName : {" ", "株式会社", ",（有）,"}) {
        EXPECT_EQ(CodeOf(dic, MARUNOUCHI, pszName), "1008111");
        EXPECT_EQ(CodeOf(dic, "東京都千代田区千代田", pszName), "1008333");
        EXPECT_EQ(CodeOf(dic, "東京都港区芝", pszName), "1058444") << "the last of the index";
        EXPECT_EQ(CodeOf(dic, "東京都府中市宮西町", pszName), "1830022") << "has none";
        EXPECT_EQ(Ask(dic, MARUNOUCHI, pszName).strName, "");
    }
}

TEST(PostCodeFromAddr, FailsAtAnOrganisationWithoutAnEntryAndKeepsTheTownsCode) {
    CTextWorld const sound;
    for (uint32_t nInfo : {ADDR_NONE, static_cast<uint32_t>(sound.vInfo.size()), 0x80000000u}) {
        CTextWorld world;
        world.vNode[world.nTestShoji].nInfo = nInfo;
        CGuardedDic dic(world);
        CAnswer const answer = Ask(dic, MARUNOUCHI, "（株）テスト");
        EXPECT_EQ(answer.nResult, 0);
        EXPECT_EQ(answer.strCode, "1000005") << "though テスト, before it, has one and fits";
        EXPECT_EQ(answer.strOldCode, "100");
        EXPECT_STREQ(answer.addr.pszTown, "丸の内");
        EXPECT_EQ(answer.strName, "テスト");
        EXPECT_EQ(Ask(dic, "東京都港区芝", "テスト").nResult, 0) << "whatever the address";
        EXPECT_EQ(Ask(dic, MARUNOUCHI, "港商会").nResult, 1) << "which does not meet it";
    }
}

TEST(PostCodeFromAddr, StopsAtAnIndexEntryThatNamesNoNode) {
    CTestImage const sound = CTextWorld(); // index: テスト, テスト, テスト商事, 港商会
    for (uint32_t nNode : {static_cast<uint32_t>(sound.vNode.size()), 0x80000000u, 0xFFFFFFFFu}) {
        CTextWorld world;
        world.vOfficeIndex[2] = nNode;
        CGuardedDic dic(world);
        EXPECT_EQ(CodeOf(dic, MARUNOUCHI, "テ"), "1008111");
        EXPECT_EQ(CodeOf(dic, MARUNOUCHI, " "), "1008111");
        EXPECT_EQ(CodeOf(dic, "東京都港区芝", " "), "1050014") << "港商会 is behind it";
    }
}

TEST(PostCodeFromAddr, EndsWithTheIndexWhenAllEntriesFit) {
    for (size_t nCount : {1u, 2u, 3u, 4u, 8u}) {
        CTestImage image;
        uint32_t const nPref = image.AddNode(LEVEL_PREF, ADDR_NONE, "県");
        uint32_t const nTown = image.AddNode(LEVEL_TOWN, image.AddNode(LEVEL_CITY, nPref, "市"), "町");
        image.AddInfo(nTown, "1000001", "100");
        for (size_t n = 0; n < nCount; ++n) image.AddInfo(image.AddNode(LEVEL_OFFICE, nTown, "会"), "1008111", "100");
        image.AddNode(LEVEL_OFFICE, nTown, "会"); // without an entry: who meets it fails
        image.Complete();
        CGuardedDic all(image);
        EXPECT_EQ(Ask(all, "県市町", "会").nResult, 0);
        CGuardedDic dic(WithoutLastEntry(image, HDR_OFFICE_COUNT));
        EXPECT_EQ(CodeOf(dic, "県市町", "会"), "1008111") << nCount;
        EXPECT_EQ(CodeOf(dic, "県市町", " "), "1008111") << nCount;
    }
}

TEST(PostCodeFromAddr, IsNotThatOfAnOrganisationWhoseParentsGoInACircle) {
    for (uint32_t CTextWorld::*pnNode : {&CTextWorld::nTest, &CTextWorld::nTestShoji}) {
        CTextWorld world;
        world.vNode[world.*pnNode].nParent = world.*pnNode;
        CGuardedDic dic(world);
        EXPECT_EQ(CodeOf(dic, MARUNOUCHI, "テ"), pnNode == &CTextWorld::nTest ? "1008222" : "1008111");
    }
}

TEST(PostCodeFromAddr, OfNothingIsNone) {
    CTextWorld const world;
    CGuardedDic dic(world);
    tagADDR addr = MarkedAddr();
    EXPECT_EQ(dic.GetPostCodeFromAddr(nullptr, nullptr, addr), 1);
    EXPECT_EQ(Fields(addr), Fields(tagADDR(0)));
    CAddrDic unbound;
    EXPECT_EQ(CodeOf(unbound, MARUNOUCHI, "テスト"), "(null)");
}

// --- below the city ------------------------------------------------------------------------------------------------

// A city with one node of every level in a row below it: town, area, block, group, note, office.
struct CChain : CTestImage {
    CChain() {
        uint32_t nNode = AddNode(LEVEL_CITY, AddNode(LEVEL_PREF, ADDR_NONE, "pref"), "city");
        for (auto const& level : {std::pair{LEVEL_TOWN, "town"},
                                  {LEVEL_AREA, "area"},
                                  {LEVEL_BLOCK, "block"},
                                  {LEVEL_GROUP, "group"},
                                  {LEVEL_NOTE, "note"},
                                  {LEVEL_OFFICE, "office"}})
            nNode = AddNode(level.first, nNode, level.second);
    }
};
constexpr uint32_t PREF = 0, CITY = 1, TOWN = 2, AREA = 3, BLOCK = 4, GROUP = 5, NOTE = 6, OFFICE = 7;

std::string After(CAddrDic& dic, tagADDRNODE const* pNode, std::string const& strBefore = "") {
    char szBuffer[1024] = "";
    std::memcpy(szBuffer, strBefore.c_str(), strBefore.size() + 1);
    EXPECT_EQ(dic.GetAfterCityName(pNode, szBuffer), 1);
    return szBuffer;
}

TEST(AfterCityName, PutsTownAndBuildingInFrontAndPassesOverTheRest) {
    CGuardedDic dic((CChain()));
    EXPECT_EQ(After(dic, dic.Node(TOWN)), "town");
    EXPECT_EQ(After(dic, dic.Node(AREA)), "town");
    EXPECT_EQ(After(dic, dic.Node(BLOCK)), "townblock");
    EXPECT_EQ(After(dic, dic.Node(GROUP)), "townblock");
    EXPECT_EQ(After(dic, dic.Node(NOTE)), "townblocknote");
    EXPECT_EQ(After(dic, dic.Node(OFFICE)), "townblocknote") << "the floor above it replaces the organisation";
    EXPECT_EQ(After(dic, dic.Node(BLOCK), "!"), "townblock!");
    EXPECT_EQ(After(dic, dic.Node(GROUP), "a longer text"), "townblocka longer text");
}

TEST(AfterCityName, ReplacesTheBufferByAFloorOrAnOrganisation) {
    CChain chain;
    chain.vNode[OFFICE].nParent = BLOCK;
    CGuardedDic dic(chain);
    EXPECT_EQ(After(dic, dic.Node(OFFICE), "a text longer than that"), "townblockoffice");
    EXPECT_EQ(After(dic, dic.Node(NOTE), "x"), "townblocknote");
}

TEST(AfterCityName, OfACityOrAPrefectureAddsNothing) {
    CGuardedDic dic((CChain()));
    EXPECT_EQ(After(dic, dic.Node(CITY), "text"), "text");
    EXPECT_EQ(After(dic, dic.Node(PREF), "text"), "text");
    EXPECT_EQ(After(dic, nullptr, "text"), "text");
}

TEST(AfterCityName, GoesToTheTopWhereThereIsNoCity) {
    CChain chain;
    chain.vNode[TOWN].nParent = PREF;
    CGuardedDic dic(chain);
    EXPECT_EQ(After(dic, dic.Node(BLOCK)), "townblock");
    chain.vNode[TOWN].nParent = 1000000; // no node
    CGuardedDic open(chain);
    EXPECT_EQ(After(open, open.Node(BLOCK)), "townblock");
}

TEST(AfterCityName, StopsAtTheCityEvenWhenTownsLieAboveIt) {
    CChain chain;
    chain.vNode[CITY].nParent = chain.AddNode(LEVEL_TOWN, ADDR_NONE, "above");
    CGuardedDic dic(chain);
    EXPECT_EQ(After(dic, dic.Node(BLOCK)), "townblock");
}

TEST(AfterCityName, WritesNoFurtherThanTheTextsNul) {
    CGuardedDic dic((CChain()));
    CGuardedBytes const buffer(std::string("") + std::string(9, '\0'), CGuardedBytes::Writable);
    EXPECT_EQ(dic.GetAfterCityName(dic.Node(BLOCK), buffer.Text()), 1);
    EXPECT_STREQ(buffer.Text(), "townblock") << "nine bytes and a NUL fill the buffer";
}

TEST(AfterCityName, WritesNothingWhenTheParentsGoInACircle) {
    CChain chain;
    chain.vNode[TOWN].nParent = BLOCK;
    CGuardedDic dic(chain);
    char szBuffer[1024] = "";
    EXPECT_EQ(dic.GetAfterCityName(dic.Node(BLOCK), szBuffer), 1);
    EXPECT_STREQ(szBuffer, "") << "a circle would fill any buffer";
}

TEST(AfterCityName, WithoutABufferOrAnImageDoesNothing) {
    CChain const chain;
    CGuardedDic dic(chain);
    EXPECT_EQ(dic.GetAfterCityName(dic.Node(TOWN), nullptr), 1);
    CAddrDic unbound;
    EXPECT_EQ(After(unbound, &chain.vNode[TOWN], "text"), "text");
}

} // namespace
