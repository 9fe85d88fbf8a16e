#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "dxtn/dxtn.h"
#include "transcode/stages.h"
#include "transcode_samples.h"

using namespace samples;

namespace {

bool isInForm(const CMOKTexture& texture, PixelType format, EMOKTVariableType channelType, EMOKTColourSpace colourSpace) {
    return texture.getPixelType() == format && texture.getChannelType() == channelType && texture.getColourSpace() == colourSpace;
}

/// What the encoder makes of one slice of RGBA8, repeated up to 4 by 4 where it is smaller.
Bytes encodedDXTn(const Bytes& pixels, std::uint32_t width, std::uint32_t height, DXTMode mode) {
    const std::uint32_t paddedWidth = std::max(width, 4u), paddedHeight = std::max(height, 4u);
    Bytes padded(std::size_t{paddedWidth} * paddedHeight * 4);
    for (std::size_t i = 0; i < padded.size() / 4; ++i)
        std::memcpy(&padded[i * 4], &pixels[(i / paddedWidth % height * width + i % paddedWidth % width) * 4], 4);
    Bytes blocks(padded.size() / (mode == 1 ? 8 : 4));
    EXPECT_EQ(CompressDXTn(padded.data(), blocks.data(), &paddedWidth, &paddedHeight, &mode), blocks.size());
    return blocks;
}

constexpr PixelType rgb565('r', 'g', 'b', 0, 5, 6, 5, 0), oneBitGrey('l', 0, 0, 0, 1, 0, 0, 0);

}  // namespace

TEST(Transcode, ConvertsOnlyIfTheFormatDiffers) {
    // A layout with an error converts to zeros, so what is left of the pixels tells whether they were touched.
    const PixelType twiceRed('r', 'r', 0, 0, 8, 8, 0, 0), fourReds('r', 'r', 'r', 'r', 8, 8, 8, 8);
    constexpr auto norm = eVarUByteNorm;
    constexpr auto linear = eColourSpaceLinear;
    const struct {
        PixelType source, target;
        EMOKTVariableType channelType;
        EMOKTColourSpace colourSpace;
        bool dither, touched;
    } cases[] = {
        // clang-format off
        {twiceRed, twiceRed, norm, linear, false, false}, {twiceRed, twiceRed, norm, linear, true, true},
        {fourReds, fourReds, norm, linear, true, false},  // 32 bits are never dithered
        {twiceRed, fourReds, norm, linear, false, true}, {twiceRed, twiceRed, eVarUByte, linear, false, true},
        {twiceRed, twiceRed, norm, eColourSpaceSRGB, false, true},
        // clang-format on
    };
    for (const auto& c : cases) {
        CMOKTexture texture = textureOf(c.source, {4, 3, 1, 2});
        const Bytes before = bytesOf(texture);
        EXPECT_TRUE(Transcode(texture, c.target, c.channelType, c.colourSpace, eCompressorQuality0, c.dither));
        EXPECT_TRUE(isInForm(texture, c.target, c.channelType, c.colourSpace));
        EXPECT_EQ(bytesOf(texture), c.touched ? Bytes(texture.getDataSize()) : before);
    }
}

TEST(Transcode, RefusedTexturesStayUnchanged) {
    CMOKTexture lacking = textureOf(PixelTypeRGBA8, {8, 8});
    lacking.setWidth(9);
    const struct {
        CMOKTexture texture;
        PixelType target;
        bool dither = false;
    } cases[] = {
        // clang-format off
        {CMOKTexture(), PixelTypeRGBA8}, {lacking, PixelTypeRGBA16}, {textureOf(eFmtDXT1, {8, 8}), eFmtUnknown},
        {textureOf(eFmtDXT1, {8, 8}), PixelType(0xFFFFFFFFu)},
        // One bit a pixel fits; the bits of RGBA8 do not, wherever it stands on the road.
        {textureOf(oneBitGrey, {16384, 8192}), PixelTypeRGBA8}, {textureOf(oneBitGrey, {16384, 8192}), eFmtDXT1},
        {textureOf(oneBitGrey, {16384, 8192}), oneBitGrey, true},
        {textureOf(eFmtBW1bpp, {16384, 8192}), PixelType('l', 0, 0, 0, 8, 0, 0, 0)},
        // clang-format on
    };
    for (const auto& c : cases) {
        CMOKTexture texture = c.texture;
        EXPECT_FALSE(Transcode(texture, c.target, eVarUByteNorm, eColourSpaceSRGB, eCompressorQuality0, c.dither));
        EXPECT_TRUE(isInForm(texture, c.texture.getPixelType(), eVarUByteNorm, eColourSpaceLinear));
        EXPECT_EQ(bytesOf(texture), bytesOf(c.texture));
    }
}

TEST(Transcode, CompressedTargetsReportWhatTheirEncodersWrote) {
    const struct {
        PixelType target;
        Shape shape;
        bool result;
        std::size_t size;
        DXTMode encodedBy;  // 0: nothing is written
    } cases[] = {
        // clang-format off
        {eFmtDXT1, {1, 1}, true, 8, 1}, {eFmtDXT2, {4, 4}, true, 16, 2}, {eFmtDXT3, {2, 8}, true, 32, 3},
        {eFmtDXT4, {4, 4}, true, 16, 4}, {eFmtDXT1, {6, 4}, false, 16, 0}, {eFmtDXT5, {4, 4, 2}, false, 32, 5},
        {eFmtEACRG11S, {5, 3}, false, 15, 0}, {eFmtBC7, {4, 4}, true, 0, 0},
        // clang-format on
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.target.id);
        CMOKTexture texture = textureOf(PixelTypeRGBA8, c.shape, eColourSpaceSRGB);
        Bytes expected(c.size);
        if (c.encodedBy != 0) {  // of a depth, the first slice alone
            const Bytes blocks = encodedDXTn(bytesOf(texture), c.shape.width, c.shape.height, c.encodedBy);
            std::copy(blocks.begin(), blocks.end(), expected.begin());
        }
        EXPECT_EQ(Transcode(texture, c.target, eVarFloat, eColourSpaceSRGB, eCompressorQuality0, false), c.result);
        EXPECT_TRUE(isInForm(texture, c.target, eVarUByteNorm, eColourSpaceSRGB));
        EXPECT_EQ(bytesOf(texture), expected);
    }
}

TEST(Transcode, SmallLevelsAreTiledForTheEncoderAndLostByTheDecoder) {
    const Shape shape{16, 8, 1, 5, 2, 6};
    CMOKTexture source = textureOf(PixelTypeRGBA8, shape);
    source.setBorder(1, 2, 3);
    CMOKTexture encoded = source;
    ASSERT_TRUE(Transcode(encoded, eFmtDXT5, eVarUByteNorm, eColourSpaceLinear));
    EXPECT_TRUE(isInForm(encoded, eFmtDXT5, eVarUByteNorm, eColourSpaceLinear));
    CMOKTexture decoded = encoded, again = encoded;
    ASSERT_TRUE(Transcode(decoded, PixelTypeRGBA8, eVarUByteNorm, eColourSpaceLinear));
    ASSERT_TRUE(Transcode(again, eFmtDXT5, eVarUByteNorm, eColourSpaceLinear));
    unsigned int x, y, z;
    decoded.getBorder(x, y, z);
    EXPECT_TRUE(z == 3 && decoded.isPreMultiplied());

    const DXTMode mode = 5;
    for (std::uint32_t image = 0; image < shape.levels * shape.members * shape.faces; ++image) {
        SCOPED_TRACE(image);
        const std::uint32_t level = image % 5, face = image / 5 % 6, member = image / 30;
        const std::uint32_t width = source.getWidth(level), height = source.getHeight(level);
        const Bytes blocks = levelOf(encoded, level, member, face);
        EXPECT_EQ(blocks, encodedDXTn(levelOf(source, level, member, face), width, height, mode));
        Bytes pixels(std::size_t{width} * height * 4);
        if (height >= 4) DecompressDXTn(blocks.data(), pixels.data(), &width, &height, &mode);
        EXPECT_EQ(levelOf(decoded, level, member, face), pixels);
        EXPECT_EQ(levelOf(again, level, member, face), encodedDXTn(pixels, width, height, mode));
    }
}

TEST(Transcode, DecodedDataIsLinearWhateverTheTextureDeclares) {
    CMOKTexture declared = textureOf(eFmtDXT1, {8, 8}, eColourSpaceSRGB), curved = textureOf(eFmtDXT1, {8, 8});
    ASSERT_TRUE(Transcode(curved, PixelTypeRGBA8, eVarUByteNorm, eColourSpaceLinear));
    const Bytes linear = bytesOf(curved);
    ASSERT_TRUE(Transcode(curved, PixelTypeRGBA8, eVarUByteNorm, eColourSpaceSRGB));
    ASSERT_TRUE(Transcode(declared, PixelTypeRGBA8, eVarUByteNorm, eColourSpaceSRGB));
    EXPECT_EQ(bytesOf(declared), bytesOf(curved));
    EXPECT_NE(bytesOf(declared), linear);
}

TEST(Transcode, GreySourceFollowsTheTarget) {
    const std::pair<PixelType, EChannelName> rows[] = {
        // clang-format off
        {{'l', 'a', 0, 0, 4, 4, 0, 0}, eChannelLuminance}, {{'l', 'g', 'r', 0, 5, 6, 5, 0}, eChannelLuminance},
        {{'i', 'l', 0, 0, 4, 4, 0, 0}, eChannelIntensity}, {{'l', 'i', 0, 0, 4, 4, 0, 0}, eChannelIntensity},
        {eFmtBW1bpp, eChannelIntensity}, {PixelType(0x505060072676cu), eChannelNone}, {rgb565, eChannelNone},
        {eFmtDXT1, eChannelNone},
        // clang-format on
    };
    for (const auto& [target, source] : rows)
        EXPECT_EQ(greySource(target), source) << target.id;
}

TEST(Transcode, DithersEverySubresourceBeforeTheCurve) {
    // Four pixels by two in 16 bits, 103, 63, 198 and 144 of 255.
    const std::uint16_t pixel[] = {0x6790, 0x3F40, 0xC720, 0x9090};
    CMOKTexture source = textureOf(PixelTypeRGBA16, {4, 2, 1, 1, 2, 6}, eColourSpaceSRGB, eVarUShortNorm);
    for (std::uint32_t i = 0; i < source.getDataSize(); i += 8)
        std::memcpy(TextureInternals::data(source) + i, pixel, 8);
    const struct {
        PixelType target;
        Bytes image;
    } rows[] = {
        // clang-format off
        {rgb565, {0x71, 0x20, 0x71, 0x28, 0x71, 0x20, 0x71, 0x28, 0x71, 0x28, 0x71, 0x20, 0x71, 0x28, 0x71, 0x20}},
        {{'a', 'l', 0, 0, 4, 4, 0, 0}, {0x91, 0x81, 0x91, 0x81, 0x81, 0x91, 0x81, 0x91}}, {eFmtBW1bpp, {0xAA, 0x55}},
        // clang-format on
    };
    for (const auto& row : rows) {
        CMOKTexture texture = source;
        ASSERT_TRUE(Transcode(texture, row.target, eVarUByteNorm, eColourSpaceLinear, eCompressorQuality0, true));
        Bytes expected;
        for (int image = 0; image < 12; ++image)
            expected.insert(expected.end(), row.image.begin(), row.image.end());
        EXPECT_EQ(bytesOf(texture), expected) << row.target.id;
    }
}
