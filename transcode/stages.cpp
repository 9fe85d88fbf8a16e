#include "transcode/stages.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>
#include <vector>

#include "core/texture/subresources.h"
#include "image_operations.h"
#include "transcode/convert_layout.h"
#include "transcode/pixels/dither.h"

namespace moktexture {

namespace {

// Kept (lgr655-is-colour): the one layout whose `l` is no grey value. Dithered l6 g5 r5 textures would lose their colours.
constexpr PixelType colouredLuminanceLayout{'l', 'g', 'r', 0, 6, 5, 5, 0};

std::size_t rgba8Bytes(const LevelSize& size) {
    return size.pixelCount() * bytesPerRGBA8Pixel;
}

/// The size with width and height raised to the smallest that the format's codec takes; larger ones are not rounded up to blocks.
LevelSize paddedToSmallest(const LevelSize& size, const FormatInfo& format) {
    return {std::max(size.width, format.smallestSize.width), std::max(size.height, format.smallestSize.height), size.depth};
}

std::uint32_t decodeLevel(const FormatInfo& format, const void* blocks, void* pixels, const LevelSize& size) {
    const LevelCodec& codec = levelCodec(format.codec);
    if (codec.decode == nullptr) return 0;
    const LevelSize padded = paddedToSmallest(size, format);
    if (padded == size || format.decodesSmallLevels)
        return codec.decode(blocks, packedImage(pixels, size.width, size.height), format);

    // Kept (small-dxt-levels-decode-to-zero): the decoder is passed the true size although its destination is padded. The DXTn
    // decoder refuses sides that are no multiple of 4, so that the small levels of every MIP chain decode to transparent black.
    std::vector<unsigned char> scratch(rgba8Bytes(padded));
    const std::uint32_t count = codec.decode(blocks, packedImage(scratch.data(), size.width, size.height), format);
    std::memcpy(pixels, scratch.data(), rgba8Bytes(size));
    return count;
}

/// An RGBA8 level, repeated from its origin until it fills the padded size.
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
    if (padded == size) return codec.encode(packedImage(pixels, size.width, size.height), blocks, format, quality);

    const std::vector<unsigned char> tiled = tileLevel(static_cast<const unsigned char*>(pixels), size, padded);
    const void* tiledPixels = tiled.data();
    return codec.encode(packedImage(tiledPixels, padded.width, padded.height), blocks, format, quality);
}

CMOKTexture convertedToRGBA8(const CMOKTexture& texture) {
    const EMOKTColourSpace colourSpace = texture.getColourSpace();
    CMOKTexture converted(withFormat(texture, PixelTypeRGBA8, eVarUByteNorm, colourSpace), nullptr);
    PixelCodec fromCodec(texture.getPixelType(), texture.getChannelType());
    PixelCodec toCodec(PixelTypeRGBA8, eVarUByteNorm);
    convertLayout(texture, converted, fromCodec, toCodec, colourSpace, colourSpace);
    return converted;
}

void makeGrey(CMOKTexture& texture, EChannelName source) {
    EChannelName destinations[] = {eChannelRed, eChannelGreen, eChannelBlue};
    EChannelName sources[] = {source, source, source};
    CopyChannels(texture, texture, 3, destinations, sources);
}

void* dataOf(const CMOKTexture& texture, const Subresource& subresource) {
    return texture.getDataPtr(subresource.level, subresource.layer, subresource.face);
}

}  // namespace

CMOKTextureHeader withFormat(const CMOKTextureHeader& header, PixelType format, EMOKTVariableType channelType,
                             EMOKTColourSpace colourSpace) {
    CMOKTextureHeader result(header);
    result.setPixelFormat(format);
    result.setChannelType(channelType);
    result.setColourSpace(colourSpace);
    return result;
}

std::uint32_t decompressStage(CMOKTexture& texture) {
    // Kept (decoding-drops-colour-space): the declared colour space is dropped, so that an sRGB texture that is decoded for an
    // sRGB target is brightened by the curve.
    CMOKTexture decoded(withFormat(texture, PixelTypeRGBA8, eVarUByteNorm, eColourSpaceLinear), nullptr);
    const FormatInfo& format = GetFormatInfo(texture.getPixelType());
    std::uint32_t count = 0;
    forEachSubresource(texture, [&](const Subresource& subresource) {
        count += decodeLevel(format, dataOf(texture, subresource), dataOf(decoded, subresource), subresource.size);
    });
    texture = std::move(decoded);
    return count;
}

void ditherStage(CMOKTexture& texture, const PixelType& target) {
    CMOKTexture dithered = convertedToRGBA8(texture);
    const EChannelName grey = greySource(target);
    if (grey != eChannelNone) makeGrey(dithered, grey);
    forEachSubresource(dithered, [&](const Subresource& subresource) {
        const LevelSize& size = subresource.size;
        auto* const pixels = static_cast<unsigned char*>(dataOf(dithered, subresource));
        ditherLevel(pixels, target, size.width, size.height, size.depth);
    });
    texture = std::move(dithered);
}

std::uint32_t compressStage(CMOKTexture& texture, PixelType target, ECompressorQuality quality) {
    CMOKTexture encoded(withFormat(texture, target, eVarUByteNorm, texture.getColourSpace()), nullptr);
    const FormatInfo& format = GetFormatInfo(target);
    std::uint32_t count = 0;
    forEachSubresource(texture, [&](const Subresource& subresource) {
        count += encodeLevel(format, dataOf(texture, subresource), dataOf(encoded, subresource), subresource.size, quality);
    });
    texture = std::move(encoded);
    return count;
}

EChannelName greySource(const PixelType& target) {
    if (isCompressed(target)) return target == PixelType(eFmtBW1bpp) ? eChannelIntensity : eChannelNone;
    if (target == colouredLuminanceLayout) return eChannelNone;
    const auto has = [&](char letter) {
        return std::ranges::find(target.layout.channelName, letter) != std::end(target.layout.channelName);
    };
    if (has('i')) return eChannelIntensity;
    return has('l') ? eChannelLuminance : eChannelNone;
}

}  // namespace moktexture
