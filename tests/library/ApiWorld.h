// ApiWorld.h - the postal address API over an image in memory, and its result blocks as bytes.
#ifndef QEADRS_TESTS_LIBRARY_APIWORLD_H
#define QEADRS_TESTS_LIBRARY_APIWORLD_H

#include "api/Pstexec.h"
#include "api/PstexecState.h"
#include "tests/support/TestImage.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using CBlockBytes = std::vector<unsigned char>;

// Little-endian integers and texts, one behind the other.
inline void PutNumber(CBlockBytes& vByte, size_t n, int nBytes) {
    for (; nBytes > 0; --nBytes, n >>= 8) vByte.push_back(static_cast<unsigned char>(n & 0xFF));
}
inline void PutText(CBlockBytes& vByte, std::string const& str) {
    vByte.insert(vByte.end(), str.begin(), str.end());
}

// Binds the API's dictionary to an image without a file, and puts everything back at the end of the test.
class CApi : public testing::Test {
  protected:
    void Bind(CTestImage const& image) {
        m_vByte = image.Bytes();
        dic.SetDictionary(m_vByte.data());
    }
    void TearDown() override { dic.SetDictionary(nullptr); }

    // What is in a block, which is freed.
    static CBlockBytes Take(HGLOBAL h) {
        auto const* const p = static_cast<unsigned char const*>(GlobalLock(h));
        if (p == nullptr) {
            ADD_FAILURE() << "not a block";
            return {};
        }
        CBlockBytes const vByte(p, p + GlobalSize(h));
        EXPECT_EQ(GlobalUnlock(h), 0) << "the library must not leave it locked";
        EXPECT_EQ(GlobalFree(h), nullptr);
        return vByte;
    }

    // A value for *phResult that no call makes.
    static HGLOBAL Untouched() {
        static char c;
        return &c;
    }

  private:
    std::vector<unsigned char> m_vByte;
};

#endif
