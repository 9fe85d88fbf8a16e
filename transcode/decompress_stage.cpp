#include "transcode/decompress_stage.h"

#include <cstring>
#include <utility>
#include <vector>

#include "transcode/codec_table.h"
#include "transcode/stage_frame.h"

namespace moktexture {

namespace {

std::uint32_t decodeLevel(const FormatInfo& format, const void* blocks, void* pixels, const LevelSize& size) {
    const LevelCodec& codec = levelCodec(format.codec);
    if (codec.decode == nullptr) return 0;
    const LevelSize padded = paddedToSmallest(size, format);
    if (padded == size || format.decodesSmallLevels) return codec.decode(blocks, pixels, &size.width, &size.height, format);

    // Kept: the decoder gets the true size also where it has a padded destination. DXTn refuses every side that is no multiple of
    // 4, so such levels, among them the small ones of every MIP chain, come out as transparent black.
    std::vector<unsigned char> scratch(rgba8Bytes(padded));
    const std::uint32_t count = codec.decode(blocks, scratch.data(), &size.width, &size.height, format);
    std::memcpy(pixels, scratch.data(), rgba8Bytes(size));
    return count;
}

}  // namespace

std::uint32_t decompressStage(CMOKTexture& texture) {
    const CMOKTextureHeader& header = texture.getHeader();
    // Kept: the declared colour space is dropped, so that an sRGB texture which is decoded for an sRGB target is brightened by
    // the curve.
    CMOKTexture decoded(withFormat(header, PixelTypeRGBA8, eVarUByteNorm, eColourSpaceLinear), nullptr);
    const FormatInfo& format = GetFormatInfo(header.getPixelType());

    std::uint32_t count = 0;
    forEachSubresource(header, [&](std::uint32_t level, std::uint32_t member, std::uint32_t face) {
        count += decodeLevel(format, texture.getDataPtr(level, member, face), decoded.getDataPtr(level, member, face),
                             levelSize(header, level));
    });
    texture = std::move(decoded);
    return count;
}

}  // namespace moktexture
