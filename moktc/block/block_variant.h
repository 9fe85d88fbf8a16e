#pragma once

#include <cstdint>

namespace moktexture::moktc {

/// Bits per pixel.
enum class Rate : std::uint8_t { twoBpp = 2, fourBpp = 4 };

enum class Generation : std::uint8_t { first = 0, second = 1 };

/// Which of the four MOKTC block formats a stream of blocks has.
struct BlockVariant {
    Rate rate;
    Generation generation;

    constexpr bool is2bpp() const { return rate == Rate::twoBpp; }
    constexpr bool isSecondGeneration() const { return generation == Generation::second; }
    bool operator==(const BlockVariant&) const = default;
};

constexpr Rate rateOf(bool is2bpp) {
    return is2bpp ? Rate::twoBpp : Rate::fourBpp;
}
constexpr std::uint32_t bitsPerPixel(Rate rate) {
    return static_cast<std::uint32_t>(rate);
}

/// Pixels from left to right in a block.
constexpr std::uint32_t blockWidth(Rate rate) {
    return rate == Rate::twoBpp ? 8 : 4;
}
/// Pixels from top to bottom in a block of either rate.
inline constexpr std::uint32_t blockHeight = 4;

}  // namespace moktexture::moktc
