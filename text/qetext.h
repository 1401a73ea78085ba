/* qetext.h - addresses as people write them, read with a dictionary: the C interface and the records of both.
 *
 *   QETEXT* pText = QeTextOpen("/var/lib/qeadrs/qeadrs.dic", NULL);
 *   QETEXTREADING reading;
 *   if (QeTextRead(pText, psz, strlen(psz), 0, &reading) == QETEXT_OK && reading.nSureness >= QETEXT_SUPPLIED)
 *       puts(reading.place.pszPostCode);           // "札幌市中央区大通西２５丁目": 0640820
 *   QeTextClose(pText);
 *
 * Texts     UTF-8 of any length; bytes that are none match no name. What is not understood stays as it is: no answer holds
 *           a name that the text does not support.
 * Lifetime  Texts of an answer lead into the dictionary, and live until QeTextClose or, with QeTextOpenImage, as long as the
 *           image; candidates lead into the reader, and live until its next call. A reader never changes the dictionary.
 * Threads   One reader, one thread at a time. Readers over the same dictionary are independent.
 * Failure   A call says what went wrong (QETEXT_xxx); nothing is thrown across it.
 */
#ifndef QEADRS_TEXT_QETEXT_H
#define QEADRS_TEXT_QETEXT_H

#include <stddef.h>
#include <stdint.h>

#if defined(__GNUC__)
#    define QETEXT_API __attribute__((visibility("default")))
#else
#    define QETEXT_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* What a call returns. */
enum {
    QETEXT_OK = 0,
    QETEXT_ERR_ARGUMENT = 1, /* a null pointer where none may be */
    QETEXT_ERR_FILE = 2,     /* the file cannot be opened; errno says why */
    QETEXT_ERR_FORMAT = 3,   /* not a dictionary, of a format that we do not know, or cut short */
    QETEXT_ERR_MEMORY = 4
};

/* How sure an answer is (nSureness); from QETEXT_SUPPLIED on the place is the only one that the text can mean, with the
 * code in front of it when that decided (QETEXT_CODE_DECIDED; then the others are candidates still). */
enum {
    QETEXT_NOTHING = 0,        /* neither prefecture nor city was recognised */
    QETEXT_CITY_NOT_FOUND = 1, /* a prefecture, and behind it no city of it */
    QETEXT_TOWN_NOT_FOUND = 2, /* a city, and behind it no town of it, or nothing: its own code */
    QETEXT_SEVERAL = 3,        /* the candidates, the likeliest one first */
    QETEXT_SUPPLIED = 4,       /* names that the text leaves out were supplied (nSupplied) */
    QETEXT_FOLDED = 5,         /* names are written in another way than the dictionary's (nFoldings) */
    QETEXT_EXACT = 6           /* as the dictionary spells it */
};

/* What the text leaves out and the dictionary supplied (nSupplied). */
enum {
    QETEXT_PREF_SUPPLIED = 1,
    QETEXT_COUNTY_SUPPLIED = 2, /* 余市町: 余市郡余市町 */
    QETEXT_CITY_SUPPLIED = 4,   /* 青葉区 without the city before it */
    QETEXT_WARD_SUPPLIED = 8    /* 札幌市 without the ward behind it */
};

/* In which ways names differ from the dictionary's (nFoldings). */
enum {
    QETEXT_FOLD_WIDTH = 1 << 0,     /* full, half width; capitals */
    QETEXT_FOLD_BLANK = 1 << 1,     /* blanks within the address or in front of it */
    QETEXT_FOLD_DASH = 1 << 2,      /* one dash for another */
    QETEXT_FOLD_NUMBER = 1 << 3,    /* kanji numerals for digits and the other way round */
    QETEXT_FOLD_KE = 1 << 4,        /* ヶ ケ ヵ カ が ガ */
    QETEXT_FOLD_NO = 1 << 5,        /* ノ の 之 乃 */
    QETEXT_FOLD_TSU = 1 << 6,       /* ツ ッ つ っ */
    QETEXT_FOLD_KANJI = 1 << 7,     /* old, new and variant forms; variation selectors */
    QETEXT_FOLD_COMBINING = 1 << 8, /* a kana and its voicing mark as two characters */
    QETEXT_FOLD_REPEAT = 1 << 9,    /* 々 for the character before it */
    QETEXT_FOLD_AZA = 1 << 10,      /* 大字, 字, 小字 put in or left out */
    QETEXT_FOLD_PREF = 1 << 11,     /* a prefecture without its 都, 府, 県 */
    QETEXT_FOLD_STREET = 1 << 12    /* a street of Kyoto before the town */
};

/* What else is to be said of an answer (nRemarks). */
enum {
    QETEXT_CODE_CONTRADICTS = 1, /* the code in front of the address is none of the candidates' */
    QETEXT_CODE_DECIDED = 2,     /* the code in front decided between several candidates */
    QETEXT_OLD_NAME = 4,         /* the place is a superseded one */
    QETEXT_RENEWED = 8,          /* ... and `latest` is the one that replaced it (QETEXT_RENEW) */
    QETEXT_WORDS_BEHIND = 16     /* words stand right behind the town that the dictionary does not know: it may be the
                                    beginning of a longer name */
};

/* What a caller may ask for (nOptions). */
enum {
    QETEXT_RENEW = 1 /* the latest form of old names, too */
};

/* No node, no entry. */
#define QETEXT_NONE 0xFFFFFFFFu

/* One place of the dictionary. Null, and QETEXT_NONE, where it has no such level. Names are spelled as the dictionary
 * has them; a town "" is the city as a whole. */
typedef struct tagQETEXTPLACE {
    char const* pszPref;
    char const* pszCity;
    char const* pszTown;
    char const* pszArea;     /* subdivision: "１〜１９丁目", "上勇知" */
    char const* pszBuilding; /* with floors that have codes: "アエル" */
    char const* pszFloor;    /* "２０階" */
    char const* pszPostCode; /* seven digits; null when the place has none */
    char const* pszOldCode;  /* old code of up to five digits */
    uint32_t nPref;          /* node indices, for CAddrDic::GetAddrNode */
    uint32_t nCity;
    uint32_t nTown;
    uint32_t nArea;
    uint32_t nBuilding;
    uint32_t nFloor;
    uint32_t nEntry; /* entry of the code, for CAddrDic::GetAddrInfo */
} QETEXTPLACE;

/* A part of the text that was given, in bytes; length 0 where the text has no such part. */
typedef struct tagQETEXTSPAN {
    size_t nOffset;
    size_t nLength;
} QETEXTSPAN;

typedef struct tagQETEXTREADING {
    QETEXTPLACE place;  /* the best: with the code that the text's own number, place name or floor asks for */
    QETEXTPLACE latest; /* with QETEXT_RENEWED: the address that replaced it; else empty */
    uint32_t nSureness; /* QETEXT_NOTHING ... QETEXT_EXACT */
    uint32_t nSupplied;
    uint32_t nFoldings;
    uint32_t nRemarks;
    QETEXTSPAN code; /* a postal code in front, as it is written, without 〒 */
    QETEXTSPAN pref;
    QETEXTSPAN city;
    QETEXTSPAN street; /* streets of Kyoto */
    QETEXTSPAN town;
    QETEXTSPAN area; /* the name of a subdivision; numbers stay in the rest */
    QETEXTSPAN building;
    QETEXTSPAN floor;
    QETEXTSPAN rest;               /* behind the last name of the front, blanks skipped, up to the end of the text */
    QETEXTPLACE const* pCandidate; /* all places that the text can mean, `place` first; valid until the next call */
    size_t nCandidate;             /* at least one whenever there is a city */
} QETEXTREADING;

typedef struct tagQETEXT QETEXT;

/* The version of the foldings, which a dictionary's index has to agree with. */
QETEXT_API uint32_t QeTextFoldingVersion(void);

/* Maps a dictionary file. Null on failure; *pnError, unless null, is then one of QETEXT_ERR_xxx. The caller closes it. */
QETEXT_API QETEXT* QeTextOpen(char const* pszFile, int* pnError);

/* A reader over a dictionary that the caller has mapped, and keeps mapped until it is closed. REQUIRES: a well-formed
 * image, aligned to four bytes. */
QETEXT_API QETEXT* QeTextOpenImage(void const* pImage, int* pnError);

/* Null is ignored. */
QETEXT_API void QeTextClose(QETEXT* pText);

/* Reads one text into *pReading. QETEXT_OK whatever was found; QETEXT_ERR_ARGUMENT for null, QETEXT_ERR_MEMORY (the
 * record is then empty). */
QETEXT_API int QeTextRead(QETEXT* pText, char const* pText8, size_t nSize, uint32_t nOptions,
                          QETEXTREADING* pReading);

/* Reads nCount independent texts, quicker than one by one. */
QETEXT_API int QeTextReadBatch(QETEXT* pText, char const* const* ppText8, size_t const* pnSize, size_t nCount,
                               uint32_t nOptions, QETEXTREADING* pReading);

/* Writes the address in the spelling of the dictionary, the rest as it is written, as the engine's own interfaces take
 * it: prefecture, city, town, rest, and a NUL. Returns its length in bytes without the NUL, 0 for null and where no
 * city was found; nothing is written when it does not fit into nBuffer bytes. A street of Kyoto is left out: the
 * engine finds no town behind one. REQUIRES: the reading is of this text. */
QETEXT_API size_t QeTextCanonical(QETEXTREADING const* pReading, char const* pText8, char* pBuffer, size_t nBuffer);

#ifdef __cplusplus
}
#endif

#endif
