#pragma once

#include <cstdint>
#include <string>

#include "texture_form.h"

namespace moktextool {

/// Size and number of levels that a texture is to have.
struct PlannedSize {
    std::uint32_t width;
    std::uint32_t height;
    std::uint32_t depth;
    std::uint32_t levels;
};

/// Why a format cannot hold a texture of that size, with the nearest size that it can hold and the options that lead there.
/// "" if it can.
std::string sizeProblem(const TextureForm& target, const PlannedSize& size);

/// The power of two nearest to `size`, the larger one of two.
std::uint32_t nearestPowerOfTwo(std::uint32_t size);

}  // namespace moktextool
