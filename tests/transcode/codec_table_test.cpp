#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <vector>

#include "MOKTexLib.h"
#include "etc1/etc1.h"
#include "moktc/moktc.h"
#include "support/test_images.h"
#include "transcode/one_bit.h"
#include "transcode/packed_yuv.h"

using namespace moktexture;

namespace {

using Bytes = std::vector<std::uint8_t>;

/// What a format's codecs are told, and the block that smaller levels are raised to.
struct Row {
    CompressedFormatId format;
    std::uint32_t blockWidth, blockHeight;
    std::uint32_t generation = 0;  // MOKTC
    bool is2bpp = false, hasAlpha = false;
};
// clang-format off
constexpr Row rows[] = {
    {eFmtMOKTC2bppRGB,  16, 8, 0, true,  false},
    {eFmtMOKTC2bppRGBA, 16, 8, 0, true,  true },
    {eFmtMOKTC4bppRGB,   8, 8, 0, false, false},
    {eFmtMOKTC4bppRGBA,  8, 8, 0, false, true },
    {eFmtMOKTCII2bpp,    8, 4, 1, true,  false},
    {eFmtMOKTCII4bpp,    4, 4, 1, false, false},
    {eFmtETC1,           4, 4},
    {eFmtUYVY,           2, 1},
    {eFmtYUY2,           2, 1},
    {eFmtBW1bpp,         8, 1},
};
// clang-format on

void decode(const Row& row, const Bytes& blocks, Bytes& pixels, std::uint32_t width, std::uint32_t height) {
    const std::uint32_t format = row.format;
    if (format <= eFmtMOKTCII4bpp)
        DecompressMOKTC(blocks.data(), pixels.data(), &width, &height, row.is2bpp, &row.generation);
    else if (format == eFmtETC1)
        DecompressETC1(blocks.data(), pixels.data(), &width, &height);
    else if (format == eFmtBW1bpp)
        decode1bpp(blocks.data(), pixels.data(), &width, &height);
    else
        decodeYUV(blocks.data(), pixels.data(), &width, &height, &format);
}

/// Returns what the encoder tells at quality 0.
std::uint32_t encode(const Row& row, const Bytes& pixels, Bytes& blocks, std::uint32_t width, std::uint32_t height) {
    const std::uint32_t format = row.format;
    if (format <= eFmtMOKTCII4bpp)
        return CompressMOKTC(pixels.data(), blocks.data(), &width, &height, row.hasAlpha, row.is2bpp, row.generation, 0);
    if (format == eFmtETC1) return CompressETC1(pixels.data(), blocks.data(), &width, &height, 0);
    return static_cast<std::uint32_t>(format == eFmtBW1bpp ? encode1bpp(pixels.data(), blocks.data(), &width, &height)
                                                           : encodeYUV(pixels.data(), blocks.data(), &width, &height, &format));
}

constexpr std::uint32_t levels = 5, members = 2, faces = 6;  // 24 x 12, 12 x 6, 6 x 3, 3 x 1, 1 x 1

CMOKTexture textureOf(PixelType format) {
    const CMOKTextureHeader header(format.id, 12, 24, 1, levels, members, faces, eColourSpaceLinear, eVarUByteNorm, true);
    return CMOKTexture(header, testimages::randomBytes(header.getDataSize(), 3).data());
}

/// Calls `visit(level, member, face)` for every image.
void forEachImage(const std::function<void(std::uint32_t, std::uint32_t, std::uint32_t)>& visit) {
    for (std::uint32_t image = 0; image < levels * members * faces; ++image)
        visit(image % levels, image / levels % members, image / levels / members);
}

Bytes levelOf(const CMOKTexture& texture, std::uint32_t level, std::uint32_t member, std::uint32_t face) {
    const auto* data = static_cast<const std::uint8_t*>(texture.getDataPtr(level, member, face));
    return Bytes(data, data + texture.getDataSize(static_cast<int>(level), false, false));
}

}  // namespace

TEST(CodecTable, DecodesEachLevelInItsTrueSize) {
    for (const Row& row : rows) {
        const CMOKTexture source = textureOf(row.format);
        CMOKTexture decoded = source;
        ASSERT_TRUE(Transcode(decoded, PixelTypeRGBA8, eVarUByteNorm, eColourSpaceLinear)) << row.format;
        forEachImage([&](std::uint32_t level, std::uint32_t member, std::uint32_t face) {
            const std::uint32_t width = source.getWidth(level), height = source.getHeight(level);
            Bytes pixels(std::size_t{width} * height * 4);
            decode(row, levelOf(source, level, member, face), pixels, width, height);
            EXPECT_EQ(levelOf(decoded, level, member, face), pixels) << row.format << ' ' << level << member << face;
        });
    }
}

TEST(CodecTable, EncodesEachLevelRepeatedToTheBlock) {
    const CMOKTexture source = textureOf(PixelTypeRGBA8);
    for (const Row& row : rows) {
        if (row.generation == 1) continue;  // the fast compressor does not serve it
        CMOKTexture encoded = source;
        const bool succeeded = Transcode(encoded, row.format, eVarUByteNorm, eColourSpaceLinear, eCompressorQuality0);
        std::uint32_t count = 0;
        forEachImage([&](std::uint32_t level, std::uint32_t member, std::uint32_t face) {
            const std::uint32_t width = source.getWidth(level), height = source.getHeight(level);
            const std::uint32_t raisedWidth = std::max(width, row.blockWidth), raisedHeight = std::max(height, row.blockHeight);
            const Bytes pixels = levelOf(source, level, member, face), found = levelOf(encoded, level, member, face);
            Bytes repeated(std::size_t{raisedWidth} * raisedHeight * 4), blocks(found.size());
            for (std::size_t i = 0; i < repeated.size() / 4; ++i)
                std::memcpy(&repeated[i * 4], &pixels[(i / raisedWidth % height * width + i % raisedWidth % width) * 4], 4);
            count += encode(row, repeated, blocks, raisedWidth, raisedHeight);
            EXPECT_EQ(found, blocks) << row.format << ' ' << level << member << face;
        });
        EXPECT_EQ(succeeded, count == encoded.getDataSize()) << row.format;
    }
}
