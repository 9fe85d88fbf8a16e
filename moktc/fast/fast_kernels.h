#pragma once

#include <cstddef>
#include <cstdint>

#include "moktc/block/moktc_block.h"

/// @file
/// The inner loops of the fast compressors. All forms give the same bits.

namespace moktexture::moktc {

inline constexpr std::uint32_t blockArea4bpp = 16;
inline constexpr std::uint32_t blockArea2bpp = 32;
/// Pixels of the largest region that start colours are sought in: twice the sides of a block at 4 bpp.
inline constexpr std::uint32_t largestFootprint = 8 * 8;

/// One block's modulation at 4 bpp, for both modes; indices in raster order.
struct ModulationBlock4bpp {
    std::uint8_t normalIndices[blockArea4bpp] = {};
    std::uint8_t punchIndices[blockArea4bpp] = {};
    std::uint8_t modeWeights[2] = {1, 1};  ///< factors on the errors of the modes
    std::int32_t mode = 0;
    bool operator==(const ModulationBlock4bpp&) const = default;
};

/// One block's modulation at 2 bpp, direct and sampled; indices in raster order.
struct ModulationBlock2bpp {
    std::uint8_t directIndices[blockArea2bpp] = {};  ///< 0 or 3
    std::uint8_t sampleIndices[blockArea2bpp] = {};  ///< 0 to 3 where x + y is even, else 0
    std::uint8_t modeWeights[4] = {4, 1, 4, 4};      ///< factors on the errors of the modes: sub-mode 1 is preferred
    std::uint8_t mode = 0;                           ///< 0 direct, 1 to 3 the compressor's three ways to interpolate
    bool operator==(const ModulationBlock2bpp&) const = default;
};

/// One block in the source and in both upscaled images: its top left pixels, RGBA8, and the bytes from row to row.
struct BlockPixels {
    const std::uint8_t* source;
    const std::uint8_t* a;
    const std::uint8_t* b;
    std::size_t rowBytes;
};

/// Sums over a block's pixels: the share t of colour B and the residual e that the blend leaves in each channel.
struct ResidualSums {
    float t, t2;        ///< t and t squared
    float e[4], et[4];  ///< e and e * t by channel
    bool operator==(const ResidualSums&) const = default;
};

struct FastKernels {
    const char* name;
    /// The two pixels with the greatest squared distance over all four channels, the first such pair with `first` below `second`;
    /// 0 and 0 if all are alike. `count` is a multiple of 4, from 4 to `largestFootprint`; red is in the lowest byte.
    void (*findFurthest)(const std::uint32_t* pixels, std::uint32_t count, std::uint32_t& first, std::uint32_t& second);
    /// Interpolates between the centres of the blocks p (top left), q (top right), r and s (below them): one block of pixels.
    void (*fillCell4bpp)(std::uint32_t p, std::uint32_t q, std::uint32_t r, std::uint32_t s, std::uint8_t* cell);
    void (*fillCell2bpp)(std::uint32_t p, std::uint32_t q, std::uint32_t r, std::uint32_t s, std::uint8_t* cell);
    /// Chooses a block's indices for every mode, and the mode.
    void (*chooseModulation4bpp)(const BlockPixels& pixels, ModulationBlock4bpp& block);
    void (*chooseModulation2bpp)(const BlockPixels& pixels, ModulationBlock2bpp& block);
    /// Sums over a block of that width; `eighths` has each pixel's share of colour B, 0 to 8.
    void (*sumResiduals)(const BlockPixels& pixels, const std::uint8_t* eighths, std::uint32_t width, ResidualSums& sums);
};

extern const FastKernels plainFastKernels;
extern const FastKernels sse2FastKernels;

}  // namespace moktexture::moktc
