// RandomWorld.h - small random dictionaries, damaged ones among them, and random questions to them.
//
//   CRandom random = Seeded(20261201);
//   CRandomWorld const world(random);             // read-only, before a page that cannot be touched
//   std::string strText = AnyText(random, world.model);
#ifndef QEADRS_TESTS_LIBRARY_RANDOMWORLD_H
#define QEADRS_TESTS_LIBRARY_RANDOMWORLD_H

#include "tests/library/BrowseModel.h"
#include "tests/support/GuardedBytes.h"

#include <cstdio>
#include <random>

using CRandom = std::mt19937;

// Fixed, and printed so that a failure can be told from that of another test.
inline CRandom Seeded(unsigned nSeed) {
    std::printf("seed %u\n", nSeed);
    return CRandom(nSeed);
}

// The same on every machine, unlike std::uniform_int_distribution.
inline size_t Below(CRandom& random, size_t n) {
    return random() % n;
}

template <typename T, size_t N>
T const& OneOf(CRandom& random, T const (&a)[N]) {
    return a[Below(random, N)];
}

// --- random dictionaries -------------------------------------------------------------------------------------------

// Names that repeat, begin alike and are empty; the last five cities end in two bytes.
char const* const PREF_NAMES[] = {"東京都", "北海道", "広島県", "鹿児島県", "無県", "東京都市", "東京都", ""};
char const* const CITY_NAMES[] = {"府中市",
                                  "府中",
                                  "港区",
                                  "中央区",
                                  "府中市北",
                                  "府",
                                  "東区",
                                  "",
                                  "aaaaaaaa" SHI "b" KU,
                                  "b" KU,
                                  "cccccccc" GUN "b" CHO,
                                  "b" CHO,
                                  "dd" MURA};
char const* const TOWN_NAMES[] = {"", "本町", "本", "丸の内", "元町", "本町北", "b"};
char const* const LOW_NAMES[] = {"", "１丁目", "海ビル", "２階", "会社"};
char const* const CODES[] = {"1000001", "1000002", "1010001", "1010002", "2000001"};
char const* const OLD_CODES[] = {"100", "101", "1", "", "20"};

inline void AddChildren(CRandom& random, CTestImage& image, std::vector<uint32_t>& vParent, size_t nMost,
                        std::function<void(uint32_t)> const& Add) {
    auto const nFirst = static_cast<uint32_t>(image.vNode.size());
    for (uint32_t const nParent : vParent)
        for (size_t n = Below(random, nMost + 1); n > 0; --n) Add(nParent);
    vParent.clear();
    for (auto n = nFirst; n < image.vNode.size(); ++n) vParent.push_back(n);
}

inline CTestImage RandomTree(CRandom& random) {
    CTestImage image;
    std::vector<uint32_t> vParent = {ADDR_NONE};
    AddChildren(random, image, vParent, 5,
                [&](uint32_t n) { image.AddNode(LEVEL_PREF, n, OneOf(random, PREF_NAMES), "ヨミ"); });
    AddChildren(random, image, vParent, 4,
                [&](uint32_t n) { image.AddNode(LEVEL_CITY, n, OneOf(random, CITY_NAMES), "ヨミ"); });
    AddChildren(random, image, vParent, 3,
                [&](uint32_t n) { image.AddNode(LEVEL_TOWN, n, OneOf(random, TOWN_NAMES), "ヨミ"); });
    for (int nDepth = 0; nDepth < 2; ++nDepth)
        AddChildren(random, image, vParent, 2, [&](uint32_t n) {
            auto const nLevel = static_cast<uint8_t>(3 + Below(random, 5));
            image.AddNode(nLevel, n, OneOf(random, LOW_NAMES), "ヨミ");
        });
    return image;
}

// Entries for most nodes, those without a town or city included, in the order of their codes.
inline void AddEntries(CRandom& random, CTestImage& image) {
    std::vector<std::pair<std::string, uint32_t>> vEntry;
    for (uint32_t nNode = 0; nNode < image.vNode.size(); ++nNode) {
        size_t const nPercent = image.vNode[nNode].nLevel < LEVEL_TOWN ? 15 : 75;
        for (int n = 0; n < 2; ++n)
            if (Below(random, 100) < nPercent) vEntry.emplace_back(OneOf(random, CODES), nNode);
    }
    std::stable_sort(vEntry.begin(), vEntry.end(),
                     [](auto const& left, auto const& right) { return left.first < right.first; });
    for (auto const& entry : vEntry)
        if (Below(random, 4) == 0)
            image.AddSuperseded(entry.second, entry.first, OneOf(random, OLD_CODES), 0);
        else
            image.AddInfo(entry.second, entry.first, OneOf(random, OLD_CODES));
}

// A number that may be anything, but often nearly makes sense.
inline uint32_t AnyWord(CRandom& random, size_t nRecords) {
    switch (random() % 6) {
    case 0:
        return static_cast<uint32_t>(random());
    case 1:
        return ADDR_NONE;
    case 2:
        return static_cast<uint32_t>(nRecords);
    default:
        return static_cast<uint32_t>(Below(random, nRecords + 3));
    }
}

// Parents stay in front of their children, so that no way up goes in a circle: what comes of one is nobody's promise.
inline void DamageNode(CRandom& random, CTestImage& image) {
    size_t const nNodes = image.vNode.size();
    size_t const nNode = Below(random, random() % 2 == 0 ? nNodes : std::min<size_t>(nNodes, 15)); // the upper levels
    tagADDRNODE& node = image.vNode[nNode];
    switch (random() % 7) {
    case 0:
        node.nLevel = static_cast<uint8_t>(random() % 9);
        break;
    case 1:
    case 2:
        node.nName = AnyWord(random, image.strArea.size());
        break;
    case 3:
        node.nInfo = AnyWord(random, image.vInfo.size());
        break;
    case 4:
        node.nParent =
            static_cast<uint32_t>(random() % 2 == 0 ? ADDR_NONE - Below(random, 3) : Below(random, nNode + 1));
        if (node.nParent == nNode) node.nParent = static_cast<uint32_t>(nNodes);
        break;
    case 5:
        node.nChildCount = AnyWord(random, nNodes);
        break;
    default:
        node.nFirstChild = AnyWord(random, nNodes);
    }
}

// Cities whose children begin in the node table and end behind it.
inline void CutChildren(CTestImage& image) {
    for (tagADDRNODE& node : image.vNode)
        if (node.nLevel == LEVEL_CITY && node.nChildCount == 2)
            node.nFirstChild = static_cast<uint32_t>(image.vNode.size() - 1);
}

inline void Damage(CRandom& random, CTestImage& image) {
    uint32_t CTestImage::*const apnWord[] = {&CTestImage::nFirstPref, &CTestImage::nPrefCount,
                                             &CTestImage::nFirstCity, &CTestImage::nFirstTown,
                                             &CTestImage::nTownCount};
    switch (random() % 7) {
    case 0:
        image.*OneOf(random, apnWord) = AnyWord(random, image.vNode.size());
        break;
    case 1:
        if (!image.vCityIndex.empty())
            image.vCityIndex[Below(random, image.vCityIndex.size())] = AnyWord(random, image.vNode.size());
        break;
    case 2:
        if (image.vInfo.empty()) break;
        if (random() % 2 == 0)
            image.vInfo[Below(random, image.vInfo.size())].nCode = AnyWord(random, image.strArea.size());
        else
            image.vInfo[Below(random, image.vInfo.size())].nNode = AnyWord(random, image.vNode.size());
        break;
    case 3:
        CutChildren(image);
        break;
    default:
        if (!image.vNode.empty()) DamageNode(random, image);
    }
}

// A dictionary before a page that cannot be touched, and what the model knows of it. Two of three are damaged.
struct CRandomWorld {
    explicit CRandomWorld(CRandom& random) : CRandomWorld(Make(random)) {}
    explicit CRandomWorld(CBlockBytes const& vByte) : bytes(vByte), model(vByte) {}

    static CBlockBytes Make(CRandom& random) {
        CTestImage image = RandomTree(random);
        AddEntries(random, image);
        image.Complete();
        image.AddText("last"); // so that there is a string area
        static constexpr size_t anDamages[] = {0, 0, 0, 1, 2, 2, 3, 4, 6};
        for (size_t n = OneOf(random, anDamages); n > 0; --n) Damage(random, image);
        return image.Bytes();
    }

    CGuardedBytes bytes;
    CModelImage model;
};

// --- random questions ----------------------------------------------------------------------------------------------

inline std::string AnyName(CRandom& random, CModelImage const& image) {
    if (image.vNode.empty()) return "x";
    CPlace const nName = image.Name(static_cast<CPlace>(Below(random, image.vNode.size())));
    return nName == NONE ? "" : image.At(nName);
}

// The names on the way down to a node, with or without the prefecture's.
inline std::string AnyPath(CRandom& random, CModelImage const& image) {
    std::string strText;
    if (image.vNode.empty()) return strText;
    bool const bPref = random() % 2 == 0;
    for (auto n = static_cast<CPlace>(Below(random, image.vNode.size())); image.IsNode(n); n = image.Node(n).nParent)
        if (image.Name(n) != NONE && (bPref || image.Node(n).nLevel != LEVEL_PREF))
            strText = image.At(image.Name(n)) + strText;
    return strText;
}

inline std::string AnyText(CRandom& random, CModelImage const& image) {
    std::string strText = random() % 4 == 0 ? AnyName(random, image) : AnyPath(random, image);
    switch (random() % 8) {
    case 0:
        return strText += AnyName(random, image);
    case 1:
        return strText.substr(0, Below(random, strText.size() + 1));
    case 2:
        return OneOf(random, CITY_NAMES);
    case 3:
        return strText += "1-2";
    default:
        return strText;
    }
}

inline std::string AnyCode(CRandom& random, bool bOld) {
    std::string str = bOld ? OneOf(random, OLD_CODES) : OneOf(random, CODES);
    if (!bOld && random() % 2 == 0) str.resize(Below(random, str.size() + 1));
    if (!bOld && random() % 4 == 0) str.insert(std::min<size_t>(str.size(), 3), "-");
    return random() % 8 == 0 ? "9" : str;
}

// A position in a list, often one that holds a node, or outside.
inline unsigned short AnyNo(CRandom& random, CPlaces const& vList) {
    auto const nNo = static_cast<unsigned short>(Below(random, vList.size() + 1));
    switch (random() % 8) {
    case 0:
        return static_cast<unsigned short>(vList.size());
    case 1:
        return static_cast<unsigned short>(random());
    case 2:
        return nNo;
    default:
        auto const pNode = std::find_if(vList.begin() + nNo, vList.end(), [](CPlace n) { return n != NONE; });
        return static_cast<unsigned short>(pNode == vList.end() ? nNo : pNode - vList.begin());
    }
}

#endif
