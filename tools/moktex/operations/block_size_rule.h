#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "moktex/formats/texture_format.h"

namespace moktextool {

/// The size and the number of levels that a texture will have.
struct PlannedSize {
    std::uint32_t width;
    std::uint32_t height;
    std::uint32_t depth;
    std::uint32_t levels;
};

/// Why a format cannot hold a texture of some size, and which sizes it can hold.
struct SizeProblem {
    std::string rule;             ///< the problem, without the remedy
    std::uint32_t width, height;  ///< the nearest size that works; 0 if none does
};
/// Sides that are no multiple of the block are no problem: encodeImages() pads the last blocks.
std::optional<SizeProblem> sizeProblem(const TextureFormat& target, const PlannedSize& size);

/// The power of two nearest to `size`, the larger one of two.
std::uint32_t nearestPowerOfTwo(std::uint32_t size);

}  // namespace moktextool
