// CAddrDic - the address dictionary: answers every query from one mapped, read-only image.
//
//   CAddrDic dic;
//   dic.SetDictionary(pImage);                     // binds; checks nothing, copies nothing
//   std::vector<tagADDR> vAddr;
//   if (dic.GetAddrFromPostCode7("100-0001", vAddr)) puts(vAddr[0].pszCity);   // 千代田区
//
// Lifetime  The object never owns the image. Texts in a tagADDR lead into it and live as long as the mapping; once
//           its owner has unmapped it, call nothing before the next SetDictionary.
// State     Each lookup rewrites the lists it owns; other calls read them until the next lookup.
// Threads   One object, one thread at a time. Objects over the same image are independent: the image, pref_order and the
//           other tables are only read. Not to be shared: an object, and a list that a call fills. Who unmaps the image
//           waits for all objects over it.
// Memory    Nothing is read or copied when an image is bound. What searches have read they keep until the next
//           SetDictionary, to find it at once the next time: 48 KB for codes, two bytes for each node that they meet
//           (for the country 390 KB at most), and after some searches in all cities, or all towns, of the country a
//           table of their names (16 KB, 512 KB). Where there is no memory for it the answers are the same.
// Texts     Address texts are UTF-8, of any length, and spelled as the dictionary spells its names.
// Failure   Nothing throws but std::bad_alloc. An index or offset outside its table yields null, and null means not
//           found. An object without an image finds nothing.
// File      Replace the file by renaming a new one over it; editing a mapped file is not supported.
#ifndef QEADRS_DIC_ADDRDIC_H
#define QEADRS_DIC_ADDRDIC_H

#include "dic/Addr.h"
#include "dic/AddrNode.h"
#include "dic/Export.h"
#include "tree/AddrPnt.h"

#include <memory>
#include <vector>

// Sort types (SetSortType): only SORT_ADDR changes anything.
constexpr unsigned short SORT_DICTIONARY = 2; // results in dictionary order
constexpr unsigned short SORT_ADDR = 9;       // results in the order of tagADDR::operator<

// The 47 prefectures in the conventional order, that of JIS X 0401: a two-digit code counted from 0 ("00" 北海道 to
// "46" 沖縄県) with its NUL, and from byte 3 on the name, padded with NUL.
constexpr int PREF_ORDER_ROWS = 47;
constexpr int PREF_ORDER_ROW_SIZE = 16;
constexpr int PREF_ORDER_NAME = 3;
inline constexpr char pref_order[PREF_ORDER_ROWS][PREF_ORDER_ROW_SIZE] = {
    "00\0北海道", "01\0青森県", "02\0岩手県", "03\0宮城県", "04\0秋田県", "05\0山形県",   "06\0福島県", "07\0茨城県",
    "08\0栃木県", "09\0群馬県", "10\0埼玉県", "11\0千葉県", "12\0東京都", "13\0神奈川県", "14\0新潟県", "15\0富山県",
    "16\0石川県", "17\0福井県", "18\0山梨県", "19\0長野県", "20\0岐阜県", "21\0静岡県",   "22\0愛知県", "23\0三重県",
    "24\0滋賀県", "25\0京都府", "26\0大阪府", "27\0兵庫県", "28\0奈良県", "29\0和歌山県", "30\0鳥取県", "31\0島根県",
    "32\0岡山県", "33\0広島県", "34\0山口県", "35\0徳島県", "36\0香川県", "37\0愛媛県",   "38\0高知県", "39\0福岡県",
    "40\0佐賀県", "41\0長崎県", "42\0熊本県", "43\0大分県", "44\0宮崎県", "45\0鹿児島県", "46\0沖縄県",
};

// Kinds of city-level names (GetShikugunType): the character at the end, and the marker found before it.
enum tagSHIKUGUN : unsigned short {
    SHIKUGUN_SHI = 0,      // 市
    SHIKUGUN_KU = 1,       // 区
    SHIKUGUN_SHI_KU = 2,   // 市 ... 区
    SHIKUGUN_GUN_CHO = 3,  // 郡 ... 町
    SHIKUGUN_GUN_MURA = 4, // 郡 ... 村
    SHIKUGUN_SHIMA = 5,    // 島 ... 町 or 村
    SHIKUGUN_CHO_MURA = 6, // 庁 ... 村
    SHIKUGUN_OTHER = 7,    // anything else
};

// Writes the kind of a city-level name and returns the length in bytes of its part up to and including the marker, 0
// for kinds without one. Characters are compared by two bytes, as for a double-byte encoding: a UTF-8 name of three
// bytes or more is always SHIKUGUN_OTHER. Returns 0 and writes nothing for null and for names below three bytes. A
// length above 65,535 is given modulo 65,536.
QEADRS_API unsigned short GetShikugunType(char const* pszName, unsigned short* pnType);

struct CSearchMemory; // internal

class QEADRS_API CAddrDic {
  public:
    CAddrDic();
    ~CAddrDic();
    CAddrDic(CAddrDic const&) = delete;
    CAddrDic& operator=(CAddrDic const&) = delete;

    // --- the dictionary and its records -----------------------------------------------------------------------

    // Forgets all working state (sort type 2 again) and binds the image; may be called again to bind another one.
    // The header is not checked. Always 1. REQUIRES: a well-formed image, or null, which unbinds.
    int SetDictionary(unsigned char const* pDictionary);

    // The bound image and its string area; null before the first SetDictionary.
    unsigned char const* GetDicPointer() const;
    char const* GetStrings() const;

    // A text by its offset in the string area, a record by its index: null when it lies outside its table.
    char const* GetString(unsigned long nOffset) const;
    tagADDRNODE const* GetAddrNode(unsigned long nIndex) const;
    tagADDRINFO const* GetAddrInfo(unsigned long nIndex) const;

    // The nodes of a current entry: *ppTown is its deepest node, whatever its level, *ppCity and *ppPref the nodes of
    // level 1 and 0 on the way up, null where there is none. Returns 1; 0 for a null argument (nothing written), a
    // superseded entry or an entry without a node (all three null).
    int GetAddrPtr(tagADDRINFO const* pInfo, tagADDRNODE const** ppPref, tagADDRNODE const** ppCity,
                   tagADDRNODE const** ppTown);

    // The first node of level 1 from the entry's node upwards, superseded entries included; null when there is none.
    tagADDRNODE const* GetCityNode(tagADDRINFO const* pInfo);

    // Writes the entry's code and the names and readings of all its levels into *pAddr; superseded entries included.
    // pszCodeExt becomes "" (the code's own NUL). Fields of levels that the entry lacks, node pointers and nCityOrder
    // keep their values: zero the record first. Returns 1, or 0 for a null argument.
    int GetAddr(tagADDRINFO const* pInfo, tagADDR* pAddr);

    // The order of list answers from now on, until the next SetDictionary: SORT_ADDR sorts, all else does not.
    void SetSortType(unsigned short nType);

    // Name of the organisation that the last 7-digit lookup met (the last in table order), null when it met none.
    char const* GetLastInc();

    // --- postal-code lookup -----------------------------------------------------------------------------------

    // Keeps the digits and "?" and "*" of the text, in place, and drops all else: "100-0001" becomes "1000001". The
    // text is read as code page 932: a two-byte character counts as its single-byte form, and a byte that is none in
    // that code page (a tab, and most bytes of UTF-8 characters) is dropped together with the byte behind it. So keep
    // UTF-8 characters and control characters out of it. Null is ignored.
    void MakePostCode(char* pszText);

    // Index of the first entry whose code begins with pszCode, -1 when there is none; 0 for null or "".
    long SearchPostCode7(char const* pszCode);

    // Appends the addresses of a 7-digit code, or of all codes that begin with pszCode, in any spelling that
    // MakePostCode understands. Entries without a town level or a city are left out. Rewrites the city list and the
    // last organisation; with SORT_ADDR sorts the whole of vAddr. Returns 1 when the code was searched, 0 (and leaves
    // vAddr as it is) for null, a text without digits and a code that is not there.
    int GetAddrFromPostCode7(char const* pszCode, std::vector<tagADDR>& vAddr);

    // Appends the addresses whose old code is exactly pszCode ("100", "06008"), in table order. The scan begins at
    // the first 7-digit code that begins with pszCode and ends after 10000 entries: what lies outside is not found.
    // Rewrites the city list. Returns 1 when searched, 0 for null and when no 7-digit code begins so.
    int GetAddrFromPostCode5(char const* pszCode, std::vector<tagADDR>& vAddr);

    // An empty entry point, kept for its callers: does nothing and returns 1.
    int GetCityFromPostCode5(char const* pszCode, std::vector<tagADDR>& vAddr);

    // --- address text analysis --------------------------------------------------------------------------------
    //
    // Names are compared byte by byte, in the dictionary's own spelling. The three levels are read from the front of
    // the text, each below the level found before it; a level that is not found widens the next one's search to the
    // whole dictionary. A level writes its name, reading and node into the record, and its entry's codes, the old one
    // into pszCodeExt; a level that is not found leaves its fields alone. Names lead into the image; pszArea, the
    // unread rest, leads into the caller's text.

    // Each reads one level at *ppszText, moves *ppszText behind it and returns the node's index; -1 (and *ppszText
    // stays) when no name fits, and for null. Of prefectures and towns the first that fits is taken, of cities the
    // longest. nPref and nCity are the index of the level above; an index without a node, such as -1, stands for the
    // whole dictionary. Towns without a name are never found.
    int SeparatePref(char const** ppszText, tagADDR& addr);
    int SeparateCity(char const** ppszText, unsigned long nPref, tagADDR& addr);
    int SeparateTown(char const** ppszText, unsigned long nCity, tagADDR& addr);

    // The three in one: "東京都千代田区丸の内２丁目" leaves "２丁目" in pszArea. Returns true, also when nothing was
    // found; false only for a null argument. Zero the record first.
    bool DivideAddr(char const* pszText, tagADDR* pAddr);

    // Separates the text like DivideAddr (pszArea stays as it is when no town is found) and, when the town is a
    // superseded one, replaces pszPref, pszCity and pszTown by those of the address that took its place; all other
    // fields still describe the town that the text names. Returns 1 when a town with an entry was found, 0 otherwise
    // and when its successor is missing. Zero the record first.
    uint32_t GetLatestAddr(char const* pszText, tagADDR& addr);

    // Separates the address into addr, which is zeroed first (pszArea is the unread rest when a town was found), and
    // replaces its codes by those of the organisation when one whose name begins with pszOrgName stands in the very
    // same town; null or "" asks for none. pszOrgName is normalised in place, as SearchInc does. Returns 1, found or
    // not: look at pszPostCode. 0 when an organisation of that name has no entry, which only a damaged dictionary's
    // has; addr then keeps the address's own codes. REQUIRES: pszOrgName is writable memory.
    int GetPostCodeFromAddr(char const* pszAddress, char const* pszOrgName, tagADDR& addr);

    // Strips pszName of blanks (EraseBlank) and of one legal form ("株式会社", "（有）", ...), in place although it is
    // declared constant: the first form of the library's list that stands in front or behind. Returns the first
    // position in the organisation index whose name begins with the rest, -1 when there is none. A name of which
    // nothing remains begins every name; null and "" give -1. REQUIRES: writable memory.
    int SearchInc(char const* pszName);

    // Removes ASCII blanks and commas, and of every character that begins with the two bytes of the ideographic space
    // these two bytes, in place: in UTF-8 its third byte stays behind, so take ideographic spaces out before.
    void EraseBlank(char* pszText);

    // Puts the names of the node and of all above it, below the city, in front of what pszBuffer holds: towns and
    // buildings; a floor or an organisation replaces what is there. Writes nothing when the parents of a damaged
    // dictionary go in a circle. Always 1. REQUIRES: pszBuffer holds a text ("" at first) and has room for all names;
    // 1,024 bytes are enough for any dictionary of our compiler.
    int GetAfterCityName(tagADDRNODE const* pNode, char* pszBuffer);

    // Appends every current address that a partial text can stand for, in order of discovery: all that lies below the
    // levels found; behind a whole address down to its town that address itself, first, with the unread rest in
    // pszArea. A text without a prefecture in front is taken for the beginning of prefecture names and of city names,
    // so that "" gives the whole dictionary, once by prefectures and once by cities. Always 1.
    int GetAddrFromAddrPart(char const* pszText, std::vector<tagADDR>& vAddr);

    // Its two halves: all below the prefectures, all below the cities, whose names begin with the text.
    void GetPrefFromPart(char const* pszText, std::vector<tagADDR>& vAddr);
    void GetCityFromPart(char const* pszText, std::vector<tagADDR>& vAddr);

    // First position in the city-name index whose name begins with the text, -1 when there is none and for null.
    int SearchCity(char const* pszText);

    // Appends all current entries below the node, depth first, each a copy of addr with the texts of its levels. A
    // text of a level stays in the records of later siblings of other levels. In a damaged dictionary a child that is
    // its own ancestor is passed over, the walk ends with as many children as the dictionary has nodes, and it goes
    // no deeper than 256 nodes, more than there are levels.
    void recTraceNode(tagADDRNODE const* pNode, tagADDR addr, std::vector<tagADDR>& vAddr);

    // --- browsing ---------------------------------------------------------------------------------------------
    //
    //   dic.GetPref(vPref);               // all prefectures; or GetPrefFromCity(text, vPref)
    //   dic.GetCityFromNo(12, vCity);     // the cities of vPref[12], 東京都
    //   dic.GetTownFromNo(0, vTown);      // the towns of vCity[0], 千代田区; or GetTownExFromNo(0, vAddr)
    //
    // A number is a position in the answer before, which the object keeps as a list of nodes, one list for each level.
    // GetPref and GetPrefFromCity empty all three. A list that holds something when its own level is asked for fixes
    // that level: GetCityFromNo and GetTownFromNo then answer its first entry only, whatever the number. So ask each
    // level once, and begin again at the prefectures for another branch. The postal-code lookups rewrite the city
    // list, too. Answers are appended to an empty vector of the caller's; pListCity of a record is its node.

    // All prefectures by their numbers, 0 (北海道) to 46 (沖縄県): pszPref and pszPrefKana, at the position of the
    // number in pref_order. A prefecture that the dictionary lacks has a blank record. One that pref_order lacks takes
    // the place of the one before it, and is left out when there is none. Returns true; false when a reading does not
    // lie in the string area, and then the answer ends with that prefecture.
    bool GetPref(std::vector<tagADDR>& vAddr);

    // The prefecture that an address text begins with, as DivideAddr reads the text (then the record has all that it
    // found, and no list node); else the prefectures, each once, that have a city whose name begins with the city of
    // the text, without readings: "府中市" gives 東京都 and 広島県. A city or town in the text fixes its level. Returns
    // false for null and when nothing was found, and like the search below it misses the first city of the index.
    bool GetPrefFromCity(char const* pszText, std::vector<tagADDR>& vAddr);

    // The cities of a prefecture, superseded ones included: pszCity, pszCityKana. With SORT_ADDR sorted, and the
    // numbers are those of the sorted answer. Returns false, and answers nothing, when there is no such prefecture.
    bool GetCityFromNo(unsigned long nPref, std::vector<tagADDR>& vAddr);

    // Replaces vNode by the city nodes whose names begin with pszName: first the one that a binary search of the index
    // hits, then those before it backwards, then those behind it. The first city of the index is never among them. A
    // name that ends in 区, 町 or 村 in the manner of a double-byte encoding, by two bytes, and holds no 市, 郡 or
    // the like before, is looked for at the ends of city names instead. Returns true, also when there is none at the
    // ends; false for null and when the search meets no match or a damaged entry.
    bool SearchCity(char const* pszName, std::vector<tagADDRNODE const*>& vNode);

    // The towns of a city, superseded ones included and nameless ones left out: pszTown, pszTownKana and, where the
    // town has an entry, pszPostCode and the old code in pszCodeExt. With SORT_ADDR sorted. Returns false when there
    // is no such city, and when a child of it lies outside the node table; the towns before that child are then in
    // vAddr, and the town list stays empty.
    bool GetTownFromNo(unsigned long nCity, std::vector<tagADDR>& vAddr);

    // All current addresses below a city as recTraceNode lists them, without the names of city and prefecture. With
    // SORT_ADDR sorted. Always true; a number outside the last answer finds nothing. The records have no list nodes:
    // after an answer that was not empty, GetTownFromNo fails until the lists are emptied.
    bool GetTownExFromNo(unsigned long nCity, std::vector<tagADDR>& vAddr);

    // Appends the node and all nodes below it that have a current entry, parents first, under the same limits as
    // recTraceNode.
    void recCollectNode(tagADDRNODE const* pNode, std::vector<tagADDRNODE const*>& vNode);

    // --- refinement and selection lists -----------------------------------------------------------------------
    //
    //   char szCode[] = "100-00";                                    // writable
    //   dic.MakeRefineTree(szCode, "");                              // all that the code can mean, as a tree
    //   dic.GetAdrNum(0, 0, 0, &nPref, &nCity, &nTown, &w0, &w1, &w2);   // how much there is, and select
    //   dic.GetAtCity(3, szName, 60, &nType);                        // the fourth city of the selected prefecture
    //
    // While the tree holds something the counts and positions are those of its levels; else they are those of lists of
    // the whole dictionary, which GetAdrNum makes. All are sorted by display name (DispTree.h).

    // Makes the tree of a part of a postal code or, when that is "", of an address; "" for both leaves it empty. The
    // same two texts again find it as it is. pszCode is normalised in place (MakePostCode) although it is declared
    // constant. Null counts as "". Returns 1; 0 when the entries of the code are the last ones of the dictionary, and
    // then the tree is not sorted. REQUIRES: writable memory behind pszCode.
    int MakeRefineTree(char const* pszCode, char const* pszAddr);

    // Its address half, unsorted: all current entries below the levels that the text names. Always 1.
    int SeparateAddr(char const* pszAddr);

    // Replaces vNode by the nodes with a current entry that a text without a prefecture names: those of the cities
    // whose names it is, or of their first children whose names begin the rest (one without a name begins every rest);
    // when there is no such city or child, those of all cities that the text begins with. Always 0.
    int SearchCity2(char const* pszAddr, std::vector<tagADDRNODE const*>& vNode);

    // Replaces the tree by one of the current entries that the nodes refer to, unsorted. Always 1.
    int MakeTreeFromNode(std::vector<tagADDRNODE const*>& vNode);

    // Selects a prefecture, a city of it and a town of that by positions, and counts each list, modulo 65,536; the
    // widths are constants (8, 16, 60). In the lists of the whole dictionary another prefecture begins at its first
    // city, whichever is asked for. Returns 1; 0 for null and a negative position, when nothing is written, and for a
    // position that is not there, when the counts below it are 0 and the widths stay. (In a tree nTown is not looked
    // at, and the selection is taken even then.)
    int GetAdrNum(int nPref, int nCity, int nTown, short* pnPref, short* pnCity, short* pnTown, short* pnPrefWidth,
                  short* pnCityWidth, short* pnTownWidth);

    // The names at a position of the lists, without the prefixes of their display names. Each fills its field with
    // zeros behind the text; a text that fills the field has no NUL. Returns false for a null name and for a position
    // that is not there; GetAtCity, though, true and an empty name for one that is not in a tree. *pnType is what
    // GetShikugunType returns for the name, the length of the first part of a name in two parts; null asks for none.
    bool GetAtPref(int nIndex, char* pszName, int nNameSize);
    bool GetAtCity(int nIndex, char* pszName, int nNameSize, int* pnType);

    // A town: its name, or that of the town it lies in; what lies below the town as the detail text, with its kind (0
    // none, 1 a level-3 text, 3 an organisation, 4 a building and its floor); its old code and its code. Returns false
    // for null and a negative position, when nothing is written, and for a position that is not there, when all are
    // empty.
    bool GetAtTown(int nIndex, char* pszTown, int nTownSize, char* pszDetail, int nDetailSize, char* pszCode5,
                   int nCode5Size, char* pszCode7, int nCode7Size, char* pnDetailKind);

  private:
    friend struct CAddrDicPeek; // tests of state that no operation reads

    QEADRS_LOCAL void EmptyLists();
    QEADRS_LOCAL void KeepOfficeText();
    QEADRS_LOCAL void KeepQuery(char const* pszCode, char const* pszAddr);
    QEADRS_LOCAL int MakeTreeFromCode(char const* pszCode);
    QEADRS_LOCAL bool CountTree(int nPref, int nCity, int nTown, short* pnPref, short* pnCity, short* pnTown);
    QEADRS_LOCAL bool CountLists(int nPref, int nCity, int nTown, short* pnPref, short* pnCity, short* pnTown);
    QEADRS_LOCAL void Select(int nPref, int nCity, int nTown);
    QEADRS_LOCAL tagADDRPNT const* FindTown(int nIndex) const;

    unsigned char const* pImage;
    tagADDRNODE const* pNodeTable;
    tagADDRINFO const* pInfoTable;
    char const* pszStrings;
    uint32_t const* pCityIndex;
    void const* pFifthTable; // bound, never read
    void const* pSixthTable; // bound, never read
    uint32_t const* pOfficeIndex;
    char szRefinePostCode[8];
    char szRefineAddr[128];
    int nSelPref;
    int nSelCity;
    int nSelTown;
    int nSelUnused;
    std::vector<tagADDRNODE const*> vPrefList; // nodes of the last browsing answer of each level
    std::vector<tagADDRNODE const*> vCityList; //   the postal-code lookups fill this one too
    std::vector<tagADDRNODE const*> vTownList;
    char const* pszLastOffice; // into the string area, or null
    char szOffice[1000];       // copy of the last organisation's name, or "会社名なし"
    unsigned short nSortType;
    std::vector<tagADDRPNT> vRefineTree;
    std::vector<tagADDRPNT> vPrefPnt;
    std::vector<tagADDRPNT> vCityPnt;
    std::vector<tagADDRPNT> vTownPnt;
    std::unique_ptr<CSearchMemory> pSearchMemory; // what searches keep to be quicker next time; goes with the image
};

#endif
