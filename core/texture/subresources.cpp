#include "core/texture/subresources.h"

#include "core/base/numeric.h"
#include "format_info.h"

namespace moktexture {
namespace {

constexpr std::uint64_t limit32 = 0xFFFFFFFFu;

/// Multiplies `value`, at most 32 bits, by `factor`; false if the product does not fit in 32 bits.
bool multiplyWithin32(std::uint64_t& value, std::uint64_t factor) {
    // A factor has at most 33 bits, being at most a 32-bit size rounded up to its block.
    if (factor != 0 && value > limit32 / factor) return false;
    value *= factor;
    return true;
}

/// Bits of one face of one level without wrapping, or above 32 bits if that is too many.
std::uint64_t trueLevelBits(const MOKTextureHeaderV3& record, unsigned int bits, const BlockSize& block, std::uint32_t level) {
    std::uint64_t result = bits;
    using Wide = std::uint64_t;
    const bool fits = multiplyWithin32(result, roundUp<Wide>(levelDimension(record.depth, level), block.depth)) &&
                      multiplyWithin32(result, roundUp<Wide>(levelDimension(record.height, level), block.height)) &&
                      multiplyWithin32(result, roundUp<Wide>(levelDimension(record.width, level), block.width));
    return fits ? result : limit32 + 1;
}

}  // namespace

BlockSize minimumBlock(const PixelType& format) {
    const FormatInfo::Size& block = GetFormatInfo(format).sizeBlock;
    return {block.width, block.height, 1};
}

unsigned int bitsPerPixel(const PixelType& format) {
    if (isCompressed(format)) return GetFormatInfo(format).bitsPerPixel;
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
