// What the town column stands for: every kind of row of the official table, each with its reading.
#include "builder/TownText.h"

#include "tests/builder/Support.h"

#include <gmock/gmock.h>

#include <string>

using qe::CNamed;
using qe::CTownText;
using qe::ETownKind;

namespace {

std::string Show(CNamed const& named) {
    return named.strName + "[" + named.strKana + "]";
}

// "Areas 大通西[オオドオリニシ] / １〜１９丁目[１−１９チョウメ]", with the flags that are set behind it.
std::string Show(CTownText const& text) {
    constexpr char const* KINDS[] = {"Nameless", "Town", "Areas", "Floor"};
    std::string str = KINDS[static_cast<int>(text.nKind)];
    if (text.nKind != ETownKind::Nameless) str += " " + Show(text.town);
    for (CNamed const& area : text.vArea) str += " / " + Show(area);
    if (!text.floor.strName.empty()) str += " floor " + Show(text.floor);
    if (text.bDefault) str += " default";
    if (text.bShortened) str += " shortened";
    if (text.bReadingLost) str += " reading-lost";
    return str;
}

std::string Read(char const* pszCity, std::string const& strTown, std::string const& strKana) {
    return Show(qe::ReadTownText(pszCity, strTown, strKana));
}

} // namespace

TEST(TownText, APlainNameIsATown) {
    EXPECT_EQ(Read("札幌市中央区", "旭ケ丘", "アサヒガオカ"), "Town 旭ケ丘[アサヒガオカ]");
}

TEST(TownText, WhatIsNotListedBelowIsTheCityAsAWhole) {
    EXPECT_EQ(Read("札幌市中央区", "以下に掲載がない場合", "イカニケイサイガナイバアイ"), "Nameless");
}

TEST(TownText, AnEmptyTextIsTheCityAsAWhole) {
    EXPECT_EQ(Read("利島村", "", ""), "Nameless");
}

// --- 境町の次に番地がくる場合 ---

TEST(TownText, ANumberBehindTheCitysNameWithoutItsCountyIsTheCityAsAWhole) {
    EXPECT_EQ(Read("猿島郡境町", "境町の次に番地がくる場合", "サカイマチノツギニバンチガクルバアイ"), "Nameless");
}

TEST(TownText, ANumberBehindTheCitysNameWithItsCountyIsTheCityAsAWhole) {
    EXPECT_EQ(Read("猿島郡境町", "猿島郡境町の次に番地がくる場合", "サシマグンサカイマチノツギニバンチガクルバアイ"),
              "Nameless");
}

TEST(TownText, ANumberBehindTheNameOfACityWithoutCountyIsTheCityAsAWhole) {
    EXPECT_EQ(Read("中津市", "中津市の次に番地がくる場合", "ナカツシノツギニバンチガクルバアイ"), "Nameless");
}

TEST(TownText, ANumberRangeBehindTheCitysNameIsAnAreaOfTheNamelessTown) {
    EXPECT_EQ(Read("北都留郡小菅村", "小菅村の次に１〜６６３番地がくる場合",
                   "コスゲムラノツギニ１−６６３バンチガクルバアイ"),
              "Areas [] / １〜６６３番地[１−６６３バンチ]");
}

TEST(TownText, ARangeWithoutAnEndBehindTheCitysNameIsAnAreaOfTheNamelessTown) {
    EXPECT_EQ(Read("北都留郡小菅村", "小菅村の次に６６４番地以降がくる場合",
                   "コスゲムラノツギニ６６４バンチイコウガクルバアイ"),
              "Areas [] / ６６４番地以降[６６４バンチイコウ]");
}

TEST(TownText, AParenthesisBehindTheRangeStaysWithIt) {
    EXPECT_EQ(Read("仲多度郡琴平町", "琴平町の次に１〜４２６番地がくる場合（川東）",
                   "コトヒラチョウノツギニ１−４２６バンチガクルバアイ（カワヒガシ）"),
              "Areas [] / １〜４２６番地（川東）[１−４２６バンチ（カワヒガシ）]");
}

TEST(TownText, ANumberBehindATownsNameIsThatTown) {
    EXPECT_EQ(Read("西海市", "大島町の次に番地がくる場合", "オオシマチョウノツギニバンチガクルバアイ"),
              "Town 大島町[オオシマチョウ]");
}

TEST(TownText, ANumberRangeBehindATownsNameIsAnAreaOfThatTown) {
    EXPECT_EQ(Read("西海市", "大島町の次に１〜９番地がくる場合", "オオシマチョウノツギニ１−９バンチガクルバアイ"),
              "Areas 大島町[オオシマチョウ] / １〜９番地[１−９バンチ]");
}

// 西境町 ends in 境町 but is no 郡 in front of it.
TEST(TownText, ATownWhoseNameEndsTheCitysNameIsNotTheCity) {
    EXPECT_EQ(Read("西境町", "境町の次に番地がくる場合", "サカイマチノツギニバンチガクルバアイ"),
              "Town 境町[サカイマチ]");
}

TEST(TownText, ANumberBehindTheCitysNameNeedsNoReading) {
    EXPECT_EQ(Read("北都留郡小菅村", "小菅村の次に１〜６６３番地がくる場合", ""), "Areas [] / １〜６６３番地[]");
}

// --- 一円 ---

TEST(TownText, TheWholeOfACityIsTheCityAsAWhole) {
    EXPECT_EQ(Read("利島村", "利島村一円", "トシマムライチエン"), "Nameless");
}

TEST(TownText, TheWholeOfACityNamedWithoutItsCountyIsTheCityAsAWhole) {
    EXPECT_EQ(Read("南会津郡檜枝岐村", "檜枝岐村一円", "ヒノエマタムライチエン"), "Nameless");
}

TEST(TownText, TheWholeOfACityNamedWithItsCountyIsTheCityAsAWhole) {
    EXPECT_EQ(Read("南会津郡檜枝岐村", "南会津郡檜枝岐村一円", "ミナミアイヅグンヒノエマタムライチエン"), "Nameless");
}

TEST(TownText, APlainIchienIsATown) {
    EXPECT_EQ(Read("犬上郡多賀町", "一円", "イチエン"), "Town 一円[イチエン]");
}

TEST(TownText, APlainIchienIsATownEvenOfACityThatEndsInGun) {
    EXPECT_EQ(Read("見本郡", "一円", "イチエン"), "Town 一円[イチエン]");
}

TEST(TownText, TheWholeOfAnotherPlaceIsATown) {
    EXPECT_EQ(Read("利島村", "大島一円", "オオシマイチエン"), "Town 大島一円[オオシマイチエン]");
}

// --- lists in parentheses ---

TEST(TownText, ANumberRangeIsOneArea) {
    EXPECT_EQ(Read("札幌市中央区", "大通西（１〜１９丁目）", "オオドオリニシ（１−１９チョウメ）"),
              "Areas 大通西[オオドオリニシ] / １〜１９丁目[１−１９チョウメ]");
}

TEST(TownText, ANumberListIsOneArea) {
    EXPECT_EQ(Read("港区", "芝（４、５丁目）", "シバ（４、５チョウメ）"),
              "Areas 芝[シバ] / ４、５丁目[４、５チョウメ]");
}

TEST(TownText, NumbersWithADashAreOneArea) {
    EXPECT_EQ(Read("札幌市南区", "藤野（４００、４００−２番地）", "フジノ（４００、４００−２バンチ）"),
              "Areas 藤野[フジノ] / ４００、４００−２番地[４００、４００−２バンチ]");
}

TEST(TownText, NumbersCountedByDaiAreNumbersToo) {
    EXPECT_EQ(Read("岩手郡葛巻町", "葛巻（第１地割〜第３９地割、第４６地割）",
                   "クズマキ（ダイ１チワリ−ダイ３９チワリ、ダイ４６チワリ）"),
              "Areas 葛巻[クズマキ] / 第１地割〜第３９地割、第４６地割[ダイ１チワリ−ダイ３９チワリ、ダイ４６チワリ]");
}

TEST(TownText, EveryPlaceNameOfAListIsAnAreaOfItsOwn) {
    EXPECT_EQ(Read("稚内市", "抜海村（上勇知、下勇知、夕来、オネトマナイ）",
                   "バッカイムラ（カミユウチ、シモユウチ、ユウクル、オネトマナイ）"),
              "Areas 抜海村[バッカイムラ] / 上勇知[カミユウチ] / 下勇知[シモユウチ] / 夕来[ユウクル] / "
              "オネトマナイ[オネトマナイ]");
}

TEST(TownText, OnlyNumbersNextToEachOtherStayTogether) {
    EXPECT_EQ(Read("北佐久郡軽井沢町", "長倉（１、２番地、中軽井沢、３〜５番地、６番地、鳥井原）",
                   "ナガクラ（１、２バンチ、ナカカルイザワ、３−５バンチ、６バンチ、トリイハラ）"),
              "Areas 長倉[ナガクラ] / １、２番地[１、２バンチ] / 中軽井沢[ナカカルイザワ] / "
              "３〜５番地、６番地[３−５バンチ、６バンチ] / 鳥井原[トリイハラ]");
}

TEST(TownText, ACommaInsideQuotesDoesNotSplitTheList) {
    EXPECT_EQ(
        Read("上北郡六戸町",
             "折茂（今熊「２１３〜２３４、２４０を除く」、大原、上折茂「１−１３、７１−１９２を除く」）",
             "オリモ（イマクマ＜２１３−２３４、２４０ヲノゾク＞、オオハラ、カミオリモ＜１−１３、７１−１９２ヲノゾク＞"
             "）"),
        "Areas 折茂[オリモ] / 今熊「２１３〜２３４、２４０を除く」[イマクマ＜２１３−２３４、２４０ヲノゾク＞] / "
        "大原[オオハラ] / 上折茂「１−１３、７１−１９２を除く」[カミオリモ＜１−１３、７１−１９２ヲノゾク＞]");
}

TEST(TownText, ASingleNoteIsOneArea) {
    EXPECT_EQ(Read("成田市", "三里塚（成田国際空港内）", "サンリヅカ（ナリタコクサイクウコウナイ）"),
              "Areas 三里塚[サンリヅカ] / 成田国際空港内[ナリタコクサイクウコウナイ]");
}

TEST(TownText, AParenthesisThatDoesNotEndTheTextBelongsToTheName) {
    EXPECT_EQ(Read("見本市", "東（西）町", "ヒガシ（ニシ）マチ"), "Town 東（西）町[ヒガシ（ニシ）マチ]");
}

// --- その他 and を除く ---

TEST(TownText, TheOthersAloneAreTheTownItself) {
    EXPECT_EQ(Read("稚内市", "抜海村（その他）", "バッカイムラ（ソノタ）"), "Town 抜海村[バッカイムラ] default");
}

TEST(TownText, TheOthersWithinAListMakeTheCodeTheTownsOwnToo) {
    EXPECT_EQ(Read("見本市", "中町（１丁目、その他、東原）", "ナカマチ（１チョウメ、ソノタ、ヒガシハラ）"),
              "Areas 中町[ナカマチ] / １丁目[１チョウメ] / 東原[ヒガシハラ] default");
}

TEST(TownText, WhatIsLeftWithoutTheBuildingsIsTheTownItself) {
    EXPECT_EQ(Read("仙台市青葉区", "中央（次のビルを除く）", "チュウオウ（ツギノビルヲノゾク）"),
              "Town 中央[チュウオウ]");
}

TEST(TownText, WhatIsLeftWithoutAPlaceIsTheTownItself) {
    EXPECT_EQ(Read("成田市", "三里塚（成田国際空港内を除く）", "サンリヅカ（ナリタコクサイクウコウナイヲノゾク）"),
              "Town 三里塚[サンリヅカ]");
}

TEST(TownText, AnExceptionInsideQuotesConcernsOnlyItsPlace) {
    EXPECT_EQ(Read("見本市", "東町（今熊「２４０を除く」）", "ヒガシマチ（イマクマ＜２４０ヲノゾク＞）"),
              "Areas 東町[ヒガシマチ] / 今熊「２４０を除く」[イマクマ＜２４０ヲノゾク＞]");
}

TEST(TownText, AnExceptionBehindQuotesStillConcernsTheTown) {
    EXPECT_EQ(
        Read("見本市", "東町（今熊「１〜３」、大原を除く）", "ヒガシマチ（イマクマ＜１−３＞、オオハラヲノゾク）"),
        "Town 東町[ヒガシマチ]");
}

TEST(TownText, AnExceptionBeforeQuotesConcernsTheTown) {
    EXPECT_EQ(Read("見本市", "東町（大原を除く「１〜３」）", "ヒガシマチ（オオハラヲノゾク＜１−３＞）"),
              "Town 東町[ヒガシマチ]");
}

// --- floors ---

TEST(TownText, AFloorIsCutOffItsBuilding) {
    EXPECT_EQ(Read("仙台市青葉区", "中央アエル（１階）", "チュウオウアエル（１カイ）"),
              "Floor 中央アエル[チュウオウアエル] floor １階[１カイ]");
}

TEST(TownText, AFloorMayHaveTwoDigits) {
    EXPECT_EQ(Read("仙台市青葉区", "中央アエル（３１階）", "チュウオウアエル（３１カイ）"),
              "Floor 中央アエル[チュウオウアエル] floor ３１階[３１カイ]");
}

TEST(TownText, ABasementIsAFloor) {
    EXPECT_EQ(Read("仙台市青葉区", "中央アエル（地階）", "チュウオウアエル（チカイ）"),
              "Floor 中央アエル[チュウオウアエル] floor 地階[チカイ]");
}

TEST(TownText, AnUnknownFloorIsTheBuilding) {
    EXPECT_EQ(Read("仙台市青葉区", "中央アエル（地階・階層不明）", "チュウオウアエル（チカイ・カイソウフメイ）"),
              "Floor 中央アエル[チュウオウアエル]");
}

TEST(TownText, AParenthesisInTheBuildingsNameStaysThere) {
    EXPECT_EQ(
        Read("名古屋市中村区", "名駅ミッドランドスクエア（高層棟）（１階）",
             "メイエキミッドランドスクエア（コウソウトウ）（１カイ）"),
        "Floor 名駅ミッドランドスクエア（高層棟）[メイエキミッドランドスクエア（コウソウトウ）] floor １階[１カイ]");
}

TEST(TownText, AnUnknownFloorBehindAnotherParenthesisIsTheBuilding) {
    EXPECT_EQ(Read("名古屋市中村区", "名駅ミッドランドスクエア（高層棟）（地階・階層不明）",
                   "メイエキミッドランドスクエア（コウソウトウ）（チカイ・カイソウフメイ）"),
              "Floor 名駅ミッドランドスクエア（高層棟）[メイエキミッドランドスクエア（コウソウトウ）]");
}

TEST(TownText, AStoreyedNameThatIsNoFloorIsAnArea) {
    EXPECT_EQ(Read("見本市", "東町（二階）", "ヒガシマチ（ニカイ）"), "Areas 東町[ヒガシマチ] / 二階[ニカイ]");
}

// --- 地割 ---

TEST(TownText, LotsThatRepeatTheTownsNameAreOneAreaWithoutIt) {
    EXPECT_EQ(
        Read("九戸郡洋野町", "種市第２２地割〜種市第２３地割（一区、二区）",
             "タネイチダイ２２チワリ−タネイチダイ２３チワリ（イック、ニク）"),
        "Areas 種市[タネイチ] / 第２２地割〜第２３地割（一区、二区）[ダイ２２チワリ−ダイ２３チワリ（イック、ニク）]");
}

TEST(TownText, LotsThatDoNotRepeatTheTownsNameAreOneArea) {
    EXPECT_EQ(Read("九戸郡洋野町", "種市第１地割〜第３地割（八木南町、八木北町）",
                   "タネイチダイ１チワリ−ダイ３チワリ（ヤギミナミチョウ、ヤギキタチョウ）"),
              "Areas 種市[タネイチ] / 第１地割〜第３地割（八木南町、八木北町）"
              "[ダイ１チワリ−ダイ３チワリ（ヤギミナミチョウ、ヤギキタチョウ）]");
}

TEST(TownText, LotsWithoutDaiAreOneArea) {
    EXPECT_EQ(
        Read("和賀郡西和賀町", "越中畑６４地割〜越中畑６６地割", "エッチュウハタ６４チワリ−エッチュウハタ６６チワリ"),
        "Areas 越中畑[エッチュウハタ] / ６４地割〜６６地割[６４チワリ−６６チワリ]");
}

TEST(TownText, AListOfLotsIsOneArea) {
    EXPECT_EQ(Read("和賀郡西和賀町", "穴明２２地割、穴明２３地割", "アナアケ２２チワリ、アナアケ２３チワリ"),
              "Areas 穴明[アナアケ] / ２２地割、２３地割[２２チワリ、２３チワリ]");
}

TEST(TownText, ASingleLotIsPartOfTheTownsName) {
    EXPECT_EQ(Read("和賀郡西和賀町", "杉名畑４４地割", "スギナハタ４４チワリ"),
              "Town 杉名畑４４地割[スギナハタ４４チワリ]");
}

TEST(TownText, LotsInsideTheParenthesisAreAnArea) {
    EXPECT_EQ(Read("宮古市", "川井（第９地割〜第１１地割）", "カワイ（ダイ９チワリ−ダイ１１チワリ）"),
              "Areas 川井[カワイ] / 第９地割〜第１１地割[ダイ９チワリ−ダイ１１チワリ]");
}

TEST(TownText, LotsWithAnExceptionInQuotesAreOneArea) {
    EXPECT_EQ(Read("岩手郡葛巻町", "葛巻（第４０地割「５７番地１２５、１７６を除く」〜第４５地割）",
                   "クズマキ（ダイ４０チワリ＜５７バンチ１２５、１７６ヲノゾク＞−ダイ４５チワリ）"),
              "Areas 葛巻[クズマキ] / 第４０地割「５７番地１２５、１７６を除く」〜第４５地割"
              "[ダイ４０チワリ＜５７バンチ１２５、１７６ヲノゾク＞−ダイ４５チワリ]");
}

TEST(TownText, LotsNeedNoReading) {
    EXPECT_EQ(Read("九戸郡洋野町", "種市第１地割〜第３地割（八木南町）", ""),
              "Areas 種市[] / 第１地割〜第３地割（八木南町）[]");
}

// --- readings ---

// Kyoto: the table gives the reading of the town alone.
TEST(TownText, AReadingWithoutTheParenthesisBelongsToTheTown) {
    EXPECT_EQ(Read("京都市中京区", "一之船入町（河原町通二条下る、木屋町通二条下る）", "イチノフナイリチョウ"),
              "Areas 一之船入町[イチノフナイリチョウ] / 河原町通二条下る[] / 木屋町通二条下る[] reading-lost");
}

TEST(TownText, AReadingWithAnotherNumberOfItemsIsLostForTheAreas) {
    EXPECT_EQ(Read("見本市", "中町（東、西、南）", "ナカマチ（ヒガシ、ニシ）"),
              "Areas 中町[ナカマチ] / 東[] / 西[] / 南[] reading-lost");
}

TEST(TownText, AnEmptyReadingIsNotAReadingLost) {
    EXPECT_EQ(Read("稚内市", "抜海村（上勇知、下勇知）", ""), "Areas 抜海村[] / 上勇知[] / 下勇知[]");
}

TEST(TownText, EveryKindOfRowIsReadWithoutAReading) {
    EXPECT_EQ(Read("札幌市中央区", "旭ケ丘", ""), "Town 旭ケ丘[]");
    EXPECT_EQ(Read("利島村", "利島村一円", ""), "Nameless");
    EXPECT_EQ(Read("西海市", "大島町の次に番地がくる場合", ""), "Town 大島町[]");
    EXPECT_EQ(Read("港区", "芝（４、５丁目）", ""), "Areas 芝[] / ４、５丁目[]");
    EXPECT_EQ(Read("見本市", "中町（１丁目、その他）", ""), "Areas 中町[] / １丁目[] default");
    EXPECT_EQ(Read("仙台市青葉区", "中央アエル（１階）", ""), "Floor 中央アエル[] floor １階[]");
    EXPECT_EQ(Read("仙台市青葉区", "中央アエル（地階・階層不明）", ""), "Floor 中央アエル[]");
    EXPECT_EQ(Read("和賀郡西和賀町", "越中畑６４地割〜越中畑６６地割", ""), "Areas 越中畑[] / ６４地割〜６６地割[]");
}

// --- long texts ---

// A number with its comma takes 12 bytes: ten numbers make 117 bytes, eleven would make 129.
TEST(TownText, ANumberListThatIsTooLongGoesOnInTheNextArea) {
    EXPECT_EQ(Read("見本市", "中町（" + Repeat("１２３、", 11) + "４番地）", ""),
              "Areas 中町[] / " + Repeat("１２３、", 9) + "１２３[] / １２３、４番地[]");
}

TEST(TownText, ANumberListOfExactlyTheLimitStaysOneArea) {
    std::string const strList = Repeat("１２３、", 10) + "４５-"; // the hyphen makes it 127 bytes
    ASSERT_EQ(strList.size(), qe::NAME_LIMIT);
    EXPECT_EQ(Read("見本市", "中町（" + strList + "）", ""), "Areas 中町[] / " + strList + "[]");
}

TEST(TownText, ThePartsOfAReadingFollowTheCutOfALongList) {
    EXPECT_EQ(Read("見本市", "中町（" + Repeat("１２３、", 11) + "４番地）",
                   "ナカ（" + Repeat("１２３、", 11) + "４バンチ）"),
              "Areas 中町[ナカ] / " + Repeat("１２３、", 9) + "１２３[" + Repeat("１２３、", 9) +
                  "１２３] / １２３、４番地[１２３、４バンチ]");
}

TEST(TownText, ASingleItemThatIsTooLongLosesItsQuotes) {
    EXPECT_EQ(Read("見本市", "中町（今熊「" + Repeat("１２３、", 11) + "４を除く」、大原）", ""),
              "Areas 中町[] / 今熊[] / 大原[] shortened");
}

TEST(TownText, AnItemThatIsTooLongWithoutQuotesIsCutAtACharacter) {
    EXPECT_EQ(Read("見本市", "中町（" + Repeat("東", 50) + "）", ""),
              "Areas 中町[] / " + Repeat("東", 42) + "[] shortened");
}

TEST(TownText, AnItemOfExactlyTheLimitIsKept) {
    std::string const strItem = Repeat("東", 42) + "a"; // 127 bytes
    ASSERT_EQ(strItem.size(), qe::NAME_LIMIT);
    EXPECT_EQ(Read("見本市", "中町（" + strItem + "）", ""), "Areas 中町[] / " + strItem + "[]");
}

TEST(TownText, LotsThatAreTooLongAreCutAtACharacter) {
    EXPECT_EQ(Read("見本市", "種市第１地割〜第３地割（" + Repeat("東", 50) + "）", ""),
              "Areas 種市[] / 第１地割〜第３地割（" + Repeat("東", 32) + "[] shortened");
}

TEST(TownText, NoAreaEverExceedsTheLimit) {
    for (size_t nItems = 1; nItems <= 60; ++nItems)
        for (char const* pszItem : {"１、", "１２３、", "東原、", "１〜９番地「２、３を除く」、", "東「１、２」、"}) {
            CTownText const text = qe::ReadTownText("見本市", "中町（" + Repeat(pszItem, nItems) + "９）", "");
            for (CNamed const& area : text.vArea)
                ASSERT_LE(area.strName.size(), qe::NAME_LIMIT) << pszItem << " x " << nItems;
        }
}
