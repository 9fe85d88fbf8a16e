#pragma once

#include <algorithm>
#include <cstdint>

#include "CMOKTextureHeader.h"

namespace moktexture {

/// Smallest size in pixels of a compressed format's level; dimensions are rounded up to its multiples.
struct BlockSize {
    std::uint32_t width;
    std::uint32_t height;
    std::uint32_t depth;
};

/// Whether the format is a number of CompressedFormatId, and no layout of channels.
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

/// Most MIP levels that the buffer order can have: levels are counted in 8 bits.
inline constexpr std::uint32_t maxMIPLevels = 255;

/// Whether the header has at most maxMIPLevels levels and no size in it wraps at 32 bits, so that
/// `getDataSize(allLevels, true, true)` is the true size of the buffer and all offsets in it are true.
bool sizesFit32Bits(const CMOKTextureHeader& header);

}  // namespace moktexture
