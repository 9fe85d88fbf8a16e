#include "transcode/codec_table.h"

#include <gtest/gtest.h>

#include "transcode_samples.h"

using namespace samples;

TEST(CodecTable, PassesTrueSizesToDecodersAndTiledLevelsToEncoders) {
    // Digests of levels of 24 x 12, 12 x 6, 6 x 3, 3 x 1 and 1 x 1 in two layers of six faces; `encoded` also of one level of
    // 32 x 16. They were taken when each level agreed with its codec called alone.
    const struct {
        CompressedFormatId format;
        std::uint64_t decoded, encoded;
    } rows[] = {
        // clang-format off
        // format           decoded             encoded
        {eFmtMOKTC2bppRGB,  0x76958d98acb01dfa, 0x52d4f133c6a60385},
        {eFmtMOKTC2bppRGBA, 0x76958d98acb01dfa, 0x52d4f133c6a60385},
        {eFmtMOKTC4bppRGB,  0x2125bb00e2aada84, 0xa103d828edfc68ba},
        {eFmtMOKTC4bppRGBA, 0x2125bb00e2aada84, 0xa103d828edfc68ba},
        {eFmtMOKTCII2bpp,   0x3771ac819db00353, 0xd876e361d7358f65},
        {eFmtMOKTCII4bpp,   0xac16d6c401655e28, 0x6e382176b7abc0d1},
        {eFmtETC1,          0x7a0ad27a6f52b702, 0x2aec63967e44d0a5},
        {eFmtUYVY,          0x37564e8152142df1, 0xf580ecc4b706bf26},
        {eFmtYUY2,          0x61ef3e3e0a748662, 0xf2e8bd0a0e757720},
        {eFmtBW1bpp,        0xca6ac866f23c9695, 0x7dcdb5c459755eef},
        // clang-format on
    };
    constexpr Shape shape{24, 12, 1, 5, 2, 6};
    for (const auto& row : rows) {
        CMOKTexture decoded = textureOf(row.format, shape), encoded = textureOf(PixelTypeRGBA8, shape);
        EXPECT_TRUE(Transcode(decoded, PixelTypeRGBA8, eVarUByteNorm, eColourSpaceLinear));
        EXPECT_EQ(testimages::digest(bytesOf(decoded)), row.decoded) << row.format;
        CMOKTexture whole = textureOf(PixelTypeRGBA8, {32, 16});
        EXPECT_TRUE(Transcode(whole, row.format, eVarUByteNorm, eColourSpaceLinear, eCompressorQuality0)) << row.format;
        Transcode(encoded, row.format, eVarUByteNorm, eColourSpaceLinear, eCompressorQuality0);
        Bytes both = bytesOf(encoded);
        both.insert(both.end(), TextureInternals::data(whole), TextureInternals::data(whole) + TextureInternals::dataSize(whole));
        EXPECT_EQ(testimages::digest(both), row.encoded) << row.format;
    }
}

TEST(CodecTable, SecondGenerationGetsNoAlphaFlag) {
    EXPECT_EQ(GetFormatInfo(eFmtMOKTCII2bpp).codecVariant, eMOKTCSecondGeneration);
    EXPECT_EQ(GetFormatInfo(eFmtMOKTCII4bpp).codecVariant, eMOKTCSecondGeneration);
}

TEST(CodecTable, HasTheDecodersAndEncodersThatTheFormatTableStates) {
    for (std::uint64_t id = 0; id <= eFmtUnknown; ++id) {
        const FormatInfo& format = GetFormatInfo(id);
        EXPECT_EQ(levelCodec(format.codec).decode != nullptr, format.hasDecoder) << format.name;
        EXPECT_EQ(levelCodec(format.codec).encode != nullptr, format.hasEncoder) << format.name;
    }
}
