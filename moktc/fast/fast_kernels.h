#pragma once

#include <cstddef>
#include <cstdint>

#include "core/base/instruction_set.h"
#include "moktc/block/moktc_block.h"

/// @file
/// The inner loops of the fast compressors. The scalar and the SSE2 form give the same bits.
///
/// A weight is an interpolation weight of the format: 0 for colour A to 8 for colour B.

namespace moktexture::moktc {

inline constexpr std::uint32_t blockArea4bpp = 16;  ///< pixels in a block
inline constexpr std::uint32_t blockArea2bpp = 32;
/// Pixels in the largest area that start colours are taken from: twice the sides of a 4 bpp block.
inline constexpr std::uint32_t largestFootprint = 8 * 8;

/// A block's modulation at 4 bpp in both modes; indices in raster order.
struct ModulationBlock4bpp {
    std::uint8_t normalIndices[blockArea4bpp] = {};
    std::uint8_t punchIndices[blockArea4bpp] = {};
    std::uint8_t modeWeights[2] = {1, 1};  ///< factors on the errors of the modes
    std::int32_t mode = 0;
    bool operator==(const ModulationBlock4bpp&) const = default;
};

/// A block's modulation at 2 bpp, direct and interpolated; indices in raster order. The factor 4 on the other modes prefers mode
/// 1, the mean of all neighbours: another mode is chosen only if its error is less than a quarter.
struct ModulationBlock2bpp {
    std::uint8_t directIndices[blockArea2bpp] = {};  ///< 0 or 3
    std::uint8_t sampleIndices[blockArea2bpp] = {};  ///< 0 to 3 where x + y is even, otherwise 0
    std::uint8_t modeWeights[4] = {4, 1, 4, 4};      ///< factors on the errors of the modes
    std::uint8_t mode = 0;                           ///< 0: direct, 1 to 3: interpolated in that sub-mode
    bool operator==(const ModulationBlock2bpp&) const = default;
};

/// One block in the source and in both upscaled images: its upper left pixels, RGBA8, and the common stride.
struct BlockImages {
    const std::uint8_t* source;
    const std::uint8_t* a;
    const std::uint8_t* b;
    std::size_t rowBytes;
};

/// Sums over a block's pixels of t, the weight as a fraction 0 to 1, and of e, the source minus the blend in each channel.
struct ResidualSums {
    float t, t2;        ///< t and t * t
    float e[4], et[4];  ///< e and e * t, by channel
    bool operator==(const ResidualSums&) const = default;
};

struct FastKernels {
    const char* name;
    /// The two pixels with the largest squared distance over all four channels; the first such pair in the order of `first`, then
    /// `second`, with `first` < `second`; 0 and 0 if all are equal. `count` is a multiple of 4, 4 to `largestFootprint`.
    void (*findFurthest)(const std::uint32_t* pixels, std::uint32_t count, std::uint32_t& first, std::uint32_t& second);
    /// Interpolates one cell, packed rows of RGBA8, between the colours of the blocks p (upper left), q (upper right), r (lower
    /// left) and s (lower right).
    void (*fillCell4bpp)(std::uint32_t p, std::uint32_t q, std::uint32_t r, std::uint32_t s, std::uint8_t* cell);
    void (*fillCell2bpp)(std::uint32_t p, std::uint32_t q, std::uint32_t r, std::uint32_t s, std::uint8_t* cell);
    /// Chooses a block's indices for every mode, then the mode.
    void (*chooseModulation4bpp)(const BlockImages& images, ModulationBlock4bpp& block);
    void (*chooseModulation2bpp)(const BlockImages& images, ModulationBlock2bpp& block);
    /// Sums over a block of `width` by 4 pixels; `weights` has one weight per pixel, 0 to 8, in raster order.
    void (*sumResiduals)(const BlockImages& images, const std::uint8_t* weights, std::uint32_t width, ResidualSums& sums);
};

extern const FastKernels scalarFastKernels;
#if MOKTEX_X86_KERNELS
extern const FastKernels sse2FastKernels;
#endif

/// The fastest kernels that this processor runs.
inline const FastKernels& fastKernels() {
#if MOKTEX_X86_KERNELS
    return sse2FastKernels;
#else
    return scalarFastKernels;
#endif
}

/// The 2 bpp compressor's estimate of the weights that the decoder computes for a block's pixels in a mode, 0 to 10, from the
/// block's own indices alone. Each weight is 255 if the mode is above 3.
void expandModulation(const ModulationBlock2bpp& block, std::uint32_t mode, std::uint8_t* weights);

}  // namespace moktexture::moktc
