#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "MOKTexLib.h"
#include "core/TextureInternals.h"
#include "dxtn/dxtn.h"
#include "support/test_images.h"
#include "transcode/dither.h"
#include "transcode/dither_stage.h"

using namespace moktexture;

namespace {

using Bytes = std::vector<std::uint8_t>;

struct Shape {
    std::uint32_t width, height, depth = 1, levels = 1, members = 1, faces = 1;
};

CMOKTexture textureOf(PixelType format, const Shape& shape, EMOKTColourSpace colourSpace = eColourSpaceLinear,
                      EMOKTVariableType channelType = eVarUByteNorm) {
    const CMOKTextureHeader header(format.id, shape.height, shape.width, shape.depth, shape.levels, shape.members, shape.faces,
                                   colourSpace, channelType, true);
    const bool isLarge = header.getDataSize() > 1u << 20;
    return CMOKTexture(header, isLarge ? nullptr : testimages::randomBytes(header.getDataSize(), 3).data());
}

Bytes bytesOf(const CMOKTexture& texture) {
    const unsigned char* data = TextureInternals::data(texture);
    return Bytes(data, data + TextureInternals::dataSize(texture));
}

Bytes levelOf(const CMOKTexture& texture, std::uint32_t level, std::uint32_t member, std::uint32_t face) {
    const auto* data = static_cast<const std::uint8_t*>(texture.getDataPtr(level, member, face));
    return Bytes(data, data + texture.getDataSize(static_cast<int>(level), false, false));
}

bool isInForm(const CMOKTexture& texture, PixelType format, EMOKTVariableType channelType, EMOKTColourSpace colourSpace) {
    return texture.getPixelType() == format && texture.getChannelType() == channelType && texture.getColourSpace() == colourSpace;
}

/// What the encoder makes of one slice of RGBA8, repeated up to 4 by 4 where it is smaller.
Bytes encodedDXTn(const Bytes& pixels, std::uint32_t width, std::uint32_t height, DXTMode mode) {
    const std::uint32_t padded[] = {std::max(width, 4u), std::max(height, 4u)};
    Bytes tiled(std::size_t{padded[0]} * padded[1] * 4);
    for (std::size_t i = 0; i < tiled.size() / 4; ++i)
        std::memcpy(&tiled[i * 4], &pixels[(i / padded[0] % height * width + i % padded[0] % width) * 4], 4);
    Bytes blocks(tiled.size() / (mode == 1 ? 8 : 4));
    EXPECT_EQ(CompressDXTn(tiled.data(), blocks.data(), &padded[0], &padded[1], &mode), blocks.size());
    return blocks;
}

constexpr PixelType rgb565('r', 'g', 'b', 0, 5, 6, 5, 0), oneBitGrey('l', 0, 0, 0, 1, 0, 0, 0);

}  // namespace

TEST(Transcode, ConvertsOnlyWhereTheFormDiffers) {
    // A layout with an error converts to zeros, so what is left of the pixels tells whether they were touched.
    const PixelType twiceRed('r', 'r', 0, 0, 8, 8, 0, 0), fourReds('r', 'r', 'r', 'r', 8, 8, 8, 8);
    const struct {
        PixelType source, target;
        EMOKTVariableType channelType;
        EMOKTColourSpace colourSpace;
        bool dither, touched;
    } cases[] = {
        {twiceRed, twiceRed, eVarUByteNorm, eColourSpaceLinear, false, false},
        {twiceRed, twiceRed, eVarUByteNorm, eColourSpaceLinear, true, true},
        {fourReds, fourReds, eVarUByteNorm, eColourSpaceLinear, true, false},  // 32 bits are never dithered
        {twiceRed, fourReds, eVarUByteNorm, eColourSpaceLinear, false, true},
        {twiceRed, twiceRed, eVarUByte, eColourSpaceLinear, false, true},
        {twiceRed, twiceRed, eVarUByteNorm, eColourSpaceSRGB, false, true},
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
        {CMOKTexture(), PixelTypeRGBA8},
        {lacking, PixelTypeRGBA16},
        {textureOf(eFmtDXT1, {8, 8}), eFmtUnknown},
        {textureOf(eFmtDXT1, {8, 8}), PixelType(0xFFFFFFFFu)},
        // One bit a pixel fits; the bits of RGBA8 do not, wherever it stands on the road.
        {textureOf(oneBitGrey, {16384, 8192}), PixelTypeRGBA8},
        {textureOf(oneBitGrey, {16384, 8192}), eFmtDXT1},
        {textureOf(oneBitGrey, {16384, 8192}), oneBitGrey, true},
        {textureOf(eFmtBW1bpp, {16384, 8192}), PixelType('l', 0, 0, 0, 8, 0, 0, 0)},
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
        {eFmtDXT1, {1, 1}, true, 8, 1},       {eFmtDXT2, {4, 4}, true, 16, 2},  {eFmtDXT3, {2, 8}, true, 32, 3},
        {eFmtDXT4, {4, 4}, true, 16, 4},      {eFmtDXT1, {6, 4}, false, 16, 0}, {eFmtDXT5, {4, 4, 2}, false, 32, 5},
        {eFmtEACRG11S, {5, 3}, false, 15, 0}, {eFmtBC7, {4, 4}, true, 0, 0},
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
    unsigned int border[3] = {};
    decoded.getBorder(border[0], border[1], border[2]);
    EXPECT_EQ(border[2], 3u);
    EXPECT_TRUE(decoded.isPreMultiplied());

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

TEST(Transcode, DecodedDataCountsAsLinearWhateverItsTextureDeclares) {
    CMOKTexture declared = textureOf(eFmtDXT1, {8, 8}, eColourSpaceSRGB), curved = textureOf(eFmtDXT1, {8, 8});
    ASSERT_TRUE(Transcode(curved, PixelTypeRGBA8, eVarUByteNorm, eColourSpaceLinear));
    const Bytes linear = bytesOf(curved);
    ASSERT_TRUE(Transcode(curved, PixelTypeRGBA8, eVarUByteNorm, eColourSpaceSRGB));
    ASSERT_TRUE(Transcode(declared, PixelTypeRGBA8, eVarUByteNorm, eColourSpaceSRGB));
    EXPECT_EQ(bytesOf(declared), bytesOf(curved));
    EXPECT_NE(bytesOf(declared), linear);
}

TEST(Transcode, GreyTargetsNameTheSourceOfTheirDither) {
    for (const PixelType& target : {PixelType('l', 'a', 0, 0, 4, 4, 0, 0), PixelType('l', 'g', 'r', 0, 5, 6, 5, 0)})
        EXPECT_EQ(greySource(target), eChannelLuminance);
    for (const PixelType& target :
         {PixelType('i', 'l', 0, 0, 4, 4, 0, 0), PixelType('l', 'i', 0, 0, 4, 4, 0, 0), PixelType(eFmtBW1bpp)})
        EXPECT_EQ(greySource(target), eChannelIntensity);
    for (const PixelType& target : {PixelType(0x505060072676cu), rgb565, PixelType(eFmtDXT1)})
        EXPECT_EQ(greySource(target), eChannelNone);
}

TEST(Transcode, DitheringIsATripThroughRGBA8BeforeTheCurve) {
    EChannelName rgb[] = {eChannelRed, eChannelGreen, eChannelBlue};
    for (const PixelType target : {rgb565, PixelType('a', 'l', 0, 0, 4, 4, 0, 0), PixelType(eFmtDXT1)}) {
        SCOPED_TRACE(target.id);
        CMOKTexture dithered = textureOf(PixelTypeRGBA16, {8, 8, 1, 2, 2, 6}, eColourSpaceSRGB, eVarUShortNorm);
        CMOKTexture expected = dithered, plain = dithered;
        ASSERT_TRUE(Transcode(expected, PixelTypeRGBA8, eVarUByteNorm, eColourSpaceSRGB));
        const EChannelName source = greySource(target);
        EChannelName grey[] = {source, source, source};
        if (source != eChannelNone) CopyChannels(expected, expected, 3, rgb, grey);
        for (std::uint32_t image = 0; image < 2 * 2 * 6; ++image) {
            const std::uint32_t level = image % 2;
            auto* pixels = static_cast<unsigned char*>(expected.getDataPtr(level, image / 2 % 2, image / 4));
            ditherLevelPlain(pixels, target, expected.getWidth(level), expected.getHeight(level), 1);
        }
        for (CMOKTexture* texture : {&expected, &plain, &dithered})
            Transcode(*texture, target, eVarUByteNorm, eColourSpaceLinear, eCompressorQuality0, texture == &dithered);
        EXPECT_EQ(bytesOf(dithered), bytesOf(expected));
        EXPECT_NE(bytesOf(dithered), bytesOf(plain));
    }
}
