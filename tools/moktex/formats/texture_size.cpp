#include "moktex/formats/texture_size.h"

#include <algorithm>

#include "moktex/formats/format_names.h"
#include "moktex/formats/texture_format.h"

using namespace moktexture;

namespace moktextool {

namespace {

constexpr std::uint64_t limit = 0xFFFFFFFF;

std::uint64_t roundUp(std::uint64_t size, std::uint64_t step) {
    return (size + step - 1) / step * step;
}

/// Bits of an image; sides are below 2^32, so that 64 bits could overflow with hostile sizes: those give the largest number.
std::uint64_t imageBits(PixelType format, const ImageSize& size) {
    const FormatInfo::Size block = GetFormatInfo(format).sizeBlock;
    const std::uint64_t pixels = roundUp(size.width, block.width) * roundUp(size.height, block.height);
    const std::uint64_t factor = std::uint64_t{size.depth} * bitsPerPixel(format);
    constexpr std::uint64_t largest = ~std::uint64_t{0} >> 9;  // 256 levels can be added up
    return factor != 0 && pixels > largest / factor ? largest : pixels * factor;
}

std::uint64_t surfaceBits(const CMOKTextureHeader& header) {
    std::uint64_t bits = 0;
    for (std::uint32_t level = 0; level < header.getNumMIPLevels(); ++level)
        bits += imageBits(header.getPixelType(), levelSize(sizeOf(header), level));
    return bits;
}

}  // namespace

bool operator==(const ImageSize& a, const ImageSize& b) {
    return a.width == b.width && a.height == b.height && a.depth == b.depth;
}

ImageSize levelSize(const ImageSize& size, std::uint32_t level) {
    const auto side = [level](std::uint32_t edge) { return std::max(1u, edge >> level % 32); };
    return {side(size.width), side(size.height), side(size.depth)};
}

unsigned int bitsPerPixel(PixelType format) {
    if (isCompressed(format)) return GetFormatInfo(format).bitsPerPixel;
    const auto& bits = format.layout.channelBits;
    return static_cast<unsigned int>(bits[0] + bits[1] + bits[2] + bits[3]);
}

std::uint64_t imageSize(PixelType format, const ImageSize& size) {
    return (imageBits(format, size) + 7) / 8;
}

ImageSize sizeOf(const CMOKTextureHeader& header) {
    return {header.getWidth(), header.getHeight(), header.getDepth()};
}

std::uint64_t textureSize(const CMOKTextureHeader& header) {
    return surfaceBits(header) / 8 * header.getNumArrayMembers() * header.getNumFaces();
}

bool fitsTexture(const CMOKTextureHeader& header) {
    const std::uint64_t bits = surfaceBits(header);
    if (bits > limit) return false;
    const std::uint64_t layers = bits / 8 * header.getNumArrayMembers();
    return layers <= limit && layers * header.getNumFaces() <= limit;
}

std::string limitText(const CMOKTextureHeader& header) {
    const std::string name = nameOf(formatOf(header));
    if (surfaceBits(header) > limit)
        return name + " of " + std::to_string(surfaceBits(header) / 8) +
               " bytes, and a texture holds at most 536870911 (512 MiB) in all levels of a face";
    return name + " of " + std::to_string(textureSize(header)) + " bytes, and a texture holds at most 4294967295 (4 GiB)";
}

}  // namespace moktextool
