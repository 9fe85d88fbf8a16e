#include "transcode/compress_stage.h"

#include <cstring>
#include <utility>
#include <vector>

#include "transcode/codec_table.h"
#include "transcode/stage_frame.h"

namespace moktexture {

namespace {

/// An RGBA8 level repeated from its origin until it fills the padded size.
std::vector<unsigned char> tileLevel(const unsigned char* pixels, const LevelSize& size, const LevelSize& padded) {
    std::vector<unsigned char> tiled(rgba8Bytes(padded));
    unsigned char* out = tiled.data();
    for (std::uint32_t z = 0; z < padded.depth; ++z) {
        for (std::uint32_t y = 0; y < padded.height; ++y) {
            const std::size_t row = (std::size_t{z % size.depth} * size.height + y % size.height) * size.width;
            for (std::uint32_t x = 0; x < padded.width; ++x, out += bytesPerRGBA8Pixel)
                std::memcpy(out, pixels + (row + x % size.width) * bytesPerRGBA8Pixel, bytesPerRGBA8Pixel);
        }
    }
    return tiled;
}

std::uint32_t encodeLevel(const FormatInfo& format, const void* pixels, void* blocks, const LevelSize& size,
                          ECompressorQuality quality) {
    const LevelCodec& codec = levelCodec(format.codec);
    if (codec.encode == nullptr) return 0;
    const LevelSize padded = paddedToSmallest(size, format);
    if (padded == size) return codec.encode(pixels, blocks, &size.width, &size.height, format, quality);

    const std::vector<unsigned char> tiled = tileLevel(static_cast<const unsigned char*>(pixels), size, padded);
    return codec.encode(tiled.data(), blocks, &padded.width, &padded.height, format, quality);
}

}  // namespace

std::uint32_t compressStage(CMOKTexture& texture, PixelType target, ECompressorQuality quality) {
    const CMOKTextureHeader& header = texture.getHeader();
    CMOKTexture encoded(withFormat(header, target, eVarUByteNorm, header.getColourSpace()), nullptr);
    const FormatInfo& format = GetFormatInfo(target);

    std::uint32_t count = 0;
    forEachSubresource(header, [&](std::uint32_t level, std::uint32_t member, std::uint32_t face) {
        count += encodeLevel(format, texture.getDataPtr(level, member, face), encoded.getDataPtr(level, member, face),
                             levelSize(header, level), quality);
    });
    texture = std::move(encoded);
    return count;
}

}  // namespace moktexture
