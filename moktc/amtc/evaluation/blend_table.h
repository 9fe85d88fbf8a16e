#pragma once

#include "moktc/amtc/records/level_records.h"

namespace moktexture::amtc {

/// Blocks and footprints at 4 and at 2 bits per pixel. A footprint is twice the block plus 1 each way.
inline constexpr std::size_t blockWidth4bpp = 4, blockWidth2bpp = 8, rowsPerBlock = 4;
inline constexpr std::size_t footprintWidth4bpp = 2 * blockWidth4bpp + 1, footprintWidth2bpp = 2 * blockWidth2bpp + 1;
inline constexpr std::size_t footprintRows = 2 * rowsPerBlock + 1;
inline constexpr std::size_t footprintPixels4bpp = footprintWidth4bpp * footprintRows;
inline constexpr std::size_t footprintPixels2bpp = footprintWidth2bpp * footprintRows;

/// 2 bits per pixel: where a pixel's modulation comes from.
enum class ModulationClass : std::uint32_t {
    twoBits = 0,     ///< two bits of its own
    oneBit = 1,      ///< one bit of its own: A or B
    average = 2,     ///< mean of its four neighbours
    horizontal = 3,  ///< mean of left and right
    vertical = 4     ///< mean of above and below
};

/// Modulation indices of a pixel: 0 is A, 3 is B, 1 and 2 lie between or have a meaning of their own. The names `level1...` to
/// `level3...`, `levelValue` and so on belong to these indices.
inline constexpr std::size_t indexCount = 4;

/// A `levelValue` is an interpolation weight: 0 (A) to 8 (B). A pixel with the ignored value counts in the error and not in the
/// solver.
inline constexpr std::uint8_t ignoredLevelValue = 9;
inline constexpr std::size_t levelValueCount = 10;

/// How one pixel of a footprint is decoded, and how much it matters.
struct PixelBlendEntry {
    std::uint8_t isOuterRing;                           ///< 1 on the footprint's border, which this block's colours do not reach
    std::uint8_t isPaletteTap;                          ///< 1 if the pixel chooses from the corner palette
    std::uint8_t extendedLevels;                        ///< always 0
    std::uint8_t punchClass;                            ///< 1 if the pixel's cell is punch-through
    ModulationClass modulationClass;                    ///< 2 bits per pixel only
    std::uint8_t weightX, weightY;                      ///< bilinear weights of the right and the lower block, 0 to 8
    std::uint8_t level1A, level1B;                      ///< index 1 decodes to (A * level1A + B * level1B) / 8
    std::uint8_t level2A, level2B;                      ///< index 2 likewise
    std::uint32_t level2Mask;                           ///< ANDed with the colour of index 2
    std::array<std::uint8_t, indexCount> levelValue;    ///< by index: interpolation weight, or ignored
    std::array<std::uint8_t, indexCount> paletteIndex;  ///< palette tap, by index: 2 * position + (0 for A, 1 for B)
    std::int32_t importance;                            ///< how much the pixel counts; may be negative
    std::int32_t influence;                             ///< importance times the block's own bilinear weight, 0 to 64
};

/// One entry per pixel of a footprint, in raster order.
using BlendTable = std::array<PixelBlendEntry, footprintPixels2bpp>;

/// Builds the table of a block in region mode `mode` among neighbours in theirs. Bits 0, 1 and 2 of `variant` invert whether the
/// upper left, the upper and the left neighbour are flat. At 1 bit per pixel it writes messages and aborts.
void CreateBlendingAndUpdateWeights(std::uint32_t mode, const Neighbourhood& neighbours, std::uint32_t variant,
                                    const AmtcLevelSettings& settings, BlendTable& table);

/// The upper left of the 2 by 2 blocks around a pixel, as an index into the 3 by 3 neighbourhood.
constexpr std::size_t upperLeftBlockOf(std::size_t row, std::size_t column, std::size_t blockWidth) {
    return (row < rowsPerBlock ? 0 : 3) + (column < blockWidth ? 0 : 1);
}

}  // namespace moktexture::amtc
