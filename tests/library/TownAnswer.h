// TownAnswer.h - what GetAtTown tells of an address, in the caller's fields.
#ifndef QEADRS_TESTS_LIBRARY_TOWNANSWER_H
#define QEADRS_TESTS_LIBRARY_TOWNANSWER_H

#include "tests/library/ListsWorld.h"

// The caller's fields, in the sizes of the legacy records unless a test wants others. Each stands before a page that
// cannot be touched.
struct CFields {
    CTextField town, detail, code5, code7, kind;

    explicit CFields(size_t nDetail = 128, size_t nCode7 = 7, size_t nTown = 60, size_t nCode5 = 5,
                     CGuardedBytes::EPlace nPlace = CGuardedBytes::EndOfPage)
        : town(nTown, nPlace),
          detail(nDetail, nPlace),
          code5(nCode5, nPlace),
          code7(nCode7, nPlace),
          kind(1, nPlace) {}

    bool Ask(CAddrDic& dic, int nIndex) {
        for (CTextField const* p : {&town, &detail, &code5, &code7, &kind}) p->Fill();
        return dic.GetAtTown(nIndex, town.Data(), town.Size(), detail.Data(), detail.Size(), code5.Data(),
                             code5.Size(), code7.Data(), code7.Size(), kind.Data());
    }

    bool AreUntouched() const {
        return town.IsUntouched() && detail.IsUntouched() && code5.IsUntouched() && code7.IsUntouched() &&
               kind.IsUntouched();
    }

    // "town/detail/kind" and "code/old code"
    std::string Texts() const {
        return town.Text() + "/" + detail.Text() + "/" + std::to_string(static_cast<int>(*kind.Data()));
    }
    std::string Codes() const { return code7.Text() + "/" + code5.Text(); }
};

inline std::string TextsAt(CAddrDic& dic, int nIndex) {
    CFields fields;
    EXPECT_TRUE(fields.Ask(dic, nIndex));
    return fields.Texts();
}

inline std::string CodesAt(CAddrDic& dic, int nIndex) {
    CFields fields;
    EXPECT_TRUE(fields.Ask(dic, nIndex));
    return fields.Codes();
}

inline void ExpectNothingAt(CAddrDic& dic, int nIndex) {
    CFields fields;
    EXPECT_FALSE(fields.Ask(dic, nIndex)) << nIndex;
    EXPECT_EQ(fields.Texts(), "//0") << nIndex;
    EXPECT_EQ(fields.Codes(), "/") << nIndex;
}

// What lies below a city, from the top: node 0 is the prefecture, 1 the city, 2 the first of these.
using CPath = std::vector<std::pair<int, std::string>>;

inline CTestImage ImageOf(CPath const& path) {
    CTestImage image;
    image.AddNode(LEVEL_PREF, ADDR_NONE, "P");
    image.AddNode(LEVEL_CITY, 0, "C");
    for (auto const& step : path)
        image.AddNode(static_cast<uint8_t>(step.first), static_cast<uint32_t>(image.vNode.size()) - 1, step.second);
    auto const nLast = static_cast<uint32_t>(image.vNode.size()) - 1;
    image.vNode[nLast].nInfo = image.AddInfo(nLast, "1000001", "100");
    return image;
}

// A dictionary whose town list holds its last node alone.
struct CLastDic : CListsDic {
    explicit CLastDic(CTestImage const& image) : CListsDic(image) {
        Towns() = {Entry(static_cast<uint32_t>(image.vNode.size()) - 1)};
    }
};

inline std::string Told(CTestImage const& image) {
    CLastDic dic(image);
    return TextsAt(dic, 0);
}
inline std::string Told(CPath const& path) {
    return Told(ImageOf(path));
}

inline std::string CodesIn(CTestImage const& image) {
    CLastDic dic(image);
    return CodesAt(dic, 0);
}

#endif
