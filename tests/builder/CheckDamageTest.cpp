// Damage that is always refused: the small world cut anywhere, and any flipped bit.
#include "builder/ImageWriter.h"
#include "tests/builder/CheckMutants.h"

#include <gmock/gmock.h>

using qe::CheckDictionary;

TEST(CheckDamage, RefusesTheSmallWorldCutAtEveryByte) {
    for (size_t nLength = 0; nLength < SmallWorld().size(); ++nLength) {
        CImageBytes vByte(SmallWorld().begin(), SmallWorld().begin() + static_cast<std::ptrdiff_t>(nLength));
        CTrial const trial("cut to " + std::to_string(nLength) + " bytes");
        EXPECT_FALSE(CheckDictionary(vByte).IsSound()) << nLength;
        if (nLength < HDR_BYTES) continue;
        SetWordAt(vByte, 4 * HDR_FILE_SIZE, static_cast<uint32_t>(nLength)); // the rest of the header still says more
        qe::RepairChecksum(vByte);
        EXPECT_FALSE(CheckDictionary(vByte).IsSound()) << nLength << " bytes, as its header says";
    }
}

TEST(CheckDamage, RefusesEveryFlippedBitAndNamesIt) {
    CImageBytes vByte = SmallWorld();
    for (size_t nByte = 0; nByte < vByte.size(); ++nByte)
        for (unsigned nBit = 0; nBit < 8; ++nBit) {
            auto const Flip = [&] { vByte[nByte] = static_cast<unsigned char>(vByte[nByte] ^ (1u << nBit)); };
            Flip();
            std::string const strWhat = "bit " + std::to_string(nBit) + " of byte " + std::to_string(nByte);
            CTrial const trial(strWhat);
            ASSERT_THAT(LinesOf(vByte),
                        testing::Contains("checksum: header word 4 is wrong, as if " + strWhat + " were flipped"));
            Flip();
        }
}

TEST(CheckDamage, AFileOfAnotherKindHasNoChecksumToSpeakOf) {
    CImageBytes vByte = SmallWorld();
    vByte[0] = vByte[1] = 'x';
    EXPECT_THAT(LinesOf(vByte), testing::ElementsAre("file: file is no dictionary of ours"));
}
