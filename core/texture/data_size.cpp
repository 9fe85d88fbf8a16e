#include "core/texture/data_size.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace moktexture {
namespace {

struct FormatSizes {
    unsigned int bits;
    BlockSize block;
};

// One row for each number of CompressedFormatId: bits per pixel, and the width, height and depth of the smallest block.
// Kept: formats with 0 bits have no data size, and a block of 1 by 1 by 1 is not rounded up, though the formats' blocks are
// larger: sizes in files are counted so.
// clang-format off
constexpr std::array<FormatSizes, eFmtUnknown + 1> formatSizes{{
    { 2, {16, 8, 1}},  // eFmtMOKTC2bppRGB
    { 2, {16, 8, 1}},  // eFmtMOKTC2bppRGBA
    { 4, { 8, 8, 1}},  // eFmtMOKTC4bppRGB
    { 4, { 8, 8, 1}},  // eFmtMOKTC4bppRGBA
    { 2, { 8, 4, 1}},  // eFmtMOKTCII2bpp
    { 4, { 4, 4, 1}},  // eFmtMOKTCII4bpp
    { 4, { 4, 4, 1}},  // eFmtETC1
    { 4, { 4, 4, 1}},  // eFmtDXT1
    { 8, { 4, 4, 1}},  // eFmtDXT2
    { 8, { 4, 4, 1}},  // eFmtDXT3
    { 8, { 4, 4, 1}},  // eFmtDXT4
    { 8, { 4, 4, 1}},  // eFmtDXT5
    { 4, { 4, 4, 1}},  // eFmtBC4
    { 8, { 4, 4, 1}},  // eFmtBC5
    { 0, { 1, 1, 1}},  // eFmtBC6
    { 0, { 1, 1, 1}},  // eFmtBC7
    {16, { 2, 1, 1}},  // eFmtUYVY
    {16, { 2, 1, 1}},  // eFmtYUY2
    { 1, { 8, 1, 1}},  // eFmtBW1bpp
    { 0, { 1, 1, 1}},  // eFmtRGB9E5
    { 0, { 2, 1, 1}},  // eFmtRGBG8888
    { 0, { 2, 1, 1}},  // eFmtGRGB8888
    { 4, { 1, 1, 1}},  // eFmtETC2RGB
    { 8, { 1, 1, 1}},  // eFmtETC2RGBA
    { 4, { 1, 1, 1}},  // eFmtETC2RGBA1
    { 4, { 1, 1, 1}},  // eFmtEACR11U
    { 4, { 1, 1, 1}},  // eFmtEACR11S
    { 8, { 1, 1, 1}},  // eFmtEACRG11U
    { 8, { 1, 1, 1}},  // eFmtEACRG11S
    { 0, { 1, 1, 1}},  // eFmtUnknown
}};
// clang-format on

const FormatSizes& sizesOf(const PixelType& compressedFormat) {
    return formatSizes[std::min<std::uint64_t>(compressedFormat.id, eFmtUnknown)];
}

constexpr std::uint64_t limit32 = 0xFFFFFFFFu;

/// Multiplies `value`, at most 32 bits, by `factor` and tells whether the product still fits in 32 bits.
bool multiplyWithin32(std::uint64_t& value, std::uint64_t factor) {
    // A factor has at most 33 bits, being at most a 32-bit size rounded up to its block.
    if (factor != 0 && value > limit32 / factor) return false;
    value *= factor;
    return true;
}

std::uint64_t roundUp(std::uint64_t value, std::uint64_t step) {
    return (value + step - 1) / step * step;
}

/// Bits of one face of one level without wrapping, or above 32 bits if that is too many.
std::uint64_t trueLevelBits(const MOKTextureHeaderV3& record, unsigned int bits, const BlockSize& block, std::uint32_t level) {
    std::uint64_t result = bits;
    const bool fits = multiplyWithin32(result, roundUp(levelDimension(record.depth, level), block.depth)) &&
                      multiplyWithin32(result, roundUp(levelDimension(record.height, level), block.height)) &&
                      multiplyWithin32(result, roundUp(levelDimension(record.width, level), block.width));
    return fits ? result : limit32 + 1;
}

}  // namespace

BlockSize minimumBlock(const PixelType& format) {
    return isCompressed(format) ? sizesOf(format).block : BlockSize{1, 1, 1};
}

unsigned int bitsPerPixel(const PixelType& format) {
    if (isCompressed(format)) return sizesOf(format).bits;
    const auto& bits = format.layout.channelBits;
    return static_cast<unsigned int>(bits[0] + bits[1] + bits[2] + bits[3]);
}

bool sizesFit32Bits(const CMOKTextureHeader& header) {
    const MOKTextureHeaderV3 record = header.getFileHeader();
    if (record.numMIPLevels > maxMIPLevels) return false;
    const PixelType format(record.pixelFormat);
    const BlockSize block = minimumBlock(format);
    std::uint64_t total = 0;
    for (std::uint32_t level = 0; level < record.numMIPLevels; ++level) {
        total += trueLevelBits(record, bitsPerPixel(format), block, level);
        if (total > limit32) return false;
    }
    total >>= 3;
    return multiplyWithin32(total, record.numArrayMembers) && multiplyWithin32(total, record.numFaces);
}

}  // namespace moktexture
