#include "transcode/codec_table.h"

#include <gtest/gtest.h>

#include "moktc/moktc.h"
#include "transcode_samples.h"

using namespace samples;

TEST(CodecTable, PassesTrueSizesToDecodersAndTiledLevelsToEncoders) {
    // Digests of levels of 24 x 12, 12 x 6, 6 x 3, 3 x 1 and 1 x 1 in two members of six faces, to encode with one of
    // 32 x 16 behind. They were taken when each level
    // agreed with its codec called alone, in the true size to decode and repeated up to the block to encode.
    const struct {
        CompressedFormatId format;
        std::uint64_t decoded, encoded;
    } rows[] = {
        // clang-format off
        {eFmtMOKTC2bppRGB, 0x76958d98acb01dfa, 0x52d4f133c6a60385}, {eFmtMOKTC2bppRGBA, 0x76958d98acb01dfa, 0x52d4f133c6a60385},
        {eFmtMOKTC4bppRGB, 0x2125bb00e2aada84, 0xa103d828edfc68ba}, {eFmtMOKTC4bppRGBA, 0x2125bb00e2aada84, 0xa103d828edfc68ba},
        {eFmtETC1, 0x7a0ad27a6f52b702, 0x2aec63967e44d0a5}, {eFmtUYVY, 0x37564e8152142df1, 0xf580ecc4b706bf26},
        {eFmtYUY2, 0x61ef3e3e0a748662, 0xf2e8bd0a0e757720}, {eFmtBW1bpp, 0xca6ac866f23c9695, 0x7dcdb5c459755eef},
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

TEST(CodecTable, SecondGenerationGetsNoAlphaFlagAndLevelsOfAnySize) {
    const struct {
        CompressedFormatId format;
        std::uint32_t blockWidth;
        std::uint64_t decoded;  // digest, as above
    } rows[] = {{eFmtMOKTCII2bpp, 8, 0x3771ac819db00353}, {eFmtMOKTCII4bpp, 4, 0xac16d6c401655e28}};
    for (const auto& [format, blockWidth, digest] : rows) {
        CMOKTexture decoded = textureOf(format, {24, 12, 1, 5, 2, 6});
        EXPECT_TRUE(Transcode(decoded, PixelTypeRGBA8, eVarUByteNorm, eColourSpaceLinear));
        EXPECT_EQ(testimages::digest(bytesOf(decoded)), digest) << format;
        CMOKTexture whole = textureOf(PixelTypeRGBA8, {24, 12, 1, 1, 2});
        EXPECT_TRUE(Transcode(whole, format, eVarUByteNorm, eColourSpaceLinear, eCompressorQuality0));

        EXPECT_EQ(GetFormatInfo(format).codecVariant, eMOKTCSecondGeneration);
        const CMOKTexture source = textureOf(PixelTypeRGBA8, {24, 12, 1, 5, 1, 2});
        CMOKTexture encoded = source;  // level 1 is told without its padding
        EXPECT_FALSE(Transcode(encoded, format, eVarUByteNorm, eColourSpaceLinear, eCompressorQuality1)) << format;
        for (std::uint32_t level = 0; level < 5; ++level) {
            const Bytes pixels = levelOf(source, level, 0, 1), expected = levelOf(encoded, level, 0, 1);
            const std::uint32_t width = source.getWidth(level), height = source.getHeight(level);
            const std::uint32_t raisedWidth = std::max(width, blockWidth), raisedHeight = std::max(height, 4u);
            Bytes repeated, blocks(expected.size());
            for (std::uint32_t i = 0; i < raisedWidth * raisedHeight * 4; ++i)
                repeated.push_back(pixels[((i / 4 / raisedWidth % height) * width + i / 4 % raisedWidth % width) * 4 + i % 4]);
            CompressMOKTC(repeated.data(), blocks.data(), &raisedWidth, &raisedHeight, false, format == eFmtMOKTCII2bpp, 1, 1);
            EXPECT_EQ(blocks, expected) << format << ' ' << level;
        }
    }
}

TEST(CodecTable, HasTheDecodersAndEncodersThatTheFormatTableStates) {
    for (std::uint64_t id = 0; id <= eFmtUnknown; ++id) {
        const FormatInfo& format = GetFormatInfo(id);
        EXPECT_EQ(levelCodec(format.codec).decode != nullptr, format.hasDecoder) << format.name;
        EXPECT_EQ(levelCodec(format.codec).encode != nullptr, format.hasEncoder) << format.name;
    }
}
