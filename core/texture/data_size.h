#pragma once

#include <algorithm>
#include <cstdint>

#include "CMOKTextureHeader.h"

namespace moktexture {

/// Block of a compressed format in pixels: the dimensions of a level are rounded up to multiples of it.
struct BlockSize {
    std::uint32_t width;
    std::uint32_t height;
    std::uint32_t depth;
};

/// Whether the format is a number of CompressedFormatId, not a layout of channels.
inline bool isCompressed(const PixelType& format) {
    return (format.id >> 32) == 0;
}

/// The block of a compressed format; 1 by 1 by 1 for layouts and for numbers outside the table.
BlockSize minimumBlock(const PixelType& format);

/// Bits per pixel; 0 for formats without a data size.
unsigned int bitsPerPixel(const PixelType& format);

/// Size of a MIP level in pixels from that of level 0, at least 1. Levels count modulo 32.
inline std::uint32_t levelDimension(std::uint32_t size, std::uint32_t level) {
    return std::max(size >> (level & 31u), std::uint32_t{1});
}

/// Largest number of MIP levels of a buffer: levels are counted in 8 bits.
inline constexpr std::uint32_t maxMIPLevels = 255;

/// Whether the header has at most maxMIPLevels levels and none of its sizes wraps at 32 bits, so that
/// `getDataSize(allLevels, true, true)` is the size of the buffer and getDataPtr() computes true offsets.
bool sizesFit32Bits(const CMOKTextureHeader& header);

}  // namespace moktexture
