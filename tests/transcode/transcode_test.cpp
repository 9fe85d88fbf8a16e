#include "dxtn/dxtn.h"
#include "transcode/stages.h"
#include "transcode_samples.h"

using namespace samples;

namespace {

Bytes levelOf(const CMOKTexture& texture, std::uint32_t level, std::uint32_t layer, std::uint32_t face) {
    const auto* data = static_cast<const std::uint8_t*>(texture.getDataPtr(level, layer, face));
    return Bytes(data, data + texture.getDataSize(static_cast<int>(level), false, false));
}

void expectFormat(const CMOKTexture& texture, PixelType format, EMOKTVariableType channelType, EMOKTColourSpace colourSpace) {
    EXPECT_EQ(texture.getPixelType().id, format.id);
    EXPECT_EQ(texture.getChannelType(), channelType);
    EXPECT_EQ(texture.getColourSpace(), colourSpace);
}

/// One slice of RGBA8 as DXTn; where it is smaller than 4 by 4, repeated from its origin.
Bytes encodedDXTn(const Bytes& pixels, std::uint32_t width, std::uint32_t height, DXTMode mode) {
    const std::uint32_t paddedWidth = std::max(width, 4u), paddedHeight = std::max(height, 4u);
    Bytes padded(std::size_t{paddedWidth} * paddedHeight * 4);
    for (std::size_t i = 0; i < padded.size(); ++i)
        padded[i] = pixels[(i / 4 / paddedWidth % height * width + i / 4 % paddedWidth % width) * 4 + i % 4];
    Bytes blocks(padded.size() / (mode == 1 ? 8 : 4));
    EXPECT_EQ(CompressDXTn(padded.data(), blocks.data(), &paddedWidth, &paddedHeight, &mode), blocks.size());
    return blocks;
}

constexpr PixelType oneBitGrey('l', 0, 0, 0, 1, 0, 0, 0), twoReds('r', 'r', 0, 0, 8, 8, 0, 0);

}  // namespace

TEST(Transcode, ConvertsOnlyIfTheFormatDiffers) {
    // A layout with an error converts to zeros, so that zeroed pixels show a conversion.
    const PixelType fourReds('r', 'r', 'r', 'r', 8, 8, 8, 8);
    constexpr auto linear = eColourSpaceLinear;
    // clang-format off
    const struct { PixelType source, target; EMOKTVariableType channelType; EMOKTColourSpace colourSpace;
                   bool dither, isConverted; } cases[] = {
        // source  target    type       colour space      dither  converted
        {twoReds,  twoReds,  u8,        linear,           false,  false},
        {twoReds,  twoReds,  u8,        linear,           true,   true },
        {fourReds, fourReds, u8,        linear,           true,   false},  // 32 bits are never dithered
        {twoReds,  fourReds, u8,        linear,           false,  true },
        {twoReds,  twoReds,  eVarUByte, linear,           false,  true },
        {twoReds,  twoReds,  u8,        eColourSpaceSRGB, false,  true }};
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        CMOKTexture texture = textureOf(c.source, {4, 3, 1, 2});
        const Bytes before = bytesOf(texture);
        EXPECT_TRUE(Transcode(texture, c.target, c.channelType, c.colourSpace, eCompressorQuality0, c.dither));
        expectFormat(texture, c.target, c.channelType, c.colourSpace);
        EXPECT_EQ(bytesOf(texture), c.isConverted ? Bytes(texture.getDataSize()) : before);
    }
}

TEST(Transcode, RefusedTexturesStayUnchanged) {
    CMOKTexture bufferTooSmall = textureOf(rgba8, {8, 8});
    bufferTooSmall.setWidth(9);
    // clang-format off
    const struct { CMOKTexture texture; PixelType target; bool dither = false; } cases[] = {
        {CMOKTexture(), rgba8}, {bufferTooSmall, PixelTypeRGBA16}, {textureOf(eFmtDXT1, {8, 8}), eFmtUnknown},
        {textureOf(eFmtDXT1, {8, 8}), PixelType(0xFFFFFFFFu)},
        // One bit per pixel fits 32 bits; RGBA8 does not, as target or as intermediate format.
        {textureOf(oneBitGrey, {16384, 8192}), rgba8}, {textureOf(oneBitGrey, {16384, 8192}), eFmtDXT1},
        {textureOf(oneBitGrey, {16384, 8192}), oneBitGrey, true},
        {textureOf(eFmtBW1bpp, {16384, 8192}), PixelType('l', 0, 0, 0, 8, 0, 0, 0)}};
    // clang-format on
    for (const auto& c : cases) {
        CMOKTexture texture = c.texture;
        EXPECT_FALSE(Transcode(texture, c.target, u8, eColourSpaceSRGB, eCompressorQuality0, c.dither));
        expectFormat(texture, c.texture.getPixelType(), u8, eColourSpaceLinear);
        EXPECT_EQ(bytesOf(texture), bytesOf(c.texture));
    }
}

TEST(Transcode, CompressedTargetsReportWhatTheirEncodersWrote) {
    // clang-format off
    const struct { PixelType target; Shape shape; bool result; std::size_t size; DXTMode encodedBy; } cases[] = {
        // target       size       result size  encoder
        {eFmtDXT1,      {1, 1},    true,   8,   1},
        {eFmtDXT2,      {4, 4},    true,   16,  2},
        {eFmtDXT3,      {2, 8},    true,   32,  3},
        {eFmtDXT4,      {4, 4},    true,   16,  4},
        {eFmtDXT1,      {6, 4},    false,  16,  0},
        {eFmtDXT5,      {4, 4, 2}, false,  32,  5},
        {eFmtEACRG11S,  {5, 3},    false,  15,  0},
        {eFmtBC7,       {4, 4},    true,   0,   0}};
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.target.id);
        CMOKTexture texture = textureOf(rgba8, c.shape, eColourSpaceSRGB);
        Bytes expected(c.size);
        if (c.encodedBy != 0) {  // of a 3D level the first slice alone
            const Bytes blocks = encodedDXTn(bytesOf(texture), c.shape.width, c.shape.height, c.encodedBy);
            std::copy(blocks.begin(), blocks.end(), expected.begin());
        }
        EXPECT_EQ(Transcode(texture, c.target, eVarFloat, eColourSpaceSRGB, eCompressorQuality0, false), c.result);
        expectFormat(texture, c.target, u8, eColourSpaceSRGB);
        EXPECT_EQ(bytesOf(texture), expected);
    }
}

TEST(Transcode, SmallLevelsAreTiledForTheEncoderAndLostByTheDecoder) {
    const Shape shape{16, 8, 1, 5, 2, 6};
    CMOKTexture source = textureOf(rgba8, shape);
    source.setBorder(1, 2, 3);
    CMOKTexture encoded = source;
    ASSERT_TRUE(Transcode(encoded, eFmtDXT5, u8, eColourSpaceLinear));
    expectFormat(encoded, eFmtDXT5, u8, eColourSpaceLinear);
    CMOKTexture decoded = encoded, again = encoded;
    ASSERT_TRUE(Transcode(decoded, rgba8, u8, eColourSpaceLinear));
    ASSERT_TRUE(Transcode(again, eFmtDXT5, u8, eColourSpaceLinear));
    EXPECT_TRUE(decoded.hasMetaData(0x034B4F4D, 4));
    EXPECT_TRUE(decoded.isPreMultiplied());

    const DXTMode mode = 5;
    for (std::uint32_t i = 0; i < shape.levels * shape.layers * shape.faces; ++i) {
        SCOPED_TRACE(i);
        const std::uint32_t level = i % 5, face = i / 5 % 6, layer = i / 30;
        const std::uint32_t width = source.getWidth(level), height = source.getHeight(level);
        const Bytes blocks = levelOf(encoded, level, layer, face);
        EXPECT_EQ(blocks, encodedDXTn(levelOf(source, level, layer, face), width, height, mode));
        Bytes pixels(std::size_t{width} * height * 4);
        if (height >= 4) DecompressDXTn(blocks.data(), pixels.data(), &width, &height, &mode);
        EXPECT_EQ(levelOf(decoded, level, layer, face), pixels);
        EXPECT_EQ(levelOf(again, level, layer, face), encodedDXTn(pixels, width, height, mode));
    }
}

TEST(Transcode, DecodedDataIsLinearWhateverTheTextureDeclares) {
    CMOKTexture declared = textureOf(eFmtDXT1, {8, 8}, eColourSpaceSRGB), curved = textureOf(eFmtDXT1, {8, 8});
    ASSERT_TRUE(Transcode(curved, rgba8, u8, eColourSpaceLinear));
    const Bytes linear = bytesOf(curved);
    ASSERT_TRUE(Transcode(curved, rgba8, u8, eColourSpaceSRGB));
    ASSERT_TRUE(Transcode(declared, rgba8, u8, eColourSpaceSRGB));
    EXPECT_EQ(bytesOf(declared), bytesOf(curved));
    EXPECT_NE(bytesOf(declared), linear);
}

TEST(Transcode, GreySourceFollowsTheTarget) {
    // clang-format off
    const std::pair<PixelType, EChannelName> rows[] = {
        {{'l', 'a', 0, 0, 4, 4, 0, 0}, eChannelLuminance}, {{'l', 'g', 'r', 0, 5, 6, 5, 0}, eChannelLuminance},
        {{'i', 'l', 0, 0, 4, 4, 0, 0}, eChannelIntensity}, {{'l', 'i', 0, 0, 4, 4, 0, 0}, eChannelIntensity},
        {eFmtBW1bpp, eChannelIntensity}, {PixelType(0x505060072676cu), eChannelNone},  // l6 g5 r5
        {rgb565, eChannelNone}, {eFmtDXT1, eChannelNone}};
    // clang-format on
    for (const auto& [target, source] : rows)
        EXPECT_EQ(greySource(target), source) << target.id;
}

TEST(Transcode, DithersEverySubresourceBeforeTheCurve) {
    // Four pixels by two in 16 bits, 103, 63, 198 and 144 of 255.
    const std::uint16_t pixel[] = {0x6790, 0x3F40, 0xC720, 0x9090};
    CMOKTexture source = textureOf(PixelTypeRGBA16, {4, 2, 1, 1, 2, 6}, eColourSpaceSRGB, u16);
    for (std::uint32_t i = 0; i < source.getDataSize(); i += 8)
        std::memcpy(TextureInternals::data(source) + i, pixel, 8);
    // clang-format off
    const struct { PixelType target; Bytes image; } rows[] = {
        {rgb565, {0x71, 0x20, 0x71, 0x28, 0x71, 0x20, 0x71, 0x28, 0x71, 0x28, 0x71, 0x20, 0x71, 0x28, 0x71, 0x20}},
        {{'a', 'l', 0, 0, 4, 4, 0, 0}, {0x91, 0x81, 0x91, 0x81, 0x81, 0x91, 0x81, 0x91}}, {eFmtBW1bpp, {0xAA, 0x55}}};
    // clang-format on
    for (const auto& row : rows) {
        CMOKTexture texture = source;
        ASSERT_TRUE(Transcode(texture, row.target, u8, eColourSpaceLinear, eCompressorQuality0, true));
        Bytes expected;
        for (int image = 0; image < 12; ++image)
            expected.insert(expected.end(), row.image.begin(), row.image.end());
        EXPECT_EQ(bytesOf(texture), expected) << row.target.id;
    }
}

TEST(CodecTable, PassesTrueSizesToDecodersAndTiledLevelsToEncoders) {
    // Digests of levels of 24 x 12, 12 x 6, 6 x 3, 3 x 1 and 1 x 1 in two layers of six faces; `encoded` also of one level of
    // 32 x 16. They were taken when each level agreed with its codec called alone.
    // clang-format off
    const struct { CompressedFormatId format; std::uint64_t decoded, encoded; } rows[] = {
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
        {eFmtBW1bpp,        0xca6ac866f23c9695, 0x7dcdb5c459755eef}};
    // clang-format on
    constexpr Shape shape{24, 12, 1, 5, 2, 6};
    for (const auto& row : rows) {
        CMOKTexture decoded = textureOf(row.format, shape), encoded = textureOf(rgba8, shape);
        EXPECT_TRUE(Transcode(decoded, rgba8, u8, eColourSpaceLinear));
        EXPECT_EQ(testimages::digest(bytesOf(decoded)), row.decoded) << row.format;
        CMOKTexture whole = textureOf(rgba8, {32, 16});
        EXPECT_TRUE(Transcode(whole, row.format, u8, eColourSpaceLinear, eCompressorQuality0)) << row.format;
        Transcode(encoded, row.format, u8, eColourSpaceLinear, eCompressorQuality0);
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

TEST(Transcode, TheStatusTellsBeforehandWhatCanBeConverted) {
    // clang-format off
    const struct { PixelType source; std::uint32_t width, height, depth; PixelType target; EMOKTVariableType type; ETranscodeStatus status; } cases[] = {
        // Source        Width  Height Depth Target             Type            Status
        {PixelTypeRGBA8, 8,     8,     1,    eFmtDXT1,          eVarUByteNorm,  eTranscodeOk},
        {PixelTypeRGBA8, 8,     2,     1,    eFmtDXT5,          eVarUByteNorm,  eTranscodeOk},
        {PixelTypeRGBA8, 8,     8,     1,    eFmtETC1,          eVarUByteNorm,  eTranscodeOk},
        {eFmtDXT1,       8,     8,     1,    PixelTypeRGBA16,   eVarUShortNorm, eTranscodeOk},
        {PixelTypeRGBA8, 10,    8,     1,    eFmtDXT1,          eVarUByteNorm,  eTranscodeBadSize},
        {PixelTypeRGBA8, 8,     8,     2,    eFmtDXT1,          eVarUByteNorm,  eTranscodeBadSize},
        {PixelTypeRGBA8, 24,    16,    1,    eFmtMOKTC4bppRGBA, eVarUByteNorm,  eTranscodeBadSize},
        {PixelTypeRGBA8, 8,     8,     1,    eFmtBC7,           eVarUByteNorm,  eTranscodeNoEncoder},
        {PixelTypeRGBA8, 8,     8,     1,    eFmtUnknown,       eVarUByteNorm,  eTranscodeNoEncoder},
        {PixelTypeRGBA8, 8,     8,     1,    twoReds,           eVarUByteNorm,  eTranscodeNoEncoder},
        {PixelTypeRGBA8, 8,     8,     1,    PixelTypeRGBA8,    eVarNone,       eTranscodeNoEncoder},
        {eFmtBC4,        8,     8,     1,    PixelTypeRGBA8,    eVarUByteNorm,  eTranscodeNoDecoder},
        {PixelTypeRGBA8, 65536, 65536, 1,    PixelTypeRGBA8,    eVarUByteNorm,  eTranscodeTooLarge}};
    // clang-format on
    for (const auto& item : cases) {
        SCOPED_TRACE(&item - cases);
        const CMOKTextureHeader header(item.source.id, item.height, item.width, item.depth, 1, 1, 1, eColourSpaceLinear,
                                       eVarUByteNorm, false);
        EXPECT_EQ(CheckTranscode(header, item.target, item.type), item.status);
        if (item.status == eTranscodeTooLarge) continue;
        CMOKTexture texture(header, nullptr);
        EXPECT_EQ(TranscodeTexture(texture, item.target, item.type, eColourSpaceLinear, eCompressorQuality0), item.status);
        EXPECT_EQ(texture.getPixelType(), item.status == eTranscodeOk ? item.target : item.source);
    }
}
