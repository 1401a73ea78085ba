// LegacyRandom.h - random dictionaries in files, and random requests to the legacy interface.
//
//   CDicFile const file("a.dic", UpToPageEnd(AnyImage(random).Bytes()));
//   CBlockBytes vRequest = AnyRequest(random, file.image, vLast);
#ifndef QEADRS_TESTS_LIBRARY_LEGACYRANDOM_H
#define QEADRS_TESTS_LIBRARY_LEGACYRANDOM_H

#include "tests/library/LegacyModel.h"
#include "tests/library/RandomWorld.h"

#include <unistd.h>

#include <fstream>

// --- dictionaries in files -----------------------------------------------------------------------------------------

// Names around the sizes at which they are cut or left out, and two that end in two bytes where 60 bytes end.
inline std::vector<std::string> SizedNames() {
    std::vector<std::string> vName = {"ab", "a"};
    for (size_t const n : {19u, 20u, 21u, 59u, 60u, 61u, 70u, 127u, 128u, 129u, 300u})
        vName.push_back(std::string(n - 1, static_cast<char>('c' + n % 20)) + "$");
    std::string const strFront = "aaaaaaaa" SHI + std::string(48, 'k') + KU;
    vName.push_back(strFront);
    vName.push_back(strFront + "m");
    return vName;
}

// Cities in two parts of every class, one's first part and another's second, and the parts as names of their own. A
// marker is found at an even distance from the end.
char const* const TWO_PART_NAMES[] = {
    "aaaaaaaa" SHI "bb" KU,
    "aaaaaaaa" SHI,
    "bb" KU,
    "cc" GUN "bb" CHO,
    "cc" SHIMA "bb" CHO,
    "bb" CHO,
    "cc" GUN "bb" MURA,
    "cc" GUN,
    "cc" AGATA "bb" MURA,
    "bb" MURA,
    "cc" SHIMA "dddd" MURA,
};

// Mostly with several prefectures and cities.
inline CTestImage AnyTree(CRandom& random) {
    static std::vector<std::string> const vName = SizedNames();
    size_t const nLeast = random() % 16 == 0 ? 0 : 40;
    CTestImage image = RandomTree(random);
    while (image.vNode.size() < nLeast) image = RandomTree(random);
    if (random() % 2 == 0) return image;
    for (tagADDRNODE& node : image.vNode)
        if (node.nLevel == LEVEL_CITY && random() % 3 == 0)
            node.nName = image.AddText(OneOf(random, TWO_PART_NAMES), "ヨミ");
        else if (Below(random, 5) == 0)
            node.nName = image.AddText(vName[Below(random, vName.size())], "ヨミ");
    return image;
}

// Codes that fill their field and go beyond it, still in their order.
inline void LengthenCodes(CRandom& random, CTestImage& image) {
    static char const* const apszOldCode[] = {"1000", "10001", "100012"};
    for (tagADDRINFO& info : image.vInfo)
        if (random() % 3 == 0) {
            std::string strCode = image.strArea.c_str() + info.nCode;
            if (random() % 4 == 0) strCode += "2";
            info.nCode = image.AddText(strCode, OneOf(random, apszOldCode));
        }
}

// Two entries exchanged, or a first one that only a search that begins at it meets.
inline void Disorder(CRandom& random, CTestImage& image) {
    if (random() % 2 == 0)
        std::swap(image.vInfo.front(), image.vInfo[Below(random, image.vInfo.size())]);
    else
        image.vInfo.front().nCode = image.AddText("9000001", "90000");
}

// Nodes below the towns without a parent, which are still children.
inline void CutOff(CRandom& random, CTestImage& image) {
    for (tagADDRNODE& node : image.vNode)
        if (node.nLevel > LEVEL_TOWN && random() % 4 == 0) node.nParent = ADDR_NONE;
}

// Among them some with entries out of order, which are not all found, and with a few of the damages of browsing.
inline CTestImage AnyImage(CRandom& random) {
    CTestImage image = AnyTree(random);
    if (random() % 16 != 0) AddEntries(random, image);
    LengthenCodes(random, image);
    if (!image.vInfo.empty() && random() % 4 == 0) Disorder(random, image);
    image.Complete();
    image.AddText("last"); // so that there is a string area
    if (random() % 12 == 0) CutOff(random, image);
    static constexpr size_t anDamages[] = {0, 0, 0, 0, 0, 1, 2, 4};
    for (size_t n = OneOf(random, anDamages); n > 0; --n) Damage(random, image);
    return image;
}

// The image made to end with its last page, by a gap behind the header: what reads on meets another mapping or none.
inline CBlockBytes UpToPageEnd(CBlockBytes vByte) {
    auto const nPage = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    size_t const nGap = (nPage - vByte.size() % nPage) % nPage;
    for (size_t nWord = HDR_NODE_TABLE; nWord <= HDR_OFFICE_INDEX; ++nWord) {
        uint32_t const nOffset = ReadWord(&vByte[4 * nWord]) + static_cast<uint32_t>(nGap);
        std::memcpy(&vByte[4 * nWord], &nOffset, sizeof nOffset);
    }
    vByte.insert(vByte.begin() + HDR_BYTES, nGap, 0);
    return vByte;
}

inline std::string OwnPath(std::string const& strName) {
    return testing::TempDir() + "legacy-sequence-" + std::to_string(getpid()) + "-" + strName;
}

// A file of this process alone, a new one each time: an older one of the name may still be mapped.
class CTempFile {
  public:
    CTempFile(std::string const& strName, CBlockBytes const& vByte) : strPath(OwnPath(strName)), nSize(vByte.size()) {
        unlink(strPath.c_str());
        std::ofstream file(strPath, std::ios::binary);
        file.write(reinterpret_cast<char const*>(vByte.data()), static_cast<std::streamsize>(nSize));
        if (!file.flush()) ADD_FAILURE() << "cannot write " << strPath;
    }
    ~CTempFile() { unlink(strPath.c_str()); }
    CTempFile(CTempFile const&) = delete;
    CTempFile& operator=(CTempFile const&) = delete;

    std::string const strPath;
    size_t const nSize;
};

struct CDicFile : CTempFile {
    CDicFile(std::string const& strName, CBlockBytes const& vByte) : CTempFile(strName, vByte), image(vByte) {}
    CModelImage image;
};

// --- random records ------------------------------------------------------------------------------------------------

// What the caller left in a record: zeros as it should be, or anything.
inline CBlockBytes AnyBytes(CRandom& random, size_t nSize) {
    CBlockBytes vByte(nSize);
    size_t const nPattern = Below(random, 5);
    for (unsigned char& c : vByte) {
        auto const cAny = static_cast<unsigned char>(random());
        if (nPattern == 1) c = 0xFF;
        if (nPattern == 2) c = cAny;
        if (nPattern == 3) c = static_cast<unsigned char>(cAny | 1);
        if (nPattern == 4) c = 'n';
    }
    return vByte;
}

inline void PutText(CBlockBytes& vByte, size_t nOffset, size_t nSize, std::string strText) {
    strText = Cut(strText + '\0', nSize);
    std::copy(strText.begin(), strText.end(), vByte.begin() + static_cast<std::ptrdiff_t>(nOffset));
}

// Codes of the dictionary and their beginnings, spelled in several ways; those of its first and last entry; too long.
inline std::string AnyCodeText(CRandom& random, CModelImage const& image) {
    static char const* const apszOdd[] = {"?",        "*",         "-",     "- -",     "x",
                                          "\x81\xA7", "\x82\x50",  "1?",    "1-0-0-0", "\x82\x51\x82\x4F",
                                          "10000012", "1 0\t0001", "12345", "100000"};
    std::string strCode = AnyCode(random, false);
    if (random() % 3 == 0 && !image.vInfo.empty()) {
        CModelInfo const& info = random() % 2 == 0 ? image.vInfo.front() : image.vInfo.back();
        if (image.Text(info.nCode) != NONE) strCode = image.At(info.nCode);
        strCode.resize(1 + Below(random, strCode.size() + 1));
    }
    if (random() % 10 == 0) strCode = std::string(OneOf(random, CODES)) + "2";
    return random() % 6 == 0 ? OneOf(random, apszOdd) : strCode.c_str();
}

// The second part of a city in two parts and a name that may follow it.
inline std::string AnySecondPart(CRandom& random, CModelImage const& image) {
    CPlaces vCity;
    for (CPlace const n : image.Cities())
        if (image.Name(n) != NONE && FrontPart(image.At(image.Name(n))) != 0) vCity.push_back(n);
    if (vCity.empty()) return AnyText(random, image);
    CPlace const nCity = vCity[Below(random, vCity.size())];
    std::string const strName = image.At(image.Name(nCity));
    CPlaces const vChild = image.Children(nCity);
    CPlace const nTown = vChild.empty() ? NONE : image.Name(vChild[Below(random, vChild.size())]);
    return strName.substr(FrontPart(strName)) + (nTown == NONE ? "" : image.At(nTown));
}

// Up to the text that just fits the query, one byte more, and one that does not end in its field.
inline std::string AnyAddrText(CRandom& random, CModelImage const& image) {
    std::string strText = random() % 8 == 0 ? AnySecondPart(random, image) : AnyText(random, image);
    static constexpr size_t anSize[] = {126, 127, 128, 140, 514};
    if (random() % 10 == 0) strText.resize(std::max(strText.size(), OneOf(random, anSize)), 'z');
    return strText;
}

inline CPlace AnyIndex(CRandom& random, CPlace nLast, CPlace nCount) {
    switch (random() % 32) {
    case 0:
        return -1 - static_cast<CPlace>(random() % 3);
    case 1:
        return static_cast<int16_t>(random());
    case 2:
    case 3:
        return nCount + static_cast<CPlace>(random() % 3);
    default:
        if (random() % 3 == 0) return nLast;
        return static_cast<CPlace>(Below(random, static_cast<size_t>(std::max<CPlace>(nCount, 1))));
    }
}

// Positions in the lists that there are now or were before.
inline void PutIndexes(CRandom& random, CBlockBytes& vRequest, CPlaces const& vLast, CPlace nPrefs) {
    PutShort(vRequest, 6, AnyIndex(random, vLast[0], nPrefs));
    PutShort(vRequest, 8, AnyIndex(random, vLast[1], 3));
    PutShort(vRequest, 10, AnyIndex(random, vLast[2], 2));
}

// Nothing, a code in either field or both, an address, a code beside it, any bytes, or the texts of the last request.
inline CBlockBytes AnyRequest(CRandom& random, CModelImage const& image, CBlockBytes const& vLast) {
    CBlockBytes vRequest = AnyBytes(random, REQUEST_SIZE);
    size_t const nKind = Below(random, 20);
    bool const bCode = nKind >= 5 && nKind < 11, bAddr = nKind >= 10 && nKind < 15;
    PutText(vRequest, ADDR_TEXT, 514, bAddr ? AnyAddrText(random, image) : "");
    PutText(vRequest, SHORT_CODE, 6, "");
    PutText(vRequest, LONG_CODE, 8, "");
    size_t const nFields = Below(random, 4);
    if (bCode && nFields < 2) PutText(vRequest, SHORT_CODE, 6, AnyCodeText(random, image));
    if (bCode && nFields > 0) PutText(vRequest, LONG_CODE, 8, AnyCodeText(random, image));
    if (bCode && random() % 32 == 0)
        for (size_t n = SHORT_CODE; n < REQUEST_SIZE; ++n) vRequest[n] = static_cast<unsigned char>(random());
    bool const bLast = nKind >= 15 && !vLast.empty();
    if (bLast) std::copy(vLast.begin() + ADDR_TEXT, vLast.end(), vRequest.begin() + ADDR_TEXT);
    return vRequest;
}

#endif
